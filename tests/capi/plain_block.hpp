// SPDX-License-Identifier: BSD-3-Clause
// Blocks made with plain HDF5, of any kind and with any content, for tests that only look for them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <hdf5.h>

#include "support/hdf5_file.hpp"
#include "support/text256.hpp"

namespace kob_test {

/// Creates a group and all the groups on the way to it.
inline Hid create_path(hid_t parent, const std::string& path)
{
    const Hid with_parents{H5Pcreate(H5P_LINK_CREATE)};
    H5Pset_create_intermediate_group(with_parents, 1);
    return Hid{H5Gcreate2(parent, path.c_str(), with_parents, H5P_DEFAULT, H5P_DEFAULT)};
}

/// A block group: `PlainBlock{file, "constant/a/kobblock", 200}.text("etyp", "NODE").integer("nent", 3)`.
class PlainBlock {
public:
    PlainBlock(hid_t parent, const std::string& path, std::int32_t key) : group_{create_path(parent, path)}
    {
        integer("block", key);
    }

    PlainBlock& text(const std::string& name, const std::string& value)
    {
        put_attribute(group_, name, text_type(256), {}, text_type(256), Text256{value}.data());
        return *this;
    }
    PlainBlock& integer(const std::string& name, std::int32_t value)
    {
        put_attribute(group_, name, H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &value);
        return *this;
    }
    PlainBlock& integers(const std::string& name, const std::vector<std::int32_t>& values)
    {
        put_dataset(group_, name, H5T_STD_I32LE, {values.size()}, H5T_NATIVE_INT32, values.data());
        return *this;
    }
    PlainBlock& reals(const std::string& name, const std::vector<double>& values)
    {
        put_dataset(group_, name, H5T_IEEE_F64LE, {values.size()}, H5T_NATIVE_DOUBLE, values.data());
        return *this;
    }
    /// The state index: as many numbers as both lists have.
    PlainBlock& state(const std::vector<std::int32_t>& indexident, const std::vector<double>& indexval)
    {
        integer("nindex", static_cast<std::int32_t>(indexident.size()));
        if (!indexident.empty()) integers("indexident", indexident).reals("indexval", indexval);
        return *this;
    }

private:
    Hid group_;
};

} // namespace kob_test
