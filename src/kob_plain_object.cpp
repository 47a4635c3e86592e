// SPDX-License-Identifier: BSD-3-Clause
// Object headers of version 1, and what the messages in them say.
#include "kob_plain_object.hpp"

#include <algorithm>

namespace kob::plain {
namespace {

constexpr std::size_t prefix_size = 16;
constexpr std::size_t message_prefix_size = 8;
constexpr std::size_t most_chunks = 16; // of a header; blocks have two or three
static_assert(most_chunks < File::surely_held);

/// Room that a part of an attribute takes: its size, rounded up.
constexpr std::size_t padded(std::size_t size) { return (size + 7) & ~std::size_t{7}; }

struct KnownType {
    Element element;
    std::size_t size;
    std::array<unsigned char, 20> bytes;
    std::size_t length;
};

// Signed little-endian integers and IEEE floating numbers, as HDF5 describes them.
constexpr std::array<KnownType, 4> numbers{{
    {Element::integer, 4, {0x10, 0x08, 0, 0, 4, 0, 0, 0, 0, 0, 32, 0}, 12},
    {Element::integer, 8, {0x10, 0x08, 0, 0, 8, 0, 0, 0, 0, 0, 64, 0}, 12},
    {Element::real, 4, {0x11, 0x20, 31, 0, 4, 0, 0, 0, 0, 0, 32, 0, 23, 8, 0, 23, 127, 0, 0, 0}, 20},
    {Element::real, 8, {0x11, 0x20, 63, 0, 8, 0, 0, 0, 0, 0, 64, 0, 52, 11, 0, 52, 0xff, 0x03, 0, 0}, 20},
}};
constexpr std::array<unsigned char, 4> blank_padded_text{0x13, 0x02, 0, 0};

void read_type(Bytes body, Stored& stored)
{
    if (body.starts_with(blank_padded_text.data(), blank_padded_text.size())) {
        stored.element = Element::text;
        stored.size = body.u32(4);
        expect(stored.size > 0);
        return;
    }
    const auto* const known = std::find_if(numbers.begin(), numbers.end(), [&](const KnownType& type) {
        return body.starts_with(type.bytes.data(), type.length);
    });
    expect(known != numbers.end());
    stored.element = known->element;
    stored.size = known->size;
}

void read_space(Bytes body, Stored& stored)
{
    stored.rank = body.u8(1);
    const unsigned flags = body.u8(2);
    expect(body.u8(0) == 1 && stored.rank <= stored.extents.size() && flags <= 1);
    stored.bytes = stored.size;
    for (std::size_t i = 0; i < stored.rank; ++i) {
        stored.extents[i] = body.u64(8 + 8 * i);
        // An extent that may still grow belongs to a dataset in chunks.
        expect(flags == 0 || body.u64(8 + 8 * (stored.rank + i)) == stored.extents[i]);
        expect(!__builtin_mul_overflow(stored.bytes, stored.extents[i], &stored.bytes));
    }
    expect(stored.bytes <= static_cast<std::size_t>(PTRDIFF_MAX) && stored.bytes > 0 && body.size() >= 8);
}

/// The only message of a type, or nothing.
const Message* only(const Header& header, unsigned type)
{
    const Message* found = nullptr;
    for (const Message& message : header.messages()) {
        if (message.type == type) {
            expect(found == nullptr);
            found = &message;
        }
    }
    return found;
}

} // namespace

Header::Header(File& file, Address address)
{
    const Bytes prefix = file.at(address, prefix_size);
    const std::size_t count = prefix.u16(2);
    const std::size_t first_size = prefix.u32(8);
    names_ = prefix.u32(4);
    expect(prefix.u8(0) == 1 && count > 0);
    messages_.reserve(count);
    std::array<Bytes, most_chunks> chunks;
    std::size_t known = 0;
    chunks[known++] = file.at(address + prefix_size, first_size);
    for (std::size_t i = 0; i < known; ++i) {
        const Bytes chunk = chunks[i];
        for (std::size_t at = 0; at < chunk.size();) {
            const unsigned type = chunk.u16(at);
            const std::size_t size = chunk.u16(at + 2);
            const unsigned flags = chunk.u8(at + 4);
            // Messages that several objects share, or with a word on what to do with unknown ones, are HDF5's.
            expect(flags <= 1 && size % 8 == 0 && messages_.size() < count);
            const Bytes body = chunk.part(at + message_prefix_size, size);
            if (type == message_type::continuation) {
                expect(known < most_chunks && size >= 16);
                chunks[known++] = file.at(body.u64(0), static_cast<std::size_t>(body.u64(8)));
            }
            messages_.push_back({type, body});
            at += message_prefix_size + size;
        }
    }
    expect(messages_.size() == count);
}

std::optional<Bytes> Header::symbol_table() const
{
    using namespace message_type;
    const Message* table = only(*this, message_type::symbol_table);
    if (table == nullptr) {
        return {};
    }
    // A group of the newer kind would have more than that.
    expect(std::all_of(messages_.begin(), messages_.end(), [](const Message& message) {
        return message.type == nothing || message.type == attribute || message.type == continuation ||
               message.type == message_type::symbol_table;
    }));
    return table->body;
}

bool Header::is_dataset() const
{
    return only(*this, message_type::datatype) != nullptr && only(*this, message_type::dataspace) != nullptr &&
           only(*this, message_type::layout) != nullptr && only(*this, message_type::symbol_table) == nullptr;
}

Attribute attribute_in(Bytes message)
{
    const std::size_t name_size = message.u16(2);
    const std::size_t type_size = message.u16(4);
    const std::size_t space_size = message.u16(6);
    expect(message.u8(0) == 1 && message.u8(1) == 0 && name_size > 1);
    std::size_t at = 8;
    const Bytes name = message.part(at, padded(name_size));
    expect(std::memchr(name.data(), 0, name_size) == name.data() + name_size - 1);
    at += padded(name_size);
    Attribute result;
    result.name = {reinterpret_cast<const char*>(name.data()), name_size - 1}; // NOLINT(*-reinterpret-cast)
    read_type(message.part(at, padded(type_size)).part(0, type_size), result.stored);
    at += padded(type_size);
    read_space(message.part(at, padded(space_size)).part(0, space_size), result.stored);
    at += padded(space_size);
    result.values = message.part(at, result.stored.bytes);
    return result;
}

Attribute attribute_of(File& file, Address group, std::string_view name)
{
    const Header header{file, group};
    expect(header.symbol_table().has_value());
    for (const Message& message : header.messages()) {
        if (message.type == message_type::attribute) {
            const Attribute attribute = attribute_in(message.body);
            if (attribute.name == name) {
                return attribute;
            }
        }
    }
    throw Surprise{};
}

std::optional<Dataset> dataset_in(const Header& header)
{
    using namespace message_type;
    for (const Message& message : header.messages()) {
        expect(message.type == nothing || message.type == dataspace || message.type == datatype ||
               message.type == fill_value || message.type == layout || message.type == attribute ||
               message.type == continuation || message.type == modification_time);
    }
    const Message* type = only(header, datatype);
    const Message* space = only(header, dataspace);
    const Message* fill = only(header, fill_value);
    const Message* place = only(header, layout);
    expect(type != nullptr && space != nullptr && fill != nullptr && place != nullptr);
    // The fill value that HDF5 takes when nobody names one; only when it makes room for the values differs.
    expect(fill->body.u8(0) == 2 && fill->body.u8(1) >= 1 && fill->body.u8(1) <= 3 && fill->body.u8(2) == 2 &&
           fill->body.u8(3) == 1 && fill->body.u32(4) == 0);
    constexpr unsigned compact = 0;
    constexpr unsigned contiguous = 1;
    expect(place->body.u8(0) == 3);
    Dataset result;
    switch (place->body.u8(1)) {
    case compact:
        read_type(type->body, result.stored);
        read_space(space->body, result.stored);
        expect(place->body.u16(2) == result.stored.bytes);
        result.values = place->body.part(4, result.stored.bytes);
        return result;
    case contiguous:
        read_type(type->body, result.stored);
        read_space(space->body, result.stored);
        result.address = place->body.u64(2);
        expect(place->body.u64(10) == result.stored.bytes);
        return result.address == nowhere ? std::nullopt : std::optional{result};
    default:
        return {};
    }
}

} // namespace kob::plain
