// SPDX-License-Identifier: BSD-3-Clause
// Sorting and searching through an index: the values stay where they are.
#include "kob_dp.h"
#include "kob_text.hpp"

#include <array>
#include <cstring>
#include <tuple>
#include <utility>

namespace kob {
namespace {

/// Sorts index positions lo to hi. `compare(a, b)` compares the elements that two index entries name.
/// The order among equal elements is part of what callers see, so the partition is exactly this one.
template <class Compare> void sort_index(std::int32_t* index, std::int32_t lo, std::int32_t hi, Compare&& compare)
{
    // Parts are independent of each other. The larger one waits, so that 32 places hold all there can be.
    std::array<std::pair<std::int64_t, std::int64_t>, 32> waiting{};
    std::size_t parts = 0;
    std::int64_t begin = lo;
    std::int64_t end = hi;
    while (true) {
        if (begin >= end) {
            if (parts == 0) {
                return;
            }
            std::tie(begin, end) = waiting[--parts];
            continue;
        }
        const std::int32_t pivot = index[(begin + end) / 2];
        std::int64_t i = begin;
        std::int64_t j = end;
        while (i <= j) {
            while (compare(index[i], pivot) < 0) {
                ++i;
            }
            while (compare(index[j], pivot) > 0) {
                --j;
            }
            if (i <= j) {
                std::swap(index[i], index[j]);
                ++i;
                --j;
            }
        }
        if (j - begin > end - i) {
            waiting[parts++] = {begin, j};
            begin = i;
        } else {
            waiting[parts++] = {i, end};
            end = j;
        }
    }
}

/// Halves lo to hi until `compare(position)`, the key against the element there, is 0. -1 when none is.
template <class Compare> std::int32_t search(std::int32_t lo, std::int32_t hi, Compare&& compare)
{
    constexpr std::int32_t not_found = -1;
    std::int64_t begin = lo;
    std::int64_t end = hi;
    while (begin <= end) {
        const std::int64_t middle = (begin + end) / 2;
        const int order = compare(static_cast<std::int32_t>(middle));
        if (order == 0) {
            return static_cast<std::int32_t>(middle);
        }
        if (order > 0) {
            begin = middle + 1;
        } else {
            end = middle - 1;
        }
    }
    return not_found;
}

template <class Number> int compare_numbers(Number a, Number b)
{
    return static_cast<int>(a > b) - static_cast<int>(a < b);
}

const char* record(const char* records, std::int32_t position, std::int32_t width)
{
    return records + static_cast<std::ptrdiff_t>(position) * width;
}

std::int32_t at(const std::int32_t* index, std::int32_t position)
{
    return index == nullptr ? position : index[position];
}

} // namespace
} // namespace kob

extern "C" {

void kob_iquicksort(const int32_t* values, int32_t* index, int32_t lo, int32_t hi)
{
    kob::sort_index(index, lo, hi,
                    [values](int32_t a, int32_t b) { return kob::compare_numbers(values[a], values[b]); });
}

void kob_ibsearch(int32_t key, const int32_t* values, const int32_t* index, int32_t lo, int32_t hi, int32_t* position)
{
    *position =
        kob::search(lo, hi, [=](int32_t middle) { return kob::compare_numbers(key, values[kob::at(index, middle)]); });
}

void kob_cquicksort(const char* records, int32_t* index, int32_t lo, int32_t hi, int32_t width)
{
    kob::sort_index(index, lo, hi, [=](int32_t a, int32_t b) {
        return KOB_strncmp(kob::record(records, a, width), kob::record(records, b, width), width);
    });
}

void kob_cbsearch(const char* key, const char* records, const int32_t* index, int32_t lo, int32_t hi, int32_t width,
                  int32_t* position)
{
    *position = kob::search(lo, hi, [=](int32_t middle) {
        return KOB_strncmp(key, kob::record(records, kob::at(index, middle), width), width);
    });
}

void kob_cpquicksort(const char* const* texts, int32_t* index, int32_t lo, int32_t hi)
{
    kob::sort_index(index, lo, hi, [texts](int32_t a, int32_t b) { return std::strcmp(texts[a], texts[b]); });
}

void kob_cpbsearch(const char* key, const char* base, const int32_t* offsets, int32_t lo, int32_t hi, int32_t* position)
{
    *position = kob::search(lo, hi, [=](int32_t middle) { return std::strcmp(key, base + kob::at(offsets, middle)); });
}

void kob_jquicksort(const int32_t* values, int32_t* index, int32_t lo, int32_t hi)
    __attribute__((alias("kob_iquicksort")));

void kob_jbsearch(int32_t key, const int32_t* values, const int32_t* index, int32_t lo, int32_t hi, int32_t* position)
    __attribute__((alias("kob_ibsearch")));

} // extern "C"
