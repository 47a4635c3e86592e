// SPDX-License-Identifier: BSD-3-Clause
// Multi-state entity results of several domains, united.
#pragma once

#include "kob_merge_files.hpp"
#include "kob_merge_target.hpp"
#include "kob_merge_union.hpp"

#include <cstdint>

namespace kob::merge {

/// Unites the series of one path and writes them to the target, some states at a time.
void merge_series(const DomainFiles& files, const Target& target, UnionCache& unions, const SharedBlock& shared,
                  std::int32_t verbosity);

} // namespace kob::merge
