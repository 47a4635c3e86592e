// SPDX-License-Identifier: BSD-3-Clause
// The lines of a text file that an import reads, and the error that names one of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace text {

/// The file is not what it should be; `what()` names the line.
class Error : public std::runtime_error {
public:
    Error(std::int64_t line, const std::string& text);
    std::int64_t line() const { return line_; }

private:
    std::int64_t line_;
};

/// The lines of a file, with their numbers and offsets, and a way back to a line seen before.
class Lines {
public:
    struct Mark {
        std::int64_t offset = 0;
        std::int64_t line = 0; ///< number of the line at the offset, from 1
    };

    explicit Lines(const std::string& path); ///< throws Error (line 0) when the file cannot be opened

    bool next(std::string_view& line); ///< without line end; valid until the next call
    std::int64_t number() const { return number_; }
    Mark after() const { return {start_ + static_cast<std::int64_t>(pos_), number_ + 1}; }
    void go_to(const Mark& mark);

private:
    bool refill();

    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Close> file_;
    std::vector<char> buffer_;
    std::size_t pos_ = 0;
    std::size_t size_ = 0;
    std::int64_t start_ = 0; ///< offset of the buffer's first byte in the file
    std::int64_t number_ = 0;
};

} // namespace text
