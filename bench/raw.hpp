// SPDX-License-Identifier: BSD-3-Clause
// What the plain HDF5 side of all kinds of work shares.
#pragma once

#include "must.hpp"
#include "program.hpp"
#include "results.hpp"

#include <hdf5.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// The type of a name.
hid_t text_type();

hid_t create_group(hid_t parent, const char* name, hid_t properties = H5P_DEFAULT);

/// Creation properties of a dataset of so many bytes: small ones lie in the object header.
hid_t layout_for(hsize_t bytes);

/// Creation properties of a table that is one chunk if it is packed; its values are real or integers.
hid_t layout_for(hsize_t bytes, std::initializer_list<hsize_t> extents, const Packing& packing, hid_t type);

/// Sets the filters of a chunked dataset.
void pack(hid_t properties, const Packing& packing, hid_t type);

void read_attribute(hid_t group, const char* name, hid_t type, void* value);
void read_dataset(hid_t group, const char* name, hid_t memory, void* values);

/// A new file with its result set.
class NewFile {
public:
    explicit NewFile(const std::string& name);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    [[nodiscard]] hid_t run() const { return run_; }

private:
    hid_t file_;
    hid_t run_;
};

/// The result set of a file that is there.
class OldFile {
public:
    explicit OldFile(const std::string& name);
    ~OldFile();
    OldFile(const OldFile&) = delete;
    OldFile& operator=(const OldFile&) = delete;

    [[nodiscard]] hid_t post() const { return post_; }

private:
    hid_t file_;
    hid_t post_;
};

/// Groups one in the other, all open until the end.
class GroupChain {
public:
    GroupChain(hid_t parent, std::initializer_list<const char*> names);
    ~GroupChain();
    GroupChain(const GroupChain&) = delete;
    GroupChain& operator=(const GroupChain&) = delete;

    [[nodiscard]] hid_t last() const { return groups_.back(); }

private:
    std::vector<hid_t> groups_;
};

/// Writes the attributes and datasets of blocks; holds what they share.
class BlockWriter {
public:
    explicit BlockWriter(std::string_view block_type);
    ~BlockWriter();
    BlockWriter(const BlockWriter&) = delete;
    BlockWriter& operator=(const BlockWriter&) = delete;

    /// The attributes that lead every block.
    void frame(hid_t group, std::int32_t key) const;
    void text(hid_t group, const char* name, const Text256& value) const;
    void integer(hid_t group, const char* name, const std::int32_t& value) const;
    void attribute(hid_t group, const char* name, hid_t type, const void* value) const;

    /// A dataset of a space and layout that the caller keeps.
    static void dataset(hid_t group, const char* name, hid_t stored, hid_t space, hid_t layout, hid_t memory,
                        const void* values);
    /// A dataset that is the only one of its kind; stored as in memory.
    static void dataset(hid_t group, const char* name, hid_t type, std::initializer_list<hsize_t> extents,
                        const void* values, const Packing& packing = {});
    /// A single integer.
    void single(hid_t group, const char* name, const std::int32_t& value) const;

private:
    hid_t text_;
    hid_t scalar_;
    hid_t small_;
    Text256 block_type_{}; ///< padded with NUL
};

} // namespace bench
