// SPDX-License-Identifier: BSD-3-Clause
// Numbers of a few bits each, packed highest bit first: word by word instead of bit by bit.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace kob::packing {

inline std::uint64_t swapped(std::uint64_t value) { return __builtin_bswap64(value); }
inline std::uint32_t swapped(std::uint32_t value) { return __builtin_bswap32(value); }

/// The smallest number of bits that hold `codes` different codes.
inline unsigned bits_for(std::uint64_t codes) { return static_cast<unsigned>(std::bit_width(codes - 1)); }

inline std::uint64_t ones(unsigned bits) { return (std::uint64_t{1} << bits) - 1; }

/// Appends numbers of a fixed number of bits, below 64.
class BitWriter {
public:
    BitWriter(std::byte* target, unsigned bits) : target_{target}, bits_{bits} {}

    void put(std::uint64_t value)
    {
        const unsigned end = filled_ + bits_;
        if (end < word_bits) {
            word_ |= value << (word_bits - end);
            filled_ = end;
            return;
        }
        const unsigned rest = end - word_bits;
        flush(word_ | value >> rest);
        word_ = rest != 0 ? value << (word_bits - rest) : 0;
        filled_ = rest;
    }
    /// The end of what was written. At most eight bytes behind it are touched.
    std::byte* finish()
    {
        const std::size_t used = (filled_ + 7) / 8;
        for (std::size_t i = 0; i < used; ++i) {
            *target_++ = static_cast<std::byte>(word_ >> (word_bits - 8 - 8 * i));
        }
        return target_;
    }

private:
    static constexpr unsigned word_bits = 64;

    void flush(std::uint64_t word)
    {
        if constexpr (std::endian::native == std::endian::little) {
            word = swapped(word);
        }
        std::memcpy(target_, &word, sizeof word);
        target_ += sizeof word;
    }

    std::byte* target_;
    unsigned bits_;
    std::uint64_t word_ = 0;
    unsigned filled_ = 0;
};

/// Takes numbers of a fixed number of bits, below 64, from bytes that hold them all.
class BitReader {
public:
    BitReader(std::span<const std::byte> source, unsigned bits) : source_{source}, bits_{bits} {}

    std::uint64_t get()
    {
        if (bits_ == 0) {
            return 0;
        }
        const std::size_t byte = position_ / 8;
        const unsigned shift = position_ % 8;
        position_ += bits_;
        if (byte + sizeof(std::uint64_t) + 1 <= source_.size()) {
            std::uint64_t word = 0;
            std::memcpy(&word, source_.data() + byte, sizeof word);
            if constexpr (std::endian::native == std::endian::little) {
                word = swapped(word);
            }
            word <<= shift;
            // The bits that the shift made room for are in the ninth byte.
            word |= static_cast<std::uint64_t>(source_[byte + sizeof word]) >> (8 - shift);
            return word >> (64 - bits_);
        }
        return get_slowly(position_ - bits_);
    }

private:
    [[nodiscard]] std::uint64_t get_slowly(std::size_t position) const
    {
        std::uint64_t value = 0;
        for (unsigned i = 0; i < bits_; ++i, ++position) {
            const auto byte = static_cast<unsigned>(source_[position / 8]);
            value = value << 1 | (byte >> (7 - position % 8) & 1U);
        }
        return value;
    }

    std::span<const std::byte> source_;
    unsigned bits_;
    std::size_t position_ = 0;
};

} // namespace kob::packing
