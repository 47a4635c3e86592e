// SPDX-License-Identifier: BSD-3-Clause
// Byte shuffle: first bytes of all elements, then all second bytes, and so on. The bytes are those of HDF5's filter.
#pragma once

#include <cstddef>
#include <span>

namespace kob {

/// Bytes behind the last whole element stay where they are. Source and target are of one size and apart.
void shuffle(std::span<const std::byte> source, std::size_t element_size, std::byte* target) noexcept;
void unshuffle(std::span<const std::byte> source, std::size_t element_size, std::byte* target) noexcept;

} // namespace kob
