// SPDX-License-Identifier: BSD-3-Clause
// Where a block lives: the path made from its characteristics, and the frame that every block carries.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>
#include <kob_dp.h>

#include "guarded_text.hpp"
#include "open_file.hpp"
#include "support/captured_stream.hpp"
#include "support/hdf5_file.hpp"
#include "support/kob_file.hpp"
#include "support/text256.hpp"

using namespace kob_test;
using testing::ElementsAre;

namespace {

struct Place {
    std::int32_t mask = 0;
    std::int32_t nstate = 0;
    std::vector<std::int32_t> states = {};
    std::int32_t state = -1;
    std::array<Text256, 5> names = {};
    std::int32_t number = -1;
    std::int32_t set = -1;
    std::int32_t ioflag = 0;
};

class Placement : public testing::Test {
protected:
    struct Opened {
        std::int64_t block = 4711;
        std::int32_t status = 77;
        std::string path; ///< from the root of the file
    };

    /// Opens a place, notes the path of the group and closes it again.
    Opened open(const Place& place) { return open_below(file_.handle(), place); }
    static Opened open_below(std::int64_t parent, const Place& place)
    {
        Opened opened;
        KOB_OPENAUTOPATH(&parent, &place.mask, nullptr, &place.ioflag, &place.nstate, place.states.data(), &place.state,
                         place.names[0].data(), place.names[1].data(), place.names[2].data(), place.names[3].data(),
                         place.names[4].data(), &place.number, &place.set, &opened.block, &opened.status);
        if (opened.status < 0) return opened;
        std::array<char, 4096> name{};
        H5Iget_name(opened.block, name.data(), name.size());
        opened.path = name.data();
        EXPECT_EQ(close_group(opened.block), 0);
        return opened;
    }

    KobFile file_{create_empty};
};

TEST_F(Placement, Constant_data_have_no_state_group)
{
    EXPECT_EQ(open({.mask = 1, .nstate = 0, .names = {"NODE"}}).path, "/constant/NODE/kobblock");
    EXPECT_EQ(open({.mask = 1, .nstate = 0, .states = {3}, .state = 5, .names = {"ELEM"}}).path,
              "/constant/ELEM/kobblock");
}

TEST_F(Placement, One_state_has_a_group_of_12_digits)
{
    EXPECT_EQ(open({.mask = 1, .nstate = 1, .state = 12, .names = {"DISPLACEMENT"}, .set = 1}).path,
              "/singlestate/state000000000012/DISPLACEMENT_set1/kobblock");
    EXPECT_EQ(open({.nstate = 1, .state = 0}).path, "/singlestate/state000000000000/kobblock");
    EXPECT_EQ(open({.nstate = 1, .state = 2147483647}).path, "/singlestate/state002147483647/kobblock");
}

TEST_F(Placement, A_state_number_is_one_group_however_many_states_there_are)
{
    EXPECT_EQ(open({.nstate = 3, .states = {7, 8, 9}, .state = 4}).path, "/singlestate/state000000000004/kobblock");
}

TEST_F(Placement, Without_state_number_the_states_are_nested_last_one_first)
{
    EXPECT_EQ(open({.mask = 1, .nstate = 3, .states = {7, 8, 9}, .state = -1, .names = {"NODE"}}).path,
              "/singlestate/state000000000009/state000000000008/state000000000007/NODE/kobblock");
    EXPECT_EQ(open({.nstate = 1, .states = {21}, .state = -5}).path, "/singlestate/state000000000021/kobblock");
}

TEST_F(Placement, Many_states_are_nested)
{
    std::vector<std::int32_t> states(100);
    std::string expected = "/singlestate";
    for (std::int32_t i = 0; i < 100; ++i) {
        states[static_cast<std::size_t>(99 - i)] = 1000000000 + i;
        expected += "/state00" + std::to_string(1000000000 + i);
    }
    const auto opened = open({.mask = 1, .nstate = 100, .states = states, .names = {"NODE"}});
    EXPECT_EQ(opened.path, expected + "/NODE/kobblock");
    EXPECT_EQ(opened.status, 103);
}

TEST_F(Placement, Minus_1_states_stand_for_a_multi_state_block)
{
    EXPECT_EQ(open({.mask = 1, .nstate = -1, .states = {3}, .state = 5, .names = {"NODE"}}).path,
              "/multistate/NODE/kobblock");
}

TEST_F(Placement, Other_negative_numbers_of_states_stand_for_a_single_state_without_group)
{
    EXPECT_EQ(open({.mask = 1, .nstate = -2, .states = {3}, .state = 5, .names = {"NODE"}}).path,
              "/singlestate/NODE/kobblock");
    EXPECT_EQ(open({.mask = 1, .nstate = -77, .names = {"ELEM"}}).path, "/singlestate/ELEM/kobblock");
}

TEST_F(Placement, Without_names_the_block_lies_in_the_top_group)
{
    EXPECT_EQ(open({.mask = 0, .nstate = 0, .names = {"a", "b", "c", "d", "e"}}).path, "/constant/kobblock");
}

TEST_F(Placement, Each_bit_of_the_mask_chooses_one_name)
{
    const std::array<Text256, 5> names{"a", "b", "c", "d", "e"};
    for (const auto& [mask, path] : std::vector<std::pair<std::int32_t, std::string>>{{1, "a"},
                                                                                      {2, "b"},
                                                                                      {4, "c"},
                                                                                      {8, "d"},
                                                                                      {16, "e"},
                                                                                      {6, "b/c"},
                                                                                      {30, "b/c/d/e"},
                                                                                      {31, "a/b/c/d/e"},
                                                                                      {1 + 8, "a/d"},
                                                                                      {64 + 2, "b"}})
        EXPECT_EQ(open({.mask = mask, .names = names}).path, "/constant/" + path + "/kobblock") << "mask " << mask;
}

TEST_F(Placement, Names_that_the_mask_leaves_out_are_not_read)
{
    const std::int32_t mask = 2;
    const std::int32_t constant = 0;
    const std::int32_t none = -1;
    const Text256 name{"NODE"};
    std::int64_t block = 0;
    std::int32_t status = 77;
    KOB_OPENAUTOPATH(file_.address(), &mask, nullptr, &constant, &constant, nullptr, &none, nullptr, name.data(),
                     nullptr, nullptr, nullptr, &none, &none, &block, &status);
    EXPECT_EQ(status, 3);
    EXPECT_EQ(close_group(block), 0);
}

TEST_F(Placement, Names_lose_trailing_blanks_and_keep_inner_ones)
{
    EXPECT_EQ(open({.mask = 3, .names = {"  my node  ", "x\t"}}).path, "/constant/  my node/x/kobblock");
}

TEST_F(Placement, A_name_ends_at_its_first_NUL)
{
    EXPECT_EQ(open({.mask = 1, .names = {std::string{"NODE\0rest", 9}}}).path, "/constant/NODE/kobblock");
}

TEST_F(Placement, An_empty_name_is_left_out_with_its_slash)
{
    EXPECT_EQ(open({.mask = 31, .names = {"", "b", std::string(256, '\xe4'), "d", " "}}).path,
              "/constant/b/d/kobblock");
    EXPECT_EQ(open({.mask = 31}).path, "/constant/kobblock");
}

TEST_F(Placement, A_name_of_256_characters_is_taken_whole_and_no_byte_behind_it_is_read)
{
    const GuardedText full{std::string(256, 'n')};
    const std::int32_t all = 31;
    const std::int32_t constant = 0;
    const std::int32_t none = -1;
    std::int64_t block = 0;
    std::int32_t status = 77;
    KOB_OPENAUTOPATH(file_.address(), &all, nullptr, &constant, &constant, nullptr, &none, full.data(), full.data(),
                     full.data(), full.data(), full.data(), &none, &none, &block, &status);
    EXPECT_EQ(status, 7);
    EXPECT_EQ(close_group(block), 0);
    EXPECT_THAT(link_names(open_group(file_.handle(), "constant")), ElementsAre(std::string(256, 'n')));
}

TEST_F(Placement, The_number_follows_the_last_name_directly)
{
    EXPECT_EQ(open({.mask = 1, .names = {"abc   "}, .number = 0}).path, "/constant/abc0/kobblock");
    EXPECT_EQ(open({.mask = 3, .names = {"a", "node"}, .number = 3}).path, "/constant/a/node3/kobblock");
    EXPECT_EQ(open({.mask = 1, .names = {"n"}, .number = 2147483647}).path, "/constant/n2147483647/kobblock");
    EXPECT_EQ(open({.mask = 1, .names = {"n"}, .number = -7}).path, "/constant/n/kobblock");
}

TEST_F(Placement, The_set_number_comes_last)
{
    EXPECT_EQ(open({.mask = 1, .names = {"abc"}, .set = 2}).path, "/constant/abc_set2/kobblock");
    EXPECT_EQ(open({.mask = 1, .names = {"abc"}, .number = 4, .set = 0}).path, "/constant/abc4_set0/kobblock");
    EXPECT_EQ(open({.mask = 1, .names = {"abc"}, .set = -2}).path, "/constant/abc/kobblock");
}

TEST_F(Placement, Number_and_set_follow_the_top_group_where_there_is_no_name)
{
    EXPECT_EQ(open({.nstate = 0, .number = 3, .set = 1}).path, "/constant3_set1/kobblock");
    EXPECT_EQ(open({.nstate = 1, .state = 2, .set = 1}).path, "/singlestate/state000000000002_set1/kobblock");
}

TEST_F(Placement, Starts_at_the_given_group)
{
    auto group = GroupCall{file_.handle(), "results", 0}.run();
    EXPECT_EQ(open_below(group.handle, {.mask = 1, .names = {"NODE"}}).path, "/results/constant/NODE/kobblock");
    EXPECT_EQ(close_group(group.handle), 0);
}

TEST_F(Placement, The_status_counts_the_groups_created)
{
    const Place node{.mask = 1, .names = {"NODE"}};
    EXPECT_EQ(open(node).status, 3);
    EXPECT_EQ(open(node).status, 0) << "the block exists";
    EXPECT_EQ(open({.mask = 1, .names = {"ELEM"}}).status, 2) << "\"constant\" exists";
    EXPECT_EQ(open({.nstate = 1, .state = 1}).status, 3);
    EXPECT_EQ(open({.nstate = 1, .state = 2}).status, 2);
}

TEST_F(Placement, Opens_only_what_is_there_with_ioflag_1_and_2)
{
    for (const std::int32_t ioflag : {1, 2}) {
        const auto missing = open({.mask = 1, .names = {"NODE"}, .ioflag = ioflag});
        EXPECT_EQ(missing.status, -1);
        EXPECT_EQ(missing.block, -1);
    }
    EXPECT_THAT(link_names(file_.handle()), ElementsAre()) << "nothing was created";
    open({.mask = 1, .names = {"NODE"}});
    for (const std::int32_t ioflag : {1, 2}) {
        const auto there = open({.mask = 1, .names = {"NODE"}, .ioflag = ioflag});
        EXPECT_EQ(there.status, 0);
        EXPECT_EQ(there.path, "/constant/NODE/kobblock");
    }
}

TEST_F(Placement, Hands_the_failures_of_the_group_opener_through)
{
    const auto bad_flag = [&] {
        Opened opened;
        errors_of([&] { opened = open({.ioflag = 3}); });
        return opened;
    }();
    EXPECT_EQ(bad_flag.status, -30);
    EXPECT_EQ(bad_flag.block, -1);
    file_.reopen(read_only_root);
    Opened read_only_file;
    EXPECT_EQ(errors_of([&] { read_only_file = open({.mask = 1, .names = {"NODE"}}); }),
              "KOB ERROR - kob_h5gopen - code -8, group constant\n");
    EXPECT_EQ(read_only_file.status, -8);
    EXPECT_EQ(read_only_file.block, -1);
    Opened no_group;
    errors_of([&] { no_group = open_below(-1, {.mask = 1, .names = {"NODE"}}); });
    EXPECT_LT(no_group.status, 0);
    EXPECT_EQ(no_group.block, -1);
}

TEST_F(Placement, Leaves_nothing_open_but_the_block)
{
    EXPECT_EQ(left_open_by([&] { open({.mask = 31, .nstate = 2, .states = {1, 2}, .names = {"a", "b", "c"}}); }), "");
}

TEST_F(Placement, The_group_of_the_states_has_room_for_many_names)
{
    open({.mask = 1, .nstate = 1, .state = 1, .names = {"NODE"}});
    open({.mask = 1, .nstate = 0, .names = {"NODE"}});
    const auto heap_of = [&](const char* group) {
        H5O_native_info_t info{};
        H5Oget_native_info_by_name(file_.handle(), group, &info, H5O_NATIVE_INFO_META_SIZE, H5P_DEFAULT);
        return info.meta_size.obj.heap_size;
    };
    EXPECT_GE(heap_of("singlestate"), 16 * 1024U);
    EXPECT_LT(heap_of("constant"), 1024U) << "the others stay small";
    EXPECT_LT(heap_of("singlestate/state000000000001"), 1024U);
}

// ---- the frame of a block, seen with the smallest one

std::int32_t write_index(std::int64_t group, std::int32_t nindex)
{
    std::int32_t status = 77;
    KOB_WRITE_INDEX(&group, &nindex, Text256{"TIME"}.data(), nullptr, nullptr, &status);
    return status;
}

std::int32_t read_index(std::int64_t block)
{
    std::int32_t nindex = 0;
    Text256 etypvar;
    std::int32_t status = 77;
    KOB_READ_INDEX(&block, nullptr, &nindex, etypvar.data(), nullptr, nullptr, &status);
    return status;
}

TEST(Frame, Every_block_carries_its_key_and_type_name)
{
    const KobFile file;
    allow_open_groups(0);
    ASSERT_EQ(write_index(file.handle(), 1), 0);
    const auto block = open_group(file.handle(), "constant/indices/kobblock");
    EXPECT_THAT(stored_ints(block, "block"), ElementsAre(20));
    EXPECT_EQ(stored_text(block, "blocktype"), "indices" + std::string(249, '\0'));
}

TEST(Frame, A_second_record_block_is_refused_and_the_first_one_stays)
{
    const KobFile file;
    ASSERT_EQ(write_index(file.handle(), 1), 0);
    std::int32_t status = 77;
    EXPECT_EQ(errors_of([&] { status = write_index(file.handle(), 2); }),
              "KOB INTERNAL ERROR writing block key 20 - \"indices\" already exists.\n");
    EXPECT_EQ(status, -1);
    EXPECT_THAT(stored_ints(open_group(file.handle(), "constant/indices/kobblock"), "nindex"), ElementsAre(1));
}

TEST(Frame, A_reader_refuses_a_handle_that_is_none)
{
    std::int32_t status = 77;
    EXPECT_EQ(errors_of([&] { status = read_index(-1); }), "KOB ERROR - header not found\n");
    EXPECT_EQ(status, -1);
}

TEST(Frame, A_reader_refuses_another_kind_of_block)
{
    const KobFile file;
    ASSERT_EQ(write_index(file.handle(), 1), 0);
    const auto block = open_group(file.handle(), "constant/indices/kobblock");
    set_int_attribute(block, "block", 30);
    std::int32_t status = 77;
    EXPECT_EQ(errors_of([&] { status = read_index(block); }), "KOB ERROR - wrong block key 30, 20 expected\n");
    EXPECT_EQ(status, -1);
}

TEST(Frame, A_reader_hands_through_that_the_key_is_missing)
{
    const KobFile file;
    const auto group = create_group(file.handle(), "kobblock");
    std::int32_t status = 77;
    errors_of([&] { status = read_index(group); });
    EXPECT_EQ(status, -4002);
}

TEST(Frame, A_reader_does_not_look_at_the_type_name)
{
    const KobFile file;
    ASSERT_EQ(write_index(file.handle(), 1), 0);
    const auto block = open_group(file.handle(), "constant/indices/kobblock");
    H5Adelete(block, "blocktype");
    EXPECT_EQ(read_index(block), 0);
}

} // namespace
