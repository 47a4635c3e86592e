// SPDX-License-Identifier: BSD-3-Clause
// The merger's calls of the result and matrix blocks' readers and writers.
#include "kob_merge_results.hpp"

#include "kob_dp.h"
#include "kob_merge_call.hpp"
#include "kob_sections.hpp"

#include <cstring>
#include <utility>

namespace kob::merge {
namespace {

constexpr std::int32_t as_double = sizeof(double);
constexpr std::int32_t whole = access_mode::whole;
constexpr std::int32_t some_rows = access_mode::block;

template <class T> bool same_bits(const std::vector<T>& a, const std::vector<T>& b)
{
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

} // namespace

std::int32_t value_size_for(bool complex, std::int32_t stored_size)
{
    const std::int32_t size = stored_size == sizeof(float) ? stored_size : as_double;
    return complex ? 4 * size : size;
}

// ---- entity results

void EntityResults::make_room(StoredBlock& block)
{
    index.make_room(block);
    fit(entid, stored(block, "entid"));
    fit(fid, stored(block, "fid"));
    fit(operators, text_bytes(block, "operator"));
    fit(weight, stored(block, "weight"));
    fit(res, holds_values ? stored(block, "res") * static_cast<std::size_t>(memory_size()) : 0);
}

std::int32_t EntityResults::read(StoredBlock& block, std::int32_t sections)
{
    const std::int32_t memory = memory_size();
    std::int32_t result = 0;
    call(block.generation(), KOB_READ_ENTITYRESULTS2, KOB1_READ_ENTITYRESULTS2, block.handle(), &sections, nullptr,
         etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch,
         &index.nindex, current_only(&index.indexic), index.indexident.data(), index.indexval.data(), entid.data(),
         &fidglob, fid.data(), operators.data(), weight.data(), res.data(), &memory, &compression.flags,
         compression.params.data(), &whole, nullptr, nullptr, &result);
    if (result < 0) {
        return result;
    }
    key = result;
    if (sections == passes.attributes) {
        size = stored_width(block, "res");
    }
    if (section::has(sections, section::identifiers)) {
        widen_names(block, "operator", operators);
    }
    return result;
}

std::int32_t EntityResults::write_sections(std::int32_t sections, const Destination& to, const std::int32_t* entities,
                                           const void* values, const Part& part) const
{
    const std::array<std::int64_t, 2> groups{to.group, -1};
    const std::int32_t memory = memory_size();
    const std::int32_t value_size = value_size_for(is_complex(), size);
    std::int32_t result = 0;
    call(to.generation, KOB_WRITE_ENTITYRESULTS2, KOB1_WRITE_ENTITYRESULTS2, groups.data(), &sections, nullptr,
         etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch,
         &index.nindex, current_only(&index.indexic), index.indexident.data(), index.indexval.data(), entities,
         &fidglob, fid.data(), operators.data(), weight.data(), values, &memory, &to.compression.flags,
         to.compression.params.data(), &value_size, &part.mode, part.count.data(), part.start.data(), &result);
    return result;
}

std::int32_t EntityResults::write(const Destination& to) const
{
    return write_sections(section::all, to, entid.data(), res.data(), {});
}

std::int32_t EntityResults::write_frame(const Destination& to, const std::int32_t* entities) const
{
    return write_sections(section::all & ~section::values, to, entities, nullptr, {});
}

std::int32_t EntityResults::write_values(const Destination& to, std::int64_t first, std::int64_t count,
                                         const void* values) const
{
    return write_sections(section::values, to, nullptr, values, {some_rows, {count, ncoo, 2}, {first, 0, 0}});
}

BlockPath EntityResults::path(std::int32_t state, std::int32_t set) const
{
    return {
        index.validity(state), {kind::entity_results.name, etyp.data(), etypvar.data(), etypzone.data()}, zoneid, set};
}

std::int32_t EntityResults::values_pass(bool leads) const
{
    const bool has_identified_columns = fswitch == 1 || dmpswitch == 1;
    return (holds_values ? section::values : 0) | (leads || has_identified_columns ? section::identifiers : 0);
}

// ---- series

void Series::make_room(StoredBlock& block)
{
    fit(indexident, stored(block, "indexident", Where::index));
    fit(indexval, stored(block, "indexval", Where::index));
    fit(entid, stored(block, "entid"));
    fit(fid, stored(block, "fid"));
    fit(operators, text_bytes(block, "operator"));
    fit(weight, stored(block, "weight"));
}

std::int32_t Series::read(StoredBlock& block, std::int32_t sections)
{
    std::int32_t result = 0;
    call(block.generation(), KOB_READ_MULTIENTITYRESULTS2, KOB1_READ_MULTIENTITYRESULTS2, block.handle(), &sections,
         nullptr, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid, etypframe.data(),
         &fswitch, &dmpswitch, &nindex, &nstate, indexident.data(), indexval.data(), entid.data(), &fidglob, fid.data(),
         operators.data(), weight.data(), res.data(), &as_double, &compression.flags, compression.params.data(), &whole,
         nullptr, nullptr, &result);
    if (result < 0) {
        return result;
    }
    key = result;
    if (sections == passes.attributes) {
        size = stored_width(block, "res");
    }
    if (section::has(sections, section::identifiers)) {
        widen_names(block, "operator", operators);
    }
    return result;
}

std::int32_t Series::read_states(StoredBlock& block, std::int64_t first, std::int64_t count)
{
    const std::array<std::int64_t, 4> counts{count, nent, ncoo, 2};
    const std::array<std::int64_t, 4> start{first, 0, 0, 0};
    std::int32_t result = 0;
    call(block.generation(), KOB_READ_MULTIENTITYRESULTS2, KOB1_READ_MULTIENTITYRESULTS2, block.handle(),
         &section::values, nullptr, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid,
         etypframe.data(), &fswitch, &dmpswitch, &nindex, &nstate, indexident.data(), indexval.data(), entid.data(),
         &fidglob, fid.data(), operators.data(), weight.data(), res.data(), &as_double, &compression.flags,
         compression.params.data(), &some_rows, counts.data(), start.data(), &result);
    return result;
}

std::int32_t Series::write_states(const Destination& to, std::int64_t first, std::int64_t count,
                                  const std::int32_t* identifiers_of_states, const double* values_of_states) const
{
    const std::array<std::int64_t, 2> groups{to.group, -1};
    const std::array<std::int64_t, 4> counts{count, nent, ncoo, 2};
    const std::array<std::int64_t, 4> start{first, 0, 0, 0};
    const std::int32_t& mode = count == 0 ? whole : some_rows;
    const std::int32_t no_states = 0;
    const std::int32_t value_size = value_size_for(is_complex(), size);
    std::int32_t held = 0;
    std::int32_t result = 0;
    call(to.generation, KOB_WRITE_MULTIENTITYRESULTS2, KOB1_WRITE_MULTIENTITYRESULTS2, groups.data(), nullptr, nullptr,
         series.data(), etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid, etypframe.data(), &fswitch,
         &dmpswitch, &nindex, identifiers_of_states, values_of_states, entid.data(), &fidglob, fid.data(),
         operators.data(), weight.data(), res.data(), &as_double, &no_states, &to.compression.flags,
         to.compression.params.data(), &value_size, &mode, counts.data(), start.data(), &held, &result);
    return result;
}

std::int32_t Series::read_filters(StoredBlock& block)
{
    const std::int32_t rows_before = std::exchange(nent, std::min(nent, 1));
    fit(res, static_cast<std::size_t>(std::max<std::int64_t>(values_of_state(), 0)));
    const std::int32_t result = nstate > 0 ? read_states(block, 0, 1) : 0;
    nent = rows_before;
    return result;
}

// ---- element results

std::int32_t ElementResults::read(StoredBlock& block)
{
    index.make_room(block);
    fit(idele, stored(block, "idele"));
    fit(fid, stored(block, "fid"));
    fit(eloc, stored(block, "eloc"));
    fit(operators, text_bytes(block, "operator"));
    fit(weight, stored(block, "weight"));
    fit(res, stored(block, "res"));
    call(block.generation(), KOB_READ_ELEMENTRESULTS, KOB1_READ_ELEMENTRESULTS, block.handle(), &pass, etypelem.data(),
         &nele, etypvar.data(), &ncoo, &numl, &ndim, etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch,
         &index.nindex, current_only(&index.indexic), index.indexident.data(), index.indexval.data(), idele.data(),
         &fidglob, fid.data(), eloc.data(), operators.data(), weight.data(), res.data(), &compression.flags,
         compression.params.data(), &key);
    size = stored_width(block, "res");
    widen_names(block, "operator", operators);
    return key;
}

std::int32_t ElementResults::write(const Destination& to) const
{
    const std::int32_t value_size = value_size_for(key == kind::element_results.complex_key, size);
    std::int32_t result = 0;
    call(to.generation, KOB_WRITE_ELEMENTRESULTS, KOB1_WRITE_ELEMENTRESULTS, &to.group, etypelem.data(), &nele,
         etypvar.data(), &ncoo, &numl, &ndim, etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch,
         &index.nindex, current_only(&index.indexic), index.indexident.data(), index.indexval.data(), idele.data(),
         &fidglob, fid.data(), eloc.data(), operators.data(), weight.data(), res.data(), &to.set, &to.state,
         &to.compression.flags, to.compression.params.data(), &value_size, &result);
    return result;
}

BlockPath ElementResults::path(std::int32_t state, std::int32_t set) const
{
    return {index.validity(state),
            {kind::element_results.name, etypelem.data(), etypvar.data(), etypzone.data()},
            zoneid,
            set};
}

// ---- matrices

std::int32_t Matrix::read(StoredBlock& block)
{
    const bool is_dense = kind.key == kind::dense_matrix.key;
    index.make_room(block);
    fit(val, stored(block, "val"));
    call(block.generation(), is_dense ? KOB_READ_DENSEMATRIX : KOB_READ_TRIANGULARMATRIX,
         is_dense ? KOB1_READ_DENSEMATRIX : KOB1_READ_TRIANGULARMATRIX, block.handle(), &pass, etyp.data(), &entid,
         etypvar.data(), &sizes[0], &sizes[1], &index.nindex, current_only(&index.indexic), index.indexident.data(),
         index.indexval.data(), val.data(), &compression.flags, compression.params.data(), nullptr, nullptr, &key, 0,
         0);
    size = stored_width(block, "val");
    return key;
}

std::int32_t Matrix::write(const Destination& to) const
{
    const bool is_dense = kind.key == kind::dense_matrix.key;
    const std::int32_t value_size = value_size_for(key == kind.complex_key, size);
    std::int32_t result = 0;
    call(to.generation, is_dense ? KOB_WRITE_DENSEMATRIX : KOB_WRITE_TRIANGULARMATRIX,
         is_dense ? KOB1_WRITE_DENSEMATRIX : KOB1_WRITE_TRIANGULARMATRIX, &to.group, etyp.data(), &entid,
         etypvar.data(), &sizes[0], &sizes[1], &index.nindex, current_only(&index.indexic), index.indexident.data(),
         index.indexval.data(), val.data(), &to.state, &to.compression.flags, to.compression.params.data(), &value_size,
         &whole, nullptr, nullptr, &result, 0, 0);
    return result;
}

BlockPath Matrix::path(std::int32_t state, std::int32_t) const
{
    return {index.validity(state), {kind.name, etyp.data(), etypvar.data(), "id"}, entid};
}

bool Matrix::equals(const Matrix& other) const
{
    return key == other.key && etyp.text() == other.etyp.text() && etypvar.text() == other.etypvar.text() &&
           entid == other.entid && sizes == other.sizes && index.nindex == other.index.nindex &&
           index.indexic == other.index.indexic && same_bits(index.indexident, other.index.indexident) &&
           same_bits(index.indexval, other.index.indexval) && same_bits(val, other.val);
}

} // namespace kob::merge
