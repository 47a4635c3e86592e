// SPDX-License-Identifier: BSD-3-Clause
// Multi-state entity results of several domains, united.
#pragma once

#include "kob_merge_files.hpp"
#include "kob_merge_target.hpp"
#include "kob_merge_union.hpp"

#include <cstdint>

namespace kob::merge {

constexpr std::int32_t most_bytes_of_states = 1 << 30; // of a merged series held in memory at a time

/// Unites the series of one path and writes them to the target, as many states at a time as the limit allows.
void merge_series(const DomainFiles& files, const Target& target, UnionCache& unions, const SharedBlock& shared,
                  std::int32_t verbosity, std::int32_t most_bytes = most_bytes_of_states);

} // namespace kob::merge
