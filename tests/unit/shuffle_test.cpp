// SPDX-License-Identifier: BSD-3-Clause
// The byte shuffle gives the bytes of HDF5's filter for every element size and length, and takes them back.
#include "kob_shuffle.hpp"

#include <gtest/gtest.h>

#include <random>

#include "support/chunked_dataset.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;

namespace {

Bytes random_bytes(std::size_t size)
{
    std::mt19937 random{static_cast<unsigned>(size)};
    Bytes bytes(size);
    for (auto& byte : bytes) byte = static_cast<std::byte>(random());
    return bytes;
}

} // namespace

TEST(Shuffle, Bytes_are_those_of_HDF5_and_come_back)
{
    const TempFile temp;
    const Hid file = create_file(temp.path());
    for (const std::size_t size : {1, 2, 3, 4, 5, 7, 8, 9, 16, 256}) {
        for (const std::size_t elements : {1, 2, 7, 15, 16, 17, 31, 32, 63, 64, 65, 100, 129, 1000, 1003}) {
            const Bytes plain = random_bytes(size * elements);
            const Hid type = text_type(size);
            const Hid dataset = create_dataset(file, std::to_string(size) + "x" + std::to_string(elements), type,
                                               {elements}, chunked_list({elements}, H5Pset_shuffle));
            ASSERT_GE(H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, plain.data()), 0);
            const Bytes expected = raw_chunk(dataset, {0}).bytes;
            Bytes shuffled(plain.size());
            kob::shuffle(plain, size, shuffled.data());
            EXPECT_EQ(shuffled, expected) << elements << " elements of " << size;
            Bytes back(plain.size());
            kob::unshuffle(shuffled, size, back.data());
            EXPECT_EQ(back, plain) << elements << " elements of " << size;
        }
    }
}

TEST(Shuffle, Bytes_behind_the_last_whole_element_stay)
{
    for (const std::size_t size : {4, 8, 12}) {
        const Bytes plain = random_bytes(size * 21 + 3);
        Bytes shuffled(plain.size());
        kob::shuffle(plain, size, shuffled.data());
        for (std::size_t i = 0; i < 21; ++i) EXPECT_EQ(shuffled[2 * 21 + i], plain[i * size + 2]);
        EXPECT_TRUE(std::equal(plain.end() - 3, plain.end(), shuffled.end() - 3));
        Bytes back(plain.size());
        kob::unshuffle(shuffled, size, back.data());
        EXPECT_EQ(back, plain);
    }
}
