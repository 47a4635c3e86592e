// SPDX-License-Identifier: BSD-3-Clause
// kob merge of files in the older layout, and of files that are not all in one layout.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "file_contents.hpp"
#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "older_file.hpp"
#include "program.hpp"
#include "sample_file.hpp"
#include "shown_blocks.hpp"
#include "temp_file.hpp"

namespace {

using namespace kob_test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
namespace fs = std::filesystem;

constexpr std::int32_t domain_count = 3; // of these the last one holds no elements

class OlderMergeVerb : public ::testing::Test {
protected:
    OlderMergeVerb()
    {
        for (std::int32_t i = 0; i < domain_count; ++i) {
            const KobFile file{domains_[static_cast<std::size_t>(i)], create_results};
            write_older_model(file.handle(), model_, model_.domain(i, domain_count));
        }
    }
    Outcome merge(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> words{"merge", target_};
        words.insert(words.end(), domains_.begin(), domains_.end());
        words.insert(words.end(), more.begin(), more.end());
        return run_program(words);
    }
    /// The model in one file, under another name than any domain.
    std::string whole() const
    {
        const KobFile file{folder_ / "whole.kob", create_results};
        write_older_model(file.handle(), model_, model_.whole());
        return file.path();
    }
    void expect_nothing_made() const
    {
        for (const auto& entry : fs::directory_iterator{folder_.path()})
            EXPECT_THAT(entry.path().filename().string(), Not(HasSubstr("merged"))) << "no target and no draft";
    }

    const BarModel model_{40};
    TempDir folder_;
    std::vector<std::string> domains_{folder_ / "part_1.kob", folder_ / "part_2.kob", folder_ / "part_3.kob"};
    std::string target_ = folder_ / "merged.kob";
};

FileContents contents_of(const std::string& path)
{
    const Hid file = open_file(path);
    return FileContents{open_group(file, "post")};
}

/// A table's lines, each with one blank between its words.
std::vector<std::string> joined_lines(const Outcome& outcome)
{
    std::vector<std::string> lines;
    for (const std::string& line : outcome.lines()) {
        std::string joined;
        for (const std::string& word : words(line)) joined += (joined.empty() ? "" : " ") + word;
        lines.push_back(joined);
    }
    return lines;
}

TEST_F(OlderMergeVerb, DomainsBecomeTheWholeModelInTheirOwnLayout)
{
    const Outcome merged = merge({"--no-domain-number"});
    EXPECT_EQ(merged.exit_code, 0) << merged.err;
    EXPECT_EQ(merged.err, "");
    EXPECT_EQ(merged.lines().size(), 1U) << merged.out;

    const std::string expected = whole();
    EXPECT_EQ(FileContents::differences(contents_of(expected).without("/kobheader"),
                                        contents_of(target_).without("/kobheader")),
              "");
    EXPECT_EQ(shown_blocks(expected), shown_blocks(target_));
    EXPECT_EQ(run_program({"info", "--json", target_}).json()["header"],
              nlohmann::json::parse(R"({"status": 0, "version": "1 2 0"})"));
}

TEST_F(OlderMergeVerb, EachElementAndNodeGetsItsDomain)
{
    ASSERT_EQ(merge({"--quiet"}).out, "");
    const auto blocks = shown_blocks(target_);
    const auto& elements = blocks.at("constant/entityresults/BAR/DMPComputeDomainNumber/kobblock");
    const auto& nodes = blocks.at("constant/entityresults/NODE/DMPComputeDomainNumber/kobblock");
    EXPECT_TRUE(blocks.contains("constant/variables/DMPComputeDomainNumber/kobblock"));
    for (int place = 0; place < 40; ++place) { // the first half of the row is the first domain
        const auto ids = dataset(elements, "entid").get<std::vector<int>>();
        const auto found = std::find(ids.begin(), ids.end(), model_.element_id(place)) - ids.begin();
        EXPECT_EQ(dataset(elements, "res").at(static_cast<std::size_t>(found)).at(0), place < 20 ? 1 : 2) << place;
    }
    const auto ids = dataset(nodes, "entid").get<std::vector<int>>();
    ASSERT_EQ(ids.size(), 41U);
    const auto shared = std::find(ids.begin(), ids.end(), model_.node_id(20)) - ids.begin();
    EXPECT_EQ(dataset(nodes, "res").at(static_cast<std::size_t>(shared)).at(0), 1) << "the first domain that has it";
}

TEST_F(OlderMergeVerb, ADryRunSaysWhatHappensToEachKind)
{
    const Outcome dry = merge({"--dry-run"});
    EXPECT_EQ(dry.exit_code, 0) << dry.err;
    EXPECT_EQ(dry.err, "");
    // Collectors and lists are in each file, also in the one without elements.
    EXPECT_THAT(
        joined_lines(dry),
        ElementsAre("KEY KIND BLOCKS FILES PATHS WHAT HAPPENS", "10 system 3 3 1 copied from the first file",
                    "20 indices 3 3 1 copied from the first file", "30 variables 6 3 2 copied from the first file",
                    "40 text 3 3 1 copied from the first file", "100 parts 3 3 1 merged", "200 attributes 3 3 1 merged",
                    "300 connectivities 6 3 2 merged", "400 collector 3 3 1 merged", "1000 entityresults 21 3 7 merged",
                    "1001 entityresults 12 3 4 merged", "1050 multientityresults 3 3 1 merged",
                    "1051 multientityresults 3 3 1 merged", "2100 activflags 6 3 2 merged",
                    "10000 densematrix 3 3 1 copied block by block", "10001 densematrix 3 3 1 copied block by block",
                    "10100 triangularmatrix 3 3 1 copied block by block"));
    expect_nothing_made();
}

TEST_F(OlderMergeVerb, KindsThatCannotBeMergedAreSaid)
{
    {
        const KobFile file{domains_[1], update};
        write_older_kinds_left_out(file.handle());
        // kinds that only the current layout has, put into a group of the older one
        for (const std::int32_t key : {250, 500}) {
            const Hid header{file.new_group("constant/key" + std::to_string(key) + "/NODE/kobblock/header")};
            put_attribute(header, "block", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &key);
        }
    }
    const Outcome merged = merge();
    EXPECT_EQ(merged.exit_code, 0);
    EXPECT_THAT(
        merged.error_lines(),
        ElementsAre("kob merge: 1 blocks of the kind \"identifiers\" are left out: this kind cannot be merged",
                    "kob merge: 1 blocks of the kind \"properties\" are left out: this kind cannot be merged",
                    "kob merge: 1 blocks of the kind \"multielementresults\" are left out: this kind cannot be merged",
                    "kob merge: 1 blocks of the kind \"multiactivflags\" are left out: this kind cannot be merged",
                    "kob merge: 1 blocks of the kind \"sparsematrix\" are left out: this kind cannot be merged"));
    const nlohmann::json kinds = merge({"--json", "--force"}).json()["kinds"];
    EXPECT_THAT(kinds, Contains(nlohmann::json::parse(R"({"key": 30, "kind": "variables", "blocks": 6, "files": 3,
                                                          "paths": 2, "treatment": "copied from the first file"})")));
    EXPECT_THAT(kinds, Contains(nlohmann::json::parse(R"({"key": 250, "kind": "identifiers", "blocks": 1, "files": 1,
                                                          "paths": 1, "treatment": "left out"})")));
    EXPECT_FALSE(shown_blocks(target_).contains("constant/key250/NODE/kobblock"));
}

TEST_F(OlderMergeVerb, ExponentsAndCompressionAreUsed)
{
    std::ofstream{folder_ / "exponents.txt"} << "PRESSURE 3\n";
    ASSERT_EQ(merge({"--exponents", folder_ / "exponents.txt", "--deflate", "6", "--shuffle"}).exit_code, 0);
    const Hid file = open_file(target_);
    const auto filters = [&](const std::string& path) {
        const Hid data{H5Dopen2(file, ("post/singlestate/state000000000001/" + path).c_str(), H5P_DEFAULT)};
        const Hid list{H5Dget_create_plist(data)};
        std::vector<int> ids;
        for (int i = 0; i < H5Pget_nfilters(list); ++i) {
            unsigned flags = 0;
            unsigned config = 0;
            std::size_t count = 0;
            ids.push_back(H5Pget_filter2(list, static_cast<unsigned>(i), &flags, &count, nullptr, 0, nullptr, &config));
        }
        return ids;
    };
    EXPECT_THAT(filters("entityresults/NODE/DISPLACEMENT/kobblock/data/res"),
                ElementsAre(H5Z_FILTER_SHUFFLE, H5Z_FILTER_DEFLATE));
    EXPECT_THAT(filters("entityresults/NODE/PRESSURE/kobblock/data/res"), Contains(H5Z_FILTER_SCALEOFFSET));
}

TEST_F(OlderMergeVerb, FilesOfBothLayoutsAreNoRun)
{
    const SampleFile current;
    const std::string line = "kob merge: " + domains_[0] + " is in the older layout and " + current.path() +
                             " is not; kob upgrade writes a file in the current one\n";
    for (const bool older_first : {true, false}) {
        const Outcome refused = older_first ? run_program({"merge", target_, domains_[0], current.path()})
                                            : run_program({"merge", target_, current.path(), domains_[0], "--dry-run"});
        EXPECT_EQ(refused.exit_code, 3);
        EXPECT_EQ(refused.err, line);
        EXPECT_EQ(refused.out, "");
    }
    expect_nothing_made();
}

TEST_F(OlderMergeVerb, AFileOfBothLayoutsIsRefused)
{
    KobFile both;
    write_older_header(both.handle());
    write_older_text(both.handle(), "log");
    write_variable(both);
    both.close();
    const Outcome refused = run_program({"merge", target_, domains_[0], both.path()});
    EXPECT_EQ(refused.exit_code, 3);
    EXPECT_EQ(refused.err, "kob merge: " + both.path() +
                               ": 1 of 2 blocks are in the older layout; a file with both is not merged\n");
    expect_nothing_made();
}

TEST_F(OlderMergeVerb, AFileWithoutHeaderIsRecognizedByItsBlocks)
{
    for (const std::string& domain : domains_) {
        const Hid root = open_file(domain, H5F_ACC_RDWR);
        ASSERT_GE(H5Ldelete(root, "post/kobheader", H5P_DEFAULT), 0);
    }
    const Outcome merged = merge({"--no-domain-number"});
    EXPECT_EQ(merged.exit_code, 0) << merged.err;
    EXPECT_THAT(merged.err, HasSubstr("KOB WARNING - files maybe incompatible"));
    EXPECT_EQ(shown_blocks(whole()), shown_blocks(target_));
}

TEST_F(OlderMergeVerb, AnEmptyFileBelongsToTheRunThatItsHeaderNames)
{
    KobFile empty;
    write_older_header(empty.handle());
    empty.close();
    EXPECT_EQ(run_program({"merge", target_, domains_[0], empty.path()}).exit_code, 0);
    const SampleFile current;
    EXPECT_EQ(run_program({"merge", target_, "--force", current.path(), empty.path()}).exit_code, 3);
    KobFile nothing;
    nothing.close();
    EXPECT_EQ(run_program({"merge", target_, "--force", nothing.path(), domains_[0]}).exit_code, 0);
    EXPECT_EQ(run_program({"info", "--json", target_}).json()["header"]["version"], "1 2 0");
}

TEST_F(OlderMergeVerb, ADamagedFileLeavesTheTargetAsItWas)
{
    std::ofstream{target_} << "mine";
    {
        const Hid root = open_file(domains_[1], H5F_ACC_RDWR);
        ASSERT_GE(H5Ldelete(root, "post/constant/parts/PART/kobblock/data", H5P_DEFAULT), 0);
    }
    const Outcome failed = merge({"--force"});
    EXPECT_EQ(failed.exit_code, 3);
    EXPECT_THAT(failed.err, HasSubstr("KOB ERROR - data not found\n"));
    EXPECT_THAT(failed.err, HasSubstr("constant/parts/PART/kobblock"));
    EXPECT_THAT(failed.err, HasSubstr("kob merge: the files cannot be merged (status -1)\n"));
    EXPECT_EQ(bytes_of(target_), "mine");
    EXPECT_EQ(std::distance(fs::directory_iterator{folder_.path()}, fs::directory_iterator{}), domain_count + 1)
        << "no draft stays";
}

TEST_F(OlderMergeVerb, MoreIndexValuesThanTheMergerTakes)
{
    std::vector<std::string> files;
    for (const char* name : {"six_1.kob", "six_2.kob"}) {
        const KobFile file{folder_ / name, create_results};
        write_older_header(file.handle());
        write_older_index(file.handle(), 6);
        files.push_back(file.path());
    }
    const Outcome refused = run_program({"merge", target_, files[0], files[1]});
    EXPECT_EQ(refused.exit_code, 3);
    EXPECT_THAT(refused.err, HasSubstr("KOB ERROR - nindex too large = 6. Increase MAXINDEX1: 5\n"));
    expect_nothing_made();
}

TEST_F(OlderMergeVerb, VerboseShowsTheReportOfItsGeneration)
{
    const Outcome merged = merge({"--verbose"});
    EXPECT_EQ(merged.exit_code, 0);
    EXPECT_THAT(merged.out, HasSubstr("version file: 1.2.0 - program: 1.2.0\n"));
    EXPECT_THAT(merged.out, HasSubstr(" KOB DMP domain file merge successfully completed."));
}

} // namespace
