// SPDX-License-Identifier: BSD-3-Clause
// The parser of ASCII result files: one pass finds the blocks, a second one reads those that are asked for.

#include "frd_file.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <utility>

#include <fmt/format.h>

namespace frd {

const std::array<ElementType, element_types> element_type = {{
    {"", 0, 0},
    {"HE8", 8, 3},
    {"PE6", 6, 3},
    {"TE4", 4, 3},
    {"HE20", 20, 3},
    {"PE15", 15, 3},
    {"TE10", 10, 3},
    {"TR3", 3, 2},
    {"TR6", 6, 2},
    {"QU4", 4, 2},
    {"QU8", 8, 2},
    {"BE2", 2, 1},
    {"BE3", 3, 1},
}};

bool operator==(const Component& a, const Component& b)
{
    return a.name == b.name && a.kind == b.kind && a.row == b.row && a.col == b.col;
}

const Parameter* Result::parameter(std::string_view key) const
{
    const auto found = std::find_if(parameters.begin(), parameters.end(), [&](const auto& p) { return p.key == key; });
    return found == parameters.end() ? nullptr : &*found;
}

// --- fields --------------------------------------------------------------------------------------------------------

namespace {

std::string_view trim(std::string_view text)
{
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) text.remove_suffix(1);
    return text;
}

std::string_view field(std::string_view line, std::size_t from, std::size_t width)
{
    return from < line.size() ? trim(line.substr(from, width)) : std::string_view{};
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

template <class Number> bool parse_whole(std::string_view text, Number& value)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} && end == text.data() + text.size();
}

/// An integer field; an empty one is 0 where `optional`.
std::int32_t integer(std::string_view line, std::size_t from, std::size_t width, std::int64_t number, const char* what,
                     bool optional = false)
{
    const std::string_view text = field(line, from, width);
    if (text.empty() && optional) return 0;
    std::int64_t value = 0;
    if (!parse_whole(text, value)) throw Error(number, fmt::format("no {} in \"{}\"", what, text));
    if (value > std::numeric_limits<std::int32_t>::max() || value < std::numeric_limits<std::int32_t>::min()) {
        throw Error(number, fmt::format("{} {} does not fit 32 bits", what, value));
    }
    return static_cast<std::int32_t>(value);
}

/// Reads one number at `p` and moves on; false when there is none.
bool scan_number(const char*& p, const char* end, double& value)
{
    const char* q = p;
    const bool minus = q < end && *q == '-';
    if (q < end && (*q == '-' || *q == '+')) ++q;

    if (q < end && std::isalpha(static_cast<unsigned char>(*q))) {
        std::string word;
        for (; q < end && std::isalpha(static_cast<unsigned char>(*q)); ++q) {
            word += static_cast<char>(std::tolower(static_cast<unsigned char>(*q)));
        }
        if (word == "nan")
            value = std::numeric_limits<double>::quiet_NaN();
        else if (word == "inf" || word == "infinity")
            value = std::numeric_limits<double>::infinity();
        else
            return false;
        if (minus) value = -value;
        p = q;
        return true;
    }

    std::string text = minus ? "-" : "";
    std::size_t digits = 0;
    const auto take_digits = [&] {
        for (; q < end && is_digit(*q); ++q, ++digits) text += *q;
    };
    take_digits();
    if (q < end && *q == '.') {
        text += *q++;
        take_digits();
    }
    if (digits == 0) return false;

    const char* e = q;
    const bool letter = e < end && std::strchr("EeDd", *e) != nullptr && *e != '\0';
    if (letter) ++e;
    const bool sign = e < end && (*e == '-' || *e == '+');
    const bool negative = sign && *e == '-';
    if (sign) ++e;
    const char* exponent_end = e;
    while (exponent_end < end && is_digit(*exponent_end)) ++exponent_end;
    // A number that fills its columns touches the next one, to which the digit before the point belongs:
    // "1.0E+001.0E-100".
    if (exponent_end < end && *exponent_end == '.' && exponent_end > e) --exponent_end;
    const auto length = exponent_end - e;
    if (letter && (length < 1 || length > 3)) return false;
    // Fortran leaves the letter out when the exponent has three digits; otherwise the sign begins the next number.
    if (letter || (sign && length == 3)) {
        text += negative ? "e-" : "e";
        text.append(e, exponent_end);
        q = exponent_end;
    }
    value = std::strtod(text.c_str(), nullptr);
    p = q;
    return true;
}

constexpr std::size_t number_width = 12;

/// The numbers of a data record from column `from` on, appended to `values`.
bool numbers(std::string_view line, std::size_t from, std::vector<double>& values)
{
    if (from >= line.size()) return true;
    const std::string_view text = line.substr(from);
    const std::size_t before = values.size();
    // The usual record: full columns, each with one number.
    bool usual = text.size() % number_width == 0;
    for (std::size_t at = 0; usual && at < text.size(); at += number_width) {
        std::string_view column = text.substr(at, number_width);
        column.remove_prefix(std::min(column.find_first_not_of(' '), column.size()));
        double value = 0;
        usual = parse_whole(column, value);
        if (usual) values.push_back(value);
    }
    if (usual) return true;
    values.resize(before);
    return scan_numbers(text, values);
}

bool is_data(std::string_view line, char kind)
{
    return line.size() >= 3 && line[0] == ' ' && line[1] == '-' && line[2] == kind;
}

bool is_end(std::string_view line) { return is_data(line, '3') && trim(line.substr(3)).empty(); }

bool starts(std::string_view line, std::string_view key) { return line.substr(0, key.size()) == key; }

std::size_t id_width(bool long_ids) { return long_ids ? 10 : 5; }

constexpr std::size_t after_key = 3; // " -1"

std::int32_t read_type(std::string_view line, const Section& section, std::int64_t number)
{
    return integer(line, after_key + id_width(section.long_ids), 5, number, "element type");
}

/// The material of an element: a number, or a name where the solver writes that.
std::string_view material_text(std::string_view line, const Section& section)
{
    return field(line, after_key + id_width(section.long_ids) + 10, line.size());
}

bool is_number(std::string_view text)
{
    std::int32_t value = 0;
    return parse_whole(text, value);
}

bool is_known(std::int32_t type) { return type >= 1 && type < static_cast<std::int32_t>(element_types); }

} // namespace

bool scan_numbers(std::string_view text, std::vector<double>& values)
{
    const char* p = text.data();
    const char* end = p + text.size();
    for (;;) {
        while (p < end && *p == ' ') ++p;
        if (p == end) return true;
        double value = 0;
        if (!scan_number(p, end, value)) return false;
        values.push_back(value);
    }
}

// --- the outline ---------------------------------------------------------------------------------------------------

namespace {

class Outliner {
public:
    explicit Outliner(Lines& lines) : lines_{lines} {}

    Outline run()
    {
        bool complete = false;
        while (next()) {
            if (complete) {
                if (!trim(line_).empty()) unknown("text after the end record 9999");
                continue;
            }
            complete = record();
        }
        if (lines_.number() == 0) throw Error(1, "the file is empty");
        if (!complete) fail_after("the file ends without the end record 9999");
        for (const auto& [what, where] : unknown_) {
            const auto& [count, first] = where;
            out_.warnings.push_back(count == 1 ? fmt::format("line {}: {}: not imported", first, what)
                                               : fmt::format("line {}: {}: {} lines not imported", first, what, count));
        }
        return std::move(out_);
    }

private:
    struct Count {
        std::int64_t lines = 0;
        std::int64_t first = 0;
    };

    bool next() { return lines_.next(line_); }
    [[noreturn]] void fail(const std::string& text) const { throw Error(lines_.number(), text); }
    [[noreturn]] void fail_after(const std::string& text) const { throw Error(lines_.number() + 1, text); }
    void warn(std::string text)
    {
        out_.warnings.push_back(fmt::format("line {}: {}", lines_.number(), std::move(text)));
    }

    void unknown(const std::string& what)
    {
        Count& count = unknown_.try_emplace(what, Count{0, lines_.number()}).first->second;
        ++count.lines;
    }

    /// One record of the outer level with all that belongs to it; true for the end record.
    bool record()
    {
        if (trim(line_).empty()) return false;
        const bool first = !std::exchange(seen_, true);
        if (starts(line_, "    1C")) {
            header();
            if (const auto name = field(line_, 6, 6); !name.empty()) out_.user.emplace_back(name);
        } else if (starts(line_, "    1U")) {
            header();
            out_.user.emplace_back(field(line_, 6, line_.size()));
            material(line_.substr(6));
        } else if (starts(line_, "    1P")) {
            parameter();
        } else if (starts(line_, "    2C")) {
            mesh_block("node", out_.nodes, false);
        } else if (starts(line_, "    3C")) {
            mesh_block("element", out_.elements, true);
        } else if (starts(line_, "  100C")) {
            result();
        } else if (trim(line_) == "9999") {
            return true;
        } else {
            foreign(first);
        }
        return false;
    }

    void header()
    {
        std::string_view text = line_;
        while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) text.remove_suffix(1);
        out_.header.emplace_back(text);
    }

    void foreign(bool first)
    {
        const std::string key{trim(line_.substr(0, std::min<std::size_t>(line_.size(), 6)))};
        if (first) fail("this is no result file: it begins with no known record");
        if (line_.size() > 2 && line_[1] == '-') fail(fmt::format("record \"{}\" outside any block", key));
        if (line_.size() < 5 || line_[0] != ' ' || !is_digit(line_[4])) fail(fmt::format("\"{}\" is no record", key));
        const std::string what = fmt::format("unknown record \"{}\"", key);
        unknown(what);
        // Its data, up to the end record of the block.
        for (Lines::Mark mark = lines_.after(); next(); mark = lines_.after()) {
            if (line_.size() < 3 || line_[0] != ' ' || line_[1] != '-') {
                lines_.go_to(mark);
                return;
            }
            unknown(what);
            if (is_end(line_)) return;
        }
    }

    void parameter()
    {
        // The key ends at the first blank; the values follow.
        const std::string_view text = line_.substr(6);
        const std::size_t blank = std::min(text.find(' '), text.size());
        Parameter p{std::string{text.substr(0, blank)}, {}};
        static constexpr std::array known = {"STEP", "MODE", "GM", "GK", "HID", "SUBC", "AX"};
        if (std::find(known.begin(), known.end(), p.key) == known.end()) {
            unknown(fmt::format("unknown record \"1P{}\"", p.key));
        } else if (!scan_numbers(trim(text.substr(blank)), p.values)) {
            fail(fmt::format("record 1P{} holds something that is no number", p.key));
        } else {
            parameters_.push_back(std::move(p));
        }
    }

    void format(Section& section, std::string_view digit)
    {
        if (digit == "1" || digit.empty())
            section.long_ids = true;
        else if (digit == "0")
            section.long_ids = false;
        else if (digit == "2" || digit == "3")
            fail("binary result files are not read; have the solver write text");
        else
            fail(fmt::format("unknown format number \"{}\"", digit));
    }

    std::int64_t announced(std::string_view text) const
    {
        std::int64_t count = -1;
        if (!text.empty() && (!parse_whole(text, count) || count < 0)) fail(fmt::format("no count in \"{}\"", text));
        return count;
    }

    void mesh_block(const char* what, std::vector<Section>& sections, bool continued)
    {
        Section section;
        section.announced = announced(field(line_, 24, 12));
        format(section, field(line_, 73, 2));
        const std::int64_t header = lines_.number();
        section.first = lines_.after();
        for (;;) {
            if (!next()) fail_after(fmt::format("the file ends inside the {} block of line {}", what, header));
            if (is_end(line_)) break;
            if (is_data(line_, '1')) {
                ++section.rows;
                if (continued) check_element(section);
            } else if (!continued || !is_data(line_, '2')) {
                fail(fmt::format("no {} record", what));
            }
        }
        // The solver announces too few where it expands shells and beams into solids.
        if (section.rows < section.announced) {
            fail(fmt::format("the {} block of line {} announces {} records and holds {}", what, header,
                             section.announced, section.rows));
        }
        if (section.announced >= 0 && section.rows > section.announced) {
            warn(fmt::format("the {} block of line {} announces {} records and holds {}, all are imported", what,
                             header, section.announced, section.rows));
        }
        sections.push_back(section);
    }

    void check_element(const Section& section)
    {
        const std::int32_t type = read_type(line_, section, lines_.number());
        if (!is_known(type)) unknown(fmt::format("unknown element type {}", type));
        const std::string_view material = material_text(line_, section);
        if (material.empty() || is_number(material) || out_.materials.count(std::string{material}) > 0) return;
        std::int32_t number = 1;
        for (const auto& m : out_.materials) number = std::max(number, m.second + 1);
        out_.materials.emplace(material, number);
        warn(fmt::format("material {} has no number in the file: it is imported as {}", material, number));
    }

    /// "MAT", a number in five columns and the name.
    void material(std::string_view text)
    {
        constexpr std::size_t key = 3;
        constexpr std::size_t width = 5;
        if (text.size() <= key + width || !starts(text, "MAT") || !is_number(field(text, key, width))) return;
        out_.materials[std::string{field(text, key + width, text.size())}] =
            integer(text, key, width, lines_.number(), "material number");
    }

    void result()
    {
        Result r;
        const std::int64_t header = lines_.number();
        std::vector<double> value;
        if (!scan_numbers(field(line_, 12, 12), value) || value.size() > 1) fail("no value in the result's header");
        r.value = value.empty() ? 0.0 : value.front();
        r.section.announced = announced(field(line_, 24, 12));
        r.analysis = integer(line_, 56, 2, header, "kind of analysis", true);
        r.set = integer(line_, 58, 5, header, "state number", true);
        r.analysis_name = field(line_, 63, 10);
        if (const auto text = field(line_, 36, 20); !text.empty()) unknown(fmt::format("result text \"{}\"", text));
        format(r.section, field(line_, 73, 2));
        r.parameters = std::exchange(parameters_, {});

        if (!next() || !is_data(line_, '4'))
            fail(fmt::format("no record -4 after the result header of line {}", header));
        r.name = field(line_, 5, 8);
        if (r.name.empty()) fail("the result has no name");
        const std::int32_t ncomps = integer(line_, 13, 5, lines_.number(), "number of components");
        const std::int32_t kind = integer(line_, 18, 5, lines_.number(), "kind of result", true);

        std::int32_t described = 0;
        for (;;) {
            r.section.first = lines_.after();
            if (!next()) fail_after(fmt::format("the file ends inside result {} of line {}", r.name, header));
            if (!is_data(line_, '5')) break;
            component(r);
            ++described;
        }
        if (described != ncomps) {
            fail(fmt::format("result {} announces {} components and describes {}", r.name, ncomps, described));
        }
        for (; !is_end(line_);) {
            if (is_data(line_, '1'))
                ++r.section.rows;
            else if (!is_data(line_, '2'))
                fail(fmt::format("no record of result {}", r.name));
            if (!next()) fail_after(fmt::format("the file ends inside result {} of line {}", r.name, header));
        }
        if (kind > 1) {
            out_.warnings.push_back(
                fmt::format("line {}: result {} is of kind {} (one value set per node is kind 1): not imported", header,
                            r.name, kind));
            return;
        }
        if (r.section.rows == 0) { // the solver does that with models it only half supports
            out_.warnings.push_back(fmt::format("line {}: result {} announces {} nodes and holds none: not imported",
                                                header, r.name, std::max<std::int64_t>(r.section.announced, 0)));
            return;
        }
        if (r.section.announced >= 0 && r.section.rows != r.section.announced) {
            fail(fmt::format("result {} of line {} announces {} nodes and holds {}", r.name, header,
                             r.section.announced, r.section.rows));
        }
        out_.results.push_back(std::move(r));
    }

    void component(Result& r)
    {
        const std::int64_t number = lines_.number();
        const std::int32_t exists = integer(line_, 33, 5, number, "existence flag", true);
        if (exists == 1) return; // computed by the viewer, no values in the file
        Component c;
        c.name = field(line_, 5, 8);
        c.kind = integer(line_, 18, 5, number, "component kind", true);
        c.row = integer(line_, 23, 5, number, "component index", true);
        c.col = integer(line_, 28, 5, number, "component index", true);
        r.components.push_back(std::move(c));
    }

    Lines& lines_;
    std::string_view line_;
    Outline out_;
    std::vector<Parameter> parameters_; ///< read since the last result
    std::map<std::string, Count> unknown_;
    bool seen_ = false;
};

} // namespace

Outline outline(Lines& lines) { return Outliner{lines}.run(); }

// --- the data ------------------------------------------------------------------------------------------------------

namespace {

/// Calls `row` for each record of a section, up to its end.
template <class Row> void each_record(Lines& lines, const Section& section, Row row)
{
    lines.go_to(section.first);
    std::string_view line;
    while (lines.next(line) && !is_end(line)) row(line, lines.number());
}

} // namespace

void read_nodes(Lines& lines, const Section& section, Nodes& nodes)
{
    const std::size_t width = id_width(section.long_ids);
    nodes.ids.reserve(nodes.ids.size() + static_cast<std::size_t>(section.rows));
    nodes.coordinates.reserve(nodes.coordinates.size() + 3 * static_cast<std::size_t>(section.rows));
    each_record(lines, section, [&](std::string_view line, std::int64_t number) {
        nodes.ids.push_back(integer(line, after_key, width, number, "node number"));
        if (!numbers(line, after_key + width, nodes.coordinates)) throw Error(number, "a coordinate is no number");
        if (nodes.coordinates.size() != 3 * nodes.ids.size()) throw Error(number, "a node needs three coordinates");
    });
}

void read_elements(Lines& lines, const Section& section, const Outline& outline,
                   std::array<Elements, element_types>& elements, std::vector<std::int32_t>* sequence)
{
    const std::size_t width = id_width(section.long_ids);
    Elements* current = nullptr; // none: the element is skipped, as the outline says
    std::size_t missing = 0;     // nodes that the element still needs
    bool begun = false;
    const auto check_complete = [&](std::int64_t number) {
        if (missing > 0) throw Error(number, fmt::format("the element before lacks {} nodes", missing));
    };
    each_record(lines, section, [&](std::string_view line, std::int64_t number) {
        if (is_data(line, '1')) {
            check_complete(number);
            begun = true;
            current = nullptr;
            const std::int32_t type = read_type(line, section, number);
            if (!is_known(type)) return;
            if (sequence) sequence->push_back(type);
            current = &elements[static_cast<std::size_t>(type)];
            current->ids.push_back(integer(line, after_key, width, number, "element number"));
            current->groups.push_back(integer(line, after_key + width + 5, 5, number, "element group", true));
            const std::string_view material = material_text(line, section);
            const auto named = outline.materials.find(std::string{material});
            current->materials.push_back(
                !material.empty() && !is_number(material) && named != outline.materials.end()
                    ? named->second
                    : integer(line, after_key + width + 10, 5, number, "material number", true));
            missing = static_cast<std::size_t>(element_type[static_cast<std::size_t>(type)].nodes);
            return;
        }
        if (!begun) throw Error(number, "nodes of an element without its record -1");
        if (!current) return;
        for (std::size_t at = after_key; at < line.size(); at += width) {
            if (field(line, at, width).empty()) continue;
            if (missing == 0) throw Error(number, "the element has too many nodes");
            current->nodes.push_back(integer(line, at, width, number, "node number"));
            --missing;
        }
    });
    check_complete(lines.number());
}

Table read_result(Lines& lines, const Result& result)
{
    Table table;
    const std::size_t width = id_width(result.section.long_ids);
    const std::size_t columns = result.components.size();
    const auto rows = static_cast<std::size_t>(result.section.rows);
    table.ids.reserve(rows);
    table.values.reserve(rows * columns);
    const auto check = [&](bool good, std::int64_t number) {
        if (!good) throw Error(number, fmt::format("a node of result {} needs {} values", result.name, columns));
    };
    each_record(lines, result.section, [&](std::string_view line, std::int64_t number) {
        if (is_data(line, '1')) {
            check(table.values.size() == columns * table.ids.size(), number - 1);
            table.ids.push_back(integer(line, after_key, width, number, "node number"));
        } else if (table.ids.empty()) {
            throw Error(number, "values without a node number");
        }
        if (!numbers(line, after_key + width, table.values)) {
            throw Error(number, fmt::format("a value of result {} is no number", result.name));
        }
        check(table.values.size() <= columns * table.ids.size(), number);
    });
    check(table.values.size() == columns * table.ids.size(), lines.number() - 1);
    return table;
}

} // namespace frd
