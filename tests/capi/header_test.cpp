// SPDX-License-Identifier: BSD-3-Clause
// The stamp of a file: signature and format version, of both layout generations.
#include <array>
#include <cstdint>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>
#include <kob_dp.h>

#include "open_file.hpp"
#include "support/captured_stream.hpp"
#include "support/hdf5_file.hpp"
#include "support/kob_file.hpp"
#include "support/layout.hpp"

using namespace kob_test;
using testing::ElementsAre;

namespace {

const std::string signature = "\x89KOB\r\n\x1a\n";
const std::string one_warning = "KOB WARNING - wrong file signature or format\n";

std::string padded(std::string text, std::size_t size)
{
    text.resize(size, ' ');
    return text;
}

std::string repeated(const std::string& text, int times)
{
    std::string all;
    while (times-- > 0) all += text;
    return all;
}

using Writer = void(const std::int64_t*, const void*, const void*, std::int32_t*);
using Reader = void(const std::int64_t*, char*, std::int32_t*, std::int32_t*, std::int32_t*);

std::int32_t write_header(std::int64_t group, Writer* writer = KOB_WRITE_FILEHEADER)
{
    std::int32_t status = 77;
    writer(&group, nullptr, nullptr, &status);
    return status;
}

struct ReadHeader {
    std::string version = std::string(40, '#');
    std::int32_t filter_flags = 55;
    std::array<std::int32_t, 2> filter_params{55, 56};
    std::int32_t status = 77;
    std::string errors;

    explicit ReadHeader(std::int64_t group, Reader* reader = KOB_READ_FILEHEADER)
    {
        errors = errors_of([&] { reader(&group, version.data(), &filter_flags, filter_params.data(), &status); });
    }
};

/// Puts a header of these 64 bytes into the file with plain HDF5 and reads it.
ReadHeader read_made(const std::string& bytes, Reader* reader = KOB_READ_FILEHEADER)
{
    const KobFile file;
    const auto group = create_group(file.handle(), "kobheader");
    put_dataset(group, "kobheader", text_type(64), {}, text_type(64), padded(bytes, 64).data());
    return ReadHeader{group, reader};
}

TEST(Header, Is_one_text_of_64_characters)
{
    const KobFile file;
    ASSERT_EQ(write_header(file.handle()), 0);
    EXPECT_THAT(link_names(file.handle()), ElementsAre("kobheader"));
    const auto group = open_group(file.handle(), "kobheader");
    EXPECT_EQ(layout_of(group), table({"dataset kobheader text 64 space scalar compact"}));
    EXPECT_EQ(stored_text(group, "kobheader"), padded(signature + "2 2 16", 64));
}

TEST(Header, Of_the_older_layout_differs_in_the_version_alone)
{
    const KobFile file;
    ASSERT_EQ(write_header(file.handle(), KOB1_WRITE_FILEHEADER), 0);
    const auto group = open_group(file.handle(), "kobheader");
    EXPECT_EQ(layout_of(group), table({"dataset kobheader text 64 space scalar compact"}));
    EXPECT_EQ(stored_text(group, "kobheader"), padded(signature + "1 2 0", 64));
}

TEST(Header, Is_read_back)
{
    const KobFile file;
    ASSERT_EQ(write_header(file.handle()), 0);
    const ReadHeader read{open_group(file.handle(), "kobheader")};
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.version, padded("2 2 16", 32) + "########") << "32 bytes and no more";
    EXPECT_EQ(read.filter_flags, 0);
    EXPECT_THAT(read.filter_params, ElementsAre(0, 0));
    EXPECT_EQ(read.errors, "");
}

TEST(Header, Of_the_older_layout_is_read_back_by_its_own_reader)
{
    const KobFile file;
    ASSERT_EQ(write_header(file.handle(), KOB1_WRITE_FILEHEADER), 0);
    const ReadHeader read{open_group(file.handle(), "kobheader"), KOB1_READ_FILEHEADER};
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.version, padded("1 2 0", 32) + "########");
    EXPECT_EQ(read.errors, "");
}

TEST(Header, Of_the_other_generation_counts_as_another_version)
{
    const auto older = read_made(signature + "1 2 0");
    EXPECT_EQ(older.status, 100);
    EXPECT_EQ(older.version, padded("1 2 0", 32) + "########");
    EXPECT_EQ(older.errors, "");
    EXPECT_EQ(read_made(signature + "2 2 16", KOB1_READ_FILEHEADER).status, 100);
}

TEST(Header, Leaves_nothing_open)
{
    const KobFile file;
    EXPECT_EQ(left_open_by([&] { write_header(file.handle()); }), "");
    EXPECT_EQ(left_open_by([&] { errors_of([&] { write_header(file.handle()); }); }), "");
    EXPECT_EQ(left_open_by([&] { ReadHeader{file.handle()}; }), "");
}

TEST(Header, A_second_one_is_refused_and_the_first_one_stays)
{
    const KobFile file;
    ASSERT_EQ(write_header(file.handle()), 0);
    std::int32_t status = 77;
    const auto errors = errors_of([&] { status = write_header(file.handle(), KOB1_WRITE_FILEHEADER); });
    EXPECT_LT(status, 0);
    EXPECT_EQ(errors, "KOB ERROR writing header: " + std::to_string(status) + "\n");
    EXPECT_EQ(stored_text(open_group(file.handle(), "kobheader"), "kobheader"), padded(signature + "2 2 16", 64));
}

TEST(Header, Cannot_be_written_to_a_read_only_file_or_to_no_group)
{
    KobFile file;
    file.reopen(read_only);
    for (const std::int64_t group : {file.handle(), std::int64_t{-1}, std::int64_t{12345}}) {
        std::int32_t status = 77;
        const auto errors = errors_of([&] { status = write_header(group); });
        EXPECT_LT(status, 0);
        EXPECT_EQ(errors, "KOB ERROR writing header: " + std::to_string(status) + "\n");
    }
}

TEST(Header, Each_wrong_byte_of_the_signature_counts_once)
{
    for (std::size_t i = 0; i < signature.size(); ++i) {
        auto bytes = signature + "2 2 16";
        bytes[i] = static_cast<char>(bytes[i] - 1);
        const auto read = read_made(bytes);
        EXPECT_EQ(read.status, 1) << "byte " << i;
        EXPECT_EQ(read.errors, one_warning);
        EXPECT_EQ(read.version, padded("2 2 16", 32) + "########");
    }
}

TEST(Header, A_foreign_signature_gives_8_warnings)
{
    const auto read = read_made("notakob!2 2 16");
    EXPECT_EQ(read.status, 8);
    EXPECT_EQ(read.errors, repeated(one_warning, 8));
}

TEST(Header, A_foreign_signature_and_version_add_up)
{
    const auto read = read_made("notakob!nothing");
    EXPECT_EQ(read.status, 108);
    EXPECT_EQ(read.errors, repeated(one_warning, 8));
    EXPECT_EQ(read.version, padded("nothing", 32) + "########");
    EXPECT_EQ(read_made("\x88KOB\r\n\x1a\n9 9 9").status, 101);
}

TEST(Header, Any_other_version_is_wrong)
{
    for (const auto* version :
         {"2 2 15", "2 2 17", "2 2 160", "3 0 0", "2 3 16", "1 2 16", "2 2", "2", "", "a b c", "2.2.16", "-2 2 16"}) {
        const auto read = read_made(signature + version);
        EXPECT_EQ(read.status, 100) << version;
        EXPECT_EQ(read.version, padded(version, 32) + "########");
        EXPECT_EQ(read.errors, "");
    }
}

TEST(Header, The_version_is_scanned_as_three_numbers)
{
    for (const auto* version : {"2 2 16", "  2   2   16", "2 2 16 and more", "2\t2\n16", "02 +2 16"})
        EXPECT_EQ(read_made(signature + version).status, 0) << version;
}

TEST(Header, The_version_may_fill_the_whole_rest)
{
    const auto read = read_made(signature + std::string(56, '7'));
    EXPECT_EQ(read.status, 100) << "one number that no integer holds";
    EXPECT_EQ(read.version, std::string(32, '7') + "########");
}

TEST(Header, Reading_needs_the_header_group_itself)
{
    const KobFile file;
    ASSERT_EQ(write_header(file.handle()), 0);
    const ReadHeader read{file.handle()};
    EXPECT_EQ(read.status, -6003);
    EXPECT_EQ(read.errors, "KOB INTERNAL ERROR (3) in KOB_H5Dread - name, kob_type, data_size, error: "
                           "kobheader 1 64 -1\nKOB ERROR reading header\n");
    EXPECT_EQ(read.version, std::string(40, '#'));
    EXPECT_EQ(read.filter_flags, 55);
    EXPECT_THAT(read.filter_params, ElementsAre(55, 56));
}

TEST(Header, A_missing_header_is_reported)
{
    const KobFile file;
    for (Reader* reader : {KOB_READ_FILEHEADER, KOB1_READ_FILEHEADER}) {
        const ReadHeader read{file.handle(), reader};
        EXPECT_EQ(read.status, -6002);
        EXPECT_THAT(read.errors, testing::EndsWith("\nKOB ERROR reading header\n"));
        EXPECT_EQ(read.version, std::string(40, '#'));
    }
}

TEST(Header, A_handle_that_is_none_is_reported)
{
    for (const std::int64_t group : {std::int64_t{-1}, std::int64_t{0}, std::int64_t{12345}}) {
        const ReadHeader read{group};
        EXPECT_LT(read.status, 0);
        EXPECT_THAT(read.errors, testing::EndsWith("KOB ERROR reading header\n"));
        EXPECT_EQ(read.version, std::string(40, '#'));
    }
}

TEST(Header, A_stored_text_wider_than_64_is_refused)
{
    const KobFile file;
    const auto group = create_group(file.handle(), "kobheader");
    put_dataset(group, "kobheader", text_type(65), {}, text_type(65), padded(signature + "2 2 16", 65).data());
    EXPECT_EQ(ReadHeader{group}.status, -6010);
}

TEST(Header, A_stored_text_shorter_than_64_is_blanked_behind)
{
    const KobFile file;
    const auto group = create_group(file.handle(), "kobheader");
    put_dataset(group, "kobheader", text_type(14), {}, text_type(14), (signature + "2 2 16").data());
    const ReadHeader read{group};
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.version, padded("2 2 16", 32) + "########");
}

TEST(Header, An_array_of_texts_is_no_header)
{
    const KobFile file;
    const auto group = create_group(file.handle(), "kobheader");
    const auto two = padded(signature + "2 2 16", 64) + std::string(64, 'x');
    put_dataset(group, "kobheader", text_type(64), {2}, text_type(64), two.data());
    EXPECT_EQ(ReadHeader{group}.status, -6020) << "one element is expected";
}

} // namespace
