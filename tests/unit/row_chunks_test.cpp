// SPDX-License-Identifier: BSD-3-Clause
// Rows that are chunks are told from others, and rows of any dataset arrive where they belong.
#include "kob_row_chunks.hpp"

#include "kob_storage.hpp"
#include "kob_storage_filters.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/chunked_dataset.hpp"
#include "support/dice.hpp"
#include "support/file_bytes.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;

namespace {

using Extents = std::vector<hsize_t>;
using AddFilters = std::function<void(hid_t)>;

constexpr std::size_t width = 4; // rows of 3 x 4 numbers
constexpr std::size_t row_elements = 3 * width;
constexpr std::size_t row_bytes = row_elements * 8;

void no_filters(hid_t) {}
void shuffle(hid_t list) { H5Pset_shuffle(list); }
void fletcher(hid_t list) { H5Pset_fletcher32(list); }
void optional_deflate(hid_t list) { H5Pset_deflate(list, 6); }

class RowChunks : public testing::Test {
protected:
    TempFile path_{"rows.h5"};
    Hid file_ = create_file(path_.path());

    /// [rows, 3, 4], growing by rows.
    Hid create(const Extents& chunk, hid_t type = H5T_NATIVE_DOUBLE, const AddFilters& add = no_filters,
               hsize_t rows = 0)
    {
        const Hid list = chunked_list(chunk, add);
        const Hid space = space_of({rows, 3, width}, {H5S_UNLIMITED, 3, width});
        return Hid{H5Dcreate2(file_, "res", type, space, H5P_DEFAULT, list, H5P_DEFAULT)};
    }
};

void grow(hid_t dataset, hsize_t rows)
{
    const Extents extents{rows, 3, width};
    ASSERT_GE(H5Dset_extent(dataset, extents.data()), 0);
}

void write_rows(hid_t dataset, hsize_t first, hsize_t count)
{
    grow(dataset, first + count);
    const std::vector<double> values(static_cast<std::size_t>(count) * row_elements, 1.5);
    ASSERT_GE(write_block(dataset, H5T_NATIVE_DOUBLE, {{first, 0, 0}, {count, 3, width}}, values.data()), 0);
}

/// Writes one row with the library, as a series is written.
std::int32_t write_row(hid_t file, std::int64_t row, const double* values, std::size_t stored_size,
                       std::size_t lines = 3, std::size_t columns = width)
{
    const std::array<hsize_t, 3> dims{H5S_UNLIMITED, lines, columns};
    const std::array<std::int64_t, 3> count{1, static_cast<std::int64_t>(lines), static_cast<std::int64_t>(columns)};
    const std::array<std::int64_t, 3> start{row, 0, 0};
    const std::array<std::int32_t, 2> params{};
    return kob::KOB_H5Dwrite("res", values, kob::type_code::real, sizeof(double), stored_size, dims.data(), 3,
                             count.data(), start.data(), kob::access_mode::block, file, 0, params.data(),
                             {.origin = kob::Origin::first});
}

} // namespace

TEST_F(RowChunks, A_chunk_for_each_row_is_told_once_two_rows_are_there)
{
    const Hid dataset = create({1, 3, width});
    EXPECT_FALSE(kob::has_row_chunks(dataset, row_elements, sizeof(double)));
    write_rows(dataset, 0, 1);
    EXPECT_FALSE(kob::has_row_chunks(dataset, row_elements, sizeof(double)));
    write_rows(dataset, 1, 1);
    EXPECT_TRUE(kob::has_row_chunks(dataset, row_elements, sizeof(double)));
    write_rows(dataset, 2, 40);
    EXPECT_TRUE(kob::has_row_chunks(dataset, row_elements, sizeof(double)));
    EXPECT_FALSE(kob::has_row_chunks(dataset, row_elements / 2, sizeof(double)));
}

TEST_F(RowChunks, Chunks_of_a_rows_size_that_hold_parts_of_two_rows_are_none)
{
    const Hid dataset = create({2, 3, width / 2});
    write_rows(dataset, 0, 6);
    EXPECT_FALSE(kob::has_row_chunks(dataset, row_elements, sizeof(double)));
}

TEST_F(RowChunks, Parts_of_rows_and_several_rows_are_none)
{
    for (const Extents& chunk : {Extents{1, 3, width / 2}, Extents{1, 1, width}, Extents{2, 3, width},
                                 Extents{3, 1, width}, Extents{5, 3, width}}) {
        const Hid dataset = create(chunk);
        write_rows(dataset, 0, 12);
        EXPECT_FALSE(kob::has_row_chunks(dataset, row_elements, sizeof(double))) << chunk[0] << chunk[1] << chunk[2];
        ASSERT_GE(H5Ldelete(file_, "res", H5P_DEFAULT), 0);
    }
}

TEST_F(RowChunks, Without_the_second_row_nothing_is_told)
{
    const Hid dataset = create({1, 3, width});
    write_rows(dataset, 0, 1);
    write_rows(dataset, 5, 3);
    EXPECT_FALSE(kob::has_row_chunks(dataset, row_elements, sizeof(double)));
}

// The sizes in the index of a damaged file are not those of the chunks. Rows of 1,000 elements and more are stored in
// parts by the library itself.
TEST_F(RowChunks, An_index_that_calls_half_rows_rows_is_not_believed_of_rows_that_may_lie_in_parts)
{
    constexpr std::size_t half_row = 1000;
    constexpr std::size_t whole_row = 2 * half_row;
    const std::vector<double> half(half_row, 1.5);
    {
        const Hid list = chunked_list({1, 1, half_row}, no_filters);
        const Hid dataset{H5Dcreate2(file_, "res", H5T_NATIVE_DOUBLE,
                                     space_of({2, 2, half_row}, {H5S_UNLIMITED, 2, half_row}), H5P_DEFAULT, list,
                                     H5P_DEFAULT)};
        for (hsize_t row = 0; row < 2; ++row) {
            ASSERT_GE(write_block(dataset, H5T_NATIVE_DOUBLE, {{row, 0, 0}, {1, 1, half_row}}, half.data()), 0);
        }
    }
    {
        const Hid closed = std::move(file_);
    }
    const auto size_without_mask = [](std::size_t bytes) { // as a key of the index has it, no filters left out
        return std::string{static_cast<char>(bytes), static_cast<char>(bytes >> 8U)} + std::string(6, '\0');
    };
    EXPECT_EQ(damage_bytes(path_.path(), size_without_mask(half_row * 8), size_without_mask(whole_row * 8)), 2);
    file_ = open_file(path_.path(), H5F_ACC_RDWR);
    const QuietHdf5 quiet;
    EXPECT_FALSE(kob::has_row_chunks(Hid{H5Dopen2(file_, "res", H5P_DEFAULT)}, whole_row, sizeof(double)));
    std::vector<double> values(whole_row);
    for (std::size_t i = 0; i < whole_row; ++i) values[i] = static_cast<double>(i) + 0.5;
    ASSERT_EQ(write_row(file_, 2, values.data(), sizeof(double), 2, half_row), 0);
    const std::vector<double> stored = stored_reals(file_, "res");
    EXPECT_EQ((std::vector<double>{stored.end() - static_cast<std::ptrdiff_t>(whole_row), stored.end()}), values);
}

// Sizes that are no row's tell that rows are no chunks, whatever the layout says.
TEST_F(RowChunks, Rows_of_which_only_a_part_was_written_are_none)
{
    const std::vector<double> half(row_elements / 2, 1.5);
    const Hid dataset = create({1, 3, width / 2}, H5T_NATIVE_DOUBLE, no_filters, 2);
    for (hsize_t row = 0; row < 2; ++row) {
        ASSERT_GE(write_block(dataset, H5T_NATIVE_DOUBLE, {{row, 0, 0}, {1, 3, width / 2}}, half.data()), 0);
    }
    EXPECT_FALSE(kob::has_row_chunks(dataset, row_elements, sizeof(double)));
}

TEST_F(RowChunks, A_row_of_one_element_is_a_chunk_where_each_row_is_one)
{
    for (const hsize_t rows_of_chunk : {1, 2}) {
        const Extents chunk{rows_of_chunk, 1};
        const Hid list = chunked_list(chunk, no_filters);
        const Hid dataset{H5Dcreate2(file_, "index", H5T_NATIVE_INT, space_of({3, 1}, {H5S_UNLIMITED, 1}), H5P_DEFAULT,
                                     list, H5P_DEFAULT)};
        const std::vector<std::int32_t> numbers{1, 2, 3};
        ASSERT_GE(H5Dwrite(dataset, H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers.data()), 0);
        EXPECT_EQ(kob::has_row_chunks(dataset, 1, sizeof(std::int32_t)), rows_of_chunk == 1);
        ASSERT_GE(H5Ldelete(file_, "index", H5P_DEFAULT), 0);
    }
}

// An index of the newest format is walked through row by row, those that are not there included: none is walked through.
TEST_F(RowChunks, The_old_format_is_told_from_newer_ones)
{
    EXPECT_TRUE(kob::header_facts(create({1, 3, width})).has_old_format);
    const TempFile newest{"newest.h5"};
    const Hid list{H5Pcreate(H5P_FILE_ACCESS)};
    ASSERT_GE(H5Pset_libver_bounds(list, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST), 0);
    file_ = Hid{H5Fcreate(newest.path().c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, list)};
    EXPECT_FALSE(kob::header_facts(create({1, 3, width})).has_old_format);
}

TEST_F(RowChunks, A_dataset_in_one_piece_has_none)
{
    put_dataset(file_, "one_piece", H5T_NATIVE_DOUBLE, {4, 3, width});
    const QuietHdf5 quiet;
    EXPECT_FALSE(kob::has_row_chunks(Hid{H5Dopen2(file_, "one_piece", H5P_DEFAULT)}, row_elements, sizeof(double)));
}

// Every row goes to the dataset as plain HDF5 would have put it, whatever the chunks, the stored type and the filters
// are: written in any order, over others, and with gaps.
TEST_F(RowChunks, Rows_of_any_dataset_come_back)
{
    struct Case {
        const char* name;
        Extents chunk;
        hid_t type;
        AddFilters add;
    };
    const std::vector<Case> cases{
        {"rows", {1, 3, width}, H5T_NATIVE_DOUBLE, no_filters},
        {"two half rows", {2, 3, width / 2}, H5T_NATIVE_DOUBLE, no_filters},
        {"three third rows", {3, 1, width}, H5T_NATIVE_DOUBLE, no_filters},
        {"half rows", {1, 3, width / 2}, H5T_NATIVE_DOUBLE, no_filters},
        {"several rows", {4, 3, width}, H5T_NATIVE_DOUBLE, no_filters},
        {"big-endian rows", {1, 3, width}, H5T_IEEE_F64BE, no_filters},
        {"rows of 4-byte numbers", {1, 3, width}, H5T_NATIVE_FLOAT, no_filters},
        {"two rows of 4-byte numbers", {2, 3, width}, H5T_NATIVE_FLOAT, no_filters},
        {"shuffled rows", {1, 3, width}, H5T_NATIVE_DOUBLE, shuffle},
        {"rows with checksums", {1, 3, width}, H5T_NATIVE_DOUBLE, fletcher},
        {"deflated rows", {1, 3, width}, H5T_NATIVE_DOUBLE, optional_deflate},
    };
    const QuietHdf5 quiet;
    Dice dice{4711};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::map<std::size_t, std::vector<double>> rows;
        std::size_t extent = 2;
        {
            const Hid dataset = create(c.chunk, c.type, c.add);
            write_rows(dataset, 0, 2);
            rows[0] = rows[1] = std::vector<double>(row_elements, 1.5);
        }
        for (int i = 0; i < 60; ++i) {
            const std::size_t row = dice.between(0, 39);
            std::vector<double> values(row_elements);
            for (double& value : values) value = static_cast<double>(dice.between(0, 1U << 20U)); // exact in 4 bytes
            ASSERT_EQ(write_row(file_, static_cast<std::int64_t>(row), values.data(), sizeof(double)), 0);
            rows[row] = values;
            extent = std::max(extent, row + 1);
        }
        ASSERT_EQ(stored_extents(file_, "res"), (Extents{extent, 3, width}));
        const std::vector<double> stored = stored_reals(file_, "res");
        for (std::size_t row = 0; row < extent; ++row) {
            const auto first = stored.begin() + static_cast<std::ptrdiff_t>(row * row_elements);
            const std::vector<double> expected =
                rows.contains(row) ? rows[row] : std::vector<double>(row_elements, 0.0);
            EXPECT_EQ((std::vector<double>{first, first + row_elements}), expected) << "row " << row;
        }
        ASSERT_GE(H5Ldelete(file_, "res", H5P_DEFAULT), 0);
    }
}

TEST_F(RowChunks, A_row_lies_in_the_file_as_HDF5_would_have_put_it)
{
    {
        const Hid dataset = create({1, 3, width});
        write_rows(dataset, 0, 2);
    }
    std::vector<double> values(row_elements);
    for (std::size_t i = 0; i < row_elements; ++i) values[i] = 0.25 * static_cast<double>(i) - 1;
    ASSERT_EQ(write_row(file_, 2, values.data(), sizeof(double)), 0);
    const RawChunk chunk = raw_chunk(Hid{H5Dopen2(file_, "res", H5P_DEFAULT)}, {2, 0, 0});
    EXPECT_EQ(chunk.filter_mask, 0U);
    ASSERT_EQ(chunk.bytes.size(), row_bytes);
    std::vector<double> stored(row_elements);
    std::memcpy(stored.data(), chunk.bytes.data(), row_bytes);
    EXPECT_EQ(stored, values);
}

// A chunk that the process holds in a cache of its own is not the last word.
TEST_F(RowChunks, A_row_that_somebody_holds_in_HDF5s_cache_is_replaced)
{
    const Hid held = create({1, 3, width});
    write_rows(held, 0, 3);
    std::vector<double> values(row_elements, 7.0);
    ASSERT_EQ(write_row(file_, 1, values.data(), sizeof(double)), 0);
    std::vector<double> seen(row_elements);
    ASSERT_GE(read_block(held, H5T_NATIVE_DOUBLE, {{1, 0, 0}, {1, 3, width}}, seen.data()), 0);
    EXPECT_EQ(seen, values);
}
