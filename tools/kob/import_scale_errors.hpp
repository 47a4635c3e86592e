// SPDX-License-Identifier: BSD-3-Clause
// How far the values of an import are from the source's, where --scale rounds them.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kob::program {

/// A block that has been written: what its path is made of.
struct WrittenBlock {
    std::string_view kind; ///< block type name
    bool complex = false;
    std::int32_t states = 0; ///< 0: constant, -1: a series, 1: of this state
    std::int32_t state = -1;
    std::vector<std::string> names;
    std::int32_t number = -1;
    std::int32_t set = -1;
};

/// Reads blocks back and keeps the largest error of each variable.
class ScaleErrors {
public:
    /// Compares the values of a block, of a series those of its last state, with what was given.
    void measure(const std::int64_t& group, const WrittenBlock& block, const std::string& variable,
                 const std::vector<double>& given);

    /// By variable.
    const std::map<std::string, double>& largest() const { return largest_; }

private:
    std::map<std::string, double> largest_;
};

} // namespace kob::program
