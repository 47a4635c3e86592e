// SPDX-License-Identifier: BSD-3-Clause
// What an element results block holds.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/layout.hpp"
#include "support/result_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "singlestate/state000000000012/elementresults/HEXA8/STRESS/ZONE5/kobblock";

void write(const KobFile& file, const ElementResults& block)
{
    const auto outcome = block.write(file);
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
}

const std::string attributes = table({
    "attribute block integer 4 little scalar",
    "attribute blocktype text 256 space scalar",
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
    "attribute indexic integer 4 little scalar",
});

/// A block of 600 elements with 9 locations, 2 coordinates and 6 components, everything in it.
ElementResults large()
{
    ElementResults block;
    block.nele = 600;
    block.numl = 9;
    block.ncoo = 6;
    block.fswitch = 2;
    block.dmpswitch = 1;
    block.nindex = 9;
    block.state = 12;
    block.indexident.assign(9, 1);
    block.indexval.assign(9, 0.5);
    block.idele.assign(600, 3);
    block.fid.assign(5400, 4);
    block.operators = Texts256(6);
    block.weight.assign(600, 1);
    block.eloc.assign(18, 0.5);
    block.res = ElementResults::numbered(32400);
    return block;
}

} // namespace

TEST(ElementResultsLayout, TheSmallestKind)
{
    KobFile file;
    write(file, ElementResults{});
    EXPECT_EQ(layout_of(file.block(place)),
              attributes + table({
                               "dataset indexident integer 4 little [1] max [1] compact",
                               "dataset indexval float 8 little [1] max [1] compact",
                               "dataset idele integer 4 little [2] max [2] compact",
                               "dataset fidglob integer 4 little scalar compact",
                               "dataset eloc float 8 little [4, 2] max [4, 2] compact",
                               "dataset res float 8 little [2, 4, 3] max [2, 4, 3] compact",
                           }));
}

TEST(ElementResultsLayout, AttributesStandInOrderAndHoldWhatWasGiven)
{
    KobFile file;
    const ElementResults written;
    write(file, written);
    const auto block = file.block(place);
    EXPECT_EQ(
        attribute_names(block),
        (std::vector<std::string>{"block", "blocktype", "etypelem", "nele", "etypvar", "ncoo", "numl", "ndim",
                                  "etypzone", "zoneid", "etypframe", "fswitch", "dmpswitch", "nindex", "indexic"}));
    const std::vector<std::pair<std::string, std::int64_t>> numbers{
        {"block", 1100}, {"nele", 2},    {"ncoo", 3},      {"numl", 4},   {"ndim", 2},
        {"zoneid", 5},   {"fswitch", 0}, {"dmpswitch", 0}, {"nindex", 1}, {"indexic", 7}};
    for (const auto& [name, value] : numbers) EXPECT_EQ(stored_ints(block, name), std::vector<std::int64_t>{value});
    EXPECT_EQ(stored_text(block, "blocktype"), "elementresults" + std::string(242, '\0'));
    EXPECT_EQ(stored_text(block, "etypelem"), Text256{"HEXA8"}.field());
    EXPECT_EQ(stored_text(block, "etypvar"), Text256{"STRESS"}.field());
    EXPECT_EQ(stored_text(block, "etypzone"), Text256{"ZONE"}.field());
    EXPECT_EQ(stored_text(block, "etypframe"), Text256{"GLOBAL"}.field());
    EXPECT_EQ(stored_reals(block, "res"), written.res);
    EXPECT_EQ(stored_reals(block, "eloc"), written.eloc);
    EXPECT_EQ(stored_ints(block, "idele"), (std::vector<std::int64_t>{101, 102}));
    EXPECT_EQ(stored_ints(block, "fidglob"), (std::vector<std::int64_t>{33}));
    EXPECT_EQ(stored_ints(block, "indexident"), (std::vector<std::int64_t>{12}));
    EXPECT_EQ(stored_reals(block, "indexval"), (std::vector<double>{0.125}));
}

TEST(ElementResultsLayout, LargeAndUnfiltered)
{
    KobFile file;
    write(file, large());
    EXPECT_EQ(layout_of(file.block(place)),
              attributes + table({
                               "dataset indexident integer 4 little [9] max [9] compact",
                               "dataset indexval float 8 little [9] max [9] compact",
                               "dataset idele integer 4 little [600] max [600] compact",
                               "dataset fid integer 4 little [600, 9] max [600, 9] compact",
                               "dataset operator text 256 space [6] max [6] compact",
                               "dataset weight float 8 little [600] max [600] compact",
                               "dataset eloc float 8 little [9, 2] max [9, 2] compact",
                               "dataset res float 8 little [600, 9, 6] max [600, 9, 6] contiguous",
                           }));
}

TEST(ElementResultsLayout, LargeWithEveryFilter)
{
    KobFile file;
    auto block = large();
    block.ncoo = 8;
    block.operators = Texts256(8);
    block.res = ElementResults::numbered(43200);
    block.value_size = 4;
    block.filter_flags = 255;
    block.filter_params = {3, 6};
    write(file, block);
    EXPECT_EQ(
        layout_of(file.block(place)),
        attributes +
            table({
                "dataset indexident integer 4 little [9] max [9] chunked [9] scaleoffset(integer 0) shuffle deflate(6) "
                "fill 10000",
                "dataset indexval float 4 little [9] max [9] chunked [9] shuffle deflate(6)",
                "dataset idele integer 4 little [600] max [600] chunked [600] scaleoffset(integer 0) shuffle "
                "deflate(6) fill 10000",
                "dataset fid integer 4 little [600, 9] max [600, 9] chunked [600, 9] scaleoffset(integer 0) shuffle "
                "deflate(6) fill 10000",
                "dataset operator text 256 space [8] max [8] chunked [8] shuffle deflate(6)",
                "dataset weight float 4 little [600] max [600] chunked [600] shuffle deflate(6)",
                "dataset eloc float 4 little [9, 2] max [9, 2] chunked [9, 2] shuffle deflate(6)",
                "dataset res float 4 little [600, 9, 8] max [600, 9, 8] chunked [600, 9, 8] scaleoffset(decimal 3) "
                "shuffle deflate(6) fill 10000",
            }));
}

TEST(ElementResultsLayout, ComplexWithAFrameForEachElement)
{
    KobFile file;
    ElementResults block;
    block.value_size = 32;
    block.fswitch = 1;
    block.fid = {8, 9};
    block.res = ElementResults::numbered(48);
    write(file, block);
    EXPECT_EQ(layout_of(file.block(place)),
              attributes + table({
                               "dataset indexident integer 4 little [1] max [1] compact",
                               "dataset indexval float 8 little [1] max [1] compact",
                               "dataset idele integer 4 little [2] max [2] compact",
                               "dataset fid integer 4 little [2] max [2] compact",
                               "dataset eloc float 8 little [4, 2] max [4, 2] compact",
                               "dataset res float 8 little [2, 4, 3, 2] max [2, 4, 3, 2] compact",
                           }));
    EXPECT_EQ(stored_ints(file.block(place), "block"), (std::vector<std::int64_t>{1101}));
    EXPECT_EQ(stored_reals(file.block(place), "res"), block.res);

    block.state = 13;
    block.value_size = 16;
    write(file, block);
    EXPECT_EQ(layout_of(file.block("singlestate/state000000000013/elementresults/HEXA8/STRESS/ZONE5/kobblock")),
              attributes + table({
                               "dataset indexident integer 4 little [1] max [1] compact",
                               "dataset indexval float 4 little [1] max [1] compact",
                               "dataset idele integer 4 little [2] max [2] compact",
                               "dataset fid integer 4 little [2] max [2] compact",
                               "dataset eloc float 4 little [4, 2] max [4, 2] compact",
                               "dataset res float 4 little [2, 4, 3, 2] max [2, 4, 3, 2] compact",
                           }));
}
