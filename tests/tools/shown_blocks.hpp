// SPDX-License-Identifier: BSD-3-Clause
// The contents of a file as the program shows them, to compare two files with.
#pragma once

#include <map>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "program.hpp"

namespace kob_test {

/// All attributes and values of a block.
inline nlohmann::json shown_block(const std::string& file, const std::string& block)
{
    const Outcome shown = run_program({"show", "--json", "--all", file, block});
    EXPECT_EQ(shown.exit_code, 0) << block << ": " << shown.err;
    nlohmann::json result = shown.json();
    if (result.is_object()) result.erase("number"); // the place in the listing
    return result;
}

/// Each block, by path; without the file header.
inline std::map<std::string, nlohmann::json> shown_blocks(const std::string& path)
{
    std::map<std::string, nlohmann::json> blocks;
    const Outcome listed = run_program({"ls", "--json", path});
    EXPECT_EQ(listed.exit_code, 0) << listed.err;
    const nlohmann::json list = listed.json();
    for (const nlohmann::json& entry : list["blocks"]) {
        const std::string name = entry["path"];
        if (name != "kobheader") blocks[name] = shown_block(path, name);
    }
    EXPECT_FALSE(blocks.empty()) << path;
    return blocks;
}

/// The values of one dataset.
inline nlohmann::json dataset(const nlohmann::json& block, const std::string& name)
{
    for (const nlohmann::json& item : block["datasets"])
        if (item["name"] == name) return item["values"];
    ADD_FAILURE() << "no dataset " << name;
    return {};
}

} // namespace kob_test
