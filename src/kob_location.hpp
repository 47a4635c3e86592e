// SPDX-License-Identifier: BSD-3-Clause
// Where the items of a block lie in its group, which differs between the generations of the layout.
#pragma once

#include "kob_entry.hpp"
#include "kob_id.hpp"
#include "kob_module.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kob {

/// A group, and the generation of the layout that it is in or shall be written in.
struct Location {
    hid_t group;
    Generation generation = Generation::current;

    Location(hid_t handle, Generation layout = Generation::current) // NOLINT(google-explicit-constructor)
        : group{handle}, generation{layout}
    {
    }
    [[nodiscard]] bool is_current() const { return generation == Generation::current; }
};

/// The location behind a handle argument of the older family.
inline Location older(const std::int64_t* handle) { return {value(handle), Generation::older}; }

/// The three places of a block: one group in the current layout, a subgroup each in the older one.
enum class Where : std::size_t { header, data, index };

/// A block's places, opened when they are first needed.
class Places {
public:
    explicit Places(Location block) : block_{block} {}

    [[nodiscard]] Location block() const { return block_; }
    /// The group of a place, negative when it is not there.
    hid_t open(Where where);
    /// The group of a place, made when it is not there.
    hid_t open_or_create(Where where);

private:
    Location block_;
    std::array<Id, 3> opened_;
};

} // namespace kob
