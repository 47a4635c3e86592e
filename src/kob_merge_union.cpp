// SPDX-License-Identifier: BSD-3-Clause
// Uniting identifier lists: one stable sort of (identifier, row), done once for each set of lists.
#include "kob_merge_union.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <queue>
#include <stdexcept>
#include <utility>

namespace kob::merge {
namespace {

constexpr std::size_t cached_bytes = std::size_t{32} * 1024 * 1024; // beyond, only the union last used is kept
constexpr std::size_t identifiers_of_piece = std::size_t{32} * 1024;
constexpr std::uint32_t more_follow = 0x80;

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

/// Calls visit(identifiers, the place of the first one in the list) for the pieces of a list.
template <class Visit> void for_each_piece(std::size_t length, Visit&& visit)
{
    std::vector<std::int32_t> piece(std::min(length, identifiers_of_piece));
    for (std::size_t first = 0; first < length; first += piece.size()) {
        visit(std::span{piece}.first(std::min(piece.size(), length - first)), first);
    }
}

/// The identifiers of all lists, one list behind the other.
std::vector<std::int32_t> values_of(const IdentifierLists& lists, std::size_t count)
{
    std::vector<std::int32_t> values(count);
    std::size_t first = 0;
    for (std::size_t domain = 0; domain < lists.lengths().size(); ++domain) {
        const std::size_t length = lists.lengths()[domain];
        lists.open(domain)->read(std::span{values}.subspan(first, length));
        first += length;
    }
    return values;
}

std::vector<std::uint64_t> keys_of(const std::vector<std::int32_t>& values)
{
    std::vector<std::uint64_t> keys(values.size());
    for (std::size_t row = 0; row < values.size(); ++row) {
        keys[row] = key_of(values[row], row);
    }
    return keys;
}

bool are_equal(IdentifierList& a, IdentifierList& b, std::size_t length)
{
    std::vector<std::int32_t> other(std::min(length, identifiers_of_piece));
    bool equal = true;
    for_each_piece(length, [&](std::span<std::int32_t> piece, std::size_t) {
        if (equal) {
            const std::span<std::int32_t> same_piece{other.data(), piece.size()};
            a.read(piece);
            b.read(same_piece);
            equal = std::equal(piece.begin(), piece.end(), same_piece.begin());
        }
    });
    return equal;
}

} // namespace

void PackedIdentifiers::append(std::int32_t identifier)
{
    std::uint32_t gap =
        static_cast<std::uint32_t>(identifier) - std::exchange(last_, static_cast<std::uint32_t>(identifier));
    for (; gap >= more_follow; gap >>= 7U) {
        gaps_.push_back(static_cast<std::uint8_t>(gap | more_follow));
    }
    gaps_.push_back(static_cast<std::uint8_t>(gap));
    ++size_;
}

void PackedIdentifiers::unpack(std::int32_t* to) const
{
    std::uint32_t identifier = origin;
    const std::uint8_t* from = gaps_.data();
    for (std::size_t i = 0; i < size_; ++i) {
        std::uint32_t gap = *from++;
        for (unsigned shift = 7; (gap >> (shift - 7) & more_follow) != 0; shift += 7) {
            gap ^= more_follow << (shift - 7);
            gap |= std::uint32_t{*from++} << shift;
        }
        identifier += gap;
        to[i] = static_cast<std::int32_t>(identifier);
    }
}

IdentifierUnion::IdentifierUnion(std::shared_ptr<const IdentifierLists> lists) : lists_{std::move(lists)}
{
    std::size_t count = 0;
    for (const std::size_t length : lists_->lengths()) {
        ends_.push_back(count += length);
    }
    if (count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        throw std::length_error{"too many entities to merge"};
    }
    std::vector<std::int32_t> values = values_of(*lists_, count);
    std::size_t begin = 0;
    for (const std::size_t end : ends_) {
        const auto at = [&](std::size_t place) { return values.begin() + static_cast<std::ptrdiff_t>(place); };
        ascends_.push_back(std::adjacent_find(at(begin), at(end), std::greater_equal<>{}) == at(end));
        begin = end;
    }
    if (ascends()) {
        unite_ascending(values);
        kept_ = std::move(values);
    } else {
        std::vector<std::uint64_t> keys = keys_of(values);
        values = {};
        sort_by_identifier(keys);
        unite(keys);
    }
}

void IdentifierUnion::unite_ascending(const std::vector<std::int32_t>& values)
{
    struct Head {
        std::size_t next;
        std::size_t end;
    };
    const auto is_later = [&](const Head& a, const Head& b) { return values[a.next] > values[b.next]; };
    std::priority_queue<Head, std::vector<Head>, decltype(is_later)> heads{is_later};
    std::size_t begin = 0;
    for (const std::size_t end : ends_) {
        if (begin < end) {
            heads.push({begin, end});
        }
        begin = end;
    }
    rows_.resize(values.size());
    identifiers_.reserve(values.size()); // what is not used does not become memory
    while (!heads.empty()) {
        Head head = heads.top();
        heads.pop();
        // One list has many identifiers in a row before the next one's turn.
        const std::int32_t limit = heads.empty() ? std::numeric_limits<std::int32_t>::max() : values[heads.top().next];
        for (; head.next < head.end && values[head.next] <= limit; ++head.next) {
            if (identifiers_.empty() || identifiers_.back() != values[head.next]) {
                identifiers_.push_back(values[head.next]);
            }
            rows_[head.next] = static_cast<std::int32_t>(identifiers_.size() - 1);
        }
        if (head.next < head.end) {
            heads.push(head);
        }
    }
}

void IdentifierUnion::unite(const std::vector<std::uint64_t>& keys)
{
    const auto domain_of = [&](std::size_t row) { return std::upper_bound(ends_.begin(), ends_.end(), row); };
    const auto is_same = [](std::uint64_t a, std::uint64_t b) { return (a >> 32U) == (b >> 32U); };
    packed_.reserve(keys.size());
    rows_.resize(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const bool is_known = i > 0 && is_same(keys[i - 1], keys[i]);
        if (!is_known) {
            packed_.append(identifier_of(keys[i]));
        }
        const auto row = static_cast<std::int32_t>(packed_.size() - 1);
        const bool repeats = is_known && domain_of(row_of(keys[i - 1])) == domain_of(row_of(keys[i]));
        rows_[row_of(keys[i])] = repeats ? ~row : row;
    }
}

const std::int32_t* IdentifierUnion::identifiers(std::vector<std::byte>& scratch) const
{
    if (!identifiers_.empty()) {
        return identifiers_.data();
    }
    scratch.resize(std::max(scratch.size(), size() * sizeof(std::int32_t)));
    auto* const unpacked = reinterpret_cast<std::int32_t*>(scratch.data());
    packed_.unpack(unpacked);
    return unpacked;
}

void IdentifierUnion::copy_identifiers(std::vector<std::int32_t>& to) const
{
    to = identifiers_;
    if (packed_.size() > 0) {
        to.resize(packed_.size());
        packed_.unpack(to.data());
    }
}

bool IdentifierUnion::ascends() const
{
    return std::all_of(ascends_.begin(), ascends_.end(), [](bool ascends) { return ascends; });
}

bool IdentifierUnion::joins(const IdentifierLists& lists) const
{
    if (lists.lengths() != lists_->lengths()) {
        return false;
    }
    for (std::size_t domain = 0; domain < ends_.size(); ++domain) {
        const std::unique_ptr<IdentifierList> list = lists.open(domain);
        const bool same =
            kept_.empty() ? are_equal(*list, *lists_->open(domain), lists.lengths()[domain]) : is_kept(*list, domain);
        if (!same) {
            return false;
        }
    }
    return true;
}

bool IdentifierUnion::is_kept(IdentifierList& list, std::size_t domain) const
{
    auto kept = kept_.begin() + (rows_of(domain).data() - rows_.data());
    bool same = true;
    for_each_piece(rows_of(domain).size(), [&](std::span<std::int32_t> piece, std::size_t) {
        list.read(piece);
        same = same && std::equal(piece.begin(), piece.end(), kept);
        kept += static_cast<std::ptrdiff_t>(piece.size());
    });
    return same;
}

const IdentifierUnion& UnionCache::of(std::shared_ptr<const IdentifierLists> lists)
{
    const auto found =
        std::find_if(unions_.begin(), unions_.end(), [&](const IdentifierUnion& known) { return known.joins(*lists); });
    if (found != unions_.end()) {
        unions_.splice(unions_.begin(), unions_, found);
        return unions_.front();
    }
    unions_.emplace_front(std::move(lists));
    std::size_t bytes = 0;
    for (auto known = unions_.begin(); known != unions_.end();) {
        bytes += known->bytes();
        known = known != unions_.begin() && bytes > cached_bytes ? unions_.erase(known) : std::next(known);
    }
    return unions_.front();
}

} // namespace kob::merge
