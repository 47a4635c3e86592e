// SPDX-License-Identifier: BSD-3-Clause
// Sparse matrices: structure and values, whole or in pieces.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/matrix_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "singlestate/state000000000012/sparsematrix/SUPERELEMENT/STIFFNESS/id17/kobblock";
constexpr std::int32_t read_real = 10200;
constexpr std::int32_t read_complex = 10201;
const Outcome fine{};

SparseMatrix all_of(const SparseMatrix& written, std::int32_t flags = 0, std::array<std::int32_t, 2> params = {})
{
    auto expected = expected_from(written, section::all);
    expected.filter_flags = flags;
    expected.filter_params = params;
    return expected;
}

SparseMatrix everything(const KobFile& file, const SparseMatrix& like, std::int32_t key = read_real)
{
    auto got = untouched(like);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{key, ""}));
    return got;
}

/// As for passes 3 and 4: the extents of the structure are inputs.
SparseMatrix for_pieces(const SparseMatrix& written, std::vector<std::int64_t> count, std::vector<std::int64_t> start)
{
    auto got = untouched(written);
    got.nnz = written.nnz;
    got.nrow = written.nrow;
    got.count = std::move(count);
    got.start = std::move(start);
    return got;
}

} // namespace

TEST(SparseMatrix, AWrittenMatrixComesBackWithItsKeyAsStatus)
{
    KobFile file;
    const SparseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    EXPECT_EQ(listing(everything(file, written)), listing(all_of(written)));
}

TEST(SparseMatrix, TheIdentityFromZeroAndFromOneStaysAsGiven)
{
    for (const std::int32_t base : {0, 1}) {
        KobFile file;
        SparseMatrix written;
        written.nnz = 3;
        written.colind = {base, base + 1, base + 2};
        written.rowptr = {base, base + 1, base + 2, base + 3};
        written.val = {1, 1, 1};
        ASSERT_EQ(written.write(file), fine);
        EXPECT_EQ(listing(everything(file, written)), listing(all_of(written)));
    }
}

TEST(SparseMatrix, TheStructureIsNeitherCheckedNorShifted)
{
    KobFile file;
    SparseMatrix written;
    written.colind = {-5, 2000000000, 7, 7, 0};
    written.rowptr = {std::numeric_limits<std::int64_t>::max(), -1, 0, 5000000000};
    ASSERT_EQ(written.write(file), fine);
    EXPECT_EQ(listing(everything(file, written)), listing(all_of(written)));
}

TEST(SparseMatrix, ValueSizeChoosesKeyAndPrecision)
{
    struct Case {
        std::int32_t value_size;
        std::int32_t key;
        bool floats;
    };
    for (const Case c : {Case{4, read_real, true}, Case{8, read_real, false}, Case{16, read_complex, true},
                         Case{32, read_complex, false}, Case{0, read_real, false}, Case{12, read_real, false}}) {
        SCOPED_TRACE(c.value_size);
        KobFile file;
        SparseMatrix written;
        written.value_size = c.value_size;
        written.indexval = {0.1};
        written.val = SparseMatrix::numbered(c.key == read_complex ? 10 : 5);
        written.val.back() = 0.1;
        ASSERT_EQ(written.write(file), fine);
        auto expected = all_of(written);
        if (c.floats) {
            expected.indexval = as_floats(expected.indexval);
            expected.val = as_floats(expected.val);
        }
        EXPECT_EQ(listing(everything(file, written, c.key)), listing(expected));
    }
}

TEST(SparseMatrix, PassZeroReadsAttributesAndStatePassOneAttributes)
{
    KobFile file;
    const SparseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    auto zero = untouched(written);
    EXPECT_EQ(zero.read(block, 0), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(zero), listing(expected_from(written, section::attributes | section::index)));
    auto one = untouched(written);
    EXPECT_EQ(one.read(block, 1), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(one), listing(expected_from(written, section::attributes)));
}

TEST(SparseMatrix, PassesThreeAndFourReadTheWholeStructureAndPiecesOfTheValues)
{
    KobFile file;
    SparseMatrix written;
    written.nnz = 8;
    written.colind = {0, 1, 2, 0, 1, 2, 0, 1};
    written.rowptr = {0, 3, 6, 8};
    written.val = SparseMatrix::numbered(8);
    written.filter_flags = 1 + 2 + 8;
    written.filter_params = {0, 3};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);

    auto got = for_pieces(written, {3}, {4});
    auto expected = got;
    take(expected, written, section::identifiers);
    expected.filter_flags = 2;
    expected.filter_params = {0, 3};
    auto points = expected;
    expected.val[0] = 4.5;
    expected.val[1] = 5.5;
    expected.val[2] = 6.5;
    EXPECT_EQ(got.read(block, 3), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(expected));

    got = for_pieces(written, {2}, {7, 0});
    points.val[0] = 7.5;
    points.val[1] = 0.5;
    EXPECT_EQ(got.read(block, 4), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(points));

    got = for_pieces(written, {2}, {7});
    EXPECT_EQ(got.read(block, 3), (Outcome{-6031, read_line(31, "val", 3, 8, 0, false)}));
    got = for_pieces(written, {1}, {8});
    EXPECT_EQ(got.read(block, 4), (Outcome{-6032, read_line(32, "val", 3, 8, 0, false)}));
}

TEST(SparseMatrix, StaleCountsFailOnTheStructureAndLeaveTheValues)
{
    KobFile file;
    const SparseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (const std::int32_t pass : {3, 4}) {
        auto got = for_pieces(written, {1}, {0});
        got.nnz = 4;
        auto expected = got;
        EXPECT_EQ(got.read(block, pass), (Outcome{-6030, read_line(30, "colind", 2, 4, 0, false)}));
        EXPECT_EQ(listing(got), listing(expected));

        got = for_pieces(written, {1}, {0});
        got.nrow = 4;
        expected = got;
        expected.colind = written.colind;
        EXPECT_EQ(got.read(block, pass), (Outcome{-6030, read_line(30, "rowptr", 2, 8, 0, false)}));
        EXPECT_EQ(listing(got), listing(expected));
    }
}

TEST(SparseMatrix, ComplexPiecesHaveTwoExtents)
{
    KobFile file;
    SparseMatrix block;
    block.value_size = 16;
    block.val = {1, 2};
    block.select(1, {1, 2}, {4, 0});
    ASSERT_EQ(block.write(file), fine);
    block.val = {3};
    block.select(2, {1}, {0, 1});
    ASSERT_EQ(block.write(file), fine);
    auto like = block;
    like.val = {0, 3, 0, 0, 0, 0, 0, 0, 1, 2};
    EXPECT_EQ(listing(everything(file, like, read_complex)), listing(all_of(like)));
    auto got = for_pieces(like, {2, 1}, {3, 1});
    got.val = {-1, -1};
    EXPECT_EQ(got.read(file.block(place), 3), (Outcome{read_complex, ""}));
    EXPECT_EQ(got.val, (std::vector<double>{0, 2}));
    got.count = {2};
    got.start = {0, 1, 4, 0};
    EXPECT_EQ(got.read(file.block(place), 4), (Outcome{read_complex, ""}));
    EXPECT_EQ(got.val, (std::vector<double>{3, 1}));
}

TEST(SparseMatrix, AnotherPassIsRefusedBeforeAnythingIsLookedAt)
{
    KobFile file;
    const SparseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (const std::int32_t pass : {5, -1, std::numeric_limits<std::int32_t>::min()}) {
        for (const std::int64_t handle : {block, std::int64_t{-1}}) {
            auto got = untouched(written);
            EXPECT_EQ(got.read(handle, pass),
                      (Outcome{-3, "KOB INTERNAL ERROR reading block with key 10200 or 10201\n"}));
            EXPECT_EQ(listing(got), listing(untouched(written)));
        }
    }
}

TEST(SparseMatrix, HandlesAndKindsThatDoNotFitAreRefused)
{
    KobFile file;
    const SparseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(-1, 2), (Outcome{-1, "KOB ERROR - header not found\n"}));
    const auto block = file.block(place);
    set_int_attribute(block, "block", 10000);
    EXPECT_EQ(got.read(block, 2), (Outcome{-1, "KOB ERROR - wrong block key 10000, 10200 or 10201 expected\n"}));
    ASSERT_GE(H5Adelete(block, "block"), 0);
    EXPECT_EQ(got.read(block, 2), (Outcome{-4002, missing_attribute("block", 2, 4)}));
    EXPECT_EQ(listing(got), listing(untouched(written)));
}

TEST(SparseMatrix, AFurtherWriteChangesValuesAlone)
{
    KobFile file;
    const SparseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    auto again = written;
    again.nrow = 2; // not looked at
    again.indexval = {7.5};
    again.colind.assign(5, 9);
    again.rowptr.assign(4, 9);
    again.val = {-1, -2};
    again.select(1, {2}, {1});
    ASSERT_EQ(again.write(file), fine);
    again.val = {-3};
    again.select(2, {1}, {4});
    ASSERT_EQ(again.write(file), fine);
    auto expected = all_of(written);
    expected.val[1] = -1;
    expected.val[2] = -2;
    expected.val[4] = -3;
    EXPECT_EQ(listing(everything(file, written)), listing(expected));
    again.select(1, {2}, {4});
    EXPECT_EQ(again.write(file), (Outcome{-6031, write_line(31, "val", 3, 8, 8, 1, 0)}));
}

TEST(SparseMatrix, AFurtherWriteNeedsNoStructure)
{
    KobFile file;
    SparseMatrix b;
    ASSERT_EQ(b.write(file), fine);
    std::int32_t status = 77;
    b.val.assign(5, 8);
    KOB_WRITE_SPARSEMATRIX(file.address(), b.etyp.data(), &b.entid, b.etypvar.data(), &b.nrow, &b.nnz, &b.nindex,
                           &b.indexic, b.indexident.data(), nullptr, nullptr, nullptr, b.val.data(), &b.state,
                           &b.filter_flags, b.filter_params.data(), &b.value_size, &b.mode, nullptr, nullptr, &status,
                           -1, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(stored_reals(file.block(place), "val"), b.val);
}

TEST(SparseMatrix, AnUnknownModeIsRefusedWhenTheValuesAreDue)
{
    KobFile file;
    SparseMatrix block;
    block.mode = 3;
    block.value_size = 32;
    EXPECT_EQ(block.write(file), (Outcome{-999, "KOB ERROR writing block key 10201 - invalid mode\n"}));
    EXPECT_EQ(link_names(file.block(place)), (std::vector<std::string>{"colind", "indexident", "indexval", "rowptr"}));
}

TEST(SparseMatrix, NothingStaysOpen)
{
    KobFile file;
    SparseMatrix block;
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "");
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "") << "into an existing block";
    const auto handle = file.block(place);
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.read(handle, 2), (Outcome{read_real, ""})); }), "");
}

TEST(SparseMatrix, CountsOfNoneOneSevenAndEight)
{
    for (const std::int64_t nnz : {0, 1, 7, 8}) {
        SCOPED_TRACE(nnz);
        KobFile file;
        SparseMatrix written;
        written.nnz = nnz;
        written.colind.assign(static_cast<std::size_t>(nnz), 1);
        written.val = SparseMatrix::numbered(static_cast<std::size_t>(nnz));
        written.filter_flags = 1 + 2;
        written.filter_params = {0, 4};
        ASSERT_EQ(written.write(file), fine);
        EXPECT_EQ(has_link(file.block(place), "colind"), nnz > 0);
        EXPECT_EQ(has_link(file.block(place), "val"), nnz > 0);
        EXPECT_EQ(listing(everything(file, written)), listing(nnz == 8 ? all_of(written, 2, {0, 4}) : all_of(written)));
    }
    KobFile file;
    SparseMatrix empty;
    empty.nrow = 0;
    empty.nnz = 0;
    empty.colind.clear();
    empty.val.clear();
    empty.rowptr = {0};
    ASSERT_EQ(empty.write(file), fine);
    EXPECT_EQ(listing(everything(file, empty)), listing(all_of(empty)));
}

TEST(SparseMatrix, ConstantDataAndLongTexts)
{
    KobFile file;
    SparseMatrix written;
    written.nindex = 0;
    written.indexident.clear();
    written.indexval.clear();
    written.etyp = std::string(256, 'E');
    written.etypvar = std::string(256, 'V');
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block("constant/sparsematrix/" + std::string(256, 'E') + "/" + std::string(256, 'V') +
                                  "/id17/kobblock"),
                       2),
              (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written)));
}

TEST(SparseMatrix, NegativeCountsMakeNoDataset)
{
    KobFile file;
    SparseMatrix block;
    block.nnz = -1;
    EXPECT_EQ(block.write(file), (Outcome{-3000, write_line(1, "colind", 2, 4, 4, 0, -1)}));
    block.entid = 18;
    block.nnz = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(block.write(file).status, -2040);
    block.entid = 19;
    block.nnz = 5;
    block.nrow = -2;
    EXPECT_EQ(block.write(file), (Outcome{-3000, write_line(1, "rowptr", 2, 8, 8, 0, -1)}));
    block.entid = 20;
    block.nrow = -1; // no rows at all, not even the end
    EXPECT_EQ(block.write(file), fine);
}

// ---- limits

TEST(SparseMatrixLimits, MoreEntriesThanTwoToThe31AreStoredInTheAttribute)
{
    KobFile file;
    SparseMatrix block;
    block.nnz = 3000000000;
    block.filter_flags = 1; // a filtered dataset is one chunk, and 12 * 10^9 bytes are too many for one
    block.filter_params = {0, 1};
    EXPECT_EQ(block.write(file), (Outcome{-2190, write_line(190, "colind", 2, 4, 4, 0, -1)}));
    const auto group = file.block(place);
    EXPECT_EQ(stored_ints(group, "nnz"), (std::vector<std::int64_t>{3000000000}));
    EXPECT_FALSE(has_link(group, "colind"));
    auto got = untouched(block);
    EXPECT_EQ(got.read(group, 0), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(expected_from(block, section::attributes | section::index)));

    block.entid = 18;
    block.nnz = 5000000000;
    EXPECT_EQ(block.write(file), (Outcome{-2080, write_line(80, "colind", 2, 4, 4, 0, -1)}));
}

TEST(SparseMatrixLimits, PiecesBehindTwoToThe31Values)
{
    // The place of a matrix whose structure the file holds without storage: only values are written and read.
    constexpr hsize_t nnz = (hsize_t{1} << 31) + 1000;
    KobFile file;
    SparseMatrix block;
    block.nnz = 5;
    ASSERT_EQ(block.write(file), fine);
    const auto group = file.block(place);
    ASSERT_GE(H5Ldelete(group, "val", H5P_DEFAULT), 0);
    put_dataset(group, "val", H5T_IEEE_F32LE, {nnz});
    block.nnz = static_cast<std::int64_t>(nnz);
    block.val = {1, 2, 3};
    block.select(1, {3}, {block.nnz - 3});
    ASSERT_EQ(block.write(file), fine);
    block.val = {4};
    block.select(2, {1}, {std::int64_t{1} << 31});
    ASSERT_EQ(block.write(file), fine);

    SparseMatrix got;
    got.val.assign(4, -1);
    got.count = {4};
    got.start = {block.nnz - 4};
    EXPECT_EQ(got.read(group, 3), (Outcome{read_real, ""}));
    EXPECT_EQ(got.val, (std::vector<double>{0, 1, 2, 3}));
    got.count = {3};
    got.start = {std::int64_t{1} << 31, block.nnz - 1, 0};
    EXPECT_EQ(got.read(group, 4), (Outcome{read_real, ""}));
    EXPECT_EQ(got.val, (std::vector<double>{4, 3, 0, 3}));
}

TEST(SparseMatrix, APlaceThatCannotBeMadeIsReported)
{
    const Outcome refusal{-8, "KOB ERROR - kob_h5gopen - code -8, group singlestate\n"};
    const SparseMatrix block;
    const std::int64_t none = -1;
    EXPECT_EQ(block.write(&none), refusal);
    KobFile file;
    file.reopen(read_only);
    EXPECT_EQ(block.write(file), refusal);
}
