// SPDX-License-Identifier: BSD-3-Clause
// Depth-first walk over the groups of a plain file.
#include "kob_plain_walk.hpp"

#include "kob_kinds.hpp"
#include "kob_walk.hpp"

#include <algorithm>

namespace kob::plain {
namespace {

/// One group of the current path, with the links that are still to visit.
struct Level {
    Address group;
    std::size_t number; ///< among the groups found
    std::vector<Link> links;
    std::size_t next = 0;
    std::size_t path_length = 0; ///< of the path before this group's name was appended
};

class Walk {
public:
    Walk(File& file, const std::function<void(File&, const Found&)>& visit) : file_{file}, visit_{visit} {}

    void run(Address start)
    {
        const std::optional<Bytes> table = Header{file_, start}.symbol_table();
        expect(table.has_value());
        enter(start, *table, 0);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.links.size()) {
                path_.resize(level.path_length);
                levels_.pop_back();
                continue;
            }
            visit_link(level.links[level.next++], level.number);
        }
    }

private:
    // By value: entering a group moves the levels.
    void visit_link(const Link link, std::size_t parent) // NOLINT(performance-unnecessary-value-param)
    {
        const bool is_header = link.name == header_group_name;
        const std::size_t length = path_.size();
        expect(++links_seen_ <= most_links_of_walk);
        if (is_header || link.name == block_group_name) {
            append(link.name);
            visit_(file_, {is_header ? Found::Kind::header : Found::Kind::block, path_, link.object, parent});
            path_.resize(length);
            return;
        }
        const bool is_open =
            std::any_of(levels_.begin(), levels_.end(), [&](const Level& level) { return level.group == link.object; });
        if (is_open) {
            return;
        }
        const Header header{file_, link.object};
        const std::optional<Bytes> table = header.symbol_table();
        if (!table) {
            expect(header.is_dataset());
            return;
        }
        append(link.name);
        enter(link.object, *table, length);
        visit_(file_, {Found::Kind::group, path_, link.object, parent, levels_.back().links.size(), header.names()});
    }

    void enter(Address group, Bytes table, std::size_t path_length)
    {
        expect(levels_.size() < deepest_level);
        levels_.push_back({group, groups_++, links_of(file_, table), 0, path_length});
    }

    void append(const std::string& name)
    {
        if (!path_.empty()) {
            path_ += '/';
        }
        path_ += name;
    }

    File& file_;
    const std::function<void(File&, const Found&)>& visit_;
    std::vector<Level> levels_;
    std::string path_;
    std::size_t groups_ = 0;
    std::uint64_t links_seen_ = 0;
};

} // namespace

bool walk(hid_t start, const std::function<void(File&, const Found&)>& visit, File::State state)
{
    std::optional<File> file = File::of(start, File::Pieces::passing, state);
    const std::optional<Address> address = file ? address_of(start) : std::nullopt;
    if (!address) {
        return false;
    }
    try {
        Walk{*file, visit}.run(*address);
        return true;
    } catch (const Surprise&) {
        return false;
    }
}

std::int32_t key_of(File& file, const Found& found)
{
    std::int32_t key = kind::file_header;
    if (found.kind == Found::Kind::block) {
        const Attribute attribute = attribute_of(file, found.object, "block");
        expect(attribute.stored.element == Element::integer && attribute.stored.bytes == sizeof key);
        std::memcpy(&key, attribute.values.data(), sizeof key);
    }
    return key;
}

} // namespace kob::plain
