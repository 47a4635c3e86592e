// SPDX-License-Identifier: BSD-3-Clause
// What a dense matrix block holds.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/layout.hpp"
#include "support/matrix_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "singlestate/state000000000012/densematrix/SUPERELEMENT/STIFFNESS/id17/kobblock";

void write(const KobFile& file, const DenseMatrix& block)
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
    "attribute ncolumn integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute indexic integer 4 little scalar",
});

} // namespace

TEST(DenseMatrixLayout, ASmallMatrix)
{
    KobFile file;
    const DenseMatrix written;
    write(file, written);
    const auto block = file.block(place);
    EXPECT_EQ(layout_of(block), attributes + table({
                                                 "dataset indexident integer 4 little [1] max [1] compact",
                                                 "dataset indexval float 8 little [1] max [1] compact",
                                                 "dataset val float 8 little [3, 2] max [3, 2] compact",
                                             }));
    EXPECT_EQ(attribute_names(block), (std::vector<std::string>{"block", "blocktype", "etyp", "entid", "etypvar",
                                                                "nrow", "ncolumn", "nindex", "indexic"}));
    const std::vector<std::pair<std::string, std::int64_t>> numbers{{"block", 10000}, {"entid", 17}, {"nrow", 3},
                                                                    {"ncolumn", 2},   {"nindex", 1}, {"indexic", 7}};
    for (const auto& [name, value] : numbers) EXPECT_EQ(stored_ints(block, name), std::vector<std::int64_t>{value});
    EXPECT_EQ(stored_text(block, "blocktype"), "densematrix" + std::string(245, '\0'));
    EXPECT_EQ(stored_text(block, "etyp"), Text256{"SUPERELEMENT"}.field());
    EXPECT_EQ(stored_text(block, "etypvar"), Text256{"STIFFNESS"}.field());
    EXPECT_EQ(stored_ints(block, "indexident"), (std::vector<std::int64_t>{12}));
    EXPECT_EQ(stored_reals(block, "indexval"), (std::vector<double>{0.125}));
    EXPECT_EQ(stored_reals(block, "val"), written.val);
}

TEST(DenseMatrixLayout, LargeComplexAndUnfiltered)
{
    KobFile file;
    DenseMatrix block;
    block.nrow = 50;
    block.ncolumn = 61; // 3050 pairs of 4-byte numbers: above 24000 bytes
    block.value_size = 16;
    block.val.assign(6100, 1);
    write(file, block);
    EXPECT_EQ(layout_of(file.block(place)), attributes + table({
                                                             "dataset indexident integer 4 little [1] max [1] compact",
                                                             "dataset indexval float 4 little [1] max [1] compact",
                                                             "dataset val float 4 little [50, 61, 2] max [50, 61, 2] "
                                                             "contiguous",
                                                         }));
    EXPECT_EQ(stored_ints(file.block(place), "block"), (std::vector<std::int64_t>{10001}));
}

TEST(DenseMatrixLayout, WithEveryFilter)
{
    KobFile file;
    DenseMatrix block;
    block.nrow = 1200;
    block.ncolumn = 3;
    block.val.assign(7200, 1);
    block.value_size = 32;
    block.nindex = 8;
    block.state = 12;
    block.indexident.assign(8, 5);
    block.indexval.assign(8, 5);
    block.filter_flags = 255;
    block.filter_params = {2, 9};
    write(file, block);
    EXPECT_EQ(layout_of(file.block(place)),
              attributes +
                  table({
                      "dataset indexident integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle "
                      "deflate(9) fill 10000",
                      "dataset indexval float 8 little [8] max [8] chunked [8] shuffle deflate(9)",
                      "dataset val float 8 little [1200, 3, 2] max [1200, 3, 2] chunked [1200, 3, 2] "
                      "scaleoffset(decimal 2) shuffle deflate(9) fill 10000",
                  }));
}

TEST(DenseMatrixLayout, APieceMakesTheWholeMatrix)
{
    KobFile file;
    DenseMatrix block;
    block.nrow = 100;
    block.ncolumn = 100;
    block.val = {4};
    block.select(1, {1, 1}, {0, 0});
    write(file, block);
    EXPECT_EQ(layout_of(file.block(place)),
              attributes + table({
                               "dataset indexident integer 4 little [1] max [1] compact",
                               "dataset indexval float 8 little [1] max [1] compact",
                               "dataset val float 8 little [100, 100] max [100, 100] contiguous",
                           }));
}
