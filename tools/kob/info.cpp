// SPDX-License-Identifier: BSD-3-Clause
// kob info: what a file is, who wrote it, which states and how many blocks of each kind it holds.

#include "block_reader.hpp"
#include "block_text.hpp"
#include "command_line.hpp"
#include "file.hpp"
#include "terminal.hpp"
#include "verbs.hpp"

#include <nlohmann/json.hpp>

#include <map>
#include <memory>
#include <optional>
#include <tuple>

namespace kob::program {

namespace {

using Json = nlohmann::ordered_json;

struct Options {
    std::string file;
    bool json = false;
};

struct State {
    std::vector<double> values; ///< index values, of the first block that could be read
    std::int64_t blocks = 0;
};

/// The blocks that have one series of states in common.
struct SeriesCount {
    std::int64_t blocks = 0;
    Series longest; ///< of the block with the most states
};

struct Count {
    std::int64_t blocks = 0;
    std::int64_t bytes = 0;  ///< unpacked size of the blocks that can be read
    std::int64_t unread = 0; ///< blocks whose size is not known
};

/// Blocks of one variable that keep the same number of decimals.
struct Scaled {
    PromisedError promise;
    std::int64_t blocks = 0;
};
/// Kind, variable and decimals.
using ScaledKey = std::tuple<std::string, std::string, std::int32_t>;

/// Block key and kind: the generations have kinds of their own under some keys.
using KindKey = std::pair<std::int32_t, const Kind*>;

struct Summary {
    std::optional<Block> system;
    std::map<std::vector<std::int64_t>, State> states; ///< by state numbers, in the order of the index values
    std::map<std::string, SeriesCount> series;         ///< by name
    std::map<KindKey, Count> kinds;
    std::map<ScaledKey, Scaled> scaled;
    Count total;
    int exit_code = 0;
};

std::string kind_name(std::int32_t key, const Kind* kind)
{
    if (kind == nullptr) return "?";
    return fmt::format("{}{}", kind->name, key == kind->complex_key ? " (complex)" : "");
}

void count(Count& sum, const std::optional<Block>& block)
{
    ++sum.blocks;
    if (!block)
        ++sum.unread;
    else if (__builtin_add_overflow(sum.bytes, block->bytes(), &sum.bytes))
        throw Failure{exit_cannot_read, "the counts of the blocks are larger than any file"};
}

/// Adds a block whose values are stored by scale-offset. The library tells that together with values: one row is read.
void add_scaled(Summary& summary, const File& file, const Entry& entry, const Kind& kind)
{
    if (kind.main != "res" && kind.main != "val") return; // nothing else is stored so
    constexpr std::int64_t one_row = 1;
    const Block block = read_block(file, entry, Depth::values, one_row);
    if (const auto promise = promised_error(block)) {
        Scaled& scaled = summary.scaled[{std::string{kind.name}, block.text(kind.variable), promise->decimals}];
        scaled.promise = *promise;
        ++scaled.blocks;
    }
}

Summary summarize(const File& file)
{
    Summary summary;
    for (const Entry& entry : file.entries()) {
        const Kind* kind = find_kind(entry);
        std::optional<Block> block;
        try {
            if (kind != nullptr) block = read_block(file, entry, Depth::index);
            if (kind != nullptr) add_scaled(summary, file, entry, *kind);
        } catch (const Failure& failure) { // the rest is still worth a summary
            complain("kob info", failure.what());
            summary.exit_code = failure.exit_code;
        }
        count(summary.kinds[{entry.key, kind}], block);
        count(summary.total, block);
        const std::vector<std::int64_t> numbers = state_numbers(entry);
        if (!numbers.empty()) {
            State& state = summary.states[numbers];
            ++state.blocks;
            if (block && state.values.empty()) state.values = state_values(*block).values;
        }
        if (std::optional<Series> series = block ? series_of(*block) : std::nullopt) {
            SeriesCount& count = summary.series[series->name];
            if (++count.blocks == 1 || series->states > count.longest.states) count.longest = std::move(*series);
        }
        if (kind != nullptr && kind->name == "system" && block) summary.system = std::move(block);
    }
    return summary;
}

/// "m^2 s^-1" for factors `first` to `first + n - 1` of a derived unit.
std::string factors_text(const Block& system, std::int64_t first, std::int64_t n)
{
    const Item& base_ids = *system.find("ubid");
    const Item& base_names = *system.find("ubnam");
    const Item& ids = *system.find("udbid");
    const Item& exponents = *system.find("udbexp");
    std::string text;
    for (std::int64_t i = first; i < first + n && i < ids.read_count(); ++i) {
        std::string name = fmt::format("#{}", ids.integer(i)); // an identifier that no base unit has
        for (std::int64_t unit = 0; unit < base_ids.read_count(); ++unit)
            if (base_ids.integer(unit) == ids.integer(i)) name = printable(base_names.text(unit));
        text += fmt::format("{}{}", text.empty() ? "" : " ", name);
        if (exponents.real(i) != 1) text += fmt::format("^{}", number_text(exponents.real(i)));
    }
    return text;
}

void print_system(const Block& system)
{
    const auto line = [&](const char* title, std::initializer_list<const char*> names) {
        std::string text;
        for (const char* name : names) {
            const std::string part = printable(system.text(name));
            text += fmt::format("{}{}", text.empty() || part.empty() ? "" : " ", part);
        }
        if (!text.empty()) fmt::print("{:<10}{}\n", title, text);
    };
    line("Title", {"title"});
    line("System", {"sys"});
    line("Solver", {"solver_name", "solver_vers"});
    line("Created", {"cdate", "ctime"});
    line("Changed", {"mdate", "mtime"});
}

void print_units(const Block& system)
{
    const Item& ids = *system.find("ubid");
    const Item& derived = *system.find("udid");
    if (ids.read_count() + derived.read_count() == 0) return;
    Table table{{"UNIT", "NAME", "OF", "FACTOR", "SHIFT"}};
    for (const std::size_t column : {0U, 3U, 4U}) table.align_right(column);
    for (std::int64_t i = 0; i < ids.read_count(); ++i)
        table.add({fmt::format("{}", ids.integer(i)), printable(system.find("ubnam")->text(i)),
                   printable(system.find("ubtyp")->text(i)), number_text(system.find("ubcon")->real(i)),
                   number_text(system.find("ubshift")->real(i))});
    std::int64_t first = 0;
    for (std::int64_t i = 0; i < derived.read_count(); ++i) {
        const std::int64_t n = std::max<std::int64_t>(system.find("ndbunit")->integer(i), 0);
        table.add({fmt::format("{}", derived.integer(i)), printable(system.find("udnam")->text(i)),
                   factors_text(system, first, n), number_text(system.find("udscal")->real(i)), ""});
        first += n;
    }
    fmt::print("\n");
    table.print();
}

std::string header_text(const Header* header)
{
    if (header == nullptr) return "no file header";
    if (header->status < 0) return fmt::format("file header unreadable (status {})", header->status);
    std::string version = printable(header->version);
    for (char& c : version)
        if (c == ' ') c = '.';
    if (header->status % 100 != 0) return fmt::format("KOB {}, wrong signature", version);
    if (header->status >= 100) return fmt::format("KOB {}, not the version of this program", version);
    return fmt::format("KOB {}{}", version, header->older_layout() ? ", the older layout" : "");
}

std::string count_bytes(const Count& count)
{
    if (count.unread == count.blocks) return "";
    return fmt::format("{}{}", count.unread > 0 ? "at least " : "", count.bytes);
}

void print_states(const Summary& summary)
{
    if (summary.states.empty()) return;
    Table states{{"STATE", "INDEX", "BLOCKS"}};
    for (const std::size_t column : {0U, 2U}) states.align_right(column);
    for (const auto& [numbers, state] : summary.states) {
        std::string values;
        for (const double value : state.values) values += (values.empty() ? "" : ", ") + number_text(value);
        states.add({fmt::format("{}", fmt::join(numbers, ",")), values, fmt::format("{}", state.blocks)});
    }
    fmt::print("\n");
    states.print();
}

void print_series(const Summary& summary)
{
    if (summary.series.empty()) return;
    Table table{{"SERIES", "STATES", "FIRST", "LAST", "BLOCKS"}};
    for (const std::size_t column : {1U, 4U}) table.align_right(column);
    for (const auto& [name, series] : summary.series)
        table.add({printable(name), fmt::format("{}", series.longest.states), series.longest.first.text(),
                   series.longest.last.text(), fmt::format("{}", series.blocks)});
    fmt::print("\n");
    table.print();
}

void print_scaled(const Summary& summary)
{
    if (summary.scaled.empty()) return;
    Table table{{"SCALED", "DECIMALS", "ERROR AT MOST", "NEXT TO 10000", "BLOCKS"}};
    for (const std::size_t column : {1U, 2U, 3U, 4U}) table.align_right(column);
    for (const auto& [key, scaled] : summary.scaled)
        table.add({printable(std::get<1>(key)), fmt::format("{}", scaled.promise.decimals),
                   number_text(scaled.promise.error), number_text(scaled.promise.next_to_fill),
                   fmt::format("{}", scaled.blocks)});
    fmt::print("\n");
    table.print();
}

void print(const File& file, const Summary& summary)
{
    const std::int64_t stored = file.stored_bytes();
    fmt::print("{:<10}{}\n", "File", printable(file.path()));
    fmt::print("{:<10}{}\n", "Format", header_text(file.header()));
    if (!file.report().library.empty())
        fmt::print("{:<10}library {}, version bounds {} to {}\n", "HDF5", file.report().library,
                   file.report().lower_bound, file.report().upper_bound);
    if (stored >= 0) fmt::print("{:<10}{} bytes ({})\n", "Stored", stored, bytes_text(stored));
    fmt::print("{:<10}{}{} bytes ({})\n", "Unpacked", summary.total.unread > 0 ? "at least " : "", summary.total.bytes,
               bytes_text(summary.total.bytes));
    if (summary.system) {
        print_system(*summary.system);
        print_units(*summary.system);
    }

    Table kinds{{"KEY", "KIND", "BLOCKS", "UNPACKED"}};
    for (const std::size_t column : {0U, 2U, 3U}) kinds.align_right(column);
    for (const auto& [type, count] : summary.kinds)
        kinds.add({fmt::format("{}", type.first), kind_name(type.first, type.second), fmt::format("{}", count.blocks),
                   count_bytes(count)});
    fmt::print("\n");
    kinds.print();

    print_states(summary);
    print_series(summary);
    print_scaled(summary);
}

Json describe(const File& file, const Summary& summary)
{
    Json json{{"file", file.path()}};
    const Header* header = file.header();
    json["header"] = header == nullptr ? Json{} : Json{{"status", header->status}, {"version", header->version}};
    json["hdf5"] = {{"library", file.report().library},
                    {"lower_bound", file.report().lower_bound},
                    {"upper_bound", file.report().upper_bound}};
    json["stored_bytes"] = file.stored_bytes();
    json["unpacked_bytes"] = summary.total.bytes;
    json["blocks"] = summary.total.blocks;
    json["blocks_of_unknown_size"] = summary.total.unread;
    json["system"] = Json{};
    if (summary.system)
        for (const char* name : {"title", "sys", "solver_name", "solver_vers", "cdate", "ctime", "mdate", "mtime"})
            json["system"][name] = summary.system->text(name);
    json["base_units"] = Json::array();
    json["derived_units"] = Json::array();
    if (summary.system) {
        const Block& system = *summary.system;
        const Item& ids = *system.find("ubid");
        for (std::int64_t i = 0; i < ids.read_count(); ++i)
            json["base_units"].push_back({{"id", ids.integer(i)},
                                          {"name", system.find("ubnam")->text(i)},
                                          {"of", system.find("ubtyp")->text(i)},
                                          {"factor", system.find("ubcon")->real(i)},
                                          {"shift", system.find("ubshift")->real(i)}});
        const Item& derived = *system.find("udid");
        std::int64_t first = 0;
        for (std::int64_t i = 0; i < derived.read_count(); ++i) {
            const std::int64_t n = std::max<std::int64_t>(system.find("ndbunit")->integer(i), 0);
            Json factors = Json::array();
            for (std::int64_t k = first; k < first + n && k < system.find("udbid")->read_count(); ++k)
                factors.push_back(
                    {{"id", system.find("udbid")->integer(k)}, {"exponent", system.find("udbexp")->real(k)}});
            json["derived_units"].push_back({{"id", derived.integer(i)},
                                             {"name", system.find("udnam")->text(i)},
                                             {"factor", system.find("udscal")->real(i)},
                                             {"factors", factors}});
            first += n;
        }
    }
    json["kinds"] = Json::array();
    for (const auto& [type, count] : summary.kinds) {
        const auto& [key, kind] = type;
        json["kinds"].push_back({{"key", key},
                                 {"kind", kind != nullptr ? Json(kind->name) : Json{}},
                                 {"blocks", count.blocks},
                                 {"unpacked_bytes", count.bytes},
                                 {"blocks_of_unknown_size", count.unread}});
    }
    json["states"] = Json::array();
    for (const auto& [numbers, state] : summary.states)
        json["states"].push_back({{"state", numbers}, {"index", state.values}, {"blocks", state.blocks}});
    json["series"] = Json::array();
    for (const auto& [name, series] : summary.series)
        json["series"].push_back({{"name", name},
                                  {"states", series.longest.states},
                                  {"first", series.longest.first.values},
                                  {"last", series.longest.last.values},
                                  {"blocks", series.blocks}});
    json["scaled"] = Json::array();
    for (const auto& [key, scaled] : summary.scaled)
        json["scaled"].push_back({{"kind", std::get<0>(key)},
                                  {"variable", std::get<1>(key)},
                                  {"decimals", scaled.promise.decimals},
                                  {"error", scaled.promise.error},
                                  {"next_to_10000", scaled.promise.next_to_fill},
                                  {"blocks", scaled.blocks}});
    return json;
}

int info(const Options& options)
{
    const File file{options.file};
    const Summary summary = summarize(file);
    if (options.json)
        fmt::print("{}\n", describe(file, summary).dump(2, ' ', false, Json::error_handler_t::replace));
    else
        print(file, summary);
    return summary.exit_code;
}

} // namespace

void add_info(CLI::App& app, int& exit_code)
{
    const auto options = std::make_shared<Options>();
    Verb verb{app, "info", "Summarize a file: header, system, units, states and kinds of block"};
    verb.option("FILE", options->file, "Result file").required();
    verb.flag("--json", options->json, "Print JSON");
    verb.runs([options, &exit_code] { run_verb("kob info", exit_code, [&] { return info(*options); }); });
}

} // namespace kob::program
