// SPDX-License-Identifier: BSD-3-Clause
// Dense matrices: whole or in pieces.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/matrix_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "singlestate/state000000000012/densematrix/SUPERELEMENT/STIFFNESS/id17/kobblock";
constexpr std::int32_t read_real = 10000;
constexpr std::int32_t read_complex = 10001;
const Outcome fine{};

DenseMatrix all_of(const DenseMatrix& written, std::int32_t flags = 0, std::array<std::int32_t, 2> params = {})
{
    auto expected = expected_from(written, section::all);
    expected.filter_flags = flags;
    expected.filter_params = params;
    return expected;
}

DenseMatrix everything(const KobFile& file, const DenseMatrix& like, std::int32_t key = read_real)
{
    auto got = untouched(like);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{key, ""}));
    return got;
}

} // namespace

TEST(DenseMatrix, AWrittenMatrixComesBackWithItsKeyAsStatus)
{
    KobFile file;
    const DenseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    EXPECT_EQ(listing(everything(file, written)), listing(all_of(written)));
}

TEST(DenseMatrix, ValueSizeChoosesKeyAndPrecision)
{
    struct Case {
        std::int32_t value_size;
        std::int32_t key;
        bool floats;
    };
    for (const Case c : {Case{4, read_real, true}, Case{8, read_real, false}, Case{16, read_complex, true},
                         Case{32, read_complex, false}, Case{0, read_real, false}, Case{12, read_real, false},
                         Case{-16, read_real, false}, Case{1032, read_real, false}}) {
        SCOPED_TRACE(c.value_size);
        KobFile file;
        DenseMatrix written;
        written.value_size = c.value_size;
        written.indexval = {0.1};
        written.val = DenseMatrix::numbered(c.key == read_complex ? 12 : 6);
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

TEST(DenseMatrix, PassZeroReadsAttributesAndStatePassOneAttributes)
{
    KobFile file;
    const DenseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    auto zero = untouched(written);
    EXPECT_EQ(zero.read(block, 0), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(zero), listing(expected_from(written, section::attributes | section::index)));
    auto one = untouched(written);
    EXPECT_EQ(one.read(block, 1), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(one), listing(expected_from(written, section::attributes)));

    std::int32_t pass = 1;
    std::int32_t status = 77;
    Text256 text;
    std::int32_t number = 0;
    KOB_READ_DENSEMATRIX(&block, &pass, text.data(), &number, text.data(), &number, &number, &number, &number, nullptr,
                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &status, -1, 0);
    EXPECT_EQ(status, read_real) << "outputs that the pass does not touch may be null, lengths are not looked at";
}

TEST(DenseMatrix, PassesThreeAndFourReadPiecesAndNothingElse)
{
    KobFile file;
    DenseMatrix written;
    written.filter_flags = 2;
    written.filter_params = {0, 3};
    written.nrow = 4;
    written.ncolumn = 5;
    written.val = DenseMatrix::numbered(20);
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    auto got = untouched(written);
    auto expected = got;
    expected.filter_flags = 2;
    expected.filter_params = {0, 3};
    got.count = {2, 3};
    got.start = {1, 2};
    EXPECT_EQ(got.read(block, 3), (Outcome{read_real, ""}));
    const std::vector<double> piece{7.5, 8.5, 9.5, 12.5, 13.5, 14.5};
    std::copy(piece.begin(), piece.end(), expected.val.begin());
    EXPECT_EQ(listing(got), listing(expected));

    got = untouched(written);
    expected.val = got.val;
    got.count = {3};
    got.start = {3, 4, 0, 0, 1, 3};
    EXPECT_EQ(got.read(block, 4), (Outcome{read_real, ""}));
    const std::vector<double> points{19.5, 0.5, 8.5};
    std::copy(points.begin(), points.end(), expected.val.begin());
    EXPECT_EQ(listing(got), listing(expected));
}

TEST(DenseMatrix, PiecesOutsideAreRefused)
{
    KobFile file;
    const DenseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    auto got = untouched(written);
    got.count = {1, 2};
    got.start = {3, 0};
    EXPECT_EQ(got.read(block, 3), (Outcome{-6031, read_line(31, "val", 3, 8, 0, false)}));
    got.start = {0, 1};
    EXPECT_EQ(got.read(block, 3), (Outcome{-6031, read_line(31, "val", 3, 8, 1, false)}));
    got.start = {-1, 0};
    EXPECT_EQ(got.read(block, 3).status, -6031);
    got.count = {2};
    got.start = {0, 0, 2, 2};
    EXPECT_EQ(got.read(block, 4).status, -6032);
    got.start = {0, 0, 0, -1};
    EXPECT_EQ(got.read(block, 4).status, -6032);
    got.count = {0, 2};
    got.start = {0, 0};
    EXPECT_EQ(got.read(block, 3), (Outcome{read_real, ""})) << "no values are none to refuse";
    got.count = {0};
    EXPECT_EQ(got.read(block, 4), (Outcome{read_real, ""}));
    EXPECT_EQ(got.val, untouched(written).val);
}

TEST(DenseMatrix, AnotherPassIsRefusedBeforeAnythingIsLookedAt)
{
    KobFile file;
    const DenseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (const std::int32_t pass : {5, -1, 15, std::numeric_limits<std::int32_t>::min()}) {
        for (const std::int64_t handle : {block, std::int64_t{-1}}) {
            auto got = untouched(written);
            EXPECT_EQ(got.read(handle, pass),
                      (Outcome{-3, "KOB INTERNAL ERROR reading block with key 10000 or 10001\n"}));
            EXPECT_EQ(listing(got), listing(untouched(written)));
        }
    }
}

TEST(DenseMatrix, HandlesAndKindsThatDoNotFitAreRefused)
{
    KobFile file;
    const DenseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    const auto expect_refusal = [&](std::int64_t block, const Outcome& refusal) {
        for (const std::int32_t pass : {0, 1, 2, 3, 4}) EXPECT_EQ(got.read(block, pass), refusal);
    };
    expect_refusal(-1, {-1, "KOB ERROR - header not found\n"});
    const auto block = file.block(place);
    set_int_attribute(block, "block", 10100);
    expect_refusal(block, {-1, "KOB ERROR - wrong block key 10100, 10000 or 10001 expected\n"});
    ASSERT_GE(H5Adelete(block, "block"), 0);
    expect_refusal(block, {-4002, missing_attribute("block", 2, 4)});
    EXPECT_EQ(listing(got), listing(untouched(written)));
}

TEST(DenseMatrix, ThePlaceFollowsStateAndEntity)
{
    KobFile file;
    DenseMatrix block;
    block.state = 3;
    EXPECT_EQ(block.write(file), fine);
    file.block("singlestate/state000000000003/densematrix/SUPERELEMENT/STIFFNESS/id17/kobblock");
    block.entid = -4;
    block.state = -1;
    block.nindex = 2;
    block.indexident = {7, 8};
    block.indexval = {0.5, 1.5};
    EXPECT_EQ(block.write(file), fine);
    file.block("singlestate/state000000000008/state000000000007/densematrix/SUPERELEMENT/STIFFNESS/id/kobblock");
    block.entid = 0;
    block.nindex = 0;
    block.state = 9;
    block.etyp = "";
    EXPECT_EQ(block.write(file), fine);
    file.block("constant/densematrix/STIFFNESS/id0/kobblock");
}

TEST(DenseMatrix, ConstantDataHoldNoStateIndex)
{
    KobFile file;
    DenseMatrix written;
    written.nindex = 0;
    written.indexident.clear();
    written.indexval.clear();
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block("constant/densematrix/SUPERELEMENT/STIFFNESS/id17/kobblock");
    EXPECT_EQ(link_names(block), (std::vector<std::string>{"val"}));
    for (const std::int32_t pass : {0, 1, 2}) {
        auto got = untouched(written);
        EXPECT_EQ(got.read(block, pass), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(got), listing(pass == 2 ? all_of(written) : expected_from(written, section::attributes)));
    }
}

TEST(DenseMatrix, AFurtherWriteChangesValuesAlone)
{
    KobFile file;
    const DenseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    auto again = written;
    again.state = 12; // the same place by number
    again.indexic = 99;
    again.indexident = {13};
    again.indexval = {7.5};
    again.val.assign(6, -1);
    ASSERT_EQ(again.write(file), fine);
    auto expected = all_of(written);
    expected.val = again.val;
    EXPECT_EQ(listing(everything(file, written)), listing(expected));

    again.select(1, {2, 1}, {1, 1});
    again.val = {1, 2};
    ASSERT_EQ(again.write(file), fine);
    expected.val = {-1, -1, -1, 1, -1, 2};
    EXPECT_EQ(listing(everything(file, written)), listing(expected));

    again.select(2, {2}, {2, 0, 0, 1});
    again.val = {3, 4};
    ASSERT_EQ(again.write(file), fine);
    expected.val = {-1, 4, -1, 1, 3, 2};
    EXPECT_EQ(listing(everything(file, written)), listing(expected));
}

TEST(DenseMatrix, TheFirstPieceMakesTheWholeMatrix)
{
    for (const bool lossy : {false, true}) {
        KobFile file;
        DenseMatrix block;
        block.nrow = 3;
        block.ncolumn = 4;
        if (lossy) {
            block.filter_flags = 128;
            block.filter_params = {2, 0};
        }
        block.val = {1, 2};
        block.select(1, {1, 2}, {1, 1});
        ASSERT_EQ(block.write(file), fine);
        block.val = {3};
        block.select(2, {1}, {2, 3});
        ASSERT_EQ(block.write(file), fine);
        auto like = block;
        const double none = lossy ? 10000 : 0;
        like.val = {none, none, none, none, none, 1, 2, none, none, none, none, 3};
        auto expected = all_of(like);
        if (lossy) {
            expected.filter_flags = 128;
            expected.filter_params = {2, 0};
        }
        EXPECT_EQ(listing(everything(file, like)), listing(expected));
    }
}

TEST(DenseMatrix, ComplexPiecesHaveThreeExtents)
{
    KobFile file;
    DenseMatrix block;
    block.value_size = 32;
    block.val = {1, 2};
    block.select(1, {1, 1, 2}, {2, 1, 0});
    ASSERT_EQ(block.write(file), fine);
    block.val = {3};
    block.select(2, {1}, {0, 1, 1});
    ASSERT_EQ(block.write(file), fine);
    auto like = block;
    like.val = {0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 1, 2};
    EXPECT_EQ(listing(everything(file, like, read_complex)), listing(all_of(like)));
    like.val.assign(2, 0);
    like.count = {1, 1, 2};
    like.start = {2, 1, 0};
    EXPECT_EQ(like.read(file.block(place), 3), (Outcome{read_complex, ""}));
    EXPECT_EQ(like.val, (std::vector<double>{1, 2}));
    like.count = {2};
    like.start = {2, 1, 1, 0, 1, 1};
    EXPECT_EQ(like.read(file.block(place), 4), (Outcome{read_complex, ""}));
    EXPECT_EQ(like.val, (std::vector<double>{2, 3}));
}

TEST(DenseMatrix, WritesOutsideAreRefused)
{
    for (const bool existing : {false, true}) {
        SCOPED_TRACE(existing);
        KobFile file;
        DenseMatrix block;
        if (existing) {
            ASSERT_EQ(block.write(file), fine);
        }
        block.select(1, {1, 2}, {3, 0});
        EXPECT_EQ(block.write(file), (Outcome{-6031, write_line(31, "val", 3, 8, 8, 1, 0)}));
        block.select(1, {1, 2}, {0, -1});
        EXPECT_EQ(block.write(file), (Outcome{-6031, write_line(31, "val", 3, 8, 8, 1, 1)}));
        block.select(2, {1}, {0, 2});
        EXPECT_EQ(block.write(file).status, -6032);
        EXPECT_EQ(has_link(file.block(place), "val"), existing);
    }
}

TEST(DenseMatrix, OtherExtentsThanTheBlockHoldsAreRefused)
{
    KobFile file;
    const DenseMatrix written;
    ASSERT_EQ(written.write(file), fine);
    auto other = written;
    other.ncolumn = 3;
    other.val.resize(9);
    EXPECT_EQ(other.write(file), (Outcome{-6030, write_line(30, "val", 3, 8, 8, 0, 1)}));
    other = written;
    other.value_size = 32;
    other.val.resize(12);
    EXPECT_EQ(other.write(file), (Outcome{-3020, write_line(20, "val", 3, 8, 8, 0, 2)}));
    EXPECT_EQ(listing(everything(file, written)), listing(all_of(written)));
}

TEST(DenseMatrix, AnUnknownModeIsRefusedWhenTheValuesAreDue)
{
    for (const std::int32_t mode : {3, -1}) {
        for (const std::int32_t value_size : {8, 16}) {
            KobFile file;
            DenseMatrix block;
            block.mode = mode;
            block.value_size = value_size;
            const std::string key = value_size == 16 ? "10001" : "10000";
            EXPECT_EQ(block.write(file), (Outcome{-999, "KOB ERROR writing block key " + key + " - invalid mode\n"}));
            const auto group = file.block(place);
            EXPECT_EQ(link_names(group), (std::vector<std::string>{"indexident", "indexval"}));
            EXPECT_EQ(stored_ints(group, "indexic"), (std::vector<std::int64_t>{7}));
        }
    }
}

TEST(DenseMatrix, NothingStaysOpen)
{
    KobFile file;
    DenseMatrix block;
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "");
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "") << "into an existing block";
    block.mode = 5;
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file).status, -999); }), "");
    const auto handle = file.block(place);
    EXPECT_EQ(left_open_by([&] {
                  auto got = untouched(block);
                  EXPECT_EQ(got.read(handle, 2), (Outcome{read_real, ""}));
                  EXPECT_EQ(got.read(handle, 5).status, -3);
              }),
              "");
}

TEST(DenseMatrix, LossyCompressionReachesTheValuesAlone)
{
    KobFile file;
    DenseMatrix written;
    written.nrow = 4;
    written.ncolumn = 4;
    written.val.resize(16);
    for (int i = 0; i < 16; ++i) written.val[static_cast<std::size_t>(i)] = 0.123 * i;
    written.nindex = 9;
    written.indexident = {12, 2, 3, 4, 5, 6, 7, 8, 9};
    written.indexval = {0.0625, 1, 2, 3, 4, 5, 6, 7, 8};
    written.state = 12;
    written.filter_flags = 128;
    written.filter_params = {1, 0};
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(got.indexval, written.indexval);
    EXPECT_EQ(got.filter_flags, 128);
    EXPECT_EQ(got.filter_params, (std::array<std::int32_t, 2>{1, 0}));
    int lost = 0;
    for (std::size_t i = 0; i < got.val.size(); ++i) {
        EXPECT_NEAR(got.val[i], written.val[i], 0.05 + 1e-12);
        lost += got.val[i] == written.val[i] ? 0 : 1;
    }
    EXPECT_GT(lost, 10);
}

TEST(DenseMatrix, CountsOfNoneOneSevenAndEight)
{
    for (const std::int32_t nrow : {0, 1, 7, 8}) {
        SCOPED_TRACE(nrow);
        KobFile file;
        DenseMatrix written;
        written.nrow = nrow;
        written.ncolumn = 1;
        written.val = DenseMatrix::numbered(static_cast<std::size_t>(nrow));
        written.filter_flags = 2;
        written.filter_params = {0, 4};
        ASSERT_EQ(written.write(file), fine);
        EXPECT_EQ(has_link(file.block(place), "val"), nrow > 0);
        EXPECT_EQ(listing(everything(file, written)),
                  listing(nrow == 8 ? all_of(written, 2, {0, 4}) : all_of(written)));
    }
}

TEST(DenseMatrix, NegativeCountsMakeNoDataset)
{
    KobFile file;
    DenseMatrix block;
    block.nrow = -1;
    EXPECT_EQ(block.write(file), (Outcome{-3000, write_line(1, "val", 3, 8, 8, 0, -1)}));
    block.nrow = -2;
    EXPECT_EQ(block.write(file).status, -2040);
    block.select(1, {1, 1}, {0, 0});
    EXPECT_LT(block.write(file).status, 0);
    EXPECT_FALSE(has_link(file.block(place), "val"));
}

TEST(DenseMatrix, TextsOf256CharactersWithoutAnEnd)
{
    KobFile file;
    DenseMatrix written;
    written.etyp = std::string(256, 'E');
    written.etypvar = std::string(256, 'V');
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block("singlestate/state000000000012/densematrix/" + std::string(256, 'E') + "/" +
                                  std::string(256, 'V') + "/id17/kobblock"),
                       2),
              (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written)));
}

TEST(DenseMatrix, ArraysThatNothingAsksForMayBeNull)
{
    KobFile file;
    DenseMatrix b;
    std::int32_t status = 77;
    b.nindex = 0;
    KOB_WRITE_DENSEMATRIX(file.address(), b.etyp.data(), &b.entid, b.etypvar.data(), &b.nrow, &b.ncolumn, &b.nindex,
                          &b.indexic, nullptr, nullptr, b.val.data(), &b.state, &b.filter_flags, b.filter_params.data(),
                          &b.value_size, &b.mode, nullptr, nullptr, &status, -1, 0);
    EXPECT_EQ(status, 0);
}

// ---- limits

TEST(DenseMatrixLimits, MoreThanTwoToThe31ValuesInPieces)
{
    // 65,536 x 40,000 numbers of 4 bytes: a file with holes, of which a few blocks are written
    KobFile file;
    DenseMatrix block;
    block.nrow = 65536;
    block.ncolumn = 40000;
    block.value_size = 4;
    block.val = {1, 2, 3, 4};
    block.select(1, {2, 2}, {65534, 39998});
    ASSERT_EQ(block.write(file), fine);
    block.val = {5, 6};
    block.select(2, {2}, {65535, 0, 0, 39999});
    ASSERT_EQ(block.write(file), fine);

    const auto group = file.block(place);
    EXPECT_EQ(stored_extents(group, "val"), (std::vector<hsize_t>{65536, 40000}));
    DenseMatrix got;
    got.val.assign(6, -1);
    got.count = {2, 3};
    got.start = {65534, 39997};
    EXPECT_EQ(got.read(group, 3), (Outcome{read_real, ""}));
    EXPECT_EQ(got.val, (std::vector<double>{0, 1, 2, 0, 3, 4}));
    got.count = {4};
    got.start = {65535, 39999, 65535, 0, 0, 39999, 53687, 3648};
    EXPECT_EQ(got.read(group, 4), (Outcome{read_real, ""}));
    EXPECT_EQ(got.val, (std::vector<double>{4, 5, 6, 0, 3, 4}));
}

TEST(DenseMatrixLimits, AFilteredMatrixIsOneChunkAndAChunkHasLessThanFourGigabytes)
{
    struct Case {
        std::int32_t nrow;
        std::int32_t status;
        int number;
    };
    // 7.2 * 10^9 bytes: the dataset cannot be created; 4.9 * 10^9 elements: the chunk cannot even be asked for
    for (const Case c : {Case{30000, -2190, 190}, Case{70000, -2080, 80}}) {
        for (const std::int32_t mode : {0, 1}) {
            SCOPED_TRACE(c.nrow);
            KobFile file;
            DenseMatrix block;
            block.nrow = c.nrow;
            block.ncolumn = c.nrow;
            block.filter_flags = 2;
            block.filter_params = {0, 1};
            block.select(mode, {1, 1}, {0, 0});
            EXPECT_EQ(block.write(file), (Outcome{c.status, write_line(c.number, "val", 3, 8, 8, mode, -1)}));
            EXPECT_FALSE(has_link(file.block(place), "val"));
            block.filter_flags = 0;
            block.select(1, {1, 1}, {c.nrow - 1, c.nrow - 1});
            EXPECT_EQ(block.write(file), fine) << "the same without filters";
        }
    }
}

TEST(DenseMatrix, APlaceThatCannotBeMadeIsReported)
{
    const Outcome refusal{-8, "KOB ERROR - kob_h5gopen - code -8, group singlestate\n"};
    const DenseMatrix block;
    const std::int64_t none = -1;
    EXPECT_EQ(block.write(&none), refusal);
    KobFile file;
    file.reopen(read_only);
    EXPECT_EQ(block.write(file), refusal);
}
