// SPDX-License-Identifier: BSD-3-Clause
// The blocks of one path, brought together: can they be united, and which entities do they hold?
#pragma once

#include "kob_merge_files.hpp"
#include "kob_merge_rows.hpp"
#include "kob_merge_union.hpp"
#include "kob_message.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kob::merge {

constexpr std::int32_t most_index_values = 5;
constexpr std::int32_t too_many_index_values = 1; // a status, and positive
constexpr std::int32_t cannot_be_united = -1;     // a status
constexpr std::int32_t other_extents = -6030;     // the status of a reader that finds other extents than it expects

inline void check_index_values(const Family& family, std::int32_t nindex)
{
    if (nindex > most_index_values) {
        report_error(message::merge_nindex, nindex, family.index_limit, most_index_values);
        throw Stop{too_many_index_values};
    }
}

/// The blocks of one path as their attributes describe them, and the union of their entities.
template <class Block> struct Gathered {
    std::vector<Block> domains; ///< attributes alone
    std::size_t lead = 0;       ///< the first that has entities: what rows don't tell is taken from it
    const IdentifierUnion* rows = nullptr;
};

/// The reader knows best what is wrong with a block whose attributes and contents differ.
template <class Block>
[[noreturn]] void fail_incomplete(const BlockKind& kind, Block block, StoredBlock& source, const std::string& path)
{
    block.make_room(source);
    const std::int32_t pass = values_pass(block, source.generation(), true);
    const std::int32_t status = block.read(source, pass);
    fail_reading(kind, pass, status < 0 ? status : other_extents, path);
}

/// The identifiers of blocks as they are stored.
class StoredLists : public IdentifierLists {
public:
    /// What they are called in the blocks, and the pass that a message names when one cannot be read.
    struct Naming {
        BlockKind kind;
        const char* dataset;
        std::int32_t pass;
    };

    StoredLists(const DomainFiles& files, SharedBlock sources, std::vector<std::size_t> lengths, const Naming& naming)
        : IdentifierLists{std::move(lengths)}, files_{files}, sources_{std::move(sources)}, naming_{naming}
    {
    }

    [[nodiscard]] std::unique_ptr<IdentifierList> open(std::size_t domain) const override;

private:
    const DomainFiles& files_;
    SharedBlock sources_;
    Naming naming_;
};

/// Blocks without entities may have any shape.
template <class Block> void check_traits(const SharedBlock& shared, Gathered<Block>& gathered)
{
    const std::vector<Trait> wanted = gathered.domains[gathered.lead].traits();
    for (std::size_t i = gathered.lead; i < gathered.domains.size(); ++i) {
        const std::vector<Trait> traits = gathered.domains[i].traits();
        for (std::size_t t = 0; t < traits.size(); ++t) {
            if (gathered.domains[i].rows() > 0 && traits[t].value != wanted[t].value) {
                report_error(message::merge_differs, shared[i].entry->path.c_str(), traits[t].name, wanted[t].value,
                             shared[gathered.lead].file(), traits[t].value, shared[i].file());
                throw Stop{cannot_be_united};
            }
        }
    }
}

/// Reads the attributes of all blocks of a path, checks that they can be united, and unites their entities.
template <class Block>
Gathered<Block> gather(const DomainFiles& files, UnionCache& unions, const BlockKind& kind, const SharedBlock& shared,
                       const Block& empty)
{
    Gathered<Block> gathered;
    std::vector<std::size_t> lengths;
    bool has_rows = false;
    for (const Source& source : shared) {
        const std::string& path = source.entry->path;
        StoredBlock stored_block = files.open(source);
        Block& block = gathered.domains.emplace_back(empty);
        const std::int32_t pass = passes_of<Block>(stored_block.generation()).attributes;
        if (const std::int32_t status = block.read(stored_block, pass); status < 0) {
            fail_reading(kind, pass, status, path);
        }
        if (!is_complete(stored_block, block)) {
            fail_incomplete(kind, block, stored_block, path);
        }
        lengths.push_back(static_cast<std::size_t>(std::max(block.rows(), 0)));
        if (!has_rows && block.rows() > 0) {
            has_rows = true;
            gathered.lead = gathered.domains.size() - 1;
        }
    }
    check_traits(shared, gathered);
    gathered.rows = &unions.of(std::make_shared<StoredLists>(
        files, shared, std::move(lengths),
        StoredLists::Naming{kind, Block::identifiers, passes_of<Block>(files.family().generation).values}));
    return gathered;
}

/// The merged block as its attributes describe it.
template <class Block> Block outline_of(Gathered<Block>& gathered)
{
    Block merged = gathered.domains[gathered.lead];
    for (Block& domain : gathered.domains) {
        if (domain.rows() > 0) {
            merged.take_in(domain);
        }
    }
    return merged;
}

/// The merged block, whose values are still to come. Takes over the memory of the one before.
template <class Block> Block frame_of(Gathered<Block>& gathered, Block& before)
{
    Block merged = outline_of(gathered);
    swap_rows(merged, before);
    if (holds_rows(merged)) {
        gathered.rows->copy_identifiers(merged.row_identifiers());
    }
    make_columns(merged, gathered.rows->size());
    return merged;
}

} // namespace kob::merge
