// SPDX-License-Identifier: BSD-3-Clause
// HDF5's error printing, switched off and put back.
#include "kob_entry.hpp"

namespace kob {

QuietHdf5::QuietHdf5() noexcept
{
    // A caller may have set its handler through either generation of HDF5's interface.
    if (H5Eauto_is_v2(H5E_DEFAULT, &is_v2_) < 0 || is_v2_ != 0) {
        H5Eget_auto2(H5E_DEFAULT, &handler_v2_, &data_);
        H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
    } else {
        H5Eget_auto1(&handler_v1_, &data_);
        H5Eset_auto1(nullptr, nullptr);
    }
}

QuietHdf5::~QuietHdf5()
{
    if (is_v2_ != 0) {
        H5Eset_auto2(H5E_DEFAULT, handler_v2_, data_);
    } else {
        H5Eset_auto1(handler_v1_, data_);
    }
}

} // namespace kob
