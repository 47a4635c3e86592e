// SPDX-License-Identifier: BSD-3-Clause
// Scale-offset keeps its promise: integers come back as they are, real numbers within half a unit of the last digit and
// one unit in the last place of the largest magnitude. What HDF5 packs rightly is packed to the same bytes.
#include "kob_scale_offset.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
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

Dice dice{20240301};
std::size_t between(std::size_t low, std::size_t high) { return dice.between(low, high); }
double real_between(double low, double high) { return std::uniform_real_distribution<double>{low, high}(dice()); }

template <class Number> hid_t native()
{
    if constexpr (std::is_same_v<Number, float>) {
        return H5T_NATIVE_FLOAT;
    } else if constexpr (std::is_same_v<Number, double>) {
        return H5T_NATIVE_DOUBLE;
    } else if constexpr (std::is_same_v<Number, std::int32_t>) {
        return H5T_NATIVE_INT32;
    } else if constexpr (std::is_same_v<Number, std::uint32_t>) {
        return H5T_NATIVE_UINT32;
    } else if constexpr (std::is_same_v<Number, std::uint64_t>) {
        return H5T_NATIVE_UINT64;
    } else {
        return H5T_NATIVE_INT64;
    }
}
template <class Number> Hid stored(bool is_big)
{
    Hid type{H5Tcopy(native<Number>())};
    H5Tset_order(type, is_big ? H5T_ORDER_BE : H5T_ORDER_LE);
    return type;
}

enum class Chain { scale_offset, and_shuffle, and_deflate, all };

struct Setting {
    int digits = 3;
    bool has_fill = true; ///< 10000; else HDF5's own, which is 0
    bool is_big = false;
    Chain chain = Chain::scale_offset;
};
Setting any_setting(int digits)
{
    return {digits, between(0, 3) != 0, between(0, 3) == 0, static_cast<Chain>(between(0, 3))};
}

template <class Number> void add_filters(hid_t list, const Setting& setting)
{
    if (setting.has_fill) {
        const int fill = 10000;
        H5Pset_fill_value(list, H5T_NATIVE_INT, &fill);
    }
    if (std::is_floating_point_v<Number>) {
        H5Pset_scaleoffset(list, H5Z_SO_FLOAT_DSCALE, setting.digits);
    } else {
        H5Pset_scaleoffset(list, H5Z_SO_INT, H5Z_SO_INT_MINBITS_DEFAULT);
    }
    if (setting.chain == Chain::and_shuffle || setting.chain == Chain::all) H5Pset_shuffle(list);
    if (setting.chain == Chain::and_deflate || setting.chain == Chain::all) H5Pset_deflate(list, 6);
}

/// Sets of values that are known for mischief, and ordinary ones.
template <class Real> std::vector<Real> mischief(int digits, std::size_t count)
{
    const double step = std::pow(10.0, -digits);
    const double top = std::ldexp(step, sizeof(Real) * 8 - 1); // where the steps need every bit
    std::vector<std::function<double()>> makers{
        [] { return real_between(-1, 1); },
        [] { return real_between(9990, 10010); },
        [&] { return 10000 + real_between(-2, 2) * step; },
        [&] { return 10000 + static_cast<double>(between(0, 8)) * step / 4 - step; },
        [&] { return (static_cast<double>(between(0, 2000)) + 0.5) * step; },
        [&] { return static_cast<double>(between(0, 20)) * step - 10 * step; },
        [&] { return real_between(0, top); },
        [&] { return real_between(-0.5, 0.5) * top * (1 + real_between(-1e-6, 1e-6)); },
        [&] { return real_between(0, 0.999999) * top; },
        [] { return std::ldexp(real_between(-1, 1), static_cast<int>(between(0, 600)) - 300); },
        [] { return std::ldexp(real_between(-1, 1), -1040); },
        [] { return between(0, 1) == 0 ? -0.0 : 0.0; },
        [] { return 1e6 + real_between(0, 1e-3); },
        [] { return 16777216.0 + static_cast<double>(between(0, 5)); },
        [] { return real_between(-1, 1) * static_cast<double>(std::numeric_limits<Real>::max()); },
    };
    const std::size_t first = between(0, makers.size() - 1);
    const std::size_t second = between(0, 2) == 0 ? between(0, makers.size() - 1) : first;
    std::vector<Real> values(count);
    for (auto& value : values) value = static_cast<Real>(makers[between(0, 1) == 0 ? first : second]());
    if (between(0, 9) == 0) values[between(0, count - 1)] = std::numeric_limits<Real>::quiet_NaN();
    if (between(0, 9) == 0) values[between(0, count - 1)] = -std::numeric_limits<Real>::infinity();
    return values;
}

/// Largest error that the promise allows for one value.
template <class Real> long double promised(const std::vector<Real>& given, Real value, int digits, long double fill)
{
    long double largest = 0;
    for (const Real one : given) largest = std::max<long double>(largest, std::abs(one));
    const auto top = static_cast<Real>(largest);
    const long double unit = static_cast<long double>(top) - std::nextafter(top, Real{0});
    const long double step = std::pow(10.0L, static_cast<long double>(-digits));
    const bool is_next_to_fill = std::abs(static_cast<long double>(value) - fill) <= step * 1.0001L;
    return (is_next_to_fill ? step : step / 2) * (1 + 1e-15L) +
           std::max(unit, std::numeric_limits<Real>::denorm_min() + 0.0L);
}

template <class Real>
testing::AssertionResult keeps_promise(const std::vector<Real>& given, const std::vector<Real>& found,
                                       const Setting& setting)
{
    bool finite = true;
    for (const Real value : given) finite = finite && std::isfinite(value);
    for (std::size_t i = 0; i < given.size(); ++i) {
        if (same_bits(given[i], found[i])) continue;
        const long double error = std::abs(static_cast<long double>(given[i]) - static_cast<long double>(found[i]));
        if (!finite || !(error <= promised(given, given[i], setting.digits, setting.has_fill ? 10000 : 0))) {
            return testing::AssertionFailure()
                   << "value " << i << " of " << given.size() << ": given " << given[i] << ", found " << found[i]
                   << ", error " << error << ", digits " << setting.digits;
        }
    }
    return testing::AssertionSuccess();
}

class ScaleOffsetChunks : public testing::Test {
protected:
    template <class Number>
    Hid make(const std::vector<hsize_t>& extents, const std::vector<hsize_t>& chunk, const Setting& setting)
    {
        return create_dataset(file_, next_name(), stored<Number>(setting.is_big), extents,
                              chunked_list(chunk, [&](hid_t list) { add_filters<Number>(list, setting); }));
    }
    template <class Number> Hid make(std::size_t elements, const Setting& setting)
    {
        return make<Number>({elements}, {elements}, setting);
    }
    std::string last_name() const { return "d" + std::to_string(made_); }
    hid_t at() const { return file_; }

    template <class Number> static ChunkTransfer write(hid_t dataset, const std::vector<Number>& values)
    {
        return kob::write_chunks(dataset, native<Number>(), {}, values.data());
    }
    template <class Number> static std::vector<Number> read(hid_t dataset, std::size_t count)
    {
        std::vector<Number> values(count);
        EXPECT_EQ(kob::read_chunks(dataset, native<Number>(), {}, values.data()), ChunkTransfer::done);
        return values;
    }
    template <class Number> static std::vector<Number> read_by_hdf5(hid_t dataset, std::size_t count)
    {
        std::vector<Number> values(count);
        EXPECT_GE(H5Dread(dataset, native<Number>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
        return values;
    }

    /// Writes values, and has HDF5 and ourselves read them from the file.
    template <class Real> void expect_promise(const std::vector<Real>& given, const Setting& setting)
    {
        Hid dataset = make<Real>(given.size(), setting);
        ASSERT_EQ(write(dataset, given), ChunkTransfer::done);
        reopen(dataset);
        const auto found = read_by_hdf5<Real>(dataset, given.size());
        ASSERT_TRUE(keeps_promise(given, found, setting));
        const auto ours = read<Real>(dataset, given.size());
        ASSERT_EQ(std::memcmp(ours.data(), found.data(), found.size() * sizeof(Real)), 0);
    }
    template <class Integer> void expect_exact(const std::vector<Integer>& given, const Setting& setting)
    {
        Hid dataset = make<Integer>(given.size(), setting);
        ASSERT_EQ(write(dataset, given), ChunkTransfer::done);
        reopen(dataset);
        ASSERT_EQ(read_by_hdf5<Integer>(dataset, given.size()), given);
        ASSERT_EQ(read<Integer>(dataset, given.size()), given);
    }
    static void reopen(Hid& dataset) { kob_test::reopen(dataset); }

private:
    std::string next_name() { return "d" + std::to_string(++made_); }

    QuietHdf5 quiet_;
    TempFile temp_;
    Hid file_ = create_file(temp_.path());
    int made_ = 0;
};

template <class Integer> std::vector<Integer> integers(std::size_t count)
{
    using Limits = std::numeric_limits<Integer>;
    const auto width = std::uniform_int_distribution<std::uint64_t>{0, sizeof(Integer) * 8}(dice());
    const std::uint64_t mask = width == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << width) - 1;
    const auto base = static_cast<Integer>(between(0, 1) == 0 ? 0 : dice()());
    std::vector<Integer> values(count);
    for (auto& value : values) value = static_cast<Integer>(static_cast<std::uint64_t>(base) + (dice()() & mask));
    if (between(0, 3) == 0) values[between(0, count - 1)] = Limits::max();
    if (between(0, 3) == 0) values[between(0, count - 1)] = Limits::lowest();
    if (between(0, 1) == 0) values[between(0, count - 1)] = 10000;
    return values;
}

} // namespace

TEST_F(ScaleOffsetChunks, Floats_keep_the_promise)
{
    for (int i = 0; i < 1500; ++i) {
        const int digits = static_cast<int>(between(0, 12));
        expect_promise(mischief<float>(digits, between(8, 600)), any_setting(digits));
        if (HasFatalFailure()) return;
    }
}

TEST_F(ScaleOffsetChunks, Doubles_keep_the_promise)
{
    for (int i = 0; i < 1500; ++i) {
        const int digits = static_cast<int>(between(0, 1) == 0 ? between(0, 18) : between(0, 256));
        expect_promise(mischief<double>(digits, between(8, 600)), any_setting(digits));
        if (HasFatalFailure()) return;
    }
}

TEST_F(ScaleOffsetChunks, Integers_are_exact_over_the_full_range)
{
    for (int i = 0; i < 500; ++i) {
        const std::size_t count = between(8, 600);
        expect_exact(integers<std::int32_t>(count), any_setting(0));
        expect_exact(integers<std::int64_t>(count), any_setting(0));
        expect_exact(integers<std::uint32_t>(count), any_setting(0));
        expect_exact(integers<std::uint64_t>(count), any_setting(0));
        if (HasFatalFailure()) return;
    }
}

TEST_F(ScaleOffsetChunks, Ranges_at_the_edge_of_all_bits_are_exact)
{
    constexpr std::int64_t half = std::int64_t{1} << 31;
    for (const std::int64_t range :
         {half - 3, half - 2, half - 1, half, half + 1, 2 * half - 3, 2 * half - 2, 2 * half - 1}) {
        for (const std::int64_t least : {-half, std::int64_t{0} - range / 2, half - 1 - range}) {
            if (least < -half || least + range >= half) continue;
            std::vector<std::int32_t> values(9, static_cast<std::int32_t>(least));
            values[3] = static_cast<std::int32_t>(least + range);
            values[5] = 10000;
            for (const bool has_fill : {false, true}) expect_exact(values, {0, has_fill, false, Chain::all});
        }
    }
}

TEST_F(ScaleOffsetChunks, What_HDF5_packs_rightly_has_the_same_bytes)
{
    int same = 0;
    const auto compare = [&](const auto& given, const Setting& setting) {
        using Number = typename std::decay_t<decltype(given)>::value_type;
        Hid ours = make<Number>(given.size(), setting);
        ASSERT_EQ(write(ours, given), ChunkTransfer::done);
        const RawChunk chunk = raw_chunk(ours, {0});
        reopen(ours);
        if (raw_chunk(ours, {0}).filter_mask != 0) return;
        Hid theirs = make<Number>(given.size(), setting);
        ASSERT_GE(H5Dwrite(theirs, native<Number>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, given.data()), 0);
        const Bytes expected = raw_chunk(theirs, {0}).bytes;
        reopen(theirs);
        if constexpr (std::is_floating_point_v<Number>) {
            // HDF5 takes the farther one of two codes where its arithmetic is at its end.
            if (!keeps_promise(given, read_by_hdf5<Number>(theirs, given.size()), setting)) return;
        }
        ASSERT_EQ(chunk.bytes, expected) << given.size() << " of " << sizeof(Number);
        ++same;
    };
    for (int i = 0; i < 400; ++i) {
        Setting setting = any_setting(static_cast<int>(between(0, 8)));
        setting.chain = between(0, 1) == 0 ? Chain::scale_offset : Chain::and_shuffle;
        const std::size_t count = between(8, 600);
        compare(mischief<float>(setting.digits, count), setting);
        compare(mischief<double>(setting.digits, count), setting);
        compare(integers<std::int32_t>(count), setting);
        compare(integers<std::int64_t>(count), setting);
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(same, 800); // most of them are packed
}

TEST_F(ScaleOffsetChunks, What_HDF5_writes_is_read_to_the_same_values)
{
    for (int i = 0; i < 300; ++i) {
        const Setting setting = any_setting(static_cast<int>(between(0, 6)));
        const std::size_t count = between(8, 600);
        std::vector<float> floats(count);
        for (auto& value : floats) value = static_cast<float>(real_between(-100, 100));
        Hid of_floats = make<float>(count, setting);
        ASSERT_GE(H5Dwrite(of_floats, H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, floats.data()), 0);
        reopen(of_floats); // HDF5 keeps the values in its cache as they were given
        EXPECT_EQ(read<float>(of_floats, count), read_by_hdf5<float>(of_floats, count));
        std::vector<double> doubles(count);
        for (auto& value : doubles) value = real_between(9999, 10001);
        Hid of_doubles = make<double>(count, setting);
        ASSERT_GE(H5Dwrite(of_doubles, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, doubles.data()), 0);
        reopen(of_doubles);
        EXPECT_EQ(read<double>(of_doubles, count), read_by_hdf5<double>(of_doubles, count));
    }
}

TEST_F(ScaleOffsetChunks, Equal_values_take_hardly_any_room)
{
    const Hid dataset = make<double>(1000, {});
    ASSERT_EQ(write(dataset, std::vector<double>(1000, 0.25)), ChunkTransfer::done);
    EXPECT_EQ(raw_chunk(dataset, {0}).bytes.size(), 21U + 1000 / 8 + 1); // a bit tells a value from the fill value
    EXPECT_EQ(read_by_hdf5<double>(dataset, 1000), std::vector<double>(1000, 0.25));
}

TEST_F(ScaleOffsetChunks, Chunks_of_all_bits_that_HDF5_wrote_are_read)
{
    const auto check = [&](const auto& given, const Setting& setting) {
        using Number = typename std::decay_t<decltype(given)>::value_type;
        const Hid dataset = make<Number>(given.size(), setting);
        ASSERT_GE(H5Dwrite(dataset, native<Number>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, given.data()), 0);
        EXPECT_EQ(read<Number>(dataset, given.size()), given);
    };
    for (const bool is_big : {false, true}) {
        for (const Chain chain : {Chain::scale_offset, Chain::all}) {
            const Setting setting{9, true, is_big, chain};
            check(std::vector<std::int32_t>{-2147483647, 2147483647, 0, 1, 2, 3, 4, 5, 10000}, setting);
            check(std::vector<std::int64_t>{INT64_MIN + 1, INT64_MAX, 0, 1, 2, 3, 4, 5, 10000}, setting);
            check(std::vector<float>{1e10F, -1e10F, 0, 0.1F, 2, 3, 4, 5, 10000}, setting);
            check(std::vector<double>{1e30, -1e30, 0, 0.1, 2, 3, 4, 5, 10000}, setting);
        }
    }
}

TEST_F(ScaleOffsetChunks, A_damaged_chunk_fails_and_harms_nothing)
{
    std::vector<double> values(300);
    for (auto& value : values) value = real_between(-1, 1);
    for (const Chain chain : {Chain::scale_offset, Chain::and_shuffle, Chain::all}) {
        Hid dataset = make<double>(values.size(), {6, true, false, chain});
        ASSERT_EQ(write(dataset, values), ChunkTransfer::done);
        const RawChunk good = raw_chunk(dataset, {0});
        const auto read_of = [&](const RawChunk& chunk) {
            put_raw_chunk(dataset, {0}, chunk);
            std::vector<double> found(values.size());
            return kob::read_chunks(dataset, H5T_NATIVE_DOUBLE, {}, found.data());
        };
        for (const std::size_t size :
             {std::size_t{1}, std::size_t{4}, std::size_t{20}, std::size_t{21}, good.bytes.size() / 2}) {
            RawChunk shorter = good;
            shorter.bytes.resize(size);
            EXPECT_EQ(read_of(shorter), ChunkTransfer::failed) << size;
        }
        if (chain == Chain::scale_offset) {
            for (const int bits : {64, 65, 255}) {
                RawChunk more_bits = good;
                more_bits.bytes[0] = static_cast<std::byte>(bits);
                EXPECT_EQ(read_of(more_bits), ChunkTransfer::failed) << bits;
            }
        }
        for (int i = 0; i < 300; ++i) {
            RawChunk altered = good;
            for (std::size_t changes = between(1, 4); changes > 0; --changes) {
                altered.bytes[between(
                    0, std::min<std::size_t>(altered.bytes.size() - 1, between(0, 1) == 0 ? 24 : 1000000))] =
                    static_cast<std::byte>(between(0, 255));
            }
            altered.bytes.resize(between(altered.bytes.size() - 3, altered.bytes.size() + 3));
            altered.filter_mask = static_cast<std::uint32_t>(between(0, 3) == 0 ? between(0, 7) : 0);
            read_of(altered); // whatever comes of it, nothing is read or written outside
        }
    }
}

TEST_F(ScaleOffsetChunks, Filters_with_other_parameters_are_left_to_HDF5)
{
    std::vector<std::int32_t> values(20, 3);
    const auto fixed_bits = [](hid_t list) { H5Pset_scaleoffset(list, H5Z_SO_INT, 5); };
    const Hid dataset = create_dataset(at(), "fixed", H5T_STD_I32LE, {20}, chunked_list({20}, fixed_bits));
    EXPECT_EQ(write(dataset, values), ChunkTransfer::left);
    const auto automatic = [](hid_t list) { H5Pset_scaleoffset(list, H5Z_SO_INT, H5Z_SO_INT_MINBITS_DEFAULT); };
    const Hid shorts = create_dataset(at(), "shorts", H5T_STD_I16LE, {20}, chunked_list({20}, automatic));
    EXPECT_EQ(write(shorts, values), ChunkTransfer::left);
}
