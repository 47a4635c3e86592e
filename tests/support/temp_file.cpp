// SPDX-License-Identifier: BSD-3-Clause
// Temporary folders: made by mkdtemp, removed by the destructor.
#include "temp_file.hpp"

#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace kob_test {

TempDir::TempDir()
{
    std::string name = (std::filesystem::temp_directory_path() / "kob_test_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error{"cannot create the folder " + name};
    path_ = name;
}

TempDir::~TempDir()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

} // namespace kob_test
