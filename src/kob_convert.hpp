// SPDX-License-Identifier: BSD-3-Clause
// Elements from the caller's type to the stored one and back, as HDF5 converts them.
#pragma once

#include <hdf5.h>

#include <cstddef>

namespace kob {

/// Turns elements of one type into elements of another.
class Converter {
public:
    Converter(hid_t from, hid_t to);

    [[nodiscard]] bool is_copy() const { return way_ == Way::copy; }
    /// From native floating numbers to those of the other size?
    [[nodiscard]] bool resizes_reals() const { return way_ == Way::narrow || way_ == Way::widen; }

    /// Source and target are apart. False when HDF5 cannot convert.
    bool convert(const std::byte* source, std::size_t elements, std::byte* target) const;
    /// For a target that is larger than the processor's cache.
    bool convert_past_cache(const std::byte* source, std::size_t elements, std::byte* target) const;

private:
    enum class Way { copy, narrow, widen, general };

    [[nodiscard]] bool convert_by_hdf5(const std::byte* source, std::size_t elements, std::byte* target) const;

    hid_t from_;
    hid_t to_;
    std::size_t from_size_;
    std::size_t to_size_;
    Way way_ = Way::general;
};

} // namespace kob
