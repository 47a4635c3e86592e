// SPDX-License-Identifier: BSD-3-Clause
// The text block: free text of one kind, constant or for one state.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/kob_file.hpp"
#include "support/state_blocks.hpp"

using namespace kob_test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string constant_path = "constant/text/log/kobblock";

/// Three lines of six characters.
TextBlock three_lines()
{
    TextBlock b;
    b.nlines = 3;
    b.length = 6;
    b.line = "one   two   three ";
    return b;
}

TEST(TextBlock, Comes_back_as_it_was_written)
{
    const KobFile file;
    auto written = three_lines();
    written.set_state();
    written.etyptext = "listing";
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_EQ(written.errors, "");

    auto b = TextBlock::with_room(18);
    const auto block = file.block("singlestate/state000000000012/text/listing/kobblock");
    ASSERT_EQ(b.read(block, 1 + 2 + 8), 0) << b.errors;
    EXPECT_EQ(b.etyptext, "listing");
    EXPECT_EQ(b.nlines, 3);
    EXPECT_EQ(b.length, 6);
    EXPECT_EQ(b.nindex, 1);
    EXPECT_EQ(b.indexic, 3);
    EXPECT_EQ(b.indexident[0], 12);
    EXPECT_EQ(b.indexident[1], untouched_int);
    EXPECT_EQ(b.indexval[0], 0.5);
    EXPECT_EQ(b.indexval[1], untouched_real);
    EXPECT_EQ(b.line, "one   two   three ");
    EXPECT_EQ(b.filter_flags, 0);
    EXPECT_THAT(b.filter_params, ElementsAre(0, 0));
    EXPECT_EQ(b.errors, "");
}

TEST(TextBlock, Each_section_bit_reads_its_part)
{
    const KobFile file;
    auto written = three_lines();
    written.set_state();
    written.state = 40;
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block("singlestate/state000000000040/text/log/kobblock");

    auto b = TextBlock::with_room(18);
    auto expected = b;
    ASSERT_EQ(b.read(block, 1), 0);
    expected.etyptext = "log";
    expected.nlines = 3;
    expected.length = 6;
    expected.nindex = 1;
    expected.indexic = 3;
    EXPECT_EQ(b, unchanged(expected, b)) << "mode 1";

    ASSERT_EQ(b.read(block, 2), 0);
    expected.indexident[0] = 12;
    expected.indexval[0] = 0.5;
    EXPECT_EQ(b, unchanged(expected, b)) << "mode 2";

    ASSERT_EQ(b.read(block, 8), 0);
    expected.line = written.line;
    expected.filter_flags = 0;
    expected.filter_params = {0, 0};
    EXPECT_EQ(b, unchanged(expected, b)) << "mode 8";
}

TEST(TextBlock, A_call_that_reads_nothing_reports_the_key)
{
    const KobFile file;
    auto written = three_lines();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(constant_path);
    for (const std::int32_t mode : {0, 2, 4, 6, 16, 4 + 32}) {
        auto b = TextBlock::with_room(18);
        b.nindex = 0;
        const auto before = b;
        EXPECT_EQ(b.read(block, mode), 40) << mode;
        EXPECT_EQ(b, unchanged(before, b)) << mode;
        EXPECT_EQ(b.errors, "") << mode;
    }
    auto b = TextBlock::with_room(18);
    EXPECT_EQ(b.read(block, 1 + 2), 0) << "the attributes overwrite the key";
}

TEST(TextBlock, Without_lines_nothing_is_stored_for_them)
{
    const KobFile file;
    TextBlock written;
    written.length = 80;
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_FALSE(has_link(open_group(file.handle(), constant_path), "line"));

    auto b = TextBlock::with_room(4);
    EXPECT_EQ(b.read(file.block(constant_path), 1 + 8), 0);
    EXPECT_EQ(b.nlines, 0);
    EXPECT_EQ(b.length, 80);
    EXPECT_EQ(b.line, "####");
    EXPECT_EQ(b.filter_flags, 0);
    EXPECT_THAT(b.filter_params, ElementsAre(0, 0));
}

TEST(TextBlock, Lines_need_a_length)
{
    for (const std::int32_t length : {0, -3}) {
        const KobFile file;
        auto written = three_lines();
        written.length = length;
        EXPECT_EQ(written.write(file.handle()), -3001);
        EXPECT_THAT(written.errors, HasSubstr("KOB INTERNAL ERROR (2) in KOB_H5Dwrite"));
        EXPECT_EQ(stored_ints(open_group(file.handle(), constant_path), "length")[0], length) << "written before";
    }
}

TEST(TextBlock, A_negative_number_of_lines_is_refused_by_the_storage)
{
    const KobFile file;
    auto written = three_lines();
    written.nlines = -1; // the mark of an unlimited extent
    EXPECT_EQ(written.write(file.handle()), -3000);
    EXPECT_THAT(written.errors, HasSubstr("KOB INTERNAL ERROR (1) in KOB_H5Dwrite"));
    EXPECT_FALSE(has_link(open_group(file.handle(), constant_path), "line"));
}

TEST(TextBlock, Lines_are_stored_as_they_are)
{
    const KobFile file;
    TextBlock written;
    written.nlines = 2;
    written.length = 4;
    written.line = std::string{"a\0b\xe9\tcd ", 8};
    ASSERT_EQ(written.write(file.handle()), 0);
    auto b = TextBlock::with_room(8);
    ASSERT_EQ(b.read(file.block(constant_path), 1 + 8), 0);
    EXPECT_EQ(b.line, written.line);
}

TEST(TextBlock, Reading_with_a_smaller_length_fails)
{
    const KobFile file;
    auto written = three_lines();
    ASSERT_EQ(written.write(file.handle()), 0);
    auto b = TextBlock::with_room(18);
    b.nlines = 3;
    b.length = 5;
    const auto before = b;
    EXPECT_EQ(b.read(file.block(constant_path), 8), -6010);
    EXPECT_THAT(b.errors, HasSubstr("KOB INTERNAL ERROR (10) in KOB_H5Dread"));
    EXPECT_EQ(b, unchanged(before, b));
}

TEST(TextBlock, Reading_with_a_larger_length_hands_out_the_lines_as_stored)
{
    const KobFile file;
    auto written = three_lines();
    ASSERT_EQ(written.write(file.handle()), 0);
    auto b = TextBlock::with_room(30);
    b.nlines = 3;
    b.length = 10;
    ASSERT_EQ(b.read(file.block(constant_path), 8), 0) << b.errors;
    EXPECT_EQ(b.line.substr(0, 18), written.line);
}

TEST(TextBlock, Reading_another_number_of_lines_fails)
{
    const KobFile file;
    auto written = three_lines();
    ASSERT_EQ(written.write(file.handle()), 0);
    auto b = TextBlock::with_room(24);
    b.nlines = 4;
    b.length = 6;
    EXPECT_EQ(b.read(file.block(constant_path), 8), -6030);
    EXPECT_THAT(b.errors, HasSubstr("KOB INTERNAL ERROR (30) in KOB_H5Dread"));
}

TEST(TextBlock, One_kind_and_state_holds_one_text)
{
    const KobFile file;
    auto first = three_lines();
    ASSERT_EQ(first.write(file.handle()), 0);
    auto second = three_lines();
    second.line = "other text in here";
    EXPECT_EQ(second.write(file.handle()), -1);
    EXPECT_EQ(second.errors, "KOB INTERNAL ERROR writing block key 40 - \"text\" already exists.\n");

    auto other_kind = three_lines();
    other_kind.etyptext = "header";
    EXPECT_EQ(other_kind.write(file.handle()), 0) << other_kind.errors;
    auto in_state = three_lines();
    in_state.set_state();
    EXPECT_EQ(in_state.write(file.handle()), 0) << in_state.errors;
    in_state.indexident = {13};
    EXPECT_EQ(in_state.write(file.handle()), 0) << in_state.errors;

    auto b = TextBlock::with_room(18);
    ASSERT_EQ(b.read(file.block(constant_path), 1 + 8), 0);
    EXPECT_EQ(b.line, first.line) << "the first one stays";
    file.block("constant/text/header/kobblock");
    file.block("singlestate/state000000000012/text/log/kobblock");
    file.block("singlestate/state000000000013/text/log/kobblock");
}

TEST(TextBlock, Reports_the_filters_of_its_lines)
{
    const KobFile file;
    TextBlock written;
    written.set_long_index();
    written.nlines = 8;
    written.length = 3;
    written.line = "abcdefghijklmnopqrstuvwx";
    written.filter_flags = 255;
    written.filter_params = filter_settings;
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    auto b = TextBlock::with_room(24);
    ASSERT_EQ(b.read(file.block("singlestate/state000000000005/text/log/kobblock"), 1 + 2 + 8), 0) << b.errors;
    EXPECT_EQ(b.filter_flags, 4 + 32);
    EXPECT_THAT(b.filter_params, ElementsAre(0, 6));
    EXPECT_EQ(b.line, written.line);
    EXPECT_EQ(b.indexident, written.indexident);
    EXPECT_EQ(b.indexval, written.indexval);
}

TEST(TextBlock, Another_block_is_not_read)
{
    const KobFile file;
    const auto other = bare_block(file.handle(), "other", 100);
    auto b = TextBlock::with_room(4);
    const auto before = b;
    EXPECT_EQ(b.read(other, 1 + 2 + 8), -1);
    EXPECT_EQ(b.errors, "KOB ERROR - wrong block key 100, 40 expected\n");
    EXPECT_EQ(b, unchanged(before, b));
}

TEST(TextBlock, An_invalid_handle_is_not_read)
{
    auto b = TextBlock::with_room(4);
    const auto before = b;
    EXPECT_EQ(b.read(-1, 1), -1);
    EXPECT_EQ(b.errors, "KOB ERROR - header not found\n");
    EXPECT_EQ(b, unchanged(before, b));
}

TEST(TextBlock, A_group_without_a_key_or_without_attributes_is_not_read)
{
    const KobFile file;
    auto b = TextBlock::with_room(4);
    EXPECT_EQ(b.read(create_group(file.handle(), "empty"), 1), -4002);
    EXPECT_THAT(b.errors, HasSubstr("KOB INTERNAL ERROR (2) in KOB_H5Aread"));
    const auto bare = bare_block(file.handle(), "bare", 40);
    EXPECT_EQ(b.read(bare, 1), -4002);
    EXPECT_EQ(b.read(bare, 0), 40);
}

TEST(TextBlock, Is_not_written_without_a_place)
{
    auto b = three_lines();
    EXPECT_LT(b.write(-1), 0);
    EXPECT_NE(b.errors, "");
}

} // namespace
