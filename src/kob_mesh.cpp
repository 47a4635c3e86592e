// SPDX-License-Identifier: BSD-3-Clause
// Blocks that describe the mesh: connectivities, parts, attributes and identifiers, collectors.
#include "kob_block.hpp"
#include "kob_dp.h"
#include "kob_units.hpp"

namespace kob {
namespace {

/// Titles of the older layout; the current one lets the caller choose.
constexpr std::int32_t older_title_length = name_length;

// ---- connectivities

/// The topology of one kind of element.
template <class Io> struct Connectivities {
    Arg<Io, char> etyp;
    Arg<Io, char> etypelem;
    Arg<Io, char> etyppart;
    Arg<Io, char> etypnode;
    Arg<Io, char> etypvar;
    Arg<Io, std::int32_t> nele;
    Arg<Io, std::int32_t> npele;
    Arg<Io, std::int32_t> ndim;
    Arg<Io, std::int32_t> nbint;
    Arg<Io, std::int32_t> nbfloat;
    StateIndex<Io> index;
    Arg<Io, std::int32_t> idele;  ///< [nele]
    Arg<Io, std::int32_t> pid;    ///< [nele]
    Arg<Io, std::int32_t> ic;     ///< [nele, npele]
    Arg<Io, std::int32_t> iparam; ///< [nele, nbint]
    Arg<Io, double> fparam;       ///< [nele, nbfloat]
    Units<Io> units{};            ///< of nbfloat parameters; in the older layout, which names no variable group
};

template <class Io> void attributes(Io& io, const Connectivities<Io>& b)
{
    if (io.is_current()) {
        io.text("etyp", b.etyp);
    }
    io.text("etypelem", b.etypelem);
    io.text("etyppart", b.etyppart);
    io.text("etypnode", b.etypnode);
    io.integer("nele", b.nele);
    io.integer("npele", b.npele);
    io.integer("ndim", b.ndim);
    io.integer("nbint", b.nbint);
    io.integer("nbfloat", b.nbfloat);
    if (io.is_current() && io.ok() && *b.nbfloat > 0) {
        io.text("etypvar", b.etypvar);
    }
    attributes(io, b.index);
}

template <class Io> void identifiers(Io& io, const Connectivities<Io>& b)
{
    if (io.ok()) {
        io.integers("idele", b.idele, {*b.nele});
        io.integers("pid", b.pid, {*b.nele});
    }
}

template <class Io> void values(Io& io, const Connectivities<Io>& b)
{
    if (!io.ok()) {
        return;
    }
    io.integers("ic", b.ic, {*b.nele, *b.npele});
    io.integers("iparam", b.iparam, {*b.nele, *b.nbint});
    io.exact_reals("fparam", b.fparam.get(), {*b.nele, *b.nbfloat});
    if (!io.is_current()) {
        values(io, b.units, *b.nbfloat);
    }
}

// ---- parts

/// Columns of a parts block that its mask says are absent.
namespace absent_column {
constexpr std::int32_t material = 1;
constexpr std::int32_t material_type = 2;
constexpr std::int32_t colour = 4;
} // namespace absent_column

/// The parts of one part type.
template <class Io> struct Parts {
    Arg<Io, char> etyppart;
    Arg<Io, std::int32_t> npart;
    Arg<Io, std::int32_t> off;    ///< mask of absent columns
    Arg<Io, std::int32_t> length; ///< characters of a title, 0 or less for none
    StateIndex<Io> index;
    Arg<Io, std::int32_t> pid;     ///< [npart]
    Arg<Io, char> title;           ///< [npart] texts of `length` characters
    Arg<Io, std::int32_t> mid;     ///< [npart]
    Arg<Io, std::int32_t> mtyp;    ///< [npart]
    Arg<Io, std::int32_t> pcol;    ///< [npart]
    Arg<Io, std::int32_t> pvtyp{}; ///< [npart]; in the older layout
};

template <class Io> void attributes(Io& io, const Parts<Io>& b)
{
    io.text("etyppart", b.etyppart);
    io.integer("npart", b.npart);
    io.integer("off", b.off);
    if (io.is_current()) {
        io.integer("length", b.length);
    }
    attributes(io, b.index);
}

template <class Io> void values(Io& io, const Parts<Io>& b)
{
    if (!io.ok()) {
        return;
    }
    io.integers("pid", b.pid, {*b.npart});
    if (*b.length > 0) {
        io.texts("title", b.title, {*b.npart}, *b.length);
    }
    if ((*b.off & absent_column::material) == 0) {
        io.integers("mid", b.mid, {*b.npart});
    }
    if ((*b.off & absent_column::material_type) == 0) {
        io.integers("mtyp", b.mtyp, {*b.npart});
    }
    if ((*b.off & absent_column::colour) == 0) {
        io.integers("pcol", b.pcol, {*b.npart});
    }
    if (!io.is_current()) {
        io.integers("pvtyp", b.pvtyp, {*b.npart});
    }
}

// ---- attributes and identifiers

/// Titles and further identifiers of the entities of one type; two kinds of block share the layout.
template <class Io> struct Entities {
    Arg<Io, char> etyp;
    Arg<Io, std::int32_t> nent;
    Arg<Io, std::int32_t> nuid;   ///< further identifiers of an entity
    Arg<Io, std::int32_t> length; ///< characters of a title, 0 or less for none
    StateIndex<Io> index;
    Arg<Io, std::int32_t> entid; ///< [nent]
    Arg<Io, char> title;         ///< [nent] texts of `length` characters
    Arg<Io, std::int32_t> uid;   ///< [nent, nuid]
};

template <class Io> void attributes(Io& io, const Entities<Io>& b)
{
    io.text("etyp", b.etyp);
    io.integer("nent", b.nent);
    io.integer("nuid", b.nuid);
    if (io.is_current()) {
        io.integer("length", b.length);
    }
    attributes(io, b.index);
}

template <class Io> void values(Io& io, const Entities<Io>& b)
{
    if (!io.ok()) {
        return;
    }
    io.integers("entid", b.entid, {*b.nent});
    if (*b.length > 0) {
        io.texts("title", b.title, {*b.nent}, *b.length);
    }
    if (*b.nuid > 0) {
        io.integers("uid", b.uid, {*b.nent, *b.nuid});
    }
}

// ---- collector

/// Named collections of entities of several types.
template <class Io> struct Collector {
    Arg<Io, std::int32_t> nenttot; ///< members in all: the sum of nent
    Arg<Io, char> etypcoll;
    Arg<Io, std::int32_t> ncoll;
    Arg<Io, std::int32_t> ntyp; ///< member entity types
    StateIndex<Io> index;
    Arg<Io, std::int32_t> idcoll; ///< [ncoll]
    Arg<Io, char> etyp;           ///< [ntyp] texts
    Arg<Io, std::int32_t> nent;   ///< [ncoll, ntyp]
    Arg<Io, std::int32_t> entid;  ///< [nenttot], collector by collector, type by type
};

template <class Io> void attributes(Io& io, const Collector<Io>& b)
{
    io.text("etypcoll", b.etypcoll);
    io.integer("ncoll", b.ncoll);
    io.integer("ntyp", b.ntyp);
    io.integer("nenttot", b.nenttot);
    attributes(io, b.index);
}

template <class Io> void values(Io& io, const Collector<Io>& b)
{
    if (!io.ok()) {
        return;
    }
    io.integers("idcoll", b.idcoll, {*b.ncoll});
    io.texts("etyp", b.etyp, {*b.ntyp});
    io.integers("nent", b.nent, {*b.ncoll, *b.ntyp});
    io.integers("entid", b.entid, {*b.nenttot});
}

} // namespace
} // namespace kob

extern "C" {

void KOB_WRITE_CONNECTIVITIES(const int64_t* group, const char* etyp, const char* etypelem, const char* etyppart,
                              const char* etypnode, const char* etypvar, const int32_t* nele, const int32_t* npele,
                              const int32_t* ndim, const int32_t* nbint, const int32_t* nbfloat, const int32_t* nindex,
                              const int32_t* indexic, const int32_t* indexident, const double* indexval,
                              const int32_t* idele, const int32_t* pid, const int32_t* ic, const int32_t* iparam,
                              const double* fparam, const int32_t* state, const int32_t* filter_flags,
                              const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Connectivities<Writer> b{etyp,
                                       etypelem,
                                       etyppart,
                                       etypnode,
                                       etypvar,
                                       nele,
                                       npele,
                                       ndim,
                                       nbint,
                                       nbfloat,
                                       {nindex, indexic, indexident, indexval},
                                       idele,
                                       pid,
                                       ic,
                                       iparam,
                                       fparam};
        return write_new_block(value(group), kind::connectivities,
                               {validity_of(b.index, state), {kind::connectivities.name, etypelem}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB_READ_CONNECTIVITIES(const int64_t* block, const int32_t* mode, char* etyp, char* etypelem, char* etyppart,
                             char* etypnode, char* etypvar, int32_t* nele, int32_t* npele, int32_t* ndim,
                             int32_t* nbint, int32_t* nbfloat, int32_t* nindex, int32_t* indexic, int32_t* indexident,
                             double* indexval, int32_t* idele, int32_t* pid, int32_t* ic, int32_t* iparam,
                             double* fparam, int32_t* filter_flags, int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Connectivities<Reader> b{etyp,
                                       etypelem,
                                       etyppart,
                                       etypnode,
                                       etypvar,
                                       nele,
                                       npele,
                                       ndim,
                                       nbint,
                                       nbfloat,
                                       {nindex, indexic, indexident, indexval},
                                       idele,
                                       pid,
                                       ic,
                                       iparam,
                                       fparam};
        return read_sections(value(block), kind::connectivities, b, value(mode), filter_flags, filter_params, "fparam");
    });
}

void KOB_WRITE_PARTS(const int64_t* group, const char* etyppart, const int32_t* npart, const int32_t* off,
                     const int32_t* length, const int32_t* nindex, const int32_t* indexic, const int32_t* indexident,
                     const double* indexval, const int32_t* pid, const char* title, const int32_t* mid,
                     const int32_t* mtyp, const int32_t* pcol, const int32_t* state, const int32_t* filter_flags,
                     const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Parts<Writer> b{etyppart, npart, off, length, {nindex, indexic, indexident, indexval},
                              pid,      title, mid, mtyp,   pcol};
        return write_new_block(value(group), kind::parts, {validity_of(b.index, state), {kind::parts.name, etyppart}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB_READ_PARTS(const int64_t* block, const int32_t* mode, char* etyppart, int32_t* npart, int32_t* off,
                    int32_t* length, int32_t* nindex, int32_t* indexic, int32_t* indexident, double* indexval,
                    int32_t* pid, char* title, int32_t* mid, int32_t* mtyp, int32_t* pcol, int32_t* filter_flags,
                    int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Parts<Reader> b{etyppart, npart, off, length, {nindex, indexic, indexident, indexval},
                              pid,      title, mid, mtyp,   pcol};
        return read_sections(value(block), kind::parts, b, value(mode), filter_flags, filter_params);
    });
}

void KOB_WRITE_ATTRIBUTES(const int64_t* group, const char* etyp, const int32_t* nent, const int32_t* nuid,
                          const int32_t* length, const int32_t* nindex, const int32_t* indexic,
                          const int32_t* indexident, const double* indexval, const int32_t* entid, const char* title,
                          const int32_t* uid, const int32_t* state, const int32_t* filter_flags,
                          const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Entities<Writer> b{etyp, nent, nuid, length, {nindex, indexic, indexident, indexval}, entid, title, uid};
        return write_new_block(value(group), kind::attributes,
                               {validity_of(b.index, state), {kind::attributes.name, etyp}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB_READ_ATTRIBUTES(const int64_t* block, const int32_t* mode, char* etyp, int32_t* nent, int32_t* nuid,
                         int32_t* length, int32_t* nindex, int32_t* indexic, int32_t* indexident, double* indexval,
                         int32_t* entid, char* title, int32_t* uid, int32_t* filter_flags, int32_t* filter_params,
                         int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Entities<Reader> b{etyp, nent, nuid, length, {nindex, indexic, indexident, indexval}, entid, title, uid};
        return read_sections(value(block), kind::attributes, b, value(mode), filter_flags, filter_params);
    });
}

void KOB_WRITE_IDENTIFIERS(const int64_t* group, const char* etyp, const int32_t* nent, const int32_t* nuid,
                           const int32_t* length, const int32_t* nindex, const int32_t* indexic,
                           const int32_t* indexident, const double* indexval, const int32_t* entid, const char* title,
                           const int32_t* uid, const int32_t* state, const int32_t* filter_flags,
                           const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Entities<Writer> b{etyp, nent, nuid, length, {nindex, indexic, indexident, indexval}, entid, title, uid};
        return write_new_block(value(group), kind::identifiers,
                               {validity_of(b.index, state), {kind::identifiers.name, etyp}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB_READ_IDENTIFIERS(const int64_t* block, const int32_t* mode, char* etyp, int32_t* nent, int32_t* nuid,
                          int32_t* length, int32_t* nindex, int32_t* indexic, int32_t* indexident, double* indexval,
                          int32_t* entid, char* title, int32_t* uid, int32_t* filter_flags, int32_t* filter_params,
                          int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Entities<Reader> b{etyp, nent, nuid, length, {nindex, indexic, indexident, indexval}, entid, title, uid};
        return read_sections(value(block), kind::identifiers, b, value(mode), filter_flags, filter_params);
    });
}

void KOB_WRITE_COLLECTOR(const int64_t* group, const char* etypcoll, const int32_t* ncoll, const int32_t* ntyp,
                         const int32_t* nindex, const int32_t* indexic, const int32_t* indexident,
                         const double* indexval, const int32_t* idcoll, const char* etyp, const int32_t* nent,
                         const int32_t* entid, const int32_t* state, const int32_t* filter_flags,
                         const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const std::int32_t nenttot = sum32(nent, product32(value(ncoll), value(ntyp)));
        const Collector<Writer> b{&nenttot, etypcoll, ncoll, ntyp, {nindex, indexic, indexident, indexval},
                                  idcoll,   etyp,     nent,  entid};
        return write_new_block(value(group), kind::collector,
                               {validity_of(b.index, state), {kind::collector.name, etypcoll}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB_READ_COLLECTOR(const int64_t* block, const int32_t* mode, int32_t* nenttot, char* etypcoll, int32_t* ncoll,
                        int32_t* ntyp, int32_t* nindex, int32_t* indexic, int32_t* indexident, double* indexval,
                        int32_t* idcoll, char* etyp, int32_t* nent, int32_t* entid, int32_t* filter_flags,
                        int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Collector<Reader> b{nenttot, etypcoll, ncoll, ntyp, {nindex, indexic, indexident, indexval},
                                  idcoll,  etyp,     nent,  entid};
        return read_passes(value(block), kind::collector, b, value(mode), filter_flags, filter_params);
    });
}

// ---- older layout

void KOB1_WRITE_COLLECTOR(const int64_t* group, const char* etypcoll, const int32_t* ncoll, const int32_t* ntyp,
                          const int32_t* nindex, const int32_t* indexident, const double* indexval,
                          const int32_t* idcoll, const char* etyp, const int32_t* nent, const int32_t* entid,
                          const int32_t* state, const int32_t* filter_flags, const int32_t* filter_params,
                          const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const std::int32_t nenttot = sum32(nent, product32(value(ncoll), value(ntyp)));
        const Collector<Writer> b{&nenttot, etypcoll, ncoll, ntyp, {nindex, nullptr, indexident, indexval},
                                  idcoll,   etyp,     nent,  entid};
        return write_new_block(older(group), kind::collector,
                               {validity_of(b.index, state), {kind::collector.name, etypcoll}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB1_READ_COLLECTOR(const int64_t* block, const int32_t* pass, int32_t* nenttot, char* etypcoll, int32_t* ncoll,
                         int32_t* ntyp, int32_t* nindex, int32_t* indexident, double* indexval, int32_t* idcoll,
                         char* etyp, int32_t* nent, int32_t* entid, int32_t* filter_flags, int32_t* filter_params,
                         int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Collector<Reader> b{nenttot, etypcoll, ncoll, ntyp, {nindex, nullptr, indexident, indexval},
                                  idcoll,  etyp,     nent,  entid};
        return read_passes(older(block), kind::collector, b, value(pass), filter_flags, filter_params);
    });
}

void KOB1_WRITE_CONNECTIVITIES(const int64_t* group, const char* etypelem, const char* etyppart, const char* etypnode,
                               const int32_t* nele, const int32_t* npele, const int32_t* ndim, const int32_t* nbint,
                               const int32_t* nbfloat, const int32_t* nindex, const int32_t* indexident,
                               const double* indexval, const int32_t* idele, const int32_t* pid, const int32_t* ic,
                               const int32_t* iparam, const double* fparam, const int32_t* mbunit,
                               const int32_t* mdunit, const int32_t* ubid, const double* ubexp, const int32_t* udid,
                               const double* udexp, const int32_t* state, const int32_t* filter_flags,
                               const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Connectivities<Writer> b{nullptr,
                                       etypelem,
                                       etyppart,
                                       etypnode,
                                       nullptr,
                                       nele,
                                       npele,
                                       ndim,
                                       nbint,
                                       nbfloat,
                                       {nindex, nullptr, indexident, indexval},
                                       idele,
                                       pid,
                                       ic,
                                       iparam,
                                       fparam,
                                       {mbunit, mdunit, ubid, ubexp, udid, udexp}};
        return write_new_block(older(group), kind::connectivities,
                               {validity_of(b.index, state), {kind::connectivities.name, etypelem}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB1_READ_CONNECTIVITIES(const int64_t* block, const int32_t* pass, char* etypelem, char* etyppart, char* etypnode,
                              int32_t* nele, int32_t* npele, int32_t* ndim, int32_t* nbint, int32_t* nbfloat,
                              int32_t* nindex, int32_t* indexident, double* indexval, int32_t* idele, int32_t* pid,
                              int32_t* ic, int32_t* iparam, double* fparam, int32_t* mbunit, int32_t* mdunit,
                              int32_t* ubid, double* ubexp, int32_t* udid, double* udexp, int32_t* filter_flags,
                              int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Connectivities<Reader> b{nullptr,
                                       etypelem,
                                       etyppart,
                                       etypnode,
                                       nullptr,
                                       nele,
                                       npele,
                                       ndim,
                                       nbint,
                                       nbfloat,
                                       {nindex, nullptr, indexident, indexval},
                                       idele,
                                       pid,
                                       ic,
                                       iparam,
                                       fparam,
                                       {mbunit, mdunit, ubid, ubexp, udid, udexp}};
        return read_passes(older(block), kind::connectivities, b, value(pass), filter_flags, filter_params, "fparam");
    });
}

void KOB1_WRITE_PARTS(const int64_t* group, const char* etyppart, const int32_t* npart, const int32_t* off,
                      const int32_t* nindex, const int32_t* indexident, const double* indexval, const int32_t* pid,
                      const char* title, const int32_t* mid, const int32_t* mtyp, const int32_t* pcol,
                      const int32_t* pvtyp, const int32_t* state, const int32_t* filter_flags,
                      const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Parts<Writer> b{
            etyppart, npart, off,  &older_title_length, {nindex, nullptr, indexident, indexval}, pid, title, mid,
            mtyp,     pcol,  pvtyp};
        return write_new_block(older(group), kind::parts, {validity_of(b.index, state), {kind::parts.name, etyppart}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB1_READ_PARTS(const int64_t* block, const int32_t* pass, char* etyppart, int32_t* npart, int32_t* off,
                     int32_t* nindex, int32_t* indexident, double* indexval, int32_t* pid, char* title, int32_t* mid,
                     int32_t* mtyp, int32_t* pcol, int32_t* pvtyp, int32_t* filter_flags, int32_t* filter_params,
                     int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        std::int32_t length = older_title_length;
        const Parts<Reader> b{etyppart, npart, off,  &length, {nindex, nullptr, indexident, indexval}, pid, title,
                              mid,      mtyp,  pcol, pvtyp};
        return read_passes(older(block), kind::parts, b, value(pass), filter_flags, filter_params);
    });
}

void KOB1_WRITE_ATTRIBUTES(const int64_t* group, const char* etyp, const int32_t* nent, const int32_t* nuid,
                           const int32_t* nindex, const int32_t* indexident, const double* indexval,
                           const int32_t* entid, const char* title, const int32_t* uid, const int32_t* state,
                           const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                           int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Entities<Writer> b{etyp,  nent,  nuid, &older_title_length, {nindex, nullptr, indexident, indexval},
                                 entid, title, uid};
        return write_new_block(older(group), kind::attributes,
                               {validity_of(b.index, state), {kind::attributes.name, etyp}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB1_READ_ATTRIBUTES(const int64_t* block, const int32_t* pass, char* etyp, int32_t* nent, int32_t* nuid,
                          int32_t* nindex, int32_t* indexident, double* indexval, int32_t* entid, char* title,
                          int32_t* uid, int32_t* filter_flags, int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        std::int32_t length = older_title_length;
        const Entities<Reader> b{etyp, nent, nuid, &length, {nindex, nullptr, indexident, indexval}, entid, title, uid};
        return read_passes(older(block), kind::attributes, b, value(pass), filter_flags, filter_params);
    });
}

} // extern "C"
