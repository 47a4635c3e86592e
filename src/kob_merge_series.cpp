// SPDX-License-Identifier: BSD-3-Clause
// Uniting series: rows by entity, states by index tuple.
#include "kob_merge_series.hpp"

#include "kob_merge_gather.hpp"

#include <algorithm>
#include <limits>
#include <map>

namespace kob::merge {
namespace {

constexpr std::int64_t most_bytes_of_piece = std::int64_t{1} << 24U; // of a domain's series held at a time

class SeriesMerger {
public:
    SeriesMerger(const DomainFiles& files, const Target& target, UnionCache& unions, std::int32_t verbosity,
                 std::int32_t most_bytes)
        : files_{files}, target_{target}, unions_{unions}, verbosity_{verbosity}, most_bytes_{most_bytes}
    {
    }

    void merge(const SharedBlock& shared)
    {
        const BlockKind& kind = kind::multi_entity_results;
        const std::string& path = shared.front().entry->path;
        Gathered<Series> gathered = gather(files_, unions_, kind, shared, Series{});
        Series before;
        Series merged = frame_of(gathered, before);
        check_index_values(files_.family(), merged.nindex);
        for (std::size_t i = shared.size(); i-- > 0;) {
            read_static_part(shared[i], gathered.domains[i], i == gathered.lead);
            scatter(gathered.domains[i], gathered.rows->rows_of(i), merged);
            if (gathered.domains[i].compression.is_any()) {
                merged.compression = gathered.domains[i].compression;
            }
        }
        merged.share(gathered.domains[gathered.lead]);

        const Timeline states = unite_states(gathered);
        const std::int64_t missing = missing_values(gathered, states) * merged.ncoo;
        Compression compression = target_.or_default(merged.compression);
        if (missing > 0) {
            compression.flags &= ~filter_flag::scale_offset_real; // it cannot hold what is no number
        }
        write_states(shared, gathered, states, merged, compression);
        if (missing > 0) {
            report_error(message::merge_missing_values, path.c_str(),
                         static_cast<std::int32_t>(std::min<std::int64_t>(missing, INT32_MAX)));
        }
    }

private:
    /// The states of a merged series.
    struct Timeline {
        std::vector<std::int32_t> indexident; ///< [states, nindex]
        std::vector<double> indexval;
        std::vector<std::vector<std::int32_t>> rows; ///< for each state the row in each domain, -1: none
        [[nodiscard]] std::int64_t size() const { return static_cast<std::int64_t>(rows.size()); }
    };

    /// Index, identified columns and filters of a domain's series; the identifiers themselves are known by now.
    void read_static_part(const Source& source, Series& domain, bool leads) const
    {
        const BlockKind& kind = kind::multi_entity_results;
        const std::string& path = source.entry->path;
        StoredBlock block = files_.open(source);
        domain.make_room(block);
        if (!domain.has_all_values(block)) {
            fail_reading(kind, Series::passes.values, other_extents, path);
        }
        if (const std::int32_t status = domain.read(block, Series::passes.index); status < 0) {
            fail_reading(kind, Series::passes.index, status, path);
        }
        if (leads || domain.nent > 0) {
            if (const std::int32_t status = domain.read(block, Series::passes.values); status < 0) {
                fail_reading(kind, Series::passes.values, status, path);
            }
        }
        if (const std::int32_t status = domain.read_filters(block); status < 0) {
            fail_reading(kind, Series::passes.values, status, path);
        }
    }

    /// States with the same index tuple are one. The second of equal tuples in one file is a state of its own.
    static Timeline unite_states(const Gathered<Series>& gathered)
    {
        Timeline states;
        std::map<std::vector<std::int32_t>, std::size_t> known;
        const std::size_t domains = gathered.domains.size();
        for (std::size_t d = 0; d < domains; ++d) {
            const Series& series = gathered.domains[d];
            const std::int32_t nindex = gathered.domains[gathered.lead].nindex;
            if (series.nindex != nindex) {
                continue; // without entities, or it would not be here
            }
            const auto width = static_cast<std::size_t>(std::max(nindex, 0));
            std::map<std::vector<std::int32_t>, std::int32_t> repeats;
            for (std::int32_t row = 0; row < series.nstate; ++row) {
                const std::size_t first = static_cast<std::size_t>(row) * width;
                const auto begin = series.indexident.begin() + static_cast<std::ptrdiff_t>(first);
                std::vector<std::int32_t> tuple(begin, begin + static_cast<std::ptrdiff_t>(width));
                const std::int32_t repeat = repeats[tuple]++;
                tuple.push_back(repeat);
                const auto [state, is_new] = known.try_emplace(std::move(tuple), states.rows.size());
                if (is_new) {
                    states.rows.emplace_back(domains, -1);
                    states.indexident.insert(states.indexident.end(), begin,
                                             begin + static_cast<std::ptrdiff_t>(width));
                    const auto value = series.indexval.begin() + static_cast<std::ptrdiff_t>(first);
                    states.indexval.insert(states.indexval.end(), value, value + static_cast<std::ptrdiff_t>(width));
                }
                states.rows[state->second][d] = row;
            }
        }
        return states;
    }

    /// Pairs of entity and state that no domain file holds.
    static std::int64_t missing_values(const Gathered<Series>& gathered, const Timeline& states)
    {
        std::map<std::vector<bool>, std::int64_t> missing_without; // by the domains that have the state
        std::int64_t missing = 0;
        for (const std::vector<std::int32_t>& rows : states.rows) {
            std::vector<bool> has_state;
            for (const std::int32_t row : rows) {
                has_state.push_back(row >= 0);
            }
            const auto [known, is_new] = missing_without.try_emplace(has_state, 0);
            if (is_new) {
                known->second = entities_without(gathered, has_state);
            }
            missing += known->second;
        }
        return missing;
    }

    static std::int64_t entities_without(const Gathered<Series>& gathered, const std::vector<bool>& has_state)
    {
        if (std::find(has_state.begin(), has_state.end(), false) == has_state.end()) {
            return 0;
        }
        std::vector<bool> is_held(gathered.rows->size());
        for (std::size_t d = 0; d < has_state.size(); ++d) {
            if (has_state[d]) {
                for (const std::int32_t row : gathered.rows->rows_of(d)) {
                    is_held[static_cast<std::size_t>(row < 0 ? ~row : row)] = true;
                }
            }
        }
        return std::count(is_held.begin(), is_held.end(), false);
    }

    /// States that are held in memory at a time.
    [[nodiscard]] std::int64_t states_at_a_time(const Series& merged, const Timeline& states,
                                                const std::string& path) const
    {
        const std::int64_t bytes = merged.values_of_state() * std::int64_t{sizeof(double)};
        const std::int64_t fitting = bytes > 0 ? std::max<std::int64_t>(most_bytes_ / bytes, 1) : states.size();
        if (fitting < states.size() && verbosity_ > 0) {
            say(message::merge_size_limit, kind::multi_entity_results.name, most_bytes_,
                static_cast<std::int32_t>(fitting), path.c_str());
        }
        return std::min(fitting, states.size());
    }

    void write_states(const SharedBlock& shared, Gathered<Series>& gathered, const Timeline& states, Series& merged,
                      const Compression& compression) const
    {
        const std::string& path = shared.front().entry->path;
        const std::int64_t at_a_time = states_at_a_time(merged, states, path);
        const Id group = target_.create(path);
        const Destination to{
            .generation = files_.family().generation, .group = group.get(), .compression = compression};
        std::int64_t first = 0;
        do {
            const std::int64_t count = std::min(at_a_time, states.size() - first);
            merged.res.assign(static_cast<std::size_t>(count * merged.values_of_state()),
                              std::numeric_limits<double>::quiet_NaN());
            for (std::size_t i = shared.size(); i-- > 0;) {
                if (gathered.domains[i].nent > 0) {
                    scatter_states(shared[i], gathered, i, states, {first, first + count}, merged);
                }
            }
            const std::size_t index =
                static_cast<std::size_t>(first) * static_cast<std::size_t>(std::max(merged.nindex, 0));
            const std::int32_t status =
                merged.write_states(to, first, count, states.indexident.data() + index, states.indexval.data() + index);
            if (status != 0) {
                fail_writing(kind::multi_entity_results, status, path);
            }
            first += count;
        } while (first < states.size());
    }

    struct Span {
        std::int64_t begin;
        std::int64_t end;
    };

    /// Reads a domain's part of some states. Rows that follow each other are read together.
    void scatter_states(const Source& source, Gathered<Series>& gathered, std::size_t d, const Timeline& states,
                        Span wanted, Series& merged) const
    {
        Series& domain = gathered.domains[d];
        const RowMap rows = gathered.rows->rows_of(d);
        const std::int64_t state_size = domain.values_of_state();
        const std::int64_t most_rows =
            std::max<std::int64_t>(most_bytes_of_piece / std::max<std::int64_t>(state_size * 8, 1), 1);
        const auto row_of = [&](std::int64_t state) { return states.rows[static_cast<std::size_t>(state)][d]; };
        StoredBlock block = files_.open(source);
        for (std::int64_t state = wanted.begin; state < wanted.end;) {
            if (row_of(state) < 0) {
                ++state;
                continue;
            }
            std::int64_t end = state + 1;
            while (end < wanted.end && end - state < most_rows && row_of(end) == row_of(end - 1) + 1) {
                ++end;
            }
            domain.res.resize(static_cast<std::size_t>((end - state) * state_size));
            if (const std::int32_t status = domain.read_states(block, row_of(state), end - state); status < 0) {
                fail_reading(kind::multi_entity_results, Series::passes.values, status, source.entry->path);
            }
            for (std::int64_t s = state; s < end; ++s) {
                scatter_rows(domain.res.data() + (s - state) * state_size,
                             static_cast<std::size_t>(domain.values_of_row()), rows,
                             merged.res.data() + (s - wanted.begin) * merged.values_of_state());
            }
            state = end;
        }
        domain.res = {};
    }

    const DomainFiles& files_;
    const Target& target_;
    UnionCache& unions_;
    std::int32_t verbosity_;
    std::int32_t most_bytes_;
};

} // namespace

void merge_series(const DomainFiles& files, const Target& target, UnionCache& unions, const SharedBlock& shared,
                  std::int32_t verbosity, std::int32_t most_bytes)
{
    SeriesMerger{files, target, unions, verbosity, most_bytes}.merge(shared);
}

} // namespace kob::merge
