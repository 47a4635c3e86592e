// SPDX-License-Identifier: BSD-3-Clause
// What a properties block holds.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/kob_file.hpp"
#include "support/layout.hpp"
#include "support/state_blocks.hpp"

using namespace kob_test;
using testing::ElementsAre;

namespace {

constexpr std::int32_t everything = 1 + 2 + 4 + 8;
constexpr std::int32_t shared = 16;

const std::string attributes = table({
    "attribute block integer 4 little scalar",
    "attribute blocktype text 256 space scalar",
    "attribute etyp text 256 space scalar",
    "attribute etypprop text 256 space scalar",
    "attribute etypzone text 256 space scalar",
    "attribute zoneid integer 4 little scalar",
    "attribute nent integer 4 little scalar",
    "attribute nbid integer 4 little scalar",
    "attribute nbint integer 4 little scalar",
    "attribute nbfloat integer 4 little scalar",
    "attribute nbstring integer 4 little scalar",
    "attribute length integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute indexic integer 4 little scalar",
});

/// Two entities with one identifier, two integers, three numbers and four texts of five characters.
Properties two_rows()
{
    Properties b;
    b.set_state();
    b.zoneid = 8;
    b.nent = 2;
    b.nbid = 1;
    b.nbint = 2;
    b.nbfloat = 3;
    b.nbstring = 4;
    b.length = 5;
    b.entid = {21, 22};
    b.idparam = {1, 2};
    b.iparam = {3, 4, 5, 6};
    b.fparam = {0.5, 1.5, 2.5, 3.5, 4.5, 5.5};
    b.cparam = "a    b    c    d    e    f    g    h    ";
    return b;
}

TEST(PropertiesLayout, Of_a_state_with_all_tables)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto b = two_rows();
    ASSERT_EQ(b.write(block, everything), 0) << b.errors;
    EXPECT_EQ(layout_of(block), attributes + table({
                                                 "dataset cparam text 5 space [2, 4] max [2, 4] compact",
                                                 "dataset entid integer 4 little [2] max [2] compact",
                                                 "dataset fparam float 8 little [2, 3] max [2, 3] compact",
                                                 "dataset idparam integer 4 little [2, 1] max [2, 1] compact",
                                                 "dataset indexident integer 4 little [1] max [1] compact",
                                                 "dataset indexval float 8 little [1] max [1] compact",
                                                 "dataset iparam integer 4 little [2, 2] max [2, 2] compact",
                                             }));
    EXPECT_THAT(attribute_names(block),
                ElementsAre("block", "blocktype", "etyp", "etypprop", "etypzone", "zoneid", "nent", "nbid", "nbint",
                            "nbfloat", "nbstring", "length", "nindex", "indexic"));
    EXPECT_THAT(stored_ints(block, "block"), ElementsAre(500));
    EXPECT_EQ(stored_text(block, "blocktype"), "properties" + std::string(246, '\0'));
    EXPECT_EQ(stored_text(block, "etyp"), Text256{"ELEMENT"}.field());
    EXPECT_EQ(stored_text(block, "etypprop"), Text256{"SHELL"}.field());
    EXPECT_EQ(stored_text(block, "etypzone"), Text256{"PART"}.field());
    EXPECT_THAT(stored_ints(block, "zoneid"), ElementsAre(8));
    EXPECT_THAT(stored_ints(block, "nent"), ElementsAre(2));
    EXPECT_THAT(stored_ints(block, "nbid"), ElementsAre(1));
    EXPECT_THAT(stored_ints(block, "nbint"), ElementsAre(2));
    EXPECT_THAT(stored_ints(block, "nbfloat"), ElementsAre(3));
    EXPECT_THAT(stored_ints(block, "nbstring"), ElementsAre(4));
    EXPECT_THAT(stored_ints(block, "length"), ElementsAre(5));
    EXPECT_THAT(stored_ints(block, "nindex"), ElementsAre(1));
    EXPECT_THAT(stored_ints(block, "indexic"), ElementsAre(3));
    EXPECT_THAT(stored_ints(block, "indexident"), ElementsAre(12));
    EXPECT_THAT(stored_reals(block, "indexval"), ElementsAre(0.5));
    EXPECT_THAT(stored_ints(block, "entid"), ElementsAre(21, 22));
    EXPECT_THAT(stored_ints(block, "idparam"), ElementsAre(1, 2));
    EXPECT_THAT(stored_ints(block, "iparam"), ElementsAre(3, 4, 5, 6));
    EXPECT_THAT(stored_reals(block, "fparam"), ElementsAre(0.5, 1.5, 2.5, 3.5, 4.5, 5.5));
    EXPECT_EQ(stored_text(block, "cparam"), "a    b    c    d    e    f    g    h    ");
}

TEST(PropertiesLayout, With_shared_identifiers)
{
    const KobFile file;
    const auto common = create_group(file.handle(), "common");
    const auto block = create_group(file.handle(), "kobblock");
    auto b = two_rows();
    b.nindex = 0;
    b.nbid = b.nbint = b.nbstring = 0;
    b.float_size = 4;
    ASSERT_EQ(b.write(block, everything + shared, common), 0) << b.errors;
    EXPECT_EQ(layout_of(common), table({"dataset entid integer 4 little [2] max [2] compact"}));
    EXPECT_EQ(layout_of(block), attributes + table({
                                                 "dataset entid integer 4 little [2] max [2] compact",
                                                 "dataset fparam float 4 little [2, 3] max [2, 3] compact",
                                             }));
    EXPECT_TRUE(same_object(common, "entid", block, "entid"));
}

TEST(PropertiesLayout, With_every_filter)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    Properties b;
    b.set_long_index();
    b.nent = 8;
    b.nbid = b.nbint = b.nbfloat = b.nbstring = 2;
    b.length = 3;
    b.entid = Ints(8, 1);
    b.idparam = b.iparam = Ints(16, 2);
    b.fparam = Reals(16, 0.123456);
    b.cparam = std::string(48, 'c');
    b.filter_flags = 255;
    b.filter_params = filter_settings;
    b.float_size = 4;
    ASSERT_EQ(b.write(block, everything), 0) << b.errors;
    EXPECT_EQ(layout_of(block),
              attributes +
                  table({
                      "dataset cparam text 3 space [8, 2] max [8, 2] chunked [8, 2] shuffle deflate(6)",
                      "dataset entid integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset fparam float 4 little [8, 2] max [8, 2] chunked [8, 2] shuffle deflate(6)",
                      "dataset idparam integer 4 little [8, 2] max [8, 2] chunked [8, 2] scaleoffset(integer 0) "
                      "shuffle deflate(6) fill 10000",
                      "dataset indexident integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset indexval float 4 little [8] max [8] chunked [8] shuffle deflate(6)",
                      "dataset iparam integer 4 little [8, 2] max [8, 2] chunked [8, 2] scaleoffset(integer 0) "
                      "shuffle deflate(6) fill 10000",
                  }));
}

TEST(PropertiesLayout, Rows_written_later_keep_the_layout)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto b = two_rows();
    ASSERT_EQ(b.write(block, everything), 0) << b.errors;
    const auto before = layout_of(block);
    b.mode = 1;
    b.count = 1;
    b.rows = {1};
    b.fparam = {7.5, 8.5, 9.5};
    ASSERT_EQ(b.write(block, 8), 0) << b.errors;
    b.mode = 2;
    b.rows = {0};
    ASSERT_EQ(b.write(block, 8), 0) << b.errors;
    EXPECT_EQ(layout_of(block), before);
    EXPECT_THAT(stored_reals(block, "fparam"), ElementsAre(7.5, 1.5, 2.5, 7.5, 8.5, 9.5));
}

} // namespace
