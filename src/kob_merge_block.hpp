// SPDX-License-Identifier: BSD-3-Clause
// What the blocks that the merger holds in memory have in common.
#pragma once

#include "kob_kinds.hpp"
#include "kob_location.hpp"
#include "kob_placement.hpp"
#include "kob_storage.hpp"
#include "kob_text.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kob::merge {

/// A fixed field of 256 characters.
class Name {
public:
    Name(std::string_view text = "") { fill_field(field_.data(), field_.size(), text); } // NOLINT: reads like a text

    [[nodiscard]] char* data() { return field_.data(); }
    [[nodiscard]] const char* data() const { return field_.data(); }
    [[nodiscard]] std::string_view text() const { return trimmed(field_.data(), name_length); }

private:
    std::array<char, name_length> field_{};
};

/// Filter flags and their parameters.
struct Compression {
    std::int32_t flags = 0;
    std::array<std::int32_t, 2> params{}; ///< decimal scale factor, deflate level

    [[nodiscard]] bool is_any() const { return flags != 0; }
};

/// A block of a file, open for reading.
class StoredBlock {
public:
    StoredBlock(Id group, Generation generation)
        : group_{std::move(group)}, places_{{group_.get(), generation}}, handle_{group_.get()}
    {
    }

    /// As entry points take it.
    [[nodiscard]] const std::int64_t* handle() const { return &handle_; }
    [[nodiscard]] Generation generation() const { return places_.block().generation; }
    [[nodiscard]] bool is_current() const { return places_.block().is_current(); }
    /// The group of a place, negative when it is not there.
    hid_t place(Where where) { return places_.open(where); }
    explicit operator bool() const { return static_cast<bool>(group_); }

private:
    Id group_;
    Places places_;
    std::int64_t handle_;
};

/// Where a writer puts a block, and how it stores it.
struct Destination {
    Generation generation = Generation::current;
    std::int64_t group = -1; ///< result-set group, or the block's own group where the writer takes that
    std::int32_t state = -1; ///< state number of the path; negative: taken from the index identifiers
    std::int32_t set = no_suffix;
    Compression compression;
    std::int32_t float_size = 8;
};

/// Elements of a stored dataset, none where it is missing. What a buffer must hold is asked of the file, not of the
/// attributes that a file claims.
inline std::size_t stored(StoredBlock& block, const char* name, Where where = Where::data)
{
    return static_cast<std::size_t>(std::max<std::int64_t>(count_elements(block.place(where), name), 0));
}

/// Bytes of a stored element, 0 where there is none.
inline std::int32_t stored_width(StoredBlock& block, const char* name)
{
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(element_size(block.place(Where::data), name), 0, INT32_MAX));
}

/// Sizes a buffer. Not even an empty one is null: a reader that finds nothing stored says so, and blames no caller.
template <class T> void fit(std::vector<T>& buffer, std::size_t size)
{
    buffer.reserve(1);
    buffer.resize(size);
}

/// Bytes of a stored array of texts.
inline std::size_t text_bytes(StoredBlock& block, const char* name)
{
    return stored(block, name) * static_cast<std::size_t>(stored_width(block, name));
}

/// A block whose counts contradict its contents in a way that no reader notices.
constexpr std::int32_t inconsistent_block = -1;

/// Array of names, as its reader left it: end to end at the stored width. Makes it one of 256-character fields.
inline void widen_names(StoredBlock& block, const char* dataset, std::vector<char>& names)
{
    const auto width = static_cast<std::size_t>(stored_width(block, dataset));
    if (width == 0 || width >= static_cast<std::size_t>(name_length)) {
        return;
    }
    const std::size_t count = names.size() / width;
    std::vector<char> fields(count * name_length, ' ');
    for (std::size_t i = 0; i < count; ++i) {
        std::copy_n(names.data() + i * width, width, fields.data() + i * name_length);
    }
    names.swap(fields);
}

/// The state that a block belongs to.
struct StateIndex {
    std::int32_t nindex = 0;
    std::int32_t indexic = 0;
    std::vector<std::int32_t> indexident;
    std::vector<double> indexval;

    void make_room(StoredBlock& block)
    {
        fit(indexident, stored(block, "indexident", Where::index));
        fit(indexval, stored(block, "indexval", Where::index));
    }
    /// The validity of the block's path. The identifiers must be known.
    [[nodiscard]] Validity validity(std::int32_t state) const
    {
        const bool has_identifiers = nindex <= 0 || indexident.size() >= static_cast<std::size_t>(nindex);
        return {has_identifiers ? nindex : constant, indexident.data(), state};
    }
};

/// Passes, or section bits, of a reader: for the sizes and names, for the state index, for the rows.
struct Passes {
    std::int32_t attributes;
    std::int32_t index; ///< the same as `values` where one pass reads both
    std::int32_t values;
};

/// Readers of the older layout that know no sections: sizes and names, or everything.
constexpr Passes two_passes{1, 2, 2};

template <class Block> constexpr const Passes& passes_of(Generation generation)
{
    return generation == Generation::current ? Block::passes : Block::older_passes;
}

/// The pass in which a block that is copied is read as a whole.
template <class Block> constexpr std::int32_t whole_pass(Generation generation)
{
    return generation == Generation::current ? Block::pass : two_passes.values;
}

/// The pass for the rows of a block; some blocks choose it by what they hold.
template <class Block> std::int32_t values_pass(const Block& block, Generation generation, bool leads)
{
    if constexpr (requires { block.values_pass(leads); }) {
        return block.values_pass(leads);
    } else {
        return passes_of<Block>(generation).values;
    }
}

/// Are the rows of a merged block in its memory? Large values may be left to those who write them.
template <class Block> bool holds_rows(const Block& block)
{
    if constexpr (requires { block.holds_values; }) {
        return block.holds_values;
    } else {
        return true;
    }
}

/// One dataset of a block with a row for each entity.
template <class T> struct Column {
    const char* name;
    std::vector<T>& values;
    std::int64_t width;            ///< values of a row in memory; 0 where the block lacks the dataset
    std::int64_t elements = width; ///< elements of a row in the file
    bool is_optional = false;      ///< one domain may lack what another has
    T missing = T{};               ///< what rows hold whose domain lacks it
};

/// A column of single integers that a block may lack.
inline Column<std::int32_t> optional_column(const char* name, std::vector<std::int32_t>& values, bool is_there)
{
    const std::int64_t width = is_there ? 1 : 0;
    return {name, values, width, width, true};
}

inline Column<char> text_column(const char* name, std::vector<char>& texts, std::int32_t length)
{
    const std::int32_t width = std::max(length, 0);
    return {name, texts, width, width > 0 ? 1 : 0, true, ' '};
}

/// A quantity that all blocks of one path must have in common.
struct Trait {
    const char* name;
    std::int32_t value;
};

} // namespace kob::merge
