// SPDX-License-Identifier: BSD-3-Clause
// The table of block kinds.

#include "block_scans.hpp"

namespace kob::program {

// One line per kind: key, key with complex values, name, items that name the entity type and the variable, the item
// whose shape tells the size, how it is shown, and the description. To add a kind, write its description and put it
// here.
const std::vector<Kind>& all_kinds()
{
    static const std::vector<Kind> kinds{
        {1, 0, "header", "", "", "", Look::lists, scan_header},
        {10, 0, "system", "", "", "", Look::lists, scan_system},
        {20, 0, "indices", "", "etypvar", "", Look::lists, scan_index},
        {30, 0, "variable", "", "varkey", "mbunit", Look::lists, scan_variable},
        {32, 0, "variablegroup", "", "etypvar", "varkey", Look::lists, scan_variable_group},
        {40, 0, "text", "etyptext", "", "line", Look::lists, scan_text},
        {100, 0, "parts", "etyppart", "", "pid", Look::table, scan_parts},
        {200, 0, "attributes", "etyp", "", "entid", Look::table, scan_attributes},
        {250, 0, "identifiers", "etyp", "", "entid", Look::table, scan_identifiers},
        {300, 0, "connectivities", "etypelem", "etypvar", "ic", Look::lists, scan_connectivities},
        {400, 0, "collector", "etypcoll", "", "nent", Look::collectors, scan_collector},
        {500, 0, "properties", "etyp", "etypprop", "entid", Look::table, scan_properties},
        {1000, 1001, "entityresults", "etyp", "etypvar", "res", Look::lists, scan_entity_results},
        {1050, 1051, "multientityresults", "etyp", "etypvar", "res", Look::lists, scan_multi_entity_results},
        {1100, 1101, "elementresults", "etypelem", "etypvar", "res", Look::locations, scan_element_results},
        {1150, 1151, "multielementresults", "etypelem", "etypvar", "res", Look::locations, scan_multi_element_results},
        {2100, 0, "activflags", "etyp", "", "status", Look::table, scan_activation_flags},
        {2150, 0, "multiactivflags", "etyp", "", "status", Look::lists, scan_multi_activation_flags},
        {10000, 10001, "densematrix", "etyp", "etypvar", "val", Look::matrix, scan_dense_matrix},
        {10100, 10101, "triangularmatrix", "etyp", "etypvar", "val", Look::lists, scan_triangular_matrix},
        {10200, 10201, "sparsematrix", "etyp", "etypvar", "val", Look::entries, scan_sparse_matrix},
    };
    return kinds;
}

const std::vector<Kind>& older_kinds()
{
    static const std::vector<Kind> kinds{
        {20, 0, "indices", "", "", "etypindex", Look::lists, scan_older_index},
        {30, 0, "variables", "", "etypvar", "cname", Look::lists, scan_older_variables},
        {40, 0, "text", "etyptext", "", "line", Look::lists, scan_older_text},
        {300, 0, "connectivities", "etypelem", "", "ic", Look::lists, scan_older_connectivities},
    };
    return kinds;
}

} // namespace kob::program
