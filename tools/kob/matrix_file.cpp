// SPDX-License-Identifier: BSD-3-Clause
// The parsers of matrices in text form. They hold no entries: whoever needs them goes through the file twice.

#include "matrix_file.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string_view>

#include <fmt/format.h>

namespace matrix {

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f' || c == '\r'; }

void split(std::string_view line, std::vector<std::string_view>& words)
{
    words.clear();
    for (std::size_t at = 0;;) {
        while (at < line.size() && is_blank(line[at])) ++at;
        if (at == line.size()) return;
        const std::size_t from = at;
        while (at < line.size() && !is_blank(line[at])) ++at;
        words.push_back(line.substr(from, at - from));
    }
}

std::string lower(std::string_view text)
{
    std::string out{text};
    std::transform(out.begin(), out.end(), out.begin(), [](unsigned char c) { return std::tolower(c); });
    return out;
}

template <class Number> bool parse(std::string_view text, Number& value)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} && end == text.data() + text.size();
}

/// A number as C or Fortran prints it.
bool parse_real(std::string_view text, double& value)
{
    if (parse(text, value)) return true;
    std::string plain = lower(text);
    if (plain.find('x') != std::string::npos) return false;
    std::replace(plain.begin(), plain.end(), 'd', 'e');
    if (plain.find_first_of("0123456789") == std::string::npos) return false;
    char* end = nullptr;
    value = std::strtod(plain.c_str(), &end); // also what is too small or too large for a double
    return end == plain.c_str() + plain.size();
}

std::int64_t whole(std::string_view text, std::int64_t line, const char* what)
{
    std::int64_t value = 0;
    if (!parse(text, value)) throw Error(line, fmt::format("no {} in \"{}\"", what, text));
    return value;
}

/// A number that a block holds in 32 bits.
std::int32_t narrow(std::string_view text, std::int64_t line, const char* what, std::int64_t least)
{
    const std::int64_t value = whole(text, line, what);
    if (value < least) throw Error(line, fmt::format("{} {} is too small", what, value));
    if (value > std::numeric_limits<std::int32_t>::max()) {
        throw Error(line, fmt::format("{} {} does not fit 32 bits", what, value));
    }
    return static_cast<std::int32_t>(value);
}

} // namespace

void File::each_of_both(const std::function<void(const Entry&)>& use)
{
    each([&](const Entry& e) {
        use(e);
        if (symmetry_ == Symmetry::general || e.row == e.column) return;
        Entry other{e.column, e.row, e.real, e.imaginary};
        if (symmetry_ == Symmetry::skew) other.real = -other.real;
        if (symmetry_ != Symmetry::symmetric) other.imaginary = -other.imaginary;
        use(other);
    });
}

// --- Matrix Market -------------------------------------------------------------------------------------------------

MarketFile::MarketFile(const std::string& path) : File{path}
{
    std::string_view line;
    if (!lines_.next(line)) throw Error(1, "the file is empty");
    banner(line);
    header_.emplace_back(line);
    std::vector<std::string_view> words;
    while (lines_.next(line)) {
        header_.emplace_back(line);
        if (line.substr(0, 1) == "%") continue;
        split(line, words);
        if (words.empty()) continue;
        sizes(line);
        first_ = lines_.after();
        return;
    }
    throw Error(lines_.number() + 1, "the file ends before the line with the sizes");
}

void MarketFile::banner(std::string_view line)
{
    std::vector<std::string_view> words;
    split(line, words);
    if (words.size() != 5 || lower(words[0]) != "%%matrixmarket") {
        throw Error(1, "no Matrix Market file: it does not begin with \"%%MatrixMarket\" and four words");
    }
    if (lower(words[1]) != "matrix") throw Error(1, fmt::format("\"{}\" is not read, only matrix", words[1]));
    const auto choose = [](std::string_view word, const auto& names, const char* what) {
        const auto found = std::find(names.begin(), names.end(), lower(word));
        if (found == names.end()) throw Error(1, fmt::format("\"{}\" is no {}", word, what));
        return found - names.begin();
    };
    static constexpr std::array<std::string_view, 2> formats = {"coordinate", "array"};
    static constexpr std::array<std::string_view, 4> fields = {"real", "integer", "pattern", "complex"};
    static constexpr std::array<std::string_view, 4> symmetries = {"general", "symmetric", "skew-symmetric",
                                                                   "hermitian"};
    coordinate_ = choose(words[2], formats, "format") == 0;
    field_ = static_cast<Field>(choose(words[3], fields, "field"));
    symmetry_ = static_cast<Symmetry>(choose(words[4], symmetries, "symmetry"));
    const bool good = field_ == Field::pattern   ? coordinate_ && symmetry_ <= Symmetry::symmetric
                      : field_ == Field::complex ? true
                                                 : symmetry_ != Symmetry::hermitian;
    if (!good) throw Error(1, fmt::format("there is no {} {} {} matrix", words[2], words[3], words[4]));
}

void MarketFile::sizes(std::string_view line)
{
    std::vector<std::string_view> words;
    split(line, words);
    const std::int64_t number = lines_.number();
    if (words.size() != (coordinate_ ? 3 : 2)) {
        throw Error(number, coordinate_ ? "rows, columns and number of entries should stand here"
                                        : "rows and columns should stand here");
    }
    rows_ = narrow(words[0], number, "number of rows", 0);
    columns_ = narrow(words[1], number, "number of columns", 0);
    if (symmetry_ != Symmetry::general && rows_ != columns_) {
        throw Error(number, fmt::format("a matrix with symmetry is square, not {} x {}", rows_, columns_));
    }
    if (coordinate_) {
        entries_ = whole(words[2], number, "number of entries");
        if (entries_ < 0) throw Error(number, fmt::format("number of entries {} is too small", entries_));
        return;
    }
    const std::int64_t n = rows_;
    entries_ = symmetry_ == Symmetry::general ? n * columns_
               : symmetry_ == Symmetry::skew  ? n * (n - 1) / 2
                                              : n * (n + 1) / 2;
}

void MarketFile::each(const std::function<void(const Entry&)>& use)
{
    lines_.go_to(first_);
    inexact_ = 0;
    if (coordinate_)
        each_coordinate(use);
    else
        each_array(use);
    std::vector<std::string_view> words;
    if (next_entry(words)) {
        throw Error(lines_.number(), fmt::format("more than the {} entries that the file announces", entries_));
    }
}

bool MarketFile::next_entry(std::vector<std::string_view>& words)
{
    std::string_view line;
    while (lines_.next(line)) {
        split(line, words);
        if (!words.empty()) return true;
    }
    return false;
}

void MarketFile::each_coordinate(const std::function<void(const Entry&)>& use)
{
    const std::size_t wanted = field_ == Field::pattern ? 2 : field_ == Field::complex ? 4 : 3;
    std::vector<std::string_view> words;
    for (std::int64_t i = 0; i < entries_; ++i) {
        if (!next_entry(words)) {
            throw Error(lines_.number() + 1, fmt::format("the file ends after {} of {} entries", i, entries_));
        }
        const std::int64_t number = lines_.number();
        if (words.size() != wanted) {
            throw Error(number, fmt::format("{} numbers should stand here, not {}", wanted, words.size()));
        }
        Entry e;
        e.row = narrow(words[0], number, "row", 1) - 1;
        e.column = narrow(words[1], number, "column", 1) - 1;
        if (e.row >= rows_ || e.column >= columns_) {
            throw Error(number, fmt::format("entry {} {} of a matrix of {} x {}", e.row + std::int64_t{1},
                                            e.column + std::int64_t{1}, rows_, columns_));
        }
        values(words, 2, e);
        check_place(e);
        use(e);
    }
}

void MarketFile::each_array(const std::function<void(const Entry&)>& use)
{
    const std::size_t wanted = field_ == Field::complex ? 2 : 1;
    std::vector<std::string_view> words;
    std::int64_t done = 0;
    for (std::int32_t column = 0; column < columns_; ++column) {
        const std::int32_t first = symmetry_ == Symmetry::general ? 0
                                   : symmetry_ == Symmetry::skew  ? column + 1
                                                                  : column;
        for (std::int32_t row = first; row < rows_; ++row, ++done) {
            if (!next_entry(words)) {
                throw Error(lines_.number() + 1, fmt::format("the file ends after {} of {} entries", done, entries_));
            }
            if (words.size() != wanted) {
                throw Error(lines_.number(), fmt::format("{} {} should stand here, not {}", wanted,
                                                         wanted == 1 ? "number" : "numbers", words.size()));
            }
            Entry e{row, column, 0, 0};
            values(words, 0, e);
            check_place(e);
            use(e);
        }
    }
}

void MarketFile::values(const std::vector<std::string_view>& words, std::size_t from, Entry& entry)
{
    const std::int64_t number = lines_.number();
    const auto real = [&](std::string_view word) {
        double value = 0;
        if (!parse_real(word, value)) throw Error(number, fmt::format("\"{}\" is no number", word));
        return value;
    };
    switch (field_) {
    case Field::pattern:
        entry.real = 1;
        break;
    case Field::integer: {
        const std::int64_t value = whole(words[from], number, "integer");
        entry.real = static_cast<double>(value);
        constexpr std::int64_t all_exact = std::int64_t{1} << std::numeric_limits<double>::digits;
        // Rounding can reach 2^63, which no conversion back would survive.
        const bool small = value >= -all_exact && value <= all_exact;
        const double limit = std::ldexp(1.0, 63);
        if (!small && (entry.real >= limit || static_cast<std::int64_t>(entry.real) != value)) ++inexact_;
        break;
    }
    case Field::complex:
        entry.imaginary = real(words[from + 1]);
        [[fallthrough]];
    case Field::real:
        entry.real = real(words[from]);
        break;
    }
}

/// Files of a matrix with symmetry hold the lower triangle alone.
void MarketFile::check_place(const Entry& e) const
{
    if (symmetry_ == Symmetry::general) return;
    const std::int64_t number = lines_.number();
    if (e.column > e.row) throw Error(number, "the entry stands above the diagonal of a matrix with symmetry");
    if (e.column < e.row) return;
    if (symmetry_ == Symmetry::skew) throw Error(number, "the diagonal of a skew-symmetric matrix has no entries");
    if (symmetry_ == Symmetry::hermitian && e.imaginary != 0) {
        throw Error(number, "the diagonal of a hermitian matrix is real");
    }
}

// --- the solver's equations ----------------------------------------------------------------------------------------

SolverFile::SolverFile(const std::string& path) : File{path}
{
    symmetry_ = Symmetry::symmetric;
    std::int32_t order = 0;
    each([&](const Entry& e) { order = std::max(order, e.column + 1); });
    if (order == 0) throw Error(1, "the file holds no entries; the solver has not finished");
    rows_ = columns_ = order;
}

void SolverFile::each(const std::function<void(const Entry&)>& use)
{
    lines_.go_to({0, 1});
    std::string_view line;
    std::vector<std::string_view> words;
    while (lines_.next(line)) {
        const std::int64_t number = lines_.number();
        split(line, words);
        if (words.size() != 3) throw Error(number, "row, column and value should stand here");
        Entry e;
        e.row = narrow(words[0], number, "row", 1) - 1;
        e.column = narrow(words[1], number, "column", 1) - 1;
        if (rows_ > 0 && e.column >= rows_) throw Error(number, "the file changes while it is read");
        if (e.row > e.column) throw Error(number, "the entry stands below the diagonal");
        if (!parse_real(words[2], e.real)) throw Error(number, fmt::format("\"{}\" is no number", words[2]));
        use(e);
    }
}

std::vector<std::int32_t> read_freedoms(const std::string& path)
{
    Lines lines{path};
    std::vector<std::int32_t> pairs;
    std::string_view line;
    std::vector<std::string_view> words;
    while (lines.next(line)) {
        split(line, words);
        const std::size_t dot = words.size() == 1 ? words[0].find('.') : std::string_view::npos;
        if (dot == std::string_view::npos) throw Error(lines.number(), "node.direction should stand here");
        pairs.push_back(narrow(words[0].substr(0, dot), lines.number(), "node", 1));
        pairs.push_back(narrow(words[0].substr(dot + 1), lines.number(), "direction", 0));
    }
    if (pairs.empty()) throw Error(1, "the file holds no entries; the solver has not finished");
    return pairs;
}

} // namespace matrix
