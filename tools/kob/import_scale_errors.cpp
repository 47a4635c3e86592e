// SPDX-License-Identifier: BSD-3-Clause
// Reads scaled values back.

#include "import_scale_errors.hpp"

#include "block_reader.hpp"
#include "terminal.hpp"
#include "verbs.hpp"

#include <kob_dp.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace kob::program {

namespace {

using Field = std::array<char, 256>;

/// The group of a block, open until the end of the scope.
class OpenedBlock {
public:
    OpenedBlock(const std::int64_t& group, const WrittenBlock& block)
    {
        std::array<Field, 5> names{};
        std::int32_t mask = 0;
        for (std::size_t i = 0; i < block.names.size(); ++i) {
            names.at(i).fill(' ');
            block.names[i].copy(names.at(i).data(), names.at(i).size());
            mask |= 1 << i;
        }
        constexpr std::int32_t open_only = 1;
        std::int32_t status = 0;
        KOB_OPENAUTOPATH(&group, &mask, nullptr, &open_only, &block.states, &block.state, &block.state, names[0].data(),
                         names[1].data(), names[2].data(), names[3].data(), names[4].data(), &block.number, &block.set,
                         &handle_, &status);
        if (status < 0) {
            throw Failure{exit_cannot_read, fmt::format("cannot read {} back (status {})", block.kind, status)};
        }
    }
    ~OpenedBlock()
    {
        std::int32_t status = 0;
        KOB_H5GCLOSE(&handle_, &status);
    }
    OpenedBlock(const OpenedBlock&) = delete;
    OpenedBlock& operator=(const OpenedBlock&) = delete;

    const std::int64_t* handle() const { return &handle_; }

private:
    std::int64_t handle_ = -1;
};

/// Numbers that are equal, or both none, have no error; one that is lost has an infinite one.
double error_of(double given, double found)
{
    if (given == found || (std::isnan(given) && std::isnan(found))) return 0;
    const double error = std::abs(given - found);
    return std::isnan(error) ? std::numeric_limits<double>::infinity() : error;
}

} // namespace

void ScaleErrors::measure(const std::int64_t& group, const WrittenBlock& block, const std::string& variable,
                          const std::vector<double>& given)
{
    const auto& kinds = all_kinds();
    const auto kind =
        std::find_if(kinds.begin(), kinds.end(), [&](const Kind& known) { return known.name == block.kind; });
    const OpenedBlock opened{group, block};
    // With all rows asked for by number, of a series no more than the first and the last state are read.
    const std::int64_t rows = block.states < 0 ? std::numeric_limits<std::int32_t>::max() : all_rows;
    const Block read = read_open_block(opened.handle(), {0, block.complex ? kind->complex_key : kind->key, variable},
                                       Depth::values, rows);
    const Item& values = *read.find(kind->main == "res" ? "res" : "val");
    const auto count = static_cast<std::int64_t>(given.size());
    const std::int64_t first = values.read_count() - count;
    if (first < 0) {
        throw Failure{exit_cannot_read, fmt::format("{}: fewer values came back than were written", variable)};
    }
    double& largest = largest_[variable];
    for (std::int64_t i = 0; i < count; ++i) {
        largest = std::max(largest, error_of(given[static_cast<std::size_t>(i)], values.real(first + i)));
    }
}

} // namespace kob::program
