// SPDX-License-Identifier: BSD-3-Clause
// Integers under scale-offset: exact, or not packed at all.
#pragma once

#include "kob_scale_offset_chunk.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

namespace kob::packing {

template <class Number>
std::optional<std::size_t> pack_integers(const ScaleOffset& parameters, const std::byte* plain, std::byte* packed)
{
    using Unsigned = Bits<Number>;
    const auto fill = number_in<Number>(parameters.fill);
    Number least = std::numeric_limits<Number>::max();
    Number most = std::numeric_limits<Number>::lowest();
    Piece<Number> piece;
    for (std::size_t first = 0; first < parameters.elements; first += at_a_time) {
        piece.load(parameters, plain, first);
        for (const Number number : piece) {
            if (!parameters.has_fill || number != fill) {
                least = std::min(least, number);
                most = std::max(most, number);
            }
        }
    }
    if (least > most) { // nothing but the fill value
        least = most = 0;
    }
    const auto range = static_cast<Unsigned>(static_cast<Unsigned>(most) - static_cast<Unsigned>(least));
    // Codes for the numbers and one for the fill value; HDF5 cannot read back codes of all bits.
    const std::uint64_t fill_codes = parameters.has_fill ? 1 : 0;
    if (range > ones(bit_size<Number> - 1) - fill_codes) {
        return {};
    }
    const unsigned bits = bits_for(std::uint64_t{range} + 1 + fill_codes);
    put_header(packed, bits, static_cast<std::uint64_t>(least));
    return pack_codes<Number>(parameters, plain, packed, bits, [&](const Piece<Number>& numbers, auto& code) {
        for (std::size_t i = 0; i < numbers.size; ++i) {
            const Number number = numbers.number[i];
            code[i] = parameters.has_fill && number == fill
                          ? ones(bits)
                          : static_cast<Unsigned>(static_cast<Unsigned>(number) - static_cast<Unsigned>(least));
        }
        return true;
    });
}

template <class Number>
void unpack_integers(const ScaleOffset& parameters, std::span<const std::byte> packed, const Header& header,
                     std::byte* plain)
{
    using Unsigned = Bits<Number>;
    const auto fill = number_in<Number>(parameters.fill);
    const auto least = static_cast<Unsigned>(header.minimum);
    unpack_codes<Number>(parameters, packed, header.bits, plain, [&](const auto& code, Piece<Number>& numbers) {
        for (std::size_t i = 0; i < numbers.size; ++i) {
            numbers.number[i] = parameters.has_fill && code[i] == ones(header.bits)
                                    ? fill
                                    : static_cast<Number>(static_cast<Unsigned>(code[i] + least));
        }
    });
}

} // namespace kob::packing
