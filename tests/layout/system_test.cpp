// SPDX-License-Identifier: BSD-3-Clause
// What a system block holds, read with plain HDF5 and compared with tables written by hand.
#include <gtest/gtest.h>

#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "layout.hpp"
#include "model_blocks.hpp"

using namespace kob_test;

namespace {

const char* const path = "/results/constant/system/kobblock";

const std::string attributes = R"(attribute block integer 4 little scalar
attribute blocktype text 256 space scalar
attribute cdate text 8 space scalar
attribute ctime text 8 space scalar
attribute mdate text 8 space scalar
attribute mtime text 8 space scalar
attribute nbunit integer 4 little scalar
attribute ndunit integer 4 little scalar
attribute solver_name text 256 space scalar
attribute solver_vers text 256 space scalar
attribute sys text 256 space scalar
attribute title text 256 space scalar
)";

} // namespace

TEST(SystemLayout, Small_arrays_are_compact_and_unfiltered_whatever_the_flags_say)
{
    KobFile file;
    ASSERT_EQ(SystemBlock::sample().write(file.handle(), {.filter_flags = 255}), 0);
    file.close();
    EXPECT_EQ(layout_of(file.path(), path), attributes + table({
                                                             "dataset ubid integer 4 little [3] max [3] compact",
                                                             "dataset ubtyp text 256 space [3] max [3] compact",
                                                             "dataset ubnam text 256 space [3] max [3] compact",
                                                             "dataset ubshift float 8 little [3] max [3] compact",
                                                             "dataset ubcon float 8 little [3] max [3] compact",
                                                             "dataset udid integer 4 little [2] max [2] compact",
                                                             "dataset udnam text 256 space [2] max [2] compact",
                                                             "dataset udscal float 8 little [2] max [2] compact",
                                                             "dataset ndbunit integer 4 little [2] max [2] compact",
                                                             "dataset udbid integer 4 little [5] max [5] compact",
                                                             "dataset udbexp float 8 little [5] max [5] compact",
                                                         }));
}

TEST(SystemLayout, Larger_arrays_are_filtered_but_no_float_by_scale_offset)
{
    KobFile file;
    ASSERT_EQ(SystemBlock::large().write(file.handle(), {.filter_flags = 255, .float_size = 4}), 0);
    file.close();
    const std::string integers =
        " integer 4 little [9] max [9] chunked [9] scaleoffset(integer 0) shuffle deflate(6) fill 10000";
    const std::string texts = " text 256 space [9] max [9] chunked [9] shuffle deflate(6)";
    const std::string reals = " float 4 little [9] max [9] chunked [9] shuffle deflate(6)";
    EXPECT_EQ(layout_of(file.path(), path), attributes + table({
                                                             "dataset ubid" + integers,
                                                             "dataset ubtyp" + texts,
                                                             "dataset ubnam" + texts,
                                                             "dataset ubshift" + reals,
                                                             "dataset ubcon" + reals,
                                                             "dataset udid" + integers,
                                                             "dataset udnam" + texts,
                                                             "dataset udscal" + reals,
                                                             "dataset ndbunit" + integers,
                                                             "dataset udbid" + integers,
                                                             "dataset udbexp" + reals,
                                                         }));
}

TEST(SystemLayout, Every_item_holds_its_argument)
{
    KobFile file;
    ASSERT_EQ(SystemBlock::sample().write(file.handle()), 0);
    file.close();
    const auto opened = open_file(file.path());
    const auto block = open_group(opened, path);
    EXPECT_EQ(attribute_names(block),
              (std::vector<std::string>{"block", "blocktype", "title", "sys", "solver_name", "solver_vers", "cdate",
                                        "ctime", "mdate", "mtime", "nbunit", "ndunit"}));
    EXPECT_EQ(stored_ints(block, "block"), std::vector<std::int64_t>{10});
    EXPECT_EQ(stored_text(block, "blocktype"), "system" + std::string(250, '\0'));
    EXPECT_EQ(trimmed(stored_text(block, "title")), "Cantilever");
    EXPECT_EQ(trimmed(stored_text(block, "sys")), "workshop");
    EXPECT_EQ(trimmed(stored_text(block, "solver_name")), "solver");
    EXPECT_EQ(stored_text(block, "solver_vers"), "7.1" + std::string(253, ' '));
    EXPECT_EQ(stored_text(block, "cdate"), "03.02.24");
    EXPECT_EQ(stored_text(block, "ctime"), "10:11:12");
    EXPECT_EQ(stored_text(block, "mdate"), "04.02.24");
    EXPECT_EQ(stored_text(block, "mtime"), "20:21:22");
    EXPECT_EQ(stored_ints(block, "nbunit"), std::vector<std::int64_t>{3});
    EXPECT_EQ(stored_ints(block, "ndunit"), std::vector<std::int64_t>{2});
    EXPECT_EQ(stored_ints(block, "ubid"), (std::vector<std::int64_t>{11, 12, 13}));
    EXPECT_EQ(stored_text(block, "ubtyp").substr(256, 8), "length  ");
    EXPECT_EQ(stored_text(block, "ubnam").substr(512, 8), "s       ");
    EXPECT_EQ(stored_reals(block, "ubshift"), (std::vector<double>{0, 0.5, 273.15}));
    EXPECT_EQ(stored_reals(block, "ubcon"), (std::vector<double>{1, 1000, 0.1}));
    EXPECT_EQ(stored_ints(block, "udid"), (std::vector<std::int64_t>{21, 22}));
    EXPECT_EQ(stored_text(block, "udnam").substr(256, 8), "Pa      ");
    EXPECT_EQ(stored_reals(block, "udscal"), (std::vector<double>{1, 1e6}));
    EXPECT_EQ(stored_ints(block, "ndbunit"), (std::vector<std::int64_t>{3, 2}));
    EXPECT_EQ(stored_ints(block, "udbid"), (std::vector<std::int64_t>{11, 12, 13, 11, 13}));
    EXPECT_EQ(stored_reals(block, "udbexp"), (std::vector<double>{1, 1, -2, 1, -2}));
}
