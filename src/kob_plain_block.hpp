// SPDX-License-Identifier: BSD-3-Clause
// One group of a plain file with its attributes and datasets: the short way behind the storage helpers.
#pragma once

#include "kob_plain_object.hpp"

#include <memory>

namespace kob::plain {

/// What a storage helper is asked for: values of a type and a shape, whole.
struct Request {
    const char* name;
    std::int32_t kob_type;
    std::size_t size; ///< bytes of an element in memory
    const hsize_t* dims;
    std::int32_t rank; ///< 0 asks for one element
    void* data;
};

/// A block's group. Whatever it cannot tell for sure it leaves to HDF5.
class Block {
public:
    /// The group behind an identifier, or nothing.
    static std::unique_ptr<Block> of(hid_t group);

    Block(File& file, Address address);

    /// Each gives the values of an item that is stored exactly as asked for. False says nothing about the item.
    bool read_attribute(const Request& request) const;
    bool read_dataset(const Request& request);

    [[nodiscard]] bool has_attribute(std::string_view name) const { return find(name) != nullptr; }
    /// Nothing when there is no telling.
    std::optional<bool> has_link(std::string_view name);

private:
    [[nodiscard]] const Attribute* find(std::string_view name) const;
    const std::vector<Link>* links();

    std::optional<File> own_; ///< the file, of a block that stands alone
    File* file_ = nullptr;
    Bytes table_;
    std::vector<Attribute> attributes_;
    std::vector<Link> links_;
    enum class Links { unread, read, surprising } state_ = Links::unread;
};

} // namespace kob::plain
