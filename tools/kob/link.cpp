// SPDX-License-Identifier: BSD-3-Clause
// kob link: a master file that shows the contents of several files through external links.

#include "command_line.hpp"
#include "draft.hpp"
#include "file.hpp"
#include "terminal.hpp"
#include "verbs.hpp"
#include "written_file.hpp"

#include "kob_dp.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <vector>

namespace kob::program {

namespace {

namespace fs = std::filesystem;

struct LinkOptions {
    std::string target;
    std::vector<std::string> sources;
    std::string group;
    bool separate = false;
    bool first_wins = false;
    bool absolute = false;
    bool force = false;
    bool dry_run = false;
    bool quiet = false;
    bool json = false;
};

/// One link to be made.
struct Link {
    std::size_t source;
    std::string group; ///< below the target; empty: in the target itself
    std::string name;
    bool taken; ///< an earlier source has the name
};

/// The first levels of the blocks' paths, which are the names that will be linked.
std::vector<std::string> top_names(const File& file)
{
    std::vector<std::string> names;
    for (const Entry& entry : file.entries()) {
        std::string name = entry.path.substr(0, entry.path.find('/'));
        if (name != "post" && std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(std::move(name));
    }
    return names;
}

std::string group_of(const LinkOptions& options, std::size_t source)
{
    if (!options.separate) return options.group;
    return fmt::format("{}{}", options.group.empty() ? "domain_" : options.group, source + 1);
}

std::vector<Link> plan(const LinkOptions& options)
{
    std::vector<Link> links;
    std::map<std::string, std::size_t> owners; // group and name
    for (std::size_t i = 0; i < options.sources.size(); ++i) {
        const File file{options.sources[i]};
        const std::vector<std::string> names = top_names(file);
        if (names.empty())
            throw Failure{exit_cannot_read, fmt::format("{}: holds no blocks", printable(options.sources[i]))};
        for (const std::string& name : names) {
            const std::string group = group_of(options, i);
            const bool taken = !owners.emplace(fmt::format("{}/{}", group, name), i).second;
            links.push_back({i, group, name, taken});
        }
    }
    return links;
}

/// How the source is called in the links: seen from the target's folder, so that both can be moved together.
std::string link_name(const std::string& source, const fs::path& folder, bool absolute)
{
    const fs::path whole = fs::absolute(source).lexically_normal();
    if (absolute) return whole.string();
    const fs::path relative = whole.lexically_relative(folder);
    return relative.empty() ? whole.string() : relative.string();
}

/// A source as the library opens it: HDF5 remembers the name for the links.
class Source {
public:
    explicit Source(const std::string& path)
    {
        const auto length = static_cast<std::int32_t>(path.size());
        const std::int32_t zero = 0;
        std::int32_t status = -1;
        for (const std::int32_t mode : {2, 10}) { // the group behind "post", or the root group
            const Diverted errors{STDERR_FILENO};
            KOB_OPEN(path.c_str(), &length, "", &zero, "", &zero, &handle_, &zero, &mode, &status);
            if (status >= 0) return;
        }
        handle_ = 0;
        throw Failure{exit_cannot_read, fmt::format("{}: cannot be opened (status {})", printable(path), status)};
    }
    ~Source()
    {
        std::int32_t status = 0;
        if (handle_ > 0) KOB_CLOSE(&handle_, &status);
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    const std::int64_t* handle() const { return &handle_; }

private:
    std::int64_t handle_ = 0;
};

void make_links(const LinkOptions& options, const std::vector<Link>& links, const fs::path& draft)
{
    const fs::path before = fs::current_path();
    const fs::path folder = draft.parent_path();
    std::vector<std::string> names;
    for (const std::string& source : options.sources) names.push_back(link_name(source, folder, options.absolute));
    WrittenFile target = WrittenFile::create(draft.string());
    if (!options.group.empty() || options.separate) target.write_header(); // else that of the first source is shown
    fs::current_path(folder);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const Source source{names[i]};
        std::array<char, 256> group{};
        group.fill(' ');
        const std::string wanted = group_of(options, i);
        if (wanted.size() > group.size()) throw Failure{exit_usage, "the name of the group is too long"};
        wanted.copy(group.data(), group.size());
        const std::int32_t one = 1;
        const std::int32_t in_group = wanted.empty() ? 0 : 1;
        const std::int32_t quiet = 0;
        std::int32_t status = 0;
        const Diverted errors{STDERR_FILENO}; // names that are taken were told already
        with_report(false, [&] {
            KOB_CREATE_EXTLINKS(source.handle(), target.handle(), &one, group.data(), &in_group, &quiet, &status);
        });
        if (status < 0)
            throw Failure{exit_cannot_read,
                          fmt::format("the group \"{}\" cannot be made (status {})", printable(wanted), status)};
    }
    fs::current_path(before);
    target.close();

    // What the library could not link is not there.
    const File made{draft.string()};
    for (const Link& link : links) {
        const std::string path = link.group.empty() ? link.name : link.group + '/' + link.name;
        const bool found = std::any_of(made.entries().begin(), made.entries().end(), [&](const Entry& entry) {
            return entry.path == path || entry.path.starts_with(path + '/');
        });
        if (!found)
            throw Failure{exit_cannot_read, fmt::format("{}: \"{}\" cannot be linked",
                                                        printable(options.sources[link.source]), printable(link.name))};
    }
}

void report(const LinkOptions& options, const std::vector<Link>& links)
{
    if (options.json) {
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const Link& link : links)
            list.push_back({{"source", options.sources[link.source]},
                            {"group", link.group},
                            {"name", link.name},
                            {"linked", !link.taken}});
        const nlohmann::ordered_json result{{"target", options.target}, {"dry_run", options.dry_run}, {"links", list}};
        fmt::print("{}\n", result.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
        return;
    }
    if (options.quiet) return;
    for (const Link& link : links)
        fmt::print("{} {}{}{} -> {}\n", link.taken ? "leave out" : "link", printable(link.group),
                   link.group.empty() ? "" : "/", printable(link.name), printable(options.sources[link.source]));
}

int link_files(const LinkOptions& options)
{
    const fs::path whole = fs::absolute(options.target).lexically_normal();
    Draft draft{whole};
    draft.check_target(options.force || options.dry_run);
    std::error_code ignored;
    for (const std::string& source : options.sources)
        if (fs::equivalent(source, whole, ignored))
            throw Failure{exit_usage, fmt::format("\"{}\" would link to itself", printable(source))};
    const std::vector<Link> links = plan(options);
    const auto taken = std::find_if(links.begin(), links.end(), [](const Link& link) { return link.taken; });
    if (taken != links.end() && !options.first_wins)
        throw Failure{exit_usage,
                      fmt::format("{}: \"{}\" is in an earlier file, too; --separate gives each file a group of its "
                                  "own, --first-wins leaves such links out",
                                  printable(options.sources[taken->source]), printable(taken->name))};
    if (!options.dry_run) {
        make_links(options, links, draft.path());
        draft.become_target(options.force);
    }
    report(options, links);
    return 0;
}

} // namespace

void add_link(CLI::App& app, int& exit_code)
{
    Verb verb{app, "link", "make a file that shows others through external links"};
    auto options = std::make_shared<LinkOptions>();
    verb.option("TARGET", options->target, "KOB file to make").required();
    verb.option("SOURCE", options->sources, "KOB files to show, or groups inside them").required();
    verb.option("--group", options->group, "put the links into this group (with --separate: begin of the names)");
    verb.flag("--separate", options->separate, "a group for each source: domain_1, domain_2, ...");
    verb.flag("--first-wins", options->first_wins, "leave out what an earlier source shows under the same name");
    verb.flag("--absolute", options->absolute, "name the sources by their whole path");
    verb.flag("--force", options->force, "replace the target if it exists");
    verb.flag("--dry-run", options->dry_run, "say what would be linked and make nothing");
    verb.flag("--quiet", options->quiet, "no summary");
    verb.flag("--json", options->json, "print a JSON summary");
    verb.runs([options, &exit_code] {
        run_verb("kob link", exit_code, [&] {
            try {
                return link_files(*options);
            } catch (const fs::filesystem_error& error) {
                throw Failure{exit_cannot_read, printable(error.what())};
            }
        });
    });
}

} // namespace kob::program
