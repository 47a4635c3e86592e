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
    Task task;  ///< what the line is about: that, or reading, merging or changing what was made
};

/// What our program has to keep to.
struct Figures {
    double hold;   ///< largest ratio of our processor time to that of plain HDF5
    double dream;  ///< the ratio that we would like to see
    double memory; ///< most bytes that our program may take above its caller's arrays
};

/// What larger work may cost, against a line with less of the same.
struct Growth {
    std::string smaller; ///< name of that line; empty: nothing is compared
    double hold = 0;     ///< largest ratio of our processor times
};

/// One line: the same work done by both programs on files of one kind.
struct Row {
    enum class Kind { write, read, merge, change };

    std::string name;
    Kind kind;
    Side ours;
    Side raw;
    Figures figures;
    bool same_values = true; ///< does plain HDF5 make the same file, value by value?
    bool packed = false;     ///< our file must not be larger than that of plain HDF5
    Growth growth{};
};

/// Real sizes, or tiny ones of the same kinds, to see whether both programs still do the same.
enum class Size { real, tiny };
std::vector<Row> rows(Size size);

} // namespace bench
