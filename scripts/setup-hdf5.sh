#!/bin/bash
# SPDX-License-Identifier: BSD-3-Clause
# Sees to an HDF5 >= 1.14.6: KOB_HDF5_ROOT, or one that CMake finds, or one built once into the user's cache folder.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
version=1.14.6
cache=${XDG_CACHE_HOME:-${HOME:?kob_dp set-up: neither HOME nor XDG_CACHE_HOME is set; set one of them}/.cache}/kob_dp
prefix=$cache/hdf5-$version
options=(-DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON -DBUILD_STATIC_LIBS=OFF -DBUILD_TESTING=OFF
    -DHDF5_ENABLE_THREADSAFE=ON -DHDF5_ENABLE_Z_LIB_SUPPORT=ON -DHDF5_ENABLE_SZIP_SUPPORT=OFF
    -DHDF5_BUILD_TOOLS=ON -DHDF5_BUILD_HL_LIB=OFF -DHDF5_BUILD_CPP_LIB=OFF -DHDF5_BUILD_EXAMPLES=OFF)

fail()
{
    echo "kob_dp set-up: $*" >&2
    exit 1
}

# The version that a folder's headers state, empty without them.
version_in()
{
    local header=$1/include/H5public.h
    [ -r "$header" ] || return 0
    awk '/^#define H5_VERS_(MAJOR|MINOR|RELEASE) / { printf "%s%s", sep, $3; sep = "." }' "$header"
}

built() # the stamp tells how, so that other options lead to a new build
{
    [ -e "$prefix/lib/libhdf5.so" ] && [ "$(cat "$prefix/kob_dp.stamp" 2>/dev/null)" = "${options[*]}" ]
}

if [ -n "${KOB_HDF5_ROOT:-}" ]; then
    found=$(version_in "$KOB_HDF5_ROOT")
    [ -n "$found" ] || fail "KOB_HDF5_ROOT=$KOB_HDF5_ROOT has no include/H5public.h; set it to a folder with HDF5 >= $version or unset it"
    [ "$(printf '%s\n' "$version" "$found" | sort -V | head -n 1)" = "$version" ] ||
        fail "KOB_HDF5_ROOT=$KOB_HDF5_ROOT holds HDF5 $found; set it to a folder with HDF5 >= $version or unset it"
    exit 0
fi
built && exit 0

work=""
trap '[ -z "$work" ] || rm -rf "$work"' EXIT
work=$(mktemp -d)
if cmake -S "$here/../cmake/probe" -B "$work" >"$work/log" 2>&1; then
    exit 0
fi
rm -rf "$work"
work=""

mkdir -p "$cache" 2>/dev/null && [ -w "$cache" ] || fail "cannot write to $cache; set XDG_CACHE_HOME to a folder of yours"
exec 9>"$cache/lock"
if ! flock -n 9; then
    echo "Waiting for another set-up of HDF5 to end"
    flock 9
fi
built && exit 0

# Built beside its place and renamed when complete: a set-up that was interrupted leaves nothing half done there.
rm -rf "$cache"/build.*
work=$(mktemp -d "$cache/build.XXXXXX")
log=$cache/hdf5-build.log
echo "Fetching HDF5 $version"
"$here/fetch-hdf5.sh" "$work/source.tar.gz" || exit 1
echo "Building HDF5 $version (about a minute on 2 cores)"
mkdir "$work/source"
{
    tar -xzf "$work/source.tar.gz" -C "$work/source" --strip-components=1 &&
        cmake -G Ninja -S "$work/source" -B "$work/build" -DCMAKE_INSTALL_PREFIX="$prefix" "${options[@]}" &&
        cmake --build "$work/build" &&
        DESTDIR=$work/stage cmake --install "$work/build"
} >"$log" 2>&1 || fail "building HDF5 $version failed, see $log; mend that, or set KOB_HDF5_ROOT to an HDF5 >= $version"
echo "${options[*]}" >"$work/stage$prefix/kob_dp.stamp"
rm -rf "$prefix"
mv "$work/stage$prefix" "$prefix"
