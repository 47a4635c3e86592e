// SPDX-License-Identifier: BSD-3-Clause
// What connectivities hold, read with plain HDF5 and compared with tables written by hand.
#include <gtest/gtest.h>

#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "layout.hpp"
#include "model_blocks.hpp"

using namespace kob_test;

namespace {

using Longs = std::vector<std::int64_t>;
const char* const path = "/results/singlestate/state000000000012/connectivities/HEXA8/kobblock";

} // namespace

TEST(ConnectivitiesLayout, Names_types_shapes_and_filters)
{
    KobFile file;
    ASSERT_EQ(ConnectivitiesBlock::sample().write(file.handle(), 12, {.filter_flags = 255, .float_size = 4}), 0);
    file.close();
    const std::string filtered = " scaleoffset(integer 0) shuffle deflate(6) fill 10000";
    EXPECT_EQ(layout_of(file.path(), path),
              table({
                  "attribute block integer 4 little scalar",
                  "attribute blocktype text 256 space scalar",
                  "attribute etyp text 256 space scalar",
                  "attribute etypelem text 256 space scalar",
                  "attribute etyppart text 256 space scalar",
                  "attribute etypnode text 256 space scalar",
                  "attribute nele integer 4 little scalar",
                  "attribute npele integer 4 little scalar",
                  "attribute ndim integer 4 little scalar",
                  "attribute nbint integer 4 little scalar",
                  "attribute nbfloat integer 4 little scalar",
                  "attribute etypvar text 256 space scalar",
                  "attribute nindex integer 4 little scalar",
                  "attribute indexic integer 4 little scalar",
                  "dataset indexident integer 4 little [1] max [1] compact",
                  "dataset indexval float 4 little [1] max [1] compact",
                  "dataset idele integer 4 little [4] max [4] compact",
                  "dataset pid integer 4 little [4] max [4] compact",
                  "dataset ic integer 4 little [4, 8] max [4, 8] chunked [4, 8]" + filtered,
                  "dataset iparam integer 4 little [4, 2] max [4, 2] chunked [4, 2]" + filtered,
                  "dataset fparam float 4 little [4, 1] max [4, 1] compact",
              }));
}

TEST(ConnectivitiesLayout, A_constant_block_without_parameters)
{
    KobFile file;
    ASSERT_EQ(ConnectivitiesBlock::constant().write(file.handle(), -1), 0);
    file.close();
    EXPECT_EQ(layout_of(file.path(), "/results/constant/connectivities/HEXA8/kobblock"),
              table({
                  "attribute block integer 4 little scalar",
                  "attribute blocktype text 256 space scalar",
                  "attribute etyp text 256 space scalar",
                  "attribute etypelem text 256 space scalar",
                  "attribute etyppart text 256 space scalar",
                  "attribute etypnode text 256 space scalar",
                  "attribute nele integer 4 little scalar",
                  "attribute npele integer 4 little scalar",
                  "attribute ndim integer 4 little scalar",
                  "attribute nbint integer 4 little scalar",
                  "attribute nbfloat integer 4 little scalar",
                  "attribute nindex integer 4 little scalar",
                  "attribute indexic integer 4 little scalar",
                  "dataset idele integer 4 little [4] max [4] compact",
                  "dataset pid integer 4 little [4] max [4] compact",
                  "dataset ic integer 4 little [4, 8] max [4, 8] compact",
              }));
}

TEST(ConnectivitiesLayout, Every_item_holds_its_argument)
{
    KobFile file;
    ASSERT_EQ(ConnectivitiesBlock::sample().write(file.handle(), 12), 0);
    file.close();
    const auto opened = open_file(file.path());
    const auto block = open_group(opened, path);
    EXPECT_EQ(attribute_names(block),
              (std::vector<std::string>{"block", "blocktype", "etyp", "etypelem", "etyppart", "etypnode", "nele",
                                        "npele", "ndim", "nbint", "nbfloat", "etypvar", "nindex", "indexic"}));
    EXPECT_EQ(stored_ints(block, "block"), Longs{300});
    EXPECT_EQ(stored_text(block, "blocktype"), "connectivities" + std::string(242, '\0'));
    EXPECT_EQ(trimmed(stored_text(block, "etyp")), "ELEMENT");
    EXPECT_EQ(trimmed(stored_text(block, "etypelem")), "HEXA8");
    EXPECT_EQ(trimmed(stored_text(block, "etyppart")), "PART");
    EXPECT_EQ(trimmed(stored_text(block, "etypnode")), "NODE");
    EXPECT_EQ(trimmed(stored_text(block, "etypvar")), "THICKNESS");
    EXPECT_EQ(stored_ints(block, "nele"), Longs{4});
    EXPECT_EQ(stored_ints(block, "npele"), Longs{8});
    EXPECT_EQ(stored_ints(block, "ndim"), Longs{3});
    EXPECT_EQ(stored_ints(block, "nbint"), Longs{2});
    EXPECT_EQ(stored_ints(block, "nbfloat"), Longs{1});
    EXPECT_EQ(stored_ints(block, "nindex"), Longs{1});
    EXPECT_EQ(stored_ints(block, "indexic"), Longs{5});
    EXPECT_EQ(stored_ints(block, "indexident"), Longs{12});
    EXPECT_EQ(stored_reals(block, "indexval"), std::vector<double>{0.1});
    EXPECT_EQ(stored_ints(block, "idele"), (Longs{101, 102, 103, 104}));
    EXPECT_EQ(stored_ints(block, "pid"), (Longs{1, 1, 2, 2}));
    EXPECT_EQ(stored_ints(block, "ic")[31], 1031);
    EXPECT_EQ(stored_ints(block, "iparam"), (Longs{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(stored_reals(block, "fparam"), (std::vector<double>{0.1, 0.2, 0.3, 0.4}));
}
