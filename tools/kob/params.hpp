// SPDX-License-Identifier: BSD-3-Clause
// The table of a parameter file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kob::program {

struct Exponents {
    std::string names; ///< fields of 256 characters, end to end
    std::vector<std::int32_t> values;

    std::string name(std::size_t i) const;
};

/// A file that cannot be read is a Failure.
Exponents read_exponents(const std::string& path);

} // namespace kob::program
