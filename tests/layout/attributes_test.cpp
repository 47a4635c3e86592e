// SPDX-License-Identifier: BSD-3-Clause
// What attributes and identifiers blocks hold.
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
    "attribute nuid integer 4 little scalar",
    "attribute length integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute indexic integer 4 little scalar",
});

Hid written(const KobFile& file, EntityList b, const std::string& path)
{
    EXPECT_EQ(b.write(file.handle()), 0) << b.errors;
    return open_group(file.handle(), path);
}

/// Five entities at state 12 with titles of four characters and three further identifiers.
EntityList five_entities(const EntityListKind& kind)
{
    EntityList b{kind};
    b.set_state();
    b.nent = 5;
    b.nuid = 3;
    b.length = 4;
    b.entid = {1, 2, 3, 4, 5};
    b.title = "one two threfourfive";
    b.uid = {11, 12, 13, 21, 22, 23, 31, 32, 33, 41, 42, 43, 51, 52, 53};
    return b;
}

const std::string five_entities_table = table({
    "attribute block integer 4 little scalar",
    "attribute blocktype text 256 space scalar",
    "attribute etyp text 256 space scalar",
    "attribute nent integer 4 little scalar",
    "attribute nuid integer 4 little scalar",
    "attribute length integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute indexic integer 4 little scalar",
    "dataset entid integer 4 little [5] max [5] compact",
    "dataset indexident integer 4 little [1] max [1] compact",
    "dataset indexval float 8 little [1] max [1] compact",
    "dataset title text 4 space [5] max [5] compact",
    "dataset uid integer 4 little [5, 3] max [5, 3] compact",
});

void expect_five_entities(hid_t block)
{
    EXPECT_EQ(layout_of(block), five_entities_table);
    EXPECT_THAT(attribute_names(block),
                ElementsAre("block", "blocktype", "etyp", "nent", "nuid", "length", "nindex", "indexic"));
    EXPECT_EQ(stored_text(block, "etyp"), Text256{"NODE"}.field());
    EXPECT_THAT(stored_ints(block, "nent"), ElementsAre(5));
    EXPECT_THAT(stored_ints(block, "nuid"), ElementsAre(3));
    EXPECT_THAT(stored_ints(block, "length"), ElementsAre(4));
    EXPECT_THAT(stored_ints(block, "nindex"), ElementsAre(1));
    EXPECT_THAT(stored_ints(block, "indexic"), ElementsAre(3));
    EXPECT_THAT(stored_ints(block, "indexident"), ElementsAre(12));
    EXPECT_THAT(stored_reals(block, "indexval"), ElementsAre(0.5));
    EXPECT_THAT(stored_ints(block, "entid"), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_EQ(stored_text(block, "title"), "one two threfourfive");
    EXPECT_THAT(stored_ints(block, "uid"), ElementsAre(11, 12, 13, 21, 22, 23, 31, 32, 33, 41, 42, 43, 51, 52, 53));
}

TEST(EntityListLayout, Of_attributes_of_a_state)
{
    const KobFile file;
    const auto block =
        written(file, five_entities(attributes_kind), "singlestate/state000000000012/attributes/NODE/kobblock");
    expect_five_entities(block);
    EXPECT_THAT(stored_ints(block, "block"), ElementsAre(200));
    EXPECT_EQ(stored_text(block, "blocktype"), "attributes" + std::string(246, '\0'));
}

TEST(EntityListLayout, Of_identifiers_of_a_state)
{
    const KobFile file;
    const auto block =
        written(file, five_entities(identifiers_kind), "singlestate/state000000000012/identifiers/NODE/kobblock");
    expect_five_entities(block);
    EXPECT_THAT(stored_ints(block, "block"), ElementsAre(250));
    EXPECT_EQ(stored_text(block, "blocktype"), "identifiers" + std::string(245, '\0'));
}

TEST(EntityListLayout, Constant_with_identifiers_alone)
{
    const KobFile file;
    EntityList b{identifiers_kind};
    b.nent = 2;
    b.entid = {1, 2};
    EXPECT_EQ(layout_of(written(file, b, "constant/identifiers/NODE/kobblock")),
              attributes + table({"dataset entid integer 4 little [2] max [2] compact"}));
}

TEST(EntityListLayout, With_every_filter)
{
    const KobFile file;
    EntityList b{attributes_kind};
    b.set_long_index();
    b.nent = 8;
    b.nuid = 2;
    b.length = 1;
    b.entid = Ints(8, 1);
    b.uid = Ints(16, 2);
    b.title = "abcdefgh";
    b.filter_flags = 255;
    b.filter_params = filter_settings;
    b.float_size = 4;
    EXPECT_EQ(layout_of(written(file, b, "singlestate/state000000000005/attributes/NODE/kobblock")),
              attributes +
                  table({
                      "dataset entid integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset indexident integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset indexval float 4 little [8] max [8] chunked [8] shuffle deflate(6)",
                      "dataset title text 1 space [8] max [8] chunked [8] shuffle deflate(6)",
                      "dataset uid integer 4 little [8, 2] max [8, 2] chunked [8, 2] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                  }));
}

TEST(EntityListLayout, A_filter_of_one_kind_of_data_leaves_the_others)
{
    const KobFile file;
    EntityList b{attributes_kind};
    b.nent = 8;
    b.length = 1;
    b.entid = Ints(8, 1);
    b.title = "abcdefgh";
    b.filter_flags = 4; // deflate of texts
    b.filter_params = {0, 0};
    EXPECT_EQ(layout_of(written(file, b, "constant/attributes/NODE/kobblock")),
              attributes + table({
                               "dataset entid integer 4 little [8] max [8] compact",
                               "dataset title text 1 space [8] max [8] chunked [8] deflate(0)",
                           }));
}

} // namespace
