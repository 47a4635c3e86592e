// SPDX-License-Identifier: BSD-3-Clause
// The merger's calls of the model blocks' readers and writers.
#include "kob_merge_model.hpp"

#include "kob_dp.h"

namespace kob::merge {
namespace {

/// An array of texts comes back at its stored width, which may be less than the block's length says.
void adopt_stored_width(hid_t block, const char* name, std::int32_t& length)
{
    if (const std::int32_t width = stored_width(block, name); width > 0) {
        length = width;
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

std::int32_t SystemBlock::read(std::int64_t block)
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
    KOB_READ_SYSTEM(&block, &pass, title.data(), sys.data(), solver_name.data(), solver_vers.data(), cdate.data(),
                    ctime.data(), mdate.data(), mtime.data(), &nbunit, &ndunit, ubid.data(), ubtyp.data(), ubnam.data(),
                    ubshift.data(), ubcon.data(), udid.data(), udnam.data(), udscal.data(), ndbunit.data(),
                    udbid.data(), udbexp.data(), &compression.flags, compression.params.data(), &result);
    widen_names(block, "ubtyp", ubtyp);
    widen_names(block, "ubnam", ubnam);
    widen_names(block, "udnam", udnam);
    return result;
}

std::int32_t SystemBlock::write(const Destination& to) const
{
    std::int32_t result = 0;
    KOB_WRITE_SYSTEM(&to.group, title.data(), sys.data(), solver_name.data(), solver_vers.data(), cdate.data(),
                     ctime.data(), mdate.data(), mtime.data(), &nbunit, &ndunit, ubid.data(), ubtyp.data(),
                     ubnam.data(), ubshift.data(), ubcon.data(), udid.data(), udnam.data(), udscal.data(),
                     ndbunit.data(), udbid.data(), udbexp.data(), &to.compression.flags, to.compression.params.data(),
                     &to.float_size, &result);
    return result;
}

BlockPath SystemBlock::path(std::int32_t, std::int32_t) { return {{constant}, {kind::system.name}}; }

std::int32_t IndexBlock::read(std::int64_t block)
{
    std::int32_t result = 0;
    KOB_READ_INDEX(&block, &pass, &nindex, etypvar.data(), nullptr, nullptr, &result);
    return result;
}

std::int32_t IndexBlock::write(const Destination& to) const
{
    std::int32_t result = 0;
    KOB_WRITE_INDEX(&to.group, &nindex, etypvar.data(), nullptr, nullptr, &result);
    return result;
}

BlockPath IndexBlock::path(std::int32_t, std::int32_t) { return {{constant}, {kind::index.name}}; }

// ---- variables

std::int32_t VariableGroup::read(std::int64_t block)
{
    fit(cnt, stored(block, "cnt"));
    fit(offs, stored(block, "offs"));
    fit(varkey, text_bytes(block, "varkey"));
    std::int32_t result = 0;
    KOB_READ_VARIABLEGROUP(&block, &pass, nullptr, etypvar.data(), &nvar, &ncoo, cnt.data(), offs.data(), varkey.data(),
                           &compression.flags, compression.params.data(), &result);
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

std::int32_t Variable::read(std::int64_t block)
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
    KOB_READ_VARIABLE(&block, &pass, nullptr, varkey.data(), varclass.data(), varnam.data(), &ncoo, &rank, &ndim,
                      &tensor, type.data(), &lvmap, &subslen, &lenb, &lend, mbunit.data(), mdunit.data(), ubid.data(),
                      ubexp.data(), udid.data(), udexp.data(), subscr.data(), subscnt.data(), subsoffs.data(),
                      vmap.data(), &compression.flags, compression.params.data(), &result);
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

// ---- text

std::int32_t Text::read(std::int64_t block)
{
    index.make_room(block);
    fit(line, text_bytes(block, "line"));
    std::int32_t result = 0;
    KOB_READ_TEXT(&block, &pass, etyptext.data(), &nlines, &length, &index.nindex, &index.indexic,
                  index.indexident.data(), index.indexval.data(), line.data(), &compression.flags,
                  compression.params.data(), &result);
    adopt_stored_width(block, "line", length);
    return result;
}

std::int32_t Text::write(const Destination& to) const
{
    std::int32_t result = 0;
    KOB_WRITE_TEXT(&to.group, etyptext.data(), &nlines, &length, &index.nindex, &index.indexic, index.indexident.data(),
                   index.indexval.data(), line.data(), &to.state, &to.compression.flags, to.compression.params.data(),
                   &to.float_size, &result);
    return result;
}

BlockPath Text::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind::text.name, etyptext.data()}};
}

// ---- connectivities

void Connectivities::make_room(hid_t block)
{
    index.make_room(block);
    fit(idele, stored(block, "idele"));
    fit(pid, stored(block, "pid"));
    fit(ic, stored(block, "ic"));
    fit(iparam, stored(block, "iparam"));
    fit(fparam, stored(block, "fparam"));
}

std::int32_t Connectivities::read(std::int64_t block, std::int32_t sections)
{
    std::int32_t result = 0;
    KOB_READ_CONNECTIVITIES(&block, &sections, etyp.data(), etypelem.data(), etyppart.data(), etypnode.data(),
                            etypvar.data(), &nele, &npele, &ndim, &nbint, &nbfloat, &index.nindex, &index.indexic,
                            index.indexident.data(), index.indexval.data(), idele.data(), pid.data(), ic.data(),
                            iparam.data(), fparam.data(), &compression.flags, compression.params.data(), &result);
    return result;
}

std::int32_t Connectivities::write(const Destination& to) const
{
    std::int32_t result = 0;
    KOB_WRITE_CONNECTIVITIES(&to.group, etyp.data(), etypelem.data(), etyppart.data(), etypnode.data(), etypvar.data(),
                             &nele, &npele, &ndim, &nbint, &nbfloat, &index.nindex, &index.indexic,
                             index.indexident.data(), index.indexval.data(), idele.data(), pid.data(), ic.data(),
                             iparam.data(), fparam.data(), &to.state, &to.compression.flags,
                             to.compression.params.data(), &to.float_size, &result);
    return result;
}

BlockPath Connectivities::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind::connectivities.name, etypelem.data()}};
}

// ---- activation flags

void ActivationFlags::make_room(hid_t block)
{
    index.make_room(block);
    fit(entid, stored(block, "entid"));
    fit(status, stored(block, "status"));
}

std::int32_t ActivationFlags::read(std::int64_t block, std::int32_t pass)
{
    std::int32_t result = 0;
    KOB_READ_ACTIVFLAGS(&block, &pass, etyp.data(), &nent, &index.nindex, &index.indexic, index.indexident.data(),
                        index.indexval.data(), entid.data(), status.data(), &compression.flags,
                        compression.params.data(), &result);
    return result;
}

std::int32_t ActivationFlags::write(const Destination& to) const
{
    std::int32_t result = 0;
    KOB_WRITE_ACTIVFLAGS(&to.group, etyp.data(), &nent, &index.nindex, &index.indexic, index.indexident.data(),
                         index.indexval.data(), entid.data(), status.data(), &to.state, &to.compression.flags,
                         to.compression.params.data(), &to.float_size, &result);
    return result;
}

BlockPath ActivationFlags::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind::activation_flags.name, etyp.data()}};
}

// ---- parts

void Parts::make_room(hid_t block)
{
    index.make_room(block);
    fit(pid, stored(block, "pid"));
    fit(mid, stored(block, "mid"));
    fit(mtyp, stored(block, "mtyp"));
    fit(pcol, stored(block, "pcol"));
    fit(title, text_bytes(block, "title"));
}

std::int32_t Parts::read(std::int64_t block, std::int32_t sections)
{
    std::int32_t result = 0;
    KOB_READ_PARTS(&block, &sections, etyppart.data(), &npart, &off, &length, &index.nindex, &index.indexic,
                   index.indexident.data(), index.indexval.data(), pid.data(), title.data(), mid.data(), mtyp.data(),
                   pcol.data(), &compression.flags, compression.params.data(), &result);
    if (sections == passes.attributes) {
        adopt_stored_width(block, "title", length);
    }
    return result;
}

std::int32_t Parts::write(const Destination& to) const
{
    std::int32_t result = 0;
    KOB_WRITE_PARTS(&to.group, etyppart.data(), &npart, &off, &length, &index.nindex, &index.indexic,
                    index.indexident.data(), index.indexval.data(), pid.data(), title.data(), mid.data(), mtyp.data(),
                    pcol.data(), &to.state, &to.compression.flags, to.compression.params.data(), &to.float_size,
                    &result);
    return result;
}

BlockPath Parts::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind::parts.name, etyppart.data()}};
}

// ---- attributes and identifiers

void EntityList::make_room(hid_t block)
{
    index.make_room(block);
    fit(entid, stored(block, "entid"));
    fit(uid, stored(block, "uid"));
    fit(title, text_bytes(block, "title"));
}

std::int32_t EntityList::read(std::int64_t block, std::int32_t sections)
{
    const auto reader = kind.key == kind::attributes.key ? KOB_READ_ATTRIBUTES : KOB_READ_IDENTIFIERS;
    std::int32_t result = 0;
    reader(&block, &sections, etyp.data(), &nent, &nuid, &length, &index.nindex, &index.indexic,
           index.indexident.data(), index.indexval.data(), entid.data(), title.data(), uid.data(), &compression.flags,
           compression.params.data(), &result);
    if (sections == passes.attributes) {
        adopt_stored_width(block, "title", length);
    }
    return result;
}

std::int32_t EntityList::write(const Destination& to) const
{
    const auto writer = kind.key == kind::attributes.key ? KOB_WRITE_ATTRIBUTES : KOB_WRITE_IDENTIFIERS;
    std::int32_t result = 0;
    writer(&to.group, etyp.data(), &nent, &nuid, &length, &index.nindex, &index.indexic, index.indexident.data(),
           index.indexval.data(), entid.data(), title.data(), uid.data(), &to.state, &to.compression.flags,
           to.compression.params.data(), &to.float_size, &result);
    return result;
}

BlockPath EntityList::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind.name, etyp.data()}};
}

// ---- collectors

void Collector::make_room(hid_t block)
{
    index.make_room(block);
    fit(idcoll, stored(block, "idcoll"));
    fit(nent, stored(block, "nent"));
    fit(entid, stored(block, "entid"));
    fit(etyp, text_bytes(block, "etyp"));
}

std::int32_t Collector::read(std::int64_t block, std::int32_t pass)
{
    std::int32_t result = 0;
    KOB_READ_COLLECTOR(&block, &pass, &nenttot, etypcoll.data(), &ncoll, &ntyp, &index.nindex, &index.indexic,
                       index.indexident.data(), index.indexval.data(), idcoll.data(), etyp.data(), nent.data(),
                       entid.data(), &compression.flags, compression.params.data(), &result);
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
    KOB_WRITE_COLLECTOR(&to.group, etypcoll.data(), &ncoll, &ntyp, &index.nindex, &index.indexic,
                        index.indexident.data(), index.indexval.data(), idcoll.data(), etyp.data(), nent.data(),
                        entid.data(), &to.state, &to.compression.flags, to.compression.params.data(), &to.float_size,
                        &result);
    return result;
}

BlockPath Collector::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind::collector.name, etypcoll.data()}};
}

} // namespace kob::merge
