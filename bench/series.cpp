// SPDX-License-Identifier: BSD-3-Clause
// What both programs append.
#include "series.hpp"

namespace bench {
namespace {

ResultSet one_state(const SeriesSet& set) { return {1, {"DISPLACEMENT"}, set.nent, set.ncoo, 8}; }

} // namespace

State::State(const SeriesSet& set) : Block{one_state(set)} { etypvar = text256("DISPLACEMENT"); }

void State::select(std::int32_t state)
{
    indexident = state;
    indexval = 0.5 * state;
    res[0] = state;
}

} // namespace bench
