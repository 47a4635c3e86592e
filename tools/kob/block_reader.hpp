// SPDX-License-Identifier: BSD-3-Clause
// Reads any block through the public entry points into one neutral form: named items with types, shapes and values.
#pragma once

#include "file.hpp"
#include "generations.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace kob::program {

/// A zeroed array whose memory is claimed only where it is touched: a count that a damaged file merely asserts costs
/// address space, and the library refuses the read before it writes anything.
template <class T> class Buffer {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    Buffer() = default;
    explicit Buffer(std::size_t size) : size_{size}
    {
        if (size == 0) return;
        data_.reset(static_cast<T*>(std::calloc(size, sizeof(T)))); // checks the product, too
        if (!data_) throw std::bad_alloc{};
    }
    T* data() { return data_.get(); }
    const T* data() const { return data_.get(); }
    std::size_t size() const { return size_; }
    const T& operator[](std::size_t i) const { return data_.get()[i]; }

private:
    struct Free {
        void operator()(T* p) const { std::free(p); }
    };
    std::unique_ptr<T, Free> data_;
    std::size_t size_ = 0;
};

enum class Stored { attribute, dataset };
enum class Type { text, int32, int64, float64 };
std::string_view type_name(Type type);

/// One attribute or dataset of a block.
struct Item {
    std::string name;
    Stored stored;
    Type type;
    std::int32_t width = 1;          ///< text: characters of one element
    std::vector<std::int64_t> shape; ///< extents of the whole, slowest first; empty for one value
    bool complex_pairs = false;      ///< the last extent is 2: real part, imaginary part
    bool in_block = true;            ///< false: the block's switches say that it has no such item
    bool is_string = false;          ///< texts of one character that make one text together
    bool is_series = false;          ///< the first extent counts states, the rows are those of each state
    std::int64_t state_count = 1;    ///< of a series: of how many states values are read
    std::int64_t rows = 0;           ///< how many leading rows (values, when there is no shape) are read
    std::variant<Buffer<char>, Buffer<std::int32_t>, Buffer<std::int64_t>, Buffer<double>> values;

    std::int64_t element_count() const; ///< of the whole; refused when it does not fit 63 bits
    std::int64_t row_count() const;     ///< of the whole, of each state in a series
    std::int64_t row_length() const;    ///< elements in one row
    std::int64_t bytes() const;         ///< of the whole, as it stands in memory when read
    std::int64_t read_count() const { return state_count * rows * row_length(); } ///< elements whose values are here
    bool is_whole() const { return read_count() == element_count(); }             ///< all of them are
    /// The state whose values come i-th: where not all are read, the first and the last are.
    std::int64_t state(std::int64_t i) const { return i > 0 && state_count < shape.front() ? shape.front() - 1 : i; }

    std::string text(std::int64_t i = 0) const; ///< element i without its padding
    std::int64_t integer(std::int64_t i = 0) const;
    double real(std::int64_t i = 0) const;

    char* chars() { return std::get<Buffer<char>>(values).data(); }
    std::int32_t* ints() { return std::get<Buffer<std::int32_t>>(values).data(); }
    std::int64_t* longs() { return std::get<Buffer<std::int64_t>>(values).data(); }
    double* reals() { return std::get<Buffer<double>>(values).data(); }
};

class BlockScan;

/// How the datasets of a kind are shown, besides those of the state index.
enum class Look {
    lists,      ///< each on its own
    table,      ///< as the columns of one table, a row for each entity
    collectors, ///< groups with their members
    locations,  ///< results with a row for each location in each element
    matrix,     ///< rows and columns
    entries     ///< row, column and value of each entry
};

/// One row of the table of kinds.
struct Kind {
    std::int32_t key;
    std::int32_t complex_key;  ///< the key of the same kind with complex values; 0 without such
    std::string_view name;     ///< the block type name
    std::string_view entity;   ///< the item that names the entity type
    std::string_view variable; ///< the item that names the variable or variable group
    std::string_view main;     ///< the item whose shape tells the size of the block
    Look look;
    void (*scan)(BlockScan&);
};

/// The kind of a block; null for a key that the program does not know.
const Kind* find_kind(const Entry& entry);
/// The kind of a key in the current layout.
const Kind* find_kind(std::int32_t key);
const std::vector<Kind>& all_kinds();
/// Kinds of the older layout that share no more than the key with those of the current one.
const std::vector<Kind>& older_kinds();

/// How much of a block is read. Each includes the ones before it.
enum class Depth { attributes, index, values };
constexpr std::int64_t all_rows = -1;

/// A block as it was read. Items stand in the order in which they are stored: attributes, then datasets.
class Block {
public:
    Block() = default;
    Block(Block&&) = default;
    Block& operator=(Block&&) = default;

    std::int32_t key = 0;
    bool older = false; ///< in the older layout
    const Kind* kind = nullptr;
    std::deque<Item> items;        ///< a deque: references stay good while items are added
    bool filters_known = false;    ///< whether values were read, so that the next two mean something
    std::int32_t filter_flags = 0; ///< filters of the values (of the dataset that the library reports)
    std::array<std::int32_t, 2> filter_params{};

    const Item* find(std::string_view name) const; ///< null when the block has no such item
    /// The values of an item; null when the block has no such item.
    template <class T> const T* values(std::string_view name) const
    {
        const Item* item = find(name);
        return item != nullptr ? std::get<Buffer<T>>(item->values).data() : nullptr;
    }
    std::string text(std::string_view name) const; ///< empty when the block has no such item
    std::int64_t integer(std::string_view name, std::int64_t otherwise) const;
    std::int64_t bytes() const; ///< of all items, as they stand in memory when read
};

/// A state as its index tells it.
struct StateValues {
    std::vector<std::int64_t> identifiers;
    std::vector<double> values;
    std::string text() const; ///< the values with commas between them
};

/// The states of a series.
struct Series {
    std::string name;
    std::int64_t states = 0;
    StateValues first; ///< empty when there are no states, or no index of them
    StateValues last;
};

/// The state of a block read at least to its index; of a series, the one in this row. Empty when there is none.
StateValues state_values(const Block& block, std::int64_t row = 0);
/// What the block tells about its states if it is a series.
std::optional<Series> series_of(const Block& block);

/// Reads one block of the file; of large tables, where the library reads pieces of them, no more than the first `rows`
/// rows, and of a series no more states than the first and the last.
/// A block that cannot be read, or whose counts no file can mean, is a Failure that names it.
Block read_block(const File& file, const Entry& entry, Depth depth, std::int64_t rows = all_rows);
/// The same of a block whose group is open; its kind is known.
Block read_open_block(const std::int64_t* group, const Entry& entry, Depth depth, std::int64_t rows = all_rows);

/// What a kind's description works with: it declares the items, calls the reader of the library section by section, and
/// gives each dataset its shape as soon as the counts are known.
class BlockScan {
public:
    BlockScan(Block& block, const std::int64_t* handle, Depth depth, std::int64_t rows)
        : block_{block}, handle_{handle}, depth_{depth}, rows_{rows}
    {
    }

    // Attributes: room for one value.
    Item& text(std::string_view name, std::int32_t width = 256);
    Item& integer(std::string_view name);
    Item& long_integer(std::string_view name);
    // Datasets: no room before the shape is known.
    Item& texts(std::string_view name, std::int32_t width = 256);
    Item& integers(std::string_view name);
    Item& long_integers(std::string_view name);
    Item& reals(std::string_view name);

    /// Gives the dataset its shape, and room for all its values if the block is read at least to `read_at`.
    void shape(Item& item, const std::vector<std::int64_t>& extents, Depth read_at = Depth::values);
    /// The same with room for the leading rows only; the caller reads them as a piece, see Piece.
    void shape_leading(Item& item, const std::vector<std::int64_t>& extents);
    /// For texts of a width that the block tells.
    void shape_texts(Item& item, const std::vector<std::int64_t>& extents, std::int64_t width);
    /// For values of `states` states of these extents each: room for all, or for the leading rows of the first and the
    /// last state.
    void shape_states(Item& item, std::int64_t states, const std::vector<std::int64_t>& extents);
    void shape_states_leading(Item& item, std::int64_t states, const std::vector<std::int64_t>& extents);
    /// How many of `count` rows are wanted.
    std::int64_t leading_rows(std::int64_t count) const;
    /// The block's switches say that it has no such item.
    void absent(Item& item) { item.in_block = false; }

    /// Calls a reader of the library and refuses the block when the status is negative.
    void call(const std::function<void(std::int32_t& status)>& reader);
    /// The same with the reader of the block's generation: both take these arguments, but for the marked ones.
    template <class Current, class Older, class... Args>
    void call(Current* current_reader, Older* older_reader, Args... args)
    {
        const Layout layout = block_.older ? Layout::older : Layout::current;
        call([&](std::int32_t& status) { call_of(layout, status, current_reader, older_reader, args...); });
    }
    [[noreturn]] void refuse(const std::string& why) const;

    bool older() const { return block_.older; }
    bool reads(Depth depth) const { return depth_ >= depth; }
    /// From here on everything is read: the reader has no call for less.
    void read_whole()
    {
        depth_ = Depth::values;
        rows_ = all_rows;
    }
    const std::int64_t* handle() const { return handle_; }
    std::int32_t key() const { return block_.key; }
    bool complex_key() const { return block_.kind->complex_key == block_.key; }
    std::int32_t* filter_flags() { return &block_.filter_flags; }
    std::int32_t* filter_params() { return block_.filter_params.data(); }
    void filters_found() { block_.filters_known = true; }

private:
    Item& add(std::string_view name, Stored stored, Type type, std::int32_t width);
    void set_extents(Item& item, const std::vector<std::int64_t>& extents) const;
    void set_states(Item& item, std::int64_t states, const std::vector<std::int64_t>& extents) const;
    void claim(Item& item, std::int64_t rows);

    Block& block_;
    const std::int64_t* handle_;
    Depth depth_;
    std::int64_t rows_;
    std::int64_t claimed_ = 0; ///< bytes of all values so far
};

/// The items by which a block belongs to a state.
struct StateIndex {
    explicit StateIndex(BlockScan& in);
    /// Once nindex is known; true when there is something to read.
    bool shape(BlockScan& in) const;
    bool is_counted() const { return nindex.integer() > 0; }
    CurrentOnly<std::int32_t*> code() const { return {indexic != nullptr ? indexic->ints() : nullptr}; }
    Item& nindex;
    Item* indexic; ///< null in the older layout
    Item& indexident;
    Item& indexval;
};

/// The items by which a series knows its states.
struct SeriesIndex {
    explicit SeriesIndex(BlockScan& in);
    /// Once nindex and nstate are known; true when there is something to read.
    bool shape(BlockScan& in) const;
    bool is_counted() const { return nindex.integer() > 0; }
    Item& nindex;
    Item& nstate;
    Item& indexident;
    Item& indexval;
};

/// The leading rows of an item, in a series those of one state, as the count and start of a hyperslab.
struct Piece {
    explicit Piece(const Item& item, std::int64_t state = 0) : count{item.shape}, start(item.shape.size(), 0)
    {
        count[item.is_series ? 1 : 0] = item.rows;
        if (!item.is_series) return;
        count.front() = 1;
        start.front() = state;
    }
    std::vector<std::int64_t> count;
    std::vector<std::int64_t> start;
};

} // namespace kob::program
