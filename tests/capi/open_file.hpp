// SPDX-License-Identifier: BSD-3-Clause
// One call of KOB_OPEN with everything that goes in and comes out, for tests that look at the call itself.
#pragma once

#include <cstdint>
#include <string>

#include <kob_dp.h>

namespace kob_test {

struct OpenCall {
    std::string file;
    std::int32_t option = 0;
    std::string group = "results";
    std::string domain = "";
    std::int32_t domain_flag = 0;
    // what comes out
    std::int64_t handle = 4711;
    std::int32_t status = 77;

    OpenCall& run()
    {
        return run(static_cast<std::int32_t>(file.size()), static_cast<std::int32_t>(group.size()),
                   static_cast<std::int32_t>(domain.size()));
    }
    /// With declared lengths of its own.
    OpenCall& run(std::int32_t file_length, std::int32_t group_length, std::int32_t domain_length)
    {
        KOB_OPEN(file.data(), &file_length, group.data(), &group_length, domain.data(), &domain_length, &handle,
                 &domain_flag, &option, &status);
        return *this;
    }
};

/// Closes the file of this handle and returns the status.
inline std::int32_t close_file(std::int64_t handle)
{
    std::int32_t status = 77;
    KOB_CLOSE(&handle, &status);
    return status;
}

/// Opens a group by its path, as the group opener returns it.
struct GroupCall {
    std::int64_t parent;
    std::string name;
    std::int32_t ioflag = 0;
    // what comes out
    std::int64_t handle = 4711;
    std::int32_t status = 77;

    GroupCall& run() { return run(static_cast<std::int32_t>(name.size())); }
    GroupCall& run(std::int32_t length)
    {
        KOB_H5GOPEN(&parent, name.data(), &length, &ioflag, &handle, &status);
        return *this;
    }
};

/// Closes a group and returns the status.
inline std::int32_t close_group(std::int64_t handle)
{
    std::int32_t status = 77;
    KOB_H5GCLOSE(&handle, &status);
    return status;
}

} // namespace kob_test
