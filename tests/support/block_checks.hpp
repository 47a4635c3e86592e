// SPDX-License-Identifier: BSD-3-Clause
// Checks that every block reader must pass in the same way.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "captured_stream.hpp"
#include "hdf5_file.hpp"
#include "kob_file.hpp"

namespace kob_test {

/// What a call returned and printed on standard error.
struct Reply {
    std::int32_t status = 0;
    std::string errors;

    friend bool operator==(const Reply&, const Reply&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Reply& r) { return out << r.status << "\n" << r.errors; }
};

template <class Call> Reply reply_of(Call&& call)
{
    CapturedStream captured;
    const std::int32_t status = call();
    EXPECT_EQ(captured.out(), "");
    return {status, captured.err()};
}

/// The reply to a second write of a record block.
inline Reply already_exists(int key, const std::string& kind)
{
    return {-1,
            "KOB INTERNAL ERROR writing block key " + std::to_string(key) + " - \"" + kind + "\" already exists.\n"};
}

/// The first line of what was printed.
inline std::string first_line(const std::string& lines) { return lines.substr(0, lines.find('\n') + 1); }

/// A reader, given as a call from block handle to status, refuses an invalid handle, a group without a key, and a
/// block of another kind; it leaves no identifier open and prints nothing else.
template <class Read> void expect_reader_checks_block(Read&& read, const std::string& expected_keys)
{
    EXPECT_EQ(reply_of([&] { return read(std::int64_t{-1}); }), (Reply{-1, "KOB ERROR - header not found\n"}));
    const KobFile file;
    const auto group = file.new_group("group");
    const auto no_key = reply_of([&] { return read(group); });
    EXPECT_EQ(no_key.status, -4002);
    EXPECT_EQ(
        no_key.errors.rfind("KOB INTERNAL ERROR (2) in KOB_H5Aread - name, kob_type, data_size, error: block 2 4 ", 0),
        0U)
        << no_key;
    const std::int32_t key = 77;
    put_attribute(group, "block", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &key);
    EXPECT_EQ(left_open_by([&] {
                  EXPECT_EQ(reply_of([&] { return read(group); }),
                            (Reply{-1, "KOB ERROR - wrong block key 77, " + expected_keys + " expected\n"}));
              }),
              "");
}

} // namespace kob_test
