// SPDX-License-Identifier: BSD-3-Clause
// An open result file: its blocks, its header, and what HDF5 says about it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kob::program {

/// One block of the file's listing.
struct Entry {
    std::int32_t number; ///< place in the listing of the whole file, from 0
    std::int32_t key;    ///< block key; 1 is the file header
    std::string path;    ///< from the group that holds the blocks, for example constant/system/kobblock
    bool older = false;  ///< the block is in the older layout
};

/// The path without its last level "kobblock", as people name a block.
std::string_view short_path(const Entry& entry);
/// The numbers of the block's state groups, in the order of its index values (innermost group first).
std::vector<std::int64_t> state_numbers(const Entry& entry);

/// Blocks by their layout.
struct BlockCounts {
    std::size_t current = 0;
    std::size_t older = 0;
};

/// What the file header says.
struct Header {
    std::int32_t status = -1; ///< of its reader: 0 good, 1 to 8 wrong signature, 100 and more an unknown version
    std::string version;      ///< for example "2 2 16"
    bool older_layout() const { return version.starts_with("1 "); }
};

/// What the library reports about an opened file when it is asked to be verbose.
struct OpenReport {
    std::string library;     ///< version of the running HDF5 library
    std::string lower_bound; ///< oldest and newest HDF5 format that objects added through
    std::string upper_bound; ///< this opening could use
};

/// A file opened for reading; closed at the end of its scope.
class File {
public:
    /// Opens the group behind "post" or, in a file without that link, the root group.
    explicit File(const std::string& path);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    const std::string& path() const { return path_; }
    std::int64_t group() const { return group_; }
    const std::vector<Entry>& entries() const { return entries_; }
    const OpenReport& report() const { return report_; }
    /// Size on disk of the file that was opened; -1 when it cannot be told.
    std::int64_t stored_bytes() const;
    /// The file on disk: the path without a group inside the file.
    std::string disk_path() const;
    /// Whether the header is there, and what it says.
    const Header* header() const { return has_header_ ? &header_ : nullptr; }
    bool older_layout() const { return has_header_ && header_.older_layout(); }
    /// How many blocks each layout has in the file, the header not counted.
    BlockCounts block_counts() const;

private:
    void open();
    void list_entries();
    void read_header();
    bool may_hold_older_blocks() const { return !has_header_ || header_.status != 0 || header_.older_layout(); }

    std::string path_;
    std::int64_t group_ = 0;
    std::vector<Entry> entries_;
    OpenReport report_;
    Header header_;
    bool has_header_ = false;
};

/// A group opened by its path below another one; closed at the end of its scope.
class Group {
public:
    Group(std::int64_t parent, const std::string& path);
    ~Group();
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;
    const std::int64_t* handle() const { return &handle_; }
    std::int64_t* handle() { return &handle_; }

private:
    std::int64_t handle_ = -1;
};

/// Turns a stream of this process (1 output, 2 errors) away until the end of the scope, and keeps what was written.
class Diverted {
public:
    explicit Diverted(int descriptor);
    ~Diverted();
    Diverted(const Diverted&) = delete;
    Diverted& operator=(const Diverted&) = delete;
    bool active() const { return saved_ >= 0; }
    /// Ends the diversion and returns what was written.
    std::string text();

private:
    void restore();
    int descriptor_;
    int saved_ = -1;
    int capture_ = -1;
};

} // namespace kob::program
