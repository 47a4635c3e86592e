// SPDX-License-Identifier: BSD-3-Clause
// The verbs of the program: each adds itself to the command line and sets the exit code when it ran.
#pragma once

namespace CLI {
class App;
}

namespace kob::program {

/// Exit codes of every verb; 0 is success.
constexpr int exit_usage = 2;       ///< the command line asks for something that is not there
constexpr int exit_cannot_read = 3; ///< an input cannot be read, or an output cannot be written

void add_ls(CLI::App& app, int& exit_code);
void add_show(CLI::App& app, int& exit_code);
void add_info(CLI::App& app, int& exit_code);
void add_import(CLI::App& app, int& exit_code);
void add_erase(CLI::App& app, int& exit_code);
void add_link(CLI::App& app, int& exit_code);
void add_merge(CLI::App& app, int& exit_code);
void add_params(CLI::App& app, int& exit_code);
void add_split(CLI::App& app, int& exit_code);
void add_upgrade(CLI::App& app, int& exit_code);

} // namespace kob::program
