// SPDX-License-Identifier: BSD-3-Clause
// Everything below a group as plain HDF5 sees it, for the comparison of whole files.
#pragma once

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <hdf5.h>

#include "hdf5_file.hpp"

namespace kob_test {

/// Type, extents and values of each group, attribute and dataset, by path. How data are stored does not count.
class FileContents {
public:
    explicit FileContents(hid_t group) { add_group(group, ""); }

    std::map<std::string, std::string> items;

    /// Paths below that start with `prefix` are forgotten.
    FileContents& without(const std::string& prefix)
    {
        std::erase_if(items, [&](const auto& item) { return item.first.starts_with(prefix); });
        return *this;
    }

    /// One line for each item that is not the same in both; empty when there is none.
    static std::string differences(const FileContents& a, const FileContents& b)
    {
        std::ostringstream out;
        for (const auto& [path, text] : a.items) {
            const auto other = b.items.find(path);
            if (other == b.items.end()) {
                out << "only in the first: " << path << "\n";
            } else if (other->second != text) {
                out << path << "\n  " << text << "\n  " << other->second << "\n";
            }
        }
        for (const auto& [path, text] : b.items) {
            if (!a.items.contains(path)) out << "only in the second: " << path << " " << text << "\n";
        }
        return out.str();
    }

private:
    void add_group(hid_t group, const std::string& path)
    {
        items[path + "/"] = "group";
        for (const std::string& name : attribute_names(group)) {
            const Hid attribute = H5Aopen(group, name.c_str(), H5P_DEFAULT);
            add(group, name, path + "@" + name, Hid{H5Aget_type(attribute)});
        }
        for (const std::string& name : link_names(group)) {
            const Hid object = H5Oopen(group, name.c_str(), H5P_DEFAULT);
            if (H5Iget_type(object) == H5I_GROUP) {
                add_group(object, path + "/" + name);
            } else {
                add(group, name, path + "/" + name, Hid{H5Dget_type(object)});
            }
        }
    }
    void add(hid_t group, const std::string& name, const std::string& path, const Hid& type)
    {
        std::ostringstream text;
        text.precision(17);
        text << "class " << H5Tget_class(type) << " size " << H5Tget_size(type) << " [";
        for (const hsize_t extent : extents_of(group, name)) text << extent << " ";
        text << "]";
        if (H5Tget_class(type) == H5T_STRING) {
            text << " " << stored_text(group, name);
        } else {
            for (const double value : stored_reals(group, name)) text << " " << value;
        }
        items[path] = text.str();
    }
    static std::vector<hsize_t> extents_of(hid_t group, const std::string& name)
    {
        return has_link(group, name) ? stored_extents(group, name) : std::vector<hsize_t>{};
    }
};

} // namespace kob_test
