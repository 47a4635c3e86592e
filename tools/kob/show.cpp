// SPDX-License-Identifier: BSD-3-Clause
// kob show: one block with its attributes and the first rows of its arrays.

#include "block_reader.hpp"
#include "file.hpp"
#include "terminal.hpp"
#include "verbs.hpp"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>

namespace kob::program {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::int64_t default_rows = 10;

struct Options {
    std::string file;
    std::string block;
    std::int64_t rows = default_rows;
    bool all = false;
    bool json = false;
};

/// Whether `name` is the whole path or its last levels.
bool is_suffix(std::string_view path, std::string_view name)
{
    if (!path.ends_with(name)) return false;
    return path.size() == name.size() || path[path.size() - name.size() - 1] == '/';
}

/// The block that a number, a path or the end of a path names.
const Entry& find_block(const File& file, const std::string& word)
{
    constexpr std::size_t listed_candidates = 10;
    const std::vector<Entry>& entries = file.entries();
    std::vector<const Entry*> found;
    const auto collect = [&](auto&& matches) {
        for (const Entry& entry : entries)
            if (found.empty() || found.size() <= listed_candidates)
                if (matches(entry)) found.push_back(&entry);
    };
    collect([&](const Entry& entry) { return entry.path == word || short_path(entry) == word; });
    if (found.empty()) {
        std::size_t number = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (error == std::errc{} && end == word.data() + word.size() && number < entries.size()) return entries[number];
    }
    if (found.empty() && !word.empty())
        collect([&](const Entry& entry) { return is_suffix(entry.path, word) || is_suffix(short_path(entry), word); });
    if (found.size() == 1) return *found.front();
    if (found.empty()) {
        std::vector<std::string> names;
        for (const Entry& entry : entries) {
            const std::string_view path = short_path(entry);
            for (std::size_t at = 0; at != std::string_view::npos; at = path.find('/', at)) {
                if (at > 0) ++at;
                names.emplace_back(path.substr(at));
            }
        }
        throw Failure{exit_usage, fmt::format("there is no block \"{}\" in {}{}", printable(word),
                                              printable(file.path()), suggestion(word, names))};
    }
    std::string line = fmt::format("\"{}\" names more than one block:", printable(word));
    for (std::size_t i = 0; i < std::min(found.size(), listed_candidates); ++i)
        line += fmt::format("\n  {}  {}", found[i]->number, printable(short_path(*found[i])));
    if (found.size() > listed_candidates) line += "\n  ...";
    throw Failure{exit_usage, line};
}

std::string shape_text(const Item& item)
{
    return item.shape.empty() ? std::string{} : fmt::format(" [{}]", fmt::join(item.shape, ", "));
}

std::string value_text(const Item& item, std::int64_t i)
{
    switch (item.type) {
    case Type::text:
        return printable(item.text(i));
    case Type::float64:
        return number_text(item.real(i));
    default:
        return fmt::format("{}", item.integer(i));
    }
}

/// Real and imaginary part as one word.
std::string pair_text(const Item& item, std::int64_t i)
{
    const double imaginary = item.real(i + 1);
    return fmt::format("{}{}{}i", number_text(item.real(i)), std::signbit(imaginary) ? "" : "+",
                       number_text(imaginary));
}

void print_rest(const Item& item, std::int64_t rows)
{
    if (!item.shape.empty() && rows < item.shape.front()) fmt::print("  ... {} more\n", item.shape.front() - rows);
}

/// One value per line for texts, ten in a line for numbers.
void print_list(const Item& item, std::int64_t rows)
{
    constexpr std::int64_t numbers_in_line = 10;
    const std::int64_t in_line = item.type == Type::text ? 1 : numbers_in_line;
    for (std::int64_t i = 0; i < rows; ++i)
        fmt::print("{}{}{}", i % in_line == 0 ? "  " : " ", value_text(item, i),
                   i % in_line == in_line - 1 || i == rows - 1 ? "\n" : "");
}

void print_rows(const Item& item, std::int64_t rows)
{
    const std::int64_t step = item.complex_pairs ? 2 : 1;
    const std::int64_t length = item.row_length();
    for (std::int64_t row = 0; row < rows; ++row) {
        fmt::print("  {}:", row);
        for (std::int64_t i = 0; i < length; i += step)
            fmt::print(" {}",
                       item.complex_pairs ? pair_text(item, row * length + i) : value_text(item, row * length + i));
        fmt::print("\n");
    }
}

void print_dataset(const Item& item, std::int64_t limit)
{
    fmt::print("{}  {}{}\n", emphasized(item.name), type_name(item.type), shape_text(item));
    if (item.element_count() == 0) return;
    const std::int64_t rows = limit == all_rows ? item.rows : std::min(item.rows, limit);
    if (item.type == Type::text && item.width == 1) { // a string, character by character
        std::string text;
        for (std::int64_t i = 0; i < item.rows; ++i)
            text += std::get<Buffer<char>>(item.values)[static_cast<std::size_t>(i)];
        fmt::print("  {}\n", printable(text));
        return;
    }
    if (item.shape.size() < 2)
        print_list(item, rows);
    else
        print_rows(item, rows);
    print_rest(item, rows);
}

std::string filters_text(const Block& block)
{
    constexpr int deflate = 1 | 2 | 4;
    constexpr int shuffle = 8 | 16 | 32;
    constexpr int integer_scale_offset = 64;
    constexpr int real_scale_offset = 128;
    std::vector<std::string> filters;
    if (block.filter_flags & integer_scale_offset) filters.emplace_back("scale-offset");
    if (block.filter_flags & real_scale_offset)
        filters.push_back(fmt::format("scale-offset with {} decimals", block.filter_params[0]));
    if (block.filter_flags & shuffle) filters.emplace_back("shuffle");
    if (block.filter_flags & deflate) filters.push_back(fmt::format("deflate {}", block.filter_params[1]));
    return filters.empty() ? "none" : fmt::format("{}", fmt::join(filters, ", "));
}

void print_block(const Entry& entry, const Block& block, std::int64_t limit)
{
    fmt::print("{}\n", emphasized(printable(entry.path)));
    fmt::print("block {}, key {}, {}, {} bytes unpacked\n", entry.number, entry.key, block.kind->name, block.bytes());
    if (block.filters_known) fmt::print("filters: {}\n", filters_text(block));
    std::size_t width = 0;
    for (const Item& item : block.items)
        if (item.in_block && item.stored == Stored::attribute) width = std::max(width, item.name.size());
    fmt::print("\n");
    for (const Item& item : block.items)
        if (item.in_block && item.stored == Stored::attribute)
            fmt::print("{:{}}  {}\n", item.name, width, value_text(item, 0));
    for (const Item& item : block.items)
        if (item.in_block && item.stored == Stored::dataset) {
            fmt::print("\n");
            print_dataset(item, limit);
        }
}

Json value_json(const Item& item, std::int64_t i)
{
    switch (item.type) {
    case Type::text:
        return item.text(i);
    case Type::float64:
        return item.real(i);
    default:
        return item.integer(i);
    }
}

/// Nested arrays, as deep as the shape.
Json values_json(const Item& item, std::int64_t rows, std::size_t level, std::int64_t& at)
{
    if (level == item.shape.size()) return value_json(item, at++);
    Json array = Json::array();
    const std::int64_t extent = level == 0 ? rows : item.shape[level];
    for (std::int64_t i = 0; i < extent; ++i) array.push_back(values_json(item, rows, level + 1, at));
    return array;
}

Json describe(const Entry& entry, const Block& block, std::int64_t limit)
{
    Json json{{"number", entry.number},
              {"key", entry.key},
              {"kind", block.kind->name},
              {"path", entry.path},
              {"bytes", block.bytes()}};
    if (block.filters_known)
        json["filters"] = {
            {"flags", block.filter_flags}, {"scale", block.filter_params[0]}, {"deflate", block.filter_params[1]}};
    json["attributes"] = Json::object();
    json["datasets"] = Json::array();
    for (const Item& item : block.items) {
        if (!item.in_block) continue;
        if (item.stored == Stored::attribute) {
            json["attributes"][item.name] = value_json(item, 0);
            continue;
        }
        const std::int64_t rows = limit == all_rows || item.shape.empty() ? item.rows : std::min(item.rows, limit);
        std::int64_t at = 0;
        Json values = item.element_count() == 0 ? Json::array() : values_json(item, rows, 0, at);
        json["datasets"].push_back({{"name", item.name},
                                    {"type", type_name(item.type)},
                                    {"shape", item.shape},
                                    {"complex", item.complex_pairs},
                                    {"values", std::move(values)}});
    }
    return json;
}

int show(const Options& options)
{
    const std::int64_t rows = options.all ? all_rows : options.rows;
    const File file{options.file};
    const Entry& entry = find_block(file, options.block);
    const Block block = read_block(file, entry, Depth::values, rows);
    if (options.json)
        fmt::print("{}\n", describe(entry, block, rows).dump(2, ' ', false, Json::error_handler_t::replace));
    else
        print_block(entry, block, rows);
    return 0;
}

} // namespace

void add_show(CLI::App& app, int& exit_code)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("show", "Show the attributes and values of one block");
    verb->add_option("FILE", options->file, "Result file")->required();
    verb->add_option("BLOCK", options->block,
                     "Number in the listing, path, or the end of a path that only one block has")
        ->required();
    CLI::Option* rows = verb->add_option("-n,--rows", options->rows, "Number of rows shown of each array")
                            ->check(CLI::NonNegativeNumber)
                            ->capture_default_str();
    verb->add_flag("-a,--all", options->all, "Show all rows")->excludes(rows);
    verb->add_flag("--json", options->json, "Print JSON");
    verb->callback([options, &exit_code] { run_verb("kob show", exit_code, [&] { return show(*options); }); });
}

} // namespace kob::program
