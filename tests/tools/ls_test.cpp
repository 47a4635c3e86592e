// SPDX-License-Identifier: BSD-3-Clause
// kob ls: the table, its filters, JSON, and files that do not keep to the format.

#include <algorithm>
#include <limits>

#include "hdf5_file.hpp"
#include "program.hpp"
#include "sample_file.hpp"

using namespace kob_test;
using nlohmann::json;

namespace {

std::vector<std::int64_t> numbers_of(const json& listing)
{
    std::vector<std::int64_t> numbers;
    for (const json& block : listing.at("blocks")) numbers.push_back(block.at("number"));
    return numbers;
}

std::vector<std::int64_t> listed(const std::string& path, const std::vector<std::string>& filters)
{
    std::vector<std::string> arguments{"ls", path, "--json"};
    arguments.insert(arguments.end(), filters.begin(), filters.end());
    const Outcome outcome = run_program(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    return numbers_of(outcome.json());
}

using Numbers = std::vector<std::int64_t>;

} // namespace

TEST(Ls, PrintsOneLinePerBlockWithWhatIdentifiesIt)
{
    const SampleFile file;
    const Outcome outcome = run_program({"ls", file.path()});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    const auto lines = outcome.lines();
    ASSERT_EQ(lines.size(), 11U) << outcome.out;
    using Words = std::vector<std::string>;
    EXPECT_EQ(words(lines[0]),
              (Words{"NO", "KEY", "KIND", "ENTITY", "VARIABLE", "ZONE", "STATE", "INDEX", "SIZE", "BYTES"}));
    EXPECT_EQ(words(lines[1]), (Words{"0", "300", "connectivities", "QUAD4", "2", "x", "4",
                                      std::to_string(7 * 4 + 4 * 256 + (2 + 2 + 8 + 2) * 4)}));
    EXPECT_EQ(words(lines[2]), (Words{"1", "1000", "entityresults", "NODE", "COORDINATE", "3", "x", "2",
                                      std::to_string(7 * 4 + 4 * 256 + 3 * 4 + 4 + 6 * 8)}));
    EXPECT_EQ(words(lines[3]), (Words{"2", "20", "indices", "INDEX", "260"}));
    EXPECT_EQ(words(lines[7]), (Words{"6", "1", "header", "32"}));
    EXPECT_EQ(words(lines[8]), (Words{"7", "1000", "entityresults", "NODE", "DISPLACEMENT", "WING", "3", "1", "0.5",
                                      "3", "x", "2", std::to_string(7 * 4 + 4 * 256 + 4 + 8 + 3 * 4 + 4 + 6 * 8)}));
    EXPECT_EQ(words(lines[10]),
              (Words{"9", "1001", "entityresults", "NODE", "PRESSURE", "WING", "3", "2", "1.5", "3", "x", "1", "x", "2",
                     std::to_string(7 * 4 + 4 * 256 + 4 + 8 + 3 * 4 + 4 + 6 * 8)}));
}

TEST(Ls, PrintsNoColourIntoAFile)
{
    const SampleFile file;
    EXPECT_EQ(run_program({"ls", file.path()}).out.find('\x1b'), std::string::npos);
}

TEST(Ls, GivesTheSameAsJson)
{
    const SampleFile file;
    const Outcome outcome = run_program({"ls", file.path(), "--json"});
    EXPECT_EQ(outcome.exit_code, 0);
    const json listing = outcome.json();
    ASSERT_TRUE(listing.is_object()) << outcome.out;
    EXPECT_EQ(listing.at("file"), file.path());
    ASSERT_EQ(listing.at("blocks").size(), 10U);
    const json& block = listing["blocks"][8];
    EXPECT_EQ(block.at("number"), 8);
    EXPECT_EQ(block.at("key"), 1000);
    EXPECT_EQ(block.at("kind"), "entityresults");
    EXPECT_EQ(block.at("entity"), "NODE");
    EXPECT_EQ(block.at("variable"), "DISPLACEMENT");
    EXPECT_EQ(block.at("zone"), "WING");
    EXPECT_EQ(block.at("zoneid"), 3);
    EXPECT_EQ(block.at("state"), json({2}));
    EXPECT_EQ(block.at("index"), json::array({{{"ident", 2}, {"value", 1.5}}}));
    EXPECT_EQ(block.at("shape"), json({3, 2}));
    EXPECT_EQ(block.at("path"), "singlestate/state000000000002/entityresults/NODE/DISPLACEMENT/WING3/kobblock");
    EXPECT_TRUE(listing["blocks"][0].at("state").is_null());
    EXPECT_EQ(listing["blocks"][0].at("shape"), json({2, 4}));
}

TEST(Ls, FiltersByKindVariableAndState)
{
    const SampleFile file;
    EXPECT_EQ(listed(file.path(), {"--kind", "entityresults"}), (Numbers{1, 7, 8, 9}));
    EXPECT_EQ(listed(file.path(), {"--kind", "1001"}), (Numbers{9}));
    EXPECT_EQ(listed(file.path(), {"--kind", "system", "--kind", "indices"}), (Numbers{2, 3}));
    EXPECT_EQ(listed(file.path(), {"--variable", "DISPLACEMENT"}), (Numbers{4, 7, 8}));
    EXPECT_EQ(listed(file.path(), {"--state", "2"}), (Numbers{8, 9}));
    EXPECT_EQ(listed(file.path(), {"--state", "constant"}), (Numbers{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(listed(file.path(), {"--state", "2", "--variable", "PRESSURE"}), (Numbers{9}));
}

TEST(Ls, SaysWhenNothingPassesTheFilters)
{
    const SampleFile file;
    const Outcome outcome = run_program({"ls", file.path(), "--state", "3"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "kob ls: no block passes the filters\n");
    EXPECT_EQ(outcome.lines().size(), 1U) << "the titles alone";
}

TEST(Ls, SuggestsAKindForAMistypedOne)
{
    const SampleFile file;
    const Outcome outcome = run_program({"ls", file.path(), "--kind", "entityresult"});
    EXPECT_EQ(outcome.exit_code, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "kob ls: there is no kind of block \"entityresult\", did you mean \"entityresults\"?\n");
}

TEST(Ls, RefusesAStateThatIsNoNumber)
{
    const SampleFile file;
    for (const char* state : {"one", "1,", "1,,2", "1 "}) {
        const Outcome outcome = run_program({"ls", file.path(), "--state", state});
        EXPECT_EQ(outcome.exit_code, 2) << state;
        EXPECT_NE(outcome.err.find("--state takes"), std::string::npos) << outcome.err;
    }
}

TEST(Ls, ListsStatesOfSeveralIndexValuesInTheirOrder)
{
    KobFile file;
    write_results(file, {.indexident = {7, 8, 9}, .indexval = {0.25, 10, -1}});
    file.close();
    const json block = run_program({"ls", file.path(), "--json"}).json().at("blocks").at(0);
    EXPECT_EQ(block.at("state"), json({7, 8, 9}));
    EXPECT_EQ(block.at("index").at(2), json({{"ident", 9}, {"value", -1.0}}));
    EXPECT_EQ(listed(file.path(), {"--state", "7,8,9"}), (Numbers{0}));
    const Outcome table = run_program({"ls", file.path()});
    EXPECT_NE(table.out.find("7,8,9  0.25, 10, -1  3 x 2"), std::string::npos) << table.out;
}

TEST(Ls, AddsPathsOnRequest)
{
    const SampleFile file;
    const Outcome outcome = run_program({"ls", file.path(), "--paths", "--kind", "system"});
    ASSERT_EQ(outcome.lines().size(), 2U);
    EXPECT_EQ(words(outcome.lines()[0]).back(), "PATH");
    EXPECT_EQ(words(outcome.lines()[1]).back(), "constant/system");
}

TEST(Ls, ListsKindsThatItDoesNotKnowWithKeyAndPath)
{
    const SampleFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        const Hid stranger = create_group(create_group(open_group(root, "post"), "custom"), "kobblock");
        const std::int32_t key = 4711;
        put_attribute(stranger, "block", H5T_STD_I32LE, {}, H5T_NATIVE_INT, &key);
    }
    const Outcome outcome = run_program({"ls", file.path()});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    const auto lines = outcome.lines();
    const auto found = std::find_if(lines.begin(), lines.end(),
                                    [](const std::string& line) { return line.find("4711") != std::string::npos; });
    ASSERT_NE(found, lines.end()) << outcome.out;
    EXPECT_EQ(words(*found), (std::vector<std::string>{"6", "4711", "?", "custom"}));
}

TEST(Ls, ReadsAFileWithoutThePostLinkFromItsRoot)
{
    KobFile file{create_empty};
    write_index(file);
    file.close();
    const Outcome outcome = run_program({"ls", file.path(), "--json"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.json().at("blocks").at(0).at("path"), "constant/indices/kobblock");
}

TEST(Ls, ReadsAGroupInsideAFile)
{
    const SampleFile file;
    const Outcome outcome = run_program({"ls", file.path() + "/results/constant", "--json"});
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    EXPECT_EQ(numbers_of(outcome.json()).size(), 6U);
}

TEST(Ls, ListsAnEmptyFile)
{
    KobFile file;
    file.close();
    const Outcome outcome = run_program({"ls", file.path(), "--json"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.json().at("blocks"), json::array());
}

TEST(Ls, LeavesOutNothingWhenOneBlockIsBroken)
{
    const SampleFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        const Hid index = open_group(root, "post/constant/indices/kobblock");
        ASSERT_GE(H5Adelete(index, "nindex"), 0);
    }
    const Outcome outcome = run_program({"ls", file.path(), "--json"});
    EXPECT_EQ(outcome.exit_code, 3);
    EXPECT_NE(outcome.err.find("kob ls: constant/indices: the block cannot be read: status -4002\n"), std::string::npos)
        << outcome.err;
    const json listing = outcome.json();
    ASSERT_EQ(listing.at("blocks").size(), 10U);
    EXPECT_EQ(listing["blocks"][2].at("key"), 20);
    EXPECT_FALSE(listing["blocks"][2].contains("variable"));
}

TEST(Ls, RefusesCountsThatNoFileCanMean)
{
    const SampleFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        const Hid block = open_group(root, "post/singlestate/state000000000001/entityresults/NODE/DISPLACEMENT/WING3/"
                                           "kobblock");
        set_int_attribute(block, "nindex", std::numeric_limits<std::int32_t>::max());
        const Hid coordinates = open_group(root, "post/constant/entityresults/NODE/COORDINATE/kobblock");
        set_int_attribute(coordinates, "nent", -3);
    }
    const Outcome outcome = run_program({"ls", file.path(), "--json"});
    EXPECT_EQ(outcome.exit_code, 3);
    EXPECT_NE(outcome.err.find("constant/entityresults/NODE/COORDINATE: the block cannot be read: \"entid\" has the "
                               "extent -3\n"),
              std::string::npos)
        << outcome.err;
    EXPECT_NE(outcome.err.find("state000000000001/entityresults/NODE/DISPLACEMENT/WING3: the block cannot be read"),
              std::string::npos)
        << outcome.err;
    EXPECT_EQ(numbers_of(outcome.json()).size(), 10U) << "the other blocks are listed all the same";
}

TEST(Ls, MakesNamesFromTheFileSafeForTheTerminal)
{
    KobFile file;
    write_results(file, {.variable = std::string{"RED\x1b[31m\nLINE\xff\xc2\x9b"}, .zone = "\xc3\x9c", .zoneid = -1});
    file.close();
    const Outcome outcome = run_program({"ls", file.path()});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.lines().size(), 2U) << "a line end in a name does not break the line";
    EXPECT_EQ(outcome.out.find('\x1b'), std::string::npos);
    EXPECT_NE(outcome.out.find("RED\\x1b[31m\\x0aLINE\\xff\\xc2\\x9b"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("\xc3\x9c"), std::string::npos) << "letters of other languages stay";
    EXPECT_FALSE(run_program({"ls", file.path(), "--json"}).json().is_discarded());
}
