// SPDX-License-Identifier: BSD-3-Clause
// Keeps a tool from telling what it does.
#pragma once

#include <array>

namespace bench {

/// While it lives both standard streams lead nowhere.
class Silence {
public:
    Silence();
    ~Silence();
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    std::array<int, 2> kept_{};
};

} // namespace bench
