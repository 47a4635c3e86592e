// SPDX-License-Identifier: BSD-3-Clause
// Real numbers under scale-offset: rounded to decimal digits, and checked by what HDF5 makes of the codes.
#pragma once

#include "kob_scale_offset_chunk.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <span>

namespace kob::packing {

/// What the promise and HDF5's arithmetic need to know of a chunk.
template <class Real> struct RealRange {
    Real least = 0;
    Real most = 0;
    Real largest_magnitude = 0;
    bool is_regular = true; ///< finite numbers only, and HDF5 is of one mind about those next to the fill value
};

/// Packs and unpacks the numbers of one dataset.
template <class Real> class RealCoder {
public:
    explicit RealCoder(const ScaleOffset& parameters)
        : parameters_{parameters}, fill_{number_in<Real>(parameters.fill)}, scale_{std::pow(
                                                                                static_cast<Real>(10),
                                                                                static_cast<Real>(parameters.digits))},
          near_fill_{std::pow(static_cast<Real>(10), -static_cast<Real>(parameters.digits))},
          last_digit_{std::pow(10.0, -static_cast<double>(parameters.digits))}
    {
    }

    std::optional<std::size_t> pack(const std::byte* plain, std::byte* packed,
                                    const std::optional<Minimum>& minimum) const
    {
        RealRange<Real> range = range_of(plain);
        if (minimum) {
            const auto given = number_in<Real>(*minimum);
            range.is_regular = range.is_regular && std::isfinite(given) && given <= range.least;
            range.least = given;
        }
        const Real span = range.most * scale_ - range.least * scale_;
        constexpr auto limit = static_cast<Real>(std::uint64_t{1} << (bit_size<Real> - 1));
        if (!range.is_regular || !(span >= 0 && span < limit)) {
            return {};
        }
        const std::uint64_t codes = static_cast<std::uint64_t>(std::llround(span)) + 1 + (parameters_.has_fill ? 1 : 0);
        const unsigned bits = bits_for(codes);
        if (bits >= bit_size<Real>) { // HDF5 cannot read that back
            return {};
        }
        put_header(packed, bits, std::bit_cast<Bits<Real>>(range.least));
        const double unit = range.largest_magnitude - std::nextafter(range.largest_magnitude, Real{0});
        const auto most_code = static_cast<std::int64_t>(codes - 1 - (parameters_.has_fill ? 1 : 0));
        const Real scaled_least = range.least * scale_;
        return pack_codes<Real>(parameters_, plain, packed, bits, [&](const Piece<Real>& numbers, auto& code) {
            for (std::size_t i = 0; i < numbers.size; ++i) {
                const Real number = numbers.number[i];
                if (is_fill(number)) {
                    code[i] = ones(bits);
                    if (distance(fill_, number) > last_digit_ + unit) {
                        return false;
                    }
                    continue;
                }
                const Real scaled = number * scale_ - scaled_least;
                const auto whole = static_cast<std::int64_t>(scaled);
                // Rounded as llround does, which is no single instruction.
                std::int64_t rounded = whole + (scaled - static_cast<Real>(whole) >= Real{0.5} ? 1 : 0);
                const double allowed = last_digit_ / 2 + unit;
                if (distance(number_of(rounded, range.least), number) > allowed) {
                    // Between two codes HDF5's arithmetic may take the one that is farther away.
                    rounded = nearest(rounded, most_code, number, range.least);
                    if (distance(number_of(rounded, range.least), number) > allowed) {
                        return false;
                    }
                }
                code[i] = static_cast<std::uint64_t>(rounded);
            }
            return true;
        });
    }

    /// From where to count so that old numbers may come back as they were, and new ones fit as well.
    [[nodiscard]] Minimum lowered(const Minimum& minimum, const std::byte* plain) const
    {
        const auto present = number_in<Real>(minimum);
        const Real least = range_of(plain).least;
        return least >= present ? minimum : as_minimum(present - std::ceil((present - least) * scale_ + 1) / scale_);
    }

    /// From where to count so that numbers as far below the smallest as the largest is above it still fit.
    [[nodiscard]] Minimum with_room_below(const std::byte* plain) const
    {
        const RealRange<Real> range = range_of(plain);
        return as_minimum(range.least - (range.most - range.least));
    }

    void unpack(std::span<const std::byte> packed, const Header& header, std::byte* plain) const
    {
        const auto least = std::bit_cast<Real>(static_cast<Bits<Real>>(header.minimum));
        unpack_codes<Real>(parameters_, packed, header.bits, plain, [&](const auto& code, Piece<Real>& numbers) {
            for (std::size_t i = 0; i < numbers.size; ++i) {
                numbers.number[i] = parameters_.has_fill && code[i] == ones(header.bits)
                                        ? fill_
                                        : number_of(static_cast<std::int64_t>(code[i]), least);
            }
        });
    }

private:
    static Minimum as_minimum(Real number)
    {
        Minimum minimum{};
        std::memcpy(minimum.data(), &number, sizeof number);
        return minimum;
    }

    static double distance(Real one, Real other)
    {
        return std::abs(static_cast<double>(one) - static_cast<double>(other));
    }

    /// What HDF5 makes of a code.
    [[nodiscard]] Real number_of(std::int64_t code, Real least) const
    {
        return static_cast<Real>(code) / scale_ + least;
    }

    /// The code next to this one, or this one, that comes back nearest to a number.
    [[nodiscard]] std::int64_t nearest(std::int64_t code, std::int64_t most_code, Real number, Real least) const
    {
        std::int64_t best = code;
        for (const std::int64_t other : {std::max<std::int64_t>(code - 1, 0), std::min(code + 1, most_code)}) {
            if (distance(number_of(other, least), number) < distance(number_of(best, least), number)) {
                best = other;
            }
        }
        return best;
    }

    [[nodiscard]] bool is_fill(Real number) const
    {
        return parameters_.has_fill && std::abs(number - fill_) < near_fill_;
    }

    [[nodiscard]] RealRange<Real> range_of(const std::byte* plain) const
    {
        RealRange<Real> range;
        range.least = std::numeric_limits<Real>::infinity();
        range.most = -range.least;
        Piece<Real> piece;
        for (std::size_t first = 0; first < parameters_.elements; first += at_a_time) {
            piece.load(parameters_, plain, first);
            for (const Real number : piece) {
                range.is_regular = range.is_regular && std::isfinite(number);
                range.largest_magnitude = std::max(range.largest_magnitude, std::abs(number));
                const bool fills = is_fill(number);
                // HDF5 asks this question in two precisions.
                range.is_regular =
                    range.is_regular &&
                    fills == (parameters_.has_fill && std::abs(static_cast<double>(number - fill_)) < last_digit_);
                if (!fills) {
                    range.least = std::min(range.least, number);
                    range.most = std::max(range.most, number);
                }
            }
        }
        if (range.least > range.most) { // nothing but the fill value
            range.least = range.most = 0;
        }
        return range;
    }

    const ScaleOffset& parameters_;
    Real fill_;
    Real scale_;
    Real near_fill_;
    double last_digit_;
};

} // namespace kob::packing
