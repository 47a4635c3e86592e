// SPDX-License-Identifier: BSD-3-Clause
// Answers which entities lie in which domain.

#include "split_partition.hpp"

#include <algorithm>
#include <numeric>

namespace kob::program {

namespace {

void sort_once(std::vector<std::int32_t>& ids)
{
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
}

} // namespace

std::vector<std::vector<std::int32_t>>& Partition::members_of(const std::string& type)
{
    auto& members = members_[type];
    members.resize(domains_);
    return members;
}

void Partition::finish()
{
    for (auto& [type, members] : members_) {
        std::vector<std::int32_t>& known = known_[type];
        for (auto& ids : members) {
            sort_once(ids);
            known.insert(known.end(), ids.begin(), ids.end());
        }
        sort_once(known);
    }
}

std::vector<std::size_t> Partition::rows(const std::string& type, std::size_t domain, const std::int32_t* ids,
                                         std::size_t count) const
{
    std::vector<std::size_t> result;
    const auto members = members_.find(type);
    if (members == members_.end()) {
        result.resize(count);
        std::iota(result.begin(), result.end(), std::size_t{0});
        return result;
    }
    const std::vector<std::int32_t>& mine = members->second[domain];
    const std::vector<std::int32_t>& known = known_.at(type);
    for (std::size_t i = 0; i < count; ++i) {
        const bool held = std::binary_search(mine.begin(), mine.end(), ids[i]) ||
                          (domain == 0 && !std::binary_search(known.begin(), known.end(), ids[i]));
        if (held) result.push_back(i);
    }
    return result;
}

std::vector<std::size_t> equal_parts(const std::vector<double>& keys, std::size_t parts)
{
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    std::vector<std::size_t> result(keys.size());
    for (std::size_t rank = 0; rank < order.size(); ++rank) result[order[rank]] = rank * parts / order.size();
    return result;
}

} // namespace kob::program
