# SPDX-License-Identifier: BSD-3-Clause
"""Reads the file of reader_test.cpp with h5py and compares it with what that test wrote."""
import sys

import h5py
import numpy


def text(value):
    return value.decode("ascii").rstrip("\0 ")


def check(what, found, expected):
    if not numpy.array_equal(numpy.asarray(found), numpy.asarray(expected)):
        sys.exit(f"{what}: found {found}, expected {expected}")


with h5py.File(sys.argv[1], "r") as file:
    check("post", file["post"] == file["results"], True)
    top = file["post"]
    check("header", bytes(top["kobheader/kobheader"][()]).rstrip(), b"\x89KOB\r\n\x1a\n2 2 16")

    blocks = {}
    top.visititems(lambda name, item: blocks.update({name: item}) if name.endswith("/kobblock") else None)
    state = "singlestate/state000000000012/"
    check("paths", sorted(blocks), sorted([
        "constant/system/kobblock",
        "constant/indices/kobblock",
        "constant/variablegroup/DISPLACEMENT/kobblock",
        "constant/variable/STRESS/kobblock",
        state + "connectivities/HEXA8/kobblock",
        state + "entityresults/NODE/DISPLACEMENT/kobblock",
    ]))

    system = blocks["constant/system/kobblock"]
    check("system key", system.attrs["block"], 10)
    check("title", text(system.attrs["title"]), "Cantilever")
    check("ubnam", [text(name) for name in system["ubnam"]], ["kg", "m", "s"])
    check("udbexp", system["udbexp"], [1, 1, -2, 1, -2])

    check("nindex", blocks["constant/indices/kobblock"].attrs["nindex"], 1)
    group = blocks["constant/variablegroup/DISPLACEMENT/kobblock"]
    check("varkey", [text(key) for key in group["varkey"]], ["TRANSLATION", "ROTATION"])

    variable = blocks["constant/variable/STRESS/kobblock"]
    check("vmap shape", variable["vmap"].shape, (3, 3, 3))
    check("vmap scale-offset", variable["vmap"].scaleoffset, 3)
    check("vmap rounded", numpy.abs(variable["vmap"][0, 0, 0] - 0.1) < 0.0005, True)

    elements = blocks[state + "connectivities/HEXA8/kobblock"]
    check("ic", elements["ic"], numpy.arange(1000, 1032).reshape(4, 8))
    check("ic filters", [elements["ic"].compression, elements["ic"].compression_opts, elements["ic"].shuffle],
          ["gzip", 6, True])
    check("iparam", elements["iparam"], [[1, 2], [3, 4], [5, 6], [7, 8]])

    results = blocks[state + "entityresults/NODE/DISPLACEMENT/kobblock"]
    check("results key", results.attrs["block"], 1000)
    check("res type", results["res"].dtype.str, "<f8")
    check("res", results["res"], [[0.1, 0.2, 0.3], [1.1, 1.2, 1.3], [2.1, 2.2, 2.3], [3.1, 3.2, 3.3]])
    check("entid", results["entid"], [101, 102, 103, 104])
    check("fidglob", results["fidglob"][()], 55)

print(f"{len(blocks)} blocks as expected")
