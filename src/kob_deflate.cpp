// SPDX-License-Identifier: BSD-3-Clause
// zlib streams: what cannot be compressed is stored, the rest goes through libdeflate, or zlib where that is better.
#include "kob_deflate.hpp"

#include "kob_literal_block.hpp"
#include "kob_repetition.hpp"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <vector>

namespace kob {
namespace {

/// zlib's hasty level makes smaller streams of regular data than libdeflate's quick ones, in about their time, but
/// larger ones of other data: a few slices tell.
constexpr int level_of_zlib = 1;
constexpr std::size_t slices = 6;
constexpr std::size_t slice_size = 65536; // smaller ones do zlib wrong: it begins more often

/// The level of libdeflate for zlib's level of the same index. Its lower ones save hardly any time on shuffled numbers,
/// and make larger streams than zlib does.
constexpr std::array libdeflate_levels{0, 7, 7, 7, 7, 7, 7, 8, 9, 9};

constexpr std::array stream_header{std::byte{0x78}, std::byte{0x9c}}; // deflate, a window of 32 KiB
constexpr std::size_t checksum_size = 4;
constexpr std::size_t block_slack = 16; // what a writer of blocks may touch behind them, and a block between two makers

constexpr std::size_t smallest_segment = 2048; // bytes that are looked at together: as few as tell something

std::size_t stored_bound(std::size_t size)
{
    constexpr std::size_t header_size = 5;
    // No two segments may be alike, and each end up in a stored block of its own.
    return size + (size / smallest_segment + 2) * header_size;
}

/// The last blocks of a stream by zlib, at its level. 0 when there is no room or memory.
std::size_t compress_by_zlib(std::span<const std::byte> source, std::byte* target, std::size_t room) noexcept
{
    constexpr int blocks_alone = -15; // bits of the window, without a header
    constexpr int usual_memory = 8;
    z_stream stream{};
    if (deflateInit2(&stream, level_of_zlib, Z_DEFLATED, blocks_alone, usual_memory, Z_DEFAULT_STRATEGY) != Z_OK) {
        return 0;
    }
    // zlib's numbers are of 32 bits, as are those of HDF5's chunks; its pointers are to bytes that it doesn't write.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<std::byte*>(source.data())); // NOLINT(*-cast)
    stream.avail_in = static_cast<uInt>(source.size());
    stream.next_out = reinterpret_cast<Bytef*>(target); // NOLINT(*-reinterpret-cast)
    stream.avail_out = static_cast<uInt>(std::min<std::size_t>(room, std::numeric_limits<uInt>::max()));
    const bool is_complete = deflate(&stream, Z_FINISH) == Z_STREAM_END;
    const std::size_t size = stream.total_out;
    deflateEnd(&stream);
    return is_complete ? size : 0;
}

bool zlib_makes_less_of(std::span<const std::byte> source, libdeflate_compressor* compressor)
{
    const std::size_t size = std::min(source.size(), slice_size);
    std::vector<std::byte> room(libdeflate_deflate_compress_bound(compressor, size));
    std::size_t by_zlib = 0;
    std::size_t by_libdeflate = 0;
    for (std::size_t i = 0; i < slices; ++i) {
        const auto slice = source.subspan((source.size() - size) / (slices - 1) * i, size);
        by_zlib += compress_by_zlib(slice, room.data(), room.size());
        by_libdeflate += libdeflate_deflate_compress(compressor, slice.data(), slice.size(), room.data(), room.size());
    }
    return by_zlib != 0 && by_zlib < by_libdeflate;
}

/// Writes blocks for the segments at the start that repeat nothing, and tells how many bytes those are.
class NoiseBlocks {
public:
    NoiseBlocks(std::span<const std::byte> source, std::size_t plane_size, BlockWriter& writer)
        : source_{source}, plane_size_{plane_size}, writer_{writer}
    {
    }

    std::size_t write()
    {
        // What libdeflate loses to zlib on such data, because it takes more of it for one set of codes.
        constexpr double most_saved = 0.06;
        Repetitions repetitions{source_};
        while (plane_size_ >= smallest_segment && end_ < source_.size()) {
            const Segment segment{source_.subspan(end_, segment_size())};
            const std::size_t size = segment.counts.total();
            // A few bytes behind the last plane are taken for more of the same.
            if (size >= smallest_segment &&
                repetitions.saved_bits(end_, end_ + size, segment.bits / static_cast<double>(size)) > most_saved) {
                break;
            }
            if (end_ == 0 && size < smallest_segment) {
                break;
            }
            add(segment);
        }
        flush();
        return end_;
    }

private:
    /// Half as many bytes as zlib takes for one set of codes, which may be joined again.
    static constexpr std::size_t largest_segment = 8192;

    /// Planes are divided evenly: what lies in two of them has little in common.
    [[nodiscard]] std::size_t segment_size() const
    {
        const std::size_t parts = (plane_size_ + largest_segment - 1) / largest_segment;
        const std::size_t part = (plane_size_ + parts - 1) / parts;
        return std::min({part, plane_size_ - end_ % plane_size_, source_.size() - end_});
    }

    struct Segment {
        Segment() = default;
        explicit Segment(std::span<const std::byte> bytes) : counts{bytes}, is_even{counts.are_even()}
        {
            bits = is_even ? static_cast<double>(bytes.size()) * 8 : counts.coded_bits();
        }

        ByteCounts counts;
        bool is_even = false;
        double bits = 0; ///< that a block of it takes, about
    };

    /// Joins a segment to the ones before it where that saves bits.
    void add(const Segment& segment)
    {
        const std::size_t size = segment.counts.total();
        Segment joined = pending_;
        joined.counts.add(segment.counts);
        joined.bits = segment.is_even ? pending_.bits + segment.bits : joined.counts.coded_bits();
        if (begin_ != end_ && segment.is_even == pending_.is_even && joined.bits <= pending_.bits + segment.bits) {
            pending_ = joined;
        } else {
            flush();
            pending_ = segment;
        }
        end_ += size;
    }

    void flush()
    {
        const auto bytes = source_.subspan(begin_, end_ - begin_);
        if (!bytes.empty()) {
            const bool is_last = end_ == source_.size();
            pending_.is_even ? writer_.store(bytes, is_last) : writer_.code(bytes, pending_.counts, is_last);
        }
        begin_ = end_;
    }

    std::span<const std::byte> source_;
    std::size_t plane_size_;
    BlockWriter& writer_;
    std::size_t begin_ = 0; ///< of what is not yet written
    std::size_t end_ = 0;
    Segment pending_; ///< what that is
};

} // namespace

void Deflater::Free::operator()(libdeflate_compressor* compressor) const noexcept
{
    libdeflate_free_compressor(compressor);
}

void Inflater::Free::operator()(libdeflate_decompressor* decompressor) const noexcept
{
    libdeflate_free_decompressor(decompressor);
}

std::size_t Deflater::bound(std::size_t size) noexcept
{
    return stream_header.size() + stored_bound(size) + libdeflate_deflate_compress_bound(nullptr, size) - size +
           block_slack + checksum_size;
}

std::optional<std::size_t> Deflater::compress(std::span<const std::byte> source, std::span<std::byte> target,
                                              std::size_t plane_size)
{
    const int level = libdeflate_levels[static_cast<std::size_t>(level_)];
    BlockWriter writer{std::copy(stream_header.begin(), stream_header.end(), target.data())};
    std::size_t done = source.size();
    if (level == 0) {
        writer.store(source, true);
    } else {
        done = NoiseBlocks{source, plane_size, writer}.write();
    }
    const bool is_complete = level == 0 || (done != 0 && done == source.size());
    std::byte* end = writer.finish(is_complete);
    if (!is_complete) {
        const auto rest = source.subspan(done);
        const auto room = static_cast<std::size_t>(target.data() + target.size() - end);
        if (!compressor_) {
            compressor_.reset(libdeflate_alloc_compressor(level));
            if (!compressor_) {
                return {};
            }
        }
        const std::size_t size =
            level_ == level_of_zlib && rest.size() <= std::numeric_limits<uInt>::max() &&
                    zlib_makes_less_of(rest, compressor_.get())
                ? compress_by_zlib(rest, end, room)
                : libdeflate_deflate_compress(compressor_.get(), rest.data(), rest.size(), end, room);
        if (size == 0) {
            return {};
        }
        end += size;
    }
    const std::uint32_t checksum = libdeflate_adler32(1, source.data(), source.size());
    for (const int shift : {24, 16, 8, 0}) {
        *end++ = static_cast<std::byte>(checksum >> shift);
    }
    return static_cast<std::size_t>(end - target.data());
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
