// SPDX-License-Identifier: BSD-3-Clause
// Activation flags of a series of states.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/result_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "multistate/TIME/multiactivflags/CONTACT/kobblock";
const Outcome fine{};

MultiActivFlags all_of(const MultiActivFlags& written, std::int32_t flags = 0, std::array<std::int32_t, 2> params = {})
{
    auto expected = expected_from(written, section::all);
    expected.filter_flags = flags;
    expected.filter_params = params;
    return expected;
}

std::vector<std::int64_t> one(std::int64_t value) { return {value}; }

} // namespace

TEST(MultiActivFlags, AWrittenSeriesComesBack)
{
    KobFile file;
    const MultiActivFlags written{4};
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), fine);
    EXPECT_EQ(listing(got), listing(all_of(written)));
    EXPECT_EQ(got.nstate, 4);
}

TEST(MultiActivFlags, PassZeroReadsAttributesAndStatesPassOneAttributes)
{
    KobFile file;
    const MultiActivFlags written{4};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    auto zero = untouched(written);
    EXPECT_EQ(zero.read(block, 0), fine);
    EXPECT_EQ(listing(zero), listing(expected_from(written, section::attributes | section::index)));
    auto first = untouched(written);
    EXPECT_EQ(first.read(block, 1), fine);
    EXPECT_EQ(listing(first), listing(expected_from(written, section::attributes)));

    std::int32_t pass = 1;
    std::int32_t status = 77;
    Text256 text;
    std::int32_t number = 0;
    KOB_READ_MULTIACTIVFLAGS(&block, &pass, text.data(), text.data(), &number, &number, &number, nullptr, nullptr,
                             nullptr, nullptr, nullptr, nullptr, &status);
    EXPECT_EQ(status, 0) << "outputs that the pass does not touch may be null";
}

TEST(MultiActivFlags, AnotherPassIsRefusedAfterTheAttributes)
{
    KobFile file;
    const MultiActivFlags written{2};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (const std::int32_t pass : {3, -1, std::numeric_limits<std::int32_t>::min()}) {
        auto got = untouched(written);
        EXPECT_EQ(got.read(block, pass), (Outcome{-3, "KOB INTERNAL ERROR reading block with key 2150 \n"}));
        EXPECT_EQ(listing(got), listing(expected_from(written, section::attributes)));
    }
    auto got = untouched(written);
    EXPECT_EQ(got.read(-1, 3), (Outcome{-1, "KOB ERROR - header not found\n"})) << "the handle is looked at first";
}

TEST(MultiActivFlags, HandlesAndKindsThatDoNotFitAreRefused)
{
    KobFile file;
    const MultiActivFlags written{2};
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(-1, 2), (Outcome{-1, "KOB ERROR - header not found\n"}));
    const auto block = file.block(place);
    set_int_attribute(block, "block", 2100);
    EXPECT_EQ(got.read(block, 2), (Outcome{-1, "KOB ERROR - wrong block key 2100, 2150 expected\n"}));
    ASSERT_GE(H5Adelete(block, "block"), 0);
    EXPECT_EQ(got.read(block, 2), (Outcome{-4002, missing_attribute("block", 2, 4)}));
    EXPECT_EQ(listing(got), listing(untouched(written)));
}

TEST(MultiActivFlags, MoreStatesExtendTheSeriesAndLeaveTheStaticPart)
{
    KobFile file;
    MultiActivFlags written{2};
    ASSERT_EQ(written.write(file), fine);
    const auto first = written;
    written.hold(5, 7);
    written.entid = {91, 92, 93};
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), fine);
    auto expected = all_of(written);
    expected.entid = first.entid;
    EXPECT_EQ(listing(got), listing(expected));
    EXPECT_EQ(got.nstate, 5);
}

TEST(MultiActivFlags, FewerStatesRewriteTheFirstAndKeepTheRest)
{
    KobFile file;
    MultiActivFlags written{3};
    ASSERT_EQ(written.write(file), fine);
    MultiActivFlags again{1};
    again.hold(1, 7);
    ASSERT_EQ(again.write(file), fine);
    auto expected = all_of(written);
    expected.indexval.front() = again.indexval.front();
    std::copy(again.flags.begin(), again.flags.end(), expected.flags.begin());
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), fine);
    EXPECT_EQ(listing(got), listing(expected));
    EXPECT_EQ(got.nstate, 3);
}

TEST(MultiActivFlags, NoStatesMakeAnEmptySeriesAndChangeNoOther)
{
    KobFile file;
    MultiActivFlags none{0};
    ASSERT_EQ(none.write(file), fine);
    const auto block = file.block(place);
    EXPECT_EQ(stored_ints(block, "nstate"), one(0));
    EXPECT_EQ(link_names(block), (std::vector<std::string>{"entid"}));
    for (const std::int32_t pass : {0, 1, 2}) {
        auto got = untouched(none);
        EXPECT_EQ(got.read(block, pass), fine);
        EXPECT_EQ(listing(got), listing(pass == 2 ? all_of(none) : expected_from(none, section::attributes)));
    }
    const MultiActivFlags two{2};
    ASSERT_EQ(two.write(file), fine);
    ASSERT_EQ(none.write(file), fine);
    auto got = untouched(two);
    EXPECT_EQ(got.read(block, 2), fine);
    EXPECT_EQ(listing(got), listing(all_of(two)));
}

TEST(MultiActivFlags, ANegativeNumberOfStatesIsRefusedBeforeAnythingIsMade)
{
    KobFile file;
    for (const std::int32_t n : {-1, std::numeric_limits<std::int32_t>::min()}) {
        MultiActivFlags block{1};
        block.n = n;
        EXPECT_EQ(block.write(file), (Outcome{-999, "KOB ERROR writing block multiactivflags\n"}));
        EXPECT_FALSE(has_link(file.handle(), "multistate"));
    }
}

TEST(MultiActivFlags, TheSizeOfTheIndexValuesIsTheWritersChoice)
{
    for (const std::int32_t size : {8, 4, 0, -3}) {
        SCOPED_TRACE(size);
        KobFile file;
        MultiActivFlags written{2};
        written.float_size = size;
        written.indexval = {0.1, 0.2};
        ASSERT_EQ(written.write(file), fine);
        auto got = untouched(written);
        EXPECT_EQ(got.read(file.block(place), 2), fine);
        EXPECT_EQ(got.indexval, size == 4 ? as_floats(written.indexval) : written.indexval);
    }
}

TEST(MultiActivFlags, NoIndexValuesSeveralAndNoEntities)
{
    {
        KobFile file;
        MultiActivFlags written{2};
        written.nindex = 0;
        written.hold(2);
        ASSERT_EQ(written.write(file), fine);
        const auto block = file.block(place);
        EXPECT_FALSE(has_link(block, "indexident"));
        EXPECT_EQ(stored_ints(block, "nstate"), one(2));
        auto got = untouched(written);
        EXPECT_EQ(got.read(block, 2), fine);
        EXPECT_EQ(listing(got), listing(all_of(written)));
    }
    {
        KobFile file;
        MultiActivFlags written{3};
        written.nindex = 2;
        written.hold(3);
        ASSERT_EQ(written.write(file), fine);
        auto got = untouched(written);
        EXPECT_EQ(got.read(file.block(place), 2), fine);
        EXPECT_EQ(listing(got), listing(all_of(written)));
    }
    {
        KobFile file;
        MultiActivFlags written{3};
        written.nent = 0;
        written.entid.clear();
        written.hold(3);
        ASSERT_EQ(written.write(file), fine);
        auto got = untouched(written);
        EXPECT_EQ(got.read(file.block(place), 2), fine);
        EXPECT_EQ(listing(got), listing(all_of(written)));
    }
}

TEST(MultiActivFlags, TheFirstWriteDecidesOnFilters)
{
    for (const std::int32_t states : {2, 3}) { // 6 and 9 flags
        SCOPED_TRACE(states);
        KobFile file;
        MultiActivFlags written{states};
        written.filter_flags = 1 + 8 + 64;
        written.filter_params = {0, 5};
        ASSERT_EQ(written.write(file), fine);
        written.hold(6);
        ASSERT_EQ(written.write(file), fine);
        auto got = untouched(written);
        EXPECT_EQ(got.read(file.block(place), 2), fine);
        EXPECT_EQ(listing(got), listing(states == 2 ? all_of(written) : all_of(written, 1 + 8 + 64, {0, 5})));
    }
}

TEST(MultiActivFlags, TheBlockStaysOpenAndNothingElse)
{
    KobFile file;
    const MultiActivFlags block{2};
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "group: 1");
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "group: 1") << "into an existing block";
    const auto handle = file.block(place);
    EXPECT_EQ(left_open_by([&] {
                  auto got = untouched(block);
                  EXPECT_EQ(got.read(handle, 2), fine);
              }),
              "");
}

TEST(MultiActivFlags, TextsOf256CharactersWithoutAnEnd)
{
    KobFile file;
    MultiActivFlags written{2};
    written.series = std::string(256, 'S');
    written.etyp = std::string(256, 'E');
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block("multistate/" + std::string(256, 'S') + "/multiactivflags/" + std::string(256, 'E') +
                                  "/kobblock"),
                       2),
              fine);
    EXPECT_EQ(listing(got), listing(all_of(written)));
}

TEST(MultiActivFlags, AnUnnamedSeriesHasNoLevelOfItsOwn)
{
    KobFile file;
    MultiActivFlags written{1};
    written.series = "";
    ASSERT_EQ(written.write(file), fine);
    file.block("multistate/multiactivflags/CONTACT/kobblock");
}

TEST(MultiActivFlags, OtherEntitiesThanTheBlockHoldsAreRefused)
{
    KobFile file;
    const MultiActivFlags written{2};
    ASSERT_EQ(written.write(file), fine);
    MultiActivFlags wider{5};
    wider.nent = 4;
    wider.hold(5);
    const auto outcome = wider.write(file);
    EXPECT_EQ(outcome.status, -6031);
    EXPECT_EQ(stored_extents(file.block(place), "status"), (std::vector<hsize_t>{2, 3}));
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), fine);
    EXPECT_EQ(listing(got), listing(all_of(written)));
}

TEST(MultiActivFlags, APlaceThatCannotBeMadeIsReported)
{
    const Outcome refusal{-8, "KOB ERROR - kob_h5gopen - code -8, group multistate\n"};
    const MultiActivFlags block;
    const std::int64_t none = -1;
    EXPECT_EQ(block.write(&none), refusal);
    KobFile file;
    file.reopen(read_only);
    EXPECT_EQ(block.write(file), refusal);
}
