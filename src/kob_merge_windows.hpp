// SPDX-License-Identifier: BSD-3-Clause
// Values of merged entity results, brought together and written a window of rows at a time.
#pragma once

#include "kob_merge_coordinates.hpp"
#include "kob_merge_gather.hpp"
#include "kob_merge_results.hpp"
#include "kob_storage_rows.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kob::merge {

/// Merged values up to this size are held at once, larger ones only as far as their order demands. A window, and what
/// is put into it, stay in the cache.
constexpr std::size_t small_window = std::size_t{1} << 20U; // bytes

/// Merges values window by window. Its memory serves one block after the other.
class Windows {
public:
    explicit Windows(std::size_t window_bytes = small_window) : window_bytes_{window_bytes} {}

    /// Opens the values of all domains. False when they are few, or cannot be read in parts, each at its own price.
    bool open(const DomainFiles& files, const SharedBlock& shared, const Gathered<EntityResults>& gathered,
              const EntityResults& merged);

    /// Memory that is free until write().
    std::vector<std::byte>& scratch() { return window_; }

    /// Writes the opened values into a block that is there without them. Returns the number of nodes that the domains
    /// put to different places, where the values are coordinates.
    std::int32_t write(const SharedBlock& shared, const Gathered<EntityResults>& gathered, const EntityResults& merged,
                       const Destination& to);

private:
    /// Some rows: of the merged block, or of a domain's.
    struct Rows {
        std::size_t begin;
        std::size_t end;
        [[nodiscard]] std::size_t size() const { return end - begin; }
    };

    [[nodiscard]] std::size_t rows_of_window(const IdentifierUnion& rows, std::size_t row_bytes) const;
    void fill(const RowReader& values, const std::string& path, RowMap rows, bool ascends, std::size_t row_bytes,
              Rows window, SharedNodes* shared_nodes);

    std::size_t window_bytes_;
    std::vector<RowReader> domains_;
    std::vector<std::byte> window_; ///< merged rows, and one more for what does not belong to them
    std::vector<std::byte> piece_;  ///< rows of a domain
};

} // namespace kob::merge
