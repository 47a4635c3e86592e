// SPDX-License-Identifier: BSD-3-Clause
// The walk over the blocks of a plain file.
#pragma once

#include "kob_plain_object.hpp"

#include <functional>
#include <string>

namespace kob::plain {

/// What the walk finds.
struct Found {
    enum class Kind { block, header, group };

    Kind kind;
    const std::string& path; ///< of the link below the start group
    Address object;
    std::size_t parent;      ///< the group that holds the link: groups count from 1 as they are found, the start is 0
    std::size_t links = 0;   ///< of a group
    std::uint32_t names = 0; ///< of a group
};

/// Visits every block, header and group below a group, in the order of kob::walk, a group before what it holds. False
/// after a surprise, the visitor's or the walk's own: then HDF5 is to be asked, and nothing that was visited counts.
/// Files mounted on groups are not seen.
bool walk(hid_t start, const std::function<void(File&, const Found&)>& visit,
          File::State state = File::State::read_only);

/// The key of a block or header; that it has none is a surprise.
std::int32_t key_of(File& file, const Found& found);

} // namespace kob::plain
