// SPDX-License-Identifier: BSD-3-Clause
// HDF5's scale-offset: the filter's parameters, and the way to the coder of each number type.
#include "kob_scale_offset_integers.hpp"
#include "kob_scale_offset_reals.hpp"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace kob {

using namespace packing;

namespace {

// Places of the filter's parameters.
constexpr std::size_t parameter_count = 20;
enum Parameter : std::size_t {
    scale_type,
    scale_factor,
    element_count,
    number_class,
    number_size,
    sign,
    order,
    fill_is_defined,
    fill_value
};

/// Calls `use(zero)` with a zero of the numbers' type.
template <class Use> auto with_number(const ScaleOffset& parameters, Use&& use)
{
    const bool is_small = parameters.element_size == 4;
    switch (parameters.kind) {
    case ScaleOffset::Kind::real:
        return is_small ? use(float{}) : use(double{});
    case ScaleOffset::Kind::signed_integer:
        return is_small ? use(std::int32_t{}) : use(std::int64_t{});
    default:
        return is_small ? use(std::uint32_t{}) : use(std::uint64_t{});
    }
}

} // namespace

std::size_t ScaleOffset::bound() const { return header_size + elements * element_size + trailing_size; }

std::optional<ScaleOffset> scale_offset(std::span<const unsigned> parameters, hid_t type, std::size_t chunk_elements)
{
    if (parameters.size() != parameter_count || parameters[element_count] != chunk_elements) {
        return {};
    }
    ScaleOffset result;
    result.elements = chunk_elements;
    result.element_size = H5Tget_size(type);
    result.is_swapped = H5Tget_order(type) != H5Tget_order(H5T_NATIVE_INT);
    result.has_fill = parameters[fill_is_defined] != 0;
    const bool is_real = H5Tget_class(type) == H5T_FLOAT;
    const bool is_signed = !is_real && H5Tget_sign(type) == H5T_SGN_2;
    // HDF5 takes the bytes for the processor's numbers, whatever else the type may be: we don't.
    const auto is_one_of = [type](auto... candidates) { return ((H5Tequal(type, candidates) > 0) || ...); };
    if (is_real ? !is_one_of(H5T_IEEE_F32LE, H5T_IEEE_F32BE, H5T_IEEE_F64LE, H5T_IEEE_F64BE)
                : !is_one_of(H5T_STD_I32LE, H5T_STD_I32BE, H5T_STD_I64LE, H5T_STD_I64BE, H5T_STD_U32LE, H5T_STD_U32BE,
                             H5T_STD_U64LE, H5T_STD_U64BE)) {
        return {};
    }
    if (parameters[number_size] != result.element_size || parameters[number_class] != (is_real ? 1U : 0U) ||
        parameters[order] != (H5Tget_order(type) == H5T_ORDER_BE ? 1U : 0U) ||
        (!is_real && parameters[sign] != (is_signed ? 1U : 0U))) {
        return {};
    }
    if (is_real) {
        if (parameters[scale_type] != H5Z_SO_FLOAT_DSCALE) {
            return {};
        }
        result.digits = static_cast<int>(parameters[scale_factor]);
    } else {
        if (parameters[scale_type] != H5Z_SO_INT || parameters[scale_factor] != H5Z_SO_INT_MINBITS_DEFAULT) {
            return {};
        }
        result.kind = is_signed ? ScaleOffset::Kind::signed_integer : ScaleOffset::Kind::unsigned_integer;
    }
    // The fill value's words, lowest first.
    const std::uint64_t fill = parameters[fill_value] | std::uint64_t{parameters[fill_value + 1]} << 32;
    if (result.element_size == 4) {
        const auto low = static_cast<std::uint32_t>(fill);
        std::memcpy(result.fill.data(), &low, sizeof low);
    } else {
        std::memcpy(result.fill.data(), &fill, sizeof fill);
    }
    return result;
}

std::optional<std::size_t> pack(const ScaleOffset& parameters, const std::byte* plain, std::byte* packed,
                                const std::optional<Minimum>& minimum)
{
    return with_number(parameters, [&](auto zero) {
        using Number = decltype(zero);
        if constexpr (std::is_floating_point_v<Number>) {
            return RealCoder<Number>{parameters}.pack(plain, packed, minimum);
        } else {
            return pack_integers<Number>(parameters, plain, packed);
        }
    });
}

bool unpack(const ScaleOffset& parameters, std::span<const std::byte> packed, std::byte* plain)
{
    const auto header = header_of(parameters, packed);
    if (!header) {
        return false;
    }
    with_number(parameters, [&](auto zero) {
        using Number = decltype(zero);
        if (header->bits == bit_size<Number>) { // as they are, in the byte order of the processor that wrote them
            Piece<Number> piece;
            for (std::size_t first = 0; first < parameters.elements; first += at_a_time) {
                piece.size = std::min(at_a_time, parameters.elements - first);
                std::memcpy(piece.number.data(), packed.data() + header_size + first * sizeof(Number),
                            piece.size * sizeof(Number));
                piece.store(parameters, plain, first);
            }
        } else if constexpr (std::is_floating_point_v<Number>) {
            RealCoder<Number>{parameters}.unpack(packed, *header, plain);
        } else {
            unpack_integers<Number>(parameters, packed, *header, plain);
        }
    });
    return true;
}

std::optional<Minimum> minimum_of(const ScaleOffset& parameters, std::span<const std::byte> packed)
{
    const auto header = header_of(parameters, packed);
    if (!header || header->bits == parameters.element_size * 8) {
        return {};
    }
    Minimum minimum{};
    with_number(parameters, [&](auto zero) {
        const auto bits = static_cast<Bits<decltype(zero)>>(header->minimum);
        std::memcpy(minimum.data(), &bits, sizeof bits);
    });
    return minimum;
}

namespace {

/// Calls `use(coder)` for real numbers; integers need no minimum from outside.
template <class Use> std::optional<Minimum> minimum_by(const ScaleOffset& parameters, Use&& use)
{
    if (parameters.kind != ScaleOffset::Kind::real) {
        return {};
    }
    return parameters.element_size == 4 ? use(RealCoder<float>{parameters}) : use(RealCoder<double>{parameters});
}

} // namespace

std::optional<Minimum> lowered(const ScaleOffset& parameters, const Minimum& minimum, const std::byte* plain)
{
    return minimum_by(parameters, [&](const auto& coder) { return coder.lowered(minimum, plain); });
}

std::optional<Minimum> with_room_below(const ScaleOffset& parameters, const std::byte* plain)
{
    return minimum_by(parameters, [&](const auto& coder) { return coder.with_room_below(plain); });
}

} // namespace kob
