// SPDX-License-Identifier: BSD-3-Clause
// The table of work.
#include "rows.hpp"

#include "erase.hpp"
#include "large_blocks.hpp"
#include "merge.hpp"
#include "results.hpp"
#include "series.hpp"

namespace bench {
namespace {

const std::vector<std::string> five_variables{"DISPLACEMENT", "STRESS", "STRAIN", "TEMPERATURE", "REACTION"};

constexpr double mega = 1e6;

/// Five digits: the noise of smooth_field() is in the last one.
constexpr Packing deflate_6{6};
constexpr Packing deflate_1{1};
constexpr Packing rounded{6, 5};

// The tiny ones are too large to be stored in the object header, where the real ones are.

ResultSet small_results(Size size, std::int32_t states = 2000)
{
    return size == Size::real ? ResultSet{states, five_variables, 200, 3} : ResultSet{3, five_variables, 9, 3};
}

ResultSet large_results(Size size, std::int32_t value_size)
{
    return size == Size::real ? ResultSet{10, {"DISPLACEMENT"}, 1'000'000, 3, value_size}
                              : ResultSet{2, {"DISPLACEMENT"}, 7000, 3, value_size};
}

ResultSet packed_results(Size size, const Packing& packing)
{
    return size == Size::real ? ResultSet{2, {"DISPLACEMENT"}, 1'000'000, 3, 8, packing}
                              : ResultSet{2, {"DISPLACEMENT"}, 7000, 3, 8, packing};
}

SeriesSet series(Size size, const Packing& packing = {})
{
    return size == Size::real ? SeriesSet{200, 20'000, 3, packing} : SeriesSet{4, 2000, 3, packing};
}

SeriesSet long_series(Size size, bool stays_open = false)
{
    return {size == Size::real ? 10'000 : 5, 200, 3, {}, stays_open};
}

EraseSet erasing(Size size)
{
    const ResultSet results = small_results(size);
    return {results, results.states / 2};
}

ElementSet elements(Size size) { return size == Size::real ? ElementSet{5, 100'000, 8, 6} : ElementSet{2, 7000, 8, 6}; }

SparseSet sparse(Size size) { return size == Size::real ? SparseSet{1'000'000, 10} : SparseSet{4000, 10}; }

HexahedraSet hexahedra(Size size) { return {size == Size::real ? 1'000'000 : 7000}; }

MergeSet domains(Size size, bool is_ordered = false)
{
    return size == Size::real ? MergeSet{8, 10, 50, is_ordered} : MergeSet{3, 2, 16, is_ordered};
}

/// The values of a state.
double state_bytes(double nent, double ncoo) { return sizeof(double) * nent * ncoo; }

template <class Set> Side::Task task_on(typename Program<Set>::Task task, const Set& set)
{
    return [set, task](const std::string& file, Digest* digest) { return task(set, file, digest); };
}

template <class Set> Row write(std::string name, const Set& set, const Figures& figures)
{
    const auto side = [&set](const Program<Set>& program) {
        return Side{task_on(program.write, set), task_on(program.write, set)};
    };
    return {std::move(name), Row::Kind::write, side(Programs<Set>::ours), side(Programs<Set>::raw), figures};
}

template <class Set> Row read(std::string name, const Set& set, const Figures& figures)
{
    const auto side = [&set](const Program<Set>& program) {
        return Side{task_on(program.write, set), task_on(program.read, set)};
    };
    return {std::move(name), Row::Kind::read, side(Programs<Set>::ours), side(Programs<Set>::raw), figures};
}

Row list(std::string name, const ResultSet& set, const Figures& figures, Growth growth = {})
{
    const auto side = [&set](const Program<ResultSet>& program) {
        return Side{task_on(program.write, set), task_on(program.list, set)};
    };
    Row row{std::move(name), Row::Kind::read, side(Programs<ResultSet>::ours), side(Programs<ResultSet>::raw), figures};
    row.growth = std::move(growth);
    return row;
}

Row merge(std::string name, const MergeSet& set, Program<MergeSet>::Task raw, double hold, double dream,
          bool same_values)
{
    const Figures figures{hold, dream, 1.2 * state_bytes(set.nodes(), set.results(0).ncoo)};
    return {std::move(name),
            Row::Kind::merge,
            {task_on(write_domains, set), task_on(merge_ours, set)},
            {task_on(write_domains, set), task_on(raw, set)},
            figures,
            same_values};
}

Row erase(std::string name, const EraseSet& set, Program<EraseSet>::Task raw, double hold)
{
    return {std::move(name),
            Row::Kind::change,
            {task_on(write_run, set), task_on(erase_ours, set)},
            {task_on(write_run, set), task_on(raw, set)},
            {hold, 0.55, 5 * mega}};
}

Row packed(Row row)
{
    row.packed = true;
    return row;
}

} // namespace

std::vector<Row> rows(Size size)
{
    const ResultSet blocks = small_results(size);
    const ResultSet many_blocks = small_results(size, 20'000);
    const ResultSet by_6 = packed_results(size, deflate_6);
    const ResultSet by_1 = packed_results(size, deflate_1);
    const ResultSet by_digits = packed_results(size, rounded);
    const double chunk = state_bytes(by_6.nent, by_6.ncoo);
    return {
        write("write 10,000 blocks of 200 x 3", blocks, {1.00, 0.65, 6 * mega}),
        write("append 10,000 states of 200 x 3", long_series(size), {1.10, 0.80, 6 * mega}),
        write("append them to an open block", long_series(size, true), {1.05, 0.80, 6 * mega}),
        list("list 10,000 blocks", blocks, {0.50, 0.08, 8 * mega}),
        list("list 100,000 blocks", many_blocks, {0.50, 0.08, 8 * mega}, {"list 10,000 blocks", 12}),
        read("read 10,000 blocks of 200 x 3", blocks, {0.65, 0.15, 10 * mega}),
        write("write 10 x 1,000,000 x 3, 8 bytes", large_results(size, 8), {1.03, 1.00, 2 * mega}),
        read("read 10 x 1,000,000 x 3, 8 bytes", large_results(size, 8), {1.03, 1.00, 2 * mega}),
        write("write 10 x 1,000,000 x 3, 4 bytes", large_results(size, 4), {1.00, 0.75, 3 * mega}),
        read("read 10 x 1,000,000 x 3, 4 bytes", large_results(size, 4), {1.00, 0.80, 3 * mega}),
        packed(write("write 2 x 1,000,000 x 3, deflate 6", by_6, {0.65, 0.25, 2.2 * chunk})),
        packed(write("write 2 x 1,000,000 x 3, deflate 1", by_1, {0.50, 0.20, 2.2 * chunk})),
        read("read 2 x 1,000,000 x 3, deflate 6", by_6, {0.40, 0.30, 1.8 * chunk}),
        read("read 2 x 1,000,000 x 3, deflate 1", by_1, {0.40, 0.30, 1.8 * chunk}),
        packed(write("write 2 x 1,000,000 x 3, scale-offset", by_digits, {0.45, 0.17, 2.2 * chunk})),
        read("read 2 x 1,000,000 x 3, scale-offset", by_digits, {0.40, 0.28, 1.5 * chunk}),
        write("append 200 x 20,000 x 3", series(size), {1.05, 0.86, 5 * mega}),
        packed(write("append 200 x 20,000 x 3, deflate 6", series(size, deflate_6), {0.55, 0.20, 5 * mega})),
        erase("erase 1,000 of 2,000 states", erasing(size), erase_reading, 1.05),
        erase("erase them, against a list of them", erasing(size), erase_told, 1.50),
        merge("merge 8 x 125,000, against a sort", domains(size), merge_sorting, 0.40, 0.15, true),
        merge("merge 8 x 125,000 in order, against a sort", domains(size, true), merge_sorting, 0.45, 0.15, true),
        merge("merge 8 x 125,000, against a copy", domains(size), copy_rows, 2.00, 1.00, false),
        write("write 10^6 hexahedra", hexahedra(size), {1.05, 1.00, 2 * mega}),
        read("read 10^6 hexahedra", hexahedra(size), {1.05, 1.00, 2 * mega}),
        write("write 5 x 100,000 elements x 8 x 6", elements(size), {1.05, 1.00, 2 * mega}),
        read("read 5 x 100,000 elements x 8 x 6", elements(size), {1.05, 1.00, 2 * mega}),
        write("write a sparse matrix of 10^7", sparse(size), {1.05, 1.00, 2 * mega}),
        read("read a sparse matrix of 10^7", sparse(size), {1.05, 1.00, 2 * mega}),
    };
}

} // namespace bench
