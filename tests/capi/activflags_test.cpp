// SPDX-License-Identifier: BSD-3-Clause
// Activation flags of entities, constant or for one state.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/identifiers.hpp"
#include "support/kob_file.hpp"
#include "support/state_blocks.hpp"

using namespace kob_test;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string constant_path = "constant/activflags/ELEMENT/kobblock";
const std::string state_path = "singlestate/state000000000012/activflags/ELEMENT/kobblock";

ActivFlags three_flags()
{
    ActivFlags b;
    b.nent = 3;
    b.entid = {30, 10, 20};
    b.flags = {1, 0, -4};
    return b;
}

TEST(ActivFlagsBlock, Comes_back_as_it_was_written)
{
    const KobFile file;
    auto written = three_flags();
    written.set_state();
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_EQ(written.errors, "");

    auto b = ActivFlags::with_room(4);
    EXPECT_EQ(b.read(file.block(state_path), 2), 0) << b.errors;
    EXPECT_EQ(b.etyp, "ELEMENT");
    EXPECT_EQ(b.nent, 3);
    EXPECT_EQ(b.nindex, 1);
    EXPECT_EQ(b.indexic, 3);
    EXPECT_EQ(b.indexident[0], 12);
    EXPECT_EQ(b.indexident[1], untouched_int);
    EXPECT_EQ(b.indexval[0], 0.5);
    EXPECT_THAT(b.entid, ElementsAre(30, 10, 20, untouched_int));
    EXPECT_THAT(b.flags, ElementsAre(1, 0, -4, untouched_int));
    EXPECT_EQ(b.filter_flags, 0);
    EXPECT_THAT(b.filter_params, ElementsAre(0, 0));
    EXPECT_EQ(b.errors, "");
}

TEST(ActivFlagsBlock, Pass_1_reads_the_attributes_and_pass_0_the_state_index_too)
{
    const KobFile file;
    auto written = three_flags();
    written.set_state();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(state_path);

    auto b = ActivFlags::with_room(3);
    auto expected = b;
    expected.etyp = "ELEMENT";
    expected.nent = 3;
    expected.nindex = 1;
    expected.indexic = 3;
    EXPECT_EQ(b.read(block, 1), 0);
    EXPECT_EQ(b, unchanged(expected, b)) << "pass 1";

    expected.indexident[0] = 12;
    expected.indexval[0] = 0.5;
    EXPECT_EQ(b.read(block, 0), 0);
    EXPECT_EQ(b, unchanged(expected, b)) << "pass 0";
}

TEST(ActivFlagsBlock, Another_pass_fails_behind_the_attributes)
{
    const KobFile file;
    auto written = three_flags();
    written.set_state();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(state_path);
    for (const std::int32_t pass : {3, -1, 1024}) {
        auto b = ActivFlags::with_room(3);
        auto expected = b;
        expected.etyp = "ELEMENT";
        expected.nent = 3;
        expected.nindex = 1;
        expected.indexic = 3;
        EXPECT_EQ(b.read(block, pass), -3) << pass;
        EXPECT_EQ(b.errors, "KOB INTERNAL ERROR reading block with key 2100 \n") << pass;
        EXPECT_EQ(b, unchanged(expected, b)) << pass;
    }
}

TEST(ActivFlagsBlock, Constant_flags_have_no_state_index)
{
    const KobFile file;
    auto written = three_flags();
    written.state = 5; // counts for data of a state alone
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(constant_path);
    for (const std::int32_t pass : {0, 1, 2}) {
        auto b = ActivFlags::with_room(3);
        EXPECT_EQ(b.read(block, pass), 0) << pass;
        EXPECT_EQ(b.nindex, 0);
        EXPECT_THAT(b.indexident, Each(untouched_int)) << pass;
        EXPECT_THAT(b.indexval, Each(untouched_real)) << pass;
        EXPECT_EQ(b.flags, pass == 2 ? written.flags : Ints(3, untouched_int)) << pass;
    }
}

TEST(ActivFlagsBlock, One_entity_type_and_state_holds_one_block)
{
    const KobFile file;
    auto first = three_flags();
    first.set_state();
    ASSERT_EQ(first.write(file.handle()), 0);
    auto second = three_flags();
    second.set_state();
    second.flags = {9, 9, 9};
    second.indexval = {99.0};
    EXPECT_EQ(second.write(file.handle()), -1);
    EXPECT_EQ(second.errors, "KOB INTERNAL ERROR writing block key 2100 - \"activflags\" already exists.\n");

    auto b = ActivFlags::with_room(3);
    ASSERT_EQ(b.read(file.block(state_path), 2), 0);
    EXPECT_EQ(b.flags, first.flags) << "the first one stays";
    EXPECT_EQ(b.indexval[0], 0.5);

    second.etyp = "CONTACT";
    EXPECT_EQ(second.write(file.handle()), 0) << second.errors;
    second.state = 13;
    EXPECT_EQ(second.write(file.handle()), 0) << second.errors;
    file.block("singlestate/state000000000012/activflags/CONTACT/kobblock");
    file.block("singlestate/state000000000013/activflags/CONTACT/kobblock");
}

TEST(ActivFlagsBlock, Without_a_state_number_the_path_takes_the_index_last_identifier_first)
{
    const KobFile file;
    auto written = three_flags();
    written.nindex = 2;
    written.indexident = {7, 12};
    written.indexval = {0.5, 1.5};
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    auto b = ActivFlags::with_room(3);
    EXPECT_EQ(b.read(file.block("singlestate/state000000000012/state000000000007/activflags/ELEMENT/kobblock"), 2), 0);
    EXPECT_THAT(Ints(b.indexident.begin(), b.indexident.begin() + 2), ElementsAre(7, 12));
    EXPECT_EQ(b.indexval[1], 1.5);
}

TEST(ActivFlagsBlock, The_writer_leaves_the_group_of_the_block_open)
{
    const KobFile file;
    auto b = three_flags();
    EXPECT_EQ(left_open_by([&] { b.write(file.handle()); }), "group: 1");
    EXPECT_EQ(b.status, 0);
}

TEST(ActivFlagsBlock, Index_values_are_rounded_to_their_stored_size)
{
    for (const std::int32_t float_size : {4, 8, 0, -8}) {
        const KobFile file;
        auto written = three_flags();
        written.set_state();
        written.indexval = {0.1};
        written.float_size = float_size;
        ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
        auto b = ActivFlags::with_room(3);
        ASSERT_EQ(b.read(file.block(state_path), 0), 0) << b.errors;
        EXPECT_EQ(b.indexval[0], float_size == 4 ? static_cast<double>(0.1F) : 0.1) << float_size;
    }
}

TEST(ActivFlagsBlock, Another_stored_size_is_refused_by_the_storage)
{
    const KobFile file;
    auto written = three_flags();
    written.set_state();
    written.float_size = 3;
    EXPECT_EQ(written.write(file.handle()), -3002);
    EXPECT_THAT(written.errors, HasSubstr("KOB INTERNAL ERROR (3) in KOB_H5Dwrite"));
    EXPECT_FALSE(has_link(open_group(file.handle(), state_path), "entid")) << "the first failure ends the call";
}

TEST(ActivFlagsBlock, Without_entities_nothing_is_stored_for_them)
{
    const KobFile file;
    ActivFlags written;
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_THAT(link_names(open_group(file.handle(), constant_path)), ElementsAre());
    auto b = ActivFlags::with_room(1);
    EXPECT_EQ(b.read(file.block(constant_path), 2), 0) << b.errors;
    EXPECT_EQ(b.nent, 0);
    EXPECT_THAT(b.flags, Each(untouched_int));
    EXPECT_EQ(b.filter_flags, 0);
    EXPECT_THAT(b.filter_params, ElementsAre(0, 0));
}

TEST(ActivFlagsBlock, Reports_the_filters_of_the_flags)
{
    const KobFile file;
    ActivFlags written;
    written.nent = 8;
    written.entid = {1, 2, 3, 4, 5, 6, 7, 8};
    written.flags = {0, 1, 0, 1, 0, 1, 0, 1};
    written.filter_flags = 255;
    written.filter_params = filter_settings;
    written.set_long_index();
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    auto b = ActivFlags::with_room(8);
    EXPECT_EQ(b.read(file.block("singlestate/state000000000005/activflags/ELEMENT/kobblock"), 2), 0) << b.errors;
    EXPECT_EQ(b.filter_flags, 1 + 8 + 64);
    EXPECT_THAT(b.filter_params, ElementsAre(0, 6));
    EXPECT_EQ(b.flags, written.flags);
    EXPECT_EQ(b.indexval, written.indexval);
}

TEST(ActivFlagsBlock, Another_block_is_not_read)
{
    const KobFile file;
    const auto other = bare_block(file.handle(), "other", 2150);
    auto b = ActivFlags::with_room(1);
    const auto before = b;
    EXPECT_EQ(b.read(other, 2), -1);
    EXPECT_EQ(b.errors, "KOB ERROR wrong - block key 2150, 2100 expected\n");
    EXPECT_EQ(b, unchanged(before, b));
}

TEST(ActivFlagsBlock, An_invalid_handle_is_not_read)
{
    ActivFlags b;
    EXPECT_EQ(b.read(-1, 2), -1);
    EXPECT_EQ(b.errors, "KOB ERROR - header not found\n");
}

TEST(ActivFlagsBlock, A_stored_count_that_does_not_fit_the_datasets_ends_the_call)
{
    const KobFile file;
    auto written = three_flags();
    ASSERT_EQ(written.write(file.handle()), 0);
    set_int_attribute(open_group(file.handle(), constant_path), "nent", 4);
    auto b = ActivFlags::with_room(4);
    EXPECT_EQ(b.read(file.block(constant_path), 2), -6030);
    EXPECT_THAT(b.errors, HasSubstr("KOB INTERNAL ERROR (30) in KOB_H5Dread"));
    EXPECT_THAT(b.flags, Each(untouched_int));
}

TEST(ActivFlagsBlock, Is_not_written_without_a_place)
{
    auto b = three_flags();
    EXPECT_LT(b.write(-1), 0);
    EXPECT_NE(b.errors, "");
}

} // namespace
