// SPDX-License-Identifier: BSD-3-Clause
// A small result file with one block of every kind that the first verbs read, written through the public entry points.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <kob_dp.h>

#include "kob_file.hpp"
#include "text256.hpp"

namespace kob_test {

constexpr std::array<std::int32_t, 2> no_params{0, 0};

inline void write_header(KobFile& file)
{
    std::int32_t status = 77;
    KOB_WRITE_FILEHEADER(file.address(), nullptr, nullptr, &status);
    ASSERT_EQ(status, 0);
}

/// Base units 1 m and 2 s, derived unit 7 "speed" = m s^-1.
inline void write_system(KobFile& file)
{
    Text256 title = "Cantilever", sys = "Test bench", solver = "bending", version = "1.5";
    Text8 cdate = "20240229", ctime = "12:34:56", mdate = "20240301", mtime = "01:02:03";
    const std::int32_t nbunit = 2, ndunit = 1, flags = 0, float_size = 8;
    const std::array<std::int32_t, 2> ubid{1, 2}, udbid{1, 2};
    Texts256 ubtyp{"length", "time"}, ubnam{"m", "s"}, udnam{"speed"};
    const std::array<double, 2> ubshift{0, 0}, ubcon{1, 1}, udbexp{1, -1};
    const std::int32_t udid = 7, ndbunit = 2;
    const double udscal = 3.6;
    std::int32_t status = 77;
    KOB_WRITE_SYSTEM(file.address(), title.data(), sys.data(), solver.data(), version.data(), cdate.data(),
                     ctime.data(), mdate.data(), mtime.data(), &nbunit, &ndunit, ubid.data(), ubtyp.data(),
                     ubnam.data(), ubshift.data(), ubcon.data(), &udid, udnam.data(), &udscal, &ndbunit, udbid.data(),
                     udbexp.data(), &flags, no_params.data(), &float_size, &status);
    ASSERT_EQ(status, 0);
}

inline void write_index(KobFile& file)
{
    const std::int32_t nindex = 1;
    Text256 etypvar = "INDEX";
    std::int32_t status = 77;
    KOB_WRITE_INDEX(file.address(), &nindex, etypvar.data(), nullptr, nullptr, &status);
    ASSERT_EQ(status, 0);
}

inline void write_variable_group(KobFile& file)
{
    Text256 etypvar = "MOTION";
    const std::int32_t nvar = 2, ncoo = 4, flags = 0;
    const std::array<std::int32_t, 2> cnt{3, 1}, offs{0, 3};
    Texts256 varkey{"DISPLACEMENT", "TEMPERATURE"};
    std::int32_t status = 77;
    KOB_WRITE_VARIABLEGROUP(file.address(), nullptr, nullptr, etypvar.data(), &nvar, &ncoo, cnt.data(), offs.data(),
                            varkey.data(), &flags, no_params.data(), &status);
    ASSERT_EQ(status, 0);
}

/// Two components of rank 1 in two dimensions, each of unit m, subscripts "x" and "yy", a 2 x 2 map.
inline void write_variable(KobFile& file)
{
    Text256 varkey = "DISPLACEMENT", varclass = "vector", varnam = "Displacement", type = "mechanics";
    const std::int32_t ncoo = 2, rank = 1, ndim = 2, tensor = 4, lvmap = 1, subslen = 3, flags = 0, float_size = 8;
    const std::array<std::int32_t, 2> mbunit{1, 1}, mdunit{0, 0}, ubid{1, 1}, subscnt{1, 2}, subsoffs{0, 1};
    const std::array<double, 2> ubexp{1, 1};
    const std::array<double, 4> vmap{1, 0, 0, 2};
    std::int32_t status = 77;
    KOB_WRITE_VARIABLE(file.address(), nullptr, nullptr, varkey.data(), varclass.data(), varnam.data(), &ncoo, &rank,
                       &ndim, &tensor, type.data(), &lvmap, &subslen, mbunit.data(), mdunit.data(), ubid.data(),
                       ubexp.data(), nullptr, nullptr, "xyy", subscnt.data(), subsoffs.data(), vmap.data(), &flags,
                       no_params.data(), &float_size, &status);
    ASSERT_EQ(status, 0);
}

/// Two elements of four nodes with one integer parameter each.
inline void write_connectivities(KobFile& file)
{
    Text256 etyp = "ELEMENT", etypelem = "QUAD4", etyppart = "PART", etypnode = "NODE", etypvar = "";
    const std::int32_t nele = 2, npele = 4, ndim = 2, nbint = 1, nbfloat = 0, nindex = 0, indexic = 0, state = -1,
                       flags = 0, float_size = 8;
    const std::array<std::int32_t, 2> idele{11, 12}, pid{5, 6}, iparam{70, 80};
    const std::array<std::int32_t, 8> ic{1, 2, 5, 4, 2, 3, 6, 5};
    std::int32_t status = 77;
    KOB_WRITE_CONNECTIVITIES(file.address(), etyp.data(), etypelem.data(), etyppart.data(), etypnode.data(),
                             etypvar.data(), &nele, &npele, &ndim, &nbint, &nbfloat, &nindex, &indexic, nullptr,
                             nullptr, idele.data(), pid.data(), ic.data(), iparam.data(), nullptr, &state, &flags,
                             no_params.data(), &float_size, &status);
    ASSERT_EQ(status, 0);
}

struct ResultBlock {
    Text256 variable = "DISPLACEMENT";
    std::int32_t ncoo = 2;
    std::vector<std::int32_t> entid{1, 2, 3};
    std::vector<double> res{0, 0.1, 1, 1.1, 2, 2.1};
    std::vector<std::int32_t> indexident{}; ///< empty: a constant block
    std::vector<double> indexval{};
    std::int32_t value_size = 8;
    std::int32_t flags = 0;
    std::array<std::int32_t, 2> params{0, 0};
    Text256 etyp = "NODE";
    Text256 zone = "WING";
    std::int32_t zoneid = 3;
    std::int32_t set = -1;
};

inline void write_results(KobFile& file, const ResultBlock& block)
{
    Text256 frame = "GLOBAL";
    const auto nent = static_cast<std::int32_t>(block.entid.size());
    const auto nindex = static_cast<std::int32_t>(block.indexident.size());
    const std::int32_t fswitch = 0, dmpswitch = 0, indexic = 0, fidglob = 9, state = -1;
    std::int32_t status = 77;
    KOB_WRITE_ENTITYRESULTS(file.address(), block.etyp.data(), &nent, block.variable.data(), &block.ncoo,
                            block.zone.data(), &block.zoneid, frame.data(), &fswitch, &dmpswitch, &nindex, &indexic,
                            block.indexident.data(), block.indexval.data(), block.entid.data(), &fidglob, nullptr,
                            nullptr, nullptr, block.res.data(), &block.set, &state, &block.flags, block.params.data(),
                            &block.value_size, &status);
    ASSERT_EQ(status, 0);
}

/// In the order of the listing: 0 connectivities, 1 coordinates, 2 index, 3 system, 4 variable, 5 variable group,
/// 6 header, then DISPLACEMENT of state 1 (time 0.5) and of state 2 (time 1.5), and a complex PRESSURE of state 2.
class SampleFile : public KobFile {
public:
    SampleFile()
    {
        write_header(*this);
        write_system(*this);
        write_index(*this);
        write_variable_group(*this);
        write_variable(*this);
        write_connectivities(*this);
        write_results(*this, {.variable = "COORDINATE", .zone = "", .zoneid = -1});
        write_results(*this, {.indexident = {1}, .indexval = {0.5}});
        write_results(*this, {.indexident = {2}, .indexval = {1.5}});
        write_results(*this, {.variable = "PRESSURE",
                              .ncoo = 1,
                              .res = {1, 2, 3, -4, 5, 6},
                              .indexident = {2},
                              .indexval = {1.5},
                              .value_size = 32});
        close();
    }
};

} // namespace kob_test
