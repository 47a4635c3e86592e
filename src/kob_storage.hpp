// SPDX-License-Identifier: BSD-3-Clause
// Typed attributes and datasets: the only place that knows datatypes, dataspaces, layouts and filters.
//
// Every helper returns 0 or the negative code of kob_storage_codes.hpp, after one line on standard error.
#pragma once

#include "kob_id.hpp"

#include <hdf5.h>

#include <cstddef>
#include <cstdint>
#include <utility>

namespace kob {

class GroupLinks;

namespace plain {
class Block;
}

/// Type codes of the library's elements.
namespace type_code {
constexpr std::int32_t text = 1;    // fixed length, blank padded
constexpr std::int32_t integer = 2; // signed, 4 or 8 bytes
constexpr std::int32_t real = 3;    // 4 or 8 bytes
} // namespace type_code

/// How a dataset is accessed.
namespace access_mode {
constexpr std::int32_t whole = 0;
constexpr std::int32_t block = 1;  // one block of a hyperslab: count and start, rank entries each
constexpr std::int32_t points = 2; // list of points: count[0] points, start holds their coordinates
} // namespace access_mode

/// Bits of the filter flags word.
namespace filter_flag {
constexpr std::int32_t deflate_integer = 1;
constexpr std::int32_t deflate_real = 2;
constexpr std::int32_t deflate_text = 4;
constexpr std::int32_t shuffle_integer = 8;
constexpr std::int32_t shuffle_real = 16;
constexpr std::int32_t shuffle_text = 32;
constexpr std::int32_t scale_offset_integer = 64;
constexpr std::int32_t scale_offset_real = 128;
} // namespace filter_flag

/// Marks a growable dimension among the extents of a dataset.
constexpr hsize_t growable = H5S_UNLIMITED;

/// What a writer knows about the place it writes to.
enum class Place {
    unknown, ///< an object of that name may exist: look, and reuse it
    fresh,   ///< the group was created by this call: nothing can be there
};

/// What positions in a growable dimension count from.
enum class Origin {
    end,   ///< the current end: start 0 appends
    first, ///< the first row: positions are absolute
};

/// HDF5 objects that the items of one block have in common: each is made when first asked for, and kept until the
/// owner goes. Those who ask don't own what they get.
class SharedIds {
public:
    hid_t scalar();                    ///< the dataspace of one element
    hid_t compact();                   ///< creation properties of small datasets, or negative
    hid_t text_type(std::size_t size); ///< blank-padded text, or negative

    /// Keeps a dataspace, the last one given, open: HDF5 takes longer to open the first than one more.
    void keep(Id space) { kept_ = std::move(space); }

private:
    Id kept_;
    Id scalar_;
    Id compact_;
    Id text_type_;
    std::size_t text_size_ = 0;
};

/// What a dataset write may be told, and may tell, beyond its arguments.
struct WriteOptions {
    Place place = Place::unknown;
    Origin origin = Origin::end;
    hsize_t* leading_extent = nullptr; ///< receives the leading extent after the write
    SharedIds* shared = nullptr;       ///< of a caller who writes many items
    const GroupLinks* links = nullptr; ///< of the group, if they were looked for: the dataset's among them
};

/// Does a failed read print its line?
enum class Report { loud, silent };

/// Predefined native type and class of a type code and element size; the type is not owned by the caller.
std::int32_t KOB_H5gettype(std::int32_t kob_type, std::size_t size, H5T_class_t& type_class, hid_t& type);

/// Writes the fill value of filtered datasets, 10000, in the requested numeric form.
std::int32_t KOB_H5getfillvalue(std::int32_t kob_type, std::size_t size, void* value);

/// Writes an attribute; an existing one of the same class and shape is overwritten in place.
std::int32_t KOB_H5Awrite(const char* name, const void* data, std::int32_t kob_type, std::size_t data_size,
                          std::size_t kob_size, const hsize_t* dims, std::int32_t rank, hid_t location,
                          Place place = Place::unknown, SharedIds* shared = nullptr);

/// Writes a dataset, or a block or points of it; an existing one is reused, a growable one is extended.
/// In a growable dimension start and coordinates count from the current end and may be negative, unless the options
/// say otherwise.
std::int32_t KOB_H5Dwrite(const char* name, const void* data, std::int32_t kob_type, std::size_t data_size,
                          std::size_t kob_size, const hsize_t* dims, std::int32_t rank, const std::int64_t* count,
                          const std::int64_t* start, std::int32_t mode, hid_t location, std::int32_t filter_flags,
                          const std::int32_t* filter_params, WriteOptions options = {});

/// Reads an attribute of the expected shape; rank 0 expects one element. `stored_size` may be null.
/// `plain` is the short way to the same location, if there is one.
std::int32_t KOB_H5Aread(const char* name, void* data, std::int32_t kob_type, std::size_t data_size,
                         const hsize_t* dims, std::int32_t rank, hid_t location, std::uint64_t* stored_size,
                         Report report = Report::loud, const plain::Block* plain = nullptr);

/// Opens the attribute of an integer to write over it. It is refused as by a read.
std::int32_t KOB_H5Aopen(const char* name, hid_t location, Report report, Id& attribute);

/// Writes over the integer of an attribute that is open, and closes it.
std::int32_t KOB_H5Arewrite(const char* name, std::int32_t number, Id attribute);

/// Reads a dataset of the expected shape, or a block or points of it. The last three outputs may be null;
/// asking for no filter report saves HDF5 the look at the creation properties.
std::int32_t KOB_H5Dread(const char* name, void* data, std::int32_t kob_type, std::size_t data_size,
                         const hsize_t* dims, std::int32_t rank, const std::int64_t* count, const std::int64_t* start,
                         std::int32_t mode, hid_t location, std::int32_t* filter_flags, std::int32_t* filter_params,
                         std::uint64_t* stored_size, Report report = Report::loud, plain::Block* plain = nullptr);

/// Is there a link of this name in the group? A failed look counts as no.
bool has_link(hid_t location, const char* name) noexcept;

/// Elements of a stored dataset, or -1 when there is none of that name.
std::int64_t count_elements(hid_t location, const char* name) noexcept;

/// Leading extent of a stored dataset, or -1 when there is none of that name.
std::int64_t count_rows(hid_t location, const char* name) noexcept;

/// Cuts a growing dataset back to its first rows; a shorter one, one of more rows than states can be counted, or one
/// that is not there stays as it is.
void cut_rows(hid_t location, const char* name, std::int64_t rows) noexcept;

/// Bytes of one element of a stored dataset, or -1 when there is none of that name.
std::int64_t element_size(hid_t location, const char* name) noexcept;

/// Is there an attribute of this name?
bool has_attribute(hid_t location, const char* name) noexcept;

/// Makes `name` in `to` a second name of the object `name` in `from`. Negative on failure.
herr_t share_link(hid_t from, hid_t to, const char* name) noexcept;

} // namespace kob
