// SPDX-License-Identifier: BSD-3-Clause
// Opening and closing files, and the versions of the libraries at work.
#include "kob_dp.h"
#include "kob_entry.hpp"
#include "kob_file_probe.hpp"
#include "kob_id.hpp"
#include "kob_module.hpp"
#include "kob_text.hpp"

#include <array>
#include <cstdio>
#include <string>
#include <tuple>
#include <vector>

namespace kob {
namespace {

namespace file_status {
constexpr std::int32_t version_check_failed = -998;
constexpr std::int32_t no_version = -999;
constexpr std::int32_t unknown_option = -9999;
} // namespace file_status

// HDF5's own access macros check the headers' version and end the process when it differs, so their values stand here.
namespace access_flag {
constexpr unsigned read_only = 0U;
constexpr unsigned read_write = 1U;
constexpr unsigned truncate = 2U;
constexpr unsigned exclusive = 4U;
} // namespace access_flag

struct Hdf5Version {
    unsigned major = 0;
    unsigned minor = 0;
    unsigned release = 0;
};

constexpr Hdf5Version oldest_hdf5{1, 14, 6};

/// The running HDF5's version; 0, or the status of what is wrong with it after the given line.
template <class ReportCheck, class ReportMissing>
std::int32_t check_hdf5(Hdf5Version& version, ReportCheck&& report_check, ReportMissing&& report_missing)
{
    if (H5get_libversion(&version.major, &version.minor, &version.release) < 0) {
        report_missing();
        return file_status::no_version;
    }
    const auto as_tuple = [](const Hdf5Version& v) { return std::tuple{v.major, v.minor, v.release}; };
    if (as_tuple(version) < as_tuple(oldest_hdf5)) {
        report_check();
        return file_status::version_check_failed;
    }
    return 0;
}

/// The option word of an open, taken apart.
struct Option {
    std::int32_t word;

    [[nodiscard]] std::int32_t mode() const { return word & 15; }
    [[nodiscard]] bool verbose() const { return (word & 1024) != 0; }
    [[nodiscard]] bool read_only() const { return (mode() & 2) != 0; }
    [[nodiscard]] bool root_group() const { return (mode() & 8) != 0; }
    [[nodiscard]] bool known() const
    {
        constexpr std::int32_t accepted = 9991; // bits 0, 1, 2, 8, 9, 10 and 13
        return mode() <= 13 && ((accepted >> mode()) & 1) != 0;
    }
};

constexpr std::int32_t create_with_group = 0;
constexpr std::int32_t create_empty = 8;
constexpr std::int32_t create_or_open = 13;

/// Access properties of every file: HDF5's defaults but for the metadata cache. Left alone, it grows with a file of
/// many blocks to hundreds of megabytes, and gets slower as it grows; blocks are visited once, so little is worth
/// keeping. What is worth it are the names in a group of many states: one entry, for which the cache makes room.
Id access_properties()
{
    constexpr std::size_t usual_size = std::size_t{128} << 10;
    constexpr std::size_t largest_size = std::size_t{64} << 20;
    Id properties{H5Pcreate(H5P_FILE_ACCESS), H5Pclose};
    H5AC_cache_config_t cache{};
    cache.version = H5AC__CURR_CACHE_CONFIG_VERSION;
    if (H5Pget_mdc_config(properties.get(), &cache) >= 0) {
        cache.set_initial_size = true;
        cache.initial_size = usual_size;
        cache.min_size = usual_size;
        cache.max_size = largest_size;
        cache.incr_mode = H5C_incr__off;
        cache.flash_incr_mode = H5C_flash_incr__add_space;
        cache.flash_threshold = 0.25; // of the cache: the entry is a large one
        cache.flash_multiple = 1.5;   // of what the entry lacks: the others keep theirs
        cache.decr_mode = H5C_decr__off;
        H5Pset_mdc_config(properties.get(), &cache);
    }
    // A call opens a dataset, visits its chunks once and closes it: what a cache of chunks takes longest for is the
    // table that it is looked up in.
    constexpr std::size_t chunk_slots = 31;
    constexpr std::size_t chunk_bytes = std::size_t{1} << 20; // HDF5's default, and the next one
    constexpr double chunk_preemption = 0.75;
    H5Pset_cache(properties.get(), 0, chunk_slots, chunk_bytes, chunk_preemption);
    return properties;
}

constexpr char post_link[] = "post"; // leads to the group that holds the blocks

/// One call of KOB_OPEN. Failures are counted down in the status; the steps of a create go on after one.
class Opening {
public:
    Opening(Option option, std::string file_name, std::string group_name, std::string domain_name, bool with_domain)
        : option_{option}, file_name_{std::move(file_name)}, group_name_{std::move(group_name)},
          domain_name_{std::move(domain_name)}, with_domain_{with_domain}, inner_path_{option.root_group() ? "."
                                                                                                           : post_link}
    {
    }

    /// The status; on success `group` is the handle for the caller.
    std::int32_t run(std::int64_t& group)
    {
        switch (option_.mode()) {
        case create_with_group:
            create_file_with_group();
            break;
        case create_empty:
            create_file();
            break;
        case create_or_open:
            create_or_open_file();
            break;
        default:
            open_file(option_.read_only() ? access_flag::read_only : access_flag::read_write);
            break;
        }
        if (!finished_) {
            open_inner_group(group);
        }
        std::fflush(stdout);
        return status_;
    }

private:
    void create_file()
    {
        if (!file_is_held(file_name_)) {
            file_ = Id{H5Fcreate(file_name_.c_str(), access_flag::truncate, H5P_DEFAULT, access_.get()), H5Fclose};
        }
        if (!file_) {
            report_error(message::open_cannot_create_file, file_name_.c_str());
            --status_;
        } else if (option_.verbose()) {
            say(message::open_info_file_created, file_name_.c_str());
        }
    }

    void create_file_with_group()
    {
        if (group_name_.empty()) {
            report_error(message::open_invalid_group);
            return refuse();
        }
        if (with_domain_ && domain_name_.empty()) {
            report_error(message::open_invalid_domain);
            return refuse();
        }
        create_file();
        Id innermost{H5Gcreate2(file_.get(), group_name_.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), H5Gclose};
        if (!innermost) {
            report_error(message::open_cannot_create_group, group_name_.c_str());
            --status_;
        } else if (option_.verbose()) {
            say(message::open_info_group_created, group_name_.c_str());
        }
        if (with_domain_) {
            innermost =
                Id{H5Gcreate2(innermost.get(), domain_name_.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), H5Gclose};
            if (!innermost) {
                report_error(message::open_cannot_create_domain, domain_name_.c_str());
                --status_;
            } else if (option_.verbose()) {
                say(message::open_info_domain_created, domain_name_.c_str());
            }
        }
        if (status_ == 0 &&
            H5Lcreate_hard(innermost.get(), ".", file_.get(), post_link, H5P_DEFAULT, H5P_DEFAULT) < 0) {
            report_error(message::open_cannot_create_link);
            --status_;
        }
    }

    void create_or_open_file()
    {
        if (!file_exists(file_name_)) {
            file_ = Id{H5Fcreate(file_name_.c_str(), access_flag::exclusive, H5P_DEFAULT, access_.get()), H5Fclose};
        }
        if (file_) {
            if (option_.verbose()) {
                say(message::open_info_file_created, file_name_.c_str());
            }
            return;
        }
        if (option_.verbose()) {
            say(message::open_info_trying_to_open, file_name_.c_str());
        }
        open_file(access_flag::read_write);
    }

    // A name may go on inside the file: what does not open is cut at its last "/", and the rest names a group.
    void open_file(unsigned access)
    {
        std::string name = file_name_;
        while (!name.empty()) {
            if (file_exists(name) && H5Fis_accessible(name.c_str(), H5P_DEFAULT) > 0) {
                file_ = Id{H5Fopen(name.c_str(), access, access_.get()), H5Fclose};
            }
            if (file_) {
                if (option_.verbose()) {
                    say(message::open_info_opened_name, name.c_str());
                }
                if (name.size() < file_name_.size()) {
                    inner_path_ = file_name_.substr(name.size());
                    file_name_ = name;
                }
                return;
            }
            const std::size_t slash = name.rfind('/');
            name.resize(slash == std::string::npos ? 0 : slash);
        }
        report_error(message::open_unable, file_name_.c_str());
        refuse();
    }

    void open_inner_group(std::int64_t& group)
    {
        if (option_.verbose() && file_) {
            say(message::open_info_file_opened, file_name_.c_str());
            say(message::open_info_opening_group, inner_path_.c_str());
        }
        Id inner{H5Gopen2(file_.get(), inner_path_.c_str(), H5P_DEFAULT), H5Gclose};
        if (!inner) {
            report_error(message::open_cannot_open_group, file_name_.c_str(), inner_path_.c_str());
            --status_;
        }
        if (option_.verbose() && file_) {
            say_access_properties();
        }
        if (status_ == 0) {
            group = inner.release();
        }
    }

    void say_access_properties() const
    {
        const Id properties{H5Fget_access_plist(file_.get()), H5Pclose};
        H5F_libver_t lower{};
        H5F_libver_t upper{};
        H5Pget_libver_bounds(properties.get(), &lower, &upper);
        say(message::open_info_bounds, static_cast<int>(H5F_LIBVER_EARLIEST), static_cast<int>(H5F_LIBVER_V18),
            static_cast<int>(H5F_LIBVER_LATEST), static_cast<int>(lower), static_cast<int>(upper));
        constexpr int not_available = -1;
#ifdef H5FD_WINDOWS
        const hid_t windows = H5FD_WINDOWS;
#else
        const hid_t windows = not_available;
#endif
        const auto number = [](hid_t driver) { return static_cast<long long>(driver); };
        say(message::open_info_driver, number(H5Pget_driver(properties.get())), number(H5FD_CORE), not_available,
            number(H5FD_FAMILY), number(H5FD_LOG), not_available, number(H5FD_MULTI), number(H5FD_SEC2),
            number(H5FD_STDIO), number(windows));
    }

    void refuse()
    {
        --status_;
        finished_ = true;
    }

    Option option_;
    std::string file_name_;
    std::string group_name_;
    std::string domain_name_;
    bool with_domain_;
    std::string inner_path_;
    Id access_ = access_properties();
    Id file_;
    std::int32_t status_ = 0;
    bool finished_ = false;
};

/// Names of files and groups come with their exact length; a NUL ends them all the same.
std::string exact_name(const char* name, std::int32_t length) { return std::string{up_to_nul(name, length)}; }

std::int32_t open_result_file(const char* file_name, std::int32_t file_length, const char* group_name,
                              const std::int32_t* group_length, const char* domain_name,
                              const std::int32_t* domain_length, std::int64_t& handle, const std::int32_t* domain_flag,
                              Option option)
{
    if (!option.known()) {
        report_error(message::open_unknown_option, option.word);
        return file_status::unknown_option;
    }
    Hdf5Version version;
    if (const std::int32_t status = check_hdf5(
            version, [] { report_error(message::open_version_check); }, [] { report_error(message::open_no_version); });
        status != 0) {
        return status;
    }
    if (option.verbose()) {
        say(message::open_info_version, version.major, version.minor, version.release);
        say(message::open_info_opening);
    }
    if (file_length < 1) {
        report_error(message::open_invalid_filename);
        return -1;
    }
    // Group and domain are names of a create only; other modes never look at them.
    std::string group;
    std::string domain;
    bool with_domain = false;
    if (option.mode() == create_with_group) {
        group = exact_name(group_name, value(group_length));
        with_domain = domain_flag != nullptr && *domain_flag != 0;
        if (with_domain) {
            domain = exact_name(domain_name, value(domain_length));
        }
    }
    return Opening{option, exact_name(file_name, file_length), group, domain, with_domain}.run(handle);
}

/// Closes every open object of these kinds in the file, references and all. False when a close failed.
bool close_objects(hid_t file, unsigned kinds)
{
    const ssize_t count = H5Fget_obj_count(file, kinds);
    if (count <= 0) {
        return count == 0;
    }
    std::vector<hid_t> objects(static_cast<std::size_t>(count));
    const ssize_t found = H5Fget_obj_ids(file, kinds, objects.size(), objects.data());
    objects.resize(static_cast<std::size_t>(std::max<ssize_t>(found, 0)));
    bool closed = found >= 0;
    for (const hid_t object : objects) {
        for (int references = H5Iget_ref(object); references > 0; --references) {
            closed = H5Idec_ref(object) >= 0 && closed;
        }
    }
    return closed;
}

std::int32_t close_result_file(hid_t handle)
{
    Id file{H5Iget_file_id(handle), H5Fclose};
    if (!file) {
        return -1;
    }
    bool closed = H5Fflush(file.get(), H5F_SCOPE_GLOBAL) >= 0;
    closed = H5Fflush(file.get(), H5F_SCOPE_LOCAL) >= 0 && closed;
    for (const unsigned kind : {H5F_OBJ_GROUP, H5F_OBJ_DATASET, H5F_OBJ_DATATYPE, H5F_OBJ_ATTR}) {
        closed = close_objects(file.get(), kind) && closed;
    }
    // Our own reference is one of those that are closed now.
    closed = close_objects(file.release(), H5F_OBJ_FILE) && closed;
    return closed ? 0 : -1;
}

std::string version_text(std::int32_t selector, const Hdf5Version& hdf5, const Version& kob)
{
    const auto format = [](const char* prefix, auto major, auto minor, auto release) {
        return prefix + std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(release);
    };
    const std::string hdf5_text = format("HDF5-", hdf5.major, hdf5.minor, hdf5.release);
    const std::string kob_text = format("KOB-", kob.major, kob.minor, kob.release);
    switch (selector) {
    case 1:
        return build_identifier;
    case 2:
        return hdf5_text;
    case 4:
        return kob_text;
    case 6:
        return hdf5_text + ' ' + kob_text;
    default:
        return std::string{build_identifier} + ' ' + hdf5_text + ' ' + kob_text;
    }
}

std::int32_t get_version(Generation generation, char* text, std::int32_t selector, std::int32_t verbose)
{
    Hdf5Version hdf5;
    if (const std::int32_t status = check_hdf5(
            hdf5, [] { report_error(message::version_check); }, [] { report_error(message::version_no_version); });
        status != 0) {
        return status;
    }
    const Version kob = version_of(generation);
    if (verbose > 0) {
        say(message::open_info_version, hdf5.major, hdf5.minor, hdf5.release);
        say(message::version_info_kob, static_cast<unsigned>(kob.major), static_cast<unsigned>(kob.minor),
            static_cast<unsigned>(kob.release));
        say(message::version_info_build, build_identifier);
    }
    fill_field(text, name_length, version_text(selector, hdf5, kob));
    return 0;
}

} // namespace
} // namespace kob

extern "C" {

void KOB_OPEN(const char* file_name, const int32_t* file_length, const char* group_name, const int32_t* group_length,
              const char* domain_name, const int32_t* domain_length, int64_t* handle, const int32_t* domain_flag,
              const int32_t* option, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        if (handle == nullptr) {
            throw NullArgument{};
        }
        *handle = 0;
        return open_result_file(file_name, value(file_length), group_name, group_length, domain_name, domain_length,
                                *handle, domain_flag, Option{value(option)});
    });
}

void KOB1_OPEN(const char* file_name, const int32_t* file_length, const char* group_name, const int32_t* group_length,
               const char* domain_name, const int32_t* domain_length, int64_t* handle, const int32_t* domain_flag,
               const int32_t* option, int32_t* status) __attribute__((alias("KOB_OPEN")));

void KOB_CLOSE(const int64_t* handle, int32_t* status)
{
    using namespace kob;
    entry(status, [&] { return close_result_file(value(handle)); });
}

void KOB1_CLOSE(const int64_t* handle, int32_t* status) __attribute__((alias("KOB_CLOSE")));

void KOB_FLUSH(const int64_t* handle, const int32_t* scope, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        // The result is not reported: a flush that fails now fails again, and is reported, at the close.
        if (value(scope) == 0) {
            H5Fflush(value(handle), H5F_SCOPE_GLOBAL);
        } else if (value(scope) == 1) {
            H5Fflush(value(handle), H5F_SCOPE_LOCAL);
        }
        return 0;
    });
}

void KOB1_FLUSH(const int64_t* handle, const int32_t* scope, int32_t* status) __attribute__((alias("KOB_FLUSH")));

void KOB_GET_VERSION(char* text, const int32_t* selector, const int32_t* verbose, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        if (text == nullptr) {
            throw NullArgument{};
        }
        return get_version(Generation::current, text, value(selector), value(verbose));
    });
}

void KOB1_GET_VERSION(char* text, const int32_t* selector, const int32_t* verbose, int32_t* status)
{
    using namespace kob;
    entry(status, [&] {
        if (text == nullptr) {
            throw NullArgument{};
        }
        return get_version(Generation::older, text, value(selector), value(verbose));
    });
}

} // extern "C"
