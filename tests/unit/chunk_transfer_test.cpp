// SPDX-License-Identifier: BSD-3-Clause
// Chunks that are encoded and decoded without HDF5: it reads what we write, we read what it writes, and what is not
// ours is left to it.
#include "kob_chunk_transfer.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <random>
#include <sys/resource.h>

#include "support/chunked_dataset.hpp"
#include "support/dice.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;
using kob::ChunkTransfer;

namespace {

Dice dice{20240229};
std::size_t between(std::size_t low, std::size_t high) { return dice.between(low, high); }

ChunkTransfer write(hid_t dataset, hid_t memory_type, const BlockOf& block, const void* data)
{
    return kob::write_chunks(dataset, memory_type, {block.first, block.count}, data);
}
ChunkTransfer read(hid_t dataset, hid_t memory_type, const BlockOf& block, void* data)
{
    return kob::read_chunks(dataset, memory_type, {block.first, block.count}, data);
}

void shuffled(hid_t list) { H5Pset_shuffle(list); }
void deflated(hid_t list) { H5Pset_deflate(list, 6); }
void shuffled_and_deflated(hid_t list)
{
    H5Pset_shuffle(list);
    H5Pset_deflate(list, static_cast<unsigned>(between(0, 9)));
}

/// A stored type, one that a caller may have in memory, and a fill value.
struct TypeCase {
    std::string name;
    hid_t stored;
    hid_t memory;
};

std::vector<TypeCase> type_cases()
{
    return {
        {"double", H5T_IEEE_F64LE, H5T_NATIVE_DOUBLE},
        {"big double", H5T_IEEE_F64BE, H5T_NATIVE_DOUBLE},
        {"float", H5T_IEEE_F32LE, H5T_NATIVE_FLOAT},
        {"float of double", H5T_IEEE_F32LE, H5T_NATIVE_DOUBLE},
        {"double of float", H5T_IEEE_F64LE, H5T_NATIVE_FLOAT},
        {"big float of double", H5T_IEEE_F32BE, H5T_NATIVE_DOUBLE},
        {"int", H5T_STD_I32LE, H5T_NATIVE_INT32},
        {"big int", H5T_STD_I32BE, H5T_NATIVE_INT32},
        {"long", H5T_STD_I64LE, H5T_NATIVE_INT64},
        {"long of int", H5T_STD_I64LE, H5T_NATIVE_INT32},
        {"short of int", H5T_STD_I16LE, H5T_NATIVE_INT32},
    };
}

/// Values of the memory type: smooth with small digits that are not, some of them equal.
Bytes some_values(hid_t memory_type, std::size_t elements)
{
    Bytes bytes(elements * H5Tget_size(memory_type));
    const auto fill = [&](auto zero) {
        using Number = decltype(zero);
        for (std::size_t i = 0; i < elements; ++i) {
            const auto smooth = static_cast<double>(i % 50) * 3.25;
            const double value =
                std::is_integral_v<Number> ? smooth : smooth + static_cast<double>(between(0, 999)) * 1e-5;
            const auto number = static_cast<Number>(value);
            std::memcpy(bytes.data() + i * sizeof number, &number, sizeof number);
        }
    };
    if (H5Tget_class(memory_type) == H5T_STRING) {
        for (auto& byte : bytes) byte = static_cast<std::byte>(between('a', 'd'));
    } else if (H5Tequal(memory_type, H5T_NATIVE_DOUBLE) > 0) {
        fill(double{});
    } else if (H5Tequal(memory_type, H5T_NATIVE_FLOAT) > 0) {
        fill(float{});
    } else if (H5Tequal(memory_type, H5T_NATIVE_INT32) > 0) {
        fill(std::int32_t{});
    } else {
        fill(std::int64_t{});
    }
    return bytes;
}

struct Shape {
    std::vector<hsize_t> extents;
    std::vector<hsize_t> chunk;
};

std::vector<Shape> shapes()
{
    return {{{8}, {8}},         {{1003}, {1003}},           {{1003}, {100}},
            {{40, 3}, {40, 3}}, {{7, 250, 3}, {1, 100, 3}}, {{10, 33, 2, 2}, {4, 10, 2, 2}},
            {{5, 6}, {2, 7}},   {{300, 3}, {128, 2}}};
}

BlockOf random_block(const std::vector<hsize_t>& extents)
{
    BlockOf block;
    for (const hsize_t extent : extents) {
        const std::size_t first = between(0, extent - 1);
        block.first.push_back(first);
        block.count.push_back(between(1, extent - first));
    }
    return between(0, 3) == 0 ? all_of(extents) : block;
}

class Chunks : public testing::Test {
protected:
    hid_t at() const { return file_; }
    std::string next_name() { return "d" + std::to_string(++made_); }

    /// A chunked dataset with a fill value of its own on demand.
    Hid make(hid_t type, const Shape& shape, const std::function<void(hid_t)>& filters, int fill = 0)
    {
        const auto list = chunked_list(shape.chunk, [&](hid_t chunked) {
            filters(chunked);
            if (fill != 0) H5Pset_fill_value(chunked, H5T_NATIVE_INT, &fill);
        });
        return create_dataset(at(), next_name(), type, shape.extents, list);
    }
    /// The same without chunks.
    Hid make_plain(hid_t type, const Shape& shape, int fill = 0)
    {
        const Hid list{H5Pcreate(H5P_DATASET_CREATE)};
        H5Pset_fill_value(list, H5T_NATIVE_INT, &fill);
        return create_dataset(at(), next_name(), type, shape.extents, list);
    }
    Hid make_doubles(std::size_t elements, const std::function<void(hid_t)>& filters)
    {
        return make(H5T_IEEE_F64LE, {{elements}, {elements}}, filters);
    }

private:
    QuietHdf5 quiet_;
    TempFile temp_;
    Hid file_ = create_file(temp_.path());
    int made_ = 0;
};

} // namespace

TEST_F(Chunks, What_we_write_in_blocks_is_what_HDF5_reads)
{
    for (const auto& filters : {shuffled, deflated, shuffled_and_deflated}) {
        for (const TypeCase& type : type_cases()) {
            for (const Shape& shape : shapes()) {
                const int fill = between(0, 1) == 0 ? 0 : 77;
                const Hid ours = make(type.stored, shape, filters, fill);
                const Hid plain = make_plain(type.stored, shape, fill);
                for (int i = 0; i < 4; ++i) {
                    const BlockOf block = random_block(shape.extents);
                    const Bytes values = some_values(type.memory, block.elements());
                    ASSERT_EQ(write(ours, type.memory, block, values.data()), ChunkTransfer::done);
                    ASSERT_GE(write_block(plain, type.memory, block, values.data()), 0);
                }
                const Bytes found = stored_bytes(ours);
                ASSERT_FALSE(found.empty());
                ASSERT_EQ(found, stored_bytes(plain)) << type.name << ", extents " << shape.extents.size();
            }
        }
    }
}

TEST_F(Chunks, What_HDF5_writes_in_blocks_is_what_we_read)
{
    for (const auto& filters : {shuffled, deflated, shuffled_and_deflated}) {
        for (const TypeCase& type : type_cases()) {
            for (const Shape& shape : shapes()) {
                const Hid dataset = make(type.stored, shape, filters, between(0, 1) == 0 ? 0 : 77);
                const BlockOf written = random_block(shape.extents);
                const Bytes values = some_values(type.memory, written.elements());
                ASSERT_GE(write_block(dataset, type.memory, written, values.data()), 0);
                for (int i = 0; i < 3; ++i) {
                    const BlockOf block = random_block(shape.extents);
                    Bytes expected(block.elements() * H5Tget_size(type.memory));
                    Bytes found = expected;
                    ASSERT_GE(read_block(dataset, type.memory, block, expected.data()), 0);
                    ASSERT_EQ(read(dataset, type.memory, block, found.data()), ChunkTransfer::done);
                    ASSERT_EQ(found, expected) << type.name << ", extents " << shape.extents.size();
                }
            }
        }
    }
}

TEST_F(Chunks, No_extents_mean_the_whole_dataset)
{
    const Hid dataset = make(H5T_IEEE_F64LE, {{20, 3}, {6, 3}}, shuffled_and_deflated);
    const Bytes values = some_values(H5T_NATIVE_DOUBLE, 60);
    ASSERT_EQ(kob::write_chunks(dataset, H5T_NATIVE_DOUBLE, {}, values.data()), ChunkTransfer::done);
    EXPECT_EQ(stored_bytes(dataset), values);
    Bytes found(values.size());
    ASSERT_EQ(kob::read_chunks(dataset, H5T_NATIVE_DOUBLE, {}, found.data()), ChunkTransfer::done);
    EXPECT_EQ(found, values);
}

TEST_F(Chunks, Texts_of_any_size_are_transferred)
{
    for (const std::size_t size : {1, 5, 256}) {
        const Hid type = text_type(size);
        const Hid dataset = make(type, {{31, 2}, {8, 2}}, shuffled_and_deflated);
        const Bytes values = some_values(type, 62);
        ASSERT_EQ(write(dataset, type, all_of({31, 2}), values.data()), ChunkTransfer::done);
        EXPECT_EQ(stored_bytes(dataset), values);
        Bytes found(values.size());
        ASSERT_EQ(read(dataset, type, all_of({31, 2}), found.data()), ChunkTransfer::done);
        EXPECT_EQ(found, values);
    }
}

TEST_F(Chunks, Filters_that_a_chunk_left_out_are_not_undone)
{
    const Bytes values = some_values(H5T_NATIVE_DOUBLE, 100);
    for (const std::uint32_t mask : {1U, 2U, 3U}) {
        // What a filter of the mask would have done to the bytes is done by a dataset that lacks that filter.
        const Hid partly = make_doubles(
            100, mask == 1   ? deflated
                 : mask == 2 ? shuffled
                             : [](hid_t) {});
        ASSERT_GE(write_block(partly, H5T_NATIVE_DOUBLE, all_of({100}), values.data()), 0);
        Hid dataset = make_doubles(100, shuffled_and_deflated);
        put_raw_chunk(dataset, {0}, {raw_chunk(partly, {0}).bytes, mask});
        Bytes found(values.size());
        ASSERT_EQ(read(dataset, H5T_NATIVE_DOUBLE, all_of({100}), found.data()), ChunkTransfer::done);
        EXPECT_EQ(found, values) << mask;
        EXPECT_EQ(stored_bytes(dataset), values) << mask;
    }
}

TEST_F(Chunks, A_chunk_overwritten_by_one_of_the_same_size_takes_its_filter_mask)
{
    const Bytes values = some_values(H5T_NATIVE_DOUBLE, 100);
    Hid dataset = make_doubles(100, shuffled);
    put_raw_chunk(dataset, {0}, {values, 1});
    ASSERT_EQ(stored_bytes(dataset), values);
    ASSERT_EQ(write(dataset, H5T_NATIVE_DOUBLE, all_of({100}), values.data()), ChunkTransfer::done);
    EXPECT_EQ(raw_chunk(dataset, {0}).filter_mask, 0U);
    EXPECT_EQ(stored_bytes(dataset), values);
}

TEST_F(Chunks, What_HDF5_keeps_in_its_cache_is_seen)
{
    const Hid dataset = make_doubles(100, shuffled_and_deflated);
    Bytes values = some_values(H5T_NATIVE_DOUBLE, 100);
    ASSERT_GE(write_block(dataset, H5T_NATIVE_DOUBLE, all_of({100}), values.data()), 0);
    Bytes found(values.size());
    ASSERT_EQ(read(dataset, H5T_NATIVE_DOUBLE, all_of({100}), found.data()), ChunkTransfer::done);
    EXPECT_EQ(found, values);
    ASSERT_EQ(stored_bytes(dataset), values); // HDF5 has it in its cache now
    const Bytes part = some_values(H5T_NATIVE_DOUBLE, 10);
    ASSERT_EQ(write(dataset, H5T_NATIVE_DOUBLE, {{20}, {10}}, part.data()), ChunkTransfer::done);
    std::copy(part.begin(), part.end(), values.begin() + 20 * 8);
    EXPECT_EQ(stored_bytes(dataset), values);
}

TEST_F(Chunks, Datasets_of_other_filters_and_layouts_are_left_to_HDF5)
{
    const auto deflated_first = [](hid_t list) {
        H5Pset_deflate(list, 6);
        H5Pset_shuffle(list);
    };
    const auto never_filled = [](hid_t list) {
        H5Pset_deflate(list, 6);
        H5Pset_fill_time(list, H5D_FILL_TIME_NEVER);
    };
    const auto without_fill_value = [](hid_t list) {
        H5Pset_deflate(list, 6);
        H5Pset_fill_value(list, H5T_NATIVE_DOUBLE, nullptr);
    };
    Bytes values(800);
    for (const std::function<void(hid_t)>& filters :
         {std::function<void(hid_t)>{H5Pset_fletcher32}, {deflated_first}, {never_filled}, {without_fill_value}}) {
        const Hid dataset = make_doubles(100, filters);
        EXPECT_EQ(write(dataset, H5T_NATIVE_DOUBLE, all_of({100}), values.data()), ChunkTransfer::left);
        EXPECT_EQ(read(dataset, H5T_NATIVE_DOUBLE, all_of({100}), values.data()), ChunkTransfer::left);
    }
    const Hid plain = make_plain(H5T_IEEE_F64LE, {{100}, {}});
    EXPECT_EQ(read(plain, H5T_NATIVE_DOUBLE, all_of({100}), values.data()), ChunkTransfer::left);
    const Hid dataset = make_doubles(100, shuffled_and_deflated);
    EXPECT_EQ(write(dataset, H5T_NATIVE_DOUBLE, all_of({100}), nullptr), ChunkTransfer::left);
    EXPECT_TRUE(raw_chunk(dataset, {0}).bytes.empty());
}

TEST_F(Chunks, Without_filters_whole_chunks_alone_are_taken)
{
    const Hid list = chunked_list({1, 1000}, [](hid_t) {});
    const Hid dataset = create_dataset(at(), "rows", H5T_IEEE_F64LE, {3, 4000}, list);
    Bytes values = some_values(H5T_NATIVE_DOUBLE, 3 * 4000);
    const std::size_t row = 4000 * sizeof(double);
    // Twice: what lies there already is replaced.
    for (int i = 0; i < 2; ++i) {
        std::reverse(values.begin(), values.end());
        EXPECT_EQ(write(dataset, H5T_NATIVE_DOUBLE, all_of({3, 4000}), values.data()), ChunkTransfer::done);
        EXPECT_EQ(stored_bytes(dataset), values);
    }
    const Bytes middle = some_values(H5T_NATIVE_DOUBLE, 4000);
    EXPECT_EQ(write(dataset, H5T_NATIVE_DOUBLE, {{1, 0}, {1, 4000}}, middle.data()), ChunkTransfer::done);
    std::copy(middle.begin(), middle.end(), values.begin() + static_cast<std::ptrdiff_t>(row));
    EXPECT_EQ(stored_bytes(dataset), values);

    EXPECT_EQ(read(dataset, H5T_NATIVE_DOUBLE, all_of({3, 4000}), values.data()), ChunkTransfer::left);
    EXPECT_EQ(write(dataset, H5T_NATIVE_DOUBLE, {{0, 0}, {1, 3999}}, middle.data()), ChunkTransfer::left);
    EXPECT_EQ(write(dataset, H5T_NATIVE_DOUBLE, {{0, 500}, {1, 1000}}, middle.data()), ChunkTransfer::left);
    EXPECT_EQ(write(dataset, H5T_NATIVE_FLOAT, {{0, 0}, {1, 4000}}, middle.data()), ChunkTransfer::left);
    const Hid with_rest = create_dataset(at(), "rest", H5T_IEEE_F64LE, {3, 3999}, list);
    EXPECT_EQ(write(with_rest, H5T_NATIVE_DOUBLE, {{0, 0}, {1, 3999}}, middle.data()), ChunkTransfer::left);
    const Hid two_rows =
        create_dataset(at(), "pairs", H5T_IEEE_F64LE, {4, 1000}, chunked_list({2, 1000}, [](hid_t) {}));
    EXPECT_EQ(write(two_rows, H5T_NATIVE_DOUBLE, {{0, 0}, {1, 1000}}, middle.data()), ChunkTransfer::left);
    EXPECT_EQ(stored_bytes(dataset), values);
}

TEST_F(Chunks, A_damaged_chunk_fails_and_harms_nothing)
{
    const Bytes values = some_values(H5T_NATIVE_DOUBLE, 500);
    Bytes found(values.size());
    for (const auto& filters : {shuffled, deflated, shuffled_and_deflated}) {
        Hid dataset = make_doubles(500, filters);
        ASSERT_EQ(write(dataset, H5T_NATIVE_DOUBLE, all_of({500}), values.data()), ChunkTransfer::done);
        const RawChunk good = raw_chunk(dataset, {0});
        const auto reads = [&](const RawChunk& chunk) {
            put_raw_chunk(dataset, {0}, chunk);
            return read(dataset, H5T_NATIVE_DOUBLE, all_of({500}), found.data());
        };
        RawChunk shorter = good;
        shorter.bytes.resize(good.bytes.size() / 2);
        EXPECT_EQ(reads(shorter), ChunkTransfer::failed);
        RawChunk single = good;
        single.bytes.resize(1);
        EXPECT_EQ(reads(single), ChunkTransfer::failed);
        EXPECT_EQ(reads({good.bytes, 3U}),
                  good.bytes.size() == values.size() ? ChunkTransfer::done : ChunkTransfer::failed);
        for (int i = 0; i < 200; ++i) {
            RawChunk altered = good;
            for (std::size_t changes = between(1, 4); changes > 0; --changes) {
                altered.bytes[between(0, altered.bytes.size() - 1)] = static_cast<std::byte>(between(0, 255));
            }
            altered.bytes.resize(between(altered.bytes.size() - 3, altered.bytes.size() + 3));
            reads(altered); // whatever comes of it, nothing is read or written outside
        }
    }
}

TEST_F(Chunks, A_stream_longer_than_the_chunk_fails)
{
    const Bytes values = some_values(H5T_NATIVE_DOUBLE, 500);
    const Hid longer = make_doubles(500, shuffled_and_deflated);
    ASSERT_EQ(write(longer, H5T_NATIVE_DOUBLE, all_of({500}), values.data()), ChunkTransfer::done);
    Hid dataset = make_doubles(400, shuffled_and_deflated);
    put_raw_chunk(dataset, {0}, raw_chunk(longer, {0}));
    Bytes found(400 * 8);
    EXPECT_EQ(read(dataset, H5T_NATIVE_DOUBLE, all_of({400}), found.data()), ChunkTransfer::failed);
}

namespace {

long highest_kilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

constexpr long much_less_than_a_huge_chunk = 500'000; // kilobytes

/// Three elements in a chunk of 2 GB that nobody wrote; they are 2.5. A file of a few kilobytes may say that its chunks
/// are as large as HDF5 lets them be.
template <class Add> Hid huge_chunk(hid_t file, Add&& add)
{
    const auto list = chunked_list({hsize_t{1} << 28}, [&](hid_t chunked) {
        const double fill = 2.5;
        H5Pset_fill_value(chunked, H5T_NATIVE_DOUBLE, &fill);
        add(chunked);
    });
    const Hid space = space_of({3}, {H5S_UNLIMITED});
    return Hid{H5Dcreate2(file, "huge", H5T_IEEE_F64LE, space, H5P_DEFAULT, list, H5P_DEFAULT)};
}

} // namespace

TEST_F(Chunks, A_huge_chunk_that_is_not_there_takes_no_memory)
{
    const Hid dataset = huge_chunk(at(), shuffled_and_deflated);
    std::vector<float> found(3);
    const long before = highest_kilobytes();
    ASSERT_EQ(read(dataset, H5T_NATIVE_FLOAT, all_of({3}), found.data()), ChunkTransfer::done);
    EXPECT_EQ(found, std::vector<float>(3, 2.5F));
    EXPECT_LT(highest_kilobytes() - before, much_less_than_a_huge_chunk);
}

TEST_F(Chunks, Points_of_a_huge_chunk_that_is_not_there_take_no_memory)
{
    const Hid dataset = huge_chunk(at(), [](hid_t list) { H5Pset_scaleoffset(list, H5Z_SO_FLOAT_DSCALE, 3); });
    std::vector<float> found(2);
    const long before = highest_kilobytes();
    ASSERT_EQ(kob::read_points(dataset, H5T_NATIVE_FLOAT, std::vector<hsize_t>{2, 0}, found.data()),
              ChunkTransfer::done);
    EXPECT_EQ(found, std::vector<float>(2, 2.5F));
    ASSERT_TRUE(kob::cut_chunks(dataset, 2));
    EXPECT_LT(highest_kilobytes() - before, much_less_than_a_huge_chunk);
    EXPECT_EQ(stored_extents(at(), "huge"), (std::vector<hsize_t>{2}));
}
