// SPDX-License-Identifier: BSD-3-Clause
// Section bits: what a reader or a "2" writer is asked for.
#pragma once

#include <cstdint>

namespace kob::section {

constexpr std::int32_t attributes = 1;
constexpr std::int32_t state_index = 2;
constexpr std::int32_t identifiers = 4;
constexpr std::int32_t values = 8;
constexpr std::int32_t shared_identifiers = 16; // with `identifiers`: one copy in a shared group, linked by each block
constexpr std::int32_t all = attributes | state_index | identifiers | values;

constexpr bool has(std::int32_t sections, std::int32_t bit) { return (sections & bit) != 0; }

} // namespace kob::section
