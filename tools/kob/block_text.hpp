// SPDX-License-Identifier: BSD-3-Clause
// A block as people read it: attributes, then tables, matrices, groups and lists of the first values.
#pragma once

#include "block_reader.hpp"
#include "file.hpp"

#include <cstdint>
#include <optional>
#include <vector>

namespace kob::program {

/// How many of an item's rows are shown.
std::int64_t shown_rows(const Item& item, std::int64_t limit);
/// The places, among the states of a series that are read, of those shown: all, or the first and the last.
std::vector<std::int64_t> shown_states(const Item& item, std::int64_t limit);

/// Prints the block with the first `limit` rows of its arrays.
void print_block(const Entry& entry, const Block& block, std::int64_t limit);

/// What the library promises of values that are stored by scale-offset: no value is off by more than this, and one unit
/// in the last place of the largest one that is packed with it.
struct PromisedError {
    std::int32_t decimals = 0;
    double error = 0;
    double next_to_fill = 0; ///< of values next to the fill value
};

/// Of a block whose values were read; nothing when they are stored as they are.
std::optional<PromisedError> promised_error(const Block& block);

} // namespace kob::program
