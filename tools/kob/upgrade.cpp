// SPDX-License-Identifier: BSD-3-Clause
// kob upgrade: writes a file of the older layout in the current one.

#include "block_reader.hpp"
#include "draft.hpp"
#include "file.hpp"
#include "terminal.hpp"
#include "verbs.hpp"
#include "written_file.hpp"

#include "kob_dp.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <map>
#include <memory>
#include <set>

namespace kob::program {

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t zero = 0;
constexpr std::int32_t none = -1;
constexpr std::int32_t name_width = 256;
constexpr std::int32_t header_key = 1;
constexpr std::int32_t variables_key = 30;
constexpr std::int32_t matrix_text_length = name_width; // taken by the writers and not looked at

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

/// The units of `count` values, as pointers into a block or from one of its values on.
struct Units {
    const std::int32_t* mbunit;
    const std::int32_t* mdunit;
    const std::int32_t* ubid;
    const double* ubexp;
    const std::int32_t* udid;
    const double* udexp;
};

/// A block that was read, as the arguments of its writer.
class Source {
public:
    Source(const Block& block, const Entry& entry) : block_{block}, entry_{entry} {}

    // Null where the block has no such item: its writer does not look then.
    const char* text(const char* name) const { return data<char>(name); }
    const std::int32_t* ints(const char* name) const { return data<std::int32_t>(name); }
    const std::int64_t* longs(const char* name) const { return data<std::int64_t>(name); }
    const double* reals(const char* name) const { return data<double>(name); }
    std::int32_t integer(const char* name) const { return static_cast<std::int32_t>(block_.integer(name, 0)); }
    const Item& item(const char* name) const { return *block_.find(name); }
    std::string trimmed_text(const char* name) const { return block_.text(name); }

    Units units() const
    {
        return {ints("mbunit"), ints("mdunit"), ints("ubid"), reals("ubexp"), ints("udid"), reals("udexp")};
    }
    const std::int32_t* filter_flags() const { return &block_.filter_flags; }
    const std::int32_t* filter_params() const { return block_.filter_params.data(); }

    /// The one state number of the path; several follow from the index identifiers.
    std::int32_t state() const
    {
        const std::vector<std::int64_t> numbers = state_numbers(entry_);
        return numbers.size() == 1 ? static_cast<std::int32_t>(numbers.front()) : none;
    }

    /// The set number of the path, unless what looks like one belongs to the last name.
    std::int32_t set() const
    {
        std::string_view level = short_path(entry_);
        level.remove_prefix(level.rfind('/') + 1);
        std::string name = trimmed_text("etypzone");
        if (name.empty()) name = trimmed_text("etypvar");
        if (integer("zoneid") >= 0) name += std::to_string(integer("zoneid"));
        const std::size_t at = level.rfind("_set");
        std::int32_t number = none;
        if (level != name && at != std::string_view::npos)
            std::from_chars(level.data() + at + 4, level.data() + level.size(), number);
        return number;
    }

    /// The value size argument of a writer whose values are stored with so many bytes.
    std::int32_t value_size(std::int32_t float_size) const
    {
        return block_.key == block_.kind->complex_key ? 4 * float_size : float_size;
    }

private:
    template <class T> const T* data(const char* name) const
    {
        const Item* item = block_.find(name);
        return item != nullptr ? std::get<Buffer<T>>(item->values).data() : nullptr;
    }

    const Block& block_;
    const Entry& entry_;
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

    void write(const Block& block, const Entry& entry)
    {
        const Source in{block, entry};
        std::int32_t status = 0;
        write(in, block.kind->key, status);
        check(status, short_path(entry));
    }

    /// What the current layout has no place for, with the number of blocks that lost it.
    const std::map<std::string, int>& losses() const { return losses_; }

private:
    static void check(std::int32_t status, std::string_view what)
    {
        if (status < 0)
            throw Failure{exit_cannot_read, fmt::format("cannot write {} (status {})", printable(what), status)};
    }

    void write(const Source& in, std::int32_t key, std::int32_t& status)
    {
        const std::int32_t state = in.state();
        const std::int32_t value_size = in.value_size(float_size_);
        switch (key) {
        case 10:
            KOB_WRITE_SYSTEM(file_.handle(), in.text("title"), in.text("sys"), in.text("solver_name"),
                             in.text("solver_vers"), in.text("cdate"), in.text("ctime"), in.text("mdate"),
                             in.text("mtime"), in.ints("nbunit"), in.ints("ndunit"), in.ints("ubid"), in.text("ubtyp"),
                             in.text("ubnam"), in.reals("ubshift"), in.reals("ubcon"), in.ints("udid"),
                             in.text("udnam"), in.reals("udscal"), in.ints("ndbunit"), in.ints("udbid"),
                             in.reals("udbexp"), in.filter_flags(), in.filter_params(), &float_size_, &status);
            break;
        case 20:
            write_index(in, status);
            break;
        case variables_key:
            write_variables(in);
            break;
        case 40:
            KOB_WRITE_TEXT(file_.handle(), in.text("etyptext"), in.ints("nlines"), in.ints("length"), &zero, &zero,
                           nullptr, nullptr, in.text("line"), &none, in.filter_flags(), in.filter_params(),
                           &float_size_, &status);
            break;
        case 100:
            KOB_WRITE_PARTS(file_.handle(), in.text("etyppart"), in.ints("npart"), in.ints("off"), &name_width,
                            in.ints("nindex"), &zero, in.ints("indexident"), in.reals("indexval"), in.ints("pid"),
                            in.text("title"), in.ints("mid"), in.ints("mtyp"), in.ints("pcol"), &state,
                            in.filter_flags(), in.filter_params(), &float_size_, &status);
            lose("\"pvtyp\" of parts");
            break;
        case 200:
            KOB_WRITE_ATTRIBUTES(file_.handle(), in.text("etyp"), in.ints("nent"), in.ints("nuid"), &name_width,
                                 in.ints("nindex"), &zero, in.ints("indexident"), in.reals("indexval"),
                                 in.ints("entid"), in.text("title"), in.ints("uid"), &state, in.filter_flags(),
                                 in.filter_params(), &float_size_, &status);
            break;
        case 300:
            write_connectivities(in, state, status);
            break;
        case 400:
            KOB_WRITE_COLLECTOR(file_.handle(), in.text("etypcoll"), in.ints("ncoll"), in.ints("ntyp"),
                                in.ints("nindex"), &zero, in.ints("indexident"), in.reals("indexval"),
                                in.ints("idcoll"), in.text("etyp"), in.ints("nent"), in.ints("entid"), &state,
                                in.filter_flags(), in.filter_params(), &float_size_, &status);
            break;
        case 2100:
            KOB_WRITE_ACTIVFLAGS(file_.handle(), in.text("etyp"), in.ints("nent"), in.ints("nindex"), &zero,
                                 in.ints("indexident"), in.reals("indexval"), in.ints("entid"), in.ints("status"),
                                 &state, in.filter_flags(), in.filter_params(), &float_size_, &status);
            break;
        case 2150:
            KOB_WRITE_MULTIACTIVFLAGS(file_.handle(), in.text("series"), in.text("etyp"), in.ints("nent"),
                                      in.ints("nindex"), in.ints("indexident"), in.reals("indexval"), in.ints("entid"),
                                      in.ints("status"), in.ints("nstate"), in.filter_flags(), in.filter_params(),
                                      &float_size_, &status);
            break;
        default:
            if (key >= 10000)
                write_matrix(in, key, state, value_size, status);
            else
                write_results(in, key, state, value_size, status);
        }
    }

    void write_results(const Source& in, std::int32_t key, std::int32_t state, std::int32_t value_size,
                       std::int32_t& status)
    {
        const std::int32_t set = in.set();
        switch (key) {
        case 1000:
            KOB_WRITE_ENTITYRESULTS(file_.handle(), in.text("etyp"), in.ints("nent"), in.text("etypvar"),
                                    in.ints("ncoo"), in.text("etypzone"), in.ints("zoneid"), in.text("etypframe"),
                                    in.ints("fswitch"), in.ints("dmpswitch"), in.ints("nindex"), &zero,
                                    in.ints("indexident"), in.reals("indexval"), in.ints("entid"), in.ints("fidglob"),
                                    in.ints("fid"), in.text("operator"), in.reals("weight"), in.reals("res"), &set,
                                    &state, in.filter_flags(), in.filter_params(), &value_size, &status);
            break;
        case 1050:
            KOB_WRITE_MULTIENTITYRESULTS(
                file_.handle(), in.text("series"), in.text("etyp"), in.ints("nent"), in.text("etypvar"),
                in.ints("ncoo"), in.text("etypzone"), in.ints("zoneid"), in.text("etypframe"), in.ints("fswitch"),
                in.ints("dmpswitch"), in.ints("nindex"), in.ints("indexident"), in.reals("indexval"), in.ints("entid"),
                in.ints("fidglob"), in.ints("fid"), in.text("operator"), in.reals("weight"), in.reals("res"), &set,
                in.ints("nstate"), in.filter_flags(), in.filter_params(), &value_size, &status);
            break;
        case 1100:
            KOB_WRITE_ELEMENTRESULTS(file_.handle(), in.text("etypelem"), in.ints("nele"), in.text("etypvar"),
                                     in.ints("ncoo"), in.ints("numl"), in.ints("ndim"), in.text("etypzone"),
                                     in.ints("zoneid"), in.text("etypframe"), in.ints("fswitch"), in.ints("dmpswitch"),
                                     in.ints("nindex"), &zero, in.ints("indexident"), in.reals("indexval"),
                                     in.ints("idele"), in.ints("fidglob"), in.ints("fid"), in.reals("eloc"),
                                     in.text("operator"), in.reals("weight"), in.reals("res"), &set, &state,
                                     in.filter_flags(), in.filter_params(), &value_size, &status);
            break;
        default:
            KOB_WRITE_MULTIELEMENTRESULTS(
                file_.handle(), in.text("series"), in.text("etypelem"), in.ints("nele"), in.text("etypvar"),
                in.ints("ncoo"), in.ints("numl"), in.ints("ndim"), in.text("etypzone"), in.ints("zoneid"),
                in.text("etypframe"), in.ints("fswitch"), in.ints("dmpswitch"), in.ints("nindex"),
                in.ints("indexident"), in.reals("indexval"), in.ints("idele"), in.ints("fidglob"), in.ints("fid"),
                in.reals("eloc"), in.text("operator"), in.reals("weight"), in.reals("res"), &set, in.ints("nstate"),
                in.filter_flags(), in.filter_params(), &value_size, &status);
        }
    }

    void write_matrix(const Source& in, std::int32_t key, std::int32_t state, std::int32_t value_size,
                      std::int32_t& status)
    {
        const auto write_by = [&](auto writer, auto... sizes) {
            writer(file_.handle(), in.text("etyp"), in.ints("entid"), in.text("etypvar"), sizes..., in.ints("nindex"),
                   &zero, in.ints("indexident"), in.reals("indexval"), in.reals("val"), &state, in.filter_flags(),
                   in.filter_params(), &value_size, &zero, nullptr, nullptr, &status, matrix_text_length,
                   matrix_text_length);
        };
        switch (key) {
        case 10000:
            write_by(KOB_WRITE_DENSEMATRIX, in.ints("nrow"), in.ints("ncolumn"));
            break;
        case 10100:
            write_by(KOB_WRITE_TRIANGULARMATRIX, in.ints("nsize"), in.ints("matrixtype"));
            break;
        default:
            KOB_WRITE_SPARSEMATRIX(file_.handle(), in.text("etyp"), in.ints("entid"), in.text("etypvar"),
                                   in.ints("nrow"), in.longs("nnz"), in.ints("nindex"), &zero, in.ints("indexident"),
                                   in.reals("indexval"), in.ints("colind"), in.longs("rowptr"), in.reals("val"), &state,
                                   in.filter_flags(), in.filter_params(), &value_size, &zero, nullptr, nullptr, &status,
                                   matrix_text_length, matrix_text_length);
        }
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
    void write_index(const Source& in, std::int32_t& status)
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
        KOB_WRITE_INDEX(file_.handle(), &nindex, field(group).data(), nullptr, nullptr, &status);
    }

    /// The units of the floating-point parameters become those of a variable.
    void write_connectivities(const Source& in, std::int32_t state, std::int32_t& status)
    {
        const std::int32_t parameters = in.integer("nbfloat");
        std::string group;
        if (parameters > 0) {
            group = free_name(in.trimmed_text("etypelem"));
            write_variable(group, std::vector<std::string>(static_cast<std::size_t>(parameters)), 0, 1, in.units());
            write_group(group, {group}, {parameters});
        }
        const std::string blank = field("");
        KOB_WRITE_CONNECTIVITIES(file_.handle(), blank.data(), in.text("etypelem"), in.text("etyppart"),
                                 in.text("etypnode"), field(group).data(), in.ints("nele"), in.ints("npele"),
                                 in.ints("ndim"), in.ints("nbint"), in.ints("nbfloat"), in.ints("nindex"), &zero,
                                 in.ints("indexident"), in.reals("indexval"), in.ints("idele"), in.ints("pid"),
                                 in.ints("ic"), in.ints("iparam"), in.reals("fparam"), &state, in.filter_flags(),
                                 in.filter_params(), &float_size_, &status);
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
    CLI::App* verb = app.add_subcommand("upgrade", "Write a file of the older layout in the current one");
    verb->add_option("OLD", options->input, "Result file of the older layout")->required();
    verb->add_option("NEW", options->output, "Result file to write")->required();
    verb->add_option("--float", options->float_size, "bytes of a stored number: 4 or 8")
        ->check(CLI::IsMember({4, 8}))
        ->capture_default_str();
    verb->add_flag("--force", options->force, "replace the output if it exists");
    verb->callback([options, &exit_code] { run_verb("kob upgrade", exit_code, [&] { return upgrade(*options); }); });
}

} // namespace kob::program
