// SPDX-License-Identifier: BSD-3-Clause
// What a call on a block did: its status and lines, and every output by name, touched or not.
#pragma once

#include <array>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <ostream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "captured_stream.hpp"
#include "text256.hpp"

namespace kob_test {

/// What a call returned and what it printed to standard error.
struct Outcome {
    std::int32_t status = 0;
    std::string errors;

    friend bool operator==(const Outcome&, const Outcome&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Outcome& o)
    {
        return out << "status " << o.status << "\n" << o.errors;
    }
};

/// Runs `call(&status)`, which has to set the status.
template <class Call> Outcome outcome_of(Call&& call)
{
    std::int32_t status = 77;
    CapturedStream captured;
    call(&status);
    return {status, captured.err()};
}

/// The line of a storage helper. The last number is HDF5's or the offending quantity.
inline std::string read_line(int number, const std::string& item, int type, int size, int quantity, bool attribute)
{
    return "KOB INTERNAL ERROR (" + std::to_string(number) + ") in KOB_H5" + (attribute ? "A" : "D") +
           "read - name, kob_type, data_size, error: " + item + " " + std::to_string(type) + " " +
           std::to_string(size) + " " + std::to_string(quantity) + "\n";
}
inline std::string missing_attribute(const std::string& item, int type, int size)
{
    return read_line(2, item, type, size, -1, true);
}
inline std::string write_line(int number, const std::string& item, int type, int size, int stored, int mode,
                              int quantity)
{
    return "KOB INTERNAL ERROR (" + std::to_string(number) +
           ") in KOB_H5Dwrite - name, kob_type, data_size, kob_size, mode, error: " + item + " " +
           std::to_string(type) + " " + std::to_string(size) + " " + std::to_string(stored) + " " +
           std::to_string(mode) + " " + std::to_string(quantity) + "\n";
}

/// An address that fits every pointer parameter.
class Address {
public:
    explicit Address(const void* address) : address_{address} {}
    template <class T> operator T*() const { return static_cast<T*>(const_cast<void*>(address_)); } // NOLINT

private:
    const void* address_;
};

/// Floating values as the call wants them in memory: doubles, or 4-byte floats that go back at the end of the call.
class Reals {
public:
    Reals(std::vector<double>& values, bool floats) : values_{&values} { start(values, floats); }
    Reals(const std::vector<double>& values, bool floats) { start(values, floats); }
    ~Reals()
    {
        if (values_ != nullptr && !floats_.empty()) values_->assign(floats_.begin(), floats_.end());
    }
    Reals(const Reals&) = delete;
    Reals& operator=(const Reals&) = delete;

    template <class T> operator T*() const { return Address{address_}; } // NOLINT

private:
    void start(const std::vector<double>& values, bool floats)
    {
        if (floats) floats_.assign(values.begin(), values.end());
        address_ = floats ? static_cast<const void*>(floats_.data()) : values.data();
    }

    std::vector<double>* values_ = nullptr;
    std::vector<float> floats_;
    const void* address_ = nullptr;
};

/// What a field of a block belongs to: the section bits, and what within them depends on a switch.
namespace section {
constexpr int attributes = 1;
constexpr int index = 2;
constexpr int identifiers = 4;
constexpr int values = 8;
constexpr int all = 15;
constexpr int filters = 32;      ///< what a reader reports
constexpr int one_frame = 64;    ///< within the identifiers: fswitch 0
constexpr int frames = 128;      ///< within the identifiers: another fswitch
constexpr int combination = 256; ///< within the identifiers: dmpswitch 1
} // namespace section

template <class Block, class T> struct Field {
    const char* name;
    int section;
    T Block::*member;
};
template <class Block, class T> Field(const char*, int, T Block::*) -> Field<Block, T>;

inline void make_untouched(std::int32_t& value) { value = -77; }
inline void make_untouched(std::int64_t& value) { value = -77; }
inline void make_untouched(double& value) { value = -7.5; }
inline void make_untouched(Text256& value) { value = untouched(); }
inline void make_untouched(Text8& value) { value = "########"; }
inline void make_untouched(std::string& value) { value.assign(value.size(), '#'); }
inline void make_untouched(Texts256& value) { value = Texts256(value.size()); }
template <class T> void make_untouched(std::vector<T>& values)
{
    for (auto& value : values) make_untouched(value);
}
template <class T, std::size_t N> void make_untouched(std::array<T, N>& values)
{
    for (auto& value : values) make_untouched(value);
}

/// A block of the same array sizes whose every output holds what no reader fills in by chance.
template <class Block> Block untouched(const Block& like)
{
    Block block = like;
    std::apply([&](const auto&... field) { (make_untouched(block.*(field.member)), ...); }, fields_of(&like));
    return block;
}

/// Takes over the outputs of these sections.
template <class Block> void take(Block& into, const Block& from, int sections)
{
    if constexpr (requires { from.fswitch; }) {
        if ((sections & section::identifiers) != 0) {
            sections |= from.fswitch == 0 ? section::one_frame : section::frames;
            if (from.dmpswitch == 1) sections |= section::combination;
        }
    }
    const auto take_one = [&](const auto& field) {
        if ((field.section & sections) != 0) into.*(field.member) = from.*(field.member);
    };
    std::apply([&](const auto&... field) { (take_one(field), ...); }, fields_of(&from));
}

/// What a reader has to hand back: these sections of what was written, and nothing else touched.
template <class Block> Block expected_from(const Block& written, int sections)
{
    Block block = untouched(written);
    take(block, written, sections);
    return block;
}

template <class T> void print_value(std::ostream& out, const T& value) { out << value; }
template <class T> void print_value(std::ostream& out, const std::vector<T>& values)
{
    for (const auto& value : values) out << value << ' ';
}
template <class T, std::size_t N> void print_value(std::ostream& out, const std::array<T, N>& values)
{
    for (const auto& value : values) out << value << ' ';
}

/// All outputs, one line each: equal texts are equal blocks, and a failing comparison shows the differing lines.
template <class Block> std::string listing(const Block& block)
{
    std::ostringstream out;
    out << std::setprecision(std::numeric_limits<double>::max_digits10);
    const auto print = [&](const auto& field) {
        out << field.name << ": ";
        print_value(out, block.*(field.member));
        out << '\n';
    };
    std::apply([&](const auto&... field) { (print(field), ...); }, fields_of(&block));
    return out.str();
}

/// The values as they come back from a file of 4-byte numbers.
inline std::vector<double> as_floats(std::vector<double> values)
{
    for (auto& value : values) value = static_cast<float>(value);
    return values;
}

} // namespace kob_test
