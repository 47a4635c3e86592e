// SPDX-License-Identifier: BSD-3-Clause
// Deflate blocks for bytes that repeat nothing: as they are, or with a code of its own for each value.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kob {

/// How often each value occurs in some bytes.
class ByteCounts {
public:
    static constexpr std::size_t values = 256;

    ByteCounts() = default;
    explicit ByteCounts(std::span<const std::byte> bytes);

    void add(const ByteCounts& other);

    [[nodiscard]] std::uint32_t operator[](std::size_t value) const { return counts_[value]; }
    [[nodiscard]] std::size_t total() const { return total_; }

    /// Are the values so evenly spread that codes for them would cost more than they save?
    [[nodiscard]] bool are_even() const;
    /// About the bits that a block of these bytes takes with codes of its own.
    [[nodiscard]] double coded_bits() const;

private:
    std::array<std::uint32_t, values> counts_{};
    std::size_t total_ = 0;
};

/// Appends deflate blocks to a target that has room for them and eight bytes more.
class BlockWriter {
public:
    explicit BlockWriter(std::byte* target) : target_{target} {}

    /// Bytes as they are.
    void store(std::span<const std::byte> bytes, bool is_last);

    /// Bytes by codes made for their counts, or as they are where that is shorter.
    void code(std::span<const std::byte> bytes, const ByteCounts& counts, bool is_last);

    /// Where to go on after the last block, with whole bytes. Blocks of others may follow if this one was not the last.
    std::byte* finish(bool is_last);

private:
    void put(std::uint64_t bits, unsigned count);
    void align();

    std::byte* target_;
    std::uint64_t bits_ = 0; ///< not yet written, lowest first
    unsigned count_ = 0;     ///< of them; below 8 between two puts
};

} // namespace kob
