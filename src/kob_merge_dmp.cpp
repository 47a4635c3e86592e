// SPDX-License-Identifier: BSD-3-Clause
// Merger: joins the files of a distributed run, one per domain, into one file.
#include "kob_dp.h"
#include "kob_family.hpp"
#include "kob_merge_collector.hpp"
#include "kob_merge_domain_number.hpp"
#include "kob_merge_files.hpp"
#include "kob_merge_gather.hpp"
#include "kob_merge_model.hpp"
#include "kob_merge_results.hpp"
#include "kob_merge_series.hpp"
#include "kob_merge_target.hpp"
#include "kob_merge_windows.hpp"
#include "kob_tool.hpp"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

namespace kob {
namespace merge {
namespace {

struct Options {
    explicit Options(std::int64_t word)
        : verbosity{(word & 2) != 0   ? 2
                    : (word & 1) != 0 ? 1
                                      : 0},
          adds_domain_number{(word & 4) == 0}
    {
    }

    std::int32_t verbosity;
    bool adds_domain_number;
};

class Merger {
public:
    Merger(const Family& family, DomainFiles files, Target target, Options options)
        : family_{family}, files_{std::move(files)}, target_{std::move(target)}, options_{options}
    {
    }

    std::int32_t run()
    {
        try {
            merge();
            return 0;
        } catch (const Stop& stop) {
            return stop.status;
        }
    }

private:
    void merge()
    {
        say_start();
        files_.list();
        files_.check_versions();
        say(message::merge_start);
        check_index();

        copy_system();
        copy_index();
        copy_variables();
        copy_all<Text>(kind::text);
        const bool numbers_domains = options_.adds_domain_number && files_.count() > 1;
        if (numbers_domains) {
            define_domain_number();
        }
        merge_all(kind::connectivities, Connectivities{});
        if (numbers_domains) {
            write_domain_numbers();
        }
        merge_all(kind::activation_flags, ActivationFlags{});
        merge_all(kind::parts, Parts{});
        merge_all(kind::attributes, EntityList{kind::attributes});
        if (is_current()) {
            merge_all(kind::identifiers, EntityList{kind::identifiers});
        }
        merge_all(kind::entity_results, EntityResults{});
        if (different_coordinates_ > 0) {
            report_error(message::merge_coordinates, different_coordinates_);
        }
        merge_collectors();
        add_element_results();
        add_matrices(kind::dense_matrix);
        add_matrices(kind::triangular_matrix);
        merge_all_series();

        if (options_.verbosity > 0) {
            files_.say_left_out();
        }
        say(message::merge_done);
    }

    [[nodiscard]] bool is_current() const { return family_.generation == Generation::current; }

    // ---- the files

    void say_start() const
    {
        if (options_.verbosity < 1) {
            return;
        }
        const Version& version = family_.version;
        say_banner("KOB DMP domain file merger");
        say(message::tool_compiled, __DATE__, __TIME__);
        say(message::tool_version, version.major, version.minor, version.release);
        say("\n");
    }

    // ---- blocks copied from one file

    /// The tuples of the run, as the index blocks tell them.
    void check_index() const
    {
        for (std::size_t i = 0; i < files_.count(); ++i) {
            for (const Source& source : files_.blocks_of(kind::index, i)) {
                check_index_values(family_, read_whole<IndexBlock>(kind::index, source).nindex);
            }
        }
    }

    template <class Block>
    [[nodiscard]] Block read_whole(const BlockKind& kind, const Source& source, Block block = Block{}) const
    {
        StoredBlock stored_block = files_.open(source);
        if (const std::int32_t status = block.read(stored_block); status < 0) {
            fail_reading(kind, whole_pass<Block>(family_.generation), status, source.entry->path);
        }
        return block;
    }

    template <class Block> void copy(const BlockKind& kind, const Source& source) const
    {
        const Block block = read_whole<Block>(kind, source);
        target_.write_at(kind, place_of(*source.entry, block), block, source.entry->path);
    }

    void copy_system() const
    {
        const std::vector<Source> systems = files_.look_up_single(kind::system);
        if (!systems.empty()) {
            say(message::merge_copy_block, kind::system.name, systems.front().file());
            copy<SystemBlock>(kind::system, systems.front());
        }
    }

    void copy_index() const { copy_first_of_each<IndexBlock>(kind::index, files_.look_up_single(kind::index), false); }

    void copy_variables() const
    {
        if (is_current()) {
            copy_all<VariableGroup>(kind::variable_group);
            copy_all<Variable>(kind::variable);
        } else {
            copy_all<OlderVariables>(kind::older_variables);
        }
    }

    template <class Block> void copy_all(const BlockKind& kind) const
    {
        copy_first_of_each<Block>(kind, files_.look_up(kind), true);
    }

    /// Copies each path from the first file that has it.
    template <class Block>
    void copy_first_of_each(const BlockKind& kind, const std::vector<Source>& blocks, bool says_blocks) const
    {
        std::map<std::size_t, std::vector<Source>> by_domain;
        for (const SharedBlock& shared : by_path(blocks)) {
            by_domain[shared.front().domain].push_back(shared.front());
        }
        for (const auto& [domain, sources] : by_domain) {
            const bool is_plural = says_blocks || sources.size() > 1;
            const auto file = static_cast<std::int32_t>(domain) + 1;
            if (is_plural) {
                say(message::merge_copy_blocks, kind.name, file);
            } else {
                say(message::merge_copy_block, kind.name, file);
            }
            for (const Source& source : sources) {
                copy<Block>(kind, source);
            }
        }
    }

    // ---- blocks merged by rows

    template <class Block> void merge_all(const BlockKind& kind, const Block& empty)
    {
        const std::vector<SharedBlock> blocks = by_path(files_.look_up(kind));
        if (blocks.empty()) {
            return;
        }
        say(message::merge_create_merged, static_cast<std::int32_t>(blocks.size()), kind.name);
        Spare<Block> spare{empty, empty};
        for (const SharedBlock& shared : blocks) {
            Gathered<Block> gathered = gather(files_, unions_, kind, shared, empty);
            if constexpr (std::is_same_v<Block, EntityResults>) {
                leave_values_to_windows(shared, gathered);
            }
            Block merged = merge_rows(kind, shared, gathered, spare);
            check_index_values(family_, merged.index.nindex);
            write_merged(kind, shared, gathered, merged);
            swap_rows(merged, spare.merged);
        }
    }

    /// Memory of a block merged before, and of a domain's part of it: the next one has about the same size.
    template <class Block> struct Spare {
        Block domain;
        Block merged;
    };

    /// Reads the blocks of a path, the last domain's first: where several hold an entity, the first one's row stays.
    template <class Block>
    Block merge_rows(const BlockKind& kind, const SharedBlock& shared, Gathered<Block>& gathered, Spare<Block>& spare)
    {
        Block merged = frame_of(gathered, spare.merged);
        SharedNodes nodes;
        for (std::size_t i = shared.size(); i-- > 0;) {
            Block& domain = gathered.domains[i];
            if (domain.rows() <= 0 && i != gathered.lead) {
                continue;
            }
            swap_rows(domain, spare.domain);
            read_rows(kind, shared[i], domain, merged, i == gathered.lead);
            const RowMap rows = gathered.rows->rows_of(i);
            if constexpr (std::is_same_v<Block, Connectivities>) {
                domain_numbers_.add(domain, shared[i].file());
            }
            if constexpr (std::is_same_v<Block, EntityResults>) {
                if (merged.holds_values && is_coordinates(merged)) {
                    nodes.start_once(gathered.rows->size(), merged.row_bytes());
                    nodes.compare(domain.res.data(), rows, merged.res.data(), 0);
                }
            }
            scatter(domain, rows, merged);
            if (domain.compression.is_any()) {
                merged.compression = domain.compression;
            }
            if (i == gathered.lead) {
                merged.share(domain);
            }
            swap_rows(domain, spare.domain);
        }
        different_coordinates_ += nodes.different();
        return merged;
    }

    template <class Block>
    void read_rows(const BlockKind& kind, const Source& source, Block& block, const Block& merged, bool leads) const
    {
        if constexpr (requires { block.conform(merged); }) {
            block.conform(merged);
        }
        const Passes& passes = passes_of<Block>(family_.generation);
        const std::int32_t pass = values_pass(block, family_.generation, leads);
        if (pass == 0) {
            return; // its rows have nothing but values, and those are for the windows
        }
        StoredBlock stored_block = files_.open(source);
        block.make_room(stored_block);
        std::int32_t status = leads && passes.index != pass ? block.read(stored_block, passes.index) : 0;
        if (status < 0) {
            fail_reading(kind, passes.index, status, source.entry->path);
        }
        status = block.read(stored_block, pass);
        if (status < 0) {
            fail_reading(kind, pass, status, source.entry->path);
        }
    }

    template <class Block>
    void write_merged(const BlockKind& kind, const SharedBlock& shared, const Gathered<Block>&, const Block& merged)
    {
        const TableEntry& source = *shared.front().entry;
        target_.write_at(kind, place_of(source, merged), merged, source.path);
    }

    // ---- entity results

    void write_merged(const BlockKind&, const SharedBlock& shared, const Gathered<EntityResults>& gathered,
                      const EntityResults& merged)
    {
        const std::string& path = shared.front().entry->path;
        const Compression compression = target_.compression_of(merged);
        if (merged.holds_values) {
            target_.write_results(path, merged, compression);
            return;
        }
        const Id group = target_.create(path);
        const Destination to{.generation = family_.generation, .group = group.get(), .compression = compression};
        if (const std::int32_t status = merged.write_frame(to, gathered.rows->identifiers(windows_.scratch()));
            status != 0) {
            fail_writing(kind::entity_results, status, path);
        }
        different_coordinates_ += windows_.write(shared, gathered, merged, to);
    }

    /// Large values that neither side stores in chunks are brought together while they are written.
    void leave_values_to_windows(const SharedBlock& shared, Gathered<EntityResults>& gathered)
    {
        const EntityResults merged = outline_of(gathered);
        if (target_.stores_unfiltered(merged) && windows_.open(files_, shared, gathered, merged)) {
            for (EntityResults& domain : gathered.domains) {
                domain.holds_values = false;
            }
        }
    }

    void define_domain_number() const
    {
        if (is_current()) {
            define(kind::variable, DomainNumbers::variable());
        } else {
            define(kind::older_variables, DomainNumbers::older_variables());
        }
    }

    template <class Block> void define(const BlockKind& kind, const Block& variable) const
    {
        say(message::merge_create, 1, kind.name);
        target_.write_at(kind, Place{}, variable, path_at(Place{}, variable));
    }

    void write_domain_numbers() const
    {
        if (domain_numbers_.count() == 0) {
            return;
        }
        say(message::merge_create_merged, domain_numbers_.count(), kind::entity_results.name);
        domain_numbers_.for_each_result(
            [&](const EntityResults& result) { target_.write_results(path_at(Place{}, result), result, {}); });
    }

    // ---- collectors

    void merge_collectors() const
    {
        const std::vector<SharedBlock> blocks = by_path(files_.look_up(kind::collector));
        if (blocks.empty()) {
            return;
        }
        say(message::merge_create_merged, static_cast<std::int32_t>(blocks.size()), kind::collector.name);
        for (const SharedBlock& shared : blocks) {
            const Collector merged = unite_collectors(files_, shared);
            check_index_values(family_, merged.index.nindex);
            target_.write_at(kind::collector, place_of(*shared.front().entry, merged), merged,
                             shared.front().entry->path);
        }
    }

    // ---- blocks that are written one by one

    void add_element_results() const
    {
        const std::vector<Source> blocks = files_.look_up(kind::element_results);
        if (blocks.empty()) {
            return;
        }
        say(message::merge_create, static_cast<std::int32_t>(blocks.size()), kind::element_results.name);
        std::map<std::string, std::int32_t> last_sets;
        for (const Source& source : blocks) {
            const ElementResults block = read_whole<ElementResults>(kind::element_results, source);
            check_index_values(family_, block.index.nindex);
            target_.write_at(kind::element_results, free_place(source, block, last_sets), block, source.entry->path);
        }
    }

    /// The block's own place, or the first free set number of it. Looks beyond the sets that are known to be taken.
    [[nodiscard]] Place free_place(const Source& source, const ElementResults& block,
                                   std::map<std::string, std::int32_t>& last_sets) const
    {
        Place place = place_of(*source.entry, block);
        if (!target_.holds(path_at(place, block))) {
            return place;
        }
        place.set = no_suffix;
        std::int32_t& last = last_sets[path_at(place, block)];
        do {
            place.set = ++last;
        } while (target_.holds(path_at(place, block)));
        return place;
    }

    void add_matrices(const BlockKind& kind) const
    {
        const std::vector<SharedBlock> blocks = by_path(files_.look_up(kind));
        if (blocks.empty()) {
            return;
        }
        std::int32_t created = 0;
        for (const SharedBlock& shared : blocks) {
            created += target_.holds(shared.front().entry->path) ? 0 : 1;
        }
        say(message::merge_create, created, kind.name);
        for (const SharedBlock& shared : blocks) {
            add_matrix(kind, shared);
        }
    }

    /// Writes the first domain's matrix; the others' are equal or left out with a warning.
    void add_matrix(const BlockKind& kind, const SharedBlock& shared) const
    {
        const std::string& path = shared.front().entry->path;
        Matrix first{kind};
        std::size_t others = 0;
        if (StoredBlock there = target_.open(path); there) {
            if (const std::int32_t status = first.read(there); status < 0) {
                fail_reading(kind, whole_pass<Matrix>(family_.generation), status, path);
            }
        } else {
            first = read_whole(kind, shared.front(), first);
            check_index_values(family_, first.index.nindex);
            target_.write_at(kind, place_of(*shared.front().entry, first), first, path);
            others = 1;
        }
        for (std::size_t i = others; i < shared.size(); ++i) {
            if (!read_whole(kind, shared[i], Matrix{kind}).equals(first)) {
                report_error(message::merge_left_out, path.c_str(), shared[i].file());
            }
        }
    }

    // ---- series

    void merge_all_series()
    {
        const BlockKind& kind = kind::multi_entity_results;
        const std::vector<SharedBlock> blocks = by_path(files_.look_up(kind));
        if (blocks.empty()) {
            return;
        }
        say(message::merge_create_merged, static_cast<std::int32_t>(blocks.size()), kind.name);
        for (const SharedBlock& shared : blocks) {
            merge_series(files_, target_, unions_, shared, options_.verbosity);
        }
    }

    const Family& family_;
    DomainFiles files_;
    Target target_;
    Options options_;
    UnionCache unions_;
    Windows windows_;
    DomainNumbers domain_numbers_;
    std::int32_t different_coordinates_ = 0;
};

} // namespace
} // namespace merge

namespace {

/// Both generations are merged alike; what differs follows from the generation.
void merge_files(Generation generation, int line, const int64_t* domains, const int64_t* target, const int32_t* n,
                 const int32_t* filter_flags, const int32_t* filter_params, const int32_t* nexp,
                 const char* exponent_names, const int32_t* exponents, const int64_t* options,
                 const int32_t* float_size, int32_t* status)
{
    tool_entry(status, "kob_merge_dmp", line, [&] {
        if (value(n) > 0) {
            value(domains);
        }
        if (value(nexp) > 0) {
            value(exponent_names);
            value(exponents);
        }
        const Family& family = family_of(generation);
        const merge::Options wanted{value(options)};
        const merge::Compression defaults{value(filter_flags), {value(filter_params), filter_params[1]}};
        merge::Exponents table{*nexp, exponent_names, exponents};
        return merge::Merger{family, merge::DomainFiles{family, domains, *n, wanted.verbosity},
                             merge::Target{{value(target), generation},
                                           {defaults, std::move(table), value(float_size)},
                                           wanted.verbosity},
                             wanted}
            .run();
    });
}

} // namespace
} // namespace kob

extern "C" void KOB_MERGE_DMP(const int64_t* domains, const int64_t* target, const int32_t* n,
                              const int32_t* filter_flags, const int32_t* filter_params, const int32_t* nexp,
                              const char* exponent_names, const int32_t* exponents, const int64_t* options,
                              const int32_t* float_size, int32_t* status)
{
    kob::merge_files(kob::Generation::current, __LINE__, domains, target, n, filter_flags, filter_params, nexp,
                     exponent_names, exponents, options, float_size, status);
}

extern "C" void KOB1_MERGE_DMP(const int64_t* domains, const int64_t* target, const int32_t* n,
                               const int32_t* filter_flags, const int32_t* filter_params, const int32_t* nexp,
                               const char* exponent_names, const int32_t* exponents, const int64_t* options,
                               const int32_t* float_size, int32_t* status)
{
    kob::merge_files(kob::Generation::older, __LINE__, domains, target, n, filter_flags, filter_params, nexp,
                     exponent_names, exponents, options, float_size, status);
}
