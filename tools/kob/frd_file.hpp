// SPDX-License-Identifier: BSD-3-Clause
// Reads ASCII result files (.frd) of a finite-element solver; knows nothing of what becomes of them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "text_lines.hpp"

namespace frd {

using text::Error;
using text::Lines;

/// Where the data records of a block stand.
struct Section {
    Lines::Mark first;           ///< first data record
    std::int64_t rows = 0;       ///< records " -1" counted
    std::int64_t announced = -1; ///< rows named in the block's header, -1: none
    bool long_ids = true;        ///< node and element numbers in 10 columns, otherwise in 5
};

/// One component of a result that has values in the file.
struct Component {
    std::string name;
    std::int32_t kind = 0; ///< as the file says: 1 scalar, 2 vector, 4 symmetric matrix, 12 and 14 with phase
    std::int32_t row = 0;  ///< index in the vector or first index in the matrix, from 1
    std::int32_t col = 0;  ///< second index in the matrix
};

bool operator==(const Component& a, const Component& b);

/// The solver's "1P" record before a result, for example STEP or MODE.
struct Parameter {
    std::string key;
    std::vector<double> values;
};

struct Result {
    Section section;
    std::string name;
    std::vector<Component> components;
    double value = 0;          ///< time, frequency, factor ... of the state
    std::int32_t analysis = 0; ///< kind of analysis
    std::int32_t set = 0;      ///< the solver's running number of the state
    std::string analysis_name;
    std::vector<Parameter> parameters;

    const Parameter* parameter(std::string_view key) const;
};

/// What stands where in a file.
struct Outline {
    std::vector<std::string> header; ///< the "1C" and "1U" records, whole, without blanks at the end
    std::vector<std::string> user;   ///< texts of the "1U" records
    std::vector<Section> nodes;
    std::vector<Section> elements;
    std::vector<Result> results;
    std::map<std::string, std::int32_t> materials; ///< numbers of the materials by name
    std::vector<std::string> warnings;             ///< what was skipped and why
};

struct Nodes {
    std::vector<std::int32_t> ids;
    std::vector<double> coordinates; ///< [nodes, 3]
};

struct ElementType {
    const char* name;
    std::int32_t nodes;
    std::int32_t dimension;
};
constexpr std::size_t element_types = 13;
extern const std::array<ElementType, element_types> element_type; ///< by the file's number, from 1

/// The elements of one type.
struct Elements {
    std::vector<std::int32_t> ids;
    std::vector<std::int32_t> groups;
    std::vector<std::int32_t> materials;
    std::vector<std::int32_t> nodes; ///< [elements, nodes per element], in the file's order
};

struct Table {
    std::vector<std::int32_t> ids;
    std::vector<double> values; ///< [ids, components]
};

Outline outline(Lines& lines);
// Those of the mesh append.
void read_nodes(Lines& lines, const Section& section, Nodes& nodes);
/// `sequence`, if given, gets the type of each element in the order of the file.
void read_elements(Lines& lines, const Section& section, const Outline& outline,
                   std::array<Elements, element_types>& elements, std::vector<std::int32_t>* sequence = nullptr);
Table read_result(Lines& lines, const Result& result);

/// All numbers of a text, also where they run together ("-1.0E+00-2.0E+00", "1.0-300"); false: there is something else.
bool scan_numbers(std::string_view text, std::vector<double>& values);

} // namespace frd
