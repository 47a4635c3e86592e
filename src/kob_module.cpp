// SPDX-License-Identifier: BSD-3-Clause
// What the library says about itself, and the chunk-size setting.
#include "kob_module.hpp"

#include "kob_dp.h"

namespace {

// Plain and unprotected on purpose: callers set it once, before they write.
int32_t chunk_size_setting = 1;

} // namespace

namespace kob {

std::int32_t chunk_size() noexcept { return chunk_size_setting; }

} // namespace kob

extern "C" {

void KOB_SET_CHUNK_SIZE(const int32_t* size)
{
    if (size != nullptr) {
        chunk_size_setting = *size;
    }
}

void KOB_GET_CHUNK_SIZE(int32_t* size)
{
    if (size != nullptr) {
        *size = chunk_size_setting;
    }
}

const char* KOB_get_revision(void) { return "c21b29d"; }

const char* KOB_get_module_description(void) { return "legacy API for reading/writing kobh5 files"; }

const char* KOB_get_build_info(void)
{
    return "kob version 2.2.16+c21b29d (cl: 192930159; icx: 20220200) - (c) the kob_dp developers, BSD-3-Clause";
}

const char* KOB_get_module_info(int32_t which)
{
    switch (which) {
    case 0:
        return KOB_get_module_description();
    case 1:
        return " kob version 2.2.16";
    default:
        return KOB_get_build_info();
    }
}

} // extern "C"
