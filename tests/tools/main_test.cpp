// SPDX-License-Identifier: BSD-3-Clause
// The program as a whole: verbs, exit codes, files that are none, and colour on a terminal only.

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "program.hpp"
#include "sample_file.hpp"

using namespace kob_test;

namespace {

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// What the program writes when its output is a terminal.
std::string on_terminal(std::vector<std::string> arguments, const char* no_color)
{
    std::vector<char*> argv = program_words(arguments);
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
        if (no_color != nullptr) setenv("NO_COLOR", no_color, 1);
        execv(argv[0], argv.data());
        _exit(127);
    }
    std::string text;
    std::array<char, 4096> piece{};
    ssize_t got = 0;
    while ((got = read(terminal, piece.data(), piece.size())) > 0)
        text.append(piece.data(), static_cast<std::size_t>(got));
    close(terminal);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    return text;
}

const std::vector<std::vector<std::string>>& reading_verbs()
{
    static const std::vector<std::vector<std::string>> verbs{{"ls"}, {"info"}, {"show"}};
    return verbs;
}

/// Runs each verb on the file and expects exit code 3, nothing on standard output, and this complaint.
void expect_unreadable(const std::string& path, const std::string& why)
{
    for (std::vector<std::string> arguments : reading_verbs()) {
        const std::string verb = arguments.front();
        arguments.push_back(path);
        if (verb == "show") arguments.emplace_back("0");
        const Outcome outcome = run_program(arguments);
        EXPECT_EQ(outcome.exit_code, 3) << verb;
        EXPECT_EQ(outcome.out, "") << verb;
        EXPECT_TRUE(contains(outcome.err, "kob " + verb + ": ")) << outcome.err;
        EXPECT_TRUE(contains(outcome.err, why)) << outcome.err;
    }
}

} // namespace

TEST(Program, ExplainsItself)
{
    const Outcome help = run_program({"--help"});
    EXPECT_EQ(help.exit_code, 0);
    EXPECT_EQ(help.err, "");
    for (const char* verb : {"info", "ls", "show"}) {
        EXPECT_TRUE(contains(help.out, verb));
        const Outcome verb_help = run_program({verb, "--help"});
        EXPECT_EQ(verb_help.exit_code, 0);
        EXPECT_TRUE(contains(verb_help.out, "FILE")) << verb_help.out;
    }
    const Outcome version = run_program({"--version"});
    EXPECT_EQ(version.exit_code, 0);
    EXPECT_EQ(version.out, "kob version 2.2.16\n");
}

TEST(Program, RefusesAWrongCommandLine)
{
    const SampleFile file;
    const std::vector<std::vector<std::string>> wrong{{},
                                                      {"ls"},
                                                      {"show", file.path()},
                                                      {"info", file.path(), "more"},
                                                      {"ls", file.path(), "--nosuch"},
                                                      {"ls", file.path(), "--kind"},
                                                      {"ls", ""}};
    for (const auto& arguments : wrong) {
        const Outcome outcome = run_program(arguments);
        EXPECT_EQ(outcome.exit_code, 2) << outcome.err;
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err, "");
    }
}

TEST(Program, SuggestsAVerbForAMistypedOne)
{
    const Outcome outcome = run_program({"ifno", "run.kob"});
    EXPECT_EQ(outcome.exit_code, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "kob: there is no verb \"ifno\", did you mean \"info\"?\n");
    EXPECT_EQ(run_program({"xyzzy"}).err, "kob: there is no verb \"xyzzy\"\n") << "nothing is near";
}

TEST(Program, RefusesAMissingFile)
{
    const TempFile file;
    expect_unreadable(file.path(), "No such file or directory");
    expect_unreadable(file.path() + "/results", "No such file or directory");
    EXPECT_FALSE(std::filesystem::exists(file.path())) << "reading creates nothing";
}

TEST(Program, RefusesWhatIsNoHdf5File)
{
    const TempFile file;
    std::ofstream{file.path()}.close();
    expect_unreadable(file.path(), "is empty");
    std::ofstream{file.path()} << "a text that is no result file\n";
    expect_unreadable(file.path(), "is not an HDF5 file");
    expect_unreadable(std::filesystem::path{file.path()}.parent_path().string(), "is a directory");
}

TEST(Program, RefusesAFileThatIsCutShort)
{
    const SampleFile file;
    for (const std::uintmax_t length : {100U, 600U, 2048U}) {
        std::filesystem::resize_file(file.path(), length);
        expect_unreadable(file.path(), "cannot be opened");
        std::filesystem::resize_file(file.path(), 4096);
    }
}

TEST(Program, RefusesAGroupThatIsNotInTheFile)
{
    const SampleFile file;
    expect_unreadable(file.path() + "/nosuch", "Cannot open group \"/nosuch\"");
}

TEST(Program, LeavesTheFileAsItWas)
{
    const SampleFile file;
    const std::string before = bytes_of(file.path());
    for (std::vector<std::string> arguments : reading_verbs()) {
        arguments.push_back(file.path());
        if (arguments.front() == "show") arguments.emplace_back("0");
        EXPECT_EQ(run_program(arguments).exit_code, 0);
    }
    EXPECT_EQ(bytes_of(file.path()), before);
}

TEST(Program, ReportsAnOutputThatCannotBeWritten)
{
    const SampleFile file;
    const Outcome outcome = run_program({"ls", file.path()}, "/dev/full");
    EXPECT_EQ(outcome.exit_code, 3);
    EXPECT_EQ(outcome.err, "kob: the output cannot be written: No space left on device\n");
}

TEST(Program, UsesColourOnATerminalUnlessForbidden)
{
    const SampleFile file;
    for (std::vector<std::string> arguments : reading_verbs()) {
        arguments.push_back(file.path());
        if (arguments.front() == "show") arguments.emplace_back("0");
        EXPECT_TRUE(contains(on_terminal(arguments, nullptr), "\x1b[1m")) << arguments.front();
        EXPECT_TRUE(contains(on_terminal(arguments, ""), "\x1b[1m")) << "an empty NO_COLOR forbids nothing";
        EXPECT_FALSE(contains(on_terminal(arguments, "1"), "\x1b")) << arguments.front();
    }
}
