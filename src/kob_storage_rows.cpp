// SPDX-License-Identifier: BSD-3-Clause
// Reading some rows of a dataset.
#include "kob_storage_rows.hpp"

namespace kob {

RowReader::RowReader(hid_t location, const char* name, std::int32_t kob_type, std::size_t size, std::int32_t rank,
                     hsize_t width)
    : dataset_{H5Dopen2(location, name, H5P_DEFAULT), H5Dclose}, space_{H5Dget_space(dataset_.get()), H5Sclose},
      shape_{stored_shape(space_.get())}
{
    H5T_class_t expected{};
    if (KOB_H5gettype(kob_type, size, expected, memory_) != 0) {
        return;
    }
    const Id stored{H5Dget_type(dataset_.get()), H5Tclose};
    const bool fits = kob_type == type_code::real || H5Tget_size(stored.get()) <= size;
    is_readable_ = fits && shape_.rank == rank && rank > 0 && stored_class(stored.get()) == expected &&
                   product({shape_.extents.data() + 1, static_cast<std::size_t>(rank - 1)}) == width;
}

herr_t RowReader::read(hsize_t first, hsize_t count, void* data) const
{
    if (!is_readable_ || first > shape_.extents[0] || count > shape_.extents[0] - first) {
        return -1;
    }
    std::array<hsize_t, H5S_MAX_RANK> start{first};
    std::array<hsize_t, H5S_MAX_RANK> counts = shape_.extents;
    counts[0] = count;
    const herr_t result =
        H5Sselect_hyperslab(space_.get(), H5S_SELECT_SET, start.data(), nullptr, counts.data(), nullptr);
    return result < 0 ? result : H5Dread(dataset_.get(), memory_, H5S_BLOCK, space_.get(), H5P_DEFAULT, data);
}

} // namespace kob
