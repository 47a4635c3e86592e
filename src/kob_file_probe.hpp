// SPDX-License-Identifier: BSD-3-Clause
// What the platform knows of a file before HDF5 touches it. Only this pair of files is platform specific.
#pragma once

#include <string>

namespace kob {

/// Can a file of this UTF-8 name be opened for reading?
bool file_exists(const std::string& name) noexcept;

/// Does somebody hold the file, so that emptying it would destroy what they have open? A file system without locks,
/// or locking switched off by HDF5's environment variable, is no reason to say so.
bool file_is_held(const std::string& name) noexcept;

} // namespace kob
