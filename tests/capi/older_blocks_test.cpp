// SPDX-License-Identifier: BSD-3-Clause
// What the blocks of the older layout have in common: passes, missing places, wrong keys, and the other generation.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/older_blocks.hpp"

using namespace kob_test;

namespace {

template <class Block> class OlderBlock : public testing::Test {
protected:
    /// The sample block in the file.
    std::int64_t put()
    {
        const auto outcome = block.write(file.handle());
        EXPECT_EQ(outcome, (Outcome{0, ""}));
        return file.block(Block::path());
    }
    static std::int32_t read_status() { return Block::tells_key ? Block::key : 0; }

    KobFile file;
    Block block;
};

using Kinds =
    testing::Types<older::System, older::Index, older::Variables, older::Text, older::Parts, older::Attributes,
                   older::Connectivities, older::Collector, older::ActivFlags, older::EntityResults,
                   older::MultiEntityResults, older::ElementResults, older::MultiElementResults, older::MultiActivFlags,
                   older::DenseMatrix, older::TriangularMatrix, older::SparseMatrix>;

struct Names {
    template <class Block> static std::string GetName(int /*index*/) { return Block::name; }
};
TYPED_TEST_SUITE(OlderBlock, Kinds, Names);

TYPED_TEST(OlderBlock, Pass_1_reads_the_scalar_items_alone)
{
    const auto group = this->put();
    auto read = untouched(this->block);
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(read.read(group, 1), (Outcome{this->read_status(), ""})); }), "");
    EXPECT_EQ(listing(read), listing(older::expected_of(this->block, section::attributes)));
}

TYPED_TEST(OlderBlock, Pass_2_reads_everything)
{
    const auto group = this->put();
    auto read = untouched(this->block);
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(read.read(group, 2), (Outcome{this->read_status(), ""})); }), "");
    EXPECT_EQ(listing(read), listing(older::expected_of(this->block, older::everything)));
}

TYPED_TEST(OlderBlock, There_is_no_other_pass)
{
    const auto group = this->put();
    std::vector<std::int32_t> passes{0, -1, 5, 1000};
    if (this->block.name != std::string{"densematrix"} && this->block.name != std::string{"triangularmatrix"} &&
        this->block.name != std::string{"sparsematrix"}) {
        passes.push_back(3);
        passes.push_back(4);
    }
    for (const auto pass : passes) {
        auto read = untouched(this->block);
        EXPECT_EQ(left_open_by([&] {
                      EXPECT_EQ(read.read(group, pass), (Outcome{-3, TypeParam::pass_error(pass)})) << pass;
                  }),
                  "");
    }
}

TYPED_TEST(OlderBlock, Without_header)
{
    const auto group = this->file.new_group("empty");
    for (const auto handle : {group, std::int64_t{-1}}) {
        auto read = untouched(this->block);
        EXPECT_EQ(read.read(handle, 1), (Outcome{-1, "KOB ERROR - header not found\n"}));
        EXPECT_EQ(read.read(handle, 2), (Outcome{-1, "KOB ERROR - header not found\n"}));
        EXPECT_EQ(listing(read), listing(untouched(this->block)));
    }
}

TYPED_TEST(OlderBlock, Without_data)
{
    const auto group = this->put();
    H5Ldelete(group, "data", H5P_DEFAULT);
    auto read = untouched(this->block);
    EXPECT_EQ(read.read(group, 1), (Outcome{this->read_status(), ""}));
    const auto outcome = read.read(group, 2);
    EXPECT_EQ(outcome, (Outcome{-1, "KOB ERROR - data not found\n"}));
}

TYPED_TEST(OlderBlock, Without_index)
{
    const auto group = this->put();
    EXPECT_EQ(kob_test::has_link(group, "index"), TypeParam::is_state);
    if constexpr (TypeParam::is_state) {
        H5Ldelete(group, "index", H5P_DEFAULT);
        auto read = untouched(this->block);
        EXPECT_EQ(read.read(group, 1), (Outcome{this->read_status(), ""}));
        EXPECT_EQ(read.read(group, 2), (Outcome{-1, "KOB ERROR - index not found\n"}));
    }
}

TYPED_TEST(OlderBlock, Data_are_read_before_the_index)
{
    const auto group = this->put();
    H5Ldelete(group, "data", H5P_DEFAULT);
    if (TypeParam::is_state) H5Ldelete(group, "index", H5P_DEFAULT);
    auto read = untouched(this->block);
    EXPECT_EQ(read.read(group, 2), (Outcome{-1, "KOB ERROR - data not found\n"}));
}

TYPED_TEST(OlderBlock, A_wrong_key_is_refused)
{
    const auto group = this->put();
    set_int_attribute(open_group(group, "header"), "block", 77);
    const std::string line = TypeParam::key == 2100
                                 ? "KOB ERROR wrong - block key 77, 2100 expected\n"
                                 : "KOB ERROR - wrong block key 77, " + TypeParam::keys() + " expected\n";
    for (const std::int32_t pass : {1, 2}) {
        auto read = untouched(this->block);
        EXPECT_EQ(left_open_by([&] { EXPECT_EQ(read.read(group, pass), (Outcome{-1, line})); }), "");
        EXPECT_EQ(listing(read), listing(untouched(this->block)));
    }
}

TYPED_TEST(OlderBlock, A_header_without_key_is_refused)
{
    const auto group = this->put();
    H5Adelete_by_name(group, "header", "block", H5P_DEFAULT);
    auto read = untouched(this->block);
    const auto outcome = read.read(group, 1);
    EXPECT_EQ(outcome.status, -4002);
    EXPECT_EQ(outcome.errors, missing_attribute("block", 2, 4));
}

TYPED_TEST(OlderBlock, A_current_reader_misses_the_key)
{
    const auto group = this->put();
    auto read = untouched(this->block);
    EXPECT_EQ(read.read_current(group), (Outcome{-4002, missing_attribute("block", 2, 4)}));
}

TYPED_TEST(OlderBlock, A_block_of_the_current_layout_has_no_header)
{
    ASSERT_EQ(this->block.write_current(this->file.handle()), (Outcome{0, ""}));
    std::string path = TypeParam::path();
    if constexpr (requires { TypeParam::current_path(); }) path = TypeParam::current_path();
    auto read = untouched(this->block);
    EXPECT_EQ(read.read(this->file.block(path), 2), (Outcome{-1, "KOB ERROR - header not found\n"}));
}

TYPED_TEST(OlderBlock, Only_a_record_refuses_to_be_written_again)
{
    const auto group = this->put();
    const auto again = this->block.write(this->file.handle());
    if (TypeParam::is_record) {
        EXPECT_EQ(again, (Outcome{-1, "KOB INTERNAL ERROR writing block key " + std::to_string(TypeParam::key) +
                                          " - \"" + TypeParam::name + "\" already exists.\n"}));
    } else {
        EXPECT_EQ(again, (Outcome{0, ""}));
    }
    auto read = untouched(this->block);
    EXPECT_EQ(read.read(group, 2), (Outcome{this->read_status(), ""}));
    EXPECT_EQ(listing(read), listing(older::expected_of(this->block, older::everything)));
}

TYPED_TEST(OlderBlock, A_group_that_is_none_cannot_be_written_to)
{
    const auto outcome = this->block.write(-1);
    EXPECT_LT(outcome.status, 0);
    EXPECT_NE(outcome.errors, "");
}

TYPED_TEST(OlderBlock, Places_that_are_no_groups_are_not_there)
{
    const auto group = this->put();
    H5Ldelete(group, "data", H5P_DEFAULT);
    put_dataset(group, "data", H5T_STD_I32LE, {2});
    auto read = untouched(this->block);
    EXPECT_EQ(read.read(group, 2), (Outcome{-1, "KOB ERROR - data not found\n"}));
    H5Ldelete(group, "header", H5P_DEFAULT);
    H5Lcreate_soft("nowhere", group, "header", H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_EQ(read.read(group, 1), (Outcome{-1, "KOB ERROR - header not found\n"}));
}

} // namespace
