// SPDX-License-Identifier: BSD-3-Clause
// The program kob: lists, shows, makes, cuts, links and merges result files.

#include "terminal.hpp"
#include "verbs.hpp"

#include "kob_dp.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>
#include <vector>

using namespace kob::program;

namespace {

std::vector<std::string> verb_names(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* verb : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(verb->get_name());
    return names;
}

/// The first word that is no option; it must be a verb.
const char* first_word(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
        if (argv[i][0] != '-') return argv[i];
    return nullptr;
}

} // namespace

int main(int argc, char** argv)
{
    int exit_code = 0;
    CLI::App app{"Lists, shows, makes, cuts, links and merges KOB result files.", "kob"};
    app.set_version_flag("--version", [] { return trimmed(KOB_get_module_info(1)); });
    app.require_subcommand(1);
    app.footer("Results go to standard output, messages to standard error.\n"
               "Exit codes: 0 fine, 2 wrong command line, 3 something cannot be read.");
    add_info(app, exit_code);
    add_ls(app, exit_code);
    add_show(app, exit_code);
    add_import(app, exit_code);
    add_erase(app, exit_code);
    add_link(app, exit_code);
    add_merge(app, exit_code);
    add_split(app, exit_code);
    add_params(app, exit_code);
    add_upgrade(app, exit_code);

    if (const char* word = first_word(argc, argv)) {
        const std::vector<std::string> verbs = verb_names(app);
        if (std::find(verbs.begin(), verbs.end(), word) == verbs.end()) {
            complain("kob", fmt::format("there is no verb \"{}\"{}", printable(word), suggestion(word, verbs)));
            return exit_usage;
        }
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) { // help or version
        app.exit(asked);
    } catch (const CLI::ParseError& error) {
        complain("kob", fmt::format("{}\nRun \"kob --help\" or \"kob VERB --help\".", error.what()));
        return exit_usage;
    }
    return finish_output(exit_code);
}
