// SPDX-License-Identifier: BSD-3-Clause
// Do two HDF5 files hold the same for a reader?
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// How the line of an object ends that both files have, but not alike.
constexpr std::string_view value_difference = " differs";

/// Walks both files from their roots: links, objects, attributes, datasets with type, extents, layout, chunks, filters
/// and values. Every difference is one line; none means that no reader can tell the files apart.
std::vector<std::string> differences(const std::string& first_file, const std::string& second_file);

} // namespace bench
