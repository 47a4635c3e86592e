// SPDX-License-Identifier: BSD-3-Clause
// Writes the part of a block that one domain holds.
#pragma once

#include "block_reader.hpp"
#include "split_partition.hpp"

#include <cstddef>
#include <cstdint>

namespace kob::program {

/// Whether blocks of this kind can be cut or copied.
bool can_split(std::int32_t key);

/// Writes a domain's rows of the block, or the whole block if its kind has no entities. Writes nothing, and returns
/// false, where the domain holds none of the block's entities.
bool write_part(const Block& block, const Entry& entry, const Partition& partition, std::size_t domain,
                const std::int64_t* target, std::int32_t float_size);

/// The values of an item of the block; null if there are none.
const std::int32_t* int_values(const Block& block, std::string_view name);
const double* real_values(const Block& block, std::string_view name);

} // namespace kob::program
