// SPDX-License-Identifier: BSD-3-Clause
// kob erase: cuts a result file back to a state, on a copy that replaces the file when all went well.

#include "command_line.hpp"
#include "draft.hpp"
#include "file.hpp"
#include "progress.hpp"
#include "terminal.hpp"
#include "verbs.hpp"
#include "written_file.hpp"

#include "kob_dp.h"

#include <nlohmann/json.hpp>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace kob::program {

namespace {

namespace fs = std::filesystem;

struct EraseOptions {
    std::string path;
    std::vector<std::int32_t> after;
    std::string output;
    bool in_place = false;
    bool repack = false;
    bool force = false;
    bool dry_run = false;
    bool quiet = false;
    bool verbose = false;
    bool json = false;
};

/// The blocks of a file; of series of entity results also the number of states.
using Contents = std::map<std::string, std::int32_t>;
constexpr std::int32_t no_series = -1;

bool is_series(std::int32_t key) { return key == 1050 || key == 1051; }

std::int32_t number_of_states(const Group& block, bool older_layout)
{
    std::array<std::array<char, 256>, 5> texts{};
    std::array<std::int32_t, 7> numbers{};
    std::int32_t nstate = 0;
    const std::int32_t pass = 1;
    std::int32_t flags = 0;
    std::array<std::int32_t, 2> params{};
    std::int32_t status = 0;
    const auto reader = older_layout ? KOB1_READ_MULTIENTITYRESULTS : KOB_READ_MULTIENTITYRESULTS;
    reader(block.handle(), &pass, texts[0].data(), texts[1].data(), &numbers[0], texts[2].data(), &numbers[1],
           texts[3].data(), &numbers[2], texts[4].data(), &numbers[3], &numbers[4], &numbers[5], &nstate, nullptr,
           nullptr, nullptr, &numbers[6], nullptr, nullptr, nullptr, nullptr, &flags, params.data(), &status);
    return status < 0 ? no_series : nstate;
}

Contents contents_of(const File& file)
{
    Contents contents;
    for (const Entry& entry : file.entries()) {
        std::int32_t states = no_series;
        if (is_series(entry.key)) {
            const Diverted errors{STDERR_FILENO}; // the eraser says what is wrong with a block
            const Group block{file.group(), entry.path};
            states = number_of_states(block, entry.older);
        }
        contents[entry.path] = states;
    }
    return contents;
}

struct Change {
    struct Cut {
        std::string path;
        std::int32_t before;
        std::int32_t after;
    };
    std::vector<std::string> deleted;
    std::vector<Cut> cut;
    std::size_t kept = 0; ///< blocks that are as before
};

Change difference(const Contents& before, const Contents& after)
{
    Change change;
    for (const auto& [path, states] : before) {
        const auto now = after.find(path);
        if (now == after.end())
            change.deleted.push_back(path);
        else if (now->second != states)
            change.cut.push_back({path, states, now->second});
        else
            ++change.kept;
    }
    return change;
}

void check_header(const File& file)
{
    const Header* header = file.header();
    const std::string name = printable(file.path());
    if (header == nullptr) throw Failure{exit_cannot_read, name + ": has no file header"};
    if (header->status < 0)
        throw Failure{exit_cannot_read,
                      fmt::format("{}: the file header cannot be read (status {})", name, header->status)};
    if (!header->version.starts_with("1 ") && !header->version.starts_with("2 "))
        throw Failure{exit_cannot_read, fmt::format("{}: has the version \"{}\", which the library does not change",
                                                    name, printable(header->version))};
}

void copy_file(const std::string& from, const fs::path& to, std::int64_t bytes, bool quiet)
{
    constexpr std::size_t piece_size = 4 << 20;
    const auto fail = [&] {
        throw Failure{exit_cannot_read, fmt::format("cannot copy \"{}\": {}", printable(from), std::strerror(errno))};
    };
    std::ifstream in{from, std::ios::binary};
    if (!in) fail();
    std::ofstream out{to, std::ios::binary | std::ios::trunc};
    if (!out) fail();
    Progress progress{"copying", bytes, Progress::Unit::bytes, quiet};
    std::vector<char> piece(piece_size);
    while (in) {
        in.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        out.write(piece.data(), in.gcount());
        if (!out) fail();
        progress.add(in.gcount());
    }
    if (in.bad()) fail();
    out.close();
    if (!out) fail();
    std::error_code ignored;
    fs::permissions(to, fs::status(from, ignored).permissions(), ignored);
}

void erase(const std::string& path, const EraseOptions& options, bool older_layout)
{
    WrittenFile file = WrittenFile::open(path);
    const auto nindex = static_cast<std::int32_t>(options.after.size());
    const std::int32_t verbose = options.verbose ? 2 : 0;
    std::int32_t status = 0;
    with_report(options.verbose && !options.json, [&] {
        const auto eraser = older_layout ? KOB1_ERASE_STATES : KOB_ERASE_STATES;
        eraser(file.handle(), &nindex, options.after.data(), &verbose, &status);
    });
    if (status < 0) throw Failure{exit_cannot_read, fmt::format("the states cannot be erased (status {})", status)};
    file.close();
}

/// Runs HDF5's own tool, which writes a file anew without the holes in it.
void repack(const fs::path& from, const fs::path& to)
{
    const char* chosen = std::getenv("KOB_H5REPACK");
    std::string program = chosen != nullptr && *chosen != '\0' ? chosen : "h5repack";
    std::string source = fs::absolute(from).string();
    std::string target = fs::absolute(to).string();
    const std::array<char*, 4> words{program.data(), source.data(), target.data(), nullptr};
    pid_t child = 0;
    const int error = posix_spawnp(&child, program.c_str(), nullptr, nullptr, words.data(), environ);
    if (error != 0)
        throw Failure{exit_cannot_read,
                      fmt::format("--repack needs HDF5's program h5repack: \"{}\": {}; put it in PATH or name it in "
                                  "KOB_H5REPACK",
                                  printable(program), std::strerror(error))};
    int result = 0;
    while (waitpid(child, &result, 0) < 0 && errno == EINTR) {}
    std::error_code ignored;
    if (!WIFEXITED(result) || WEXITSTATUS(result) != 0 || !fs::exists(to, ignored))
        throw Failure{exit_cannot_read, fmt::format("\"{}\" failed", printable(program))};
    fs::permissions(to, fs::status(from, ignored).permissions(), ignored);
}

void report(const EraseOptions& options, const std::string& output, const Change& change, std::int64_t before,
            std::int64_t after)
{
    if (options.json) {
        nlohmann::ordered_json cut = nlohmann::ordered_json::array();
        for (const auto& c : change.cut)
            cut.push_back({{"path", c.path}, {"states_before", c.before}, {"states", c.after}});
        const nlohmann::ordered_json result{
            {"file", options.path},       {"output", output},          {"after", options.after},
            {"dry_run", options.dry_run}, {"deleted", change.deleted}, {"cut", cut},
            {"unchanged", change.kept},   {"bytes_before", before},    {"bytes", after}};
        fmt::print("{}\n", result.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
        return;
    }
    if (options.quiet) return;
    if (options.dry_run) {
        for (const std::string& path : change.deleted) fmt::print("delete {}\n", printable(path));
        for (const auto& c : change.cut)
            fmt::print("cut {} from {} to {} states\n", printable(c.path), c.before, c.after);
    }
    fmt::print("{}: {} blocks deleted, {} series cut, {} unchanged; {} {} {}\n", printable(output),
               change.deleted.size(), change.cut.size(), change.kept, bytes_text(before),
               options.dry_run ? "would become" : "became", bytes_text(after));
}

int erase_file(const EraseOptions& options)
{
    if (options.in_place && (options.repack || !options.output.empty()))
        throw Failure{exit_usage, "--in-place goes with neither --output nor --repack: both write a new file"};
    std::optional<File> source{std::in_place, options.path};
    check_header(*source);
    const Contents before = contents_of(*source);
    const bool older_layout = source->older_layout();
    const std::string disk = source->disk_path();
    const std::string group = options.path.substr(disk.size()); // a group inside the file
    const std::int64_t bytes_before = source->stored_bytes();

    // A name that is a link stays one: what it points to is replaced.
    const fs::path itself = fs::canonical(disk);
    std::error_code ignored;
    const bool onto_itself = options.output.empty() || fs::equivalent(options.output, itself, ignored);
    const bool replace = options.force || onto_itself;
    const fs::path target = onto_itself ? itself : fs::path{options.output};
    Draft draft{target};
    Draft repacked{target.string() + ".repacked"};
    if (!options.dry_run) draft.check_target(replace);

    const bool on_copy = !options.in_place || options.dry_run;
    if (on_copy) copy_file(disk, draft.path(), bytes_before, options.quiet); // still open: nobody writes it meanwhile
    source.reset();
    const std::string worked_on = on_copy ? draft.path().string() : disk;
    erase(worked_on + group, options, older_layout);
    const Change change = difference(before, contents_of(File{worked_on + group}));

    const Draft* result = &draft;
    if (options.repack) {
        repack(draft.path(), repacked.path());
        if (contents_of(File{repacked.path().string() + group}) != contents_of(File{worked_on + group}))
            throw Failure{exit_cannot_read, "the repacked file holds other blocks; it is not used"};
        result = &repacked;
    }
    const auto bytes = static_cast<std::int64_t>(fs::file_size(on_copy ? result->path() : itself));
    if (!options.dry_run && on_copy) {
        if (options.repack) fs::rename(repacked.path(), draft.path());
        draft.become_target(replace);
    }
    report(options, onto_itself ? disk : options.output, change, bytes_before, bytes);
    return 0;
}

} // namespace

void add_erase(CLI::App& app, int& exit_code)
{
    Verb verb{app, "erase", "cut a result file back: erase all states after one"};
    auto options = std::make_shared<EraseOptions>();
    verb.option("FILE", options->path, "KOB file, or a group inside one").required();
    verb.option("--after", options->after,
                "index identifiers of the last state to keep, in the order of the index values")
        .required()
        .with_commas();
    verb.option("--output", options->output, "write to this file and leave FILE as it is");
    verb.flag("--in-place", options->in_place, "change FILE itself, without a copy to fall back on");
    verb.flag("--repack", options->repack, "give the space of what is erased back (needs HDF5's h5repack)");
    verb.flag("--force", options->force, "replace the output if it exists");
    verb.flag("--dry-run", options->dry_run, "say what would be erased and change nothing");
    verb.flag("--quiet", options->quiet, "no progress bar, no summary");
    verb.flag("--verbose", options->verbose, "show the library's own report");
    verb.flag("--json", options->json, "print a JSON summary");
    verb.runs([options, &exit_code] {
        run_verb("kob erase", exit_code, [&] {
            try {
                return erase_file(*options);
            } catch (const fs::filesystem_error& error) {
                throw Failure{exit_cannot_read, printable(error.what())};
            }
        });
    });
}

} // namespace kob::program
