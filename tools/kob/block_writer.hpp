// SPDX-License-Identifier: BSD-3-Clause
// Writes a block that was read, through the public entry points.
#pragma once

#include "block_reader.hpp"

#include <array>
#include <cstdint>

namespace kob::program {

/// How a block is stored.
struct Storing {
    std::int32_t float_size;
    std::int32_t filter_flags;
    std::array<std::int32_t, 2> filter_params;
};

/// Writes the block below `target` in a layout that has this kind in the same make. Results on entities and properties
/// go to the block's own path, others to the path that their names and state make.
void write_block(const Block& block, const Entry& entry, Layout layout, const std::int64_t* target, const Storing& how);

} // namespace kob::program
