// SPDX-License-Identifier: BSD-3-Clause
// Repetitions, by a look at a small part of the data.
#include "kob_repetition.hpp"

#include <bit>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace kob {
namespace {

constexpr std::uint32_t three_bytes = std::endian::native == std::endian::little ? 0xffffffU : 0xffffff00U;
constexpr std::uint32_t window = 32768; // deflate looks no farther back

/// Visits one place of 64 in noise.
template <class Visit>
void for_each_place(std::span<const std::byte> bytes, std::size_t first, std::size_t end, Visit&& visit)
{
    constexpr int mask = 63;
    constexpr int chosen = 21;
#ifdef __SSE2__
    for (; first + sizeof(__m128i) <= end; first += sizeof(__m128i)) {
        __m128i sixteen;
        std::memcpy(&sixteen, bytes.data() + first, sizeof sixteen);
        const __m128i equal = _mm_cmpeq_epi8(_mm_and_si128(sixteen, _mm_set1_epi8(mask)), _mm_set1_epi8(chosen));
        for (auto bits = static_cast<unsigned>(_mm_movemask_epi8(equal)); bits != 0; bits &= bits - 1) {
            visit(first + static_cast<std::size_t>(std::countr_zero(bits)));
        }
    }
#endif
    for (; first < end; ++first) {
        if ((static_cast<int>(bytes[first]) & mask) == chosen) {
            visit(first);
        }
    }
}

} // namespace

/// Equal bytes around a place and those so far before it, or as many as make no difference any more.
std::size_t Repetitions::length(std::size_t place, std::size_t distance) const
{
    constexpr std::size_t enough = 32;
    std::size_t behind = 0;
    while (behind < enough && place + behind < bytes_.size() &&
           bytes_[place + behind] == bytes_[place + behind - distance]) {
        ++behind;
    }
    std::size_t before = 0;
    while (before < enough && before + distance < place &&
           bytes_[place - before - 1] == bytes_[place - before - 1 - distance]) {
        ++before;
    }
    return behind + before;
}

double Repetitions::saved_bits(std::size_t first, std::size_t end, double literal_bits) noexcept
{
    double saved = 0; // of the bytes at the places
    std::size_t places = 0;
    for_each_place(bytes_, first, end, [&](std::size_t place) {
        std::uint32_t word = 0;
        if (bytes_.size() - place < sizeof word) {
            return;
        }
        std::memcpy(&word, bytes_.data() + place, sizeof word);
        word &= three_bytes; // deflate names no fewer
        Seen& seen = seen_[word * 2654435761U >> (32 - table_bits)];
        const auto position = static_cast<std::uint32_t>(place);
        const std::uint32_t distance = position - seen.position;
        if (seen.word == word && distance <= window) {
            // A length takes about 7 bits, a distance 5 and those of its size but two.
            const double name_bits = 10 + std::bit_width(distance);
            const auto bytes = static_cast<double>(length(place, distance));
            if (bytes * literal_bits > name_bits) {
                saved += literal_bits - name_bits / bytes;
            }
        }
        seen = {word, position};
        ++places;
    });
    constexpr std::size_t rarest = 512; // one place in so many bytes is enough
    return places >= (end - first) / rarest ? saved / static_cast<double>(places) : literal_bits;
}

} // namespace kob
