// SPDX-License-Identifier: BSD-3-Clause
// Entity results in plain HDF5, for one known layout: the floor that a library is measured against.
//
// Parent groups stay open while their blocks are written, types, dataspaces and property lists are made once, nothing
// is asked before it is done, and a reader trusts the file. Access properties are HDF5's defaults.
#include "raw.hpp"
#include "results.hpp"

#include <cstring>
#include <memory>

namespace bench {
namespace {

/// What all blocks of a file share while it is written.
class Writer {
public:
    explicit Writer(const ResultSet& set)
        : real_{set.value_size == 4 ? H5T_NATIVE_FLOAT : H5T_NATIVE_DOUBLE}, index_layout_{layout_for(8)}
    {
        const hsize_t one = 1;
        const std::array<hsize_t, 2> table{static_cast<hsize_t>(set.nent), static_cast<hsize_t>(set.ncoo)};
        index_ = must(H5Screate_simple(1, &one, nullptr));
        rows_ = must(H5Screate_simple(1, table.data(), nullptr));
        table_ = must(H5Screate_simple(2, table.data(), nullptr));
        row_layout_ = layout_for(4 * table[0]);
        table_layout_ = layout_for(table[0] * table[1] * static_cast<hsize_t>(set.value_size));
    }
    ~Writer()
    {
        for (const hid_t space : {index_, rows_, table_}) {
            H5Sclose(space);
        }
        for (const hid_t properties : {index_layout_, row_layout_, table_layout_}) {
            H5Pclose(properties);
        }
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    void write(hid_t group, const Block& b) const
    {
        to_.frame(group, 1000);
        to_.text(group, "etyp", b.etyp);
        to_.integer(group, "nent", b.nent);
        to_.text(group, "etypvar", b.etypvar);
        to_.integer(group, "ncoo", b.ncoo);
        to_.text(group, "etypzone", b.etypzone);
        to_.integer(group, "zoneid", b.zoneid);
        to_.text(group, "etypframe", b.etypframe);
        to_.integer(group, "fswitch", b.fswitch);
        to_.integer(group, "dmpswitch", b.dmpswitch);
        to_.integer(group, "nindex", b.nindex);
        to_.integer(group, "indexic", b.indexic);
        to_.dataset(group, "indexident", H5T_NATIVE_INT, index_, index_layout_, H5T_NATIVE_INT, &b.indexident);
        to_.dataset(group, "indexval", real_, index_, index_layout_, H5T_NATIVE_DOUBLE, &b.indexval);
        to_.dataset(group, "entid", H5T_NATIVE_INT, rows_, row_layout_, H5T_NATIVE_INT, b.entid.data());
        to_.single(group, "fidglob", b.fidglob);
        to_.dataset(group, "res", real_, table_, table_layout_, H5T_NATIVE_DOUBLE, b.res.data());
    }

private:
    BlockWriter to_{"entityresults"};
    hid_t index_ = H5I_INVALID_HID;
    hid_t rows_ = H5I_INVALID_HID;
    hid_t table_ = H5I_INVALID_HID;
    hid_t real_;
    hid_t index_layout_;
    hid_t row_layout_ = H5I_INVALID_HID;
    hid_t table_layout_ = H5I_INVALID_HID;
};

void write_file(const ResultSet& set, const std::string& file_name, Block& block)
{
    const NewFile file{file_name};
    const hid_t many_names = must(H5Pcreate(H5P_GROUP_CREATE));
    must(H5Pset_local_heap_size_hint(many_names, 16384));
    const hid_t single_state = create_group(file.run(), "singlestate", many_names);
    {
        const Writer writer{set};
        for (std::int32_t number = 0; number < set.states; ++number) {
            const std::string path = state_path(number);
            const hid_t state = create_group(single_state, path.c_str() + path.find('/') + 1);
            const hid_t kind = create_group(state, "entityresults");
            const hid_t node = create_group(kind, "NODE");
            for (std::size_t i = 0; i < set.variables.size(); ++i) {
                block.select(set, number, i);
                const hid_t variable = create_group(node, set.variables[i].c_str());
                const hid_t group = create_group(variable, "kobblock");
                writer.write(group, block);
                must(H5Gclose(group));
                must(H5Gclose(variable));
            }
            must(H5Gclose(node));
            must(H5Gclose(kind));
            must(H5Gclose(state));
        }
    }
    must(H5Gclose(single_state));
    must(H5Pclose(many_names));
}

Work write(const ResultSet& set, const std::string& file, Digest*)
{
    return [set, file, block = std::make_shared<Block>(set)] { write_file(set, file, *block); };
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
