// SPDX-License-Identifier: BSD-3-Clause
// Entity results of many states: one description, and the two programs that write, read and list them.
#pragma once

#include "program.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// How arrays are packed: not at all, or each in filters.
struct Packing {
    int level = 0;   ///< of deflate, behind a byte shuffle; 0: arrays lie in the file as they are
    int digits = -1; ///< decimal digits of the values that scale-offset keeps, before those two; negative: no such step
};

/// A file of entity results: every variable in every state, all of one size.
struct ResultSet {
    std::int32_t states = 0;
    std::vector<std::string> variables;
    std::int32_t nent = 0;
    std::int32_t ncoo = 0;
    std::int32_t value_size = 8; ///< bytes of a stored value
    Packing packing{};
};

/// What a caller holds of one block; the arrays serve all blocks, the values of each state differ in their first row.
/// The values are such as a solver computes: see smooth_field().
struct Block {
    explicit Block(const ResultSet& set);
    void select(const ResultSet& set, std::int32_t state, std::size_t variable);

    Text256 etyp = text256("NODE");
    Text256 etypvar = text256("");
    Text256 etypzone = text256("");
    Text256 etypframe = text256("");
    std::int32_t nent = 0;
    std::int32_t ncoo = 0;
    std::int32_t zoneid = -1;
    std::int32_t fswitch = 0;
    std::int32_t dmpswitch = 0;
    std::int32_t nindex = 1;
    std::int32_t indexic = 1;
    std::int32_t indexident = 0;
    double indexval = 0;
    std::int32_t fidglob = 0;
    std::vector<std::int32_t> entid;
    std::vector<double> res;
};

/// Values at nodes that fill a cube: waves along its axes, another one in each component, up to 10 high, with a
/// solver's noise of 0.00001 on them.
std::vector<double> smooth_field(std::int32_t nent, std::int32_t ncoo);

/// Where the blocks of a state are, below the group of the result set, as "singlestate/state000000000012/...".
std::string state_path(std::int32_t state);
std::string path_of(const ResultSet& set, std::int32_t state, std::size_t variable);

void add(Digest& digest, const Block& block);

template <> const Program<ResultSet> Programs<ResultSet>::ours;
template <> const Program<ResultSet> Programs<ResultSet>::raw;

} // namespace bench
