// SPDX-License-Identifier: BSD-3-Clause
// Result files of the older layout, for tests that do not call its writers themselves.
#pragma once

#include <cstdint>
#include <string>

#include "merge_model.hpp"

namespace kob_test {

/// Writes the file header of the older layout, and the samples of older_blocks.hpp.
void write_older_kinds(std::int64_t group);

void write_older_header(std::int64_t group);
/// One line of text.
void write_older_text(std::int64_t group, const std::string& name);
void write_older_index(std::int64_t group, std::int32_t nindex);
/// The file header, and all blocks of the model or a domain's part of them.
void write_older_model(std::int64_t group, const BarModel& model, const BarModel::Cut& cut);
/// A block of each kind that the older layout has and the merger leaves out.
void write_older_kinds_left_out(std::int64_t group);

} // namespace kob_test
