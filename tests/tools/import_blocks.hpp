// SPDX-License-Identifier: BSD-3-Clause
// Whole blocks of an imported file, read through the public entry points.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <kob_dp.h>

#include <kob_file.hpp>
#include <text256.hpp>

namespace kob_test {

/// Texts of a length of their own, end to end, without the blanks that fill them.
inline std::vector<std::string> texts_of(const std::string& fields, std::int32_t length)
{
    std::vector<std::string> all;
    const auto size = static_cast<std::size_t>(length);
    for (std::size_t at = 0; length > 0 && at < fields.size(); at += size)
        all.push_back(trimmed(fields.substr(at, size)));
    return all;
}

inline std::vector<std::string> read_text_lines(const KobFile& file, const std::string& path)
{
    const std::int64_t block = file.block(path);
    Text256 etyp;
    std::int32_t nlines = 0, length = 0, nindex = 77, indexic = 0, flags = 0, status = 77;
    std::array<std::int32_t, 2> params{};
    std::string line;
    for (const std::int32_t mode : {1, 8}) {
        KOB_READ_TEXT(&block, &mode, etyp.data(), &nlines, &length, &nindex, &indexic, nullptr, nullptr, line.data(),
                      &flags, params.data(), &status);
        EXPECT_EQ(status, 0) << path;
        line.resize(static_cast<std::size_t>(nlines * length));
    }
    EXPECT_EQ(nindex, 0);
    return texts_of(line, length);
}

struct ReadParts {
    std::int32_t off = 77;
    std::vector<std::int32_t> pid, mid;
    std::vector<std::string> titles; ///< none where the block has none
};

inline ReadParts read_parts(const KobFile& file, const std::string& path)
{
    ReadParts p;
    const std::int64_t block = file.block(path);
    Text256 etyp;
    std::int32_t npart = 0, length = 0, nindex = 77, indexic = 0, flags = 0, status = 77;
    std::array<std::int32_t, 2> params{};
    std::string title;
    for (const std::int32_t mode : {1, 8}) {
        KOB_READ_PARTS(&block, &mode, etyp.data(), &npart, &p.off, &length, &nindex, &indexic, nullptr, nullptr,
                       p.pid.data(), title.data(), p.mid.data(), nullptr, nullptr, &flags, params.data(), &status);
        EXPECT_EQ(status, 0) << path;
        EXPECT_EQ(p.off, 6) << "materials, no types, no colours";
        p.pid.resize(static_cast<std::size_t>(npart));
        p.mid.resize(p.pid.size());
        title.resize(p.pid.size() * static_cast<std::size_t>(length));
    }
    EXPECT_EQ(etyp.text(), "PART");
    EXPECT_EQ(nindex, 0);
    p.titles = texts_of(title, length);
    return p;
}

struct ReadIdentifiers {
    std::int32_t nuid = 0;
    std::vector<std::int32_t> entid, uid;
};

inline ReadIdentifiers read_identifiers(const KobFile& file, const std::string& type)
{
    ReadIdentifiers r;
    const std::int64_t block = file.block("constant/identifiers/" + type + "/kobblock");
    Text256 etyp;
    std::int32_t nent = 0, length = 77, nindex = 77, indexic = 0, flags = 0, status = 77;
    std::array<std::int32_t, 2> params{};
    for (const std::int32_t mode : {1, 8}) {
        KOB_READ_IDENTIFIERS(&block, &mode, etyp.data(), &nent, &r.nuid, &length, &nindex, &indexic, nullptr, nullptr,
                             r.entid.data(), nullptr, r.uid.data(), &flags, params.data(), &status);
        EXPECT_EQ(status, 0) << type;
        EXPECT_EQ(length, 0) << "no titles";
        r.entid.resize(static_cast<std::size_t>(nent));
        r.uid.resize(r.entid.size() * static_cast<std::size_t>(r.nuid));
    }
    EXPECT_EQ(etyp.text(), type);
    EXPECT_EQ(nindex, 0);
    return r;
}

struct ReadCollectors {
    std::string etyp;
    std::vector<std::int32_t> idcoll, nent, entid;
};

/// Collectors with members of one type.
inline ReadCollectors read_collectors(const KobFile& file, const std::string& path)
{
    ReadCollectors r;
    const std::int64_t block = file.block(path);
    Text256 etypcoll, etyp;
    std::int32_t nenttot = 0, ncoll = 0, ntyp = 77, nindex = 77, indexic = 0, flags = 0, status = 77;
    std::array<std::int32_t, 2> params{};
    for (const std::int32_t mode : {1, 2}) {
        KOB_READ_COLLECTOR(&block, &mode, &nenttot, etypcoll.data(), &ncoll, &ntyp, &nindex, &indexic, nullptr, nullptr,
                           r.idcoll.data(), etyp.data(), r.nent.data(), r.entid.data(), &flags, params.data(), &status);
        EXPECT_EQ(status, 0) << path;
        EXPECT_EQ(ntyp, 1);
        r.idcoll.resize(static_cast<std::size_t>(ncoll));
        r.nent.resize(r.idcoll.size());
        r.entid.resize(static_cast<std::size_t>(nenttot));
    }
    EXPECT_EQ(nindex, 0);
    r.etyp = etyp.text();
    return r;
}

/// A series of entity results, all states.
struct ReadSeries {
    std::int32_t key = 0;
    std::string series, etyp, etypvar;
    std::int32_t nent = 0, ncoo = 0, nindex = 0, nstate = 0;
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{};
    std::vector<std::int32_t> ids, indexident;
    std::vector<double> indexval, values;

    std::size_t row_size() const
    {
        return static_cast<std::size_t>(nent) * static_cast<std::size_t>(ncoo) * (key == 1051 ? 2 : 1);
    }
    std::vector<double> row(std::size_t state) const
    {
        const auto from = values.begin() + static_cast<std::ptrdiff_t>(state * row_size());
        return {from, from + static_cast<std::ptrdiff_t>(row_size())};
    }
};

inline ReadSeries read_series(const KobFile& file, const std::string& path)
{
    ReadSeries r;
    const std::int64_t block = file.block(path);
    Text256 series, etyp, etypvar, zone, frame;
    std::int32_t zoneid = 0, fswitch = 77, dmpswitch = 77, fidglob = 77, status = 77;
    for (const std::int32_t pass : {1, 2}) {
        KOB_READ_MULTIENTITYRESULTS(&block, &pass, series.data(), etyp.data(), &r.nent, etypvar.data(), &r.ncoo,
                                    zone.data(), &zoneid, frame.data(), &fswitch, &dmpswitch, &r.nindex, &r.nstate,
                                    r.indexident.data(), r.indexval.data(), r.ids.data(), &fidglob, nullptr, nullptr,
                                    nullptr, r.values.data(), &r.filter_flags, r.filter_params.data(), &status);
        EXPECT_GE(status, 1050) << path;
        if (status < 0 || pass == 2) break;
        r.key = status;
        r.ids.resize(static_cast<std::size_t>(r.nent));
        r.indexident.resize(static_cast<std::size_t>(r.nstate * r.nindex));
        r.indexval.resize(r.indexident.size());
        r.values.resize(static_cast<std::size_t>(r.nstate) * r.row_size());
    }
    EXPECT_EQ(zone.text(), "");
    EXPECT_EQ(zoneid, -1);
    EXPECT_EQ(fswitch, 0);
    EXPECT_EQ(dmpswitch, 0);
    EXPECT_EQ(r.nindex, 1);
    r.series = series.text();
    r.etyp = etyp.text();
    r.etypvar = etypvar.text();
    return r;
}

/// A matrix block of any kind; what a kind does not have stays 0 or empty.
struct ReadMatrix {
    std::int32_t key = 0;
    std::string etyp, etypvar;
    std::int32_t entid = 0, nrow = 0, ncolumn = 0, matrixtype = 0, nindex = 77;
    std::int64_t nnz = 0;
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{};
    std::vector<std::int32_t> colind;
    std::vector<std::int64_t> rowptr;
    std::vector<double> val;
};

inline ReadMatrix read_matrix(const KobFile& file, const std::string& kind, const std::string& etyp,
                              const std::string& etypvar, std::int32_t entid)
{
    ReadMatrix m;
    const std::string path = "constant/" + kind + "matrix/" + etyp + "/" + etypvar + "/id" + std::to_string(entid);
    const std::int64_t block = file.block(path + "/kobblock");
    Text256 type, variable;
    std::int32_t indexic = 0, status = 77;
    for (const std::int32_t pass : {1, 2}) {
        if (kind == "sparse") {
            KOB_READ_SPARSEMATRIX(&block, &pass, type.data(), &m.entid, variable.data(), &m.nrow, &m.nnz, &m.nindex,
                                  &indexic, nullptr, nullptr, m.colind.data(), m.rowptr.data(), m.val.data(),
                                  &m.filter_flags, m.filter_params.data(), nullptr, nullptr, &status, 256, 256);
        } else if (kind == "dense") {
            KOB_READ_DENSEMATRIX(&block, &pass, type.data(), &m.entid, variable.data(), &m.nrow, &m.ncolumn, &m.nindex,
                                 &indexic, nullptr, nullptr, m.val.data(), &m.filter_flags, m.filter_params.data(),
                                 nullptr, nullptr, &status, 256, 256);
        } else {
            KOB_READ_TRIANGULARMATRIX(&block, &pass, type.data(), &m.entid, variable.data(), &m.nrow, &m.matrixtype,
                                      &m.nindex, &indexic, nullptr, nullptr, m.val.data(), &m.filter_flags,
                                      m.filter_params.data(), nullptr, nullptr, &status, 256, 256);
        }
        EXPECT_GE(status, 10000) << path;
        if (status < 0 || pass == 2) break;
        m.key = status;
        const auto n = static_cast<std::size_t>(m.nrow);
        const std::size_t stored = kind == "sparse"  ? static_cast<std::size_t>(m.nnz)
                                   : kind == "dense" ? n * static_cast<std::size_t>(m.ncolumn)
                                                     : n * (n + 1) / 2;
        m.val.resize(stored * (m.key % 10 == 1 ? 2 : 1));
        if (kind != "sparse") continue;
        m.colind.resize(stored);
        m.rowptr.resize(n + 1);
    }
    EXPECT_EQ(m.nindex, 0);
    EXPECT_EQ(type.text(), etyp);
    EXPECT_EQ(variable.text(), etypvar);
    EXPECT_EQ(m.entid, entid);
    return m;
}

} // namespace kob_test
