// SPDX-License-Identifier: BSD-3-Clause
// Groups that a writer leaves open.
#include "kob_merge_place.hpp"

#include <algorithm>

namespace kob::merge {

GroupsLeftOpen::GroupsLeftOpen(hid_t location) : file_{H5Iget_file_id(location), H5Fclose}, before_{open_groups()} {}

GroupsLeftOpen::~GroupsLeftOpen()
{
    for (const hid_t group : open_groups()) {
        if (!std::binary_search(before_.begin(), before_.end(), group)) {
            H5Gclose(group);
        }
    }
}

std::vector<hid_t> GroupsLeftOpen::open_groups() const
{
    const ssize_t count = H5Fget_obj_count(file_.get(), H5F_OBJ_GROUP);
    std::vector<hid_t> groups(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    const ssize_t found = groups.empty() ? 0 : H5Fget_obj_ids(file_.get(), H5F_OBJ_GROUP, groups.size(), groups.data());
    groups.resize(static_cast<std::size_t>(std::max<ssize_t>(found, 0)));
    std::sort(groups.begin(), groups.end());
    return groups;
}

} // namespace kob::merge
