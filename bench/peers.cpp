// SPDX-License-Identifier: BSD-3-Clause
// Runs each format's program beside plain HDF5, both in processes of their own.
#include "peers.hpp"

#include "kob_dp.h"
#include "series.hpp"
#include "values.hpp"

#include <fmt/format.h>
#include <hdf5.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

namespace bench {
namespace {

enum class Task { write, read };

/// Writes or reads a result set in one way, measured.
using Run = std::function<Sample(Task task, const ResultSet& set, const std::string& file)>;

/// A format's library, and plain HDF5 of the version that it uses.
struct Contestant {
    std::string name;
    Run library;
    Run plain;
};

/// What a program prints, which must not fail.
std::string output_of(const std::string& command)
{
    std::fflush(nullptr);
    const std::unique_ptr<FILE, int (*)(FILE*)> program{popen(command.c_str(), "r"), pclose};
    std::string text;
    std::array<char, 256> part{};
    while (program && std::fgets(part.data(), part.size(), program.get()) != nullptr) {
        text += part.data();
    }
    if (text.empty() || text.back() != '\n') {
        throw std::runtime_error{"cannot run " + command};
    }
    text.pop_back();
    return text;
}

std::string quoted(const std::string& text) { return '"' + text + '"'; }

Run in_this_program(const Program<ResultSet>& program)
{
    return [&program](Task task, const ResultSet& set, const std::string& file) {
        return measure([&] { return (task == Task::write ? program.write : program.read)(set, file, nullptr); });
    };
}

Run in_program(const std::string& program, const std::string& side)
{
    return [program, side](Task task, const ResultSet& set, const std::string& file) {
        const std::string command =
            fmt::format("{} {} {} {} {} {} {} {}", quoted(program), side, task == Task::write ? "write" : "read",
                        quoted(file), set.states, set.nent, set.ncoo, fmt::join(set.variables, " "));
        const std::string output = output_of(command);
        Sample sample;
        double memory = 0;
        if (std::sscanf(output.c_str(), "%lf %lf %lf", &sample.cpu, &sample.wall, &memory) != 3) { // NOLINT
            throw std::runtime_error{"not understood: " + output};
        }
        if (memory >= 0) {
            sample.memory = memory;
        }
        return sample;
    };
}

std::vector<Contestant> contestants(const std::filesystem::path& programs, const Scratch& scratch)
{
    unsigned major = 0;
    unsigned minor = 0;
    unsigned release = 0;
    H5get_libversion(&major, &minor, &release);
    const std::string ours = fmt::format("kob_dp {}.{}.{}, HDF5 {}.{}.{}", KOB_VERSION_MAJOR, KOB_VERSION_MINOR,
                                         KOB_VERSION_PATCH, major, minor, release);
    std::vector<Contestant> all{
        {ours, in_this_program(Programs<ResultSet>::ours), in_this_program(bare_values)},
        {ours + ", series", in_this_program(ours_in_series), in_this_program(bare_values)},
    };
    for (const char* name : {"cgns", "exodus", "med", "netcdf"}) {
        const std::string program = (programs / (std::string{"kob_bench_"} + name)).string();
        all.push_back(
            {output_of(quoted(program) + " name"), in_program(program, "peer"), in_program(program, "plain")});
        output_of(fmt::format("{} check {} && echo good", quoted(program), quoted(scratch.file("check"))));
    }
    return all;
}

/// Both in turn, the first one changing from run to run. Each reads what it wrote.
PeerResult measure_task(const Contestant& contestant, Task task, const ResultSet& set, int count,
                        const Scratch& scratch)
{
    PeerResult result;
    result.name = contestant.name;
    const auto run_once = [&](const Run& run, Runs& runs, const std::string& file) {
        if (task == Task::write) {
            std::filesystem::remove(file);
        } else if (!std::filesystem::exists(file)) {
            run(Task::write, set, file); // the filter left out the writing
        }
        runs.samples.push_back(run(task, set, file));
        runs.file_bytes = std::filesystem::file_size(file);
    };
    for (int i = 0; i < count; ++i) {
        const auto plain = [&] { run_once(contestant.plain, result.plain, scratch.file("plain")); };
        const auto library = [&] { run_once(contestant.library, result.library, scratch.file("library")); };
        if (i % 2 == 0) {
            plain();
            library();
        } else {
            library();
            plain();
        }
    }
    return result;
}

} // namespace

int count_lossy(const Scratch& scratch)
{
    int count = 0;
    for (const auto& [name, program] :
         {std::pair{"results in series", &ours_in_series}, std::pair{"bare numbers", &bare_values}}) {
        const bool good = finds_its_values(*program, scratch.file("values"));
        fmt::print("{}: {}\n", name, good ? "found again" : "LOST");
        count += good ? 0 : 1;
    }
    return count;
}

std::vector<PeerResult> measure_peers(const std::filesystem::path& programs, const std::string& filter, int count,
                                      const Scratch& scratch)
{
    const std::vector<std::pair<std::string, ResultSet>> works{
        {"10 x 1,000,000 x 3, 8 bytes", {10, {"DISPLACEMENT"}, 1'000'000, 3}},
        {"10,000 blocks of 200 x 3", {2000, {"DISPLACEMENT", "STRESS", "STRAIN", "TEMPERATURE", "REACTION"}, 200, 3}},
    };
    std::vector<PeerResult> results;
    for (const Contestant& contestant : contestants(programs, scratch)) {
        print_peer_head(contestant.name);
        for (const auto& [work, set] : works) {
            for (const auto& [task, verb] : {std::pair{Task::write, "write "}, std::pair{Task::read, "read "}}) {
                if ((verb + work).find(filter) == std::string::npos) {
                    continue;
                }
                results.push_back(measure_task(contestant, task, set, count, scratch));
                results.back().work = verb + work;
                print_peer_line(results.back());
            }
            scratch.clear();
        }
    }
    return results;
}

} // namespace bench
