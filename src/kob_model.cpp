// SPDX-License-Identifier: BSD-3-Clause
// Blocks that describe a result set as a whole: system, index and text.
#include "kob_block.hpp"
#include "kob_dp.h"
#include "kob_units.hpp"

namespace kob {
namespace {

constexpr std::size_t date_length = 8; // characters of a date or a time

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

/// The same in the older layout, which describes the index values on the spot.
template <class Io> struct OlderIndex {
    Arg<Io, std::int32_t> nindex;
    Arg<Io, char> etypindex; ///< [nindex] texts
    Units<Io> units;         ///< of nindex values
};

template <class Io> void attributes(Io& io, const OlderIndex<Io>& b) { io.integer("nindex", b.nindex); }

template <class Io> void values(Io& io, const OlderIndex<Io>& b)
{
    if (io.ok()) {
        io.texts("etypindex", b.etypindex, {*b.nindex});
        values(io, b.units, *b.nindex);
    }
}

// ---- text

/// Lines of free text of one kind.
template <class Io> struct Text {
    Arg<Io, char> etyptext;
    Arg<Io, std::int32_t> nlines;
    Arg<Io, std::int32_t> length; ///< characters of every line
    StateIndex<Io> index;
    Arg<Io, char> line; ///< [nlines] texts of `length` characters
};

template <class Io> void attributes(Io& io, const Text<Io>& b)
{
    io.text("etyptext", b.etyptext);
    io.integer("nlines", b.nlines);
    io.integer("length", b.length);
    attributes(io, b.index);
}

template <class Io> void values(Io& io, const Text<Io>& b) { io.texts("line", b.line, {*b.nlines}, *b.length); }

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
                               stored_float(float_size), b);
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
        return read_two_passes(value(block), kind::system, b, value(mode), filter_flags, filter_params, "udbexp");
    });
}

void KOB_WRITE_INDEX(const int64_t* group, const int32_t* nindex, const char* etypvar, const void*, const void*,
                     int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Index<Writer> b{nindex, etypvar};
        return write_new_block(value(group), kind::index, {{}, {kind::index.name}}, {}, sizeof(double), b);
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

void KOB_WRITE_TEXT(const int64_t* group, const char* etyptext, const int32_t* nlines, const int32_t* length,
                    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const double* indexval,
                    const char* line, const int32_t* state, const int32_t* filter_flags, const int32_t* filter_params,
                    const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Text<Writer> b{etyptext, nlines, length, {nindex, indexic, indexident, indexval}, line};
        return write_new_block(value(group), kind::text, {validity_of(b.index, state), {kind::text.name, etyptext}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB_READ_TEXT(const int64_t* block, const int32_t* mode, char* etyptext, int32_t* nlines, int32_t* length,
                   int32_t* nindex, int32_t* indexic, int32_t* indexident, double* indexval, char* line,
                   int32_t* filter_flags, int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Text<Reader> b{etyptext, nlines, length, {nindex, indexic, indexident, indexval}, line};
        return read_sections(value(block), kind::text, b, value(mode), filter_flags, filter_params, "line");
    });
}

// ---- older layout

void KOB1_WRITE_SYSTEM(const int64_t* group, const char* title, const char* sys, const char* solver_name,
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
        return write_new_block(older(group), kind::system, {{}, {kind::system.name}}, {filter_flags, filter_params},
                               stored_float(float_size), b);
    });
}

void KOB1_READ_SYSTEM(const int64_t* block, const int32_t* pass, char* title, char* sys, char* solver_name,
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
        return read_two_passes(older(block), kind::system, b, value(pass), filter_flags, filter_params, "udbexp");
    });
}

void KOB1_WRITE_INDEX(const int64_t* group, const int32_t* nindex, const char* etypindex, const int32_t* mbunit,
                      const int32_t* mdunit, const int32_t* ubid, const double* ubexp, const int32_t* udid,
                      const double* udexp, const int32_t* filter_flags, const int32_t* filter_params,
                      const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const OlderIndex<Writer> b{nindex, etypindex, {mbunit, mdunit, ubid, ubexp, udid, udexp}};
        return write_new_block(older(group), kind::index, {{}, {kind::index.name}}, {filter_flags, filter_params},
                               stored_float(float_size), b);
    });
}

void KOB1_READ_INDEX(const int64_t* block, const int32_t* pass, int32_t* nindex, char* etypindex, int32_t* mbunit,
                     int32_t* mdunit, int32_t* ubid, double* ubexp, int32_t* udid, double* udexp, int32_t* filter_flags,
                     int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const OlderIndex<Reader> b{nindex, etypindex, {mbunit, mdunit, ubid, ubexp, udid, udexp}};
        return read_two_passes(older(block), kind::index, b, value(pass), filter_flags, filter_params);
    });
}

void KOB1_WRITE_TEXT(const int64_t* group, const char* etyptext, const int32_t* nlines, const int32_t* length,
                     const char* line, const int32_t* filter_flags, const int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Text<Writer> b{etyptext, nlines, length, {}, line};
        return write_new_block(older(group), kind::older_text, {{}, {kind::older_text.name, etyptext}},
                               {filter_flags, filter_params}, sizeof(double), b);
    });
}

void KOB1_READ_TEXT(const int64_t* block, const int32_t* pass, char* etyptext, int32_t* nlines, int32_t* length,
                    char* line, int32_t* filter_flags, int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Text<Reader> b{etyptext, nlines, length, {}, line};
        return read_two_passes(older(block), kind::older_text, b, value(pass), filter_flags, filter_params, "line");
    });
}

} // extern "C"
