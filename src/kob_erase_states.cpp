// SPDX-License-Identifier: BSD-3-Clause
// State eraser: cuts an open result file back to a given state.
#include "kob_block_table.hpp"
#include "kob_dp.h"
#include "kob_erase_groups.hpp"
#include "kob_erase_judge.hpp"
#include "kob_erase_series.hpp"
#include "kob_family.hpp"
#include "kob_kinds.hpp"
#include "kob_location.hpp"
#include "kob_storage.hpp"
#include "kob_text.hpp"
#include "kob_tool.hpp"

#include <array>
#include <ctime>
#include <string>
#include <vector>

namespace kob::erase {
namespace {

constexpr std::int32_t no_blocks = -1;
constexpr std::int32_t unusable_values = -1000; // added to a value size that cannot be
constexpr std::size_t stamp_length = 8;         // characters of a date or a time

/// One run of the eraser.
class Eraser {
public:
    Eraser(Location file, LastIndex last, std::int32_t verbose)
        : family_{family_of(file.generation)}, file_{file.group}, last_{last}, judge_{file, last}, verbose_{verbose}
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
        behind_ = judge_.look_ahead(table_);
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

    void erase_single_states()
    {
        std::int32_t deleted = 0;
        const EmptiedGroups emptied = behind_.empty() ? EmptiedGroups{} : EmptiedGroups{table_, behind_};
        std::size_t last_emptied = 0;
        for (std::size_t i = 0; i < table_.entries().size(); ++i) {
            const TableEntry& entry = table_.entries()[i];
            if (behind_.empty() ? !judge_.is_single_state_behind(entry) : !behind_[i]) {
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

    [[nodiscard]] bool remove_group(const TableEntry& entry, const EmptiedGroups& emptied, std::size_t group)
    {
        const std::string path = entry.path.substr(0, emptied[group].path_length);
        if (!remove_link(path)) {
            return false;
        }
        if (emptied.goes_on_behind(group)) {
            can_delete_ = remove_empty_parents(file_, path);
        }
        return true;
    }

    bool remove_link(const std::string& path)
    {
        can_delete_ = can_delete_ && H5Ldelete(file_, path.c_str(), H5P_DEFAULT) >= 0;
        return can_delete_;
    }

    bool remove(const std::string& path)
    {
        if (!remove_link(path)) {
            report_error(message::erase_failed, path.c_str());
            return false;
        }
        if (verbose_ >= 2) {
            say(message::erase_deleted, path.c_str());
        }
        can_delete_ = remove_empty_parents(file_, path);
        return true;
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
        const std::int32_t keep = judge_.states_to_keep(series);
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
        if (!remove(entry.path) || keep == 0) {
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
    Judge judge_;
    std::int32_t verbose_;
    BlockTable table_;
    std::vector<bool> behind_; ///< of the table's blocks, if they could be judged ahead
    std::int32_t rewritten_ = 0;
    std::int32_t linked_kept_ = 0;
    /// After a deletion that failed HDF5 must not delete more: part of what it met is free already, and to free that
    /// once more tears its list of free space.
    bool can_delete_ = true;
};

} // namespace
} // namespace kob::erase

extern "C" {

void KOB_ERASE_STATES(const int64_t* group, const int32_t* nindex, const int32_t* index, const int32_t* verbose,
                      int32_t* status)
{
    using namespace kob;
    tool_entry(status, "kob_erase_states", __LINE__, [&] {
        if (value(nindex) > 0) {
            value(index);
        }
        return erase::Eraser{value(group), erase::LastIndex{index, value(nindex)}, value(verbose)}.run();
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
        return erase::Eraser{older(group), erase::LastIndex{index, value(nindex)}, value(verbose)}.run();
    });
}

} // extern "C"
