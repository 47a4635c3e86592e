// SPDX-License-Identifier: BSD-3-Clause
// Typed attributes.
#include "kob_message.hpp"
#include "kob_plain_block.hpp"
#include "kob_storage_codes.hpp"
#include "kob_storage_types.hpp"

#include <algorithm>
#include <optional>
#include <utility>

namespace kob {
namespace {

/// Nearly every attribute is one element. Its storage tells that sooner than its dataspace.
bool is_single(hid_t attribute, std::size_t size) noexcept { return H5Aget_storage_size(attribute) == size; }

/// What of a stored shape is not as expected.
struct OtherShape {
    bool is_rank;          ///< else an extent
    std::int32_t quantity; ///< the rank that was found, or the dimension
};

/// Compares an attribute of elements of `size` bytes with the shape that a caller expects.
std::optional<OtherShape> other_shape(hid_t attribute, std::size_t size, const hsize_t* dims,
                                      std::int32_t rank) noexcept
{
    if (rank <= 0 && is_single(attribute, size)) {
        return {};
    }
    const Id space{H5Aget_space(attribute), H5Sclose};
    const StoredShape shape = stored_shape(space.get());
    if (rank > 0 ? shape.rank != rank : shape.elements != 1) {
        return OtherShape{true, shape.rank};
    }
    const std::int32_t differing = rank > 0 ? first_difference(shape, dims) : -1;
    return differing >= 0 ? std::optional{OtherShape{false, differing}} : std::nullopt;
}

} // namespace

std::int32_t KOB_H5Awrite(const char* name, const void* data, std::int32_t kob_type, std::size_t data_size,
                          std::size_t kob_size, const hsize_t* dims, std::int32_t rank, hid_t location, Place place,
                          SharedIds* shared)
{
    using namespace attribute_write;
    const auto refuse = [&](Condition condition, std::int32_t quantity = -1) {
        report_error(message::attribute_write, condition.number, name, kob_type, data_size, kob_size, quantity);
        return condition.code;
    };

    if (is_empty(dims, rank)) {
        return 0;
    }
    H5T_class_t type_class{};
    hid_t memory = H5I_INVALID_HID;
    hid_t native = H5I_INVALID_HID;
    if (KOB_H5gettype(kob_type, data_size, type_class, memory) != 0) {
        return refuse(memory_type);
    }
    if (kob_size == data_size) {
        native = memory;
    } else if (KOB_H5gettype(kob_type, kob_size, type_class, native) != 0) {
        return refuse(file_type);
    }
    if (kob_type != type_code::real && data_size > kob_size) {
        return refuse(narrower_file, printable(data_size));
    }

    SharedIds own;
    SharedIds& ids = shared != nullptr ? *shared : own;
    Id attribute;
    FileType stored;
    std::vector<char> texts;
    const void* source = data;
    if (place == Place::unknown && has_attribute(location, name)) {
        attribute = Id{H5Aopen(location, name, H5P_DEFAULT), H5Aclose};
        stored.owned = Id{H5Aget_type(attribute.get()), H5Tclose};
        stored.type = stored.owned.get();
        const bool is_stored_as_given = is_stored_as(stored.type, memory, kob_type);
        if (const H5T_class_t found = is_stored_as_given ? type_class : stored_class(stored.type);
            found != type_class) {
            return refuse(other_class, found);
        }
        const std::size_t size = is_stored_as_given ? data_size : H5Tget_size(stored.type);
        if (const auto other = other_shape(attribute.get(), size, dims, rank)) {
            return refuse(other->is_rank ? other_rank : other_extent, other->quantity);
        }
        if (kob_type == type_code::text && size != kob_size) {
            const hsize_t elements = rank > 0 ? product({dims, static_cast<std::size_t>(rank)}) : 1;
            texts = repacked_texts(data, elements, kob_size, size);
            source = texts.data();
        }
    } else {
        Id array;
        if (rank > 0 && rank <= H5S_MAX_RANK && is_addressable({dims, static_cast<std::size_t>(rank)}, kob_size)) {
            array = Id{H5Screate_simple(rank, dims, nullptr), H5Sclose};
        }
        const hid_t space = rank > 0 ? array.get() : ids.scalar();
        if (space < 0) {
            return refuse(dataspace, printable(static_cast<std::uint64_t>(rank)));
        }
        stored = stored_type_for(kob_type, native, kob_size, ids);
        attribute = Id{H5Acreate2(location, name, stored.type, space, H5P_DEFAULT, H5P_DEFAULT), H5Aclose};
        if (!attribute) {
            return refuse(create);
        }
    }

    // A text is handed over as it is stored; numbers are converted from the caller's size.
    const hid_t transferred = kob_type == type_code::text ? stored.type : memory;
    if (const herr_t result = H5Awrite(attribute.get(), transferred, source); result < 0) {
        return refuse(write, result);
    }
    if (const herr_t result = attribute.close(); result < 0) {
        return refuse(write, result);
    }
    return 0;
}

std::int32_t KOB_H5Aread(const char* name, void* data, std::int32_t kob_type, std::size_t data_size,
                         const hsize_t* dims, std::int32_t rank, hid_t location, std::uint64_t* stored_size,
                         Report report, const plain::Block* plain, Id* kept)
{
    using namespace attribute_read;
    const auto refuse = [&](Condition condition, std::int32_t quantity = -1) {
        if (report == Report::loud) {
            report_error(message::attribute_read, condition.number, name, kob_type, data_size, quantity);
        }
        return condition.code;
    };

    if (is_empty(dims, rank)) {
        return 0;
    }
    if (plain != nullptr && stored_size == nullptr &&
        plain->read_attribute({name, kob_type, data_size, dims, rank, data})) {
        return 0;
    }
    H5T_class_t type_class{};
    hid_t memory = H5I_INVALID_HID;
    if (KOB_H5gettype(kob_type, data_size, type_class, memory) != 0) {
        return refuse(memory_type);
    }
    Id attribute{H5Aopen(location, name, H5P_DEFAULT), H5Aclose};
    if (!attribute) {
        return refuse(missing);
    }
    const Id stored{H5Aget_type(attribute.get()), H5Tclose};
    const bool is_stored_as_asked = is_stored_as(stored.get(), memory, kob_type);
    if (const H5T_class_t found = is_stored_as_asked ? type_class : stored_class(stored.get()); found != type_class) {
        return refuse(other_class, found);
    }
    const std::size_t size = is_stored_as_asked ? data_size : H5Tget_size(stored.get());
    if (stored_size != nullptr) {
        *stored_size = size;
    }
    if (kob_type != type_code::real && size > data_size) {
        return refuse(kob_type == type_code::text ? wider_text : wider_integer, printable(size));
    }
    if (const auto other = other_shape(attribute.get(), size, dims, rank)) {
        return refuse(other->is_rank ? other_rank : other_extent, other->quantity);
    }
    if (kept != nullptr) {
        *kept = std::move(attribute);
        return 0;
    }
    const hid_t transferred = kob_type == type_code::text ? stored.get() : memory;
    if (const herr_t result = H5Aread(attribute.get(), transferred, data); result < 0) {
        return refuse(read, result);
    }
    if (kob_type == type_code::text && rank == 0) {
        std::fill_n(static_cast<char*>(data) + size, data_size - size, ' ');
    }
    return 0;
}

std::int32_t KOB_H5Arewrite(const char* name, std::int32_t number, Id attribute)
{
    using namespace attribute_write;
    H5T_class_t type_class{};
    hid_t memory = H5I_INVALID_HID;
    KOB_H5gettype(type_code::integer, sizeof number, type_class, memory);
    herr_t result = H5Awrite(attribute.get(), memory, &number);
    if (result >= 0) {
        result = attribute.close();
    }
    if (result < 0) {
        report_error(message::attribute_write, write.number, name, type_code::integer, sizeof number, sizeof number,
                     result);
        return write.code;
    }
    return 0;
}

} // namespace kob
