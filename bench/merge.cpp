// SPDX-License-Identifier: BSD-3-Clause
// The nodes of the domains, and where their files are.
#include "merge.hpp"

#include <algorithm>
#include <filesystem>
#include <random>

namespace bench {

std::vector<std::int32_t> nodes_of(const MergeSet& set, std::int32_t domain)
{
    const std::int32_t row = set.domains * (set.edge - 1) + 1;
    const std::int32_t first = domain * (set.edge - 1);
    std::vector<std::int32_t> nodes;
    for (std::int32_t line = 0; line < set.edge * set.edge; ++line) {
        for (std::int32_t i = 0; i < set.edge; ++i) {
            nodes.push_back(1 + line * row + first + i);
        }
    }
    if (!set.is_ordered) {
        std::shuffle(nodes.begin(), nodes.end(),
                     std::mt19937{static_cast<unsigned>(domain)}); // NOLINT: always the same
    }
    return nodes;
}

std::string domain_file(const std::string& merged_file, std::int32_t domain)
{
    const std::filesystem::path folder = std::filesystem::path{merged_file}.parent_path();
    return (folder / ("domain" + std::to_string(domain + 1) + ".kob")).string();
}

} // namespace bench
