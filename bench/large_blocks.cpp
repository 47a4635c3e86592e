// SPDX-License-Identifier: BSD-3-Clause
// What both programs write and read of the other kinds.
#include "large_blocks.hpp"

#include "results.hpp"

#include <cmath>
#include <numeric>

namespace bench {
namespace {

std::size_t size(std::int64_t extent) { return static_cast<std::size_t>(extent); }

} // namespace

ElementBlock::ElementBlock(const ElementSet& set)
    : nele{set.nele}, numl{set.numl}, ncoo{set.ncoo}, idele(size(nele), -1), eloc(size(std::int64_t{numl} * ndim), -1),
      res(size(std::int64_t{nele} * numl * ncoo), -1)
{
}

void ElementBlock::fill()
{
    std::iota(idele.begin(), idele.end(), 1);
    std::iota(eloc.begin(), eloc.end(), 0.5);
    for (std::size_t i = 0; i < res.size(); ++i) {
        res[i] = std::sin(1e-3 * static_cast<double>(i));
    }
}

void ElementBlock::select(std::int32_t state)
{
    indexident = state;
    indexval = 0.5 * state;
    res[0] = state;
}

std::string path_of(const ElementBlock&, std::int32_t state)
{
    return state_path(state) + "/elementresults/HEXA8/STRESS/kobblock";
}

void add(Digest& digest, const ElementBlock& block)
{
    for (const Text256* text : {&block.etypelem, &block.etypvar, &block.etypzone, &block.etypframe}) {
        digest.add(*text);
    }
    for (const std::int32_t number : {block.nele, block.numl, block.ncoo, block.ndim, block.zoneid, block.fswitch,
                                      block.dmpswitch, block.nindex, block.indexic, block.indexident, block.fidglob}) {
        digest.add(number);
    }
    digest.add(block.indexval);
    digest.add(block.idele);
    digest.add(block.eloc);
    digest.add(block.res);
}

SparseBlock::SparseBlock(const SparseSet& set)
    : nrow{set.nrow}, nnz{std::int64_t{set.nrow} * set.per_row}, colind(size(nnz), -1),
      rowptr(size(std::int64_t{nrow} + 1), -1), val(size(nnz), -1)
{
}

void SparseBlock::fill()
{
    const std::int64_t per_row = nnz / nrow;
    for (std::int64_t i = 0; i < nnz; ++i) {
        colind[size(i)] = static_cast<std::int32_t>((i / per_row + i % per_row) % nrow);
        val[size(i)] = 1.0 / static_cast<double>(i + 1);
    }
    for (std::int64_t row = 0; row <= nrow; ++row) {
        rowptr[size(row)] = row * per_row;
    }
}

void add(Digest& digest, const SparseBlock& block)
{
    digest.add(block.etyp);
    digest.add(block.etypvar);
    for (const std::int32_t number : {block.entid, block.nrow, block.nindex, block.indexic}) {
        digest.add(number);
    }
    digest.add(&block.nnz, sizeof block.nnz);
    digest.add(block.colind);
    digest.add(block.rowptr);
    digest.add(block.val);
}

HexahedraBlock::HexahedraBlock(const HexahedraSet& set)
    : nele{set.nele}, idele(size(nele), -1), pid(size(nele), -1), ic(size(std::int64_t{nele} * npele), -1)
{
}

void HexahedraBlock::fill()
{
    std::iota(idele.begin(), idele.end(), 1);
    for (std::size_t i = 0; i < pid.size(); ++i) {
        pid[i] = 1 + static_cast<std::int32_t>(i / 1000);
    }
    for (std::size_t i = 0; i < ic.size(); ++i) {
        ic[i] = 1 + static_cast<std::int32_t>(i / 8 + i % 8 * 101);
    }
}

void add(Digest& digest, const HexahedraBlock& block)
{
    for (const Text256* text : {&block.etyp, &block.etypelem, &block.etyppart, &block.etypnode}) {
        digest.add(*text);
    }
    for (const std::int32_t number :
         {block.nele, block.npele, block.ndim, block.nbint, block.nbfloat, block.nindex, block.indexic}) {
        digest.add(number);
    }
    digest.add(block.idele);
    digest.add(block.pid);
    digest.add(block.ic);
}

} // namespace bench
