// SPDX-License-Identifier: BSD-3-Clause
// A small block of every kind of the older layout, and calls of its writer and reader with every argument in place.
//
// Each kind tells what its checks need to know of it: `keys` as a wrong-key line names them, the line about an unknown
// pass, the path of the sample, whether a second write is refused, and whether the reader's status is the key.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include <kob_dp.h>

#include "block_call.hpp"
#include "entity_results.hpp"
#include "matrix_blocks.hpp"
#include "result_blocks.hpp"

namespace kob_test::older {

using Ints = std::vector<std::int32_t>;
using Numbers = std::vector<double>;
using Params = std::array<std::int32_t, 2>;

/// What is common to the kinds: the request to the writer, and the facts as most kinds have them.
struct Call {
    std::int32_t state = -1;
    std::int32_t float_size = 8;
    std::int32_t filter_flags = 0;
    Params filter_params{0, 0};
};
template <class Block> auto filters_of()
{
    return std::make_tuple(Field{"filter_flags", section::filters, &Block::filter_flags},
                           Field{"filter_params", section::filters, &Block::filter_params});
}

inline std::string pass_line(int key)
{
    return "KOB INTERNAL ERROR reading block with key " + std::to_string(key) + " \n";
}
inline std::string pass_line(int key, int complex_key)
{
    return "KOB INTERNAL ERROR reading block with key " + std::to_string(key) + " or " + std::to_string(complex_key) +
           "\n";
}

/// Units of values, as index, variables and connectivities blocks hold them.
struct UnitItems {
    Ints mbunit, mdunit, ubid;
    Numbers ubexp;
    Ints udid;
    Numbers udexp;
};
template <class B> auto unit_fields()
{
    return std::make_tuple(Field{"mbunit", section::values, &B::mbunit}, Field{"mdunit", section::values, &B::mdunit},
                           Field{"ubid", section::values, &B::ubid}, Field{"ubexp", section::values, &B::ubexp},
                           Field{"udid", section::values, &B::udid}, Field{"udexp", section::values, &B::udexp});
}
template <class B> auto index_fields()
{
    return std::make_tuple(Field{"nindex", section::attributes, &B::nindex},
                           Field{"indexident", section::index, &B::indexident},
                           Field{"indexval", section::index, &B::indexval});
}

// ---- model

struct System : SystemBlock, Call {
    static constexpr int key = 10;
    static constexpr bool is_record = true, is_state = false, tells_key = false;
    static constexpr const char* name = "system";
    static std::string keys() { return "10"; }
    static std::string pass_error(int /*pass*/) { return pass_line(10); }
    static const char* path() { return "constant/system/kobblock"; }

    System() : SystemBlock{SystemBlock::sample()} {}

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_SYSTEM(&group, title.data(), sys.data(), solver_name.data(), solver_vers.data(), cdate.data(),
                              ctime.data(), mdate.data(), mtime.data(), &nbunit, &ndunit, ubid.data(), ubtyp.data(),
                              ubnam.data(), ubshift.data(), ubcon.data(), udid.data(), udnam.data(), udscal.data(),
                              ndbunit.data(), udbid.data(), udbexp.data(), &filter_flags, filter_params.data(),
                              &float_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_SYSTEM(&block, &pass, title.data(), sys.data(), solver_name.data(), solver_vers.data(),
                             cdate.data(), ctime.data(), mdate.data(), mtime.data(), &nbunit, &ndunit, ubid.data(),
                             ubtyp.data(), ubnam.data(), ubshift.data(), ubcon.data(), udid.data(), udnam.data(),
                             udscal.data(), ndbunit.data(), udbid.data(), udbexp.data(), &filter_flags,
                             filter_params.data(), status);
        });
    }
    Outcome read_current(std::int64_t block)
    {
        return outcome_of([&](std::int32_t* status) { *status = SystemBlock::read(block, 1); });
    }
    Outcome write_current(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) { *status = SystemBlock::write(group); });
    }
};
inline auto fields_of(const System* /*unused*/)
{
    using B = System;
    constexpr int a = section::attributes;
    constexpr int v = section::values;
    return std::tuple_cat(
        std::make_tuple(Field{"title", a, &B::title}, Field{"sys", a, &B::sys},
                        Field{"solver_name", a, &B::solver_name}, Field{"solver_vers", a, &B::solver_vers},
                        Field{"cdate", a, &B::cdate}, Field{"ctime", a, &B::ctime}, Field{"mdate", a, &B::mdate},
                        Field{"mtime", a, &B::mtime}, Field{"nbunit", a, &B::nbunit}, Field{"ndunit", a, &B::ndunit},
                        Field{"ubid", v, &B::ubid}, Field{"ubtyp", v, &B::ubtyp}, Field{"ubnam", v, &B::ubnam},
                        Field{"ubshift", v, &B::ubshift}, Field{"ubcon", v, &B::ubcon}, Field{"udid", v, &B::udid},
                        Field{"udnam", v, &B::udnam}, Field{"udscal", v, &B::udscal}, Field{"ndbunit", v, &B::ndbunit},
                        Field{"udbid", v, &B::udbid}, Field{"udbexp", v, &B::udbexp}),
        filters_of<B>());
}

/// Two index values: a time in s, and a frequency in 1/s as one base and one derived unit.
struct Index : UnitItems, Call {
    static constexpr int key = 20;
    static constexpr bool is_record = true, is_state = false, tells_key = false;
    static constexpr const char* name = "indices";
    static std::string keys() { return "20"; }
    static std::string pass_error(int /*pass*/) { return pass_line(20); }
    static const char* path() { return "constant/indices/kobblock"; }

    std::int32_t nindex = 2;
    Texts256 etypindex{"TIME", "FREQUENCY"};

    Index() : UnitItems{{1, 1}, {0, 1}, {13, 14}, {1, -1}, {22}, {0.5}} {}

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_INDEX(&group, &nindex, etypindex.data(), mbunit.data(), mdunit.data(), ubid.data(), ubexp.data(),
                             udid.data(), udexp.data(), &filter_flags, filter_params.data(), &float_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_INDEX(&block, &pass, &nindex, etypindex.data(), mbunit.data(), mdunit.data(), ubid.data(),
                            ubexp.data(), udid.data(), udexp.data(), &filter_flags, filter_params.data(), status);
        });
    }
    Outcome read_current(std::int64_t block)
    {
        Text256 etypvar;
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_INDEX(&block, nullptr, &nindex, etypvar.data(), nullptr, nullptr, status);
        });
    }
    Outcome write_current(std::int64_t group)
    {
        Text256 etypvar = "TIME";
        return outcome_of(
            [&](std::int32_t* status) { KOB_WRITE_INDEX(&group, &nindex, etypvar.data(), nullptr, nullptr, status); });
    }
};

inline auto fields_of(const Index* /*unused*/)
{
    using B = Index;
    return std::tuple_cat(std::make_tuple(Field{"nindex", section::attributes, &B::nindex},
                                          Field{"etypindex", section::values, &B::etypindex}),
                          unit_fields<B>(), filters_of<B>());
}

/// A tensor of rank 2 in two dimensions with three components.
struct Variables : UnitItems, Call {
    static constexpr int key = 30;
    static constexpr bool is_record = true, is_state = false, tells_key = false;
    static constexpr const char* name = "variables";
    static std::string keys() { return "30"; }
    static std::string pass_error(int /*pass*/) { return pass_line(30); }
    static const char* path() { return "constant/variables/STRESS/kobblock"; }

    Text256 etypvar = "STRESS";
    std::int32_t idtrans = -3;
    std::int32_t rank = 2;
    std::int32_t ndim = 2;
    std::int32_t ncoo = 3;
    Texts256 cname{"XX", "YY", "XY"};
    Ints cid{71, 72, 73};
    Ints comp{1, 3, 3, 2};

    Variables() : UnitItems{{1, 2, 0}, {0, 1, 1}, {11, 12, 13}, {1, -1, -2}, {21, 22}, {0.25, 0.5}} {}

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_VARIABLES(&group, etypvar.data(), &idtrans, &rank, &ndim, &ncoo, mbunit.data(), mdunit.data(),
                                 ubid.data(), ubexp.data(), udid.data(), udexp.data(), cname.data(), cid.data(),
                                 comp.data(), &filter_flags, filter_params.data(), &float_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_VARIABLES(&block, &pass, etypvar.data(), &idtrans, &rank, &ndim, &ncoo, mbunit.data(),
                                mdunit.data(), ubid.data(), ubexp.data(), udid.data(), udexp.data(), cname.data(),
                                cid.data(), comp.data(), &filter_flags, filter_params.data(), status);
        });
    }
    /// A variable has the same key.
    static Outcome read_current(std::int64_t block)
    {
        return outcome_of([&](std::int32_t* status) { *status = VariableBlock::empty(3, 3, 2, 6, 27).read(block, 1); });
    }
    static Outcome write_current(std::int64_t group)
    {
        auto variable = VariableBlock::sample();
        return outcome_of([&](std::int32_t* status) { *status = variable.write(group); });
    }
    static const char* current_path() { return "constant/variable/STRESS/kobblock"; }
};

inline auto fields_of(const Variables* /*unused*/)
{
    using B = Variables;
    return std::tuple_cat(
        std::make_tuple(Field{"etypvar", section::attributes, &B::etypvar},
                        Field{"idtrans", section::attributes, &B::idtrans},
                        Field{"rank", section::attributes, &B::rank}, Field{"ndim", section::attributes, &B::ndim},
                        Field{"ncoo", section::attributes, &B::ncoo}),
        unit_fields<B>(),
        std::make_tuple(Field{"cname", section::values, &B::cname}, Field{"cid", section::values, &B::cid},
                        Field{"comp", section::values, &B::comp}),
        filters_of<B>());
}

struct Text : Call {
    static constexpr int key = 40;
    static constexpr bool is_record = true, is_state = false, tells_key = false;
    static constexpr const char* name = "text";
    static std::string keys() { return "40"; }
    static std::string pass_error(int /*pass*/) { return pass_line(40); }
    static const char* path() { return "constant/text/log/kobblock"; }

    Text256 etyptext = "log";
    std::int32_t nlines = 2;
    std::int32_t length = 5;
    std::string line = "one  two  ";

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_TEXT(&group, etyptext.data(), &nlines, &length, line.data(), &filter_flags, filter_params.data(),
                            status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_TEXT(&block, &pass, etyptext.data(), &nlines, &length, line.data(), &filter_flags,
                           filter_params.data(), status);
        });
    }
    Outcome read_current(std::int64_t block)
    {
        const std::int32_t sections = section::attributes;
        std::int32_t nindex = 0;
        std::int32_t indexic = 0;
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_TEXT(&block, &sections, etyptext.data(), &nlines, &length, &nindex, &indexic, nullptr, nullptr,
                          nullptr, nullptr, nullptr, status);
        });
    }
    Outcome write_current(std::int64_t group)
    {
        const std::int32_t nindex = 0;
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_TEXT(&group, etyptext.data(), &nlines, &length, &nindex, &nindex, nullptr, nullptr, line.data(),
                           &state, &filter_flags, filter_params.data(), &float_size, status);
        });
    }
};
inline auto fields_of(const Text* /*unused*/)
{
    using B = Text;
    return std::tuple_cat(std::make_tuple(Field{"etyptext", section::attributes, &B::etyptext},
                                          Field{"nlines", section::attributes, &B::nlines},
                                          Field{"length", section::attributes, &B::length},
                                          Field{"line", section::values, &B::line}),
                          filters_of<B>());
}

// ---- mesh; all of state 12

struct StateCall : Call {
    std::int32_t nindex = 1;
    Ints indexident{12};
    Numbers indexval{0.125};
};

struct Parts : StateCall {
    static constexpr int key = 100;
    static constexpr bool is_record = true, is_state = true, tells_key = false;
    static constexpr const char* name = "parts";
    static std::string keys() { return "100"; }
    static std::string pass_error(int /*pass*/) { return pass_line(100); }
    static const char* path() { return "singlestate/state000000000012/parts/PART/kobblock"; }

    Text256 etyppart = "PART";
    std::int32_t npart = 2;
    std::int32_t off = 0;
    Ints pid{7, 8};
    Texts256 title{"flange", "web"};
    Ints mid{3, 4};
    Ints mtyp{24, 1};
    Ints pcol{255, 128};
    Ints pvtyp{-1, 6};

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_PARTS(&group, etyppart.data(), &npart, &off, &nindex, indexident.data(), indexval.data(),
                             pid.data(), title.data(), mid.data(), mtyp.data(), pcol.data(), pvtyp.data(), &state,
                             &filter_flags, filter_params.data(), &float_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_PARTS(&block, &pass, etyppart.data(), &npart, &off, &nindex, indexident.data(), indexval.data(),
                            pid.data(), title.data(), mid.data(), mtyp.data(), pcol.data(), pvtyp.data(), &filter_flags,
                            filter_params.data(), status);
        });
    }
    Outcome read_current(std::int64_t block)
    {
        const std::int32_t sections = section::attributes;
        std::int32_t length = 0;
        std::int32_t indexic = 0;
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_PARTS(&block, &sections, etyppart.data(), &npart, &off, &length, &nindex, &indexic, nullptr,
                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, status);
        });
    }
    Outcome write_current(std::int64_t group)
    {
        const std::int32_t length = 256;
        const std::int32_t indexic = 3;
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_PARTS(&group, etyppart.data(), &npart, &off, &length, &nindex, &indexic, indexident.data(),
                            indexval.data(), pid.data(), title.data(), mid.data(), mtyp.data(), pcol.data(), &state,
                            &filter_flags, filter_params.data(), &float_size, status);
        });
    }
};

inline auto fields_of(const Parts* /*unused*/)
{
    using B = Parts;
    return std::tuple_cat(
        std::make_tuple(Field{"etyppart", section::attributes, &B::etyppart},
                        Field{"npart", section::attributes, &B::npart}, Field{"off", section::attributes, &B::off}),
        index_fields<B>(),
        std::make_tuple(Field{"pid", section::identifiers, &B::pid}, Field{"title", section::values, &B::title},
                        Field{"mid", section::values, &B::mid}, Field{"mtyp", section::values, &B::mtyp},
                        Field{"pcol", section::values, &B::pcol}, Field{"pvtyp", section::values, &B::pvtyp}),
        filters_of<B>());
}

struct Attributes : StateCall {
    static constexpr int key = 200;
    static constexpr bool is_record = true, is_state = true, tells_key = false;
    static constexpr const char* name = "attributes";
    static std::string keys() { return "200"; }
    static std::string pass_error(int /*pass*/) { return pass_line(200); }
    static const char* path() { return "singlestate/state000000000012/attributes/NODE/kobblock"; }

    Text256 etyp = "NODE";
    std::int32_t nent = 3;
    std::int32_t nuid = 2;
    Ints entid{5, 6, 9};
    Texts256 title{"left", "", "right"};
    Ints uid{51, 52, 61, 62, 91, 92};

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_ATTRIBUTES(&group, etyp.data(), &nent, &nuid, &nindex, indexident.data(), indexval.data(),
                                  entid.data(), title.data(), uid.data(), &state, &filter_flags, filter_params.data(),
                                  &float_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_ATTRIBUTES(&block, &pass, etyp.data(), &nent, &nuid, &nindex, indexident.data(), indexval.data(),
                                 entid.data(), title.data(), uid.data(), &filter_flags, filter_params.data(), status);
        });
    }
    Outcome read_current(std::int64_t block)
    {
        const std::int32_t sections = section::attributes;
        std::int32_t length = 0;
        std::int32_t indexic = 0;
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_ATTRIBUTES(&block, &sections, etyp.data(), &nent, &nuid, &length, &nindex, &indexic, nullptr,
                                nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, status);
        });
    }
    Outcome write_current(std::int64_t group)
    {
        const std::int32_t length = 256;
        const std::int32_t indexic = 3;
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_ATTRIBUTES(&group, etyp.data(), &nent, &nuid, &length, &nindex, &indexic, indexident.data(),
                                 indexval.data(), entid.data(), title.data(), uid.data(), &state, &filter_flags,
                                 filter_params.data(), &float_size, status);
        });
    }
};

inline auto fields_of(const Attributes* /*unused*/)
{
    using B = Attributes;
    return std::tuple_cat(
        std::make_tuple(Field{"etyp", section::attributes, &B::etyp}, Field{"nent", section::attributes, &B::nent},
                        Field{"nuid", section::attributes, &B::nuid}),
        index_fields<B>(),
        std::make_tuple(Field{"entid", section::identifiers, &B::entid}, Field{"title", section::values, &B::title},
                        Field{"uid", section::values, &B::uid}),
        filters_of<B>());
}

struct Connectivities : StateCall, UnitItems {
    static constexpr int key = 300;
    static constexpr bool is_record = true, is_state = true, tells_key = false;
    static constexpr const char* name = "connectivities";
    static std::string keys() { return "300"; }
    static std::string pass_error(int /*pass*/) { return pass_line(300); }
    static const char* path() { return "singlestate/state000000000012/connectivities/BEAM2/kobblock"; }

    Text256 etypelem = "BEAM2";
    Text256 etyppart = "PART";
    Text256 etypnode = "NODE";
    std::int32_t nele = 2;
    std::int32_t npele = 3;
    std::int32_t ndim = 1;
    std::int32_t nbint = 1;
    std::int32_t nbfloat = 2;
    Ints idele{101, 102};
    Ints pid{7, 8};
    Ints ic{1, 2, 3, 2, 3, 4};
    Ints iparam{11, 12};
    Numbers fparam{0.5, 1.5, 2.5, 3.5};

    Connectivities() : UnitItems{{2, 1}, {0, 1}, {11, 12, 13}, {1, -2, 3}, {21}, {0.5}} {}

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_CONNECTIVITIES(&group, etypelem.data(), etyppart.data(), etypnode.data(), &nele, &npele, &ndim,
                                      &nbint, &nbfloat, &nindex, indexident.data(), indexval.data(), idele.data(),
                                      pid.data(), ic.data(), iparam.data(), fparam.data(), mbunit.data(), mdunit.data(),
                                      ubid.data(), ubexp.data(), udid.data(), udexp.data(), &state, &filter_flags,
                                      filter_params.data(), &float_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_CONNECTIVITIES(&block, &pass, etypelem.data(), etyppart.data(), etypnode.data(), &nele, &npele,
                                     &ndim, &nbint, &nbfloat, &nindex, indexident.data(), indexval.data(), idele.data(),
                                     pid.data(), ic.data(), iparam.data(), fparam.data(), mbunit.data(), mdunit.data(),
                                     ubid.data(), ubexp.data(), udid.data(), udexp.data(), &filter_flags,
                                     filter_params.data(), status);
        });
    }
    static Outcome read_current(std::int64_t block)
    {
        return outcome_of([&](std::int32_t* status) { *status = ConnectivitiesBlock::empty().read(block, 1); });
    }
    Outcome write_current(std::int64_t group)
    {
        const Text256 etyp = "ELEMENT";
        const Text256 etypvar = "BEAM";
        const std::int32_t indexic = 3;
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_CONNECTIVITIES(&group, etyp.data(), etypelem.data(), etyppart.data(), etypnode.data(),
                                     etypvar.data(), &nele, &npele, &ndim, &nbint, &nbfloat, &nindex, &indexic,
                                     indexident.data(), indexval.data(), idele.data(), pid.data(), ic.data(),
                                     iparam.data(), fparam.data(), &state, &filter_flags, filter_params.data(),
                                     &float_size, status);
        });
    }
};

inline auto fields_of(const Connectivities* /*unused*/)
{
    using B = Connectivities;
    constexpr int a = section::attributes;
    return std::tuple_cat(
        std::make_tuple(Field{"etypelem", a, &B::etypelem}, Field{"etyppart", a, &B::etyppart},
                        Field{"etypnode", a, &B::etypnode}, Field{"nele", a, &B::nele}, Field{"npele", a, &B::npele},
                        Field{"ndim", a, &B::ndim}, Field{"nbint", a, &B::nbint}, Field{"nbfloat", a, &B::nbfloat}),
        index_fields<B>(),
        std::make_tuple(Field{"idele", section::identifiers, &B::idele}, Field{"pid", section::identifiers, &B::pid},
                        Field{"ic", section::values, &B::ic}, Field{"iparam", section::values, &B::iparam},
                        Field{"fparam", section::values, &B::fparam}),
        unit_fields<B>(), filters_of<B>());
}

struct Collector : StateCall {
    static constexpr int key = 400;
    static constexpr bool is_record = true, is_state = true, tells_key = false;
    static constexpr const char* name = "collector";
    static std::string keys() { return "400"; }
    static std::string pass_error(int /*pass*/) { return pass_line(400); }
    static const char* path() { return "singlestate/state000000000012/collector/SET/kobblock"; }

    std::int32_t nenttot = 6; ///< the reader's; the writer computes it
    Text256 etypcoll = "SET";
    std::int32_t ncoll = 2;
    std::int32_t ntyp = 2;
    Ints idcoll{41, 42};
    Texts256 etyp{"NODE", "ELEMENT"};
    Ints nent{2, 1, 0, 3};
    Ints entid{1, 2, 100, 200, 201, 202};

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_COLLECTOR(&group, etypcoll.data(), &ncoll, &ntyp, &nindex, indexident.data(), indexval.data(),
                                 idcoll.data(), etyp.data(), nent.data(), entid.data(), &state, &filter_flags,
                                 filter_params.data(), &float_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_COLLECTOR(&block, &pass, &nenttot, etypcoll.data(), &ncoll, &ntyp, &nindex, indexident.data(),
                                indexval.data(), idcoll.data(), etyp.data(), nent.data(), entid.data(), &filter_flags,
                                filter_params.data(), status);
        });
    }
    Outcome read_current(std::int64_t block)
    {
        const std::int32_t pass = 1;
        std::int32_t indexic = 0;
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_COLLECTOR(&block, &pass, &nenttot, etypcoll.data(), &ncoll, &ntyp, &nindex, &indexic, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, status);
        });
    }
    Outcome write_current(std::int64_t group)
    {
        const std::int32_t indexic = 3;
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_COLLECTOR(&group, etypcoll.data(), &ncoll, &ntyp, &nindex, &indexic, indexident.data(),
                                indexval.data(), idcoll.data(), etyp.data(), nent.data(), entid.data(), &state,
                                &filter_flags, filter_params.data(), &float_size, status);
        });
    }
};

inline auto fields_of(const Collector* /*unused*/)
{
    using B = Collector;
    constexpr int a = section::attributes;
    return std::tuple_cat(
        std::make_tuple(Field{"nenttot", a, &B::nenttot}, Field{"etypcoll", a, &B::etypcoll},
                        Field{"ncoll", a, &B::ncoll}, Field{"ntyp", a, &B::ntyp}),
        index_fields<B>(),
        std::make_tuple(Field{"idcoll", section::identifiers, &B::idcoll}, Field{"etyp", section::values, &B::etyp},
                        Field{"nent", section::values, &B::nent}, Field{"entid", section::values, &B::entid}),
        filters_of<B>());
}

// ---- results

struct ActivFlags : StateCall {
    static constexpr int key = 2100;
    static constexpr bool is_record = true, is_state = true, tells_key = false;
    static constexpr const char* name = "activflags";
    static std::string keys() { return "2100"; }
    static std::string pass_error(int /*pass*/) { return pass_line(2100); }
    static const char* path() { return "singlestate/state000000000012/activflags/ELEMENT/kobblock"; }

    Text256 etyp = "ELEMENT";
    std::int32_t nent = 3;
    Ints entid{30, 10, 20};
    Ints flags{1, 0, -4};

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_ACTIVFLAGS(&group, etyp.data(), &nent, &nindex, indexident.data(), indexval.data(), entid.data(),
                                  flags.data(), &state, &filter_flags, filter_params.data(), &float_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_ACTIVFLAGS(&block, &pass, etyp.data(), &nent, &nindex, indexident.data(), indexval.data(),
                                 entid.data(), flags.data(), &filter_flags, filter_params.data(), status);
        });
    }
    Outcome read_current(std::int64_t block)
    {
        const std::int32_t pass = 1;
        std::int32_t indexic = 0;
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_ACTIVFLAGS(&block, &pass, etyp.data(), &nent, &nindex, &indexic, nullptr, nullptr, nullptr,
                                nullptr, nullptr, nullptr, status);
        });
    }
    Outcome write_current(std::int64_t group)
    {
        const std::int32_t indexic = 3;
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_ACTIVFLAGS(&group, etyp.data(), &nent, &nindex, &indexic, indexident.data(), indexval.data(),
                                 entid.data(), flags.data(), &state, &filter_flags, filter_params.data(), &float_size,
                                 status);
        });
    }
};

inline auto fields_of(const ActivFlags* /*unused*/)
{
    using B = ActivFlags;
    return std::tuple_cat(
        std::make_tuple(Field{"etyp", section::attributes, &B::etyp}, Field{"nent", section::attributes, &B::nent}),
        index_fields<B>(),
        std::make_tuple(Field{"entid", section::identifiers, &B::entid}, Field{"status", section::values, &B::flags}),
        filters_of<B>());
}

struct EntityResults : kob_test::EntityResults {
    static constexpr int key = 1000;
    static constexpr bool is_record = false, is_state = true, tells_key = true;
    static constexpr const char* name = "entityresults";
    static std::string keys() { return "1000 or 1001"; }
    static std::string pass_error(int pass)
    {
        return "KOB INTERNAL ERROR reading \"entityresults\" block - ipass = " + std::to_string(pass) + "\n";
    }
    static const char* path() { return "singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/ZONE7/kobblock"; }

    std::int32_t set = -1, state = -1, value_size = 8, filter_flags = 0;
    Params filter_params{0, 0};
    std::int32_t memory_size = 8; ///< the "2" calls alone
    Piece piece{};                ///< the "2" calls alone

    EntityResults() : kob_test::EntityResults{kob_test::EntityResults::combined()} { fidglob = 0; }

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_ENTITYRESULTS(&group, etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid,
                                     etypframe.data(), &fswitch, &dmpswitch, &nindex, indexident.data(),
                                     indexval.data(), entid.data(), &fidglob, fid.data(), operators.data(),
                                     weight.data(), res.data(), &set, &state, &filter_flags, filter_params.data(),
                                     &value_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_ENTITYRESULTS(&block, &pass, etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid,
                                    etypframe.data(), &fswitch, &dmpswitch, &nindex, indexident.data(), indexval.data(),
                                    entid.data(), &fidglob, fid.data(), operators.data(), weight.data(), res.data(),
                                    &filter_flags, filter_params.data(), status);
        });
    }
    Outcome write2(std::int64_t block, std::int32_t sections, std::int64_t shared = -1)
    {
        const std::array<std::int64_t, 2> groups{block, shared};
        const bool small = memory_size == 4;
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_ENTITYRESULTS2(
                groups.data(), &sections, nullptr, etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid,
                etypframe.data(), &fswitch, &dmpswitch, &nindex, indexident.data(), indexval.data(), entid.data(),
                &fidglob, fid.data(), operators.data(), weight.data(), Reals{res, small}, &memory_size, &filter_flags,
                filter_params.data(), &value_size, &piece.mode, piece.count.data(), piece.start.data(), status);
        });
    }
    Outcome read2(std::int64_t block, std::int32_t sections)
    {
        const bool small = memory_size == 4;
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_ENTITYRESULTS2(&block, &sections, nullptr, etyp.data(), &nent, etypvar.data(), &ncoo,
                                     etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex,
                                     indexident.data(), indexval.data(), entid.data(), &fidglob, fid.data(),
                                     operators.data(), weight.data(), Reals{res, small}, &memory_size, &filter_flags,
                                     filter_params.data(), &piece.mode, piece.count.data(), piece.start.data(), status);
        });
    }
    Outcome read_current(std::int64_t block)
    {
        return outcome_of([&](std::int32_t* status) { *status = kob_test::EntityResults::read(block, 1); });
    }
    Outcome write_current(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) { *status = kob_test::EntityResults::write(group, -1); });
    }
};

inline auto fields_of(const EntityResults* /*unused*/)
{
    using B = EntityResults;
    constexpr int a = section::attributes;
    return std::tuple_cat(
        std::make_tuple(Field{"etyp", a, &B::etyp}, Field{"nent", a, &B::nent}, Field{"etypvar", a, &B::etypvar},
                        Field{"ncoo", a, &B::ncoo}, Field{"etypzone", a, &B::etypzone}, Field{"zoneid", a, &B::zoneid},
                        Field{"etypframe", a, &B::etypframe}, Field{"fswitch", a, &B::fswitch},
                        Field{"dmpswitch", a, &B::dmpswitch}),
        index_fields<B>(),
        std::make_tuple(Field{"entid", section::identifiers, &B::entid},
                        Field{"fidglob", section::one_frame, &B::fidglob}, Field{"fid", section::frames, &B::fid},
                        Field{"operator", section::combination, &B::operators},
                        Field{"weight", section::combination, &B::weight}, Field{"res", section::values, &B::res}),
        filters_of<B>());
}

struct ElementResults : kob_test::ElementResults {
    static constexpr int key = 1100;
    static constexpr bool is_record = false, is_state = true, tells_key = true;
    static constexpr const char* name = "elementresults";
    static std::string keys() { return "1100 or 1101"; }
    static std::string pass_error(int /*pass*/) { return pass_line(1100, 1101); }
    static const char* path() { return "singlestate/state000000000012/elementresults/HEXA8/STRESS/ZONE5/kobblock"; }

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_ELEMENTRESULTS(&group, etypelem.data(), &nele, etypvar.data(), &ncoo, &numl, &ndim,
                                      etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex,
                                      indexident.data(), indexval.data(), idele.data(), &fidglob, fid.data(),
                                      eloc.data(), operators.data(), weight.data(), res.data(), &set, &state,
                                      &filter_flags, filter_params.data(), &value_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_ELEMENTRESULTS(&block, &pass, etypelem.data(), &nele, etypvar.data(), &ncoo, &numl, &ndim,
                                     etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex,
                                     indexident.data(), indexval.data(), idele.data(), &fidglob, fid.data(),
                                     eloc.data(), operators.data(), weight.data(), res.data(), &filter_flags,
                                     filter_params.data(), status);
        });
    }
    Outcome read_current(std::int64_t block) { return kob_test::ElementResults::read(block, 1); }
    Outcome write_current(std::int64_t group) { return kob_test::ElementResults::write(&group); }
};

struct MultiElementResults : kob_test::MultiElementResults {
    static constexpr int key = 1150;
    static constexpr bool is_record = false, is_state = true, tells_key = true;
    static constexpr const char* name = "multielementresults";
    static std::string keys() { return "1150 or 1151"; }
    static std::string pass_error(int /*pass*/) { return pass_line(1150, 1151); }
    static const char* path() { return "multistate/TIME/multielementresults/HEXA8/STRESS/ZONE5/kobblock"; }

    explicit MultiElementResults(std::int32_t states = 2, std::int32_t size = 8)
        : kob_test::MultiElementResults{states, size}
    {
    }

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_MULTIELEMENTRESULTS(&group, series.data(), etypelem.data(), &nele, etypvar.data(), &ncoo, &numl,
                                           &ndim, etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch,
                                           &nindex, indexident.data(), indexval.data(), idele.data(), &fidglob,
                                           fid.data(), eloc.data(), operators.data(), weight.data(), res.data(), &set,
                                           &n, &filter_flags, filter_params.data(), &value_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_MULTIELEMENTRESULTS(&block, &pass, series.data(), etypelem.data(), &nele, etypvar.data(), &ncoo,
                                          &numl, &ndim, etypzone.data(), &zoneid, etypframe.data(), &fswitch,
                                          &dmpswitch, &nindex, &nstate, indexident.data(), indexval.data(),
                                          idele.data(), &fidglob, fid.data(), eloc.data(), operators.data(),
                                          weight.data(), res.data(), &filter_flags, filter_params.data(), status);
        });
    }
    Outcome read_current(std::int64_t block) { return kob_test::MultiElementResults::read(block, 1); }
    Outcome write_current(std::int64_t group) { return kob_test::MultiElementResults::write(&group); }
};

struct MultiActivFlags : kob_test::MultiActivFlags {
    static constexpr int key = 2150;
    static constexpr bool is_record = false, is_state = true, tells_key = false;
    static constexpr const char* name = "multiactivflags";
    static std::string keys() { return "2150"; }
    static std::string pass_error(int /*pass*/) { return pass_line(2150); }
    static const char* path() { return "multistate/TIME/multiactivflags/CONTACT/kobblock"; }

    explicit MultiActivFlags(std::int32_t states = 2) : kob_test::MultiActivFlags{states} {}

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_MULTIACTIVFLAGS(&group, series.data(), etyp.data(), &nent, &nindex, indexident.data(),
                                       indexval.data(), entid.data(), flags.data(), &n, &filter_flags,
                                       filter_params.data(), &float_size, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_MULTIACTIVFLAGS(&block, &pass, series.data(), etyp.data(), &nent, &nindex, &nstate,
                                      indexident.data(), indexval.data(), entid.data(), flags.data(), &filter_flags,
                                      filter_params.data(), status);
        });
    }
    Outcome read_current(std::int64_t block) { return kob_test::MultiActivFlags::read(block, 1); }
    Outcome write_current(std::int64_t group) { return kob_test::MultiActivFlags::write(&group); }
};

struct MultiEntityResults : kob_test::MultiEntityResults {
    static constexpr int key = 1050;
    static constexpr bool is_record = false, is_state = true, tells_key = true;
    static constexpr const char* name = "multientityresults";
    static std::string keys() { return "1050 or 1051"; }
    static std::string pass_error(int pass)
    {
        return "KOB INTERNAL ERROR reading \"multientityresults\" block - ipass = " + std::to_string(pass) + "\n";
    }
    static const char* path() { return "multistate/TIME/multientityresults/NODE/DISPLACEMENT/ZONE5/kobblock"; }

    explicit MultiEntityResults(std::int32_t states = 2, std::int32_t size = 8)
        : kob_test::MultiEntityResults{states, size}
    {
    }

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_MULTIENTITYRESULTS(&group, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo,
                                          etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex,
                                          indexident.data(), Reals{indexval, floats()}, entid.data(), &fidglob,
                                          fid.data(), operators.data(), Reals{weight, floats()}, Reals{res, floats()},
                                          &set, &s, &filter_flags, filter_params.data(), &value_size, status);
        });
    }
    Outcome write_c(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_MULTIENTITYRESULTC(
                &group, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid,
                etypframe.data(), &fswitch, &dmpswitch, &nindex, indexident.data(), Reals{indexval, floats()},
                entid.data(), &fidglob, fid.data(), operators.data(), Reals{weight, floats()}, Reals{res, floats()},
                &set, &s, &filter_flags, filter_params.data(), &value_size, &mode, count.data(), start.data(), status);
        });
    }
    /// Into a group that the test opened; `states` receives the number of states.
    Outcome write2(std::int64_t block, std::int32_t memory_size, std::int32_t& states)
    {
        const std::array<std::int64_t, 2> groups{block, -1};
        const bool small = memory_size == 4;
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_MULTIENTITYRESULTS2(groups.data(), nullptr, nullptr, series.data(), etyp.data(), &nent,
                                           etypvar.data(), &ncoo, etypzone.data(), &zoneid, etypframe.data(), &fswitch,
                                           &dmpswitch, &nindex, indexident.data(), Reals{indexval, small}, entid.data(),
                                           &fidglob, fid.data(), operators.data(), Reals{weight, small},
                                           Reals{res, small}, &memory_size, &s, &filter_flags, filter_params.data(),
                                           &value_size, &mode, count.data(), start.data(), &states, status);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_MULTIENTITYRESULTS(&block, &pass, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo,
                                         etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex,
                                         &nstate, indexident.data(), indexval.data(), entid.data(), &fidglob,
                                         fid.data(), operators.data(), weight.data(), res.data(), &filter_flags,
                                         filter_params.data(), status);
        });
    }
    Outcome read_c(std::int64_t block, std::int32_t pass)
    {
        const bool small = (pass & four_byte_memory) != 0;
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_MULTIENTITYRESULTC(
                &block, &pass, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid,
                etypframe.data(), &fswitch, &dmpswitch, &nindex, &nstate, indexident.data(), Reals{indexval, small},
                entid.data(), &fidglob, fid.data(), operators.data(), Reals{weight, small}, Reals{res, small},
                &filter_flags, filter_params.data(), &mode, count.data(), start.data(), status);
        });
    }
    Outcome read2(std::int64_t block, std::int32_t sections, std::int32_t memory_size = 8)
    {
        const bool small = memory_size == 4;
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_MULTIENTITYRESULTS2(&block, &sections, nullptr, series.data(), etyp.data(), &nent, etypvar.data(),
                                          &ncoo, etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch,
                                          &nindex, &nstate, indexident.data(), Reals{indexval, small}, entid.data(),
                                          &fidglob, fid.data(), operators.data(), Reals{weight, small},
                                          Reals{res, small}, &memory_size, &filter_flags, filter_params.data(), &mode,
                                          count.data(), start.data(), status);
        });
    }
    Outcome read_current(std::int64_t block) { return kob_test::MultiEntityResults::read(block, 1); }
    Outcome write_current(std::int64_t group) { return kob_test::MultiEntityResults::write(&group); }
};

// ---- matrices

struct DenseMatrix : kob_test::DenseMatrix {
    static constexpr int key = 10000;
    static constexpr bool is_record = false, is_state = true, tells_key = true;
    static constexpr const char* name = "densematrix";
    static std::string keys() { return "10000 or 10001"; }
    static std::string pass_error(int /*pass*/) { return pass_line(10000, 10001); }
    static const char* path()
    {
        return "singlestate/state000000000012/densematrix/SUPERELEMENT/STIFFNESS/id17/kobblock";
    }

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_DENSEMATRIX(&group, etyp.data(), &entid, etypvar.data(), &nrow, &ncolumn, &nindex,
                                   indexident.data(), indexval.data(), val.data(), &state, &filter_flags,
                                   filter_params.data(), &value_size, &mode, count.data(), start.data(), status,
                                   text_length, text_length);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_DENSEMATRIX(&block, &pass, etyp.data(), &entid, etypvar.data(), &nrow, &ncolumn, &nindex,
                                  indexident.data(), indexval.data(), val.data(), &filter_flags, filter_params.data(),
                                  count.data(), start.data(), status, text_length, text_length);
        });
    }
    Outcome read_current(std::int64_t block) { return kob_test::DenseMatrix::read(block, 1); }
    Outcome write_current(std::int64_t group) { return kob_test::DenseMatrix::write(&group); }
};

struct TriangularMatrix : kob_test::TriangularMatrix {
    static constexpr int key = 10100;
    static constexpr bool is_record = false, is_state = true, tells_key = true;
    static constexpr const char* name = "triangularmatrix";
    static std::string keys() { return "10100 or 10101"; }
    static std::string pass_error(int /*pass*/) { return pass_line(10100, 10101); }
    static const char* path()
    {
        return "singlestate/state000000000012/triangularmatrix/SUPERELEMENT/STIFFNESS/id17/kobblock";
    }

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_TRIANGULARMATRIX(&group, etyp.data(), &entid, etypvar.data(), &nsize, &matrixtype, &nindex,
                                        indexident.data(), indexval.data(), val.data(), &state, &filter_flags,
                                        filter_params.data(), &value_size, &mode, count.data(), start.data(), status,
                                        text_length, text_length);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_TRIANGULARMATRIX(&block, &pass, etyp.data(), &entid, etypvar.data(), &nsize, &matrixtype, &nindex,
                                       indexident.data(), indexval.data(), val.data(), &filter_flags,
                                       filter_params.data(), count.data(), start.data(), status, text_length,
                                       text_length);
        });
    }
    Outcome read_current(std::int64_t block) { return kob_test::TriangularMatrix::read(block, 1); }
    Outcome write_current(std::int64_t group) { return kob_test::TriangularMatrix::write(&group); }
};

struct SparseMatrix : kob_test::SparseMatrix {
    static constexpr int key = 10200;
    static constexpr bool is_record = false, is_state = true, tells_key = true;
    static constexpr const char* name = "sparsematrix";
    static std::string keys() { return "10200 or 10201"; }
    static std::string pass_error(int /*pass*/) { return pass_line(10200, 10201); }
    static const char* path()
    {
        return "singlestate/state000000000012/sparsematrix/SUPERELEMENT/STIFFNESS/id17/kobblock";
    }

    Outcome write(std::int64_t group)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_WRITE_SPARSEMATRIX(&group, etyp.data(), &entid, etypvar.data(), &nrow, &nnz, &nindex,
                                    indexident.data(), indexval.data(), colind.data(), rowptr.data(), val.data(),
                                    &state, &filter_flags, filter_params.data(), &value_size, &mode, count.data(),
                                    start.data(), status, text_length, text_length);
        });
    }
    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB1_READ_SPARSEMATRIX(&block, &pass, etyp.data(), &entid, etypvar.data(), &nrow, &nnz, &nindex,
                                   indexident.data(), indexval.data(), colind.data(), rowptr.data(), val.data(),
                                   &filter_flags, filter_params.data(), count.data(), start.data(), status, text_length,
                                   text_length);
        });
    }
    Outcome read_current(std::int64_t block) { return kob_test::SparseMatrix::read(block, 1); }
    Outcome write_current(std::int64_t group) { return kob_test::SparseMatrix::write(&group); }
};

/// What an older reader has to hand back: these sections, and nothing else touched; there is no index code.
template <class Block> Block expected_of(const Block& written, int sections)
{
    Block block = expected_from(written, sections);
    if constexpr (requires { block.indexic; }) kob_test::make_untouched(block.indexic);
    return block;
}
constexpr int everything = section::all | section::filters;

} // namespace kob_test::older
