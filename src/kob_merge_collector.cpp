// SPDX-License-Identifier: BSD-3-Clause
// Uniting collectors.
#include "kob_merge_collector.hpp"

#include "kob_merge_gather.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

namespace kob::merge {
namespace {

Collector read_collector(const DomainFiles& files, const Source& source)
{
    StoredBlock stored_block = files.open(source);
    Collector block;
    block.make_room(stored_block);
    if (const std::int32_t status = block.read(stored_block, Collector::passes.values); status < 0) {
        fail_reading(kind::collector, Collector::passes.values, status, source.entry->path);
    }
    return block;
}

} // namespace

Collector unite_collectors(const DomainFiles& files, const SharedBlock& shared)
{
    struct Member {
        std::int32_t collector;
        std::int32_t type;
        std::int32_t entity;
        bool operator==(const Member&) const = default;
        bool operator<(const Member& other) const
        {
            return std::tie(collector, type, entity) < std::tie(other.collector, other.type, other.entity);
        }
    };
    Collector merged;
    std::set<std::int32_t> collectors;
    std::map<std::string, std::int32_t, std::less<>> types;
    std::vector<Member> members;
    for (const Source& source : shared) {
        const Collector block = read_collector(files, source);
        if (&source == &shared.front()) {
            merged = block;
            merged.etyp.clear();
        } else if (block.index.nindex != merged.index.nindex) {
            report_error(message::merge_differs, source.entry->path.c_str(), "nindex", merged.index.nindex,
                         shared.front().file(), block.index.nindex, source.file());
            throw Stop{cannot_be_united};
        }
        if (!merged.compression.is_any()) {
            merged.compression = block.compression;
        }
        std::vector<std::int32_t> own_types;
        for (std::size_t t = 0; t * name_length < block.etyp.size(); ++t) {
            const char* name = block.etyp.data() + t * name_length;
            const auto [type, is_new] =
                types.try_emplace(std::string{trimmed(name, name_length)}, static_cast<std::int32_t>(types.size()));
            if (is_new) {
                merged.etyp.insert(merged.etyp.end(), name, name + name_length);
            }
            own_types.push_back(type->second);
        }
        const std::int32_t* count = block.nent.data();
        const std::int32_t* entity = block.entid.data();
        for (const std::int32_t collector : block.idcoll) {
            collectors.insert(collector);
            for (const std::int32_t type : own_types) {
                for (std::int32_t i = 0; i < *count; ++i) {
                    members.push_back({collector, type, *entity++});
                }
                ++count;
            }
        }
    }
    std::sort(members.begin(), members.end());
    members.erase(std::unique(members.begin(), members.end()), members.end());

    merged.ncoll = static_cast<std::int32_t>(collectors.size());
    merged.ntyp = static_cast<std::int32_t>(types.size());
    merged.idcoll.assign(collectors.begin(), collectors.end());
    merged.nent.assign(collectors.size() * types.size(), 0);
    merged.entid.clear();
    std::size_t collector = 0;
    for (const Member& member : members) {
        while (merged.idcoll[collector] != member.collector) {
            ++collector;
        }
        ++merged.nent[collector * types.size() + static_cast<std::size_t>(member.type)];
        merged.entid.push_back(member.entity);
    }
    return merged;
}

} // namespace kob::merge
