// SPDX-License-Identifier: BSD-3-Clause
// The command line of "kob import", and the care for the output file.

#include "import.hpp"

#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include <CLI/CLI.hpp>

#include "draft.hpp"
#include "import_frd.hpp"
#include "terminal.hpp"
#include "verbs.hpp"

namespace kob::program {

namespace {

namespace fs = std::filesystem;

void check(const ImportOptions& options)
{
    std::error_code ignored;
    if (fs::is_directory(options.output, ignored)) {
        throw Failure{exit_usage, fmt::format("\"{}\" is a folder", printable(options.output))};
    }
    if (fs::equivalent(options.input, options.output, ignored)) {
        throw Failure{exit_usage, "the output would replace the input"};
    }
    if (fs::is_directory(options.input, ignored)) {
        throw Failure{exit_cannot_read, fmt::format("\"{}\" is a folder", printable(options.input))};
    }
}

/// "DISP=6" as a name and the decimal digits to keep.
void add_scale(Storage& storage, const std::string& text)
{
    constexpr int largest_exponent = 256; // the filter's own limit
    const auto equals = text.rfind('=');
    int digits = -1;
    if (equals != std::string::npos && equals > 0) {
        const std::string number = text.substr(equals + 1);
        std::size_t used = 0;
        try {
            digits = std::stoi(number, &used);
        } catch (const std::exception&) {
            digits = -1;
        }
        if (used != number.size()) digits = -1;
    }
    if (digits < 0 || digits > largest_exponent) {
        throw CLI::ValidationError("--scale", "takes VARIABLE=DIGITS with 0 to 256 digits, for example DISP=6");
    }
    storage.scale[text.substr(0, equals)] = digits;
}

} // namespace

int import_file(const ImportOptions& options)
{
    check(options);
    Draft draft{options.output};
    std::error_code ignored;
    if (!options.force && fs::exists(options.output, ignored)) draft.refuse();

    std::optional<FrdImport> source;
    std::size_t told = 0;
    const auto tell = [&] {
        for (; source && told < source->warnings().size(); ++told) {
            complain("kob import", "warning: " + printable(source->warnings()[told]));
        }
    };
    try {
        source.emplace(options);
        tell();
        Target target{draft.path().string(), options.storage};
        source->write(target);
        target.close();
        tell();
    } catch (const frd::Error& error) {
        throw Failure{exit_cannot_read, fmt::format("{}: {}", printable(options.input), printable(error.what()))};
    }
    draft.become_target(options.force);
    return 0;
}

void add_import(CLI::App& app, int& exit_code)
{
    auto* verb = app.add_subcommand("import", "turn a solver's result file (.frd) into a KOB file");
    auto options = std::make_shared<ImportOptions>();
    verb->add_option("RESULT", options->input, "ASCII result file (.frd)")->required();
    verb->add_option("OUTPUT", options->output, "KOB file to write")->required();
    verb->add_option(
        "--units", options->units,
        "units of the model: length,mass,time[,temperature], for example mm,t,s,K (default: none claimed)");
    verb->add_option("--float", options->storage.float_size, "bytes of a stored number: 4 or 8")
        ->check(CLI::IsMember({4, 8}))
        ->capture_default_str();
    verb->add_option("--deflate", options->storage.deflate, "compress with this level, 1 to 9 (default: not at all)")
        ->check(CLI::Range(0, 9));
    verb->add_flag("--shuffle", options->storage.shuffle, "sort the bytes of numbers before they are compressed");
    auto scales = std::make_shared<std::vector<std::string>>();
    verb->add_option("--scale", *scales,
                     "VARIABLE=DIGITS: keep this many decimal digits of a result, and store it in fewer bits")
        ->take_all();
    verb->add_flag("--force", options->force, "replace the output if it exists");
    verb->callback([options, scales, &exit_code] {
        for (const auto& text : *scales) add_scale(options->storage, text);
        run_verb("kob import", exit_code, [&] { return import_file(*options); });
    });
}

} // namespace kob::program
