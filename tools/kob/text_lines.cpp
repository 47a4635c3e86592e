// SPDX-License-Identifier: BSD-3-Clause
// Lines are cut from a buffer that is larger than any line of a sensible file.

#include "text_lines.hpp"

#include <cerrno>
#include <cstring>

#include <fmt/format.h>

namespace text {

Error::Error(std::int64_t line, const std::string& text)
    : std::runtime_error{line > 0 ? fmt::format("line {}: {}", line, text) : text}, line_{line}
{
}

namespace {

constexpr std::size_t buffer_size = std::size_t{1} << 18;
constexpr std::size_t longest_line = std::size_t{1}
                                     << 16; // records have some 90 characters; a binary file has no lines

} // namespace

Lines::Lines(const std::string& path) : file_{std::fopen(path.c_str(), "rb")}, buffer_(buffer_size)
{
    if (!file_) throw Error(0, fmt::format("cannot open \"{}\": {}", path, std::strerror(errno)));
}

bool Lines::refill()
{
    const std::size_t rest = size_ - pos_;
    std::memmove(buffer_.data(), buffer_.data() + pos_, rest);
    start_ += static_cast<std::int64_t>(pos_);
    pos_ = 0;
    size_ = rest + std::fread(buffer_.data() + rest, 1, buffer_.size() - rest, file_.get());
    if (std::ferror(file_.get())) throw Error(number_ + 1, fmt::format("cannot read on: {}", std::strerror(errno)));
    return size_ > rest;
}

bool Lines::next(std::string_view& line)
{
    std::size_t searched = 0;
    const char* end = nullptr;
    for (;;) {
        const char* begin = buffer_.data() + pos_;
        if (size_ > pos_ + searched) {
            end = static_cast<const char*>(std::memchr(begin + searched, '\n', size_ - pos_ - searched));
        }
        if (end) break;
        searched = size_ - pos_;
        if (searched > longest_line) throw Error(number_ + 1, "the line is too long for a result file in text form");
        if (!refill()) break;
    }
    const char* begin = buffer_.data() + pos_;
    if (!end && size_ == pos_) return false;
    std::size_t length = end ? static_cast<std::size_t>(end - begin) : size_ - pos_;
    pos_ += length + (end ? 1 : 0);
    ++number_;
    while (length > 0 && begin[length - 1] == '\r') --length;
    line = {begin, length};
    return true;
}

void Lines::go_to(const Mark& mark)
{
    number_ = mark.line - 1;
    if (mark.offset >= start_ && mark.offset <= start_ + static_cast<std::int64_t>(size_)) {
        pos_ = static_cast<std::size_t>(mark.offset - start_);
        return;
    }
    if (fseeko(file_.get(), mark.offset, SEEK_SET) != 0) {
        throw Error(mark.line, "the file cannot be read twice; a pipe will not do");
    }
    start_ = mark.offset;
    pos_ = size_ = 0;
}

} // namespace text
