// SPDX-License-Identifier: BSD-3-Clause
// Finding and deleting groups that erased blocks leave empty.
#include "kob_erase_groups.hpp"

namespace kob::erase {

EmptiedGroups::EmptiedGroups(const BlockTable& table, const std::vector<bool>& going) : tree_{table.tree()}
{
    for (const TableGroup& group : tree_) {
        left_.push_back(group.links);
    }
    for (std::size_t i = 0; i < going.size(); ++i) {
        left_[table.entries()[i].parent] -= going[i] ? 1 : 0;
    }
    emptied_.resize(tree_.size());
    for (std::size_t group = tree_.size(); group-- > 1;) {
        const TableGroup& it = tree_[group];
        // What a group with a second name holds can still be reached. HDF5 takes call stack for each level.
        emptied_[group] = it.links > 0 && left_[group] == 0 && it.names == 1 && it.depth <= deepest;
        left_[it.parent] -= emptied_[group] ? 1 : 0;
    }
}

bool remove_empty_parents(hid_t file, std::string path)
{
    for (std::size_t slash = path.rfind('/'); slash != std::string::npos; slash = path.rfind('/')) {
        path.resize(slash);
        H5G_info_t info{};
        if (H5Gget_info_by_name(file, path.c_str(), &info, H5P_DEFAULT) < 0 || info.nlinks > 0) {
            return true;
        }
        if (H5Ldelete(file, path.c_str(), H5P_DEFAULT) < 0) {
            return false;
        }
    }
    return true;
}

} // namespace kob::erase
