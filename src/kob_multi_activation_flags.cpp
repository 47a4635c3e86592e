// SPDX-License-Identifier: BSD-3-Clause
// Activation flags of many states.
#include "kob_dp.h"
#include "kob_multi_state.hpp"

namespace kob {
namespace {

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
