// SPDX-License-Identifier: BSD-3-Clause
// What a triangular matrix block holds.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/layout.hpp"
#include "support/matrix_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "singlestate/state000000000012/triangularmatrix/SUPERELEMENT/STIFFNESS/id17/kobblock";

void write(const KobFile& file, const TriangularMatrix& block)
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
    "attribute nsize integer 4 little scalar",
    "attribute matrixtype integer 4 little scalar",
    "attribute nindex integer 4 little scalar",
    "attribute indexic integer 4 little scalar",
});

} // namespace

TEST(TriangularMatrixLayout, ASmallMatrix)
{
    KobFile file;
    const TriangularMatrix written;
    write(file, written);
    const auto block = file.block(place);
    EXPECT_EQ(layout_of(block), attributes + table({
                                                 "dataset indexident integer 4 little [1] max [1] compact",
                                                 "dataset indexval float 8 little [1] max [1] compact",
                                                 "dataset val float 8 little [10] max [10] compact",
                                             }));
    EXPECT_EQ(attribute_names(block), (std::vector<std::string>{"block", "blocktype", "etyp", "entid", "etypvar",
                                                                "nsize", "matrixtype", "nindex", "indexic"}));
    const std::vector<std::pair<std::string, std::int64_t>> numbers{{"block", 10100},   {"entid", 17}, {"nsize", 4},
                                                                    {"matrixtype", -5}, {"nindex", 1}, {"indexic", 7}};
    for (const auto& [name, value] : numbers) EXPECT_EQ(stored_ints(block, name), std::vector<std::int64_t>{value});
    EXPECT_EQ(stored_text(block, "blocktype"), "triangularmatrix" + std::string(240, '\0'));
    EXPECT_EQ(stored_text(block, "etyp"), Text256{"SUPERELEMENT"}.field());
    EXPECT_EQ(stored_text(block, "etypvar"), Text256{"STIFFNESS"}.field());
    EXPECT_EQ(stored_reals(block, "val"), written.val);
}

TEST(TriangularMatrixLayout, ComplexWithEveryFilter)
{
    KobFile file;
    TriangularMatrix block;
    block.val = TriangularMatrix::numbered(20);
    block.value_size = 32;
    block.filter_flags = 255;
    block.filter_params = {2, 9};
    write(file, block);
    EXPECT_EQ(layout_of(file.block(place)),
              attributes +
                  table({
                      "dataset indexident integer 4 little [1] max [1] compact",
                      "dataset indexval float 8 little [1] max [1] compact",
                      "dataset val float 8 little [10, 2] max [10, 2] chunked [10, 2] scaleoffset(decimal 2) shuffle "
                      "deflate(9) fill 10000",
                  }));
    EXPECT_EQ(stored_ints(file.block(place), "block"), (std::vector<std::int64_t>{10101}));
}

TEST(TriangularMatrixLayout, OfOrderZero)
{
    KobFile file;
    TriangularMatrix block;
    block.nsize = 0;
    block.nindex = 0;
    write(file, block);
    EXPECT_EQ(layout_of(file.block("constant/triangularmatrix/SUPERELEMENT/STIFFNESS/id17/kobblock")), attributes);
}

TEST(TriangularMatrixLayout, OfOrderAHundredInSmallNumbers)
{
    KobFile file;
    TriangularMatrix block;
    block.nsize = 110; // 6105 numbers of 4 bytes: above 24000 bytes
    block.value_size = 4;
    block.val.assign(6105, 1);
    write(file, block);
    EXPECT_EQ(layout_of(file.block(place)), attributes + table({
                                                             "dataset indexident integer 4 little [1] max [1] compact",
                                                             "dataset indexval float 4 little [1] max [1] compact",
                                                             "dataset val float 4 little [6105] max [6105] contiguous",
                                                         }));
}
