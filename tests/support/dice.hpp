// SPDX-License-Identifier: BSD-3-Clause
// Random numbers for property tests: the same ones in every run of a test program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace kob_test {

/// Each test file begins its own sequence with a seed of its own.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : generator_{seed} {}

    std::mt19937_64& operator()() { return generator_; }

    /// A number from `low` to `high`, both included.
    std::size_t between(std::size_t low, std::size_t high)
    {
        return std::uniform_int_distribution<std::size_t>{low, high}(generator_);
    }

private:
    std::mt19937_64 generator_;
};

} // namespace kob_test
