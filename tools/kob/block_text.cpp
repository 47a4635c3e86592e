// SPDX-License-Identifier: BSD-3-Clause
// Prints a block: each kind of content in the form that shows what it is.

#include "block_text.hpp"
#include "terminal.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace kob::program {

namespace {

/// Columns of a table on paper; --all has no limit.
constexpr std::int64_t widest_row = 20;

std::string shape_text(const Item& item)
{
    return item.shape.empty() ? std::string{} : fmt::format(" [{}]", fmt::join(item.shape, ", "));
}

void print_heading(const Item& item)
{
    fmt::print("\n{}  {}{}\n", emphasized(item.name), type_name(item.type), shape_text(item));
}

/// Numbers that make one value: the parts of a complex one.
std::int64_t parts(const Item& item) { return item.complex_pairs ? 2 : 1; }

/// Value i, of complex ones real and imaginary part as one word.
std::string value_text(const Item& item, std::int64_t i)
{
    if (item.complex_pairs) {
        const double imaginary = item.real(2 * i + 1);
        return fmt::format("{}{}{}i", number_text(item.real(2 * i)), std::signbit(imaginary) ? "" : "+",
                           number_text(imaginary));
    }
    switch (item.type) {
    case Type::text:
        return printable(item.text(i));
    case Type::float64:
        return number_text(item.real(i));
    default:
        return fmt::format("{}", item.integer(i));
    }
}

void print_rest(std::int64_t shown, std::int64_t all)
{
    if (shown < all) fmt::print("  ... {} more\n", all - shown);
}

/// Values first to first + count - 1: one per line for texts, ten in a line for numbers.
void print_list(const Item& item, std::int64_t first, std::int64_t count)
{
    constexpr std::int64_t numbers_in_line = 10;
    const std::int64_t in_line = item.type == Type::text ? 1 : numbers_in_line;
    for (std::int64_t i = 0; i < count; ++i)
        fmt::print("{}{}{}", i % in_line == 0 ? "  " : " ", value_text(item, first + i),
                   i % in_line == in_line - 1 || i == count - 1 ? "\n" : "");
}

/// Rows of `length` values from value `first` on, a line for each.
void print_rows(const Item& item, std::int64_t first, std::int64_t rows, std::int64_t length)
{
    for (std::int64_t row = 0; row < rows; ++row) {
        fmt::print("  {}:", row);
        for (std::int64_t i = 0; i < length; ++i) fmt::print(" {}", value_text(item, first + row * length + i));
        fmt::print("\n");
    }
}

/// The leading rows whose values start with number `first`.
void print_leading(const Item& item, std::int64_t first, std::int64_t rows)
{
    const std::size_t rank = item.shape.size() - (item.is_series ? 1 : 0) - (item.complex_pairs ? 1 : 0);
    if (rank < 2)
        print_list(item, first, rows);
    else
        print_rows(item, first, rows, item.row_length() / parts(item));
    print_rest(rows, item.row_count());
}

/// Calls `print(first value)` below a line for each state shown.
template <class Print> void print_states(const Block& block, const Item& item, std::int64_t limit, Print&& print)
{
    for (const std::int64_t place : shown_states(item, limit)) {
        const std::int64_t state = item.state(place);
        const std::string index = state_values(block, state).text();
        fmt::print("  state {}{}{}\n", state, index.empty() ? "" : ", index ", index);
        print(place * item.rows * item.row_length() / parts(item));
    }
}

void print_dataset(const Block& block, const Item& item, std::int64_t limit)
{
    print_heading(item);
    if (item.element_count() == 0) return;
    if (item.is_string) {
        std::string text;
        for (std::int64_t i = 0; i < item.rows; ++i)
            text += std::get<Buffer<char>>(item.values)[static_cast<std::size_t>(i)];
        fmt::print("  {}\n", printable(text));
        return;
    }
    const std::int64_t rows = shown_rows(item, limit);
    const auto print = [&](std::int64_t first) { print_leading(item, first, rows); };
    if (item.is_series)
        print_states(block, item, limit, print);
    else
        print(0);
}

/// The states of a series: the first ones and the last.
void print_state_table(const Block& block, std::int64_t limit)
{
    const std::int64_t states = block.integer("nstate", 0);
    fmt::print("\n{}  [{}]\n", emphasized("states"), states);
    if (block.find("indexident") == nullptr || states == 0 || limit == 0) return;
    Table table{{"STATE", "IDENT", "INDEX"}};
    for (const std::size_t column : {0U, 1U, 2U}) table.align_right(column);
    const auto add = [&](std::int64_t state) {
        const StateValues index = state_values(block, state);
        table.add({fmt::format("{}", state), fmt::format("{}", fmt::join(index.identifiers, ", ")), index.text()});
    };
    const std::int64_t leading = limit == all_rows ? states : std::min(states, limit);
    for (std::int64_t state = 0; state < leading; ++state) add(state);
    if (leading + 1 < states) table.add({"...", "", ""});
    if (leading < states) add(states - 1);
    table.print();
}

std::int64_t shown_columns(std::int64_t columns, std::int64_t limit)
{
    return limit == all_rows ? columns : std::min(columns, widest_row);
}

/// Datasets with the same leading extent side by side.
void print_table(const std::vector<const Item*>& items, std::int64_t limit)
{
    std::vector<std::string> titles;
    std::vector<bool> right;
    const auto columns = [&](const Item& item) { return shown_columns(item.row_length(), limit); };
    for (const Item* item : items) {
        for (std::int64_t i = 0; i < columns(*item); ++i)
            titles.push_back(item->shape.size() < 2 ? item->name : fmt::format("{}[{}]", item->name, i));
        if (columns(*item) < item->row_length()) titles.emplace_back("...");
        right.resize(titles.size(), item->type != Type::text);
    }
    Table table{titles};
    for (std::size_t i = 0; i < right.size(); ++i)
        if (right[i]) table.align_right(i);
    const std::int64_t rows = shown_rows(*items.front(), limit);
    for (std::int64_t row = 0; row < rows; ++row) {
        std::vector<std::string> cells;
        for (const Item* item : items) {
            for (std::int64_t i = 0; i < columns(*item); ++i)
                cells.push_back(value_text(*item, row * item->row_length() + i));
            if (columns(*item) < item->row_length()) cells.emplace_back("...");
        }
        table.add(std::move(cells));
    }
    fmt::print("\n");
    table.print();
    print_rest(rows, items.front()->row_count());
}

/// Each collector with its members, by entity type.
void print_collectors(const Block& block, std::int64_t limit)
{
    const Item& identifiers = *block.find("idcoll");
    const Item& types = *block.find("etyp");
    const Item& counts = *block.find("nent");
    const Item& members = *block.find("entid");
    fmt::print("\n{}  [{}], {} members\n", emphasized("collectors"), identifiers.rows, members.rows);
    const std::int64_t rows = shown_rows(identifiers, limit);
    std::int64_t first = 0;
    for (std::int64_t row = 0; row < rows; ++row) {
        fmt::print("  {}\n", identifiers.integer(row));
        for (std::int64_t type = 0; type < types.rows; ++type) {
            const std::int64_t count = counts.integer(row * types.rows + type);
            // Nothing makes the counts add up in a damaged file.
            const std::int64_t there = std::clamp<std::int64_t>(count, 0, members.rows - first);
            const std::int64_t shown = limit == all_rows ? there : std::min(there, limit);
            fmt::print("    {} [{}]{}", printable(types.text(type)), count, shown > 0 ? ":" : "");
            for (std::int64_t i = 0; i < shown; ++i) fmt::print(" {}", members.integer(first + i));
            fmt::print("{}\n", shown < there ? fmt::format(" ... {} more", there - shown) : "");
            first += there;
        }
    }
    print_rest(rows, identifiers.rows);
}

/// Results with a line for each location in each element.
void print_locations(const Block& block, const Item& res, std::int64_t limit)
{
    print_heading(res);
    if (res.element_count() == 0) return;
    const Item& elements = *block.find("idele");
    const std::int64_t rows = shown_rows(res, limit);
    const std::int64_t locations = block.integer("numl", 1);
    const std::int64_t components = block.integer("ncoo", 1);
    const auto print = [&](std::int64_t first) {
        std::vector<std::string> titles{"ELEMENT", "LOCATION"};
        for (std::int64_t i = 0; i < components; ++i) titles.push_back(fmt::format("{}", i));
        Table table{titles};
        for (std::size_t column = 0; column < titles.size(); ++column) table.align_right(column);
        for (std::int64_t line = 0; line < rows * locations; ++line) {
            std::vector<std::string> cells{fmt::format("{}", elements.integer(line / locations)),
                                           fmt::format("{}", line % locations)};
            for (std::int64_t i = 0; i < components; ++i)
                cells.push_back(value_text(res, first + line * components + i));
            table.add(std::move(cells));
        }
        if (rows > 0) table.print();
        print_rest(rows, res.row_count());
    };
    if (res.is_series)
        print_states(block, res, limit, print);
    else
        print(0);
}

void print_matrix(const Item& val, std::int64_t limit)
{
    print_heading(val);
    const std::int64_t rows = shown_rows(val, limit);
    const std::int64_t length = val.row_length() / parts(val);
    const std::int64_t columns = shown_columns(length, limit);
    if (val.element_count() == 0) return;
    std::vector<std::string> titles{""};
    for (std::int64_t i = 0; i < columns; ++i) titles.push_back(fmt::format("{}", i));
    if (columns < length) titles.emplace_back("...");
    Table table{titles};
    for (std::size_t column = 0; column < titles.size(); ++column) table.align_right(column);
    for (std::int64_t row = 0; row < rows; ++row) {
        std::vector<std::string> cells{fmt::format("{}", row)};
        for (std::int64_t i = 0; i < columns; ++i) cells.push_back(value_text(val, row * length + i));
        if (columns < length) cells.emplace_back("...");
        table.add(std::move(cells));
    }
    if (rows > 0) table.print();
    print_rest(rows, val.row_count());
}

/// Row, column and value of each entry, counted as they are stored: from 0, or from 1 where the first row starts at 1.
void print_entries(const Block& block, std::int64_t limit)
{
    const Item& columns = *block.find("colind");
    const Item& starts = *block.find("rowptr");
    const Item& val = *block.find("val");
    const std::int64_t entries = shown_rows(val, limit);
    fmt::print("\n{}  [{}]\n", emphasized("entries"), val.row_count());
    Table table{{"ROW", "COLUMN", "VALUE"}};
    for (const std::size_t column : {0U, 1U, 2U}) table.align_right(column);
    const std::int64_t base = starts.rows > 0 && starts.integer() == 1 ? 1 : 0;
    std::int64_t row = 0;
    for (std::int64_t i = 0; i < entries; ++i) {
        while (row + 1 < starts.rows && starts.integer(row + 1) <= i + base) ++row;
        // In a damaged file the rows may not cover all entries.
        const bool in_row = row + 1 < starts.rows && starts.integer(row) <= i + base;
        table.add(
            {in_row ? fmt::format("{}", row + base) : "?", fmt::format("{}", columns.integer(i)), value_text(val, i)});
    }
    if (entries > 0) table.print();
    print_rest(entries, val.row_count());
}

constexpr int real_scale_offset = 128;

std::string filters_text(const Block& block)
{
    constexpr int deflate = 1 | 2 | 4;
    constexpr int shuffle = 8 | 16 | 32;
    constexpr int integer_scale_offset = 64;
    std::vector<std::string> filters;
    if (block.filter_flags & integer_scale_offset) filters.emplace_back("scale-offset");
    if (block.filter_flags & real_scale_offset)
        filters.push_back(fmt::format("scale-offset with {} decimals", block.filter_params[0]));
    if (block.filter_flags & shuffle) filters.emplace_back("shuffle");
    if (block.filter_flags & deflate) filters.push_back(fmt::format("deflate {}", block.filter_params[1]));
    return filters.empty() ? "none" : fmt::format("{}", fmt::join(filters, ", "));
}

void print_datasets(const Block& block, std::int64_t limit)
{
    const bool is_series = block.find("nstate") != nullptr;
    if (is_series) print_state_table(block, limit);
    std::vector<const Item*> columns;
    for (const Item& item : block.items) {
        if (!item.in_block || item.stored != Stored::dataset) continue;
        const bool is_index = item.name == "indexident" || item.name == "indexval";
        if (is_index && is_series) continue;
        const Look look = is_index ? Look::lists : block.kind->look;
        const bool is_main = item.name == block.kind->main;
        if (look == Look::table)
            columns.push_back(&item);
        else if (look == Look::locations && is_main)
            print_locations(block, item, limit);
        else if (look == Look::matrix && is_main)
            print_matrix(item, limit);
        else if (look == Look::lists || look == Look::locations)
            print_dataset(block, item, limit);
    }
    if (!columns.empty()) print_table(columns, limit);
    if (block.kind->look == Look::collectors) print_collectors(block, limit);
    if (block.kind->look == Look::entries) print_entries(block, limit);
}

} // namespace

std::int64_t shown_rows(const Item& item, std::int64_t limit)
{
    return limit == all_rows || item.shape.empty() ? item.rows : std::min(item.rows, limit);
}

std::vector<std::int64_t> shown_states(const Item& item, std::int64_t limit)
{
    if (item.element_count() == 0) return {}; // nothing was compared with the number of states
    std::vector<std::int64_t> places{0};
    for (std::int64_t i = limit == all_rows ? 1 : std::max<std::int64_t>(1, item.state_count - 1); i < item.state_count;
         ++i)
        places.push_back(i);
    return places;
}

std::optional<PromisedError> promised_error(const Block& block)
{
    if (!block.filters_known || (block.filter_flags & real_scale_offset) == 0) return {};
    const std::int32_t decimals = block.filter_params[0];
    const double step = std::strtod(fmt::format("1e{}", -std::int64_t{decimals}).c_str(), nullptr);
    return PromisedError{decimals, step / 2, step};
}

void print_block(const Entry& entry, const Block& block, std::int64_t limit)
{
    fmt::print("{}\n", emphasized(printable(entry.path)));
    fmt::print("block {}, key {}, {}, {} bytes unpacked\n", entry.number, entry.key, block.kind->name, block.bytes());
    if (block.filters_known) fmt::print("filters: {}\n", filters_text(block));
    if (const auto promise = promised_error(block))
        fmt::print("promise: no value is off by more than {} ({} next to 10000) and one unit in the last place\n",
                   number_text(promise->error), number_text(promise->next_to_fill));
    std::size_t width = 0;
    for (const Item& item : block.items)
        if (item.in_block && item.stored == Stored::attribute) width = std::max(width, item.name.size());
    fmt::print("\n");
    for (const Item& item : block.items)
        if (item.in_block && item.stored == Stored::attribute)
            fmt::print("{:{}}  {}\n", item.name, width, value_text(item, 0));
    print_datasets(block, limit);
}

} // namespace kob::program
