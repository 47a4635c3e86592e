// SPDX-License-Identifier: BSD-3-Clause
// Exodus II in a netCDF-4 file: a nodal variable for each component, time step by time step.
#include "peer.hpp"

#include <exodusII.h>

#include <memory>

namespace bench {
namespace {

constexpr int eight_bytes = 8;

void must(int result, const char* call) { check(result >= 0, call); }

Work write(const ResultSet& set, const std::string& file_name, Digest*)
{
    return [set, file_name, values = std::make_shared<Components>(set)] {
        int in_memory = eight_bytes;
        int in_file = eight_bytes;
        const int file = ex_create(file_name.c_str(), EX_CLOBBER | EX_NETCDF4, &in_memory, &in_file);
        must(file, "ex_create");
        must(ex_put_init(file, "results", 3, set.nent, 0, 0, 0, 0), "ex_put_init");
        std::vector<std::string> names;
        for (const std::string& variable : set.variables) {
            for (std::size_t i = 0; i < values->size(); ++i) {
                names.push_back(component_name(variable, i));
            }
        }
        std::vector<char*> texts;
        for (std::string& name : names) {
            texts.push_back(name.data());
        }
        const int count = static_cast<int>(texts.size());
        must(ex_put_variable_param(file, EX_NODAL, count), "ex_put_variable_param");
        must(ex_put_variable_names(file, EX_NODAL, count, texts.data()), "ex_put_variable_names");
        for (std::int32_t state = 0; state < set.states; ++state) {
            int variable = 0; // numbered from 1, as time steps are
            for (std::size_t i = 0; i < set.variables.size(); ++i) {
                values->select(set, state, i);
                for (std::size_t j = 0; j < values->size(); ++j) {
                    must(ex_put_var(file, state + 1, EX_NODAL, ++variable, 1, set.nent, (*values)[j].data()),
                         "ex_put_var");
                }
            }
            const double time = values->time();
            must(ex_put_time(file, state + 1, &time), "ex_put_time");
        }
        must(ex_close(file), "ex_close");
    };
}

Work read(const ResultSet& set, const std::string& file_name, Digest* digest)
{
    return [set, file_name, digest, values = std::make_shared<Components>(set)] {
        int in_memory = eight_bytes;
        int in_file = 0;
        float version = 0;
        const int file = ex_open(file_name.c_str(), EX_READ, &in_memory, &in_file, &version);
        must(file, "ex_open");
        for (std::int32_t state = 0; state < set.states; ++state) {
            int variable = 0;
            for (std::size_t i = 0; i < set.variables.size(); ++i) {
                for (std::size_t j = 0; j < values->size(); ++j) {
                    must(ex_get_var(file, state + 1, EX_NODAL, ++variable, 1, set.nent, (*values)[j].data()),
                         "ex_get_var");
                }
                if (digest != nullptr) {
                    values->add_to(*digest);
                }
            }
        }
        must(ex_close(file), "ex_close");
    };
}

} // namespace

std::string peer_name()
{
    const std::string digits = std::to_string(EX_API_VERS_NODOT); // 602 is version 6.02
    return "Exodus II " + digits.substr(0, 1) + "." + digits.substr(1);
}

const Program<ResultSet> peer{write, read};

} // namespace bench
