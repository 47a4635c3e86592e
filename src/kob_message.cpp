// SPDX-License-Identifier: BSD-3-Clause
// The one place that prints.
#include "kob_message.hpp"

#include <cstdarg>

namespace kob {

void report_error(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
}

void say(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stdout, format, arguments);
    va_end(arguments);
}

} // namespace kob
