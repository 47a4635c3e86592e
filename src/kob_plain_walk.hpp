// SPDX-License-Identifier: BSD-3-Clause
// The walk over the blocks of a plain file.
#pragma once

#include "kob_plain_object.hpp"

#include <functional>
#include <string>

namespace kob::plain {

/// What the walk finds.
struct Found {
    const std::string& path; ///< of the link below the start group
    bool is_header;          ///< a "kobheader", else a "kobblock"
    Address object;
};

/// Visits every block and header below a group, in the order of kob::walk. False after a surprise, the visitor's or the
/// walk's own: then HDF5 is to be asked, and nothing that was visited counts. Files mounted on groups are not seen.
bool walk(hid_t start, const std::function<void(File&, const Found&)>& visit);

} // namespace kob::plain
