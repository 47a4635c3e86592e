// SPDX-License-Identifier: BSD-3-Clause
// Series of entity results for the tests of the whole-file tools, and the listing of a file's blocks.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <kob_dp.h>

#include "kob_file.hpp"
#include "sample_file.hpp"
#include "text256.hpp"

namespace kob_test {

/// Displacements of the nodes 1 to `nent` over some states: 100 * state + 10 * entity + component.
struct SeriesBlock {
    std::vector<std::int32_t> indexident{}; ///< [states, nindex]
    std::int32_t nindex = 1;
    std::int32_t value_size = 8;
    std::int32_t nent = 2;
    std::int32_t ncoo = 3;
    std::int32_t set = -1;
    std::int32_t filter_flags = 0;
    bool with_frames = false; ///< a frame for each entity, operators and weights
    Text256 series = "RUN";

    bool is_complex() const { return value_size == 16 || value_size == 32; }
    std::int32_t states() const { return static_cast<std::int32_t>(indexident.size()) / nindex; }
    std::vector<double> times() const
    {
        std::vector<double> result;
        for (const std::int32_t ident : indexident) result.push_back(ident / 4.0);
        return result;
    }
    std::vector<std::int32_t> nodes() const
    {
        std::vector<std::int32_t> result;
        for (std::int32_t i = 0; i < nent; ++i) result.push_back(i + 1);
        return result;
    }
    /// The values of the first states.
    std::vector<double> values(std::int32_t states) const
    {
        std::vector<double> result;
        for (std::int32_t s = 0; s < states; ++s)
            for (std::int32_t e = 0; e < nent; ++e)
                for (std::int32_t c = 0; c < ncoo; ++c) {
                    result.push_back(100 * s + 10 * e + c);
                    if (is_complex()) result.push_back(-result.back());
                }
        return result;
    }

    void write(KobFile& file) const
    {
        Text256 etyp = "NODE", etypvar = "DISPLACEMENT", zone = "", frame = "GLOBAL";
        Texts256 operators;
        operators = {"sum", "max", "min"};
        const std::int32_t zoneid = -1, fswitch = with_frames ? 1 : 0, dmpswitch = with_frames ? 1 : 0, fidglob = 9,
                           s = states();
        const std::vector<std::int32_t> entid = nodes(), fid(static_cast<std::size_t>(nent), 61);
        const std::vector<double> weight(static_cast<std::size_t>(nent), 0.5), res = values(s), time = times();
        std::int32_t status = 77;
        KOB_WRITE_MULTIENTITYRESULTS(file.address(), series.data(), etyp.data(), &nent, etypvar.data(), &ncoo,
                                     zone.data(), &zoneid, frame.data(), &fswitch, &dmpswitch, &nindex,
                                     indexident.data(), time.data(), entid.data(), &fidglob, fid.data(),
                                     operators.data(), weight.data(), res.data(), &set, &s, &filter_flags,
                                     no_params.data(), &value_size, &status);
        ASSERT_EQ(status, 0);
    }
};

/// The paths of all blocks, as kob_lookup lists them; empty when there are none.
inline std::vector<std::string> block_paths(std::int64_t group)
{
    const std::int32_t store = 1, verbose = 0;
    std::int32_t capacity = 0, count = 0, status = 77;
    std::int64_t size = 0, length = 0;
    std::int32_t* keys = nullptr;
    std::int64_t* offsets = nullptr;
    char* paths = nullptr;
    kob_lookup(&group, &store, &verbose, &capacity, &size, &count, &length, &keys, &offsets, &paths, &status);
    const std::unique_ptr<std::int32_t, decltype(&std::free)> own_keys{keys, &std::free};
    const std::unique_ptr<std::int64_t, decltype(&std::free)> own_offsets{offsets, &std::free};
    const std::unique_ptr<char, decltype(&std::free)> own_paths{paths, &std::free};
    EXPECT_EQ(status, 0);
    std::vector<std::string> result;
    for (std::int32_t i = 0; i < count; ++i) result.emplace_back(paths + offsets[i]);
    return result;
}

inline bool has_block(std::int64_t group, const std::string& path)
{
    const std::vector<std::string> paths = block_paths(group);
    return std::find(paths.begin(), paths.end(), path) != paths.end();
}

} // namespace kob_test
