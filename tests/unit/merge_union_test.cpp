// SPDX-License-Identifier: BSD-3-Clause
// Uniting identifier lists.
#include "kob_merge_union.hpp"

#include <algorithm>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

namespace {

using kob::merge::IdentifierLists;
using kob::merge::IdentifierUnion;
using kob::merge::UnionCache;
using Ints = std::vector<std::int32_t>;

IdentifierLists lists_of(const std::vector<Ints>& domains)
{
    IdentifierLists lists;
    for (const Ints& domain : domains) std::copy(domain.begin(), domain.end(), lists.add(domain.size()).begin());
    return lists;
}

Ints rows_of(const IdentifierUnion& united, std::size_t domain)
{
    const auto rows = united.rows_of(domain);
    return {rows.begin(), rows.end()};
}

TEST(IdentifierUnion, HoldsEachIdentifierOnceAndAscending)
{
    const IdentifierUnion united{lists_of({{7, -3}, {}, {7, 5, 5}})};

    EXPECT_EQ(united.identifiers(), (Ints{-3, 5, 7}));
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

        ASSERT_EQ(united.identifiers(), Ints(all.begin(), all.end()));
        for (std::size_t d = 0; d < domains.size(); ++d) {
            std::set<std::int32_t> seen;
            for (std::size_t i = 0; i < domains[d].size(); ++i) {
                const std::int32_t row = united.rows_of(d)[i];
                const bool is_first = seen.insert(domains[d][i]).second;
                ASSERT_EQ(row >= 0, is_first);
                ASSERT_EQ(united.identifiers()[static_cast<std::size_t>(is_first ? row : ~row)], domains[d][i]);
            }
        }
    }
}

TEST(IdentifierUnion, KnowsTheListsThatItJoins)
{
    const IdentifierUnion united{lists_of({{7, -3}, {7, 5, 5}})};

    EXPECT_TRUE(united.joins(lists_of({{7, -3}, {7, 5, 5}})));
    EXPECT_FALSE(united.joins(lists_of({{-3, 7}, {7, 5, 5}})));
    EXPECT_FALSE(united.joins(lists_of({{7, -3, 7}, {5, 5}})));
    EXPECT_FALSE(united.joins(lists_of({{7, -3}, {7, 5}})));
}

TEST(UnionCache, GivesBackWhatItHas)
{
    UnionCache cache;
    const IdentifierUnion* first = &cache.of(lists_of({{1, 2}}));
    EXPECT_EQ(cache.of(lists_of({{3}, {2}})).identifiers(), (Ints{2, 3}));
    EXPECT_EQ(&cache.of(lists_of({{1, 2}})), first) << "not made again";
}

} // namespace
