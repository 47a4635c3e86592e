// SPDX-License-Identifier: BSD-3-Clause
#include "kob_row_chunks.hpp"

#include "kob_storage_filters.hpp"

#include <array>

namespace kob {
namespace {

/// The first two chunks, as the index has them.
struct FirstChunks {
    int seen = 0;
    hsize_t row = 0; ///< where the second one begins
    std::array<hsize_t, 2> sizes{};
};

int note_chunk(const hsize_t* offset, unsigned, haddr_t, hsize_t size, void* data)
{
    auto& chunks = *static_cast<FirstChunks*>(data);
    chunks.row = offset[0];
    chunks.sizes[static_cast<std::size_t>(chunks.seen)] = size;
    return ++chunks.seen == 2 ? H5_ITER_STOP : H5_ITER_CONT;
}

/// Bytes of the chunk that the second row begins in, by the layout of the dataset and not by the index, which a damage
/// may have changed; 0 where there is none.
hsize_t chunk_size(hid_t dataset) noexcept
{
    const std::array<hsize_t, H5S_MAX_RANK> second_row{1};
    hsize_t size = 0;
    return H5Dget_chunk_storage_size(dataset, second_row.data(), &size) >= 0 ? size : 0;
}

} // namespace

// The creation properties would tell as well, but asking for them costs more than writing a small row. A chunk that
// begins with row 1 has one row, for chunks begin at multiples of their extents. One of a row's size holds all of it,
// for HDF5 makes no chunk that is longer than a fixed extent. What the index says of sizes a damage may have changed; of
// rows that may lie in parts the layout is asked, too.
bool has_row_chunks(hid_t dataset, hsize_t row_elements, std::size_t element_size) noexcept
{
    const hsize_t row_size = row_elements * element_size;
    FirstChunks chunks;
    return H5Dchunk_iter(dataset, H5P_DEFAULT, note_chunk, &chunks) >= 0 && chunks.seen == 2 && chunks.row == 1 &&
           chunks.sizes == std::array{row_size, row_size} &&
           (row_elements < smallest_divided_extent || chunk_size(dataset) == row_size);
}

} // namespace kob
