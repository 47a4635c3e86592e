// SPDX-License-Identifier: BSD-3-Clause
// A result file of a test's own, opened and closed through the library's public entry points.
#pragma once

#include <cstdint>
#include <string>

#include <gtest/gtest.h>
#include <kob_dp.h>

#include "identifiers.hpp"
#include "temp_file.hpp"

namespace kob_test {

/// The modes of KOB_OPEN's option word.
enum OpenMode : std::int32_t {
    create_results = 0,      ///< a new file with the group "results" behind the link "post"
    update = 1,              ///< existing, read and write
    read_only = 2,           ///< existing
    create_empty = 8,        ///< a new file without groups
    update_root = 9,         ///< as 1, hands back the root group
    read_only_root = 10,     ///< as 2, hands back the root group
    create_or_open_root = 13 ///< creates or opens, hands back the root group
};

/// An open result file: closed through KOB_CLOSE at the end of its scope, which fails the test when the library
/// left anything but groups open in it.
class KobFile {
public:
    /// A new file in a folder of its own.
    explicit KobFile(std::int32_t option = create_results) : KobFile{TempFileName{}, option} {}
    /// A file elsewhere.
    explicit KobFile(const std::string& path, std::int32_t option) : path_{path} { open(option); }
    ~KobFile() { close(); }
    KobFile(const KobFile&) = delete;
    KobFile& operator=(const KobFile&) = delete;

    const std::string& path() const { return path_; }
    /// The result-set handle, as every writer takes it.
    const std::int64_t* address() const { return &handle_; }
    std::int64_t* address() { return &handle_; }
    std::int64_t handle() const { return handle_; }

    void close()
    {
        if (handle_ <= 0) return;
        EXPECT_EQ(OpenIdentifiers::now().added_since(before_, {H5I_FILE, H5I_GROUP}), "")
            << "left open, besides groups, when the file was about to be closed";
        std::int32_t status = 77;
        KOB_CLOSE(&handle_, &status);
        EXPECT_EQ(status, 0) << "KOB_CLOSE";
        handle_ = 0;
    }
    void reopen(std::int32_t option)
    {
        close();
        open(option);
    }

    /// Opens the group at this path, relative to the result-set handle, creating what is missing of it.
    std::int64_t new_group(std::string group_path) const
    {
        std::int32_t length = -1;
        std::int32_t create = 0;
        std::int64_t group = -1;
        std::int32_t status = 77;
        KOB_H5GOPEN(&handle_, group_path.data(), &length, &create, &group, &status);
        EXPECT_GT(status, 0) << group_path << " was there or cannot be created";
        return group;
    }
    /// Opens the block at this path, relative to the result-set handle; the file's close takes it back.
    std::int64_t block(std::string block_path) const
    {
        std::int64_t parent = handle_;
        std::int32_t length = -1;
        std::int32_t open_only = 1;
        std::int64_t group = -1;
        std::int32_t status = 77;
        KOB_H5GOPEN(&parent, block_path.data(), &length, &open_only, &group, &status);
        EXPECT_EQ(status, 0) << "no block at " << block_path;
        return group;
    }

private:
    struct TempFileName {};
    KobFile(TempFileName /*unused*/, std::int32_t option) : path_{temporary_.path()} { open(option); }

    void open(std::int32_t option)
    {
        before_ = OpenIdentifiers::now();
        std::string name = path_;
        std::string group = "results";
        std::string domain;
        auto name_length = static_cast<std::int32_t>(name.size());
        auto group_length = static_cast<std::int32_t>(group.size());
        std::int32_t domain_length = 0;
        std::int32_t no_domain = 0;
        std::int32_t status = 77;
        KOB_OPEN(name.data(), &name_length, group.data(), &group_length, domain.data(), &domain_length, &handle_,
                 &no_domain, &option, &status);
        EXPECT_EQ(status, 0) << "KOB_OPEN of " << path_ << " with option " << option;
    }

    TempFile temporary_;
    std::string path_;
    std::int64_t handle_ = 0;
    OpenIdentifiers before_;
};

} // namespace kob_test
