// SPDX-License-Identifier: BSD-3-Clause
// Lists what a file holds, line by line, and compares two lists.
#include "same_file.hpp"

#include "must.hpp"
#include "program.hpp"

#include <hdf5.h>

#include <algorithm>
#include <map>

namespace bench {
namespace {

/// Path of an object, or path and name of an attribute, to a text with all there is to know of it.
using Contents = std::map<std::string, std::string>;

struct Handle {
    hid_t id;
    herr_t (*close)(hid_t);

    Handle(hid_t opened, herr_t (*closer)(hid_t)) : id{must(opened)}, close{closer} {}
    ~Handle() { close(id); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    operator hid_t() const { return id; } // NOLINT(google-explicit-constructor)
};

/// The bytes that HDF5 itself encodes a type or dataspace with: equal bytes, equal in every respect.
template <class Encode> std::string encoded(Encode encode)
{
    std::size_t size = 0;
    must(encode(nullptr, &size));
    std::string bytes(size, '\0');
    must(encode(bytes.data(), &size));
    return bytes;
}

std::string type_text(hid_t type)
{
    return encoded([&](void* buffer, std::size_t* size) { return H5Tencode(type, buffer, size); });
}

std::string extent_text(hid_t space)
{
    std::string text{"extents"};
    std::array<hsize_t, H5S_MAX_RANK> extents{};
    std::array<hsize_t, H5S_MAX_RANK> maximum{};
    const int rank = must(H5Sget_simple_extent_dims(space, extents.data(), maximum.data()));
    for (int i = 0; i < rank; ++i) {
        const auto at = static_cast<std::size_t>(i);
        text += ' ' + std::to_string(extents[at]) + '/' + std::to_string(maximum[at]);
    }
    return text;
}

std::string layout_text(hid_t properties)
{
    const H5D_layout_t layout = must(H5Pget_layout(properties));
    std::string text = " layout " + std::to_string(layout);
    if (layout == H5D_CHUNKED) {
        std::array<hsize_t, H5S_MAX_RANK> chunk{};
        const int rank = must(H5Pget_chunk(properties, static_cast<int>(chunk.size()), chunk.data()));
        for (int i = 0; i < rank; ++i) {
            text += ' ' + std::to_string(chunk[static_cast<std::size_t>(i)]);
        }
    }
    for (int i = 0; i < must(H5Pget_nfilters(properties)); ++i) {
        std::array<unsigned, 20> values{};
        std::size_t count = values.size();
        unsigned flags = 0;
        text += " filter " + std::to_string(must(H5Pget_filter2(properties, static_cast<unsigned>(i), &flags, &count,
                                                                values.data(), 0, nullptr, nullptr)));
        for (std::size_t j = 0; j < std::min(count, values.size()); ++j) {
            text += ' ' + std::to_string(values[j]);
        }
    }
    return text;
}

/// Room for all elements as they are stored.
std::string room_for(hid_t type, hid_t space)
{
    return std::string(H5Tget_size(type) * static_cast<std::size_t>(must(H5Sget_simple_extent_npoints(space))), '\0');
}

std::string digest_text(const std::string& bytes)
{
    Digest digest;
    digest.add(bytes.data(), bytes.size());
    return " values " + std::to_string(bytes.size()) + ' ' + std::to_string(digest.value());
}

std::string attribute_text(hid_t attribute)
{
    const Handle type{H5Aget_type(attribute), H5Tclose};
    const Handle space{H5Aget_space(attribute), H5Sclose};
    std::string values = room_for(type, space);
    must(H5Aread(attribute, type, values.data()));
    return "attribute " + extent_text(space) + digest_text(values) + " type " + type_text(type);
}

std::string dataset_text(hid_t dataset)
{
    const Handle type{H5Dget_type(dataset), H5Tclose};
    const Handle space{H5Dget_space(dataset), H5Sclose};
    const Handle properties{H5Dget_create_plist(dataset), H5Pclose};
    std::string values = room_for(type, space);
    must(H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()));
    return "dataset " + extent_text(space) + layout_text(properties) + digest_text(values) + " type " + type_text(type);
}

struct Collector {
    Contents& contents;
    std::string path;
};

herr_t collect_attribute(hid_t object, const char* name, const H5A_info_t*, void* data)
{
    auto& found = *static_cast<Collector*>(data);
    const Handle attribute{H5Aopen(object, name, H5P_DEFAULT), H5Aclose};
    found.contents[found.path + '@' + name] = attribute_text(attribute);
    return 0;
}

herr_t collect_link(hid_t parent, const char* name, const H5L_info2_t* info, void* data)
{
    auto& found = *static_cast<Collector*>(data);
    Collector inner{found.contents, found.path + '/' + name};
    std::string& text = found.contents[inner.path];
    text = "link of type " + std::to_string(info->type) + " to ";
    const Handle object{H5Oopen(parent, name, H5P_DEFAULT), H5Oclose};
    must(H5Aiterate2(object, H5_INDEX_NAME, H5_ITER_INC, nullptr, collect_attribute, &inner));
    switch (H5Iget_type(object)) {
    case H5I_DATASET:
        text += dataset_text(object);
        return 0;
    case H5I_GROUP:
        text += "group";
        return H5Literate2(object, H5_INDEX_NAME, H5_ITER_INC, nullptr, collect_link, &inner);
    default:
        text += "something else";
        return 0;
    }
}

Contents contents_of(const std::string& file_name)
{
    Contents contents;
    Collector root{contents, ""};
    const Handle file{H5Fopen(file_name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), H5Fclose};
    must(H5Literate2(file, H5_INDEX_NAME, H5_ITER_INC, nullptr, collect_link, &root));
    return contents;
}

} // namespace

std::vector<std::string> differences(const std::string& first_file, const std::string& second_file)
{
    const Contents first = contents_of(first_file);
    Contents second = contents_of(second_file);
    std::vector<std::string> lines;
    if (first.empty()) {
        lines.push_back("nothing in " + first_file);
    }
    for (const auto& [path, text] : first) {
        const auto other = second.find(path);
        if (other == second.end()) {
            lines.push_back(path + " is in the first file only");
            continue;
        }
        if (other->second != text) {
            lines.push_back(path + std::string{value_difference});
        }
        second.erase(other);
    }
    for (const auto& [path, text] : second) {
        lines.push_back(path + " is in the second file only");
    }
    return lines;
}

} // namespace bench
