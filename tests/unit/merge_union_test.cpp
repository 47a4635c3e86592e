// SPDX-License-Identifier: BSD-3-Clause
// Uniting identifier lists.
#include "kob_merge_union.hpp"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <span>
#include <vector>

#include <gtest/gtest.h>

namespace {

using kob::merge::IdentifierList;
using kob::merge::IdentifierLists;
using kob::merge::IdentifierUnion;
using kob::merge::PackedIdentifiers;
using kob::merge::UnionCache;
using Ints = std::vector<std::int32_t>;

/// Lists in memory.
class ListsInMemory : public IdentifierLists {
public:
    explicit ListsInMemory(const std::vector<Ints>& domains) : IdentifierLists{lengths_of(domains)}, domains_{domains}
    {
    }
    std::unique_ptr<IdentifierList> open(std::size_t domain) const override
    {
        return std::make_unique<List>(domains_.at(domain));
    }

private:
    struct List : IdentifierList {
        explicit List(const Ints& list) : rest{list} {}
        void read(std::span<std::int32_t> next) override
        {
            ASSERT_LE(next.size(), rest.size());
            std::copy_n(rest.begin(), next.size(), next.begin());
            rest = rest.subspan(next.size());
        }
        std::span<const std::int32_t> rest;
    };

    static std::vector<std::size_t> lengths_of(const std::vector<Ints>& domains)
    {
        std::vector<std::size_t> lengths;
        for (const Ints& domain : domains) lengths.push_back(domain.size());
        return lengths;
    }

    std::vector<Ints> domains_;
};

std::shared_ptr<ListsInMemory> lists_of(const std::vector<Ints>& domains)
{
    return std::make_shared<ListsInMemory>(domains);
}

/// The identifiers, asked for in both ways.
Ints identifiers_of(const IdentifierUnion& united)
{
    Ints copied;
    united.copy_identifiers(copied);
    std::vector<std::byte> scratch;
    const std::int32_t* const lent = united.identifiers(scratch);
    EXPECT_EQ(Ints(lent, lent + united.size()), copied);
    return copied;
}

Ints rows_of(const IdentifierUnion& united, std::size_t domain)
{
    const auto rows = united.rows_of(domain);
    return {rows.begin(), rows.end()};
}

TEST(IdentifierUnion, HoldsEachIdentifierOnceAndAscending)
{
    const IdentifierUnion united{lists_of({{7, -3}, {}, {7, 5, 5}})};

    EXPECT_EQ(identifiers_of(united), (Ints{-3, 5, 7}));
    EXPECT_EQ(rows_of(united, 0), (Ints{2, 0}));
    EXPECT_EQ(rows_of(united, 1), Ints{});
    EXPECT_EQ(rows_of(united, 2), (Ints{2, 1, ~1})) << "the second 5 of one domain loses";
}

TEST(IdentifierUnion, OfNothingIsEmpty)
{
    EXPECT_EQ(IdentifierUnion{lists_of({})}.size(), 0U);
    EXPECT_EQ(IdentifierUnion{lists_of({{}, {}})}.size(), 0U);
}

TEST(IdentifierUnion, AgreesWithASetForRandomIdentifiers)
{
    std::mt19937 random{20};
    for (const std::int32_t reach : {3, 3000, std::numeric_limits<std::int32_t>::max()}) {
        std::uniform_int_distribution<std::int32_t> identifier{-reach, reach};
        std::vector<Ints> domains(5);
        std::set<std::int32_t> all;
        for (Ints& domain : domains) {
            for (int i = 0; i < 2000; ++i) domain.push_back(identifier(random));
            all.insert(domain.begin(), domain.end());
        }
        const IdentifierUnion united{lists_of(domains)};

        const Ints identifiers = identifiers_of(united);
        ASSERT_EQ(identifiers, Ints(all.begin(), all.end()));
        for (std::size_t d = 0; d < domains.size(); ++d) {
            std::set<std::int32_t> seen;
            for (std::size_t i = 0; i < domains[d].size(); ++i) {
                const std::int32_t row = united.rows_of(d)[i];
                const bool is_first = seen.insert(domains[d][i]).second;
                ASSERT_EQ(row >= 0, is_first);
                ASSERT_EQ(identifiers[static_cast<std::size_t>(is_first ? row : ~row)], domains[d][i]);
            }
        }
    }
}

TEST(IdentifierUnion, OfAscendingListsIsTheSame)
{
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
    const IdentifierUnion united{lists_of({{3, 4, 9, largest}, {}, {lowest, 4, 5, 6}, {9}, {lowest, largest}})};

    EXPECT_TRUE(united.ascends());
    EXPECT_EQ(identifiers_of(united), (Ints{lowest, 3, 4, 5, 6, 9, largest}));
    EXPECT_EQ(rows_of(united, 0), (Ints{1, 2, 5, 6}));
    EXPECT_EQ(rows_of(united, 1), Ints{});
    EXPECT_EQ(rows_of(united, 2), (Ints{0, 2, 3, 4}));
    EXPECT_EQ(rows_of(united, 3), (Ints{5}));
    EXPECT_EQ(rows_of(united, 4), (Ints{0, 6}));
}

TEST(IdentifierUnion, TellsWhichListsAscend)
{
    const IdentifierUnion united{lists_of({{1, 2, 3}, {1, 3, 2}, {}, {4, 4}, {-5}})};

    EXPECT_FALSE(united.ascends());
    EXPECT_TRUE(united.ascends(0));
    EXPECT_FALSE(united.ascends(1));
    EXPECT_TRUE(united.ascends(2));
    EXPECT_FALSE(united.ascends(3)) << "a repeated identifier is not larger than the one before";
    EXPECT_TRUE(united.ascends(4));
}

TEST(IdentifierUnion, KnowsTheListsThatItJoins)
{
    for (const bool ascending : {false, true}) {
        Ints first{7, -3};
        if (ascending) first = {-3, 7};
        const Ints second{5, 6, 7};
        const IdentifierUnion united{lists_of({first, second})};

        EXPECT_TRUE(united.joins(*lists_of({first, second})));
        EXPECT_FALSE(united.joins(*lists_of({{first[1], first[0]}, second})));
        EXPECT_FALSE(united.joins(*lists_of({{first[0], first[1], 5}, {6, 7}})));
        EXPECT_FALSE(united.joins(*lists_of({first, {5, 6}})));
        EXPECT_FALSE(united.joins(*lists_of({first, {5, 6, 8}})));
        EXPECT_FALSE(united.joins(*lists_of({first, second, {}})));
    }
}

TEST(IdentifierUnion, ComparesLongListsToTheirEnd)
{
    for (const bool ascending : {false, true}) {
        Ints list(200'000);
        std::iota(list.begin(), list.end(), -100'000);
        if (!ascending) std::swap(list[5], list[6]);
        const IdentifierUnion united{lists_of({{1, 2, 3}, list})};

        EXPECT_TRUE(united.joins(*lists_of({{1, 2, 3}, list})));
        for (const std::size_t place : {std::size_t{0}, std::size_t{70'000}, list.size() - 1}) {
            Ints other = list;
            other[place] = 1'000'000;
            EXPECT_FALSE(united.joins(*lists_of({{1, 2, 3}, other}))) << place;
        }
    }
}

TEST(PackedIdentifiers, ComeBackWhateverTheirGaps)
{
    Ints all{std::numeric_limits<std::int32_t>::min()};
    for (const std::int64_t gap :
         {1LL, 127LL, 128LL, 16383LL, 16384LL, 2097151LL, 2097152LL, 268435455LL, 268435456LL}) {
        all.push_back(static_cast<std::int32_t>(all.back() + gap));
    }
    all.push_back(std::numeric_limits<std::int32_t>::max()); // a gap of more than 31 bits
    for (std::size_t first = 0; first < all.size(); ++first) {
        const Ints some(all.begin() + static_cast<std::ptrdiff_t>(first), all.end());
        PackedIdentifiers packed;
        for (const std::int32_t identifier : some) packed.append(identifier);
        Ints unpacked(packed.size());
        packed.unpack(unpacked.data());
        EXPECT_EQ(unpacked, some);
    }
}

TEST(UnionCache, GivesBackWhatItHas)
{
    UnionCache cache;
    const IdentifierUnion* first = &cache.of(lists_of({{1, 2}}));
    EXPECT_EQ(identifiers_of(cache.of(lists_of({{3}, {2}}))), (Ints{2, 3}));
    EXPECT_EQ(&cache.of(lists_of({{1, 2}})), first) << "not made again";
}

} // namespace
