// SPDX-License-Identifier: BSD-3-Clause
// Writes the blocks of every_kind.hpp that describe a model; their numbers are small enough for a test to know them.
#include "every_kind.hpp"

#include "state_blocks.hpp"

namespace kob_test {
namespace {

void write_descriptions(std::int64_t group)
{
    TextBlock text;
    text.nlines = 2;
    text.length = 12;
    text.line = "first line  second line ";
    EXPECT_EQ(text.write(group), 0) << text.errors;

    Parts parts;
    parts.npart = 3;
    parts.off = 4; // no colours
    parts.length = 5;
    parts.pid = {5, 6, 9};
    parts.title = "platebolt      ";
    parts.mid = {1, 1, 2};
    parts.mtyp = {70, 71, 72};
    EXPECT_EQ(parts.write(group), 0) << parts.errors;

    EntityList attributes{attributes_kind};
    attributes.nent = 2;
    attributes.nuid = 2;
    attributes.length = 5;
    attributes.entid = {1, 2};
    attributes.title = "left right";
    attributes.uid = {10, 11, 20, 21};
    EXPECT_EQ(attributes.write(group), 0) << attributes.errors;

    EntityList identifiers{identifiers_kind};
    identifiers.etyp = "ELEMENT";
    identifiers.nent = 2;
    identifiers.entid = {11, 12};
    EXPECT_EQ(identifiers.write(group), 0) << identifiers.errors;
}

void write_groups(const KobFile& file)
{
    Collector collector;
    collector.ncoll = 2;
    collector.ntyp = 2;
    collector.idcoll = {7, 8};
    collector.etyp = {"NODE", "ELEMENT"};
    collector.nent = {3, 1, 0, 2};
    collector.entid = {1, 2, 3, 11, 12, 13};
    EXPECT_EQ(collector.write(file.handle()), 0) << collector.errors;

    Properties properties;
    properties.zoneid = 5;
    properties.nent = 2;
    properties.nbid = properties.nbfloat = properties.nbstring = 1;
    properties.nbint = 2;
    properties.length = 6;
    properties.entid = {11, 12};
    properties.idparam = {3, 4};
    properties.iparam = {31, 32, 41, 42};
    properties.fparam = {0.5, 0.25};
    properties.cparam = "steel alloy ";
    const std::int64_t block = file.new_group("constant/properties/ELEMENT/SHELL/PART5/kobblock");
    constexpr std::int32_t all_sections = 15;
    EXPECT_EQ(properties.write(block, all_sections), 0) << properties.errors;
}

} // namespace

void write_model_kinds(KobFile& file)
{
    write_descriptions(file.handle());
    write_groups(file);
    ActivFlags flags;
    flags.set_state(); // state 12 at 0.5
    flags.nent = 3;
    flags.entid = {11, 12, 13};
    flags.flags = {1, 0, 1};
    EXPECT_EQ(flags.write(file.handle()), 0) << flags.errors;
}

} // namespace kob_test
