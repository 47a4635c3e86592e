// SPDX-License-Identifier: BSD-3-Clause
// What variable groups and variables hold, read with plain HDF5 and compared with tables written by hand.
#include <gtest/gtest.h>

#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "layout.hpp"
#include "model_blocks.hpp"

using namespace kob_test;

namespace {

using Longs = std::vector<std::int64_t>;

const std::string variable_attributes = R"(attribute block integer 4 little scalar
attribute blocktype text 256 space scalar
attribute lenb integer 4 little scalar
attribute lend integer 4 little scalar
attribute lvmap integer 4 little scalar
attribute ncoo integer 4 little scalar
attribute ndim integer 4 little scalar
attribute rank integer 4 little scalar
attribute subslen integer 4 little scalar
attribute tensor integer 4 little scalar
attribute type text 256 space scalar
attribute varclass text 256 space scalar
attribute varkey text 256 space scalar
attribute varnam text 256 space scalar
)";

} // namespace

TEST(VariableGroupLayout, Names_types_and_shapes)
{
    KobFile file;
    ASSERT_EQ(VariableGroupBlock::sample().write(file.handle(), {.filter_flags = 255}), 0);
    ASSERT_EQ(VariableGroupBlock::large().write(file.handle(), {.filter_flags = 255}), 0);
    file.close();
    const std::string attributes = table({
        "attribute block integer 4 little scalar",
        "attribute blocktype text 256 space scalar",
        "attribute etypvar text 256 space scalar",
        "attribute nvar integer 4 little scalar",
        "attribute ncoo integer 4 little scalar",
    });
    EXPECT_EQ(layout_of(file.path(), "/results/constant/variablegroup/DISPLACEMENT/kobblock"),
              attributes + table({
                               "dataset cnt integer 4 little [2] max [2] compact",
                               "dataset offs integer 4 little [2] max [2] compact",
                               "dataset varkey text 256 space [2] max [2] compact",
                           }));
    const std::string integers =
        " integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle deflate(6) fill 10000";
    EXPECT_EQ(layout_of(file.path(), "/results/constant/variablegroup/MANY/kobblock"),
              attributes + table({
                               "dataset cnt" + integers,
                               "dataset offs" + integers,
                               "dataset varkey text 256 space [8] max [8] chunked [8] shuffle deflate(6)",
                           }));
}

TEST(VariableGroupLayout, Every_item_holds_its_argument)
{
    KobFile file;
    ASSERT_EQ(VariableGroupBlock::sample().write(file.handle()), 0);
    file.close();
    const auto opened = open_file(file.path());
    const auto block = open_group(opened, "/results/constant/variablegroup/DISPLACEMENT/kobblock");
    EXPECT_EQ(attribute_names(block), (std::vector<std::string>{"block", "blocktype", "etypvar", "nvar", "ncoo"}));
    EXPECT_EQ(stored_ints(block, "block"), Longs{32});
    EXPECT_EQ(stored_text(block, "blocktype"), "variablegroup" + std::string(243, '\0'));
    EXPECT_EQ(trimmed(stored_text(block, "etypvar")), "DISPLACEMENT");
    EXPECT_EQ(stored_ints(block, "nvar"), Longs{2});
    EXPECT_EQ(stored_ints(block, "ncoo"), Longs{6});
    EXPECT_EQ(stored_ints(block, "cnt"), (Longs{3, 4}));
    EXPECT_EQ(stored_ints(block, "offs"), (Longs{0, 3}));
    EXPECT_EQ(stored_text(block, "varkey").substr(256, 10), "ROTATION  ");
}

TEST(VariableLayout, Names_types_and_shapes)
{
    KobFile file;
    ASSERT_EQ(VariableBlock::sample().write(file.handle(), {.filter_flags = 255, .float_size = 4}), 0);
    file.close();
    EXPECT_EQ(layout_of(file.path(), "/results/constant/variable/STRESS/kobblock"),
              variable_attributes + table({
                                        "dataset mbunit integer 4 little [3] max [3] compact",
                                        "dataset mdunit integer 4 little [3] max [3] compact",
                                        "dataset ubid integer 4 little [3] max [3] compact",
                                        "dataset ubexp float 4 little [3] max [3] compact",
                                        "dataset udid integer 4 little [2] max [2] compact",
                                        "dataset udexp float 4 little [2] max [2] compact",
                                        "dataset subscr text 1 space [6] max [6] compact",
                                        "dataset subscnt integer 4 little [3] max [3] compact",
                                        "dataset subsoffs integer 4 little [3] max [3] compact",
                                        "dataset vmap float 4 little [3, 3, 3] max [3, 3, 3] chunked [3, 3, 3] "
                                        "scaleoffset(decimal 3) shuffle deflate(6) fill 10000",
                                    }));
}

TEST(VariableLayout, Scale_offset_does_not_reach_the_exponents)
{
    KobFile file;
    ASSERT_EQ(VariableBlock::large().write(file.handle(), {.filter_flags = 255}), 0);
    file.close();
    const std::string integers =
        " integer 4 little [9] max [9] chunked [9] scaleoffset(integer 0) shuffle deflate(6) fill 10000";
    const std::string reals = " float 8 little [9] max [9] chunked [9] shuffle deflate(6)";
    EXPECT_EQ(layout_of(file.path(), "/results/constant/variable/NINE/kobblock"),
              variable_attributes + table({
                                        "dataset mbunit" + integers,
                                        "dataset mdunit" + integers,
                                        "dataset ubid" + integers,
                                        "dataset ubexp" + reals,
                                        "dataset udid" + integers,
                                        "dataset udexp" + reals,
                                    }));
}

TEST(VariableLayout, Every_item_holds_its_argument)
{
    KobFile file;
    ASSERT_EQ(VariableBlock::sample().write(file.handle()), 0);
    file.close();
    const auto opened = open_file(file.path());
    const auto block = open_group(opened, "/results/constant/variable/STRESS/kobblock");
    // more attributes than HDF5 keeps in order, were it told to: the old format keeps the order of writing
    EXPECT_EQ(attribute_names(block),
              (std::vector<std::string>{"block", "blocktype", "varkey", "varclass", "varnam", "ncoo", "rank", "ndim",
                                        "tensor", "type", "lenb", "lend", "lvmap", "subslen"}));
    EXPECT_EQ(stored_ints(block, "block"), Longs{30});
    EXPECT_EQ(stored_text(block, "blocktype"), "variable" + std::string(248, '\0'));
    EXPECT_EQ(trimmed(stored_text(block, "varkey")), "STRESS");
    EXPECT_EQ(trimmed(stored_text(block, "varclass")), "field");
    EXPECT_EQ(trimmed(stored_text(block, "varnam")), "Cauchy stress");
    EXPECT_EQ(trimmed(stored_text(block, "type")), "real");
    EXPECT_EQ(stored_ints(block, "ncoo"), Longs{3});
    EXPECT_EQ(stored_ints(block, "rank"), Longs{2});
    EXPECT_EQ(stored_ints(block, "ndim"), Longs{3});
    EXPECT_EQ(stored_ints(block, "tensor"), Longs{4});
    EXPECT_EQ(stored_ints(block, "lenb"), Longs{3});
    EXPECT_EQ(stored_ints(block, "lend"), Longs{2});
    EXPECT_EQ(stored_ints(block, "lvmap"), Longs{1});
    EXPECT_EQ(stored_ints(block, "subslen"), Longs{6});
    EXPECT_EQ(stored_ints(block, "mbunit"), (Longs{1, 2, 0}));
    EXPECT_EQ(stored_ints(block, "mdunit"), (Longs{0, 1, 1}));
    EXPECT_EQ(stored_ints(block, "ubid"), (Longs{11, 12, 13}));
    EXPECT_EQ(stored_reals(block, "ubexp"), (std::vector<double>{1, -1, -2}));
    EXPECT_EQ(stored_ints(block, "udid"), (Longs{21, 22}));
    EXPECT_EQ(stored_reals(block, "udexp"), (std::vector<double>{0.1, 0.5}));
    EXPECT_EQ(stored_text(block, "subscr"), "xxyyxy");
    EXPECT_EQ(stored_ints(block, "subscnt"), (Longs{2, 2, 2}));
    EXPECT_EQ(stored_ints(block, "subsoffs"), (Longs{0, 2, 4}));
    const auto map = stored_reals(block, "vmap");
    EXPECT_EQ(map[0], 0.1);
    EXPECT_EQ(map[13], 1);
    EXPECT_EQ(map[26], 2);
}
