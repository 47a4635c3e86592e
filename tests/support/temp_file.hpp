// SPDX-License-Identifier: BSD-3-Clause
// Temporary folders and files with names of their own, removed at the end of their scope.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kob_test {

/// An empty folder that nobody else uses; removed with all it holds.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::string operator/(std::string_view name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

/// A file name in a folder of its own; the file itself is the test's to make.
class TempFile {
public:
    explicit TempFile(std::string_view name = "run.kob") : path_{dir_ / name} {}

    const std::string& path() const { return path_; }

private:
    TempDir dir_;
    std::string path_;
};

} // namespace kob_test
