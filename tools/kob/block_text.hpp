// SPDX-License-Identifier: BSD-3-Clause
// A block as people read it: attributes, then tables, matrices, groups and lists of the first values.
#pragma once

#include "block_reader.hpp"
#include "file.hpp"

#include <cstdint>
#include <vector>

namespace kob::program {

/// How many of an item's rows are shown.
std::int64_t shown_rows(const Item& item, std::int64_t limit);
/// The places, among the states of a series that are read, of those shown: all, or the first and the last.
std::vector<std::int64_t> shown_states(const Item& item, std::int64_t limit);

/// Prints the block with the first `limit` rows of its arrays.
void print_block(const Entry& entry, const Block& block, std::int64_t limit);

} // namespace kob::program
