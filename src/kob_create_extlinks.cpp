// SPDX-License-Identifier: BSD-3-Clause
// External links: one group that shows the contents of several others, each of which may lie in another file.
#include "kob_dp.h"
#include "kob_module.hpp"
#include "kob_text.hpp"
#include "kob_tool.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace kob {
namespace {

constexpr std::int32_t in_named_group = 1;        // option bit: the links go into a group below the target
constexpr std::string_view never_linked = "post"; // each file has its own

/// Where the links go, and how the verbose lines call it.
struct LinkTarget {
    hid_t group;
    bool is_named;
    std::string name;
};

std::string file_name_of(hid_t group)
{
    const ssize_t length = H5Fget_name(group, nullptr, 0);
    std::string name(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    H5Fget_name(group, name.data(), name.size() + 1);
    return name;
}

/// The path of a group in its file, ready to take a link's name.
std::string path_prefix_of(hid_t group)
{
    const ssize_t length = H5Iget_name(group, nullptr, 0);
    std::string path(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    H5Iget_name(group, path.data(), path.size() + 1);
    return path == "/" ? path : path + '/';
}

herr_t collect_name(hid_t, const char* name, const H5L_info2_t*, void* data)
{
    // No exception may pass through HDF5.
    try {
        static_cast<std::vector<std::string>*>(data)->emplace_back(name);
    } catch (const std::bad_alloc&) {
        return -1;
    }
    return 0;
}

void link_contents(hid_t source, const LinkTarget& target, bool verbose)
{
    const std::string file = file_name_of(source);
    const std::string prefix = path_prefix_of(source);
    std::vector<std::string> names;
    hsize_t position = 0;
    H5Literate2(source, H5_INDEX_NAME, H5_ITER_NATIVE, &position, collect_name, &names);
    for (const std::string& name : names) {
        if (name == never_linked) {
            continue;
        }
        const std::string object = prefix + name;
        if (verbose && target.is_named) {
            say(message::link_in_group, target.name.c_str(), name.c_str(), file.c_str(), object.c_str());
        } else if (verbose) {
            say(message::link_made, name.c_str(), file.c_str(), object.c_str());
        }
        if (H5Lcreate_external(file.c_str(), object.c_str(), target.group, name.c_str(), H5P_DEFAULT, H5P_DEFAULT) <
            0) {
            report_error(message::link_failed, name.c_str());
        }
    }
}

std::int32_t create_links(Generation generation, const std::int64_t* sources, hid_t target, std::int32_t count,
                          const char* name, bool is_named, bool verbose)
{
    say_banner("KOB Tools");
    const Version version = version_of(generation);
    say(message::tool_short_version, version.major, version.minor, version.release);
    say("\n\n");
    LinkTarget links{target, is_named, {}};
    std::int32_t status = 0;
    Id opened;
    if (is_named) {
        links.name = trimmed(name, name_length);
        const auto length = static_cast<std::int32_t>(links.name.size());
        const std::int32_t create = 0;
        std::int64_t group = -1;
        KOB_H5GOPEN(&target, links.name.c_str(), &length, &create, &group, &status);
        opened = Id{group, H5Gclose};
        links.group = group;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        link_contents(value(sources + i), links, verbose);
    }
    say(message::link_done);
    return status;
}

} // namespace
} // namespace kob

extern "C" {

void KOB_CREATE_EXTLINKS(const int64_t* sources, const int64_t* target, const int32_t* n, const char* name,
                         const int32_t* options, const int32_t* verbose, int32_t* status)
{
    using namespace kob;
    tool_entry(status, "kob_create_extlinks", __LINE__, [&] {
        return create_links(Generation::current, sources, value(target), value(n), name,
                            (value(options) & in_named_group) != 0, value(verbose) > 0);
    });
}

void KOB1_CREATE_EXTLINKS(const int64_t* sources, const int64_t* target, const int32_t* n, const char* name,
                          const int32_t* options, const int32_t* verbose, int32_t* status)
{
    using namespace kob;
    tool_entry(status, "kob_create_extlinks", __LINE__, [&] {
        return create_links(Generation::older, sources, value(target), value(n), name,
                            (value(options) & in_named_group) != 0, value(verbose) > 0);
    });
}

} // extern "C"
