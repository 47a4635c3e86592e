// SPDX-License-Identifier: BSD-3-Clause
// The progress bar: its line, and that only a terminal sees it.

#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_stream.hpp"
#include "progress.hpp"

namespace {

using namespace kob::program;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(ProgressLine, TellsShareAmountRateAndTimeLeft)
{
    EXPECT_EQ(progress_line("merging", 1048576, 4194304, 2, true),
              "merging [######..................]  25 %  1.0 MiB  512.0 KiB/s  0:06 left");
    EXPECT_EQ(progress_line("splitting", 50, 100, 5, false),
              "splitting [############............]  50 %  50  10/s  0:05 "
              "left");
}

TEST(ProgressLine, LongTimesHaveHours)
{
    EXPECT_THAT(progress_line("x", 1, 7201, 1, false), EndsWith("2:00:00 left"));
    EXPECT_THAT(progress_line("x", 1, 61, 1, false), EndsWith("1:00 left"));
}

TEST(ProgressLine, NothingIsGuessedAtTheStartAndAtTheEnd)
{
    EXPECT_EQ(progress_line("x", 0, 100, 3, false), "x [........................]   0 %  0");
    EXPECT_EQ(progress_line("x", 100, 100, 2, false), "x [########################] 100 %  100  50/s");
    // More than was expected is not more than all of it.
    EXPECT_THAT(progress_line("x", 150, 100, 2, false), HasSubstr("] 100 %  150"));
    EXPECT_THAT(progress_line("x", 5, 0, 1, false), HasSubstr("]   0 %"));
}

void work(bool quiet)
{
    Progress progress{"copying", 100, Progress::Unit::things, quiet};
    progress.set(10);
    std::this_thread::sleep_for(std::chrono::milliseconds{250});
    progress.set(50);
}

TEST(Progress, AFileSeesNothing)
{
    kob_test::CapturedStream captured;
    work(false);
    EXPECT_THAT(captured.err(), IsEmpty());
}

/// What the call writes to a standard error that is a terminal.
template <class Call> std::string terminal_sees(Call&& call)
{
    const int ours = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    EXPECT_GE(ours, 0);
    EXPECT_EQ(grantpt(ours) + unlockpt(ours), 0);
    const int theirs = open(ptsname(ours), O_RDWR | O_NOCTTY);
    const int saved = dup(STDERR_FILENO);
    dup2(theirs, STDERR_FILENO);
    call();
    std::fflush(stderr);
    dup2(saved, STDERR_FILENO);
    std::array<char, 4096> text{};
    const ssize_t length = read(ours, text.data(), text.size());
    for (const int descriptor : {ours, theirs, saved}) close(descriptor);
    return {text.data(), static_cast<std::size_t>(length > 0 ? length : 0)};
}

TEST(Progress, ATerminalSeesTheBarAndAnEmptyLineBehind)
{
    EXPECT_THAT(terminal_sees([] { work(false); }),
                AllOf(HasSubstr("copying [############............]  50 %  50"), EndsWith("\r\x1b[K")));
}

TEST(Progress, QuietMeansQuiet)
{
    EXPECT_THAT(terminal_sees([] { work(true); }), IsEmpty());
}

} // namespace
