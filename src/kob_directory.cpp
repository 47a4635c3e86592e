// SPDX-License-Identifier: BSD-3-Clause
// The block directory: key and path of every block below a group.
#include "kob_dp.h"
#include "kob_entry.hpp"
#include "kob_kinds.hpp"
#include "kob_listing.hpp"
#include "kob_location.hpp"
#include "kob_plain_walk.hpp"
#include "kob_storage.hpp"
#include "kob_walk.hpp"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

namespace kob {
namespace {

constexpr std::int32_t default_capacity = 10000;
constexpr std::int64_t default_path_size = 2560000;
constexpr std::int32_t stopped = 1; // a walk ended for want of room

/// The caller's three arrays. They come from and go back to the caller, who frees them: plain heap, not ours.
class Directory {
public:
    Directory(std::int32_t& capacity, std::int64_t& path_size, std::int32_t*& keys, std::int64_t*& offsets,
              char*& paths)
        : capacity_{capacity}, path_size_{path_size}, keys_{keys}, offsets_{offsets}, paths_{paths}
    {
    }

    void clear()
    {
        capacity_ = 0;
        path_size_ = 0;
        keys_ = nullptr;
        offsets_ = nullptr;
        paths_ = nullptr;
    }

    /// Takes the caller's arrays, or allocates the defaults. False when one is missing.
    bool prepare()
    {
        if (capacity_ < 1) {
            capacity_ = default_capacity;
            keys_ = static_cast<std::int32_t*>(std::malloc(keys_bytes()));
            offsets_ = static_cast<std::int64_t*>(std::malloc(offsets_bytes()));
        }
        if (path_size_ < 1) {
            path_size_ = default_path_size;
            paths_ = static_cast<char*>(std::malloc(static_cast<std::size_t>(path_size_)));
        }
        if (keys_ == nullptr || offsets_ == nullptr || paths_ == nullptr) {
            return false;
        }
        *paths_ = '\0';
        *offsets_ = 0;
        return true;
    }

    /// Adds an entry behind `count` others that take `length` bytes. False when there is no room to be had.
    bool add(std::int32_t count, std::int64_t length, std::int32_t key, std::string_view path)
    {
        const std::int64_t end = length + static_cast<std::int64_t>(path.size()) + 1;
        if (end > path_size_ && !reallocate(paths_, path_size_, 2 * end, static_cast<std::size_t>(2 * end))) {
            return false;
        }
        if (count >= capacity_ && !double_capacity()) {
            return false;
        }
        std::memcpy(paths_ + length, path.data(), path.size());
        paths_[end - 1] = '\0';
        keys_[count] = key;
        offsets_[count + 1] = end;
        return true;
    }

    void list(const char* caller, std::int32_t count, std::int64_t length) const
    {
        say_listing(caller, count, length, keys_, offsets_, paths_);
    }

private:
    [[nodiscard]] std::size_t keys_bytes() const { return static_cast<std::size_t>(capacity_) * sizeof *keys_; }
    [[nodiscard]] std::size_t offsets_bytes() const
    {
        return (static_cast<std::size_t>(capacity_) + 1) * sizeof *offsets_;
    }

    template <class Array, class Size> static bool reallocate(Array*& array, Size& size, Size larger, std::size_t bytes)
    {
        auto* moved = static_cast<Array*>(std::realloc(array, bytes));
        if (moved == nullptr) {
            return false;
        }
        array = moved;
        size = larger;
        return true;
    }

    bool double_capacity()
    {
        if (capacity_ > std::numeric_limits<std::int32_t>::max() / 2) {
            return false;
        }
        const std::int32_t larger = 2 * capacity_;
        std::int32_t unchanged = capacity_;
        return reallocate(keys_, unchanged, larger, static_cast<std::size_t>(larger) * sizeof *keys_) &&
               reallocate(offsets_, capacity_, larger, (static_cast<std::size_t>(larger) + 1) * sizeof *offsets_);
    }

    std::int32_t& capacity_;
    std::int64_t& path_size_;
    std::int32_t*& keys_;
    std::int64_t*& offsets_;
    char*& paths_;
};

/// The key of a candidate; false for a block group that has none where this generation keeps it.
bool read_key(const Candidate& candidate, Generation generation, std::int32_t& key)
{
    if (std::strcmp(candidate.link, header_group_name) == 0) {
        key = kind::file_header;
        return true;
    }
    const Id block{H5Gopen2(candidate.parent, candidate.link, H5P_DEFAULT), H5Gclose};
    Places places{{block.get(), generation}};
    const hid_t header = block ? places.open(Where::header) : H5I_INVALID_HID;
    const hsize_t one = 1;
    return header >= 0 &&
           KOB_H5Aread("block", &key, type_code::integer, sizeof key, &one, 0, header, nullptr, Report::silent) == 0;
}

/// Records the blocks by the short way. False if the file does not go along, or there is no room.
template <class Record> bool list_plain(Location group, const Record& record)
{
    return group.is_current() && plain::walk(group.group, [&](plain::File& file, const plain::Found& found) {
               if (found.kind != plain::Found::Kind::group) {
                   plain::expect(record(plain::key_of(file, found), found.path) == 0);
               }
           });
}

/// The arguments that receive a listing.
struct Listing {
    std::int32_t* capacity;
    std::int64_t* path_size;
    std::int32_t* count;
    std::int64_t* path_length;
    std::int32_t** keys;
    std::int64_t** offsets;
    char** paths;

    [[nodiscard]] bool is_complete() const
    {
        return capacity != nullptr && path_size != nullptr && count != nullptr && path_length != nullptr &&
               keys != nullptr && offsets != nullptr && paths != nullptr;
    }
};

std::int32_t look_up(Location group, bool stores, bool verbose, const Listing& out, const char* caller)
{
    if (!out.is_complete()) {
        throw NullArgument{};
    }
    *out.count = 0;
    *out.path_length = 0;
    Directory directory{*out.capacity, *out.path_size, *out.keys, *out.offsets, *out.paths};
    if (!stores) {
        directory.clear();
    } else if (!directory.prepare()) {
        return -1;
    }
    const auto record = [&](std::int32_t key, std::string_view path) {
        if (stores && !directory.add(*out.count, *out.path_length, key, path)) {
            return stopped;
        }
        ++*out.count;
        *out.path_length += static_cast<std::int64_t>(path.size()) + 1;
        return 0;
    };
    std::int32_t result = 0;
    if (!list_plain(group, record)) {
        *out.count = 0;
        *out.path_length = 0;
        result = walk(group.group, [&](const Candidate& candidate) {
            std::int32_t key = 0;
            return read_key(candidate, group.generation, key) ? record(key, candidate.path) : 0;
        });
    }
    if (stores && verbose) {
        directory.list(caller, *out.count, *out.path_length);
    }
    return result;
}

} // namespace
} // namespace kob

extern "C" {

void kob_lookup(const int64_t* group, const int32_t* store, const int32_t* verbose, int32_t* capacity,
                int64_t* path_size, int32_t* count, int64_t* path_length, int32_t** keys, int64_t** offsets,
                char** paths, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        return look_up(value(group), value(store) >= 1, value(verbose) != 0,
                       {capacity, path_size, count, path_length, keys, offsets, paths}, "KOB_LOOKUP");
    });
}

void kob1_lookup(const int64_t* group, const int32_t* store, const int32_t* verbose, int32_t* capacity,
                 int64_t* path_size, int32_t* count, int64_t* path_length, int32_t** keys, int64_t** offsets,
                 char** paths, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        return look_up(older(group), value(store) >= 1, value(verbose) != 0,
                       {capacity, path_size, count, path_length, keys, offsets, paths}, "KOB1_LOOKUP");
    });
}

} // extern "C"
