// SPDX-License-Identifier: BSD-3-Clause
// A small model with every kind of block, written whole or cut into domains, for the tests of the merger.
#pragma once

#include <kob_dp.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model_blocks.hpp"
#include "text256.hpp"

namespace kob_test {

/// The state a block belongs to; none: constant.
struct BlockState {
    Ints32 indexident = {};
    std::int32_t number = -1; ///< of the path; -1: the identifiers

    std::int32_t nindex() const { return static_cast<std::int32_t>(indexident.size()); }
    Reals64 values() const
    {
        Reals64 all;
        for (const std::int32_t i : indexident) all.push_back(0.5 * i);
        return all;
    }
};

/// What result blocks have besides their values.
struct ResultTable {
    std::string etyp, etypvar;
    std::int32_t ncoo = 1;
    std::string etypzone = {};
    std::int32_t zoneid = -1;
    std::int32_t fswitch = 0, dmpswitch = 0, fidglob = 55;
    std::int32_t value_size = 8;
    std::int32_t set = -1;

    std::int32_t numbers_of_row() const { return ncoo * (value_size > 8 ? 2 : 1); }
    Texts256 operators() const
    {
        const std::array<const char*, 6> names{"sum", "max", "min", "avg", "abs", "none"};
        Texts256 all{static_cast<std::size_t>(ncoo)};
        for (std::size_t i = 0; i < all.size(); ++i) all.set(i, names.at(i % names.size()));
        return all;
    }
};

/// Writes one block of each kind in a few words. A status other than 0 fails the test.
struct BlockWriter {
    std::int64_t group;
    Storing how = {0, {3, 6}, 8};

    static BlockState state(std::int32_t number) { return {{number}, -1}; }

    void connectivities(const std::string& etypelem, std::int32_t npele, Ints32 idele, Ints32 pid, Ints32 ic,
                        Ints32 iparam, Reals64 fparam, const BlockState& at = {}, std::int32_t nbint = 2,
                        std::int32_t nbfloat = 1) const
    {
        const Text256 etyp{"ELEMENT"}, elem{etypelem}, part{"PART"}, node{"NODE"}, var{"SECTION"};
        const auto nele = static_cast<std::int32_t>(idele.size());
        const std::int32_t ndim = 3, nindex = at.nindex(), indexic = 1;
        const Reals64 indexval = at.values();
        std::int32_t status = 77;
        KOB_WRITE_CONNECTIVITIES(&group, etyp.data(), elem.data(), part.data(), node.data(), var.data(), &nele, &npele,
                                 &ndim, &nbint, &nbfloat, &nindex, &indexic, at.indexident.data(), indexval.data(),
                                 idele.data(), pid.data(), ic.data(), iparam.data(), fparam.data(), &at.number,
                                 &how.filter_flags, how.filter_params.data(), &how.float_size, &status);
        EXPECT_EQ(status, 0) << "connectivities " << etypelem;
    }
    void flags(const std::string& name, const Ints32& entid, const Ints32& values, const BlockState& at) const
    {
        const Text256 etyp{name};
        const auto nent = static_cast<std::int32_t>(entid.size());
        const std::int32_t nindex = at.nindex(), indexic = 1;
        const Reals64 indexval = at.values();
        std::int32_t status = 77;
        KOB_WRITE_ACTIVFLAGS(&group, etyp.data(), &nent, &nindex, &indexic, at.indexident.data(), indexval.data(),
                             entid.data(), values.data(), &at.number, &how.filter_flags, how.filter_params.data(),
                             &how.float_size, &status);
        EXPECT_EQ(status, 0) << "activation flags";
    }
    void parts(const Ints32& pid, std::int32_t off, std::int32_t length, const std::string& titles, const Ints32& mid,
               const Ints32& mtyp, const Ints32& pcol) const
    {
        const Text256 etyp{"PART"};
        const auto npart = static_cast<std::int32_t>(pid.size());
        const std::int32_t none = 0, path_state = -1;
        std::int32_t status = 77;
        KOB_WRITE_PARTS(&group, etyp.data(), &npart, &off, &length, &none, &none, nullptr, nullptr, pid.data(),
                        titles.data(), mid.data(), mtyp.data(), pcol.data(), &path_state, &how.filter_flags,
                        how.filter_params.data(), &how.float_size, &status);
        EXPECT_EQ(status, 0) << "parts";
    }
    void entities(bool are_attributes, const std::string& name, const Ints32& entid, std::int32_t nuid,
                  const Ints32& uid, std::int32_t length, const std::string& titles) const
    {
        const Text256 etyp{name};
        const auto nent = static_cast<std::int32_t>(entid.size());
        const std::int32_t none = 0, path_state = -1;
        std::int32_t status = 77;
        const auto write = are_attributes ? KOB_WRITE_ATTRIBUTES : KOB_WRITE_IDENTIFIERS;
        write(&group, etyp.data(), &nent, &nuid, &length, &none, &none, nullptr, nullptr, entid.data(), titles.data(),
              uid.data(), &path_state, &how.filter_flags, how.filter_params.data(), &how.float_size, &status);
        EXPECT_EQ(status, 0) << "attributes or identifiers";
    }
    void collector(const std::string& name, const Ints32& idcoll, Texts256 types, const Ints32& nent,
                   const Ints32& entid) const
    {
        const Text256 etypcoll{name};
        const auto ncoll = static_cast<std::int32_t>(idcoll.size());
        const auto ntyp = static_cast<std::int32_t>(types.size());
        const std::int32_t none = 0, path_state = -1;
        std::int32_t status = 77;
        KOB_WRITE_COLLECTOR(&group, etypcoll.data(), &ncoll, &ntyp, &none, &none, nullptr, nullptr, idcoll.data(),
                            types.data(), nent.data(), entid.data(), &path_state, &how.filter_flags,
                            how.filter_params.data(), &how.float_size, &status);
        EXPECT_EQ(status, 0) << "collector";
    }
    void text(const std::string& name, const std::string& line) const
    {
        const Text256 etyp{name};
        const std::int32_t one = 1, none = 0, path_state = -1;
        const auto length = static_cast<std::int32_t>(line.size());
        std::int32_t status = 77;
        KOB_WRITE_TEXT(&group, etyp.data(), &one, &length, &none, &none, nullptr, nullptr, line.data(), &path_state,
                       &how.filter_flags, how.filter_params.data(), &how.float_size, &status);
        EXPECT_EQ(status, 0) << "text";
    }

    void results(const ResultTable& t, const Ints32& entid, const Ints32& fid, const Reals64& weight,
                 const Reals64& res, const BlockState& at = {}) const
    {
        const Text256 etyp{t.etyp}, etypvar{t.etypvar}, etypzone{t.etypzone}, etypframe{"GLOBAL"};
        const auto nent = static_cast<std::int32_t>(entid.size());
        const std::int32_t nindex = at.nindex(), indexic = 1;
        const Reals64 indexval = at.values();
        Texts256 operators = t.operators();
        std::int32_t status = 77;
        KOB_WRITE_ENTITYRESULTS(&group, etyp.data(), &nent, etypvar.data(), &t.ncoo, etypzone.data(), &t.zoneid,
                                etypframe.data(), &t.fswitch, &t.dmpswitch, &nindex, &indexic, at.indexident.data(),
                                indexval.data(), entid.data(), &t.fidglob, fid.data(), operators.data(), weight.data(),
                                res.data(), &t.set, &at.number, &how.filter_flags, how.filter_params.data(),
                                &t.value_size, &status);
        EXPECT_EQ(status, 0) << "entity results " << t.etypvar;
    }
    /// States are given by their index tuples, one behind the other.
    void series(const ResultTable& t, std::int32_t nindex, const Ints32& tuples, const Ints32& entid, const Ints32& fid,
                const Reals64& weight, const Reals64& res) const
    {
        const Text256 name{"RUN"}, etyp{t.etyp}, etypvar{t.etypvar}, etypzone{t.etypzone}, etypframe{"GLOBAL"};
        const auto nent = static_cast<std::int32_t>(entid.size());
        const std::int32_t states = static_cast<std::int32_t>(tuples.size()) / std::max(nindex, 1);
        const Reals64 indexval = BlockState{tuples}.values();
        Texts256 operators = t.operators();
        std::int32_t status = 77;
        KOB_WRITE_MULTIENTITYRESULTS(&group, name.data(), etyp.data(), &nent, etypvar.data(), &t.ncoo, etypzone.data(),
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
        const std::int32_t numl = 2, ndim = 1, nindex = at.nindex(), indexic = 1;
        const Reals64 indexval = at.values(), eloc{-0.5, 0.5};
        std::int32_t status = 77;
        KOB_WRITE_ELEMENTRESULTS(&group, etypelem.data(), &nele, etypvar.data(), &t.ncoo, &numl, &ndim, etypzone.data(),
                                 &t.zoneid, etypframe.data(), &t.fswitch, &t.dmpswitch, &nindex, &indexic,
                                 at.indexident.data(), indexval.data(), idele.data(), &t.fidglob, nullptr, eloc.data(),
                                 nullptr, nullptr, res.data(), &t.set, &at.number, &how.filter_flags,
                                 how.filter_params.data(), &t.value_size, &status);
        EXPECT_EQ(status, 0) << "element results";
    }
    void dense(std::int32_t entid, std::int32_t nrow, std::int32_t ncolumn, const Reals64& val,
               std::int32_t value_size = 8, const BlockState& at = {}) const
    {
        const Text256 etyp{"SUPERELEMENT"}, etypvar{"STIFFNESS"};
        const std::int32_t nindex = at.nindex(), indexic = 1, whole = 0;
        const Reals64 indexval = at.values();
        std::int32_t status = 77;
        KOB_WRITE_DENSEMATRIX(&group, etyp.data(), &entid, etypvar.data(), &nrow, &ncolumn, &nindex, &indexic,
                              at.indexident.data(), indexval.data(), val.data(), &at.number, &how.filter_flags,
                              how.filter_params.data(), &value_size, &whole, nullptr, nullptr, &status, 256, 256);
        EXPECT_EQ(status, 0) << "dense matrix";
    }
    void triangular(std::int32_t entid, std::int32_t nsize, const Reals64& val, std::int32_t value_size = 8) const
    {
        const Text256 etyp{"SUPERELEMENT"}, etypvar{"MASS"};
        const std::int32_t type = -5, none = 0, path_state = -1, whole = 0;
        std::int32_t status = 77;
        KOB_WRITE_TRIANGULARMATRIX(&group, etyp.data(), &entid, etypvar.data(), &nsize, &type, &none, &none, nullptr,
                                   nullptr, val.data(), &path_state, &how.filter_flags, how.filter_params.data(),
                                   &value_size, &whole, nullptr, nullptr, &status, 256, 256);
        EXPECT_EQ(status, 0) << "triangular matrix";
    }
    void index(std::int32_t nindex) const
    {
        IndexBlock block;
        block.nindex = nindex;
        block.etypvar = "TIME";
        EXPECT_EQ(block.write(group), 0);
    }
    void header() const
    {
        std::int32_t status = 77;
        KOB_WRITE_FILEHEADER(&group, nullptr, nullptr, &status);
        EXPECT_EQ(status, 0);
    }
};

/// A row of bars: each element joins two neighbouring nodes. Identifiers have gaps, some are negative, and their order
/// is not that of the row.
class BarModel {
public:
    explicit BarModel(std::int32_t elements) : elements_{elements} {}

    /// Elements first to last of the row with their nodes; the outer nodes are shared with the neighbours.
    struct Cut {
        std::int32_t first;
        std::int32_t last; ///< one behind
        unsigned seed;     ///< 0: rows in ascending order of identifiers, else shuffled
    };

    Cut whole() const { return {0, elements_, 0}; }
    /// Domain i of n. The last one of an odd number is empty.
    Cut domain(std::int32_t i, std::int32_t n) const
    {
        const std::int32_t filled = n > 1 && n % 2 == 1 ? n - 1 : n;
        const auto seed = static_cast<unsigned>(i) + 1;
        if (i >= filled) return {0, 0, seed};
        return {elements_ * i / filled, elements_ * (i + 1) / filled, seed};
    }

    /// Blocks that all domains carry alike.
    static void write_shared(const BlockWriter& out)
    {
        EXPECT_EQ(SystemBlock::sample().write(out.group, out.how), 0);
        out.index(1);
        EXPECT_EQ(VariableGroupBlock::sample().write(out.group, out.how), 0);
        EXPECT_EQ(VariableBlock::sample().write(out.group, out.how), 0);
        EXPECT_EQ(VariableBlock::large().write(out.group, out.how), 0);
        out.text("log", "step 1 done");
        out.dense(17, 2, 3, {1, 2, 3, 4, 5, 6});
        out.dense(18, 1, 2, {1, 2, 3, 4}, 16, BlockWriter::state(4));
        out.triangular(17, 3, {1, 2, 3, 4, 5, 6}, 4);
    }

    /// Blocks whose rows belong to elements or nodes, in the layout of the writer.
    template <class Out = BlockWriter> void write(const Out& out, const Cut& cut) const
    {
        const Ints32 elements = element_ids(cut);
        const Ints32 nodes = node_ids(cut);
        Ints32 ic, iparam, pid, flags1, flags2;
        Reals64 fparam;
        for (const std::int32_t id : elements) {
            const std::int32_t place = place_of_element(id);
            ic.insert(ic.end(), {node_id(place), node_id(place + 1)});
            iparam.insert(iparam.end(), {id + 1, id + 2});
            fparam.push_back(id / 8.0);
            pid.push_back(part_of(place));
            flags1.push_back(id % 2);
            flags2.push_back(id % 3);
        }
        out.connectivities("BAR", 2, elements, pid, ic, iparam, fparam);
        out.connectivities("BAR", 2, elements, pid, ic, {}, {}, BlockWriter::state(2), 0, 0);
        out.flags("ELEMENT", elements, flags1, BlockWriter::state(1));
        out.flags("ELEMENT", elements, flags2, BlockWriter::state(2));
        write_lists(out, elements, nodes, pid);
        write_results(out, elements, nodes);
    }

    std::int32_t node_id(std::int32_t place) const { return scattered(place, elements_ + 1) * 3 - 20; }
    std::int32_t element_id(std::int32_t place) const { return scattered(place, elements_) * 2 - 11; }

    Ints32 node_ids(const Cut& cut) const
    {
        Ints32 ids;
        for (std::int32_t i = cut.first; cut.first < cut.last && i <= cut.last; ++i) ids.push_back(node_id(i));
        return ordered(ids, cut.seed);
    }
    Ints32 element_ids(const Cut& cut) const
    {
        Ints32 ids;
        for (std::int32_t i = cut.first; i < cut.last; ++i) ids.push_back(element_id(i));
        return ordered(ids, cut.seed);
    }

    /// A value that tells entity, component and state.
    static double value(std::int32_t id, std::int32_t number, std::int32_t state)
    {
        return id * 100.0 + number + state / 16.0;
    }
    static Reals64 values(const Ints32& ids, std::int32_t numbers_of_row, std::int32_t state)
    {
        Reals64 all;
        for (const std::int32_t id : ids) {
            for (std::int32_t i = 0; i < numbers_of_row; ++i) all.push_back(value(id, i, state));
        }
        return all;
    }

private:
    /// Places in an order that jumps: i times a number without common divisor.
    static std::int32_t scattered(std::int32_t place, std::int32_t count)
    {
        std::int32_t step = 7;
        while (count % step == 0) ++step;
        return static_cast<std::int32_t>(std::int64_t{place} * step % count);
    }
    static Ints32 ordered(Ints32 ids, unsigned seed)
    {
        std::sort(ids.begin(), ids.end());
        if (seed != 0) std::shuffle(ids.begin(), ids.end(), std::mt19937{seed});
        return ids;
    }
    std::int32_t place_of_element(std::int32_t id) const
    {
        for (std::int32_t i = 0; i < elements_; ++i) {
            if (element_id(i) == id) return i;
        }
        return -1;
    }
    std::int32_t part_of(std::int32_t place) const { return place < elements_ / 2 ? 30 : 10; }

    template <class Out>
    static void write_lists(const Out& out, const Ints32& elements, const Ints32& nodes, const Ints32& pid)
    {
        const std::set<std::int32_t> used(pid.begin(), pid.end());
        const Ints32 parts(used.begin(), used.end());
        Ints32 mid, pcol, uid;
        std::string part_titles, node_titles;
        for (const std::int32_t part : parts) {
            mid.push_back(part + 1);
            pcol.push_back(part + 2);
            part_titles += "part " + std::to_string(part) + " ";
        }
        for (const std::int32_t node : nodes) {
            uid.insert(uid.end(), {node + 1, node + 2, node + 3});
            std::string title = "n" + std::to_string(node);
            title.resize(6, ' ');
            node_titles += title;
        }
        out.parts(parts, 2, 8, part_titles, mid, {}, pcol);
        out.entities(true, "NODE", nodes, 3, uid, 6, node_titles);
        out.entities(false, "NODE", nodes, 0, {}, 0, "");
        // collector 9: all elements and nodes; collector -4: nothing of this domain but even nodes
        Ints32 even, members = elements;
        for (const std::int32_t node : nodes) {
            if (node % 2 == 0) even.push_back(node);
        }
        members.insert(members.end(), even.begin(), even.end());
        Ints32 all = elements;
        std::sort(all.begin(), all.end());
        Ints32 sorted_even = even;
        std::sort(sorted_even.begin(), sorted_even.end());
        Ints32 list = sorted_even;
        list.insert(list.end(), all.begin(), all.end());
        list.insert(list.end(), sorted_even.begin(), sorted_even.end());
        out.collector("GROUPS", {-4, 9}, {"ELEMENT", "NODE"},
                      {0, static_cast<std::int32_t>(even.size()), static_cast<std::int32_t>(all.size()),
                       static_cast<std::int32_t>(even.size())},
                      list);
    }

    template <class Out> static void write_results(const Out& out, const Ints32& elements, const Ints32& nodes)
    {
        const auto table = [&](const ResultTable& t, const Ints32& ids, std::int32_t state, const BlockState& at) {
            Ints32 fid;
            for (const std::int32_t id : ids) fid.push_back(id + 1000);
            out.results(t, ids, fid, values(ids, 1, 9), values(ids, t.numbers_of_row(), state), at);
        };
        table({.etyp = "NODE", .etypvar = "COORDINATE", .ncoo = 3}, nodes, 0, {});
        for (const std::int32_t state : {1, 2}) {
            const BlockState at = BlockWriter::state(state);
            table({.etyp = "NODE", .etypvar = "DISPLACEMENT", .ncoo = 3, .value_size = 4}, nodes, state, at);
            table({.etyp = "NODE", .etypvar = "PRESSURE", .ncoo = 2, .value_size = 16}, nodes, state, at);
            table({.etyp = "NODE", .etypvar = "WAVE", .value_size = 32, .set = 3}, nodes, state, at);
            table({.etyp = "ELEMENT",
                   .etypvar = "STRESS",
                   .ncoo = 6,
                   .etypzone = "UPPER",
                   .zoneid = 2,
                   .fswitch = 1,
                   .dmpswitch = 1},
                  elements, state, at);
        }
        // two index values; the path is numbered by its caller
        table({.etyp = "ELEMENT", .etypvar = "ENERGY"}, elements, 5, {{4, 7}, -1});
        table({.etyp = "ELEMENT", .etypvar = "ENERGY"}, elements, 6, {{4, 7}, 900});

        const auto series = [&](const ResultTable& t, const Ints32& ids, std::int32_t states) {
            Ints32 tuples, fid;
            Reals64 all;
            for (std::int32_t state = 1; state <= states; ++state) {
                tuples.push_back(state * 5);
                const Reals64 one = values(ids, t.numbers_of_row(), state);
                all.insert(all.end(), one.begin(), one.end());
            }
            for (const std::int32_t id : ids) fid.push_back(id + 1000);
            out.series(t, 1, tuples, ids, fid, values(ids, 1, 9), all);
        };
        series({.etyp = "NODE", .etypvar = "TEMPERATURE", .value_size = 4}, nodes, 4);
        series({.etyp = "NODE", .etypvar = "FLUX", .ncoo = 2, .fswitch = 1, .dmpswitch = 1, .value_size = 32, .set = 1},
               nodes, 3);
    }

    std::int32_t elements_;
};

} // namespace kob_test
