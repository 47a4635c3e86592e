// SPDX-License-Identifier: BSD-3-Clause
// How the program talks: results on standard output, complaints on standard error, texts of files made safe to print.
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kob::program {

/// Ends a verb: one line for standard error and the exit code.
struct Failure : std::runtime_error {
    Failure(int code, const std::string& line) : std::runtime_error{line}, exit_code{code} {}
    int exit_code;
};

/// Prints "kob VERB: line" to standard error.
void complain(std::string_view who, std::string_view line);

/// Runs the body of a verb and turns what it throws into a line on standard error and an exit code.
void run_verb(std::string_view who, int& exit_code, const std::function<int()>& body);

/// Writes out what standard output still holds; an output that cannot be written is a failure of its own.
int finish_output(int exit_code);

/// Whether standard output is a terminal whose user did not forbid colour (NO_COLOR).
bool colour_wanted();
/// The text in bold where colour is wanted.
std::string emphasized(std::string_view text);

/// Without blanks at both ends.
std::string trimmed(std::string_view text);
/// Control characters and bytes that are no UTF-8 become \xNN: names in a file never reach the terminal raw.
std::string printable(std::string_view text);

/// The nearest of many names to a mistyped word. Names are considered one by one, so they need not be kept.
class Suggestion {
public:
    explicit Suggestion(std::string_view word);
    void consider(std::string_view name);
    /// ", did you mean ...?", or nothing when none is near.
    std::string text() const;

private:
    std::string wanted_;
    std::size_t nearest_ = 0; ///< fewer changes than this make a name the nearest
    std::string found_;
};
/// The same for a list of names.
std::string suggestion(std::string_view word, const std::vector<std::string>& names);

/// The shortest text that gives the number back; a number that a 4-byte float holds exactly is printed as such.
std::string number_text(double value);
/// A number of bytes for people, for example "12.3 MiB".
std::string bytes_text(std::int64_t bytes);

/// Columns as wide as their widest cell.
class Table {
public:
    explicit Table(std::vector<std::string> titles) : titles_{std::move(titles)} {}
    void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
    /// Numbers are set to the right in this column.
    void align_right(std::size_t column) { right_.push_back(column); }
    void print() const;

private:
    std::vector<std::string> titles_;
    std::vector<std::vector<std::string>> rows_;
    std::vector<std::size_t> right_;
};

} // namespace kob::program
