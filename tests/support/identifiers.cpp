// SPDX-License-Identifier: BSD-3-Clause
// The census walks all identifier kinds: H5Fget_obj_count would see neither dataspaces nor property lists.
#include "identifiers.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

#include <gtest/gtest.h>

namespace kob_test {

namespace {

struct Kind {
    H5I_type_t type;
    const char* name;
};

constexpr std::array kinds{
    Kind{H5I_FILE, "file"},
    Kind{H5I_GROUP, "group"},
    Kind{H5I_DATATYPE, "datatype"},
    Kind{H5I_DATASPACE, "dataspace"},
    Kind{H5I_DATASET, "dataset"},
    Kind{H5I_MAP, "map"},
    Kind{H5I_ATTR, "attribute"},
    Kind{H5I_VFL, "file driver"},
    Kind{H5I_VOL, "connector"},
    Kind{H5I_GENPROP_CLS, "property class"},
    Kind{H5I_GENPROP_LST, "property list"},
    Kind{H5I_ERROR_CLASS, "error class"},
    Kind{H5I_ERROR_MSG, "error message"},
    Kind{H5I_ERROR_STACK, "error stack"},
    Kind{H5I_SPACE_SEL_ITER, "selection iterator"},
    Kind{H5I_EVENTSET, "event set"},
};

herr_t collect(hid_t id, void* ids)
{
    static_cast<std::set<hid_t>*>(ids)->insert(id);
    return 0;
}

std::vector<hid_t> difference(const std::map<H5I_type_t, std::set<hid_t>>& now,
                              const std::map<H5I_type_t, std::set<hid_t>>& before, H5I_type_t type)
{
    std::vector<hid_t> added;
    const auto& a = now.at(type);
    const auto& b = before.at(type);
    std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(added));
    return added;
}

int allowed_groups = 0;

class IdentifierListener : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& /*unused*/) override
    {
        allowed_groups = 0;
        before_ = OpenIdentifiers::now();
    }

    void OnTestEnd(const testing::TestInfo& /*unused*/) override
    {
        const auto left = OpenIdentifiers::now().without_new_groups(before_, allowed_groups).added_since(before_);
        if (!left.empty()) ADD_FAILURE() << "HDF5 identifiers left open by this test: " << left;
    }

    OpenIdentifiers before_;
};

} // namespace

OpenIdentifiers OpenIdentifiers::now()
{
    OpenIdentifiers census;
    for (const auto& kind : kinds) H5Iiterate(kind.type, collect, &census.open_[kind.type]);
    return census;
}

std::string OpenIdentifiers::added_since(const OpenIdentifiers& before, const std::set<H5I_type_t>& ignored) const
{
    std::string text;
    for (const auto& kind : kinds) {
        if (ignored.count(kind.type) > 0) continue;
        const auto count = difference(open_, before.open_, kind.type).size();
        if (count == 0) continue;
        if (!text.empty()) text += ", ";
        text += std::string{kind.name} + ": " + std::to_string(count);
    }
    return text;
}

OpenIdentifiers OpenIdentifiers::without_new_groups(const OpenIdentifiers& before, int count) const
{
    OpenIdentifiers rest = *this;
    for (const auto id : difference(open_, before.open_, H5I_GROUP)) {
        if (count-- <= 0) break;
        rest.open_[H5I_GROUP].erase(id);
    }
    return rest;
}

void allow_open_groups(int count) { allowed_groups = count; }

void check_identifiers_after_each_test()
{
    H5open(); // HDF5's own identifiers exist from here on, its file drivers only after each was named once
    for (const auto driver : {H5FD_CORE, H5FD_FAMILY, H5FD_LOG, H5FD_MULTI, H5FD_SEC2, H5FD_STDIO})
        EXPECT_GE(driver, 0);
    testing::UnitTest::GetInstance()->listeners().Append(new IdentifierListener); // GoogleTest becomes its owner
}

} // namespace kob_test
