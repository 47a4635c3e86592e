// SPDX-License-Identifier: BSD-3-Clause
// Groups by path, opened or created level by level.
#include "kob_group.hpp"

#include "kob_dp.h"
#include "kob_entry.hpp"
#include "kob_storage.hpp"
#include "kob_text.hpp"

#include <algorithm>
#include <vector>

namespace kob {
namespace {

namespace group_status {
constexpr std::int32_t missing = -1;
constexpr std::int32_t create_failed = -8;
constexpr std::int32_t created_path_not_opened = -10;
constexpr std::int32_t not_opened = -20;
constexpr std::int32_t invalid_ioflag = -30;
constexpr std::int32_t invalid_length = -40;
constexpr std::int32_t empty_name = -50;
} // namespace group_status

/// One level of a path: its own name, and how long the path down to it is.
struct Level {
    std::string name;
    std::size_t end;
};

/// The levels from the outermost to the whole path. An empty level (a leading or a doubled "/") and "." name no group
/// of their own.
std::vector<Level> levels_of(const std::string& path)
{
    std::vector<Level> levels;
    std::size_t begin = 0;
    while (begin <= path.size()) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::size_t length = end - begin;
        if (length > 0 && path.compare(begin, length, ".") != 0) {
            levels.push_back({path.substr(begin, length), end});
        }
        begin = end + 1;
    }
    return levels;
}

OpenedGroup failed(std::int32_t status) { return {Id{}, status}; }

Id open_path(hid_t parent, const std::string& path) { return {H5Gopen2(parent, path.c_str(), H5P_DEFAULT), H5Gclose}; }

/// Opens a group on the path to go on from; `depth` counts its level.
Id open_parent(hid_t parent, const std::string& path, const std::vector<Level>& levels, std::size_t expected_missing,
               std::size_t& depth)
{
    depth = levels.size() - std::min(levels.size(), expected_missing);
    if (depth > 0) {
        if (Id group = open_path(parent, path.substr(0, levels[depth - 1].end))) {
            return group;
        }
    }
    depth = 0;
    return open_path(parent, !path.empty() && path.front() == '/' ? "/" : ".");
}

OpenedGroup create_levels(hid_t parent, const std::string& path, LevelProperties properties,
                          std::size_t expected_missing)
{
    if (expected_missing == 0) {
        if (Id group = open_path(parent, path)) {
            return {std::move(group), 0};
        }
        expected_missing = usually_missing;
    }
    const std::vector<Level> levels = levels_of(path);
    std::size_t depth = 0;
    Id group = open_parent(parent, path, levels, expected_missing, depth);
    std::int32_t created = 0;
    for (; depth < levels.size(); ++depth) {
        const Level& level = levels[depth];
        // Below a new group there is nothing to look for.
        if (created == 0 && has_link(group.get(), level.name.c_str())) {
            group = open_path(group.get(), level.name);
            continue;
        }
        const Id wanted = properties != nullptr ? properties(level.name) : Id{};
        Id next{
            H5Gcreate2(group.get(), level.name.c_str(), H5P_DEFAULT, wanted ? wanted.get() : H5P_DEFAULT, H5P_DEFAULT),
            H5Gclose};
        if (!next) {
            report_error(message::group_code, group_status::create_failed, path.substr(0, level.end).c_str());
            return failed(group_status::create_failed);
        }
        group = std::move(next);
        ++created;
    }
    if (!group) {
        report_error(message::group_code, group_status::created_path_not_opened, path.c_str());
        return failed(group_status::created_path_not_opened);
    }
    return {std::move(group), created};
}

// "/" and "." are no links, but always there.
bool exists(hid_t parent, const std::string& path)
{
    return path.find_first_not_of("/.") == std::string::npos || has_link(parent, path.c_str());
}

} // namespace

OpenedGroup open_group(hid_t parent, const std::string& path, std::int32_t ioflag, LevelProperties properties,
                       std::size_t expected_missing)
{
    if (ioflag == io_flag::create) {
        return create_levels(parent, path, properties, expected_missing);
    }
    if (ioflag != io_flag::open && ioflag != io_flag::open_levels) {
        report_error(message::group_invalid_ioflag, ioflag);
        return failed(group_status::invalid_ioflag);
    }
    // A path that opens has all its levels; only one that doesn't is looked into.
    Id group = open_path(parent, path);
    if (!group) {
        if (!exists(parent, path)) {
            return failed(group_status::missing);
        }
        if (ioflag == io_flag::open) {
            report_error(message::group_code_quoted, group_status::not_opened, path.c_str());
        } else {
            report_error(message::group_code, group_status::not_opened, path.c_str());
        }
        return failed(group_status::not_opened);
    }
    return {std::move(group), 0};
}

} // namespace kob

extern "C" {

void KOB_H5GOPEN(const int64_t* parent, const char* name, const int32_t* length, const int32_t* ioflag, int64_t* handle,
                 int32_t* status)
{
    using namespace kob;
    if (handle != nullptr) {
        *handle = -1;
    }
    entry(status, [&] {
        const std::int32_t declared = value(length);
        if (declared == -1 && (name == nullptr || *name == '\0')) {
            report_error(message::group_empty_name);
            return group_status::empty_name;
        }
        if (declared == 0 || declared < -1) {
            report_error(message::group_invalid_length, declared);
            return group_status::invalid_length;
        }
        if (name == nullptr || handle == nullptr) {
            throw NullArgument{};
        }
        // A declared length is taken as it is; HDF5 itself ends a name at its first NUL.
        const std::string path = declared == -1 ? std::string{name} : std::string{up_to_nul(name, declared)};
        OpenedGroup opened = open_group(value(parent), path, value(ioflag));
        *handle = opened.group ? opened.group.release() : -1;
        return opened.status;
    });
}

void KOB_H5GCLOSE(const int64_t* handle, int32_t* status)
{
    using namespace kob;
    entry(status, [&] { return H5Gclose(value(handle)) < 0 ? -1 : 0; });
}

void KOB1_H5GOPEN(const int64_t* parent, const char* name, const int32_t* length, const int32_t* ioflag,
                  int64_t* handle, int32_t* status) __attribute__((alias("KOB_H5GOPEN")));

void KOB1_H5GCLOSE(const int64_t* handle, int32_t* status) __attribute__((alias("KOB_H5GCLOSE")));

} // extern "C"
