// SPDX-License-Identifier: BSD-3-Clause
// What a sparse matrix block holds.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/layout.hpp"
#include "support/matrix_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "singlestate/state000000000012/sparsematrix/SUPERELEMENT/STIFFNESS/id17/kobblock";

void write(const KobFile& file, const SparseMatrix& block)
{
    const auto outcome = block.write(file);
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
}

const std::string attributes = table({
    "attribute block integer 4 little scalar",
    "attribute blocktype text 256 space scalar",
    "attribute etyp text 256 space scalar",
    "attribute entid integer 4 little scalar",
    "attribute etypvar text 256 space scalar",
    "attribute nrow integer 4 little scalar",
    "attribute nnz integer 8 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute indexic integer 4 little scalar",
});

} // namespace

TEST(SparseMatrixLayout, ASmallMatrix)
{
    KobFile file;
    const SparseMatrix written;
    write(file, written);
    const auto block = file.block(place);
    EXPECT_EQ(layout_of(block), attributes + table({
                                                 "dataset indexident integer 4 little [1] max [1] compact",
                                                 "dataset indexval float 8 little [1] max [1] compact",
                                                 "dataset colind integer 4 little [5] max [5] compact",
                                                 "dataset rowptr integer 8 little [4] max [4] compact",
                                                 "dataset val float 8 little [5] max [5] compact",
                                             }));
    EXPECT_EQ(attribute_names(block), (std::vector<std::string>{"block", "blocktype", "etyp", "entid", "etypvar",
                                                                "nrow", "nnz", "nindex", "indexic"}));
    const std::vector<std::pair<std::string, std::int64_t>> numbers{{"block", 10200}, {"entid", 17}, {"nrow", 3},
                                                                    {"nnz", 5},       {"nindex", 1}, {"indexic", 7}};
    for (const auto& [name, value] : numbers) EXPECT_EQ(stored_ints(block, name), std::vector<std::int64_t>{value});
    EXPECT_EQ(stored_text(block, "blocktype"), "sparsematrix" + std::string(244, '\0'));
    EXPECT_EQ(stored_text(block, "etyp"), Text256{"SUPERELEMENT"}.field());
    EXPECT_EQ(stored_text(block, "etypvar"), Text256{"STIFFNESS"}.field());
    EXPECT_EQ(stored_ints(block, "colind"), (std::vector<std::int64_t>{0, 2, 1, 0, 2}));
    EXPECT_EQ(stored_ints(block, "rowptr"), (std::vector<std::int64_t>{0, 2, 3, 5}));
    EXPECT_EQ(stored_reals(block, "val"), written.val);
}

TEST(SparseMatrixLayout, ComplexWithEveryFilter)
{
    KobFile file;
    SparseMatrix block;
    block.nrow = 9;
    block.nnz = 8;
    block.colind.assign(8, 1);
    block.rowptr.assign(10, 1);
    block.val = SparseMatrix::numbered(16);
    block.value_size = 16;
    block.filter_flags = 255;
    block.filter_params = {2, 9};
    write(file, block);
    EXPECT_EQ(layout_of(file.block(place)),
              attributes +
                  table({
                      "dataset indexident integer 4 little [1] max [1] compact",
                      "dataset indexval float 4 little [1] max [1] compact",
                      "dataset colind integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle "
                      "deflate(9) fill 10000",
                      "dataset rowptr integer 8 little [10] max [10] chunked [10] scaleoffset(integer 0) shuffle "
                      "deflate(9) fill 10000",
                      "dataset val float 4 little [8, 2] max [8, 2] chunked [8, 2] scaleoffset(decimal 2) shuffle "
                      "deflate(9) fill 10000",
                  }));
    EXPECT_EQ(stored_ints(file.block(place), "block"), (std::vector<std::int64_t>{10201}));
}

TEST(SparseMatrixLayout, LargeAndUnfiltered)
{
    KobFile file;
    SparseMatrix block;
    block.nrow = 3000; // 3001 starts of 8 bytes: above 24000 bytes
    block.nnz = 6001;  // as are 6001 columns of 4
    block.colind.assign(6001, 1);
    block.rowptr.assign(3001, 1);
    block.val.assign(6001, 1);
    block.nindex = 0;
    write(file, block);
    EXPECT_EQ(layout_of(file.block("constant/sparsematrix/SUPERELEMENT/STIFFNESS/id17/kobblock")),
              attributes + table({
                               "dataset colind integer 4 little [6001] max [6001] contiguous",
                               "dataset rowptr integer 8 little [3001] max [3001] contiguous",
                               "dataset val float 8 little [6001] max [6001] contiguous",
                           }));
}
