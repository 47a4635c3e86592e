// SPDX-License-Identifier: BSD-3-Clause
// MED: a field of three components on the nodes of a mesh for each quantity, time step by time step.
#include "peer.hpp"

#include <med.h>

#include <memory>

namespace bench {
namespace {

void must(med_idt result, const char* call) { check(result >= 0, call); }

/// Names of 16 characters, one behind the other.
std::string names_of(std::initializer_list<const char*> names)
{
    std::string all;
    for (const char* name : names) {
        all += name;
        all.resize((all.size() + MED_SNAME_SIZE - 1) / MED_SNAME_SIZE * MED_SNAME_SIZE, ' ');
    }
    return all;
}

Work write(const ResultSet& set, const std::string& file_name, Digest*)
{
    return [set, file_name, block = std::make_shared<Block>(set)] {
        const std::string components = names_of({"X", "Y", "Z"});
        const std::string units = names_of({"m", "m", "m"});
        const med_idt file = MEDfileOpen(file_name.c_str(), MED_ACC_CREAT);
        must(file, "MEDfileOpen");
        must(MEDmeshCr(file, "mesh", 3, 3, MED_UNSTRUCTURED_MESH, "", "s", MED_SORT_DTIT, MED_CARTESIAN,
                       components.c_str(), units.c_str()),
             "MEDmeshCr");
        for (const std::string& variable : set.variables) {
            must(MEDfieldCr(file, variable.c_str(), MED_FLOAT64, set.ncoo, components.c_str(), units.c_str(), "s",
                            "mesh"),
                 "MEDfieldCr");
        }
        for (std::int32_t state = 0; state < set.states; ++state) {
            for (std::size_t i = 0; i < set.variables.size(); ++i) {
                block->select(set, state, i);
                must(MEDfieldValueWr(file, set.variables[i].c_str(), state, MED_NO_IT, block->indexval, MED_NODE,
                                     MED_NONE, MED_FULL_INTERLACE, MED_ALL_CONSTITUENT, set.nent,
                                     reinterpret_cast<const unsigned char*>(block->res.data())), // NOLINT
                     "MEDfieldValueWr");
            }
        }
        must(MEDfileClose(file), "MEDfileClose");
    };
}

Work read(const ResultSet& set, const std::string& file_name, Digest* digest)
{
    return [set, file_name, digest, block = std::make_shared<Block>(set)] {
        const med_idt file = MEDfileOpen(file_name.c_str(), MED_ACC_RDONLY);
        must(file, "MEDfileOpen");
        for (std::int32_t state = 0; state < set.states; ++state) {
            for (const std::string& variable : set.variables) {
                must(MEDfieldValueRd(file, variable.c_str(), state, MED_NO_IT, MED_NODE, MED_NONE, MED_FULL_INTERLACE,
                                     MED_ALL_CONSTITUENT,
                                     reinterpret_cast<unsigned char*>(block->res.data())), // NOLINT
                     "MEDfieldValueRd");
                if (digest != nullptr) {
                    digest->add(block->res);
                }
            }
        }
        must(MEDfileClose(file), "MEDfileClose");
    };
}

} // namespace

std::string peer_name()
{
    med_int major = 0;
    med_int minor = 0;
    med_int release = 0;
    MEDlibraryNumVersion(&major, &minor, &release);
    return "MED " + std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(release);
}

const Program<ResultSet> peer{write, read};

} // namespace bench
