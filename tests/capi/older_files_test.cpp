// SPDX-License-Identifier: BSD-3-Clause
// Files of the older layout as a whole: version, header, directory, search, eraser, external links; mixed files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "support/captured_stream.hpp"
#include "support/hdf5_file.hpp"
#include "support/older_blocks.hpp"

using namespace kob_test;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

namespace {

using Keys = std::vector<std::int32_t>;
using Paths = std::vector<std::string>;
using Entry = std::pair<std::int32_t, std::string>;

void expect_fine(const Outcome& outcome) { ASSERT_EQ(outcome, (Outcome{0, ""})); }

void stamp(const KobFile& file, decltype(&KOB1_WRITE_FILEHEADER) write = KOB1_WRITE_FILEHEADER)
{
    std::int32_t status = 77;
    write(file.address(), nullptr, nullptr, &status);
    ASSERT_EQ(status, 0);
}

/// Reads the header; the version text comes trimmed.
std::pair<std::int32_t, std::string> header_of(const KobFile& file, decltype(&KOB1_READ_FILEHEADER) read)
{
    const auto group = file.block("kobheader");
    std::array<char, 32> version{};
    version.fill('#');
    std::int32_t flags = -1;
    std::array<std::int32_t, 2> params{-1, -1};
    std::int32_t status = 77;
    read(&group, version.data(), &flags, params.data(), &status);
    return {status, trimmed({version.data(), version.size()})};
}

/// What a directory lists, and prints when it is verbose.
struct Listing {
    std::int32_t status = 77;
    std::vector<Entry> entries;
    std::string out;
};

Listing list(std::int64_t group, decltype(&kob1_lookup) lookup, std::int32_t verbose = 0)
{
    const std::int32_t store = 1;
    std::int32_t capacity = 0;
    std::int64_t path_size = 0;
    std::int32_t count = -77;
    std::int64_t path_length = -77;
    std::int32_t* keys = nullptr;
    std::int64_t* offsets = nullptr;
    char* paths = nullptr;
    Listing result;
    {
        CapturedStream captured;
        lookup(&group, &store, &verbose, &capacity, &path_size, &count, &path_length, &keys, &offsets, &paths,
               &result.status);
        result.out = captured.out();
        EXPECT_EQ(captured.err(), "");
    }
    for (std::int32_t i = 0; i < count; ++i) result.entries.emplace_back(keys[i], paths + offsets[i]);
    std::free(keys);    // NOLINT: these arrays are malloc's by agreement
    std::free(offsets); // NOLINT
    std::free(paths);   // NOLINT
    return result;
}

/// One call of KOB1_SEARCHBLOCKS; every criterion is unset at first.
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

struct Matches {
    std::int32_t status = 77;
    Keys keys;
    Paths typenames;
    std::string out;
};

Matches search(std::int64_t group, const Search& s, std::int32_t verbose = 0)
{
    const std::int32_t option = 3;
    const std::int32_t capacity = 50;
    const std::int64_t path_size = 5000;
    std::int32_t count = -77;
    std::int64_t path_length = -77;
    std::vector<std::int32_t> keys(50);
    std::vector<std::int64_t> offsets(51);
    std::string paths(5000, '#');
    Texts256 names(50);
    Matches found;
    {
        CapturedStream captured;
        KOB1_SEARCHBLOCKS(&group, &option, &verbose, &s.key, s.etyp.data(), s.etypvar.data(), s.etypzone.data(),
                          &s.zoneid, s.etypframe.data(), s.series.data(), &s.matrixtype, &s.entid, s.name2.data(),
                          nullptr, &s.nindex, s.indexident_low.data(), s.indexval_low.data(), s.indexident_high.data(),
                          s.indexval_high.data(), &capacity, &path_size, &count, &path_length, keys.data(),
                          offsets.data(), paths.data(), names.data(), &found.status);
        found.out = captured.out();
        EXPECT_EQ(captured.err(), "");
    }
    found.keys.assign(keys.begin(), keys.begin() + count);
    for (std::int32_t i = 0; i < count; ++i) {
        const auto name = names[static_cast<std::size_t>(i)];
        found.typenames.push_back(name.substr(0, name.find('\0')));
    }
    return found;
}

Keys keys_of(const KobFile& file, const Search& criteria)
{
    auto found = search(file.handle(), criteria);
    EXPECT_EQ(found.status, 0);
    return found.keys;
}

/// One block of every kind.
void write_all(std::int64_t group)
{
    expect_fine(older::System{}.write(group));
    expect_fine(older::Index{}.write(group));
    expect_fine(older::Variables{}.write(group));
    expect_fine(older::Text{}.write(group));
    expect_fine(older::Parts{}.write(group));
    expect_fine(older::Attributes{}.write(group));
    expect_fine(older::Connectivities{}.write(group));
    expect_fine(older::Collector{}.write(group));
    expect_fine(older::ActivFlags{}.write(group));
    expect_fine(older::EntityResults{}.write(group));
    expect_fine(older::MultiEntityResults{}.write(group));
    expect_fine(older::ElementResults{}.write(group));
    expect_fine(older::MultiElementResults{}.write(group));
    expect_fine(older::MultiActivFlags{}.write(group));
    expect_fine(older::DenseMatrix{}.write(group));
    expect_fine(older::TriangularMatrix{}.write(group));
    expect_fine(older::SparseMatrix{}.write(group));
}

/// Whether any group or dataset below has the attribute or the name.
bool is_named_anywhere(hid_t group, const std::string& name)
{
    if (has_attribute(group, name) || has_link(group, name)) return true;
    for (const auto& link : link_names(group)) {
        const Hid object{H5Oopen(group, link.c_str(), H5P_DEFAULT)};
        if (H5Iget_type(object) == H5I_GROUP && is_named_anywhere(object, name)) return true;
    }
    return false;
}

} // namespace

// ---- version, header, opening and closing

TEST(OlderFile, The_version_is_1_2_0)
{
    for (const auto& [selector, text] :
         std::vector<std::pair<std::int32_t, std::string>>{{1, "kob__dp"},
                                                           {2, "HDF5-1.14.6"},
                                                           {4, "KOB-1.2.0"},
                                                           {6, "HDF5-1.14.6 KOB-1.2.0"},
                                                           {0, "kob__dp HDF5-1.14.6 KOB-1.2.0"}}) {
        for (const std::int32_t verbose : {0, 1}) {
            Text256 found;
            std::int32_t status = 77;
            const std::int32_t wanted = selector; // a binding cannot be captured
            const auto out = output_of([&] { KOB1_GET_VERSION(found.data(), &wanted, &verbose, &status); });
            EXPECT_EQ(status, 0);
            EXPECT_EQ(found.text(), text);
            EXPECT_EQ(out, verbose == 0 ? ""
                                        : "\nKOB INFO - hdf5-lib version: 1.14.6\n"
                                          "           KOB      version: 1.2.0\n"
                                          "           KOB      BuildID: kob__dp\n");
        }
    }
}

TEST(OlderFile, Blocks_have_the_paths_of_the_current_layout)
{
    struct Place {
        std::int32_t mask, nstate, state, number, set;
        const char* path;
    };
    const std::int32_t create = 0;
    const std::int32_t open_only = 1;
    const std::vector<std::int32_t> states{7, 8};
    const Text256 one{"one"}, two{"two"}, three{"three"}, four{"four"}, five{"five"};
    for (const Place& place : std::vector<Place>{
             {1, 0, -1, -1, -1, "constant/one"},
             {3, 1, 12, -1, -1, "singlestate/state000000000012/one/two"},
             {6, 2, -1, 4, -1, "singlestate/state000000000008/state000000000007/two/three4"},
             {31, -1, -1, 0, 12, "multistate/one/two/three/four/five0_set12"},
             {9, 0, -1, -1, 3, "constant/one/four_set3"},
         }) {
        const KobFile file;
        const auto open = [&](decltype(&KOB1_OPENAUTOPATH) call, const std::int32_t* ioflag) {
            std::int64_t block = -1;
            std::int32_t status = 77;
            call(file.address(), &place.mask, nullptr, ioflag, &place.nstate, states.data(), &place.state, one.data(),
                 two.data(), three.data(), four.data(), five.data(), &place.number, &place.set, &block, &status);
            return status;
        };
        EXPECT_EQ(open(KOB1_OPENAUTOPATH, &open_only), -1) << place.path;
        EXPECT_GT(open(KOB1_OPENAUTOPATH, &create), 0) << place.path;
        EXPECT_EQ(open(KOB1_OPENAUTOPATH, &create), 0) << place.path;
        EXPECT_EQ(open(KOB_OPENAUTOPATH, &open_only), 0) << place.path;
        file.block(place.path + std::string{"/kobblock"});
    }
}

TEST(OlderFile, A_header_is_accepted_by_its_own_family)
{
    const KobFile older_file;
    stamp(older_file);
    EXPECT_EQ(header_of(older_file, KOB1_READ_FILEHEADER), (std::pair{0, std::string{"1 2 0"}}));
    EXPECT_EQ(header_of(older_file, KOB_READ_FILEHEADER), (std::pair{100, std::string{"1 2 0"}}));
    const KobFile current_file;
    stamp(current_file, KOB_WRITE_FILEHEADER);
    EXPECT_EQ(header_of(current_file, KOB1_READ_FILEHEADER), (std::pair{100, std::string{"2 2 16"}}));
    EXPECT_EQ(header_of(current_file, KOB_READ_FILEHEADER), (std::pair{0, std::string{"2 2 16"}}));
}

TEST(OlderFile, A_second_header_is_refused)
{
    const KobFile file;
    stamp(file);
    std::int32_t status = 77;
    const auto errors = errors_of([&] { KOB1_WRITE_FILEHEADER(file.address(), nullptr, nullptr, &status); });
    EXPECT_LT(status, 0);
    EXPECT_EQ(errors, "KOB ERROR writing header: " + std::to_string(status) + "\n");
}

TEST(OlderFile, Is_written_and_read_through_the_family_alone)
{
    const TempFile temporary;
    const std::string name = temporary.path();
    const std::string group_name = "results";
    const auto name_length = static_cast<std::int32_t>(name.size());
    const auto group_length = static_cast<std::int32_t>(group_name.size());
    const std::int32_t nothing = 0;
    const auto open = [&](std::int32_t option) {
        std::int64_t handle = 0;
        std::int32_t status = 77;
        KOB1_OPEN(name.c_str(), &name_length, group_name.c_str(), &group_length, "", &nothing, &handle, &nothing,
                  &option, &status);
        EXPECT_EQ(status, 0);
        return handle;
    };
    const auto close = [](std::int64_t handle) {
        std::int32_t status = 77;
        KOB1_CLOSE(&handle, &status);
        EXPECT_EQ(status, 0);
    };
    older::Text text;
    {
        const auto handle = open(create_results);
        std::int32_t status = 77;
        KOB1_WRITE_FILEHEADER(&handle, nullptr, nullptr, &status);
        EXPECT_EQ(status, 0);
        expect_fine(text.write(handle));
        KOB1_FLUSH(&handle, &nothing, &status);
        EXPECT_EQ(status, 0);
        close(handle);
    }
    const auto handle = open(read_only);
    const std::int32_t all = 3;
    const std::int32_t open_only = 1;
    const std::int32_t none = -1;
    const Text256 kind = "text";
    const Text256 log = "log";
    std::int64_t block = -1;
    std::int32_t status = 77;
    KOB1_OPENAUTOPATH(&handle, &all, nullptr, &open_only, &nothing, nullptr, &none, kind.data(), log.data(), nullptr,
                      nullptr, nullptr, &none, &none, &block, &status);
    EXPECT_EQ(status, 0);
    auto read = untouched(text);
    EXPECT_EQ(read.read(block, 2), (Outcome{0, ""}));
    EXPECT_EQ(read.line, text.line);
    KOB1_H5GCLOSE(&block, &status);
    EXPECT_EQ(status, 0);
    const std::string path = "constant/text/log/kobblock";
    KOB1_H5GOPEN(&handle, path.c_str(), &none, &open_only, &block, &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(read.read(block, 1), (Outcome{0, ""}));
    close(handle);
    const std::int64_t closed = -1;
    KOB1_CLOSE(&closed, &status);
    EXPECT_EQ(status, -1);
}

TEST(OlderFile, No_block_holds_an_index_code)
{
    const KobFile file;
    write_all(file.handle());
    EXPECT_TRUE(is_named_anywhere(file.handle(), "nindex"));
    EXPECT_FALSE(is_named_anywhere(file.handle(), "indexic"));
}

// ---- directory

TEST(OlderDirectory, Lists_every_kind)
{
    const KobFile file;
    write_all(file.handle());
    stamp(file);
    const auto listing = list(file.handle(), kob1_lookup);
    EXPECT_EQ(listing.status, 0);
    EXPECT_EQ(listing.out, "");
    const std::string state = "singlestate/state000000000012/";
    EXPECT_THAT(listing.entries,
                UnorderedElementsAre(
                    Entry{1, "kobheader"}, Entry{10, "constant/system/kobblock"},
                    Entry{20, "constant/indices/kobblock"}, Entry{30, "constant/variables/STRESS/kobblock"},
                    Entry{40, "constant/text/log/kobblock"}, Entry{100, state + "parts/PART/kobblock"},
                    Entry{200, state + "attributes/NODE/kobblock"}, Entry{300, state + "connectivities/BEAM2/kobblock"},
                    Entry{400, state + "collector/SET/kobblock"}, Entry{2100, state + "activflags/ELEMENT/kobblock"},
                    Entry{1000, state + "entityresults/NODE/DISPLACEMENT/ZONE7/kobblock"},
                    Entry{1050, "multistate/TIME/multientityresults/NODE/DISPLACEMENT/ZONE5/kobblock"},
                    Entry{1100, state + "elementresults/HEXA8/STRESS/ZONE5/kobblock"},
                    Entry{1150, "multistate/TIME/multielementresults/HEXA8/STRESS/ZONE5/kobblock"},
                    Entry{2150, "multistate/TIME/multiactivflags/CONTACT/kobblock"},
                    Entry{10000, state + "densematrix/SUPERELEMENT/STIFFNESS/id17/kobblock"},
                    Entry{10100, state + "triangularmatrix/SUPERELEMENT/STIFFNESS/id17/kobblock"},
                    Entry{10200, state + "sparsematrix/SUPERELEMENT/STIFFNESS/id17/kobblock"}));
}

TEST(OlderDirectory, Names_itself_in_the_listing)
{
    const KobFile file;
    expect_fine(older::Text{}.write(file.handle()));
    EXPECT_EQ(list(file.handle(), kob1_lookup, 1).out, "\n KOB INFO KOB1_LOOKUP: 1 blocks found - total path len: 27\n"
                                                       "\n"
                                                       "      block:   blockkey path\n"
                                                       "          0:         40 \"constant/text/log/kobblock\"\n"
                                                       "\n");
}

TEST(OlderDirectory, Each_generation_lists_its_own_blocks)
{
    const KobFile file;
    expect_fine(older::Text{}.write(file.handle()));
    expect_fine(older::ActivFlags{}.write_current(file.handle()));
    stamp(file);
    const std::string flags = "singlestate/state000000000012/activflags/ELEMENT/kobblock";
    EXPECT_THAT(list(file.handle(), kob1_lookup).entries,
                ElementsAre(Entry{40, "constant/text/log/kobblock"}, Entry{1, "kobheader"}));
    EXPECT_THAT(list(file.handle(), kob_lookup).entries, ElementsAre(Entry{1, "kobheader"}, Entry{2100, flags}));
}

TEST(OlderDirectory, Blocks_without_a_readable_key_are_left_out)
{
    const KobFile file;
    for (const char* name : {"a", "b", "c", "d"}) {
        older::Text text;
        text.etyptext = name;
        expect_fine(text.write(file.handle()));
    }
    H5Ldelete(file.block("constant/text/a/kobblock"), "header", H5P_DEFAULT);
    H5Adelete_by_name(file.block("constant/text/b/kobblock"), "header", "block", H5P_DEFAULT);
    const auto c = file.block("constant/text/c/kobblock");
    H5Ldelete(c, "header", H5P_DEFAULT);
    put_dataset(c, "header", H5T_STD_I32LE, {1});
    EXPECT_THAT(list(file.handle(), kob1_lookup).entries, ElementsAre(Entry{40, "constant/text/d/kobblock"}));
}

// ---- search

TEST(OlderSearch, Without_criteria_everything_is_found)
{
    const KobFile file;
    write_all(file.handle());
    stamp(file);
    EXPECT_THAT(keys_of(file, {}), UnorderedElementsAre(1, 10, 20, 30, 40, 100, 200, 300, 400, 1000, 1050, 1100, 1150,
                                                        2100, 2150, 10000, 10100, 10200));
}

TEST(OlderSearch, Names_are_compared_in_the_header)
{
    const KobFile file;
    write_all(file.handle());
    EXPECT_THAT(keys_of(file, {.key = 1000, .etyp = "NODE"}), ElementsAre(1000));
    EXPECT_THAT(keys_of(file, {.key = 1000, .etyp = "ELEMENT"}), IsEmpty());
    EXPECT_THAT(keys_of(file, {.key = 1000, .etypvar = "DISPLACEMENT", .etypzone = "ZONE", .zoneid = 7}),
                ElementsAre(1000));
    EXPECT_THAT(keys_of(file, {.key = 1000, .zoneid = 8}), IsEmpty());
    EXPECT_THAT(keys_of(file, {.key = 1050, .etypframe = "GLOBAL", .series = "TIME"}), ElementsAre(1050));
    EXPECT_THAT(keys_of(file, {.key = 1050, .series = "OTHER"}), IsEmpty());
    EXPECT_THAT(keys_of(file, {.key = 300, .name2 = "BEAM2"}), ElementsAre(300));
    EXPECT_THAT(keys_of(file, {.key = 300, .name2 = "HEXA8"}), IsEmpty());
    EXPECT_THAT(keys_of(file, {.key = 40, .etyp = "log"}), ElementsAre(40));
    EXPECT_THAT(keys_of(file, {.key = 40, .etyp = "LOG"}), IsEmpty());
    EXPECT_THAT(keys_of(file, {.key = 10100, .etypvar = "STIFFNESS", .matrixtype = 5}), IsEmpty());
}

TEST(OlderSearch, Matrices_are_tested_by_their_type)
{
    const KobFile file;
    older::TriangularMatrix matrix;
    matrix.matrixtype = 2;
    expect_fine(matrix.write(file.handle()));
    EXPECT_THAT(keys_of(file, {.etyp = "SUPERELEMENT", .etypvar = "STIFFNESS", .matrixtype = 2}), ElementsAre(10100));
    EXPECT_THAT(keys_of(file, {.matrixtype = 3}), IsEmpty());
}

TEST(OlderSearch, A_block_of_the_current_layout_has_no_key)
{
    const KobFile file;
    expect_fine(older::Text{}.write(file.handle()));
    expect_fine(older::ActivFlags{}.write_current(file.handle()));
    const auto found = search(file.handle(), {});
    EXPECT_THAT(found.keys, ElementsAre(40, 0));
    EXPECT_THAT(found.typenames, ElementsAre("text", "n/a"));
    EXPECT_THAT(keys_of(file, {.key = 2100}), IsEmpty());
    EXPECT_THAT(keys_of(file, {.entid = 30}), IsEmpty());
}

TEST(OlderSearch, A_variables_block_is_tested_by_its_name)
{
    const KobFile file;
    expect_fine(older::Variables{}.write(file.handle()));
    EXPECT_THAT(keys_of(file, {.key = 30, .etypvar = "STRESS"}), ElementsAre(30));
    EXPECT_THAT(keys_of(file, {.key = 30, .etypvar = "STRAIN"}), IsEmpty());
    EXPECT_THAT(keys_of(file, {.key = 30, .name2 = "anything"}), ElementsAre(30));
}

TEST(OlderSearch, States_are_compared_in_the_index)
{
    const KobFile file;
    write_all(file.handle());
    // The samples belong to identifier 12, value 0.125.
    const auto range = [](std::int32_t from, std::int32_t to, double low, double high) {
        return Search{.nindex = 1,
                      .indexident_low = {from},
                      .indexval_low = {low},
                      .indexident_high = {to},
                      .indexval_high = {high}};
    };
    EXPECT_THAT(keys_of(file, range(12, 12, 0.125, 0.125)),
                UnorderedElementsAre(100, 200, 300, 400, 1100, 2100, 10000, 10100, 10200));
    EXPECT_THAT(keys_of(file, range(13, 20, 0, 1)), IsEmpty());
    EXPECT_THAT(keys_of(file, range(12, 12, 0.5, 1)), IsEmpty());
    EXPECT_THAT(keys_of(file, {.nindex = 0}), UnorderedElementsAre(10, 20, 30, 40, 1050, 1150, 2150));
}

TEST(OlderSearch, Entities_are_looked_for_in_the_data)
{
    const KobFile file;
    write_all(file.handle());
    EXPECT_THAT(keys_of(file, {.entid = 8}), ElementsAre(100));
    EXPECT_THAT(keys_of(file, {.entid = 101}), UnorderedElementsAre(300, 1000, 1100, 1150));
    EXPECT_THAT(keys_of(file, {.entid = 42}), ElementsAre(400));
    EXPECT_THAT(keys_of(file, {.entid = 22}), ElementsAre(2150));
}

TEST(OlderSearch, Names_itself_in_the_listing_and_tells_the_kinds)
{
    const KobFile file;
    expect_fine(older::Text{}.write(file.handle()));
    expect_fine(older::Variables{}.write(file.handle()));
    const auto found = search(file.handle(), {}, 1);
    EXPECT_THAT(found.out, StartsWith("\n KOB INFO KOB1_SEARCHBLOCKS: 2 blocks found - total path len: 62\n\n"));
    EXPECT_THAT(found.typenames, ElementsAre("text", "variables"));
}

TEST(OlderSearch, Items_that_cannot_be_read_reject_the_block_in_silence)
{
    const KobFile file;
    older::EntityResults b;
    expect_fine(b.write(file.handle()));
    H5Ldelete(file.block(b.path()), "index", H5P_DEFAULT);
    EXPECT_THAT(
        keys_of(
            file,
            {.nindex = 1, .indexident_low = {0}, .indexval_low = {0}, .indexident_high = {99}, .indexval_high = {99}}),
        IsEmpty());
    H5Ldelete(file.block(b.path()), "data", H5P_DEFAULT);
    EXPECT_THAT(keys_of(file, {.entid = 101}), IsEmpty());
    EXPECT_THAT(keys_of(file, {.key = 1000}), ElementsAre(1000));
}

// ---- eraser

namespace {

struct Erased {
    std::int32_t status = 77;
    std::string out;
    std::string err;
};

Erased erase(const KobFile& file, const std::vector<std::int32_t>& index, std::int32_t verbose = 0)
{
    const auto nindex = static_cast<std::int32_t>(index.size());
    Erased result;
    CapturedStream captured;
    KOB1_ERASE_STATES(file.address(), &nindex, index.data(), &verbose, &result.status);
    result.out = captured.out();
    result.err = captured.err();
    return result;
}

void write_state(const KobFile& file, older::Ints index)
{
    older::EntityResults b;
    b.nindex = static_cast<std::int32_t>(index.size());
    b.indexident = std::move(index);
    b.indexval.assign(b.indexident.size(), 0.5);
    expect_fine(b.write(file.handle()));
}

/// A file with header, index and system block.
void prepare(const KobFile& file)
{
    stamp(file);
    expect_fine(older::Index{}.write(file.handle()));
    expect_fine(older::System{}.write(file.handle()));
}

} // namespace

TEST(OlderEraser, Later_states_go_with_their_empty_groups)
{
    const KobFile file;
    prepare(file);
    for (const std::int32_t state : {3, 5, 7}) write_state(file, {state});
    const auto erased = erase(file, {5}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.err, "");
    EXPECT_THAT(erased.out, HasSubstr("      KOB Version : 1.2.0\n"));
    EXPECT_THAT(erased.out, HasSubstr("KOB INFO - compatibility check OK - KOB version: 1.2.0\n"));
    EXPECT_THAT(erased.out, HasSubstr("KOB INFO - 1 singlestate blocks deleted\n"));
    EXPECT_THAT(erased.out, EndsWith("\nKOB state eraser successfully passed.\n\n"));
    EXPECT_THAT(link_names(open_group(file.handle(), "singlestate")),
                ElementsAre("state000000000003", "state000000000005"));
}

TEST(OlderEraser, The_last_of_several_index_components_counts_most)
{
    const KobFile file;
    prepare(file);
    for (const older::Ints& index : std::vector<older::Ints>{{11, 1}, {1, 3}, {10, 2}, {11, 2}, {9, 2}})
        write_state(file, index);
    write_state(file, {20});
    const auto erased = erase(file, {10, 2});
    EXPECT_EQ(erased.status, 0);
    EXPECT_THAT(link_names(open_group(file.handle(), "singlestate")),
                ElementsAre("state000000000001", "state000000000002", "state000000000020"));
    EXPECT_THAT(link_names(open_group(file.handle(), "singlestate/state000000000002")),
                ElementsAre("state000000000009", "state000000000010"));
}

TEST(OlderEraser, Blocks_of_every_kind_go_and_constant_ones_stay)
{
    const KobFile file;
    write_all(file.handle());
    stamp(file);
    EXPECT_EQ(erase(file, {11}).status, 0);
    EXPECT_FALSE(kob_test::has_link(file.handle(), "singlestate"));
    EXPECT_THAT(list(file.handle(), kob1_lookup).entries,
                UnorderedElementsAre(
                    Entry{10, "constant/system/kobblock"}, Entry{20, "constant/indices/kobblock"},
                    Entry{30, "constant/variables/STRESS/kobblock"}, Entry{40, "constant/text/log/kobblock"},
                    Entry{1, "kobheader"}, Entry{1050, older::MultiEntityResults::path()},
                    Entry{1150, older::MultiElementResults::path()}, Entry{2150, older::MultiActivFlags::path()}));
}

TEST(OlderEraser, The_system_block_gets_the_date)
{
    const KobFile file;
    prepare(file);
    EXPECT_EQ(erase(file, {0}).status, 0);
    const auto header = open_group(file.block("constant/system/kobblock"), "header");
    EXPECT_THAT(stored_text(header, "mdate"), testing::MatchesRegex("[0-9]{8}"));
    EXPECT_THAT(stored_text(header, "mtime"), testing::MatchesRegex("[0-9]{6}  "));
}

TEST(OlderEraser, A_series_is_cut_whatever_its_attribute_says)
{
    for (const std::int32_t size : {4, 8, 16, 32}) {
        for (const std::int32_t lie : {5, 0, 2, 77}) {
            const KobFile file;
            prepare(file);
            older::MultiEntityResults b{5, size}; // identifiers 10, 20, ..., 50
            b.fswitch = 1;
            b.fid = {7, 8, 9};
            expect_fine(b.write(file.handle()));
            set_int_attribute(open_group(file.block(b.path()), "header"), "nstate", lie);
            const auto erased = erase(file, {30}, 1);
            EXPECT_EQ(erased.status, 0);
            EXPECT_EQ(erased.err, "");
            EXPECT_THAT(erased.out, HasSubstr("\nKOB INFO - 1 \"multientityresults\" blocks rewritten\n"));
            older::MultiEntityResults three{3, size};
            three.fswitch = 1;
            three.fid = {7, 8, 9};
            auto read = untouched(three);
            EXPECT_EQ(read.read(file.block(b.path()), 2), (Outcome{size > 8 ? 1051 : 1050, ""}));
            EXPECT_EQ(listing(read), listing(older::expected_of(three, older::everything)));
            const auto header = open_group(file.block(b.path()), "header");
            EXPECT_EQ(stored_ints(header, "nstate"), (std::vector<std::int64_t>{3}));
            EXPECT_EQ(stored_extents(open_group(file.block(b.path()), "data"), "res").front(), 3U);
            const Hid values{H5Dopen2(file.block(b.path()), "data/res", H5P_DEFAULT)};
            EXPECT_EQ(H5Tget_size(Hid{H5Dget_type(values)}), size % 8 == 0 && size != 16 ? 8U : 4U);
        }
    }
}

TEST(OlderEraser, A_series_goes_when_no_state_is_left_and_stays_when_all_are)
{
    const KobFile file;
    prepare(file);
    older::MultiEntityResults b{3};
    expect_fine(b.write(file.handle()));
    EXPECT_EQ(erase(file, {30}).status, 0);
    auto read = untouched(b);
    EXPECT_EQ(read.read(file.block(b.path()), 2), (Outcome{1050, ""}));
    EXPECT_EQ(read.nstate, 3);
    EXPECT_EQ(erase(file, {9}).status, 0);
    EXPECT_FALSE(kob_test::has_link(file.handle(), "multistate"));
}

TEST(OlderEraser, A_file_of_another_version_is_left_alone)
{
    const KobFile file;
    stamp(file, KOB_WRITE_FILEHEADER);
    write_state(file, {7});
    const auto erased = erase(file, {5});
    EXPECT_EQ(erased.status, 0);
    EXPECT_EQ(erased.err, "KOB ERROR - incompatible file - KOB version: 2.2.16\n");
    EXPECT_TRUE(kob_test::has_link(file.handle(), "singlestate"));
}

TEST(OlderEraser, Any_version_1_is_taken)
{
    const KobFile file;
    prepare(file);
    {
        const auto group = open_group(file.handle(), "kobheader");
        const Hid text = text_type(64);
        std::string stored = stored_text(group, "kobheader");
        stored.replace(8, 5, "1 0 9");
        const Hid data{H5Dopen2(group, "kobheader", H5P_DEFAULT)};
        ASSERT_GE(H5Dwrite(data, text, H5S_ALL, H5S_ALL, H5P_DEFAULT, stored.data()), 0);
    }
    write_state(file, {7});
    const auto erased = erase(file, {5}, 1);
    EXPECT_EQ(erased.status, 0);
    EXPECT_THAT(erased.out, HasSubstr("KOB INFO - compatibility check OK - KOB version: 1.0.9\n"));
    EXPECT_FALSE(kob_test::has_link(file.handle(), "singlestate"));
}

TEST(OlderEraser, A_series_needs_no_number_of_states)
{
    for (const std::int32_t states : {1, 3}) {
        const KobFile file;
        prepare(file);
        older::MultiEntityResults b{states}; // identifiers 10, 20, 30
        older::MultiActivFlags flags{states};
        expect_fine(b.write(file.handle()));
        expect_fine(flags.write(file.handle()));
        H5Adelete_by_name(file.block(b.path()), "header", "nstate", H5P_DEFAULT);
        H5Adelete_by_name(file.block(flags.path()), "header", "nstate", H5P_DEFAULT);
        EXPECT_EQ(erase(file, {19}).status, 0);
        EXPECT_EQ(stored_extents(file.block(b.path()), "data/res").front(), 1U);
        EXPECT_EQ(erase(file, {9}).status, 0);
        EXPECT_THAT(list(file.handle(), kob1_lookup).entries,
                    testing::Contains(Entry{2150, older::MultiActivFlags::path()}))
            << "flags are no results of one state";
        EXPECT_THAT(list(file.handle(), kob1_lookup).entries,
                    testing::Not(testing::Contains(Entry{1050, older::MultiEntityResults::path()})));
    }
}

TEST(OlderEraser, The_current_eraser_leaves_an_older_file_alone)
{
    const KobFile file;
    prepare(file);
    write_state(file, {7});
    const std::int32_t nindex = 1;
    const std::int32_t index = 5;
    const std::int32_t verbose = 0;
    std::int32_t status = 77;
    const auto errors = errors_of([&] { KOB_ERASE_STATES(file.address(), &nindex, &index, &verbose, &status); });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(errors, "KOB ERROR - incompatible file - KOB version: 1.2.0\n");
    EXPECT_TRUE(kob_test::has_link(file.handle(), "singlestate"));
}

TEST(OlderEraser, Without_blocks_there_is_nothing_to_do)
{
    const KobFile file;
    const auto erased = erase(file, {5});
    EXPECT_EQ(erased.status, -1);
    EXPECT_EQ(erased.err, "\nKOB ERROR - no KOB blocks found - error code = -1\n");
}

TEST(OlderEraser, Blocks_of_the_current_layout_in_the_same_file_stay)
{
    const KobFile file;
    prepare(file);
    write_state(file, {7});
    older::ActivFlags flags;
    expect_fine(flags.write_current(file.handle()));
    EXPECT_EQ(erase(file, {5}).status, 0);
    EXPECT_THAT(link_names(open_group(file.handle(), "singlestate")), ElementsAre("state000000000012"));
}

TEST(OlderEraser, A_damaged_index_block_ends_the_run)
{
    const KobFile file;
    prepare(file);
    write_state(file, {7});
    H5Adelete_by_name(file.block("constant/indices/kobblock"), "header", "nindex", H5P_DEFAULT);
    const auto erased = erase(file, {5});
    EXPECT_EQ(erased.status, -4002);
    EXPECT_THAT(erased.err, HasSubstr("KOB ERROR reading \"indices\" block pass "));
    EXPECT_TRUE(kob_test::has_link(file.handle(), "singlestate"));
}

// ---- external links

TEST(OlderLinks, Show_the_blocks_of_another_file)
{
    const KobFile source;
    write_all(source.handle());
    const KobFile target;
    const std::int32_t one = 1;
    const std::int32_t none = 0;
    std::int32_t status = 77;
    const Text256 name;
    const auto out = output_of(
        [&] { KOB1_CREATE_EXTLINKS(source.address(), target.address(), &one, name.data(), &none, &none, &status); });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(out, "\n"
                   "     +------------------------------------------------------+\n"
                   "     |  KOB Tools                                           |\n"
                   "     +------------------------------------------------------+\n"
                   "      Version: 1.2.0\n"
                   "\n\n"
                   "\n KOB external links successfully created.\n\n");
    EXPECT_EQ(list(target.handle(), kob1_lookup).entries, list(source.handle(), kob1_lookup).entries);
    older::Text text;
    auto read = untouched(text);
    EXPECT_EQ(read.read(target.block("constant/text/log/kobblock"), 2), (Outcome{0, ""}));
    EXPECT_EQ(read.line, text.line);
}
