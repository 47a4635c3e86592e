// SPDX-License-Identifier: BSD-3-Clause
// Element results: writing, rewriting and reading in passes, and what each call leaves alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/hdf5_file.hpp"
#include "support/result_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "singlestate/state000000000012/elementresults/HEXA8/STRESS/ZONE5/kobblock";
constexpr std::int32_t read_real = 1100;
constexpr std::int32_t read_complex = 1101;
const Outcome fine{};

/// What pass 2 has to hand back; the filters are those of "res".
ElementResults all_of(const ElementResults& written, std::int32_t flags = 0, std::array<std::int32_t, 2> params = {})
{
    auto expected = expected_from(written, section::all);
    expected.filter_flags = flags;
    expected.filter_params = params;
    return expected;
}

ElementResults of_sizes(std::int32_t nele, std::int32_t numl, std::int32_t ncoo)
{
    ElementResults block;
    block.nele = nele;
    block.numl = numl;
    block.ncoo = ncoo;
    const auto elements = static_cast<std::size_t>(nele);
    block.idele.assign(elements, 0);
    for (std::int32_t i = 0; i < nele; ++i) block.idele[static_cast<std::size_t>(i)] = 100 - 3 * i;
    block.eloc = ElementResults::numbered(static_cast<std::size_t>(numl * block.ndim));
    block.res = ElementResults::numbered(static_cast<std::size_t>(nele * numl * ncoo));
    return block;
}

} // namespace

TEST(ElementResults, AWrittenBlockComesBackWithItsKeyAsStatus)
{
    KobFile file;
    const ElementResults written;
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written)));
}

TEST(ElementResults, ValueSizeChoosesKeyAndPrecision)
{
    struct Case {
        std::int32_t value_size;
        std::int32_t key;
        bool floats;
    };
    for (const Case c : {Case{4, read_real, true}, Case{8, read_real, false}, Case{16, read_complex, true},
                         Case{32, read_complex, false}, Case{0, read_real, false}, Case{12, read_real, false},
                         Case{-4, read_real, false}, Case{64, read_real, false}, Case{6, read_real, false},
                         Case{1032, read_real, false}, Case{24, read_real, false}}) {
        SCOPED_TRACE(c.value_size);
        KobFile file;
        ElementResults written;
        written.value_size = c.value_size;
        written.indexval = {0.1};
        written.eloc.front() = 0.1;
        written.res = ElementResults::numbered(c.key == read_complex ? 48 : 24);
        written.res.back() = 0.1;
        written.dmpswitch = 1;
        written.operators = {"a", "b", "c"};
        written.weight = {0.1, 0.2};
        ASSERT_EQ(written.write(file), fine);
        auto got = untouched(written);
        EXPECT_EQ(got.read(file.block(place), 2), (Outcome{c.key, ""}));
        auto expected = all_of(written);
        if (c.floats) {
            for (auto* values : {&expected.indexval, &expected.eloc, &expected.res, &expected.weight}) {
                *values = as_floats(*values);
            }
        }
        EXPECT_EQ(listing(got), listing(expected));
    }
}

TEST(ElementResults, PassZeroReadsAttributesAndStatePassOneAttributes)
{
    KobFile file;
    const ElementResults written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    auto zero = untouched(written);
    EXPECT_EQ(zero.read(block, 0), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(zero), listing(expected_from(written, section::attributes | section::index)));
    auto one = untouched(written);
    EXPECT_EQ(one.read(block, 1), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(one), listing(expected_from(written, section::attributes)));
}

TEST(ElementResults, OutputsThatAPassDoesNotTouchMayBeNull)
{
    KobFile file;
    const ElementResults written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    ElementResults got;
    got.indexident.clear();
    got.indexval.clear();
    got.idele.clear();
    got.eloc.clear();
    got.res.clear();
    for (auto* values : {&got.indexval, &got.eloc, &got.res}) values->shrink_to_fit();
    EXPECT_EQ(got.read(block, 1), (Outcome{read_real, ""}));

    std::int32_t one = 1;
    std::int32_t status = 77;
    Text256 text;
    std::int32_t number = 0;
    KOB_READ_ELEMENTRESULTS(&block, &one, text.data(), &number, text.data(), &number, &number, &number, text.data(),
                            &number, text.data(), &number, &number, &number, &number, nullptr, nullptr, nullptr,
                            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &status);
    EXPECT_EQ(status, read_real);
}

TEST(ElementResults, AnotherPassIsRefusedBeforeAnythingIsLookedAt)
{
    KobFile file;
    const ElementResults written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (const std::int32_t pass :
         {3, -1, 15, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
        for (const std::int64_t handle : {block, std::int64_t{-1}}) {
            auto got = untouched(written);
            EXPECT_EQ(got.read(handle, pass),
                      (Outcome{-3, "KOB INTERNAL ERROR reading block with key 1100 or 1101\n"}));
            EXPECT_EQ(listing(got), listing(untouched(written)));
        }
    }
}

TEST(ElementResults, ANegativeHandleIsNoHeader)
{
    for (const std::int32_t pass : {0, 1, 2}) {
        ElementResults like;
        auto got = untouched(like);
        EXPECT_EQ(got.read(-1, pass), (Outcome{-1, "KOB ERROR - header not found\n"}));
        EXPECT_EQ(listing(got), listing(untouched(like)));
    }
}

TEST(ElementResults, AnotherKindOfBlockIsRefused)
{
    KobFile file;
    const ElementResults written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (const std::int32_t key : {1000, 1150, 0, 1102}) {
        set_int_attribute(block, "block", key);
        auto got = untouched(written);
        EXPECT_EQ(got.read(block, 2),
                  (Outcome{-1, "KOB ERROR - wrong block key " + std::to_string(key) + ", 1100 or 1101 expected\n"}));
        EXPECT_EQ(listing(got), listing(untouched(written)));
    }
    ASSERT_GE(H5Adelete(block, "block"), 0);
    auto got = untouched(written);
    EXPECT_EQ(got.read(block, 2), (Outcome{-4002, missing_attribute("block", 2, 4)}));
}

TEST(ElementResults, AFrameForAllForEachElementOrForEachLocation)
{
    for (const std::int32_t fswitch : {0, 1, 2}) {
        SCOPED_TRACE(fswitch);
        KobFile file;
        ElementResults written;
        written.fswitch = fswitch;
        if (fswitch == 1) written.fid = {8, 9};
        if (fswitch == 2) written.fid = {1, 2, 3, 4, 5, 6, 7, 8};
        ASSERT_EQ(written.write(file), fine);
        const auto block = file.block(place);
        EXPECT_EQ(has_link(block, "fid"), fswitch != 0);
        EXPECT_EQ(has_link(block, "fidglob"), fswitch == 0);
        auto got = untouched(written);
        EXPECT_EQ(got.read(block, 2), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(got), listing(all_of(written)));
    }
}

TEST(ElementResults, AnotherFrameSwitchEndsTheWriteAfterTheIdentifiers)
{
    for (const std::int32_t fswitch : {3, -1}) {
        KobFile file;
        ElementResults written;
        written.fswitch = fswitch;
        EXPECT_EQ(written.write(file), (Outcome{-123, ""}));
        const auto block = file.block(place);
        EXPECT_EQ(link_names(block), (std::vector<std::string>{"idele", "indexident", "indexval"}));
        EXPECT_EQ(stored_ints(block, "fswitch"), (std::vector<std::int64_t>{fswitch}));
        EXPECT_EQ(stored_ints(block, "indexic"), (std::vector<std::int64_t>{7}));
    }
}

TEST(ElementResults, AnotherFrameSwitchInTheFileEndsTheRead)
{
    KobFile file;
    const ElementResults written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    set_int_attribute(block, "fswitch", 3);
    auto got = untouched(written);
    EXPECT_EQ(got.read(block, 2), (Outcome{-123, ""}));
    auto expected = expected_from(written, section::attributes);
    expected.fswitch = 3;
    expected.idele = written.idele;
    EXPECT_EQ(listing(got), listing(expected));
    EXPECT_EQ(got.read(block, 0), (Outcome{read_real, ""})) << "passes without frames do not care";
}

TEST(ElementResults, TheFrameOfAllMayBeAnAttributeOrMissing)
{
    KobFile file;
    const ElementResults written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    ASSERT_GE(H5Ldelete(block, "fidglob", H5P_DEFAULT), 0);
    auto missing = untouched(written);
    EXPECT_EQ(missing.read(block, 2), (Outcome{read_real, ""}));
    auto expected = all_of(written);
    expected.fidglob = untouched(written).fidglob;
    EXPECT_EQ(listing(missing), listing(expected));

    const std::int32_t frame = 44;
    put_attribute(block, "fidglob", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &frame);
    auto attribute = untouched(written);
    EXPECT_EQ(attribute.read(block, 2), (Outcome{read_real, ""}));
    expected.fidglob = 44;
    EXPECT_EQ(listing(attribute), listing(expected));

    const std::int32_t other = 45;
    put_dataset(block, "fidglob", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &other);
    auto both = untouched(written);
    EXPECT_EQ(both.read(block, 2), (Outcome{read_real, ""}));
    EXPECT_EQ(both.fidglob, 44) << "the attribute comes first";
}

TEST(ElementResults, OperatorsAndWeightsOnlyWithTheSwitchAtOne)
{
    for (const std::int32_t dmpswitch : {1, 0, 2, -1}) {
        SCOPED_TRACE(dmpswitch);
        KobFile file;
        ElementResults written;
        written.dmpswitch = dmpswitch;
        written.operators = {"SUM", std::string(256, 'm'), ""};
        written.weight = {0.25, -4};
        ASSERT_EQ(written.write(file), fine);
        const auto block = file.block(place);
        EXPECT_EQ(has_link(block, "operator"), dmpswitch == 1);
        EXPECT_EQ(has_link(block, "weight"), dmpswitch == 1);
        auto got = untouched(written);
        EXPECT_EQ(got.read(block, 2), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(got), listing(all_of(written)));
    }
}

TEST(ElementResults, ThePlaceFollowsStateZoneAndSet)
{
    KobFile file;
    ElementResults block;
    block.state = 3;
    EXPECT_EQ(block.write(file), fine);
    file.block("singlestate/state000000000003/elementresults/HEXA8/STRESS/ZONE5/kobblock");

    block.set = 0;
    EXPECT_EQ(block.write(file), fine);
    file.block("singlestate/state000000000003/elementresults/HEXA8/STRESS/ZONE5_set0/kobblock");

    block.state = -1;
    block.set = 14;
    block.zoneid = -1;
    block.nindex = 2;
    block.indexident = {7, 8};
    block.indexval = {0.5, 1.5};
    EXPECT_EQ(block.write(file), fine);
    file.block("singlestate/state000000000008/state000000000007/elementresults/HEXA8/STRESS/ZONE_set14/kobblock");

    block.etypzone = "";
    block.set = -1;
    block.nindex = 0;
    block.state = 9;
    EXPECT_EQ(block.write(file), fine);
    file.block("constant/elementresults/HEXA8/STRESS/kobblock");
}

TEST(ElementResults, ConstantDataHoldNoStateIndex)
{
    KobFile file;
    ElementResults written;
    written.nindex = 0;
    written.indexident.clear();
    written.indexval.clear();
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block("constant/elementresults/HEXA8/STRESS/ZONE5/kobblock");
    EXPECT_FALSE(has_link(block, "indexident"));
    EXPECT_FALSE(has_link(block, "indexval"));
    for (const std::int32_t pass : {0, 1, 2}) {
        auto got = untouched(written);
        EXPECT_EQ(got.read(block, pass), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(got), listing(pass == 2 ? all_of(written) : expected_from(written, section::attributes)));
    }
}

TEST(ElementResults, WritingAgainOverwritesEverySection)
{
    KobFile file;
    ElementResults written;
    written.dmpswitch = 1;
    written.operators = {"a", "b", "c"};
    written.weight = {1, 2};
    ASSERT_EQ(written.write(file), fine);
    written.etypframe = "LOCAL";
    written.indexic = 8;
    written.state = 12; // the same place by number
    written.indexident = {13};
    written.indexval = {2.5};
    written.idele = {201, 202};
    written.fidglob = 34;
    written.operators = {"d", "e", "f"};
    written.weight = {3, 4};
    written.eloc[3] = -1;
    written.res[5] = 77;
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written)));
}

TEST(ElementResults, WritingAgainWithOtherSizesStopsAtTheFirstThatDiffers)
{
    KobFile file;
    const ElementResults first;
    ASSERT_EQ(first.write(file), fine);
    ElementResults other = of_sizes(3, 4, 3);
    EXPECT_EQ(other.write(file), (Outcome{-6030, write_line(30, "idele", 2, 4, 4, 0, 0)}));
    other = of_sizes(2, 4, 5);
    EXPECT_EQ(other.write(file), (Outcome{-6030, write_line(30, "res", 3, 8, 8, 0, 2)}));
    ElementResults complex;
    complex.value_size = 32;
    complex.res.resize(48);
    EXPECT_EQ(complex.write(file), (Outcome{-3020, write_line(20, "res", 3, 8, 8, 0, 3)}));
    EXPECT_EQ(stored_reals(file.block(place), "res"), first.res);
}

TEST(ElementResults, DatasetsAreWrittenInOrder)
{
    const std::vector<std::string> order{"indexident", "indexval", "idele", "fidglob",
                                         "operator",   "weight",   "eloc",  "res"};
    for (std::size_t blocked = 0; blocked < order.size(); ++blocked) {
        SCOPED_TRACE(order[blocked]);
        KobFile file;
        {
            Hid group = create_group(file.handle(), "singlestate");
            std::string path = place;
            path.erase(0, path.find('/') + 1);
            for (std::size_t end = 0; end != std::string::npos;) {
                end = path.find('/');
                group = create_group(group, path.substr(0, end));
                path.erase(0, end == std::string::npos ? end : end + 1);
            }
            H5T_class_t wrong = order[blocked] == "operator" ? H5T_INTEGER : H5T_STRING;
            const Hid text = text_type(256);
            put_dataset(group, order[blocked], wrong == H5T_INTEGER ? H5T_STD_I32LE : static_cast<hid_t>(text), {2});
        }
        ElementResults written;
        written.dmpswitch = 1;
        written.operators = {"a", "b", "c"};
        written.weight = {1, 2};
        EXPECT_EQ(written.write(file).status, -3010);
        auto links = link_names(file.block(place));
        std::vector<std::string> expected{order.begin(), order.begin() + static_cast<std::ptrdiff_t>(blocked) + 1};
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(links, expected);
    }
}

TEST(ElementResults, TheBlockStaysOpenAndNothingElse)
{
    KobFile file;
    const ElementResults block;
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "group: 1");
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(block.write(file), fine); }), "group: 1") << "into an existing block";
    const auto handle = file.block(place);
    EXPECT_EQ(left_open_by([&] {
                  auto got = untouched(block);
                  EXPECT_EQ(got.read(handle, 2), (Outcome{read_real, ""}));
              }),
              "");
}

TEST(ElementResults, ReadersReportTheFiltersOfTheValues)
{
    KobFile file;
    ElementResults written;
    written.filter_flags = 2 + 16 + 128 + 1 + 8;
    written.filter_params = {3, 6};
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written, 2 + 16 + 128, {3, 6})));
}

TEST(ElementResults, LossyCompressionReachesTheValuesAlone)
{
    KobFile file;
    auto written = of_sizes(9, 9, 1);
    written.filter_flags = 128;
    written.filter_params = {1, 0};
    written.dmpswitch = 1;
    written.operators = {"a"};
    for (std::size_t i = 0; i < 9; ++i) written.weight.push_back(0.001 * static_cast<double>(i));
    written.eloc.front() = 0.0625;
    written.indexval = {0.0625};
    for (std::size_t i = 0; i < written.res.size(); ++i) written.res[i] = 0.123 * static_cast<double>(i);
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{read_real, ""}));
    int lost = 0;
    for (std::size_t i = 0; i < written.res.size(); ++i) {
        EXPECT_NEAR(got.res[i], written.res[i], 0.05 + 1e-12);
        lost += got.res[i] == written.res[i] ? 0 : 1;
    }
    EXPECT_GT(lost, 70);
    auto expected = all_of(written, 128, {1, 0});
    expected.res = got.res;
    EXPECT_EQ(listing(got), listing(expected));
}

TEST(ElementResults, CountsOfNoneOneSevenAndEight)
{
    for (const std::int32_t nele : {0, 1, 7, 8}) {
        SCOPED_TRACE(nele);
        KobFile file;
        auto written = of_sizes(nele, 1, 1);
        written.filter_flags = 1 + 2;
        written.filter_params = {0, 4};
        ASSERT_EQ(written.write(file), fine);
        const auto block = file.block(place);
        EXPECT_EQ(has_link(block, "idele"), nele > 0);
        EXPECT_EQ(has_link(block, "res"), nele > 0);
        EXPECT_TRUE(has_link(block, "eloc"));
        auto got = untouched(written);
        EXPECT_EQ(got.read(block, 2), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(got), listing(nele == 8 ? all_of(written, 2, {0, 4}) : all_of(written)));
    }
}

TEST(ElementResults, NegativeAndOverflowingCountsMakeNoDataset)
{
    {
        KobFile file;
        ElementResults block;
        block.nele = -1;
        EXPECT_EQ(block.write(file), (Outcome{-3000, write_line(1, "idele", 2, 4, 4, 0, -1)}));
        EXPECT_EQ(link_names(file.block(place)), (std::vector<std::string>{"indexident", "indexval"}));
    }
    {
        KobFile file;
        ElementResults block;
        block.ncoo = -2;
        EXPECT_EQ(block.write(file).status, -2040);
        EXPECT_FALSE(has_link(file.block(place), "res"));
    }
    {
        KobFile file;
        ElementResults block;
        block.numl = std::numeric_limits<std::int32_t>::max();
        block.ncoo = std::numeric_limits<std::int32_t>::max();
        block.ndim = 0;
        block.nele = 4;
        block.idele = {1, 2, 3, 4};
        const auto status = block.write(file).status;
        EXPECT_TRUE(status == -2040 || status == -2190) << status;
        EXPECT_FALSE(has_link(file.block(place), "res"));
    }
}

TEST(ElementResults, TextsOf256CharactersWithoutAnEnd)
{
    KobFile file;
    ElementResults written;
    written.etypelem = std::string(256, 'E');
    written.etypvar = std::string(256, 'V');
    written.etypzone = std::string(256, 'Z');
    written.etypframe = std::string(256, 'F');
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    const auto path = "singlestate/state000000000012/elementresults/" + std::string(256, 'E') + "/" +
                      std::string(256, 'V') + "/" + std::string(256, 'Z') + "5/kobblock";
    EXPECT_EQ(got.read(file.block(path), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written)));
}

TEST(ElementResults, AMissingDatasetStopsTheRead)
{
    KobFile file;
    const ElementResults written;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    ASSERT_GE(H5Ldelete(block, "eloc", H5P_DEFAULT), 0);
    auto got = untouched(written);
    EXPECT_EQ(got.read(block, 2), (Outcome{-6002, read_line(2, "eloc", 3, 8, -1, false)}));
    auto expected = expected_from(written, section::attributes | section::identifiers);
    EXPECT_EQ(listing(got), listing(expected));
}

TEST(ElementResults, APlaceThatCannotBeMadeIsReported)
{
    const Outcome refusal{-8, "KOB ERROR - kob_h5gopen - code -8, group singlestate\n"};
    const ElementResults block;
    const std::int64_t none = -1;
    EXPECT_EQ(block.write(&none), refusal);
    KobFile file;
    file.reopen(read_only);
    EXPECT_EQ(block.write(file), refusal);
}
