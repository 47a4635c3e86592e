# SPDX-License-Identifier: BSD-3-Clause
# Finds libdeflate and zlib and offers them as target kob_deflate.

find_package(PkgConfig REQUIRED)
pkg_check_modules(kob_libdeflate IMPORTED_TARGET libdeflate)
if(NOT kob_libdeflate_FOUND)
    message(FATAL_ERROR " No libdeflate found; run ./dev setup, or install its development package (libdeflate-dev)")
endif()
find_package(ZLIB REQUIRED)
add_library(kob_deflate INTERFACE)
target_link_libraries(kob_deflate INTERFACE PkgConfig::kob_libdeflate ZLIB::ZLIB)
