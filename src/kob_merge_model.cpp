// SPDX-License-Identifier: BSD-3-Clause
// The merger's calls of the model blocks' readers and writers.
#include "kob_merge_model.hpp"

#include "kob_dp.h"
#include "kob_merge_call.hpp"

namespace kob::merge {
namespace {

/// An array of texts comes back at its stored width, which may be less than the block's length says.
void adopt_stored_width(StoredBlock& block, const char* name, std::int32_t& length)
{
    if (const std::int32_t width = stored_width(block, name); width > 0) {
        length = width;
    }
}

/// Titles have the width that the file says, in the older layout that of a field.
void settle_titles(StoredBlock& block, bool only_attributes, std::int32_t& length, std::vector<char>& titles)
{
    if (!block.is_current()) {
        length = name_length;
        if (!only_attributes) {
            widen_names(block, "title", titles);
        }
    } else if (only_attributes) {
        adopt_stored_width(block, "title", length);
    }
}

/// Do the counts of a list's pieces add up to its length?
bool add_up(const std::vector<std::int32_t>& counts, std::size_t length)
{
    std::int64_t sum = 0;
    for (const std::int32_t count : counts) {
        if (count < 0) {
            return false;
        }
        sum += count;
    }
    return sum == static_cast<std::int64_t>(length);
}

} // namespace

// ---- system and index

std::int32_t SystemBlock::read(StoredBlock& block)
{
    fit(ubtyp, text_bytes(block, "ubtyp"));
    fit(ubnam, text_bytes(block, "ubnam"));
    fit(udnam, text_bytes(block, "udnam"));
    fit(ubid, stored(block, "ubid"));
    fit(ubshift, stored(block, "ubshift"));
    fit(ubcon, stored(block, "ubcon"));
    fit(udid, stored(block, "udid"));
    fit(udscal, stored(block, "udscal"));
    fit(ndbunit, stored(block, "ndbunit"));
    fit(udbid, stored(block, "udbid"));
    fit(udbexp, stored(block, "udbexp"));
    std::int32_t result = 0;
    call(block.generation(), KOB_READ_SYSTEM, KOB1_READ_SYSTEM, block.handle(), &pass, title.data(), sys.data(),
         solver_name.data(), solver_vers.data(), cdate.data(), ctime.data(), mdate.data(), mtime.data(), &nbunit,
         &ndunit, ubid.data(), ubtyp.data(), ubnam.data(), ubshift.data(), ubcon.data(), udid.data(), udnam.data(),
         udscal.data(), ndbunit.data(), udbid.data(), udbexp.data(), &compression.flags, compression.params.data(),
         &result);
    widen_names(block, "ubtyp", ubtyp);
    widen_names(block, "ubnam", ubnam);
    widen_names(block, "udnam", udnam);
    return result;
}

std::int32_t SystemBlock::write(const Destination& to) const
{
    std::int32_t result = 0;
    call(to.generation, KOB_WRITE_SYSTEM, KOB1_WRITE_SYSTEM, &to.group, title.data(), sys.data(), solver_name.data(),
         solver_vers.data(), cdate.data(), ctime.data(), mdate.data(), mtime.data(), &nbunit, &ndunit, ubid.data(),
         ubtyp.data(), ubnam.data(), ubshift.data(), ubcon.data(), udid.data(), udnam.data(), udscal.data(),
         ndbunit.data(), udbid.data(), udbexp.data(), &to.compression.flags, to.compression.params.data(),
         &to.float_size, &result);
    return result;
}

BlockPath SystemBlock::path(std::int32_t, std::int32_t) { return {{constant}, {kind::system.name}}; }

void Units::make_room(StoredBlock& block)
{
    fit(mbunit, stored(block, "mbunit"));
    fit(mdunit, stored(block, "mdunit"));
    fit(ubid, stored(block, "ubid"));
    fit(ubexp, stored(block, "ubexp"));
    fit(udid, stored(block, "udid"));
    fit(udexp, stored(block, "udexp"));
}

bool Units::is_whole(std::int32_t count) const
{
    const auto values = static_cast<std::size_t>(std::max(count, 0));
    return mbunit.size() == values && mdunit.size() == values && add_up(mbunit, ubid.size()) &&
           add_up(mbunit, ubexp.size()) && add_up(mdunit, udid.size()) && add_up(mdunit, udexp.size());
}

std::int32_t IndexBlock::read(StoredBlock& block)
{
    std::int32_t result = 0;
    if (block.is_current()) {
        KOB_READ_INDEX(block.handle(), &pass, &nindex, etypvar.data(), nullptr, nullptr, &result);
        return result;
    }
    units.make_room(block);
    fit(etypindex, text_bytes(block, "etypindex"));
    KOB1_READ_INDEX(block.handle(), &two_passes.values, &nindex, etypindex.data(), units.mbunit.data(),
                    units.mdunit.data(), units.ubid.data(), units.ubexp.data(), units.udid.data(), units.udexp.data(),
                    &compression.flags, compression.params.data(), &result);
    widen_names(block, "etypindex", etypindex);
    return result < 0 || units.is_whole(nindex) ? result : inconsistent_block;
}

std::int32_t IndexBlock::write(const Destination& to) const
{
    std::int32_t result = 0;
    if (to.generation == Generation::current) {
        KOB_WRITE_INDEX(&to.group, &nindex, etypvar.data(), nullptr, nullptr, &result);
    } else {
        KOB1_WRITE_INDEX(&to.group, &nindex, etypindex.data(), units.mbunit.data(), units.mdunit.data(),
                         units.ubid.data(), units.ubexp.data(), units.udid.data(), units.udexp.data(),
                         &to.compression.flags, to.compression.params.data(), &to.float_size, &result);
    }
    return result;
}

BlockPath IndexBlock::path(std::int32_t, std::int32_t) { return {{constant}, {kind::index.name}}; }

// ---- variables

std::int32_t VariableGroup::read(StoredBlock& block)
{
    fit(cnt, stored(block, "cnt"));
    fit(offs, stored(block, "offs"));
    fit(varkey, text_bytes(block, "varkey"));
    std::int32_t result = 0;
    KOB_READ_VARIABLEGROUP(block.handle(), &pass, nullptr, etypvar.data(), &nvar, &ncoo, cnt.data(), offs.data(),
                           varkey.data(), &compression.flags, compression.params.data(), &result);
    widen_names(block, "varkey", varkey);
    return result;
}

std::int32_t VariableGroup::write(const Destination& to) const
{
    std::int32_t result = 0;
    KOB_WRITE_VARIABLEGROUP(&to.group, nullptr, nullptr, etypvar.data(), &nvar, &ncoo, cnt.data(), offs.data(),
                            varkey.data(), &to.compression.flags, to.compression.params.data(), &result);
    return result;
}

BlockPath VariableGroup::path(std::int32_t, std::int32_t) const
{
    return {{constant}, {kind::variable_group.name, etypvar.data()}};
}

std::int32_t Variable::read(StoredBlock& block)
{
    fit(mbunit, stored(block, "mbunit"));
    fit(mdunit, stored(block, "mdunit"));
    fit(ubid, stored(block, "ubid"));
    fit(ubexp, stored(block, "ubexp"));
    fit(udid, stored(block, "udid"));
    fit(udexp, stored(block, "udexp"));
    fit(subscr, stored(block, "subscr"));
    fit(subscnt, stored(block, "subscnt"));
    fit(subsoffs, stored(block, "subsoffs"));
    fit(vmap, stored(block, "vmap"));
    std::int32_t result = 0;
    KOB_READ_VARIABLE(block.handle(), &pass, nullptr, varkey.data(), varclass.data(), varnam.data(), &ncoo, &rank,
                      &ndim, &tensor, type.data(), &lvmap, &subslen, &lenb, &lend, mbunit.data(), mdunit.data(),
                      ubid.data(), ubexp.data(), udid.data(), udexp.data(), subscr.data(), subscnt.data(),
                      subsoffs.data(), vmap.data(), &compression.flags, compression.params.data(), &result);
    // The writer counts the factors by itself.
    const bool is_whole = add_up(mbunit, ubid.size()) && add_up(mdunit, udid.size());
    return result < 0 || is_whole ? result : inconsistent_block;
}

std::int32_t Variable::write(const Destination& to) const
{
    std::int32_t result = 0;
    KOB_WRITE_VARIABLE(&to.group, nullptr, nullptr, varkey.data(), varclass.data(), varnam.data(), &ncoo, &rank, &ndim,
                       &tensor, type.data(), &lvmap, &subslen, mbunit.data(), mdunit.data(), ubid.data(), ubexp.data(),
                       udid.data(), udexp.data(), subscr.data(), subscnt.data(), subsoffs.data(), vmap.data(),
                       &to.compression.flags, to.compression.params.data(), &to.float_size, &result);
    return result;
}

BlockPath Variable::path(std::int32_t, std::int32_t) const
{
    return {{constant}, {kind::variable.name, varkey.data()}};
}

std::int32_t OlderVariables::read(StoredBlock& block)
{
    units.make_room(block);
    fit(cname, text_bytes(block, "cname"));
    fit(cid, stored(block, "cid"));
    fit(comp, stored(block, "comp"));
    std::int32_t result = 0;
    KOB1_READ_VARIABLES(block.handle(), &pass, etypvar.data(), &idtrans, &rank, &ndim, &ncoo, units.mbunit.data(),
                        units.mdunit.data(), units.ubid.data(), units.ubexp.data(), units.udid.data(),
                        units.udexp.data(), cname.data(), cid.data(), comp.data(), &compression.flags,
                        compression.params.data(), &result);
    widen_names(block, "cname", cname);
    return result < 0 || units.is_whole(ncoo) ? result : inconsistent_block;
}

std::int32_t OlderVariables::write(const Destination& to) const
{
    std::int32_t result = 0;
    KOB1_WRITE_VARIABLES(&to.group, etypvar.data(), &idtrans, &rank, &ndim, &ncoo, units.mbunit.data(),
                         units.mdunit.data(), units.ubid.data(), units.ubexp.data(), units.udid.data(),
                         units.udexp.data(), cname.data(), cid.data(), comp.data(), &to.compression.flags,
                         to.compression.params.data(), &to.float_size, &result);
    return result;
}

BlockPath OlderVariables::path(std::int32_t, std::int32_t) const
{
    return {{constant}, {kind::older_variables.name, etypvar.data()}};
}

// ---- text

std::int32_t Text::read(StoredBlock& block)
{
    index.make_room(block);
    fit(line, text_bytes(block, "line"));
    const std::int32_t reads = whole_pass<Text>(block.generation());
    std::int32_t result = 0;
    call(block.generation(), KOB_READ_TEXT, KOB1_READ_TEXT, block.handle(), &reads, etyptext.data(), &nlines, &length,
         current_only(&index.nindex, &index.indexic, index.indexident.data(), index.indexval.data()), line.data(),
         &compression.flags, compression.params.data(), &result);
    adopt_stored_width(block, "line", length);
    return result;
}

std::int32_t Text::write(const Destination& to) const
{
    std::int32_t result = 0;
    call(to.generation, KOB_WRITE_TEXT, KOB1_WRITE_TEXT, &to.group, etyptext.data(), &nlines, &length,
         current_only(&index.nindex, &index.indexic, index.indexident.data(), index.indexval.data()), line.data(),
         current_only(&to.state), &to.compression.flags, to.compression.params.data(), current_only(&to.float_size),
         &result);
    return result;
}

BlockPath Text::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind::text.name, etyptext.data()}};
}

// ---- connectivities

void Connectivities::make_room(StoredBlock& block)
{
    index.make_room(block);
    fit(idele, stored(block, "idele"));
    fit(pid, stored(block, "pid"));
    fit(ic, stored(block, "ic"));
    fit(iparam, stored(block, "iparam"));
    fit(fparam, stored(block, "fparam"));
    if (!block.is_current()) {
        units.make_room(block);
    }
}

std::int32_t Connectivities::read(StoredBlock& block, std::int32_t sections)
{
    std::int32_t result = 0;
    call(block.generation(), KOB_READ_CONNECTIVITIES, KOB1_READ_CONNECTIVITIES, block.handle(), &sections,
         current_only(etyp.data()), etypelem.data(), etyppart.data(), etypnode.data(), current_only(etypvar.data()),
         &nele, &npele, &ndim, &nbint, &nbfloat, &index.nindex, current_only(&index.indexic), index.indexident.data(),
         index.indexval.data(), idele.data(), pid.data(), ic.data(), iparam.data(), fparam.data(),
         older_only(units.mbunit.data(), units.mdunit.data(), units.ubid.data(), units.ubexp.data(), units.udid.data(),
                    units.udexp.data()),
         &compression.flags, compression.params.data(), &result);
    if (block.is_current()) {
        return result;
    }
    etyp = etypelem; // all that this layout knows
    if (sections == older_passes.attributes || result < 0) {
        return result;
    }
    return units.is_whole(nbfloat) ? result : inconsistent_block;
}

std::int32_t Connectivities::write(const Destination& to) const
{
    std::int32_t result = 0;
    call(to.generation, KOB_WRITE_CONNECTIVITIES, KOB1_WRITE_CONNECTIVITIES, &to.group, current_only(etyp.data()),
         etypelem.data(), etyppart.data(), etypnode.data(), current_only(etypvar.data()), &nele, &npele, &ndim, &nbint,
         &nbfloat, &index.nindex, current_only(&index.indexic), index.indexident.data(), index.indexval.data(),
         idele.data(), pid.data(), ic.data(), iparam.data(), fparam.data(),
         older_only(units.mbunit.data(), units.mdunit.data(), units.ubid.data(), units.ubexp.data(), units.udid.data(),
                    units.udexp.data()),
         &to.state, &to.compression.flags, to.compression.params.data(), &to.float_size, &result);
    return result;
}

BlockPath Connectivities::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind::connectivities.name, etypelem.data()}};
}

// ---- activation flags

void ActivationFlags::make_room(StoredBlock& block)
{
    index.make_room(block);
    fit(entid, stored(block, "entid"));
    fit(status, stored(block, "status"));
}

std::int32_t ActivationFlags::read(StoredBlock& block, std::int32_t pass)
{
    std::int32_t result = 0;
    call(block.generation(), KOB_READ_ACTIVFLAGS, KOB1_READ_ACTIVFLAGS, block.handle(), &pass, etyp.data(), &nent,
         &index.nindex, current_only(&index.indexic), index.indexident.data(), index.indexval.data(), entid.data(),
         status.data(), &compression.flags, compression.params.data(), &result);
    return result;
}

std::int32_t ActivationFlags::write(const Destination& to) const
{
    std::int32_t result = 0;
    call(to.generation, KOB_WRITE_ACTIVFLAGS, KOB1_WRITE_ACTIVFLAGS, &to.group, etyp.data(), &nent, &index.nindex,
         current_only(&index.indexic), index.indexident.data(), index.indexval.data(), entid.data(), status.data(),
         &to.state, &to.compression.flags, to.compression.params.data(), &to.float_size, &result);
    return result;
}

BlockPath ActivationFlags::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind::activation_flags.name, etyp.data()}};
}

// ---- parts

void Parts::make_room(StoredBlock& block)
{
    index.make_room(block);
    fit(pid, stored(block, "pid"));
    fit(mid, stored(block, "mid"));
    fit(mtyp, stored(block, "mtyp"));
    fit(pcol, stored(block, "pcol"));
    fit(pvtyp, stored(block, "pvtyp"));
    fit(title, text_bytes(block, "title"));
}

std::int32_t Parts::read(StoredBlock& block, std::int32_t sections)
{
    std::int32_t result = 0;
    call(block.generation(), KOB_READ_PARTS, KOB1_READ_PARTS, block.handle(), &sections, etyppart.data(), &npart, &off,
         current_only(&length), &index.nindex, current_only(&index.indexic), index.indexident.data(),
         index.indexval.data(), pid.data(), title.data(), mid.data(), mtyp.data(), pcol.data(),
         older_only(pvtyp.data()), &compression.flags, compression.params.data(), &result);
    has_pvtyp = !block.is_current();
    settle_titles(block, sections == passes.attributes, length, title);
    return result;
}

std::int32_t Parts::write(const Destination& to) const
{
    std::int32_t result = 0;
    call(to.generation, KOB_WRITE_PARTS, KOB1_WRITE_PARTS, &to.group, etyppart.data(), &npart, &off,
         current_only(&length), &index.nindex, current_only(&index.indexic), index.indexident.data(),
         index.indexval.data(), pid.data(), title.data(), mid.data(), mtyp.data(), pcol.data(),
         older_only(pvtyp.data()), &to.state, &to.compression.flags, to.compression.params.data(), &to.float_size,
         &result);
    return result;
}

BlockPath Parts::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind::parts.name, etyppart.data()}};
}

// ---- attributes and identifiers

void EntityList::make_room(StoredBlock& block)
{
    index.make_room(block);
    fit(entid, stored(block, "entid"));
    fit(uid, stored(block, "uid"));
    fit(title, text_bytes(block, "title"));
}

std::int32_t EntityList::read(StoredBlock& block, std::int32_t sections)
{
    const auto current = kind.key == kind::attributes.key ? KOB_READ_ATTRIBUTES : KOB_READ_IDENTIFIERS;
    std::int32_t result = 0;
    call(block.generation(), current, KOB1_READ_ATTRIBUTES, block.handle(), &sections, etyp.data(), &nent, &nuid,
         current_only(&length), &index.nindex, current_only(&index.indexic), index.indexident.data(),
         index.indexval.data(), entid.data(), title.data(), uid.data(), &compression.flags, compression.params.data(),
         &result);
    settle_titles(block, sections == passes.attributes, length, title);
    return result;
}

std::int32_t EntityList::write(const Destination& to) const
{
    const auto current = kind.key == kind::attributes.key ? KOB_WRITE_ATTRIBUTES : KOB_WRITE_IDENTIFIERS;
    std::int32_t result = 0;
    call(to.generation, current, KOB1_WRITE_ATTRIBUTES, &to.group, etyp.data(), &nent, &nuid, current_only(&length),
         &index.nindex, current_only(&index.indexic), index.indexident.data(), index.indexval.data(), entid.data(),
         title.data(), uid.data(), &to.state, &to.compression.flags, to.compression.params.data(), &to.float_size,
         &result);
    return result;
}

BlockPath EntityList::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind.name, etyp.data()}};
}

// ---- collectors

void Collector::make_room(StoredBlock& block)
{
    index.make_room(block);
    fit(idcoll, stored(block, "idcoll"));
    fit(nent, stored(block, "nent"));
    fit(entid, stored(block, "entid"));
    fit(etyp, text_bytes(block, "etyp"));
}

std::int32_t Collector::read(StoredBlock& block, std::int32_t pass)
{
    std::int32_t result = 0;
    call(block.generation(), KOB_READ_COLLECTOR, KOB1_READ_COLLECTOR, block.handle(), &pass, &nenttot, etypcoll.data(),
         &ncoll, &ntyp, &index.nindex, current_only(&index.indexic), index.indexident.data(), index.indexval.data(),
         idcoll.data(), etyp.data(), nent.data(), entid.data(), &compression.flags, compression.params.data(), &result);
    if (pass != passes.values || result < 0) {
        return result;
    }
    widen_names(block, "etyp", etyp);
    const auto collectors = static_cast<std::size_t>(std::max(ncoll, 0));
    const auto types = static_cast<std::size_t>(std::max(ntyp, 0));
    const bool is_whole = idcoll.size() == collectors && etyp.size() == types * name_length &&
                          nent.size() == collectors * types && add_up(nent, entid.size());
    return is_whole ? result : inconsistent_block;
}

std::int32_t Collector::write(const Destination& to) const
{
    std::int32_t result = 0;
    call(to.generation, KOB_WRITE_COLLECTOR, KOB1_WRITE_COLLECTOR, &to.group, etypcoll.data(), &ncoll, &ntyp,
         &index.nindex, current_only(&index.indexic), index.indexident.data(), index.indexval.data(), idcoll.data(),
         etyp.data(), nent.data(), entid.data(), &to.state, &to.compression.flags, to.compression.params.data(),
         &to.float_size, &result);
    return result;
}

BlockPath Collector::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind::collector.name, etypcoll.data()}};
}

} // namespace kob::merge
