// SPDX-License-Identifier: BSD-3-Clause
// Result blocks of one state.
#include "kob_block.hpp"
#include "kob_dp.h"

namespace kob {
namespace {

/// Section bits of result blocks.
namespace section {
constexpr std::int32_t attributes = 1;
constexpr std::int32_t state_index = 2;
constexpr std::int32_t identifiers = 4;
constexpr std::int32_t values = 8;
constexpr std::int32_t shared_identifiers = 16; // with `identifiers`: one copy in a shared group, linked by each block
constexpr std::int32_t all = attributes | state_index | identifiers | values;
} // namespace section

constexpr std::int32_t wrong_frame_switch = -123;
constexpr std::int32_t invalid_mode = -999;

constexpr std::int32_t unknown_pass = -3;

/// The sections that a pass of the readers stands for; 0 for a pass that there is not.
std::int32_t sections_of_pass(std::int32_t pass)
{
    switch (pass) {
    case 0:
        return section::attributes | section::state_index;
    case 1:
        return section::attributes;
    case 2:
        return section::all;
    default:
        return 0;
    }
}

bool has(std::int32_t sections, std::int32_t bit) { return (sections & bit) != 0; }

// ---- entity results

/// A table of one variable: a row for each entity, a column for each component.
template <class Io> struct EntityResults {
    Arg<Io, char> etyp;
    Arg<Io, std::int32_t> nent;
    Arg<Io, char> etypvar;
    Arg<Io, std::int32_t> ncoo;
    Arg<Io, char> etypzone;
    Arg<Io, std::int32_t> zoneid;
    Arg<Io, char> etypframe;
    Arg<Io, std::int32_t> fswitch;
    Arg<Io, std::int32_t> dmpswitch;
    StateIndex<Io> index;
    Arg<Io, std::int32_t> entid;   ///< [nent]
    Arg<Io, std::int32_t> fidglob; ///< the frame of all entities, with fswitch 0
    Arg<Io, std::int32_t> fid;     ///< [nent] frame of each entity, with fswitch 1
    Arg<Io, char> operators;       ///< [ncoo] texts, with dmpswitch 1
    Arg<Io, double> weight;        ///< [nent], with dmpswitch 1
    Reals<Io> res;                 ///< [nent, ncoo(, 2)]
};

template <class Io> void attributes(Io& io, const EntityResults<Io>& b)
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
    attributes(io, b.index);
}

template <class Io, class Block> void identifiers(Io& io, const Block& b)
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
        io.exact_reals("weight", b.weight.get(), {*b.nent});
    }
}

template <class Io> void values(Io& io, const EntityResults<Io>& b, bool complex, Part part)
{
    Shape shape{*b.nent, *b.ncoo};
    if (complex) {
        shape.append(2); // real part, imaginary part
    }
    io.reals("res", b.res, shape, part);
}

/// Identifiers that many blocks share: written once, linked by each.
std::int32_t write_shared_identifiers(hid_t shared, hid_t block, const EntityResults<Writer>& b, Filters filters,
                                      std::size_t stored_size)
{
    if (!has_link(shared, "entid")) {
        Writer io{shared, filters, stored_size};
        identifiers(io, b);
        if (!io.ok()) {
            return io.status();
        }
    }
    if (has_link(block, "entid")) {
        return 0;
    }
    Linker links{shared, block};
    identifiers(links, b);
    return links.status();
}

std::int32_t write_sections(hid_t block, const std::int64_t* groups, std::int32_t sections,
                            const EntityResults<Writer>& b, Filters filters, std::int32_t value_size, Part part,
                            Place place)
{
    if (block < 0) {
        report_error(message::writing_name, kind::entity_results.name);
        return static_cast<std::int32_t>(block);
    }
    const ValueSize size = value_size_of(value_size);
    const std::int32_t key = kind::entity_results.key_of(size.complex);
    Writer io{block, filters, size.stored, place};
    if (has(sections, section::attributes)) {
        io.frame(kind::entity_results, key);
        attributes(io, b);
    }
    if (has(sections, section::state_index)) {
        values(io, b.index);
    }
    if (io.ok() && has(sections, section::identifiers)) {
        if (has(sections, section::shared_identifiers)) {
            io.fail(write_shared_identifiers(value(groups + 1), block, b, filters, size.stored));
        } else {
            identifiers(io, b);
        }
    }
    if (io.ok() && has(sections, section::values)) {
        if (part.is_known()) {
            values(io, b, size.complex, part);
        } else {
            report_error(message::writing_invalid_mode, key);
            io.fail(invalid_mode);
        }
    }
    return io.status();
}

std::int32_t read_sections(hid_t block, std::int32_t sections, const EntityResults<Reader>& b,
                           std::int32_t* filter_flags, std::int32_t* filter_params, Part part)
{
    Reader io{block, kind::entity_results};
    if (has(sections, section::attributes)) {
        attributes(io, b);
    }
    if (io.ok() && has(sections, section::state_index)) {
        values(io, b.index);
    }
    if (io.ok() && has(sections, section::identifiers)) {
        identifiers(io, b);
    }
    if (io.ok() && has(sections, section::values)) {
        if (part.is_known()) {
            values(io, b, io.is_complex(), part);
            io.report_filters_of("res", filter_flags, filter_params);
        } else {
            report_error(message::reading_invalid_mode, io.key());
            io.fail(invalid_mode);
        }
    }
    io.key_as_status();
    return io.status();
}

} // namespace
} // namespace kob

extern "C" {

void KOB_WRITE_ENTITYRESULTS(const int64_t* group, const char* etyp, const int32_t* nent, const char* etypvar,
                             const int32_t* ncoo, const char* etypzone, const int32_t* zoneid, const char* etypframe,
                             const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                             const int32_t* indexic, const int32_t* indexident, const double* indexval,
                             const int32_t* entid, const int32_t* fidglob, const int32_t* fid, const char* operator_,
                             const double* weight, const double* res, const int32_t* set, const int32_t* state,
                             const int32_t* filter_flags, const int32_t* filter_params, const int32_t* value_size,
                             int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const EntityResults<Writer> b{etyp,   nent,      etypvar, ncoo,      etypzone,
                                      zoneid, etypframe, fswitch, dmpswitch, {nindex, indexic, indexident, indexval},
                                      entid,  fidglob,   fid,     operator_, weight,
                                      res};
        Placed placed = place_block(value(group), {validity_of(b.index, state),
                                                   {kind::entity_results.name, etyp, etypvar, etypzone},
                                                   value(zoneid),
                                                   value(set)});
        if (placed.status < 0) {
            return placed.status;
        }
        const std::int32_t result =
            write_sections(placed.group.get(), nullptr, section::all, b, {filter_flags, filter_params},
                           value(value_size), {}, placed.place());
        return result == 0 && placed.group.close() < 0 ? -1 : result;
    });
}

void KOB_WRITE_ENTITYRESULTS2(const int64_t* groups, const int32_t* sections, const void*, const char* etyp,
                              const int32_t* nent, const char* etypvar, const int32_t* ncoo, const char* etypzone,
                              const int32_t* zoneid, const char* etypframe, const int32_t* fswitch,
                              const int32_t* dmpswitch, const int32_t* nindex, const int32_t* indexic,
                              const int32_t* indexident, const double* indexval, const int32_t* entid,
                              const int32_t* fidglob, const int32_t* fid, const char* operator_, const double* weight,
                              const void* res, const int32_t* memory_size, const int32_t* filter_flags,
                              const int32_t* filter_params, const int32_t* value_size, const int32_t* mode,
                              const int64_t* count, const int64_t* start, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const EntityResults<Writer> b{etyp,      nent,
                                      etypvar,   ncoo,
                                      etypzone,  zoneid,
                                      etypframe, fswitch,
                                      dmpswitch, {nindex, indexic, indexident, indexval},
                                      entid,     fidglob,
                                      fid,       operator_,
                                      weight,    {res, static_cast<std::size_t>(value(memory_size))}};
        return write_sections(value(groups), groups, value(sections), b, {filter_flags, filter_params},
                              value(value_size), {value(mode), count, start}, Place::unknown);
    });
}

void KOB_READ_ENTITYRESULTS(const int64_t* block, const int32_t* pass, char* etyp, int32_t* nent, char* etypvar,
                            int32_t* ncoo, char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch,
                            int32_t* dmpswitch, int32_t* nindex, int32_t* indexic, int32_t* indexident,
                            double* indexval, int32_t* entid, int32_t* fidglob, int32_t* fid, char* operator_,
                            double* weight, double* res, int32_t* filter_flags, int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const std::int32_t sections = sections_of_pass(value(pass));
        if (sections == 0) {
            report_error(message::reading_named_pass, kind::entity_results.name, value(pass));
            return unknown_pass;
        }
        const EntityResults<Reader> b{etyp,   nent,      etypvar, ncoo,      etypzone,
                                      zoneid, etypframe, fswitch, dmpswitch, {nindex, indexic, indexident, indexval},
                                      entid,  fidglob,   fid,     operator_, weight,
                                      res};
        return read_sections(value(block), sections, b, filter_flags, filter_params, {});
    });
}

void KOB_READ_ENTITYRESULTS2(const int64_t* block, const int32_t* sections, const void*, char* etyp, int32_t* nent,
                             char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid, char* etypframe,
                             int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex, int32_t* indexic,
                             int32_t* indexident, double* indexval, int32_t* entid, int32_t* fidglob, int32_t* fid,
                             char* operator_, double* weight, void* res, const int32_t* memory_size,
                             int32_t* filter_flags, int32_t* filter_params, const int32_t* mode, const int64_t* count,
                             const int64_t* start, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const EntityResults<Reader> b{etyp,      nent,
                                      etypvar,   ncoo,
                                      etypzone,  zoneid,
                                      etypframe, fswitch,
                                      dmpswitch, {nindex, indexic, indexident, indexval},
                                      entid,     fidglob,
                                      fid,       operator_,
                                      weight,    {res, static_cast<std::size_t>(value(memory_size))}};
        return read_sections(value(block), value(sections), b, filter_flags, filter_params,
                             {value(mode), count, start});
    });
}

} // extern "C"
