// SPDX-License-Identifier: BSD-3-Clause
// Floating numbers of another size in memory than in the file, converted faster than HDF5 does.
#pragma once

#include <hdf5.h>

#include <cstddef>
#include <optional>

namespace kob {

/// Elements that are converted at a time: 192 KB of floats or 384 KB of doubles. Datasets that have no more are left to
/// HDF5.
constexpr std::size_t elements_of_piece = std::size_t{48} * 1024;

/// Writes all values of a dataset from numbers of the type `memory`. Nothing when the dataset is not of the sort that
/// is converted here: large, contiguous, of native floating numbers (`stored`) of the other size.
std::optional<herr_t> write_converted(hid_t dataset, hid_t stored, hid_t memory, const void* data);

/// Reads all values of a dataset into numbers of the type `memory`; nothing in the same cases.
std::optional<herr_t> read_converted(hid_t dataset, hid_t stored, hid_t memory, void* data);

} // namespace kob
