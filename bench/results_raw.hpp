// SPDX-License-Identifier: BSD-3-Clause
// Files of entity results written in plain HDF5.
#pragma once

#include "raw.hpp"
#include "results.hpp"

namespace bench {

/// What all blocks of a file share while it is written.
class ResultWriter {
public:
    explicit ResultWriter(const ResultSet& set)
        : real_{set.value_size == 4 ? H5T_NATIVE_FLOAT : H5T_NATIVE_DOUBLE}, index_layout_{layout_for(8)}
    {
        const hsize_t one = 1;
        const std::array<hsize_t, 2> table{static_cast<hsize_t>(set.nent), static_cast<hsize_t>(set.ncoo)};
        index_ = must(H5Screate_simple(1, &one, nullptr));
        rows_ = must(H5Screate_simple(1, table.data(), nullptr));
        table_ = must(H5Screate_simple(2, table.data(), nullptr));
        row_layout_ = layout_for(4 * table[0], {table[0]}, set.packing, H5T_NATIVE_INT);
        table_layout_ = layout_for(table[0] * table[1] * static_cast<hsize_t>(set.value_size), {table[0], table[1]},
                                   set.packing, real_);
    }
    ~ResultWriter()
    {
        for (const hid_t space : {index_, rows_, table_}) {
            H5Sclose(space);
        }
        for (const hid_t properties : {index_layout_, row_layout_, table_layout_}) {
            H5Pclose(properties);
        }
    }
    ResultWriter(const ResultWriter&) = delete;
    ResultWriter& operator=(const ResultWriter&) = delete;

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

/// Writes a file; `fill` gives the block the contents of a state and variable.
template <class Fill>
void write_results(const ResultSet& set, const std::string& file_name, const Block& block, Fill&& fill)
{
    const NewFile file{file_name};
    const hid_t many_names = must(H5Pcreate(H5P_GROUP_CREATE));
    must(H5Pset_local_heap_size_hint(many_names, 16384));
    const hid_t single_state = create_group(file.run(), "singlestate", many_names);
    {
        const ResultWriter writer{set};
        for (std::int32_t number = 0; number < set.states; ++number) {
            const std::string path = state_path(number);
            const hid_t state = create_group(single_state, path.c_str() + path.find('/') + 1);
            const hid_t kind = create_group(state, "entityresults");
            const hid_t node = create_group(kind, "NODE");
            for (std::size_t i = 0; i < set.variables.size(); ++i) {
                fill(number, i);
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

} // namespace bench
