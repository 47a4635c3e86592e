// SPDX-License-Identifier: BSD-3-Clause
// Blocks that the older layout makes in its own way: index, variables, text, connectivities.

#include "block_scans.hpp"
#include "file.hpp"
#include "terminal.hpp"

#include "kob_dp.h"

#include <unistd.h>

namespace kob::program {

namespace {

/// The units of values, which stand in the block itself.
struct UnitItems {
    explicit UnitItems(BlockScan& in)
        : mbunit{in.integers("mbunit")}, mdunit{in.integers("mdunit")}, ubid{in.integers("ubid")},
          ubexp{in.reals("ubexp")}, udid{in.integers("udid")}, udexp{in.reals("udexp")}
    {
    }

    /// Of so many values. How long the other items are is known when these two are read.
    void shape_counts(BlockScan& in, std::int64_t values) const
    {
        for (Item* item : {&mbunit, &mdunit}) in.shape(*item, {values});
    }

    void shape_factors(BlockScan& in) const
    {
        for (Item* item : {&ubid, &ubexp}) in.shape(*item, {sum_of(mbunit)});
        for (Item* item : {&udid, &udexp}) in.shape(*item, {sum_of(mdunit)});
    }

    Item& mbunit;
    Item& mdunit;
    Item& ubid;
    Item& ubexp;
    Item& udid;
    Item& udexp;
};

/// The lengths of the factors follow from counts that come in the same call. A first call has no room for the factors:
/// the library refuses to read into nothing, after the counts are there. What is really wrong shows in the second.
template <class Read> void read_with_units(BlockScan& in, const UnitItems& units, Read&& read)
{
    {
        const Diverted refusal{STDERR_FILENO};
        std::int32_t status = 0;
        read(whole_pass, status);
    }
    units.shape_factors(in);
    in.call([&](std::int32_t& status) { read(whole_pass, status); });
    in.filters_found();
}

} // namespace

void scan_older_index(BlockScan& in)
{
    Item& nindex = in.integer("nindex");
    Item& etypindex = in.texts("etypindex");
    const UnitItems units{in};
    const auto read = [&](std::int32_t pass, std::int32_t& status) {
        KOB1_READ_INDEX(in.handle(), &pass, nindex.ints(), etypindex.chars(), units.mbunit.ints(), units.mdunit.ints(),
                        units.ubid.ints(), units.ubexp.reals(), units.udid.ints(), units.udexp.reals(),
                        in.filter_flags(), in.filter_params(), &status);
    };
    in.call([&](std::int32_t& status) { read(attributes_pass, status); });
    if (in.reads(Depth::index)) in.read_whole(); // only the values tell how large the block is
    in.shape(etypindex, {nindex.integer()});
    units.shape_counts(in, nindex.integer());
    if (in.reads(Depth::values)) read_with_units(in, units, read);
}

void scan_older_variables(BlockScan& in)
{
    constexpr std::int64_t highest_rank = 32; // HDF5 knows no more dimensions
    Item& etypvar = in.text("etypvar");
    Item& idtrans = in.integer("idtrans");
    Item& rank = in.integer("rank");
    Item& ndim = in.integer("ndim");
    Item& ncoo = in.integer("ncoo");
    const UnitItems units{in};
    Item& cname = in.texts("cname");
    Item& cid = in.integers("cid");
    Item& comp = in.integers("comp");
    const auto read = [&](std::int32_t pass, std::int32_t& status) {
        KOB1_READ_VARIABLES(in.handle(), &pass, etypvar.chars(), idtrans.ints(), rank.ints(), ndim.ints(), ncoo.ints(),
                            units.mbunit.ints(), units.mdunit.ints(), units.ubid.ints(), units.ubexp.reals(),
                            units.udid.ints(), units.udexp.reals(), cname.chars(), cid.ints(), comp.ints(),
                            in.filter_flags(), in.filter_params(), &status);
    };
    in.call([&](std::int32_t& status) { read(attributes_pass, status); });
    if (in.reads(Depth::index)) in.read_whole(); // only the values tell how large the block is
    if (rank.integer() > highest_rank) in.refuse(fmt::format("\"rank\" is {}", rank.integer()));
    units.shape_counts(in, ncoo.integer());
    for (Item* item : {&cname, &cid}) in.shape(*item, {ncoo.integer()});
    const bool is_scalar = rank.integer() <= 0;
    in.shape(comp, is_scalar ? std::vector<std::int64_t>{1}
                             : std::vector<std::int64_t>(static_cast<std::size_t>(rank.integer()), ndim.integer()));
    if (in.reads(Depth::values)) read_with_units(in, units, read);
}

void scan_older_text(BlockScan& in)
{
    Item& etyptext = in.text("etyptext");
    Item& nlines = in.integer("nlines");
    Item& length = in.integer("length");
    Item& line = in.texts("line");
    const auto read = [&](std::int32_t pass) {
        in.call([&](std::int32_t& status) {
            KOB1_READ_TEXT(in.handle(), &pass, etyptext.chars(), nlines.ints(), length.ints(), line.chars(),
                           in.filter_flags(), in.filter_params(), &status);
        });
    };
    read(attributes_pass);
    in.shape_texts(line, {nlines.integer()}, length.integer());
    if (!in.reads(Depth::values)) return;
    read(whole_pass);
    in.filters_found();
}

void scan_older_connectivities(BlockScan& in)
{
    Item& etypelem = in.text("etypelem");
    Item& etyppart = in.text("etyppart");
    Item& etypnode = in.text("etypnode");
    Item& nele = in.integer("nele");
    Item& npele = in.integer("npele");
    Item& ndim = in.integer("ndim");
    Item& nbint = in.integer("nbint");
    Item& nbfloat = in.integer("nbfloat");
    const StateIndex index{in};
    Item& idele = in.integers("idele");
    Item& pid = in.integers("pid");
    Item& ic = in.integers("ic");
    Item& iparam = in.integers("iparam");
    Item& fparam = in.reals("fparam");
    const UnitItems units{in};
    const auto read = [&](std::int32_t pass, std::int32_t& status) {
        KOB1_READ_CONNECTIVITIES(in.handle(), &pass, etypelem.chars(), etyppart.chars(), etypnode.chars(), nele.ints(),
                                 npele.ints(), ndim.ints(), nbint.ints(), nbfloat.ints(), index.nindex.ints(),
                                 index.indexident.ints(), index.indexval.reals(), idele.ints(), pid.ints(), ic.ints(),
                                 iparam.ints(), fparam.reals(), units.mbunit.ints(), units.mdunit.ints(),
                                 units.ubid.ints(), units.ubexp.reals(), units.udid.ints(), units.udexp.reals(),
                                 in.filter_flags(), in.filter_params(), &status);
    };
    in.call([&](std::int32_t& status) { read(attributes_pass, status); });
    const bool has_more = index.is_counted() || nbfloat.integer() > 0; // a state or units, which come with the values
    if (in.reads(Depth::index) && has_more) in.read_whole();
    for (Item* item : {&idele, &pid}) in.shape(*item, {nele.integer()});
    in.shape(ic, {nele.integer(), npele.integer()});
    in.shape(iparam, {nele.integer(), nbint.integer()});
    in.shape(fparam, {nele.integer(), nbfloat.integer()});
    units.shape_counts(in, nbfloat.integer());
    index.shape(in);
    if (in.reads(Depth::values)) read_with_units(in, units, read);
}

} // namespace kob::program
