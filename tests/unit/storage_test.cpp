// SPDX-License-Identifier: BSD-3-Clause
// The storage helpers: types, layouts, chunks, filters, the three access modes, and every error that can be provoked.
#include "kob_storage.hpp"

#include <gtest/gtest.h>
#include <kob_dp.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <numeric>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "support/captured_stream.hpp"
#include "support/file_bytes.hpp"
#include "support/file_size_limit.hpp"
#include "support/hdf5_file.hpp"
#include "support/layout.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;

namespace {

constexpr std::int32_t text = 1;
constexpr std::int32_t integer = 2;
constexpr std::int32_t real = 3;
constexpr hsize_t unlimited = H5S_UNLIMITED;
constexpr std::int32_t all_filters = 255;

/// What a helper returned and what it printed, with "*" for the last value of each line (an HDF5 result, mostly).
struct Outcome {
    std::int32_t code = 0;
    std::string lines;

    friend bool operator==(const Outcome&, const Outcome&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Outcome& o) { return out << o.code << "\n" << o.lines; }
};
const Outcome fine{};

/// The lines with "*" for the last value of those that name an "error".
std::string without_last_values(const std::string& lines)
{
    std::istringstream in{lines};
    std::string all;
    for (std::string line; std::getline(in, line);) {
        if (line.find(", error: ") != std::string::npos) line.replace(line.rfind(' ') + 1, std::string::npos, "*");
        all += line + "\n";
    }
    return all;
}

template <class Call> Outcome outcome_of(Call&& call)
{
    CapturedStream captured;
    const std::int32_t code = call();
    EXPECT_EQ(captured.out(), "");
    return {code, without_last_values(captured.err())};
}

std::string type_line(int n, std::int32_t type, std::size_t size)
{
    return "KOB INTERNAL ERROR (" + std::to_string(n) +
           ") in KOB_H5gettype - kob_type, data_size: " + std::to_string(type) + " " + std::to_string(size) + "\n";
}

struct AttributeCall {
    const char* name = "a";
    std::int32_t type = integer;
    std::size_t data_size = 4;
    std::size_t kob_size = 4;
    std::vector<hsize_t> dims = {};

    Outcome write(hid_t at, const void* data) const
    {
        return outcome_of([&] {
            return kob::KOB_H5Awrite(name, data, type, data_size, kob_size, dims.data(),
                                     static_cast<std::int32_t>(dims.size()), at);
        });
    }
    Outcome read(hid_t at, void* data, std::uint64_t* stored_size = nullptr) const
    {
        return outcome_of([&] {
            return kob::KOB_H5Aread(name, data, type, data_size, dims.data(), static_cast<std::int32_t>(dims.size()),
                                    at, stored_size);
        });
    }
    std::string write_line(int n) const
    {
        return "KOB INTERNAL ERROR (" + std::to_string(n) +
               ") in KOB_H5Awrite - name, kob_type, data_size, kob_size, error: " + name + " " + std::to_string(type) +
               " " + std::to_string(data_size) + " " + std::to_string(kob_size) + " *\n";
    }
    std::string read_line(int n) const
    {
        return "KOB INTERNAL ERROR (" + std::to_string(n) +
               ") in KOB_H5Aread - name, kob_type, data_size, error: " + name + " " + std::to_string(type) + " " +
               std::to_string(data_size) + " *\n";
    }
};

struct DatasetCall {
    const char* name = "a";
    std::int32_t type = integer;
    std::size_t data_size = 4;
    std::size_t kob_size = 4;
    std::vector<hsize_t> dims = {};
    std::int32_t mode = 0;
    std::vector<std::int64_t> count = {};
    std::vector<std::int64_t> start = {};
    std::int32_t flags = 0;
    std::array<std::int32_t, 2> params = {3, 6};
    static inline const hsize_t no_extent = 1;

    const hsize_t* extents() const { return dims.empty() ? &no_extent : dims.data(); }
    std::int32_t rank() const { return static_cast<std::int32_t>(dims.size()); }
    Outcome write(hid_t at, const void* data) const
    {
        return outcome_of([&] {
            return kob::KOB_H5Dwrite(name, data, type, data_size, kob_size, extents(), rank(), count.data(),
                                     start.data(), mode, at, flags, params.data());
        });
    }
    Outcome read(hid_t at, void* data) const
    {
        std::int32_t found_flags = -7;
        std::array<std::int32_t, 2> found_params{-7, -7};
        std::uint64_t stored_size = 0;
        return outcome_of([&] {
            return kob::KOB_H5Dread(name, data, type, data_size, extents(), rank(), count.data(), start.data(), mode,
                                    at, &found_flags, found_params.data(), &stored_size);
        });
    }
    std::string write_line(int n) const
    {
        return "KOB INTERNAL ERROR (" + std::to_string(n) +
               ") in KOB_H5Dwrite - name, kob_type, data_size, kob_size, mode, error: " + name + " " +
               std::to_string(type) + " " + std::to_string(data_size) + " " + std::to_string(kob_size) + " " +
               std::to_string(mode) + " *\n";
    }
    std::string read_line(int n) const
    {
        return "KOB INTERNAL ERROR (" + std::to_string(n) +
               ") in KOB_H5Dread - name, kob_type, data_size, error: " + name + " " + std::to_string(type) + " " +
               std::to_string(data_size) + " *\n";
    }
};

std::vector<std::int32_t> numbers(std::size_t count, std::int32_t first = 1)
{
    std::vector<std::int32_t> values(count);
    std::iota(values.begin(), values.end(), first);
    return values;
}

using Ints = std::vector<std::int64_t>;
using Reals = std::vector<double>;
using Extents = std::vector<hsize_t>;

/// An open file of its own; HDF5's own error stack stays quiet, as inside an entry point.
class Storage : public testing::Test {
protected:
    Storage()
    {
        H5Eget_auto2(H5E_DEFAULT, &printer_, &printer_data_);
        H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
        file_.emplace(create_file(temp_.path()));
    }
    ~Storage() override { H5Eset_auto2(H5E_DEFAULT, printer_, printer_data_); }

    hid_t at() const { return *file_; }
    void reopen_read_only()
    {
        file_.reset();
        file_.emplace(open_file(temp_.path(), H5F_ACC_RDONLY));
    }
    /// Gives every number whose type is described by `these` bytes the description `others`.
    int damage(const std::string& these, const std::string& others)
    {
        file_.reset();
        const int found = damage_bytes(temp_.path(), these, others);
        file_.emplace(open_file(temp_.path(), H5F_ACC_RDWR));
        return found;
    }
    std::string listing() const { return layout_of(at()); }

private:
    TempFile temp_;
    std::optional<Hid> file_;
    H5E_auto2_t printer_ = nullptr;
    void* printer_data_ = nullptr;
};

class StorageTypes : public Storage {};
class DamagedTypes : public Storage {};
class AttributeWriter : public Storage {};
class AttributeReader : public Storage {};
class DatasetWriter : public Storage {
protected:
    void SetUp() override { KOB_GET_CHUNK_SIZE(&chunk_size_); }
    void TearDown() override { KOB_SET_CHUNK_SIZE(&chunk_size_); }

private:
    std::int32_t chunk_size_ = 1;
};
class DatasetReader : public Storage {};

} // namespace

// Types and fill values

namespace {

/// A floating type as the file format describes it: the class with its version, bits of which the third byte is the
/// sign's place, the size; then offset and precision; places and sizes of exponent and mantissa; the exponent's bias.
struct RealType {
    unsigned char sign;
    std::uint16_t size;
    std::uint16_t offset;
    std::uint16_t precision;
    unsigned char exponent;
    unsigned char exponent_size;
    unsigned char mantissa;
    unsigned char mantissa_size;
    std::uint16_t bias;

    std::string bytes() const
    {
        const auto low = [](std::uint16_t number) { return static_cast<unsigned char>(number % 256); };
        const auto high = [](std::uint16_t number) { return static_cast<unsigned char>(number / 256); };
        const std::array<unsigned char, 20> all{0x11,
                                                0x20,
                                                sign,
                                                0,
                                                low(size),
                                                high(size),
                                                0,
                                                0,
                                                low(offset),
                                                high(offset),
                                                low(precision),
                                                high(precision),
                                                exponent,
                                                exponent_size,
                                                mantissa,
                                                mantissa_size,
                                                low(bias),
                                                high(bias),
                                                0,
                                                0};
        return {all.begin(), all.end()};
    }
};
constexpr RealType stored_double{63, 8, 0, 64, 52, 11, 0, 52, 1023};

struct DamagedReal {
    const char* damage;
    RealType type;
};

} // namespace

TEST_F(DamagedTypes, A_floating_number_with_parts_outside_of_its_element_is_of_no_class)
{
    // As floats they are converted, which is where harm would be done.
    const std::vector<float> given(100, 0.5F);
    const std::vector<float> others(100, 0.25F);
    const std::vector<AttributeCall> attributes{{"single", real, 4, 8}, {"several", real, 4, 8, {3}}};
    const std::vector<DatasetCall> datasets{
        {.name = "compact", .type = real, .kob_size = 8, .dims = {100}},
        {.name = "packed", .type = real, .kob_size = 8, .dims = {100}, .flags = 2 | 16},
        {"grown", real, 4, 8, {unlimited, 50}, 1, {2, 50}, {0, 0}},
    };
    for (const auto& call : attributes) {
        ASSERT_EQ(call.write(at(), given.data()), fine);
    }
    for (const auto& call : datasets) {
        ASSERT_EQ(call.write(at(), given.data()), fine);
    }
    for (const auto& row : {DamagedReal{"longer than its element", {63, 8, 0, 0x1040, 52, 11, 0, 52, 1023}},
                            DamagedReal{"ends outside", {63, 8, 1, 64, 51, 11, 1, 50, 1023}},
                            DamagedReal{"begins outside", {63, 8, 0xff00, 64, 52, 11, 0, 52, 1023}},
                            DamagedReal{"begins in its mantissa", {63, 8, 16, 48, 52, 11, 0, 52, 1023}},
                            DamagedReal{"shorter than its parts", {63, 8, 0, 32, 52, 11, 0, 52, 1023}},
                            DamagedReal{"mantissa above all", {0, 8, 0, 64, 1, 11, 12, 52, 1023}}}) {
        SCOPED_TRACE(row.damage);
        ASSERT_EQ(damage(stored_double.bytes(), row.type.bytes()), 5);
        std::vector<float> found(100, 7);
        for (const auto& call : attributes) {
            EXPECT_EQ(call.read(at(), found.data()), (Outcome{-4003, call.read_line(3)}));
            EXPECT_EQ(call.write(at(), others.data()), (Outcome{-1010, call.write_line(10)}));
        }
        for (const auto& call : datasets) {
            EXPECT_EQ(call.read(at(), found.data()), (Outcome{-6003, call.read_line(3)}));
            EXPECT_EQ(call.write(at(), others.data()), (Outcome{-3010, call.write_line(10)}));
        }
        EXPECT_EQ(found, std::vector<float>(100, 7));

        ASSERT_EQ(damage(row.type.bytes(), stored_double.bytes()), 5);
        for (const char* name : {"compact", "packed", "grown"}) {
            EXPECT_EQ(stored_reals(at(), name), Reals(100, 0.5)) << name;
        }
        EXPECT_EQ(stored_reals(at(), "several"), Reals(3, 0.5));
    }
}

TEST_F(DamagedTypes, What_HDF5_itself_refuses_cannot_be_read_or_overwritten)
{
    const std::vector<float> given(100, 0.5F);
    const AttributeCall attribute{"a", real, 4, 8};
    const DatasetCall dataset{.name = "d", .type = real, .kob_size = 8, .dims = {100}};
    ASSERT_EQ(attribute.write(at(), given.data()), fine);
    ASSERT_EQ(dataset.write(at(), given.data()), fine);
    for (const auto& row : {DamagedReal{"sign outside", {64, 8, 0, 64, 52, 11, 0, 52, 1023}},
                            DamagedReal{"exponent outside", {63, 8, 0, 64, 64, 11, 0, 52, 1023}},
                            DamagedReal{"exponent ends outside", {51, 8, 0, 64, 52, 13, 0, 51, 1023}},
                            DamagedReal{"mantissa outside", {63, 8, 0, 64, 52, 11, 70, 52, 1023}},
                            DamagedReal{"exponent in the mantissa", {63, 8, 0, 64, 40, 11, 0, 52, 1023}},
                            DamagedReal{"sign in the exponent", {60, 8, 0, 64, 52, 11, 0, 52, 1023}}}) {
        SCOPED_TRACE(row.damage);
        ASSERT_EQ(damage(stored_double.bytes(), row.type.bytes()), 2);
        float found = 7;
        EXPECT_EQ(attribute.read(at(), &found), (Outcome{-4002, attribute.read_line(2)}));
        EXPECT_EQ(attribute.write(at(), given.data()), (Outcome{-1100, attribute.write_line(100)}));
        EXPECT_EQ(dataset.read(at(), &found), (Outcome{-6003, dataset.read_line(3)}));
        EXPECT_EQ(dataset.write(at(), given.data()), (Outcome{-3010, dataset.write_line(10)}));
        EXPECT_EQ(found, 7);
        ASSERT_EQ(damage(row.type.bytes(), stored_double.bytes()), 2);
    }
}

TEST_F(DamagedTypes, So_are_integers_outside_of_their_element)
{
    const auto given = numbers(100);
    const DatasetCall dataset{.name = "d", .kob_size = 8, .dims = {100}};
    ASSERT_EQ(dataset.write(at(), given.data()), fine);
    // Class, sign, size; then offset and precision.
    const std::string sound{"\x10\x08\0\0\x08\0\0\0\0\0\x40\0", 12};
    for (const std::string& damaged :
         {std::string{"\x10\x08\0\0\x08\0\0\0\0\0\x41\0", 12}, std::string{"\x10\x08\0\0\x08\0\0\0\x01\0\x40\0", 12},
          std::string{"\x10\x08\0\0\x08\0\0\0\x40\0\x40\0", 12}}) {
        ASSERT_EQ(damage(sound, damaged), 1);
        auto found = numbers(100, 7);
        EXPECT_EQ(dataset.read(at(), found.data()), (Outcome{-6003, dataset.read_line(3)}));
        EXPECT_EQ(dataset.write(at(), given.data()), (Outcome{-3010, dataset.write_line(10)}));
        EXPECT_EQ(found, numbers(100, 7));
        ASSERT_EQ(damage(damaged, sound), 1);
    }
}

TEST_F(DamagedTypes, A_number_that_is_too_large_to_be_converted_is_of_no_class)
{
    const std::vector<float> given(100, 0.5F);
    const DatasetCall packed{.name = "p", .type = real, .kob_size = 8, .dims = {100}, .flags = 2};
    const DatasetCall plain{.name = "d", .type = real, .kob_size = 8, .dims = {1000}};
    ASSERT_EQ(packed.write(at(), given.data()), fine);
    ASSERT_EQ(plain.write(at(), std::vector<float>(1000, 0.5F).data()), fine);
    for (const std::uint16_t size : {65, 5000}) {
        SCOPED_TRACE(size);
        const RealType large{63, size, 0, static_cast<std::uint16_t>(8 * size), 52, 11, 0, 52, 1023};
        ASSERT_EQ(damage(stored_double.bytes(), large.bytes()), 2);
        std::vector<float> found(1000, 7);
        for (const auto& call : {packed, plain}) {
            EXPECT_EQ(call.read(at(), found.data()), (Outcome{-6003, call.read_line(3)}));
            EXPECT_EQ(call.write(at(), found.data()), (Outcome{-3010, call.write_line(10)}));
        }
        EXPECT_EQ(found, std::vector<float>(1000, 7));
        ASSERT_EQ(damage(large.bytes(), stored_double.bytes()), 2);
    }

    const Hid largest{H5Tcopy(H5T_IEEE_F64LE)};
    ASSERT_GE(H5Tset_size(largest, 64), 0);
    ASSERT_GE(H5Tset_precision(largest, 512), 0);
    const std::vector<double> values(10, 0.5);
    std::vector<double> found(10, 7);
    put_dataset(at(), "l", largest, {10}, H5T_NATIVE_DOUBLE, values.data());
    EXPECT_EQ((DatasetCall{"l", real, 8, 8, {10}}.read(at(), found.data())), fine);
    EXPECT_EQ(found, values);
}

TEST_F(DamagedTypes, Bytes_in_VAX_order_come_in_pairs)
{
    const Hid odd{H5Tcopy(H5T_VAX_F32)};
    ASSERT_GE(H5Tset_size(odd, 5), 0);
    put_dataset(at(), "a", odd, {4});
    std::vector<double> found(4, 7);
    const DatasetCall call{"a", real, 8, 8, {4}};
    EXPECT_EQ(call.read(at(), found.data()), (Outcome{-6003, call.read_line(3)}));
    EXPECT_EQ(call.write(at(), found.data()), (Outcome{-3010, call.write_line(10)}));
    EXPECT_EQ(found, Reals(4, 7));
}

TEST_F(StorageTypes, Floating_numbers_of_every_usual_format_are_read_and_overwritten)
{
    const Hid half{H5Tcopy(H5T_IEEE_F32LE)}; // the five-bit exponent and the mantissa of ten bits behind it
    ASSERT_GE(H5Tset_fields(half, 15, 10, 5, 0, 10), 0);
    ASSERT_GE(H5Tset_size(half, 2), 0);
    ASSERT_GE(H5Tset_ebias(half, 15), 0);
    const Hid brain{H5Tcopy(H5T_IEEE_F32LE)}; // the upper half of a float
    ASSERT_GE(H5Tset_fields(brain, 15, 7, 8, 0, 7), 0);
    ASSERT_GE(H5Tset_size(brain, 2), 0);
    const Hid shifted{H5Tcopy(H5T_IEEE_F32BE)}; // in the middle of eight bytes
    ASSERT_GE(H5Tset_size(shifted, 8), 0);
    ASSERT_GE(H5Tset_offset(shifted, 16), 0);
    struct Row {
        const char* name;
        hid_t type;
    };
    for (const auto& row :
         {Row{"F32LE", H5T_IEEE_F32LE}, Row{"F32BE", H5T_IEEE_F32BE}, Row{"F64LE", H5T_IEEE_F64LE},
          Row{"F64BE", H5T_IEEE_F64BE}, Row{"VAX 4", H5T_VAX_F32}, Row{"VAX 8", H5T_VAX_F64},
          Row{"long double", H5T_NATIVE_LDOUBLE}, Row{"half", half}, Row{"brain", brain}, Row{"shifted", shifted}}) {
        SCOPED_TRACE(row.name);
        const std::vector<double> values{0.5, -1.5, 0, 96};
        const std::vector<double> others{-0.25, 3, 7, 0};
        put_dataset(at(), row.name, row.type, {4}, H5T_NATIVE_DOUBLE, values.data());
        put_attribute(at(), row.name, row.type, {4}, H5T_NATIVE_DOUBLE, values.data());
        std::vector<double> found(4, 7);
        const DatasetCall dataset{row.name, real, 8, 8, {4}};
        EXPECT_EQ(dataset.read(at(), found.data()), fine);
        EXPECT_EQ(found, values);
        EXPECT_EQ(dataset.write(at(), others.data()), fine);
        EXPECT_EQ(stored_reals(at(), row.name), others);
        found.assign(4, 7);
        const AttributeCall attribute{row.name, real, 8, 8, {4}};
        EXPECT_EQ(attribute.read(at(), found.data()), fine);
        EXPECT_EQ(found, values);
        EXPECT_EQ(attribute.write(at(), others.data()), fine);
        EXPECT_EQ(attribute.read(at(), found.data()), fine);
        EXPECT_EQ(found, others);
    }
}

TEST_F(StorageTypes, Integers_of_every_usual_format_are_read)
{
    const std::vector<std::int32_t> values{0, 1, 100, 127};
    for (const hid_t type : {H5T_STD_I8LE, H5T_STD_I8BE, H5T_STD_I16LE, H5T_STD_I16BE, H5T_STD_I32LE, H5T_STD_I32BE,
                             H5T_STD_I64LE, H5T_STD_I64BE, H5T_STD_U8LE, H5T_STD_U16BE, H5T_STD_U32LE, H5T_STD_U64BE}) {
        const std::string name = std::to_string(type);
        put_dataset(at(), name, type, {4}, H5T_NATIVE_INT32, values.data());
        std::vector<std::int64_t> found(4, -7);
        EXPECT_EQ((DatasetCall{name.c_str(), integer, 8, 8, {4}}.read(at(), found.data())), fine);
        EXPECT_EQ(found, Ints(values.begin(), values.end()));
    }
}

TEST_F(StorageTypes, Each_code_and_size_has_its_native_type)
{
    struct Row {
        std::int32_t code;
        std::size_t size;
        H5T_class_t type_class;
        hid_t type;
    };
    for (const auto& row :
         {Row{integer, 4, H5T_INTEGER, H5T_NATIVE_INT}, Row{integer, 8, H5T_INTEGER, H5T_NATIVE_LLONG},
          Row{real, 4, H5T_FLOAT, H5T_NATIVE_FLOAT}, Row{real, 8, H5T_FLOAT, H5T_NATIVE_DOUBLE},
          Row{text, 1, H5T_STRING, H5T_C_S1}, Row{text, 256, H5T_STRING, H5T_C_S1}}) {
        SCOPED_TRACE(std::to_string(row.code) + "/" + std::to_string(row.size));
        H5T_class_t type_class = H5T_NO_CLASS;
        hid_t type = H5I_INVALID_HID;
        EXPECT_EQ(outcome_of([&] { return kob::KOB_H5gettype(row.code, row.size, type_class, type); }), fine);
        EXPECT_EQ(type_class, row.type_class);
        EXPECT_GT(H5Tequal(type, row.type), 0);
    }
}

TEST_F(StorageTypes, An_unknown_code_or_size_is_refused_with_its_number)
{
    struct Row {
        std::int32_t code;
        std::size_t size;
        int n;
    };
    for (const auto& row : {Row{integer, 2, 1}, Row{integer, 0, 1}, Row{integer, 16, 1}, Row{real, 2, 2},
                            Row{real, 16, 2}, Row{0, 4, 3}, Row{4, 8, 3}, Row{-1, 4, 3}, Row{text, 0, 3}}) {
        H5T_class_t type_class = H5T_NO_CLASS;
        hid_t type = H5I_INVALID_HID;
        EXPECT_EQ(outcome_of([&] { return kob::KOB_H5gettype(row.code, row.size, type_class, type); }),
                  (Outcome{-1, type_line(row.n, row.code, row.size)}));
    }
}

TEST_F(StorageTypes, The_fill_value_is_10000_in_the_requested_form)
{
    std::int32_t i4 = 0;
    std::int64_t i8 = 0;
    float r4 = 0;
    double r8 = 0;
    EXPECT_EQ(kob::KOB_H5getfillvalue(integer, 4, &i4), 0);
    EXPECT_EQ(kob::KOB_H5getfillvalue(integer, 8, &i8), 0);
    EXPECT_EQ(kob::KOB_H5getfillvalue(real, 4, &r4), 0);
    EXPECT_EQ(kob::KOB_H5getfillvalue(real, 8, &r8), 0);
    EXPECT_EQ(i4, 10000);
    EXPECT_EQ(i8, 10000);
    EXPECT_EQ(r4, 10000.0F);
    EXPECT_EQ(r8, 10000.0);
}

TEST_F(StorageTypes, A_text_has_no_fill_value_and_neither_has_an_odd_size)
{
    const auto line = [](int n, int code, int size) {
        return "KOB INTERNAL ERROR (" + std::to_string(n) +
               ") in KOB_H5getfillvalue - kob_type, data_size: " + std::to_string(code) + " " + std::to_string(size) +
               "\n";
    };
    std::array<char, 16> value{};
    EXPECT_EQ(outcome_of([&] { return kob::KOB_H5getfillvalue(integer, 2, value.data()); }),
              (Outcome{-1, line(1, 2, 2)}));
    EXPECT_EQ(outcome_of([&] { return kob::KOB_H5getfillvalue(real, 16, value.data()); }),
              (Outcome{-1, line(2, 3, 16)}));
    EXPECT_EQ(outcome_of([&] { return kob::KOB_H5getfillvalue(text, 4, value.data()); }), (Outcome{-1, line(3, 1, 4)}));
    EXPECT_EQ(outcome_of([&] { return kob::KOB_H5getfillvalue(9, 4, value.data()); }), (Outcome{-1, line(3, 9, 4)}));
}

// Attributes

TEST_F(AttributeWriter, Numbers_are_little_endian_and_texts_blank_padded)
{
    const auto four = numbers(4);
    const std::int64_t wide = 1LL << 40;
    const double half = 0.5;
    const std::string name = "NODE    ";
    EXPECT_EQ((AttributeCall{"nent"}.write(at(), four.data())), fine);
    EXPECT_EQ((AttributeCall{"wider", integer, 4, 8}.write(at(), four.data())), fine);
    EXPECT_EQ((AttributeCall{"wide", integer, 8, 8}.write(at(), &wide)), fine);
    EXPECT_EQ((AttributeCall{"single", real, 8, 4}.write(at(), &half)), fine);
    EXPECT_EQ((AttributeCall{"double", real, 8, 8}.write(at(), &half)), fine);
    EXPECT_EQ((AttributeCall{"etyp", text, 8, 8}.write(at(), name.data())), fine);
    EXPECT_EQ((AttributeCall{"four", integer, 4, 4, {4}}.write(at(), four.data())), fine);
    EXPECT_EQ((AttributeCall{"square", integer, 4, 4, {2, 2}}.write(at(), four.data())), fine);
    EXPECT_EQ((AttributeCall{"names", text, 4, 4, {2}}.write(at(), name.data())), fine);
    EXPECT_EQ(listing(), table({
                             "attribute nent integer 4 little scalar",
                             "attribute wider integer 8 little scalar",
                             "attribute wide integer 8 little scalar",
                             "attribute single float 4 little scalar",
                             "attribute double float 8 little scalar",
                             "attribute etyp text 8 space scalar",
                             "attribute four integer 4 little [4]",
                             "attribute square integer 4 little [2, 2]",
                             "attribute names text 4 space [2]",
                         }));
    EXPECT_EQ(stored_ints(at(), "nent"), Ints{1});
    EXPECT_EQ(stored_ints(at(), "wide"), Ints{wide});
    EXPECT_EQ(stored_reals(at(), "single"), Reals{0.5});
    EXPECT_EQ(stored_ints(at(), "square"), (Ints{1, 2, 3, 4}));
    EXPECT_EQ(stored_text(at(), "etyp"), "NODE    ");
}

TEST_F(AttributeWriter, A_zero_extent_writes_nothing_and_succeeds)
{
    EXPECT_EQ((AttributeCall{"a", integer, 4, 4, {0}}.write(at(), nullptr)), fine);
    EXPECT_EQ((AttributeCall{"b", integer, 4, 4, {3, 0}}.write(at(), nullptr)), fine);
    EXPECT_EQ((AttributeCall{"c", 9, 3, 3, {0}}.write(at(), nullptr)), fine) << "before the types are looked up";
    EXPECT_EQ(listing(), "");
}

TEST_F(AttributeWriter, An_unknown_type_in_memory_or_file_is_1_and_2)
{
    const std::int64_t value = 1;
    const AttributeCall memory{"a", integer, 2, 4};
    EXPECT_EQ(memory.write(at(), &value), (Outcome{-1001, type_line(1, 2, 2) + memory.write_line(1)}));
    const AttributeCall stored{"a", real, 8, 2};
    EXPECT_EQ(stored.write(at(), &value), (Outcome{-1002, type_line(2, 3, 2) + stored.write_line(2)}));
    const AttributeCall no_text{"a", text, 0, 8};
    EXPECT_EQ(no_text.write(at(), &value), (Outcome{-1001, type_line(3, 1, 0) + no_text.write_line(1)}));
    EXPECT_EQ(listing(), "");
}

TEST_F(AttributeWriter, An_integer_or_text_wider_in_memory_is_3_but_a_float_is_not)
{
    const std::int64_t value = 1;
    const double half = 0.5;
    const AttributeCall narrow{"a", integer, 8, 4};
    EXPECT_EQ(narrow.write(at(), &value), (Outcome{-1003, narrow.write_line(3)}));
    const AttributeCall short_text{"a", text, 8, 4};
    EXPECT_EQ(short_text.write(at(), "abcdefgh"), (Outcome{-1003, short_text.write_line(3)}));
    EXPECT_EQ((AttributeCall{"a", real, 8, 4}.write(at(), &half)), fine);
}

TEST_F(AttributeWriter, An_existing_attribute_is_overwritten_in_place)
{
    const auto two = numbers(2);
    const auto other = numbers(2, 70);
    const AttributeCall call{"a", integer, 4, 4, {2}};
    ASSERT_EQ(call.write(at(), two.data()), fine);
    EXPECT_EQ(call.write(at(), other.data()), fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{70, 71}));
    EXPECT_EQ(attribute_names(at()), std::vector<std::string>{"a"});
}

TEST_F(AttributeWriter, An_existing_text_keeps_its_stored_size)
{
    ASSERT_EQ((AttributeCall{"a", text, 4, 4}.write(at(), "abcd")), fine);
    EXPECT_EQ((AttributeCall{"a", text, 8, 8}.write(at(), "efghijkl")), fine);
    EXPECT_EQ(listing(), table({"attribute a text 4 space scalar"}));
    EXPECT_EQ(stored_text(at(), "a"), "efgh");
}

TEST_F(AttributeWriter, An_existing_wider_text_takes_no_byte_behind_the_callers)
{
    ASSERT_EQ((AttributeCall{"a", text, 300, 300}.write(at(), std::string(300, 'x').data())), fine);
    const std::vector<char> exactly{'e', 'f', 'g', 'h'};
    EXPECT_EQ((AttributeCall{"a", text, 4, 4}.write(at(), exactly.data())), fine);
    EXPECT_EQ(stored_text(at(), "a"), "efgh" + std::string(296, ' '));
}

TEST_F(AttributeWriter, An_existing_attribute_of_another_class_is_10)
{
    const std::int32_t value = 1;
    const AttributeCall call{"a", integer, 4, 4};
    put_attribute(at(), "a", H5T_IEEE_F64LE, {});
    EXPECT_EQ(call.write(at(), &value), (Outcome{-1010, call.write_line(10)}));
    put_attribute(at(), "v", text_type(H5T_VARIABLE, H5T_STR_NULLTERM), {});
    const AttributeCall on_variable{"v", text, 4, 4};
    EXPECT_EQ(on_variable.write(at(), "abcd"), (Outcome{-1010, on_variable.write_line(10)}));
}

TEST_F(AttributeWriter, An_existing_attribute_of_another_rank_is_20)
{
    const auto values = numbers(4);
    put_attribute(at(), "a", H5T_STD_I32LE, {4});
    const AttributeCall square{"a", integer, 4, 4, {2, 2}};
    EXPECT_EQ(square.write(at(), values.data()), (Outcome{-1020, square.write_line(20)}));
    const AttributeCall scalar{"a", integer, 4, 4};
    EXPECT_EQ(scalar.write(at(), values.data()), (Outcome{-1020, scalar.write_line(20)}));
    put_attribute(at(), "one", H5T_STD_I32LE, {1});
    EXPECT_EQ((AttributeCall{"one"}.write(at(), values.data())), fine) << "one element is a scalar, too";
    const Hid nothing{H5Screate(H5S_NULL)};
    const Hid null{H5Acreate2(at(), "null", H5T_STD_I32LE, nothing, H5P_DEFAULT, H5P_DEFAULT)};
    const AttributeCall onto_null{"null", integer, 4, 4};
    EXPECT_EQ(onto_null.write(at(), values.data()), (Outcome{-1020, onto_null.write_line(20)}));
}

TEST_F(AttributeWriter, An_existing_attribute_of_other_extents_is_30_with_the_first_dimension_that_differs)
{
    const auto values = numbers(24);
    put_attribute(at(), "a", H5T_STD_I32LE, {2, 3, 4});
    const auto line = [](int dimension) {
        return "KOB INTERNAL ERROR (30) in KOB_H5Awrite - name, kob_type, data_size, kob_size, error: a 2 4 4 " +
               std::to_string(dimension) + "\n";
    };
    const auto printed = [&](Extents dims) {
        std::int32_t code = 0;
        const auto lines =
            errors_of([&] { code = kob::KOB_H5Awrite("a", values.data(), integer, 4, 4, dims.data(), 3, at()); });
        EXPECT_EQ(code, -1030);
        return lines;
    };
    EXPECT_EQ(printed({1, 3, 4}), line(0));
    EXPECT_EQ(printed({2, 2, 3}), line(1));
    EXPECT_EQ(printed({2, 3, 3}), line(2));
}

TEST_F(AttributeWriter, A_dataspace_that_cannot_be_is_40)
{
    const auto values = numbers(4);
    const AttributeCall too_many_dimensions{"a", integer, 4, 4, Extents(33, 1)};
    EXPECT_EQ(too_many_dimensions.write(at(), values.data()), (Outcome{-1040, too_many_dimensions.write_line(40)}));
    const AttributeCall endless{"a", integer, 4, 4, {unlimited}};
    EXPECT_EQ(endless.write(at(), values.data()), (Outcome{-1040, endless.write_line(40)}));
    EXPECT_EQ(listing(), "");
}

TEST_F(AttributeWriter, An_attribute_that_cannot_be_created_is_100)
{
    const std::vector<std::int32_t> values(20000); // more than an object header holds
    const AttributeCall large{"a", integer, 4, 4, {20000}};
    EXPECT_EQ(large.write(at(), values.data()), (Outcome{-1100, large.write_line(100)}));
    reopen_read_only();
    const AttributeCall plain{"a", integer, 4, 4};
    EXPECT_EQ(plain.write(at(), values.data()), (Outcome{-1100, plain.write_line(100)}));
}

TEST_F(AttributeWriter, Extents_that_overflow_or_were_negative_create_nothing)
{
    const auto values = numbers(4);
    for (const auto& dims : {Extents{static_cast<hsize_t>(-2)}, Extents{1ULL << 33, 1ULL << 33}, Extents{1ULL << 62}}) {
        const AttributeCall call{"a", integer, 4, 4, dims};
        const auto outcome = call.write(at(), values.data());
        EXPECT_TRUE(outcome.code == -1040 || outcome.code == -1100) << outcome;
    }
    EXPECT_EQ(listing(), "");
}

TEST_F(AttributeWriter, A_write_that_fails_is_999)
{
    const std::int32_t value = 1;
    const AttributeCall call{"a", integer, 4, 4};
    ASSERT_EQ(call.write(at(), &value), fine);
    reopen_read_only();
    EXPECT_EQ(call.write(at(), &value), (Outcome{-1999, call.write_line(999)}));
}

TEST_F(AttributeReader, What_was_written_is_read_with_its_stored_size)
{
    const std::array<double, 3> values{0.5, 0.1, -3};
    ASSERT_EQ((AttributeCall{"a", real, 8, 4, {3}}.write(at(), values.data())), fine);
    std::array<double, 3> found{};
    std::uint64_t size = 0;
    EXPECT_EQ((AttributeCall{"a", real, 8, 0, {3}}.read(at(), found.data(), &size)), fine);
    EXPECT_EQ(found, (std::array<double, 3>{0.5, static_cast<double>(0.1F), -3}));
    EXPECT_EQ(size, 4U);
}

TEST_F(AttributeReader, Integers_of_any_narrower_or_foreign_form_are_widened)
{
    const std::int32_t value = -5;
    std::int64_t found = 0;
    for (const auto type : {H5T_STD_I8LE, H5T_STD_I16BE, H5T_STD_I32BE, H5T_STD_I32LE}) {
        const Hid group = create_group(at(), "g" + std::to_string(type));
        put_attribute(group, "a", type, {}, H5T_NATIVE_INT32, &value);
        found = 0;
        EXPECT_EQ((AttributeCall{"a", integer, 8}.read(group, &found)), fine);
        EXPECT_EQ(found, -5);
    }
}

TEST_F(AttributeReader, A_zero_extent_reads_nothing)
{
    std::int32_t untouched = 77;
    EXPECT_EQ((AttributeCall{"none", integer, 4, 0, {2, 0}}.read(at(), &untouched)), fine);
    EXPECT_EQ(untouched, 77);
}

TEST_F(AttributeReader, An_unknown_type_is_1_a_missing_attribute_2_and_another_class_3)
{
    double value = 7;
    put_attribute(at(), "f", H5T_IEEE_F64LE, {});
    const AttributeCall unknown{"f", 4, 8};
    EXPECT_EQ(unknown.read(at(), &value), (Outcome{-4001, type_line(3, 4, 8) + unknown.read_line(1)}));
    const AttributeCall empty_text{"f", text, 0};
    EXPECT_EQ(empty_text.read(at(), &value), (Outcome{-4001, type_line(3, 1, 0) + empty_text.read_line(1)}));
    const AttributeCall missing{"none", integer, 4};
    EXPECT_EQ(missing.read(at(), &value), (Outcome{-4002, missing.read_line(2)}));
    const AttributeCall other{"f", integer, 4};
    EXPECT_EQ(other.read(at(), &value), (Outcome{-4003, other.read_line(3)}));
    const AttributeCall no_text{"f", text, 8};
    EXPECT_EQ(no_text.read(at(), &value), (Outcome{-4003, no_text.read_line(3)}));
    EXPECT_EQ(value, 7);
}

TEST_F(AttributeReader, A_variable_length_text_is_not_a_text)
{
    const char* stored = "hidden behind a pointer";
    put_attribute(at(), "v", text_type(H5T_VARIABLE, H5T_STR_NULLTERM), {}, text_type(H5T_VARIABLE, H5T_STR_NULLTERM),
                  &stored);
    std::array<char, 256> found{};
    const AttributeCall call{"v", text, 256};
    EXPECT_EQ(call.read(at(), found.data()), (Outcome{-4003, call.read_line(3)}));
    EXPECT_EQ(found, (std::array<char, 256>{}));
}

TEST_F(AttributeReader, An_enumeration_is_not_an_integer)
{
    const Hid colours{H5Tenum_create(H5T_STD_I32LE)};
    const std::int32_t red = 1;
    H5Tenum_insert(colours, "red", &red);
    put_attribute(at(), "e", colours, {}, colours, &red);
    std::int32_t found = 7;
    const AttributeCall call{"e", integer, 4};
    EXPECT_EQ(call.read(at(), &found), (Outcome{-4003, call.read_line(3)}));
}

TEST_F(AttributeReader, A_stored_text_wider_than_the_field_is_10_and_an_integer_11)
{
    std::array<char, 8> field{};
    put_attribute(at(), "t", text_type(9), {});
    const AttributeCall wide_text{"t", text, 8};
    EXPECT_EQ(wide_text.read(at(), field.data()), (Outcome{-4010, wide_text.read_line(10)}));
    std::int32_t value = 0;
    put_attribute(at(), "i", H5T_STD_I64LE, {});
    const AttributeCall wide_integer{"i", integer, 4};
    EXPECT_EQ(wide_integer.read(at(), &value), (Outcome{-4011, wide_integer.read_line(11)}));
    double single = 0;
    put_attribute(at(), "f", H5T_IEEE_F64LE, {});
    EXPECT_EQ((AttributeCall{"f", real, 4}.read(at(), &single)), fine) << "a float is narrowed";
}

TEST_F(AttributeReader, A_shorter_text_leaves_no_rubbish_behind_it)
{
    put_attribute(at(), "t", text_type(4), {}, text_type(4), "abcd");
    std::string field(8, '#');
    std::uint64_t size = 0;
    EXPECT_EQ((AttributeCall{"t", text, 8}.read(at(), field.data(), &size)), fine);
    EXPECT_EQ(field, "abcd    ");
    EXPECT_EQ(size, 4U);
}

TEST_F(AttributeReader, An_array_of_shorter_texts_comes_end_to_end_at_the_stored_size)
{
    put_attribute(at(), "t", text_type(3), {2}, text_type(3), "abcdef");
    std::string fields(16, '#');
    EXPECT_EQ((AttributeCall{"t", text, 8, 0, {2}}.read(at(), fields.data())), fine);
    EXPECT_EQ(fields.substr(0, 6), "abcdef");
}

TEST_F(AttributeReader, Another_rank_is_20_and_other_extents_are_30)
{
    std::array<std::int32_t, 6> values{};
    put_attribute(at(), "a", H5T_STD_I32LE, {2, 3});
    const AttributeCall flat{"a", integer, 4, 0, {6}};
    EXPECT_EQ(flat.read(at(), values.data()), (Outcome{-4020, flat.read_line(20)}));
    const AttributeCall turned{"a", integer, 4, 0, {3, 2}};
    EXPECT_EQ(turned.read(at(), values.data()), (Outcome{-4030, turned.read_line(30)}));
    const AttributeCall longer{"a", integer, 4, 0, {2, 4}};
    EXPECT_EQ(longer.read(at(), values.data()), (Outcome{-4030, longer.read_line(30)}));
}

TEST_F(AttributeReader, A_scalar_holds_one_element_whatever_the_file_says)
{
    std::int32_t value = 7;
    put_attribute(at(), "many", H5T_STD_I32LE, {1000});
    const AttributeCall many{"many", integer, 4};
    EXPECT_EQ(many.read(at(), &value), (Outcome{-4020, many.read_line(20)}));
    const Hid nothing{H5Screate(H5S_NULL)};
    const Hid null{H5Acreate2(at(), "null", H5T_STD_I32LE, nothing, H5P_DEFAULT, H5P_DEFAULT)};
    const AttributeCall of_null{"null", integer, 4};
    EXPECT_EQ(of_null.read(at(), &value), (Outcome{-4020, of_null.read_line(20)}));
    EXPECT_EQ(value, 7);
    const std::int32_t nine = 9;
    put_attribute(at(), "one", H5T_STD_I32LE, {1, 1}, H5T_NATIVE_INT32, &nine);
    EXPECT_EQ((AttributeCall{"one", integer, 4}.read(at(), &value)), fine);
    EXPECT_EQ(value, 9);
}

// Datasets: layout

TEST_F(DatasetWriter, Up_to_24000_bytes_are_compact_and_more_contiguous)
{
    const std::vector<double> values(7000, 0.25);
    const auto* data = values.data();
    EXPECT_EQ((DatasetCall{"i6000", integer, 4, 4, {6000}}.write(at(), data)), fine);
    EXPECT_EQ((DatasetCall{"i6001", integer, 4, 4, {6001}}.write(at(), data)), fine);
    EXPECT_EQ((DatasetCall{"r3000", real, 8, 8, {1000, 3}}.write(at(), data)), fine);
    EXPECT_EQ((DatasetCall{"r3001", real, 8, 8, {3001}}.write(at(), data)), fine);
    EXPECT_EQ((DatasetCall{"single6000", real, 8, 4, {2, 3000}}.write(at(), data)), fine);
    EXPECT_EQ((DatasetCall{"single6001", real, 8, 4, {6001}}.write(at(), data)), fine);
    EXPECT_EQ((DatasetCall{"t93", text, 256, 256, {93}}.write(at(), data)), fine);
    EXPECT_EQ((DatasetCall{"t94", text, 256, 256, {94}}.write(at(), data)), fine);
    EXPECT_EQ((DatasetCall{"scalar", integer, 4, 4}.write(at(), data)), fine);
    EXPECT_EQ(listing(), table({
                             "dataset i6000 integer 4 little [6000] max [6000] compact",
                             "dataset i6001 integer 4 little [6001] max [6001] contiguous",
                             "dataset r3000 float 8 little [1000, 3] max [1000, 3] compact",
                             "dataset r3001 float 8 little [3001] max [3001] contiguous",
                             "dataset single6000 float 4 little [2, 3000] max [2, 3000] compact",
                             "dataset single6001 float 4 little [6001] max [6001] contiguous",
                             "dataset t93 text 256 space [93] max [93] compact",
                             "dataset t94 text 256 space [94] max [94] contiguous",
                             "dataset scalar integer 4 little scalar compact",
                         }));
}

TEST_F(DatasetWriter, Seven_elements_are_never_filtered_and_eight_are_one_chunk)
{
    const auto values = numbers(8);
    EXPECT_EQ((DatasetCall{.name = "seven", .dims = {7}, .flags = all_filters}.write(at(), values.data())), fine);
    EXPECT_EQ((DatasetCall{.name = "eight", .dims = {8}, .flags = all_filters}.write(at(), values.data())), fine);
    EXPECT_EQ((DatasetCall{.name = "square", .dims = {4, 2}, .flags = all_filters}.write(at(), values.data())), fine);
    EXPECT_EQ(listing(),
              table({
                  "dataset seven integer 4 little [7] max [7] compact",
                  "dataset eight integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle deflate(6) "
                  "fill 10000",
                  "dataset square integer 4 little [4, 2] max [4, 2] chunked [4, 2] scaleoffset(integer 0) shuffle "
                  "deflate(6) fill 10000",
              }));
    EXPECT_EQ(stored_ints(at(), "eight"), (Ints{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(DatasetWriter, Only_the_bits_of_the_type_code_count)
{
    struct Row {
        const char* name;
        std::int32_t type;
        std::int32_t flags;
        std::string stored;
    };
    const std::vector<Row> rows{
        {"i1", integer, 1, "integer 4 little [9] max [9] chunked [9] deflate(6)"},
        {"i8", integer, 8, "integer 4 little [9] max [9] chunked [9] shuffle"},
        {"i64", integer, 64, "integer 4 little [9] max [9] chunked [9] scaleoffset(integer 0) fill 10000"},
        {"i9", integer, 9, "integer 4 little [9] max [9] chunked [9] shuffle deflate(6)"},
        {"iothers", integer, 2 + 4 + 16 + 32 + 128, "integer 4 little [9] max [9] compact"},
        {"ihigh", integer, 256 + 4096, "integer 4 little [9] max [9] compact"},
        {"r2", real, 2, "float 4 little [9] max [9] chunked [9] deflate(6)"},
        {"r16", real, 16, "float 4 little [9] max [9] chunked [9] shuffle"},
        {"r128", real, 128, "float 4 little [9] max [9] chunked [9] scaleoffset(decimal 3) fill 10000"},
        {"rall", real, all_filters,
         "float 4 little [9] max [9] chunked [9] scaleoffset(decimal 3) shuffle deflate(6) fill 10000"},
        {"rothers", real, 1 + 4 + 8 + 32 + 64, "float 4 little [9] max [9] compact"},
        {"t4", text, 4, "text 4 space [9] max [9] chunked [9] deflate(6)"},
        {"t32", text, 32, "text 4 space [9] max [9] chunked [9] shuffle"},
        {"tall", text, all_filters, "text 4 space [9] max [9] chunked [9] shuffle deflate(6)"},
        {"tothers", text, 1 + 2 + 8 + 16 + 64 + 128, "text 4 space [9] max [9] compact"},
    };
    const std::vector<float> values(9, 1.5F);
    std::vector<std::string> lines;
    for (const auto& row : rows) {
        const Hid group = create_group(at(), row.name);
        EXPECT_EQ((DatasetCall{.name = row.name, .type = row.type, .dims = {9}, .flags = row.flags}.write(
                      group, values.data())),
                  fine);
        EXPECT_EQ(layout_of(group), std::string{"dataset "} + row.name + " " + row.stored + "\n");
    }
}

TEST_F(DatasetWriter, The_filter_parameters_reach_to_their_limits)
{
    const std::vector<double> values(8, 0);
    const DatasetCall widest{
        .name = "widest", .type = real, .data_size = 8, .kob_size = 8, .dims = {8}, .flags = 130, .params = {256, 9}};
    EXPECT_EQ(widest.write(at(), values.data()), fine);
    const DatasetCall least{
        .name = "least", .type = real, .data_size = 8, .kob_size = 8, .dims = {8}, .flags = 130, .params = {0, 0}};
    EXPECT_EQ(least.write(at(), values.data()), fine);
    EXPECT_EQ(listing(), table({
                             "dataset widest float 8 little [8] max [8] chunked [8] scaleoffset(decimal 256) "
                             "deflate(9) fill 10000",
                             "dataset least float 8 little [8] max [8] chunked [8] scaleoffset(decimal 0) deflate(0) "
                             "fill 10000",
                         }));
}

TEST_F(DatasetWriter, A_bad_filter_parameter_is_refused_and_nothing_is_created)
{
    const std::vector<double> values(8, 0);
    const auto call = [](std::int32_t flags, std::array<std::int32_t, 2> params) {
        return DatasetCall{.type = real, .data_size = 8, .kob_size = 8, .dims = {8}, .flags = flags, .params = params};
    };
    const auto of_type_code = call(0, {}); // the lines name no parameter but the last value
    EXPECT_EQ(call(128, {257, 6}).write(at(), values.data()), (Outcome{-2130, of_type_code.write_line(130)}));
    EXPECT_EQ(call(128, {-1, 6}).write(at(), values.data()), (Outcome{-2140, of_type_code.write_line(140)}));
    EXPECT_EQ(call(2, {3, 10}).write(at(), values.data()), (Outcome{-2170, of_type_code.write_line(170)}));
    EXPECT_EQ(call(2, {3, -1}).write(at(), values.data()), (Outcome{-2170, of_type_code.write_line(170)}));
    EXPECT_EQ(listing(), "");
    EXPECT_EQ(call(16, {257, 10}).write(at(), values.data()), fine) << "parameters of filters not asked for";
}

TEST_F(DatasetWriter, A_fixed_extent_of_a_growable_dataset_is_divided_evenly_into_chunks)
{
    struct Row {
        hsize_t extent;
        hsize_t chunk;
    };
    const std::vector<Row> rows{
        {1, 1},       {2, 2},       {999, 999},   {1000, 1000}, // divides
        {1001, 1001},                                           // itself leaves nothing, 1000 leaves 1
        {1500, 1500},                                           //
        {1999, 1999}, {2000, 1000},                             // 1000 and 2000 leave nothing: the smaller
        {2001, 1000},                                           // nothing divides; 1000 and 2000 leave 1
        {2500, 1250}, {3000, 1000}, {3001, 1000},               // 1000 and 1500 leave 1
        {4002, 1334}, {5003, 1667},                             // 3 * 1667 leaves 2, nothing leaves less
        {6000, 1000},
    };
    for (const auto& row : rows) {
        const auto name = "d" + std::to_string(row.extent);
        const std::vector<std::int32_t> values(row.extent);
        EXPECT_EQ((DatasetCall{.name = name.c_str(),
                               .dims = {unlimited, row.extent},
                               .mode = 1,
                               .count = {1, static_cast<std::int64_t>(row.extent)},
                               .start = {0, 0}}
                       .write(at(), values.data())),
                  fine);
        const Hid set{H5Dopen2(at(), name.c_str(), H5P_DEFAULT)};
        const Hid creation{H5Dget_create_plist(set)};
        std::array<hsize_t, 2> chunk{};
        H5Pget_chunk(creation, 2, chunk.data());
        EXPECT_EQ(chunk, (std::array<hsize_t, 2>{1, row.chunk})) << row.extent;
    }
}

TEST_F(DatasetWriter, A_growable_extent_takes_the_chunk_size_setting)
{
    struct Row {
        std::int32_t setting;
        hsize_t chunk;
    };
    const auto values = numbers(6);
    for (const auto& row : {Row{1, 1}, Row{2, 2}, Row{50, 50}, Row{0, 1}, Row{-5, 1}}) {
        KOB_SET_CHUNK_SIZE(&row.setting);
        const Hid group = create_group(at(), "s" + std::to_string(row.setting));
        EXPECT_EQ(
            (DatasetCall{.name = "a", .dims = {2, unlimited, 3}, .mode = 1, .count = {2, 1, 3}, .start = {0, 0, 0}}
                 .write(group, values.data())),
            fine);
        EXPECT_EQ(layout_of(group), "dataset a integer 4 little [2, 1, 3] max [2, unlimited, 3] chunked [2, " +
                                        std::to_string(row.chunk) + ", 3]\n");
    }
}

// Datasets: whole

TEST_F(DatasetWriter, An_existing_dataset_is_overwritten_in_place)
{
    const auto first = numbers(6);
    const auto second = numbers(6, 50);
    const DatasetCall call{.dims = {2, 3}};
    ASSERT_EQ(call.write(at(), first.data()), fine);
    EXPECT_EQ(call.write(at(), second.data()), fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{50, 51, 52, 53, 54, 55}));
}

TEST_F(DatasetWriter, An_existing_text_dataset_keeps_its_stored_size)
{
    ASSERT_EQ((DatasetCall{"a", text, 4, 4, {2}}.write(at(), "abcdefgh")), fine);
    const std::string wider = "12345678abcdefgh";
    EXPECT_EQ((DatasetCall{"a", text, 8, 8, {2}}.write(at(), wider.data())), fine);
    EXPECT_EQ(listing(), table({"dataset a text 4 space [2] max [2] compact"}));
    EXPECT_EQ(stored_text(at(), "a"), "1234abcd");
}

TEST_F(DatasetWriter, An_existing_wider_text_dataset_takes_no_byte_behind_the_callers)
{
    const std::string wide(600, 'x');
    ASSERT_EQ((DatasetCall{"a", text, 300, 300, {2}}.write(at(), wide.data())), fine);
    const std::vector<char> exactly{'a', 'b', 'c', 'd'};
    EXPECT_EQ((DatasetCall{"a", text, 2, 2, {2}}.write(at(), exactly.data())), fine);
    EXPECT_EQ(stored_text(at(), "a"), "ab" + std::string(298, ' ') + "cd" + std::string(298, ' '));
}

TEST_F(DatasetWriter, Doubles_may_be_stored_as_floats_and_floats_as_doubles)
{
    const std::array<double, 3> doubles{0.1, 1e300, -2};
    const std::array<float, 3> floats{0.1F, 2, 3};
    EXPECT_EQ((DatasetCall{"narrowed", real, 8, 4, {3}}.write(at(), doubles.data())), fine);
    EXPECT_EQ((DatasetCall{"widened", real, 4, 8, {3}}.write(at(), floats.data())), fine);
    EXPECT_EQ(stored_reals(at(), "narrowed"),
              (Reals{static_cast<double>(0.1F), std::numeric_limits<double>::infinity(), -2}));
    EXPECT_EQ(stored_reals(at(), "widened"), (Reals{static_cast<double>(0.1F), 2, 3}));
}

TEST_F(DatasetWriter, A_zero_extent_or_count_writes_nothing_and_succeeds)
{
    const auto values = numbers(4);
    EXPECT_EQ((DatasetCall{.name = "a", .dims = {0}}.write(at(), values.data())), fine);
    EXPECT_EQ((DatasetCall{.name = "b", .dims = {3, 0}, .flags = all_filters}.write(at(), values.data())), fine);
    EXPECT_EQ((DatasetCall{.name = "c", .dims = {unlimited, 0}, .mode = 1, .count = {1, 0}, .start = {0, 0}}.write(
                  at(), values.data())),
              fine);
    EXPECT_EQ((DatasetCall{.name = "d", .dims = {unlimited, 2}, .mode = 1, .count = {0, 2}, .start = {0, 0}}.write(
                  at(), values.data())),
              fine);
    EXPECT_EQ((DatasetCall{.name = "e", .dims = {unlimited, 2}, .mode = 2, .count = {0}}.write(at(), values.data())),
              fine);
    EXPECT_EQ(listing(), "");
}

TEST_F(DatasetWriter, Missing_extents_and_an_unlimited_extent_of_a_whole_dataset_are_0_and_1)
{
    const auto values = numbers(4);
    const DatasetCall call{.dims = {unlimited, 2}};
    EXPECT_EQ(outcome_of([&] {
                  return kob::KOB_H5Dwrite("a", values.data(), integer, 4, 4, nullptr, 2, nullptr, nullptr, 0, at(), 0,
                                           call.params.data());
              }),
              (Outcome{-3000, call.write_line(0)}));
    EXPECT_EQ(call.write(at(), values.data()), (Outcome{-3000, call.write_line(1)}));
    EXPECT_EQ(listing(), "");
}

TEST_F(DatasetWriter, Only_a_dataset_of_as_many_rows_as_states_can_be_is_cut)
{
    const std::int32_t value = 5;
    constexpr hsize_t most = std::numeric_limits<std::int32_t>::max();
    // Chunks of many rows are soon cut. Of single rows so many take HDF5 minutes or hours, whether they exist or not.
    for (const auto& [name, chunk] : {std::pair{"large", hsize_t{1} << 20U}, std::pair{"small", hsize_t{1}}}) {
        const Hid list{H5Pcreate(H5P_DATASET_CREATE)};
        ASSERT_GE(H5Pset_chunk(list, 1, &chunk), 0);
        const Hid space{space_of({0}, {unlimited})};
        Hid{H5Dcreate2(at(), name, H5T_STD_I32LE, space, H5P_DEFAULT, list, H5P_DEFAULT)};
        ASSERT_EQ(
            (DatasetCall{.name = name, .dims = {unlimited}, .mode = 1, .count = {1}, .start = {0}}.write(at(), &value)),
            fine);
        for (const hsize_t rows : {most, most + 1, hsize_t{1} << 40U}) {
            if (rows == most && chunk == 1) continue;
            {
                const Hid dataset{H5Dopen2(at(), name, H5P_DEFAULT)};
                ASSERT_GE(H5Dset_extent(dataset, &rows), 0);
            }
            kob::cut_rows(at(), name, 1);
            EXPECT_EQ(stored_extents(at(), name), Extents{rows == most ? 1 : rows}) << name;
        }
    }
}

TEST_F(DatasetWriter, An_unknown_type_is_2_and_3_and_wider_memory_4)
{
    const std::int64_t value = 1;
    const DatasetCall memory{"a", 7, 4, 4, {1}};
    EXPECT_EQ(memory.write(at(), &value), (Outcome{-3001, type_line(3, 7, 4) + memory.write_line(2)}));
    const DatasetCall empty_text{"a", text, 0, 8, {1}};
    EXPECT_EQ(empty_text.write(at(), &value), (Outcome{-3001, type_line(3, 1, 0) + empty_text.write_line(2)}));
    const DatasetCall stored{"a", integer, 4, 5, {1}};
    EXPECT_EQ(stored.write(at(), &value), (Outcome{-3002, type_line(1, 2, 5) + stored.write_line(3)}));
    const DatasetCall narrow{"a", integer, 8, 4, {1}};
    EXPECT_EQ(narrow.write(at(), &value), (Outcome{-3003, narrow.write_line(4)}));
    const DatasetCall narrow_text{"a", text, 8, 4, {1}};
    EXPECT_EQ(narrow_text.write(at(), &value), (Outcome{-3003, narrow_text.write_line(4)}));
    EXPECT_EQ(listing(), "");
}

TEST_F(DatasetWriter, An_existing_object_of_another_class_is_10)
{
    const auto values = numbers(4);
    const DatasetCall call{.dims = {4}};
    put_dataset(at(), "a", H5T_IEEE_F32LE, {4});
    EXPECT_EQ(call.write(at(), values.data()), (Outcome{-3010, call.write_line(10)}));
    put_dataset(at(), "v", text_type(H5T_VARIABLE, H5T_STR_NULLTERM), {4});
    const DatasetCall on_variable{"v", text, 4, 4, {4}};
    EXPECT_EQ(on_variable.write(at(), values.data()), (Outcome{-3010, on_variable.write_line(10)}));
    create_group(at(), "g");
    const DatasetCall on_group{.name = "g", .dims = {4}};
    EXPECT_EQ(on_group.write(at(), values.data()), (Outcome{-3010, on_group.write_line(10)}));
}

TEST_F(DatasetWriter, An_existing_dataset_of_another_rank_is_20)
{
    const auto values = numbers(4);
    put_dataset(at(), "a", H5T_STD_I32LE, {4});
    const DatasetCall square{.dims = {2, 2}};
    EXPECT_EQ(square.write(at(), values.data()), (Outcome{-3020, square.write_line(20)}));
    const DatasetCall scalar{};
    EXPECT_EQ(scalar.write(at(), values.data()), (Outcome{-3020, scalar.write_line(20)}));
    const Hid nothing{H5Screate(H5S_NULL)};
    const Hid null{H5Dcreate2(at(), "null", H5T_STD_I32LE, nothing, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT)};
    const DatasetCall flat_on_null{.name = "null", .dims = {4}};
    EXPECT_EQ(flat_on_null.write(at(), values.data()), (Outcome{-3020, flat_on_null.write_line(20)}));
}

TEST_F(DatasetWriter, An_existing_dataset_of_other_extents_is_30_with_the_readers_code)
{
    const auto values = numbers(8);
    put_dataset(at(), "a", H5T_STD_I32LE, {2, 3});
    for (const auto& dims : {Extents{2, 4}, Extents{3, 2}, Extents{1, 3}}) {
        const DatasetCall call{.dims = dims};
        EXPECT_EQ(call.write(at(), values.data()), (Outcome{-6030, call.write_line(30)}));
    }
}

TEST_F(DatasetWriter, Extents_that_overflow_or_were_negative_create_nothing)
{
    const auto values = numbers(4);
    for (const auto& dims : {Extents{static_cast<hsize_t>(-2)}, Extents{static_cast<hsize_t>(-7), 3},
                             Extents{1ULL << 40, 1ULL << 40}, Extents{1ULL << 32, 1ULL << 32}, Extents{1ULL << 62}}) {
        const DatasetCall call{.dims = dims};
        const auto outcome = call.write(at(), values.data());
        EXPECT_TRUE(outcome == (Outcome{-2040, call.write_line(40)}) ||
                    outcome == (Outcome{-2190, call.write_line(190)}))
            << outcome;
    }
    const DatasetCall too_many_dimensions{.dims = Extents(33, 1)};
    EXPECT_EQ(too_many_dimensions.write(at(), values.data()), (Outcome{-2040, too_many_dimensions.write_line(40)}));
    EXPECT_EQ(listing(), "");
}

TEST_F(DatasetWriter, A_chunk_larger_than_hdf5_allows_is_80)
{
    const DatasetCall call{.dims = {5'000'000'000}, .flags = 1};
    EXPECT_EQ(call.write(at(), nullptr), (Outcome{-2080, call.write_line(80)}));
    EXPECT_EQ(listing(), "");
}

TEST_F(DatasetWriter, In_a_read_only_file_creating_is_190_extending_100_and_writing_999)
{
    const auto values = numbers(4);
    const DatasetCall whole{.name = "whole", .dims = {4}};
    const DatasetCall growing{.name = "growing", .dims = {unlimited, 2}, .mode = 1, .count = {2, 2}, .start = {0, 0}};
    ASSERT_EQ(whole.write(at(), values.data()), fine);
    ASSERT_EQ(growing.write(at(), values.data()), fine);
    reopen_read_only();
    const DatasetCall another{.name = "new", .dims = {4}};
    EXPECT_EQ(another.write(at(), values.data()), (Outcome{-2190, another.write_line(190)}));
    EXPECT_EQ(growing.write(at(), values.data()), (Outcome{-3100, growing.write_line(100)}));
    EXPECT_EQ(whole.write(at(), values.data()), (Outcome{-3999, whole.write_line(999)}));
}

TEST_F(DatasetWriter, A_full_disk_that_shows_only_at_the_close_is_999)
{
    const std::vector<std::int32_t> values(200'000, 7); // one chunk, which HDF5 keeps in memory until the close
    const DatasetCall call{.dims = {200'000}, .flags = 8};
    Outcome outcome;
    {
        const FileSizeLimit limit{100'000};
        outcome = call.write(at(), values.data());
    }
    EXPECT_EQ(outcome, (Outcome{-3999, call.write_line(999)}));
}

TEST_F(DatasetWriter, A_scalar_has_no_leading_extent)
{
    const auto values = numbers(5);
    const std::array<std::int32_t, 2> params{};
    const auto leading_extent = [&](const char* name, hsize_t dims, std::int32_t rank) {
        hsize_t extent = 77;
        EXPECT_EQ(kob::KOB_H5Dwrite(name, values.data(), integer, 4, 4, &dims, rank, nullptr, nullptr, 0, at(), 0,
                                    params.data(), {.leading_extent = &extent}),
                  0);
        return extent;
    };
    for (const char* is : {"new", "there"}) {
        EXPECT_EQ(leading_extent("row", 5, 1), 5U) << is;
        EXPECT_EQ(leading_extent("scalar", 1, 0), 0U) << is;
    }
}

// Datasets: blocks

TEST_F(DatasetWriter, A_block_of_a_fixed_dataset_creates_the_whole_and_leaves_the_rest_at_the_fill_value)
{
    const auto values = numbers(4);
    DatasetCall call{.dims = {3, 3}, .mode = 1, .count = {2, 2}, .start = {1, 0}};
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{0, 0, 0, 1, 2, 0, 3, 4, 0}));
    call.name = "filled";
    call.flags = 64;
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(stored_ints(at(), "filled"), (Ints{10000, 10000, 10000, 1, 2, 10000, 3, 4, 10000}));
    const std::int32_t corner = 9;
    EXPECT_EQ((DatasetCall{.dims = {3, 3}, .mode = 1, .count = {1, 1}, .start = {0, 2}}.write(at(), &corner)), fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{0, 0, 9, 1, 2, 0, 3, 4, 0}));
}

TEST_F(DatasetWriter, Counts_of_one_are_no_dimension_of_the_callers_buffer)
{
    const auto values = numbers(12);
    const auto write = [&](const char* name, Ints count) {
        return DatasetCall{.name = name, .dims = {2, 3, 5}, .mode = 1, .count = count, .start = {0, 0, 0}}.write(
            at(), values.data());
    };
    EXPECT_EQ(write("row", {1, 1, 5}), fine);
    EXPECT_EQ(write("column", {1, 3, 1}), fine);
    EXPECT_EQ(write("single", {1, 1, 1}), fine);
    EXPECT_EQ(write("plane", {2, 1, 5}), fine);
    Ints expected(30, 0);
    for (std::size_t i = 0; i < 5; ++i) expected[i] = static_cast<std::int64_t>(i) + 1;
    EXPECT_EQ(stored_ints(at(), "row"), expected);
    expected.assign(30, 0);
    expected[0] = 1;
    expected[5] = 2;
    expected[10] = 3;
    EXPECT_EQ(stored_ints(at(), "column"), expected);
    expected.assign(30, 0);
    expected[0] = 1;
    EXPECT_EQ(stored_ints(at(), "single"), expected);
    expected.assign(30, 0);
    for (std::size_t i = 0; i < 5; ++i) {
        expected[i] = static_cast<std::int64_t>(i) + 1;
        expected[15 + i] = static_cast<std::int64_t>(i) + 6;
    }
    EXPECT_EQ(stored_ints(at(), "plane"), expected);
}

TEST_F(DatasetWriter, Start_zero_appends_to_a_growable_dataset_on_every_call)
{
    const DatasetCall call{.dims = {unlimited, 2}, .mode = 1, .count = {2, 2}, .start = {0, 0}};
    for (int round = 0; round < 3; ++round) {
        const auto values = numbers(4, 10 * round);
        EXPECT_EQ(call.write(at(), values.data()), fine);
    }
    EXPECT_EQ(stored_extents(at(), "a"), (Extents{6, 2}));
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{0, 1, 2, 3, 10, 11, 12, 13, 20, 21, 22, 23}));
}

TEST_F(DatasetWriter, A_start_in_a_growable_dimension_counts_from_the_end)
{
    const auto ten = numbers(10);
    DatasetCall call{.dims = {unlimited}, .mode = 1, .count = {10}, .start = {0}};
    ASSERT_EQ(call.write(at(), ten.data()), fine);
    const std::array<std::int32_t, 3> values{-1, -2, -3};
    call.count = {3};
    call.start = {-10}; // the first row
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{-1, -2, -3, 4, 5, 6, 7, 8, 9, 10}));
    call.start = {-1}; // over the end
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{-1, -2, -3, 4, 5, 6, 7, 8, 9, -1, -2, -3}));
    call.start = {2}; // leaves a gap
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{-1, -2, -3, 4, 5, 6, 7, 8, 9, -1, -2, -3, 0, 0, -1, -2, -3}));
}

TEST_F(DatasetWriter, A_block_before_the_first_row_or_beyond_all_numbers_is_31)
{
    const auto values = numbers(4);
    DatasetCall call{.dims = {unlimited}, .mode = 1, .count = {4}, .start = {0}};
    ASSERT_EQ(call.write(at(), values.data()), fine);
    for (const std::int64_t start :
         {std::int64_t{-5}, std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        call.start = {start};
        EXPECT_EQ(call.write(at(), values.data()), (Outcome{-6031, call.write_line(31)})) << start;
    }
    call.start = {0};
    call.count = {-1};
    EXPECT_EQ(call.write(at(), values.data()), (Outcome{-6031, call.write_line(31)}));
    EXPECT_EQ(stored_extents(at(), "a"), Extents{4});
    call.name = "new";
    call.start = {-1};
    call.count = {2};
    EXPECT_EQ(call.write(at(), values.data()), (Outcome{-6031, call.write_line(31)}));
    EXPECT_FALSE(has_link(at(), "new"));
}

TEST_F(DatasetWriter, A_block_that_makes_the_extents_overflow_is_refused)
{
    const auto values = numbers(4);
    DatasetCall call{.dims = {unlimited, 4}, .mode = 1, .count = {1, 4}, .start = {std::int64_t{1} << 62, 0}};
    EXPECT_EQ(call.write(at(), values.data()), (Outcome{-2040, call.write_line(40)}));
    EXPECT_EQ(listing(), "");
    call.start = {0, 0};
    ASSERT_EQ(call.write(at(), values.data()), fine);
    call.start = {std::int64_t{1} << 62, 0};
    EXPECT_EQ(call.write(at(), values.data()), (Outcome{-3100, call.write_line(100)}));
    EXPECT_EQ(stored_extents(at(), "a"), (Extents{1, 4}));
}

TEST_F(DatasetWriter, A_new_growable_dataset_reaches_from_row_zero_to_the_block)
{
    const auto values = numbers(2);
    EXPECT_EQ((DatasetCall{.dims = {unlimited}, .mode = 1, .count = {2}, .start = {3}}.write(at(), values.data())),
              fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{0, 0, 0, 1, 2}));
}

TEST_F(DatasetWriter, Several_dimensions_may_grow_and_none_ever_shrinks)
{
    const auto values = numbers(4);
    DatasetCall call{.dims = {unlimited, unlimited}, .mode = 1, .count = {2, 2}, .start = {0, 0}};
    ASSERT_EQ(call.write(at(), values.data()), fine);
    call.start = {-2, 0};
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(stored_extents(at(), "a"), (Extents{2, 4}));
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{1, 2, 1, 2, 3, 4, 3, 4}));
    call.count = {1, 1};
    call.start = {-2, -4};
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(stored_extents(at(), "a"), (Extents{2, 4}));
}

TEST_F(DatasetWriter, What_grows_is_what_the_stored_dataset_says)
{
    const auto values = numbers(4);
    put_dataset(at(), "fixed", H5T_STD_I32LE, {4});
    const DatasetCall beyond{.name = "fixed", .dims = {unlimited}, .mode = 1, .count = {2}, .start = {3}};
    EXPECT_EQ(beyond.write(at(), values.data()), (Outcome{-6031, beyond.write_line(31)}));
    EXPECT_EQ((DatasetCall{.name = "fixed", .dims = {unlimited}, .mode = 1, .count = {2}, .start = {2}}.write(
                  at(), values.data())),
              fine);
    EXPECT_EQ(stored_ints(at(), "fixed"), (Ints{0, 0, 1, 2}));
    ASSERT_EQ((DatasetCall{.dims = {unlimited}, .mode = 1, .count = {4}, .start = {0}}.write(at(), values.data())),
              fine);
    EXPECT_EQ((DatasetCall{.dims = {4}, .mode = 1, .count = {2}, .start = {0}}.write(at(), values.data())), fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{1, 2, 3, 4, 1, 2}));
    const auto others = numbers(6, 60);
    EXPECT_EQ((DatasetCall{.dims = {6}}.write(at(), others.data())), fine) << "the whole of a growable dataset";
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{60, 61, 62, 63, 64, 65}));
}

TEST_F(DatasetWriter, A_block_outside_of_fixed_extents_is_31_on_creation_too)
{
    const auto values = numbers(6);
    const auto call = [](const char* name, Ints count, Ints start) {
        return DatasetCall{.name = name, .dims = {3, 3}, .mode = 1, .count = count, .start = start};
    };
    put_dataset(at(), "old", H5T_STD_I32LE, {3, 3});
    for (const auto* name : {"old", "new"}) {
        for (const auto& outside : {call(name, {2, 3}, {2, 0}), call(name, {1, 4}, {0, 0}), call(name, {1, 1}, {3, 0}),
                                    call(name, {1, 1}, {0, -1}), call(name, {-1, 1}, {0, 0}),
                                    call(name, {1, 1}, {std::numeric_limits<std::int64_t>::max(), 0})}) {
            EXPECT_EQ(outside.write(at(), values.data()), (Outcome{-6031, outside.write_line(31)})) << name;
        }
    }
    EXPECT_FALSE(has_link(at(), "new"));
}

TEST_F(DatasetWriter, A_growable_dataset_is_filtered_when_its_first_write_holds_more_than_seven_elements)
{
    const auto values = numbers(8);
    DatasetCall call{.name = "small", .dims = {unlimited, 4}, .mode = 1, .count = {1, 4}, .start = {0, 0}, .flags = 1};
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(call.write(at(), values.data()), fine);
    call.name = "large";
    call.count = {2, 4};
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(listing(), table({
                             "dataset small integer 4 little [2, 4] max [unlimited, 4] chunked [1, 4]",
                             "dataset large integer 4 little [2, 4] max [unlimited, 4] chunked [1, 4] deflate(6)",
                         }));
}

// Datasets: points

TEST_F(DatasetWriter, Points_are_written_in_the_callers_order)
{
    const std::array<std::int32_t, 3> values{7, 8, 9};
    const DatasetCall call{.dims = {2, 3}, .mode = 2, .count = {3}, .start = {1, 2, 0, 0, 1, 0}};
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{8, 0, 0, 9, 0, 7}));
    EXPECT_EQ(listing(), table({"dataset a integer 4 little [2, 3] max [2, 3] compact"}));
    EXPECT_EQ((DatasetCall{.dims = {2, 3}, .mode = 2, .count = {1}, .start = {0, 1}}.write(at(), values.data())), fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{8, 7, 0, 9, 0, 7}));
}

TEST_F(DatasetWriter, A_point_outside_of_fixed_extents_is_32_on_creation_too)
{
    const std::array<std::int32_t, 2> values{7, 8};
    put_dataset(at(), "old", H5T_STD_I32LE, {2, 3});
    for (const auto* name : {"old", "new"}) {
        for (const auto& point : {Ints{2, 0}, Ints{0, 3}, Ints{-1, 0}}) {
            const DatasetCall call{
                .name = name, .dims = {2, 3}, .mode = 2, .count = {2}, .start = {0, 0, point[0], point[1]}};
            EXPECT_EQ(call.write(at(), values.data()), (Outcome{-6032, call.write_line(32)})) << name;
        }
    }
    EXPECT_EQ(stored_ints(at(), "old"), Ints(6, 0));
    EXPECT_FALSE(has_link(at(), "new"));
}

TEST_F(DatasetWriter, Points_of_a_growable_dimension_count_from_the_end_and_extend_it)
{
    const std::array<std::int32_t, 3> values{7, 8, 9};
    DatasetCall call{.dims = {unlimited, 2}, .mode = 2, .count = {2}, .start = {0, 1, 2, 0}};
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(stored_extents(at(), "a"), (Extents{3, 2}));
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{0, 7, 0, 0, 8, 0}));
    call.count = {3};
    call.start = {-3, 0, 0, 0, -1, 1};
    EXPECT_EQ(call.write(at(), values.data()), fine);
    EXPECT_EQ(stored_ints(at(), "a"), (Ints{7, 7, 0, 0, 8, 9, 8, 0}));
    call.start = {0, 0, -5, 0, 0, 0};
    EXPECT_EQ(call.write(at(), values.data()), (Outcome{-6032, call.write_line(32)}));
    EXPECT_EQ(stored_extents(at(), "a"), (Extents{4, 2})) << "nothing is extended for a refused call";
}

TEST_F(DatasetWriter, A_negative_number_of_points_is_refused)
{
    const std::int32_t value = 1;
    const DatasetCall call{.dims = {unlimited, 2}, .mode = 2, .count = {-1}, .start = {0, 0}};
    const auto outcome = call.write(at(), &value);
    EXPECT_LT(outcome.code, -1999) << outcome;
    EXPECT_EQ(listing(), "");
}

// Datasets: reading

TEST_F(DatasetReader, Numbers_come_back_in_the_callers_size)
{
    const std::array<double, 3> values{0.1, 2, -3};
    ASSERT_EQ((DatasetCall{"r", real, 8, 4, {3}}.write(at(), values.data())), fine);
    std::array<double, 3> doubles{};
    EXPECT_EQ((DatasetCall{"r", real, 8, 0, {3}}.read(at(), doubles.data())), fine);
    EXPECT_EQ(doubles, (std::array<double, 3>{static_cast<double>(0.1F), 2, -3}));
    const auto ints = numbers(3);
    ASSERT_EQ((DatasetCall{"i", integer, 4, 4, {3}}.write(at(), ints.data())), fine);
    std::array<std::int64_t, 3> wide{};
    EXPECT_EQ((DatasetCall{"i", integer, 8, 0, {3}}.read(at(), wide.data())), fine);
    EXPECT_EQ(wide, (std::array<std::int64_t, 3>{1, 2, 3}));
    const std::int32_t scalar = 5;
    ASSERT_EQ((DatasetCall{"s"}.write(at(), &scalar)), fine);
    std::int32_t found = 0;
    EXPECT_EQ((DatasetCall{"s"}.read(at(), &found)), fine);
    EXPECT_EQ(found, 5);
}

TEST_F(DatasetReader, Foreign_integers_and_floats_are_converted)
{
    const std::array<std::int32_t, 2> values{-5, 100};
    for (const auto type : {H5T_STD_I8LE, H5T_STD_I16BE, H5T_STD_I32BE}) {
        const Hid group = create_group(at(), "g" + std::to_string(type));
        put_dataset(group, "a", type, {2}, H5T_NATIVE_INT32, values.data());
        std::array<std::int32_t, 2> found{};
        EXPECT_EQ((DatasetCall{.dims = {2}}.read(group, found.data())), fine);
        EXPECT_EQ(found, values);
    }
    const std::array<double, 2> reals{0.5, -2};
    put_dataset(at(), "big", H5T_IEEE_F64BE, {2}, H5T_NATIVE_DOUBLE, reals.data());
    std::array<float, 2> singles{};
    EXPECT_EQ((DatasetCall{"big", real, 4, 0, {2}}.read(at(), singles.data())), fine);
    EXPECT_EQ(singles, (std::array<float, 2>{0.5F, -2.0F}));
}

TEST_F(DatasetReader, The_stored_element_size_is_reported)
{
    const auto values = numbers(3);
    ASSERT_EQ((DatasetCall{"a", integer, 4, 8, {3}}.write(at(), values.data())), fine);
    std::array<std::int64_t, 3> found{};
    const hsize_t three = 3;
    std::uint64_t size = 0;
    EXPECT_EQ(
        kob::KOB_H5Dread("a", found.data(), integer, 8, &three, 1, nullptr, nullptr, 0, at(), nullptr, nullptr, &size),
        0);
    EXPECT_EQ(size, 8U);
    EXPECT_EQ(found[2], 3);
}

TEST_F(DatasetReader, A_zero_extent_or_count_reads_nothing_and_leaves_the_outputs)
{
    std::int32_t value = 77;
    EXPECT_EQ((DatasetCall{.name = "none", .dims = {0, 3}}.read(at(), &value)), fine);
    put_dataset(at(), "a", H5T_STD_I32LE, {4});
    EXPECT_EQ((DatasetCall{.dims = {4}, .mode = 1, .count = {0}, .start = {0}}.read(at(), &value)), fine);
    EXPECT_EQ((DatasetCall{.dims = {4}, .mode = 2, .count = {0}}.read(at(), &value)), fine);
    EXPECT_EQ(value, 77);
    std::int32_t flags = -7;
    std::array<std::int32_t, 2> params{-7, -7};
    std::uint64_t size = 77;
    const hsize_t zero = 0;
    EXPECT_EQ(
        kob::KOB_H5Dread("a", &value, integer, 4, &zero, 1, nullptr, nullptr, 0, at(), &flags, params.data(), &size),
        0);
    EXPECT_EQ(flags, -7);
    EXPECT_EQ(params, (std::array<std::int32_t, 2>{-7, -7}));
    EXPECT_EQ(size, 77U);
}

TEST_F(DatasetReader, An_unknown_type_is_1_a_missing_dataset_2_and_another_class_3)
{
    std::array<std::int64_t, 4> values{};
    put_dataset(at(), "a", H5T_IEEE_F64LE, {4});
    const DatasetCall unknown{"a", 0, 4, 0, {4}};
    EXPECT_EQ(unknown.read(at(), values.data()), (Outcome{-6001, type_line(3, 0, 4) + unknown.read_line(1)}));
    const DatasetCall missing{.name = "none", .dims = {4}};
    EXPECT_EQ(missing.read(at(), values.data()), (Outcome{-6002, missing.read_line(2)}));
    const DatasetCall other{.dims = {4}};
    EXPECT_EQ(other.read(at(), values.data()), (Outcome{-6003, other.read_line(3)}));
    create_group(at(), "g");
    const DatasetCall of_group{.name = "g", .dims = {4}};
    EXPECT_EQ(of_group.read(at(), values.data()), (Outcome{-6003, of_group.read_line(3)}));
    put_dataset(at(), "v", text_type(H5T_VARIABLE, H5T_STR_NULLTERM), {4});
    const DatasetCall of_variable{"v", text, 16, 0, {4}};
    EXPECT_EQ(of_variable.read(at(), values.data()), (Outcome{-6003, of_variable.read_line(3)}));
}

TEST_F(DatasetReader, A_stored_text_wider_than_the_field_is_10_and_an_integer_11)
{
    std::array<char, 64> field{};
    put_dataset(at(), "t", text_type(9), {4});
    const DatasetCall wide_text{"t", text, 8, 0, {4}};
    EXPECT_EQ(wide_text.read(at(), field.data()), (Outcome{-6010, wide_text.read_line(10)}));
    put_dataset(at(), "i", H5T_STD_I64LE, {4});
    const DatasetCall wide_integer{"i", integer, 4, 0, {4}};
    EXPECT_EQ(wide_integer.read(at(), field.data()), (Outcome{-6011, wide_integer.read_line(11)}));
}

TEST_F(DatasetReader, A_shorter_text_is_blanked_and_an_array_comes_end_to_end)
{
    put_dataset(at(), "one", text_type(4), {}, text_type(4), "abcd");
    std::string field(8, '#');
    EXPECT_EQ((DatasetCall{"one", text, 8}.read(at(), field.data())), fine);
    EXPECT_EQ(field, "abcd    ");
    put_dataset(at(), "two", text_type(3), {2}, text_type(3), "abcdef");
    std::string fields(16, '#');
    EXPECT_EQ((DatasetCall{"two", text, 8, 0, {2}}.read(at(), fields.data())), fine);
    EXPECT_EQ(fields.substr(0, 6), "abcdef");
}

TEST_F(DatasetReader, Another_rank_is_20_and_other_extents_are_30)
{
    std::array<std::int32_t, 6> values{};
    put_dataset(at(), "a", H5T_STD_I32LE, {2, 3});
    const DatasetCall flat{.dims = {6}};
    EXPECT_EQ(flat.read(at(), values.data()), (Outcome{-6020, flat.read_line(20)}));
    const DatasetCall turned{.dims = {3, 2}};
    EXPECT_EQ(turned.read(at(), values.data()), (Outcome{-6030, turned.read_line(30)}));
    const DatasetCall scalar{};
    EXPECT_EQ(scalar.read(at(), values.data()), (Outcome{-6020, scalar.read_line(20)}));
    const Hid nothing{H5Screate(H5S_NULL)};
    const Hid null{H5Dcreate2(at(), "null", H5T_STD_I32LE, nothing, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT)};
    const DatasetCall of_null{.name = "null", .dims = {1}};
    EXPECT_EQ(of_null.read(at(), values.data()), (Outcome{-6020, of_null.read_line(20)}));
    const DatasetCall scalar_of_null{.name = "null"};
    EXPECT_EQ(scalar_of_null.read(at(), values.data()), (Outcome{-6020, scalar_of_null.read_line(20)}));
}

TEST_F(DatasetReader, A_block_is_read_by_absolute_positions)
{
    const auto values = numbers(12);
    ASSERT_EQ(
        (DatasetCall{.dims = {unlimited, 3}, .mode = 1, .count = {4, 3}, .start = {0, 0}}.write(at(), values.data())),
        fine);
    std::vector<std::int32_t> found(4);
    EXPECT_EQ((DatasetCall{.dims = {4, 3}, .mode = 1, .count = {2, 2}, .start = {1, 1}}.read(at(), found.data())),
              fine);
    EXPECT_EQ(found, (std::vector<std::int32_t>{5, 6, 8, 9}));
    EXPECT_EQ((DatasetCall{.dims = {4, 3}, .mode = 1, .count = {1, 1}, .start = {3, 2}}.read(at(), found.data())),
              fine);
    EXPECT_EQ(found[0], 12);
    for (const auto& [count, start] : std::vector<std::pair<Ints, Ints>>{
             {{2, 1}, {3, 0}}, {{1, 1}, {4, 0}}, {{1, 1}, {-1, 0}}, {{1, 4}, {0, 0}}, {{-1, 1}, {0, 0}}}) {
        const DatasetCall outside{.dims = {4, 3}, .mode = 1, .count = count, .start = start};
        EXPECT_EQ(outside.read(at(), found.data()), (Outcome{-6031, outside.read_line(31)}));
    }
}

TEST_F(DatasetReader, Points_are_read_in_the_callers_order)
{
    const auto values = numbers(6);
    ASSERT_EQ((DatasetCall{.dims = {2, 3}}.write(at(), values.data())), fine);
    std::vector<std::int32_t> found(3);
    EXPECT_EQ(
        (DatasetCall{.dims = {2, 3}, .mode = 2, .count = {3}, .start = {1, 2, 0, 0, 1, 0}}.read(at(), found.data())),
        fine);
    EXPECT_EQ(found, (std::vector<std::int32_t>{6, 1, 4}));
    for (const auto& point : {Ints{2, 0}, Ints{0, 3}, Ints{0, -1}}) {
        const DatasetCall outside{.dims = {2, 3}, .mode = 2, .count = {1}, .start = point};
        EXPECT_EQ(outside.read(at(), found.data()), (Outcome{-6032, outside.read_line(32)}));
    }
}

TEST_F(DatasetReader, The_filters_come_back_as_the_flags_and_parameters_that_made_them)
{
    struct Row {
        std::int32_t type;
        std::int32_t asked;
        std::int32_t flags;
        std::array<std::int32_t, 2> params;
    };
    const std::vector<float> values(9, 1.5F);
    int number = 0;
    for (const auto& row : {
             Row{integer, 0, 0, {0, 0}},
             Row{integer, 1, 1, {0, 6}},
             Row{integer, 8, 8, {0, 0}},
             Row{integer, 64, 64, {0, 0}},
             Row{integer, 255, 73, {0, 6}},
             Row{real, 2, 2, {0, 6}},
             Row{real, 16, 16, {0, 0}},
             Row{real, 128, 128, {3, 0}},
             Row{real, 255, 146, {3, 6}},
             Row{text, 4, 4, {0, 6}},
             Row{text, 32, 32, {0, 0}},
             Row{text, 255, 36, {0, 6}},
         }) {
        const auto name = "d" + std::to_string(number++);
        const DatasetCall call{.name = name.c_str(), .type = row.type, .dims = {9}, .flags = row.asked};
        ASSERT_EQ(call.write(at(), values.data()), fine);
        std::vector<float> found(9);
        std::int32_t flags = -7;
        std::array<std::int32_t, 2> params{-7, -7};
        std::uint64_t size = 0;
        const hsize_t nine = 9;
        EXPECT_EQ(kob::KOB_H5Dread(name.c_str(), found.data(), row.type, 4, &nine, 1, nullptr, nullptr, 0, at(), &flags,
                                   params.data(), &size),
                  0);
        EXPECT_EQ(flags, row.flags) << row.type << "/" << row.asked;
        EXPECT_EQ(params, row.params) << row.type << "/" << row.asked;
        EXPECT_EQ(found, values);
    }
}

TEST_F(DatasetReader, A_filter_of_another_maker_is_not_reported)
{
    const Hid creation{H5Pcreate(H5P_DATASET_CREATE)};
    const hsize_t nine = 9;
    H5Pset_chunk(creation, 1, &nine);
    H5Pset_fletcher32(creation);
    const auto values = numbers(9);
    put_dataset(at(), "a", H5T_STD_I32LE, {9}, H5T_NATIVE_INT32, values.data(), creation);
    std::vector<std::int32_t> found(9);
    std::int32_t flags = -7;
    std::array<std::int32_t, 2> params{-7, -7};
    EXPECT_EQ(kob::KOB_H5Dread("a", found.data(), integer, 4, &nine, 1, nullptr, nullptr, 0, at(), &flags,
                               params.data(), nullptr),
              0);
    EXPECT_EQ(found, values);
    EXPECT_EQ(flags, 0);
    EXPECT_EQ(params, (std::array<std::int32_t, 2>{0, 0}));
}

TEST_F(DatasetReader, Scale_offset_of_an_unexpected_kind_is_40_50_and_60)
{
    const hsize_t nine = 9;
    const auto scaled = [&](H5Z_SO_scale_type_t kind) {
        Hid creation{H5Pcreate(H5P_DATASET_CREATE)};
        H5Pset_chunk(creation, 1, &nine);
        const std::array<unsigned, 2> parameters{static_cast<unsigned>(kind), 3};
        H5Pset_filter(creation, H5Z_FILTER_SCALEOFFSET, H5Z_FLAG_OPTIONAL, 2, parameters.data());
        return creation;
    };
    std::array<double, 9> found{};
    put_dataset(at(), "i", H5T_STD_I32LE, {9}, H5I_INVALID_HID, nullptr, scaled(H5Z_SO_FLOAT_DSCALE));
    const DatasetCall integers{.name = "i", .dims = {9}};
    EXPECT_EQ(integers.read(at(), found.data()), (Outcome{-6040, integers.read_line(40)}));
    put_dataset(at(), "r", H5T_IEEE_F64LE, {9}, H5I_INVALID_HID, nullptr, scaled(H5Z_SO_FLOAT_ESCALE));
    const DatasetCall reals{"r", real, 8, 0, {9}};
    EXPECT_EQ(reals.read(at(), found.data()), (Outcome{-6050, reals.read_line(50)}));
    put_dataset(at(), "r2", H5T_IEEE_F64LE, {9}, H5I_INVALID_HID, nullptr, scaled(H5Z_SO_INT));
    const DatasetCall reals_as_integers{"r2", real, 8, 0, {9}};
    EXPECT_EQ(reals_as_integers.read(at(), found.data()), (Outcome{-6050, reals_as_integers.read_line(50)}));
}

TEST_F(DatasetReader, Scale_offset_on_a_text_is_60)
{
    // HDF5 refuses to make such a dataset: one with a filter of our own is turned into it in the file's bytes
    constexpr H5Z_filter_t own = 0x1234;
    const H5Z_class2_t description{
        H5Z_CLASS_T_VERS,
        own,
        1,
        1,
        "scaleoffset",
        nullptr,
        nullptr,
        [](unsigned, std::size_t, const unsigned*, std::size_t size, std::size_t*, void**) { return size; }};
    H5Zregister(&description);
    const TempFile temp;
    {
        const auto file = create_file(temp.path());
        const Hid creation{H5Pcreate(H5P_DATASET_CREATE)};
        const hsize_t nine = 9;
        H5Pset_chunk(creation, 1, &nine);
        const std::array<unsigned, 2> parameters{H5Z_SO_INT, 0};
        H5Pset_filter(creation, own, H5Z_FLAG_OPTIONAL, 2, parameters.data());
        put_dataset(file, "a", text_type(4), {9}, H5I_INVALID_HID, nullptr, creation);
    }
    H5Zunregister(own);
    std::fstream bytes{temp.path(), std::ios::in | std::ios::out | std::ios::binary};
    const std::string content{std::istreambuf_iterator<char>{bytes}, {}};
    const auto name = content.find("scaleoffset");
    ASSERT_NE(name, std::string::npos);
    ASSERT_EQ(content.substr(name - 8, 2), "\x34\x12"); // the filter's number stands 8 bytes before its name
    bytes.seekp(static_cast<std::streamoff>(name) - 8);
    bytes.write("\x06\x00", 2);
    bytes.close();

    const auto file = open_file(temp.path());
    std::array<char, 36> found{};
    const DatasetCall call{"a", text, 4, 0, {9}};
    EXPECT_EQ(call.read(file, found.data()), (Outcome{-6060, call.read_line(60)}));
}

TEST_F(DatasetReader, A_read_that_fails_is_999)
{
    const Hid creation{H5Pcreate(H5P_DATASET_CREATE)};
    H5Pset_external(creation, "/nonexistent/values.raw", 0, 16);
    put_dataset(at(), "a", H5T_STD_I32LE, {4}, H5I_INVALID_HID, nullptr, creation);
    std::array<std::int32_t, 4> found{};
    const DatasetCall call{.dims = {4}};
    EXPECT_EQ(call.read(at(), found.data()), (Outcome{-6999, call.read_line(999)}));
}
