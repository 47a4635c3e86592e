// SPDX-License-Identifier: BSD-3-Clause
// Judging what lies behind the last state that a call keeps.
#pragma once

#include "kob_block_table.hpp"
#include "kob_entry.hpp"
#include "kob_erase_series.hpp"
#include "kob_location.hpp"
#include "kob_plain_block.hpp"

#include <cstdint>
#include <optional>
#include <vector>

namespace kob::erase {

/// What a call keeps: everything up to an index tuple, whose last component is the most significant.
class LastIndex {
public:
    LastIndex(const std::int32_t* index, std::int32_t count) : index_{index}, count_{count} {}

    [[nodiscard]] std::int32_t count() const { return count_; }
    [[nodiscard]] std::int32_t operator[](std::int32_t i) const { return value(index_ + i); }

    /// Does a state lie behind? Tuples of another length are not compared.
    [[nodiscard]] bool is_before(const std::int32_t* tuple, std::int32_t components) const
    {
        if (components != count_) {
            return false;
        }
        for (std::int32_t i = components; i-- > 0;) {
            if (tuple[i] != (*this)[i]) {
                return tuple[i] > (*this)[i];
            }
        }
        return false;
    }

private:
    const std::int32_t* index_;
    std::int32_t count_;
};

/// Judges the blocks of a file.
class Judge {
public:
    Judge(Location file, LastIndex last) : file_{file}, last_{last} {}

    /// Which blocks of the table are single states that lie behind, asked while the file is as it was flushed; nothing
    /// when there is no telling.
    std::vector<bool> look_ahead(const BlockTable& table);
    bool is_single_state_behind(const TableEntry& entry);
    /// The number of leading states to keep: up to the last one that does not lie behind.
    [[nodiscard]] std::int32_t states_to_keep(const Series& series) const;

private:
    /// The same by the short way; nothing when there is no telling.
    std::optional<bool> is_single_state_behind(plain::Block& block);

    Location file_;
    LastIndex last_;
    std::vector<std::int32_t> tuple_;
};

} // namespace kob::erase
