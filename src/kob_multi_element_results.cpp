// SPDX-License-Identifier: BSD-3-Clause
// Element results of many states.
#include "kob_dp.h"
#include "kob_multi_state.hpp"
#include "kob_results.hpp"

namespace kob {
namespace {

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

} // namespace
} // namespace kob

extern "C" {

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

// ---- older layout

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

} // extern "C"
