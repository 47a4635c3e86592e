// SPDX-License-Identifier: BSD-3-Clause
// kob split: what each domain gets of every kind of block, in both layouts, and that a merge puts it together again.

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "every_kind.hpp"
#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "merge_model.hpp"
#include "older_file.hpp"
#include "program.hpp"
#include "sample_file.hpp"
#include "shown_blocks.hpp"
#include "temp_file.hpp"

namespace {

using namespace kob_test;
using nlohmann::json;
using ::testing::HasSubstr;

/// The domain files of a model.
class Domains {
public:
    Domains(const std::string& path, int count)
    {
        const Outcome split = run_program({"split", path, std::to_string(count), "--output", folder_ / "part.kob"});
        EXPECT_EQ(split.exit_code, 0) << split.err;
        EXPECT_EQ(split.err, "");
        for (int i = 1; i <= count; ++i) files_.push_back(folder_ / ("part_" + std::to_string(i) + ".kob"));
    }
    const std::string& operator[](std::size_t i) const { return files_.at(i); }
    const std::vector<std::string>& files() const { return files_; }

private:
    TempDir folder_;
    std::vector<std::string> files_;
};

/// The blocks of these files merged. Kinds that cannot be merged are missing.
std::map<std::string, json> merged_blocks(const std::vector<std::string>& files)
{
    const TempDir folder;
    std::vector<std::string> words{"merge", folder / "whole.kob", "--no-domain-number", "--quiet"};
    words.insert(words.end(), files.begin(), files.end());
    const Outcome merged = run_program(words);
    EXPECT_EQ(merged.exit_code, 0) << merged.err;
    return shown_blocks(folder / "whole.kob");
}

/// A merge of the pieces is a merge of the whole, which has its rows in the same order.
void expect_same_after_merge(const std::string& path, int count)
{
    const Domains domains{path, count};
    const auto whole = merged_blocks({path});
    const auto pieces = merged_blocks(domains.files());
    for (const auto& [name, block] : whole) {
        const auto found = pieces.find(name);
        ASSERT_NE(found, pieces.end()) << name;
        EXPECT_EQ(block, found->second) << name;
    }
    EXPECT_EQ(whole.size(), pieces.size());
}

/// The shared models: two elements, 11 with the nodes 1, 2, 5, 4 and 12 with 2, 3, 6, 5, in the parts 5 and 6.
class SplitKinds : public ::testing::Test {
protected:
    static json part(const Domains& domains, std::size_t i, const std::string& block)
    {
        return shown_block(domains[i], block);
    }
    static bool has(const std::string& file, const std::string& path) { return shown_blocks(file).contains(path); }

    SampleFile sample_;
};

TEST_F(SplitKinds, RowsGoWithTheirEntities)
{
    KobFile file{sample_.path(), update};
    write_model_kinds(file);
    file.close();
    const Domains domains{sample_.path(), 2};
    const auto values = [&](std::size_t i, const char* block, const char* name) {
        return dataset(part(domains, i, block), name);
    };
    EXPECT_EQ(values(0, "parts/PART", "pid"), (json{5, 9})) << "no element is in part 9: it goes to the first domain";
    EXPECT_EQ(values(0, "parts/PART", "title"), (json{"plate", ""}));
    EXPECT_EQ(values(0, "parts/PART", "mtyp"), (json{70, 72}));
    EXPECT_EQ(values(1, "parts/PART", "pid"), json{6});
    EXPECT_EQ(values(1, "parts/PART", "title"), json{"bolt"});
    EXPECT_EQ(part(domains, 1, "parts/PART")["attributes"]["npart"], 1);
    EXPECT_EQ(values(0, "attributes/NODE", "uid"), (json{{10, 11}, {20, 21}}));
    EXPECT_EQ(values(1, "attributes/NODE", "entid"), json{2});
    EXPECT_EQ(values(1, "attributes/NODE", "uid"), json::parse("[[20, 21]]"));
    EXPECT_EQ(values(1, "attributes/NODE", "title"), json{"right"});
    EXPECT_EQ(values(0, "identifiers/ELEMENT", "entid"), json{11});
    EXPECT_EQ(values(1, "identifiers/ELEMENT", "entid"), json{12});
    EXPECT_EQ(values(0, "activflags/ELEMENT", "entid"), (json{11, 13}));
    EXPECT_EQ(values(0, "activflags/ELEMENT", "status"), (json{1, 1}));
    EXPECT_EQ(values(1, "activflags/ELEMENT", "entid"), json{12});
    EXPECT_EQ(values(1, "activflags/ELEMENT", "status"), json{0});
    EXPECT_EQ(values(0, "properties/ELEMENT/SHELL/PART5", "iparam"), json::parse("[[31, 32]]"));
    EXPECT_EQ(values(0, "properties/ELEMENT/SHELL/PART5", "cparam"), json::parse(R"([["steel"]])"));
    EXPECT_EQ(values(1, "properties/ELEMENT/SHELL/PART5", "entid"), json{12});
    EXPECT_EQ(values(1, "properties/ELEMENT/SHELL/PART5", "fparam"), json::parse("[[0.25]]"));
    EXPECT_EQ(values(1, "properties/ELEMENT/SHELL/PART5", "cparam"), json::parse(R"([["alloy"]])"));
    EXPECT_EQ(part(domains, 0, "text/log"), part(domains, 1, "text/log")) << "texts are in each domain";
}

TEST_F(SplitKinds, EachDomainHasAllCollectorsWithItsMembers)
{
    KobFile file{sample_.path(), update};
    write_model_kinds(file);
    file.close();
    const Domains domains{sample_.path(), 2};
    const json first = part(domains, 0, "collector/SET");
    EXPECT_EQ(dataset(first, "idcoll"), (json{7, 8}));
    EXPECT_EQ(dataset(first, "nent"), json::parse("[[2, 1], [0, 1]]"));
    EXPECT_EQ(dataset(first, "entid"), (json{1, 2, 11, 13}));
    EXPECT_EQ(first["attributes"]["nenttot"], 4);
    const json second = part(domains, 1, "collector/SET");
    EXPECT_EQ(dataset(second, "idcoll"), (json{7, 8}));
    EXPECT_EQ(dataset(second, "nent"), json::parse("[[2, 0], [0, 1]]"));
    EXPECT_EQ(dataset(second, "entid"), (json{2, 3, 12}));
}

TEST_F(SplitKinds, SeriesAreCutInEveryState)
{
    KobFile file{sample_.path(), update};
    write_series(file, 3, 6); // state s: 1000 s + 0.5, + 1.5, ... of six nodes with two components
    write_quad_results(file);
    file.close();
    const Domains domains{sample_.path(), 2};
    const json nodes = part(domains, 1, "multientityresults/NODE/DISPLACEMENT/ZONE5");
    EXPECT_EQ(dataset(nodes, "entid"), (json{2, 3, 5, 6}));
    EXPECT_EQ(nodes["attributes"]["nstate"], 3);
    EXPECT_EQ(dataset(nodes, "indexident"), json::parse("[[10], [20], [30]]"));
    EXPECT_EQ(dataset(nodes, "res")[0], json::parse("[[2.5, 3.5], [4.5, 5.5], [8.5, 9.5], [10.5, 11.5]]"));
    EXPECT_EQ(dataset(nodes, "res")[2],
              json::parse("[[2002.5, 2003.5], [2004.5, 2005.5], [2008.5, 2009.5], [2010.5, 2011.5]]"));
    EXPECT_EQ(dataset(part(domains, 0, "multientityresults/NODE/DISPLACEMENT/ZONE5"), "entid"), (json{1, 2, 4, 5}));
    const json flags = part(domains, 1, "multiactivflags/ELEMENT");
    EXPECT_EQ(dataset(flags, "entid"), json{12});
    EXPECT_EQ(dataset(flags, "status"), json::parse("[[1], [101]]"));
    for (const char* kind : {"multielementresults/QUAD4/STRESS/ZONE5", "elementresults/QUAD4/STRESS/ZONE5"}) {
        const json whole = shown_block(sample_.path(), kind);
        const bool is_series = dataset(whole, "res").size() == 2 && dataset(whole, "res")[0].size() == 2;
        for (const std::size_t i : {0U, 1U}) {
            const json piece = part(domains, i, kind);
            EXPECT_EQ(dataset(piece, "idele"), json{11 + i}) << kind;
            EXPECT_EQ(dataset(piece, "eloc"), dataset(whole, "eloc")) << kind;
            const json all = dataset(whole, "res");
            const json mine = dataset(piece, "res");
            if (is_series)
                EXPECT_EQ(mine, (json{json{all[0][i]}, json{all[1][i]}})) << kind;
            else
                EXPECT_EQ(mine, json{all[i]}) << kind;
        }
    }
}

TEST_F(SplitKinds, ElementResultsOfSeveralDomainsStayApartInAMerge)
{
    KobFile file{sample_.path(), update};
    write_quad_results(file);
    file.close();
    const json whole = shown_block(sample_.path(), "elementresults/QUAD4/STRESS/ZONE5");
    const auto merged = merged_blocks(Domains{sample_.path(), 2}.files());
    const std::string path = "singlestate/state000000000012/elementresults/QUAD4/STRESS/ZONE5";
    ASSERT_TRUE(merged.contains(path + "/kobblock"));
    ASSERT_TRUE(merged.contains(path + "_set1/kobblock"));
    EXPECT_EQ(dataset(merged.at(path + "/kobblock"), "res")[0], dataset(whole, "res")[0]);
    EXPECT_EQ(dataset(merged.at(path + "_set1/kobblock"), "res")[0], dataset(whole, "res")[1]);
}

TEST_F(SplitKinds, BlocksOfEntitiesOutsideTheModelAreInOneDomainIfTheMergerDoesNotUniteThem)
{
    KobFile file{sample_.path(), update};
    write_result_kinds(file); // elements of the type HEXA8, contacts, matrices of superelements
    file.close();
    const Domains domains{sample_.path(), 2};
    const auto whole = shown_blocks(sample_.path());
    const auto first = shown_blocks(domains[0]);
    const auto second = shown_blocks(domains[1]);
    int alone = 0;
    for (const auto& [path, block] : whole) {
        for (const char* kind : {"/elementresults/", "multielementresults", "multiactivflags", "matrix/"}) {
            if (path.find(kind) == std::string::npos) continue;
            EXPECT_EQ(first.at(path), block) << path;
            EXPECT_FALSE(second.contains(path)) << path;
            ++alone;
            break;
        }
    }
    EXPECT_EQ(alone, 7);
}

TEST_F(SplitKinds, AMatrixIsInTheFirstDomainThatHoldsItsEntity)
{
    KobFile file{sample_.path(), update};
    for (const int node : {1, 2, 3}) write_node_matrix(file, node); // of the first domain, of both, of the second one
    file.close();
    const Domains domains{sample_.path(), 2};
    const std::string path = "singlestate/state000000000012/densematrix/NODE/STIFFNESS/id";
    for (const int node : {1, 2, 3}) {
        const std::string block = path + std::to_string(node) + "/kobblock";
        EXPECT_EQ(has(domains[0], block), node != 3) << node;
        EXPECT_EQ(has(domains[1], block), node == 3) << node;
    }
}

TEST_F(SplitKinds, EveryKindMergedAgainIsTheModel)
{
    KobFile file{sample_.path(), update};
    write_model_kinds(file);
    write_result_kinds(file);
    file.close();
    for (const int count : {1, 2, 3}) {
        SCOPED_TRACE(count);
        expect_same_after_merge(sample_.path(), count);
    }
}

TEST(SplitModel, OfTheCurrentLayoutMergedAgainIsTheModel)
{
    KobFile file;
    const BlockWriter out{file.handle()};
    out.header();
    BarModel::write_shared(out);
    BarModel{40}.write(out, BarModel{40}.whole());
    file.close();
    expect_same_after_merge(file.path(), 3);
    EXPECT_EQ(shown_blocks(file.path()), merged_blocks(Domains{file.path(), 4}.files()));
}

TEST(SplitModel, OfTheOlderLayoutMergedAgainIsTheModel)
{
    KobFile file;
    write_older_model(file.handle(), BarModel{40}, BarModel{40}.whole());
    file.close();
    const Domains domains{file.path(), 3};
    for (const std::string& path : domains.files())
        EXPECT_EQ(run_program({"info", "--json", path}).json()["header"],
                  json::parse(R"({"status": 0, "version": "1 2 0"})"));
    EXPECT_EQ(shown_blocks(file.path()), merged_blocks(domains.files()));
}

TEST(SplitModel, EveryKindOfTheOlderLayoutMergedAgainIsTheModel)
{
    KobFile file;
    write_older_kinds(file.handle());
    file.close();
    for (const int count : {1, 2}) {
        SCOPED_TRACE(count);
        expect_same_after_merge(file.path(), count);
    }
    const Domains domains{file.path(), 2}; // elements 101 and 102, parts 7 and 8, units of two parameters
    const std::string elements = "singlestate/state000000000012/connectivities/BEAM2";
    EXPECT_EQ(dataset(shown_block(domains[1], elements), "idele"), json{102});
    EXPECT_EQ(dataset(shown_block(domains[1], elements), "fparam"), json::parse("[[2.5, 3.5]]"));
    EXPECT_EQ(dataset(shown_block(domains[1], elements), "ubid"), (json{11, 12, 13}));
    EXPECT_EQ(shown_block(domains[0], "variables/STRESS"), shown_block(domains[1], "variables/STRESS"));
}

TEST(SplitModel, AFileOfBothLayoutsIsRefused)
{
    KobFile file;
    write_older_kinds(file.handle());
    write_variable(file);
    file.close();
    const TempDir folder;
    const Outcome refused = run_program({"split", file.path(), "2", "--output", folder / "part.kob"});
    EXPECT_EQ(refused.exit_code, 3);
    EXPECT_EQ(refused.err, "kob split: " + file.path() +
                               ": 17 of 18 blocks are in the older layout; a file with both is not split\n");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(SplitModel, EmptyBlocksAreInTheFirstDomain)
{
    SampleFile sample;
    KobFile file{sample.path(), update};
    write_results(file, {.variable = "NOTHING", .entid = {}, .res = {}, .zone = "", .zoneid = -1});
    file.close();
    const std::string path = "constant/entityresults/NODE/NOTHING/kobblock";
    const Domains domains{sample.path(), 2};
    EXPECT_TRUE(shown_blocks(domains[0]).contains(path));
    EXPECT_FALSE(shown_blocks(domains[1]).contains(path));
}

TEST(SplitModel, ABlockWhosePlaceTheWritersDoNotMakeIsSaid)
{
    SampleFile sample;
    KobFile file{sample.path(), update};
    write_model_kinds(file);
    ASSERT_GE(H5Lmove(file.handle(), "constant/attributes/NODE", file.handle(), "constant/attributes/OTHER",
                      H5P_DEFAULT, H5P_DEFAULT),
              0);
    file.close();
    const TempDir folder;
    const Outcome split = run_program({"split", sample.path(), "2", "--output", folder / "part.kob"});
    EXPECT_EQ(split.exit_code, 0);
    EXPECT_EQ(split.err, "kob split: warning: constant/attributes/OTHER: the block has another path now\n");
    EXPECT_EQ(dataset(shown_block(folder / "part_2.kob", "attributes/NODE"), "entid"), json{2});
}

TEST(SplitModel, ACollectorThatClaimsMoreMembersThanItHasIsRefused)
{
    SampleFile sample;
    KobFile file{sample.path(), update};
    write_model_kinds(file);
    {
        const Hid counts{H5Dopen2(file.block("constant/collector/SET/kobblock"), "nent", H5P_DEFAULT)};
        const std::vector<std::int32_t> lie{2000000000, -1999999994, 0, 0}; // six in all, as before
        ASSERT_GE(H5Dwrite(counts, H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, lie.data()), 0);
    }
    file.close();
    const TempDir folder;
    const Outcome refused = run_program({"split", sample.path(), "2", "--output", folder / "part.kob"});
    EXPECT_EQ(refused.exit_code, 3);
    EXPECT_THAT(refused.err, HasSubstr("a collector has 2000000000 members"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

} // namespace
