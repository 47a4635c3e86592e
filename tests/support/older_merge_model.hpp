// SPDX-License-Identifier: BSD-3-Clause
// The blocks of the model that the merger's tests cut, in the older layout.
#pragma once

#include <kob_dp.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "merge_model.hpp"
#include "older_blocks.hpp"

namespace kob_test {

/// Writes one block of each kind in a few words, with the arguments of BlockWriter. A status other than 0 fails the
/// test.
struct OlderBlockWriter {
    std::int64_t group;
    Storing how = {0, {3, 6}, 8};

    static BlockState state(std::int32_t number) { return {{number}, -1}; }

    void connectivities(const std::string& etypelem, std::int32_t npele, Ints32 idele, Ints32 pid, Ints32 ic,
                        Ints32 iparam, Reals64 fparam, const BlockState& at = {}, std::int32_t nbint = 2,
                        std::int32_t nbfloat = 1) const
    {
        const Text256 elem{etypelem}, part{"PART"}, node{"NODE"};
        const auto nele = static_cast<std::int32_t>(idele.size());
        const std::int32_t ndim = 3, nindex = at.nindex();
        const Reals64 indexval = at.values();
        // each parameter in units of two base units and one derived unit
        const auto values = static_cast<std::size_t>(nbfloat);
        const Ints32 mbunit(values, 2), mdunit(values, 1), ubid(2 * values, 11), udid(values, 21);
        const Reals64 ubexp(2 * values, -1.5), udexp(values, 0.5);
        std::int32_t status = 77;
        KOB1_WRITE_CONNECTIVITIES(&group, elem.data(), part.data(), node.data(), &nele, &npele, &ndim, &nbint, &nbfloat,
                                  &nindex, at.indexident.data(), indexval.data(), idele.data(), pid.data(), ic.data(),
                                  iparam.data(), fparam.data(), mbunit.data(), mdunit.data(), ubid.data(), ubexp.data(),
                                  udid.data(), udexp.data(), &at.number, &how.filter_flags, how.filter_params.data(),
                                  &how.float_size, &status);
        EXPECT_EQ(status, 0) << "connectivities " << etypelem;
    }
    void flags(const std::string& name, const Ints32& entid, const Ints32& values, const BlockState& at) const
    {
        const Text256 etyp{name};
        const auto nent = static_cast<std::int32_t>(entid.size());
        const std::int32_t nindex = at.nindex();
        const Reals64 indexval = at.values();
        std::int32_t status = 77;
        KOB1_WRITE_ACTIVFLAGS(&group, etyp.data(), &nent, &nindex, at.indexident.data(), indexval.data(), entid.data(),
                              values.data(), &at.number, &how.filter_flags, how.filter_params.data(), &how.float_size,
                              &status);
        EXPECT_EQ(status, 0) << "activation flags";
    }
    /// With a further column, "pvtyp", that follows from the identifiers.
    void parts(const Ints32& pid, std::int32_t off, std::int32_t length, const std::string& titles, const Ints32& mid,
               const Ints32& mtyp, const Ints32& pcol) const
    {
        const Text256 etyp{"PART"};
        const auto npart = static_cast<std::int32_t>(pid.size());
        const std::int32_t none = 0, path_state = -1;
        Texts256 fields = fields_of(titles, pid.size(), length);
        Ints32 pvtyp = pid;
        for (std::int32_t& value : pvtyp) value = -value;
        std::int32_t status = 77;
        KOB1_WRITE_PARTS(&group, etyp.data(), &npart, &off, &none, nullptr, nullptr, pid.data(), fields.data(),
                         mid.data(), mtyp.data(), pcol.data(), pvtyp.data(), &path_state, &how.filter_flags,
                         how.filter_params.data(), &how.float_size, &status);
        EXPECT_EQ(status, 0) << "parts";
    }
    /// Attributes; this layout has no identifiers blocks.
    void entities(bool are_attributes, const std::string& name, const Ints32& entid, std::int32_t nuid,
                  const Ints32& uid, std::int32_t length, const std::string& titles) const
    {
        if (!are_attributes) return;
        const Text256 etyp{name};
        const auto nent = static_cast<std::int32_t>(entid.size());
        const std::int32_t none = 0, path_state = -1;
        Texts256 fields = fields_of(titles, entid.size(), length);
        std::int32_t status = 77;
        KOB1_WRITE_ATTRIBUTES(&group, etyp.data(), &nent, &nuid, &none, nullptr, nullptr, entid.data(), fields.data(),
                              uid.data(), &path_state, &how.filter_flags, how.filter_params.data(), &how.float_size,
                              &status);
        EXPECT_EQ(status, 0) << "attributes";
    }
    void collector(const std::string& name, const Ints32& idcoll, Texts256 types, const Ints32& nent,
                   const Ints32& entid) const
    {
        const Text256 etypcoll{name};
        const auto ncoll = static_cast<std::int32_t>(idcoll.size());
        const auto ntyp = static_cast<std::int32_t>(types.size());
        const std::int32_t none = 0, path_state = -1;
        std::int32_t status = 77;
        KOB1_WRITE_COLLECTOR(&group, etypcoll.data(), &ncoll, &ntyp, &none, nullptr, nullptr, idcoll.data(),
                             types.data(), nent.data(), entid.data(), &path_state, &how.filter_flags,
                             how.filter_params.data(), &how.float_size, &status);
        EXPECT_EQ(status, 0) << "collector";
    }
    void text(const std::string& name, const std::string& line) const
    {
        older::Text block;
        block.etyptext = name;
        block.nlines = 1;
        block.length = static_cast<std::int32_t>(line.size());
        block.line = line;
        EXPECT_EQ(block.write(group).status, 0) << "text";
    }
    void results(const ResultTable& t, const Ints32& entid, const Ints32& fid, const Reals64& weight,
                 const Reals64& res, const BlockState& at = {}) const
    {
        const Text256 etyp{t.etyp}, etypvar{t.etypvar}, etypzone{t.etypzone}, etypframe{"GLOBAL"};
        const auto nent = static_cast<std::int32_t>(entid.size());
        const std::int32_t nindex = at.nindex();
        const Reals64 indexval = at.values();
        Texts256 operators = t.operators();
        std::int32_t status = 77;
        KOB1_WRITE_ENTITYRESULTS(&group, etyp.data(), &nent, etypvar.data(), &t.ncoo, etypzone.data(), &t.zoneid,
                                 etypframe.data(), &t.fswitch, &t.dmpswitch, &nindex, at.indexident.data(),
                                 indexval.data(), entid.data(), &t.fidglob, fid.data(), operators.data(), weight.data(),
                                 res.data(), &t.set, &at.number, &how.filter_flags, how.filter_params.data(),
                                 &t.value_size, &status);
        EXPECT_EQ(status, 0) << "entity results " << t.etypvar;
    }
    void series(const ResultTable& t, std::int32_t nindex, const Ints32& tuples, const Ints32& entid, const Ints32& fid,
                const Reals64& weight, const Reals64& res) const
    {
        const Text256 name{"RUN"}, etyp{t.etyp}, etypvar{t.etypvar}, etypzone{t.etypzone}, etypframe{"GLOBAL"};
        const auto nent = static_cast<std::int32_t>(entid.size());
        const std::int32_t states = static_cast<std::int32_t>(tuples.size()) / std::max(nindex, 1);
        const Reals64 indexval = BlockState{tuples}.values();
        Texts256 operators = t.operators();
        std::int32_t status = 77;
        KOB1_WRITE_MULTIENTITYRESULTS(&group, name.data(), etyp.data(), &nent, etypvar.data(), &t.ncoo, etypzone.data(),
                                      &t.zoneid, etypframe.data(), &t.fswitch, &t.dmpswitch, &nindex, tuples.data(),
                                      indexval.data(), entid.data(), &t.fidglob, fid.data(), operators.data(),
                                      weight.data(), res.data(), &t.set, &states, &how.filter_flags,
                                      how.filter_params.data(), &t.value_size, &status);
        EXPECT_EQ(status, 0) << "series " << t.etypvar;
    }
    void element_results(const ResultTable& t, const Ints32& idele, const Reals64& res, const BlockState& at = {}) const
    {
        const Text256 etypelem{t.etyp}, etypvar{t.etypvar}, etypzone{t.etypzone}, etypframe{"GLOBAL"};
        const auto nele = static_cast<std::int32_t>(idele.size());
        const std::int32_t numl = 2, ndim = 1, nindex = at.nindex();
        const Reals64 indexval = at.values(), eloc{-0.5, 0.5};
        std::int32_t status = 77;
        KOB1_WRITE_ELEMENTRESULTS(&group, etypelem.data(), &nele, etypvar.data(), &t.ncoo, &numl, &ndim,
                                  etypzone.data(), &t.zoneid, etypframe.data(), &t.fswitch, &t.dmpswitch, &nindex,
                                  at.indexident.data(), indexval.data(), idele.data(), &t.fidglob, nullptr, eloc.data(),
                                  nullptr, nullptr, res.data(), &t.set, &at.number, &how.filter_flags,
                                  how.filter_params.data(), &t.value_size, &status);
        EXPECT_EQ(status, 0) << "element results";
    }
    void dense(std::int32_t entid, std::int32_t nrow, std::int32_t ncolumn, const Reals64& val,
               std::int32_t value_size = 8, const BlockState& at = {}) const
    {
        const Text256 etyp{"SUPERELEMENT"}, etypvar{"STIFFNESS"};
        const std::int32_t nindex = at.nindex(), whole = 0;
        const Reals64 indexval = at.values();
        std::int32_t status = 77;
        KOB1_WRITE_DENSEMATRIX(&group, etyp.data(), &entid, etypvar.data(), &nrow, &ncolumn, &nindex,
                               at.indexident.data(), indexval.data(), val.data(), &at.number, &how.filter_flags,
                               how.filter_params.data(), &value_size, &whole, nullptr, nullptr, &status, 256, 256);
        EXPECT_EQ(status, 0) << "dense matrix";
    }
    void triangular(std::int32_t entid, std::int32_t nsize, const Reals64& val, std::int32_t value_size = 8) const
    {
        const Text256 etyp{"SUPERELEMENT"}, etypvar{"MASS"};
        const std::int32_t type = -5, none = 0, path_state = -1, whole = 0;
        std::int32_t status = 77;
        KOB1_WRITE_TRIANGULARMATRIX(&group, etyp.data(), &entid, etypvar.data(), &nsize, &type, &none, nullptr, nullptr,
                                    val.data(), &path_state, &how.filter_flags, how.filter_params.data(), &value_size,
                                    &whole, nullptr, nullptr, &status, 256, 256);
        EXPECT_EQ(status, 0) << "triangular matrix";
    }
    void index(std::int32_t nindex) const
    {
        older::Index block;
        block.nindex = nindex;
        const auto values = static_cast<std::size_t>(nindex);
        block.etypindex = Texts256{values};
        for (std::size_t i = 0; i < values; ++i) block.etypindex.set(i, "INDEX " + std::to_string(i));
        block.mbunit.assign(values, 1);
        block.mdunit.assign(values, 0);
        block.ubid.assign(values, 13);
        block.ubexp.assign(values, -2);
        EXPECT_EQ(block.write(group).status, 0) << "index";
    }
    void header() const
    {
        std::int32_t status = 77;
        KOB1_WRITE_FILEHEADER(&group, nullptr, nullptr, &status);
        EXPECT_EQ(status, 0);
    }
    /// Blocks that all domains carry alike.
    void shared() const
    {
        EXPECT_EQ(older::System{}.write(group).status, 0);
        EXPECT_EQ(older::Index{}.write(group).status, 0);
        older::Variables stress, scalar;
        EXPECT_EQ(stress.write(group).status, 0);
        scalar.etypvar = "PRESSURE";
        scalar.rank = 0;
        EXPECT_EQ(scalar.write(group).status, 0);
        text("log", "step 1 done");
        dense(17, 2, 3, {1, 2, 3, 4, 5, 6});
        dense(18, 1, 2, {1, 2, 3, 4}, 16, state(4));
        triangular(17, 3, {1, 2, 3, 4, 5, 6}, 4);
    }

private:
    /// Titles of `length` characters, end to end, as this layout has them.
    static Texts256 fields_of(const std::string& titles, std::size_t count, std::int32_t length)
    {
        const auto width = static_cast<std::size_t>(length);
        Texts256 fields{count};
        for (std::size_t i = 0; i < count; ++i) fields.set(i, titles.substr(i * width, width));
        return fields;
    }
};

} // namespace kob_test
