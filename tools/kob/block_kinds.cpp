// SPDX-License-Identifier: BSD-3-Clause
// The table of block kinds and, per kind, its items and how the library reads them.

#include "block_reader.hpp"
#include "terminal.hpp"

#include "kob_dp.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace kob::program {

namespace {

// Section bits of the readers that take them.
constexpr std::int32_t attributes_section = 1;
constexpr std::int32_t index_section = 2;
constexpr std::int32_t identifiers_section = 4;
constexpr std::int32_t values_section = 8;

// Access modes of the readers that take them.
constexpr std::int32_t whole_dataset = 0;
constexpr std::int32_t hyperslab = 1;

void scan_header(BlockScan& in)
{
    constexpr std::int32_t version_width = 32;
    Item& version = in.text("version", version_width); // as it stands in the header text behind the signature
    in.call([&](std::int32_t& status) {
        KOB_READ_FILEHEADER(in.handle(), version.chars(), in.filter_flags(), in.filter_params(), &status);
    });
    in.filters_found();
}

void scan_system(BlockScan& in)
{
    constexpr std::int32_t date_width = 8;
    Item& title = in.text("title");
    Item& sys = in.text("sys");
    Item& solver_name = in.text("solver_name");
    Item& solver_vers = in.text("solver_vers");
    Item& cdate = in.text("cdate", date_width);
    Item& ctime = in.text("ctime", date_width);
    Item& mdate = in.text("mdate", date_width);
    Item& mtime = in.text("mtime", date_width);
    Item& nbunit = in.integer("nbunit");
    Item& ndunit = in.integer("ndunit");
    Item& ubid = in.integers("ubid");
    Item& ubtyp = in.texts("ubtyp");
    Item& ubnam = in.texts("ubnam");
    Item& ubshift = in.reals("ubshift");
    Item& ubcon = in.reals("ubcon");
    Item& udid = in.integers("udid");
    Item& udnam = in.texts("udnam");
    Item& udscal = in.reals("udscal");
    Item& ndbunit = in.integers("ndbunit");
    Item& udbid = in.integers("udbid");
    Item& udbexp = in.reals("udbexp");
    const auto read = [&](std::int32_t mode, std::int32_t& status) {
        KOB_READ_SYSTEM(in.handle(), &mode, title.chars(), sys.chars(), solver_name.chars(), solver_vers.chars(),
                        cdate.chars(), ctime.chars(), mdate.chars(), mtime.chars(), nbunit.ints(), ndunit.ints(),
                        ubid.ints(), ubtyp.chars(), ubnam.chars(), ubshift.reals(), ubcon.reals(), udid.ints(),
                        udnam.chars(), udscal.reals(), ndbunit.ints(), udbid.ints(), udbexp.reals(), in.filter_flags(),
                        in.filter_params(), &status);
    };
    in.call([&](std::int32_t& status) { read(1, status); });
    const auto shape = [&](Item& item, std::int64_t n) { in.shape(item, {n}, Depth::attributes); }; // a small block
    for (Item* item : {&ubid, &ubtyp, &ubnam, &ubshift, &ubcon}) shape(*item, nbunit.integer());
    for (Item* item : {&udid, &udnam, &udscal, &ndbunit}) shape(*item, ndunit.integer());

    // Only the values of ndbunit tell how long udbid is, and they come in the same call. The first call has no room for
    // udbid: HDF5 refuses to read into nothing, after ndbunit is there. What is really wrong shows in the second.
    {
        const Diverted refusal{STDERR_FILENO};
        std::int32_t status = 0;
        read(2, status);
    }
    std::uint32_t sum = 0; // the library counts in 32 bits
    for (std::int64_t i = 0; i < ndbunit.read_count(); ++i) sum += static_cast<std::uint32_t>(ndbunit.integer(i));
    const auto factors = static_cast<std::int32_t>(sum);
    for (Item* item : {&udbid, &udbexp}) shape(*item, factors);
    in.call([&](std::int32_t& status) { read(2, status); });
    in.filters_found();
}

void scan_index(BlockScan& in)
{
    Item& nindex = in.integer("nindex");
    Item& etypvar = in.text("etypvar");
    in.call([&](std::int32_t& status) {
        KOB_READ_INDEX(in.handle(), nullptr, nindex.ints(), etypvar.chars(), nullptr, nullptr, &status);
    });
}

void scan_variable_group(BlockScan& in)
{
    Item& etypvar = in.text("etypvar");
    Item& nvar = in.integer("nvar");
    Item& ncoo = in.integer("ncoo");
    Item& cnt = in.integers("cnt");
    Item& offs = in.integers("offs");
    Item& varkey = in.texts("varkey");
    const auto read = [&](std::int32_t mode) {
        in.call([&](std::int32_t& status) {
            KOB_READ_VARIABLEGROUP(in.handle(), &mode, nullptr, etypvar.chars(), nvar.ints(), ncoo.ints(), cnt.ints(),
                                   offs.ints(), varkey.chars(), in.filter_flags(), in.filter_params(), &status);
        });
    };
    read(1);
    for (Item* item : {&cnt, &offs, &varkey}) in.shape(*item, {nvar.integer()});
    if (!in.reads(Depth::values)) return;
    read(2);
    in.filters_found();
}

void scan_variable(BlockScan& in)
{
    constexpr std::int64_t highest_rank = 31; // HDF5 knows 32 dimensions; the first one counts the components
    Item& varkey = in.text("varkey");
    Item& varclass = in.text("varclass");
    Item& varnam = in.text("varnam");
    Item& ncoo = in.integer("ncoo");
    Item& rank = in.integer("rank");
    Item& ndim = in.integer("ndim");
    Item& tensor = in.integer("tensor");
    Item& type = in.text("type");
    Item& lenb = in.integer("lenb");
    Item& lend = in.integer("lend");
    Item& lvmap = in.integer("lvmap");
    Item& subslen = in.integer("subslen");
    Item& mbunit = in.integers("mbunit");
    Item& mdunit = in.integers("mdunit");
    Item& ubid = in.integers("ubid");
    Item& ubexp = in.reals("ubexp");
    Item& udid = in.integers("udid");
    Item& udexp = in.reals("udexp");
    Item& subscr = in.texts("subscr", 1);
    Item& subscnt = in.integers("subscnt");
    Item& subsoffs = in.integers("subsoffs");
    Item& vmap = in.reals("vmap");
    const auto read = [&](std::int32_t mode) {
        in.call([&](std::int32_t& status) {
            KOB_READ_VARIABLE(in.handle(), &mode, nullptr, varkey.chars(), varclass.chars(), varnam.chars(),
                              ncoo.ints(), rank.ints(), ndim.ints(), tensor.ints(), type.chars(), lvmap.ints(),
                              subslen.ints(), lenb.ints(), lend.ints(), mbunit.ints(), mdunit.ints(), ubid.ints(),
                              ubexp.reals(), udid.ints(), udexp.reals(), subscr.chars(), subscnt.ints(),
                              subsoffs.ints(), vmap.reals(), in.filter_flags(), in.filter_params(), &status);
        });
    };
    read(1);
    for (Item* item : {&mbunit, &mdunit}) in.shape(*item, {ncoo.integer()});
    for (Item* item : {&ubid, &ubexp}) in.shape(*item, {lenb.integer()});
    for (Item* item : {&udid, &udexp}) in.shape(*item, {lend.integer()});
    if (subslen.integer() > 0) {
        in.shape(subscr, {subslen.integer()});
        for (Item* item : {&subscnt, &subsoffs}) in.shape(*item, {ncoo.integer()});
    } else {
        for (Item* item : {&subscr, &subscnt, &subsoffs}) in.absent(*item);
    }
    if (lvmap.integer() > 0 && rank.integer() > 0) {
        if (rank.integer() > highest_rank) in.refuse(fmt::format("\"rank\" is {}", rank.integer()));
        std::vector<std::int64_t> extents(static_cast<std::size_t>(rank.integer()) + 1, ndim.integer());
        extents.front() = ncoo.integer();
        in.shape(vmap, extents);
    } else {
        in.absent(vmap);
    }
    if (!in.reads(Depth::values)) return;
    read(2);
    in.filters_found();
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
                                    nbint.ints(), nbfloat.ints(), index.nindex.ints(), index.indexic.ints(),
                                    index.indexident.ints(), index.indexval.reals(), idele.ints(), pid.ints(),
                                    ic.ints(), iparam.ints(), fparam.reals(), in.filter_flags(), in.filter_params(),
                                    &status);
        });
    };
    read(attributes_section);
    if (nbfloat.integer() <= 0) in.absent(etypvar);
    for (Item* item : {&idele, &pid}) in.shape(*item, {nele.integer()});
    in.shape(ic, {nele.integer(), npele.integer()});
    in.shape(iparam, {nele.integer(), nbint.integer()});
    in.shape(fparam, {nele.integer(), nbfloat.integer()});
    if (index.shape(in) && in.reads(Depth::index)) read(index_section);
    if (!in.reads(Depth::values)) return;
    read(identifiers_section | values_section);
    in.filters_found();
}

void scan_entity_results(BlockScan& in)
{
    Item& etyp = in.text("etyp");
    Item& nent = in.integer("nent");
    Item& etypvar = in.text("etypvar");
    Item& ncoo = in.integer("ncoo");
    Item& etypzone = in.text("etypzone");
    Item& zoneid = in.integer("zoneid");
    Item& etypframe = in.text("etypframe");
    Item& fswitch = in.integer("fswitch");
    Item& dmpswitch = in.integer("dmpswitch");
    const StateIndex index{in};
    Item& entid = in.integers("entid");
    Item& fid = in.integers("fid");
    Item& fidglob = in.integers("fidglob");
    Item& operators = in.texts("operator");
    Item& weight = in.reals("weight");
    Item& res = in.reals("res");
    const auto read = [&](std::int32_t sections, std::int32_t mode, const std::int64_t* count,
                          const std::int64_t* start) {
        constexpr std::int32_t memory_size = sizeof(double);
        in.call([&](std::int32_t& status) {
            KOB_READ_ENTITYRESULTS2(in.handle(), &sections, nullptr, etyp.chars(), nent.ints(), etypvar.chars(),
                                    ncoo.ints(), etypzone.chars(), zoneid.ints(), etypframe.chars(), fswitch.ints(),
                                    dmpswitch.ints(), index.nindex.ints(), index.indexic.ints(),
                                    index.indexident.ints(), index.indexval.reals(), entid.ints(), fidglob.ints(),
                                    fid.ints(), operators.chars(), weight.reals(), res.reals(), &memory_size,
                                    in.filter_flags(), in.filter_params(), &mode, count, start, &status);
        });
    };
    read(attributes_section, whole_dataset, nullptr, nullptr);
    in.shape(entid, {nent.integer()});
    if (fswitch.integer() == 1) {
        in.shape(fid, {nent.integer()});
        in.absent(fidglob);
    } else {
        in.absent(fid);
        in.shape(fidglob, std::vector<std::int64_t>{});
    }
    if (dmpswitch.integer() == 1) {
        in.shape(operators, {ncoo.integer()});
        in.shape(weight, {nent.integer()});
    } else {
        for (Item* item : {&operators, &weight}) in.absent(*item);
    }
    std::vector<std::int64_t> extents{nent.integer(), ncoo.integer()};
    if (in.complex_key()) extents.push_back(2);
    res.complex_pairs = in.complex_key();
    in.shape_leading(res, extents);
    if (index.shape(in) && in.reads(Depth::index)) read(index_section, whole_dataset, nullptr, nullptr);
    if (!in.reads(Depth::values)) return;
    read(identifiers_section, whole_dataset, nullptr, nullptr);
    if (res.read_count() == 0) return;
    const Piece piece{res};
    const bool whole = res.rows == res.shape.front(); // also compares all extents with the counts
    read(values_section, whole ? whole_dataset : hyperslab, piece.count.data(), piece.start.data());
    in.filters_found();
}

} // namespace

// One line per kind: key, key with complex values, name, items that name the entity type and the variable, the item
// whose shape tells the size, and the description above. To add a kind, write its description and put it here.
const std::vector<Kind>& all_kinds()
{
    static const std::vector<Kind> kinds{
        {1, 0, "header", "", "", "", scan_header},
        {10, 0, "system", "", "", "", scan_system},
        {20, 0, "indices", "", "etypvar", "", scan_index},
        {30, 0, "variable", "", "varkey", "mbunit", scan_variable},
        {32, 0, "variablegroup", "", "etypvar", "varkey", scan_variable_group},
        {40, 0, "text", "etyptext", "", "line", nullptr},
        {100, 0, "parts", "etyppart", "", "pid", nullptr},
        {200, 0, "attributes", "etyp", "", "entid", nullptr},
        {250, 0, "identifiers", "etyp", "", "entid", nullptr},
        {300, 0, "connectivities", "etypelem", "etypvar", "ic", scan_connectivities},
        {400, 0, "collector", "etypcoll", "", "nent", nullptr},
        {500, 0, "properties", "etyp", "etypprop", "entid", nullptr},
        {1000, 1001, "entityresults", "etyp", "etypvar", "res", scan_entity_results},
        {1050, 1051, "multientityresults", "etyp", "etypvar", "res", nullptr},
        {1100, 1101, "elementresults", "etypelem", "etypvar", "res", nullptr},
        {1150, 1151, "multielementresults", "etypelem", "etypvar", "res", nullptr},
        {2100, 0, "activflags", "etyp", "", "status", nullptr},
        {2150, 0, "multiactivflags", "etyp", "", "status", nullptr},
        {10000, 10001, "densematrix", "etyp", "etypvar", "val", nullptr},
        {10100, 10101, "triangularmatrix", "etyp", "etypvar", "val", nullptr},
        {10200, 10201, "sparsematrix", "etyp", "etypvar", "val", nullptr},
    };
    return kinds;
}

} // namespace kob::program
