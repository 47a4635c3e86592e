// SPDX-License-Identifier: BSD-3-Clause
// The parameter file of compression exponents: one variable name and one exponent per line.
#include "kob_dp.h"
#include "kob_message.hpp"
#include "kob_text.hpp"
#include "kob_tool.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

namespace kob {
namespace {

constexpr std::size_t longest_piece = 299; // characters of a line that are read at a time
constexpr char blanks[] = " \t\n\v\f\r";

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using TextFile = std::unique_ptr<std::FILE, CloseFile>;

TextFile open_text(const char* path)
{
    TextFile file{std::fopen(path, "r")};
    // A folder opens, but nothing can be read from it.
    if (file && std::fgetc(file.get()) == EOF && std::ferror(file.get()) != 0) {
        return nullptr;
    }
    if (file) {
        std::rewind(file.get());
    }
    return file;
}

/// One entry of a line, if it holds one: a word and an integer.
bool parse_line(std::string line, std::string& name, std::int32_t& exponent)
{
    line.resize(std::min(line.find_first_of("$#"), line.size()));
    const std::size_t begin = line.find_first_not_of(blanks);
    if (begin == std::string::npos) {
        return false;
    }
    const std::size_t end = std::min(line.find_first_of(blanks, begin), line.size());
    name = line.substr(begin, end - begin);
    const char* number = line.c_str() + end;
    char* rest = nullptr;
    errno = 0;
    const long read = std::strtol(number, &rest, 10);
    exponent = static_cast<std::int32_t>(read);
    return rest != number && errno == 0 && read >= std::numeric_limits<std::int32_t>::min() &&
           read <= std::numeric_limits<std::int32_t>::max();
}

template <class Visit> void for_each_entry(std::FILE* file, Visit&& visit)
{
    std::array<char, longest_piece + 1> piece{};
    std::string name;
    std::int32_t exponent = 0;
    while (std::fgets(piece.data(), static_cast<int>(piece.size()), file) != nullptr) {
        if (parse_line(piece.data(), name, exponent)) {
            visit(name, exponent);
        }
    }
}

void count_entries(std::FILE* file, std::int32_t& count, bool verbose)
{
    count = 0;
    for_each_entry(file, [&](const std::string&, std::int32_t) { ++count; });
    if (verbose) {
        say(message::param_table);
        say(message::param_count, count);
        say(message::param_border);
        say(message::param_title);
        say(message::param_border);
    }
}

void read_entries(std::FILE* file, std::int32_t& count, char* names, std::int32_t* exponents, bool verbose)
{
    const auto fields = static_cast<std::size_t>(std::max(count, 0));
    const std::size_t bytes = fields * name_length;
    std::fill_n(names, bytes, ' ');
    count = 0;
    for_each_entry(file, [&](const std::string& name, std::int32_t exponent) {
        const auto field = static_cast<std::size_t>(count);
        if (field >= fields) {
            return; // the file has grown since it was counted; the caller's arrays have not
        }
        if (verbose) {
            say(message::param_row, exponent, name.c_str());
        }
        // A longer name runs into the next field, but never past the last one.
        const std::size_t begin = field * name_length;
        std::copy_n(name.data(), std::min(name.size(), bytes - begin), names + begin);
        exponents[field] = exponent;
        ++count;
    });
}

} // namespace
} // namespace kob

extern "C" void KOB_READ_PARAM(const char* path, int32_t, const int32_t* pass, int32_t* count, char* names,
                               int32_t* exponents, const int32_t* verbose, int32_t* status)
{
    using namespace kob;
    tool_entry(status, "kob_read_param", __LINE__, [&] {
        if (path == nullptr) {
            throw NullArgument{};
        }
        const TextFile file = open_text(path);
        if (!file) {
            report_error(message::param_no_file, path);
            return -1;
        }
        const bool says = verbose != nullptr && *verbose > 0;
        if (value(pass) == 0) {
            value(count);
            count_entries(file.get(), *count, says);
        } else if (value(pass) == 1) {
            if (value(count) > 0 && (names == nullptr || exponents == nullptr)) {
                throw NullArgument{};
            }
            read_entries(file.get(), *count, names, exponents, says);
        }
        return 0;
    });
}
