// SPDX-License-Identifier: BSD-3-Clause
// kob ls, show and info of every kind of block that sample_file.hpp has not: text to sparse matrices, and series.

#include <algorithm>
#include <array>
#include <limits>

#include "every_kind.hpp"
#include "hdf5_file.hpp"
#include "program.hpp"

using namespace kob_test;
using nlohmann::json;

namespace {

class KindsFile : public KobFile {
public:
    KindsFile()
    {
        write_model_kinds(*this);
        write_result_kinds(*this);
        close();
    }
};

/// What `show` prints behind the attributes.
std::string shown(const std::string& path, const std::string& block, const std::vector<std::string>& options = {})
{
    std::vector<std::string> arguments{"show", path, block};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = run_program(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const std::size_t attributes = outcome.out.find("\n\n");
    const std::size_t datasets = outcome.out.find("\n\n", attributes + 2);
    return datasets == std::string::npos ? std::string{} : outcome.out.substr(datasets + 2);
}

json shown_json(const std::string& path, const std::string& block, const std::vector<std::string>& options = {})
{
    std::vector<std::string> arguments{"show", path, block, "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = run_program(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    return outcome.json();
}

json dataset(const json& block, const std::string& name)
{
    for (const json& item : block.at("datasets"))
        if (item.at("name") == name) return item;
    return {};
}

/// From the line that starts with this heading on.
std::string from(const std::string& text, const std::string& heading)
{
    const std::size_t at = ("\n" + text).find("\n" + heading + "  ");
    return at == std::string::npos ? "no " + heading + " in:\n" + text : text.substr(at);
}

constexpr const char* flags = "activflags/ELEMENT";
constexpr const char* elements = "state000000000012/elementresults/HEXA8/STRESS/ZONE5";
constexpr const char* entity_series = "multistate/TIME/multientityresults/NODE/DISPLACEMENT/ZONE5";
constexpr const char* element_series = "multistate/TIME/multielementresults/HEXA8/STRESS/ZONE5";
constexpr const char* flag_series = "multistate/TIME/multiactivflags/CONTACT";
constexpr const char* dense = "densematrix/SUPERELEMENT/STIFFNESS/id17";
constexpr const char* triangular = "triangularmatrix/SUPERELEMENT/STIFFNESS/id17";
constexpr const char* sparse = "sparsematrix/SUPERELEMENT/STIFFNESS/id17";
constexpr const char* sparse_from_one = "sparsematrix/SUPERELEMENT/MASS/id17";

/// A file of every kind in which one attribute of one block says something else.
struct DamagedFile : KindsFile {
    DamagedFile(const std::string& block, const char* attribute, std::int32_t value)
    {
        const Hid root = open_file(path(), H5F_ACC_RDWR);
        set_int_attribute(open_group(root, "post/" + block + "/kobblock"), attribute, value);
    }
};

void expect_refused(const std::string& path, const std::string& block,
                    const std::vector<std::string>& options = {"--all", "--rows=1"})
{
    for (const std::string& option : options) {
        const Outcome outcome = run_program({"show", path, block, option});
        EXPECT_EQ(outcome.exit_code, 3) << option << "\n" << outcome.out << outcome.err;
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err.find("the block cannot be read"), std::string::npos) << outcome.err;
    }
}

} // namespace

TEST(Kinds, ListsNamesSizesAndStates)
{
    const KindsFile file;
    const Outcome outcome = run_program({"ls", file.path()});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    std::vector<std::string> lines = outcome.lines();
    ASSERT_EQ(lines.size(), 16U) << outcome.out;
    const auto line_of = [&](const std::string& kind, const std::string& variable = {}) {
        for (const std::string& line : lines) {
            std::string text;
            for (const std::string& word : words(line)) text += (text.empty() ? "" : " ") + word;
            if (text.find(" " + kind + " ") != std::string::npos && text.find(variable) != std::string::npos)
                return text.substr(text.find(' ') + 1); // less its place
        }
        return "no " + kind;
    };
    const auto bytes = [](int texts, int integers, int others) {
        return std::to_string(256 * texts + 4 * integers + others);
    };
    EXPECT_EQ(line_of("text"), "40 text log 2 " + bytes(1, 4, 24));
    EXPECT_EQ(line_of("parts"), "100 parts PART 3 " + bytes(1, 5 + 9, 15));
    EXPECT_EQ(line_of("attributes"), "200 attributes NODE 2 " + bytes(1, 5 + 6, 10));
    EXPECT_EQ(line_of("identifiers"), "250 identifiers ELEMENT 2 " + bytes(1, 5 + 2, 0));
    EXPECT_EQ(line_of("collector"), "400 collector SET 2 x 2 " + bytes(3, 5 + 2 + 4 + 6, 0));
    EXPECT_EQ(line_of("properties"), "500 properties ELEMENT SHELL PART 5 2 " + bytes(3, 9 + 2 + 2 + 4, 16 + 12));
    EXPECT_EQ(line_of("activflags"), "2100 activflags ELEMENT 12 0.5 3 " + bytes(1, 3 + 1 + 6, 8));
    EXPECT_EQ(line_of("elementresults"), "1100 elementresults HEXA8 STRESS ZONE 5 12 0.125 2 x 4 x 3 " +
                                             bytes(4, 9 + 1 + 2 + 1, 8 * (1 + 8 + 24)));
    EXPECT_EQ(line_of("multientityresults"),
              "1050 multientityresults NODE DISPLACEMENT ZONE 5 10 .. 30 0 .. 0.5 3 x 3 x 2 " +
                  bytes(5, 7 + 3 + 3 + 1, 8 * (3 + 18)));
    EXPECT_EQ(line_of("multielementresults"),
              "1150 multielementresults HEXA8 STRESS ZONE 5 10 .. 20 0 .. 0.25 2 x 2 x 4 x 3 " +
                  bytes(5, 9 + 2 + 2 + 1, 8 * (2 + 8 + 48)));
    EXPECT_EQ(line_of("multiactivflags"),
              "2150 multiactivflags CONTACT 10 .. 30 0 .. 0.5 3 x 3 " + bytes(2, 3 + 3 + 3 + 9, 8 * 3));
    EXPECT_EQ(line_of("densematrix"),
              "10000 densematrix SUPERELEMENT 17 STIFFNESS 12 0.125 3 x 2 " + bytes(2, 5 + 1, 8 * (1 + 6)));
    EXPECT_EQ(line_of("triangularmatrix"),
              "10100 triangularmatrix SUPERELEMENT 17 STIFFNESS 12 0.125 10 " + bytes(2, 5 + 1, 8 * (1 + 10)));
    EXPECT_EQ(line_of("sparsematrix", "STIFFNESS"),
              "10200 sparsematrix SUPERELEMENT 17 STIFFNESS 12 0.125 5 " + bytes(2, 4 + 1 + 5, 8 + 8 * (1 + 4 + 5)));
    EXPECT_EQ(line_of("sparsematrix", "MASS"),
              "10201 sparsematrix SUPERELEMENT 17 MASS 12 0.125 5 x 2 " + bytes(2, 4 + 1 + 5, 8 + 8 * (1 + 4 + 10)));
}

TEST(Kinds, ListsSeriesAndMatricesAsJson)
{
    const KindsFile file;
    const json blocks = run_program({"ls", file.path(), "--json"}).json().at("blocks");
    const auto of_kind = [&](const std::string& kind) {
        return *std::find_if(blocks.begin(), blocks.end(), [&](const json& block) { return block["kind"] == kind; });
    };
    const json series = of_kind("multientityresults");
    EXPECT_EQ(series.at("series"), json({{"name", "TIME"},
                                         {"states", 3},
                                         {"first", json::array({{{"ident", 10}, {"value", 0.0}}})},
                                         {"last", json::array({{{"ident", 30}, {"value", 0.5}}})}}));
    EXPECT_EQ(series.at("index"), json::array());
    EXPECT_TRUE(series.at("state").is_null());
    EXPECT_TRUE(series.at("entityid").is_null());
    const json matrix = of_kind("densematrix");
    EXPECT_EQ(matrix.at("entity"), "SUPERELEMENT");
    EXPECT_EQ(matrix.at("entityid"), 17);
    EXPECT_TRUE(matrix.at("series").is_null());
    EXPECT_EQ(matrix.at("index"), json::array({{{"ident", 12}, {"value", 0.125}}}));
}

TEST(Kinds, FiltersSeriesByTheStatesThatTheyHold)
{
    const KindsFile file;
    const auto kinds = [&](const std::string& state) {
        std::vector<std::string> names;
        const json listing = run_program({"ls", file.path(), "--json", "--state", state}).json();
        for (const json& block : listing.at("blocks")) names.push_back(block.at("kind"));
        std::sort(names.begin(), names.end());
        return names;
    };
    using Names = std::vector<std::string>;
    EXPECT_EQ(kinds("30"), (Names{"multiactivflags", "multientityresults"}));
    EXPECT_EQ(kinds("20"), (Names{"multiactivflags", "multielementresults", "multientityresults"}));
    EXPECT_EQ(kinds("12"), (Names{"activflags", "densematrix", "elementresults", "sparsematrix", "sparsematrix",
                                  "triangularmatrix"}));
    EXPECT_EQ(kinds("constant").size(), 6U);
}

TEST(Kinds, ShowsTextAsText)
{
    const KindsFile file;
    EXPECT_EQ(shown(file.path(), "text/log"), "line  text [2]\n  first line\n  second line\n");
    EXPECT_EQ(shown(file.path(), "text/log", {"--rows", "1"}), "line  text [2]\n  first line\n  ... 1 more\n");
    EXPECT_EQ(dataset(shown_json(file.path(), "text/log"), "line").at("values"), json({"first line", "second line"}));
}

TEST(Kinds, ShowsPartsAttributesAndPropertiesAsTables)
{
    const KindsFile file;
    EXPECT_EQ(shown(file.path(), "parts/PART"), "pid  title  mid  mtyp\n"
                                                "  5  plate    1    70\n"
                                                "  6  bolt     1    71\n"
                                                "  9           2    72\n");
    EXPECT_EQ(shown(file.path(), "attributes/NODE"), "entid  title  uid[0]  uid[1]\n"
                                                     "    1  left       10      11\n"
                                                     "    2  right      20      21\n");
    EXPECT_EQ(shown(file.path(), "identifiers/ELEMENT"), "entid\n   11\n   12\n");
    EXPECT_EQ(shown(file.path(), "SHELL/PART5"), "entid  idparam[0]  iparam[0]  iparam[1]  fparam[0]  cparam[0]\n"
                                                 "   11           3         31         32        0.5  steel\n"
                                                 "   12           4         41         42       0.25  alloy\n");
    EXPECT_EQ(shown(file.path(), "SHELL/PART5", {"--rows", "1"}),
              "entid  idparam[0]  iparam[0]  iparam[1]  fparam[0]  cparam[0]\n"
              "   11           3         31         32        0.5  steel\n"
              "  ... 1 more\n");
    EXPECT_EQ(from(shown(file.path(), flags), "entid"), "entid  status\n   11       1\n   12       0\n   13       1\n");
    EXPECT_EQ(shown_json(file.path(), "parts/PART").at("attributes").at("off"), 4);
    EXPECT_TRUE(dataset(shown_json(file.path(), "parts/PART"), "pcol").is_null()) << "switched off";
    EXPECT_EQ(dataset(shown_json(file.path(), "SHELL/PART5"), "cparam").at("values"),
              json::array({{"steel"}, {"alloy"}}));
    EXPECT_EQ(dataset(shown_json(file.path(), "SHELL/PART5", {"--rows", "1"}), "iparam").at("values"),
              json::array({{31, 32}}));
}

TEST(Kinds, ShowsCollectorsWithTheirMembers)
{
    const KindsFile file;
    EXPECT_EQ(shown(file.path(), "collector/SET"), "collectors  [2], 6 members\n"
                                                   "  7\n"
                                                   "    NODE [3]: 1 2 3\n"
                                                   "    ELEMENT [1]: 11\n"
                                                   "  8\n"
                                                   "    NODE [0]\n"
                                                   "    ELEMENT [2]: 12 13\n");
    EXPECT_EQ(shown(file.path(), "collector/SET", {"--rows", "1"}), "collectors  [2], 6 members\n"
                                                                    "  7\n"
                                                                    "    NODE [3]: 1 ... 2 more\n"
                                                                    "    ELEMENT [1]: 11\n"
                                                                    "  ... 1 more\n");
    EXPECT_EQ(dataset(shown_json(file.path(), "collector/SET"), "nent").at("values"), json::array({{3, 1}, {0, 2}}));
}

TEST(Kinds, ShowsElementResultsPerElementAndLocation)
{
    const KindsFile file;
    EXPECT_EQ(from(shown(file.path(), elements), "res"), "res  float64 [2, 4, 3]\n"
                                                         "ELEMENT  LOCATION     0     1     2\n"
                                                         "    101         0   0.5   1.5   2.5\n"
                                                         "    101         1   3.5   4.5   5.5\n"
                                                         "    101         2   6.5   7.5   8.5\n"
                                                         "    101         3   9.5  10.5  11.5\n"
                                                         "    102         0  12.5  13.5  14.5\n"
                                                         "    102         1  15.5  16.5  17.5\n"
                                                         "    102         2  18.5  19.5  20.5\n"
                                                         "    102         3  21.5  22.5  23.5\n");
    EXPECT_EQ(dataset(shown_json(file.path(), elements), "eloc").at("values"),
              json::array({{0.0, 0.5}, {1.0, 1.5}, {2.0, 2.5}, {3.0, 3.5}}));
    const json one = dataset(shown_json(file.path(), elements, {"--rows", "1"}), "res");
    EXPECT_EQ(one.at("shape"), json({2, 4, 3}));
    EXPECT_EQ(one.at("values"), json::array({{{0.5, 1.5, 2.5}, {3.5, 4.5, 5.5}, {6.5, 7.5, 8.5}, {9.5, 10.5, 11.5}}}));
}

TEST(Kinds, ShowsASeriesByItsFirstAndLastState)
{
    const KindsFile file;
    const std::string first_rows = shown(file.path(), entity_series, {"--rows", "1"});
    EXPECT_EQ(first_rows.substr(0, first_rows.find("\n\n")), "states  [3]\n"
                                                             "STATE  IDENT  INDEX\n"
                                                             "    0     10      0\n"
                                                             "  ...\n"
                                                             "    2     30    0.5");
    EXPECT_EQ(from(first_rows, "res"), "res  float64 [3, 3, 2]\n"
                                       "  state 0, index 0\n"
                                       "  0: 0.5 1.5\n"
                                       "  ... 2 more\n"
                                       "  state 2, index 0.5\n"
                                       "  0: 2000.5 2001.5\n"
                                       "  ... 2 more\n");
    EXPECT_EQ(from(shown(file.path(), entity_series), "res"), "res  float64 [3, 3, 2]\n"
                                                              "  state 0, index 0\n"
                                                              "  0: 0.5 1.5\n"
                                                              "  1: 2.5 3.5\n"
                                                              "  2: 4.5 5.5\n"
                                                              "  state 2, index 0.5\n"
                                                              "  0: 2000.5 2001.5\n"
                                                              "  1: 2002.5 2003.5\n"
                                                              "  2: 2004.5 2005.5\n");
    const std::string all = from(shown(file.path(), entity_series, {"--all"}), "res");
    EXPECT_NE(all.find("  state 1, index 0.25\n  0: 1000.5 1001.5\n"), std::string::npos) << all;

    const json res = dataset(shown_json(file.path(), entity_series, {"--rows", "1"}), "res");
    EXPECT_EQ(res.at("states"), json({0, 2}));
    EXPECT_EQ(res.at("shape"), json({3, 3, 2}));
    EXPECT_EQ(res.at("values"), json::array({{{0.5, 1.5}}, {{2000.5, 2001.5}}}));
    EXPECT_EQ(dataset(shown_json(file.path(), entity_series, {"--all"}), "res").at("states"), json({0, 1, 2}));
}

TEST(Kinds, ShowsSeriesOfElementResultsAndFlags)
{
    const KindsFile file;
    const std::string res = from(shown(file.path(), element_series, {"--rows", "1"}), "res");
    EXPECT_EQ(res, "res  float64 [2, 2, 4, 3]\n"
                   "  state 0, index 0\n"
                   "ELEMENT  LOCATION    0     1     2\n"
                   "    101         0  0.5   1.5   2.5\n"
                   "    101         1  3.5   4.5   5.5\n"
                   "    101         2  6.5   7.5   8.5\n"
                   "    101         3  9.5  10.5  11.5\n"
                   "  ... 1 more\n"
                   "  state 1, index 0.25\n"
                   "ELEMENT  LOCATION       0       1       2\n"
                   "    101         0  1000.5  1001.5  1002.5\n"
                   "    101         1  1003.5  1004.5  1005.5\n"
                   "    101         2  1006.5  1007.5  1008.5\n"
                   "    101         3  1009.5  1010.5  1011.5\n"
                   "  ... 1 more\n");
    EXPECT_EQ(from(shown(file.path(), flag_series), "status"), "status  int32 [3, 3]\n"
                                                               "  state 0, index 0\n"
                                                               "  0 1 2\n"
                                                               "  state 2, index 0.5\n"
                                                               "  200 201 202\n");
    const json status = dataset(shown_json(file.path(), flag_series, {"--rows", "2"}), "status");
    EXPECT_EQ(status.at("states"), json({0, 2}));
    EXPECT_EQ(status.at("values"), json::array({{0, 1}, {200, 201}}));
}

TEST(Kinds, ReadsOnlyWhatIsShownOfASeries)
{
    // 320 GB of values, of which the file holds those of the first state.
    constexpr std::int32_t entities = 200000;
    constexpr std::int32_t states = 100000;
    KobFile file;
    write_series(file, 1, entities);
    file.close();
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        const Hid block = open_group(root, std::string{"post/"} + entity_series + "/kobblock");
        set_int_attribute(block, "nstate", states);
        for (const char* name : {"indexident", "indexval", "res"}) {
            const Hid dataset = H5Dopen2(block, name, H5P_DEFAULT);
            const std::array<hsize_t, 3> extents{states, name[0] == 'i' ? hsize_t{1} : hsize_t{entities}, 2};
            ASSERT_GE(H5Dset_extent(dataset, extents.data()), 0) << name;
        }
    }
    EXPECT_EQ(from(shown(file.path(), entity_series, {"--rows", "2"}), "res"), "res  float64 [100000, 200000, 2]\n"
                                                                               "  state 0, index 0\n"
                                                                               "  0: 0.5 1.5\n"
                                                                               "  1: 2.5 3.5\n"
                                                                               "  ... 199998 more\n"
                                                                               "  state 99999, index 0\n"
                                                                               "  0: 0 0\n"
                                                                               "  1: 0 0\n"
                                                                               "  ... 199998 more\n");
    const Outcome all = run_program({"show", file.path(), entity_series, "--all"});
    EXPECT_EQ(all.exit_code, 3);
    EXPECT_NE(all.err.find("\"res\" claims 298.0 GiB"), std::string::npos) << all.err;
}

TEST(Kinds, ShowsMatrices)
{
    const KindsFile file;
    EXPECT_EQ(from(shown(file.path(), dense), "val"), "val  float64 [3, 2]\n"
                                                      "     0    1\n"
                                                      "0  0.5  1.5\n"
                                                      "1  2.5  3.5\n"
                                                      "2  4.5  5.5\n");
    EXPECT_EQ(from(shown(file.path(), dense, {"--rows", "1"}), "val"), "val  float64 [3, 2]\n"
                                                                       "     0    1\n"
                                                                       "0  0.5  1.5\n"
                                                                       "  ... 2 more\n");
    EXPECT_EQ(from(shown(file.path(), triangular), "val"),
              "val  float64 [10]\n  0.5 1.5 2.5 3.5 4.5 5.5 6.5 7.5 8.5 9.5\n");
    EXPECT_EQ(from(shown(file.path(), triangular, {"--rows", "2"}), "val"),
              "val  float64 [10]\n  0.5 1.5\n  ... 8 more\n");
    EXPECT_EQ(shown_json(file.path(), triangular).at("attributes").at("nsize"), 4);
    EXPECT_EQ(dataset(shown_json(file.path(), dense, {"--rows", "2"}), "val").at("values"),
              json::array({{0.5, 1.5}, {2.5, 3.5}}));
}

TEST(Kinds, ShowsSparseMatricesEntryByEntryAsTheyAreCounted)
{
    const KindsFile file;
    EXPECT_EQ(from(shown(file.path(), sparse), "entries"), "entries  [5]\n"
                                                           "ROW  COLUMN  VALUE\n"
                                                           "  0       0    0.5\n"
                                                           "  0       2    1.5\n"
                                                           "  1       1    2.5\n"
                                                           "  2       0    3.5\n"
                                                           "  2       2    4.5\n");
    EXPECT_EQ(from(shown(file.path(), sparse_from_one, {"--rows", "3"}), "entries"), "entries  [5]\n"
                                                                                     "ROW  COLUMN     VALUE\n"
                                                                                     "  1       1  0.5+1.5i\n"
                                                                                     "  1       3  2.5+3.5i\n"
                                                                                     "  2       2  4.5+5.5i\n"
                                                                                     "  ... 2 more\n");
    const json block = shown_json(file.path(), sparse_from_one, {"--rows", "2"});
    EXPECT_EQ(block.at("attributes").at("nnz"), 5);
    EXPECT_EQ(dataset(block, "rowptr").at("type"), "int64");
    EXPECT_EQ(dataset(block, "rowptr").at("values"), json({1, 3}));
    EXPECT_EQ(dataset(block, "val").at("values"), json::array({{0.5, 1.5}, {2.5, 3.5}}));
}

TEST(Kinds, ShowsASparseMatrixWhoseRowsMakeNoSense)
{
    const KindsFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        const Hid block = open_group(root, "post/singlestate/state000000000012/" + std::string{sparse} + "/kobblock");
        const Hid starts = H5Dopen2(block, "rowptr", H5P_DEFAULT);
        constexpr std::int64_t far = std::numeric_limits<std::int64_t>::max();
        const std::vector<std::int64_t> nonsense{2, -far, far, 1};
        ASSERT_GE(H5Dwrite(starts, H5T_NATIVE_INT64, H5S_ALL, H5S_ALL, H5P_DEFAULT, nonsense.data()), 0);
    }
    EXPECT_EQ(from(shown(file.path(), sparse, {"--rows", "1"}), "entries"), "entries  [5]\n"
                                                                            "ROW  COLUMN  VALUE\n"
                                                                            "  1       0    0.5\n"
                                                                            "  ... 4 more\n");
}

TEST(Kinds, ShowsACollectorWhoseCountsDoNotAddUp)
{
    const KindsFile file;
    {
        const Hid root = open_file(file.path(), H5F_ACC_RDWR);
        const Hid counts = H5Dopen2(open_group(root, "post/constant/collector/SET/kobblock"), "nent", H5P_DEFAULT);
        const std::vector<std::int32_t> nonsense{5, -1, std::numeric_limits<std::int32_t>::max(), 1};
        ASSERT_GE(H5Dwrite(counts, H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, nonsense.data()), 0);
    }
    EXPECT_EQ(shown(file.path(), "collector/SET"), "collectors  [2], 6 members\n"
                                                   "  7\n"
                                                   "    NODE [5]: 1 2 3 11 12\n"
                                                   "    ELEMENT [-1]\n"
                                                   "  8\n"
                                                   "    NODE [2147483647]: 13\n"
                                                   "    ELEMENT [1]\n");
}

TEST(Kinds, RefusesCountsThatTheArraysDoNotHave)
{
    const std::string state = "singlestate/state000000000012/";
    const std::vector<std::pair<std::string, const char*>> counts{
        {"constant/text/log", "nlines"},
        {"constant/parts/PART", "npart"},
        {"constant/attributes/NODE", "nent"},
        {"constant/attributes/NODE", "nuid"},
        {"constant/identifiers/ELEMENT", "nent"},
        {"constant/collector/SET", "ncoll"},
        {"constant/collector/SET", "ntyp"},
        {"constant/collector/SET", "nenttot"},
        {"constant/properties/ELEMENT/SHELL/PART5", "nent"},
        {"constant/properties/ELEMENT/SHELL/PART5", "nbint"},
        {state + flags, "nent"},
        {"singlestate/" + std::string{elements}, "nele"},
        {"singlestate/" + std::string{elements}, "numl"},
        {"singlestate/" + std::string{elements}, "ndim"},
        {"singlestate/" + std::string{elements}, "ncoo"},
        {entity_series, "nstate"},
        {entity_series, "nent"},
        {entity_series, "ncoo"},
        {entity_series, "nindex"},
        {element_series, "nstate"},
        {element_series, "numl"},
        {flag_series, "nstate"},
        {flag_series, "nent"},
        {state + dense, "nrow"},
        {state + dense, "ncolumn"},
        {state + sparse, "nrow"},
    };
    constexpr std::int32_t many = 1000000;
    for (const auto& [block, count] : counts) {
        SCOPED_TRACE(block + " " + count);
        const DamagedFile file{block, count, many};
        // A dense matrix is read by rows: too many of them are noticed with all.
        const bool by_rows = std::string_view{count} == "nrow" && block.ends_with(dense);
        expect_refused(file.path(), block,
                       by_rows ? std::vector<std::string>{"--all"} : std::vector<std::string>{"--all", "--rows=1"});
    }
}

TEST(Kinds, RefusesCountsThatNoFileCanMean)
{
    const std::string state = "singlestate/state000000000012/";
    for (const auto& [block, count] :
         std::vector<std::pair<std::string, const char*>>{{"constant/attributes/NODE", "nuid"},
                                                          {"constant/collector/SET", "ntyp"},
                                                          {"singlestate/" + std::string{elements}, "numl"},
                                                          {entity_series, "nstate"},
                                                          {state + sparse, "nrow"}}) {
        SCOPED_TRACE(block + " " + count);
        const DamagedFile file{block, count, std::numeric_limits<std::int32_t>::max()};
        expect_refused(file.path(), block, {"--json"});
    }
}

TEST(Kinds, RefusesNegativeCountsAndWidths)
{
    const std::string state = "singlestate/state000000000012/";
    for (const auto& [block, count] :
         std::vector<std::pair<std::string, const char*>>{{"constant/text/log", "nlines"},
                                                          {"constant/text/log", "length"},
                                                          {"constant/parts/PART", "npart"},
                                                          {"constant/collector/SET", "nenttot"},
                                                          {"constant/properties/ELEMENT/SHELL/PART5", "nent"},
                                                          {"singlestate/" + std::string{elements}, "numl"},
                                                          {entity_series, "nstate"},
                                                          {flag_series, "nent"},
                                                          {state + dense, "ncolumn"},
                                                          {state + sparse, "nrow"}})
        for (const std::int32_t value : {-5, std::numeric_limits<std::int32_t>::min()}) {
            SCOPED_TRACE(block + " " + count + " " + std::to_string(value));
            const DamagedFile file{block, count, value};
            expect_refused(file.path(), block);
        }
}

TEST(Kinds, SummarizesSeriesAndSizesOfAllKinds)
{
    const KindsFile file;
    const Outcome outcome = run_program({"info", file.path()});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_NE(outcome.out.find("\nSERIES  STATES  FIRST  LAST  BLOCKS\nTIME         3  0      0.5        3\n"),
              std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.out.find("\n   12  0.5         6\n"), std::string::npos) << outcome.out;
    const json info = run_program({"info", file.path(), "--json"}).json();
    EXPECT_EQ(info.at("blocks"), 15);
    EXPECT_EQ(info.at("blocks_of_unknown_size"), 0);
    EXPECT_EQ(info.at("kinds").size(), 15U);
    EXPECT_EQ(info.at("series"),
              json::array({{{"name", "TIME"}, {"states", 3}, {"first", {0.0}}, {"last", {0.5}}, {"blocks", 3}}}));
}
