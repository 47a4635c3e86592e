// SPDX-License-Identifier: BSD-3-Clause
// Connectivities, written and read through their entry points.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "block_checks.hpp"
#include "identifiers.hpp"
#include "kob_file.hpp"
#include "model_blocks.hpp"

using namespace kob_test;

namespace {

const char* const path = "singlestate/state000000000012/connectivities/HEXA8/kobblock";
const char* const constant_path = "constant/connectivities/HEXA8/kobblock";

} // namespace

TEST(Connectivities, Everything_comes_back_as_it_was_written)
{
    const KobFile file;
    auto written = ConnectivitiesBlock::sample();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    auto read = ConnectivitiesBlock::empty();
    FoundFilters found;
    EXPECT_EQ(read.read(file.block(path), 15, &found), 0);
    EXPECT_EQ(read, written);
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
}

TEST(Connectivities, Each_mode_bit_reads_its_section_alone)
{
    const KobFile file;
    auto written = ConnectivitiesBlock::sample();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    const auto block = file.block(path);
    auto read = ConnectivitiesBlock::empty();
    FoundFilters found;
    EXPECT_EQ(read.read(block, 1, &found), 0);
    auto expected = ConnectivitiesBlock::empty();
    expected.etyp = written.etyp;
    expected.etypelem = written.etypelem;
    expected.etyppart = written.etyppart;
    expected.etypnode = written.etypnode;
    expected.etypvar = written.etypvar;
    expected.nele = 4;
    expected.npele = 8;
    expected.ndim = 3;
    expected.nbint = 2;
    expected.nbfloat = 1;
    expected.nindex = 1;
    expected.indexic = 5;
    EXPECT_EQ(read, expected);
    EXPECT_EQ(read.read(block, 2, &found), 0);
    expected.indexident = written.indexident;
    expected.indexval = written.indexval;
    EXPECT_EQ(read, expected);
    EXPECT_EQ(read.read(block, 4, &found), 0);
    expected.idele = written.idele;
    expected.pid = written.pid;
    EXPECT_EQ(read, expected);
    EXPECT_EQ(found, untouched_filters);
    EXPECT_EQ(read.read(block, 8, &found), 0);
    EXPECT_EQ(read, written);
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
}

TEST(Connectivities, A_call_that_reads_nothing_returns_the_key)
{
    const KobFile file;
    auto written = ConnectivitiesBlock::constant();
    ASSERT_EQ(written.write(file.handle(), -1), 0);
    const auto block = file.block(constant_path);
    for (const std::int32_t mode : {0, 16, 2}) {
        auto read = ConnectivitiesBlock::empty();
        read.nindex = 0;
        auto expected = read;
        EXPECT_EQ(reply_of([&] { return read.read(block, mode); }), (Reply{300, ""})) << mode;
        EXPECT_EQ(read, expected);
    }
    auto read = ConnectivitiesBlock::empty();
    EXPECT_EQ(read.read(block, 3), 0) << "the attributes were read";
}

TEST(Connectivities, Without_parameters_or_states_their_items_are_absent)
{
    const KobFile file;
    auto written = ConnectivitiesBlock::constant();
    ASSERT_EQ(written.write(file.handle(), 5), 0);
    const auto block = file.block(constant_path);
    EXPECT_EQ(link_names(block), (std::vector<std::string>{"ic", "idele", "pid"}));
    EXPECT_FALSE(has_attribute(block, "etypvar"));
    auto read = ConnectivitiesBlock::empty(4, 8, 0, 0, 0);
    FoundFilters found;
    EXPECT_EQ(read.read(block, 15, &found), 0);
    EXPECT_EQ(read, written) << "the name of the variable group is left as it was";
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
}

TEST(Connectivities, Other_counts_than_the_stored_ones_are_refused)
{
    const KobFile file;
    auto written = ConnectivitiesBlock::sample();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    auto read = ConnectivitiesBlock::empty();
    ASSERT_EQ(read.read(file.block(path), 1), 0);
    read.npele = 6;
    FoundFilters found;
    EXPECT_EQ(reply_of([&] { return read.read(file.block(path), 8, &found); }).status, -6030);
    EXPECT_EQ(read.ic, Ints32(32, untouched_int));
    EXPECT_EQ(found, untouched_filters);
}

TEST(Connectivities, The_filters_of_the_parameters_are_reported)
{
    const KobFile file;
    auto written = ConnectivitiesBlock::sample();
    written.nbfloat = 2;
    written.fparam = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8};
    ASSERT_EQ(written.write(file.handle(), 12, {.filter_flags = 255}), 0);
    auto read = ConnectivitiesBlock::empty(4, 8, 2, 2);
    FoundFilters found;
    EXPECT_EQ(read.read(file.block(path), 15, &found), 0);
    EXPECT_EQ(read, written);
    EXPECT_EQ(found, (FoundFilters{2 + 16, {0, 6}})) << "\"fparam\" is never stored with scale-offset";

    auto plain = ConnectivitiesBlock::constant();
    ASSERT_EQ(plain.write(file.handle(), -1, {.filter_flags = 255}), 0);
    EXPECT_EQ(read.read(file.block(constant_path), 9, &found), 0);
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}})) << "there is no \"fparam\", though \"ic\" is filtered";
}

TEST(Connectivities, Floats_are_rounded_when_they_are_stored_in_4_bytes)
{
    const KobFile file;
    auto written = ConnectivitiesBlock::sample();
    ASSERT_EQ(written.write(file.handle(), 12, {.float_size = 4}), 0);
    auto read = ConnectivitiesBlock::empty();
    EXPECT_EQ(read.read(file.block(path), 15), 0);
    EXPECT_EQ(read.indexval[0], static_cast<double>(0.1F));
    EXPECT_EQ(read.fparam[2], static_cast<double>(0.3F));
}

TEST(Connectivities, A_negative_state_number_takes_the_states_from_the_identifiers)
{
    const KobFile file;
    auto written = ConnectivitiesBlock::sample();
    written.nindex = 3;
    written.indexident = {7, 8, 9};
    written.indexval = {0.7, 0.8, 0.9};
    ASSERT_EQ(written.write(file.handle(), -1), 0);
    auto read = ConnectivitiesBlock::empty(4, 8, 2, 1, 3);
    EXPECT_EQ(read.read(file.block("singlestate/state000000000009/state000000000008/state000000000007/connectivities/"
                                   "HEXA8/kobblock"),
                        15),
              0);
    EXPECT_EQ(read, written);
}

TEST(Connectivities, Nindex_minus_one_belongs_to_all_states_and_has_no_index_of_its_own)
{
    const KobFile file;
    auto written = ConnectivitiesBlock::sample();
    written.nindex = -1;
    EXPECT_EQ(reply_of([&] { return written.write(file.handle(), 12); }).status, -3000);
    const auto block = file.block("multistate/connectivities/HEXA8/kobblock");
    EXPECT_EQ(stored_ints(block, "nindex"), std::vector<std::int64_t>{-1});
    EXPECT_TRUE(link_names(block).empty());
}

TEST(Connectivities, The_same_elements_are_refused_in_the_same_state_and_accepted_in_another)
{
    const KobFile file;
    auto block = ConnectivitiesBlock::sample();
    ASSERT_EQ(block.write(file.handle(), 12), 0);
    EXPECT_EQ(reply_of([&] { return block.write(file.handle(), 12); }), already_exists(300, "connectivities"));
    EXPECT_EQ(block.write(file.handle(), 13), 0);
    block.etypelem = "HEXA20";
    EXPECT_EQ(block.write(file.handle(), 12), 0);
}

TEST(Connectivities, The_reader_checks_handle_and_key)
{
    auto read = ConnectivitiesBlock::empty();
    expect_reader_checks_block([&](std::int64_t block) { return read.read(block, 15); }, "300");
    EXPECT_EQ(read, ConnectivitiesBlock::empty());
}

TEST(Connectivities, A_negative_count_is_the_storage_layers_error_and_the_frame_stays)
{
    for (const std::int32_t count : {-1, -2}) {
        const KobFile file;
        auto written = ConnectivitiesBlock::sample();
        written.nele = count;
        const auto status = reply_of([&] { return written.write(file.handle(), 12); }).status;
        if (count == -1)
            EXPECT_EQ(status, -3000);
        else
            EXPECT_TRUE(status == -2040 || status == -2190) << status;
        EXPECT_EQ(link_names(file.block(path)), (std::vector<std::string>{"indexident", "indexval"}));
    }
}

TEST(Connectivities, A_file_that_contradicts_itself_overruns_nothing)
{
    const KobFile file;
    auto written = ConnectivitiesBlock::sample();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    const auto block = file.block(path);
    const auto status_with = [&](const char* name, std::int32_t value) {
        const auto before = static_cast<std::int32_t>(stored_ints(block, name)[0]);
        set_int_attribute(block, name, value);
        auto read = ConnectivitiesBlock::empty();
        const auto status = reply_of([&] { return read.read(block, 15); }).status;
        set_int_attribute(block, name, before);
        return status;
    };
    EXPECT_EQ(status_with("nele", 0x7fffffff), -6030);
    EXPECT_EQ(status_with("npele", 0x7fffffff), -6030);
    EXPECT_EQ(status_with("nbint", -2), -6030);
    EXPECT_EQ(status_with("nbfloat", 2), -6030);
    EXPECT_EQ(status_with("nindex", 2), -6030);
    auto read = ConnectivitiesBlock::empty();
    EXPECT_EQ(read.read(block, 15), 0) << "as it was";
}

TEST(Connectivities, The_writer_leaves_the_block_open_and_the_reader_nothing)
{
    const KobFile file;
    auto written = ConnectivitiesBlock::sample();
    EXPECT_EQ(left_open_by([&] { ASSERT_EQ(written.write(file.handle(), 12), 0); }), "group: 1");
    const auto block = file.block(path);
    auto read = ConnectivitiesBlock::empty();
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(read.read(block, 15), 0); }), "");
}
