// SPDX-License-Identifier: BSD-3-Clause
// What the program of each peer gives: its name, and how it writes and reads results at nodes.
#pragma once

#include "results.hpp"

#include <stdexcept>
#include <string>
#include <vector>

namespace bench {

/// Name and version of the format's library.
std::string peer_name();

/// Results written and read as the library's manual does it.
extern const Program<ResultSet> peer;

/// A block's values with an array for each component, for formats that have scalars only. Who uses such a format holds
/// his results like this.
class Components {
public:
    explicit Components(const ResultSet& set);

    /// Gives the values of a state and variable.
    void select(const ResultSet& set, std::int32_t state, std::size_t variable);
    std::vector<double>& operator[](std::size_t component) { return components_[component]; }
    [[nodiscard]] std::size_t size() const { return components_.size(); }
    [[nodiscard]] double time() const { return block_.indexval; }

    /// Adds them node by node.
    void add_to(Digest& digest);

private:
    Block block_;
    std::vector<std::vector<double>> components_;
};

/// Name of a component of a variable: "STRESSX".
inline std::string component_name(const std::string& variable, std::size_t component)
{
    return variable + "XYZ"[component];
}

/// Ends the work if a call of the peer's library failed.
inline void check(bool good, const char* call)
{
    if (!good) {
        throw std::runtime_error{std::string{call} + " failed"};
    }
}

} // namespace bench
