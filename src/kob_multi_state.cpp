// SPDX-License-Identifier: BSD-3-Clause
// The number of states that a growing series holds.
#include "kob_multi_state.hpp"

#include <algorithm>
#include <utility>

namespace kob {

std::int32_t open_nstate(Writer& io, Id& nstate, Report report)
{
    return KOB_H5Aopen("nstate", io.place(Where::header), report, nstate);
}

std::int32_t end_states(Writer& io, const char* values, bool is_new, Id opened)
{
    std::int32_t nstate = 0;
    const std::int64_t held = io.leading_extent();
    if (io.ok() && held > 0) {
        nstate = static_cast<std::int32_t>(std::min<std::int64_t>(held, INT32_MAX));
    } else if (opened) {
        H5Aread(opened.get(), H5T_NATIVE_INT, &nstate);
    }
    if (!io.ok()) {
        const std::int64_t rows = count_rows(io.place(Where::data), values);
        if (rows >= 0 || is_new) {
            cut_rows(io.place(Where::index), "indexident", std::max<std::int64_t>(rows, 0));
            cut_rows(io.place(Where::index), "indexval", std::max<std::int64_t>(rows, 0));
        }
    } else if (opened && held > 0) {
        io.rewrite("nstate", nstate, std::move(opened));
    } else if (is_new || held > 0) {
        io.integer("nstate", &nstate);
    }
    return nstate;
}

bool refuse_negative(std::int32_t states, const BlockKind& kind)
{
    if (states < 0) {
        report_error(message::writing_name, kind.name);
    }
    return states < 0;
}

} // namespace kob
