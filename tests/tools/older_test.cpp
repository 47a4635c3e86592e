// SPDX-License-Identifier: BSD-3-Clause
// kob ls, show and info of files in the older layout, and of files that hold both generations.

#include <algorithm>

#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "older_file.hpp"
#include "program.hpp"
#include "sample_file.hpp"

using namespace kob_test;
using nlohmann::json;

namespace {

class OlderFile : public KobFile {
public:
    OlderFile()
    {
        write_older_kinds(handle());
        close();
    }
};

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

json shown(const std::string& path, const std::string& block, const std::vector<std::string>& options = {})
{
    std::vector<std::string> arguments{"show", path, block, "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = run_program(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome.json();
}

json values(const json& block, const std::string& name)
{
    for (const json& item : block.at("datasets"))
        if (item.at("name") == name) return item.at("values");
    return {};
}

} // namespace

TEST(Older, EveryKindIsListed)
{
    const OlderFile file;
    const Outcome outcome = run_program({"ls", file.path(), "--json"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    const json listing = outcome.json();
    std::vector<std::string> kinds;
    for (const json& block : listing.at("blocks")) {
        kinds.push_back(block.at("kind"));
        EXPECT_TRUE(block.contains("bytes")) << block;
    }
    // In the order of the paths.
    EXPECT_EQ(kinds, (std::vector<std::string>{"indices", "system", "text", "variables", "header", "multiactivflags",
                                               "multielementresults", "multientityresults", "activflags", "attributes",
                                               "collector", "connectivities", "densematrix", "elementresults",
                                               "entityresults", "parts", "sparsematrix", "triangularmatrix"}));
    for (std::size_t i = 0; i < kinds.size(); ++i) EXPECT_EQ(listing.at("blocks").at(i).at("number"), i);
}

TEST(Older, StatesAndSeriesAreListed)
{
    const OlderFile file;
    const json blocks = run_program({"ls", file.path(), "--json", "--kind", "elementresults"}).json().at("blocks");
    ASSERT_EQ(blocks.size(), 1U);
    EXPECT_EQ(blocks.at(0).at("index"), (json{{{"ident", 12}, {"value", 0.125}}}));
    EXPECT_EQ(blocks.at(0).at("shape"), (json{2, 4, 3}));
    const json series = run_program({"ls", file.path(), "--json", "--kind", "1050"}).json().at("blocks");
    ASSERT_EQ(series.size(), 1U);
    EXPECT_EQ(series.at(0).at("series").at("states"), 2);
    const json variables = run_program({"ls", file.path(), "--json", "--kind", "variables"}).json().at("blocks");
    ASSERT_EQ(variables.size(), 1U);
    EXPECT_EQ(variables.at(0).at("variable"), "STRESS");
    EXPECT_EQ(variables.at(0).at("shape"), (json{3}));
}

TEST(Older, BlocksOfItsOwnMakeAreShown)
{
    const OlderFile file;
    const json index = shown(file.path(), "indices");
    EXPECT_EQ(index.at("attributes"), (json{{"nindex", 2}}));
    EXPECT_EQ(values(index, "etypindex"), (json{"TIME", "FREQUENCY"}));
    EXPECT_EQ(values(index, "ubid"), (json{13, 14}));
    EXPECT_EQ(values(index, "udexp"), (json{0.5}));
    const json variables = shown(file.path(), "variables/STRESS");
    EXPECT_EQ(values(variables, "comp"), (json{{1, 3}, {3, 2}}));
    EXPECT_EQ(values(variables, "cname"), (json{"XX", "YY", "XY"}));
    EXPECT_EQ(values(variables, "ubexp"), (json{1.0, -1.0, -2.0}));
    EXPECT_EQ(values(shown(file.path(), "text/log"), "line"), (json{"one", "two"}));
    const json elements = shown(file.path(), "BEAM2");
    EXPECT_EQ(values(elements, "ic"), (json{{1, 2, 3}, {2, 3, 4}}));
    EXPECT_EQ(values(elements, "udid"), (json{21}));
    EXPECT_EQ(values(elements, "indexident"), (json{12}));
    const json parts = shown(file.path(), "PART");
    EXPECT_EQ(values(parts, "title"), (json{"flange", "web"}));
    EXPECT_EQ(values(parts, "pvtyp"), (json{-1, 6}));
    for (const json& block : {index, variables, elements, parts})
        EXPECT_FALSE(block.at("attributes").contains("indexic")) << block;
}

TEST(Older, BlocksOfTheSharedKindsAreShown)
{
    const OlderFile file;
    EXPECT_EQ(values(shown(file.path(), "system"), "udbid"), (json{11, 12, 13, 11, 13}));
    EXPECT_EQ(values(shown(file.path(), "attributes/NODE"), "uid"), (json{{51, 52}, {61, 62}, {91, 92}}));
    EXPECT_EQ(values(shown(file.path(), "collector/SET"), "entid"), (json{1, 2, 100, 200, 201, 202}));
    EXPECT_EQ(values(shown(file.path(), "activflags/ELEMENT"), "status"), (json{1, 0, -4}));
    EXPECT_EQ(values(shown(file.path(), "entityresults/NODE/DISPLACEMENT/ZONE7", {"--rows", "1"}), "res"),
              (json{{0.1, 0.2, 0.3}}));
    EXPECT_EQ(values(shown(file.path(), "multiactivflags/CONTACT"), "status"), (json{{0, 1, 2}, {100, 101, 102}}));
    EXPECT_EQ(values(shown(file.path(), "multientityresults/NODE/DISPLACEMENT/ZONE5", {"--rows", "1"}), "res"),
              (json{{{0.5, 1.5}}, {{1000.5, 1001.5}}}));
    EXPECT_EQ(values(shown(file.path(), "densematrix/SUPERELEMENT/STIFFNESS/id17"), "val"),
              (json{{0.5, 1.5}, {2.5, 3.5}, {4.5, 5.5}}));
    EXPECT_EQ(values(shown(file.path(), "sparsematrix/SUPERELEMENT/STIFFNESS/id17"), "rowptr"), (json{0, 2, 3, 5}));
    EXPECT_EQ(values(shown(file.path(), "triangularmatrix/SUPERELEMENT/STIFFNESS/id17"), "val").size(), 10U);
    EXPECT_EQ(values(shown(file.path(), "elementresults/HEXA8/STRESS/ZONE5"), "eloc").size(), 4U);
}

TEST(Older, InfoKnowsTheVersion)
{
    const OlderFile file;
    const Outcome outcome = run_program({"info", file.path()});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(contains(outcome.out, "\nFormat    KOB 1.2.0, the older layout\n")) << outcome.out;
    EXPECT_TRUE(contains(outcome.out, "Cantilever")) << outcome.out;
    EXPECT_FALSE(contains(outcome.out, "at least")) << outcome.out;
    const json info = run_program({"info", file.path(), "--json"}).json();
    EXPECT_EQ(info.at("header"), (json{{"status", 0}, {"version", "1 2 0"}}));
    EXPECT_EQ(info.at("blocks"), 18);
    EXPECT_EQ(info.at("blocks_of_unknown_size"), 0);
}

TEST(Older, AFileWithoutHeaderIsRecognizedByItsBlocks)
{
    const OlderFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        ASSERT_GE(H5Ldelete(root, "post/kobheader", H5P_DEFAULT), 0);
    }
    const Outcome outcome = run_program({"ls", file.path(), "--json"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.json().at("blocks").size(), 17U);
    EXPECT_EQ(values(shown(file.path(), "text/log"), "line"), (json{"one", "two"}));
}

TEST(Older, BothGenerationsInOneFileAreListedInOneOrder)
{
    KobFile file;
    write_older_kinds(file.handle());
    write_variable(file);
    write_results(file, {.indexident = {1}, .indexval = {0.5}});
    file.close();
    const json blocks = run_program({"ls", file.path(), "--json"}).json().at("blocks");
    ASSERT_EQ(blocks.size(), 20U);
    EXPECT_EQ(blocks.at(3).at("kind"), "variable");
    EXPECT_EQ(blocks.at(4).at("kind"), "variables");
    EXPECT_EQ(blocks.at(9).at("kind"), "entityresults");
    EXPECT_EQ(blocks.at(9).at("state"), json{1});
    const json kinds = run_program({"info", file.path(), "--json"}).json().at("kinds");
    std::vector<std::string> of_key_30;
    for (const json& kind : kinds)
        if (kind.at("key") == 30) of_key_30.push_back(kind.at("kind"));
    std::sort(of_key_30.begin(), of_key_30.end());
    EXPECT_EQ(of_key_30, (std::vector<std::string>{"variable", "variables"}));
}

TEST(Older, DamagedBlocksAreNamedAndTheOthersListed)
{
    const OlderFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        set_int_attribute(open_group(root, "post/constant/variables/STRESS/kobblock/header"), "ncoo", 1000000000);
        set_int_attribute(open_group(root, "post/constant/indices/kobblock/header"), "nindex", -5);
        ASSERT_GE(H5Ldelete(root, "post/constant/system/kobblock/data", H5P_DEFAULT), 0);
    }
    const Outcome outcome = run_program({"ls", file.path(), "--json"});
    EXPECT_EQ(outcome.exit_code, 3);
    EXPECT_EQ(outcome.json().at("blocks").size(), 18U);
    for (const char* name : {"constant/variables/STRESS", "constant/indices", "constant/system"})
        EXPECT_TRUE(contains(outcome.err, name)) << outcome.err;
    EXPECT_EQ(run_program({"show", file.path(), "variables/STRESS"}).exit_code, 3);
}

TEST(Older, IsCutBack)
{
    const OlderFile file; // state 12, series with the states 10 and 20
    const Outcome cut = run_program({"erase", file.path(), "--after", "15", "--json"});
    EXPECT_EQ(cut.exit_code, 0) << cut.err;
    const json first = cut.json();
    EXPECT_EQ(first.at("deleted"), json::array());
    ASSERT_EQ(first.at("cut").size(), 1U);
    EXPECT_EQ(first.at("cut").at(0).at("states_before"), 2);
    EXPECT_EQ(first.at("cut").at(0).at("states"), 1);
    EXPECT_EQ(values(shown(file.path(), "multientityresults/NODE/DISPLACEMENT/ZONE5"), "res").size(), 1U);
    const Outcome all = run_program({"erase", file.path(), "--after", "5", "--json"});
    EXPECT_EQ(all.exit_code, 0) << all.err;
    EXPECT_EQ(all.json().at("deleted").size(), 11U); // ten blocks of the state, and the series
}
