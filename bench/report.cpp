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

std::vector<double> memory(const Runs& runs)
{
    return column(runs, [](const Sample& sample) { return sample.memory.value_or(std::nan("")); });
}

/// Half the distance between the quartiles.
double half_spread(const std::vector<double>& values)
{
    return 0.5 * (quantile(values, 0.75) - quantile(values, 0.25));
}

std::string mark(const Result& result)
{
    if (const std::vector<std::string> missed = result.missed(); !missed.empty()) {
        return fmt::format("MISSED: {}", fmt::join(missed, ", "));
    }
    return result.ratio() <= result.row.figures.dream ? "dream" : "held";
}

constexpr double mega = 1e6;

} // namespace

double Runs::cpu() const { return median(bench::cpu(*this)); }

double Runs::memory() const { return median(bench::memory(*this)); }

double Runs::memory_noise() const { return half_spread(bench::memory(*this)); }

double ratio(const Runs& ours, const Runs& raw) { return ours.cpu() / raw.cpu(); }

double noise(const Runs& ours, const Runs& raw)
{
    std::vector<double> ratios = bench::cpu(ours);
    const std::vector<double> floor = bench::cpu(raw);
    for (std::size_t i = 0; i < ratios.size(); ++i) {
        ratios[i] /= floor[i];
    }
    return half_spread(ratios);
}

std::vector<std::string> Result::missed() const
{
    std::vector<std::string> missed;
    if (ratio() - noise() > row.figures.hold) {
        missed.emplace_back("time");
    }
    if (growth && *growth * (1 - noise() / ratio()) > row.growth.hold) {
        missed.emplace_back("growth");
    }
    if (ours.memory() - ours.memory_noise() > row.figures.memory) { // false where nothing was measured
        missed.emplace_back("memory");
    }
    if (row.packed && ours.file_bytes > raw.file_bytes) {
        missed.emplace_back("file");
    }
    return missed;
}

void print_head()
{
    fmt::print("{:<44}{:^18}{:^31}{:^25}{:^17}\n", "", "CPU seconds", "CPU ours / raw", "memory MB", "file MB");
    fmt::print("{:<44}{:>8} {:>8}  {:>7} {:>6} {:>6} {:>6}  {:>7} {:>7} {:>7}  {:>7} {:>7}\n", "", "ours", "raw",
               "ratio", "+-", "hold", "dream", "ours", "most", "raw", "ours", "raw");
}

void print_line(const Result& result)
{
    const Figures& figures = result.row.figures;
    fmt::print("{:<44}{:>8.3f} {:>8.3f}  {:>7.3f} {:>6.3f} {:>6.2f} {:>6.2f}  {:>7.1f} {:>7.1f} {:>7.1f}  {:>7.1f} "
               "{:>7.1f}  {}\n",
               result.row.name, result.ours.cpu(), result.raw.cpu(), result.ratio(), result.noise(), figures.hold,
               figures.dream, result.ours.memory() / mega, figures.memory / mega, result.raw.memory() / mega,
               static_cast<double>(result.ours.file_bytes) / mega, static_cast<double>(result.raw.file_bytes) / mega,
               mark(result));
    if (result.growth) {
        fmt::print("    {:.2f} times our CPU of \"{}\", hold {:.2f}\n", *result.growth, result.row.growth.smaller,
                   result.row.growth.hold);
    }
    std::fflush(stdout);
}

void print_peer_head(const std::string& name)
{
    fmt::print("\n{:<44}{:^18}{:^15}{:^17}{:^17}\n", name, "CPU seconds", "CPU to bare", "memory MB", "file MB");
    fmt::print("{:<44}{:>8} {:>8}  {:>6} {:>6} {:>8} {:>7} {:>8} {:>7}\n", "", "library", "bare", "ratio", "+-",
               "library", "bare", "library", "bare");
}

void print_peer_line(const PeerResult& result)
{
    const auto& [name, work, library, plain] = result;
    fmt::print("{:<44}{:>8.3f} {:>8.3f}  {:>6.2f} {:>6.2f} {:>8.1f} {:>7.1f} {:>8.1f} {:>7.1f}\n", work, library.cpu(),
               plain.cpu(), ratio(library, plain), noise(library, plain), library.memory() / mega,
               plain.memory() / mega, static_cast<double>(library.file_bytes) / mega,
               static_cast<double>(plain.file_bytes) / mega);
    std::fflush(stdout);
}

std::string json_text(const std::vector<Result>& results, const std::vector<PeerResult>& peers)
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
    nlohmann::json document{{"work", nlohmann::json::array()}, {"peers", nlohmann::json::array()}};
    for (const Result& result : results) {
        const Figures& figures = result.row.figures;
        nlohmann::json line{{"work", result.row.name},
                            {"ours", runs(result.ours)},
                            {"raw", runs(result.raw)},
                            {"ratio", result.ratio()},
                            {"noise", result.noise()},
                            {"hold", figures.hold},
                            {"dream", figures.dream},
                            {"memory_bytes", result.ours.memory()},
                            {"memory_hold_bytes", figures.memory},
                            {"file_hold", result.row.packed},
                            {"missed", result.missed()}};
        if (result.growth) {
            line["growth"] = {
                {"of", result.row.growth.smaller}, {"ratio", *result.growth}, {"hold", result.row.growth.hold}};
        }
        document["work"].push_back(line);
    }
    for (const PeerResult& result : peers) {
        document["peers"].push_back({{"library", result.name},
                                     {"work", result.work},
                                     {"runs_of_library", runs(result.library)},
                                     {"runs_of_bare_numbers", runs(result.plain)},
                                     {"ratio", ratio(result.library, result.plain)},
                                     {"noise", noise(result.library, result.plain)}});
    }
    return document.dump(2) + "\n";
}

} // namespace bench
