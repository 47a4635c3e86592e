// SPDX-License-Identifier: BSD-3-Clause
// Texts of callers: measured, trimmed, copied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kob {

constexpr std::int32_t name_length = 256; // characters of every name inside a block

/// The text without what is behind its first NUL and without trailing non-graphic characters.
/// Reads no byte beyond `length`.
std::string_view trimmed(const char* text, std::int32_t length) noexcept;

/// The first `length` bytes, up to a NUL, untrimmed.
std::string_view up_to_nul(const char* text, std::int32_t length) noexcept;

/// Copies `text` into a field of `length` bytes and fills the rest with `pad`.
void fill_field(char* field, std::size_t length, std::string_view text, char pad = ' ') noexcept;

} // namespace kob
