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
constexpr std::int32_t text_length = 256;
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

WrittenBlock matrix_block(std::string_view kind, const MatrixName& n, bool complex)
{
    return {kind, complex, 0, none, {std::string{kind}, n.entity_type, n.variable, "id"}, n.entity, none};
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

void ScaleCheck::see(const std::vector<double>& values)
{
    for (const double v : values) {
        finite_ = finite_ && std::isfinite(v);
        least_ = any_ ? std::min(least_, v) : v;
        most_ = any_ ? std::max(most_, v) : v;
        any_ = true;
    }
}

std::string ScaleCheck::obstacle(std::int32_t digits, std::int32_t float_size) const
{
    if (!finite_) return "values that are no numbers";
    // With as many bits as the number itself has HDF5 writes what it refuses to read; one more bit marks unset values.
    const double steps = std::ldexp(1.0, 8 * float_size - 2);
    if ((most_ - least_) * std::pow(10.0, digits) < steps) return "";
    return fmt::format("values too far apart for {} digits in {} bytes", digits, float_size);
}

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

Target::Filters Target::filters(const std::string& variable, bool scaled) const
{
    Filters f{filter_flags_, {filter_params_[0], filter_params_[1]}};
    if (const auto scale = storage_.scale.find(variable); scaled && scale != storage_.scale.end()) {
        f.flags |= scale_floats;
        f.params[0] = scale->second;
    }
    return f;
}

Target::Filters Target::filters_of_values(const std::string& variable, const std::vector<double>& values,
                                          const std::string& what) const
{
    if (storage_.scale.count(variable) == 0) return filters(variable, false);
    ScaleCheck check;
    check.see(values);
    const std::string obstacle = check.obstacle(storage_.scale.at(variable), storage_.float_size);
    if (!obstacle.empty()) {
        complain("kob import", fmt::format("warning: {} holds {}: stored unscaled", printable(what), obstacle));
    }
    return filters(variable, obstacle.empty());
}

void Target::write(const Results& r)
{
    const std::int32_t nent = count(r.ids->size());
    const std::int32_t nindex = r.state ? 1 : 0;
    const State constant;
    const State& state = r.state ? *r.state : constant;
    const std::string what = fmt::format("{} of state {}", r.variable, state.number);
    const Filters filter = filters_of_values(r.variable, *r.values, what);
    const std::int32_t size = value_size(r.complex);
    std::int32_t status = 0;
    KOB_WRITE_ENTITYRESULTS(&handle_, Fields{r.entity_type}.data(), &nent, Fields{r.variable}.data(), &r.components,
                            Fields{""}.data(), &none, Fields{""}.data(), &zero, &zero, &nindex, &state.index_kind,
                            &state.number, &state.value, r.ids->data(), &zero, nullptr, nullptr, nullptr,
                            r.values->data(), &r.set, &state.number, &filter.flags, filter.params, &size, &status);
    check(status, what);
    measure(
        filter,
        {"entityresults", r.complex, nindex, state.number, {"entityresults", r.entity_type, r.variable}, none, r.set},
        r.variable, *r.values);
}

void Target::append(const Results& r, const std::string& series, std::int32_t row, bool scaled)
{
    const std::int32_t nent = count(r.ids->size());
    const std::int32_t nindex = 1;
    const std::int32_t state = row == 0 ? 1 : -row; // row 0 is the first of a run of one state
    const Filters filter = filters(r.variable, scaled);
    const std::int32_t size = value_size(r.complex);
    std::int32_t status = 0;
    KOB_WRITE_MULTIENTITYRESULTS(&handle_, Fields{series}.data(), Fields{r.entity_type}.data(), &nent,
                                 Fields{r.variable}.data(), &r.components, Fields{""}.data(), &none, Fields{""}.data(),
                                 &zero, &zero, &nindex, &r.state->number, &r.state->value, r.ids->data(), &zero,
                                 nullptr, nullptr, nullptr, r.values->data(), &r.set, &state, &filter.flags,
                                 filter.params, &size, &status);
    check(status, fmt::format("{} of state {}", r.variable, r.state->number));
    measure(filter,
            {"multientityresults",
             r.complex,
             none,
             none,
             {series, "multientityresults", r.entity_type, r.variable},
             none,
             r.set},
            r.variable, *r.values);
}

void Target::measure(const Filters& filters, const WrittenBlock& block, const std::string& variable,
                     const std::vector<double>& given)
{
    if ((filters.flags & scale_floats) != 0) scale_errors_.measure(handle_, block, variable, given);
}

void Target::write(const Parts& p)
{
    const std::int32_t npart = count(p.ids->size());
    std::size_t longest = 0;
    for (const auto& title : *p.titles) longest = std::max(longest, title.size());
    Fields titles{longest};
    for (const auto& title : *p.titles) titles.add(title);
    const std::int32_t length = count(longest);
    constexpr std::int32_t no_type_no_colour = 2 | 4;
    std::int32_t status = 0;
    KOB_WRITE_PARTS(&handle_, Fields{"PART"}.data(), &npart, &no_type_no_colour, &length, &zero, &zero, nullptr,
                    nullptr, p.ids->data(), titles.data(), p.ids->data(), nullptr, nullptr, &none, &filter_flags_,
                    filter_params_, &storage_.float_size, &status);
    check(status, "the parts");
}

void Target::write(const Identifiers& i)
{
    const std::int32_t nent = count(i.ids->size());
    std::int32_t status = 0;
    KOB_WRITE_IDENTIFIERS(&handle_, Fields{i.entity_type}.data(), &nent, &i.columns, &zero, &zero, &zero, nullptr,
                          nullptr, i.ids->data(), nullptr, i.values->data(), &none, &filter_flags_, filter_params_,
                          &storage_.float_size, &status);
    check(status, "identifiers of type " + i.entity_type);
}

void Target::write(const Collectors& c)
{
    const std::int32_t ncoll = count(c.ids->size());
    const std::int32_t ntyp = 1;
    std::int32_t status = 0;
    KOB_WRITE_COLLECTOR(&handle_, Fields{c.type}.data(), &ncoll, &ntyp, &zero, &zero, nullptr, nullptr, c.ids->data(),
                        Fields{c.member_type}.data(), c.counts->data(), c.members->data(), &none, &filter_flags_,
                        filter_params_, &storage_.float_size, &status);
    check(status, "collectors of type " + c.type);
}

void Target::write_text(const std::string& type, const std::vector<std::string>& lines)
{
    std::size_t longest = 1; // a text of no characters cannot be stored
    for (const auto& line : lines) longest = std::max(longest, line.size());
    Fields fields{longest};
    for (const auto& line : lines) fields.add(line);
    const std::int32_t nlines = count(lines.size());
    const std::int32_t length = count(longest);
    std::int32_t status = 0;
    KOB_WRITE_TEXT(&handle_, Fields{type}.data(), &nlines, &length, &zero, &zero, nullptr, nullptr, fields.data(),
                   &none, &filter_flags_, filter_params_, &storage_.float_size, &status);
    check(status, "text " + type);
}

void Target::write(const MatrixName& n, const DenseMatrix& m)
{
    const Filters filter = filters_of_values(n.variable, m.values, n.variable);
    const std::int32_t size = value_size(m.complex);
    std::int32_t status = 0;
    KOB_WRITE_DENSEMATRIX(&handle_, Fields{n.entity_type}.data(), &n.entity, Fields{n.variable}.data(), &m.rows,
                          &m.columns, &zero, &zero, nullptr, nullptr, m.values.data(), &none, &filter.flags,
                          filter.params, &size, &zero, nullptr, nullptr, &status, text_length, text_length);
    check(status, "matrix " + n.variable);
    measure(filter, matrix_block("densematrix", n, m.complex), n.variable, m.values);
}

void Target::write(const MatrixName& n, const TriangularMatrix& m)
{
    const Filters filter = filters_of_values(n.variable, m.values, n.variable);
    const std::int32_t size = value_size(m.complex);
    std::int32_t status = 0;
    KOB_WRITE_TRIANGULARMATRIX(&handle_, Fields{n.entity_type}.data(), &n.entity, Fields{n.variable}.data(), &m.order,
                               &m.type, &zero, &zero, nullptr, nullptr, m.values.data(), &none, &filter.flags,
                               filter.params, &size, &zero, nullptr, nullptr, &status, text_length, text_length);
    check(status, "matrix " + n.variable);
    measure(filter, matrix_block("triangularmatrix", n, m.complex), n.variable, m.values);
}

void Target::write(const MatrixName& n, const SparseMatrix& m)
{
    const Filters filter = filters_of_values(n.variable, m.values, n.variable);
    const std::int32_t size = value_size(m.complex);
    const auto nnz = static_cast<std::int64_t>(m.columns.size());
    std::int32_t status = 0;
    KOB_WRITE_SPARSEMATRIX(&handle_, Fields{n.entity_type}.data(), &n.entity, Fields{n.variable}.data(), &m.rows, &nnz,
                           &zero, &zero, nullptr, nullptr, m.columns.data(), m.starts.data(), m.values.data(), &none,
                           &filter.flags, filter.params, &size, &zero, nullptr, nullptr, &status, text_length,
                           text_length);
    check(status, "matrix " + n.variable);
    measure(filter, matrix_block("sparsematrix", n, m.complex), n.variable, m.values);
}

} // namespace kob::program
