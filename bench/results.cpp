// SPDX-License-Identifier: BSD-3-Clause
// What both programs write and read.
#include "results.hpp"

#include <cmath>
#include <cstdio>
#include <numeric>
#include <random>

namespace bench {

Block::Block(const ResultSet& set)
    : nent{set.nent}, ncoo{set.ncoo}, entid(static_cast<std::size_t>(set.nent)), res{smooth_field(nent, ncoo)}
{
    std::iota(entid.begin(), entid.end(), 1);
}

void Block::select(const ResultSet& set, std::int32_t state, std::size_t variable)
{
    etypvar = text256(set.variables[variable]);
    indexident = state;
    indexval = 0.5 * state;
    for (std::int32_t i = 0; i < ncoo; ++i) {
        res[static_cast<std::size_t>(i)] = state + 0.1 * i + static_cast<double>(variable);
    }
}

std::vector<double> smooth_field(std::int32_t nent, std::int32_t ncoo)
{
    constexpr double height = 10;
    constexpr double noise = 1e-5;
    const auto nodes = static_cast<std::size_t>(nent);
    const auto components = static_cast<std::size_t>(ncoo);
    const auto edge = static_cast<std::size_t>(std::ceil(std::cbrt(nent)));
    std::vector<double> wave(edge * components); // along an edge
    for (std::size_t i = 0; i < edge; ++i) {
        const double place = static_cast<double>(i) / static_cast<double>(edge);
        for (std::size_t j = 0; j < components; ++j) {
            const auto component = static_cast<double>(j);
            wave[i * components + j] = std::cos((3 + component) * place + component);
        }
    }
    std::vector<double> values(nodes * components);
    std::minstd_rand random; // NOLINT: the same each time
    for (std::size_t node = 0; node < nodes; ++node) {
        const std::size_t x = node % edge;
        const std::size_t y = node / edge % edge;
        const std::size_t z = node / edge / edge;
        for (std::size_t i = 0; i < components; ++i) {
            const double share = static_cast<double>(random()) / static_cast<double>(std::minstd_rand::max());
            values[node * components + i] =
                height * wave[x * components + i] * wave[y * components + i] * wave[z * components + i] +
                noise * (2 * share - 1);
        }
    }
    return values;
}

std::string state_path(std::int32_t state)
{
    std::array<char, 64> path{};
    std::snprintf(path.data(), path.size(), "singlestate/state%012d", state);
    return path.data();
}

std::string path_of(const ResultSet& set, std::int32_t state, std::size_t variable)
{
    return state_path(state) + "/entityresults/NODE/" + set.variables[variable] + "/kobblock";
}

void add(Digest& digest, const Block& block)
{
    for (const Text256* text : {&block.etyp, &block.etypvar, &block.etypzone, &block.etypframe}) {
        digest.add(*text);
    }
    for (const std::int32_t number : {block.nent, block.ncoo, block.zoneid, block.fswitch, block.dmpswitch,
                                      block.nindex, block.indexic, block.indexident, block.fidglob}) {
        digest.add(number);
    }
    digest.add(block.indexval);
    digest.add(block.entid);
    digest.add(block.res);
}

} // namespace bench
