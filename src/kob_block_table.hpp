// SPDX-License-Identifier: BSD-3-Clause
// The blocks of a file as the tools see them: listed, numbered, grouped by key.
#pragma once

#include "kob_family.hpp"
#include "kob_plain_file.hpp"

#include <hdf5.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kob {

/// One block of a file.
struct TableEntry {
    std::string path;
    std::int32_t key = 0;
    std::int32_t set = 0;             ///< number behind the last "_set" of the path, 0 without one
    std::int32_t state = 0;           ///< number behind the last "/state" of the path, 0 without one
    bool is_linked = false;           ///< lies in another file, behind an external link
    std::uint64_t object = no_object; ///< where it lies, if the short way told
    std::size_t parent = 0;           ///< the group that holds it, if the short way told

    static constexpr std::uint64_t no_object = ~std::uint64_t{0};
};

/// A group on the way to a block, as far as the short way tells.
struct TableGroup {
    std::size_t parent = 0;
    std::size_t links = 0;
    std::uint32_t names = 0;     ///< hard links that lead to it
    std::size_t path_length = 0; ///< its path is that much of the path of what it holds
    std::size_t depth = 0;
};

/// All blocks of one key, as positions in the table.
struct KeyGroup {
    std::int32_t key = 0;
    std::vector<std::int32_t> blocks;
};

/// All blocks below a group. A block that two names reach is listed once, under the first.
class BlockTable {
public:
    /// Lists the blocks. False when the listing failed or found none.
    bool list(hid_t group, const Family& family);
    /// The same for a file that is being written, and is flushed for that.
    bool list_flushed(hid_t group, const Family& family);

    /// What the listing gave: 0, or why it failed.
    [[nodiscard]] std::int32_t status() const { return status_; }

    /// Reads the set numbers, and on request the state numbers, out of the paths; warns of those it cannot read.
    void read_numbers(bool with_states);

    [[nodiscard]] const std::vector<TableEntry>& entries() const { return entries_; }
    [[nodiscard]] std::int32_t found() const { return found_; } ///< blocks listed, second names included

    /// The groups, each behind the one that holds it; the first is the start. Empty if the short way didn't tell.
    [[nodiscard]] const std::vector<TableGroup>& tree() const { return tree_; }

    /// Distinct keys in ascending order with their blocks.
    [[nodiscard]] const std::vector<KeyGroup>& groups() const { return groups_; }

    /// The blocks of a key; empty when there are none.
    [[nodiscard]] const std::vector<std::int32_t>& of_key(std::int32_t key) const;

    /// The table by key, on standard output.
    void say_by_key() const;

private:
    bool list_plain(hid_t group, const Family& family, plain::File::State state);
    bool list_by_entry_point(hid_t group, const Family& family);
    void group_by_key();

    std::vector<TableEntry> entries_;
    std::vector<TableGroup> tree_;
    std::vector<KeyGroup> groups_;
    std::int32_t found_ = 0;
    std::int32_t status_ = 0;
};

/// Three numbers of a version text; -1 for those that are not there. True when there are three.
bool read_version(const char* text, std::int32_t& major, std::int32_t& minor, std::int32_t& release);

} // namespace kob
