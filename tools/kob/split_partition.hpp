// SPDX-License-Identifier: BSD-3-Clause
// Which entities each domain of a cut model holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kob::program {

/// Entities by type. An entity may lie in several domains; one that no domain was given lies in the first.
class Partition {
public:
    explicit Partition(std::size_t domains) : domains_{domains} {}

    std::size_t domains() const { return domains_; }
    void add(const std::string& type, std::size_t domain, std::int32_t id) { members_of(type)[domain].push_back(id); }
    /// Sorts what was added; to be called before any question.
    void finish();

    /// Whether entities of the type were given to any domain.
    bool knows(const std::string& type) const { return members_.contains(type); }
    /// The places of those identifiers that a domain holds, ascending. All of them, if nothing is known of the type.
    std::vector<std::size_t> rows(const std::string& type, std::size_t domain, const std::int32_t* ids,
                                  std::size_t count) const;

private:
    std::vector<std::vector<std::int32_t>>& members_of(const std::string& type);

    std::size_t domains_;
    std::map<std::string, std::vector<std::vector<std::int32_t>>> members_; ///< type -> domain -> identifiers
    std::map<std::string, std::vector<std::int32_t>> known_;                ///< identifiers that any domain holds
};

/// The domain of each of `keys`, in parts of equal size along ascending keys; equal keys in their order.
std::vector<std::size_t> equal_parts(const std::vector<double>& keys, std::size_t parts);

} // namespace kob::program
