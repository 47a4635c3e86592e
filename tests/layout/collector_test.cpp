// SPDX-License-Identifier: BSD-3-Clause
// What a collector block holds.
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
    "attribute etypcoll text 256 space scalar",
    "attribute ncoll integer 4 little scalar",
    "attribute ntyp integer 4 little scalar",
    "attribute nenttot integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute indexic integer 4 little scalar",
});

Hid written(const KobFile& file, Collector b, const std::string& path)
{
    EXPECT_EQ(b.write(file.handle()), 0) << b.errors;
    return open_group(file.handle(), path);
}

TEST(CollectorLayout, Of_a_state)
{
    const KobFile file;
    Collector b;
    b.set_state();
    b.ncoll = 2;
    b.ntyp = 2;
    b.idcoll = {1, 5};
    b.etyp = {"NODE", "ELEMENT"};
    b.nent = {3, 0, 1, 2};
    b.entid = {11, 12, 13, 14, 901, 902};
    const auto block = written(file, b, "singlestate/state000000000012/collector/SET/kobblock");
    EXPECT_EQ(layout_of(block), attributes + table({
                                                 "dataset entid integer 4 little [6] max [6] compact",
                                                 "dataset etyp text 256 space [2] max [2] compact",
                                                 "dataset idcoll integer 4 little [2] max [2] compact",
                                                 "dataset indexident integer 4 little [1] max [1] compact",
                                                 "dataset indexval float 8 little [1] max [1] compact",
                                                 "dataset nent integer 4 little [2, 2] max [2, 2] compact",
                                             }));
    EXPECT_THAT(attribute_names(block),
                ElementsAre("block", "blocktype", "etypcoll", "ncoll", "ntyp", "nenttot", "nindex", "indexic"));
    EXPECT_THAT(stored_ints(block, "block"), ElementsAre(400));
    EXPECT_EQ(stored_text(block, "blocktype"), "collector" + std::string(247, '\0'));
    EXPECT_EQ(stored_text(block, "etypcoll"), Text256{"SET"}.field());
    EXPECT_THAT(stored_ints(block, "ncoll"), ElementsAre(2));
    EXPECT_THAT(stored_ints(block, "ntyp"), ElementsAre(2));
    EXPECT_THAT(stored_ints(block, "nenttot"), ElementsAre(6));
    EXPECT_THAT(stored_ints(block, "nindex"), ElementsAre(1));
    EXPECT_THAT(stored_ints(block, "indexic"), ElementsAre(3));
    EXPECT_THAT(stored_ints(block, "indexident"), ElementsAre(12));
    EXPECT_THAT(stored_reals(block, "indexval"), ElementsAre(0.5));
    EXPECT_THAT(stored_ints(block, "idcoll"), ElementsAre(1, 5));
    EXPECT_EQ(stored_text(block, "etyp"),
              std::string{Text256{"NODE"}.field()} + std::string{Text256{"ELEMENT"}.field()});
    EXPECT_THAT(stored_ints(block, "nent"), ElementsAre(3, 0, 1, 2));
    EXPECT_THAT(stored_ints(block, "entid"), ElementsAre(11, 12, 13, 14, 901, 902));
}

TEST(CollectorLayout, Constant_and_empty)
{
    const KobFile file;
    const auto block = written(file, {}, "constant/collector/SET/kobblock");
    EXPECT_EQ(layout_of(block), attributes);
    EXPECT_THAT(stored_ints(block, "nenttot"), ElementsAre(0));
}

TEST(CollectorLayout, With_every_filter)
{
    const KobFile file;
    Collector b;
    b.set_long_index();
    b.ncoll = 8;
    b.ntyp = 8;
    b.idcoll = Ints(8, 1);
    b.etyp = {"A", "B", "C", "D", "E", "F", "G", "H"};
    b.nent = Ints(64, 1);
    b.entid = Ints(64, 2);
    b.filter_flags = 255;
    b.filter_params = filter_settings;
    b.float_size = 4;
    EXPECT_EQ(layout_of(written(file, b, "singlestate/state000000000005/collector/SET/kobblock")),
              attributes +
                  table({
                      "dataset entid integer 4 little [64] max [64] chunked [64] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset etyp text 256 space [8] max [8] chunked [8] shuffle deflate(6)",
                      "dataset idcoll integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset indexident integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset indexval float 4 little [8] max [8] chunked [8] shuffle deflate(6)",
                      "dataset nent integer 4 little [8, 8] max [8, 8] chunked [8, 8] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                  }));
}

} // namespace
