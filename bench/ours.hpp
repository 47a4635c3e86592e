// SPDX-License-Identifier: BSD-3-Clause
// What our side of all kinds of work shares.
#pragma once

#include "results.hpp"

#include <kob_dp.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace bench {

inline void check(std::int32_t status, const char* call)
{
    if (status < 0) {
        throw std::runtime_error{std::string{call} + ": status " + std::to_string(status)};
    }
}

/// The result set of a file.
class File {
public:
    File(const std::string& name, std::int32_t option)
    {
        const auto length = static_cast<std::int32_t>(name.size());
        const std::int32_t group_length = 3;
        const std::int32_t none = 0;
        std::int32_t status = 0;
        KOB_OPEN(name.c_str(), &length, "run", &group_length, "", &none, &group_, &none, &option, &status);
        check(status, "KOB_OPEN");
    }
    ~File()
    {
        std::int32_t status = 0;
        KOB_CLOSE(&group_, &status);
        if (status != 0) {
            std::abort();
        }
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    [[nodiscard]] const std::int64_t* group() const { return &group_; }

private:
    std::int64_t group_ = 0;
};

/// Ways to open a file.
constexpr std::int32_t create = 0;
constexpr std::int32_t read_only = 2;
constexpr std::int32_t read_write = 1;

/// Without filters.
constexpr std::int32_t no_filters = 0;
constexpr std::array<std::int32_t, 2> no_params{};

/// Filters as the calls want them.
struct FilterArguments {
    explicit FilterArguments(const Packing& packing)
    {
        constexpr std::int32_t deflate_and_shuffle = 1 + 2 + 8 + 16; // of integers and floating-point numbers
        constexpr std::int32_t scale_offset = 128;
        flags = (packing.level > 0 ? deflate_and_shuffle : 0) + (packing.digits >= 0 ? scale_offset : 0);
        params = {std::max(packing.digits, 0), packing.level};
    }

    std::int32_t flags;
    std::array<std::int32_t, 2> params;
};

/// The group of a block, opened in its result set.
class OpenBlock {
public:
    OpenBlock(const File& file, const std::string& path)
    {
        const std::int32_t nul_terminated = -1;
        const std::int32_t open_only = 1;
        std::int32_t status = 0;
        KOB_H5GOPEN(file.group(), path.c_str(), &nul_terminated, &open_only, &group_, &status);
        check(status, "KOB_H5GOPEN");
    }
    ~OpenBlock()
    {
        std::int32_t status = 0;
        KOB_H5GCLOSE(&group_, &status);
        if (status != 0) {
            std::abort();
        }
    }
    OpenBlock(const OpenBlock&) = delete;
    OpenBlock& operator=(const OpenBlock&) = delete;

    [[nodiscard]] const std::int64_t* group() const { return &group_; }

private:
    std::int64_t group_ = 0;
};

} // namespace bench
