// SPDX-License-Identifier: BSD-3-Clause
// Domain files in plain HDF5: made, merged, and only copied together.
#include "merge.hpp"
#include "results_raw.hpp"

#include <algorithm>
#include <memory>
#include <utility>

namespace bench {
namespace {

/// The domain files, all open.
class Domains {
public:
    Domains(const MergeSet& set, const std::string& merged_file) : results_{set.results(set.nodes_of_domain())}
    {
        for (std::int32_t i = 0; i < set.domains; ++i) {
            files_.push_back(std::make_unique<OldFile>(domain_file(merged_file, i)));
        }
    }

    /// Reads a state of all domains, one behind the other.
    void read(std::int32_t state, std::int32_t* entid, double* res) const
    {
        const std::string path = path_of(results_, state, 0);
        for (const auto& file : files_) {
            const hid_t group = must(H5Gopen2(file->post(), path.c_str(), H5P_DEFAULT));
            read_dataset(group, "entid", H5T_NATIVE_INT, entid);
            read_dataset(group, "res", H5T_NATIVE_DOUBLE, res);
            must(H5Gclose(group));
            entid += results_.nent;
            res += std::int64_t{results_.nent} * results_.ncoo;
        }
    }

private:
    ResultSet results_;
    std::vector<std::unique_ptr<OldFile>> files_;
};

void select_state(Block& block, const ResultSet& set, std::int32_t state)
{
    block.etypvar = text256(set.variables.front());
    block.indexident = state;
    block.indexval = 0.5 * state;
}

/// Every row has its node and its place in the list of all rows: of equal nodes the first domain's stays.
void sort_rows(const std::vector<std::int32_t>& entid, const std::vector<double>& res,
               std::vector<std::pair<std::int32_t, std::int32_t>>& rows, Block& merged)
{
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = {entid[i], static_cast<std::int32_t>(i)};
    }
    std::sort(rows.begin(), rows.end());
    const auto ncoo = static_cast<std::size_t>(merged.ncoo);
    std::size_t count = 0;
    for (const auto& [node, row] : rows) {
        if (count > 0 && merged.entid[count - 1] == node) {
            continue;
        }
        merged.entid[count] = node;
        std::copy_n(res.data() + static_cast<std::size_t>(row) * ncoo, ncoo, merged.res.data() + count * ncoo);
        ++count;
    }
}

} // namespace

Work write_domains(const MergeSet& set, const std::string& merged_file, Digest*)
{
    return [set, merged_file] {
        const ResultSet results = set.results(set.nodes_of_domain());
        Block block{results};
        for (std::int32_t i = 0; i < set.domains; ++i) {
            block.entid = nodes_of(set, i);
            std::reverse(block.res.begin(), block.res.end()); // neighbours disagree about the nodes that they share
            write_results(results, domain_file(merged_file, i), block,
                          [&](std::int32_t state, std::size_t variable) { block.select(results, state, variable); });
        }
    };
}

Work merge_sorting(const MergeSet& set, const std::string& merged_file, Digest*)
{
    return [set, merged_file] {
        const Domains domains{set, merged_file};
        const auto rows = static_cast<std::size_t>(set.domains) * static_cast<std::size_t>(set.nodes_of_domain());
        const ResultSet results = set.results(set.nodes());
        std::vector<std::int32_t> entid(rows);
        std::vector<double> res(rows * static_cast<std::size_t>(results.ncoo));
        std::vector<std::pair<std::int32_t, std::int32_t>> sorted(rows);
        Block merged{results};
        write_results(results, merged_file, merged, [&](std::int32_t state, std::size_t) {
            domains.read(state, entid.data(), res.data());
            sort_rows(entid, res, sorted, merged);
            select_state(merged, results, state);
        });
    };
}

Work copy_rows(const MergeSet& set, const std::string& merged_file, Digest*)
{
    return [set, merged_file] {
        const Domains domains{set, merged_file};
        const ResultSet results = set.results(set.domains * set.nodes_of_domain());
        Block all{results};
        write_results(results, merged_file, all, [&](std::int32_t state, std::size_t) {
            domains.read(state, all.entid.data(), all.res.data());
            select_state(all, results, state);
        });
    };
}

} // namespace bench
