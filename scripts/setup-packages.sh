#!/bin/bash
# SPDX-License-Identifier: BSD-3-Clause
# Installs the Debian packages named as arguments, those that are missing only.
set -euo pipefail

fail()
{
    echo "kob_dp set-up: $*" >&2
    exit 1
}

installed()
{
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

command -v dpkg-query >/dev/null && command -v apt-get >/dev/null ||
    fail "this machine has no apt; install the equivalents of these packages by hand and build with CMake: $*"

missing=()
for package in "$@"; do
    installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if sudo -n true 2>/dev/null; then
        as_root=(sudo -n)
    elif [ -t 0 ] && sudo true 2>/dev/null; then
        as_root=(sudo)
    else
        fail "not root and no sudo: ask an administrator to run: apt-get install ${missing[*]}"
    fi
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
apt() # several set-ups at once wait for each other
{
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300 "$@" >"$log" 2>&1
}

echo "Installing Debian packages: ${missing[*]}"
# Fresh lists first: the lists of an old image name files that the archive no longer has.
apt update || fail "apt-get update failed ($(grep -m 1 '^[EW]:' "$log" || tail -n 1 "$log")); check the network, then run it again"
apt install -y --no-install-recommends "${missing[@]}" ||
    fail "apt-get install ${missing[*]} failed ($(grep -m 1 '^E:' "$log" || tail -n 1 "$log")); mend that, then run it again"
