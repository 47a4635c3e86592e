// SPDX-License-Identifier: BSD-3-Clause
// Blocks of the model description: system, index, variables, connectivities.
#include "kob_block.hpp"
#include "kob_dp.h"

namespace kob {
namespace {

constexpr std::size_t date_length = 8; // characters of a date or a time

/// Section bits of the readers of model blocks.
namespace section {
constexpr std::int32_t attributes = 1;
constexpr std::int32_t state_index = 2;
constexpr std::int32_t identifiers = 4;
constexpr std::int32_t values = 8;
} // namespace section

/// The two parts that a mode of the variable readers chooses.
namespace variable_part {
constexpr std::int32_t attributes = 1;
constexpr std::int32_t values = 2;
} // namespace variable_part

bool has(std::int32_t sections, std::int32_t bit) { return (sections & bit) != 0; }

// ---- system

/// Who produced a result set, and in which units.
template <class Io> struct System {
    Arg<Io, char> title;
    Arg<Io, char> sys;
    Arg<Io, char> solver_name;
    Arg<Io, char> solver_vers;
    Arg<Io, char> cdate;
    Arg<Io, char> ctime;
    Arg<Io, char> mdate;
    Arg<Io, char> mtime;
    Arg<Io, std::int32_t> nbunit;
    Arg<Io, std::int32_t> ndunit;
    Arg<Io, std::int32_t> ubid;    ///< [nbunit]
    Arg<Io, char> ubtyp;           ///< [nbunit] texts
    Arg<Io, char> ubnam;           ///< [nbunit] texts
    Arg<Io, double> ubshift;       ///< [nbunit]
    Arg<Io, double> ubcon;         ///< [nbunit]
    Arg<Io, std::int32_t> udid;    ///< [ndunit]
    Arg<Io, char> udnam;           ///< [ndunit] texts
    Arg<Io, double> udscal;        ///< [ndunit]
    Arg<Io, std::int32_t> ndbunit; ///< [ndunit] factors of each derived unit
    Arg<Io, std::int32_t> udbid;   ///< [sum of ndbunit]
    Arg<Io, double> udbexp;        ///< [sum of ndbunit]
};

template <class Io> void attributes(Io& io, const System<Io>& b)
{
    io.text("title", b.title);
    io.text("sys", b.sys);
    io.text("solver_name", b.solver_name);
    io.text("solver_vers", b.solver_vers);
    io.text("cdate", b.cdate, date_length);
    io.text("ctime", b.ctime, date_length);
    io.text("mdate", b.mdate, date_length);
    io.text("mtime", b.mtime, date_length);
    io.integer("nbunit", b.nbunit);
    io.integer("ndunit", b.ndunit);
}

template <class Io> void values(Io& io, const System<Io>& b)
{
    if (!io.ok()) {
        return;
    }
    io.integers("ubid", b.ubid, {*b.nbunit});
    io.texts("ubtyp", b.ubtyp, {*b.nbunit});
    io.texts("ubnam", b.ubnam, {*b.nbunit});
    io.exact_reals("ubshift", b.ubshift.get(), {*b.nbunit});
    io.exact_reals("ubcon", b.ubcon.get(), {*b.nbunit});
    io.integers("udid", b.udid, {*b.ndunit});
    io.texts("udnam", b.udnam, {*b.ndunit});
    io.exact_reals("udscal", b.udscal.get(), {*b.ndunit});
    io.integers("ndbunit", b.ndbunit, {*b.ndunit});
    if (!io.ok()) {
        return;
    }
    const std::int32_t factors = sum32(b.ndbunit.get(), *b.ndunit);
    io.integers("udbid", b.udbid, {factors});
    io.exact_reals("udbexp", b.udbexp.get(), {factors});
}

// ---- index

/// How the states of a result set are identified.
template <class Io> struct Index {
    Arg<Io, std::int32_t> nindex;
    Arg<Io, char> etypvar; ///< variable group that describes the index values
};

template <class Io> void attributes(Io& io, const Index<Io>& b)
{
    io.integer("nindex", b.nindex);
    io.text("etypvar", b.etypvar);
}

// ---- variable group

/// A named list of variables.
template <class Io> struct VariableGroup {
    Arg<Io, char> etypvar;
    Arg<Io, std::int32_t> nvar;
    Arg<Io, std::int32_t> ncoo;
    Arg<Io, std::int32_t> cnt;  ///< [nvar]
    Arg<Io, std::int32_t> offs; ///< [nvar]
    Arg<Io, char> varkey;       ///< [nvar] texts
};

template <class Io> void attributes(Io& io, const VariableGroup<Io>& b)
{
    io.text("etypvar", b.etypvar);
    io.integer("nvar", b.nvar);
    io.integer("ncoo", b.ncoo);
}

template <class Io> void values(Io& io, const VariableGroup<Io>& b)
{
    if (!io.ok()) {
        return;
    }
    io.integers("cnt", b.cnt, {*b.nvar});
    io.integers("offs", b.offs, {*b.nvar});
    io.texts("varkey", b.varkey, {*b.nvar});
}

// ---- variable

/// One variable: its components, their units and names.
template <class Io> struct Variable {
    Arg<Io, char> varkey;
    Arg<Io, char> varclass;
    Arg<Io, char> varnam;
    Arg<Io, std::int32_t> ncoo;
    Arg<Io, std::int32_t> rank;
    Arg<Io, std::int32_t> ndim;
    Arg<Io, std::int32_t> tensor;
    Arg<Io, char> type;
    Arg<Io, std::int32_t> lenb; ///< sum of mbunit
    Arg<Io, std::int32_t> lend; ///< sum of mdunit
    Arg<Io, std::int32_t> lvmap;
    Arg<Io, std::int32_t> subslen;
    Arg<Io, std::int32_t> mbunit;   ///< [ncoo]
    Arg<Io, std::int32_t> mdunit;   ///< [ncoo]
    Arg<Io, std::int32_t> ubid;     ///< [lenb]
    Arg<Io, double> ubexp;          ///< [lenb]
    Arg<Io, std::int32_t> udid;     ///< [lend]
    Arg<Io, double> udexp;          ///< [lend]
    Arg<Io, char> subscr;           ///< [subslen] characters
    Arg<Io, std::int32_t> subscnt;  ///< [ncoo]
    Arg<Io, std::int32_t> subsoffs; ///< [ncoo]
    Arg<Io, double> vmap;           ///< [ncoo, ndim, ..., ndim], rank times ndim
};

template <class Io> void attributes(Io& io, const Variable<Io>& b)
{
    io.text("varkey", b.varkey);
    io.text("varclass", b.varclass);
    io.text("varnam", b.varnam);
    io.integer("ncoo", b.ncoo);
    io.integer("rank", b.rank);
    io.integer("ndim", b.ndim);
    io.integer("tensor", b.tensor);
    io.text("type", b.type);
    io.integer("lenb", b.lenb);
    io.integer("lend", b.lend);
    io.integer("lvmap", b.lvmap);
    io.integer("subslen", b.subslen);
}

template <class Io> Shape map_shape(const Variable<Io>& b)
{
    Shape shape{*b.ncoo};
    for (std::int32_t i = 0; i < *b.rank && shape.rank() <= H5S_MAX_RANK; ++i) {
        shape.append(*b.ndim);
    }
    return shape;
}

template <class Io> void values(Io& io, const Variable<Io>& b)
{
    if (!io.ok()) {
        return;
    }
    io.integers("mbunit", b.mbunit, {*b.ncoo});
    io.integers("mdunit", b.mdunit, {*b.ncoo});
    io.integers("ubid", b.ubid, {*b.lenb});
    io.exact_reals("ubexp", b.ubexp.get(), {*b.lenb});
    io.integers("udid", b.udid, {*b.lend});
    io.exact_reals("udexp", b.udexp.get(), {*b.lend});
    if (*b.subslen > 0) {
        io.texts("subscr", b.subscr, {*b.subslen}, 1);
        io.integers("subscnt", b.subscnt, {*b.ncoo});
        io.integers("subsoffs", b.subsoffs, {*b.ncoo});
    }
    if (*b.lvmap > 0 && *b.rank > 0) {
        io.reals("vmap", b.vmap.get(), map_shape(b)); // a map may be stored with loss: its request is left as it is
    }
}

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
};

template <class Io> void attributes(Io& io, const Connectivities<Io>& b)
{
    io.text("etyp", b.etyp);
    io.text("etypelem", b.etypelem);
    io.text("etyppart", b.etyppart);
    io.text("etypnode", b.etypnode);
    io.integer("nele", b.nele);
    io.integer("npele", b.npele);
    io.integer("ndim", b.ndim);
    io.integer("nbint", b.nbint);
    io.integer("nbfloat", b.nbfloat);
    if (io.ok() && *b.nbfloat > 0) {
        io.text("etypvar", b.etypvar);
    }
    attributes(io, b.index);
}

template <class Io> void identifiers(Io& io, const Connectivities<Io>& b)
{
    io.integers("idele", b.idele, {*b.nele});
    io.integers("pid", b.pid, {*b.nele});
}

template <class Io> void values(Io& io, const Connectivities<Io>& b)
{
    io.integers("ic", b.ic, {*b.nele, *b.npele});
    io.integers("iparam", b.iparam, {*b.nele, *b.nbint});
    io.exact_reals("fparam", b.fparam.get(), {*b.nele, *b.nbfloat});
}

} // namespace
} // namespace kob

extern "C" {

void KOB_WRITE_SYSTEM(const int64_t* group, const char* title, const char* sys, const char* solver_name,
                      const char* solver_vers, const char* cdate, const char* ctime, const char* mdate,
                      const char* mtime, const int32_t* nbunit, const int32_t* ndunit, const int32_t* ubid,
                      const char* ubtyp, const char* ubnam, const double* ubshift, const double* ubcon,
                      const int32_t* udid, const char* udnam, const double* udscal, const int32_t* ndbunit,
                      const int32_t* udbid, const double* udbexp, const int32_t* filter_flags,
                      const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const System<Writer> b{title, sys,    solver_name, solver_vers, cdate,   ctime, mdate,
                               mtime, nbunit, ndunit,      ubid,        ubtyp,   ubnam, ubshift,
                               ubcon, udid,   udnam,       udscal,      ndbunit, udbid, udbexp};
        return write_new_block(value(group), kind::system, {{}, {kind::system.name}}, {filter_flags, filter_params},
                               stored_float(float_size), [&](Writer& io) {
                                   attributes(io, b);
                                   values(io, b);
                               });
    });
}

void KOB_READ_SYSTEM(const int64_t* block, const int32_t* mode, char* title, char* sys, char* solver_name,
                     char* solver_vers, char* cdate, char* ctime, char* mdate, char* mtime, int32_t* nbunit,
                     int32_t* ndunit, int32_t* ubid, char* ubtyp, char* ubnam, double* ubshift, double* ubcon,
                     int32_t* udid, char* udnam, double* udscal, int32_t* ndbunit, int32_t* udbid, double* udbexp,
                     int32_t* filter_flags, int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const System<Reader> b{title, sys,    solver_name, solver_vers, cdate,   ctime, mdate,
                               mtime, nbunit, ndunit,      ubid,        ubtyp,   ubnam, ubshift,
                               ubcon, udid,   udnam,       udscal,      ndbunit, udbid, udbexp};
        Reader io{value(block), kind::system};
        attributes(io, b);
        if (value(mode) == 1) {
            return io.status();
        }
        if (value(mode) != 2) {
            io.unknown_pass();
        }
        values(io, b);
        io.report_filters_of("udbexp", filter_flags, filter_params);
        return io.status();
    });
}

void KOB_WRITE_INDEX(const int64_t* group, const int32_t* nindex, const char* etypvar, const void*, const void*,
                     int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Index<Writer> b{nindex, etypvar};
        return write_new_block(value(group), kind::index, {{}, {kind::index.name}}, {}, sizeof(double),
                               [&](Writer& io) { attributes(io, b); });
    });
}

void KOB_READ_INDEX(const int64_t* block, const void*, int32_t* nindex, char* etypvar, const void*, const void*,
                    int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Index<Reader> b{nindex, etypvar};
        Reader io{value(block), kind::index};
        attributes(io, b);
        return io.status();
    });
}

void KOB_WRITE_VARIABLEGROUP(const int64_t* group, const void*, const void*, const char* etypvar, const int32_t* nvar,
                             const int32_t* ncoo, const int32_t* cnt, const int32_t* offs, const char* varkey,
                             const int32_t* filter_flags, const int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const VariableGroup<Writer> b{etypvar, nvar, ncoo, cnt, offs, varkey};
        return write_new_block(value(group), kind::variable_group, {{}, {kind::variable_group.name, etypvar}},
                               {filter_flags, filter_params}, sizeof(double), [&](Writer& io) {
                                   attributes(io, b);
                                   values(io, b);
                               });
    });
}

void KOB_READ_VARIABLEGROUP(const int64_t* block, const int32_t* mode, const void*, char* etypvar, int32_t* nvar,
                            int32_t* ncoo, int32_t* cnt, int32_t* offs, char* varkey, int32_t* filter_flags,
                            int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const VariableGroup<Reader> b{etypvar, nvar, ncoo, cnt, offs, varkey};
        Reader io{value(block), kind::variable_group};
        if (has(value(mode), variable_part::attributes)) {
            attributes(io, b);
        }
        if (has(value(mode), variable_part::values)) {
            values(io, b);
            io.report_filters(filter_flags, filter_params);
        }
        return io.status();
    });
}

void KOB_WRITE_VARIABLE(const int64_t* group, const void*, const void*, const char* varkey, const char* varclass,
                        const char* varnam, const int32_t* ncoo, const int32_t* rank, const int32_t* ndim,
                        const int32_t* tensor, const char* type, const int32_t* lvmap, const int32_t* subslen,
                        const int32_t* mbunit, const int32_t* mdunit, const int32_t* ubid, const double* ubexp,
                        const int32_t* udid, const double* udexp, const char* subscr, const int32_t* subscnt,
                        const int32_t* subsoffs, const double* vmap, const int32_t* filter_flags,
                        const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const std::int32_t lenb = sum32(mbunit, value(ncoo));
        const std::int32_t lend = sum32(mdunit, value(ncoo));
        const Variable<Writer> b{varkey,  varclass, varnam, ncoo, rank,  ndim, tensor, type,   &lenb,   &lend,    lvmap,
                                 subslen, mbunit,   mdunit, ubid, ubexp, udid, udexp,  subscr, subscnt, subsoffs, vmap};
        return write_new_block(value(group), kind::variable, {{}, {kind::variable.name, varkey}},
                               {filter_flags, filter_params}, stored_float(float_size), [&](Writer& io) {
                                   attributes(io, b);
                                   values(io, b);
                               });
    });
}

void KOB_READ_VARIABLE(const int64_t* block, const int32_t* mode, const void*, char* varkey, char* varclass,
                       char* varnam, int32_t* ncoo, int32_t* rank, int32_t* ndim, int32_t* tensor, char* type,
                       int32_t* lvmap, int32_t* subslen, int32_t* lenb, int32_t* lend, int32_t* mbunit, int32_t* mdunit,
                       int32_t* ubid, double* ubexp, int32_t* udid, double* udexp, char* subscr, int32_t* subscnt,
                       int32_t* subsoffs, double* vmap, int32_t* filter_flags, int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Variable<Reader> b{varkey,  varclass, varnam, ncoo, rank,  ndim, tensor, type,   lenb,    lend,     lvmap,
                                 subslen, mbunit,   mdunit, ubid, ubexp, udid, udexp,  subscr, subscnt, subsoffs, vmap};
        Reader io{value(block), kind::variable};
        if (has(value(mode), variable_part::attributes)) {
            attributes(io, b);
        }
        if (has(value(mode), variable_part::values)) {
            values(io, b);
            io.report_filters(filter_flags, filter_params);
        }
        return io.status();
    });
}

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
                               {filter_flags, filter_params}, stored_float(float_size), [&](Writer& io) {
                                   attributes(io, b);
                                   values(io, b.index);
                                   identifiers(io, b);
                                   values(io, b);
                               });
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
        Reader io{value(block), kind::connectivities};
        io.key_as_status();
        if (has(value(mode), section::attributes)) {
            attributes(io, b);
        }
        if (io.ok() && has(value(mode), section::state_index)) {
            values(io, b.index);
        }
        if (io.ok() && has(value(mode), section::identifiers)) {
            identifiers(io, b);
        }
        if (io.ok() && has(value(mode), section::values)) {
            values(io, b);
            io.report_filters_of("fparam", filter_flags, filter_params);
        }
        return io.status();
    });
}

} // extern "C"
