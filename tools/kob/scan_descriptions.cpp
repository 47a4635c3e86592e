// SPDX-License-Identifier: BSD-3-Clause
// Blocks that describe a file and what is in it: header, system, index, variables, text.

#include "block_scans.hpp"
#include "terminal.hpp"

#include "kob_dp.h"

#include <unistd.h>

namespace kob::program {

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
        const auto reader = in.older() ? KOB1_READ_SYSTEM : KOB_READ_SYSTEM;
        reader(in.handle(), &mode, title.chars(), sys.chars(), solver_name.chars(), solver_vers.chars(), cdate.chars(),
               ctime.chars(), mdate.chars(), mtime.chars(), nbunit.ints(), ndunit.ints(), ubid.ints(), ubtyp.chars(),
               ubnam.chars(), ubshift.reals(), ubcon.reals(), udid.ints(), udnam.chars(), udscal.reals(),
               ndbunit.ints(), udbid.ints(), udbexp.reals(), in.filter_flags(), in.filter_params(), &status);
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
    for (Item* item : {&udbid, &udbexp}) shape(*item, sum_of(ndbunit));
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
    subscr.is_string = true;
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

void scan_text(BlockScan& in)
{
    Item& etyptext = in.text("etyptext");
    Item& nlines = in.integer("nlines");
    Item& length = in.integer("length");
    const StateIndex index{in};
    Item& line = in.texts("line");
    const auto read = [&](std::int32_t sections) {
        in.call([&](std::int32_t& status) {
            KOB_READ_TEXT(in.handle(), &sections, etyptext.chars(), nlines.ints(), length.ints(), index.nindex.ints(),
                          index.code().current_only, index.indexident.ints(), index.indexval.reals(), line.chars(),
                          in.filter_flags(), in.filter_params(), &status);
        });
    };
    read_sections(in, index, read, [&] { in.shape_texts(line, {nlines.integer()}, length.integer()); });
}

} // namespace kob::program
