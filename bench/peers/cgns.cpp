// SPDX-License-Identifier: BSD-3-Clause
// CGNS: a flow solution for each state with a field for each component, and the iterative data that join them to times.
#include "peer.hpp"

#include <cgnslib.h>

#include <algorithm>
#include <memory>

namespace bench {
namespace {

constexpr int first = 1; // base, zone and range are numbered from 1
constexpr std::size_t name_length = 32;

void must(int result, const char* call) { check(result == CG_OK, call); }

std::string solution_of(std::int32_t state) { return "Solution" + std::to_string(state); }

void write_times(int file, const ResultSet& set)
{
    std::vector<double> times(static_cast<std::size_t>(set.states));
    std::string names(times.size() * name_length, ' ');
    Block block{{1, set.variables, 1, 1}};
    for (std::int32_t state = 0; state < set.states; ++state) {
        block.select(set, state, 0);
        times[static_cast<std::size_t>(state)] = block.indexval;
        const std::string name = solution_of(state);
        name.copy(&names[static_cast<std::size_t>(state) * name_length], name.size());
    }
    const cgsize_t count = set.states;
    const std::array<cgsize_t, 2> extents{name_length, count};
    must(cg_biter_write(file, first, "States", set.states), "cg_biter_write");
    must(cg_goto(file, first, "BaseIterativeData_t", 1, "end"), "cg_goto");
    must(cg_array_write("TimeValues", RealDouble, 1, &count, times.data()), "cg_array_write");
    must(cg_ziter_write(file, first, first, "StatesOfZone"), "cg_ziter_write");
    must(cg_goto(file, first, "Zone_t", first, "ZoneIterativeData_t", 1, "end"), "cg_goto");
    must(cg_array_write("FlowSolutionPointers", Character, 2, extents.data(), names.data()), "cg_array_write");
}

Work write(const ResultSet& set, const std::string& file_name, Digest*)
{
    return [set, file_name, values = std::make_shared<Components>(set)] {
        int file = 0;
        int index = 0;
        must(cg_set_file_type(CG_FILE_HDF5), "cg_set_file_type");
        must(cg_open(file_name.c_str(), CG_MODE_WRITE, &file), "cg_open");
        must(cg_base_write(file, "Base", 3, 3, &index), "cg_base_write");
        const std::array<cgsize_t, 3> size{set.nent, 1, 0};
        must(cg_zone_write(file, first, "Zone", size.data(), Unstructured, &index), "cg_zone_write");
        for (std::int32_t state = 0; state < set.states; ++state) {
            int solution = 0;
            must(cg_sol_write(file, first, first, solution_of(state).c_str(), Vertex, &solution), "cg_sol_write");
            for (std::size_t i = 0; i < set.variables.size(); ++i) {
                values->select(set, state, i);
                for (std::size_t j = 0; j < values->size(); ++j) {
                    must(cg_field_write(file, first, first, solution, RealDouble,
                                        component_name(set.variables[i], j).c_str(), (*values)[j].data(), &index),
                         "cg_field_write");
                }
            }
        }
        write_times(file, set);
        must(cg_close(file), "cg_close");
    };
}

Work read(const ResultSet& set, const std::string& file_name, Digest* digest)
{
    return [set, file_name, digest, values = std::make_shared<Components>(set)] {
        int file = 0;
        const cgsize_t from = 1;
        const cgsize_t to = set.nent;
        must(cg_open(file_name.c_str(), CG_MODE_READ, &file), "cg_open");
        for (std::int32_t state = 0; state < set.states; ++state) {
            for (const std::string& variable : set.variables) {
                for (std::size_t j = 0; j < values->size(); ++j) {
                    must(cg_field_read(file, first, first, state + 1, component_name(variable, j).c_str(), RealDouble,
                                       &from, &to, (*values)[j].data()),
                         "cg_field_read");
                }
                if (digest != nullptr) {
                    values->add_to(*digest);
                }
            }
        }
        must(cg_close(file), "cg_close");
    };
}

} // namespace

std::string peer_name()
{
    return "CGNS " + std::to_string(CGNS_VERSION / 1000) + "." + std::to_string(CGNS_VERSION / 100 % 10) + "." +
           std::to_string(CGNS_VERSION / 10 % 10);
}

const Program<ResultSet> peer{write, read};

} // namespace bench
