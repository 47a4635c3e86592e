// SPDX-License-Identifier: BSD-3-Clause
// Search for blocks by key, names, zone, state and entity.
#include "kob_dp.h"
#include "kob_entry.hpp"
#include "kob_kinds.hpp"
#include "kob_listing.hpp"
#include "kob_location.hpp"
#include "kob_storage.hpp"
#include "kob_text.hpp"
#include "kob_walk.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <vector>

namespace kob {
namespace {

constexpr char undefined_text[] = "undefined"; // the value of a name criterion that is not set
constexpr std::int32_t stopped = 1;            // the outputs are full

/// What the caller looks for. An empty optional is a criterion that is not set.
struct Criteria {
    std::optional<std::int32_t> key;
    std::optional<std::string> etyp;
    std::optional<std::string> etypvar;
    std::optional<std::string> etypzone;
    std::optional<std::int32_t> zoneid;
    std::optional<std::string> etypframe;
    std::optional<std::string> series;
    std::optional<std::int32_t> matrixtype;
    std::optional<std::int32_t> entid;
    std::optional<std::string> second_name;
    std::optional<std::int32_t> nindex;
    const std::int32_t* indexident_low = nullptr;
    const double* indexval_low = nullptr;
    const std::int32_t* indexident_high = nullptr;
    const double* indexval_high = nullptr;
};

/// What a search asks of a kind: the items that hold a criterion's counterpart. Null: not tested for this kind.
struct KindFacts {
    const BlockKind* kind;
    const char* entity_type = nullptr; ///< criterion entity type name
    const char* second_name = nullptr; ///< criterion second name
    bool group_name = false;           ///< "etypvar" against the variable group name
    bool frame = false;                ///< "etypframe"
    bool zone = false;                 ///< "etypzone" and "zoneid"
    bool series = false;               ///< "series"
    bool matrix_type = false;          ///< "matrixtype"
    bool state_index = false;          ///< carries one state's index
    const char* entity_count = nullptr;
    const char* entity_list = nullptr;
};

constexpr std::array facts_of_kinds{
    KindFacts{.kind = &kind::variable, .second_name = "varkey"},
    KindFacts{.kind = &kind::variable_group, .group_name = true},
    KindFacts{.kind = &kind::text, .entity_type = "etyptext", .state_index = true},
    KindFacts{.kind = &kind::parts,
              .entity_type = "etyp",
              .state_index = true,
              .entity_count = "npart",
              .entity_list = "pid"},
    KindFacts{.kind = &kind::attributes,
              .entity_type = "etyp",
              .state_index = true,
              .entity_count = "nent",
              .entity_list = "entid"},
    KindFacts{.kind = &kind::identifiers,
              .entity_type = "etyp",
              .state_index = true,
              .entity_count = "nent",
              .entity_list = "entid"},
    KindFacts{.kind = &kind::connectivities,
              .entity_type = "etyp",
              .second_name = "etypelem",
              .state_index = true,
              .entity_count = "nele",
              .entity_list = "idele"},
    KindFacts{.kind = &kind::collector,
              .entity_type = "etypcoll",
              .state_index = true,
              .entity_count = "ncoll",
              .entity_list = "idcoll"},
    KindFacts{.kind = &kind::properties,
              .entity_type = "etyp",
              .second_name = "etypprop",
              .zone = true,
              .state_index = true,
              .entity_count = "nent",
              .entity_list = "entid"},
    KindFacts{.kind = &kind::entity_results,
              .entity_type = "etyp",
              .group_name = true,
              .frame = true,
              .zone = true,
              .state_index = true,
              .entity_count = "nent",
              .entity_list = "entid"},
    KindFacts{.kind = &kind::multi_entity_results,
              .entity_type = "etyp",
              .group_name = true,
              .frame = true,
              .zone = true,
              .series = true,
              .entity_count = "nent",
              .entity_list = "entid"},
    KindFacts{.kind = &kind::element_results,
              .entity_type = "etypelem",
              .group_name = true,
              .frame = true,
              .zone = true,
              .state_index = true,
              .entity_count = "nele",
              .entity_list = "idele"},
    KindFacts{.kind = &kind::multi_element_results,
              .entity_type = "etypelem",
              .group_name = true,
              .frame = true,
              .zone = true,
              .series = true,
              .entity_count = "nele",
              .entity_list = "idele"},
    KindFacts{.kind = &kind::activation_flags,
              .entity_type = "etyp",
              .state_index = true,
              .entity_count = "nent",
              .entity_list = "entid"},
    KindFacts{.kind = &kind::multi_activation_flags,
              .entity_type = "etyp",
              .series = true,
              .entity_count = "nent",
              .entity_list = "entid"},
    KindFacts{.kind = &kind::dense_matrix,
              .entity_type = "etyp",
              .group_name = true,
              .matrix_type = true,
              .state_index = true},
    KindFacts{.kind = &kind::triangular_matrix,
              .entity_type = "etyp",
              .group_name = true,
              .matrix_type = true,
              .state_index = true},
    KindFacts{.kind = &kind::sparse_matrix,
              .entity_type = "etyp",
              .group_name = true,
              .matrix_type = true,
              .state_index = true},
};

// What the older layout keeps elsewhere, or not at all.
constexpr std::array facts_of_older_kinds{
    KindFacts{.kind = &kind::older_variables, .group_name = true},
    KindFacts{.kind = &kind::older_text, .entity_type = "etyptext"},
};

KindFacts facts_of(std::int32_t key, Generation generation)
{
    const auto owns = [key](const KindFacts& facts) { return facts.kind->owns(key); };
    if (generation == Generation::older) {
        const auto* differing = std::find_if(facts_of_older_kinds.begin(), facts_of_older_kinds.end(), owns);
        if (differing != facts_of_older_kinds.end()) {
            return *differing;
        }
    }
    const auto* found = std::find_if(facts_of_kinds.begin(), facts_of_kinds.end(), owns);
    return found == facts_of_kinds.end() ? KindFacts{} : *found;
}

/// The items of one candidate, read without a word about what cannot be read.
class Items {
public:
    Items(Id group, Generation generation)
        : group_{std::move(group)}, generation_{generation}, places_{{group_.get(), generation}},
          header_{group_ ? places_.open(Where::header) : H5I_INVALID_HID}
    {
    }

    [[nodiscard]] Generation generation() const { return generation_; }

    [[nodiscard]] std::optional<std::int32_t> integer(const char* name) const
    {
        std::int32_t number = 0;
        const hsize_t one = 1;
        const bool read = KOB_H5Aread(name, &number, type_code::integer, sizeof number, &one, 0, header_, nullptr,
                                      Report::silent) == 0;
        return read ? std::optional{number} : std::nullopt;
    }

    [[nodiscard]] bool text(const char* name, char* field) const
    {
        const hsize_t one = 1;
        return KOB_H5Aread(name, field, type_code::text, name_length, &one, 0, header_, nullptr, Report::silent) == 0;
    }

    [[nodiscard]] bool has_text(const char* name, const std::string& wanted) const
    {
        std::array<char, name_length> field{};
        return text(name, field.data()) && trimmed(field.data(), name_length) == wanted;
    }

    /// A list of `count` numbers: empty when the stored one has another length.
    template <class Number>
    [[nodiscard]] std::optional<std::vector<Number>> list(Where where, const char* name, std::int32_t count)
    {
        // A buffer is sized by what is stored: an attribute may claim anything.
        const hid_t place = group_ ? places_.open(where) : H5I_INVALID_HID;
        if (count < 0 || count_elements(place, name) != count) {
            return std::nullopt;
        }
        std::vector<Number> numbers(static_cast<std::size_t>(count));
        const auto extent = static_cast<hsize_t>(count);
        const std::int32_t type = std::is_floating_point_v<Number> ? type_code::real : type_code::integer;
        const bool read = KOB_H5Dread(name, numbers.data(), type, sizeof(Number), &extent, 1, nullptr, nullptr,
                                      access_mode::whole, place, nullptr, nullptr, nullptr, Report::silent) == 0;
        return read ? std::optional{std::move(numbers)} : std::nullopt;
    }

private:
    Id group_;
    Generation generation_;
    Places places_;
    hid_t header_;
};

bool matches_text(const Items& items, const char* name, const std::optional<std::string>& wanted)
{
    return !wanted || items.has_text(name, *wanted);
}

bool matches_integer(const Items& items, const char* name, const std::optional<std::int32_t>& wanted)
{
    return !wanted || items.integer(name) == wanted;
}

bool matches_state(Items& items, const KindFacts& facts, const Criteria& criteria)
{
    if (!criteria.nindex) {
        return true;
    }
    const std::int32_t wanted = *criteria.nindex;
    if (!facts.state_index) {
        return wanted == 0;
    }
    const std::optional<std::int32_t> nindex = items.integer("nindex");
    if (!nindex || (wanted == 0 ? *nindex >= 1 : *nindex < wanted)) {
        return false;
    }
    if (wanted == 0 || *nindex <= 0) {
        return true;
    }
    const auto identifiers = items.list<std::int32_t>(Where::index, "indexident", *nindex);
    const auto index_values = items.list<double>(Where::index, "indexval", *nindex);
    if (!identifiers || !index_values) {
        return false;
    }
    for (std::int32_t i = 0; i < wanted; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const std::int32_t identifier = (*identifiers)[at];
        const double number = (*index_values)[at];
        const bool inside = value(criteria.indexident_low + i) <= identifier &&
                            identifier <= value(criteria.indexident_high + i) &&
                            value(criteria.indexval_low + i) <= number && number <= value(criteria.indexval_high + i);
        if (!inside) {
            return false;
        }
    }
    return true;
}

bool holds_entity(Items& items, const KindFacts& facts, const std::optional<std::int32_t>& wanted)
{
    if (!wanted) {
        return true;
    }
    if (facts.entity_list == nullptr) {
        return false;
    }
    const std::optional<std::int32_t> count = items.integer(facts.entity_count);
    const auto entities = count ? items.list<std::int32_t>(Where::data, facts.entity_list, *count) : std::nullopt;
    return entities && std::find(entities->begin(), entities->end(), *wanted) != entities->end();
}

bool matches(Items& items, std::int32_t key, const Criteria& criteria)
{
    if (criteria.key && (key == 0 || key != *criteria.key)) {
        return false;
    }
    const KindFacts facts = facts_of(key, items.generation());
    return (facts.entity_type == nullptr || matches_text(items, facts.entity_type, criteria.etyp)) &&
           (facts.second_name == nullptr || matches_text(items, facts.second_name, criteria.second_name)) &&
           (!facts.group_name || matches_text(items, "etypvar", criteria.etypvar)) &&
           (!facts.frame || matches_text(items, "etypframe", criteria.etypframe)) &&
           (!facts.zone || (matches_text(items, "etypzone", criteria.etypzone) &&
                            matches_integer(items, "zoneid", criteria.zoneid))) &&
           (!facts.series || matches_text(items, "series", criteria.series)) &&
           (!facts.matrix_type || matches_integer(items, "matrixtype", criteria.matrixtype)) &&
           matches_state(items, facts, criteria) && holds_entity(items, facts, criteria.entid);
}

/// The caller's output arrays and what is in them.
struct Outputs {
    bool fills;
    std::int32_t capacity;
    std::int64_t path_size;
    std::int32_t* keys;
    std::int64_t* offsets;
    char* paths;
    char* typenames; ///< null when not asked for
    std::int32_t count = 0;
    std::int64_t path_length = 0;

    std::int32_t add(const Items& items, std::int32_t key, const std::string& path)
    {
        const std::int64_t end = path_length + static_cast<std::int64_t>(path.size()) + 1;
        if (fills) {
            if (end > path_size || count >= capacity) {
                return stopped;
            }
            std::memcpy(paths + path_length, path.c_str(), path.size() + 1);
            keys[count] = key;
            if (typenames != nullptr) {
                char* field = typenames + static_cast<std::ptrdiff_t>(count) * name_length;
                if (!items.text("blocktype", field)) {
                    fill_field(field, name_length, "n/a");
                }
            }
            offsets[count + 1] = end;
        }
        ++count;
        path_length = end;
        return 0;
    }
};

std::optional<std::string> name_criterion(const char* name)
{
    const std::string_view text = trimmed(name, name_length);
    return text == undefined_text ? std::nullopt : std::optional<std::string>{text};
}

std::optional<std::int32_t> integer_criterion(const std::int32_t* number, std::int32_t smallest)
{
    return value(number) < smallest ? std::nullopt : std::optional{*number};
}

/// The arguments of a search, as the caller gave them.
struct SearchCall {
    const std::int32_t* option;
    const std::int32_t* verbose;
    const std::int32_t* key;
    const char* etyp;
    const char* etypvar;
    const char* etypzone;
    const std::int32_t* zoneid;
    const char* etypframe;
    const char* series;
    const std::int32_t* matrixtype;
    const std::int32_t* entid;
    const char* name2;
    const std::int32_t* nindex;
    const std::int32_t* indexident_low;
    const double* indexval_low;
    const std::int32_t* indexident_high;
    const double* indexval_high;
    const std::int32_t* capacity;
    const std::int64_t* path_size;
    std::int32_t* count;
    std::int64_t* path_length;
    std::int32_t* keys;
    std::int64_t* offsets;
    char* paths;
    char* typenames;
};

std::int32_t search(Location group, const SearchCall& call, const char* caller)
{
    const Criteria criteria{integer_criterion(call.key, 1),
                            name_criterion(call.etyp),
                            name_criterion(call.etypvar),
                            name_criterion(call.etypzone),
                            integer_criterion(call.zoneid, 0),
                            name_criterion(call.etypframe),
                            name_criterion(call.series),
                            integer_criterion(call.matrixtype, 0),
                            integer_criterion(call.entid, 0),
                            name_criterion(call.name2),
                            integer_criterion(call.nindex, 0),
                            call.indexident_low,
                            call.indexval_low,
                            call.indexident_high,
                            call.indexval_high};
    const bool fills = value(call.option) >= 1;
    const bool names_types = fills && (value(call.option) & 2) != 0;
    if (call.count == nullptr || call.path_length == nullptr ||
        (fills && (call.keys == nullptr || call.offsets == nullptr || call.paths == nullptr)) ||
        (names_types && call.typenames == nullptr)) {
        throw NullArgument{};
    }
    Outputs outputs{
        fills,      fills ? value(call.capacity) : 0,      fills ? value(call.path_size) : 0, call.keys, call.offsets,
        call.paths, names_types ? call.typenames : nullptr};
    if (fills) {
        *call.offsets = 0;
        if (outputs.path_size > 0) {
            *call.paths = '\0';
        }
    }
    const std::int32_t result = walk(group.group, [&](const Candidate& candidate) {
        const bool is_header = std::strcmp(candidate.link, header_group_name) == 0;
        Items items{Id{H5Gopen2(candidate.parent, candidate.link, H5P_DEFAULT), H5Gclose}, group.generation};
        const std::int32_t found = is_header ? kind::file_header : items.integer("block").value_or(0);
        return matches(items, found, criteria) ? outputs.add(items, found, candidate.path) : 0;
    });
    *call.count = outputs.count;
    *call.path_length = outputs.path_length;
    if (fills && value(call.verbose) != 0) {
        say_listing(caller, outputs.count, outputs.path_length, call.keys, call.offsets, call.paths);
    }
    return result;
}

} // namespace
} // namespace kob

extern "C" {

void KOB_SEARCHBLOCKS(const int64_t* group, const int32_t* option, const int32_t* verbose, const int32_t* key,
                      const char* etyp, const char* etypvar, const char* etypzone, const int32_t* zoneid,
                      const char* etypframe, const char* series, const int32_t* matrixtype, const int32_t* entid,
                      const char* name2, const void*, const int32_t* nindex, const int32_t* indexident_low,
                      const double* indexval_low, const int32_t* indexident_high, const double* indexval_high,
                      const int32_t* capacity, const int64_t* path_size, int32_t* count, int64_t* path_length,
                      int32_t* keys, int64_t* offsets, char* paths, char* typenames, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        return search(value(group),
                      {option,       verbose,         key,           etyp,     etypvar,   etypzone, zoneid,
                       etypframe,    series,          matrixtype,    entid,    name2,     nindex,   indexident_low,
                       indexval_low, indexident_high, indexval_high, capacity, path_size, count,    path_length,
                       keys,         offsets,         paths,         typenames},
                      "KOB_SEARCHBLOCKS");
    });
}

void KOB1_SEARCHBLOCKS(const int64_t* group, const int32_t* option, const int32_t* verbose, const int32_t* key,
                       const char* etyp, const char* etypvar, const char* etypzone, const int32_t* zoneid,
                       const char* etypframe, const char* series, const int32_t* matrixtype, const int32_t* entid,
                       const char* name2, const void*, const int32_t* nindex, const int32_t* indexident_low,
                       const double* indexval_low, const int32_t* indexident_high, const double* indexval_high,
                       const int32_t* capacity, const int64_t* path_size, int32_t* count, int64_t* path_length,
                       int32_t* keys, int64_t* offsets, char* paths, char* typenames, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        return search(older(group),
                      {option,       verbose,         key,           etyp,     etypvar,   etypzone, zoneid,
                       etypframe,    series,          matrixtype,    entid,    name2,     nindex,   indexident_low,
                       indexval_low, indexident_high, indexval_high, capacity, path_size, count,    path_length,
                       keys,         offsets,         paths,         typenames},
                      "KOB1_SEARCHBLOCKS");
    });
}

} // extern "C"
