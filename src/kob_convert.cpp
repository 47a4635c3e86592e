// SPDX-License-Identifier: BSD-3-Clause
// Elements from the caller's type to the stored one and back.
#include "kob_convert.hpp"

#include <algorithm>
#include <array>
#include <cstring>

namespace kob {
namespace {

template <class From, class To> void cast(const std::byte* source, std::size_t elements, std::byte* target)
{
    constexpr std::size_t at_a_time = 256; // typed pieces, so that the bytes need no alignment
    std::array<From, at_a_time> from;
    std::array<To, at_a_time> to;
    for (std::size_t done = 0; done < elements; done += at_a_time) {
        const std::size_t count = std::min(at_a_time, elements - done);
        std::memcpy(from.data(), source + done * sizeof(From), count * sizeof(From));
        std::transform(from.begin(), from.begin() + static_cast<std::ptrdiff_t>(count), to.begin(),
                       [](From value) { return static_cast<To>(value); });
        std::memcpy(target + done * sizeof(To), to.data(), count * sizeof(To));
    }
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
