// SPDX-License-Identifier: BSD-3-Clause
// Result blocks of one state.
#include "kob_results.hpp"

#include "kob_dp.h"

namespace kob {
namespace {

// ---- entity results

/// A table of one variable: a row for each entity, a column for each component.
template <class Io> struct EntityResults {
    EntityTable<Io> table;
    StateIndex<Io> index;
    Reals<Io> res; ///< [nent, ncoo(, 2)]
};

template <class Io> void attributes(Io& io, const EntityResults<Io>& b)
{
    attributes(io, b.table);
    attributes(io, b.index);
}

template <class Io> void values(Io& io, const EntityResults<Io>& b, bool complex, const Part& part)
{
    io.reals("res", b.res, Shape{*b.table.nent, *b.table.ncoo}.with_parts(complex), part);
}

/// Identifiers that many blocks share: written once into a group of their own, linked by each.
std::int32_t write_shared_identifiers(hid_t shared, Writer& block, const EntityResults<Writer>& b,
                                      const Filters& filters, std::size_t stored_size)
{
    if (!has_link(shared, "entid")) {
        Writer io{shared, filters, stored_size};
        identifiers(io, b.table);
        if (!io.ok()) {
            return io.status();
        }
    }
    const hid_t place = block.place(Where::data);
    if (has_link(place, "entid")) {
        return 0;
    }
    Linker links{shared, place};
    identifiers(links, b.table);
    return links.status();
}

std::int32_t write_sections(Location block, const std::int64_t* groups, std::int32_t sections,
                            const EntityResults<Writer>& b, const Filters& filters, std::int32_t value_size,
                            const Part& part, Place place)
{
    const ValueSize size = value_size_of(value_size);
    const std::int32_t key = kind::entity_results.key_of(size.complex);
    if (block.group < 0) {
        return refuse_group(block, kind::entity_results, key);
    }
    Writer io{block, filters, size.stored, place};
    if (section::has(sections, section::attributes)) {
        io.frame(kind::entity_results, key);
        attributes(io, b);
    }
    if (section::has(sections, section::state_index)) {
        values(io, b.index);
    }
    if (io.ok() && section::has(sections, section::identifiers)) {
        if (section::has(sections, section::shared_identifiers)) {
            io.fail(write_shared_identifiers(value(groups + 1), io, b, filters, size.stored));
        } else {
            identifiers(io, b.table);
        }
    }
    if (io.ok() && section::has(sections, section::values)) {
        if (part.is_known()) {
            values(io, b, size.complex, part);
        } else {
            report_error(message::writing_invalid_mode, key);
            io.fail(invalid_mode);
        }
    }
    return io.status();
}

/// Where entity results go.
struct ResultPlace {
    Location group;
    const char* etyp;
    const char* etypvar;
    const char* etypzone;
    const std::int32_t* zoneid;
    const std::int32_t* set;
    const std::int32_t* state;
};

std::int32_t write_results(const ResultPlace& to, const EntityResults<Writer>& b, const Filters& filters,
                           std::int32_t value_size)
{
    Placed placed = place_block(to.group, {validity_of(b.index, to.state),
                                           {kind::entity_results.name, to.etyp, to.etypvar, to.etypzone},
                                           value(to.zoneid),
                                           value(to.set)});
    if (placed.status < 0) {
        return placed.status;
    }
    const std::int32_t result =
        write_sections(placed.location(), nullptr, section::all, b, filters, value_size, {}, placed.place());
    return result == 0 && placed.group.close() < 0 ? -1 : result;
}

std::int32_t read_result_sections(Location block, std::int32_t sections, const EntityResults<Reader>& b,
                                  std::int32_t* filter_flags, std::int32_t* filter_params, const Part& part)
{
    Reader io{block, kind::entity_results};
    if (section::has(sections, section::attributes)) {
        attributes(io, b);
    }
    const auto read_index = [&] {
        if (io.ok() && section::has(sections, section::state_index)) {
            values(io, b.index);
        }
    };
    const auto read_values = [&] {
        if (io.ok() && section::has(sections, section::identifiers)) {
            identifiers(io, b.table);
        }
        if (io.ok() && section::has(sections, section::values)) {
            if (part.is_known()) {
                values(io, b, io.is_complex(), part);
            } else {
                report_error(message::reading_invalid_mode, io.key());
                io.fail(invalid_mode);
            }
        }
    };
    read_in_order(io, read_index, read_values);
    if (section::has(sections, section::values)) {
        io.report_filters("res", filter_flags, filter_params);
    }
    io.key_as_status();
    return io.status();
}

std::int32_t read_results(Location block, std::int32_t pass, const EntityResults<Reader>& b, std::int32_t* filter_flags,
                          std::int32_t* filter_params)
{
    const std::int32_t sections = sections_of_pass(pass, block.generation);
    if (sections == 0) {
        report_error(message::reading_named_pass, kind::entity_results.name, pass);
        return wrong_pass;
    }
    return read_result_sections(block, sections, b, filter_flags, filter_params, {});
}

// ---- element results

/// A table of one variable with several locations in each element.
template <class Io> struct ElementResults {
    ElementTable<Io> table;
    StateIndex<Io> index;
    Arg<Io, double> res; ///< [nele, numl, ncoo(, 2)]
};

template <class Io> void attributes(Io& io, const ElementResults<Io>& b)
{
    attributes(io, b.table);
    attributes(io, b.index);
}

template <class Io> void values(Io& io, const ElementResults<Io>& b, bool complex)
{
    if (!io.ok()) {
        return;
    }
    const Shape shape{*b.table.nele, *b.table.numl, *b.table.ncoo};
    io.reals("res", b.res.get(), shape.with_parts(complex));
}

std::int32_t write_results(const ResultPlace& to, const ElementResults<Writer>& b, const Filters& filters,
                           std::int32_t value_size)
{
    const BlockKind& kind = kind::element_results;
    const BlockPath path{
        validity_of(b.index, to.state), {kind.name, to.etyp, to.etypvar, to.etypzone}, value(to.zoneid), value(to.set)};
    const ValueSize size = value_size_of(value_size);
    return write_open_block(to.group, kind, path, filters, size.stored, [&](Writer& io, const Placed&) {
        io.frame(kind, kind.key_of(size.complex));
        attributes(io, b);
        values(io, b.index);
        identifiers(io, b.table);
        values(io, b, size.complex);
    });
}

std::int32_t read_results(Location block, std::int32_t pass, const ElementResults<Reader>& b,
                          std::int32_t* filter_flags, std::int32_t* filter_params)
{
    const auto read_values = [&](Reader& io) {
        identifiers(io, b.table);
        values(io, b, io.is_complex());
    };
    return read_passes_of_two_keys(block, kind::element_results, b, pass, read_values, filter_flags, filter_params);
}

// ---- activation flags

/// Which entities of one type are active.
template <class Io> struct ActivationFlags {
    Arg<Io, char> etyp;
    Arg<Io, std::int32_t> nent;
    StateIndex<Io> index;
    Arg<Io, std::int32_t> entid; ///< [nent]
    Arg<Io, std::int32_t> flags; ///< [nent], stored as "status"
};

template <class Io> void attributes(Io& io, const ActivationFlags<Io>& b)
{
    io.text("etyp", b.etyp);
    io.integer("nent", b.nent);
    attributes(io, b.index);
}

template <class Io> void values(Io& io, const ActivationFlags<Io>& b)
{
    if (!io.ok()) {
        return;
    }
    io.integers("entid", b.entid, {*b.nent});
    io.integers("status", b.flags, {*b.nent});
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
        const EntityResults<Writer> b{{etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch,
                                       entid, fidglob, fid, operator_, weight},
                                      {nindex, indexic, indexident, indexval},
                                      res};
        return write_results({value(group), etyp, etypvar, etypzone, zoneid, set, state}, b,
                             {filter_flags, filter_params}, value(value_size));
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
        const EntityResults<Writer> b{{etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch,
                                       entid, fidglob, fid, operator_, weight},
                                      {nindex, indexic, indexident, indexval},
                                      {res, static_cast<std::size_t>(value(memory_size))}};
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
        const EntityResults<Reader> b{{etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch,
                                       entid, fidglob, fid, operator_, weight},
                                      {nindex, indexic, indexident, indexval},
                                      res};
        return read_results(value(block), value(pass), b, filter_flags, filter_params);
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
        const EntityResults<Reader> b{{etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch,
                                       entid, fidglob, fid, operator_, weight},
                                      {nindex, indexic, indexident, indexval},
                                      {res, static_cast<std::size_t>(value(memory_size))}};
        return read_result_sections(value(block), value(sections), b, filter_flags, filter_params,
                                    {value(mode), count, start});
    });
}

void KOB_WRITE_ELEMENTRESULTS(const int64_t* group, const char* etypelem, const int32_t* nele, const char* etypvar,
                              const int32_t* ncoo, const int32_t* numl, const int32_t* ndim, const char* etypzone,
                              const int32_t* zoneid, const char* etypframe, const int32_t* fswitch,
                              const int32_t* dmpswitch, const int32_t* nindex, const int32_t* indexic,
                              const int32_t* indexident, const double* indexval, const int32_t* idele,
                              const int32_t* fidglob, const int32_t* fid, const double* eloc, const char* operator_,
                              const double* weight, const double* res, const int32_t* set, const int32_t* state,
                              const int32_t* filter_flags, const int32_t* filter_params, const int32_t* value_size,
                              int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const ElementResults<Writer> b{{etypelem, nele, etypvar, ncoo, numl, ndim, etypzone, zoneid, etypframe, fswitch,
                                        dmpswitch, idele, fidglob, fid, eloc, operator_, weight},
                                       {nindex, indexic, indexident, indexval},
                                       res};
        return write_results({value(group), etypelem, etypvar, etypzone, zoneid, set, state}, b,
                             {filter_flags, filter_params}, value(value_size));
    });
}

void KOB_READ_ELEMENTRESULTS(const int64_t* block, const int32_t* pass, char* etypelem, int32_t* nele, char* etypvar,
                             int32_t* ncoo, int32_t* numl, int32_t* ndim, char* etypzone, int32_t* zoneid,
                             char* etypframe, int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex, int32_t* indexic,
                             int32_t* indexident, double* indexval, int32_t* idele, int32_t* fidglob, int32_t* fid,
                             double* eloc, char* operator_, double* weight, double* res, int32_t* filter_flags,
                             int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const ElementResults<Reader> b{{etypelem, nele, etypvar, ncoo, numl, ndim, etypzone, zoneid, etypframe, fswitch,
                                        dmpswitch, idele, fidglob, fid, eloc, operator_, weight},
                                       {nindex, indexic, indexident, indexval},
                                       res};
        return read_results(value(block), value(pass), b, filter_flags, filter_params);
    });
}

void KOB_WRITE_ACTIVFLAGS(const int64_t* group, const char* etyp, const int32_t* nent, const int32_t* nindex,
                          const int32_t* indexic, const int32_t* indexident, const double* indexval,
                          const int32_t* entid, const int32_t* flags, const int32_t* state, const int32_t* filter_flags,
                          const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const ActivationFlags<Writer> b{etyp, nent, {nindex, indexic, indexident, indexval}, entid, flags};
        return write_new_block(value(group), kind::activation_flags,
                               {validity_of(b.index, state), {kind::activation_flags.name, etyp}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB_READ_ACTIVFLAGS(const int64_t* block, const int32_t* pass, char* etyp, int32_t* nent, int32_t* nindex,
                         int32_t* indexic, int32_t* indexident, double* indexval, int32_t* entid, int32_t* flags,
                         int32_t* filter_flags, int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const ActivationFlags<Reader> b{etyp, nent, {nindex, indexic, indexident, indexval}, entid, flags};
        return read_passes(value(block), kind::activation_flags, b, value(pass), filter_flags, filter_params, "status");
    });
}

// ---- older layout

void KOB1_WRITE_ENTITYRESULTS(const int64_t* group, const char* etyp, const int32_t* nent, const char* etypvar,
                              const int32_t* ncoo, const char* etypzone, const int32_t* zoneid, const char* etypframe,
                              const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                              const int32_t* indexident, const double* indexval, const int32_t* entid,
                              const int32_t* fidglob, const int32_t* fid, const char* operator_, const double* weight,
                              const double* res, const int32_t* set, const int32_t* state, const int32_t* filter_flags,
                              const int32_t* filter_params, const int32_t* value_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const EntityResults<Writer> b{{etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch,
                                       entid, fidglob, fid, operator_, weight},
                                      {nindex, nullptr, indexident, indexval},
                                      res};
        return write_results({older(group), etyp, etypvar, etypzone, zoneid, set, state}, b,
                             {filter_flags, filter_params}, value(value_size));
    });
}

void KOB1_READ_ENTITYRESULTS(const int64_t* block, const int32_t* pass, char* etyp, int32_t* nent, char* etypvar,
                             int32_t* ncoo, char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch,
                             int32_t* dmpswitch, int32_t* nindex, int32_t* indexident, double* indexval, int32_t* entid,
                             int32_t* fidglob, int32_t* fid, char* operator_, double* weight, double* res,
                             int32_t* filter_flags, int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const EntityResults<Reader> b{{etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch,
                                       entid, fidglob, fid, operator_, weight},
                                      {nindex, nullptr, indexident, indexval},
                                      res};
        return read_results(older(block), value(pass), b, filter_flags, filter_params);
    });
}

void KOB1_WRITE_ENTITYRESULTS2(const int64_t* groups, const int32_t* sections, const void*, const char* etyp,
                               const int32_t* nent, const char* etypvar, const int32_t* ncoo, const char* etypzone,
                               const int32_t* zoneid, const char* etypframe, const int32_t* fswitch,
                               const int32_t* dmpswitch, const int32_t* nindex, const int32_t* indexident,
                               const double* indexval, const int32_t* entid, const int32_t* fidglob, const int32_t* fid,
                               const char* operator_, const double* weight, const void* res, const int32_t* memory_size,
                               const int32_t* filter_flags, const int32_t* filter_params, const int32_t* value_size,
                               const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const EntityResults<Writer> b{{etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch,
                                       entid, fidglob, fid, operator_, weight},
                                      {nindex, nullptr, indexident, indexval},
                                      {res, static_cast<std::size_t>(value(memory_size))}};
        return write_sections(older(groups), groups, value(sections), b, {filter_flags, filter_params},
                              value(value_size), {value(mode), count, start}, Place::unknown);
    });
}

void KOB1_READ_ENTITYRESULTS2(const int64_t* block, const int32_t* sections, const void*, char* etyp, int32_t* nent,
                              char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid, char* etypframe,
                              int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex, int32_t* indexident,
                              double* indexval, int32_t* entid, int32_t* fidglob, int32_t* fid, char* operator_,
                              double* weight, void* res, const int32_t* memory_size, int32_t* filter_flags,
                              int32_t* filter_params, const int32_t* mode, const int64_t* count, const int64_t* start,
                              int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const EntityResults<Reader> b{{etyp, nent, etypvar, ncoo, etypzone, zoneid, etypframe, fswitch, dmpswitch,
                                       entid, fidglob, fid, operator_, weight},
                                      {nindex, nullptr, indexident, indexval},
                                      {res, static_cast<std::size_t>(value(memory_size))}};
        return read_result_sections(older(block), value(sections), b, filter_flags, filter_params,
                                    {value(mode), count, start});
    });
}

void KOB1_WRITE_ELEMENTRESULTS(const int64_t* group, const char* etypelem, const int32_t* nele, const char* etypvar,
                               const int32_t* ncoo, const int32_t* numl, const int32_t* ndim, const char* etypzone,
                               const int32_t* zoneid, const char* etypframe, const int32_t* fswitch,
                               const int32_t* dmpswitch, const int32_t* nindex, const int32_t* indexident,
                               const double* indexval, const int32_t* idele, const int32_t* fidglob, const int32_t* fid,
                               const double* eloc, const char* operator_, const double* weight, const double* res,
                               const int32_t* set, const int32_t* state, const int32_t* filter_flags,
                               const int32_t* filter_params, const int32_t* value_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const ElementResults<Writer> b{{etypelem, nele, etypvar, ncoo, numl, ndim, etypzone, zoneid, etypframe, fswitch,
                                        dmpswitch, idele, fidglob, fid, eloc, operator_, weight},
                                       {nindex, nullptr, indexident, indexval},
                                       res};
        return write_results({older(group), etypelem, etypvar, etypzone, zoneid, set, state}, b,
                             {filter_flags, filter_params}, value(value_size));
    });
}

void KOB1_READ_ELEMENTRESULTS(const int64_t* block, const int32_t* pass, char* etypelem, int32_t* nele, char* etypvar,
                              int32_t* ncoo, int32_t* numl, int32_t* ndim, char* etypzone, int32_t* zoneid,
                              char* etypframe, int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex,
                              int32_t* indexident, double* indexval, int32_t* idele, int32_t* fidglob, int32_t* fid,
                              double* eloc, char* operator_, double* weight, double* res, int32_t* filter_flags,
                              int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const ElementResults<Reader> b{{etypelem, nele, etypvar, ncoo, numl, ndim, etypzone, zoneid, etypframe, fswitch,
                                        dmpswitch, idele, fidglob, fid, eloc, operator_, weight},
                                       {nindex, nullptr, indexident, indexval},
                                       res};
        return read_results(older(block), value(pass), b, filter_flags, filter_params);
    });
}

void KOB1_WRITE_ACTIVFLAGS(const int64_t* group, const char* etyp, const int32_t* nent, const int32_t* nindex,
                           const int32_t* indexident, const double* indexval, const int32_t* entid,
                           const int32_t* flags, const int32_t* state, const int32_t* filter_flags,
                           const int32_t* filter_params, const int32_t* float_size, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const ActivationFlags<Writer> b{etyp, nent, {nindex, nullptr, indexident, indexval}, entid, flags};
        return write_new_block(older(group), kind::activation_flags,
                               {validity_of(b.index, state), {kind::activation_flags.name, etyp}},
                               {filter_flags, filter_params}, stored_float(float_size), b);
    });
}

void KOB1_READ_ACTIVFLAGS(const int64_t* block, const int32_t* pass, char* etyp, int32_t* nent, int32_t* nindex,
                          int32_t* indexident, double* indexval, int32_t* entid, int32_t* flags, int32_t* filter_flags,
                          int32_t* filter_params, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const ActivationFlags<Reader> b{etyp, nent, {nindex, nullptr, indexident, indexval}, entid, flags};
        return read_passes(older(block), kind::activation_flags, b, value(pass), filter_flags, filter_params, "status");
    });
}

} // extern "C"
