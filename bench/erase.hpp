// SPDX-License-Identifier: BSD-3-Clause
// A file of single-state results that is cut back to its first states.
#pragma once

#include "results.hpp"

namespace bench {

struct EraseSet {
    ResultSet results;
    std::int32_t kept = 0; ///< states that stay
};

/// Makes the file: results in every state, and the file header, without which the library erases nothing.
Work write_run(const EraseSet& set, const std::string& file, Digest* digest);

/// Cuts it back through the library.
Work erase_ours(const EraseSet& set, const std::string& file, Digest* digest);

/// Cuts it back in plain HDF5: reads each block's state, deletes the block and one by one the groups above that this
/// leaves empty.
Work erase_reading(const EraseSet& set, const std::string& file, Digest* digest);

/// The same when it is known beforehand which blocks go: nothing is read.
Work erase_told(const EraseSet& set, const std::string& file, Digest* digest);

} // namespace bench
