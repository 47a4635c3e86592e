// SPDX-License-Identifier: BSD-3-Clause
// Judging single states by the short way or through HDF5, and series by their index.
#include "kob_erase_judge.hpp"

#include "kob_kinds.hpp"
#include "kob_storage.hpp"
#include "kob_tool.hpp"

namespace kob::erase {
namespace {

/// An attribute of a block, without a word when it cannot be read.
std::optional<std::int32_t> integer_of(hid_t block, const char* name)
{
    std::int32_t number = 0;
    const hsize_t one = 1;
    const bool read =
        KOB_H5Aread(name, &number, type_code::integer, sizeof number, &one, 0, block, nullptr, Report::silent) == 0;
    return read ? std::optional{number} : std::nullopt;
}

} // namespace

std::vector<bool> Judge::look_ahead(const BlockTable& table)
{
    std::optional<plain::File> file;
    if (!table.tree().empty()) {
        file = plain::File::of(file_.group, plain::File::Pieces::passing, plain::File::State::flushed);
    }
    if (!file) {
        return {};
    }
    std::vector<bool> judged;
    for (const TableEntry& entry : table.entries()) {
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
            return {};
        }
        judged.push_back(*behind);
    }
    return judged;
}

std::optional<bool> Judge::is_single_state_behind(plain::Block& block)
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

bool Judge::is_single_state_behind(const TableEntry& entry)
{
    if (entry.key == kind::file_header) {
        return false;
    }
    const Id block = open_block(file_.group, entry.path);
    if (!block) {
        return false;
    }
    Places places{{block.get(), file_.generation}};
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
        KOB_H5Dread("indexident", tuple_.data(), type_code::integer, sizeof(std::int32_t), &extent, 1, nullptr, nullptr,
                    access_mode::whole, index, nullptr, nullptr, nullptr, Report::silent) == 0;
    return read && last_.is_before(tuple_.data(), *nindex);
}

std::int32_t Judge::states_to_keep(const Series& series) const
{
    std::int32_t keep = series.nstate;
    while (keep > 0 && last_.is_before(series.indexident.data() + static_cast<std::ptrdiff_t>(keep - 1) * series.nindex,
                                       series.nindex)) {
        --keep;
    }
    return keep;
}

} // namespace kob::erase
