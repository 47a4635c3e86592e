// SPDX-License-Identifier: BSD-3-Clause
// Maps the blocks of an ASCII result file (.frd) to blocks of a KOB file.
#pragma once

#include <string>
#include <vector>

#include "frd_file.hpp"
#include "import.hpp"
#include "import_target.hpp"

namespace kob::program {

class FrdImport {
public:
    /// Looks through the whole file; throws frd::Error when it is broken.
    explicit FrdImport(const ImportOptions& options);

    /// Writes all blocks, one result at a time.
    void write(Target& target);

    const std::vector<std::string>& warnings() const { return warnings_; }

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

    void plan_states();
    void plan_pairs(const StateInfo& info);
    void plan_sets(const StateInfo& info);
    void plan_index(StateInfo& info);
    void plan_variables();
    void plan_scales();
    void add_variable(Variable variable);
    System system() const;
    void write_mesh(Target& target);
    void write_state(Target& target, const StateInfo& info);
    void write_result(Target& target, const Plan& plan);

    const ImportOptions& options_;
    std::vector<BaseUnit> units_;
    frd::Lines lines_;
    frd::Outline outline_;
    std::vector<Plan> plans_;
    std::vector<StateInfo> states_;
    std::vector<Variable> variables_;
    std::vector<Variable> index_variables_;
    std::vector<std::string> warnings_;
};

} // namespace kob::program
