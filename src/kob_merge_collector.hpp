// SPDX-License-Identifier: BSD-3-Clause
// Collectors of several domains, united.
#pragma once

#include "kob_merge_files.hpp"
#include "kob_merge_model.hpp"

namespace kob::merge {

/// The collectors of one path: ascending, with the member types in the order in which these appear, and the members
/// ascending, each once.
Collector unite_collectors(const DomainFiles& files, const SharedBlock& shared);

} // namespace kob::merge
