// SPDX-License-Identifier: BSD-3-Clause
// A sample entity results block, and calls of its writers and readers with every argument in its place.
#pragma once

#include <kob_dp.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "model_blocks.hpp"

namespace kob_test {

/// Section bits.
enum Sections : std::int32_t {
    attributes_section = 1,
    index_section = 2,
    identifiers_section = 4,
    values_section = 8,
    shared_identifiers = 16
};

/// What of "res" a call transfers: everything, a block, or points.
struct Piece {
    std::int32_t mode = 0;
    std::vector<std::int64_t> count = {};
    std::vector<std::int64_t> start = {};
};

struct EntityResults {
    Text256 etyp = untouched();
    std::int32_t nent = untouched_int;
    Text256 etypvar = untouched();
    std::int32_t ncoo = untouched_int;
    Text256 etypzone = untouched();
    std::int32_t zoneid = untouched_int;
    Text256 etypframe = untouched();
    std::int32_t fswitch = untouched_int, dmpswitch = untouched_int, nindex = untouched_int, indexic = untouched_int;
    Ints32 indexident;
    Reals64 indexval;
    Ints32 entid;
    std::int32_t fidglob = untouched_int;
    Ints32 fid;
    Texts256 operators;
    Reals64 weight, res;

    friend bool operator==(const EntityResults&, const EntityResults&) = default;
    friend std::ostream& operator<<(std::ostream& out, const EntityResults& b)
    {
        return out << b.etyp << " " << b.etypvar << " " << b.etypzone << " nent " << b.nent << " ncoo " << b.ncoo
                   << " nindex " << b.nindex << " fidglob " << b.fidglob;
    }

    /// Displacements of four nodes at state 12, in one frame for all; no zone, no set.
    static EntityResults sample()
    {
        EntityResults b;
        b.etyp = "NODE";
        b.nent = 4;
        b.etypvar = "DISPLACEMENT";
        b.ncoo = 3;
        b.etypzone = "";
        b.zoneid = -1;
        b.etypframe = "GLOBAL";
        b.fswitch = 0;
        b.dmpswitch = 0;
        b.nindex = 1;
        b.indexic = 9;
        b.indexident = {12};
        b.indexval = {0.1};
        b.entid = {101, 102, 103, 104};
        b.fidglob = 55;
        b.res = {0.1, 0.2, 0.3, 1.1, 1.2, 1.3, 2.1, 2.2, 2.3, 3.1, 3.2, 3.3};
        return b;
    }
    /// The same with a frame for each node, operators and weights, in a zone.
    static EntityResults combined()
    {
        EntityResults b = sample();
        b.etypzone = "ZONE";
        b.zoneid = 7;
        b.fswitch = 1;
        b.dmpswitch = 1;
        b.fidglob = untouched_int;
        b.fid = {61, 62, 63, 64};
        b.operators = {"sum", "max", "min"};
        b.weight = {0.1, 0.2, 0.3, 0.4};
        return b;
    }
    /// Outputs with room for so many values, none of them filled.
    static EntityResults empty(std::size_t nent = 4, std::size_t nres = 12, std::size_t nindex = 1)
    {
        EntityResults b;
        b.indexident = Ints32(nindex, untouched_int);
        b.indexval = Reals64(nindex, untouched_real);
        b.entid = Ints32(nent, untouched_int);
        b.res = Reals64(nres, untouched_real);
        return b;
    }
    /// The same with room for frames, operators and weights.
    static EntityResults empty_combined(std::size_t nent = 4, std::size_t ncoo = 3)
    {
        EntityResults b = empty(nent, nent * ncoo);
        b.fid = Ints32(nent, untouched_int);
        b.operators = Texts256(ncoo);
        b.weight = Reals64(nent, untouched_real);
        return b;
    }

    std::int32_t write(std::int64_t group, std::int32_t state, std::int32_t value_size = 8, const Storing& how = {},
                       std::int32_t set = -1)
    {
        std::int32_t status = untouched_int;
        KOB_WRITE_ENTITYRESULTS(&group, etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid,
                                etypframe.data(), &fswitch, &dmpswitch, &nindex, &indexic, indexident.data(),
                                indexval.data(), entid.data(), &fidglob, fid.data(), operators.data(), weight.data(),
                                res.data(), &set, &state, &how.filter_flags, how.filter_params.data(), &value_size,
                                &status);
        return status;
    }
    /// `values` stand in for "res", of `memory_size` bytes each.
    std::int32_t write2(std::vector<std::int64_t> groups, std::int32_t sections, const void* values,
                        const Piece& piece = {}, std::int32_t value_size = 8, std::int32_t memory_size = 8,
                        const Storing& how = {})
    {
        std::int32_t status = untouched_int;
        KOB_WRITE_ENTITYRESULTS2(
            groups.data(), &sections, nullptr, etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid,
            etypframe.data(), &fswitch, &dmpswitch, &nindex, &indexic, indexident.data(), indexval.data(), entid.data(),
            &fidglob, fid.data(), operators.data(), weight.data(), values, &memory_size, &how.filter_flags,
            how.filter_params.data(), &value_size, &piece.mode, piece.count.data(), piece.start.data(), &status);
        return status;
    }
    std::int32_t read(std::int64_t block, std::int32_t pass, FoundFilters* found = nullptr)
    {
        FoundFilters ignored;
        FoundFilters& filters = found != nullptr ? *found : ignored;
        std::int32_t status = untouched_int;
        KOB_READ_ENTITYRESULTS(&block, &pass, etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid,
                               etypframe.data(), &fswitch, &dmpswitch, &nindex, &indexic, indexident.data(),
                               indexval.data(), entid.data(), &fidglob, fid.data(), operators.data(), weight.data(),
                               res.data(), &filters.flags, filters.params.data(), &status);
        return status;
    }
    std::int32_t read2(std::int64_t block, std::int32_t sections, void* values, const Piece& piece = {},
                       std::int32_t memory_size = 8, FoundFilters* found = nullptr)
    {
        FoundFilters ignored;
        FoundFilters& filters = found != nullptr ? *found : ignored;
        std::int32_t status = untouched_int;
        KOB_READ_ENTITYRESULTS2(&block, &sections, nullptr, etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(),
                                &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex, &indexic, indexident.data(),
                                indexval.data(), entid.data(), &fidglob, fid.data(), operators.data(), weight.data(),
                                values, &memory_size, &filters.flags, filters.params.data(), &piece.mode,
                                piece.count.data(), piece.start.data(), &status);
        return status;
    }
};

} // namespace kob_test
