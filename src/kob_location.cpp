// SPDX-License-Identifier: BSD-3-Clause
// The subgroups of a block in the older layout, opened when they are needed.
#include "kob_location.hpp"

#include "kob_storage.hpp"

namespace kob {
namespace {

/// Subgroups of a block in the older layout.
const char* place_name(Where where)
{
    switch (where) {
    case Where::header:
        return "header";
    case Where::data:
        return "data";
    default:
        return "index";
    }
}

} // namespace

hid_t Places::open(Where where)
{
    if (block_.is_current()) {
        return block_.group;
    }
    Id& place = opened_[static_cast<std::size_t>(where)];
    if (!place && has_link(block_.group, place_name(where))) {
        place = Id{H5Gopen2(block_.group, place_name(where), H5P_DEFAULT), H5Gclose};
    }
    return place.get();
}

hid_t Places::open_or_create(Where where)
{
    hid_t place = open(where);
    if (place < 0 && block_.group >= 0) {
        Id& made = opened_[static_cast<std::size_t>(where)];
        made = Id{H5Gcreate2(block_.group, place_name(where), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), H5Gclose};
        place = made.get();
    }
    return place;
}

} // namespace kob
