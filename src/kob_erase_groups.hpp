// SPDX-License-Identifier: BSD-3-Clause
// Groups that erased blocks leave empty.
#pragma once

#include "kob_block_table.hpp"

#include <hdf5.h>

#include <cstddef>
#include <string>
#include <vector>

namespace kob::erase {

/// Groups that lose all they hold when some blocks go: each is deleted in one go, with the blocks in it.
class EmptiedGroups {
public:
    EmptiedGroups() = default;
    /// `going` are the blocks of the table that go.
    EmptiedGroups(const BlockTable& table, const std::vector<bool>& going);

    /// The highest one that holds a block, or the start if none does.
    [[nodiscard]] std::size_t around(const TableEntry& entry) const
    {
        std::size_t highest = 0;
        for (std::size_t group = entry.parent; group != 0 && emptied_[group]; group = tree_[group].parent) {
            highest = group;
        }
        return highest;
    }
    [[nodiscard]] const TableGroup& operator[](std::size_t group) const { return tree_[group]; }
    /// May the group around a highest one become empty all the same? To ask HDF5 costs a look at all of its links.
    [[nodiscard]] bool goes_on_behind(std::size_t group) const { return left_[tree_[group].parent] == 0; }

private:
    static constexpr std::size_t deepest = 64;

    std::vector<TableGroup> tree_;
    std::vector<std::size_t> left_; ///< links that stay
    std::vector<bool> emptied_;
};

/// Deletes the groups above a path as far as they are empty. False when one cannot be deleted; that it stays does no
/// harm.
bool remove_empty_parents(hid_t file, std::string path);

} // namespace kob::erase
