// SPDX-License-Identifier: BSD-3-Clause
// What a block of entity results of a series holds, however its states came in.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/layout.hpp"
#include "support/result_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "multistate/TIME/multientityresults/NODE/DISPLACEMENT/ZONE5/kobblock";

void expect_fine(const Outcome& outcome) { ASSERT_EQ(outcome.status, 0) << outcome.errors; }

const std::string attributes = table({
    "attribute block integer 4 little scalar",
    "attribute blocktype text 256 space scalar",
    "attribute series text 256 space scalar",
    "attribute etyp text 256 space scalar",
    "attribute nent integer 4 little scalar",
    "attribute etypvar text 256 space scalar",
    "attribute ncoo integer 4 little scalar",
    "attribute etypzone text 256 space scalar",
    "attribute zoneid integer 4 little scalar",
    "attribute etypframe text 256 space scalar",
    "attribute fswitch integer 4 little scalar",
    "attribute dmpswitch integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute nstate integer 4 little scalar",
});

std::string small_block(int states)
{
    const std::string n = std::to_string(states);
    return attributes + table({
                            "dataset indexident integer 4 little [" + n + ", 1] max [unlimited, 1] chunked [1, 1]",
                            "dataset indexval float 8 little [" + n + ", 1] max [unlimited, 1] chunked [1, 1]",
                            "dataset entid integer 4 little [3] max [3] compact",
                            "dataset fidglob integer 4 little scalar compact",
                            "dataset res float 8 little [" + n + ", 3, 2] max [unlimited, 3, 2] chunked [1, 3, 2]",
                        });
}

struct ChunkSize {
    explicit ChunkSize(std::int32_t size) { KOB_SET_CHUNK_SIZE(&size); }
    ~ChunkSize()
    {
        const std::int32_t initial = 1;
        KOB_SET_CHUNK_SIZE(&initial);
    }
};

} // namespace

TEST(MultiEntityResultsLayout, ARunOfStates)
{
    KobFile file;
    const MultiEntityResults written{3};
    expect_fine(written.write(file));
    const auto block = file.block(place);
    EXPECT_EQ(layout_of(block), small_block(3));
    EXPECT_EQ(attribute_names(block),
              (std::vector<std::string>{"block", "blocktype", "series", "etyp", "nent", "etypvar", "ncoo", "etypzone",
                                        "zoneid", "etypframe", "fswitch", "dmpswitch", "nindex", "nstate"}));
    const std::vector<std::pair<std::string, std::int64_t>> numbers{{"block", 1050}, {"nent", 3},    {"ncoo", 2},
                                                                    {"zoneid", 5},   {"fswitch", 0}, {"dmpswitch", 0},
                                                                    {"nindex", 1},   {"nstate", 3}};
    for (const auto& [name, value] : numbers) EXPECT_EQ(stored_ints(block, name), std::vector<std::int64_t>{value});
    EXPECT_EQ(stored_text(block, "blocktype"), "multientityresults" + std::string(238, '\0'));
    EXPECT_EQ(stored_text(block, "series"), Text256{"TIME"}.field());
    EXPECT_EQ(stored_text(block, "etyp"), Text256{"NODE"}.field());
    EXPECT_EQ(stored_text(block, "etypvar"), Text256{"DISPLACEMENT"}.field());
    EXPECT_EQ(stored_text(block, "etypzone"), Text256{"ZONE"}.field());
    EXPECT_EQ(stored_text(block, "etypframe"), Text256{"GLOBAL"}.field());
    EXPECT_EQ(stored_ints(block, "entid"), (std::vector<std::int64_t>{11, 12, 13}));
    EXPECT_EQ(stored_ints(block, "fidglob"), (std::vector<std::int64_t>{33}));
    EXPECT_EQ(stored_ints(block, "indexident"), (std::vector<std::int64_t>{10, 20, 30}));
    EXPECT_EQ(stored_reals(block, "indexval"), (std::vector<double>{0, 0.25, 0.5}));
    EXPECT_EQ(stored_reals(block, "res"), written.res);
}

TEST(MultiEntityResultsLayout, TheSameFromARunAndSingleStatesAndSelections)
{
    const MultiEntityResults six{6};
    for (const int way : {0, 1, 2, 3}) {
        SCOPED_TRACE(way);
        KobFile file;
        MultiEntityResults call{1};
        switch (way) {
        case 0:
            expect_fine(six.write(file));
            break;
        case 1:
            expect_fine(call.write(file));
            for (std::int32_t row = 1; row < 6; ++row) expect_fine(call.one_at(row).write(file));
            break;
        case 2:
            expect_fine(call.hold(4, 2).select(1, {4, 3, 2}, {2, 0, 0}).write_c(file));
            expect_fine(call.hold(2, 0).select(1, {2, 3, 2}, {0, 0, 0}).write_c(file));
            break;
        default:
            call.hold(6);
            std::vector<std::int64_t> all;
            for (std::int64_t row = 0; row < 6; ++row) {
                for (std::int64_t entity = 0; entity < 3; ++entity) {
                    for (std::int64_t component = 0; component < 2; ++component) {
                        all.insert(all.end(), {row, entity, component});
                    }
                }
            }
            expect_fine(call.select(2, {36}, all).write_c(file));
            break;
        }
        const auto block = file.block(place);
        EXPECT_EQ(layout_of(block), small_block(6));
        EXPECT_EQ(stored_ints(block, "nstate"), (std::vector<std::int64_t>{6}));
        EXPECT_EQ(stored_ints(block, "indexident"), (std::vector<std::int64_t>{10, 20, 30, 40, 50, 60}));
        EXPECT_EQ(stored_reals(block, "res"), six.res);
    }
}

TEST(MultiEntityResultsLayout, EverythingWithEveryFilter)
{
    KobFile file;
    MultiEntityResults block{2};
    block.nent = 2003; // one row is left over in chunks of 1001, more in any other from 1000 to 2000
    block.ncoo = 9;
    block.nindex = 5;
    block.fswitch = 1;
    block.dmpswitch = 1;
    block.hold(2);
    block.entid.assign(2003, 3);
    block.fid.assign(2003, 4);
    block.operators = Texts256(9);
    block.weight.assign(2003, 1);
    block.value_size = 4;
    block.filter_flags = 255;
    block.filter_params = {3, 6};
    expect_fine(block.write(file));
    expect_fine(block.one_at(2).write(file));
    EXPECT_EQ(
        layout_of(file.block(place)),
        attributes +
            table({
                "dataset indexident integer 4 little [3, 5] max [unlimited, 5] chunked [1, 5] scaleoffset(integer 0) "
                "shuffle deflate(6) fill 10000",
                "dataset indexval float 4 little [3, 5] max [unlimited, 5] chunked [1, 5] shuffle deflate(6)",
                "dataset entid integer 4 little [2003] max [2003] chunked [2003] scaleoffset(integer 0) shuffle "
                "deflate(6) fill 10000",
                "dataset fid integer 4 little [2003] max [2003] chunked [2003] scaleoffset(integer 0) shuffle "
                "deflate(6) fill 10000",
                "dataset operator text 256 space [9] max [9] chunked [9] shuffle deflate(6)",
                "dataset weight float 4 little [2003] max [2003] chunked [2003] shuffle deflate(6)",
                "dataset res float 4 little [3, 2003, 9] max [unlimited, 2003, 9] chunked [1, 1001, 9] "
                "scaleoffset(decimal 3) shuffle deflate(6) fill 10000",
            }));
}

TEST(MultiEntityResultsLayout, LargeUnfilteredStaticData)
{
    KobFile file;
    MultiEntityResults block{1};
    block.nent = 20000;
    block.ncoo = 3;
    block.dmpswitch = 1;
    block.operators = Texts256(3);
    block.entid.assign(20000, 3);
    block.weight.assign(20000, 3);
    block.hold(1);
    expect_fine(block.write(file));
    EXPECT_EQ(layout_of(file.block(place)),
              attributes +
                  table({
                      "dataset indexident integer 4 little [1, 1] max [unlimited, 1] chunked [1, 1]",
                      "dataset indexval float 8 little [1, 1] max [unlimited, 1] chunked [1, 1]",
                      "dataset entid integer 4 little [20000] max [20000] contiguous",
                      "dataset fidglob integer 4 little scalar compact",
                      "dataset operator text 256 space [3] max [3] compact",
                      "dataset weight float 8 little [20000] max [20000] contiguous",
                      "dataset res float 8 little [1, 20000, 3] max [unlimited, 20000, 3] chunked [1, 1000, 3]",
                  }));
}

TEST(MultiEntityResultsLayout, ComplexAndAChunkOfStates)
{
    for (const std::int32_t size : {16, 32}) {
        const ChunkSize restored{64};
        KobFile file;
        expect_fine(MultiEntityResults{2, size}.write(file));
        const std::string number = size == 16 ? "4" : "8";
        EXPECT_EQ(layout_of(file.block(place)),
                  attributes +
                      table({
                          "dataset indexident integer 4 little [2, 1] max [unlimited, 1] chunked [64, 1]",
                          "dataset indexval float " + number + " little [2, 1] max [unlimited, 1] chunked [64, 1]",
                          "dataset entid integer 4 little [3] max [3] compact",
                          "dataset fidglob integer 4 little scalar compact",
                          "dataset res float " + number +
                              " little [2, 3, 2, 2] max [unlimited, 3, 2, 2] chunked [64, 3, 2, 2]",
                      }));
        EXPECT_EQ(stored_ints(file.block(place), "block"), (std::vector<std::int64_t>{1051}));
    }
}

TEST(MultiEntityResultsLayout, FourByteInputStoresWhatTheValueSizeSays)
{
    KobFile file;
    expect_fine(MultiEntityResults{2, 8 + four_byte_memory}.write(file));
    EXPECT_EQ(layout_of(file.block(place)), small_block(2));
}

TEST(MultiEntityResultsLayout, ASeriesOfMoreThanTwoToThe31Values)
{
    KobFile file;
    MultiEntityResults block{1};
    block.nent = 1000;
    block.ncoo = 3;
    block.entid.assign(1000, 1);
    block.hold(1);
    expect_fine(block.write(file));
    expect_fine(block.one_at(1000000).write(file));
    const auto group = file.block(place);
    EXPECT_EQ(stored_extents(group, "res"), (std::vector<hsize_t>{1000001, 1000, 3}));
    EXPECT_EQ(stored_ints(group, "nstate"), (std::vector<std::int64_t>{1000001}));
    auto got = block;
    got.nstate = 1000000;
    got.res.assign(3000, -1);
    got.indexident = {-1};
    EXPECT_EQ(got.read_c(group, 4).status, 1050);
    EXPECT_EQ(got.res, block.res);
    EXPECT_EQ(got.indexident, block.indexident);
    got.nstate = 500000;
    EXPECT_EQ(got.read_c(group, 4).status, 1050);
    EXPECT_EQ(got.res, std::vector<double>(3000, 0));
    EXPECT_EQ(got.indexident, (std::vector<std::int32_t>{0}));
}
