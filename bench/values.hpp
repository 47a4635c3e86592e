// SPDX-License-Identifier: BSD-3-Clause
// The bare numbers of a result set in plain HDF5: what formats are measured against that make different files.
#pragma once

#include "results.hpp"

namespace bench {

/// A group for each state with its time, in it a dataset for each variable, and nothing that describes them.
extern const Program<ResultSet> bare_values;

/// Writes a tiny file and reads it: is every value there? For programs whose digest is that of the values alone.
bool finds_its_values(const Program<ResultSet>& program, const std::string& file);

} // namespace bench
