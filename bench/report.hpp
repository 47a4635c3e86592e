// SPDX-License-Identifier: BSD-3-Clause
// What was measured, as a table and as JSON.
#pragma once

#include "measure.hpp"
#include "rows.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace bench {

/// One program's runs of a row.
struct Runs {
    std::vector<Sample> samples;
    std::uintmax_t file_bytes = 0; ///< of the file written or read

    [[nodiscard]] double cpu() const;          ///< median, seconds
    [[nodiscard]] double memory() const;       ///< median, bytes
    [[nodiscard]] double memory_noise() const; ///< half the spread of the middle half
};

struct Result {
    Row row;
    Runs ours;
    Runs raw;
    std::optional<double> growth; ///< our processor time, ratio to that of the smaller row

    [[nodiscard]] double ratio() const; ///< of the medians of processor time
    [[nodiscard]] double noise() const; ///< half the spread of the middle half of the ratios run by run

    /// The figures that are missed by more than the noise: "time", "growth", "memory", "file".
    [[nodiscard]] std::vector<std::string> missed() const;
};

void print_head();
void print_line(const Result& result);

/// Everything, single runs included.
std::string json_text(const std::vector<Result>& results);

} // namespace bench
