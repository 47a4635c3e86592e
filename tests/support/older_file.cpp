// SPDX-License-Identifier: BSD-3-Clause
// The blocks go through the library's public entry points.
#include "older_file.hpp"

#include "older_blocks.hpp"
#include "older_merge_model.hpp"

namespace kob_test {

namespace {

template <class... Blocks> void write_each(std::int64_t group)
{
    const auto write = [&](auto block) { EXPECT_EQ(block.write(group), (Outcome{0, ""})) << block.name; };
    (write(Blocks{}), ...);
}

} // namespace

void write_older_kinds(std::int64_t group)
{
    write_older_header(group);
    write_each<older::System, older::Index, older::Variables, older::Text, older::Parts, older::Attributes,
               older::Connectivities, older::Collector, older::ActivFlags, older::EntityResults,
               older::MultiEntityResults, older::ElementResults, older::MultiElementResults, older::MultiActivFlags,
               older::DenseMatrix, older::TriangularMatrix, older::SparseMatrix>(group);
}

void write_older_header(std::int64_t group) { OlderBlockWriter{group}.header(); }

void write_older_text(std::int64_t group, const std::string& name) { OlderBlockWriter{group}.text(name, "one line"); }

void write_older_index(std::int64_t group, std::int32_t nindex) { OlderBlockWriter{group}.index(nindex); }

void write_older_model(std::int64_t group, const BarModel& model, const BarModel::Cut& cut)
{
    const OlderBlockWriter out{group};
    out.header();
    out.shared();
    model.write(out, cut);
}

void write_older_kinds_left_out(std::int64_t group)
{
    write_each<older::MultiElementResults, older::MultiActivFlags, older::SparseMatrix>(group);
}

} // namespace kob_test
