// SPDX-License-Identifier: BSD-3-Clause
// Results under every chain of filters, read by another HDF5 library from another language, and compared with the same
// results stored plainly.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "captured_stream.hpp"
#include "entity_results.hpp"
#include "kob_file.hpp"
#include "result_blocks.hpp"

using namespace kob_test;

namespace {

constexpr int deflate = 2;
constexpr int shuffle = 16;
constexpr int scale_offset = 128;

/// Sets of one place: the plain values, and from 1 on the same under filters.
constexpr int plain_set = 0;

EntityResults smooth_results(std::int32_t nent)
{
    EntityResults results = EntityResults::sample();
    results.nent = nent;
    results.entid.clear();
    results.res.clear();
    for (int i = 0; i < nent; ++i) {
        results.entid.push_back(i + 1);
        for (int component = 0; component < 3; ++component) {
            results.res.push_back(std::sin(0.01 * i + component) * 20 + 1e-7 * (i * 7919 % 1009));
        }
    }
    return results;
}

} // namespace

TEST(FilteredResults, Python_reads_what_was_given)
{
    if (std::system("/usr/bin/python3 -c 'import h5py' >/dev/null 2>&1") != 0) GTEST_SKIP() << "no python3-h5py here";
    KobFile file;
    int sets = 0;
    int state = 0;
    const auto write = [&](EntityResults results) {
        ++state;
        results.indexident = {state};
        for (const int value_size : {8, 4}) {
            results.etypvar = value_size == 8 ? "DOUBLE" : "FLOAT";
            ASSERT_EQ(results.write(file.handle(), state, value_size, {}, plain_set), 0);
            int set = plain_set;
            for (const int flags : {deflate, shuffle, shuffle + deflate, scale_offset, scale_offset + shuffle,
                                    scale_offset + deflate, scale_offset + shuffle + deflate}) {
                for (const int level : {1, 6}) {
                    ASSERT_EQ(results.write(file.handle(), state, value_size,
                                            {.filter_flags = flags, .filter_params = {4, level}}, ++set),
                              0);
                    ++sets;
                }
            }
        }
    };
    write(smooth_results(1001));
    EntityResults odd = smooth_results(77);
    odd.res[5] = std::numeric_limits<double>::quiet_NaN();
    write(odd);
    EntityResults wide = smooth_results(50);
    wide.res[7] = 1e37;
    write(wide);

    // A series that several rows of share a chunk, in steps, then cut by nobody.
    std::int32_t rows_before = 0;
    std::int32_t rows = 4;
    KOB_GET_CHUNK_SIZE(&rows_before);
    KOB_SET_CHUNK_SIZE(&rows);
    for (const int flags : {0, shuffle + deflate, scale_offset + shuffle + deflate}) {
        MultiEntityResults series{3};
        series.set = flags == 0 ? plain_set : flags;
        series.filter_flags = flags;
        series.filter_params = {4, 6};
        ASSERT_EQ(series.write(file).status, 0);
        for (int row = 3; row < 10; ++row) ASSERT_EQ(series.one_at(row, 0.12345678 * row).write(file).status, 0);
        sets += flags == 0 ? 0 : 1;
    }
    KOB_SET_CHUNK_SIZE(&rows_before);
    file.close();
    const std::string command = std::string{"/usr/bin/python3 "} +
                                KOB_SOURCE_DIR "/tests/layout/read_filtered_with_h5py.py " + file.path() + " 2>&1";
    int result = -1;
    const auto talk = output_of([&] { result = std::system(command.c_str()); });
    EXPECT_EQ(result, 0) << talk;
    EXPECT_EQ(talk, std::to_string(sets) + " sets as expected\n");
    if (std::system("command -v h5dump >/dev/null 2>&1") == 0) {
        EXPECT_EQ(std::system(("h5dump " + file.path() + " >/dev/null 2>&1").c_str()), 0);
    }
}
