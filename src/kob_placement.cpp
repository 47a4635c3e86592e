// SPDX-License-Identifier: BSD-3-Clause
// Paths of blocks, built and opened.
#include "kob_placement.hpp"

#include "kob_dp.h"
#include "kob_entry.hpp"
#include "kob_kinds.hpp"
#include "kob_text.hpp"

#include <array>
#include <cstdio>

namespace kob {
namespace {

constexpr char constant_group[] = "constant";
constexpr char single_state_group[] = "singlestate";
constexpr char multi_state_group[] = "multistate";

// Room for the names of some hundred states, so that they stay in place while states are added: fewer writes, and
// a process killed in the middle of one loses far less.
constexpr std::size_t state_names_size = std::size_t{16} * 1024;

const char* top_group(std::int32_t nstate)
{
    switch (nstate) {
    case constant:
        return constant_group;
    case multi_state:
        return multi_state_group;
    default:
        return single_state_group;
    }
}

void append_state(std::string& path, std::int32_t state)
{
    std::array<char, 24> level{};
    std::snprintf(level.data(), level.size(), "/state%012d", state);
    path += level.data();
}

Id level_properties(const std::string& level)
{
    if (level != single_state_group) {
        return {};
    }
    Id properties{H5Pcreate(H5P_GROUP_CREATE), H5Pclose};
    H5Pset_local_heap_size_hint(properties.get(), state_names_size);
    return properties;
}

} // namespace

BlockPath::BlockPath(Validity valid, std::initializer_list<const char*> components, std::int32_t number_suffix,
                     std::int32_t set_suffix)
    : validity{valid}, number{number_suffix}, set{set_suffix}
{
    names.reserve(components.size());
    for (const char* component : components) {
        add(component);
    }
}

void BlockPath::add(const char* component) { names.push_back(trimmed(component, name_length)); }

std::string BlockPath::text() const
{
    constexpr std::size_t usual_length = 200;
    std::string path;
    path.reserve(usual_length);
    path = top_group(validity.nstate);
    if (validity.nstate > 0 && validity.state >= 0) {
        append_state(path, validity.state);
    } else {
        // The last identifier is the most significant one: it comes first.
        for (std::int32_t i = validity.nstate; i > 0; --i) {
            append_state(path, value(validity.states == nullptr ? nullptr : validity.states + (i - 1)));
        }
    }
    for (const std::string_view name : names) {
        if (!name.empty()) {
            path += '/';
            path += name;
        }
    }
    if (number >= 0) {
        path += std::to_string(number);
    }
    if (set >= 0) {
        path += "_set" + std::to_string(set);
    }
    path += '/';
    path += block_group_name;
    return path;
}

OpenedGroup open_block_group(hid_t parent, const BlockPath& path, std::int32_t ioflag)
{
    // A series is written state by state: but for the first time all of its path is there.
    const std::size_t expected_missing = path.validity.nstate == multi_state ? 0 : usually_missing;
    return open_group(parent, path.text(), ioflag, level_properties, expected_missing);
}

OpenedGroup open_block_group(hid_t parent, const std::string& path, std::int32_t ioflag)
{
    return open_group(parent, path, ioflag, level_properties);
}

} // namespace kob

extern "C" {

void KOB_OPENAUTOPATH(const int64_t* parent, const int32_t* mask, const void*, const int32_t* ioflag,
                      const int32_t* nstate, const int32_t* states, const int32_t* state, const char* name1,
                      const char* name2, const char* name3, const char* name4, const char* name5, const int32_t* number,
                      const int32_t* set, int64_t* block, int32_t* status)
{
    using namespace kob;
    if (block != nullptr) {
        *block = -1;
    }
    entry(status, [&] {
        if (block == nullptr) {
            throw NullArgument{};
        }
        BlockPath path{{value(nstate), states, value(state)}, {}, value(number), value(set)};
        const std::array<const char*, 5> names{name1, name2, name3, name4, name5};
        for (std::size_t i = 0; i < names.size(); ++i) {
            if ((value(mask) & (1 << i)) != 0) {
                path.add(names[i]);
            }
        }
        OpenedGroup opened = open_block_group(value(parent), path, value(ioflag));
        *block = opened.group ? opened.group.release() : -1;
        return opened.status;
    });
}

// The older layout has the same paths.
void KOB1_OPENAUTOPATH(const int64_t* parent, const int32_t* mask, const void*, const int32_t* ioflag,
                       const int32_t* nstate, const int32_t* states, const int32_t* state, const char* name1,
                       const char* name2, const char* name3, const char* name4, const char* name5,
                       const int32_t* number, const int32_t* set, int64_t* block, int32_t* status)
    __attribute__((alias("KOB_OPENAUTOPATH")));

} // extern "C"
