// SPDX-License-Identifier: BSD-3-Clause
// The entry points of a generation that the whole-file tools call: a tool is written once and takes a family.
#pragma once

#include "kob_dp.h"
#include "kob_module.hpp"

namespace kob {

/// What a tool needs of one generation. Entry points of both have the same arguments where they stand here.
struct Family {
    Generation generation;
    Version version;
    decltype(&kob_lookup) lookup;
    decltype(&KOB_READ_FILEHEADER) read_header;
    decltype(&KOB_WRITE_MULTIENTITYRESULTS2) write_series;
    decltype(&KOB_READ_MULTIENTITYRESULTS2) read_series;
    const char* index_limit; ///< what the merger calls the most index values that it takes
};

const Family& family_of(Generation generation);

} // namespace kob
