// SPDX-License-Identifier: BSD-3-Clause
// Counts the open HDF5 identifiers of every kind, so that a test fails when a call leaves one behind.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>

#include <hdf5.h>

namespace kob_test {

/// The HDF5 identifiers of every kind (files, groups, types, spaces, property lists, ...) that are open now.
class OpenIdentifiers {
public:
    static OpenIdentifiers now();

    /// Those that are open here and were not in `before`, as "group: 1, dataspace: 2"; empty when there are none.
    /// Kinds to be ignored are left out.
    std::string added_since(const OpenIdentifiers& before, const std::set<H5I_type_t>& ignored = {}) const;
    /// As if up to `count` of the groups that came since `before` were not there.
    OpenIdentifiers without_new_groups(const OpenIdentifiers& before, int count) const;

private:
    std::map<H5I_type_t, std::set<hid_t>> open_;
};

/// The identifiers that a call leaves open, as "group: 1"; empty when it leaves none.
template <class Call> std::string left_open_by(Call&& call)
{
    const auto before = OpenIdentifiers::now();
    std::forward<Call>(call)();
    return OpenIdentifiers::now().added_since(before);
}

/// Lets the running test end with up to `count` groups still open (handles that an entry point leaves open on
/// purpose). Without it, a test fails that leaves any identifier open.
void allow_open_groups(int count);

/// Adds the check that every test gives back its identifiers; called by `main`.
void check_identifiers_after_each_test();

} // namespace kob_test
