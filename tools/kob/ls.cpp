// SPDX-License-Identifier: BSD-3-Clause
// kob ls: the blocks of a file as a table.

#include "block_reader.hpp"
#include "command_line.hpp"
#include "file.hpp"
#include "terminal.hpp"
#include "verbs.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>

namespace kob::program {

namespace {

using Json = nlohmann::ordered_json;

struct Options {
    std::string file;
    std::vector<std::string> kinds;
    std::vector<std::string> variables;
    std::string state;
    bool paths = false;
    bool json = false;
};

/// Which states a filter lets through: the constant blocks, or one state by its number or numbers.
struct StateFilter {
    explicit StateFilter(const std::string& text)
    {
        if (text == "constant") return;
        std::string_view rest = text;
        while (true) {
            const std::string_view one = rest.substr(0, rest.find(','));
            std::int64_t number = 0;
            const auto [end, error] = std::from_chars(one.data(), one.data() + one.size(), number);
            if (error != std::errc{} || end != one.data() + one.size())
                throw Failure{exit_usage, fmt::format("--state takes a number, numbers with commas between them, or "
                                                      "\"constant\", not \"{}\"",
                                                      printable(text))};
            numbers.push_back(number);
            if (one.size() == rest.size()) break;
            rest.remove_prefix(one.size() + 1);
        }
    }
    bool accepts(const Entry& entry) const
    {
        if (numbers.empty()) return entry.path.starts_with("constant/");
        return state_numbers(entry) == numbers;
    }
    /// Whether a series holds the state.
    bool accepts(const Block& block) const
    {
        if (numbers.empty()) return false;
        const std::int64_t states = block.integer("nstate", 0);
        for (std::int64_t row = 0; row < states; ++row) {
            const StateValues state = state_values(block, row);
            if (state.identifiers.empty()) return false; // the series has no index
            if (state.identifiers == numbers) return true;
        }
        return false;
    }
    std::vector<std::int64_t> numbers; ///< none: constant blocks
};

/// The kinds that were asked for by name or key.
std::vector<std::int32_t> wanted_keys(const std::vector<std::string>& words)
{
    std::vector<std::int32_t> keys;
    std::vector<std::string> names;
    std::vector<Kind> kinds = all_kinds();
    kinds.insert(kinds.end(), older_kinds().begin(), older_kinds().end());
    for (const Kind& kind : kinds) names.emplace_back(kind.name);
    for (const std::string& word : words) {
        std::int32_t key = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), key);
        if (error == std::errc{} && end == word.data() + word.size()) {
            keys.push_back(key);
            continue;
        }
        const auto found = std::find(names.begin(), names.end(), word);
        if (found == names.end())
            throw Failure{exit_usage,
                          fmt::format("there is no kind of block \"{}\"{}", printable(word), suggestion(word, names))};
        const Kind& kind = kinds[static_cast<std::size_t>(found - names.begin())];
        keys.push_back(kind.key);
        if (kind.complex_key != 0) keys.push_back(kind.complex_key);
    }
    return keys;
}

/// What the listing tells of a block that was read.
struct Facts {
    std::string entity;
    std::string variable;
    std::string zone;
    std::optional<std::int64_t> zoneid;
    std::optional<std::int64_t> entityid; ///< the one entity that a matrix belongs to
    StateValues index;                    ///< of one state
    std::optional<Series> series;         ///< of a series instead
    std::vector<std::int64_t> shape;      ///< of the main array; empty when the kind has none
    std::int64_t bytes;
};

/// One line of the table; without facts where only the key and the path are known.
struct Row {
    Entry entry;
    const Kind* kind;
    std::optional<Facts> facts;
};

Facts facts_of(const Block& block)
{
    const Kind& kind = *block.kind;
    Facts facts{.entity = block.text(kind.entity),
                .variable = block.text(kind.variable),
                .zone = block.text("etypzone"),
                .zoneid = std::nullopt,
                .entityid = std::nullopt,
                .index = {},
                .series = series_of(block),
                .shape = {},
                .bytes = block.bytes()};
    if (block.find("zoneid") != nullptr) facts.zoneid = block.integer("zoneid", -1);
    if (const Item* item = block.find("entid"); item != nullptr && item->stored == Stored::attribute)
        facts.entityid = item->integer();
    if (!facts.series) facts.index = state_values(block);
    if (const Item* item = kind.main.empty() ? nullptr : block.find(kind.main)) facts.shape = item->shape;
    return facts;
}

std::string join(const std::vector<std::int64_t>& numbers, std::string_view gap)
{
    return fmt::format("{}", fmt::join(numbers, gap));
}

/// One text for one state; "first .. last" of a series.
std::string range_text(const std::string& first, const std::string& last)
{
    return first == last ? first : fmt::format("{} .. {}", first, last);
}

std::string state_text(const Row& row)
{
    if (!row.facts || !row.facts->series) return join(state_numbers(row.entry), ",");
    const Series& series = *row.facts->series;
    return range_text(join(series.first.identifiers, ","), join(series.last.identifiers, ","));
}

std::string index_text(const Facts& facts)
{
    return facts.series ? range_text(facts.series->first.text(), facts.series->last.text()) : facts.index.text();
}

std::string entity_text(const Facts& facts)
{
    return facts.entityid ? fmt::format("{} {}", facts.entity, *facts.entityid) : facts.entity;
}

std::string zone_text(const Facts& facts)
{
    if (!facts.zoneid || *facts.zoneid < 0) return facts.zone;
    return fmt::format("{}{}{}", facts.zone, facts.zone.empty() ? "" : " ", *facts.zoneid);
}

template <class T> Json value_or_null(const T& value) { return value.empty() ? Json{} : Json(value); }

Json describe(const StateValues& state)
{
    Json json = Json::array();
    for (std::size_t i = 0; i < state.values.size(); ++i)
        json.push_back({{"ident", state.identifiers[i]}, {"value", state.values[i]}});
    return json;
}

Json describe(const Row& row)
{
    Json json{{"number", row.entry.number}, {"key", row.entry.key}};
    json["kind"] = row.kind != nullptr ? Json(row.kind->name) : Json{};
    json["path"] = row.entry.path;
    json["state"] = value_or_null(state_numbers(row.entry));
    if (!row.facts) return json;
    const Facts& facts = *row.facts;
    json["entity"] = value_or_null(facts.entity);
    json["variable"] = value_or_null(facts.variable);
    json["zone"] = value_or_null(facts.zone);
    json["zoneid"] = facts.zoneid ? Json(*facts.zoneid) : Json{};
    json["entityid"] = facts.entityid ? Json(*facts.entityid) : Json{};
    json["index"] = describe(facts.index);
    json["series"] = Json{};
    if (facts.series)
        json["series"] = {{"name", facts.series->name},
                          {"states", facts.series->states},
                          {"first", describe(facts.series->first)},
                          {"last", describe(facts.series->last)}};
    json["shape"] = value_or_null(facts.shape);
    json["bytes"] = facts.bytes;
    return json;
}

void print_table(const std::vector<Row>& rows, bool with_paths)
{
    const bool path_column =
        with_paths || std::any_of(rows.begin(), rows.end(), [](const Row& row) { return !row.facts; });
    std::vector<std::string> titles{"NO",   "KEY",   "KIND",  "ENTITY", "VARIABLE",
                                    "ZONE", "STATE", "INDEX", "SIZE",   "BYTES"};
    if (path_column) titles.emplace_back("PATH");
    Table table{titles};
    for (const std::size_t column : {0U, 1U, 8U, 9U}) table.align_right(column);
    for (const Row& row : rows) {
        std::vector<std::string> cells{fmt::format("{}", row.entry.number), fmt::format("{}", row.entry.key),
                                       row.kind != nullptr ? std::string{row.kind->name} : "?"};
        const std::string state = state_text(row);
        if (row.facts) {
            const Facts& facts = *row.facts;
            cells.insert(cells.end(),
                         {printable(entity_text(facts)), printable(facts.variable), printable(zone_text(facts)), state,
                          index_text(facts), join(facts.shape, " x "), fmt::format("{}", facts.bytes)});
        } else {
            cells.insert(cells.end(), {"", "", "", state, "", "", ""});
        }
        if (path_column) cells.push_back(with_paths || !row.facts ? printable(short_path(row.entry)) : "");
        table.add(std::move(cells));
    }
    table.print();
}

int list(const Options& options)
{
    const std::vector<std::int32_t> keys = wanted_keys(options.kinds);
    const std::optional<StateFilter> state =
        options.state.empty() ? std::nullopt : std::optional<StateFilter>{options.state};
    const File file{options.file};
    int exit_code = 0;
    std::vector<Row> rows;
    for (const Entry& entry : file.entries()) {
        if (!keys.empty() && std::find(keys.begin(), keys.end(), entry.key) == keys.end()) continue;
        const bool is_series = entry.path.starts_with("multistate/");
        if (state && !is_series && !state->accepts(entry)) continue;
        Row row{entry, find_kind(entry), std::nullopt};
        bool accepted = !state || !is_series;
        try {
            if (row.kind != nullptr) {
                const Block block = read_block(file, entry, Depth::index);
                accepted = accepted || state->accepts(block);
                row.facts = facts_of(block);
            }
        } catch (const Failure& failure) { // the others are still worth listing
            complain("kob ls", failure.what());
            exit_code = failure.exit_code;
        }
        if (!accepted) continue;
        if (!options.variables.empty()) {
            const std::string variable = row.facts ? row.facts->variable : std::string{};
            if (std::find(options.variables.begin(), options.variables.end(), variable) == options.variables.end())
                continue;
        }
        rows.push_back(std::move(row));
    }
    if (options.json) {
        Json json{{"file", options.file}, {"blocks", Json::array()}};
        for (const Row& row : rows) json["blocks"].push_back(describe(row));
        fmt::print("{}\n", json.dump(2, ' ', false, Json::error_handler_t::replace));
    } else {
        print_table(rows, options.paths);
    }
    if (rows.empty() && !file.entries().empty()) complain("kob ls", "no block passes the filters");
    return exit_code;
}

} // namespace

void add_ls(CLI::App& app, int& exit_code)
{
    const auto options = std::make_shared<Options>();
    Verb verb{app, "ls", "List the blocks of a file"};
    verb.option("FILE", options->file, "Result file").required();
    verb.option("-k,--kind", options->kinds, "Only blocks of this kind (name or key); may be repeated").one_at_a_time();
    verb.option("-v,--variable", options->variables, "Only blocks of this variable; may be repeated").one_at_a_time();
    verb.option("-s,--state", options->state,
                "Only blocks of this state: a number, or several with commas in the order of the index values, or "
                "\"constant\"");
    verb.flag("-p,--paths", options->paths, "Add the path of each block");
    verb.flag("--json", options->json, "Print JSON");
    verb.runs([options, &exit_code] { run_verb("kob ls", exit_code, [&] { return list(*options); }); });
}

} // namespace kob::program
