// SPDX-License-Identifier: BSD-3-Clause
// kob ls: the blocks of a file as a table.

#include "block_reader.hpp"
#include "file.hpp"
#include "terminal.hpp"
#include "verbs.hpp"

#include <CLI/CLI.hpp>
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
    std::vector<std::int64_t> numbers; ///< none: constant blocks
};

/// The kinds that were asked for by name or key.
std::vector<std::int32_t> wanted_keys(const std::vector<std::string>& words)
{
    std::vector<std::int32_t> keys;
    std::vector<std::string> names;
    for (const Kind& kind : all_kinds()) names.emplace_back(kind.name);
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
        const Kind& kind = all_kinds()[static_cast<std::size_t>(found - names.begin())];
        keys.push_back(kind.key);
        if (kind.complex_key != 0) keys.push_back(kind.complex_key);
    }
    return keys;
}

/// One line of the table; without a block where only the key and the path are known.
struct Row {
    Entry entry;
    const Kind* kind;
    std::optional<Block> block;
};

std::string join(const std::vector<std::int64_t>& numbers, std::string_view gap)
{
    return fmt::format("{}", fmt::join(numbers, gap));
}

std::string size_text(const Row& row)
{
    const Item* main = row.kind->main.empty() ? nullptr : row.block->find(row.kind->main);
    return main == nullptr ? std::string{} : join(main->shape, " x ");
}

std::string index_text(const Block& block)
{
    const Item* values = block.find("indexval");
    std::string text;
    for (std::int64_t i = 0; values != nullptr && i < values->read_count(); ++i)
        text += (i > 0 ? ", " : "") + number_text(values->real(i));
    return text;
}

std::string zone_text(const Block& block)
{
    const std::string zone = block.text("etypzone");
    const std::int64_t number = block.integer("zoneid", -1);
    if (number < 0) return zone;
    return fmt::format("{}{}{}", zone, zone.empty() ? "" : " ", number);
}

Json text_or_null(const Block& block, std::string_view name)
{
    const std::string text = block.text(name);
    return text.empty() ? Json{} : Json(text);
}

Json describe(const Row& row)
{
    Json json{{"number", row.entry.number}, {"key", row.entry.key}};
    json["kind"] = row.kind != nullptr ? Json(row.kind->name) : Json{};
    json["path"] = row.entry.path;
    const std::vector<std::int64_t> state = state_numbers(row.entry);
    json["state"] = state.empty() ? Json{} : Json(state);
    if (!row.block) return json;
    const Block& block = *row.block;
    json["entity"] = text_or_null(block, row.kind->entity);
    json["variable"] = text_or_null(block, row.kind->variable);
    json["zone"] = text_or_null(block, "etypzone");
    json["zoneid"] = block.find("zoneid") != nullptr ? Json(block.integer("zoneid", -1)) : Json{};
    json["index"] = Json::array();
    const Item* identifiers = block.find("indexident");
    const Item* values = block.find("indexval");
    for (std::int64_t i = 0; identifiers != nullptr && values != nullptr && i < values->read_count(); ++i)
        json["index"].push_back({{"ident", identifiers->integer(i)}, {"value", values->real(i)}});
    const Item* main = row.kind->main.empty() ? nullptr : block.find(row.kind->main);
    json["shape"] = main != nullptr ? Json(main->shape) : Json{};
    json["bytes"] = block.bytes();
    return json;
}

void print_table(const std::vector<Row>& rows, bool with_paths)
{
    const bool path_column =
        with_paths || std::any_of(rows.begin(), rows.end(), [](const Row& row) { return !row.block; });
    std::vector<std::string> titles{"NO",   "KEY",   "KIND",  "ENTITY", "VARIABLE",
                                    "ZONE", "STATE", "INDEX", "SIZE",   "BYTES"};
    if (path_column) titles.emplace_back("PATH");
    Table table{titles};
    for (const std::size_t column : {0U, 1U, 8U, 9U}) table.align_right(column);
    for (const Row& row : rows) {
        std::vector<std::string> cells{fmt::format("{}", row.entry.number), fmt::format("{}", row.entry.key),
                                       row.kind != nullptr ? std::string{row.kind->name} : "?"};
        const std::string state = join(state_numbers(row.entry), ",");
        if (row.block) {
            const Block& block = *row.block;
            cells.insert(cells.end(), {printable(block.text(row.kind->entity)),
                                       printable(block.text(row.kind->variable)), printable(zone_text(block)), state,
                                       index_text(block), size_text(row), fmt::format("{}", block.bytes())});
        } else {
            cells.insert(cells.end(), {"", "", "", state, "", "", ""});
        }
        if (path_column) cells.push_back(with_paths || !row.block ? printable(short_path(row.entry)) : "");
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
    if (file.older_layout())
        complain("kob ls", fmt::format("{}: the older layout (version {}): only keys and paths are listed",
                                       printable(options.file), printable(file.header()->version)));
    int exit_code = 0;
    std::vector<Row> rows;
    for (const Entry& entry : file.entries()) {
        if (!keys.empty() && std::find(keys.begin(), keys.end(), entry.key) == keys.end()) continue;
        if (state && !state->accepts(entry)) continue;
        Row row{entry, find_kind(entry.key), std::nullopt};
        const bool readable = row.kind != nullptr && row.kind->scan != nullptr && !file.older_layout();
        try {
            if (readable) row.block = read_block(file, entry, Depth::index);
        } catch (const Failure& failure) { // the others are still worth listing
            complain("kob ls", failure.what());
            exit_code = failure.exit_code;
        }
        if (!options.variables.empty()) {
            const std::string variable = row.block ? row.block->text(row.kind->variable) : std::string{};
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
    CLI::App* verb = app.add_subcommand("ls", "List the blocks of a file");
    verb->add_option("FILE", options->file, "Result file")->required();
    verb->add_option("-k,--kind", options->kinds, "Only blocks of this kind (name or key); may be repeated")
        ->allow_extra_args(false);
    verb->add_option("-v,--variable", options->variables, "Only blocks of this variable; may be repeated")
        ->allow_extra_args(false);
    verb->add_option("-s,--state", options->state,
                     "Only blocks of this state: a number, or several with commas in the order of the index values, or "
                     "\"constant\"");
    verb->add_flag("-p,--paths", options->paths, "Add the path of each block");
    verb->add_flag("--json", options->json, "Print JSON");
    verb->callback([options, &exit_code] { run_verb("kob ls", exit_code, [&] { return list(*options); }); });
}

} // namespace kob::program
