// SPDX-License-Identifier: BSD-3-Clause
// Values brought together window by window.
#include "kob_merge_windows.hpp"

#include "kob_merge_target.hpp"
#include "kob_sections.hpp"

#include <algorithm>
#include <array>

namespace kob::merge {
namespace {

constexpr std::size_t bytes_of_piece = std::size_t{256} * 1024; // of a domain's rows: they stay in the cache

/// Copies rows of a known size to their places in a window. Rows that belong elsewhere go behind its last row, where
/// nobody looks: cheaper than a decision that cannot be foreseen.
template <std::size_t bytes>
void place_rows(const std::byte* from, RowMap rows, std::size_t begin, std::size_t size, std::byte* to)
{
    const auto place_of = [&](std::size_t i) {
        const std::size_t row = static_cast<std::size_t>(static_cast<std::uint32_t>(rows[i])) - begin;
        return to + std::min(row, size) * bytes;
    };
    constexpr std::size_t ahead = 32; // rows whose places are fetched meanwhile: they lie anywhere
    const std::size_t foreseen = rows.size() > ahead ? rows.size() - ahead : 0;
    for (std::size_t i = 0; i < foreseen; ++i) {
        __builtin_prefetch(place_of(i + ahead), 1);
        std::memcpy(place_of(i), from + i * bytes, bytes);
    }
    for (std::size_t i = foreseen; i < rows.size(); ++i) {
        std::memcpy(place_of(i), from + i * bytes, bytes);
    }
}

void place_rows(const std::byte* from, RowMap rows, std::size_t begin, std::size_t size, std::byte* to,
                std::size_t bytes)
{
    switch (bytes) {
    case 4:
        return place_rows<4>(from, rows, begin, size, to);
    case 8:
        return place_rows<8>(from, rows, begin, size, to);
    case 12:
        return place_rows<12>(from, rows, begin, size, to);
    case 24:
        return place_rows<24>(from, rows, begin, size, to);
    case 48:
        return place_rows<48>(from, rows, begin, size, to);
    default:
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const std::size_t row = static_cast<std::size_t>(static_cast<std::uint32_t>(rows[i])) - begin;
            std::copy_n(from + i * bytes, bytes, to + std::min(row, size) * bytes);
        }
    }
}

/// Copies ascending rows: neighbours stay neighbours for long.
void place_runs(const std::byte* from, RowMap rows, std::size_t begin, std::byte* to, std::size_t bytes)
{
    for (std::size_t row = 0; row < rows.size();) {
        std::size_t end = row + 1;
        while (end < rows.size() && rows[end] == rows[end - 1] + 1) {
            ++end;
        }
        std::copy_n(from + row * bytes, (end - row) * bytes,
                    to + (static_cast<std::size_t>(rows[row]) - begin) * bytes);
        row = end;
    }
}

bool has_any(RowMap rows, std::size_t begin, std::size_t size)
{
    return std::any_of(rows.begin(), rows.end(), [&](std::int32_t row) {
        return static_cast<std::size_t>(static_cast<std::uint32_t>(row)) - begin < size;
    });
}

} // namespace

bool Windows::open(const DomainFiles& files, const SharedBlock& shared, const Gathered<EntityResults>& gathered,
                   const EntityResults& merged)
{
    domains_.clear();
    if (gathered.rows->size() * merged.row_bytes() <= window_bytes_) {
        return false;
    }
    for (std::size_t i = 0; i < shared.size(); ++i) {
        StoredBlock block = files.open(shared[i]);
        domains_.emplace_back(block.place(Where::data), "res", type_code::real,
                              static_cast<std::size_t>(merged.memory_size()), merged.is_complex() ? 3 : 2,
                              static_cast<hsize_t>(merged.values_of_row()));
        const bool is_needed = gathered.domains[i].nent > 0;
        if (is_needed && !(domains_.back().is_readable() && domains_.back().is_contiguous())) {
            domains_.clear();
            return false;
        }
    }
    const std::size_t row_bytes = merged.row_bytes();
    window_.resize((rows_of_window(*gathered.rows, row_bytes) + 1) * row_bytes);
    piece_.resize(std::max(bytes_of_piece / row_bytes, std::size_t{1}) * row_bytes);
    return true;
}

std::int32_t Windows::write(const SharedBlock& shared, const Gathered<EntityResults>& gathered,
                            const EntityResults& merged, const Destination& to)
{
    const IdentifierUnion& united = *gathered.rows;
    const std::size_t row_bytes = merged.row_bytes();
    const std::size_t rows_at_a_time = rows_of_window(united, row_bytes);
    SharedNodes nodes;
    SharedNodes* const shared_nodes = is_coordinates(merged) ? &nodes : nullptr;
    std::int32_t different = 0;
    for (std::size_t begin = 0; begin < united.size(); begin += rows_at_a_time) {
        const Rows window{begin, std::min(begin + rows_at_a_time, united.size())};
        if (shared_nodes != nullptr) {
            nodes.start(window.size(), row_bytes);
        }
        for (std::size_t i = shared.size(); i-- > 0;) {
            if (gathered.domains[i].nent > 0) {
                fill(domains_[i], shared[i].entry->path, united.rows_of(i), united.ascends(i), row_bytes, window,
                     shared_nodes);
            }
        }
        different += nodes.different();
        const std::int32_t status = merged.write_values(to, static_cast<std::int64_t>(window.begin),
                                                        static_cast<std::int64_t>(window.size()), window_.data());
        if (status != 0) {
            fail_writing(kind::entity_results, status, shared.front().entry->path);
        }
    }
    domains_.clear();
    return different;
}

/// Where all domains ascend, each window takes a few rows of each, and a small one will do. Otherwise every window
/// has to go through all rows of all domains: there are two.
std::size_t Windows::rows_of_window(const IdentifierUnion& rows, std::size_t row_bytes) const
{
    const std::size_t small = std::max(window_bytes_ / row_bytes, std::size_t{1});
    return rows.ascends() ? small : std::max(small, (rows.size() + 1) / 2);
}

void Windows::fill(const RowReader& values, const std::string& path, RowMap rows, bool ascends, std::size_t row_bytes,
                   Rows window, SharedNodes* shared_nodes)
{
    Rows wanted{0, rows.size()};
    if (ascends) {
        const auto place_of = [&](std::size_t row) {
            return static_cast<std::size_t>(std::lower_bound(rows.begin(), rows.end(), static_cast<std::int64_t>(row)) -
                                            rows.begin());
        };
        wanted = {place_of(window.begin), place_of(window.end)};
    }
    const std::size_t most = piece_.size() / row_bytes;
    for (std::size_t first = wanted.begin; first < wanted.end; first += most) {
        const RowMap some = rows.subspan(first, std::min(most, wanted.end - first));
        if (!ascends && !has_any(some, window.begin, window.size())) {
            continue;
        }
        if (const herr_t status = values.read(first, some.size(), piece_.data()); status < 0) {
            fail_reading(kind::entity_results, section::values, status, path);
        }
        if (shared_nodes != nullptr) {
            shared_nodes->compare(piece_.data(), some, window_.data(), window.begin);
        }
        if (ascends) {
            place_runs(piece_.data(), some, window.begin, window_.data(), row_bytes);
        } else {
            place_rows(piece_.data(), some, window.begin, window.size(), window_.data(), row_bytes);
        }
    }
}

} // namespace kob::merge
