// SPDX-License-Identifier: BSD-3-Clause
// Redirects the standard streams for a while.
#include "silence.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace bench {
namespace {

constexpr std::array<int, 2> streams{STDOUT_FILENO, STDERR_FILENO};

} // namespace

Silence::Silence()
{
    std::fflush(nullptr);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    for (std::size_t i = 0; i < streams.size(); ++i) {
        kept_[i] = dup(streams[i]);
        dup2(nowhere, streams[i]);
    }
    close(nowhere);
}

Silence::~Silence()
{
    std::fflush(nullptr);
    for (std::size_t i = 0; i < streams.size(); ++i) {
        dup2(kept_[i], streams[i]);
        close(kept_[i]);
    }
}

} // namespace bench
