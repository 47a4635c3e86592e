// SPDX-License-Identifier: BSD-3-Clause
// Filters, layout and chunks: from a request to creation properties, and back from what is stored.
#pragma once

#include "kob_id.hpp"
#include "kob_storage.hpp"
#include "kob_storage_codes.hpp"

#include <cstddef>
#include <cstdint>
#include <span>

namespace kob {

/// What a filter flags word asks for one type code.
struct FilterRequest {
    bool scale_offset = false;
    bool shuffle = false;
    bool deflate = false;

    [[nodiscard]] bool any() const { return scale_offset || shuffle || deflate; }
};

/// The bits that concern one type code; a zero bit asks for nothing.
struct FilterBits {
    std::int32_t scale_offset = 0;
    std::int32_t shuffle = 0;
    std::int32_t deflate = 0;
};
FilterBits filter_bits(std::int32_t kob_type) noexcept;

/// The request of a type code; small datasets are never filtered.
FilterRequest filter_request(std::int32_t kob_type, std::int32_t filter_flags, hsize_t elements) noexcept;

/// A condition that was met, with the quantity to print; code 0 when none was.
struct Refusal {
    Condition condition{0, 0};
    std::int32_t quantity = -1;

    explicit operator bool() const { return condition.code != 0; }
};

/// What a new dataset is laid out for.
struct LayoutRequest {
    std::int32_t kob_type;
    std::size_t kob_size;
    std::span<const hsize_t> extents; ///< current extents
    std::span<const hsize_t> maximum; ///< `growable` where they grow
    hsize_t elements;
    FilterRequest filters;
    const std::int32_t* filter_params; ///< decimal scale factor, deflate level
};

/// Creation properties of a new dataset. `owned` stays empty where somebody else keeps them.
struct CreationProperties {
    Id owned;
    hid_t list = H5I_INVALID_HID;
};
Refusal creation_properties(const LayoutRequest& request, SharedIds& shared, CreationProperties& properties);

/// From here on fixed extents of growable datasets are divided into chunks.
constexpr hsize_t smallest_divided_extent = 1000;

/// Chunk extent of a fixed dimension of a growable dataset.
hsize_t chunk_extent(hsize_t extent) noexcept;

/// What the header of a dataset tells at a glance, much quicker than a property list.
struct HeaderFacts {
    bool may_have_filters = true; ///< is there a filter message? Most datasets have none
    bool has_old_format = false;  ///< that of HDF5 1.6, where an index of chunks holds none but those that are there
};
HeaderFacts header_facts(hid_t dataset) noexcept;

/// The filters of a dataset that may have some, set in flags and parameters that are zero before.
Refusal report_filters(hid_t dataset, std::int32_t kob_type, std::int32_t& filter_flags, std::int32_t* filter_params);

} // namespace kob
