// SPDX-License-Identifier: BSD-3-Clause
// Large blocks of other kinds in plain HDF5, each for one known layout.
#include "large_blocks.hpp"
#include "raw.hpp"
#include "results.hpp"

#include <memory>

namespace bench {
namespace {

hsize_t extent(std::int64_t count) { return static_cast<hsize_t>(count); }

template <class Block, class Set> std::shared_ptr<Block> filled(const Set& set)
{
    auto block = std::make_shared<Block>(set);
    block->fill();
    return block;
}

void write_elements_block(const BlockWriter& to, hid_t group, const ElementBlock& b)
{
    const hsize_t nele = extent(b.nele);
    to.frame(group, 1100);
    to.text(group, "etypelem", b.etypelem);
    to.integer(group, "nele", b.nele);
    to.text(group, "etypvar", b.etypvar);
    to.integer(group, "ncoo", b.ncoo);
    to.integer(group, "numl", b.numl);
    to.integer(group, "ndim", b.ndim);
    to.text(group, "etypzone", b.etypzone);
    to.integer(group, "zoneid", b.zoneid);
    to.text(group, "etypframe", b.etypframe);
    to.integer(group, "fswitch", b.fswitch);
    to.integer(group, "dmpswitch", b.dmpswitch);
    to.integer(group, "nindex", b.nindex);
    to.integer(group, "indexic", b.indexic);
    to.dataset(group, "indexident", H5T_NATIVE_INT, {1}, &b.indexident);
    to.dataset(group, "indexval", H5T_NATIVE_DOUBLE, {1}, &b.indexval);
    to.dataset(group, "idele", H5T_NATIVE_INT, {nele}, b.idele.data());
    to.single(group, "fidglob", b.fidglob);
    to.dataset(group, "eloc", H5T_NATIVE_DOUBLE, {extent(b.numl), extent(b.ndim)}, b.eloc.data());
    to.dataset(group, "res", H5T_NATIVE_DOUBLE, {nele, extent(b.numl), extent(b.ncoo)}, b.res.data());
}

Work write_elements(const ElementSet& set, const std::string& file_name, Digest*)
{
    return [set, file_name, block = filled<ElementBlock>(set)] {
        const NewFile file{file_name};
        const GroupChain states{file.run(), {"singlestate"}};
        const BlockWriter to{"elementresults"};
        for (std::int32_t state = 0; state < set.states; ++state) {
            const std::string name = state_path(state);
            const GroupChain place{
                states.last(), {name.c_str() + name.find('/') + 1, "elementresults", "HEXA8", "STRESS", "kobblock"}};
            block->select(state);
            write_elements_block(to, place.last(), *block);
        }
    };
}

void read_elements_block(hid_t group, hid_t text, ElementBlock& b)
{
    std::int32_t key = 0;
    read_attribute(group, "block", H5T_NATIVE_INT, &key);
    read_attribute(group, "etypelem", text, b.etypelem.data());
    read_attribute(group, "nele", H5T_NATIVE_INT, &b.nele);
    read_attribute(group, "etypvar", text, b.etypvar.data());
    read_attribute(group, "ncoo", H5T_NATIVE_INT, &b.ncoo);
    read_attribute(group, "numl", H5T_NATIVE_INT, &b.numl);
    read_attribute(group, "ndim", H5T_NATIVE_INT, &b.ndim);
    read_attribute(group, "etypzone", text, b.etypzone.data());
    read_attribute(group, "zoneid", H5T_NATIVE_INT, &b.zoneid);
    read_attribute(group, "etypframe", text, b.etypframe.data());
    read_attribute(group, "fswitch", H5T_NATIVE_INT, &b.fswitch);
    read_attribute(group, "dmpswitch", H5T_NATIVE_INT, &b.dmpswitch);
    read_attribute(group, "nindex", H5T_NATIVE_INT, &b.nindex);
    read_attribute(group, "indexic", H5T_NATIVE_INT, &b.indexic);
    read_dataset(group, "indexident", H5T_NATIVE_INT, &b.indexident);
    read_dataset(group, "indexval", H5T_NATIVE_DOUBLE, &b.indexval);
    read_dataset(group, "idele", H5T_NATIVE_INT, b.idele.data());
    read_dataset(group, "fidglob", H5T_NATIVE_INT, &b.fidglob);
    read_dataset(group, "eloc", H5T_NATIVE_DOUBLE, b.eloc.data());
    read_dataset(group, "res", H5T_NATIVE_DOUBLE, b.res.data());
}

/// Opens a block for as long as it is read.
template <class Read> void with_block(const OldFile& file, const std::string& path, const Read& read_block)
{
    const hid_t group = must(H5Gopen2(file.post(), path.c_str(), H5P_DEFAULT));
    read_block(group);
    must(H5Gclose(group));
}

Work read_elements(const ElementSet& set, const std::string& file_name, Digest* digest)
{
    return [set, file_name, digest, block = std::make_shared<ElementBlock>(set)] {
        const OldFile file{file_name};
        const hid_t text = text_type();
        for (std::int32_t state = 0; state < set.states; ++state) {
            with_block(file, path_of(*block, state), [&](hid_t group) { read_elements_block(group, text, *block); });
            if (digest != nullptr) {
                add(*digest, *block);
            }
        }
        must(H5Tclose(text));
    };
}

Work write_sparse(const SparseSet& set, const std::string& file_name, Digest*)
{
    return [file_name, block = filled<SparseBlock>(set)] {
        const SparseBlock& b = *block;
        const NewFile file{file_name};
        const GroupChain place{file.run(), {"constant", "sparsematrix", "NODE", "STIFFNESS", "id1", "kobblock"}};
        const hid_t group = place.last();
        const BlockWriter to{"sparsematrix"};
        to.frame(group, 10200);
        to.text(group, "etyp", b.etyp);
        to.integer(group, "entid", b.entid);
        to.text(group, "etypvar", b.etypvar);
        to.integer(group, "nrow", b.nrow);
        to.attribute(group, "nnz", H5T_NATIVE_INT64, &b.nnz);
        to.integer(group, "nindex", b.nindex);
        to.integer(group, "indexic", b.indexic);
        to.dataset(group, "colind", H5T_NATIVE_INT, {extent(b.nnz)}, b.colind.data());
        to.dataset(group, "rowptr", H5T_NATIVE_INT64, {extent(b.nrow) + 1}, b.rowptr.data());
        to.dataset(group, "val", H5T_NATIVE_DOUBLE, {extent(b.nnz)}, b.val.data());
    };
}

Work read_sparse(const SparseSet& set, const std::string& file_name, Digest* digest)
{
    return [file_name, digest, block = std::make_shared<SparseBlock>(set)] {
        SparseBlock& b = *block;
        const OldFile file{file_name};
        const hid_t text = text_type();
        with_block(file, SparseBlock::path, [&](hid_t group) {
            std::int32_t key = 0;
            read_attribute(group, "block", H5T_NATIVE_INT, &key);
            read_attribute(group, "etyp", text, b.etyp.data());
            read_attribute(group, "entid", H5T_NATIVE_INT, &b.entid);
            read_attribute(group, "etypvar", text, b.etypvar.data());
            read_attribute(group, "nrow", H5T_NATIVE_INT, &b.nrow);
            read_attribute(group, "nnz", H5T_NATIVE_INT64, &b.nnz);
            read_attribute(group, "nindex", H5T_NATIVE_INT, &b.nindex);
            read_attribute(group, "indexic", H5T_NATIVE_INT, &b.indexic);
            read_dataset(group, "colind", H5T_NATIVE_INT, b.colind.data());
            read_dataset(group, "rowptr", H5T_NATIVE_INT64, b.rowptr.data());
            read_dataset(group, "val", H5T_NATIVE_DOUBLE, b.val.data());
        });
        must(H5Tclose(text));
        if (digest != nullptr) {
            add(*digest, b);
        }
    };
}

Work write_hexahedra(const HexahedraSet& set, const std::string& file_name, Digest*)
{
    return [file_name, block = filled<HexahedraBlock>(set)] {
        const HexahedraBlock& b = *block;
        const NewFile file{file_name};
        const GroupChain place{file.run(), {"constant", "connectivities", "HEXA8", "kobblock"}};
        const hid_t group = place.last();
        const BlockWriter to{"connectivities"};
        to.frame(group, 300);
        to.text(group, "etyp", b.etyp);
        to.text(group, "etypelem", b.etypelem);
        to.text(group, "etyppart", b.etyppart);
        to.text(group, "etypnode", b.etypnode);
        to.integer(group, "nele", b.nele);
        to.integer(group, "npele", b.npele);
        to.integer(group, "ndim", b.ndim);
        to.integer(group, "nbint", b.nbint);
        to.integer(group, "nbfloat", b.nbfloat);
        to.integer(group, "nindex", b.nindex);
        to.integer(group, "indexic", b.indexic);
        to.dataset(group, "idele", H5T_NATIVE_INT, {extent(b.nele)}, b.idele.data());
        to.dataset(group, "pid", H5T_NATIVE_INT, {extent(b.nele)}, b.pid.data());
        to.dataset(group, "ic", H5T_NATIVE_INT, {extent(b.nele), extent(b.npele)}, b.ic.data());
    };
}

Work read_hexahedra(const HexahedraSet& set, const std::string& file_name, Digest* digest)
{
    return [file_name, digest, block = std::make_shared<HexahedraBlock>(set)] {
        HexahedraBlock& b = *block;
        const OldFile file{file_name};
        const hid_t text = text_type();
        with_block(file, HexahedraBlock::path, [&](hid_t group) {
            std::int32_t key = 0;
            read_attribute(group, "block", H5T_NATIVE_INT, &key);
            read_attribute(group, "etyp", text, b.etyp.data());
            read_attribute(group, "etypelem", text, b.etypelem.data());
            read_attribute(group, "etyppart", text, b.etyppart.data());
            read_attribute(group, "etypnode", text, b.etypnode.data());
            read_attribute(group, "nele", H5T_NATIVE_INT, &b.nele);
            read_attribute(group, "npele", H5T_NATIVE_INT, &b.npele);
            read_attribute(group, "ndim", H5T_NATIVE_INT, &b.ndim);
            read_attribute(group, "nbint", H5T_NATIVE_INT, &b.nbint);
            read_attribute(group, "nbfloat", H5T_NATIVE_INT, &b.nbfloat);
            read_attribute(group, "nindex", H5T_NATIVE_INT, &b.nindex);
            read_attribute(group, "indexic", H5T_NATIVE_INT, &b.indexic);
            read_dataset(group, "idele", H5T_NATIVE_INT, b.idele.data());
            read_dataset(group, "pid", H5T_NATIVE_INT, b.pid.data());
            read_dataset(group, "ic", H5T_NATIVE_INT, b.ic.data());
        });
        must(H5Tclose(text));
        if (digest != nullptr) {
            add(*digest, b);
        }
    };
}

} // namespace

template <> const Program<ElementSet> Programs<ElementSet>::raw{write_elements, read_elements};
template <> const Program<SparseSet> Programs<SparseSet>::raw{write_sparse, read_sparse};
template <> const Program<HexahedraSet> Programs<HexahedraSet>::raw{write_hexahedra, read_hexahedra};

} // namespace bench
