// SPDX-License-Identifier: BSD-3-Clause
// kob upgrade: writes a file of the older layout in the current one.

#include "block_writer.hpp"
#include "command_line.hpp"
#include "draft.hpp"
#include "file.hpp"
#include "terminal.hpp"
#include "verbs.hpp"
#include "written_file.hpp"

#include "kob_dp.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>

namespace kob::program {

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t zero = 0;
constexpr std::int32_t name_width = 256;
constexpr std::int32_t header_key = 1;
constexpr std::int32_t index_key = 20;
constexpr std::int32_t variables_key = 30;
constexpr std::int32_t parts_key = 100;
constexpr std::int32_t connectivities_key = 300;

struct Options {
    std::string input;
    std::string output;
    std::int32_t float_size = 8;
    bool force = false;
};

std::string field(std::string_view text)
{
    std::string result{text.substr(0, name_width)};
    result.resize(name_width, ' ');
    return result;
}

Item text_attribute(const char* name, std::string_view text)
{
    Item item{};
    item.name = name;
    item.stored = Stored::attribute;
    item.type = Type::text;
    item.width = name_width;
    item.rows = 1;
    Buffer<char> values{name_width};
    const std::string padded = field(text);
    std::copy(padded.begin(), padded.end(), values.data());
    item.values = std::move(values);
    return item;
}

/// The units of `count` values, as pointers into a block or from one of its values on.
struct Units {
    const std::int32_t* mbunit;
    const std::int32_t* mdunit;
    const std::int32_t* ubid;
    const double* ubexp;
    const std::int32_t* udid;
    const double* udexp;
};

/// The items of a block that was read.
class Source {
public:
    explicit Source(const Block& block) : block_{block} {}

    const std::int32_t* ints(const char* name) const { return block_.values<std::int32_t>(name); }
    const double* reals(const char* name) const { return block_.values<double>(name); }
    std::int32_t integer(const char* name) const { return static_cast<std::int32_t>(block_.integer(name, 0)); }
    const Item& item(const char* name) const { return *block_.find(name); }
    std::string trimmed_text(const char* name) const { return block_.text(name); }

    Units units() const
    {
        return {ints("mbunit"), ints("mdunit"), ints("ubid"), reals("ubexp"), ints("udid"), reals("udexp")};
    }

private:
    const Block& block_;
};

/// The file that is written.
class Upgrade {
public:
    Upgrade(const std::string& path, std::int32_t float_size)
        : file_{WrittenFile::create(path)}, float_size_{float_size}
    {
        file_.write_header();
    }

    void close() { file_.close(); }

    void write(Block block, const Entry& entry)
    {
        switch (block.kind->key) {
        case index_key:
            return write_index(Source{block}, entry);
        case variables_key:
            return write_variables(Source{block});
        case connectivities_key:
            complete_connectivities(block);
            break;
        case parts_key:
            lose("\"pvtyp\" of parts");
            break;
        default:
            break;
        }
        write_block(block, entry, Layout::current, file_.handle(),
                    {float_size_, block.filter_flags, block.filter_params});
    }

    /// What the current layout has no place for, with the number of blocks that lost it.
    const std::map<std::string, int>& losses() const { return losses_; }

private:
    static void check(std::int32_t status, std::string_view what)
    {
        if (status < 0)
            throw Failure{exit_cannot_read, fmt::format("cannot write {} (status {})", printable(what), status)};
    }

    /// A variables block becomes a variable, and a group of this one variable.
    void write_variables(const Source& in)
    {
        const std::string key = in.trimmed_text("etypvar");
        const std::int32_t ncoo = in.integer("ncoo");
        std::vector<std::string> names;
        for (std::int32_t i = 0; i < ncoo; ++i) names.push_back(in.item("cname").text(i));
        write_variable(key, names, in.integer("rank"), in.integer("ndim"), in.units());
        write_group(key, {key}, {ncoo});
        lose("\"idtrans\", \"cid\" and \"comp\" of variables");
    }

    /// Each index value becomes a variable, all of them the group that the index block names.
    void write_index(const Source& in, const Entry& entry)
    {
        const std::int32_t nindex = in.integer("nindex");
        std::vector<std::string> keys;
        Units units = in.units();
        for (std::int32_t i = 0; i < nindex; ++i) {
            keys.push_back(in.item("etypindex").text(i));
            if (!variables_.contains(keys.back())) write_variable(keys.back(), {keys.back()}, 0, 1, units);
            units = behind(units);
        }
        const std::string group = free_name("INDEX");
        write_group(group, keys, std::vector<std::int32_t>(keys.size(), 1));
        std::int32_t status = 0;
        KOB_WRITE_INDEX(file_.handle(), &nindex, field(group).data(), nullptr, nullptr, &status);
        check(status, short_path(entry));
    }

    /// The units of the floating-point parameters become those of a variable. The block gets the names that it lacks.
    void complete_connectivities(Block& block)
    {
        const Source in{block};
        const std::int32_t parameters = in.integer("nbfloat");
        std::string group;
        if (parameters > 0) {
            group = free_name(in.trimmed_text("etypelem"));
            write_variable(group, std::vector<std::string>(static_cast<std::size_t>(parameters)), 0, 1, in.units());
            write_group(group, {group}, {parameters});
        }
        block.items.push_back(text_attribute("etyp", ""));
        block.items.push_back(text_attribute("etypvar", group));
    }

    /// Names of components become their subscripts.
    void write_variable(const std::string& key, const std::vector<std::string>& names, std::int32_t rank,
                        std::int32_t ndim, const Units& units)
    {
        const auto ncoo = static_cast<std::int32_t>(names.size());
        std::string subscripts;
        std::vector<std::int32_t> counts;
        std::vector<std::int32_t> offsets;
        for (const std::string& name : names) {
            offsets.push_back(static_cast<std::int32_t>(subscripts.size()));
            counts.push_back(static_cast<std::int32_t>(name.size()));
            subscripts += name;
        }
        const auto length = static_cast<std::int32_t>(subscripts.size());
        const std::string blank = field("");
        std::int32_t status = 0;
        KOB_WRITE_VARIABLE(file_.handle(), nullptr, nullptr, field(key).data(), blank.data(), field(key).data(), &ncoo,
                           &rank, &ndim, &zero, blank.data(), &zero, &length, units.mbunit, units.mdunit, units.ubid,
                           units.ubexp, units.udid, units.udexp, subscripts.data(), counts.data(), offsets.data(),
                           nullptr, &zero, no_params_, &float_size_, &status);
        check(status, "the variable " + key);
        variables_.insert(key);
    }

    void write_group(const std::string& name, const std::vector<std::string>& keys,
                     const std::vector<std::int32_t>& counts)
    {
        const auto nvar = static_cast<std::int32_t>(keys.size());
        std::string fields;
        std::vector<std::int32_t> offsets;
        std::int32_t ncoo = 0;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            fields += field(keys[i]);
            offsets.push_back(ncoo);
            ncoo += counts[i];
        }
        std::int32_t status = 0;
        KOB_WRITE_VARIABLEGROUP(file_.handle(), nullptr, nullptr, field(name).data(), &nvar, &ncoo, counts.data(),
                                offsets.data(), fields.data(), &zero, no_params_, &status);
        check(status, "the variable group " + name);
        groups_.insert(name);
    }

    /// The units of the values behind the first one.
    static Units behind(const Units& units)
    {
        return {units.mbunit + 1,           units.mdunit + 1,
                units.ubid + *units.mbunit, units.ubexp + *units.mbunit,
                units.udid + *units.mdunit, units.udexp + *units.mdunit};
    }

    /// A name that neither a variable nor a group has.
    std::string free_name(const std::string& wanted) const
    {
        std::string name = wanted;
        for (int i = 2; variables_.contains(name) || groups_.contains(name); ++i)
            name = fmt::format("{}_{}", wanted, i);
        return name;
    }

    void lose(const char* what) { ++losses_[what]; }

    static constexpr std::int32_t no_params_[2] = {0, 0};
    WrittenFile file_;
    std::int32_t float_size_;
    std::set<std::string> variables_;
    std::set<std::string> groups_;
    std::map<std::string, int> losses_;
};

void check(const Options& options, const File& file)
{
    std::error_code ignored;
    if (fs::equivalent(options.input, options.output, ignored))
        throw Failure{exit_usage, "the output would replace the input"};
    const BlockCounts blocks = file.block_counts();
    if (blocks.older == 0)
        throw Failure{exit_cannot_read,
                      fmt::format("{}: holds no blocks of the older layout", printable(options.input))};
    if (blocks.current > 0)
        throw Failure{exit_cannot_read,
                      fmt::format("{}: {} of {} blocks are in the current layout already; a file with both is not "
                                  "upgraded",
                                  printable(options.input), blocks.current, blocks.current + blocks.older)};
}

/// Where a block did not come from the library's own writers, its place may be another one.
void tell_moved_blocks(const File& older, const std::string& path)
{
    const File current{path};
    std::set<std::string> paths;
    for (const Entry& entry : current.entries()) paths.insert(entry.path);
    for (const Entry& entry : older.entries())
        if (entry.older && entry.key != variables_key && !paths.contains(entry.path))
            complain("kob upgrade",
                     fmt::format("warning: {}: the block has another path now", printable(short_path(entry))));
}

int upgrade(const Options& options)
{
    const File file{options.input};
    check(options, file);
    Draft draft{options.output};
    draft.check_target(options.force);
    Upgrade target{draft.path().string(), options.float_size};
    for (const bool is_variable : {true, false}) // their names are taken first
        for (const Entry& entry : file.entries())
            if (entry.key != header_key && (entry.key == variables_key) == is_variable)
                target.write(read_block(file, entry, Depth::values), entry);
    target.close();
    tell_moved_blocks(file, draft.path().string());
    for (const auto& [what, blocks] : target.losses())
        complain("kob upgrade", fmt::format("warning: {} ({} block{}): no place in the current layout, left out", what,
                                            blocks, blocks == 1 ? "" : "s"));
    draft.become_target(options.force);
    return 0;
}

} // namespace

void add_upgrade(CLI::App& app, int& exit_code)
{
    const auto options = std::make_shared<Options>();
    Verb verb{app, "upgrade", "Write a file of the older layout in the current one"};
    verb.option("OLD", options->input, "Result file of the older layout").required();
    verb.option("NEW", options->output, "Result file to write").required();
    verb.option("--float", options->float_size, "bytes of a stored number: 4 or 8").one_of({4, 8}).shows_default();
    verb.flag("--force", options->force, "replace the output if it exists");
    verb.runs([options, &exit_code] { run_verb("kob upgrade", exit_code, [&] { return upgrade(*options); }); });
}

} // namespace kob::program
