// SPDX-License-Identifier: BSD-3-Clause
// Lists what a group holds, through plain HDF5 alone, in a form that a table written by hand can be compared with.
#pragma once

#include <initializer_list>
#include <string>

#include <hdf5.h>

namespace kob_test {

/// One line for each attribute, dataset and link of the group, in ascending order. Examples of each form:
///
///     attribute nindex integer 4 little scalar
///     attribute title text 256 space scalar
///     dataset entid integer 4 little [1000] max [1000] compact
///     dataset res float 8 little [3, 200] max [unlimited, 200] chunked [1, 200] scaleoffset(decimal 3) fill 10000
///     dataset ic integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle deflate(6) fill 10000
///     group state000000000012
///     soft link post
///     external link mesh
///
/// Filters stand in the order in which HDF5 applies them; "fill" only where a value of its own was set;
/// "(optional)" behind a filter that HDF5 may leave out; "nocontent" behind a dataset without storage.
std::string layout_of(hid_t group);
/// The same of a group in a file that nobody holds open.
std::string layout_of(const std::string& file, const std::string& group);

/// The same lines, written by hand in any order.
std::string table(std::initializer_list<std::string> lines);

} // namespace kob_test
