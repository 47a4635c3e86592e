// SPDX-License-Identifier: BSD-3-Clause
// Listing the domain files, checking them, and looking blocks up.
#include "kob_merge_files.hpp"

#include "kob_message.hpp"
#include "kob_tool.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <unordered_map>

namespace kob::merge {
namespace {

/// Kinds that the older layout does not have.
bool is_current_only(std::int32_t key) { return kind::variable_group.owns(key) || kind::identifiers.owns(key); }

/// The name of a kind that is not merged, the key of one that is unknown; empty for the others.
std::string left_out_name(std::int32_t key, Generation generation)
{
    constexpr std::array merged{kind::system,
                                kind::index,
                                kind::variable_group,
                                kind::variable,
                                kind::text,
                                kind::parts,
                                kind::attributes,
                                kind::identifiers,
                                kind::connectivities,
                                kind::collector,
                                kind::entity_results,
                                kind::multi_entity_results,
                                kind::element_results,
                                kind::activation_flags,
                                kind::dense_matrix,
                                kind::triangular_matrix};
    constexpr std::array left_out{kind::properties, kind::multi_element_results, kind::multi_activation_flags,
                                  kind::sparse_matrix};
    const auto owns = [key](const BlockKind& kind) { return kind.owns(key); };
    if (generation == Generation::older && is_current_only(key)) {
        return std::to_string(key);
    }
    if (key == kind::file_header || std::any_of(merged.begin(), merged.end(), owns)) {
        return {};
    }
    const auto* const found = std::find_if(left_out.begin(), left_out.end(), owns);
    return found != left_out.end() ? found->name : std::to_string(key);
}

} // namespace

void fail_reading(const BlockKind& kind, std::int32_t pass, std::int32_t status, const std::string& path)
{
    report_error(message::tool_reading, kind.name, pass, status);
    report_error(message::tool_block_path, path.c_str());
    throw Stop{status};
}

std::vector<SharedBlock> by_path(const std::vector<Source>& blocks)
{
    std::vector<SharedBlock> shared;
    std::unordered_map<std::string_view, std::size_t> known;
    for (const Source& block : blocks) {
        const auto [path, is_new] = known.try_emplace(block.entry->path, shared.size());
        if (is_new) {
            shared.emplace_back();
        }
        shared[path->second].push_back(block);
    }
    return shared;
}

DomainFiles::DomainFiles(const Family& family, const std::int64_t* groups, std::int32_t count, std::int32_t verbosity)
    : family_{family}, verbosity_{verbosity}
{
    for (std::int32_t i = 0; i < count; ++i) {
        domains_.push_back({groups[i], {}});
    }
}

void DomainFiles::list()
{
    for (std::size_t i = 0; i < domains_.size(); ++i) {
        Domain& domain = domains_[i];
        const auto file = static_cast<std::int32_t>(i) + 1;
        if (!domain.table.list(domain.group, family_)) {
            report_error(message::merge_no_blocks, file);
            if (domain.table.status() != 0) {
                throw Stop{domain.table.status()};
            }
            continue;
        }
        if (verbosity_ > 0) {
            say(message::merge_blocks_found, file, domain.table.found());
        }
        domain.table.read_numbers(true);
        if (verbosity_ > 1) {
            domain.table.say_by_key();
        }
    }
}

void DomainFiles::check_versions() const
{
    std::size_t passed = 0;
    for (std::size_t i = 0; i < domains_.size(); ++i) {
        passed += is_compatible(i) ? 1 : 0;
    }
    if (passed < domains_.size()) {
        report_error(message::merge_maybe_incompatible);
    }
}

bool DomainFiles::is_compatible(std::size_t i) const
{
    const auto file = static_cast<std::int32_t>(i) + 1;
    const BlockTable& table = domains_[i].table;
    const std::vector<std::int32_t>& headers = table.of_key(kind::file_header);
    if (headers.empty()) {
        report_error(message::merge_no_header, file, header_group_name);
        return false;
    }
    if (headers.size() > 1) {
        say(message::merge_multiple_headers, file, header_group_name);
    }
    const Version found = version_in({i, &table.entries()[static_cast<std::size_t>(headers.front())]});
    const Version& own = family_.version;
    const bool is_readable = found.release >= 0 && found.major == own.major;
    const bool is_own = is_readable && found.minor == own.minor && found.release == own.release;
    if (is_own && verbosity_ < 1) {
        return true;
    }
    const char* verdict = is_own        ? message::merge_version_ok
                          : is_readable ? message::merge_version_warning
                                        : message::merge_version_not_ok;
    say(message::merge_check_file, file, static_cast<std::int32_t>(domains_.size()));
    say(verdict, found.major, found.minor, found.release, own.major, own.minor, own.release); // NOLINT
    return is_readable;
}

Version DomainFiles::version_in(const Source& source) const
{
    const StoredBlock header = open(source);
    std::array<char, 33> text{};
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{};
    std::int32_t status = 0;
    family_.read_header(header.handle(), text.data(), &filter_flags, filter_params.data(), &status);
    if (status < 0) {
        report_error(message::tool_incompatible, status);
        throw Stop{status};
    }
    Version version;
    read_version(text.data(), version.major, version.minor, version.release);
    return version;
}

StoredBlock DomainFiles::open(const Source& source) const
{
    return {open_block(domains_[source.domain].group, source.entry->path), family_.generation};
}

std::vector<Source> DomainFiles::blocks_of(const BlockKind& kind, std::size_t domain) const
{
    const BlockTable& table = domains_[domain].table;
    std::vector<Source> blocks;
    for (const std::int32_t key : {kind.key, kind.complex_key}) {
        if (key == 0) {
            continue;
        }
        for (const std::int32_t block : table.of_key(key)) {
            blocks.push_back({domain, &table.entries()[static_cast<std::size_t>(block)]});
        }
    }
    return blocks;
}

std::vector<Source> DomainFiles::look_up(const BlockKind& kind) const
{
    std::vector<Source> all;
    for (std::size_t i = 0; i < domains_.size(); ++i) {
        const std::vector<Source> blocks = blocks_of(kind, i);
        if (blocks.empty()) {
            report_error(message::merge_kind_missing, static_cast<std::int32_t>(i) + 1, kind.name);
        }
        all.insert(all.end(), blocks.begin(), blocks.end());
    }
    if (!all.empty()) {
        say(message::merge_kind_found, static_cast<std::int32_t>(all.size()), kind.name);
    }
    return all;
}

std::vector<Source> DomainFiles::look_up_single(const BlockKind& kind) const
{
    std::vector<Source> all;
    for (std::size_t i = 0; i < domains_.size(); ++i) {
        const std::vector<Source> blocks = blocks_of(kind, i);
        if (blocks.empty()) {
            report_error(message::merge_block_missing, static_cast<std::int32_t>(i) + 1, kind.name);
        } else if (blocks.size() > 1) {
            report_error(message::merge_multiple_blocks, static_cast<std::int32_t>(i) + 1, kind.name);
        }
        all.insert(all.end(), blocks.begin(), blocks.end());
    }
    return all;
}

void DomainFiles::say_left_out() const
{
    for (std::size_t i = 0; i < domains_.size(); ++i) {
        std::map<std::string, std::int32_t> left_out;
        std::vector<std::string> order;
        for (const KeyGroup& group : domains_[i].table.groups()) {
            const std::string name = left_out_name(group.key, family_.generation);
            if (name.empty()) {
                continue;
            }
            if (left_out.try_emplace(name, 0).second) {
                order.push_back(name);
            }
            left_out[name] += static_cast<std::int32_t>(group.blocks.size());
        }
        for (const std::string& name : order) {
            say(message::merge_not_merged, left_out[name], name.c_str(), static_cast<std::int32_t>(i) + 1);
        }
    }
}

} // namespace kob::merge
