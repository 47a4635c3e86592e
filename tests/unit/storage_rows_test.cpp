// SPDX-License-Identifier: BSD-3-Clause
// Rows of a dataset that stays open.
#include "kob_storage_rows.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;

namespace {

constexpr std::int32_t integer = 2;
constexpr std::int32_t real = 3;

class RowsOfDataset : public testing::Test {
protected:
    RowsOfDataset() : file_{create_file(temp_.path())}
    {
        std::vector<double> numbers(5 * 3 * 2);
        std::iota(numbers.begin(), numbers.end(), 0);
        put_dataset(file_, "table", H5T_IEEE_F32LE, {5, 3, 2}, H5T_NATIVE_DOUBLE, numbers.data());
        const std::vector<std::int64_t> large{1, 2, 3};
        put_dataset(file_, "wide", H5T_STD_I64LE, {3}, H5T_NATIVE_INT64, large.data());
    }

    TempFile temp_;
    Hid file_;
};

TEST_F(RowsOfDataset, AreReadIntoTheSizeThatIsAskedFor)
{
    const kob::RowReader rows{file_, "table", real, 8, 3, 6};
    ASSERT_TRUE(rows.is_readable());
    EXPECT_TRUE(rows.is_contiguous());
    std::vector<double> two(12, -1);
    ASSERT_GE(rows.read(3, 2, two.data()), 0);
    EXPECT_EQ(two, (std::vector<double>{18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29}));
    ASSERT_GE(rows.read(0, 1, two.data()), 0);
    EXPECT_EQ(two[5], 5);
    EXPECT_EQ(two[6], 24) << "one row and no more";
}

TEST_F(RowsOfDataset, BeyondTheEndAreRefused)
{
    const kob::RowReader rows{file_, "table", real, 8, 3, 6};
    std::vector<double> numbers(100, -1);
    EXPECT_LT(rows.read(4, 2, numbers.data()), 0);
    EXPECT_LT(rows.read(6, 1, numbers.data()), 0);
    EXPECT_LT(rows.read(1, static_cast<hsize_t>(-1), numbers.data()), 0);
    EXPECT_EQ(numbers, std::vector<double>(100, -1));
}

TEST_F(RowsOfDataset, MustBeWhatIsExpected)
{
    EXPECT_FALSE((kob::RowReader{file_, "table", real, 8, 2, 6}).is_readable()) << "rank";
    EXPECT_FALSE((kob::RowReader{file_, "table", real, 8, 3, 5}).is_readable()) << "width";
    EXPECT_FALSE((kob::RowReader{file_, "table", integer, 8, 3, 6}).is_readable()) << "class";
    EXPECT_FALSE((kob::RowReader{file_, "wide", integer, 4, 1, 1}).is_readable()) << "too wide for its place";
    EXPECT_TRUE((kob::RowReader{file_, "wide", integer, 8, 1, 1}).is_readable());
    H5E_BEGIN_TRY
    {
        const kob::RowReader missing{file_, "nothing", real, 8, 2, 6};
        double number = 0;
        EXPECT_FALSE(missing.is_readable());
        EXPECT_LT(missing.read(0, 1, &number), 0);
    }
    H5E_END_TRY
}

TEST_F(RowsOfDataset, InChunksAreNotInOnePiece)
{
    const Hid chunked{H5Pcreate(H5P_DATASET_CREATE)};
    const hsize_t chunk = 2;
    H5Pset_chunk(chunked, 1, &chunk);
    const std::vector<std::int32_t> numbers{1, 2, 3};
    put_dataset(file_, "chunks", H5T_STD_I32LE, {3}, H5T_NATIVE_INT, numbers.data(), chunked);
    const kob::RowReader rows{file_, "chunks", integer, 4, 1, 1};
    EXPECT_TRUE(rows.is_readable());
    EXPECT_FALSE(rows.is_contiguous());
}

} // namespace
