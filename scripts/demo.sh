#!/bin/bash
# SPDX-License-Identifier: BSD-3-Clause
# Runs a finite-element solver on a small deck, imports its results, lists them, and compares the largest displacement of
# each state, read back from the KOB file, with the solver's own printed numbers.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

deck=${1:-cantilever_hex_transient}
bin=$PWD/build/release

fail()
{
    echo "demo: $*" >&2
    exit 1
}

# The deck of matrices has no states to compare.
[ -f "examples/$deck.inp" ] && [[ $deck != *_matrices ]] || {
    echo "usage: ./dev demo [DECK], where DECK is one of:" >&2
    (cd examples && printf '  %s\n' ./*.inp) | grep -v _matrices | sed 's|\./||; s|\.inp$||' >&2
    exit 2
}
command -v ccx >/dev/null || fail "the solver ccx is not there; install the Debian package calculix-ccx"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp examples/*.inp examples/*.msh "$work"
cd "$work"

say() { printf '\n== %s\n' "$*"; }

say "The solver: ccx $deck"
OMP_NUM_THREADS=1 timeout 120 ccx "$deck" >solver.log 2>&1 || fail "the solver failed: $(grep -m 1 ERROR solver.log || tail -n 1 solver.log)"
ls -l "$deck.frd" | awk '{print $NF ", " $5 " bytes"}'

say "The import: kob import $deck.frd $deck.kob --units mm,t,s --deflate 6 --shuffle"
"$bin/kob" import "$deck.frd" "$deck.kob" --units mm,t,s --deflate 6 --shuffle

say "kob info $deck.kob"
"$bin/kob" info "$deck.kob"

say "kob ls $deck.kob"
"$bin/kob" ls "$deck.kob"

say "The largest displacement of each state: from the KOB file, and as the solver printed it"
"$bin/largest_displacement" "$deck.kob" >read.txt || fail "the KOB file cannot be read back"
# The solver prints a table for each state; of a harmonic response first the real parts, then the imaginary ones.
awk '
    function finish() { if (rows) { best = -1; for (n in sum) if (sum[n] > best) { best = sum[n]; at = n }
                                    printf "%10d  %.5E\n", at, sqrt(best) } rows = 0; delete sum }
    /displacements/ { if (tables++ % parts == 0) finish(); table = 1; next }
    /[A-DF-Za-z]/ { table = 0 } # the title of another table
    table && NF == 4 && $1 ~ /^[0-9]+$/ { sum[$1] += $2 * $2 + $3 * $3 + $4 * $4; rows++ }
    END { finish() }' parts="$(grep -q 'STEADY STATE' "$deck.inp" && echo 2 || echo 1)" "$deck.dat" >printed.txt
states=$(($(wc -l <read.txt) - 1))
[ "$states" -gt 0 ] && [ "$states" -eq "$(wc -l <printed.txt)" ] ||
    fail "the KOB file has $states states, the solver printed $(wc -l <printed.txt)"
{ echo "  solver: node  largest displacement"; cat printed.txt; } | paste -d '|' read.txt - | sed 's/|/   |/'

# Both are printed with six digits, so the last one may differ.
paste read.txt <(echo; cat printed.txt) | awk '
    NR > 1 { d = $4 - $6; if (d < 0) d = -d; if (d > 2e-5 * $6) { bad = 1; print "demo: state " $1 " differs" > "/dev/stderr" } }
    END { exit bad }' || fail "the numbers differ"
say "All $states states agree."
