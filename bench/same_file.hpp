// SPDX-License-Identifier: BSD-3-Clause
// Do two HDF5 files hold the same for a reader?
#pragma once

#include <string>
#include <vector>

namespace bench {

/// Walks both files from their roots: links, objects, attributes, datasets with type, extents, layout, chunks, filters
/// and values. Every difference is one line; none means that no reader can tell the files apart.
std::vector<std::string> differences(const std::string& first_file, const std::string& second_file);

} // namespace bench
