// SPDX-License-Identifier: BSD-3-Clause
// Hands the items of a block to the writer of its kind.

#include "block_writer.hpp"

#include "terminal.hpp"
#include "verbs.hpp"

#include "kob_dp.h"

#include <charconv>
#include <string>

namespace kob::program {

namespace {

constexpr std::int32_t zero = 0;
constexpr std::int32_t none = -1;
constexpr std::int32_t name_width = 256;
constexpr std::int32_t all_sections = 15;
constexpr std::int32_t memory_size = sizeof(double);
constexpr std::int32_t matrix_text_length = name_width; // taken by the writers and not looked at

/// One block on its way into a file.
class BlockWriter {
public:
    BlockWriter(const Block& block, const Entry& entry, Layout layout, const std::int64_t* target, const Storing& how)
        : block_{block}, entry_{entry}, layout_{layout}, target_{target}, how_{how}, state_{state()}, set_{set()},
          value_size_{block.key == block.kind->complex_key ? 4 * how.float_size : how.float_size}
    {
    }

    void write()
    {
        write(block_.kind->key);
        if (status_ < 0)
            throw Failure{exit_cannot_read,
                          fmt::format("cannot write {} (status {})", printable(short_path(entry_)), status_)};
    }

private:
    void write(std::int32_t key)
    {
        switch (key) {
        case 10:
            return write_system();
        case 20:
            return write_index();
        case 30:
            return write_variable();
        case 32:
            return write_variable_group();
        case 40:
            return write_text();
        case 100:
            return write_parts();
        case 200:
            return write_entity_list(KOB_WRITE_ATTRIBUTES);
        case 250:
            return write_entity_list(KOB_WRITE_IDENTIFIERS);
        case 300:
            return write_connectivities();
        case 400:
            return write_collector();
        case 500:
            return write_properties();
        case 1000:
            return write_entity_results();
        case 1050:
            return write_multi_entity_results();
        case 1100:
            return write_element_results();
        case 1150:
            return write_multi_element_results();
        case 2100:
            return call(KOB_WRITE_ACTIVFLAGS, KOB1_WRITE_ACTIVFLAGS, target_, text("etyp"), ints("nent"),
                        ints("nindex"), index_code(), ints("indexident"), reals("indexval"), ints("entid"),
                        ints("status"), &state_, flags(), params(), &how_.float_size, StatusArgument{});
        case 2150:
            return call(KOB_WRITE_MULTIACTIVFLAGS, KOB1_WRITE_MULTIACTIVFLAGS, target_, text("series"), text("etyp"),
                        ints("nent"), ints("nindex"), ints("indexident"), reals("indexval"), ints("entid"),
                        ints("status"), ints("nstate"), flags(), params(), &how_.float_size, StatusArgument{});
        case 10000:
            return write_matrix(KOB_WRITE_DENSEMATRIX, KOB1_WRITE_DENSEMATRIX, ints("nrow"), ints("ncolumn"));
        case 10100:
            return write_matrix(KOB_WRITE_TRIANGULARMATRIX, KOB1_WRITE_TRIANGULARMATRIX, ints("nsize"),
                                ints("matrixtype"));
        case 10200:
            return write_sparse_matrix();
        default:
            throw Failure{exit_cannot_read,
                          fmt::format("{}: the kind {} cannot be written", printable(short_path(entry_)), key)};
        }
    }

    // ---- descriptions

    void write_system()
    {
        call(KOB_WRITE_SYSTEM, KOB1_WRITE_SYSTEM, target_, text("title"), text("sys"), text("solver_name"),
             text("solver_vers"), text("cdate"), text("ctime"), text("mdate"), text("mtime"), ints("nbunit"),
             ints("ndunit"), ints("ubid"), text("ubtyp"), text("ubnam"), reals("ubshift"), reals("ubcon"), ints("udid"),
             text("udnam"), reals("udscal"), ints("ndbunit"), ints("udbid"), reals("udbexp"), flags(), params(),
             &how_.float_size, StatusArgument{});
    }

    void write_index()
    {
        if (layout_ == Layout::current)
            KOB_WRITE_INDEX(target_, ints("nindex"), text("etypvar"), nullptr, nullptr, &status_);
        else
            KOB1_WRITE_INDEX(target_, ints("nindex"), text("etypindex"), ints("mbunit"), ints("mdunit"), ints("ubid"),
                             reals("ubexp"), ints("udid"), reals("udexp"), flags(), params(), &how_.float_size,
                             &status_);
    }

    void write_variable()
    {
        if (layout_ == Layout::current)
            KOB_WRITE_VARIABLE(target_, nullptr, nullptr, text("varkey"), text("varclass"), text("varnam"),
                               ints("ncoo"), ints("rank"), ints("ndim"), ints("tensor"), text("type"), ints("lvmap"),
                               ints("subslen"), ints("mbunit"), ints("mdunit"), ints("ubid"), reals("ubexp"),
                               ints("udid"), reals("udexp"), text("subscr"), ints("subscnt"), ints("subsoffs"),
                               reals("vmap"), flags(), params(), &how_.float_size, &status_);
        else
            KOB1_WRITE_VARIABLES(target_, text("etypvar"), ints("idtrans"), ints("rank"), ints("ndim"), ints("ncoo"),
                                 ints("mbunit"), ints("mdunit"), ints("ubid"), reals("ubexp"), ints("udid"),
                                 reals("udexp"), text("cname"), ints("cid"), ints("comp"), flags(), params(),
                                 &how_.float_size, &status_);
    }

    void write_variable_group()
    {
        KOB_WRITE_VARIABLEGROUP(target_, nullptr, nullptr, text("etypvar"), ints("nvar"), ints("ncoo"), ints("cnt"),
                                ints("offs"), text("varkey"), flags(), params(), &status_);
    }

    void write_text()
    {
        // In the older layout a text belongs to no state.
        const std::int32_t* nindex = block_.older ? &zero : ints("nindex");
        call(KOB_WRITE_TEXT, KOB1_WRITE_TEXT, target_, text("etyptext"), ints("nlines"), ints("length"),
             CurrentOnly{nindex}, index_code(), CurrentOnly{ints("indexident")}, CurrentOnly{reals("indexval")},
             text("line"), CurrentOnly{&state_}, flags(), params(), CurrentOnly{&how_.float_size}, StatusArgument{});
    }

    // ---- the model

    void write_parts()
    {
        call(KOB_WRITE_PARTS, KOB1_WRITE_PARTS, target_, text("etyppart"), ints("npart"), ints("off"), title_length(),
             ints("nindex"), index_code(), ints("indexident"), reals("indexval"), ints("pid"), text("title"),
             ints("mid"), ints("mtyp"), ints("pcol"), OlderOnly{ints("pvtyp")}, &state_, flags(), params(),
             &how_.float_size, StatusArgument{});
    }

    void write_entity_list(decltype(&KOB_WRITE_ATTRIBUTES) writer)
    {
        call(writer, KOB1_WRITE_ATTRIBUTES, // identifiers are a kind of the current layout alone
             target_, text("etyp"), ints("nent"), ints("nuid"), title_length(), ints("nindex"), index_code(),
             ints("indexident"), reals("indexval"), ints("entid"), text("title"), ints("uid"), &state_, flags(),
             params(), &how_.float_size, StatusArgument{});
    }

    void write_connectivities()
    {
        call(KOB_WRITE_CONNECTIVITIES, KOB1_WRITE_CONNECTIVITIES, target_, CurrentOnly{text("etyp")}, text("etypelem"),
             text("etyppart"), text("etypnode"), CurrentOnly{text("etypvar")}, ints("nele"), ints("npele"),
             ints("ndim"), ints("nbint"), ints("nbfloat"), ints("nindex"), index_code(), ints("indexident"),
             reals("indexval"), ints("idele"), ints("pid"), ints("ic"), ints("iparam"), reals("fparam"),
             OlderOnly{ints("mbunit")}, OlderOnly{ints("mdunit")}, OlderOnly{ints("ubid")}, OlderOnly{reals("ubexp")},
             OlderOnly{ints("udid")}, OlderOnly{reals("udexp")}, &state_, flags(), params(), &how_.float_size,
             StatusArgument{});
    }

    void write_collector()
    {
        call(KOB_WRITE_COLLECTOR, KOB1_WRITE_COLLECTOR, target_, text("etypcoll"), ints("ncoll"), ints("ntyp"),
             ints("nindex"), index_code(), ints("indexident"), reals("indexval"), ints("idcoll"), text("etyp"),
             ints("nent"), ints("entid"), &state_, flags(), params(), &how_.float_size, StatusArgument{});
    }

    void write_properties()
    {
        const NewGroup group{*this};
        if (status_ < 0) return;
        KOB_WRITE_PROPERTIES(group.handles(), &all_sections, text("etyp"), text("etypprop"), text("etypzone"),
                             ints("zoneid"), ints("nent"), ints("nbid"), ints("nbint"), ints("nbfloat"),
                             ints("nbstring"), ints("length"), ints("nindex"), ints("indexic"), ints("indexident"),
                             reals("indexval"), ints("entid"), ints("idparam"), ints("iparam"), reals("fparam"),
                             text("cparam"), flags(), params(), &how_.float_size, &zero, nullptr, nullptr, &status_);
    }

    // ---- results

    void write_entity_results()
    {
        const NewGroup group{*this};
        if (status_ < 0) return;
        call(KOB_WRITE_ENTITYRESULTS2, KOB1_WRITE_ENTITYRESULTS2, group.handles(), &all_sections, nullptr, text("etyp"),
             ints("nent"), text("etypvar"), ints("ncoo"), text("etypzone"), ints("zoneid"), text("etypframe"),
             ints("fswitch"), ints("dmpswitch"), ints("nindex"), index_code(), ints("indexident"), reals("indexval"),
             ints("entid"), ints("fidglob"), ints("fid"), text("operator"), reals("weight"), reals("res"), &memory_size,
             flags(), params(), &value_size_, &zero, nullptr, nullptr, StatusArgument{});
    }

    void write_multi_entity_results()
    {
        const NewGroup group{*this};
        if (status_ < 0) return;
        std::int32_t held = 0;
        call(KOB_WRITE_MULTIENTITYRESULTS2, KOB1_WRITE_MULTIENTITYRESULTS2, group.handles(), nullptr, nullptr,
             text("series"), text("etyp"), ints("nent"), text("etypvar"), ints("ncoo"), text("etypzone"),
             ints("zoneid"), text("etypframe"), ints("fswitch"), ints("dmpswitch"), ints("nindex"), ints("indexident"),
             reals("indexval"), ints("entid"), ints("fidglob"), ints("fid"), text("operator"), reals("weight"),
             reals("res"), &memory_size, ints("nstate"), flags(), params(), &value_size_, &zero, nullptr, nullptr,
             &held, StatusArgument{});
    }

    void write_element_results()
    {
        call(KOB_WRITE_ELEMENTRESULTS, KOB1_WRITE_ELEMENTRESULTS, target_, text("etypelem"), ints("nele"),
             text("etypvar"), ints("ncoo"), ints("numl"), ints("ndim"), text("etypzone"), ints("zoneid"),
             text("etypframe"), ints("fswitch"), ints("dmpswitch"), ints("nindex"), index_code(), ints("indexident"),
             reals("indexval"), ints("idele"), ints("fidglob"), ints("fid"), reals("eloc"), text("operator"),
             reals("weight"), reals("res"), &set_, &state_, flags(), params(), &value_size_, StatusArgument{});
    }

    void write_multi_element_results()
    {
        call(KOB_WRITE_MULTIELEMENTRESULTS, KOB1_WRITE_MULTIELEMENTRESULTS, target_, text("series"), text("etypelem"),
             ints("nele"), text("etypvar"), ints("ncoo"), ints("numl"), ints("ndim"), text("etypzone"), ints("zoneid"),
             text("etypframe"), ints("fswitch"), ints("dmpswitch"), ints("nindex"), ints("indexident"),
             reals("indexval"), ints("idele"), ints("fidglob"), ints("fid"), reals("eloc"), text("operator"),
             reals("weight"), reals("res"), &set_, ints("nstate"), flags(), params(), &value_size_, StatusArgument{});
    }

    // ---- matrices

    template <class Current, class Older>
    void write_matrix(Current* current, Older* older, const std::int32_t* first_size, const std::int32_t* second_size)
    {
        call(current, older, target_, text("etyp"), ints("entid"), text("etypvar"), first_size, second_size,
             ints("nindex"), index_code(), ints("indexident"), reals("indexval"), reals("val"), &state_, flags(),
             params(), &value_size_, &zero, nullptr, nullptr, StatusArgument{}, matrix_text_length, matrix_text_length);
    }

    void write_sparse_matrix()
    {
        call(KOB_WRITE_SPARSEMATRIX, KOB1_WRITE_SPARSEMATRIX, target_, text("etyp"), ints("entid"), text("etypvar"),
             ints("nrow"), longs("nnz"), ints("nindex"), index_code(), ints("indexident"), reals("indexval"),
             ints("colind"), longs("rowptr"), reals("val"), &state_, flags(), params(), &value_size_, &zero, nullptr,
             nullptr, StatusArgument{}, matrix_text_length, matrix_text_length);
    }

    // ---- arguments

    template <class Current, class Older, class... Args> void call(Current* current, Older* older, Args... args)
    {
        call_of(layout_, status_, current, older, args...);
    }

    // Null where the block has no such item: its writer does not look then.
    const char* text(const char* name) const { return block_.values<char>(name); }
    const std::int32_t* ints(const char* name) const { return block_.values<std::int32_t>(name); }
    const std::int64_t* longs(const char* name) const { return block_.values<std::int64_t>(name); }
    const double* reals(const char* name) const { return block_.values<double>(name); }

    /// What the older layout does not tell.
    CurrentOnly<const std::int32_t*> index_code() const { return {block_.older ? &zero : ints("indexic")}; }
    CurrentOnly<const std::int32_t*> title_length() const { return {block_.older ? &name_width : ints("length")}; }

    const std::int32_t* flags() const { return &how_.filter_flags; }
    const std::int32_t* params() const { return how_.filter_params.data(); }

    /// The one state number of the path; several follow from the index identifiers.
    std::int32_t state() const
    {
        const std::vector<std::int64_t> numbers = state_numbers(entry_);
        return numbers.size() == 1 ? static_cast<std::int32_t>(numbers.front()) : none;
    }

    /// The set number of the path, unless what looks like one belongs to the last name.
    std::int32_t set() const
    {
        std::string_view level = short_path(entry_);
        level.remove_prefix(level.rfind('/') + 1);
        std::string name = block_.text("etypzone");
        if (name.empty()) name = block_.text("etypvar");
        if (const std::int64_t zone = block_.integer("zoneid", none); zone >= 0) name += std::to_string(zone);
        const std::size_t at = level.rfind("_set");
        std::int32_t number = none;
        if (level != name && at != std::string_view::npos)
            std::from_chars(level.data() + at + 4, level.data() + level.size(), number);
        return number;
    }

    /// The block's own group, made in the target.
    class NewGroup {
    public:
        explicit NewGroup(BlockWriter& writer)
        {
            constexpr std::int32_t nul_terminated = -1;
            constexpr std::int32_t create = 0;
            KOB_H5GOPEN(writer.target_, writer.entry_.path.c_str(), &nul_terminated, &create, handles_.data(),
                        &writer.status_);
        }
        ~NewGroup()
        {
            std::int32_t ignored = 0;
            if (handles_.front() >= 0) KOB_H5GCLOSE(handles_.data(), &ignored);
        }
        NewGroup(const NewGroup&) = delete;
        NewGroup& operator=(const NewGroup&) = delete;
        const std::int64_t* handles() const { return handles_.data(); }

    private:
        std::array<std::int64_t, 2> handles_{-1, -1}; ///< the second one, a shared group, is not used
    };

    const Block& block_;
    const Entry& entry_;
    Layout layout_;
    const std::int64_t* target_;
    const Storing& how_;
    std::int32_t status_ = 0;
    std::int32_t state_;
    std::int32_t set_;
    std::int32_t value_size_;
};

} // namespace

void write_block(const Block& block, const Entry& entry, Layout layout, const std::int64_t* target, const Storing& how)
{
    BlockWriter{block, entry, layout, target, how}.write();
}

} // namespace kob::program
