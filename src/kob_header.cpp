// SPDX-License-Identifier: BSD-3-Clause
// The file header: a signature and the version of the layout, in 64 bytes of text.
#include "kob_dp.h"
#include "kob_entry.hpp"
#include "kob_id.hpp"
#include "kob_module.hpp"
#include "kob_storage.hpp"
#include "kob_text.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

namespace kob {
namespace {

constexpr char header_name[] = "kobheader";
constexpr std::size_t header_length = 64;
constexpr std::size_t version_offset = 8;
constexpr std::size_t version_length = 32; // what a reader hands out
// A byte that is no text, the name, and line ends that a text transfer would change.
constexpr std::array<char, version_offset> signature{'\x89', 'K', 'O', 'B', '\r', '\n', '\x1a', '\n'};
constexpr std::int32_t wrong_version = 100; // added to the number of wrong signature bytes

std::int32_t write_header(Generation generation, hid_t parent)
{
    Id group{H5Gcreate2(parent, header_name, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), H5Gclose};
    if (!group) {
        report_error(message::header_writing_code, static_cast<int>(group.get()));
        return static_cast<std::int32_t>(group.get());
    }
    const Version version = version_of(generation);
    const std::string triple =
        std::to_string(version.major) + ' ' + std::to_string(version.minor) + ' ' + std::to_string(version.release);
    std::array<char, header_length> text{};
    fill_field(text.data(), text.size(), std::string{signature.data(), signature.size()} + triple);
    const hsize_t one = 1;
    std::int32_t status =
        KOB_H5Dwrite(header_name, text.data(), type_code::text, header_length, header_length, &one, 0, nullptr, nullptr,
                     access_mode::whole, group.get(), 0, nullptr, {.place = Place::fresh});
    if (group.close() < 0 && status == 0) {
        status = -1;
    }
    if (status != 0) {
        report_error(message::header_writing);
    }
    return status;
}

std::int32_t read_header(Generation generation, hid_t group, char* version_text, std::int32_t* filter_flags,
                         std::int32_t* filter_params)
{
    std::array<char, header_length + 1> text{};
    std::int32_t found_flags = 0;
    std::array<std::int32_t, 2> found_params{};
    const hsize_t one = 1;
    std::int32_t status = KOB_H5Dread(header_name, text.data(), type_code::text, header_length, &one, 0, nullptr,
                                      nullptr, access_mode::whole, group, &found_flags, found_params.data(), nullptr);
    if (status < 0) {
        report_error(message::header_reading);
        return status;
    }
    *filter_flags = found_flags;
    std::copy(found_params.begin(), found_params.end(), filter_params);
    for (std::size_t i = 0; i < signature.size(); ++i) {
        if (text[i] != signature[i]) {
            report_error(message::header_signature);
            ++status;
        }
    }
    const Version wanted = version_of(generation);
    Version found{-1, -1, -1};
    const int numbers =
        std::sscanf(text.data() + version_offset, "%d %d %d", &found.major, &found.minor, &found.release);
    if (numbers != 3 || found.major != wanted.major || found.minor != wanted.minor || found.release != wanted.release) {
        status += wrong_version;
    }
    std::copy_n(text.data() + version_offset, version_length, version_text);
    return status;
}

} // namespace
} // namespace kob

extern "C" {

void KOB_WRITE_FILEHEADER(const int64_t* handle, const void*, const void*, int32_t* status)
{
    using namespace kob;
    entry(status, [&] { return write_header(Generation::current, value(handle)); });
}

void KOB_READ_FILEHEADER(const int64_t* handle, char* version, int32_t* filter_flags, int32_t* filter_params,
                         int32_t* status)
{
    using namespace kob;
    entry(status,
          [&] { return read_header(Generation::current, value(handle), version, filter_flags, filter_params); });
}

void KOB1_WRITE_FILEHEADER(const int64_t* handle, const void*, const void*, int32_t* status)
{
    using namespace kob;
    entry(status, [&] { return write_header(Generation::older, value(handle)); });
}

void KOB1_READ_FILEHEADER(const int64_t* handle, char* version, int32_t* filter_flags, int32_t* filter_params,
                          int32_t* status)
{
    using namespace kob;
    entry(status, [&] { return read_header(Generation::older, value(handle), version, filter_flags, filter_params); });
}

} // extern "C"
