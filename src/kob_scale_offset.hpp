// SPDX-License-Identifier: BSD-3-Clause
// HDF5's scale-offset: numbers as bit-packed differences to the smallest, real ones rounded to decimal digits first.
#pragma once

#include <hdf5.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace kob {

/// The filter's parameters for the chunks of one dataset.
struct ScaleOffset {
    enum class Kind { real, signed_integer, unsigned_integer };

    Kind kind = Kind::real;
    std::size_t element_size = 0; ///< 4 or 8
    std::size_t elements = 0;     ///< of a chunk
    bool is_swapped = false;      ///< stored in the byte order that is not the processor's
    int digits = 0;               ///< real numbers: digits behind the decimal point
    bool has_fill = false;
    std::array<std::byte, 8> fill{}; ///< in the processor's byte order

    /// No packed chunk is longer.
    [[nodiscard]] std::size_t bound() const;
};

/// The number from which a packed chunk counts, in the processor's byte order.
using Minimum = std::array<std::byte, 8>;

/// Reads the parameters as HDF5 keeps them; nothing for those that we leave to HDF5.
std::optional<ScaleOffset> scale_offset(std::span<const unsigned> parameters, hid_t type, std::size_t chunk_elements);

/// Packs a chunk and tells its bytes. Nothing when it is to be stored without this filter: unpacking would not keep
/// the promise, which is that integers come back as they are, and real numbers within half a unit of the last digit (a
/// whole one next to the fill value) and one unit in the last place of the largest magnitude; or HDF5 could not unpack.
/// A minimum that is given is taken instead of the smallest number.
std::optional<std::size_t> pack(const ScaleOffset& parameters, const std::byte* plain, std::byte* packed,
                                const std::optional<Minimum>& minimum = {});

/// Unpacks a chunk; false when it is damaged.
bool unpack(const ScaleOffset& parameters, std::span<const std::byte> packed, std::byte* plain);

/// The number from which a packed chunk counts; nothing when that cannot be told.
std::optional<Minimum> minimum_of(const ScaleOffset& parameters, std::span<const std::byte> packed);

/// A minimum for a chunk that is written again with other numbers: the old one, or one that is whole units below it.
/// Nothing for integers, which need none.
std::optional<Minimum> lowered(const ScaleOffset& parameters, const Minimum& minimum, const std::byte* plain);

/// A minimum for a chunk that will get more numbers later: as far below the smallest as the largest is above it.
std::optional<Minimum> with_room_below(const ScaleOffset& parameters, const std::byte* plain);

} // namespace kob
