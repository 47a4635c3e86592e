// SPDX-License-Identifier: BSD-3-Clause
// kob split: cuts a model into the files of a distributed run, with shared nodes in each of their domains.

#include "block_writer.hpp"
#include "command_line.hpp"
#include "draft.hpp"
#include "file.hpp"
#include "progress.hpp"
#include "split_blocks.hpp"
#include "split_partition.hpp"
#include "terminal.hpp"
#include "verbs.hpp"
#include "written_file.hpp"

#include "kob_dp.h"

#include <nlohmann/json.hpp>

#include <unistd.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace kob::program {

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t header_key = 1;
constexpr std::int32_t connectivities_key = 300;
constexpr std::int32_t results_key = 1000;
constexpr std::int32_t most_domains = 100000;

struct SplitOptions {
    std::string path;
    std::int32_t domains = 0;
    std::string by = "order";
    std::string output;
    std::int32_t float_size = 8;
    bool force = false;
    bool dry_run = false;
    bool quiet = false;
    bool json = false;
};

/// "out.kob" and 2 of 16 become "out_02.kob".
std::string domain_path(const std::string& output, std::size_t number, std::size_t domains)
{
    const fs::path path{output};
    const std::size_t digits = fmt::format("{}", domains).size();
    return (path.parent_path() /
            fmt::format("{}_{:0{}}{}", path.stem().string(), number, digits, path.extension().string()))
        .string();
}

/// A coordinate of each node.
class Positions {
public:
    Positions(const File& file, char axis) : axis_{axis - 'x'}
    {
        for (const Entry& entry : file.entries()) {
            if (entry.key != results_key || !entry.path.starts_with("constant/")) continue;
            const Block head = read_block(file, entry, Depth::attributes);
            if (head.text("etypvar") != "COORDINATE") continue;
            if (head.integer("ncoo", 0) <= axis_)
                throw Failure{exit_usage, fmt::format("the model has no coordinate {}", axis)};
            add(read_block(file, entry, Depth::values));
        }
        if (places_.empty()) throw Failure{exit_cannot_read, "the model has no block of the variable COORDINATE"};
    }

    double of(std::int32_t node) const
    {
        const auto found = places_.find(node);
        if (found == places_.end())
            throw Failure{exit_cannot_read, fmt::format("node {} of an element has no coordinates", node)};
        return found->second;
    }

private:
    void add(const Block& block)
    {
        const auto ncoo = static_cast<std::size_t>(block.integer("ncoo", 0));
        const auto nent = static_cast<std::size_t>(block.integer("nent", 0));
        const std::int32_t* ids = block.values<std::int32_t>("entid");
        const double* values = block.values<double>("res");
        for (std::size_t i = 0; i < nent; ++i)
            places_.emplace(ids[i], values[i * ncoo + static_cast<std::size_t>(axis_)]);
    }

    int axis_;
    std::map<std::int32_t, double> places_;
};

/// One element type's elements, each once, with the domains that they get.
struct Elements {
    std::vector<std::pair<std::string, std::int32_t>> which; ///< element type and identifier
    std::vector<double> keys;                                ///< what they are sorted by
    std::map<std::pair<std::string, std::int32_t>, std::size_t> place;
};

std::vector<Block> read_connectivities(const File& file)
{
    std::vector<Block> blocks;
    for (const Entry& entry : file.entries())
        if (entry.key == connectivities_key) blocks.push_back(read_block(file, entry, Depth::values));
    if (blocks.empty()) throw Failure{exit_cannot_read, "the model has no elements: nothing tells how to cut it"};
    return blocks;
}

Elements collect(const std::vector<Block>& blocks, const Positions* positions)
{
    Elements elements;
    for (const Block& block : blocks) {
        const std::string type = block.text("etypelem");
        const auto count = static_cast<std::size_t>(block.integer("nele", 0));
        const auto npele = static_cast<std::size_t>(block.integer("npele", 0));
        const std::int32_t* ids = block.values<std::int32_t>("idele");
        const std::int32_t* ic = block.values<std::int32_t>("ic");
        for (std::size_t i = 0; i < count; ++i) {
            if (!elements.place.emplace(std::pair{type, ids[i]}, elements.which.size()).second) continue;
            double key = static_cast<double>(elements.which.size());
            if (positions != nullptr) {
                key = 0;
                for (std::size_t n = 0; n < npele; ++n) key += positions->of(ic[i * npele + n]);
                if (npele > 0) key /= static_cast<double>(npele);
            }
            elements.which.emplace_back(type, ids[i]);
            elements.keys.push_back(key);
        }
    }
    return elements;
}

Partition cut(const File& file, const SplitOptions& options)
{
    const std::vector<Block> blocks = read_connectivities(file);
    std::unique_ptr<Positions> positions;
    if (options.by != "order") positions = std::make_unique<Positions>(file, options.by.front());
    const Elements elements = collect(blocks, positions.get());
    const auto domains = static_cast<std::size_t>(options.domains);
    const std::vector<std::size_t> domain_of = equal_parts(elements.keys, domains);

    Partition partition{domains};
    for (const Block& block : blocks) {
        const std::string type = block.text("etypelem");
        const std::string family = block.text("etyp");
        const std::string node = block.text("etypnode");
        const std::string part = block.text("etyppart");
        const auto count = static_cast<std::size_t>(block.integer("nele", 0));
        const auto npele = static_cast<std::size_t>(block.integer("npele", 0));
        const std::int32_t* ids = block.values<std::int32_t>("idele");
        const std::int32_t* ic = block.values<std::int32_t>("ic");
        const std::int32_t* parts = block.values<std::int32_t>("pid");
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t domain = domain_of[elements.place.at({type, ids[i]})];
            partition.add(type, domain, ids[i]);
            if (!family.empty() && family != type) partition.add(family, domain, ids[i]);
            partition.add(part, domain, parts[i]);
            for (std::size_t n = 0; n < npele; ++n) partition.add(node, domain, ic[i * npele + n]);
        }
    }
    partition.finish();
    return partition;
}

/// What a run did, or would do.
struct Result {
    std::vector<std::string> files;
    std::vector<std::size_t> blocks;
    std::map<std::int32_t, std::size_t> left_out; ///< key -> blocks
};

/// How a part is stored: as before, but numbers that were rounded to decimal digits would drift if they were again.
Storing storing_of(const Block& block, std::int32_t float_size)
{
    constexpr std::int32_t scale_floats = 128;
    return {float_size, block.filters_known ? block.filter_flags & ~scale_floats : 0, {0, block.filter_params[1]}};
}

/// Whether there is a group at the block's path.
bool is_at_its_path(const WrittenFile& target, const Entry& entry)
{
    const Diverted errors{STDERR_FILENO};
    try {
        const Group group{*target.handle(), entry.path};
        return true;
    } catch (const Failure&) {
        return false;
    }
}

void write_domains(const File& file, const Partition& partition, const SplitOptions& options,
                   std::vector<Draft>& drafts, Result& result)
{
    const Layout layout = file.block_counts().older > 0 ? Layout::older : Layout::current;
    std::vector<WrittenFile> targets;
    for (const Draft& draft : drafts) {
        targets.push_back(WrittenFile::create(draft.path().string()));
        if (layout == Layout::older)
            targets.back().write_older_header();
        else
            targets.back().write_header();
    }
    Progress progress{"splitting", static_cast<std::int64_t>(file.entries().size()), Progress::Unit::things,
                      options.quiet};
    for (const Entry& entry : file.entries()) {
        progress.add(1);
        if (!can_split(entry.key)) continue;
        const Block block = read_block(file, entry, Depth::values);
        bool is_checked = false; // it has the same path in each domain
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const std::optional<Block> part = part_of(block, partition, i);
            if (!part) continue;
            write_block(*part, entry, layout, targets[i].handle(), storing_of(*part, options.float_size));
            ++result.blocks[i];
            if (!std::exchange(is_checked, true) && !is_at_its_path(targets[i], entry))
                complain("kob split",
                         fmt::format("warning: {}: the block has another path now", printable(short_path(entry))));
        }
    }
    for (WrittenFile& target : targets) target.close();
}

void report(const SplitOptions& options, const Result& result)
{
    if (options.json) {
        nlohmann::ordered_json files = nlohmann::ordered_json::array();
        for (std::size_t i = 0; i < result.files.size(); ++i)
            files.push_back(options.dry_run
                                ? nlohmann::ordered_json{{"file", result.files[i]}}
                                : nlohmann::ordered_json{{"file", result.files[i]}, {"blocks", result.blocks[i]}});
        nlohmann::ordered_json left_out = nlohmann::ordered_json::array();
        for (const auto& [key, count] : result.left_out) left_out.push_back({{"key", key}, {"blocks", count}});
        const nlohmann::ordered_json summary{
            {"file", options.path}, {"dry_run", options.dry_run}, {"domains", files}, {"left_out", left_out}};
        fmt::print("{}\n", summary.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
        return;
    }
    if (options.quiet) return;
    for (std::size_t i = 0; i < result.files.size(); ++i) {
        if (options.dry_run)
            fmt::print("would write {}\n", printable(result.files[i]));
        else
            fmt::print("{}: {} blocks\n", printable(result.files[i]), result.blocks[i]);
    }
}

int split_file(const SplitOptions& options)
{
    const auto domains = static_cast<std::size_t>(options.domains);
    const File file{options.path};
    const BlockCounts blocks = file.block_counts();
    if (blocks.current > 0 && blocks.older > 0)
        throw Failure{exit_cannot_read,
                      fmt::format("{}: {} of {} blocks are in the older layout; a file with both is not split",
                                  printable(options.path), blocks.older, blocks.current + blocks.older)};
    const std::string output = options.output.empty() ? file.disk_path() : options.output;
    Result result;
    result.blocks.resize(domains);
    std::vector<Draft> drafts;
    for (std::size_t i = 1; i <= domains; ++i) {
        result.files.push_back(domain_path(output, i, domains));
        drafts.emplace_back(result.files.back());
        drafts.back().check_target(options.force || options.dry_run);
    }
    for (const Entry& entry : file.entries())
        if (entry.key != header_key && !can_split(entry.key)) ++result.left_out[entry.key];
    const Partition partition = cut(file, options);
    if (!options.json) {
        for (const auto& [key, count] : result.left_out) {
            const Kind* kind = find_kind(key);
            complain("kob split", fmt::format("{} blocks of the kind {} are left out: this kind cannot be cut", count,
                                              kind ? fmt::format("\"{}\"", kind->name) : fmt::format("{}", key)));
        }
    }
    if (!options.dry_run) {
        allow_open_files(domains);
        write_domains(file, partition, options, drafts, result);
        for (Draft& draft : drafts) draft.become_target(options.force);
    }
    report(options, result);
    return 0;
}

} // namespace

void add_split(CLI::App& app, int& exit_code)
{
    Verb verb{app, "split", "cut a model into the files of a distributed run"};
    auto options = std::make_shared<SplitOptions>();
    verb.option("FILE", options->path, "KOB file with elements").required();
    verb.option("N", options->domains, "number of domains").required().between(1, most_domains);
    verb.option("--by", options->by, "cut the elements in their order, or across x, y or z")
        .one_of({"order", "x", "y", "z"})
        .shows_default();
    verb.option("--output", options->output,
                "name of the domain files, which get _1, _2, ... before its ending (default: that of FILE)");
    verb.option("--float", options->float_size, "bytes of a stored number: 4 or 8").one_of({4, 8}).shows_default();
    verb.flag("--force", options->force, "replace domain files that exist");
    verb.flag("--dry-run", options->dry_run, "say what would be written and write nothing");
    verb.flag("--quiet", options->quiet, "no progress bar, no summary");
    verb.flag("--json", options->json, "print a JSON summary");
    verb.runs([options, &exit_code] {
        run_verb("kob split", exit_code, [&] {
            try {
                return split_file(*options);
            } catch (const fs::filesystem_error& error) {
                throw Failure{exit_cannot_read, printable(error.what())};
            }
        });
    });
}

} // namespace kob::program
