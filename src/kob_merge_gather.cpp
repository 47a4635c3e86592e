// SPDX-License-Identifier: BSD-3-Clause
// Identifier lists in the domain files.
#include "kob_merge_gather.hpp"

#include "kob_storage_rows.hpp"

#include <algorithm>

namespace kob::merge {
namespace {

class StoredList : public IdentifierList {
public:
    StoredList(StoredBlock block, std::string path, std::size_t length, const StoredLists::Naming& naming)
        : block_{std::move(block)}, path_{std::move(path)}, length_{length}, naming_{naming},
          rows_{block_.place(Where::data), naming.dataset, type_code::integer, sizeof(std::int32_t), 1, 1},
          is_in_pieces_{rows_.is_readable() && rows_.is_contiguous()}
    {
    }

    void read(std::span<std::int32_t> next) override
    {
        if (is_in_pieces_) {
            check(rows_.read(first_, next.size(), next.data()));
        } else {
            load_all();
            std::copy_n(all_.begin() + static_cast<std::ptrdiff_t>(first_), next.size(), next.begin());
        }
        first_ += next.size();
    }

private:
    void load_all()
    {
        if (all_.size() == length_) {
            return;
        }
        all_.resize(length_);
        const auto rows = static_cast<hsize_t>(length_);
        check(KOB_H5Dread(naming_.dataset, all_.data(), type_code::integer, sizeof(std::int32_t), &rows, 1, nullptr,
                          nullptr, access_mode::whole, block_.place(Where::data), nullptr, nullptr, nullptr));
    }

    void check(std::int32_t status) const
    {
        if (status < 0) {
            fail_reading(naming_.kind, naming_.pass, status, path_);
        }
    }

    StoredBlock block_;
    std::string path_;
    std::size_t length_;
    const StoredLists::Naming& naming_;
    RowReader rows_;
    bool is_in_pieces_;             ///< else a part would cost as much as the whole,
    std::vector<std::int32_t> all_; ///< and all are read at once
    std::size_t first_ = 0;
};

} // namespace

std::unique_ptr<IdentifierList> StoredLists::open(std::size_t domain) const
{
    const Source& source = sources_[domain];
    return std::make_unique<StoredList>(files_.open(source), source.entry->path, lengths()[domain], naming_);
}

} // namespace kob::merge
