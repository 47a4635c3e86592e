// SPDX-License-Identifier: BSD-3-Clause
// The verbs' side of the command line, by means of CLI11.
#include "command_line.hpp"

#include <CLI/CLI.hpp>

#include <utility>

namespace kob::program {

Option& Option::required()
{
    option_->required();
    return *this;
}

Option& Option::shows_default()
{
    option_->capture_default_str();
    return *this;
}

Option& Option::excludes(const Option& other)
{
    option_->excludes(other.option_);
    return *this;
}

Option& Option::between(int least, int most)
{
    option_->check(CLI::Range(least, most));
    return *this;
}

Option& Option::not_negative()
{
    option_->check(CLI::NonNegativeNumber);
    return *this;
}

Option& Option::one_of(const std::vector<int>& values)
{
    option_->check(CLI::IsMember(values));
    return *this;
}

Option& Option::one_of(const std::vector<std::string>& words)
{
    option_->check(CLI::IsMember(words));
    return *this;
}

Option& Option::one_at_a_time()
{
    option_->allow_extra_args(false);
    return *this;
}

Option& Option::with_commas()
{
    option_->delimiter(',')->expected(1, -1);
    return *this;
}

Verb::Verb(CLI::App& app, const std::string& name, const std::string& purpose)
    : verb_{app.add_subcommand(name, purpose)}
{
}

Option Verb::option(const std::string& names, std::string& value, const std::string& help)
{
    return Option{verb_->add_option(names, value, help)};
}

Option Verb::option(const std::string& names, std::int32_t& value, const std::string& help)
{
    return Option{verb_->add_option(names, value, help)};
}

Option Verb::option(const std::string& names, std::int64_t& value, const std::string& help)
{
    return Option{verb_->add_option(names, value, help)};
}

Option Verb::option(const std::string& names, std::optional<std::int32_t>& value, const std::string& help)
{
    return Option{verb_->add_option(names, value, help)};
}

Option Verb::option(const std::string& names, std::vector<std::string>& values, const std::string& help)
{
    return Option{verb_->add_option(names, values, help)};
}

Option Verb::option(const std::string& names, std::vector<std::int32_t>& values, const std::string& help)
{
    return Option{verb_->add_option(names, values, help)};
}

Option Verb::flag(const std::string& names, bool& value, const std::string& help)
{
    return Option{verb_->add_flag(names, value, help)};
}

void Verb::runs(std::function<void()> body) { verb_->callback(std::move(body)); }

void wrong_value(const std::string& option, const std::string& line) { throw CLI::ValidationError(option, line); }

} // namespace kob::program
