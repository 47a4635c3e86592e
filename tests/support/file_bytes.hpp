// SPDX-License-Identifier: BSD-3-Clause
// A file as it lies on the disk.
#pragma once

#include <cstddef>
#include <fstream>
#include <iterator>
#include <string>

namespace kob_test {

inline std::string bytes_of(const std::string& path)
{
    std::ifstream file{path, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

/// Puts `others` wherever the closed file holds `these`, which are as many; tells how often that was.
inline int damage_bytes(const std::string& path, const std::string& these, const std::string& others)
{
    std::string all = bytes_of(path);
    int found = 0;
    for (std::size_t at = all.find(these); at != std::string::npos; at = all.find(these, at + these.size())) {
        all.replace(at, others.size(), others);
        ++found;
    }
    std::ofstream{path, std::ios::binary} << all;
    return found;
}

} // namespace kob_test
