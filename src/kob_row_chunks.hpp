// SPDX-License-Identifier: BSD-3-Clause
// Growing datasets whose chunks are their rows: a row goes to HDF5 as it is.
#pragma once

#include <hdf5.h>

#include <cstddef>

namespace kob {

/// Is each row of so many elements, and nothing else, a chunk? Asked of an unfiltered dataset in the old format whose
/// extents behind the leading one are fixed; "no" also where that cannot be told, as long as the first two rows are not
/// there.
bool has_row_chunks(hid_t dataset, hsize_t row_elements, std::size_t element_size) noexcept;

} // namespace kob
