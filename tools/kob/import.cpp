// SPDX-License-Identifier: BSD-3-Clause
// The command line of "kob import", and the care for the output file.

#include "import.hpp"

#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "command_line.hpp"
#include "draft.hpp"
#include "import_frd.hpp"
#include "import_matrix.hpp"
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

/// What the file is, its name says.
std::unique_ptr<Source> open_source(const ImportOptions& options)
{
    const std::string extension = fs::path{options.input}.extension().string();
    const bool market = extension == ".mtx";
    const bool equations = EquationsImport::is_meant(extension);
    const auto refuse = [&](const char* option, const char* reason) {
        throw Failure{exit_usage, fmt::format("{} {}", option, reason)};
    };
    if (market) {
        if (options.entity.empty()) refuse("--entity", "is needed: the type of the entity that the matrix belongs to");
        if (options.variable.empty()) refuse("--variable", "is needed: the name of the matrix");
    } else {
        const char* reason = "is for Matrix Market files (.mtx) alone";
        if (!options.entity.empty()) refuse("--entity", reason);
        if (!options.variable.empty()) refuse("--variable", reason);
        if (options.id) refuse("--id", reason);
        if (!options.form.empty()) refuse("--as", reason);
    }
    if (market || equations) {
        if (options.series) refuse("--series", "is for result files: a matrix has no states");
        if (!options.units.empty()) refuse("--units", "is for result files: a matrix has no units");
    }
    if (market) return std::make_unique<MarketImport>(options);
    if (equations) return std::make_unique<EquationsImport>(options);
    return std::make_unique<FrdImport>(options);
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
        wrong_value("--scale", "takes VARIABLE=DIGITS with 0 to 256 digits, for example DISP=6");
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

    std::unique_ptr<Source> source;
    ScaleErrors errors;
    std::size_t told = 0;
    const auto tell = [&] {
        for (; source && told < source->warnings().size(); ++told) {
            complain("kob import", "warning: " + printable(source->warnings()[told]));
        }
    };
    try {
        source = open_source(options);
        tell();
        Target target{draft.path().string(), options.storage};
        source->write(target);
        target.close();
        tell();
        errors = target.scale_errors();
    } catch (const text::Error& error) {
        throw Failure{exit_cannot_read, fmt::format("{}: {}", printable(options.input), printable(error.what()))};
    }
    draft.become_target(options.force);
    for (const auto& [variable, error] : errors.largest()) {
        fmt::print("{}: the largest error of a value is {}, with {} decimals\n", printable(variable),
                   number_text(error), options.storage.scale.at(variable));
    }
    return 0;
}

void add_import(CLI::App& app, int& exit_code)
{
    Verb verb{app, "import", "turn a solver's result file (.frd) or a matrix (.mtx, .sti) into a KOB file"};
    auto options = std::make_shared<ImportOptions>();
    verb.option("INPUT", options->input,
                "ASCII result file (.frd), Matrix Market file (.mtx), or stored matrices (.sti, .mas, .dof)")
        .required();
    verb.option("OUTPUT", options->output, "KOB file to write").required();
    verb.option("--units", options->units,
                "units of the model: length,mass,time[,temperature], for example mm,t,s,K (default: none claimed)");
    verb.option("--float", options->storage.float_size, "bytes of a stored number: 4 or 8")
        .one_of({4, 8})
        .shows_default();
    verb.option("--deflate", options->storage.deflate, "compress with this level, 1 to 9 (default: not at all)")
        .between(0, 9);
    verb.flag("--shuffle", options->storage.shuffle, "sort the bytes of numbers before they are compressed");
    auto scales = std::make_shared<std::vector<std::string>>();
    verb.option("--scale", *scales,
                "VARIABLE=DIGITS: keep this many decimal digits of a result, and store it in fewer bits");
    verb.flag("--series", options->series, "store the states of a result in one block, not in one for each state");
    verb.option("--entity", options->entity, "of a .mtx file: type of the entity that the matrix belongs to");
    verb.option("--variable", options->variable, "of a .mtx file: name of the matrix");
    verb.option("--id", options->id, "of a .mtx file: identifier of the entity (default: 1)")
        .between(0, std::numeric_limits<std::int32_t>::max());
    verb.option("--as", options->form,
                "of a .mtx file: kind of block (default: sparse for coordinates, dense or "
                "triangular for an array)")
        .one_of({"sparse", "dense", "triangular"});
    verb.flag("--force", options->force, "replace the output if it exists");
    verb.runs([options, scales, &exit_code] {
        for (const auto& text : *scales) add_scale(options->storage, text);
        run_verb("kob import", exit_code, [&] { return import_file(*options); });
    });
}

} // namespace kob::program
