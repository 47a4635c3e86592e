// SPDX-License-Identifier: BSD-3-Clause
// Model blocks and activation flags in the merger's memory.
//
// A block that is copied is read whole and written. A block that is merged says which dataset identifies its rows,
// which columns it has, what must agree between domains, and how it takes in what differs.
#pragma once

#include "kob_merge_block.hpp"

#include <tuple>
#include <utility>

namespace kob::merge {

struct SystemBlock {
    static constexpr std::int32_t pass = 2;

    Name title, sys, solver_name, solver_vers;
    std::array<char, 8> cdate{}, ctime{}, mdate{}, mtime{};
    std::int32_t nbunit = 0, ndunit = 0;
    std::vector<std::int32_t> ubid, udid, ndbunit, udbid;
    std::vector<char> ubtyp, ubnam, udnam;
    std::vector<double> ubshift, ubcon, udscal, udbexp;
    Compression compression;

    std::int32_t read(StoredBlock& block);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] static BlockPath path(std::int32_t state, std::int32_t set);
};

/// Units of values in the older layout, where index, variables and connectivities blocks hold them.
struct Units {
    std::vector<std::int32_t> mbunit, mdunit, ubid, udid;
    std::vector<double> ubexp, udexp;

    void make_room(StoredBlock& block);
    /// Do the counts and the factors of so many values belong together?
    [[nodiscard]] bool is_whole(std::int32_t count) const;
};

struct IndexBlock {
    static constexpr std::int32_t pass = 0;

    std::int32_t nindex = 0;
    Name etypvar;
    std::vector<char> etypindex; ///< [nindex, 256]; in the older layout, like the units
    Units units;
    Compression compression;

    std::int32_t read(StoredBlock& block);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] static BlockPath path(std::int32_t state, std::int32_t set);
};

struct VariableGroup {
    static constexpr std::int32_t pass = 3;

    Name etypvar;
    std::int32_t nvar = 0, ncoo = 0;
    std::vector<std::int32_t> cnt, offs;
    std::vector<char> varkey;
    Compression compression;

    std::int32_t read(StoredBlock& block);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;
};

struct Variable {
    static constexpr std::int32_t pass = 3;

    Name varkey, varclass, varnam, type;
    std::int32_t ncoo = 0, rank = 0, ndim = 0, tensor = 0, lvmap = 0, subslen = 0, lenb = 0, lend = 0;
    std::vector<std::int32_t> mbunit, mdunit, ubid, udid, subscnt, subsoffs;
    std::vector<double> ubexp, udexp, vmap;
    std::vector<char> subscr;
    Compression compression;

    std::int32_t read(StoredBlock& block);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;
};

/// What the older layout has in place of variable groups and variables.
struct OlderVariables {
    static constexpr std::int32_t pass = two_passes.values;

    Name etypvar;
    std::int32_t idtrans = 0, rank = 0, ndim = 0, ncoo = 0;
    Units units;
    std::vector<char> cname; ///< [ncoo, 256]
    std::vector<std::int32_t> cid, comp;
    Compression compression;

    std::int32_t read(StoredBlock& block);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;
};

struct Text {
    static constexpr std::int32_t pass = 11;

    Name etyptext;
    std::int32_t nlines = 0, length = 0;
    StateIndex index;
    std::vector<char> line;
    Compression compression;

    std::int32_t read(StoredBlock& block);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;
};

struct Connectivities {
    static constexpr Passes passes{1, 2, 12};
    static constexpr Passes older_passes = two_passes;
    static constexpr const char* identifiers = "idele";

    Name etyp, etypelem, etyppart, etypnode, etypvar;
    std::int32_t nele = 0, npele = 0, ndim = 0, nbint = 0, nbfloat = 0;
    StateIndex index;
    std::vector<std::int32_t> idele, pid, ic, iparam;
    std::vector<double> fparam;
    Units units; ///< of the nbfloat parameters; in the older layout, which has neither etyp nor etypvar
    Compression compression;

    void make_room(StoredBlock& block);
    std::int32_t read(StoredBlock& block, std::int32_t sections);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;

    std::int32_t& rows() { return nele; }
    std::vector<std::int32_t>& row_identifiers() { return idele; }
    auto columns()
    {
        return std::tuple{Column<std::int32_t>{"pid", pid, 1}, Column<std::int32_t>{"ic", ic, npele},
                          Column<std::int32_t>{"iparam", iparam, nbint}, Column<double>{"fparam", fparam, nbfloat}};
    }
    [[nodiscard]] std::vector<Trait> traits() const
    {
        return {{"npele", npele}, {"ndim", ndim}, {"nbint", nbint}, {"nbfloat", nbfloat}, {"nindex", index.nindex}};
    }
    void take_in(const Connectivities&) {}
    void share(Connectivities& lead)
    {
        index = std::move(lead.index);
        units = std::move(lead.units);
    }
};

struct ActivationFlags {
    static constexpr Passes passes{1, 0, 2};
    static constexpr Passes older_passes = two_passes;
    static constexpr const char* identifiers = "entid";

    Name etyp;
    std::int32_t nent = 0;
    StateIndex index;
    std::vector<std::int32_t> entid, status;
    Compression compression;

    void make_room(StoredBlock& block);
    std::int32_t read(StoredBlock& block, std::int32_t pass);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;

    std::int32_t& rows() { return nent; }
    std::vector<std::int32_t>& row_identifiers() { return entid; }
    auto columns() { return std::tuple{Column<std::int32_t>{"status", status, 1}}; }
    [[nodiscard]] std::vector<Trait> traits() const { return {{"nindex", index.nindex}}; }
    void take_in(const ActivationFlags&) {}
    void share(ActivationFlags& lead) { index = std::move(lead.index); }
};

struct Parts {
    static constexpr Passes passes{1, 2, 8};
    static constexpr Passes older_passes = two_passes;
    static constexpr const char* identifiers = "pid";

    Name etyppart;
    std::int32_t npart = 0, off = 0, length = 0;
    StateIndex index;
    std::vector<std::int32_t> pid, mid, mtyp, pcol;
    std::vector<std::int32_t> pvtyp; ///< in the older layout
    bool has_pvtyp = false;
    std::vector<char> title;
    Compression compression;

    void make_room(StoredBlock& block);
    std::int32_t read(StoredBlock& block, std::int32_t sections);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;

    std::int32_t& rows() { return npart; }
    std::vector<std::int32_t>& row_identifiers() { return pid; }
    auto columns()
    {
        return std::tuple{text_column("title", title, length), optional_column("mid", mid, has(1)),
                          optional_column("mtyp", mtyp, has(2)), optional_column("pcol", pcol, has(4)),
                          optional_column("pvtyp", pvtyp, has_pvtyp)};
    }
    [[nodiscard]] std::vector<Trait> traits() const { return {{"nindex", index.nindex}}; }
    /// A column that one domain has is a column of all.
    void take_in(const Parts& domain)
    {
        off &= domain.off;
        length = std::max(length, domain.length);
    }
    void share(Parts& lead) { index = std::move(lead.index); }

private:
    [[nodiscard]] bool has(std::int32_t bit) const { return (off & bit) == 0; }
};

/// Attributes and identifiers blocks: one layout, two kinds.
struct EntityList {
    static constexpr Passes passes{1, 2, 8};
    static constexpr Passes older_passes = two_passes;
    static constexpr const char* identifiers = "entid";

    explicit EntityList(const BlockKind& which) : kind{which} {}

    BlockKind kind;
    Name etyp;
    std::int32_t nent = 0, nuid = 0, length = 0;
    StateIndex index;
    std::vector<std::int32_t> entid, uid;
    std::vector<char> title;
    Compression compression;

    void make_room(StoredBlock& block);
    std::int32_t read(StoredBlock& block, std::int32_t sections);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;

    std::int32_t& rows() { return nent; }
    std::vector<std::int32_t>& row_identifiers() { return entid; }
    auto columns() { return std::tuple{text_column("title", title, length), Column<std::int32_t>{"uid", uid, nuid}}; }
    [[nodiscard]] std::vector<Trait> traits() const { return {{"nuid", nuid}, {"nindex", index.nindex}}; }
    void take_in(const EntityList& domain) { length = std::max(length, domain.length); }
    void share(EntityList& lead) { index = std::move(lead.index); }
};

struct Collector {
    static constexpr Passes passes{1, 0, 2};
    static constexpr Passes older_passes = two_passes;

    Name etypcoll;
    std::int32_t ncoll = 0, ntyp = 0, nenttot = 0;
    StateIndex index;
    std::vector<std::int32_t> idcoll, nent, entid;
    std::vector<char> etyp; ///< [ntyp, 256]
    Compression compression;

    void make_room(StoredBlock& block);
    std::int32_t read(StoredBlock& block, std::int32_t pass);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;
};

} // namespace kob::merge
