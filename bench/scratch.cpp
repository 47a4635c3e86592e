// SPDX-License-Identifier: BSD-3-Clause
// Makes, empties and removes the folder.
#include "scratch.hpp"

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace bench {

Scratch::Scratch(const std::filesystem::path& parent)
{
    std::string name = (parent / "kob_bench_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error{"cannot make a folder in " + parent.string()};
    }
    folder_ = name;
}

Scratch::~Scratch()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void Scratch::remove(std::initializer_list<const char*> names) const
{
    for (const char* name : names) {
        std::filesystem::remove(folder_ / name);
    }
}

void Scratch::clear() const
{
    for (const auto& entry : std::filesystem::directory_iterator{folder_}) {
        std::filesystem::remove(entry.path());
    }
}

std::filesystem::path default_folder()
{
    constexpr std::uintmax_t room = 2'000'000'000;
    const std::filesystem::path in_memory{"/dev/shm"};
    std::error_code missing;
    const std::filesystem::space_info space = std::filesystem::space(in_memory, missing);
    return !missing && space.available >= room ? in_memory : std::filesystem::temp_directory_path();
}

} // namespace bench
