// SPDX-License-Identifier: BSD-3-Clause
// Small owners around plain HDF5: an identifier that closes itself, and ways to make and look into a file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <hdf5.h>

namespace kob_test {

/// An HDF5 identifier of any kind, given back at the end of its scope. Ends the test when HDF5 gave an invalid one.
class Hid {
public:
    Hid(hid_t id); // NOLINT: takes over what an HDF5 call returns
    ~Hid();
    Hid(Hid&& other) noexcept : id_{std::exchange(other.id_, H5I_INVALID_HID)} {}
    Hid& operator=(Hid&& other) noexcept
    {
        std::swap(id_, other.id_);
        return *this;
    }
    Hid(const Hid&) = delete;
    Hid& operator=(const Hid&) = delete;

    operator hid_t() const { return id_; } // NOLINT: reads like the plain identifier

private:
    hid_t id_;
};

Hid create_file(const std::string& path);
Hid open_file(const std::string& path, unsigned flags = H5F_ACC_RDONLY);
Hid create_group(hid_t parent, const std::string& name);
Hid open_group(hid_t parent, const std::string& path);

/// The fixed-length text type of `size` bytes, blank padded unless another padding is asked for.
Hid text_type(std::size_t size, H5T_str_t padding = H5T_STR_SPACEPAD);
/// A simple space of these extents; no extents make a scalar.
Hid space_of(const std::vector<hsize_t>& extents, const std::vector<hsize_t>& maxima = {});

/// A new dataset or attribute, written when `data` is given.
void put_dataset(hid_t parent, const std::string& name, hid_t file_type, const std::vector<hsize_t>& extents,
                 hid_t memory_type = H5I_INVALID_HID, const void* data = nullptr, hid_t creation_list = H5P_DEFAULT);
void put_attribute(hid_t parent, const std::string& name, hid_t file_type, const std::vector<hsize_t>& extents,
                   hid_t memory_type = H5I_INVALID_HID, const void* data = nullptr);
/// Replaces the value of an existing scalar int32 attribute.
void set_int_attribute(hid_t parent, const std::string& name, std::int32_t value);

bool has_link(hid_t parent, const std::string& name);
bool has_attribute(hid_t parent, const std::string& name);
/// The names of all links below, in ascending order.
std::vector<std::string> link_names(hid_t parent);
/// The names of all attributes in the order in which they were written.
std::vector<std::string> attribute_names(hid_t parent);
/// Whether both names lead to one and the same object.
bool same_object(hid_t parent_a, const std::string& name_a, hid_t parent_b, const std::string& name_b);

/// All values of the dataset, or of the attribute when there is no dataset of that name.
std::vector<std::int64_t> stored_ints(hid_t parent, const std::string& name);
std::vector<double> stored_reals(hid_t parent, const std::string& name);
/// All bytes of a text dataset or attribute as they are stored.
std::string stored_text(hid_t parent, const std::string& name);
/// The current extents of a dataset.
std::vector<hsize_t> stored_extents(hid_t parent, const std::string& name);

} // namespace kob_test
