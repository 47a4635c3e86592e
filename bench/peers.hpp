// SPDX-License-Identifier: BSD-3-Clause
// Where we stand among other formats: each library on the same results, against bare numbers in its own HDF5.
#pragma once

#include "report.hpp"
#include "scratch.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace bench {

/// Do our ways of writing and reading that only this comparison uses find their values again? Prints a line for each;
/// the number of those that do not is returned.
int count_lossy(const Scratch& scratch);

/// Runs our calls and the programs of bench/peers in a folder, as far as their work's name holds the filter, and prints
/// a table.
std::vector<PeerResult> measure_peers(const std::filesystem::path& programs, const std::string& filter, int count,
                                      const Scratch& scratch);

} // namespace bench
