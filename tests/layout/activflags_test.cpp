// SPDX-License-Identifier: BSD-3-Clause
// What an activation flags block holds.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/kob_file.hpp"
#include "support/layout.hpp"
#include "support/state_blocks.hpp"

using namespace kob_test;
using testing::ElementsAre;

namespace {

const std::string attributes = table({
    "attribute block integer 4 little scalar",
    "attribute blocktype text 256 space scalar",
    "attribute etyp text 256 space scalar",
    "attribute nent integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute indexic integer 4 little scalar",
});

Hid written(const KobFile& file, ActivFlags b, const std::string& path)
{
    EXPECT_EQ(b.write(file.handle()), 0) << b.errors;
    return open_group(file.handle(), path);
}

ActivFlags three_flags()
{
    ActivFlags b;
    b.set_state();
    b.nent = 3;
    b.entid = {30, 10, 20};
    b.flags = {1, 0, -4};
    return b;
}

const std::string state_path = "singlestate/state000000000012/activflags/ELEMENT/kobblock";

TEST(ActivFlagsLayout, Of_a_state)
{
    const KobFile file;
    const auto block = written(file, three_flags(), state_path);
    EXPECT_EQ(layout_of(block), attributes + table({
                                                 "dataset entid integer 4 little [3] max [3] compact",
                                                 "dataset indexident integer 4 little [1] max [1] compact",
                                                 "dataset indexval float 8 little [1] max [1] compact",
                                                 "dataset status integer 4 little [3] max [3] compact",
                                             }));
    EXPECT_THAT(attribute_names(block), ElementsAre("block", "blocktype", "etyp", "nent", "nindex", "indexic"));
    EXPECT_THAT(stored_ints(block, "block"), ElementsAre(2100));
    EXPECT_EQ(stored_text(block, "blocktype"), "activflags" + std::string(246, '\0'));
    EXPECT_EQ(stored_text(block, "etyp"), Text256{"ELEMENT"}.field());
    EXPECT_THAT(stored_ints(block, "nent"), ElementsAre(3));
    EXPECT_THAT(stored_ints(block, "nindex"), ElementsAre(1));
    EXPECT_THAT(stored_ints(block, "indexic"), ElementsAre(3));
    EXPECT_THAT(stored_ints(block, "indexident"), ElementsAre(12));
    EXPECT_THAT(stored_reals(block, "indexval"), ElementsAre(0.5));
    EXPECT_THAT(stored_ints(block, "entid"), ElementsAre(30, 10, 20));
    EXPECT_THAT(stored_ints(block, "status"), ElementsAre(1, 0, -4));
}

TEST(ActivFlagsLayout, The_size_of_the_index_values_is_the_callers)
{
    struct {
        std::int32_t float_size;
        const char* stored;
    } const cases[]{{4, "float 4"}, {8, "float 8"}, {0, "float 8"}, {-4, "float 8"}};
    for (const auto& c : cases) {
        const KobFile file;
        auto b = three_flags();
        b.float_size = c.float_size;
        EXPECT_EQ(layout_of(written(file, b, state_path)),
                  attributes + table({
                                   "dataset entid integer 4 little [3] max [3] compact",
                                   "dataset indexident integer 4 little [1] max [1] compact",
                                   std::string{"dataset indexval "} + c.stored + " little [1] max [1] compact",
                                   "dataset status integer 4 little [3] max [3] compact",
                               }))
            << c.float_size;
    }
}

TEST(ActivFlagsLayout, Constant_without_entities)
{
    const KobFile file;
    EXPECT_EQ(layout_of(written(file, {}, "constant/activflags/ELEMENT/kobblock")), attributes);
}

TEST(ActivFlagsLayout, With_every_filter)
{
    const KobFile file;
    ActivFlags b;
    b.set_long_index();
    b.nent = 9;
    b.entid = b.flags = Ints(9, 1);
    b.filter_flags = 255;
    b.filter_params = filter_settings;
    EXPECT_EQ(layout_of(written(file, b, "singlestate/state000000000005/activflags/ELEMENT/kobblock")),
              attributes +
                  table({
                      "dataset entid integer 4 little [9] max [9] chunked [9] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset indexident integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset indexval float 8 little [8] max [8] chunked [8] shuffle deflate(6)",
                      "dataset status integer 4 little [9] max [9] chunked [9] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                  }));
}

TEST(ActivFlagsLayout, Many_flags_leave_the_object_header)
{
    const KobFile file;
    ActivFlags b;
    b.nent = 6001; // 24004 bytes
    b.entid = b.flags = Ints(6001, 1);
    EXPECT_EQ(layout_of(written(file, b, "constant/activflags/ELEMENT/kobblock")),
              attributes + table({
                               "dataset entid integer 4 little [6001] max [6001] contiguous",
                               "dataset status integer 4 little [6001] max [6001] contiguous",
                           }));
}

} // namespace
