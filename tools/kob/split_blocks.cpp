// SPDX-License-Identifier: BSD-3-Clause
// Cuts blocks by rows and hands them to the library's writers.

#include "split_blocks.hpp"

#include "terminal.hpp"
#include "verbs.hpp"

#include "kob_dp.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

namespace kob::program {

namespace {

constexpr std::int32_t scale_floats = 128; // the numbers come as they were read; rounded again they would drift

using Rows = std::vector<std::size_t>;

const Item* find_item(const Block& block, std::string_view name)
{
    const auto found =
        std::find_if(block.items.begin(), block.items.end(), [&](const Item& item) { return item.name == name; });
    return found == block.items.end() ? nullptr : &*found;
}

template <class T> const T* values(const Block& block, std::string_view name)
{
    const Item* item = find_item(block, name);
    return item == nullptr ? nullptr : std::get<Buffer<T>>(item->values).data();
}
const char* text(const Block& block, std::string_view name) { return values<char>(block, name); }

/// The rows of an item, each of `length` elements. Empty when the block has no such item.
template <class T>
std::vector<T> gather(const Block& block, std::string_view name, const Rows& rows, std::int64_t length)
{
    std::vector<T> result;
    const T* from = values<T>(block, name);
    if (from == nullptr || length <= 0) return result;
    const auto n = static_cast<std::size_t>(length);
    result.reserve(rows.size() * n);
    for (const std::size_t row : rows) result.insert(result.end(), from + row * n, from + (row + 1) * n);
    return result;
}

void check(std::int32_t status, const Entry& entry)
{
    if (status < 0)
        throw Failure{exit_cannot_read,
                      fmt::format("{} cannot be written (status {})", printable(short_path(entry)), status)};
}

/// How a block is stored: as before, but never rounded a second time.
struct Storing {
    explicit Storing(const Block& block)
        : flags{block.filters_known ? block.filter_flags & ~scale_floats : 0}, params{0, block.filter_params[1]}
    {
    }
    std::int32_t flags;
    std::array<std::int32_t, 2> params;
};

void copy_system(const Block& b, const Entry& entry, const std::int64_t* target, std::int32_t float_size)
{
    const Storing how{b};
    std::int32_t status = 0;
    KOB_WRITE_SYSTEM(target, text(b, "title"), text(b, "sys"), text(b, "solver_name"), text(b, "solver_vers"),
                     text(b, "cdate"), text(b, "ctime"), text(b, "mdate"), text(b, "mtime"), int_values(b, "nbunit"),
                     int_values(b, "ndunit"), int_values(b, "ubid"), text(b, "ubtyp"), text(b, "ubnam"),
                     real_values(b, "ubshift"), real_values(b, "ubcon"), int_values(b, "udid"), text(b, "udnam"),
                     real_values(b, "udscal"), int_values(b, "ndbunit"), int_values(b, "udbid"),
                     real_values(b, "udbexp"), &how.flags, how.params.data(), &float_size, &status);
    check(status, entry);
}

void copy_index(const Block& b, const Entry& entry, const std::int64_t* target)
{
    std::int32_t status = 0;
    KOB_WRITE_INDEX(target, int_values(b, "nindex"), text(b, "etypvar"), nullptr, nullptr, &status);
    check(status, entry);
}

void copy_variable_group(const Block& b, const Entry& entry, const std::int64_t* target)
{
    const Storing how{b};
    std::int32_t status = 0;
    KOB_WRITE_VARIABLEGROUP(target, nullptr, nullptr, text(b, "etypvar"), int_values(b, "nvar"), int_values(b, "ncoo"),
                            int_values(b, "cnt"), int_values(b, "offs"), text(b, "varkey"), &how.flags,
                            how.params.data(), &status);
    check(status, entry);
}

void copy_variable(const Block& b, const Entry& entry, const std::int64_t* target, std::int32_t float_size)
{
    const Storing how{b};
    std::int32_t status = 0;
    KOB_WRITE_VARIABLE(target, nullptr, nullptr, text(b, "varkey"), text(b, "varclass"), text(b, "varnam"),
                       int_values(b, "ncoo"), int_values(b, "rank"), int_values(b, "ndim"), int_values(b, "tensor"),
                       text(b, "type"), int_values(b, "lvmap"), int_values(b, "subslen"), int_values(b, "mbunit"),
                       int_values(b, "mdunit"), int_values(b, "ubid"), real_values(b, "ubexp"), int_values(b, "udid"),
                       real_values(b, "udexp"), text(b, "subscr"), int_values(b, "subscnt"), int_values(b, "subsoffs"),
                       real_values(b, "vmap"), &how.flags, how.params.data(), &float_size, &status);
    check(status, entry);
}

void cut_connectivities(const Block& b, const Entry& entry, const Rows& rows, const std::int64_t* target,
                        std::int32_t float_size)
{
    const Storing how{b};
    const auto nele = static_cast<std::int32_t>(rows.size());
    const std::vector<std::int64_t> states = state_numbers(entry);
    const std::int32_t state = states.size() == 1 ? static_cast<std::int32_t>(states.front()) : -1;
    const auto idele = gather<std::int32_t>(b, "idele", rows, 1);
    const auto pid = gather<std::int32_t>(b, "pid", rows, 1);
    const auto ic = gather<std::int32_t>(b, "ic", rows, b.integer("npele", 0));
    const auto iparam = gather<std::int32_t>(b, "iparam", rows, b.integer("nbint", 0));
    const auto fparam = gather<double>(b, "fparam", rows, b.integer("nbfloat", 0));
    std::int32_t status = 0;
    KOB_WRITE_CONNECTIVITIES(target, text(b, "etyp"), text(b, "etypelem"), text(b, "etyppart"), text(b, "etypnode"),
                             text(b, "etypvar"), &nele, int_values(b, "npele"), int_values(b, "ndim"),
                             int_values(b, "nbint"), int_values(b, "nbfloat"), int_values(b, "nindex"),
                             int_values(b, "indexic"), int_values(b, "indexident"), real_values(b, "indexval"),
                             idele.data(), pid.data(), ic.data(), iparam.data(), fparam.data(), &state, &how.flags,
                             how.params.data(), &float_size, &status);
    check(status, entry);
}

void cut_results(const Block& b, const Entry& entry, const Rows& rows, const std::int64_t* target,
                 std::int32_t float_size)
{
    constexpr std::int32_t all_sections = 15;
    constexpr std::int32_t create = 0;
    constexpr std::int32_t nul_terminated = -1;
    constexpr std::int32_t memory_size = sizeof(double);
    constexpr std::int32_t whole = 0;
    constexpr std::int32_t complex_factor = 4; // a value size of 16 or 32 means pairs of 4 or 8 bytes
    const Storing how{b};
    const bool complex = b.kind->complex_key == b.key;
    const auto nent = static_cast<std::int32_t>(rows.size());
    const auto entid = gather<std::int32_t>(b, "entid", rows, 1);
    const auto fid =
        b.integer("fswitch", 0) == 1 ? gather<std::int32_t>(b, "fid", rows, 1) : std::vector<std::int32_t>{};
    const auto weight = b.integer("dmpswitch", 0) == 1 ? gather<double>(b, "weight", rows, 1) : std::vector<double>{};
    const auto res = gather<double>(b, "res", rows, b.integer("ncoo", 0) * (complex ? 2 : 1));
    const std::int32_t value_size = complex ? complex_factor * float_size : float_size;
    std::array<std::int64_t, 2> groups{-1, -1};
    std::int32_t status = 0;
    KOB_H5GOPEN(target, entry.path.c_str(), &nul_terminated, &create, groups.data(), &status);
    check(status, entry);
    KOB_WRITE_ENTITYRESULTS2(groups.data(), &all_sections, nullptr, text(b, "etyp"), &nent, text(b, "etypvar"),
                             int_values(b, "ncoo"), text(b, "etypzone"), int_values(b, "zoneid"), text(b, "etypframe"),
                             int_values(b, "fswitch"), int_values(b, "dmpswitch"), int_values(b, "nindex"),
                             int_values(b, "indexic"), int_values(b, "indexident"), real_values(b, "indexval"),
                             entid.data(), int_values(b, "fidglob"), fid.data(), text(b, "operator"), weight.data(),
                             res.data(), &memory_size, &how.flags, how.params.data(), &value_size, &whole, nullptr,
                             nullptr, &status);
    std::int32_t ignored = 0;
    KOB_H5GCLOSE(groups.data(), &ignored);
    check(status, entry);
}

/// The rows of a block that a domain holds.
Rows rows_of(const Block& block, const Partition& partition, std::size_t domain, const char* type, const char* ids,
             const char* count)
{
    return partition.rows(block.text(type), domain, int_values(block, ids),
                          static_cast<std::size_t>(std::max<std::int64_t>(block.integer(count, 0), 0)));
}

} // namespace

const std::int32_t* int_values(const Block& block, std::string_view name) { return values<std::int32_t>(block, name); }

const double* real_values(const Block& block, std::string_view name) { return values<double>(block, name); }

bool can_split(std::int32_t key)
{
    constexpr std::array<std::int32_t, 7> keys{10, 20, 30, 32, 300, 1000, 1001};
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

bool write_part(const Block& block, const Entry& entry, const Partition& partition, std::size_t domain,
                const std::int64_t* target, std::int32_t float_size)
{
    switch (block.key) {
    case 10:
        copy_system(block, entry, target, float_size);
        return true;
    case 20:
        copy_index(block, entry, target);
        return true;
    case 30:
        copy_variable(block, entry, target, float_size);
        return true;
    case 32:
        copy_variable_group(block, entry, target);
        return true;
    case 300: {
        const Rows rows = rows_of(block, partition, domain, "etypelem", "idele", "nele");
        if (rows.empty()) return false;
        cut_connectivities(block, entry, rows, target, float_size);
        return true;
    }
    case 1000:
    case 1001: {
        const Rows rows = rows_of(block, partition, domain, "etyp", "entid", "nent");
        if (rows.empty()) return false;
        cut_results(block, entry, rows, target, float_size);
        return true;
    }
    default:
        return false;
    }
}

} // namespace kob::program
