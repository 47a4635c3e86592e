// SPDX-License-Identifier: BSD-3-Clause
// Typed datasets: whole, a block of a hyperslab, or a list of points.
#include "kob_chunk_transfer.hpp"
#include "kob_group_links.hpp"
#include "kob_message.hpp"
#include "kob_plain_block.hpp"
#include "kob_row_chunks.hpp"
#include "kob_storage_codes.hpp"
#include "kob_storage_convert.hpp"
#include "kob_storage_filters.hpp"
#include "kob_storage_types.hpp"

#include <algorithm>
#include <utility>

namespace kob {
namespace {

/// Which elements of a dataset a call transfers, in absolute positions, and how they lie in memory.
class Selection {
public:
    Selection(std::int32_t mode, std::int32_t rank, const std::int64_t* count, const std::int64_t* start,
              Origin origin = Origin::end)
        : mode_{mode}, origin_{origin}, rank_{rank < 0
                                                  ? 0U
                                                  : std::min<std::size_t>(static_cast<std::size_t>(rank), H5S_MAX_RANK)}
    {
        if (mode_ == access_mode::block) {
            for (std::size_t i = 0; i < rank_; ++i) {
                count_[i] = static_cast<hsize_t>(count[i]);
                start_[i] = start[i];
            }
        } else if (mode_ == access_mode::points) {
            points_ = static_cast<hsize_t>(count[0]);
            coordinates_ = start;
        }
    }

    [[nodiscard]] bool is_empty() const
    {
        if (mode_ == access_mode::block) {
            return std::find(count_.begin(), count_.begin() + static_cast<std::ptrdiff_t>(rank_), hsize_t{0}) !=
                   count_.begin() + static_cast<std::ptrdiff_t>(rank_);
        }
        return mode_ == access_mode::points && points_ == 0;
    }

    /// Turns positions into absolute ones against the present extents. In a growable dimension they count from the
    /// current end, and `extents` grows to cover them. False when a position lies outside; `outside` tells the
    /// dimension.
    bool place(std::span<hsize_t> extents, std::span<const hsize_t> maximum, std::int32_t& outside)
    {
        if (mode_ == access_mode::block) {
            for (std::size_t i = 0; i < rank_; ++i) {
                if (!place_one(start_[i], count_[i], extents[i], extents[i], maximum[i] == growable, first_[i])) {
                    outside = static_cast<std::int32_t>(i);
                    return false;
                }
            }
            return true;
        }
        if (mode_ == access_mode::points) {
            return place_points(extents, maximum, outside);
        }
        return true;
    }

    /// Elements of a block that is placed.
    [[nodiscard]] hsize_t block_elements() const { return product(std::span{count_}.first(rank_)); }

    /// Is the placed block one whole row of a dataset that grows by rows alone?
    [[nodiscard]] bool is_row(std::span<const hsize_t> extents, std::span<const hsize_t> maximum) const
    {
        if (mode_ != access_mode::block || rank_ == 0 || count_[0] != 1) {
            return false;
        }
        for (std::size_t i = 1; i < rank_; ++i) {
            if (count_[i] != extents[i] || maximum[i] != extents[i]) {
                return false;
            }
        }
        return true;
    }

    /// The first element of a block that is placed.
    [[nodiscard]] const hsize_t* first() const { return first_.data(); }

    /// Writes or reads chunks, if they are not left to HDF5.
    ChunkTransfer write_chunks(hid_t dataset, hid_t memory_type, const void* data) const
    {
        return mode_ == access_mode::points ? write_points(dataset, memory_type, placed_, data)
                                            : kob::write_chunks(dataset, memory_type, block(), data);
    }
    ChunkTransfer read_chunks(hid_t dataset, hid_t memory_type, void* data) const
    {
        return mode_ == access_mode::points ? read_points(dataset, memory_type, placed_, data)
                                            : kob::read_chunks(dataset, memory_type, block(), data);
    }

    /// The dataspace in the file with the selection made in it.
    [[nodiscard]] bool select(hid_t file_space) const
    {
        if (mode_ == access_mode::block) {
            return H5Sselect_hyperslab(file_space, H5S_SELECT_SET, first_.data(), nullptr, count_.data(), nullptr) >= 0;
        }
        return H5Sselect_elements(file_space, H5S_SELECT_SET, static_cast<std::size_t>(points_), placed_.data()) >= 0;
    }

    /// Is the caller's buffer a single element?
    [[nodiscard]] bool is_single() const
    {
        return mode_ == access_mode::block &&
               std::all_of(count_.begin(), count_.begin() + static_cast<std::ptrdiff_t>(rank_),
                           [](hsize_t count) { return count < 2; });
    }

    /// The caller's buffer: counts below 2 are no dimension of it.
    [[nodiscard]] Id memory_space() const
    {
        if (mode_ == access_mode::points) {
            return Id{H5Screate_simple(1, &points_, nullptr), H5Sclose};
        }
        std::array<hsize_t, H5S_MAX_RANK> squeezed{};
        int rank = 0;
        for (std::size_t i = 0; i < rank_; ++i) {
            if (count_[i] >= 2) {
                squeezed[static_cast<std::size_t>(rank++)] = count_[i];
            }
        }
        return Id{rank == 0 ? H5Screate(H5S_SCALAR) : H5Screate_simple(rank, squeezed.data(), nullptr), H5Sclose};
    }

private:
    bool place_one(std::int64_t start, hsize_t count, hsize_t end, hsize_t& extent, bool grows, hsize_t& first) const
    {
        if (!grows) {
            first = static_cast<hsize_t>(start); // a negative start counts as very large
            return first < end && count <= end - first;
        }
        // The end of a stored dimension fits into 63 bits: HDF5's own limit on extents in use.
        const std::int64_t origin = origin_ == Origin::end ? static_cast<std::int64_t>(end) : 0;
        std::int64_t from = 0;
        hsize_t reach = 0;
        if (__builtin_add_overflow(start, origin, &from) || from < 0 ||
            __builtin_add_overflow(static_cast<hsize_t>(from), count, &reach) || reach > INT64_MAX) {
            return false;
        }
        first = static_cast<hsize_t>(from);
        extent = std::max(extent, reach);
        return true;
    }

    /// No extents for the whole dataset.
    [[nodiscard]] Block block() const
    {
        return mode_ == access_mode::block ? Block{{first_.data(), rank_}, {count_.data(), rank_}} : Block{};
    }

    bool place_points(std::span<hsize_t> extents, std::span<const hsize_t> maximum, std::int32_t& outside)
    {
        hsize_t entries = 0;
        if (__builtin_mul_overflow(points_, static_cast<hsize_t>(rank_), &entries) || entries > PTRDIFF_MAX / 8) {
            outside = -1;
            return false;
        }
        std::array<hsize_t, H5S_MAX_RANK> end{};
        std::copy(extents.begin(), extents.end(), end.begin());
        placed_.resize(static_cast<std::size_t>(entries));
        for (std::size_t entry = 0; entry < placed_.size(); ++entry) {
            const std::size_t i = entry % rank_;
            if (!place_one(coordinates_[entry], 1, end[i], extents[i], maximum[i] == growable, placed_[entry])) {
                outside = static_cast<std::int32_t>(i);
                return false;
            }
        }
        return true;
    }

    std::int32_t mode_;
    Origin origin_;
    std::size_t rank_;
    // Of these a block sets as many as its rank; clearing the others would take longer than all else done here.
    std::array<hsize_t, H5S_MAX_RANK> count_;
    std::array<std::int64_t, H5S_MAX_RANK> start_;
    std::array<hsize_t, H5S_MAX_RANK> first_; ///< as placed
    hsize_t points_ = 0;
    const std::int64_t* coordinates_ = nullptr;
    std::vector<hsize_t> placed_;
};

/// What HDF5 would have returned for chunks that were transferred without it.
herr_t chunk_result(ChunkTransfer chunks) { return chunks == ChunkTransfer::done ? 0 : -1; }

/// The arguments of one dataset write.
struct DatasetCall {
    const char* name;
    const void* data;
    std::int32_t kob_type;
    std::size_t data_size;
    std::size_t kob_size;
    const hsize_t* dims;
    std::int32_t rank;
    const std::int64_t* count;
    const std::int64_t* start;
    std::int32_t mode;
    hid_t location;
    std::int32_t filter_flags;
    const std::int32_t* filter_params;
};

/// One dataset write: reuses or creates the dataset, then transfers.
class DatasetWrite : private DatasetCall {
public:
    DatasetWrite(const DatasetCall& call, const WriteOptions& with)
        : DatasetCall{call}, options_{with}, selection_{mode, rank, count, start, with.origin}
    {
    }

    std::int32_t run()
    {
        using namespace dataset_write;
        if (kob::is_empty(dims, rank) || selection_.is_empty()) {
            return 0;
        }
        if (dims != nullptr && mode == access_mode::whole && rank > 0 &&
            std::find(dims, dims + rank, growable) != dims + rank) {
            return refuse(unlimited_whole);
        }
        if (KOB_H5gettype(kob_type, data_size, type_class_, memory_) != 0) {
            return refuse(memory_type);
        }
        if (kob_size == data_size) {
            native_ = memory_;
        } else if (KOB_H5gettype(kob_type, kob_size, type_class_, native_) != 0) {
            return refuse(file_type);
        }
        if (kob_type != type_code::real && data_size > kob_size) {
            return refuse(narrower_file, printable(data_size));
        }
        // A dataset that opens is there; only one that doesn't is looked for.
        if (options_.place == Place::unknown) {
            dataset_ = options_.links != nullptr ? options_.links->open(name)
                                                 : Id{H5Dopen2(location, name, H5P_DEFAULT), H5Dclose};
        }
        const bool exists =
            dataset_ || (options_.place == Place::unknown &&
                         (options_.links != nullptr ? options_.links->has(name) : has_link(location, name)));
        if (!exists && dims == nullptr) {
            return refuse(no_dims);
        }
        SharedIds own;
        SharedIds& ids = options_.shared != nullptr ? *options_.shared : own;
        if (const std::int32_t result = exists ? reuse(ids) : create(ids); result != 0) {
            return result;
        }
        if (options_.leading_extent != nullptr) {
            *options_.leading_extent = leading_extent_;
        }
        return transfer(ids);
    }

private:
    std::int32_t refuse(Condition condition, std::int32_t quantity = -1) const
    {
        report_error(message::dataset_write, condition.number, name, kob_type, data_size, kob_size, mode, quantity);
        return condition.code;
    }

    std::int32_t reuse(SharedIds& ids)
    {
        using namespace dataset_write;
        stored_.owned = Id{H5Dget_type(dataset_.get()), H5Tclose};
        stored_.type = stored_.owned.get();
        is_stored_as_given_ = is_stored_as(stored_.type, memory_, kob_type);
        if (const H5T_class_t found = is_stored_as_given_ ? type_class_ : stored_class(stored_.type);
            found != type_class_) {
            return refuse(other_class, found);
        }
        Id space{H5Dget_space(dataset_.get()), H5Sclose};
        read_shape(space.get(), shape_);
        if (rank > 0 ? shape_.rank != rank : shape_.elements != 1) {
            return refuse(other_rank, shape_.rank);
        }
        const auto used = static_cast<std::size_t>(std::max(shape_.rank, 0));
        const std::span<hsize_t> extents{shape_.extents.data(), used};
        Position before;
        std::copy(extents.begin(), extents.end(), before.begin());
        if (mode == access_mode::whole) {
            const std::int32_t differing = rank > 0 && dims != nullptr ? first_difference(shape_, dims) : -1;
            if (differing >= 0) {
                return refuse(other_extent, differing);
            }
        } else if (std::int32_t outside = -1; !selection_.place(extents, {shape_.maximum.data(), used}, outside)) {
            return refuse(mode == access_mode::block ? block_outside : point_outside, outside);
        }
        is_row_ = is_stored_as_given_ && selection_.is_row(extents, {shape_.maximum.data(), used});
        if (is_row_) {
            ids.keep(std::move(space)); // a row that is a chunk needs none
        } else {
            space_ = std::move(space);
        }
        if (!std::equal(extents.begin(), extents.end(), before.begin())) {
            if (!is_addressable(extents, is_stored_as_given_ ? data_size : H5Tget_size(stored_.type))) {
                return refuse(extend);
            }
            if (const herr_t result = H5Dset_extent(dataset_.get(), shape_.extents.data()); result < 0) {
                return refuse(extend, result);
            }
            is_outgrown_ = true;
        }
        elements_ = product(extents);
        leading_extent_ = used > 0 ? extents[0] : 0;
        const HeaderFacts header = header_facts(dataset_.get());
        is_filtered_ = header.may_have_filters;
        is_row_ = is_row_ && header.has_old_format && !is_filtered_;
        return 0;
    }

    std::int32_t create(SharedIds& ids)
    {
        using namespace dataset_write;
        if (rank < 0 || rank > H5S_MAX_RANK) {
            return refuse(create_dataspace, rank);
        }
        const auto used = static_cast<std::size_t>(rank);
        std::array<hsize_t, H5S_MAX_RANK> extents{};
        const std::span<const hsize_t> maximum{dims, used};
        for (std::size_t i = 0; i < used; ++i) {
            extents[i] = dims[i] == growable ? 0 : dims[i];
            // Extents are signed 64-bit numbers to HDF5's users; what a negative count becomes is none.
            if (extents[i] > INT64_MAX) {
                return refuse(create_dataspace, static_cast<std::int32_t>(i));
            }
        }
        if (mode != access_mode::whole) {
            std::int32_t outside = -1;
            if (!selection_.place({extents.data(), used}, maximum, outside)) {
                return refuse(mode == access_mode::block ? block_outside : point_outside, outside);
            }
        }
        if (!is_addressable({extents.data(), used}, kob_size)) {
            return refuse(create_dataspace);
        }
        space_ = Id{rank > 0 ? H5Screate_simple(rank, extents.data(), dims) : H5I_INVALID_HID, H5Sclose};
        const hid_t space = rank > 0 ? space_.get() : ids.scalar();
        if (space < 0) {
            return refuse(create_dataspace);
        }
        stored_ = stored_type_for(kob_type, native_, kob_size, ids);
        if (stored_.type < 0) {
            return refuse(type_order);
        }
        elements_ = product({extents.data(), used});
        leading_extent_ = extents[0];
        CreationProperties properties;
        const FilterRequest filters = filter_request(kob_type, filter_flags, elements_);
        is_filtered_ = filters.any();
        const LayoutRequest request{kob_type,  kob_size, {extents.data(), used}, maximum,
                                    elements_, filters,  filter_params};
        if (const Refusal refusal = creation_properties(request, ids, properties)) {
            return refuse(refusal.condition, refusal.quantity);
        }
        dataset_ =
            Id{H5Dcreate2(location, name, stored_.type, space, H5P_DEFAULT, properties.list, H5P_DEFAULT), H5Dclose};
        return dataset_ ? 0 : refuse(dataset_write::create);
    }

    /// Elements of a row; the leading extent is not zero.
    [[nodiscard]] hsize_t row_elements() const { return elements_ / leading_extent_; }

    /// Is it worth a look at the chunks whether they can be handed over as they are?
    [[nodiscard]] bool is_large_block() const
    {
        constexpr hsize_t worth_a_look = 65536; // bytes
        return mode == access_mode::block && selection_.block_elements() >= worth_a_look / kob_size;
    }

    std::int32_t transfer(SharedIds& ids)
    {
        using namespace dataset_write;
        if (is_row_ && has_row_chunks(dataset_.get(), row_elements(), data_size)) {
            const std::size_t row_size = static_cast<std::size_t>(row_elements()) * data_size;
            return finish(H5Dwrite_chunk(dataset_.get(), H5P_DEFAULT, 0, selection_.first(), row_size, data));
        }
        if (!space_ && shape_.rank > 0) {
            space_ = Id{H5Dget_space(dataset_.get()), H5Sclose};
        } else if (is_outgrown_ &&
                   H5Sset_extent_simple(space_.get(), shape_.rank, shape_.extents.data(), shape_.maximum.data()) < 0) {
            return refuse(extend);
        }
        Id own_memory;
        hid_t memory = H5S_ALL;
        if (mode != access_mode::whole) {
            if (!space_ || !selection_.select(space_.get())) {
                return refuse(file_dataspace);
            }
            if (!selection_.is_single()) {
                own_memory = selection_.memory_space();
            }
            memory = selection_.is_single() ? ids.scalar() : own_memory.get();
            if (memory < 0) {
                return refuse(memory_dataspace);
            }
        }
        // A text is handed over as it is stored; numbers are converted from the caller's size.
        hid_t transferred = memory_;
        const void* source = data;
        std::vector<char> texts;
        if (kob_type == type_code::text) {
            transferred = stored_.type;
            const std::size_t size = H5Tget_size(stored_.type);
            if (size != kob_size && data != nullptr) {
                const hssize_t elements =
                    mode == access_mode::whole ? static_cast<hssize_t>(elements_) : H5Sget_select_npoints(space_.get());
                texts = repacked_texts(data, static_cast<std::size_t>(elements), kob_size, size);
                source = texts.data();
            }
        }
        const ChunkTransfer chunks = is_filtered_ || is_large_block()
                                         ? selection_.write_chunks(dataset_.get(), transferred, source)
                                         : ChunkTransfer::left;
        const herr_t result = chunks != ChunkTransfer::left ? chunk_result(chunks)
                              : mode == access_mode::whole
                                  ? write_whole(transferred, source)
                                  : H5Dwrite(dataset_.get(), transferred, memory, space_.get(), H5P_DEFAULT, source);
        return finish(result);
    }

    /// Ends a transfer of this result. HDF5 may learn only now that the disk is full.
    std::int32_t finish(herr_t result)
    {
        if (result >= 0) {
            result = dataset_.close();
        }
        return result < 0 ? refuse(dataset_write::write, result) : 0;
    }

    [[nodiscard]] herr_t write_whole(hid_t transferred, const void* source) const
    {
        const auto converted = write_converted(dataset_.get(), stored_.type, transferred, source);
        return converted ? *converted : H5Dwrite(dataset_.get(), transferred, H5S_ALL, H5S_ALL, H5P_DEFAULT, source);
    }

    const WriteOptions& options_;
    Selection selection_;
    H5T_class_t type_class_{};
    hid_t memory_ = H5I_INVALID_HID;
    hid_t native_ = H5I_INVALID_HID;
    Id dataset_;
    Id space_;          ///< the dataset's; none for a new scalar, and none for a row until it proves to be no chunk
    StoredShape shape_; ///< of a dataset that was there, with the extents that it has grown to
    FileType stored_;
    hsize_t elements_ = 0;
    hsize_t leading_extent_ = 0;
    bool is_filtered_ = false;
    bool is_outgrown_ = false;        ///< has the dataset grown since `space_` was taken?
    bool is_row_ = false;             ///< is the block a whole row that may be a chunk?
    bool is_stored_as_given_ = false; ///< is the stored type the caller's?
};

herr_t read_whole(hid_t dataset, hid_t stored, hid_t transferred, void* data)
{
    const auto converted = read_converted(dataset, stored, transferred, data);
    return converted ? *converted : H5Dread(dataset, transferred, H5S_ALL, H5S_ALL, H5P_DEFAULT, data);
}

} // namespace

std::int32_t KOB_H5Dwrite(const char* name, const void* data, std::int32_t kob_type, std::size_t data_size,
                          std::size_t kob_size, const hsize_t* dims, std::int32_t rank, const std::int64_t* count,
                          const std::int64_t* start, std::int32_t mode, hid_t location, std::int32_t filter_flags,
                          const std::int32_t* filter_params, WriteOptions options)
{
    return DatasetWrite{{name, data, kob_type, data_size, kob_size, dims, rank, count, start, mode, location,
                         filter_flags, filter_params},
                        options}
        .run();
}

std::int32_t KOB_H5Dread(const char* name, void* data, std::int32_t kob_type, std::size_t data_size,
                         const hsize_t* dims, std::int32_t rank, const std::int64_t* count, const std::int64_t* start,
                         std::int32_t mode, hid_t location, std::int32_t* filter_flags, std::int32_t* filter_params,
                         std::uint64_t* stored_size, Report report, plain::Block* plain)
{
    using namespace dataset_read;
    const auto refuse = [&](Condition condition, std::int32_t quantity = -1) {
        if (report == Report::loud) {
            report_error(message::dataset_read, condition.number, name, kob_type, data_size, quantity);
        }
        return condition.code;
    };

    Selection chosen{mode, rank, count, start};
    if (is_empty(dims, rank) || chosen.is_empty()) {
        return 0;
    }
    if (plain != nullptr && mode == access_mode::whole && stored_size == nullptr && filter_flags != nullptr &&
        filter_params != nullptr && plain->read_dataset({name, kob_type, data_size, dims, rank, data})) {
        *filter_flags = 0;
        std::fill_n(filter_params, 2, 0);
        return 0;
    }
    H5T_class_t type_class{};
    hid_t memory = H5I_INVALID_HID;
    if (KOB_H5gettype(kob_type, data_size, type_class, memory) != 0) {
        return refuse(memory_type);
    }
    const Id dataset{H5Dopen2(location, name, H5P_DEFAULT), H5Dclose};
    if (!dataset && !has_link(location, name)) {
        return refuse(missing);
    }
    const Id stored{H5Dget_type(dataset.get()), H5Tclose};
    const bool is_stored_as_asked = is_stored_as(stored.get(), memory, kob_type);
    if (const H5T_class_t found = is_stored_as_asked ? type_class : stored_class(stored.get()); found != type_class) {
        return refuse(other_class, found);
    }
    const std::size_t size = is_stored_as_asked ? data_size : H5Tget_size(stored.get());
    if (stored_size != nullptr) {
        *stored_size = size;
    }
    if (kob_type != type_code::real && size > data_size) {
        return refuse(kob_type == type_code::text ? wider_text : wider_integer, printable(size));
    }

    const Id space{H5Dget_space(dataset.get()), H5Sclose};
    StoredShape shape = stored_shape(space.get());
    if (rank > 0 ? shape.rank != rank : shape.elements != 1) {
        return refuse(other_rank, shape.rank);
    }
    const auto used = static_cast<std::size_t>(std::max(shape.rank, 0));
    if (mode == access_mode::whole) {
        if (const std::int32_t differing = rank > 0 ? first_difference(shape, dims) : -1; differing >= 0) {
            return refuse(other_extent, differing);
        }
    } else {
        // A read grows nothing: every dimension counts as fixed at its present extent.
        const auto fixed = shape.extents;
        std::int32_t outside = -1;
        if (!chosen.place({shape.extents.data(), used}, {fixed.data(), used}, outside)) {
            return refuse(mode == access_mode::block ? block_outside : point_outside, outside);
        }
    }

    const bool is_filtered = header_facts(dataset.get()).may_have_filters;
    if (filter_flags != nullptr && filter_params != nullptr) {
        *filter_flags = 0;
        std::fill_n(filter_params, 2, 0);
        const Refusal refusal =
            is_filtered ? report_filters(dataset.get(), kob_type, *filter_flags, filter_params) : Refusal{};
        if (refusal) {
            return refuse(refusal.condition, refusal.quantity);
        }
    }

    Id memory_space;
    if (mode != access_mode::whole) {
        memory_space = chosen.memory_space();
        if (!memory_space || !chosen.select(space.get())) {
            return refuse(selection);
        }
    }
    const hid_t transferred = kob_type == type_code::text ? stored.get() : memory;
    const ChunkTransfer chunks =
        is_filtered ? chosen.read_chunks(dataset.get(), transferred, data) : ChunkTransfer::left;
    const herr_t result = chunks != ChunkTransfer::left ? chunk_result(chunks)
                          : mode == access_mode::whole
                              ? read_whole(dataset.get(), stored.get(), transferred, data)
                              : H5Dread(dataset.get(), transferred, memory_space.get(), space.get(), H5P_DEFAULT, data);
    if (result < 0) {
        return refuse(read, result);
    }
    if (kob_type == type_code::text && rank == 0) {
        std::fill_n(static_cast<char*>(data) + size, data_size - size, ' ');
    }
    return 0;
}

} // namespace kob
