// SPDX-License-Identifier: BSD-3-Clause
// Elements from the caller's type to the stored one and back.
#include "kob_convert.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace kob {
namespace {

double resized(float value) { return value; }

/// Beyond the largest float lies infinity, also where rounding would lead back to it: so HDF5 has it.
float resized(double value)
{
    constexpr double largest{std::numeric_limits<float>::max()};
    constexpr double infinity = std::numeric_limits<double>::infinity();
    // NOLINTBEGIN(bugprone-narrowing-conversions): it takes infinity for a number that a double cannot hold
    const double limited = value > largest ? infinity : value;
    return static_cast<float>(limited < -largest ? -infinity : limited);
    // NOLINTEND(bugprone-narrowing-conversions)
}

template <class From, class To> void cast(const std::byte* source, std::size_t elements, std::byte* target)
{
    // The bytes need no alignment. Copying is also what fetches a large array fastest.
    constexpr std::size_t at_a_time = 2048;
    std::array<From, at_a_time> from;
    for (std::size_t done = 0; done < elements; done += at_a_time) {
        const std::size_t count = std::min(at_a_time, elements - done);
        std::memcpy(from.data(), source + done * sizeof(From), count * sizeof(From));
        for (std::size_t i = 0; i < count; ++i) {
            const To to = resized(from[i]);
            std::memcpy(target + (done + i) * sizeof(To), &to, sizeof(To));
        }
    }
}

/// Stores past the cache: what lies there need not be fetched to be overwritten.
void widen_past_cache(const std::byte* source, std::size_t elements, std::byte* target)
{
#ifdef __SSE2__
    // The target of such a store lies at a multiple of 16; one of a foreign caller may not even keep to 8.
    const auto address = reinterpret_cast<std::uintptr_t>(target);
    if (address % sizeof(double) == 0 && elements >= 4) {
        const std::size_t before = address % 16 / sizeof(double);
        const std::size_t fours = (elements - before) / 4;
        cast<float, double>(source, before, target);
        source += before * sizeof(float);
        auto* to = reinterpret_cast<double*>(target) + before;
        for (std::size_t i = 0; i < fours; ++i, source += 4 * sizeof(float), to += 4) {
            const __m128 four = _mm_castsi128_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(source)));
            _mm_stream_pd(to, _mm_cvtps_pd(four));
            _mm_stream_pd(to + 2, _mm_cvtps_pd(_mm_movehl_ps(four, four)));
        }
        _mm_sfence();
        elements -= before + 4 * fours;
        target = reinterpret_cast<std::byte*>(to);
    }
#endif
    cast<float, double>(source, elements, target);
}

} // namespace

Converter::Converter(hid_t from, hid_t to)
    : from_{from}, to_{to}, from_size_{H5Tget_size(from)}, to_size_{H5Tget_size(to)}
{
    const auto are = [&](hid_t one, hid_t other) { return H5Tequal(from, one) > 0 && H5Tequal(to, other) > 0; };
    if (H5Tequal(from, to) > 0) {
        way_ = Way::copy;
    } else if (are(H5T_NATIVE_DOUBLE, H5T_NATIVE_FLOAT)) {
        way_ = Way::narrow;
    } else if (are(H5T_NATIVE_FLOAT, H5T_NATIVE_DOUBLE)) {
        way_ = Way::widen;
    }
}

bool Converter::convert(const std::byte* source, std::size_t elements, std::byte* target) const
{
    switch (way_) {
    case Way::copy:
        std::memcpy(target, source, elements * to_size_);
        return true;
    case Way::narrow:
        cast<double, float>(source, elements, target);
        return true;
    case Way::widen:
        cast<float, double>(source, elements, target);
        return true;
    default:
        return convert_by_hdf5(source, elements, target);
    }
}

bool Converter::convert_past_cache(const std::byte* source, std::size_t elements, std::byte* target) const
{
    if (way_ == Way::widen) {
        widen_past_cache(source, elements, target);
        return true;
    }
    return convert(source, elements, target);
}

bool Converter::convert_by_hdf5(const std::byte* source, std::size_t elements, std::byte* target) const
{
    std::array<std::byte, 4096> piece; // HDF5 converts in place
    const std::size_t at_a_time = piece.size() / std::max(from_size_, to_size_);
    for (std::size_t done = 0; done < elements; done += at_a_time) {
        const std::size_t count = std::min(at_a_time, elements - done);
        std::memcpy(piece.data(), source + done * from_size_, count * from_size_);
        if (H5Tconvert(from_, to_, count, piece.data(), nullptr, H5P_DEFAULT) < 0) {
            return false;
        }
        std::memcpy(target + done * to_size_, piece.data(), count * to_size_);
    }
    return true;
}

} // namespace kob
