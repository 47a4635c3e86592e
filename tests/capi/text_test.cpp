// SPDX-License-Identifier: BSD-3-Clause
// Text helpers, the chunk-size setting and the module information.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kob_dp.h>

#include "guarded_text.hpp"

namespace {

using namespace kob_test;
using testing::HasSubstr;
using testing::Not;

/// The chunk size before any test could set it.
const std::int32_t first_chunk_size = [] {
    std::int32_t size = -77;
    KOB_GET_CHUNK_SIZE(&size);
    return size;
}();

struct Printed {
    std::int32_t count;
    std::string text;
};

Printed print(const char* text, std::int64_t length)
{
    char* memory = nullptr;
    std::size_t size = 0;
    std::FILE* stream = open_memstream(&memory, &size);
    const auto count = KOB_putc(text, length, stream);
    std::fclose(stream);
    Printed printed{count, std::string(memory, size)};
    std::free(memory); // NOLINT: open_memstream hands out malloc's memory
    return printed;
}

TEST(TextLength, Drops_trailing_blanks)
{
    EXPECT_EQ(KOB_strlen("post      ", 10), 4);
    EXPECT_EQ(KOB_strlen("post", 4), 4);
}

TEST(TextLength, Ends_at_the_first_NUL)
{
    EXPECT_EQ(KOB_strlen("po\0t      ", 10), 2);
    EXPECT_EQ(KOB_strlen("po \0t", 5), 2) << "blanks before the NUL are trailing, too";
    EXPECT_EQ(KOB_strlen("\0post", 5), 0);
}

TEST(TextLength, Ends_at_the_declared_length)
{
    EXPECT_EQ(KOB_strlen("posting", 4), 4);
    EXPECT_EQ(KOB_strlen("po sting", 3), 2);
}

TEST(TextLength, Is_zero_for_declared_lengths_below_one)
{
    EXPECT_EQ(KOB_strlen("post", 0), 0);
    EXPECT_EQ(KOB_strlen("post", -1), 0);
    EXPECT_EQ(KOB_strlen("post", std::numeric_limits<std::int32_t>::min()), 0);
    EXPECT_EQ(KOB_strlen(nullptr, 0), 0);
}

TEST(TextLength, Keeps_leading_and_inner_blanks) { EXPECT_EQ(KOB_strlen("  a  b  ", 8), 6); }

TEST(TextLength, Is_zero_without_a_graphic_character)
{
    EXPECT_EQ(KOB_strlen("        ", 8), 0);
    EXPECT_EQ(KOB_strlen(" \t\r\n\v\f\x01\x7f", 8), 0);
    EXPECT_EQ(KOB_strlen("\x80\xa0\xe4\xff", 4), 0);
}

TEST(TextLength, Drops_trailing_bytes_above_127_and_keeps_inner_ones)
{
    EXPECT_EQ(KOB_strlen("gr\xc3\xb6\xc3\x9f", 6), 2);
    EXPECT_EQ(KOB_strlen("gr\xc3\xb6\xc3\x9f"
                         "e",
                         7),
              7);
}

TEST(TextLength, Counts_exactly_the_bytes_33_to_126_as_graphic)
{
    for (int byte = 1; byte < 256; ++byte) {
        const char text[2] = {'a', static_cast<char>(byte)};
        EXPECT_EQ(KOB_strlen(text, 2), byte >= 33 && byte <= 126 ? 2 : 1) << "byte " << byte;
    }
}

TEST(TextLength, Reads_no_byte_behind_the_declared_length)
{
    const GuardedText text{"abc  "};
    EXPECT_EQ(KOB_strlen(text.data(), 5), 3);
    const GuardedText full{"abcde"};
    EXPECT_EQ(KOB_strlen(full.data(), 5), 5);
}

TEST(TextPrint, Writes_the_trimmed_text_without_newline)
{
    const auto printed = print("  a text   ", 11);
    EXPECT_EQ(printed.count, 8);
    EXPECT_EQ(printed.text, "  a text");
}

TEST(TextPrint, Writes_nothing_for_an_empty_text)
{
    for (const auto& [text, length] : {std::pair{"    ", 4}, std::pair{"post", 0}, std::pair{"post", -3}}) {
        const auto printed = print(text, length);
        EXPECT_EQ(printed.count, 0);
        EXPECT_EQ(printed.text, "");
    }
}

TEST(TextPrint, Takes_the_low_32_bits_of_the_length)
{
    constexpr std::int64_t above = std::int64_t{1} << 32;
    EXPECT_EQ(print("posting", above + 4).text, "post");
    EXPECT_EQ(print("posting", above).text, "");
    EXPECT_EQ(print("posting", 0xffffffffLL).text, "") << "low 32 bits of -1";
}

TEST(TextPrint, Reads_no_byte_behind_the_declared_length)
{
    const GuardedText text{"abcde"};
    EXPECT_EQ(print(text.data(), 5).text, "abcde");
}

TEST(TextCompare, Ignores_trailing_blanks)
{
    EXPECT_EQ(KOB_strncmp("abc       ", "abc\0xyzxyz", 10), 0);
    EXPECT_EQ(KOB_strncmp("          ", "\0         ", 10), 0);
}

TEST(TextCompare, Gives_the_difference_of_lengths_when_one_begins_with_the_other)
{
    EXPECT_EQ(KOB_strncmp("ab ", "abc", 3), -1);
    EXPECT_EQ(KOB_strncmp("abc", "ab ", 3), 1);
    EXPECT_EQ(KOB_strncmp("a    ", "abcd ", 5), -3);
    EXPECT_EQ(KOB_strncmp("abcd ", "     ", 5), 4);
}

TEST(TextCompare, Gives_the_sign_of_the_first_byte_that_differs)
{
    EXPECT_GT(KOB_strncmp("a", "A", 1), 0);
    EXPECT_LT(KOB_strncmp("A", "a", 1), 0);
    EXPECT_LT(KOB_strncmp("abX     ", "abYlonger", 8), 0);
    EXPECT_GT(KOB_strncmp("b", "a\0", 1), 0);
    EXPECT_GT(KOB_strncmp("\xe4x", "ax", 2), 0) << "bytes compare as unsigned";
}

TEST(TextCompare, Finds_everything_equal_for_declared_lengths_below_one)
{
    EXPECT_EQ(KOB_strncmp("abc", "xyz", 0), 0);
    EXPECT_EQ(KOB_strncmp("abc", "xyz", -1), 0);
}

TEST(TextCompare, Looks_at_the_declared_length_only)
{
    EXPECT_EQ(KOB_strncmp("abcX", "abcY", 3), 0);
    const GuardedText text1{"abcde"};
    const GuardedText text2{"abcde"};
    EXPECT_EQ(KOB_strncmp(text1.data(), text2.data(), 5), 0);
}

TEST(ChunkSize, Is_one_at_first) { EXPECT_EQ(first_chunk_size, 1); }

TEST(ChunkSize, Keeps_whatever_is_set)
{
    std::int32_t before = 0;
    KOB_GET_CHUNK_SIZE(&before);
    for (const std::int32_t size : {7, 1, 0, -5, std::numeric_limits<std::int32_t>::max()}) {
        KOB_SET_CHUNK_SIZE(&size);
        std::int32_t found = 77;
        KOB_GET_CHUNK_SIZE(&found);
        EXPECT_EQ(found, size);
    }
    KOB_SET_CHUNK_SIZE(&before);
}

TEST(ModuleInfo, Names_revision_and_purpose)
{
    EXPECT_STREQ(KOB_get_revision(), "c21b29d");
    EXPECT_STREQ(KOB_get_module_description(), "legacy API for reading/writing kobh5 files");
}

TEST(ModuleInfo, Describes_the_build_in_one_line)
{
    const std::string line = KOB_get_build_info();
    EXPECT_THAT(line, HasSubstr("kob version 2.2.16+c21b29d"));
    EXPECT_THAT(line, HasSubstr("cl: 192930159; icx: 20220200"));
    EXPECT_THAT(line, Not(HasSubstr("\n")));
}

TEST(ModuleInfo, Chooses_by_number)
{
    EXPECT_STREQ(KOB_get_module_info(0), "legacy API for reading/writing kobh5 files");
    EXPECT_STREQ(KOB_get_module_info(1), " kob version 2.2.16");
    for (const std::int32_t which : {5, -1, 2, std::numeric_limits<std::int32_t>::min()})
        EXPECT_STREQ(KOB_get_module_info(which), KOB_get_build_info()) << which;
}

TEST(ModuleInfo, Agrees_with_the_version_of_the_header)
{
    const auto version = std::to_string(KOB_VERSION_MAJOR) + "." + std::to_string(KOB_VERSION_MINOR) + "." +
                         std::to_string(KOB_VERSION_PATCH);
    EXPECT_EQ(KOB_get_module_info(1), " kob version " + version);
}

} // namespace
