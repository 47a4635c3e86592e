// SPDX-License-Identifier: BSD-3-Clause
// The two families.
#include "kob_family.hpp"

namespace kob {
namespace {

constexpr Family current{Generation::current, version_of(Generation::current), kob_lookup,
                         KOB_READ_FILEHEADER, KOB_WRITE_MULTIENTITYRESULTS2,   KOB_READ_MULTIENTITYRESULTS2,
                         "MAXINDEX"};
constexpr Family older{Generation::older,    version_of(Generation::older),  kob1_lookup,
                       KOB1_READ_FILEHEADER, KOB1_WRITE_MULTIENTITYRESULTS2, KOB1_READ_MULTIENTITYRESULTS2,
                       "MAXINDEX1"};

} // namespace

const Family& family_of(Generation generation) { return generation == Generation::current ? current : older; }

} // namespace kob
