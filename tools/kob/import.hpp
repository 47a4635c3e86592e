// SPDX-License-Identifier: BSD-3-Clause
// The verb "import": turns a result file of another program into a KOB file.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kob::program {

/// How values are stored.
struct Storage {
    std::int32_t float_size = 8;               ///< 4 or 8 bytes
    std::int32_t deflate = 0;                  ///< level, 0: none
    bool shuffle = false;                      ///< byte shuffle before deflate
    std::map<std::string, std::int32_t> scale; ///< decimal digits kept of a variable's values
};

struct ImportOptions {
    std::string input;
    std::string output;
    std::string units; ///< "length,mass,time[,temperature]"; empty: none are claimed
    Storage storage;
    bool force = false;  ///< replace an existing output
    bool series = false; ///< the states of a result in one block

    // Of a matrix file alone.
    std::string entity;   ///< type of the entity that the matrix belongs to
    std::string variable; ///< name of the matrix
    std::optional<std::int32_t> id;
    std::string form; ///< sparse, dense or triangular; empty: as the file
};

class Target;

/// An input that was looked through and waits to be written.
class Source {
public:
    Source() = default;
    virtual ~Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    virtual void write(Target& target) = 0;
    const std::vector<std::string>& warnings() const { return warnings_; }

protected:
    std::vector<std::string> warnings_;
};

/// Imports a file under a temporary name beside the output and renames it when it is complete.
/// Returns 0 or throws Failure; warnings go to standard error.
int import_file(const ImportOptions& options);

} // namespace kob::program
