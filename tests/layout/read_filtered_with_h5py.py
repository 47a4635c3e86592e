# SPDX-License-Identifier: BSD-3-Clause
"""Reads the file of filtered_results_test.cpp with h5py: every set against the unfiltered set 0 of its place."""
import re
import sys

import h5py
import numpy

sets = 0
with h5py.File(sys.argv[1], "r") as file:
    blocks = {}
    file["post"].visititems(lambda name, item: blocks.update({name: item}) if name.endswith("/kobblock") else None)
    for path, block in sorted(blocks.items()):
        number = int(re.search(r"_set(\d+)/", path).group(1))
        if number == 0:
            continue
        given = blocks[re.sub(r"_set\d+/", "_set0/", path)]["res"]
        found = block["res"]
        if found.chunks is None:
            sys.exit(f"{path}: not chunked")
        given_values, found_values = given[()].astype("f8"), found[()].astype("f8")
        same = (given_values == found_values) | (numpy.isnan(given_values) & numpy.isnan(found_values))
        if found.scaleoffset is None:
            if not same.all():
                sys.exit(f"{path}: {(~same).sum()} values differ")
        else:
            finite = given_values[numpy.isfinite(given_values)]
            largest = numpy.array(numpy.abs(finite).max(), dtype=given.dtype)
            allowed = 0.5 * 10.0 ** -found.scaleoffset * (1 + 1e-12) + float(numpy.spacing(largest))
            wrong = ~same & ~(numpy.abs(given_values - found_values) <= allowed)
            if wrong.any():
                sys.exit(f"{path}: {wrong.sum()} values are farther off than {allowed}")
        sets += 1

print(f"{sets} sets as expected")
