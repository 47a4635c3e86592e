// SPDX-License-Identifier: BSD-3-Clause
// Cutting a file back in plain HDF5, for one known layout. Nothing is looked for, but what each block says of its
// state is read: that, not a path, decides what goes.
#include "erase.hpp"
#include "raw.hpp"

#include <array>

namespace bench {
namespace {

bool is_empty(hid_t group)
{
    H5G_info_t info{};
    must(H5Gget_info(group, &info));
    return info.nlinks == 0;
}

/// Erases the blocks of a state that lie behind the last one to keep, and the groups that this leaves empty.
void erase_state(hid_t single_state, const std::string& name, const ResultSet& set, std::int32_t last)
{
    const hid_t state = must(H5Gopen2(single_state, name.c_str(), H5P_DEFAULT));
    const hid_t kind = must(H5Gopen2(state, "entityresults", H5P_DEFAULT));
    const hid_t node = must(H5Gopen2(kind, "NODE", H5P_DEFAULT));
    for (const std::string& name_of_variable : set.variables) {
        const hid_t variable = must(H5Gopen2(node, name_of_variable.c_str(), H5P_DEFAULT));
        std::int32_t identifier = 0;
        read_dataset(variable, "kobblock/indexident", H5T_NATIVE_INT, &identifier);
        const bool goes = identifier > last;
        if (goes) {
            must(H5Ldelete(variable, "kobblock", H5P_DEFAULT));
        }
        const bool emptied = goes && is_empty(variable);
        must(H5Gclose(variable));
        if (emptied) {
            must(H5Ldelete(node, name_of_variable.c_str(), H5P_DEFAULT));
        }
    }
    const auto close_and_delete = [](hid_t group, hid_t parent, const char* link) {
        const bool emptied = is_empty(group);
        must(H5Gclose(group));
        if (emptied) {
            must(H5Ldelete(parent, link, H5P_DEFAULT));
        }
    };
    close_and_delete(node, kind, "NODE");
    close_and_delete(kind, state, "entityresults");
    close_and_delete(state, single_state, name.c_str());
}

} // namespace

Work erase_raw(const EraseSet& set, const std::string& file_name, Digest*)
{
    return [set, file_name] {
        const hid_t file = must(H5Fopen(file_name.c_str(), H5F_ACC_RDWR, H5P_DEFAULT));
        const hid_t single_state = must(H5Gopen2(file, "post/singlestate", H5P_DEFAULT));
        for (std::int32_t number = 0; number < set.results.states; ++number) {
            const std::string path = state_path(number);
            erase_state(single_state, path.substr(path.find('/') + 1), set.results, set.kept - 1);
        }
        must(H5Gclose(single_state));
        must(H5Fclose(file));
    };
}

} // namespace bench
