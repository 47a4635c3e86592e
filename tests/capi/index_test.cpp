// SPDX-License-Identifier: BSD-3-Clause
// The index block, written and read through its entry points.
#include <gtest/gtest.h>

#include <string>

#include "block_checks.hpp"
#include "identifiers.hpp"
#include "kob_file.hpp"
#include "model_blocks.hpp"

using namespace kob_test;

namespace {

const char* const path = "constant/indices/kobblock";

} // namespace

TEST(Index, Everything_comes_back_as_it_was_written)
{
    const KobFile file;
    IndexBlock written{2, "TIME"};
    ASSERT_EQ(written.write(file.handle()), 0);
    IndexBlock read;
    EXPECT_EQ(read.read(file.block(path)), 0);
    EXPECT_EQ(read, written);
}

TEST(Index, The_group_name_is_stored_as_the_whole_field)
{
    const KobFile file;
    IndexBlock written{-3, std::string("TIME\0 \t", 7)};
    ASSERT_EQ(written.write(file.handle()), 0);
    EXPECT_EQ(stored_text(file.block(path), "etypvar"), written.etypvar.field());
}

TEST(Index, Unused_arguments_may_be_anything)
{
    const KobFile file;
    const std::int32_t nindex = 1;
    const Text256 name{"TIME"};
    const std::int32_t anything = 12345;
    std::int32_t status = 7;
    KOB_WRITE_INDEX(file.address(), &nindex, name.data(), &anything, &anything, &status);
    EXPECT_EQ(status, 0);
    const auto block = file.block(path);
    for (const std::int32_t unused : {0, 1, 3, -1}) {
        IndexBlock read;
        KOB_READ_INDEX(&block, &unused, &read.nindex, read.etypvar.data(), &unused, &unused, &status);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(read, (IndexBlock{1, "TIME"}));
    }
}

TEST(Index, A_second_block_is_refused_and_the_first_one_stays)
{
    const KobFile file;
    IndexBlock first{1, "TIME"};
    IndexBlock second{2, "FREQUENCY"};
    ASSERT_EQ(first.write(file.handle()), 0);
    EXPECT_EQ(reply_of([&] { return second.write(file.handle()); }), already_exists(20, "indices"));
    IndexBlock read;
    EXPECT_EQ(read.read(file.block(path)), 0);
    EXPECT_EQ(read, first);
}

TEST(Index, The_reader_checks_handle_and_key)
{
    IndexBlock read;
    expect_reader_checks_block([&](std::int64_t block) { return read.read(block); }, "20");
    EXPECT_EQ(read, IndexBlock{});
}

TEST(Index, A_missing_or_foreign_attribute_is_the_storage_layers_error)
{
    const KobFile file;
    IndexBlock written{1, "TIME"};
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(path);
    H5Adelete(block, "etypvar");
    IndexBlock read;
    EXPECT_EQ(reply_of([&] { return read.read(block); }).status, -4002);
    EXPECT_EQ(read.nindex, 1) << "read before the one that is missing";
    put_attribute(block, "etypvar", text_type(257), {});
    EXPECT_EQ(reply_of([&] { return read.read(block); }).status, -4010);
}

TEST(Index, The_writer_leaves_the_block_open_and_the_reader_nothing)
{
    const KobFile file;
    IndexBlock written{1, "TIME"};
    EXPECT_EQ(left_open_by([&] { ASSERT_EQ(written.write(file.handle()), 0); }), "group: 1");
    const auto block = file.block(path);
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(IndexBlock{}.read(block), 0); }), "");
    EXPECT_EQ(left_open_by([&] { reply_of([&] { return written.write(file.handle()); }); }), "")
        << "a refused block is closed again";
}
