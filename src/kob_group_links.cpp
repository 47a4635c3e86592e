// SPDX-License-Identifier: BSD-3-Clause
#include "kob_group_links.hpp"

#include <algorithm>
#include <cstring>

namespace kob {
namespace {

constexpr std::size_t most_links = 32; // a block has a dozen; in a larger group a search is cheaper than a look at all

/// Closes a dataset, or whatever else a link leads to. H5Oclose alone will not do: H5Dclose gives the identifier back
/// also where it fails on a full disk, H5Oclose would keep it, of a dataset that is gone.
herr_t close_object(hid_t id) noexcept
{
    const herr_t result = H5Dclose(id);
    return result < 0 && H5Iis_valid(id) > 0 ? H5Oclose(id) : result;
}

} // namespace

GroupLinks::GroupLinks(hid_t group, std::initializer_list<const char*> names) noexcept : group_{group}
{
    look_for(names);
    hsize_t position = 0;
    is_complete_ = H5Literate2(group, H5_INDEX_NAME, H5_ITER_NATIVE, &position, note, this) >= 0;
}

GroupLinks::GroupLinks(hid_t parent, const char* path, std::initializer_list<const char*> names) noexcept
{
    look_for(names);
    hsize_t position = 0;
    is_complete_ =
        H5Literate_by_name2(parent, path, H5_INDEX_NAME, H5_ITER_NATIVE, &position, note, this, H5P_DEFAULT) >= 0;
}

void GroupLinks::look_for(std::initializer_list<const char*> names) noexcept
{
    for (const char* name : names) {
        if (names_ < links_.size()) {
            links_[names_++].name = name;
        }
    }
}

herr_t GroupLinks::note(hid_t group, const char* name, const H5L_info2_t* info, void* data) noexcept
{
    auto& self = *static_cast<GroupLinks*>(data);
    if (self.group_ < 0) {
        // HDF5 opened the group for the time of the look: one more reference keeps it open.
        if (H5Iinc_ref(group) < 0) {
            return H5_ITER_ERROR;
        }
        self.opened_ = Id{group, H5Gclose};
        self.group_ = group;
    }
    if (++self.seen_ > most_links) {
        return H5_ITER_ERROR;
    }
    for (std::size_t i = 0; i < self.names_; ++i) {
        Link& link = self.links_[i];
        if (std::strcmp(link.name, name) == 0) {
            link.is_there = true;
            link.is_hard = info->type == H5L_TYPE_HARD;
            link.target = info->u.token;
            return ++self.found_ == self.names_ ? H5_ITER_STOP : H5_ITER_CONT;
        }
    }
    return H5_ITER_CONT;
}

const GroupLinks::Link* GroupLinks::find(const char* name) const noexcept
{
    const auto* const end = links_.begin() + names_;
    const auto* const link = std::find_if(links_.begin(), end, [&](const Link& candidate) {
        return candidate.is_there && std::strcmp(candidate.name, name) == 0;
    });
    return link != end ? link : nullptr;
}

Id GroupLinks::open(const char* name) const noexcept
{
    const Link* const link = find(name);
    if (link == nullptr) {
        return {};
    }
    if (!link->is_hard) {
        return {H5Dopen2(group_, name, H5P_DEFAULT), H5Dclose};
    }
    return {H5Oopen_by_token(group_, link->target), close_object};
}

} // namespace kob
