// SPDX-License-Identifier: BSD-3-Clause
// State eraser: cuts an open result file back to a given state.
#include "kob_block_table.hpp"
#include "kob_dp.h"
#include "kob_family.hpp"
#include "kob_kinds.hpp"
#include "kob_location.hpp"
#include "kob_plain_block.hpp"
#include "kob_sections.hpp"
#include "kob_storage.hpp"
#include "kob_text.hpp"
#include "kob_tool.hpp"

#include <array>
#include <cstring>
#include <ctime>
#include <optional>
#include <vector>

namespace kob {
namespace {

constexpr std::int32_t no_blocks = -1;
constexpr std::int32_t unusable_values = -1000; // added to a value size that cannot be
constexpr std::size_t stamp_length = 8;         // characters of a date or a time

/// What a call keeps: everything up to an index tuple, whose last component is the most significant.
class LastIndex {
public:
    LastIndex(const std::int32_t* index, std::int32_t count) : index_{index}, count_{count} {}

    [[nodiscard]] std::int32_t count() const { return count_; }
    [[nodiscard]] std::int32_t operator[](std::int32_t i) const { return value(index_ + i); }

    /// Does a state lie behind? Tuples of another length are not compared.
    [[nodiscard]] bool is_before(const std::int32_t* tuple, std::int32_t components) const
    {
        if (components != count_) {
            return false;
        }
        for (std::int32_t i = components; i-- > 0;) {
            if (tuple[i] != (*this)[i]) {
                return tuple[i] > (*this)[i];
            }
        }
        return false;
    }

private:
    const std::int32_t* index_;
    std::int32_t count_;
};

/// An attribute of a block, without a word when it cannot be read.
std::optional<std::int32_t> integer_of(hid_t block, const char* name)
{
    std::int32_t number = 0;
    const hsize_t one = 1;
    const bool read =
        KOB_H5Aread(name, &number, type_code::integer, sizeof number, &one, 0, block, nullptr, Report::silent) == 0;
    return read ? std::optional{number} : std::nullopt;
}

/// Deletes the groups above a path as far as they are empty. One that cannot be deleted stays: it does no harm.
void remove_empty_parents(hid_t file, std::string path)
{
    for (std::size_t slash = path.rfind('/'); slash != std::string::npos; slash = path.rfind('/')) {
        path.resize(slash);
        H5G_info_t info{};
        if (H5Gget_info_by_name(file, path.c_str(), &info, H5P_DEFAULT) < 0 || info.nlinks > 0 ||
            H5Ldelete(file, path.c_str(), H5P_DEFAULT) < 0) {
            return;
        }
    }
}

/// Groups that lose all they hold when some blocks go: each is deleted in one go, with the blocks in it.
class EmptiedGroups {
public:
    EmptiedGroups() = default;
    /// `going` are the blocks of the table that go.
    EmptiedGroups(const BlockTable& table, const std::vector<bool>& going) : tree_{table.tree()}
    {
        for (const TableGroup& group : tree_) {
            left_.push_back(group.links);
        }
        for (std::size_t i = 0; i < going.size(); ++i) {
            left_[table.entries()[i].parent] -= going[i] ? 1 : 0;
        }
        emptied_.resize(tree_.size());
        for (std::size_t group = tree_.size(); group-- > 1;) {
            const TableGroup& it = tree_[group];
            // What a group with a second name holds can still be reached. HDF5 takes call stack for each level.
            emptied_[group] = it.links > 0 && left_[group] == 0 && it.names == 1 && it.depth <= deepest;
            left_[it.parent] -= emptied_[group] ? 1 : 0;
        }
    }

    /// The highest one that holds a block, or the start if none does.
    [[nodiscard]] std::size_t around(const TableEntry& entry) const
    {
        std::size_t highest = 0;
        for (std::size_t group = entry.parent; group != 0 && emptied_[group]; group = tree_[group].parent) {
            highest = group;
        }
        return highest;
    }
    [[nodiscard]] const TableGroup& operator[](std::size_t group) const { return tree_[group]; }
    /// May the group around a highest one become empty all the same? To ask HDF5 costs a look at all of its links.
    [[nodiscard]] bool goes_on_behind(std::size_t group) const { return left_[tree_[group].parent] == 0; }

private:
    static constexpr std::size_t deepest = 64;

    std::vector<TableGroup> tree_;
    std::vector<std::size_t> left_; ///< links that stay
    std::vector<bool> emptied_;
};

/// A multi-state entity results block in memory.
struct Series {
    const Family& family;
    std::array<char, name_length> series{};
    std::array<char, name_length> etyp{};
    std::array<char, name_length> etypvar{};
    std::array<char, name_length> etypzone{};
    std::array<char, name_length> etypframe{};
    std::int32_t nent = 0;
    std::int32_t ncoo = 0;
    std::int32_t zoneid = 0;
    std::int32_t fswitch = 0;
    std::int32_t dmpswitch = 0;
    std::int32_t nindex = 0;
    std::int32_t nstate = 0;
    std::int32_t fidglob = 0;
    std::vector<std::int32_t> indexident;
    std::vector<double> indexval;
    std::vector<std::int32_t> entid;
    std::vector<std::int32_t> fid;
    std::vector<char> operators;
    std::vector<double> weight;
    std::vector<double> res;
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{};

    explicit Series(const Family& calls) : family{calls} {}

    /// Reads the sections of a pass. The buffers must fit what is stored; the reader compares that with the counts.
    std::int32_t read(hid_t block, std::int32_t pass)
    {
        constexpr std::array<std::int32_t, 3> sections_of_pass{section::attributes | section::state_index,
                                                               section::attributes, section::all};
        const std::int64_t handle = block;
        const std::int32_t sections = sections_of_pass[static_cast<std::size_t>(pass)];
        const std::int32_t memory_size = sizeof(double);
        const std::int32_t whole = 0;
        std::int32_t status = 0;
        family.read_series(&handle, &sections, nullptr, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo,
                           etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex, &nstate,
                           indexident.data(), indexval.data(), entid.data(), &fidglob, fid.data(), operators.data(),
                           weight.data(), res.data(), &memory_size, &filter_flags, filter_params.data(), &whole,
                           nullptr, nullptr, &status);
        return status;
    }

    /// Makes room for the state index, as it is stored.
    void size_index(hid_t block)
    {
        indexident.resize(stored(block, Where::index, "indexident"));
        indexval.resize(stored(block, Where::index, "indexval"));
    }

    /// Makes room for everything else.
    void size_values(hid_t block)
    {
        entid.resize(stored(block, Where::data, "entid"));
        fid.resize(stored(block, Where::data, "fid"));
        operators.resize(stored(block, Where::data, "operator") * name_length);
        weight.resize(stored(block, Where::data, "weight"));
        res.resize(stored(block, Where::data, "res"));
    }

    std::int32_t write(hid_t block, std::int32_t states, std::int32_t value_size) const
    {
        const std::array<std::int64_t, 2> groups{block, -1};
        const std::int32_t memory_size = sizeof(double);
        const std::int32_t whole = 0;
        std::int32_t held = 0;
        std::int32_t status = 0;
        family.write_series(groups.data(), nullptr, nullptr, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo,
                            etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex,
                            indexident.data(), indexval.data(), entid.data(), &fidglob, fid.data(), operators.data(),
                            weight.data(), res.data(), &memory_size, &states, &filter_flags, filter_params.data(),
                            &value_size, &whole, nullptr, nullptr, &held, &status);
        return status;
    }

private:
    // At least one element: an address is handed out even where nothing is stored.
    [[nodiscard]] std::size_t stored(hid_t block, Where where, const char* name) const
    {
        Places places{{block, family.generation}};
        return static_cast<std::size_t>(std::max<std::int64_t>(count_elements(places.open(where), name), 1));
    }
};

/// One run of the eraser.
class Eraser {
public:
    Eraser(Location file, LastIndex last, std::int32_t verbose)
        : family_{family_of(file.generation)}, file_{file.group}, last_{last}, verbose_{verbose}
    {
    }

    std::int32_t run()
    {
        if (verbose_ >= 1) {
            say_start();
        }
        if (!table_.list_flushed(file_, family_)) {
            report_error(message::erase_no_blocks, no_blocks);
            return no_blocks;
        }
        if (verbose_ >= 2) {
            say(message::erase_blocks_found, table_.found());
        }
        look_ahead();
        table_.read_numbers(false);
        if (verbose_ >= 2) {
            table_.say_by_key();
        }
        bool goes_on = false;
        if (const std::int32_t status = check_header(goes_on); !goes_on) {
            return status;
        }
        if (const std::int32_t status = read_index(); status < 0) {
            return status;
        }
        if (const std::int32_t status = stamp_system(); status < 0) {
            return status;
        }
        erase_single_states();
        for (const std::int32_t key : {kind::multi_entity_results.key, kind::multi_entity_results.complex_key}) {
            for (const std::int32_t block : table_.of_key(key)) {
                if (const std::int32_t status = cut_series(entry_of(block)); status < 0) {
                    return status;
                }
            }
        }
        if (linked_kept_ > 0) {
            report_error(message::erase_linked_kept, linked_kept_);
        }
        if (verbose_ >= 1) {
            say(message::erase_rewritten, rewritten_, kind::multi_entity_results.name);
            say(message::erase_done);
        }
        return 0;
    }

private:
    void say_start() const
    {
        const Version& version = family_.version;
        say_banner("KOB state eraser");
        say(message::tool_compiled, __DATE__, __TIME__);
        say(message::tool_version, version.major, version.minor, version.release);
        say("\n");
        say(message::erase_index);
        for (std::int32_t i = 0; i < last_.count(); ++i) {
            say(" %d", last_[i]);
        }
        say("\n\n");
    }

    [[nodiscard]] const TableEntry& entry_of(std::int32_t block) const
    {
        return table_.entries()[static_cast<std::size_t>(block)];
    }

    /// Goes on only with a header of this generation. An incompatible version stops the run without a status.
    std::int32_t check_header(bool& goes_on) const
    {
        const std::vector<std::int32_t>& headers = table_.of_key(kind::file_header);
        if (headers.empty()) {
            report_error(message::erase_no_header);
            return 0;
        }
        if (headers.size() > 1) {
            say(message::erase_multiple_headers, header_group_name);
        }
        const Id header = open_block(file_, entry_of(headers.front()).path);
        const std::int64_t handle = header.get();
        std::array<char, 33> text{};
        std::int32_t filter_flags = 0;
        std::array<std::int32_t, 2> filter_params{};
        std::int32_t status = 0;
        family_.read_header(&handle, text.data(), &filter_flags, filter_params.data(), &status);
        if (status < 0) {
            report_error(message::tool_incompatible, status);
            return status;
        }
        const Version& wanted = family_.version;
        Version found;
        if (!read_version(text.data(), found.major, found.minor, found.release) || found.major != wanted.major) {
            report_error(message::erase_wrong_version, found.major, found.minor, found.release);
            return 0;
        }
        if (verbose_ >= 1) {
            say(message::erase_version_ok, found.major, found.minor, found.release);
        }
        goes_on = true;
        return 0;
    }

    /// The one block of a key, or none after a warning.
    [[nodiscard]] Id single_block(const BlockKind& kind) const
    {
        const std::vector<std::int32_t>& blocks = table_.of_key(kind.key);
        if (blocks.empty()) {
            report_error(message::erase_block_missing, kind.name);
            return {};
        }
        if (blocks.size() > 1) {
            report_error(message::erase_multiple_blocks, kind.name);
        }
        return open_block(file_, entry_of(blocks.front()).path);
    }

    std::int32_t read_index() const
    {
        const Id index = single_block(kind::index);
        if (!index) {
            return 0;
        }
        const std::int64_t handle = index.get();
        std::int32_t pass = 0;
        std::int32_t nindex = 0;
        std::array<char, name_length> etypvar{};
        std::int32_t status = 0;
        if (family_.generation == Generation::current) {
            KOB_READ_INDEX(&handle, &pass, &nindex, etypvar.data(), nullptr, nullptr, &status);
        } else {
            pass = 1; // the older reader has no pass 0
            KOB1_READ_INDEX(&handle, &pass, &nindex, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr, &status);
        }
        if (status < 0) {
            report_error(message::tool_reading, kind::index.name, pass, status);
        }
        return status;
    }

    std::int32_t stamp_system() const
    {
        const Id system = single_block(kind::system);
        if (!system) {
            return 0;
        }
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        std::array<char, 16> date{};
        std::array<char, 16> time{};
        std::strftime(date.data(), date.size(), "%Y%m%d", &local);
        std::strftime(time.data(), time.size(), "%H%M%S  ", &local);
        Places places{{system.get(), family_.generation}};
        const hid_t header = places.open(Where::header);
        const hsize_t one = 1;
        const std::int32_t status =
            KOB_H5Awrite("mdate", date.data(), type_code::text, stamp_length, stamp_length, &one, 0, header);
        return status != 0
                   ? status
                   : KOB_H5Awrite("mtime", time.data(), type_code::text, stamp_length, stamp_length, &one, 0, header);
    }

    /// Judges the blocks while the file is as it was flushed, if it is a plain one.
    void look_ahead()
    {
        std::optional<plain::File> file;
        if (!table_.tree().empty()) {
            file = plain::File::of(file_, plain::File::Pieces::passing, plain::File::State::flushed);
        }
        if (!file) {
            return;
        }
        for (const TableEntry& entry : table_.entries()) {
            std::optional<bool> behind{false};
            if (entry.key != kind::file_header) {
                try {
                    plain::File block_file = file->again();
                    plain::Block block{block_file, entry.object};
                    behind = is_single_state_behind(block);
                } catch (const plain::Surprise&) {
                    behind.reset();
                }
            }
            if (!behind) {
                behind_.clear();
                return;
            }
            behind_.push_back(*behind);
        }
    }

    void erase_single_states()
    {
        std::int32_t deleted = 0;
        const EmptiedGroups emptied = behind_.empty() ? EmptiedGroups{} : EmptiedGroups{table_, behind_};
        std::size_t last_emptied = 0;
        for (std::size_t i = 0; i < table_.entries().size(); ++i) {
            const TableEntry& entry = table_.entries()[i];
            if (behind_.empty() ? !is_single_state_behind(entry) : !behind_[i]) {
                continue;
            }
            if (entry.is_linked) {
                ++linked_kept_;
                continue;
            }
            const std::size_t highest = behind_.empty() ? 0 : emptied.around(entry);
            const bool is_gone = highest != 0 && (highest == last_emptied || remove_group(entry, emptied, highest));
            if (is_gone) {
                last_emptied = highest;
                if (verbose_ >= 2) {
                    say(message::erase_deleted, entry.path.c_str());
                }
            }
            if (is_gone || remove(entry.path)) {
                ++deleted;
            }
        }
        if (verbose_ >= 1) {
            say(message::erase_single_state, deleted);
        }
    }

    /// The same by the short way; nothing when there is no telling.
    std::optional<bool> is_single_state_behind(plain::Block& block)
    {
        constexpr std::int32_t usually_most = 16;
        const std::optional<bool> has_index = block.has_link("indexident");
        if (!has_index) {
            return {};
        }
        if (!*has_index || block.has_attribute("nstate")) {
            return false;
        }
        std::int32_t nindex = 0;
        if (!block.read_attribute({"nindex", type_code::integer, sizeof nindex, nullptr, 0, &nindex}) || nindex < 1 ||
            nindex > usually_most) {
            return {};
        }
        tuple_.resize(static_cast<std::size_t>(nindex));
        const auto extent = static_cast<hsize_t>(nindex);
        if (!block.read_dataset({"indexident", type_code::integer, sizeof(std::int32_t), &extent, 1, tuple_.data()})) {
            return {};
        }
        return last_.is_before(tuple_.data(), nindex);
    }

    bool is_single_state_behind(const TableEntry& entry)
    {
        if (entry.key == kind::file_header) {
            return false;
        }
        const Id block = open_block(file_, entry.path);
        if (!block) {
            return false;
        }
        Places places{{block.get(), family_.generation}};
        const hid_t header = places.open(Where::header);
        const hid_t index = places.open(Where::index);
        if (!has_link(index, "indexident") || has_attribute(header, "nstate")) {
            return false;
        }
        const std::optional<std::int32_t> nindex = integer_of(header, "nindex");
        if (!nindex || *nindex <= 0 || count_elements(index, "indexident") != *nindex) {
            return false;
        }
        tuple_.resize(static_cast<std::size_t>(*nindex));
        const auto extent = static_cast<hsize_t>(*nindex);
        const bool read =
            KOB_H5Dread("indexident", tuple_.data(), type_code::integer, sizeof(std::int32_t), &extent, 1, nullptr,
                        nullptr, access_mode::whole, index, nullptr, nullptr, nullptr, Report::silent) == 0;
        return read && last_.is_before(tuple_.data(), *nindex);
    }

    [[nodiscard]] bool remove_group(const TableEntry& entry, const EmptiedGroups& emptied, std::size_t group) const
    {
        const std::string path = entry.path.substr(0, emptied[group].path_length);
        if (H5Ldelete(file_, path.c_str(), H5P_DEFAULT) < 0) {
            return false;
        }
        if (emptied.goes_on_behind(group)) {
            remove_empty_parents(file_, path);
        }
        return true;
    }

    bool remove(const std::string& path) const
    {
        if (H5Ldelete(file_, path.c_str(), H5P_DEFAULT) < 0) {
            report_error(message::erase_failed, path.c_str());
            return false;
        }
        if (verbose_ >= 2) {
            say(message::erase_deleted, path.c_str());
        }
        remove_empty_parents(file_, path);
        return true;
    }

    /// The number of leading states to keep: up to the last one that does not lie behind.
    [[nodiscard]] std::int32_t states_to_keep(const Series& series) const
    {
        std::int32_t keep = series.nstate;
        while (keep > 0 &&
               last_.is_before(series.indexident.data() + static_cast<std::ptrdiff_t>(keep - 1) * series.nindex,
                               series.nindex)) {
            --keep;
        }
        return keep;
    }

    std::int32_t fail_reading(const TableEntry& entry, std::int32_t pass, std::int32_t status) const
    {
        report_error(message::tool_reading, kind::multi_entity_results.name, pass, status);
        report_error(message::tool_block_path, entry.path.c_str());
        return status;
    }

    std::int32_t fail_size(const TableEntry& entry, std::int32_t status) const
    {
        report_error(message::erase_unknown_size, kind::multi_entity_results.name, status);
        report_error(message::tool_block_path, entry.path.c_str());
        return status;
    }

    std::int32_t cut_series(const TableEntry& entry)
    {
        Id block = open_block(file_, entry.path);
        Series series{family_};
        if (const std::int32_t status = series.read(block.get(), 1); status < 0) {
            return fail_reading(entry, 1, status);
        }
        series.size_index(block.get());
        if (const std::int32_t status = series.read(block.get(), 0); status < 0) {
            return fail_reading(entry, 0, status);
        }
        const std::int32_t keep = states_to_keep(series);
        if (keep == series.nstate) {
            return 0;
        }
        if (entry.is_linked) {
            ++linked_kept_;
            return 0;
        }
        const std::int64_t size = value_size(block.get());
        if (size < 0) {
            return fail_size(entry, unusable_values);
        }
        if (size < 1) {
            return fail_size(entry, static_cast<std::int32_t>(size) + unusable_values);
        }
        series.size_values(block.get());
        const std::int32_t key = series.read(block.get(), 2);
        if (key < 0) {
            return fail_reading(entry, 2, key);
        }
        block.close();
        remove(entry.path);
        if (keep == 0) {
            return 0;
        }
        return rewrite(entry, series, keep, value_size_for(key, size));
    }

    /// Bytes of one stored value.
    [[nodiscard]] std::int64_t value_size(hid_t block) const
    {
        Places places{{block, family_.generation}};
        return element_size(places.open(Where::data), "res");
    }

    static std::int32_t value_size_for(std::int32_t key, std::int64_t stored_size)
    {
        if (key == kind::multi_entity_results.key) {
            return static_cast<std::int32_t>(stored_size);
        }
        return stored_size == 8 ? 32 : 16;
    }

    /// The block goes back to the path that it had.
    std::int32_t rewrite(const TableEntry& entry, const Series& series, std::int32_t states, std::int32_t value_size)
    {
        const Id block = create_block(file_, entry.path);
        const std::int32_t status = series.write(block.get(), states, value_size);
        if (status < 0) {
            report_error(message::tool_writing, kind::multi_entity_results.name, status);
            report_error(message::tool_block_path, entry.path.c_str());
            return status;
        }
        ++rewritten_;
        return 0;
    }

    const Family& family_;
    hid_t file_;
    LastIndex last_;
    std::int32_t verbose_;
    BlockTable table_;
    std::vector<bool> behind_; ///< of the table's blocks, if they could be judged ahead
    std::vector<std::int32_t> tuple_;
    std::int32_t rewritten_ = 0;
    std::int32_t linked_kept_ = 0;
};

} // namespace
} // namespace kob

extern "C" {

void KOB_ERASE_STATES(const int64_t* group, const int32_t* nindex, const int32_t* index, const int32_t* verbose,
                      int32_t* status)
{
    using namespace kob;
    tool_entry(status, "kob_erase_states", __LINE__, [&] {
        if (value(nindex) > 0) {
            value(index);
        }
        return Eraser{value(group), LastIndex{index, value(nindex)}, value(verbose)}.run();
    });
}

void KOB1_ERASE_STATES(const int64_t* group, const int32_t* nindex, const int32_t* index, const int32_t* verbose,
                       int32_t* status)
{
    using namespace kob;
    tool_entry(status, "kob_erase_states", __LINE__, [&] {
        if (value(nindex) > 0) {
            value(index);
        }
        return Eraser{older(group), LastIndex{index, value(nindex)}, value(verbose)}.run();
    });
}

} // extern "C"
