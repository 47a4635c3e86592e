// SPDX-License-Identifier: BSD-3-Clause
// The streams that we make are read by HDF5's own deflate filter, whatever they hold, and are no larger than its own
// for the data that they are made for.
#include "kob_deflate.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <utility>

#include "kob_chunk_transfer.hpp"
#include "support/chunked_dataset.hpp"
#include "support/dice.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;

namespace {

Dice dice{20240303};
std::size_t between(std::size_t low, std::size_t high) { return dice.between(low, high); }

/// Appends so many bytes of one kind: noise, uneven noise, repeated noise, all the same, a slow ramp.
void append(Bytes& bytes, std::size_t size, std::size_t kind)
{
    const std::size_t before = bytes.size();
    const std::size_t period = between(3, 40000);
    const unsigned spread = static_cast<unsigned>(between(2, 60));
    for (std::size_t i = 0; i < size; ++i) {
        unsigned value = 0;
        switch (kind) {
        case 0:
            value = static_cast<unsigned>(dice()());
            break;
        case 1: // small values are more frequent
            value = static_cast<unsigned>(
                std::abs(std::normal_distribution<double>{0, static_cast<double>(spread)}(dice())));
            break;
        case 2:
            value = i >= period ? static_cast<unsigned>(bytes[before + i - period]) : static_cast<unsigned>(dice()());
            break;
        case 3:
            value = spread;
            break;
        case 4: // one value hardly ever
            value = between(0, 100000) == 0 ? 200 : static_cast<unsigned>(between(0, 1)) * 77;
            break;
        default:
            value = static_cast<unsigned>(i / 1000 + between(0, spread));
        }
        bytes.push_back(static_cast<std::byte>(value));
    }
}
constexpr std::size_t kinds = 6;

class Deflate : public testing::Test {
protected:
    /// The stream as HDF5's filter reads it.
    Bytes read_by_hdf5(const Bytes& stream, std::size_t size)
    {
        const auto deflated = [](hid_t list) { H5Pset_deflate(list, 6); };
        const Hid dataset =
            create_dataset(file_, "d" + std::to_string(++made_), H5T_STD_U8LE, {size}, chunked_list({size}, deflated));
        const hsize_t origin = 0;
        EXPECT_GE(H5Dwrite_chunk(dataset, H5P_DEFAULT, 0, &origin, stream.size(), stream.data()), 0);
        return stored_bytes(dataset);
    }
    hid_t at() const { return file_; }

private:
    QuietHdf5 quiet_;
    TempFile temp_;
    Hid file_ = create_file(temp_.path());
    int made_ = 0;
};

Bytes stream_of(const Bytes& plain, int level, std::size_t plane_size = 0)
{
    kob::Deflater deflater{level};
    Bytes stream(kob::Deflater::bound(plain.size()));
    const auto size = deflater.compress(plain, stream, plane_size == 0 ? plain.size() : plane_size);
    stream.resize(size.value_or(0));
    return stream;
}

} // namespace

TEST_F(Deflate, HDF5_and_we_read_what_was_compressed)
{
    for (int i = 0; i < 250; ++i) {
        Bytes plain;
        for (std::size_t parts = between(1, 4); parts > 0; --parts)
            append(plain, between(0, 60000), between(0, kinds - 1));
        if (plain.empty()) continue;
        const Bytes stream = stream_of(plain, static_cast<int>(between(0, 9)), between(0, 40000));
        ASSERT_FALSE(stream.empty());
        ASSERT_EQ(read_by_hdf5(stream, plain.size()), plain) << i;
        Bytes back(plain.size());
        kob::Inflater inflater;
        ASSERT_EQ(inflater.inflate(stream, back), plain.size());
        ASSERT_EQ(back, plain);
    }
}

TEST_F(Deflate, Lengths_around_a_block_are_read_back)
{
    for (const std::size_t kind : {0, 1, 3}) {
        for (const std::size_t blocks : {1, 2, 4, 5}) {
            for (const std::size_t size : {blocks * 16384 - 1, blocks * 16384, blocks * 16384 + 1}) {
                Bytes plain;
                append(plain, size, kind);
                EXPECT_EQ(read_by_hdf5(stream_of(plain, 6), size), plain) << size;
            }
        }
    }
    for (const std::size_t size : {1, 2, 3, 7, 100}) {
        Bytes plain;
        append(plain, size, 0);
        for (const int level : {0, 1, 6, 9}) EXPECT_EQ(read_by_hdf5(stream_of(plain, level), size), plain) << size;
    }
}

TEST_F(Deflate, Noise_is_stored)
{
    Bytes noise;
    append(noise, 1000000, 0);
    EXPECT_LE(stream_of(noise, 6).size(), noise.size() + noise.size() / 10000 + 20);
}

// Of 256 characters each, shuffled: a plane of even noise, one of noise that is a little uneven, and so on. Neither is
// worth codes of its own, and the two are not joined.
TEST_F(Deflate, Noise_in_many_small_planes_stays_in_the_bound)
{
    constexpr std::size_t plane_size = 2048;
    constexpr std::size_t planes = 256;
    Bytes noise;
    for (std::size_t plane = 0; plane < planes; ++plane) {
        const std::size_t before = noise.size();
        for (std::size_t value = 0; value < 256; ++value) {
            const std::size_t count = plane % 2 == 0 ? 8 : value % 2 == 0 ? 12 : 4;
            noise.insert(noise.end(), count, static_cast<std::byte>(value));
        }
        ASSERT_EQ(noise.size() - before, plane_size);
        std::shuffle(noise.begin() + static_cast<std::ptrdiff_t>(before), noise.end(), dice());
    }
    const std::size_t bound = kob::Deflater::bound(noise.size());
    Bytes stream(2 * bound, std::byte{0x5a});
    kob::Deflater deflater{6};
    const auto size = deflater.compress(noise, {stream.data(), bound}, plane_size);
    ASSERT_TRUE(size.has_value());
    EXPECT_GT(*size, noise.size() + planes) << "the planes are blocks of their own";
    EXPECT_LE(*size, bound);
    stream.resize(*size);
    EXPECT_EQ(read_by_hdf5(stream, noise.size()), noise);
}

TEST_F(Deflate, Repeated_noise_is_not)
{
    Bytes noise;
    append(noise, 20000, 0);
    Bytes repeated;
    for (int times = 0; times < 10; ++times) repeated.insert(repeated.end(), noise.begin(), noise.end());
    EXPECT_LT(stream_of(repeated, 6).size(), 45000U); // what is seen first may be stored before it is known to recur
    Bytes doubled;                                    // three bytes at a time, as of a point that two elements share
    for (std::size_t i = 0; i + 3 <= noise.size(); i += 3) {
        for (int times = 0; times < 2; ++times) doubled.insert(doubled.end(), &noise[i], &noise[i] + 3);
    }
    EXPECT_LT(stream_of(doubled, 6).size(), doubled.size() * 9 / 10);
}

TEST_F(Deflate, Results_take_no_more_room_than_by_HDF5)
{
    const std::vector<hsize_t> extents{100000, 3};
    const auto stored_size = [](hid_t dataset) {
        H5Dflush(dataset);
        return H5Dget_storage_size(dataset);
    };
    for (const double noise : {0.0, 1e-9, 1e-6, 1e-3}) {
        std::vector<double> values(300000);
        std::uniform_real_distribution<double> draw{-noise, noise};
        for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] =
                std::sin(1e-4 * static_cast<double>(i)) * std::cos(3e-5 * static_cast<double>(i)) + draw(dice());
        }
        for (const unsigned level : {1U, 6U}) {
            for (const auto& [is_small, rows] :
                 {std::pair{false, 100000}, {true, 100000}, {false, 1000}, {true, 1000}}) {
                const auto list = chunked_list({static_cast<hsize_t>(rows), 3}, [&](hid_t chunked) {
                    H5Pset_shuffle(chunked);
                    H5Pset_deflate(chunked, level);
                });
                const hid_t type = is_small ? H5T_IEEE_F32LE : H5T_IEEE_F64LE;
                const std::string name =
                    std::to_string(noise * 1e9) + std::to_string(level) + (is_small ? "s" : "d") + std::to_string(rows);
                const Hid ours = create_dataset(at(), name + "ours", type, extents, list);
                ASSERT_EQ(kob::write_chunks(ours, H5T_NATIVE_DOUBLE, {}, values.data()), kob::ChunkTransfer::done);
                const Hid theirs = create_dataset(at(), name + "theirs", type, extents, list);
                ASSERT_GE(H5Dwrite(theirs, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
                EXPECT_LE(stored_size(ours), stored_size(theirs))
                    << "noise " << noise << ", level " << level << (is_small ? ", floats" : "") << ", chunks of "
                    << rows;
            }
        }
    }
}
