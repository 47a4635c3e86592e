// SPDX-License-Identifier: BSD-3-Clause
// Entity results in plain HDF5, for one known layout: the floor that a library is measured against.
//
// Parent groups stay open while their blocks are written, types, dataspaces and property lists are made once, nothing
// is asked before it is done, and a reader trusts the file. Access properties are HDF5's defaults.
#include "results_raw.hpp"
#include "raw.hpp"

#include <cstring>
#include <memory>

namespace bench {
namespace {

Work write(const ResultSet& set, const std::string& file, Digest*)
{
    return [set, file, block = std::make_shared<Block>(set)] {
        write_results(set, file, *block,
                      [&](std::int32_t state, std::size_t variable) { block->select(set, state, variable); });
    };
}

void read_block(hid_t group, hid_t text, Block& b)
{
    std::int32_t key = 0;
    read_attribute(group, "block", H5T_NATIVE_INT, &key);
    read_attribute(group, "etyp", text, b.etyp.data());
    read_attribute(group, "nent", H5T_NATIVE_INT, &b.nent);
    read_attribute(group, "etypvar", text, b.etypvar.data());
    read_attribute(group, "ncoo", H5T_NATIVE_INT, &b.ncoo);
    read_attribute(group, "etypzone", text, b.etypzone.data());
    read_attribute(group, "zoneid", H5T_NATIVE_INT, &b.zoneid);
    read_attribute(group, "etypframe", text, b.etypframe.data());
    read_attribute(group, "fswitch", H5T_NATIVE_INT, &b.fswitch);
    read_attribute(group, "dmpswitch", H5T_NATIVE_INT, &b.dmpswitch);
    read_attribute(group, "nindex", H5T_NATIVE_INT, &b.nindex);
    read_attribute(group, "indexic", H5T_NATIVE_INT, &b.indexic);
    read_dataset(group, "indexident", H5T_NATIVE_INT, &b.indexident);
    read_dataset(group, "indexval", H5T_NATIVE_DOUBLE, &b.indexval);
    read_dataset(group, "entid", H5T_NATIVE_INT, b.entid.data());
    read_dataset(group, "fidglob", H5T_NATIVE_INT, &b.fidglob);
    read_dataset(group, "res", H5T_NATIVE_DOUBLE, b.res.data());
}

void read_file(const ResultSet& set, const std::string& file_name, Digest* digest, Block& block)
{
    const OldFile file{file_name};
    const hid_t text = text_type();
    for (std::int32_t number = 0; number < set.states; ++number) {
        const std::string path = state_path(number) + "/entityresults/NODE";
        const hid_t node = must(H5Gopen2(file.post(), path.c_str(), H5P_DEFAULT));
        for (const std::string& variable : set.variables) {
            const hid_t group = must(H5Gopen2(node, (variable + "/kobblock").c_str(), H5P_DEFAULT));
            read_block(group, text, block);
            must(H5Gclose(group));
            if (digest != nullptr) {
                add(*digest, block);
            }
        }
        must(H5Gclose(node));
    }
    must(H5Tclose(text));
}

Work read(const ResultSet& set, const std::string& file, Digest* digest)
{
    return [set, file, digest, block = std::make_shared<Block>(set)] { read_file(set, file, digest, *block); };
}

/// The listing: keys, and paths one behind the other.
struct Directory {
    explicit Directory(const ResultSet& set)
    {
        const std::size_t count = set.variables.size() * static_cast<std::size_t>(set.states);
        keys.assign(count, 1);
        paths.assign(256 * count, '.');
        keys.clear();
        paths.clear();
    }

    std::vector<std::int32_t> keys;
    std::string paths;
    std::string path; ///< of the group being listed, with a "/" at its end
};

herr_t list_link(hid_t parent, const char* name, const H5L_info2_t*, void* data)
{
    auto& directory = *static_cast<Directory*>(data);
    if (std::strcmp(name, "kobblock") == 0) {
        std::int32_t key = 0;
        const hid_t group = must(H5Gopen2(parent, name, H5P_DEFAULT));
        read_attribute(group, "block", H5T_NATIVE_INT, &key);
        must(H5Gclose(group));
        directory.keys.push_back(key);
        directory.paths += directory.path;
        directory.paths += name;
        directory.paths += '\0';
        return 0;
    }
    const std::size_t length = directory.path.size();
    directory.path += name;
    directory.path += '/';
    const hid_t group = must(H5Gopen2(parent, name, H5P_DEFAULT));
    must(H5Literate2(group, H5_INDEX_NAME, H5_ITER_INC, nullptr, list_link, data));
    must(H5Gclose(group));
    directory.path.resize(length);
    return 0;
}

Work list(const ResultSet& set, const std::string& file_name, Digest* digest)
{
    return [file_name, digest, directory = std::make_shared<Directory>(set)] {
        {
            const OldFile file{file_name};
            must(H5Literate2(file.post(), H5_INDEX_NAME, H5_ITER_INC, nullptr, list_link, directory.get()));
        }
        if (digest != nullptr) {
            digest->add(directory->keys);
            digest->add(directory->paths.data(), directory->paths.size());
        }
    };
}

} // namespace

template <> const Program<ResultSet> Programs<ResultSet>::raw{write, read, list};

} // namespace bench
