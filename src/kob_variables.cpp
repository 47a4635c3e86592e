// SPDX-License-Identifier: BSD-3-Clause
// Variables and groups of variables: what result values mean.
#include "kob_block.hpp"
#include "kob_dp.h"
#include "kob_units.hpp"

namespace kob {
namespace {

/// The two parts that a mode of the variable readers chooses.
namespace variable_part {
constexpr std::int32_t attributes = 1;
constexpr std::int32_t values = 2;
} // namespace variable_part

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
    Units<Io> units;                ///< of ncoo components
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

/// One extent of ndim for each index of a tensor of that rank.
void append_indices(Shape& shape, std::int32_t rank, std::int32_t ndim)
{
    for (std::int32_t i = 0; i < rank && shape.rank() <= H5S_MAX_RANK; ++i) {
        shape.append(ndim);
    }
}

template <class Io> void values(Io& io, const Variable<Io>& b)
{
    if (!io.ok()) {
        return;
    }
    counts(io, b.units, *b.ncoo);
    factors(io, b.units, *b.lenb, *b.lend);
    if (*b.subslen > 0) {
        io.texts("subscr", b.subscr, {*b.subslen}, 1);
        io.integers("subscnt", b.subscnt, {*b.ncoo});
        io.integers("subsoffs", b.subsoffs, {*b.ncoo});
    }
    if (*b.lvmap > 0 && *b.rank > 0) {
        Shape map{*b.ncoo};
        append_indices(map, *b.rank, *b.ndim);
        io.reals("vmap", b.vmap.get(), map); // a map may be stored with loss: its request is left as it is
    }
}

// ---- variables of the older layout

/// One variable where there are neither groups nor keys of their own.
template <class Io> struct OlderVariables {
    Arg<Io, char> etypvar;
    Arg<Io, std::int32_t> idtrans;
    Arg<Io, std::int32_t> rank;
    Arg<Io, std::int32_t> ndim;
    Arg<Io, std::int32_t> ncoo;
    Units<Io> units;            ///< of ncoo components
    Arg<Io, char> cname;        ///< [ncoo] texts
    Arg<Io, std::int32_t> cid;  ///< [ncoo]
    Arg<Io, std::int32_t> comp; ///< [ndim, ..., ndim], rank times ndim; [1] for rank 0
};

template <class Io> void attributes(Io& io, const OlderVariables<Io>& b)
{
    io.text("etypvar", b.etypvar);
    io.integer("idtrans", b.idtrans);
    io.integer("rank", b.rank);
    io.integer("ndim", b.ndim);
    io.integer("ncoo", b.ncoo);
}

template <class Io> void values(Io& io, const OlderVariables<Io>& b)
{
    if (!io.ok()) {
        return;
    }
    values(io, b.units, *b.ncoo);
    io.texts("cname", b.cname, {*b.ncoo});
    io.integers("cid", b.cid, {*b.ncoo});
    Shape map{};
    append_indices(map, *b.rank, *b.ndim);
    io.integers("comp", b.comp, map.rank() > 0 ? map : Shape{1});
}

} // namespace
} // namespace kob

extern "C" {

void KOB_WRITE_VARIABLEGROUP(const int64_t* group, const void*, const void*, const char* etypvar, const int32_t* nvar,
                             const int32_t* ncoo, const int32_t* cnt, const int32_t* offs, const char* varkey,
                             const int32_t* filter_flags, const int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const VariableGroup<Writer> b{etypvar, nvar, ncoo, cnt, offs, varkey};
        return write_new_block(value(group), kind::variable_group, {{}, {kind::variable_group.name, etypvar}},
                               {filter_flags, filter_params}, sizeof(double), b);
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
        if ((value(mode) & variable_part::attributes) != 0) {
            attributes(io, b);
        }
        if ((value(mode) & variable_part::values) != 0) {
            values(io, b);
            io.report_filters(nullptr, filter_flags, filter_params);
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
        const Variable<Writer> b{varkey,
                                 varclass,
                                 varnam,
                                 ncoo,
                                 rank,
                                 ndim,
                                 tensor,
                                 type,
                                 &lenb,
                                 &lend,
                                 lvmap,
                                 subslen,
                                 {mbunit, mdunit, ubid, ubexp, udid, udexp},
                                 subscr,
                                 subscnt,
                                 subsoffs,
                                 vmap};
        return write_new_block(value(group), kind::variable, {{}, {kind::variable.name, varkey}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
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
        const Variable<Reader> b{varkey,
                                 varclass,
                                 varnam,
                                 ncoo,
                                 rank,
                                 ndim,
                                 tensor,
                                 type,
                                 lenb,
                                 lend,
                                 lvmap,
                                 subslen,
                                 {mbunit, mdunit, ubid, ubexp, udid, udexp},
                                 subscr,
                                 subscnt,
                                 subsoffs,
                                 vmap};
        Reader io{value(block), kind::variable};
        if ((value(mode) & variable_part::attributes) != 0) {
            attributes(io, b);
        }
        if ((value(mode) & variable_part::values) != 0) {
            values(io, b);
            io.report_filters(nullptr, filter_flags, filter_params);
        }
        return io.status();
    });
}

// ---- older layout

void KOB1_WRITE_VARIABLES(const int64_t* group, const char* etypvar, const int32_t* idtrans, const int32_t* rank,
                          const int32_t* ndim, const int32_t* ncoo, const int32_t* mbunit, const int32_t* mdunit,
                          const int32_t* ubid, const double* ubexp, const int32_t* udid, const double* udexp,
                          const char* cname, const int32_t* cid, const int32_t* comp, const int32_t* filter_flags,
                          const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const OlderVariables<Writer> b{etypvar, idtrans, rank, ndim, ncoo, {mbunit, mdunit, ubid, ubexp, udid, udexp},
                                       cname,   cid,     comp};
        return write_new_block(older(group), kind::older_variables, {{}, {kind::older_variables.name, etypvar}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB1_READ_VARIABLES(const int64_t* block, const int32_t* pass, char* etypvar, int32_t* idtrans, int32_t* rank,
                         int32_t* ndim, int32_t* ncoo, int32_t* mbunit, int32_t* mdunit, int32_t* ubid, double* ubexp,
                         int32_t* udid, double* udexp, char* cname, int32_t* cid, int32_t* comp, int32_t* filter_flags,
                         int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const OlderVariables<Reader> b{etypvar, idtrans, rank, ndim, ncoo, {mbunit, mdunit, ubid, ubexp, udid, udexp},
                                       cname,   cid,     comp};
        return read_two_passes(older(block), kind::older_variables, b, value(pass), filter_flags, filter_params);
    });
}

} // extern "C"
