// SPDX-License-Identifier: BSD-3-Clause
// Result and matrix blocks in the merger's memory.
#pragma once

#include "kob_merge_block.hpp"

#include <tuple>
#include <utility>

namespace kob::merge {

/// The value size that a result writer is to be told.
std::int32_t value_size_for(bool complex, std::int32_t stored_size);

/// A table of one variable, in one state or none. Its values stay in the width in which they are stored.
struct EntityResults {
    static constexpr Passes passes{1, 2, 8};
    static constexpr Passes older_passes = passes;
    static constexpr const char* identifiers = "entid";

    Name etyp, etypvar, etypzone, etypframe;
    std::int32_t nent = 0, ncoo = 0, zoneid = -1, fswitch = 0, dmpswitch = 0, fidglob = 0;
    StateIndex index;
    std::vector<std::int32_t> entid, fid;
    std::vector<char> operators; ///< [ncoo, 256]
    std::vector<double> weight;
    std::vector<char> res;    ///< [nent, ncoo(, 2)] values of `size` bytes
    bool holds_values = true; ///< else `res` stays empty
    std::int32_t key = 0;
    std::int32_t size = 0; ///< bytes of a stored value; 0: there are none
    Compression compression;

    void make_room(StoredBlock& block);
    std::int32_t read(StoredBlock& block, std::int32_t sections);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    /// Writes all but the values, for entities that are kept elsewhere.
    [[nodiscard]] std::int32_t write_frame(const Destination& to, const std::int32_t* entities) const;
    /// Writes the values of some rows.
    [[nodiscard]] std::int32_t write_values(const Destination& to, std::int64_t first, std::int64_t count,
                                            const void* values) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;
    /// Values and frames of the rows; of the leading domain also what all rows share.
    [[nodiscard]] std::int32_t values_pass(bool leads) const;

    [[nodiscard]] bool is_complex() const { return key == kind::entity_results.complex_key; }
    [[nodiscard]] std::int32_t memory_size() const
    {
        return size == sizeof(float) ? size : std::int32_t{sizeof(double)};
    }
    [[nodiscard]] std::int64_t values_of_row() const { return std::int64_t{ncoo} * (is_complex() ? 2 : 1); }
    [[nodiscard]] std::size_t row_bytes() const
    {
        return static_cast<std::size_t>(std::max<std::int64_t>(values_of_row(), 0) * memory_size());
    }
    std::int32_t& rows() { return nent; }
    std::vector<std::int32_t>& row_identifiers() { return entid; }
    auto columns()
    {
        return std::tuple{
            Column<std::int32_t>{"fid", fid, fswitch == 1 ? 1 : 0},
            Column<double>{"weight", weight, dmpswitch == 1 ? 1 : 0},
            Column<char>{"res", res, holds_values ? values_of_row() * memory_size() : 0, values_of_row()}};
    }
    [[nodiscard]] std::vector<Trait> traits() const
    {
        return {{"block key", key},
                {"ncoo", ncoo},
                {"fswitch", fswitch},
                {"dmpswitch", dmpswitch},
                {"nindex", index.nindex}};
    }
    /// The wider of two stored sizes holds the values of both.
    void take_in(const EntityResults& domain) { size = std::max(size, domain.size); }
    /// Values of all domains are read into one width.
    void conform(const EntityResults& merged) { size = merged.size; }
    /// What the rows share comes from the leading domain.
    void share(EntityResults& lead)
    {
        index = std::move(lead.index);
        fidglob = lead.fidglob;
        operators = std::move(lead.operators);
    }

private:
    /// Which values are transferred.
    struct Part {
        std::int32_t mode = access_mode::whole;
        std::array<std::int64_t, 3> count{};
        std::array<std::int64_t, 3> start{};
    };
    [[nodiscard]] std::int32_t write_sections(std::int32_t sections, const Destination& to,
                                              const std::int32_t* entities, const void* values, const Part& part) const;
};

/// Tables of one variable in many states.
struct Series {
    static constexpr Passes passes{1, 2, 4};
    static constexpr Passes older_passes = passes;
    static constexpr const char* identifiers = "entid";

    Name series, etyp, etypvar, etypzone, etypframe;
    std::int32_t nent = 0, ncoo = 0, zoneid = -1, fswitch = 0, dmpswitch = 0, nindex = 0, nstate = 0, fidglob = 0;
    std::vector<std::int32_t> indexident; ///< [nstate, nindex]
    std::vector<double> indexval;
    std::vector<std::int32_t> entid, fid;
    std::vector<char> operators; ///< [ncoo, 256]
    std::vector<double> weight;
    std::vector<double> res; ///< [some states, nent, ncoo(, 2)]
    std::int32_t key = 0;
    std::int32_t size = 0; ///< bytes of a stored value; 0: there are none
    Compression compression;

    void make_room(StoredBlock& block); ///< for all but the values
    std::int32_t read(StoredBlock& block, std::int32_t sections);
    /// Reads the values of some states.
    std::int32_t read_states(StoredBlock& block, std::int64_t first, std::int64_t count);
    /// Learns how the values are stored, by reading the first row of them.
    std::int32_t read_filters(StoredBlock& block);
    /// Writes some states, whose index values are given; none of them makes an empty series.
    [[nodiscard]] std::int32_t write_states(const Destination& to, std::int64_t first, std::int64_t count,
                                            const std::int32_t* identifiers_of_states,
                                            const double* values_of_states) const;

    [[nodiscard]] bool is_complex() const { return key == kind::multi_entity_results.complex_key; }
    [[nodiscard]] std::int64_t values_of_row() const { return std::int64_t{ncoo} * (is_complex() ? 2 : 1); }
    /// Numbers of one state.
    [[nodiscard]] std::int64_t values_of_state() const { return nent * values_of_row(); }
    /// Are there values for every state and row?
    [[nodiscard]] bool has_all_values(StoredBlock& block) const
    {
        return nstate >= 0 && static_cast<std::int64_t>(stored(block, "res")) == nstate * values_of_state();
    }
    std::int32_t& rows() { return nent; }
    std::vector<std::int32_t>& row_identifiers() { return entid; }
    auto columns()
    {
        return std::tuple{Column<std::int32_t>{"fid", fid, fswitch == 1 ? 1 : 0},
                          Column<double>{"weight", weight, dmpswitch == 1 ? 1 : 0}};
    }
    [[nodiscard]] std::vector<Trait> traits() const
    {
        return {{"block key", key}, {"ncoo", ncoo}, {"fswitch", fswitch}, {"dmpswitch", dmpswitch}, {"nindex", nindex}};
    }
    void take_in(const Series& domain) { size = std::max(size, domain.size); }
    void share(Series& lead)
    {
        fidglob = lead.fidglob;
        operators = std::move(lead.operators);
    }
};

struct ElementResults {
    static constexpr std::int32_t pass = 2;

    Name etypelem, etypvar, etypzone, etypframe;
    std::int32_t nele = 0, ncoo = 0, numl = 0, ndim = 0, zoneid = -1, fswitch = 0, dmpswitch = 0, fidglob = 0;
    StateIndex index;
    std::vector<std::int32_t> idele, fid;
    std::vector<double> eloc, weight, res;
    std::vector<char> operators;
    std::int32_t key = 0;
    std::int32_t size = 0;
    Compression compression;

    std::int32_t read(StoredBlock& block);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;
};

/// Dense and triangular matrices: the same two sizes in the same places of their entry points.
struct Matrix {
    static constexpr std::int32_t pass = 2;

    explicit Matrix(const BlockKind& which) : kind{which} {}

    BlockKind kind;
    Name etyp, etypvar;
    std::int32_t entid = 0;
    std::array<std::int32_t, 2> sizes{}; ///< rows and columns, or order and matrix type
    StateIndex index;
    std::vector<double> val;
    std::int32_t key = 0;
    std::int32_t size = 0;
    Compression compression;

    std::int32_t read(StoredBlock& block);
    [[nodiscard]] std::int32_t write(const Destination& to) const;
    [[nodiscard]] BlockPath path(std::int32_t state, std::int32_t set) const;
    /// The same contents, bit by bit; how they are stored does not count.
    [[nodiscard]] bool equals(const Matrix& other) const;
};

} // namespace kob::merge
