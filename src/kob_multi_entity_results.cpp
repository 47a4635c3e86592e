// SPDX-License-Identifier: BSD-3-Clause
// Entity results of many states.
#include "kob_dp.h"
#include "kob_group_links.hpp"
#include "kob_multi_state.hpp"
#include "kob_results.hpp"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <utility>
#include <vector>

namespace kob {
namespace {

constexpr std::int32_t real_memory_bit = 1024; // the caller's floating arrays are 4-byte floats

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

/// The dataset that tells an old block, and those that a further state goes to: one look finds them all.
constexpr std::initializer_list<const char*> looked_for{"entid", "indexident", "indexval", "res"};

/// `links` are the caller's, if it has looked for them.
std::int32_t write_series(Location block, const MultiEntityResults<Writer>& b, const Filters& filters,
                          std::int32_t value_size, const StateRequest& request, Place place, std::int32_t& nstate,
                          const GroupLinks* links = nullptr)
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
    std::optional<GroupLinks> own;
    bool is_new = true;
    if (place != Place::fresh) {
        const hid_t data = io.place(Where::data);
        if (links == nullptr || !links->is_of(data)) {
            links = &own.emplace(data, looked_for);
        }
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

/// Writes states by the caller's state argument; mode and selection stand in for its one state.
std::int32_t write_results(const SeriesPlace& to, const MultiEntityResults<Writer>& b, std::int32_t state,
                           const Filters& filters, std::int32_t value_size, std::int32_t mode,
                           const std::int64_t* count, const std::int64_t* start)
{
    const std::int32_t size = value_size & ~real_memory_bit;
    // A series is written state by state: but for the first time its block is there.
    const BlockPath path = to.path(kind::multi_entity_results);
    GroupLinks links{to.group.group, path.text().c_str(), looked_for};
    Placed placed{links.release_group(), 0, to.group.generation};
    if (!placed.group) {
        placed = place_block(to.group, path);
    }
    if (placed.status < 0) {
        return placed.status;
    }
    LeadingStates one_state = states_of(b, 1, value_size_of(size).complex);
    std::int32_t nstate = 0;
    const std::int32_t result =
        write_series(placed.location(), b, filters, size, request_of(state, mode, count, start, one_state),
                     placed.place(), nstate, &links);
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

} // extern "C"
