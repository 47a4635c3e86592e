// SPDX-License-Identifier: BSD-3-Clause
// Merger: joins the files of a distributed run, one per domain, into one file.
#include "kob_block_table.hpp"
#include "kob_dp.h"
#include "kob_family.hpp"
#include "kob_merge_domain_number.hpp"
#include "kob_merge_model.hpp"
#include "kob_merge_place.hpp"
#include "kob_merge_results.hpp"
#include "kob_merge_rows.hpp"
#include "kob_merge_union.hpp"
#include "kob_module.hpp"
#include "kob_tool.hpp"

#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <set>
#include <unordered_map>

namespace kob {
namespace merge {
namespace {

constexpr std::int32_t most_index_values = 5;
constexpr std::int64_t most_bytes_of_states = std::int64_t{1} << 30U; // of a merged series held at a time
constexpr std::int64_t most_bytes_of_piece = std::int64_t{1} << 24U;  // of a domain's series held at a time
constexpr std::int32_t other_extents = -6030;                         // see kob_storage_codes.hpp
constexpr std::int32_t failed = -1;
constexpr char node_type[] = "NODE";
constexpr char coordinate_variable[] = "COORDINATE";

/// Thrown where the merge ends; the lines are printed by then.
struct Stop {
    std::int32_t status;
};

/// One domain file.
struct Domain {
    hid_t group;
    BlockTable table;
};

/// A block of one domain file.
struct Source {
    std::size_t domain; ///< from 0; messages count from 1
    const TableEntry* entry;
};

/// The blocks of one path, in the order of the domains.
using SharedBlock = std::vector<Source>;

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

/// Decimal scale factor of each variable that has one.
class Exponents {
public:
    Exponents(std::int32_t count, const char* names, const std::int32_t* exponents)
    {
        for (std::int32_t i = 0; i < count; ++i) {
            const char* name = names + static_cast<std::ptrdiff_t>(i) * name_length;
            table_.emplace(trimmed(name, name_length), exponents[i]); // of equal names the first wins
        }
    }

    [[nodiscard]] const std::int32_t* find(std::string_view variable) const
    {
        const auto found = table_.find(variable);
        return found == table_.end() ? nullptr : &found->second;
    }

private:
    std::map<std::string, std::int32_t, std::less<>> table_;
};

/// What the caller asks for.
struct Request {
    const std::int64_t* domains;
    std::int64_t target;
    std::int32_t count;
    Compression defaults;
    Exponents exponents;
    Options options;
    std::int32_t float_size;
    Generation generation;
};

/// The blocks of one path as their attributes describe them, and the union of their entities.
template <class Block> struct Gathered {
    std::vector<Block> domains; ///< attributes alone
    std::size_t lead = 0;       ///< the first that has entities: what rows don't tell is taken from it
    const IdentifierUnion* rows = nullptr;
};

std::int32_t file_number(const Source& source) { return static_cast<std::int32_t>(source.domain) + 1; }

class Merger {
public:
    explicit Merger(Request request)
        : request_{std::move(request)}, family_{family_of(request_.generation)}, target_{request_.target}
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
        list_files();
        check_versions();
        say(message::merge_start);
        check_index();

        copy_system();
        copy_index();
        copy_all<VariableGroup>(kind::variable_group);
        copy_all<Variable>(kind::variable);
        copy_all<Text>(kind::text);
        const bool numbers_domains = request_.options.adds_domain_number && domains_.size() > 1;
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
        merge_all(kind::identifiers, EntityList{kind::identifiers});
        merge_all(kind::entity_results, EntityResults{});
        if (different_coordinates_ > 0) {
            report_error(message::merge_coordinates, different_coordinates_);
        }
        merge_collectors();
        add_element_results();
        add_matrices(kind::dense_matrix);
        add_matrices(kind::triangular_matrix);
        merge_all_series();

        if (request_.options.verbosity > 0) {
            say_left_out();
        }
        say(message::merge_done);
    }

    // ---- the files

    void say_start() const
    {
        if (request_.options.verbosity < 1) {
            return;
        }
        const Version& version = family_.version;
        say_banner("KOB DMP domain file merger");
        say(message::tool_compiled, __DATE__, __TIME__);
        say(message::tool_version, version.major, version.minor, version.release);
        say("\n");
    }

    void list_files()
    {
        domains_.resize(static_cast<std::size_t>(std::max(request_.count, 0)));
        for (std::size_t i = 0; i < domains_.size(); ++i) {
            Domain& domain = domains_[i];
            const auto file = static_cast<std::int32_t>(i) + 1;
            domain.group = request_.domains[i];
            if (!domain.table.list(domain.group, family_)) {
                report_error(message::merge_no_blocks, file);
                if (domain.table.status() != 0) {
                    throw Stop{domain.table.status()};
                }
                continue;
            }
            if (request_.options.verbosity > 0) {
                say(message::merge_blocks_found, file, domain.table.found());
            }
            domain.table.read_numbers(true);
            if (request_.options.verbosity > 1) {
                domain.table.say_by_key();
            }
        }
    }

    void check_versions() const
    {
        std::size_t passed = 0;
        for (std::size_t i = 0; i < domains_.size(); ++i) {
            passed += is_compatible(i) ? 1 : 0;
        }
        if (passed < domains_.size()) {
            report_error(message::merge_maybe_incompatible);
        }
    }

    [[nodiscard]] bool is_compatible(std::size_t i) const
    {
        const auto file = static_cast<std::int32_t>(i) + 1;
        const BlockTable& table = domains_[i].table;
        const std::vector<std::int32_t>& headers = table.of_key(kind::file_header);
        if (headers.empty()) {
            report_error(message::merge_no_header, file, header_group_name);
            return false;
        }
        if (headers.size() > 1) {
            say(message::merge_multiple_headers, file, header_group_name);
        }
        const Version found = version_in({i, &table.entries()[static_cast<std::size_t>(headers.front())]});
        const Version& own = family_.version;
        const bool is_readable = found.release >= 0 && found.major == own.major;
        const bool is_own = is_readable && found.minor == own.minor && found.release == own.release;
        if (is_own && request_.options.verbosity < 1) {
            return true;
        }
        const char* verdict = is_own        ? message::merge_version_ok
                              : is_readable ? message::merge_version_warning
                                            : message::merge_version_not_ok;
        say(message::merge_check_file, file, static_cast<std::int32_t>(domains_.size()));
        say(verdict, found.major, found.minor, found.release, own.major, own.minor, own.release); // NOLINT
        return is_readable;
    }

    [[nodiscard]] Version version_in(const Source& source) const
    {
        const Id header = open(source);
        const std::int64_t handle = header.get();
        std::array<char, 33> text{};
        Compression compression;
        std::int32_t status = 0;
        family_.read_header(&handle, text.data(), &compression.flags, compression.params.data(), &status);
        if (status < 0) {
            report_error(message::tool_incompatible, status);
            throw Stop{status};
        }
        Version version;
        read_version(text.data(), version.major, version.minor, version.release);
        return version;
    }

    [[nodiscard]] Id open(const Source& source) const
    {
        return open_block(domains_[source.domain].group, source.entry->path);
    }

    /// The blocks of a kind in one file.
    [[nodiscard]] std::vector<Source> blocks_of(const BlockKind& kind, std::size_t domain) const
    {
        const BlockTable& table = domains_[domain].table;
        std::vector<Source> blocks;
        for (const std::int32_t key : {kind.key, kind.complex_key}) {
            if (key == 0) {
                continue;
            }
            for (const std::int32_t block : table.of_key(key)) {
                blocks.push_back({domain, &table.entries()[static_cast<std::size_t>(block)]});
            }
        }
        return blocks;
    }

    /// The blocks of a kind in all files, with a word on what is there.
    [[nodiscard]] std::vector<Source> look_up(const BlockKind& kind) const
    {
        std::vector<Source> all;
        for (std::size_t i = 0; i < domains_.size(); ++i) {
            const std::vector<Source> blocks = blocks_of(kind, i);
            if (blocks.empty()) {
                report_error(message::merge_kind_missing, static_cast<std::int32_t>(i) + 1, kind.name);
            }
            all.insert(all.end(), blocks.begin(), blocks.end());
        }
        if (!all.empty()) {
            say(message::merge_kind_found, static_cast<std::int32_t>(all.size()), kind.name);
        }
        return all;
    }

    /// The blocks of a kind of which a file should hold one.
    [[nodiscard]] std::vector<Source> look_up_single(const BlockKind& kind) const
    {
        std::vector<Source> all;
        for (std::size_t i = 0; i < domains_.size(); ++i) {
            const std::vector<Source> blocks = blocks_of(kind, i);
            if (blocks.empty()) {
                report_error(message::merge_block_missing, static_cast<std::int32_t>(i) + 1, kind.name);
            } else if (blocks.size() > 1) {
                report_error(message::merge_multiple_blocks, static_cast<std::int32_t>(i) + 1, kind.name);
            }
            all.insert(all.end(), blocks.begin(), blocks.end());
        }
        return all;
    }

    /// Sorts blocks by path, in the order in which the paths appear.
    static std::vector<SharedBlock> by_path(const std::vector<Source>& blocks)
    {
        std::vector<SharedBlock> shared;
        std::unordered_map<std::string_view, std::size_t> known;
        for (const Source& block : blocks) {
            const auto [path, is_new] = known.try_emplace(block.entry->path, shared.size());
            if (is_new) {
                shared.emplace_back();
            }
            shared[path->second].push_back(block);
        }
        return shared;
    }

    // ---- failures

    [[noreturn]] static void fail_reading(const BlockKind& kind, std::int32_t pass, std::int32_t status,
                                          const std::string& path)
    {
        report_error(message::tool_reading, kind.name, pass, status);
        report_error(message::tool_block_path, path.c_str());
        throw Stop{status};
    }

    [[noreturn]] static void fail_writing(const BlockKind& kind, std::int32_t status, const std::string& path)
    {
        report_error(message::tool_writing, kind.name, status);
        if (kind.key != kind::entity_results.key) {
            report_error(message::tool_block_path, path.c_str());
        }
        throw Stop{status};
    }

    static void check_index_values(std::int32_t nindex)
    {
        if (nindex > most_index_values) {
            report_error(message::merge_nindex, nindex, most_index_values);
            throw Stop{1};
        }
    }

    // ---- blocks copied from one file

    /// The tuples of the run, as the index blocks tell them.
    void check_index() const
    {
        for (std::size_t i = 0; i < domains_.size(); ++i) {
            for (const Source& source : blocks_of(kind::index, i)) {
                check_index_values(read_whole<IndexBlock>(kind::index, source).nindex);
            }
        }
    }

    template <class Block>
    [[nodiscard]] Block read_whole(const BlockKind& kind, const Source& source, Block block = Block{}) const
    {
        const Id group = open(source);
        if (const std::int32_t status = block.read(group.get()); status < 0) {
            fail_reading(kind, Block::pass, status, source.entry->path);
        }
        return block;
    }

    [[nodiscard]] Compression or_default(const Compression& own) const
    {
        return own.is_any() ? own : request_.defaults;
    }

    /// Writes a block through a writer that builds the path by itself.
    template <class Block>
    void write_at(const BlockKind& kind, const Place& place, const Block& block, const std::string& path) const
    {
        const Id prefix = place.prefix.empty() ? Id{} : create_block(target_, place.prefix);
        const GroupsLeftOpen closed_after{target_};
        const std::int32_t status = block.write({prefix ? prefix.get() : target_, place.state, place.set,
                                                 or_default(block.compression), request_.float_size});
        if (status != 0) {
            fail_writing(kind, status, path);
        }
    }

    template <class Block> void copy(const BlockKind& kind, const Source& source) const
    {
        const Block block = read_whole<Block>(kind, source);
        write_at(kind, place_of(*source.entry, block), block, source.entry->path);
    }

    void copy_system() const
    {
        const std::vector<Source> systems = look_up_single(kind::system);
        if (!systems.empty()) {
            say(message::merge_copy_block, kind::system.name, file_number(systems.front()));
            copy<SystemBlock>(kind::system, systems.front());
        }
    }

    void copy_index() const { copy_first_of_each<IndexBlock>(kind::index, look_up_single(kind::index), false); }

    template <class Block> void copy_all(const BlockKind& kind) const
    {
        copy_first_of_each<Block>(kind, look_up(kind), true);
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
        const std::vector<SharedBlock> blocks = by_path(look_up(kind));
        if (blocks.empty()) {
            return;
        }
        say(message::merge_create_merged, static_cast<std::int32_t>(blocks.size()), kind.name);
        for (const SharedBlock& shared : blocks) {
            write_merged(kind, *shared.front().entry, merge_rows(kind, shared, empty));
        }
    }

    /// Reads the attributes of all blocks of a path, checks that they can be united, and unites their entities.
    template <class Block> Gathered<Block> gather(const BlockKind& kind, const SharedBlock& shared, const Block& empty)
    {
        Gathered<Block> gathered;
        IdentifierLists lists;
        bool has_rows = false;
        for (const Source& source : shared) {
            const std::string& path = source.entry->path;
            const Id group = open(source);
            Block& block = gathered.domains.emplace_back(empty);
            if (const std::int32_t status = block.read(group.get(), Block::passes.attributes); status < 0) {
                fail_reading(kind, Block::passes.attributes, status, path);
            }
            if (!is_complete(group.get(), block)) {
                fail_incomplete(kind, block, group.get(), path);
            }
            read_identifiers(kind, group.get(), block, lists, path);
            if (!has_rows && block.rows() > 0) {
                has_rows = true;
                gathered.lead = gathered.domains.size() - 1;
            }
        }
        check_traits(shared, gathered);
        gathered.rows = &unions_.of(lists);
        return gathered;
    }

    /// The reader knows best what is wrong with a block whose attributes and contents differ.
    template <class Block>
    [[noreturn]] static void fail_incomplete(const BlockKind& kind, Block block, hid_t group, const std::string& path)
    {
        block.make_room(group);
        const std::int32_t pass = block.values_pass(true);
        const std::int32_t status = block.read(group, pass);
        fail_reading(kind, pass, status < 0 ? status : other_extents, path);
    }

    template <class Block>
    static void read_identifiers(const BlockKind& kind, hid_t group, Block& block, IdentifierLists& lists,
                                 const std::string& path)
    {
        const auto rows = static_cast<hsize_t>(std::max(block.rows(), 0));
        const std::span<std::int32_t> list = lists.add(rows);
        const std::int32_t status =
            KOB_H5Dread(Block::identifiers, list.data(), type_code::integer, sizeof(std::int32_t), &rows, 1, nullptr,
                        nullptr, access_mode::whole, group, nullptr, nullptr, nullptr);
        if (status < 0) {
            fail_reading(kind, Block::passes.values, status, path);
        }
    }

    /// Blocks without entities may have any shape.
    template <class Block> static void check_traits(const SharedBlock& shared, Gathered<Block>& gathered)
    {
        const std::vector<Trait> wanted = gathered.domains[gathered.lead].traits();
        for (std::size_t i = gathered.lead; i < gathered.domains.size(); ++i) {
            const std::vector<Trait> traits = gathered.domains[i].traits();
            for (std::size_t t = 0; t < traits.size(); ++t) {
                if (gathered.domains[i].rows() > 0 && traits[t].value != wanted[t].value) {
                    report_error(message::merge_differs, shared[i].entry->path.c_str(), traits[t].name, wanted[t].value,
                                 file_number(shared[gathered.lead]), traits[t].value, file_number(shared[i]));
                    throw Stop{failed};
                }
            }
        }
    }

    /// The merged block with its entities, whose values are still to come.
    template <class Block> static Block frame_of(Gathered<Block>& gathered)
    {
        Block merged = gathered.domains[gathered.lead];
        for (Block& domain : gathered.domains) {
            if (domain.rows() > 0) {
                merged.take_in(domain);
            }
        }
        make_rows(merged, gathered.rows->identifiers());
        return merged;
    }

    /// Reads the blocks of a path, the last domain's first: where several hold an entity, the first one's row stays.
    template <class Block> Block merge_rows(const BlockKind& kind, const SharedBlock& shared, const Block& empty)
    {
        Gathered<Block> gathered = gather(kind, shared, empty);
        Block merged = frame_of(gathered);
        std::vector<char> seen;
        for (std::size_t i = shared.size(); i-- > 0;) {
            Block& domain = gathered.domains[i];
            if (domain.rows() <= 0 && i != gathered.lead) {
                continue;
            }
            read_rows(kind, shared[i], domain, merged, i == gathered.lead);
            const RowMap rows = gathered.rows->rows_of(i);
            if constexpr (std::is_same_v<Block, Connectivities>) {
                domain_numbers_.add(domain, file_number(shared[i]));
            }
            if constexpr (std::is_same_v<Block, EntityResults>) {
                compare_coordinates(domain, rows, merged, seen);
            }
            scatter(domain, rows, merged);
            if (domain.compression.is_any()) {
                merged.compression = domain.compression;
            }
            if (i == gathered.lead) {
                merged.share(domain);
            }
            domain = empty;
        }
        different_coordinates_ += static_cast<std::int32_t>(std::count(seen.begin(), seen.end(), seen_different));
        return merged;
    }

    template <class Block>
    void read_rows(const BlockKind& kind, const Source& source, Block& block, const Block& merged, bool leads) const
    {
        if constexpr (requires { block.conform(merged); }) {
            block.conform(merged);
        }
        const Id group = open(source);
        block.make_room(group.get());
        const std::int32_t pass = block.values_pass(leads);
        std::int32_t status = leads ? block.read(group.get(), Block::passes.index) : 0;
        if (status < 0) {
            fail_reading(kind, Block::passes.index, status, source.entry->path);
        }
        status = block.read(group.get(), pass);
        if (status < 0) {
            fail_reading(kind, pass, status, source.entry->path);
        }
    }

    template <class Block> void write_merged(const BlockKind& kind, const TableEntry& source, const Block& merged) const
    {
        check_index_values(merged.index.nindex);
        write_at(kind, place_of(source, merged), merged, source.path);
    }

    void write_merged(const BlockKind& kind, const TableEntry& source, const EntityResults& merged) const
    {
        check_index_values(merged.index.nindex);
        write_at_path(kind, source.path, merged, compression_of(merged));
    }

    /// Writes a block whose writer takes the block's own group.
    void write_at_path(const BlockKind& kind, const std::string& path, const EntityResults& block,
                       const Compression& compression) const
    {
        const Id group = create_block(target_, path);
        if (const std::int32_t status = block.write({.group = group.get(), .compression = compression}); status != 0) {
            fail_writing(kind, status, path);
        }
    }

    // ---- entity results

    [[nodiscard]] Compression compression_of(const EntityResults& block) const
    {
        Compression compression = or_default(block.compression);
        const std::int32_t* exponent = request_.exponents.find(block.etypvar.text());
        if (exponent != nullptr) {
            compression.params[0] = *exponent;
            compression.flags |= filter_flag::scale_offset_real;
            if (request_.options.verbosity > 1) {
                say_scale_offset(block, compression);
            }
        } else if (is_coordinates(block)) {
            compression.flags &= ~filter_flag::scale_offset_real;
        }
        return compression;
    }

    static void say_scale_offset(const EntityResults& block, const Compression& compression)
    {
        const auto text = [](const Name& name) { return std::string{name.text()}; };
        say(message::merge_scale_offset, text(block.etypvar).c_str(), compression.flags);
        for (std::int32_t bit = filter_flag::scale_offset_real; bit > 0; bit /= 2) {
            say("%1d", (compression.flags & bit) != 0 ? 1 : 0);
        }
        say(message::merge_scale_offset_params, compression.params[0], compression.params[1]);
        say(message::merge_scale_offset_names, text(block.etyp).c_str(), text(block.etypvar).c_str(),
            text(block.etypzone).c_str(), text(block.etypframe).c_str());
    }

    static bool is_coordinates(const EntityResults& block)
    {
        return block.etyp.text() == node_type && block.etypvar.text() == coordinate_variable;
    }

    static constexpr char seen_once = 1;
    static constexpr char seen_different = 2;

    /// Marks the nodes whose coordinates differ between the domains read so far.
    static void compare_coordinates(const EntityResults& domain, RowMap rows, const EntityResults& merged,
                                    std::vector<char>& seen)
    {
        if (!is_coordinates(merged)) {
            return;
        }
        seen.resize(static_cast<std::size_t>(merged.nent));
        const auto bytes =
            static_cast<std::size_t>(merged.values_of_row()) * static_cast<std::size_t>(merged.memory_size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows[i] < 0) {
                continue;
            }
            const auto row = static_cast<std::size_t>(rows[i]);
            if (seen[row] == 0) {
                seen[row] = seen_once;
            } else if (std::memcmp(domain.res.data() + i * bytes, merged.res.data() + row * bytes, bytes) != 0) {
                seen[row] = seen_different;
            }
        }
    }

    void define_domain_number() const
    {
        say(message::merge_create, 1, kind::variable.name);
        const Variable variable = DomainNumbers::variable();
        write_at(kind::variable, Place{}, variable, path_at(Place{}, variable));
    }

    void write_domain_numbers() const
    {
        if (domain_numbers_.count() == 0) {
            return;
        }
        say(message::merge_create_merged, domain_numbers_.count(), kind::entity_results.name);
        domain_numbers_.for_each_result([&](const EntityResults& result) {
            write_at_path(kind::entity_results, path_at(Place{}, result), result, {});
        });
    }

    // ---- collectors

    void merge_collectors() const
    {
        const std::vector<SharedBlock> blocks = by_path(look_up(kind::collector));
        if (blocks.empty()) {
            return;
        }
        say(message::merge_create_merged, static_cast<std::int32_t>(blocks.size()), kind::collector.name);
        for (const SharedBlock& shared : blocks) {
            const Collector merged = merge_collector(shared);
            check_index_values(merged.index.nindex);
            write_at(kind::collector, place_of(*shared.front().entry, merged), merged, shared.front().entry->path);
        }
    }

    /// Members of the collectors of all domains: by collector, by type in the order in which types appear.
    [[nodiscard]] Collector merge_collector(const SharedBlock& shared) const
    {
        struct Member {
            std::int32_t collector;
            std::int32_t type;
            std::int32_t entity;
            auto operator<=>(const Member&) const = default;
        };
        Collector merged;
        std::set<std::int32_t> collectors;
        std::map<std::string, std::int32_t, std::less<>> types;
        std::vector<Member> members;
        for (const Source& source : shared) {
            const Collector block = read_collector(source);
            if (&source == &shared.front()) {
                merged = block;
                merged.etyp.clear();
            } else if (block.index.nindex != merged.index.nindex) {
                report_error(message::merge_differs, source.entry->path.c_str(), "nindex", merged.index.nindex,
                             file_number(shared.front()), block.index.nindex, file_number(source));
                throw Stop{failed};
            }
            if (!merged.compression.is_any()) {
                merged.compression = block.compression;
            }
            std::vector<std::int32_t> own_types;
            for (std::size_t t = 0; t * name_length < block.etyp.size(); ++t) {
                const char* name = block.etyp.data() + t * name_length;
                const auto [type, is_new] =
                    types.try_emplace(std::string{trimmed(name, name_length)}, static_cast<std::int32_t>(types.size()));
                if (is_new) {
                    merged.etyp.insert(merged.etyp.end(), name, name + name_length);
                }
                own_types.push_back(type->second);
            }
            const std::int32_t* count = block.nent.data();
            const std::int32_t* entity = block.entid.data();
            for (const std::int32_t collector : block.idcoll) {
                collectors.insert(collector);
                for (const std::int32_t type : own_types) {
                    for (std::int32_t i = 0; i < *count; ++i) {
                        members.push_back({collector, type, *entity++});
                    }
                    ++count;
                }
            }
        }
        std::sort(members.begin(), members.end());
        members.erase(std::unique(members.begin(), members.end()), members.end());

        merged.ncoll = static_cast<std::int32_t>(collectors.size());
        merged.ntyp = static_cast<std::int32_t>(types.size());
        merged.idcoll.assign(collectors.begin(), collectors.end());
        merged.nent.assign(collectors.size() * types.size(), 0);
        merged.entid.clear();
        std::size_t collector = 0;
        for (const Member& member : members) {
            while (merged.idcoll[collector] != member.collector) {
                ++collector;
            }
            ++merged.nent[collector * types.size() + static_cast<std::size_t>(member.type)];
            merged.entid.push_back(member.entity);
        }
        return merged;
    }

    [[nodiscard]] Collector read_collector(const Source& source) const
    {
        const Id group = open(source);
        Collector block;
        block.make_room(group.get());
        if (const std::int32_t status = block.read(group.get(), Collector::passes.values); status < 0) {
            fail_reading(kind::collector, Collector::passes.values, status, source.entry->path);
        }
        return block;
    }

    // ---- blocks that are written one by one

    void add_element_results() const
    {
        const std::vector<Source> blocks = look_up(kind::element_results);
        if (blocks.empty()) {
            return;
        }
        say(message::merge_create, static_cast<std::int32_t>(blocks.size()), kind::element_results.name);
        std::map<std::string, std::int32_t> last_sets;
        for (const Source& source : blocks) {
            const ElementResults block = read_whole<ElementResults>(kind::element_results, source);
            check_index_values(block.index.nindex);
            write_at(kind::element_results, free_place(source, block, last_sets), block, source.entry->path);
        }
    }

    /// The block's own place, or the first free set number of it. Looks beyond the sets that are known to be taken.
    [[nodiscard]] Place free_place(const Source& source, const ElementResults& block,
                                   std::map<std::string, std::int32_t>& last_sets) const
    {
        Place place = place_of(*source.entry, block);
        if (!is_taken(path_at(place, block))) {
            return place;
        }
        place.set = no_suffix;
        std::int32_t& last = last_sets[path_at(place, block)];
        do {
            place.set = ++last;
        } while (is_taken(path_at(place, block)));
        return place;
    }

    [[nodiscard]] bool is_taken(const std::string& path) const { return static_cast<bool>(open_block(target_, path)); }

    void add_matrices(const BlockKind& kind) const
    {
        const std::vector<SharedBlock> blocks = by_path(look_up(kind));
        if (blocks.empty()) {
            return;
        }
        std::int32_t created = 0;
        for (const SharedBlock& shared : blocks) {
            created += is_taken(shared.front().entry->path) ? 0 : 1;
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
        if (Id there = open_block(target_, path); there) {
            if (const std::int32_t status = first.read(there.get()); status < 0) {
                fail_reading(kind, Matrix::pass, status, path);
            }
        } else {
            first = read_whole(kind, shared.front(), first);
            check_index_values(first.index.nindex);
            write_at(kind, place_of(*shared.front().entry, first), first, path);
            others = 1;
        }
        for (std::size_t i = others; i < shared.size(); ++i) {
            if (!read_whole(kind, shared[i], Matrix{kind}).equals(first)) {
                report_error(message::merge_left_out, path.c_str(), file_number(shared[i]));
            }
        }
    }

    // ---- series

    /// The states of a merged series.
    struct Timeline {
        std::vector<std::int32_t> indexident; ///< [states, nindex]
        std::vector<double> indexval;
        std::vector<std::vector<std::int32_t>> rows; ///< for each state the row in each domain, -1: none
        [[nodiscard]] std::int64_t size() const { return static_cast<std::int64_t>(rows.size()); }
    };

    void merge_all_series()
    {
        const BlockKind& kind = kind::multi_entity_results;
        const std::vector<SharedBlock> blocks = by_path(look_up(kind));
        if (blocks.empty()) {
            return;
        }
        say(message::merge_create_merged, static_cast<std::int32_t>(blocks.size()), kind.name);
        for (const SharedBlock& shared : blocks) {
            merge_series(shared);
        }
    }

    void merge_series(const SharedBlock& shared)
    {
        const BlockKind& kind = kind::multi_entity_results;
        const std::string& path = shared.front().entry->path;
        Gathered<Series> gathered = gather(kind, shared, Series{});
        Series merged = frame_of(gathered);
        check_index_values(merged.nindex);
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
        Compression compression = or_default(merged.compression);
        if (missing > 0) {
            compression.flags &= ~filter_flag::scale_offset_real; // it cannot hold what is no number
        }
        write_states(shared, gathered, states, merged, compression);
        if (missing > 0) {
            report_error(message::merge_missing_values, path.c_str(),
                         static_cast<std::int32_t>(std::min<std::int64_t>(missing, INT32_MAX)));
        }
    }

    /// Index, identified columns and filters of a domain's series; the identifiers themselves are known by now.
    void read_static_part(const Source& source, Series& domain, bool leads) const
    {
        const BlockKind& kind = kind::multi_entity_results;
        const std::string& path = source.entry->path;
        const Id group = open(source);
        domain.make_room(group.get());
        if (!domain.has_all_values(group.get())) {
            fail_reading(kind, Series::passes.values, other_extents, path);
        }
        if (const std::int32_t status = domain.read(group.get(), Series::passes.index); status < 0) {
            fail_reading(kind, Series::passes.index, status, path);
        }
        if (leads || domain.nent > 0) {
            if (const std::int32_t status = domain.read(group.get(), Series::passes.values); status < 0) {
                fail_reading(kind, Series::passes.values, status, path);
            }
        }
        if (const std::int32_t status = domain.read_filters(group.get()); status < 0) {
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
        const std::int64_t fitting =
            bytes > 0 ? std::max<std::int64_t>(most_bytes_of_states / bytes, 1) : states.size();
        if (fitting < states.size() && request_.options.verbosity > 0) {
            say(message::merge_size_limit, kind::multi_entity_results.name,
                static_cast<std::int32_t>(most_bytes_of_states), static_cast<std::int32_t>(fitting), path.c_str());
        }
        return std::min(fitting, states.size());
    }

    void write_states(const SharedBlock& shared, Gathered<Series>& gathered, const Timeline& states, Series& merged,
                      const Compression& compression) const
    {
        const std::string& path = shared.front().entry->path;
        const std::int64_t at_a_time = states_at_a_time(merged, states, path);
        const Id group = create_block(target_, path);
        const Destination to{.group = group.get(), .compression = compression};
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
        const Id group = open(source);
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
            if (const std::int32_t status = domain.read_states(group.get(), row_of(state), end - state); status < 0) {
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

    // ---- what is left out

    /// Blocks of kinds that stay behind, so that nothing vanishes unsaid.
    void say_left_out() const
    {
        for (std::size_t i = 0; i < domains_.size(); ++i) {
            std::map<std::string, std::int32_t> left_out;
            std::vector<std::string> order;
            for (const KeyGroup& group : domains_[i].table.groups()) {
                const std::string name = left_out_name(group.key);
                if (name.empty()) {
                    continue;
                }
                if (left_out.try_emplace(name, 0).second) {
                    order.push_back(name);
                }
                left_out[name] += static_cast<std::int32_t>(group.blocks.size());
            }
            for (const std::string& name : order) {
                say(message::merge_not_merged, left_out[name], name.c_str(), static_cast<std::int32_t>(i) + 1);
            }
        }
    }

    /// The name of a kind that is not merged, the key of one that is unknown; empty for the others.
    static std::string left_out_name(std::int32_t key)
    {
        constexpr std::array merged{kind::system,
                                    kind::index,
                                    kind::variable_group,
                                    kind::variable,
                                    kind::text,
                                    kind::parts,
                                    kind::attributes,
                                    kind::identifiers,
                                    kind::connectivities,
                                    kind::collector,
                                    kind::entity_results,
                                    kind::multi_entity_results,
                                    kind::element_results,
                                    kind::activation_flags,
                                    kind::dense_matrix,
                                    kind::triangular_matrix};
        constexpr std::array left_out{kind::properties, kind::multi_element_results, kind::multi_activation_flags,
                                      kind::sparse_matrix};
        const auto owns = [key](const BlockKind& kind) { return kind.owns(key); };
        if (key == kind::file_header || std::any_of(merged.begin(), merged.end(), owns)) {
            return {};
        }
        const auto* const found = std::find_if(left_out.begin(), left_out.end(), owns);
        return found != left_out.end() ? found->name : std::to_string(key);
    }

    Request request_;
    const Family& family_;
    hid_t target_;
    std::vector<Domain> domains_;
    UnionCache unions_;
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
        const merge::Compression defaults{value(filter_flags), {value(filter_params), filter_params[1]}};
        return merge::Merger{{domains,
                              value(target),
                              *n,
                              defaults,
                              {*nexp, exponent_names, exponents},
                              merge::Options{value(options)},
                              value(float_size),
                              generation}}
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
