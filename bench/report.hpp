// SPDX-License-Identifier: BSD-3-Clause
// What was measured, as a table and as JSON.
#pragma once

#include "measure.hpp"
#include "rows.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// One program's runs of a row.
struct Runs {
    std::vector<Sample> samples;
    std::uintmax_t file_bytes = 0; ///< of the file written or read
};

struct Result {
    Row row;
    Runs ours;
    Runs raw;

    [[nodiscard]] double ratio() const;        ///< of the medians of processor time
    [[nodiscard]] double noise() const;        ///< half the spread of the middle half of the ratios run by run
    [[nodiscard]] double extra_memory() const; ///< bytes, medians: ours less plain HDF5's
    [[nodiscard]] bool holds() const;          ///< within the figures to hold, or no further from them than the noise
};

void print_head();
void print_line(const Result& result);

/// Everything, single runs included.
std::string json_text(const std::vector<Result>& results);

} // namespace bench
