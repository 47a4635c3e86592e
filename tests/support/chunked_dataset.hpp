// SPDX-License-Identifier: BSD-3-Clause
// Chunked datasets made, written and read by plain HDF5.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "hdf5_file.hpp"

namespace kob_test {

using Bytes = std::vector<std::byte>;

/// While it lives, HDF5 prints no errors.
class QuietHdf5 {
public:
    QuietHdf5()
    {
        H5Eget_auto2(H5E_DEFAULT, &printer_, &printer_data_);
        H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
    }
    ~QuietHdf5() { H5Eset_auto2(H5E_DEFAULT, printer_, printer_data_); }
    QuietHdf5(const QuietHdf5&) = delete;
    QuietHdf5& operator=(const QuietHdf5&) = delete;

private:
    H5E_auto2_t printer_ = nullptr;
    void* printer_data_ = nullptr;
};

/// Are two numbers the same bit for bit? A NaN is itself, and 0 is not -0.
template <class Real> bool same_bits(Real one, Real other)
{
    using Bits = std::conditional_t<sizeof(Real) == 4, std::uint32_t, std::uint64_t>;
    return std::bit_cast<Bits>(one) == std::bit_cast<Bits>(other);
}

/// A part of a dataset.
struct BlockOf {
    std::vector<hsize_t> first;
    std::vector<hsize_t> count;

    std::size_t elements() const
    {
        std::size_t product = 1;
        for (const hsize_t extent : count) product *= extent;
        return product;
    }
};

inline BlockOf all_of(const std::vector<hsize_t>& extents)
{
    return {std::vector<hsize_t>(extents.size(), 0), extents};
}

/// Creation properties of chunks with the filters that `add(list)` sets.
template <class Add> Hid chunked_list(const std::vector<hsize_t>& chunk, Add&& add)
{
    Hid list{H5Pcreate(H5P_DATASET_CREATE)};
    H5Pset_chunk(list, static_cast<int>(chunk.size()), chunk.data());
    add(static_cast<hid_t>(list));
    return list;
}

inline Hid create_dataset(hid_t parent, const std::string& name, hid_t type, const std::vector<hsize_t>& extents,
                          hid_t list)
{
    const std::vector<hsize_t> maxima(extents.size(), H5S_UNLIMITED);
    const bool is_chunked = H5Pget_layout(list) == H5D_CHUNKED;
    const Hid space = space_of(extents, is_chunked ? maxima : extents);
    return Hid{H5Dcreate2(parent, name.c_str(), type, space, H5P_DEFAULT, list, H5P_DEFAULT)};
}

/// Writes or reads a block with plain H5Dwrite or H5Dread; `bytes` are of the memory type.
inline herr_t write_block(hid_t dataset, hid_t memory_type, const BlockOf& block, const void* bytes)
{
    const Hid space{H5Dget_space(dataset)};
    const Hid memory = space_of(block.count);
    H5Sselect_hyperslab(space, H5S_SELECT_SET, block.first.data(), nullptr, block.count.data(), nullptr);
    return H5Dwrite(dataset, memory_type, memory, space, H5P_DEFAULT, bytes);
}
inline herr_t read_block(hid_t dataset, hid_t memory_type, const BlockOf& block, void* bytes)
{
    const Hid space{H5Dget_space(dataset)};
    const Hid memory = space_of(block.count);
    H5Sselect_hyperslab(space, H5S_SELECT_SET, block.first.data(), nullptr, block.count.data(), nullptr);
    return H5Dread(dataset, memory_type, memory, space, H5P_DEFAULT, bytes);
}

/// All elements as they are stored.
inline Bytes stored_bytes(hid_t dataset)
{
    const Hid type{H5Dget_type(dataset)};
    const Hid space{H5Dget_space(dataset)};
    Bytes bytes(H5Tget_size(type) * static_cast<std::size_t>(H5Sget_simple_extent_npoints(space)));
    if (H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()) < 0) bytes.clear();
    return bytes;
}

struct RawChunk {
    Bytes bytes;
    std::uint32_t filter_mask = 0;
};

/// One chunk as it lies in the file; no bytes when there is none.
inline RawChunk raw_chunk(hid_t dataset, const std::vector<hsize_t>& origin)
{
    const QuietHdf5 quiet;
    hsize_t size = 0;
    RawChunk chunk;
    if (H5Dget_chunk_storage_size(dataset, origin.data(), &size) < 0) return chunk;
    chunk.bytes.resize(size);
    if (size != 0) H5Dread_chunk(dataset, H5P_DEFAULT, origin.data(), &chunk.filter_mask, chunk.bytes.data());
    return chunk;
}

/// Opens a dataset anew: HDF5 then looks into the file.
inline void reopen(Hid& dataset)
{
    std::string name(256, '\0');
    H5Iget_name(dataset, name.data(), name.size());
    const Hid file{H5Iget_file_id(dataset)};
    {
        const Hid closed{std::move(dataset)};
    }
    dataset = Hid{H5Dopen2(file, name.c_str(), H5P_DEFAULT)};
}

/// Puts a chunk into the file as it is. The dataset is opened anew, because HDF5 remembers a wrong mask for the chunk
/// that was last written raw; and another size is written first, because it keeps the mask of one that it overwrites.
inline void put_raw_chunk(Hid& dataset, const std::vector<hsize_t>& origin, RawChunk chunk)
{
    const auto put = [&] {
        return H5Dwrite_chunk(dataset, H5P_DEFAULT, chunk.filter_mask, origin.data(), chunk.bytes.size(),
                              chunk.bytes.data());
    };
    chunk.bytes.push_back(std::byte{});
    EXPECT_GE(put(), 0);
    chunk.bytes.pop_back();
    EXPECT_GE(put(), 0);
    reopen(dataset);
}

} // namespace kob_test
