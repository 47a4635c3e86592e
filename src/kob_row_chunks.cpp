// SPDX-License-Identifier: BSD-3-Clause
#include "kob_row_chunks.hpp"

namespace kob {
namespace {

/// What the first two chunks tell of all.
struct FirstChunks {
    int seen = 0;
    hsize_t row = 0; ///< of the second one
    hsize_t size = 0;
};

int note_chunk(const hsize_t* offset, unsigned, haddr_t, hsize_t size, void* data)
{
    auto& chunks = *static_cast<FirstChunks*>(data);
    chunks.row = offset[0];
    chunks.size = size;
    return ++chunks.seen == 2 ? H5_ITER_STOP : H5_ITER_CONT;
}

} // namespace

// The creation properties would tell as well, but asking for them costs more than writing a small row. A chunk that
// begins with row 1 has one row, for chunks begin at multiples of their extents. One of a row's size holds all of it,
// for HDF5 makes no chunk that is longer than a fixed extent.
bool has_row_chunks(hid_t dataset, std::size_t row_size) noexcept
{
    FirstChunks chunks;
    return H5Dchunk_iter(dataset, H5P_DEFAULT, note_chunk, &chunks) >= 0 && chunks.seen == 2 && chunks.row == 1 &&
           chunks.size == row_size;
}

} // namespace kob
