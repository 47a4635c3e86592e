// SPDX-License-Identifier: BSD-3-Clause
// Blocks of the model: parts, attributes and identifiers of entities, connectivities, collectors, properties.

#include "block_scans.hpp"

#include "kob_dp.h"

namespace kob::program {

namespace {

using EntityListReader = decltype(&KOB_READ_ATTRIBUTES);

/// Characters of a title: the older layout does not ask.
struct TitleLength {
    explicit TitleLength(BlockScan& in) : item{in.older() ? nullptr : &in.integer("length")} {}
    std::int64_t integer() const { return item != nullptr ? item->integer() : 256; }
    CurrentOnly<std::int32_t*> argument() const { return {item != nullptr ? item->ints() : nullptr}; }
    Item* item; ///< null in the older layout
};

/// Attributes and identifiers are of the same make.
void scan_entity_list(BlockScan& in, EntityListReader reader)
{
    Item& etyp = in.text("etyp");
    Item& nent = in.integer("nent");
    Item& nuid = in.integer("nuid");
    const TitleLength length{in};
    const StateIndex index{in};
    Item& entid = in.integers("entid");
    Item& title = in.texts("title");
    Item& uid = in.integers("uid");
    const auto read = [&](std::int32_t sections) {
        in.call(reader, KOB1_READ_ATTRIBUTES, // identifiers are a kind of the current layout alone
                in.handle(), &sections, etyp.chars(), nent.ints(), nuid.ints(), length.argument(), index.nindex.ints(),
                index.code(), index.indexident.ints(), index.indexval.reals(), entid.ints(), title.chars(), uid.ints(),
                in.filter_flags(), in.filter_params(), StatusArgument{});
    };
    read_sections(in, index, read, [&] {
        in.shape(entid, {nent.integer()});
        if (length.integer() > 0)
            in.shape_texts(title, {nent.integer()}, length.integer());
        else
            in.absent(title);
        if (nuid.integer() > 0)
            in.shape(uid, {nent.integer(), nuid.integer()});
        else
            in.absent(uid);
    });
}

} // namespace

void scan_attributes(BlockScan& in) { scan_entity_list(in, KOB_READ_ATTRIBUTES); }
void scan_identifiers(BlockScan& in) { scan_entity_list(in, KOB_READ_IDENTIFIERS); }

void scan_parts(BlockScan& in)
{
    Item& etyppart = in.text("etyppart");
    Item& npart = in.integer("npart");
    Item& off = in.integer("off");
    const TitleLength length{in};
    const StateIndex index{in};
    Item& pid = in.integers("pid");
    Item& title = in.texts("title");
    Item& mid = in.integers("mid");
    Item& mtyp = in.integers("mtyp");
    Item& pcol = in.integers("pcol");
    Item* pvtyp = in.older() ? &in.integers("pvtyp") : nullptr;
    const auto read = [&](std::int32_t sections) {
        in.call(KOB_READ_PARTS, KOB1_READ_PARTS, in.handle(), &sections, etyppart.chars(), npart.ints(), off.ints(),
                length.argument(), index.nindex.ints(), index.code(), index.indexident.ints(), index.indexval.reals(),
                pid.ints(), title.chars(), mid.ints(), mtyp.ints(), pcol.ints(),
                OlderOnly{pvtyp != nullptr ? pvtyp->ints() : nullptr}, in.filter_flags(), in.filter_params(),
                StatusArgument{});
    };
    read_sections(in, index, read, [&] {
        in.shape(pid, {npart.integer()});
        if (length.integer() > 0)
            in.shape_texts(title, {npart.integer()}, length.integer());
        else
            in.absent(title);
        std::int64_t bit = 1; // of "off": the column is not there
        for (Item* column : {&mid, &mtyp, &pcol}) {
            if ((off.integer() & bit) == 0)
                in.shape(*column, {npart.integer()});
            else
                in.absent(*column);
            bit *= 2;
        }
        if (pvtyp != nullptr) in.shape(*pvtyp, {npart.integer()});
    });
}

void scan_connectivities(BlockScan& in)
{
    Item& etyp = in.text("etyp");
    Item& etypelem = in.text("etypelem");
    Item& etyppart = in.text("etyppart");
    Item& etypnode = in.text("etypnode");
    Item& nele = in.integer("nele");
    Item& npele = in.integer("npele");
    Item& ndim = in.integer("ndim");
    Item& nbint = in.integer("nbint");
    Item& nbfloat = in.integer("nbfloat");
    Item& etypvar = in.text("etypvar");
    const StateIndex index{in};
    Item& idele = in.integers("idele");
    Item& pid = in.integers("pid");
    Item& ic = in.integers("ic");
    Item& iparam = in.integers("iparam");
    Item& fparam = in.reals("fparam");
    const auto read = [&](std::int32_t sections) {
        in.call([&](std::int32_t& status) {
            KOB_READ_CONNECTIVITIES(in.handle(), &sections, etyp.chars(), etypelem.chars(), etyppart.chars(),
                                    etypnode.chars(), etypvar.chars(), nele.ints(), npele.ints(), ndim.ints(),
                                    nbint.ints(), nbfloat.ints(), index.nindex.ints(), index.code().current_only,
                                    index.indexident.ints(), index.indexval.reals(), idele.ints(), pid.ints(),
                                    ic.ints(), iparam.ints(), fparam.reals(), in.filter_flags(), in.filter_params(),
                                    &status);
        });
    };
    read_sections(in, index, read, [&] {
        if (nbfloat.integer() <= 0) in.absent(etypvar);
        for (Item* item : {&idele, &pid}) in.shape(*item, {nele.integer()});
        in.shape(ic, {nele.integer(), npele.integer()});
        in.shape(iparam, {nele.integer(), nbint.integer()});
        in.shape(fparam, {nele.integer(), nbfloat.integer()});
    });
}

void scan_collector(BlockScan& in)
{
    Item& nenttot = in.integer("nenttot");
    Item& etypcoll = in.text("etypcoll");
    Item& ncoll = in.integer("ncoll");
    Item& ntyp = in.integer("ntyp");
    const StateIndex index{in};
    Item& idcoll = in.integers("idcoll");
    Item& etyp = in.texts("etyp");
    Item& nent = in.integers("nent");
    Item& entid = in.integers("entid");
    const auto read = [&](std::int32_t pass) {
        in.call(KOB_READ_COLLECTOR, KOB1_READ_COLLECTOR, in.handle(), &pass, nenttot.ints(), etypcoll.chars(),
                ncoll.ints(), ntyp.ints(), index.nindex.ints(), index.code(), index.indexident.ints(),
                index.indexval.reals(), idcoll.ints(), etyp.chars(), nent.ints(), entid.ints(), in.filter_flags(),
                in.filter_params(), StatusArgument{});
    };
    read_passes(in, index, read, [&] {
        in.shape(idcoll, {ncoll.integer()});
        in.shape(etyp, {ntyp.integer()});
        in.shape(nent, {ncoll.integer(), ntyp.integer()});
        in.shape(entid, {nenttot.integer()});
    });
}

void scan_properties(BlockScan& in)
{
    Item& etyp = in.text("etyp");
    Item& etypprop = in.text("etypprop");
    Item& etypzone = in.text("etypzone");
    Item& zoneid = in.integer("zoneid");
    Item& nent = in.integer("nent");
    Item& nbid = in.integer("nbid");
    Item& nbint = in.integer("nbint");
    Item& nbfloat = in.integer("nbfloat");
    Item& nbstring = in.integer("nbstring");
    Item& length = in.integer("length");
    const StateIndex index{in};
    Item& entid = in.integers("entid");
    Item& idparam = in.integers("idparam");
    Item& iparam = in.integers("iparam");
    Item& fparam = in.reals("fparam");
    Item& cparam = in.texts("cparam");
    const auto read = [&](std::int32_t sections, std::int32_t mode, std::int64_t rows) {
        constexpr std::int64_t first_row = 0;
        in.call([&](std::int32_t& status) {
            KOB_READ_PROPERTIES(in.handle(), &sections, etyp.chars(), etypprop.chars(), etypzone.chars(), zoneid.ints(),
                                nent.ints(), nbid.ints(), nbint.ints(), nbfloat.ints(), nbstring.ints(), length.ints(),
                                index.nindex.ints(), index.code().current_only, index.indexident.ints(),
                                index.indexval.reals(), entid.ints(), idparam.ints(), iparam.ints(), fparam.reals(),
                                cparam.chars(), nullptr, nullptr, &mode, &rows, &first_row, &status);
        });
    };
    read(attributes_section, whole_dataset, 0);
    const std::int64_t n = nent.integer();
    in.shape(entid, {n});
    const auto table = [&](Item& item, const Item& columns) {
        if (columns.integer() > 0)
            in.shape_leading(item, {n, columns.integer()});
        else
            in.absent(item);
    };
    table(idparam, nbid);
    table(iparam, nbint);
    table(fparam, nbfloat);
    if (length.integer() > 0) {
        cparam.width = length.ints()[0];
        table(cparam, nbstring);
    } else {
        in.absent(cparam);
    }
    if (index.shape(in) && in.reads(Depth::index)) read(index_section, whole_dataset, 0);
    if (!in.reads(Depth::values)) return;
    read(identifiers_section, whole_dataset, 0);
    const std::int64_t rows = in.leading_rows(n);
    if (rows > 0) read(values_section, rows == n ? whole_dataset : hyperslab, rows);
}

} // namespace kob::program
