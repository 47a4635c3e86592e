// SPDX-License-Identifier: BSD-3-Clause
// Version of the library and its one process-wide setting.
#pragma once

#include <cstdint>

namespace kob {

struct Version {
    std::int32_t major = 0;
    std::int32_t minor = 0;
    std::int32_t release = 0;
};

/// The two generations of the layout; each has a version of its own.
enum class Generation { older, current };

constexpr Version version_of(Generation generation)
{
    return generation == Generation::current ? Version{2, 2, 16} : Version{1, 2, 0};
}

constexpr char build_identifier[] = "kob__dp";

/// Rows per chunk of a growable dimension, as the caller set it.
std::int32_t chunk_size() noexcept;

} // namespace kob
