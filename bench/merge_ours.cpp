// SPDX-License-Identifier: BSD-3-Clause
// Domain files merged through the library.
#include "merge.hpp"
#include "ours.hpp"
#include "silence.hpp"

#include <memory>

namespace bench {

Work merge_ours(const MergeSet& set, const std::string& merged_file, Digest*)
{
    return [set, merged_file] {
        std::vector<std::unique_ptr<File>> domains;
        std::vector<std::int64_t> groups;
        for (std::int32_t i = 0; i < set.domains; ++i) {
            domains.push_back(std::make_unique<File>(domain_file(merged_file, i), read_only));
            groups.push_back(*domains.back()->group());
        }
        const File merged{merged_file, create};
        const std::int32_t no_exponents = 0;
        const std::int32_t float_size = 8;
        const std::int64_t no_domain_numbers = 4;
        std::int32_t status = 0;
        {
            const Silence silence; // the merger tells what it does
            KOB_MERGE_DMP(groups.data(), merged.group(), &set.domains, &no_filters, no_params.data(), &no_exponents,
                          nullptr, nullptr, &no_domain_numbers, &float_size, &status);
        }
        if (status != 0) {
            throw std::runtime_error{"KOB_MERGE_DMP: status " + std::to_string(status)};
        }
    };
}

} // namespace bench
