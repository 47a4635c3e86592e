// SPDX-License-Identifier: BSD-3-Clause
// kob show: values of every kind, how a block is named, and blocks that lie about their contents.

#include <algorithm>
#include <limits>
#include <numeric>

#include "hdf5_file.hpp"
#include "program.hpp"
#include "sample_file.hpp"

using namespace kob_test;
using nlohmann::json;

namespace {

json shown(const std::string& path, const std::string& block, const std::vector<std::string>& options = {})
{
    std::vector<std::string> arguments{"show", path, block, "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = run_program(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome.json();
}

json dataset(const json& block, const std::string& name)
{
    for (const json& item : block.at("datasets"))
        if (item.at("name") == name) return item;
    return {};
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

constexpr const char* displacement = "singlestate/state000000000001/entityresults/NODE/DISPLACEMENT/WING3/kobblock";

/// A file whose constant block COORDINATE has `n` entities 1, 2, ... with the values 0, 0.5, 1, 1.5, ...
class LongFile : public KobFile {
public:
    explicit LongFile(std::int32_t n, std::int32_t flags = 0, std::array<std::int32_t, 2> params = {})
    {
        ResultBlock block{.variable = "COORDINATE", .flags = flags, .params = params};
        block.entid.resize(static_cast<std::size_t>(n));
        std::iota(block.entid.begin(), block.entid.end(), 1);
        block.res.resize(2 * static_cast<std::size_t>(n));
        for (std::size_t i = 0; i < block.res.size(); ++i) block.res[i] = 0.5 * static_cast<double>(i);
        write_results(*this, block);
        close();
    }
};

/// Runs `show` on a damaged block and expects one line of the program's own, no output and exit code 3.
void expect_refused(const std::string& path, const std::string& block, const std::string& why,
                    const std::string& option = "--all")
{
    const Outcome outcome = run_program({"show", path, block, option});
    EXPECT_EQ(outcome.exit_code, 3) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    const auto lines = outcome.error_lines();
    const auto own = std::count_if(lines.begin(), lines.end(),
                                   [](const std::string& line) { return line.starts_with("kob show: "); });
    EXPECT_EQ(own, 1) << outcome.err;
    EXPECT_TRUE(contains(outcome.err, why)) << outcome.err;
}

} // namespace

TEST(Show, PrintsAttributesAndTheFirstRows)
{
    const LongFile file{13};
    const Outcome outcome = run_program({"show", file.path(), "0"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    const auto lines = outcome.lines();
    ASSERT_GT(lines.size(), 10U);
    EXPECT_EQ(lines[0], "constant/entityresults/NODE/COORDINATE/WING3/kobblock");
    EXPECT_TRUE(contains(outcome.out, "\nnent       13\n")) << outcome.out;
    EXPECT_TRUE(contains(outcome.out, "\netypzone   WING\n"));
    EXPECT_TRUE(contains(outcome.out, "\nentid  int32 [13]\n  1 2 3 4 5 6 7 8 9 10\n  ... 3 more\n"));
    EXPECT_TRUE(contains(outcome.out, "\nfidglob  int32\n  9\n"));
    EXPECT_TRUE(contains(outcome.out, "\nres  float64 [13, 2]\n  0: 0 0.5\n  1: 1 1.5\n"));
    EXPECT_TRUE(contains(outcome.out, "\n  9: 9 9.5\n  ... 3 more\n"));
    EXPECT_FALSE(contains(outcome.out, "indexident")) << "a constant block has no index";
}

TEST(Show, PrintsAsManyRowsAsAskedFor)
{
    const LongFile file{13};
    const std::string two = run_program({"show", file.path(), "0", "--rows", "2"}).out;
    EXPECT_TRUE(contains(two, "  1: 1 1.5\n  ... 11 more\n")) << two;
    EXPECT_FALSE(contains(two, "  2: "));
    const std::string all = run_program({"show", file.path(), "0", "--all"}).out;
    EXPECT_TRUE(contains(all, "  12: 12 12.5\n")) << all;
    EXPECT_FALSE(contains(all, "more"));
    const std::string none = run_program({"show", file.path(), "0", "--rows", "0"}).out;
    EXPECT_TRUE(contains(none, "res  float64 [13, 2]\n  ... 13 more\n")) << none;
    EXPECT_EQ(run_program({"show", file.path(), "0", "--rows", "-1"}).exit_code, 2);
    EXPECT_EQ(run_program({"show", file.path(), "0", "--rows", "3", "--all"}).exit_code, 2);
}

TEST(Show, GivesEntityResultsAsJson)
{
    const SampleFile file;
    const json block = shown(file.path(), "8");
    EXPECT_EQ(block.at("key"), 1000);
    EXPECT_EQ(block.at("kind"), "entityresults");
    const json expected_attributes{{"etyp", "NODE"},
                                   {"nent", 3},
                                   {"etypvar", "DISPLACEMENT"},
                                   {"ncoo", 2},
                                   {"etypzone", "WING"},
                                   {"zoneid", 3},
                                   {"etypframe", "GLOBAL"},
                                   {"fswitch", 0},
                                   {"dmpswitch", 0},
                                   {"nindex", 1},
                                   {"indexic", 0}};
    EXPECT_EQ(block.at("attributes"), expected_attributes);
    EXPECT_EQ(dataset(block, "indexident").at("values"), json({2}));
    EXPECT_EQ(dataset(block, "indexval").at("values"), json({1.5}));
    EXPECT_EQ(dataset(block, "entid").at("values"), json({1, 2, 3}));
    EXPECT_EQ(dataset(block, "fidglob").at("values"), 9);
    const json res = dataset(block, "res");
    EXPECT_EQ(res.at("type"), "float64");
    EXPECT_EQ(res.at("shape"), json({3, 2}));
    EXPECT_EQ(res.at("complex"), false);
    EXPECT_EQ(res.at("values"), json::array({{0.0, 0.1}, {1.0, 1.1}, {2.0, 2.1}}));
    EXPECT_TRUE(dataset(block, "operator").is_null()) << "the block's switches say that there is none";
}

TEST(Show, GivesTheShapeOfTheWholeWithTheFirstRows)
{
    const LongFile file{13};
    const json res = dataset(shown(file.path(), "0", {"--rows", "1"}), "res");
    EXPECT_EQ(res.at("shape"), json({13, 2}));
    EXPECT_EQ(res.at("values"), json::array({{0.0, 0.5}}));
    EXPECT_EQ(dataset(shown(file.path(), "0", {"--all"}), "res").at("values").size(), 13U);
}

TEST(Show, PrintsComplexValuesAsOneWord)
{
    const SampleFile file;
    const std::string out = run_program({"show", file.path(), "9"}).out;
    EXPECT_TRUE(contains(out, "res  float64 [3, 1, 2]\n  0: 1+2i\n  1: 3-4i\n  2: 5+6i\n")) << out;
    const json res = dataset(shown(file.path(), "9"), "res");
    EXPECT_EQ(res.at("complex"), true);
    EXPECT_EQ(res.at("values"),
              json::array({json::array({{1.0, 2.0}}), json::array({{3.0, -4.0}}), json::array({{5.0, 6.0}})}));
}

TEST(Show, PrintsA4ByteNumberAsShortAsItIs)
{
    KobFile file;
    write_results(file, {.value_size = 4});
    file.close();
    EXPECT_TRUE(contains(run_program({"show", file.path(), "0"}).out, "  0: 0 0.1\n  1: 1 1.1\n"));
    const json values = dataset(shown(file.path(), "0"), "res").at("values");
    EXPECT_EQ(values.at(0).at(1).get<double>(), static_cast<double>(0.1F)) << "JSON holds the exact value";
}

TEST(Show, KnowsTheSystemBlock)
{
    const SampleFile file;
    const json block = shown(file.path(), "system");
    const json expected{
        {"title", "Cantilever"}, {"sys", "Test bench"}, {"solver_name", "bending"}, {"solver_vers", "1.5"},
        {"cdate", "20240229"},   {"ctime", "12:34:56"}, {"mdate", "20240301"},      {"mtime", "01:02:03"},
        {"nbunit", 2},           {"ndunit", 1}};
    EXPECT_EQ(block.at("attributes"), expected);
    EXPECT_EQ(dataset(block, "ubtyp").at("values"), json({"length", "time"}));
    EXPECT_EQ(dataset(block, "ubnam").at("values"), json({"m", "s"}));
    EXPECT_EQ(dataset(block, "udscal").at("values"), json({3.6}));
    EXPECT_EQ(dataset(block, "ndbunit").at("values"), json({2}));
    EXPECT_EQ(dataset(block, "udbid").at("values"), json({1, 2}));
    EXPECT_EQ(dataset(block, "udbexp").at("values"), json({1.0, -1.0}));
}

TEST(Show, KnowsIndexVariableAndVariableGroup)
{
    const SampleFile file;
    EXPECT_EQ(shown(file.path(), "indices").at("attributes"), json({{"nindex", 1}, {"etypvar", "INDEX"}}));
    const json variable = shown(file.path(), "variable/DISPLACEMENT");
    const json expected{{"varkey", "DISPLACEMENT"},
                        {"varclass", "vector"},
                        {"varnam", "Displacement"},
                        {"ncoo", 2},
                        {"rank", 1},
                        {"ndim", 2},
                        {"tensor", 4},
                        {"type", "mechanics"},
                        {"lenb", 2},
                        {"lend", 0},
                        {"lvmap", 1},
                        {"subslen", 3}};
    EXPECT_EQ(variable.at("attributes"), expected);
    EXPECT_EQ(dataset(variable, "ubid").at("values"), json({1, 1}));
    EXPECT_EQ(dataset(variable, "udid").at("values"), json::array());
    EXPECT_EQ(dataset(variable, "subsoffs").at("values"), json({0, 1}));
    EXPECT_EQ(dataset(variable, "vmap").at("values"), json::array({{1.0, 0.0}, {0.0, 2.0}}));
    EXPECT_TRUE(contains(run_program({"show", file.path(), "variable/DISPLACEMENT"}).out, "subscr  text [3]\n  xyy\n"));
    const json group = shown(file.path(), "MOTION");
    EXPECT_EQ(group.at("attributes"), json({{"etypvar", "MOTION"}, {"nvar", 2}, {"ncoo", 4}}));
    EXPECT_EQ(dataset(group, "cnt").at("values"), json({3, 1}));
    EXPECT_EQ(dataset(group, "varkey").at("values"), json({"DISPLACEMENT", "TEMPERATURE"}));
}

TEST(Show, KnowsConnectivitiesAndTheHeader)
{
    const SampleFile file;
    const json block = shown(file.path(), "QUAD4");
    EXPECT_FALSE(block.at("attributes").contains("etypvar")) << "there are no real parameters";
    EXPECT_EQ(dataset(block, "idele").at("values"), json({11, 12}));
    EXPECT_EQ(dataset(block, "pid").at("values"), json({5, 6}));
    EXPECT_EQ(dataset(block, "ic").at("values"), json::array({{1, 2, 5, 4}, {2, 3, 6, 5}}));
    EXPECT_EQ(dataset(block, "iparam").at("values"), json::array({{70}, {80}}));
    EXPECT_EQ(shown(file.path(), "kobheader").at("attributes").at("version"), "2 2 16");
}

TEST(Show, ReportsTheFiltersOfTheValues)
{
    constexpr std::int32_t deflate_and_shuffle = 2 | 16;
    const LongFile file{50, deflate_and_shuffle | 128, {4, 6}};
    EXPECT_TRUE(contains(run_program({"show", file.path(), "0"}).out,
                         "\nfilters: scale-offset with 4 decimals, shuffle, deflate 6\n"));
    const json filters = shown(file.path(), "0").at("filters");
    EXPECT_EQ(filters, json({{"flags", deflate_and_shuffle | 128}, {"scale", 4}, {"deflate", 6}}));
}

TEST(Show, TellsThePromisedErrorOfScaledValues)
{
    // Half a unit of the fourth decimal, a whole one where values lie next to the fill value.
    const LongFile scaled{50, 128, {4, 0}};
    EXPECT_TRUE(contains(run_program({"show", scaled.path(), "0"}).out,
                         "\nfilters: scale-offset with 4 decimals\n"
                         "promise: no value is off by more than 5e-05 (0.0001 next to 10000) and one unit in the last "
                         "place\n"));
    EXPECT_EQ(shown(scaled.path(), "0").at("promised_error"),
              json({{"decimals", 4}, {"error", 5e-5}, {"next_to_10000", 1e-4}}));

    const LongFile to_integers{50, 128, {0, 0}};
    EXPECT_TRUE(contains(run_program({"show", to_integers.path(), "0"}).out, "more than 0.5 (1 next to 10000)"));

    const LongFile exact{50, 2 | 16 | 64, {4, 6}};
    EXPECT_FALSE(contains(run_program({"show", exact.path(), "0"}).out, "promise"));
    EXPECT_FALSE(shown(exact.path(), "0").contains("promised_error"));
}

TEST(Show, FindsABlockByNumberPathOrTheEndOfItsPath)
{
    const SampleFile file;
    for (const char* name : {"7", displacement, "singlestate/state000000000001/entityresults/NODE/DISPLACEMENT/WING3",
                             "state000000000001/entityresults/NODE/DISPLACEMENT/WING3",
                             "state000000000001/entityresults/NODE/DISPLACEMENT/WING3/kobblock"})
        EXPECT_EQ(shown(file.path(), name).at("number"), 7) << name;
}

TEST(Show, NamesTheCandidatesOfAnAmbiguousName)
{
    const SampleFile file;
    const Outcome outcome = run_program({"show", file.path(), "DISPLACEMENT/WING3"});
    EXPECT_EQ(outcome.exit_code, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "kob show: \"DISPLACEMENT/WING3\" names more than one block:\n"
                           "  7  singlestate/state000000000001/entityresults/NODE/DISPLACEMENT/WING3\n"
                           "  8  singlestate/state000000000002/entityresults/NODE/DISPLACEMENT/WING3\n");
}

TEST(Show, SuggestsABlockForAMistypedOne)
{
    const SampleFile file;
    const Outcome outcome = run_program({"show", file.path(), "sytsem"});
    EXPECT_EQ(outcome.exit_code, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "kob show: there is no block \"sytsem\" in " + file.path() + ", did you mean \"system\"?\n");
    EXPECT_EQ(run_program({"show", file.path(), "QAUD4"}).error_lines().at(0).substr(0, 35),
              "kob show: there is no block \"QAUD4\"");
    for (const char* name : {"10", "99999999999999999999", "-1x", "ISPLACEMENT/WING3", "/", ""})
        EXPECT_EQ(run_program({"show", file.path(), "--", name}).exit_code, 2) << name;
}

TEST(Show, SaysThatAnUnknownKindCannotBeShown)
{
    const SampleFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        const Hid stranger = create_group(create_group(open_group(root, "post"), "custom"), "kobblock");
        const std::int32_t key = 4711;
        put_attribute(stranger, "block", H5T_STD_I32LE, {}, H5T_NATIVE_INT, &key);
    }
    const Outcome outcome = run_program({"show", file.path(), "custom"});
    EXPECT_EQ(outcome.exit_code, 3);
    EXPECT_EQ(outcome.err, "kob show: custom: a block of the unknown kind 4711\n");
}

TEST(Show, RefusesABlockWithoutItsValues)
{
    const SampleFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        const Hid block = open_group(root, std::string{"post/"} + displacement);
        ASSERT_GE(H5Ldelete(block, "res", H5P_DEFAULT), 0);
    }
    for (const char* option : {"--all", "--rows=1", "--json"})
        expect_refused(file.path(), "7", "the block cannot be read: status -6002\n", option);
}

TEST(Show, RefusesCountsThatTheArraysDoNotHave)
{
    for (const std::int32_t nent : {2, 4, 1000000, std::numeric_limits<std::int32_t>::max()}) {
        const SampleFile file;
        {
            const Hid root = open_file(file.path(), H5F_ACC_RDWR);
            set_int_attribute(open_group(root, std::string{"post/"} + displacement), "nent", nent);
        }
        expect_refused(file.path(), "7", "the block cannot be read: ");
    }
}

TEST(Show, RefusesComponentCountsThatTheValuesDoNotHave)
{
    for (const std::int32_t ncoo :
         {1, 3, -1, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        const SampleFile file;
        {
            const Hid root = open_file(file.path(), H5F_ACC_RDWR);
            set_int_attribute(open_group(root, std::string{"post/"} + displacement), "ncoo", ncoo);
        }
        expect_refused(file.path(), "7", "the block cannot be read: ");
    }
}

TEST(Show, RefusesUnitFactorsThatDoNotAddUp)
{
    for (const std::int32_t factors : {1, 3, 5000000, -2, std::numeric_limits<std::int32_t>::max()}) {
        const SampleFile file;
        {
            const Hid root = open_file(file.path(), H5F_ACC_RDWR);
            const Hid block = open_group(root, "post/constant/system/kobblock");
            const Hid counts = H5Dopen2(block, "ndbunit", H5P_DEFAULT);
            ASSERT_GE(H5Dwrite(counts, H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, &factors), 0);
        }
        expect_refused(file.path(), "system", "the block cannot be read: ");
    }
}

TEST(Show, RefusesAVariableOfAnAbsurdRank)
{
    for (const std::int32_t rank : {2, 31, 32, std::numeric_limits<std::int32_t>::max()}) {
        const SampleFile file;
        {
            const Hid root = open_file(file.path(), H5F_ACC_RDWR);
            set_int_attribute(open_group(root, "post/constant/variable/DISPLACEMENT/kobblock"), "rank", rank);
        }
        expect_refused(file.path(), "variable/DISPLACEMENT", "the block cannot be read: ");
    }
}

TEST(Show, RefusesANameLongerThanItsField)
{
    const SampleFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        const Hid block = open_group(root, "post/constant/connectivities/QUAD4/kobblock");
        ASSERT_GE(H5Adelete(block, "etypelem"), 0);
        constexpr std::size_t too_long = 5000;
        const std::string name(too_long, 'X');
        const Hid type = text_type(too_long);
        put_attribute(block, "etypelem", type, {}, type, name.data());
    }
    expect_refused(file.path(), "QUAD4", "the block cannot be read: status -4010\n");
}

TEST(Show, RefusesAnArrayAttributeWhereOneNumberIsDue)
{
    const SampleFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        const Hid block = open_group(root, "post/constant/connectivities/QUAD4/kobblock");
        ASSERT_GE(H5Adelete(block, "nele"), 0);
        const std::vector<std::int32_t> many(1000, 2);
        put_attribute(block, "nele", H5T_STD_I32LE, {many.size()}, H5T_NATIVE_INT, many.data());
    }
    expect_refused(file.path(), "QUAD4", "the block cannot be read: status -4020\n");
}
