// SPDX-License-Identifier: BSD-3-Clause
// netCDF-4: a growing dimension of states, a variable [state, node, component] for each quantity.
#include "peer.hpp"

#include <netcdf.h>
#include <netcdf_meta.h>

#include <memory>

namespace bench {
namespace {

void must(int result, const char* call) { check(result == NC_NOERR, call); }

Work write(const ResultSet& set, const std::string& file_name, Digest*)
{
    return [set, file_name, block = std::make_shared<Block>(set)] {
        int file = 0;
        int before = 0;
        std::array<int, 3> dimensions{};
        must(nc_create(file_name.c_str(), NC_NETCDF4 | NC_CLOBBER, &file), "nc_create");
        must(nc_set_fill(file, NC_NOFILL, &before), "nc_set_fill"); // every value gets written
        must(nc_def_dim(file, "time", NC_UNLIMITED, dimensions.data()), "nc_def_dim");
        must(nc_def_dim(file, "node", static_cast<std::size_t>(set.nent), &dimensions[1]), "nc_def_dim");
        must(nc_def_dim(file, "component", static_cast<std::size_t>(set.ncoo), &dimensions[2]), "nc_def_dim");
        int time = 0;
        must(nc_def_var(file, "time", NC_DOUBLE, 1, dimensions.data(), &time), "nc_def_var");
        const std::array<std::size_t, 3> count{1, static_cast<std::size_t>(set.nent),
                                               static_cast<std::size_t>(set.ncoo)};
        std::vector<int> variables(set.variables.size());
        for (std::size_t i = 0; i < variables.size(); ++i) {
            must(nc_def_var(file, set.variables[i].c_str(), NC_DOUBLE, 3, dimensions.data(), &variables[i]),
                 "nc_def_var");
            // A state is a chunk. Left alone, the library takes chunks that are no divisors: slower, and a larger file.
            must(nc_def_var_chunking(file, variables[i], NC_CHUNKED, count.data()), "nc_def_var_chunking");
        }
        must(nc_enddef(file), "nc_enddef");
        for (std::int32_t state = 0; state < set.states; ++state) {
            const std::array<std::size_t, 3> start{static_cast<std::size_t>(state), 0, 0};
            for (std::size_t i = 0; i < variables.size(); ++i) {
                block->select(set, state, i);
                must(nc_put_vara_double(file, variables[i], start.data(), count.data(), block->res.data()),
                     "nc_put_vara_double");
            }
            must(nc_put_vara_double(file, time, start.data(), count.data(), &block->indexval), "nc_put_vara_double");
        }
        must(nc_close(file), "nc_close");
    };
}

Work read(const ResultSet& set, const std::string& file_name, Digest* digest)
{
    return [set, file_name, digest, block = std::make_shared<Block>(set)] {
        int file = 0;
        must(nc_open(file_name.c_str(), NC_NOWRITE, &file), "nc_open");
        std::vector<int> variables(set.variables.size());
        for (std::size_t i = 0; i < variables.size(); ++i) {
            must(nc_inq_varid(file, set.variables[i].c_str(), &variables[i]), "nc_inq_varid");
        }
        const std::array<std::size_t, 3> count{1, static_cast<std::size_t>(set.nent),
                                               static_cast<std::size_t>(set.ncoo)};
        for (std::int32_t state = 0; state < set.states; ++state) {
            const std::array<std::size_t, 3> start{static_cast<std::size_t>(state), 0, 0};
            for (const int variable : variables) {
                must(nc_get_vara_double(file, variable, start.data(), count.data(), block->res.data()),
                     "nc_get_vara_double");
                if (digest != nullptr) {
                    digest->add(block->res);
                }
            }
        }
        must(nc_close(file), "nc_close");
    };
}

} // namespace

std::string peer_name() { return "netCDF-4 " NC_VERSION; }

const Program<ResultSet> peer{write, read};

} // namespace bench
