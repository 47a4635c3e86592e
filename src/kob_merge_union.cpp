// SPDX-License-Identifier: BSD-3-Clause
// Uniting identifier lists: one stable sort of (identifier, row), done once for each set of lists.
#include "kob_merge_union.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <utility>

namespace kob::merge {
namespace {

constexpr std::size_t cached_bytes = std::size_t{32} * 1024 * 1024; // beyond, only the union last used is kept

/// Identifier, made unsigned in the same order, above the row.
std::uint64_t key_of(std::int32_t identifier, std::size_t row)
{
    const std::uint32_t ascending = static_cast<std::uint32_t>(identifier) ^ 0x80000000U;
    return (std::uint64_t{ascending} << 32U) | row;
}

std::int32_t identifier_of(std::uint64_t key)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(key >> 32U) ^ 0x80000000U);
}

std::size_t row_of(std::uint64_t key) { return static_cast<std::uint32_t>(key); }

/// Radix sort by the identifier. It is stable, so the rows of one identifier stay in the order of the domains.
void sort_by_identifier(std::vector<std::uint64_t>& keys)
{
    constexpr unsigned digit_bits = 11;
    constexpr std::size_t digits = std::size_t{1} << digit_bits;
    std::vector<std::uint64_t> sorted(keys.size());
    for (unsigned shift = 32; shift < 64; shift += digit_bits) {
        const auto digit_of = [shift](std::uint64_t key) { return (key >> shift) & (digits - 1); };
        std::array<std::size_t, digits> place{};
        for (const std::uint64_t key : keys) {
            ++place[digit_of(key)];
        }
        if (place[digit_of(keys.front())] == keys.size()) {
            continue; // one digit for all: nothing moves
        }
        std::size_t begin = 0;
        for (std::size_t& count : place) {
            begin += std::exchange(count, begin);
        }
        for (const std::uint64_t key : keys) {
            sorted[place[digit_of(key)]++] = key;
        }
        keys.swap(sorted);
    }
}

} // namespace

IdentifierUnion::IdentifierUnion(const IdentifierLists& lists) : values_{lists.values()}, ends_{lists.ends()}
{
    const std::vector<std::int32_t>& values = lists.values();
    if (values.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        throw std::length_error{"too many entities to merge"};
    }
    if (values.empty()) {
        return;
    }
    std::vector<std::uint64_t> keys(values.size());
    for (std::size_t row = 0; row < keys.size(); ++row) {
        keys[row] = key_of(values[row], row);
    }
    sort_by_identifier(keys);

    const auto domain_of = [&](std::size_t row) { return std::upper_bound(ends_.begin(), ends_.end(), row); };
    const auto is_same = [](std::uint64_t a, std::uint64_t b) { return (a >> 32U) == (b >> 32U); };
    std::size_t distinct = 1;
    for (std::size_t i = 1; i < keys.size(); ++i) {
        distinct += is_same(keys[i - 1], keys[i]) ? 0 : 1;
    }
    identifiers_.reserve(distinct);
    rows_.resize(values.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const bool is_known = i > 0 && is_same(keys[i - 1], keys[i]);
        if (!is_known) {
            identifiers_.push_back(identifier_of(keys[i]));
        }
        const auto row = static_cast<std::int32_t>(identifiers_.size() - 1);
        const bool repeats = is_known && domain_of(row_of(keys[i - 1])) == domain_of(row_of(keys[i]));
        rows_[row_of(keys[i])] = repeats ? ~row : row;
    }
}

const IdentifierUnion& UnionCache::of(const IdentifierLists& lists)
{
    const auto found =
        std::find_if(unions_.begin(), unions_.end(), [&](const IdentifierUnion& known) { return known.joins(lists); });
    if (found != unions_.end()) {
        unions_.splice(unions_.begin(), unions_, found);
        return unions_.front();
    }
    unions_.emplace_front(lists);
    std::size_t bytes = 0;
    for (auto known = unions_.begin(); known != unions_.end();) {
        bytes += known->bytes();
        known = known != unions_.begin() && bytes > cached_bytes ? unions_.erase(known) : std::next(known);
    }
    return unions_.front();
}

} // namespace kob::merge
