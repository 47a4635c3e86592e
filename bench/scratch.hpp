// SPDX-License-Identifier: BSD-3-Clause
// Where the files of a benchmark lie.
#pragma once

#include <filesystem>
#include <initializer_list>
#include <string>

namespace bench {

/// A folder for the files, removed at the end.
class Scratch {
public:
    explicit Scratch(const std::filesystem::path& parent);
    ~Scratch();
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    [[nodiscard]] std::string file(const std::string& name) const { return (folder_ / name).string(); }
    void remove(std::initializer_list<const char*> names) const;
    void clear() const;

private:
    std::filesystem::path folder_;
};

/// A folder in memory if there is one with room for the files, so that no disk has a say; else the one for temporaries.
std::filesystem::path default_folder();

} // namespace bench
