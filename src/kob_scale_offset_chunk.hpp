// SPDX-License-Identifier: BSD-3-Clause
// A chunk under scale-offset, whatever its numbers mean: its header, and the codes that the numbers become.
#pragma once

#include "kob_bit_packing.hpp"
#include "kob_scale_offset.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <type_traits>

namespace kob::packing {

// A packed chunk: the bits of a number (4 bytes), 8, the minimum (8 bytes), 8 zeros, the numbers, highest bit first,
// and a byte more than is needed. Header fields are little-endian.
constexpr std::size_t minimum_offset = 5;
constexpr std::size_t header_size = 21;
constexpr std::size_t trailing_size = 1;

constexpr std::size_t at_a_time = 256; // numbers that are worked on together, in the first-level cache

template <class Number> using Bits = std::conditional_t<sizeof(Number) == 4, std::uint32_t, std::uint64_t>;
template <class Number> constexpr unsigned bit_size = sizeof(Number) * 8;

template <class Number> struct Piece {
    std::array<Number, at_a_time> number;
    std::size_t size = 0;

    [[nodiscard]] auto begin() const { return number.begin(); }
    [[nodiscard]] auto end() const { return number.begin() + static_cast<std::ptrdiff_t>(size); }

    void swap_bytes()
    {
        for (std::size_t i = 0; i < size; ++i) {
            number[i] = std::bit_cast<Number>(swapped(std::bit_cast<Bits<Number>>(number[i])));
        }
    }
    void load(const ScaleOffset& parameters, const std::byte* plain, std::size_t first)
    {
        size = std::min(at_a_time, parameters.elements - first);
        std::memcpy(number.data(), plain + first * sizeof(Number), size * sizeof(Number));
        if (parameters.is_swapped) {
            swap_bytes();
        }
    }
    void store(const ScaleOffset& parameters, std::byte* plain, std::size_t first)
    {
        if (parameters.is_swapped) {
            swap_bytes();
        }
        std::memcpy(plain + first * sizeof(Number), number.data(), size * sizeof(Number));
    }
};

template <class Number> Number number_in(const std::array<std::byte, 8>& bytes)
{
    Number number{};
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
}

inline void put_header(std::byte* packed, unsigned bits, std::uint64_t minimum)
{
    std::fill_n(packed, header_size, std::byte{0});
    packed[0] = static_cast<std::byte>(bits);
    packed[4] = std::byte{sizeof minimum};
    for (std::size_t i = 0; i < sizeof minimum; ++i) {
        packed[minimum_offset + i] = static_cast<std::byte>(minimum >> (8 * i));
    }
}

/// Bytes of a packed chunk, the trailing one included.
inline std::size_t packed_size(const ScaleOffset& parameters, unsigned bits)
{
    return header_size + parameters.elements * bits / 8 + trailing_size;
}

/// Bytes that the packed numbers alone take.
inline std::size_t needed_size(const ScaleOffset& parameters, unsigned bits)
{
    return (parameters.elements * bits + 7) / 8;
}

struct Header {
    std::uint32_t bits = 0;
    std::uint64_t minimum = 0;
};

/// Nothing when the chunk is shorter than its header says.
inline std::optional<Header> header_of(const ScaleOffset& parameters, std::span<const std::byte> packed)
{
    if (packed.size() < header_size) {
        return {};
    }
    Header header;
    for (std::size_t i = 0; i < sizeof header.bits; ++i) {
        header.bits |= static_cast<std::uint32_t>(packed[i]) << (8 * i);
    }
    const std::size_t size = std::min<std::size_t>(sizeof header.minimum, static_cast<std::size_t>(packed[4]));
    for (std::size_t i = 0; i < size; ++i) {
        header.minimum |= static_cast<std::uint64_t>(packed[minimum_offset + i]) << (8 * i);
    }
    if (header.bits > parameters.element_size * 8 ||
        packed.size() - header_size < needed_size(parameters, header.bits)) {
        return {};
    }
    return header;
}

/// Packs what `codes(piece, code)` makes of each piece, until it says false; tells the bytes of the chunk.
template <class Number, class Codes>
std::optional<std::size_t> pack_codes(const ScaleOffset& parameters, const std::byte* plain, std::byte* packed,
                                      unsigned bits, Codes&& codes)
{
    BitWriter writer{packed + header_size, bits};
    Piece<Number> piece;
    std::array<std::uint64_t, at_a_time> code;
    for (std::size_t first = 0; first < parameters.elements; first += at_a_time) {
        piece.load(parameters, plain, first);
        if (!codes(piece, code)) {
            return {};
        }
        if (bits != 0) {
            for (std::size_t i = 0; i < piece.size; ++i) {
                writer.put(code[i]);
            }
        }
    }
    const std::size_t size = packed_size(parameters, bits);
    std::byte* const end = writer.finish();
    std::fill(end, packed + size, std::byte{0});
    return size;
}

/// Unpacks what `numbers(code, piece)` makes of the codes.
template <class Number, class Numbers>
void unpack_codes(const ScaleOffset& parameters, std::span<const std::byte> packed, unsigned bits, std::byte* plain,
                  Numbers&& numbers)
{
    BitReader reader{packed.subspan(header_size), bits};
    Piece<Number> piece;
    std::array<std::uint64_t, at_a_time> code;
    for (std::size_t first = 0; first < parameters.elements; first += at_a_time) {
        piece.size = std::min(at_a_time, parameters.elements - first);
        for (std::size_t i = 0; i < piece.size; ++i) {
            code[i] = reader.get();
        }
        numbers(code, piece);
        piece.store(parameters, plain, first);
    }
}

} // namespace kob::packing
