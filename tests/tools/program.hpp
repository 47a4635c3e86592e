// SPDX-License-Identifier: BSD-3-Clause
// Runs the program as a user does and returns what it wrote and its exit code.
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "file_bytes.hpp"
#include "temp_file.hpp"

namespace kob_test {

/// What a run of the program left behind.
struct ProgramOutcome {
    int exit_code = -1; ///< -1: ended by a signal
    std::string out;
    std::string err;

    std::vector<std::string> lines() const { return split(out); }
    std::vector<std::string> error_lines() const { return split(err); }
    nlohmann::json json() const { return nlohmann::json::parse(out, nullptr, false); }

private:
    static std::vector<std::string> split(const std::string& text)
    {
        std::vector<std::string> result;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = std::min(text.find('\n', at), text.size());
            result.push_back(text.substr(at, end - at));
            at = end + 1;
        }
        return result;
    }
};
using Outcome = ProgramOutcome; // a name of its own for the linker: calls of the library have outcomes, too

/// Puts the program's name before its arguments, in the form that exec takes.
inline std::vector<char*> program_words(std::vector<std::string>& arguments)
{
    arguments.insert(arguments.begin(), KOB_PROGRAM);
    std::vector<char*> argv(arguments.size() + 1, nullptr);
    for (std::size_t i = 0; i < arguments.size(); ++i) argv[i] = arguments[i].data();
    return argv;
}

/// Runs the program with its output and errors in files; `out_path` takes the output elsewhere.
inline Outcome run_program(std::vector<std::string> arguments, const std::string& out_path = {})
{
    const TempDir folder;
    const std::string out = out_path.empty() ? folder / "out" : out_path;
    const std::string err = folder / "err";
    std::vector<char*> argv = program_words(arguments);
    const pid_t child = fork();
    if (child == 0) {
        constexpr int cannot_start = 127;
        constexpr int rights = 0600;
        const int out_fd = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, rights);
        const int err_fd = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, rights);
        if (out_fd < 0 || err_fd < 0 || dup2(out_fd, STDOUT_FILENO) < 0 || dup2(err_fd, STDERR_FILENO) < 0)
            _exit(cannot_start);
        execv(argv[0], argv.data());
        _exit(cannot_start);
    }
    int wait_status = 0;
    EXPECT_EQ(waitpid(child, &wait_status, 0), child);
    Outcome outcome;
    if (WIFEXITED(wait_status)) outcome.exit_code = WEXITSTATUS(wait_status);
    if (out_path.empty()) outcome.out = bytes_of(out);
    outcome.err = bytes_of(err);
    return outcome;
}

/// A table's line as words, whatever the width of its columns.
inline std::vector<std::string> words(const std::string& line)
{
    std::istringstream stream{line};
    return {std::istream_iterator<std::string>{stream}, {}};
}

} // namespace kob_test
