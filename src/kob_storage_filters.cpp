// SPDX-License-Identifier: BSD-3-Clause
// Filters, layout and chunks of datasets.
#include "kob_storage_filters.hpp"

#include "kob_module.hpp"
#include "kob_storage.hpp"
#include "kob_storage_types.hpp"

#include <algorithm>
#include <array>

namespace kob {
namespace {

constexpr hsize_t compact_limit = 24000;        // bytes; small data live in the object header
constexpr hsize_t largest_unfiltered_count = 7; // so few elements never pay for a chunk index
constexpr std::int32_t largest_scale_factor = 256;
constexpr std::int32_t largest_deflate_level = 9;

constexpr hsize_t largest_divided_chunk = 2000; // the smallest is smallest_divided_extent

bool grows(const LayoutRequest& request)
{
    return std::find(request.maximum.begin(), request.maximum.end(), growable) != request.maximum.end();
}

bool is_compact(const LayoutRequest& request)
{
    return !grows(request) && !request.filters.any() &&
           product(std::array{request.elements, static_cast<hsize_t>(request.kob_size)}) <= compact_limit;
}

Refusal set_layout(const LayoutRequest& request, hid_t properties)
{
    using namespace dataset_write;
    const bool growing = grows(request);
    if (!growing && !request.filters.any()) {
        const herr_t result = H5Pset_layout(properties, H5D_CONTIGUOUS);
        return result < 0 ? Refusal{contiguous_layout, result} : Refusal{};
    }
    if (const herr_t result = H5Pset_layout(properties, H5D_CHUNKED); result < 0) {
        return {chunked_layout, result};
    }
    std::array<hsize_t, H5S_MAX_RANK> chunk{};
    for (std::size_t i = 0; i < request.extents.size(); ++i) {
        if (!growing) {
            chunk[i] = request.extents[i]; // one chunk holds the whole dataset
        } else if (request.maximum[i] == growable) {
            chunk[i] = static_cast<hsize_t>(std::max(chunk_size(), 1));
        } else {
            chunk[i] = chunk_extent(request.extents[i]);
        }
    }
    const herr_t result = H5Pset_chunk(properties, static_cast<int>(request.extents.size()), chunk.data());
    return result < 0 ? Refusal{chunk_extents, result} : Refusal{};
}

Refusal set_scale_offset(const LayoutRequest& request, hid_t native, hid_t properties)
{
    using namespace dataset_write;
    std::array<std::byte, 8> fill{};
    if (KOB_H5getfillvalue(request.kob_type, request.kob_size, fill.data()) != 0) {
        return {fill_made};
    }
    if (const herr_t result = H5Pset_fill_value(properties, native, fill.data()); result < 0) {
        return {fill_set, result};
    }
    if (request.kob_type == type_code::integer) {
        const herr_t result = H5Pset_scaleoffset(properties, H5Z_SO_INT, H5Z_SO_INT_MINBITS_DEFAULT);
        return result < 0 ? Refusal{scale_offset_integer, result} : Refusal{};
    }
    const std::int32_t factor = request.filter_params[0];
    if (factor > largest_scale_factor) {
        return {scale_factor, factor};
    }
    if (factor < 0) {
        return {scale_offset_real, factor};
    }
    const herr_t result = H5Pset_scaleoffset(properties, H5Z_SO_FLOAT_DSCALE, factor);
    return result < 0 ? Refusal{scale_offset_real, result} : Refusal{};
}

Refusal set_deflate(const LayoutRequest& request, hid_t properties)
{
    using namespace dataset_write;
    const std::int32_t level = request.filter_params[1];
    if (level < 0 || level > largest_deflate_level) {
        return {deflate_level, level};
    }
    const auto parameter = static_cast<unsigned>(level);
    const herr_t result = H5Pset_filter(properties, H5Z_FILTER_DEFLATE, H5Z_FLAG_MANDATORY, 1, &parameter);
    return result < 0 ? Refusal{deflate, result} : Refusal{};
}

} // namespace

FilterBits filter_bits(std::int32_t kob_type) noexcept
{
    using namespace filter_flag;
    switch (kob_type) {
    case type_code::text:
        return {0, shuffle_text, deflate_text};
    case type_code::integer:
        return {scale_offset_integer, shuffle_integer, deflate_integer};
    case type_code::real:
        return {scale_offset_real, shuffle_real, deflate_real};
    default:
        return {};
    }
}

FilterRequest filter_request(std::int32_t kob_type, std::int32_t filter_flags, hsize_t elements) noexcept
{
    if (elements <= largest_unfiltered_count) {
        return {};
    }
    const FilterBits bits = filter_bits(kob_type);
    return {(filter_flags & bits.scale_offset) != 0, (filter_flags & bits.shuffle) != 0,
            (filter_flags & bits.deflate) != 0};
}

hsize_t chunk_extent(hsize_t extent) noexcept
{
    if (extent < smallest_divided_extent) {
        return extent;
    }
    hsize_t best = smallest_divided_extent;
    for (hsize_t candidate = best + 1; candidate <= std::min(extent, largest_divided_chunk); ++candidate) {
        if (extent % candidate < extent % best) {
            best = candidate;
        }
    }
    return best;
}

Refusal creation_properties(const LayoutRequest& request, SharedIds& shared, CreationProperties& properties)
{
    using namespace dataset_write;
    if (is_compact(request)) {
        properties.list = shared.compact();
        return properties.list < 0 ? Refusal{compact_layout} : Refusal{};
    }
    properties.owned = Id{H5Pcreate(H5P_DATASET_CREATE), H5Pclose};
    properties.list = properties.owned.get();
    if (properties.list < 0) {
        return {property_list};
    }
    if (const Refusal refusal = set_layout(request, properties.list)) {
        return refusal;
    }
    if (request.filters.scale_offset) {
        H5T_class_t type_class{};
        hid_t native = H5I_INVALID_HID;
        KOB_H5gettype(request.kob_type, request.kob_size, type_class, native);
        if (const Refusal refusal = set_scale_offset(request, native, properties.list)) {
            return refusal;
        }
    }
    // Shuffle before deflate: HDF5 applies filters in the order they are set.
    if (request.filters.shuffle) {
        if (const herr_t result = H5Pset_shuffle(properties.list); result < 0) {
            return {shuffle, result};
        }
    }
    if (request.filters.deflate) {
        return set_deflate(request, properties.list);
    }
    return {};
}

HeaderFacts header_facts(hid_t dataset) noexcept
{
    constexpr unsigned filter_message = 11; // its number in HDF5's file format
    constexpr unsigned old_version = 1;
    H5O_native_info_t info{};
    if (H5Oget_native_info(dataset, &info, H5O_NATIVE_INFO_HDR) < 0) {
        return {};
    }
    return {(info.hdr.mesg.present & (std::uint64_t{1} << filter_message)) != 0, info.hdr.version == old_version};
}

Refusal report_filters(hid_t dataset, std::int32_t kob_type, std::int32_t& filter_flags, std::int32_t* filter_params)
{
    using namespace dataset_read;
    const Id properties{H5Dget_create_plist(dataset), H5Pclose};
    const int filters = H5Pget_nfilters(properties.get());
    const FilterBits bits = filter_bits(kob_type);
    for (int i = 0; i < filters; ++i) {
        // Scale-offset stores its type and factor first; later entries describe the element.
        std::array<unsigned, 20> values{};
        std::size_t count = values.size();
        unsigned flags = 0;
        const H5Z_filter_t filter = H5Pget_filter2(properties.get(), static_cast<unsigned>(i), &flags, &count,
                                                   values.data(), 0, nullptr, nullptr);
        switch (filter) {
        case H5Z_FILTER_DEFLATE:
            filter_flags |= bits.deflate;
            filter_params[1] = printable(values[0]);
            break;
        case H5Z_FILTER_SHUFFLE:
            filter_flags |= bits.shuffle;
            break;
        case H5Z_FILTER_SCALEOFFSET:
            if (kob_type == type_code::text) {
                return {scale_offset_text};
            }
            if (kob_type == type_code::integer && values[0] != H5Z_SO_INT) {
                return {scale_offset_integer, printable(values[0])};
            }
            if (kob_type == type_code::real) {
                if (values[0] != H5Z_SO_FLOAT_DSCALE) {
                    return {scale_offset_real, printable(values[0])};
                }
                filter_params[0] = static_cast<std::int32_t>(values[1]);
            }
            filter_flags |= bits.scale_offset;
            break;
        default:
            break;
        }
    }
    return {};
}

} // namespace kob
