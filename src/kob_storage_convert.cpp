// SPDX-License-Identifier: BSD-3-Clause
// Conversion through a buffer that stays in the processor's cache; HDF5 moves pieces that need no conversion.
#include "kob_storage_convert.hpp"

#include "kob_convert.hpp"
#include "kob_id.hpp"
#include "kob_storage_types.hpp"

#include <algorithm>
#include <array>
#include <vector>

namespace kob {
namespace {

/// A dataset in blocks whose elements follow each other: some rows of the first dimension whose rows are small enough.
class Pieces {
public:
    explicit Pieces(hid_t dataset) : space_{H5Dget_space(dataset), H5Sclose}, shape_{stored_shape(space_.get())}
    {
        const auto rank = static_cast<std::size_t>(std::max(shape_.rank, 0));
        count_.fill(1);
        while (divided_ + 1 < rank && elements_after(divided_) > elements_of_piece) {
            ++divided_;
        }
        row_size_ = elements_after(divided_);
        std::copy(shape_.extents.begin() + static_cast<std::ptrdiff_t>(divided_) + 1, shape_.extents.end(),
                  count_.begin() + static_cast<std::ptrdiff_t>(divided_) + 1);
    }

    [[nodiscard]] bool are_many() const { return shape_.elements > static_cast<hssize_t>(elements_of_piece); }

    /// Calls transfer(dataspace of the file, elements) for each, until one fails.
    template <class Transfer> herr_t for_each(Transfer&& transfer)
    {
        const hsize_t rows = elements_of_piece / row_size_;
        herr_t result = 0;
        for (; result >= 0 && start_[0] < shape_.extents[0]; advance()) {
            count_[divided_] = std::min(rows, shape_.extents[divided_] - start_[divided_]);
            const hsize_t elements = count_[divided_] * row_size_;
            result = H5Sselect_hyperslab(space_.get(), H5S_SELECT_SET, start_.data(), nullptr, count_.data(), nullptr);
            if (result >= 0) {
                result = transfer(space_.get(), static_cast<std::size_t>(elements));
            }
        }
        return result;
    }

private:
    [[nodiscard]] hsize_t elements_after(std::size_t dimension) const
    {
        const auto rank = static_cast<std::size_t>(std::max(shape_.rank, 0));
        return dimension < rank ? product({shape_.extents.data() + dimension + 1, rank - dimension - 1}) : 1;
    }

    void advance()
    {
        start_[divided_] += count_[divided_];
        for (std::size_t i = divided_; i > 0 && start_[i] == shape_.extents[i]; --i) {
            start_[i] = 0;
            ++start_[i - 1];
        }
    }

    Id space_;
    StoredShape shape_;
    std::size_t divided_ = 0; ///< the dimension that is cut
    hsize_t row_size_ = 1;    ///< elements of one of its rows
    std::array<hsize_t, H5S_MAX_RANK> start_{};
    std::array<hsize_t, H5S_MAX_RANK> count_{};
};

} // namespace

std::optional<herr_t> write_converted(hid_t dataset, hid_t stored, hid_t memory, const void* data)
{
    const Converter converter{memory, stored};
    if (data == nullptr || !converter.resizes_reals()) {
        return {};
    }
    Pieces pieces{dataset}; // of a dataset in chunks one could cut many: those are HDF5's
    if (!pieces.are_many() || !is_contiguous(dataset)) {
        return {};
    }
    const auto* from = static_cast<const std::byte*>(data);
    std::vector<std::byte> piece(elements_of_piece * H5Tget_size(stored));
    return pieces.for_each([&](hid_t space, std::size_t elements) {
        converter.convert(from, elements, piece.data());
        from += elements * H5Tget_size(memory);
        return H5Dwrite(dataset, stored, H5S_BLOCK, space, H5P_DEFAULT, piece.data());
    });
}

std::optional<herr_t> read_converted(hid_t dataset, hid_t stored, hid_t memory, void* data)
{
    const Converter converter{stored, memory};
    if (data == nullptr || !converter.resizes_reals()) {
        return {};
    }
    Pieces pieces{dataset};
    if (!pieces.are_many() || !is_contiguous(dataset)) {
        return {};
    }
    auto* to = static_cast<std::byte*>(data);
    std::vector<std::byte> piece(elements_of_piece * H5Tget_size(stored));
    return pieces.for_each([&](hid_t space, std::size_t elements) {
        const herr_t result = H5Dread(dataset, stored, H5S_BLOCK, space, H5P_DEFAULT, piece.data());
        if (result >= 0) {
            converter.convert_past_cache(piece.data(), elements, to);
        }
        to += elements * H5Tget_size(memory);
        return result;
    });
}

} // namespace kob
