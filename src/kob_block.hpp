// SPDX-License-Identifier: BSD-3-Clause
// The block machine: Writer and Reader walk the same description of a block.
//
// A block is described once, as a struct of the caller's addresses and functions that name its items in order. The
// verbs below are the same in Writer and Reader, so that one list writes the block and reads it. Each keeps the first
// failure and turns later calls into no-ops: a description reads straight down, without a check on every line.
#pragma once

#include "kob_entry.hpp"
#include "kob_id.hpp"
#include "kob_kinds.hpp"
#include "kob_location.hpp"
#include "kob_placement.hpp"
#include "kob_plain_block.hpp"
#include "kob_sections.hpp"
#include "kob_storage.hpp"
#include "kob_text.hpp"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace kob {

// Statuses that readers and writers of several kinds share.
constexpr std::int32_t wrong_pass = -3;
constexpr std::int32_t invalid_mode = -999;

/// One argument of a caller: a source for the Writer, a destination for the Reader.
template <class Io, class T> class Arg {
public:
    using Pointer = std::conditional_t<Io::writes, const T*, T*>;

    Arg(Pointer address = nullptr) : address_{address} {} // NOLINT(google-explicit-constructor)

    /// The value at the address. A null address ends the call.
    T operator*() const { return value<T>(address_); }
    [[nodiscard]] Pointer get() const { return address_; }

private:
    Pointer address_;
};

/// Floating values whose size in memory the caller chooses.
template <class Io> struct Reals {
    using Pointer = std::conditional_t<Io::writes, const void*, void*>;

    Pointer address = nullptr;
    std::size_t size = sizeof(double);

    Reals() = default;
    Reals(Pointer values, std::size_t memory_size = sizeof(double)) // NOLINT(google-explicit-constructor)
        : address{values}, size{memory_size}
    {
    }
};

/// One extent of a dataset: a count, or a dimension that grows.
struct Extent {
    std::int64_t count;
    bool grows = false;

    Extent(std::int64_t elements) : count{elements} {} // NOLINT(google-explicit-constructor)
    static Extent growing()
    {
        Extent extent{0};
        extent.grows = true;
        return extent;
    }
};

/// The extents of a dataset, slowest first. Counts come from callers: any number is carried, storage judges it.
class Shape {
public:
    Shape(std::initializer_list<Extent> extents)
    {
        for (const Extent extent : extents) {
            append(extent);
        }
    }

    /// The shape of a dataset that is there: its extents are not told, a part of it is transferred.
    static Shape of_rank(std::int32_t rank);

    /// Beyond one more than HDF5's largest rank further extents say nothing new.
    void append(Extent extent);

    /// The same of values that may be complex, then with one more extent: real part, imaginary part.
    [[nodiscard]] Shape with_parts(bool complex) const
    {
        Shape result = *this;
        if (complex) {
            result.append(2);
        }
        return result;
    }

    [[nodiscard]] std::int32_t rank() const { return rank_; }
    /// Null when the extents are not told.
    [[nodiscard]] const hsize_t* dims() const { return told_ ? dims_.data() : nullptr; }
    [[nodiscard]] bool is_empty() const;

    /// For a partial access -1 is a count like any other and marks nothing.
    [[nodiscard]] bool has_markers() const;
    [[nodiscard]] Shape without_markers() const;

private:
    bool told_ = true;
    std::int32_t rank_ = 0;
    // Only as many as the rank are set: clearing and copying the others would take longer than all else with a shape.
    std::array<hsize_t, H5S_MAX_RANK + 1> dims_;
    std::array<bool, H5S_MAX_RANK + 1> grows_;
};

/// Which part of a dataset is transferred.
struct Part {
    std::int32_t mode = access_mode::whole;
    const std::int64_t* count = nullptr;
    const std::int64_t* start = nullptr;
    Origin origin = Origin::end; ///< of positions in a growable dimension

    [[nodiscard]] bool is_whole() const { return mode == access_mode::whole; }
    [[nodiscard]] bool is_known() const
    {
        return mode == access_mode::whole || mode == access_mode::block || mode == access_mode::points;
    }
};

/// The caller's compression request.
struct Filters {
    std::int32_t flags = 0;
    std::array<std::int32_t, 2> params{}; ///< decimal scale factor, deflate level

    Filters() = default;
    Filters(const std::int32_t* filter_flags, const std::int32_t* filter_params);

    /// Lossy compression is for result values alone: the same request without it.
    [[nodiscard]] std::int32_t exact_flags() const { return flags & ~filter_flag::scale_offset_real; }
};

/// Stored size of floating data in model blocks: 8 unless the caller says otherwise.
std::size_t stored_float(const std::int32_t* float_size);

/// What the value-size argument says.
struct ValueSize {
    bool complex = false;
    std::size_t stored = sizeof(double);
};
ValueSize value_size_of(std::int32_t argument);

/// Sum of the first `count` entries, in 32 bits by contract: it wraps. 0 when count is not positive.
std::int32_t sum32(const std::int32_t* entries, std::int32_t count);

/// Product in 32 bits by contract: it wraps.
std::int32_t product32(std::int32_t a, std::int32_t b);

/// Writes the items of one block.
class Writer {
public:
    static constexpr bool writes = true;

    Writer(Location block, Filters filters, std::size_t float_size, Place place = Place::unknown)
        : places_{block}, filters_{filters}, float_size_{float_size}, place_{place}
    {
    }

    [[nodiscard]] bool is_current() const { return places_.block().is_current(); }
    [[nodiscard]] bool keeps_state_index() const { return keeps_state_index_; }
    /// The place that the datasets from here on go to.
    void enter(Where where) { where_ = where; }
    /// The group that holds the datasets of a place.
    hid_t place(Where where) { return places_.open_or_create(where); }

    /// Links that were looked for in one of the places, those of all datasets to come in it among them.
    void follow(const GroupLinks& links) { links_ = &links; }

    // attributes
    void frame(const BlockKind& kind, std::int32_t key);
    void text(const char* name, Arg<Writer, char> field, std::size_t length = name_length);
    void integer(const char* name, Arg<Writer, std::int32_t> number);
    void long_integer(const char* name, Arg<Writer, std::int64_t> number);
    /// Writes over an integer whose attribute is open since it was read.
    void rewrite(const char* name, std::int32_t number, Id attribute);

    // datasets
    void texts(const char* name, Arg<Writer, char> fields, const Shape& shape, std::int32_t length = name_length,
               const Part& part = {});
    void integers(const char* name, Arg<Writer, std::int32_t> numbers, const Shape& shape, const Part& part = {});
    void long_integers(const char* name, Arg<Writer, std::int64_t> numbers, const Shape& shape);
    void reals(const char* name, Reals<Writer> numbers, const Shape& shape,
               const Part& part = {}); ///< filtered as asked
    void exact_reals(const char* name, Reals<Writer> numbers, const Shape& shape,
                     const Part& part = {});                         ///< never lossy
    void single(const char* name, Arg<Writer, std::int32_t> number); ///< a scalar dataset

    void fail(std::int32_t status);
    [[nodiscard]] bool ok() const { return status_ == 0; }
    [[nodiscard]] std::int32_t status() const { return status_; }
    /// Leading extent of the last dataset written, after the write; 0 when none was since `forget_extent`.
    [[nodiscard]] std::int64_t leading_extent() const { return static_cast<std::int64_t>(leading_extent_); }
    void forget_extent() { leading_extent_ = 0; }

private:
    void attribute(const char* name, const void* data, std::int32_t type, std::size_t size);
    void dataset(const char* name, const void* data, std::int32_t type, std::size_t data_size, std::size_t kob_size,
                 const Shape& shape, const Part& part, std::int32_t flags);

    Places places_;
    Where where_ = Where::data;
    const GroupLinks* links_ = nullptr;
    bool keeps_state_index_ = true;
    Filters filters_;
    std::size_t float_size_;
    Place place_;
    SharedIds shared_;
    std::int32_t status_ = 0;
    hsize_t leading_extent_ = 0;
};

/// Reads the items of one block. The status is the result of the last read; the first failure stays.
class Reader {
public:
    static constexpr bool writes = false;

    /// Checks the handle and the block's key, printing what is wrong with them.
    Reader(Location block, const BlockKind& kind);

    [[nodiscard]] bool is_current() const { return places_.block().is_current(); }
    [[nodiscard]] bool keeps_state_index() const { return is_current() || kind_.has_state_index; }
    /// The place that the datasets from here on come from.
    void enter(Where where) { where_ = where; }

    // attributes
    void text(const char* name, Arg<Reader, char> field, std::size_t length = name_length);
    void integer(const char* name, Arg<Reader, std::int32_t> number);
    void long_integer(const char* name, Arg<Reader, std::int64_t> number);

    // datasets
    void texts(const char* name, Arg<Reader, char> fields, const Shape& shape, std::int32_t length = name_length,
               const Part& part = {});
    void integers(const char* name, Arg<Reader, std::int32_t> numbers, const Shape& shape, const Part& part = {});
    void long_integers(const char* name, Arg<Reader, std::int64_t> numbers, const Shape& shape);
    void reals(const char* name, Reals<Reader> numbers, const Shape& shape, const Part& part = {});
    void exact_reals(const char* name, Reals<Reader> numbers, const Shape& shape, const Part& part = {})
    {
        reals(name, numbers, shape, part);
    }
    /// Number of states of a series: the older layout goes by what `values` holds, whatever the attribute says.
    void states(const char* name, Arg<Reader, std::int32_t> number, const char* values);
    /// A scalar dataset; older files hold an attribute of that name instead, and a file may hold neither.
    void single(const char* name, Arg<Reader, std::int32_t> number);

    void fail(std::int32_t status);
    [[nodiscard]] bool ok() const { return status_ >= 0; }
    [[nodiscard]] std::int32_t status() const { return status_; }

    [[nodiscard]] std::int32_t key() const { return key_; }
    [[nodiscard]] bool is_complex() const { return key_ != 0 && key_ == kind_.complex_key; }

    /// Makes the key the status, as readers do that tell their caller what they found, or found nothing to read.
    void key_as_status();
    /// Reports a pass that the block does not know.
    void unknown_pass();

    /// Filters of a dataset by name, none when it was skipped; without a name, of the last one that was really read.
    void report_filters(const char* name, std::int32_t* filter_flags, std::int32_t* filter_params) const;

private:
    struct Found {
        std::string name;
        std::int32_t flags;
        std::array<std::int32_t, 2> params;
    };

    void attribute(const char* name, void* data, std::int32_t type, std::size_t size);
    void dataset(const char* name, void* data, std::int32_t type, std::size_t size, const Shape& shape,
                 const Part& part);

    /// A place, or -1 as the status after the line about its absence.
    hid_t place(Where where);

    Places places_;
    std::unique_ptr<plain::Block> plain_; ///< the short way to the items of a block in one group
    Where where_ = Where::data;
    BlockKind kind_;
    std::int32_t key_ = 0;
    std::int32_t status_ = 0;
    std::vector<Found> found_;
};

/// Gives a block the datasets of a shared group: each item becomes a hard link of the same name.
class Linker {
public:
    Linker(hid_t shared, hid_t block) : shared_{shared}, block_{block} {}

    template <class Source> void integers(const char* name, const Source&, const Shape& shape) { link(name, shape); }
    template <class Source> void texts(const char* name, const Source&, const Shape& shape) { link(name, shape); }
    template <class Source> void exact_reals(const char* name, const Source&, const Shape& shape) { link(name, shape); }
    template <class Source> void single(const char* name, const Source&) { link(name, Shape{1}); }
    void fail(std::int32_t status);
    [[nodiscard]] std::int32_t status() const { return status_; }

private:
    void link(const char* name, const Shape& shape);

    hid_t shared_;
    hid_t block_;
    std::int32_t status_ = 0;
};

/// A block's group as the placement gave it to a writer.
struct Placed {
    Id group;
    std::int32_t status = 0; ///< positive: the block is new; 0: it was there
    Generation generation = Generation::current;

    [[nodiscard]] bool is_new() const { return status > 0; }
    [[nodiscard]] Place place() const { return is_new() ? Place::fresh : Place::unknown; }
    [[nodiscard]] Location location() const { return {group.get(), generation}; }
};
Placed place_block(Location parent, const BlockPath& path);

/// Refuses a block group that is none: the handle is the status. In the older layout the line names the key.
std::int32_t refuse_group(Location block, const BlockKind& kind, std::int32_t key);

/// Walks all items of a block but its frame, in the order of the layout.
template <class Block> void write_items(Writer& io, const Block& b)
{
    attributes(io, b);
    if constexpr (requires { b.index; }) {
        values(io, b.index);
    }
    if constexpr (requires { identifiers(io, b); }) {
        identifiers(io, b);
    }
    if constexpr (requires { values(io, b); }) {
        values(io, b);
    }
}

/// Writes a block that must not exist yet. Its group stays open when that went well: it is the caller's, until the file
/// is closed.
template <class Block>
std::int32_t write_new_block(Location parent, const BlockKind& kind, const BlockPath& path, const Filters& filters,
                             std::size_t float_size, const Block& b)
{
    Placed placed = place_block(parent, path);
    if (placed.status < 0) {
        return placed.status;
    }
    if (!placed.is_new()) {
        report_error(message::already_exists, kind.key, kind.name);
        return -1;
    }
    if (!placed.group) {
        report_error(message::writing_key, kind.key);
        return static_cast<std::int32_t>(placed.group.get());
    }
    Writer io{placed.location(), filters, float_size, Place::fresh};
    io.frame(kind, kind.key);
    write_items(io, b);
    if (io.ok()) {
        placed.group.release();
    }
    return io.status();
}

/// Writes into a block that may exist already, and keeps its group open when that went well.
/// `describe(Writer&, const Placed&)` lists all items, frame included.
template <class Describe>
std::int32_t write_open_block(Location parent, const BlockKind& kind, const BlockPath& path, const Filters& filters,
                              std::size_t float_size, Describe&& describe)
{
    Placed placed = place_block(parent, path);
    if (placed.status < 0) {
        return placed.status;
    }
    if (!placed.group) {
        return refuse_group(placed.location(), kind, kind.key);
    }
    Writer io{placed.location(), filters, float_size, placed.place()};
    describe(io, placed);
    if (io.ok()) {
        placed.group.release();
    }
    return io.status();
}

/// What identifies the state that a block belongs to.
template <class Io> struct StateIndex {
    Arg<Io, std::int32_t> nindex;     ///< number of index values, 0 for constant data
    Arg<Io, std::int32_t> indexic;    ///< index code, stored as given
    Arg<Io, std::int32_t> indexident; ///< [nindex] identifiers
    Arg<Io, double> indexval;         ///< [nindex] values
};

template <class Io> void attributes(Io& io, const StateIndex<Io>& index)
{
    if (!io.keeps_state_index()) {
        return;
    }
    io.integer("nindex", index.nindex);
    if (io.is_current()) {
        io.integer("indexic", index.indexic);
    }
}

template <class Io> void values(Io& io, const StateIndex<Io>& index)
{
    if (!io.ok() || !io.keeps_state_index()) {
        return;
    }
    if (Io::writes || *index.nindex > 0) {
        io.enter(Where::index);
        io.integers("indexident", index.indexident, {*index.nindex});
        io.exact_reals("indexval", index.indexval.get(), {*index.nindex});
        io.enter(Where::data);
    }
}

/// Reads state index and values in the order of the layout: the older one has the index last.
template <class Index, class Values> void read_in_order(const Reader& io, Index&& read_index, Values&& read_values)
{
    if (io.is_current()) {
        read_index();
        read_values();
    } else {
        read_values();
        read_index();
    }
}

/// Reads the sections of a model block that may belong to a state. The key stays the status until something is read.
/// The filters are those of the dataset `reported`, else of the last one that was read.
template <class Block>
std::int32_t read_sections(Location block, const BlockKind& kind, const Block& b, std::int32_t sections,
                           std::int32_t* filter_flags, std::int32_t* filter_params, const char* reported = nullptr)
{
    Reader io{block, kind};
    io.key_as_status();
    if (section::has(sections, section::attributes)) {
        attributes(io, b);
    }
    if (io.ok() && section::has(sections, section::state_index)) {
        values(io, b.index);
    }
    if constexpr (requires { identifiers(io, b); }) {
        if (io.ok() && section::has(sections, section::identifiers)) {
            identifiers(io, b);
        }
    }
    if (io.ok() && section::has(sections, section::values)) {
        values(io, b);
        io.report_filters(reported, filter_flags, filter_params);
    }
    return io.status();
}

/// Reads a block that belongs to no state, in two passes: 1 attributes, 2 everything.
template <class Block>
std::int32_t read_two_passes(Location block, const BlockKind& kind, const Block& b, std::int32_t pass,
                             std::int32_t* filter_flags, std::int32_t* filter_params, const char* reported = nullptr)
{
    Reader io{block, kind};
    attributes(io, b);
    if (pass == 1) {
        return io.status();
    }
    if (pass != 2) {
        io.unknown_pass();
    }
    values(io, b);
    io.report_filters(reported, filter_flags, filter_params);
    return io.status();
}

/// Reads a block by pass: 0 attributes and state index, 1 attributes, 2 everything. The older layout has no pass 0.
/// The filters are those of the dataset `reported`, else of the last one that was read.
template <class Block>
std::int32_t read_passes(Location block, const BlockKind& kind, const Block& b, std::int32_t pass,
                         std::int32_t* filter_flags, std::int32_t* filter_params, const char* reported = nullptr)
{
    Reader io{block, kind};
    attributes(io, b);
    if (!io.ok() || pass == 1) {
        return io.status();
    }
    if (pass != 2 && (pass != 0 || !io.is_current())) {
        io.unknown_pass();
        return io.status();
    }
    if (pass == 2) {
        if constexpr (requires { identifiers(io, b); }) {
            identifiers(io, b);
        }
        values(io, b);
    }
    values(io, b.index);
    if (pass == 2) {
        io.report_filters(reported, filter_flags, filter_params);
    }
    return io.status();
}

/// Reads a block of real or complex values by pass, as above; the key found is the status, and "res" tells the filters.
/// `read_values(Reader&)` reads all but the state index.
template <class Block, class Values>
std::int32_t read_passes_of_two_keys(Location block, const BlockKind& kind, const Block& b, std::int32_t pass,
                                     Values&& read_values, std::int32_t* filter_flags, std::int32_t* filter_params)
{
    if (pass < (block.is_current() ? 0 : 1) || pass > 2) {
        report_error(message::reading_pass_of_two, kind.key, kind.complex_key);
        return wrong_pass;
    }
    Reader io{block, kind};
    attributes(io, b);
    if (io.ok() && pass == 2) {
        read_values(io);
    }
    if (io.ok() && pass != 1) {
        values(io, b.index);
    }
    if (pass == 2) {
        io.report_filters("res", filter_flags, filter_params);
    }
    io.key_as_status();
    return io.status();
}

/// Where a state-capable block goes: its index identifiers name the state groups unless a state number is given.
Validity validity_of(const StateIndex<Writer>& index, const std::int32_t* state);

} // namespace kob
