// SPDX-License-Identifier: BSD-3-Clause
// The bytes of a plain file, read without HDF5.
//
// HDF5 takes a dozen microseconds and a piece of its cache for each object that it opens. Where a file is nothing but
// bytes on a disk, in the format that HDF5 writes unless it is asked for a newer one, small objects are read faster
// from those bytes. The plain_ files know that much of the published format and no more. Everything is checked against
// its bounds; whatever is out of the ordinary is a surprise, and then HDF5 does the work, and judges.
#pragma once

#include <hdf5.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

namespace kob::plain {

/// Thrown when a file holds something that these readers don't know, or that cannot be.
struct Surprise {};

/// Goes on only where a file is as expected.
inline void expect(bool usual)
{
    if (!usual) {
        throw Surprise{};
    }
}

using Address = std::uint64_t;
constexpr Address nowhere = ~Address{0};

/// Some bytes of a file: numbers are little-endian, and none is read from outside.
class Bytes {
public:
    Bytes() = default;
    Bytes(const unsigned char* data, std::size_t size) : data_{data}, size_{size} {}

    [[nodiscard]] const unsigned char* data() const { return data_; }
    [[nodiscard]] std::size_t size() const { return size_; }

    [[nodiscard]] Bytes part(std::size_t at, std::size_t size) const
    {
        expect(at <= size_ && size <= size_ - at);
        return {data_ + at, size};
    }
    [[nodiscard]] Bytes from(std::size_t at) const
    {
        expect(at <= size_);
        return {data_ + at, size_ - at};
    }
    [[nodiscard]] unsigned u8(std::size_t at) const { return number<std::uint8_t>(at); }
    [[nodiscard]] unsigned u16(std::size_t at) const { return number<std::uint16_t>(at); }
    [[nodiscard]] std::uint32_t u32(std::size_t at) const { return number<std::uint32_t>(at); }
    [[nodiscard]] std::uint64_t u64(std::size_t at) const { return number<std::uint64_t>(at); }

    [[nodiscard]] bool starts_with(const void* other, std::size_t size) const
    {
        return size <= size_ && std::memcmp(data_, other, size) == 0;
    }

private:
    template <class Number> [[nodiscard]] Number number(std::size_t at) const
    {
        Number result{};
        std::memcpy(&result, part(at, sizeof result).data(), sizeof result);
        return result;
    }

    const unsigned char* data_ = nullptr;
    std::size_t size_ = 0;
};

/// An open file, read piece by piece. It lives as long as a call: another may change what is on disk.
class File {
public:
    /// What becomes of the pieces that were read: one object needs all of its, a walk over many only the latest.
    enum class Pieces { kept, passing };

    /// How the bytes on the disk come to be the latest: nobody writes them, or they are flushed now. Those are good
    /// until the next change.
    enum class State { read_only, flushed };

    /// The file of an open object, if it is nothing but a file of the old format and of that state.
    static std::optional<File> of(hid_t object, Pieces pieces, State state = State::read_only);

    /// The same file for one small object.
    [[nodiscard]] File again() const;

    /// `size` bytes at an address: kept, or valid until some more pieces (`surely_held`) have been asked for.
    Bytes at(Address address, std::size_t size);
    static constexpr std::size_t surely_held = 32;

    /// Reads into the caller's memory.
    void read(Address address, std::size_t size, void* into) const;

    [[nodiscard]] std::size_t group_leaf_entries() const { return 2 * leaf_k_; }
    [[nodiscard]] std::size_t group_node_entries() const { return 2 * node_k_; }

private:
    File(int descriptor, Pieces mode);
    void read_superblock();
    void make_room(std::size_t size);

    struct Piece {
        Address address = 0;
        std::size_t size = 0;
        std::unique_ptr<unsigned char[]> bytes; // NOLINT(cppcoreguidelines-avoid-c-arrays): not to be zeroed first
    };

    int descriptor_;
    Pieces mode_;
    std::size_t usual_piece_;
    Address end_ = 0;
    std::size_t leaf_k_ = 0;
    std::size_t node_k_ = 0;
    std::vector<Piece> pieces_;
    std::size_t held_ = 0; ///< bytes of them
    Address asked_ = 0;    ///< bytes of all pieces so far
};

/// The address of an open object in its file.
std::optional<Address> address_of(hid_t object) noexcept;

} // namespace kob::plain
