// SPDX-License-Identifier: BSD-3-Clause
// Element results of a series of states.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/result_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "multistate/TIME/multielementresults/HEXA8/STRESS/ZONE5/kobblock";
constexpr std::int32_t read_real = 1150;
constexpr std::int32_t read_complex = 1151;
const Outcome fine{};

MultiElementResults all_of(const MultiElementResults& written, std::int32_t flags = 0,
                           std::array<std::int32_t, 2> params = {})
{
    auto expected = expected_from(written, section::all);
    expected.filter_flags = flags;
    expected.filter_params = params;
    return expected;
}

std::vector<std::int64_t> one(std::int64_t value) { return {value}; }

} // namespace

TEST(MultiElementResults, AWrittenSeriesComesBackWithItsKeyAsStatus)
{
    KobFile file;
    const MultiElementResults written{3};
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written)));
    EXPECT_EQ(got.nstate, 3);
}

TEST(MultiElementResults, ValueSizeChoosesKeyAndPrecision)
{
    struct Case {
        std::int32_t value_size;
        std::int32_t key;
        bool floats;
    };
    for (const Case c : {Case{4, read_real, true}, Case{8, read_real, false}, Case{16, read_complex, true},
                         Case{32, read_complex, false}, Case{0, read_real, false}, Case{12, read_real, false},
                         Case{1028, read_real, false}}) {
        SCOPED_TRACE(c.value_size);
        KobFile file;
        MultiElementResults written{2, c.value_size};
        written.dmpswitch = 1;
        written.operators = {"a", "b", "c"};
        written.weight = {0.1, 0.2};
        for (auto* values : {&written.indexval, &written.eloc, &written.res}) values->front() = 0.1;
        ASSERT_EQ(written.write(file), fine);
        auto got = untouched(written);
        EXPECT_EQ(got.read(file.block(place), 2), (Outcome{c.key, ""}));
        auto expected = all_of(written);
        if (c.floats) {
            for (auto* values : {&expected.indexval, &expected.eloc, &expected.res, &expected.weight}) {
                *values = as_floats(*values);
            }
        }
        EXPECT_EQ(listing(got), listing(expected));
    }
}

TEST(MultiElementResults, PassZeroReadsAttributesAndStatesPassOneAttributes)
{
    KobFile file;
    const MultiElementResults written{3};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    auto zero = untouched(written);
    EXPECT_EQ(zero.read(block, 0), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(zero), listing(expected_from(written, section::attributes | section::index)));
    auto first = untouched(written);
    EXPECT_EQ(first.read(block, 1), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(first), listing(expected_from(written, section::attributes)));

    std::int32_t pass = 1;
    std::int32_t status = 77;
    Text256 text;
    std::int32_t number = 0;
    KOB_READ_MULTIELEMENTRESULTS(&block, &pass, text.data(), text.data(), &number, text.data(), &number, &number,
                                 &number, text.data(), &number, text.data(), &number, &number, &number, &number,
                                 nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, &status);
    EXPECT_EQ(status, read_real) << "outputs that the pass does not touch may be null";
}

TEST(MultiElementResults, AnotherPassIsRefusedBeforeAnythingIsLookedAt)
{
    KobFile file;
    const MultiElementResults written{1};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (const std::int32_t pass : {3, -1, std::numeric_limits<std::int32_t>::min()}) {
        for (const std::int64_t handle : {block, std::int64_t{-1}}) {
            auto got = untouched(written);
            EXPECT_EQ(got.read(handle, pass),
                      (Outcome{-3, "KOB INTERNAL ERROR reading block with key 1150 or 1151\n"}));
            EXPECT_EQ(listing(got), listing(untouched(written)));
        }
    }
}

TEST(MultiElementResults, HandlesAndKindsThatDoNotFitAreRefused)
{
    KobFile file;
    const MultiElementResults written{1};
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(-1, 2), (Outcome{-1, "KOB ERROR - header not found\n"}));
    const auto block = file.block(place);
    set_int_attribute(block, "block", 1100);
    EXPECT_EQ(got.read(block, 2), (Outcome{-1, "KOB ERROR - wrong block key 1100, 1150 or 1151 expected\n"}));
    ASSERT_GE(H5Adelete(block, "block"), 0);
    EXPECT_EQ(got.read(block, 2), (Outcome{-4002, missing_attribute("block", 2, 4)}));
    EXPECT_EQ(listing(got), listing(untouched(written)));
}

TEST(MultiElementResults, FramesOperatorsAndWeightsAreStatic)
{
    for (const std::int32_t fswitch : {0, 1, 2}) {
        SCOPED_TRACE(fswitch);
        KobFile file;
        MultiElementResults written{2};
        written.fswitch = fswitch;
        if (fswitch == 1) written.fid = {8, 9};
        if (fswitch == 2) written.fid = {1, 2, 3, 4, 5, 6, 7, 8};
        written.dmpswitch = 1;
        written.operators = {"SUM", std::string(256, 'm'), ""};
        written.weight = {0.25, -4};
        ASSERT_EQ(written.write(file), fine);
        auto got = untouched(written);
        EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(got), listing(all_of(written)));
    }
}

TEST(MultiElementResults, AnotherFrameSwitchEndsTheFirstWriteAfterTheIdentifiers)
{
    KobFile file;
    MultiElementResults written{1};
    written.fswitch = 3;
    EXPECT_EQ(written.write(file), (Outcome{-123, ""}));
    EXPECT_EQ(link_names(file.block(place)), (std::vector<std::string>{"idele"}));
}

TEST(MultiElementResults, AFurtherWriteLeavesTheStaticPart)
{
    KobFile file;
    MultiElementResults written{2};
    written.dmpswitch = 1;
    written.operators = {"a", "b", "c"};
    written.weight = {1, 2};
    ASSERT_EQ(written.write(file), fine);
    auto expected = written;
    written.hold(4, 0.125);
    expected.hold(4, 0.125);
    written.etypframe = "LOCAL";
    written.fswitch = 3; // not looked at
    written.idele = {201, 202};
    written.fidglob = 34;
    written.operators = {"d", "e", "f"};
    written.weight = {3, 4};
    written.eloc.front() = -1;
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(expected);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(expected)));
    EXPECT_EQ(got.nstate, 4);
}

TEST(MultiElementResults, FewerStatesRewriteTheFirstAndKeepTheRest)
{
    KobFile file;
    const MultiElementResults written{4};
    ASSERT_EQ(written.write(file), fine);
    MultiElementResults again;
    again.hold(2, 0.25);
    ASSERT_EQ(again.write(file), fine);
    auto expected = all_of(written);
    std::copy(again.indexval.begin(), again.indexval.end(), expected.indexval.begin());
    std::copy(again.res.begin(), again.res.end(), expected.res.begin());
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(expected));
    EXPECT_EQ(got.nstate, 4);
}

TEST(MultiElementResults, NoStatesMakeAnEmptySeriesAndChangeNoOther)
{
    KobFile file;
    const MultiElementResults none{0};
    ASSERT_EQ(none.write(file), fine);
    const auto block = file.block(place);
    EXPECT_EQ(stored_ints(block, "nstate"), one(0));
    EXPECT_EQ(link_names(block), (std::vector<std::string>{"eloc", "fidglob", "idele"}));
    auto got_none = untouched(none);
    EXPECT_EQ(got_none.read(block, 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got_none), listing(all_of(none)));

    const MultiElementResults two{2};
    ASSERT_EQ(two.write(file), fine);
    ASSERT_EQ(none.write(file), fine);
    auto got = untouched(two);
    EXPECT_EQ(got.read(block, 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(two)));
}

TEST(MultiElementResults, ANegativeNumberOfStatesIsRefusedBeforeAnythingIsMade)
{
    KobFile file;
    for (const std::int32_t n : {-1, std::numeric_limits<std::int32_t>::min()}) {
        MultiElementResults block{1};
        block.n = n;
        EXPECT_EQ(block.write(file), (Outcome{-999, "KOB ERROR writing block multielementresults\n"}));
        EXPECT_FALSE(has_link(file.handle(), "multistate"));
    }
}

TEST(MultiElementResults, NoIndexValuesAndSeveral)
{
    for (const std::int32_t nindex : {0, 2}) {
        KobFile file;
        MultiElementResults written{3};
        written.nindex = nindex;
        written.hold(3);
        ASSERT_EQ(written.write(file), fine);
        const auto block = file.block(place);
        EXPECT_EQ(has_link(block, "indexident"), nindex > 0);
        auto got = untouched(written);
        EXPECT_EQ(got.read(block, 2), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(got), listing(all_of(written)));
    }
}

TEST(MultiElementResults, NoElements)
{
    KobFile file;
    MultiElementResults written{3};
    written.nele = 0;
    written.idele.clear();
    written.hold(3);
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written)));
}

TEST(MultiElementResults, TheFirstWriteDecidesOnFilters)
{
    KobFile file;
    MultiElementResults written{1};
    written.filter_flags = 2 + 16;
    written.filter_params = {0, 6};
    ASSERT_EQ(written.write(file), fine);
    written.hold(9);
    written.filter_flags = 0;
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written, 2 + 16, {0, 6})));
}

TEST(MultiElementResults, OtherSizesThanTheBlockHoldsAreRefused)
{
    KobFile file;
    const MultiElementResults written{2};
    ASSERT_EQ(written.write(file), fine);
    MultiElementResults wider{3};
    wider.ncoo = 4;
    wider.hold(3);
    EXPECT_EQ(wider.write(file).status, -6031);
    const MultiElementResults complex{1, 32};
    EXPECT_EQ(complex.write(file).status, -3020);
    EXPECT_EQ(stored_reals(file.block(place), "res"), written.res);
    EXPECT_EQ(stored_extents(file.block(place), "indexident"), (std::vector<hsize_t>{2, 1}));
    EXPECT_EQ(stored_extents(file.block(place), "indexval"), (std::vector<hsize_t>{2, 1}));
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""})) << "a refused write leaves the series readable";
}

TEST(MultiElementResults, TheBlockStaysOpenAndNothingElse)
{
    KobFile file;
    const MultiElementResults block{2};
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "group: 1");
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "group: 1") << "into an existing block";
    const auto handle = file.block(place);
    EXPECT_EQ(left_open_by([&] {
                  auto got = untouched(block);
                  EXPECT_EQ(got.read(handle, 2), (Outcome{read_real, ""}));
              }),
              "");
}

TEST(MultiElementResults, ThePlaceFollowsSeriesZoneAndSet)
{
    KobFile file;
    MultiElementResults block{1};
    block.set = 2;
    EXPECT_EQ(block.write(file), fine);
    file.block("multistate/TIME/multielementresults/HEXA8/STRESS/ZONE5_set2/kobblock");
    block.set = -1;
    block.zoneid = -1;
    block.etypzone = "";
    block.series = "MODES";
    EXPECT_EQ(block.write(file), fine);
    file.block("multistate/MODES/multielementresults/HEXA8/STRESS/kobblock");
}

TEST(MultiElementResults, TextsOf256CharactersWithoutAnEnd)
{
    KobFile file;
    MultiElementResults written{1};
    written.series = std::string(256, 'S');
    written.etypelem = std::string(256, 'E');
    written.etypvar = std::string(256, 'V');
    written.etypzone = std::string(256, 'Z');
    written.etypframe = std::string(256, 'F');
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    const auto path = "multistate/" + std::string(256, 'S') + "/multielementresults/" + std::string(256, 'E') + "/" +
                      std::string(256, 'V') + "/" + std::string(256, 'Z') + "5/kobblock";
    EXPECT_EQ(got.read(file.block(path), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written)));
}

TEST(MultiElementResults, APlaceThatCannotBeMadeIsReported)
{
    const Outcome refusal{-8, "KOB ERROR - kob_h5gopen - code -8, group multistate\n"};
    const MultiElementResults block;
    const std::int64_t none = -1;
    EXPECT_EQ(block.write(&none), refusal);
    KobFile file;
    file.reopen(read_only);
    EXPECT_EQ(block.write(file), refusal);
}
