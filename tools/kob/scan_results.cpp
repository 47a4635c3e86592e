// SPDX-License-Identifier: BSD-3-Clause
// Blocks of results, of one state and of a series of states.

#include "block_scans.hpp"

#include "kob_dp.h"

namespace kob::program {

namespace {

/// What tables of results begin with: one variable on entities of one type in one zone, or at locations in elements.
struct ResultTable {
    enum class On { entities, elements };

    ResultTable(BlockScan& in, On on)
        : etyp{in.text(on == On::elements ? "etypelem" : "etyp")}, nent{in.integer(on == On::elements ? "nele"
                                                                                                      : "nent")},
          etypvar{in.text("etypvar")}, ncoo{in.integer("ncoo")}, numl{on == On::elements ? &in.integer("numl")
                                                                                         : nullptr},
          ndim{on == On::elements ? &in.integer("ndim") : nullptr}, etypzone{in.text("etypzone")}, zoneid{in.integer(
                                                                                                       "zoneid")},
          etypframe{in.text("etypframe")}, fswitch{in.integer("fswitch")}, dmpswitch{in.integer("dmpswitch")}
    {
    }

    /// Extents of the values of one state.
    std::vector<std::int64_t> extents(const BlockScan& in) const
    {
        std::vector<std::int64_t> extents{nent.integer()};
        if (numl != nullptr) extents.push_back(numl->integer());
        extents.push_back(ncoo.integer());
        if (in.complex_key()) extents.push_back(2);
        return extents;
    }

    Item& etyp;
    Item& nent; ///< number of entities or elements
    Item& etypvar;
    Item& ncoo;
    Item* numl; ///< null on entities, like the next
    Item* ndim;
    Item& etypzone;
    Item& zoneid;
    Item& etypframe;
    Item& fswitch;
    Item& dmpswitch;
};

/// The datasets that come with such a table, and its values.
struct ResultValues {
    ResultValues(BlockScan& in, const ResultTable& table)
        : entid{in.integers(table.numl != nullptr ? "idele" : "entid")}, fid{in.integers("fid")},
          fidglob{in.integers("fidglob")}, operators{in.texts("operator")}, weight{in.reals("weight")},
          eloc{table.numl != nullptr ? &in.reals("eloc") : nullptr}, res{in.reals("res")}
    {
        res.complex_pairs = in.complex_key();
    }

    /// All but the values, whose first extent may be another one.
    void shape_identifiers(BlockScan& in, const ResultTable& table) const
    {
        const std::int64_t n = table.nent.integer();
        in.shape(entid, {n});
        const std::int64_t frames = table.fswitch.integer(); // 0 one for all, 1 one for each, 2 one for each location
        if (frames == 1 || (frames == 2 && table.numl != nullptr)) {
            in.shape(fid,
                     frames == 1 ? std::vector<std::int64_t>{n} : std::vector<std::int64_t>{n, table.numl->integer()});
            in.absent(fidglob);
        } else {
            in.absent(fid);
            in.shape(fidglob, std::vector<std::int64_t>{});
        }
        if (table.dmpswitch.integer() == 1) {
            in.shape(operators, {table.ncoo.integer()});
            in.shape(weight, {n});
        } else {
            for (Item* item : {&operators, &weight}) in.absent(*item);
        }
        if (eloc != nullptr) in.shape(*eloc, {table.numl->integer(), table.ndim->integer()});
    }

    Item& entid; ///< of entities or elements
    Item& fid;
    Item& fidglob;
    Item& operators;
    Item& weight;
    Item* eloc; ///< null on entities
    Item& res;
};

} // namespace

void scan_entity_results(BlockScan& in)
{
    const ResultTable table{in, ResultTable::On::entities};
    const StateIndex index{in};
    const ResultValues data{in, table};
    const auto read = [&](std::int32_t sections, std::int32_t mode, const std::int64_t* count,
                          const std::int64_t* start) {
        constexpr std::int32_t memory_size = sizeof(double);
        in.call(KOB_READ_ENTITYRESULTS2, KOB1_READ_ENTITYRESULTS2, in.handle(), &sections, nullptr, table.etyp.chars(),
                table.nent.ints(), table.etypvar.chars(), table.ncoo.ints(), table.etypzone.chars(),
                table.zoneid.ints(), table.etypframe.chars(), table.fswitch.ints(), table.dmpswitch.ints(),
                index.nindex.ints(), index.code(), index.indexident.ints(), index.indexval.reals(), data.entid.ints(),
                data.fidglob.ints(), data.fid.ints(), data.operators.chars(), data.weight.reals(), data.res.reals(),
                &memory_size, in.filter_flags(), in.filter_params(), &mode, count, start, StatusArgument{});
    };
    read(attributes_section, whole_dataset, nullptr, nullptr);
    data.shape_identifiers(in, table);
    in.shape_leading(data.res, table.extents(in));
    if (index.shape(in) && in.reads(Depth::index)) read(index_section, whole_dataset, nullptr, nullptr);
    if (!in.reads(Depth::values)) return;
    read(identifiers_section, whole_dataset, nullptr, nullptr);
    if (data.res.read_count() == 0) return;
    const Piece piece{data.res};
    const bool whole = data.res.rows == data.res.shape.front(); // also compares all extents with the counts
    read(values_section, whole ? whole_dataset : hyperslab, piece.count.data(), piece.start.data());
    in.filters_found();
}

void scan_multi_entity_results(BlockScan& in)
{
    Item& series = in.text("series");
    const ResultTable table{in, ResultTable::On::entities};
    const SeriesIndex index{in};
    const ResultValues data{in, table};
    const auto read = [&](std::int32_t sections, double* values, const Piece* piece) {
        constexpr std::int32_t memory_size = sizeof(double);
        in.call(KOB_READ_MULTIENTITYRESULTS2, KOB1_READ_MULTIENTITYRESULTS2, in.handle(), &sections, nullptr,
                series.chars(), table.etyp.chars(), table.nent.ints(), table.etypvar.chars(), table.ncoo.ints(),
                table.etypzone.chars(), table.zoneid.ints(), table.etypframe.chars(), table.fswitch.ints(),
                table.dmpswitch.ints(), index.nindex.ints(), index.nstate.ints(), index.indexident.ints(),
                index.indexval.reals(), data.entid.ints(), data.fidglob.ints(), data.fid.ints(), data.operators.chars(),
                data.weight.reals(), values, &memory_size, in.filter_flags(), in.filter_params(),
                piece != nullptr ? &hyperslab : &whole_dataset, piece != nullptr ? piece->count.data() : nullptr,
                piece != nullptr ? piece->start.data() : nullptr, StatusArgument{});
    };
    read(attributes_section, nullptr, nullptr);
    data.shape_identifiers(in, table);
    in.shape_states_leading(data.res, index.nstate.integer(), table.extents(in));
    if (index.shape(in) && in.reads(Depth::index)) read(index_section, nullptr, nullptr);
    if (!in.reads(Depth::values)) return;
    read(identifiers_section, nullptr, nullptr);
    if (data.res.is_whole()) { // also compares all extents with the counts
        read(values_section, data.res.reals(), nullptr);
        in.filters_found();
        return;
    }
    if (data.res.read_count() == 0) return;
    for (std::int64_t i = 0; i < data.res.state_count; ++i) {
        const Piece piece{data.res, data.res.state(i)};
        read(values_section, data.res.reals() + i * data.res.rows * data.res.row_length(), &piece);
    }
    in.filters_found();
}

void scan_element_results(BlockScan& in)
{
    const ResultTable table{in, ResultTable::On::elements};
    const StateIndex index{in};
    const ResultValues data{in, table};
    const auto read = [&](std::int32_t pass) {
        in.call(KOB_READ_ELEMENTRESULTS, KOB1_READ_ELEMENTRESULTS, in.handle(), &pass, table.etyp.chars(),
                table.nent.ints(), table.etypvar.chars(), table.ncoo.ints(), table.numl->ints(), table.ndim->ints(),
                table.etypzone.chars(), table.zoneid.ints(), table.etypframe.chars(), table.fswitch.ints(),
                table.dmpswitch.ints(), index.nindex.ints(), index.code(), index.indexident.ints(),
                index.indexval.reals(), data.entid.ints(), data.fidglob.ints(), data.fid.ints(), data.eloc->reals(),
                data.operators.chars(), data.weight.reals(), data.res.reals(), in.filter_flags(), in.filter_params(),
                StatusArgument{});
    };
    read_passes(in, index, read, [&] {
        data.shape_identifiers(in, table);
        in.shape(data.res, table.extents(in));
    });
}

void scan_multi_element_results(BlockScan& in)
{
    Item& series = in.text("series");
    const ResultTable table{in, ResultTable::On::elements};
    const SeriesIndex index{in};
    const ResultValues data{in, table};
    const auto read = [&](std::int32_t pass) {
        in.call(KOB_READ_MULTIELEMENTRESULTS, KOB1_READ_MULTIELEMENTRESULTS, in.handle(), &pass, series.chars(),
                table.etyp.chars(), table.nent.ints(), table.etypvar.chars(), table.ncoo.ints(), table.numl->ints(),
                table.ndim->ints(), table.etypzone.chars(), table.zoneid.ints(), table.etypframe.chars(),
                table.fswitch.ints(), table.dmpswitch.ints(), index.nindex.ints(), index.nstate.ints(),
                index.indexident.ints(), index.indexval.reals(), data.entid.ints(), data.fidglob.ints(),
                data.fid.ints(), data.eloc->reals(), data.operators.chars(), data.weight.reals(), data.res.reals(),
                in.filter_flags(), in.filter_params(), StatusArgument{});
    };
    read_passes(in, index, read, [&] {
        data.shape_identifiers(in, table);
        in.shape_states(data.res, index.nstate.integer(), table.extents(in));
    });
}

void scan_activation_flags(BlockScan& in)
{
    Item& etyp = in.text("etyp");
    Item& nent = in.integer("nent");
    const StateIndex index{in};
    Item& entid = in.integers("entid");
    Item& flags = in.integers("status");
    const auto read = [&](std::int32_t pass) {
        in.call(KOB_READ_ACTIVFLAGS, KOB1_READ_ACTIVFLAGS, in.handle(), &pass, etyp.chars(), nent.ints(),
                index.nindex.ints(), index.code(), index.indexident.ints(), index.indexval.reals(), entid.ints(),
                flags.ints(), in.filter_flags(), in.filter_params(), StatusArgument{});
    };
    read_passes(in, index, read, [&] {
        for (Item* item : {&entid, &flags}) in.shape(*item, {nent.integer()});
    });
}

void scan_multi_activation_flags(BlockScan& in)
{
    Item& series = in.text("series");
    Item& etyp = in.text("etyp");
    Item& nent = in.integer("nent");
    const SeriesIndex index{in};
    Item& entid = in.integers("entid");
    Item& flags = in.integers("status");
    const auto read = [&](std::int32_t pass) {
        in.call(KOB_READ_MULTIACTIVFLAGS, KOB1_READ_MULTIACTIVFLAGS, in.handle(), &pass, series.chars(), etyp.chars(),
                nent.ints(), index.nindex.ints(), index.nstate.ints(), index.indexident.ints(), index.indexval.reals(),
                entid.ints(), flags.ints(), in.filter_flags(), in.filter_params(), StatusArgument{});
    };
    read_passes(in, index, read, [&] {
        in.shape(entid, {nent.integer()});
        in.shape_states(flags, index.nstate.integer(), {nent.integer()});
    });
}

} // namespace kob::program
