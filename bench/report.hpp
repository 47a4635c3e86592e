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

[[nodiscard]] double ratio(const Runs& ours, const Runs& raw); ///< of the medians of processor time
[[nodiscard]] double noise(const Runs& ours, const Runs& raw); ///< half the spread of the middle half, run by run

struct Result {
    Row row;
    Runs ours;
    Runs raw;
    std::optional<double> growth; ///< our processor time, ratio to that of the smaller row

    [[nodiscard]] double ratio() const { return bench::ratio(ours, raw); }
    [[nodiscard]] double noise() const { return bench::noise(ours, raw); }

    /// The figures that are missed by more than the noise: "time", "growth", "memory", "file".
    [[nodiscard]] std::vector<std::string> missed() const;
};

/// Some library's runs of some work, and those of bare numbers in plain HDF5 of the same version.
struct PeerResult {
    std::string name; ///< library and HDF5, with versions
    std::string work;
    Runs library;
    Runs plain;
};

void print_head();
void print_line(const Result& result);

void print_peer_head(const std::string& name);
void print_peer_line(const PeerResult& result);

/// Everything, single runs included.
std::string json_text(const std::vector<Result>& results, const std::vector<PeerResult>& peers);

} // namespace bench
