// SPDX-License-Identifier: BSD-3-Clause
// A block of memory that may be refused: chunks are as large as a file says.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <span>

namespace kob {

/// Uninitialized bytes, allocated without an exception. What was there before is gone when it grows.
class Scratch {
public:
    /// At least so many bytes; false when there is no memory.
    [[nodiscard]] bool reserve(std::size_t size)
    {
        if (size > size_) {
            release();
            bytes_.reset(new (std::nothrow) std::byte[size]);
            size_ = bytes_ ? size : 0;
        }
        return bytes_ != nullptr || size == 0;
    }
    void release()
    {
        bytes_.reset();
        size_ = 0;
    }

    [[nodiscard]] std::byte* data() const { return bytes_.get(); }
    [[nodiscard]] std::size_t size() const { return size_; }

private:
    std::unique_ptr<std::byte[]> bytes_;
    std::size_t size_ = 0;
};

} // namespace kob
