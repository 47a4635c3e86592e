// SPDX-License-Identifier: BSD-3-Clause
// A written file, read by another HDF5 library from another language: h5py of the system's Python.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "captured_stream.hpp"
#include "entity_results.hpp"
#include "kob_file.hpp"
#include "model_blocks.hpp"

using namespace kob_test;

TEST(IndependentReader, Python_finds_every_block_and_value)
{
    if (std::system("/usr/bin/python3 -c 'import h5py' >/dev/null 2>&1") != 0) GTEST_SKIP() << "no python3-h5py here";
    KobFile file;
    std::int32_t status = -1;
    KOB_WRITE_FILEHEADER(file.address(), nullptr, nullptr, &status);
    ASSERT_EQ(status, 0);
    ASSERT_EQ(SystemBlock::sample().write(file.handle()), 0);
    ASSERT_EQ((IndexBlock{1, "TIME"}.write(file.handle())), 0);
    ASSERT_EQ(VariableGroupBlock::sample().write(file.handle()), 0);
    ASSERT_EQ(VariableBlock::sample().write(file.handle(), {.filter_flags = 255}), 0);
    ASSERT_EQ(ConnectivitiesBlock::sample().write(file.handle(), 12, {.filter_flags = 255}), 0);
    ASSERT_EQ(EntityResults::sample().write(file.handle(), 12, 8, {.filter_flags = 2 + 16}), 0);
    file.close();
    const std::string command =
        std::string{"/usr/bin/python3 "} + KOB_SOURCE_DIR "/tests/layout/read_with_h5py.py " + file.path() + " 2>&1";
    int result = -1;
    const auto talk = output_of([&] { result = std::system(command.c_str()); });
    EXPECT_EQ(result, 0) << talk;
    EXPECT_EQ(talk, "6 blocks as expected\n");
}
