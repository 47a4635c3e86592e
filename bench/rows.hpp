// SPDX-License-Identifier: BSD-3-Clause
// The lines of the table: what is measured, and the figures to hold.
#pragma once

#include "program.hpp"

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// One program's work on the files of a line.
struct Side {
    using Task = std::function<Work(const std::string& file, Digest* digest)>;

    Task write; ///< makes the file; of a merge the domain files beside it
    Task task;  ///< what the line is about: that, or reading, listing or merging what was made
};

/// One line: the same work done by both programs on files of one kind.
struct Row {
    enum class Kind { write, read, list, merge };

    std::string name;
    Kind kind;
    Side ours;
    Side raw;
    double hold;             ///< largest ratio of our processor time to that of plain HDF5
    double extra_bytes;      ///< most memory that we may take beyond what plain HDF5 takes
    bool same_values = true; ///< does plain HDF5 make the same file, value by value?
};

/// Real sizes, or tiny ones of the same kinds, to see whether both programs still do the same.
enum class Size { real, tiny };
std::vector<Row> rows(Size size);

} // namespace bench
