// SPDX-License-Identifier: BSD-3-Clause
// kob info: header, HDF5, sizes, system and units, states and kinds.

#include <filesystem>
#include <numeric>
#include <vector>

#include "hdf5_file.hpp"
#include "program.hpp"
#include "sample_file.hpp"

using namespace kob_test;
using nlohmann::json;

namespace {

json info_of(const std::string& path)
{
    const Outcome outcome = run_program({"info", path, "--json"});
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome.json();
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::string hdf5_version()
{
    unsigned major = 0;
    unsigned minor = 0;
    unsigned release = 0;
    H5get_libversion(&major, &minor, &release);
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(release);
}

} // namespace

TEST(Info, SummarizesTheFileForPeople)
{
    const SampleFile file;
    const Outcome outcome = run_program({"info", file.path()});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    const std::string& out = outcome.out;
    EXPECT_EQ(outcome.lines().at(0), "File      " + file.path());
    EXPECT_TRUE(contains(out, "\nFormat    KOB 2.2.16\n")) << out;
    EXPECT_TRUE(contains(out, "\nHDF5      library " + hdf5_version() + ", version bounds earliest to latest\n"))
        << out;
    EXPECT_TRUE(contains(out, "\nTitle     Cantilever\n"));
    EXPECT_TRUE(contains(out, "\nSolver    bending 1.5\n"));
    EXPECT_TRUE(contains(out, "\nCreated   20240229 12:34:56\n"));
    EXPECT_TRUE(contains(out, "\nChanged   20240301 01:02:03\n"));
    EXPECT_TRUE(contains(out, "\n   7  speed  m s^-1     3.6\n")) << out;
    EXPECT_TRUE(contains(out, "\n1001  entityresults (complex)       1      1128\n")) << out;
    EXPECT_TRUE(contains(out, "\nSTATE  INDEX  BLOCKS\n    1  0.5         1\n    2  1.5         2\n")) << out;
    EXPECT_EQ(out.find('\x1b'), std::string::npos) << "no colour into a file";
    EXPECT_FALSE(contains(out, "KOB INFO")) << "the library's own talk stays out of the results";
}

TEST(Info, GivesTheSameAsJson)
{
    const SampleFile file;
    const json info = info_of(file.path());
    EXPECT_EQ(info.at("header"), json({{"status", 0}, {"version", "2 2 16"}}));
    EXPECT_EQ(info.at("hdf5"),
              json({{"library", hdf5_version()}, {"lower_bound", "earliest"}, {"upper_bound", "latest"}}));
    EXPECT_EQ(info.at("stored_bytes"), std::filesystem::file_size(file.path()));
    EXPECT_EQ(info.at("blocks"), 10);
    EXPECT_EQ(info.at("blocks_of_unknown_size"), 0);
    EXPECT_EQ(info.at("system").at("solver_name"), "bending");
    EXPECT_EQ(info.at("base_units").at(1),
              json({{"id", 2}, {"name", "s"}, {"of", "time"}, {"factor", 1.0}, {"shift", 0.0}}));
    EXPECT_EQ(info.at("derived_units"),
              json::array({{{"id", 7},
                            {"name", "speed"},
                            {"factor", 3.6},
                            {"factors", {{{"id", 1}, {"exponent", 1.0}}, {{"id", 2}, {"exponent", -1.0}}}}}}));
    EXPECT_EQ(info.at("states"), json::array({{{"state", {1}}, {"index", {0.5}}, {"blocks", 1}},
                                              {{"state", {2}}, {"index", {1.5}}, {"blocks", 2}}}));
}

TEST(Info, CountsBlocksAndUnpackedBytesPerKind)
{
    const SampleFile file;
    const json info = info_of(file.path());
    // four names of 256 and seven integers, three identifiers, fidglob, six values; two of three with a state index
    constexpr std::int64_t constant_results = 4 * 256 + 7 * 4 + 3 * 4 + 4 + 6 * 8;
    constexpr std::int64_t state_results = constant_results + 4 + 8;
    json entity_results;
    std::int64_t sum = 0;
    for (const json& kind : info.at("kinds")) {
        if (kind.at("key") == 1000) entity_results = kind;
        sum += kind.at("unpacked_bytes").get<std::int64_t>();
    }
    EXPECT_EQ(entity_results, json({{"key", 1000},
                                    {"kind", "entityresults"},
                                    {"blocks", 3},
                                    {"unpacked_bytes", constant_results + 2 * state_results},
                                    {"blocks_of_unknown_size", 0}}));
    EXPECT_EQ(info.at("unpacked_bytes"), sum);
}

TEST(Info, TellsThePromisedErrorOfScaledBlocks)
{
    KobFile file;
    std::vector<std::int32_t> entid(20);
    std::iota(entid.begin(), entid.end(), 1);
    const std::vector<double> res(40, 0.25);
    for (const std::int32_t state : {1, 2}) {
        write_results(file, {.variable = "DISPLACEMENT",
                             .entid = entid,
                             .res = res,
                             .indexident = {state},
                             .indexval = {0.5},
                             .flags = 128 | 2,
                             .params = {6, 1}});
    }
    write_results(file, {.variable = "STRESS", .entid = entid, .res = res, .flags = 128, .params = {1, 0}});
    write_results(file, {.variable = "COORDINATE", .entid = entid, .res = res, .flags = 2, .params = {0, 1}});
    file.close();

    const std::string out = run_program({"info", file.path()}).out;
    EXPECT_TRUE(contains(out, "\nSCALED        DECIMALS  ERROR AT MOST  NEXT TO 10000  BLOCKS\n"
                              "DISPLACEMENT         6          5e-07          1e-06       2\n"
                              "STRESS               1           0.05            0.1       1\n"))
        << out;
    EXPECT_EQ(info_of(file.path()).at("scaled"), json::array({{{"kind", "entityresults"},
                                                               {"variable", "DISPLACEMENT"},
                                                               {"decimals", 6},
                                                               {"error", 5e-7},
                                                               {"next_to_10000", 1e-6},
                                                               {"blocks", 2}},
                                                              {{"kind", "entityresults"},
                                                               {"variable", "STRESS"},
                                                               {"decimals", 1},
                                                               {"error", 0.05},
                                                               {"next_to_10000", 0.1},
                                                               {"blocks", 1}}}));
}

TEST(Info, SaysNothingOfScalingWhereThereIsNone)
{
    const SampleFile file;
    EXPECT_FALSE(contains(run_program({"info", file.path()}).out, "SCALED"));
    EXPECT_EQ(info_of(file.path()).at("scaled"), json::array());
}

TEST(Info, SaysThatThereIsNoHeaderAndNoSystem)
{
    KobFile file;
    file.close();
    const Outcome outcome = run_program({"info", file.path()});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_TRUE(contains(outcome.out, "\nFormat    no file header\n")) << outcome.out;
    EXPECT_FALSE(contains(outcome.out, "Title"));
    const json info = info_of(file.path());
    EXPECT_TRUE(info.at("header").is_null());
    EXPECT_TRUE(info.at("system").is_null());
    EXPECT_EQ(info.at("kinds"), json::array());
}

TEST(Info, SaysWhatIsWrongWithAHeader)
{
    const SampleFile file;
    const auto stamp = [&](std::string text) {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        const Hid header = H5Dopen2(root, "post/kobheader/kobheader", H5P_DEFAULT);
        constexpr std::size_t length = 64;
        text.resize(length, ' ');
        const Hid type = text_type(length);
        ASSERT_GE(H5Dwrite(header, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, text.data()), 0);
    };
    stamp("\x88KOB\r\n\x1a\n2 2 16");
    EXPECT_TRUE(contains(run_program({"info", file.path()}).out, "\nFormat    KOB 2.2.16, wrong signature\n"));
    EXPECT_EQ(run_program({"info", file.path(), "--json"}).json().at("header").at("status"), 1);
    stamp("\x89KOB\r\n\x1a\n2 2 17");
    EXPECT_TRUE(
        contains(run_program({"info", file.path()}).out, "\nFormat    KOB 2.2.17, not the version of this program\n"));
}

TEST(Info, KeepsToTheBlocksThatCanBeRead)
{
    const SampleFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        ASSERT_GE(H5Adelete(open_group(root, "post/constant/system/kobblock"), "nbunit"), 0);
    }
    const Outcome outcome = run_program({"info", file.path(), "--json"});
    EXPECT_EQ(outcome.exit_code, 3);
    EXPECT_TRUE(contains(outcome.err, "kob info: constant/system: the block cannot be read: status -4002\n"))
        << outcome.err;
    EXPECT_EQ(outcome.json().at("blocks"), 10);
    EXPECT_EQ(outcome.json().at("blocks_of_unknown_size"), 1);
    EXPECT_TRUE(outcome.json().at("system").is_null());
}
