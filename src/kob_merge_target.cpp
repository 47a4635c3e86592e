// SPDX-License-Identifier: BSD-3-Clause
// Writing into the target.
#include "kob_merge_target.hpp"

#include "kob_merge_files.hpp"
#include "kob_message.hpp"

namespace kob::merge {
namespace {

constexpr char node_type[] = "NODE";
constexpr char coordinate_variable[] = "COORDINATE";

void say_scale_offset(const EntityResults& block, const Compression& compression)
{
    const auto text = [](const Name& name) { return std::string{name.text()}; };
    say(message::merge_scale_offset, text(block.etypvar).c_str(), compression.flags);
    for (std::int32_t bit = filter_flag::scale_offset_real; bit > 0; bit /= 2) {
        say("%1d", (compression.flags & bit) != 0 ? 1 : 0);
    }
    say(message::merge_scale_offset_params, compression.params[0], compression.params[1]);
    say(message::merge_scale_offset_names, text(block.etyp).c_str(), text(block.etypvar).c_str(),
        text(block.etypzone).c_str(), text(block.etypframe).c_str());
}

} // namespace

void fail_writing(const BlockKind& kind, std::int32_t status, const std::string& path)
{
    report_error(message::tool_writing, kind.name, status);
    if (kind.key != kind::entity_results.key) {
        report_error(message::tool_block_path, path.c_str());
    }
    throw Stop{status};
}

bool is_coordinates(const EntityResults& block)
{
    return block.etyp.text() == node_type && block.etypvar.text() == coordinate_variable;
}

Compression Target::compression_of(const EntityResults& block) const
{
    Compression compression = or_default(block.compression);
    const std::int32_t* exponent = storing_.exponents.find(block.etypvar.text());
    if (exponent != nullptr) {
        compression.params[0] = *exponent;
        compression.flags |= filter_flag::scale_offset_real;
        if (verbosity_ > 1) {
            say_scale_offset(block, compression);
        }
    } else if (is_coordinates(block)) {
        compression.flags &= ~filter_flag::scale_offset_real;
    }
    return compression;
}

bool Target::stores_unfiltered(const EntityResults& block) const
{
    using namespace filter_flag;
    constexpr std::int32_t of_values = deflate_real | shuffle_real | scale_offset_real;
    return (storing_.defaults.flags & of_values) == 0 && storing_.exponents.find(block.etypvar.text()) == nullptr;
}

void Target::write_results(const std::string& path, const EntityResults& block, const Compression& compression) const
{
    const Id group = create(path);
    if (const std::int32_t status =
            block.write({.generation = group_.generation, .group = group.get(), .compression = compression});
        status != 0) {
        fail_writing(kind::entity_results, status, path);
    }
}

} // namespace kob::merge
