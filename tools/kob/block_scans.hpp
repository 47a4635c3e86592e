// SPDX-License-Identifier: BSD-3-Clause
// The description of each kind of block: its items, and how the library reads them.
#pragma once

#include "block_reader.hpp"

namespace kob::program {

void scan_header(BlockScan& in);
void scan_system(BlockScan& in);
void scan_index(BlockScan& in);
void scan_variable(BlockScan& in);
void scan_variable_group(BlockScan& in);
void scan_text(BlockScan& in);

void scan_older_index(BlockScan& in);
void scan_older_variables(BlockScan& in);
void scan_older_text(BlockScan& in);
void scan_older_connectivities(BlockScan& in);

void scan_parts(BlockScan& in);
void scan_attributes(BlockScan& in);
void scan_identifiers(BlockScan& in);
void scan_connectivities(BlockScan& in);
void scan_collector(BlockScan& in);
void scan_properties(BlockScan& in);

void scan_entity_results(BlockScan& in);
void scan_multi_entity_results(BlockScan& in);
void scan_element_results(BlockScan& in);
void scan_multi_element_results(BlockScan& in);
void scan_activation_flags(BlockScan& in);
void scan_multi_activation_flags(BlockScan& in);

void scan_dense_matrix(BlockScan& in);
void scan_triangular_matrix(BlockScan& in);
void scan_sparse_matrix(BlockScan& in);

/// The sum of counts as the library forms it, in 32 bits.
inline std::int32_t sum_of(const Item& counts)
{
    std::uint32_t sum = 0;
    for (std::int64_t i = 0; i < counts.read_count(); ++i) sum += static_cast<std::uint32_t>(counts.integer(i));
    return static_cast<std::int32_t>(sum);
}

// Section bits of the readers that take them.
constexpr std::int32_t attributes_section = 1;
constexpr std::int32_t index_section = 2;
constexpr std::int32_t identifiers_section = 4;
constexpr std::int32_t values_section = 8;

// Passes of the readers that take those; some have the last one.
constexpr std::int32_t index_pass = 0; // and the attributes
constexpr std::int32_t attributes_pass = 1;
constexpr std::int32_t whole_pass = 2;
constexpr std::int32_t piece_pass = 3;

// Access modes of the readers that take them.
constexpr std::int32_t whole_dataset = 0;
constexpr std::int32_t hyperslab = 1;

/// Reads a block by a reader that works in passes and has none for a piece of the values: first the attributes, then
/// what `shape` makes room for by their counts.
template <class Index, class Read, class Shape>
void read_passes(BlockScan& in, const Index& index, Read&& read, Shape&& shape)
{
    read(attributes_pass);
    if (in.older() && in.reads(Depth::index) && index.is_counted()) in.read_whole(); // no pass for the index alone
    shape();
    const bool has_index = index.shape(in);
    if (in.reads(Depth::values)) {
        read(whole_pass);
        in.filters_found();
    } else if (has_index && in.reads(Depth::index)) {
        read(index_pass);
    }
}

/// The same with a reader that takes section bits, in the older layout passes.
template <class Read, class Shape>
void read_sections(BlockScan& in, const StateIndex& index, Read&& read, Shape&& shape)
{
    if (in.older()) {
        read_passes(in, index, read, shape);
        return;
    }
    read(attributes_section);
    shape();
    if (index.shape(in) && in.reads(Depth::index)) read(index_section);
    if (!in.reads(Depth::values)) return;
    read(identifiers_section | values_section);
    in.filters_found();
}

} // namespace kob::program
