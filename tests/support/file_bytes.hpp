// SPDX-License-Identifier: BSD-3-Clause
// A file as it lies on the disk.
#pragma once

#include <fstream>
#include <iterator>
#include <string>

namespace kob_test {

inline std::string bytes_of(const std::string& path)
{
    std::ifstream file{path, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

} // namespace kob_test
