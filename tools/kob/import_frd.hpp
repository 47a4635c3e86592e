// SPDX-License-Identifier: BSD-3-Clause
// Maps the blocks of an ASCII result file (.frd) to blocks of a KOB file.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "frd_file.hpp"
#include "import.hpp"
#include "import_target.hpp"

namespace kob::program {

class FrdImport : public Source {
public:
    /// Looks through the whole file; throws frd::Error when it is broken.
    explicit FrdImport(const ImportOptions& options);

    /// Writes all blocks, one result at a time.
    void write(Target& target) override;

private:
    /// What becomes of one result of the file.
    struct Plan {
        const frd::Result* result = nullptr;
        const frd::Result* imaginary = nullptr;
        std::size_t state = 0;
        std::string variable;
        std::int32_t set = -1;
    };
    struct StateInfo {
        State state;
        const frd::Result* first = nullptr;
        std::vector<std::size_t> plans;
    };

    /// The states of a variable that go to one block.
    struct Series {
        std::size_t ids = 0; ///< which of the lists of nodes
        bool complex = false;
        std::int32_t rows = 0;
        std::size_t last_state = 0;
    };

    void plan_states();
    void plan_pairs(const StateInfo& info);
    void plan_sets(const StateInfo& info);
    void plan_index(StateInfo& info);
    void plan_variables();
    void plan_scales();
    void add_variable(Variable variable);
    System system() const;
    void write_mesh(Target& target);
    void write_parts(Target& target, const std::array<frd::Elements, frd::element_types>& elements);
    void write_groups(Target& target, const std::array<frd::Elements, frd::element_types>& elements);
    void write_identifiers(Target& target, const std::array<frd::Elements, frd::element_types>& elements,
                           const std::vector<std::int32_t>& sequence);
    void write_state_results(Target& target);
    void write_result(Target& target, const Plan& plan);
    void put(Target& target, const Plan& plan, Results results);
    bool can_scale(const Plan& plan);

    const ImportOptions& options_;
    std::vector<BaseUnit> units_;
    frd::Lines lines_;
    frd::Outline outline_;
    std::vector<Plan> plans_;
    std::vector<StateInfo> states_;
    std::vector<Variable> variables_;
    std::vector<Variable> index_variables_;
    std::map<std::pair<std::string, std::string>, std::vector<Series>> series_; ///< by name of the series and variable
    std::vector<std::vector<std::int32_t>> id_lists_;
    std::map<std::string, bool> can_scale_; ///< by variable
};

} // namespace kob::program
