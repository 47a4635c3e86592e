// SPDX-License-Identifier: BSD-3-Clause
// The collector block: groups of entities with their members.
#include <limits>
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

const std::string constant_path = "constant/collector/SET/kobblock";

/// Two collectors of nodes and elements: three nodes; one node and two elements.
Collector two_collectors()
{
    Collector b;
    b.ncoll = 2;
    b.ntyp = 2;
    b.idcoll = {1, 5};
    b.etyp = {"NODE", "ELEMENT"};
    b.nent = {3, 0, 1, 2};
    b.entid = {11, 12, 13, 14, 901, 902};
    return b;
}

TEST(CollectorBlock, Comes_back_as_it_was_written)
{
    const KobFile file;
    auto written = two_collectors();
    written.set_state();
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_EQ(written.errors, "");

    auto b = Collector::with_room(3, 2, 7);
    ASSERT_EQ(b.read(file.block("singlestate/state000000000012/collector/SET/kobblock"), 2), 0) << b.errors;
    EXPECT_EQ(b.nenttot, 6);
    EXPECT_EQ(b.etypcoll, "SET");
    EXPECT_EQ(b.ncoll, 2);
    EXPECT_EQ(b.ntyp, 2);
    EXPECT_EQ(b.nindex, 1);
    EXPECT_EQ(b.indexic, 3);
    EXPECT_EQ(b.indexident[0], 12);
    EXPECT_EQ(b.indexval[0], 0.5);
    EXPECT_THAT(b.idcoll, ElementsAre(1, 5, untouched_int));
    EXPECT_THAT(b.etyp.texts(), ElementsAre("NODE", "ELEMENT"));
    EXPECT_THAT(b.nent, ElementsAre(3, 0, 1, 2, untouched_int, untouched_int));
    EXPECT_THAT(b.entid, ElementsAre(11, 12, 13, 14, 901, 902, untouched_int));
    EXPECT_EQ(b.filter_flags, 0);
    EXPECT_THAT(b.filter_params, ElementsAre(0, 0));
    EXPECT_EQ(b.errors, "");
}

TEST(CollectorBlock, Mode_1_reads_the_attributes_and_mode_0_the_state_index_too)
{
    const KobFile file;
    auto written = two_collectors();
    written.set_state();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block("singlestate/state000000000012/collector/SET/kobblock");

    auto b = Collector::with_room(2, 2, 6);
    auto expected = b;
    expected.nenttot = 6;
    expected.etypcoll = "SET";
    expected.ncoll = 2;
    expected.ntyp = 2;
    expected.nindex = 1;
    expected.indexic = 3;
    EXPECT_EQ(b.read(block, 1), 0);
    EXPECT_EQ(b, unchanged(expected, b)) << "mode 1";

    expected.indexident[0] = 12;
    expected.indexval[0] = 0.5;
    EXPECT_EQ(b.read(block, 0), 0);
    EXPECT_EQ(b, unchanged(expected, b)) << "mode 0";
}

TEST(CollectorBlock, A_constant_collector_has_no_state_index)
{
    const KobFile file;
    auto written = two_collectors();
    ASSERT_EQ(written.write(file.handle()), 0);
    auto b = Collector::with_room(2, 2, 6);
    EXPECT_EQ(b.read(file.block(constant_path), 0), 0);
    EXPECT_EQ(b.nindex, 0);
    EXPECT_EQ(b.nenttot, 6);
    EXPECT_THAT(b.indexident, Each(untouched_int));
    EXPECT_THAT(b.indexval, Each(untouched_real));
    EXPECT_THAT(b.entid, Each(untouched_int));
    EXPECT_EQ(b.read(file.block(constant_path), 2), 0);
    EXPECT_EQ(b.entid, written.entid);
}

TEST(CollectorBlock, Another_mode_fails_behind_the_attributes)
{
    const KobFile file;
    auto written = two_collectors();
    written.set_state();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block("singlestate/state000000000012/collector/SET/kobblock");
    for (const std::int32_t mode : {3, -1, 8}) {
        auto b = Collector::with_room(2, 2, 6);
        auto expected = b;
        expected.nenttot = 6;
        expected.etypcoll = "SET";
        expected.ncoll = 2;
        expected.ntyp = 2;
        expected.nindex = 1;
        expected.indexic = 3;
        EXPECT_EQ(b.read(block, mode), -3) << mode;
        EXPECT_EQ(b.errors, "KOB INTERNAL ERROR reading block with key 400 \n") << mode;
        EXPECT_EQ(b, unchanged(expected, b)) << mode;
    }
}

TEST(CollectorBlock, Without_collectors_only_the_member_types_are_stored)
{
    const KobFile file;
    Collector written;
    written.ntyp = 1;
    written.etyp = {"NODE"};
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_THAT(link_names(open_group(file.handle(), constant_path)), ElementsAre("etyp"));
    auto b = Collector::with_room(1, 1, 1);
    ASSERT_EQ(b.read(file.block(constant_path), 2), 0) << b.errors;
    EXPECT_EQ(b.nenttot, 0);
    EXPECT_EQ(b.ncoll, 0);
    EXPECT_THAT(b.etyp.texts(), ElementsAre("NODE"));
    EXPECT_THAT(b.idcoll, Each(untouched_int));
    EXPECT_THAT(b.nent, Each(untouched_int));
    EXPECT_THAT(b.entid, Each(untouched_int));
}

TEST(CollectorBlock, Without_member_types_only_the_collectors_are_stored)
{
    const KobFile file;
    Collector written;
    written.ncoll = 2;
    written.idcoll = {4, 6};
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_THAT(link_names(open_group(file.handle(), constant_path)), ElementsAre("idcoll"));
    Collector b;
    b.idcoll = {0, 0};
    ASSERT_EQ(b.read(file.block(constant_path), 2), 0) << b.errors;
    EXPECT_EQ(b.nenttot, 0);
    EXPECT_THAT(b.idcoll, ElementsAre(4, 6));
    EXPECT_EQ(b.filter_flags, 0);
}

TEST(CollectorBlock, Collectors_can_be_empty)
{
    const KobFile file;
    auto written = two_collectors();
    written.nent = {0, 0, 0, 0};
    written.entid = {};
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    auto b = Collector::with_room(2, 2, 1);
    ASSERT_EQ(b.read(file.block(constant_path), 2), 0) << b.errors;
    EXPECT_EQ(b.nenttot, 0);
    EXPECT_THAT(b.nent, ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(b.entid, Each(untouched_int));
}

TEST(CollectorBlock, The_number_of_members_is_summed_in_32_bits)
{
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    {
        const KobFile file;
        auto written = two_collectors();
        written.nent = {most, most, 4, 1}; // 2^32 + 3
        written.entid = {1, 2, 3};
        EXPECT_EQ(written.write(file.handle()), 0) << written.errors;
        auto b = Collector::with_room(2, 2, 3);
        ASSERT_EQ(b.read(file.block(constant_path), 2), 0) << b.errors;
        EXPECT_EQ(b.nenttot, 3);
        EXPECT_THAT(b.entid, ElementsAre(1, 2, 3));
    }
    const KobFile file;
    auto written = two_collectors();
    written.nent = {most, 1, 0, 0};
    EXPECT_THAT(written.write(file.handle()), testing::AnyOf(-2040, -2190));
    EXPECT_THAT(written.errors, HasSubstr("in KOB_H5Dwrite"));
    const auto group = open_group(file.handle(), constant_path);
    EXPECT_EQ(stored_ints(group, "nenttot")[0], std::numeric_limits<std::int32_t>::min());
    EXPECT_FALSE(has_link(group, "entid"));
}

TEST(CollectorBlock, A_negative_number_of_collectors_is_refused_by_the_storage)
{
    const KobFile file;
    auto written = two_collectors();
    written.ncoll = -1;
    EXPECT_EQ(written.write(file.handle()), -3000);
    const auto group = open_group(file.handle(), constant_path);
    EXPECT_EQ(stored_ints(group, "nenttot")[0], 0) << "no product, no sum";
    EXPECT_FALSE(has_link(group, "idcoll"));
}

TEST(CollectorBlock, One_collector_type_and_state_holds_one_block)
{
    const KobFile file;
    auto first = two_collectors();
    ASSERT_EQ(first.write(file.handle()), 0);
    auto second = two_collectors();
    second.idcoll = {2, 3};
    EXPECT_EQ(second.write(file.handle()), -1);
    EXPECT_EQ(second.errors, "KOB INTERNAL ERROR writing block key 400 - \"collector\" already exists.\n");
    second.etypcoll = "SURFACE";
    EXPECT_EQ(second.write(file.handle()), 0) << second.errors;
    second.set_state();
    EXPECT_EQ(second.write(file.handle()), 0) << second.errors;

    auto b = Collector::with_room(2, 2, 6);
    ASSERT_EQ(b.read(file.block(constant_path), 2), 0);
    EXPECT_EQ(b.idcoll, first.idcoll) << "the first one stays";
}

TEST(CollectorBlock, Reports_the_filters_of_the_last_dataset_read)
{
    Collector written;
    written.ncoll = 8;
    written.ntyp = 1;
    written.idcoll = written.nent = Ints(8, 1);
    written.etyp = {"NODE"};
    written.entid = {1, 2, 3, 4, 5, 6, 7, 8};
    written.filter_flags = 255;
    written.filter_params = filter_settings;
    {
        const KobFile file;
        ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
        auto b = Collector::with_room(8, 1, 8);
        ASSERT_EQ(b.read(file.block(constant_path), 2), 0) << b.errors;
        EXPECT_EQ(b.filter_flags, 1 + 8 + 64) << "entid";
        EXPECT_THAT(b.filter_params, ElementsAre(0, 6));
        EXPECT_EQ(b.entid, written.entid);
    }
    { // with a state the index values come last
        const KobFile file;
        written.set_long_index();
        ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
        auto b = Collector::with_room(8, 1, 8);
        ASSERT_EQ(b.read(file.block("singlestate/state000000000005/collector/SET/kobblock"), 2), 0) << b.errors;
        EXPECT_EQ(b.filter_flags, 2 + 16) << "indexval";
        EXPECT_THAT(b.filter_params, ElementsAre(0, 6));
        EXPECT_EQ(b.indexval, written.indexval);
    }
}

TEST(CollectorBlock, Another_block_is_not_read)
{
    const KobFile file;
    const auto other = bare_block(file.handle(), "other", 500);
    for (const std::int32_t mode : {0, 1, 2, 3}) {
        auto b = Collector::with_room(1, 1, 1);
        const auto before = b;
        EXPECT_EQ(b.read(other, mode), -1) << mode;
        EXPECT_EQ(b.errors, "KOB ERROR - wrong block key 500, 400 expected\n") << mode;
        EXPECT_EQ(b, unchanged(before, b)) << mode;
    }
}

TEST(CollectorBlock, An_invalid_handle_is_not_read)
{
    Collector b;
    EXPECT_EQ(b.read(-1, 2), -1);
    EXPECT_EQ(b.errors, "KOB ERROR - header not found\n");
}

TEST(CollectorBlock, Stored_counts_that_do_not_fit_the_datasets_end_the_call)
{
    const KobFile file;
    auto written = two_collectors();
    ASSERT_EQ(written.write(file.handle()), 0);
    set_int_attribute(open_group(file.handle(), constant_path), "ncoll", 3);
    auto b = Collector::with_room(3, 2, 6);
    EXPECT_EQ(b.read(file.block(constant_path), 2), -6030);
    EXPECT_THAT(b.idcoll, Each(untouched_int));
    EXPECT_EQ(b.filter_flags, untouched_int);
}

TEST(CollectorBlock, Is_not_written_without_a_place)
{
    auto b = two_collectors();
    EXPECT_LT(b.write(-1), 0);
    EXPECT_NE(b.errors, "");
}

} // namespace
