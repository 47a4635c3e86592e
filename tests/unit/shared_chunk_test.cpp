// SPDX-License-Identifier: BSD-3-Clause
// Chunks under scale-offset that several writes share: what an earlier write left comes back bit for bit, whatever
// later ones put beside it, and all of it within the promised error of what was given.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "kob_chunk_transfer.hpp"
#include "kob_storage.hpp"
#include "support/chunked_dataset.hpp"
#include "support/dice.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;
using kob::ChunkTransfer;

namespace {

constexpr int digits = 3;
constexpr double fill = 10000;
constexpr std::size_t columns = 7;

template <class Real> double last_place(double value)
{
    const auto real = static_cast<Real>(std::abs(value));
    return static_cast<double>(std::nextafter(real, std::numeric_limits<Real>::infinity()) - real);
}

template <class Real> class SharedChunks : public testing::Test {
protected:
    using Reals = std::vector<Real>;

    static hid_t native() { return sizeof(Real) == 4 ? H5T_NATIVE_FLOAT : H5T_NATIVE_DOUBLE; }

    /// Rows of seven columns that grow in chunks of `rows`.
    void make(hsize_t rows)
    {
        const auto list = chunked_list({rows, 4}, [](hid_t chunked) {
            H5Pset_fill_value(chunked, H5T_NATIVE_DOUBLE, &fill);
            H5Pset_scaleoffset(chunked, H5Z_SO_FLOAT_DSCALE, digits);
            H5Pset_shuffle(chunked);
            H5Pset_deflate(chunked, 6);
        });
        const Hid space = space_of({0, columns}, {H5S_UNLIMITED, columns});
        dataset_ = Hid{H5Dcreate2(file_, "d", native(), space, H5P_DEFAULT, list, H5P_DEFAULT)};
        given_.clear();
    }

    void write_rows(std::size_t first, const Reals& values)
    {
        const std::size_t count = values.size() / columns;
        const std::size_t end = std::max(given_.size(), (first + count) * columns);
        given_.resize(end, static_cast<Real>(fill));
        grow();
        const Reals before = read();
        const hsize_t start[] = {first, 0};
        const hsize_t counts[] = {count, columns};
        ASSERT_EQ(kob::write_chunks(dataset_, native(), {start, counts}, values.data()), ChunkTransfer::done);
        std::copy(values.begin(), values.end(), given_.begin() + static_cast<std::ptrdiff_t>(first * columns));
        std::vector<bool> is_new(given_.size());
        std::fill_n(is_new.begin() + static_cast<std::ptrdiff_t>(first * columns), values.size(), true);
        check(before, is_new);
    }

    void write_points(const std::vector<hsize_t>& coordinates, const Reals& values)
    {
        const Reals before = read();
        ASSERT_EQ(kob::write_points(dataset_, native(), coordinates, values.data()), ChunkTransfer::done);
        std::vector<bool> is_new(given_.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const std::size_t at = coordinates[2 * i] * columns + coordinates[2 * i + 1];
            given_[at] = values[i];
            is_new[at] = true;
        }
        check(before, is_new);
    }

    void cut(std::size_t rows)
    {
        const Reals before = read();
        kob::cut_rows(file_, "d", static_cast<std::int64_t>(rows));
        given_.resize(rows * columns);
        check(Reals(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(given_.size())),
              std::vector<bool>(given_.size()));
    }

    /// The values as HDF5 reads them from the file; the same as ours.
    Reals read()
    {
        reopen(dataset_);
        Reals found(given_.size());
        if (found.empty()) return found;
        EXPECT_GE(H5Dread(dataset_, native(), H5S_ALL, H5S_ALL, H5P_DEFAULT, found.data()), 0);
        Reals ours(given_.size());
        EXPECT_EQ(kob::read_chunks(dataset_, native(), {}, ours.data()), ChunkTransfer::done);
        EXPECT_EQ(std::memcmp(found.data(), ours.data(), found.size() * sizeof(Real)), 0);
        return found;
    }

    std::uint32_t mask_of(hsize_t row) { return raw_chunk(dataset_, {row, 0}).filter_mask; }
    std::size_t rows() const { return given_.size() / columns; }
    hid_t dataset() const { return dataset_; }

private:
    void grow()
    {
        const hsize_t extents[] = {rows(), columns};
        ASSERT_GE(H5Dset_extent(dataset_, extents), 0);
    }

    void check(const Reals& before, const std::vector<bool>& is_new)
    {
        const Reals after = read();
        double largest = 0;
        for (const Real value : given_) {
            if (std::isfinite(value)) largest = std::max<double>(largest, std::abs(value));
        }
        for (std::size_t i = 0; i < after.size(); ++i) {
            if (!is_new[i]) {
                ASSERT_TRUE(same_bits(after[i], before[i]))
                    << "value " << i << " was " << before[i] << " and is " << after[i];
            }
            if (same_bits(after[i], given_[i])) continue;
            const double error = std::abs(static_cast<double>(after[i]) - static_cast<double>(given_[i]));
            const bool is_next_to_fill = std::abs(given_[i] - fill) <= 1.001e-3;
            ASSERT_LE(error, (is_next_to_fill ? 1e-3 : 0.5e-3) * (1 + 1e-12) + last_place<Real>(largest))
                << "value " << i << " given " << given_[i] << " is " << after[i];
        }
    }

    QuietHdf5 quiet_;
    TempFile temp_;
    Hid file_ = create_file(temp_.path());
    Hid dataset_ = create_group(file_, "none yet");
    Reals given_;
};

Dice dice{20240302};
std::size_t between(std::size_t low, std::size_t high) { return dice.between(low, high); }

/// Rows whose magnitude is drawn anew each time.
template <class Real> std::vector<Real> any_rows(std::size_t rows)
{
    const double magnitude = std::pow(10.0, static_cast<double>(between(0, 7)) - 3);
    const double centre = between(0, 3) == 0 ? fill : between(0, 1) == 0 ? 0 : magnitude * 2;
    std::uniform_real_distribution<double> draw{centre - magnitude, centre + magnitude};
    std::vector<Real> values(rows * columns);
    for (auto& value : values) value = static_cast<Real>(draw(dice()));
    if (between(0, 15) == 0) values[between(0, values.size() - 1)] = std::numeric_limits<Real>::quiet_NaN();
    return values;
}

} // namespace

using RealTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(SharedChunks, RealTypes);

TYPED_TEST(SharedChunks, Rows_appended_one_by_one_leave_the_earlier_ones_alone)
{
    this->make(4);
    for (std::size_t row = 0; row < 60 && !this->HasFatalFailure(); ++row) {
        this->write_rows(row, any_rows<TypeParam>(1));
    }
}

TYPED_TEST(SharedChunks, Rows_written_anywhere_leave_the_others_alone)
{
    this->make(5);
    for (int i = 0; i < 60 && !this->HasFatalFailure(); ++i) {
        this->write_rows(between(0, 25), any_rows<TypeParam>(between(1, 7)));
    }
}

TYPED_TEST(SharedChunks, Points_leave_what_lies_beside_them_alone)
{
    this->make(4);
    this->write_rows(0, any_rows<TypeParam>(11));
    for (int i = 0; i < 40 && !this->HasFatalFailure(); ++i) {
        const std::size_t count = between(1, 12);
        std::vector<TypeParam> drawn = any_rows<TypeParam>(2);
        drawn.resize(count);
        std::vector<hsize_t> coordinates;
        for (std::size_t point = 0; point < count; ++point) {
            coordinates.push_back(between(0, 10));
            coordinates.push_back(between(0, columns - 1));
        }
        this->write_points(coordinates, drawn);
    }
}

TYPED_TEST(SharedChunks, Of_equal_points_the_last_one_counts)
{
    this->make(4);
    this->write_rows(0, std::vector<TypeParam>(8 * columns, 1));
    this->write_points({7, 2, 0, 0, 7, 2}, {5, 6, 7});
    std::vector<TypeParam> found(3);
    const std::vector<hsize_t> coordinates{0, 0, 7, 2, 3, 3};
    ASSERT_EQ(kob::read_points(this->dataset(), this->native(), coordinates, found.data()), ChunkTransfer::done);
    EXPECT_EQ(found, (std::vector<TypeParam>{6, 7, 1}));
}

TYPED_TEST(SharedChunks, A_cut_leaves_the_rows_before_it_alone)
{
    this->make(4);
    for (int i = 0; i < 30 && !this->HasFatalFailure(); ++i) {
        this->write_rows(this->rows(), any_rows<TypeParam>(between(1, 9)));
        if (this->rows() > 1) this->cut(between(1, this->rows() - 1));
        this->write_rows(this->rows(), any_rows<TypeParam>(1));
    }
}

TYPED_TEST(SharedChunks, Rows_of_ordinary_results_stay_packed)
{
    this->make(10);
    std::uniform_real_distribution<double> noise{-1, 1};
    this->write_rows(0, std::vector<TypeParam>(columns, 0)); // the first state of a transient
    for (std::size_t row = 1; row < 10 && !this->HasFatalFailure(); ++row) {
        std::vector<TypeParam> values(columns);
        for (auto& value : values) value = static_cast<TypeParam>(noise(dice()) / 2 + 1);
        this->write_rows(row, values);
    }
    EXPECT_EQ(this->mask_of(0), 0U);
}

TYPED_TEST(SharedChunks, A_chunk_with_a_value_that_is_no_number_goes_unpacked)
{
    this->make(3);
    std::vector<TypeParam> values(columns, 2);
    this->write_rows(0, values);
    EXPECT_EQ(this->mask_of(0), 0U);
    values[1] = std::numeric_limits<TypeParam>::infinity();
    this->write_rows(1, values);
    EXPECT_EQ(this->mask_of(0), 1U);
    values[1] = 0.12345F;
    this->write_rows(1, values);
    EXPECT_EQ(this->mask_of(0), 1U); // the other row was rounded once, and is not rounded again
    this->write_rows(0, any_rows<TypeParam>(3));
}
