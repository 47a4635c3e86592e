// SPDX-License-Identifier: BSD-3-Clause
// A result file of the older layout with a block of every kind.
#pragma once

#include <cstdint>

namespace kob_test {

/// Writes the file header of the older layout, and the samples of older_blocks.hpp.
void write_older_kinds(std::int64_t group);

} // namespace kob_test
