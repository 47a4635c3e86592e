// SPDX-License-Identifier: BSD-3-Clause
// The parts block: identifiers of parts, with optional titles, materials and colours.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/kob_file.hpp"
#include "support/state_blocks.hpp"

using namespace kob_test;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string constant_path = "constant/parts/PART/kobblock";

/// Two parts with titles of five characters and all columns.
Parts two_parts()
{
    Parts b;
    b.npart = 2;
    b.length = 5;
    b.pid = {7, 9};
    b.title = "wheeldoor ";
    b.mid = {70, 90};
    b.mtyp = {71, 91};
    b.pcol = {72, 92};
    return b;
}

TEST(PartsBlock, Comes_back_as_it_was_written)
{
    const KobFile file;
    auto written = two_parts();
    written.set_state();
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_EQ(written.errors, "");

    auto b = Parts::with_room(3, 11);
    ASSERT_EQ(b.read(file.block("singlestate/state000000000012/parts/PART/kobblock"), 1 + 2 + 8), 0) << b.errors;
    EXPECT_EQ(b.etyppart, "PART");
    EXPECT_EQ(b.npart, 2);
    EXPECT_EQ(b.off, 0);
    EXPECT_EQ(b.length, 5);
    EXPECT_EQ(b.nindex, 1);
    EXPECT_EQ(b.indexic, 3);
    EXPECT_EQ(b.indexident[0], 12);
    EXPECT_EQ(b.indexval[0], 0.5);
    EXPECT_THAT(b.pid, ElementsAre(7, 9, untouched_int));
    EXPECT_EQ(b.title, "wheeldoor #");
    EXPECT_THAT(b.mid, ElementsAre(70, 90, untouched_int));
    EXPECT_THAT(b.mtyp, ElementsAre(71, 91, untouched_int));
    EXPECT_THAT(b.pcol, ElementsAre(72, 92, untouched_int));
    EXPECT_EQ(b.filter_flags, 0);
    EXPECT_THAT(b.filter_params, ElementsAre(0, 0));
    EXPECT_EQ(b.errors, "");
}

TEST(PartsBlock, Each_section_bit_reads_its_part)
{
    const KobFile file;
    auto written = two_parts();
    written.set_state();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block("singlestate/state000000000012/parts/PART/kobblock");

    auto b = Parts::with_room(2, 10);
    auto expected = b;
    ASSERT_EQ(b.read(block, 1), 0);
    expected.etyppart = "PART";
    expected.npart = 2;
    expected.off = 0;
    expected.length = 5;
    expected.nindex = 1;
    expected.indexic = 3;
    EXPECT_EQ(b, unchanged(expected, b)) << "mode 1";

    ASSERT_EQ(b.read(block, 2), 0);
    expected.indexident[0] = 12;
    expected.indexval[0] = 0.5;
    EXPECT_EQ(b, unchanged(expected, b)) << "mode 2";

    ASSERT_EQ(b.read(block, 8), 0);
    expected.pid = written.pid;
    expected.title = written.title;
    expected.mid = written.mid;
    expected.mtyp = written.mtyp;
    expected.pcol = written.pcol;
    expected.filter_flags = 0;
    expected.filter_params = {0, 0};
    EXPECT_EQ(b, unchanged(expected, b)) << "mode 8";
}

TEST(PartsBlock, Each_bit_of_off_leaves_out_a_column)
{
    for (std::int32_t off = 0; off < 16; ++off) {
        const KobFile file;
        auto written = two_parts();
        written.off = off;
        ASSERT_EQ(written.write(file.handle()), 0) << off;
        const auto group = open_group(file.handle(), constant_path);
        EXPECT_TRUE(has_link(group, "pid")) << off;
        EXPECT_TRUE(has_link(group, "title")) << off;
        EXPECT_EQ(has_link(group, "mid"), (off & 1) == 0) << off;
        EXPECT_EQ(has_link(group, "mtyp"), (off & 2) == 0) << off;
        EXPECT_EQ(has_link(group, "pcol"), (off & 4) == 0) << off;

        auto b = Parts::with_room(2, 10);
        ASSERT_EQ(b.read(file.block(constant_path), 1 + 8), 0) << off << b.errors;
        EXPECT_EQ(b.off, off);
        EXPECT_THAT(b.pid, ElementsAre(7, 9));
        const Ints nothing{untouched_int, untouched_int};
        EXPECT_EQ(b.mid, (off & 1) == 0 ? written.mid : nothing) << off;
        EXPECT_EQ(b.mtyp, (off & 2) == 0 ? written.mtyp : nothing) << off;
        EXPECT_EQ(b.pcol, (off & 4) == 0 ? written.pcol : nothing) << off;
    }
}

TEST(PartsBlock, Absent_columns_may_be_null)
{
    const KobFile file;
    Parts written;
    written.npart = 1;
    written.off = 7;
    written.pid = {3};
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_THAT(link_names(open_group(file.handle(), constant_path)), ElementsAre("pid"));
    Parts b;
    b.pid = {0};
    ASSERT_EQ(b.read(file.block(constant_path), 1 + 2 + 8), 0) << b.errors;
    EXPECT_THAT(b.pid, ElementsAre(3));
}

TEST(PartsBlock, Without_a_length_there_are_no_titles)
{
    for (const std::int32_t length : {0, -5}) {
        const KobFile file;
        auto written = two_parts();
        written.length = length;
        ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
        EXPECT_FALSE(has_link(open_group(file.handle(), constant_path), "title"));
        auto b = Parts::with_room(2, 10);
        ASSERT_EQ(b.read(file.block(constant_path), 1 + 8), 0) << b.errors;
        EXPECT_EQ(b.length, length);
        EXPECT_EQ(b.title, "##########");
        EXPECT_EQ(b.pcol, written.pcol);
    }
}

TEST(PartsBlock, Titles_have_any_length)
{
    for (const std::int32_t length : {1, 80, 256, 300}) {
        const KobFile file;
        auto written = two_parts();
        written.length = length;
        written.title =
            std::string(static_cast<std::size_t>(length), 'x') + std::string(static_cast<std::size_t>(length), 'y');
        ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
        auto b = Parts::with_room(2, written.title.size());
        ASSERT_EQ(b.read(file.block(constant_path), 1 + 8), 0) << b.errors;
        EXPECT_EQ(b.title, written.title);
    }
}

TEST(PartsBlock, A_block_without_parts_holds_its_attributes)
{
    const KobFile file;
    Parts written;
    written.length = 80;
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_THAT(link_names(open_group(file.handle(), constant_path)), ElementsAre());
    auto b = Parts::with_room(2, 4);
    ASSERT_EQ(b.read(file.block(constant_path), 1 + 8), 0) << b.errors;
    EXPECT_EQ(b.npart, 0);
    EXPECT_THAT(b.pid, Each(untouched_int));
    EXPECT_EQ(b.filter_flags, 0);
    EXPECT_THAT(b.filter_params, ElementsAre(0, 0));
}

TEST(PartsBlock, Asking_for_a_column_that_is_not_there_fails)
{
    const KobFile file;
    auto written = two_parts();
    written.off = 2;
    ASSERT_EQ(written.write(file.handle()), 0);
    auto b = Parts::with_room(2, 10);
    b.npart = 2;
    b.off = 0;
    b.length = 5;
    EXPECT_EQ(b.read(file.block(constant_path), 8), -6002);
    EXPECT_THAT(b.errors, HasSubstr("KOB INTERNAL ERROR (2) in KOB_H5Dread"));
    EXPECT_THAT(b.errors, HasSubstr("mtyp"));
    EXPECT_EQ(b.mid, written.mid) << "read before";
    EXPECT_THAT(b.pcol, Each(untouched_int));
    EXPECT_EQ(b.filter_flags, untouched_int);
}

TEST(PartsBlock, The_counts_of_the_caller_hold_without_section_1)
{
    const KobFile file;
    auto written = two_parts();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(constant_path);
    auto b = Parts::with_room(3, 15);
    b.npart = 3;
    b.off = 7;
    b.length = 0;
    EXPECT_EQ(b.read(block, 8), -6030);
    EXPECT_THAT(b.pid, Each(untouched_int));
    b.npart = 2;
    b.length = 4;
    EXPECT_EQ(b.read(block, 8), -6010);
    EXPECT_THAT(b.pid, ElementsAre(7, 9, untouched_int));
}

TEST(PartsBlock, A_call_that_reads_nothing_reports_the_key)
{
    const KobFile file;
    auto written = two_parts();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(constant_path);
    for (const std::int32_t mode : {0, 2, 4, 16}) {
        auto b = Parts::with_room(2, 10);
        b.nindex = 0;
        const auto before = b;
        EXPECT_EQ(b.read(block, mode), 100) << mode;
        EXPECT_EQ(b, unchanged(before, b)) << mode;
    }
}

TEST(PartsBlock, One_part_type_and_state_holds_one_block)
{
    const KobFile file;
    auto first = two_parts();
    first.set_state();
    ASSERT_EQ(first.write(file.handle()), 0);
    auto second = two_parts();
    second.set_state();
    second.pid = {1, 2};
    EXPECT_EQ(second.write(file.handle()), -1);
    EXPECT_EQ(second.errors, "KOB INTERNAL ERROR writing block key 100 - \"parts\" already exists.\n");
    second.indexident = {13};
    EXPECT_EQ(second.write(file.handle()), 0) << second.errors;

    auto b = Parts::with_room(2, 10);
    ASSERT_EQ(b.read(file.block("singlestate/state000000000012/parts/PART/kobblock"), 1 + 8), 0);
    EXPECT_EQ(b.pid, first.pid) << "the first one stays";
    ASSERT_EQ(b.read(file.block("singlestate/state000000000013/parts/PART/kobblock"), 1 + 8), 0);
    EXPECT_EQ(b.pid, second.pid);
}

TEST(PartsBlock, Reports_the_filters_of_the_last_column_read)
{
    Parts written;
    written.npart = 8;
    written.length = 2;
    written.pid = written.mid = written.mtyp = written.pcol = {1, 2, 3, 4, 5, 6, 7, 8};
    written.title = "aabbccddeeffgghh";
    written.filter_flags = 255;
    written.filter_params = filter_settings;
    struct {
        std::int32_t off;
        std::int32_t length;
        std::int32_t flags;
    } const cases[]{{0, 2, 1 + 8 + 64}, {4, 2, 1 + 8 + 64}, {7, 2, 4 + 32}, {7, 0, 1 + 8 + 64}};
    for (const auto& c : cases) {
        const KobFile file;
        written.off = c.off;
        written.length = c.length;
        ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
        auto b = Parts::with_room(8, 16);
        ASSERT_EQ(b.read(file.block(constant_path), 1 + 8), 0) << b.errors;
        EXPECT_EQ(b.filter_flags, c.flags) << c.off << " " << c.length;
        EXPECT_THAT(b.filter_params, ElementsAre(0, 6));
        EXPECT_EQ(b.pid, written.pid);
    }
}

TEST(PartsBlock, Another_block_is_not_read)
{
    const KobFile file;
    const auto other = bare_block(file.handle(), "other", 40);
    auto b = Parts::with_room(2, 4);
    const auto before = b;
    EXPECT_EQ(b.read(other, 1 + 2 + 8), -1);
    EXPECT_EQ(b.errors, "KOB error - wrong block key 40, 100 expected\n");
    EXPECT_EQ(b, unchanged(before, b));
}

TEST(PartsBlock, An_invalid_handle_is_not_read)
{
    auto b = Parts::with_room(2, 4);
    EXPECT_EQ(b.read(-1, 1), -1);
    EXPECT_EQ(b.errors, "KOB ERROR - header not found\n");
}

TEST(PartsBlock, An_invalid_number_of_index_values_is_refused_by_the_storage)
{
    const KobFile file;
    auto b = two_parts();
    b.nindex = -1; // places the block among the multi-state ones; -1 is also the mark of an unlimited extent
    b.indexident = {1};
    b.indexval = {1};
    EXPECT_EQ(b.write(file.handle()), -3000);
    EXPECT_EQ(stored_ints(open_group(file.handle(), "multistate/parts/PART/kobblock"), "nindex")[0], -1);
}

TEST(PartsBlock, Is_not_written_without_a_place)
{
    auto b = two_parts();
    EXPECT_LT(b.write(-1), 0);
    EXPECT_NE(b.errors, "");
}

} // namespace
