// SPDX-License-Identifier: BSD-3-Clause
// The parser of ASCII result files: every record, numbers that run together, and broken files.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <frd_file.hpp>
#include <temp_file.hpp>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const std::string head = "    1C\n    1Ua heading\n    1UPGM               CalculiX\n";
const std::string two_nodes = "    2C                             2                                     1\n"
                              " -1         7 0.00000E+00-1.00000E+00 2.50000E-01\n"
                              " -1        30-1.00000E+00-2.00000E+00-3.00000E+00\n"
                              " -3\n";
const std::string no_elements = "    3C                             0                                     1\n -3\n";
const std::string displacement_header = "    1PSTEP                         1           4           2          \n"
                                        "  100CL  101 1.250000000           2                     0    1           1\n"
                                        " -4  DISP        4    1\n"
                                        " -5  D1          1    2    1    0\n"
                                        " -5  D2          1    2    2    0\n"
                                        " -5  D3          1    2    3    0\n"
                                        " -5  ALL         1    2    0    0    1ALL\n";
const std::string end = " 9999\n";

std::string displacement(const std::string& rows) { return displacement_header + rows + " -3\n"; }

const std::string two_rows = " -1         7 1.00000E+00 2.00000E+00 3.00000E+00\n"
                             " -1        30-1.00000E+00-2.00000E+00-3.00000E+00\n";

/// A file with this text, open, with its outline.
class Frd {
public:
    explicit Frd(const std::string& text, bool outlined = true) : lines{written(text)}
    {
        if (outlined) outline = frd::outline(lines);
    }

    frd::Nodes nodes()
    {
        frd::Nodes n;
        for (const auto& section : outline.nodes) read_nodes(lines, section, n);
        return n;
    }
    std::array<frd::Elements, frd::element_types> elements()
    {
        std::array<frd::Elements, frd::element_types> e;
        for (const auto& section : outline.elements) read_elements(lines, section, outline, e);
        return e;
    }
    frd::Table table(std::size_t i) { return read_result(lines, outline.results.at(i)); }

private:
    std::string written(const std::string& text)
    {
        std::ofstream{file.path(), std::ios::binary} << text;
        return file.path();
    }
    kob_test::TempFile file{"test.frd"};

public:
    frd::Lines lines;
    frd::Outline outline;
};

/// The line that a broken file is refused with, -1 when it is accepted.
std::int64_t refused_at(const std::string& text)
{
    try {
        Frd f{text};
        f.nodes();
        f.elements();
        for (std::size_t i = 0; i < f.outline.results.size(); ++i) f.table(i);
    } catch (const frd::Error& error) {
        return error.line();
    }
    return -1;
}

std::int64_t lines_of(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

std::vector<double> numbers(const std::string& text)
{
    std::vector<double> values;
    EXPECT_TRUE(frd::scan_numbers(text, values)) << text;
    return values;
}

TEST(FrdNumbers, that_touch_each_other_are_told_apart)
{
    EXPECT_THAT(numbers("-1.00000E+00-2.00000E+00"), ElementsAre(-1, -2));
    EXPECT_THAT(numbers("1.0E+001.0E-100"), ElementsAre(1, 1e-100));
    EXPECT_THAT(numbers("1.0E-3001.0E-300-2.5E-01"), ElementsAre(1e-300, 1e-300, -0.25));
    EXPECT_THAT(numbers(" 1 22 -3"), ElementsAre(1, 22, -3));
}

TEST(FrdNumbers, without_a_letter_before_a_long_exponent_are_read)
{
    EXPECT_THAT(numbers("1.0000-300"), ElementsAre(1e-300));
    EXPECT_THAT(numbers(" 1.0000+101-1.0000-101"), ElementsAre(1e101, -1e-101));
    EXPECT_THAT(numbers("1.5D+02"), ElementsAre(150));
}

TEST(FrdNumbers, that_are_none_come_as_such)
{
    const auto values = numbers("         NaN        -nan         inf        -Inf");
    ASSERT_THAT(values, SizeIs(4));
    EXPECT_TRUE(std::isnan(values[0]));
    EXPECT_TRUE(std::isnan(values[1]));
    EXPECT_EQ(values[2], std::numeric_limits<double>::infinity());
    EXPECT_EQ(values[3], -std::numeric_limits<double>::infinity());
}

TEST(FrdNumbers, refuse_other_text)
{
    std::vector<double> values;
    for (const char* text : {"************", "1.0 x", "1.0E", "-", ".", "1.0E+1234", "none"}) {
        EXPECT_FALSE(frd::scan_numbers(text, values)) << text;
    }
}

TEST(FrdFile, nodes_come_with_numbers_and_coordinates)
{
    Frd f{head + two_nodes + end};
    EXPECT_THAT(f.nodes().ids, ElementsAre(7, 30));
    EXPECT_THAT(f.nodes().coordinates, ElementsAre(0, -1, 0.25, -1, -2, -3));
    EXPECT_THAT(f.outline.user, ElementsAre("a heading", "PGM               CalculiX"));
    EXPECT_THAT(f.outline.warnings, IsEmpty());
}

TEST(FrdFile, short_and_long_numbers_fill_their_columns)
{
    Frd short_ids{head +
                  "    2C                             1                                     0\n"
                  " -112345 1.00000E+00 2.00000E+00 3.00000E+00\n -3\n" +
                  "    3C                             1                                     0\n"
                  " -198765   11    2    3\n -21234567890\n -3\n" +
                  end};
    EXPECT_THAT(short_ids.nodes().ids, ElementsAre(12345));
    const auto beams = short_ids.elements()[11];
    EXPECT_THAT(beams.ids, ElementsAre(98765));
    EXPECT_THAT(beams.nodes, ElementsAre(12345, 67890));
    EXPECT_THAT(beams.groups, ElementsAre(2));
    EXPECT_THAT(beams.materials, ElementsAre(3));

    Frd long_ids{head +
                 "    2C                             1                                     1\n"
                 " -12147483647 1.00000E+00 2.00000E+00 3.00000E+00\n -3\n" +
                 end};
    EXPECT_THAT(long_ids.nodes().ids, ElementsAre(2147483647));
}

TEST(FrdFile, a_number_beyond_32_bits_is_refused)
{
    const std::string begin = head + "    2C                             1                                     1\n";
    EXPECT_EQ(refused_at(begin + " -12147483648 1.00000E+00 2.00000E+00 3.00000E+00\n -3\n" + end), 5);
}

TEST(FrdFile, elements_of_all_types_are_sorted_by_type)
{
    std::string text = head + "    3C                            12                                     1\n";
    for (std::size_t type = 1; type < frd::element_types; ++type) {
        text += fmt::format(" -1{:10}{:5}{:5}{:5}\n", 100 + type, type, 0, type);
        for (std::int32_t i = 0; i < frd::element_type[type].nodes; ++i) {
            if (i % 10 == 0) text += i == 0 ? " -2" : "\n -2";
            text += fmt::format("{:10}", static_cast<int>(1000 * type) + i);
        }
        text += "\n";
    }
    Frd f{text + " -3\n" + end};
    const auto elements = f.elements();
    const std::vector<std::size_t> counts = {0, 8, 6, 4, 20, 15, 10, 3, 6, 4, 8, 2, 3}; // by type number, from 1
    for (std::size_t type = 1; type < frd::element_types; ++type) {
        const auto n = static_cast<std::int32_t>(type);
        EXPECT_THAT(elements[type].ids, ElementsAre(100 + n));
        EXPECT_THAT(elements[type].materials, ElementsAre(n));
        ASSERT_THAT(elements[type].nodes, SizeIs(counts[type])) << type;
        EXPECT_EQ(elements[type].nodes.front(), 1000 * n);
        EXPECT_EQ(elements[type].nodes.back(), 1000 * n + static_cast<std::int32_t>(counts[type]) - 1);
    }
}

TEST(FrdFile, materials_may_be_given_by_name)
{
    const std::string beams = "    3C                                                                   1\n"
                              " -1         1   11    0STEEL\n -2         1         2\n"
                              " -1         2   11    0WATER AND MORE\n -2         3         4\n"
                              " -1         3   11    0   12\n -2         3         4\n -3\n";
    Frd f{head + "    1UMAT    7STEEL      \n" + beams + end};
    EXPECT_THAT(f.elements()[11].materials, ElementsAre(7, 8, 12));
    EXPECT_THAT(f.outline.warnings, ElementsAre(HasSubstr("line 8: material WATER AND MORE has no number")));
}

TEST(FrdFile, an_unknown_element_type_is_named_and_left_out)
{
    Frd f{head +
          "    3C                             2                                     1\n"
          " -1         1   13    0    1\n -2         1         2\n"
          " -1         2   11    0    1\n -2         3         4\n -3\n" +
          end};
    EXPECT_THAT(f.outline.warnings, ElementsAre(HasSubstr("line 5: unknown element type 13")));
    EXPECT_THAT(f.elements()[11].ids, ElementsAre(2));
    EXPECT_THAT(f.elements()[11].nodes, ElementsAre(3, 4));
}

TEST(FrdFile, a_result_has_its_state_components_and_values)
{
    Frd f{head + two_nodes + no_elements + displacement(two_rows) + end};
    ASSERT_THAT(f.outline.results, SizeIs(1));
    const auto& r = f.outline.results[0];
    EXPECT_EQ(r.name, "DISP");
    EXPECT_EQ(r.value, 1.25);
    EXPECT_EQ(r.analysis, 0);
    EXPECT_EQ(r.set, 1);
    ASSERT_NE(r.parameter("STEP"), nullptr);
    EXPECT_THAT(r.parameter("STEP")->values, ElementsAre(1, 4, 2));
    ASSERT_THAT(r.components, SizeIs(3)) << "ALL is computed by viewers";
    EXPECT_EQ(r.components[2].name, "D3");
    EXPECT_EQ(r.components[2].kind, 2);
    EXPECT_EQ(r.components[2].row, 3);
    EXPECT_THAT(f.table(0).ids, ElementsAre(7, 30));
    EXPECT_THAT(f.table(0).values, ElementsAre(1, 2, 3, -1, -2, -3));
}

TEST(FrdFile, values_go_on_in_further_records)
{
    std::string text = "  100CL  101 1.000000000           2                     0    1           1\n"
                       " -4  SDV         8    1\n";
    for (int i = 1; i <= 8; ++i) text += fmt::format(" -5  SDV{:2}       1    1    0    0\n", i);
    for (int n : {5, 6}) {
        text += fmt::format(" -1{:10}", n);
        for (int i = 0; i < 6; ++i) text += fmt::format("{:12.5E}", n + 0.125 * i);
        text += fmt::format("\n -2{:10}{:12.5E}{:12.5E}\n", "", -1e-100, 1e-7); // the first is 13 characters wide
    }
    Frd f{head + text + " -3\n" + end};
    const auto table = f.table(0);
    EXPECT_THAT(table.ids, ElementsAre(5, 6));
    EXPECT_THAT(table.values, ElementsAre(5, 5.125, 5.25, 5.375, 5.5, 5.625, -1e-100, 1e-7, 6, 6.125, 6.25, 6.375, 6.5,
                                          6.625, -1e-100, 1e-7));
}

TEST(FrdFile, lines_may_end_as_on_windows)
{
    std::string text = head + two_nodes + displacement(two_rows) + end;
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) text.insert(at, "\r");
    Frd f{text};
    EXPECT_THAT(f.table(0).values, ElementsAre(1, 2, 3, -1, -2, -3));
}

TEST(FrdFile, a_file_larger_than_the_buffer_is_read_in_any_order)
{
    std::string rows;
    constexpr int count = 20000;
    for (int i = 0; i < count; ++i)
        rows += fmt::format(" -1{:10}{:12.5E}{:12.5E}{:12.5E}\n", i + 1, 1.0 * i, 2.0 * i, -1.0 * i);
    std::string header = displacement_header;
    header.replace(header.find("           2                     0"), 12, fmt::format("{:12}", count));
    const std::string result = header + rows + " -3\n";
    Frd f{head + result + result + end};
    ASSERT_THAT(f.outline.results, SizeIs(2));
    for (std::size_t i : {1U, 0U, 1U}) {
        const auto table = f.table(i);
        ASSERT_THAT(table.ids, SizeIs(count));
        EXPECT_EQ(table.ids.back(), count);
        EXPECT_EQ(table.values[3 * 12345 + 2], -12345.0);
    }
}

TEST(FrdFile, unknown_records_are_named_with_their_lines)
{
    Frd f{head + "    7X something\n -1 data\n -1 data\n -3\n    1PNEW  1 2\n" + two_nodes + end + "behind\n"};
    EXPECT_THAT(f.outline.warnings,
                testing::UnorderedElementsAre(HasSubstr("line 4: unknown record \"7X\": 4 lines not imported"),
                                              HasSubstr("line 8: unknown record \"1PNEW\": not imported"),
                                              HasSubstr("line 14: text after the end record")));
    EXPECT_THAT(f.nodes().ids, SizeIs(2));
}

TEST(FrdFile, results_of_another_kind_are_named_and_left_out)
{
    std::string other = displacement(two_rows);
    other.replace(other.find("DISP        4    1"), 18, "DISP        4    2");
    Frd f{head + other + displacement(two_rows) + end};
    EXPECT_THAT(f.outline.warnings, ElementsAre(HasSubstr("result DISP is of kind 2")));
    EXPECT_THAT(f.outline.results, SizeIs(1));
}

TEST(FrdFile, results_without_any_node_are_named_and_left_out)
{
    Frd f{head + displacement("") + displacement(two_rows) + end};
    EXPECT_THAT(f.outline.warnings,
                ElementsAre(HasSubstr("line 5: result DISP announces 2 nodes and holds none: not imported")));
    EXPECT_THAT(f.outline.results, SizeIs(1));
}

TEST(FrdFile, a_mesh_block_may_hold_more_than_it_announces)
{
    Frd f{head + two_nodes.substr(0, 24) + "           0" + two_nodes.substr(36) + end};
    EXPECT_THAT(f.outline.warnings, ElementsAre(HasSubstr("announces 0 records and holds 2")));
    EXPECT_THAT(f.nodes().ids, SizeIs(2));
    EXPECT_EQ(refused_at(head + two_nodes.substr(0, 24) + "           3" + two_nodes.substr(36) + end), 7);
}

TEST(FrdFile, a_broken_file_is_refused_with_the_line)
{
    const std::string begin = head + two_nodes;                  // 7 lines
    const std::int64_t rows = 7 + lines_of(displacement_header); // lines before the first row of the result
    EXPECT_EQ(refused_at(""), 1);
    EXPECT_EQ(refused_at("hello\n"), 1);
    EXPECT_EQ(refused_at("    1C\n"), 2) << "the solver stopped at once";
    EXPECT_EQ(refused_at(begin), 8) << "no end record";
    EXPECT_EQ(refused_at(begin + displacement_header + two_rows), rows + 3) << "ends inside the result";
    EXPECT_EQ(refused_at(begin + displacement_header.substr(0, displacement_header.size() - 30)), rows + 1)
        << "ends inside -5";
    EXPECT_EQ(refused_at(begin + displacement(two_rows.substr(0, two_rows.size() / 2)) + end), rows + 2)
        << "a row less";
    EXPECT_EQ(refused_at(
                  begin +
                  displacement(" -1         7 1.00000E+00 2.00000E+00\n" + two_rows.substr(two_rows.size() / 2)) + end),
              rows + 1)
        << "a value less";
    EXPECT_EQ(refused_at(begin +
                         displacement(" -1         7 1.0E+00 2.0E+00 3.0E+00 4.0E+00\n" +
                                      two_rows.substr(two_rows.size() / 2)) +
                         end),
              rows + 1)
        << "a value more";
    EXPECT_EQ(refused_at(begin +
                         displacement(" -1         7 1.0000xE00 2.00000E+00 3.00000E+00\n" +
                                      two_rows.substr(two_rows.size() / 2)) +
                         end),
              rows + 1)
        << "no number";
    EXPECT_EQ(refused_at(begin +
                         displacement(" -1           1.00000E+00 2.00000E+00 3.00000E+00\n" +
                                      two_rows.substr(two_rows.size() / 2)) +
                         end),
              rows + 1)
        << "no node number";
    EXPECT_EQ(refused_at(begin + displacement("garbage\n" + two_rows) + end), rows + 1);
    EXPECT_EQ(refused_at(begin + "garbage\n" + end), 8);
    EXPECT_EQ(refused_at(begin + " -1         7 1.00000E+00\n" + end), 8) << "data outside a block";
    EXPECT_EQ(refused_at(head + "    2C                             1                                     2\n" + end),
              4)
        << "binary";
    EXPECT_EQ(refused_at(head +
                         "    3C                             1                                     1\n"
                         " -1         1   11    0    1\n -2         1\n -3\n" +
                         end),
              7)
        << "a node of the element less";
    EXPECT_EQ(refused_at(head +
                         "    3C                             1                                     1\n"
                         " -1         1   11    0    1\n -2         1         2         3\n -3\n" +
                         end),
              6)
        << "one more";
    EXPECT_EQ(refused_at(std::string(1 << 20, 'x')), 1) << "no lines at all";
    EXPECT_EQ(refused_at(begin + displacement(two_rows) + end), -1);
}

TEST(FrdFile, that_is_not_there_has_no_line)
{
    try {
        frd::Lines{"/no/such/file.frd"};
        FAIL();
    } catch (const frd::Error& error) {
        EXPECT_EQ(error.line(), 0);
        EXPECT_THAT(error.what(), HasSubstr("cannot open"));
    }
}

} // namespace
