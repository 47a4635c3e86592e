// SPDX-License-Identifier: BSD-3-Clause
// Reads matrices from text files: Matrix Market (.mtx), and what a finite-element solver stores of its equations.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "text_lines.hpp"

namespace matrix {

using text::Error;
using text::Lines;

enum class Symmetry { general, symmetric, skew, hermitian };
enum class Field { real, integer, pattern, complex };

/// Row and column count from 0.
struct Entry {
    std::int32_t row = 0;
    std::int32_t column = 0;
    double real = 0;
    double imaginary = 0;
};

/// A matrix in a file, whose entries can be gone through as often as is needed.
class File {
public:
    explicit File(const std::string& path) : lines_{path} {}
    virtual ~File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// The entries in the order of the file; of a matrix with symmetry those of one triangle.
    virtual void each(const std::function<void(const Entry&)>& use) = 0;
    /// All entries: each one outside the diagonal of a matrix with symmetry is followed by its counterpart.
    void each_of_both(const std::function<void(const Entry&)>& use);

    std::int32_t rows() const { return rows_; }
    std::int32_t columns() const { return columns_; }
    Symmetry symmetry() const { return symmetry_; }
    bool complex() const { return field_ == Field::complex; }

protected:
    Lines lines_;
    std::int32_t rows_ = 0;
    std::int32_t columns_ = 0;
    Symmetry symmetry_ = Symmetry::general;
    Field field_ = Field::real;
};

class MarketFile : public File {
public:
    /// Reads what stands before the first entry.
    explicit MarketFile(const std::string& path);

    void each(const std::function<void(const Entry&)>& use) override;
    bool coordinate() const { return coordinate_; }
    const std::vector<std::string>& header() const { return header_; } ///< first line, comments, sizes
    std::int64_t inexact() const { return inexact_; } ///< integers of the last pass that a double cannot hold

private:
    void banner(std::string_view line);
    void sizes(std::string_view line);
    void each_coordinate(const std::function<void(const Entry&)>& use);
    void each_array(const std::function<void(const Entry&)>& use);
    bool next_entry(std::vector<std::string_view>& words);
    void values(const std::vector<std::string_view>& words, std::size_t from, Entry& entry);
    void check_place(const Entry& entry) const;

    bool coordinate_ = true;
    std::int64_t entries_ = 0; ///< that the file announces
    std::int64_t inexact_ = 0;
    std::vector<std::string> header_;
    Lines::Mark first_;
};

/// Rows "i j value" of the upper triangle of a symmetric matrix (.sti, .mas).
class SolverFile : public File {
public:
    /// Goes through the file to find the order of the matrix.
    explicit SolverFile(const std::string& path);

    void each(const std::function<void(const Entry&)>& use) override;
};

/// A list "node.direction" of the matrices' rows (.dof): pairs, one behind the other.
std::vector<std::int32_t> read_freedoms(const std::string& path);

} // namespace matrix
