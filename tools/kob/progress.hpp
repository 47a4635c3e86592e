// SPDX-License-Identifier: BSD-3-Clause
// A progress bar with rate and time left, for people at a terminal only.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>

namespace kob::program {

/// What one line of the bar says, `done` of `total` after `seconds`; numbers of bytes or of things.
std::string progress_line(const std::string& title, double done, double total, double seconds, bool bytes);

/// A bar on standard error. Shows nothing when that is no terminal, and leaves an empty line behind.
class Progress {
public:
    enum class Unit { bytes, things };
    Progress(std::string title, std::int64_t total, Unit unit, bool quiet);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    bool shown() const { return terminal_ != nullptr; }
    void set(std::int64_t done);
    void add(std::int64_t more) { set(done_ + more); }

private:
    void draw(std::int64_t done);

    std::string title_;
    std::int64_t total_;
    Unit unit_;
    std::FILE* terminal_ = nullptr; ///< a way to the terminal that stays when standard error is diverted
    bool drawn_ = false;
    std::int64_t done_ = 0;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point last_ = start_;
};

/// Watches an output grow while one call of the library writes it.
class GrowthWatch {
public:
    /// `expected`: about as many bytes as the file will have.
    GrowthWatch(std::string title, std::string path, std::int64_t expected, bool quiet);
    ~GrowthWatch();
    GrowthWatch(const GrowthWatch&) = delete;
    GrowthWatch& operator=(const GrowthWatch&) = delete;

private:
    void watch();

    std::string path_;
    Progress progress_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool finished_ = false;
    std::thread thread_; // last: it uses the others
};

} // namespace kob::program
