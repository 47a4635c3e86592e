// SPDX-License-Identifier: BSD-3-Clause
// Reads the leading rows or all of a block: what every kind has in common.

#include "block_reader.hpp"
#include "terminal.hpp"
#include "verbs.hpp"

#include "kob_dp.h"

#include <unistd.h>

#include <algorithm>
#include <limits>

namespace kob::program {

namespace {

std::int64_t product(std::int64_t a, std::int64_t b)
{
    std::int64_t result = 0;
    if (__builtin_mul_overflow(a, b, &result)) throw Failure{exit_cannot_read, "its counts are larger than any file"};
    return result;
}

std::int64_t element_size(const Item& item)
{
    switch (item.type) {
    case Type::text:
        return item.width;
    case Type::int32:
        return sizeof(std::int32_t);
    case Type::int64:
        return sizeof(std::int64_t);
    case Type::float64:
        return sizeof(double);
    }
    return 1;
}

/// More than the machine's memory is never claimed, whatever a file says.
std::int64_t memory_limit()
{
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long page_size = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || page_size <= 0) return std::numeric_limits<std::int32_t>::max();
    return product(pages, page_size);
}

const Kind* kind_among(const std::vector<Kind>& kinds, std::int32_t key)
{
    for (const Kind& kind : kinds)
        if (key == kind.key || (kind.complex_key != 0 && key == kind.complex_key)) return &kind;
    return nullptr;
}

} // namespace

std::string_view type_name(Type type)
{
    switch (type) {
    case Type::text:
        return "text";
    case Type::int32:
        return "int32";
    case Type::int64:
        return "int64";
    case Type::float64:
        return "float64";
    }
    return "";
}

std::int64_t Item::row_count() const { return shape.empty() ? 1 : shape[is_series ? 1 : 0]; }

std::int64_t Item::row_length() const
{
    std::int64_t length = 1;
    for (std::size_t i = is_series ? 2 : 1; i < shape.size(); ++i) length = product(length, shape[i]);
    return length;
}

std::int64_t Item::element_count() const
{
    const std::int64_t count = product(row_count(), row_length());
    return is_series ? product(shape.front(), count) : count;
}

std::int64_t Item::bytes() const { return product(element_count(), element_size(*this)); }

std::string Item::text(std::int64_t i) const
{
    const auto& buffer = std::get<Buffer<char>>(values);
    const auto width_of_one = static_cast<std::size_t>(width);
    std::string_view field{buffer.data() + static_cast<std::size_t>(i) * width_of_one, width_of_one};
    field = field.substr(0, field.find('\0'));
    return std::string{field.substr(0, field.find_last_not_of(' ') + 1)};
}

std::int64_t Item::integer(std::int64_t i) const
{
    const auto at = static_cast<std::size_t>(i);
    if (type == Type::int64) return std::get<Buffer<std::int64_t>>(values)[at];
    return std::get<Buffer<std::int32_t>>(values)[at];
}

double Item::real(std::int64_t i) const { return std::get<Buffer<double>>(values)[static_cast<std::size_t>(i)]; }

const Item* Block::find(std::string_view name) const
{
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const Item& item) { return item.in_block && item.name == name; });
    return found == items.end() ? nullptr : &*found;
}

std::string Block::text(std::string_view name) const
{
    const Item* item = name.empty() ? nullptr : find(name);
    return item != nullptr && item->type == Type::text && item->read_count() > 0 ? item->text() : std::string{};
}

std::int64_t Block::integer(std::string_view name, std::int64_t otherwise) const
{
    const Item* item = find(name);
    return item != nullptr && item->type != Type::text && item->read_count() > 0 ? item->integer() : otherwise;
}

std::int64_t Block::bytes() const
{
    std::int64_t sum = 0;
    for (const Item& item : items)
        if (item.in_block && __builtin_add_overflow(sum, item.bytes(), &sum))
            throw Failure{exit_cannot_read, "its counts are larger than any file"};
    return sum;
}

std::string StateValues::text() const
{
    std::string text;
    for (const double value : values) text += (text.empty() ? "" : ", ") + number_text(value);
    return text;
}

StateValues state_values(const Block& block, std::int64_t row)
{
    const Item* identifiers = block.find("indexident");
    const Item* values = block.find("indexval");
    StateValues state;
    if (identifiers == nullptr || values == nullptr) return state;
    const bool by_row = identifiers->shape.size() > 1;
    const std::int64_t length = by_row ? identifiers->row_length() : identifiers->rows;
    if (by_row && row >= identifiers->rows) return state;
    for (std::int64_t i = row * length; i < (row + 1) * length; ++i) {
        state.identifiers.push_back(identifiers->integer(i));
        state.values.push_back(values->real(i));
    }
    return state;
}

std::optional<Series> series_of(const Block& block)
{
    if (block.find("nstate") == nullptr) return std::nullopt;
    const std::int64_t states = block.integer("nstate", 0);
    return Series{block.text("series"), states, state_values(block, 0),
                  state_values(block, std::max<std::int64_t>(states - 1, 0))};
}

const Kind* find_kind(std::int32_t key) { return kind_among(all_kinds(), key); }

const Kind* find_kind(const Entry& entry)
{
    const Kind* kind = entry.older ? kind_among(older_kinds(), entry.key) : nullptr;
    return kind != nullptr ? kind : find_kind(entry.key);
}

Block read_block(const File& file, const Entry& entry, Depth depth, std::int64_t rows)
{
    if (find_kind(entry) == nullptr)
        throw Failure{exit_cannot_read,
                      fmt::format("{}: a block of the unknown kind {}", printable(short_path(entry)), entry.key)};
    const Group group{file.group(), entry.path};
    return read_open_block(group.handle(), entry, depth, rows);
}

Block read_open_block(const std::int64_t* group, const Entry& entry, Depth depth, std::int64_t rows)
{
    const std::string name = printable(short_path(entry));
    Block block;
    block.key = entry.key;
    block.older = entry.older;
    block.kind = find_kind(entry);
    try {
        BlockScan scan{block, group, depth, rows};
        block.kind->scan(scan);
        for (const Item& item : block.items)
            if (item.in_block) static_cast<void>(item.bytes()); // from here on no sum of a block can overflow unseen
    } catch (const Failure& failure) {
        throw Failure{failure.exit_code, fmt::format("{}: the block cannot be read: {}", name, failure.what())};
    } catch (const std::bad_alloc&) {
        throw Failure{exit_cannot_read, fmt::format("{}: the block cannot be read: not enough memory", name)};
    }
    return block;
}

Item& BlockScan::add(std::string_view name, Stored stored, Type type, std::int32_t width)
{
    Item& item = block_.items.emplace_back();
    item.name = name;
    item.stored = stored;
    item.type = type;
    item.width = width;
    if (stored == Stored::dataset) item.shape = {0};
    claim(item, stored == Stored::attribute ? 1 : 0);
    return item;
}

void BlockScan::claim(Item& item, std::int64_t rows)
{
    const std::int64_t count = product(item.state_count, product(rows, item.row_length()));
    const std::int64_t bytes = product(count, element_size(item));
    if (bytes > memory_limit() - claimed_)
        refuse(fmt::format("\"{}\" claims {}, which is more than the memory of this machine leaves", item.name,
                           bytes_text(bytes)));
    claimed_ += bytes;
    item.rows = rows;
    const auto size = static_cast<std::size_t>(count);
    switch (item.type) {
    case Type::text:
        item.values = Buffer<char>{static_cast<std::size_t>(bytes)};
        break;
    case Type::int32:
        item.values = Buffer<std::int32_t>{size};
        break;
    case Type::int64:
        item.values = Buffer<std::int64_t>{size};
        break;
    case Type::float64:
        item.values = Buffer<double>{size};
        break;
    }
}

Item& BlockScan::text(std::string_view name, std::int32_t width)
{
    return add(name, Stored::attribute, Type::text, width);
}
Item& BlockScan::integer(std::string_view name) { return add(name, Stored::attribute, Type::int32, 1); }
Item& BlockScan::long_integer(std::string_view name) { return add(name, Stored::attribute, Type::int64, 1); }
Item& BlockScan::texts(std::string_view name, std::int32_t width)
{
    return add(name, Stored::dataset, Type::text, width);
}
Item& BlockScan::integers(std::string_view name) { return add(name, Stored::dataset, Type::int32, 1); }
Item& BlockScan::long_integers(std::string_view name) { return add(name, Stored::dataset, Type::int64, 1); }
Item& BlockScan::reals(std::string_view name) { return add(name, Stored::dataset, Type::float64, 1); }

void BlockScan::set_extents(Item& item, const std::vector<std::int64_t>& extents) const
{
    for (const std::int64_t extent : extents)
        if (extent < 0) refuse(fmt::format("\"{}\" has the extent {}", item.name, extent));
    item.shape = extents;
    if (item.type == Type::text && item.width < 1 && item.element_count() > 0)
        refuse(fmt::format("\"{}\" has texts of {} characters", item.name, item.width));
}

void BlockScan::shape(Item& item, const std::vector<std::int64_t>& extents, Depth read_at)
{
    set_extents(item, extents);
    if (reads(read_at)) claim(item, item.row_count());
}

void BlockScan::shape_leading(Item& item, const std::vector<std::int64_t>& extents)
{
    set_extents(item, extents);
    if (reads(Depth::values)) claim(item, leading_rows(item.row_count()));
}

void BlockScan::shape_texts(Item& item, const std::vector<std::int64_t>& extents, std::int64_t width)
{
    item.width = static_cast<std::int32_t>(width);
    shape(item, extents);
}

void BlockScan::set_states(Item& item, std::int64_t states, const std::vector<std::int64_t>& extents) const
{
    std::vector<std::int64_t> all{states};
    all.insert(all.end(), extents.begin(), extents.end());
    set_extents(item, all);
    item.is_series = true;
}

void BlockScan::shape_states(Item& item, std::int64_t states, const std::vector<std::int64_t>& extents)
{
    set_states(item, states, extents);
    item.state_count = states;
    if (reads(Depth::values)) claim(item, item.row_count());
}

void BlockScan::shape_states_leading(Item& item, std::int64_t states, const std::vector<std::int64_t>& extents)
{
    constexpr std::int64_t first_and_last = 2;
    set_states(item, states, extents);
    item.state_count = rows_ == all_rows ? states : std::min(states, first_and_last);
    if (reads(Depth::values)) claim(item, leading_rows(item.row_count()));
}

std::int64_t BlockScan::leading_rows(std::int64_t count) const
{
    return rows_ == all_rows ? count : std::min(count, rows_);
}

void BlockScan::call(const std::function<void(std::int32_t& status)>& reader)
{
    std::int32_t status = 0;
    reader(status);
    if (status < 0) refuse(fmt::format("status {}", status));
}

void BlockScan::refuse(const std::string& why) const { throw Failure{exit_cannot_read, why}; }

StateIndex::StateIndex(BlockScan& in)
    : nindex{in.integer("nindex")}, indexic{in.older() ? nullptr : &in.integer("indexic")},
      indexident{in.integers("indexident")}, indexval{in.reals("indexval")}
{
}

bool StateIndex::shape(BlockScan& in) const
{
    const std::int64_t n = nindex.integer();
    if (n <= 0) { // a constant block
        in.absent(indexident);
        in.absent(indexval);
        return false;
    }
    in.shape(indexident, {n}, Depth::index);
    in.shape(indexval, {n}, Depth::index);
    return true;
}

SeriesIndex::SeriesIndex(BlockScan& in)
    : nindex{in.integer("nindex")}, nstate{in.integer("nstate")},
      indexident{in.integers("indexident")}, indexval{in.reals("indexval")}
{
}

bool SeriesIndex::shape(BlockScan& in) const
{
    const std::int64_t n = nindex.integer();
    for (Item* item : {&indexident, &indexval}) {
        if (n > 0)
            in.shape(*item, {nstate.integer(), n}, Depth::index);
        else
            in.absent(*item);
    }
    return n > 0;
}

} // namespace kob::program
