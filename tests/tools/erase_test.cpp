// SPDX-License-Identifier: BSD-3-Clause
// kob erase: the file is changed as a whole or not at all.

#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include "beam_file.hpp"
#include "hdf5_file.hpp"
#include "program.hpp"
#include "sample_file.hpp"
#include "series_block.hpp"
#include "shown_blocks.hpp"
#include "temp_file.hpp"

namespace {

using namespace kob_test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;
namespace fs = std::filesystem;

const std::string state1 = "singlestate/state000000000001/entityresults/NODE/DISPLACEMENT/kobblock";
const std::string state2 = "singlestate/state000000000002/entityresults/NODE/DISPLACEMENT/kobblock";
const std::string series_path = "multistate/RUN/multientityresults/NODE/DISPLACEMENT/kobblock";

/// The states 1 and 2, and a series of the states 1 to 3.
class RunFile : public KobFile {
public:
    explicit RunFile(std::int32_t nodes = 3)
    {
        write_header(*this);
        write_system(*this);
        write_index(*this);
        std::vector<std::int32_t> ids;
        std::vector<double> values;
        for (std::int32_t i = 1; i <= nodes; ++i) {
            ids.push_back(i);
            values.push_back(i / 8.0);
            values.push_back(-i);
        }
        for (const std::int32_t state : {1, 2})
            write_results(*this, {.entid = ids,
                                  .res = values,
                                  .indexident = {state},
                                  .indexval = {0.5 * state},
                                  .zone = "",
                                  .zoneid = -1});
        SeriesBlock{.indexident = {1, 2, 3}}.write(*this);
        close();
    }

    std::vector<std::string> paths()
    {
        reopen(read_only);
        const std::vector<std::string> result = block_paths(handle());
        close();
        return result;
    }
};

std::vector<std::string> names_in(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator{folder}) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::int64_t> states_of_series(const std::string& path)
{
    const Hid file = open_file(path);
    return stored_ints(open_group(file, "post/" + series_path), "indexident");
}

TEST(Erase, TheFileIsReplacedWhenAllWentWell)
{
    RunFile run;
    const Outcome erased = run_program({"erase", run.path(), "--after", "1"});
    EXPECT_EQ(erased.exit_code, 0) << erased.err;
    EXPECT_EQ(erased.err, "");
    EXPECT_THAT(erased.out, StartsWith(run.path() + ": 1 blocks deleted, 1 series cut, 4 unchanged; "));
    EXPECT_EQ(std::count(erased.out.begin(), erased.out.end(), '\n'), 1) << "no progress bar in a file";
    const auto paths = run.paths();
    EXPECT_THAT(paths, ::testing::Contains(state1));
    EXPECT_THAT(paths, ::testing::Not(::testing::Contains(state2)));
    EXPECT_THAT(states_of_series(run.path()), ElementsAre(1));
    EXPECT_THAT(names_in(fs::path{run.path()}.parent_path()), ElementsAre("run.kob"));
}

TEST(Erase, AnOutputLeavesTheFileAsItIs)
{
    RunFile run;
    const std::string before = bytes_of(run.path());
    const std::string out = (fs::path{run.path()}.parent_path() / "short.kob").string();
    EXPECT_EQ(run_program({"erase", run.path(), "--after", "1", "--output", out}).exit_code, 0);
    EXPECT_EQ(bytes_of(run.path()), before);
    EXPECT_THAT(states_of_series(out), ElementsAre(1));
}

TEST(Erase, AnExistingOutputNeedsForce)
{
    RunFile run;
    const TempFile other{"short.kob"};
    std::ofstream{other.path()} << "mine";
    const Outcome refused = run_program({"erase", run.path(), "--after", "1", "--output", other.path()});
    EXPECT_EQ(refused.exit_code, 2);
    EXPECT_EQ(refused.err, "kob erase: \"" + other.path() + "\" exists; --force replaces it\n");
    EXPECT_EQ(bytes_of(other.path()), "mine");
    EXPECT_EQ(run_program({"erase", run.path(), "--after", "1", "--output", other.path(), "--force"}).exit_code, 0);
    EXPECT_THAT(states_of_series(other.path()), ElementsAre(1));
}

TEST(Erase, InPlaceTheFileItselfIsChanged)
{
    RunFile run;
    const std::string second = run.path() + ".same";
    fs::create_hard_link(run.path(), second);
    EXPECT_EQ(run_program({"erase", run.path(), "--in-place", "--after", "1"}).exit_code, 0);
    EXPECT_TRUE(fs::equivalent(run.path(), second));
    EXPECT_THAT(states_of_series(second), ElementsAre(1));
    // Without it a new file takes the name.
    EXPECT_EQ(run_program({"erase", run.path(), "--after", "0"}).exit_code, 0);
    EXPECT_FALSE(fs::equivalent(run.path(), second));
}

TEST(Erase, ANameThatIsALinkStaysOne)
{
    RunFile run;
    const TempDir folder;
    const std::string name = folder / "latest.kob";
    fs::create_symlink(run.path(), name);
    EXPECT_EQ(run_program({"erase", name, "--after", "1"}).exit_code, 0);
    EXPECT_TRUE(fs::is_symlink(name));
    EXPECT_THAT(states_of_series(run.path()), ElementsAre(1));
}

TEST(Erase, RightsAreKept)
{
    RunFile run;
    fs::permissions(run.path(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(run_program({"erase", run.path(), "--after", "1"}).exit_code, 0);
    EXPECT_EQ(fs::status(run.path()).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST(Erase, ADryRunSaysAllAndChangesNothing)
{
    RunFile run;
    const std::string before = bytes_of(run.path());
    for (const char* way : {"--quiet", "--in-place"}) {
        const Outcome dry = run_program({"erase", run.path(), "--dry-run", way, "--after", "1"});
        EXPECT_EQ(dry.exit_code, 0);
        if (std::string{way} == "--quiet") {
            EXPECT_EQ(dry.out, "");
        } else {
            EXPECT_THAT(dry.out, StartsWith("delete " + state2 + "\ncut " + series_path + " from 3 to 1 states\n" +
                                            run.path() + ": 1 blocks deleted, 1 series cut, 4 unchanged; "));
        }
        EXPECT_EQ(bytes_of(run.path()), before);
        EXPECT_THAT(names_in(fs::path{run.path()}.parent_path()), ElementsAre("run.kob"));
    }
}

TEST(Erase, AsJson)
{
    RunFile run;
    const auto before = static_cast<std::int64_t>(fs::file_size(run.path()));
    const nlohmann::json json = run_program({"erase", run.path(), "--json", "--after", "1"}).json();
    EXPECT_EQ(json["file"], run.path());
    EXPECT_EQ(json["after"], nlohmann::json::parse("[1]"));
    EXPECT_EQ(json["deleted"], nlohmann::json::array({state2}));
    EXPECT_EQ(json["cut"][0]["path"], series_path);
    EXPECT_EQ(json["cut"][0]["states_before"], 3);
    EXPECT_EQ(json["cut"][0]["states"], 1);
    EXPECT_EQ(json["unchanged"], 4);
    EXPECT_EQ(json["dry_run"], false);
    EXPECT_EQ(json["bytes_before"], before);
    EXPECT_EQ(json["bytes"], static_cast<std::int64_t>(fs::file_size(run.path())));
}

TEST(Erase, SeveralAndNegativeIdentifiersAreTaken)
{
    RunFile run;
    EXPECT_EQ(run_program({"erase", run.path(), "--json", "--after", "1", "2"}).json()["after"],
              nlohmann::json::parse("[1, 2]"));
    EXPECT_EQ(run_program({"erase", run.path(), "--json", "--after=1,2"}).json()["after"],
              nlohmann::json::parse("[1, 2]"));
    EXPECT_EQ(run_program({"erase", run.path(), "--json", "--after", "-1"}).json()["deleted"].size(), 3U);
}

TEST(Erase, VerboseShowsTheLibrarysReport)
{
    RunFile run;
    EXPECT_THAT(run_program({"erase", run.path(), "--verbose", "--after", "1"}).out,
                HasSubstr("KOB INFO - 1 singlestate blocks deleted\n"));
}

TEST(Erase, AGroupInsideTheFile)
{
    RunFile run;
    const Outcome erased = run_program({"erase", run.path() + "/results", "--after", "1"});
    EXPECT_EQ(erased.exit_code, 0) << erased.err;
    EXPECT_THAT(states_of_series(run.path()), ElementsAre(1));
}

TEST(Erase, WhatCannotBeErasedLeavesTheFileAsItWas)
{
    RunFile run;
    {
        const Hid file = open_file(run.path(), H5F_ACC_RDWR);
        const Hid block = open_group(file, "post/" + series_path);
        ASSERT_GE(H5Ldelete(block, "res", H5P_DEFAULT), 0);
    }
    const std::string before = bytes_of(run.path());
    const Outcome failed = run_program({"erase", run.path(), "--after", "1"});
    EXPECT_EQ(failed.exit_code, 3);
    EXPECT_THAT(failed.err, HasSubstr("kob erase: the states cannot be erased (status -1000)\n"));
    EXPECT_EQ(bytes_of(run.path()), before);
    EXPECT_THAT(names_in(fs::path{run.path()}.parent_path()), ElementsAre("run.kob"));
}

TEST(Erase, FilesThatAreNoneAreRefused)
{
    const TempFile file;
    EXPECT_EQ(run_program({"erase", file.path(), "--after", "1"}).exit_code, 3);
    std::ofstream{file.path()} << "no result";
    const Outcome refused = run_program({"erase", file.path(), "--after", "1"});
    EXPECT_EQ(refused.exit_code, 3);
    EXPECT_EQ(refused.err, "kob erase: " + file.path() + ": is not an HDF5 file\n");
    EXPECT_EQ(bytes_of(file.path()), "no result");
    KobFile bare;
    write_index(bare);
    bare.close();
    const Outcome no_header = run_program({"erase", bare.path(), "--after", "1"});
    EXPECT_EQ(no_header.exit_code, 3) << "the library would say so and call it done";
    EXPECT_THAT(no_header.err, HasSubstr("has no file header"));
}

TEST(Erase, OptionsThatContradictAreRefused)
{
    RunFile run;
    EXPECT_EQ(run_program({"erase", run.path()}).exit_code, 2);
    EXPECT_EQ(run_program({"erase", run.path(), "--after", "x"}).exit_code, 2);
    EXPECT_EQ(run_program({"erase", run.path(), "--in-place", "--repack", "--after", "1"}).exit_code, 2);
    EXPECT_EQ(run_program({"erase", run.path(), "--in-place", "--output", "o.kob", "--after", "1"}).exit_code, 2);
}

bool can_repack() { return std::system("h5repack --version > /dev/null 2>&1") == 0; }

TEST(Erase, RepackGivesTheSpaceBack)
{
    if (!can_repack()) GTEST_SKIP() << "HDF5's h5repack is not in PATH";
    RunFile run{20000}; // 16 bytes for each node and state
    KobFile more{run.path(), update};
    write_results(more, {.variable = "LATER", .zone = "", .zoneid = -1}); // behind what will be erased
    more.close();
    const std::string out = (fs::path{run.path()}.parent_path() / "short.kob").string();
    const std::vector<std::string> whole{state1, "constant/entityresults/NODE/LATER/kobblock"};
    std::vector<nlohmann::json> before;
    for (const std::string& path : whole) before.push_back(shown_block(run.path(), path));
    const Outcome erased = run_program({"erase", run.path(), "--repack", "--output", out, "--json", "--after", "1"});
    ASSERT_EQ(erased.exit_code, 0) << erased.err;
    EXPECT_LT(fs::file_size(out) + 20000 * 16, fs::file_size(run.path()));
    EXPECT_EQ(erased.json()["bytes"], static_cast<std::int64_t>(fs::file_size(out)));
    for (std::size_t i = 0; i < whole.size(); ++i) EXPECT_EQ(shown_block(out, whole[i]), before[i]) << whole[i];
    EXPECT_THAT(states_of_series(out), ElementsAre(1));
    EXPECT_THAT(names_in(fs::path{run.path()}.parent_path()), ElementsAre("run.kob", "short.kob"));
}

TEST(Erase, WithoutTheRepackingProgramTheFileStaysAsItWas)
{
    RunFile run;
    const std::string before = bytes_of(run.path());
    ASSERT_EQ(setenv("KOB_H5REPACK", "/nowhere/h5repack", 1), 0);
    const Outcome missing = run_program({"erase", run.path(), "--repack", "--after", "1"});
    ASSERT_EQ(setenv("KOB_H5REPACK", "false", 1), 0);
    const Outcome failing = run_program({"erase", run.path(), "--repack", "--after", "1"});
    unsetenv("KOB_H5REPACK");
    EXPECT_EQ(missing.exit_code, 3);
    EXPECT_THAT(missing.err, HasSubstr("KOB_H5REPACK"));
    EXPECT_EQ(failing.exit_code, 3);
    EXPECT_EQ(failing.err, "kob erase: \"false\" failed\n");
    EXPECT_EQ(bytes_of(run.path()), before);
    EXPECT_THAT(names_in(fs::path{run.path()}.parent_path()), ElementsAre("run.kob"));
}

} // namespace
