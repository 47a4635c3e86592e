// SPDX-License-Identifier: BSD-3-Clause
// Groups by path, opened or created level by level.
#include "kob_group.hpp"

#include "kob_dp.h"
#include "kob_entry.hpp"
#include "kob_storage.hpp"
#include "kob_text.hpp"

#include <algorithm>

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

/// Calls `visit(prefix)` for every prefix of the path that ends before a "/", and for the whole path, until it
/// returns false. An empty level (a leading or a doubled "/") and "." name no group of their own.
template <class Visit> bool for_each_level(const std::string& path, Visit&& visit)
{
    std::size_t begin = 0;
    while (begin <= path.size()) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::size_t length = end - begin;
        const bool is_level = length > 0 && path.compare(begin, length, ".") != 0;
        if (is_level && !visit(path.substr(0, end), path.substr(begin, length))) {
            return false;
        }
        begin = end + 1;
    }
    return true;
}

OpenedGroup failed(std::int32_t status) { return {Id{}, status}; }

OpenedGroup create_levels(hid_t parent, const std::string& path, LevelProperties properties)
{
    std::int32_t created = 0;
    std::string refused;
    const bool complete = for_each_level(path, [&](const std::string& prefix, const std::string& level) {
        if (has_link(parent, prefix.c_str())) {
            return true;
        }
        const Id wanted = properties != nullptr ? properties(level) : Id{};
        const Id group{
            H5Gcreate2(parent, prefix.c_str(), H5P_DEFAULT, wanted ? wanted.get() : H5P_DEFAULT, H5P_DEFAULT),
            H5Gclose};
        if (!group) {
            refused = prefix;
            return false;
        }
        ++created;
        return true;
    });
    if (!complete) {
        report_error(message::group_code, group_status::create_failed, refused.c_str());
        return failed(group_status::create_failed);
    }
    Id group{H5Gopen2(parent, path.c_str(), H5P_DEFAULT), H5Gclose};
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

OpenedGroup open_group(hid_t parent, const std::string& path, std::int32_t ioflag, LevelProperties properties)
{
    if (ioflag == io_flag::create) {
        return create_levels(parent, path, properties);
    }
    if (ioflag != io_flag::open && ioflag != io_flag::open_levels) {
        report_error(message::group_invalid_ioflag, ioflag);
        return failed(group_status::invalid_ioflag);
    }
    if (ioflag == io_flag::open_levels &&
        !for_each_level(path, [&](const std::string& prefix, const std::string&) { return exists(parent, prefix); })) {
        return failed(group_status::missing);
    }
    if (!exists(parent, path)) {
        return failed(group_status::missing);
    }
    Id group{H5Gopen2(parent, path.c_str(), H5P_DEFAULT), H5Gclose};
    if (!group) {
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
