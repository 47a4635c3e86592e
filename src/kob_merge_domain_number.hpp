// SPDX-License-Identifier: BSD-3-Clause
// Which domain an entity belongs to: the first that holds it.
#pragma once

#include "kob_merge_model.hpp"
#include "kob_merge_results.hpp"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace kob::merge {

/// Collects the elements and nodes of all connectivities, by entity type.
class DomainNumbers {
public:
    /// The elements and nodes of one domain file, which is counted from 1.
    void add(const Connectivities& block, std::int32_t file);

    /// Definition of the variable, as each layout has it.
    [[nodiscard]] static Variable variable();
    [[nodiscard]] static OlderVariables older_variables();

    /// A constant result for each entity type, in the order of their names.
    template <class Visit> void for_each_result(Visit&& visit) const
    {
        for (const auto& [etyp, owners] : types_) {
            visit(result(etyp, owners));
        }
    }
    [[nodiscard]] std::int32_t count() const { return static_cast<std::int32_t>(types_.size()); }

private:
    /// Entities and their files, sorted now and then so that each entity is kept about once.
    struct Owners {
        std::vector<std::uint64_t> pairs;
        std::size_t distinct = 0; ///< leading pairs that are sorted and distinct
        void tidy();
    };

    void add(std::string_view etyp, std::span<const std::int32_t> identifiers, std::int32_t file);
    static EntityResults result(const std::string& etyp, const Owners& owners);

    std::map<std::string, Owners> types_;
};

} // namespace kob::merge
