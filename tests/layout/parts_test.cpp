// SPDX-License-Identifier: BSD-3-Clause
// What a parts block holds.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/kob_file.hpp"
#include "support/layout.hpp"
#include "support/state_blocks.hpp"

using namespace kob_test;
using testing::ElementsAre;

namespace {

const std::string attributes = table({
    "attribute block integer 4 little scalar",
    "attribute blocktype text 256 space scalar",
    "attribute etyppart text 256 space scalar",
    "attribute npart integer 4 little scalar",
    "attribute off integer 4 little scalar",
    "attribute length integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute indexic integer 4 little scalar",
});

Hid written(const KobFile& file, Parts b, const std::string& path)
{
    EXPECT_EQ(b.write(file.handle()), 0) << b.errors;
    return open_group(file.handle(), path);
}

TEST(PartsLayout, Of_a_state_with_all_columns)
{
    const KobFile file;
    Parts b;
    b.set_state();
    b.npart = 2;
    b.length = 5;
    b.pid = {7, 9};
    b.title = "wheeldoor ";
    b.mid = {70, 90};
    b.mtyp = {71, 91};
    b.pcol = {72, 92};
    const auto block = written(file, b, "singlestate/state000000000012/parts/PART/kobblock");
    EXPECT_EQ(layout_of(block), attributes + table({
                                                 "dataset indexident integer 4 little [1] max [1] compact",
                                                 "dataset indexval float 8 little [1] max [1] compact",
                                                 "dataset mid integer 4 little [2] max [2] compact",
                                                 "dataset mtyp integer 4 little [2] max [2] compact",
                                                 "dataset pcol integer 4 little [2] max [2] compact",
                                                 "dataset pid integer 4 little [2] max [2] compact",
                                                 "dataset title text 5 space [2] max [2] compact",
                                             }));
    EXPECT_THAT(attribute_names(block),
                ElementsAre("block", "blocktype", "etyppart", "npart", "off", "length", "nindex", "indexic"));
    EXPECT_THAT(stored_ints(block, "block"), ElementsAre(100));
    EXPECT_EQ(stored_text(block, "blocktype"), "parts" + std::string(251, '\0'));
    EXPECT_EQ(stored_text(block, "etyppart"), Text256{"PART"}.field());
    EXPECT_THAT(stored_ints(block, "npart"), ElementsAre(2));
    EXPECT_THAT(stored_ints(block, "off"), ElementsAre(0));
    EXPECT_THAT(stored_ints(block, "length"), ElementsAre(5));
    EXPECT_THAT(stored_ints(block, "nindex"), ElementsAre(1));
    EXPECT_THAT(stored_ints(block, "indexic"), ElementsAre(3));
    EXPECT_THAT(stored_ints(block, "indexident"), ElementsAre(12));
    EXPECT_THAT(stored_reals(block, "indexval"), ElementsAre(0.5));
    EXPECT_THAT(stored_ints(block, "pid"), ElementsAre(7, 9));
    EXPECT_EQ(stored_text(block, "title"), "wheeldoor ");
    EXPECT_THAT(stored_ints(block, "mid"), ElementsAre(70, 90));
    EXPECT_THAT(stored_ints(block, "mtyp"), ElementsAre(71, 91));
    EXPECT_THAT(stored_ints(block, "pcol"), ElementsAre(72, 92));
}

TEST(PartsLayout, Constant_with_identifiers_alone)
{
    const KobFile file;
    Parts b;
    b.npart = 1;
    b.off = 7;
    b.length = -2;
    b.pid = {7};
    const auto block = written(file, b, "constant/parts/PART/kobblock");
    EXPECT_EQ(layout_of(block), attributes + table({"dataset pid integer 4 little [1] max [1] compact"}));
    EXPECT_THAT(stored_ints(block, "off"), ElementsAre(7));
    EXPECT_THAT(stored_ints(block, "length"), ElementsAre(-2));
}

TEST(PartsLayout, With_every_filter)
{
    const KobFile file;
    Parts b;
    b.set_long_index();
    b.npart = 8;
    b.length = 80;
    b.pid = b.mid = b.mtyp = b.pcol = {1, 2, 3, 4, 5, 6, 7, 8};
    b.title = std::string(640, 't');
    b.filter_flags = 255;
    b.filter_params = filter_settings;
    b.float_size = 4;
    EXPECT_EQ(layout_of(written(file, b, "singlestate/state000000000005/parts/PART/kobblock")),
              attributes +
                  table({
                      "dataset indexident integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset indexval float 4 little [8] max [8] chunked [8] shuffle deflate(6)",
                      "dataset mid integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle deflate(6) "
                      "fill 10000",
                      "dataset mtyp integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle deflate(6) "
                      "fill 10000",
                      "dataset pcol integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle deflate(6) "
                      "fill 10000",
                      "dataset pid integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle deflate(6) "
                      "fill 10000",
                      "dataset title text 80 space [8] max [8] chunked [8] shuffle deflate(6)",
                  }));
}

TEST(PartsLayout, Many_parts_leave_the_object_header)
{
    const KobFile file;
    Parts b;
    b.off = 6;
    b.npart = 6001; // 24004 bytes
    b.pid = b.mid = Ints(6001, 3);
    EXPECT_EQ(layout_of(written(file, b, "constant/parts/PART/kobblock")),
              attributes + table({
                               "dataset mid integer 4 little [6001] max [6001] contiguous",
                               "dataset pid integer 4 little [6001] max [6001] contiguous",
                           }));
    b.etyppart = "OTHER";
    b.npart = 6000; // 24000 bytes
    EXPECT_EQ(layout_of(written(file, b, "constant/parts/OTHER/kobblock")),
              attributes + table({
                               "dataset mid integer 4 little [6000] max [6000] compact",
                               "dataset pid integer 4 little [6000] max [6000] compact",
                           }));
}

} // namespace
