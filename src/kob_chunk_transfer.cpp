// SPDX-License-Identifier: BSD-3-Clause
// Chunks of filtered datasets, encoded and decoded here.
#include "kob_chunk_transfer.hpp"

#include "kob_chunk_codec.hpp"
#include "kob_convert.hpp"
#include "kob_id.hpp"
#include "kob_storage_types.hpp"

#include <algorithm>
#include <cstring>
#include <numeric>
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
    const auto filters = chunk_filters(properties.get(), result.type.get(), result.chunk_elements);
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
    explicit Transfer(ChunkedDataset& dataset)
        : dataset_{dataset}, codec_{dataset.filters, dataset.element_size, dataset.chunk_size()}
    {
    }

    /// Are these whole chunks, as they come to lie in the file but for filters?
    [[nodiscard]] bool are_whole_chunks(const Block& block, hid_t memory_type, const std::byte* data) const
    {
        const Converter converter{memory_type, dataset_.type.get()};
        return for_each_chunk(block, dataset_.extents(), dataset_.chunk_extents(), [&](const ChunkPart& part) {
            return in_memory(part, block, converter, data) != nullptr;
        });
    }

    bool write(const Block& block, hid_t memory_type, const std::byte* data)
    {
        const Converter converter{memory_type, dataset_.type.get()};
        const std::size_t memory_size = H5Tget_size(memory_type);
        return for_each_chunk(block, dataset_.extents(), dataset_.chunk_extents(), [&](const ChunkPart& part) {
            if (const std::byte* dense = in_memory(part, block, converter, data)) {
                return store(part.origin, dense);
            }
            std::byte* const plain = codec_.plain();
            if (plain == nullptr) {
                return false;
            }
            std::optional<SharedChunk> shared;
            if (!part.covers) {
                if (!fetch(part.origin, part.first, plain)) {
                    return false;
                }
            } else if (!part.fills) {
                fill_with(dataset_.fill, dataset_.chunk_elements, plain);
            }
            if (dataset_.filters.scale_offset != 0 && (!part.covers || grows_into(part.origin))) {
                shared = shared_chunk(!part.covers);
            }
            return for_each_run(part, block, dataset_.chunk_extents(),
                                [&](const Run& run) {
                                    if (shared) {
                                        std::fill_n(shared->is_new.begin() + static_cast<std::ptrdiff_t>(run.in_chunk),
                                                    run.elements, true);
                                    }
                                    return converter.convert(data + run.in_memory * memory_size, run.elements,
                                                             plain + run.in_chunk * dataset_.element_size);
                                }) &&
                   store(part.origin, plain, shared ? &*shared : nullptr);
        });
    }

    bool read(const Block& block, hid_t memory_type, std::byte* data)
    {
        const Converter converter{dataset_.type.get(), memory_type};
        const std::size_t memory_size = H5Tget_size(memory_type);
        return for_each_chunk(block, dataset_.extents(), dataset_.chunk_extents(), [&](const ChunkPart& part) {
            const hsize_t size = stored_size(part.origin);
            if (size == 0) { // a chunk that is not there needs no room, however large it would be
                return is_missing(part.first) && read_fill(part, block, converter, memory_size, data);
            }
            if (std::byte* dense = in_memory(part, block, converter, data)) {
                return load(part.origin, size, dense);
            }
            std::byte* const plain = codec_.plain();
            return plain != nullptr && load(part.origin, size, plain) &&
                   for_each_run(part, block, dataset_.chunk_extents(), [&](const Run& run) {
                       return converter.convert(plain + run.in_chunk * dataset_.element_size, run.elements,
                                                data + run.in_memory * memory_size);
                   });
        });
    }

    bool write_points(std::span<const hsize_t> coordinates, hid_t memory_type, const std::byte* data)
    {
        const Converter converter{memory_type, dataset_.type.get()};
        const std::size_t memory_size = H5Tget_size(memory_type);
        return for_each_group(coordinates, [&](const Position& origin, std::span<const std::size_t> points) {
            std::byte* const plain = codec_.plain();
            if (plain == nullptr || !fetch(origin, position(coordinates, points.front()), plain)) {
                return false;
            }
            SharedChunk shared = shared_chunk(true);
            for (const std::size_t point : points) { // of equal points the last one counts
                const std::size_t element = place_in_chunk(origin, position(coordinates, point));
                shared.is_new[element] = true;
                if (!converter.convert(data + point * memory_size, 1, plain + element * dataset_.element_size)) {
                    return false;
                }
            }
            return store(origin, plain, &shared);
        });
    }

    bool read_points(std::span<const hsize_t> coordinates, hid_t memory_type, std::byte* data)
    {
        const Converter converter{dataset_.type.get(), memory_type};
        const std::size_t memory_size = H5Tget_size(memory_type);
        return for_each_group(coordinates, [&](const Position& origin, std::span<const std::size_t> points) {
            const hsize_t size = stored_size(origin);
            if (size == 0) { // no room for a chunk that is not there
                return is_missing(position(coordinates, points.front())) &&
                       std::all_of(points.begin(), points.end(), [&](std::size_t point) {
                           return converter.convert(dataset_.fill.data(), 1, data + point * memory_size);
                       });
            }
            std::byte* const plain = codec_.plain();
            return plain != nullptr && load(origin, size, plain) &&
                   std::all_of(points.begin(), points.end(), [&](std::size_t point) {
                       const std::size_t element = place_in_chunk(origin, position(coordinates, point));
                       return converter.convert(plain + element * dataset_.element_size, 1, data + point * memory_size);
                   });
        });
    }

    /// Cuts the leading extent.
    bool cut(hsize_t rows)
    {
        std::vector<CutChunk> edge_chunks;
        const hsize_t edge = rows - rows % dataset_.chunk[0];
        if (edge != rows && !encode_cut(edge, rows, edge_chunks)) {
            return false;
        }
        // A cut through a chunk would take it through HDF5's own filters: it is removed and put back instead.
        return set_rows(edge) && (edge == rows || set_rows(rows)) &&
               std::all_of(edge_chunks.begin(), edge_chunks.end(), [&](const CutChunk& chunk) {
                   return put(chunk.origin, {chunk.bytes, chunk.filter_mask});
               });
    }

private:
    struct CutChunk {
        Position origin;
        std::vector<std::byte> bytes;
        std::uint32_t filter_mask;
    };

    [[nodiscard]] bool set_rows(hsize_t rows) const
    {
        Position extents = dataset_.shape.extents;
        extents[0] = rows;
        return H5Dset_extent(dataset_.id, extents.data()) >= 0;
    }

    /// The chunks of the rows from `edge` on, encoded with the fill value from `rows` on.
    bool encode_cut(hsize_t edge, hsize_t rows, std::vector<CutChunk>& cut_chunks)
    {
        const std::size_t row_elements = dataset_.chunk_elements / static_cast<std::size_t>(dataset_.chunk[0]);
        const auto kept = static_cast<std::size_t>(rows - edge) * row_elements;
        Position first{};
        Position count = dataset_.shape.extents;
        first[0] = edge;
        count[0] = 1;
        const Block block{{first.data(), dataset_.rank()}, {count.data(), dataset_.rank()}};
        return for_each_chunk(block, dataset_.extents(), dataset_.chunk_extents(), [&](const ChunkPart& part) {
            if (stored_size(part.origin) == 0) {
                return is_missing(part.first);
            }
            std::byte* const plain = codec_.plain();
            if (plain == nullptr || !fetch(part.origin, part.first, plain)) {
                return false;
            }
            SharedChunk shared = shared_chunk(true);
            std::fill(shared.is_new.begin() + static_cast<std::ptrdiff_t>(kept), shared.is_new.end(), true);
            fill_with(dataset_.fill, dataset_.chunk_elements - kept, plain + kept * dataset_.element_size);
            const auto stored = codec_.encode(plain, &shared);
            if (stored) {
                cut_chunks.push_back({part.origin, {stored->bytes.begin(), stored->bytes.end()}, stored->filter_mask});
            }
            return stored.has_value();
        });
    }

    /// The whole chunk in the caller's memory, or null where it is not dense there, or of another type.
    template <class Byte>
    Byte* in_memory(const ChunkPart& part, const Block& block, const Converter& converter, Byte* data) const
    {
        if (!part.fills || !converter.is_copy()) {
            return nullptr;
        }
        Byte* dense = nullptr;
        for_each_run(part, block, dataset_.chunk_extents(), [&](const Run& run) {
            if (run.elements == dataset_.chunk_elements) {
                dense = data + run.in_memory * dataset_.element_size;
            }
            return false; // the first run tells
        });
        return dense;
    }

    /// May a chunk get elements later because the dataset grows?
    [[nodiscard]] bool grows_into(const Position& origin) const
    {
        for (std::size_t i = 0; i < dataset_.rank(); ++i) {
            if (origin[i] + dataset_.chunk[i] > dataset_.shape.extents[i] &&
                dataset_.shape.maximum[i] > dataset_.shape.extents[i]) {
                return true;
            }
        }
        return false;
    }

    /// A chunk that other calls write to; one that is in the file was fetched last.
    [[nodiscard]] SharedChunk shared_chunk(bool was_fetched) const
    {
        SharedChunk shared;
        shared.exists = was_fetched && is_there_;
        shared.minimum = shared.exists ? codec_.minimum() : std::nullopt;
        shared.is_new.resize(dataset_.chunk_elements);
        return shared;
    }

    [[nodiscard]] Position position(std::span<const hsize_t> coordinates, std::size_t point) const
    {
        Position result{};
        std::copy_n(coordinates.begin() + static_cast<std::ptrdiff_t>(point * dataset_.rank()), dataset_.rank(),
                    result.begin());
        return result;
    }

    [[nodiscard]] Position origin_of(Position position) const
    {
        for (std::size_t i = 0; i < dataset_.rank(); ++i) {
            position[i] -= position[i] % dataset_.chunk[i];
        }
        return position;
    }

    [[nodiscard]] std::size_t place_in_chunk(const Position& origin, const Position& position) const
    {
        std::size_t place = 0;
        for (std::size_t i = 0; i < dataset_.rank(); ++i) {
            place = place * dataset_.chunk[i] + (position[i] - origin[i]);
        }
        return place;
    }

    /// Visits the chunks that points lie in, each once with all its points in the caller's order.
    template <class Visit> bool for_each_group(std::span<const hsize_t> coordinates, Visit&& visit) const
    {
        std::vector<std::size_t> order(coordinates.size() / dataset_.rank());
        std::iota(order.begin(), order.end(), std::size_t{0});
        const auto chunk_of = [&](std::size_t point) { return origin_of(position(coordinates, point)); };
        std::sort(order.begin(), order.end(), [&](std::size_t one, std::size_t other) {
            const Position first = chunk_of(one);
            const Position second = chunk_of(other);
            return first != second ? first < second : one < other;
        });
        for (auto begin = order.begin(); begin != order.end();) {
            const Position origin = chunk_of(*begin);
            const auto end =
                std::find_if(begin, order.end(), [&](std::size_t point) { return chunk_of(point) != origin; });
            if (!visit(origin, std::span<const std::size_t>{begin, end})) {
                return false;
            }
            begin = end;
        }
        return true;
    }

    /// Is there no chunk, rather than one that HDF5 cannot find for a damage? Asked for an element of it.
    [[nodiscard]] bool is_missing(const Position& element) const
    {
        // HDF5 itself reads the fill value of an element that nobody wrote, and fails on a damage.
        const Id space{H5Dget_space(dataset_.id), H5Sclose};
        const Id one{H5Screate(H5S_SCALAR), H5Sclose};
        std::vector<std::byte> value(dataset_.element_size);
        return H5Sselect_elements(space.get(), H5S_SELECT_SET, 1, element.data()) >= 0 &&
               H5Dread(dataset_.id, dataset_.type.get(), one.get(), space.get(), H5P_DEFAULT, value.data()) >= 0;
    }

    /// Gives a part the fill value, as the caller's type has it.
    bool read_fill(const ChunkPart& part, const Block& block, const Converter& converter, std::size_t memory_size,
                   std::byte* data) const
    {
        std::vector<std::byte> element(memory_size);
        return converter.convert(dataset_.fill.data(), 1, element.data()) &&
               for_each_run(part, block, dataset_.chunk_extents(), [&](const Run& run) {
                   fill_with(element, run.elements, data + run.in_memory * memory_size);
                   return true;
               });
    }

    /// The plain elements of the chunk that holds `element`; the fill value where there is none in the file.
    bool fetch(const Position& origin, const Position& element, std::byte* plain)
    {
        const hsize_t size = stored_size(origin);
        is_there_ = size != 0;
        if (!is_there_) {
            fill_with(dataset_.fill, dataset_.chunk_elements, plain);
            return is_missing(element);
        }
        return load(origin, size, plain);
    }

    /// Bytes of a chunk in the file; 0 when none is found there.
    [[nodiscard]] hsize_t stored_size(const Position& origin) const
    {
        hsize_t size = 0;
        return H5Dget_chunk_storage_size(dataset_.id, origin.data(), &size) >= 0 ? size : 0;
    }

    /// The plain elements of a chunk that takes `size` bytes in the file.
    bool load(const Position& origin, hsize_t size, std::byte* plain)
    {
        std::byte* const room = codec_.stored_room(static_cast<std::size_t>(size), plain);
        StoredChunk stored{{room, static_cast<std::size_t>(size)}, 0};
        return room != nullptr &&
               H5Dread_chunk(dataset_.id, H5P_DEFAULT, origin.data(), &stored.filter_mask, room) >= 0 &&
               codec_.decode(stored, plain);
    }

    bool store(const Position& origin, const std::byte* plain, const SharedChunk* shared = nullptr)
    {
        const auto stored = codec_.encode(plain, shared);
        return stored && put(origin, *stored);
    }

    /// Until the dataset is closed HDF5 believes of the last chunk that its filter mask is the former one.
    [[nodiscard]] bool put(const Position& origin, const StoredChunk& chunk) const
    {
        const auto write = [&](std::size_t size) {
            return H5Dwrite_chunk(dataset_.id, H5P_DEFAULT, chunk.filter_mask, origin.data(), size,
                                  chunk.bytes.data()) >= 0;
        };
        // HDF5 keeps the filter mask of a chunk that it overwrites in place: another size first makes it take the new.
        hsize_t present = 0;
        if (dataset_.filters.any() && H5Dget_chunk_storage_size(dataset_.id, origin.data(), &present) >= 0 &&
            present == chunk.bytes.size() && !write(chunk.bytes.size() - 1)) {
            return false;
        }
        return write(chunk.bytes.size());
    }

    ChunkedDataset& dataset_;
    ChunkCodec codec_;
    bool is_there_ = false; ///< was the chunk that was last fetched in the file?
};

/// Runs the transfer of a dataset that is ours.
template <class Run> ChunkTransfer run_transfer(hid_t dataset, const void* data, Run&& run) noexcept
{
    try {
        auto chunked = data != nullptr ? chunked_dataset(dataset) : std::nullopt;
        if (!chunked) {
            return ChunkTransfer::left;
        }
        return run(*chunked);
    } catch (const std::bad_alloc&) {
        return ChunkTransfer::failed;
    }
}

ChunkTransfer result_of(bool success) { return success ? ChunkTransfer::done : ChunkTransfer::failed; }

/// No extents mean the whole dataset.
Block block_in(const ChunkedDataset& dataset, const Block& block)
{
    static constexpr Position origin{};
    return block.count.empty() ? Block{{origin.data(), dataset.rank()}, dataset.extents()} : block;
}

} // namespace

ChunkTransfer write_chunks(hid_t dataset, hid_t memory_type, const Block& block, const void* data) noexcept
{
    return run_transfer(dataset, data, [&](ChunkedDataset& chunked) {
        Transfer transfer{chunked};
        const Block written = block_in(chunked, block);
        const auto* const bytes = static_cast<const std::byte*>(data);
        // Without filters HDF5 is as quick as anybody, but for the detour of whole chunks through its cache.
        if (!chunked.filters.any() && !transfer.are_whole_chunks(written, memory_type, bytes)) {
            return ChunkTransfer::left;
        }
        return result_of(transfer.write(written, memory_type, bytes));
    });
}

ChunkTransfer read_chunks(hid_t dataset, hid_t memory_type, const Block& block, void* data) noexcept
{
    return run_transfer(dataset, data, [&](ChunkedDataset& chunked) {
        return chunked.filters.any() ? result_of(Transfer{chunked}.read(block_in(chunked, block), memory_type,
                                                                        static_cast<std::byte*>(data)))
                                     : ChunkTransfer::left;
    });
}

ChunkTransfer write_points(hid_t dataset, hid_t memory_type, std::span<const hsize_t> coordinates,
                           const void* data) noexcept
{
    return run_transfer(dataset, data, [&](ChunkedDataset& chunked) {
        return chunked.filters.scale_offset == 0 ? ChunkTransfer::left
                                                 : result_of(Transfer{chunked}.write_points(
                                                       coordinates, memory_type, static_cast<const std::byte*>(data)));
    });
}

ChunkTransfer read_points(hid_t dataset, hid_t memory_type, std::span<const hsize_t> coordinates, void* data) noexcept
{
    return run_transfer(dataset, data, [&](ChunkedDataset& chunked) {
        return chunked.filters.scale_offset == 0
                   ? ChunkTransfer::left
                   : result_of(Transfer{chunked}.read_points(coordinates, memory_type, static_cast<std::byte*>(data)));
    });
}

bool cut_chunks(hid_t dataset, hsize_t rows) noexcept
{
    const ChunkTransfer cut = run_transfer(dataset, "", [&](ChunkedDataset& chunked) {
        return chunked.filters.scale_offset == 0 ? ChunkTransfer::left : result_of(Transfer{chunked}.cut(rows));
    });
    if (cut != ChunkTransfer::left) {
        return cut == ChunkTransfer::done;
    }
    const Id space{H5Dget_space(dataset), H5Sclose};
    StoredShape shape = stored_shape(space.get());
    shape.extents[0] = rows;
    return shape.rank > 0 && H5Dset_extent(dataset, shape.extents.data()) >= 0;
}

} // namespace kob
