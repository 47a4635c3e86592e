// SPDX-License-Identifier: BSD-3-Clause
// The blocks go through the library's public entry points.
#include "older_file.hpp"

#include "older_blocks.hpp"

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
    std::int32_t status = 77;
    KOB1_WRITE_FILEHEADER(&group, nullptr, nullptr, &status);
    EXPECT_EQ(status, 0);
    write_each<older::System, older::Index, older::Variables, older::Text, older::Parts, older::Attributes,
               older::Connectivities, older::Collector, older::ActivFlags, older::EntityResults,
               older::MultiEntityResults, older::ElementResults, older::MultiElementResults, older::MultiActivFlags,
               older::DenseMatrix, older::TriangularMatrix, older::SparseMatrix>(group);
}

} // namespace kob_test
