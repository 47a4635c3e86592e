// SPDX-License-Identifier: BSD-3-Clause
// Rows of a domain's block, put to their places in the merged block.
#pragma once

#include "kob_merge_block.hpp"
#include "kob_merge_union.hpp"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

namespace kob::merge {

/// Copies rows of `width` values. Rows that stay neighbours are copied together.
template <class T> void scatter_rows(const T* from, std::size_t width, RowMap rows, T* to)
{
    for (std::size_t row = 0; row < rows.size();) {
        if (rows[row] < 0) {
            ++row; // the domain names this entity twice; the first row has it
            continue;
        }
        std::size_t end = row + 1;
        while (end < rows.size() && rows[end] == rows[end - 1] + 1) {
            ++end;
        }
        std::copy_n(from + row * width, (end - row) * width, to + static_cast<std::size_t>(rows[row]) * width);
        row = end;
    }
}

/// Copies rows into wider ones.
template <class T>
void scatter_narrow_rows(const T* from, std::size_t width, RowMap rows, T* to, std::size_t wider_width)
{
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (rows[row] >= 0) {
            std::copy_n(from + row * width, width, to + static_cast<std::size_t>(rows[row]) * wider_width);
        }
    }
}

template <class T> void scatter_column(const Column<T>& from, RowMap rows, Column<T>& to)
{
    const auto width = static_cast<std::size_t>(std::max<std::int64_t>(from.width, 0));
    const auto wider_width = static_cast<std::size_t>(std::max<std::int64_t>(to.width, 0));
    if (width == 0) {
        return; // a column that the domain does not have
    }
    if (width == wider_width) {
        scatter_rows(from.values.data(), width, rows, to.values.data());
    } else {
        scatter_narrow_rows(from.values.data(), width, rows, to.values.data(), wider_width);
    }
}

/// Calls visit(column) for each column of a block.
template <class Block, class Visit> void for_each_column(Block& block, Visit&& visit)
{
    std::apply([&](auto&&... columns) { (visit(columns), ...); }, block.columns());
}

/// Puts the rows of a domain's block into the merged block.
template <class Block> void scatter(Block& domain, RowMap rows, Block& merged)
{
    auto from = domain.columns();
    auto to = merged.columns();
    const auto each = [&]<std::size_t... I>(std::index_sequence<I...>)
    {
        (scatter_column(std::get<I>(from), rows, std::get<I>(to)), ...);
    };
    each(std::make_index_sequence<std::tuple_size_v<decltype(from)>>{});
}

/// Swaps the memory of the rows, not what describes them.
template <class Block> void swap_rows(Block& a, Block& b)
{
    a.row_identifiers().swap(b.row_identifiers());
    auto columns_of_a = a.columns();
    auto columns_of_b = b.columns();
    const auto each = [&]<std::size_t... I>(std::index_sequence<I...>)
    {
        (std::get<I>(columns_of_a).values.swap(std::get<I>(columns_of_b).values), ...);
    };
    each(std::make_index_sequence<std::tuple_size_v<decltype(columns_of_a)>>{});
}

/// Makes a block one of so many entities, with nothing known of them yet, not even their identifiers.
template <class Block> void make_columns(Block& merged, std::size_t rows)
{
    merged.rows() = static_cast<std::int32_t>(rows);
    for_each_column(merged, [&](auto& column) {
        const auto width = static_cast<std::size_t>(std::max<std::int64_t>(column.width, 0));
        if (column.is_optional) {
            column.values.assign(rows * width, column.missing);
        } else {
            column.values.resize(rows * width); // each row comes from some domain
        }
    });
}

/// Does a block hold as many identifiers and values as its attributes claim?
template <class Block> bool is_complete(StoredBlock& source, Block& block)
{
    const std::int64_t rows = block.rows();
    bool complete = rows >= 0 && static_cast<std::int64_t>(stored(source, Block::identifiers)) == rows;
    for_each_column(block, [&](const auto& column) {
        const auto fits = [&] {
            return column.elements > 0 && column.elements <= INT32_MAX &&
                   static_cast<std::int64_t>(stored(source, column.name)) == rows * column.elements;
        };
        complete = complete && (rows == 0 || column.elements == 0 || fits());
    });
    return complete || rows == 0;
}

} // namespace kob::merge
