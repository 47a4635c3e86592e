// SPDX-License-Identifier: BSD-3-Clause
// The listing uses HDF5 alone and none of the library's names, so that it sees a misspelt item.
#include "layout.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "hdf5_file.hpp"

namespace kob_test {

namespace {

std::string list(const std::vector<hsize_t>& extents)
{
    std::string text = "[";
    for (std::size_t i = 0; i < extents.size(); ++i) {
        if (i > 0) text += ", ";
        text += extents[i] == H5S_UNLIMITED ? "unlimited" : std::to_string(extents[i]);
    }
    return text + "]";
}

std::string type_text(hid_t type)
{
    const auto size = std::to_string(H5Tget_size(type));
    const auto order = [&] {
        switch (H5Tget_order(type)) {
        case H5T_ORDER_LE:
            return " little";
        case H5T_ORDER_BE:
            return " big";
        default:
            return " order?";
        }
    };
    switch (H5Tget_class(type)) {
    case H5T_INTEGER:
        return (H5Tget_sign(type) == H5T_SGN_2 ? "integer " : "unsigned ") + size + order();
    case H5T_FLOAT:
        return "float " + size + order();
    case H5T_STRING: {
        if (H5Tis_variable_str(type) > 0) return "text variable";
        const std::string padding = H5Tget_strpad(type) == H5T_STR_SPACEPAD  ? " space"
                                    : H5Tget_strpad(type) == H5T_STR_NULLPAD ? " nullpad"
                                                                             : " nullterm";
        return "text " + size + padding + (H5Tget_cset(type) == H5T_CSET_ASCII ? "" : " utf8");
    }
    default:
        return "class" + std::to_string(H5Tget_class(type)) + " " + size;
    }
}

struct Shape {
    std::vector<hsize_t> extents;
    std::vector<hsize_t> maxima;
    H5S_class_t kind;
};

Shape shape_of(hid_t space)
{
    Shape shape{{}, {}, H5Sget_simple_extent_type(space)};
    const auto rank = static_cast<std::size_t>(std::max(0, H5Sget_simple_extent_ndims(space)));
    shape.extents.resize(rank);
    shape.maxima.resize(rank);
    H5Sget_simple_extent_dims(space, shape.extents.data(), shape.maxima.data());
    return shape;
}

std::string filter_text(hid_t creation, unsigned index)
{
    unsigned flags = 0;
    std::array<unsigned, 32> values{};
    std::size_t count = values.size();
    const auto filter = H5Pget_filter2(creation, index, &flags, &count, values.data(), 0, nullptr, nullptr);
    std::string text;
    switch (filter) {
    case H5Z_FILTER_DEFLATE:
        text = "deflate(" + std::to_string(values[0]) + ")";
        break;
    case H5Z_FILTER_SHUFFLE:
        text = "shuffle";
        break;
    case H5Z_FILTER_SCALEOFFSET: {
        const std::string kind = values[0] == H5Z_SO_INT            ? "integer "
                                 : values[0] == H5Z_SO_FLOAT_DSCALE ? "decimal "
                                                                    : "exponent ";
        text = "scaleoffset(" + kind + std::to_string(values[1]) + ")";
        break;
    }
    default:
        text = "filter" + std::to_string(filter);
    }
    // scale-offset and shuffle are always optional in HDF5, deflate is what the caller makes of it
    const bool optional = (flags & H5Z_FLAG_OPTIONAL) != 0;
    return filter == H5Z_FILTER_DEFLATE && optional ? text + "(optional)" : text;
}

std::string fill_text(hid_t creation, H5T_class_t type_class)
{
    H5D_fill_value_t defined = H5D_FILL_VALUE_UNDEFINED;
    H5Pfill_value_defined(creation, &defined);
    if (defined != H5D_FILL_VALUE_USER_DEFINED) return "";
    if (type_class == H5T_INTEGER) {
        std::int64_t value = 0;
        H5Pget_fill_value(creation, H5T_NATIVE_INT64, &value);
        return " fill " + std::to_string(value);
    }
    if (type_class == H5T_FLOAT) {
        double value = 0;
        H5Pget_fill_value(creation, H5T_NATIVE_DOUBLE, &value);
        auto text = std::to_string(value);
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') text.pop_back();
        return " fill " + text;
    }
    return " fill?";
}

std::string storage_text(hid_t dataset, std::size_t rank, H5T_class_t type_class)
{
    const Hid creation{H5Dget_create_plist(dataset)};
    std::string text;
    switch (H5Pget_layout(creation)) {
    case H5D_COMPACT:
        text = " compact";
        break;
    case H5D_CONTIGUOUS:
        text = " contiguous";
        break;
    case H5D_CHUNKED: {
        std::vector<hsize_t> chunk(rank);
        H5Pget_chunk(creation, static_cast<int>(rank), chunk.data());
        text = " chunked " + list(chunk);
        break;
    }
    default:
        text = " virtual";
    }
    for (int i = 0; i < H5Pget_nfilters(creation); ++i) text += " " + filter_text(creation, static_cast<unsigned>(i));
    return text + fill_text(creation, type_class);
}

std::string dataset_text(hid_t dataset)
{
    const Hid type{H5Dget_type(dataset)};
    const Hid space{H5Dget_space(dataset)};
    const auto shape = shape_of(space);
    auto text = type_text(type);
    if (shape.kind == H5S_NULL)
        text += " null";
    else if (shape.kind == H5S_SCALAR)
        text += " scalar";
    else
        text += " " + list(shape.extents) + " max " + list(shape.maxima);
    text += storage_text(dataset, shape.extents.size(), H5Tget_class(type));
    return H5Dget_storage_size(dataset) == 0 && shape.kind != H5S_NULL ? text + " nocontent" : text;
}

std::string attribute_text(hid_t attribute)
{
    const auto shape = shape_of(Hid{H5Aget_space(attribute)});
    const auto type = type_text(Hid{H5Aget_type(attribute)});
    if (shape.kind == H5S_NULL) return type + " null";
    return type + " " + (shape.kind == H5S_SCALAR ? "scalar" : list(shape.extents));
}

std::string link_text(hid_t group, const std::string& name)
{
    H5L_info2_t info{};
    H5Lget_info2(group, name.c_str(), &info, H5P_DEFAULT);
    if (info.type == H5L_TYPE_SOFT) return "soft link " + name;
    if (info.type == H5L_TYPE_EXTERNAL) return "external link " + name;
    const Hid object{H5Oopen(group, name.c_str(), H5P_DEFAULT)};
    switch (H5Iget_type(object)) {
    case H5I_GROUP:
        return "group " + name;
    case H5I_DATASET:
        return "dataset " + name + " " + dataset_text(object);
    default:
        return "named type " + name;
    }
}

std::string joined(std::vector<std::string> lines)
{
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const auto& line : lines) text += line + "\n";
    return text;
}

} // namespace

std::string layout_of(hid_t group)
{
    std::vector<std::string> lines;
    for (const auto& name : attribute_names(group)) {
        const Hid attribute{H5Aopen(group, name.c_str(), H5P_DEFAULT)};
        lines.push_back("attribute " + name + " " + attribute_text(attribute));
    }
    for (const auto& name : link_names(group)) lines.push_back(link_text(group, name));
    return joined(std::move(lines));
}

std::string layout_of(const std::string& file, const std::string& group)
{
    const auto opened = open_file(file);
    return layout_of(open_group(opened, group));
}

std::string table(std::initializer_list<std::string> lines) { return joined(lines); }

} // namespace kob_test
