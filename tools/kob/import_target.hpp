// SPDX-License-Identifier: BSD-3-Clause
// The file that an import writes: C++ values in, blocks of the library out.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "import.hpp"
#include "import_scale_errors.hpp"
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

/// The parts of the model: each is a material.
struct Parts {
    const std::vector<std::int32_t>* ids = nullptr;
    const std::vector<std::string>* titles = nullptr;
};

/// Numbers that each entity of a type has besides its identifier.
struct Identifiers {
    std::string entity_type;
    std::int32_t columns = 0;
    const std::vector<std::int32_t>* ids = nullptr;
    const std::vector<std::int32_t>* values = nullptr; ///< [ids, columns]
};

/// Sets of entities of one type.
struct Collectors {
    std::string type;
    std::string member_type;
    const std::vector<std::int32_t>* ids = nullptr;
    const std::vector<std::int32_t>* counts = nullptr;
    const std::vector<std::int32_t>* members = nullptr;
};

/// Whose matrix it is.
struct MatrixName {
    std::string entity_type;
    std::int32_t entity = 1;
    std::string variable;
};

struct DenseMatrix {
    std::int32_t rows = 0;
    std::int32_t columns = 0;
    bool complex = false;
    std::vector<double> values; ///< row after row
};

struct TriangularMatrix {
    std::int32_t order = 0;
    std::int32_t type = 0; ///< 1 symmetric, 2 skew-symmetric, 3 hermitian
    bool complex = false;
    std::vector<double> values; ///< row after row of the lower triangle
};

struct SparseMatrix {
    std::int32_t rows = 0;
    bool complex = false;
    std::vector<std::int64_t> starts;
    std::vector<std::int32_t> columns; ///< from 0, ascending in each row
    std::vector<double> values;
};

/// The filter behind --scale counts steps in integers: it holds no NaN, no infinity and no range of too many steps.
class ScaleCheck {
public:
    void see(const std::vector<double>& values);
    /// Why what was seen cannot be scaled; empty: it can.
    std::string obstacle(std::int32_t digits, std::int32_t float_size) const;

private:
    bool finite_ = true;
    double least_ = 0;
    double most_ = 0;
    bool any_ = false;
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
    /// A state of a series of results, in this row; rows are written in order. `scaled`: all states of the series are
    /// fit for --scale.
    void append(const Results& results, const std::string& series, std::int32_t row, bool scaled);
    void write(const Parts& parts);
    void write(const Identifiers& identifiers);
    void write(const Collectors& collectors);
    /// Lines of text of any length.
    void write_text(const std::string& type, const std::vector<std::string>& lines);
    void write(const MatrixName& name, const DenseMatrix& matrix);
    void write(const MatrixName& name, const TriangularMatrix& matrix);
    void write(const MatrixName& name, const SparseMatrix& matrix);
    void close();

    /// How far scaled values are from what was given.
    const ScaleErrors& scale_errors() const { return scale_errors_; }

private:
    struct Filters {
        std::int32_t flags = 0;
        std::int32_t params[2] = {0, 0};
    };

    Filters filters(const std::string& variable, bool scaled) const;
    Filters filters_of_values(const std::string& variable, const std::vector<double>& values,
                              const std::string& what) const;
    void measure(const Filters& filters, const WrittenBlock& block, const std::string& variable,
                 const std::vector<double>& given);
    std::int32_t value_size(bool complex) const { return complex ? 4 * storage_.float_size : storage_.float_size; }
    void write_group(const std::string& name, std::int32_t ncoo, const std::vector<Variable>& variables,
                     const std::vector<std::int32_t>& offs);

    Storage storage_;
    std::int32_t filter_flags_ = 0;
    std::int32_t filter_params_[2] = {0, 0};
    std::int64_t handle_ = 0;
    ScaleErrors scale_errors_;
};

} // namespace kob::program
