// SPDX-License-Identifier: BSD-3-Clause
// The domain number of each entity, collected and written as a result.
#include "kob_merge_domain_number.hpp"

#include <algorithm>
#include <cstring>

namespace kob::merge {
namespace {

constexpr char variable_name[] = "DMPComputeDomainNumber";
constexpr char component_name[] = "Domain";
constexpr std::size_t tidy_after = std::size_t{1} << 20U; // pairs

/// Sorts by identifier, then by file.
std::uint64_t pair_of(std::int32_t identifier, std::int32_t file)
{
    const std::uint32_t ascending = static_cast<std::uint32_t>(identifier) ^ 0x80000000U;
    return (std::uint64_t{ascending} << 32U) | static_cast<std::uint32_t>(file);
}

std::int32_t identifier_of(std::uint64_t pair)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(pair >> 32U) ^ 0x80000000U);
}

} // namespace

void DomainNumbers::Owners::tidy()
{
    std::sort(pairs.begin(), pairs.end());
    const auto is_same_entity = [](std::uint64_t a, std::uint64_t b) { return (a >> 32U) == (b >> 32U); };
    pairs.erase(std::unique(pairs.begin(), pairs.end(), is_same_entity), pairs.end());
    distinct = pairs.size();
}

void DomainNumbers::add(std::string_view etyp, std::span<const std::int32_t> identifiers, std::int32_t file)
{
    Owners& owners = types_[std::string{etyp}];
    for (const std::int32_t identifier : identifiers) {
        owners.pairs.push_back(pair_of(identifier, file));
        if (owners.pairs.size() > 2 * owners.distinct + tidy_after) {
            owners.tidy();
        }
    }
    owners.tidy();
}

void DomainNumbers::add(const Connectivities& block, std::int32_t file)
{
    add(block.etyp.text(), block.idele, file);
    add(block.etypnode.text(), block.ic, file);
}

Variable DomainNumbers::variable()
{
    Variable variable;
    variable.varkey = Name{variable_name};
    variable.varnam = Name{component_name};
    variable.ncoo = 1;
    variable.mbunit = {0};
    variable.mdunit = {0};
    return variable;
}

OlderVariables DomainNumbers::older_variables()
{
    const Name component{component_name};
    OlderVariables variables;
    variables.etypvar = Name{variable_name};
    variables.ncoo = 1;
    variables.units.mbunit = {0};
    variables.units.mdunit = {0};
    variables.cname.assign(component.data(), component.data() + name_length);
    variables.cid = {1};
    variables.comp = {1};
    return variables;
}

EntityResults DomainNumbers::result(const std::string& etyp, const Owners& owners)
{
    EntityResults result;
    result.etyp = Name{etyp};
    result.etypvar = Name{variable_name};
    result.nent = static_cast<std::int32_t>(owners.pairs.size());
    result.ncoo = 1;
    result.key = kind::entity_results.key;
    result.size = sizeof(float);
    result.entid.reserve(owners.pairs.size());
    result.res.resize(owners.pairs.size() * sizeof(float));
    for (std::size_t i = 0; i < owners.pairs.size(); ++i) {
        const auto file = static_cast<float>(static_cast<std::uint32_t>(owners.pairs[i]));
        result.entid.push_back(identifier_of(owners.pairs[i]));
        std::memcpy(result.res.data() + i * sizeof(float), &file, sizeof file);
    }
    return result;
}

} // namespace kob::merge
