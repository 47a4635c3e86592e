// SPDX-License-Identifier: BSD-3-Clause
// The target of a merge: where blocks go, and how they are stored there.
#pragma once

#include "kob_merge_block.hpp"
#include "kob_merge_place.hpp"
#include "kob_merge_results.hpp"
#include "kob_tool.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace kob::merge {

[[noreturn]] void fail_writing(const BlockKind& kind, std::int32_t status, const std::string& path);

/// Decimal scale factor of each variable that has one.
class Exponents {
public:
    Exponents(std::int32_t count, const char* names, const std::int32_t* exponents)
    {
        for (std::int32_t i = 0; i < count; ++i) {
            const char* name = names + static_cast<std::ptrdiff_t>(i) * name_length;
            table_.emplace(trimmed(name, name_length), exponents[i]); // of equal names the first wins
        }
    }

    [[nodiscard]] const std::int32_t* find(std::string_view variable) const
    {
        const auto found = table_.find(variable);
        return found == table_.end() ? nullptr : &found->second;
    }

private:
    std::map<std::string, std::int32_t, std::less<>> table_;
};

/// Node coordinates are results of their own kind: never stored with loss unless that is asked for by name.
bool is_coordinates(const EntityResults& block);

/// How the caller wants blocks stored.
struct Storing {
    Compression defaults; ///< of blocks that have no filters in the domain files
    Exponents exponents;
    std::int32_t float_size;
};

class Target {
public:
    Target(Location group, Storing storing, std::int32_t verbosity)
        : group_{group}, storing_{std::move(storing)}, verbosity_{verbosity}
    {
    }

    [[nodiscard]] Compression or_default(const Compression& own) const
    {
        return own.is_any() ? own : storing_.defaults;
    }
    /// The filters of merged results.
    [[nodiscard]] Compression compression_of(const EntityResults& block) const;
    /// Will the values of merged results, which no domain file filters, be stored as they are?
    [[nodiscard]] bool stores_unfiltered(const EntityResults& block) const;
    /// The block of a path, or an empty owner.
    [[nodiscard]] StoredBlock open(const std::string& path) const
    {
        return {open_block(group_.group, path), group_.generation};
    }
    [[nodiscard]] bool holds(const std::string& path) const { return static_cast<bool>(open(path)); }
    [[nodiscard]] Id create(const std::string& path) const { return create_block(group_.group, path); }

    /// Writes a block through a writer that builds the path by itself.
    template <class Block>
    void write_at(const BlockKind& kind, const Place& place, const Block& block, const std::string& path) const
    {
        const Id prefix = place.prefix.empty() ? Id{} : create(place.prefix);
        const GroupsLeftOpen closed_after{group_.group};
        const std::int32_t status = block.write({group_.generation, prefix ? prefix.get() : group_.group, place.state,
                                                 place.set, or_default(block.compression), storing_.float_size});
        if (status != 0) {
            fail_writing(kind, status, path);
        }
    }
    /// Writes results, whose writer takes the block's own group.
    void write_results(const std::string& path, const EntityResults& block, const Compression& compression) const;

private:
    Location group_;
    Storing storing_;
    std::int32_t verbosity_;
};

} // namespace kob::merge
