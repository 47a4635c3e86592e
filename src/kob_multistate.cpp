// SPDX-License-Identifier: BSD-3-Clause
// Result blocks of many states: the static part is written once, states are rows of growing datasets.
//
// Rows are absolute: a write names the rows it goes to, whatever the series holds by then, and never shrinks it.
#include "kob_results.hpp"

#include "kob_dp.h"
#include "kob_group_links.hpp"

#include <algorithm>
#include <optional>
#include <utility>

namespace kob {
namespace {

constexpr std::int32_t real_memory_bit = 1024; // the caller's floating arrays are 4-byte floats

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

void values(Reader& io, const SeriesIndex<Reader>& index)
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

/// Opens the number of states that a series says it holds.
std::int32_t open_nstate(Writer& io, Id& nstate, Report report)
{
    const hsize_t one = 1;
    return KOB_H5Aread("nstate", nullptr, type_code::integer, sizeof(std::int32_t), &one, 0, io.place(Where::header),
                       nullptr, report, nullptr, &nstate);
}

/// Ends a write of states: rewrites "nstate", or gives a new series its first value, and returns what it is then. A
/// write that failed behind its index rows takes those back that have no values: a series with more of the ones than
/// of the others is unreadable. `opened` is "nstate" of a series that has one.
std::int32_t end_states(Writer& io, const char* values, bool is_new, Id opened = {})
{
    std::int32_t nstate = 0;
    const std::int64_t held = io.leading_extent();
    if (io.ok() && held > 0) {
        nstate = static_cast<std::int32_t>(std::min<std::int64_t>(held, INT32_MAX));
    } else if (opened) {
        H5Aread(opened.get(), H5T_NATIVE_INT, &nstate);
    }
    if (!io.ok()) {
        const std::int64_t rows = count_rows(io.place(Where::data), values);
        if (rows >= 0 || is_new) {
            cut_rows(io.place(Where::index), "indexident", std::max<std::int64_t>(rows, 0));
            cut_rows(io.place(Where::index), "indexval", std::max<std::int64_t>(rows, 0));
        }
    } else if (opened && held > 0) {
        io.rewrite("nstate", nstate, std::move(opened));
    } else if (is_new || held > 0) {
        io.integer("nstate", &nstate);
    }
    return nstate;
}

/// A negative number of states is refused before anything is created.
bool refuse_negative(std::int32_t states, const BlockKind& kind)
{
    if (states < 0) {
        report_error(message::writing_name, kind.name);
    }
    return states < 0;
}

// ---- entity results

/// A table of one variable for every state of a series.
template <class Io> struct MultiEntityResults {
    Arg<Io, char> series;
    EntityTable<Io> table;
    SeriesIndex<Io> index;
    Reals<Io> res; ///< [nstate, nent, ncoo(, 2)]

    /// Bytes of a floating number in the caller's arrays, unless they hold doubles.
    void set_memory_size(std::size_t size) { table.weight.size = index.indexval.size = res.size = size; }
};

template <class Io> void attributes(Io& io, const MultiEntityResults<Io>& b)
{
    io.text("series", b.series);
    attributes(io, b.table);
    attributes(io, b.index);
}

template <class Io> LeadingStates states_of(const MultiEntityResults<Io>& b, std::int64_t states, bool complex)
{
    return {states, Shape{*b.table.nent, *b.table.ncoo}.with_parts(complex)};
}

/// What a caller of the workers asks for.
struct StateRequest {
    std::int32_t state; ///< mode 0: number of leading states
    std::int32_t mode;
    const std::int64_t* count;
    const std::int64_t* start;
};

/// The first row behind all rows that a list of points names.
std::int64_t rows_reached(const std::int64_t* count, const std::int64_t* coordinates, std::int32_t rank)
{
    std::int64_t largest = -1;
    for (std::int64_t i = 0; i < value(count); ++i) {
        largest = std::max(largest, value(coordinates == nullptr ? nullptr : coordinates + i * rank));
    }
    return largest == INT64_MAX ? largest : largest + 1;
}

void write_states(Writer& io, const MultiEntityResults<Writer>& b, bool complex, const StateRequest& request)
{
    const LeadingStates leading = states_of(b, request.state, complex);
    switch (request.mode) {
    case access_mode::whole:
        if (request.state > 0) {
            rows(io, b.index, 0, request.state);
            io.reals("res", b.res, leading.shape(), leading.part());
        }
        break;
    case access_mode::block:
        rows(io, b.index, value(request.start), value(request.count));
        io.reals("res", b.res, leading.shape(), {request.mode, request.count, request.start, Origin::first});
        break;
    default:
        if (const std::int64_t reached = rows_reached(request.count, request.start, leading.shape().rank());
            reached > 0) {
            rows(io, b.index, 0, reached);
        }
        io.reals("res", b.res, leading.shape(), {request.mode, request.count, request.start, Origin::first});
        break;
    }
}

std::int32_t write_series(Location block, const MultiEntityResults<Writer>& b, const Filters& filters,
                          std::int32_t value_size, const StateRequest& request, Place place, std::int32_t& nstate)
{
    const BlockKind& kind = kind::multi_entity_results;
    nstate = 0;
    if (request.mode == access_mode::whole && refuse_negative(request.state, kind)) {
        return invalid_mode;
    }
    const ValueSize size = value_size_of(value_size);
    const std::int32_t key = kind.key_of(size.complex);
    if (block.group < 0) {
        return refuse_group(block, kind, key);
    }
    Writer io{block, filters, size.stored, place};
    // The datasets that a further state goes to are looked for together.
    std::optional<GroupLinks> links;
    bool is_new = true;
    if (place != Place::fresh) {
        const hid_t data = io.place(Where::data);
        links.emplace(data, std::initializer_list<const char*>{"entid", "indexident", "indexval", "res"});
        is_new = !(links->knows(data) ? links->has("entid") : has_link(data, "entid"));
    }
    if (is_new) {
        io.frame(kind, key);
        attributes(io, b);
        if (io.ok()) {
            identifiers(io, b.table);
        }
        io.forget_extent();
    } else {
        io.follow(*links);
    }
    // A first write that failed left no "nstate"; a series of no entities has one, though it looks new at every call.
    // An attribute that opens is there; only one that doesn't is looked for.
    Id held;
    if (place != Place::fresh && open_nstate(io, held, Report::silent) != 0 &&
        has_attribute(io.place(Where::header), "nstate")) {
        io.fail(open_nstate(io, held, Report::loud));
    }
    if (io.ok() && !Part{request.mode}.is_known()) {
        report_error(message::writing_named_invalid_mode, kind.name, request.mode);
        io.fail(invalid_mode);
    }
    if (io.ok()) {
        write_states(io, b, size.complex, request);
    }
    nstate = end_states(io, "res", is_new, std::move(held));
    return io.status();
}

/// The state argument of the writers: s not negative writes s leading states, negative one state at row -s; a
/// selection of the caller's stands in for the latter.
StateRequest request_of(std::int32_t state, std::int32_t mode, const std::int64_t* count, const std::int64_t* start,
                        LeadingStates& one_state)
{
    if (state >= 0) {
        return {state, access_mode::whole, nullptr, nullptr};
    }
    if (mode != access_mode::whole) {
        return {state, mode, count, start};
    }
    one_state.move_to(-static_cast<std::int64_t>(state));
    const Part part = one_state.part();
    return {state, part.mode, part.count, part.start};
}

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

/// Writes states by the caller's state argument; mode and selection stand in for its one state.
std::int32_t write_results(const SeriesPlace& to, const MultiEntityResults<Writer>& b, std::int32_t state,
                           const Filters& filters, std::int32_t value_size, std::int32_t mode,
                           const std::int64_t* count, const std::int64_t* start)
{
    const std::int32_t size = value_size & ~real_memory_bit;
    Placed placed = place_block(to.group, to.path(kind::multi_entity_results));
    if (placed.status < 0) {
        return placed.status;
    }
    LeadingStates one_state = states_of(b, 1, value_size_of(size).complex);
    std::int32_t nstate = 0;
    const std::int32_t result = write_series(placed.location(), b, filters, size,
                                             request_of(state, mode, count, start, one_state), placed.place(), nstate);
    return result == 0 && placed.group.close() < 0 ? -1 : result;
}

/// Bytes of a floating number in the caller's memory, as the value-size or the pass argument tells it.
std::size_t memory_size_of(std::int32_t word) { return (word & real_memory_bit) != 0 ? sizeof(float) : sizeof(double); }

/// Index rows of the states that a selection names.
void selected_rows(Reader& io, const MultiEntityResults<Reader>& b, const Part& part)
{
    if (part.is_whole()) {
        values(io, b.index);
    } else if (part.mode == access_mode::block) {
        rows(io, b.index, value(part.start), value(part.count));
    } else {
        // One row for each point, whatever its other coordinates are.
        const std::int64_t rank = io.is_complex() ? 4 : 3;
        const std::int64_t nindex = *b.index.nindex;
        const std::int64_t points = value(part.count);
        std::vector<std::int64_t> coordinates;
        for (std::int64_t i = 0; i < points; ++i) {
            for (std::int64_t j = 0; j < nindex; ++j) {
                coordinates.push_back(value(part.start == nullptr ? nullptr : part.start + i * rank));
                coordinates.push_back(j);
            }
        }
        const auto listed = static_cast<std::int64_t>(coordinates.size() / 2);
        if (listed > 0) {
            values(io, b.index, Extent::growing(), {access_mode::points, &listed, coordinates.data()});
        }
    }
}

std::int32_t read_series(Reader& io, std::int32_t sections, const MultiEntityResults<Reader>& b,
                         std::int32_t* filter_flags, std::int32_t* filter_params, const Part& part)
{
    if (section::has(sections, section::attributes)) {
        attributes(io, b);
    }
    if (io.ok() && !part.is_known()) {
        if (section::has(sections, section::values)) {
            report_error(message::reading_invalid_mode, io.key());
            io.fail(invalid_mode);
        }
        sections &= ~(section::state_index | section::values);
    }
    const auto read_index = [&] {
        if (io.ok() && section::has(sections, section::state_index) && *b.index.nindex > 0) {
            selected_rows(io, b, part);
        }
    };
    const auto read_values = [&] {
        if (io.ok() && section::has(sections, section::identifiers)) {
            identifiers(io, b.table);
        }
        if (!io.ok() || !section::has(sections, section::values)) {
            return;
        }
        if (part.is_whole()) {
            const Shape shape{*b.index.nstate, *b.table.nent, *b.table.ncoo};
            io.reals("res", b.res, shape.with_parts(io.is_complex()));
        } else {
            io.reals("res", b.res, Shape::of_rank(3).with_parts(io.is_complex()), part);
        }
    };
    read_in_order(io, read_index, read_values);
    if (section::has(sections, section::values)) {
        io.report_filters("res", filter_flags, filter_params);
    }
    io.key_as_status();
    return io.status();
}

/// The passes of the C reader. Those beyond the first three read pieces: one state, or what the caller selected.
struct SeriesPass {
    std::int32_t sections = 0; ///< 0: there is no such pass
    bool is_piece = false;
};

SeriesPass series_pass(std::int32_t pass, Generation generation)
{
    switch (pass) {
    case 3:
        return {section::values, true};
    case 4:
        return {section::state_index | section::values, true};
    case 5:
        return {section::identifiers, false};
    default:
        return {sections_of_pass(pass, generation), false};
    }
}

std::int32_t read_results(Location block, std::int32_t pass, const MultiEntityResults<Reader>& b,
                          std::int32_t* filter_flags, std::int32_t* filter_params)
{
    const std::int32_t sections = sections_of_pass(pass, block.generation);
    if (sections == 0) {
        report_error(message::reading_named_pass, kind::multi_entity_results.name, pass);
        return wrong_pass;
    }
    Reader io{block, kind::multi_entity_results};
    return read_series(io, sections, b, filter_flags, filter_params, {});
}

/// Reads by the passes of the C reader; `part` is the caller's selection.
std::int32_t read_pieces(Location block, std::int32_t pass, const MultiEntityResults<Reader>& b,
                         std::int32_t* filter_flags, std::int32_t* filter_params, const Part& part)
{
    const SeriesPass wanted = series_pass(pass & ~real_memory_bit, block.generation);
    if (wanted.sections == 0) {
        report_error(message::reading_named_pass, kind::multi_entity_results.name, pass);
        return wrong_pass;
    }
    Reader io{block, kind::multi_entity_results};
    if (!io.ok() || !wanted.is_piece) {
        return read_series(io, wanted.sections, b, filter_flags, filter_params, {});
    }
    if (!part.is_whole()) {
        return read_series(io, wanted.sections, b, filter_flags, filter_params, part);
    }
    LeadingStates one_state = states_of(b, 1, io.is_complex());
    one_state.move_to(*b.index.nstate);
    return read_series(io, wanted.sections, b, filter_flags, filter_params, one_state.part());
}

// ---- element results

/// A table of one variable with several locations in each element, for every state of a series.
template <class Io> struct MultiElementResults {
    Arg<Io, char> series;
    ElementTable<Io> table;
    SeriesIndex<Io> index;
    Arg<Io, double> res; ///< [nstate, nele, numl, ncoo(, 2)]
};

template <class Io> void attributes(Io& io, const MultiElementResults<Io>& b)
{
    io.text("series", b.series);
    attributes(io, b.table);
    attributes(io, b.index);
}

std::int32_t write_results(const SeriesPlace& to, const MultiElementResults<Writer>& b, std::int32_t states,
                           const Filters& filters, std::int32_t value_size)
{
    const BlockKind& kind = kind::multi_element_results;
    if (refuse_negative(states, kind)) {
        return invalid_mode;
    }
    const ValueSize size = value_size_of(value_size);
    return write_open_block(to.group, kind, to.path(kind), filters, size.stored, [&](Writer& io, const Placed& placed) {
        if (placed.is_new()) {
            io.frame(kind, kind.key_of(size.complex));
            attributes(io, b);
            identifiers(io, b.table);
            io.forget_extent();
        }
        if (io.ok() && states > 0) {
            const Shape table{*b.table.nele, *b.table.numl, *b.table.ncoo};
            const LeadingStates leading{states, table.with_parts(size.complex)};
            rows(io, b.index, 0, states);
            io.reals("res", b.res.get(), leading.shape(), leading.part());
        }
        end_states(io, "res", placed.is_new());
    });
}

std::int32_t read_results(Location block, std::int32_t pass, const MultiElementResults<Reader>& b,
                          std::int32_t* filter_flags, std::int32_t* filter_params)
{
    const auto read_values = [&](Reader& io) {
        identifiers(io, b.table);
        if (io.ok()) {
            const Shape shape{*b.index.nstate, *b.table.nele, *b.table.numl, *b.table.ncoo};
            io.reals("res", b.res.get(), shape.with_parts(io.is_complex()));
        }
    };
    return read_passes_of_two_keys(block, kind::multi_element_results, b, pass, read_values, filter_flags,
                                   filter_params);
}

// ---- activation flags

/// Which entities of one type are active, for every state of a series.
template <class Io> struct MultiActivationFlags {
    Arg<Io, char> series;
    Arg<Io, char> etyp;
    Arg<Io, std::int32_t> nent;
    SeriesIndex<Io> index;
    Arg<Io, std::int32_t> entid; ///< [nent]
    Arg<Io, std::int32_t> flags; ///< [nstate, nent], stored as "status"
};

template <class Io> void attributes(Io& io, const MultiActivationFlags<Io>& b)
{
    io.text("series", b.series);
    io.text("etyp", b.etyp);
    io.integer("nent", b.nent);
    attributes(io, b.index);
}

template <class Io> void values(Io& io, const MultiActivationFlags<Io>& b)
{
    if (io.ok()) {
        io.integers("entid", b.entid, {*b.nent});
    }
    if (io.ok()) {
        io.integers("status", b.flags, {*b.index.nstate, *b.nent});
    }
}

std::int32_t write_flags(Location group, const char* series, const char* etyp, const MultiActivationFlags<Writer>& b,
                         std::int32_t states, const Filters& filters, std::size_t float_size)
{
    const BlockKind& kind = kind::multi_activation_flags;
    if (refuse_negative(states, kind)) {
        return invalid_mode;
    }
    return write_open_block(group, kind, {{multi_state}, {series, kind.name, etyp}}, filters, float_size,
                            [&](Writer& io, const Placed& placed) {
                                if (placed.is_new()) {
                                    io.frame(kind, kind.key);
                                    attributes(io, b);
                                    io.integers("entid", b.entid, {*b.nent});
                                    io.forget_extent();
                                }
                                if (io.ok() && states > 0) {
                                    const LeadingStates leading{states, {*b.nent}};
                                    rows(io, b.index, 0, states);
                                    io.integers("status", b.flags, leading.shape(), leading.part());
                                }
                                end_states(io, "status", placed.is_new());
                            });
}

} // namespace
} // namespace kob

extern "C" {

void KOB_WRITE_MULTIENTITYRESULTS(const int64_t* group, const char* series, const char* etyp, const int32_t* nent,
                                  const char* etypvar, const int32_t* ncoo, const char* etypzone, const int32_t* zoneid,
                                  const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
                                  const int32_t* nindex, const int32_t* indexident, const void* indexval,
                                  const int32_t* entid, const int32_t* fidglob, const int32_t* fid,
                                  const char* operator_, const void* weight, const void* res, const int32_t* set,
                                  const int32_t* state, const int32_t* filter_flags, const int32_t* filter_params,
                                  const int32_t* value_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        MultiEntityResults<Writer> b{series,
                                     {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch, entid,
                                      fidglob, fid, operator_, weight},
                                     {nindex, nullptr, indexident, indexval},
                                     res};
        b.set_memory_size(memory_size_of(value(value_size)));
        return write_results({value(group), series, etyp, etypvar, etypzone, zoneid, set}, b, value(state),
                             {filter_flags, filter_params}, value(value_size), access_mode::whole, nullptr, nullptr);
    });
}

void KOB_WRITE_MULTIENTITYRESULTC(const int64_t* group, const char* series, const char* etyp, const int32_t* nent,
                                  const char* etypvar, const int32_t* ncoo, const char* etypzone, const int32_t* zoneid,
                                  const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
                                  const int32_t* nindex, const int32_t* indexident, const void* indexval,
                                  const int32_t* entid, const int32_t* fidglob, const int32_t* fid,
                                  const char* operator_, const void* weight, const void* res, const int32_t* set,
                                  const int32_t* state, const int32_t* filter_flags, const int32_t* filter_params,
                                  const int32_t* value_size, const int32_t* mode, const int64_t* count,
                                  const int64_t* start, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        MultiEntityResults<Writer> b{series,
                                     {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch, entid,
                                      fidglob, fid, operator_, weight},
                                     {nindex, nullptr, indexident, indexval},
                                     res};
        b.set_memory_size(memory_size_of(value(value_size)));
        return write_results({value(group), series, etyp, etypvar, etypzone, zoneid, set}, b, value(state),
                             {filter_flags, filter_params}, value(value_size), value(mode), count, start);
    });
}

void KOB_WRITE_MULTIENTITYRESULTS2(const int64_t* groups, const void*, const void*, const char* series,
                                   const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
                                   const char* etypzone, const int32_t* zoneid, const char* etypframe,
                                   const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                                   const int32_t* indexident, const void* indexval, const int32_t* entid,
                                   const int32_t* fidglob, const int32_t* fid, const char* operator_,
                                   const void* weight, const void* res, const int32_t* memory_size,
                                   const int32_t* state, const int32_t* filter_flags, const int32_t* filter_params,
                                   const int32_t* value_size, const int32_t* mode, const int64_t* count,
                                   const int64_t* start, int32_t* nstate, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        MultiEntityResults<Writer> b{series,
                                     {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch, entid,
                                      fidglob, fid, operator_, weight},
                                     {nindex, nullptr, indexident, indexval},
                                     res};
        b.set_memory_size(static_cast<std::size_t>(value(memory_size)));
        std::int32_t held = 0;
        const std::int32_t result =
            write_series(value(groups), b, {filter_flags, filter_params}, value(value_size),
                         {value(state), value(mode), count, start}, Place::unknown, nstate == nullptr ? held : *nstate);
        return result;
    });
}

void KOB_READ_MULTIENTITYRESULTS(const int64_t* block, const int32_t* pass, char* series, char* etyp, int32_t* nent,
                                 char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid, char* etypframe,
                                 int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex, int32_t* nstate,
                                 int32_t* indexident, double* indexval, int32_t* entid, int32_t* fidglob, int32_t* fid,
                                 char* operator_, double* weight, double* res, int32_t* filter_flags,
                                 int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const MultiEntityResults<Reader> b{series,
                                           {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch,
                                            entid, fidglob, fid, operator_, weight},
                                           {nindex, nstate, indexident, indexval},
                                           res};
        return read_results(value(block), value(pass), b, filter_flags, filter_params);
    });
}

void KOB_READ_MULTIENTITYRESULTC(const int64_t* block, const int32_t* pass, char* series, char* etyp, int32_t* nent,
                                 char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid, char* etypframe,
                                 int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex, int32_t* nstate,
                                 int32_t* indexident, void* indexval, int32_t* entid, int32_t* fidglob, int32_t* fid,
                                 char* operator_, void* weight, void* res, int32_t* filter_flags,
                                 int32_t* filter_params, const int32_t* mode, const int64_t* count,
                                 const int64_t* start, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        MultiEntityResults<Reader> b{series,
                                     {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch, entid,
                                      fidglob, fid, operator_, weight},
                                     {nindex, nstate, indexident, indexval},
                                     res};
        b.set_memory_size(memory_size_of(value(pass)));
        return read_pieces(value(block), value(pass), b, filter_flags, filter_params, {value(mode), count, start});
    });
}

void KOB_READ_MULTIENTITYRESULTS2(const int64_t* block, const int32_t* sections, const void*, char* series, char* etyp,
                                  int32_t* nent, char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid,
                                  char* etypframe, int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex,
                                  int32_t* nstate, int32_t* indexident, void* indexval, int32_t* entid,
                                  int32_t* fidglob, int32_t* fid, char* operator_, void* weight, void* res,
                                  const int32_t* memory_size, int32_t* filter_flags, int32_t* filter_params,
                                  const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        MultiEntityResults<Reader> b{series,
                                     {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch, entid,
                                      fidglob, fid, operator_, weight},
                                     {nindex, nstate, indexident, indexval},
                                     res};
        b.set_memory_size(static_cast<std::size_t>(value(memory_size)));
        Reader io{value(block), kind::multi_entity_results};
        return read_series(io, value(sections), b, filter_flags, filter_params, {value(mode), count, start});
    });
}

void KOB_WRITE_MULTIELEMENTRESULTS(const int64_t* group, const char* series, const char* etypelem, const int32_t* nele,
                                   const char* etypvar, const int32_t* ncoo, const int32_t* numl, const int32_t* ndim,
                                   const char* etypzone, const int32_t* zoneid, const char* etypframe,
                                   const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                                   const int32_t* indexident, const double* indexval, const int32_t* idele,
                                   const int32_t* fidglob, const int32_t* fid, const double* eloc,
                                   const char* operator_, const double* weight, const double* res, const int32_t* set,
                                   const int32_t* n, const int32_t* filter_flags, const int32_t* filter_params,
                                   const int32_t* value_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const MultiElementResults<Writer> b{series,
                                            {etypelem, nele, etypvar, ncoo, numl, ndim, etypzone, zoneid, etypframe,
                                             fswitch, dmpswitch, idele, fidglob, fid, eloc, operator_, weight},
                                            {nindex, nullptr, indexident, indexval},
                                            res};
        return write_results({value(group), series, etypelem, etypvar, etypzone, zoneid, set}, b, value(n),
                             {filter_flags, filter_params}, value(value_size));
    });
}

void KOB_READ_MULTIELEMENTRESULTS(const int64_t* block, const int32_t* pass, char* series, char* etypelem,
                                  int32_t* nele, char* etypvar, int32_t* ncoo, int32_t* numl, int32_t* ndim,
                                  char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch,
                                  int32_t* dmpswitch, int32_t* nindex, int32_t* nstate, int32_t* indexident,
                                  double* indexval, int32_t* idele, int32_t* fidglob, int32_t* fid, double* eloc,
                                  char* operator_, double* weight, double* res, int32_t* filter_flags,
                                  int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const MultiElementResults<Reader> b{series,
                                            {etypelem, nele, etypvar, ncoo, numl, ndim, etypzone, zoneid, etypframe,
                                             fswitch, dmpswitch, idele, fidglob, fid, eloc, operator_, weight},
                                            {nindex, nstate, indexident, indexval},
                                            res};
        return read_results(value(block), value(pass), b, filter_flags, filter_params);
    });
}

void KOB_WRITE_MULTIACTIVFLAGS(const int64_t* group, const char* series, const char* etyp, const int32_t* nent,
                               const int32_t* nindex, const int32_t* indexident, const double* indexval,
                               const int32_t* entid, const int32_t* flags, const int32_t* n,
                               const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                               int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const MultiActivationFlags<Writer> b{series, etyp, nent, {nindex, nullptr, indexident, indexval}, entid, flags};
        return write_flags(value(group), series, etyp, b, value(n), {filter_flags, filter_params},
                           stored_float(float_size));
    });
}

void KOB_READ_MULTIACTIVFLAGS(const int64_t* block, const int32_t* pass, char* series, char* etyp, int32_t* nent,
                              int32_t* nindex, int32_t* nstate, int32_t* indexident, double* indexval, int32_t* entid,
                              int32_t* flags, int32_t* filter_flags, int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const MultiActivationFlags<Reader> b{series, etyp, nent, {nindex, nstate, indexident, indexval, "status"},
                                             entid,  flags};
        return read_passes(value(block), kind::multi_activation_flags, b, value(pass), filter_flags, filter_params,
                           "status");
    });
}

// ---- older layout

void KOB1_WRITE_MULTIENTITYRESULTS(const int64_t* group, const char* series, const char* etyp, const int32_t* nent,
                                   const char* etypvar, const int32_t* ncoo, const char* etypzone,
                                   const int32_t* zoneid, const char* etypframe, const int32_t* fswitch,
                                   const int32_t* dmpswitch, const int32_t* nindex, const int32_t* indexident,
                                   const void* indexval, const int32_t* entid, const int32_t* fidglob,
                                   const int32_t* fid, const char* operator_, const void* weight, const void* res,
                                   const int32_t* set, const int32_t* state, const int32_t* filter_flags,
                                   const int32_t* filter_params, const int32_t* value_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        MultiEntityResults<Writer> b{series,
                                     {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch, entid,
                                      fidglob, fid, operator_, weight},
                                     {nindex, nullptr, indexident, indexval},
                                     res};
        b.set_memory_size(memory_size_of(value(value_size)));
        return write_results({older(group), series, etyp, etypvar, etypzone, zoneid, set}, b, value(state),
                             {filter_flags, filter_params}, value(value_size), access_mode::whole, nullptr, nullptr);
    });
}

void KOB1_READ_MULTIENTITYRESULTS(const int64_t* block, const int32_t* pass, char* series, char* etyp, int32_t* nent,
                                  char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid, char* etypframe,
                                  int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex, int32_t* nstate,
                                  int32_t* indexident, double* indexval, int32_t* entid, int32_t* fidglob, int32_t* fid,
                                  char* operator_, double* weight, double* res, int32_t* filter_flags,
                                  int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const MultiEntityResults<Reader> b{series,
                                           {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch,
                                            entid, fidglob, fid, operator_, weight},
                                           {nindex, nstate, indexident, indexval},
                                           res};
        return read_results(older(block), value(pass), b, filter_flags, filter_params);
    });
}

void KOB1_WRITE_MULTIENTITYRESULTC(const int64_t* group, const char* series, const char* etyp, const int32_t* nent,
                                   const char* etypvar, const int32_t* ncoo, const char* etypzone,
                                   const int32_t* zoneid, const char* etypframe, const int32_t* fswitch,
                                   const int32_t* dmpswitch, const int32_t* nindex, const int32_t* indexident,
                                   const void* indexval, const int32_t* entid, const int32_t* fidglob,
                                   const int32_t* fid, const char* operator_, const void* weight, const void* res,
                                   const int32_t* set, const int32_t* state, const int32_t* filter_flags,
                                   const int32_t* filter_params, const int32_t* value_size, const int32_t* mode,
                                   const int64_t* count, const int64_t* start, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        MultiEntityResults<Writer> b{series,
                                     {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch, entid,
                                      fidglob, fid, operator_, weight},
                                     {nindex, nullptr, indexident, indexval},
                                     res};
        b.set_memory_size(memory_size_of(value(value_size)));
        return write_results({older(group), series, etyp, etypvar, etypzone, zoneid, set}, b, value(state),
                             {filter_flags, filter_params}, value(value_size), value(mode), count, start);
    });
}

void KOB1_READ_MULTIENTITYRESULTC(const int64_t* block, const int32_t* pass, char* series, char* etyp, int32_t* nent,
                                  char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid, char* etypframe,
                                  int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex, int32_t* nstate,
                                  int32_t* indexident, void* indexval, int32_t* entid, int32_t* fidglob, int32_t* fid,
                                  char* operator_, void* weight, void* res, int32_t* filter_flags,
                                  int32_t* filter_params, const int32_t* mode, const int64_t* count,
                                  const int64_t* start, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        MultiEntityResults<Reader> b{series,
                                     {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch, entid,
                                      fidglob, fid, operator_, weight},
                                     {nindex, nstate, indexident, indexval},
                                     res};
        b.set_memory_size(memory_size_of(value(pass)));
        return read_pieces(older(block), value(pass), b, filter_flags, filter_params, {value(mode), count, start});
    });
}

void KOB1_WRITE_MULTIENTITYRESULTS2(const int64_t* groups, const void*, const void*, const char* series,
                                    const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
                                    const char* etypzone, const int32_t* zoneid, const char* etypframe,
                                    const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                                    const int32_t* indexident, const void* indexval, const int32_t* entid,
                                    const int32_t* fidglob, const int32_t* fid, const char* operator_,
                                    const void* weight, const void* res, const int32_t* memory_size,
                                    const int32_t* state, const int32_t* filter_flags, const int32_t* filter_params,
                                    const int32_t* value_size, const int32_t* mode, const int64_t* count,
                                    const int64_t* start, int32_t* nstate, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        MultiEntityResults<Writer> b{series,
                                     {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch, entid,
                                      fidglob, fid, operator_, weight},
                                     {nindex, nullptr, indexident, indexval},
                                     res};
        b.set_memory_size(static_cast<std::size_t>(value(memory_size)));
        std::int32_t held = 0;
        const std::int32_t result =
            write_series(older(groups), b, {filter_flags, filter_params}, value(value_size),
                         {value(state), value(mode), count, start}, Place::unknown, nstate == nullptr ? held : *nstate);
        return result;
    });
}

void KOB1_READ_MULTIENTITYRESULTS2(const int64_t* block, const int32_t* sections, const void*, char* series, char* etyp,
                                   int32_t* nent, char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid,
                                   char* etypframe, int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex,
                                   int32_t* nstate, int32_t* indexident, void* indexval, int32_t* entid,
                                   int32_t* fidglob, int32_t* fid, char* operator_, void* weight, void* res,
                                   const int32_t* memory_size, int32_t* filter_flags, int32_t* filter_params,
                                   const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        MultiEntityResults<Reader> b{series,
                                     {etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch, entid,
                                      fidglob, fid, operator_, weight},
                                     {nindex, nstate, indexident, indexval},
                                     res};
        b.set_memory_size(static_cast<std::size_t>(value(memory_size)));
        Reader io{older(block), kind::multi_entity_results};
        return read_series(io, value(sections), b, filter_flags, filter_params, {value(mode), count, start});
    });
}

void KOB1_WRITE_MULTIELEMENTRESULTS(const int64_t* group, const char* series, const char* etypelem, const int32_t* nele,
                                    const char* etypvar, const int32_t* ncoo, const int32_t* numl, const int32_t* ndim,
                                    const char* etypzone, const int32_t* zoneid, const char* etypframe,
                                    const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                                    const int32_t* indexident, const double* indexval, const int32_t* idele,
                                    const int32_t* fidglob, const int32_t* fid, const double* eloc,
                                    const char* operator_, const double* weight, const double* res, const int32_t* set,
                                    const int32_t* n, const int32_t* filter_flags, const int32_t* filter_params,
                                    const int32_t* value_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const MultiElementResults<Writer> b{series,
                                            {etypelem, nele, etypvar, ncoo, numl, ndim, etypzone, zoneid, etypframe,
                                             fswitch, dmpswitch, idele, fidglob, fid, eloc, operator_, weight},
                                            {nindex, nullptr, indexident, indexval},
                                            res};
        return write_results({older(group), series, etypelem, etypvar, etypzone, zoneid, set}, b, value(n),
                             {filter_flags, filter_params}, value(value_size));
    });
}

void KOB1_READ_MULTIELEMENTRESULTS(const int64_t* block, const int32_t* pass, char* series, char* etypelem,
                                   int32_t* nele, char* etypvar, int32_t* ncoo, int32_t* numl, int32_t* ndim,
                                   char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch,
                                   int32_t* dmpswitch, int32_t* nindex, int32_t* nstate, int32_t* indexident,
                                   double* indexval, int32_t* idele, int32_t* fidglob, int32_t* fid, double* eloc,
                                   char* operator_, double* weight, double* res, int32_t* filter_flags,
                                   int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const MultiElementResults<Reader> b{series,
                                            {etypelem, nele, etypvar, ncoo, numl, ndim, etypzone, zoneid, etypframe,
                                             fswitch, dmpswitch, idele, fidglob, fid, eloc, operator_, weight},
                                            {nindex, nstate, indexident, indexval},
                                            res};
        return read_results(older(block), value(pass), b, filter_flags, filter_params);
    });
}

void KOB1_WRITE_MULTIACTIVFLAGS(const int64_t* group, const char* series, const char* etyp, const int32_t* nent,
                                const int32_t* nindex, const int32_t* indexident, const double* indexval,
                                const int32_t* entid, const int32_t* flags, const int32_t* n,
                                const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                                int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const MultiActivationFlags<Writer> b{series, etyp, nent, {nindex, nullptr, indexident, indexval}, entid, flags};
        return write_flags(older(group), series, etyp, b, value(n), {filter_flags, filter_params},
                           stored_float(float_size));
    });
}

void KOB1_READ_MULTIACTIVFLAGS(const int64_t* block, const int32_t* pass, char* series, char* etyp, int32_t* nent,
                               int32_t* nindex, int32_t* nstate, int32_t* indexident, double* indexval, int32_t* entid,
                               int32_t* flags, int32_t* filter_flags, int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const MultiActivationFlags<Reader> b{series, etyp, nent, {nindex, nstate, indexident, indexval, "status"},
                                             entid,  flags};
        return read_passes(older(block), kind::multi_activation_flags, b, value(pass), filter_flags, filter_params,
                           "status");
    });
}

} // extern "C"
