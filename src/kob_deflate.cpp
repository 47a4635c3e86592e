// SPDX-License-Identifier: BSD-3-Clause
// zlib streams by libdeflate.
#include "kob_deflate.hpp"

#include <libdeflate.h>

#include <array>

namespace kob {
namespace {

/// The level of libdeflate that makes no larger streams than zlib's level of the same index.
constexpr std::array libdeflate_levels{0, 2, 3, 4, 5, 6, 6, 7, 8, 9};

} // namespace

void Deflater::Free::operator()(libdeflate_compressor* compressor) const noexcept
{
    libdeflate_free_compressor(compressor);
}

void Inflater::Free::operator()(libdeflate_decompressor* decompressor) const noexcept
{
    libdeflate_free_decompressor(decompressor);
}

std::size_t Deflater::bound(std::size_t size) noexcept { return libdeflate_zlib_compress_bound(nullptr, size); }

std::optional<std::size_t> Deflater::compress(std::span<const std::byte> source, std::span<std::byte> target)
{
    if (!compressor_) {
        compressor_.reset(libdeflate_alloc_compressor(libdeflate_levels[static_cast<std::size_t>(level_)]));
        if (!compressor_) {
            return {};
        }
    }
    const std::size_t size =
        libdeflate_zlib_compress(compressor_.get(), source.data(), source.size(), target.data(), target.size());
    return size != 0 ? std::optional{size} : std::nullopt;
}

std::optional<std::size_t> Inflater::inflate(std::span<const std::byte> source, std::span<std::byte> target)
{
    if (!decompressor_) {
        decompressor_.reset(libdeflate_alloc_decompressor());
        if (!decompressor_) {
            return {};
        }
    }
    std::size_t size = 0;
    const libdeflate_result result = libdeflate_zlib_decompress(decompressor_.get(), source.data(), source.size(),
                                                                target.data(), target.size(), &size);
    return result == LIBDEFLATE_SUCCESS ? std::optional{size} : std::nullopt;
}

} // namespace kob
