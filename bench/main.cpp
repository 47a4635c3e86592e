// SPDX-License-Identifier: BSD-3-Clause
// kob_bench: the library's calls against hand-written plain HDF5 that makes the same files.
#include "peers.hpp"
#include "report.hpp"
#include "rows.hpp"
#include "scratch.hpp"
#include "verify.hpp"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>

namespace {

using namespace bench;

/// Runs one program. What it makes or changes is a new file, what it only reads is the input.
void run_once(const Side& side, Row::Kind kind, Runs& runs, const std::string& input, const std::string& output)
{
    std::filesystem::remove(output);
    if (kind == Row::Kind::change) {
        std::filesystem::copy_file(input, output);
    }
    const std::string& file = kind == Row::Kind::read ? input : output;
    runs.samples.push_back(measure([&] { return side.task(file, nullptr); }));
    runs.file_bytes = std::filesystem::file_size(file);
}

/// Both programs in turn, the first one changing from run to run, so that a slow spell of the machine meets both.
Result measure_row(const Row& row, int count, const Scratch& scratch)
{
    Result result{row, {}, {}, {}};
    const std::string input = scratch.file("input.kob");
    const std::string output = scratch.file("output.kob");
    if (row.kind != Row::Kind::write) {
        // The arrays, too, are made apart: what this process once held would be free memory to all later runs.
        run_apart([&] { row.raw.write(input, nullptr)(); });
    }
    for (int i = 0; i < count; ++i) {
        if (i % 2 == 0) {
            run_once(row.raw, row.kind, result.raw, input, output);
            run_once(row.ours, row.kind, result.ours, input, output);
        } else {
            run_once(row.ours, row.kind, result.ours, input, output);
            run_once(row.raw, row.kind, result.raw, input, output);
        }
    }
    scratch.clear();
    return result;
}

/// Our time of the row against that of the smaller one, if that was measured.
std::optional<double> growth_of(const Result& result, const std::vector<Result>& earlier)
{
    for (const Result& other : earlier) {
        if (other.row.name == result.row.growth.smaller) {
            return result.ours.cpu() / other.ours.cpu();
        }
    }
    return {};
}

std::vector<Result> measure_all(const std::vector<Row>& chosen, int count, const Scratch& scratch)
{
    std::vector<Result> results;
    print_head();
    for (const Row& row : chosen) {
        Result result = measure_row(row, count, scratch);
        result.growth = growth_of(result, results);
        print_line(result);
        results.push_back(std::move(result));
    }
    return results;
}

void keep(const std::string& text, const std::string& file_name)
{
    std::ofstream file{file_name};
    file << text << std::flush;
    if (!file) {
        throw std::runtime_error{"cannot write " + file_name};
    }
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
    std::filesystem::path peers;
    bool verify = false;
    app.add_option("--runs", count, "Runs of each program; medians are shown")->check(CLI::PositiveNumber);
    app.add_option("--filter", filter, "Only work whose name holds this text");
    app.add_option("--json", json_file, "Also write everything, single runs included, to this file");
    app.add_option("--dir", folder, "Folder for the files, 1.3 GB at most; else one in memory if there is room")
        ->check(CLI::ExistingDirectory);
    app.add_option("--peers", peers, "Also run the programs of other formats in this folder, built from bench/peers")
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
        if (verify) {
            return count_different(chosen, scratch) + count_lossy(scratch) == 0 ? 0 : 1;
        }
        const std::vector<Result> results = measure_all(chosen, count, scratch);
        std::vector<PeerResult> of_peers;
        if (!peers.empty()) {
            of_peers = measure_peers(peers, filter, count, scratch);
        }
        if (!json_file.empty()) {
            keep(json_text(results, of_peers), json_file);
        }
        return std::all_of(results.begin(), results.end(), [](const Result& result) { return result.missed().empty(); })
                   ? 0
                   : 1;
    } catch (const std::exception& error) {
        fmt::print(stderr, "kob_bench: {}\n", error.what());
        return 3;
    }
}
