// SPDX-License-Identifier: BSD-3-Clause
// A growing series through the library: a call for each state.
#include "ours.hpp"
#include "series.hpp"

#include <memory>

namespace bench {
namespace {

Work append(const SeriesSet& set, const std::string& file, Digest*)
{
    return [set, file, state = std::make_shared<State>(set)] {
        State& s = *state;
        const File results{file, create};
        const std::int32_t no_set = -1;
        const std::int32_t eight_bytes = 8;
        const FilterArguments filters{set.packing};
        for (std::int32_t step = 0; step < set.states; ++step) {
            s.select(step);
            const std::int32_t row = step == 0 ? 1 : -step; // a run of one state, then single states
            std::int32_t status = 0;
            KOB_WRITE_MULTIENTITYRESULTS(results.group(), s.series.data(), s.etyp.data(), &s.nent, s.etypvar.data(),
                                         &s.ncoo, s.etypzone.data(), &s.zoneid, s.etypframe.data(), &s.fswitch,
                                         &s.dmpswitch, &s.nindex, &s.indexident, &s.indexval, s.entid.data(),
                                         &s.fidglob, nullptr, nullptr, nullptr, s.res.data(), &no_set, &row,
                                         &filters.flags, filters.params.data(), &eight_bytes, &status);
            check(status, "KOB_WRITE_MULTIENTITYRESULTS");
        }
    };
}

} // namespace

template <> const Program<SeriesSet> Programs<SeriesSet>::ours{append};

} // namespace bench
