// SPDX-License-Identifier: BSD-3-Clause
// The verbs of Writer and Reader, in terms of the storage layer.
#include "kob_block.hpp"

#include "kob_group_links.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace kob {

Shape Shape::of_rank(std::int32_t rank)
{
    Shape shape({});
    shape.told_ = false;
    shape.rank_ = rank;
    return shape;
}

void Shape::append(Extent extent)
{
    if (rank_ > H5S_MAX_RANK) {
        return;
    }
    const auto i = static_cast<std::size_t>(rank_++);
    dims_[i] = extent.grows ? growable : static_cast<hsize_t>(extent.count);
    grows_[i] = extent.grows;
}

bool Shape::is_empty() const
{
    if (!told_) {
        return false;
    }
    for (std::int32_t i = 0; i < rank_; ++i) {
        if (dims_[static_cast<std::size_t>(i)] == 0) {
            return true;
        }
    }
    return false;
}

bool Shape::has_markers() const
{
    for (std::size_t i = 0; told_ && i < static_cast<std::size_t>(rank_); ++i) {
        if (!grows_[i] && dims_[i] == growable) {
            return true;
        }
    }
    return false;
}

Shape Shape::without_markers() const
{
    Shape result = *this;
    for (std::size_t i = 0; i < static_cast<std::size_t>(rank_); ++i) {
        if (!grows_[i] && dims_[i] == growable) {
            result.dims_[i] = growable - 1;
        }
    }
    return result;
}

Filters::Filters(const std::int32_t* filter_flags, const std::int32_t* filter_params)
{
    if (filter_flags != nullptr) {
        flags = *filter_flags;
    }
    if (filter_params != nullptr) {
        params = {filter_params[0], filter_params[1]};
    }
}

std::size_t stored_float(const std::int32_t* float_size)
{
    const std::int32_t size = value(float_size);
    return size > 0 ? static_cast<std::size_t>(size) : sizeof(double);
}

ValueSize value_size_of(std::int32_t argument)
{
    // 4, 8, 16 and 32 turn into 0, 1, 3 and 7; everything else is a real double.
    switch (std::rotr(static_cast<std::uint32_t>(argument) - 4U, 2)) {
    case 0:
    case 1:
        return {false, static_cast<std::size_t>(argument)};
    case 3:
    case 7:
        return {true, static_cast<std::size_t>(argument) / 4};
    default:
        return {};
    }
}

std::int32_t sum32(const std::int32_t* entries, std::int32_t count)
{
    std::uint32_t sum = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        sum += static_cast<std::uint32_t>(value(entries == nullptr ? nullptr : entries + i));
    }
    return static_cast<std::int32_t>(sum);
}

std::int32_t product32(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

namespace {

/// What is to be transferred needs an address, and a part of it the selection.
void require(const void* data, const Shape& shape, const Part& part)
{
    const bool lacks_selection = !part.is_whole() && (part.count == nullptr || part.start == nullptr);
    if (!shape.is_empty() && (data == nullptr || lacks_selection)) {
        throw NullArgument{};
    }
}

} // namespace

// ---- Writer

void Writer::attribute(const char* name, const void* data, std::int32_t type, std::size_t size)
{
    if (status_ != 0) {
        return;
    }
    if (data == nullptr) {
        throw NullArgument{};
    }
    const hsize_t one = 1;
    status_ = KOB_H5Awrite(name, data, type, size, size, &one, 0, place(Where::header), place_, &shared_);
}

void Writer::dataset(const char* name, const void* data, std::int32_t type, std::size_t data_size, std::size_t kob_size,
                     const Shape& shape, const Part& part, std::int32_t flags)
{
    if (status_ != 0) {
        return;
    }
    require(data, shape, part);
    if (!part.is_whole() && shape.has_markers()) {
        dataset(name, data, type, data_size, kob_size, shape.without_markers(), part, flags);
        return;
    }
    const hid_t group = place(where_);
    status_ = KOB_H5Dwrite(name, data, type, data_size, kob_size, shape.dims(), shape.rank(), part.count, part.start,
                           part.mode, group, flags, filters_.params.data(),
                           {.place = place_,
                            .origin = part.origin,
                            .leading_extent = &leading_extent_,
                            .shared = &shared_,
                            .links = links_ != nullptr && links_->knows(group) ? links_ : nullptr});
}

void Writer::frame(const BlockKind& kind, std::int32_t key)
{
    if (!is_current()) {
        keeps_state_index_ = kind.has_state_index;
        place(Where::data);
        if (keeps_state_index_) {
            place(Where::index); // constant blocks have an empty one
        }
    }
    std::array<char, name_length> name{};
    fill_field(name.data(), name.size(), kind.name, '\0');
    integer("block", &key);
    text("blocktype", name.data());
}

void Writer::text(const char* name, Arg<Writer, char> field, std::size_t length)
{
    attribute(name, field.get(), type_code::text, length);
}

void Writer::integer(const char* name, Arg<Writer, std::int32_t> number)
{
    attribute(name, number.get(), type_code::integer, sizeof(std::int32_t));
}

void Writer::long_integer(const char* name, Arg<Writer, std::int64_t> number)
{
    attribute(name, number.get(), type_code::integer, sizeof(std::int64_t));
}

void Writer::rewrite(const char* name, std::int32_t number, Id attribute)
{
    if (status_ == 0) {
        status_ = KOB_H5Arewrite(name, number, std::move(attribute));
    }
}

void Writer::texts(const char* name, Arg<Writer, char> fields, const Shape& shape, std::int32_t length,
                   const Part& part)
{
    const auto size = static_cast<std::size_t>(length);
    dataset(name, fields.get(), type_code::text, size, size, shape, part, filters_.flags);
}

void Writer::integers(const char* name, Arg<Writer, std::int32_t> numbers, const Shape& shape, const Part& part)
{
    dataset(name, numbers.get(), type_code::integer, sizeof(std::int32_t), sizeof(std::int32_t), shape, part,
            filters_.flags);
}

void Writer::long_integers(const char* name, Arg<Writer, std::int64_t> numbers, const Shape& shape)
{
    dataset(name, numbers.get(), type_code::integer, sizeof(std::int64_t), sizeof(std::int64_t), shape, {},
            filters_.flags);
}

void Writer::reals(const char* name, Reals<Writer> numbers, const Shape& shape, const Part& part)
{
    dataset(name, numbers.address, type_code::real, numbers.size, float_size_, shape, part, filters_.flags);
}

void Writer::exact_reals(const char* name, Reals<Writer> numbers, const Shape& shape, const Part& part)
{
    dataset(name, numbers.address, type_code::real, numbers.size, float_size_, shape, part, filters_.exact_flags());
}

void Writer::single(const char* name, Arg<Writer, std::int32_t> number)
{
    dataset(name, number.get(), type_code::integer, sizeof(std::int32_t), sizeof(std::int32_t), Shape{}, {},
            filters_.flags);
}

void Writer::fail(std::int32_t status)
{
    if (status_ == 0) {
        status_ = status;
    }
}

// ---- Reader

Reader::Reader(Location block, const BlockKind& kind) : places_{block}, kind_{kind}
{
    if (place(Where::header) < 0) {
        return;
    }
    if (is_current()) {
        plain_ = plain::Block::of(block.group);
    }
    integer("block", &key_);
    if (status_ < 0 || kind_.owns(key_)) {
        return;
    }
    status_ = -1;
    if (kind_.complex_key != 0) {
        report_error(message::wrong_key_of_two, key_, kind_.key, kind_.complex_key);
    } else if (kind_.wording == KeyWording::swapped) {
        report_error(message::wrong_key_swapped, key_, kind_.key);
    } else if (kind_.wording == KeyWording::lower_case && is_current()) {
        report_error(message::wrong_key_lower_case, key_, kind_.key);
    } else {
        report_error(message::wrong_key, key_, kind_.key);
    }
}

hid_t Reader::place(Where where)
{
    const hid_t found = places_.open(where);
    if (found < 0 && status_ >= 0) {
        switch (where) {
        case Where::header:
            report_error(message::header_not_found);
            break;
        case Where::data:
            report_error(message::data_not_found);
            break;
        case Where::index:
            report_error(message::index_not_found);
            break;
        }
        status_ = -1;
    }
    return found;
}

void Reader::attribute(const char* name, void* data, std::int32_t type, std::size_t size)
{
    if (status_ < 0) {
        return;
    }
    if (data == nullptr) {
        throw NullArgument{};
    }
    const hsize_t one = 1;
    status_ = KOB_H5Aread(name, data, type, size, &one, 0, place(Where::header), nullptr, Report::loud, plain_.get());
}

void Reader::dataset(const char* name, void* data, std::int32_t type, std::size_t size, const Shape& shape,
                     const Part& part)
{
    if (status_ < 0) {
        return;
    }
    require(data, shape, part);
    const hid_t location = place(where_);
    if (location < 0) {
        return;
    }
    constexpr std::int32_t untouched = -1;
    Found found{name, untouched, {}};
    status_ = KOB_H5Dread(name, data, type, size, shape.dims(), shape.rank(), part.count, part.start, part.mode,
                          location, &found.flags, found.params.data(), nullptr, Report::loud, plain_.get());
    if (status_ == 0 && found.flags != untouched) {
        found_.push_back(std::move(found));
    }
}

void Reader::text(const char* name, Arg<Reader, char> field, std::size_t length)
{
    attribute(name, field.get(), type_code::text, length);
}

void Reader::integer(const char* name, Arg<Reader, std::int32_t> number)
{
    attribute(name, number.get(), type_code::integer, sizeof(std::int32_t));
}

void Reader::long_integer(const char* name, Arg<Reader, std::int64_t> number)
{
    attribute(name, number.get(), type_code::integer, sizeof(std::int64_t));
}

void Reader::texts(const char* name, Arg<Reader, char> fields, const Shape& shape, std::int32_t length,
                   const Part& part)
{
    dataset(name, fields.get(), type_code::text, static_cast<std::size_t>(length), shape, part);
}

void Reader::integers(const char* name, Arg<Reader, std::int32_t> numbers, const Shape& shape, const Part& part)
{
    dataset(name, numbers.get(), type_code::integer, sizeof(std::int32_t), shape, part);
}

void Reader::long_integers(const char* name, Arg<Reader, std::int64_t> numbers, const Shape& shape)
{
    dataset(name, numbers.get(), type_code::integer, sizeof(std::int64_t), shape, {});
}

void Reader::reals(const char* name, Reals<Reader> numbers, const Shape& shape, const Part& part)
{
    dataset(name, numbers.address, type_code::real, numbers.size, shape, part);
}

void Reader::single(const char* name, Arg<Reader, std::int32_t> number)
{
    if (status_ < 0) {
        return;
    }
    const bool is_attribute = plain_ ? plain_->has_attribute(name) : has_attribute(place(Where::header), name);
    if (is_attribute) {
        integer(name, number);
    } else if (has_link(place(where_), name)) {
        dataset(name, number.get(), type_code::integer, sizeof(std::int32_t), Shape{}, {});
    }
}

void Reader::states(const char* name, Arg<Reader, std::int32_t> number, const char* values)
{
    if (is_current()) {
        integer(name, number);
        return;
    }
    const std::int64_t held = std::max<std::int64_t>(count_rows(places_.open(Where::data), values), 0);
    if (status_ >= 0 && number.get() != nullptr) {
        *number.get() = static_cast<std::int32_t>(std::min<std::int64_t>(held, INT32_MAX));
    }
}

void Reader::fail(std::int32_t status)
{
    if (status_ >= 0) {
        status_ = status;
    }
}

void Reader::key_as_status()
{
    if (status_ >= 0) {
        status_ = key_;
    }
}

void Reader::unknown_pass()
{
    if (status_ >= 0) {
        report_error(message::reading_pass, kind_.key);
        status_ = wrong_pass;
    }
}

void Reader::report_filters(const char* name, std::int32_t* filter_flags, std::int32_t* filter_params) const
{
    if (status_ < 0) {
        return;
    }
    std::int32_t flags = 0;
    std::array<std::int32_t, 2> params{};
    for (const Found& found : found_) {
        if (name == nullptr || found.name == name) {
            flags = found.flags;
            params = found.params;
        }
    }
    if (filter_flags != nullptr) {
        *filter_flags = flags;
    }
    if (filter_params != nullptr) {
        std::memcpy(filter_params, params.data(), sizeof params);
    }
}

// ---- Linker

void Linker::link(const char* name, const Shape& shape)
{
    // What holds nothing was not written either.
    if (status_ == 0 && !shape.is_empty() && share_link(shared_, block_, name) < 0) {
        status_ = -1;
    }
}

void Linker::fail(std::int32_t status)
{
    if (status_ == 0) {
        status_ = status;
    }
}

// ---- placement of blocks

Placed place_block(Location parent, const BlockPath& path)
{
    OpenedGroup opened = open_block_group(parent.group, path, io_flag::create);
    return {std::move(opened.group), opened.status, parent.generation};
}

std::int32_t refuse_group(Location block, const BlockKind& kind, std::int32_t key)
{
    if (block.is_current()) {
        report_error(message::writing_name, kind.name);
    } else {
        report_error(message::writing_key, key);
    }
    return static_cast<std::int32_t>(block.group);
}

Validity validity_of(const StateIndex<Writer>& index, const std::int32_t* state)
{
    return {*index.nindex, index.indexident.get(), value(state)};
}

} // namespace kob
