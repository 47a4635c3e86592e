// SPDX-License-Identifier: BSD-3-Clause
// "kob import": whole result files of the solver, compared number by number, the options, and what is refused.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <import.hpp>
#include <temp_file.hpp>

#include "import_check.hpp"
#include "program.hpp"

namespace {

namespace fs = std::filesystem;
using namespace kob_test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// --- a small file by hand ------------------------------------------------------------------------------------------

const std::string head = "    1C\n"
                         "    1Ubeam under load\n"
                         "    1UUSER\n"
                         "    1UDATE              3.march.2026\n"
                         "    1UTIME              09:05:43\n"
                         "    1UPGM               CalculiX\n"
                         "    1UVERSION           Version 2.20\n";
const std::string mesh = "    2C                             2                                     1\n"
                         " -1         7 0.00000E+00-1.00000E+00 2.50000E-01\n"
                         " -1        30-1.00000E+00-2.00000E+00-3.00000E+00\n"
                         " -3\n"
                         "    3C                             1                                     1\n"
                         " -1        99   11    0    3\n"
                         " -2        30         7\n"
                         " -3\n";
const std::string end = " 9999\n";

/// A scalar result at both nodes.
std::string scalar(const std::string& name, int analysis, int set, const std::string& value,
                   const std::string& v7 = "1.00000E+00", const std::string& v30 = "2.00000E+00")
{
    return fmt::format("    1PSTEP                  {0:12}{0:12}{1:12}\n"
                       "  100CL  {2:3}{3:>12}           2                    {4:2}{0:5}           1\n"
                       " -4  {5:8}    1    1\n"
                       " -5  V           1    1    0    0\n"
                       " -1         7{6:>12}\n"
                       " -1        30{7:>12}\n"
                       " -3\n",
                       set, 1, 100 + set, value, analysis, name, v7, v30);
}

/// A folder with a result file in it.
class Case {
public:
    explicit Case(const std::string& text) { std::ofstream{frd(), std::ios::binary} << text; }

    std::string frd() const { return folder_ / "run.frd"; }
    std::string kob() const { return folder_ / "run.kob"; }
    Outcome import(std::vector<std::string> options = {}) const
    {
        options.insert(options.begin(), {"import", frd(), kob()});
        return run_program(options);
    }
    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator{folder_.path()})
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    TempDir folder_;
};

double largest_difference(const std::vector<double>& a, const std::vector<double>& b)
{
    EXPECT_EQ(a.size(), b.size());
    double largest = 0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
    return largest;
}

TEST(Import, of_a_small_file_holds_all_of_it)
{
    const Case c{head + mesh + scalar("NDTEMP", 0, 1, "0.500000000") + scalar("NDTEMP", 0, 2, "1.000000000") + end};
    const Outcome outcome = c.import();
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(c.files(), ElementsAre("run.frd", "run.kob"));
    ImportCheck check{c.frd(), c.kob()};
    check.run();
    EXPECT_EQ(check.numbers(), 6U + 4U + 2U * (2U + 4U)) << "coordinates, element, values and step records";
}

TEST(Import, keeps_who_wrote_the_file_and_when)
{
    const Case c{head + mesh + end};
    ASSERT_EQ(c.import({"--units", "mm,t,s,C"}).exit_code, 0);
    const KobFile file{c.kob(), read_only};
    const std::int64_t block = file.block("constant/system/kobblock");
    Text256 title, sys, solver, version;
    Text8 cdate, ctime, mdate, mtime;
    std::int32_t nbunit = 0, ndunit = 77, flags = 0, status = 77;
    std::array<std::int32_t, 2> params{};
    std::vector<std::int32_t> ubid;
    Texts256 ubtyp, ubnam;
    std::vector<double> ubshift, ubcon;
    for (const std::int32_t mode : {1, 2}) {
        KOB_READ_SYSTEM(&block, &mode, title.data(), sys.data(), solver.data(), version.data(), cdate.data(),
                        ctime.data(), mdate.data(), mtime.data(), &nbunit, &ndunit, ubid.data(), ubtyp.data(),
                        ubnam.data(), ubshift.data(), ubcon.data(), nullptr, nullptr, nullptr, nullptr, nullptr,
                        nullptr, &flags, params.data(), &status);
        ASSERT_EQ(status, 0);
        if (mode == 2) break;
        ubid.resize(static_cast<std::size_t>(nbunit));
        ubshift.resize(ubid.size());
        ubcon.resize(ubid.size());
        ubtyp = Texts256(ubid.size());
        ubnam = Texts256(ubid.size());
    }
    EXPECT_EQ(title.text(), "beam under load");
    EXPECT_EQ(solver.text(), "CalculiX");
    EXPECT_EQ(version.text(), "Version 2.20");
    EXPECT_EQ(cdate.text(), "20260303");
    EXPECT_EQ(ctime.text(), "090543");
    EXPECT_THAT(mdate.text(), testing::MatchesRegex("[0-9]{8}"));
    EXPECT_THAT(mtime.text(), testing::MatchesRegex("[0-9]{6}"));
    EXPECT_EQ(ndunit, 0);
    EXPECT_THAT(ubid, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(ubtyp.texts(), ElementsAre("LENGTH", "MASS", "TIME", "TEMPERATURE"));
    EXPECT_THAT(ubnam.texts(), ElementsAre("mm", "t", "s", "C"));
    EXPECT_THAT(ubcon, ElementsAre(1e-3, 1000, 1, 1));
    EXPECT_THAT(ubshift, ElementsAre(0, 0, 0, 273.15));
}

TEST(Import, claims_units_only_when_told)
{
    const std::string text = head + mesh + scalar("ENER", 0, 1, "1.000000000") + end;
    const auto factors = [](const std::string& kob) {
        const KobFile file{kob, read_only};
        const std::int64_t block = file.block("constant/variable/ENER/kobblock");
        const std::int32_t mode = 1, arrays = 2;
        Text256 t;
        std::int32_t n = 0, rank = 0, ndim = 0, tensor = 0, lvmap = 0, subslen = 0, lenb = 0, lend = 0, flags = 0,
                     status = 0;
        std::array<std::int32_t, 2> params{};
        KOB_READ_VARIABLE(&block, &mode, nullptr, t.data(), t.data(), t.data(), &n, &rank, &ndim, &tensor, t.data(),
                          &lvmap, &subslen, &lenb, &lend, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                          nullptr, nullptr, nullptr, &flags, params.data(), &status);
        EXPECT_EQ(status, 0);
        std::vector<std::int32_t> ubid(static_cast<std::size_t>(lenb)), one(1), two(1), three(1), four(1);
        std::vector<double> ubexp(ubid.size()), none(1);
        std::string subscr(static_cast<std::size_t>(subslen), ' ');
        KOB_READ_VARIABLE(&block, &arrays, nullptr, t.data(), t.data(), t.data(), &n, &rank, &ndim, &tensor, t.data(),
                          &lvmap, &subslen, &lenb, &lend, one.data(), two.data(), ubid.data(), ubexp.data(),
                          three.data(), none.data(), subscr.data(), three.data(), four.data(), none.data(), &flags,
                          params.data(), &status);
        EXPECT_EQ(status, 0);
        std::vector<std::pair<std::int32_t, double>> all;
        for (std::size_t i = 0; i < ubid.size(); ++i) all.emplace_back(ubid[i], ubexp[i]);
        return all;
    };
    const Case without{text};
    ASSERT_EQ(without.import().exit_code, 0);
    EXPECT_THAT(factors(without.kob()), IsEmpty());
    const Case with{text};
    ASSERT_EQ(with.import({"--units", "m,kg,s"}).exit_code, 0);
    using testing::Pair;
    EXPECT_THAT(factors(with.kob()), ElementsAre(Pair(1, -1.0), Pair(2, 1.0), Pair(3, -2.0))) << "energy per volume";
}

TEST(Import, knows_what_the_index_value_of_each_state_is)
{
    const Case c{head + mesh + scalar("A", 0, 1, "0.500000000") + scalar("A", 1, 2, "7.00000E-05") +
                 scalar("A", 2, 3, "117547.9305") + scalar("A", 4, 4, "53.53337523") +
                 scalar("B", 1, 5, "500.0000000") + scalar("BI", 1, 5, "500.0000000") + end};
    ASSERT_EQ(c.import().exit_code, 0);
    ImportCheck{c.frd(), c.kob()}.run();
    const KobFile file{c.kob(), read_only};
    const std::int64_t block = file.block("constant/variablegroup/INDEX/kobblock");
    const std::int32_t mode = 3; // attributes and arrays, which the test knows to be three long
    Text256 name;
    Texts256 keys(3);
    std::int32_t nvar = 0, ncoo = 0, flags = 0, status = 77;
    std::array<std::int32_t, 2> params{};
    std::array<std::int32_t, 3> cnt{}, offs{};
    KOB_READ_VARIABLEGROUP(&block, &mode, nullptr, name.data(), &nvar, &ncoo, cnt.data(), offs.data(), keys.data(),
                           &flags, params.data(), &status);
    ASSERT_EQ(nvar, 3);
    const std::vector<std::string> wanted = {"TIME", "TIME", "FREQUENCY", "LOADFACTOR", "FREQUENCY"};
    const std::vector<double> values = {0.5, 7e-5, 117547.9305, 53.53337523, 500};
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const auto r = read_entity_results(
            file, fmt::format("singlestate/state{:012}/entityresults/NODE/{}/kobblock", i + 1, i == 4 ? "B" : "A"));
        EXPECT_EQ(keys[static_cast<std::size_t>(r.indexic - 1)], wanted[i]);
        EXPECT_EQ(r.indexval, values[i]);
    }
}

TEST(Import, makes_one_complex_block_of_real_and_imaginary_parts)
{
    const Case c{head + mesh + scalar("TOSTRAIN", 1, 1, "500.0000000", "1.00000E+00", "2.00000E+00") +
                 scalar("ENER", 1, 1, "500.0000000") +
                 scalar("TOSTRAII", 1, 1, "500.0000000", "-3.0000E+00", "4.00000E-01") + end};
    ASSERT_EQ(c.import().exit_code, 0);
    const KobFile file{c.kob(), read_only};
    const auto r = read_entity_results(file, "singlestate/state000000000001/entityresults/NODE/TOSTRAIN/kobblock");
    EXPECT_EQ(r.key, 1001);
    EXPECT_THAT(r.values, ElementsAre(1, -3, 2, 0.4));
    EXPECT_THAT(all_blocks(file), Not(testing::Contains(HasSubstr("TOSTRAII"))));
    const auto real = read_entity_results(file, "singlestate/state000000000001/entityresults/NODE/ENER/kobblock");
    EXPECT_EQ(real.key, 1000) << "a result without a partner stays real";
}

TEST(Import, stores_as_it_is_told)
{
    std::string rows, ids;
    for (int i = 1; i <= 50; ++i) rows += fmt::format(" -1{:10}{:12.5E}\n", 3 * i, 1.234567 * i);
    const std::string header = "  100CL  101 1.000000000          50                     0    1           1\n";
    std::string text = head + mesh;
    for (const char* name : {"NDTEMP", "ENER"}) {
        text += fmt::format("{0} -4  {1:8}    1    1\n -5  {1:8}    1    1    0    0\n{2} -3\n", header, name, rows);
    }
    const auto block = [](const Case& c, const std::string& name) {
        return read_entity_results(KobFile{c.kob(), read_only},
                                   "singlestate/state000000000001/entityresults/NODE/" + name + "/kobblock");
    };

    const Case plain{text + end};
    ASSERT_EQ(plain.import().exit_code, 0);
    EXPECT_EQ(block(plain, "ENER").filter_flags, 0);
    ImportCheck{plain.frd(), plain.kob()}.run();

    const Case packed{text + end};
    ASSERT_EQ(packed.import({"--deflate", "7", "--shuffle", "--float", "4"}).exit_code, 0);
    EXPECT_EQ(block(packed, "ENER").filter_flags, 2 | 16) << "deflate and shuffle of floating-point numbers";
    EXPECT_EQ(block(packed, "ENER").filter_params[1], 7);
    ImportCheck{packed.frd(), packed.kob(), {4, {}, false}}.run();

    const Case scaled{text + end};
    const Outcome outcome = scaled.import({"--scale", "ENER=2"});
    ASSERT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.lines(), (std::vector<std::string>{fmt::format(
                                   "ENER: the largest error of a value is {}, with 2 decimals",
                                   largest_difference(block(plain, "ENER").values, block(scaled, "ENER").values))}));
    EXPECT_EQ(block(scaled, "ENER").filter_flags, 128);
    EXPECT_EQ(block(scaled, "ENER").filter_params[0], 2);
    EXPECT_EQ(block(scaled, "NDTEMP").filter_flags, 0) << "only the variable that was named";
    EXPECT_NE(block(scaled, "ENER").values, block(plain, "ENER").values) << "two digits cannot hold the numbers";
    ImportCheck{scaled.frd(), scaled.kob(), {8, {{"ENER", 0.0051}}, false}}.run();
}

TEST(Import, has_a_part_for_each_material_and_a_set_for_each_group)
{
    const Case c{head + "    1UMAT    3STEEL\n    1UMAT    5RUBBER, SOFT\n" +
                 "    2C                             1                                     1\n"
                 " -1         7 0.00000E+00 0.00000E+00 0.00000E+00\n -3\n"
                 "    3C                             4                                     1\n"
                 " -1        99   11    4    3\n -2         7         7\n"
                 " -1        12    7    2    8\n -2         7         7         7\n"
                 " -1         5   11    2    3\n -2         7         7\n"
                 " -1        98   11    0    0\n -2         7         7\n -3\n" +
                 end};
    const Outcome outcome = c.import();
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    ImportCheck{c.frd(), c.kob()}.run();
    const KobFile file{c.kob(), read_only};
    const auto parts = read_parts(file, "constant/parts/PART/kobblock");
    EXPECT_THAT(parts.pid, ElementsAre(0, 3, 5, 8));
    EXPECT_THAT(parts.mid, ElementsAre(0, 3, 5, 8));
    EXPECT_THAT(parts.titles, ElementsAre("", "STEEL", "RUBBER, SOFT", ""));
    const auto groups = read_collectors(file, "constant/collector/GROUP/kobblock");
    EXPECT_THAT(groups.idcoll, ElementsAre(2, 4));
    EXPECT_THAT(groups.nent, ElementsAre(2, 1));
    EXPECT_THAT(groups.entid, ElementsAre(12, 5, 99));
    EXPECT_THAT(read_identifiers(file, "ELEMENT").uid, ElementsAre(99, 11, 12, 7, 5, 11, 98, 11));
    EXPECT_THAT(read_text_lines(file, "constant/text/HEADER/kobblock"),
                AllOf(testing::SizeIs(9), testing::Contains("    1UVERSION           Version 2.20"),
                      testing::Contains("    1UMAT    5RUBBER, SOFT")));
}

TEST(Import, appends_the_states_of_a_result_to_one_series)
{
    const Case c{head + mesh + scalar("A", 0, 1, "0.500000000") + scalar("B", 0, 1, "0.500000000") +
                 scalar("A", 0, 2, "1.000000000", "5.00000E+00") + scalar("A", 2, 3, "117547.9305") +
                 scalar("A", 0, 4, "2.000000000", "7.00000E+00", "8.00000E+00") + end};
    const Outcome outcome = c.import({"--series"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    ImportCheck{c.frd(), c.kob(), {8, {}, true}}.run();
    const KobFile file{c.kob(), read_only};
    const auto a = read_series(file, "multistate/TIME/multientityresults/NODE/A/kobblock");
    EXPECT_EQ(a.key, 1050);
    EXPECT_THAT(a.indexident, ElementsAre(1, 2, 4));
    EXPECT_THAT(a.indexval, ElementsAre(0.5, 1, 2));
    EXPECT_THAT(a.ids, ElementsAre(7, 30));
    EXPECT_THAT(a.values, ElementsAre(1, 2, 5, 2, 7, 8));
    const auto mode = read_series(file, "multistate/FREQUENCY/multientityresults/NODE/A/kobblock");
    EXPECT_THAT(mode.indexident, ElementsAre(3));
    EXPECT_THAT(all_blocks(file), Not(testing::Contains(HasSubstr("singlestate"))));
    // The other readers of the program take such a file.
    EXPECT_EQ(run_program({"ls", c.kob()}).exit_code, 0);
    EXPECT_EQ(run_program({"info", c.kob()}).exit_code, 0);
}

TEST(Import, appends_complex_states_too)
{
    std::string text = head + mesh;
    for (int set = 1; set <= 3; ++set) {
        const std::string frequency = fmt::format("{}00.0000000", set);
        text +=
            scalar("DISP", 1, set, frequency) + scalar("DISPI", 1, set, frequency, fmt::format("-{}.00000E+00", set));
    }
    const Case c{text + end};
    ASSERT_EQ(c.import({"--series"}).exit_code, 0);
    ImportCheck{c.frd(), c.kob(), {8, {}, true}}.run();
    const auto r =
        read_series(KobFile{c.kob(), read_only}, "multistate/FREQUENCY/multientityresults/NODE/DISP/kobblock");
    EXPECT_EQ(r.key, 1051);
    EXPECT_THAT(r.indexval, ElementsAre(100, 200, 300));
    EXPECT_THAT(r.values, ElementsAre(1, -1, 2, 2, 1, -2, 2, 2, 1, -3, 2, 2));
}

TEST(Import, begins_another_series_where_the_nodes_change)
{
    std::string turned = scalar("A", 0, 2, "2.000000000", "5.00000E+00");
    turned.replace(turned.find(" -1         7"), 13, " -1         8");
    const Case c{head + mesh + scalar("A", 0, 1, "1.000000000") + turned +
                 scalar("A", 0, 3, "3.000000000", "6.00000E+00") + scalar("A", 0, 3, "3.000000000", "9.00000E+00") +
                 scalar("A", 0, 4, "4.000000000") + end};
    const Outcome outcome = c.import({"--series"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_THAT(outcome.error_lines(),
                ElementsAre(HasSubstr("A of state 2 has other nodes or another kind of numbers than before: imported "
                                      "as set 1 of the series"),
                            HasSubstr("A of state 3 stands there again: imported as set 2 of the series")));
    ImportCheck{c.frd(), c.kob(), {8, {}, true}}.run();
    const KobFile file{c.kob(), read_only};
    const std::string path = "multistate/TIME/multientityresults/NODE/A";
    EXPECT_THAT(read_series(file, path + "/kobblock").indexident, ElementsAre(1, 3, 4));
    EXPECT_THAT(read_series(file, path + "_set1/kobblock").ids, ElementsAre(8, 30));
    EXPECT_THAT(read_series(file, path + "_set2/kobblock").values, ElementsAre(9, 2));
}

TEST(Import, scales_a_series_only_if_all_its_states_are_numbers)
{
    const auto file_with = [](const std::string& odd) {
        std::string text = head + mesh;
        for (int set = 1; set <= 2; ++set) {
            std::string rows;
            for (int i = 1; i <= 20; ++i) {
                rows += fmt::format(" -1{:10}{:>12}\n", i, i == 5 && set == 2 ? odd : fmt::format("{:.5E}", 1.25 * i));
            }
            text += fmt::format("  100CL{:5} {}.000000000          20                     0{:5}           1\n"
                                " -4  ENER        1    1\n -5  ENER        1    1    0    0\n{} -3\n",
                                set, set, set, rows);
        }
        return text + end;
    };
    const std::string path = "multistate/TIME/multientityresults/NODE/ENER/kobblock";
    const Case odd{file_with("nan")};
    const Outcome outcome = odd.import({"--series", "--scale", "ENER=1"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_THAT(outcome.error_lines(),
                ElementsAre(HasSubstr("ENER holds values that are no numbers: stored unscaled")));
    ImportCheck{odd.frd(), odd.kob(), {8, {}, true}}.run();
    EXPECT_EQ(read_series(KobFile{odd.kob(), read_only}, path).filter_flags, 0);

    const Case good{file_with("9.99000E+00")};
    const Outcome series = good.import({"--series", "--scale", "ENER=1"});
    EXPECT_EQ(series.err, "");
    EXPECT_EQ(series.lines().size(), 1U) << series.out;
    double error = -1;
    ASSERT_EQ(std::sscanf(series.out.c_str(), "ENER: the largest error of a value is %lf, with 1 decimals", &error), 1);
    EXPECT_GE(error, 0);
    EXPECT_LE(error, 0.0501);
    ImportCheck{good.frd(), good.kob(), {8, {{"ENER", 0.051}}, true}}.run();
    EXPECT_EQ(read_series(KobFile{good.kob(), read_only}, path).filter_flags, 128);
}

TEST(Import, never_scales_what_is_no_number)
{
    std::string rows;
    for (int i = 1; i <= 20; ++i)
        rows += fmt::format(" -1{:10}{:>12}\n", i, i == 5 ? "nan" : i == 6 ? "-inf" : "1.25000E+00");
    const Case c{head + mesh + "  100CL  101 1.000000000          20                     0    1           1\n" +
                 " -4  ENER        1    1\n -5  ENER        1    1    0    0\n" + rows + " -3\n" + end};
    const Outcome outcome = c.import({"--scale", "ENER=1"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("ENER of state 1 holds values that are no numbers: stored unscaled"));
    ImportCheck{c.frd(), c.kob()}.run();
}

TEST(Import, never_scales_a_range_that_cannot_be_read_back)
{
    std::string rows;
    for (int i = 1; i <= 20; ++i) rows += fmt::format(" -1{:10}{:12.5E}\n", i, 50.0 * i);
    const std::string text = head + mesh +
                             "  100CL  101 1.000000000          20                     0    1           1\n"
                             " -4  ENER        1    1\n -5  ENER        1    1    0    0\n" +
                             rows + " -3\n" + end;
    for (const bool series : {false, true}) {
        const std::string path = series ? "multistate/TIME/multientityresults/NODE/ENER/kobblock"
                                        : "singlestate/state000000000001/entityresults/NODE/ENER/kobblock";
        // 950 wide: 9.5e8 steps of 6 digits are less than 2^30, 9.5e9 steps are more.
        for (const auto& [scale, size, flags] : std::vector<std::tuple<std::string, std::int32_t, std::int32_t>>{
                 {"ENER=6", 4, 128}, {"ENER=7", 4, 0}, {"ENER=7", 8, 128}, {"ENER=17", 8, 0}}) {
            const Case c{text};
            std::vector<std::string> options = {"--scale", scale, "--float", std::to_string(size)};
            if (series) options.emplace_back("--series");
            const Outcome outcome = c.import(options);
            EXPECT_EQ(outcome.exit_code, 0);
            EXPECT_EQ(outcome.err.find("too far apart") == std::string::npos, flags != 0) << outcome.err;
            ImportCheck{c.frd(), c.kob(), {size, {{"ENER", 1e-4}}, series}}.run();
            const KobFile file{c.kob(), read_only};
            EXPECT_EQ(series ? read_series(file, path).filter_flags : read_entity_results(file, path).filter_flags,
                      flags)
                << scale;
        }
    }
}

TEST(Import, keeps_a_result_that_a_state_holds_twice)
{
    const Case c{head + mesh + scalar("A", 0, 1, "1.000000000") + scalar("A", 0, 1, "1.000000000", "5.00000E+00") +
                 end};
    const Outcome outcome = c.import();
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("A stands in state 1 again: imported as set 1"));
    ImportCheck{c.frd(), c.kob()}.run();
}

TEST(Import, gives_other_components_another_variable)
{
    std::string other = scalar("A", 0, 2, "2.000000000");
    other.replace(other.find(" -5  V "), 7, " -5  Q ");
    std::string slash = scalar("A/B", 0, 2, "2.000000000");
    const Case c{head + mesh + scalar("A", 0, 1, "1.000000000") + other + end};
    const Outcome outcome = c.import();
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("result A is imported as variable A_2"));
    ImportCheck{c.frd(), c.kob()}.run();

    const Case d{head + mesh + slash + scalar("TIME", 0, 2, "2.000000000") + end};
    EXPECT_THAT(d.import().err, AllOf(HasSubstr("result A/B is imported as variable A_B"),
                                      HasSubstr("result TIME is imported as variable TIME_2")));
    EXPECT_EQ(read_entity_results(KobFile{d.kob(), read_only},
                                  "singlestate/state000000000001/entityresults/NODE/A_B/kobblock")
                  .values.size(),
              2U);
}

TEST(Import, names_what_it_leaves_out)
{
    const Case c{head + "    1UMAT    3STEEL\n    1PODD   3\n    8X\n" + mesh + end};
    const Outcome outcome = c.import({"--scale", "NOTHING=3"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_THAT(outcome.error_lines(),
                testing::UnorderedElementsAre("kob import: warning: line 9: unknown record \"1PODD\": not imported",
                                              "kob import: warning: line 10: unknown record \"8X\": not imported",
                                              "kob import: warning: --scale NOTHING=3: the file has no such result"));
}

TEST(Import, of_a_broken_file_names_the_line_and_leaves_nothing)
{
    const std::string good = head + mesh + scalar("A", 0, 1, "1.000000000");
    const std::string bad_value = head + mesh + scalar("A", 0, 1, "1.000000000", "1.0x") + end;
    for (const auto& [text, message] : std::vector<std::pair<std::string, std::string>>{
             {good, "line 23: the file ends without the end record 9999"},
             {good.substr(0, good.size() - 10), "line 22: the file ends inside result A of line 17"},
             {bad_value, "line 20: a value of result A is no number"},
             {"", "line 1: the file is empty"},
             {"something else\n", "line 1: this is no result file"}}) {
        const Case c{text};
        const Outcome outcome = c.import();
        EXPECT_EQ(outcome.exit_code, 3) << message;
        EXPECT_THAT(outcome.err, HasSubstr(message));
        EXPECT_THAT(c.files(), ElementsAre("run.frd")) << message;
    }
}

TEST(Import, never_replaces_a_file_unasked)
{
    const Case c{head + mesh + end};
    std::ofstream{c.kob()} << "precious";
    Outcome outcome = c.import();
    EXPECT_EQ(outcome.exit_code, 2);
    EXPECT_THAT(outcome.err, HasSubstr("exists; --force replaces it"));
    EXPECT_EQ(bytes_of(c.kob()), "precious");

    EXPECT_EQ(c.import({"--force"}).exit_code, 0);
    ImportCheck{c.frd(), c.kob()}.run();

    // A forced import that fails keeps what is there.
    const std::string before = bytes_of(c.kob());
    std::ofstream{c.frd()} << head;
    EXPECT_EQ(c.import({"--force"}).exit_code, 3);
    EXPECT_EQ(bytes_of(c.kob()), before);
    EXPECT_THAT(c.files(), ElementsAre("run.frd", "run.kob"));

    outcome = run_program({"import", c.frd(), c.frd(), "--force"});
    EXPECT_EQ(outcome.exit_code, 2);
    EXPECT_EQ(bytes_of(c.frd()), head);
}

TEST(Import, of_nothing_to_nowhere_is_refused)
{
    const Case c{head + mesh + end};
    EXPECT_EQ(run_program({"import", c.frd() + ".no", c.kob()}).exit_code, 3);
    EXPECT_EQ(run_program({"import", c.frd(), fs::path{c.kob()}.parent_path() / "no" / "run.kob"}).exit_code, 3);
    EXPECT_EQ(run_program({"import", c.frd(), fs::path{c.kob()}.parent_path()}).exit_code, 2);
    EXPECT_EQ(run_program({"import", c.frd()}).exit_code, 2);
    for (const auto& option : std::vector<std::vector<std::string>>{{"--float", "5"},
                                                                    {"--deflate", "10"},
                                                                    {"--deflate", "-1"},
                                                                    {"--scale", "A"},
                                                                    {"--scale", "A=x"},
                                                                    {"--scale", "A=257"},
                                                                    {"--scale", "=2"},
                                                                    {"--units", "mm"},
                                                                    {"--units", "mm,t,parsec"},
                                                                    {"--units", "mm,t,s,K,A"}}) {
        EXPECT_EQ(c.import(option).exit_code, 2) << option[0] << " " << option[1];
    }
    EXPECT_THAT(c.files(), ElementsAre("run.frd"));
}

// --- results of the solver -----------------------------------------------------------------------------------------

bool solver_is_there() { return std::system("command -v ccx >/dev/null 2>&1") == 0; }

/// Runs the solver on a deck of the folder; the name of the result file, empty when it gave none in time.
std::string solve(const TempDir& folder, const std::string& deck)
{
    const std::string command = fmt::format("cd '{}' && OMP_NUM_THREADS=1 timeout 60 ccx '{}' > '{}.log' 2>&1",
                                            folder.path().string(), deck, deck);
    return std::system(command.c_str()) == 0 ? folder / (deck + ".frd") : std::string{};
}

/// Returns how many numbers were compared.
std::size_t expect_same_import(const std::string& frd, const std::vector<std::string>& options = {},
                               const Stored& stored = {})
{
    const TempFile kob;
    std::vector<std::string> arguments = {"import", frd, kob.path()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = run_program(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << frd << ": " << outcome.err;
    if (outcome.exit_code != 0) return 0;
    ImportCheck check{frd, kob.path(), stored};
    check.run();
    return check.numbers();
}

std::string deck_name(const testing::TestParamInfo<std::string>& info)
{
    std::string name = info.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

class ImportExample : public testing::TestWithParam<std::string> {};

TEST_P(ImportExample, comes_back_as_the_solver_wrote_it)
{
    if (!solver_is_there()) GTEST_SKIP() << "no solver ccx: install the Debian package calculix-ccx";
    const TempDir folder;
    for (const auto& entry : fs::directory_iterator{fs::path{KOB_SOURCE_DIR} / "examples"}) {
        const auto extension = entry.path().extension();
        if (extension == ".inp" || extension == ".msh") fs::copy(entry.path(), folder.path());
    }
    const std::string frd = solve(folder, GetParam());
    ASSERT_NE(frd, "");
    const std::size_t numbers = expect_same_import(frd);
    EXPECT_GT(numbers, 5000U);
    EXPECT_EQ(expect_same_import(frd, {"--float", "4", "--deflate", "6", "--shuffle"}, {4, {}, false}), numbers);
    EXPECT_EQ(expect_same_import(frd, {"--scale", "DISP=7"}, {8, {{"DISP", 0.51e-7}}, false}), numbers);
    EXPECT_EQ(expect_same_import(frd, {"--series"}, {8, {}, true}), numbers);
    EXPECT_EQ(expect_same_import(frd, {"--series", "--float", "4", "--deflate", "6"}, {4, {}, true}), numbers);
    EXPECT_EQ(expect_same_import(frd, {"--series", "--scale", "DISP=7"}, {8, {{"DISP", 0.51e-7}}, true}), numbers);
}

INSTANTIATE_TEST_SUITE_P(Decks, ImportExample,
                         testing::Values("cantilever_hex_static", "cantilever_hex_frequency",
                                         "cantilever_hex_transient", "cantilever_hex_harmonic", "cantilever_tet_static",
                                         "cantilever_tet_frequency", "cantilever_tet_transient"),
                         deck_name);

/// Where scripts/fetch-decks.sh puts the decks of the Debian package.
fs::path decks_folder()
{
    if (const char* named = std::getenv("KOB_DECKS")) return named;
    if (const char* cache = std::getenv("XDG_CACHE_HOME")) return fs::path{cache} / "kob_dp" / "decks";
    const char* home = std::getenv("HOME");
    return fs::path{home ? home : "/"} / ".cache" / "kob_dp" / "decks";
}

class ImportDeck : public testing::TestWithParam<std::string> {};

TEST_P(ImportDeck, comes_back_as_the_solver_wrote_it)
{
    const fs::path deck = decks_folder() / (GetParam() + ".inp");
    if (!solver_is_there()) GTEST_SKIP() << "no solver ccx: install the Debian package calculix-ccx";
    if (!fs::exists(deck)) GTEST_SKIP() << "no decks: run scripts/fetch-decks.sh";
    const TempDir folder;
    fs::copy(deck, folder.path());
    const std::string frd = solve(folder, GetParam());
    ASSERT_NE(frd, "");
    const std::size_t numbers = expect_same_import(frd);
    EXPECT_GT(numbers, 20U);
    EXPECT_EQ(expect_same_import(frd, {"--series"}, {8, {}, true}), numbers);
}

// Contact, wedges, gaps, complex results of a sector, shells and beams kept flat, networks, materials by name, sixty
// internal variables, buckling ... small ones.
INSTANTIATE_TEST_SUITE_P(Package, ImportDeck,
                         testing::Values("changefric", "concretebeam", "couette2", "cubef2f3", "gap2", "oneel",
                                         "pendel", "pipe2", "planestress3", "sc123", "segment", "shell3", "simplebeam",
                                         "uprofile"),
                         deck_name);

// All decks of the package: scripts/test-decks.sh runs the solver and lists the result files, one to a line.
TEST(ImportList, comes_back_as_the_solver_wrote_it)
{
    const char* list = std::getenv("KOB_FRD_LIST");
    if (!list) GTEST_SKIP() << "run by ./dev decks";
    std::ifstream stream{list};
    int count = 0;
    for (std::string frd; std::getline(stream, frd); ++count) {
        SCOPED_TRACE(frd);
        expect_same_import(frd);
        expect_same_import(frd, {"--series"}, {8, {}, true});
    }
    EXPECT_GT(count, 0);
}

} // namespace
