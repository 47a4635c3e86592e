// SPDX-License-Identifier: BSD-3-Clause
// A growing series in plain HDF5. The block's group stays open, but its datasets are opened for each state: a library
// that keeps nothing between calls cannot do without.
#include "raw.hpp"
#include "series.hpp"

#include <algorithm>
#include <memory>

namespace bench {
namespace {

constexpr hsize_t rows_per_chunk = 1000;
constexpr int largest_rank = 3;

/// A dataset with a row for each state. Its spaces and properties live as long as the file is written.
class StateRows {
public:
    StateRows(const char* name, hid_t type, std::initializer_list<hsize_t> row, const Packing& packing = {})
        : name_{name}, type_{type}
    {
        std::array<hsize_t, largest_rank> chunk{1};
        std::array<hsize_t, largest_rank> maximum{H5S_UNLIMITED};
        extents_[0] = 1;
        for (const hsize_t extent : row) {
            const auto i = static_cast<std::size_t>(rank_++);
            extents_[i] = maximum[i] = extent;
            chunk[i] = std::min(extent, rows_per_chunk);
        }
        memory_ = must(H5Screate_simple(rank_, extents_.data(), nullptr));
        file_ = must(H5Screate_simple(rank_, extents_.data(), maximum.data()));
        chunked_ = must(H5Pcreate(H5P_DATASET_CREATE));
        must(H5Pset_chunk(chunked_, rank_, chunk.data()));
        pack(chunked_, packing, type);
    }
    ~StateRows()
    {
        H5Sclose(memory_);
        H5Sclose(file_);
        H5Pclose(chunked_);
    }
    StateRows(const StateRows&) = delete;
    StateRows& operator=(const StateRows&) = delete;

    void append(hid_t group, std::int32_t state, const void* values)
    {
        std::array<hsize_t, largest_rank> count = extents_;
        std::array<hsize_t, largest_rank> start{};
        count[0] = 1;
        start[0] = static_cast<hsize_t>(state);
        hid_t dataset = H5I_INVALID_HID;
        if (state == 0) {
            dataset = must(H5Dcreate2(group, name_, type_, file_, H5P_DEFAULT, chunked_, H5P_DEFAULT));
        } else {
            extents_[0] = start[0] + 1;
            dataset = must(H5Dopen2(group, name_, H5P_DEFAULT));
            must(H5Dset_extent(dataset, extents_.data()));
            must(H5Sset_extent_simple(file_, rank_, extents_.data(), nullptr));
        }
        must(H5Sselect_hyperslab(file_, H5S_SELECT_SET, start.data(), nullptr, count.data(), nullptr));
        must(H5Dwrite(dataset, type_, memory_, file_, H5P_DEFAULT, values));
        must(H5Dclose(dataset));
    }

private:
    const char* name_;
    hid_t type_;
    int rank_ = 1;
    std::array<hsize_t, largest_rank> extents_{};
    hid_t memory_ = H5I_INVALID_HID;
    hid_t file_ = H5I_INVALID_HID;
    hid_t chunked_ = H5I_INVALID_HID;
};

void write_static_part(const BlockWriter& to, hid_t group, const State& s, const Packing& packing)
{
    to.frame(group, 1050);
    to.text(group, "series", text256("RUN"));
    to.text(group, "etyp", s.etyp);
    to.integer(group, "nent", s.nent);
    to.text(group, "etypvar", s.etypvar);
    to.integer(group, "ncoo", s.ncoo);
    to.text(group, "etypzone", s.etypzone);
    to.integer(group, "zoneid", s.zoneid);
    to.text(group, "etypframe", s.etypframe);
    to.integer(group, "fswitch", s.fswitch);
    to.integer(group, "dmpswitch", s.dmpswitch);
    to.integer(group, "nindex", s.nindex);
    to.dataset(group, "entid", H5T_NATIVE_INT, {s.entid.size()}, s.entid.data(), packing);
    to.single(group, "fidglob", s.fidglob);
}

void rewrite_integer(hid_t group, const char* name, const std::int32_t& value)
{
    const hid_t attribute = must(H5Aopen(group, name, H5P_DEFAULT));
    must(H5Awrite(attribute, H5T_NATIVE_INT, &value));
    must(H5Aclose(attribute));
}

Work append(const SeriesSet& set, const std::string& file_name, Digest*)
{
    return [set, file_name, state = std::make_shared<State>(set)] {
        State& s = *state;
        const NewFile file{file_name};
        const GroupChain place{file.run(),
                               {"multistate", "RUN", "multientityresults", "NODE", "DISPLACEMENT", "kobblock"}};
        const hid_t group = place.last();
        const BlockWriter to{"multientityresults"};
        StateRows indexident{"indexident", H5T_NATIVE_INT, {1}};
        StateRows indexval{"indexval", H5T_NATIVE_DOUBLE, {1}};
        StateRows res{
            "res", H5T_NATIVE_DOUBLE, {static_cast<hsize_t>(set.nent), static_cast<hsize_t>(set.ncoo)}, set.packing};
        for (std::int32_t step = 0; step < set.states; ++step) {
            s.select(step);
            if (step == 0) {
                write_static_part(to, group, s, set.packing);
            }
            indexident.append(group, step, &s.indexident);
            indexval.append(group, step, &s.indexval);
            res.append(group, step, s.res.data());
            if (step == 0) {
                to.integer(group, "nstate", 1);
            } else {
                rewrite_integer(group, "nstate", step + 1);
            }
        }
    };
}

} // namespace

template <> const Program<SeriesSet> Programs<SeriesSet>::raw{append};

} // namespace bench
