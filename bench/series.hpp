// SPDX-License-Identifier: BSD-3-Clause
// A series of entity results that grows state by state.
#pragma once

#include "results.hpp"

namespace bench {

struct SeriesSet {
    std::int32_t states = 0;
    std::int32_t nent = 0; ///< below 1,000, or a multiple of the 1,000 rows that a chunk then has
    std::int32_t ncoo = 0;
    Packing packing{};
    bool stays_open = false; ///< does the library's caller keep the block's group open, too?
};

/// What a caller holds of the series: the state at hand, as of entity results of one state.
struct State : Block {
    explicit State(const SeriesSet& set);
    void select(std::int32_t state);
};

template <> const Program<SeriesSet> Programs<SeriesSet>::ours;
template <> const Program<SeriesSet> Programs<SeriesSet>::raw;

/// Through the library, a series for each variable of a result set; read state by state, values alone.
extern const Program<ResultSet> ours_in_series;

} // namespace bench
