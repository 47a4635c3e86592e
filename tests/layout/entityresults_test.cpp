// SPDX-License-Identifier: BSD-3-Clause
// What entity results hold, read with plain HDF5 and compared with tables written by hand.
#include <gtest/gtest.h>

#include "entity_results.hpp"
#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "layout.hpp"

using namespace kob_test;

namespace {

using Longs = std::vector<std::int64_t>;
const char* const path = "/results/singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/kobblock";
const char* const zone_path = "/results/singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/ZONE7/kobblock";

const std::string attributes = R"(attribute block integer 4 little scalar
attribute blocktype text 256 space scalar
attribute dmpswitch integer 4 little scalar
attribute etyp text 256 space scalar
attribute etypframe text 256 space scalar
attribute etypvar text 256 space scalar
attribute etypzone text 256 space scalar
attribute fswitch integer 4 little scalar
attribute indexic integer 4 little scalar
attribute ncoo integer 4 little scalar
attribute nent integer 4 little scalar
attribute nindex integer 4 little scalar
attribute zoneid integer 4 little scalar
)";

} // namespace

TEST(EntityResultsLayout, Real_values_with_one_frame)
{
    KobFile file;
    ASSERT_EQ(EntityResults::sample().write(file.handle(), 12), 0);
    file.close();
    EXPECT_EQ(layout_of(file.path(), path), attributes + table({
                                                             "dataset indexident integer 4 little [1] max [1] compact",
                                                             "dataset indexval float 8 little [1] max [1] compact",
                                                             "dataset entid integer 4 little [4] max [4] compact",
                                                             "dataset fidglob integer 4 little scalar compact",
                                                             "dataset res float 8 little [4, 3] max [4, 3] compact",
                                                         }));
}

TEST(EntityResultsLayout, Frames_operators_and_weights_with_every_filter)
{
    KobFile file;
    auto results = EntityResults::combined();
    results.nent = 8;
    results.ncoo = 9;
    results.entid = results.fid = {1, 2, 3, 4, 5, 6, 7, 8};
    results.operators = {"a", "b", "c", "d", "e", "f", "g", "h", "i"};
    results.weight = Reals64(8, 0.5);
    results.res = Reals64(72, 0.25);
    ASSERT_EQ(results.write(file.handle(), 12, 4, {.filter_flags = 255}), 0);
    file.close();
    const std::string integers =
        " integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle deflate(6) fill 10000";
    EXPECT_EQ(layout_of(file.path(), zone_path),
              attributes + table({
                               "dataset indexident integer 4 little [1] max [1] compact",
                               "dataset indexval float 4 little [1] max [1] compact",
                               "dataset entid" + integers,
                               "dataset fid" + integers,
                               "dataset operator text 256 space [9] max [9] chunked [9] shuffle deflate(6)",
                               "dataset weight float 4 little [8] max [8] chunked [8] shuffle deflate(6)",
                               "dataset res float 4 little [8, 9] max [8, 9] chunked [8, 9] scaleoffset(decimal 3) "
                               "shuffle deflate(6) fill 10000",
                           }));
}

TEST(EntityResultsLayout, Complex_values_have_a_last_extent_of_two)
{
    for (const std::int32_t value_size : {16, 32}) {
        KobFile file;
        auto results = EntityResults::sample();
        results.res = Reals64(24, 0.5);
        ASSERT_EQ(results.write(file.handle(), 12, value_size), 0);
        file.close();
        const std::string size = value_size == 16 ? "4" : "8";
        EXPECT_EQ(layout_of(file.path(), path),
                  attributes + table({
                                   "dataset indexident integer 4 little [1] max [1] compact",
                                   "dataset indexval float " + size + " little [1] max [1] compact",
                                   "dataset entid integer 4 little [4] max [4] compact",
                                   "dataset fidglob integer 4 little scalar compact",
                                   "dataset res float " + size + " little [4, 3, 2] max [4, 3, 2] compact",
                               }));
        const auto opened = open_file(file.path());
        EXPECT_EQ(stored_ints(open_group(opened, path), "block"), Longs{1001});
    }
}

TEST(EntityResultsLayout, The_first_piece_creates_the_whole_fixed_table)
{
    KobFile file;
    auto results = EntityResults::sample();
    const auto block = file.new_group("block");
    const double one = 1;
    ASSERT_EQ(results.write2({block}, values_section, &one, {1, {1, 1}, {3, 2}}), 0);
    file.close();
    EXPECT_EQ(layout_of(file.path(), "/results/block"),
              table({"dataset res float 8 little [4, 3] max [4, 3] compact"}));
}

TEST(EntityResultsLayout, Every_item_holds_its_argument)
{
    KobFile file;
    ASSERT_EQ(EntityResults::combined().write(file.handle(), 12), 0);
    ASSERT_EQ(EntityResults::sample().write(file.handle(), 12), 0);
    file.close();
    const auto opened = open_file(file.path());
    const auto block = open_group(opened, zone_path);
    EXPECT_EQ(attribute_names(block),
              (std::vector<std::string>{"block", "blocktype", "etyp", "nent", "etypvar", "ncoo", "etypzone", "zoneid",
                                        "etypframe", "fswitch", "dmpswitch", "nindex", "indexic"}));
    EXPECT_EQ(stored_ints(block, "block"), Longs{1000});
    EXPECT_EQ(stored_text(block, "blocktype"), "entityresults" + std::string(243, '\0'));
    EXPECT_EQ(trimmed(stored_text(block, "etyp")), "NODE");
    EXPECT_EQ(trimmed(stored_text(block, "etypvar")), "DISPLACEMENT");
    EXPECT_EQ(trimmed(stored_text(block, "etypzone")), "ZONE");
    EXPECT_EQ(trimmed(stored_text(block, "etypframe")), "GLOBAL");
    EXPECT_EQ(stored_ints(block, "nent"), Longs{4});
    EXPECT_EQ(stored_ints(block, "ncoo"), Longs{3});
    EXPECT_EQ(stored_ints(block, "zoneid"), Longs{7});
    EXPECT_EQ(stored_ints(block, "fswitch"), Longs{1});
    EXPECT_EQ(stored_ints(block, "dmpswitch"), Longs{1});
    EXPECT_EQ(stored_ints(block, "nindex"), Longs{1});
    EXPECT_EQ(stored_ints(block, "indexic"), Longs{9});
    EXPECT_EQ(stored_ints(block, "indexident"), Longs{12});
    EXPECT_EQ(stored_reals(block, "indexval"), std::vector<double>{0.1});
    EXPECT_EQ(stored_ints(block, "entid"), (Longs{101, 102, 103, 104}));
    EXPECT_EQ(stored_ints(block, "fid"), (Longs{61, 62, 63, 64}));
    EXPECT_EQ(stored_text(block, "operator").substr(256, 5), "max  ");
    EXPECT_EQ(stored_reals(block, "weight"), (std::vector<double>{0.1, 0.2, 0.3, 0.4}));
    EXPECT_EQ(stored_reals(block, "res"),
              (std::vector<double>{0.1, 0.2, 0.3, 1.1, 1.2, 1.3, 2.1, 2.2, 2.3, 3.1, 3.2, 3.3}));
    EXPECT_EQ(stored_ints(open_group(opened, path), "fidglob"), Longs{55});
}
