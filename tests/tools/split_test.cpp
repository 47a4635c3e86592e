// SPDX-License-Identifier: BSD-3-Clause
// kob split, and kob merge as its inverse: a model cut into domains and put together again is the model.

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "beam_file.hpp"
#include "hdf5_file.hpp"
#include "program.hpp"
#include "shown_blocks.hpp"
#include "split_partition.hpp"
#include "temp_file.hpp"

namespace {

using namespace kob_test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

const std::string elements_path = "constant/connectivities/HEXA8/kobblock";
const std::string nodes_path = "constant/entityresults/NODE/COORDINATE/kobblock";

std::vector<std::string> domain_files(const TempDir& folder, int count)
{
    std::vector<std::string> files;
    const std::size_t digits = std::to_string(count).size();
    for (int i = 1; i <= count; ++i) {
        const std::string number = std::to_string(i);
        files.push_back(folder / ("part_" + std::string(digits - number.size(), '0') + number + ".kob"));
    }
    return files;
}

std::vector<int> ids_of(const std::map<std::string, nlohmann::json>& blocks, const std::string& path, const char* name)
{
    const auto found = blocks.find(path);
    return found == blocks.end() ? std::vector<int>{} : dataset(found->second, name).get<std::vector<int>>();
}

/// Cuts, merges and compares with the whole.
void expect_same_after_merge(const BeamFile& beam, int domains, const std::vector<std::string>& more = {})
{
    const TempDir folder;
    std::vector<std::string> words{"split", beam.path(), std::to_string(domains), "--output", folder / "part.kob"};
    words.insert(words.end(), more.begin(), more.end());
    const Outcome split = run_program(words);
    ASSERT_EQ(split.exit_code, 0) << split.err;
    EXPECT_EQ(split.err, "");
    std::vector<std::string> merge{"merge", folder / "whole.kob", "--no-domain-number"};
    for (const std::string& file : domain_files(folder, domains)) merge.push_back(file);
    const Outcome merged = run_program(merge);
    ASSERT_EQ(merged.exit_code, 0) << merged.err;
    EXPECT_EQ(merged.err, "");
    const auto before = shown_blocks(beam.path());
    const auto after = shown_blocks(folder / "whole.kob");
    ASSERT_EQ(before.size(), after.size());
    for (const auto& [path, block] : before) {
        ASSERT_TRUE(after.contains(path)) << path;
        EXPECT_EQ(block, after.at(path)) << path;
    }
}

TEST(Split, AModelInFourDomainsMergedAgainIsTheModel) { expect_same_after_merge(BeamFile{{24, 6, 4, 3}}, 4); }

TEST(Split, SixtyFourDomainsMergedAgainAreTheModel) { expect_same_after_merge(BeamFile{{24, 6, 4, 2}}, 64); }

TEST(Split, EveryWayToCutMergesToTheModel)
{
    const BeamFile beam{{6, 3, 2, 2}};
    for (const char* way : {"order", "x", "y", "z"}) {
        SCOPED_TRACE(way);
        expect_same_after_merge(beam, 3, {"--by", way});
    }
}

TEST(Split, MoreDomainsThanElementsLeaveSomeEmpty) { expect_same_after_merge(BeamFile{{2, 1, 1, 1}}, 5); }

TEST(Split, OneDomainIsTheModel) { expect_same_after_merge(BeamFile{}, 1); }

TEST(Split, EachElementLiesInOneDomainAndItsNodesWithIt)
{
    const BeamFile beam; // 4 x 2 x 1
    const TempDir folder;
    ASSERT_EQ(run_program({"split", beam.path(), "2", "--by", "x", "--output", folder / "part.kob"}).exit_code, 0);
    const std::vector<std::string> files = domain_files(folder, 2);
    const auto left = shown_blocks(files[0]);
    const auto right = shown_blocks(files[1]);
    EXPECT_THAT(ids_of(left, elements_path, "idele"), ElementsAre(1001, 1002, 1005, 1006));
    EXPECT_THAT(ids_of(right, elements_path, "idele"), ElementsAre(1003, 1004, 1007, 1008));
    const std::vector<int> left_nodes = ids_of(left, nodes_path, "entid");
    const std::vector<int> right_nodes = ids_of(right, nodes_path, "entid");
    std::vector<int> shared;
    std::set_intersection(left_nodes.begin(), left_nodes.end(), right_nodes.begin(), right_nodes.end(),
                          std::back_inserter(shared));
    // The nodes in the middle, x = 5: every fifth from the third on.
    EXPECT_THAT(shared, ElementsAre(3, 8, 13, 18, 23, 28));
    EXPECT_EQ(left_nodes.size(), 18U);
    EXPECT_EQ(right_nodes.size(), 18U);
    // Results go with their entities.
    const std::string energy = "constant/entityresults/HEXA8/ENERGY/kobblock";
    EXPECT_EQ(ids_of(right, energy, "entid"), ids_of(right, elements_path, "idele"));
    EXPECT_EQ(dataset(right.at(energy), "res")[0][0], 1.0 / 1003);
    EXPECT_EQ(left.at("constant/system/kobblock"), right.at("constant/system/kobblock"));
}

TEST(Split, InOrderTheFirstElementsComeFirst)
{
    const BeamFile beam;
    const TempDir folder;
    ASSERT_EQ(run_program({"split", beam.path(), "3", "--output", folder / "part.kob"}).exit_code, 0);
    const std::vector<std::string> files = domain_files(folder, 3);
    EXPECT_THAT(ids_of(shown_blocks(files[0]), elements_path, "idele"), ElementsAre(1001, 1002, 1003));
    EXPECT_THAT(ids_of(shown_blocks(files[1]), elements_path, "idele"), ElementsAre(1004, 1005, 1006));
    EXPECT_THAT(ids_of(shown_blocks(files[2]), elements_path, "idele"), ElementsAre(1007, 1008));
}

TEST(Split, ANodeWithoutElementsGoesToTheFirstDomain)
{
    BeamFile beam;
    KobFile file{beam.path(), update};
    write_results(file,
                  {.variable = "FORCE", .ncoo = 1, .entid = {1, 30, 99}, .res = {1, 2, 3}, .zone = "", .zoneid = -1});
    file.close();
    const TempDir folder;
    ASSERT_EQ(run_program({"split", beam.path(), "2", "--by", "x", "--output", folder / "part.kob"}).exit_code, 0);
    const std::string path = "constant/entityresults/NODE/FORCE/kobblock";
    const std::vector<std::string> files = domain_files(folder, 2);
    EXPECT_THAT(ids_of(shown_blocks(files[0]), path, "entid"), ElementsAre(1, 99));
    EXPECT_THAT(ids_of(shown_blocks(files[1]), path, "entid"), ElementsAre(30));
}

TEST(Split, ResultsOfOtherEntitiesGoToEveryDomain)
{
    BeamFile beam;
    KobFile file{beam.path(), update};
    write_results(
        file,
        {.variable = "MASS", .ncoo = 1, .entid = {1, 2}, .res = {5, 6}, .etyp = "PART", .zone = "", .zoneid = -1});
    file.close();
    expect_same_after_merge(beam, 3);
}

TEST(Split, KindsThatCannotBeCutAreSaid)
{
    BeamFile beam;
    KobFile file{beam.path(), update};
    const Hid block{file.new_group("constant/strange/kobblock")};
    const std::int32_t key = 777;
    put_attribute(block, "block", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &key);
    file.close();
    const TempDir folder;
    const Outcome split = run_program({"split", beam.path(), "2", "--output", folder / "part.kob"});
    EXPECT_EQ(split.exit_code, 0);
    EXPECT_EQ(split.err, "kob split: 1 blocks of the kind 777 are left out: this kind cannot be cut\n");
    const Outcome json = run_program({"split", beam.path(), "2", "--json", "--dry-run"});
    EXPECT_EQ(json.json()["left_out"], nlohmann::json::parse(R"([{"key": 777, "blocks": 1}])"));
}

TEST(Split, ADryRunWritesNothing)
{
    const BeamFile beam;
    const TempDir folder;
    const Outcome split = run_program({"split", beam.path(), "2", "--output", folder / "part.kob", "--dry-run"});
    EXPECT_EQ(split.exit_code, 0);
    EXPECT_EQ(split.out, "would write " + folder / "part_1.kob" + "\nwould write " + folder / "part_2.kob" + "\n");
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(Split, TheNamesAreAsLongAsTheLastOne)
{
    const BeamFile beam;
    const TempDir folder;
    const Outcome split = run_program({"split", beam.path(), "10", "--output", folder / "part.kob", "--json"});
    EXPECT_EQ(split.exit_code, 0);
    EXPECT_EQ(split.json()["domains"][0]["file"], folder / "part_01.kob");
    EXPECT_EQ(split.json()["domains"][9]["file"], folder / "part_10.kob");
    EXPECT_TRUE(fs::exists(folder / "part_10.kob"));
}

TEST(Split, AnExistingFileNeedsForce)
{
    const BeamFile beam;
    const TempDir folder;
    std::ofstream{folder / "part_2.kob"} << "mine";
    const Outcome refused = run_program({"split", beam.path(), "2", "--output", folder / "part.kob"});
    EXPECT_EQ(refused.exit_code, 2);
    EXPECT_THAT(refused.err, HasSubstr("--force"));
    EXPECT_EQ(bytes_of(folder / "part_2.kob"), "mine");
    EXPECT_FALSE(fs::exists(folder / "part_1.kob"));
    EXPECT_EQ(run_program({"split", beam.path(), "2", "--output", folder / "part.kob", "--force", "--quiet"}).out, "");
    EXPECT_NE(bytes_of(folder / "part_2.kob"), "mine");
    EXPECT_EQ(std::distance(fs::directory_iterator{folder.path()}, fs::directory_iterator{}), 2) << "no drafts stay";
}

TEST(Split, WhatCannotBeCutIsRefused)
{
    KobFile empty;
    write_header(empty);
    write_index(empty);
    empty.close();
    const Outcome no_elements = run_program({"split", empty.path(), "2"});
    EXPECT_EQ(no_elements.exit_code, 3);
    EXPECT_THAT(no_elements.err, HasSubstr("no elements"));
    const BeamFile beam;
    EXPECT_EQ(run_program({"split", beam.path(), "0"}).exit_code, 2);
    EXPECT_EQ(run_program({"split", beam.path(), "2", "--by", "w"}).exit_code, 2);
    EXPECT_EQ(run_program({"split", beam.path() + ".missing", "2"}).exit_code, 3);
}

TEST(Partition, EqualPartsAreAlongTheKeys)
{
    using kob::program::equal_parts;
    EXPECT_THAT(equal_parts({3, 1, 2, 0}, 2), ElementsAre(1, 0, 1, 0));
    EXPECT_THAT(equal_parts({5, 5, 5}, 3), ElementsAre(0, 1, 2)) << "equal keys keep their order";
    EXPECT_THAT(equal_parts({}, 3), IsEmpty());
    EXPECT_THAT(equal_parts({1}, 3), ElementsAre(0));
}

} // namespace
