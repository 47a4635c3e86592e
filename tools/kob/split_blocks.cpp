// SPDX-License-Identifier: BSD-3-Clause
// Cuts blocks by rows.

#include "split_blocks.hpp"

#include "terminal.hpp"
#include "verbs.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kob::program {

namespace {

using Rows = std::vector<std::size_t>;

/// What becomes of the blocks of a kind.
enum class Way {
    copied, ///< whole to each domain
    cut,    ///< by rows; of entities that are in no domain, to each domain
    dealt,  ///< the same, to the first domain: the merger does not unite these blocks
    owned,  ///< whole to the first domain that holds the block's one entity
    grouped ///< collectors, by their members
};

struct CutKind {
    std::int32_t key; ///< that of the real values
    Way way;
    std::string_view type;  ///< items: the entity type,
    std::string_view ids;   ///< its identifiers,
    std::string_view count; ///< their number
};

constexpr std::array cut_kinds{
    CutKind{10, Way::copied, "", "", ""},
    CutKind{20, Way::copied, "", "", ""},
    CutKind{30, Way::copied, "", "", ""},
    CutKind{32, Way::copied, "", "", ""},
    CutKind{40, Way::copied, "", "", ""},
    CutKind{100, Way::cut, "etyppart", "pid", "npart"},
    CutKind{200, Way::cut, "etyp", "entid", "nent"},
    CutKind{250, Way::cut, "etyp", "entid", "nent"},
    CutKind{300, Way::cut, "etypelem", "idele", "nele"},
    CutKind{400, Way::grouped, "etyp", "entid", "nent"},
    CutKind{500, Way::dealt, "etyp", "entid", "nent"},
    CutKind{1000, Way::cut, "etyp", "entid", "nent"},
    CutKind{1050, Way::cut, "etyp", "entid", "nent"},
    CutKind{1100, Way::dealt, "etypelem", "idele", "nele"},
    CutKind{1150, Way::dealt, "etypelem", "idele", "nele"},
    CutKind{2100, Way::cut, "etyp", "entid", "nent"},
    CutKind{2150, Way::dealt, "etyp", "entid", "nent"},
    CutKind{10000, Way::owned, "etyp", "entid", ""},
    CutKind{10100, Way::owned, "etyp", "entid", ""},
    CutKind{10200, Way::owned, "etyp", "entid", ""},
};

const CutKind* find_cut(std::int32_t key)
{
    const Kind* kind = find_kind(key);
    const auto* found = std::find_if(cut_kinds.begin(), cut_kinds.end(),
                                     [&](const CutKind& cut) { return kind != nullptr && cut.key == kind->key; });
    return found != cut_kinds.end() ? found : nullptr;
}

/// The items with a row for each entity, in whatever kind they are.
bool has_row_of_each(const Item& item)
{
    constexpr std::array<std::string_view, 18> names{"entid", "idele",  "pid", "title",   "mid",    "mtyp",
                                                     "pcol",  "pvtyp",  "uid", "ic",      "iparam", "fparam",
                                                     "fid",   "weight", "res", "idparam", "cparam", "status"};
    return item.stored == Stored::dataset && item.in_block &&
           std::find(names.begin(), names.end(), item.name) != names.end();
}

template <class T> Buffer<T> buffer_of(const T* from, std::size_t count)
{
    Buffer<T> result{count};
    std::copy_n(from, count, result.data());
    return result;
}

/// Of each state the rows, each of `length` values.
template <class T>
Buffer<T> gather(const Buffer<T>& from, const Rows& rows, std::size_t states, std::size_t rows_of_state,
                 std::size_t length)
{
    Buffer<T> result{states * rows.size() * length};
    T* to = result.data();
    for (std::size_t state = 0; state < states; ++state)
        for (const std::size_t row : rows)
            to = std::copy_n(from.data() + (state * rows_of_state + row) * length, length, to);
    return result;
}

/// All of an item but its values.
Item outline_of(const Item& item)
{
    return {item.name,     item.stored,    item.type,      item.width,       item.shape, item.complex_pairs,
            item.in_block, item.is_string, item.is_series, item.state_count, item.rows,  {}};
}

Item copy_of(const Item& item)
{
    Item copy = outline_of(item);
    std::visit([&](const auto& values) { copy.values = buffer_of(values.data(), values.size()); }, item.values);
    return copy;
}

Item rows_of(const Item& item, const Rows& rows)
{
    Item part = outline_of(item);
    const auto length = static_cast<std::size_t>(item.row_length() * (item.type == Type::text ? item.width : 1));
    const auto states = static_cast<std::size_t>(item.state_count);
    std::visit(
        [&](const auto& values) {
            part.values = gather(values, rows, states, static_cast<std::size_t>(item.rows), length);
        },
        item.values);
    part.rows = static_cast<std::int64_t>(rows.size());
    part.shape[item.is_series ? 1 : 0] = part.rows;
    return part;
}

/// Everything of a block but its items.
Block outline_of(const Block& block)
{
    Block outline;
    outline.key = block.key;
    outline.older = block.older;
    outline.kind = block.kind;
    outline.filters_known = block.filters_known;
    outline.filter_flags = block.filter_flags;
    outline.filter_params = block.filter_params;
    return outline;
}

Block copy_of(const Block& block)
{
    Block copy = outline_of(block);
    for (const Item& item : block.items) copy.items.push_back(copy_of(item));
    return copy;
}

/// Gives an item of integers other values.
void replace(Block& block, std::string_view name, const std::vector<std::int32_t>& values)
{
    for (Item& item : block.items) {
        if (item.name != name) continue;
        item.values = buffer_of(values.data(), values.size());
        if (item.stored == Stored::attribute || item.shape.size() > 1) continue;
        item.rows = static_cast<std::int64_t>(values.size());
        item.shape = {item.rows};
    }
}

Block cut_by_rows(const Block& block, const CutKind& cut, const Rows& rows)
{
    Block part = outline_of(block);
    for (const Item& item : block.items)
        part.items.push_back(has_row_of_each(item) ? rows_of(item, rows) : copy_of(item));
    replace(part, cut.count, {static_cast<std::int32_t>(rows.size())});
    return part;
}

/// The rows that a domain holds of entities of a type.
Rows rows_in(const Partition& partition, std::size_t domain, Way way, const std::string& type, const std::int32_t* ids,
             std::size_t count)
{
    if (way != Way::cut && way != Way::grouped && domain > 0 && !partition.knows(type)) return {};
    return partition.rows(type, domain, ids, count);
}

/// Each domain has all collectors, with the members that it holds; one that holds none has none of them.
std::optional<Block> cut_collectors(const Block& block, const CutKind& cut, const Partition& partition,
                                    std::size_t domain)
{
    const Item& types = *block.find(cut.type);
    const std::int32_t* ids = block.values<std::int32_t>(cut.ids);
    const auto ntyp = static_cast<std::size_t>(block.integer("ntyp", 0));
    const auto groups = static_cast<std::size_t>(block.integer("ncoll", 0)) * ntyp;
    std::vector<std::int32_t> counts;
    std::vector<std::int32_t> members;
    std::int64_t left = block.integer("nenttot", 0);
    for (std::size_t i = 0; i < groups; ++i) {
        const std::int32_t number = block.values<std::int32_t>(cut.count)[i];
        left -= number;
        if (number < 0 || left < 0)
            throw Failure{exit_cannot_read,
                          fmt::format("{}: a collector has {} members", block.text("etypcoll"), number)};
        const auto count = static_cast<std::size_t>(number);
        const std::string type = types.text(static_cast<std::int64_t>(i % ntyp));
        const Rows rows = rows_in(partition, domain, cut.way, type, ids, count);
        for (const std::size_t row : rows) members.push_back(ids[row]);
        counts.push_back(static_cast<std::int32_t>(rows.size()));
        ids += count;
    }
    if (members.empty() && domain > 0) return std::nullopt;
    Block part = copy_of(block);
    replace(part, cut.count, counts);
    replace(part, cut.ids, members);
    replace(part, "nenttot", {static_cast<std::int32_t>(members.size())});
    return part;
}

} // namespace

bool can_split(std::int32_t key) { return find_cut(key) != nullptr; }

std::optional<Block> part_of(const Block& block, const Partition& partition, std::size_t domain)
{
    const CutKind& cut = *find_cut(block.key);
    if (cut.way == Way::copied) return copy_of(block);
    if (cut.way == Way::grouped) return cut_collectors(block, cut, partition, domain);
    const std::int64_t count = cut.way == Way::owned ? 1 : block.integer(cut.count, 0);
    const auto held_by = [&](std::size_t i) {
        return rows_in(partition, i, cut.way, block.text(cut.type), block.values<std::int32_t>(cut.ids),
                       static_cast<std::size_t>(count));
    };
    const Rows rows = held_by(domain);
    if (rows.empty() && (count > 0 || domain > 0)) return std::nullopt; // the first domain has the empty ones
    if (cut.way != Way::owned) return cut_by_rows(block, cut, rows);
    for (std::size_t i = 0; i < domain; ++i)
        if (!held_by(i).empty()) return std::nullopt;
    return copy_of(block);
}

} // namespace kob::program
