// SPDX-License-Identifier: BSD-3-Clause
// The storage helpers' error conditions: the number printed and the code returned, which follow no formula.
#pragma once

#include <cstdint>

namespace kob {

struct Condition {
    std::int32_t number;
    std::int32_t code;
};

namespace attribute_write {
constexpr Condition memory_type{1, -1001};
constexpr Condition file_type{2, -1002};
constexpr Condition narrower_file{3, -1003};
constexpr Condition other_class{10, -1010};
constexpr Condition other_rank{20, -1020};
constexpr Condition other_extent{30, -1030};
constexpr Condition dataspace{40, -1040};
constexpr Condition create{100, -1100};
constexpr Condition write{999, -1999};
} // namespace attribute_write

namespace dataset_write {
constexpr Condition no_dims{0, -3000};
constexpr Condition unlimited_whole{1, -3000};
constexpr Condition memory_type{2, -3001};
constexpr Condition file_type{3, -3002};
constexpr Condition narrower_file{4, -3003};
constexpr Condition other_class{10, -3010};
constexpr Condition other_rank{20, -3020};
constexpr Condition other_extent{30, -6030};  // shares the reader's code
constexpr Condition block_outside{31, -6031}; // shares the reader's code
constexpr Condition point_outside{32, -6032}; // shares the reader's code
constexpr Condition create_dataspace{40, -2040};
constexpr Condition type_order{50, -2050};
constexpr Condition property_list{60, -2060};
constexpr Condition chunked_layout{70, -2070};
constexpr Condition chunk_extents{80, -2080};
constexpr Condition contiguous_layout{90, -2090};
constexpr Condition compact_layout{100, -2100};
constexpr Condition fill_made{110, -2110};
constexpr Condition fill_set{120, -2120};
constexpr Condition scale_factor{130, -2130};
constexpr Condition scale_offset_real{140, -2140};
constexpr Condition scale_offset_integer{150, -2150};
constexpr Condition shuffle{160, -2160};
constexpr Condition deflate_level{170, -2170};
constexpr Condition deflate{180, -2180};
constexpr Condition create{190, -2190};
constexpr Condition extend{100, -3100};
constexpr Condition file_dataspace{110, -3110};
constexpr Condition memory_dataspace{120, -3120};
constexpr Condition write{999, -3999};
} // namespace dataset_write

namespace attribute_read {
constexpr Condition memory_type{1, -4001};
constexpr Condition missing{2, -4002};
constexpr Condition other_class{3, -4003};
constexpr Condition wider_text{10, -4010};
constexpr Condition wider_integer{11, -4011};
constexpr Condition other_rank{20, -4020};
constexpr Condition other_extent{30, -4030};
constexpr Condition read{999, -4999};
} // namespace attribute_read

namespace dataset_read {
constexpr Condition memory_type{1, -6001};
constexpr Condition missing{2, -6002};
constexpr Condition other_class{3, -6003};
constexpr Condition wider_text{10, -6010};
constexpr Condition wider_integer{11, -6011};
constexpr Condition other_rank{20, -6020};
constexpr Condition other_extent{30, -6030};
constexpr Condition block_outside{31, -6031};
constexpr Condition point_outside{32, -6032};
constexpr Condition scale_offset_integer{40, -6040};
constexpr Condition scale_offset_real{50, -6050};
constexpr Condition scale_offset_text{60, -6060};
constexpr Condition selection{120, -6120};
constexpr Condition read{999, -6999};
} // namespace dataset_read

} // namespace kob
