#!/bin/bash
# SPDX-License-Identifier: BSD-3-Clause
# The set-up says in one line what to do about each failure. An archive of our own on this machine plays the mirror.
# usage: setup_test.sh SCRIPTS_FOLDER
set -euo pipefail

scripts=$1
file=pool/main/h/hdf5/hdf5_1.14.6+repack.orig.tar.gz
work=$(mktemp -d)
chmod 755 "$work"
server=""
trap '[ -z "$server" ] || kill "$server"; rm -rf "$work"' EXIT
unset KOB_HDF5_ROOT http_proxy https_proxy HTTP_PROXY HTTPS_PROXY
failures=0

expect() # expect title text-of-the-one-line command...
{
    local title=$1 text=$2 status=0 lines
    shift 2
    "$@" >"$work/out" 2>"$work/err" || status=$?
    lines=$(wc -l <"$work/err")
    if [ "$status" -eq 1 ] && [ "$lines" -eq 1 ] && grep -qF -- "$text" "$work/err"; then
        echo "ok      $title"
    else
        echo "not ok  $title: status $status, $lines lines, expected \"$text\" in"
        cat "$work/err"
        failures=$((failures + 1))
    fi
}

succeed() # succeed title command...
{
    local title=$1
    shift
    if "$@" >"$work/out" 2>&1; then
        echo "ok      $title"
    else
        echo "not ok  $title"
        cat "$work/out"
        failures=$((failures + 1))
    fi
}

use_archive() # use_archive port
{
    printf 'deb [trusted=yes] http://127.0.0.1:%s/debian %s main\n' \
        "$1" bookworm-security "$1" bookworm >"$work/sources.list"
    cat >"$work/apt.conf" <<END
Dir::Etc::sourcelist "$work/sources.list";
Dir::Etc::sourceparts "/dev/null";
Dir::State::lists "$work/lists";
Acquire::http::Proxy::127.0.0.1 "DIRECT";
Acquire::Retries "0";
END
    mkdir -p "$work/lists/partial"
    export APT_CONFIG=$work/apt.conf
}

mkdir -p "$work/www/debian/$(dirname "$file")"
/usr/bin/python3 -u -m http.server 0 --bind 127.0.0.1 --directory "$work/www" >"$work/server" 2>&1 &
server=$!
for _ in $(seq 100); do
    port=$(grep -oP 'port \K[0-9]+' "$work/server") && break
    sleep 0.1
done

use_archive "$port"
expect "the file is gone from the archive" "no longer holds" "$scripts/fetch-hdf5.sh" "$work/source.tar.gz"
echo "something else" >"$work/www/debian/$file"
expect "the checksum is wrong" "wrong checksum" "$scripts/fetch-hdf5.sh" "$work/source.tar.gz"
if [ -e "$work/source.tar.gz" ] || [ -e "$work/source.tar.gz.FAILED" ]; then
    echo "not ok  a file with a wrong checksum stays behind"
    failures=$((failures + 1))
fi
use_archive 9 # nobody listens on the discard port
expect "there is no network" "check the network" "$scripts/fetch-hdf5.sh" "$work/source.tar.gz"
: >"$work/sources.list"
expect "apt has no sources" "apt's sources name no main archive" "$scripts/fetch-hdf5.sh" "$work/source.tar.gz"
unset APT_CONFIG

fake_hdf5() # fake_hdf5 folder major minor release
{
    mkdir -p "$1/include"
    printf '#define H5_VERS_MAJOR %s\n#define H5_VERS_MINOR %s\n#define H5_VERS_RELEASE %s\n' "${@:2}" \
        >"$1/include/H5public.h"
}
fake_hdf5 "$work/older" 1 14 5
fake_hdf5 "$work/newer" 2 0 0
expect "KOB_HDF5_ROOT is no folder of HDF5" "has no include/H5public.h" \
    env KOB_HDF5_ROOT="$work" "$scripts/setup-hdf5.sh"
expect "KOB_HDF5_ROOT is too old" "holds HDF5 1.14.5" env KOB_HDF5_ROOT="$work/older" "$scripts/setup-hdf5.sh"
succeed "KOB_HDF5_ROOT is newer" env KOB_HDF5_ROOT="$work/newer" "$scripts/setup-hdf5.sh"

# Not root, and a sudo that refuses.
mkdir "$work/bin"
printf '#!/bin/sh\nexit 1\n' >"$work/bin/sudo"
chmod 755 "$work/bin/sudo"
cp "$scripts/setup-packages.sh" "$work/bin"
as_user=()
[ "$(id -u)" -ne 0 ] || as_user=(setpriv --reuid 65534 --regid 65534 --clear-groups)
expect "not root" "apt-get install kob-no-such-package" \
    "${as_user[@]}" env PATH="$work/bin:$PATH" bash "$work/bin/setup-packages.sh" bash kob-no-such-package
succeed "not root, but nothing is missing" \
    "${as_user[@]}" env PATH="$work/bin:$PATH" bash "$work/bin/setup-packages.sh" bash

[ "$failures" -eq 0 ]
