// SPDX-License-Identifier: BSD-3-Clause
// Byte shuffle, sixteen elements at a time where the processor can.
#include "kob_shuffle.hpp"

#include <algorithm>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace kob {
namespace {

/// Elements whose bytes stay in the first-level cache while they are taken apart one by one.
constexpr std::size_t elements_at_a_time = 64;

void shuffle_some(const std::byte* source, std::size_t first, std::size_t elements, std::size_t size, std::byte* target)
{
    for (std::size_t begin = first; begin < elements; begin += elements_at_a_time) {
        const std::size_t end = std::min(elements, begin + elements_at_a_time);
        for (std::size_t plane = 0; plane < size; ++plane) {
            for (std::size_t i = begin; i < end; ++i) {
                target[plane * elements + i] = source[i * size + plane];
            }
        }
    }
}

void unshuffle_some(const std::byte* source, std::size_t first, std::size_t elements, std::size_t size,
                    std::byte* target)
{
    for (std::size_t begin = first; begin < elements; begin += elements_at_a_time) {
        const std::size_t end = std::min(elements, begin + elements_at_a_time);
        for (std::size_t plane = 0; plane < size; ++plane) {
            for (std::size_t i = begin; i < end; ++i) {
                target[i * size + plane] = source[plane * elements + i];
            }
        }
    }
}

#ifdef __SSE2__

constexpr std::size_t lanes = 16;

/// The bytes of sixteen elements.
template <std::size_t Size> struct Row {
    __m128i part[Size];
};

/// Interleaves the two halves of a row, which rotates the binary digits of every position to the left by one. A
/// position is (element, byte) or, shuffled, (byte, element).
template <std::size_t Size> Row<Size> interleaved_halves(const Row<Size>& row)
{
    Row<Size> result;
    for (std::size_t i = 0; i < Size / 2; ++i) {
        result.part[2 * i] = _mm_unpacklo_epi8(row.part[i], row.part[i + Size / 2]);
        result.part[2 * i + 1] = _mm_unpackhi_epi8(row.part[i], row.part[i + Size / 2]);
    }
    return result;
}

/// Shuffles groups of sixteen elements and tells how many elements that were.
template <std::size_t Size> std::size_t shuffle_groups(const std::byte* source, std::size_t elements, std::byte* target)
{
    const std::size_t end = elements - elements % lanes;
    for (std::size_t first = 0; first < end; first += lanes) {
        Row<Size> row;
        std::memcpy(row.part, source + first * Size, sizeof row.part);
        for (int digit = 0; digit < 4; ++digit) { // the four digits of sixteen elements
            row = interleaved_halves(row);
        }
        for (std::size_t plane = 0; plane < Size; ++plane) {
            std::memcpy(target + plane * elements + first, &row.part[plane], lanes);
        }
    }
    return end;
}

template <std::size_t Size>
std::size_t unshuffle_groups(const std::byte* source, std::size_t elements, std::byte* target)
{
    const std::size_t end = elements - elements % lanes;
    for (std::size_t first = 0; first < end; first += lanes) {
        Row<Size> row;
        for (std::size_t plane = 0; plane < Size; ++plane) {
            std::memcpy(&row.part[plane], source + plane * elements + first, lanes);
        }
        for (std::size_t digit = 1; digit < Size; digit *= 2) { // the digits of a byte's number
            row = interleaved_halves(row);
        }
        std::memcpy(target + first * Size, row.part, sizeof row.part);
    }
    return end;
}

#endif

} // namespace

void shuffle(std::span<const std::byte> source, std::size_t element_size, std::byte* target) noexcept
{
    const std::size_t elements = source.size() / element_size;
    std::size_t done = 0;
#ifdef __SSE2__
    if (element_size == 8) {
        done = shuffle_groups<8>(source.data(), elements, target);
    } else if (element_size == 4) {
        done = shuffle_groups<4>(source.data(), elements, target);
    }
#endif
    shuffle_some(source.data(), done, elements, element_size, target);
    const std::size_t whole = elements * element_size;
    std::copy(source.begin() + static_cast<std::ptrdiff_t>(whole), source.end(), target + whole);
}

void unshuffle(std::span<const std::byte> source, std::size_t element_size, std::byte* target) noexcept
{
    const std::size_t elements = source.size() / element_size;
    std::size_t done = 0;
#ifdef __SSE2__
    if (element_size == 8) {
        done = unshuffle_groups<8>(source.data(), elements, target);
    } else if (element_size == 4) {
        done = unshuffle_groups<4>(source.data(), elements, target);
    }
#endif
    unshuffle_some(source.data(), done, elements, element_size, target);
    const std::size_t whole = elements * element_size;
    std::copy(source.begin() + static_cast<std::ptrdiff_t>(whole), source.end(), target + whole);
}

} // namespace kob
