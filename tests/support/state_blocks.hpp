// SPDX-License-Identifier: BSD-3-Clause
// Calls of the blocks that may belong to a state: what goes into each writer and what comes out of each reader.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <hdf5.h>
#include <kob_dp.h>

#include "captured_stream.hpp"
#include "hdf5_file.hpp"
#include "text256.hpp"

namespace kob_test {

using Ints = std::vector<std::int32_t>;
using Reals = std::vector<double>;
using Rows = std::vector<std::int64_t>;
using FilterParams = std::array<std::int32_t, 2>;

/// Values that no reader returns by chance: what still holds them was left untouched.
constexpr std::int32_t untouched_int = -7777;
constexpr double untouched_real = -7777.5;

/// The parameters that these tests give to filters: decimals and deflate level.
constexpr FilterParams filter_settings{3, 6};

/// The state that a block belongs to, and what its writer is asked for besides its contents.
struct BlockFrame {
    std::int32_t nindex = 0;
    std::int32_t indexic = 0;
    Ints indexident;
    Reals indexval;
    std::int32_t state = -1;
    std::int32_t filter_flags = 0;
    FilterParams filter_params{};
    std::int32_t float_size = 8;
    // what comes out
    std::int32_t status = 77;
    std::string errors; ///< what the last call printed on standard error

    /// Belongs to state 12 at time 0.5, in the index of code 3.
    void set_state()
    {
        nindex = 1;
        indexic = 3;
        indexident = {12};
        indexval = {0.5};
    }
    /// Belongs to state 5, with an index of eight numbers: enough for filters.
    void set_long_index()
    {
        nindex = 8;
        indexic = 4;
        indexident = {1, 2, 3, 4, 5, 6, 7, 8};
        indexval = {0.5, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5};
        state = 5;
    }
    /// Ready for a reader: nothing is known yet, arrays of the index have room for `room` numbers.
    void clear(std::size_t room)
    {
        nindex = indexic = untouched_int;
        indexident.assign(room, untouched_int);
        indexval.assign(room, untouched_real);
        filter_flags = untouched_int;
        filter_params = {untouched_int, untouched_int};
    }

    friend bool operator==(const BlockFrame&, const BlockFrame&) = default;
};

/// Runs an entry point and keeps its messages; returns the status.
template <class Call> std::int32_t run(BlockFrame& frame, Call&& call)
{
    frame.status = 77;
    frame.errors = errors_of(call);
    return frame.status;
}

/// Free text: KOB_WRITE_TEXT and KOB_READ_TEXT.
struct TextBlock : BlockFrame {
    Text256 etyptext = "log";
    std::int32_t nlines = 0;
    std::int32_t length = 0;
    std::string line;

    static TextBlock with_room(std::size_t bytes)
    {
        TextBlock b;
        b.clear(8);
        b.etyptext = untouched();
        b.nlines = b.length = untouched_int;
        b.line.assign(bytes, '#');
        return b;
    }
    std::int32_t write(std::int64_t group)
    {
        return run(*this, [&] {
            KOB_WRITE_TEXT(&group, etyptext.data(), &nlines, &length, &nindex, &indexic, indexident.data(),
                           indexval.data(), line.data(), &state, &filter_flags, filter_params.data(), &float_size,
                           &status);
        });
    }
    std::int32_t read(std::int64_t block, std::int32_t mode)
    {
        return run(*this, [&] {
            KOB_READ_TEXT(&block, &mode, etyptext.data(), &nlines, &length, &nindex, &indexic, indexident.data(),
                          indexval.data(), line.data(), &filter_flags, filter_params.data(), &status);
        });
    }

    friend bool operator==(const TextBlock&, const TextBlock&) = default;
};

/// Parts: KOB_WRITE_PARTS and KOB_READ_PARTS.
struct Parts : BlockFrame {
    Text256 etyppart = "PART";
    std::int32_t npart = 0;
    std::int32_t off = 0;
    std::int32_t length = 0;
    Ints pid;
    std::string title;
    Ints mid;
    Ints mtyp;
    Ints pcol;

    static Parts with_room(std::size_t parts, std::size_t title_bytes)
    {
        Parts b;
        b.clear(8);
        b.etyppart = untouched();
        b.npart = b.off = b.length = untouched_int;
        b.title.assign(title_bytes, '#');
        b.pid = b.mid = b.mtyp = b.pcol = Ints(parts, untouched_int);
        return b;
    }
    std::int32_t write(std::int64_t group)
    {
        return run(*this, [&] {
            KOB_WRITE_PARTS(&group, etyppart.data(), &npart, &off, &length, &nindex, &indexic, indexident.data(),
                            indexval.data(), pid.data(), title.data(), mid.data(), mtyp.data(), pcol.data(), &state,
                            &filter_flags, filter_params.data(), &float_size, &status);
        });
    }
    std::int32_t read(std::int64_t block, std::int32_t mode)
    {
        return run(*this, [&] {
            KOB_READ_PARTS(&block, &mode, etyppart.data(), &npart, &off, &length, &nindex, &indexic, indexident.data(),
                           indexval.data(), pid.data(), title.data(), mid.data(), mtyp.data(), pcol.data(),
                           &filter_flags, filter_params.data(), &status);
        });
    }

    friend bool operator==(const Parts&, const Parts&) = default;
};

/// What tells the attributes block from the identifiers block.
struct EntityListKind {
    std::int32_t key;
    const char* name;
    decltype(&KOB_WRITE_ATTRIBUTES) writer;
    decltype(&KOB_READ_ATTRIBUTES) reader;

    friend bool operator==(const EntityListKind&, const EntityListKind&) = default;
    friend std::ostream& operator<<(std::ostream& out, const EntityListKind& kind) { return out << kind.name; }
};
inline const EntityListKind attributes_kind{200, "attributes", KOB_WRITE_ATTRIBUTES, KOB_READ_ATTRIBUTES};
inline const EntityListKind identifiers_kind{250, "identifiers", KOB_WRITE_IDENTIFIERS, KOB_READ_IDENTIFIERS};

/// Attributes or identifiers of entities: KOB_WRITE_ATTRIBUTES, KOB_WRITE_IDENTIFIERS and their readers.
struct EntityList : BlockFrame {
    EntityListKind kind;
    Text256 etyp = "NODE";
    std::int32_t nent = 0;
    std::int32_t nuid = 0;
    std::int32_t length = 0;
    Ints entid;
    std::string title;
    Ints uid;

    explicit EntityList(const EntityListKind& which) : kind{which} {}
    static EntityList with_room(const EntityListKind& which, std::size_t entities, std::size_t uids,
                                std::size_t title_bytes)
    {
        EntityList b{which};
        b.clear(8);
        b.etyp = untouched();
        b.nent = b.nuid = b.length = untouched_int;
        b.entid.assign(entities, untouched_int);
        b.uid.assign(uids, untouched_int);
        b.title.assign(title_bytes, '#');
        return b;
    }
    std::int32_t write(std::int64_t group)
    {
        return run(*this, [&] {
            kind.writer(&group, etyp.data(), &nent, &nuid, &length, &nindex, &indexic, indexident.data(),
                        indexval.data(), entid.data(), title.data(), uid.data(), &state, &filter_flags,
                        filter_params.data(), &float_size, &status);
        });
    }
    std::int32_t read(std::int64_t block, std::int32_t mode)
    {
        return run(*this, [&] {
            kind.reader(&block, &mode, etyp.data(), &nent, &nuid, &length, &nindex, &indexic, indexident.data(),
                        indexval.data(), entid.data(), title.data(), uid.data(), &filter_flags, filter_params.data(),
                        &status);
        });
    }

    friend bool operator==(const EntityList&, const EntityList&) = default;
};

/// Collectors: KOB_WRITE_COLLECTOR and KOB_READ_COLLECTOR.
struct Collector : BlockFrame {
    Text256 etypcoll = "SET";
    std::int32_t ncoll = 0;
    std::int32_t ntyp = 0;
    std::int32_t nenttot = untouched_int; ///< comes out of the reader alone
    Ints idcoll;
    Texts256 etyp;
    Ints nent;
    Ints entid;

    static Collector with_room(std::size_t collectors, std::size_t types, std::size_t members)
    {
        Collector b;
        b.clear(8);
        b.etypcoll = untouched();
        b.ncoll = b.ntyp = untouched_int;
        b.idcoll.assign(collectors, untouched_int);
        b.etyp = Texts256(types);
        b.nent.assign(collectors * types, untouched_int);
        b.entid.assign(members, untouched_int);
        return b;
    }
    std::int32_t write(std::int64_t group)
    {
        return run(*this, [&] {
            KOB_WRITE_COLLECTOR(&group, etypcoll.data(), &ncoll, &ntyp, &nindex, &indexic, indexident.data(),
                                indexval.data(), idcoll.data(), etyp.data(), nent.data(), entid.data(), &state,
                                &filter_flags, filter_params.data(), &float_size, &status);
        });
    }
    std::int32_t read(std::int64_t block, std::int32_t mode)
    {
        return run(*this, [&] {
            KOB_READ_COLLECTOR(&block, &mode, &nenttot, etypcoll.data(), &ncoll, &ntyp, &nindex, &indexic,
                               indexident.data(), indexval.data(), idcoll.data(), etyp.data(), nent.data(),
                               entid.data(), &filter_flags, filter_params.data(), &status);
        });
    }

    friend bool operator==(const Collector&, const Collector&) = default;
};

/// Properties: KOB_WRITE_PROPERTIES and KOB_READ_PROPERTIES.
struct Properties : BlockFrame {
    Text256 etyp = "ELEMENT";
    Text256 etypprop = "SHELL";
    Text256 etypzone = "PART";
    std::int32_t zoneid = 0;
    std::int32_t nent = 0;
    std::int32_t nbid = 0;
    std::int32_t nbint = 0;
    std::int32_t nbfloat = 0;
    std::int32_t nbstring = 0;
    std::int32_t length = 0;
    Ints entid;
    Ints idparam;
    Ints iparam;
    Reals fparam;
    std::string cparam;
    std::int32_t mode = 0;
    std::int64_t count = 0;
    Rows rows;

    static Properties with_room(std::size_t entities, std::size_t parameters, std::size_t bytes)
    {
        Properties b;
        b.clear(8);
        b.etyp = b.etypprop = b.etypzone = untouched();
        b.zoneid = b.nent = b.nbid = b.nbint = b.nbfloat = b.nbstring = b.length = untouched_int;
        b.entid.assign(entities, untouched_int);
        b.idparam = b.iparam = Ints(parameters, untouched_int);
        b.fparam.assign(parameters, untouched_real);
        b.cparam.assign(bytes, '#');
        return b;
    }
    std::int32_t write(std::int64_t block, std::int32_t sections, std::int64_t shared = -1)
    {
        const std::array<std::int64_t, 2> groups{block, shared};
        return run(*this, [&] {
            KOB_WRITE_PROPERTIES(groups.data(), &sections, etyp.data(), etypprop.data(), etypzone.data(), &zoneid,
                                 &nent, &nbid, &nbint, &nbfloat, &nbstring, &length, &nindex, &indexic,
                                 indexident.data(), indexval.data(), entid.data(), idparam.data(), iparam.data(),
                                 fparam.data(), cparam.data(), &filter_flags, filter_params.data(), &float_size, &mode,
                                 &count, rows.data(), &status);
        });
    }
    std::int32_t read(std::int64_t block, std::int32_t sections)
    {
        return run(*this, [&] {
            KOB_READ_PROPERTIES(&block, &sections, etyp.data(), etypprop.data(), etypzone.data(), &zoneid, &nent, &nbid,
                                &nbint, &nbfloat, &nbstring, &length, &nindex, &indexic, indexident.data(),
                                indexval.data(), entid.data(), idparam.data(), iparam.data(), fparam.data(),
                                cparam.data(), nullptr, nullptr, &mode, &count, rows.data(), &status);
        });
    }

    friend bool operator==(const Properties&, const Properties&) = default;
};

/// Activation flags: KOB_WRITE_ACTIVFLAGS and KOB_READ_ACTIVFLAGS.
struct ActivFlags : BlockFrame {
    Text256 etyp = "ELEMENT";
    std::int32_t nent = 0;
    Ints entid;
    Ints flags;

    static ActivFlags with_room(std::size_t entities)
    {
        ActivFlags b;
        b.clear(8);
        b.etyp = untouched();
        b.nent = untouched_int;
        b.entid = b.flags = Ints(entities, untouched_int);
        return b;
    }
    std::int32_t write(std::int64_t group)
    {
        return run(*this, [&] {
            KOB_WRITE_ACTIVFLAGS(&group, etyp.data(), &nent, &nindex, &indexic, indexident.data(), indexval.data(),
                                 entid.data(), flags.data(), &state, &filter_flags, filter_params.data(), &float_size,
                                 &status);
        });
    }
    std::int32_t read(std::int64_t block, std::int32_t pass)
    {
        return run(*this, [&] {
            KOB_READ_ACTIVFLAGS(&block, &pass, etyp.data(), &nent, &nindex, &indexic, indexident.data(),
                                indexval.data(), entid.data(), flags.data(), &filter_flags, filter_params.data(),
                                &status);
        });
    }

    friend bool operator==(const ActivFlags&, const ActivFlags&) = default;
};

/// The outcome of a call that did nothing but set the status: the arguments as they were before.
template <class Block> Block unchanged(Block before, const Block& after)
{
    before.status = after.status;
    before.errors = after.errors;
    return before;
}

/// A group in the root of the result set that is no more than the frame of a block with this key.
inline Hid bare_block(std::int64_t parent, const std::string& name, std::int32_t key)
{
    auto group = create_group(parent, name);
    put_attribute(group, "block", H5T_STD_I32LE, {}, H5T_NATIVE_INT32, &key);
    return group;
}

} // namespace kob_test
