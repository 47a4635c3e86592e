// SPDX-License-Identifier: BSD-3-Clause
// Binds what an import has found to the arguments of the library's writers.

#include "import_target.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <limits>

#include <kob_dp.h>

#include "terminal.hpp"
#include "verbs.hpp"

namespace kob::program {

namespace {

constexpr std::size_t text_size = 256;
constexpr std::int32_t dimension = 3;
constexpr std::int32_t zero = 0;
constexpr std::int32_t none = -1; ///< no zone, no set

// Bits of the filter word.
constexpr std::int32_t deflate_all = 1 | 2 | 4;
constexpr std::int32_t shuffle_numbers = 8 | 16; // texts are the same letters at the same place already
constexpr std::int32_t scale_floats = 128;

/// Fixed fields of `size` characters, end to end.
class Fields {
public:
    explicit Fields(std::size_t size = text_size) : size_{size} {}
    Fields(std::string_view text, std::size_t size = text_size) : size_{size} { add(text); }

    void add(std::string_view text)
    {
        const std::size_t from = text_.size();
        text_.resize(from + size_, ' ');
        text.substr(0, size_).copy(text_.data() + from, size_);
    }
    const char* data() const { return text_.data(); }

private:
    std::size_t size_;
    std::string text_;
};

void check(std::int32_t status, const std::string& what)
{
    if (status < 0)
        throw Failure{exit_cannot_read, fmt::format("cannot write {} (status {})", printable(what), status)};
}

std::int32_t count(std::size_t size)
{
    if (size > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        throw Failure{exit_cannot_read, fmt::format("{} rows are more than a block can hold", size)};
    }
    return static_cast<std::int32_t>(size);
}

std::string now(const char* format)
{
    const std::time_t time = std::time(nullptr);
    std::tm local{};
    localtime_r(&time, &local);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), format, &local)};
}

} // namespace

Target::Target(const std::string& path, const Storage& storage) : storage_{storage}
{
    if (storage.deflate > 0) filter_flags_ |= deflate_all;
    if (storage.shuffle) filter_flags_ |= shuffle_numbers;
    filter_params_[1] = storage.deflate;

    const std::string group = "results";
    const auto path_length = count(path.size());
    const auto group_length = count(group.size());
    const std::int32_t create = 0;
    std::int32_t status = 0;
    KOB_OPEN(path.data(), &path_length, group.data(), &group_length, "", &zero, &handle_, &zero, &create, &status);
    check(status, "\"" + path + "\"");
    KOB_WRITE_FILEHEADER(&handle_, nullptr, nullptr, &status);
    check(status, "the file header");
}

Target::~Target()
{
    std::int32_t status = 0;
    if (handle_ > 0) KOB_CLOSE(&handle_, &status);
}

void Target::close()
{
    std::int32_t status = 0;
    KOB_CLOSE(&handle_, &status);
    handle_ = 0;
    check(status, "the end of the file");
}

void Target::write(const System& system)
{
    std::vector<std::int32_t> ubid;
    std::vector<double> ubshift;
    std::vector<double> ubcon;
    Fields ubtyp;
    Fields ubnam;
    for (const auto& unit : system.units) {
        ubid.push_back(count(ubid.size()) + 1);
        ubtyp.add(unit.quantity);
        ubnam.add(unit.name);
        ubshift.push_back(unit.shift);
        ubcon.push_back(unit.factor);
    }
    const std::int32_t nbunit = count(ubid.size());
    constexpr std::size_t date_size = 8;
    std::int32_t status = 0;
    KOB_WRITE_SYSTEM(&handle_, Fields{system.title}.data(), Fields{"kob import"}.data(),
                     Fields{system.solver_name}.data(), Fields{system.solver_version}.data(),
                     Fields{system.date, date_size}.data(), Fields{system.time, date_size}.data(),
                     Fields{now("%Y%m%d"), date_size}.data(), Fields{now("%H%M%S"), date_size}.data(), &nbunit, &zero,
                     ubid.data(), ubtyp.data(), ubnam.data(), ubshift.data(), ubcon.data(), nullptr, nullptr, nullptr,
                     nullptr, nullptr, nullptr, &filter_flags_, filter_params_, &storage_.float_size, &status);
    check(status, "the system block");
}

void Target::write(const Variable& variable)
{
    const std::int32_t ncoo = count(variable.components.size());
    std::vector<std::int32_t> mbunit;
    std::vector<std::int32_t> ubid;
    std::vector<double> ubexp;
    std::string subscr;
    std::vector<std::int32_t> subscnt;
    std::vector<std::int32_t> subsoffs;
    const auto places = static_cast<std::size_t>(variable.rank == 2 ? dimension * dimension : dimension);
    std::vector<double> vmap;
    bool mapped = variable.rank > 0;
    for (std::size_t i = 0; i < variable.components.size(); ++i) {
        const auto& c = variable.components[i];
        std::int32_t factors = 0;
        for (std::size_t q = 0; q < c.unit.size(); ++q) {
            if (c.unit[q] == 0) continue;
            ++factors;
            ubid.push_back(count(q) + 1);
            ubexp.push_back(c.unit[q]);
        }
        mbunit.push_back(factors);
        subsoffs.push_back(count(subscr.size()));
        subscnt.push_back(count(c.name.size()));
        subscr += c.name;
        mapped = mapped && count(c.place.size()) == variable.rank;
        if (!mapped) continue;
        vmap.resize((i + 1) * places, 0.0);
        const auto at = [&](std::int32_t row, std::int32_t col) -> double& {
            return vmap[i * places + static_cast<std::size_t>(dimension * (row - 1) + col - 1)];
        };
        if (variable.rank == 1) {
            at(1, c.place[0]) = 1;
        } else {
            at(c.place[0], c.place[1]) = 1;
            at(c.place[1], c.place[0]) = 1; // the matrices of the source are symmetric
        }
    }
    const std::vector<std::int32_t> mdunit(variable.components.size(), 0);
    const std::int32_t lvmap = mapped ? 1 : 0;
    const std::int32_t subslen = count(subscr.size());
    std::int32_t status = 0;
    KOB_WRITE_VARIABLE(&handle_, nullptr, nullptr, Fields{variable.key}.data(), Fields{variable.var_class}.data(),
                       Fields{variable.key}.data(), &ncoo, &variable.rank, &dimension, &variable.tensor,
                       Fields{variable.type}.data(), &lvmap, &subslen, mbunit.data(), mdunit.data(), ubid.data(),
                       ubexp.data(), nullptr, nullptr, subscr.data(), subscnt.data(), subsoffs.data(), vmap.data(),
                       &filter_flags_, filter_params_, &storage_.float_size, &status);
    check(status, "variable " + variable.key);
}

void Target::write_group(const std::string& name, std::int32_t ncoo, const std::vector<Variable>& variables,
                         const std::vector<std::int32_t>& offs)
{
    std::vector<std::int32_t> cnt;
    Fields keys;
    for (const auto& variable : variables) {
        cnt.push_back(count(variable.components.size()));
        keys.add(variable.key);
    }
    const std::int32_t nvar = count(variables.size());
    std::int32_t status = 0;
    KOB_WRITE_VARIABLEGROUP(&handle_, nullptr, nullptr, Fields{name}.data(), &nvar, &ncoo, cnt.data(), offs.data(),
                            keys.data(), &filter_flags_, filter_params_, &status);
    check(status, "variable group " + name);
}

void Target::write_group(const Variable& variable)
{
    write_group(variable.key, count(variable.components.size()), {variable}, {0});
}

void Target::write_index(const std::string& group, const std::vector<Variable>& variables)
{
    constexpr std::int32_t nindex = 1;
    write_group(group, nindex, variables, std::vector<std::int32_t>(variables.size(), 0));
    std::int32_t status = 0;
    KOB_WRITE_INDEX(&handle_, &nindex, Fields{group}.data(), nullptr, nullptr, &status);
    check(status, "the index block");
}

void Target::write(const Connectivities& c)
{
    const std::int32_t nele = count(c.ids->size());
    const std::int32_t nbint = c.groups ? 1 : 0;
    std::int32_t status = 0;
    KOB_WRITE_CONNECTIVITIES(&handle_, Fields{"ELEMENT"}.data(), Fields{c.element_type}.data(), Fields{"PART"}.data(),
                             Fields{"NODE"}.data(), Fields{""}.data(), &nele, &c.nodes_per_element, &c.dimension,
                             &nbint, &zero, &zero, &zero, nullptr, nullptr, c.ids->data(), c.parts->data(),
                             c.nodes->data(), c.groups ? c.groups->data() : nullptr, nullptr, &none, &filter_flags_,
                             filter_params_, &storage_.float_size, &status);
    check(status, "elements " + c.element_type);
}

void Target::write(const Results& r)
{
    std::int32_t filter_flags = filter_flags_;
    std::int32_t filter_params[2] = {filter_params_[0], filter_params_[1]};
    if (const auto scale = storage_.scale.find(r.variable); scale != storage_.scale.end()) {
        // The filter counts in integers and cannot hold what is no number.
        const bool finite = std::all_of(r.values->begin(), r.values->end(), [](double v) { return std::isfinite(v); });
        if (finite) {
            filter_flags |= scale_floats;
            filter_params[0] = scale->second;
        } else {
            complain("kob import",
                     fmt::format("warning: {} of state {} holds values that are no numbers: stored unscaled",
                                 printable(r.variable), r.state ? r.state->number : 0));
        }
    }
    const std::int32_t nent = count(r.ids->size());
    const std::int32_t nindex = r.state ? 1 : 0;
    const State constant;
    const State& state = r.state ? *r.state : constant;
    const std::int32_t value_size = r.complex ? 4 * storage_.float_size : storage_.float_size;
    std::int32_t status = 0;
    KOB_WRITE_ENTITYRESULTS(&handle_, Fields{r.entity_type}.data(), &nent, Fields{r.variable}.data(), &r.components,
                            Fields{""}.data(), &none, Fields{""}.data(), &zero, &zero, &nindex, &state.index_kind,
                            &state.number, &state.value, r.ids->data(), &zero, nullptr, nullptr, nullptr,
                            r.values->data(), &r.set, &state.number, &filter_flags, filter_params, &value_size,
                            &status);
    check(status, fmt::format("{} of state {}", r.variable, state.number));
}

} // namespace kob::program
