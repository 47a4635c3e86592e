// SPDX-License-Identifier: BSD-3-Clause
// kob params.

#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "program.hpp"
#include "temp_file.hpp"

namespace {

using namespace kob_test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(Params, TheTableIsShown)
{
    const TempFile file{"exponents.txt"};
    std::ofstream{file.path()} << "DISPLACEMENT 6 # micrometres\n$ nothing\nSTRESS -2\n";
    const Outcome shown = run_program({"params", file.path()});
    EXPECT_EQ(shown.exit_code, 0);
    EXPECT_EQ(shown.err, "");
    ASSERT_EQ(shown.lines().size(), 3U);
    EXPECT_THAT(words(shown.lines()[0]), ElementsAre("VARIABLE", "EXPONENT"));
    EXPECT_THAT(words(shown.lines()[1]), ElementsAre("DISPLACEMENT", "6"));
    EXPECT_THAT(words(shown.lines()[2]), ElementsAre("STRESS", "-2"));
}

TEST(Params, AsJson)
{
    const TempFile file{"exponents.txt"};
    std::ofstream{file.path()} << "A 1\nB 2\n";
    const nlohmann::json json = run_program({"params", "--json", file.path()}).json();
    EXPECT_EQ(json["file"], file.path());
    EXPECT_EQ(json["exponents"],
              nlohmann::json::parse(R"([{"variable": "A", "exponent": 1}, {"variable": "B", "exponent": 2}])"));
}

TEST(Params, AnEmptyTableIsNoError)
{
    const TempFile file{"exponents.txt"};
    std::ofstream{file.path()} << "# nothing\n";
    EXPECT_EQ(run_program({"params", file.path()}).exit_code, 0);
    EXPECT_EQ(run_program({"params", "--json", file.path()}).json()["exponents"], nlohmann::json::array());
}

TEST(Params, AMissingFileIsSaid)
{
    const TempFile file{"exponents.txt"};
    const Outcome missing = run_program({"params", file.path()});
    EXPECT_EQ(missing.exit_code, 3);
    EXPECT_EQ(missing.out, "");
    EXPECT_THAT(missing.err, HasSubstr("kob params: \"" + file.path() + "\" cannot be read\n"));
    EXPECT_EQ(run_program({"params"}).exit_code, 2);
}

} // namespace
