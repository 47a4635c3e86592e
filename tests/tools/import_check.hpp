// SPDX-License-Identifier: BSD-3-Clause
// Compares an imported KOB file, read through the public entry points, with the text file that it came from.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <kob_dp.h>

#include <kob_file.hpp>
#include <text256.hpp>

#include "frd_text.hpp"
#include "import_blocks.hpp"

namespace kob_test {

/// An entity results block, all of it.
struct ImportedResults {
    std::int32_t key = 0;
    std::string etyp, etypvar;
    std::int32_t nent = 0, ncoo = 0, nindex = 0, indexic = 0, indexident = 0;
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{};
    double indexval = 0;
    std::vector<std::int32_t> ids;
    std::vector<double> values;
};

inline ImportedResults read_entity_results(const KobFile& file, const std::string& path)
{
    ImportedResults r;
    const std::int64_t block = file.block(path);
    Text256 etyp, etypvar, zone, frame;
    std::int32_t zoneid = 0, fswitch = 0, dmpswitch = 0, fidglob = 0, status = 77;
    for (const std::int32_t pass : {1, 2}) {
        if (pass == 2) {
            r.ids.resize(static_cast<std::size_t>(r.nent));
            r.values.resize(r.ids.size() * static_cast<std::size_t>(r.ncoo) * (status == 1001 ? 2 : 1));
            EXPECT_LE(r.nindex, 1);
        }
        KOB_READ_ENTITYRESULTS(&block, &pass, etyp.data(), &r.nent, etypvar.data(), &r.ncoo, zone.data(), &zoneid,
                               frame.data(), &fswitch, &dmpswitch, &r.nindex, &r.indexic, &r.indexident, &r.indexval,
                               r.ids.data(), &fidglob, nullptr, nullptr, nullptr, r.values.data(), &r.filter_flags,
                               r.filter_params.data(), &status);
        EXPECT_GE(status, 1000) << path;
        if (status < 0) return r;
    }
    r.key = status;
    r.etyp = etyp.text();
    r.etypvar = etypvar.text();
    EXPECT_EQ(zone.text(), "");
    EXPECT_EQ(zoneid, -1);
    EXPECT_EQ(fswitch, 0);
    EXPECT_EQ(dmpswitch, 0);
    return r;
}

inline std::set<std::string> all_blocks(const KobFile& file)
{
    const std::int32_t store = 1, quiet = 0;
    std::int32_t capacity = 0, count = 0, status = 77;
    std::int64_t path_size = 0, path_length = 0;
    std::int32_t* keys = nullptr;
    std::int64_t* offsets = nullptr;
    char* paths = nullptr;
    kob_lookup(file.address(), &store, &quiet, &capacity, &path_size, &count, &path_length, &keys, &offsets, &paths,
               &status);
    EXPECT_EQ(status, 0);
    std::set<std::string> all;
    for (std::int32_t i = 0; i < count; ++i) all.insert(paths + offsets[i]);
    std::free(keys);
    std::free(offsets);
    std::free(paths);
    return all;
}

/// What an import was asked for.
struct Stored {
    std::int32_t float_size = 8;
    std::map<std::string, double> tolerance; ///< of variables stored with fewer digits
    bool series = false;
};

class ImportCheck {
public:
    ImportCheck(const std::string& frd, const std::string& kob, Stored stored = {})
        : text_{frd}, file_{kob, read_only}, stored_{std::move(stored)}
    {
    }

    void run()
    {
        for (const char* name : {"system", "indices"}) expect(fmt::format("constant/{}/kobblock", name));
        check_header();
        check_mesh();
        check_parts();
        check_groups();
        check_identifiers();
        check_states();
        check_series();
        check_variables();
        // Nothing is missing, nothing is there that should not be.
        std::set<std::string> found = all_blocks(file_);
        std::erase_if(found, [](const std::string& path) { return path.find("kobheader") != std::string::npos; });
        EXPECT_EQ(found, blocks_);
    }

    std::size_t numbers() const { return numbers_; } ///< compared

private:
    using Components = std::vector<FrdText::Component>;

    std::string expect(const std::string& path)
    {
        blocks_.insert(path);
        return path;
    }

    /// Counts the values that differ and tells the first.
    void same(const std::vector<double>& found, const std::vector<double>& wanted, const std::string& what)
    {
        ASSERT_EQ(found.size(), wanted.size()) << what;
        const auto t = stored_.tolerance.find(what.substr(0, what.find(' ')));
        std::size_t wrong = 0;
        std::size_t first = 0;
        for (std::size_t i = 0; i < found.size(); ++i) {
            const double w = stored_.float_size == 4 ? static_cast<double>(static_cast<float>(wanted[i])) : wanted[i];
            const bool good = std::isnan(w) ? std::isnan(found[i])
                              : t == stored_.tolerance.end()
                                  ? found[i] == w && std::signbit(found[i]) == std::signbit(w)
                                  : std::abs(found[i] - w) <= t->second;
            if (!good && wrong++ == 0) first = i;
        }
        EXPECT_EQ(wrong, 0U) << what << ": first at " << first << ": " << found[first] << ", not " << wanted[first];
        numbers_ += found.size();
    }

    void check_mesh()
    {
        if (!text_.node_ids.empty()) {
            const auto r = read_entity_results(file_, expect("constant/entityresults/NODE/COORDINATE/kobblock"));
            EXPECT_EQ(r.etyp, "NODE");
            EXPECT_EQ(r.etypvar, "COORDINATE");
            EXPECT_EQ(r.nindex, 0);
            EXPECT_EQ(r.ids, text_.node_ids);
            same(r.values, text_.coordinates, "COORDINATE");
        }
        struct Form {
            const char* name;
            std::int32_t npele;
            std::int32_t ndim;
        };
        const std::map<int, Form> forms = {{1, {"HE8", 8, 3}},   {2, {"PE6", 6, 3}},   {3, {"TE4", 4, 3}},
                                           {4, {"HE20", 20, 3}}, {5, {"PE15", 15, 3}}, {6, {"TE10", 10, 3}},
                                           {7, {"TR3", 3, 2}},   {8, {"TR6", 6, 2}},   {9, {"QU4", 4, 2}},
                                           {10, {"QU8", 8, 2}},  {11, {"BE2", 2, 1}},  {12, {"BE3", 3, 1}}};
        for (const auto& [type, elements] : text_.elements) {
            const Form& form = forms.at(type);
            check_elements(elements, form.name, form.npele, form.ndim);
        }
    }

    void check_header() { EXPECT_EQ(read_text_lines(file_, expect("constant/text/HEADER/kobblock")), text_.head); }

    void check_parts()
    {
        std::map<std::int32_t, std::string> wanted;
        for (const auto& u : text_.user) {
            if (u.substr(0, 3) == "MAT") wanted[std::atoi(u.substr(3, 5).c_str())] = trimmed(u.substr(8));
        }
        for (const auto& [type, elements] : text_.elements) {
            for (const auto& e : elements) {
                const bool number = e.material.find_first_not_of("0123456789") == std::string::npos;
                wanted.try_emplace(material(e.material), number ? "" : e.material);
            }
        }
        if (wanted.empty()) return;
        const auto parts = read_parts(file_, expect("constant/parts/PART/kobblock"));
        std::vector<std::int32_t> ids;
        std::vector<std::string> titles;
        bool named = false;
        for (const auto& [number, name] : wanted) {
            ids.push_back(number);
            titles.push_back(name);
            named = named || !name.empty();
        }
        EXPECT_EQ(parts.pid, ids);
        EXPECT_EQ(parts.mid, ids);
        EXPECT_EQ(parts.titles, named ? titles : std::vector<std::string>{});
    }

    void check_groups()
    {
        std::map<std::int32_t, std::vector<std::int32_t>> wanted;
        for (const auto& [type, elements] : text_.elements) {
            for (const auto& e : elements) {
                if (e.group != 0) wanted[e.group].push_back(e.id);
            }
        }
        if (wanted.empty()) return;
        const auto found = read_collectors(file_, expect("constant/collector/GROUP/kobblock"));
        EXPECT_EQ(found.etyp, "ELEMENT");
        ASSERT_EQ(found.idcoll.size(), wanted.size());
        std::size_t i = 0;
        auto member = found.entid.begin();
        for (const auto& [number, members] : wanted) {
            EXPECT_EQ(found.idcoll[i], number);
            ASSERT_EQ(found.nent[i++], static_cast<std::int32_t>(members.size()));
            EXPECT_TRUE(std::equal(members.begin(), members.end(), member)) << "group " << number;
            member += static_cast<std::ptrdiff_t>(members.size());
        }
        EXPECT_TRUE(member == found.entid.end());
    }

    void check_identifiers()
    {
        if (!text_.node_ids.empty()) {
            expect("constant/identifiers/NODE/kobblock");
            const auto nodes = read_identifiers(file_, "NODE");
            EXPECT_EQ(nodes.nuid, 1);
            EXPECT_EQ(nodes.entid, text_.node_ids);
            EXPECT_EQ(nodes.uid, text_.node_ids);
        }
        if (text_.element_types.empty()) return;
        expect("constant/identifiers/ELEMENT/kobblock");
        const auto elements = read_identifiers(file_, "ELEMENT");
        EXPECT_EQ(elements.nuid, 2);
        std::vector<std::int32_t> ids, pairs;
        for (const auto& [id, type] : text_.element_types) {
            ids.push_back(id);
            pairs.insert(pairs.end(), {id, type});
        }
        EXPECT_EQ(elements.entid, ids);
        EXPECT_EQ(elements.uid, pairs);
    }

    /// The number of a material, which stands as such or as a name that the header numbers.
    std::int32_t material(const std::string& name)
    {
        if (name.find_first_not_of("0123456789") == std::string::npos) return std::atoi(name.c_str());
        for (const auto& u : text_.user) {
            if (u.substr(0, 3) == "MAT" && trimmed(u.substr(8)) == name) return std::atoi(u.substr(3, 5).c_str());
        }
        return named_.try_emplace(name, static_cast<std::int32_t>(named_.size()) + 1).first->second;
    }

    void check_elements(const std::vector<FrdText::Element>& elements, const std::string& name,
                        std::int32_t wanted_npele, std::int32_t wanted_ndim)
    {
        std::vector<std::int32_t> ids, parts, groups, nodes;
        bool grouped = false;
        for (const auto& e : elements) {
            ids.push_back(e.id);
            parts.push_back(material(e.material));
            groups.push_back(e.group);
            grouped = grouped || e.group != 0;
            nodes.insert(nodes.end(), e.nodes.begin(), e.nodes.end());
        }
        const std::int64_t block = file_.block(expect("constant/connectivities/" + name + "/kobblock"));
        Text256 etyp, etypelem, etyppart, etypnode, etypvar;
        std::int32_t nele = 0, npele = 0, ndim = 0, nbint = 0, nbfloat = 0, nindex = 0, indexic = 0, flags = 0,
                     status = 77;
        std::array<std::int32_t, 2> params{};
        std::vector<std::int32_t> idele, pid, ic, iparam;
        for (const std::int32_t mode : {1, 12}) {
            KOB_READ_CONNECTIVITIES(&block, &mode, etyp.data(), etypelem.data(), etyppart.data(), etypnode.data(),
                                    etypvar.data(), &nele, &npele, &ndim, &nbint, &nbfloat, &nindex, &indexic, nullptr,
                                    nullptr, idele.data(), pid.data(), ic.data(), iparam.data(), nullptr, &flags,
                                    params.data(), &status);
            ASSERT_GE(status, 0);
            if (mode != 1) break;
            idele.resize(static_cast<std::size_t>(nele));
            pid.resize(idele.size());
            ic.resize(idele.size() * static_cast<std::size_t>(npele));
            iparam.resize(idele.size() * static_cast<std::size_t>(nbint));
        }
        EXPECT_EQ(etyp.text(), "ELEMENT");
        EXPECT_EQ(etypelem.text(), name);
        EXPECT_EQ(etyppart.text(), "PART");
        EXPECT_EQ(etypnode.text(), "NODE");
        EXPECT_EQ(npele, wanted_npele);
        EXPECT_EQ(ndim, wanted_ndim);
        EXPECT_EQ(nindex, 0);
        EXPECT_EQ(idele, ids) << name;
        EXPECT_EQ(pid, parts) << name;
        EXPECT_EQ(ic, nodes) << name;
        EXPECT_EQ(iparam, grouped ? groups : std::vector<std::int32_t>{}) << name;
        numbers_ += ids.size() + parts.size() + nodes.size();
    }

    static std::string real_name(const std::string& imaginary)
    {
        if (imaginary.size() == 8 && imaginary.substr(6) == "II") return imaginary.substr(0, 7) + "N"; // TOSTRAII
        return imaginary.substr(0, imaginary.size() - 1);
    }

    void check_states()
    {
        using State = std::tuple<int, double, double, double, double, int>;
        std::vector<State> states;
        std::vector<std::vector<const FrdText::Result*>> results;
        for (const auto& r : text_.results) {
            const State s{r.set,     r.value, r.parameter("STEP", 2), r.parameter("STEP", 1), r.parameter("MODE", 0),
                          r.analysis};
            const auto at = static_cast<std::size_t>(std::find(states.begin(), states.end(), s) - states.begin());
            if (at == states.size()) {
                states.push_back(s);
                results.emplace_back();
            }
            results[at].push_back(&r);
        }
        for (std::size_t i = 0; i < results.size(); ++i) {
            state_ = static_cast<std::int32_t>(i) + 1;
            check_state(results[i]);
        }
        if (!results.empty()) variables_["STEP"] = {4, 1, 0, {}};
    }

    std::string state_path(const std::string& rest)
    {
        return expect(fmt::format("singlestate/state{:012}/entityresults/{}/kobblock", state_, rest));
    }

    /// What is known of the state itself: a block of the state, or the next row of a block of all states.
    void check_state_result(const std::string& variable, const std::vector<double>& wanted)
    {
        if (!stored_.series) {
            const auto block = read_entity_results(file_, state_path("STATE/" + variable));
            EXPECT_EQ(block.ids, std::vector<std::int32_t>{state_});
            same(block.values, wanted, variable);
            return;
        }
        auto& rows = state_rows_[variable];
        const auto block = read_entity_results(file_, expect("constant/entityresults/STATE/" + variable + "/kobblock"));
        ASSERT_EQ(block.ncoo, static_cast<std::int32_t>(wanted.size()));
        ASSERT_LT(rows, block.ids.size());
        EXPECT_EQ(block.ids[rows], state_);
        const auto from = block.values.begin() + static_cast<std::ptrdiff_t>(rows * wanted.size());
        same({from, from + static_cast<std::ptrdiff_t>(wanted.size())}, wanted, variable);
        ++rows;
    }

    void check_state(const std::vector<const FrdText::Result*>& results)
    {
        const FrdText::Result& first = *results.front();
        check_state_result("STEP", {first.parameter("STEP", 2), first.parameter("STEP", 1),
                                    static_cast<double>(first.set), static_cast<double>(first.analysis)});
        if (first.parameters.count("MODE") > 0) {
            variables_["MODE"] = {5, 1, 0, {}};
            std::vector<double> wanted;
            for (const char* key : {"MODE", "GM", "GK", "HID", "SUBC"}) wanted.push_back(first.parameter(key, 0));
            check_state_result("MODE", wanted);
        }
        if (first.parameters.count("AX") > 0) {
            variables_["AXIS"] = {6, 1, 0, {}};
            check_state_result("AXIS", first.parameters.at("AX"));
        }

        std::map<std::string, const FrdText::Result*> by_name;
        std::map<std::string, int> count;
        for (const auto* r : results) {
            by_name[r->name] = r;
            ++count[r->name];
        }
        std::map<std::string, int> seen;
        harmonic_ = std::any_of(results.begin(), results.end(), [&](const auto* r) {
            return r->name.size() > 1 && r->name.back() == 'I' && by_name.count(real_name(r->name)) > 0;
        });
        for (const auto* r : results) {
            const bool last_is_i = r->name.size() > 1 && r->name.back() == 'I';
            if (last_is_i && by_name.count(real_name(r->name)) > 0 && count[r->name] == 1) continue; // half of a pair
            const FrdText::Result* imaginary = nullptr;
            for (const auto& [name, other] : by_name) {
                if (name != r->name && name.back() == 'I' && real_name(name) == r->name) imaginary = other;
            }
            const int before = seen[r->name]++;
            check_result(*r, imaginary, before);
        }
    }

    void check_result(const FrdText::Result& r, const FrdText::Result* imaginary, int before)
    {
        const std::string variable = variable_of(r);
        std::vector<double> wanted = r.values;
        if (imaginary) {
            wanted.clear();
            for (std::size_t i = 0; i < r.values.size(); ++i) {
                wanted.push_back(r.values[i]);
                wanted.push_back(imaginary->values.at(i));
            }
        }
        if (stored_.series) {
            expect_row(r, variable, imaginary != nullptr, std::move(wanted));
            return;
        }
        const std::string set = before > 0 ? fmt::format("_set{}", before) : "";
        const auto block = read_entity_results(file_, state_path("NODE/" + variable + set));
        EXPECT_EQ(block.etyp, "NODE");
        EXPECT_EQ(block.etypvar, variable);
        EXPECT_EQ(block.nindex, 1);
        EXPECT_EQ(block.indexident, state_);
        EXPECT_EQ(block.indexval, stored_value(r.value));
        EXPECT_EQ(block.ncoo, static_cast<std::int32_t>(r.components.size()));
        EXPECT_EQ(block.ids, r.ids) << variable;
        EXPECT_EQ(block.key, imaginary ? 1001 : 1000) << variable;
        same(block.values, wanted, fmt::format("{} of state {}", variable, state_));
    }

    double stored_value(double value) const
    {
        return stored_.float_size == 4 ? static_cast<double>(static_cast<float>(value)) : value;
    }

    /// What is expected of one block of a series.
    struct Series {
        std::int32_t ncoo = 0;
        bool complex = false;
        std::vector<std::int32_t> ids;
        std::vector<std::int32_t> states;
        std::vector<double> indices;
        std::vector<std::vector<double>> rows;
    };

    void expect_row(const FrdText::Result& r, const std::string& variable, bool complex, std::vector<double> values)
    {
        std::string name = "TIME";
        if (r.analysis == 2 || (r.analysis == 1 && harmonic_)) name = "FREQUENCY";
        const bool mode = r.parameters.count("MODE") + r.parameters.count("GM") + r.parameters.count("GK") +
                              r.parameters.count("HID") + r.parameters.count("SUBC") >
                          0;
        if (r.analysis == 3) name = mode ? "FREQUENCY" : "LOADFACTOR";
        if (r.analysis == 4) name = "LOADFACTOR";
        auto& all = series_[{name, variable}];
        auto at = std::find_if(all.begin(), all.end(), [&](const Series& s) {
            return s.ids == r.ids && s.complex == complex && s.states.back() != state_;
        });
        if (at == all.end()) {
            all.push_back({static_cast<std::int32_t>(r.components.size()), complex, r.ids, {}, {}, {}});
            at = all.end() - 1;
        }
        at->states.push_back(state_);
        at->indices.push_back(stored_value(r.value));
        at->rows.push_back(std::move(values));
    }

    void check_series()
    {
        for (const auto& [name, all] : series_) {
            for (std::size_t i = 0; i < all.size(); ++i) {
                const std::string set = i > 0 ? fmt::format("_set{}", i) : "";
                const Series& wanted = all[i];
                const auto block = read_series(file_, expect(fmt::format("multistate/{}/multientityresults/NODE/{}{}"
                                                                         "/kobblock",
                                                                         name.first, name.second, set)));
                EXPECT_EQ(block.key, wanted.complex ? 1051 : 1050);
                EXPECT_EQ(block.series, name.first);
                EXPECT_EQ(block.etyp, "NODE");
                EXPECT_EQ(block.etypvar, name.second);
                EXPECT_EQ(block.ncoo, wanted.ncoo);
                EXPECT_EQ(block.ids, wanted.ids);
                EXPECT_EQ(block.indexident, wanted.states);
                EXPECT_EQ(block.indexval, wanted.indices);
                ASSERT_EQ(block.nstate, static_cast<std::int32_t>(wanted.rows.size()));
                for (std::size_t row = 0; row < wanted.rows.size(); ++row) {
                    same(block.row(row), wanted.rows[row],
                         fmt::format("{} of state {}", name.second, wanted.states[row]));
                }
            }
        }
    }

    /// The same name with other components is another variable.
    std::string variable_of(const FrdText::Result& r)
    {
        auto& forms = forms_[r.name];
        auto at = std::find(forms.begin(), forms.end(), r.components) - forms.begin();
        if (at == static_cast<std::ptrdiff_t>(forms.size())) forms.push_back(r.components);
        const std::string key = at == 0 ? r.name : fmt::format("{}_{}", r.name, at + 1);
        int kind = r.components.front().kind;
        for (const auto& c : r.components) {
            if (c.kind != kind) kind = 0;
        }
        const bool is_matrix = kind == 4 || kind == 14;
        variables_[key] = {static_cast<std::int32_t>(r.components.size()), kind,
                           is_matrix                 ? 2
                           : kind == 2 || kind == 12 ? 1
                                                     : 0,
                           r.components};
        return key;
    }

    struct Variable {
        std::int32_t ncoo = 0, tensor = 0, rank = 0;
        Components components;
    };

    void check_variables()
    {
        variables_["COORDINATE"] = {3, 2, 1, {{"X", 2, 1, 0}, {"Y", 2, 2, 0}, {"Z", 2, 3, 0}}};
        for (const auto& [key, wanted] : variables_) {
            check_variable(key, wanted);
            check_group(key, {key}, wanted.ncoo);
        }
        // The index: one number, and a variable for each of its meanings.
        const std::int64_t block = file_.block("constant/indices/kobblock");
        std::int32_t nindex = 0, status = 77;
        Text256 group;
        KOB_READ_INDEX(&block, nullptr, &nindex, group.data(), nullptr, nullptr, &status);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(nindex, 1);
        EXPECT_EQ(group.text(), "INDEX");
        std::vector<std::string> readings;
        for (const auto& path : all_blocks(file_)) {
            const std::string front = "constant/variable/";
            if (path.substr(0, front.size()) != front) continue;
            const std::string key =
                path.substr(front.size(), path.size() - front.size() - std::string{"/kobblock"}.size());
            if (variables_.count(key) == 0) readings.push_back(key);
        }
        EXPECT_FALSE(readings.empty());
        for (const auto& key : readings) {
            EXPECT_TRUE(key == "TIME" || key == "FREQUENCY" || key == "LOADFACTOR") << key;
            check_variable(key, {1, 1, 0, {{key, 1, 0, 0}}});
        }
        check_group("INDEX", readings, 1);
    }

    void check_variable(const std::string& key, const Variable& wanted)
    {
        const std::int64_t block = file_.block(expect("constant/variable/" + key + "/kobblock"));
        Text256 varkey, varclass, varnam, type;
        std::int32_t ncoo = 0, rank = 0, ndim = 0, tensor = 0, lvmap = 0, subslen = 0, lenb = 0, lend = 0, flags = 0;
        std::int32_t status = 77;
        std::array<std::int32_t, 2> params{};
        std::vector<std::int32_t> mbunit, mdunit, ubid, udid, subscnt, subsoffs;
        std::vector<double> ubexp, udexp, vmap;
        std::string subscr;
        for (const std::int32_t mode : {1, 2}) {
            KOB_READ_VARIABLE(&block, &mode, nullptr, varkey.data(), varclass.data(), varnam.data(), &ncoo, &rank,
                              &ndim, &tensor, type.data(), &lvmap, &subslen, &lenb, &lend, mbunit.data(), mdunit.data(),
                              ubid.data(), ubexp.data(), udid.data(), udexp.data(), subscr.data(), subscnt.data(),
                              subsoffs.data(), vmap.data(), &flags, params.data(), &status);
            ASSERT_EQ(status, 0) << key;
            if (mode == 2) break;
            const auto n = static_cast<std::size_t>(ncoo);
            for (auto* v : {&mbunit, &mdunit, &subscnt, &subsoffs}) v->resize(n);
            ubid.resize(static_cast<std::size_t>(lenb));
            ubexp.resize(ubid.size());
            udid.resize(static_cast<std::size_t>(lend));
            udexp.resize(udid.size());
            subscr.resize(static_cast<std::size_t>(subslen));
            vmap.resize(lvmap > 0 ? n * (rank == 2 ? 9 : 3) : 0);
        }
        EXPECT_EQ(varkey.text(), key);
        EXPECT_EQ(ncoo, wanted.ncoo) << key;
        EXPECT_EQ(tensor, wanted.tensor) << key;
        EXPECT_EQ(rank, wanted.rank) << key;
        EXPECT_EQ(ndim, 3);
        for (std::size_t i = 0; i < wanted.components.size(); ++i) {
            const auto& c = wanted.components[i];
            EXPECT_EQ(subscr.substr(static_cast<std::size_t>(subsoffs.at(i)), static_cast<std::size_t>(subscnt.at(i))),
                      c.name);
            if (vmap.empty()) continue;
            // A one at the component's place in the tensor, and at the place that symmetry gives.
            std::vector<double> map(wanted.rank == 2 ? 9 : 3, 0.0);
            if (wanted.rank == 2) map[static_cast<std::size_t>(3 * (c.row - 1) + c.col - 1)] = 1;
            if (wanted.rank == 2) map[static_cast<std::size_t>(3 * (c.col - 1) + c.row - 1)] = 1;
            if (wanted.rank == 1) map[static_cast<std::size_t>(c.row - 1)] = 1;
            const auto from = vmap.begin() + static_cast<std::ptrdiff_t>(i * map.size());
            EXPECT_EQ(std::vector<double>(from, from + static_cast<std::ptrdiff_t>(map.size())), map) << key << i;
        }
    }

    void check_group(const std::string& name, std::vector<std::string> keys, std::int32_t wanted_ncoo)
    {
        const std::int64_t block = file_.block(expect("constant/variablegroup/" + name + "/kobblock"));
        Text256 etypvar;
        std::int32_t nvar = 0, ncoo = 0, flags = 0, status = 77;
        std::array<std::int32_t, 2> params{};
        std::vector<std::int32_t> cnt, offs;
        Texts256 varkey;
        for (const std::int32_t mode : {1, 2}) {
            KOB_READ_VARIABLEGROUP(&block, &mode, nullptr, etypvar.data(), &nvar, &ncoo, cnt.data(), offs.data(),
                                   varkey.data(), &flags, params.data(), &status);
            ASSERT_EQ(status, 0) << name;
            if (mode == 2) break;
            cnt.resize(static_cast<std::size_t>(nvar));
            offs.resize(cnt.size());
            varkey = Texts256(cnt.size());
        }
        EXPECT_EQ(etypvar.text(), name);
        EXPECT_EQ(ncoo, wanted_ncoo) << name;
        auto found = varkey.texts();
        std::sort(found.begin(), found.end());
        std::sort(keys.begin(), keys.end());
        EXPECT_EQ(found, keys);
        EXPECT_EQ(cnt, std::vector<std::int32_t>(keys.size(), wanted_ncoo));
        EXPECT_EQ(offs, std::vector<std::int32_t>(keys.size(), 0));
    }

    FrdText text_;
    KobFile file_;
    Stored stored_;
    std::set<std::string> blocks_; ///< that have to be there
    std::map<std::string, Variable> variables_;
    std::map<std::string, std::vector<Components>> forms_;
    std::map<std::string, std::int32_t> named_;
    std::map<std::pair<std::string, std::string>, std::vector<Series>> series_; ///< by name of the series and variable
    std::map<std::string, std::size_t> state_rows_;                             ///< seen so far
    bool harmonic_ = false;
    std::int32_t state_ = 0;
    std::size_t numbers_ = 0;
};

} // namespace kob_test
