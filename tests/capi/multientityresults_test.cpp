// SPDX-License-Identifier: BSD-3-Clause
// Entity results of a series of states: as a solver writes them, and every way of reading them back.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "support/file_bytes.hpp"
#include "support/hdf5_file.hpp"
#include "support/result_blocks.hpp"

using namespace kob_test;

namespace {

const std::string place = "multistate/TIME/multientityresults/NODE/DISPLACEMENT/ZONE5/kobblock";
constexpr std::int32_t read_real = 1050;
constexpr std::int32_t read_complex = 1051;
const Outcome fine{};

using Ints = std::vector<std::int64_t>;

MultiEntityResults all_of(const MultiEntityResults& written, std::int32_t flags = 0,
                          std::array<std::int32_t, 2> params = {})
{
    auto expected = expected_from(written, section::all);
    expected.filter_flags = flags;
    expected.filter_params = params;
    return expected;
}

/// The block as pass 2 gives it, for arrays of the sizes of `like`.
MultiEntityResults everything(const KobFile& file, const MultiEntityResults& like)
{
    auto got = untouched(like);
    EXPECT_EQ(got.read(file.block(place), 2), (Outcome{like.is_complex() ? read_complex : read_real, ""}));
    return got;
}

/// Replaces one state of `block` by state `from` of another.
void put_state(MultiEntityResults& block, std::size_t row, const MultiEntityResults& other, std::size_t from = 0)
{
    const auto index = static_cast<std::size_t>(block.nindex);
    const auto size = block.state_size();
    std::copy_n(other.indexident.begin() + static_cast<std::ptrdiff_t>(from * index), index,
                block.indexident.begin() + static_cast<std::ptrdiff_t>(row * index));
    std::copy_n(other.indexval.begin() + static_cast<std::ptrdiff_t>(from * index), index,
                block.indexval.begin() + static_cast<std::ptrdiff_t>(row * index));
    std::copy_n(other.res.begin() + static_cast<std::ptrdiff_t>(from * size), size,
                block.res.begin() + static_cast<std::ptrdiff_t>(row * size));
}

/// Makes a state hold what HDF5 gives for rows that nobody wrote.
void clear_state(MultiEntityResults& block, std::size_t row)
{
    auto nothing = block;
    nothing.hold(1);
    std::fill(nothing.indexident.begin(), nothing.indexident.end(), 0);
    std::fill(nothing.indexval.begin(), nothing.indexval.end(), 0);
    std::fill(nothing.res.begin(), nothing.res.end(), 0);
    put_state(block, row, nothing);
}

/// The group of a block, made by the placement, for the worker that takes an open group.
std::int64_t open_place(const KobFile& file, std::int32_t ioflag = 0)
{
    const Text256 series{"TIME"};
    const Text256 kind{"multientityresults"};
    const Text256 etyp{"NODE"};
    const Text256 etypvar{"DISPLACEMENT"};
    const Text256 etypzone{"ZONE"};
    const std::int32_t mask = 31;
    const std::int32_t states = -1;
    const std::int32_t none = -1;
    const std::int32_t zone = 5;
    std::int64_t group = -1;
    std::int32_t status = -77;
    KOB_OPENAUTOPATH(file.address(), &mask, nullptr, &ioflag, &states, nullptr, &none, series.data(), kind.data(),
                     etyp.data(), etypvar.data(), etypzone.data(), &zone, &none, &group, &status);
    EXPECT_GE(status, 0);
    return group;
}

} // namespace

// ---- writing as solvers do

TEST(MultiEntityResults, AFirstRunOfStatesComesBackWithItsKeyAsStatus)
{
    KobFile file;
    const MultiEntityResults written{4};
    ASSERT_EQ(written.write(file), fine);
    EXPECT_EQ(listing(everything(file, written)), listing(all_of(written)));
}

TEST(MultiEntityResults, AFirstRunThenOneStateAtATime)
{
    KobFile file;
    MultiEntityResults call{3};
    ASSERT_EQ(call.write(file), fine);
    for (std::int32_t row = 3; row < 10; ++row) {
        ASSERT_EQ(call.one_at(row).write(file), fine);
        EXPECT_EQ(stored_ints(file.block(place), "nstate"), Ints{row + 1});
        EXPECT_EQ(stored_extents(file.block(place), "res").front(), static_cast<hsize_t>(row + 1));
    }
    const MultiEntityResults expected{10};
    EXPECT_EQ(listing(everything(file, expected)), listing(all_of(expected)));
}

TEST(MultiEntityResults, OneStateAtATimeFromTheFirst)
{
    KobFile file;
    MultiEntityResults call{1};
    ASSERT_EQ(call.write(file), fine);
    ASSERT_EQ(call.one_at(1).write(file), fine);
    ASSERT_EQ(call.one_at(2).write(file), fine);
    const MultiEntityResults expected{3};
    EXPECT_EQ(listing(everything(file, expected)), listing(all_of(expected)));
}

TEST(MultiEntityResults, RewritingAnEarlyStateChangesItAlone)
{
    KobFile file;
    const MultiEntityResults written{5};
    ASSERT_EQ(written.write(file), fine);
    auto expected = all_of(written);
    MultiEntityResults call;
    ASSERT_EQ(call.one_at(2, 0.25).write(file), fine);
    put_state(expected, 2, call);
    EXPECT_EQ(listing(everything(file, written)), listing(expected));

    MultiEntityResults first{1};
    first.hold(1, 0, 0.125);
    ASSERT_EQ(first.write(file), fine);
    put_state(expected, 0, first);
    EXPECT_EQ(listing(everything(file, written)), listing(expected)) << "the first state is a run of one";
    EXPECT_EQ(stored_ints(file.block(place), "nstate"), Ints{5});
}

TEST(MultiEntityResults, AShorterRunRewritesTheFirstStatesAndKeepsTheRest)
{
    KobFile file;
    const MultiEntityResults written{5};
    ASSERT_EQ(written.write(file), fine);
    MultiEntityResults run{2};
    run.hold(2, 0, 0.25);
    ASSERT_EQ(run.write(file), fine);
    auto expected = all_of(written);
    put_state(expected, 0, run, 0);
    put_state(expected, 1, run, 1);
    EXPECT_EQ(listing(everything(file, written)), listing(expected));
    EXPECT_EQ(stored_ints(file.block(place), "nstate"), Ints{5});
}

TEST(MultiEntityResults, GapsHoldTheFillValueUntilTheyAreWritten)
{
    KobFile file;
    MultiEntityResults call{1};
    ASSERT_EQ(call.write(file), fine);
    ASSERT_EQ(call.one_at(4).write(file), fine);
    const MultiEntityResults five{5};
    auto expected = all_of(five);
    for (const std::size_t row : {1, 2, 3}) clear_state(expected, row);
    EXPECT_EQ(listing(everything(file, five)), listing(expected));

    ASSERT_EQ(call.one_at(2).write(file), fine);
    put_state(expected, 2, call);
    EXPECT_EQ(listing(everything(file, five)), listing(expected));
}

TEST(MultiEntityResults, ASeriesMayBeginWithAGap)
{
    KobFile file;
    MultiEntityResults call;
    ASSERT_EQ(call.one_at(3).write(file), fine);
    EXPECT_EQ(stored_ints(file.block(place), "nstate"), Ints{4});
    const MultiEntityResults four{4};
    auto expected = all_of(four);
    for (const std::size_t row : {0, 1, 2}) clear_state(expected, row);
    EXPECT_EQ(listing(everything(file, four)), listing(expected));
}

TEST(MultiEntityResults, GapsUnderScaleOffsetHoldTenThousand)
{
    KobFile file;
    MultiEntityResults call{1};
    call.ncoo = 4; // 12 values: filtered
    call.hold(1);
    call.filter_flags = 64 + 128;
    call.filter_params = {3, 0};
    ASSERT_EQ(call.write(file), fine);
    ASSERT_EQ(call.one_at(2).write(file), fine);
    MultiEntityResults three{3};
    three.ncoo = 4;
    three.hold(3);
    auto expected = all_of(three, 128, {3, 0});
    clear_state(expected, 1); // one index value a state is not filtered
    std::fill(expected.res.begin() + 12, expected.res.begin() + 24, 10000.0);
    EXPECT_EQ(listing(everything(file, three)), listing(expected));
}

TEST(MultiEntityResults, GapsOfScaleOffsetIdentifiersHoldTenThousand)
{
    KobFile file;
    MultiEntityResults call{8};
    call.filter_flags = 64 + 128;
    call.filter_params = {3, 0};
    ASSERT_EQ(call.write(file), fine);
    ASSERT_EQ(call.one_at(9).write(file), fine);
    const MultiEntityResults ten{10};
    auto expected = all_of(ten, 128, {3, 0});
    clear_state(expected, 8);
    expected.indexident[8] = 10000;
    std::fill_n(expected.res.begin() + 8 * 6, 6, 10000.0);
    EXPECT_EQ(listing(everything(file, ten)), listing(expected)) << "index values are never lossy: their gap is 0";
}

TEST(MultiEntityResults, ThreeThousandStatesOneByOne)
{
    KobFile file;
    MultiEntityResults call{1};
    ASSERT_EQ(call.write(file), fine);
    const auto before = OpenIdentifiers::now();
    for (std::int32_t row = 1; row < 3000; ++row) ASSERT_EQ(call.one_at(row).write(file), fine) << row;
    EXPECT_EQ(OpenIdentifiers::now().added_since(before), "");
    const MultiEntityResults expected{3000};
    EXPECT_EQ(listing(everything(file, expected)), listing(all_of(expected)));
}

TEST(MultiEntityResults, TheChunkSizeIsThatOfTheFirstWrite)
{
    struct ChunkSize {
        explicit ChunkSize(std::int32_t size) { KOB_SET_CHUNK_SIZE(&size); }
        ~ChunkSize()
        {
            const std::int32_t initial = 1;
            KOB_SET_CHUNK_SIZE(&initial);
        }
    };
    const ChunkSize restored{16};
    KobFile file;
    MultiEntityResults call{2};
    ASSERT_EQ(call.write(file), fine);
    const ChunkSize other{64};
    for (std::int32_t row = 2; row < 40; ++row) ASSERT_EQ(call.one_at(row).write(file), fine);
    const MultiEntityResults expected{40};
    EXPECT_EQ(listing(everything(file, expected)), listing(all_of(expected)));
    const Hid res{H5Dopen2(file.block(place), "res", H5P_DEFAULT)};
    const Hid creation{H5Dget_create_plist(res)};
    std::array<hsize_t, 3> chunk{};
    ASSERT_EQ(H5Pget_chunk(creation, 3, chunk.data()), 3);
    EXPECT_EQ(chunk, (std::array<hsize_t, 3>{16, 3, 2}));
}

TEST(MultiEntityResults, ComplexStates)
{
    for (const std::int32_t size : {16, 32}) {
        SCOPED_TRACE(size);
        KobFile file;
        MultiEntityResults call{2, size};
        ASSERT_EQ(call.write(file), fine);
        ASSERT_EQ(call.one_at(2).write(file), fine);
        ASSERT_EQ(call.one_at(4).write(file), fine);
        const MultiEntityResults five{5, size};
        auto expected = all_of(five);
        clear_state(expected, 3);
        EXPECT_EQ(listing(everything(file, five)), listing(expected));
    }
}

TEST(MultiEntityResults, ValueSizeChoosesKeyAndPrecision)
{
    struct Case {
        std::int32_t value_size;
        std::int32_t key;
        bool stored_floats;
    };
    for (const Case c : {Case{4, read_real, true}, Case{8, read_real, false}, Case{16, read_complex, true},
                         Case{32, read_complex, false}, Case{0, read_real, false}, Case{12, read_real, false},
                         Case{64, read_real, false}}) {
        SCOPED_TRACE(c.value_size);
        KobFile file;
        MultiEntityResults written{2, c.value_size};
        written.dmpswitch = 1;
        written.operators = {"a", "b"};
        written.weight = {0.1, 0.2, 0.3};
        written.indexval.front() = 0.1;
        written.res.front() = 0.1;
        ASSERT_EQ(written.write(file), fine);
        auto got = untouched(written);
        EXPECT_EQ(got.read(file.block(place), 2), (Outcome{c.key, ""}));
        auto expected = all_of(written);
        if (c.stored_floats) {
            for (auto* values : {&expected.indexval, &expected.weight, &expected.res}) *values = as_floats(*values);
        }
        EXPECT_EQ(listing(got), listing(expected));
    }
}

TEST(MultiEntityResults, FourByteInputIsEveryFloatingArrayOfTheCall)
{
    for (const std::int32_t size : {4, 8, 16, 32, 0}) {
        SCOPED_TRACE(size);
        KobFile file;
        MultiEntityResults call{2, size + four_byte_memory};
        call.dmpswitch = 1;
        call.operators = {"a", "b"};
        call.weight = {0.1, 0.2, 0.3};
        call.indexval.front() = 0.1;
        call.res.front() = 0.1;
        ASSERT_EQ(call.write(file), fine);
        auto expected = call;
        ASSERT_EQ(call.one_at(2).write(file), fine);
        auto three = call;
        three.hold(3);
        put_state(three, 0, expected, 0);
        for (auto* values : {&three.indexval, &three.weight, &three.res}) *values = as_floats(*values);
        EXPECT_EQ(listing(everything(file, three)), listing(all_of(three)));
        const Hid res{H5Dopen2(file.block(place), "res", H5P_DEFAULT)};
        EXPECT_EQ(H5Tget_size(Hid{H5Dget_type(res)}), size == 4 || size == 16 ? 4U : 8U);
    }
}

TEST(MultiEntityResults, FurtherCallsLeaveTheStaticPart)
{
    KobFile file;
    MultiEntityResults call{1};
    call.fswitch = 1;
    call.fid = {7, 8, 9};
    call.dmpswitch = 1;
    call.operators = {"a", "b"};
    call.weight = {1, 2, 3};
    ASSERT_EQ(call.write(file), fine);
    auto expected = call;
    call.one_at(1);
    call.etypframe = "LOCAL";
    call.fswitch = 3; // not looked at
    call.entid = {91, 92, 93};
    call.fid = {70, 80, 90};
    call.operators = {"x", "y"};
    call.weight = {4, 5, 6};
    ASSERT_EQ(call.write(file), fine);
    expected.hold(2);
    EXPECT_EQ(listing(everything(file, expected)), listing(all_of(expected)));
}

TEST(MultiEntityResults, AFurtherCallNeedsNoStaticArrays)
{
    KobFile file;
    MultiEntityResults call{1};
    ASSERT_EQ(call.write(file), fine);
    call.one_at(1);
    call.entid = {};
    ASSERT_EQ(call.write(file), fine);
    EXPECT_EQ(stored_ints(file.block(place), "entid"), (Ints{11, 12, 13}));
    EXPECT_EQ(stored_ints(file.block(place), "nstate"), Ints{2});
}

TEST(MultiEntityResults, NoStatesMakeAnEmptySeriesAndChangeNoOther)
{
    KobFile file;
    const MultiEntityResults none{0};
    ASSERT_EQ(none.write(file), fine);
    const auto block = file.block(place);
    EXPECT_EQ(stored_ints(block, "nstate"), Ints{0});
    EXPECT_EQ(link_names(block), (std::vector<std::string>{"entid", "fidglob"}));
    EXPECT_EQ(listing(everything(file, none)), listing(all_of(none)));

    const MultiEntityResults two{2};
    ASSERT_EQ(two.write(file), fine);
    ASSERT_EQ(none.write(file), fine);
    EXPECT_EQ(listing(everything(file, two)), listing(all_of(two)));
}

TEST(MultiEntityResults, NoIndexValuesAndSeveral)
{
    for (const std::int32_t nindex : {0, 3}) {
        SCOPED_TRACE(nindex);
        KobFile file;
        MultiEntityResults call{2};
        call.nindex = nindex;
        call.hold(2);
        ASSERT_EQ(call.write(file), fine);
        ASSERT_EQ(call.one_at(2).write(file), fine);
        auto three = call;
        three.hold(3);
        EXPECT_EQ(has_link(file.block(place), "indexident"), nindex > 0);
        EXPECT_EQ(listing(everything(file, three)), listing(all_of(three)));
    }
}

TEST(MultiEntityResults, CountsOfOneSevenAndEight)
{
    for (const std::int32_t nent : {1, 7, 8}) {
        SCOPED_TRACE(nent);
        KobFile file;
        MultiEntityResults call{1};
        call.nent = nent;
        call.ncoo = 1;
        call.entid.resize(static_cast<std::size_t>(nent));
        call.hold(1);
        call.filter_flags = 1 + 2;
        call.filter_params = {0, 5};
        ASSERT_EQ(call.write(file), fine);
        ASSERT_EQ(call.one_at(1).write(file), fine);
        auto two = call;
        two.hold(2);
        EXPECT_EQ(listing(everything(file, two)), listing(nent == 8 ? all_of(two, 2, {0, 5}) : all_of(two)))
            << "the first write decides on the filters";
    }
}

TEST(MultiEntityResults, NoEntities)
{
    KobFile file;
    MultiEntityResults call{2};
    call.nent = 0;
    call.entid.clear();
    call.hold(2);
    ASSERT_EQ(call.write(file), fine);
    EXPECT_EQ(listing(everything(file, call)), listing(all_of(call)));
    ASSERT_EQ(call.one_at(2).write(file), fine);
    EXPECT_EQ(stored_ints(file.block(place), "nstate"), Ints{3});
}

TEST(MultiEntityResults, AnotherFrameSwitchEndsTheFirstWriteAfterTheIdentifiers)
{
    KobFile file;
    MultiEntityResults call{1};
    call.fswitch = 2;
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(call.write(file), (Outcome{-123, ""})); }), "") << "closed on failure, too";
    EXPECT_EQ(link_names(file.block(place)), (std::vector<std::string>{"entid"}));
}

TEST(MultiEntityResults, FramesOperatorsAndWeights)
{
    for (const std::int32_t fswitch : {0, 1}) {
        for (const std::int32_t dmpswitch : {0, 1, 2}) {
            KobFile file;
            MultiEntityResults call{2};
            call.fswitch = fswitch;
            call.fid = {8, 9, 10};
            call.dmpswitch = dmpswitch;
            call.operators = {std::string(256, 'm'), "SUM"};
            call.weight = {0.5, 0.25, -1};
            ASSERT_EQ(call.write(file), fine);
            EXPECT_EQ(listing(everything(file, call)), listing(all_of(call)));
        }
    }
}

TEST(MultiEntityResults, ThePlaceFollowsSeriesZoneAndSet)
{
    KobFile file;
    MultiEntityResults block{1};
    block.set = 2;
    EXPECT_EQ(block.write(file), fine);
    file.block("multistate/TIME/multientityresults/NODE/DISPLACEMENT/ZONE5_set2/kobblock");
    block.set = -1;
    block.zoneid = -1;
    block.etypzone = "";
    block.series = "MODES";
    EXPECT_EQ(block.write_c(file), fine);
    file.block("multistate/MODES/multientityresults/NODE/DISPLACEMENT/kobblock");
}

TEST(MultiEntityResults, TextsOf256CharactersWithoutAnEnd)
{
    KobFile file;
    MultiEntityResults written{1};
    written.series = std::string(256, 'S');
    written.etyp = std::string(256, 'E');
    written.etypvar = std::string(256, 'V');
    written.etypzone = std::string(256, 'Z');
    written.etypframe = std::string(256, 'F');
    ASSERT_EQ(written.write(file), fine);
    auto got = untouched(written);
    const auto path = "multistate/" + std::string(256, 'S') + "/multientityresults/" + std::string(256, 'E') + "/" +
                      std::string(256, 'V') + "/" + std::string(256, 'Z') + "5/kobblock";
    EXPECT_EQ(got.read(file.block(path), 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(got), listing(all_of(written)));
}

TEST(MultiEntityResults, NothingStaysOpen)
{
    KobFile file;
    MultiEntityResults call{2};
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(call.write(file), fine); }), "");
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(call.one_at(2).write(file), fine); }), "");
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(call.select(1, {1, 3, 2}, {3, 0, 0}).write_c(file), fine); }), "");
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(call.select(7, {}, {}).write_c(file).status, -999); }), "");
    const auto block = file.block(place);
    EXPECT_EQ(left_open_by([&] {
                  auto got = MultiEntityResults{4};
                  EXPECT_EQ(got.read(block, 2).status, read_real);
                  got.nstate = 1;
                  EXPECT_EQ(got.read_c(block, 4).status, read_real);
              }),
              "");
}

TEST(MultiEntityResults, OtherSizesThanTheBlockHoldsAreRefused)
{
    KobFile file;
    const MultiEntityResults written{2};
    ASSERT_EQ(written.write(file), fine);
    MultiEntityResults wider{4};
    wider.ncoo = 3;
    wider.hold(4);
    EXPECT_EQ(wider.write(file).status, -6031);
    const MultiEntityResults complex{3, 32};
    EXPECT_EQ(complex.write(file).status, -3020);
    EXPECT_EQ(listing(everything(file, written)), listing(all_of(written))) << "a refused write leaves it readable";
}

// ---- selections

TEST(MultiEntityResultsSelection, ABlockNamesAbsoluteRows)
{
    KobFile file;
    MultiEntityResults call{10};
    ASSERT_EQ(call.write(file), fine);
    auto expected = all_of(call);
    MultiEntityResults two;
    two.hold(2, 3, 0.25).select(1, {2, 3, 2}, {3, 0, 0});
    ASSERT_EQ(two.write_c(file), fine);
    put_state(expected, 3, two, 0);
    put_state(expected, 4, two, 1);
    EXPECT_EQ(listing(everything(file, call)), listing(expected));
    EXPECT_EQ(stored_ints(file.block(place), "nstate"), Ints{10});
}

TEST(MultiEntityResultsSelection, ABlockAtTheEndExtendsTheSeries)
{
    KobFile file;
    MultiEntityResults call{2};
    ASSERT_EQ(call.write(file), fine);
    call.hold(3, 2).select(1, {3, 3, 2}, {2, 0, 0});
    ASSERT_EQ(call.write_c(file), fine);
    call.hold(1, 6).select(1, {1, 3, 2}, {6, 0, 0});
    ASSERT_EQ(call.write_c(file), fine);
    const MultiEntityResults seven{7};
    auto expected = all_of(seven);
    clear_state(expected, 5);
    EXPECT_EQ(listing(everything(file, seven)), listing(expected));
}

TEST(MultiEntityResultsSelection, ABlockMayCreateTheSeries)
{
    KobFile file;
    MultiEntityResults call;
    call.hold(2, 1).select(1, {2, 3, 2}, {1, 0, 0});
    ASSERT_EQ(call.write_c(file), fine);
    const MultiEntityResults three{3};
    auto expected = all_of(three);
    clear_state(expected, 0);
    EXPECT_EQ(listing(everything(file, three)), listing(expected));
}

TEST(MultiEntityResultsSelection, ABlockOfSomeEntitiesLeavesTheOthers)
{
    KobFile file;
    MultiEntityResults call{2};
    ASSERT_EQ(call.write(file), fine);
    // entities 1 and 2, component 1, of the states 1 and 2; state 2 is new
    call.hold(2, 1);
    call.res = {-1, -2, -3, -4};
    call.select(1, {2, 2, 1}, {1, 1, 1});
    ASSERT_EQ(call.write_c(file), fine);
    const MultiEntityResults three{3};
    auto expected = all_of(three);
    std::fill_n(expected.res.begin() + 12, 6, 0);
    expected.res[6 + 3] = -1;
    expected.res[6 + 5] = -2;
    expected.res[12 + 3] = -3;
    expected.res[12 + 5] = -4;
    EXPECT_EQ(listing(everything(file, three)), listing(expected));
}

TEST(MultiEntityResultsSelection, AComplexBlockHasFourExtents)
{
    KobFile file;
    MultiEntityResults call{2, 32};
    ASSERT_EQ(call.write(file), fine);
    auto expected = all_of(call);
    call.hold(1, 1);
    call.res = {-1, -2};
    call.select(1, {1, 1, 1, 2}, {1, 2, 1, 0});
    ASSERT_EQ(call.write_c(file), fine);
    expected.res[12 + 10] = -1;
    expected.res[12 + 11] = -2;
    auto like = call;
    like.hold(2);
    EXPECT_EQ(listing(everything(file, like)), listing(expected));
}

TEST(MultiEntityResultsSelection, FourByteInputInABlock)
{
    KobFile file;
    MultiEntityResults call{1, 8 + four_byte_memory};
    ASSERT_EQ(call.write(file), fine);
    call.hold(2, 1).select(1, {2, 3, 2}, {1, 0, 0});
    ASSERT_EQ(call.write_c(file), fine);
    const MultiEntityResults three{3};
    EXPECT_EQ(listing(everything(file, three)), listing(all_of(three)));
}

TEST(MultiEntityResultsSelection, ABlockOutsideIsRefused)
{
    // a state before the first, an entity too many, a component before the first
    for (const std::vector<std::int64_t>& start : {std::vector<std::int64_t>{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}}) {
        for (const bool existing : {false, true}) {
            SCOPED_TRACE(existing);
            KobFile file;
            MultiEntityResults call{2};
            if (existing) {
                ASSERT_EQ(call.write(file), fine);
            }
            call.hold(1).select(1, {1, 3, 2}, start);
            EXPECT_EQ(call.write_c(file).status, -6031);
            EXPECT_EQ(has_link(file.block(place), "res"), existing);
        }
    }
}

TEST(MultiEntityResultsSelection, PointsNameAbsoluteRowsAndIndexRowsReachTheLargest)
{
    KobFile file;
    MultiEntityResults call{2};
    ASSERT_EQ(call.write(file), fine);
    MultiEntityResults points;
    points.hold(4, 0, 0.125);
    points.res = {-1, -2, -3};
    points.select(2, {3}, {3, 0, 1, 0, 2, 0, 1, 1, 1});
    ASSERT_EQ(points.write_c(file), fine);
    MultiEntityResults four{4};
    auto expected = all_of(four);
    expected.indexident = points.indexident;
    expected.indexval = points.indexval;
    std::fill_n(expected.res.begin() + 12, 12, 0);
    expected.res[3 * 6 + 1] = -1;
    expected.res[0 * 6 + 4] = -2;
    expected.res[1 * 6 + 3] = -3;
    EXPECT_EQ(listing(everything(file, four)), listing(expected));
}

TEST(MultiEntityResultsSelection, PointsInTheFirstStatesKeepLaterIndexRows)
{
    KobFile file;
    const MultiEntityResults written{5};
    ASSERT_EQ(written.write(file), fine);
    MultiEntityResults points;
    points.hold(2, 0, 0.125);
    points.res = {-1};
    points.select(2, {1}, {1, 2, 1});
    ASSERT_EQ(points.write_c(file), fine);
    auto expected = all_of(written);
    std::copy(points.indexval.begin(), points.indexval.end(), expected.indexval.begin());
    expected.res[6 + 5] = -1;
    EXPECT_EQ(listing(everything(file, written)), listing(expected));
    EXPECT_EQ(stored_ints(file.block(place), "nstate"), Ints{5});
}

TEST(MultiEntityResultsSelection, TheLargestStateOfManyPointsIsFoundWhereverItStands)
{
    for (const std::size_t count : {1, 7, 8, 9, 16, 19}) {
        for (std::size_t where = 0; where < count; ++where) {
            SCOPED_TRACE(std::to_string(count) + " points, largest at " + std::to_string(where));
            KobFile file;
            MultiEntityResults points;
            points.hold(6);
            points.res.assign(count, 0);
            std::vector<std::int64_t> coordinates;
            for (std::size_t i = 0; i < count; ++i) {
                points.res[i] = static_cast<double>(i) + 1;
                coordinates.insert(coordinates.end(), {i == where ? 5 : static_cast<std::int64_t>(i % 5), 0, 0});
            }
            points.select(2, {static_cast<std::int64_t>(count)}, coordinates);
            ASSERT_EQ(points.write_c(file), fine);
            EXPECT_EQ(stored_ints(file.block(place), "nstate"), Ints{6});
            EXPECT_EQ(stored_ints(file.block(place), "indexident"), (Ints{10, 20, 30, 40, 50, 60}));
            EXPECT_EQ(stored_reals(file.block(place), "res")[5 * 6], static_cast<double>(where) + 1);
        }
    }
}

TEST(MultiEntityResultsSelection, ComplexPointsHaveFourCoordinates)
{
    KobFile file;
    MultiEntityResults points{1, 16};
    points.hold(2);
    points.res = {-1, -2};
    points.select(2, {2}, {1, 2, 0, 1, 0, 0, 1, 0});
    ASSERT_EQ(points.write_c(file), fine);
    MultiEntityResults two{2, 16};
    auto expected = all_of(two);
    std::fill(expected.res.begin(), expected.res.end(), 0);
    expected.res[12 + 9] = -1;
    expected.res[2] = -2;
    EXPECT_EQ(listing(everything(file, two)), listing(expected));
}

TEST(MultiEntityResultsSelection, APointOutsideIsRefused)
{
    for (const std::vector<std::int64_t>& points :
         {std::vector<std::int64_t>{0, 3, 0}, {1, 0, 2}, {0, -1, 0}, {-1, 0, 0, 1, 0, 0}}) {
        for (const bool existing : {false, true}) {
            SCOPED_TRACE(existing);
            KobFile file;
            MultiEntityResults call{2};
            if (existing) {
                ASSERT_EQ(call.write(file), fine);
            }
            call.hold(2).select(2, {static_cast<std::int64_t>(points.size()) / 3}, points);
            EXPECT_EQ(call.write_c(file).status, -6032);
            EXPECT_EQ(has_link(file.block(place), "res"), existing);
        }
    }
}

TEST(MultiEntityResultsSelection, ARefusedWriteLeavesTheSeriesReadable)
{
    KobFile file;
    const MultiEntityResults written{2};
    ASSERT_EQ(written.write(file), fine);
    MultiEntityResults call;
    call.hold(1).select(1, {1, 3, 2}, {5, 1, 0}); // an entity too many
    EXPECT_EQ(call.write_c(file).status, -6031);
    call.hold(6).select(2, {1}, {5, 3, 0});
    EXPECT_EQ(call.write_c(file).status, -6032);
    EXPECT_EQ(listing(everything(file, written)), listing(all_of(written)));
}

TEST(MultiEntityResultsSelection, AFailedFirstWriteMayBeTriedAgain)
{
    KobFile file;
    MultiEntityResults call{2};
    call.select(1, {1, 3, 2}, {5, 1, 0});
    ASSERT_EQ(call.write_c(file).status, -6031);
    call.s = 2;
    ASSERT_EQ(call.write(file), fine);
    EXPECT_EQ(listing(everything(file, call)), listing(all_of(call)));
}

TEST(MultiEntityResultsSelection, AnUnknownModeIsRefused)
{
    for (const std::int32_t mode : {3, -1}) {
        KobFile file;
        MultiEntityResults call{1};
        call.select(mode, {1, 3, 2}, {0, 0, 0});
        const std::string line =
            "KOB ERROR writing block multientityresults - invalid mode " + std::to_string(mode) + "\n";
        EXPECT_EQ(call.write_c(file), (Outcome{-999, line}));
        const auto block = file.block(place);
        EXPECT_EQ(link_names(block), (std::vector<std::string>{"entid", "fidglob"})) << "the static part stays";
        EXPECT_EQ(stored_ints(block, "block"), Ints{read_real});
        call.s = 1;
        EXPECT_EQ(call.write(file), fine);
        EXPECT_EQ(listing(everything(file, call)), listing(all_of(call)));
    }
}

TEST(MultiEntityResultsSelection, ModeZeroAndRunsOfStatesAreThePlainCall)
{
    KobFile file;
    MultiEntityResults call{2};
    call.mode = 7; // ignored, a run of states is given
    ASSERT_EQ(call.write_c(file), fine);
    call.one_at(2);
    call.mode = 0;
    ASSERT_EQ(call.write_c(file), fine);
    call.hold(1, 0, 0.25);
    call.s = 1;
    call.mode = 1;
    call.count = {1, 3, 2};
    call.start = {2, 0, 0}; // ignored as well
    ASSERT_EQ(call.write_c(file), fine);
    const MultiEntityResults three{3};
    auto expected = all_of(three);
    put_state(expected, 0, call);
    EXPECT_EQ(listing(everything(file, three)), listing(expected));

    std::int32_t status = 77;
    MultiEntityResults null;
    null.one_at(1);
    KOB_WRITE_MULTIENTITYRESULTC(file.address(), null.series.data(), null.etyp.data(), &null.nent, null.etypvar.data(),
                                 &null.ncoo, null.etypzone.data(), &null.zoneid, null.etypframe.data(), &null.fswitch,
                                 &null.dmpswitch, &null.nindex, null.indexident.data(), null.indexval.data(),
                                 null.entid.data(), &null.fidglob, nullptr, nullptr, nullptr, null.res.data(),
                                 &null.set, &null.s, &null.filter_flags, null.filter_params.data(), &null.value_size,
                                 &null.mode, nullptr, nullptr, &status);
    EXPECT_EQ(status, 0) << "arrays that no switch asks for may be null";
}

// ---- the worker on an open group

TEST(MultiEntityResults2, ARunAppendsNothingTwiceAndReportsTheNumberOfStates)
{
    KobFile file;
    const auto block = open_place(file);
    std::int32_t states = 77;
    MultiEntityResults call{3};
    EXPECT_EQ(left_open_by([&] { EXPECT_EQ(call.write2(block, 8, states), fine); }), "");
    EXPECT_EQ(states, 3);
    EXPECT_EQ(call.write2(block, 8, states), fine);
    EXPECT_EQ(states, 3);
    MultiEntityResults run{2};
    EXPECT_EQ(run.write2(block, 8, states), fine);
    EXPECT_EQ(states, 3);
    call.hold(1, 5).select(1, {1, 3, 2}, {5, 0, 0});
    EXPECT_EQ(call.write2(block, 8, states), fine);
    EXPECT_EQ(states, 6);
    call.hold(8);
    call.res = {-1};
    call.select(2, {1}, {7, 0, 0});
    EXPECT_EQ(call.write2(block, 8, states), fine);
    EXPECT_EQ(states, 8);
    EXPECT_EQ(stored_ints(block, "nstate"), Ints{8});
}

TEST(MultiEntityResults2, MemorySizeIsThatOfEveryFloatingArray)
{
    KobFile file;
    const auto block = open_place(file);
    std::int32_t states = 77;
    MultiEntityResults written{2};
    written.dmpswitch = 1;
    written.operators = {"a", "b"};
    written.weight = {0.5, 0.25, 0.125};
    ASSERT_EQ(written.write2(block, 4, states), fine);
    EXPECT_EQ(listing(everything(file, written)), listing(all_of(written)));
}

TEST(MultiEntityResults2, WhatCannotBeWritten)
{
    KobFile file;
    const auto block = open_place(file);
    MultiEntityResults call{1};
    call.s = -1;
    std::int32_t states = 77;
    EXPECT_EQ(call.write2(block, 8, states), (Outcome{-999, "KOB ERROR writing block multientityresults\n"}));
    EXPECT_EQ(states, 0);
    EXPECT_EQ(attribute_names(block), std::vector<std::string>{});

    call.s = 1;
    states = 77;
    EXPECT_EQ(call.write2(-5, 8, states), (Outcome{-5, "KOB ERROR writing block multientityresults\n"}));
    EXPECT_EQ(states, 0);

    call.select(9, {}, {});
    EXPECT_EQ(call.write2(block, 8, states),
              (Outcome{-999, "KOB ERROR writing block multientityresults - invalid mode 9\n"}));
}

// ---- readers

TEST(MultiEntityResultsReaders, PassZeroReadsAttributesAndStatesPassOneAttributes)
{
    KobFile file;
    const MultiEntityResults written{3};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (const auto& [pass, sections] :
         {std::pair{0, section::attributes | section::index}, std::pair{1, section::attributes}}) {
        auto plain = untouched(written);
        EXPECT_EQ(plain.read(block, pass), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(plain), listing(expected_from(written, sections)));
        auto c = untouched(written);
        EXPECT_EQ(c.read_c(block, pass), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(c), listing(expected_from(written, sections)));
    }
    auto two = untouched(written);
    EXPECT_EQ(two.read_c(block, 2), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(two), listing(all_of(written)));
}

TEST(MultiEntityResultsReaders, AnotherPassIsRefused)
{
    KobFile file;
    const MultiEntityResults written{1};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    const auto line = [](std::int32_t pass) {
        return "KOB INTERNAL ERROR reading \"multientityresults\" block - ipass = " + std::to_string(pass) + "\n";
    };
    for (const std::int32_t pass : {3, 4, 5, -1, 1024, std::numeric_limits<std::int32_t>::min()}) {
        auto got = untouched(written);
        EXPECT_EQ(got.read(block, pass), (Outcome{-3, line(pass)}));
        EXPECT_EQ(listing(got), listing(untouched(written)));
    }
    for (const std::int32_t pass : {6, 7, 1030, 2048, -2048}) {
        auto got = untouched(written);
        EXPECT_EQ(got.read_c(block, pass), (Outcome{-3, line(pass)}));
    }
}

TEST(MultiEntityResultsReaders, HandlesAndKindsThatDoNotFitAreRefused)
{
    KobFile file;
    const MultiEntityResults written{1};
    ASSERT_EQ(written.write(file), fine);
    const Outcome no_handle{-1, "KOB ERROR - header not found\n"};
    const Outcome other_key{-1, "KOB ERROR - wrong block key 1000, 1050 or 1051 expected\n"};
    const Outcome no_key{-4002, missing_attribute("block", 2, 4)};
    auto got = written;
    const auto expect_refusal = [&](std::int64_t block, const Outcome& refusal) {
        for (const std::int32_t pass : {0, 1, 2}) EXPECT_EQ(got.read(block, pass), refusal) << pass;
        got.nstate = 0;
        for (const std::int32_t pass : {0, 1, 2, 3, 4, 5}) EXPECT_EQ(got.read_c(block, pass), refusal) << pass;
        EXPECT_EQ(got.read2(block, 15), refusal);
        got.nstate = 1;
    };
    expect_refusal(-1, no_handle);
    const auto block = file.block(place);
    set_int_attribute(block, "block", 1000);
    expect_refusal(block, other_key);
    ASSERT_GE(H5Adelete(block, "block"), 0);
    expect_refusal(block, no_key);
    EXPECT_EQ(listing(got), listing(written));
}

TEST(MultiEntityResultsReaders, PassThreeReadsTheValuesOfOneState)
{
    for (const std::int32_t size : {8, 32}) {
        KobFile file;
        const MultiEntityResults written{5, size};
        ASSERT_EQ(written.write(file), fine);
        const auto block = file.block(place);
        for (std::int32_t row = 0; row < 5; ++row) {
            MultiEntityResults like{1, size};
            auto got = untouched(like);
            got.nent = 3; // inputs
            got.ncoo = 2;
            got.nstate = row;
            auto expected = got;
            expected.res = like.hold(1, row).res;
            expected.filter_flags = 0;
            expected.filter_params = {};
            EXPECT_EQ(got.read_c(block, 3), (Outcome{size == 32 ? read_complex : read_real, ""}));
            EXPECT_EQ(listing(got), listing(expected));
        }
    }
}

TEST(MultiEntityResultsReaders, PassFourReadsTheIndexRowAsWell)
{
    KobFile file;
    MultiEntityResults written{1};
    written.nindex = 2;
    written.hold(5);
    written.s = 5;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (std::int32_t row = 0; row < 5; ++row) {
        auto like = written;
        like.hold(1, row);
        auto got = untouched(like);
        got.nent = 3;
        got.ncoo = 2;
        got.nindex = 2;
        got.nstate = row;
        auto expected = got;
        expected.indexident = like.indexident;
        expected.indexval = like.indexval;
        expected.res = like.res;
        expected.filter_flags = 0;
        expected.filter_params = {};
        EXPECT_EQ(got.read_c(block, 4), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(got), listing(expected));
    }
}

TEST(MultiEntityResultsReaders, AStateThatIsNotThereIsOutside)
{
    KobFile file;
    const MultiEntityResults written{2};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (const std::int32_t row : {2, -1, std::numeric_limits<std::int32_t>::max()}) {
        for (const std::int32_t pass : {3, 4}) {
            MultiEntityResults got{1};
            got.nstate = row;
            const auto before = got;
            EXPECT_EQ(got.read_c(block, pass).status, -6031) << row;
            EXPECT_EQ(listing(got), listing(before));
        }
    }
}

TEST(MultiEntityResultsReaders, SelectionsNameAbsoluteRows)
{
    KobFile file;
    const MultiEntityResults written{6};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    MultiEntityResults like{1};
    like.hold(2, 3);
    {
        auto got = like;
        got.res.assign(4, 0);
        got.indexident.assign(2, 0);
        got.indexval.assign(2, 0);
        got.select(1, {2, 2, 1}, {3, 1, 1});
        got.nstate = -77; // not looked at
        EXPECT_EQ(got.read_c(block, 4), (Outcome{read_real, ""}));
        EXPECT_EQ(got.indexident, (std::vector<std::int32_t>{40, 50}));
        EXPECT_EQ(got.indexval, (std::vector<double>{0.75, 1.0}));
        EXPECT_EQ(got.res, (std::vector<double>{3003.5, 3005.5, 4003.5, 4005.5}));
        got.indexident = {0, 0};
        got.res.assign(4, 0);
        EXPECT_EQ(got.read_c(block, 3), (Outcome{read_real, ""}));
        EXPECT_EQ(got.indexident, (std::vector<std::int32_t>{0, 0})) << "pass 3 reads values alone";
        EXPECT_EQ(got.res, (std::vector<double>{3003.5, 3005.5, 4003.5, 4005.5}));
    }
    {
        auto got = like;
        got.res.assign(3, 0);
        got.indexident.assign(3, 0);
        got.indexval.assign(3, 0);
        got.select(2, {3}, {5, 0, 1, 0, 2, 0, 5, 2, 1});
        EXPECT_EQ(got.read_c(block, 4), (Outcome{read_real, ""}));
        EXPECT_EQ(got.indexident, (std::vector<std::int32_t>{60, 10, 60})) << "one row for each point";
        EXPECT_EQ(got.indexval, (std::vector<double>{1.25, 0, 1.25}));
        EXPECT_EQ(got.res, (std::vector<double>{5001.5, 4.5, 5005.5}));
    }
    {
        auto got = like;
        got.select(1, {2, 3, 2}, {5, 0, 0});
        EXPECT_EQ(got.read_c(block, 3).status, -6031);
        got.select(1, {1, 3, 2}, {-1, 0, 0});
        EXPECT_EQ(got.read_c(block, 3).status, -6031);
        got.select(2, {1}, {6, 0, 0});
        EXPECT_EQ(got.read_c(block, 3).status, -6032);
        got.select(2, {1}, {0, 3, 0});
        EXPECT_EQ(got.read_c(block, 4).status, -6032);
    }
}

TEST(MultiEntityResultsReaders, ComplexSelections)
{
    KobFile file;
    const MultiEntityResults written{3, 32};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    MultiEntityResults got;
    got.res.assign(2, 0);
    got.select(1, {1, 1, 1, 2}, {2, 2, 1, 0});
    EXPECT_EQ(got.read_c(block, 3), (Outcome{read_complex, ""}));
    EXPECT_EQ(got.res, (std::vector<double>{2010.5, 2011.5}));
    got.select(2, {2}, {2, 0, 0, 1, 1, 1, 0, 0});
    EXPECT_EQ(got.read_c(block, 3), (Outcome{read_complex, ""}));
    EXPECT_EQ(got.res, (std::vector<double>{2001.5, 1004.5}));
}

TEST(MultiEntityResultsReaders, FourByteOutput)
{
    KobFile file;
    MultiEntityResults written{3};
    written.dmpswitch = 1;
    written.operators = {"a", "b"};
    written.weight = {0.1, 0.2, 0.3};
    written.indexval.back() = 0.1;
    written.res.back() = 0.1;
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    auto rounded = written;
    for (auto* values : {&rounded.indexval, &rounded.weight, &rounded.res}) *values = as_floats(*values);
    auto all = untouched(written);
    EXPECT_EQ(all.read_c(block, 2 + four_byte_memory), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(all), listing(all_of(rounded)));
    auto two = untouched(written);
    EXPECT_EQ(two.read2(block, 15, 4), (Outcome{read_real, ""}));
    EXPECT_EQ(listing(two), listing(all_of(rounded)));
    MultiEntityResults state;
    state.nstate = 2;
    EXPECT_EQ(state.read_c(block, 4 + four_byte_memory), (Outcome{read_real, ""}));
    EXPECT_EQ(state.res.back(), static_cast<double>(0.1F));
    EXPECT_EQ(state.indexval.back(), static_cast<double>(0.1F));
    EXPECT_EQ(state.indexident, (std::vector<std::int32_t>{30}));
}

TEST(MultiEntityResultsReaders, PassFiveReadsIdentifiersAlone)
{
    for (const std::int32_t bit : {0, four_byte_memory}) {
        KobFile file;
        MultiEntityResults written{2};
        written.fswitch = 1;
        written.fid = {7, 8, 9};
        written.dmpswitch = 1;
        written.operators = {"a", "b"};
        written.weight = {0.5, 0.25, 0.125};
        ASSERT_EQ(written.write(file), fine);
        auto got = untouched(written);
        got.nent = written.nent; // inputs
        got.ncoo = written.ncoo;
        got.fswitch = written.fswitch;
        got.dmpswitch = written.dmpswitch;
        auto expected = got;
        take(expected, written, section::identifiers);
        EXPECT_EQ(got.read_c(file.block(place), 5 + bit), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(got), listing(expected)) << "filters are those of the values: left alone";
    }
}

TEST(MultiEntityResultsReaders, SectionsOneByOne)
{
    KobFile file;
    const MultiEntityResults written{3};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    for (std::int32_t sections = 0; sections < 16; ++sections) {
        SCOPED_TRACE(sections);
        auto got = untouched(written);
        for (const auto field :
             {&MultiEntityResults::nent, &MultiEntityResults::ncoo, &MultiEntityResults::nindex,
              &MultiEntityResults::nstate, &MultiEntityResults::fswitch, &MultiEntityResults::dmpswitch}) {
            got.*field = written.*field;
        }
        auto expected = got;
        take(expected, written, sections);
        if ((sections & section::values) != 0) {
            expected.filter_flags = 0;
            expected.filter_params = {};
        }
        EXPECT_EQ(got.read2(block, sections), (Outcome{read_real, ""}));
        EXPECT_EQ(listing(got), listing(expected));
    }
}

TEST(MultiEntityResultsReaders, TheWorkerReadsSelections)
{
    KobFile file;
    const MultiEntityResults written{6};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    MultiEntityResults got;
    got.res.assign(6, 0);
    got.select(1, {1, 3, 2}, {4, 0, 0});
    EXPECT_EQ(got.read2(block, section::index | section::values), (Outcome{read_real, ""}));
    EXPECT_EQ(got.indexident, (std::vector<std::int32_t>{50}));
    EXPECT_EQ(got.res, (std::vector<double>{4000.5, 4001.5, 4002.5, 4003.5, 4004.5, 4005.5}));
    got.res.assign(2, 0);
    got.select(2, {2}, {1, 0, 0, 5, 2, 1});
    EXPECT_EQ(got.read2(block, section::values), (Outcome{read_real, ""}));
    EXPECT_EQ(got.res, (std::vector<double>{1000.5, 5005.5}));
}

TEST(MultiEntityResultsReaders, FiltersOfTheValuesAreReportedWhenValuesAreRead)
{
    KobFile file;
    MultiEntityResults written{2};
    written.filter_flags = 1 + 2 + 8 + 16 + 128;
    written.filter_params = {4, 7};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    MultiEntityResults state;
    state.nstate = 1;
    EXPECT_EQ(state.read_c(block, 3), (Outcome{read_real, ""}));
    EXPECT_EQ(state.filter_flags, 2 + 16 + 128);
    EXPECT_EQ(state.filter_params, (std::array<std::int32_t, 2>{4, 7}));
    auto all = untouched(written);
    EXPECT_EQ(all.read(block, 2), (Outcome{read_real, ""}));
    EXPECT_EQ(all.filter_flags, 2 + 16 + 128);
    EXPECT_EQ(all.filter_params, (std::array<std::int32_t, 2>{4, 7}));
}

TEST(MultiEntityResultsReaders, AnotherFrameSwitchInTheFileEndsTheRead)
{
    KobFile file;
    const MultiEntityResults written{1};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    set_int_attribute(block, "fswitch", 2);
    auto got = untouched(written);
    EXPECT_EQ(got.read(block, 2), (Outcome{-123, ""}));
    EXPECT_EQ(got.res, untouched(written).res);
    EXPECT_EQ(got.read(block, 0), (Outcome{read_real, ""}));
}

TEST(MultiEntityResultsReaders, TheFrameOfAllMayBeAnAttributeOrMissing)
{
    KobFile file;
    const MultiEntityResults written{1};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    ASSERT_GE(H5Ldelete(block, "fidglob", H5P_DEFAULT), 0);
    auto got = untouched(written);
    EXPECT_EQ(got.read(block, 2), (Outcome{read_real, ""}));
    EXPECT_EQ(got.fidglob, untouched(written).fidglob);
    const std::int32_t frame = 44;
    put_attribute(block, "fidglob", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &frame);
    EXPECT_EQ(got.read(block, 2), (Outcome{read_real, ""}));
    EXPECT_EQ(got.fidglob, 44);
}

TEST(MultiEntityResultsReaders, CountsThatTheFileDoesNotHoldAreRefused)
{
    KobFile file;
    const MultiEntityResults written{3};
    ASSERT_EQ(written.write(file), fine);
    const auto block = file.block(place);
    MultiEntityResults got{3};
    got.nstate = 4;
    EXPECT_EQ(got.read2(block, section::values), (Outcome{-6030, read_line(30, "res", 3, 8, 0, false)}));
    set_int_attribute(block, "nstate", 5);
    EXPECT_EQ(got.read(block, 2), (Outcome{-6030, read_line(30, "indexident", 2, 4, 0, false)}));
}

TEST(MultiEntityResults, APlaceThatCannotBeMadeIsReported)
{
    const Outcome refusal{-8, "KOB ERROR - kob_h5gopen - code -8, group multistate\n"};
    const MultiEntityResults block;
    const std::int64_t none = -1;
    EXPECT_EQ(block.write(&none), refusal);
    KobFile file;
    file.reopen(read_only);
    EXPECT_EQ(block.write(file), refusal);
}

TEST(MultiEntityResults, ADamagedDescriptionOfTheNumbersIsRefused)
{
    KobFile file;
    MultiEntityResults series{2, 4};
    ASSERT_EQ(series.write(file), fine);
    const auto written = all_of(series);
    file.close();
    // How a float is described: class, places of its bits, size, offset, precision, places again. A precision that
    // reaches beyond the four bytes makes HDF5 write there.
    const std::string sound{"\x11\x20\x1f\0\4\0\0\0\0\0\x20\0\x17\x08\0\x17", 16};
    const std::string damaged{"\x11\x20\x1f\0\4\0\0\0\0\0\x20\x80\x17\x08\0\x17", 16};
    ASSERT_EQ(damage_bytes(file.path(), sound, damaged), 2) << "indexval and res";
    file.reopen(update);
    auto got = series;
    EXPECT_EQ(got.read2(file.block(place), section::values), (Outcome{-6003, read_line(3, "res", 3, 8, -1, false)}));
    EXPECT_EQ(got.read2(file.block(place), section::index),
              (Outcome{-6003, read_line(3, "indexval", 3, 8, -1, false)}));
    MultiEntityResults next = series;
    EXPECT_EQ(next.one_at(2).write(file), (Outcome{-3010, write_line(10, "indexval", 3, 8, 4, 1, -1)}));
    file.close();
    ASSERT_EQ(damage_bytes(file.path(), damaged, sound), 2);
    file.reopen(update);
    EXPECT_EQ(listing(everything(file, series)), listing(written));
    EXPECT_EQ(next.write(file), fine);
}
