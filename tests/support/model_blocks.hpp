// SPDX-License-Identifier: BSD-3-Clause
// Sample contents of the model blocks, and calls of their writers and readers with every argument in its place.
#pragma once

#include <kob_dp.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "kob_file.hpp"
#include "text256.hpp"

namespace kob_test {

/// How a writer stores arrays.
struct Storing {
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{3, 6}; // decimal scale factor, deflate level
    std::int32_t float_size = 8;
};

/// What a reader reports of the filters; `untouched_filters` where it reports nothing.
struct FoundFilters {
    std::int32_t flags = -7;
    std::array<std::int32_t, 2> params{-7, -7};

    friend bool operator==(const FoundFilters&, const FoundFilters&) = default;
    friend std::ostream& operator<<(std::ostream& out, const FoundFilters& f)
    {
        return out << f.flags << " (" << f.params[0] << ", " << f.params[1] << ")";
    }
};
inline const FoundFilters untouched_filters{};

/// Marks of an output that a reader has not filled.
constexpr std::int32_t untouched_int = -777;
constexpr double untouched_real = -777.25;

using Ints32 = std::vector<std::int32_t>;
using Reals64 = std::vector<double>;

struct SystemBlock {
    Text256 title, sys, solver_name, solver_vers;
    Text8 cdate, ctime, mdate, mtime;
    std::int32_t nbunit = untouched_int, ndunit = untouched_int;
    Ints32 ubid;
    Texts256 ubtyp, ubnam;
    Reals64 ubshift, ubcon;
    Ints32 udid;
    Texts256 udnam;
    Reals64 udscal;
    Ints32 ndbunit, udbid;
    Reals64 udbexp;

    friend bool operator==(const SystemBlock&, const SystemBlock&) = default;
    friend std::ostream& operator<<(std::ostream& out, const SystemBlock& b)
    {
        return out << "system block " << b.title << " with " << b.nbunit << " and " << b.ndunit << " units";
    }

    /// Three base units and two derived ones: N = kg m s^-2, Pa = kg m^-1 s^-2.
    static SystemBlock sample()
    {
        SystemBlock b;
        b.title = "Cantilever";
        b.sys = "workshop";
        b.solver_name = "solver";
        b.solver_vers = "7.1";
        b.cdate = "03.02.24";
        b.ctime = "10:11:12";
        b.mdate = "04.02.24";
        b.mtime = "20:21:22";
        b.nbunit = 3;
        b.ndunit = 2;
        b.ubid = {11, 12, 13};
        b.ubtyp = {"mass", "length", "time"};
        b.ubnam = {"kg", "m", "s"};
        b.ubshift = {0, 0.5, 273.15};
        b.ubcon = {1, 1000, 0.1};
        b.udid = {21, 22};
        b.udnam = {"N", "Pa"};
        b.udscal = {1, 1e6};
        b.ndbunit = {3, 2};
        b.udbid = {11, 12, 13, 11, 13};
        b.udbexp = {1, 1, -2, 1, -2};
        return b;
    }
    /// Nine units of each kind, so that filters are used.
    static SystemBlock large()
    {
        SystemBlock b = sample();
        b.nbunit = 9;
        b.ndunit = 9;
        b.ubid = {1, 2, 3, 4, 5, 6, 7, 8, 9};
        b.ubtyp = {"a", "b", "c", "d", "e", "f", "g", "h", "i"};
        b.ubnam = {"j", "k", "l", "m", "n", "o", "p", "q", "r"};
        b.ubshift = Reals64(9, 0.125);
        b.ubcon = Reals64(9, 0.25);
        b.udid = {31, 32, 33, 34, 35, 36, 37, 38, 39};
        b.udnam = {"A", "B", "C", "D", "E", "F", "G", "H", "I"};
        b.udscal = Reals64(9, 0.5);
        b.ndbunit = Ints32(9, 1);
        b.udbid = {9, 8, 7, 6, 5, 4, 3, 2, 1};
        b.udbexp = Reals64(9, -1.5);
        return b;
    }
    /// Outputs with room for these numbers of units, none of them filled.
    static SystemBlock empty(std::size_t nbunit, std::size_t ndunit, std::size_t nfactor)
    {
        SystemBlock b;
        b.title = b.sys = b.solver_name = b.solver_vers = untouched();
        b.cdate = b.ctime = b.mdate = b.mtime = Text8{"########"};
        b.ubid = Ints32(nbunit, untouched_int);
        b.ubtyp = b.ubnam = Texts256(nbunit);
        b.ubshift = b.ubcon = Reals64(nbunit, untouched_real);
        b.udid = b.ndbunit = Ints32(ndunit, untouched_int);
        b.udnam = Texts256(ndunit);
        b.udscal = Reals64(ndunit, untouched_real);
        b.udbid = Ints32(nfactor, untouched_int);
        b.udbexp = Reals64(nfactor, untouched_real);
        return b;
    }

    std::int32_t write(std::int64_t group, const Storing& how = {})
    {
        std::int32_t status = untouched_int;
        KOB_WRITE_SYSTEM(&group, title.data(), sys.data(), solver_name.data(), solver_vers.data(), cdate.data(),
                         ctime.data(), mdate.data(), mtime.data(), &nbunit, &ndunit, ubid.data(), ubtyp.data(),
                         ubnam.data(), ubshift.data(), ubcon.data(), udid.data(), udnam.data(), udscal.data(),
                         ndbunit.data(), udbid.data(), udbexp.data(), &how.filter_flags, how.filter_params.data(),
                         &how.float_size, &status);
        return status;
    }
    std::int32_t read(std::int64_t block, std::int32_t mode, FoundFilters* found = nullptr)
    {
        FoundFilters ignored;
        FoundFilters& filters = found != nullptr ? *found : ignored;
        std::int32_t status = untouched_int;
        KOB_READ_SYSTEM(&block, &mode, title.data(), sys.data(), solver_name.data(), solver_vers.data(), cdate.data(),
                        ctime.data(), mdate.data(), mtime.data(), &nbunit, &ndunit, ubid.data(), ubtyp.data(),
                        ubnam.data(), ubshift.data(), ubcon.data(), udid.data(), udnam.data(), udscal.data(),
                        ndbunit.data(), udbid.data(), udbexp.data(), &filters.flags, filters.params.data(), &status);
        return status;
    }
};

struct IndexBlock {
    std::int32_t nindex = untouched_int;
    Text256 etypvar = untouched();

    friend bool operator==(const IndexBlock&, const IndexBlock&) = default;
    friend std::ostream& operator<<(std::ostream& out, const IndexBlock& b)
    {
        return out << b.nindex << " " << b.etypvar;
    }

    std::int32_t write(std::int64_t group)
    {
        std::int32_t status = untouched_int;
        KOB_WRITE_INDEX(&group, &nindex, etypvar.data(), nullptr, nullptr, &status);
        return status;
    }
    std::int32_t read(std::int64_t block)
    {
        std::int32_t status = untouched_int;
        KOB_READ_INDEX(&block, nullptr, &nindex, etypvar.data(), nullptr, nullptr, &status);
        return status;
    }
};

struct VariableGroupBlock {
    Text256 etypvar = untouched();
    std::int32_t nvar = untouched_int, ncoo = untouched_int;
    Ints32 cnt, offs;
    Texts256 varkey;

    friend bool operator==(const VariableGroupBlock&, const VariableGroupBlock&) = default;
    friend std::ostream& operator<<(std::ostream& out, const VariableGroupBlock& b)
    {
        return out << b.etypvar << " with " << b.nvar << " variables, " << b.ncoo << " components";
    }

    static VariableGroupBlock sample()
    {
        VariableGroupBlock b;
        b.etypvar = "DISPLACEMENT";
        b.nvar = 2;
        b.ncoo = 6;
        b.cnt = {3, 4}; // no relation to ncoo: stored as given
        b.offs = {0, 3};
        b.varkey = {"TRANSLATION", "ROTATION"};
        return b;
    }
    static VariableGroupBlock large()
    {
        VariableGroupBlock b;
        b.etypvar = "MANY";
        b.nvar = 8;
        b.ncoo = 8;
        b.cnt = Ints32(8, 1);
        b.offs = {0, 1, 2, 3, 4, 5, 6, 7};
        b.varkey = {"a", "b", "c", "d", "e", "f", "g", "h"};
        return b;
    }
    static VariableGroupBlock empty(std::size_t nvar)
    {
        VariableGroupBlock b;
        b.cnt = b.offs = Ints32(nvar, untouched_int);
        b.varkey = Texts256(nvar);
        return b;
    }

    std::int32_t write(std::int64_t group, const Storing& how = {})
    {
        std::int32_t status = untouched_int;
        KOB_WRITE_VARIABLEGROUP(&group, nullptr, nullptr, etypvar.data(), &nvar, &ncoo, cnt.data(), offs.data(),
                                varkey.data(), &how.filter_flags, how.filter_params.data(), &status);
        return status;
    }
    std::int32_t read(std::int64_t block, std::int32_t mode, FoundFilters* found = nullptr)
    {
        FoundFilters ignored;
        FoundFilters& filters = found != nullptr ? *found : ignored;
        std::int32_t status = untouched_int;
        KOB_READ_VARIABLEGROUP(&block, &mode, nullptr, etypvar.data(), &nvar, &ncoo, cnt.data(), offs.data(),
                               varkey.data(), &filters.flags, filters.params.data(), &status);
        return status;
    }
};

struct VariableBlock {
    Text256 varkey = untouched(), varclass = untouched(), varnam = untouched();
    std::int32_t ncoo = untouched_int, rank = untouched_int, ndim = untouched_int, tensor = untouched_int;
    Text256 type = untouched();
    std::int32_t lvmap = untouched_int, subslen = untouched_int;
    std::int32_t lenb = untouched_int, lend = untouched_int; // the reader's; the writer computes them
    Ints32 mbunit, mdunit, ubid;
    Reals64 ubexp;
    Ints32 udid;
    Reals64 udexp;
    std::string subscr;
    Ints32 subscnt, subsoffs;
    Reals64 vmap;

    friend bool operator==(const VariableBlock&, const VariableBlock&) = default;
    friend std::ostream& operator<<(std::ostream& out, const VariableBlock& b)
    {
        return out << b.varkey << " ncoo " << b.ncoo << " rank " << b.rank << " ndim " << b.ndim << " lenb " << b.lenb
                   << " lend " << b.lend << " subscr \"" << b.subscr << '"';
    }

    /// Three components, base units {1, 2, 0}, derived units {0, 1, 1}, subscripts, a map of rank 2.
    static VariableBlock sample()
    {
        VariableBlock b;
        b.varkey = "STRESS";
        b.varclass = "field";
        b.varnam = "Cauchy stress";
        b.ncoo = 3;
        b.rank = 2;
        b.ndim = 3;
        b.tensor = 4;
        b.type = "real";
        b.lvmap = 1;
        b.subslen = 6;
        b.lenb = 3;
        b.lend = 2;
        b.mbunit = {1, 2, 0};
        b.mdunit = {0, 1, 1};
        b.ubid = {11, 12, 13};
        b.ubexp = {1, -1, -2};
        b.udid = {21, 22};
        b.udexp = {0.1, 0.5};
        b.subscr = "xxyyxy";
        b.subscnt = {2, 2, 2};
        b.subsoffs = {0, 2, 4};
        b.vmap = Reals64(27, 0);
        b.vmap[0] = 0.1;
        b.vmap[13] = 1;
        b.vmap[26] = 2;
        return b;
    }
    /// Nine components without map or subscripts.
    static VariableBlock large()
    {
        VariableBlock b;
        b.varkey = "NINE";
        b.varclass = "c";
        b.varnam = "n";
        b.ncoo = 9;
        b.rank = b.ndim = b.tensor = b.lvmap = b.subslen = 0;
        b.type = "t";
        b.lenb = b.lend = 9;
        b.mbunit = b.mdunit = Ints32(9, 1);
        b.ubid = b.udid = Ints32(9, 5);
        b.ubexp = b.udexp = Reals64(9, 0.5);
        return b;
    }
    static VariableBlock empty(std::size_t ncoo, std::size_t lenb, std::size_t lend, std::size_t subslen,
                               std::size_t vmap)
    {
        VariableBlock b;
        b.mbunit = b.mdunit = b.subscnt = b.subsoffs = Ints32(ncoo, untouched_int);
        b.ubid = Ints32(lenb, untouched_int);
        b.ubexp = Reals64(lenb, untouched_real);
        b.udid = Ints32(lend, untouched_int);
        b.udexp = Reals64(lend, untouched_real);
        b.subscr = std::string(subslen, '#');
        b.vmap = Reals64(vmap, untouched_real);
        return b;
    }

    std::int32_t write(std::int64_t group, const Storing& how = {})
    {
        std::int32_t status = untouched_int;
        KOB_WRITE_VARIABLE(&group, nullptr, nullptr, varkey.data(), varclass.data(), varnam.data(), &ncoo, &rank, &ndim,
                           &tensor, type.data(), &lvmap, &subslen, mbunit.data(), mdunit.data(), ubid.data(),
                           ubexp.data(), udid.data(), udexp.data(), subscr.data(), subscnt.data(), subsoffs.data(),
                           vmap.data(), &how.filter_flags, how.filter_params.data(), &how.float_size, &status);
        return status;
    }
    std::int32_t read(std::int64_t block, std::int32_t mode, FoundFilters* found = nullptr)
    {
        FoundFilters ignored;
        FoundFilters& filters = found != nullptr ? *found : ignored;
        std::int32_t status = untouched_int;
        KOB_READ_VARIABLE(&block, &mode, nullptr, varkey.data(), varclass.data(), varnam.data(), &ncoo, &rank, &ndim,
                          &tensor, type.data(), &lvmap, &subslen, &lenb, &lend, mbunit.data(), mdunit.data(),
                          ubid.data(), ubexp.data(), udid.data(), udexp.data(), subscr.data(), subscnt.data(),
                          subsoffs.data(), vmap.data(), &filters.flags, filters.params.data(), &status);
        return status;
    }
};

struct ConnectivitiesBlock {
    Text256 etyp = untouched(), etypelem = untouched(), etyppart = untouched(), etypnode = untouched(),
            etypvar = untouched();
    std::int32_t nele = untouched_int, npele = untouched_int, ndim = untouched_int, nbint = untouched_int,
                 nbfloat = untouched_int, nindex = untouched_int, indexic = untouched_int;
    Ints32 indexident;
    Reals64 indexval;
    Ints32 idele, pid, ic, iparam;
    Reals64 fparam;

    friend bool operator==(const ConnectivitiesBlock&, const ConnectivitiesBlock&) = default;
    friend std::ostream& operator<<(std::ostream& out, const ConnectivitiesBlock& b)
    {
        return out << b.etypelem << " nele " << b.nele << " npele " << b.npele << " nindex " << b.nindex;
    }

    /// Four hexahedra with two integer and one floating-point parameter each, for one state.
    static ConnectivitiesBlock sample()
    {
        ConnectivitiesBlock b;
        b.etyp = "ELEMENT";
        b.etypelem = "HEXA8";
        b.etyppart = "PART";
        b.etypnode = "NODE";
        b.etypvar = "THICKNESS";
        b.nele = 4;
        b.npele = 8;
        b.ndim = 3;
        b.nbint = 2;
        b.nbfloat = 1;
        b.nindex = 1;
        b.indexic = 5;
        b.indexident = {12};
        b.indexval = {0.1};
        b.idele = {101, 102, 103, 104};
        b.pid = {1, 1, 2, 2};
        for (std::int32_t i = 0; i < 32; ++i) b.ic.push_back(1000 + i);
        b.iparam = {1, 2, 3, 4, 5, 6, 7, 8};
        b.fparam = {0.1, 0.2, 0.3, 0.4};
        return b;
    }
    /// The same for all states, without parameters.
    static ConnectivitiesBlock constant()
    {
        ConnectivitiesBlock b = sample();
        b.etypvar = untouched();
        b.nbint = b.nbfloat = b.nindex = 0;
        b.indexident.clear();
        b.indexval.clear();
        b.iparam.clear();
        b.fparam.clear();
        return b;
    }
    static ConnectivitiesBlock empty(std::size_t nele = 4, std::size_t npele = 8, std::size_t nbint = 2,
                                     std::size_t nbfloat = 1, std::size_t nindex = 1)
    {
        ConnectivitiesBlock b;
        b.indexident = Ints32(nindex, untouched_int);
        b.indexval = Reals64(nindex, untouched_real);
        b.idele = b.pid = Ints32(nele, untouched_int);
        b.ic = Ints32(nele * npele, untouched_int);
        b.iparam = Ints32(nele * nbint, untouched_int);
        b.fparam = Reals64(nele * nbfloat, untouched_real);
        return b;
    }

    std::int32_t write(std::int64_t group, std::int32_t state, const Storing& how = {})
    {
        std::int32_t status = untouched_int;
        KOB_WRITE_CONNECTIVITIES(&group, etyp.data(), etypelem.data(), etyppart.data(), etypnode.data(), etypvar.data(),
                                 &nele, &npele, &ndim, &nbint, &nbfloat, &nindex, &indexic, indexident.data(),
                                 indexval.data(), idele.data(), pid.data(), ic.data(), iparam.data(), fparam.data(),
                                 &state, &how.filter_flags, how.filter_params.data(), &how.float_size, &status);
        return status;
    }
    std::int32_t read(std::int64_t block, std::int32_t mode, FoundFilters* found = nullptr)
    {
        FoundFilters ignored;
        FoundFilters& filters = found != nullptr ? *found : ignored;
        std::int32_t status = untouched_int;
        KOB_READ_CONNECTIVITIES(&block, &mode, etyp.data(), etypelem.data(), etyppart.data(), etypnode.data(),
                                etypvar.data(), &nele, &npele, &ndim, &nbint, &nbfloat, &nindex, &indexic,
                                indexident.data(), indexval.data(), idele.data(), pid.data(), ic.data(), iparam.data(),
                                fparam.data(), &filters.flags, filters.params.data(), &status);
        return status;
    }
};

} // namespace kob_test
