// SPDX-License-Identifier: BSD-3-Clause
// What blocks of many states share: the static part is written once, states are rows of growing datasets.
//
// Rows are absolute: a write names the rows it goes to, whatever the series holds by then, and never shrinks it.
#pragma once

#include "kob_block.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kob {

/// The states of a series.
template <class Io> struct SeriesIndex {
    Arg<Io, std::int32_t> nindex;
    Arg<Io, std::int32_t> nstate;     ///< states held; the Writer computes it
    Arg<Io, std::int32_t> indexident; ///< [nstate, nindex]
    Reals<Io> indexval;               ///< [nstate, nindex]
    const char* states_of = "res";    ///< the dataset whose leading extent is the number of states
};

template <class Io> void attributes(Io& io, const SeriesIndex<Io>& index)
{
    io.integer("nindex", index.nindex);
    if constexpr (!Io::writes) {
        io.states("nstate", index.nstate, index.states_of);
    }
}

template <class Io> void values(Io& io, const SeriesIndex<Io>& index, const Extent& states, const Part& part)
{
    if (!io.ok()) {
        return;
    }
    io.enter(Where::index);
    io.integers("indexident", index.indexident, {states, *index.nindex}, part);
    io.exact_reals("indexval", index.indexval, {states, *index.nindex}, part);
    io.enter(Where::data);
}

inline void values(Reader& io, const SeriesIndex<Reader>& index)
{
    if (io.ok()) {
        values(io, index, *index.nstate, Part{});
    }
}

/// A run of rows of the state index.
template <class Io> void rows(Io& io, const SeriesIndex<Io>& index, std::int64_t first, std::int64_t count)
{
    const std::array<std::int64_t, 2> counts{count, *index.nindex};
    const std::array<std::int64_t, 2> start{first, 0};
    if (counts[1] != 0) {
        values(io, index, Extent::growing(), {access_mode::block, counts.data(), start.data(), Origin::first});
    }
}

/// States 0 to n - 1 of a dataset whose states are tables of the given shape.
class LeadingStates {
public:
    LeadingStates(std::int64_t states, const Shape& table) : shape_{Extent::growing()}, count_{states}
    {
        for (std::int32_t i = 0; i < table.rank(); ++i) {
            append(static_cast<std::int64_t>(table.dims()[i]));
        }
    }

    [[nodiscard]] const Shape& shape() const { return shape_; }
    [[nodiscard]] Part part() const { return {access_mode::block, count_.data(), start_.data(), Origin::first}; }

    /// One state instead, at a row of its own.
    void move_to(std::int64_t row)
    {
        count_[0] = 1;
        start_[0] = row;
    }

private:
    void append(std::int64_t extent)
    {
        count_[static_cast<std::size_t>(shape_.rank())] = extent;
        shape_.append(extent);
    }

    Shape shape_;
    std::array<std::int64_t, 6> count_;
    std::array<std::int64_t, 6> start_{};
};

/// Where a series goes.
struct SeriesPlace {
    Location group;
    const char* series;
    const char* etyp;
    const char* etypvar;
    const char* etypzone;
    const std::int32_t* zoneid;
    const std::int32_t* set;

    [[nodiscard]] BlockPath path(const BlockKind& kind) const
    {
        return {{multi_state}, {series, kind.name, etyp, etypvar, etypzone}, value(zoneid), value(set)};
    }
};

/// Opens the number of states that a series says it holds.
std::int32_t open_nstate(Writer& io, Id& nstate, Report report);

/// Ends a write of states: rewrites "nstate", or gives a new series its first value, and returns what it is then. A
/// write that failed behind its index rows takes those back that have no values: a series with more of the ones than
/// of the others is unreadable. `opened` is "nstate" of a series that has one.
std::int32_t end_states(Writer& io, const char* values, bool is_new, Id opened = {});

/// A negative number of states is refused before anything is created.
bool refuse_negative(std::int32_t states, const BlockKind& kind);

} // namespace kob
