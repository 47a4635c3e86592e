#!/bin/bash
# SPDX-License-Identifier: BSD-3-Clause
# Downloads the source of HDF5 into the file named as argument, from the archive in the machine's own apt configuration.
set -euo pipefail

target=$1
path=pool/main/h/hdf5/hdf5_1.14.6+repack.orig.tar.gz
sha256=c18bc47d07f76a5c2cfb70773bfe4152857e48ca4c96e7aef2684c96fa0e6a7c
way_out="or set KOB_HDF5_ROOT to the folder of an HDF5 >= 1.14.6"
helper=/usr/lib/apt/apt-helper

fail()
{
    echo "kob_dp set-up: $*" >&2
    exit 1
}

# Addresses of the archives with a "main" component. Security archives carry only what they mended. The machine's own
# release comes first, so that archives of others are asked only when it is no help.
archives()
{
    local codename
    codename=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")
    apt-get indextargets --no-release-info --format '$(RELEASE) $(COMPONENT) $(REPO_URI)' 'Created-By: Packages' |
        awk -v codename="$codename" '$2 == "main" && $0 !~ /security/ && $3 !~ /^cdrom:/ && !seen[$3]++ {
            print ($1 == codename ? 0 : 1), $3 }' |
        sort -s -n -k 1,1 | cut -d ' ' -f 2
}

[ -x "$helper" ] || fail "no $helper on this machine; build HDF5 1.14.6 yourself and set KOB_HDF5_ROOT to its folder"
mapfile -t uris < <(archives)
[ ${#uris[@]} -gt 0 ] || fail "apt's sources name no main archive to fetch HDF5 from; add one, $way_out"

problem=""
for uri in "${uris[@]}"; do
    if log=$("$helper" download-file "${uri%/}/$path" "$target" "SHA256:$sha256" 2>&1) &&
        echo "$sha256  $target" | sha256sum --check --status 2>/dev/null; then
        exit 0
    fi
    rm -f "$target" "$target.FAILED"
    case $log in
    *"Hash Sum mismatch"*) problem=checksum ;;
    *" 404 "* | *"File not found"*) problem=${problem:-gone} ;;
    *) [ "$problem" = checksum ] || problem=network ;;
    esac
done
case $problem in
checksum) fail "wrong checksum of ${path##*/}; a proxy or the archive altered it: try again later, $way_out" ;;
gone) fail "the archive no longer holds ${path##*/}; build HDF5 1.14.6 yourself and set KOB_HDF5_ROOT to its folder" ;;
*) fail "cannot download ${path##*/} (${uris[0]}); check the network and apt's proxy, $way_out" ;;
esac
