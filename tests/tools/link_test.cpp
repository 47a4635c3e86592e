// SPDX-License-Identifier: BSD-3-Clause
// kob link: master files.

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "beam_file.hpp"
#include "program.hpp"
#include "sample_file.hpp"
#include "series_block.hpp"
#include "shown_blocks.hpp"
#include "temp_file.hpp"

namespace {

using namespace kob_test;
using ::testing::Contains;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

std::vector<std::string> paths_in(const std::string& path)
{
    KobFile file{path, read_only};
    return block_paths(file.handle());
}

class LinkVerb : public ::testing::Test {
protected:
    LinkVerb()
    {
        fs::create_directory(folder_ / "parts");
        for (const char* name : {"a.kob", "b.kob"}) {
            const BeamFile beam;
            fs::copy_file(beam.path(), folder_ / ("parts/" + std::string{name}));
        }
    }
    TempDir folder_;
    std::string a_ = folder_ / "parts/a.kob";
    std::string b_ = folder_ / "parts/b.kob";
    std::string master_ = folder_ / "master.kob";
};

TEST_F(LinkVerb, AMasterFileShowsItsSource)
{
    const Outcome linked = run_program({"link", master_, a_});
    EXPECT_EQ(linked.exit_code, 0) << linked.err;
    EXPECT_EQ(linked.err, "");
    EXPECT_THAT(linked.out, HasSubstr("link constant -> " + a_ + "\n"));
    EXPECT_EQ(paths_in(master_), paths_in(a_));
    EXPECT_EQ(shown_blocks(master_), shown_blocks(a_));
}

TEST_F(LinkVerb, SourcesMayHaveGroupsOfTheirOwn)
{
    EXPECT_EQ(run_program({"link", master_, a_, b_, "--separate"}).exit_code, 0);
    const auto paths = paths_in(master_);
    EXPECT_THAT(paths, Contains("domain_1/constant/system/kobblock"));
    EXPECT_THAT(paths, Contains("domain_2/constant/system/kobblock"));
    EXPECT_THAT(paths, Contains("kobheader")) << "the master's own";
    EXPECT_EQ(run_program({"link", master_, a_, b_, "--separate", "--group", "p", "--force"}).exit_code, 0);
    EXPECT_THAT(paths_in(master_), Contains("p2/constant/system/kobblock"));
}

TEST_F(LinkVerb, AGroupForAll)
{
    EXPECT_EQ(run_program({"link", master_, a_, "--group", "run/all"}).exit_code, 0);
    EXPECT_THAT(paths_in(master_), Contains("run/all/constant/system/kobblock"));
}

TEST_F(LinkVerb, NamesInSeveralSourcesAreRefused)
{
    const Outcome refused = run_program({"link", master_, a_, b_});
    EXPECT_EQ(refused.exit_code, 2);
    EXPECT_THAT(refused.err, HasSubstr("--separate"));
    EXPECT_FALSE(fs::exists(master_));
    const Outcome linked = run_program({"link", master_, a_, b_, "--first-wins", "--json"});
    EXPECT_EQ(linked.exit_code, 0) << linked.err;
    EXPECT_EQ(paths_in(master_), paths_in(a_));
    int left_out = 0;
    const nlohmann::json json = linked.json();
    for (const auto& link : json["links"]) left_out += link["linked"] == false ? 1 : 0;
    EXPECT_EQ(left_out, 3) << "constant, kobheader, singlestate of the second";
}

TEST_F(LinkVerb, TheFolderCanBeMoved)
{
    ASSERT_EQ(run_program({"link", master_, a_}).exit_code, 0);
    const auto paths = paths_in(master_);
    const TempDir elsewhere;
    fs::rename(folder_.path(), elsewhere.path() / "moved");
    EXPECT_EQ(paths_in(elsewhere / "moved/master.kob"), paths);
    fs::rename(elsewhere.path() / "moved", folder_.path());
}

TEST_F(LinkVerb, AbsoluteNamesStayWhereTheyAre)
{
    ASSERT_EQ(run_program({"link", master_, a_, "--absolute"}).exit_code, 0);
    const TempDir elsewhere;
    fs::rename(master_, elsewhere / "master.kob");
    EXPECT_EQ(paths_in(elsewhere / "master.kob"), paths_in(a_));
}

TEST_F(LinkVerb, AnExistingTargetNeedsForce)
{
    std::ofstream{master_} << "mine";
    EXPECT_EQ(run_program({"link", master_, a_}).exit_code, 2);
    EXPECT_EQ(bytes_of(master_), "mine");
    EXPECT_EQ(run_program({"link", master_, a_, "--force", "--quiet"}).out, "");
    EXPECT_EQ(paths_in(master_), paths_in(a_));
}

TEST_F(LinkVerb, ADryRunMakesNothing)
{
    const Outcome dry = run_program({"link", master_, a_, "--dry-run"});
    EXPECT_EQ(dry.exit_code, 0);
    EXPECT_THAT(dry.out, HasSubstr("link constant -> " + a_ + "\n"));
    EXPECT_FALSE(fs::exists(master_));
}

TEST_F(LinkVerb, AMissingSourceLeavesTheTargetAsItWas)
{
    std::ofstream{master_} << "mine";
    const Outcome failed = run_program({"link", master_, a_, folder_ / "missing.kob", "--separate", "--force"});
    EXPECT_EQ(failed.exit_code, 3);
    EXPECT_EQ(bytes_of(master_), "mine");
    EXPECT_EQ(run_program({"link", a_, a_, "--force"}).exit_code, 2);
    EXPECT_EQ(run_program({"link", master_}).exit_code, 2);
}

} // namespace
