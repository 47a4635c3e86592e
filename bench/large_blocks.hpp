// SPDX-License-Identifier: BSD-3-Clause
// Large blocks of other kinds: element results, a sparse matrix, connectivities.
#pragma once

#include "program.hpp"

namespace bench {

// Each kind has a description of its files and the arrays of a caller. Until they are filled the arrays hold what no
// file does; all of them are in memory then.

struct ElementSet {
    std::int32_t states = 0;
    std::int32_t nele = 0;
    std::int32_t numl = 0;
    std::int32_t ncoo = 0;
};

/// Results at the locations in elements, one block for each state.
struct ElementBlock {
    explicit ElementBlock(const ElementSet& set);
    void fill();
    void select(std::int32_t state);

    Text256 etypelem = text256("HEXA8");
    Text256 etypvar = text256("STRESS");
    Text256 etypzone = text256("");
    Text256 etypframe = text256("");
    std::int32_t nele;
    std::int32_t numl;
    std::int32_t ncoo;
    std::int32_t ndim = 3;
    std::int32_t zoneid = -1;
    std::int32_t fswitch = 0;
    std::int32_t dmpswitch = 0;
    std::int32_t nindex = 1;
    std::int32_t indexic = 1;
    std::int32_t indexident = -1;
    double indexval = -1;
    std::int32_t fidglob = 0;
    std::vector<std::int32_t> idele;
    std::vector<double> eloc; ///< [numl, ndim]
    std::vector<double> res;  ///< [nele, numl, ncoo]
};

std::string path_of(const ElementBlock& block, std::int32_t state);
void add(Digest& digest, const ElementBlock& block);

struct SparseSet {
    std::int32_t nrow = 0;
    std::int32_t per_row = 0;
};

/// A sparse matrix of constant data.
struct SparseBlock {
    explicit SparseBlock(const SparseSet& set);
    void fill();

    static constexpr const char* path = "constant/sparsematrix/NODE/STIFFNESS/id1/kobblock";

    Text256 etyp = text256("NODE");
    Text256 etypvar = text256("STIFFNESS");
    std::int32_t entid = 1;
    std::int32_t nrow;
    std::int64_t nnz;
    std::int32_t nindex = 0;
    std::int32_t indexic = 0;
    std::vector<std::int32_t> colind;
    std::vector<std::int64_t> rowptr;
    std::vector<double> val;
};

void add(Digest& digest, const SparseBlock& block);

struct HexahedraSet {
    std::int32_t nele = 0;
};

/// Connectivities of hexahedra, constant, without parameters.
struct HexahedraBlock {
    explicit HexahedraBlock(const HexahedraSet& set);
    void fill();

    static constexpr const char* path = "constant/connectivities/HEXA8/kobblock";

    Text256 etyp = text256("ELEMENT");
    Text256 etypelem = text256("HEXA8");
    Text256 etyppart = text256("PART");
    Text256 etypnode = text256("NODE");
    std::int32_t nele;
    std::int32_t npele = 8;
    std::int32_t ndim = 3;
    std::int32_t nbint = 0;
    std::int32_t nbfloat = 0;
    std::int32_t nindex = 0;
    std::int32_t indexic = 0;
    std::vector<std::int32_t> idele;
    std::vector<std::int32_t> pid;
    std::vector<std::int32_t> ic; ///< [nele, npele]
};

void add(Digest& digest, const HexahedraBlock& block);

template <> const Program<ElementSet> Programs<ElementSet>::ours;
template <> const Program<ElementSet> Programs<ElementSet>::raw;
template <> const Program<SparseSet> Programs<SparseSet>::ours;
template <> const Program<SparseSet> Programs<SparseSet>::raw;
template <> const Program<HexahedraSet> Programs<HexahedraSet>::ours;
template <> const Program<HexahedraSet> Programs<HexahedraSet>::raw;

} // namespace bench
