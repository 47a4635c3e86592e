// SPDX-License-Identifier: BSD-3-Clause
// The filters of one chunk: from plain elements to the bytes in the file, and back.
#pragma once

#include "kob_deflate.hpp"
#include "kob_scale_offset.hpp"
#include "kob_scratch.hpp"

#include <hdf5.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kob {

/// The filters of a dataset. Each has the bit of a chunk's filter mask that says it was left out; 0: it is not there.
struct ChunkFilters {
    std::uint32_t scale_offset = 0;
    std::uint32_t shuffle = 0;
    std::uint32_t deflate = 0;
    int deflate_level = 0;
    ScaleOffset scaling{};

    [[nodiscard]] bool any() const { return (scale_offset | shuffle | deflate) != 0; }
};

/// The filters of a dataset; nothing when there are some that we leave to HDF5.
std::optional<ChunkFilters> chunk_filters(hid_t creation_properties, hid_t type, std::size_t chunk_elements);

/// What lies in the file of one chunk.
struct StoredChunk {
    std::span<const std::byte> bytes;
    std::uint32_t filter_mask = 0; ///< bits of the filters that were left out
};

/// A chunk that several writes share: what earlier ones left in it has to come back unchanged.
struct SharedChunk {
    bool exists = false;            ///< an earlier write made it
    std::optional<Minimum> minimum; ///< from which it counted, if it was packed
    std::vector<bool> is_new;       ///< for each element: is it of this write?
};

/// Encodes and decodes the chunks of one dataset. Memory is kept from one chunk to the next.
class ChunkCodec {
public:
    ChunkCodec(const ChunkFilters& filters, std::size_t element_size, std::size_t chunk_size);

    /// Room to put together the plain elements of one chunk, or null. Encoding from here, or decoding to here, needs
    /// one chunk less than it would from or to yet another place.
    std::byte* plain();

    /// The stored form of a plain chunk, valid until the next call; nothing when there is no memory.
    std::optional<StoredChunk> encode(const std::byte* plain, const SharedChunk* shared = nullptr);

    /// Where `size` stored bytes are to be read before they are decoded, or null. That may be the target.
    std::byte* stored_room(std::size_t size, std::byte* target);

    /// Decodes to the target; false when the bytes are damaged or there is no memory.
    bool decode(const StoredChunk& stored, std::byte* target);

    /// From where the chunk counted that was last decoded, if it was packed.
    [[nodiscard]] const std::optional<Minimum>& minimum() const { return minimum_; }

private:
    /// Room for a stored chunk of any kind that is neither of these places, or null.
    std::byte* room_beside(const std::byte* one, const std::byte* other = nullptr);

    /// Bytes of the packed chunk; nothing when it is better not packed.
    std::optional<std::size_t> pack_into(std::byte* packed, const std::byte* plain, const SharedChunk* shared);
    bool keeps_old_numbers(std::span<const std::byte> packed, const std::byte* plain, const SharedChunk& shared);

    ChunkFilters filters_;
    std::size_t element_size_;
    std::size_t chunk_size_;
    std::size_t room_size_; ///< no step makes more bytes
    Deflater deflater_;
    Inflater inflater_;
    std::array<Scratch, 3> rooms_;
    std::optional<Minimum> minimum_;
};

} // namespace kob
