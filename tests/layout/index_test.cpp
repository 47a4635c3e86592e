// SPDX-License-Identifier: BSD-3-Clause
// What an index block holds, read with plain HDF5 and compared with a table written by hand.
#include <gtest/gtest.h>

#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "layout.hpp"
#include "model_blocks.hpp"

using namespace kob_test;

TEST(IndexLayout, Four_attributes_and_no_dataset)
{
    KobFile file;
    ASSERT_EQ((IndexBlock{2, "TIME"}.write(file.handle())), 0);
    file.close();
    const char* const path = "/results/constant/indices/kobblock";
    EXPECT_EQ(layout_of(file.path(), path), table({
                                                "attribute block integer 4 little scalar",
                                                "attribute blocktype text 256 space scalar",
                                                "attribute nindex integer 4 little scalar",
                                                "attribute etypvar text 256 space scalar",
                                            }));
    const auto opened = open_file(file.path());
    const auto block = open_group(opened, path);
    EXPECT_EQ(attribute_names(block), (std::vector<std::string>{"block", "blocktype", "nindex", "etypvar"}));
    EXPECT_EQ(stored_ints(block, "block"), std::vector<std::int64_t>{20});
    EXPECT_EQ(stored_text(block, "blocktype"), "indices" + std::string(249, '\0'));
    EXPECT_EQ(stored_ints(block, "nindex"), std::vector<std::int64_t>{2});
    EXPECT_EQ(stored_text(block, "etypvar"), "TIME" + std::string(252, ' '));
}
