// SPDX-License-Identifier: BSD-3-Clause
// The files of a distributed run and their merge, for the tests of the merger.
#pragma once

#include <kob_dp.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "captured_stream.hpp"
#include "kob_file.hpp"
#include "merge_model.hpp"

namespace kob_test {

/// Domain files and a target, and one call of the merger on them.
class DistributedRun {
public:
    explicit DistributedRun(std::size_t domains, std::int32_t target_option = create_results,
                            std::int32_t domain_option = create_results)
        : target{target_option}
    {
        for (std::size_t i = 0; i < domains; ++i) files_.push_back(std::make_unique<KobFile>(domain_option));
    }

    /// A writer into domain i, counted from 1 like in the messages.
    BlockWriter in(std::size_t file) const { return {files_.at(file - 1)->handle()}; }
    const KobFile& file(std::size_t number) const { return *files_.at(number - 1); }
    void stamp() const
    {
        for (const auto& file : files_) BlockWriter{file->handle()}.header();
    }

    std::int32_t merge()
    {
        std::vector<std::int64_t> handles;
        for (const auto& file : files_) handles.push_back(file->handle());
        const auto n = static_cast<std::int32_t>(handles.size());
        const auto nexp = static_cast<std::int32_t>(exponents.size());
        std::int32_t status = 77;
        CapturedStream captured;
        merger(handles.data(), target.address(), &n, &filter_flags, filter_params.data(), &nexp, names.data(),
               exponents.data(), &options, &float_size, &status);
        out = captured.out();
        err = captured.err();
        return status;
    }

    KobFile target;
    decltype(&KOB_MERGE_DMP) merger = KOB_MERGE_DMP; ///< of either layout
    std::int64_t options = 4;                        // without domain numbers
    std::int32_t filter_flags = 0;
    std::array<std::int32_t, 2> filter_params{2, 5};
    std::int32_t float_size = 8;
    Texts256 names;
    Ints32 exponents;
    std::string out;
    std::string err;

private:
    std::vector<std::unique_ptr<KobFile>> files_;
};

} // namespace kob_test
