// SPDX-License-Identifier: BSD-3-Clause
// The file that an import writes: C++ values in, blocks of the library out.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "import.hpp"
#include "import_units.hpp"

namespace kob::program {

struct System {
    std::string title;
    std::string solver_name;
    std::string solver_version;
    std::string date; ///< YYYYMMDD
    std::string time; ///< HHMMSS
    std::vector<BaseUnit> units;
};

struct Variable {
    struct Component {
        std::string name;
        std::vector<std::int32_t> place; ///< indices in the tensor from 1, empty when they are not known
        Exponents unit{};
    };

    std::string key;
    std::string var_class;
    std::string type;
    std::int32_t rank = 0;
    std::int32_t tensor = 0; ///< kind number as the source says
    std::vector<Component> components;
};

/// The state that a block belongs to.
struct State {
    std::int32_t number = 0;     ///< from 1
    std::int32_t index_kind = 0; ///< which variable of the index group describes the value, from 1
    double value = 0;
};

struct Connectivities {
    std::string element_type;
    std::int32_t nodes_per_element = 0;
    std::int32_t dimension = 0;
    const std::vector<std::int32_t>* ids = nullptr;
    const std::vector<std::int32_t>* parts = nullptr;
    const std::vector<std::int32_t>* nodes = nullptr;
    const std::vector<std::int32_t>* groups = nullptr; ///< none: no integer parameter
};

struct Results {
    std::string entity_type;
    std::string variable;
    std::int32_t components = 0;
    std::int32_t set = -1;
    bool complex = false;
    const State* state = nullptr; ///< none: constant
    const std::vector<std::int32_t>* ids = nullptr;
    const std::vector<double>* values = nullptr; ///< [ids, components] or [ids, components, 2]
};

class Target {
public:
    /// Creates the file.
    Target(const std::string& path, const Storage& storage);
    ~Target();
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    void write(const System& system);
    /// Writes the variable block.
    void write(const Variable& variable);
    /// A group of one variable, under the variable's name.
    void write_group(const Variable& variable);
    /// The index block and its group: each variable is another reading of the one index value.
    void write_index(const std::string& group, const std::vector<Variable>& variables);
    void write(const Connectivities& connectivities);
    void write(const Results& results);
    void close();

private:
    void write_group(const std::string& name, std::int32_t ncoo, const std::vector<Variable>& variables,
                     const std::vector<std::int32_t>& offs);

    Storage storage_;
    std::int32_t filter_flags_ = 0;
    std::int32_t filter_params_[2] = {0, 0};
    std::int64_t handle_ = 0;
};

} // namespace kob::program
