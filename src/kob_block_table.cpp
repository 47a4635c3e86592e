// SPDX-License-Identifier: BSD-3-Clause
// The tools' table of blocks.
#include "kob_block_table.hpp"

#include "kob_dp.h"
#include "kob_kinds.hpp"
#include "kob_message.hpp"
#include "kob_placement.hpp"
#include "kob_plain_walk.hpp"
#include "kob_tool.hpp"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <numeric>
#include <set>
#include <tuple>
#include <unordered_set>

namespace kob {
namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T> using Heap = std::unique_ptr<T, Free>;

/// Which object a path leads to. Two names of one object give the same identity.
struct Identity {
    unsigned long file = 0;
    std::string token;

    bool operator<(const Identity& other) const { return std::tie(file, token) < std::tie(other.file, other.token); }
};

bool identify(hid_t group, const std::string& path, Identity& identity)
{
    H5O_info2_t info{};
    if (H5Oget_info_by_name3(group, path.c_str(), &info, H5O_INFO_BASIC, H5P_DEFAULT) < 0) {
        return false;
    }
    char* text = nullptr;
    if (H5Otoken_to_str(group, &info.token, &text) < 0) {
        return false;
    }
    identity = {info.fileno, text};
    H5free_memory(text);
    return true;
}

enum class Parse { absent, number, unreadable };

/// The number behind the last `marker` of a path: the digits and blanks up to the first other character.
Parse number_behind(const std::string& path, const char* marker, std::int32_t& number)
{
    number = 0;
    const std::size_t found = path.rfind(marker);
    if (found == std::string::npos) {
        return Parse::absent;
    }
    const std::size_t begin = found + std::strlen(marker);
    const std::size_t end = std::min(path.find_first_not_of("0123456789 \t\n\v\f\r", begin), path.size());
    const std::size_t digits = path.find_first_not_of(" \t\n\v\f\r", begin);
    if (digits == std::string::npos || digits >= end) {
        return Parse::unreadable;
    }
    const auto result = std::from_chars(path.data() + digits, path.data() + end, number);
    if (result.ec != std::errc{}) {
        number = 0;
        return Parse::unreadable;
    }
    return Parse::number;
}

} // namespace

Id open_block(hid_t parent, const std::string& path)
{
    const int64_t handle = parent;
    const int32_t null_terminated = -1;
    const int32_t open_only = 1;
    int64_t block = -1;
    int32_t status = 0;
    KOB_H5GOPEN(&handle, path.c_str(), &null_terminated, &open_only, &block, &status);
    return {block, H5Gclose};
}

Id create_block(hid_t parent, const std::string& path) { return open_block_group(parent, path, io_flag::create).group; }

bool BlockTable::list(hid_t group, const Family& family)
{
    return list_plain(group, family, plain::File::State::read_only) || list_by_entry_point(group, family);
}

bool BlockTable::list_flushed(hid_t group, const Family& family)
{
    return list_plain(group, family, plain::File::State::flushed) || list_by_entry_point(group, family);
}

bool BlockTable::list_plain(hid_t group, const Family& family, plain::File::State state)
{
    if (family.generation != Generation::current) {
        return false;
    }
    std::unordered_set<std::uint64_t> seen;
    tree_.assign(1, {});
    const bool complete = plain::walk(
        group,
        [&](plain::File& file, const plain::Found& found) {
            if (found.kind == plain::Found::Kind::group) {
                tree_.push_back(
                    {found.parent, found.links, found.names, found.path.size(), tree_[found.parent].depth + 1});
                return;
            }
            TableEntry entry{found.path, plain::key_of(file, found)};
            entry.object = found.object;
            entry.parent = found.parent;
            ++found_;
            if (seen.insert(found.object).second) {
                entries_.push_back(std::move(entry));
            }
        },
        state);
    if (!complete || found_ < 1) {
        entries_.clear();
        tree_.clear();
        found_ = 0;
        return false;
    }
    group_by_key();
    return true;
}

bool BlockTable::list_by_entry_point(hid_t group, const Family& family)
{
    const int64_t handle = group;
    const int32_t store = 1;
    const int32_t verbose = 0;
    int32_t capacity = 0;
    int64_t path_size = 0;
    int64_t path_length = 0;
    int32_t* keys = nullptr;
    int64_t* offsets = nullptr;
    char* paths = nullptr;
    family.lookup(&handle, &store, &verbose, &capacity, &path_size, &found_, &path_length, &keys, &offsets, &paths,
                  &status_);
    const Heap<int32_t> owned_keys{keys};
    const Heap<int64_t> owned_offsets{offsets};
    const Heap<char> owned_paths{paths};
    if (status_ != 0 || found_ < 1) {
        return false;
    }
    Identity home;
    identify(group, ".", home);
    std::set<Identity> seen;
    for (std::int32_t i = 0; i < found_; ++i) {
        TableEntry entry{paths + offsets[i], keys[i]};
        Identity identity;
        if (identify(group, entry.path, identity)) {
            entry.is_linked = identity.file != home.file;
            if (!seen.insert(identity).second) {
                continue;
            }
        }
        entries_.push_back(std::move(entry));
    }
    group_by_key();
    return true;
}

void BlockTable::group_by_key()
{
    std::vector<std::int32_t> keys;
    for (const TableEntry& entry : entries_) {
        keys.push_back(entry.key);
    }
    std::vector<std::int32_t> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    // Blocks of one key keep the order of the listing, which is that of their names.
    std::stable_sort(order.begin(), order.end(), [&](std::int32_t a, std::int32_t b) {
        return keys[static_cast<std::size_t>(a)] < keys[static_cast<std::size_t>(b)];
    });
    for (const std::int32_t block : order) {
        const std::int32_t key = keys[static_cast<std::size_t>(block)];
        if (groups_.empty() || groups_.back().key != key) {
            groups_.push_back({key, {}});
        }
        groups_.back().blocks.push_back(block);
    }
}

void BlockTable::read_numbers(bool with_states)
{
    for (TableEntry& entry : entries_) {
        if (number_behind(entry.path, "_set", entry.set) == Parse::unreadable) {
            report_error(message::tool_set_number, entry.key, entry.path.c_str());
        }
        if (with_states && number_behind(entry.path, "/state", entry.state) == Parse::unreadable) {
            report_error(message::tool_state_number, entry.key, entry.path.c_str());
        }
    }
}

const std::vector<std::int32_t>& BlockTable::of_key(std::int32_t key) const
{
    static const std::vector<std::int32_t> none;
    const auto found = std::lower_bound(groups_.begin(), groups_.end(), key,
                                        [](const KeyGroup& group, std::int32_t wanted) { return group.key < wanted; });
    return found != groups_.end() && found->key == key ? found->blocks : none;
}

void BlockTable::say_by_key() const
{
    say(message::tool_blocktypes, static_cast<int>(groups_.size()));
    std::int32_t running = 0;
    for (const KeyGroup& group : groups_) {
        say(message::tool_rule);
        say(message::tool_block_key, group.key);
        say(message::tool_rule);
        std::int32_t within = 0;
        for (const std::int32_t block : group.blocks) {
            say(message::tool_block, ++running, ++within, group.key,
                entries_[static_cast<std::size_t>(block)].path.c_str());
        }
    }
    say(message::tool_rule);
    say("\n");
}

bool read_version(const char* text, std::int32_t& major, std::int32_t& minor, std::int32_t& release)
{
    major = minor = release = -1;
    return std::sscanf(text, "%d %d %d", &major, &minor, &release) == 3;
}

} // namespace kob
