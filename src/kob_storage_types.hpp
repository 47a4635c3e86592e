// SPDX-License-Identifier: BSD-3-Clause
// Element types and stored shapes, shared by the attribute and the dataset helpers.
#pragma once

#include "kob_id.hpp"
#include "kob_storage.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace kob {

/// A type in the file. `owned` stays empty where somebody else keeps it.
struct FileType {
    Id owned;
    hid_t type = H5I_INVALID_HID;
};

/// The type that new objects get: little-endian numbers, blank-padded texts of `size`.
FileType stored_type_for(std::int32_t kob_type, hid_t native, std::size_t size, SharedIds& shared);

/// Class of a stored type as the type codes see it: a variable-length text is no text, and a number whose parts lie
/// outside of its element, in a damaged file, is of no class.
H5T_class_t stored_class(hid_t type) noexcept;

/// Is a number stored as the caller's memory has it? Then nothing else needs to be asked of the stored type. A text is
/// never found to be, for its length belongs to its type.
bool is_stored_as(hid_t stored, hid_t memory, std::int32_t kob_type) noexcept;

/// Does a dataset lie in the file in one piece?
bool is_contiguous(hid_t dataset) noexcept;

/// Extents of what is stored.
struct StoredShape {
    std::int32_t rank = -1;
    std::array<hsize_t, H5S_MAX_RANK> extents; ///< [rank], what lies behind is not set
    std::array<hsize_t, H5S_MAX_RANK> maximum; ///< [rank]
    hssize_t elements = -1;
};
StoredShape stored_shape(hid_t space) noexcept;
void read_shape(hid_t space, StoredShape& shape) noexcept;

/// Index of the first extent that differs, or -1. Ranks are equal.
std::int32_t first_difference(const StoredShape& stored, const hsize_t* dims) noexcept;

/// Product of extents; `no_count` when 64 bits cannot hold it.
constexpr hsize_t no_count = std::numeric_limits<hsize_t>::max();
hsize_t product(std::span<const hsize_t> extents) noexcept;

/// Can so many elements of `size` bytes be addressed? HDF5 multiplies extents without a look at overflow.
bool is_addressable(std::span<const hsize_t> extents, std::size_t size) noexcept;

/// Is an extent zero, so that there is nothing to transfer?
bool is_empty(const hsize_t* dims, std::int32_t rank) noexcept;

/// The last value of an error line: an int, whatever the quantity is.
std::int32_t printable(std::uint64_t quantity) noexcept;

/// `elements` texts of `from` bytes each, laid out anew in fields of `to` bytes, blank padded.
std::vector<char> repacked_texts(const void* data, std::size_t elements, std::size_t from, std::size_t to);

} // namespace kob
