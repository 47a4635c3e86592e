// SPDX-License-Identifier: BSD-3-Clause
// Chunks of filtered datasets, encoded and decoded here.
#include "kob_chunk_transfer.hpp"

#include "kob_chunk_codec.hpp"
#include "kob_convert.hpp"
#include "kob_id.hpp"
#include "kob_storage_types.hpp"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

namespace kob {
namespace {

/// What a dataset's chunks look like.
struct ChunkedDataset {
    hid_t id;
    Id type;
    std::size_t element_size = 0;
    StoredShape shape;
    Position chunk{};
    std::size_t chunk_elements = 0;
    ChunkFilters filters;
    std::vector<std::byte> fill; ///< one element

    [[nodiscard]] std::span<const hsize_t> extents() const { return {shape.extents.data(), rank()}; }
    [[nodiscard]] std::span<const hsize_t> chunk_extents() const { return {chunk.data(), rank()}; }
    [[nodiscard]] std::size_t rank() const { return static_cast<std::size_t>(shape.rank); }
    [[nodiscard]] std::size_t chunk_size() const { return chunk_elements * element_size; }
};

/// Are elements that nobody wrote at the fill value, and that value known?
bool has_fill_value(hid_t creation_properties)
{
    H5D_fill_value_t defined{};
    H5D_fill_time_t time{};
    return H5Pfill_value_defined(creation_properties, &defined) >= 0 && defined != H5D_FILL_VALUE_UNDEFINED &&
           H5Pget_fill_time(creation_properties, &time) >= 0 && time != H5D_FILL_TIME_NEVER;
}

/// Nothing for a dataset that is better left to HDF5.
std::optional<ChunkedDataset> chunked_dataset(hid_t dataset)
{
    const Id properties{H5Dget_create_plist(dataset), H5Pclose};
    ChunkedDataset result;
    result.id = dataset;
    result.type = Id{H5Dget_type(dataset), H5Tclose};
    result.element_size = H5Tget_size(result.type.get());
    const Id space{H5Dget_space(dataset), H5Sclose};
    result.shape = stored_shape(space.get());
    const H5T_class_t type_class = stored_class(result.type.get());
    const bool is_ours = type_class == H5T_INTEGER || type_class == H5T_FLOAT || type_class == H5T_STRING;
    unsigned options = 0;
    if (!is_ours || result.element_size == 0 || result.shape.rank < 1 ||
        H5Pget_layout(properties.get()) != H5D_CHUNKED ||
        H5Pget_chunk(properties.get(), H5S_MAX_RANK, result.chunk.data()) != result.shape.rank ||
        H5Pget_chunk_opts(properties.get(), &options) < 0 || options != 0 || !has_fill_value(properties.get())) {
        return {};
    }
    constexpr hsize_t largest_chunk = UINT32_MAX; // HDF5's own limit
    const hsize_t elements = product(result.chunk_extents());
    if (elements == 0 || elements > largest_chunk / result.element_size) {
        return {};
    }
    result.chunk_elements = static_cast<std::size_t>(elements);
    const auto filters = chunk_filters(properties.get(), result.element_size);
    result.fill.resize(result.element_size);
    if (!filters || H5Pget_fill_value(properties.get(), result.type.get(), result.fill.data()) < 0) {
        return {};
    }
    result.filters = *filters;
    return result;
}

void fill_with(std::span<const std::byte> element, std::size_t elements, std::byte* target)
{
    for (std::size_t i = 0; i < elements; ++i) {
        std::memcpy(target + i * element.size(), element.data(), element.size());
    }
}

/// One call on one dataset.
class Transfer {
public:
    Transfer(ChunkedDataset& dataset, const Block& block)
        : dataset_{dataset}, block_{block}, codec_{dataset.filters, dataset.element_size, dataset.chunk_size()}
    {
    }

    bool write(hid_t memory_type, const std::byte* data)
    {
        const Converter converter{memory_type, dataset_.type.get()};
        const std::size_t memory_size = H5Tget_size(memory_type);
        return for_each_chunk(block_, dataset_.extents(), dataset_.chunk_extents(), [&](const ChunkPart& part) {
            if (const std::byte* dense = in_memory(part, converter, data)) {
                return store(part, dense);
            }
            std::byte* const plain = codec_.plain();
            return plain != nullptr && (part.fills || fetch_rest(part, plain)) &&
                   for_each_run(part, block_, dataset_.chunk_extents(),
                                [&](const Run& run) {
                                    return converter.convert(data + run.in_memory * memory_size, run.elements,
                                                             plain + run.in_chunk * dataset_.element_size);
                                }) &&
                   store(part, plain);
        });
    }

    bool read(hid_t memory_type, std::byte* data)
    {
        const Converter converter{dataset_.type.get(), memory_type};
        const std::size_t memory_size = H5Tget_size(memory_type);
        return for_each_chunk(block_, dataset_.extents(), dataset_.chunk_extents(), [&](const ChunkPart& part) {
            if (std::byte* dense = in_memory(part, converter, data)) {
                return fetch(part, dense);
            }
            std::byte* const plain = codec_.plain();
            return plain != nullptr && fetch(part, plain) &&
                   for_each_run(part, block_, dataset_.chunk_extents(), [&](const Run& run) {
                       return converter.convert(plain + run.in_chunk * dataset_.element_size, run.elements,
                                                data + run.in_memory * memory_size);
                   });
        });
    }

private:
    /// The whole chunk in the caller's memory, or null where it is not dense there, or of another type.
    template <class Byte> Byte* in_memory(const ChunkPart& part, const Converter& converter, Byte* data) const
    {
        if (!part.fills || !converter.is_copy()) {
            return nullptr;
        }
        Byte* dense = nullptr;
        for_each_run(part, block_, dataset_.chunk_extents(), [&](const Run& run) {
            if (run.elements == dataset_.chunk_elements) {
                dense = data + run.in_memory * dataset_.element_size;
            }
            return false; // the first run tells
        });
        return dense;
    }

    /// What of a chunk the call does not write: what is there already, and the fill value beyond the dataset's end.
    bool fetch_rest(const ChunkPart& part, std::byte* plain)
    {
        if (!part.covers) {
            return fetch(part, plain);
        }
        fill_with(dataset_.fill, dataset_.chunk_elements, plain);
        return true;
    }

    /// Is there no chunk, rather than one that HDF5 cannot find for a damage?
    [[nodiscard]] bool is_missing(const ChunkPart& part) const
    {
        // HDF5 itself reads the fill value of an element that nobody wrote, and fails on a damage.
        const Id space{H5Dget_space(dataset_.id), H5Sclose};
        const Id one{H5Screate(H5S_SCALAR), H5Sclose};
        std::vector<std::byte> element(dataset_.element_size);
        return H5Sselect_elements(space.get(), H5S_SELECT_SET, 1, part.first.data()) >= 0 &&
               H5Dread(dataset_.id, dataset_.type.get(), one.get(), space.get(), H5P_DEFAULT, element.data()) >= 0;
    }

    /// The plain elements of a chunk in the file; the fill value where there is none.
    bool fetch(const ChunkPart& part, std::byte* plain)
    {
        hsize_t size = 0;
        const bool is_there = H5Dget_chunk_storage_size(dataset_.id, part.origin.data(), &size) >= 0 && size != 0;
        if (!is_there) {
            fill_with(dataset_.fill, dataset_.chunk_elements, plain);
            return is_missing(part);
        }
        std::byte* const room = codec_.stored_room(size, plain);
        StoredChunk stored{{room, static_cast<std::size_t>(size)}, 0};
        return room != nullptr &&
               H5Dread_chunk(dataset_.id, H5P_DEFAULT, part.origin.data(), &stored.filter_mask, room) >= 0 &&
               codec_.decode(stored, plain);
    }

    bool store(const ChunkPart& part, const std::byte* plain)
    {
        const auto stored = codec_.encode(plain);
        if (!stored) {
            return false;
        }
        const auto put = [&](std::size_t size) {
            return H5Dwrite_chunk(dataset_.id, H5P_DEFAULT, stored->filter_mask, part.origin.data(), size,
                                  stored->bytes.data()) >= 0;
        };
        // HDF5 keeps the filter mask of a chunk that it overwrites in place: another size first makes it take the new.
        hsize_t present = 0;
        if (H5Dget_chunk_storage_size(dataset_.id, part.origin.data(), &present) >= 0 &&
            present == stored->bytes.size() && !put(stored->bytes.size() - 1)) {
            return false;
        }
        return put(stored->bytes.size());
    }

    ChunkedDataset& dataset_;
    Block block_;
    ChunkCodec codec_;
};

/// Runs the transfer of a dataset that is ours.
template <class Run> ChunkTransfer run_transfer(hid_t dataset, const Block& block, const void* data, Run&& run) noexcept
{
    try {
        auto chunked = data != nullptr ? chunked_dataset(dataset) : std::nullopt;
        if (!chunked) {
            return ChunkTransfer::left;
        }
        const std::array<hsize_t, H5S_MAX_RANK> origin{};
        const bool is_whole = block.count.empty();
        const Block given = is_whole ? Block{{origin.data(), chunked->rank()}, chunked->extents()} : block;
        Transfer transfer{*chunked, given};
        return run(transfer) ? ChunkTransfer::done : ChunkTransfer::failed;
    } catch (const std::bad_alloc&) {
        return ChunkTransfer::failed;
    }
}

} // namespace

ChunkTransfer write_chunks(hid_t dataset, hid_t memory_type, const Block& block, const void* data) noexcept
{
    return run_transfer(dataset, block, data, [&](Transfer& transfer) {
        return transfer.write(memory_type, static_cast<const std::byte*>(data));
    });
}

ChunkTransfer read_chunks(hid_t dataset, hid_t memory_type, const Block& block, void* data) noexcept
{
    return run_transfer(dataset, block, data,
                        [&](Transfer& transfer) { return transfer.read(memory_type, static_cast<std::byte*>(data)); });
}

} // namespace kob
