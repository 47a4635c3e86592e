// SPDX-License-Identifier: BSD-3-Clause
// Runs one piece of work in a process of its own and measures what it took.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace bench {

/// What one run took.
struct Sample {
    double cpu = 0;               ///< seconds of processor time, system calls included
    double wall = 0;              ///< seconds
    std::optional<double> memory; ///< bytes at the peak, above what the process held when the clock started
};

/// Work that is ready to be timed: what its caller owns exists already.
using Work = std::function<void()>;

/// Prepares the caller's arrays and returns the work on them.
using Prepare = std::function<Work()>;

/// Forks; the child prepares, then runs the work against the clock. Ends this program when the child fails.
Sample measure(const Prepare& prepare);

/// Runs untimed in a child, so that this process holds no file open and stays as it is.
void run_apart(const Work& work);

} // namespace bench
