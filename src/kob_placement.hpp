// SPDX-License-Identifier: BSD-3-Clause
// Where in a file a block lives. Path texts are known here alone.
#pragma once

#include "kob_group.hpp"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace kob {

constexpr std::int32_t no_suffix = -1; // for the number and the set of a path
constexpr std::int32_t constant = 0;   // for the number of states of a path
constexpr std::int32_t multi_state = -1;

/// The states that a block is valid for, as a path tells them.
struct Validity {
    std::int32_t nstate = constant;       ///< 0 constant, -1 many states, else the number of state groups
    const std::int32_t* states = nullptr; ///< [nstate] state numbers, used when `state` is negative
    std::int32_t state = -1;              ///< one state group for all levels when not negative
};

/// The parts of a block's path.
struct BlockPath {
    Validity validity;
    std::vector<std::string_view> names; ///< trimmed; empty ones are left out
    std::int32_t number = no_suffix;
    std::int32_t set = no_suffix;

    /// Names of callers: up to 256 bytes each.
    BlockPath(Validity valid, std::initializer_list<const char*> components, std::int32_t number_suffix = no_suffix,
              std::int32_t set_suffix = no_suffix);

    void add(const char* component);

    /// The path below the result set's group, "kobblock" included.
    [[nodiscard]] std::string text() const;
};

/// Opens the block's group below `parent`, creating it with ioflag 0.
OpenedGroup open_block_group(hid_t parent, const BlockPath& path, std::int32_t ioflag);

/// The same for a path that another file holds.
OpenedGroup open_block_group(hid_t parent, const std::string& path, std::int32_t ioflag);

} // namespace kob
