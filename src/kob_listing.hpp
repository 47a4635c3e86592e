// SPDX-License-Identifier: BSD-3-Clause
// The listing that directory and search print.
#pragma once

#include "kob_message.hpp"

#include <cstddef>
#include <cstdint>

namespace kob {

/// Paths lie packed behind each other, path i from offsets[i] on.
inline void say_listing(const char* caller, std::int32_t count, std::int64_t path_length, const std::int32_t* keys,
                        const std::int64_t* offsets, const char* paths)
{
    say(message::listing_head, caller, count, static_cast<std::size_t>(path_length));
    say(message::listing_columns);
    for (std::int32_t i = 0; i < count; ++i) {
        say(message::listing_row, i, keys[i], paths + offsets[i]);
    }
    say("\n");
}

} // namespace kob
