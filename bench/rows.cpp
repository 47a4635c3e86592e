// SPDX-License-Identifier: BSD-3-Clause
// The table of work.
#include "rows.hpp"

#include "large_blocks.hpp"
#include "merge.hpp"
#include "results.hpp"
#include "series.hpp"

namespace bench {
namespace {

const std::vector<std::string> five_variables{"DISPLACEMENT", "STRESS", "STRAIN", "TEMPERATURE", "REACTION"};

constexpr double usual_hold = 1.10;
constexpr double copying_hold = 1.5;       // of a merge, against one that merges nothing
constexpr double sorting_hold = 0.40;      // of a merge, against one that sorts each state
constexpr double merging_bytes = 32 << 20; // the union of the nodes, and a domain's part beside the merged block
constexpr double noise_bytes = 1 << 20;    // what the heap and HDF5's free lists leave unexplained

// The tiny ones are too large to be stored in the object header, where the real ones are.

ResultSet small_results(Size size)
{
    return size == Size::real ? ResultSet{2000, five_variables, 200, 3, 8} : ResultSet{3, five_variables, 9, 3, 8};
}

ResultSet large_results(Size size, std::int32_t value_size)
{
    return size == Size::real ? ResultSet{10, {"DISPLACEMENT"}, 1'000'000, 3, value_size}
                              : ResultSet{2, {"DISPLACEMENT"}, 7000, 3, value_size};
}

SeriesSet series(Size size) { return size == Size::real ? SeriesSet{200, 20'000, 3} : SeriesSet{4, 2000, 3}; }

ElementSet elements(Size size) { return size == Size::real ? ElementSet{5, 100'000, 8, 6} : ElementSet{2, 7000, 8, 6}; }

SparseSet sparse(Size size) { return size == Size::real ? SparseSet{1'000'000, 10} : SparseSet{4000, 10}; }

HexahedraSet hexahedra(Size size) { return {size == Size::real ? 1'000'000 : 7000}; }

MergeSet domains(Size size) { return size == Size::real ? MergeSet{8, 10, 50} : MergeSet{3, 2, 16}; }

template <class Set> Side side(const Program<Set>& program, Row::Kind kind, const Set& set)
{
    const auto bind = [&set](typename Program<Set>::Task task) -> Side::Task {
        return [set, task](const std::string& file, Digest* digest) { return task(set, file, digest); };
    };
    switch (kind) {
    case Row::Kind::write:
        return {bind(program.write), bind(program.write)};
    case Row::Kind::read:
        return {bind(program.write), bind(program.read)};
    default:
        return {bind(program.write), bind(program.list)};
    }
}

template <class Set> Row row(std::string name, Row::Kind kind, const Set& set)
{
    return {std::move(name), kind,       side(Programs<Set>::ours, kind, set), side(Programs<Set>::raw, kind, set),
            usual_hold,      noise_bytes};
}

Row merge_row(std::string name, Size size, Program<MergeSet>::Task raw, double hold, bool same_values)
{
    const MergeSet set = domains(size);
    const auto bind = [&set](Program<MergeSet>::Task task) -> Side::Task {
        return [set, task](const std::string& file, Digest* digest) { return task(set, file, digest); };
    };
    return {std::move(name),
            Row::Kind::merge,
            {bind(write_domains), bind(merge_ours)},
            {bind(write_domains), bind(raw)},
            hold,
            merging_bytes,
            same_values};
}

} // namespace

std::vector<Row> rows(Size size)
{
    using enum Row::Kind;
    return {
        row("write 10,000 blocks of 200 x 3", write, small_results(size)),
        row("read 10,000 blocks of 200 x 3", read, small_results(size)),
        row("list 10,000 blocks", list, small_results(size)),
        row("write 10 x 1,000,000 x 3, 8 bytes", write, large_results(size, 8)),
        row("read 10 x 1,000,000 x 3, 8 bytes", read, large_results(size, 8)),
        row("write 10 x 1,000,000 x 3, 4 bytes", write, large_results(size, 4)),
        row("read 10 x 1,000,000 x 3, 4 bytes", read, large_results(size, 4)),
        row("append 200 states of 20,000 x 3", write, series(size)),
        row("write 5 x 100,000 elements x 8 x 6", write, elements(size)),
        row("read 5 x 100,000 elements x 8 x 6", read, elements(size)),
        row("write a sparse matrix of 10^7", write, sparse(size)),
        row("read a sparse matrix of 10^7", read, sparse(size)),
        row("write 10^6 hexahedra", write, hexahedra(size)),
        row("read 10^6 hexahedra", read, hexahedra(size)),
        merge_row("merge 8 x 125,000, against a copy", size, copy_rows, copying_hold, false),
        merge_row("merge 8 x 125,000, against a sort", size, merge_sorting, sorting_hold, true),
    };
}

} // namespace bench
