// SPDX-License-Identifier: BSD-3-Clause
// Do both programs of a line do the same?
#pragma once

#include "rows.hpp"
#include "scratch.hpp"

namespace bench {

/// Runs both programs untimed and compares the files that they make, or what they find in each other's. Prints a line
/// for each row; the number of rows that differ is returned.
int count_different(const std::vector<Row>& chosen, const Scratch& scratch);

} // namespace bench
