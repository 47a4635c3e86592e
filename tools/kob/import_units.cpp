// SPDX-License-Identifier: BSD-3-Clause
// The tables behind "--units".

#include "import_units.hpp"

#include <algorithm>

#include "terminal.hpp"
#include "verbs.hpp"

namespace kob::program {

namespace {

struct KnownUnit {
    const char* name;
    double factor;
    double shift;
};

constexpr std::array<const char*, base_quantities> quantities = {"LENGTH", "MASS", "TIME", "TEMPERATURE"};

const std::array<std::vector<KnownUnit>, base_quantities> known_units = {{
    {{"m", 1, 0}, {"mm", 1e-3, 0}, {"cm", 1e-2, 0}, {"km", 1e3, 0}, {"in", 0.0254, 0}, {"ft", 0.3048, 0}},
    {{"kg", 1, 0}, {"g", 1e-3, 0}, {"t", 1e3, 0}, {"lb", 0.45359237, 0}},
    {{"s", 1, 0}, {"ms", 1e-3, 0}, {"min", 60, 0}, {"h", 3600, 0}},
    {{"K", 1, 0}, {"C", 1, 273.15}},
}};

struct ResultUnit {
    std::string_view variable;
    std::string_view component; ///< its name begins so
    Exponents exponents;
};

constexpr Exponents none = {0, 0, 0, 0};
constexpr Exponents length = {1, 0, 0, 0};
constexpr Exponents stress = {-1, 1, -2, 0};

const std::array result_units = {
    ResultUnit{"COORDINATE", "", length},
    ResultUnit{"TIME", "", {0, 0, 1, 0}},
    ResultUnit{"FREQUENCY", "", {0, 0, -1, 0}},
    ResultUnit{"LOADFACTOR", "", none},
    ResultUnit{"DISP", "D", length},
    ResultUnit{"PDISP", "MAG", length},
    ResultUnit{"VELO", "V", {1, 0, -1, 0}},
    ResultUnit{"STRESS", "S", stress},
    ResultUnit{"ZZSTR", "S", stress},
    ResultUnit{"PSTRESS", "MAG", stress},
    ResultUnit{"TOSTRAIN", "E", none},
    ResultUnit{"MESTRAIN", "E", none},
    ResultUnit{"PE", "", none},
    ResultUnit{"ERROR", "", none},
    ResultUnit{"ENER", "", stress},
    ResultUnit{"FORC", "F", {1, 1, -2, 0}},
    ResultUnit{"NDTEMP", "", {0, 0, 0, 1}},
    ResultUnit{"FLUX", "", {0, 1, -3, 0}},
    ResultUnit{"CONTACT", "COPEN", length},
    ResultUnit{"CONTACT", "CSLIP", length},
    ResultUnit{"CONTACT", "CPRESS", stress},
    ResultUnit{"CONTACT", "CSHEAR", stress},
};

} // namespace

std::vector<BaseUnit> parse_units(const std::string& text)
{
    std::vector<BaseUnit> units;
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t to = std::min(text.find(',', from), text.size());
        const std::string name = trimmed(std::string_view{text}.substr(from, to - from));
        from = to + 1;
        if (units.size() == base_quantities) {
            throw Failure{exit_usage, "--units takes length,mass,time and perhaps temperature, no more"};
        }
        const auto& known = known_units[units.size()];
        const auto unit = std::find_if(known.begin(), known.end(), [&](const KnownUnit& u) { return u.name == name; });
        if (unit == known.end()) {
            std::string names;
            for (const auto& u : known) names += std::string{" "} + u.name;
            throw Failure{exit_usage, fmt::format("--units: \"{}\" is no unit of {}; known are{}", printable(name),
                                                  quantities[units.size()], names)};
        }
        units.push_back({quantities[units.size()], unit->name, unit->shift, unit->factor});
    }
    if (units.size() < base_quantities - 1) {
        throw Failure{exit_usage, "--units takes length,mass,time and perhaps temperature, for example mm,t,s,K"};
    }
    return units;
}

std::optional<Exponents> unit_of(std::string_view variable, std::string_view component)
{
    for (const auto& u : result_units) {
        if (u.variable == variable && component.substr(0, u.component.size()) == u.component) return u.exponents;
    }
    return std::nullopt;
}

} // namespace kob::program
