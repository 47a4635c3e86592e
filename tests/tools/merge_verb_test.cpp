// SPDX-License-Identifier: BSD-3-Clause
// kob merge: the care around the merger. That a merged model is the model is told by the tests of kob split.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "beam_file.hpp"
#include "hdf5_file.hpp"
#include "program.hpp"
#include "sample_file.hpp"
#include "series_block.hpp"
#include "shown_blocks.hpp"
#include "temp_file.hpp"

namespace {

using namespace kob_test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

const std::string domain_path = "constant/entityresults/ELEMENT/DMPComputeDomainNumber/kobblock";

class MergeVerb : public ::testing::Test {
protected:
    MergeVerb()
    {
        const BeamFile beam;
        const Outcome split = run_program({"split", beam.path(), "2", "--by", "x", "--output", folder_ / "part.kob"});
        EXPECT_EQ(split.exit_code, 0) << split.err;
    }
    std::vector<std::string> merge(std::vector<std::string> more = {}) const
    {
        std::vector<std::string> words{"merge", out_, first_, second_};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    std::vector<std::string> names() const
    {
        std::vector<std::string> result;
        for (const auto& entry : fs::directory_iterator{folder_.path()}) result.push_back(entry.path().filename());
        std::sort(result.begin(), result.end());
        return result;
    }
    TempDir folder_;
    std::string out_ = folder_ / "whole.kob";
    std::string first_ = folder_ / "part_1.kob";
    std::string second_ = folder_ / "part_2.kob";
};

TEST_F(MergeVerb, TheTargetHasItsHeaderAndTheDomainNumbers)
{
    const Outcome merged = run_program(merge());
    EXPECT_EQ(merged.exit_code, 0) << merged.err;
    EXPECT_EQ(merged.err, "");
    EXPECT_EQ(merged.lines().size(), 1U) << merged.out;
    EXPECT_THAT(merged.out, HasSubstr(out_ + ": "));
    EXPECT_EQ(run_program({"info", "--json", out_}).json()["header"]["version"], "2 2 16");
    const auto blocks = shown_blocks(out_);
    ASSERT_TRUE(blocks.contains(domain_path));
    // Along x the first half of each row of four elements lies in the first domain.
    EXPECT_EQ(dataset(blocks.at(domain_path), "res"), nlohmann::json::parse("[[1],[1],[2],[2],[1],[1],[2],[2]]"));
    EXPECT_EQ(names(), (std::vector<std::string>{"part_1.kob", "part_2.kob", "whole.kob"}));
}

TEST_F(MergeVerb, WithoutDomainNumbers)
{
    EXPECT_EQ(run_program(merge({"--no-domain-number", "--quiet"})).out, "");
    EXPECT_FALSE(shown_blocks(out_).contains(domain_path));
}

TEST_F(MergeVerb, ExponentsComeFromAParameterFile)
{
    std::ofstream{folder_ / "exponents.txt"} << "DISPLACEMENT 3\n";
    ASSERT_EQ(run_program(merge({"--exponents", folder_ / "exponents.txt"})).exit_code, 0);
    const std::string path = "singlestate/state000000000001/entityresults/NODE/DISPLACEMENT/kobblock";
    const Hid file = open_file(out_);
    const Hid res{H5Dopen2(open_group(file, "post/" + path), "res", H5P_DEFAULT)};
    const Hid list{H5Dget_create_plist(res)};
    ASSERT_EQ(H5Pget_nfilters(list), 1);
    unsigned flags = 0;
    unsigned config = 0;
    std::size_t count = 0;
    EXPECT_EQ(H5Pget_filter2(list, 0, &flags, &count, nullptr, 0, nullptr, &config), H5Z_FILTER_SCALEOFFSET);
    EXPECT_EQ(run_program(merge({"--force", "--exponents", folder_ / "missing.txt"})).exit_code, 3);
    EXPECT_TRUE(fs::exists(out_));
}

TEST_F(MergeVerb, CompressionOfWhatIsNotCompressedYet)
{
    ASSERT_EQ(run_program(merge({"--deflate", "6", "--shuffle"})).exit_code, 0);
    const Hid file = open_file(out_);
    const Hid res{
        H5Dopen2(open_group(file, "post/constant/entityresults/NODE/COORDINATE/kobblock"), "res", H5P_DEFAULT)};
    const Hid list{H5Dget_create_plist(res)};
    EXPECT_EQ(H5Pget_nfilters(list), 2);
}

TEST_F(MergeVerb, ADryRunSaysWhatHappensToEachKind)
{
    KobFile more{second_, update};
    const Hid block{more.new_group("constant/properties/PART/MATERIAL/kobblock")};
    const std::int32_t key = 500;
    put_attribute(block, "block", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &key);
    more.close();
    const Outcome dry = run_program(merge({"--dry-run"}));
    EXPECT_EQ(dry.exit_code, 0) << dry.err;
    std::vector<std::string> lines;
    for (const std::string& line : dry.lines()) {
        std::string joined;
        for (const std::string& word : words(line)) joined += (joined.empty() ? "" : " ") + word;
        lines.push_back(joined);
    }
    EXPECT_THAT(lines,
                ElementsAre("KEY KIND BLOCKS FILES PATHS WHAT HAPPENS", "10 system 2 2 1 copied from the first file",
                            "20 indices 2 2 1 copied from the first file",
                            "30 variable 2 2 1 copied from the first file",
                            "32 variablegroup 2 2 1 copied from the first file", "300 connectivities 2 2 1 merged",
                            "500 properties 1 1 1 left out", "1000 entityresults 8 2 4 merged",
                            "1001 entityresults 4 2 2 merged"));
    EXPECT_FALSE(fs::exists(out_));
    const Outcome merged = run_program(merge());
    EXPECT_EQ(merged.exit_code, 0);
    EXPECT_EQ(merged.err, "kob merge: 1 blocks of the kind \"properties\" are left out: this kind cannot be merged\n");
    EXPECT_THAT(run_program(merge({"--json", "--force"})).json()["kinds"],
                Contains(nlohmann::json::parse(R"({"key": 500, "kind": "properties", "blocks": 1, "files": 1,
                                                    "paths": 1, "treatment": "left out"})")));
}

TEST_F(MergeVerb, AFailedMergeLeavesTheTargetAsItWas)
{
    std::ofstream{out_} << "mine";
    KobFile more{second_, update};
    write_results(more, {.variable = "MASS", .ncoo = 2, .entid = {1}, .res = {1, 2}, .zone = "", .zoneid = -1});
    more.close();
    KobFile other{first_, update};
    write_results(other, {.variable = "MASS", .ncoo = 1, .entid = {1}, .res = {1}, .zone = "", .zoneid = -1});
    other.close();
    const Outcome failed = run_program(merge({"--force"}));
    EXPECT_EQ(failed.exit_code, 3);
    EXPECT_THAT(failed.err, HasSubstr("KOB ERROR - kob_merge_dmp - block"));
    EXPECT_THAT(failed.err, HasSubstr("kob merge: the files cannot be merged (status -1)\n"));
    EXPECT_EQ(bytes_of(out_), "mine");
    EXPECT_EQ(names(), (std::vector<std::string>{"part_1.kob", "part_2.kob", "whole.kob"})) << "no draft stays";
}

TEST_F(MergeVerb, AnExistingTargetNeedsForce)
{
    std::ofstream{out_} << "mine";
    const Outcome refused = run_program(merge());
    EXPECT_EQ(refused.exit_code, 2);
    EXPECT_EQ(refused.err, "kob merge: \"" + out_ + "\" exists; --force replaces it\n");
    EXPECT_EQ(bytes_of(out_), "mine");
    EXPECT_EQ(run_program(merge({"--force"})).exit_code, 0);
    EXPECT_NE(bytes_of(out_), "mine");
}

TEST_F(MergeVerb, SourcesThatCannotBeMergedAreRefused)
{
    const std::string before = bytes_of(first_);
    EXPECT_EQ(run_program({"merge", first_, first_, second_, "--force"}).exit_code, 2);
    EXPECT_EQ(run_program({"merge", out_, first_, first_}).exit_code, 2);
    EXPECT_EQ(run_program({"merge", out_, first_, folder_ / "missing.kob"}).exit_code, 3);
    EXPECT_EQ(run_program({"merge", out_}).exit_code, 2);
    EXPECT_EQ(bytes_of(first_), before);
    EXPECT_FALSE(fs::exists(out_));
}

TEST_F(MergeVerb, VerboseShowsTheLibrarysReport)
{
    const Outcome merged = run_program(merge({"--verbose"}));
    EXPECT_EQ(merged.exit_code, 0);
    EXPECT_THAT(merged.out, HasSubstr(" KOB DMP domain file merge successfully completed."));
    EXPECT_THAT(merged.err, HasSubstr("KOB WARNING file [1]: no \"text\" blocks found"));
}

} // namespace
