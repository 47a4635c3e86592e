// SPDX-License-Identifier: BSD-3-Clause
// A result file that the program writes or changes, and the library's chatter while it does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace kob::program {

/// A file open for writing; closed at the end of its scope, or by `close`, which says what went wrong.
class WrittenFile {
public:
    /// Creates the file with the group "results" behind the link "post".
    static WrittenFile create(const std::string& path);
    /// Opens the group behind "post" or, in a file without that link, the root group.
    static WrittenFile open(const std::string& path);
    ~WrittenFile();
    WrittenFile(WrittenFile&& other) noexcept;
    WrittenFile(const WrittenFile&) = delete;
    WrittenFile& operator=(const WrittenFile&) = delete;

    const std::int64_t* handle() const { return &handle_; }
    void write_header();
    void write_older_header();
    void close();

private:
    WrittenFile(std::string path, std::int32_t mode);
    void check_header(std::int32_t status) const;
    std::string path_;
    std::int64_t handle_ = 0;
};

/// Lets the process hold this many files open, as far as the system permits.
void allow_open_files(std::size_t count);

/// Runs a call that reports on standard output; shows the report only when the user asked for it.
void with_report(bool shown, const std::function<void()>& call);

} // namespace kob::program
