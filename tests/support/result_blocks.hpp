// SPDX-License-Identifier: BSD-3-Clause
// The arguments of the result blocks' entry points, with a small block as the default of each.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include <kob_dp.h>

#include "block_call.hpp"
#include "kob_file.hpp"

namespace kob_test {

/// The value of an element of a series: says where it stands. Exact in 4-byte numbers.
inline double series_value(std::int64_t row, std::size_t element)
{
    return 1000.0 * static_cast<double>(row) + static_cast<double>(element) + 0.5;
}

// ---- element results

struct ElementResults {
    Text256 etypelem = "HEXA8";
    std::int32_t nele = 2;
    Text256 etypvar = "STRESS";
    std::int32_t ncoo = 3;
    std::int32_t numl = 4;
    std::int32_t ndim = 2;
    Text256 etypzone = "ZONE";
    std::int32_t zoneid = 5;
    Text256 etypframe = "GLOBAL";
    std::int32_t fswitch = 0;
    std::int32_t dmpswitch = 0;
    std::int32_t nindex = 1;
    std::int32_t indexic = 7;
    std::vector<std::int32_t> indexident{12};
    std::vector<double> indexval{0.125};
    std::vector<std::int32_t> idele{101, 102};
    std::int32_t fidglob = 33;
    std::vector<std::int32_t> fid{};
    std::vector<double> eloc{0.0, 0.5, 1.0, 1.5, 2.0, 2.5, 3.0, 3.5};
    Texts256 operators{};
    std::vector<double> weight{};
    std::vector<double> res = numbered(24);
    std::int32_t set = -1;
    std::int32_t state = -1;
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{0, 0};
    std::int32_t value_size = 8;

    static std::vector<double> numbered(std::size_t count, std::int64_t row = 0)
    {
        std::vector<double> values(count);
        for (std::size_t i = 0; i < count; ++i) values[i] = series_value(row, i);
        return values;
    }

    Outcome write(const std::int64_t* group) const
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_ELEMENTRESULTS(group, etypelem.data(), &nele, etypvar.data(), &ncoo, &numl, &ndim,
                                     etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex,
                                     &indexic, indexident.data(), indexval.data(), idele.data(), &fidglob, fid.data(),
                                     eloc.data(), texts(operators), weight.data(), res.data(), &set, &state,
                                     &filter_flags, filter_params.data(), &value_size, status);
        });
    }
    Outcome write(const KobFile& file) const { return write(file.address()); }

    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_ELEMENTRESULTS(&block, &pass, etypelem.data(), &nele, etypvar.data(), &ncoo, &numl, &ndim,
                                    etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex, &indexic,
                                    indexident.data(), indexval.data(), idele.data(), &fidglob, fid.data(), eloc.data(),
                                    operators.data(), weight.data(), res.data(), &filter_flags, filter_params.data(),
                                    status);
        });
    }

    static Address texts(const Texts256& all) { return Address{const_cast<Texts256&>(all).data()}; }
};

inline auto fields_of(const ElementResults* /*unused*/)
{
    using B = ElementResults;
    return std::make_tuple(
        Field{"etypelem", section::attributes, &B::etypelem}, Field{"nele", section::attributes, &B::nele},
        Field{"etypvar", section::attributes, &B::etypvar}, Field{"ncoo", section::attributes, &B::ncoo},
        Field{"numl", section::attributes, &B::numl}, Field{"ndim", section::attributes, &B::ndim},
        Field{"etypzone", section::attributes, &B::etypzone}, Field{"zoneid", section::attributes, &B::zoneid},
        Field{"etypframe", section::attributes, &B::etypframe}, Field{"fswitch", section::attributes, &B::fswitch},
        Field{"dmpswitch", section::attributes, &B::dmpswitch}, Field{"nindex", section::attributes, &B::nindex},
        Field{"indexic", section::attributes, &B::indexic}, Field{"indexident", section::index, &B::indexident},
        Field{"indexval", section::index, &B::indexval}, Field{"idele", section::identifiers, &B::idele},
        Field{"fidglob", section::one_frame, &B::fidglob}, Field{"fid", section::frames, &B::fid},
        Field{"eloc", section::values, &B::eloc}, Field{"operator", section::combination, &B::operators},
        Field{"weight", section::combination, &B::weight}, Field{"res", section::values, &B::res},
        Field{"filter_flags", section::filters, &B::filter_flags},
        Field{"filter_params", section::filters, &B::filter_params});
}

// ---- element results of a series

struct MultiElementResults {
    Text256 series = "TIME";
    Text256 etypelem = "HEXA8";
    std::int32_t nele = 2;
    Text256 etypvar = "STRESS";
    std::int32_t ncoo = 3;
    std::int32_t numl = 4;
    std::int32_t ndim = 2;
    Text256 etypzone = "ZONE";
    std::int32_t zoneid = 5;
    Text256 etypframe = "GLOBAL";
    std::int32_t fswitch = 0;
    std::int32_t dmpswitch = 0;
    std::int32_t nindex = 1;
    std::int32_t nstate = 1; ///< readers only
    std::vector<std::int32_t> indexident{};
    std::vector<double> indexval{};
    std::vector<std::int32_t> idele{101, 102};
    std::int32_t fidglob = 33;
    std::vector<std::int32_t> fid{};
    std::vector<double> eloc{0.0, 0.5, 1.0, 1.5, 2.0, 2.5, 3.0, 3.5};
    Texts256 operators{};
    std::vector<double> weight{};
    std::vector<double> res{};
    std::int32_t set = -1;
    std::int32_t n = 1;
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{0, 0};
    std::int32_t value_size = 8;

    /// The first states of a series.
    explicit MultiElementResults(std::int32_t states = 1, std::int32_t size = 8) : value_size{size} { hold(states); }

    /// Fills the arrays of the states; `shift` tells a later version of them from an earlier one.
    void hold(std::int32_t states, double shift = 0)
    {
        n = nstate = states;
        const auto parts = static_cast<std::size_t>(value_size == 16 || value_size == 32 ? 2 : 1);
        const auto count = static_cast<std::size_t>(nele * numl * ncoo) * parts;
        indexident.clear();
        indexval.clear();
        res.clear();
        for (std::int32_t row = 0; row < states; ++row) {
            for (std::int32_t i = 0; i < nindex; ++i) {
                indexident.push_back(10 * (row + 1) + i);
                indexval.push_back(0.25 * row + i + shift);
            }
            for (std::size_t i = 0; i < count; ++i) res.push_back(series_value(row, i) + shift);
        }
    }

    Outcome write(const std::int64_t* group) const
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_MULTIELEMENTRESULTS(
                group, series.data(), etypelem.data(), &nele, etypvar.data(), &ncoo, &numl, &ndim, etypzone.data(),
                &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex, indexident.data(), indexval.data(),
                idele.data(), &fidglob, fid.data(), eloc.data(), ElementResults::texts(operators), weight.data(),
                res.data(), &set, &n, &filter_flags, filter_params.data(), &value_size, status);
        });
    }
    Outcome write(const KobFile& file) const { return write(file.address()); }

    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_MULTIELEMENTRESULTS(&block, &pass, series.data(), etypelem.data(), &nele, etypvar.data(), &ncoo,
                                         &numl, &ndim, etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch,
                                         &nindex, &nstate, indexident.data(), indexval.data(), idele.data(), &fidglob,
                                         fid.data(), eloc.data(), operators.data(), weight.data(), res.data(),
                                         &filter_flags, filter_params.data(), status);
        });
    }
};

inline auto fields_of(const MultiElementResults* /*unused*/)
{
    using B = MultiElementResults;
    return std::make_tuple(
        Field{"series", section::attributes, &B::series}, Field{"etypelem", section::attributes, &B::etypelem},
        Field{"nele", section::attributes, &B::nele}, Field{"etypvar", section::attributes, &B::etypvar},
        Field{"ncoo", section::attributes, &B::ncoo}, Field{"numl", section::attributes, &B::numl},
        Field{"ndim", section::attributes, &B::ndim}, Field{"etypzone", section::attributes, &B::etypzone},
        Field{"zoneid", section::attributes, &B::zoneid}, Field{"etypframe", section::attributes, &B::etypframe},
        Field{"fswitch", section::attributes, &B::fswitch}, Field{"dmpswitch", section::attributes, &B::dmpswitch},
        Field{"nindex", section::attributes, &B::nindex}, Field{"nstate", section::attributes, &B::nstate},
        Field{"indexident", section::index, &B::indexident}, Field{"indexval", section::index, &B::indexval},
        Field{"idele", section::identifiers, &B::idele}, Field{"fidglob", section::one_frame, &B::fidglob},
        Field{"fid", section::frames, &B::fid}, Field{"eloc", section::values, &B::eloc},
        Field{"operator", section::combination, &B::operators}, Field{"weight", section::combination, &B::weight},
        Field{"res", section::values, &B::res}, Field{"filter_flags", section::filters, &B::filter_flags},
        Field{"filter_params", section::filters, &B::filter_params});
}

// ---- entity results of a series

constexpr std::int32_t four_byte_memory = 1024;

struct MultiEntityResults {
    Text256 series = "TIME";
    Text256 etyp = "NODE";
    std::int32_t nent = 3;
    Text256 etypvar = "DISPLACEMENT";
    std::int32_t ncoo = 2;
    Text256 etypzone = "ZONE";
    std::int32_t zoneid = 5;
    Text256 etypframe = "GLOBAL";
    std::int32_t fswitch = 0;
    std::int32_t dmpswitch = 0;
    std::int32_t nindex = 1;
    std::int32_t nstate = 1; ///< readers only; the state row in passes 3 and 4
    std::vector<std::int32_t> indexident{};
    std::vector<double> indexval{};
    std::vector<std::int32_t> entid{11, 12, 13};
    std::int32_t fidglob = 33;
    std::vector<std::int32_t> fid{};
    Texts256 operators{};
    std::vector<double> weight{};
    std::vector<double> res{};
    std::int32_t set = -1;
    std::int32_t s = 1;
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{0, 0};
    std::int32_t value_size = 8;
    std::int32_t mode = 0;
    std::vector<std::int64_t> count{};
    std::vector<std::int64_t> start{};

    /// The first states of a series.
    explicit MultiEntityResults(std::int32_t states = 1, std::int32_t size = 8) : value_size{size}
    {
        hold(states);
        s = states;
    }

    bool is_complex() const
    {
        const auto size = value_size & ~four_byte_memory;
        return size == 16 || size == 32;
    }
    bool floats() const { return (value_size & four_byte_memory) != 0; }
    /// Numbers of one state.
    std::size_t state_size() const { return static_cast<std::size_t>(nent * ncoo) * (is_complex() ? 2 : 1); }

    /// Fills the arrays of `states` states from row `first` on; `shift` tells a later version from an earlier one.
    MultiEntityResults& hold(std::int32_t states, std::int32_t first = 0, double shift = 0)
    {
        nstate = states;
        indexident.clear();
        indexval.clear();
        res.clear();
        for (std::int32_t row = first; row < first + states; ++row) {
            for (std::int32_t i = 0; i < nindex; ++i) {
                indexident.push_back(10 * (row + 1) + i);
                indexval.push_back(0.25 * row + i + shift);
            }
            for (std::size_t i = 0; i < state_size(); ++i) res.push_back(series_value(row, i) + shift);
        }
        return *this;
    }
    /// One state that goes to this row, which is not the first.
    MultiEntityResults& one_at(std::int32_t row, double shift = 0)
    {
        hold(1, row, shift);
        s = -row;
        return *this;
    }
    MultiEntityResults& select(std::int32_t access_mode, std::vector<std::int64_t> counts,
                               std::vector<std::int64_t> starts)
    {
        mode = access_mode;
        count = std::move(counts);
        start = std::move(starts);
        s = -1;
        return *this;
    }

    Outcome write(const std::int64_t* group) const
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_MULTIENTITYRESULTS(
                group, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo, etypzone.data(), &zoneid,
                etypframe.data(), &fswitch, &dmpswitch, &nindex, indexident.data(), Reals{indexval, floats()},
                entid.data(), &fidglob, fid.data(), ElementResults::texts(operators), Reals{weight, floats()},
                Reals{res, floats()}, &set, &s, &filter_flags, filter_params.data(), &value_size, status);
        });
    }
    Outcome write(const KobFile& file) const { return write(file.address()); }

    Outcome write_c(const std::int64_t* group) const
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_MULTIENTITYRESULTC(group, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo,
                                         etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex,
                                         indexident.data(), Reals{indexval, floats()}, entid.data(), &fidglob,
                                         fid.data(), ElementResults::texts(operators), Reals{weight, floats()},
                                         Reals{res, floats()}, &set, &s, &filter_flags, filter_params.data(),
                                         &value_size, &mode, count.data(), start.data(), status);
        });
    }
    Outcome write_c(const KobFile& file) const { return write_c(file.address()); }

    /// Into a group that the test opened; `states` receives the number of states.
    Outcome write2(std::int64_t block, std::int32_t memory_size, std::int32_t& states) const
    {
        const std::array<std::int64_t, 2> groups{block, -1};
        const bool small = memory_size == 4;
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_MULTIENTITYRESULTS2(groups.data(), nullptr, nullptr, series.data(), etyp.data(), &nent,
                                          etypvar.data(), &ncoo, etypzone.data(), &zoneid, etypframe.data(), &fswitch,
                                          &dmpswitch, &nindex, indexident.data(), Reals{indexval, small}, entid.data(),
                                          &fidglob, fid.data(), ElementResults::texts(operators), Reals{weight, small},
                                          Reals{res, small}, &memory_size, &s, &filter_flags, filter_params.data(),
                                          &value_size, &mode, count.data(), start.data(), &states, status);
        });
    }

    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_MULTIENTITYRESULTS(&block, &pass, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo,
                                        etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex,
                                        &nstate, indexident.data(), indexval.data(), entid.data(), &fidglob, fid.data(),
                                        operators.data(), weight.data(), res.data(), &filter_flags,
                                        filter_params.data(), status);
        });
    }

    Outcome read_c(std::int64_t block, std::int32_t pass)
    {
        const bool small = (pass & four_byte_memory) != 0;
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_MULTIENTITYRESULTC(&block, &pass, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo,
                                        etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch, &nindex,
                                        &nstate, indexident.data(), Reals{indexval, small}, entid.data(), &fidglob,
                                        fid.data(), operators.data(), Reals{weight, small}, Reals{res, small},
                                        &filter_flags, filter_params.data(), &mode, count.data(), start.data(), status);
        });
    }

    Outcome read2(std::int64_t block, std::int32_t sections, std::int32_t memory_size = 8)
    {
        const bool small = memory_size == 4;
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_MULTIENTITYRESULTS2(&block, &sections, nullptr, series.data(), etyp.data(), &nent, etypvar.data(),
                                         &ncoo, etypzone.data(), &zoneid, etypframe.data(), &fswitch, &dmpswitch,
                                         &nindex, &nstate, indexident.data(), Reals{indexval, small}, entid.data(),
                                         &fidglob, fid.data(), operators.data(), Reals{weight, small},
                                         Reals{res, small}, &memory_size, &filter_flags, filter_params.data(), &mode,
                                         count.data(), start.data(), status);
        });
    }
};

inline auto fields_of(const MultiEntityResults* /*unused*/)
{
    using B = MultiEntityResults;
    return std::make_tuple(
        Field{"series", section::attributes, &B::series}, Field{"etyp", section::attributes, &B::etyp},
        Field{"nent", section::attributes, &B::nent}, Field{"etypvar", section::attributes, &B::etypvar},
        Field{"ncoo", section::attributes, &B::ncoo}, Field{"etypzone", section::attributes, &B::etypzone},
        Field{"zoneid", section::attributes, &B::zoneid}, Field{"etypframe", section::attributes, &B::etypframe},
        Field{"fswitch", section::attributes, &B::fswitch}, Field{"dmpswitch", section::attributes, &B::dmpswitch},
        Field{"nindex", section::attributes, &B::nindex}, Field{"nstate", section::attributes, &B::nstate},
        Field{"indexident", section::index, &B::indexident}, Field{"indexval", section::index, &B::indexval},
        Field{"entid", section::identifiers, &B::entid}, Field{"fidglob", section::one_frame, &B::fidglob},
        Field{"fid", section::frames, &B::fid}, Field{"operator", section::combination, &B::operators},
        Field{"weight", section::combination, &B::weight}, Field{"res", section::values, &B::res},
        Field{"filter_flags", section::filters, &B::filter_flags},
        Field{"filter_params", section::filters, &B::filter_params});
}

// ---- activation flags of a series

struct MultiActivFlags {
    Text256 series = "TIME";
    Text256 etyp = "CONTACT";
    std::int32_t nent = 3;
    std::int32_t nindex = 1;
    std::int32_t nstate = 1; ///< readers only
    std::vector<std::int32_t> indexident{};
    std::vector<double> indexval{};
    std::vector<std::int32_t> entid{21, 22, 23};
    std::vector<std::int32_t> flags{};
    std::int32_t n = 1;
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{0, 0};
    std::int32_t float_size = 8;

    /// The first states of a series.
    explicit MultiActivFlags(std::int32_t states = 1) { hold(states); }

    void hold(std::int32_t states, std::int32_t shift = 0)
    {
        n = nstate = states;
        indexident.clear();
        indexval.clear();
        flags.clear();
        for (std::int32_t row = 0; row < states; ++row) {
            for (std::int32_t i = 0; i < nindex; ++i) {
                indexident.push_back(10 * (row + 1) + i);
                indexval.push_back(0.25 * row + i + shift);
            }
            for (std::int32_t i = 0; i < nent; ++i) flags.push_back(100 * row + i + shift);
        }
    }

    Outcome write(const std::int64_t* group) const
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_WRITE_MULTIACTIVFLAGS(group, series.data(), etyp.data(), &nent, &nindex, indexident.data(),
                                      indexval.data(), entid.data(), flags.data(), &n, &filter_flags,
                                      filter_params.data(), &float_size, status);
        });
    }
    Outcome write(const KobFile& file) const { return write(file.address()); }

    Outcome read(std::int64_t block, std::int32_t pass)
    {
        return outcome_of([&](std::int32_t* status) {
            KOB_READ_MULTIACTIVFLAGS(&block, &pass, series.data(), etyp.data(), &nent, &nindex, &nstate,
                                     indexident.data(), indexval.data(), entid.data(), flags.data(), &filter_flags,
                                     filter_params.data(), status);
        });
    }
};

inline auto fields_of(const MultiActivFlags* /*unused*/)
{
    using B = MultiActivFlags;
    return std::make_tuple(
        Field{"series", section::attributes, &B::series}, Field{"etyp", section::attributes, &B::etyp},
        Field{"nent", section::attributes, &B::nent}, Field{"nindex", section::attributes, &B::nindex},
        Field{"nstate", section::attributes, &B::nstate}, Field{"indexident", section::index, &B::indexident},
        Field{"indexval", section::index, &B::indexval}, Field{"entid", section::identifiers, &B::entid},
        Field{"status", section::values, &B::flags}, Field{"filter_flags", section::filters, &B::filter_flags},
        Field{"filter_params", section::filters, &B::filter_params});
}

} // namespace kob_test
