// SPDX-License-Identifier: BSD-3-Clause
// Texts and digests.
#include "program.hpp"

#include <algorithm>

namespace bench {

Text256 text256(std::string_view text)
{
    Text256 result{};
    result.fill(' ');
    std::copy_n(text.data(), std::min(text.size(), result.size()), result.begin());
    return result;
}

void Digest::add(const void* data, std::size_t bytes)
{
    const auto* next = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < bytes; ++i) {
        value_ = (value_ ^ next[i]) * 1099511628211U;
    }
}

} // namespace bench
