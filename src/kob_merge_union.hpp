// SPDX-License-Identifier: BSD-3-Clause
// Union of the identifier lists of several domains.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <span>
#include <vector>

namespace kob::merge {

/// The identifiers of one block in every domain file, one list behind the other.
class IdentifierLists {
public:
    /// A new list of this length, to be filled in.
    std::span<std::int32_t> add(std::size_t length)
    {
        values_.resize(values_.size() + length);
        ends_.push_back(values_.size());
        return list(ends_.size() - 1);
    }

    void clear()
    {
        values_.clear();
        ends_.clear();
    }

    [[nodiscard]] std::size_t count() const { return ends_.size(); }
    [[nodiscard]] std::size_t begin_of(std::size_t domain) const { return domain == 0 ? 0 : ends_[domain - 1]; }
    [[nodiscard]] std::size_t end_of(std::size_t domain) const { return ends_[domain]; }
    [[nodiscard]] const std::vector<std::int32_t>& values() const { return values_; }
    [[nodiscard]] const std::vector<std::size_t>& ends() const { return ends_; }

private:
    std::span<std::int32_t> list(std::size_t domain)
    {
        return std::span{values_}.subspan(begin_of(domain), ends_[domain] - begin_of(domain));
    }

    std::vector<std::int32_t> values_;
    std::vector<std::size_t> ends_;
};

/// For each row of a domain the row of the union that holds its entity; ~row where an earlier row of the same domain
/// names the entity already, and wins.
using RowMap = std::span<const std::int32_t>;

/// The distinct identifiers of all lists in ascending order, and where each list's rows are in it.
class IdentifierUnion {
public:
    explicit IdentifierUnion(const IdentifierLists& lists);

    [[nodiscard]] const std::vector<std::int32_t>& identifiers() const { return identifiers_; }
    [[nodiscard]] std::size_t size() const { return identifiers_.size(); }
    [[nodiscard]] RowMap rows_of(std::size_t domain) const
    {
        const std::size_t begin = domain == 0 ? 0 : ends_[domain - 1];
        return RowMap{rows_}.subspan(begin, ends_[domain] - begin);
    }

    /// Is this the union of these lists?
    [[nodiscard]] bool joins(const IdentifierLists& lists) const
    {
        return lists.ends() == ends_ && lists.values() == values_;
    }

    /// Memory held.
    [[nodiscard]] std::size_t bytes() const
    {
        return (identifiers_.size() + rows_.size() + values_.size()) * sizeof(std::int32_t) +
               ends_.size() * sizeof(std::size_t);
    }

private:
    std::vector<std::int32_t> identifiers_;
    std::vector<std::int32_t> rows_;
    std::vector<std::int32_t> values_; ///< the lists: compared in their order, which is faster than through the rows
    std::vector<std::size_t> ends_;
};

/// Unions made before, the last used first: the states of a run repeat few sets of identifier lists.
class UnionCache {
public:
    /// Lists to fill in; their memory is used again and again.
    IdentifierLists& new_lists()
    {
        lists_.clear();
        return lists_;
    }
    /// The union of these lists, sorted only if it is not at hand. Valid until the next call.
    const IdentifierUnion& of(const IdentifierLists& lists);

private:
    IdentifierLists lists_;
    std::list<IdentifierUnion> unions_;
};

} // namespace kob::merge
