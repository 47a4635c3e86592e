// SPDX-License-Identifier: BSD-3-Clause
// The merger in the older layout: a model that was cut into domains is whole again, and what differs from the current
// layout.
#include <kob_dp.h>

#include <array>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "distributed_run.hpp"
#include "file_contents.hpp"
#include "hdf5_file.hpp"
#include "older_merge_model.hpp"

namespace {

using namespace kob_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// A run whose files are in the older layout.
class OlderRun : public DistributedRun {
public:
    explicit OlderRun(std::size_t domains) : DistributedRun{domains} { merger = KOB1_MERGE_DMP; }

    OlderBlockWriter in(std::size_t number) const { return {file(number).handle()}; }
    void stamp(std::size_t number) const { in(number).header(); }
    /// The place of a block in the target.
    std::int64_t place(const std::string& path, const std::string& name) const
    {
        return target.block(path + "/kobblock/" + name);
    }
};

void stamp_all(const OlderRun& run, std::size_t domains)
{
    for (std::size_t i = 1; i <= domains; ++i) run.stamp(i);
}

class CutOlderModel : public testing::TestWithParam<std::int32_t> {};

TEST_P(CutOlderModel, IsWholeAgainBlockByBlockAndValueByValue)
{
    const std::int32_t n = GetParam();
    const BarModel model{100};
    KobFile whole;
    OlderBlockWriter{whole.handle()}.shared();
    model.write(OlderBlockWriter{whole.handle()}, model.whole());
    OlderRun run{static_cast<std::size_t>(n)};
    for (std::int32_t i = 0; i < n; ++i) {
        const OlderBlockWriter out = run.in(static_cast<std::size_t>(i) + 1);
        out.shared();
        model.write(out, model.domain(i, n));
        out.header();
    }

    ASSERT_EQ(run.merge(), 0) << run.err;

    EXPECT_EQ(FileContents::differences(FileContents{whole.handle()}, FileContents{run.target.handle()}), "");
    EXPECT_TRUE(has_link(run.target.block("constant/connectivities/BAR/kobblock"), "header"));
    EXPECT_THAT(run.out, HasSubstr("\n KOB DMP domain file merge successfully completed.\n\n"));
}

INSTANTIATE_TEST_SUITE_P(OlderMerge, CutOlderModel, testing::Values(1, 2, 3),
                         [](const auto& cut) { return "Into" + std::to_string(cut.param); });

TEST(OlderMerge, LeavesNoGroupOpen)
{
    OlderRun run{2};
    for (const std::size_t file : {1, 2}) {
        run.in(file).shared();
        BarModel{10}.write(run.in(file), BarModel{10}.domain(static_cast<std::int32_t>(file) - 1, 2));
        run.in(file).element_results({.etyp = "BAR", .etypvar = "FORCE"}, {1}, {1, 2});
        run.stamp(file);
    }
    const auto before = OpenIdentifiers::now();

    ASSERT_EQ(run.merge(), 0);

    EXPECT_EQ(OpenIdentifiers::now().added_since(before), "");
}

TEST(OlderMerge, NumbersTheDomains)
{
    OlderRun run{2};
    run.in(1).connectivities("BAR", 2, {7, 5}, {1, 1}, {10, 20, 20, 30}, {0, 0, 0, 0}, {0, 0});
    run.in(2).connectivities("BAR", 2, {9}, {1}, {30, 40}, {0, 0}, {0});
    stamp_all(run, 2);
    run.options = 0;

    ASSERT_EQ(run.merge(), 0) << run.err;

    const std::string results = "constant/entityresults/";
    EXPECT_THAT(stored_ints(run.place(results + "BAR/DMPComputeDomainNumber", "data"), "entid"), ElementsAre(5, 7, 9));
    EXPECT_THAT(stored_reals(run.place(results + "BAR/DMPComputeDomainNumber", "data"), "res"), ElementsAre(1, 1, 2));
    EXPECT_THAT(stored_ints(run.place(results + "NODE/DMPComputeDomainNumber", "data"), "entid"),
                ElementsAre(10, 20, 30, 40));
    EXPECT_THAT(stored_reals(run.place(results + "NODE/DMPComputeDomainNumber", "data"), "res"),
                ElementsAre(1, 1, 1, 2));
    EXPECT_THAT(run.out, HasSubstr(" target file: create 1 \"variables\" block(s)\n"));

    older::Variables found;
    found.comp = {-1};
    ASSERT_EQ(found.read(run.target.block("constant/variables/DMPComputeDomainNumber/kobblock"), 2).status, 0);
    EXPECT_EQ(found.etypvar.text(), "DMPComputeDomainNumber");
    EXPECT_EQ(found.ncoo, 1);
    EXPECT_EQ(found.rank, 0);
    EXPECT_EQ(found.cname[0], "Domain");
    EXPECT_EQ(found.mbunit.at(0), 0);
    EXPECT_EQ(found.mdunit.at(0), 0);
    EXPECT_EQ(found.cid.at(0), 1);
    EXPECT_EQ(found.comp.at(0), 1);
}

TEST(OlderMerge, CopiesVariablesFromTheFirstFileThatHasThem)
{
    OlderRun run{2};
    older::Variables stress, strain;
    ASSERT_EQ(stress.write(run.file(1).handle()).status, 0);
    stress.idtrans = 4;
    ASSERT_EQ(stress.write(run.file(2).handle()).status, 0);
    strain.etypvar = "STRAIN";
    ASSERT_EQ(strain.write(run.file(2).handle()).status, 0);
    stamp_all(run, 2);

    ASSERT_EQ(run.merge(), 0);

    older::Variables found;
    ASSERT_EQ(found.read(run.target.block("constant/variables/STRESS/kobblock"), 2).status, 0);
    EXPECT_EQ(found.idtrans, -3);
    EXPECT_THAT(found.comp, ElementsAre(1, 3, 3, 2));
    ASSERT_EQ(found.read(run.target.block("constant/variables/STRAIN/kobblock"), 2).status, 0);
    EXPECT_THAT(found.cname.texts(), ElementsAre("XX", "YY", "XY"));
    EXPECT_THAT(run.out, HasSubstr("\n 3 \"variables\" block(s) found\n"
                                   " target file: copy \"variables\" blocks from file  [1]\n"
                                   " target file: copy \"variables\" blocks from file  [2]\n"));
}

TEST(OlderMerge, WritesElementResultsOneByOneAndKeepsTheFirstMatrix)
{
    OlderRun run{2};
    run.in(1).element_results({.etyp = "BAR", .etypvar = "FORCE"}, {1}, {1, 2});
    run.in(2).element_results({.etyp = "BAR", .etypvar = "FORCE"}, {2}, {3, 4});
    run.in(1).dense(1, 1, 2, {5, 6});
    run.in(2).dense(1, 1, 2, {5, 6});
    run.in(1).triangular(1, 1, {7});
    run.in(2).triangular(1, 1, {8});
    stamp_all(run, 2);

    ASSERT_EQ(run.merge(), 0);

    const std::string forces = "constant/elementresults/BAR/FORCE";
    EXPECT_THAT(stored_reals(run.place(forces, "data"), "res"), ElementsAre(1, 2));
    EXPECT_THAT(stored_reals(run.place(forces + "_set1", "data"), "res"), ElementsAre(3, 4));
    EXPECT_THAT(stored_reals(run.place("constant/triangularmatrix/SUPERELEMENT/MASS/id1", "data"), "val"),
                ElementsAre(7));
    EXPECT_THAT(run.err, HasSubstr("KOB WARNING - kob_merge_dmp - block \"constant/triangularmatrix/SUPERELEMENT/MASS/"
                                   "id1/kobblock\" of file [2] differs from the target's and is left out\n"));
    EXPECT_THAT(run.err, Not(HasSubstr("densematrix/SUPERELEMENT")));
}

/// Stores the titles of two nodes in another width than the writer does.
void store_titles(const OlderRun& run, std::size_t file, std::size_t width)
{
    const std::int64_t data = run.file(file).block("constant/attributes/NODE/kobblock/data");
    std::string titles(2 * width, ' ');
    titles.replace(0, 2, "ab").replace(width, 2, "cd");
    ASSERT_GE(H5Ldelete(data, "title", H5P_DEFAULT), 0);
    const Hid type = text_type(width);
    put_dataset(data, "title", type, {2}, type, titles.data());
}

TEST(OlderMerge, TakesTitlesThatAreStoredShorter)
{
    OlderRun run{2};
    run.in(1).entities(true, "NODE", {2, 1}, 0, {}, 3, "twoone");
    run.in(2).entities(true, "NODE", {3}, 0, {}, 5, "third");
    store_titles(run, 1, 4);
    stamp_all(run, 2);

    ASSERT_EQ(run.merge(), 0) << run.err;

    const std::string titles = stored_text(run.place("constant/attributes/NODE", "data"), "title");
    ASSERT_EQ(titles.size(), 3U * 256);
    EXPECT_EQ(trimmed(titles.substr(0, 256)), "cd");
    EXPECT_EQ(trimmed(titles.substr(256, 256)), "ab");
    EXPECT_EQ(trimmed(titles.substr(512)), "third");
}

TEST(OlderMerge, StopsAtTitlesThatAreLongerThanAField)
{
    OlderRun run{1};
    run.in(1).entities(true, "NODE", {2, 1}, 0, {}, 3, "twoone");
    store_titles(run, 1, 300);
    run.stamp(1);

    EXPECT_EQ(run.merge(), -6010);

    EXPECT_THAT(run.err, HasSubstr("\nKOB ERROR reading \"attributes\" block pass 2 - error code = -6010 \n"));
}

TEST(OlderMerge, StopsWithMoreThanFiveIndexValues)
{
    OlderRun run{2};
    run.in(1).index(5);
    run.in(2).index(6);
    stamp_all(run, 2);

    EXPECT_EQ(run.merge(), 1);

    EXPECT_THAT(run.err, HasSubstr("\nKOB ERROR - nindex too large = 6. Increase MAXINDEX1: 5\n"));
    EXPECT_FALSE(has_link(run.target.handle(), "constant")) << "nothing is written";
}

TEST(OlderMerge, TakesFiveIndexValues)
{
    OlderRun run{1};
    run.in(1).index(5);
    run.in(1).flags("NODE", {1}, {1}, {{1, 2, 3, 4, -5}, -1});
    run.stamp(1);

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(stored_ints(run.place("singlestate/state-00000000005/state000000000004/state000000000003/"
                                      "state000000000002/state000000000001/activflags/NODE",
                                      "index"),
                            "indexident"),
                ElementsAre(1, 2, 3, 4, -5));
}

TEST(OlderMerge, TakesAFileOfTheCurrentVersionForIncompatible)
{
    OlderRun run{3};
    run.in(1).text("log", "a");
    run.in(2).text("notes", "b");
    run.stamp(1);
    BlockWriter{run.file(2).handle()}.header();
    BlockWriter{run.file(3).handle()}.text("current", "c");
    run.stamp(3);

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(run.out,
                testing::StartsWith(" KOB check file        2 / 3: NOT OK  - version file: 2.2.16 - program: 1.2.0\n"
                                    "\n Start file merge\n\n"));
    EXPECT_THAT(run.err, testing::StartsWith("\nKOB WARNING - files maybe incompatible\n"));
    EXPECT_TRUE(has_link(run.target.block("constant/text"), "log"));
    EXPECT_TRUE(has_link(run.target.block("constant/text"), "notes"));
    EXPECT_FALSE(has_link(run.target.block("constant/text"), "current")) << "a block of the other layout";
}

TEST(OlderMerge, TakesAnotherVersion1WithAWarning)
{
    OlderRun run{2};
    for (const std::size_t file : {1, 2}) {
        run.in(file).text("log", "a");
        run.stamp(file);
    }
    {
        const Hid group = open_group(run.file(2).handle(), "kobheader");
        std::string stored = stored_text(group, "kobheader");
        stored.replace(8, 5, "1 1 7");
        const Hid data{H5Dopen2(group, "kobheader", H5P_DEFAULT)};
        ASSERT_GE(H5Dwrite(data, text_type(stored.size()), H5S_ALL, H5S_ALL, H5P_DEFAULT, stored.data()), 0);
    }

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(run.out,
                testing::StartsWith(" KOB check file        2 / 2: WARNING - version file: 1.1.7 - program: 1.2.0\n"
                                    "\n Start file merge\n\n"));
    EXPECT_THAT(run.err, Not(HasSubstr("files maybe incompatible")));
}

TEST(OlderMerge, PrintsTheVersionOfItsLayout)
{
    OlderRun run{1};
    run.in(1).text("log", "a");
    run.stamp(1);
    run.options = 1;

    ASSERT_EQ(run.merge(), 0);

    EXPECT_THAT(run.out, HasSubstr("\n      KOB Version : 1.2.0\n\n"));
    EXPECT_THAT(run.out, HasSubstr(" KOB check file        1 / 1: OK      - version file: 1.2.0 - program: 1.2.0\n"));
}

TEST(OlderMerge, LooksForTheKindsOfItsLayout)
{
    OlderRun run{1};
    run.in(1).text("log", "a");
    run.stamp(1);

    ASSERT_EQ(run.merge(), 0);

    std::string wanted = "\nKOB WARNING file [1]: \"system\" block not found\n"
                         "\nKOB WARNING file [1]: \"indices\" block not found\n";
    for (const char* kind : {"variables", "connectivities", "activflags", "parts", "attributes", "entityresults",
                             "collector", "elementresults", "densematrix", "triangularmatrix", "multientityresults"}) {
        wanted += "\nKOB WARNING file [1]: no \"" + std::string{kind} + "\" blocks found\n";
    }
    EXPECT_EQ(run.err, wanted);
}

TEST(OlderMerge, StopsAtABlockWithoutData)
{
    OlderRun run{2};
    for (const std::size_t file : {1, 2}) run.in(file).flags("NODE", {1}, {1}, BlockWriter::state(1));
    const std::string path = "singlestate/state000000000001/activflags/NODE/kobblock";
    ASSERT_GE(H5Ldelete(run.file(2).block(path), "data", H5P_DEFAULT), 0);
    stamp_all(run, 2);

    EXPECT_EQ(run.merge(), -1);

    EXPECT_THAT(run.err, HasSubstr("KOB ERROR - data not found\n"
                                   "\nKOB ERROR reading \"activflags\" block pass 2 - error code = -1 \n"
                                   " Block Path: \"" +
                                   path + "\"\n"));
}

TEST(OlderMerge, StopsAtUnitsThatDoNotAddUp)
{
    OlderRun run{1};
    run.in(1).connectivities("BAR", 2, {7}, {1}, {10, 20}, {0, 0}, {0});
    const std::array<std::int32_t, 1> wrong{1};
    {
        const std::int64_t data = run.file(1).block("constant/connectivities/BAR/kobblock/data");
        const Hid dataset = H5Dopen2(data, "mbunit", H5P_DEFAULT);
        ASSERT_GE(H5Dwrite(dataset, H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, wrong.data()), 0);
    }
    run.stamp(1);

    EXPECT_LT(run.merge(), 0);

    EXPECT_THAT(run.err, HasSubstr("\nKOB ERROR reading \"connectivities\" block pass 2 - error code = "));
}

/// All groups below that hold a block, by path.
std::vector<std::string> block_paths(hid_t group, const std::string& path = "")
{
    std::vector<std::string> found;
    for (const std::string& name : link_names(group)) {
        const std::string below = path.empty() ? name : path + "/" + name;
        if (name == "kobblock") {
            found.push_back(below);
            continue;
        }
        const Hid object = H5Oopen(group, name.c_str(), H5P_DEFAULT);
        if (H5Iget_type(object) == H5I_GROUP) {
            const std::vector<std::string> deeper = block_paths(object, below);
            found.insert(found.end(), deeper.begin(), deeper.end());
        }
    }
    return found;
}

/// Merges two files that hold one block each, the second one damaged. What counts is that nothing worse than a status
/// comes of it, and that a failure is told.
bool stops_at(const KobFile& intact, const std::string& path, const std::string& place, const std::string& item)
{
    OlderRun run{2};
    Hid groups = H5Pcreate(H5P_LINK_CREATE);
    H5Pset_create_intermediate_group(groups, 1);
    for (const std::size_t number : {1, 2}) {
        EXPECT_GE(H5Ocopy(intact.handle(), path.c_str(), run.file(number).handle(), path.c_str(), H5P_DEFAULT, groups),
                  0);
        run.stamp(number);
    }
    const std::int64_t block = run.file(2).block(path);
    if (place.empty()) {
        EXPECT_GE(H5Ldelete(block, item.c_str(), H5P_DEFAULT), 0);
    } else if (place == "header") {
        set_int_attribute(Hid{H5Gopen2(block, "header", H5P_DEFAULT)}, item, 1000000000);
    } else {
        EXPECT_GE(H5Ldelete(block, (place + "/" + item).c_str(), H5P_DEFAULT), 0);
    }
    const bool stops = run.merge() != 0;
    if (stops) {
        EXPECT_THAT(run.err, HasSubstr("KOB ERROR")) << path << " " << place << " " << item;
    }
    return stops;
}

TEST(OlderMerge, SurvivesAnyWrongCountAndAnyMissingPart)
{
    KobFile intact;
    OlderBlockWriter{intact.handle()}.shared();
    BarModel{9}.write(OlderBlockWriter{intact.handle()}, BarModel{9}.whole());
    OlderBlockWriter{intact.handle()}.element_results({.etyp = "BAR", .etypvar = "FORCE"}, {1}, {1, 2});
    int stopped = 0;
    for (const std::string& path : block_paths(intact.handle())) {
        const std::int64_t block = intact.block(path);
        for (const std::string& place : link_names(block)) {
            stopped += stops_at(intact, path, "", place) ? 1 : 0;
            const Hid group = H5Gopen2(block, place.c_str(), H5P_DEFAULT);
            for (const std::string& dataset : link_names(group)) {
                stopped += stops_at(intact, path, place, dataset) ? 1 : 0;
            }
            for (const std::string& name : attribute_names(group)) {
                const Hid attribute = H5Aopen(group, name.c_str(), H5P_DEFAULT);
                if (name == "block" || H5Tget_class(Hid{H5Aget_type(attribute)}) != H5T_INTEGER) continue;
                stopped += stops_at(intact, path, place, name) ? 1 : 0;
            }
        }
    }
    EXPECT_GT(stopped, 100) << "merges that the damage ended";
}

} // namespace
