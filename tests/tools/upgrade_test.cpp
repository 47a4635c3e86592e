// SPDX-License-Identifier: BSD-3-Clause
// kob upgrade: a file of the older layout in the current one, with the same values.

#include <algorithm>
#include <filesystem>

#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "older_file.hpp"
#include "program.hpp"
#include "sample_file.hpp"

using namespace kob_test;
using nlohmann::json;

namespace {

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

class Upgrade : public testing::Test {
protected:
    Upgrade()
    {
        write_older_kinds(older_.handle());
        older_.close();
    }
    Outcome upgrade(const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> arguments{"upgrade", older_.path(), current_};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return run_program(arguments);
    }
    static json shown(const std::string& path, const std::string& block)
    {
        const Outcome outcome = run_program({"show", path, block, "--json", "--all"});
        EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
        return outcome.json();
    }
    static json values(const json& block, const std::string& name)
    {
        for (const json& item : block.at("datasets"))
            if (item.at("name") == name) return item.at("values");
        return {};
    }

    KobFile older_;
    TempDir folder_;
    std::string current_ = folder_ / "new.kob";
};

} // namespace

TEST_F(Upgrade, KeepsEveryBlockInItsPlace)
{
    const Outcome outcome = upgrade();
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error_lines(),
              (std::vector<std::string>{
                  "kob upgrade: warning: \"idtrans\", \"cid\" and \"comp\" of variables (1 block): no place in the "
                  "current layout, left out",
                  "kob upgrade: warning: \"pvtyp\" of parts (1 block): no place in the current layout, left out",
              }));
    const json info = run_program({"info", current_, "--json"}).json();
    EXPECT_EQ(info.at("header"), (json{{"status", 0}, {"version", "2 2 16"}}));
    std::vector<std::string> paths;
    const json listing = run_program({"ls", current_, "--json"}).json();
    for (const json& block : listing.at("blocks")) paths.push_back(block.at("path"));
    const std::string state = "singlestate/state000000000012/";
    for (const std::string& path : {std::string{"constant/system"},
                                    std::string{"constant/indices"},
                                    std::string{"constant/text/log"},
                                    std::string{"constant/variable/STRESS"},
                                    std::string{"constant/variablegroup/STRESS"},
                                    std::string{"constant/variablegroup/INDEX"},
                                    std::string{"constant/variable/TIME"},
                                    std::string{"constant/variable/FREQUENCY"},
                                    std::string{"constant/variable/BEAM2"},
                                    std::string{"constant/variablegroup/BEAM2"},
                                    state + "parts/PART",
                                    state + "attributes/NODE",
                                    state + "connectivities/BEAM2",
                                    state + "collector/SET",
                                    state + "activflags/ELEMENT",
                                    state + "entityresults/NODE/DISPLACEMENT/ZONE7",
                                    state + "elementresults/HEXA8/STRESS/ZONE5",
                                    state + "densematrix/SUPERELEMENT/STIFFNESS/id17",
                                    state + "triangularmatrix/SUPERELEMENT/STIFFNESS/id17",
                                    state + "sparsematrix/SUPERELEMENT/STIFFNESS/id17",
                                    std::string{"multistate/TIME/multientityresults/NODE/DISPLACEMENT/ZONE5"},
                                    std::string{"multistate/TIME/multielementresults/HEXA8/STRESS/ZONE5"},
                                    std::string{"multistate/TIME/multiactivflags/CONTACT"}})
        EXPECT_EQ(std::count(paths.begin(), paths.end(), path + "/kobblock"), 1) << path;
    EXPECT_EQ(paths.size(), 24U); // the header is one of them
}

TEST_F(Upgrade, KeepsTheValues)
{
    ASSERT_EQ(upgrade().exit_code, 0);
    for (const std::string block :
         {"system", "text/log", "parts/PART", "attributes/NODE", "connectivities/BEAM2", "collector/SET",
          "activflags/ELEMENT", "entityresults/NODE/DISPLACEMENT/ZONE7", "elementresults/HEXA8/STRESS/ZONE5",
          "densematrix/SUPERELEMENT/STIFFNESS/id17", "triangularmatrix/SUPERELEMENT/STIFFNESS/id17",
          "sparsematrix/SUPERELEMENT/STIFFNESS/id17", "multientityresults/NODE/DISPLACEMENT/ZONE5",
          "multielementresults/HEXA8/STRESS/ZONE5", "multiactivflags/CONTACT"}) {
        SCOPED_TRACE(block);
        const json before = shown(older_.path(), block);
        const json after = shown(current_, block);
        EXPECT_EQ(before.at("key"), after.at("key"));
        for (const auto& [name, value] : before.at("attributes").items())
            EXPECT_EQ(after.at("attributes").at(name), value) << name;
        for (const json& item : after.at("datasets"))
            EXPECT_EQ(item.at("values"), values(before, item.at("name"))) << item.at("name");
    }
}

TEST_F(Upgrade, TurnsVariablesIntoVariablesAndGroups)
{
    ASSERT_EQ(upgrade().exit_code, 0);
    const json stress = shown(current_, "variable/STRESS");
    EXPECT_EQ(stress.at("attributes").at("rank"), 2);
    EXPECT_EQ(stress.at("attributes").at("ndim"), 2);
    EXPECT_EQ(stress.at("attributes").at("ncoo"), 3);
    EXPECT_EQ(values(stress, "mbunit"), (json{1, 2, 0}));
    EXPECT_EQ(values(stress, "ubid"), (json{11, 12, 13}));
    EXPECT_EQ(values(stress, "ubexp"), (json{1.0, -1.0, -2.0}));
    EXPECT_EQ(values(stress, "udid"), (json{21, 22}));
    EXPECT_EQ(values(stress, "udexp"), (json{0.25, 0.5}));
    EXPECT_EQ(values(stress, "subscnt"), (json{2, 2, 2}));
    EXPECT_EQ(values(stress, "subsoffs"), (json{0, 2, 4}));
    const json group = shown(current_, "variablegroup/STRESS");
    EXPECT_EQ(values(group, "varkey"), (json::array({"STRESS"})));
    EXPECT_EQ(values(group, "cnt"), (json::array({3})));

    EXPECT_EQ(shown(current_, "indices").at("attributes"), (json{{"nindex", 2}, {"etypvar", "INDEX"}}));
    const json index = shown(current_, "variablegroup/INDEX");
    EXPECT_EQ(values(index, "varkey"), (json{"TIME", "FREQUENCY"}));
    const json frequency = shown(current_, "variable/FREQUENCY");
    EXPECT_EQ(values(frequency, "ubid"), (json::array({14})));
    EXPECT_EQ(values(frequency, "ubexp"), (json::array({-1.0})));
    EXPECT_EQ(values(frequency, "udid"), (json::array({22})));

    EXPECT_EQ(shown(current_, "connectivities/BEAM2").at("attributes").at("etypvar"), "BEAM2");
    const json parameters = shown(current_, "variable/BEAM2");
    EXPECT_EQ(values(parameters, "mbunit"), (json{2, 1}));
    EXPECT_EQ(values(parameters, "ubid"), (json{11, 12, 13}));
}

TEST_F(Upgrade, StoresSmallFloatsWhenAsked)
{
    ASSERT_EQ(upgrade({"--float", "4"}).exit_code, 0);
    const Hid file = open_file(current_);
    const Hid res = H5Dopen2(file, "post/singlestate/state000000000012/elementresults/HEXA8/STRESS/ZONE5/kobblock/res",
                             H5P_DEFAULT);
    EXPECT_EQ(H5Tget_size(Hid{H5Dget_type(res)}), 4U);
}

TEST_F(Upgrade, LeavesAnExistingFileAlone)
{
    ASSERT_EQ(upgrade().exit_code, 0);
    const std::string before = bytes_of(current_);
    const Outcome again = upgrade();
    EXPECT_EQ(again.exit_code, 2);
    EXPECT_TRUE(contains(again.err, "exists; --force replaces it")) << again.err;
    EXPECT_EQ(bytes_of(current_), before);
    EXPECT_EQ(upgrade({"--force"}).exit_code, 0);
}

TEST_F(Upgrade, RefusesTheInputAsOutput)
{
    const std::string before = bytes_of(older_.path());
    EXPECT_EQ(run_program({"upgrade", older_.path(), older_.path(), "--force"}).exit_code, 2);
    EXPECT_EQ(bytes_of(older_.path()), before);
}

TEST_F(Upgrade, RefusesFilesOfTheCurrentLayoutAndOfBoth)
{
    const SampleFile sample;
    const Outcome current = run_program({"upgrade", sample.path(), current_});
    EXPECT_EQ(current.exit_code, 3);
    EXPECT_TRUE(contains(current.err, "holds no blocks of the older layout")) << current.err;
    KobFile both;
    write_older_kinds(both.handle());
    write_variable(both);
    both.close();
    const Outcome mixed = run_program({"upgrade", both.path(), current_});
    EXPECT_EQ(mixed.exit_code, 3);
    EXPECT_TRUE(contains(mixed.err, "1 of 18 blocks are in the current layout already")) << mixed.err;
    EXPECT_FALSE(std::filesystem::exists(current_));
}

TEST_F(Upgrade, WritesNothingWhenABlockIsDamaged)
{
    {
        const Hid root = open_file(older_.path(), H5F_ACC_RDWR);
        ASSERT_GE(H5Ldelete(root, "post/constant/system/kobblock/data", H5P_DEFAULT), 0);
    }
    const Outcome outcome = upgrade();
    EXPECT_EQ(outcome.exit_code, 3);
    EXPECT_TRUE(contains(outcome.err, "constant/system")) << outcome.err;
    EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

TEST_F(Upgrade, NamesBlocksWhosePlaceTheWritersDoNotMake)
{
    {
        const Hid root = open_file(older_.path(), H5F_ACC_RDWR);
        ASSERT_GE(H5Lmove(root, "post/constant/text/log", root, "post/constant/text/other", H5P_DEFAULT, H5P_DEFAULT),
                  0);
    }
    const Outcome outcome = upgrade();
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_TRUE(contains(outcome.err, "kob upgrade: warning: constant/text/other: the block has another path now\n"))
        << outcome.err;
    EXPECT_EQ(values(shown(current_, "text/log"), "line"), (json{"one", "two"}));
}
