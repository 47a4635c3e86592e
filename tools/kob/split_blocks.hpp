// SPDX-License-Identifier: BSD-3-Clause
// The part of a block that one domain holds.
#pragma once

#include "block_reader.hpp"
#include "split_partition.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace kob::program {

/// Whether blocks of this kind can be cut or copied.
bool can_split(std::int32_t key);

/// A domain's rows of the block, or the whole block if its kind has no entities. Nothing where the domain holds none of
/// the block's entities.
std::optional<Block> part_of(const Block& block, const Partition& partition, std::size_t domain);

} // namespace kob::program
