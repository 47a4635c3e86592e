// SPDX-License-Identifier: BSD-3-Clause
// Medians, spread, the table's lines and the JSON document.
#include "report.hpp"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace bench {
namespace {

/// The value below which the given share of all lies, between two if need be.
double quantile(std::vector<double> values, double share)
{
    if (values.empty()) {
        return std::nan("");
    }
    std::sort(values.begin(), values.end());
    const double position = share * static_cast<double>(values.size() - 1);
    const auto below = static_cast<std::size_t>(position);
    const std::size_t above = std::min(below + 1, values.size() - 1);
    return values[below] + (position - static_cast<double>(below)) * (values[above] - values[below]);
}

double median(const std::vector<double>& values) { return quantile(values, 0.5); }

template <class Get> std::vector<double> column(const Runs& runs, Get get)
{
    std::vector<double> values;
    for (const Sample& sample : runs.samples) {
        values.push_back(get(sample));
    }
    return values;
}

std::vector<double> cpu(const Runs& runs)
{
    return column(runs, [](const Sample& sample) { return sample.cpu; });
}

std::vector<double> wall(const Runs& runs)
{
    return column(runs, [](const Sample& sample) { return sample.wall; });
}

std::vector<double> memory(const Runs& runs)
{
    return column(runs, [](const Sample& sample) { return sample.memory.value_or(std::nan("")); });
}

constexpr double mega = 1e6;

} // namespace

double Result::ratio() const { return median(cpu(ours)) / median(cpu(raw)); }

double Result::noise() const
{
    std::vector<double> ratios = cpu(ours);
    const std::vector<double> floor = cpu(raw);
    for (std::size_t i = 0; i < ratios.size(); ++i) {
        ratios[i] /= floor[i];
    }
    return 0.5 * (quantile(ratios, 0.75) - quantile(ratios, 0.25));
}

double Result::extra_memory() const { return median(memory(ours)) - median(memory(raw)); }

bool Result::holds() const
{
    const double extra = extra_memory();
    return ratio() - noise() <= row.hold && (std::isnan(extra) || extra <= row.extra_bytes);
}

void print_head()
{
    fmt::print("{:<36}{:^17}{:^17}{:^22}{:^17}{:^17}\n", "", "CPU seconds", "wall seconds", "CPU ours / raw",
               "memory MB", "file MB");
    fmt::print("{:<36}", "");
    fmt::print("{:>8} {:>8}{:>8} {:>8}{:>7} {:>7} {:>6}{:>8} {:>8}{:>8} {:>8}\n", "ours", "raw", "ours", "raw", "ratio",
               "+-", "hold", "ours", "raw", "ours", "raw");
}

void print_line(const Result& result)
{
    fmt::print(
        "{:<36}{:>8.3f} {:>8.3f}{:>8.3f} {:>8.3f}{:>7.3f} {:>7.3f} {:>6.2f}{:>8.1f} {:>8.1f}{:>8.1f} {:>8.1f}{}\n",
        result.row.name, median(cpu(result.ours)), median(cpu(result.raw)), median(wall(result.ours)),
        median(wall(result.raw)), result.ratio(), result.noise(), result.row.hold, median(memory(result.ours)) / mega,
        median(memory(result.raw)) / mega, static_cast<double>(result.ours.file_bytes) / mega,
        static_cast<double>(result.raw.file_bytes) / mega, result.holds() ? "" : "  MISSED");
    std::fflush(stdout);
}

std::string json_text(const std::vector<Result>& results)
{
    const auto runs = [](const Runs& of) {
        nlohmann::json list = nlohmann::json::array();
        for (const Sample& sample : of.samples) {
            nlohmann::json run{{"cpu_seconds", sample.cpu}, {"wall_seconds", sample.wall}};
            if (sample.memory) {
                run["memory_bytes"] = *sample.memory;
            }
            list.push_back(run);
        }
        return nlohmann::json{{"runs", list}, {"file_bytes", of.file_bytes}};
    };
    nlohmann::json document = nlohmann::json::array();
    for (const Result& result : results) {
        document.push_back({{"work", result.row.name},
                            {"ours", runs(result.ours)},
                            {"raw", runs(result.raw)},
                            {"ratio", result.ratio()},
                            {"noise", result.noise()},
                            {"hold", result.row.hold},
                            {"holds", result.holds()}});
    }
    return document.dump(2) + "\n";
}

} // namespace bench
