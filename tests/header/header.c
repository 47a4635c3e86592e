/* SPDX-License-Identifier: BSD-3-Clause */
/* The public header before anything else, and twice: it stands alone and minds its guard. C99 and C++17. */
#include <kob_dp.h>

int main(void) { return KOB_strlen("header", 6) == 6 ? 0 : 1; }
