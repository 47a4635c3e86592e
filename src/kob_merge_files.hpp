// SPDX-License-Identifier: BSD-3-Clause
// The domain files that are merged: what they hold, and which of it belongs together.
#pragma once

#include "kob_block_table.hpp"
#include "kob_family.hpp"
#include "kob_id.hpp"
#include "kob_kinds.hpp"
#include "kob_merge_block.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kob::merge {

/// Thrown where the merge ends; its lines are printed by then.
struct Stop {
    std::int32_t status;
};

[[noreturn]] void fail_reading(const BlockKind& kind, std::int32_t pass, std::int32_t status, const std::string& path);

/// A block of one domain file.
struct Source {
    std::size_t domain; ///< from 0
    const TableEntry* entry;

    [[nodiscard]] std::int32_t file() const { return static_cast<std::int32_t>(domain) + 1; } ///< as messages count
};

/// The blocks of one path, in the order of the domains.
using SharedBlock = std::vector<Source>;

/// Sorts blocks by path, in the order in which the paths appear.
std::vector<SharedBlock> by_path(const std::vector<Source>& blocks);

class DomainFiles {
public:
    DomainFiles(const Family& family, const std::int64_t* groups, std::int32_t count, std::int32_t verbosity);

    /// Lists the blocks of all files.
    void list();
    /// Compares the versions of all files with the library's; a difference is no reason to stop.
    void check_versions() const;

    [[nodiscard]] std::size_t count() const { return domains_.size(); }
    [[nodiscard]] const Family& family() const { return family_; }
    [[nodiscard]] StoredBlock open(const Source& source) const;
    /// The blocks of a kind in one file.
    [[nodiscard]] std::vector<Source> blocks_of(const BlockKind& kind, std::size_t domain) const;
    /// The blocks of a kind in all files, with a word on what is there.
    [[nodiscard]] std::vector<Source> look_up(const BlockKind& kind) const;
    /// The same for a kind of which a file should hold one block.
    [[nodiscard]] std::vector<Source> look_up_single(const BlockKind& kind) const;
    /// Names the kinds that stay behind, so that nothing vanishes unsaid.
    void say_left_out() const;

private:
    struct Domain {
        hid_t group;
        BlockTable table;
    };

    [[nodiscard]] bool is_compatible(std::size_t domain) const;
    [[nodiscard]] Version version_in(const Source& source) const;

    const Family& family_;
    std::int32_t verbosity_;
    std::vector<Domain> domains_;
};

} // namespace kob::merge
