// SPDX-License-Identifier: BSD-3-Clause
// The table of block kinds: keys, type names and the spelling of each reader's complaint about a wrong key.
#pragma once

#include <array>
#include <cstdint>

namespace kob {

/// How a reader words "wrong block key". Callers match these lines, so the three spellings stay.
enum class KeyWording { usual, lower_case, swapped };

/// One kind of block. Kinds of real or complex values have two keys.
struct BlockKind {
    std::int32_t key;
    const char* name; ///< "blocktype", and a component of most paths
    std::int32_t complex_key = 0;
    KeyWording wording = KeyWording::usual;
    bool has_state_index = true; ///< the older layout keeps it in a subgroup of its own

    [[nodiscard]] constexpr bool owns(std::int32_t candidate) const
    {
        return candidate == key || (complex_key != 0 && candidate == complex_key);
    }
    [[nodiscard]] constexpr std::int32_t key_of(bool complex) const { return complex ? complex_key : key; }
};

namespace kind {
constexpr std::int32_t file_header = 1; // listed like a block, but a group of its own
constexpr BlockKind system{.key = 10, .name = "system", .has_state_index = false};
constexpr BlockKind index{.key = 20, .name = "indices", .has_state_index = false};
constexpr BlockKind variable{.key = 30, .name = "variable", .has_state_index = false};
constexpr BlockKind older_variables{.key = 30, .name = "variables", .has_state_index = false};
constexpr BlockKind variable_group{.key = 32, .name = "variablegroup", .has_state_index = false};
constexpr BlockKind text{40, "text"};
constexpr BlockKind older_text{.key = 40, .name = "text", .has_state_index = false};
constexpr BlockKind parts{100, "parts", 0, KeyWording::lower_case};
constexpr BlockKind attributes{200, "attributes", 0, KeyWording::lower_case};
constexpr BlockKind identifiers{250, "identifiers", 0, KeyWording::lower_case};
constexpr BlockKind connectivities{300, "connectivities"};
constexpr BlockKind collector{400, "collector"};
constexpr BlockKind properties{500, "properties", 0, KeyWording::lower_case};
constexpr BlockKind entity_results{1000, "entityresults", 1001};
constexpr BlockKind multi_entity_results{1050, "multientityresults", 1051};
constexpr BlockKind element_results{1100, "elementresults", 1101};
constexpr BlockKind multi_element_results{1150, "multielementresults", 1151};
constexpr BlockKind activation_flags{2100, "activflags", 0, KeyWording::swapped};
constexpr BlockKind multi_activation_flags{2150, "multiactivflags"};
constexpr BlockKind dense_matrix{10000, "densematrix", 10001};
constexpr BlockKind triangular_matrix{10100, "triangularmatrix", 10101};
constexpr BlockKind sparse_matrix{10200, "sparsematrix", 10201};
} // namespace kind

constexpr char block_group_name[] = "kobblock";
constexpr char header_group_name[] = "kobheader";

} // namespace kob
