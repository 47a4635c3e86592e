// SPDX-License-Identifier: BSD-3-Clause
// What the blocks of the older layout hold: three subgroups, each with its own share of the block.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/layout.hpp"
#include "support/older_blocks.hpp"

using namespace kob_test;

namespace {

using Values = std::vector<std::int64_t>;

/// The frame, and attributes by their type.
std::string header(std::initializer_list<const char*> texts, std::initializer_list<const char*> integers)
{
    std::string all = table({"attribute block integer 4 little scalar", "attribute blocktype text 256 space scalar"});
    for (const std::string name : texts) all += "attribute " + name + " text 256 space scalar\n";
    for (const std::string name : integers) all += "attribute " + name + " integer 4 little scalar\n";
    return all;
}

/// The lines in ascending order, as a listing has them.
std::string sorted(const std::string& lines)
{
    std::vector<std::string> all;
    for (std::size_t from = 0; from < lines.size();) {
        const auto end = lines.find('\n', from) + 1;
        all.push_back(lines.substr(from, end - from));
        from = end;
    }
    std::sort(all.begin(), all.end());
    std::string text;
    for (const auto& line : all) text += line;
    return text;
}

const std::string one_state = table({
    "dataset indexident integer 4 little [1] max [1] compact",
    "dataset indexval float 8 little [1] max [1] compact",
});
const std::string two_states = table({
    "dataset indexident integer 4 little [2, 1] max [unlimited, 1] chunked [1, 1]",
    "dataset indexval float 8 little [2, 1] max [unlimited, 1] chunked [1, 1]",
});
const std::string constant = "";

/// Writes the block and compares its places with tables. Returns its group.
template <class Block>
Hid expect_places(const KobFile& file, Block block, const std::string& path, const std::string& header_table,
                  std::initializer_list<std::string> data_table, const std::string& index_table)
{
    EXPECT_EQ(left_open_by([&] {
                  EXPECT_EQ(block.write(file.handle()), (Outcome{0, ""}));
              }),
              Block::is_record || Block::key == 1100 || Block::key == 1150 || Block::key == 2150 ? "group: 1" : "");
    auto group = open_group(file.handle(), path);
    EXPECT_EQ(layout_of(group),
              Block::is_state ? "group data\ngroup header\ngroup index\n" : "group data\ngroup header\n");
    EXPECT_EQ(layout_of(open_group(group, "header")), sorted(header_table));
    EXPECT_EQ(layout_of(open_group(group, "data")), table(data_table));
    if (Block::is_state) {
        EXPECT_EQ(layout_of(open_group(group, "index")), index_table);
    }
    EXPECT_EQ(stored_ints(open_group(group, "header"), "block"), (Values{Block::key}));
    const std::string name = Block::name;
    EXPECT_EQ(stored_text(open_group(group, "header"), "blocktype"), name + std::string(256 - name.size(), '\0'));
    return group;
}

/// The values of attributes of the header.
void expect_integers(hid_t block, std::initializer_list<std::pair<const char*, std::int64_t>> attributes)
{
    const auto place = open_group(block, "header");
    for (const auto& [name, value] : attributes) EXPECT_EQ(stored_ints(place, name), Values{value}) << name;
}

} // namespace

TEST(OlderLayout, System)
{
    const KobFile file;
    const auto block =
        expect_places(file, older::System{}, "constant/system/kobblock",
                      header({"title", "sys", "solver_name", "solver_vers"}, {"nbunit", "ndunit"}) +
                          table({"attribute cdate text 8 space scalar", "attribute ctime text 8 space scalar",
                                 "attribute mdate text 8 space scalar", "attribute mtime text 8 space scalar"}),
                      {
                          "dataset ubid integer 4 little [3] max [3] compact",
                          "dataset ubtyp text 256 space [3] max [3] compact",
                          "dataset ubnam text 256 space [3] max [3] compact",
                          "dataset ubshift float 8 little [3] max [3] compact",
                          "dataset ubcon float 8 little [3] max [3] compact",
                          "dataset udid integer 4 little [2] max [2] compact",
                          "dataset udnam text 256 space [2] max [2] compact",
                          "dataset udscal float 8 little [2] max [2] compact",
                          "dataset ndbunit integer 4 little [2] max [2] compact",
                          "dataset udbid integer 4 little [5] max [5] compact",
                          "dataset udbexp float 8 little [5] max [5] compact",
                      },
                      "");
    EXPECT_EQ(stored_text(open_group(block, "header"), "title"), Text256{"Cantilever"}.field());
    EXPECT_EQ(stored_ints(open_group(block, "data"), "udbid"), (Values{11, 12, 13, 11, 13}));
}

TEST(OlderLayout, Index)
{
    const KobFile file;
    const auto block = expect_places(file, older::Index{}, "constant/indices/kobblock", header({}, {"nindex"}),
                                     {
                                         "dataset etypindex text 256 space [2] max [2] compact",
                                         "dataset mbunit integer 4 little [2] max [2] compact",
                                         "dataset mdunit integer 4 little [2] max [2] compact",
                                         "dataset ubid integer 4 little [2] max [2] compact",
                                         "dataset ubexp float 8 little [2] max [2] compact",
                                         "dataset udid integer 4 little [1] max [1] compact",
                                         "dataset udexp float 8 little [1] max [1] compact",
                                     },
                                     "");
    expect_integers(block, {{"nindex", 2}});
    const auto data = open_group(block, "data");
    EXPECT_EQ(stored_text(data, "etypindex"),
              std::string{Text256{"TIME"}.field()} + std::string{Text256{"FREQUENCY"}.field()});
    EXPECT_EQ(stored_ints(data, "mbunit"), (Values{1, 1}));
    EXPECT_EQ(stored_ints(data, "mdunit"), (Values{0, 1}));
    EXPECT_EQ(stored_ints(data, "ubid"), (Values{13, 14}));
    EXPECT_EQ(stored_reals(data, "ubexp"), (std::vector<double>{1, -1}));
    EXPECT_EQ(stored_ints(data, "udid"), (Values{22}));
    EXPECT_EQ(stored_reals(data, "udexp"), (std::vector<double>{0.5}));
}

TEST(OlderLayout, Index_with_small_floats_and_filters)
{
    const KobFile file;
    older::Index b;
    b.nindex = 8;
    b.etypindex = Texts256(8);
    b.mbunit = b.mdunit = b.ubid = b.udid = older::Ints(8, 1);
    b.ubexp = b.udexp = older::Numbers(8, 0.5);
    b.float_size = 4;
    b.filter_flags = 255;
    b.filter_params = {3, 6};
    const std::string filtered_integers =
        " integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle deflate(6) fill 10000";
    expect_places(file, b, "constant/indices/kobblock", header({}, {"nindex"}),
                  {
                      "dataset etypindex text 256 space [8] max [8] chunked [8] shuffle deflate(6)",
                      "dataset mbunit" + filtered_integers,
                      "dataset mdunit" + filtered_integers,
                      "dataset ubid" + filtered_integers,
                      "dataset ubexp float 4 little [8] max [8] chunked [8] shuffle deflate(6)",
                      "dataset udid" + filtered_integers,
                      "dataset udexp float 4 little [8] max [8] chunked [8] shuffle deflate(6)",
                  },
                  "");
}

TEST(OlderLayout, Variables)
{
    const KobFile file;
    const auto block = expect_places(file, older::Variables{}, "constant/variables/STRESS/kobblock",
                                     header({"etypvar"}, {"idtrans", "rank", "ndim", "ncoo"}),
                                     {
                                         "dataset mbunit integer 4 little [3] max [3] compact",
                                         "dataset mdunit integer 4 little [3] max [3] compact",
                                         "dataset ubid integer 4 little [3] max [3] compact",
                                         "dataset ubexp float 8 little [3] max [3] compact",
                                         "dataset udid integer 4 little [2] max [2] compact",
                                         "dataset udexp float 8 little [2] max [2] compact",
                                         "dataset cname text 256 space [3] max [3] compact",
                                         "dataset cid integer 4 little [3] max [3] compact",
                                         "dataset comp integer 4 little [2, 2] max [2, 2] compact",
                                     },
                                     "");
    expect_integers(block, {{"idtrans", -3}, {"rank", 2}, {"ndim", 2}, {"ncoo", 3}});
    EXPECT_EQ(stored_text(open_group(block, "header"), "etypvar"), Text256{"STRESS"}.field());
    const auto data = open_group(block, "data");
    EXPECT_EQ(stored_ints(data, "mbunit"), (Values{1, 2, 0}));
    EXPECT_EQ(stored_ints(data, "mdunit"), (Values{0, 1, 1}));
    EXPECT_EQ(stored_ints(data, "ubid"), (Values{11, 12, 13}));
    EXPECT_EQ(stored_reals(data, "ubexp"), (std::vector<double>{1, -1, -2}));
    EXPECT_EQ(stored_ints(data, "udid"), (Values{21, 22}));
    EXPECT_EQ(stored_reals(data, "udexp"), (std::vector<double>{0.25, 0.5}));
    EXPECT_EQ(stored_ints(data, "cid"), (Values{71, 72, 73}));
    EXPECT_EQ(stored_ints(data, "comp"), (Values{1, 3, 3, 2}));
}

TEST(OlderLayout, The_components_of_a_scalar_are_one_number)
{
    const KobFile file;
    older::Variables b;
    b.etypvar = "TEMPERATURE";
    b.rank = 0;
    b.ndim = 3;
    b.ncoo = 1;
    b.mbunit = {1};
    b.mdunit = {0};
    b.comp = {1};
    expect_places(file, b, "constant/variables/TEMPERATURE/kobblock",
                  header({"etypvar"}, {"idtrans", "rank", "ndim", "ncoo"}),
                  {
                      "dataset mbunit integer 4 little [1] max [1] compact",
                      "dataset mdunit integer 4 little [1] max [1] compact",
                      "dataset ubid integer 4 little [1] max [1] compact",
                      "dataset ubexp float 8 little [1] max [1] compact",
                      "dataset cname text 256 space [1] max [1] compact",
                      "dataset cid integer 4 little [1] max [1] compact",
                      "dataset comp integer 4 little [1] max [1] compact",
                  },
                  "");
}

TEST(OlderLayout, Text)
{
    const KobFile file;
    const auto block =
        expect_places(file, older::Text{}, "constant/text/log/kobblock", header({"etyptext"}, {"nlines", "length"}),
                      {"dataset line text 5 space [2] max [2] compact"}, "");
    expect_integers(block, {{"nlines", 2}, {"length", 5}});
    EXPECT_EQ(stored_text(open_group(block, "data"), "line"), "one  two  ");
}

TEST(OlderLayout, Parts)
{
    const KobFile file;
    const auto block = expect_places(file, older::Parts{}, "singlestate/state000000000012/parts/PART/kobblock",
                                     header({"etyppart"}, {"npart", "off", "nindex"}),
                                     {
                                         "dataset pid integer 4 little [2] max [2] compact",
                                         "dataset title text 256 space [2] max [2] compact",
                                         "dataset mid integer 4 little [2] max [2] compact",
                                         "dataset mtyp integer 4 little [2] max [2] compact",
                                         "dataset pcol integer 4 little [2] max [2] compact",
                                         "dataset pvtyp integer 4 little [2] max [2] compact",
                                     },
                                     one_state);
    expect_integers(block, {{"npart", 2}, {"off", 0}, {"nindex", 1}});
    EXPECT_EQ(stored_ints(open_group(block, "data"), "pvtyp"), (Values{-1, 6}));
    EXPECT_EQ(stored_ints(open_group(block, "index"), "indexident"), (Values{12}));
    EXPECT_EQ(stored_reals(open_group(block, "index"), "indexval"), (std::vector<double>{0.125}));
}

TEST(OlderLayout, Parts_without_the_columns_of_the_mask)
{
    const KobFile file;
    older::Parts b;
    b.off = 7;
    b.nindex = 0;
    expect_places(file, b, "constant/parts/PART/kobblock", header({"etyppart"}, {"npart", "off", "nindex"}),
                  {
                      "dataset pid integer 4 little [2] max [2] compact",
                      "dataset title text 256 space [2] max [2] compact",
                      "dataset pvtyp integer 4 little [2] max [2] compact",
                  },
                  constant);
}

TEST(OlderLayout, Attributes)
{
    const KobFile file;
    const auto block =
        expect_places(file, older::Attributes{}, "singlestate/state000000000012/attributes/NODE/kobblock",
                      header({"etyp"}, {"nent", "nuid", "nindex"}),
                      {
                          "dataset entid integer 4 little [3] max [3] compact",
                          "dataset title text 256 space [3] max [3] compact",
                          "dataset uid integer 4 little [3, 2] max [3, 2] compact",
                      },
                      one_state);
    expect_integers(block, {{"nent", 3}, {"nuid", 2}, {"nindex", 1}});
    EXPECT_EQ(stored_ints(open_group(block, "data"), "uid"), (Values{51, 52, 61, 62, 91, 92}));
}

TEST(OlderLayout, Attributes_of_all_states_keep_their_titles)
{
    const KobFile file;
    older::Attributes b;
    b.nindex = 0;
    b.nuid = 0;
    expect_places(file, b, "constant/attributes/NODE/kobblock", header({"etyp"}, {"nent", "nuid", "nindex"}),
                  {
                      "dataset entid integer 4 little [3] max [3] compact",
                      "dataset title text 256 space [3] max [3] compact",
                  },
                  constant);
}

TEST(OlderLayout, Connectivities)
{
    const KobFile file;
    const auto block = expect_places(
        file, older::Connectivities{}, "singlestate/state000000000012/connectivities/BEAM2/kobblock",
        header({"etypelem", "etyppart", "etypnode"}, {"nele", "npele", "ndim", "nbint", "nbfloat", "nindex"}),
        {
            "dataset idele integer 4 little [2] max [2] compact",
            "dataset pid integer 4 little [2] max [2] compact",
            "dataset ic integer 4 little [2, 3] max [2, 3] compact",
            "dataset iparam integer 4 little [2, 1] max [2, 1] compact",
            "dataset fparam float 8 little [2, 2] max [2, 2] compact",
            "dataset mbunit integer 4 little [2] max [2] compact",
            "dataset mdunit integer 4 little [2] max [2] compact",
            "dataset ubid integer 4 little [3] max [3] compact",
            "dataset ubexp float 8 little [3] max [3] compact",
            "dataset udid integer 4 little [1] max [1] compact",
            "dataset udexp float 8 little [1] max [1] compact",
        },
        one_state);
    expect_integers(block, {{"nele", 2}, {"npele", 3}, {"ndim", 1}, {"nbint", 1}, {"nbfloat", 2}, {"nindex", 1}});
    const auto data = open_group(block, "data");
    EXPECT_EQ(stored_ints(data, "mbunit"), (Values{2, 1}));
    EXPECT_EQ(stored_ints(data, "mdunit"), (Values{0, 1}));
    EXPECT_EQ(stored_ints(data, "ubid"), (Values{11, 12, 13}));
    EXPECT_EQ(stored_reals(data, "ubexp"), (std::vector<double>{1, -2, 3}));
    EXPECT_EQ(stored_ints(data, "udid"), (Values{21}));
    EXPECT_EQ(stored_reals(data, "udexp"), (std::vector<double>{0.5}));
}

TEST(OlderLayout, Connectivities_without_parameters_have_no_units)
{
    const KobFile file;
    older::Connectivities b;
    b.nindex = b.nbint = b.nbfloat = 0;
    expect_places(file, b, "constant/connectivities/BEAM2/kobblock",
                  header({"etypelem", "etyppart", "etypnode"}, {"nele", "npele", "ndim", "nbint", "nbfloat", "nindex"}),
                  {
                      "dataset idele integer 4 little [2] max [2] compact",
                      "dataset pid integer 4 little [2] max [2] compact",
                      "dataset ic integer 4 little [2, 3] max [2, 3] compact",
                  },
                  constant);
}

TEST(OlderLayout, Collector)
{
    const KobFile file;
    const auto block = expect_places(file, older::Collector{}, "singlestate/state000000000012/collector/SET/kobblock",
                                     header({"etypcoll"}, {"ncoll", "ntyp", "nenttot", "nindex"}),
                                     {
                                         "dataset idcoll integer 4 little [2] max [2] compact",
                                         "dataset etyp text 256 space [2] max [2] compact",
                                         "dataset nent integer 4 little [2, 2] max [2, 2] compact",
                                         "dataset entid integer 4 little [6] max [6] compact",
                                     },
                                     one_state);
    expect_integers(block, {{"ncoll", 2}, {"ntyp", 2}, {"nenttot", 6}, {"nindex", 1}});
}

TEST(OlderLayout, ActivFlags)
{
    const KobFile file;
    expect_places(file, older::ActivFlags{}, "singlestate/state000000000012/activflags/ELEMENT/kobblock",
                  header({"etyp"}, {"nent", "nindex"}),
                  {
                      "dataset entid integer 4 little [3] max [3] compact",
                      "dataset status integer 4 little [3] max [3] compact",
                  },
                  one_state);
}

TEST(OlderLayout, ActivFlags_with_every_filter_and_a_long_index)
{
    const KobFile file;
    older::ActivFlags b;
    b.nindex = 8;
    b.indexident = older::Ints(8, 1);
    b.indexval = older::Numbers(8, 0.5);
    b.state = 5;
    b.nent = 9;
    b.entid = b.flags = older::Ints(9, 1);
    b.float_size = 4;
    b.filter_flags = 255;
    b.filter_params = {3, 6};
    expect_places(file, b, "singlestate/state000000000005/activflags/ELEMENT/kobblock",
                  header({"etyp"}, {"nent", "nindex"}),
                  {
                      "dataset entid integer 4 little [9] max [9] chunked [9] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset status integer 4 little [9] max [9] chunked [9] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                  },
                  table({
                      "dataset indexident integer 4 little [8] max [8] chunked [8] scaleoffset(integer 0) shuffle "
                      "deflate(6) fill 10000",
                      "dataset indexval float 4 little [8] max [8] chunked [8] shuffle deflate(6)",
                  }));
}

const std::string entity_header =
    header({"etyp", "etypvar", "etypzone", "etypframe"}, {"nent", "ncoo", "zoneid", "fswitch", "dmpswitch", "nindex"});

TEST(OlderLayout, EntityResults)
{
    const KobFile file;
    const auto block =
        expect_places(file, older::EntityResults{},
                      "singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/ZONE7/kobblock", entity_header,
                      {
                          "dataset entid integer 4 little [4] max [4] compact",
                          "dataset fid integer 4 little [4] max [4] compact",
                          "dataset operator text 256 space [3] max [3] compact",
                          "dataset weight float 8 little [4] max [4] compact",
                          "dataset res float 8 little [4, 3] max [4, 3] compact",
                      },
                      one_state);
    expect_integers(block, {{"nent", 4}, {"ncoo", 3}, {"zoneid", 7}, {"fswitch", 1}, {"dmpswitch", 1}, {"nindex", 1}});
}

TEST(OlderLayout, EntityResults_of_all_states_in_one_frame)
{
    const KobFile file;
    older::EntityResults b;
    b.nindex = 0;
    b.fswitch = b.dmpswitch = 0;
    b.fidglob = 55;
    b.value_size = 4;
    const auto block = expect_places(file, b, "constant/entityresults/NODE/DISPLACEMENT/ZONE7/kobblock", entity_header,
                                     {
                                         "dataset entid integer 4 little [4] max [4] compact",
                                         "dataset fidglob integer 4 little scalar compact",
                                         "dataset res float 4 little [4, 3] max [4, 3] compact",
                                     },
                                     constant);
    EXPECT_EQ(stored_ints(open_group(block, "data"), "fidglob"), (Values{55}));
}

TEST(OlderLayout, ElementResults)
{
    const KobFile file;
    expect_places(file, older::ElementResults{},
                  "singlestate/state000000000012/elementresults/HEXA8/STRESS/ZONE5/kobblock",
                  header({"etypelem", "etypvar", "etypzone", "etypframe"},
                         {"nele", "ncoo", "numl", "ndim", "zoneid", "fswitch", "dmpswitch", "nindex"}),
                  {
                      "dataset idele integer 4 little [2] max [2] compact",
                      "dataset fidglob integer 4 little scalar compact",
                      "dataset eloc float 8 little [4, 2] max [4, 2] compact",
                      "dataset res float 8 little [2, 4, 3] max [2, 4, 3] compact",
                  },
                  one_state);
}

TEST(OlderLayout, MultiEntityResults)
{
    const KobFile file;
    const auto block = expect_places(file, older::MultiEntityResults{},
                                     "multistate/TIME/multientityresults/NODE/DISPLACEMENT/ZONE5/kobblock",
                                     header({"series", "etyp", "etypvar", "etypzone", "etypframe"},
                                            {"nent", "ncoo", "zoneid", "fswitch", "dmpswitch", "nindex", "nstate"}),
                                     {
                                         "dataset entid integer 4 little [3] max [3] compact",
                                         "dataset fidglob integer 4 little scalar compact",
                                         "dataset res float 8 little [2, 3, 2] max [unlimited, 3, 2] chunked [1, 3, 2]",
                                     },
                                     two_states);
    expect_integers(block, {{"nstate", 2}, {"nindex", 1}});
    EXPECT_EQ(stored_ints(open_group(block, "index"), "indexident"), (Values{10, 20}));
}

TEST(OlderLayout, MultiElementResults)
{
    const KobFile file;
    const auto block = expect_places(
        file, older::MultiElementResults{}, "multistate/TIME/multielementresults/HEXA8/STRESS/ZONE5/kobblock",
        header({"series", "etypelem", "etypvar", "etypzone", "etypframe"},
               {"nele", "ncoo", "numl", "ndim", "zoneid", "fswitch", "dmpswitch", "nindex", "nstate"}),
        {
            "dataset idele integer 4 little [2] max [2] compact",
            "dataset fidglob integer 4 little scalar compact",
            "dataset eloc float 8 little [4, 2] max [4, 2] compact",
            "dataset res float 8 little [2, 2, 4, 3] max [unlimited, 2, 4, 3] chunked [1, 2, 4, 3]",
        },
        two_states);
    expect_integers(block, {{"nstate", 2}});
}

TEST(OlderLayout, MultiActivFlags)
{
    const KobFile file;
    const auto block = expect_places(file, older::MultiActivFlags{}, "multistate/TIME/multiactivflags/CONTACT/kobblock",
                                     header({"series", "etyp"}, {"nent", "nindex", "nstate"}),
                                     {
                                         "dataset entid integer 4 little [3] max [3] compact",
                                         "dataset status integer 4 little [2, 3] max [unlimited, 3] chunked [1, 3]",
                                     },
                                     two_states);
    expect_integers(block, {{"nstate", 2}});
}

TEST(OlderLayout, DenseMatrix)
{
    const KobFile file;
    expect_places(file, older::DenseMatrix{},
                  "singlestate/state000000000012/densematrix/SUPERELEMENT/STIFFNESS/id17/kobblock",
                  header({"etyp", "etypvar"}, {"entid", "nrow", "ncolumn", "nindex"}),
                  {"dataset val float 8 little [3, 2] max [3, 2] compact"}, one_state);
}

TEST(OlderLayout, TriangularMatrix)
{
    const KobFile file;
    expect_places(file, older::TriangularMatrix{},
                  "singlestate/state000000000012/triangularmatrix/SUPERELEMENT/STIFFNESS/id17/kobblock",
                  header({"etyp", "etypvar"}, {"entid", "nsize", "matrixtype", "nindex"}),
                  {"dataset val float 8 little [10] max [10] compact"}, one_state);
}

TEST(OlderLayout, SparseMatrix)
{
    const KobFile file;
    expect_places(file, older::SparseMatrix{},
                  "singlestate/state000000000012/sparsematrix/SUPERELEMENT/STIFFNESS/id17/kobblock",
                  header({"etyp", "etypvar"}, {"entid", "nrow", "nindex"}) + "attribute nnz integer 8 little scalar\n",
                  {
                      "dataset colind integer 4 little [5] max [5] compact",
                      "dataset rowptr integer 8 little [4] max [4] compact",
                      "dataset val float 8 little [5] max [5] compact",
                  },
                  one_state);
}

TEST(OlderLayout, Complex_values_have_the_second_key_and_a_last_extent_of_2)
{
    const KobFile file;
    older::DenseMatrix b;
    b.value_size = 16;
    b.nindex = 0;
    b.val = Matrix::numbered(12);
    EXPECT_EQ(b.write(file.handle()), (Outcome{0, ""}));
    const auto block = open_group(file.handle(), "constant/densematrix/SUPERELEMENT/STIFFNESS/id17/kobblock");
    EXPECT_EQ(layout_of(open_group(block, "data")), "dataset val float 4 little [3, 2, 2] max [3, 2, 2] compact\n");
    EXPECT_EQ(layout_of(open_group(block, "index")), constant);
    EXPECT_EQ(stored_ints(open_group(block, "header"), "block"), (Values{10001}));
}

TEST(OlderLayout, The_file_header_says_1_2_0)
{
    const KobFile file;
    std::int32_t status = 77;
    KOB1_WRITE_FILEHEADER(file.address(), nullptr, nullptr, &status);
    EXPECT_EQ(status, 0);
    const auto group = open_group(file.handle(), "kobheader");
    EXPECT_EQ(layout_of(group), "dataset kobheader text 64 space scalar compact\n");
    EXPECT_EQ(stored_text(group, "kobheader"), "\x89KOB\r\n\x1a\n" + std::string{"1 2 0"} + std::string(51, ' '));
}
