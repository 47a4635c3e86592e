// SPDX-License-Identifier: BSD-3-Clause
// What both programs write and read.
#include "results.hpp"

#include <cmath>
#include <cstdio>
#include <numeric>

namespace bench {

Block::Block(const ResultSet& set) : nent{set.nent}, ncoo{set.ncoo}, entid(static_cast<std::size_t>(set.nent))
{
    std::iota(entid.begin(), entid.end(), 1);
    res.resize(entid.size() * static_cast<std::size_t>(set.ncoo));
    for (std::size_t i = 0; i < res.size(); ++i) {
        res[i] = std::sin(1e-3 * static_cast<double>(i));
    }
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
