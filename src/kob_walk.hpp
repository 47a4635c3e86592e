// SPDX-License-Identifier: BSD-3-Clause
// The walk over a tree of groups that directory and search share.
#pragma once

#include "kob_id.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace kob {

/// What a walk finds: a "kobblock" or a "kobheader".
struct Candidate {
    hid_t parent;            ///< open group that holds the link
    const char* link;        ///< "kobblock" or "kobheader"
    const std::string& path; ///< path of the link below the start group
};

/// A walk goes on while its visitor returns 0; another value ends it and becomes its result.
using Visitor = std::function<std::int32_t(const Candidate&)>;

constexpr std::size_t deepest_level = 4096;                 ///< no real file nests groups this deep
constexpr std::uint64_t most_links_of_walk = 1'000'000'000; ///< nor has it so many links

/// Visits every block and header below a group, in increasing name order, depth first. Soft and external links to
/// groups are followed, those that lead nowhere skipped; a group that is open on the current path is not entered again.
/// 0 after a complete walk, negative when HDF5 failed or a limit was passed, else what the visitor returned.
std::int32_t walk(hid_t start, const Visitor& visit);

} // namespace kob
