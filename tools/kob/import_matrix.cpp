// SPDX-License-Identifier: BSD-3-Clause
// Sorts the entries of a matrix into rows; docs/import.md tells users what becomes of which file.

#include "import_matrix.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <new>
#include <numeric>
#include <utility>

#include "terminal.hpp"
#include "verbs.hpp"

namespace kob::program {

namespace {

namespace fs = std::filesystem;

/// The values of one entry or, complex, two of them.
class Values {
public:
    Values(std::vector<double>& values, bool complex) : values_{values}, complex_{complex} {}

    void resize(std::size_t n)
    {
        if (n > values_.max_size() / 2) throw std::bad_alloc{};
        values_.resize(complex_ ? 2 * n : n);
    }
    void set(std::size_t at, const matrix::Entry& e)
    {
        if (!complex_) {
            values_[at] = e.real;
            return;
        }
        values_[2 * at] = e.real;
        values_[2 * at + 1] = e.imaginary;
    }
    matrix::Entry get(std::size_t at) const
    {
        return complex_ ? matrix::Entry{0, 0, values_[2 * at], values_[2 * at + 1]}
                        : matrix::Entry{0, 0, values_[at], 0};
    }
    void add(std::size_t at, const matrix::Entry& e)
    {
        const matrix::Entry old = get(at);
        set(at, {0, 0, old.real + e.real, old.imaginary + e.imaginary});
    }

private:
    std::vector<double>& values_;
    bool complex_;
};

/// Brings the entries `from` to `to` of a row into ascending order of columns, one for each column, and moves them to
/// `target`; returns how many are left. Entries that are added to another count up to column `counted`.
std::size_t tidy_row(std::vector<std::int32_t>& columns, Values& values, std::size_t from, std::size_t to,
                     std::size_t target, std::int32_t counted, std::int64_t& repeated)
{
    const auto at = [&](std::size_t i) { return columns.begin() + static_cast<std::ptrdiff_t>(i); };
    if (!std::is_sorted(at(from), at(to))) {
        std::vector<std::pair<std::int32_t, matrix::Entry>> row;
        row.reserve(to - from);
        for (std::size_t i = from; i < to; ++i) row.emplace_back(columns[i], values.get(i));
        std::stable_sort(row.begin(), row.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
        for (std::size_t i = from; i < to; ++i) {
            columns[i] = row[i - from].first;
            values.set(i, row[i - from].second);
        }
    }
    std::size_t used = 0;
    for (std::size_t i = from; i < to; ++i) {
        if (used > 0 && columns[target + used - 1] == columns[i]) {
            values.add(target + used - 1, values.get(i));
            if (columns[i] <= counted) ++repeated;
        } else {
            columns[target + used] = columns[i];
            values.set(target + used, values.get(i));
            ++used;
        }
    }
    return used;
}

/// Both triangles of a matrix with symmetry.
SparseMatrix make_sparse(matrix::File& file, std::int64_t& repeated)
{
    SparseMatrix m;
    m.rows = file.rows();
    m.complex = file.complex();
    const auto rows = static_cast<std::size_t>(m.rows);
    m.starts.assign(rows + 1, 0);
    file.each_of_both([&](const matrix::Entry& e) { ++m.starts[static_cast<std::size_t>(e.row) + 1]; });
    std::partial_sum(m.starts.begin(), m.starts.end(), m.starts.begin());

    const auto entries = static_cast<std::size_t>(m.starts.back());
    Values values{m.values, m.complex};
    m.columns.resize(entries);
    values.resize(entries);
    auto next = m.starts;
    file.each_of_both([&](const matrix::Entry& e) {
        const auto row = static_cast<std::size_t>(e.row);
        if (next[row] == m.starts[row + 1]) throw matrix::Error(0, "the file changes while it is read");
        const auto at = static_cast<std::size_t>(next[row]++);
        m.columns[at] = e.column;
        values.set(at, e);
    });
    const bool general = file.symmetry() == matrix::Symmetry::general;
    std::size_t used = 0;
    for (std::size_t row = 0, from = 0; row < rows; ++row) {
        const auto to = static_cast<std::size_t>(m.starts[row + 1]);
        // What the file says once stands in both triangles.
        const std::int32_t counted = general ? m.rows : static_cast<std::int32_t>(row);
        used += tidy_row(m.columns, values, from, to, used, counted, repeated);
        m.starts[row + 1] = static_cast<std::int64_t>(used);
        from = to;
    }
    m.columns.resize(used);
    values.resize(used);
    return m;
}

enum class Part { both, stored }; ///< triangles of a matrix with symmetry: both, or the one in the file

/// A place for each entry, `index` says which; an entry whose place is taken is added and counted.
template <class Index>
void fill(matrix::File& file, Part part, std::vector<double>& out, std::size_t places, Index index,
          std::int64_t& repeated)
{
    file.each([](const matrix::Entry&) {}); // a broken file shall be told before memory is taken
    Values values{out, file.complex()};
    values.resize(places);
    std::vector<bool> taken(places);
    const bool general = file.symmetry() == matrix::Symmetry::general;
    const auto put = [&](const matrix::Entry& e) {
        const std::size_t at = index(e);
        if (!taken[at]) {
            values.set(at, e); // not added: minus zero stays what it is
            taken[at] = true;
            return;
        }
        values.add(at, e);
        if (general || e.column <= e.row) ++repeated; // what the file says once may stand in both triangles
    };
    if (part == Part::both)
        file.each_of_both(put);
    else
        file.each(put);
}

DenseMatrix make_dense(matrix::File& file, std::int64_t& repeated)
{
    DenseMatrix m;
    m.rows = file.rows();
    m.columns = file.columns();
    m.complex = file.complex();
    const auto columns = static_cast<std::size_t>(m.columns);
    const auto index = [&](const matrix::Entry& e) {
        return static_cast<std::size_t>(e.row) * columns + static_cast<std::size_t>(e.column);
    };
    fill(file, Part::both, m.values, static_cast<std::size_t>(m.rows) * columns, index, repeated);
    return m;
}

TriangularMatrix make_triangular(matrix::File& file, std::int64_t& repeated)
{
    constexpr std::int32_t largest = 65535; // beyond it the number of values in the block wraps around
    if (file.rows() > largest) {
        throw Failure{exit_cannot_read, fmt::format("a triangular block holds a matrix of at most {} rows, not {}; "
                                                    "--as sparse and --as dense have no such limit",
                                                    largest, file.rows())};
    }
    TriangularMatrix m;
    m.order = file.rows();
    m.type = static_cast<std::int32_t>(file.symmetry());
    m.complex = file.complex();
    const auto n = static_cast<std::size_t>(m.order);
    const auto index = [](const matrix::Entry& e) {
        const auto row = static_cast<std::size_t>(e.row);
        return row * (row + 1) / 2 + static_cast<std::size_t>(e.column);
    };
    fill(file, Part::stored, m.values, n * (n + 1) / 2, index, repeated);
    return m;
}

System system_of(const std::string& path)
{
    System s;
    s.title = fs::path{path}.stem().string();
    return s;
}

template <class Read> auto reading(const std::string& path, Read read)
{
    try {
        return read();
    } catch (const matrix::Error& error) {
        throw Failure{exit_cannot_read, fmt::format("{}: {}", printable(path), printable(error.what()))};
    }
}

void check_scales(const ImportOptions& options, const std::vector<std::string>& variables,
                  std::vector<std::string>& warnings)
{
    for (const auto& scale : options.storage.scale) {
        if (std::count(variables.begin(), variables.end(), scale.first) > 0) continue;
        warnings.push_back(
            fmt::format("--scale {}={}: the file has no such matrix", printable(scale.first), scale.second));
    }
}

} // namespace

// --- Matrix Market -------------------------------------------------------------------------------------------------

MarketImport::MarketImport(const ImportOptions& options) : options_{options}, file_{options.input}, form_{options.form}
{
    const bool general = file_.symmetry() == matrix::Symmetry::general;
    if (form_.empty()) form_ = file_.coordinate() ? "sparse" : general ? "dense" : "triangular";
    if (form_ == "triangular" && general) {
        throw Failure{exit_usage, "--as triangular is for a symmetric, skew-symmetric or hermitian matrix; this one is "
                                  "general"};
    }
    check_scales(options, {options.variable}, warnings_);
}

void MarketImport::write(Target& target)
{
    target.write(system_of(options_.input));
    target.write_text("HEADER", file_.header());
    const MatrixName name{options_.entity, options_.id.value_or(1), options_.variable};
    std::int64_t repeated = 0;
    if (form_ == "dense")
        target.write(name, make_dense(file_, repeated));
    else if (form_ == "triangular")
        target.write(name, make_triangular(file_, repeated));
    else
        target.write(name, make_sparse(file_, repeated));
    if (repeated > 0) {
        warnings_.push_back(fmt::format("{} entries stand at a place that another one has: they are added", repeated));
    }
    if (file_.inexact() > 0) {
        warnings_.push_back(
            fmt::format("{} integers have more digits than a stored number: they are rounded", file_.inexact()));
    }
}

// --- the solver's equations ----------------------------------------------------------------------------------------

namespace {

constexpr std::array<std::pair<const char*, const char*>, 2> matrix_files = {{{".sti", "STIFFNESS"}, {".mas", "MASS"}}};
constexpr const char* freedoms_extension = ".dof";

} // namespace

bool EquationsImport::is_meant(const std::string& extension)
{
    return extension == freedoms_extension || std::any_of(matrix_files.begin(), matrix_files.end(),
                                                          [&](const auto& file) { return file.first == extension; });
}

EquationsImport::EquationsImport(const ImportOptions& options) : options_{options}
{
    const fs::path named{options.input};
    const bool all = named.extension() == matrix_files.front().first;
    const auto path_of = [&](const char* extension) {
        const std::string path = fs::path{named}.replace_extension(extension).string();
        std::error_code ignored;
        if (named.extension() == extension) return options.input;
        if (all && fs::exists(path, ignored)) return path;
        if (all) warnings_.push_back(fmt::format("no \"{}\": imported without it", printable(path)));
        return std::string{};
    };
    std::vector<std::string> variables;
    for (const auto& [extension, variable] : matrix_files) {
        const std::string path = path_of(extension);
        if (path.empty()) continue;
        parts_.push_back({variable, path, reading(path, [&] { return std::make_unique<matrix::SolverFile>(path); })});
        variables.emplace_back(variable);
    }
    freedoms_path_ = path_of(freedoms_extension);
    if (!freedoms_path_.empty()) {
        freedoms_ = reading(freedoms_path_, [&] { return matrix::read_freedoms(freedoms_path_); });
    }
    const std::size_t order = freedoms_.size() / 2;
    for (const auto& part : parts_) {
        const auto rows = static_cast<std::size_t>(part.file->rows());
        if (order > 0 && rows != order) {
            throw Failure{exit_cannot_read,
                          fmt::format("{} holds a matrix of {} rows, {} lists {}: they are not of one run",
                                      printable(part.path), rows, printable(freedoms_path_), order)};
        }
        if (part.file->rows() != parts_.front().file->rows()) {
            throw Failure{exit_cannot_read,
                          fmt::format("{} holds a matrix of {} rows, {} one of {}: they are not of one run",
                                      printable(parts_.front().path), parts_.front().file->rows(), printable(part.path),
                                      rows)};
        }
    }
    check_scales(options, variables, warnings_);
}

void EquationsImport::write(Target& target)
{
    target.write(system_of(options_.input));
    if (!freedoms_.empty()) {
        std::vector<std::int32_t> ids(freedoms_.size() / 2);
        std::iota(ids.begin(), ids.end(), 1);
        target.write(Identifiers{"EQUATION", 2, &ids, &freedoms_});
    }
    for (const auto& part : parts_) {
        std::int64_t repeated = 0;
        const SparseMatrix m = reading(part.path, [&] { return make_sparse(*part.file, repeated); });
        target.write(MatrixName{"MODEL", 1, part.variable}, m);
        if (repeated > 0) {
            warnings_.push_back(fmt::format("{}: {} entries stand at a place that another one has: they are added",
                                            printable(part.path), repeated));
        }
    }
}

} // namespace kob::program
