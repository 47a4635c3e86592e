// SPDX-License-Identifier: BSD-3-Clause
// Union of the identifier lists of several domains.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <list>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace kob::merge {

/// An identifier list, read from its begin to its end.
class IdentifierList {
public:
    virtual ~IdentifierList() = default;
    /// The identifiers that follow those read before.
    virtual void read(std::span<std::int32_t> next) = 0;
};

/// The identifiers of one block in every domain file, wherever they are kept.
class IdentifierLists {
public:
    explicit IdentifierLists(std::vector<std::size_t> lengths) : lengths_{std::move(lengths)} {}
    virtual ~IdentifierLists() = default;

    [[nodiscard]] const std::vector<std::size_t>& lengths() const { return lengths_; }
    [[nodiscard]] virtual std::unique_ptr<IdentifierList> open(std::size_t domain) const = 0;

private:
    std::vector<std::size_t> lengths_;
};

/// Ascending identifiers, kept as the gaps between them: most take a byte.
class PackedIdentifiers {
public:
    void reserve(std::size_t count) { gaps_.reserve(count + count / 8); }
    /// Adds an identifier that is larger than the last one.
    void append(std::int32_t identifier);
    /// Writes them all.
    void unpack(std::int32_t* to) const;
    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] std::size_t bytes() const { return gaps_.size(); }

private:
    static constexpr auto origin = static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::min());

    std::vector<std::uint8_t> gaps_; ///< seven bits in a byte, the lowest first; the top bit says that more follow
    std::size_t size_ = 0;
    std::uint32_t last_ = origin;
};

/// For each row of a domain the row of the union that holds its entity; ~row where an earlier row of the same domain
/// names the entity already, and wins.
using RowMap = std::span<const std::int32_t>;

/// The distinct identifiers of all lists in ascending order, and where each list's rows are in it.
class IdentifierUnion {
public:
    explicit IdentifierUnion(std::shared_ptr<const IdentifierLists> lists);

    [[nodiscard]] std::size_t size() const { return identifiers_.size() + packed_.size(); }
    /// The identifiers, where they are or unpacked into memory that holds nothing of use.
    const std::int32_t* identifiers(std::vector<std::byte>& scratch) const;
    void copy_identifiers(std::vector<std::int32_t>& to) const;
    [[nodiscard]] RowMap rows_of(std::size_t domain) const
    {
        const std::size_t begin = domain == 0 ? 0 : ends_[domain - 1];
        return RowMap{rows_}.subspan(begin, ends_[domain] - begin);
    }
    /// Is each identifier of a domain larger than the one before?
    [[nodiscard]] bool ascends(std::size_t domain) const { return ascends_[domain]; }
    [[nodiscard]] bool ascends() const;

    /// Is this the union of these lists? Those that it was made of are kept where they ascend, since then the merged
    /// values need little memory. Else they are read once more, and the identifiers are packed.
    [[nodiscard]] bool joins(const IdentifierLists& lists) const;

    /// Memory held.
    [[nodiscard]] std::size_t bytes() const
    {
        return (identifiers_.size() + rows_.size() + kept_.size()) * sizeof(std::int32_t) +
               ends_.size() * sizeof(std::size_t);
    }

private:
    /// Takes over identifiers, list behind list, that ascend in each.
    void unite_ascending(const std::vector<std::int32_t>& values);
    /// Takes over sorted identifiers with the rows that they come from.
    void unite(const std::vector<std::uint64_t>& keys);
    /// Is this the list of a domain that was kept?
    [[nodiscard]] bool is_kept(IdentifierList& list, std::size_t domain) const;

    std::shared_ptr<const IdentifierLists> lists_;
    std::vector<std::int32_t> identifiers_; ///< when all lists ascend
    PackedIdentifiers packed_;              ///< otherwise
    std::vector<std::int32_t> rows_;
    std::vector<std::int32_t> kept_; ///< the lists, one behind the other, when all ascend
    std::vector<std::size_t> ends_;
    std::vector<bool> ascends_;
};

/// Unions made before, the last used first: the states of a run repeat few sets of identifier lists.
class UnionCache {
public:
    /// The union of these lists, sorted only if it is not at hand. Valid until the next call.
    const IdentifierUnion& of(std::shared_ptr<const IdentifierLists> lists);

private:
    std::list<IdentifierUnion> unions_;
};

} // namespace kob::merge
