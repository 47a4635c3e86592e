// SPDX-License-Identifier: BSD-3-Clause
// The filters of one chunk, step by step from one room to the next.
#include "kob_chunk_codec.hpp"

#include "kob_shuffle.hpp"

#include <algorithm>

namespace kob {

std::optional<ChunkFilters> chunk_filters(hid_t creation_properties, std::size_t element_size)
{
    ChunkFilters filters;
    const int count = H5Pget_nfilters(creation_properties);
    constexpr int most = 2;
    if (count < 1 || count > most) {
        return {};
    }
    for (int i = 0; i < count; ++i) {
        std::array<unsigned, 1> values{};
        std::size_t parameters = values.size();
        unsigned flags = 0;
        const H5Z_filter_t filter = H5Pget_filter2(creation_properties, static_cast<unsigned>(i), &flags, &parameters,
                                                   values.data(), 0, nullptr, nullptr);
        const std::uint32_t bit = std::uint32_t{1} << i;
        constexpr unsigned largest_level = 9;
        // One order only: it is ours, and that of nearly everybody else.
        if (filter == H5Z_FILTER_SHUFFLE && i == 0 && parameters == 1 && values[0] == element_size) {
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
      room_size_{Deflater::bound(chunk_size)}, deflater_{filters.deflate_level}
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

std::optional<StoredChunk> ChunkCodec::encode(const std::byte* plain)
{
    StoredChunk chunk{{plain, chunk_size_}, 0};
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
        const auto size = room != nullptr ? deflater_.compress(chunk.bytes, {room, room_size_}) : std::nullopt;
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
    const bool has_two_steps = filters_.shuffle != 0 && filters_.deflate != 0;
    if (has_two_steps && size <= chunk_size_) {
        return target;
    }
    Scratch& room = rooms_[1];
    return room.reserve(std::max(size, room_size_)) ? room.data() : nullptr;
}

bool ChunkCodec::decode(const StoredChunk& stored, std::byte* target)
{
    const bool is_deflated = (filters_.deflate & ~stored.filter_mask) != 0;
    const bool is_shuffled = (filters_.shuffle & ~stored.filter_mask) != 0;
    std::span<const std::byte> bytes = stored.bytes;
    if (is_deflated) {
        std::byte* const room = is_shuffled || bytes.data() == target ? room_beside(bytes.data(), target) : target;
        const auto size = room != nullptr ? inflater_.inflate(bytes, {room, chunk_size_}) : std::nullopt;
        if (!size) {
            return false;
        }
        bytes = {room, *size};
    }
    if (bytes.size() != chunk_size_) {
        return false;
    }
    if (is_shuffled) {
        if (bytes.data() == target) {
            std::byte* const room = room_beside(target);
            if (room == nullptr) {
                return false;
            }
            bytes = {std::copy(bytes.begin(), bytes.end(), room) - bytes.size(), bytes.size()};
        }
        unshuffle(bytes, element_size_, target);
    } else if (bytes.data() != target) {
        std::copy(bytes.begin(), bytes.end(), target);
    }
    return true;
}

} // namespace kob
