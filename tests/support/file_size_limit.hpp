// SPDX-License-Identifier: BSD-3-Clause
// A disk that is full.
#pragma once

#include <csignal>

#include <sys/resource.h>

namespace kob_test {

/// While it lives, no file of this process may grow beyond a size: writing fails as on a full disk.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit before_{};
    void (*handler_)(int) = SIG_DFL;
};

} // namespace kob_test
