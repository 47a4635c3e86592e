// SPDX-License-Identifier: BSD-3-Clause
// The listing of all blocks of a file.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <pthread.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>
#include <kob_dp.h>

#include "plain_block.hpp"
#include "support/captured_stream.hpp"
#include "support/hdf5_file.hpp"
#include "support/identifiers.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Entry = std::pair<std::int32_t, std::string>;

/// One call of kob_lookup; frees what it was handed out.
struct Lookup {
    std::int32_t store = 1;
    std::int32_t verbose = 0;
    // both ways
    std::int32_t capacity = 0;
    std::int64_t path_size = 0;
    std::int32_t* keys = nullptr;
    std::int64_t* offsets = nullptr;
    char* paths = nullptr;
    // what comes out
    std::int32_t count = -77;
    std::int64_t path_length = -77;
    std::int32_t status = 77;

    Lookup() = default;
    Lookup(const Lookup&) = delete;
    Lookup& operator=(const Lookup&) = delete;
    ~Lookup()
    {
        std::free(keys);    // NOLINT: these arrays are malloc's by agreement
        std::free(offsets); // NOLINT
        std::free(paths);   // NOLINT
    }

    /// Arrays of the caller's own.
    void allocate(std::int32_t entries, std::int64_t bytes)
    {
        capacity = entries;
        path_size = bytes;
        keys =
            static_cast<std::int32_t*>(std::malloc(sizeof(std::int32_t) * static_cast<std::size_t>(entries))); // NOLINT
        offsets = static_cast<std::int64_t*>(
            std::malloc(sizeof(std::int64_t) * static_cast<std::size_t>(entries + 1))); // NOLINT
        paths = static_cast<char*>(std::malloc(static_cast<std::size_t>(bytes)));       // NOLINT
    }

    Lookup& run(std::int64_t group)
    {
        kob_lookup(&group, &store, &verbose, &capacity, &path_size, &count, &path_length, &keys, &offsets, &paths,
                   &status);
        return *this;
    }

    std::vector<Entry> entries() const
    {
        std::vector<Entry> all;
        for (std::int32_t i = 0; i < count; ++i) all.emplace_back(keys[i], paths + offsets[i]);
        return all;
    }
};

/// The entries below a group; fails the test when the listing is not sound in itself.
std::vector<Entry> entries_of(std::int64_t group)
{
    Lookup lookup;
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(errors_of([&] { lookup.run(group); }), ""); }), "");
    EXPECT_EQ(lookup.status, 0);
    auto entries = lookup.entries();
    EXPECT_EQ(lookup.offsets[0], 0);
    std::int64_t end = 0;
    for (std::int32_t i = 0; i < lookup.count; ++i) {
        EXPECT_EQ(lookup.offsets[i], end);
        end += static_cast<std::int64_t>(entries[static_cast<std::size_t>(i)].second.size()) + 1;
        EXPECT_EQ(lookup.offsets[i + 1], end);
    }
    EXPECT_EQ(lookup.path_length, end);

    Lookup counted;
    counted.store = 0;
    counted.run(group);
    EXPECT_EQ(counted.status, 0);
    EXPECT_EQ(counted.count, lookup.count);
    EXPECT_EQ(counted.path_length, lookup.path_length);
    return entries;
}

class Directory : public testing::Test {
protected:
    const TempDir dir_;
    const std::string path_ = dir_ / "run.kob";
    const Hid file_ = create_file(path_);

    void block(const std::string& path, std::int32_t key) const { PlainBlock{file_, path, key}; }
    void soft_link(const std::string& target, const std::string& name) const
    {
        ASSERT_GE(H5Lcreate_soft(target.c_str(), file_, name.c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);
    }
    void hard_link(const std::string& target, const std::string& name) const
    {
        ASSERT_GE(H5Lcreate_hard(file_, target.c_str(), file_, name.c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);
    }
    void external_link(const std::string& file, const std::string& target, const std::string& name) const
    {
        ASSERT_GE(H5Lcreate_external(file.c_str(), target.c_str(), file_, name.c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);
    }
};

TEST_F(Directory, Lists_keys_and_paths_in_the_order_of_names)
{
    block("singlestate/state000000000002/NODE/kobblock", 1000);
    block("singlestate/state000000000010/NODE/kobblock", 1001);
    block("multistate/NODE/kobblock", 1050);
    block("constant/system/kobblock", 10);
    block("constant/indices/kobblock", 20);
    block("constant/NODE/kobblock", 200);
    create_group(file_, "kobheader");
    EXPECT_THAT(entries_of(file_),
                ElementsAre(Entry{200, "constant/NODE/kobblock"}, Entry{20, "constant/indices/kobblock"},
                            Entry{10, "constant/system/kobblock"}, Entry{1, "kobheader"},
                            Entry{1050, "multistate/NODE/kobblock"},
                            Entry{1000, "singlestate/state000000000002/NODE/kobblock"},
                            Entry{1001, "singlestate/state000000000010/NODE/kobblock"}));
}

TEST_F(Directory, Paths_start_at_the_given_group)
{
    block("results/constant/NODE/kobblock", 200);
    EXPECT_THAT(entries_of(open_group(file_, "results")), ElementsAre(Entry{200, "constant/NODE/kobblock"}));
    EXPECT_THAT(entries_of(open_group(file_, "results/constant/NODE")), ElementsAre(Entry{200, "kobblock"}));
}

TEST_F(Directory, An_empty_group_has_no_entries)
{
    EXPECT_THAT(entries_of(file_), IsEmpty());
    Lookup lookup;
    lookup.run(file_);
    EXPECT_EQ(lookup.count, 0);
    EXPECT_EQ(lookup.path_length, 0);
    EXPECT_EQ(lookup.status, 0);
    ASSERT_NE(lookup.offsets, nullptr);
    ASSERT_NE(lookup.paths, nullptr);
    EXPECT_EQ(lookup.offsets[0], 0);
    EXPECT_EQ(lookup.paths[0], '\0');
}

TEST_F(Directory, Nothing_below_a_block_or_the_header_is_listed)
{
    block("kobblock", 100);
    block("kobblock/inner/kobblock", 200);
    block("kobheader/inner/kobblock", 300);
    EXPECT_THAT(entries_of(file_), ElementsAre(Entry{100, "kobblock"}, Entry{1, "kobheader"}));
}

TEST_F(Directory, Datasets_and_named_types_are_ignored)
{
    block("constant/NODE/kobblock", 200);
    put_dataset(file_, "constant/a_dataset", H5T_STD_I32LE, {3});
    const Hid type{H5Tcopy(H5T_NATIVE_INT)};
    H5Tcommit2(file_, "a_type", type, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_THAT(entries_of(file_), ElementsAre(Entry{200, "constant/NODE/kobblock"}));
}

TEST_F(Directory, A_block_without_readable_key_is_left_out_silently)
{
    create_path(file_, "a/kobblock");
    put_attribute(create_path(file_, "b/kobblock"), "block", text_type(4), {}, text_type(4), "1000");
    put_attribute(create_path(file_, "c/kobblock"), "block", H5T_STD_I64LE, {});
    put_attribute(create_path(file_, "d/kobblock"), "block", H5T_STD_I32LE, {2});
    create_group(file_, "e");
    put_dataset(file_, "e/kobblock", H5T_STD_I32LE, {3});
    block("f/kobblock", 100);
    EXPECT_THAT(entries_of(file_), ElementsAre(Entry{100, "f/kobblock"}));
}

TEST_F(Directory, Long_names_are_listed_whole)
{
    const auto path = std::string(700, 'a') + "/" + std::string(700, 'b') + "/" + std::string(5000, 'c');
    block(path + "/kobblock", 100);
    block("z/kobblock", 200);
    EXPECT_THAT(entries_of(file_), ElementsAre(Entry{100, path + "/kobblock"}, Entry{200, "z/kobblock"}));
}

// ---- arrays

TEST_F(Directory, Counting_hands_out_no_arrays)
{
    block("constant/NODE/kobblock", 200);
    for (const std::int32_t store : {0, -1}) {
        Lookup lookup;
        lookup.allocate(5, 100);
        auto* const keys = lookup.keys;
        auto* const offsets = lookup.offsets;
        auto* const paths = lookup.paths;
        lookup.store = store;
        lookup.verbose = 1;
        EXPECT_EQ(output_of([&] { lookup.run(file_); }), "") << "no listing without arrays";
        EXPECT_EQ(lookup.status, 0);
        EXPECT_EQ(lookup.count, 1);
        EXPECT_EQ(lookup.path_length, 23);
        EXPECT_EQ(lookup.capacity, 0);
        EXPECT_EQ(lookup.path_size, 0);
        EXPECT_EQ(lookup.keys, nullptr);
        EXPECT_EQ(lookup.offsets, nullptr);
        EXPECT_EQ(lookup.paths, nullptr);
        std::free(keys);    // NOLINT: what was handed in is still the caller's
        std::free(offsets); // NOLINT
        std::free(paths);   // NOLINT
    }
}

TEST_F(Directory, Missing_arrays_are_allocated_with_their_default_sizes)
{
    block("constant/NODE/kobblock", 200);
    for (const std::int32_t entries : {0, -7}) {
        Lookup lookup;
        lookup.capacity = entries;
        lookup.path_size = entries;
        lookup.run(file_);
        EXPECT_EQ(lookup.status, 0);
        EXPECT_EQ(lookup.capacity, 10000);
        EXPECT_EQ(lookup.path_size, 2560000);
        EXPECT_THAT(lookup.entries(), ElementsAre(Entry{200, "constant/NODE/kobblock"}));
    }
}

TEST_F(Directory, Sufficient_arrays_stay_where_they_are)
{
    block("constant/NODE/kobblock", 200);
    Lookup lookup;
    lookup.allocate(1, 23);
    auto* const keys = lookup.keys;
    auto* const paths = lookup.paths;
    lookup.run(file_);
    EXPECT_EQ(lookup.status, 0);
    EXPECT_EQ(lookup.capacity, 1);
    EXPECT_EQ(lookup.path_size, 23);
    EXPECT_EQ(lookup.keys, keys);
    EXPECT_EQ(lookup.paths, paths);
    EXPECT_THAT(lookup.entries(), ElementsAre(Entry{200, "constant/NODE/kobblock"}));
}

TEST_F(Directory, Arrays_grow_by_doubling)
{
    std::vector<Entry> expected;
    for (const char name : std::string{"abcdefg"}) {
        expected.emplace_back(name, std::string(1, name) + "/kobblock");
        block(expected.back().second, name);
    }
    Lookup lookup;
    lookup.allocate(1, 1);
    lookup.run(file_);
    EXPECT_EQ(lookup.status, 0);
    EXPECT_EQ(lookup.entries(), expected);
    EXPECT_EQ(lookup.capacity, 8);
    // a path takes 11 bytes: 11 > 1 gives 22, 33 > 22 gives 66, 77 > 66 gives 154
    EXPECT_EQ(lookup.path_size, 154);
}

TEST_F(Directory, Enlarged_arrays_can_be_passed_in_again)
{
    block("a/kobblock", 100);
    block("b/kobblock", 200);
    Lookup lookup;
    lookup.allocate(1, 1);
    for (int i = 0; i < 3; ++i) {
        lookup.run(file_);
        EXPECT_THAT(lookup.entries(), ElementsAre(Entry{100, "a/kobblock"}, Entry{200, "b/kobblock"}));
        EXPECT_EQ(lookup.capacity, 2);
    }
}

TEST_F(Directory, A_missing_array_is_refused)
{
    block("a/kobblock", 100);
    Lookup no_arrays;
    no_arrays.capacity = 5;
    no_arrays.run(file_);
    EXPECT_EQ(no_arrays.status, -1);
    Lookup no_paths;
    no_paths.path_size = 500;
    no_paths.run(file_);
    EXPECT_EQ(no_paths.status, -1);
}

TEST_F(Directory, More_than_10000_blocks_double_the_default_arrays)
{
    const auto constant = create_group(file_, "constant");
    for (std::int32_t i = 0; i < 10001; ++i) {
        auto name = std::to_string(i);
        name.insert(0, 6 - name.size(), '0');
        PlainBlock{constant, name + "/kobblock", i + 1};
    }
    Lookup lookup;
    lookup.run(file_);
    EXPECT_EQ(lookup.status, 0);
    ASSERT_EQ(lookup.count, 10001);
    EXPECT_EQ(lookup.capacity, 20000);
    EXPECT_EQ(lookup.path_size, 2560000);
    const auto entries = lookup.entries();
    EXPECT_EQ(entries.front(), (Entry{1, "constant/000000/kobblock"}));
    EXPECT_EQ(entries.back(), (Entry{10001, "constant/010000/kobblock"}));
    EXPECT_EQ(lookup.path_length, 10001 * 25);
}

TEST_F(Directory, The_listing_is_printed_when_verbose)
{
    block("constant/NODE/kobblock", 200);
    create_group(file_, "kobheader");
    Lookup lookup;
    lookup.verbose = 1;
    EXPECT_EQ(output_of([&] { lookup.run(file_); }), "\n KOB INFO KOB_LOOKUP: 2 blocks found - total path len: 33\n\n"
                                                     "      block:   blockkey path\n"
                                                     "          0:        200 \"constant/NODE/kobblock\"\n"
                                                     "          1:          1 \"kobheader\"\n\n");
}

TEST_F(Directory, Nothing_is_printed_unless_verbose)
{
    block("constant/NODE/kobblock", 200);
    EXPECT_EQ(output_of([&] { Lookup{}.run(file_); }), "");
}

TEST_F(Directory, A_handle_that_is_no_group_gives_a_negative_status)
{
    for (const std::int64_t group : {std::int64_t{-1}, std::int64_t{0}, std::int64_t{12345}}) {
        Lookup lookup;
        errors_of([&] { lookup.run(group); });
        EXPECT_LT(lookup.status, 0);
        EXPECT_EQ(lookup.count, 0);
        EXPECT_EQ(lookup.path_length, 0);
    }
}

// ---- links

TEST_F(Directory, A_group_with_two_names_is_listed_under_both)
{
    block("results/constant/NODE/kobblock", 200);
    hard_link("results", "post");
    EXPECT_THAT(entries_of(file_),
                ElementsAre(Entry{200, "post/constant/NODE/kobblock"}, Entry{200, "results/constant/NODE/kobblock"}));
}

TEST_F(Directory, Soft_links_to_groups_are_followed)
{
    block("a/NODE/kobblock", 200);
    soft_link("/a", "b");
    soft_link("a/NODE/kobblock", "kobblock");
    EXPECT_THAT(entries_of(file_),
                ElementsAre(Entry{200, "a/NODE/kobblock"}, Entry{200, "b/NODE/kobblock"}, Entry{200, "kobblock"}));
}

TEST_F(Directory, External_links_to_groups_are_followed)
{
    {
        const auto other = create_file(dir_ / "mesh.kob");
        PlainBlock{other, "results/constant/ELEM/kobblock", 300};
    }
    external_link("mesh.kob", "/results", "mesh");
    external_link("mesh.kob", "/results/constant/ELEM/kobblock", "kobblock");
    block("a/kobblock", 100);
    EXPECT_THAT(entries_of(file_), ElementsAre(Entry{100, "a/kobblock"}, Entry{300, "kobblock"},
                                               Entry{300, "mesh/constant/ELEM/kobblock"}));
}

TEST_F(Directory, Links_that_lead_nowhere_are_skipped)
{
    block("m/kobblock", 100);
    soft_link("/nowhere", "a");
    soft_link("/nowhere", "z");
    soft_link("/nowhere/at/all", "m/inner");
    soft_link("/nowhere", "kobblock");
    external_link("missing.kob", "/", "b");
    external_link("missing.kob", "/", "y");
    create_group(file_, "c");
    external_link("missing.kob", "/", "c/kobblock");
    {
        create_file(dir_ / "other.kob");
    }
    external_link("other.kob", "/nowhere", "x");
    EXPECT_THAT(entries_of(file_), ElementsAre(Entry{100, "m/kobblock"}));
}

TEST_F(Directory, Links_to_datasets_are_skipped)
{
    put_dataset(file_, "numbers", H5T_STD_I32LE, {3});
    soft_link("/numbers", "a");
    block("m/kobblock", 100);
    EXPECT_THAT(entries_of(file_), ElementsAre(Entry{100, "m/kobblock"}));
}

TEST_F(Directory, A_group_that_is_open_on_the_path_is_not_entered_again)
{
    block("a/b/kobblock", 100);
    soft_link("/", "a/root");
    soft_link("/a", "a/b/again");
    hard_link("a", "a/b/hard");
    hard_link("/", "a/b/hard_root");
    soft_link("/a/self", "a/self");
    external_link("run.kob", "/", "a/outside_and_back");
    EXPECT_THAT(entries_of(file_), ElementsAre(Entry{100, "a/b/kobblock"}));
}

TEST_F(Directory, A_cycle_is_cut_where_it_closes)
{
    block("a/kobblock", 100);
    block("b/kobblock", 200);
    soft_link("/b", "a/to_b");
    soft_link("/a", "b/to_a");
    EXPECT_THAT(entries_of(file_), ElementsAre(Entry{100, "a/kobblock"}, Entry{200, "a/to_b/kobblock"},
                                               Entry{200, "b/kobblock"}, Entry{100, "b/to_a/kobblock"}));
}

TEST_F(Directory, A_cycle_through_two_files_is_cut)
{
    {
        const auto other = create_file(dir_ / "other.kob");
        PlainBlock{other, "o/kobblock", 300};
        H5Lcreate_external("run.kob", "/", other, "back", H5P_DEFAULT, H5P_DEFAULT);
    }
    external_link("other.kob", "/", "there");
    block("a/kobblock", 100);
    EXPECT_THAT(entries_of(file_), ElementsAre(Entry{100, "a/kobblock"}, Entry{300, "there/o/kobblock"}));
}

// ---- depth

/// Groups one in the other, with a block at the end.
void make_deep(hid_t file, int levels)
{
    auto group = create_group(file, "n");
    for (int i = 1; i < levels; ++i) group = create_group(group, "n");
    PlainBlock{group, "kobblock", 100};
}

TEST_F(Directory, A_tree_of_1000_levels_is_listed)
{
    make_deep(file_, 1000);
    Lookup lookup;
    lookup.run(file_);
    EXPECT_EQ(lookup.status, 0);
    EXPECT_EQ(lookup.count, 1);
    EXPECT_EQ(lookup.path_length, 1000 * 2 + 9);
}

TEST_F(Directory, A_deep_tree_needs_no_more_stack_than_a_flat_one)
{
    make_deep(file_, 1000);
    struct Job {
        std::int64_t group;
        Lookup lookup;
    } job{file_, {}};
    pthread_attr_t small_stack;
    pthread_attr_init(&small_stack);
    ASSERT_EQ(pthread_attr_setstacksize(&small_stack, 256 * 1024), 0);
    pthread_t thread{};
    const auto body = [](void* argument) -> void* {
        auto& work = *static_cast<Job*>(argument);
        work.lookup.run(work.group);
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &small_stack, body, &job), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&small_stack);
    EXPECT_EQ(job.lookup.status, 0);
    EXPECT_EQ(job.lookup.count, 1);
}

TEST_F(Directory, A_tree_that_no_real_file_has_ends_with_a_negative_status)
{
    make_deep(file_, 20000);
    Lookup lookup;
    EXPECT_EQ(left_open_by([&] { errors_of([&] { lookup.run(file_); }); }), "");
    EXPECT_LT(lookup.status, 0);
}

// ---- damage

TEST(DamagedDirectory, An_object_that_cannot_be_examined_ends_the_walk)
{
    const TempFile temp;
    haddr_t address = 0;
    {
        const auto file = create_file(temp.path());
        PlainBlock{file, "a/kobblock", 100};
        PlainBlock{file, "z/kobblock", 200};
        H5O_info2_t info{};
        H5Oget_info_by_name3(create_group(file, "m"), ".", &info, H5O_INFO_BASIC, H5P_DEFAULT);
        H5VLnative_token_to_addr(file, info.token, &address);
    }
    {
        std::fstream bytes{temp.path(), std::ios::binary | std::ios::in | std::ios::out};
        bytes.seekp(static_cast<std::streamoff>(address));
        bytes << std::string(16, '\xff'); // over the object header of "m"
    }
    const auto file = open_file(temp.path());
    for (const std::int32_t store : {0, 1}) {
        Lookup lookup;
        lookup.store = store;
        EXPECT_EQ(left_open_by([&] { errors_of([&] { lookup.run(file); }); }), "");
        EXPECT_LT(lookup.status, 0);
    }
}

} // namespace
