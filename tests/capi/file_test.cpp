// SPDX-License-Identifier: BSD-3-Clause
// Opening, creating, flushing and closing files; the version query; opening groups by their path.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>
#include <kob_dp.h>

#include "open_file.hpp"
#include "support/captured_stream.hpp"
#include "support/file_bytes.hpp"
#include "support/hdf5_file.hpp"
#include "support/identifiers.hpp"
#include "support/kob_file.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr std::int32_t verbose = 1024;

/// The HDF5 version that the process is made to believe in; empty: the true one.
std::vector<unsigned> pretended_version;
bool version_fails = false;

} // namespace

/// Stands in front of HDF5's own function, so that a test can pretend to run with another library.
extern "C" herr_t H5get_libversion(unsigned* major, unsigned* minor, unsigned* release)
{
    if (version_fails) return -1;
    if (!pretended_version.empty()) {
        *major = pretended_version[0];
        *minor = pretended_version[1];
        *release = pretended_version[2];
        return 0;
    }
    using Function = herr_t (*)(unsigned*, unsigned*, unsigned*);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "H5get_libversion"));
    return original(major, minor, release);
}

namespace {

std::string hdf5_version()
{
    unsigned major = 0;
    unsigned minor = 0;
    unsigned release = 0;
    H5get_libversion(&major, &minor, &release);
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(release);
}

void write_bytes(const std::string& path, const std::string& bytes) { std::ofstream{path, std::ios::binary} << bytes; }

std::ptrdiff_t lines_in(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

bool exists(const std::string& path) { return std::filesystem::exists(path); }

/// The path of an open object inside its file.
std::string name_of(std::int64_t handle)
{
    std::array<char, 1024> name{};
    H5Iget_name(handle, name.data(), name.size());
    return name.data();
}

unsigned access_of(std::int64_t handle)
{
    const Hid file{H5Iget_file_id(handle)};
    unsigned intent = 77;
    H5Fget_intent(file, &intent);
    return intent;
}

std::string cannot_create(const std::string& file)
{
    return "KOB ERROR - kob_open - Cannot create file \"" + file + "\".\n";
}

std::string unable_to_open(const std::string& file)
{
    return "KOB ERROR - kob_open - \"" + file + "\": Unable to open kob-hdf5 file.\n";
}

std::string cannot_open_group(const std::string& file, const std::string& group)
{
    return " KOB ERROR - kob_open - file " + file + " - Cannot open group \"" + group + "\".\n";
}

/// A file with the groups /results, /results/inner and a dataset /results/numbers, and the link "post".
void make_file(const std::string& path)
{
    const auto file = create_file(path);
    const auto results = create_group(file, "results");
    create_group(results, "inner");
    put_dataset(results, "numbers", H5T_STD_I32LE, {2});
    H5Lcreate_hard(results, ".", file, "post", H5P_DEFAULT, H5P_DEFAULT);
}

/// Lets another process hold a file until the end of the scope.
class HeldByAnotherProcess {
public:
    explicit HeldByAnotherProcess(const std::string& path, unsigned flags = H5F_ACC_RDWR)
    {
        std::array<int, 2> ready{};
        if (pipe(ready.data()) != 0 || pipe(done_.data()) != 0) throw std::runtime_error{"no pipe"};
        child_ = fork();
        if (child_ == 0) {
            close(done_[1]);
            const auto file = H5Fopen(path.c_str(), flags, H5P_DEFAULT);
            char told = file >= 0 ? 'y' : 'n';
            if (write(ready[1], &told, 1) != 1) _exit(2);
            while (read(done_[0], &told, 1) < 0 && errno == EINTR) {} // ends when the parent closes the pipe
            _exit(0);
        }
        close(done_[0]);
        close(ready[1]);
        char told = 'n';
        EXPECT_EQ(read(ready[0], &told, 1), 1);
        EXPECT_EQ(told, 'y') << "the other process cannot open " << path;
        close(ready[0]);
    }
    ~HeldByAnotherProcess()
    {
        close(done_[1]);
        waitpid(child_, nullptr, 0);
    }
    HeldByAnotherProcess(const HeldByAnotherProcess&) = delete;
    HeldByAnotherProcess& operator=(const HeldByAnotherProcess&) = delete;

private:
    pid_t child_ = -1;
    std::array<int, 2> done_{};
};

/// Makes a folder the current one until the end of the scope.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::filesystem::path& folder) { std::filesystem::current_path(folder); }
    ~CurrentFolder() { std::filesystem::current_path(before_); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

// ---- options

class UnknownMode : public testing::TestWithParam<std::int32_t> {};

TEST_P(UnknownMode, Is_refused_with_the_whole_option_word)
{
    const TempFile temp;
    OpenCall call{temp.path(), GetParam()};
    CapturedStream captured;
    call.run();
    EXPECT_EQ(captured.err(), "\nKOB ERROR - kob_open - unknown option " + std::to_string(GetParam()) + "\n");
    EXPECT_EQ(captured.out(), "");
    EXPECT_EQ(call.status, -9999);
    EXPECT_EQ(call.handle, 0);
    EXPECT_FALSE(exists(temp.path()));
}

INSTANTIATE_TEST_SUITE_P(File, UnknownMode, testing::Values(3, 4, 5, 6, 7, 11, 12, 14, 15, 1024 + 3, 1024 + 14, -1));

TEST(File, Bits_of_the_option_beside_mode_and_verbose_have_no_meaning)
{
    const TempFile temp;
    make_file(temp.path());
    OpenCall call{temp.path(), 2 + 16 + 512 + 2048};
    EXPECT_EQ(output_of([&] { call.run(); }), "");
    EXPECT_EQ(call.status, 0);
    EXPECT_EQ(access_of(call.handle), H5F_ACC_RDONLY);
    EXPECT_EQ(close_file(call.handle), 0);
}

class EveryMode : public testing::TestWithParam<std::int32_t> {};

TEST_P(EveryMode, Refuses_a_file_name_length_below_one)
{
    for (const std::int32_t length : {0, -1, -100}) {
        const TempFile temp;
        OpenCall call{temp.path(), GetParam()};
        CapturedStream captured;
        call.run(length, 7, 0);
        EXPECT_EQ(captured.err(), "\nKOB ERROR - kob_open - Invalid filename\n");
        EXPECT_EQ(captured.out(), "");
        EXPECT_EQ(call.status, -1);
        EXPECT_EQ(call.handle, 0);
    }
}

TEST_P(EveryMode, Refuses_an_old_HDF5_library)
{
    for (const auto& version : {std::vector{1U, 14U, 5U}, std::vector{1U, 13U, 9U}, std::vector{0U, 99U, 99U}}) {
        const TempFile temp;
        OpenCall call{temp.path(), GetParam()};
        pretended_version = version;
        const auto errors = errors_of([&] { call.run(); });
        pretended_version.clear();
        EXPECT_EQ(errors, "\nKOB ERROR - kob_open - hdf version check failed\n");
        EXPECT_EQ(call.status, -998);
        EXPECT_EQ(call.handle, 0);
        EXPECT_FALSE(exists(temp.path()));
    }
}

TEST_P(EveryMode, Refuses_an_HDF5_library_without_version)
{
    const TempFile temp;
    OpenCall call{temp.path(), GetParam()};
    version_fails = true;
    const auto errors = errors_of([&] { call.run(); });
    version_fails = false;
    EXPECT_EQ(errors, "\nKOB ERROR - kob_open - unable to get hdf lib version\n");
    EXPECT_EQ(call.status, -999);
    EXPECT_EQ(call.handle, 0);
    EXPECT_FALSE(exists(temp.path()));
}

TEST_P(EveryMode, Says_nothing_on_success_unless_verbose)
{
    const TempFile temp;
    make_file(temp.path());
    OpenCall call{temp.path(), GetParam()};
    CapturedStream captured;
    call.run();
    EXPECT_EQ(captured.out(), "");
    EXPECT_EQ(captured.err(), "");
    EXPECT_EQ(call.status, 0);
    EXPECT_EQ(close_file(call.handle), 0);
}

INSTANTIATE_TEST_SUITE_P(File, EveryMode, testing::Values(0, 1, 2, 8, 9, 10, 13));

TEST(File, A_newer_HDF5_library_is_fine)
{
    for (const auto& version : {std::vector{1U, 14U, 7U}, std::vector{1U, 15U, 0U}, std::vector{2U, 0U, 0U}}) {
        const TempFile temp;
        OpenCall call{temp.path(), 0};
        pretended_version = version;
        call.run();
        pretended_version.clear();
        EXPECT_EQ(call.status, 0);
        EXPECT_EQ(close_file(call.handle), 0);
    }
}

// ---- creating with groups

TEST(File, Mode_0_creates_the_group_and_the_link_post)
{
    const TempFile temp;
    auto call = OpenCall{temp.path(), 0, "run"}.run();
    ASSERT_EQ(call.status, 0);
    EXPECT_EQ(H5Iget_type(call.handle), H5I_GROUP);
    EXPECT_EQ(access_of(call.handle), H5F_ACC_RDWR);
    {
        const Hid file{H5Iget_file_id(call.handle)};
        EXPECT_THAT(link_names(file), ElementsAre("post", "run"));
        EXPECT_TRUE(same_object(file, "post", file, "run"));
        EXPECT_TRUE(same_object(file, "post", call.handle, "."));
        H5L_info2_t post{};
        H5Lget_info2(file, "post", &post, H5P_DEFAULT);
        EXPECT_EQ(post.type, H5L_TYPE_HARD);
    }
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST(File, Mode_0_with_a_domain_lets_post_lead_to_the_domain_group)
{
    const TempFile temp;
    auto call = OpenCall{temp.path(), 0, "run", "domain_3", 1}.run();
    ASSERT_EQ(call.status, 0);
    {
        const Hid file{H5Iget_file_id(call.handle)};
        EXPECT_THAT(link_names(file), ElementsAre("post", "run"));
        EXPECT_THAT(link_names(open_group(file, "run")), ElementsAre("domain_3"));
        EXPECT_TRUE(same_object(file, "post", file, "run/domain_3"));
        EXPECT_TRUE(same_object(file, "post", call.handle, "."));
    }
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST(File, Any_domain_flag_but_0_asks_for_a_domain)
{
    for (const std::int32_t flag : {-1, 2}) {
        const TempFile temp;
        auto call = OpenCall{temp.path(), 0, "run", "d", flag}.run();
        EXPECT_EQ(call.status, 0);
        EXPECT_EQ(close_file(call.handle), 0);
        EXPECT_TRUE(has_link(open_group(open_file(temp.path()), "run"), "d"));
    }
}

TEST(File, Mode_0_empties_an_existing_file)
{
    const TempFile temp;
    make_file(temp.path());
    auto call = OpenCall{temp.path(), 0, "run"}.run();
    EXPECT_EQ(call.status, 0);
    EXPECT_EQ(close_file(call.handle), 0);
    EXPECT_THAT(link_names(open_file(temp.path())), ElementsAre("post", "run"));
}

TEST(File, Mode_0_replaces_a_file_that_is_no_HDF5_file)
{
    const TempFile temp;
    write_bytes(temp.path(), "some text");
    auto call = OpenCall{temp.path(), 0, "run"}.run();
    EXPECT_EQ(call.status, 0);
    EXPECT_EQ(close_file(call.handle), 0);
    EXPECT_THAT(link_names(open_file(temp.path())), ElementsAre("post", "run"));
}

TEST(File, Names_have_exactly_their_declared_lengths)
{
    const TempDir dir;
    OpenCall call{dir / "run.kob  and more", 0, "group and more", "domain and more", 1};
    call.run(static_cast<std::int32_t>((dir / "run.kob  ").size()), 6, 7);
    ASSERT_EQ(call.status, 0);
    EXPECT_EQ(close_file(call.handle), 0);
    ASSERT_TRUE(exists(dir / "run.kob  ")) << "blanks belong to the name";
    const auto file = open_file(dir / "run.kob  ");
    EXPECT_THAT(link_names(file), ElementsAre("group ", "post"));
    EXPECT_THAT(link_names(open_group(file, "group ")), ElementsAre("domain "));
}

TEST(File, A_group_name_may_be_longer_than_the_file_name)
{
    const TempDir dir;
    const CurrentFolder folder{dir.path()};
    const std::string long_name(5000, 'g');
    auto call = OpenCall{"r", 0, long_name, std::string(7000, 'd'), 1}.run();
    EXPECT_EQ(call.status, 0);
    EXPECT_EQ(close_file(call.handle), 0);
    EXPECT_THAT(link_names(open_file("r")), ElementsAre(long_name, "post"));
}

TEST(File, Mode_0_refuses_an_empty_group_name_and_leaves_the_file_alone)
{
    for (const std::int32_t length : {0, -1}) {
        const TempFile temp;
        make_file(temp.path());
        const auto before = bytes_of(temp.path());
        OpenCall call{temp.path(), 0, "run", "domain", 1};
        const auto errors = errors_of([&] { call.run(static_cast<std::int32_t>(temp.path().size()), length, 6); });
        EXPECT_EQ(errors, "KOB ERROR - kob_open - Invalid group name\n");
        EXPECT_EQ(call.status, -1);
        EXPECT_EQ(call.handle, 0);
        EXPECT_EQ(bytes_of(temp.path()), before);
    }
}

TEST(File, Mode_0_refuses_an_empty_domain_name_and_leaves_the_file_alone)
{
    for (const std::int32_t length : {0, -1}) {
        const TempFile temp;
        make_file(temp.path());
        const auto before = bytes_of(temp.path());
        OpenCall call{temp.path(), 0, "run", "domain", 1};
        const auto errors = errors_of([&] { call.run(static_cast<std::int32_t>(temp.path().size()), 3, length); });
        EXPECT_EQ(errors, "KOB ERROR - kob_open - Invalid domain name\n");
        EXPECT_EQ(call.status, -1);
        EXPECT_EQ(call.handle, 0);
        EXPECT_EQ(bytes_of(temp.path()), before);
    }
}

TEST(File, The_lengths_that_a_mode_does_not_need_are_not_looked_at)
{
    const TempFile temp;
    const auto length = static_cast<std::int32_t>(temp.path().size());
    OpenCall no_domain{temp.path(), 0, "run"};
    no_domain.run(length, 3, -7);
    EXPECT_EQ(no_domain.status, 0);
    EXPECT_EQ(close_file(no_domain.handle), 0);
    OpenCall existing{temp.path(), 1};
    existing.run(length, -7, -7);
    EXPECT_EQ(existing.status, 0);
    EXPECT_EQ(close_file(existing.handle), 0);
}

TEST(File, A_file_that_cannot_be_created_counts_every_failed_step)
{
    const TempDir dir;
    OpenCall call{dir / "missing/run.kob", 0, "run"};
    const auto errors = errors_of([&] { call.run(); });
    EXPECT_THAT(errors, StartsWith(cannot_create(call.file)));
    EXPECT_THAT(errors, HasSubstr("KOB ERROR - kob_open - Cannot create group \"run\".\n"));
    EXPECT_LE(call.status, -2);
    EXPECT_EQ(call.status, -lines_in(errors)) << errors;
    EXPECT_EQ(call.handle, 0);
}

TEST(File, A_file_that_cannot_be_created_counts_the_domain_step_as_well)
{
    const TempDir dir;
    OpenCall call{dir / "missing/run.kob", 0, "run", "domain", 1};
    const auto errors = errors_of([&] { call.run(); });
    EXPECT_THAT(errors, StartsWith(cannot_create(call.file)));
    EXPECT_THAT(errors, HasSubstr("KOB ERROR - kob_open - Cannot create group \"run\".\n"));
    EXPECT_THAT(errors, HasSubstr("KOB ERROR - kob_open - Cannot create domain group \"domain\".\n"));
    EXPECT_LE(call.status, -3);
    EXPECT_EQ(call.status, -lines_in(errors)) << errors;
    EXPECT_EQ(call.handle, 0);
}

TEST(File, A_group_that_cannot_be_created_is_named)
{
    const TempFile temp;
    OpenCall call{temp.path(), 0, "no/such/group"};
    const auto errors = errors_of([&] { call.run(); });
    EXPECT_THAT(errors, StartsWith("KOB ERROR - kob_open - Cannot create group \"no/such/group\".\n"));
    EXPECT_EQ(call.status, -lines_in(errors)) << errors;
    EXPECT_EQ(call.handle, 0);
}

TEST(File, A_domain_group_that_cannot_be_created_is_named)
{
    const TempFile temp;
    OpenCall call{temp.path(), 0, "run", "no/such/domain", 1};
    const auto errors = errors_of([&] { call.run(); });
    EXPECT_THAT(errors, StartsWith("KOB ERROR - kob_open - Cannot create domain group \"no/such/domain\".\n"));
    EXPECT_EQ(call.status, -lines_in(errors)) << errors;
    EXPECT_EQ(call.handle, 0);
}

TEST(File, A_group_named_post_leaves_no_room_for_the_link)
{
    const TempFile temp;
    OpenCall call{temp.path(), 0, "post"};
    const auto errors = errors_of([&] { call.run(); });
    EXPECT_EQ(errors, "KOB ERROR - kob_open - Cannot create post link.\n");
    EXPECT_EQ(call.status, -1);
    EXPECT_EQ(call.handle, 0);
}

// ---- creating an empty file

TEST(File, Mode_8_creates_an_empty_file_and_returns_its_root)
{
    const TempFile temp;
    make_file(temp.path());
    auto call = OpenCall{temp.path(), 8}.run();
    ASSERT_EQ(call.status, 0);
    EXPECT_EQ(H5Iget_type(call.handle), H5I_GROUP);
    EXPECT_EQ(name_of(call.handle), "/");
    EXPECT_EQ(access_of(call.handle), H5F_ACC_RDWR);
    EXPECT_THAT(link_names(call.handle), ElementsAre());
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST(File, Mode_8_counts_its_failed_steps)
{
    const TempDir dir;
    OpenCall call{dir / "missing/run.kob", 8};
    const auto errors = errors_of([&] { call.run(); });
    EXPECT_THAT(errors, StartsWith(cannot_create(call.file)));
    EXPECT_EQ(call.status, -lines_in(errors)) << errors;
    EXPECT_EQ(call.handle, 0);
}

// ---- creating where somebody holds the file

class CreatingMode : public testing::TestWithParam<std::int32_t> {};

TEST_P(CreatingMode, Leaves_a_file_alone_that_another_process_writes)
{
    const TempFile temp;
    make_file(temp.path());
    const HeldByAnotherProcess holder{temp.path()};
    const auto before = bytes_of(temp.path());
    OpenCall call{temp.path(), GetParam()};
    const auto errors = errors_of([&] { call.run(); });
    EXPECT_THAT(errors, StartsWith(cannot_create(temp.path())));
    EXPECT_EQ(call.status, -lines_in(errors)) << errors;
    EXPECT_LT(call.status, 0);
    EXPECT_EQ(call.handle, 0);
    EXPECT_EQ(bytes_of(temp.path()), before);
}

TEST_P(CreatingMode, Leaves_a_file_alone_that_another_process_reads)
{
    const TempFile temp;
    make_file(temp.path());
    const auto before = bytes_of(temp.path());
    const HeldByAnotherProcess holder{temp.path(), H5F_ACC_RDONLY};
    OpenCall call{temp.path(), GetParam()};
    const auto errors = errors_of([&] { call.run(); });
    EXPECT_THAT(errors, StartsWith(cannot_create(temp.path())));
    EXPECT_LT(call.status, 0);
    EXPECT_EQ(call.handle, 0);
    EXPECT_EQ(bytes_of(temp.path()), before);
}

TEST_P(CreatingMode, Leaves_a_file_alone_that_this_process_holds)
{
    const TempFile temp;
    make_file(temp.path());
    auto first = OpenCall{temp.path(), 2}.run();
    const auto before = bytes_of(temp.path());
    OpenCall call{temp.path(), GetParam()};
    const auto errors = errors_of([&] { call.run(); });
    EXPECT_THAT(errors, StartsWith(cannot_create(temp.path())));
    EXPECT_LT(call.status, 0);
    EXPECT_EQ(call.handle, 0);
    EXPECT_EQ(bytes_of(temp.path()), before);
    EXPECT_EQ(H5Iis_valid(first.handle), 1) << "the handle of the held file stays";
    EXPECT_EQ(close_file(first.handle), 0);
}

TEST_P(CreatingMode, Works_again_when_the_other_process_is_gone)
{
    const TempFile temp;
    make_file(temp.path());
    {
        const HeldByAnotherProcess holder{temp.path()};
        errors_of([&] { OpenCall{temp.path(), GetParam()}.run(); });
    }
    auto call = OpenCall{temp.path(), GetParam()}.run();
    EXPECT_EQ(call.status, 0);
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST_P(CreatingMode, Does_not_ask_for_the_lock_where_HDF5_locking_is_switched_off)
{
    // HDF5 reads the variable once per process, so the statement runs in one of its own
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const TempFile temp;
    make_file(temp.path());
    const int held = open(temp.path().c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(held, LOCK_EX | LOCK_NB), 0);
    setenv("HDF5_USE_FILE_LOCKING", "FALSE", 1);
    const auto create = [&] {
        OpenCall call{temp.path(), GetParam()};
        call.run();
        return call.status == 0 ? close_file(call.handle) : call.status;
    };
    EXPECT_EXIT(_exit(create() == 0 ? 0 : 1), testing::ExitedWithCode(0), "^$");
    unsetenv("HDF5_USE_FILE_LOCKING");
    close(held);
}

INSTANTIATE_TEST_SUITE_P(File, CreatingMode, testing::Values(0, 8));

// ---- opening

struct OpeningMode {
    std::int32_t option;
    unsigned access;
    const char* group;

    friend std::ostream& operator<<(std::ostream& out, const OpeningMode& m) { return out << "mode " << m.option; }
};

class ModeThatOpens : public testing::TestWithParam<OpeningMode> {};

TEST_P(ModeThatOpens, Returns_its_group_with_its_access)
{
    const auto [option, access, group] = GetParam();
    const TempFile temp;
    make_file(temp.path());
    auto call = OpenCall{temp.path(), option}.run();
    ASSERT_EQ(call.status, 0);
    EXPECT_EQ(H5Iget_type(call.handle), H5I_GROUP);
    EXPECT_EQ(access_of(call.handle), access);
    {
        const Hid file{H5Iget_file_id(call.handle)};
        EXPECT_TRUE(same_object(file, group, call.handle, "."));
    }
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST_P(ModeThatOpens, Opens_a_group_inside_the_file_by_its_path)
{
    const auto [option, access, group] = GetParam();
    const TempFile temp;
    make_file(temp.path());
    for (const auto* inside : {"/post", "/results", "/results/inner", "/post/inner"}) {
        auto call = OpenCall{temp.path() + inside, option}.run();
        ASSERT_EQ(call.status, 0) << inside;
        EXPECT_EQ(access_of(call.handle), access);
        {
            const Hid file{H5Iget_file_id(call.handle)};
            EXPECT_TRUE(same_object(file, inside, call.handle, ".")) << inside;
        }
        EXPECT_EQ(close_file(call.handle), 0);
    }
}

TEST_P(ModeThatOpens, Opens_the_root_for_a_path_that_ends_with_a_slash)
{
    const TempFile temp;
    make_file(temp.path());
    auto call = OpenCall{temp.path() + "/", GetParam().option}.run();
    ASSERT_EQ(call.status, 0);
    EXPECT_EQ(name_of(call.handle), "/");
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST_P(ModeThatOpens, Names_the_shortened_file_when_the_group_inside_is_missing)
{
    const TempFile temp;
    make_file(temp.path());
    OpenCall call{temp.path() + "/results/missing", GetParam().option};
    const auto errors = errors_of([&] { call.run(); });
    EXPECT_EQ(errors, cannot_open_group(temp.path(), "/results/missing"));
    EXPECT_EQ(call.status, -1);
    EXPECT_EQ(call.handle, 0);
}

TEST_P(ModeThatOpens, Refuses_a_dataset_as_group)
{
    const TempFile temp;
    make_file(temp.path());
    OpenCall call{temp.path() + "/results/numbers", GetParam().option};
    const auto errors = errors_of([&] { call.run(); });
    EXPECT_EQ(errors, cannot_open_group(temp.path(), "/results/numbers"));
    EXPECT_EQ(call.status, -1);
    EXPECT_EQ(call.handle, 0);
}

TEST_P(ModeThatOpens, Refuses_a_file_that_is_no_HDF5_file)
{
    const TempDir dir;
    const CurrentFolder folder{dir.path()};
    write_bytes("text.kob", "some text\n");
    OpenCall call{"text.kob", GetParam().option};
    EXPECT_EQ(errors_of([&] { call.run(); }), unable_to_open("text.kob"));
    EXPECT_EQ(call.status, -1);
    EXPECT_EQ(call.handle, 0);
    EXPECT_EQ(bytes_of("text.kob"), "some text\n");
}

TEST_P(ModeThatOpens, Counts_a_file_that_HDF5_recognises_but_cannot_open_as_not_found)
{
    const TempFile temp;
    make_file(temp.path());
    write_bytes(temp.path(), bytes_of(temp.path()).substr(0, 40));
    for (const auto* inside : {"", "/results/inner"}) {
        OpenCall call{temp.path() + inside, GetParam().option};
        EXPECT_EQ(errors_of([&] { call.run(); }), unable_to_open(call.file)) << "the whole name, as given";
        EXPECT_EQ(call.status, -1);
        EXPECT_EQ(call.handle, 0);
    }
}

TEST_P(ModeThatOpens, Refuses_an_empty_name)
{
    OpenCall call{std::string(3, '\0'), GetParam().option};
    EXPECT_EQ(errors_of([&] { call.run(); }), unable_to_open(""));
    EXPECT_EQ(call.status, -1);
    EXPECT_EQ(call.handle, 0);
}

TEST_P(ModeThatOpens, Ends_the_search_where_no_name_is_left)
{
    OpenCall call{"/no_such_file_of_this_test.kob", GetParam().option};
    // the root folder itself may not be written to; what counts is that nothing is left open and one line is printed
    if (GetParam().option == 13) call.file = "/no_such_folder_of_this_test/run.kob";
    EXPECT_EQ(errors_of([&] { call.run(); }), unable_to_open(call.file));
    EXPECT_EQ(call.status, -1);
    EXPECT_EQ(call.handle, 0);
}

INSTANTIATE_TEST_SUITE_P(File, ModeThatOpens,
                         testing::Values(OpeningMode{1, H5F_ACC_RDWR, "post"}, OpeningMode{2, H5F_ACC_RDONLY, "post"},
                                         OpeningMode{9, H5F_ACC_RDWR, "/"}, OpeningMode{10, H5F_ACC_RDONLY, "/"},
                                         OpeningMode{13, H5F_ACC_RDWR, "/"}),
                         [](const auto& tested) { return "mode_" + std::to_string(tested.param.option); });

TEST(File, A_relative_name_and_a_path_behind_it_are_found)
{
    const TempDir dir;
    const CurrentFolder folder{dir.path()};
    std::filesystem::create_directory("data");
    make_file("data/run.kob");
    auto call = OpenCall{"data/run.kob/post", 1}.run();
    EXPECT_EQ(call.status, 0);
    EXPECT_EQ(name_of(call.handle), "/post");
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST(File, A_name_without_slash_that_does_not_exist_fails_with_one_line)
{
    const TempDir dir;
    const CurrentFolder folder{dir.path()};
    for (const std::int32_t option : {1, 2, 9, 10}) {
        OpenCall call{"missing.kob", option};
        EXPECT_EQ(errors_of([&] { call.run(); }), unable_to_open("missing.kob"));
        EXPECT_EQ(call.status, -1);
        EXPECT_EQ(call.handle, 0);
        EXPECT_FALSE(exists("missing.kob"));
    }
}

TEST(File, A_file_without_post_needs_a_mode_that_opens_the_root)
{
    const TempFile temp;
    create_file(temp.path());
    for (const std::int32_t option : {1, 2}) {
        OpenCall call{temp.path(), option};
        EXPECT_EQ(errors_of([&] { call.run(); }), cannot_open_group(temp.path(), "post"));
        EXPECT_EQ(call.status, -1);
        EXPECT_EQ(call.handle, 0);
    }
    auto root = OpenCall{temp.path(), 10}.run();
    EXPECT_EQ(root.status, 0);
    EXPECT_EQ(close_file(root.handle), 0);
}

TEST(File, The_name_given_does_not_change_an_existing_file_when_only_opened)
{
    const TempFile temp;
    make_file(temp.path());
    const auto before = bytes_of(temp.path());
    for (const std::int32_t option : {2, 10}) {
        auto call = OpenCall{temp.path(), option}.run();
        EXPECT_EQ(close_file(call.handle), 0);
    }
    EXPECT_EQ(bytes_of(temp.path()), before);
}

// ---- create or open

TEST(File, Mode_13_creates_an_empty_file_where_there_is_none)
{
    const TempFile temp;
    CapturedStream captured;
    auto call = OpenCall{temp.path(), 13}.run();
    EXPECT_EQ(captured.out(), "");
    EXPECT_EQ(captured.err(), "");
    ASSERT_EQ(call.status, 0);
    EXPECT_EQ(name_of(call.handle), "/");
    EXPECT_EQ(access_of(call.handle), H5F_ACC_RDWR);
    EXPECT_THAT(link_names(call.handle), ElementsAre());
    EXPECT_EQ(close_file(call.handle), 0);
    EXPECT_TRUE(exists(temp.path()));
}

TEST(File, Mode_13_keeps_an_existing_file)
{
    const TempFile temp;
    make_file(temp.path());
    auto call = OpenCall{temp.path(), 13}.run();
    ASSERT_EQ(call.status, 0);
    EXPECT_EQ(access_of(call.handle), H5F_ACC_RDWR);
    EXPECT_THAT(link_names(call.handle), ElementsAre("post", "results"));
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST(File, Mode_13_says_that_it_opens_an_existing_file_when_verbose)
{
    const TempFile temp;
    make_file(temp.path());
    OpenCall call{temp.path(), 13 + verbose};
    CapturedStream captured;
    call.run();
    EXPECT_THAT(captured.out(), HasSubstr("KOB INFO - kob_open - file \"" + temp.path() +
                                          "\" cannot be created, trying to open it.\n"));
    EXPECT_EQ(captured.err(), "");
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST(File, Mode_13_fails_where_it_can_neither_create_nor_open)
{
    const TempDir dir;
    OpenCall call{dir / "missing/run.kob", 13};
    EXPECT_EQ(errors_of([&] { call.run(); }), unable_to_open(call.file));
    EXPECT_EQ(call.status, -1);
    EXPECT_EQ(call.handle, 0);
}

TEST(File, Mode_13_does_not_disturb_a_file_that_another_process_holds)
{
    const TempFile temp;
    make_file(temp.path());
    const HeldByAnotherProcess holder{temp.path()};
    const auto before = bytes_of(temp.path());
    OpenCall call{temp.path(), 13};
    EXPECT_EQ(errors_of([&] { call.run(); }), unable_to_open(temp.path()));
    EXPECT_EQ(call.status, -1);
    EXPECT_EQ(bytes_of(temp.path()), before);
}

// ---- verbose report

std::string versions_report()
{
    return "\nKOB INFO - hdf5-lib version: " + hdf5_version() + "\n\nKOB INFO - opening kob-hdf5 file\n";
}

/// What is reported from "opened" on, with HDF5's default access properties.
std::string opened_report(const std::string& file, const std::string& group)
{
    const auto number = [](hid_t value) { return std::to_string(value); };
    const auto latest = std::to_string(H5F_LIBVER_LATEST);
    return "KOB INFO - file \"" + file + "\" opened.\nKOB INFO - opening group \"" + group +
           "\"\n\nKOB INFO - HDF5 LIBVER bounds (earliest=" + std::to_string(H5F_LIBVER_EARLIEST) +
           ", 18=" + std::to_string(H5F_LIBVER_V18) + ", LATEST=" + latest +
           ") lower=" + std::to_string(H5F_LIBVER_EARLIEST) + ", upper=" + latest +
           "\n\nKOB INFO - HDF5 file driver (< 0 => n/a): " + number(H5FD_SEC2) + "\n (" + number(H5FD_CORE) +
           "=CORE, -1=DIRECT, " + number(H5FD_FAMILY) + "=FAMILY, " + number(H5FD_LOG) + "=LOG, -1=MPIO, " +
           number(H5FD_MULTI) + "=MULTI, " + number(H5FD_SEC2) + "=SEC2, " + number(H5FD_STDIO) + "=STDIO, " +
           "-1=WINDOWS)\n\n";
}

TEST(File, Mode_0_reports_every_step_when_verbose)
{
    const TempFile temp;
    OpenCall call{temp.path(), 0 + verbose, "run", "domain_1", 1};
    CapturedStream captured;
    call.run();
    EXPECT_EQ(captured.out(), versions_report() + "KOB INFO - file \"" + temp.path() +
                                  "\" created.\nKOB INFO - group \"run\" created.\n"
                                  "KOB INFO - Domain group \"domain_1\" created.\n" +
                                  opened_report(temp.path(), "post"));
    EXPECT_EQ(captured.err(), "");
    EXPECT_EQ(call.status, 0);
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST(File, Mode_8_reports_every_step_when_verbose)
{
    const TempFile temp;
    OpenCall call{temp.path(), 8 + verbose};
    EXPECT_EQ(output_of([&] { call.run(); }), versions_report() + "KOB INFO - file \"" + temp.path() + "\" created.\n" +
                                                  opened_report(temp.path(), "."));
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST(File, Opening_reports_every_step_when_verbose)
{
    const TempFile temp;
    make_file(temp.path());
    for (const std::int32_t option : {1, 2, 9, 10}) {
        OpenCall call{temp.path(), option + verbose};
        EXPECT_EQ(output_of([&] { call.run(); }), versions_report() + "Opened \"" + temp.path() + "\"\n" +
                                                      opened_report(temp.path(), option < 8 ? "post" : "."));
        EXPECT_EQ(close_file(call.handle), 0);
    }
}

TEST(File, The_report_names_the_shortened_file_and_the_path_inside_it)
{
    const TempFile temp;
    make_file(temp.path());
    OpenCall call{temp.path() + "/results/inner", 2 + verbose};
    EXPECT_EQ(output_of([&] { call.run(); }),
              versions_report() + "Opened \"" + temp.path() + "\"\n" + opened_report(temp.path(), "/results/inner"));
    EXPECT_EQ(close_file(call.handle), 0);
}

TEST(File, The_verbose_report_is_flushed_before_the_call_returns)
{
    const TempFile temp;
    const TempFile report{"report.txt"};
    make_file(temp.path());
    std::fflush(stdout);
    const int saved = dup(STDOUT_FILENO);
    const int to_file = open(report.path().c_str(), O_CREAT | O_WRONLY, 0600);
    dup2(to_file, STDOUT_FILENO);
    OpenCall call{temp.path(), 2 + verbose};
    call.run();
    const auto written = bytes_of(report.path()); // before anything here flushes the stream
    std::fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    close(saved);
    close(to_file);
    EXPECT_THAT(written, HasSubstr("HDF5 file driver"));
    EXPECT_EQ(close_file(call.handle), 0);
}

// ---- HDF5's own error report

TEST(File, HDF5_error_printing_is_off_during_a_call_and_as_the_caller_had_it_behind)
{
    struct Handler {
        static herr_t count(hid_t /*stack*/, void* counter)
        {
            ++*static_cast<int*>(counter);
            return 0;
        }
    };
    int calls = 0;
    H5E_auto2_t before = nullptr;
    void* before_data = nullptr;
    H5Eget_auto2(H5E_DEFAULT, &before, &before_data);
    H5Eset_auto2(H5E_DEFAULT, Handler::count, &calls);
    const auto kept = [&](const char* what) {
        H5E_auto2_t now = nullptr;
        void* data = nullptr;
        H5Eget_auto2(H5E_DEFAULT, &now, &data);
        EXPECT_EQ(now, &Handler::count) << what;
        EXPECT_EQ(data, &calls) << what;
        EXPECT_EQ(calls, 0) << what;
    };

    const TempDir dir;
    make_file(dir / "run.kob");
    create_file(dir / "empty.kob");
    errors_of([&] {
        for (const std::int32_t option : {0, 1, 2, 3, 8, 9, 10, 13}) {
            OpenCall{dir / "missing/run.kob", option}.run();
            kept("a file that is not there");
        }
        OpenCall{dir / "empty.kob", 1}.run();
        kept("no group post");
        OpenCall{dir / "run.kob", 0, ""}.run();
        kept("no group name");
        OpenCall{"", 1}.run();
        kept("no file name");
        auto good = OpenCall{dir / "run.kob", 1}.run();
        kept("a good open");
        for (const std::int32_t ioflag : {0, 1, 2, 3}) {
            auto group = GroupCall{good.handle, "numbers/x", ioflag}.run();
            kept("a bad path");
            EXPECT_EQ(group.handle, -1);
        }
        EXPECT_EQ(close_group(12345), -1);
        kept("closing no group");
        const std::int32_t scope = 0;
        const std::int64_t none = -1;
        std::int32_t status = 77;
        KOB_FLUSH(&none, &scope, &status);
        kept("flushing no file");
        close_file(good.handle);
        kept("a good close");
        close_file(good.handle);
        kept("a second close");
    });
    H5Eset_auto2(H5E_DEFAULT, before, before_data);
}

// ---- closing

TEST(File, Close_closes_everything_that_is_open_in_the_file)
{
    const TempFile temp;
    make_file(temp.path());
    auto call = OpenCall{temp.path(), 1}.run();
    const auto file = H5Iget_file_id(call.handle);
    const auto group = H5Gopen2(call.handle, "inner", H5P_DEFAULT);
    const auto dataset = H5Dopen2(call.handle, "numbers", H5P_DEFAULT);
    const Hid copy{H5Tcopy(H5T_NATIVE_INT)};
    const auto type = [&] {
        const auto named = H5Tcopy(H5T_NATIVE_INT);
        H5Tcommit2(call.handle, "type", named, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
        return named;
    }();
    const Hid scalar{H5Screate(H5S_SCALAR)};
    const auto attribute = H5Acreate2(group, "number", copy, scalar, H5P_DEFAULT, H5P_DEFAULT);
    ASSERT_GT(attribute, 0);
    EXPECT_EQ(close_file(call.handle), 0);
    for (const auto id : {call.handle, file, group, dataset, type, attribute}) EXPECT_LE(H5Iis_valid(id), 0);
}

TEST(File, Close_really_closes_a_file_of_several_references)
{
    const TempFile temp;
    make_file(temp.path());
    auto first = OpenCall{temp.path(), 1}.run();
    auto second = OpenCall{temp.path(), 1}.run();
    const auto file = H5Iget_file_id(first.handle);
    H5Iinc_ref(file);
    H5Iinc_ref(file);
    const auto again = H5Fopen(temp.path().c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
    EXPECT_EQ(close_file(first.handle), 0);
    for (const auto id : {first.handle, second.handle, static_cast<std::int64_t>(file), std::int64_t{again}})
        EXPECT_LE(H5Iis_valid(id), 0);
    create_file(temp.path()); // HDF5 refuses to truncate a file that is open
}

TEST(File, Close_takes_any_object_of_the_file)
{
    const TempFile temp;
    make_file(temp.path());
    auto call = OpenCall{temp.path(), 1}.run();
    EXPECT_EQ(close_file(H5Dopen2(call.handle, "numbers", H5P_DEFAULT)), 0);
    EXPECT_LE(H5Iis_valid(call.handle), 0);
}

TEST(File, Close_leaves_other_files_open)
{
    const TempFile temp;
    const TempFile other;
    auto call = OpenCall{temp.path(), 0}.run();
    auto stays = OpenCall{other.path(), 0}.run();
    EXPECT_EQ(close_file(call.handle), 0);
    EXPECT_EQ(H5Iis_valid(stays.handle), 1);
    EXPECT_EQ(close_file(stays.handle), 0);
}

TEST(File, Close_of_a_handle_that_is_none_fails)
{
    for (const std::int64_t handle : {std::int64_t{-1}, std::int64_t{0}, std::int64_t{12345}, INT64_MAX}) {
        CapturedStream captured;
        EXPECT_EQ(close_file(handle), -1);
        EXPECT_EQ(captured.err(), "");
    }
    const TempFile temp;
    auto call = OpenCall{temp.path(), 0}.run();
    EXPECT_EQ(close_file(call.handle), 0);
    EXPECT_EQ(close_file(call.handle), -1) << "a second close";
}

TEST(File, What_was_written_is_there_after_close)
{
    const TempFile temp;
    auto call = OpenCall{temp.path(), 0, "run"}.run();
    close_group(GroupCall{call.handle, "a/b"}.run().handle);
    EXPECT_EQ(close_file(call.handle), 0);
    EXPECT_THAT(link_names(open_group(open_file(temp.path()), "run/a")), ElementsAre("b"));
}

TEST(File, The_names_of_the_older_layout_do_the_same)
{
    const TempFile temp;
    const std::string group = "run";
    const auto file_length = static_cast<std::int32_t>(temp.path().size());
    const std::int32_t group_length = 3;
    const std::int32_t none = 0;
    std::int64_t handle = 0;
    std::int32_t status = 77;
    KOB1_OPEN(temp.path().data(), &file_length, group.data(), &group_length, nullptr, &none, &handle, &none, &none,
              &status);
    ASSERT_EQ(status, 0);
    const std::int32_t terminated = -1;
    std::int64_t inner = 0;
    KOB1_H5GOPEN(&handle, "a/b", &terminated, &none, &inner, &status);
    EXPECT_EQ(status, 2);
    KOB1_H5GCLOSE(&inner, &status);
    EXPECT_EQ(status, 0);
    status = 77;
    KOB1_FLUSH(&handle, &none, &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(close_file(handle), 0);
    EXPECT_THAT(link_names(open_file(temp.path())), ElementsAre("post", "run"));
}

// ---- flushing

TEST(File, Flush_brings_what_was_written_to_disk)
{
    for (const std::int32_t scope : {0, 1}) {
        const TempDir dir;
        auto call = OpenCall{dir / "run.kob", 0, "run"}.run();
        close_group(GroupCall{call.handle, "a/b"}.run().handle);
        std::int32_t status = 77;
        KOB_FLUSH(&call.handle, &scope, &status);
        EXPECT_EQ(status, 0);
        write_bytes(dir / "copy.kob", bytes_of(dir / "run.kob"));
        EXPECT_THAT(link_names(open_group(open_file(dir / "copy.kob"), "run/a")), ElementsAre("b"));
        EXPECT_EQ(close_file(call.handle), 0);
    }
}

TEST(File, Flush_with_another_scope_does_nothing)
{
    for (const std::int32_t scope : {2, -1, 1024}) {
        const TempFile temp;
        auto call = OpenCall{temp.path(), 0, "run"}.run();
        close_group(GroupCall{call.handle, "a/b"}.run().handle);
        const auto before = bytes_of(temp.path());
        std::int32_t status = 77;
        KOB_FLUSH(&call.handle, &scope, &status);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(bytes_of(temp.path()), before);
        EXPECT_EQ(close_file(call.handle), 0);
        EXPECT_NE(bytes_of(temp.path()), before) << "there was something to flush";
    }
}

TEST(File, Flush_reports_no_failure)
{
    for (const std::int32_t scope : {0, 1, 7}) {
        const std::int64_t none = -1;
        std::int32_t status = 77;
        CapturedStream captured;
        KOB_FLUSH(&none, &scope, &status);
        EXPECT_EQ(captured.err(), "");
        EXPECT_EQ(status, 0);
    }
}

// ---- version query

struct Version {
    std::string text = std::string(260, '#');
    std::int32_t status = 77;

    explicit Version(std::int32_t selector, std::int32_t talk = 0)
    {
        KOB_GET_VERSION(text.data(), &selector, &talk, &status);
    }
};

TEST(Version, The_selector_chooses_the_text)
{
    const auto hdf5 = "HDF5-" + hdf5_version();
    const std::vector<std::pair<std::int32_t, std::string>> expected{
        {1, "kob__dp"},
        {2, hdf5},
        {4, "KOB-2.2.16"},
        {6, hdf5 + " KOB-2.2.16"},
        {0, "kob__dp " + hdf5 + " KOB-2.2.16"},
        {3, "kob__dp " + hdf5 + " KOB-2.2.16"},
        {5, "kob__dp " + hdf5 + " KOB-2.2.16"},
        {7, "kob__dp " + hdf5 + " KOB-2.2.16"},
        {-1, "kob__dp " + hdf5 + " KOB-2.2.16"},
        {1000, "kob__dp " + hdf5 + " KOB-2.2.16"},
    };
    for (const auto& [selector, text] : expected) {
        const Version version{selector};
        EXPECT_EQ(version.status, 0);
        EXPECT_EQ(version.text, text + std::string(256 - text.size(), ' ') + "####") << "selector " << selector;
    }
}

TEST(Version, Nothing_is_printed_unless_verbose_is_positive)
{
    for (const std::int32_t talk : {0, -1}) {
        CapturedStream captured;
        const Version version{3, talk};
        EXPECT_EQ(captured.out(), "");
        EXPECT_EQ(captured.err(), "");
    }
}

TEST(Version, The_versions_are_printed_when_verbose_is_positive)
{
    for (const std::int32_t talk : {1, 2}) {
        EXPECT_EQ(output_of([&] {
                      const Version version{4, talk};
                  }),
                  "\nKOB INFO - hdf5-lib version: " + hdf5_version() +
                      "\n           KOB      version: 2.2.16\n           KOB      BuildID: kob__dp\n");
    }
}

TEST(Version, An_old_HDF5_library_is_reported)
{
    pretended_version = {1, 14, 5};
    std::int32_t status = 77;
    const auto errors = errors_of([&] { status = Version{3}.status; });
    pretended_version.clear();
    EXPECT_EQ(errors, "\nKOB ERROR - kob_get_version - hdf version check failed\n");
    EXPECT_EQ(status, -998);
}

TEST(Version, An_HDF5_library_without_version_is_reported)
{
    version_fails = true;
    std::int32_t status = 77;
    const auto errors = errors_of([&] { status = Version{3}.status; });
    version_fails = false;
    EXPECT_EQ(errors, "\nKOB ERROR - kob_get_version - unable to get hdf lib version\n");
    EXPECT_EQ(status, -999);
}

TEST(Version, The_version_is_that_of_the_running_library)
{
    pretended_version = {3, 25, 117};
    const Version version{2};
    pretended_version.clear();
    EXPECT_THAT(version.text, StartsWith("HDF5-3.25.117 "));
}

// ---- groups by path

/// A file whose root group is open, for paths that start there.
class GroupOpener : public testing::Test {
protected:
    /// Opens a path and closes the group again; the status stays.
    std::int32_t status_of(const std::string& name, std::int32_t ioflag)
    {
        auto call = GroupCall{file_.handle(), name, ioflag}.run();
        if (call.status >= 0)
            EXPECT_EQ(close_group(call.handle), 0);
        else
            EXPECT_EQ(call.handle, -1);
        return call.status;
    }
    /// What a call prints that must fail with this status.
    std::string message_of(const std::string& name, std::int32_t ioflag, std::int32_t status)
    {
        return errors_of([&] { EXPECT_EQ(status_of(name, ioflag), status); });
    }

    KobFile file_{create_empty};
};

TEST_F(GroupOpener, Creates_every_missing_level_and_counts_them)
{
    auto call = GroupCall{file_.handle(), "a/b/c", 0}.run();
    EXPECT_EQ(call.status, 3);
    EXPECT_EQ(H5Iget_type(call.handle), H5I_GROUP);
    EXPECT_EQ(name_of(call.handle), "/a/b/c");
    EXPECT_EQ(close_group(call.handle), 0);
    EXPECT_EQ(status_of("a/b/c", 0), 0);
    EXPECT_EQ(status_of("a/b/d/e", 0), 2);
    EXPECT_EQ(status_of("f", 0), 1);
}

TEST_F(GroupOpener, Starts_at_the_given_group)
{
    auto outer = GroupCall{file_.handle(), "outer", 0}.run();
    auto inner = GroupCall{outer.handle, "x/y", 0}.run();
    EXPECT_EQ(inner.status, 2);
    EXPECT_EQ(name_of(inner.handle), "/outer/x/y");
    EXPECT_EQ(close_group(inner.handle), 0);
    EXPECT_EQ(close_group(outer.handle), 0);
}

TEST_F(GroupOpener, Takes_an_empty_part_of_the_path_as_no_level)
{
    EXPECT_EQ(status_of("/a", 0), 1);
    EXPECT_EQ(status_of("//a//b", 0), 1);
    EXPECT_EQ(status_of("a/b/", 0), 0);
    EXPECT_EQ(status_of("c/d/", 0), 2);
    EXPECT_EQ(status_of("///e", 0), 1);
    for (const std::int32_t ioflag : {1, 2}) {
        EXPECT_EQ(status_of("/a/b", ioflag), 0) << ioflag;
        EXPECT_EQ(status_of("//a///b", ioflag), 0) << ioflag;
    }
    EXPECT_THAT(link_names(file_.handle()), ElementsAre("a", "c", "e"));
}

TEST_F(GroupOpener, Takes_the_declared_length_without_trimming)
{
    GroupCall call{file_.handle(), "ab/cd ef", 0};
    EXPECT_EQ(call.run(6).status, 2);
    EXPECT_EQ(name_of(call.handle), "/ab/cd ");
    EXPECT_EQ(close_group(call.handle), 0);
}

TEST_F(GroupOpener, Takes_a_NUL_terminated_name_with_length_minus_1)
{
    GroupCall call{file_.handle(), "ab/cd", 0};
    EXPECT_EQ(call.run(-1).status, 2);
    EXPECT_EQ(name_of(call.handle), "/ab/cd");
    EXPECT_EQ(close_group(call.handle), 0);
}

TEST_F(GroupOpener, Takes_names_of_any_length)
{
    const std::string deep = std::string(3000, 'x') + "/" + std::string(3000, 'y');
    EXPECT_EQ(status_of(deep, 0), 2);
    EXPECT_EQ(status_of(deep, 2), 0);
}

TEST_F(GroupOpener, Refuses_an_empty_terminated_name)
{
    GroupCall call{file_.handle(), "", 0};
    EXPECT_EQ(errors_of([&] { call.run(-1); }), "KOB ERROR - kob_h5gopen - invalid name, string must \\0 terminated\n");
    EXPECT_EQ(call.status, -50);
    EXPECT_EQ(call.handle, -1);
}

TEST_F(GroupOpener, Refuses_the_length_0)
{
    GroupCall call{file_.handle(), "a", 0};
    EXPECT_EQ(errors_of([&] { call.run(0); }),
              "KOB ERROR - kob_h5gopen - invalid len=0 must >0 or -1 for \\0 terminated strings\n");
    EXPECT_EQ(call.status, -40);
    EXPECT_EQ(call.handle, -1);
    EXPECT_THAT(link_names(file_.handle()), ElementsAre());
}

TEST_F(GroupOpener, Refuses_other_negative_lengths_in_the_same_way)
{
    GroupCall call{file_.handle(), "a", 0};
    EXPECT_EQ(errors_of([&] { call.run(-2); }),
              "KOB ERROR - kob_h5gopen - invalid len=-2 must >0 or -1 for \\0 terminated strings\n");
    EXPECT_EQ(call.status, -40);
    EXPECT_EQ(call.handle, -1);
}

TEST_F(GroupOpener, Refuses_an_unknown_ioflag)
{
    status_of("a", 0);
    for (const std::int32_t ioflag : {3, -1, 100})
        EXPECT_EQ(message_of("a", ioflag, -30),
                  "KOB ERROR - kob_h5gopen - invalid ioflag " + std::to_string(ioflag) + "\n");
}

TEST_F(GroupOpener, Opens_only_what_is_there_with_ioflag_1_and_2)
{
    status_of("a/b", 0);
    for (const std::int32_t ioflag : {1, 2}) {
        EXPECT_EQ(status_of("a/b", ioflag), 0);
        for (const auto* missing : {"x", "a/x", "x/b", "a/x/y", "a/b/x"})
            EXPECT_EQ(message_of(missing, ioflag, -1), "") << missing;
    }
    EXPECT_THAT(link_names(open_group(file_.handle(), "a")), ElementsAre("b")) << "nothing was created";
}

TEST_F(GroupOpener, Names_the_level_that_cannot_be_created)
{
    status_of("a", 0);
    file_.reopen(read_only_root);
    EXPECT_EQ(message_of("n/m/o", 0, -8), "KOB ERROR - kob_h5gopen - code -8, group n\n");
    EXPECT_EQ(status_of("a", 0), 0) << "what is there needs no write access";
}

TEST_F(GroupOpener, Cannot_create_below_a_dataset)
{
    put_dataset(file_.handle(), "numbers", H5T_STD_I32LE, {2});
    EXPECT_THAT(message_of("numbers/x", 0, -8), StartsWith("KOB ERROR - kob_h5gopen - code -8, group "));
}

TEST_F(GroupOpener, Cannot_open_a_dataset)
{
    put_dataset(file_.handle(), "numbers", H5T_STD_I32LE, {2});
    EXPECT_EQ(message_of("numbers", 0, -10), "KOB ERROR - kob_h5gopen - code -10, group numbers\n");
    EXPECT_EQ(message_of("numbers", 1, -20), "KOB ERROR - kob_h5gopen - code -20, group \"numbers\"\n");
    EXPECT_EQ(message_of("numbers", 2, -20), "KOB ERROR - kob_h5gopen - code -20, group numbers\n");
}

TEST_F(GroupOpener, Tells_a_link_that_leads_nowhere_from_one_that_is_missing)
{
    H5Lcreate_soft("/nowhere", file_.handle(), "lost", H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_EQ(message_of("lost", 1, -20), "KOB ERROR - kob_h5gopen - code -20, group \"lost\"\n");
    EXPECT_EQ(message_of("lost", 2, -20), "KOB ERROR - kob_h5gopen - code -20, group lost\n");
    EXPECT_EQ(message_of("lost", 0, -10), "KOB ERROR - kob_h5gopen - code -10, group lost\n");
    EXPECT_THAT(message_of("lost/x", 0, -8), StartsWith("KOB ERROR - kob_h5gopen - code -8, group lost"));
    H5Lcreate_external("no_such_file.kob", "/", file_.handle(), "outside", H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_EQ(message_of("outside", 1, -20), "KOB ERROR - kob_h5gopen - code -20, group \"outside\"\n");
}

TEST_F(GroupOpener, Follows_a_link_to_a_group)
{
    status_of("a/b", 0);
    H5Lcreate_soft("/a", file_.handle(), "way", H5P_DEFAULT, H5P_DEFAULT);
    for (const std::int32_t ioflag : {0, 1, 2}) EXPECT_EQ(status_of("way/b", ioflag), 0);
    EXPECT_EQ(status_of("way/c", 0), 1);
}

TEST_F(GroupOpener, Fails_with_a_parent_that_is_none)
{
    for (const std::int64_t parent : {std::int64_t{-1}, std::int64_t{0}, std::int64_t{12345}}) {
        for (const std::int32_t ioflag : {0, 1, 2}) {
            GroupCall call{parent, "a", ioflag};
            errors_of([&] { call.run(); });
            EXPECT_LT(call.status, 0);
            EXPECT_EQ(call.handle, -1);
        }
    }
}

TEST_F(GroupOpener, Leaves_nothing_open_but_the_group)
{
    const auto before = OpenIdentifiers::now();
    auto call = GroupCall{file_.handle(), "a/b/c/d", 0}.run();
    EXPECT_EQ(OpenIdentifiers::now().added_since(before), "group: 1");
    EXPECT_EQ(close_group(call.handle), 0);
    EXPECT_EQ(OpenIdentifiers::now().added_since(before), "");
}

TEST_F(GroupOpener, Closes_one_group_once)
{
    auto call = GroupCall{file_.handle(), "a", 0}.run();
    EXPECT_EQ(close_group(call.handle), 0);
    CapturedStream captured;
    EXPECT_EQ(close_group(call.handle), -1);
    EXPECT_EQ(close_group(-1), -1);
    EXPECT_EQ(captured.err(), "");
    put_dataset(file_.handle(), "numbers", H5T_STD_I32LE, {2});
    const Hid dataset{H5Dopen2(file_.handle(), "numbers", H5P_DEFAULT)};
    EXPECT_EQ(close_group(dataset), -1) << "a dataset is no group";
}

} // namespace
