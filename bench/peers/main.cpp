// SPDX-License-Identifier: BSD-3-Clause
// The program of a peer: one run of its library, or of plain HDF5 with the bare numbers, measured.
//
//   PROGRAM name                                                   prints names and versions
//   PROGRAM check FILE                                             writes, reads back and compares a tiny result set
//   PROGRAM peer|plain write|read FILE STATES NENT NCOO NAME...    prints CPU seconds, wall seconds, bytes of memory
#include "measure.hpp"
#include "peer.hpp"
#include "values.hpp"

#include <hdf5.h>

#include <algorithm>
#include <cstdio>
#include <exception>

namespace bench {

Components::Components(const ResultSet& set)
    : block_{set}, components_(static_cast<std::size_t>(set.ncoo), std::vector<double>(block_.entid.size()))
{
    for (std::size_t i = 0; i < block_.res.size(); ++i) {
        components_[i % size()][i / size()] = block_.res[i];
    }
}

void Components::select(const ResultSet& set, std::int32_t state, std::size_t variable)
{
    block_.select(set, state, variable);
    for (std::size_t i = 0; i < size(); ++i) {
        components_[i].front() = block_.res[i];
    }
}

void Components::add_to(Digest& digest)
{
    for (std::size_t i = 0; i < block_.res.size(); ++i) {
        block_.res[i] = components_[i % size()][i / size()];
    }
    digest.add(block_.res);
}

namespace {

int print_name()
{
    unsigned major = 0;
    unsigned minor = 0;
    unsigned release = 0;
    H5get_libversion(&major, &minor, &release);
    std::printf("%s, HDF5 %u.%u.%u\n", peer_name().c_str(), major, minor, release);
    return 0;
}

int run(const std::vector<std::string>& arguments)
{
    const Program<ResultSet>& program = arguments.at(0) == "peer" ? peer : bare_values;
    const auto task = arguments.at(1) == "write" ? program.write : program.read;
    const std::string& file = arguments.at(2);
    const ResultSet set{std::stoi(arguments.at(3)),
                        {arguments.begin() + 6, arguments.end()},
                        std::stoi(arguments.at(4)),
                        std::stoi(arguments.at(5))};
    const Sample sample = measure([&] { return task(set, file, nullptr); });
    std::printf("%.9f %.9f %.0f\n", sample.cpu, sample.wall, sample.memory.value_or(-1));
    return 0;
}

} // namespace
} // namespace bench

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    try {
        if (arguments.size() == 1 && arguments[0] == "name") {
            return bench::print_name();
        }
        if (arguments.size() == 2 && arguments[0] == "check") {
            return bench::finds_its_values(bench::peer, arguments[1]) &&
                           bench::finds_its_values(bench::bare_values, arguments[1])
                       ? 0
                       : 1;
        }
        return bench::run(arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
        return 3;
    }
}
