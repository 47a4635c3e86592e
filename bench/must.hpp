// SPDX-License-Identifier: BSD-3-Clause
// Checks calls of plain HDF5.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace bench {

/// Hands the result through. A failure ends the process: nothing may unwind through HDF5's callbacks.
template <class Result> Result must(Result result)
{
    if (result < 0) {
        std::fputs("kob_bench: a call of plain HDF5 failed\n", stderr);
        std::_Exit(3);
    }
    return result;
}

} // namespace bench
