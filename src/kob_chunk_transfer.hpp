// SPDX-License-Identifier: BSD-3-Clause
// The quick way for filtered datasets: chunks are encoded and decoded here and handed to HDF5 ready made.
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
/// from the file as if it had written them.
ChunkTransfer write_chunks(hid_t dataset, hid_t memory_type, const Block& block, const void* data) noexcept;

/// Reads a block of a dataset.
ChunkTransfer read_chunks(hid_t dataset, hid_t memory_type, const Block& block, void* data) noexcept;

} // namespace kob
