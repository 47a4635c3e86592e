// SPDX-License-Identifier: BSD-3-Clause
// Owner of one HDF5 identifier.
#pragma once

#include <hdf5.h>

#include <utility>

namespace kob {

/// Owns one HDF5 identifier and gives it back on scope exit. Moves, does not copy.
class Id {
public:
    using Close = herr_t (*)(hid_t);

    Id() = default;
    Id(hid_t id, Close closer) noexcept : id_{id}, close_{closer} {}
    Id(Id&& other) noexcept : id_{other.release()}, close_{other.close_} {}
    Id& operator=(Id&& other) noexcept
    {
        if (this != &other) {
            close();
            close_ = other.close_;
            id_ = other.release();
        }
        return *this;
    }
    Id(const Id&) = delete;
    Id& operator=(const Id&) = delete;
    ~Id() { close(); }

    [[nodiscard]] hid_t get() const noexcept { return id_; }
    explicit operator bool() const noexcept { return id_ >= 0; }

    /// Hands the identifier over: it is no longer closed here.
    hid_t release() noexcept { return std::exchange(id_, H5I_INVALID_HID); }

    /// Closes now and tells how that went; what HDF5 could not write before comes up here.
    herr_t close() noexcept
    {
        const hid_t id = release();
        return id >= 0 ? close_(id) : 0;
    }

private:
    hid_t id_ = H5I_INVALID_HID;
    Close close_ = nullptr;
};

} // namespace kob
