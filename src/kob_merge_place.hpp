// SPDX-License-Identifier: BSD-3-Clause
// Where in the target a block goes: to the path that its source has.
#pragma once

#include "kob_block_table.hpp"
#include "kob_id.hpp"
#include "kob_placement.hpp"

#include <hdf5.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kob::merge {

/// What a writer that builds the path by itself must be told, so that it builds the path of the source.
struct Place {
    std::string prefix; ///< group below the result set, where the source's handle lay above its result set
    std::int32_t state = -1;
    std::int32_t set = no_suffix;
};

/// Finds out which state and set a path was built with; a name may hold "_set", and a state group may be numbered by
/// its caller. A path that the block's names don't give is left to its writer.
template <class Block> Place place_of(const TableEntry& source, const Block& block)
{
    for (const std::int32_t state : {-1, source.state}) {
        for (const std::int32_t set : {no_suffix, source.set}) {
            const std::string own = block.path(state, set).text();
            if (source.path == own) {
                return {"", state, set};
            }
            if (source.path.ends_with("/" + own)) {
                return {source.path.substr(0, source.path.size() - own.size() - 1), state, set};
            }
        }
    }
    return {};
}

/// The path below the target that a writer makes of a place.
template <class Block> std::string path_at(const Place& place, const Block& block)
{
    const std::string own = block.path(place.state, place.set).text();
    return place.prefix.empty() ? own : place.prefix + "/" + own;
}

/// Writers of model blocks and element results leave their groups open for the caller, who is the merger here: closes,
/// at the end of its scope, the groups of the file that were opened in it.
class GroupsLeftOpen {
public:
    explicit GroupsLeftOpen(hid_t location);
    ~GroupsLeftOpen();
    GroupsLeftOpen(const GroupsLeftOpen&) = delete;
    GroupsLeftOpen& operator=(const GroupsLeftOpen&) = delete;

private:
    [[nodiscard]] std::vector<hid_t> open_groups() const;

    Id file_;
    std::vector<hid_t> before_;
};

} // namespace kob::merge
