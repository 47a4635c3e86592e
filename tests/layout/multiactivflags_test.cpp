// SPDX-License-Identifier: BSD-3-Clause
// What a block of activation flags of a series holds.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/layout.hpp"
#include "support/result_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "multistate/TIME/multiactivflags/CONTACT/kobblock";

void write(const KobFile& file, const MultiActivFlags& block)
{
    const auto outcome = block.write(file);
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
}

const std::string attributes = table({
    "attribute block integer 4 little scalar",
    "attribute blocktype text 256 space scalar",
    "attribute series text 256 space scalar",
    "attribute etyp text 256 space scalar",
    "attribute nent integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute nstate integer 4 little scalar",
});

} // namespace

TEST(MultiActivFlagsLayout, SomeStatesThenMore)
{
    KobFile file;
    write(file, MultiActivFlags{2});
    const MultiActivFlags written{4};
    write(file, written);
    const auto block = file.block(place);
    EXPECT_EQ(layout_of(block), attributes + table({
                                                 "dataset entid integer 4 little [3] max [3] compact",
                                                 "dataset indexident integer 4 little [4, 1] max [unlimited, 1] "
                                                 "chunked [1, 1]",
                                                 "dataset indexval float 8 little [4, 1] max [unlimited, 1] chunked "
                                                 "[1, 1]",
                                                 "dataset status integer 4 little [4, 3] max [unlimited, 3] chunked "
                                                 "[1, 3]",
                                             }));
    EXPECT_EQ(attribute_names(block),
              (std::vector<std::string>{"block", "blocktype", "series", "etyp", "nent", "nindex", "nstate"}));
    EXPECT_EQ(stored_ints(block, "block"), (std::vector<std::int64_t>{2150}));
    EXPECT_EQ(stored_text(block, "blocktype"), "multiactivflags" + std::string(241, '\0'));
    EXPECT_EQ(stored_text(block, "series"), Text256{"TIME"}.field());
    EXPECT_EQ(stored_text(block, "etyp"), Text256{"CONTACT"}.field());
    EXPECT_EQ(stored_ints(block, "nent"), (std::vector<std::int64_t>{3}));
    EXPECT_EQ(stored_ints(block, "nindex"), (std::vector<std::int64_t>{1}));
    EXPECT_EQ(stored_ints(block, "nstate"), (std::vector<std::int64_t>{4}));
    EXPECT_EQ(stored_ints(block, "entid"), (std::vector<std::int64_t>{21, 22, 23}));
    EXPECT_EQ(stored_ints(block, "indexident"), (std::vector<std::int64_t>{10, 20, 30, 40}));
    EXPECT_EQ(stored_reals(block, "indexval"), (std::vector<double>{0, 0.25, 0.5, 0.75}));
    EXPECT_EQ(stored_ints(block, "status"),
              (std::vector<std::int64_t>{0, 1, 2, 100, 101, 102, 200, 201, 202, 300, 301, 302}));
}

TEST(MultiActivFlagsLayout, WithEveryFilterAndSmallNumbers)
{
    KobFile file;
    MultiActivFlags block{9};
    block.nent = 1234;
    block.nindex = 2;
    block.hold(9);
    block.entid.assign(1234, 5);
    block.float_size = 4;
    block.filter_flags = 255;
    block.filter_params = {3, 6};
    write(file, block);
    EXPECT_EQ(
        layout_of(file.block(place)),
        attributes +
            table({
                "dataset entid integer 4 little [1234] max [1234] chunked [1234] scaleoffset(integer 0) shuffle "
                "deflate(6) fill 10000",
                "dataset indexident integer 4 little [9, 2] max [unlimited, 2] chunked [1, 2] scaleoffset(integer 0) "
                "shuffle deflate(6) fill 10000",
                "dataset indexval float 4 little [9, 2] max [unlimited, 2] chunked [1, 2] shuffle deflate(6)",
                "dataset status integer 4 little [9, 1234] max [unlimited, 1234] chunked [1, 1234] "
                "scaleoffset(integer 0) shuffle deflate(6) fill 10000",
            }));
}
