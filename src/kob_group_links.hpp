// SPDX-License-Identifier: BSD-3-Clause
// Links of a group found in one go: opening an object where its link points saves the search for its name.
#pragma once

#include "kob_id.hpp"

#include <hdf5.h>

#include <array>
#include <cstddef>
#include <initializer_list>
#include <utility>

namespace kob {

class GroupLinks {
public:
    static constexpr std::size_t most_names = 4;

    /// Looks for links of these names, at most `most_names`; the names outlive this. `group` stays open for as long.
    GroupLinks(hid_t group, std::initializer_list<const char*> names) noexcept;

    /// Opens the group, too, which takes less than one after the other. A group without links does not open.
    GroupLinks(hid_t parent, const char* path, std::initializer_list<const char*> names) noexcept;

    /// Hands over the group that was opened here, if it was.
    [[nodiscard]] Id release_group() noexcept { return std::move(opened_); }

    /// Is this a look into that group?
    [[nodiscard]] bool is_of(hid_t group) const noexcept { return group == group_; }

    /// Is this a look into that group, at all of its links?
    [[nodiscard]] bool knows(hid_t group) const noexcept { return is_complete_ && is_of(group); }

    /// Is there a link of one of the names?
    [[nodiscard]] bool has(const char* name) const noexcept { return find(name) != nullptr; }

    /// Opens what a link of one of the names leads to: a dataset, unless the file is at odds with itself.
    [[nodiscard]] Id open(const char* name) const noexcept;

private:
    struct Link {
        const char* name;
        bool is_there;
        bool is_hard;
        H5O_token_t target; ///< of a hard link
    };

    static herr_t note(hid_t group, const char* name, const H5L_info2_t* info, void* data) noexcept;
    void look_for(std::initializer_list<const char*> names) noexcept;
    [[nodiscard]] const Link* find(const char* name) const noexcept;

    hid_t group_ = H5I_INVALID_HID;
    Id opened_;
    std::array<Link, most_names> links_{};
    std::size_t names_ = 0;
    std::size_t found_ = 0;
    std::size_t seen_ = 0;
    bool is_complete_ = false;
};

} // namespace kob
