// SPDX-License-Identifier: BSD-3-Clause
// Type codes and their HDF5 types, the fill value, and small questions about stored objects.
#include "kob_storage_types.hpp"

#include "kob_chunk_transfer.hpp"
#include "kob_message.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace kob {
namespace {

enum LookupFailure : std::int32_t { bad_integer_size = 1, bad_real_size = 2, unknown_code = 3 };

constexpr int fill_number = 10000;

// The failure of a lookup, or 0. Text sizes come from callers' int32 arguments: a negative one arrives as a huge size.
std::int32_t lookup_failure(std::int32_t kob_type, std::size_t size)
{
    const bool is_number_size = size == 4 || size == 8;
    switch (kob_type) {
    case type_code::text:
        return static_cast<std::ptrdiff_t>(size) < 1 ? unknown_code : 0;
    case type_code::integer:
        return is_number_size ? 0 : bad_integer_size;
    case type_code::real:
        return is_number_size ? 0 : bad_real_size;
    default:
        return unknown_code;
    }
}

/// A predefined type. HDF5's names for these open the library at each use, which takes longer than the rest of a
/// lookup; it is open if the type is there.
template <class Name> hid_t predefined(hid_t type, Name&& name) { return type >= 0 ? type : name(); }

template <class Number> void store_fill(void* value)
{
    const auto number = static_cast<Number>(fill_number);
    std::memcpy(value, &number, sizeof number);
}

} // namespace

std::int32_t KOB_H5gettype(std::int32_t kob_type, std::size_t size, H5T_class_t& type_class, hid_t& type)
{
    if (const std::int32_t failure = lookup_failure(kob_type, size); failure != 0) {
        report_error(message::type_lookup, failure, kob_type, size);
        return -1;
    }
    switch (kob_type) {
    case type_code::text:
        type_class = H5T_STRING;
        type = predefined(H5T_C_S1_g, [] { return H5T_C_S1; });
        break;
    case type_code::integer:
        type_class = H5T_INTEGER;
        type = size == 4 ? predefined(H5T_NATIVE_INT_g, [] { return H5T_NATIVE_INT; })
                         : predefined(H5T_NATIVE_LLONG_g, [] { return H5T_NATIVE_LLONG; });
        break;
    default:
        type_class = H5T_FLOAT;
        type = size == 4 ? predefined(H5T_NATIVE_FLOAT_g, [] { return H5T_NATIVE_FLOAT; })
                         : predefined(H5T_NATIVE_DOUBLE_g, [] { return H5T_NATIVE_DOUBLE; });
        break;
    }
    return 0;
}

std::int32_t KOB_H5getfillvalue(std::int32_t kob_type, std::size_t size, void* value)
{
    const std::int32_t failure = kob_type == type_code::text ? unknown_code : lookup_failure(kob_type, size);
    if (failure != 0) {
        report_error(message::fill_lookup, failure, kob_type, size);
        return -1;
    }
    if (kob_type == type_code::integer) {
        size == 4 ? store_fill<std::int32_t>(value) : store_fill<std::int64_t>(value);
    } else {
        size == 4 ? store_fill<float>(value) : store_fill<double>(value);
    }
    return 0;
}

hid_t SharedIds::scalar()
{
    if (!scalar_) {
        scalar_ = Id{H5Screate(H5S_SCALAR), H5Sclose};
    }
    return scalar_.get();
}

hid_t SharedIds::compact()
{
    if (!compact_) {
        compact_ = Id{H5Pcreate(H5P_DATASET_CREATE), H5Pclose};
        if (H5Pset_layout(compact_.get(), H5D_COMPACT) < 0) {
            compact_ = Id{};
        }
    }
    return compact_.get();
}

hid_t SharedIds::text_type(std::size_t size)
{
    if (!text_type_ || text_size_ != size) {
        text_size_ = size;
        text_type_ = Id{H5Tcopy(H5T_C_S1), H5Tclose};
        if (H5Tset_size(text_type_.get(), size) < 0 || H5Tset_strpad(text_type_.get(), H5T_STR_SPACEPAD) < 0) {
            text_type_ = Id{};
        }
    }
    return text_type_.get();
}

FileType stored_type_for(std::int32_t kob_type, hid_t native, std::size_t size, SharedIds& shared)
{
    FileType result;
    if (kob_type == type_code::text) {
        result.type = shared.text_type(size);
    } else if constexpr (std::endian::native == std::endian::little) {
        result.type = native;
    } else {
        result.owned = Id{H5Tcopy(native), H5Tclose};
        if (result.owned && H5Tset_order(result.owned.get(), H5T_ORDER_LE) >= 0) {
            result.type = result.owned.get();
        }
    }
    return result;
}

namespace {

/// Do the parts of a floating number lie within its element, the mantissa lowest, as in every format in use? Of others
/// HDF5 writes beyond the element's end when it converts them.
bool has_sound_parts(hid_t type, std::size_t size) noexcept
{
    std::size_t sign = 0;
    std::size_t exponent = 0;
    std::size_t exponent_size = 0;
    std::size_t mantissa = 0;
    std::size_t mantissa_size = 0;
    const int offset = H5Tget_offset(type);
    const std::size_t precision = H5Tget_precision(type);
    if (H5Tget_fields(type, &sign, &exponent, &exponent_size, &mantissa, &mantissa_size) < 0 || offset < 0) {
        return false;
    }
    // Positions count from the offset: one below it arrives as a huge number.
    const bool is_within = static_cast<std::size_t>(offset) + precision <= 8 * size && sign < precision &&
                           exponent < precision && exponent_size <= precision - exponent && mantissa < precision &&
                           mantissa + mantissa_size <= std::min(sign, exponent);
    return is_within && (H5Tget_order(type) != H5T_ORDER_VAX || size % 2 == 0); // it swaps bytes in pairs
}

/// Can HDF5 convert numbers of a type without harm? A damaged file describes any. Where an integer lies in its element
/// HDF5 checks itself when it reads the description.
bool is_sound_number(hid_t type, bool is_real) noexcept
{
    constexpr std::size_t largest_number = 64; // bytes; HDF5 converts into none that is larger
    const std::size_t size = H5Tget_size(type);
    const auto is = [&](hid_t known) { return H5Tequal(type, known) > 0; };
    return size <= largest_number &&
           (!is_real || is(H5T_NATIVE_DOUBLE_g) || is(H5T_NATIVE_FLOAT_g) || has_sound_parts(type, size));
}

} // namespace

H5T_class_t stored_class(hid_t type) noexcept
{
    const H5T_class_t found = H5Tget_class(type);
    if (found == H5T_STRING) {
        return H5Tis_variable_str(type) > 0 ? H5T_VLEN : found;
    }
    const bool is_real = found == H5T_FLOAT;
    return (is_real || found == H5T_INTEGER) && !is_sound_number(type, is_real) ? H5T_NO_CLASS : found;
}

bool is_stored_as(hid_t stored, hid_t memory, std::int32_t kob_type) noexcept
{
    return kob_type != type_code::text && H5Tequal(stored, memory) > 0;
}

void read_shape(hid_t space, StoredShape& shape) noexcept
{
    shape.rank = H5Sget_simple_extent_dims(space, shape.extents.data(), shape.maximum.data());
    // A scalar has one element, an empty dataspace none; of others the extents tell.
    shape.elements = shape.rank > 0
                         ? static_cast<hssize_t>(product({shape.extents.data(), static_cast<std::size_t>(shape.rank)}))
                         : H5Sget_simple_extent_npoints(space);
}

StoredShape stored_shape(hid_t space) noexcept
{
    StoredShape shape;
    read_shape(space, shape);
    return shape;
}

std::int32_t first_difference(const StoredShape& stored, const hsize_t* dims) noexcept
{
    for (std::int32_t i = 0; i < stored.rank; ++i) {
        if (stored.extents[static_cast<std::size_t>(i)] != dims[i]) {
            return i;
        }
    }
    return -1;
}

hsize_t product(std::span<const hsize_t> extents) noexcept
{
    hsize_t result = 1;
    for (const hsize_t extent : extents) {
        if (__builtin_mul_overflow(result, extent, &result)) {
            return no_count;
        }
    }
    return result;
}

bool is_addressable(std::span<const hsize_t> extents, std::size_t size) noexcept
{
    return product(std::array{product(extents), static_cast<hsize_t>(size)}) <= INT64_MAX;
}

bool is_empty(const hsize_t* dims, std::int32_t rank) noexcept
{
    return dims != nullptr && rank > 0 && std::find(dims, dims + rank, hsize_t{0}) != dims + rank;
}

std::int32_t printable(std::uint64_t quantity) noexcept
{
    return static_cast<std::int32_t>(std::min<std::uint64_t>(quantity, INT32_MAX));
}

std::vector<char> repacked_texts(const void* data, std::size_t elements, std::size_t from, std::size_t to)
{
    std::vector<char> result(elements * to, ' ');
    const auto* source = static_cast<const char*>(data);
    for (std::size_t i = 0; i < elements; ++i) {
        std::copy_n(source + i * from, std::min(from, to), result.data() + i * to);
    }
    return result;
}

bool has_link(hid_t location, const char* name) noexcept { return H5Lexists(location, name, H5P_DEFAULT) > 0; }

std::int64_t count_elements(hid_t location, const char* name) noexcept
{
    if (!has_link(location, name)) {
        return -1;
    }
    const Id dataset{H5Dopen2(location, name, H5P_DEFAULT), H5Dclose};
    const Id space{H5Dget_space(dataset.get()), H5Sclose};
    return H5Sget_simple_extent_npoints(space.get());
}

namespace {

using Extents = std::array<hsize_t, H5S_MAX_RANK>;

/// The extents of a dataset; no dimensions when it cannot be examined.
int extents_of(hid_t dataset, Extents& extents) noexcept
{
    const Id space{H5Dget_space(dataset), H5Sclose};
    return H5Sget_simple_extent_dims(space.get(), extents.data(), nullptr);
}

} // namespace

std::int64_t count_rows(hid_t location, const char* name) noexcept
{
    if (!has_link(location, name)) {
        return -1;
    }
    const Id dataset{H5Dopen2(location, name, H5P_DEFAULT), H5Dclose};
    Extents extents{};
    return extents_of(dataset.get(), extents) > 0 ? static_cast<std::int64_t>(extents[0]) : -1;
}

void cut_rows(hid_t location, const char* name, std::int64_t rows) noexcept
{
    // States are counted in an int32. More rows come from a damage, and HDF5 would look for every chunk of them.
    if (const std::int64_t held = count_rows(location, name); held <= rows || held > INT32_MAX) {
        return;
    }
    const Id dataset{H5Dopen2(location, name, H5P_DEFAULT), H5Dclose};
    cut_chunks(dataset.get(), static_cast<hsize_t>(rows));
}

std::int64_t element_size(hid_t location, const char* name) noexcept
{
    if (!has_link(location, name)) {
        return -1;
    }
    const Id dataset{H5Dopen2(location, name, H5P_DEFAULT), H5Dclose};
    const Id type{H5Dget_type(dataset.get()), H5Tclose};
    return type ? static_cast<std::int64_t>(H5Tget_size(type.get())) : -1;
}

bool is_contiguous(hid_t dataset) noexcept
{
    const Id properties{H5Dget_create_plist(dataset), H5Pclose};
    return H5Pget_layout(properties.get()) == H5D_CONTIGUOUS;
}

bool has_attribute(hid_t location, const char* name) noexcept { return H5Aexists(location, name) > 0; }

herr_t share_link(hid_t from, hid_t to, const char* name) noexcept
{
    return H5Lcreate_hard(from, name, to, name, H5P_DEFAULT, H5P_DEFAULT);
}

} // namespace kob
