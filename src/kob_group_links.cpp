// SPDX-License-Identifier: BSD-3-Clause
#include "kob_group_links.hpp"

#include <algorithm>
#include <cstring>

namespace kob {
namespace {

constexpr std::size_t most_links = 32; // a block has a dozen; in a larger group a search is cheaper than a look at all

} // namespace

GroupLinks::GroupLinks(hid_t group, std::initializer_list<const char*> names) noexcept : group_{group}
{
    for (const char* name : names) {
        if (names_ < links_.size()) {
            links_[names_++].name = name;
        }
    }
    hsize_t position = 0;
    is_complete_ = H5Literate2(group, H5_INDEX_NAME, H5_ITER_NATIVE, &position, note, this) >= 0;
}

herr_t GroupLinks::note(hid_t, const char* name, const H5L_info2_t* info, void* data) noexcept
{
    auto& self = *static_cast<GroupLinks*>(data);
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
    Id object{H5Oopen_by_token(group_, link->target), H5Oclose};
    if (H5Iget_type(object.get()) != H5I_DATASET) {
        return {};
    }
    // A close that fails on a full disk gives the identifier back all the same; H5Oclose would keep it, of a dataset
    // that is gone.
    return {object.release(), H5Dclose};
}

} // namespace kob
