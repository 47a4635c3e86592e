// SPDX-License-Identifier: BSD-3-Clause
// The merger: a model that was cut into domains is whole again, and every line that is printed on the way.
#include <kob_dp.h>

#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_stream.hpp"
#include "distributed_run.hpp"
#include "file_contents.hpp"
#include "kob_file.hpp"
#include "merge_model.hpp"

namespace {

using namespace kob_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using Table = ResultTable;

constexpr char number_path[] = "DMPComputeDomainNumber";

std::vector<double> reals(const DistributedRun& run, const std::string& path, const std::string& name)
{
    return stored_reals(run.target.block(path), name);
}

std::vector<std::int64_t> ints(const DistributedRun& run, const std::string& path, const std::string& name)
{
    return stored_ints(run.target.block(path), name);
}

bool has_block(const DistributedRun& run, const std::string& path)
{
    std::string part;
    for (std::size_t end = path.find('/'); true; end = path.find('/', end + 1)) {
        if (!has_link(run.target.handle(), path.substr(0, end))) return false;
        if (end == std::string::npos) return true;
    }
}

/// The filters that a reader reports of a block's values.
FoundFilters filters_of(const DistributedRun& run, const std::string& path)
{
    const std::int64_t block = run.target.block(path);
    const std::int32_t values = 15, memory = 8, whole = 0;
    std::array<Text256, 4> texts;
    std::int32_t nent = 0, ncoo = 0, zoneid = 0, fswitch = 0, dmpswitch = 0, nindex = 0, indexic = 0, fidglob = 0;
    std::vector<std::int32_t> numbers(1000);
    std::vector<double> doubles(10000);
    FoundFilters found;
    std::int32_t status = 77;
    std::string operators(256 * 10, ' ');
    std::vector<double> weight(1000), indexval(10);
    std::vector<std::int32_t> indexident(10), fid(1000);
    KOB_READ_ENTITYRESULTS2(&block, &values, nullptr, texts[0].data(), &nent, texts[1].data(), &ncoo, texts[2].data(),
                            &zoneid, texts[3].data(), &fswitch, &dmpswitch, &nindex, &indexic, indexident.data(),
                            indexval.data(), numbers.data(), &fidglob, fid.data(), operators.data(), weight.data(),
                            doubles.data(), &memory, &found.flags, found.params.data(), &whole, nullptr, nullptr,
                            &status);
    EXPECT_GT(status, 0);
    return found;
}

/// Makes the groups that lead to a copied object.
Hid intermediate_groups()
{
    Hid list = H5Pcreate(H5P_LINK_CREATE);
    H5Pset_create_intermediate_group(list, 1);
    return list;
}

// ---- the cut model is whole again

class CutModel : public testing::TestWithParam<std::int32_t> {};

TEST_P(CutModel, IsWholeAgainBlockByBlockAndValueByValue)
{
    const std::int32_t n = GetParam();
    const BarModel model{200};
    KobFile whole;
    BarModel::write_shared({whole.handle()});
    model.write({whole.handle()}, model.whole());
    DistributedRun run{static_cast<std::size_t>(n)};
    for (std::int32_t i = 0; i < n; ++i) {
        const BlockWriter out = run.in(static_cast<std::size_t>(i) + 1);
        BarModel::write_shared(out);
        model.write(out, model.domain(i, n));
    }
    run.stamp();

    ASSERT_EQ(run.merge(), 0) << run.err;

    EXPECT_EQ(FileContents::differences(FileContents{whole.handle()}, FileContents{run.target.handle()}), "");
    EXPECT_THAT(run.out, HasSubstr("\n KOB DMP domain file merge successfully completed.\n\n"));
}

INSTANTIATE_TEST_SUITE_P(Merge, CutModel, testing::Values(1, 2, 3, 7, 64),
                         [](const auto& cut) { return "Into" + std::to_string(cut.param); });

TEST(Merge, LeavesNoGroupOpen)
{
    DistributedRun run{2};
    for (const std::size_t file : {1, 2}) {
        BarModel::write_shared(run.in(file));
        BarModel{10}.write(run.in(file), BarModel{10}.domain(static_cast<std::int32_t>(file) - 1, 2));
        run.in(file).element_results({.etyp = "BAR", .etypvar = "FORCE"}, {1}, {1, 2});
    }
    run.stamp();
    const auto before = OpenIdentifiers::now();

    ASSERT_EQ(run.merge(), 0);

    EXPECT_EQ(OpenIdentifiers::now().added_since(before), "");
}

TEST(Merge, UnitesEntitiesThatOnlySomeDomainsHoldInAState)
{
    DistributedRun run{3};
    const Table table{.etyp = "ELEMENT", .etypvar = "WEAR"};
    run.in(1).results(table, {5, 1}, {}, {}, {5.25, 1.25}, BlockWriter::state(1));
    run.in(3).results(table, {-7, 5}, {}, {}, {-7.25, 99}, BlockWriter::state(1));
    run.in(2).results(table, {2147483647, -2147483647 - 1}, {}, {}, {8, -8}, BlockWriter::state(2));
    run.in(3).results(table, {3}, {}, {}, {3.25}, BlockWriter::state(2));
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    const std::string at1 = "singlestate/state000000000001/entityresults/ELEMENT/WEAR/kobblock";
    const std::string at2 = "singlestate/state000000000002/entityresults/ELEMENT/WEAR/kobblock";
    EXPECT_THAT(ints(run, at1, "entid"), ElementsAre(-7, 1, 5));
    EXPECT_THAT(reals(run, at1, "res"), ElementsAre(-7.25, 1.25, 5.25)) << "the first domain's row of entity 5";
    EXPECT_THAT(ints(run, at2, "entid"), ElementsAre(-2147483648LL, 3, 2147483647));
    EXPECT_THAT(reals(run, at2, "res"), ElementsAre(-8, 3.25, 8));
}

TEST(Merge, KeepsTheFirstRowOfAnEntityThatOneDomainNamesTwice)
{
    DistributedRun run{2};
    run.in(1).results({.etyp = "NODE", .etypvar = "A"}, {4, 4, 2}, {}, {}, {1, 2, 3});
    run.in(2).results({.etyp = "NODE", .etypvar = "A"}, {9, 9}, {}, {}, {5, 6});
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(reals(run, "constant/entityresults/NODE/A/kobblock", "res"), ElementsAre(3, 1, 5));
}

TEST(Merge, StoresTheWiderOfTwoSizes)
{
    DistributedRun run{2};
    run.in(1).results({.etyp = "NODE", .etypvar = "A", .value_size = 4}, {1}, {}, {}, {0.1});
    run.in(2).results({.etyp = "NODE", .etypvar = "A", .value_size = 8}, {2}, {}, {}, {0.1});
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(reals(run, "constant/entityresults/NODE/A/kobblock", "res"), ElementsAre(double{0.1F}, 0.1));
}

TEST(Merge, FillsColumnsAndTitlesThatADomainLacks)
{
    DistributedRun run{3};
    run.in(1).parts({7}, 7, 0, "", {}, {}, {});
    run.in(2).parts({3}, 5, 4, "abcd", {}, {33}, {});
    run.in(3).parts({5}, 6, 2, "xy", {55}, {}, {});
    run.in(1).entities(true, "NODE", {2}, 0, {}, 3, "two");
    run.in(2).entities(true, "NODE", {1}, 0, {}, 5, "first");
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    const std::string parts = "constant/parts/PART/kobblock";
    EXPECT_THAT(ints(run, parts, "pid"), ElementsAre(3, 5, 7));
    EXPECT_THAT(ints(run, parts, "off"), ElementsAre(4));
    EXPECT_THAT(ints(run, parts, "length"), ElementsAre(4));
    EXPECT_EQ(stored_text(run.target.block(parts), "title"), "abcdxy      ");
    EXPECT_THAT(ints(run, parts, "mid"), ElementsAre(0, 55, 0));
    EXPECT_THAT(ints(run, parts, "mtyp"), ElementsAre(33, 0, 0));
    EXPECT_EQ(stored_text(run.target.block("constant/attributes/NODE/kobblock"), "title"), "firsttwo  ");
}

TEST(Merge, UnitesCollectorsByIdentifierAndTypeName)
{
    DistributedRun run{2};
    run.in(1).collector("SETS", {8, 2}, {"NODE", "ELEMENT"}, {2, 1, 0, 1}, {30, 10, 5, 6});
    run.in(2).collector("SETS", {8}, {"BEAM", "NODE"}, {1, 3}, {77, 20, 10, 20});
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    const std::string sets = "constant/collector/SETS/kobblock";
    EXPECT_THAT(ints(run, sets, "idcoll"), ElementsAre(2, 8));
    EXPECT_THAT(ints(run, sets, "nent"), ElementsAre(0, 1, 0, 3, 1, 1));
    EXPECT_THAT(ints(run, sets, "entid"), ElementsAre(6, 10, 20, 30, 5, 77));
    EXPECT_THAT(ints(run, sets, "nenttot"), ElementsAre(6));
    const std::string types = stored_text(run.target.block(sets), "etyp");
    EXPECT_EQ(trimmed(types.substr(0, 256)), "NODE");
    EXPECT_EQ(trimmed(types.substr(256, 256)), "ELEMENT");
    EXPECT_EQ(trimmed(types.substr(512, 256)), "BEAM");
}

// ---- places

TEST(Merge, KeepsThePathOfARunSeenFromTheRoot)
{
    DistributedRun run{2, create_empty, create_empty};
    for (const std::size_t file : {1, 2}) {
        const BlockWriter out{run.file(file).new_group("alpha/beta")};
        const auto id = static_cast<std::int32_t>(file);
        out.results({.etyp = "NODE", .etypvar = "A", .set = 2}, {id}, {}, {}, {1.0 * id}, BlockWriter::state(3));
        out.flags("NODE", {id}, {id}, BlockWriter::state(3));
        out.index(1);
    }

    ASSERT_EQ(run.merge(), 0);

    const std::string state = "alpha/beta/singlestate/state000000000003/";
    EXPECT_THAT(ints(run, state + "entityresults/NODE/A_set2/kobblock", "entid"), ElementsAre(1, 2));
    EXPECT_THAT(ints(run, state + "activflags/NODE/kobblock", "entid"), ElementsAre(1, 2));
    EXPECT_TRUE(has_block(run, "alpha/beta/constant/indices/kobblock"));
    EXPECT_FALSE(has_block(run, "constant"));
    EXPECT_FALSE(has_block(run, "singlestate"));
}

TEST(Merge, DoublesNoSetThatIsPartOfAName)
{
    DistributedRun run{2};
    for (const std::size_t file : {1, 2}) {
        const auto id = static_cast<std::int32_t>(file);
        run.in(file).results({.etyp = "NODE", .etypvar = "A_set7"}, {id}, {}, {}, {1});
        run.in(file).flags("my_set4", {id}, {id}, BlockWriter::state(1));
        run.in(file).series({.etyp = "NODE", .etypvar = "B_set", .set = 5}, 1, {1}, {id}, {}, {}, {1});
        run.in(file).element_results({.etyp = "BAR", .etypvar = "C_set9"}, {id}, {1, 2});
    }
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(ints(run, "constant/entityresults/NODE/A_set7/kobblock", "entid"), ElementsAre(1, 2));
    EXPECT_THAT(ints(run, "singlestate/state000000000001/activflags/my_set4/kobblock", "entid"), ElementsAre(1, 2));
    EXPECT_THAT(ints(run, "multistate/RUN/multientityresults/NODE/B_set_set5/kobblock", "entid"), ElementsAre(1, 2));
    EXPECT_TRUE(has_block(run, "constant/elementresults/BAR/C_set9/kobblock"));
    EXPECT_TRUE(has_block(run, "constant/elementresults/BAR/C_set9_set1/kobblock"));
}

// ---- blocks that are not merged

TEST(Merge, WritesElementResultsOfLaterDomainsUnderFreeSets)
{
    DistributedRun run{3};
    const std::string base = "constant/elementresults/BAR/FORCE";
    for (const std::size_t file : {1, 2, 3}) {
        const auto id = static_cast<std::int32_t>(file);
        run.in(file).element_results({.etyp = "BAR", .etypvar = "FORCE", .value_size = 4}, {id}, {1.0 * id, 0.5});
    }
    run.in(2).element_results({.etyp = "BAR", .etypvar = "FORCE", .value_size = 16, .set = 1}, {40}, {1, 2, 3, 4});
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(ints(run, base + "/kobblock", "idele"), ElementsAre(1));
    EXPECT_THAT(ints(run, base + "_set1/kobblock", "idele"), ElementsAre(2));
    EXPECT_THAT(ints(run, base + "_set2/kobblock", "idele"), ElementsAre(40));
    EXPECT_THAT(ints(run, base + "_set3/kobblock", "idele"), ElementsAre(3));
    EXPECT_THAT(reals(run, base + "_set1/kobblock", "res"), ElementsAre(2, 0.5));
    EXPECT_THAT(reals(run, base + "_set2/kobblock", "res"), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(stored_extents(run.target.block(base + "_set2/kobblock"), "res"), ElementsAre(1, 2, 1, 2));
    EXPECT_THAT(run.out, HasSubstr("\n 4 \"elementresults\" block(s) found\n"
                                   " target file: create 4 \"elementresults\" block(s)\n"));
}

TEST(Merge, LeavesOutAMatrixThatDiffersAndSaysSo)
{
    DistributedRun run{3};
    run.in(1).dense(1, 2, 1, {1, 2});
    run.in(2).dense(1, 2, 1, {1, 2});
    run.in(3).dense(1, 1, 2, {1, 2});
    run.in(2).triangular(1, 2, {1, 2, 3});
    run.in(3).triangular(1, 2, {1, 2, 4});
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(run.err, HasSubstr("KOB WARNING - kob_merge_dmp - block "
                                   "\"constant/densematrix/SUPERELEMENT/STIFFNESS/id1/kobblock\" of file [3] differs "
                                   "from the target's and is left out\n"));
    EXPECT_THAT(run.err, HasSubstr("KOB WARNING - kob_merge_dmp - block "
                                   "\"constant/triangularmatrix/SUPERELEMENT/MASS/id1/kobblock\" of file [3] differs "
                                   "from the target's and is left out\n"));
    EXPECT_THAT(run.err, Not(HasSubstr("of file [2] differs")));
    EXPECT_THAT(stored_extents(run.target.block("constant/densematrix/SUPERELEMENT/STIFFNESS/id1/kobblock"), "val"),
                ElementsAre(2, 1));
    EXPECT_THAT(reals(run, "constant/triangularmatrix/SUPERELEMENT/MASS/id1/kobblock", "val"), ElementsAre(1, 2, 3));
    EXPECT_THAT(run.out, HasSubstr(" target file: create 1 \"densematrix\" block(s)\n"));
}

TEST(Merge, ComparesMatricesWithTheDomainsNotWithWhatTheFiltersMadeOfThem)
{
    DistributedRun run{2};
    const Reals64 values{0, 1.123456, 2, 3, 4, 5, 6, 7, 8};
    run.in(1).dense(1, 3, 3, values);
    run.in(2).dense(1, 3, 3, values);
    run.filter_flags = 128;
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(run.err, Not(HasSubstr("differs")));
    EXPECT_NE(reals(run, "constant/densematrix/SUPERELEMENT/STIFFNESS/id1/kobblock", "val").at(1), 1.123456);
}

// ---- series

TEST(Merge, UnitesStatesByTheirIndexAndCountsWhatIsMissing)
{
    DistributedRun run{3};
    const Table table{.etyp = "NODE", .etypvar = "T", .ncoo = 2};
    // node 2 lies in domains 1 and 2, node 4 in 2 and 3
    run.in(1).series(table, 1, {10, 20}, {1, 2}, {}, {}, {1, 1, 2, 2, 11, 11, 12, 12});
    run.in(2).series(table, 1, {10, 20, 30}, {2, 3, 4}, {}, {},
                     {-1, -1, 3, 3, 4, 4, -1, -1, 13, 13, 14, 14, 22, 22, 23, 23, 24, 24});
    run.in(3).series(table, 1, {20, 5}, {5, 4}, {}, {}, {15, 15, -2, -2, 35, 35, 34, 34});
    run.filter_flags = 128 | 2;
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    const std::string path = "multistate/RUN/multientityresults/NODE/T/kobblock";
    EXPECT_THAT(ints(run, path, "indexident"), ElementsAre(10, 20, 30, 5));
    EXPECT_THAT(reals(run, path, "indexval"), ElementsAre(5, 10, 15, 2.5));
    EXPECT_THAT(ints(run, path, "nstate"), ElementsAre(4));
    EXPECT_THAT(ints(run, path, "entid"), ElementsAre(1, 2, 3, 4, 5));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double> wanted{1, 2, 3, 4, nan, 11, 12, 13, 14, 15, nan, 22, 23, 24, nan, nan, nan, nan, 34, 35};
    const std::vector<double> found = reals(run, path, "res");
    ASSERT_EQ(found.size(), 2 * wanted.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_TRUE(found[i] == wanted[i / 2] || (std::isnan(found[i]) && std::isnan(wanted[i / 2]))) << i;
    }
    EXPECT_THAT(run.err, HasSubstr("KOB WARNING - kob_merge_dmp - block \"" + path +
                                   "\": 12 values that no domain file holds are NaN\n"));
}

TEST(Merge, KeepsStatesThatAreToldTwice)
{
    DistributedRun run{2};
    const Table table{.etyp = "NODE", .etypvar = "T"};
    run.in(1).series(table, 2, {1, 1, 1, 1, 2, 1}, {1}, {}, {}, {1, 2, 3});
    run.in(2).series(table, 2, {1, 1, 1, 1, 2, 1}, {2}, {}, {}, {4, 5, 6});
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    const std::string path = "multistate/RUN/multientityresults/NODE/T/kobblock";
    EXPECT_THAT(ints(run, path, "indexident"), ElementsAre(1, 1, 1, 1, 2, 1));
    EXPECT_THAT(reals(run, path, "res"), ElementsAre(1, 4, 2, 5, 3, 6));
    EXPECT_THAT(run.err, Not(HasSubstr("NaN")));
}

TEST(Merge, MergesAnEmptySeries)
{
    DistributedRun run{2};
    run.in(1).series({.etyp = "NODE", .etypvar = "T"}, 1, {}, {4, 1}, {}, {}, {});
    run.in(2).series({.etyp = "NODE", .etypvar = "T"}, 1, {}, {2}, {}, {}, {});
    run.stamp();

    ASSERT_EQ(run.merge(), 0) << run.err;

    const std::string path = "multistate/RUN/multientityresults/NODE/T/kobblock";
    EXPECT_THAT(ints(run, path, "entid"), ElementsAre(1, 2, 4));
    EXPECT_THAT(ints(run, path, "nstate"), ElementsAre(0));
}

// ---- domain numbers

TEST(Merge, TellsTheFirstDomainOfEachElementAndNode)
{
    DistributedRun run{3};
    run.in(1).connectivities("BAR", 2, {1}, {1}, {10, 20}, {}, {}, {}, 0, 0);
    run.in(3).connectivities("BAR", 2, {1, 2}, {1, 1}, {10, 20, 20, 30}, {}, {}, {}, 0, 0);
    run.in(2).connectivities("TRI", 3, {9}, {1}, {30, 40, -5}, {}, {}, {}, 0, 0);
    run.options = 0;
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    const std::string element = std::string{"constant/entityresults/ELEMENT/"} + number_path + "/kobblock";
    const std::string node = std::string{"constant/entityresults/NODE/"} + number_path + "/kobblock";
    EXPECT_THAT(ints(run, element, "entid"), ElementsAre(1, 2, 9));
    EXPECT_THAT(reals(run, element, "res"), ElementsAre(1, 3, 2));
    EXPECT_THAT(ints(run, node, "entid"), ElementsAre(-5, 10, 20, 30, 40));
    EXPECT_THAT(reals(run, node, "res"), ElementsAre(2, 1, 1, 2, 2));
    EXPECT_THAT(ints(run, node, "ncoo"), ElementsAre(1));
    EXPECT_THAT(ints(run, node, "zoneid"), ElementsAre(-1));
    EXPECT_EQ(filters_of(run, node).flags, 0);
    const std::string variable = std::string{"constant/variable/"} + number_path + "/kobblock";
    EXPECT_EQ(trimmed(stored_text(run.target.block(variable), "varnam")), "Domain");
    EXPECT_THAT(ints(run, variable, "ncoo"), ElementsAre(1));
    EXPECT_THAT(ints(run, variable, "rank"), ElementsAre(0));
    EXPECT_THAT(run.out, HasSubstr(" target file: create 1 \"variable\" block(s)\n"));
    EXPECT_THAT(run.out, HasSubstr(" target file: create 2 merged \"connectivities\" block(s)\n"
                                   " target file: create 2 merged \"entityresults\" block(s)\n"));
}

TEST(Merge, TellsNoDomainsOfASingleFileOrWithOption4)
{
    for (const std::size_t domains : {1, 2}) {
        DistributedRun run{domains};
        for (std::size_t file = 1; file <= domains; ++file) {
            run.in(file).connectivities("BAR", 2, {1}, {1}, {10, 20}, {}, {}, {}, 0, 0);
        }
        run.options = domains == 1 ? 0 : 4;
        run.stamp();

        ASSERT_EQ(run.merge(), 0);

        EXPECT_FALSE(has_block(run, std::string{"constant/variable/"} + number_path));
        EXPECT_FALSE(has_block(run, "constant/entityresults"));
    }
}

// ---- compression

TEST(Merge, ScalesTheVariablesOfTheExponentTable)
{
    DistributedRun run{1};
    const Ints32 ids{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    const Reals64 values(10, 0.125);
    for (const char* name : {"ALPHA", "BETA", "GAMMA"}) {
        run.in(1).results({.etyp = "NODE", .etypvar = name}, ids, {}, {}, values);
    }
    BlockWriter deflated = run.in(1);
    deflated.how = {2, {0, 4}, 8};
    deflated.results({.etyp = "NODE", .etypvar = "DELTA"}, ids, {}, {}, values);
    run.names = {"GAMMA", "ALPHA", "DELTA", "ALPHA"};
    run.exponents = {5, 3, 1, 7};
    run.filter_flags = 2;
    run.options = 2;
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    const auto filters = [&](const std::string& name) {
        return filters_of(run, "constant/entityresults/NODE/" + name + "/kobblock");
    };
    EXPECT_EQ(filters("ALPHA"), (FoundFilters{130, {3, 5}})) << "of equal names the first counts";
    EXPECT_EQ(filters("BETA"), (FoundFilters{2, {0, 5}})) << "no filters of its own: the defaults";
    EXPECT_EQ(filters("GAMMA"), (FoundFilters{130, {5, 5}}));
    EXPECT_EQ(filters("DELTA"), (FoundFilters{130, {1, 4}})) << "its own level";
    EXPECT_THAT(run.out, HasSubstr(" >-< float scaleoffset ALPHA               : flag exp aggr:    130 10000010"
                                   "      3      5: \"NODE\" \"ALPHA\" \"\" \"GLOBAL\"\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("scaleoffset BETA")));
}

TEST(Merge, ScalesCoordinatesOnlyByName)
{
    for (const bool is_named : {false, true}) {
        DistributedRun run{1};
        run.in(1).results({.etyp = "NODE", .etypvar = "COORDINATE"}, {1, 2, 3, 4, 5, 6, 7, 8}, {}, {}, Reals64(8, 0.5));
        run.filter_flags = 128 | 2;
        if (is_named) {
            run.names = {"COORDINATE"};
            run.exponents = {4};
        }
        run.stamp();

        ASSERT_EQ(run.merge(), 0);

        EXPECT_EQ(filters_of(run, "constant/entityresults/NODE/COORDINATE/kobblock"),
                  is_named ? (FoundFilters{130, {4, 5}}) : (FoundFilters{2, {0, 5}}));
    }
}

TEST(Merge, CountsSharedNodesWithDifferentCoordinates)
{
    DistributedRun run{3};
    const Table table{.etyp = "NODE", .etypvar = "COORDINATE", .ncoo = 2};
    run.in(1).results(table, {1, 2, 3}, {}, {}, {1, 1, 2, 2, 3, 3});
    run.in(2).results(table, {2, 3}, {}, {}, {2, 2.5, 3, 3});
    run.in(3).results(table, {2, 1}, {}, {}, {2, 2.25, 1, 1});
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(run.err, HasSubstr("KOB WARNING - kob_merge_dmp - 1 shared nodes have different coordinates\n"));
    EXPECT_THAT(reals(run, "constant/entityresults/NODE/COORDINATE/kobblock", "res"), ElementsAre(1, 1, 2, 2, 3, 3));
}

// ---- what stops the merge

struct Conflict {
    const char* title;
    void (*write)(const BlockWriter& first, const BlockWriter& third);
    const char* line;
};

std::ostream& operator<<(std::ostream& out, const Conflict& conflict) { return out << conflict.title; }

class Conflicts : public testing::TestWithParam<Conflict> {};

TEST_P(Conflicts, StopTheMergeWithALineThatNamesBlockAndValues)
{
    DistributedRun run{3};
    GetParam().write(run.in(1), run.in(3));
    run.stamp();

    EXPECT_EQ(run.merge(), -1);

    EXPECT_THAT(run.err, HasSubstr(std::string{"KOB ERROR - kob_merge_dmp - block \""} + GetParam().line));
    EXPECT_THAT(run.out, Not(HasSubstr("successfully completed")));
}

INSTANTIATE_TEST_SUITE_P(
    Merge, Conflicts,
    testing::Values(
        Conflict{"NodesPerElement",
                 [](const BlockWriter& a, const BlockWriter& b) {
                     a.connectivities("BAR", 2, {1}, {1}, {1, 2}, {}, {}, {}, 0, 0);
                     b.connectivities("BAR", 3, {2}, {1}, {1, 2, 3}, {}, {}, {}, 0, 0);
                 },
                 "constant/connectivities/BAR/kobblock\": npele differs: 2 in file [1], 3 in file [3]\n"},
        Conflict{"IntegerParameters",
                 [](const BlockWriter& a, const BlockWriter& b) {
                     a.connectivities("BAR", 1, {1}, {1}, {1}, {4}, {}, {}, 1, 0);
                     b.connectivities("BAR", 1, {2}, {1}, {1}, {}, {}, {}, 0, 0);
                 },
                 "constant/connectivities/BAR/kobblock\": nbint differs: 1 in file [1], 0 in file [3]\n"},
        Conflict{"Components",
                 [](const BlockWriter& a, const BlockWriter& b) {
                     a.results({.etyp = "NODE", .etypvar = "A", .ncoo = 1}, {1}, {}, {}, {1});
                     b.results({.etyp = "NODE", .etypvar = "A", .ncoo = 2}, {2}, {}, {}, {1, 2});
                 },
                 "constant/entityresults/NODE/A/kobblock\": ncoo differs: 1 in file [1], 2 in file [3]\n"},
        Conflict{"RealAndComplex",
                 [](const BlockWriter& a, const BlockWriter& b) {
                     a.results({.etyp = "NODE", .etypvar = "A", .value_size = 32}, {1}, {}, {}, {1, 2});
                     b.results({.etyp = "NODE", .etypvar = "A"}, {2}, {}, {}, {1});
                 },
                 "constant/entityresults/NODE/A/kobblock\": block key differs: 1001 in file [1], 1000 in file [3]\n"},
        Conflict{"Frames",
                 [](const BlockWriter& a, const BlockWriter& b) {
                     a.results({.etyp = "NODE", .etypvar = "A", .fswitch = 1}, {1}, {4}, {}, {1});
                     b.results({.etyp = "NODE", .etypvar = "A"}, {2}, {}, {}, {1});
                 },
                 "constant/entityresults/NODE/A/kobblock\": fswitch differs: 1 in file [1], 0 in file [3]\n"},
        Conflict{"Operators",
                 [](const BlockWriter& a, const BlockWriter& b) {
                     a.series({.etyp = "NODE", .etypvar = "A"}, 1, {1}, {1}, {4}, {}, {1});
                     b.series({.etyp = "NODE", .etypvar = "A", .dmpswitch = 1}, 1, {1}, {2}, {}, {1}, {1});
                 },
                 "multistate/RUN/multientityresults/NODE/A/kobblock\": dmpswitch differs: 0 in file [1], 1 in file "
                 "[3]\n"},
        Conflict{"FurtherIdentifiers",
                 [](const BlockWriter& a, const BlockWriter& b) {
                     a.entities(false, "NODE", {1}, 1, {1}, 0, "");
                     b.entities(false, "NODE", {2}, 0, {}, 0, "");
                 },
                 "constant/identifiers/NODE/kobblock\": nuid differs: 1 in file [1], 0 in file [3]\n"}),
    [](const auto& conflict) { return conflict.param.title; });

TEST(Merge, LetsADomainWithoutEntitiesHaveAnyShape)
{
    DistributedRun run{2};
    run.in(1).results({.etyp = "NODE", .etypvar = "A", .ncoo = 1, .fidglob = 3}, {}, {}, {}, {});
    run.in(2).results({.etyp = "NODE", .etypvar = "A", .ncoo = 2, .fidglob = 8}, {2}, {}, {}, {1, 2});
    run.stamp();

    ASSERT_EQ(run.merge(), 0) << run.err;

    EXPECT_THAT(reals(run, "constant/entityresults/NODE/A/kobblock", "res"), ElementsAre(1, 2));
    EXPECT_THAT(ints(run, "constant/entityresults/NODE/A/kobblock", "fidglob"), ElementsAre(8));
}

TEST(Merge, StopsAtMoreThanFiveIndexValues)
{
    DistributedRun run{2};
    run.in(1).index(5);
    run.in(2).index(6);
    run.stamp();

    EXPECT_EQ(run.merge(), 1);

    EXPECT_THAT(run.err, HasSubstr("\nKOB ERROR - nindex too large = 6. Increase MAXINDEX: 5\n"));
    EXPECT_THAT(run.out, HasSubstr("\n Start file merge\n\n"));
    EXPECT_FALSE(has_block(run, "constant")) << "nothing is written";
}

TEST(Merge, StopsAtABlockWithMoreThanFiveIndexValues)
{
    DistributedRun run{1};
    run.in(1).results({.etyp = "NODE", .etypvar = "A"}, {1}, {}, {}, {1}, {{1, 2, 3, 4, 5, 6}, -1});
    run.stamp();

    EXPECT_EQ(run.merge(), 1);
}

TEST(Merge, TakesFiveIndexValues)
{
    DistributedRun run{1};
    run.in(1).results({.etyp = "NODE", .etypvar = "A"}, {1}, {}, {}, {1}, {{1, 2, 3, 4, -5}, -1});
    run.in(1).flags("NODE", {1}, {1}, {{1, 2, 3, 4, -5}, -1});
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    const std::string state = "singlestate/state-00000000005/state000000000004/state000000000003/"
                              "state000000000002/state000000000001/";
    EXPECT_TRUE(has_block(run, state + "entityresults/NODE/A/kobblock"));
    EXPECT_TRUE(has_block(run, state + "activflags/NODE/kobblock"));
}

TEST(Merge, StopsWhereTheTargetHoldsABlock)
{
    DistributedRun run{1};
    run.in(1).flags("NODE", {1}, {1}, BlockWriter::state(1));
    BlockWriter{run.target.handle()}.flags("NODE", {9}, {9}, BlockWriter::state(1));
    run.stamp();

    EXPECT_EQ(run.merge(), -1);

    EXPECT_THAT(run.err, HasSubstr("KOB INTERNAL ERROR writing block key 2100 - \"activflags\" already exists.\n"
                                   "\nKOB ERROR writing \"activflags\" block - error code = -1\n"
                                   " Block Path: \"singlestate/state000000000001/activflags/NODE/kobblock\"\n"));
}

TEST(Merge, ReportsAFailedWriteOfEntityResultsWithoutThePath)
{
    DistributedRun run{1};
    run.in(1).results({.etyp = "NODE", .etypvar = "A"}, {1, 2, 3, 4, 5, 6, 7, 8}, {}, {}, Reals64(8, 1));
    run.names = {"A"};
    run.exponents = {257};
    run.stamp();

    EXPECT_EQ(run.merge(), -2130);

    EXPECT_THAT(run.err, HasSubstr("\nKOB ERROR writing \"entityresults\" block - error code = -2130\n"));
    EXPECT_THAT(run.err, Not(HasSubstr("Block Path")));
}

// ---- broken files

TEST(Merge, StopsAtABlockThatClaimsMoreThanItHolds)
{
    const std::string path = "constant/entityresults/NODE/A/kobblock";
    for (const auto& [attribute, claimed] : {std::pair{"nent", 1000000}, {"nent", -2}, {"ncoo", 2000000000}}) {
        DistributedRun run{2};
        run.in(1).results({.etyp = "NODE", .etypvar = "A"}, {1}, {}, {}, {1});
        run.in(2).results({.etyp = "NODE", .etypvar = "A"}, {2}, {}, {}, {1});
        set_int_attribute(run.file(2).block(path), attribute, claimed);
        run.stamp();

        EXPECT_EQ(run.merge(), -6030) << attribute << " " << claimed;

        EXPECT_THAT(run.err, HasSubstr("\nKOB ERROR reading \"entityresults\" block pass 12 - error code = -6030 \n"
                                       " Block Path: \"" +
                                       path + "\"\n"));
    }
}

TEST(Merge, StopsAtASeriesWhoseStatesAreMissing)
{
    DistributedRun run{1};
    run.in(1).series({.etyp = "NODE", .etypvar = "A"}, 1, {1}, {1}, {}, {}, {1});
    const std::int64_t block = run.file(1).block("multistate/RUN/multientityresults/NODE/A/kobblock");
    set_int_attribute(block, "nstate", 2000000000);
    run.stamp();

    EXPECT_EQ(run.merge(), -6030);
}

TEST(Merge, StopsAtACollectorWhoseCountsDoNotAddUp)
{
    DistributedRun run{1};
    run.in(1).collector("SETS", {1, 2}, {"NODE"}, {1, 1}, {10, 20});
    const std::int64_t block = run.file(1).block("constant/collector/SETS/kobblock");
    const std::array<std::int32_t, 2> counts{1000000, -999998};
    {
        const Hid dataset = H5Dopen2(block, "nent", H5P_DEFAULT);
        ASSERT_GE(H5Dwrite(dataset, H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, counts.data()), 0);
    }
    run.stamp();

    EXPECT_EQ(run.merge(), -1);

    EXPECT_THAT(run.err, HasSubstr("\nKOB ERROR reading \"collector\" block pass 2 - error code = -1 \n"));
}

TEST(Merge, StopsAtAMissingDataset)
{
    DistributedRun run{1};
    run.in(1).flags("NODE", {1}, {1}, BlockWriter::state(1));
    const std::int64_t block = run.file(1).block("singlestate/state000000000001/activflags/NODE/kobblock");
    ASSERT_GE(H5Ldelete(block, "status", H5P_DEFAULT), 0);
    run.stamp();

    EXPECT_EQ(run.merge(), -6002);
}

TEST(Merge, StopsAtAHandleThatIsNone)
{
    const DistributedRun run{1};
    const std::int64_t none = -1, options = 0;
    const std::int32_t one = 1, zero = 0;
    const std::array<std::int32_t, 2> params{};
    std::int32_t status = 77;
    const std::string err = errors_of([&] {
        KOB_MERGE_DMP(&none, run.target.address(), &one, &zero, params.data(), &zero, nullptr, nullptr, &options, &zero,
                      &status);
    });

    EXPECT_LT(status, 0);
    EXPECT_EQ(err, " WARNING file [1]:  NO        KOB blocks found\n");
}

/// All groups below that hold a block, by path.
std::vector<std::string> block_paths(hid_t group, const std::string& path = "")
{
    std::vector<std::string> found;
    for (const std::string& name : link_names(group)) {
        const Hid object = H5Oopen(group, name.c_str(), H5P_DEFAULT);
        const std::string below = path.empty() ? name : path + "/" + name;
        if (name == "kobblock") {
            found.push_back(below);
        } else if (H5Iget_type(object) == H5I_GROUP) {
            const std::vector<std::string> deeper = block_paths(object, below);
            found.insert(found.end(), deeper.begin(), deeper.end());
        }
    }
    return found;
}

/// Merges a file that holds one damaged block of each path in turn. What counts is that nothing worse than a status
/// comes of it, and that a failure is told.
template <class Damage> void merge_damaged(Damage&& damage)
{
    int stopped = 0;
    KobFile intact;
    BarModel::write_shared({intact.handle()});
    BarModel{9}.write({intact.handle()}, BarModel{9}.whole());
    BlockWriter{intact.handle()}.element_results({.etyp = "BAR", .etypvar = "FORCE"}, {1}, {1, 2});
    for (const std::string& path : block_paths(intact.handle())) {
        for (const std::string& item : damage(intact, path, "")) {
            DistributedRun run{2};
            for (const std::size_t number : {1, 2}) {
                const Hid groups = intermediate_groups();
                ASSERT_GE(H5Ocopy(intact.handle(), path.c_str(), run.file(number).handle(), path.c_str(), H5P_DEFAULT,
                                  groups),
                          0);
            }
            damage(run.file(2), path, item);
            run.stamp();
            const std::int32_t status = run.merge();
            if (status != 0) {
                ++stopped;
                EXPECT_THAT(run.err, HasSubstr("KOB ERROR")) << path << " " << item;
            }
        }
    }
    EXPECT_GT(stopped, 50) << "merges that the damage ended";
}

TEST(Merge, SurvivesAnyWrongCount)
{
    for (const std::int32_t wrong : {-3, 1000000000}) {
        merge_damaged([wrong](const KobFile& file, const std::string& path, const std::string& item) {
            const std::int64_t block = file.block(path);
            std::vector<std::string> counts;
            for (const std::string& name : attribute_names(block)) {
                const Hid attribute = H5Aopen(block, name.c_str(), H5P_DEFAULT);
                if (name != "block" && H5Tget_class(Hid{H5Aget_type(attribute)}) == H5T_INTEGER) counts.push_back(name);
            }
            if (!item.empty()) set_int_attribute(block, item, wrong);
            return counts;
        });
    }
}

TEST(Merge, SurvivesAnyMissingDataset)
{
    merge_damaged([](const KobFile& file, const std::string& path, const std::string& item) {
        const std::int64_t block = file.block(path);
        std::vector<std::string> datasets = link_names(block);
        if (!item.empty()) {
            EXPECT_GE(H5Ldelete(block, item.c_str(), H5P_DEFAULT), 0);
        }
        return datasets;
    });
}

// ---- lines

TEST(Merge, PrintsEveryLineOfASmallMerge)
{
    DistributedRun run{2};
    run.in(1).index(1);
    run.in(1).text("log", "a");
    run.in(1).text("notes", "b");
    run.in(2).text("log", "c");
    run.in(2).text("other", "d");
    run.in(1).flags("NODE", {1}, {1}, BlockWriter::state(1));
    run.in(2).flags("NODE", {2}, {1}, BlockWriter::state(1));
    run.stamp();

    ASSERT_EQ(run.merge(), 0);

    EXPECT_EQ(run.out, "\n Start file merge\n\n"
                       " target file: copy \"indices\" block from file  [1]\n"
                       "\n 4 \"text\" block(s) found\n"
                       " target file: copy \"text\" blocks from file  [1]\n"
                       " target file: copy \"text\" blocks from file  [2]\n"
                       "\n 2 \"activflags\" block(s) found\n"
                       " target file: create 1 merged \"activflags\" block(s)\n"
                       "\n KOB DMP domain file merge successfully completed.\n\n");
    std::string wanted = "\nKOB WARNING file [1]: \"system\" block not found\n"
                         "\nKOB WARNING file [2]: \"system\" block not found\n"
                         "\nKOB WARNING file [2]: \"indices\" block not found\n";
    for (const char* kind :
         {"variablegroup", "variable", "connectivities", "parts", "attributes", "identifiers", "entityresults",
          "collector", "elementresults", "densematrix", "triangularmatrix", "multientityresults"}) {
        for (const int file : {1, 2}) {
            wanted += "\nKOB WARNING file [" + std::to_string(file) + "]: no \"" + kind + "\" blocks found\n";
        }
    }
    EXPECT_EQ(run.err, wanted);
    EXPECT_EQ(stored_text(run.target.block("constant/text/log/kobblock"), "line"), "a");
    EXPECT_EQ(stored_text(run.target.block("constant/text/other/kobblock"), "line"), "d");
}

TEST(Merge, PrintsBannerAndTablesWithAVerboseLevel)
{
    DistributedRun run{1};
    run.in(1).index(1);
    run.stamp();
    run.options = 3; // 2 wins

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(run.out, testing::StartsWith("\n     +------------------------------------------------------+\n"
                                             "     |  KOB DMP domain file merger                          |\n"
                                             "     +------------------------------------------------------+\n"
                                             "      Compiled    : "));
    EXPECT_THAT(run.out, HasSubstr("\n      KOB Version : 2.2.16\n\n"
                                   " Info    : file  [         1]:          2 KOB blocks found\n"
                                   "\n Number of blocktypes NBlockTypes: 2\n"));
    EXPECT_THAT(run.out, HasSubstr(" BlockKey   :    20\n"
                                   " ----------------------------------------------------------------\n"
                                   "          2 :          1 (key    20) \"constant/indices/kobblock\"\n"));
    EXPECT_THAT(run.out, HasSubstr(" KOB check file        1 / 1: OK      - version file: 2.2.16 - program: 2.2.16\n"
                                   "\n Start file merge\n\n"));
}

TEST(Merge, ListsTheKindsThatItLeavesOut)
{
    DistributedRun run{2};
    run.in(2).index(1);
    const std::int64_t sparse = run.file(2).new_group("constant/sparsematrix/A/kobblock");
    const std::int64_t complex = run.file(2).new_group("constant/sparsematrix/B/kobblock");
    const std::int64_t properties = run.file(2).new_group("constant/properties/A/kobblock");
    const std::int64_t foreign = run.file(2).new_group("constant/foreign/kobblock");
    for (const auto& [block, key] : {std::pair{sparse, 10200}, {complex, 10201}, {properties, 500}, {foreign, 4711}}) {
        put_attribute(block, "block", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &key);
    }
    run.stamp();
    run.options = 1 | 4;

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(run.out, HasSubstr("KOB INFO - kob_merge_dmp - 1 \"properties\" block(s) of file [2] are not merged\n"
                                   "KOB INFO - kob_merge_dmp - 1 \"4711\" block(s) of file [2] are not merged\n"
                                   "KOB INFO - kob_merge_dmp - 2 \"sparsematrix\" block(s) of file [2] are not "
                                   "merged\n"));
}

/// Stamps a file with any version text.
void stamp_with(std::int64_t file, const std::string& version)
{
    BlockWriter{file}.header();
    std::string text = "\x89KOB\r\n\x1a\n" + version;
    text.resize(64, ' ');
    const Hid group = open_group(file, "kobheader");
    const Hid dataset = H5Dopen2(group, "kobheader", H5P_DEFAULT);
    const Hid type = H5Dget_type(dataset);
    ASSERT_GE(H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, text.data()), 0);
}

TEST(Merge, WarnsOfOtherVersionsAndGoesOn)
{
    DistributedRun run{5};
    for (const std::size_t file : {1, 2, 3, 4, 5}) run.in(file).text("log " + std::to_string(file), "x");
    stamp_with(run.file(1).handle(), "2 2 16");
    stamp_with(run.file(2).handle(), "2 2 15");
    stamp_with(run.file(3).handle(), "1 2 0");
    stamp_with(run.file(4).handle(), "2 7");

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(run.out,
                testing::StartsWith(" KOB check file        2 / 5: WARNING - version file: 2.2.15 - program: 2.2.16\n"
                                    " KOB check file        3 / 5: NOT OK  - version file: 1.2.0 - program: 2.2.16\n"
                                    " KOB check file        4 / 5: NOT OK  - version file: 2.7.-1 - program: 2.2.16\n"
                                    "\n Start file merge\n\n"));
    EXPECT_THAT(run.err, testing::StartsWith("\nKOB WARNING file [5]: \"kobheader\" not found\n"
                                             "\nKOB WARNING - files maybe incompatible\n"));
    for (const char* name : {"log 1", "log 2", "log 3", "log 4", "log 5"}) {
        EXPECT_TRUE(has_block(run, std::string{"constant/text/"} + name + "/kobblock"));
    }
}

TEST(Merge, WarnsOfNothingWhenAllFilesPass)
{
    DistributedRun run{2};
    run.stamp();
    run.in(1).text("log", "x");
    run.in(2).text("log", "x");
    stamp_with(run.file(1).new_group("other"), "9 9 9");

    ASSERT_EQ(run.merge(), 0);

    EXPECT_EQ(run.out.find("KOB WARNING file [1] contains multiple \"kobheader\"s!\n"), 0U);
    EXPECT_THAT(run.err, Not(HasSubstr("incompatible")));
}

TEST(Merge, StopsAtAHeaderThatCannotBeRead)
{
    DistributedRun run{1};
    run.in(1).text("log", "x");
    const std::int64_t empty = run.file(1).new_group("kobheader");
    ASSERT_GE(empty, 0);

    EXPECT_EQ(run.merge(), -6002);

    EXPECT_THAT(run.err, HasSubstr("\nKOB ERROR - incompatible file - error code = -6002\n"));
}

} // namespace
