// SPDX-License-Identifier: BSD-3-Clause
// kob merge: the files of a distributed run become one file.

#include "block_reader.hpp"
#include "command_line.hpp"
#include "draft.hpp"
#include "file.hpp"
#include "params.hpp"
#include "progress.hpp"
#include "terminal.hpp"
#include "verbs.hpp"
#include "written_file.hpp"

#include "kob_dp.h"

#include <nlohmann/json.hpp>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace kob::program {

namespace {

namespace fs = std::filesystem;

struct MergeOptions {
    std::string target;
    std::vector<std::string> sources;
    std::string exponents;
    int deflate = 0;
    bool shuffle = false;
    std::int32_t float_size = 8;
    bool no_domains = false;
    bool force = false;
    bool dry_run = false;
    bool quiet = false;
    bool verbose = false;
    bool json = false;
};

/// What the library does with the blocks of a kind.
enum class Treatment { merged, copied, one_by_one, left_out };

Treatment treatment_of(const Entry& entry)
{
    switch (entry.key) {
    case 10:
    case 20:
    case 30:
    case 40:
        return Treatment::copied;
    case 32: // variable groups: no kind of the older layout
        return entry.older ? Treatment::left_out : Treatment::copied;
    case 250: // nor are identifiers
        return entry.older ? Treatment::left_out : Treatment::merged;
    case 100:
    case 200:
    case 300:
    case 400:
    case 1000:
    case 1001:
    case 1050:
    case 1051:
    case 2100:
        return Treatment::merged;
    case 1100:
    case 1101:
    case 10000:
    case 10001:
    case 10100:
    case 10101:
        return Treatment::one_by_one;
    default:
        return Treatment::left_out;
    }
}

const char* treatment_text(Treatment treatment)
{
    switch (treatment) {
    case Treatment::merged:
        return "merged";
    case Treatment::copied:
        return "copied from the first file";
    case Treatment::one_by_one:
        return "copied block by block";
    case Treatment::left_out:
        return "left out";
    }
    return "";
}

/// One kind of block over all domain files.
struct KindPlan {
    std::int32_t key = 0;
    std::string name;
    Treatment treatment = Treatment::left_out;
    std::size_t blocks = 0;
    std::set<std::size_t> files;
    std::set<std::string> paths;
};

using Files = std::vector<std::unique_ptr<File>>;

std::vector<KindPlan> plan(const Files& files)
{
    constexpr std::int32_t header_key = 1;
    std::vector<KindPlan> kinds;
    for (std::size_t i = 0; i < files.size(); ++i) {
        for (const Entry& entry : files[i]->entries()) {
            if (entry.key == header_key) continue; // the target gets its own
            auto found = std::find_if(kinds.begin(), kinds.end(), [&](const auto& k) { return k.key == entry.key; });
            if (found == kinds.end()) {
                const Kind* kind = find_kind(entry);
                kinds.push_back(
                    {entry.key, kind ? std::string{kind->name} : "unknown", treatment_of(entry), 0, {}, {}});
                found = kinds.end() - 1;
            }
            ++found->blocks;
            found->files.insert(i);
            found->paths.insert(entry.path);
        }
    }
    std::sort(kinds.begin(), kinds.end(), [](const auto& a, const auto& b) { return a.key < b.key; });
    return kinds;
}

Files open_sources(const MergeOptions& options)
{
    allow_open_files(options.sources.size());
    Files files;
    for (const std::string& source : options.sources) files.push_back(std::make_unique<File>(source));
    return files;
}

/// Whether the run is in the older layout, as its blocks say, or the header of a file without blocks. Files of both
/// layouts are no run.
bool are_older(const Files& files)
{
    const File* current = nullptr;
    const File* older = nullptr;
    for (const auto& file : files) {
        const BlockCounts blocks = file->block_counts();
        if (blocks.current > 0 && blocks.older > 0)
            throw Failure{exit_cannot_read,
                          fmt::format("{}: {} of {} blocks are in the older layout; a file with both is not merged",
                                      printable(file->path()), blocks.older, blocks.current + blocks.older)};
        const bool is_empty = blocks.current == 0 && blocks.older == 0;
        if (is_empty && file->header() == nullptr) continue;
        (blocks.older > 0 || (is_empty && file->older_layout()) ? older : current) = file.get();
    }
    if (current != nullptr && older != nullptr)
        throw Failure{
            exit_cannot_read,
            fmt::format("{} is in the older layout and {} is not; kob upgrade writes a file in the current one",
                        printable(older->path()), printable(current->path()))};
    return older != nullptr;
}

/// The library's lines without those that tell, file by file, which kinds are not there: few runs have all of them.
std::string notable_lines(const std::string& lines)
{
    std::string result;
    std::size_t at = 0;
    while (at < lines.size()) {
        // Most lines of the merger begin with an empty one.
        const std::size_t text = std::min(lines.find_first_not_of('\n', at), lines.size());
        const std::size_t end = std::min(lines.find('\n', text), lines.size());
        const std::string line = lines.substr(text, end - text);
        const bool absent = line.starts_with("KOB WARNING file [") && line.ends_with("\" blocks found");
        if (!absent && !line.empty()) result += line + '\n';
        at = end + 1;
    }
    return result;
}

void merge(const MergeOptions& options, const Files& files, bool older, const fs::path& path)
{
    constexpr std::int32_t deflate_all = 1 | 2 | 4;
    constexpr std::int32_t shuffle_numbers = 8 | 16;
    constexpr std::int64_t report_option = 2;
    constexpr std::int64_t no_domains_option = 4;
    const Exponents exponents = options.exponents.empty() ? Exponents{} : read_exponents(options.exponents);
    std::vector<std::int64_t> domains;
    std::int64_t bytes = 0;
    for (const auto& file : files) {
        domains.push_back(file->group());
        bytes += file->stored_bytes();
    }
    const auto count = static_cast<std::int32_t>(domains.size());
    const std::int32_t flags = (options.deflate > 0 ? deflate_all : 0) | (options.shuffle ? shuffle_numbers : 0);
    const std::array<std::int32_t, 2> params{0, options.deflate};
    const auto nexp = static_cast<std::int32_t>(exponents.values.size());
    const std::int64_t bits = (options.verbose ? report_option : 0) | (options.no_domains ? no_domains_option : 0);

    WrittenFile target = WrittenFile::create(path.string());
    if (older)
        target.write_older_header();
    else
        target.write_header();
    const auto merger = older ? KOB1_MERGE_DMP : KOB_MERGE_DMP;
    std::int32_t status = 0;
    std::string lines;
    {
        const GrowthWatch watch{"merging", path.string(), bytes, options.quiet};
        std::optional<Diverted> errors;
        if (!options.verbose) errors.emplace(STDERR_FILENO);
        with_report(options.verbose && !options.json, [&] {
            merger(domains.data(), target.handle(), &count, &flags, params.data(), &nexp, exponents.names.data(),
                   exponents.values.data(), &bits, &options.float_size, &status);
        });
        if (errors) lines = errors->text();
    }
    fmt::print(stderr, "{}", notable_lines(lines));
    if (status == 1) throw Failure{exit_cannot_read, "a state has more index values than can be merged"};
    if (status != 0) throw Failure{exit_cannot_read, fmt::format("the files cannot be merged (status {})", status)};
    target.close();
}

void report(const MergeOptions& options, const std::vector<KindPlan>& kinds, std::size_t blocks, std::int64_t bytes)
{
    if (options.json) {
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const KindPlan& kind : kinds)
            list.push_back({{"key", kind.key},
                            {"kind", kind.name},
                            {"blocks", kind.blocks},
                            {"files", kind.files.size()},
                            {"paths", kind.paths.size()},
                            {"treatment", treatment_text(kind.treatment)}});
        nlohmann::ordered_json result{
            {"target", options.target}, {"sources", options.sources}, {"dry_run", options.dry_run}, {"kinds", list}};
        if (!options.dry_run) {
            result["blocks"] = blocks;
            result["bytes"] = bytes;
        }
        fmt::print("{}\n", result.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
        return;
    }
    if (options.quiet) return;
    if (options.dry_run) {
        Table table{{"KEY", "KIND", "BLOCKS", "FILES", "PATHS", "WHAT HAPPENS"}};
        for (const std::size_t column : {0U, 2U, 3U, 4U}) table.align_right(column);
        for (const KindPlan& kind : kinds)
            table.add({fmt::format("{}", kind.key), kind.name, fmt::format("{}", kind.blocks),
                       fmt::format("{}", kind.files.size()), fmt::format("{}", kind.paths.size()),
                       treatment_text(kind.treatment)});
        table.print();
        return;
    }
    fmt::print("{}: {} blocks from {} files, {}\n", printable(options.target), blocks, options.sources.size(),
               bytes_text(bytes));
}

int merge_files(const MergeOptions& options)
{
    Draft draft{options.target};
    draft.check_target(options.force || options.dry_run);
    std::error_code ignored;
    for (const std::string& source : options.sources)
        if (fs::equivalent(source, options.target, ignored))
            throw Failure{exit_usage, fmt::format("\"{}\" cannot be source and target", printable(source))};
    std::vector<KindPlan> kinds;
    {
        const Files files = open_sources(options);
        for (const auto& file : files)
            for (const auto& other : files)
                if (&file < &other && file->path() == other->path())
                    throw Failure{exit_usage, fmt::format("\"{}\" is given twice", printable(file->path()))};
        const bool older = are_older(files);
        kinds = plan(files);
        if (kinds.empty()) throw Failure{exit_cannot_read, "the files hold no blocks"};
        for (const KindPlan& kind : kinds)
            if (kind.treatment == Treatment::left_out && !options.json && !options.dry_run)
                complain("kob merge", fmt::format("{} blocks of the kind \"{}\" are left out: this kind cannot be "
                                                  "merged",
                                                  kind.blocks, kind.name));
        if (!options.dry_run) merge(options, files, older, draft.path());
    }
    std::size_t blocks = 0;
    std::int64_t bytes = 0;
    if (!options.dry_run) {
        {
            const File made{draft.path().string()};
            blocks = made.entries().size();
            bytes = made.stored_bytes();
        }
        draft.become_target(options.force);
    }
    report(options, kinds, blocks, bytes);
    return 0;
}

} // namespace

void add_merge(CLI::App& app, int& exit_code)
{
    Verb verb{app, "merge", "merge the files of a distributed run into one"};
    auto options = std::make_shared<MergeOptions>();
    verb.option("OUT", options->target, "KOB file to write").required();
    verb.option("FILE", options->sources, "domain files, in the order of the domains").required();
    verb.option("--exponents", options->exponents,
                "parameter file: store these variables in fewer bits, see kob params");
    verb.option("--deflate", options->deflate, "compress with this level, 1 to 9, what is not compressed yet")
        .between(0, 9);
    verb.flag("--shuffle", options->shuffle, "sort the bytes of numbers before they are compressed");
    verb.option("--float", options->float_size, "bytes of a stored number of the model: 4 or 8")
        .one_of({4, 8})
        .shows_default();
    verb.flag("--no-domain-number", options->no_domains, "do not add the result DMPComputeDomainNumber");
    verb.flag("--force", options->force, "replace the output if it exists");
    verb.flag("--dry-run", options->dry_run, "say what would be merged, copied and left out, and write nothing");
    verb.flag("--quiet", options->quiet, "no progress bar, no summary");
    verb.flag("--verbose", options->verbose, "show the library's own report");
    verb.flag("--json", options->json, "print a JSON summary");
    verb.runs([options, &exit_code] {
        run_verb("kob merge", exit_code, [&] {
            try {
                return merge_files(*options);
            } catch (const fs::filesystem_error& error) {
                throw Failure{exit_cannot_read, printable(error.what())};
            }
        });
    });
}

} // namespace kob::program
