// SPDX-License-Identifier: BSD-3-Clause
// The short way to small objects: it tells what HDF5 tells, or nothing.
#include "kob_plain_block.hpp"
#include "kob_plain_walk.hpp"
#include "kob_storage.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kob_dp.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "support/captured_stream.hpp"
#include "support/entity_results.hpp"
#include "support/every_kind.hpp"
#include "support/file_bytes.hpp"
#include "support/hdf5_file.hpp"
#include "support/kob_file.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;
using testing::ElementsAre;
using testing::Gt;

namespace {

void store(const std::string& path, const std::string& bytes)
{
    std::ofstream{path, std::ios::binary}.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// ---- the same values

std::int32_t code_of(H5T_class_t type_class)
{
    return type_class == H5T_STRING ? 1 : type_class == H5T_INTEGER ? 2 : 3;
}

/// An item as HDF5 describes it.
struct Item {
    std::string name;
    std::int32_t kob_type;
    std::size_t size;
    std::vector<hsize_t> dims;
    bool is_plain; ///< not in chunks, and not empty

    [[nodiscard]] std::size_t bytes() const
    {
        std::size_t product = size;
        for (const hsize_t extent : dims) product *= extent;
        return product;
    }
};

Item described(const std::string& name, hid_t type, hid_t space)
{
    std::array<hsize_t, H5S_MAX_RANK> dims{};
    const int rank = H5Sget_simple_extent_dims(space, dims.data(), nullptr);
    return {name, code_of(H5Tget_class(type)), H5Tget_size(type), {dims.begin(), dims.begin() + rank}, true};
}

std::vector<Item> attributes_of(hid_t group)
{
    std::vector<Item> items;
    H5O_info2_t info{};
    H5Oget_info3(group, &info, H5O_INFO_NUM_ATTRS);
    for (hsize_t i = 0; i < info.num_attrs; ++i) {
        const Hid attribute = H5Aopen_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, i, H5P_DEFAULT, H5P_DEFAULT);
        std::array<char, 64> name{};
        H5Aget_name(attribute, name.size(), name.data());
        items.push_back(described(name.data(), Hid{H5Aget_type(attribute)}, Hid{H5Aget_space(attribute)}));
    }
    return items;
}

std::vector<Item> datasets_of(hid_t group)
{
    std::vector<Item> items;
    H5G_info_t info{};
    H5Gget_info(group, &info);
    for (hsize_t i = 0; i < info.nlinks; ++i) {
        std::array<char, 64> name{};
        H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, i, name.data(), name.size(), H5P_DEFAULT);
        const Hid dataset = H5Dopen2(group, name.data(), H5P_DEFAULT);
        items.push_back(described(name.data(), Hid{H5Dget_type(dataset)}, Hid{H5Dget_space(dataset)}));
        items.back().is_plain = H5Pget_layout(Hid{H5Dget_create_plist(dataset)}) != H5D_CHUNKED;
    }
    return items;
}

/// Paths of the blocks below a handle, as the library lists them.
std::vector<std::string> listed(std::int64_t handle)
{
    std::int32_t store = 1, quiet = 0, capacity = 0, count = 0, status = 77;
    std::int64_t path_size = 0, length = 0;
    std::int32_t* keys = nullptr;
    std::int64_t* offsets = nullptr;
    char* paths = nullptr;
    kob_lookup(&handle, &store, &quiet, &capacity, &path_size, &count, &length, &keys, &offsets, &paths, &status);
    std::vector<std::string> result{"status " + std::to_string(status)};
    for (std::int32_t i = 0; i < count && status == 0; ++i) {
        result.push_back(std::to_string(keys[i]) + " " + (paths + offsets[i]));
    }
    std::free(keys);
    std::free(offsets);
    std::free(paths);
    return result;
}

TEST(Plain, EveryItemOfEveryKindIsWhatHdf5Reads)
{
    KobFile file;
    write_model_kinds(file);
    write_result_kinds(file);
    file.reopen(update);
    const std::vector<std::string> blocks = listed(file.handle());
    ASSERT_THAT(blocks.size(), Gt(10U));
    file.reopen(read_only);
    EXPECT_EQ(listed(file.handle()), blocks);
    std::size_t compared = 0;
    for (std::size_t i = 1; i < blocks.size(); ++i) {
        const std::string path = blocks[i].substr(blocks[i].find(' ') + 1);
        const Hid group = open_group(file.handle(), path);
        const std::unique_ptr<kob::plain::Block> block = kob::plain::Block::of(group);
        ASSERT_TRUE(block) << path;
        const auto compare = [&](const Item& item, bool is_attribute) {
            std::vector<char> by_hdf5(item.bytes() + 1, '#');
            std::vector<char> short_way = by_hdf5;
            const auto rank = static_cast<std::int32_t>(item.dims.size());
            std::array<std::int32_t, 2> params{};
            std::int32_t flags = 0;
            const kob::plain::Request request{item.name.c_str(), item.kob_type, item.size,
                                              item.dims.data(),  rank,          short_way.data()};
            const std::int32_t status =
                is_attribute
                    ? kob::KOB_H5Aread(item.name.c_str(), by_hdf5.data(), item.kob_type, item.size, item.dims.data(),
                                       rank, group, nullptr)
                    : kob::KOB_H5Dread(item.name.c_str(), by_hdf5.data(), item.kob_type, item.size, item.dims.data(),
                                       rank, nullptr, nullptr, 0, group, &flags, params.data(), nullptr);
            ASSERT_EQ(status, 0);
            EXPECT_EQ(is_attribute ? block->read_attribute(request) : block->read_dataset(request), item.is_plain);
            if (item.is_plain) {
                EXPECT_EQ(short_way, by_hdf5);
                ++compared;
            }
        };
        for (const Item& item : attributes_of(group)) {
            SCOPED_TRACE(path + ", attribute " + item.name);
            EXPECT_TRUE(block->has_attribute(item.name));
            compare(item, true);
        }
        for (const Item& item : datasets_of(group)) {
            SCOPED_TRACE(path + ", dataset " + item.name);
            EXPECT_EQ(block->has_link(item.name), true);
            compare(item, false);
        }
        EXPECT_FALSE(block->has_attribute("no such"));
        EXPECT_EQ(block->has_link("no such"), false);
    }
    EXPECT_THAT(compared, Gt(100U));
}

// ---- what is left to HDF5

/// A file with a group "g" that holds whatever `fill` puts there; reopened read only.
struct OddFile {
    explicit OddFile(const std::function<void(hid_t)>& fill, hid_t creation = H5P_DEFAULT, hid_t access = H5P_DEFAULT)
    {
        const Hid file = H5Fcreate(temporary.path().c_str(), H5F_ACC_TRUNC, creation, access);
        fill(create_group(file, "g"));
    }
    [[nodiscard]] Hid group() const { return H5Gopen2(Hid{open_file(temporary.path())}, "g", H5P_DEFAULT); }

    TempFile temporary;
};

void add_attribute(hid_t group, const char* name, hid_t type, hid_t space)
{
    const std::array<char, 64> zeros{};
    const Hid attribute = H5Acreate2(group, name, type, space, H5P_DEFAULT, H5P_DEFAULT);
    H5Awrite(attribute, type, zeros.data());
}

void add_dataset(hid_t group, const char* name, hid_t type, hid_t space, hid_t creation = H5P_DEFAULT)
{
    const std::array<char, 256> zeros{};
    const Hid dataset = H5Dcreate2(group, name, type, space, H5P_DEFAULT, creation, H5P_DEFAULT);
    H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, zeros.data());
}

bool reads_integer(hid_t group, const char* name)
{
    std::int32_t value = 7;
    const std::unique_ptr<kob::plain::Block> block = kob::plain::Block::of(group);
    return block && block->read_dataset({name, 2, 4, nullptr, 0, &value}) && value == 0;
}

bool is_walked(hid_t group)
{
    return kob::plain::walk(group, [](kob::plain::File&, const kob::plain::Found&) {});
}

TEST(Plain, AnOrdinaryGroupIsRead)
{
    const OddFile file{[](hid_t group) {
        add_attribute(group, "a", H5T_STD_I32LE, Hid{H5Screate(H5S_SCALAR)});
        add_dataset(group, "d", H5T_STD_I32LE, Hid{H5Screate(H5S_SCALAR)});
    }};
    EXPECT_TRUE(reads_integer(file.group(), "d"));
    EXPECT_TRUE(is_walked(file.group()));
}

TEST(Plain, AFileThatCanBeWrittenIsLeftToHdf5)
{
    const OddFile file{[](hid_t group) { add_dataset(group, "d", H5T_STD_I32LE, Hid{H5Screate(H5S_SCALAR)}); }};
    const Hid writable = open_file(file.temporary.path(), H5F_ACC_RDWR);
    EXPECT_FALSE(kob::plain::Block::of(open_group(writable, "g")));
    EXPECT_FALSE(is_walked(writable));
    // HDF5 shares an open file: a second, read-only identifier sees what the first has not written yet.
    EXPECT_FALSE(kob::plain::Block::of(file.group()));
}

TEST(Plain, OtherFormatsAndDriversAreLeftToHdf5)
{
    const auto fill = [](hid_t group) { add_dataset(group, "d", H5T_STD_I32LE, Hid{H5Screate(H5S_SCALAR)}); };
    const Hid latest = H5Pcreate(H5P_FILE_ACCESS);
    H5Pset_libver_bounds(latest, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST);
    EXPECT_FALSE(kob::plain::Block::of(OddFile(fill, H5P_DEFAULT, latest).group()));
    const Hid with_user_block = H5Pcreate(H5P_FILE_CREATE);
    H5Pset_userblock(with_user_block, 512);
    EXPECT_FALSE(kob::plain::Block::of(OddFile(fill, with_user_block).group()));
    const Hid narrow = H5Pcreate(H5P_FILE_CREATE);
    H5Pset_sizes(narrow, 4, 4);
    EXPECT_FALSE(kob::plain::Block::of(OddFile(fill, narrow).group()));

    const OddFile file{fill};
    const Hid in_memory = H5Pcreate(H5P_FILE_ACCESS);
    H5Pset_fapl_core(in_memory, 4096, 0);
    const Hid opened = H5Fopen(file.temporary.path().c_str(), H5F_ACC_RDONLY, in_memory);
    EXPECT_FALSE(kob::plain::Block::of(open_group(opened, "g")));
    EXPECT_FALSE(is_walked(opened));
}

TEST(Plain, AFileThatLostItsNameIsLeftToHdf5)
{
    const OddFile file{[](hid_t group) { add_dataset(group, "d", H5T_STD_I32LE, Hid{H5Screate(H5S_SCALAR)}); }};
    const Hid group = file.group();
    std::filesystem::rename(file.temporary.path(), file.temporary.path() + ".moved");
    EXPECT_FALSE(kob::plain::Block::of(group));
    store(file.temporary.path(), bytes_of(file.temporary.path() + ".moved"));
    EXPECT_FALSE(kob::plain::Block::of(group)) << "another file of that name";
}

TEST(Plain, UnusualLinksAreLeftToHdf5)
{
    for (const bool is_soft : {true, false}) {
        const OddFile file{[is_soft](hid_t group) {
            add_dataset(group, "d", H5T_STD_I32LE, Hid{H5Screate(H5S_SCALAR)});
            is_soft ? H5Lcreate_soft("d", group, "x", H5P_DEFAULT, H5P_DEFAULT)
                    : H5Lcreate_external("other.kob", "d", group, "x", H5P_DEFAULT, H5P_DEFAULT);
        }};
        EXPECT_FALSE(reads_integer(file.group(), "d"));
        EXPECT_FALSE(is_walked(file.group()));
    }
    const OddFile named{[](hid_t group) {
        const Hid type = H5Tcopy(H5T_STD_I32LE);
        H5Tcommit2(group, "t", type, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    }};
    EXPECT_FALSE(is_walked(named.group())) << "neither a group nor a dataset";
}

TEST(Plain, UnusualAttributesAreLeftToHdf5)
{
    const Hid scalar = H5Screate(H5S_SCALAR);
    const Hid text = H5Tcopy(H5T_C_S1);
    H5Tset_size(text, H5T_VARIABLE);
    for (const hid_t type : {H5T_STD_I16LE, H5T_STD_I32BE, H5T_STD_U32LE, H5T_IEEE_F64BE, static_cast<hid_t>(text)}) {
        const OddFile file{[&](hid_t group) { H5Aclose(H5Acreate2(group, "a", type, scalar, 0, 0)); }};
        EXPECT_FALSE(kob::plain::Block::of(file.group()));
    }
    const OddFile empty{[](hid_t group) { add_attribute(group, "a", H5T_STD_I32LE, Hid{H5Screate(H5S_NULL)}); }};
    EXPECT_FALSE(kob::plain::Block::of(empty.group()));
    const OddFile many{[&](hid_t group) {
        const Hid dense = H5Pcreate(H5P_GROUP_CREATE);
        H5Pset_attr_phase_change(dense, 0, 0);
        const Hid inner = H5Gcreate2(group, "dense", H5P_DEFAULT, dense, H5P_DEFAULT);
        add_attribute(inner, "a", H5T_STD_I32LE, scalar);
    }};
    EXPECT_TRUE(kob::plain::Block::of(many.group()));
}

TEST(Plain, UnusualDatasetsAreLeftToHdf5)
{
    const Hid scalar = H5Screate(H5S_SCALAR);
    const hsize_t ten = 10;
    const Hid row = H5Screate_simple(1, &ten, nullptr);
    const Hid filled = H5Pcreate(H5P_DATASET_CREATE);
    const std::int32_t one = 1;
    H5Pset_fill_value(filled, H5T_NATIVE_INT, &one);
    const Hid chunked = H5Pcreate(H5P_DATASET_CREATE);
    H5Pset_chunk(chunked, 1, &ten);
    const Hid outside = H5Pcreate(H5P_DATASET_CREATE);
    H5Pset_external(outside, "other.raw", 0, 40);
    const OddFile file{[&](hid_t group) {
        add_dataset(group, "plain", H5T_STD_I32LE, scalar);
        add_dataset(group, "filled", H5T_STD_I32LE, scalar, filled);
        add_dataset(group, "big endian", H5T_STD_I32BE, scalar);
        add_dataset(group, "unsigned", H5T_STD_U32LE, scalar);
        add_dataset(group, "row", H5T_STD_I32LE, row);
        add_dataset(group, "chunked", H5T_STD_I32LE, row, chunked);
        H5Dclose(H5Dcreate2(group, "outside", H5T_STD_I32LE, row, H5P_DEFAULT, outside, H5P_DEFAULT));
        H5Dclose(H5Dcreate2(group, "never written", H5T_STD_I32LE, scalar, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
        create_group(group, "group");
    }};
    const Hid group = file.group();
    const std::unique_ptr<kob::plain::Block> block = kob::plain::Block::of(group);
    ASSERT_TRUE(block);
    std::vector<std::string> read;
    std::array<std::int32_t, 10> values{};
    for (const char* name : {"plain", "filled", "big endian", "unsigned", "never written", "group", "missing"}) {
        if (block->read_dataset({name, 2, 4, nullptr, 0, values.data()})) read.emplace_back(name);
    }
    for (const char* name : {"row", "chunked", "outside"}) {
        if (block->read_dataset({name, 2, 4, &ten, 1, values.data()})) read.emplace_back(name);
    }
    EXPECT_THAT(read, ElementsAre("plain", "row"));
    const hsize_t nine = 9;
    EXPECT_FALSE(block->read_dataset({"row", 2, 4, &nine, 1, values.data()})) << "another extent";
    EXPECT_FALSE(block->read_dataset({"row", 2, 4, nullptr, 0, values.data()})) << "not one element";
    EXPECT_FALSE(block->read_dataset({"row", 2, 8, &ten, 1, values.data()})) << "another size";
    EXPECT_FALSE(block->read_dataset({"row", 3, 4, &ten, 1, values.data()})) << "another class";
}

// ---- files made to do harm

/// A file of eight million bytes.
OddFile large_file()
{
    return OddFile{[](hid_t group) {
        const Hid creation = H5Pcreate(H5P_DATASET_CREATE);
        H5Pset_alloc_time(creation, H5D_ALLOC_TIME_EARLY);
        const Hid large =
            H5Dcreate2(group, "d", H5T_STD_I32LE, space_of({2'000'000}), H5P_DEFAULT, creation, H5P_DEFAULT);
    }};
}

/// So many pieces of this size, each a little behind the one before, can be had.
std::size_t pieces_until_surprise(hid_t group, kob::plain::File::Pieces mode, std::size_t size)
{
    std::optional<kob::plain::File> file = kob::plain::File::of(group, mode);
    if (!file) return 0;
    std::size_t pieces = 0;
    try {
        for (; pieces < 5000; ++pieces) file->at(pieces, size);
    } catch (const kob::plain::Surprise&) { // what the count is for
    }
    return pieces;
}

TEST(HarmfulPlain, PiecesThatOverlapDoNotFillTheMemory)
{
    const OddFile odd = large_file();
    const Hid group = odd.group();
    for (const auto mode : {kob::plain::File::Pieces::kept, kob::plain::File::Pieces::passing}) {
        EXPECT_EQ(pieces_until_surprise(group, mode, 4'000'000), 16U) << "64 MiB";
    }
}

TEST(Plain, APieceStaysAfterItWasAskedForHoweverOldItIs)
{
    const OddFile odd = large_file();
    const std::string all = bytes_of(odd.temporary.path());
    using kob::plain::File;
    const Hid group = odd.group();
    // Whatever number of pieces is held: the first, which is the oldest, is used once more before others are read.
    for (std::size_t before = 1; before < 200; ++before) {
        std::optional<File> file = File::of(group, File::Pieces::passing);
        ASSERT_TRUE(file);
        constexpr std::size_t apart = 10'000;
        for (std::size_t i = 0; i < before; ++i) file->at(i * apart, 500);
        const kob::plain::Bytes again = file->at(0, 500);
        for (std::size_t i = 1; i < File::surely_held; ++i) {
            file->at((before + i) * apart, 500);
            ASSERT_EQ(std::memcmp(again.data(), all.data(), 500), 0) << before << " pieces before, " << i << " behind";
        }
    }
}

TEST(HarmfulPlain, TheSameIsNotReadOverAndOver)
{
    const OddFile odd = large_file();
    const std::size_t pieces = pieces_until_surprise(odd.group(), kob::plain::File::Pieces::passing, 1'000'000);
    EXPECT_THAT(pieces, testing::AllOf(Gt(500U), testing::Lt(700U))) << "64 times 8 MB and a little";
}

/// Names of a group that lie one in the other: eight names of 200 characters in a heap of some hundred bytes.
std::string with_nested_names(std::string bytes)
{
    const auto number_at = [&](std::size_t at) {
        std::uint64_t number = 0;
        std::memcpy(&number, &bytes.at(at), sizeof number);
        return number;
    };
    const auto put = [&](std::size_t at, std::uint64_t number) { std::memcpy(&bytes.at(at), &number, sizeof number); };
    std::size_t leaf = bytes.find("SNOD");
    while (bytes.at(leaf + 6) != 8) leaf = bytes.find("SNOD", leaf + 1);
    std::size_t tree = bytes.find("TREE");
    while (number_at(tree + 32) != leaf) tree = bytes.find("TREE", tree + 1);
    const std::uint64_t first = number_at(leaf + 8);
    for (std::size_t i = 0; i < 8; ++i) put(leaf + 8 + 40 * i, first + i);
    put(tree + 40, first + 7);
    return bytes;
}

TEST(HarmfulPlain, NamesHaveNoPlaceInCommon)
{
    const OddFile odd{[](hid_t group) {
        create_group(group, "abcdefgh" + std::string(192, 'z'));
        for (const char* name : {"b", "c", "d", "e", "f", "g", "h"}) create_group(group, name);
    }};
    EXPECT_TRUE(is_walked(odd.group()));
    store(odd.temporary.path(), with_nested_names(bytes_of(odd.temporary.path())));
    EXPECT_FALSE(is_walked(odd.group()));
}

// ---- damaged files

constexpr char first_block[] = "singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/kobblock";
constexpr char second_block[] = "singlestate/state000000000012/entityresults/NODE/STRESS/kobblock";

/// The bytes of a file with two blocks: one whose values lie in the header, one whose values are elsewhere.
std::string file_to_damage()
{
    KobFile file;
    EntityResults block = EntityResults::sample();
    EXPECT_EQ(block.write(file.handle(), 12), 0);
    block.etypvar = "STRESS";
    block.nent = 1500;
    block.entid.assign(1500, 3);
    block.res.assign(4500, 0.5);
    EXPECT_EQ(block.write(file.handle(), 12), 0);
    file.close();
    return bytes_of(file.path());
}

/// Changes some bytes, mostly near what tells where things are and what they are.
std::string damaged(std::string bytes, std::mt19937& random)
{
    const std::vector<std::string> marks{
        "TREE",    "SNOD", "HEAP",     std::string("block\0", 6), std::string("nent\0", 5),
        "indexic", "etyp", "kobblock", std::string("res\0", 4)};
    for (unsigned changes = 1 + random() % 3; changes > 0; --changes) {
        const std::string& mark = marks[random() % marks.size()];
        std::vector<std::size_t> places;
        for (std::size_t at = bytes.find(mark); at != std::string::npos; at = bytes.find(mark, at + 1)) {
            places.push_back(at);
        }
        std::size_t at = random() % bytes.size();
        if (!places.empty() && random() % 8 != 0) at = places[random() % places.size()] + random() % 400 - 100;
        const std::array<unsigned, 4> values{static_cast<unsigned>(random()), 0, 255,
                                             static_cast<unsigned char>(bytes[at % bytes.size()]) ^ 1U};
        bytes[at % bytes.size()] = static_cast<char>(values[random() % values.size()]);
    }
    if (random() % 16 == 0) bytes.resize(random() % bytes.size());
    return bytes;
}

/// All that a caller sees of a file: the listing, and what two reads give and print. Nothing if it does not open.
std::string seen(const std::string& path, std::int32_t option)
{
    CapturedStream captured;
    std::string all;
    std::int64_t handle = 0;
    std::int32_t none = 0, status = 77;
    const auto length = static_cast<std::int32_t>(path.size());
    KOB_OPEN(path.data(), &length, "", &none, "", &none, &handle, &none, &option, &status);
    if (status != 0) {
        captured.err();
        return {};
    }
    for (const std::string& line : listed(handle)) all += line + "\n";
    for (const char* name : {first_block, second_block}) {
        const std::int32_t terminated = -1, open_only = 1, everything = 2;
        std::int64_t block = -1;
        KOB_H5GOPEN(&handle, name, &terminated, &open_only, &block, &status);
        all += std::string{name} + " " + std::to_string(status) + "\n";
        if (status != 0) continue;
        EntityResults b;
        b.indexident.assign(64, -1);
        b.indexval.assign(64, -1);
        b.entid.assign(4096, -1);
        b.fid.assign(4096, -1);
        b.res.assign(8192, -1);
        std::vector<char> operators(4096, '#');
        std::vector<double> weight(4096, -1);
        std::int32_t filters = -7;
        std::array<std::int32_t, 2> params{-7, -7};
        const auto read = [&](const std::int32_t& pass) {
            KOB_READ_ENTITYRESULTS(&block, &pass, b.etyp.data(), &b.nent, b.etypvar.data(), &b.ncoo, b.etypzone.data(),
                                   &b.zoneid, b.etypframe.data(), &b.fswitch, &b.dmpswitch, &b.nindex, &b.indexic,
                                   b.indexident.data(), b.indexval.data(), b.entid.data(), &b.fidglob, b.fid.data(),
                                   operators.data(), weight.data(), b.res.data(), &filters, params.data(), &status);
        };
        const std::int32_t attributes = 1;
        read(attributes);
        all += std::to_string(status) + "\n";
        if (status > 0 && b.nent >= 0 && b.nent <= 1500 && b.ncoo >= 0 && b.ncoo <= 3 && b.nindex <= 64) {
            read(everything);
            all +=
                std::to_string(status) + " " + std::to_string(filters) + std::to_string(params[0] + params[1]) + "\n";
            for (const std::int32_t number : {b.nent, b.ncoo, b.zoneid, b.fswitch, b.dmpswitch, b.nindex, b.indexic,
                                              b.fidglob, b.indexident[0], b.entid[0], b.entid[999]}) {
                all += std::to_string(number) + " ";
            }
            all += b.etyp.data() + std::string{b.etypvar.data(), 256} + std::string{b.etypzone.data(), 256};
            for (const double number : b.res) all += std::to_string(number);
        }
        KOB_H5GCLOSE(&block, &status);
    }
    KOB_CLOSE(&handle, &status);
    return all + captured.err();
}

TEST(DamagedPlain, IsSeenAsHdf5SeesIt)
{
    const std::string sound = file_to_damage();
    const TempFile short_way;
    const TempFile by_hdf5; // opened for writing: that leaves the short way out
    store(short_way.path(), sound);
    const std::string undamaged = seen(short_way.path(), read_only);
    EXPECT_THAT(undamaged, testing::HasSubstr("STRESS"));
    std::size_t differing = 0;
    for (unsigned seed = 0; seed < 250; ++seed) {
        std::mt19937 random{seed};
        const std::string bytes = damaged(sound, random);
        store(short_way.path(), bytes);
        store(by_hdf5.path(), bytes);
        const std::string ours = seen(short_way.path(), read_only);
        const std::string theirs = seen(by_hdf5.path(), update);
        // To open a file for reading is not quite the same to HDF5 as to open it for writing; that is not our affair.
        if (ours.empty() || theirs.empty()) continue;
        EXPECT_EQ(ours, theirs) << "seed " << seed;
        differing += ours != undamaged ? 1 : 0;
    }
    EXPECT_THAT(differing, Gt(50U)) << "or the damage was none";
}

TEST(DamagedPlain, NothingIsReadFromOutside)
{
    const std::string sound = file_to_damage();
    const TempFile file;
    for (unsigned seed = 0; seed < 1000; ++seed) {
        std::mt19937 random{1000 + seed};
        store(file.path(), sound);
        // HDF5 opens the sound file; the damage comes behind its back.
        const Hid opened = open_file(file.path());
        const Hid group = open_group(opened, std::string{"post/"} + (seed % 2 == 0 ? first_block : second_block));
        store(file.path(), damaged(sound, random));
        std::size_t length = 0;
        kob::plain::walk(opened, [&](kob::plain::File& plain, const kob::plain::Found& found) {
            length += found.path.size() + kob::plain::attribute_of(plain, found.object, "block").values.size();
        });
        std::vector<double> values(4500);
        const std::array<hsize_t, 2> large{1500, 3}, small{4, 3};
        if (const std::unique_ptr<kob::plain::Block> block = kob::plain::Block::of(group)) {
            for (const auto& dims : {large, small}) {
                length += block->read_dataset({"res", 3, 8, dims.data(), 2, values.data()}) ? 1 : 0;
            }
            std::array<char, 256> text{};
            length += block->read_attribute({"etypvar", 1, 256, nullptr, 0, text.data()}) ? 1 : 0;
        }
        EXPECT_LT(length, 100'000U);
    }
}

} // namespace
