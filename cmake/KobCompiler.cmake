# SPDX-License-Identifier: BSD-3-Clause
# Warnings and sanitizers.

# kob_warnings(target): the warnings for all code here.
function(kob_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow)
    # GCC 12 sees uninitialized members in every std::optional that is empty.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    if(KOB_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# kob_strict_warnings(target): in what is delivered, no number changes its type unseen.
function(kob_strict_warnings target)
    kob_warnings(${target})
    target_compile_options(${target} PRIVATE -Wconversion $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>)
endfunction()

if(KOB_SANITIZE)
    add_compile_options(-fsanitize=${KOB_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${KOB_SANITIZE})
endif()
