// SPDX-License-Identifier: BSD-3-Clause
// Depth-first walk with a stack of its own: a deep tree costs heap, not call stack.
#include "kob_walk.hpp"

#include "kob_kinds.hpp"

#include <algorithm>
#include <string_view>
#include <vector>

namespace kob {
namespace {

constexpr std::int32_t walk_failed = -1;

struct Link {
    std::string name;
    bool is_hard;
    H5O_token_t token; ///< of the object behind a hard link
};

/// What tells an object from all others.
struct Identity {
    H5O_token_t token{};
    unsigned long file_number = 0;
};

/// One group of the current path, with the links that are still to visit.
struct Level {
    Id group;
    Identity identity;
    std::vector<Link> links;
    std::size_t next = 0;
    std::size_t path_length = 0; ///< of the path before this group's name was appended
};

herr_t collect_link(hid_t, const char* name, const H5L_info2_t* info, void* data)
{
    auto& links = *static_cast<std::vector<Link>*>(data);
    // No exception may pass through HDF5.
    try {
        const bool is_hard = info->type == H5L_TYPE_HARD;
        links.push_back({name, is_hard, is_hard ? info->u.token : H5O_token_t{}});
    } catch (const std::bad_alloc&) {
        return -1;
    }
    return 0;
}

class Walk {
public:
    explicit Walk(const Visitor& visit) : visit_{visit} {}

    std::int32_t run(hid_t start)
    {
        H5O_info2_t info{};
        Id group{H5Gopen2(start, ".", H5P_DEFAULT), H5Gclose};
        if (!group || H5Oget_info3(group.get(), &info, H5O_INFO_BASIC) < 0 ||
            !enter(std::move(group), {info.token, info.fileno}, 0)) {
            return walk_failed;
        }
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.links.size()) {
                path_.resize(level.path_length);
                levels_.pop_back();
                continue;
            }
            const Link& link = level.links[level.next++];
            if (const std::int32_t result = visit_link(level, link); result != 0) {
                return result;
            }
        }
        return 0;
    }

private:
    std::int32_t visit_link(const Level& level, const Link& link)
    {
        if (++links_seen_ > most_links_of_walk) {
            return walk_failed;
        }
        const hid_t parent = level.group.get();
        const bool is_block = link.name == block_group_name;
        if (is_block || link.name == header_group_name) {
            if (!link.is_hard && !leads_somewhere(parent, link)) {
                return 0;
            }
            const std::size_t length = path_.size();
            append(link.name);
            const std::int32_t result = visit_({parent, link.name.c_str(), path_});
            path_.resize(length);
            return result;
        }
        Identity identity{link.token, level.identity.file_number};
        Id group;
        if (link.is_hard) {
            if (is_open(identity)) {
                return 0;
            }
            group = Id{H5Gopen2(parent, link.name.c_str(), H5P_DEFAULT), H5Gclose};
        }
        // A hard link that opened is a group whose identity is known; everything else is looked at first.
        if (!group) {
            H5O_info2_t info{};
            if (H5Oget_info_by_name3(parent, link.name.c_str(), &info, H5O_INFO_BASIC, H5P_DEFAULT) < 0) {
                // A link may lead nowhere; an object that is there must be readable.
                return link.is_hard ? walk_failed : 0;
            }
            identity = {info.token, info.fileno};
            if (info.type != H5O_TYPE_GROUP || is_open(identity)) {
                return 0;
            }
            group = Id{H5Gopen2(parent, link.name.c_str(), H5P_DEFAULT), H5Gclose};
        }
        const std::size_t length = path_.size();
        append(link.name);
        return group && enter(std::move(group), identity, length) ? 0 : walk_failed;
    }

    static bool leads_somewhere(hid_t parent, const Link& link)
    {
        return H5Oexists_by_name(parent, link.name.c_str(), H5P_DEFAULT) > 0;
    }

    void append(const std::string& name)
    {
        if (!path_.empty()) {
            path_ += '/';
        }
        path_ += name;
    }

    bool enter(Id group, const Identity& identity, std::size_t path_length)
    {
        if (levels_.size() >= deepest_level) {
            return false;
        }
        Level level{std::move(group), identity, {}, 0, path_length};
        hsize_t position = 0;
        if (H5Literate2(level.group.get(), H5_INDEX_NAME, H5_ITER_INC, &position, collect_link, &level.links) < 0) {
            return false;
        }
        levels_.push_back(std::move(level));
        return true;
    }

    bool is_open(const Identity& identity) const
    {
        return std::any_of(levels_.begin(), levels_.end(), [&](const Level& level) {
            int order = 1;
            return level.identity.file_number == identity.file_number &&
                   H5Otoken_cmp(level.group.get(), &level.identity.token, &identity.token, &order) >= 0 && order == 0;
        });
    }

    const Visitor& visit_;
    std::vector<Level> levels_;
    std::string path_;
    std::uint64_t links_seen_ = 0;
};

} // namespace

std::int32_t walk(hid_t start, const Visitor& visit) { return Walk{visit}.run(start); }

} // namespace kob
