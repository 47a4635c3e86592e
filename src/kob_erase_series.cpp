// SPDX-License-Identifier: BSD-3-Clause
// Calls of a series' reader and writer.
#include "kob_erase_series.hpp"

#include "kob_sections.hpp"
#include "kob_storage.hpp"

#include <algorithm>

namespace kob::erase {

std::int32_t Series::read(hid_t block, std::int32_t pass)
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
                       weight.data(), res.data(), &memory_size, &filter_flags, filter_params.data(), &whole, nullptr,
                       nullptr, &status);
    return status;
}

void Series::size_index(hid_t block)
{
    indexident.resize(stored(block, Where::index, "indexident"));
    indexval.resize(stored(block, Where::index, "indexval"));
}

void Series::size_values(hid_t block)
{
    entid.resize(stored(block, Where::data, "entid"));
    fid.resize(stored(block, Where::data, "fid"));
    operators.resize(stored(block, Where::data, "operator") * name_length);
    weight.resize(stored(block, Where::data, "weight"));
    res.resize(stored(block, Where::data, "res"));
}

std::int32_t Series::write(hid_t block, std::int32_t states, std::int32_t value_size) const
{
    const std::array<std::int64_t, 2> groups{block, -1};
    const std::int32_t memory_size = sizeof(double);
    const std::int32_t whole = 0;
    std::int32_t held = 0;
    std::int32_t status = 0;
    family.write_series(groups.data(), nullptr, nullptr, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo,
                        etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex, indexident.data(),
                        indexval.data(), entid.data(), &fidglob, fid.data(), operators.data(), weight.data(),
                        res.data(), &memory_size, &states, &filter_flags, filter_params.data(), &value_size, &whole,
                        nullptr, nullptr, &held, &status);
    return status;
}

std::size_t Series::stored(hid_t block, Where where, const char* name) const
{
    Places places{{block, family.generation}};
    return static_cast<std::size_t>(std::max<std::int64_t>(count_elements(places.open(where), name), 1));
}

} // namespace kob::erase
