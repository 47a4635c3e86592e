// SPDX-License-Identifier: BSD-3-Clause
// Opening and creating groups by path.
#pragma once

#include "kob_id.hpp"

#include <cstddef>
#include <cstdint>
#include <string>

namespace kob {

/// What to do with a path.
namespace io_flag {
constexpr std::int32_t create = 0;      // create the levels that are missing
constexpr std::int32_t open = 1;        // the whole path must exist
constexpr std::int32_t open_levels = 2; // every level must exist
} // namespace io_flag

/// An opened group and the status of opening it: the number of groups created, or a negative code.
struct OpenedGroup {
    Id group;
    std::int32_t status = 0;
};

/// Called for every level that is about to be created: its name and the creation properties to set.
using LevelProperties = Id (*)(const std::string& level);

/// How many levels at the end of a path are likely not there yet: a new block mostly joins others.
constexpr std::size_t usually_missing = 2;

/// `expected_missing` decides how much of the path one call opens before its levels are looked for, nothing else.
OpenedGroup open_group(hid_t parent, const std::string& path, std::int32_t ioflag, LevelProperties properties = nullptr,
                       std::size_t expected_missing = usually_missing);

} // namespace kob
