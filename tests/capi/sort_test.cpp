// SPDX-License-Identifier: BSD-3-Clause
// Sorting and searching through positions: integers, texts of equal width, texts behind pointers or offsets.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kob_dp.h>
#include <sys/mman.h>

namespace {

using testing::ElementsAre;
using Ints = std::vector<std::int32_t>;

constexpr auto smallest = std::numeric_limits<std::int32_t>::min();
constexpr auto largest = std::numeric_limits<std::int32_t>::max();

Ints positions(std::size_t count)
{
    Ints index(count);
    std::iota(index.begin(), index.end(), 0);
    return index;
}

std::int32_t last(const Ints& index) { return static_cast<std::int32_t>(index.size()) - 1; }

/// The values in the order of the index.
template <class Value> std::vector<Value> in_order(const std::vector<Value>& values, const Ints& index)
{
    std::vector<Value> ordered;
    for (const auto i : index) ordered.push_back(values.at(static_cast<std::size_t>(i)));
    return ordered;
}

bool is_permutation(Ints index)
{
    std::sort(index.begin(), index.end());
    return index == positions(index.size());
}

std::int32_t found(std::int32_t key, const Ints& values, const std::int32_t* index, std::int32_t lo, std::int32_t hi)
{
    std::int32_t position = 77;
    kob_ibsearch(key, values.data(), index, lo, hi, &position);
    return position;
}

// ---- integers

TEST(IntegerSort, Rearranges_the_index_and_leaves_the_values)
{
    const Ints values{30, 10, 20};
    auto index = positions(3);
    kob_iquicksort(values.data(), index.data(), 0, 2);
    EXPECT_THAT(index, ElementsAre(1, 2, 0));
}

TEST(IntegerSort, Compares_signed_numbers_of_any_size)
{
    const Ints values{0, largest, -1, smallest, 1};
    auto index = positions(5);
    kob_iquicksort(values.data(), index.data(), 0, 4);
    EXPECT_THAT(in_order(values, index), ElementsAre(smallest, -1, 0, 1, largest));
}

TEST(IntegerSort, Orders_many_values_with_repetitions)
{
    std::mt19937 random{12345};
    for (const std::size_t count : {2U, 3U, 10U, 1000U, 20000U}) {
        Ints values(count);
        for (auto& v : values) v = static_cast<std::int32_t>(random() % (count / 2 + 1)) - 3;
        auto index = positions(count);
        kob_iquicksort(values.data(), index.data(), 0, last(index));
        const auto ordered = in_order(values, index);
        EXPECT_TRUE(std::is_sorted(ordered.begin(), ordered.end())) << count;
        EXPECT_TRUE(is_permutation(index)) << count;
    }
}

TEST(IntegerSort, Copes_with_equal_ascending_and_descending_values)
{
    constexpr std::size_t count = 200000;
    Ints equal(count, 5);
    Ints ascending = positions(count);
    Ints descending{ascending.rbegin(), ascending.rend()};
    for (const auto& values : {equal, ascending, descending}) {
        auto index = positions(count);
        kob_iquicksort(values.data(), index.data(), 0, last(index));
        const auto ordered = in_order(values, index);
        EXPECT_TRUE(std::is_sorted(ordered.begin(), ordered.end()));
        EXPECT_TRUE(is_permutation(index));
    }
}

TEST(IntegerSort, Equal_values_change_places_when_they_meet_the_pivot)
{
    const Ints values(4, 5);
    auto index = positions(4);
    kob_iquicksort(values.data(), index.data(), 0, 3);
    EXPECT_THAT(index, ElementsAre(2, 3, 0, 1)); // 0 and 3, 1 and 2 are swapped, then each half within itself
}

TEST(IntegerSort, Leaves_the_index_of_sorted_values_as_it_is)
{
    const Ints values{-5, 0, 3, 8, 12, 40};
    auto index = positions(6);
    kob_iquicksort(values.data(), index.data(), 0, 5);
    EXPECT_THAT(index, ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST(IntegerSort, Touches_the_places_from_lo_to_hi_alone)
{
    const Ints values{9, 8, 7, 6, 5};
    Ints index{0, 1, 2, 3, 4};
    kob_iquicksort(values.data(), index.data(), 1, 3);
    EXPECT_THAT(index, ElementsAre(0, 3, 2, 1, 4));
}

TEST(IntegerSort, Does_nothing_with_one_place_or_none)
{
    const Ints values{9, 8};
    Ints index{1, 0};
    kob_iquicksort(values.data(), index.data(), 0, 0);
    kob_iquicksort(values.data(), index.data(), 1, 0);
    kob_iquicksort(nullptr, nullptr, 0, -1);
    EXPECT_THAT(index, ElementsAre(1, 0));
}

TEST(IntegerSort, Has_a_second_name)
{
    const Ints values{30, 10, 20};
    auto index = positions(3);
    kob_jquicksort(values.data(), index.data(), 0, 2);
    EXPECT_THAT(index, ElementsAre(1, 2, 0));
    std::int32_t position = 77;
    kob_jbsearch(20, values.data(), index.data(), 0, 2, &position);
    EXPECT_EQ(position, 1);
    kob_jbsearch(21, values.data(), index.data(), 0, 2, &position);
    EXPECT_EQ(position, -1);
}

TEST(IntegerSearch, Returns_the_place_in_the_index_not_the_position_it_holds)
{
    const Ints values{30, 10, 20};
    const Ints index{1, 2, 0};
    EXPECT_EQ(found(10, values, index.data(), 0, 2), 0);
    EXPECT_EQ(found(20, values, index.data(), 0, 2), 1);
    EXPECT_EQ(found(30, values, index.data(), 0, 2), 2);
}

TEST(IntegerSearch, Takes_sorted_values_without_an_index)
{
    const Ints values{smallest, -4, 0, 7, largest};
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(found(values[i], values, nullptr, 0, 4), static_cast<std::int32_t>(i));
}

TEST(IntegerSearch, Returns_minus_one_below_between_and_above)
{
    for (std::size_t count = 1; count < 20; ++count) {
        Ints values(count);
        for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<std::int32_t>(2 * i);
        for (std::int32_t key = -1; key <= 2 * static_cast<std::int32_t>(count) - 1; ++key)
            EXPECT_EQ(found(key, values, nullptr, 0, last(values)), key % 2 == 0 ? key / 2 : -1) << count << " " << key;
    }
    const Ints ends{smallest + 1, largest - 1};
    EXPECT_EQ(found(smallest, ends, nullptr, 0, 1), -1);
    EXPECT_EQ(found(largest, ends, nullptr, 0, 1), -1);
}

TEST(IntegerSearch, Looks_at_the_places_from_lo_to_hi_alone)
{
    const Ints values{1, 2, 3, 4, 5};
    EXPECT_EQ(found(1, values, nullptr, 1, 3), -1);
    EXPECT_EQ(found(2, values, nullptr, 1, 3), 1);
    EXPECT_EQ(found(4, values, nullptr, 1, 3), 3);
    EXPECT_EQ(found(5, values, nullptr, 1, 3), -1);
}

TEST(IntegerSearch, Takes_one_place_or_none)
{
    const Ints values{4, 6, 8};
    EXPECT_EQ(found(6, values, nullptr, 1, 1), 1);
    EXPECT_EQ(found(4, values, nullptr, 1, 1), -1);
    EXPECT_EQ(found(8, values, nullptr, 1, 1), -1);
    EXPECT_EQ(found(6, values, nullptr, 2, 1), -1);
    EXPECT_EQ(found(6, {}, nullptr, 0, -1), -1);
}

TEST(IntegerSearch, Finds_of_equal_values_the_one_that_halving_meets_first)
{
    const Ints values(7, 5);
    EXPECT_EQ(found(5, values, nullptr, 0, 6), 3);
    EXPECT_EQ(found(5, values, nullptr, 2, 6), 4);
}

// ---- texts of equal width

/// Fields of `width` characters, end to end; what a text leaves is filled with `padding`.
std::string fields(std::initializer_list<std::string> texts, std::size_t width, char padding = ' ')
{
    std::string all;
    for (auto text : texts) {
        text.resize(width, padding);
        all += text;
    }
    return all;
}

std::int32_t found(const std::string& key, const std::string& records, const std::int32_t* index, std::int32_t hi,
                   std::int32_t width)
{
    std::int32_t position = 77;
    kob_cbsearch(key.data(), records.data(), index, 0, hi, width, &position);
    return position;
}

TEST(TextSort, Orders_the_fields_by_their_trimmed_texts)
{
    const auto records = fields({"b", "abc", "", "ab", "Zebra", "zz"}, 5);
    auto index = positions(6);
    kob_cquicksort(records.data(), index.data(), 0, 5, 5);
    EXPECT_THAT(index, ElementsAre(2, 4, 3, 1, 0, 5)); // "", Zebra, ab, abc, b, zz
}

TEST(TextSort, Takes_blanks_tabs_and_nuls_behind_a_text_for_nothing)
{
    // all equal but the last: whatever their order, they stand in front of it
    const std::string records = fields({"abc", "abc\t"}, 6) + fields({"abc"}, 6, '\0') + fields({"abb"}, 6);
    auto index = positions(4);
    kob_cquicksort(records.data(), index.data(), 0, 3, 6);
    EXPECT_EQ(index.front(), 3);
    EXPECT_TRUE(is_permutation(index));
    EXPECT_NE(found(fields({"abc"}, 6), records, index.data(), 3, 6), -1);
}

TEST(TextSort, Compares_bytes_without_sign)
{
    const auto records = fields({"\xe9!", "z!"}, 2);
    auto index = positions(2);
    kob_cquicksort(records.data(), index.data(), 0, 1, 2);
    EXPECT_THAT(index, ElementsAre(1, 0));
}

TEST(TextSort, Touches_the_places_from_lo_to_hi_alone)
{
    const auto records = fields({"e", "d", "c", "b", "a"}, 1);
    auto index = positions(5);
    kob_cquicksort(records.data(), index.data(), 1, 3, 1);
    EXPECT_THAT(index, ElementsAre(0, 3, 2, 1, 4));
    kob_cquicksort(records.data(), index.data(), 3, 2, 1);
    EXPECT_THAT(index, ElementsAre(0, 3, 2, 1, 4));
}

TEST(TextSort, Reads_no_byte_behind_the_fields)
{
    const std::vector<char> records{'b', 'b', 'a', 'a'}; // on the heap, without a NUL
    auto index = positions(2);
    kob_cquicksort(records.data(), index.data(), 0, 1, 2);
    EXPECT_THAT(index, ElementsAre(1, 0));
}

TEST(TextSort, With_a_width_below_1_all_texts_are_equal)
{
    auto index = positions(3);
    kob_cquicksort("cba", index.data(), 0, 2, 0);
    EXPECT_TRUE(is_permutation(index));
    std::int32_t position = 77;
    kob_cbsearch("x", "cba", nullptr, 0, 2, 0, &position);
    EXPECT_EQ(position, 1);
}

TEST(TextSearch, Finds_trimmed_texts_with_and_without_an_index)
{
    const auto sorted = fields({"ab", "abc", "b"}, 4);
    EXPECT_EQ(found(fields({"ab"}, 4), sorted, nullptr, 2, 4), 0);
    EXPECT_EQ(found(fields({"abc"}, 4, '\0'), sorted, nullptr, 2, 4), 1);
    EXPECT_EQ(found(fields({"b"}, 4), sorted, nullptr, 2, 4), 2);
    EXPECT_EQ(found(fields({"a"}, 4), sorted, nullptr, 2, 4), -1);
    EXPECT_EQ(found(fields({"abb"}, 4), sorted, nullptr, 2, 4), -1);
    EXPECT_EQ(found(fields({"c"}, 4), sorted, nullptr, 2, 4), -1);
    EXPECT_EQ(found(fields({"AB"}, 4), sorted, nullptr, 2, 4), -1);

    const auto unsorted = fields({"b", "ab", "abc"}, 4);
    const Ints index{1, 2, 0};
    EXPECT_EQ(found(fields({"ab"}, 4), unsorted, index.data(), 2, 4), 0);
    EXPECT_EQ(found(fields({"b"}, 4), unsorted, index.data(), 2, 4), 2);
}

TEST(TextSearch, Without_a_place_nothing_is_found)
{
    EXPECT_EQ(found("a", "a", nullptr, -1, 1), -1);
    EXPECT_EQ(found("a", "a", nullptr, 0, 1), 0);
}

/// A buffer of more than 2^31 bytes of which few are ever touched.
class HugeBuffer {
public:
    explicit HugeBuffer(std::size_t size) : size_{size}
    {
        address_ = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    }
    ~HugeBuffer()
    {
        if (data() != nullptr) munmap(address_, size_);
    }
    HugeBuffer(const HugeBuffer&) = delete;
    HugeBuffer& operator=(const HugeBuffer&) = delete;
    char* data() { return address_ == MAP_FAILED ? nullptr : static_cast<char*>(address_); }

private:
    std::size_t size_;
    void* address_;
};

TEST(TextSort, Reaches_fields_beyond_2_gigabytes)
{
    constexpr std::int32_t width = 256;
    constexpr std::int32_t far = 9000000; // byte 2,304,000,000
    HugeBuffer records{static_cast<std::size_t>(far + 2) * width};
    ASSERT_NE(records.data(), nullptr);
    std::strcpy(records.data() + static_cast<std::size_t>(far) * width, "b");
    std::strcpy(records.data() + static_cast<std::size_t>(far + 1) * width, "a");
    Ints index{far, far + 1};
    kob_cquicksort(records.data(), index.data(), 0, 1, width);
    EXPECT_THAT(index, ElementsAre(far + 1, far));
    std::int32_t position = 77;
    kob_cbsearch(fields({"b"}, width).data(), records.data(), index.data(), 0, 1, width, &position);
    EXPECT_EQ(position, 1);
    kob_cbsearch(fields({"b"}, width).data(), records.data(), nullptr, far, far, width, &position);
    EXPECT_EQ(position, far);
}

// ---- texts behind pointers and offsets

TEST(PointerSort, Orders_whole_texts_byte_by_byte)
{
    const std::array<const char*, 6> texts{"b", "abc ", "abc", "\xe9", "", "Zebra"};
    auto index = positions(6);
    kob_cpquicksort(texts.data(), index.data(), 0, 5);
    EXPECT_THAT(index, ElementsAre(4, 5, 2, 1, 0, 3)); // a blank at the end counts, bytes have no sign
}

TEST(PointerSort, Touches_the_places_from_lo_to_hi_alone)
{
    const std::array<const char*, 4> texts{"d", "c", "b", "a"};
    auto index = positions(4);
    kob_cpquicksort(texts.data(), index.data(), 1, 2);
    EXPECT_THAT(index, ElementsAre(0, 2, 1, 3));
    kob_cpquicksort(texts.data(), index.data(), 0, -1);
    EXPECT_THAT(index, ElementsAre(0, 2, 1, 3));
}

std::int32_t found(const char* key, const std::string& buffer, const Ints& offsets)
{
    std::int32_t position = 77;
    kob_cpbsearch(key, buffer.data(), offsets.data(), 0, last(offsets), &position);
    return position;
}

TEST(OffsetSearch, Finds_texts_in_one_buffer)
{
    const std::string buffer{"delta\0alpha\0beta\0", 17};
    const Ints offsets{6, 12, 0};
    EXPECT_EQ(found("alpha", buffer, offsets), 0);
    EXPECT_EQ(found("beta", buffer, offsets), 1);
    EXPECT_EQ(found("delta", buffer, offsets), 2);
    EXPECT_EQ(found("alph", buffer, offsets), -1);
    EXPECT_EQ(found("beta ", buffer, offsets), -1);
    EXPECT_EQ(found("zeta", buffer, offsets), -1);
    EXPECT_EQ(found("alpha", buffer, {}), -1);
}

TEST(OffsetSearch, Without_offsets_each_byte_starts_a_text)
{
    std::int32_t position = 77;
    kob_cpbsearch("cd", "abcd", nullptr, 0, 3, &position); // abcd, bcd, cd, d
    EXPECT_EQ(position, 2);
    kob_cpbsearch("abcd", "abcd", nullptr, 0, 3, &position);
    EXPECT_EQ(position, 0);
    kob_cpbsearch("c", "abcd", nullptr, 0, 3, &position);
    EXPECT_EQ(position, -1);
    kob_cpbsearch("abcd", "abcd", nullptr, 1, 0, &position);
    EXPECT_EQ(position, -1);
}

} // namespace
