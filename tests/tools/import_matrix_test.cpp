// SPDX-License-Identifier: BSD-3-Clause
// "kob import" of matrices: every number against a second reader of the text files, and what is refused.

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <temp_file.hpp>

#include "import_blocks.hpp"
#include "program.hpp"

namespace {

namespace fs = std::filesystem;
using namespace kob_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Complex = std::complex<double>;
using Place = std::pair<std::int32_t, std::int32_t>; ///< row and column from 0

/// A plain second reader: all entries of the whole matrix by place, whatever triangle the file has.
struct MatrixText {
    std::int32_t rows = 0, columns = 0;
    bool complex = false;
    std::map<Place, Complex> entries; ///< those that the file has

    /// Row, column, and value, if there is one, on each line.
    void add(std::int32_t row, std::int32_t column, Complex value, const std::string& symmetry)
    {
        entries[{row, column}] += value;
        if (row == column || symmetry == "general") return;
        entries[{column, row}] += symmetry == "symmetric"        ? value
                                  : symmetry == "skew-symmetric" ? -value
                                                                 : std::conj(value);
    }

    static MatrixText market(const std::string& path)
    {
        MatrixText m;
        std::ifstream file{path};
        std::string line, word, format, field, symmetry;
        std::getline(file, line);
        std::istringstream{line} >> word >> word >> format >> field >> symmetry;
        while (std::getline(file, line) && line[0] == '%') {}
        std::istringstream{line} >> m.rows >> m.columns;
        m.complex = field == "complex";
        const auto value = [&] {
            double real = 1, imaginary = 0;
            if (field != "pattern") file >> real;
            if (m.complex) file >> imaginary;
            return Complex{real, imaginary};
        };
        if (format == "coordinate") {
            for (std::int32_t row = 0, column = 0; file >> row >> column;)
                m.add(row - 1, column - 1, value(), symmetry);
            return m;
        }
        for (std::int32_t column = 0; column < m.columns; ++column) {
            const std::int32_t first = symmetry == "general" ? 0 : symmetry == "skew-symmetric" ? column + 1 : column;
            for (std::int32_t row = first; row < m.rows; ++row) m.add(row, column, value(), symmetry);
        }
        return m;
    }

    static MatrixText solver(const std::string& path)
    {
        MatrixText m;
        std::ifstream file{path};
        std::int32_t row = 0, column = 0;
        for (double value = 0; file >> row >> column >> value;) {
            m.add(row - 1, column - 1, value, "symmetric");
            m.rows = m.columns = std::max(m.rows, column);
        }
        return m;
    }

    Complex at(std::int32_t row, std::int32_t column) const
    {
        const auto found = entries.find({row, column});
        return found == entries.end() ? Complex{} : found->second;
    }
};

/// The stored numbers one by one.
Complex stored(const ReadMatrix& m, std::size_t at)
{
    return m.key % 10 == 1 ? Complex{m.val[2 * at], m.val[2 * at + 1]} : Complex{m.val[at]};
}

void expect_sparse(const ReadMatrix& m, const MatrixText& text)
{
    EXPECT_EQ(m.key, text.complex ? 10201 : 10200);
    EXPECT_EQ(m.nrow, text.rows);
    ASSERT_EQ(m.nnz, static_cast<std::int64_t>(text.entries.size()));
    ASSERT_EQ(m.rowptr.front(), 0);
    ASSERT_EQ(m.rowptr.back(), m.nnz);
    std::size_t i = 0;
    std::size_t wrong = 0;
    std::vector<std::int64_t> starts(static_cast<std::size_t>(text.rows) + 1, 0);
    for (const auto& [place, value] : text.entries) { // by row, then by column
        if (m.colind[i] != place.second || stored(m, i) != value) ++wrong;
        ++i;
        for (auto row = static_cast<std::size_t>(place.first) + 1; row < starts.size(); ++row) ++starts[row];
    }
    EXPECT_EQ(wrong, 0U) << "entries at the wrong place or of the wrong value";
    EXPECT_EQ(m.rowptr, starts);
}

void expect_dense(const ReadMatrix& m, const MatrixText& text)
{
    EXPECT_EQ(m.key, text.complex ? 10001 : 10000);
    ASSERT_EQ(m.nrow, text.rows);
    ASSERT_EQ(m.ncolumn, text.columns);
    std::size_t i = 0;
    for (std::int32_t row = 0; row < text.rows; ++row) {
        for (std::int32_t column = 0; column < text.columns; ++column) {
            EXPECT_EQ(stored(m, i++), text.at(row, column)) << row << " " << column;
        }
    }
}

void expect_triangular(const ReadMatrix& m, const MatrixText& text, std::int32_t type)
{
    EXPECT_EQ(m.key, text.complex ? 10101 : 10100);
    EXPECT_EQ(m.matrixtype, type);
    ASSERT_EQ(m.nrow, text.rows);
    std::size_t i = 0;
    for (std::int32_t row = 0; row < text.rows; ++row) {
        for (std::int32_t column = 0; column <= row; ++column) {
            EXPECT_EQ(stored(m, i++), text.at(row, column)) << row << " " << column;
        }
    }
}

/// A folder with a Matrix Market file in it.
class Case {
public:
    explicit Case(const std::string& text) { std::ofstream{mtx(), std::ios::binary} << text; }

    std::string mtx() const { return folder_ / "plate.mtx"; }
    std::string kob() const { return folder_ / "plate.kob"; }
    Outcome import(std::vector<std::string> options = {}) const
    {
        const std::vector<std::string> all = {"import",   mtx(),       kob(),        "--force",
                                              "--entity", "STRUCTURE", "--variable", "STIFFNESS"};
        options.insert(options.begin(), all.begin(), all.end());
        return run_program(options);
    }
    ReadMatrix block(const std::string& kind, std::int32_t id = 1) const
    {
        return read_matrix(KobFile{kob(), read_only}, kind, "STRUCTURE", "STIFFNESS", id);
    }
    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator{folder_.path()})
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    TempDir folder_;
};

struct Sample {
    std::string name;
    std::string text;
    std::string kind;      ///< of the block, when nobody asks for another
    std::int32_t type = 0; ///< code of a triangular block; 0: it cannot be one
};

std::ostream& operator<<(std::ostream& out, const Sample& s) { return out << s.name; }

const std::string banner = "%%MatrixMarket matrix ";

const std::vector<Sample> samples = {
    {"coordinate_real_general",
     banner + "coordinate real general\n% rows and entries in no order, one row empty\n%\n4 3 5\n4 2 -1.5e-3\n"
              "1 3 2.25\n1 1 1e300\n4 1 -0.0\n2 2 7\n",
     "sparse", 0},
    {"coordinate_integer_symmetric",
     banner + "coordinate integer symmetric\n3 3 4\n3 1 -4\n1 1 12\n3 3 5\n2 1 9007199254740992\n", "sparse", 1},
    {"coordinate_pattern_general", banner + "coordinate pattern general\n2 5 3\n1 5\n2 1\n1 2\n", "sparse", 0},
    {"coordinate_pattern_symmetric", banner + "coordinate pattern symmetric\n3 3 2\n3 1\n2 2\n", "sparse", 1},
    {"coordinate_real_skew", banner + "coordinate real skew-symmetric\n3 3 2\n3 1 0.5\n3 2 -7.25\n", "sparse", 2},
    {"coordinate_complex_general", banner + "coordinate complex general\n2 3 3\n2 3 1 -1\n1 1 0 2.5\n2 1 3 0\n",
     "sparse", 0},
    {"coordinate_complex_symmetric", banner + "coordinate complex symmetric\n2 2 2\n2 1 1 -1\n1 1 0 2.5\n", "sparse",
     1},
    {"coordinate_complex_skew", banner + "coordinate complex skew-symmetric\n2 2 1\n2 1 1 -1.5\n", "sparse", 2},
    {"coordinate_complex_hermitian", banner + "coordinate complex hermitian\n3 3 3\n2 1 1 -1\n2 2 4 0\n3 1 0.5 8\n",
     "sparse", 3},
    {"array_real_general", banner + "array real general\n2 3\n1\n2\n3.5\n4\n-5\n6e-310\n", "dense", 0},
    {"array_integer_symmetric", banner + "array integer symmetric\n3 3\n11\n21\n31\n22\n32\n33\n", "triangular", 1},
    {"array_real_skew", banner + "array real skew-symmetric\n3 3\n21\n31\n32\n", "triangular", 2},
    {"array_complex_general", banner + "array complex general\n2 2\n1 -1\n2 -2\n3 -3\n4 -4\n", "dense", 0},
    {"array_complex_hermitian", banner + "array complex hermitian\n2 2\n1 0\n2 -2\n4 0\n", "triangular", 3},
    {"words_in_capitals_and_blank_lines",
     "%%MatrixMarket MATRIX Coordinate Real GENERAL\n\n2 2 1\n\n  1\t2   3.5  \r\n\n", "sparse", 0},
};

class ImportMatrixSample : public testing::TestWithParam<Sample> {};

TEST_P(ImportMatrixSample, comes_back_in_every_kind_of_block)
{
    const Sample& s = GetParam();
    Case c{s.text};
    // The second reader knows the words in small letters only.
    std::string plain = s.text;
    if (s.name == "words_in_capitals_and_blank_lines") plain = banner + "coordinate real general\n2 2 1\n1 2 3.5\n";
    const TempDir folder;
    std::ofstream{folder / "plain"} << plain;
    const MatrixText text = MatrixText::market(folder / "plain");
    ASSERT_FALSE(text.entries.empty());

    Outcome outcome = c.import();
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(c.files(), ElementsAre("plate.kob", "plate.mtx"));
    if (s.kind == "sparse") expect_sparse(c.block("sparse"), text);
    if (s.kind == "dense") expect_dense(c.block("dense"), text);
    if (s.kind == "triangular") expect_triangular(c.block("triangular"), text, s.type);

    ASSERT_EQ(c.import({"--as", "sparse", "--id", "0"}).exit_code, 0);
    expect_sparse(c.block("sparse", 0), text);
    ASSERT_EQ(c.import({"--as", "dense", "--id", "2147483647"}).exit_code, 0);
    expect_dense(c.block("dense", 2147483647), text);
    outcome = c.import({"--as", "triangular", "--id", "17"});
    if (s.type == 0) {
        EXPECT_EQ(outcome.exit_code, 2);
        EXPECT_THAT(outcome.err, HasSubstr("this one is general"));
        return;
    }
    ASSERT_EQ(outcome.exit_code, 0);
    expect_triangular(c.block("triangular", 17), text, s.type);
}

INSTANTIATE_TEST_SUITE_P(Market, ImportMatrixSample, testing::ValuesIn(samples),
                         [](const testing::TestParamInfo<Sample>& sample) { return sample.param.name; });

TEST(ImportMatrix, of_many_entries_in_disorder_comes_back)
{
    // 20,000 places of a 500 x 700 matrix, each once, in an order that a multiplication mixes up.
    std::string text = banner + "coordinate complex general\n500 700 20000\n";
    for (std::int64_t i = 0; i < 20000; ++i) {
        const std::int64_t place = i * 104729 % 350000;
        text += fmt::format("{} {} {} {}\n", place / 700 + 1, place % 700 + 1, static_cast<double>(i) / 7, -i);
    }
    const Case c{text};
    ASSERT_EQ(c.import().err, "");
    expect_sparse(c.block("sparse"), MatrixText::market(c.mtx()));
    ASSERT_EQ(c.import({"--deflate", "4", "--shuffle"}).err, "");
    expect_sparse(c.block("sparse"), MatrixText::market(c.mtx()));
    EXPECT_EQ(c.block("sparse").filter_flags, 2 | 16);
}

TEST(ImportMatrix, adds_entries_of_one_place)
{
    const Case c{banner + "coordinate real symmetric\n2 2 4\n2 1 1.5\n1 1 4\n2 1 2\n2 1 -8\n"};
    for (const std::string kind : {"sparse", "dense", "triangular"}) {
        const Outcome outcome = c.import({"--as", kind});
        EXPECT_EQ(outcome.exit_code, 0);
        EXPECT_EQ(outcome.err,
                  "kob import: warning: 2 entries stand at a place that another one has: they are added\n");
    }
    EXPECT_THAT(c.block("triangular").val, ElementsAre(4, -4.5, 0));
    ASSERT_EQ(c.import().exit_code, 0);
    EXPECT_THAT(c.block("sparse").val, ElementsAre(4, -4.5, -4.5));
    EXPECT_THAT(c.block("sparse").colind, ElementsAre(0, 1, 0));
    EXPECT_THAT(c.block("sparse").rowptr, ElementsAre(0, 2, 3));
}

TEST(ImportMatrix, of_no_entries_is_a_matrix_too)
{
    const Case c{banner + "coordinate real general\n3 2 0\n"};
    ASSERT_EQ(c.import({"--as", "dense"}).err, "");
    EXPECT_THAT(c.block("dense").val, ElementsAre(0, 0, 0, 0, 0, 0));
    ASSERT_EQ(c.import().err, "");
    const KobFile file{c.kob(), read_only};
    const std::int64_t block = file.block("constant/sparsematrix/STRUCTURE/STIFFNESS/id1/kobblock");
    const std::int32_t pass = 1;
    Text256 type, variable;
    std::int32_t entid = 0, nrow = 0, nindex = 77, indexic = 0, status = 77;
    std::int64_t nnz = 77;
    KOB_READ_SPARSEMATRIX(&block, &pass, type.data(), &entid, variable.data(), &nrow, &nnz, &nindex, &indexic, nullptr,
                          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &status, 256, 256);
    EXPECT_EQ(status, 10200);
    EXPECT_EQ(nrow, 3);
    EXPECT_EQ(nnz, 0);
}

TEST(ImportMatrix, reads_numbers_as_c_and_fortran_print_them)
{
    const Case c{banner + "array real general\n8 1\n+1.5\n2.5D-03\n1d2\n.5\n7.\nNaN\n-Infinity\n1E-400\n"};
    ASSERT_EQ(c.import().err, "");
    const auto val = c.block("dense").val;
    EXPECT_THAT(std::vector<double>(val.begin(), val.begin() + 5), ElementsAre(1.5, 2.5e-3, 100, 0.5, 7));
    EXPECT_TRUE(std::isnan(val[5]));
    EXPECT_EQ(val[6], -std::numeric_limits<double>::infinity());
    EXPECT_EQ(val[7], 0);
}

TEST(ImportMatrix, says_when_an_integer_is_rounded)
{
    const Case c{banner + "array integer general\n3 1\n9007199254740993\n-9223372036854775808\n9223372036854775807\n"};
    EXPECT_EQ(c.import().err,
              "kob import: warning: 2 integers have more digits than a stored number: they are rounded\n");
}

TEST(ImportMatrix, keeps_what_stands_before_the_entries)
{
    const Case c{banner + "coordinate real general\n% plate of 3 x 4\n%\n2 9 1\n1 1 1\n"};
    ASSERT_EQ(c.import().exit_code, 0);
    EXPECT_THAT(read_text_lines(KobFile{c.kob(), read_only}, "constant/text/HEADER/kobblock"),
                ElementsAre(banner + "coordinate real general", "% plate of 3 x 4", "%", "2 9 1"));
    EXPECT_THAT(run_program({"ls", c.kob()}).out, HasSubstr("sparsematrix"));
    EXPECT_EQ(run_program({"info", c.kob()}).exit_code, 0);
}

TEST(ImportMatrix, stores_as_it_is_told)
{
    std::string text = banner + "array real general\n20 1\n";
    for (int i = 0; i < 20; ++i) text += fmt::format("{}\n", 0.1 * i);
    const Case c{text};
    ASSERT_EQ(c.import({"--float", "4"}).err, "");
    EXPECT_EQ(c.block("dense").val[7], static_cast<double>(static_cast<float>(0.7000000000000001)));
    const Outcome scaled = c.import({"--scale", "STIFFNESS=0"});
    ASSERT_EQ(scaled.err, "");
    EXPECT_EQ(scaled.out, "STIFFNESS: the largest error of a value is 0.5, with 0 decimals\n") << "of 0.5 itself";
    EXPECT_EQ(c.block("dense").filter_flags, 128);
    EXPECT_NEAR(c.block("dense").val[7], 0.7, 0.501);
    EXPECT_THAT(c.import({"--scale", "MASS=0"}).err, HasSubstr("--scale MASS=0: the file has no such matrix"));
}

TEST(ImportMatrix, of_a_broken_file_names_the_line_and_leaves_nothing)
{
    const std::string real = banner + "coordinate real general\n";
    const std::string symmetric = banner + "coordinate real symmetric\n";
    for (const auto& [text, message] : std::vector<std::pair<std::string, std::string>>{
             {"", "line 1: the file is empty"},
             {"1 1 1\n", "line 1: no Matrix Market file"},
             {"%%MatrixMarket vector coordinate real general\n", "line 1: \"vector\" is not read"},
             {banner + "list real general\n", "line 1: \"list\" is no format"},
             {banner + "array quaternion general\n", "line 1: \"quaternion\" is no field"},
             {banner + "array real round\n", "line 1: \"round\" is no symmetry"},
             {banner + "array pattern general\n", "line 1: there is no array pattern general matrix"},
             {banner + "coordinate real hermitian\n", "line 1: there is no coordinate real hermitian matrix"},
             {banner + "coordinate pattern skew-symmetric\n", "line 1: there is no coordinate pattern skew-symmetric"},
             {real, "line 2: the file ends before the line with the sizes"},
             {real + "2 2\n", "line 2: rows, columns and number of entries should stand here"},
             {banner + "array real general\n2 2 4\n", "line 2: rows and columns should stand here"},
             {real + "2 x 1\n", "line 2: no number of columns in \"x\""},
             {real + "-2 2 1\n", "line 2: number of rows -2 is too small"},
             {real + "2147483648 2 1\n", "line 2: number of rows 2147483648 does not fit 32 bits"},
             {real + "2 2 -1\n", "line 2: number of entries -1 is too small"},
             {symmetric + "2 3 1\n", "line 2: a matrix with symmetry is square, not 2 x 3"},
             {real + "2 2 2\n1 1 1\n", "line 4: the file ends after 1 of 2 entries"},
             {real + "2 2 4000000000000\n1 1 1\n", "line 4: the file ends after 1 of 4000000000000 entries"},
             {real + "2 2 1\n1 1 1\n2 2 2\n", "line 4: more than the 1 entries that the file announces"},
             {real + "2 2 1\n1 1\n", "line 3: 3 numbers should stand here, not 2"},
             {real + "2 2 1\n1 1 1 1\n", "line 3: 3 numbers should stand here, not 4"},
             {real + "2 2 1\n1 1 one\n", "line 3: \"one\" is no number"},
             {real + "2 2 1\n1 1 0x10\n", "line 3: \"0x10\" is no number"},
             {real + "2 2 1\n1.5 1 1\n", "line 3: no row in \"1.5\""},
             {real + "2 2 1\n0 1 1\n", "line 3: row 0 is too small"},
             {real + "2 2 1\n1 3 1\n", "line 3: entry 1 3 of a matrix of 2 x 2"},
             {banner + "coordinate integer general\n2 2 1\n1 1 1.5\n", "line 3: no integer in \"1.5\""},
             {symmetric + "2 2 1\n1 2 1\n", "line 3: the entry stands above the diagonal"},
             {banner + "coordinate real skew-symmetric\n2 2 1\n1 1 1\n", "line 3: the diagonal of a skew-symmetric"},
             {banner + "coordinate complex hermitian\n2 2 1\n1 1 1 2\n", "line 3: the diagonal of a hermitian"},
             {banner + "array real general\n2 2\n1\n2\n3\n", "line 6: the file ends after 3 of 4 entries"},
             {banner + "array real general\n2 2\n1 2\n3 4\n", "line 3: 1 number should stand here, not 2"},
             {banner + "array complex general\n1 1\n1\n", "line 3: 2 numbers should stand here, not 1"},
             {banner + "array real general\n60000 60000\n1\n",
              "line 4: the file ends after 1 of 3600000000 entries"}}) {
        const Case c{text};
        const Outcome outcome = c.import();
        EXPECT_EQ(outcome.exit_code, 3) << message;
        EXPECT_THAT(outcome.err, HasSubstr("plate.mtx: " + message));
        EXPECT_THAT(c.files(), ElementsAre("plate.mtx")) << message;
    }
    const Case large{banner + "coordinate real symmetric\n65536 65536 1\n1 1 1\n"};
    const Outcome outcome = large.import({"--as", "triangular"});
    EXPECT_EQ(outcome.exit_code, 3);
    EXPECT_THAT(outcome.err, HasSubstr("a triangular block holds a matrix of at most 65535 rows, not 65536"));
    EXPECT_THAT(large.files(), ElementsAre("plate.mtx"));
    EXPECT_EQ(large.import().exit_code, 0);
}

TEST(ImportMatrix, takes_the_options_of_its_kind_of_file)
{
    const Case c{banner + "array real general\n1 1\n1\n"};
    const auto run = [&](const std::string& input, std::vector<std::string> options) {
        options.insert(options.begin(), {"import", input, c.kob()});
        return run_program(options);
    };
    EXPECT_THAT(run(c.mtx(), {"--variable", "K"}).err, HasSubstr("--entity is needed"));
    EXPECT_THAT(run(c.mtx(), {"--entity", "E"}).err, HasSubstr("--variable is needed"));
    for (const auto& options :
         std::vector<std::vector<std::string>>{{},
                                               {"--entity", "E"},
                                               {"--variable", "K"},
                                               {"--entity", "E", "--variable", "K", "--as", "round"},
                                               {"--entity", "E", "--variable", "K", "--id", "-1"},
                                               {"--entity", "E", "--variable", "K", "--id", "2147483648"},
                                               {"--entity", "E", "--variable", "K", "--series"},
                                               {"--entity", "E", "--variable", "K", "--units", "m,kg,s"}}) {
        EXPECT_EQ(run(c.mtx(), options).exit_code, 2) << testing::PrintToString(options);
    }
    for (const std::string input : {"run.frd", "run.sti"}) {
        for (const auto& [option, value] : std::vector<std::pair<std::string, std::string>>{
                 {"--entity", "E"}, {"--variable", "K"}, {"--id", "1"}, {"--as", "dense"}}) {
            const Outcome outcome = run(input, {option, value});
            EXPECT_EQ(outcome.exit_code, 2);
            EXPECT_THAT(outcome.err, HasSubstr(option + " is for Matrix Market files"));
        }
    }
    EXPECT_THAT(c.files(), ElementsAre("plate.mtx"));
    EXPECT_EQ(run(c.mtx() + ".no", {}).exit_code, 3);
}

// --- the solver's equations ----------------------------------------------------------------------------------------

/// A folder with files of one run.
class RunFolder {
public:
    void file(const std::string& name, const std::string& text) const { std::ofstream{folder_ / name} << text; }
    std::string path(const std::string& name) const { return folder_ / name; }
    Outcome import(const std::string& name) const
    {
        return run_program({"import", path(name), path("out.kob"), "--force"});
    }
    ReadMatrix matrix(const std::string& variable) const
    {
        return read_matrix(KobFile{path("out.kob"), read_only}, "sparse", "MODEL", variable, 1);
    }

private:
    TempDir folder_;
};

const std::string stiffness = "1 1  2.0000000000000e+00\n1 2 -1.0000000000000e+00\n2 2  2.5000000000000e+00\n"
                              "2 3  0.0000000000000e+00\n3 3  4.0000000000000e+00\n";

TEST(ImportEquations, takes_the_files_of_one_run_together)
{
    const RunFolder run;
    run.file("beam.sti", stiffness);
    run.file("beam.mas", "1 1  1.0e-06\n2 2  2.0e-06\n3 3  3.0e-06\n");
    run.file("beam.dof", "7.1\n7.3\n2147483647.0\n");
    const Outcome outcome = run.import("beam.sti");
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    expect_sparse(run.matrix("STIFFNESS"), MatrixText::solver(run.path("beam.sti")));
    EXPECT_THAT(run.matrix("STIFFNESS").colind, ElementsAre(0, 1, 0, 1, 2, 1, 2)) << "zeros of the file are kept";
    EXPECT_THAT(run.matrix("MASS").rowptr, ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(run.matrix("MASS").val, ElementsAre(1e-6, 2e-6, 3e-6));
    const auto equations = read_identifiers(KobFile{run.path("out.kob"), read_only}, "EQUATION");
    EXPECT_EQ(equations.nuid, 2);
    EXPECT_THAT(equations.entid, ElementsAre(1, 2, 3));
    EXPECT_THAT(equations.uid, ElementsAre(7, 1, 7, 3, 2147483647, 0));
}

TEST(ImportEquations, takes_each_file_alone)
{
    const RunFolder run;
    run.file("beam.sti", stiffness);
    Outcome outcome = run.import("beam.sti");
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_THAT(outcome.error_lines(), ElementsAre(HasSubstr("beam.mas\": imported without it"),
                                                   HasSubstr("beam.dof\": imported without it")));
    expect_sparse(run.matrix("STIFFNESS"), MatrixText::solver(run.path("beam.sti")));

    run.file("beam.mas", stiffness);
    run.file("beam.dof", "1.1\n");
    outcome = run.import("beam.mas");
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    expect_sparse(run.matrix("MASS"), MatrixText::solver(run.path("beam.mas")));
    EXPECT_EQ(run.import("beam.dof").err, "");
    EXPECT_THAT(read_identifiers(KobFile{run.path("out.kob"), read_only}, "EQUATION").uid, ElementsAre(1, 1));
}

TEST(ImportEquations, of_broken_files_names_file_and_line)
{
    const auto error = [](const std::string& sti, const std::string& mas, const std::string& dof) {
        const RunFolder run;
        run.file("beam.sti", sti);
        run.file("beam.mas", mas);
        run.file("beam.dof", dof);
        const Outcome outcome = run.import("beam.sti");
        EXPECT_EQ(outcome.exit_code, 3);
        EXPECT_FALSE(fs::exists(run.path("out.kob")));
        return outcome.err;
    };
    const std::string dof = "1.1\n1.2\n1.3\n";
    EXPECT_THAT(error("", stiffness, dof), HasSubstr("beam.sti: line 1: the file holds no entries"));
    EXPECT_THAT(error(stiffness + "3 2 1\n", stiffness, dof), HasSubstr("beam.sti: line 6: the entry stands below"));
    EXPECT_THAT(error(stiffness, stiffness + "1 1\n", dof), HasSubstr("beam.mas: line 6: row, column and value"));
    EXPECT_THAT(error(stiffness, stiffness + "1 1 x\n", dof), HasSubstr("beam.mas: line 6: \"x\" is no number"));
    EXPECT_THAT(error(stiffness, "0 1 1.0\n", dof), HasSubstr("beam.mas: line 1: row 0 is too small"));
    EXPECT_THAT(error(stiffness, stiffness, "1.1\n12\n"), HasSubstr("beam.dof: line 2: node.direction"));
    EXPECT_THAT(error(stiffness, stiffness, "1.1\n1.x\n"), HasSubstr("beam.dof: line 2: no direction in \"x\""));
    EXPECT_THAT(error(stiffness, stiffness, ""), HasSubstr("beam.dof: line 1: the file holds no entries"));
    EXPECT_THAT(error(stiffness, stiffness, "1.1\n1.2\n"), HasSubstr("beam.dof lists 2: they are not of one run"));
    EXPECT_THAT(error(stiffness, "1 1 1.0\n", dof), HasSubstr("beam.mas holds a matrix of 1 rows"));
}

TEST(ImportEquations, come_back_as_the_solver_stored_them)
{
    if (std::system("command -v ccx >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "no solver ccx: install the Debian package calculix-ccx";
    }
    const RunFolder run;
    const fs::path examples = fs::path{KOB_SOURCE_DIR} / "examples";
    for (const char* name : {"cantilever_hex_matrices.inp", "hexahedra.msh"}) fs::copy(examples / name, run.path(name));
    const std::string command = fmt::format("cd '{}' && OMP_NUM_THREADS=1 timeout 60 ccx cantilever_hex_matrices > log "
                                            "2>&1",
                                            fs::path{run.path("x")}.parent_path().string());
    ASSERT_EQ(std::system(command.c_str()), 0);
    const Outcome outcome = run.import("cantilever_hex_matrices.sti");
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    const auto k = run.matrix("STIFFNESS");
    const auto m = run.matrix("MASS");
    expect_sparse(k, MatrixText::solver(run.path("cantilever_hex_matrices.sti")));
    expect_sparse(m, MatrixText::solver(run.path("cantilever_hex_matrices.mas")));
    EXPECT_EQ(k.nrow, 3 * (90 + 3 * 40)) << "free nodes, and three inner nodes of each element";

    std::ifstream list{run.path("cantilever_hex_matrices.dof")};
    std::vector<std::int32_t> pairs;
    char dot = 0;
    for (std::int32_t number = 0, direction = 0; list >> number >> dot >> direction;) {
        pairs.insert(pairs.end(), {number, direction});
    }
    const auto equations = read_identifiers(KobFile{run.path("out.kob"), read_only}, "EQUATION");
    EXPECT_EQ(equations.uid, pairs);
    EXPECT_EQ(equations.entid.size(), 630U);
    EXPECT_EQ(equations.entid.back(), 630);

    // What the mesh's free nodes weigh along x can be known beforehand: of ten equal elements, each with the matrix
    // h/6 [2 1; 1 2] along the beam, the row and the column of the clamped end are missing, 2/3 of an element.
    constexpr std::int32_t last_node = 11023;
    const auto moves = [&](std::size_t row) { return pairs[2 * row] <= last_node && pairs[2 * row + 1] == 1; };
    double mass = 0;
    for (std::size_t row = 0; row < equations.entid.size(); ++row) {
        if (!moves(row)) continue;
        for (auto i = static_cast<std::size_t>(m.rowptr[row]); i < static_cast<std::size_t>(m.rowptr[row + 1]); ++i) {
            if (moves(static_cast<std::size_t>(m.colind[i]))) mass += m.val[i];
        }
    }
    const double beam = 100 * 10 * 10 * 7.85e-9;
    EXPECT_NEAR(mass, beam * 28 / 30, 1e-12 * beam);
}

} // namespace
