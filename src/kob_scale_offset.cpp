// SPDX-License-Identifier: BSD-3-Clause
// HDF5's scale-offset, word by word instead of bit by bit, and checked by unpacking.
#include "kob_scale_offset.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace kob {
namespace {

// A packed chunk: the bits of a number (4 bytes), 8, the minimum (8 bytes), 8 zeros, the numbers, highest bit first,
// and a byte more than is needed. Header fields are little-endian.
constexpr std::size_t minimum_offset = 5;
constexpr std::size_t header_size = 21;
constexpr std::size_t trailing_size = 1;

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

constexpr std::size_t at_a_time = 256; // numbers that are worked on together, in the first-level cache

template <class Number> using Bits = std::conditional_t<sizeof(Number) == 4, std::uint32_t, std::uint64_t>;
template <class Number> constexpr unsigned bit_size = sizeof(Number) * 8;

std::uint64_t swapped(std::uint64_t value) { return __builtin_bswap64(value); }
std::uint32_t swapped(std::uint32_t value) { return __builtin_bswap32(value); }

template <class Number> struct Piece {
    std::array<Number, at_a_time> number;
    std::size_t size = 0;

    [[nodiscard]] auto begin() const { return number.begin(); }
    [[nodiscard]] auto end() const { return number.begin() + static_cast<std::ptrdiff_t>(size); }

    void swap_bytes()
    {
        for (std::size_t i = 0; i < size; ++i) {
            number[i] = std::bit_cast<Number>(swapped(std::bit_cast<Bits<Number>>(number[i])));
        }
    }
    void load(const ScaleOffset& parameters, const std::byte* plain, std::size_t first)
    {
        size = std::min(at_a_time, parameters.elements - first);
        std::memcpy(number.data(), plain + first * sizeof(Number), size * sizeof(Number));
        if (parameters.is_swapped) {
            swap_bytes();
        }
    }
    void store(const ScaleOffset& parameters, std::byte* plain, std::size_t first)
    {
        if (parameters.is_swapped) {
            swap_bytes();
        }
        std::memcpy(plain + first * sizeof(Number), number.data(), size * sizeof(Number));
    }
};

template <class Number> Number number_in(const std::array<std::byte, 8>& bytes)
{
    Number number{};
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
}

/// The smallest number of bits that hold `codes` different codes.
unsigned bits_for(std::uint64_t codes) { return static_cast<unsigned>(std::bit_width(codes - 1)); }

std::uint64_t ones(unsigned bits) { return (std::uint64_t{1} << bits) - 1; }

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

void put_header(std::byte* packed, unsigned bits, std::uint64_t minimum)
{
    std::fill_n(packed, header_size, std::byte{0});
    packed[0] = static_cast<std::byte>(bits);
    packed[4] = std::byte{sizeof minimum};
    for (std::size_t i = 0; i < sizeof minimum; ++i) {
        packed[minimum_offset + i] = static_cast<std::byte>(minimum >> (8 * i));
    }
}

/// Bytes of a packed chunk, the trailing one included.
std::size_t packed_size(const ScaleOffset& parameters, unsigned bits)
{
    return header_size + parameters.elements * bits / 8 + trailing_size;
}

/// Bytes that the packed numbers alone take.
std::size_t needed_size(const ScaleOffset& parameters, unsigned bits) { return (parameters.elements * bits + 7) / 8; }

struct Header {
    std::uint32_t bits = 0;
    std::uint64_t minimum = 0;
};

/// Nothing when the chunk is shorter than its header says.
std::optional<Header> header_of(const ScaleOffset& parameters, std::span<const std::byte> packed)
{
    if (packed.size() < header_size) {
        return {};
    }
    Header header;
    for (std::size_t i = 0; i < sizeof header.bits; ++i) {
        header.bits |= static_cast<std::uint32_t>(packed[i]) << (8 * i);
    }
    const std::size_t size = std::min<std::size_t>(sizeof header.minimum, static_cast<std::size_t>(packed[4]));
    for (std::size_t i = 0; i < size; ++i) {
        header.minimum |= static_cast<std::uint64_t>(packed[minimum_offset + i]) << (8 * i);
    }
    if (header.bits > parameters.element_size * 8 ||
        packed.size() - header_size < needed_size(parameters, header.bits)) {
        return {};
    }
    return header;
}

/// Packs what `codes(piece, code)` makes of each piece, until it says false; tells the bytes of the chunk.
template <class Number, class Codes>
std::optional<std::size_t> pack_codes(const ScaleOffset& parameters, const std::byte* plain, std::byte* packed,
                                      unsigned bits, Codes&& codes)
{
    BitWriter writer{packed + header_size, bits};
    Piece<Number> piece;
    std::array<std::uint64_t, at_a_time> code;
    for (std::size_t first = 0; first < parameters.elements; first += at_a_time) {
        piece.load(parameters, plain, first);
        if (!codes(piece, code)) {
            return {};
        }
        if (bits != 0) {
            for (std::size_t i = 0; i < piece.size; ++i) {
                writer.put(code[i]);
            }
        }
    }
    const std::size_t size = packed_size(parameters, bits);
    std::byte* const end = writer.finish();
    std::fill(end, packed + size, std::byte{0});
    return size;
}

/// Unpacks what `numbers(code, piece)` makes of the codes.
template <class Number, class Numbers>
void unpack_codes(const ScaleOffset& parameters, std::span<const std::byte> packed, unsigned bits, std::byte* plain,
                  Numbers&& numbers)
{
    BitReader reader{packed.subspan(header_size), bits};
    Piece<Number> piece;
    std::array<std::uint64_t, at_a_time> code;
    for (std::size_t first = 0; first < parameters.elements; first += at_a_time) {
        piece.size = std::min(at_a_time, parameters.elements - first);
        for (std::size_t i = 0; i < piece.size; ++i) {
            code[i] = reader.get();
        }
        numbers(code, piece);
        piece.store(parameters, plain, first);
    }
}

// Integers

template <class Number>
std::optional<std::size_t> pack_integers(const ScaleOffset& parameters, const std::byte* plain, std::byte* packed)
{
    using Unsigned = Bits<Number>;
    const auto fill = number_in<Number>(parameters.fill);
    Number least = std::numeric_limits<Number>::max();
    Number most = std::numeric_limits<Number>::lowest();
    Piece<Number> piece;
    for (std::size_t first = 0; first < parameters.elements; first += at_a_time) {
        piece.load(parameters, plain, first);
        for (const Number number : piece) {
            if (!parameters.has_fill || number != fill) {
                least = std::min(least, number);
                most = std::max(most, number);
            }
        }
    }
    if (least > most) { // nothing but the fill value
        least = most = 0;
    }
    const auto range = static_cast<Unsigned>(static_cast<Unsigned>(most) - static_cast<Unsigned>(least));
    // Codes for the numbers and one for the fill value; HDF5 cannot read back codes of all bits.
    const std::uint64_t fill_codes = parameters.has_fill ? 1 : 0;
    if (range > ones(bit_size<Number> - 1) - fill_codes) {
        return {};
    }
    const unsigned bits = bits_for(std::uint64_t{range} + 1 + fill_codes);
    put_header(packed, bits, static_cast<std::uint64_t>(least));
    return pack_codes<Number>(parameters, plain, packed, bits, [&](const Piece<Number>& numbers, auto& code) {
        for (std::size_t i = 0; i < numbers.size; ++i) {
            const Number number = numbers.number[i];
            code[i] = parameters.has_fill && number == fill
                          ? ones(bits)
                          : static_cast<Unsigned>(static_cast<Unsigned>(number) - static_cast<Unsigned>(least));
        }
        return true;
    });
}

template <class Number>
void unpack_integers(const ScaleOffset& parameters, std::span<const std::byte> packed, const Header& header,
                     std::byte* plain)
{
    using Unsigned = Bits<Number>;
    const auto fill = number_in<Number>(parameters.fill);
    const auto least = static_cast<Unsigned>(header.minimum);
    unpack_codes<Number>(parameters, packed, header.bits, plain, [&](const auto& code, Piece<Number>& numbers) {
        for (std::size_t i = 0; i < numbers.size; ++i) {
            numbers.number[i] = parameters.has_fill && code[i] == ones(header.bits)
                                    ? fill
                                    : static_cast<Number>(static_cast<Unsigned>(code[i] + least));
        }
    });
}

// Real numbers

/// What the promise and HDF5's arithmetic need to know of a chunk.
template <class Real> struct RealRange {
    Real least = 0;
    Real most = 0;
    Real largest_magnitude = 0;
    bool is_regular = true; ///< finite numbers only, and HDF5 is of one mind about those next to the fill value
};

template <class Real> class RealCoder {
public:
    explicit RealCoder(const ScaleOffset& parameters)
        : parameters_{parameters}, fill_{number_in<Real>(parameters.fill)}, scale_{std::pow(
                                                                                static_cast<Real>(10),
                                                                                static_cast<Real>(parameters.digits))},
          near_fill_{std::pow(static_cast<Real>(10), -static_cast<Real>(parameters.digits))},
          last_digit_{std::pow(10.0, -static_cast<double>(parameters.digits))}
    {
    }

    std::optional<std::size_t> pack(const std::byte* plain, std::byte* packed,
                                    const std::optional<Minimum>& minimum) const
    {
        RealRange<Real> range = range_of(plain);
        if (minimum) {
            const auto given = number_in<Real>(*minimum);
            range.is_regular = range.is_regular && std::isfinite(given) && given <= range.least;
            range.least = given;
        }
        const Real span = range.most * scale_ - range.least * scale_;
        constexpr auto limit = static_cast<Real>(std::uint64_t{1} << (bit_size<Real> - 1));
        if (!range.is_regular || !(span >= 0 && span < limit)) {
            return {};
        }
        const std::uint64_t codes = static_cast<std::uint64_t>(std::llround(span)) + 1 + (parameters_.has_fill ? 1 : 0);
        const unsigned bits = bits_for(codes);
        if (bits >= bit_size<Real>) { // HDF5 cannot read that back
            return {};
        }
        put_header(packed, bits, std::bit_cast<Bits<Real>>(range.least));
        const double unit = range.largest_magnitude - std::nextafter(range.largest_magnitude, Real{0});
        const auto most_code = static_cast<std::int64_t>(codes - 1 - (parameters_.has_fill ? 1 : 0));
        const Real scaled_least = range.least * scale_;
        return pack_codes<Real>(parameters_, plain, packed, bits, [&](const Piece<Real>& numbers, auto& code) {
            for (std::size_t i = 0; i < numbers.size; ++i) {
                const Real number = numbers.number[i];
                if (is_fill(number)) {
                    code[i] = ones(bits);
                    if (distance(fill_, number) > last_digit_ + unit) {
                        return false;
                    }
                    continue;
                }
                const Real scaled = number * scale_ - scaled_least;
                const auto whole = static_cast<std::int64_t>(scaled);
                // Rounded as llround does, which is no single instruction.
                std::int64_t rounded = whole + (scaled - static_cast<Real>(whole) >= Real{0.5} ? 1 : 0);
                const double allowed = last_digit_ / 2 + unit;
                if (distance(number_of(rounded, range.least), number) > allowed) {
                    // Between two codes HDF5's arithmetic may take the one that is farther away.
                    rounded = nearest(rounded, most_code, number, range.least);
                    if (distance(number_of(rounded, range.least), number) > allowed) {
                        return false;
                    }
                }
                code[i] = static_cast<std::uint64_t>(rounded);
            }
            return true;
        });
    }

    /// From where to count so that old numbers may come back as they were, and new ones fit as well.
    [[nodiscard]] Minimum lowered(const Minimum& minimum, const std::byte* plain) const
    {
        const auto present = number_in<Real>(minimum);
        const Real least = range_of(plain).least;
        return least >= present ? minimum : as_minimum(present - std::ceil((present - least) * scale_ + 1) / scale_);
    }

    /// From where to count so that numbers as far below the smallest as the largest is above it still fit.
    [[nodiscard]] Minimum with_room_below(const std::byte* plain) const
    {
        const RealRange<Real> range = range_of(plain);
        return as_minimum(range.least - (range.most - range.least));
    }

    void unpack(std::span<const std::byte> packed, const Header& header, std::byte* plain) const
    {
        const auto least = std::bit_cast<Real>(static_cast<Bits<Real>>(header.minimum));
        unpack_codes<Real>(parameters_, packed, header.bits, plain, [&](const auto& code, Piece<Real>& numbers) {
            for (std::size_t i = 0; i < numbers.size; ++i) {
                numbers.number[i] = parameters_.has_fill && code[i] == ones(header.bits)
                                        ? fill_
                                        : number_of(static_cast<std::int64_t>(code[i]), least);
            }
        });
    }

private:
    static Minimum as_minimum(Real number)
    {
        Minimum minimum{};
        std::memcpy(minimum.data(), &number, sizeof number);
        return minimum;
    }

    static double distance(Real one, Real other)
    {
        return std::abs(static_cast<double>(one) - static_cast<double>(other));
    }

    /// What HDF5 makes of a code.
    [[nodiscard]] Real number_of(std::int64_t code, Real least) const
    {
        return static_cast<Real>(code) / scale_ + least;
    }

    /// The code next to this one, or this one, that comes back nearest to a number.
    [[nodiscard]] std::int64_t nearest(std::int64_t code, std::int64_t most_code, Real number, Real least) const
    {
        std::int64_t best = code;
        for (const std::int64_t other : {std::max<std::int64_t>(code - 1, 0), std::min(code + 1, most_code)}) {
            if (distance(number_of(other, least), number) < distance(number_of(best, least), number)) {
                best = other;
            }
        }
        return best;
    }

    [[nodiscard]] bool is_fill(Real number) const
    {
        return parameters_.has_fill && std::abs(number - fill_) < near_fill_;
    }

    [[nodiscard]] RealRange<Real> range_of(const std::byte* plain) const
    {
        RealRange<Real> range;
        range.least = std::numeric_limits<Real>::infinity();
        range.most = -range.least;
        Piece<Real> piece;
        for (std::size_t first = 0; first < parameters_.elements; first += at_a_time) {
            piece.load(parameters_, plain, first);
            for (const Real number : piece) {
                range.is_regular = range.is_regular && std::isfinite(number);
                range.largest_magnitude = std::max(range.largest_magnitude, std::abs(number));
                const bool fills = is_fill(number);
                // HDF5 asks this question in two precisions.
                range.is_regular =
                    range.is_regular &&
                    fills == (parameters_.has_fill && std::abs(static_cast<double>(number - fill_)) < last_digit_);
                if (!fills) {
                    range.least = std::min(range.least, number);
                    range.most = std::max(range.most, number);
                }
            }
        }
        if (range.least > range.most) { // nothing but the fill value
            range.least = range.most = 0;
        }
        return range;
    }

    const ScaleOffset& parameters_;
    Real fill_;
    Real scale_;
    Real near_fill_;
    double last_digit_;
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
