// SPDX-License-Identifier: BSD-3-Clause
// Triangular matrices: packed numbers, whole or in pieces.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/matrix_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "singlestate/state000000000012/triangularmatrix/SUPERELEMENT/STIFFNESS/id17/kobblock";
constexpr std::int32_t read_real = 10100;
constexpr std::int32_t read_complex = 10101;
const Outcome fine{};

TriangularMatrix all_of(const TriangularMatrix& written, std::int32_t flags = 0,
                        std::array<std::int32_t, 2> params = {})
{
    auto expected = expected_from(written, section::all);
    expected.filter_flags = flags;
    expected.filter_params = params;
    return expected;
}

TriangularMatrix everything(const KobFile& file, const TriangularMatrix& like, std::int32_t key = read_real)
{
    auto got = untouched(like);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{key, ""}));
    return got;
}

TriangularMatrix of_order(std::int32_t nsize)
{
    TriangularMatrix block;
    block.nsize = nsize;
    block.val = TriangularMatrix::numbered(static_cast<std::size_t>(nsize * (nsize + 1) / 2));
    return block;
}

} // namespace

TEST(TriangularMatrix, AWrittenMatrixComesBackWithItsKeyAsStatus)
{
    KobFile file;
    const TriangularMatrix written;
    ASSERT_EQ(written.write(file), fine);
    EXPECT_EQ(listing(everything(file, written)), listing(all_of(written)));
    EXPECT_EQ(stored_extents(file.block(place), "val"), (std::vector<hsize_t>{10}));
    EXPECT_EQ(stored_ints(file.block(place), "matrixtype"), (std::vector<std::int64_t>{-5}));
}

TEST(TriangularMatrix, ValueSizeChoosesKeyAndPrecision)
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
        TriangularMatrix written;
        written.value_size = c.value_size;
        written.indexval = {0.1};
        written.val = TriangularMatrix::numbered(c.key == read_complex ? 20 : 10);
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

TEST(TriangularMatrix, PassZeroReadsAttributesAndStatePassOneAttributes)
{
    KobFile file;
    const TriangularMatrix written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    auto zero = untouched(written);
    EXPECT_EQ(zero.read(block, 0), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(zero), listing(expected_from(written, section::attributes | section::index)));
    auto one = untouched(written);
    EXPECT_EQ(one.read(block, 1), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(one), listing(expected_from(written, section::attributes)));
}

TEST(TriangularMatrix, PassesThreeAndFourReadPiecesAndNothingElse)
{
    KobFile file;
    TriangularMatrix written;
    written.filter_flags = 2;
    written.filter_params = {0, 3};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    auto got = untouched(written);
    auto expected = got;
    expected.filter_flags = 2;
    expected.filter_params = {0, 3};
    got.count = {3};
    got.start = {6};
    EXPECT_EQ(got.read(block, 3), (Outcome{read_real, ""}));
    auto pieces = expected;
    pieces.val[0] = 6.5;
    pieces.val[1] = 7.5;
    pieces.val[2] = 8.5;
    EXPECT_EQ(listing(got), listing(pieces));

    got = untouched(written);
    got.count = {2};
    got.start = {9, 0};
    EXPECT_EQ(got.read(block, 4), (Outcome{read_real, ""}));
    expected.val[0] = 9.5;
    expected.val[1] = 0.5;
    EXPECT_EQ(listing(got), listing(expected));

    got.count = {2};
    got.start = {9};
    EXPECT_EQ(got.read(block, 3), (Outcome{-6031, read_line(31, "val", 3, 8, 0, false)}));
    got.count = {1};
    got.start = {10};
    EXPECT_EQ(got.read(block, 4), (Outcome{-6032, read_line(32, "val", 3, 8, 0, false)}));
}

TEST(TriangularMatrix, ComplexPiecesHaveTwoExtents)
{
    KobFile file;
    TriangularMatrix block;
    block.value_size = 16;
    block.nsize = 2;
    block.val = {1, 2};
    block.select(1, {1, 2}, {2, 0});
    ASSERT_EQ(block.write(file), fine);
    block.val = {3};
    block.select(2, {1}, {0, 1});
    ASSERT_EQ(block.write(file), fine);
    auto like = block;
    like.val = {0, 3, 0, 0, 1, 2};
    EXPECT_EQ(listing(everything(file, like, read_complex)), listing(all_of(like)));
    like.val = {0, 0};
    like.count = {2, 1};
    like.start = {1, 1};
    EXPECT_EQ(like.read(file.block(place), 3), (Outcome{read_complex, ""}));
    EXPECT_EQ(like.val, (std::vector<double>{0, 2}));
    like.count = {2};
    like.start = {0, 1, 2, 0};
    EXPECT_EQ(like.read(file.block(place), 4), (Outcome{read_complex, ""}));
    EXPECT_EQ(like.val, (std::vector<double>{3, 1}));
}

TEST(TriangularMatrix, AnotherPassIsRefusedBeforeAnythingIsLookedAt)
{
    KobFile file;
    const TriangularMatrix written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (const std::int32_t pass : {5, -1, std::numeric_limits<std::int32_t>::min()}) {
        for (const std::int64_t handle : {block, std::int64_t{-1}}) {
            auto got = untouched(written);
            EXPECT_EQ(got.read(handle, pass),
                      (Outcome{-3, "KOB INTERNAL ERROR reading block with key 10100 or 10101\n"}));
            EXPECT_EQ(listing(got), listing(untouched(written)));
        }
    }
}

TEST(TriangularMatrix, HandlesAndKindsThatDoNotFitAreRefused)
{
    KobFile file;
    const TriangularMatrix written;
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(-1, 2), (Outcome{-1, "KOB ERROR - header not found\n"}));
    const auto block = file.block(place);
    set_int_attribute(block, "block", 10200);
    EXPECT_EQ(got.read(block, 2), (Outcome{-1, "KOB ERROR - wrong block key 10200, 10100 or 10101 expected\n"}));
    ASSERT_GE(H5Adelete(block, "block"), 0);
    EXPECT_EQ(got.read(block, 2), (Outcome{-4002, missing_attribute("block", 2, 4)}));
    EXPECT_EQ(listing(got), listing(untouched(written)));
}

TEST(TriangularMatrix, AFurtherWriteChangesValuesAlone)
{
    KobFile file;
    const TriangularMatrix written;
    ASSERT_EQ(written.write(file), fine);
    auto again = written;
    again.matrixtype = 9;
    again.indexval = {7.5};
    again.val = {-1, -2};
    again.select(1, {2}, {4});
    ASSERT_EQ(again.write(file), fine);
    again.val = {-3};
    again.select(2, {1}, {9});
    ASSERT_EQ(again.write(file), fine);
    auto expected = all_of(written);
    expected.val[4] = -1;
    expected.val[5] = -2;
    expected.val[9] = -3;
    EXPECT_EQ(listing(everything(file, written)), listing(expected));
    again.select(1, {2}, {9});
    EXPECT_EQ(again.write(file), (Outcome{-6031, write_line(31, "val", 3, 8, 8, 1, 0)}));
}

TEST(TriangularMatrix, AnUnknownModeIsRefusedWhenTheValuesAreDue)
{
    KobFile file;
    TriangularMatrix block;
    block.mode = 3;
    EXPECT_EQ(block.write(file), (Outcome{-999, "KOB ERROR writing block key 10100 - invalid mode\n"}));
    EXPECT_EQ(link_names(file.block(place)), (std::vector<std::string>{"indexident", "indexval"}));
}

TEST(TriangularMatrix, NothingStaysOpen)
{
    KobFile file;
    TriangularMatrix block;
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "");
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "") << "into an existing block";
    const auto handle = file.block(place);
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.read(handle, 2), (Outcome{read_real, ""})); }), "");
}

TEST(TriangularMatrix, OrdersNoneOneThreeAndFour)
{
    for (const std::int32_t nsize : {0, 1, 3, 4}) { // 0, 1, 6, 10 numbers
        SCOPED_TRACE(nsize);
        KobFile file;
        auto written = of_order(nsize);
        written.filter_flags = 2;
        written.filter_params = {0, 4};
        ASSERT_EQ(written.write(file), fine);
        EXPECT_EQ(has_link(file.block(place), "val"), nsize > 0);
        EXPECT_EQ(listing(everything(file, written)),
                  listing(nsize == 4 ? all_of(written, 2, {0, 4}) : all_of(written)));
    }
}

TEST(TriangularMatrix, ConstantDataAndLongTexts)
{
    KobFile file;
    TriangularMatrix written;
    written.nindex = 0;
    written.indexident.clear();
    written.indexval.clear();
    written.etyp = std::string(256, 'E');
    written.etypvar = std::string(256, 'V');
    written.entid = -1;
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block("constant/triangularmatrix/" + std::string(256, 'E') + "/" + std::string(256, 'V') +
                                  "/id/kobblock"),
                       2),
              (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written)));
}

TEST(TriangularMatrix, TheNumberOfValuesIsComputedIn32Bits)
{
    struct Case {
        std::int32_t nsize;
        hsize_t values;
    };
    // (nsize + 1) * nsize modulo 2^32, halved
    for (const Case c : {Case{65535, 2147450880}, Case{65536, 32768}, Case{100000, 705082704},
                         Case{std::numeric_limits<std::int32_t>::max(), 1073741824}}) {
        SCOPED_TRACE(c.nsize);
        KobFile file;
        TriangularMatrix block;
        block.nsize = c.nsize;
        block.value_size = 4;
        block.val = {7};
        block.select(1, {1}, {static_cast<std::int64_t>(c.values) - 1});
        ASSERT_EQ(block.write(file), fine);
        const auto group = file.block(place);
        EXPECT_EQ(stored_extents(group, "val"), std::vector<hsize_t>{c.values});
        TriangularMatrix got;
        got.val = {-1};
        got.count = {1};
        got.start = block.start;
        EXPECT_EQ(got.read(group, 3), (Outcome{read_real, ""}));
        EXPECT_EQ(got.val, (std::vector<double>{7}));
        block.select(1, {1}, {static_cast<std::int64_t>(c.values)});
        EXPECT_EQ(block.write(file).status, -6031);
    }
}

TEST(TriangularMatrix, AnOrderOfMinusOneHasNoValues)
{
    KobFile file;
    auto block = of_order(0);
    block.nsize = -1; // (0 * -1) / 2
    EXPECT_EQ(block.write(file), fine);
    EXPECT_FALSE(has_link(file.block(place), "val"));
}

TEST(TriangularMatrix, APlaceThatCannotBeMadeIsReported)
{
    const Outcome refusal{-8, "KOB ERROR - kob_h5gopen - code -8, group singlestate\n"};
    const TriangularMatrix block;
    const std::int64_t none = -1;
    EXPECT_EQ(block.write(&none), refusal);
    KobFile file;
    file.reopen(read_only);
    EXPECT_EQ(block.write(file), refusal);
}
