// SPDX-License-Identifier: BSD-3-Clause
// Blocks that hold a matrix of one entity.

#include "block_scans.hpp"

#include "kob_dp.h"

namespace kob::program {

namespace {

constexpr std::int32_t text_length = 256; // taken by the readers and not looked at

/// What a matrix belongs to.
struct MatrixOwner {
    explicit MatrixOwner(BlockScan& in) : etyp{in.text("etyp")}, entid{in.integer("entid")}, etypvar{in.text("etypvar")}
    {
    }
    Item& etyp;
    Item& entid;
    Item& etypvar;
};

/// Gives the values their shape and reads what is wanted of them, once the attributes are known.
template <class Read>
void read_matrix(BlockScan& in, const StateIndex& index, Item& val, std::vector<std::int64_t> extents, Read&& read)
{
    if (in.older() && in.reads(Depth::index) && index.is_counted()) in.read_whole(); // no pass for the index alone
    val.complex_pairs = in.complex_key();
    if (val.complex_pairs) extents.push_back(2);
    in.shape_leading(val, extents);
    const bool has_index = index.shape(in);
    if (in.reads(Depth::values) && val.is_whole()) { // also compares all extents with the counts
        read(whole_pass, nullptr);
        in.filters_found();
        return;
    }
    if (has_index && in.reads(Depth::index)) read(index_pass, nullptr);
    if (!in.reads(Depth::values) || val.read_count() == 0) return;
    const Piece piece{val};
    read(piece_pass, &piece);
    in.filters_found();
}

const std::int64_t* count_of(const Piece* piece) { return piece != nullptr ? piece->count.data() : nullptr; }
const std::int64_t* start_of(const Piece* piece) { return piece != nullptr ? piece->start.data() : nullptr; }

} // namespace

void scan_dense_matrix(BlockScan& in)
{
    const MatrixOwner owner{in};
    Item& nrow = in.integer("nrow");
    Item& ncolumn = in.integer("ncolumn");
    const StateIndex index{in};
    Item& val = in.reals("val");
    const auto read = [&](std::int32_t pass, const Piece* piece) {
        in.call(KOB_READ_DENSEMATRIX, KOB1_READ_DENSEMATRIX, in.handle(), &pass, owner.etyp.chars(), owner.entid.ints(),
                owner.etypvar.chars(), nrow.ints(), ncolumn.ints(), index.nindex.ints(), index.code(),
                index.indexident.ints(), index.indexval.reals(), val.reals(), in.filter_flags(), in.filter_params(),
                count_of(piece), start_of(piece), StatusArgument{}, text_length, text_length);
    };
    read(attributes_pass, nullptr);
    read_matrix(in, index, val, {nrow.integer(), ncolumn.integer()}, read);
}

void scan_triangular_matrix(BlockScan& in)
{
    const MatrixOwner owner{in};
    Item& nsize = in.integer("nsize");
    Item& matrixtype = in.integer("matrixtype");
    const StateIndex index{in};
    Item& val = in.reals("val");
    const auto read = [&](std::int32_t pass, const Piece* piece) {
        in.call(KOB_READ_TRIANGULARMATRIX, KOB1_READ_TRIANGULARMATRIX, in.handle(), &pass, owner.etyp.chars(),
                owner.entid.ints(), owner.etypvar.chars(), nsize.ints(), matrixtype.ints(), index.nindex.ints(),
                index.code(), index.indexident.ints(), index.indexval.reals(), val.reals(), in.filter_flags(),
                in.filter_params(), count_of(piece), start_of(piece), StatusArgument{}, text_length, text_length);
    };
    read(attributes_pass, nullptr);
    const auto order = static_cast<std::uint32_t>(nsize.integer());
    const std::uint32_t packed = (order + 1) * order / 2; // the library counts in 32 bits
    read_matrix(in, index, val, {packed}, read);
}

void scan_sparse_matrix(BlockScan& in)
{
    const MatrixOwner owner{in};
    Item& nrow = in.integer("nrow");
    Item& nnz = in.long_integer("nnz");
    const StateIndex index{in};
    Item& colind = in.integers("colind");
    Item& rowptr = in.long_integers("rowptr");
    Item& val = in.reals("val");
    const auto read = [&](std::int32_t pass, const Piece* piece) {
        in.call(KOB_READ_SPARSEMATRIX, KOB1_READ_SPARSEMATRIX, in.handle(), &pass, owner.etyp.chars(),
                owner.entid.ints(), owner.etypvar.chars(), nrow.ints(), nnz.longs(), index.nindex.ints(), index.code(),
                index.indexident.ints(), index.indexval.reals(), colind.ints(), rowptr.longs(), val.reals(),
                in.filter_flags(), in.filter_params(), count_of(piece), start_of(piece), StatusArgument{}, text_length,
                text_length);
    };
    read(attributes_pass, nullptr);
    if (in.older() && in.reads(Depth::index) && index.is_counted()) in.read_whole();
    in.shape(colind, {nnz.integer()});
    in.shape(rowptr, {nrow.integer() + 1});
    read_matrix(in, index, val, {nnz.integer()}, read);
}

} // namespace kob::program
