// SPDX-License-Identifier: BSD-3-Clause
// A block of every kind that the plain sample file of the program's tests lacks.
#pragma once

#include "kob_file.hpp"

namespace kob_test {

/// Text, parts, attributes, identifiers, a collector, properties, and activation flags of state 12.
void write_model_kinds(KobFile& file);

/// Element results of state 12, the three series of states, and matrices.
void write_result_kinds(KobFile& file);

/// Of the elements 11 and 12 of the type QUAD4: element results of state 12, and series of two states of element
/// results and of activation flags.
void write_quad_results(KobFile& file);

/// A dense matrix of one node.
void write_node_matrix(KobFile& file, std::int32_t node);

/// A series of entity results alone: values 1000 times state plus number in the state plus 0.5, index values from 0 in
/// steps of 0.25.
void write_series(KobFile& file, std::int32_t states, std::int32_t entities);

} // namespace kob_test
