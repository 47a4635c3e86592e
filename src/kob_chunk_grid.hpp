// SPDX-License-Identifier: BSD-3-Clause
// The chunks that a block of a dataset touches, and which part of each.
#pragma once

#include <hdf5.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace kob {

using Position = std::array<hsize_t, H5S_MAX_RANK>;

/// A block of a dataset; dense in memory. All extents are positive.
struct Block {
    std::span<const hsize_t> first;
    std::span<const hsize_t> count;
};

/// The part of a block that lies in one chunk.
struct ChunkPart {
    Position origin{};   ///< the chunk's first element, in the dataset
    Position first{};    ///< the part's first element, in the dataset
    Position count{};    ///< the part's extents
    bool covers = false; ///< nothing else of the dataset lies in the chunk
    bool fills = false;  ///< the part is the whole chunk: nothing lies beyond the dataset's end either
};

/// Visits the chunks of a block in ascending order, until `visit(part)` says false. True when all were visited.
template <class Visit>
bool for_each_chunk(const Block& block, std::span<const hsize_t> extents, std::span<const hsize_t> chunk, Visit&& visit)
{
    const std::size_t rank = chunk.size();
    ChunkPart part;
    for (std::size_t i = 0; i < rank; ++i) {
        part.origin[i] = block.first[i] - block.first[i] % chunk[i];
    }
    for (;;) {
        part.covers = true;
        part.fills = true;
        for (std::size_t i = 0; i < rank; ++i) {
            const hsize_t end = std::min(block.first[i] + block.count[i], part.origin[i] + chunk[i]);
            part.first[i] = std::max(block.first[i], part.origin[i]);
            part.count[i] = end - part.first[i];
            part.fills = part.fills && part.count[i] == chunk[i];
            part.covers = part.covers && part.first[i] == part.origin[i] &&
                          end == std::min(extents[i], part.origin[i] + chunk[i]);
        }
        if (!visit(static_cast<const ChunkPart&>(part))) {
            return false;
        }
        std::size_t i = rank;
        while (i > 0) {
            --i;
            part.origin[i] += chunk[i];
            if (part.origin[i] < block.first[i] + block.count[i]) {
                break;
            }
            part.origin[i] = block.first[i] - block.first[i] % chunk[i];
            if (i == 0) {
                return true;
            }
        }
    }
}

/// Elements that lie one after the other in the chunk and in memory.
struct Run {
    std::size_t in_chunk;
    std::size_t in_memory;
    std::size_t elements;
};

/// Visits the runs of a part, until `visit(run)` says false. True when all were visited.
template <class Visit>
bool for_each_run(const ChunkPart& part, const Block& block, std::span<const hsize_t> chunk, Visit&& visit)
{
    std::size_t outer = chunk.size() - 1; // dimensions before it are walked, it and those behind make the run
    std::size_t run = part.count[outer];
    while (outer > 0 && part.count[outer] == chunk[outer] && part.count[outer] == block.count[outer]) {
        --outer;
        run *= part.count[outer];
    }
    Position step{};
    for (;;) {
        std::size_t in_chunk = 0;
        std::size_t in_memory = 0;
        for (std::size_t i = 0; i < chunk.size(); ++i) {
            in_chunk = in_chunk * chunk[i] + (part.first[i] - part.origin[i] + step[i]);
            in_memory = in_memory * block.count[i] + (part.first[i] - block.first[i] + step[i]);
        }
        if (!visit(Run{in_chunk, in_memory, run})) {
            return false;
        }
        std::size_t i = outer;
        while (i > 0 && ++step[i - 1] == part.count[i - 1]) {
            step[--i] = 0;
        }
        if (i == 0) {
            return true;
        }
    }
}

} // namespace kob
