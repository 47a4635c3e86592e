// SPDX-License-Identifier: BSD-3-Clause
// Large blocks of other kinds through the library.
#include "large_blocks.hpp"
#include "ours.hpp"

#include <memory>

namespace bench {
namespace {

constexpr std::int32_t everything = 2;
constexpr std::int32_t no_set = -1;
constexpr std::int32_t no_state = -1;
constexpr std::int32_t eight_bytes = 8;

template <class Block, class Set> std::shared_ptr<Block> filled(const Set& set)
{
    auto block = std::make_shared<Block>(set);
    block->fill();
    return block;
}

Work write_elements(const ElementSet& set, const std::string& file, Digest*)
{
    return [set, file, block = filled<ElementBlock>(set)] {
        ElementBlock& b = *block;
        const File results{file, create};
        for (std::int32_t state = 0; state < set.states; ++state) {
            b.select(state);
            std::int32_t status = 0;
            KOB_WRITE_ELEMENTRESULTS(results.group(), b.etypelem.data(), &b.nele, b.etypvar.data(), &b.ncoo, &b.numl,
                                     &b.ndim, b.etypzone.data(), &b.zoneid, b.etypframe.data(), &b.fswitch,
                                     &b.dmpswitch, &b.nindex, &b.indexic, &b.indexident, &b.indexval, b.idele.data(),
                                     &b.fidglob, nullptr, b.eloc.data(), nullptr, nullptr, b.res.data(), &no_set,
                                     &state, &no_filters, no_params.data(), &eight_bytes, &status);
            check(status, "KOB_WRITE_ELEMENTRESULTS");
        }
    };
}

Work read_elements(const ElementSet& set, const std::string& file, Digest* digest)
{
    return [set, file, digest, block = std::make_shared<ElementBlock>(set)] {
        ElementBlock& b = *block;
        const File results{file, read_only};
        for (std::int32_t state = 0; state < set.states; ++state) {
            const OpenBlock opened{results, path_of(b, state)};
            std::int32_t filters = 0;
            std::array<std::int32_t, 2> params{};
            std::int32_t status = 0;
            KOB_READ_ELEMENTRESULTS(opened.group(), &everything, b.etypelem.data(), &b.nele, b.etypvar.data(), &b.ncoo,
                                    &b.numl, &b.ndim, b.etypzone.data(), &b.zoneid, b.etypframe.data(), &b.fswitch,
                                    &b.dmpswitch, &b.nindex, &b.indexic, &b.indexident, &b.indexval, b.idele.data(),
                                    &b.fidglob, nullptr, b.eloc.data(), nullptr, nullptr, b.res.data(), &filters,
                                    params.data(), &status);
            check(status, "KOB_READ_ELEMENTRESULTS");
            if (digest != nullptr) {
                add(*digest, b);
            }
        }
    };
}

Work write_sparse(const SparseSet& set, const std::string& file, Digest*)
{
    return [file, block = filled<SparseBlock>(set)] {
        const SparseBlock& b = *block;
        const File results{file, create};
        const std::int32_t all_values = 0;
        std::int32_t status = 0;
        KOB_WRITE_SPARSEMATRIX(results.group(), b.etyp.data(), &b.entid, b.etypvar.data(), &b.nrow, &b.nnz, &b.nindex,
                               &b.indexic, nullptr, nullptr, b.colind.data(), b.rowptr.data(), b.val.data(), &no_state,
                               &no_filters, no_params.data(), &eight_bytes, &all_values, nullptr, nullptr, &status, 0,
                               0);
        check(status, "KOB_WRITE_SPARSEMATRIX");
    };
}

Work read_sparse(const SparseSet& set, const std::string& file, Digest* digest)
{
    return [file, digest, block = std::make_shared<SparseBlock>(set)] {
        SparseBlock& b = *block;
        const File results{file, read_only};
        const OpenBlock opened{results, SparseBlock::path};
        std::int32_t filters = 0;
        std::array<std::int32_t, 2> params{};
        std::int32_t status = 0;
        KOB_READ_SPARSEMATRIX(opened.group(), &everything, b.etyp.data(), &b.entid, b.etypvar.data(), &b.nrow, &b.nnz,
                              &b.nindex, &b.indexic, nullptr, nullptr, b.colind.data(), b.rowptr.data(), b.val.data(),
                              &filters, params.data(), nullptr, nullptr, &status, 0, 0);
        check(status, "KOB_READ_SPARSEMATRIX");
        if (digest != nullptr) {
            add(*digest, b);
        }
    };
}

Work write_hexahedra(const HexahedraSet& set, const std::string& file, Digest*)
{
    return [file, block = filled<HexahedraBlock>(set)] {
        const HexahedraBlock& b = *block;
        const File results{file, create};
        const Text256 no_variable = text256("");
        std::int32_t status = 0;
        KOB_WRITE_CONNECTIVITIES(results.group(), b.etyp.data(), b.etypelem.data(), b.etyppart.data(),
                                 b.etypnode.data(), no_variable.data(), &b.nele, &b.npele, &b.ndim, &b.nbint,
                                 &b.nbfloat, &b.nindex, &b.indexic, nullptr, nullptr, b.idele.data(), b.pid.data(),
                                 b.ic.data(), nullptr, nullptr, &no_state, &no_filters, no_params.data(), &eight_bytes,
                                 &status);
        check(status, "KOB_WRITE_CONNECTIVITIES");
    };
}

Work read_hexahedra(const HexahedraSet& set, const std::string& file, Digest* digest)
{
    return [file, digest, block = std::make_shared<HexahedraBlock>(set)] {
        HexahedraBlock& b = *block;
        const File results{file, read_only};
        const OpenBlock opened{results, HexahedraBlock::path};
        const std::int32_t all_sections = 15;
        Text256 no_variable{};
        std::int32_t filters = 0;
        std::array<std::int32_t, 2> params{};
        std::int32_t status = 0;
        KOB_READ_CONNECTIVITIES(opened.group(), &all_sections, b.etyp.data(), b.etypelem.data(), b.etyppart.data(),
                                b.etypnode.data(), no_variable.data(), &b.nele, &b.npele, &b.ndim, &b.nbint, &b.nbfloat,
                                &b.nindex, &b.indexic, nullptr, nullptr, b.idele.data(), b.pid.data(), b.ic.data(),
                                nullptr, nullptr, &filters, params.data(), &status);
        check(status, "KOB_READ_CONNECTIVITIES");
        if (digest != nullptr) {
            add(*digest, b);
        }
    };
}

} // namespace

template <> const Program<ElementSet> Programs<ElementSet>::ours{write_elements, read_elements};
template <> const Program<SparseSet> Programs<SparseSet>::ours{write_sparse, read_sparse};
template <> const Program<HexahedraSet> Programs<HexahedraSet>::ours{write_hexahedra, read_hexahedra};

} // namespace bench
