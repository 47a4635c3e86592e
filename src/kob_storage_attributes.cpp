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

/// The arguments of one attribute read, but for the value.
struct AttributeCall {
    const char* name;
    std::int32_t kob_type;
    std::size_t data_size;
    const hsize_t* dims;
    std::int32_t rank;
    Report report;

    std::int32_t refuse(Condition condition, std::int32_t quantity = -1) const
    {
        if (report == Report::loud) {
            report_error(message::attribute_read, condition.number, name, kob_type, data_size, quantity);
        }
        return condition.code;
    }
};

struct OpenedAttribute {
    Id attribute;
    Id stored; ///< its type
    hid_t memory = H5I_INVALID_HID;
    std::size_t size = 0; ///< of a stored element, once its class is known to be right
};

/// Opens an attribute and compares it with what the caller expects.
std::int32_t open_attribute(const AttributeCall& call, hid_t location, OpenedAttribute& opened)
{
    using namespace attribute_read;
    H5T_class_t type_class{};
    if (KOB_H5gettype(call.kob_type, call.data_size, type_class, opened.memory) != 0) {
        return call.refuse(memory_type);
    }
    opened.attribute = Id{H5Aopen(location, call.name, H5P_DEFAULT), H5Aclose};
    if (!opened.attribute) {
        return call.refuse(missing);
    }
    opened.stored = Id{H5Aget_type(opened.attribute.get()), H5Tclose};
    const bool is_stored_as_asked = is_stored_as(opened.stored.get(), opened.memory, call.kob_type);
    if (const H5T_class_t found = is_stored_as_asked ? type_class : stored_class(opened.stored.get());
        found != type_class) {
        return call.refuse(other_class, found);
    }
    opened.size = is_stored_as_asked ? call.data_size : H5Tget_size(opened.stored.get());
    if (call.kob_type != type_code::real && opened.size > call.data_size) {
        return call.refuse(call.kob_type == type_code::text ? wider_text : wider_integer, printable(opened.size));
    }
    if (const auto other = other_shape(opened.attribute.get(), opened.size, call.dims, call.rank)) {
        return call.refuse(other->is_rank ? other_rank : other_extent, other->quantity);
    }
    return 0;
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
                         Report report, const plain::Block* plain)
{
    if (is_empty(dims, rank)) {
        return 0;
    }
    if (plain != nullptr && stored_size == nullptr &&
        plain->read_attribute({name, kob_type, data_size, dims, rank, data})) {
        return 0;
    }
    const AttributeCall call{name, kob_type, data_size, dims, rank, report};
    OpenedAttribute opened;
    const std::int32_t status = open_attribute(call, location, opened);
    if (stored_size != nullptr && opened.size > 0) {
        *stored_size = opened.size;
    }
    if (status != 0) {
        return status;
    }
    const hid_t transferred = kob_type == type_code::text ? opened.stored.get() : opened.memory;
    if (const herr_t result = H5Aread(opened.attribute.get(), transferred, data); result < 0) {
        return call.refuse(attribute_read::read, result);
    }
    if (kob_type == type_code::text && rank == 0) {
        std::fill_n(static_cast<char*>(data) + opened.size, data_size - opened.size, ' ');
    }
    return 0;
}

std::int32_t KOB_H5Aopen(const char* name, hid_t location, Report report, Id& attribute)
{
    OpenedAttribute opened;
    const std::int32_t status =
        open_attribute({name, type_code::integer, sizeof(std::int32_t), nullptr, 0, report}, location, opened);
    if (status == 0) {
        attribute = std::move(opened.attribute);
    }
    return status;
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
