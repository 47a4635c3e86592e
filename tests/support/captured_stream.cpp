// SPDX-License-Identifier: BSD-3-Clause
// Capturing works on the file descriptors, so that it sees the output of C code and of other libraries, too.
#include "captured_stream.hpp"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include <unistd.h>

namespace kob_test {

namespace {

void flush_all()
{
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
}

} // namespace

void CapturedStream::Stream::start(int captured_fd)
{
    std::string name = (std::filesystem::temp_directory_path() / "kob_capture_XXXXXX").string();
    capture = mkstemp(name.data());
    if (capture < 0) throw std::runtime_error{"cannot create the file " + name};
    unlink(name.c_str()); // lives on until the descriptor is closed
    fd = captured_fd;
    saved = dup(fd);
    dup2(capture, fd);
}

void CapturedStream::Stream::stop()
{
    dup2(saved, fd);
    close(saved);
    lseek(capture, 0, SEEK_SET);
    std::array<char, 4096> part{};
    for (ssize_t n = 0; (n = read(capture, part.data(), part.size())) > 0;)
        text.append(part.data(), static_cast<std::size_t>(n));
    close(capture);
}

CapturedStream::CapturedStream()
{
    flush_all();
    out_.start(STDOUT_FILENO);
    err_.start(STDERR_FILENO);
}

CapturedStream::~CapturedStream()
{
    if (!running_) return;
    stop();
    // nobody asked: a failed assertion may have ended the test, so its report must not get lost
    std::cout << out_.text << std::flush;
    std::cerr << err_.text << std::flush;
}

void CapturedStream::stop()
{
    if (!running_) return;
    running_ = false;
    flush_all();
    out_.stop();
    err_.stop();
}

const std::string& CapturedStream::out()
{
    stop();
    return out_.text;
}

const std::string& CapturedStream::err()
{
    stop();
    return err_.text;
}

} // namespace kob_test
