#!/bin/bash
# SPDX-License-Identifier: BSD-3-Clause
# The library exports what the public header declares, no name more and no name less.
# usage: exported_names.sh LIBRARY HEADER
set -euo pipefail

library=$1 header=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

nm -D --defined-only "$library" | awk '$2 != "A" { print $3 }' | sort -u >"$work/exported"

# What the preprocessor leaves of the header itself, without what it includes: a function's name is the first word with
# an opening bracket behind it, once the attributes are gone.
"${CC:-cc}" -E "$header" |
    awk -v header="$header" '/^# [0-9]+ "/ { ours = index($0, "\"" header "\"") > 0; next } ours' |
    tr '\n' ' ' | tr ';{}' '\n\n\n' |
    sed -E 's/__attribute__ *\(\([^()]*(\([^()]*\))?[^()]*\)\)//g' |
    grep -v '\btypedef\b' | grep -oP '^[^(]*?\b\K\w+(?= *\()' | sort -u >"$work/declared"

if ! [ -s "$work/declared" ]; then
    echo "no declaration found in $header"
    exit 1
fi
if ! diff "$work/declared" "$work/exported" >"$work/differences"; then
    echo "< declared in $header only, > exported by $library only:"
    grep '^[<>]' "$work/differences"
    exit 1
fi
echo "$(wc -l <"$work/declared") names declared, the same names exported"
