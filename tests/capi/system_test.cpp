// SPDX-License-Identifier: BSD-3-Clause
// The system block, written and read through its entry points.
#include <gtest/gtest.h>

#include <string>

#include "block_checks.hpp"
#include "hdf5_file.hpp"
#include "identifiers.hpp"
#include "kob_file.hpp"
#include "model_blocks.hpp"

using namespace kob_test;

namespace {

const char* const path = "constant/system/kobblock";

} // namespace

TEST(System, Everything_comes_back_as_it_was_written)
{
    const KobFile file;
    auto written = SystemBlock::sample();
    ASSERT_EQ(written.write(file.handle()), 0);
    auto read = SystemBlock::empty(3, 2, 5);
    FoundFilters found;
    EXPECT_EQ(read.read(file.block(path), 2, &found), 0);
    EXPECT_EQ(read, written);
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
}

TEST(System, Texts_come_back_to_the_last_byte)
{
    const KobFile file;
    auto written = SystemBlock::sample();
    written.title = std::string("a\0b\n \xc3\xa4", 7) + std::string(249, '.');
    written.cdate = "2024-1\0x";
    ASSERT_EQ(written.write(file.handle()), 0);
    auto read = SystemBlock::empty(3, 2, 5);
    EXPECT_EQ(read.read(file.block(path), 2), 0);
    EXPECT_EQ(read, written);
}

TEST(System, Mode_1_reads_the_scalars_and_leaves_the_arrays_and_filters_alone)
{
    const KobFile file;
    auto written = SystemBlock::sample();
    ASSERT_EQ(written.write(file.handle()), 0);
    auto read = SystemBlock::empty(3, 2, 5);
    FoundFilters found;
    EXPECT_EQ(read.read(file.block(path), 1, &found), 0);
    auto expected = SystemBlock::empty(3, 2, 5);
    expected.title = written.title;
    expected.sys = written.sys;
    expected.solver_name = written.solver_name;
    expected.solver_vers = written.solver_vers;
    expected.cdate = written.cdate;
    expected.ctime = written.ctime;
    expected.mdate = written.mdate;
    expected.mtime = written.mtime;
    expected.nbunit = 3;
    expected.ndunit = 2;
    EXPECT_EQ(read, expected);
    EXPECT_EQ(found, untouched_filters);
}

TEST(System, Another_mode_is_refused_after_the_scalars_are_read)
{
    const KobFile file;
    auto written = SystemBlock::sample();
    ASSERT_EQ(written.write(file.handle()), 0);
    for (const std::int32_t mode : {0, 3, -1}) {
        auto read = SystemBlock::empty(3, 2, 5);
        EXPECT_EQ(reply_of([&] { return read.read(file.block(path), mode); }),
                  (Reply{-3, "KOB INTERNAL ERROR reading block with key 10 \n"}));
        EXPECT_EQ(read.title, written.title);
        EXPECT_EQ(read.ndunit, 2);
        EXPECT_EQ(read.ubid, Ints32(3, untouched_int));
    }
}

TEST(System, A_second_block_is_refused_and_the_first_one_stays)
{
    const KobFile file;
    auto first = SystemBlock::sample();
    auto second = SystemBlock::large();
    ASSERT_EQ(first.write(file.handle()), 0);
    EXPECT_EQ(reply_of([&] { return second.write(file.handle()); }), already_exists(10, "system"));
    auto read = SystemBlock::empty(3, 2, 5);
    EXPECT_EQ(read.read(file.block(path), 2), 0);
    EXPECT_EQ(read, first);
}

TEST(System, Without_units_there_are_no_unit_arrays_and_none_is_read)
{
    const KobFile file;
    auto written = SystemBlock::sample();
    written.nbunit = 0;
    written.ndunit = 0;
    ASSERT_EQ(written.write(file.handle()), 0);
    EXPECT_TRUE(link_names(file.block(path)).empty());
    auto read = SystemBlock::empty(3, 2, 5);
    FoundFilters found;
    EXPECT_EQ(read.read(file.block(path), 2, &found), 0);
    EXPECT_EQ(read.nbunit, 0);
    EXPECT_EQ(read.ubid, Ints32(3, untouched_int));
    EXPECT_EQ(read.udbexp, Reals64(5, untouched_real));
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
}

TEST(System, Derived_units_without_factors_have_no_factor_arrays)
{
    const KobFile file;
    auto written = SystemBlock::sample();
    written.ndbunit = {0, 0};
    ASSERT_EQ(written.write(file.handle(), {.filter_flags = 255}), 0);
    EXPECT_EQ(link_names(file.block(path)), (std::vector<std::string>{"ndbunit", "ubcon", "ubid", "ubnam", "ubshift",
                                                                      "ubtyp", "udid", "udnam", "udscal"}));
    auto read = SystemBlock::empty(3, 2, 5);
    FoundFilters found;
    EXPECT_EQ(read.read(file.block(path), 2, &found), 0);
    EXPECT_EQ(read.udscal, written.udscal);
    EXPECT_EQ(read.udbid, Ints32(5, untouched_int));
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
}

TEST(System, Floats_are_rounded_when_they_are_stored_in_4_bytes)
{
    for (const std::int32_t float_size : {4, 8, 0, -1}) {
        const KobFile file;
        auto written = SystemBlock::sample();
        ASSERT_EQ(written.write(file.handle(), {.float_size = float_size}), 0);
        auto read = SystemBlock::empty(3, 2, 5);
        EXPECT_EQ(read.read(file.block(path), 2), 0);
        EXPECT_EQ(read.ubcon[2], float_size == 4 ? static_cast<double>(0.1F) : 0.1) << float_size;
    }
}

TEST(System, A_float_size_that_is_none_is_the_storage_layers_error)
{
    const KobFile file;
    auto written = SystemBlock::sample();
    const auto reply = reply_of([&] { return written.write(file.handle(), {.float_size = 5}); });
    EXPECT_EQ(reply.status, -3002);
    EXPECT_EQ(first_line(reply.errors), "KOB INTERNAL ERROR (2) in KOB_H5gettype - kob_type, data_size: 3 5\n");
}

TEST(System, The_filters_of_the_last_array_are_reported)
{
    const KobFile file;
    auto written = SystemBlock::large();
    ASSERT_EQ(written.write(file.handle(), {.filter_flags = 255}), 0);
    auto read = SystemBlock::empty(9, 9, 9);
    FoundFilters found;
    EXPECT_EQ(read.read(file.block(path), 2, &found), 0);
    EXPECT_EQ(read, written);
    EXPECT_EQ(found, (FoundFilters{2 + 16, {0, 6}})) << "\"udbexp\" is never stored with scale-offset";
}

TEST(System, The_writer_stops_at_the_first_failure_and_leaves_what_it_wrote)
{
    const KobFile file;
    auto written = SystemBlock::large();
    const auto reply = reply_of([&] {
        return written.write(file.handle(), {.filter_flags = 1, .filter_params = {0, 10}});
    });
    EXPECT_EQ(reply, (Reply{-2170, "KOB INTERNAL ERROR (170) in KOB_H5Dwrite - name, kob_type, data_size, kob_size, "
                                   "mode, error: ubid 2 4 4 0 10\n"}));
    EXPECT_TRUE(link_names(file.block(path)).empty());
    auto read = SystemBlock::empty(0, 0, 0);
    EXPECT_EQ(read.read(file.block(path), 1), 0);
    EXPECT_EQ(read.nbunit, 9);
}

TEST(System, A_negative_count_is_the_storage_layers_error_and_the_frame_stays)
{
    for (const std::int32_t count : {-1, -2}) {
        const KobFile file;
        auto written = SystemBlock::sample();
        written.nbunit = count;
        const auto status = reply_of([&] { return written.write(file.handle()); }).status;
        if (count == -1)
            EXPECT_EQ(status, -3000);
        else
            EXPECT_TRUE(status == -2040 || status == -2190) << status;
        EXPECT_TRUE(link_names(file.block(path)).empty());
        EXPECT_EQ(stored_ints(file.block(path), "block"), std::vector<std::int64_t>{10});
    }
}

TEST(System, An_invalid_handle_writes_nothing)
{
    auto written = SystemBlock::sample();
    EXPECT_LT(reply_of([&] { return written.write(-1); }).status, 0);
    KobFile file;
    ASSERT_EQ(file.path().empty(), false);
    file.reopen(read_only);
    EXPECT_EQ(reply_of([&] { return written.write(file.handle()); }).status, -8) << "in a read-only file";
}

TEST(System, The_writer_leaves_the_block_open_and_the_reader_nothing)
{
    const KobFile file;
    auto written = SystemBlock::sample();
    EXPECT_EQ(left_open_by([&] { ASSERT_EQ(written.write(file.handle()), 0); }), "group: 1");
    const auto block = file.block(path);
    auto read = SystemBlock::empty(3, 2, 5);
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(read.read(block, 2), 0); }), "");
}

TEST(System, The_reader_checks_handle_and_key)
{
    auto read = SystemBlock::empty(3, 2, 5);
    expect_reader_checks_block([&](std::int64_t block) { return read.read(block, 2); }, "10");
    EXPECT_EQ(read, SystemBlock::empty(3, 2, 5));
}

TEST(System, A_file_that_contradicts_itself_overruns_nothing)
{
    const auto status_after = [](auto&& spoil) {
        const KobFile file;
        auto written = SystemBlock::sample();
        EXPECT_EQ(written.write(file.handle()), 0);
        const auto block = file.block(path);
        spoil(block);
        auto read = SystemBlock::empty(3, 2, 5);
        return reply_of([&] { return read.read(block, 2); }).status;
    };
    EXPECT_EQ(status_after([](hid_t block) { set_int_attribute(block, "nbunit", 1000000); }), -6030);
    EXPECT_EQ(status_after([](hid_t block) { set_int_attribute(block, "nbunit", -5); }), -6030);
    EXPECT_EQ(status_after([](hid_t block) {
                  const std::vector<std::int32_t> huge{0x7fffffff, 0x7fffffff};
                  H5Ldelete(block, "ndbunit", H5P_DEFAULT);
                  put_dataset(block, "ndbunit", H5T_STD_I32LE, {2}, H5T_NATIVE_INT32, huge.data());
              }),
              -6030);
    EXPECT_EQ(status_after([](hid_t block) {
                  H5Adelete(block, "title");
                  put_attribute(block, "title", text_type(300), {});
              }),
              -4010);
    EXPECT_EQ(status_after([](hid_t block) {
                  H5Adelete(block, "ndunit");
                  put_attribute(block, "ndunit", H5T_STD_I32LE, {1000});
              }),
              -4020);
    EXPECT_EQ(status_after([](hid_t block) {
                  H5Adelete(block, "cdate");
                  put_attribute(block, "cdate", text_type(H5T_VARIABLE, H5T_STR_NULLTERM), {});
              }),
              -4003);
}
