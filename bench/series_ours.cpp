// SPDX-License-Identifier: BSD-3-Clause
// Growing series through the library: a call for each state.
#include "ours.hpp"
#include "series.hpp"

#include <array>
#include <memory>
#include <optional>
#include <string>

namespace bench {
namespace {

const Text256 run = text256("RUN");

/// Adds a state to the series of the block's variable.
void append_state(const File& results, const Block& b, std::int32_t step, const FilterArguments& filters)
{
    const std::int32_t no_set = -1;
    const std::int32_t eight_bytes = 8;
    const std::int32_t row = step == 0 ? 1 : -step; // a run of one state, then single states
    std::int32_t status = 0;
    KOB_WRITE_MULTIENTITYRESULTS(results.group(), run.data(), b.etyp.data(), &b.nent, b.etypvar.data(), &b.ncoo,
                                 b.etypzone.data(), &b.zoneid, b.etypframe.data(), &b.fswitch, &b.dmpswitch, &b.nindex,
                                 &b.indexident, &b.indexval, b.entid.data(), &b.fidglob, nullptr, nullptr, nullptr,
                                 b.res.data(), &no_set, &row, &filters.flags, filters.params.data(), &eight_bytes,
                                 &status);
    check(status, "KOB_WRITE_MULTIENTITYRESULTS");
}

/// Adds a state to a series whose block is open.
void append_state(const OpenBlock& block, const Block& b, std::int32_t step, const FilterArguments& filters)
{
    const std::int32_t eight_bytes = 8;
    const std::int32_t not_used = 0;
    const std::int32_t by_block = 1;
    const std::array<std::int64_t, 3> count{1, b.nent, b.ncoo};
    const std::array<std::int64_t, 3> start{step, 0, 0};
    std::int32_t nstate = 0;
    std::int32_t status = 0;
    KOB_WRITE_MULTIENTITYRESULTS2(block.group(), nullptr, nullptr, run.data(), b.etyp.data(), &b.nent, b.etypvar.data(),
                                  &b.ncoo, b.etypzone.data(), &b.zoneid, b.etypframe.data(), &b.fswitch, &b.dmpswitch,
                                  &b.nindex, &b.indexident, &b.indexval, b.entid.data(), &b.fidglob, nullptr, nullptr,
                                  nullptr, b.res.data(), &eight_bytes, &not_used, &filters.flags, filters.params.data(),
                                  &eight_bytes, &by_block, count.data(), start.data(), &nstate, &status);
    check(status, "KOB_WRITE_MULTIENTITYRESULTS2");
}

std::string series_path(const std::string& variable)
{
    return "multistate/RUN/multientityresults/NODE/" + variable + "/kobblock";
}

Work append(const SeriesSet& set, const std::string& file, Digest*)
{
    return [set, file, state = std::make_shared<State>(set)] {
        const File results{file, create};
        const FilterArguments filters{set.packing};
        std::optional<OpenBlock> block;
        for (std::int32_t step = 0; step < set.states; ++step) {
            state->select(step);
            if (block) {
                append_state(*block, *state, step, filters);
            } else {
                append_state(results, *state, step, filters);
            }
            if (set.stays_open && !block) {
                block.emplace(results, series_path("DISPLACEMENT"));
            }
        }
    };
}

Work write(const ResultSet& set, const std::string& file, Digest*)
{
    return [set, file, block = std::make_shared<Block>(set)] {
        const File results{file, create};
        const FilterArguments filters{set.packing};
        for (std::int32_t state = 0; state < set.states; ++state) {
            for (std::size_t variable = 0; variable < set.variables.size(); ++variable) {
                block->select(set, state, variable);
                append_state(results, *block, state, filters);
            }
        }
    };
}

/// The values of a state, into the block.
void read_state(const OpenBlock& series, Block& b, std::int32_t state)
{
    const std::int32_t values_of_state = 3;
    const std::int32_t whole = 0;
    std::int32_t filters = 0;
    std::array<std::int32_t, 2> params{};
    std::int32_t status = 0;
    KOB_READ_MULTIENTITYRESULTC(series.group(), &values_of_state, nullptr, nullptr, &b.nent, nullptr, &b.ncoo, nullptr,
                                nullptr, nullptr, &b.fswitch, &b.dmpswitch, &b.nindex, &state, nullptr, nullptr,
                                nullptr, nullptr, nullptr, nullptr, nullptr, b.res.data(), &filters, params.data(),
                                &whole, nullptr, nullptr, &status);
    check(status, "KOB_READ_MULTIENTITYRESULTC");
}

Work read(const ResultSet& set, const std::string& file, Digest* digest)
{
    return [set, file, digest, block = std::make_shared<Block>(set)] {
        const File results{file, read_only};
        std::vector<std::unique_ptr<OpenBlock>> series;
        for (const std::string& variable : set.variables) {
            series.push_back(std::make_unique<OpenBlock>(results, series_path(variable)));
        }
        for (std::int32_t state = 0; state < set.states; ++state) {
            for (const auto& of_variable : series) {
                read_state(*of_variable, *block, state);
                if (digest != nullptr) {
                    digest->add(block->res);
                }
            }
        }
    };
}

} // namespace

template <> const Program<SeriesSet> Programs<SeriesSet>::ours{append};

const Program<ResultSet> ours_in_series{write, read};

} // namespace bench
