// SPDX-License-Identifier: BSD-3-Clause
// Links of a group in the old format: a B-tree of symbol tables, whose names lie in a heap.
#include "kob_plain_object.hpp"

namespace kob::plain {
namespace {

constexpr std::size_t deepest_tree = 32;
constexpr std::size_t most_links_of_group = 50'000'000; // a larger group is HDF5's

/// The names of a group.
class Heap {
public:
    Heap(File& file, Address address)
    {
        const Bytes head = file.at(address, 32);
        expect(head.starts_with("HEAP\0", 5));
        const std::uint64_t size = head.u64(8);
        const Bytes data = file.at(head.u64(24), static_cast<std::size_t>(size));
        copy_.assign(data.data(), data.data() + data.size());
        data_ = {copy_.data(), copy_.size()};
        check_free_list(head.u64(16));
    }

    [[nodiscard]] std::size_t size() const { return data_.size(); }

    /// An empty name is a key of the tree alone.
    [[nodiscard]] std::string_view name(std::uint64_t at) const
    {
        const Bytes rest = data_.from(static_cast<std::size_t>(at));
        const void* end = rest.size() == 0 ? nullptr : std::memchr(rest.data(), 0, rest.size());
        expect(end != nullptr);
        const auto* text = reinterpret_cast<const char*>(rest.data()); // NOLINT(*-reinterpret-cast)
        return {text, static_cast<std::size_t>(static_cast<const char*>(end) - text)};
    }

private:
    // HDF5 goes through it before it looks up a name, and gives up on a bad one.
    void check_free_list(std::uint64_t next) const
    {
        constexpr std::uint64_t end = 1;
        for (std::size_t left = data_.size() / 16; next != end; --left) {
            expect(left > 0 && next < data_.size());
            const Bytes block = data_.from(static_cast<std::size_t>(next)).part(0, 16);
            expect(block.u64(0) != 0 && block.u64(8) <= data_.size() - next);
            next = block.u64(0);
        }
    }

    std::vector<unsigned char> copy_; // outlives the pieces of the file
    Bytes data_;
};

/// Collects what a tree holds. HDF5 finds a name by halving: only in a tree in perfect order is every name found.
class Collector {
public:
    Collector(File& file, const Heap& heap, std::vector<Link>& links) : file_{file}, heap_{heap}, links_{links} {}

    /// `level` is what the node above expects; the root has any.
    void node(Address address, std::optional<unsigned> level, std::size_t depth)
    {
        constexpr std::size_t key_size = 8;
        constexpr std::size_t pair_size = 16;
        const Bytes read = file_.at(address, 24 + key_size + pair_size * file_.group_node_entries());
        const std::vector<unsigned char> copy(read.data(), read.data() + read.size());
        const Bytes tree{copy.data(), copy.size()};
        constexpr unsigned group = 0;
        expect(tree.starts_with("TREE", 4) && tree.u8(4) == group && depth < deepest_tree);
        const unsigned own = tree.u8(5);
        const std::size_t children = tree.u16(6);
        expect(children <= file_.group_node_entries() && (!level || own == *level));
        for (std::size_t i = 0; i < children; ++i) {
            const Bytes pair = tree.part(24 + pair_size * i, pair_size + key_size);
            const std::size_t before = links_.size();
            if (own == 0) {
                symbols(pair.u64(8));
            } else {
                node(pair.u64(8), own - 1, depth + 1);
            }
            expect(links_.size() > before && links_[before].name > heap_.name(pair.u64(0)) &&
                   links_.back().name <= heap_.name(pair.u64(16)));
        }
    }

private:
    void symbols(Address address)
    {
        constexpr std::size_t entry_size = 40;
        const Bytes table = file_.at(address, 8 + entry_size * file_.group_leaf_entries());
        const std::size_t count = table.u16(6);
        expect(table.starts_with("SNOD\1", 5) && count <= file_.group_leaf_entries() &&
               links_.size() + count <= most_links_of_group);
        for (std::size_t i = 0; i < count; ++i) {
            const Bytes entry = table.part(8 + entry_size * i, entry_size);
            const std::string_view name = heap_.name(entry.u64(0));
            constexpr std::uint32_t largest_kind = 1; // an object, or one known to be a group; the next is a soft link
            expect(!name.empty() && name.find('/') == std::string_view::npos && entry.u64(8) != nowhere &&
                   entry.u32(16) <= largest_kind);
            expect(links_.empty() || links_.back().name < name);
            // Each name has a place of its own.
            names_size_ += name.size() + 1;
            expect(names_size_ <= heap_.size());
            links_.push_back({std::string{name}, entry.u64(8)});
        }
    }

    File& file_;
    const Heap& heap_;
    std::vector<Link>& links_;
    std::size_t names_size_ = 0;
};

} // namespace

std::vector<Link> links_of(File& file, Bytes symbol_table)
{
    const Heap heap{file, symbol_table.u64(8)};
    std::vector<Link> links;
    Collector{file, heap, links}.node(symbol_table.u64(0), {}, 0);
    return links;
}

} // namespace kob::plain
