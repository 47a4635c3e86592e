// SPDX-License-Identifier: BSD-3-Clause
// The border between callers and the library: status out, nothing unwinds, HDF5 stays silent.
#pragma once

#include "kob_message.hpp"

#include <hdf5.h>

#include <cstdint>
#include <exception>
#include <new>

namespace kob {

/// Thrown where an argument that the call needs is null; `entry` turns it into status -1 and one line.
struct NullArgument {};

/// The value behind an argument's address.
template <class T> T value(const T* argument)
{
    if (argument == nullptr) {
        throw NullArgument{};
    }
    return *argument;
}

/// Switches HDF5's automatic error printing off for one call and puts the caller's handler back.
class QuietHdf5 {
public:
    QuietHdf5() noexcept;
    ~QuietHdf5();
    QuietHdf5(const QuietHdf5&) = delete;
    QuietHdf5& operator=(const QuietHdf5&) = delete;

private:
    unsigned is_v2_ = 1;
    H5E_auto1_t handler_v1_ = nullptr;
    H5E_auto2_t handler_v2_ = nullptr;
    void* data_ = nullptr;
};

/// Runs the body of an entry point. The body returns the status.
template <class Body> void entry(std::int32_t* status, Body&& body) noexcept
{
    const QuietHdf5 quiet;
    std::int32_t unused = 0;
    std::int32_t& result = status == nullptr ? unused : *status;
    result = 0;
    try {
        result = body();
    } catch (const NullArgument&) {
        report_error(message::null_argument);
        result = -1;
    } catch (const std::bad_alloc&) {
        report_error(message::out_of_memory);
        result = -1;
    } catch (const std::exception& error) {
        report_error(message::unexpected, error.what());
        result = -1;
    }
}

} // namespace kob
