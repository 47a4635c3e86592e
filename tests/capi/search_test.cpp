// SPDX-License-Identifier: BSD-3-Clause
// The search for blocks by their characteristics.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>
#include <kob_dp.h>

#include "plain_block.hpp"
#include "support/captured_stream.hpp"
#include "support/hdf5_file.hpp"
#include "support/identifiers.hpp"
#include "support/temp_file.hpp"
#include "support/text256.hpp"

using namespace kob_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Keys = std::vector<std::int32_t>;
using Paths = std::vector<std::string>;

const Keys matrices{10000, 10001, 10100, 10101, 10200, 10201};
const Keys single_results{1000, 1001, 1100, 1101};
const Keys series_results{1050, 1051, 1150, 1151};
/// One key of every kind, both where there are two.
const Keys all_kinds{10,   20,   30,   32,   40,   100,  200,  250,   300,   400,   500,   1000,  1001, 1050,
                     1051, 1100, 1101, 1150, 1151, 2100, 2150, 10000, 10001, 10100, 10101, 10200, 10201};

Keys joined(std::initializer_list<Keys> lists)
{
    Keys all;
    for (const auto& list : lists) all.insert(all.end(), list.begin(), list.end());
    return all;
}

bool holds(const Keys& keys, std::int32_t key) { return std::find(keys.begin(), keys.end(), key) != keys.end(); }

/// One call of KOB_SEARCHBLOCKS; every criterion is unset at first.
struct Search {
    std::int32_t key = 0;
    Text256 etyp = "undefined";
    Text256 etypvar = "undefined";
    Text256 etypzone = "undefined";
    std::int32_t zoneid = -1;
    Text256 etypframe = "undefined";
    Text256 series = "undefined";
    std::int32_t matrixtype = -1;
    std::int32_t entid = -1;
    Text256 name2 = "undefined";
    std::int32_t nindex = -1;
    std::vector<std::int32_t> indexident_low = {};
    std::vector<double> indexval_low = {};
    std::vector<std::int32_t> indexident_high = {};
    std::vector<double> indexval_high = {};
};

struct Found {
    std::int32_t count = -77;
    std::int64_t path_length = -77;
    Keys keys;
    std::vector<std::int64_t> offsets;
    std::string paths;
    std::string typenames;
    std::int32_t status = 77;

    Found(std::int32_t capacity, std::int64_t path_size)
        : keys(static_cast<std::size_t>(capacity) + 1, -77), offsets(static_cast<std::size_t>(capacity) + 2, -77),
          paths(static_cast<std::size_t>(path_size) + 1, '#'),
          typenames((static_cast<std::size_t>(capacity) + 1) * 256, '#')
    {
    }

    Paths all_paths() const
    {
        Paths all;
        for (std::int32_t i = 0; i < count; ++i) all.emplace_back(paths.c_str() + offsets[static_cast<std::size_t>(i)]);
        return all;
    }
    Keys all_keys() const { return {keys.begin(), keys.begin() + count}; }
    std::string typename_of(std::size_t i) const { return typenames.substr(256 * i, 256); }
};

/// Searches with these options and room; checks that nothing behind the room was written.
Found search(std::int64_t group, const Search& s, std::int32_t option, std::int32_t capacity, std::int64_t path_size,
             std::int32_t verbose = 0)
{
    Found found{capacity, path_size};
    KOB_SEARCHBLOCKS(&group, &option, &verbose, &s.key, s.etyp.data(), s.etypvar.data(), s.etypzone.data(), &s.zoneid,
                     s.etypframe.data(), s.series.data(), &s.matrixtype, &s.entid, s.name2.data(), nullptr, &s.nindex,
                     s.indexident_low.data(), s.indexval_low.data(), s.indexident_high.data(), s.indexval_high.data(),
                     &capacity, &path_size, &found.count, &found.path_length, found.keys.data(), found.offsets.data(),
                     found.paths.data(), found.typenames.data(), &found.status);
    EXPECT_EQ(found.keys.back(), -77);
    EXPECT_EQ(found.offsets.back(), -77);
    EXPECT_EQ(found.paths.back(), '#');
    EXPECT_EQ(found.typenames.substr(static_cast<std::size_t>(capacity) * 256), std::string(256, '#'));
    return found;
}

/// Counts, then fills arrays of just that size; checks that both agree and that nothing is printed or left open.
Found search(std::int64_t group, const Search& criteria)
{
    Found found{0, 0};
    EXPECT_EQ(left_open_by([&] {
                  EXPECT_EQ(errors_of([&] {
                                const auto counted = search(group, criteria, 0, 0, 0);
                                EXPECT_EQ(counted.status, 0);
                                found = search(group, criteria, 1, counted.count, counted.path_length);
                                EXPECT_EQ(found.count, counted.count);
                                EXPECT_EQ(found.path_length, counted.path_length);
                            }),
                            "");
              }),
              "");
    EXPECT_EQ(found.status, 0);
    EXPECT_EQ(found.offsets[0], 0);
    EXPECT_EQ(found.offsets[static_cast<std::size_t>(found.count)], found.path_length);
    return found;
}

Paths paths_of(std::int64_t group, const Search& criteria) { return search(group, criteria).all_paths(); }

class SearchTest : public testing::Test {
protected:
    const TempDir dir_;
    const Hid file_ = create_file(dir_ / "run.kob");

    PlainBlock block(const std::string& name, std::int32_t key) const { return {file_, name + "/kobblock", key}; }

    /// A block of every kind, named by its key, filled by `fill(block, key)`; the keys that the search finds.
    template <class Fill> Keys matches_among_all(const Search& criteria, Fill fill) const
    {
        for (const auto key : all_kinds) {
            auto made = block("k" + std::to_string(100000 + key), key);
            fill(made, key);
        }
        return search(file_, criteria).all_keys();
    }
};

// ---- output

TEST_F(SearchTest, Without_criteria_every_block_and_the_header_is_found)
{
    block("constant/NODE", 200);
    block("singlestate/state000000000001/NODE", 1000);
    block("multistate/NODE", 1050);
    create_group(file_, "kobheader");
    const auto found = search(file_, {});
    EXPECT_THAT(found.all_paths(), ElementsAre("constant/NODE/kobblock", "kobheader", "multistate/NODE/kobblock",
                                               "singlestate/state000000000001/NODE/kobblock"));
    EXPECT_THAT(found.all_keys(), ElementsAre(200, 1, 1050, 1000));
    EXPECT_EQ(found.path_length, 23 + 10 + 25 + 44);
    EXPECT_THAT(found.offsets, ElementsAre(0, 23, 33, 58, 102, -77));
}

TEST_F(SearchTest, Nothing_is_found_in_an_empty_group)
{
    const auto found = search(file_, {}, 1, 2, 10);
    EXPECT_EQ(found.status, 0);
    EXPECT_EQ(found.count, 0);
    EXPECT_EQ(found.path_length, 0);
    EXPECT_EQ(found.offsets[0], 0);
    EXPECT_EQ(found.paths[0], '\0');
}

TEST_F(SearchTest, Counting_writes_no_array_and_needs_none)
{
    block("a", 100);
    for (const std::int32_t option : {0, -1}) {
        const auto found = search(file_, {}, option, 5, 100);
        EXPECT_EQ(found.status, 0);
        EXPECT_EQ(found.count, 1);
        EXPECT_EQ(found.path_length, 11);
        EXPECT_EQ(found.keys, Keys(6, -77));
        EXPECT_EQ(found.offsets, std::vector<std::int64_t>(7, -77));
        EXPECT_EQ(found.paths, std::string(101, '#'));
        EXPECT_EQ(found.typenames, std::string(std::size_t{6} * 256, '#'));
    }
    const std::int64_t group = file_;
    const std::int32_t zero = 0;
    const std::int32_t unset = -1;
    const std::int64_t no_bytes = 0;
    const Text256 any{"undefined"};
    std::int32_t count = -77;
    std::int64_t path_length = -77;
    std::int32_t status = 77;
    KOB_SEARCHBLOCKS(&group, &zero, &zero, &zero, any.data(), any.data(), any.data(), &unset, any.data(), any.data(),
                     &unset, &unset, any.data(), nullptr, &unset, nullptr, nullptr, nullptr, nullptr, &zero, &no_bytes,
                     &count, &path_length, nullptr, nullptr, nullptr, nullptr, &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(count, 1);
}

TEST_F(SearchTest, Type_names_are_returned_with_bit_2)
{
    block("a", 100).text("blocktype", "parts");
    block("b", 200);
    create_group(file_, "kobheader");
    for (const std::int32_t option : {2, 3, 6}) {
        const auto found = search(file_, {}, option, 3, 100);
        ASSERT_EQ(found.count, 3);
        EXPECT_EQ(KOB_strncmp(found.typename_of(0).data(), Text256{"parts"}.data(), 256), 0);
        EXPECT_EQ(KOB_strncmp(found.typename_of(1).data(), Text256{"n/a"}.data(), 256), 0) << "no \"blocktype\"";
        EXPECT_EQ(KOB_strncmp(found.typename_of(2).data(), Text256{"n/a"}.data(), 256), 0) << "the header";
    }
    for (const std::int32_t option : {1, 4, 5})
        EXPECT_EQ(search(file_, {}, option, 3, 100).typenames, std::string(std::size_t{4} * 256, '#')) << option;
}

TEST_F(SearchTest, Full_arrays_end_the_search_with_status_1)
{
    for (const auto* name : {"a", "b", "c", "d", "e"}) block(name, 100);
    const auto found = search(file_, {}, 1, 3, 1000);
    EXPECT_EQ(found.status, 1);
    EXPECT_EQ(found.count, 3);
    EXPECT_EQ(found.path_length, 33);
    EXPECT_THAT(found.all_paths(), ElementsAre("a/kobblock", "b/kobblock", "c/kobblock"));
    const auto none = search(file_, {}, 1, 0, 1000);
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.count, 0);
    EXPECT_EQ(search(file_, {}, 1, 5, 1000).status, 0);
}

TEST_F(SearchTest, A_full_path_buffer_ends_the_search_with_status_1)
{
    for (const auto* name : {"a", "b", "c"}) block(name, 100);
    const auto exact = search(file_, {}, 1, 5, 33);
    EXPECT_EQ(exact.status, 0);
    EXPECT_EQ(exact.count, 3);
    for (const std::int64_t bytes : {32, 23}) {
        const auto found = search(file_, {}, 1, 5, bytes);
        EXPECT_EQ(found.status, 1) << bytes;
        EXPECT_EQ(found.count, 2);
        EXPECT_EQ(found.path_length, 22);
        EXPECT_THAT(found.all_paths(), ElementsAre("a/kobblock", "b/kobblock"));
    }
    EXPECT_EQ(search(file_, {}, 1, 5, 0).count, 0);
}

TEST_F(SearchTest, Full_arrays_below_deep_groups_end_the_whole_walk)
{
    block("a/b/c", 100);
    block("a/b/d", 100);
    block("z", 100);
    const auto found = search(file_, {}, 1, 1, 1000);
    EXPECT_EQ(found.status, 1);
    EXPECT_THAT(found.all_paths(), ElementsAre("a/b/c/kobblock"));
}

TEST_F(SearchTest, The_listing_is_printed_when_verbose_and_filled)
{
    block("constant/NODE", 200);
    create_group(file_, "kobheader");
    EXPECT_EQ(output_of([&] { search(file_, {}, 1, 5, 100, 1); }),
              "\n KOB INFO KOB_SEARCHBLOCKS: 2 blocks found - total path len: 33\n\n"
              "      block:   blockkey path\n"
              "          0:        200 \"constant/NODE/kobblock\"\n"
              "          1:          1 \"kobheader\"\n\n");
    EXPECT_EQ(output_of([&] { search(file_, {}, 0, 5, 100, 1); }), "");
    EXPECT_EQ(output_of([&] { search(file_, {}, 1, 5, 100, 0); }), "");
}

TEST_F(SearchTest, A_handle_that_is_no_group_gives_a_negative_status)
{
    for (const std::int64_t group : {std::int64_t{-1}, std::int64_t{0}, std::int64_t{12345}}) {
        errors_of([&] {
            const auto found = search(group, {}, 1, 5, 100);
            EXPECT_LT(found.status, 0);
            EXPECT_EQ(found.count, 0);
        });
    }
}

// ---- walk

TEST_F(SearchTest, The_walk_is_that_of_the_listing)
{
    block("a/b", 100);
    block("a/b/kobblock/inner", 200);
    put_dataset(file_, "a/numbers", H5T_STD_I32LE, {2});
    H5Lcreate_soft("/a", file_, "also_a", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_soft("/a", file_, "a/b/cycle", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_hard(file_, "/", file_, "a/b/hard_cycle", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_soft("/nowhere", file_, "lost", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_soft("/nowhere", file_, "kobblock", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_external("missing.kob", "/", file_, "outside", H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_THAT(paths_of(file_, {}), ElementsAre("a/b/kobblock", "also_a/b/kobblock"));
}

TEST_F(SearchTest, External_links_are_followed)
{
    {
        const auto other = create_file(dir_ / "mesh.kob");
        PlainBlock{other, "constant/ELEM/kobblock", 300}.text("etyp", "ELEM");
    }
    H5Lcreate_external("mesh.kob", "/constant", file_, "mesh", H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_THAT(paths_of(file_, {.etyp = "ELEM"}), ElementsAre("mesh/ELEM/kobblock"));
}

TEST_F(SearchTest, Long_names_are_found_whole)
{
    const auto name = std::string(700, 'a') + "/" + std::string(5000, 'b');
    block(name, 100);
    EXPECT_THAT(paths_of(file_, {}), ElementsAre(name + "/kobblock"));
}

// ---- block key

TEST_F(SearchTest, The_key_chooses_one_kind)
{
    block("a", 1000);
    block("b", 1001);
    block("c", 1000);
    create_group(file_, "kobheader");
    EXPECT_THAT(paths_of(file_, {.key = 1000}), ElementsAre("a/kobblock", "c/kobblock"));
    EXPECT_THAT(paths_of(file_, {.key = 1}), ElementsAre("kobheader"));
    EXPECT_THAT(paths_of(file_, {.key = 77}), IsEmpty());
    EXPECT_EQ(paths_of(file_, {.key = -5}).size(), 4U) << "a negative key is unset";
}

TEST_F(SearchTest, A_block_without_key_is_found_only_while_no_key_is_asked_for)
{
    create_path(file_, "a/kobblock");
    const auto found = search(file_, {});
    EXPECT_THAT(found.all_paths(), ElementsAre("a/kobblock"));
    EXPECT_THAT(found.all_keys(), ElementsAre(0));
    EXPECT_THAT(paths_of(file_, {.key = 100}), IsEmpty());
}

// ---- names

TEST_F(SearchTest, Undefined_means_unset_whatever_follows_it)
{
    block("a", 200).text("etyp", "NODE");
    EXPECT_EQ(paths_of(file_, {.etyp = "undefined"}).size(), 1U);
    EXPECT_EQ(paths_of(file_, {.etyp = std::string{"undefined\0garbage", 17}}).size(), 1U);
    EXPECT_THAT(paths_of(file_, {.etyp = "Undefined"}), IsEmpty());
    EXPECT_THAT(paths_of(file_, {.etyp = ""}), IsEmpty()) << "a blank name is a name";
}

TEST_F(SearchTest, Trailing_blanks_do_not_count_in_names)
{
    block("a", 200).text("etyp", "NODE");
    block("b", 200).text("etyp", std::string{"NODE\0x", 6});
    block("c", 200).text("etyp", "NODES");
    block("d", 200).text("etyp", "node");
    EXPECT_THAT(paths_of(file_, {.etyp = "NODE"}), ElementsAre("a/kobblock", "b/kobblock"));
}

TEST_F(SearchTest, A_block_that_lacks_the_name_asked_for_is_rejected)
{
    block("a", 200);
    block("b", 200).integer("etyp", 3);
    EXPECT_THAT(paths_of(file_, {.etyp = "NODE"}), IsEmpty());
    EXPECT_EQ(paths_of(file_, {}).size(), 2U);
}

/// A text criterion, the attribute that it reads, and the kinds in which it does.
struct NameCase {
    const char* title;
    Text256 Search::*criterion;
    const char* attribute;
    Keys tested;

    friend std::ostream& operator<<(std::ostream& out, const NameCase& c) { return out << c.title; }
};

class NameCriterion : public SearchTest, public testing::WithParamInterface<NameCase> {};

TEST_P(NameCriterion, Chooses_among_its_kinds)
{
    const auto& [title, criterion, attribute, tested] = GetParam();
    for (const auto key : tested) {
        const auto name = std::to_string(key);
        block(name + "/with", key).text(attribute, "wanted");
        block(name + "/without", key).text(attribute, "other");
        block(name + "/zmissing", key);
    }
    Paths expected;
    for (const auto key : tested) expected.push_back(std::to_string(key) + "/with/kobblock");
    std::sort(expected.begin(), expected.end());
    Search criteria;
    criteria.*criterion = "wanted";
    EXPECT_EQ(paths_of(file_, criteria), expected);
}

const Keys etyp_kinds = joined({{100, 200, 250, 300, 500, 1000, 1001, 1050, 1051, 2100, 2150}, matrices});
const Keys zone_kinds = joined({{500}, single_results, series_results});

INSTANTIATE_TEST_SUITE_P(
    Search, NameCriterion,
    testing::Values(NameCase{"etyp", &Search::etyp, "etyp", etyp_kinds},
                    NameCase{"etyp_of_texts", &Search::etyp, "etyptext", {40}},
                    NameCase{"etyp_of_collectors", &Search::etyp, "etypcoll", {400}},
                    NameCase{"etyp_of_elements", &Search::etyp, "etypelem", {1100, 1101, 1150, 1151}},
                    NameCase{"etypvar", &Search::etypvar, "etypvar",
                             joined({{32}, single_results, series_results, matrices})},
                    NameCase{"etypzone", &Search::etypzone, "etypzone", zone_kinds},
                    NameCase{"etypframe", &Search::etypframe, "etypframe", joined({single_results, series_results})},
                    NameCase{"series", &Search::series, "series", joined({series_results, {2150}})},
                    NameCase{"name2_of_variables", &Search::name2, "varkey", {30}},
                    NameCase{"name2_of_connectivities", &Search::name2, "etypelem", {300}},
                    NameCase{"name2_of_properties", &Search::name2, "etypprop", {500}}),
    [](const auto& tested) { return tested.param.title; });

/// A criterion and the kinds in which it is tested; all other kinds, and the header, pass it.
struct PassCase {
    const char* title;
    Search criteria;
    Keys tested;

    friend std::ostream& operator<<(std::ostream& out, const PassCase& c) { return out << c.title; }
};

class UntestedKinds : public SearchTest, public testing::WithParamInterface<PassCase> {};

TEST_P(UntestedKinds, Pass)
{
    const auto& [title, criteria, tested] = GetParam();
    Keys expected;
    for (const auto key : all_kinds)
        if (!holds(tested, key)) expected.push_back(key);
    EXPECT_EQ(matches_among_all(criteria, [](PlainBlock&, std::int32_t) {}), expected);
    create_group(file_, "kobheader");
    EXPECT_TRUE(holds(search(file_, criteria).all_keys(), 1)) << "the header";
}

INSTANTIATE_TEST_SUITE_P(
    Search, UntestedKinds,
    testing::Values(PassCase{"etyp", {.etyp = "x"}, joined({etyp_kinds, {40, 400, 1100, 1101, 1150, 1151}})},
                    PassCase{"etypvar", {.etypvar = "x"}, joined({{32}, single_results, series_results, matrices})},
                    PassCase{"etypzone", {.etypzone = "x"}, zone_kinds}, PassCase{"zoneid", {.zoneid = 3}, zone_kinds},
                    PassCase{"etypframe", {.etypframe = "x"}, joined({single_results, series_results})},
                    PassCase{"series", {.series = "x"}, joined({series_results, {2150}})},
                    PassCase{"matrixtype", {.matrixtype = 3}, matrices},
                    PassCase{"name2", {.name2 = "x"}, {30, 300, 500}}),
    [](const auto& tested) { return tested.param.title; });

// ---- numbers

TEST_F(SearchTest, The_zone_number_is_compared)
{
    block("a", 1000).integer("zoneid", 3);
    block("b", 1000).integer("zoneid", 4);
    block("c", 1000);
    block("d", 500).integer("zoneid", 3);
    block("e", 1000).integer("zoneid", 0);
    EXPECT_THAT(paths_of(file_, {.zoneid = 3}), ElementsAre("a/kobblock", "d/kobblock"));
    EXPECT_THAT(paths_of(file_, {.zoneid = 0}), ElementsAre("e/kobblock"));
    EXPECT_EQ(paths_of(file_, {.zoneid = -2}).size(), 5U);
}

TEST_F(SearchTest, The_matrix_type_is_compared_in_matrices)
{
    for (const auto key : matrices) {
        block(std::to_string(key) + "/a", key).integer("matrixtype", 2);
        block(std::to_string(key) + "/b", key).integer("matrixtype", 3);
    }
    EXPECT_EQ(search(file_, {.matrixtype = 2}).all_keys(), matrices);
    EXPECT_EQ(paths_of(file_, {.key = 10100, .matrixtype = 3}), Paths{"10100/b/kobblock"});
    EXPECT_THAT(paths_of(file_, {.matrixtype = 0}), IsEmpty());
}

TEST_F(SearchTest, All_criteria_must_hold)
{
    const auto result = [&](const std::string& name, const std::string& variable, std::int32_t zone) {
        block(name, 1000).text("etyp", "NODE").text("etypvar", variable).text("etypzone", "Z").integer("zoneid", zone);
    };
    result("a", "DISP", 1);
    result("b", "DISP", 2);
    result("c", "TEMP", 1);
    EXPECT_THAT(paths_of(file_, {.key = 1000, .etyp = "NODE", .etypvar = "DISP", .etypzone = "Z", .zoneid = 1}),
                ElementsAre("a/kobblock"));
    EXPECT_THAT(paths_of(file_, {.key = 1000, .etyp = "NODE", .etypvar = "TEMP", .etypzone = "Z", .zoneid = 2}),
                IsEmpty());
}

// ---- state index

const Keys index_kinds = joined({{40, 100, 200, 250, 300, 400, 500, 2100}, single_results, matrices});

TEST_F(SearchTest, No_index_ranges_choose_constant_blocks_among_the_kinds_with_an_index)
{
    for (const auto key : index_kinds) {
        block(std::to_string(key) + "/constant", key).integer("nindex", 0);
        block(std::to_string(key) + "/state", key).state({1}, {0.5});
        block(std::to_string(key) + "/without", key);
    }
    Paths expected;
    for (const auto key : index_kinds) expected.push_back(std::to_string(key) + "/constant/kobblock");
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(paths_of(file_, {.nindex = 0}), expected);
}

TEST_F(SearchTest, No_index_ranges_let_the_kinds_without_index_pass)
{
    Keys expected;
    for (const auto key : all_kinds)
        if (!holds(index_kinds, key)) expected.push_back(key);
    EXPECT_EQ(matches_among_all({.nindex = 0}, [](PlainBlock& made, std::int32_t) { made.state({1}, {0.5}); }),
              expected);
    create_group(file_, "kobheader");
    EXPECT_TRUE(holds(search(file_, {.nindex = 0}).all_keys(), 1));
}

TEST_F(SearchTest, Index_ranges_reject_the_kinds_without_index)
{
    EXPECT_EQ(
        matches_among_all(
            {.nindex = 1, .indexident_low = {0}, .indexval_low = {0.0}, .indexident_high = {9}, .indexval_high = {9.0}},
            [](PlainBlock& made, std::int32_t) { made.state({1}, {0.5}); }),
        [] {
            Keys sorted = index_kinds;
            std::sort(sorted.begin(), sorted.end());
            return sorted;
        }());
    create_group(file_, "kobheader");
    EXPECT_FALSE(holds(
        search(
            file_,
            {.nindex = 1, .indexident_low = {0}, .indexval_low = {0.0}, .indexident_high = {9}, .indexval_high = {9.0}})
            .all_keys(),
        1));
}

TEST_F(SearchTest, Index_ranges_include_their_ends)
{
    for (std::int32_t i = 1; i <= 5; ++i) block("s" + std::to_string(i), 1000).state({i}, {0.5 * i});
    const auto within = [&](std::int32_t low, double from, std::int32_t high, double to) {
        return paths_of(file_, {.nindex = 1,
                                .indexident_low = {low},
                                .indexval_low = {from},
                                .indexident_high = {high},
                                .indexval_high = {to}});
    };
    EXPECT_THAT(within(2, 0.0, 4, 9.0), ElementsAre("s2/kobblock", "s3/kobblock", "s4/kobblock"));
    EXPECT_THAT(within(0, 1.0, 9, 2.0), ElementsAre("s2/kobblock", "s3/kobblock", "s4/kobblock"));
    EXPECT_THAT(within(3, 1.5, 3, 1.5), ElementsAre("s3/kobblock"));
    EXPECT_THAT(within(1, 1.5, 3, 2.5), ElementsAre("s3/kobblock")) << "both must hold";
    EXPECT_THAT(within(4, 0.0, 2, 9.0), IsEmpty());
}

TEST_F(SearchTest, Index_ranges_are_tested_one_by_one)
{
    block("a", 1000).state({1, 10}, {0.1, 1.0});
    block("b", 1000).state({1, 20}, {0.1, 2.0});
    block("c", 1000).state({2, 10}, {0.2, 1.0});
    block("d", 1000).state({1}, {0.1});
    block("e", 1000).state({1, 10, 7}, {0.1, 1.0, 0.7});
    block("f", 1000).integer("nindex", 0);
    const Search two{.nindex = 2,
                     .indexident_low = {1, 10},
                     .indexval_low = {0.0, 0.0},
                     .indexident_high = {1, 10},
                     .indexval_high = {9.0, 9.0}};
    EXPECT_THAT(paths_of(file_, two), ElementsAre("a/kobblock", "e/kobblock"))
        << "further index values are free, fewer are not enough";
    const Search one{
        .nindex = 1, .indexident_low = {1}, .indexval_low = {0.0}, .indexident_high = {1}, .indexval_high = {9.0}};
    EXPECT_THAT(paths_of(file_, one), ElementsAre("a/kobblock", "b/kobblock", "d/kobblock", "e/kobblock"));
}

TEST_F(SearchTest, A_negative_number_of_index_ranges_takes_every_state)
{
    block("a", 1000).state({1}, {0.5});
    block("b", 1000).integer("nindex", 0);
    block("c", 1000);
    EXPECT_EQ(paths_of(file_, {.nindex = -1}).size(), 3U);
    EXPECT_EQ(paths_of(file_, {.nindex = -9}).size(), 3U);
}

TEST_F(SearchTest, A_block_whose_index_cannot_be_read_is_rejected)
{
    block("a", 1000).integer("nindex", 2);
    block("b", 1000).integer("nindex", 2).integers("indexident", {1, 2});
    block("c", 1000).integer("nindex", 2).integers("indexident", {1, 2, 3}).reals("indexval", {0.1, 0.2, 0.3});
    block("d", 1000).integer("nindex", std::numeric_limits<std::int32_t>::max()).integers("indexident", {1});
    block("e", 1000).integers("indexident", {1}).reals("indexval", {0.1});
    block("f", 1000).state({1}, {0.1});
    std::vector<std::string> found;
    errors_of([&] {
        found = search(file_,
                       {.nindex = 1,
                        .indexident_low = {0},
                        .indexval_low = {0.0},
                        .indexident_high = {9},
                        .indexval_high = {9.0}},
                       1, 10, 1000)
                    .all_paths();
    });
    EXPECT_THAT(found, ElementsAre("f/kobblock"));
}

// ---- entity identifier

struct IdentifierCase {
    const char* count;
    const char* dataset;
    Keys keys;
};

const std::vector<IdentifierCase> identifier_lists{
    {"npart", "pid", {100}},
    {"nent", "entid", {200, 250, 500, 1000, 1001, 1050, 1051, 2100, 2150}},
    {"nele", "idele", {300, 1100, 1101, 1150, 1151}},
    {"ncoll", "idcoll", {400}},
};

TEST_F(SearchTest, An_entity_is_looked_for_in_the_identifiers_of_each_kind)
{
    Keys expected;
    for (const auto& [count, dataset, keys] : identifier_lists) {
        for (const auto key : keys) {
            const auto name = std::to_string(100000 + key);
            block(name + "/a", key).integer(count, 3).integers(dataset, {5, 7, 42});
            block(name + "/b", key).integer(count, 3).integers(dataset, {5, 7, 43});
            block(name + "/c", key).integer(count, 0);
            block(name + "/d", key);
            expected.push_back(key);
        }
    }
    std::sort(expected.begin(), expected.end());
    const auto found = search(file_, {.entid = 42});
    EXPECT_EQ(found.all_keys(), expected);
    for (const auto& path : found.all_paths()) EXPECT_EQ(path.substr(6), "/a/kobblock");
    EXPECT_EQ(search(file_, {.entid = 5}).count, static_cast<std::int32_t>(2 * expected.size()));
    EXPECT_EQ(search(file_, {.entid = 6}).count, 0);
}

TEST_F(SearchTest, An_entity_excludes_every_block_without_identifiers)
{
    create_group(file_, "kobheader");
    const auto without = [&](std::int32_t key) {
        return std::none_of(identifier_lists.begin(), identifier_lists.end(),
                            [&](const auto& list) { return holds(list.keys, key); });
    };
    for (const auto key : all_kinds)
        if (without(key)) block(std::to_string(key), key).integer("nent", 1).integers("entid", {42});
    EXPECT_THAT(paths_of(file_, {.entid = 42}), IsEmpty());
}

TEST_F(SearchTest, The_entity_0_can_be_looked_for)
{
    block("a", 1000).integer("nent", 2).integers("entid", {0, 1});
    block("b", 1000).integer("nent", 2).integers("entid", {1, 2});
    EXPECT_THAT(paths_of(file_, {.entid = 0}), ElementsAre("a/kobblock"));
    EXPECT_EQ(paths_of(file_, {.entid = -1}).size(), 2U);
}

TEST_F(SearchTest, Counts_that_disagree_with_the_identifiers_reject_the_block)
{
    block("a", 1000).integer("nent", 2).integers("entid", {42, 43, 44});
    block("b", 1000).integer("nent", std::numeric_limits<std::int32_t>::max()).integers("entid", {42});
    block("c", 1000).integer("nent", -5).integers("entid", {42});
    block("d", 1000).integer("nent", 3);
    block("e", 1000).integers("entid", {42});
    block("f", 1000).integer("nent", 1).integers("entid", {42});
    Paths found;
    errors_of([&] { found = search(file_, {.entid = 42}, 1, 10, 1000).all_paths(); });
    EXPECT_THAT(found, ElementsAre("f/kobblock"));
}

} // namespace
