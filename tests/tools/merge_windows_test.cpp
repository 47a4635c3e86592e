// SPDX-License-Identifier: BSD-3-Clause
// Results that are too large to be merged in one go: whatever their order, each entity gets the first domain's row.
#include <kob_dp.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "distributed_run.hpp"
#include "hdf5_file.hpp"
#include "identifiers.hpp"
#include "kob_file.hpp"
#include "merge_model.hpp"

namespace {

using namespace kob_test;
using testing::HasSubstr;
using testing::Not;

enum class Order { ascending, none, one_of_them, repeated };

struct LargeCase {
    const char* title;
    Order order;
    ResultTable table;
    std::int32_t filter_flags = 0;      ///< of the second domain
    std::int32_t second_value_size = 0; ///< where it stores another size
};

std::ostream& operator<<(std::ostream& out, const LargeCase& of) { return out << of.title; }

/// What a domain holds of an entity: no two rows are alike, unless domains agree.
double value_of(std::size_t domain, std::int32_t entity, std::int32_t number, bool agree)
{
    return (agree ? 0.0 : 0.25 * static_cast<double>(domain)) + entity + 1e-3 * number;
}

/// Three domains that share entities with their neighbours; the numbering goes across all of them.
class LargeRun {
public:
    static constexpr std::int32_t entities = 90'000;

    LargeRun(const LargeCase& of, bool agree) : of_{of}, agree_{agree}
    {
        for (std::size_t domain = 0; domain < lists_.size(); ++domain) {
            Ints32& list = lists_[domain];
            for (std::int32_t entity = 0; entity < entities; ++entity) {
                const auto cut = static_cast<std::size_t>(entity % 300); // three parts of 100, with one shared
                if (cut / 100 == domain || cut == 100 * domain + 100) list.push_back(7 * entity - 1000);
            }
            if (of.order == Order::none || (of.order == Order::one_of_them && domain == 1)) {
                std::shuffle(list.begin(), list.end(), std::mt19937{static_cast<unsigned>(domain)}); // NOLINT
            }
            if (of.order == Order::repeated && domain == 0) list.push_back(list[20]);
        }
    }

    void write(const DistributedRun& run, std::int32_t state) const
    {
        for (std::size_t domain = 0; domain < lists_.size(); ++domain) {
            ResultTable table = of_.table;
            BlockWriter out = run.in(domain + 1);
            if (domain == 1) {
                out.how.filter_flags = of_.filter_flags;
                if (of_.second_value_size != 0) table.value_size = of_.second_value_size;
            }
            Ints32 fid;
            Reals64 weight, res;
            for (const std::int32_t entity : lists_[domain]) {
                fid.push_back(entity + static_cast<std::int32_t>(domain));
                weight.push_back(entity + 0.125 * static_cast<double>(domain));
                for (std::int32_t i = 0; i < table.numbers_of_row(); ++i) {
                    res.push_back(value_of(domain, entity, i, agree_) + state);
                }
            }
            if (of_.order == Order::repeated && domain == 0)
                std::fill(res.end() - table.numbers_of_row(), res.end(), -1);
            out.results(table, lists_[domain], fid, weight, res, BlockWriter::state(state));
        }
    }

    void expect_merged(const DistributedRun& run, std::int32_t state) const
    {
        std::map<std::int32_t, std::size_t> owners; // the first domain of each entity
        for (std::size_t domain = lists_.size(); domain-- > 0;) {
            for (const std::int32_t entity : lists_[domain]) owners[entity] = domain;
        }
        const bool as_floats = (of_.table.value_size == 4 || of_.table.value_size == 16) && of_.second_value_size == 0;
        std::vector<std::int64_t> entid, fid;
        std::vector<double> weight, res;
        for (const auto& [entity, domain] : owners) {
            entid.push_back(entity);
            fid.push_back(entity + static_cast<std::int32_t>(domain));
            weight.push_back(entity + 0.125 * static_cast<double>(domain));
            for (std::int32_t i = 0; i < of_.table.numbers_of_row(); ++i) {
                const double value = value_of(domain, entity, i, agree_) + state;
                const bool is_float = as_floats || (of_.table.value_size == 4 && domain != 1);
                res.push_back(is_float ? static_cast<double>(static_cast<float>(value)) : value);
            }
        }
        const std::string number = std::to_string(state);
        const std::int64_t block =
            run.target.block("singlestate/state" + std::string(12 - number.size(), '0') + number + "/entityresults/" +
                             of_.table.etyp + "/" + of_.table.etypvar + "/kobblock");
        EXPECT_TRUE(stored_ints(block, "entid") == entid);
        EXPECT_TRUE(stored_reals(block, "res") == res);
        if (of_.table.fswitch == 1) {
            EXPECT_TRUE(stored_ints(block, "fid") == fid);
        }
        if (of_.table.dmpswitch == 1) {
            EXPECT_TRUE(stored_reals(block, "weight") == weight);
        }
    }

    /// Entities of several domains.
    std::int32_t shared() const
    {
        std::map<std::int32_t, std::int32_t> holders;
        for (const Ints32& list : lists_) {
            for (const std::int32_t entity : list) ++holders[entity];
        }
        return static_cast<std::int32_t>(
            std::count_if(holders.begin(), holders.end(), [](const auto& held) { return held.second > 1; }));
    }

private:
    const LargeCase& of_;
    bool agree_;
    std::array<Ints32, 3> lists_;
};

class LargeResults : public testing::TestWithParam<LargeCase> {};

TEST_P(LargeResults, AreWholeAgainInEveryState)
{
    const LargeRun model{GetParam(), false};
    DistributedRun run{3};
    for (const std::int32_t state : {1, 2}) model.write(run, state);
    run.stamp();

    ASSERT_EQ(run.merge(), 0) << run.err;

    for (const std::int32_t state : {1, 2}) model.expect_merged(run, state);
}

const ResultTable displacement{.etyp = "NODE", .etypvar = "U", .ncoo = 3};
const ResultTable temperature{.etyp = "NODE", .etypvar = "T"};
ResultTable stored_in(ResultTable table, std::int32_t value_size)
{
    table.value_size = value_size;
    return table;
}
ResultTable with_columns(ResultTable table)
{
    table.fswitch = 1;
    table.dmpswitch = 1;
    return table;
}
ResultTable of_components(ResultTable table, std::int32_t ncoo)
{
    table.ncoo = ncoo;
    return table;
}

constexpr std::int32_t shuffle_and_deflate = 2 | 16;

INSTANTIATE_TEST_SUITE_P(
    Merge, LargeResults,
    testing::Values(LargeCase{"InOrder", Order::ascending, displacement},
                    LargeCase{"InNoOrder", Order::none, displacement},
                    LargeCase{"OneDomainInNoOrder", Order::one_of_them, displacement},
                    LargeCase{"OneEntityNamedTwice", Order::repeated, displacement},
                    LargeCase{"InNoOrderWithFramesAndWeights", Order::none, with_columns(displacement)},
                    LargeCase{"InOrderWithFramesAndWeights", Order::ascending, with_columns(displacement)},
                    LargeCase{"SevenComponents", Order::none, of_components(temperature, 7)},
                    LargeCase{"FourComponentsAsFloats", Order::none, stored_in(of_components(temperature, 4), 4)},
                    LargeCase{"ComplexInOrder", Order::ascending, stored_in(displacement, 32)},
                    LargeCase{"ComplexInNoOrder", Order::none, stored_in(temperature, 32)},
                    LargeCase{"ComplexFloats", Order::none, stored_in(displacement, 16)},
                    LargeCase{"OneDomainStoresDoubles", Order::none, stored_in(displacement, 4), 0, 8},
                    LargeCase{"OneDomainStoresDoublesInOrder", Order::ascending, stored_in(displacement, 4), 0, 8},
                    LargeCase{"OneDomainIsFiltered", Order::none, displacement, shuffle_and_deflate},
                    LargeCase{"OneScalarThatFitsAtOnce", Order::none, temperature}),
    [](const auto& of) { return of.param.title; });

TEST(LargeMerge, CountsEveryNodeThatLiesElsewhere)
{
    for (const Order order : {Order::ascending, Order::none}) {
        const LargeCase of{"", order, {.etyp = "NODE", .etypvar = "COORDINATE", .ncoo = 3}};
        for (const bool agree : {false, true}) {
            const LargeRun model{of, agree};
            DistributedRun run{3};
            model.write(run, 1);
            run.stamp();

            ASSERT_EQ(run.merge(), 0) << run.err;

            model.expect_merged(run, 1);
            const std::string line = "KOB WARNING - kob_merge_dmp - " + std::to_string(model.shared()) +
                                     " shared nodes have different coordinates\n";
            EXPECT_THAT(run.err, agree ? testing::Matcher<std::string>{Not(HasSubstr("different coordinates"))}
                                       : testing::Matcher<std::string>{HasSubstr(line)});
        }
    }
}

TEST(LargeMerge, LeavesNothingOpen)
{
    const LargeCase of{"", Order::none, displacement};
    const LargeRun model{of, false};
    DistributedRun run{3};
    model.write(run, 1);
    run.stamp();
    const auto before = OpenIdentifiers::now();

    ASSERT_EQ(run.merge(), 0) << run.err;

    EXPECT_EQ(OpenIdentifiers::now().added_since(before), "");
}

TEST(LargeMerge, StopsWhereTheTargetHoldsTheBlock)
{
    const LargeCase of{"", Order::ascending, displacement};
    const LargeRun model{of, false};
    DistributedRun run{3};
    model.write(run, 1);
    run.stamp();
    BlockWriter{run.target.handle()}.results(displacement, {1, 2}, {}, {}, Reals64(6, 0.5), BlockWriter::state(1));

    EXPECT_LT(run.merge(), 0);
    EXPECT_THAT(run.err, HasSubstr("entityresults"));
}

} // namespace
