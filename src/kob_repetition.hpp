// SPDX-License-Identifier: BSD-3-Clause
// What would it save to name repetitions in some data? In the shuffled low bytes of measured numbers nothing.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kob {

/// Looks through data, one part after the other, for bytes that occurred before, at places that their values choose: so
/// a repetition is seen at the same places as what it repeats.
class Repetitions {
public:
    explicit Repetitions(std::span<const std::byte> bytes) : bytes_{bytes} {}

    /// Bits for each byte from `first` to `end` that deflate would save by naming repetitions, where it spends
    /// `literal_bits` on a byte otherwise. An estimate; all of them where too little was seen for one.
    double saved_bits(std::size_t first, std::size_t end, double literal_bits) noexcept;

private:
    static constexpr unsigned table_bits = 11;

    struct Seen {
        std::uint32_t word = 0;
        std::uint32_t position = 0x80000000U; // far away from every other
    };

    [[nodiscard]] std::size_t length(std::size_t place, std::size_t distance) const;

    std::span<const std::byte> bytes_;
    std::array<Seen, std::size_t{1} << table_bits> seen_{};
};

} // namespace kob
