// SPDX-License-Identifier: BSD-3-Clause
// What result blocks of one state and of many states have in common: the tables less their states.
#pragma once

#include "kob_block.hpp"

namespace kob {

constexpr std::int32_t wrong_frame_switch = -123;

/// The sections that a pass of the entity results readers stands for; 0 for a pass that there is not.
constexpr std::int32_t sections_of_pass(std::int32_t pass, Generation generation)
{
    switch (pass) {
    case 0:
        return generation == Generation::current ? section::attributes | section::state_index : 0;
    case 1:
        return section::attributes;
    case 2:
        return section::all;
    default:
        return 0;
    }
}

/// One variable on the entities of one type in one zone.
template <class Io> struct EntityTable {
    Arg<Io, char> etyp;
    Arg<Io, std::int32_t> nent;
    Arg<Io, char> etypvar;
    Arg<Io, std::int32_t> ncoo;
    Arg<Io, char> etypzone;
    Arg<Io, std::int32_t> zoneid;
    Arg<Io, char> etypframe;
    Arg<Io, std::int32_t> fswitch;
    Arg<Io, std::int32_t> dmpswitch;
    Arg<Io, std::int32_t> entid;   ///< [nent]
    Arg<Io, std::int32_t> fidglob; ///< the frame of all entities, with fswitch 0
    Arg<Io, std::int32_t> fid;     ///< [nent] frame of each entity, with fswitch 1
    Arg<Io, char> operators;       ///< [ncoo] texts, with dmpswitch 1
    Reals<Io> weight;              ///< [nent], with dmpswitch 1
};

template <class Io> void attributes(Io& io, const EntityTable<Io>& b)
{
    io.text("etyp", b.etyp);
    io.integer("nent", b.nent);
    io.text("etypvar", b.etypvar);
    io.integer("ncoo", b.ncoo);
    io.text("etypzone", b.etypzone);
    io.integer("zoneid", b.zoneid);
    io.text("etypframe", b.etypframe);
    io.integer("fswitch", b.fswitch);
    io.integer("dmpswitch", b.dmpswitch);
}

/// `Io` may be a Linker, which walks a Writer's block.
template <class Io, class Side> void identifiers(Io& io, const EntityTable<Side>& b)
{
    io.integers("entid", b.entid, {*b.nent});
    switch (*b.fswitch) {
    case 0:
        io.single("fidglob", b.fidglob);
        break;
    case 1:
        io.integers("fid", b.fid, {*b.nent});
        break;
    default:
        io.fail(wrong_frame_switch);
        break;
    }
    if (*b.dmpswitch == 1) {
        io.texts("operator", b.operators, {*b.ncoo});
        io.exact_reals("weight", b.weight, {*b.nent});
    }
}

/// One variable on the elements of one type in one zone, at several locations of each element.
template <class Io> struct ElementTable {
    Arg<Io, char> etypelem;
    Arg<Io, std::int32_t> nele;
    Arg<Io, char> etypvar;
    Arg<Io, std::int32_t> ncoo;
    Arg<Io, std::int32_t> numl; ///< locations of an element
    Arg<Io, std::int32_t> ndim; ///< coordinates of a location
    Arg<Io, char> etypzone;
    Arg<Io, std::int32_t> zoneid;
    Arg<Io, char> etypframe;
    Arg<Io, std::int32_t> fswitch;
    Arg<Io, std::int32_t> dmpswitch;
    Arg<Io, std::int32_t> idele;   ///< [nele]
    Arg<Io, std::int32_t> fidglob; ///< the frame of all elements, with fswitch 0
    Arg<Io, std::int32_t> fid;     ///< [nele] with fswitch 1, [nele, numl] with fswitch 2
    Arg<Io, double> eloc;          ///< [numl, ndim]
    Arg<Io, char> operators;       ///< [ncoo] texts, with dmpswitch 1
    Arg<Io, double> weight;        ///< [nele], with dmpswitch 1
};

template <class Io> void attributes(Io& io, const ElementTable<Io>& b)
{
    io.text("etypelem", b.etypelem);
    io.integer("nele", b.nele);
    io.text("etypvar", b.etypvar);
    io.integer("ncoo", b.ncoo);
    io.integer("numl", b.numl);
    io.integer("ndim", b.ndim);
    io.text("etypzone", b.etypzone);
    io.integer("zoneid", b.zoneid);
    io.text("etypframe", b.etypframe);
    io.integer("fswitch", b.fswitch);
    io.integer("dmpswitch", b.dmpswitch);
}

template <class Io> void identifiers(Io& io, const ElementTable<Io>& b)
{
    if (!io.ok()) {
        return;
    }
    io.integers("idele", b.idele, {*b.nele});
    switch (*b.fswitch) {
    case 0:
        io.single("fidglob", b.fidglob);
        break;
    case 1:
        io.integers("fid", b.fid, {*b.nele});
        break;
    case 2:
        io.integers("fid", b.fid, {*b.nele, *b.numl});
        break;
    default:
        io.fail(wrong_frame_switch);
        break;
    }
    if (*b.dmpswitch == 1) {
        io.texts("operator", b.operators, {*b.ncoo});
        io.exact_reals("weight", b.weight.get(), {*b.nele});
    }
    io.exact_reals("eloc", b.eloc.get(), {*b.numl, *b.ndim});
}

} // namespace kob
