#!/bin/bash
# SPDX-License-Identifier: BSD-3-Clause
# Installs a build, then builds and runs a C program against the installed tree with CMake and with pkg-config;
# then moves the tree and does it again. The example in the README is one of the programs.
# usage: run.sh BUILD_FOLDER LIBRARY_FOLDER   (LIBRARY_FOLDER as in CMAKE_INSTALL_LIBDIR)
set -euo pipefail

build=$1 libdir=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset LD_LIBRARY_PATH

expect() # expect title expected actual
{
    [ "$2" = "$3" ] && return
    printf '%s\n  expected: %s\n  found:    %s\n' "$1" "$2" "$3"
    exit 1
}

quietly()
{
    "$@" >"$work/log" 2>&1 || {
        cat "$work/log"
        exit 1
    }
}

compile() # compile source program, as the README says
{
    local flags
    read -ra flags <<<"$(pkg-config --cflags --libs kob_dp)"
    quietly "${CC:-cc}" -std=c99 -pedantic -Wall -Wextra -Werror "$1" -o "$2" "${flags[@]}" \
        -Wl,-rpath,"$(pkg-config --variable=libdir kob_dp)"
}

use() # use prefix
{
    local prefix=$1 good="version 2 2 16, status 0"

    rm -rf "$work/build"
    quietly cmake -S "$here" -B "$work/build" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release
    quietly cmake --build "$work/build"
    expect "with CMake" "$good" "$("$work/build/consumer" "$work/cmake.kob")"

    export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
    expect "version of the package" "2.2.16" "$(pkg-config --modversion kob_dp)"
    compile "$here/consumer.c" "$work/consumer"
    expect "with pkg-config" "$good" "$("$work/consumer" "$work/pkg-config.kob")"

    sed -n '/^```c$/,/^```$/p' "$here/../../README.md" | sed '/^```/d' >"$work/example.c"
    compile "$work/example.c" "$work/example"
    expect "the README's example" "$(sed -n '/^```text$/,/^```$/p' "$here/../../README.md" | sed '/^```/d')" \
        "$(cd "$work" && ./example)"

    [ ! -e "$build/kob" ] || quietly "$prefix/bin/kob" --help
}

quietly cmake --install "$build" --prefix "$work/first"
use "$work/first"
mv "$work/first" "$work/second"
use "$work/second"

if grep -rIl -e "$work" -e "$build" "$work/second"; then
    echo "the files above name the place where they were built or installed"
    exit 1
fi
