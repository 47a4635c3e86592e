// SPDX-License-Identifier: BSD-3-Clause
// Makes matrix blocks of matrices in text files.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "import.hpp"
#include "import_target.hpp"
#include "matrix_file.hpp"

namespace kob::program {

/// A Matrix Market file becomes one block.
class MarketImport : public Source {
public:
    explicit MarketImport(const ImportOptions& options);
    void write(Target& target) override;

private:
    const ImportOptions& options_;
    matrix::MarketFile file_;
    std::string form_;
};

/// The matrices that a finite-element solver stores beside each other, and the list of their rows.
class EquationsImport : public Source {
public:
    static bool is_meant(const std::string& extension);

    explicit EquationsImport(const ImportOptions& options);
    void write(Target& target) override;

private:
    struct Part {
        std::string variable;
        std::string path;
        std::unique_ptr<matrix::SolverFile> file;
    };

    const ImportOptions& options_;
    std::vector<Part> parts_;
    std::string freedoms_path_;
    std::vector<std::int32_t> freedoms_;
};

} // namespace kob::program
