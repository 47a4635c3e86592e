// SPDX-License-Identifier: BSD-3-Clause
// What the whole-file tools have in common: their border to the caller, their banner, local names for entry points.
#pragma once

#include "kob_entry.hpp"
#include "kob_id.hpp"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace kob {

/// The border of a tool: like `entry`, but a failed allocation ends the process, as callers of the tools expect.
template <class Body> void tool_entry(std::int32_t* status, const char* source, int line, Body&& body) noexcept
{
    entry(status, [&]() -> std::int32_t {
        try {
            return body();
        } catch (const std::bad_alloc&) {
            report_error(message::tool_memory, source, line);
            std::exit(EXIT_FAILURE); // NOLINT(concurrency-mt-unsafe)
        }
    });
}

/// The framed title.
inline void say_banner(const char* title)
{
    say("\n");
    say(message::tool_border);
    say(message::tool_title, title);
    say(message::tool_border);
}

/// A block's group by path, or an empty owner. Opened with the entry point, silently.
Id open_block(hid_t parent, const std::string& path);

/// The group of a path, created where it is missing.
Id create_block(hid_t parent, const std::string& path);

} // namespace kob
