// SPDX-License-Identifier: BSD-3-Clause
// Bare numbers in plain HDF5. Types, spaces and properties are HDF5's defaults, made once.
#include "values.hpp"

#include "must.hpp"

#include <hdf5.h>

#include <memory>

namespace bench {
namespace {

std::string group_of(std::int32_t state) { return "state" + std::to_string(state); }

Work write(const ResultSet& set, const std::string& file_name, Digest*)
{
    return [set, file_name, block = std::make_shared<Block>(set)] {
        const std::array<hsize_t, 2> extents{static_cast<hsize_t>(set.nent), static_cast<hsize_t>(set.ncoo)};
        const hid_t table = must(H5Screate_simple(2, extents.data(), nullptr));
        const hid_t scalar = must(H5Screate(H5S_SCALAR));
        const hid_t file = must(H5Fcreate(file_name.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT));
        for (std::int32_t state = 0; state < set.states; ++state) {
            const hid_t group = must(H5Gcreate2(file, group_of(state).c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
            for (std::size_t i = 0; i < set.variables.size(); ++i) {
                block->select(set, state, i);
                const hid_t values = must(H5Dcreate2(group, set.variables[i].c_str(), H5T_NATIVE_DOUBLE, table,
                                                     H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
                must(H5Dwrite(values, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, block->res.data()));
                must(H5Dclose(values));
            }
            const hid_t time = must(H5Acreate2(group, "time", H5T_NATIVE_DOUBLE, scalar, H5P_DEFAULT, H5P_DEFAULT));
            must(H5Awrite(time, H5T_NATIVE_DOUBLE, &block->indexval));
            must(H5Aclose(time));
            must(H5Gclose(group));
        }
        must(H5Fclose(file));
        must(H5Sclose(scalar));
        must(H5Sclose(table));
    };
}

Work read(const ResultSet& set, const std::string& file_name, Digest* digest)
{
    return [set, file_name, digest, block = std::make_shared<Block>(set)] {
        const hid_t file = must(H5Fopen(file_name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
        for (std::int32_t state = 0; state < set.states; ++state) {
            const hid_t group = must(H5Gopen2(file, group_of(state).c_str(), H5P_DEFAULT));
            for (const std::string& variable : set.variables) {
                const hid_t values = must(H5Dopen2(group, variable.c_str(), H5P_DEFAULT));
                must(H5Dread(values, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, block->res.data()));
                must(H5Dclose(values));
                if (digest != nullptr) {
                    digest->add(block->res);
                }
            }
            must(H5Gclose(group));
        }
        must(H5Fclose(file));
    };
}

} // namespace

const Program<ResultSet> bare_values{write, read};

bool finds_its_values(const Program<ResultSet>& program, const std::string& file)
{
    const ResultSet set{3, {"DISPLACEMENT", "STRESS"}, 50, 3};
    Digest expected;
    Block block{set};
    for (std::int32_t state = 0; state < set.states; ++state) {
        for (std::size_t i = 0; i < set.variables.size(); ++i) {
            block.select(set, state, i);
            expected.add(block.res);
        }
    }
    Digest found;
    program.write(set, file, nullptr)();
    program.read(set, file, &found)();
    return found.value() == expected.value();
}

} // namespace bench
