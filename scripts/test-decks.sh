#!/bin/bash
# SPDX-License-Identifier: BSD-3-Clause
# Runs the solver on every deck of the Debian package calculix-ccx-test, imports each result and compares every number
# with the text file. A deck is run as it is and with requests for more results added to each step, since most decks ask
# for few. Arguments: names of decks; none: all. DECK_SECONDS: time limit of a run, 60.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

limit=${DECK_SECONDS:-60}
tests=$PWD/build/dev/tests/kob_tools_tests
known=$PWD/tests/tools/refused_decks.txt
decks=$(scripts/fetch-decks.sh)
jobs=$(nproc)

command -v ccx >/dev/null || { echo "test-decks: no solver ccx; install the Debian package calculix-ccx" >&2; exit 1; }
[ $# -gt 0 ] || set -- $(cd "$decks" && printf '%s\n' *.inp | sed 's/\.inp$//')

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Every step asks for the usual results.
with_more_results() # with_more_results FROM TO
{
    awk 'toupper($0) ~ /^\*END *STEP/ { print "*NODE FILE\nU, RF, NT\n*EL FILE\nS, E, PEEQ, ENER, ERR" } { print }' "$1" >"$2"
}

solve() # solve FOLDER DECK: success when the solver came to an end; it says so in the last record, not always in its status
{
    (cd "$1" && OMP_NUM_THREADS=1 timeout "$limit" ccx "$2" >"$2.log" 2>&1) 2>/dev/null &&
        [ "$(tail -n 1 "$1/$2.frd" 2>/dev/null)" = " 9999" ]
}

one() # one DECK: writes what became of it into files of its folder
{
    local name=$1 folder=$work/$1 status=refused
    mkdir -p "$folder/plain" "$folder/more"
    # Some decks read files that other decks come with.
    ln -s "$decks"/* "$folder/plain" && rm "$folder/plain/$name.inp" && cp "$decks/$name.inp" "$folder/plain"
    cp -P "$folder/plain"/* "$folder/more" && rm "$folder/more/$name.inp"
    with_more_results "$decks/$name.inp" "$folder/more/$name.inp"
    if solve "$folder/plain" "$name"; then
        status=plain
        echo "$folder/plain/$name.frd" >>"$folder/list"
    fi
    if solve "$folder/more" "$name"; then
        [ "$status" = plain ] && status=both || status=more
        echo "$folder/more/$name.frd" >>"$folder/list"
    fi
    echo "$name $status" >"$folder/status"
    # Each deck is compared by itself, and its results go at once: all together they are large.
    if [ -s "$folder/list" ]; then
        KOB_FRD_LIST=$folder/list "$tests" --gtest_filter='ImportList.*' >"$folder/log" 2>&1 || echo "$name FAILED" >"$folder/status"
    fi
    rm -rf "$folder/plain" "$folder/more"
}
export -f one solve with_more_results
export work decks limit tests

printf '%s\n' "$@" | xargs -P "$jobs" -I{} bash -c 'one "$1"' _ {}

cat "$work"/*/status | LC_ALL=C sort >"$work/all"
count() { grep -c " $1\$" "$work/all" || true; }
for name in $(sed -n 's/ FAILED$//p' "$work/all"); do
    echo "== $name"
    cat "$work/$name/log"
done
sed -n 's/ refused$//p' "$work/all" >"$work/refused"
news=$(LC_ALL=C comm -23 "$work/refused" <(grep -v "^#" "$known" | LC_ALL=C sort))
if [ -n "$news" ]; then
    echo "The solver refused these decks, which are not in tests/tools/refused_decks.txt:"
    echo "$news"
fi
echo "Decks: $# run; compared as they are and with more results: $(count both), in one of the two ways:" \
    "$(($(count plain) + $(count more))); refused by the solver: $(count refused)"
echo "$(($# - $(count refused) - $(count FAILED))) passed, $(count FAILED) failed"
[ "$(count FAILED)" -eq 0 ] && [ -z "$news" ]
