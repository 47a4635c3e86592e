// SPDX-License-Identifier: BSD-3-Clause
// kob show: one block with its attributes and the first rows of its arrays.

#include "block_reader.hpp"
#include "block_text.hpp"
#include "command_line.hpp"
#include "file.hpp"
#include "terminal.hpp"
#include "verbs.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
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
        Suggestion nearest{word};
        for (const Entry& entry : entries) {
            const std::string_view path = short_path(entry);
            for (std::size_t at = 0; at != std::string_view::npos; at = path.find('/', at)) {
                if (at > 0) ++at;
                nearest.consider(path.substr(at));
            }
        }
        throw Failure{exit_usage, fmt::format("there is no block \"{}\" in {}{}", printable(word),
                                              printable(file.path()), nearest.text())};
    }
    std::string line = fmt::format("\"{}\" names more than one block:", printable(word));
    for (std::size_t i = 0; i < std::min(found.size(), listed_candidates); ++i)
        line += fmt::format("\n  {}  {}", found[i]->number, printable(short_path(*found[i])));
    if (found.size() > listed_candidates) line += "\n  ...";
    throw Failure{exit_usage, line};
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

/// Nested arrays, as deep as the shape from this level on.
Json values_json(const Item& item, std::int64_t extent, std::size_t level, std::int64_t& at)
{
    if (level == item.shape.size()) return value_json(item, at++);
    Json array = Json::array();
    for (std::int64_t i = 0; i < extent; ++i)
        array.push_back(values_json(item, level + 1 < item.shape.size() ? item.shape[level + 1] : 0, level + 1, at));
    return array;
}

/// The rows shown, of a series those of each state shown.
Json values_json(const Item& item, std::int64_t limit)
{
    const std::int64_t rows = shown_rows(item, limit);
    if (item.element_count() == 0) return Json::array();
    std::int64_t at = 0;
    if (!item.is_series) return values_json(item, rows, 0, at);
    Json states = Json::array();
    for (const std::int64_t place : shown_states(item, limit)) {
        at = place * item.rows * item.row_length();
        states.push_back(values_json(item, rows, 1, at));
    }
    return states;
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
    if (const auto promise = promised_error(block))
        json["promised_error"] = {
            {"decimals", promise->decimals}, {"error", promise->error}, {"next_to_10000", promise->next_to_fill}};
    json["attributes"] = Json::object();
    json["datasets"] = Json::array();
    for (const Item& item : block.items) {
        if (!item.in_block) continue;
        if (item.stored == Stored::attribute) {
            json["attributes"][item.name] = value_json(item, 0);
            continue;
        }
        Json dataset{{"name", item.name},
                     {"type", type_name(item.type)},
                     {"shape", item.shape},
                     {"complex", item.complex_pairs}};
        if (item.is_series) {
            dataset["states"] = Json::array();
            for (const std::int64_t place : shown_states(item, limit)) dataset["states"].push_back(item.state(place));
        }
        dataset["values"] = values_json(item, limit);
        json["datasets"].push_back(std::move(dataset));
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
    Verb verb{app, "show", "Show the attributes and values of one block"};
    verb.option("FILE", options->file, "Result file").required();
    verb.option("BLOCK", options->block, "Number in the listing, path, or the end of a path that only one block has")
        .required();
    const Option rows =
        verb.option("-n,--rows", options->rows, "Number of rows shown of each array").not_negative().shows_default();
    verb.flag("-a,--all", options->all, "Show all rows").excludes(rows);
    verb.flag("--json", options->json, "Print JSON");
    verb.runs([options, &exit_code] { run_verb("kob show", exit_code, [&] { return show(*options); }); });
}

} // namespace kob::program
