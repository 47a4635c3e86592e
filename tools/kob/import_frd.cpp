// SPDX-License-Identifier: BSD-3-Clause
// Decides which block each part of an ASCII result file goes to; docs/import.md tells users the same.

#include "import_frd.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <filesystem>
#include <limits>
#include <map>
#include <set>
#include <tuple>

#include "terminal.hpp"

namespace kob::program {

namespace {

constexpr std::int32_t scalar = 1;
constexpr std::int32_t vector = 2;
constexpr std::int32_t matrix = 4;
constexpr std::int32_t vector_phase = 12; ///< magnitudes and phases of a vector
constexpr std::int32_t matrix_phase = 14;
constexpr std::size_t longest_result_name = 8;

const std::string node = "NODE";
const std::string state_entity = "STATE";

/// Kinds of analysis, as the solver numbers them.
enum Analysis : std::int32_t { static_analysis = 0, dynamic = 1, frequency = 2, complex_frequency = 3, buckling = 4 };

std::string tensor_name(std::int32_t kind)
{
    switch (kind) {
    case scalar:
        return "scalar";
    case vector:
        return "vector";
    case matrix:
        return "symmetric matrix";
    case vector_phase:
        return "vector, magnitude and phase";
    case matrix_phase:
        return "symmetric matrix, magnitude and phase";
    default:
        return "";
    }
}

/// A result's name as a part of a block path.
std::string path_name(std::string name)
{
    std::replace(name.begin(), name.end(), '/', '_');
    return name == "." || name == ".." ? "_" + name : name;
}

/// The name under which the solver writes the imaginary part: DISP and DISPI, TOSTRAIN and TOSTRAII.
std::string imaginary_name(const std::string& name) { return name.substr(0, longest_result_name - 1) + "I"; }

std::vector<std::int32_t> place_of(const frd::Component& c)
{
    const auto inside = [](std::int32_t i) { return i >= 1 && i <= 3; };
    if (c.kind == vector && inside(c.row)) return {c.row};
    if (c.kind == matrix && inside(c.row) && inside(c.col)) return {c.row, c.col};
    return {};
}

Variable variable_of(const std::string& key, const std::string& result_name,
                     const std::vector<frd::Component>& components, bool with_units)
{
    Variable v;
    v.key = key;
    v.var_class = "RESULT";
    const std::int32_t kind = components.empty() ? 0 : components.front().kind;
    const bool one_kind =
        std::all_of(components.begin(), components.end(), [&](const auto& c) { return c.kind == kind; });
    v.tensor = one_kind ? kind : 0;
    v.type = tensor_name(v.tensor);
    if (v.tensor == vector || v.tensor == vector_phase) v.rank = 1;
    if (v.tensor == matrix || v.tensor == matrix_phase) v.rank = 2;
    for (const auto& c : components) {
        Variable::Component out{c.name, v.rank > 0 ? place_of(c) : std::vector<std::int32_t>{}, {}};
        if (with_units) out.unit = unit_of(result_name, c.name).value_or(Exponents{});
        v.components.push_back(std::move(out));
    }
    return v;
}

/// A variable of scalars.
Variable plain_variable(const std::string& key, const std::string& var_class, const std::vector<std::string>& names,
                        bool with_units)
{
    Variable v;
    v.key = key;
    v.var_class = var_class;
    v.tensor = scalar;
    v.type = tensor_name(scalar);
    for (const auto& name : names) {
        v.components.push_back({name, {}, with_units ? unit_of(key, name).value_or(Exponents{}) : Exponents{}});
    }
    return v;
}

const std::vector<std::string> step_names = {"STEP", "INCREMENT", "SET", "ANALYSIS"};
const std::array mode_keys = {"MODE", "GM", "GK", "HID", "SUBC"};
const std::vector<std::string> axis_names = {"X1", "Y1", "Z1", "X2", "Y2", "Z2"};

double parameter(const frd::Result& result, std::string_view key, std::size_t at, double otherwise)
{
    const auto* p = result.parameter(key);
    return p && p->values.size() > at ? p->values[at] : otherwise;
}

// The record STEP holds the result's running number, the increment and the step.
double increment_of(const frd::Result& r) { return parameter(r, "STEP", 1, 0); }
double step_of(const frd::Result& r) { return parameter(r, "STEP", 2, 0); }

bool has_mode(const frd::Result& r)
{
    return std::any_of(mode_keys.begin(), mode_keys.end(),
                       [&](const char* key) { return r.parameter(key) != nullptr; });
}

/// The value of a header record such as "PGM   name" under its key; the last one, since headings come first.
std::string header_value(const frd::Outline& outline, std::string_view key)
{
    std::string value;
    for (const auto& text : outline.user) {
        if (text.substr(0, key.size()) == key && (text.size() == key.size() || text[key.size()] == ' ')) {
            value = trimmed(std::string_view{text}.substr(key.size()));
        }
    }
    return value;
}

/// "21.november.2026" as 20261121; another text as it is.
std::string date_digits(const std::string& text)
{
    static constexpr std::array months = {"jan", "feb", "mar", "apr", "may", "jun",
                                          "jul", "aug", "sep", "oct", "nov", "dec"};
    const auto first = text.find('.');
    const auto second = first == std::string::npos ? first : text.find('.', first + 1);
    if (second == std::string::npos) return text;
    std::string month = text.substr(first + 1, second - first - 1).substr(0, 3);
    std::transform(month.begin(), month.end(), month.begin(), [](unsigned char c) { return std::tolower(c); });
    const auto found = std::find(months.begin(), months.end(), month);
    const std::string day = text.substr(0, first);
    if (found == months.end() || day.empty() || day.size() > 2) return text;
    return fmt::format("{}{:02}{:0>2}", text.substr(second + 1), found - months.begin() + 1, day);
}

std::string without_colons(std::string text)
{
    std::erase(text, ':');
    return text;
}

} // namespace

FrdImport::FrdImport(const ImportOptions& options)
    : options_{options}, units_{options.units.empty() ? std::vector<BaseUnit>{} : parse_units(options.units)},
      lines_{options.input}, outline_{frd::outline(lines_)}
{
    warnings_ = outline_.warnings;
    plan_states();
    for (auto& info : states_) {
        plan_pairs(info);
        if (!options_.series) plan_sets(info); // a series finds its sets when it sees the nodes
        plan_index(info);
    }
    plan_variables();
    plan_scales();
}

/// A state is what has the same step, increment, mode, running number and value; numbers follow the file's order.
void FrdImport::plan_states()
{
    using Key = std::tuple<std::int32_t, std::int32_t, double, double, double, std::uint64_t>;
    std::map<Key, std::size_t> known;
    for (const auto& r : outline_.results) {
        if (r.components.empty()) {
            warnings_.push_back(fmt::format("line {}: result {} has no component with values: not imported",
                                            r.section.first.line, printable(r.name)));
            continue;
        }
        const Key key{r.analysis,
                      r.set,
                      step_of(r),
                      increment_of(r),
                      parameter(r, "MODE", 0, 0),
                      std::bit_cast<std::uint64_t>(r.value)};
        const auto [at, added] = known.try_emplace(key, states_.size());
        if (added) states_.push_back({{static_cast<std::int32_t>(states_.size()) + 1, 0, r.value}, &r, {}});
        states_[at->second].plans.push_back(plans_.size());
        plans_.push_back({&r, nullptr, at->second, path_name(r.name), -1});
    }
}

/// Real and imaginary parts stand in one state under two names.
void FrdImport::plan_pairs(const StateInfo& info)
{
    std::map<std::string, std::vector<std::size_t>> by_name;
    for (const std::size_t i : info.plans) by_name[plans_[i].result->name].push_back(i);
    for (const auto& [name, plans] : by_name) {
        const auto partner = by_name.find(imaginary_name(name));
        if (partner == by_name.end() || partner->first == name) continue;
        if (plans.size() != 1 || partner->second.size() != 1) continue;
        Plan& real = plans_[plans.front()];
        Plan& imaginary = plans_[partner->second.front()];
        if (real.result->components != imaginary.result->components) continue;
        if (real.result->section.rows != imaginary.result->section.rows) continue;
        real.imaginary = imaginary.result;
        imaginary.result = nullptr;
    }
}

/// A result that stands in a state more than once goes to set 1, 2 ...
void FrdImport::plan_sets(const StateInfo& info)
{
    std::map<std::string, std::int32_t> count;
    for (const std::size_t i : info.plans) {
        Plan& plan = plans_[i];
        if (!plan.result) continue;
        const std::int32_t before = count[plan.variable]++;
        if (before == 0) continue;
        plan.set = before;
        warnings_.push_back(fmt::format("line {}: {} stands in state {} again: imported as set {}",
                                        plan.result->section.first.line, printable(plan.variable), info.state.number,
                                        before));
    }
}

void FrdImport::plan_index(StateInfo& info)
{
    const bool harmonic = std::any_of(info.plans.begin(), info.plans.end(),
                                      [&](std::size_t i) { return plans_[i].imaginary != nullptr; });
    const frd::Result& r = *info.first;
    std::string key = "TIME";
    switch (r.analysis) {
    case dynamic: // also the steady response to a harmonic load, which alone has imaginary parts
        if (harmonic) key = "FREQUENCY";
        break;
    case frequency:
        key = "FREQUENCY";
        break;
    case complex_frequency:
        key = has_mode(r) ? "FREQUENCY" : "LOADFACTOR";
        break;
    case buckling:
        key = r.analysis_name.empty() ? "LOADFACTOR" : path_name(r.analysis_name);
        break;
    default:
        break;
    }
    auto found =
        std::find_if(index_variables_.begin(), index_variables_.end(), [&](const auto& v) { return v.key == key; });
    if (found == index_variables_.end()) {
        index_variables_.push_back(plain_variable(key, "INDEX", {key}, !units_.empty()));
        found = index_variables_.end() - 1;
    }
    info.state.index_kind = static_cast<std::int32_t>(found - index_variables_.begin()) + 1;
}

/// One variable per result name; a name that comes with other components later gets a number.
void FrdImport::plan_variables()
{
    if (index_variables_.empty())
        index_variables_.push_back(plain_variable("TIME", "INDEX", {"TIME"}, !units_.empty()));
    std::set<std::string> taken = {"INDEX"};
    for (const auto& v : index_variables_) taken.insert(v.key);

    std::vector<frd::Component> xyz;
    for (const char* name : {"X", "Y", "Z"}) {
        xyz.push_back({name, vector, static_cast<std::int32_t>(xyz.size()) + 1, 0});
    }
    Variable coordinate = variable_of("COORDINATE", "COORDINATE", xyz, !units_.empty());
    coordinate.var_class = "GEOMETRY";
    variables_.push_back(std::move(coordinate));
    if (!states_.empty()) variables_.push_back(plain_variable("STEP", "STATE", step_names, false));
    const auto any = [&](auto test) {
        return std::any_of(states_.begin(), states_.end(), [&](const auto& info) { return test(*info.first); });
    };
    if (any(has_mode)) {
        variables_.push_back(plain_variable("MODE", "STATE", {mode_keys.begin(), mode_keys.end()}, false));
    }
    if (any([](const frd::Result& r) { return r.parameter("AX") != nullptr; })) {
        variables_.push_back(plain_variable("AXIS", "STATE", axis_names, false));
    }
    for (const auto& v : variables_) taken.insert(v.key);

    std::map<std::string, std::vector<std::pair<std::vector<frd::Component>, std::string>>> known;
    for (Plan& plan : plans_) {
        if (!plan.result) continue;
        auto& forms = known[plan.variable];
        const auto form =
            std::find_if(forms.begin(), forms.end(), [&](const auto& f) { return f.first == plan.result->components; });
        if (form != forms.end()) {
            plan.variable = form->second;
            continue;
        }
        std::string key = plan.variable;
        for (int n = 2; taken.count(key) > 0; ++n) key = fmt::format("{}_{}", plan.variable, n);
        if (key != plan.result->name) {
            warnings_.push_back(fmt::format("line {}: result {} is imported as variable {}",
                                            plan.result->section.first.line, printable(plan.result->name),
                                            printable(key)));
        }
        taken.insert(key);
        forms.emplace_back(plan.result->components, key);
        variables_.push_back(variable_of(key, plan.result->name, plan.result->components, !units_.empty()));
        plan.variable = key;
    }
}

void FrdImport::plan_scales()
{
    for (const auto& scale : options_.storage.scale) {
        const auto is_meant = [&](const Variable& v) { return v.key == scale.first; };
        if (std::any_of(variables_.begin(), variables_.end(), is_meant)) continue;
        warnings_.push_back(
            fmt::format("--scale {}={}: the file has no such result", printable(scale.first), scale.second));
    }
}

System FrdImport::system() const
{
    System s;
    // The heading of the input deck stands before the first record with a key.
    for (const auto& text : outline_.user) {
        if (text.substr(0, 4) == "USER") break;
        if (!text.empty()) s.title += (s.title.empty() ? "" : " ") + text;
    }
    if (s.title.empty()) s.title = std::filesystem::path{options_.input}.stem().string();
    s.solver_name = header_value(outline_, "PGM");
    s.solver_version = header_value(outline_, "VERSION");
    s.date = date_digits(header_value(outline_, "DATE"));
    s.time = without_colons(header_value(outline_, "TIME"));
    s.units = units_;
    return s;
}

void FrdImport::write(Target& target)
{
    target.write(system());
    for (const auto& v : index_variables_) target.write(v);
    target.write_index("INDEX", index_variables_);
    for (const auto& v : variables_) {
        target.write(v);
        target.write_group(v);
    }
    if (!outline_.header.empty()) target.write_text("HEADER", outline_.header);
    write_mesh(target);
    write_state_results(target);
    for (const auto& info : states_) {
        for (const std::size_t i : info.plans) {
            if (plans_[i].result) write_result(target, plans_[i]);
        }
    }
}

void FrdImport::write_mesh(Target& target)
{
    if (!outline_.nodes.empty()) {
        frd::Nodes nodes;
        for (const auto& section : outline_.nodes) frd::read_nodes(lines_, section, nodes);
        auto sorted = nodes.ids;
        std::sort(sorted.begin(), sorted.end());
        if (const auto twice = std::adjacent_find(sorted.begin(), sorted.end()); twice != sorted.end()) {
            warnings_.push_back(fmt::format("node {} stands in the file more than once: all are imported", *twice));
        }
        target.write(Results{node, "COORDINATE", 3, -1, false, nullptr, &nodes.ids, &nodes.coordinates});
        target.write(Identifiers{node, 1, &nodes.ids, &nodes.ids});
    }
    std::array<frd::Elements, frd::element_types> elements;
    std::vector<std::int32_t> sequence;
    for (const auto& section : outline_.elements) frd::read_elements(lines_, section, outline_, elements, &sequence);
    write_parts(target, elements);
    write_groups(target, elements);
    if (!sequence.empty()) write_identifiers(target, elements, sequence);
    for (std::size_t type = 1; type < frd::element_types; ++type) {
        const auto& e = elements[type];
        if (e.ids.empty()) continue;
        const bool grouped = std::any_of(e.groups.begin(), e.groups.end(), [](std::int32_t g) { return g != 0; });
        const auto& form = frd::element_type[type];
        target.write(Connectivities{form.name, form.nodes, form.dimension, &e.ids, &e.materials, &e.nodes,
                                    grouped ? &e.groups : nullptr});
    }
}

/// A part for each material that the file numbers or an element names.
void FrdImport::write_parts(Target& target, const std::array<frd::Elements, frd::element_types>& elements)
{
    std::map<std::int32_t, std::string> titles;
    for (const auto& [name, number] : outline_.materials) titles.try_emplace(number, name);
    for (const auto& e : elements) {
        for (const std::int32_t material : e.materials) titles.try_emplace(material);
    }
    if (titles.empty()) return;
    std::vector<std::int32_t> ids;
    std::vector<std::string> names;
    for (const auto& [number, name] : titles) {
        ids.push_back(number);
        names.push_back(name);
    }
    target.write(Parts{&ids, &names});
}

/// Elements that have a group number, group by group.
void FrdImport::write_groups(Target& target, const std::array<frd::Elements, frd::element_types>& elements)
{
    std::map<std::int32_t, std::vector<std::int32_t>> groups;
    for (const auto& e : elements) {
        for (std::size_t i = 0; i < e.ids.size(); ++i) {
            if (e.groups[i] != 0) groups[e.groups[i]].push_back(e.ids[i]);
        }
    }
    if (groups.empty()) return;
    std::vector<std::int32_t> ids;
    std::vector<std::int32_t> counts;
    std::vector<std::int32_t> members;
    for (const auto& [number, of_group] : groups) {
        ids.push_back(number);
        counts.push_back(static_cast<std::int32_t>(of_group.size()));
        members.insert(members.end(), of_group.begin(), of_group.end());
    }
    target.write(Collectors{"GROUP", "ELEMENT", &ids, &counts, &members});
}

void FrdImport::write_identifiers(Target& target, const std::array<frd::Elements, frd::element_types>& elements,
                                  const std::vector<std::int32_t>& sequence)
{
    std::array<std::size_t, frd::element_types> next{};
    std::vector<std::int32_t> ids;
    std::vector<std::int32_t> numbers_and_types;
    for (const std::int32_t type : sequence) {
        const auto t = static_cast<std::size_t>(type);
        ids.push_back(elements[t].ids[next[t]++]);
        numbers_and_types.push_back(ids.back());
        numbers_and_types.push_back(type);
    }
    target.write(Identifiers{"ELEMENT", 2, &ids, &numbers_and_types});
}

/// What the file says about the states themselves, which are entities of their own: a block for each state, or with
/// series one block for all that have the variable.
void FrdImport::write_state_results(Target& target)
{
    struct All {
        std::vector<std::int32_t> ids;
        std::vector<double> values;
    };
    std::map<std::string, All> all;
    const auto add = [&](const StateInfo& info, const std::string& variable, const std::vector<double>& values) {
        if (options_.series) {
            auto& a = all[variable];
            a.ids.push_back(info.state.number);
            a.values.insert(a.values.end(), values.begin(), values.end());
            return;
        }
        const std::vector<std::int32_t> id = {info.state.number};
        target.write(Results{state_entity, variable, static_cast<std::int32_t>(values.size()), -1, false, &info.state,
                             &id, &values});
    };
    const double unknown = std::numeric_limits<double>::quiet_NaN();
    for (const auto& info : states_) {
        const frd::Result& r = *info.first;
        add(info, "STEP", {step_of(r), increment_of(r), static_cast<double>(r.set), static_cast<double>(r.analysis)});
        if (has_mode(r)) {
            std::vector<double> values;
            for (const char* key : mode_keys) values.push_back(parameter(r, key, 0, unknown));
            add(info, "MODE", values);
        }
        if (r.parameter("AX")) {
            std::vector<double> values;
            for (std::size_t i = 0; i < axis_names.size(); ++i) values.push_back(parameter(r, "AX", i, unknown));
            add(info, "AXIS", values);
        }
    }
    for (const auto& [variable, a] : all) {
        target.write(Results{state_entity, variable, static_cast<std::int32_t>(a.values.size() / a.ids.size()), -1,
                             false, nullptr, &a.ids, &a.values});
    }
}

void FrdImport::write_result(Target& target, const Plan& plan)
{
    const auto components = static_cast<std::int32_t>(plan.result->components.size());
    const State& state = states_[plan.state].state;
    frd::Table real = frd::read_result(lines_, *plan.result);
    if (!plan.imaginary) {
        put(target, plan, Results{node, plan.variable, components, plan.set, false, &state, &real.ids, &real.values});
        return;
    }
    frd::Table imaginary = frd::read_result(lines_, *plan.imaginary);
    if (real.ids != imaginary.ids) {
        throw frd::Error(plan.imaginary->section.first.line,
                         fmt::format("{} has other nodes than {}", plan.imaginary->name, plan.result->name));
    }
    std::vector<double> both(2 * real.values.size());
    for (std::size_t i = 0; i < real.values.size(); ++i) {
        both[2 * i] = real.values[i];
        both[2 * i + 1] = imaginary.values[i];
    }
    real.values = {};
    imaginary.values = {};
    put(target, plan, Results{node, plan.variable, components, plan.set, true, &state, &real.ids, &both});
}

/// A block of its own, or the next state of the first series that has the same nodes and kind of numbers and not yet
/// this state.
void FrdImport::put(Target& target, const Plan& plan, Results results)
{
    if (!options_.series) {
        target.write(results);
        return;
    }
    const std::string& name = index_variables_[static_cast<std::size_t>(results.state->index_kind - 1)].key;
    auto list = std::find(id_lists_.begin(), id_lists_.end(), *results.ids);
    if (list == id_lists_.end()) list = id_lists_.insert(list, *results.ids);
    const auto ids = static_cast<std::size_t>(list - id_lists_.begin());

    auto& all = series_[{name, plan.variable}];
    const auto same_kind = [&](const Series& s) { return s.ids == ids && s.complex == results.complex; };
    auto at = std::find_if(all.begin(), all.end(),
                           [&](const Series& s) { return same_kind(s) && s.last_state != plan.state; });
    if (at == all.end()) {
        if (!all.empty()) {
            const bool again = std::any_of(all.begin(), all.end(), same_kind);
            warnings_.push_back(fmt::format(
                "line {}: {} of state {} {}: imported as set {} of the series", plan.result->section.first.line,
                printable(plan.variable), results.state->number,
                again ? "stands there again" : "has other nodes or another kind of numbers than before", all.size()));
        }
        at = all.insert(at, Series{ids, results.complex, 0, 0});
    }
    results.set = at == all.begin() ? -1 : static_cast<std::int32_t>(at - all.begin());
    target.append(results, name, at->rows++, can_scale(plan));
    at->last_state = plan.state;
}

/// The first state of a series decides how all are stored, so all states have to be seen before.
bool FrdImport::can_scale(const Plan& plan)
{
    const auto scale = options_.storage.scale.find(plan.variable);
    if (scale == options_.storage.scale.end()) return false;
    const auto [known, added] = can_scale_.try_emplace(plan.variable, true);
    if (!added) return known->second;
    ScaleCheck check;
    for (const Plan& p : plans_) {
        if (!p.result || p.variable != plan.variable) continue;
        for (const frd::Result* part : {p.result, p.imaginary}) {
            if (part) check.see(frd::read_result(lines_, *part).values);
        }
    }
    const std::string obstacle = check.obstacle(scale->second, options_.storage.float_size);
    known->second = obstacle.empty();
    if (!known->second) {
        warnings_.push_back(fmt::format("{} holds {}: stored unscaled", printable(plan.variable), obstacle));
    }
    return known->second;
}

} // namespace kob::program
