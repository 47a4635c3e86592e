// SPDX-License-Identifier: BSD-3-Clause
// The command line as the verbs see it. CLI11, which takes long to compile, is known to command_line.cpp and main.cpp.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace kob::program {

/// What else is to be said about an option or a word of the command line.
class Option {
public:
    Option& required();
    Option& shows_default();
    Option& excludes(const Option& other);
    /// Checks of the value.
    Option& between(int least, int most);
    Option& not_negative();
    Option& one_of(const std::vector<int>& values);
    Option& one_of(const std::vector<std::string>& words);
    /// Of a list: one value after each mention of the option; all values in one word, with commas.
    Option& one_at_a_time();
    Option& with_commas();

private:
    friend class Verb;
    explicit Option(CLI::Option* option) : option_{option} {}
    CLI::Option* option_;
};

/// A verb; the addresses of the values have to stay until it ran.
class Verb {
public:
    Verb(CLI::App& app, const std::string& name, const std::string& purpose);

    Option option(const std::string& names, std::string& value, const std::string& help);
    Option option(const std::string& names, std::int32_t& value, const std::string& help);
    Option option(const std::string& names, std::int64_t& value, const std::string& help);
    Option option(const std::string& names, std::optional<std::int32_t>& value, const std::string& help);
    Option option(const std::string& names, std::vector<std::string>& values, const std::string& help);
    Option option(const std::string& names, std::vector<std::int32_t>& values, const std::string& help);
    Option flag(const std::string& names, bool& value, const std::string& help);
    void runs(std::function<void()> body);

private:
    CLI::App* verb_;
};

/// Ends the reading of the command line: the value of an option is wrong.
[[noreturn]] void wrong_value(const std::string& option, const std::string& line);

} // namespace kob::program
