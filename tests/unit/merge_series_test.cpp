// SPDX-License-Identifier: BSD-3-Clause
// A series that does not fit into memory is merged in groups of states.
#include "kob_family.hpp"
#include "kob_merge_series.hpp"

#include <array>
#include <cmath>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_stream.hpp"
#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "merge_model.hpp"

namespace {

using namespace kob_test;
using kob::merge::DomainFiles;
using kob::merge::Target;
using kob::merge::UnionCache;
using testing::ElementsAre;

class SeriesInGroups : public testing::TestWithParam<std::int32_t> {};

constexpr char path[] = "multistate/RUN/multientityresults/NODE/T/kobblock";

TEST_P(SeriesInGroups, IsTheSameWhateverFitsIntoMemory)
{
    const std::int32_t states_at_a_time = GetParam();
    std::array<KobFile, 2> domains;
    KobFile merged;
    const ResultTable table{.etyp = "NODE", .etypvar = "T"};
    BlockWriter{domains[0].handle()}.series(table, 1, {1, 2, 3, 4, 5}, {1, 2}, {}, {},
                                            {11, 12, 21, 22, 31, 32, 41, 42, 51, 52});
    BlockWriter{domains[1].handle()}.series(table, 1, {5, 3, 1, 2, 4}, {4, 2}, {}, {},
                                            {54, -1, 34, -1, 14, -1, 24, -1, 44, -1});
    const std::array<std::int64_t, 2> groups{domains[0].handle(), domains[1].handle()};
    DomainFiles files{kob::family_of(kob::Generation::current), groups.data(), 2, 1};
    const Target target{merged.handle(), {{}, {0, nullptr, nullptr}, 8}, 1};
    UnionCache unions;
    constexpr std::int32_t bytes_of_state = 3 * 8;
    constexpr std::int32_t rest = 7; // not enough for a further state
    const std::int32_t limit = states_at_a_time * bytes_of_state + rest;

    const std::string out = output_of([&] {
        files.list();
        const auto blocks = kob::merge::by_path(files.look_up(kob::kind::multi_entity_results));
        kob::merge::merge_series(files, target, unions, blocks.at(0), 1, limit);
    });

    const std::int64_t block = merged.block(path);
    EXPECT_THAT(stored_ints(block, "indexident"), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_THAT(stored_reals(block, "res"), ElementsAre(11, 12, 14, 21, 22, 24, 31, 32, 34, 41, 42, 44, 51, 52, 54));
    EXPECT_THAT(stored_ints(block, "nstate"), ElementsAre(5));
    const std::string line = " KOB INFO - \"multientityresults\" data size limit of " + std::to_string(limit) +
                             " Byte exceeded -> i/o + merge in blocks of " +
                             std::to_string(std::max(states_at_a_time, 1)) + " states - block: \"" + path + "\"\n";
    EXPECT_EQ(out.find(line) != std::string::npos, states_at_a_time < 5) << out;
}

INSTANTIATE_TEST_SUITE_P(Merge, SeriesInGroups, testing::Values(0, 1, 2, 4, 5, 6),
                         [](const auto& groups) { return "Of" + std::to_string(groups.param); });

} // namespace
