// SPDX-License-Identifier: BSD-3-Clause
// The parameter file of compression exponents: which lines count, and what two passes return and print.

#include <cstdint>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <kob_dp.h>

#include "captured_stream.hpp"
#include "temp_file.hpp"
#include "text256.hpp"

namespace {

using namespace kob_test;

using Entries = std::vector<std::pair<std::string, std::int32_t>>;

struct Call {
    std::int32_t status = 77;
    std::string out;
    std::string err;
};

class ReadParam : public ::testing::Test {
protected:
    void write(const std::string& text) const { std::ofstream{file_.path(), std::ios::binary} << text; }

    Call call(std::int32_t pass, std::int32_t verbose = 0) { return call(file_.path(), pass, verbose); }
    Call call(const std::string& path, std::int32_t pass, std::int32_t verbose = 0)
    {
        Call result;
        CapturedStream captured;
        KOB_READ_PARAM(path.c_str(), 0, &pass, &count_, names_.data(), exponents_.data(), &verbose, &result.status);
        result.out = captured.out();
        result.err = captured.err();
        return result;
    }

    /// Makes room, with marks that no entry gives.
    void make_room(std::size_t entries)
    {
        names_.assign(256 * entries, '#');
        exponents_.assign(entries, -777);
        count_ = static_cast<std::int32_t>(entries);
    }

    /// Both passes, in silence.
    Entries read(const std::string& text)
    {
        write(text);
        count_ = 77;
        const Call counted = call(0);
        EXPECT_EQ(counted.status, 0);
        EXPECT_EQ(counted.out + counted.err, "");
        const std::int32_t expected = count_;
        make_room(static_cast<std::size_t>(count_));
        const Call got = call(1);
        EXPECT_EQ(got.status, 0);
        EXPECT_EQ(got.out + got.err, "");
        EXPECT_EQ(count_, expected) << "the passes disagree";
        Entries entries;
        for (std::size_t i = 0; i < exponents_.size(); ++i)
            entries.emplace_back(trimmed(std::string_view{names_}.substr(256 * i, 256)), exponents_[i]);
        return entries;
    }

    TempFile file_{"exponents.txt"};
    std::int32_t count_ = 0;
    std::string names_;
    std::vector<std::int32_t> exponents_;
};

TEST_F(ReadParam, AWordAndAnIntegerMakeAnEntry)
{
    EXPECT_EQ(read("disp 3 # digits behind the point\n"
                   "$ the next one has no exponent\n"
                   "stress\n"
                   "TEMPERATURE\t-2\n"),
              (Entries{{"disp", 3}, {"TEMPERATURE", -2}}));
}

TEST_F(ReadParam, CommentsBeginAnywhere)
{
    EXPECT_EQ(read("a 1$2\nb$c 2\nd #3\n#e 4\nf 5#\n$#\ng#$ 6\nh 7 $ # \n"), (Entries{{"a", 1}, {"f", 5}, {"h", 7}}));
}

TEST_F(ReadParam, EmptyLinesAndLinesWithoutBothAreSkipped)
{
    EXPECT_EQ(read("\n   \n\t\nword\n12\nword word\n3 word\n  indented   4\n\n"), (Entries{{"indented", 4}}));
}

TEST_F(ReadParam, ANumberCanBeAName) { EXPECT_EQ(read("12 5\n"), (Entries{{"12", 5}})); }

TEST_F(ReadParam, WhatFollowsTheIntegerDoesNotCount)
{
    EXPECT_EQ(read("a 3 4 5\nb 6.9\nc 7x\nd +8\n"), (Entries{{"a", 3}, {"b", 6}, {"c", 7}, {"d", 8}}));
}

TEST_F(ReadParam, OrderAndDuplicatesAreKept)
{
    EXPECT_EQ(read("z 1\na 2\nz 3\n"), (Entries{{"z", 1}, {"a", 2}, {"z", 3}}));
}

TEST_F(ReadParam, LinesOfOtherSystemsAndALastLineWithoutItsEndCount)
{
    EXPECT_EQ(read("a 1\r\nb 2\r\nc 3"), (Entries{{"a", 1}, {"b", 2}, {"c", 3}}));
}

TEST_F(ReadParam, AnIntegerThatDoesNotFitIsNone)
{
    EXPECT_EQ(read("a 2147483647\nb -2147483648\nc 2147483648\nd 99999999999999999999\n"),
              (Entries{{"a", 2147483647}, {"b", -2147483647 - 1}}));
}

TEST_F(ReadParam, AnEmptyFileHasNoEntries)
{
    EXPECT_EQ(read(""), Entries{});
    EXPECT_EQ(read("# nothing\n"), Entries{});
}

TEST_F(ReadParam, ALongLineGoesOnAsALineOfItsOwn)
{
    // 299 characters make the first piece; the rest is read as if it stood on the next line.
    const std::string first = "a 1" + std::string(296, ' ');
    EXPECT_EQ(read(first + "b 2\n"), (Entries{{"a", 1}, {"b", 2}}));
    const std::string one_less = "a 1" + std::string(295, ' ');
    EXPECT_EQ(read(one_less + "b 2\n"), (Entries{{"a", 1}})) << "the piece ends behind the b";
    EXPECT_EQ(read("a 1 #" + std::string(294, ' ') + "b 2\n"), (Entries{{"a", 1}, {"b", 2}}))
        << "a comment ends with the piece";
}

TEST_F(ReadParam, NamesArePaddedWithBlanks)
{
    write("disp 3\n");
    make_room(2);
    EXPECT_EQ(call(1).status, 0);
    EXPECT_EQ(count_, 1);
    EXPECT_EQ(names_, "disp" + std::string(508, ' ')) << "every field that the caller counted is cleared";
    EXPECT_EQ(exponents_, (std::vector<std::int32_t>{3, -777}));
}

TEST_F(ReadParam, ANameMayFillItsField)
{
    const std::string name(256, 'n');
    EXPECT_EQ(read(name + " 3\nb 4\n"), (Entries{{name, 3}, {"b", 4}}));
}

TEST_F(ReadParam, ALongerNameRunsIntoTheNextField)
{
    const std::string name(260, 'n');
    write("x 1\n" + name + " 3\n\n");
    make_room(3);
    EXPECT_EQ(call(1).status, 0);
    EXPECT_EQ(count_, 2);
    EXPECT_EQ(names_.substr(256), name + std::string(252, ' '));
    // The next entry goes over it, and the last field of all has an end.
    write(name + " 1\nb 2\n" + name + " 3\n");
    make_room(3);
    EXPECT_EQ(call(1).status, 0);
    EXPECT_EQ(names_, std::string(256, 'n') + "bnnn" + std::string(252, ' ') + std::string(256, 'n'));
}

TEST_F(ReadParam, EntriesBeyondTheCallersArraysAreNotStored)
{
    write("a 1\nb 2\nc 3\n");
    make_room(2);
    EXPECT_EQ(call(1).status, 0);
    EXPECT_EQ(count_, 2);
    EXPECT_EQ(exponents_, (std::vector<std::int32_t>{1, 2}));
    make_room(0);
    EXPECT_EQ(call(1).status, 0);
    EXPECT_EQ(count_, 0);
}

TEST_F(ReadParam, VerboseCountingPrintsTheHead)
{
    write("a 1\nb -22\n");
    const Call counted = call(0, 1);
    EXPECT_EQ(counted.err, "");
    EXPECT_EQ(counted.out, "\n Table: Exponents per variable for scaleoffset compression filters\n"
                           "\n   Number of variables found in parameter file: 2\n\n"
                           "   +----------+-------------------------------------------------\n"
                           "   | exponent | variable\n"
                           "   +----------+-------------------------------------------------\n");
}

TEST_F(ReadParam, VerboseReadingPrintsARowForEachEntryAndNoBorder)
{
    write("a 1\nlonger -22\n");
    make_room(2);
    const Call got = call(1, 7);
    EXPECT_EQ(got.err, "");
    EXPECT_EQ(got.out, "            1 | \"a\"\n"
                       "          -22 | \"longer\"\n");
    EXPECT_EQ(call(1, -1).out, "");
}

TEST_F(ReadParam, AnotherPassDoesNothing)
{
    write("a 1\n");
    for (const std::int32_t pass : {-1, 2, 1024}) {
        make_room(1);
        const Call nothing = call(pass, 1);
        EXPECT_EQ(nothing.status, 0);
        EXPECT_EQ(nothing.out + nothing.err, "");
        EXPECT_EQ(count_, 1);
        EXPECT_EQ(names_, std::string(256, '#'));
        EXPECT_EQ(exponents_, (std::vector<std::int32_t>{-777}));
    }
}

TEST_F(ReadParam, AMissingFileIsAnErrorInEveryPass)
{
    for (const std::int32_t pass : {0, 1, 2}) {
        make_room(1);
        const std::string path = file_.path() + ".missing";
        const Call missing = call(path, pass, 1);
        EXPECT_EQ(missing.status, -1);
        EXPECT_EQ(missing.out, "");
        EXPECT_EQ(missing.err, "Fatal error: Cannot open or find file \"" + path + "\".\n");
        EXPECT_EQ(count_, 1);
        EXPECT_EQ(names_, std::string(256, '#'));
    }
}

TEST_F(ReadParam, AFolderIsNotReadable)
{
    const TempDir folder;
    const Call refused = call(folder.path().string(), 0);
    EXPECT_EQ(refused.status, -1);
    EXPECT_EQ(refused.err, "Fatal error: Cannot open or find file \"" + folder.path().string() + "\".\n");
}

TEST_F(ReadParam, ThePathLengthIsNotUsed)
{
    write("a 1\n");
    const std::int32_t pass = 0, verbose = 0;
    for (const std::int32_t length : {-5, 0, 1, 1000000}) {
        std::int32_t status = 77;
        KOB_READ_PARAM(file_.path().c_str(), length, &pass, &count_, nullptr, nullptr, &verbose, &status);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(count_, 1);
    }
}

} // namespace
