// SPDX-License-Identifier: BSD-3-Clause
// zlib streams, as HDF5's deflate filter writes and reads them.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

struct libdeflate_compressor;
struct libdeflate_decompressor;

namespace kob {

/// Compresses at a level of zlib's, 0 to 9: no larger than zlib would, or hardly so, and much quicker.
class Deflater {
public:
    explicit Deflater(int level) : level_{level} {}

    /// Room that holds every stream of so many bytes.
    static std::size_t bound(std::size_t size) noexcept;

    /// Bytes of the stream; nothing when there is no memory. The target has room for the bound. Shuffled bytes come in
    /// planes of one size; others are one plane.
    std::optional<std::size_t> compress(std::span<const std::byte> source, std::span<std::byte> target,
                                        std::size_t plane_size);

private:
    struct Free {
        void operator()(libdeflate_compressor* compressor) const noexcept;
    };

    int level_;
    std::unique_ptr<libdeflate_compressor, Free> compressor_;
};

/// Takes zlib streams of any maker.
class Inflater {
public:
    /// Bytes that came out; nothing when the stream is damaged, longer than the target, or there is no memory.
    std::optional<std::size_t> inflate(std::span<const std::byte> source, std::span<std::byte> target);

private:
    struct Free {
        void operator()(libdeflate_decompressor* decompressor) const noexcept;
    };

    std::unique_ptr<libdeflate_decompressor, Free> decompressor_;
};

} // namespace kob
