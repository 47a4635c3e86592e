// SPDX-License-Identifier: BSD-3-Clause
// A series in memory, as the eraser reads and rewrites it.
#pragma once

#include "kob_family.hpp"
#include "kob_location.hpp"
#include "kob_text.hpp"

#include <hdf5.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kob::erase {

/// A multi-state entity results block in memory.
struct Series {
    const Family& family;
    std::array<char, name_length> series{};
    std::array<char, name_length> etyp{};
    std::array<char, name_length> etypvar{};
    std::array<char, name_length> etypzone{};
    std::array<char, name_length> etypframe{};
    std::int32_t nent = 0;
    std::int32_t ncoo = 0;
    std::int32_t zoneid = 0;
    std::int32_t fswitch = 0;
    std::int32_t dmpswitch = 0;
    std::int32_t nindex = 0;
    std::int32_t nstate = 0;
    std::int32_t fidglob = 0;
    std::vector<std::int32_t> indexident;
    std::vector<double> indexval;
    std::vector<std::int32_t> entid;
    std::vector<std::int32_t> fid;
    std::vector<char> operators;
    std::vector<double> weight;
    std::vector<double> res;
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{};

    explicit Series(const Family& calls) : family{calls} {}

    /// Reads the sections of a pass. The buffers must fit what is stored; the reader compares that with the counts.
    std::int32_t read(hid_t block, std::int32_t pass);
    /// Makes room for the state index, as it is stored.
    void size_index(hid_t block);
    /// Makes room for everything else.
    void size_values(hid_t block);
    std::int32_t write(hid_t block, std::int32_t states, std::int32_t value_size) const;

private:
    // At least one element: an address is handed out even where nothing is stored.
    [[nodiscard]] std::size_t stored(hid_t block, Where where, const char* name) const;
};

} // namespace kob::erase
