// SPDX-License-Identifier: BSD-3-Clause
// Texts of callers: measured, trimmed, compared, printed.
#include "kob_text.hpp"

#include "kob_dp.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

namespace kob {
namespace {

// The "C" locale's graphic characters, whatever locale the process has set.
constexpr bool is_graphic(char c) noexcept { return c >= '!' && c <= '~'; }

template <std::size_t count> void drop_blanks(std::string_view& view) noexcept
{
    static constexpr auto blanks = [] {
        std::array<char, count> result{};
        result.fill(' ');
        return result;
    }();
    while (view.size() >= count && std::memcmp(view.data() + (view.size() - count), blanks.data(), count) == 0) {
        view.remove_suffix(count);
    }
}

} // namespace

std::string_view up_to_nul(const char* text, std::int32_t length) noexcept
{
    if (text == nullptr || length < 1) {
        return {};
    }
    const auto size = static_cast<std::size_t>(length);
    const void* nul = std::memchr(text, '\0', size);
    return {text, nul == nullptr ? size : static_cast<std::size_t>(static_cast<const char*>(nul) - text)};
}

std::string_view trimmed(const char* text, std::int32_t length) noexcept
{
    std::string_view view = up_to_nul(text, length);
    // Most of a field are blanks: many at a time, then a word of them.
    drop_blanks<64>(view);
    drop_blanks<8>(view);
    while (!view.empty() && !is_graphic(view.back())) {
        view.remove_suffix(1);
    }
    return view;
}

void fill_field(char* field, std::size_t length, std::string_view text, char pad) noexcept
{
    const std::size_t used = std::min(length, text.size());
    std::copy_n(text.data(), used, field);
    std::fill(field + used, field + length, pad);
}

} // namespace kob

extern "C" {

int32_t KOB_strlen(const char* text, int32_t length) { return static_cast<int32_t>(kob::trimmed(text, length).size()); }

int32_t KOB_putc(const char* text, int64_t length, FILE* stream)
{
    // Only the low 32 bits of the length count.
    const std::string_view view = kob::trimmed(text, static_cast<int32_t>(length));
    int32_t count = 0;
    for (const char c : view) {
        if (stream == nullptr || std::putc(c, stream) == EOF) {
            break;
        }
        ++count;
    }
    return count;
}

int32_t KOB_strncmp(const char* first, const char* second, int32_t length)
{
    const std::string_view a = kob::trimmed(first, length);
    const std::string_view b = kob::trimmed(second, length);
    const std::size_t shared = std::min(a.size(), b.size());
    const int difference = shared == 0 ? 0 : std::memcmp(a.data(), b.data(), shared);
    if (difference != 0) {
        return difference;
    }
    return static_cast<int32_t>(a.size()) - static_cast<int32_t>(b.size());
}

} // extern "C"
