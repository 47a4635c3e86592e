// SPDX-License-Identifier: BSD-3-Clause
// The properties block: parameter tables of entities, written and read by sections, whole or by rows.
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

constexpr std::int32_t attributes = 1;
constexpr std::int32_t state_index = 2;
constexpr std::int32_t identifiers = 4;
constexpr std::int32_t tables = 8;
constexpr std::int32_t shared = 16;
constexpr std::int32_t everything = attributes + state_index + identifiers + tables;

/// Three entities with two columns in each table; texts have four characters.
Properties three_rows()
{
    Properties b;
    b.set_state();
    b.zoneid = 8;
    b.nent = 3;
    b.nbid = b.nbint = b.nbfloat = b.nbstring = 2;
    b.length = 4;
    b.entid = {21, 22, 23};
    b.idparam = {1, 2, 11, 12, 21, 22};
    b.iparam = {-1, -2, -11, -12, -21, -22};
    b.fparam = {0.1, 0.2, 1.1, 1.2, 2.1, 2.2};
    b.cparam = "a0  a1  b0  b1  c0  c1  ";
    return b;
}

/// A table of `rows` rows whose values tell row and column: 10 * row + column.
Properties counted_rows(std::int32_t rows, std::int32_t columns)
{
    Properties b;
    b.nent = rows;
    b.nbid = b.nbint = b.nbfloat = b.nbstring = columns;
    b.length = 2;
    for (std::int32_t r = 0; r < rows; ++r) {
        b.entid.push_back(r);
        for (std::int32_t c = 0; c < columns; ++c) {
            b.idparam.push_back(10 * r + c);
            b.iparam.push_back(-10 * r - c);
            b.fparam.push_back(10 * r + c + 0.5);
            b.cparam += static_cast<char>('A' + r);
            b.cparam += static_cast<char>('a' + c);
        }
    }
    return b;
}

TEST(PropertiesBlock, Comes_back_as_it_was_written)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto written = three_rows();
    ASSERT_EQ(written.write(block, everything), 0) << written.errors;
    EXPECT_EQ(written.errors, "");

    auto b = Properties::with_room(4, 7, 25);
    ASSERT_EQ(b.read(block, everything), 0) << b.errors;
    EXPECT_EQ(b.etyp, "ELEMENT");
    EXPECT_EQ(b.etypprop, "SHELL");
    EXPECT_EQ(b.etypzone, "PART");
    EXPECT_EQ(b.zoneid, 8);
    EXPECT_EQ(b.nent, 3);
    EXPECT_EQ(b.nbid, 2);
    EXPECT_EQ(b.nbint, 2);
    EXPECT_EQ(b.nbfloat, 2);
    EXPECT_EQ(b.nbstring, 2);
    EXPECT_EQ(b.length, 4);
    EXPECT_EQ(b.nindex, 1);
    EXPECT_EQ(b.indexic, 3);
    EXPECT_EQ(b.indexident[0], 12);
    EXPECT_EQ(b.indexval[0], 0.5);
    EXPECT_THAT(b.entid, ElementsAre(21, 22, 23, untouched_int));
    EXPECT_THAT(b.idparam, ElementsAre(1, 2, 11, 12, 21, 22, untouched_int));
    EXPECT_THAT(b.iparam, ElementsAre(-1, -2, -11, -12, -21, -22, untouched_int));
    EXPECT_THAT(b.fparam, ElementsAre(0.1, 0.2, 1.1, 1.2, 2.1, 2.2, untouched_real));
    EXPECT_EQ(b.cparam, "a0  a1  b0  b1  c0  c1  #");
    EXPECT_EQ(b.errors, "");
}

TEST(PropertiesBlock, Every_count_has_its_own_table)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    Properties written;
    written.nent = 2;
    written.nbid = 1;
    written.nbint = 2;
    written.nbfloat = 3;
    written.nbstring = 4;
    written.length = 1;
    written.entid = {1, 2};
    written.idparam = {5, 6};
    written.iparam = {7, 8, 9, 10};
    written.fparam = {1, 2, 3, 4, 5, 6};
    written.cparam = "abcdefgh";
    ASSERT_EQ(written.write(block, everything), 0) << written.errors;
    EXPECT_THAT(stored_extents(block, "idparam"), ElementsAre(2, 1));
    EXPECT_THAT(stored_extents(block, "iparam"), ElementsAre(2, 2));
    EXPECT_THAT(stored_extents(block, "fparam"), ElementsAre(2, 3));
    EXPECT_THAT(stored_extents(block, "cparam"), ElementsAre(2, 4));
    auto b = Properties::with_room(2, 6, 8);
    ASSERT_EQ(b.read(block, everything), 0) << b.errors;
    EXPECT_EQ(b.nbid, 1);
    EXPECT_EQ(b.nbint, 2);
    EXPECT_EQ(b.nbfloat, 3);
    EXPECT_EQ(b.nbstring, 4);
    EXPECT_EQ(b.length, 1);
    EXPECT_EQ(b.fparam, written.fparam);
    EXPECT_EQ(b.cparam, written.cparam);
}

TEST(PropertiesBlock, Each_section_bit_writes_its_part)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto b = three_rows();
    ASSERT_EQ(b.write(block, 0), 0) << b.errors;
    EXPECT_THAT(attribute_names(block), ElementsAre());
    EXPECT_THAT(link_names(block), ElementsAre());

    ASSERT_EQ(b.write(block, attributes), 0) << b.errors;
    EXPECT_THAT(attribute_names(block),
                ElementsAre("block", "blocktype", "etyp", "etypprop", "etypzone", "zoneid", "nent", "nbid", "nbint",
                            "nbfloat", "nbstring", "length", "nindex", "indexic"));
    EXPECT_THAT(link_names(block), ElementsAre());

    ASSERT_EQ(b.write(block, state_index), 0) << b.errors;
    EXPECT_THAT(link_names(block), ElementsAre("indexident", "indexval"));
    ASSERT_EQ(b.write(block, identifiers), 0) << b.errors;
    EXPECT_THAT(link_names(block), ElementsAre("entid", "indexident", "indexval"));
    ASSERT_EQ(b.write(block, tables), 0) << b.errors;
    EXPECT_THAT(link_names(block),
                ElementsAre("cparam", "entid", "fparam", "idparam", "indexident", "indexval", "iparam"));
}

TEST(PropertiesBlock, Each_section_bit_reads_its_part)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto written = three_rows();
    ASSERT_EQ(written.write(block, everything), 0);

    auto b = Properties::with_room(3, 6, 24);
    auto expected = b;
    ASSERT_EQ(b.read(block, attributes), 0);
    expected.etyp = written.etyp;
    expected.etypprop = written.etypprop;
    expected.etypzone = written.etypzone;
    expected.zoneid = 8;
    expected.nent = 3;
    expected.nbid = expected.nbint = expected.nbfloat = expected.nbstring = 2;
    expected.length = 4;
    expected.nindex = 1;
    expected.indexic = 3;
    EXPECT_EQ(b, unchanged(expected, b)) << "attributes";

    ASSERT_EQ(b.read(block, state_index), 0);
    expected.indexident[0] = 12;
    expected.indexval[0] = 0.5;
    EXPECT_EQ(b, unchanged(expected, b)) << "state index";

    ASSERT_EQ(b.read(block, identifiers), 0);
    expected.entid = written.entid;
    EXPECT_EQ(b, unchanged(expected, b)) << "identifiers";

    ASSERT_EQ(b.read(block, tables), 0);
    expected.idparam = written.idparam;
    expected.iparam = written.iparam;
    expected.fparam = written.fparam;
    expected.cparam = written.cparam;
    EXPECT_EQ(b, unchanged(expected, b)) << "tables";
}

TEST(PropertiesBlock, A_call_that_reads_nothing_reports_the_key)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto written = three_rows();
    written.nindex = 0;
    ASSERT_EQ(written.write(block, everything), 0);
    for (const std::int32_t sections : {0, shared, state_index, state_index + shared, 32}) {
        auto b = Properties::with_room(3, 6, 24);
        b.nindex = 0;
        const auto before = b;
        EXPECT_EQ(b.read(block, sections), 500) << sections;
        EXPECT_EQ(b, unchanged(before, b)) << sections;
    }
    auto b = Properties::with_room(3, 6, 24);
    EXPECT_EQ(b.read(block, attributes + state_index), 0);
    b.nbid = b.nbint = b.nbfloat = b.nbstring = 0;
    EXPECT_EQ(b.read(block, tables), 500) << "no table is due";
}

TEST(PropertiesBlock, Tables_of_no_columns_are_skipped)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto b = three_rows();
    b.nbid = 0;
    b.nbint = -2;
    b.idparam = b.iparam = {};
    ASSERT_EQ(b.write(block, everything), 0) << b.errors;
    EXPECT_THAT(link_names(block), ElementsAre("cparam", "entid", "fparam", "indexident", "indexval"));
    auto r = Properties::with_room(3, 6, 24);
    ASSERT_EQ(r.read(block, everything), 0) << r.errors;
    EXPECT_EQ(r.nbint, -2);
    EXPECT_THAT(r.idparam, Each(untouched_int));
    EXPECT_THAT(r.iparam, Each(untouched_int));
    EXPECT_EQ(r.fparam, b.fparam);
    EXPECT_EQ(r.cparam, b.cparam);
}

TEST(PropertiesBlock, Texts_need_a_length)
{
    for (const std::int32_t length : {0, -1}) {
        const KobFile file;
        const auto block = create_group(file.handle(), "kobblock");
        auto b = three_rows();
        b.length = length;
        ASSERT_EQ(b.write(block, everything), 0) << b.errors;
        EXPECT_FALSE(has_link(block, "cparam"));
        auto r = Properties::with_room(3, 6, 24);
        ASSERT_EQ(r.read(block, everything), 0) << r.errors;
        EXPECT_EQ(r.nbstring, 2);
        EXPECT_EQ(r.cparam, std::string(24, '#'));
    }
}

TEST(PropertiesBlock, Without_rows_no_table_is_stored)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto b = three_rows();
    b.nent = 0;
    ASSERT_EQ(b.write(block, everything), 0) << b.errors;
    EXPECT_THAT(link_names(block), ElementsAre("indexident", "indexval"));
    auto r = Properties::with_room(1, 1, 1);
    EXPECT_EQ(r.read(block, everything), 0) << r.errors;
    EXPECT_THAT(r.entid, Each(untouched_int));
}

// ---- shared identifiers

TEST(PropertiesBlock, Blocks_can_share_their_identifiers)
{
    const KobFile file;
    const auto common = create_group(file.handle(), "common");
    const auto first_block = create_group(file.handle(), "first");
    const auto second_block = create_group(file.handle(), "second");
    auto first = three_rows();
    auto second = three_rows();
    second.entid = {1, 2, 3}; // not written: the shared ones are there
    ASSERT_EQ(first.write(first_block, everything + shared, common), 0) << first.errors;
    ASSERT_EQ(second.write(second_block, everything + shared, common), 0) << second.errors;
    EXPECT_THAT(link_names(common), ElementsAre("entid"));
    EXPECT_TRUE(same_object(common, "entid", first_block, "entid"));
    EXPECT_TRUE(same_object(common, "entid", second_block, "entid"));

    auto b = Properties::with_room(3, 6, 24);
    ASSERT_EQ(b.read(second_block, everything), 0) << b.errors;
    EXPECT_EQ(b.entid, first.entid);
}

TEST(PropertiesBlock, Identifiers_of_its_own_stay_with_the_block)
{
    const KobFile file;
    const auto common = create_group(file.handle(), "common");
    const auto block = create_group(file.handle(), "kobblock");
    auto b = three_rows();
    ASSERT_EQ(b.write(block, identifiers), 0) << b.errors;
    ASSERT_EQ(b.write(block, identifiers + shared, common), 0) << b.errors;
    EXPECT_TRUE(has_link(common, "entid"));
    EXPECT_FALSE(same_object(common, "entid", block, "entid"));
}

TEST(PropertiesBlock, Sharing_without_identifiers_does_nothing)
{
    const KobFile file;
    const auto common = create_group(file.handle(), "common");
    const auto block = create_group(file.handle(), "kobblock");
    auto b = three_rows();
    ASSERT_EQ(b.write(block, attributes + shared, common), 0) << b.errors;
    EXPECT_THAT(link_names(common), ElementsAre());
    EXPECT_THAT(link_names(block), ElementsAre());
}

// ---- rows

TEST(PropertiesBlock, Mode_1_writes_a_run_of_rows)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto whole = counted_rows(30, 2);
    ASSERT_EQ(whole.write(block, everything), 0) << whole.errors;

    Properties rows = counted_rows(10, 2);
    rows.nent = 30;
    for (auto& v : rows.idparam) v += 1000;
    for (auto& v : rows.iparam) v -= 1000;
    for (auto& v : rows.fparam) v += 1000;
    for (auto& c : rows.cparam) c = '.';
    rows.mode = 1;
    rows.count = 10;
    rows.rows = {20};
    ASSERT_EQ(rows.write(block, tables), 0) << rows.errors;

    auto expected = whole;
    std::copy(rows.idparam.begin(), rows.idparam.end(), expected.idparam.begin() + 40);
    std::copy(rows.iparam.begin(), rows.iparam.end(), expected.iparam.begin() + 40);
    std::copy(rows.fparam.begin(), rows.fparam.end(), expected.fparam.begin() + 40);
    std::copy(rows.cparam.begin(), rows.cparam.end(), expected.cparam.begin() + 80);
    auto b = Properties::with_room(30, 60, 120);
    ASSERT_EQ(b.read(block, everything), 0) << b.errors;
    EXPECT_EQ(b.idparam, expected.idparam);
    EXPECT_EQ(b.iparam, expected.iparam);
    EXPECT_EQ(b.fparam, expected.fparam);
    EXPECT_EQ(b.cparam, expected.cparam);
}

TEST(PropertiesBlock, Mode_2_writes_the_first_column_of_single_rows)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto whole = counted_rows(12, 2);
    ASSERT_EQ(whole.write(block, everything), 0) << whole.errors;

    Properties points = counted_rows(12, 2);
    points.idparam = {1004, 1009, 1011};
    points.iparam = {-1004, -1009, -1011};
    points.fparam = {1004.5, 1009.5, 1011.5};
    points.cparam = "....!!";
    points.mode = 2;
    points.count = 3;
    points.rows = {4, 9, 11};
    ASSERT_EQ(points.write(block, tables), 0) << points.errors;

    auto expected = whole;
    for (std::size_t i = 0; i < 3; ++i) {
        const auto at = 2 * static_cast<std::size_t>(points.rows[i]);
        expected.idparam[at] = points.idparam[i];
        expected.iparam[at] = points.iparam[i];
        expected.fparam[at] = points.fparam[i];
        expected.cparam.replace(2 * at, 2, points.cparam, 2 * i, 2);
    }
    auto b = Properties::with_room(12, 24, 48);
    ASSERT_EQ(b.read(block, everything), 0) << b.errors;
    EXPECT_EQ(b.idparam, expected.idparam);
    EXPECT_EQ(b.iparam, expected.iparam);
    EXPECT_EQ(b.fparam, expected.fparam);
    EXPECT_EQ(b.cparam, expected.cparam);
}

TEST(PropertiesBlock, Mode_1_reads_a_run_of_rows)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto whole = counted_rows(12, 2);
    ASSERT_EQ(whole.write(block, everything), 0);
    auto b = Properties::with_room(12, 5, 9);
    b.mode = 1;
    b.count = 2;
    b.rows = {3};
    ASSERT_EQ(b.read(block, attributes + tables), 0) << b.errors;
    EXPECT_THAT(b.idparam, ElementsAre(30, 31, 40, 41, untouched_int));
    EXPECT_THAT(b.iparam, ElementsAre(-30, -31, -40, -41, untouched_int));
    EXPECT_THAT(b.fparam, ElementsAre(30.5, 31.5, 40.5, 41.5, untouched_real));
    EXPECT_EQ(b.cparam, "DaDbEaEb#");
    EXPECT_THAT(b.entid, Each(untouched_int));
}

TEST(PropertiesBlock, Mode_2_reads_the_first_column_of_single_rows_in_the_order_asked_for)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto whole = counted_rows(12, 2);
    ASSERT_EQ(whole.write(block, everything), 0);
    auto b = Properties::with_room(12, 4, 7);
    b.mode = 2;
    b.count = 3;
    b.rows = {11, 0, 4};
    ASSERT_EQ(b.read(block, attributes + tables), 0) << b.errors;
    EXPECT_THAT(b.idparam, ElementsAre(110, 0, 40, untouched_int));
    EXPECT_THAT(b.iparam, ElementsAre(-110, 0, -40, untouched_int));
    EXPECT_THAT(b.fparam, ElementsAre(110.5, 0.5, 40.5, untouched_real));
    EXPECT_EQ(b.cparam, "LaAaEa#");
}

TEST(PropertiesBlock, A_single_row_and_a_single_column_are_no_special_case)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto whole = counted_rows(4, 1);
    ASSERT_EQ(whole.write(block, everything), 0);
    auto row = counted_rows(1, 1);
    row.nent = 4;
    row.idparam = {77};
    row.mode = 1;
    row.count = 1;
    row.rows = {2};
    ASSERT_EQ(row.write(block, tables), 0) << row.errors;
    auto b = Properties::with_room(4, 4, 8);
    ASSERT_EQ(b.read(block, everything), 0) << b.errors;
    EXPECT_THAT(b.idparam, ElementsAre(0, 10, 77, 30));
    b = Properties::with_room(4, 2, 4);
    b.mode = 1;
    b.count = 1;
    b.rows = {2};
    ASSERT_EQ(b.read(block, attributes + tables), 0) << b.errors;
    EXPECT_THAT(b.idparam, ElementsAre(77, untouched_int));
}

TEST(PropertiesBlock, No_rows_are_a_success_that_transfers_nothing)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto whole = counted_rows(4, 2);
    ASSERT_EQ(whole.write(block, everything), 0);
    for (const std::int32_t mode : {1, 2}) {
        auto none = counted_rows(1, 2);
        none.nent = 4;
        none.mode = mode;
        none.count = 0;
        none.rows = {1};
        EXPECT_EQ(none.write(block, tables), 0) << mode << none.errors;
        auto b = Properties::with_room(4, 8, 16);
        b.mode = mode;
        b.rows = {1};
        EXPECT_EQ(b.read(block, attributes + tables), 0) << mode << b.errors;
        EXPECT_THAT(b.idparam, Each(untouched_int)) << mode;
        EXPECT_EQ(b.cparam, std::string(16, '#')) << mode;
    }
    auto b = Properties::with_room(4, 8, 16);
    ASSERT_EQ(b.read(block, everything), 0) << b.errors;
    EXPECT_EQ(b.idparam, whole.idparam);
    EXPECT_EQ(b.cparam, whole.cparam);
}

TEST(PropertiesBlock, Rows_outside_of_the_table_are_refused)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto whole = counted_rows(4, 2);
    ASSERT_EQ(whole.write(block, everything), 0);
    struct {
        std::int32_t mode;
        std::int64_t count;
        Rows rows;
        std::int32_t status;
    } const cases[]{{1, 2, {3}, -6031},  {1, 5, {0}, -6031},  {1, 1, {-1}, -6031}, {2, 2, {0, 4}, -6032},
                    {2, 1, {-1}, -6032}, {1, -1, {0}, -6031}, {2, -1, {0}, -6032}};
    for (const auto& c : cases) {
        auto b = counted_rows(5, 2);
        b.nent = 4;
        for (auto& v : b.idparam) v = 99;
        b.mode = c.mode;
        b.count = c.count;
        b.rows = c.rows;
        EXPECT_EQ(b.write(block, tables), c.status) << c.mode << " " << c.rows[0];
        EXPECT_THAT(b.errors, HasSubstr("in KOB_H5Dwrite"));
        auto r = Properties::with_room(4, 10, 20);
        r.mode = c.mode;
        r.count = c.count;
        r.rows = c.rows;
        EXPECT_EQ(r.read(block, attributes + tables), c.status) << c.mode << " " << c.rows[0];
        EXPECT_THAT(r.errors, HasSubstr("in KOB_H5Dread"));
        EXPECT_THAT(r.idparam, Each(untouched_int));
    }
    auto b = Properties::with_room(4, 8, 16);
    ASSERT_EQ(b.read(block, everything), 0) << b.errors;
    EXPECT_EQ(b.idparam, whole.idparam);
}

TEST(PropertiesBlock, Rows_need_a_table_that_exists)
{
    for (const std::int32_t mode : {1, 2}) {
        const KobFile file;
        const auto block = create_group(file.handle(), "kobblock");
        auto b = three_rows();
        b.mode = mode;
        b.count = 1;
        b.rows = {0};
        EXPECT_EQ(b.write(block, everything), -3000) << mode;
        EXPECT_THAT(b.errors, HasSubstr("KOB INTERNAL ERROR (0) in KOB_H5Dwrite"));
        EXPECT_TRUE(has_link(block, "entid")) << mode;
        EXPECT_FALSE(has_link(block, "idparam")) << mode;
    }
}

TEST(PropertiesBlock, An_unknown_mode_is_refused_when_a_table_is_due)
{
    for (const std::int32_t mode : {3, 5, -1}) {
        const KobFile file;
        const auto block = create_group(file.handle(), "kobblock");
        auto b = three_rows();
        b.mode = mode;
        EXPECT_EQ(b.write(block, everything), -999) << mode;
        EXPECT_EQ(b.errors, "KOB ERROR writing block key 500 - invalid mode\n") << mode;
        EXPECT_THAT(link_names(block), ElementsAre("entid", "indexident", "indexval")) << mode;
        EXPECT_EQ(b.write(block, everything - tables), 0) << mode;

        auto r = Properties::with_room(3, 6, 24);
        r.mode = mode;
        EXPECT_EQ(r.read(block, everything), -999) << mode;
        EXPECT_EQ(r.errors, "KOB ERROR reading block key 500 - invalid mode\n") << mode;
        EXPECT_EQ(r.nent, 3) << mode;
        EXPECT_EQ(r.entid, b.entid) << mode;
        EXPECT_THAT(r.idparam, Each(untouched_int)) << mode;
        EXPECT_EQ(r.read(block, everything - tables), 0) << mode;

        b.nbid = b.nbint = b.nbfloat = 0;
        b.length = 0;
        EXPECT_EQ(b.write(block, tables), 0) << mode << ": no table is due";
        b.length = 4;
        EXPECT_EQ(b.write(block, tables), -999) << mode << ": the texts are due";
    }
}

// ---- rewriting, frames and failures

TEST(PropertiesBlock, What_exists_is_overwritten)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto first = three_rows();
    ASSERT_EQ(first.write(block, everything), 0);
    auto second = three_rows();
    second.etypprop = "SOLID";
    second.zoneid = 9;
    second.indexval = {2.5};
    second.entid = {1, 2, 3};
    second.fparam = {9, 8, 7, 6, 5, 4};
    ASSERT_EQ(second.write(block, everything), 0) << second.errors;
    auto b = Properties::with_room(3, 6, 24);
    ASSERT_EQ(b.read(block, everything), 0) << b.errors;
    EXPECT_EQ(b.etypprop, "SOLID");
    EXPECT_EQ(b.zoneid, 9);
    EXPECT_EQ(b.indexval[0], 2.5);
    EXPECT_EQ(b.entid, second.entid);
    EXPECT_EQ(b.fparam, second.fparam);
}

TEST(PropertiesBlock, Numbers_are_rounded_to_their_stored_size)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto written = three_rows();
    written.float_size = 4;
    written.indexval = {0.1};
    ASSERT_EQ(written.write(block, everything), 0);
    auto b = Properties::with_room(3, 6, 24);
    ASSERT_EQ(b.read(block, everything), 0);
    EXPECT_EQ(b.fparam[0], static_cast<double>(0.1F));
    EXPECT_EQ(b.indexval[0], static_cast<double>(0.1F));
}

TEST(PropertiesBlock, Filters_change_no_value_and_are_not_reported)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto written = three_rows();
    written.nent = 4;
    written.entid.push_back(24);
    written.idparam.insert(written.idparam.end(), {31, 32});
    written.iparam.insert(written.iparam.end(), {-31, -32});
    written.fparam.insert(written.fparam.end(), {1.0 / 3, 2.0 / 3});
    written.cparam += "d0  d1  ";
    written.filter_flags = 255;
    written.filter_params = filter_settings;
    ASSERT_EQ(written.write(block, everything), 0) << written.errors;
    auto b = Properties::with_room(4, 8, 32);
    ASSERT_EQ(b.read(block, everything), 0) << b.errors;
    EXPECT_EQ(b.idparam, written.idparam);
    EXPECT_EQ(b.iparam, written.iparam);
    EXPECT_EQ(b.fparam, written.fparam) << "no decimals are cut off";
    EXPECT_EQ(b.cparam, written.cparam);
    EXPECT_EQ(b.filter_flags, untouched_int);
    EXPECT_THAT(b.filter_params, Each(untouched_int));
}

TEST(PropertiesBlock, The_counts_of_the_caller_hold_without_section_1)
{
    const KobFile file;
    const auto block = create_group(file.handle(), "kobblock");
    auto written = three_rows();
    ASSERT_EQ(written.write(block, everything), 0);
    auto b = Properties::with_room(4, 8, 32);
    b.nent = 4;
    EXPECT_EQ(b.read(block, identifiers), -6030);
    b.nent = 3;
    b.nbid = b.nbint = 2;
    b.nbfloat = 3;
    b.nbstring = b.length = 0;
    EXPECT_EQ(b.read(block, tables), -6030);
    EXPECT_EQ(b.iparam[5], -22) << "read before";
    EXPECT_THAT(b.fparam, Each(untouched_real));
}

TEST(PropertiesBlock, A_negative_handle_is_the_status_of_the_writer)
{
    auto b = three_rows();
    EXPECT_EQ(b.write(-5, everything), -5);
    EXPECT_EQ(b.errors, "KOB ERROR writing block key 500\n");
    EXPECT_EQ(b.write(-1, 0), -1);
    EXPECT_EQ(b.errors, "KOB ERROR writing block key 500\n");
}

TEST(PropertiesBlock, An_invalid_handle_is_not_read)
{
    Properties b;
    EXPECT_EQ(b.read(-5, everything), -1);
    EXPECT_EQ(b.errors, "KOB ERROR - header not found\n");
}

TEST(PropertiesBlock, Another_block_is_not_read)
{
    const KobFile file;
    const auto other = bare_block(file.handle(), "other", 400);
    auto b = Properties::with_room(1, 1, 1);
    const auto before = b;
    EXPECT_EQ(b.read(other, everything), -1);
    EXPECT_EQ(b.errors, "KOB error - wrong block key 400, 500 expected\n");
    EXPECT_EQ(b, unchanged(before, b));
}

TEST(PropertiesBlock, Is_found_by_the_placement_that_made_its_group)
{
    const KobFile file;
    Text256 kind = "properties";
    Text256 etyp = "ELEMENT";
    Text256 etypprop = "SHELL";
    Text256 blank;
    const std::int32_t mask = 14;
    const std::int32_t create = 0;
    const std::int32_t constant = 0;
    const std::int32_t none = -1;
    std::int64_t block = -1;
    std::int32_t status = 77;
    KOB_OPENAUTOPATH(file.address(), &mask, nullptr, &create, &constant, nullptr, &none, blank.data(), kind.data(),
                     etyp.data(), etypprop.data(), blank.data(), &none, &none, &block, &status);
    ASSERT_GT(status, 0);
    auto written = counted_rows(3, 2);
    ASSERT_EQ(written.write(block, everything), 0) << written.errors;
    auto b = Properties::with_room(3, 6, 12);
    EXPECT_EQ(b.read(file.block("constant/properties/ELEMENT/SHELL/kobblock"), everything), 0) << b.errors;
    EXPECT_EQ(b.cparam, written.cparam);
}

} // namespace
