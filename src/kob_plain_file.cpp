// SPDX-License-Identifier: BSD-3-Clause
// Which files are plain, and reading pieces of them.
#include "kob_plain_file.hpp"

#include "kob_id.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kob::plain {
namespace {

// A block of few values lies in one stretch, headers and all. A walk stops at its first attributes.
constexpr std::size_t piece_of_block = std::size_t{12} * 1024;
constexpr std::size_t piece_of_walk = std::size_t{4} * 1024;
constexpr std::size_t largest_piece = std::size_t{16} << 20; // no structure of a plain file is larger
constexpr std::size_t most_kept = 4096;                      // nor does one object need so many
constexpr std::size_t most_held = std::size_t{64} << 20;     // bytes of pieces that overlap, in a file made to do harm
constexpr Address most_readings = 64;                        // of a whole file: small structures lie in larger pieces
constexpr std::size_t superblock_size = 96;
constexpr std::array<unsigned char, 8> signature{0x89, 'H', 'D', 'F', '\r', '\n', 0x1a, '\n'};

/// The descriptor that HDF5 reads a file through, if the file of that name is what lies behind it. What other drivers
/// hand out is no descriptor, or not of the file that bears the name.
std::optional<int> descriptor_of(hid_t file)
{
    void* handle = nullptr;
    std::array<char, 4096> name{};
    if (H5Fget_vfd_handle(file, H5P_DEFAULT, &handle) < 0 || handle == nullptr) {
        return {};
    }
    const ssize_t length = H5Fget_name(file, name.data(), name.size());
    int descriptor = -1;
    std::memcpy(&descriptor, handle, sizeof descriptor);
    struct stat opened {};
    struct stat named {};
    const bool same = length > 0 && static_cast<std::size_t>(length) < name.size() && descriptor >= 0 &&
                      fstat(descriptor, &opened) == 0 && stat(name.data(), &named) == 0 && S_ISREG(opened.st_mode) &&
                      opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
    return same ? std::optional{descriptor} : std::nullopt;
}

} // namespace

File::File(int descriptor, Pieces mode)
    : descriptor_{descriptor}, mode_{mode}, usual_piece_{mode == Pieces::kept ? piece_of_block : piece_of_walk}
{
}

File File::again() const
{
    File result{descriptor_, Pieces::kept};
    result.usual_piece_ = piece_of_walk;
    result.end_ = end_;
    result.leaf_k_ = leaf_k_;
    result.node_k_ = node_k_;
    return result;
}

std::optional<File> File::of(hid_t object, Pieces pieces, State state)
{
    if constexpr (std::endian::native != std::endian::little) {
        return {};
    }
    const Id file{H5Iget_file_id(object), H5Fclose};
    // A file that can be written may have its latest state in HDF5's memory alone.
    unsigned intent = 0;
    constexpr unsigned writable = 1;
    if (!file || H5Fget_intent(file.get(), &intent) < 0 || intent > writable ||
        (intent == writable && (state != State::flushed || H5Fflush(file.get(), H5F_SCOPE_LOCAL) < 0))) {
        return {};
    }
    const std::optional<int> descriptor = descriptor_of(file.get());
    if (!descriptor) {
        return {};
    }
    try {
        File result{*descriptor, pieces};
        result.read_superblock();
        return result;
    } catch (const Surprise&) {
        return {};
    }
}

void File::read_superblock()
{
    std::array<unsigned char, superblock_size> bytes{};
    end_ = superblock_size;
    read(0, bytes.size(), bytes.data());
    const Bytes block{bytes.data(), bytes.size()};
    expect(block.starts_with(signature.data(), signature.size()));
    constexpr std::array<unsigned char, 8> versions_and_sizes{0, 0, 0, 0, 0, 8, 8, 0};
    expect(block.from(8).starts_with(versions_and_sizes.data(), versions_and_sizes.size()));
    leaf_k_ = block.u16(16);
    node_k_ = block.u16(18);
    constexpr std::uint32_t being_written = 1;
    expect(leaf_k_ > 0 && node_k_ > 0 && block.u32(20) <= being_written);
    // Nothing lies before the file, and no driver has a word in it.
    expect(block.u64(24) == 0 && block.u64(48) == nowhere);
    end_ = block.u64(40);
    expect(end_ <= static_cast<Address>(std::numeric_limits<off_t>::max()));
}

Bytes File::at(Address address, std::size_t size)
{
    expect(address <= end_ && size <= end_ - address && size <= largest_piece);
    for (std::size_t i = pieces_.size(); i-- > 0;) {
        const Piece& piece = pieces_[i];
        if (address >= piece.address && address - piece.address <= piece.size &&
            size <= piece.size - (address - piece.address)) {
            const Bytes found{piece.bytes.get() + (address - piece.address), size};
            if (mode_ == Pieces::passing) { // those that were asked for last stay longest
                const auto here = pieces_.begin() + static_cast<std::ptrdiff_t>(i);
                std::rotate(here, here + 1, pieces_.end());
            }
            return found;
        }
    }
    Piece piece{address, static_cast<std::size_t>(std::min<Address>(std::max(size, usual_piece_), end_ - address)), {}};
    make_room(piece.size);
    piece.bytes.reset(new unsigned char[piece.size]); // NOLINT(cppcoreguidelines-owning-memory)
    read(address, piece.size, piece.bytes.get());
    held_ += piece.size;
    pieces_.push_back(std::move(piece));
    return {pieces_.back().bytes.get(), size};
}

void File::make_room(std::size_t size)
{
    asked_ += size;
    expect(asked_ <= most_held || (asked_ - most_held) / most_readings <= end_);
    if (mode_ == Pieces::kept) {
        expect(pieces_.size() < most_kept);
    } else if (pieces_.size() >= 2 * surely_held || (pieces_.size() > surely_held && held_ + size > most_held)) {
        const auto latest = pieces_.end() - surely_held;
        std::for_each(pieces_.begin(), latest, [this](const Piece& piece) { held_ -= piece.size; });
        pieces_.erase(pieces_.begin(), latest);
    }
    expect(held_ + size <= most_held);
}

void File::read(Address address, std::size_t size, void* into) const
{
    expect(address <= end_ && size <= end_ - address);
    auto* next = static_cast<unsigned char*>(into);
    while (size > 0) {
        const ssize_t got = pread(descriptor_, next, size, static_cast<off_t>(address));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        expect(got > 0);
        next += got;
        address += static_cast<Address>(got);
        size -= static_cast<std::size_t>(got);
    }
}

std::optional<Address> address_of(hid_t object) noexcept
{
    H5O_info2_t info{};
    haddr_t address = HADDR_UNDEF;
    if (H5Oget_info3(object, &info, H5O_INFO_BASIC) < 0 || H5VLnative_token_to_addr(object, info.token, &address) < 0 ||
        address == HADDR_UNDEF) {
        return {};
    }
    return address;
}

} // namespace kob::plain
