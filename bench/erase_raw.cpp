// SPDX-License-Identifier: BSD-3-Clause
// Cutting a file back in plain HDF5, for one known layout: nothing is looked for.
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

/// Erases the blocks of a state that have to go, given the group of each variable, and the groups that this leaves
/// empty.
template <class HasToGo>
void erase_state(hid_t single_state, std::int32_t number, const ResultSet& set, const HasToGo& has_to_go)
{
    const std::string path = state_path(number);
    const std::string name = path.substr(path.find('/') + 1);
    const hid_t state = must(H5Gopen2(single_state, name.c_str(), H5P_DEFAULT));
    const hid_t kind = must(H5Gopen2(state, "entityresults", H5P_DEFAULT));
    const hid_t node = must(H5Gopen2(kind, "NODE", H5P_DEFAULT));
    for (const std::string& name_of_variable : set.variables) {
        const hid_t variable = must(H5Gopen2(node, name_of_variable.c_str(), H5P_DEFAULT));
        const bool goes = has_to_go(variable);
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

/// A file open to be changed.
class ChangedFile {
public:
    explicit ChangedFile(const std::string& name)
        : file_{must(H5Fopen(name.c_str(), H5F_ACC_RDWR, H5P_DEFAULT))}, single_state_{must(H5Gopen2(
                                                                             file_, "post/singlestate", H5P_DEFAULT))}
    {
    }
    ~ChangedFile()
    {
        must(H5Gclose(single_state_));
        must(H5Fclose(file_));
    }
    ChangedFile(const ChangedFile&) = delete;
    ChangedFile& operator=(const ChangedFile&) = delete;

    [[nodiscard]] hid_t single_state() const { return single_state_; }

private:
    hid_t file_;
    hid_t single_state_;
};

} // namespace

Work erase_reading(const EraseSet& set, const std::string& file_name, Digest*)
{
    return [set, file_name] {
        const ChangedFile file{file_name};
        for (std::int32_t number = 0; number < set.results.states; ++number) {
            erase_state(file.single_state(), number, set.results, [&](hid_t variable) {
                std::int32_t identifier = 0;
                read_dataset(variable, "kobblock/indexident", H5T_NATIVE_INT, &identifier);
                return identifier >= set.kept;
            });
        }
    };
}

Work erase_told(const EraseSet& set, const std::string& file_name, Digest*)
{
    return [set, file_name] {
        const ChangedFile file{file_name};
        for (std::int32_t number = set.kept; number < set.results.states; ++number) {
            erase_state(file.single_state(), number, set.results, [](hid_t) { return true; });
        }
    };
}

} // namespace bench
