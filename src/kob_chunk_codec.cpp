// SPDX-License-Identifier: BSD-3-Clause
// The filters of one chunk, step by step from one room to the next.
#include "kob_chunk_codec.hpp"

#include "kob_shuffle.hpp"

#include <algorithm>

namespace kob {

std::optional<ChunkFilters> chunk_filters(hid_t creation_properties, hid_t type, std::size_t chunk_elements)
{
    ChunkFilters filters;
    const int count = H5Pget_nfilters(creation_properties);
    constexpr int most = 3;
    if (count < 0 || count > most) {
        return {};
    }
    const std::size_t element_size = H5Tget_size(type);
    // One order only: it is ours, and that of nearly everybody else.
    for (int i = 0; i < count; ++i) {
        std::array<unsigned, 20> values{};
        std::size_t parameters = values.size();
        unsigned flags = 0;
        const H5Z_filter_t filter = H5Pget_filter2(creation_properties, static_cast<unsigned>(i), &flags, &parameters,
                                                   values.data(), 0, nullptr, nullptr);
        const std::uint32_t bit = std::uint32_t{1} << i;
        constexpr unsigned largest_level = 9;
        if (filter == H5Z_FILTER_SCALEOFFSET && i == 0 && parameters <= values.size()) {
            const auto scaling = scale_offset({values.data(), parameters}, type, chunk_elements);
            if (!scaling) {
                return {};
            }
            filters.scale_offset = bit;
            filters.scaling = *scaling;
        } else if (filter == H5Z_FILTER_SHUFFLE && filters.shuffle == 0 && filters.deflate == 0 && parameters == 1 &&
                   values[0] == element_size) {
            filters.shuffle = bit;
        } else if (filter == H5Z_FILTER_DEFLATE && filters.deflate == 0 && parameters == 1 &&
                   values[0] <= largest_level) {
            filters.deflate = bit;
            filters.deflate_level = static_cast<int>(values[0]);
        } else {
            return {};
        }
    }
    return filters;
}

ChunkCodec::ChunkCodec(const ChunkFilters& filters, std::size_t element_size, std::size_t chunk_size)
    : filters_{filters}, element_size_{element_size}, chunk_size_{chunk_size},
      room_size_{Deflater::bound(filters.scale_offset != 0 ? filters.scaling.bound() : chunk_size)},
      deflater_{filters.deflate_level}
{
}

std::byte* ChunkCodec::room_beside(const std::byte* one, const std::byte* other)
{
    const auto room = std::find_if(rooms_.begin(), rooms_.end(), [&](const Scratch& candidate) {
        return candidate.data() == nullptr || (candidate.data() != one && candidate.data() != other);
    });
    return room->reserve(room_size_) ? room->data() : nullptr;
}

std::byte* ChunkCodec::plain() { return rooms_[0].reserve(room_size_) ? rooms_[0].data() : nullptr; }

bool ChunkCodec::keeps_old_numbers(std::span<const std::byte> packed, const std::byte* plain, const SharedChunk& shared)
{
    std::byte* const back = room_beside(plain, packed.data());
    if (back == nullptr || !unpack(filters_.scaling, packed, back)) {
        return false;
    }
    for (std::size_t i = 0; i < shared.is_new.size(); ++i) {
        const std::size_t at = i * element_size_;
        if (!shared.is_new[i] && !std::equal(plain + at, plain + at + element_size_, back + at)) {
            return false;
        }
    }
    return true;
}

std::optional<std::size_t> ChunkCodec::pack_into(std::byte* packed, const std::byte* plain, const SharedChunk* shared)
{
    const ScaleOffset& scaling = filters_.scaling;
    if (shared == nullptr || scaling.kind != ScaleOffset::Kind::real) {
        return pack(scaling, plain, packed);
    }
    if (!shared->exists) {
        const auto size = pack(scaling, plain, packed, with_room_below(scaling, plain));
        return size ? size : pack(scaling, plain, packed);
    }
    // Numbers that were rounded once must not be rounded again: not even where this chunk went without packing so far.
    const auto size =
        shared->minimum ? pack(scaling, plain, packed, lowered(scaling, *shared->minimum, plain)) : std::nullopt;
    return size && keeps_old_numbers({packed, *size}, plain, *shared) ? size : std::nullopt;
}

std::optional<StoredChunk> ChunkCodec::encode(const std::byte* plain, const SharedChunk* shared)
{
    StoredChunk chunk{{plain, chunk_size_}, 0};
    if (filters_.scale_offset != 0) {
        std::byte* const room = room_beside(plain);
        if (room == nullptr) {
            return {};
        }
        if (const auto size = pack_into(room, plain, shared)) {
            chunk.bytes = {room, *size};
        } else {
            chunk.filter_mask |= filters_.scale_offset;
        }
    }
    if (filters_.shuffle != 0) {
        std::byte* const room = room_beside(chunk.bytes.data());
        if (room == nullptr) {
            return {};
        }
        shuffle(chunk.bytes, element_size_, room);
        chunk.bytes = {room, chunk.bytes.size()};
    }
    if (filters_.deflate != 0) {
        std::byte* const room = room_beside(chunk.bytes.data());
        // The bytes of packed numbers are alike all over, those of plain numbers in each plane.
        const bool has_planes =
            filters_.shuffle != 0 && (chunk.filter_mask & filters_.scale_offset) == filters_.scale_offset;
        const std::size_t plane_size = chunk.bytes.size() / (has_planes ? element_size_ : 1);
        const auto size =
            room != nullptr ? deflater_.compress(chunk.bytes, {room, room_size_}, plane_size) : std::nullopt;
        if (!size) {
            return {};
        }
        chunk.bytes = {room, *size};
    }
    return chunk;
}

std::byte* ChunkCodec::stored_room(std::size_t size, std::byte* target)
{
    // The target is free until the last step writes to it, and the last step must not read from there.
    const int steps = (filters_.scale_offset != 0) + (filters_.shuffle != 0) + (filters_.deflate != 0);
    if (steps >= 2 && size <= chunk_size_) {
        return target;
    }
    Scratch& room = rooms_[1];
    return room.reserve(std::max(size, room_size_)) ? room.data() : nullptr;
}

bool ChunkCodec::decode(const StoredChunk& stored, std::byte* target)
{
    const auto is_active = [&](std::uint32_t filter) { return (filter & ~stored.filter_mask) != 0; };
    const bool is_packed = is_active(filters_.scale_offset);
    const bool is_shuffled = is_active(filters_.shuffle);
    std::span<const std::byte> bytes = stored.bytes;
    minimum_.reset();
    // The last step writes to the target, unless it reads from there.
    const auto place = [&](bool is_last) {
        return is_last && bytes.data() != target ? target : room_beside(bytes.data(), target);
    };
    if (is_active(filters_.deflate)) {
        std::byte* const room = place(!is_shuffled && !is_packed);
        const auto size = room != nullptr
                              ? inflater_.inflate(bytes, {room, is_packed ? filters_.scaling.bound() : chunk_size_})
                              : std::nullopt;
        if (!size) {
            return false;
        }
        bytes = {room, *size};
    }
    if (is_packed ? bytes.size() > filters_.scaling.bound() : bytes.size() != chunk_size_) {
        return false;
    }
    if (is_shuffled) {
        std::byte* const room = place(!is_packed);
        if (room == nullptr) {
            return false;
        }
        unshuffle(bytes, element_size_, room);
        bytes = {room, bytes.size()};
    }
    if (is_packed) {
        std::byte* const room = place(true);
        if (room == nullptr || !unpack(filters_.scaling, bytes, room)) {
            return false;
        }
        minimum_ = minimum_of(filters_.scaling, bytes);
        bytes = {room, chunk_size_};
    }
    if (bytes.data() != target) {
        std::copy(bytes.begin(), bytes.end(), target);
    }
    return true;
}

} // namespace kob
