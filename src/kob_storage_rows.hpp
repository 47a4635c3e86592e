// SPDX-License-Identifier: BSD-3-Clause
// Reading a dataset of numbers some rows at a time: it is opened once.
#pragma once

#include "kob_id.hpp"
#include "kob_storage_types.hpp"

#include <cstddef>
#include <cstdint>

namespace kob {

/// A dataset that stays open while its rows are read, into numbers of one type and size.
class RowReader {
public:
    /// `rank` is what the dataset is expected to have; `width` what a row is expected to hold.
    RowReader(hid_t location, const char* name, std::int32_t kob_type, std::size_t size, std::int32_t rank,
              hsize_t width);

    /// Is it there, as expected?
    [[nodiscard]] bool is_readable() const { return is_readable_; }
    /// Does it lie in the file in one piece, so that some rows cost no more than their own size?
    [[nodiscard]] bool is_contiguous() const { return kob::is_contiguous(dataset_.get()); }
    /// Negative on failure, also for rows that are not there.
    herr_t read(hsize_t first, hsize_t count, void* data) const;

private:
    Id dataset_;
    Id space_;
    StoredShape shape_;
    hid_t memory_ = H5I_INVALID_HID;
    bool is_readable_ = false;
};

} // namespace kob
