// SPDX-License-Identifier: BSD-3-Clause
// What all kinds of work share: texts, digests of what was read, and the two programs that do the work.
#pragma once

#include "measure.hpp"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// A name as blocks hold it: 256 characters, blank padded.
using Text256 = std::array<char, 256>;
Text256 text256(std::string_view text);

/// The numbers and texts that a reader found, in order: two readers of one file must have found the same.
class Digest {
public:
    void add(const void* data, std::size_t bytes);
    void add(const Text256& text) { add(text.data(), text.size()); }
    void add(std::int32_t number) { add(&number, sizeof number); }
    void add(double number) { add(&number, sizeof number); }
    template <class Number> void add(const std::vector<Number>& array)
    {
        add(array.data(), array.size() * sizeof array[0]);
    }
    [[nodiscard]] std::uint64_t value() const { return value_; }

private:
    std::uint64_t value_ = 14695981039346656037U;
};

/// A way to do the work on files of one kind: with our calls, or by hand. A digest is filled if there is one; nobody is
/// timed then. What there is no line for is missing.
template <class Set> struct Program {
    using Task = Work (*)(const Set& set, const std::string& file, Digest* digest);

    Task write = nullptr;
    Task read = nullptr;
    Task list = nullptr;
};

/// The two ways: kob_dp.h, and plain HDF5, as little of it as makes the same file.
template <class Set> struct Programs {
    static const Program<Set> ours;
    static const Program<Set> raw;
};

} // namespace bench
