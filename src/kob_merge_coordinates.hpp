// SPDX-License-Identifier: BSD-3-Clause
// Nodes that several domains share, but at different places.
#pragma once

#include "kob_merge_union.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace kob::merge {

/// Compares the coordinates of nodes that come again with those that are there.
class SharedNodes {
public:
    /// Starts anew with so many merged rows, of so many bytes each, that no domain has given yet.
    void start(std::size_t rows, std::size_t row_bytes)
    {
        seen_.assign(rows, unseen);
        row_bytes_ = row_bytes;
    }

    void start_once(std::size_t rows, std::size_t row_bytes)
    {
        if (seen_.empty()) {
            start(rows, row_bytes);
        }
    }

    /// A domain's rows before they are put to their places. `merged` holds the merged rows from `first` on.
    void compare(const void* values, RowMap rows, const void* merged, std::size_t first)
    {
        const auto* from = static_cast<const std::byte*>(values);
        const auto* to = static_cast<const std::byte*>(merged);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const std::size_t row = static_cast<std::size_t>(rows[i]) - first; // what lies before becomes very large
            if (rows[i] < 0 || row >= seen_.size()) {
                continue;
            }
            if (seen_[row] == unseen) {
                seen_[row] = seen_once;
            } else if (std::memcmp(from + i * row_bytes_, to + row * row_bytes_, row_bytes_) != 0) {
                seen_[row] = seen_different;
            }
        }
    }

    [[nodiscard]] std::int32_t different() const
    {
        return static_cast<std::int32_t>(std::count(seen_.begin(), seen_.end(), seen_different));
    }

private:
    static constexpr char unseen = 0;
    static constexpr char seen_once = 1;
    static constexpr char seen_different = 2;

    std::vector<char> seen_;
    std::size_t row_bytes_ = 0;
};

} // namespace kob::merge
