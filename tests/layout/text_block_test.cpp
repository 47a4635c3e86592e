// SPDX-License-Identifier: BSD-3-Clause
// What a text block holds.
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
    "attribute etyptext text 256 space scalar",
    "attribute nlines integer 4 little scalar",
    "attribute length integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute indexic integer 4 little scalar",
});

/// Writes the block and returns its group.
Hid written(const KobFile& file, TextBlock b, const std::string& path)
{
    EXPECT_EQ(b.write(file.handle()), 0) << b.errors;
    return open_group(file.handle(), path);
}

TEST(TextBlockLayout, Of_a_state)
{
    const KobFile file;
    TextBlock b;
    b.set_state();
    b.nlines = 2;
    b.length = 6;
    b.line = "one   two   ";
    const auto block = written(file, b, "singlestate/state000000000012/text/log/kobblock");
    EXPECT_EQ(layout_of(block), attributes + table({
                                                 "dataset indexident integer 4 little [1] max [1] compact",
                                                 "dataset indexval float 8 little [1] max [1] compact",
                                                 "dataset line text 6 space [2] max [2] compact",
                                             }));
    EXPECT_THAT(attribute_names(block),
                ElementsAre("block", "blocktype", "etyptext", "nlines", "length", "nindex", "indexic"));
    EXPECT_THAT(stored_ints(block, "block"), ElementsAre(40));
    EXPECT_EQ(stored_text(block, "blocktype"), "text" + std::string(252, '\0'));
    EXPECT_EQ(stored_text(block, "etyptext"), Text256{"log"}.field());
    EXPECT_THAT(stored_ints(block, "nlines"), ElementsAre(2));
    EXPECT_THAT(stored_ints(block, "length"), ElementsAre(6));
    EXPECT_THAT(stored_ints(block, "nindex"), ElementsAre(1));
    EXPECT_THAT(stored_ints(block, "indexic"), ElementsAre(3));
    EXPECT_THAT(stored_ints(block, "indexident"), ElementsAre(12));
    EXPECT_THAT(stored_reals(block, "indexval"), ElementsAre(0.5));
    EXPECT_EQ(stored_text(block, "line"), "one   two   ");
}

TEST(TextBlockLayout, Constant_without_lines)
{
    const KobFile file;
    TextBlock b;
    b.indexic = 9;
    const auto block = written(file, b, "constant/text/log/kobblock");
    EXPECT_EQ(layout_of(block), attributes);
    EXPECT_THAT(stored_ints(block, "nindex"), ElementsAre(0));
    EXPECT_THAT(stored_ints(block, "indexic"), ElementsAre(9));
}

TEST(TextBlockLayout, With_every_filter)
{
    const KobFile file;
    TextBlock b;
    b.set_long_index();
    b.nlines = 8;
    b.length = 3;
    b.line = "abcdefghijklmnopqrstuvwx";
    b.filter_flags = 255;
    b.filter_params = filter_settings;
    b.float_size = 4;
    EXPECT_EQ(layout_of(written(file, b, "singlestate/state000000000005/text/log/kobblock")),
              attributes + table({
                               "dataset indexident integer 4 little [8] max [8] chunked [8] "
                               "scaleoffset(integer 0) shuffle deflate(6) fill 10000",
                               "dataset indexval float 4 little [8] max [8] chunked [8] shuffle deflate(6)",
                               "dataset line text 3 space [8] max [8] chunked [8] shuffle deflate(6)",
                           }));
}

TEST(TextBlockLayout, Seven_lines_are_never_filtered)
{
    const KobFile file;
    TextBlock b;
    b.nlines = 7;
    b.length = 3;
    b.line = std::string(21, 'x');
    b.filter_flags = 255;
    b.filter_params = filter_settings;
    EXPECT_EQ(layout_of(written(file, b, "constant/text/log/kobblock")),
              attributes + table({"dataset line text 3 space [7] max [7] compact"}));
}

TEST(TextBlockLayout, Long_texts_leave_the_object_header)
{
    const KobFile file;
    TextBlock b;
    b.nlines = 300;
    b.length = 80;
    b.line = std::string(24080, 'x');
    EXPECT_EQ(layout_of(written(file, b, "constant/text/log/kobblock")),
              attributes + table({"dataset line text 80 space [300] max [300] compact"}));
    b.etyptext = "list";
    b.nlines = 301;
    EXPECT_EQ(layout_of(written(file, b, "constant/text/list/kobblock")),
              attributes + table({"dataset line text 80 space [301] max [301] contiguous"}));
}

} // namespace
