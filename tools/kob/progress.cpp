// SPDX-License-Identifier: BSD-3-Clause
// Draws the progress bar.

#include "progress.hpp"

#include "terminal.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace kob::program {

namespace {

using std::chrono::steady_clock;
constexpr auto redraw_after = std::chrono::milliseconds{200};

std::string amount(double value, bool bytes)
{
    return bytes ? bytes_text(static_cast<std::int64_t>(value)) : fmt::format("{:.0f}", value);
}

/// "m:ss", or "h:mm:ss" from one hour on.
std::string duration(double seconds)
{
    constexpr std::int64_t minute = 60;
    const auto whole = static_cast<std::int64_t>(std::ceil(seconds));
    const std::int64_t minutes = whole / minute;
    if (minutes < minute) return fmt::format("{}:{:02}", minutes, whole % minute);
    return fmt::format("{}:{:02}:{:02}", minutes / minute, minutes % minute, whole % minute);
}

} // namespace

std::string progress_line(const std::string& title, double done, double total, double seconds, bool bytes)
{
    constexpr int width = 24;
    const double share = total > 0 ? std::clamp(done / total, 0.0, 1.0) : 0;
    const auto filled = static_cast<std::size_t>(share * width);
    std::string line = fmt::format("{} [{}{}] {:3.0f} %  {}", title, std::string(filled, '#'),
                                   std::string(width - filled, '.'), std::floor(100 * share), amount(done, bytes));
    if (seconds <= 0 || done <= 0) return line;
    const double rate = done / seconds;
    line += fmt::format("  {}/s", amount(rate, bytes));
    if (done < total) line += fmt::format("  {} left", duration((total - done) / rate));
    return line;
}

Progress::Progress(std::string title, std::int64_t total, Unit unit, bool quiet)
    : title_{std::move(title)}, total_{total}, unit_{unit}
{
    if (quiet || isatty(STDERR_FILENO) != 1) return;
    const int descriptor = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    if (descriptor < 0) return;
    terminal_ = fdopen(descriptor, "w");
    if (terminal_ == nullptr) close(descriptor);
}

Progress::~Progress()
{
    if (terminal_ == nullptr) return;
    if (drawn_) std::fputs("\r\x1b[K", terminal_);
    std::fclose(terminal_);
}

void Progress::set(std::int64_t done)
{
    done_ = done;
    if (!shown()) return;
    const auto now = steady_clock::now();
    if (now - last_ < redraw_after) return;
    last_ = now;
    draw(done);
}

void Progress::draw(std::int64_t done)
{
    const double seconds = std::chrono::duration<double>(steady_clock::now() - start_).count();
    fmt::print(
        terminal_, "\r{}\x1b[K",
        progress_line(title_, static_cast<double>(done), static_cast<double>(total_), seconds, unit_ == Unit::bytes));
    std::fflush(terminal_);
    drawn_ = true;
}

GrowthWatch::GrowthWatch(std::string title, std::string path, std::int64_t expected, bool quiet)
    : path_{std::move(path)}, progress_{std::move(title), expected, Progress::Unit::bytes, quiet}
{
    if (progress_.shown()) thread_ = std::thread{[this] { watch(); }};
}

GrowthWatch::~GrowthWatch()
{
    {
        const std::lock_guard lock{mutex_};
        finished_ = true;
    }
    wake_.notify_all();
    if (thread_.joinable()) thread_.join();
}

void GrowthWatch::watch()
{
    std::unique_lock lock{mutex_};
    while (!wake_.wait_for(lock, redraw_after, [this] { return finished_; })) {
        struct stat info {};
        if (stat(path_.c_str(), &info) == 0) progress_.set(info.st_size);
    }
}

} // namespace kob::program
