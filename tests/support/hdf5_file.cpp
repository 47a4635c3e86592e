// SPDX-License-Identifier: BSD-3-Clause
// Plain HDF5 for the tests: it shares nothing with the library under test.
#include "hdf5_file.hpp"

#include <stdexcept>

namespace kob_test {

namespace {

/// A dataset or an attribute, whichever the name is, with its type and space.
struct Stored {
    Hid object;
    bool is_dataset;

    Hid type() const { return is_dataset ? H5Dget_type(object) : H5Aget_type(object); }
    Hid space() const { return is_dataset ? H5Dget_space(object) : H5Aget_space(object); }
    std::size_t elements() const { return static_cast<std::size_t>(H5Sget_simple_extent_npoints(space())); }
    void read(hid_t memory_type, void* values) const
    {
        const auto result = is_dataset ? H5Dread(object, memory_type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values)
                                       : H5Aread(object, memory_type, values);
        if (result < 0) throw std::runtime_error{"HDF5 cannot read the stored values"};
    }
};

Stored find(hid_t parent, const std::string& name)
{
    if (has_link(parent, name)) return {H5Dopen2(parent, name.c_str(), H5P_DEFAULT), true};
    return {H5Aopen(parent, name.c_str(), H5P_DEFAULT), false};
}

void require(herr_t result, const std::string& what)
{
    if (result < 0) throw std::runtime_error{"HDF5 cannot " + what};
}

herr_t add_link_name(hid_t /*group*/, const char* name, const H5L_info2_t* /*info*/, void* names)
{
    static_cast<std::vector<std::string>*>(names)->emplace_back(name);
    return 0;
}

herr_t add_attribute_name(hid_t /*object*/, const char* name, const H5A_info_t* /*info*/, void* names)
{
    static_cast<std::vector<std::string>*>(names)->emplace_back(name);
    return 0;
}

} // namespace

Hid::Hid(hid_t id) : id_{id}
{
    if (id < 0) throw std::runtime_error{"HDF5 gave an invalid identifier"};
}

Hid::~Hid()
{
    // a file close through the library under test may have taken the identifier already
    if (id_ >= 0 && H5Iis_valid(id_) > 0) H5Idec_ref(id_);
}

Hid create_file(const std::string& path) { return H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT); }

Hid open_file(const std::string& path, unsigned flags) { return H5Fopen(path.c_str(), flags, H5P_DEFAULT); }

Hid create_group(hid_t parent, const std::string& name)
{
    return H5Gcreate2(parent, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
}

Hid open_group(hid_t parent, const std::string& path) { return H5Gopen2(parent, path.c_str(), H5P_DEFAULT); }

Hid text_type(std::size_t size, H5T_str_t padding)
{
    Hid type{H5Tcopy(H5T_C_S1)};
    require(H5Tset_size(type, size), "set the size of a text type");
    require(H5Tset_strpad(type, padding), "set the padding of a text type");
    return type;
}

Hid space_of(const std::vector<hsize_t>& extents, const std::vector<hsize_t>& maxima)
{
    if (extents.empty()) return H5Screate(H5S_SCALAR);
    return H5Screate_simple(static_cast<int>(extents.size()), extents.data(), maxima.empty() ? nullptr : maxima.data());
}

void put_dataset(hid_t parent, const std::string& name, hid_t file_type, const std::vector<hsize_t>& extents,
                 hid_t memory_type, const void* data, hid_t creation_list)
{
    const Hid set{
        H5Dcreate2(parent, name.c_str(), file_type, space_of(extents), H5P_DEFAULT, creation_list, H5P_DEFAULT)};
    if (data != nullptr) require(H5Dwrite(set, memory_type, H5S_ALL, H5S_ALL, H5P_DEFAULT, data), "write " + name);
}

void put_attribute(hid_t parent, const std::string& name, hid_t file_type, const std::vector<hsize_t>& extents,
                   hid_t memory_type, const void* data)
{
    const Hid attribute{H5Acreate2(parent, name.c_str(), file_type, space_of(extents), H5P_DEFAULT, H5P_DEFAULT)};
    if (data != nullptr) require(H5Awrite(attribute, memory_type, data), "write " + name);
}

void set_int_attribute(hid_t parent, const std::string& name, std::int32_t value)
{
    const Hid attribute{H5Aopen(parent, name.c_str(), H5P_DEFAULT)};
    require(H5Awrite(attribute, H5T_NATIVE_INT32, &value), "write " + name);
}

bool has_link(hid_t parent, const std::string& name) { return H5Lexists(parent, name.c_str(), H5P_DEFAULT) > 0; }

bool has_attribute(hid_t parent, const std::string& name) { return H5Aexists(parent, name.c_str()) > 0; }

std::vector<std::string> link_names(hid_t parent)
{
    std::vector<std::string> names;
    require(H5Literate2(parent, H5_INDEX_NAME, H5_ITER_INC, nullptr, add_link_name, &names), "list the links");
    return names;
}

std::vector<std::string> attribute_names(hid_t parent)
{
    std::vector<std::string> names;
    // native order of attributes in an object header is the order in which they were added
    require(H5Aiterate2(parent, H5_INDEX_NAME, H5_ITER_NATIVE, nullptr, add_attribute_name, &names),
            "list the attributes");
    return names;
}

bool same_object(hid_t parent_a, const std::string& name_a, hid_t parent_b, const std::string& name_b)
{
    H5O_info2_t a{};
    H5O_info2_t b{};
    require(H5Oget_info_by_name3(parent_a, name_a.c_str(), &a, H5O_INFO_BASIC, H5P_DEFAULT), "find " + name_a);
    require(H5Oget_info_by_name3(parent_b, name_b.c_str(), &b, H5O_INFO_BASIC, H5P_DEFAULT), "find " + name_b);
    int order = 1;
    require(H5Otoken_cmp(parent_a, &a.token, &b.token, &order), "compare " + name_a + " and " + name_b);
    return a.fileno == b.fileno && order == 0;
}

std::vector<std::int64_t> stored_ints(hid_t parent, const std::string& name)
{
    const auto stored = find(parent, name);
    std::vector<std::int64_t> values(stored.elements());
    stored.read(H5T_NATIVE_INT64, values.data());
    return values;
}

std::vector<double> stored_reals(hid_t parent, const std::string& name)
{
    const auto stored = find(parent, name);
    std::vector<double> values(stored.elements());
    stored.read(H5T_NATIVE_DOUBLE, values.data());
    return values;
}

std::string stored_text(hid_t parent, const std::string& name)
{
    const auto stored = find(parent, name);
    const Hid type = stored.type();
    std::string bytes(stored.elements() * H5Tget_size(type), '\0');
    stored.read(type, bytes.data());
    return bytes;
}

std::vector<hsize_t> stored_extents(hid_t parent, const std::string& name)
{
    const auto stored = find(parent, name);
    const Hid space = stored.space();
    std::vector<hsize_t> extents(static_cast<std::size_t>(H5Sget_simple_extent_ndims(space)));
    H5Sget_simple_extent_dims(space, extents.data(), nullptr);
    return extents;
}

} // namespace kob_test
