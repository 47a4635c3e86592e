// SPDX-License-Identifier: BSD-3-Clause
// Entity results, written and read through their entry points: whole, by sections, and in pieces.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "block_checks.hpp"
#include "entity_results.hpp"
#include "identifiers.hpp"
#include "kob_file.hpp"

using namespace kob_test;

namespace {

const char* const path = "singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/kobblock";
// the zone number is appended to the last name
const char* const zone_path = "singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/ZONE7/kobblock";
constexpr std::int32_t all_sections = 15;

using Longs = std::vector<std::int64_t>;

} // namespace

TEST(EntityResults, Everything_comes_back_as_it_was_written)
{
    const KobFile file;
    auto written = EntityResults::sample();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    auto read = EntityResults::empty();
    FoundFilters found;
    EXPECT_EQ(read.read(file.block(path), 2, &found), 1000);
    EXPECT_EQ(read, written);
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
}

TEST(EntityResults, Frames_operators_and_weights_come_back_where_the_switches_ask_for_them)
{
    const KobFile file;
    auto written = EntityResults::combined();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    auto read = EntityResults::empty_combined();
    EXPECT_EQ(read.read(file.block(zone_path), 2), 1000);
    EXPECT_EQ(read, written);
}

TEST(EntityResults, Complex_values_have_a_key_and_a_dimension_of_their_own)
{
    struct Row {
        std::int32_t value_size;
        std::int32_t key;
        std::size_t parts;
        bool rounded;
    };
    for (const auto& row :
         {Row{4, 1000, 1, true}, Row{8, 1000, 1, false}, Row{16, 1001, 2, true}, Row{32, 1001, 2, false},
          Row{0, 1000, 1, false}, Row{12, 1000, 1, false}, Row{-4, 1000, 1, false}, Row{5, 1000, 1, false},
          Row{20, 1000, 1, false}, Row{64, 1000, 1, false}}) {
        SCOPED_TRACE(row.value_size);
        const KobFile file;
        auto written = EntityResults::sample();
        if (row.parts == 2) {
            for (int i = 0; i < 12; ++i) written.res.push_back(-0.1 * i);
        }
        ASSERT_EQ(written.write(file.handle(), 12, row.value_size), 0);
        EXPECT_EQ(stored_extents(file.block(path), "res"),
                  row.parts == 2 ? (std::vector<hsize_t>{4, 3, 2}) : (std::vector<hsize_t>{4, 3}));
        auto read = EntityResults::empty(4, 12 * row.parts);
        EXPECT_EQ(read.read(file.block(path), 2), row.key);
        for (std::size_t i = 0; i < written.res.size(); ++i) {
            EXPECT_EQ(read.res[i],
                      row.rounded ? static_cast<double>(static_cast<float>(written.res[i])) : written.res[i]);
        }
        EXPECT_EQ(read.indexval[0], row.rounded ? static_cast<double>(0.1F) : 0.1);
    }
}

TEST(EntityResults, Pass_0_reads_attributes_and_index_and_pass_1_the_attributes_alone)
{
    const KobFile file;
    auto written = EntityResults::combined();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    for (const std::int32_t pass : {1, 0}) {
        auto expected = EntityResults::empty_combined();
        expected.etyp = written.etyp;
        expected.nent = 4;
        expected.etypvar = written.etypvar;
        expected.ncoo = 3;
        expected.etypzone = written.etypzone;
        expected.zoneid = 7;
        expected.etypframe = written.etypframe;
        expected.fswitch = 1;
        expected.dmpswitch = 1;
        expected.nindex = 1;
        expected.indexic = 9;
        if (pass == 0) {
            expected.indexident = written.indexident;
            expected.indexval = written.indexval;
        }
        auto read = EntityResults::empty_combined();
        FoundFilters found;
        EXPECT_EQ(read.read(file.block(zone_path), pass, &found), 1000);
        EXPECT_EQ(read, expected) << pass;
        EXPECT_EQ(found, untouched_filters);
    }
}

TEST(EntityResults, Another_pass_reads_nothing)
{
    const KobFile file;
    auto written = EntityResults::sample();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    for (const std::int32_t pass : {3, -1}) {
        auto read = EntityResults::empty();
        EXPECT_EQ(
            reply_of([&] { return read.read(file.block(path), pass); }),
            (Reply{-3, "KOB INTERNAL ERROR reading \"entityresults\" block - ipass = " + std::to_string(pass) + "\n"}));
        EXPECT_EQ(read, EntityResults::empty());
    }
}

TEST(EntityResults, Each_section_is_read_alone)
{
    const KobFile file;
    auto written = EntityResults::combined();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    const auto block = file.block(zone_path);
    auto read = EntityResults::empty_combined();
    EXPECT_EQ(read.read2(block, 0, nullptr), 1000);
    EXPECT_EQ(read, EntityResults::empty_combined());
    EXPECT_EQ(read.read2(block, attributes_section, nullptr), 1000);
    EXPECT_EQ(read.nent, 4);
    EXPECT_EQ(read.indexident, Ints32(1, untouched_int));
    EXPECT_EQ(read.read2(block, index_section, nullptr), 1000);
    EXPECT_EQ(read.indexident, written.indexident);
    EXPECT_EQ(read.entid, Ints32(4, untouched_int));
    FoundFilters found;
    EXPECT_EQ(read.read2(block, identifiers_section, nullptr, {}, 8, &found), 1000);
    EXPECT_EQ(read.fid, written.fid);
    EXPECT_EQ(read.operators, written.operators);
    EXPECT_EQ(found, untouched_filters);
    EXPECT_EQ(read.res, Reals64(12, untouched_real));
    EXPECT_EQ(read.read2(block, values_section, read.res.data(), {}, 8, &found), 1000);
    EXPECT_EQ(read, written);
    EXPECT_EQ(found, (FoundFilters{0, {0, 0}}));
}

TEST(EntityResults, Constant_data_have_no_index_to_read)
{
    const KobFile file;
    auto written = EntityResults::sample();
    written.nindex = 0;
    written.indexident.clear();
    written.indexval.clear();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    const auto block = file.block("constant/entityresults/NODE/DISPLACEMENT/kobblock");
    EXPECT_EQ(link_names(block), (std::vector<std::string>{"entid", "fidglob", "res"}));
    auto read = EntityResults::empty();
    EXPECT_EQ(read.read(block, 2), 1000);
    EXPECT_EQ(read.indexident, Ints32(1, untouched_int));
    EXPECT_EQ(read.res, written.res);
}

TEST(EntityResults, Zone_number_and_set_number_are_part_of_the_path)
{
    const KobFile file;
    auto written = EntityResults::sample();
    written.etypzone = "ZONE";
    written.zoneid = 3;
    ASSERT_EQ(written.write(file.handle(), 12, 8, {}, 2), 0);
    auto read = EntityResults::empty();
    EXPECT_EQ(
        read.read(file.block("singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/ZONE3_set2/kobblock"), 1),
        1000);
    EXPECT_EQ(read.zoneid, 3);
    ASSERT_EQ(written.write(file.handle(), -1), 0);
    EXPECT_EQ(read.read(file.block("singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/ZONE3/kobblock"), 1),
              1000)
        << "state from the identifiers, no set";
}

TEST(EntityResults, Writing_again_overwrites_the_block_in_place)
{
    const KobFile file;
    auto first = EntityResults::sample();
    ASSERT_EQ(first.write(file.handle(), 12), 0);
    auto second = first;
    second.res[5] = -99;
    second.entid = {1, 2, 3, 4};
    second.fidglob = 56;
    second.etypframe = "LOCAL";
    EXPECT_EQ(reply_of([&] { return second.write(file.handle(), 12); }), (Reply{0, ""}));
    auto read = EntityResults::empty();
    EXPECT_EQ(read.read(file.block(path), 2), 1000);
    EXPECT_EQ(read, second);
    auto longer = first;
    longer.nent = 3;
    EXPECT_EQ(reply_of([&] { return longer.write(file.handle(), 12); }).status, -6030);
}

TEST(EntityResults, A_frame_switch_that_is_none_is_refused_by_writer_and_reader)
{
    const KobFile file;
    auto written = EntityResults::sample();
    written.fswitch = 2;
    EXPECT_EQ(reply_of([&] { return written.write(file.handle(), 12); }), (Reply{-123, ""}));
    const auto block = file.block(path);
    EXPECT_EQ(link_names(block), (std::vector<std::string>{"entid", "indexident", "indexval"}));
    auto read = EntityResults::empty();
    EXPECT_EQ(reply_of([&] { return read.read(block, 2); }), (Reply{-123, ""}));
    EXPECT_EQ(read.entid, written.entid);
    EXPECT_EQ(read.read(block, 0), 1000) << "the switch matters to the identifiers only";
}

TEST(EntityResults, A_frame_number_kept_as_an_attribute_is_read)
{
    const KobFile file;
    auto written = EntityResults::sample();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    const auto block = file.block(path);
    H5Ldelete(block, "fidglob", H5P_DEFAULT);
    auto read = EntityResults::empty();
    EXPECT_EQ(read.read(block, 2), 1000);
    EXPECT_EQ(read.fidglob, untouched_int) << "neither attribute nor dataset: left as it is";
    EXPECT_EQ(read.res, written.res);
    const std::int32_t frame = 77;
    put_attribute(block, "fidglob", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &frame);
    EXPECT_EQ(read.read(block, 2), 1000);
    EXPECT_EQ(read.fidglob, 77);
}

TEST(EntityResults, Lossy_compression_reaches_the_values_alone)
{
    const KobFile file;
    auto written = EntityResults::combined();
    written.nent = 8;
    written.entid = written.fid = {1, 2, 3, 4, 5, 6, 7, 8};
    written.weight = Reals64(8, 0.123456);
    written.res.clear();
    for (int i = 0; i < 24; ++i) written.res.push_back(0.123456 * i);
    ASSERT_EQ(written.write(file.handle(), 12, 8, {.filter_flags = 255}), 0);
    auto read = EntityResults::empty_combined(8);
    FoundFilters found;
    EXPECT_EQ(read.read(file.block(zone_path), 2, &found), 1000);
    EXPECT_EQ(found, (FoundFilters{2 + 16 + 128, {3, 6}}));
    EXPECT_EQ(read.weight, written.weight);
    for (std::size_t i = 0; i < 24; ++i) EXPECT_NEAR(read.res[i], written.res[i], 0.0005);
    EXPECT_NE(read.res, written.res);
}

TEST(EntityResults, Shared_identifiers_are_stored_once_and_linked_into_each_block)
{
    const KobFile file;
    auto results = EntityResults::combined();
    const auto first = file.new_group("first");
    const auto second = file.new_group("second");
    const auto shared = file.new_group("shared");
    const std::int32_t sections = all_sections + shared_identifiers;
    ASSERT_EQ(results.write2({first, shared}, sections, results.res.data()), 0);
    EXPECT_EQ(link_names(shared), (std::vector<std::string>{"entid", "fid", "operator", "weight"}));
    auto other = results;
    other.entid = {1, 2, 3, 4}; // not written: the shared group has identifiers
    ASSERT_EQ(other.write2({second, shared}, sections, other.res.data()), 0);
    for (const auto block : {first, second}) {
        for (const auto* name : {"entid", "fid", "operator", "weight"})
            EXPECT_TRUE(same_object(block, name, shared, name)) << name;
        auto read = EntityResults::empty_combined();
        EXPECT_EQ(read.read(block, 2), 1000);
        EXPECT_EQ(read, results);
    }
    EXPECT_FALSE(same_object(first, "res", second, "res"));
    EXPECT_EQ(reply_of([&] {
                  return results.write2({first, shared}, sections, results.res.data());
              }),
              (Reply{0, ""}))
        << "links that are there already stay";
}

TEST(EntityResults, Shared_identifiers_of_one_frame_link_its_number)
{
    const KobFile file;
    auto results = EntityResults::sample();
    const auto block = file.new_group("block");
    const auto shared = file.new_group("shared");
    ASSERT_EQ(results.write2({block, shared}, 4 + 16, nullptr), 0);
    EXPECT_EQ(link_names(block), (std::vector<std::string>{"entid", "fidglob"}));
    EXPECT_TRUE(same_object(block, "fidglob", shared, "fidglob"));
    EXPECT_EQ(stored_ints(block, "fidglob"), Longs{55});
    auto bad = results;
    bad.fswitch = 5;
    const auto another = file.new_group("another");
    const auto another_shared = file.new_group("another_shared");
    EXPECT_EQ(reply_of([&] { return bad.write2({another, another_shared}, 4 + 16, nullptr); }).status, -123);
}

TEST(EntityResults, Bit_16_alone_or_a_second_handle_alone_share_nothing)
{
    const KobFile file;
    auto results = EntityResults::sample();
    const auto block = file.new_group("block");
    const auto shared = file.new_group("shared");
    EXPECT_EQ(results.write2({block, shared}, 16, nullptr), 0);
    EXPECT_TRUE(link_names(block).empty());
    EXPECT_EQ(results.write2({block, shared}, 4, nullptr), 0);
    EXPECT_TRUE(link_names(shared).empty());
    EXPECT_EQ(link_names(block), (std::vector<std::string>{"entid", "fidglob"}));
}

TEST(EntityResults, Each_section_is_written_alone)
{
    const KobFile file;
    auto results = EntityResults::sample();
    const auto block = file.new_group("block");
    EXPECT_EQ(results.write2({block}, attributes_section, nullptr), 0);
    EXPECT_EQ(attribute_names(block).size(), 13U);
    EXPECT_TRUE(link_names(block).empty());
    EXPECT_EQ(results.write2({block}, index_section, nullptr), 0);
    EXPECT_EQ(link_names(block), (std::vector<std::string>{"indexident", "indexval"}));
    EXPECT_EQ(results.write2({block}, values_section, results.res.data()), 0);
    EXPECT_EQ(link_names(block), (std::vector<std::string>{"indexident", "indexval", "res"}));
    EXPECT_EQ(results.write2({block}, identifiers_section, nullptr), 0);
    auto read = EntityResults::empty();
    EXPECT_EQ(read.read(block, 2), 1000);
    EXPECT_EQ(read, results);
}

TEST(EntityResults, A_block_of_the_table_is_written_and_read)
{
    const KobFile file;
    auto results = EntityResults::sample();
    const auto block = file.new_group("block");
    ASSERT_EQ(results.write2({block}, 7, nullptr), 0);
    const Reals64 piece{1, 2, 3, 4};
    EXPECT_EQ(results.write2({block}, values_section, piece.data(), {1, {2, 2}, {1, 1}}), 0);
    EXPECT_EQ(stored_extents(block, "res"), (std::vector<hsize_t>{4, 3})) << "the first piece creates the whole table";
    EXPECT_EQ(stored_reals(block, "res"), (Reals64{0, 0, 0, 0, 1, 2, 0, 3, 4, 0, 0, 0}));
    Reals64 column(4);
    EXPECT_EQ(results.read2(block, values_section, column.data(), {1, {4, 1}, {0, 2}}), 1000);
    EXPECT_EQ(column, (Reals64{0, 2, 4, 0}));
    for (const auto& outside : {Piece{1, {2, 1}, {3, 0}}, Piece{1, {1, 1}, {0, -1}}, Piece{1, {1, 4}, {0, 0}}}) {
        EXPECT_EQ(reply_of([&] { return results.write2({block}, values_section, piece.data(), outside); }).status,
                  -6031);
        EXPECT_EQ(reply_of([&] { return results.read2(block, values_section, column.data(), outside); }).status, -6031);
    }
    EXPECT_EQ(results.write2({block}, values_section, piece.data(), {1, {0, 3}, {0, 0}}), 0) << "nothing to write";
}

TEST(EntityResults, Single_values_are_written_and_read)
{
    const KobFile file;
    auto results = EntityResults::sample();
    const auto block = file.new_group("block");
    ASSERT_EQ(results.write2({block}, 7, nullptr), 0);
    const Reals64 values{7, 8, 9};
    EXPECT_EQ(results.write2({block}, values_section, values.data(), {2, {3}, {3, 2, 0, 0, 1, 1}}), 0);
    EXPECT_EQ(stored_reals(block, "res"), (Reals64{8, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 7}));
    Reals64 found(2);
    EXPECT_EQ(results.read2(block, values_section, found.data(), {2, {2}, {1, 1, 3, 2}}), 1000);
    EXPECT_EQ(found, (Reals64{9, 7}));
    const Piece outside{2, {1}, {4, 0}};
    EXPECT_EQ(reply_of([&] { return results.write2({block}, values_section, values.data(), outside); }).status, -6032);
    EXPECT_EQ(reply_of([&] { return results.read2(block, values_section, found.data(), outside); }).status, -6032);
}

TEST(EntityResults, Pieces_of_complex_values_have_three_dimensions)
{
    const KobFile file;
    auto results = EntityResults::sample();
    const auto block = file.new_group("block");
    ASSERT_EQ(results.write2({block}, 7, nullptr, {}, 32), 0);
    const Reals64 values{1, 2, 3, 4};
    EXPECT_EQ(results.write2({block}, values_section, values.data(), {1, {2, 1, 2}, {2, 0, 0}}, 32), 0);
    EXPECT_EQ(stored_extents(block, "res"), (std::vector<hsize_t>{4, 3, 2}));
    EXPECT_EQ(results.write2({block}, values_section, values.data(), {2, {1}, {0, 0, 1}}, 32), 0);
    Reals64 imaginary(4);
    EXPECT_EQ(results.read2(block, values_section, imaginary.data(), {1, {4, 1, 1}, {0, 0, 1}}), 1001);
    EXPECT_EQ(imaginary, (Reals64{1, 0, 2, 4}));
}

TEST(EntityResults, Under_scale_offset_what_was_never_written_holds_10000)
{
    const KobFile file;
    auto results = EntityResults::sample();
    const auto block = file.new_group("block");
    const double one = 1;
    ASSERT_EQ(results.write2({block}, values_section, &one, {2, {1}, {0, 0}}, 8, 8, {.filter_flags = 128}), 0);
    auto values = stored_reals(block, "res");
    EXPECT_NEAR(values[0], 1, 0.0005);
    for (std::size_t i = 1; i < 12; ++i) EXPECT_EQ(values[i], 10000) << i;
}

TEST(EntityResults, Values_of_4_bytes_in_memory_concern_the_table_alone)
{
    const KobFile file;
    auto results = EntityResults::combined();
    std::vector<float> singles;
    for (const auto value : results.res) singles.push_back(static_cast<float>(value));
    const auto block = file.new_group("block");
    ASSERT_EQ(results.write2({block}, all_sections, singles.data(), {}, 8, 4), 0);
    EXPECT_EQ(stored_reals(block, "indexval"), results.indexval);
    EXPECT_EQ(stored_reals(block, "weight"), results.weight);
    EXPECT_EQ(stored_reals(block, "res")[1], static_cast<double>(0.2F));
    auto read = EntityResults::empty_combined();
    std::vector<float> found(12);
    EXPECT_EQ(read.read2(block, all_sections, found.data(), {}, 4), 1000);
    EXPECT_EQ(found, singles);
    EXPECT_EQ(read.indexval, results.indexval);
    EXPECT_EQ(read.weight, results.weight);
    EXPECT_EQ(read.res, Reals64(12, untouched_real));
}

TEST(EntityResults, Another_access_mode_is_refused_when_the_values_are_due)
{
    const KobFile file;
    auto results = EntityResults::sample();
    const auto block = file.new_group("block");
    const Piece odd{3, {4, 3}, {0, 0}};
    EXPECT_EQ(results.write2({block}, 7, nullptr, odd), 0) << "no values, no mode";
    for (const auto& [size, key] : {std::pair{8, "1000"}, std::pair{16, "1001"}}) {
        const std::int32_t value_size = size; // clang lets no lambda take a binding
        EXPECT_EQ(
            reply_of([&] { return results.write2({block}, values_section, results.res.data(), odd, value_size); }),
            (Reply{-999, std::string{"KOB ERROR writing block key "} + key + " - invalid mode\n"}));
    }
    EXPECT_FALSE(has_link(block, "res"));
}

TEST(EntityResults, A_negative_block_handle_is_the_status)
{
    auto results = EntityResults::sample();
    EXPECT_EQ(reply_of([&] { return results.write2({-5}, all_sections, results.res.data()); }),
              (Reply{-5, "KOB ERROR writing block entityresults\n"}));
}

TEST(EntityResults, The_readers_check_handle_and_key)
{
    auto read = EntityResults::empty();
    expect_reader_checks_block([&](std::int64_t block) { return read.read(block, 2); }, "1000 or 1001");
    expect_reader_checks_block([&](std::int64_t block) { return read.read2(block, all_sections, read.res.data()); },
                               "1000 or 1001");
    EXPECT_EQ(read, EntityResults::empty());
}

TEST(EntityResults, Negative_counts_are_the_storage_layers_error_and_the_frame_stays)
{
    for (const std::int32_t count : {-1, -2}) {
        const KobFile file;
        auto written = EntityResults::sample();
        written.nent = count;
        const auto status = reply_of([&] { return written.write(file.handle(), 12); }).status;
        if (count == -1)
            EXPECT_EQ(status, -3000);
        else
            EXPECT_TRUE(status == -2040 || status == -2190) << status;
        const auto block = file.block(path);
        EXPECT_EQ(link_names(block), (std::vector<std::string>{"indexident", "indexval"}));
        EXPECT_EQ(stored_ints(block, "nent"), Longs{count});
    }
}

TEST(EntityResults, A_file_that_contradicts_itself_overruns_nothing)
{
    const KobFile file;
    auto written = EntityResults::sample();
    ASSERT_EQ(written.write(file.handle(), 12), 0);
    const auto block = file.block(path);
    const auto status_with = [&](const char* name, std::int32_t value) {
        const auto before = static_cast<std::int32_t>(stored_ints(block, name)[0]);
        set_int_attribute(block, name, value);
        auto read = EntityResults::empty_combined();
        const auto status = reply_of([&] { return read.read(block, 2); }).status;
        set_int_attribute(block, name, before);
        return status;
    };
    EXPECT_EQ(status_with("nent", 0x7fffffff), -6030);
    EXPECT_EQ(status_with("ncoo", 0x7fffffff), -6030);
    EXPECT_EQ(status_with("nindex", 1000), -6030);
    EXPECT_EQ(status_with("block", 1001), -6020) << "real values under the complex key";
    EXPECT_EQ(status_with("dmpswitch", 1), -6002) << "no operators stored";
    H5Ldelete(block, "fidglob", H5P_DEFAULT);
    put_dataset(block, "fidglob", H5T_STD_I32LE, {1000});
    auto read = EntityResults::empty();
    EXPECT_EQ(reply_of([&] { return read.read(block, 2); }).status, -6020) << "one number, not a thousand";
    H5Ldelete(block, "fidglob", H5P_DEFAULT);
    put_attribute(block, "fidglob", H5T_STD_I32LE, {1000});
    EXPECT_EQ(reply_of([&] { return read.read(block, 2); }).status, -4020);
}

TEST(EntityResults, The_writer_closes_its_block_also_when_it_fails)
{
    const KobFile file;
    auto results = EntityResults::sample();
    EXPECT_EQ(left_open_by([&] { ASSERT_EQ(results.write(file.handle(), 12), 0); }), "");
    auto bad = results;
    bad.fswitch = 9;
    bad.etypvar = "BAD";
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(bad.write(file.handle(), 12), -123); }), "");
    const auto block = file.block(path);
    auto read = EntityResults::empty();
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(read.read(block, 2), 1000); }), "");
    EXPECT_EQ(left_open_by([&] {
                  const Piece outside{1, {9, 9}, {0, 0}};
                  reply_of([&] { return results.read2(block, values_section, read.res.data(), outside); });
              }),
              "");
    EXPECT_EQ(left_open_by([&] { ASSERT_EQ(results.write2({block}, all_sections, results.res.data()), 0); }), "")
        << "the caller's group stays open, nothing else";
}
