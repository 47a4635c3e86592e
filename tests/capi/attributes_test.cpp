// SPDX-License-Identifier: BSD-3-Clause
// Attributes and identifiers of entities: two blocks of one make.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/kob_file.hpp"
#include "support/state_blocks.hpp"

using namespace kob_test;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class EntityListBlock : public testing::TestWithParam<EntityListKind> {
protected:
    const EntityListKind& kind() const { return GetParam(); }
    std::string path(const std::string& validity = "constant") const
    {
        return validity + "/" + kind().name + "/NODE/kobblock";
    }
    std::string key() const { return std::to_string(kind().key); }

    /// Two entities with titles of four characters and three further identifiers.
    EntityList two_entities() const
    {
        EntityList b{kind()};
        b.nent = 2;
        b.nuid = 3;
        b.length = 4;
        b.entid = {101, 102};
        b.title = "tip root";
        b.uid = {1, 2, 3, 11, 12, 13};
        return b;
    }
};

TEST_P(EntityListBlock, Comes_back_as_it_was_written)
{
    const KobFile file;
    auto written = two_entities();
    written.set_state();
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_EQ(written.errors, "");

    auto b = EntityList::with_room(kind(), 3, 7, 9);
    ASSERT_EQ(b.read(file.block(path("singlestate/state000000000012")), 1 + 2 + 8), 0) << b.errors;
    EXPECT_EQ(b.etyp, "NODE");
    EXPECT_EQ(b.nent, 2);
    EXPECT_EQ(b.nuid, 3);
    EXPECT_EQ(b.length, 4);
    EXPECT_EQ(b.nindex, 1);
    EXPECT_EQ(b.indexic, 3);
    EXPECT_EQ(b.indexident[0], 12);
    EXPECT_EQ(b.indexval[0], 0.5);
    EXPECT_THAT(b.entid, ElementsAre(101, 102, untouched_int));
    EXPECT_EQ(b.title, "tip root#");
    EXPECT_THAT(b.uid, ElementsAre(1, 2, 3, 11, 12, 13, untouched_int));
    EXPECT_EQ(b.filter_flags, 0);
    EXPECT_THAT(b.filter_params, ElementsAre(0, 0));
    EXPECT_EQ(b.errors, "");
}

TEST_P(EntityListBlock, Each_section_bit_reads_its_part)
{
    const KobFile file;
    auto written = two_entities();
    written.set_state();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(path("singlestate/state000000000012"));

    auto b = EntityList::with_room(kind(), 2, 6, 8);
    auto expected = b;
    ASSERT_EQ(b.read(block, 1), 0);
    expected.etyp = "NODE";
    expected.nent = 2;
    expected.nuid = 3;
    expected.length = 4;
    expected.nindex = 1;
    expected.indexic = 3;
    EXPECT_EQ(b, unchanged(expected, b)) << "mode 1";

    ASSERT_EQ(b.read(block, 2), 0);
    expected.indexident[0] = 12;
    expected.indexval[0] = 0.5;
    EXPECT_EQ(b, unchanged(expected, b)) << "mode 2";

    ASSERT_EQ(b.read(block, 8), 0);
    expected.entid = written.entid;
    expected.title = written.title;
    expected.uid = written.uid;
    expected.filter_flags = 0;
    expected.filter_params = {0, 0};
    EXPECT_EQ(b, unchanged(expected, b)) << "mode 8";
}

TEST_P(EntityListBlock, Titles_and_further_identifiers_can_be_missing)
{
    struct {
        std::int32_t nuid;
        std::int32_t length;
    } const cases[]{{0, 0}, {3, 0}, {0, 4}, {-1, -1}};
    for (const auto& c : cases) {
        const KobFile file;
        auto written = two_entities();
        written.nuid = c.nuid;
        written.length = c.length;
        ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
        const auto group = open_group(file.handle(), path());
        EXPECT_EQ(has_link(group, "title"), c.length > 0);
        EXPECT_EQ(has_link(group, "uid"), c.nuid > 0);

        auto b = EntityList::with_room(kind(), 2, 6, 8);
        ASSERT_EQ(b.read(file.block(path()), 1 + 8), 0) << b.errors;
        EXPECT_EQ(b.nuid, c.nuid);
        EXPECT_EQ(b.length, c.length);
        EXPECT_EQ(b.entid, written.entid);
        EXPECT_EQ(b.title, c.length > 0 ? written.title : "########");
        EXPECT_EQ(b.uid, c.nuid > 0 ? written.uid : Ints(6, untouched_int));
    }
}

TEST_P(EntityListBlock, Missing_columns_may_be_null)
{
    const KobFile file;
    EntityList written{kind()};
    written.nent = 1;
    written.entid = {5};
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_THAT(link_names(open_group(file.handle(), path())), ElementsAre("entid"));
    EntityList b{kind()};
    b.entid = {0};
    ASSERT_EQ(b.read(file.block(path()), 1 + 2 + 8), 0) << b.errors;
    EXPECT_THAT(b.entid, ElementsAre(5));
}

TEST_P(EntityListBlock, A_block_without_entities_holds_its_attributes)
{
    const KobFile file;
    EntityList written{kind()};
    written.nuid = 3;
    written.length = 8;
    ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
    EXPECT_THAT(link_names(open_group(file.handle(), path())), ElementsAre());
    auto b = EntityList::with_room(kind(), 1, 1, 1);
    ASSERT_EQ(b.read(file.block(path()), 1 + 8), 0) << b.errors;
    EXPECT_EQ(b.nent, 0);
    EXPECT_EQ(b.nuid, 3);
    EXPECT_THAT(b.entid, Each(untouched_int));
    EXPECT_EQ(b.filter_flags, 0);
    EXPECT_THAT(b.filter_params, ElementsAre(0, 0));
}

TEST_P(EntityListBlock, A_call_that_reads_nothing_reports_the_key)
{
    const KobFile file;
    auto written = two_entities();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(path());
    for (const std::int32_t mode : {0, 2, 4, 16}) {
        auto b = EntityList::with_room(kind(), 2, 6, 8);
        b.nindex = 0;
        const auto before = b;
        EXPECT_EQ(b.read(block, mode), kind().key) << mode;
        EXPECT_EQ(b, unchanged(before, b)) << mode;
        EXPECT_EQ(b.errors, "") << mode;
    }
}

TEST_P(EntityListBlock, The_counts_of_the_caller_hold_without_section_1)
{
    const KobFile file;
    auto written = two_entities();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(path());
    auto b = EntityList::with_room(kind(), 3, 9, 12);
    b.nent = 2;
    b.nuid = 4;
    b.length = 0;
    EXPECT_EQ(b.read(block, 8), -6030);
    EXPECT_THAT(b.errors, HasSubstr("KOB INTERNAL ERROR (30) in KOB_H5Dread"));
    EXPECT_THAT(b.entid, ElementsAre(101, 102, untouched_int)) << "read before";
    EXPECT_THAT(b.uid, Each(untouched_int));
    EXPECT_EQ(b.filter_flags, untouched_int);
    b.nuid = 0;
    EXPECT_EQ(b.read(block, 8), 0) << "what is not asked for is not read";
    EXPECT_THAT(b.uid, Each(untouched_int));
}

TEST_P(EntityListBlock, One_entity_type_and_state_holds_one_block)
{
    const KobFile file;
    auto first = two_entities();
    ASSERT_EQ(first.write(file.handle()), 0);
    auto second = two_entities();
    second.entid = {1, 2};
    EXPECT_EQ(second.write(file.handle()), -1);
    EXPECT_EQ(second.errors,
              "KOB INTERNAL ERROR writing block key " + key() + " - \"" + kind().name + "\" already exists.\n");
    second.etyp = "ELEMENT";
    EXPECT_EQ(second.write(file.handle()), 0) << second.errors;
    second.set_state();
    EXPECT_EQ(second.write(file.handle()), 0) << second.errors;

    auto b = EntityList::with_room(kind(), 2, 6, 8);
    ASSERT_EQ(b.read(file.block(path()), 1 + 8), 0);
    EXPECT_EQ(b.entid, first.entid) << "the first one stays";
}

TEST_P(EntityListBlock, Reports_the_filters_of_the_last_column_read)
{
    struct {
        std::int32_t nuid;
        std::int32_t length;
        std::int32_t flags;
    } const cases[]{{1, 2, 1 + 8 + 64}, {0, 2, 4 + 32}, {0, 0, 1 + 8 + 64}};
    for (const auto& c : cases) {
        const KobFile file;
        EntityList written{kind()};
        written.nent = 8;
        written.nuid = c.nuid;
        written.length = c.length;
        written.entid = written.uid = {1, 2, 3, 4, 5, 6, 7, 8};
        written.title = "aabbccddeeffgghh";
        written.filter_flags = 255;
        written.filter_params = filter_settings;
        ASSERT_EQ(written.write(file.handle()), 0) << written.errors;
        auto b = EntityList::with_room(kind(), 8, 8, 16);
        ASSERT_EQ(b.read(file.block(path()), 1 + 8), 0) << b.errors;
        EXPECT_EQ(b.filter_flags, c.flags);
        EXPECT_THAT(b.filter_params, ElementsAre(0, 6));
        EXPECT_EQ(b.entid, written.entid);
    }
}

TEST_P(EntityListBlock, Lives_beside_the_block_of_the_other_kind)
{
    const KobFile file;
    auto written = two_entities();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto& other_kind = kind() == attributes_kind ? identifiers_kind : attributes_kind;
    EntityList other{other_kind};
    other.nent = 1;
    other.entid = {9};
    ASSERT_EQ(other.write(file.handle()), 0) << other.errors;

    auto b = EntityList::with_room(kind(), 2, 6, 8);
    const auto before = b;
    EXPECT_EQ(b.read(file.block(std::string{"constant/"} + other_kind.name + "/NODE/kobblock"), 1 + 8), -1);
    EXPECT_EQ(b.errors, "KOB error - wrong block key " + std::to_string(other_kind.key) + ", " + key() + " expected\n");
    EXPECT_EQ(b, unchanged(before, b));
}

TEST_P(EntityListBlock, An_invalid_handle_is_not_read)
{
    EntityList b{kind()};
    EXPECT_EQ(b.read(-1, 1), -1);
    EXPECT_EQ(b.errors, "KOB ERROR - header not found\n");
}

TEST_P(EntityListBlock, Is_not_written_without_a_place)
{
    auto b = two_entities();
    EXPECT_LT(b.write(-1), 0);
    EXPECT_NE(b.errors, "");
}

INSTANTIATE_TEST_SUITE_P(Kinds, EntityListBlock, testing::Values(attributes_kind, identifiers_kind),
                         [](const auto& kind) { return std::string{kind.param.name}; });

} // namespace
