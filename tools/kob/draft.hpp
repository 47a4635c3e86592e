// SPDX-License-Identifier: BSD-3-Clause
// An output file that appears under its name only when it is complete.
#pragma once

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include <unistd.h>

#include "terminal.hpp"
#include "verbs.hpp"

namespace kob::program {

/// A name beside the target that becomes the target when all went well, and vanishes otherwise.
class Draft {
public:
    explicit Draft(std::filesystem::path target)
        : target_{std::move(target)}, path_{target_.string() + fmt::format(".part-{}", ::getpid())}
    {
    }
    ~Draft()
    {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove(path_, ignored);
    }
    Draft(Draft&& other) noexcept : target_{std::move(other.target_)}, path_{std::exchange(other.path_, {})} {}
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    const std::filesystem::path& path() const { return path_; }
    const std::filesystem::path& target() const { return target_; }

    /// Refuses a target that is a folder, or one that exists unless it may be replaced.
    void check_target(bool replace) const
    {
        std::error_code ignored;
        if (std::filesystem::is_directory(target_, ignored))
            throw Failure{exit_usage, fmt::format("\"{}\" is a folder", printable(target_.string()))};
        if (!replace && std::filesystem::exists(target_, ignored)) refuse();
    }

    void become_target(bool replace)
    {
        // A link is refused where a target appeared meanwhile; a rename would replace it.
        if (!replace) {
            if (::link(path_.c_str(), target_.c_str()) == 0) return; // the draft's own name goes with this object
            if (errno == EEXIST) refuse();
        }
        std::error_code error;
        std::filesystem::rename(path_, target_, error);
        if (error) {
            throw Failure{exit_cannot_read,
                          fmt::format("cannot write \"{}\": {}", printable(target_.string()), error.message())};
        }
    }

    [[noreturn]] void refuse() const
    {
        throw Failure{exit_usage, fmt::format("\"{}\" exists; --force replaces it", printable(target_.string()))};
    }

private:
    std::filesystem::path target_;
    std::filesystem::path path_;
};

} // namespace kob::program
