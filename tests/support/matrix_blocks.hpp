// SPDX-License-Identifier: BSD-3-Clause
// The arguments of the matrix blocks' entry points, with a small matrix as the default of each.
#pragma once

#include <array>
#include <cstdint>
#include <tuple>
#include <vector>

#include <kob_dp.h>

#include "block_call.hpp"
#include "kob_file.hpp"

namespace kob_test {

/// What the matrix blocks have in common.
struct Matrix {
    Text256 etyp = "SUPERELEMENT";
    std::int32_t entid = 17;
    Text256 etypvar = "STIFFNESS";
    std::int32_t nindex = 1;
    std::int32_t indexic = 7;
    std::vector<std::int32_t> indexident{12};
    std::vector<double> indexval{0.125};
    std::vector<double> val{};
    std::int32_t state = -1;
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{0, 0};
    std::int32_t value_size = 8;
    std::int32_t mode = 0;
    std::vector<std::int64_t> count{};
    std::vector<std::int64_t> start{};

    void select(std::int32_t access_mode, std::vector<std::int64_t> counts, std::vector<std::int64_t> starts)
    {
        mode = access_mode;
        count = std::move(counts);
        start = std::move(starts);
    }

    static std::vector<double> numbered(std::size_t numbers, double first = 0.5)
    {
        std::vector<double> values(numbers);
        for (std::size_t i = 0; i < numbers; ++i) values[i] = first + static_cast<double>(i);
        return values;
    }
};

/// A text length, which the matrix entry points take and do not look at.
constexpr std::int32_t text_length = 256;

struct DenseMatrix : Matrix {
    std::int32_t nrow = 3;
    std::int32_t ncolumn = 2;

    DenseMatrix() { val = numbered(6); }

    Outcome write(const std::int64_t* group) const
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_DENSEMATRIX(group, etyp.data(), &entid, etypvar.data(), &nrow, &ncolumn, &nindex, &indexic,
                                  indexident.data(), indexval.data(), val.data(), &state, &filter_flags,
                                  filter_params.data(), &value_size, &mode, count.data(), start.data(), status,
                                  text_length, text_length);
        });
    }
    Outcome write(const KobFile& file) const { return write(file.address()); }

    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_DENSEMATRIX(&block, &pass, etyp.data(), &entid, etypvar.data(), &nrow, &ncolumn, &nindex, &indexic,
                                 indexident.data(), indexval.data(), val.data(), &filter_flags, filter_params.data(),
                                 count.data(), start.data(), status, text_length, text_length);
        });
    }
};

inline auto fields_of(const DenseMatrix* /*unused*/)
{
    using B = DenseMatrix;
    return std::make_tuple(Field<B, Text256>{"etyp", section::attributes, &B::etyp},
                           Field<B, std::int32_t>{"entid", section::attributes, &B::entid},
                           Field<B, Text256>{"etypvar", section::attributes, &B::etypvar},
                           Field<B, std::int32_t>{"nrow", section::attributes, &B::nrow},
                           Field<B, std::int32_t>{"ncolumn", section::attributes, &B::ncolumn},
                           Field<B, std::int32_t>{"nindex", section::attributes, &B::nindex},
                           Field<B, std::int32_t>{"indexic", section::attributes, &B::indexic},
                           Field<B, std::vector<std::int32_t>>{"indexident", section::index, &B::indexident},
                           Field<B, std::vector<double>>{"indexval", section::index, &B::indexval},
                           Field<B, std::vector<double>>{"val", section::values, &B::val},
                           Field<B, std::int32_t>{"filter_flags", section::filters, &B::filter_flags},
                           Field<B, std::array<std::int32_t, 2>>{"filter_params", section::filters, &B::filter_params});
}

struct TriangularMatrix : Matrix {
    std::int32_t nsize = 4;
    std::int32_t matrixtype = -5;

    TriangularMatrix() { val = numbered(10); }

    Outcome write(const std::int64_t* group) const
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_TRIANGULARMATRIX(group, etyp.data(), &entid, etypvar.data(), &nsize, &matrixtype, &nindex,
                                       &indexic, indexident.data(), indexval.data(), val.data(), &state, &filter_flags,
                                       filter_params.data(), &value_size, &mode, count.data(), start.data(), status,
                                       text_length, text_length);
        });
    }
    Outcome write(const KobFile& file) const { return write(file.address()); }

    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_TRIANGULARMATRIX(&block, &pass, etyp.data(), &entid, etypvar.data(), &nsize, &matrixtype, &nindex,
                                      &indexic, indexident.data(), indexval.data(), val.data(), &filter_flags,
                                      filter_params.data(), count.data(), start.data(), status, text_length,
                                      text_length);
        });
    }
};

inline auto fields_of(const TriangularMatrix* /*unused*/)
{
    using B = TriangularMatrix;
    return std::make_tuple(Field<B, Text256>{"etyp", section::attributes, &B::etyp},
                           Field<B, std::int32_t>{"entid", section::attributes, &B::entid},
                           Field<B, Text256>{"etypvar", section::attributes, &B::etypvar},
                           Field<B, std::int32_t>{"nsize", section::attributes, &B::nsize},
                           Field<B, std::int32_t>{"matrixtype", section::attributes, &B::matrixtype},
                           Field<B, std::int32_t>{"nindex", section::attributes, &B::nindex},
                           Field<B, std::int32_t>{"indexic", section::attributes, &B::indexic},
                           Field<B, std::vector<std::int32_t>>{"indexident", section::index, &B::indexident},
                           Field<B, std::vector<double>>{"indexval", section::index, &B::indexval},
                           Field<B, std::vector<double>>{"val", section::values, &B::val},
                           Field<B, std::int32_t>{"filter_flags", section::filters, &B::filter_flags},
                           Field<B, std::array<std::int32_t, 2>>{"filter_params", section::filters, &B::filter_params});
}

struct SparseMatrix : Matrix {
    std::int32_t nrow = 3;
    std::int64_t nnz = 5;
    std::vector<std::int32_t> colind{0, 2, 1, 0, 2};
    std::vector<std::int64_t> rowptr{0, 2, 3, 5};

    SparseMatrix() { val = numbered(5); }

    Outcome write(const std::int64_t* group) const
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_SPARSEMATRIX(group, etyp.data(), &entid, etypvar.data(), &nrow, &nnz, &nindex, &indexic,
                                   indexident.data(), indexval.data(), colind.data(), rowptr.data(), val.data(), &state,
                                   &filter_flags, filter_params.data(), &value_size, &mode, count.data(), start.data(),
                                   status, text_length, text_length);
        });
    }
    Outcome write(const KobFile& file) const { return write(file.address()); }

    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_SPARSEMATRIX(&block, &pass, etyp.data(), &entid, etypvar.data(), &nrow, &nnz, &nindex, &indexic,
                                  indexident.data(), indexval.data(), colind.data(), rowptr.data(), val.data(),
                                  &filter_flags, filter_params.data(), count.data(), start.data(), status, text_length,
                                  text_length);
        });
    }
};

inline auto fields_of(const SparseMatrix* /*unused*/)
{
    using B = SparseMatrix;
    return std::make_tuple(Field<B, Text256>{"etyp", section::attributes, &B::etyp},
                           Field<B, std::int32_t>{"entid", section::attributes, &B::entid},
                           Field<B, Text256>{"etypvar", section::attributes, &B::etypvar},
                           Field<B, std::int32_t>{"nrow", section::attributes, &B::nrow},
                           Field<B, std::int64_t>{"nnz", section::attributes, &B::nnz},
                           Field<B, std::int32_t>{"nindex", section::attributes, &B::nindex},
                           Field<B, std::int32_t>{"indexic", section::attributes, &B::indexic},
                           Field<B, std::vector<std::int32_t>>{"indexident", section::index, &B::indexident},
                           Field<B, std::vector<double>>{"indexval", section::index, &B::indexval},
                           Field<B, std::vector<std::int32_t>>{"colind", section::identifiers, &B::colind},
                           Field<B, std::vector<std::int64_t>>{"rowptr", section::identifiers, &B::rowptr},
                           Field<B, std::vector<double>>{"val", section::values, &B::val},
                           Field<B, std::int32_t>{"filter_flags", section::filters, &B::filter_flags},
                           Field<B, std::array<std::int32_t, 2>>{"filter_params", section::filters, &B::filter_params});
}

} // namespace kob_test
