// SPDX-License-Identifier: BSD-3-Clause
// Results and matrices of the older layout: sections, pieces, growing series, and the values of the current one.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/older_blocks.hpp"

using namespace kob_test;

namespace {

using Values = std::vector<std::int64_t>;

void expect_fine(const Outcome& outcome) { ASSERT_EQ(outcome, (Outcome{0, ""})); }

std::int64_t nstate_of(hid_t block) { return stored_ints(open_group(block, "header"), "nstate").at(0); }

} // namespace

// ---- entity results by sections

TEST(OlderEntityResults, Sections_go_to_their_places)
{
    const KobFile file;
    const auto group = file.new_group("block");
    older::EntityResults b;
    expect_fine(b.write2(group, section::attributes));
    EXPECT_EQ(link_names(open_group(group, "data")), std::vector<std::string>{});
    EXPECT_EQ(link_names(open_group(group, "index")), std::vector<std::string>{});
    expect_fine(b.write2(group, section::index));
    EXPECT_EQ(link_names(open_group(group, "index")), (std::vector<std::string>{"indexident", "indexval"}));
    expect_fine(b.write2(group, section::identifiers));
    EXPECT_EQ(link_names(open_group(group, "data")), (std::vector<std::string>{"entid", "fid", "operator", "weight"}));
    b.memory_size = 4;
    expect_fine(b.write2(group, section::values));
    b.memory_size = 8;
    b.res = as_floats(b.res);
    auto read = untouched(b);
    EXPECT_EQ(read.read(group, 2), (Outcome{1000, ""}));
    EXPECT_EQ(listing(read), listing(older::expected_of(b, older::everything)));
}

TEST(OlderEntityResults, Shared_identifiers_are_linked_into_data)
{
    const KobFile file;
    const auto shared = file.new_group("shared");
    older::EntityResults b;
    for (const char* name : {"first", "second"}) {
        const auto group = file.new_group(name);
        expect_fine(b.write2(group, section::all | 16, shared));
        for (const char* item : {"entid", "fid", "operator", "weight"}) {
            EXPECT_TRUE(same_object(open_group(group, "data"), item, shared, item)) << item;
        }
        auto read = untouched(b);
        EXPECT_EQ(read.read(group, 2), (Outcome{1000, ""}));
        EXPECT_EQ(listing(read), listing(older::expected_of(b, older::everything)));
    }
}

TEST(OlderEntityResults, Pieces_are_written_and_read)
{
    const KobFile file;
    const auto group = file.new_group("block");
    older::EntityResults b;
    expect_fine(b.write2(group, 7));
    auto piece = b;
    piece.piece = {1, {2, 3}, {2, 0}};
    piece.res = {1, 2, 3, 4, 5, 6};
    expect_fine(piece.write2(group, section::values));
    piece.piece = {2, {2}, {0, 0, 1, 2}};
    piece.res = {7, 8};
    expect_fine(piece.write2(group, section::values));
    auto read = untouched(b);
    EXPECT_EQ(read.read2(group, section::all), (Outcome{1000, ""}));
    EXPECT_EQ(read.res, (std::vector<double>{7, 0, 0, 0, 0, 8, 1, 2, 3, 4, 5, 6}));
    read.piece = {1, {1, 2}, {3, 1}};
    read.res = {-1, -1, -1};
    EXPECT_EQ(read.read2(group, section::values), (Outcome{1000, ""}));
    EXPECT_EQ(read.res, (std::vector<double>{5, 6, -1}));
    read.piece = {9, {}, {}};
    EXPECT_EQ(read.read2(group, section::values), (Outcome{-999, "KOB ERROR reading block key 1000 - invalid mode\n"}));
}

TEST(OlderEntityResults, A_group_that_is_none_is_told_with_the_key)
{
    older::EntityResults b;
    EXPECT_EQ(b.write2(-5, section::all), (Outcome{-5, "KOB ERROR writing block key 1000\n"}));
    b.value_size = 32;
    EXPECT_EQ(b.write2(-1, section::all), (Outcome{-1, "KOB ERROR writing block key 1001\n"}));
    std::int32_t states = 77;
    older::MultiEntityResults series{2};
    EXPECT_EQ(series.write2(-5, 8, states), (Outcome{-5, "KOB ERROR writing block key 1050\n"}));
    EXPECT_EQ(states, 0);
    series.value_size = 16;
    EXPECT_EQ(series.write2(-5, 8, states), (Outcome{-5, "KOB ERROR writing block key 1051\n"}));
}

TEST(OlderEntityResults, Each_generation_refuses_the_others_blocks_in_every_reader)
{
    const KobFile file;
    older::EntityResults b;
    older::MultiEntityResults series{2};
    expect_fine(b.write(file.handle()));
    expect_fine(series.write(file.handle()));
    const auto table = file.block(b.path());
    const auto states = file.block(series.path());
    const std::string no_key = missing_attribute("block", 2, 4);
    const auto current = [&](auto&& call) { return outcome_of([&](std::int32_t* status) { call(status); }); };
    const std::int32_t all = section::all, memory_size = 8, mode = 0, pass = 2;
    EXPECT_EQ(current([&](std::int32_t* status) {
                  KOB_READ_ENTITYRESULTS2(&table, &all, nullptr, b.etyp.data(), &b.nent, b.etypvar.data(), &b.ncoo,
                                          b.etypzone.data(), &b.zoneid, b.etypframe.data(), &b.fswitch, &b.dmpswitch,
                                          &b.nindex, &b.indexic, b.indexident.data(), b.indexval.data(), b.entid.data(),
                                          &b.fidglob, b.fid.data(), b.operators.data(), b.weight.data(), b.res.data(),
                                          &memory_size, &b.filter_flags, b.filter_params.data(), &mode, nullptr,
                                          nullptr, status);
              }),
              (Outcome{-4002, no_key}));
    EXPECT_EQ(current([&](std::int32_t* status) {
                  KOB_READ_MULTIENTITYRESULTC(
                      &states, &pass, series.series.data(), series.etyp.data(), &series.nent, series.etypvar.data(),
                      &series.ncoo, series.etypzone.data(), &series.zoneid, series.etypframe.data(), &series.fswitch,
                      &series.dmpswitch, &series.nindex, &series.nstate, series.indexident.data(),
                      series.indexval.data(), series.entid.data(), &series.fidglob, series.fid.data(),
                      series.operators.data(), series.weight.data(), series.res.data(), &series.filter_flags,
                      series.filter_params.data(), &mode, nullptr, nullptr, status);
              }),
              (Outcome{-4002, no_key}));

    const Outcome no_header{-1, "KOB ERROR - header not found\n"};
    const auto empty = file.new_group("empty");
    EXPECT_EQ(b.read2(empty, section::all), no_header);
    EXPECT_EQ(series.read2(empty, section::all), no_header);
    for (const std::int32_t piece : {3, 4, 5}) EXPECT_EQ(series.read_c(empty, piece), no_header) << piece;
}

TEST(OlderEntityResults, A_constant_block_needs_no_index)
{
    const KobFile file;
    older::EntityResults b;
    b.nindex = 0;
    expect_fine(b.write(file.handle()));
    const auto group = file.block("constant/entityresults/NODE/DISPLACEMENT/ZONE7/kobblock");
    H5Ldelete(group, "index", H5P_DEFAULT);
    auto read = untouched(b);
    EXPECT_EQ(read.read(group, 2), (Outcome{1000, ""}));
    EXPECT_EQ(read.res, b.res);
}

TEST(OlderEntityResults, Filters_of_the_values_are_reported)
{
    const KobFile file;
    older::EntityResults b;
    b.nent = 9;
    b.entid = b.fid = older::Ints(9, 3);
    b.weight = older::Numbers(9, 0.5);
    b.res = older::Numbers(27, 1.5);
    b.filter_flags = 255;
    b.filter_params = {3, 6};
    expect_fine(b.write(file.handle()));
    auto read = untouched(b);
    EXPECT_EQ(read.read(file.block(b.path()), 2), (Outcome{1000, ""}));
    // Decimal scale-offset, shuffle, deflate: not the scale-offset of integers.
    EXPECT_EQ(read.filter_flags & 128, 128);
    EXPECT_EQ(read.filter_params, (older::Params{3, 6}));
    auto pass_1 = untouched(b);
    EXPECT_EQ(pass_1.read(file.block(b.path()), 1), (Outcome{1000, ""}));
    EXPECT_EQ(pass_1.filter_flags, untouched(b).filter_flags);
}

// ---- series

TEST(OlderSeries, Grows_and_keeps_the_number_of_states)
{
    KobFile file;
    older::MultiEntityResults b{1};
    expect_fine(b.write(file.handle()));
    const auto group = file.block(b.path());
    EXPECT_EQ(nstate_of(group), 1);
    b.one_at(3);
    expect_fine(b.write(file.handle()));
    EXPECT_EQ(nstate_of(group), 4);
    EXPECT_EQ(stored_extents(open_group(group, "data"), "res"), (std::vector<hsize_t>{4, 3, 2}));
    EXPECT_EQ(stored_ints(open_group(group, "index"), "indexident"), (Values{10, 0, 0, 40}));
    older::MultiEntityResults two{2};
    expect_fine(two.write(file.handle()));
    EXPECT_EQ(nstate_of(group), 4);
}

TEST(OlderSeries, The_values_say_how_many_states_there_are)
{
    const KobFile file;
    const older::MultiEntityResults written{3};
    older::MultiElementResults elements{3};
    older::MultiActivFlags flags{3};
    auto b = written;
    expect_fine(b.write(file.handle()));
    expect_fine(elements.write(file.handle()));
    expect_fine(flags.write(file.handle()));
    const auto check = [&](auto sample, int key, const char* lie) {
        SCOPED_TRACE(std::string{lie} + " " + sample.path());
        const auto group = file.block(sample.path());
        for (const std::int32_t pass : {1, 2}) {
            auto read = untouched(sample);
            EXPECT_EQ(read.read(group, pass), (Outcome{key, ""}));
            EXPECT_EQ(read.nstate, 3);
        }
    };
    const auto check_all = [&](const char* lie) {
        check(written, 1050, lie);
        check(elements, 1150, lie);
        check(flags, 0, lie);
    };
    for (const std::int32_t lie : {0, 1, 99, -1}) {
        for (const char* path : {written.path(), elements.path(), flags.path()}) {
            set_int_attribute(open_group(file.block(path), "header"), "nstate", lie);
        }
        check_all(std::to_string(lie).c_str());
    }
    for (const char* path : {written.path(), elements.path(), flags.path()}) {
        H5Adelete_by_name(file.block(path), "header", "nstate", H5P_DEFAULT);
    }
    check_all("none");
}

TEST(OlderSeries, Grow_where_nothing_tells_the_number_of_states)
{
    const KobFile file;
    older::MultiEntityResults b{1};
    older::MultiElementResults elements{1};
    older::MultiActivFlags flags{1};
    const auto forget = [&](const char* path) {
        EXPECT_GE(H5Adelete_by_name(file.block(path), "header", "nstate", H5P_DEFAULT), 0);
    };
    expect_fine(b.write(file.handle()));
    expect_fine(elements.write(file.handle()));
    expect_fine(flags.write(file.handle()));
    for (const char* path : {b.path(), elements.path(), flags.path()}) forget(path);
    b.one_at(1);
    expect_fine(b.write(file.handle()));
    expect_fine(older::MultiElementResults{2}.write(file.handle()));
    expect_fine(older::MultiActivFlags{2}.write(file.handle()));
    for (const char* path : {b.path(), elements.path(), flags.path()}) EXPECT_EQ(nstate_of(file.block(path)), 2);
    older::MultiEntityResults two{2};
    auto read = untouched(two);
    EXPECT_EQ(read.read(file.block(b.path()), 2), (Outcome{1050, ""}));
    EXPECT_EQ(listing(read), listing(older::expected_of(two, older::everything)));
}

TEST(OlderSeries, An_index_shorter_than_the_values_is_an_error)
{
    const KobFile file;
    older::MultiEntityResults b{3};
    expect_fine(b.write(file.handle()));
    const auto group = file.block(b.path());
    {
        const auto index = open_group(group, "index");
        const Hid rows{H5Dopen2(index, "indexident", H5P_DEFAULT)};
        const std::vector<hsize_t> two{2, 1};
        H5Dset_extent(rows, two.data());
    }
    auto read = untouched(b);
    EXPECT_EQ(read.read(group, 1), (Outcome{1050, ""}));
    EXPECT_EQ(read.read(group, 2).status, -6030);
}

TEST(OlderSeries, An_empty_series_has_no_states)
{
    const KobFile file;
    older::MultiEntityResults b{0};
    b.s = 0;
    expect_fine(b.write(file.handle()));
    const auto group = file.block(b.path());
    EXPECT_EQ(nstate_of(group), 0);
    auto read = untouched(b);
    EXPECT_EQ(read.read(group, 2), (Outcome{1050, ""}));
    EXPECT_EQ(read.nstate, 0);
    EXPECT_EQ(read.entid, b.entid);
    older::MultiEntityResults more{2};
    expect_fine(more.write(file.handle()));
    EXPECT_EQ(nstate_of(group), 2);
}

TEST(OlderSeries, A_negative_number_of_states_is_refused_before_anything_is_created)
{
    const KobFile file;
    older::MultiElementResults elements{1};
    elements.n = -1;
    EXPECT_EQ(elements.write(file.handle()), (Outcome{-999, "KOB ERROR writing block multielementresults\n"}));
    older::MultiActivFlags flags{1};
    flags.n = -1;
    EXPECT_EQ(flags.write(file.handle()), (Outcome{-999, "KOB ERROR writing block multiactivflags\n"}));
    EXPECT_EQ(link_names(file.handle()), std::vector<std::string>{});
}

TEST(OlderSeries, The_C_reader_reads_one_state_or_a_selection)
{
    const KobFile file;
    const older::MultiEntityResults written{3};
    auto b = written;
    expect_fine(b.write(file.handle()));
    const auto group = file.block(b.path());
    for (const bool small : {false, true}) {
        SCOPED_TRACE(small);
        const std::int32_t bit = small ? four_byte_memory : 0;
        auto read = written;
        read.nstate = 1;
        read.res.assign(6, -1);
        read.indexident = {-1};
        read.indexval = {-1};
        EXPECT_EQ(read.read_c(group, 3 + bit), (Outcome{1050, ""}));
        EXPECT_EQ(read.res, (std::vector<double>{written.res.begin() + 6, written.res.begin() + 12}));
        EXPECT_EQ(read.indexident, (older::Ints{-1}));
        read.nstate = 2;
        EXPECT_EQ(read.read_c(group, 4 + bit), (Outcome{1050, ""}));
        EXPECT_EQ(read.res, (std::vector<double>{written.res.begin() + 12, written.res.end()}));
        EXPECT_EQ(read.indexident, (older::Ints{30}));
        EXPECT_EQ(read.indexval, (older::Numbers{0.5}));
        read.entid.assign(3, -1);
        read.fidglob = -1;
        EXPECT_EQ(read.read_c(group, 5 + bit), (Outcome{1050, ""}));
        EXPECT_EQ(read.entid, written.entid);
        EXPECT_EQ(read.fidglob, written.fidglob);
        read.select(1, {2, 1, 2}, {1, 2, 0});
        read.res.assign(4, -1);
        EXPECT_EQ(read.read_c(group, 3 + bit), (Outcome{1050, ""}));
        EXPECT_EQ(read.res, (std::vector<double>{written.res[10], written.res[11], written.res[16], written.res[17]}));
        read.select(2, {2}, {2, 2, 1, 0, 0, 0});
        read.res.assign(2, -1);
        read.indexident.assign(2, -1);
        read.indexval.assign(2, -1);
        EXPECT_EQ(read.read_c(group, 4 + bit), (Outcome{1050, ""}));
        EXPECT_EQ(read.res, (std::vector<double>{written.res[17], written.res[0]}));
        EXPECT_EQ(read.indexident, (older::Ints{30, 10}));
        auto all = untouched(written);
        EXPECT_EQ(all.read_c(group, 2 + bit), (Outcome{1050, ""}));
        EXPECT_EQ(listing(all), listing(older::expected_of(written, older::everything)));
    }
    for (const std::int32_t pass : {0, 6, -1, four_byte_memory}) {
        auto read = untouched(written);
        EXPECT_EQ(read.read_c(group, pass), (Outcome{-3, older::MultiEntityResults::pass_error(pass)})) << pass;
    }
}

TEST(OlderSeries, The_C_writer_writes_selections)
{
    const KobFile file;
    older::MultiEntityResults b{1};
    b.hold(4, 2).select(1, {4, 3, 2}, {2, 0, 0});
    expect_fine(b.write_c(file.handle()));
    b.hold(2, 0).select(1, {2, 3, 2}, {0, 0, 0});
    expect_fine(b.write_c(file.handle()));
    const older::MultiEntityResults six{6};
    auto read = untouched(six);
    EXPECT_EQ(read.read(file.block(b.path()), 2), (Outcome{1050, ""}));
    EXPECT_EQ(listing(read), listing(older::expected_of(six, older::everything)));
}

TEST(OlderSeries, Workers_write_into_a_group_and_read_sections)
{
    const KobFile file;
    const auto group = file.new_group("block");
    const older::MultiEntityResults written{2};
    auto b = written;
    std::int32_t states = -77;
    expect_fine(b.write2(group, 4, states));
    EXPECT_EQ(states, 2);
    b.hold(1, 4).select(1, {1, 3, 2}, {4, 0, 0});
    expect_fine(b.write2(group, 8, states));
    EXPECT_EQ(states, 5);
    EXPECT_EQ(nstate_of(group), 5);
    auto read = untouched(written);
    EXPECT_EQ(read.read2(group, section::attributes | section::identifiers), (Outcome{1050, ""}));
    EXPECT_EQ(read.nstate, 5);
    EXPECT_EQ(read.entid, written.entid);
    EXPECT_EQ(read.res, untouched(written).res);
    read.select(1, {2, 3, 2}, {0, 0, 0});
    EXPECT_EQ(read.read2(group, section::index | section::values, 4), (Outcome{1050, ""}));
    EXPECT_EQ(read.res, written.res);
    EXPECT_EQ(read.indexident, written.indexident);
    states = -77;
    b.s = -3;
    b.mode = 0;
    EXPECT_EQ(b.write2(group, 8, states), (Outcome{-999, "KOB ERROR writing block multientityresults\n"}));
}

TEST(OlderSeries, Complex_values_have_their_key)
{
    const KobFile file;
    older::MultiEntityResults b{2, 16};
    expect_fine(b.write(file.handle()));
    const auto group = file.block(b.path());
    EXPECT_EQ(stored_ints(open_group(group, "header"), "block"), (Values{1051}));
    auto read = untouched(b);
    EXPECT_EQ(read.read(group, 2), (Outcome{1051, ""}));
    EXPECT_EQ(read.res, b.res);
}

// ---- matrices

TEST(OlderMatrices, Values_come_and_go_in_pieces)
{
    const KobFile file;
    older::DenseMatrix b;
    b.select(1, {1, 2}, {2, 0});
    b.val = {5, 6};
    expect_fine(b.write(file.handle()));
    b.select(2, {1}, {0, 1});
    b.val = {2};
    expect_fine(b.write(file.handle()));
    const auto group = file.block(b.path());
    older::DenseMatrix read;
    read.val.assign(6, -1);
    EXPECT_EQ(read.read(group, 2), (Outcome{10000, ""}));
    EXPECT_EQ(read.val, (std::vector<double>{0, 2, 0, 0, 5, 6}));
    read.select(1, {3, 1}, {0, 1});
    read.val.assign(3, -1);
    EXPECT_EQ(read.read(group, 3), (Outcome{10000, ""}));
    EXPECT_EQ(read.val, (std::vector<double>{2, 0, 6}));
    read.select(2, {2}, {2, 1, 0, 1});
    read.val.assign(2, -1);
    EXPECT_EQ(read.read(group, 4), (Outcome{10000, ""}));
    EXPECT_EQ(read.val, (std::vector<double>{6, 2}));
}

TEST(OlderMatrices, Packed_and_sparse_values_are_read_in_pieces)
{
    const KobFile file;
    older::TriangularMatrix packed;
    older::SparseMatrix sparse;
    expect_fine(packed.write(file.handle()));
    expect_fine(sparse.write(file.handle()));
    const auto check = [&](auto block, int key) {
        const auto group = file.block(block.path());
        const auto all = block.val;
        block.select(1, {2}, {3});
        block.val = {-1, -1, -1};
        EXPECT_EQ(block.read(group, 3), (Outcome{key, ""}));
        EXPECT_EQ(block.val, (std::vector<double>{all[3], all[4], -1}));
        block.select(2, {2}, {4, 0});
        EXPECT_EQ(block.read(group, 4), (Outcome{key, ""}));
        EXPECT_EQ(block.val, (std::vector<double>{all[4], all[0], -1}));
        H5Ldelete(group, "data", H5P_DEFAULT);
        for (const std::int32_t pass : {3, 4})
            EXPECT_EQ(block.read(group, pass), (Outcome{-1, "KOB ERROR - data not found\n"})) << pass;
    };
    check(packed, 10100);
    check(sparse, 10200);
}

TEST(OlderMatrices, An_unknown_mode_leaves_frame_and_index)
{
    const KobFile file;
    older::SparseMatrix b;
    b.mode = 3;
    EXPECT_EQ(b.write(file.handle()), (Outcome{-999, "KOB ERROR writing block key 10200 - invalid mode\n"}));
    auto read = untouched(b);
    EXPECT_EQ(read.read(file.block(b.path()), 1), (Outcome{10200, ""}));
    EXPECT_EQ(link_names(open_group(file.block(b.path()), "index")),
              (std::vector<std::string>{"indexident", "indexval"}));
}

// ---- the two generations

namespace {

template <class Pair> class BothGenerations : public testing::Test {
};
template <class OlderKind, class CurrentKind> struct Twins {
    using Older = OlderKind;
    using Current = CurrentKind;
};
using Pairs =
    testing::Types<Twins<older::ElementResults, ElementResults>, Twins<older::MultiEntityResults, MultiEntityResults>,
                   Twins<older::MultiElementResults, MultiElementResults>,
                   Twins<older::MultiActivFlags, MultiActivFlags>, Twins<older::DenseMatrix, DenseMatrix>,
                   Twins<older::TriangularMatrix, TriangularMatrix>, Twins<older::SparseMatrix, SparseMatrix>>;
struct PairNames {
    template <class Pair> static std::string GetName(int /*index*/) { return Pair::Older::name; }
};
TYPED_TEST_SUITE(BothGenerations, Pairs, PairNames);

/// Both families write the same sample into one file and read their own blocks: the values are the same.
TYPED_TEST(BothGenerations, Hand_back_the_same_values)
{
    const KobFile file;
    typename TypeParam::Older block;
    ASSERT_EQ(block.write(file.new_group("older")), (Outcome{0, ""}));
    ASSERT_EQ(block.write_current(file.new_group("current")), (Outcome{0, ""}));
    auto older_read = untouched(block);
    typename TypeParam::Current current_read = untouched(block);
    const auto from_older = older_read.read(file.block("older/" + std::string{block.path()}), 2);
    const auto from_current = current_read.read(file.block("current/" + std::string{block.path()}), 2);
    EXPECT_EQ(from_older, from_current);
    if constexpr (requires { current_read.indexic; }) current_read.indexic = older_read.indexic;
    const typename TypeParam::Current& as_current = older_read;
    EXPECT_EQ(listing(as_current), listing(current_read));
}

TEST(BothGenerationsModel, Hand_back_the_same_system)
{
    const KobFile file;
    older::System b;
    expect_fine(b.write(file.new_group("older")));
    expect_fine(b.write_current(file.new_group("current")));
    older::System older_read;
    older_read = untouched(b);
    auto current_read = SystemBlock::empty(3, 2, 5);
    EXPECT_EQ(older_read.read(file.block("older/constant/system/kobblock"), 2), (Outcome{0, ""}));
    EXPECT_EQ(current_read.read(file.block("current/constant/system/kobblock"), 2), 0);
    EXPECT_EQ(static_cast<SystemBlock&>(older_read), current_read);
}

TEST(BothGenerationsModel, Hand_back_the_same_entity_results)
{
    const KobFile file;
    older::EntityResults b;
    expect_fine(b.write(file.new_group("older")));
    expect_fine(b.write_current(file.new_group("current")));
    auto older_read = untouched(b);
    auto current_read = EntityResults::empty_combined();
    EXPECT_EQ(older_read.read(file.block("older/" + std::string{b.path()}), 2), (Outcome{1000, ""}));
    EXPECT_EQ(current_read.read(file.block("current/" + std::string{b.path()}), 2), 1000);
    current_read.indexic = older_read.indexic;
    current_read.fidglob = older_read.fidglob;
    EXPECT_EQ(static_cast<EntityResults&>(older_read), current_read);
}

// ---- files that nobody wrote with this library

TEST(OlderHostile, Counts_that_do_not_fit_the_data_are_errors)
{
    const KobFile file;
    older::EntityResults results;
    older::SparseMatrix matrix;
    older::Variables variables;
    older::Text text;
    older::Connectivities elements;
    expect_fine(results.write(file.handle()));
    expect_fine(matrix.write(file.handle()));
    expect_fine(variables.write(file.handle()));
    expect_fine(text.write(file.handle()));
    expect_fine(elements.write(file.handle()));
    const auto spoil = [&](auto& block, const char* attribute, std::int32_t value) {
        const auto group = file.block(block.path());
        const auto place = open_group(group, "header");
        const auto good = static_cast<std::int32_t>(stored_ints(place, attribute).at(0));
        set_int_attribute(place, attribute, value);
        auto read = untouched(block);
        const auto outcome = read.read(group, 2);
        set_int_attribute(place, attribute, good);
        return outcome.status;
    };
    EXPECT_EQ(spoil(results, "nent", 5), -6030);
    EXPECT_EQ(spoil(results, "nent", INT32_MAX), -6030);
    EXPECT_EQ(spoil(results, "nindex", 2), -6030);
    EXPECT_EQ(spoil(results, "fswitch", 7), -123);
    EXPECT_EQ(spoil(matrix, "nrow", 1000), -6030);
    EXPECT_EQ(spoil(variables, "rank", 1), -6020);
    EXPECT_LT(spoil(variables, "rank", INT32_MAX), 0);
    EXPECT_EQ(spoil(variables, "ncoo", 2), -6030);
    EXPECT_EQ(spoil(text, "nlines", 3), -6030);
    EXPECT_EQ(spoil(text, "length", 4), -6010);
    EXPECT_EQ(spoil(elements, "nbfloat", 3), -6030);
    EXPECT_EQ(spoil(elements, "nele", -1), -6030);
}

TEST(OlderHostile, Places_may_be_reached_through_soft_links)
{
    const KobFile file;
    older::ActivFlags b;
    expect_fine(b.write(file.handle()));
    const auto group = file.block(b.path());
    H5Lmove(group, "data", group, "elsewhere", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_soft("elsewhere", group, "data", H5P_DEFAULT, H5P_DEFAULT);
    auto read = untouched(b);
    EXPECT_EQ(read.read(group, 2), (Outcome{0, ""}));
    EXPECT_EQ(read.flags, b.flags);
}

TEST(OlderHostile, Items_in_the_wrong_place_are_missing)
{
    const KobFile file;
    older::ActivFlags b;
    expect_fine(b.write(file.handle()));
    const auto group = file.block(b.path());
    H5Lmove(open_group(group, "index"), "indexident", open_group(group, "data"), "indexident", H5P_DEFAULT,
            H5P_DEFAULT);
    auto read = untouched(b);
    EXPECT_EQ(read.read(group, 2).status, -6002);
}

} // namespace
