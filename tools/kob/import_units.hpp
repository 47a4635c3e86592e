// SPDX-License-Identifier: BSD-3-Clause
// Units that a user claims for an imported file, and the units of the results that are known by name.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kob::program {

constexpr std::size_t base_quantities = 4; ///< length, mass, time, temperature

/// Exponents of the base quantities.
using Exponents = std::array<double, base_quantities>;

struct BaseUnit {
    std::string quantity; ///< LENGTH, MASS, TIME or TEMPERATURE
    std::string name;
    double shift = 0; ///< the value in SI units is value * factor + shift
    double factor = 1;
};

/// "mm,t,s" or "m,kg,s,K"; throws Failure with the known names when a name is none.
std::vector<BaseUnit> parse_units(const std::string& text);

/// The unit of a component of a result, nothing when the name says nothing.
std::optional<Exponents> unit_of(std::string_view variable, std::string_view component);

} // namespace kob::program
