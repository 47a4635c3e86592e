// SPDX-License-Identifier: BSD-3-Clause
// Property tables, written and read in pieces.
#include "kob_block.hpp"
#include "kob_dp.h"

#include <algorithm>
#include <vector>

namespace kob {
namespace {

/// Per-entity parameters of one entity type in one zone.
template <class Io> struct Properties {
    Arg<Io, char> etyp;
    Arg<Io, char> etypprop;
    Arg<Io, char> etypzone;
    Arg<Io, std::int32_t> zoneid;
    Arg<Io, std::int32_t> nent;
    Arg<Io, std::int32_t> nbid;
    Arg<Io, std::int32_t> nbint;
    Arg<Io, std::int32_t> nbfloat;
    Arg<Io, std::int32_t> nbstring;
    Arg<Io, std::int32_t> length; ///< characters of a text parameter
    StateIndex<Io> index;
    Arg<Io, std::int32_t> entid;   ///< [nent]
    Arg<Io, std::int32_t> idparam; ///< [nent, nbid]
    Arg<Io, std::int32_t> iparam;  ///< [nent, nbint]
    Arg<Io, double> fparam;        ///< [nent, nbfloat]
    Arg<Io, char> cparam;          ///< [nent, nbstring] texts of `length` characters
};

template <class Io> void attributes(Io& io, const Properties<Io>& b)
{
    io.text("etyp", b.etyp);
    io.text("etypprop", b.etypprop);
    io.text("etypzone", b.etypzone);
    io.integer("zoneid", b.zoneid);
    io.integer("nent", b.nent);
    io.integer("nbid", b.nbid);
    io.integer("nbint", b.nbint);
    io.integer("nbfloat", b.nbfloat);
    io.integer("nbstring", b.nbstring);
    io.integer("length", b.length);
    attributes(io, b.index);
}

template <class Io, class Block> void identifiers(Io& io, const Block& b) { io.integers("entid", b.entid, {*b.nent}); }

/// The rows of a parameter table that a call transfers.
class RowSelection {
public:
    RowSelection(std::int32_t mode, const std::int64_t* count, const std::int64_t* rows)
        : mode_{mode}, count_{count}, rows_{rows}
    {
    }

    [[nodiscard]] bool is_known() const { return Part{mode_}.is_known(); }

    /// Calls `transfer(shape, part)` for a table of so many columns. Pieces go into a table that is there already:
    /// they bring no extents to create one with.
    template <class Transfer> void apply(std::int32_t nent, std::int32_t columns, Transfer&& transfer) const
    {
        if (mode_ == access_mode::whole) {
            transfer(Shape{nent, columns}, Part{});
        } else if (mode_ == access_mode::block) {
            const std::array<std::int64_t, 2> count{value(count_), columns};
            const std::array<std::int64_t, 2> start{count[0] == 0 ? 0 : value(rows_), 0};
            transfer(Shape::of_rank(2), Part{mode_, count.data(), start.data()});
        } else {
            const std::int64_t points = value(count_);
            // A negative count is no point of any table; storage says so.
            const auto listed = static_cast<std::size_t>(std::max<std::int64_t>(points, 0));
            std::vector<std::int64_t> coordinates(2 * listed, 0);
            for (std::size_t i = 0; i < listed; ++i) {
                coordinates[2 * i] = value(rows_ == nullptr ? nullptr : rows_ + i);
            }
            const std::int64_t none = 0;
            transfer(Shape::of_rank(2), Part{mode_, &points, coordinates.empty() ? &none : coordinates.data()});
        }
    }

private:
    std::int32_t mode_;
    const std::int64_t* count_;
    const std::int64_t* rows_;
};

/// The parameter tables. `refuse()` is called when one is due and the access mode is none.
template <class Io, class Refuse>
void values(Io& io, const Properties<Io>& b, const RowSelection& rows, Refuse&& refuse)
{
    const auto table = [&](std::int32_t columns, auto&& transfer) {
        if (!io.ok() || columns < 1) {
            return;
        }
        if (!rows.is_known()) {
            refuse();
            return;
        }
        rows.apply(*b.nent, columns, transfer);
    };
    table(*b.nbid, [&](const Shape& shape, const Part& part) { io.integers("idparam", b.idparam, shape, part); });
    table(*b.nbint, [&](const Shape& shape, const Part& part) { io.integers("iparam", b.iparam, shape, part); });
    table(*b.nbfloat,
          [&](const Shape& shape, const Part& part) { io.exact_reals("fparam", b.fparam.get(), shape, part); });
    if (io.ok() && *b.length > 0) {
        table(*b.nbstring,
              [&](const Shape& shape, const Part& part) { io.texts("cparam", b.cparam, shape, *b.length, part); });
    }
}

/// The identifiers go once into a group that several blocks share; each block gets a hard link to them.
std::int32_t write_shared_identifiers(hid_t shared, hid_t block, const Properties<Writer>& b, const Filters& filters,
                                      std::size_t float_size)
{
    if (!has_link(shared, "entid")) {
        Writer io{shared, filters, float_size};
        identifiers(io, b);
        if (!io.ok()) {
            return io.status();
        }
    }
    if (!has_link(block, "entid")) {
        share_link(shared, block, "entid"); // by contract unchecked: the block lives without the link
    }
    return 0;
}

} // namespace
} // namespace kob

extern "C" {

void KOB_WRITE_PROPERTIES(const int64_t* groups, const int32_t* sections, const char* etyp, const char* etypprop,
                          const char* etypzone, const int32_t* zoneid, const int32_t* nent, const int32_t* nbid,
                          const int32_t* nbint, const int32_t* nbfloat, const int32_t* nbstring, const int32_t* length,
                          const int32_t* nindex, const int32_t* indexic, const int32_t* indexident,
                          const double* indexval, const int32_t* entid, const int32_t* idparam, const int32_t* iparam,
                          const double* fparam, const char* cparam, const int32_t* filter_flags,
                          const int32_t* filter_params, const int32_t* float_size, const int32_t* mode,
                          const int64_t* count, const int64_t* rows, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Properties<Writer> b{etyp,
                                   etypprop,
                                   etypzone,
                                   zoneid,
                                   nent,
                                   nbid,
                                   nbint,
                                   nbfloat,
                                   nbstring,
                                   length,
                                   {nindex, indexic, indexident, indexval},
                                   entid,
                                   idparam,
                                   iparam,
                                   fparam,
                                   cparam};
        const hid_t block = value(groups);
        if (block < 0) {
            report_error(message::writing_key, kind::properties.key);
            return static_cast<std::int32_t>(block);
        }
        const Filters filters{filter_flags, filter_params};
        Writer io{block, filters, stored_float(float_size)};
        if (section::has(value(sections), section::attributes)) {
            io.frame(kind::properties, kind::properties.key);
            attributes(io, b);
        }
        if (section::has(value(sections), section::state_index)) {
            values(io, b.index);
        }
        if (io.ok() && section::has(value(sections), section::identifiers)) {
            if (section::has(value(sections), section::shared_identifiers)) {
                io.fail(write_shared_identifiers(value(groups + 1), block, b, filters, stored_float(float_size)));
            } else {
                identifiers(io, b);
            }
        }
        if (io.ok() && section::has(value(sections), section::values)) {
            values(io, b, RowSelection{value(mode), count, rows}, [&] {
                report_error(message::writing_invalid_mode, kind::properties.key);
                io.fail(invalid_mode);
            });
        }
        return io.status();
    });
}

void KOB_READ_PROPERTIES(const int64_t* block, const int32_t* sections, char* etyp, char* etypprop, char* etypzone,
                         int32_t* zoneid, int32_t* nent, int32_t* nbid, int32_t* nbint, int32_t* nbfloat,
                         int32_t* nbstring, int32_t* length, int32_t* nindex, int32_t* indexic, int32_t* indexident,
                         double* indexval, int32_t* entid, int32_t* idparam, int32_t* iparam, double* fparam,
                         char* cparam, const void*, const void*, const int32_t* mode, const int64_t* count,
                         const int64_t* rows, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        const Properties<Reader> b{etyp,
                                   etypprop,
                                   etypzone,
                                   zoneid,
                                   nent,
                                   nbid,
                                   nbint,
                                   nbfloat,
                                   nbstring,
                                   length,
                                   {nindex, indexic, indexident, indexval},
                                   entid,
                                   idparam,
                                   iparam,
                                   fparam,
                                   cparam};
        Reader io{value(block), kind::properties};
        io.key_as_status();
        if (section::has(value(sections), section::attributes)) {
            attributes(io, b);
        }
        if (io.ok() && section::has(value(sections), section::state_index)) {
            values(io, b.index);
        }
        if (io.ok() && section::has(value(sections), section::identifiers)) {
            identifiers(io, b);
        }
        if (io.ok() && section::has(value(sections), section::values)) {
            values(io, b, RowSelection{value(mode), count, rows}, [&] {
                report_error(message::reading_invalid_mode, kind::properties.key);
                io.fail(invalid_mode);
            });
        }
        return io.status();
    });
}

} // extern "C"
