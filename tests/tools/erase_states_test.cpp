// SPDX-License-Identifier: BSD-3-Clause
// The state eraser: what goes, what stays, and every line it prints.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <sys/resource.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>
#include <kob_dp.h>

#include "captured_stream.hpp"
#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "sample_file.hpp"
#include "series_block.hpp"

namespace {

using namespace kob_test;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

const std::string series_path = "multistate/RUN/multientityresults/NODE/DISPLACEMENT/kobblock";

struct Erased {
    std::int32_t status = 77;
    std::string out;
    std::string err;
};

Erased erase(std::int64_t group, const std::vector<std::int32_t>& index, std::int32_t verbose = 0)
{
    const auto nindex = static_cast<std::int32_t>(index.size());
    Erased result;
    CapturedStream captured;
    KOB_ERASE_STATES(&group, &nindex, index.data(), &verbose, &result.status);
    result.out = captured.out();
    result.err = captured.err();
    return result;
}

/// Erases and expects success in silence.
void erase_quietly(std::int64_t group, const std::vector<std::int32_t>& index)
{
    const Erased erased = erase(group, index);
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.out, "");
    EXPECT_EQ(erased.err, "");
}

/// A file with header, index and system block.
class ToolFile : public KobFile {
public:
    ToolFile()
    {
        write_header(*this);
        write_index(*this);
        write_system(*this);
    }
};

void write_state(KobFile& file, std::vector<std::int32_t> index, const std::string& variable = "DISPLACEMENT",
                 std::int32_t set = -1)
{
    std::vector<double> time;
    for (const std::int32_t ident : index) time.push_back(ident);
    write_results(file, {.variable = variable,
                         .indexident = std::move(index),
                         .indexval = std::move(time),
                         .zone = "",
                         .zoneid = -1,
                         .set = set});
}

/// Where a block of one index component lives.
std::string state_path(int state, const std::string& last = "DISPLACEMENT")
{
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "state%012d", state);
    return std::string{"singlestate/"} + name.data() + "/entityresults/NODE/" + last + "/kobblock";
}

std::string system_text(const KobFile& file, const char* name)
{
    return stored_text(open_group(file.handle(), "constant/system/kobblock"), name);
}

TEST(EraseStates, LaterStatesGoWithTheirEmptyGroups)
{
    ToolFile file;
    for (const std::int32_t state : {3, 5, 7}) write_state(file, {state});
    const Erased erased = erase(file.handle(), {5}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.err, "");
    EXPECT_THAT(erased.out, HasSubstr("KOB INFO - 1 singlestate blocks deleted\n"));
    EXPECT_THAT(link_names(open_group(file.handle(), "singlestate")),
                ::testing::ElementsAre("state000000000003", "state000000000005"));
    EXPECT_TRUE(has_block(file.handle(), state_path(3)));
    EXPECT_TRUE(has_block(file.handle(), state_path(5)));
}

TEST(EraseStates, AParentThatStillHoldsSomethingStays)
{
    ToolFile file;
    write_state(file, {7});
    const Hid mine = create_group(open_group(file.handle(), "singlestate/state000000000007/entityresults"), "notes");
    erase_quietly(file.handle(), {5});
    EXPECT_THAT(link_names(open_group(file.handle(), "singlestate/state000000000007/entityresults")),
                ::testing::ElementsAre("notes"));
}

TEST(EraseStates, WhenNothingIsLeftTheTopGroupGoesToo)
{
    ToolFile file;
    write_state(file, {7});
    erase_quietly(file.handle(), {0});
    EXPECT_FALSE(has_link(file.handle(), "singlestate"));
    EXPECT_TRUE(has_link(file.handle(), "constant"));
}

TEST(EraseStates, TheLastIndexComponentIsTheMostSignificant)
{
    ToolFile file;
    for (const std::vector<std::int32_t>& index :
         std::vector<std::vector<std::int32_t>>{{11, 1}, {1, 3}, {10, 2}, {11, 2}, {9, 2}})
        write_state(file, index);
    const auto path = [](int first, int second) {
        std::array<char, 96> name{};
        std::snprintf(name.data(), name.size(),
                      "singlestate/state%012d/state%012d/entityresults/NODE/DISPLACEMENT/kobblock", second, first);
        return std::string{name.data()};
    };
    ASSERT_TRUE(has_block(file.handle(), path(11, 2)));
    erase_quietly(file.handle(), {10, 2});
    EXPECT_TRUE(has_block(file.handle(), path(11, 1)));
    EXPECT_TRUE(has_block(file.handle(), path(10, 2)));
    EXPECT_TRUE(has_block(file.handle(), path(9, 2)));
    EXPECT_FALSE(has_block(file.handle(), path(1, 3)));
    EXPECT_FALSE(has_block(file.handle(), path(11, 2)));
}

TEST(EraseStates, NegativeIdentifiersAreCompared)
{
    ToolFile file;
    SeriesBlock{.indexident = {-3, -2, -1}}.write(file);
    erase_quietly(file.handle(), {-2});
    EXPECT_EQ(stored_ints(open_group(file.handle(), series_path), "indexident"), (std::vector<std::int64_t>{-3, -2}));
}

TEST(EraseStates, ATupleOfAnotherLengthIsNeverCompared)
{
    ToolFile file;
    write_state(file, {99, 99});
    write_state(file, {99, 99, 99, 99, 99});
    SeriesBlock{.indexident = {98, 98, 99, 99}, .nindex = 2}.write(file);
    const std::vector<std::string> before = block_paths(file.handle());
    erase_quietly(file.handle(), {1});
    EXPECT_EQ(block_paths(file.handle()), before);
    EXPECT_EQ(stored_extents(open_group(file.handle(), series_path), "res"), (std::vector<hsize_t>{2, 2, 3}));
}

TEST(EraseStates, MoreComponentsThanTheIndexBlockSaysAreCompared)
{
    ToolFile file; // its index block says 1
    write_state(file, {1, 2, 3, 4, 5, 6});
    write_state(file, {1, 2, 3, 4, 5, 7});
    erase_quietly(file.handle(), {1, 2, 3, 4, 5, 6});
    const std::vector<std::string> paths = block_paths(file.handle());
    EXPECT_EQ(std::count_if(paths.begin(), paths.end(), [](const auto& path) { return path.starts_with("single"); }),
              1);
    EXPECT_TRUE(has_link(file.handle(), "singlestate/state000000000006"));
    EXPECT_FALSE(has_link(file.handle(), "singlestate/state000000000007"));
}

TEST(EraseStates, NoIndexComponentsEraseNothing)
{
    ToolFile file;
    write_state(file, {7});
    SeriesBlock{.indexident = {1, 2}}.write(file);
    const std::vector<std::string> before = block_paths(file.handle());
    erase_quietly(file.handle(), {});
    EXPECT_EQ(block_paths(file.handle()), before);
}

TEST(EraseStates, ConstantBlocksStay)
{
    ToolFile file;
    write_connectivities(file);
    write_results(file, {.variable = "COORDINATE", .zone = "", .zoneid = -1});
    const std::vector<std::string> before = block_paths(file.handle());
    const Erased erased = erase(file.handle(), {-100}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_THAT(erased.out, HasSubstr("KOB INFO - 0 singlestate blocks deleted\n"));
    EXPECT_EQ(block_paths(file.handle()), before);
}

TEST(EraseStates, EveryStepIsReported)
{
    ToolFile file;
    for (const std::int32_t state : {3, 7}) write_state(file, {state});
    SeriesBlock{.indexident = {1, 6}}.write(file);
    const Erased erased = erase(file.handle(), {5}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.err, "");
    const std::string head = "\n"
                             "     +------------------------------------------------------+\n"
                             "     |  KOB state eraser                                    |\n"
                             "     +------------------------------------------------------+\n"
                             "      Compiled    : ";
    const std::string tail = "      KOB Version : 2.2.16\n"
                             "\n"
                             "KOB INFO - erase all data after index: 5\n\n"
                             "KOB INFO - compatibility check OK - KOB version: 2.2.16\n"
                             "KOB INFO - 1 singlestate blocks deleted\n"
                             "\nKOB INFO - 1 \"multientityresults\" blocks rewritten\n"
                             "\nKOB state eraser successfully passed.\n\n";
    ASSERT_THAT(erased.out, AllOf(StartsWith(head), EndsWith(tail)));
    // In between the date and the time of the build, such as "Jan  1 2024 12:34:56".
    const std::string built = erased.out.substr(head.size(), erased.out.size() - head.size() - tail.size());
    EXPECT_THAT(built, MatchesRegex("[A-Z][a-z][a-z] [ 0-9][0-9] [0-9]+ [0-9]+:[0-9]+:[0-9]+\n"));
}

TEST(EraseStates, SeveralIndexComponentsAreReportedInTheGivenOrder)
{
    ToolFile file;
    EXPECT_THAT(erase(file.handle(), {10, 2}, 1).out, HasSubstr("KOB INFO - erase all data after index: 10 2\n\n"));
}

TEST(EraseStates, VerboseLevelTwoPrintsTheTableAndEveryDeletion)
{
    ToolFile file;
    for (const std::int32_t state : {3, 7}) write_state(file, {state});
    const Erased erased = erase(file.handle(), {5}, 2);
    EXPECT_EQ(erased.err, "");
    EXPECT_THAT(erased.out, HasSubstr(" Info    : 5 KOB blocks found\n"
                                      "\n Number of blocktypes NBlockTypes: 4\n"
                                      " ----------------------------------------------------------------\n"
                                      " BlockKey   :     1\n"
                                      " ----------------------------------------------------------------\n"
                                      "          1 :          1 (key     1) \"kobheader\"\n"
                                      " ----------------------------------------------------------------\n"
                                      " BlockKey   :    10\n"
                                      " ----------------------------------------------------------------\n"
                                      "          2 :          1 (key    10) \"constant/system/kobblock\"\n"
                                      " ----------------------------------------------------------------\n"
                                      " BlockKey   :    20\n"
                                      " ----------------------------------------------------------------\n"
                                      "          3 :          1 (key    20) \"constant/indices/kobblock\"\n"
                                      " ----------------------------------------------------------------\n"
                                      " BlockKey   :  1000\n"
                                      " ----------------------------------------------------------------\n"
                                      "          4 :          1 (key  1000) \"" +
                                      state_path(3) +
                                      "\"\n"
                                      "          5 :          2 (key  1000) \"" +
                                      state_path(7) +
                                      "\"\n"
                                      " ----------------------------------------------------------------\n\n"));
    EXPECT_THAT(erased.out, HasSubstr(" erase of block \"" + state_path(7) + "\"\n"));
    EXPECT_THAT(erased.out, Not(HasSubstr(" erase of block \"" + state_path(3) + "\"\n")));
    // The table of level 2 is all that level 1 leaves out, but for the deletion.
    EXPECT_THAT(erase(file.handle(), {5}, 1).out, Not(HasSubstr("BlockKey")));
}

TEST(EraseStates, TheModificationTimeIsStamped)
{
    ToolFile file;
    std::array<char, 16> before{};
    std::array<char, 16> after{};
    const auto today = [](std::array<char, 16>& text) {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        std::strftime(text.data(), text.size(), "%Y%m%d%H%M%S", &local);
    };
    today(before);
    erase_quietly(file.handle(), {5});
    today(after);
    const std::string date = system_text(file, "mdate");
    const std::string time = system_text(file, "mtime");
    ASSERT_EQ(date.size(), 8U);
    ASSERT_EQ(time.size(), 8U);
    EXPECT_EQ(time.substr(6), "  ");
    EXPECT_LE(std::string{before.data()}, date + time.substr(0, 6));
    EXPECT_GE(std::string{after.data()}, date + time.substr(0, 6));
    EXPECT_EQ(system_text(file, "cdate"), "20240229");
    EXPECT_EQ(system_text(file, "ctime"), "12:34:56");
}

// ---- series

struct SeriesCase {
    const char* name;
    std::int32_t value_size;
    std::size_t stored_size;
    bool with_frames;
};

class EraseSeries : public ::testing::TestWithParam<SeriesCase> {};

INSTANTIATE_TEST_SUITE_P(Kinds, EraseSeries,
                         ::testing::Values(SeriesCase{"Real8", 8, 8, false}, SeriesCase{"Real4", 4, 4, false},
                                           SeriesCase{"Complex8", 32, 8, false}, SeriesCase{"Complex4", 16, 4, false},
                                           SeriesCase{"Real8WithFrames", 8, 8, true},
                                           SeriesCase{"Complex4WithFrames", 16, 4, true}),
                         [](const auto& c) { return std::string{c.param.name}; });

TEST_P(EraseSeries, TheLeadingStatesStay)
{
    ToolFile file;
    SeriesBlock series{.indexident = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10},
                       .value_size = GetParam().value_size,
                       .with_frames = GetParam().with_frames};
    series.write(file);
    const Hid before = open_group(file.handle(), series_path);
    const std::vector<std::string> attributes = attribute_names(before);
    const std::vector<std::string> links = link_names(before);
    erase_quietly(file.handle(), {4});

    const Hid block = open_group(file.handle(), series_path);
    EXPECT_EQ(attribute_names(block), attributes);
    EXPECT_EQ(link_names(block), links);
    EXPECT_EQ(stored_ints(block, "block").front(), series.is_complex() ? 1051 : 1050);
    EXPECT_EQ(stored_ints(block, "nstate").front(), 4);
    EXPECT_EQ(stored_ints(block, "indexident"), (std::vector<std::int64_t>{1, 2, 3, 4}));
    EXPECT_EQ(stored_reals(block, "indexval"), (std::vector<double>{0.25, 0.5, 0.75, 1}));
    EXPECT_EQ(stored_reals(block, "res"), series.values(4));
    EXPECT_EQ(stored_ints(block, "entid"), (std::vector<std::int64_t>{1, 2}));
    const Hid res{H5Dopen2(block, "res", H5P_DEFAULT)};
    const Hid type{H5Dget_type(res)};
    EXPECT_EQ(H5Tget_size(type), GetParam().stored_size);
    if (GetParam().with_frames) {
        EXPECT_EQ(stored_ints(block, "fid"), (std::vector<std::int64_t>{61, 61}));
        EXPECT_EQ(stored_reals(block, "weight"), (std::vector<double>{0.5, 0.5}));
        EXPECT_EQ(stored_text(block, "operator").substr(0, 4), "sum ");
    } else {
        EXPECT_EQ(stored_ints(block, "fidglob"), (std::vector<std::int64_t>{9}));
    }
}

TEST(EraseStates, ASeriesWithoutKeptStatesIsDeleted)
{
    ToolFile file;
    SeriesBlock{.indexident = {1, 2, 3}}.write(file);
    const Erased erased = erase(file.handle(), {0}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_THAT(erased.out, HasSubstr("\nKOB INFO - 0 \"multientityresults\" blocks rewritten\n"));
    EXPECT_FALSE(has_link(file.handle(), "multistate"));
}

TEST(EraseStates, ASeriesThatEndsEarlierIsUntouched)
{
    ToolFile file;
    SeriesBlock{.indexident = {1, 2, 3}}.write(file);
    H5O_info2_t before{};
    H5O_info2_t after{};
    ASSERT_GE(H5Oget_info_by_name3(file.handle(), series_path.c_str(), &before, H5O_INFO_BASIC, H5P_DEFAULT), 0);
    const Erased erased = erase(file.handle(), {12}, 1);
    EXPECT_THAT(erased.out, HasSubstr("\nKOB INFO - 0 \"multientityresults\" blocks rewritten\n"));
    ASSERT_GE(H5Oget_info_by_name3(file.handle(), series_path.c_str(), &after, H5O_INFO_BASIC, H5P_DEFAULT), 0);
    int different = 1;
    ASSERT_GE(H5Otoken_cmp(file.handle(), &before.token, &after.token, &different), 0);
    EXPECT_EQ(different, 0) << "the block was written again";
}

TEST(EraseStates, TheLastStateThatIsNotBehindFixesTheCount)
{
    ToolFile file;
    SeriesBlock{.indexident = {1, 9, 2, 8, 3, 7}}.write(file); // a run that went back
    erase_quietly(file.handle(), {4});
    EXPECT_EQ(stored_ints(open_group(file.handle(), series_path), "indexident"),
              (std::vector<std::int64_t>{1, 9, 2, 8, 3}));
}

TEST(EraseStates, ASeriesOfTwoIndexComponentsIsCutByItsTuples)
{
    ToolFile file;
    SeriesBlock{.indexident = {1, 1, 11, 1, 1, 2, 10, 2, 11, 2, 1, 3}, .nindex = 2}.write(file);
    erase_quietly(file.handle(), {10, 2});
    EXPECT_EQ(stored_ints(open_group(file.handle(), series_path), "indexident"),
              (std::vector<std::int64_t>{1, 1, 11, 1, 1, 2, 10, 2}));
}

TEST(EraseStates, RealAndComplexSeriesAreBothCutAndCounted)
{
    ToolFile file;
    SeriesBlock{.indexident = {1, 2}, .series = "A"}.write(file);
    SeriesBlock{.indexident = {1, 2}, .value_size = 32, .series = "B"}.write(file);
    SeriesBlock{.indexident = {1}, .series = "C"}.write(file);
    const Erased erased = erase(file.handle(), {1}, 1);
    EXPECT_THAT(erased.out, HasSubstr("\nKOB INFO - 2 \"multientityresults\" blocks rewritten\n"));
}

TEST(EraseStates, FiltersAreKept)
{
    ToolFile file;
    SeriesBlock series{.indexident = {1, 2, 3}, .nent = 20, .filter_flags = 2 | 16};
    series.write(file);
    erase_quietly(file.handle(), {2});
    const Hid block = open_group(file.handle(), series_path);
    const Hid res{H5Dopen2(block, "res", H5P_DEFAULT)};
    const Hid list{H5Dget_create_plist(res)};
    EXPECT_EQ(H5Pget_nfilters(list), 2);
    EXPECT_EQ(stored_reals(block, "res"), series.values(2));
}

TEST(EraseStates, ASeriesKeepsItsPathWhateverItsName)
{
    ToolFile file;
    SeriesBlock{.indexident = {1, 2}, .set = 12}.write(file);
    SeriesBlock{.indexident = {1, 2}, .series = "load_set3"}.write(file);
    SeriesBlock{.indexident = {1, 2}, .set = 0}.write(file);
    const std::vector<std::string> before = block_paths(file.handle());
    erase_quietly(file.handle(), {1});
    EXPECT_EQ(block_paths(file.handle()), before);
    for (const std::string& path : before) {
        if (!path.starts_with("multistate")) continue;
        EXPECT_EQ(stored_ints(open_group(file.handle(), path), "indexident"), (std::vector<std::int64_t>{1})) << path;
    }
}

TEST(EraseStates, OtherSeriesAreLeftAlone)
{
    ToolFile file;
    const Hid block = file.new_group("multistate/RUN/multiactivflags/ELEMENT/kobblock");
    const std::int32_t key = 2150;
    const std::int32_t one = 1;
    const std::int32_t late = 99;
    put_attribute(block, "block", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &key);
    put_attribute(block, "nindex", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &one);
    put_attribute(block, "nstate", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &one);
    put_dataset(block, "indexident", H5T_STD_I32LE, {1}, H5T_NATIVE_INT32, &late);
    erase_quietly(file.handle(), {5});
    EXPECT_TRUE(has_block(file.handle(), "multistate/RUN/multiactivflags/ELEMENT/kobblock"));
}

// ---- set numbers

TEST(EraseStates, ASetIsErasedLikeAnyOther)
{
    ToolFile file;
    for (const std::int32_t state : {5, 7}) write_state(file, {state}, "DISPLACEMENT", 12);
    erase_quietly(file.handle(), {5});
    EXPECT_TRUE(has_block(file.handle(), state_path(5, "DISPLACEMENT_set12")));
    EXPECT_FALSE(has_link(file.handle(), "singlestate/state000000000007"));
}

TEST(EraseStates, ASetNumberThatIsNoneIsWarnedOf)
{
    ToolFile file;
    write_state(file, {5}, "LOAD_setting");
    const Erased erased = erase(file.handle(), {5});
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.out, "");
    EXPECT_EQ(erased.err, "warning - blockkey 1000: could not identify set no in \"" + state_path(5, "LOAD_setting") +
                              "\" - assume 0.\n");
}

TEST(EraseStates, OnlyTheLastSetOfAPathCounts)
{
    ToolFile file;
    write_state(file, {5}, "LOAD_setting", 3);
    write_state(file, {5}, "LOAD_set4x");
    erase_quietly(file.handle(), {5});
}

// ---- files that are not as expected

TEST(EraseStates, AnEmptyFileIsAnError)
{
    KobFile file;
    const Erased erased = erase(file.handle(), {5}, 1);
    EXPECT_EQ(erased.status, -1);
    EXPECT_EQ(erased.err, "\nKOB ERROR - no KOB blocks found - error code = -1\n");
    EXPECT_THAT(erased.out, EndsWith("KOB INFO - erase all data after index: 5\n\n"));
}

TEST(EraseStates, AHandleThatIsNoneIsAnError)
{
    const Erased erased = erase(-1, {5});
    EXPECT_EQ(erased.status, -1);
    EXPECT_THAT(erased.err, EndsWith("\nKOB ERROR - no KOB blocks found - error code = -1\n"));
}

TEST(EraseStates, AFileWithoutHeaderIsLeftAsItIs)
{
    KobFile file;
    write_index(file);
    write_state(file, {7});
    const Erased erased = erase(file.handle(), {5}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.err, "\nKOB ERROR header not found\n");
    EXPECT_THAT(erased.out, EndsWith("KOB INFO - erase all data after index: 5\n\n"));
    EXPECT_TRUE(has_block(file.handle(), state_path(7)));
}

/// Replaces the text behind the header's signature.
void set_version(KobFile& file, const std::string& version)
{
    std::string text = "\x89KOB\r\n\x1a\n" + version;
    text.resize(64, ' ');
    const Hid header{H5Dopen2(file.handle(), "kobheader/kobheader", H5P_DEFAULT)};
    const Hid type{H5Dget_type(header)};
    ASSERT_GE(H5Dwrite(header, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, text.data()), 0);
}

TEST(EraseStates, AFileOfAnotherMajorVersionIsLeftAsItIs)
{
    for (const auto& [version, printed] : std::vector<std::pair<std::string, std::string>>{
             {"1 2 0", "1.2.0"}, {"3 0 0", "3.0.0"}, {"2 2", "2.2.-1"}, {"none", "-1.-1.-1"}}) {
        SCOPED_TRACE(version);
        ToolFile file;
        write_state(file, {7});
        set_version(file, version);
        const Erased erased = erase(file.handle(), {5}, 1);
        EXPECT_EQ(erased.status, 0);
        EXPECT_EQ(erased.err, "KOB ERROR - incompatible file - KOB version: " + printed + "\n");
        EXPECT_THAT(erased.out, Not(HasSubstr("compatibility check OK")));
        EXPECT_TRUE(has_block(file.handle(), state_path(7)));
        EXPECT_EQ(system_text(file, "mdate"), "20240301");
    }
}

TEST(EraseStates, AnotherReleaseOfTheSameMajorVersionIsTaken)
{
    ToolFile file;
    write_state(file, {7});
    set_version(file, "2 7 3");
    const Erased erased = erase(file.handle(), {5}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.err, "");
    EXPECT_THAT(erased.out, HasSubstr("KOB INFO - compatibility check OK - KOB version: 2.7.3\n"));
    EXPECT_FALSE(has_block(file.handle(), state_path(7)));
}

TEST(EraseStates, AHeaderWithoutItsTextEndsTheRun)
{
    ToolFile file;
    write_state(file, {7});
    ASSERT_GE(H5Ldelete(file.handle(), "kobheader/kobheader", H5P_DEFAULT), 0);
    const Erased erased = erase(file.handle(), {5});
    EXPECT_EQ(erased.status, -6002);
    EXPECT_THAT(erased.err, EndsWith("\nKOB ERROR - incompatible file - error code = -6002\n"));
    EXPECT_TRUE(has_block(file.handle(), state_path(7)));
}

TEST(EraseStates, OfSeveralHeadersTheFirstCounts)
{
    ToolFile file;
    ASSERT_GE(H5Ocopy(file.handle(), "kobheader", create_group(file.handle(), "second"), "kobheader", H5P_DEFAULT,
                      H5P_DEFAULT),
              0);
    const Erased erased = erase(file.handle(), {5});
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.out, "KOB WARNING multiple \"kobheader\"s!\n");
    EXPECT_EQ(erased.err, "");
}

TEST(EraseStates, AMissingIndexOrSystemBlockIsWarnedOf)
{
    KobFile file;
    write_header(file);
    write_state(file, {7});
    const Erased erased = erase(file.handle(), {5});
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.out, "");
    EXPECT_EQ(erased.err, "\nKOB WARNING \"indices\" block not found\n\nKOB WARNING \"system\" block not found\n");
    EXPECT_FALSE(has_block(file.handle(), state_path(7)));
}

TEST(EraseStates, OfSeveralIndexAndSystemBlocksTheFirstCounts)
{
    ToolFile file;
    for (const char* name : {"indices", "system"}) {
        const Hid copy = file.new_group(std::string{"second/"} + name);
        ASSERT_GE(H5Ocopy(file.handle(), (std::string{"constant/"} + name + "/kobblock").c_str(), copy, "kobblock",
                          H5P_DEFAULT, H5P_DEFAULT),
                  0);
    }
    const Erased erased = erase(file.handle(), {5});
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.err, "\nKOB WARNING multiple \"indices\" blocks\n\nKOB WARNING multiple \"system\" blocks\n");
    EXPECT_NE(system_text(file, "mdate"), "20240301");
    EXPECT_EQ(stored_text(open_group(file.handle(), "second/system/kobblock"), "mdate"), "20240301");
}

TEST(EraseStates, AnUnreadableIndexBlockEndsTheRun)
{
    ToolFile file;
    write_state(file, {7});
    ASSERT_GE(H5Adelete(open_group(file.handle(), "constant/indices/kobblock"), "nindex"), 0);
    const Erased erased = erase(file.handle(), {5});
    EXPECT_EQ(erased.status, -4002);
    EXPECT_THAT(erased.err, EndsWith("\nKOB ERROR reading \"indices\" block pass 0 - error code = -4002 \n"));
    EXPECT_TRUE(has_block(file.handle(), state_path(7)));
    EXPECT_EQ(system_text(file, "mdate"), "20240301");
}

TEST(EraseStates, ABlockWhoseIndexCannotBeReadIsKept)
{
    ToolFile file;
    for (const std::int32_t state : {7, 8, 9, 10, 11}) write_state(file, {state});
    const std::int32_t two = 2;
    ASSERT_GE(H5Adelete(open_group(file.handle(), state_path(7)), "nindex"), 0);
    set_int_attribute(open_group(file.handle(), state_path(8)), "nindex", two);
    set_int_attribute(open_group(file.handle(), state_path(9)), "nindex", -1);
    const Hid real_index = open_group(file.handle(), state_path(10));
    ASSERT_GE(H5Ldelete(real_index, "indexident", H5P_DEFAULT), 0);
    const double ten = 10;
    put_dataset(real_index, "indexident", H5T_IEEE_F64LE, {1}, H5T_NATIVE_DOUBLE, &ten);
    erase_quietly(file.handle(), {5});
    for (const int state : {7, 8, 9, 10}) EXPECT_TRUE(has_block(file.handle(), state_path(state))) << state;
    EXPECT_FALSE(has_block(file.handle(), state_path(11))) << "the run goes on behind them";
}

TEST(EraseStates, ASeriesWithoutValuesEndsTheRun)
{
    ToolFile file;
    SeriesBlock{.indexident = {1, 9}}.write(file);
    ASSERT_GE(H5Ldelete(open_group(file.handle(), series_path), "res", H5P_DEFAULT), 0);
    const Erased erased = erase(file.handle(), {5});
    EXPECT_EQ(erased.status, -1000);
    EXPECT_EQ(erased.err, "\nKOB ERROR reading \"multientityresults\" block - unknown datasize - error code = -1000\n"
                          " Block Path: \"" +
                              series_path + "\"\n");
    EXPECT_TRUE(has_block(file.handle(), series_path));
}

TEST(EraseStates, ASeriesWhoseSizesCannotBeReadEndsTheRun)
{
    ToolFile file;
    SeriesBlock{.indexident = {1, 9}}.write(file);
    ASSERT_GE(H5Adelete(open_group(file.handle(), series_path), "ncoo"), 0);
    const Erased erased = erase(file.handle(), {5});
    EXPECT_EQ(erased.status, -4002);
    EXPECT_THAT(erased.err, EndsWith("\nKOB ERROR reading \"multientityresults\" block pass 1 - error code = -4002 \n"
                                     " Block Path: \"" +
                                     series_path + "\"\n"));
}

TEST(EraseStates, ASeriesWhoseIndexCannotBeReadEndsTheRunAndWhatWasErasedStaysSo)
{
    ToolFile file;
    write_state(file, {7});
    SeriesBlock{.indexident = {1, 9}, .series = "A"}.write(file);
    SeriesBlock{.indexident = {1, 9}, .series = "B"}.write(file);
    const std::string a = "multistate/A/multientityresults/NODE/DISPLACEMENT/kobblock";
    const std::string b = "multistate/B/multientityresults/NODE/DISPLACEMENT/kobblock";
    set_int_attribute(open_group(file.handle(), b), "nstate", 1000000000); // a count is never trusted
    const Erased erased = erase(file.handle(), {5});
    EXPECT_EQ(erased.status, -6030);
    EXPECT_THAT(erased.err, EndsWith("\nKOB ERROR reading \"multientityresults\" block pass 0 - error code = -6030 \n"
                                     " Block Path: \"" +
                                     b + "\"\n"));
    EXPECT_FALSE(has_block(file.handle(), state_path(7)));
    EXPECT_EQ(stored_ints(open_group(file.handle(), a), "indexident"), (std::vector<std::int64_t>{1}));
    EXPECT_EQ(stored_ints(open_group(file.handle(), b), "indexident"), (std::vector<std::int64_t>{1, 9}));
}

TEST(EraseStates, ASeriesWhoseValuesCannotBeReadStays)
{
    ToolFile file;
    SeriesBlock{.indexident = {1, 9}}.write(file);
    ASSERT_GE(H5Ldelete(open_group(file.handle(), series_path), "entid", H5P_DEFAULT), 0);
    const Erased erased = erase(file.handle(), {5});
    EXPECT_EQ(erased.status, -6002);
    EXPECT_THAT(erased.err, EndsWith("\nKOB ERROR reading \"multientityresults\" block pass 2 - error code = -6002 \n"
                                     " Block Path: \"" +
                                     series_path + "\"\n"));
    EXPECT_TRUE(has_block(file.handle(), series_path));
}

TEST(EraseStates, AReadOnlyFileEndsTheRunAtTheStamp)
{
    ToolFile file;
    write_state(file, {7});
    file.reopen(read_only);
    const Erased erased = erase(file.handle(), {5}, 1);
    EXPECT_LT(erased.status, 0);
    EXPECT_NE(erased.err, "");
    EXPECT_THAT(erased.out, EndsWith("compatibility check OK - KOB version: 2.2.16\n"));
    EXPECT_TRUE(has_block(file.handle(), state_path(7)));
}

TEST(EraseStates, AFailedDeletionIsReportedAndDoesNotStopTheRun)
{
    KobFile file;
    write_header(file);
    write_index(file); // no system block: nothing to stamp
    for (const std::int32_t state : {7, 8}) write_state(file, {state});
    file.reopen(read_only);
    const Erased erased = erase(file.handle(), {5}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.err, "\nKOB WARNING \"system\" block not found\n"
                          " erase of block \"" +
                              state_path(7) + "\" failed\n erase of block \"" + state_path(8) + "\" failed\n");
    EXPECT_THAT(erased.out, HasSubstr("KOB INFO - 0 singlestate blocks deleted\n"));
}

/// Sets a byte of an object's header behind HDF5's back.
void damage_header(KobFile& file, const std::string& object, std::streamoff offset, char byte)
{
    file.close();
    haddr_t address = 0;
    {
        const Hid damaged = open_file(file.path());
        H5O_info2_t info{};
        ASSERT_GE(H5Oget_info_by_name3(damaged, object.c_str(), &info, H5O_INFO_BASIC, H5P_DEFAULT), 0);
        ASSERT_EQ(info.rc, 1U);
        ASSERT_GE(H5VLnative_token_to_addr(damaged, info.token, &address), 0);
    }
    std::fstream bytes{file.path(), std::ios::binary | std::ios::in | std::ios::out};
    bytes.seekp(static_cast<std::streamoff>(address) + offset);
    bytes.put(byte);
    bytes.close();
    ASSERT_TRUE(bytes.good());
    file.reopen(update);
}

constexpr std::streamoff header_version = 0;
constexpr std::streamoff header_links = 4; // how many lead to the object; behind version and number of messages

TEST(EraseStates, BlocksWhoseEmptyGroupCannotGoAreErasedAllTheSame)
{
    for (const bool is_plain : {true, false}) {
        ToolFile file;
        for (const char* variable : {"DISPLACEMENT", "STRESS"}) write_state(file, {7}, variable);
        write_state(file, {8});
        ASSERT_NO_FATAL_FAILURE(damage_header(file, "results/singlestate", header_links, 0));
        if (!is_plain) {
            H5Lcreate_soft("nowhere", file.handle(), "zz", H5P_DEFAULT, H5P_DEFAULT);
        }
        const Erased erased = erase(file.handle(), {5}, 2);
        EXPECT_EQ(erased.status, 0);
        EXPECT_EQ(erased.err, "");
        for (const std::string& path : {state_path(7), state_path(7, "STRESS"), state_path(8)}) {
            EXPECT_THAT(erased.out, HasSubstr("\"" + path + "\""));
        }
        EXPECT_THAT(erased.out, HasSubstr("KOB INFO - 3 singlestate blocks deleted\n"));
        EXPECT_THAT(link_names(open_group(file.handle(), "singlestate")), IsEmpty());
    }
}

TEST(EraseStates, NothingElseIsDeletedOnceADeletionFailed)
{
    // What a group held before the object that cannot go is free then, and must not be freed again.
    ToolFile file;
    for (const char* variable : {"DISPLACEMENT", "STRESS"}) write_state(file, {7}, variable);
    write_state(file, {8});
    SeriesBlock{.indexident = {5, 6}}.write(file);
    ASSERT_NO_FATAL_FAILURE(damage_header(file, "results/" + state_path(7, "STRESS") + "/res", header_version, 99));
    const Erased erased = erase(file.handle(), {5}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.err, " erase of block \"" + state_path(7) + "\" failed\n erase of block \"" +
                              state_path(7, "STRESS") + "\" failed\n erase of block \"" + state_path(8) +
                              "\" failed\n erase of block \"" + series_path + "\" failed\n");
    EXPECT_THAT(erased.out, HasSubstr("KOB INFO - 0 singlestate blocks deleted\n"));
    EXPECT_THAT(erased.out, HasSubstr("KOB INFO - 0 \"multientityresults\" blocks rewritten\n"));
}

// ---- names and links

TEST(EraseStates, ABlockThatTwoNamesReachIsHandledOnce)
{
    ToolFile file;
    for (const std::int32_t state : {3, 7}) write_state(file, {state});
    SeriesBlock{.indexident = {1, 9}}.write(file);
    file.reopen(update_root);
    ASSERT_TRUE(has_block(file.handle(), "post/" + series_path));
    ASSERT_TRUE(has_block(file.handle(), "results/" + series_path));
    const Erased erased = erase(file.handle(), {5}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.err, "");
    EXPECT_THAT(erased.out, AllOf(HasSubstr("KOB INFO - 1 singlestate blocks deleted\n"),
                                  HasSubstr("\nKOB INFO - 1 \"multientityresults\" blocks rewritten\n")));
    EXPECT_THAT(link_names(file.handle()), ::testing::ElementsAre("post", "results"));
    const Hid results = open_group(file.handle(), "results");
    EXPECT_FALSE(has_link(results, "singlestate/state000000000007"));
    EXPECT_TRUE(has_block(results, state_path(3)));
    EXPECT_EQ(stored_ints(open_group(results, series_path), "indexident"), (std::vector<std::int64_t>{1}));
    EXPECT_FALSE(has_link(file.handle(), "singlestate"));
    EXPECT_FALSE(has_link(file.handle(), "multistate"));
}

TEST(EraseStates, AGroupWithTwoNamesIsEmptiedUnderBoth)
{
    ToolFile file;
    for (const std::int32_t state : {3, 7}) write_state(file, {state});
    H5Lcreate_hard(file.handle(), "singlestate/state000000000007/entityresults", file.handle(), "zweitname",
                   H5P_DEFAULT, H5P_DEFAULT);
    erase_quietly(file.handle(), {5});
    EXPECT_TRUE(has_link(file.handle(), state_path(3)));
    EXPECT_FALSE(has_link(file.handle(), "singlestate/state000000000007"));
    H5G_info_t info{};
    EXPECT_GE(H5Gget_info(open_group(file.handle(), "zweitname"), &info), 0);
    EXPECT_EQ(info.nlinks, 0U);
}

herr_t collect_name(hid_t, const char* name, const H5L_info2_t*, void* names)
{
    static_cast<std::vector<std::string>*>(names)->emplace_back(name);
    return 0;
}

TEST(EraseStates, WhereTheGroupsCannotBeSeenAheadTheSameGoes)
{
    std::vector<Erased> erased;
    std::vector<std::vector<std::string>> left;
    for (const bool is_plain : {true, false}) {
        ToolFile file;
        for (const std::int32_t state : {2, 5, 6, 7, 8}) {
            for (const char* variable : {"DISPLACEMENT", "STRESS", "TEMPERATURE"}) write_state(file, {state}, variable);
        }
        write_state(file, {9, 9});
        write_state(file, {7}, "STRESS", 3);
        create_group(open_group(file.handle(), "singlestate/state000000000006"), "of somebody else");
        create_group(open_group(file.handle(), "singlestate/state000000000008/entityresults/NODE/STRESS"), "too");
        if (!is_plain) {
            H5Lcreate_soft("nowhere", file.handle(), "zz", H5P_DEFAULT, H5P_DEFAULT);
        }
        erased.push_back(erase(file.handle(), {5}, 2));
        EXPECT_EQ(erased.back().status, 0);
        H5Ldelete(file.handle(), "zz", H5P_DEFAULT);
        left.emplace_back();
        H5Lvisit2(file.handle(), H5_INDEX_NAME, H5_ITER_INC, collect_name, &left.back());
    }
    EXPECT_THAT(erased[0].out, HasSubstr("KOB INFO - 10 singlestate blocks deleted\n"));
    EXPECT_EQ(erased[0].out, erased[1].out);
    EXPECT_EQ(erased[0].err, erased[1].err);
    EXPECT_EQ(left[0], left[1]);
    EXPECT_THAT(left[0], ::testing::Contains("singlestate/state000000000006/of somebody else"));
}

TEST(EraseStates, BlocksInLinkedFilesAreKept)
{
    ToolFile run;
    for (const std::int32_t state : {3, 7, 8}) write_state(run, {state});
    SeriesBlock{.indexident = {1, 9}}.write(run);
    SeriesBlock{.indexident = {1, 2}, .series = "EARLY"}.write(run);
    run.reopen(update);

    KobFile master;
    const std::int64_t source = run.handle();
    const std::int32_t one = 1;
    const std::int32_t none = 0;
    std::int32_t status = 77;
    output_of([&] { KOB_CREATE_EXTLINKS(&source, master.address(), &one, nullptr, &none, &none, &status); });
    ASSERT_EQ(status, 0);
    run.close();
    const std::vector<std::string> before = block_paths(master.handle());
    ASSERT_THAT(before, Not(IsEmpty()));

    const Erased erased = erase(master.handle(), {5}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.err, "KOB WARNING - kob_erase_states - 3 blocks in linked files are kept\n");
    EXPECT_THAT(erased.out, AllOf(HasSubstr("KOB INFO - 0 singlestate blocks deleted\n"),
                                  HasSubstr("\nKOB INFO - 0 \"multientityresults\" blocks rewritten\n")));
    EXPECT_EQ(block_paths(master.handle()), before);
    EXPECT_EQ(stored_ints(open_group(master.handle(), series_path), "indexident"), (std::vector<std::int64_t>{1, 9}));
    EXPECT_EQ(erase(master.handle(), {12}).err, "") << "no line when none of them would go";
}

TEST(EraseStates, NothingStaysOpen)
{
    ToolFile file;
    for (const std::int32_t state : {3, 7}) write_state(file, {state});
    SeriesBlock{.indexident = {1, 9}}.write(file);
    file.reopen(update);
    const OpenIdentifiers before = OpenIdentifiers::now();
    erase_quietly(file.handle(), {5});
    EXPECT_EQ(OpenIdentifiers::now().added_since(before, {}), "");
}

TEST(EraseStates, ErasedStatesCanBeWrittenAgain)
{
    ToolFile file;
    for (const std::int32_t state : {3, 7}) write_state(file, {state});
    erase_quietly(file.handle(), {5});
    write_state(file, {7});
    EXPECT_TRUE(has_block(file.handle(), state_path(7)));
}

#if !defined(__SANITIZE_ADDRESS__)
TEST(EraseStatesDeathTest, WithoutMemoryTheProcessEnds)
{
    // An index of 16 GB that takes no space in the file: its chunks are allocated when they are written.
    ToolFile file;
    write_state(file, {7});
    const std::int32_t huge = std::numeric_limits<std::int32_t>::max();
    const Hid block = open_group(file.handle(), state_path(7));
    ASSERT_GE(H5Ldelete(block, "indexident", H5P_DEFAULT), 0);
    const Hid list{H5Pcreate(H5P_DATASET_CREATE)};
    const hsize_t chunk = 1024;
    ASSERT_GE(H5Pset_chunk(list, 1, &chunk), 0);
    put_dataset(block, "indexident", H5T_STD_I32LE, {static_cast<hsize_t>(huge)}, H5I_INVALID_HID, nullptr, list);
    set_int_attribute(block, "nindex", huge);
    const auto starve = [&] {
        const rlimit limit{1U << 30, 1U << 30};
        setrlimit(RLIMIT_AS, &limit);
        const std::int64_t group = file.handle();
        const std::int32_t nindex = 1, index = 5, verbose = 0;
        std::int32_t status = 77;
        KOB_ERASE_STATES(&group, &nindex, &index, &verbose, &status);
    };
    EXPECT_EXIT(starve(), ::testing::ExitedWithCode(1),
                "\n     \\*\\*\\* ERROR \\*\\*\\* MEMORY ALLOCATION IN kob_erase_states LINE [0-9]+\n");
}
#endif

} // namespace
