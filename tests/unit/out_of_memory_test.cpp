// SPDX-License-Identifier: BSD-3-Clause
// Memory that runs out in the middle of a transfer of chunks, at each allocation in turn: the call says so in one line,
// loses nothing that it had, and leaves a file that can be read and written.
#include "kob_chunk_transfer.hpp"
#include "kob_entry.hpp"
#include "kob_storage.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <libdeflate.h>
#include <new>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "support/captured_stream.hpp"
#include "support/chunked_dataset.hpp"
#include "support/identifiers.hpp"
#include "support/temp_file.hpp"

namespace {

/// Which allocations of this program by `new`, and by libdeflate, are refused.
struct Refusal {
    long granted = -1; ///< so many more are granted; negative: all
    bool just_one = false;
    bool happened = false;
};
Refusal refusal;

void* allocate(std::size_t size) noexcept
{
    if (refusal.granted == 0) {
        refusal.happened = true;
        if (refusal.just_one) refusal.granted = -1;
        return nullptr;
    }
    if (refusal.granted > 0) --refusal.granted;
    return std::malloc(size != 0 ? size : 1);
}

void* allocate_or_throw(std::size_t size)
{
    void* const memory = allocate(size);
    if (memory == nullptr) throw std::bad_alloc{};
    return memory;
}

} // namespace

void* operator new(std::size_t size) { return allocate_or_throw(size); }
void* operator new[](std::size_t size) { return allocate_or_throw(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }

using namespace kob_test;

namespace {

using Values = std::vector<double>;

constexpr hsize_t columns = 30;
constexpr hsize_t rows = 10;
constexpr hsize_t rows_written = 8; ///< the last chunk of four rows is not there
constexpr double fill = 2.5;

/// Multiples of 1/8, which three decimal digits hold.
Values some_values(std::size_t count, double first)
{
    Values values(count);
    for (std::size_t i = 0; i < count; ++i) values[i] = first + static_cast<double>(i % 37) / 8;
    return values;
}

void scaled(hid_t list) { H5Pset_scaleoffset(list, H5Z_SO_FLOAT_DSCALE, 3); }
void deflated(hid_t list)
{
    H5Pset_shuffle(list);
    H5Pset_deflate(list, 6);
}
void scaled_and_deflated(hid_t list)
{
    scaled(list);
    deflated(list);
}

struct FilterCase {
    const char* name;
    void (*add)(hid_t list);

    friend std::ostream& operator<<(std::ostream& out, const FilterCase& filters) { return out << filters.name; }
};
constexpr FilterCase only_scaled{"scaled", scaled};
constexpr FilterCase only_deflated{"deflated", deflated};
constexpr FilterCase both{"scaled_and_deflated", scaled_and_deflated};

std::string name_of(const testing::TestParamInfo<FilterCase>& info) { return info.param.name; }

struct Result {
    std::int32_t status = 77;
    std::string lines;
    bool was_refused = false;
};

/// Runs a call as an entry point would, with memory for `granted` allocations.
template <class Call> Result run_short_of_memory(long granted, bool just_one, Call&& call)
{
    Result result;
    CapturedStream captured;
    refusal = {granted, just_one};
    kob::entry(&result.status, call);
    result.was_refused = std::exchange(refusal, {}).happened;
    result.lines = captured.err();
    return result;
}

class OutOfMemory : public testing::TestWithParam<FilterCase> {
protected:
    OutOfMemory() { libdeflate_set_memory_allocator(allocate, std::free); }
    ~OutOfMemory() override { libdeflate_set_memory_allocator(std::malloc, std::free); }

    void make()
    {
        if (has_link(file_, "d")) H5Ldelete(file_, "d", H5P_DEFAULT);
        const auto list = chunked_list({4, columns}, [](hid_t chunked) {
            H5Pset_fill_value(chunked, H5T_NATIVE_DOUBLE, &fill);
            GetParam().add(chunked);
        });
        const Hid dataset = create_dataset(file_, "d", H5T_IEEE_F64LE, {rows, columns}, list);
        before_ = some_values(rows_written * columns, 1);
        ASSERT_GE(write_block(dataset, H5T_NATIVE_DOUBLE, {{0, 0}, {rows_written, columns}}, before_.data()), 0);
        before_.resize(rows * columns, fill);
    }

    Values stored() const
    {
        const Hid dataset{H5Dopen2(file_, "d", H5P_DEFAULT)};
        const auto extents = stored_extents(file_, "d");
        Values found(extents[0] * extents[1]);
        EXPECT_GE(H5Dread(dataset, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, found.data()), 0);
        return found;
    }

    /// Refuses each allocation of a call in turn, and once all that follow it too. `failure` is what the call gives
    /// when it has no memory for a chunk; `check(is_done)` looks at what it left.
    template <class Call>
    void refuse_each(std::int32_t failure, const std::string& beginning_of_line, Call&& call,
                     const std::function<void(bool)>& check)
    {
        for (const bool just_one : {true, false}) {
            int failures = 0;
            constexpr long plenty = 1000;
            for (long granted = 0; granted < plenty && !HasFailure(); ++granted) {
                SCOPED_TRACE(std::to_string(granted) + (just_one ? " granted, one refused" : " granted"));
                make();
                Result result;
                EXPECT_EQ(left_open_by([&] { result = run_short_of_memory(granted, just_one, call); }), "");
                if (result.status == failure) {
                    ++failures;
                    EXPECT_EQ(result.lines.rfind(beginning_of_line, 0), 0U) << result.lines;
                    EXPECT_EQ(result.lines.find('\n'), result.lines.size() - 1) << result.lines;
                } else if (result.status == -1) {
                    EXPECT_EQ(result.lines, "KOB ERROR - out of memory\n");
                } else {
                    EXPECT_EQ(result.status, 0);
                    EXPECT_EQ(result.lines, "");
                }
                check(result.status == 0);
                if (!result.was_refused) {
                    EXPECT_EQ(result.status, 0);
                    break;
                }
            }
            EXPECT_GT(failures, 0);
        }
    }

    /// The same for a write, which gives the elements of `after` that are not those of before. Where it makes the
    /// dataset grow, a failed one may have done so.
    template <class Call> void refuse_each_of_write(const Values& after, Call&& call)
    {
        refuse_each(-3999, "KOB INTERNAL ERROR (999) in KOB_H5Dwrite - ", call, [&](bool is_done) {
            Values found = stored();
            if (!is_done) found.resize(after.size(), fill);
            before_.resize(after.size(), fill);
            ASSERT_EQ(found.size(), after.size());
            for (std::size_t i = 0; i < found.size(); ++i) {
                const bool is_after = std::abs(found[i] - after[i]) < 1e-9;
                EXPECT_TRUE(is_after || (!is_done && std::abs(found[i] - before_[i]) < 1e-9)) << i << ": " << found[i];
            }
            if (!is_done) {
                EXPECT_EQ(call(), 0);
                expect_near(stored(), after);
            }
        });
    }

    template <class Call> void refuse_each_of_read(const Values& expected, Values& found, Call&& call)
    {
        refuse_each(-6999, "KOB INTERNAL ERROR (999) in KOB_H5Dread - ", call, [&](bool is_done) {
            if (!is_done) {
                EXPECT_EQ(call(), 0);
            }
            expect_near(found, expected);
            std::fill(found.begin(), found.end(), 0);
        });
    }

    std::int32_t write(std::int32_t mode, const std::vector<std::int64_t>& count,
                       const std::vector<std::int64_t>& start, const Values& values) const
    {
        return kob::KOB_H5Dwrite("d", values.data(), kob::type_code::real, 8, 8, dims_.data(), 2, count.data(),
                                 start.data(), mode, file_, 0, no_params_.data(), {.origin = kob::Origin::first});
    }
    std::int32_t read(std::int32_t mode, const std::vector<std::int64_t>& count, const std::vector<std::int64_t>& start,
                      Values& values) const
    {
        return kob::KOB_H5Dread("d", values.data(), kob::type_code::real, 8, dims_.data(), 2, count.data(),
                                start.data(), mode, file_, nullptr, nullptr, nullptr);
    }

    static void expect_near(const Values& found, const Values& expected)
    {
        ASSERT_EQ(found.size(), expected.size());
        for (std::size_t i = 0; i < found.size(); ++i) EXPECT_NEAR(found[i], expected[i], 1e-9) << i;
    }

    hid_t file() const { return file_; }
    const Values& before() const { return before_; }

private:
    QuietHdf5 quiet_;
    TempFile temp_;
    Hid file_ = create_file(temp_.path());
    Values before_;
    std::vector<hsize_t> dims_{rows, columns};
    std::vector<std::int32_t> no_params_{0, 0};
};

TEST_P(OutOfMemory, A_write_of_a_block_fails_in_one_line_and_harms_nothing)
{
    make();
    const std::vector<std::int64_t> count{6, columns - 1}; // parts of each chunk
    const std::vector<std::int64_t> start{3, 1};
    const Values values = some_values(6 * (columns - 1), 3);
    Values after = before();
    for (std::size_t i = 0; i < values.size(); ++i) {
        after[(3 + i / (columns - 1)) * columns + 1 + i % (columns - 1)] = values[i];
    }
    refuse_each_of_write(after, [&] { return write(kob::access_mode::block, count, start, values); });
}

TEST_P(OutOfMemory, A_write_of_everything_fails_in_one_line_and_harms_nothing)
{
    const Values values = some_values(rows * columns, 3);
    refuse_each_of_write(values, [&] { return write(kob::access_mode::whole, {}, {}, values); });
}

TEST_P(OutOfMemory, Rows_that_cannot_be_appended_harm_nothing)
{
    make();
    const std::vector<std::int64_t> count{5, columns}; // the end of a chunk, and one more
    const std::vector<std::int64_t> start{rows, 0};
    const Values values = some_values(5 * columns, 3);
    Values after = before();
    after.insert(after.end(), values.begin(), values.end());
    refuse_each_of_write(after, [&] { return write(kob::access_mode::block, count, start, values); });
}

TEST_P(OutOfMemory, A_read_of_a_block_fails_in_one_line)
{
    make();
    const std::vector<std::int64_t> count{8, columns - 1};
    const std::vector<std::int64_t> start{2, 1};
    Values expected;
    for (std::size_t row = 2; row < rows; ++row) {
        for (std::size_t column = 1; column < columns; ++column) expected.push_back(before()[row * columns + column]);
    }
    Values found(expected.size());
    refuse_each_of_read(expected, found, [&] { return read(kob::access_mode::block, count, start, found); });
}

INSTANTIATE_TEST_SUITE_P(Filters, OutOfMemory, testing::Values(only_scaled, only_deflated, both), name_of);

// Points go chunk by chunk under scale-offset alone.
class OutOfMemoryUnderScaleOffset : public OutOfMemory {};

TEST_P(OutOfMemoryUnderScaleOffset, A_write_of_points_fails_in_one_line_and_harms_nothing)
{
    make();
    const std::vector<std::int64_t> coordinates{0, 0, 9, 29, 5, 7, 0, 3};
    const Values values{7, 8, 9, 10};
    Values after = before();
    for (std::size_t i = 0; i < values.size(); ++i) {
        after[static_cast<std::size_t>(coordinates[2 * i]) * columns +
              static_cast<std::size_t>(coordinates[2 * i + 1])] = values[i];
    }
    const std::vector<std::int64_t> count{4};
    refuse_each_of_write(after, [&] { return write(kob::access_mode::points, count, coordinates, values); });
}

TEST_P(OutOfMemoryUnderScaleOffset, A_read_of_points_fails_in_one_line)
{
    make();
    const std::vector<std::int64_t> coordinates{0, 0, 9, 29, 5, 7};
    const std::vector<std::int64_t> count{3};
    Values found(3);
    const Values expected{before()[0], fill, before()[5 * columns + 7]};
    refuse_each_of_read(expected, found, [&] { return read(kob::access_mode::points, count, coordinates, found); });
}

TEST_P(OutOfMemoryUnderScaleOffset, A_cut_fails_and_harms_nothing)
{
    constexpr hsize_t kept = 6;
    constexpr std::int32_t is_not_cut = -2;
    const auto cut = [&]() -> std::int32_t {
        const kob::Id dataset{H5Dopen2(file(), "d", H5P_DEFAULT), H5Dclose};
        return kob::cut_chunks(dataset.get(), kept) ? 0 : is_not_cut;
    };
    int failures = 0;
    for (long granted = 0;; ++granted) {
        SCOPED_TRACE(granted);
        make();
        const Result result = run_short_of_memory(granted, false, cut);
        EXPECT_EQ(result.lines, "");
        Values expected = before();
        if (result.status == 0) expected.resize(kept * columns);
        expect_near(stored(), expected);
        if (!result.was_refused || HasFailure()) {
            EXPECT_EQ(result.status, 0);
            break;
        }
        failures += result.status == is_not_cut ? 1 : 0;
    }
    EXPECT_GT(failures, 0);
}

INSTANTIATE_TEST_SUITE_P(Filters, OutOfMemoryUnderScaleOffset, testing::Values(only_scaled, both), name_of);

} // namespace
