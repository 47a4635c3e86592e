// SPDX-License-Identifier: BSD-3-Clause
// The quick way for datasets in chunks: these are encoded and decoded here and handed to HDF5 ready made.
#pragma once

#include "kob_chunk_grid.hpp"

#include <hdf5.h>

#include <cstddef>
#include <span>

namespace kob {

enum class ChunkTransfer {
    left,   ///< nothing was done: HDF5 can do it
    done,   ///< all was transferred
    failed, ///< HDF5 or the memory failed, or the file is damaged
};

/// Writes a block of a dataset from dense elements of a type of the stored one's class. HDF5 reads the same values
/// from the file as if it had written them. Without filters taken for whole chunks alone.
ChunkTransfer write_chunks(hid_t dataset, hid_t memory_type, const Block& block, const void* data) noexcept;

/// Reads a block of a filtered dataset.
ChunkTransfer read_chunks(hid_t dataset, hid_t memory_type, const Block& block, void* data) noexcept;

/// Writes or reads single elements; `coordinates` are the positions of one after the other, which lie in the dataset.
/// Taken under scale-offset alone: there HDF5 would round again what lies beside, and cannot read every chunk.
ChunkTransfer write_points(hid_t dataset, hid_t memory_type, std::span<const hsize_t> coordinates,
                           const void* data) noexcept;
ChunkTransfer read_points(hid_t dataset, hid_t memory_type, std::span<const hsize_t> coordinates, void* data) noexcept;

/// Cuts a dataset back to its first rows. Under scale-offset what stays in a chunk that was cut is as it was.
bool cut_chunks(hid_t dataset, hsize_t rows) noexcept;

} // namespace kob
