// SPDX-License-Identifier: BSD-3-Clause
// Matrix blocks: dense, triangular, sparse. One scheme; each kind says its sizes, its structure and its values' shape.
#include "kob_block.hpp"
#include "kob_dp.h"

namespace kob {
namespace {

/// What a matrix belongs to.
template <class Io> struct MatrixOwner {
    Arg<Io, char> etyp;
    Arg<Io, std::int32_t> entid;
    Arg<Io, char> etypvar;
};

template <class Io> void attributes(Io& io, const MatrixOwner<Io>& b)
{
    io.text("etyp", b.etyp);
    io.integer("entid", b.entid);
    io.text("etypvar", b.etypvar);
}

/// A full matrix, row after row.
template <class Io> struct DenseMatrix {
    MatrixOwner<Io> owner;
    Arg<Io, std::int32_t> nrow;
    Arg<Io, std::int32_t> ncolumn;
    StateIndex<Io> index;
    Arg<Io, double> val; ///< [nrow, ncolumn(, 2)]

    static constexpr std::int32_t rank = 2;
    [[nodiscard]] Shape shape() const { return {*nrow, *ncolumn}; }
};

template <class Io> void attributes(Io& io, const DenseMatrix<Io>& b)
{
    attributes(io, b.owner);
    io.integer("nrow", b.nrow);
    io.integer("ncolumn", b.ncolumn);
    attributes(io, b.index);
}

template <class Io> void structure(Io&, const DenseMatrix<Io>&) {}

/// One triangle of a square matrix, packed.
template <class Io> struct TriangularMatrix {
    MatrixOwner<Io> owner;
    Arg<Io, std::int32_t> nsize;
    Arg<Io, std::int32_t> matrixtype; ///< the caller's code
    StateIndex<Io> index;
    Arg<Io, double> val; ///< [nsize (nsize + 1) / 2(, 2)]

    static constexpr std::int32_t rank = 1;
    /// In 32 bits by contract: the product wraps.
    [[nodiscard]] Shape shape() const
    {
        const auto order = static_cast<std::uint32_t>(*nsize);
        return {static_cast<std::int64_t>(((order + 1U) * order) >> 1U)};
    }
};

template <class Io> void attributes(Io& io, const TriangularMatrix<Io>& b)
{
    attributes(io, b.owner);
    io.integer("nsize", b.nsize);
    io.integer("matrixtype", b.matrixtype);
    attributes(io, b.index);
}

template <class Io> void structure(Io&, const TriangularMatrix<Io>&) {}

/// A matrix in compressed rows. Whether indices count from 0 or 1 is the caller's convention.
template <class Io> struct SparseMatrix {
    MatrixOwner<Io> owner;
    Arg<Io, std::int32_t> nrow;
    Arg<Io, std::int64_t> nnz;
    StateIndex<Io> index;
    Arg<Io, std::int32_t> colind; ///< [nnz]
    Arg<Io, std::int64_t> rowptr; ///< [nrow + 1]
    Arg<Io, double> val;          ///< [nnz(, 2)]

    static constexpr std::int32_t rank = 1;
    [[nodiscard]] Shape shape() const { return {*nnz}; }
};

template <class Io> void attributes(Io& io, const SparseMatrix<Io>& b)
{
    attributes(io, b.owner);
    io.integer("nrow", b.nrow);
    io.long_integer("nnz", b.nnz);
    attributes(io, b.index);
}

template <class Io> void structure(Io& io, const SparseMatrix<Io>& b)
{
    if (io.ok()) {
        io.integers("colind", b.colind, {*b.nnz});
        io.long_integers("rowptr", b.rowptr, {std::int64_t{*b.nrow} + 1});
    }
}

/// The values, or the part of them that is asked for. A part that is read asks nobody for the sizes.
template <class Io, class Matrix> void values(Io& io, const Matrix& b, bool complex, const Part& part)
{
    if (!io.ok()) {
        return;
    }
    const bool needs_extents = Io::writes || part.is_whole();
    const Shape shape = needs_extents ? b.shape() : Shape::of_rank(Matrix::rank);
    io.reals("val", b.val.get(), shape.with_parts(complex), part);
}

/// What names the place of a matrix.
struct MatrixName {
    const char* etyp;
    std::int32_t entid;
    const char* etypvar;
};

template <class Matrix>
std::int32_t write_matrix(Location group, const BlockKind& kind, const Matrix& b, const MatrixName& name,
                          const std::int32_t* state, const Filters& filters, std::int32_t value_size, const Part& part)
{
    Placed placed =
        place_block(group, {validity_of(b.index, state), {kind.name, name.etyp, name.etypvar, "id"}, name.entid});
    if (placed.status < 0) {
        return placed.status;
    }
    const ValueSize size = value_size_of(value_size);
    const std::int32_t key = kind.key_of(size.complex);
    if (!placed.group) {
        return refuse_group(placed.location(), kind, key);
    }
    Writer io{placed.location(), filters, size.stored, placed.place()};
    if (placed.is_new()) {
        io.frame(kind, key);
        attributes(io, b);
        values(io, b.index);
        structure(io, b);
    }
    if (io.ok() && !part.is_known()) {
        report_error(message::writing_invalid_mode, key);
        io.fail(invalid_mode);
    }
    values(io, b, size.complex, part);
    return io.ok() && placed.group.close() < 0 ? -1 : io.status();
}

/// Passes: 0 attributes and state index, 1 attributes, 2 everything, 3 a block of the values, 4 points of them.
template <class Matrix>
std::int32_t read_matrix(Location block, const BlockKind& kind, const Matrix& b, std::int32_t pass,
                         std::int32_t* filter_flags, std::int32_t* filter_params, const std::int64_t* count,
                         const std::int64_t* start)
{
    if (pass < (block.is_current() ? 0 : 1) || pass > 4) {
        report_error(message::reading_pass_of_two, kind.key, kind.complex_key);
        return wrong_pass;
    }
    Reader io{block, kind};
    if (pass <= 2) {
        attributes(io, b);
    }
    const auto read_index = [&] {
        if (pass == 0 || pass == 2) {
            values(io, b.index);
        }
    };
    const auto read_values = [&] {
        if (pass >= 2) {
            structure(io, b);
            values(io, b, io.is_complex(), pass == 2 ? Part{} : Part{pass - 2, count, start});
        }
    };
    read_in_order(io, read_index, read_values);
    if (pass >= 2) {
        io.report_filters("val", filter_flags, filter_params);
    }
    io.key_as_status();
    return io.status();
}

} // namespace
} // namespace kob

extern "C" {

void KOB_WRITE_DENSEMATRIX(const int64_t* group, const char* etyp, const int32_t* entid, const char* etypvar,
                           const int32_t* nrow, const int32_t* ncolumn, const int32_t* nindex, const int32_t* indexic,
                           const int32_t* indexident, const double* indexval, const double* val, const int32_t* state,
                           const int32_t* filter_flags, const int32_t* filter_params, const int32_t* value_size,
                           const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* status, int32_t,
                           int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const DenseMatrix<Writer> b{
            {etyp, entid, etypvar}, nrow, ncolumn, {nindex, indexic, indexident, indexval}, val};
        return write_matrix(value(group), kind::dense_matrix, b, {etyp, value(entid), etypvar}, state,
                            {filter_flags, filter_params}, value(value_size), {value(mode), count, start});
    });
}

void KOB_READ_DENSEMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid, char* etypvar,
                          int32_t* nrow, int32_t* ncolumn, int32_t* nindex, int32_t* indexic, int32_t* indexident,
                          double* indexval, double* val, int32_t* filter_flags, int32_t* filter_params,
                          const int64_t* count, const int64_t* start, int32_t* status, int32_t, int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const DenseMatrix<Reader> b{
            {etyp, entid, etypvar}, nrow, ncolumn, {nindex, indexic, indexident, indexval}, val};
        return read_matrix(value(block), kind::dense_matrix, b, value(pass), filter_flags, filter_params, count, start);
    });
}

void KOB_WRITE_TRIANGULARMATRIX(const int64_t* group, const char* etyp, const int32_t* entid, const char* etypvar,
                                const int32_t* nsize, const int32_t* matrixtype, const int32_t* nindex,
                                const int32_t* indexic, const int32_t* indexident, const double* indexval,
                                const double* val, const int32_t* state, const int32_t* filter_flags,
                                const int32_t* filter_params, const int32_t* value_size, const int32_t* mode,
                                const int64_t* count, const int64_t* start, int32_t* status, int32_t, int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const TriangularMatrix<Writer> b{
            {etyp, entid, etypvar}, nsize, matrixtype, {nindex, indexic, indexident, indexval}, val};
        return write_matrix(value(group), kind::triangular_matrix, b, {etyp, value(entid), etypvar}, state,
                            {filter_flags, filter_params}, value(value_size), {value(mode), count, start});
    });
}

void KOB_READ_TRIANGULARMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid, char* etypvar,
                               int32_t* nsize, int32_t* matrixtype, int32_t* nindex, int32_t* indexic,
                               int32_t* indexident, double* indexval, double* val, int32_t* filter_flags,
                               int32_t* filter_params, const int64_t* count, const int64_t* start, int32_t* status,
                               int32_t, int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const TriangularMatrix<Reader> b{
            {etyp, entid, etypvar}, nsize, matrixtype, {nindex, indexic, indexident, indexval}, val};
        return read_matrix(value(block), kind::triangular_matrix, b, value(pass), filter_flags, filter_params, count,
                           start);
    });
}

void KOB_WRITE_SPARSEMATRIX(const int64_t* group, const char* etyp, const int32_t* entid, const char* etypvar,
                            const int32_t* nrow, const int64_t* nnz, const int32_t* nindex, const int32_t* indexic,
                            const int32_t* indexident, const double* indexval, const int32_t* colind,
                            const int64_t* rowptr, const double* val, const int32_t* state, const int32_t* filter_flags,
                            const int32_t* filter_params, const int32_t* value_size, const int32_t* mode,
                            const int64_t* count, const int64_t* start, int32_t* status, int32_t, int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const SparseMatrix<Writer> b{
            {etyp, entid, etypvar}, nrow, nnz, {nindex, indexic, indexident, indexval}, colind, rowptr, val};
        return write_matrix(value(group), kind::sparse_matrix, b, {etyp, value(entid), etypvar}, state,
                            {filter_flags, filter_params}, value(value_size), {value(mode), count, start});
    });
}

void KOB_READ_SPARSEMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid, char* etypvar,
                           int32_t* nrow, int64_t* nnz, int32_t* nindex, int32_t* indexic, int32_t* indexident,
                           double* indexval, int32_t* colind, int64_t* rowptr, double* val, int32_t* filter_flags,
                           int32_t* filter_params, const int64_t* count, const int64_t* start, int32_t* status, int32_t,
                           int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const SparseMatrix<Reader> b{
            {etyp, entid, etypvar}, nrow, nnz, {nindex, indexic, indexident, indexval}, colind, rowptr, val};
        return read_matrix(value(block), kind::sparse_matrix, b, value(pass), filter_flags, filter_params, count,
                           start);
    });
}

// ---- older layout

void KOB1_WRITE_DENSEMATRIX(const int64_t* group, const char* etyp, const int32_t* entid, const char* etypvar,
                            const int32_t* nrow, const int32_t* ncolumn, const int32_t* nindex,
                            const int32_t* indexident, const double* indexval, const double* val, const int32_t* state,
                            const int32_t* filter_flags, const int32_t* filter_params, const int32_t* value_size,
                            const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* status, int32_t,
                            int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const DenseMatrix<Writer> b{
            {etyp, entid, etypvar}, nrow, ncolumn, {nindex, nullptr, indexident, indexval}, val};
        return write_matrix(older(group), kind::dense_matrix, b, {etyp, value(entid), etypvar}, state,
                            {filter_flags, filter_params}, value(value_size), {value(mode), count, start});
    });
}

void KOB1_READ_DENSEMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid, char* etypvar,
                           int32_t* nrow, int32_t* ncolumn, int32_t* nindex, int32_t* indexident, double* indexval,
                           double* val, int32_t* filter_flags, int32_t* filter_params, const int64_t* count,
                           const int64_t* start, int32_t* status, int32_t, int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const DenseMatrix<Reader> b{
            {etyp, entid, etypvar}, nrow, ncolumn, {nindex, nullptr, indexident, indexval}, val};
        return read_matrix(older(block), kind::dense_matrix, b, value(pass), filter_flags, filter_params, count, start);
    });
}

void KOB1_WRITE_TRIANGULARMATRIX(const int64_t* group, const char* etyp, const int32_t* entid, const char* etypvar,
                                 const int32_t* nsize, const int32_t* matrixtype, const int32_t* nindex,
                                 const int32_t* indexident, const double* indexval, const double* val,
                                 const int32_t* state, const int32_t* filter_flags, const int32_t* filter_params,
                                 const int32_t* value_size, const int32_t* mode, const int64_t* count,
                                 const int64_t* start, int32_t* status, int32_t, int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const TriangularMatrix<Writer> b{
            {etyp, entid, etypvar}, nsize, matrixtype, {nindex, nullptr, indexident, indexval}, val};
        return write_matrix(older(group), kind::triangular_matrix, b, {etyp, value(entid), etypvar}, state,
                            {filter_flags, filter_params}, value(value_size), {value(mode), count, start});
    });
}

void KOB1_READ_TRIANGULARMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid, char* etypvar,
                                int32_t* nsize, int32_t* matrixtype, int32_t* nindex, int32_t* indexident,
                                double* indexval, double* val, int32_t* filter_flags, int32_t* filter_params,
                                const int64_t* count, const int64_t* start, int32_t* status, int32_t, int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const TriangularMatrix<Reader> b{
            {etyp, entid, etypvar}, nsize, matrixtype, {nindex, nullptr, indexident, indexval}, val};
        return read_matrix(older(block), kind::triangular_matrix, b, value(pass), filter_flags, filter_params, count,
                           start);
    });
}

void KOB1_WRITE_SPARSEMATRIX(const int64_t* group, const char* etyp, const int32_t* entid, const char* etypvar,
                             const int32_t* nrow, const int64_t* nnz, const int32_t* nindex, const int32_t* indexident,
                             const double* indexval, const int32_t* colind, const int64_t* rowptr, const double* val,
                             const int32_t* state, const int32_t* filter_flags, const int32_t* filter_params,
                             const int32_t* value_size, const int32_t* mode, const int64_t* count, const int64_t* start,
                             int32_t* status, int32_t, int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const SparseMatrix<Writer> b{
            {etyp, entid, etypvar}, nrow, nnz, {nindex, nullptr, indexident, indexval}, colind, rowptr, val};
        return write_matrix(older(group), kind::sparse_matrix, b, {etyp, value(entid), etypvar}, state,
                            {filter_flags, filter_params}, value(value_size), {value(mode), count, start});
    });
}

void KOB1_READ_SPARSEMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid, char* etypvar,
                            int32_t* nrow, int64_t* nnz, int32_t* nindex, int32_t* indexident, double* indexval,
                            int32_t* colind, int64_t* rowptr, double* val, int32_t* filter_flags,
                            int32_t* filter_params, const int64_t* count, const int64_t* start, int32_t* status,
                            int32_t, int32_t)
{
    using namespace kob;
    entry(status, [&] {
        const SparseMatrix<Reader> b{
            {etyp, entid, etypvar}, nrow, nnz, {nindex, nullptr, indexident, indexval}, colind, rowptr, val};
        return read_matrix(older(block), kind::sparse_matrix, b, value(pass), filter_flags, filter_params, count,
                           start);
    });
}

} // extern "C"
