// SPDX-License-Identifier: BSD-3-Clause
// Floating numbers of another size in memory than in the file: whatever their shape, they are what HDF5 makes of them.
#include "kob_storage.hpp"
#include "kob_storage_convert.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;

namespace {

constexpr std::int32_t real_code = 3;
constexpr std::int32_t no_filters = 0;

template <class Number> hid_t native();
template <> hid_t native<float>() { return H5T_NATIVE_FLOAT; }
template <> hid_t native<double>() { return H5T_NATIVE_DOUBLE; }

template <class Number> using Bits = std::conditional_t<sizeof(Number) == 4, std::uint32_t, std::uint64_t>;

/// Equal as memory is, so that a NaN equals itself and -0 differs from 0.
template <class Number> std::vector<Bits<Number>> bits(const std::vector<Number>& numbers)
{
    std::vector<Bits<Number>> result;
    result.reserve(numbers.size());
    for (const Number number : numbers) {
        result.push_back(std::bit_cast<Bits<Number>>(number));
    }
    return result;
}

/// Numbers where a conversion can go wrong.
template <class Number> std::vector<Number> delicate_numbers()
{
    const double largest_float = std::numeric_limits<float>::max();
    const double half_step = std::ldexp(1.0, 103); // half of what the last bit of the largest float is worth
    std::vector<double> numbers{0.0,
                                1.0,
                                1.0 / 3.0,
                                1.0 + std::ldexp(1.0, -24), // ties between two floats
                                1.0 + 3 * std::ldexp(1.0, -24),
                                std::nextafter(1.0 + std::ldexp(1.0, -24), 2.0),
                                largest_float,
                                std::nextafter(largest_float, 0.0),
                                std::nextafter(largest_float, 1e300), // rounding leads back, HDF5 makes it infinity
                                largest_float + half_step,
                                std::nextafter(largest_float + half_step, 0.0),
                                std::ldexp(1.0, 128),
                                std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::infinity(),
                                std::numeric_limits<float>::min(),
                                std::numeric_limits<float>::denorm_min(),
                                std::ldexp(1.0, -150), // half of the smallest float
                                std::nextafter(std::ldexp(1.0, -150), 1.0),
                                3 * std::ldexp(1.0, -150),
                                std::ldexp(1.0, -127) + std::ldexp(1.0, -149),
                                std::numeric_limits<double>::min(),
                                std::numeric_limits<double>::denorm_min(),
                                std::numeric_limits<double>::quiet_NaN(),
                                10000.0};
    std::vector<Number> result;
    for (const double number : numbers) {
        result.push_back(static_cast<Number>(number));
        result.push_back(static_cast<Number>(-number));
    }
    // NaNs, signalling ones among them, with something in their last bits.
    for (const Bits<Number> payload : {Bits<Number>{1}, Bits<Number>{0x2aaaab}}) {
        const auto exponent = std::bit_cast<Bits<Number>>(std::numeric_limits<Number>::infinity());
        const Bits<Number> sign = Bits<Number>{1} << (8 * sizeof(Number) - 1);
        result.push_back(std::bit_cast<Number>(exponent | payload));
        result.push_back(std::bit_cast<Number>(exponent | payload | sign));
    }
    return result;
}

/// Delicate numbers at both ends and in between numbers of random bits and numbers of everyday size.
template <class Number> std::vector<Number> numbers_for(std::size_t count, unsigned seed)
{
    std::mt19937_64 random{seed};
    std::uniform_real_distribution<double> everyday{-1000, 1000};
    const std::vector<Number> delicate = delicate_numbers<Number>();
    std::vector<Number> numbers(count);
    for (std::size_t i = 0; i < count; ++i) {
        switch (i < delicate.size() || count - i <= delicate.size() ? 0 : random() % 4) {
        case 0:
            numbers[i] = delicate[i % delicate.size()];
            break;
        case 1:
            numbers[i] = std::bit_cast<Number>(static_cast<Bits<Number>>(random()));
            break;
        default:
            numbers[i] = static_cast<Number>(everyday(random));
            break;
        }
    }
    return numbers;
}

using Extents = std::vector<hsize_t>;

std::size_t elements_of(const Extents& extents)
{
    return std::accumulate(extents.begin(), extents.end(), std::size_t{1}, std::multiplies<>{});
}

constexpr hsize_t piece = kob::elements_of_piece;

/// Around the size of a piece, in one dimension and in several, with rows that are longer than a piece, too.
const std::vector<Extents>& shapes()
{
    static const std::vector<Extents> all{{1},
                                          {7000},
                                          {piece},
                                          {piece + 1},
                                          {3 * piece - 1},
                                          {piece / 3 + 1, 3},
                                          {40'000, 3},
                                          {40'001, 3, 2},
                                          {1, 40'000, 3},
                                          {3, piece + 5},
                                          {2, 3, piece + 1},
                                          {2, 2, 20'000, 3},
                                          {4, 1, 1, piece / 2 + 1}};
    return all;
}

std::int32_t write(hid_t at, const char* name, const Extents& extents, std::size_t memory_size, std::size_t stored_size,
                   const void* data)
{
    return kob::KOB_H5Dwrite(name, data, real_code, memory_size, stored_size, extents.data(),
                             static_cast<std::int32_t>(extents.size()), nullptr, nullptr, 0, at, no_filters, nullptr);
}

std::int32_t read(hid_t at, const char* name, const Extents& extents, std::size_t memory_size, void* data)
{
    return kob::KOB_H5Dread(name, data, real_code, memory_size, extents.data(),
                            static_cast<std::int32_t>(extents.size()), nullptr, nullptr, 0, at, nullptr, nullptr,
                            nullptr);
}

/// The values of a dataset, read by plain HDF5 into numbers of a type.
template <class Number> std::vector<Number> plainly_read(hid_t at, const char* name, std::size_t count)
{
    std::vector<Number> numbers(count);
    const Hid dataset{H5Dopen2(at, name, H5P_DEFAULT)};
    EXPECT_GE(H5Dread(dataset, native<Number>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers.data()), 0);
    return numbers;
}

template <class InMemory, class Stored> void expect_written_as_by_hdf5(const Extents& extents, unsigned seed)
{
    const TempFile temp;
    const Hid file = create_file(temp.path());
    const std::size_t count = elements_of(extents);
    const auto given = numbers_for<InMemory>(count, seed);
    put_dataset(file, "plain", native<Stored>(), extents, native<InMemory>(), given.data());
    ASSERT_EQ(write(file, "ours", extents, sizeof(InMemory), sizeof(Stored), given.data()), 0);
    EXPECT_EQ(bits(plainly_read<Stored>(file, "ours", count)), bits(plainly_read<Stored>(file, "plain", count)));

    // Once more into the dataset that is there.
    const auto others = numbers_for<InMemory>(count, seed + 1000);
    put_dataset(file, "others", native<Stored>(), extents, native<InMemory>(), others.data());
    ASSERT_EQ(write(file, "ours", extents, sizeof(InMemory), sizeof(Stored), others.data()), 0);
    EXPECT_EQ(bits(plainly_read<Stored>(file, "ours", count)), bits(plainly_read<Stored>(file, "others", count)));
}

template <class InMemory, class Stored> void expect_read_as_by_hdf5(const Extents& extents, unsigned seed)
{
    const TempFile temp;
    const Hid file = create_file(temp.path());
    const std::size_t count = elements_of(extents);
    put_dataset(file, "a", native<Stored>(), extents, native<Stored>(), numbers_for<Stored>(count, seed).data());
    const auto expected = bits(plainly_read<InMemory>(file, "a", count));
    // At any address that numbers of this type may have, and nothing beyond the array is touched.
    for (std::size_t offset = 0; offset < 4; ++offset) {
        const InMemory guard{-7};
        std::vector<InMemory> numbers(offset + count + 1, guard);
        ASSERT_EQ(read(file, "a", extents, sizeof(InMemory), numbers.data() + offset), 0);
        EXPECT_EQ(numbers.back(), guard);
        EXPECT_TRUE(offset == 0 || numbers[offset - 1] == guard);
        const auto begin = numbers.begin() + static_cast<std::ptrdiff_t>(offset);
        EXPECT_EQ(bits(std::vector<InMemory>(begin, numbers.end() - 1)), expected) << offset;
    }
}

TEST(StorageConvert, WritesDoublesAsFloatsAsHdf5Does)
{
    unsigned seed = 0;
    for (const Extents& extents : shapes()) {
        SCOPED_TRACE(testing::PrintToString(extents));
        expect_written_as_by_hdf5<double, float>(extents, ++seed);
    }
}

TEST(StorageConvert, WritesFloatsAsDoublesAsHdf5Does)
{
    unsigned seed = 100;
    for (const Extents& extents : shapes()) {
        SCOPED_TRACE(testing::PrintToString(extents));
        expect_written_as_by_hdf5<float, double>(extents, ++seed);
    }
}

TEST(StorageConvert, ReadsFloatsIntoDoublesAsHdf5Does)
{
    unsigned seed = 200;
    for (const Extents& extents : shapes()) {
        SCOPED_TRACE(testing::PrintToString(extents));
        expect_read_as_by_hdf5<double, float>(extents, ++seed);
    }
}

TEST(StorageConvert, ReadsDoublesIntoFloatsAsHdf5Does)
{
    unsigned seed = 300;
    for (const Extents& extents : shapes()) {
        SCOPED_TRACE(testing::PrintToString(extents));
        expect_read_as_by_hdf5<float, double>(extents, ++seed);
    }
}

TEST(StorageConvert, ReadsWhatOthersStoredInOtherWays)
{
    const TempFile temp;
    const Hid file = create_file(temp.path());
    const Extents extents{40'000, 3};
    const auto given = numbers_for<float>(elements_of(extents), 400);
    put_dataset(file, "other order", H5T_IEEE_F32BE, extents, H5T_NATIVE_FLOAT, given.data());
    const Hid chunked{H5Pcreate(H5P_DATASET_CREATE)};
    const Extents chunk{999, 2};
    H5Pset_chunk(chunked, 2, chunk.data());
    put_dataset(file, "chunks", H5T_IEEE_F32LE, extents, H5T_NATIVE_FLOAT, given.data(), chunked);
    H5Pset_deflate(chunked, 1);
    put_dataset(file, "deflated", H5T_IEEE_F32LE, extents, H5T_NATIVE_FLOAT, given.data(), chunked);
    const Hid filled{H5Pcreate(H5P_DATASET_CREATE)};
    const double fill = 0.1;
    H5Pset_fill_value(filled, H5T_NATIVE_DOUBLE, &fill);
    put_dataset(file, "never written", H5T_IEEE_F32LE, extents, H5I_INVALID_HID, nullptr, filled);
    for (const char* name : {"other order", "chunks", "deflated", "never written"}) {
        SCOPED_TRACE(name);
        std::vector<double> numbers(given.size());
        ASSERT_EQ(read(file, name, extents, sizeof(double), numbers.data()), 0);
        EXPECT_EQ(bits(numbers), bits(plainly_read<double>(file, name, given.size())));
    }
}

TEST(StorageConvert, WritesIntoWhatOthersMadeInOtherWays)
{
    const TempFile temp;
    const Hid file = create_file(temp.path());
    const Extents extents{40'000, 3};
    const auto given = numbers_for<double>(elements_of(extents), 500);
    const Hid chunked{H5Pcreate(H5P_DATASET_CREATE)};
    const Extents chunk{999, 2};
    H5Pset_chunk(chunked, 2, chunk.data());
    const auto expect_the_same = [&](hid_t type, hid_t creation_list, const std::string& name) {
        put_dataset(file, "plain " + name, type, extents, H5T_NATIVE_DOUBLE, given.data(), creation_list);
        put_dataset(file, name, type, extents, H5I_INVALID_HID, nullptr, creation_list);
        ASSERT_EQ(write(file, name.c_str(), extents, sizeof(double), sizeof(float), given.data()), 0) << name;
        EXPECT_EQ(bits(plainly_read<float>(file, name.c_str(), given.size())),
                  bits(plainly_read<float>(file, ("plain " + name).c_str(), given.size())))
            << name;
    };
    expect_the_same(H5T_IEEE_F32BE, H5P_DEFAULT, "other order"); // HDF5 rounds these in a way of its own
    expect_the_same(H5T_IEEE_F32LE, chunked, "chunks");
}

TEST(StorageConvert, RefusesNoArrayAsHdf5Does)
{
    const TempFile temp;
    const Hid file = create_file(temp.path());
    const Extents extents{2 * piece};
    std::int32_t status = 0;
    H5E_BEGIN_TRY { status = write(file, "a", extents, sizeof(double), sizeof(float), nullptr); }
    H5E_END_TRY
    EXPECT_LT(status, 0);
}

} // namespace
