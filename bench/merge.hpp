// SPDX-License-Identifier: BSD-3-Clause
// The files of a distributed run, and the programs that make one file of them.
#pragma once

#include "results.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// A box of nodes that is cut into cubes, side by side along the first axis; neighbours share a plane of nodes. Each
/// domain's file holds one variable in every state.
struct MergeSet {
    std::int32_t domains = 0;
    std::int32_t states = 0;
    std::int32_t edge = 0;   ///< nodes along an edge of a cube
    bool is_ordered = false; ///< the nodes of each domain are ascending, else in no order, always the same

    [[nodiscard]] std::int32_t nodes_of_domain() const { return edge * edge * edge; }
    [[nodiscard]] std::int32_t nodes() const { return (domains * (edge - 1) + 1) * edge * edge; }
    /// Results at so many nodes.
    [[nodiscard]] ResultSet results(std::int32_t nent) const { return {states, {"DISPLACEMENT"}, nent, 3, 8}; }
};

/// The nodes of a domain. They are numbered along the first axis first: the cut goes through every row of them.
std::vector<std::int32_t> nodes_of(const MergeSet& set, std::int32_t domain);

/// The file of a domain, beside the file that they are merged into.
std::string domain_file(const std::string& merged_file, std::int32_t domain);

/// Makes the domain files.
Work write_domains(const MergeSet& set, const std::string& merged_file, Digest* digest);

/// Merges them through the library.
Work merge_ours(const MergeSet& set, const std::string& merged_file, Digest* digest);

/// Merges them in plain HDF5: reads all, sorts the nodes of each state, writes all.
Work merge_sorting(const MergeSet& set, const std::string& merged_file, Digest* digest);

/// Merges nothing: reads all and writes all, one domain's rows behind the other's.
Work copy_rows(const MergeSet& set, const std::string& merged_file, Digest* digest);

} // namespace bench
