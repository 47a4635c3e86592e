// SPDX-License-Identifier: BSD-3-Clause
// Deflate blocks without repetitions.
#include "kob_literal_block.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

namespace kob {
namespace {

constexpr std::size_t largest_stored = 65535;
constexpr unsigned block_header_bits = 3; // is it the last one, and its kind
constexpr unsigned stored_kind = 0;
constexpr unsigned own_codes_kind = 2;

constexpr std::size_t end_of_block = 256;
constexpr std::size_t literal_codes = 257; // the values and the end
constexpr std::size_t distance_codes = 2;  // none is used; readers old and new take two
constexpr unsigned longest_code = 15;
constexpr unsigned longest_length_code = 7; // of the code that writes the lengths of the codes

/// Lengths of the codes of a prefix code for symbols that occur so often, none longer than a limit.
template <std::size_t Symbols>
std::array<std::uint8_t, Symbols> code_lengths(std::array<std::uint32_t, Symbols> counts, unsigned limit)
{
    std::array<std::uint8_t, Symbols> lengths{};
    for (;;) {
        std::array<std::uint16_t, Symbols> order{};
        std::size_t used = 0;
        for (std::size_t symbol = 0; symbol < Symbols; ++symbol) {
            if (counts[symbol] != 0) {
                order[used++] = static_cast<std::uint16_t>(symbol);
            }
        }
        std::stable_sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(used),
                         [&](std::size_t one, std::size_t other) { return counts[one] < counts[other]; });
        // Two queues, both ascending: the symbols, and the pairs made of the two rarest so far.
        std::array<std::uint64_t, 2 * Symbols> weight{};
        std::array<std::uint16_t, 2 * Symbols> parent{};
        for (std::size_t i = 0; i < used; ++i) {
            weight[i] = counts[order[i]];
        }
        std::size_t symbol = 0;
        std::size_t pair = used;
        const std::size_t root = 2 * used - 2;
        for (std::size_t next = used; next <= root; ++next) {
            for (int child = 0; child < 2; ++child) {
                const bool takes_symbol = symbol < used && (pair >= next || weight[symbol] <= weight[pair]);
                std::size_t& rarest = takes_symbol ? symbol : pair;
                weight[next] += weight[rarest];
                parent[rarest++] = static_cast<std::uint16_t>(next);
            }
        }
        std::array<std::uint8_t, 2 * Symbols> depth{};
        for (std::size_t node = root; node-- > 0;) {
            depth[node] = static_cast<std::uint8_t>(depth[parent[node]] + 1);
        }
        if (*std::max_element(depth.begin(), depth.begin() + static_cast<std::ptrdiff_t>(used)) <= limit) {
            for (std::size_t i = 0; i < used; ++i) {
                lengths[order[i]] = depth[i];
            }
            return lengths;
        }
        // Rare symbols get shorter codes when they are taken for less rare.
        for (std::uint32_t& count : counts) {
            count = count != 0 ? count / 2 + 1 : 0;
        }
    }
}

/// The codes of these lengths, first bit lowest.
template <std::size_t Symbols>
std::array<std::uint16_t, Symbols> codes_of(const std::array<std::uint8_t, Symbols>& lengths)
{
    std::array<std::uint16_t, Symbols> codes{};
    unsigned next = 0;
    for (unsigned length = 1; length <= longest_code; ++length, next <<= 1) {
        for (std::size_t symbol = 0; symbol < Symbols; ++symbol) {
            if (lengths[symbol] == length) {
                unsigned reversed = 0;
                for (unsigned bit = 0; bit < length; ++bit) {
                    reversed |= (next >> bit & 1U) << (length - 1 - bit);
                }
                codes[symbol] = static_cast<std::uint16_t>(reversed);
                ++next;
            }
        }
    }
    return codes;
}

/// One step in writing the lengths: a length, or a repetition with its extra bits.
struct LengthStep {
    std::uint8_t symbol;
    std::uint8_t extra;
    std::uint8_t extra_bits;
};

constexpr std::uint8_t repeat_length = 16;     // the one before, 3 to 6 times
constexpr std::uint8_t repeat_few_zeros = 17;  // 3 to 10
constexpr std::uint8_t repeat_many_zeros = 18; // 11 to 138
constexpr std::size_t length_symbols = 19;
constexpr std::array<std::uint8_t, length_symbols> length_order{16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                                11, 4,  12, 3, 13, 2, 14, 1, 15};

std::vector<LengthStep> steps_of(std::span<const std::uint8_t> lengths)
{
    std::vector<LengthStep> steps;
    for (std::size_t i = 0; i < lengths.size();) {
        const std::uint8_t length = lengths[i];
        std::size_t run = 1;
        while (i + run < lengths.size() && lengths[i + run] == length) {
            ++run;
        }
        i += run;
        if (length != 0) {
            steps.push_back({length, 0, 0});
            --run;
        }
        while (run >= 3) {
            const std::size_t most = length != 0 ? 6 : 138;
            const std::size_t taken = std::min(run, most);
            if (length != 0) {
                steps.push_back({repeat_length, static_cast<std::uint8_t>(taken - 3), 2});
            } else if (taken <= 10) {
                steps.push_back({repeat_few_zeros, static_cast<std::uint8_t>(taken - 3), 3});
            } else {
                steps.push_back({repeat_many_zeros, static_cast<std::uint8_t>(taken - 11), 7});
            }
            run -= taken;
        }
        steps.insert(steps.end(), run, LengthStep{length, 0, 0});
    }
    return steps;
}

} // namespace

ByteCounts::ByteCounts(std::span<const std::byte> bytes) : total_{bytes.size()}
{
    // Four tables, as one would wait for itself where a value follows itself.
    std::array<std::array<std::uint32_t, values>, 4> tables{};
    const std::size_t fours = bytes.size() - bytes.size() % tables.size();
    for (std::size_t i = 0; i < fours; i += tables.size()) {
        for (std::size_t j = 0; j < tables.size(); ++j) {
            ++tables[j][static_cast<std::size_t>(bytes[i + j])];
        }
    }
    for (std::size_t i = fours; i < bytes.size(); ++i) {
        ++tables[0][static_cast<std::size_t>(bytes[i])];
    }
    for (std::size_t value = 0; value < values; ++value) {
        counts_[value] = tables[0][value] + tables[1][value] + tables[2][value] + tables[3][value];
    }
}

void ByteCounts::add(const ByteCounts& other)
{
    for (std::size_t value = 0; value < values; ++value) {
        counts_[value] += other.counts_[value];
    }
    total_ += other.total_;
}

bool ByteCounts::are_even() const
{
    const double even = static_cast<double>(total_) / values;
    double chi_squared = 0;
    for (const std::uint32_t count : counts_) {
        chi_squared += (count - even) * (count - even);
    }
    // That of chance is 255 +- 23. Of 16 KiB up to 900 more save zlib nothing: its codes take more room than that.
    const double saves_nothing = std::max(120.0, 900.0 * static_cast<double>(total_) / 16384);
    return chi_squared <= (values - 1 + saves_nothing) * even;
}

double ByteCounts::coded_bits() const
{
    constexpr double header_bits = 60 * 8; // what the codes' lengths take, mostly
    double bits = header_bits + static_cast<double>(total_) * std::log2(static_cast<double>(total_));
    for (const std::uint32_t count : counts_) {
        if (count > 1) {
            bits -= count * std::log2(static_cast<double>(count));
        }
    }
    return bits;
}

void BlockWriter::put(std::uint64_t bits, unsigned count)
{
    bits_ |= bits << count_;
    count_ += count;
    std::uint64_t word = bits_;
    if constexpr (std::endian::native == std::endian::big) {
        word = __builtin_bswap64(word);
    }
    std::memcpy(target_, &word, sizeof word);
    const unsigned whole = count_ / 8;
    target_ += whole;
    bits_ = whole < sizeof bits_ ? bits_ >> (whole * 8) : 0;
    count_ %= 8;
}

void BlockWriter::align()
{
    if (count_ != 0) {
        put(0, 8 - count_);
    }
}

void BlockWriter::store(std::span<const std::byte> bytes, bool is_last)
{
    do {
        const std::size_t size = std::min(bytes.size(), largest_stored);
        put(stored_kind << 1 | (is_last && size == bytes.size() ? 1U : 0U), block_header_bits);
        align();
        put(size, 16);
        put(~size & 0xffffU, 16);
        target_ = std::copy_n(bytes.begin(), size, target_);
        bytes = bytes.subspan(size);
    } while (!bytes.empty());
}

void BlockWriter::code(std::span<const std::byte> bytes, const ByteCounts& counts, bool is_last)
{
    std::array<std::uint32_t, literal_codes> symbol_counts{};
    for (std::size_t value = 0; value < ByteCounts::values; ++value) {
        symbol_counts[value] = counts[value];
    }
    symbol_counts[end_of_block] = 1;
    const auto lengths = code_lengths(symbol_counts, longest_code);

    std::array<std::uint8_t, literal_codes + distance_codes> all_lengths{};
    std::copy(lengths.begin(), lengths.end(), all_lengths.begin());
    std::fill(all_lengths.begin() + literal_codes, all_lengths.end(), std::uint8_t{1});
    const std::vector<LengthStep> steps = steps_of(all_lengths);
    std::array<std::uint32_t, length_symbols> step_counts{};
    for (const LengthStep& step : steps) {
        ++step_counts[step.symbol];
    }
    const auto step_lengths = code_lengths(step_counts, longest_length_code);

    std::size_t named = length_symbols; // lengths of step codes that are written: not the zeros at the end
    while (named > 4 && step_lengths[length_order[named - 1]] == 0) {
        --named;
    }

    std::size_t bits = block_header_bits + 5 + 5 + 4 + 3 * named + lengths[end_of_block];
    for (const LengthStep& step : steps) {
        bits += step_lengths[step.symbol] + std::size_t{step.extra_bits};
    }
    for (std::size_t value = 0; value < ByteCounts::values; ++value) {
        bits += std::size_t{counts[value]} * lengths[value];
    }
    if (bits >= bytes.size() * 8) {
        store(bytes, is_last);
        return;
    }

    put(own_codes_kind << 1 | (is_last ? 1U : 0U), block_header_bits);
    put(literal_codes - 257, 5);
    put(distance_codes - 1, 5);
    put(named - 4, 4);
    for (std::size_t i = 0; i < named; ++i) {
        put(step_lengths[length_order[i]], 3);
    }
    const auto step_codes = codes_of(step_lengths);
    for (const LengthStep& step : steps) {
        put(step_codes[step.symbol], step_lengths[step.symbol]);
        put(step.extra, step.extra_bits);
    }
    const auto codes = codes_of(lengths);
    std::size_t i = 0;
    for (; i + 3 <= bytes.size(); i += 3) { // three codes and what is left over fit into a word
        std::uint64_t word = 0;
        unsigned count = 0;
        for (std::size_t j = 0; j < 3; ++j) {
            const auto value = static_cast<std::size_t>(bytes[i + j]);
            word |= std::uint64_t{codes[value]} << count;
            count += lengths[value];
        }
        put(word, count);
    }
    for (; i < bytes.size(); ++i) {
        const auto value = static_cast<std::size_t>(bytes[i]);
        put(codes[value], lengths[value]);
    }
    put(codes[end_of_block], lengths[end_of_block]);
}

std::byte* BlockWriter::finish(bool is_last)
{
    if (is_last) {
        align();
    } else if (count_ != 0) {
        store({}, false); // the only way to come to a whole byte
    }
    return target_;
}

} // namespace kob
