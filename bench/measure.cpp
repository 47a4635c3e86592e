// SPDX-License-Identifier: BSD-3-Clause
// Clocks and memory of a forked child.
#include "measure.hpp"

#include <hdf5.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {
namespace {

double seconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// A line of the process's status in bytes, or nothing where the system keeps none.
std::optional<double> status_bytes(const std::string& key)
{
    std::ifstream status{"/proc/self/status"};
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(key + ":", 0) == 0) {
            return 1024.0 * std::strtod(line.c_str() + key.size() + 1, nullptr);
        }
    }
    return {};
}

/// Brings the code of this program and its libraries into memory: it is nobody's working memory, and no work has to
/// wait for it.
void load_code()
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    unsigned char sum = 0;
    std::ifstream maps{"/proc/self/maps"};
    for (std::string line; std::getline(maps, line);) {
        unsigned long first = 0;
        unsigned long last = 0;
        std::array<char, 5> access{};
        if (std::sscanf(line.c_str(), "%lx-%lx %4s", &first, &last, access.data()) != 3 || access[0] != 'r' ||
            access[1] == 'w' || line.find(" /") == std::string::npos) {
            continue;
        }
        const volatile unsigned char* bytes = reinterpret_cast<const unsigned char*>(first); // NOLINT
        for (std::size_t i = 0; i < last - first; i += page) {
            sum = static_cast<unsigned char>(sum + bytes[i]);
        }
    }
}

/// Makes the peak start anew from what the process holds now.
bool reset_peak()
{
    std::ofstream control{"/proc/self/clear_refs"};
    control << "5" << std::flush;
    return control.good();
}

Sample time(const Work& work)
{
    load_code();
    const bool has_peak = reset_peak();
    const std::optional<double> before = status_bytes("VmRSS");
    Sample sample;
    const double cpu = seconds(CLOCK_PROCESS_CPUTIME_ID);
    const double wall = seconds(CLOCK_MONOTONIC);
    work();
    sample.wall = seconds(CLOCK_MONOTONIC) - wall;
    sample.cpu = seconds(CLOCK_PROCESS_CPUTIME_ID) - cpu;
    if (const std::optional<double> peak = status_bytes("VmHWM"); has_peak && before && peak) {
        sample.memory = *peak - *before;
    }
    return sample;
}

/// Runs in a child; what it returns comes back through a pipe.
Sample in_child(const std::function<Sample()>& body)
{
    std::array<int, 2> pipe_ends{};
    if (pipe(pipe_ends.data()) != 0) {
        throw std::runtime_error{"no pipe"};
    }
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error{"cannot fork"};
    }
    if (child == 0) {
        int code = 1;
        try {
            const Sample sample = body();
            code = write(pipe_ends[1], &sample, sizeof sample) == sizeof sample ? 0 : 1;
        } catch (const std::exception& error) {
            std::fprintf(stderr, "kob_bench: %s\n", error.what());
        }
        std::fflush(nullptr);
        _exit(code);
    }
    close(pipe_ends[1]);
    Sample sample;
    const bool complete = read(pipe_ends[0], &sample, sizeof sample) == sizeof sample;
    close(pipe_ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (!complete || status != 0) {
        throw std::runtime_error{"a run failed"};
    }
    return sample;
}

} // namespace

Sample measure(const Prepare& prepare)
{
    return in_child([&] {
        H5open(); // starting HDF5 is nobody's work here
        return time(prepare());
    });
}

void run_apart(const Work& work)
{
    in_child([&] {
        work();
        return Sample{};
    });
}

} // namespace bench
