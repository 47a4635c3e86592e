// SPDX-License-Identifier: BSD-3-Clause
// Printing: complaints, tables, safe texts, numbers and suggestions.

#include "terminal.hpp"
#include "verbs.hpp"

#include <fmt/color.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <numeric>

namespace kob::program {

void complain(std::string_view who, std::string_view line)
{
    std::fflush(stdout);
    fmt::print(stderr, "{}: {}\n", who, line);
}

void run_verb(std::string_view who, int& exit_code, const std::function<int()>& body)
{
    try {
        exit_code = body();
    } catch (const Failure& failure) {
        complain(who, failure.what());
        exit_code = failure.exit_code;
    } catch (const std::bad_alloc&) {
        complain(who, "not enough memory");
        exit_code = exit_cannot_read;
    } catch (const std::exception& error) {
        complain(who, fmt::format("internal error: {}", error.what()));
        exit_code = exit_cannot_read;
    }
}

int finish_output(int exit_code)
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return exit_code;
    complain("kob", fmt::format("the output cannot be written: {}", std::strerror(errno)));
    return exit_cannot_read;
}

bool colour_wanted()
{
    const char* forbidden = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    if (forbidden != nullptr && *forbidden != '\0') return false;
    if (terminal == nullptr || std::string_view{terminal} == "dumb") return false;
    return isatty(STDOUT_FILENO) == 1;
}

std::string emphasized(std::string_view text)
{
    return colour_wanted() ? fmt::format(fmt::emphasis::bold, "{}", text) : std::string{text};
}

std::string trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return std::string{text.substr(first, text.find_last_not_of(' ') - first + 1)};
}

namespace {

/// Length of the well-formed UTF-8 character that the text begins with; 0 when there is none.
std::size_t utf8_length(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xc2 ? 0
                               : lead < 0xe0 ? 2
                               : lead < 0xf0 ? 3
                               : lead < 0xf5 ? 4
                                             : 0;
    if (length == 0 || length > text.size()) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xc0) != 0x80) return 0;
    if (lead == 0xe0 && byte(1) < 0xa0) return 0; // longer than needed
    if (lead == 0xed && byte(1) > 0x9f) return 0; // half of a surrogate pair
    if (lead == 0xf0 && byte(1) < 0x90) return 0;
    if (lead == 0xf4 && byte(1) > 0x8f) return 0;
    return length;
}

/// Control characters of ASCII and the second set, U+0080 to U+009F, which some terminals obey.
bool is_control(std::string_view character)
{
    const auto lead = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) return lead < 0x20 || lead == 0x7f;
    return lead == 0xc2 && static_cast<unsigned char>(character[1]) < 0xa0;
}

/// Number of characters, which is the width on a terminal for all but exotic scripts.
std::size_t display_width(std::string_view text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

/// Number of single-character changes (insert, delete, replace, swap of neighbours) between two words.
std::size_t distance(std::string_view a, std::string_view b)
{
    std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
    for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replace = d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, replace});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[a.size()][b.size()];
}

std::string lower(std::string_view text)
{
    std::string result{text};
    for (char& c : result)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return result;
}

} // namespace

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const std::size_t length = utf8_length(text);
        if (length == 0 || is_control(text.substr(0, length))) {
            result += fmt::format("\\x{:02x}", static_cast<unsigned char>(text[0]));
            text.remove_prefix(1);
        } else {
            result += text.substr(0, length);
            text.remove_prefix(length);
        }
    }
    return result;
}

Suggestion::Suggestion(std::string_view word)
{
    constexpr std::size_t longest_word = 512; // longer ones are no typing mistakes
    if (word.size() > longest_word) return;
    wanted_ = lower(word);
    nearest_ = std::max<std::size_t>(2, word.size() / 3) + 1;
}

void Suggestion::consider(std::string_view name)
{
    const std::size_t gap = name.size() > wanted_.size() ? name.size() - wanted_.size() : wanted_.size() - name.size();
    if (gap >= nearest_) return;
    const std::size_t changes = distance(wanted_, lower(name));
    if (changes < nearest_ && changes < std::max(wanted_.size(), name.size())) {
        nearest_ = changes;
        found_ = name;
    }
}

std::string Suggestion::text() const
{
    return found_.empty() ? std::string{} : fmt::format(", did you mean \"{}\"?", printable(found_));
}

std::string suggestion(std::string_view word, const std::vector<std::string>& names)
{
    Suggestion nearest{word};
    for (const std::string& name : names) nearest.consider(name);
    return nearest.text();
}

std::string number_text(double value)
{
    if (std::abs(value) <= 3.4e38) {
        const auto narrow = static_cast<float>(value);
        if (static_cast<double>(narrow) == value) return fmt::format("{}", narrow);
    }
    return fmt::format("{}", value);
}

std::string bytes_text(std::int64_t bytes)
{
    constexpr const char* units[] = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    if (bytes < 1024) return fmt::format("{} B", bytes);
    double value = static_cast<double>(bytes) / 1024;
    std::size_t unit = 0;
    while (value >= 1024 && unit + 1 < std::size(units)) {
        value /= 1024;
        ++unit;
    }
    return fmt::format("{:.1f} {}", value, units[unit]);
}

void Table::print() const
{
    std::vector<std::size_t> widths;
    for (const std::string& title : titles_) widths.push_back(display_width(title));
    for (const auto& row : rows_)
        for (std::size_t i = 0; i < row.size() && i < widths.size(); ++i)
            widths[i] = std::max(widths[i], display_width(row[i]));
    const auto line = [&](const std::vector<std::string>& cells) {
        std::string text;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const std::string gap(widths[i] - display_width(cells[i]), ' ');
            const bool right = std::find(right_.begin(), right_.end(), i) != right_.end();
            if (i > 0) text += "  ";
            text += right ? gap + cells[i] : cells[i] + gap;
        }
        text.erase(text.find_last_not_of(' ') + 1);
        return text;
    };
    fmt::print("{}\n", emphasized(line(titles_)));
    for (const auto& row : rows_) fmt::print("{}\n", line(row));
}

} // namespace kob::program
