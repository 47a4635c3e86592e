// SPDX-License-Identifier: BSD-3-Clause
// kob params: the exponents of a parameter file.

#include "params.hpp"

#include "command_line.hpp"
#include "terminal.hpp"
#include "verbs.hpp"

#include "kob_dp.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace kob::program {

Exponents read_exponents(const std::string& path)
{
    constexpr std::size_t name_length = 256;
    const std::int32_t quiet = 0;
    const auto read = [&](std::int32_t pass, Exponents& table, std::int32_t& count) {
        std::int32_t status = 0;
        KOB_READ_PARAM(path.c_str(), 0, &pass, &count, table.names.data(), table.values.data(), &quiet, &status);
        if (status < 0) throw Failure{exit_cannot_read, fmt::format("\"{}\" cannot be read", printable(path))};
    };
    Exponents table;
    std::int32_t count = 0;
    read(0, table, count);
    table.names.assign(static_cast<std::size_t>(count) * name_length, ' ');
    table.values.assign(static_cast<std::size_t>(count), 0);
    read(1, table, count);
    table.values.resize(static_cast<std::size_t>(count));
    return table;
}

std::string Exponents::name(std::size_t i) const
{
    constexpr std::size_t name_length = 256;
    return trimmed(std::string_view{names}.substr(name_length * i, name_length));
}

void add_params(CLI::App& app, int& exit_code)
{
    struct Options {
        std::string path;
        bool json = false;
    };
    Verb verb{app, "params", "show a parameter file: variables and exponents for kob merge"};
    auto options = std::make_shared<Options>();
    verb.option("FILE", options->path, "text file with a variable and an exponent on each line").required();
    verb.flag("--json", options->json, "print JSON");
    verb.runs([options, &exit_code] {
        run_verb("kob params", exit_code, [&] {
            const Exponents table = read_exponents(options->path);
            if (options->json) {
                nlohmann::ordered_json list = nlohmann::ordered_json::array();
                for (std::size_t i = 0; i < table.values.size(); ++i)
                    list.push_back({{"variable", table.name(i)}, {"exponent", table.values[i]}});
                const nlohmann::ordered_json result{{"file", options->path}, {"exponents", list}};
                fmt::print("{}\n", result.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
                return 0;
            }
            Table rows{{"VARIABLE", "EXPONENT"}};
            rows.align_right(1);
            for (std::size_t i = 0; i < table.values.size(); ++i)
                rows.add({printable(table.name(i)), fmt::format("{}", table.values[i])});
            rows.print();
            return 0;
        });
    });
}

} // namespace kob::program
