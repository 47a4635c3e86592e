// SPDX-License-Identifier: BSD-3-Clause
// kob_bench: the library's calls against hand-written plain HDF5 that makes the same files.
#include "report.hpp"
#include "rows.hpp"
#include "same_file.hpp"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace {

using namespace bench;

/// A folder for the files, removed at the end.
class Scratch {
public:
    explicit Scratch(const std::filesystem::path& parent)
    {
        std::string name = (parent / "kob_bench_XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error{"cannot make a folder in " + parent.string()};
        }
        folder_ = name;
    }
    ~Scratch()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    [[nodiscard]] std::string file(const std::string& name) const { return (folder_ / name).string(); }
    void remove(std::initializer_list<const char*> names) const
    {
        for (const char* name : names) {
            std::filesystem::remove(folder_ / name);
        }
    }
    void clear() const
    {
        for (const auto& entry : std::filesystem::directory_iterator{folder_}) {
            std::filesystem::remove(entry.path());
        }
    }

private:
    std::filesystem::path folder_;
};

/// A folder in memory if there is one with room for the files, so that no disk has a say; else the one for temporaries.
std::filesystem::path default_folder()
{
    constexpr std::uintmax_t room = 1'000'000'000;
    const std::filesystem::path in_memory{"/dev/shm"};
    std::error_code missing;
    const std::filesystem::space_info space = std::filesystem::space(in_memory, missing);
    return !missing && space.available >= room ? in_memory : std::filesystem::temp_directory_path();
}

/// Both programs in turn, the first one changing from run to run, so that a slow spell of the machine meets both.
Result measure_row(const Row& row, int count, const Scratch& scratch)
{
    Result result{row, {}, {}};
    const std::string input = scratch.file("input.kob");
    if (row.kind != Row::Kind::write) {
        // The arrays, too, are made apart: what this process once held would be free memory to all later runs.
        run_apart([&] { row.raw.write(input, nullptr)(); });
    }
    const auto run_once = [&](const Side& side, Runs& runs, const char* output) {
        const bool makes_file = row.kind == Row::Kind::write || row.kind == Row::Kind::merge;
        const std::string file = makes_file ? scratch.file(output) : input;
        if (makes_file) {
            scratch.remove({"raw.kob", "ours.kob"});
        }
        runs.samples.push_back(measure([&] { return side.task(file, nullptr); }));
        runs.file_bytes = std::filesystem::file_size(file);
    };
    for (int i = 0; i < count; ++i) {
        if (i % 2 == 0) {
            run_once(row.raw, result.raw, "raw.kob");
            run_once(row.ours, result.ours, "ours.kob");
        } else {
            run_once(row.ours, result.ours, "ours.kob");
            run_once(row.raw, result.raw, "raw.kob");
        }
    }
    scratch.clear();
    return result;
}

int measure_all(const std::vector<Row>& chosen, int count, const Scratch& scratch, const std::string& json_file)
{
    std::vector<Result> results;
    bool hold = true;
    print_head();
    for (const Row& row : chosen) {
        results.push_back(measure_row(row, count, scratch));
        print_line(results.back());
        hold = hold && results.back().holds();
    }
    if (!json_file.empty()) {
        std::ofstream file{json_file};
        file << json_text(results) << std::flush;
        if (!file) {
            throw std::runtime_error{"cannot write " + json_file};
        }
    }
    return hold ? 0 : 1;
}

/// Do both programs make the same file, and find the same in it?
int verify_all(const std::vector<Row>& chosen, const Scratch& scratch)
{
    int failures = 0;
    const auto report = [&](const std::string& name, const std::vector<std::string>& lines) {
        fmt::print("{}: {}\n", name, lines.empty() ? "same" : "DIFFERENT");
        for (const std::string& line : lines) {
            fmt::print("    {}\n", line);
        }
        failures += lines.empty() ? 0 : 1;
    };
    for (const Row& row : chosen) {
        const std::string of_ours = scratch.file("ours.kob");
        const std::string of_raw = scratch.file("raw.kob");
        row.ours.write(of_ours, nullptr)();
        row.raw.write(of_raw, nullptr)();
        if (row.kind == Row::Kind::merge) {
            row.ours.task(of_ours, nullptr)();
            row.raw.task(of_raw, nullptr)();
            std::vector<std::string> lines = differences(of_ours, of_raw);
            if (!row.same_values) {
                std::erase_if(lines, [](const std::string& line) { return line.ends_with(value_difference); });
            }
            report(row.name, lines);
            continue;
        }
        if (row.kind == Row::Kind::write) {
            report(row.name, differences(of_ours, of_raw));
            continue;
        }
        const Digest nothing;
        Digest by_ours;
        Digest by_raw;
        // Crosswise: each reads what the other wrote.
        row.ours.task(of_raw, &by_ours)();
        row.raw.task(of_ours, &by_raw)();
        std::vector<std::string> lines;
        if (by_ours.value() == nothing.value()) {
            lines.emplace_back("nothing was found");
        }
        if (by_ours.value() != by_raw.value()) {
            lines.emplace_back("our calls and plain HDF5 found different things");
        }
        report(row.name, lines);
    }
    return failures == 0 ? 0 : 1;
}

std::vector<Row> choose(const std::vector<Row>& all, const std::string& filter)
{
    std::vector<Row> chosen;
    for (const Row& row : all) {
        if (row.name.find(filter) != std::string::npos) {
            chosen.push_back(row);
        }
    }
    return chosen;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app{"Measures the library against hand-written plain HDF5 that makes the same files.\n"
                 "Ends with 1 when a figure to hold is missed by more than the noise that was seen."};
    int count = 5;
    std::string filter;
    std::string json_file;
    std::filesystem::path folder = default_folder();
    bool verify = false;
    app.add_option("--runs", count, "Runs of each program; medians are shown")->check(CLI::PositiveNumber);
    app.add_option("--filter", filter, "Only work whose name holds this text");
    app.add_option("--json", json_file, "Also write everything, single runs included, to this file");
    app.add_option("--dir", folder, "Folder for the files, 0.6 GB at most; else one in memory if there is room")
        ->check(CLI::ExistingDirectory);
    app.add_flag("--verify", verify, "Measure nothing; check with tiny files that both programs do the same");
    CLI11_PARSE(app, argc, argv);

    try {
        const std::vector<Row> chosen = choose(rows(verify ? Size::tiny : Size::real), filter);
        if (chosen.empty()) {
            fmt::print(stderr, "kob_bench: no work is called \"{}\"\n", filter);
            return 2;
        }
        const Scratch scratch{folder};
        return verify ? verify_all(chosen, scratch) : measure_all(chosen, count, scratch, json_file);
    } catch (const std::exception& error) {
        fmt::print(stderr, "kob_bench: {}\n", error.what());
        return 3;
    }
}
