// SPDX-License-Identifier: BSD-3-Clause
// Compares what both programs of a line make or find.
#include "verify.hpp"

#include "same_file.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace bench {
namespace {

/// Crosswise: each reads what the other wrote.
std::vector<std::string> different_findings(const Row& row, const std::string& of_ours, const std::string& of_raw)
{
    const Digest nothing;
    Digest by_ours;
    Digest by_raw;
    row.ours.task(of_raw, &by_ours)();
    row.raw.task(of_ours, &by_raw)();
    std::vector<std::string> lines;
    if (by_ours.value() == nothing.value()) {
        lines.emplace_back("nothing was found");
    }
    if (by_ours.value() != by_raw.value()) {
        lines.emplace_back("our calls and plain HDF5 found different things");
    }
    return lines;
}

std::vector<std::string> different_files(const Row& row, const std::string& of_ours, const std::string& of_raw)
{
    if (row.kind != Row::Kind::write) {
        row.ours.task(of_ours, nullptr)();
        row.raw.task(of_raw, nullptr)();
    }
    std::vector<std::string> lines = differences(of_ours, of_raw);
    if (!row.same_values) {
        std::erase_if(lines, [](const std::string& line) { return line.ends_with(value_difference); });
    }
    return lines;
}

} // namespace

int count_different(const std::vector<Row>& chosen, const Scratch& scratch)
{
    const std::string of_ours = scratch.file("ours.kob");
    const std::string of_raw = scratch.file("raw.kob");
    int count = 0;
    for (const Row& row : chosen) {
        row.ours.write(of_ours, nullptr)();
        row.raw.write(of_raw, nullptr)();
        const std::vector<std::string> lines = row.kind == Row::Kind::read ? different_findings(row, of_ours, of_raw)
                                                                           : different_files(row, of_ours, of_raw);
        fmt::print("{}: {}\n", row.name, lines.empty() ? "same" : "DIFFERENT");
        for (const std::string& line : lines) {
            fmt::print("    {}\n", line);
        }
        count += lines.empty() ? 0 : 1;
    }
    return count;
}

} // namespace bench
