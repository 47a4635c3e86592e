// SPDX-License-Identifier: BSD-3-Clause
// Captures what the process writes to standard output and to standard error, each by itself.
#pragma once

#include <string>
#include <utility>

namespace kob_test {

/// Captures both streams from its construction to the first call of `out` or `err`.
class CapturedStream {
public:
    CapturedStream();
    ~CapturedStream();
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;

    /// What was written to standard output; ends the capture.
    const std::string& out();
    /// What was written to standard error; ends the capture.
    const std::string& err();

private:
    struct Stream {
        int fd = -1;      ///< the descriptor that is captured
        int saved = -1;   ///< where it pointed before
        int capture = -1; ///< the file that it points to meanwhile
        std::string text;
        void start(int captured_fd);
        void stop();
    };
    void stop();

    bool running_ = true;
    Stream out_;
    Stream err_;
};

/// What the call writes to standard error.
template <class Call> std::string errors_of(Call&& call)
{
    CapturedStream captured;
    std::forward<Call>(call)();
    return captured.err();
}

/// What the call writes to standard output.
template <class Call> std::string output_of(Call&& call)
{
    CapturedStream captured;
    std::forward<Call>(call)();
    return captured.out();
}

} // namespace kob_test
