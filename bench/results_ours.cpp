// SPDX-License-Identifier: BSD-3-Clause
// Entity results through the library.
#include "ours.hpp"
#include "results.hpp"

#include <cstdlib>
#include <memory>

namespace bench {
namespace {

Work write(const ResultSet& set, const std::string& file, Digest*)
{
    return [set, file, block = std::make_shared<Block>(set)] {
        Block& b = *block;
        const File results{file, create};
        const std::int32_t no_set = -1;
        const FilterArguments filters{set.packing};
        for (std::int32_t state = 0; state < set.states; ++state) {
            for (std::size_t variable = 0; variable < set.variables.size(); ++variable) {
                b.select(set, state, variable);
                std::int32_t status = 0;
                KOB_WRITE_ENTITYRESULTS(results.group(), b.etyp.data(), &b.nent, b.etypvar.data(), &b.ncoo,
                                        b.etypzone.data(), &b.zoneid, b.etypframe.data(), &b.fswitch, &b.dmpswitch,
                                        &b.nindex, &b.indexic, &b.indexident, &b.indexval, b.entid.data(), &b.fidglob,
                                        nullptr, nullptr, nullptr, b.res.data(), &no_set, &state, &filters.flags,
                                        filters.params.data(), &set.value_size, &status);
                check(status, "KOB_WRITE_ENTITYRESULTS");
            }
        }
    };
}

// One call for each block: whoever reads many blocks of one size has the arrays already.
Work read(const ResultSet& set, const std::string& file, Digest* digest)
{
    return [set, file, digest, block = std::make_shared<Block>(set)] {
        Block& b = *block;
        const File results{file, read_only};
        const std::int32_t everything = 2;
        std::int32_t filters = 0;
        std::array<std::int32_t, 2> params{};
        for (std::int32_t state = 0; state < set.states; ++state) {
            for (std::size_t variable = 0; variable < set.variables.size(); ++variable) {
                const OpenBlock opened{results, path_of(set, state, variable)};
                std::int32_t status = 0;
                KOB_READ_ENTITYRESULTS(opened.group(), &everything, b.etyp.data(), &b.nent, b.etypvar.data(), &b.ncoo,
                                       b.etypzone.data(), &b.zoneid, b.etypframe.data(), &b.fswitch, &b.dmpswitch,
                                       &b.nindex, &b.indexic, &b.indexident, &b.indexval, b.entid.data(), &b.fidglob,
                                       nullptr, nullptr, nullptr, b.res.data(), &filters, params.data(), &status);
                check(status, "KOB_READ_ENTITYRESULTS");
                if (digest != nullptr) {
                    add(*digest, b);
                }
            }
        }
    };
}

/// The arrays of kob_lookup(), large enough and in memory before the clock starts.
struct Directory {
    explicit Directory(const ResultSet& set)
        : capacity{static_cast<std::int32_t>(set.variables.size()) * set.states}, path_size{std::int64_t{256} *
                                                                                            capacity}
    {
        // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the library may move them with realloc()
        const auto allocate = [](std::int64_t bytes) { return std::calloc(static_cast<std::size_t>(bytes), 1); };
        keys = static_cast<std::int32_t*>(allocate(4 * std::int64_t{capacity}));
        offsets = static_cast<std::int64_t*>(allocate(8 * (std::int64_t{capacity} + 1)));
        paths = static_cast<char*>(allocate(path_size));
        std::fill_n(keys, capacity, 1);
        std::fill_n(offsets, capacity + 1, 1);
        std::fill_n(paths, path_size, '.');
    }
    ~Directory()
    {
        for (void* array : {static_cast<void*>(keys), static_cast<void*>(offsets), static_cast<void*>(paths)}) {
            std::free(array); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
        }
    }
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;

    std::int32_t capacity;
    std::int64_t path_size;
    std::int32_t* keys = nullptr;
    std::int64_t* offsets = nullptr;
    char* paths = nullptr;
};

Work list(const ResultSet& set, const std::string& file, Digest* digest)
{
    return [file, digest, directory = std::make_shared<Directory>(set)] {
        Directory& d = *directory;
        const File results{file, read_only};
        const std::int32_t store = 1;
        const std::int32_t quiet = 0;
        std::int32_t count = 0;
        std::int64_t length = 0;
        std::int32_t status = 0;
        kob_lookup(results.group(), &store, &quiet, &d.capacity, &d.path_size, &count, &length, &d.keys, &d.offsets,
                   &d.paths, &status);
        check(status, "kob_lookup");
        if (digest != nullptr) {
            digest->add(d.keys, static_cast<std::size_t>(count) * sizeof *d.keys);
            digest->add(d.paths, static_cast<std::size_t>(length));
        }
    };
}

} // namespace

template <> const Program<ResultSet> Programs<ResultSet>::ours{write, read, list};

} // namespace bench
