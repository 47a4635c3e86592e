// SPDX-License-Identifier: BSD-3-Clause
// Opens a result file through the library, lists its blocks and says why when that is not possible.

#include "file.hpp"
#include "terminal.hpp"
#include "verbs.hpp"

#include "kob_dp.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>

namespace kob::program {

namespace {

constexpr std::int32_t header_key = 1;
constexpr std::int32_t read_only = 2;       // the group behind "post"
constexpr std::int32_t read_only_root = 10; // the root group
constexpr std::int32_t verbose = 1024;
constexpr std::string_view block_level = "kobblock";

std::int32_t open_file(const std::string& path, std::int32_t option, std::int64_t& group)
{
    char unused = ' ';
    std::int32_t path_length = static_cast<std::int32_t>(path.size());
    std::int32_t none = 0;
    std::int32_t no_domain = 0;
    std::int32_t status = 0;
    std::string name = path; // the library takes the address of a plain buffer
    KOB_OPEN(name.data(), &path_length, &unused, &none, &unused, &none, &group, &no_domain, &option, &status);
    return status;
}

/// The part of the path that names something on disk: a name inside the file may follow it.
std::string existing_part(std::string path)
{
    struct stat info {};
    while (stat(path.c_str(), &info) != 0) {
        const auto cut = path.rfind('/');
        if (cut == std::string::npos || cut == 0) return {};
        path.resize(cut);
    }
    return path;
}

/// Why a file cannot be opened, as far as it can be seen from outside.
std::string reason(const std::string& path)
{
    struct stat info {};
    if (stat(path.c_str(), &info) != 0 && errno != ENOTDIR) return std::strerror(errno);
    const std::string existing = existing_part(path);
    if (existing.empty()) return "No such file or directory";
    if (stat(existing.c_str(), &info) != 0) return std::strerror(errno);
    if (S_ISDIR(info.st_mode)) return "is a directory";
    if (info.st_size == 0) return "is empty";
    std::ifstream stream{existing, std::ios::binary};
    if (!stream) return std::strerror(errno);
    std::array<char, 8> start{};
    stream.read(start.data(), start.size());
    if (std::memcmp(start.data(), "\x89HDF\r\n\x1a\n", start.size()) != 0) return "is not an HDF5 file";
    return {};
}

std::string bound_name(int bound, int earliest, int v18, int latest)
{
    if (bound == earliest) return "earliest";
    if (bound == latest) return "latest";
    if (bound == v18) return "1.8";
    return fmt::format("1.{}", 8 + 2 * (bound - v18)); // the bounds in between are the even releases
}

/// Finds the lines of the verbose opening that say something about HDF5.
OpenReport parse_report(const std::string& text)
{
    OpenReport report;
    constexpr const char* library_line = "KOB INFO - hdf5-lib version: ";
    if (const auto at = text.find(library_line); at != std::string::npos) {
        const auto start = at + std::strlen(library_line);
        report.library = text.substr(start, text.find('\n', start) - start);
    }
    if (const auto at = text.find("KOB INFO - HDF5 LIBVER bounds"); at != std::string::npos) {
        int earliest = 0;
        int v18 = 0;
        int latest = 0;
        int lower = 0;
        int upper = 0;
        const int found = std::sscanf(
            text.c_str() + at, "KOB INFO - HDF5 LIBVER bounds (earliest=%d, 18=%d, LATEST=%d) lower=%d, upper=%d",
            &earliest, &v18, &latest, &lower, &upper);
        if (found == 5) {
            report.lower_bound = bound_name(lower, earliest, v18, latest);
            report.upper_bound = bound_name(upper, earliest, v18, latest);
        }
    }
    return report;
}

/// The order of the walk: by the names of the levels.
bool is_before(const Entry& a, const Entry& b)
{
    const auto rank = [](char c) { return c == '/' ? 0 : static_cast<unsigned char>(c); };
    return std::lexicographical_compare(a.path.begin(), a.path.end(), b.path.begin(), b.path.end(),
                                        [&](char x, char y) { return rank(x) < rank(y); });
}

/// All blocks of one generation.
std::vector<Entry> blocks_below(const std::string& file, std::int64_t group, decltype(&kob_lookup) lookup)
{
    std::int32_t store = 1;
    std::int32_t quiet = 0;
    std::int32_t capacity = 0;
    std::int64_t size = 0;
    std::int32_t count = 0;
    std::int64_t length = 0;
    std::int32_t* keys = nullptr;
    std::int64_t* offsets = nullptr;
    char* paths = nullptr;
    std::int32_t status = 0;
    lookup(&group, &store, &quiet, &capacity, &size, &count, &length, &keys, &offsets, &paths, &status);
    const std::unique_ptr<std::int32_t, decltype(&std::free)> own_keys{keys, &std::free};
    const std::unique_ptr<std::int64_t, decltype(&std::free)> own_offsets{offsets, &std::free};
    const std::unique_ptr<char, decltype(&std::free)> own_paths{paths, &std::free};
    if (status != 0)
        throw Failure{exit_cannot_read,
                      fmt::format("{}: the blocks cannot be listed (status {})", printable(file), status)};
    std::vector<Entry> entries;
    entries.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) entries.push_back({i, keys[i], paths + offsets[i]});
    return entries;
}

} // namespace

std::string_view short_path(const Entry& entry)
{
    std::string_view path = entry.path;
    if (path.ends_with(block_level)) path.remove_suffix(block_level.size());
    if (path.ends_with('/')) path.remove_suffix(1);
    return path.empty() ? std::string_view{entry.path} : path;
}

std::vector<std::int64_t> state_numbers(const Entry& entry)
{
    constexpr std::string_view top = "singlestate/";
    constexpr std::string_view state = "state";
    constexpr std::size_t fewest_digits = 12;
    std::vector<std::int64_t> numbers;
    std::string_view rest = entry.path;
    if (!rest.starts_with(top)) return numbers;
    rest.remove_prefix(top.size());
    while (rest.starts_with(state)) {
        const std::string_view level = rest.substr(0, rest.find('/'));
        const std::string_view digits = level.substr(state.size());
        std::int64_t number = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (digits.size() < fewest_digits || error != std::errc{} || end != digits.data() + digits.size()) break;
        numbers.push_back(number);
        rest.remove_prefix(std::min(level.size() + 1, rest.size()));
    }
    std::reverse(numbers.begin(), numbers.end()); // the last index is the outermost group
    return numbers;
}

File::File(const std::string& path) : path_{path}
{
    open();
    try {
        read_header();
        list_entries();
    } catch (...) {
        std::int32_t status = 0;
        KOB_CLOSE(&group_, &status);
        throw;
    }
}

File::~File()
{
    std::int32_t status = 0;
    KOB_CLOSE(&group_, &status);
}

void File::open()
{
    if (path_.empty()) throw Failure{exit_usage, "the file name is empty"};
    if (path_.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        throw Failure{exit_usage, "the file name is too long"};
    std::string complaints;
    for (const std::int32_t mode : {read_only, read_only_root}) {
        Diverted output{STDOUT_FILENO};
        Diverted errors{STDERR_FILENO};
        const std::int32_t status = open_file(path_, output.active() ? mode | verbose : mode, group_);
        const std::string report = output.text();
        const std::string lines = errors.text();
        if (status == 0) {
            report_ = parse_report(report);
            return;
        }
        if (complaints.empty()) complaints = lines;
    }
    const std::string why = reason(path_);
    if (!why.empty()) throw Failure{exit_cannot_read, fmt::format("{}: {}", printable(path_), why)};
    fmt::print(stderr, "{}", complaints); // nothing better is known
    throw Failure{exit_cannot_read,
                  fmt::format("{}: cannot be opened (damaged, or held by a program that writes it)", printable(path_))};
}

void File::list_entries()
{
    entries_ = blocks_below(path_, group_, kob_lookup);
    if (may_hold_older_blocks()) {
        std::vector<Entry> older = blocks_below(path_, group_, kob1_lookup);
        std::erase_if(older, [](const Entry& entry) { return entry.key == header_key; }); // listed by both
        for (Entry& entry : older) entry.older = true;
        std::vector<Entry> both;
        std::merge(entries_.begin(), entries_.end(), older.begin(), older.end(), std::back_inserter(both), is_before);
        entries_ = std::move(both);
    }
    std::int32_t number = 0;
    for (Entry& entry : entries_) entry.number = number++;
}

void File::read_header()
{
    constexpr std::size_t version_length = 32;
    std::optional<Group> group;
    try {
        const Diverted errors{STDERR_FILENO};
        group.emplace(group_, "kobheader");
    } catch (const Failure&) {
        return; // a file without header
    }
    has_header_ = true;
    // The caller says what is wrong with a header; the reader's own lines would say it a second time.
    const Diverted errors{STDERR_FILENO};
    const auto read = [&](decltype(&KOB_READ_FILEHEADER) reader) {
        std::array<char, version_length> version{};
        std::int32_t flags = 0;
        std::array<std::int32_t, 2> params{};
        reader(group->handle(), version.data(), &flags, params.data(), &header_.status);
        if (header_.status >= 0) header_.version = trimmed({version.data(), strnlen(version.data(), version_length)});
    };
    read(KOB_READ_FILEHEADER);
    if (header_.older_layout()) read(KOB1_READ_FILEHEADER);
}

BlockCounts File::block_counts() const
{
    BlockCounts counts;
    for (const Entry& entry : entries_)
        if (entry.key != header_key) ++(entry.older ? counts.older : counts.current);
    return counts;
}

std::int64_t File::stored_bytes() const
{
    struct stat info {};
    const std::string existing = disk_path();
    if (existing.empty() || stat(existing.c_str(), &info) != 0) return -1;
    return info.st_size;
}

std::string File::disk_path() const { return existing_part(path_); }

Group::Group(std::int64_t parent, const std::string& path)
{
    std::int32_t terminated = -1;
    std::int32_t open_only = 1;
    std::int32_t status = 0;
    std::string name = path;
    KOB_H5GOPEN(&parent, name.data(), &terminated, &open_only, &handle_, &status);
    if (status < 0) {
        handle_ = -1;
        throw Failure{exit_cannot_read, fmt::format("{}: cannot be opened (status {})", printable(path), status)};
    }
}

Group::~Group()
{
    std::int32_t status = 0;
    if (handle_ >= 0) KOB_H5GCLOSE(&handle_, &status);
}

Diverted::Diverted(int descriptor) : descriptor_{descriptor}
{
    std::fflush(nullptr);
    capture_ = memfd_create("kob", MFD_CLOEXEC);
    saved_ = fcntl(descriptor_, F_DUPFD_CLOEXEC, 3);
    if (capture_ < 0 || saved_ < 0 || dup2(capture_, descriptor_) < 0) restore(); // the text goes where it always goes
}

Diverted::~Diverted() { restore(); }

void Diverted::restore()
{
    std::fflush(nullptr);
    if (saved_ >= 0) {
        dup2(saved_, descriptor_);
        close(saved_);
    }
    if (capture_ >= 0) close(capture_);
    saved_ = -1;
    capture_ = -1;
}

std::string Diverted::text()
{
    std::string result;
    std::fflush(nullptr);
    if (capture_ >= 0) {
        std::array<char, 4096> piece{};
        off_t at = 0;
        ssize_t got = 0;
        while ((got = pread(capture_, piece.data(), piece.size(), at)) > 0) {
            result.append(piece.data(), static_cast<std::size_t>(got));
            at += got;
        }
    }
    restore();
    return result;
}

} // namespace kob::program
