// SPDX-License-Identifier: BSD-3-Clause
// Variable groups and variables, written and read through their entry points.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "block_checks.hpp"
#include "identifiers.hpp"
#include "kob_file.hpp"
#include "model_blocks.hpp"

using namespace kob_test;

namespace {

const char* const group_path = "constant/variablegroup/DISPLACEMENT/kobblock";
const char* const path = "constant/variable/STRESS/kobblock";

VariableBlock room() { return VariableBlock::empty(3, 3, 2, 6, 27); }

} // namespace

TEST(VariableGroup, Everything_comes_back_as_it_was_written)
{
    const KobFile file;
    auto written = VariableGroupBlock::sample();
    ASSERT_EQ(written.write(file.handle()), 0);
    auto read = VariableGroupBlock::empty(2);
    FoundFilters found;
    EXPECT_EQ(read.read(file.block(group_path), 3, &found), 0);
    EXPECT_EQ(read, written);
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
}

TEST(VariableGroup, Mode_1_reads_the_scalars_and_mode_2_the_arrays_by_the_callers_counts)
{
    const KobFile file;
    auto written = VariableGroupBlock::sample();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(group_path);
    auto read = VariableGroupBlock::empty(2);
    FoundFilters found;
    EXPECT_EQ(read.read(block, 1, &found), 0);
    EXPECT_EQ(read.nvar, 2);
    EXPECT_EQ(read.cnt, Ints32(2, untouched_int));
    EXPECT_EQ(found, untouched_filters);
    read.etypvar = untouched();
    EXPECT_EQ(read.read(block, 2, &found), 0);
    EXPECT_EQ(read.etypvar, untouched());
    EXPECT_EQ(read.cnt, written.cnt);
    EXPECT_EQ(read.varkey, written.varkey);
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
    read.nvar = 1;
    EXPECT_EQ(reply_of([&] { return read.read(block, 2); }).status, -6030);
}

TEST(VariableGroup, A_mode_without_these_bits_only_checks_the_key)
{
    const KobFile file;
    auto written = VariableGroupBlock::sample();
    ASSERT_EQ(written.write(file.handle()), 0);
    for (const std::int32_t mode : {0, 4, 8, 1024}) {
        auto read = VariableGroupBlock::empty(2);
        EXPECT_EQ(reply_of([&] { return read.read(file.block(group_path), mode); }), (Reply{0, ""})) << mode;
        EXPECT_EQ(read, VariableGroupBlock::empty(2));
    }
    auto read = VariableGroupBlock::empty(2);
    EXPECT_EQ(read.read(file.block(group_path), 4 + 3), 0);
    EXPECT_EQ(read, written);
}

TEST(VariableGroup, A_second_group_of_the_same_name_is_refused_and_another_name_is_not)
{
    const KobFile file;
    auto group = VariableGroupBlock::sample();
    ASSERT_EQ(group.write(file.handle()), 0);
    EXPECT_EQ(reply_of([&] { return group.write(file.handle()); }), already_exists(32, "variablegroup"));
    group.etypvar = "VELOCITY";
    EXPECT_EQ(group.write(file.handle()), 0);
}

TEST(VariableGroup, The_filters_of_the_keys_are_reported)
{
    const KobFile file;
    auto written = VariableGroupBlock::large();
    ASSERT_EQ(written.write(file.handle(), {.filter_flags = 255}), 0);
    auto read = VariableGroupBlock::empty(8);
    FoundFilters found;
    EXPECT_EQ(read.read(file.block("constant/variablegroup/MANY/kobblock"), 3, &found), 0);
    EXPECT_EQ(read, written);
    EXPECT_EQ(found, (FoundFilters{4 + 32, {0, 6}}));
}

TEST(VariableGroup, An_empty_group_has_no_arrays_and_no_filters)
{
    const KobFile file;
    VariableGroupBlock written{"NONE", 0, 0, {}, {}, {}};
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block("constant/variablegroup/NONE/kobblock");
    EXPECT_TRUE(link_names(block).empty());
    VariableGroupBlock read;
    FoundFilters found;
    EXPECT_EQ(read.read(block, 3, &found), 0);
    EXPECT_EQ(read, written);
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
}

TEST(VariableGroup, The_reader_checks_handle_and_key)
{
    auto read = VariableGroupBlock::empty(2);
    expect_reader_checks_block([&](std::int64_t block) { return read.read(block, 3); }, "32");
    EXPECT_EQ(read, VariableGroupBlock::empty(2));
}

TEST(VariableGroup, The_writer_leaves_the_block_open_and_the_reader_nothing)
{
    const KobFile file;
    auto written = VariableGroupBlock::sample();
    EXPECT_EQ(left_open_by([&] { ASSERT_EQ(written.write(file.handle()), 0); }), "group: 1");
    const auto block = file.block(group_path);
    auto read = VariableGroupBlock::empty(2);
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(read.read(block, 3), 0); }), "");
}

TEST(Variable, Everything_comes_back_as_it_was_written)
{
    const KobFile file;
    auto written = VariableBlock::sample();
    ASSERT_EQ(written.write(file.handle()), 0);
    auto read = room();
    FoundFilters found;
    EXPECT_EQ(read.read(file.block(path), 3, &found), 0);
    EXPECT_EQ(read, written);
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
}

TEST(Variable, Mode_1_reads_the_scalars_and_mode_2_the_arrays_by_the_callers_counts)
{
    const KobFile file;
    auto written = VariableBlock::sample();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(path);
    auto read = room();
    FoundFilters found;
    EXPECT_EQ(read.read(block, 1, &found), 0);
    EXPECT_EQ(read.lenb, 3);
    EXPECT_EQ(read.lend, 2);
    EXPECT_EQ(read.type, written.type);
    EXPECT_EQ(read.mbunit, Ints32(3, untouched_int));
    EXPECT_EQ(found, untouched_filters);
    read.varkey = untouched();
    EXPECT_EQ(read.read(block, 2, &found), 0);
    EXPECT_EQ(read.varkey, untouched());
    EXPECT_EQ(read.vmap, written.vmap);
    EXPECT_EQ(read.subscr, written.subscr);
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
    read.lend = 1;
    EXPECT_EQ(reply_of([&] { return read.read(block, 2); }).status, -6030);
}

TEST(Variable, A_mode_without_these_bits_only_checks_the_key)
{
    const KobFile file;
    auto written = VariableBlock::sample();
    ASSERT_EQ(written.write(file.handle()), 0);
    for (const std::int32_t mode : {0, 4, 256}) {
        auto read = room();
        EXPECT_EQ(reply_of([&] { return read.read(file.block(path), mode); }), (Reply{0, ""})) << mode;
        EXPECT_EQ(read, room());
    }
}

TEST(Variable, The_unit_lengths_are_computed_from_the_counts)
{
    const KobFile file;
    auto written = VariableBlock::sample();
    written.lenb = 99;
    written.lend = 99;
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(path);
    EXPECT_EQ(stored_ints(block, "lenb"), std::vector<std::int64_t>{3});
    EXPECT_EQ(stored_ints(block, "lend"), std::vector<std::int64_t>{2});
    EXPECT_EQ(stored_ints(block, "ubid"), (std::vector<std::int64_t>{11, 12, 13}));
}

TEST(Variable, Without_components_or_units_their_arrays_are_absent)
{
    const KobFile file;
    auto none = VariableBlock::sample();
    none.ncoo = 0;
    ASSERT_EQ(none.write(file.handle()), 0);
    EXPECT_EQ(link_names(file.block(path)), std::vector<std::string>{"subscr"}) << "subscripts are of the block";
    auto read = room();
    EXPECT_EQ(read.read(file.block(path), 3), 0);
    EXPECT_EQ(read.lenb, 0);
    EXPECT_EQ(read.mbunit, Ints32(3, untouched_int));
    EXPECT_EQ(read.subscr, none.subscr);

    auto no_base = VariableBlock::sample();
    no_base.varkey = "NOBASE";
    no_base.mbunit = {0, 0, 0};
    ASSERT_EQ(no_base.write(file.handle()), 0);
    EXPECT_EQ(link_names(file.block("constant/variable/NOBASE/kobblock")),
              (std::vector<std::string>{"mbunit", "mdunit", "subscnt", "subscr", "subsoffs", "udexp", "udid", "vmap"}));
}

TEST(Variable, Subscripts_and_map_are_there_only_when_they_are_asked_for)
{
    const KobFile file;
    struct Row {
        const char* key;
        std::int32_t subslen, lvmap, rank;
        bool subscripts, map;
    };
    for (const auto& row : {Row{"a", 0, 1, 2, false, true}, Row{"b", 6, 0, 2, true, false},
                            Row{"c", 6, 1, 0, true, false}, Row{"d", -1, -1, 2, false, false}}) {
        auto written = VariableBlock::sample();
        written.varkey = row.key;
        written.subslen = row.subslen;
        written.lvmap = row.lvmap;
        written.rank = row.rank;
        ASSERT_EQ(written.write(file.handle()), 0);
        const auto block = file.block(std::string{"constant/variable/"} + row.key + "/kobblock");
        for (const auto* name : {"subscr", "subscnt", "subsoffs"}) EXPECT_EQ(has_link(block, name), row.subscripts);
        EXPECT_EQ(has_link(block, "vmap"), row.map) << row.key;
        auto read = room();
        EXPECT_EQ(read.read(block, 3), 0);
        EXPECT_EQ(read.vmap, row.map ? written.vmap : Reals64(27, untouched_real));
        EXPECT_EQ(read.subscr, row.subscripts ? written.subscr : "######");
    }
}

TEST(Variable, The_filters_of_the_last_array_are_reported)
{
    const KobFile file;
    auto with_map = VariableBlock::sample();
    ASSERT_EQ(with_map.write(file.handle(), {.filter_flags = 255}), 0);
    FoundFilters found;
    EXPECT_EQ(room().read(file.block(path), 3, &found), 0);
    EXPECT_EQ(found, (FoundFilters{2 + 16 + 128, {3, 6}})) << "\"vmap\" may be stored with scale-offset";

    auto without = VariableBlock::large();
    ASSERT_EQ(without.write(file.handle(), {.filter_flags = 255}), 0);
    auto read = VariableBlock::empty(9, 9, 9, 0, 0);
    EXPECT_EQ(read.read(file.block("constant/variable/NINE/kobblock"), 3, &found), 0);
    EXPECT_EQ(found, (FoundFilters{2 + 16, {0, 6}})) << "\"udexp\" is not";
    read.subscnt = without.subscnt;
    read.subsoffs = without.subsoffs;
    EXPECT_EQ(read, without);
}

TEST(Variable, Floats_are_rounded_when_they_are_stored_in_4_bytes)
{
    const KobFile file;
    auto written = VariableBlock::sample();
    ASSERT_EQ(written.write(file.handle(), {.float_size = 4}), 0);
    auto read = room();
    EXPECT_EQ(read.read(file.block(path), 3), 0);
    EXPECT_EQ(read.udexp, (Reals64{static_cast<double>(0.1F), 0.5}));
    EXPECT_EQ(read.vmap[0], static_cast<double>(0.1F));
}

TEST(Variable, A_second_variable_of_the_same_key_is_refused_and_the_first_one_stays)
{
    const KobFile file;
    auto first = VariableBlock::sample();
    auto second = VariableBlock::large();
    second.varkey = first.varkey;
    ASSERT_EQ(first.write(file.handle()), 0);
    EXPECT_EQ(reply_of([&] { return second.write(file.handle()); }), already_exists(30, "variable"));
    auto read = room();
    EXPECT_EQ(read.read(file.block(path), 3), 0);
    EXPECT_EQ(read, first);
}

TEST(Variable, A_negative_number_of_components_is_the_storage_layers_error)
{
    const KobFile file;
    auto written = VariableBlock::sample();
    written.ncoo = -1;
    EXPECT_EQ(reply_of([&] { return written.write(file.handle()); }).status, -3000);
    EXPECT_TRUE(link_names(file.block(path)).empty());
    EXPECT_EQ(stored_ints(file.block(path), "lenb"), std::vector<std::int64_t>{0});
}

TEST(Variable, A_rank_that_no_dataset_can_have_is_refused)
{
    for (const std::int32_t rank : {32, 1000, 0x7fffffff}) {
        const KobFile file;
        auto written = VariableBlock::sample();
        written.rank = rank;
        written.ndim = 1;
        EXPECT_EQ(reply_of([&] { return written.write(file.handle()); }).status, -2040) << rank;
        EXPECT_FALSE(has_link(file.block(path), "vmap"));
    }
}

TEST(Variable, A_file_that_contradicts_itself_overruns_nothing)
{
    const KobFile file;
    auto written = VariableBlock::sample();
    ASSERT_EQ(written.write(file.handle()), 0);
    const auto block = file.block(path);
    const auto status_with = [&](const char* name, std::int32_t value) {
        const auto before = static_cast<std::int32_t>(stored_ints(block, name)[0]);
        set_int_attribute(block, name, value);
        auto read = room();
        const auto status = reply_of([&] { return read.read(block, 3); }).status;
        set_int_attribute(block, name, before);
        return status;
    };
    EXPECT_EQ(status_with("ncoo", 100000), -6030);
    EXPECT_EQ(status_with("lenb", 100000), -6030);
    EXPECT_EQ(status_with("subslen", 100000), -6030);
    EXPECT_EQ(status_with("ndim", 1000), -6030);
    EXPECT_EQ(status_with("rank", 3), -6020);
    EXPECT_EQ(status_with("rank", 0x7fffffff), -6020);
    EXPECT_EQ(status_with("ncoo", -3), -6030);
    auto read = room();
    EXPECT_EQ(read.read(block, 3), 0) << "as it was";
}

TEST(Variable, The_reader_checks_handle_and_key)
{
    auto read = room();
    expect_reader_checks_block([&](std::int64_t block) { return read.read(block, 3); }, "30");
    EXPECT_EQ(read, room());
}

TEST(Variable, The_writer_leaves_the_block_open_and_the_reader_nothing)
{
    const KobFile file;
    auto written = VariableBlock::sample();
    EXPECT_EQ(left_open_by([&] { ASSERT_EQ(written.write(file.handle()), 0); }), "group: 1");
    const auto block = file.block(path);
    auto read = room();
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(read.read(block, 3), 0); }), "");
}
