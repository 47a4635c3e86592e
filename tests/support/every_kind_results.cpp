// SPDX-License-Identifier: BSD-3-Clause
// Writes the blocks of every_kind.hpp that hold results; their numbers are small enough to be known by heart in a test.
#include "every_kind.hpp"

#include <numeric>

#include "matrix_blocks.hpp"
#include "result_blocks.hpp"

namespace kob_test {
namespace {

void write_matrices(const KobFile& file)
{
    EXPECT_EQ(DenseMatrix{}.write(file).status, 0);
    EXPECT_EQ(TriangularMatrix{}.write(file).status, 0);
    EXPECT_EQ(SparseMatrix{}.write(file).status, 0);
    SparseMatrix from_one; // the same, complex and counted from 1
    from_one.etypvar = "MASS";
    from_one.colind = {1, 3, 2, 1, 3};
    from_one.rowptr = {1, 3, 4, 6};
    from_one.val = Matrix::numbered(10);
    from_one.value_size = 32;
    EXPECT_EQ(from_one.write(file).status, 0);
}

} // namespace

void write_result_kinds(KobFile& file)
{
    EXPECT_EQ(ElementResults{}.write(file).status, 0);
    EXPECT_EQ(MultiEntityResults{3}.write(file).status, 0);
    EXPECT_EQ(MultiElementResults{2}.write(file).status, 0);
    EXPECT_EQ(MultiActivFlags{3}.write(file).status, 0);
    write_matrices(file);
}

void write_quad_results(KobFile& file)
{
    ElementResults results;
    results.etypelem = "QUAD4";
    results.idele = {11, 12};
    EXPECT_EQ(results.write(file).status, 0);
    MultiElementResults series{2};
    series.etypelem = "QUAD4";
    series.idele = {11, 12};
    EXPECT_EQ(series.write(file).status, 0);
    MultiActivFlags flags;
    flags.etyp = "ELEMENT";
    flags.nent = 2;
    flags.entid = {11, 12};
    flags.hold(2); // 0 and 1, then 100 and 101
    EXPECT_EQ(flags.write(file).status, 0);
}

void write_node_matrix(KobFile& file, std::int32_t node)
{
    DenseMatrix matrix;
    matrix.etyp = "NODE";
    matrix.entid = node;
    EXPECT_EQ(matrix.write(file).status, 0);
}

void write_series(KobFile& file, std::int32_t states, std::int32_t entities)
{
    MultiEntityResults series;
    series.nent = entities;
    series.entid.resize(static_cast<std::size_t>(entities));
    std::iota(series.entid.begin(), series.entid.end(), 1);
    series.hold(states);
    series.s = states;
    EXPECT_EQ(series.write(file).status, 0);
}

} // namespace kob_test
