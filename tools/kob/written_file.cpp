// SPDX-License-Identifier: BSD-3-Clause
// Opens and closes the files that the program writes.

#include "written_file.hpp"

#include "file.hpp"
#include "terminal.hpp"
#include "verbs.hpp"

#include "kob_dp.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace kob::program {

namespace {

constexpr std::int32_t create_results = 0;
constexpr std::int32_t update = 1;
constexpr std::int32_t update_root = 9;

} // namespace

WrittenFile::WrittenFile(std::string path, std::int32_t mode) : path_{std::move(path)}
{
    const std::string group = "results";
    const auto path_length = static_cast<std::int32_t>(path_.size());
    const auto group_length = static_cast<std::int32_t>(group.size());
    const std::int32_t zero = 0;
    std::int32_t status = 0;
    KOB_OPEN(path_.c_str(), &path_length, group.c_str(), &group_length, "", &zero, &handle_, &zero, &mode, &status);
    if (status < 0) {
        handle_ = 0;
        throw Failure{exit_cannot_read,
                      fmt::format("\"{}\" cannot be opened for writing (status {})", printable(path_), status)};
    }
}

WrittenFile WrittenFile::create(const std::string& path) { return {path, create_results}; }

WrittenFile WrittenFile::open(const std::string& path)
{
    try {
        const Diverted errors{STDERR_FILENO}; // the second way tells if there is none
        return {path, update};
    } catch (const Failure&) {
        return {path, update_root};
    }
}

WrittenFile::WrittenFile(WrittenFile&& other) noexcept
    : path_{std::move(other.path_)}, handle_{std::exchange(other.handle_, 0)}
{
}

WrittenFile::~WrittenFile()
{
    std::int32_t status = 0;
    if (handle_ > 0) KOB_CLOSE(&handle_, &status);
}

void WrittenFile::write_header()
{
    std::int32_t status = 0;
    KOB_WRITE_FILEHEADER(&handle_, nullptr, nullptr, &status);
    check_header(status);
}

void WrittenFile::write_older_header()
{
    std::int32_t status = 0;
    KOB1_WRITE_FILEHEADER(&handle_, nullptr, nullptr, &status);
    check_header(status);
}

void WrittenFile::check_header(std::int32_t status) const
{
    if (status < 0)
        throw Failure{exit_cannot_read,
                      fmt::format("\"{}\": the file header cannot be written (status {})", printable(path_), status)};
}

void WrittenFile::close()
{
    std::int32_t status = 0;
    std::int64_t handle = std::exchange(handle_, 0);
    KOB_CLOSE(&handle, &status);
    if (status < 0)
        throw Failure{exit_cannot_read,
                      fmt::format("\"{}\" cannot be written to its end (status {})", printable(path_), status)};
}

void allow_open_files(std::size_t count)
{
    constexpr rlim_t others = 64;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= count + others) return;
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, count + others);
    setrlimit(RLIMIT_NOFILE, &limit);
}

void with_report(bool shown, const std::function<void()>& call)
{
    std::optional<Diverted> away;
    if (!shown) away.emplace(STDOUT_FILENO);
    call();
}

} // namespace kob::program
