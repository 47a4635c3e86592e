#!/bin/bash
# SPDX-License-Identifier: BSD-3-Clause
# Prints the mesh of the hexahedra examples with FACTOR times as many elements in each direction.
set -euo pipefail

factor=${1:-}
[[ $factor =~ ^[1-9][0-9]?$ ]] && [ "$factor" -le 40 ] || {
    echo "usage: finer_mesh.sh FACTOR >hexahedra.msh, with a FACTOR of 1 to 40" >&2
    exit 2
}

awk -v factor="$factor" '
    function node(i, j, k) { return 10000 * (i + 1) + 100 * j + k + 1 }
    function list(i,    j, k) { for (j = 0; j <= n; ++j) for (k = 0; k <= n; ++k) print node(i, j, k) "," }
    BEGIN {
        m = 10 * factor; n = 2 * factor
        print "** a beam of 100 x 10 x 10 mm in " m " x " n " x " n " hexahedra"
        print "*NODE"
        for (i = 0; i <= m; ++i) for (j = 0; j <= n; ++j) for (k = 0; k <= n; ++k)
            printf "%d, %.9g, %.9g, %.9g\n", node(i, j, k), 100 * i / m, 10 * j / n, 10 * k / n
        print "*ELEMENT, TYPE=C3D8I, ELSET=BEAM"
        for (i = 0; i < m; ++i) for (j = 0; j < n; ++j) for (k = 0; k < n; ++k)
            print ++element ", " node(i, j, k) ", " node(i + 1, j, k) ", " node(i + 1, j + 1, k) ", " \
                  node(i, j + 1, k) ", " node(i, j, k + 1) ", " node(i + 1, j, k + 1) ", " \
                  node(i + 1, j + 1, k + 1) ", " node(i, j + 1, k + 1)
        print "*NSET, NSET=ALL"
        for (i = 0; i <= m; ++i) list(i)
        print "*NSET, NSET=CLAMPED"
        list(0)
        print "*NSET, NSET=TIP"
        list(m)
    }'
