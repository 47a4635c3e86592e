// SPDX-License-Identifier: BSD-3-Clause
// Plain HDF5, nothing asked before it is done. Access properties are HDF5's defaults.
#include "raw.hpp"

namespace bench {

hid_t text_type()
{
    const hid_t type = must(H5Tcopy(H5T_C_S1));
    must(H5Tset_size(type, sizeof(Text256)));
    must(H5Tset_strpad(type, H5T_STR_SPACEPAD));
    return type;
}

hid_t create_group(hid_t parent, const char* name, hid_t properties)
{
    return must(H5Gcreate2(parent, name, H5P_DEFAULT, properties, H5P_DEFAULT));
}

hid_t layout_for(hsize_t bytes)
{
    const hid_t properties = must(H5Pcreate(H5P_DATASET_CREATE));
    must(H5Pset_layout(properties, bytes <= 24000 ? H5D_COMPACT : H5D_CONTIGUOUS));
    return properties;
}

hid_t layout_for(hsize_t bytes, std::initializer_list<hsize_t> extents, const Packing& packing, hid_t type)
{
    if (packing.level == 0) {
        return layout_for(bytes);
    }
    const hid_t properties = must(H5Pcreate(H5P_DATASET_CREATE));
    must(H5Pset_chunk(properties, static_cast<int>(extents.size()), extents.begin()));
    pack(properties, packing, type);
    return properties;
}

void pack(hid_t properties, const Packing& packing, hid_t type)
{
    if (packing.level == 0) {
        return;
    }
    if (packing.digits >= 0 && must(H5Tget_class(type)) == H5T_FLOAT) {
        const double never_written = 10000;
        must(H5Pset_fill_value(properties, H5T_NATIVE_DOUBLE, &never_written));
        must(H5Pset_scaleoffset(properties, H5Z_SO_FLOAT_DSCALE, packing.digits));
    }
    must(H5Pset_shuffle(properties));
    must(H5Pset_deflate(properties, static_cast<unsigned>(packing.level)));
}

void read_attribute(hid_t group, const char* name, hid_t type, void* value)
{
    const hid_t attribute = must(H5Aopen(group, name, H5P_DEFAULT));
    must(H5Aread(attribute, type, value));
    must(H5Aclose(attribute));
}

void read_dataset(hid_t group, const char* name, hid_t memory, void* values)
{
    const hid_t dataset = must(H5Dopen2(group, name, H5P_DEFAULT));
    must(H5Dread(dataset, memory, H5S_ALL, H5S_ALL, H5P_DEFAULT, values));
    must(H5Dclose(dataset));
}

NewFile::NewFile(const std::string& name)
    : file_{must(H5Fcreate(name.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT))}, run_{create_group(file_, "run")}
{
    must(H5Lcreate_hard(run_, ".", file_, "post", H5P_DEFAULT, H5P_DEFAULT));
}

NewFile::~NewFile()
{
    must(H5Gclose(run_));
    must(H5Fclose(file_));
}

OldFile::OldFile(const std::string& name)
    : file_{must(H5Fopen(name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT))}, post_{must(H5Gopen2(file_, "post", H5P_DEFAULT))}
{
}

OldFile::~OldFile()
{
    must(H5Gclose(post_));
    must(H5Fclose(file_));
}

GroupChain::GroupChain(hid_t parent, std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        parent = create_group(parent, name);
        groups_.push_back(parent);
    }
}

GroupChain::~GroupChain()
{
    for (; !groups_.empty(); groups_.pop_back()) {
        must(H5Gclose(groups_.back()));
    }
}

BlockWriter::BlockWriter(std::string_view block_type)
    : text_{text_type()}, scalar_{must(H5Screate(H5S_SCALAR))}, small_{layout_for(0)}
{
    block_type.copy(block_type_.data(), block_type_.size());
}

BlockWriter::~BlockWriter()
{
    H5Tclose(text_);
    H5Sclose(scalar_);
    H5Pclose(small_);
}

void BlockWriter::frame(hid_t group, std::int32_t key) const
{
    integer(group, "block", key);
    text(group, "blocktype", block_type_);
}

void BlockWriter::text(hid_t group, const char* name, const Text256& value) const
{
    attribute(group, name, text_, value.data());
}

void BlockWriter::integer(hid_t group, const char* name, const std::int32_t& value) const
{
    attribute(group, name, H5T_NATIVE_INT, &value);
}

void BlockWriter::attribute(hid_t group, const char* name, hid_t type, const void* value) const
{
    const hid_t attribute = must(H5Acreate2(group, name, type, scalar_, H5P_DEFAULT, H5P_DEFAULT));
    must(H5Awrite(attribute, type, value));
    must(H5Aclose(attribute));
}

void BlockWriter::dataset(hid_t group, const char* name, hid_t stored, hid_t space, hid_t layout, hid_t memory,
                          const void* values)
{
    const hid_t dataset = must(H5Dcreate2(group, name, stored, space, H5P_DEFAULT, layout, H5P_DEFAULT));
    must(H5Dwrite(dataset, memory, H5S_ALL, H5S_ALL, H5P_DEFAULT, values));
    must(H5Dclose(dataset));
}

void BlockWriter::dataset(hid_t group, const char* name, hid_t type, std::initializer_list<hsize_t> extents,
                          const void* values, const Packing& packing)
{
    hsize_t bytes = H5Tget_size(type);
    for (const hsize_t extent : extents) {
        bytes *= extent;
    }
    const hid_t space = must(H5Screate_simple(static_cast<int>(extents.size()), extents.begin(), nullptr));
    const hid_t layout = layout_for(bytes, extents, packing, type);
    dataset(group, name, type, space, layout, type, values);
    H5Pclose(layout);
    H5Sclose(space);
}

void BlockWriter::single(hid_t group, const char* name, const std::int32_t& value) const
{
    dataset(group, name, H5T_NATIVE_INT, scalar_, small_, H5T_NATIVE_INT, &value);
}

} // namespace bench
