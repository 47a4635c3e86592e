// SPDX-License-Identifier: BSD-3-Clause
// What a block of element results of a series holds.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/layout.hpp"
#include "support/result_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "multistate/TIME/multielementresults/HEXA8/STRESS/ZONE5/kobblock";

void write(const KobFile& file, const MultiElementResults& block)
{
    const auto outcome = block.write(file);
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
}

const std::string attributes = table({
    "attribute block integer 4 little scalar",
    "attribute blocktype text 256 space scalar",
    "attribute series text 256 space scalar",
    "attribute etypelem text 256 space scalar",
    "attribute nele integer 4 little scalar",
    "attribute etypvar text 256 space scalar",
    "attribute ncoo integer 4 little scalar",
    "attribute numl integer 4 little scalar",
    "attribute ndim integer 4 little scalar",
    "attribute etypzone text 256 space scalar",
    "attribute zoneid integer 4 little scalar",
    "attribute etypframe text 256 space scalar",
    "attribute fswitch integer 4 little scalar",
    "attribute dmpswitch integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute nstate integer 4 little scalar",
});

} // namespace

TEST(MultiElementResultsLayout, ThreeStates)
{
    KobFile file;
    const MultiElementResults written{3};
    write(file, written);
    const auto block = file.block(place);
    EXPECT_EQ(layout_of(block),
              attributes + table({
                               "dataset indexident integer 4 little [3, 1] max [unlimited, 1] chunked [1, 1]",
                               "dataset indexval float 8 little [3, 1] max [unlimited, 1] chunked [1, 1]",
                               "dataset idele integer 4 little [2] max [2] compact",
                               "dataset fidglob integer 4 little scalar compact",
                               "dataset eloc float 8 little [4, 2] max [4, 2] compact",
                               "dataset res float 8 little [3, 2, 4, 3] max [unlimited, 2, 4, 3] chunked [1, 2, 4, 3]",
                           }));
    EXPECT_EQ(
        attribute_names(block),
        (std::vector<std::string>{"block", "blocktype", "series", "etypelem", "nele", "etypvar", "ncoo", "numl", "ndim",
                                  "etypzone", "zoneid", "etypframe", "fswitch", "dmpswitch", "nindex", "nstate"}));
    const std::vector<std::pair<std::string, std::int64_t>> numbers{
        {"block", 1150}, {"nele", 2},    {"ncoo", 3},      {"numl", 4},   {"ndim", 2},
        {"zoneid", 5},   {"fswitch", 0}, {"dmpswitch", 0}, {"nindex", 1}, {"nstate", 3}};
    for (const auto& [name, value] : numbers) EXPECT_EQ(stored_ints(block, name), std::vector<std::int64_t>{value});
    EXPECT_EQ(stored_text(block, "blocktype"), "multielementresults" + std::string(237, '\0'));
    EXPECT_EQ(stored_text(block, "series"), Text256{"TIME"}.field());
    EXPECT_EQ(stored_text(block, "etypelem"), Text256{"HEXA8"}.field());
    EXPECT_EQ(stored_text(block, "etypvar"), Text256{"STRESS"}.field());
    EXPECT_EQ(stored_text(block, "etypzone"), Text256{"ZONE"}.field());
    EXPECT_EQ(stored_text(block, "etypframe"), Text256{"GLOBAL"}.field());
    EXPECT_EQ(stored_ints(block, "indexident"), (std::vector<std::int64_t>{10, 20, 30}));
    EXPECT_EQ(stored_reals(block, "indexval"), (std::vector<double>{0, 0.25, 0.5}));
    EXPECT_EQ(stored_reals(block, "res"), written.res);
}

TEST(MultiElementResultsLayout, MoreStatesGrowTheThreeThatGrow)
{
    KobFile file;
    write(file, MultiElementResults{2});
    write(file, MultiElementResults{5});
    write(file, MultiElementResults{1});
    EXPECT_EQ(layout_of(file.block(place)),
              attributes + table({
                               "dataset indexident integer 4 little [5, 1] max [unlimited, 1] chunked [1, 1]",
                               "dataset indexval float 8 little [5, 1] max [unlimited, 1] chunked [1, 1]",
                               "dataset idele integer 4 little [2] max [2] compact",
                               "dataset fidglob integer 4 little scalar compact",
                               "dataset eloc float 8 little [4, 2] max [4, 2] compact",
                               "dataset res float 8 little [5, 2, 4, 3] max [unlimited, 2, 4, 3] chunked [1, 2, 4, 3]",
                           }));
}

TEST(MultiElementResultsLayout, EverythingWithEveryFilter)
{
    KobFile file;
    MultiElementResults block{9, 16};
    block.nele = 1500;
    block.numl = 9;
    block.ncoo = 8;
    block.nindex = 2;
    block.fswitch = 2;
    block.dmpswitch = 1;
    block.hold(9);
    block.idele.assign(1500, 3);
    block.fid.assign(13500, 4);
    block.operators = Texts256(8);
    block.weight.assign(1500, 1);
    block.eloc.assign(18, 0.5);
    block.filter_flags = 255;
    block.filter_params = {3, 6};
    write(file, block);
    EXPECT_EQ(
        layout_of(file.block(place)),
        attributes +
            table({
                "dataset indexident integer 4 little [9, 2] max [unlimited, 2] chunked [1, 2] scaleoffset(integer 0) "
                "shuffle deflate(6) fill 10000",
                "dataset indexval float 4 little [9, 2] max [unlimited, 2] chunked [1, 2] shuffle deflate(6)",
                "dataset idele integer 4 little [1500] max [1500] chunked [1500] scaleoffset(integer 0) shuffle "
                "deflate(6) fill 10000",
                "dataset fid integer 4 little [1500, 9] max [1500, 9] chunked [1500, 9] scaleoffset(integer 0) shuffle "
                "deflate(6) fill 10000",
                "dataset operator text 256 space [8] max [8] chunked [8] shuffle deflate(6)",
                "dataset weight float 4 little [1500] max [1500] chunked [1500] shuffle deflate(6)",
                "dataset eloc float 4 little [9, 2] max [9, 2] chunked [9, 2] shuffle deflate(6)",
                "dataset res float 4 little [9, 1500, 9, 8, 2] max [unlimited, 1500, 9, 8, 2] chunked "
                "[1, 1500, 9, 8, 2] scaleoffset(decimal 3) shuffle deflate(6) fill 10000",
            }));
    EXPECT_EQ(stored_ints(file.block(place), "block"), (std::vector<std::int64_t>{1151}));
}

TEST(MultiElementResultsLayout, NoStates)
{
    KobFile file;
    MultiElementResults block{0};
    block.fswitch = 1;
    block.fid = {1, 2};
    write(file, block);
    EXPECT_EQ(layout_of(file.block(place)), attributes + table({
                                                             "dataset idele integer 4 little [2] max [2] compact",
                                                             "dataset fid integer 4 little [2] max [2] compact",
                                                             "dataset eloc float 8 little [4, 2] max [4, 2] compact",
                                                         }));
}
