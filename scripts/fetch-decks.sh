#!/bin/bash
# SPDX-License-Identifier: BSD-3-Clause
# Unpacks the input decks of the Debian package calculix-ccx-test, whose documentation folder slim machines leave out,
# into the user's cache folder: once. Prints the folder.
set -euo pipefail

cache=${XDG_CACHE_HOME:-${HOME:?kob_dp set-up: neither HOME nor XDG_CACHE_HOME is set; set one of them}/.cache}/kob_dp
decks=$cache/decks

fail()
{
    echo "kob_dp set-up: $*" >&2
    exit 1
}

mkdir -p "$cache" 2>/dev/null && [ -w "$cache" ] || fail "cannot write to $cache; set XDG_CACHE_HOME to a folder of yours"
exec 9>"$cache/decks.lock"
flock 9

if [ ! -e "$decks" ]; then
    command -v dpkg-deb >/dev/null && command -v apt-get >/dev/null || fail "the decks come from a Debian package and this machine has no apt"
    work=$(mktemp -d "$cache/decks.XXXXXX")
    trap 'rm -rf "$work"' EXIT
    cd "$work"
    # An old package list names files that the archive no longer has: refresh it when the download fails.
    apt-get -qq download calculix-ccx-test >log 2>&1 ||
        { { [ "$(id -u)" -ne 0 ] || apt-get -qq update >>log 2>&1; } && apt-get -qq download calculix-ccx-test >>log 2>&1; } ||
        fail "cannot download the Debian package calculix-ccx-test ($(grep -m 1 '^E:' log || tail -n 1 log)); check the network and apt-get update"
    dpkg-deb -x calculix-ccx-test_*.deb unpacked
    mkdir ready
    find unpacked -name '*.inp' -exec cp -t ready {} +
    find unpacked -name '*.inp.gz' -exec cp -t ready {} +
    gunzip ready/*.gz
    mv ready "$decks"
fi
echo "$decks"
