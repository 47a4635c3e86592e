// SPDX-License-Identifier: BSD-3-Clause
// Links of a group found in one look.
#include "kob_group_links.hpp"

#include "kob_storage.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>

#include "support/captured_stream.hpp"
#include "support/chunked_dataset.hpp"
#include "support/file_size_limit.hpp"
#include "support/hdf5_file.hpp"
#include "support/identifiers.hpp"
#include "support/temp_file.hpp"

using namespace kob_test;
using kob::GroupLinks;

namespace {

class Links : public testing::Test {
protected:
    TempFile path_{"links.h5"};
    Hid file_ = create_file(path_.path());

    void put(hid_t group, const std::string& name) { put_dataset(group, name, H5T_NATIVE_INT, {3}); }
};

bool is_dataset(const kob::Id& id) { return id && H5Iget_type(id.get()) == H5I_DATASET; }

} // namespace

TEST_F(Links, Those_that_are_there_are_found_and_opened)
{
    put(file_, "entid");
    put(file_, "res");
    put(file_, "resume");
    const GroupLinks links{file_, {"entid", "indexident", "res"}};
    EXPECT_TRUE(links.knows(file_));
    EXPECT_TRUE(links.has("entid"));
    EXPECT_TRUE(links.has("res"));
    EXPECT_FALSE(links.has("indexident"));
    EXPECT_TRUE(is_dataset(links.open("res")));
    EXPECT_FALSE(links.open("indexident"));
    const Hid expected{H5Dopen2(file_, "res", H5P_DEFAULT)};
    const kob::Id opened = links.open("res");
    H5O_info2_t one{};
    H5O_info2_t other{};
    ASSERT_GE(H5Oget_info3(expected, &one, H5O_INFO_BASIC), 0);
    ASSERT_GE(H5Oget_info3(opened.get(), &other, H5O_INFO_BASIC), 0);
    int difference = 1;
    ASSERT_GE(H5Otoken_cmp(file_, &one.token, &other.token, &difference), 0);
    EXPECT_EQ(difference, 0);
}

TEST_F(Links, Another_group_is_not_known)
{
    put(file_, "res");
    const Hid group = create_group(file_, "other");
    EXPECT_FALSE((GroupLinks{file_, {"res"}}.knows(group)));
}

TEST_F(Links, Soft_links_are_followed)
{
    const Hid group = create_group(file_, "there");
    put(group, "res");
    ASSERT_GE(H5Lcreate_soft("/there/res", file_, "res", H5P_DEFAULT, H5P_DEFAULT), 0);
    ASSERT_GE(H5Lcreate_soft("/nowhere", file_, "entid", H5P_DEFAULT, H5P_DEFAULT), 0);
    const GroupLinks links{file_, {"res", "entid"}};
    EXPECT_TRUE(is_dataset(links.open("res")));
    EXPECT_TRUE(links.has("entid"));
    const QuietHdf5 quiet;
    EXPECT_FALSE(links.open("entid"));
}

// It is opened by where it lies, as a dataset would be; a write says the same of it as where it is opened by name.
TEST_F(Links, What_is_no_dataset_is_refused_by_a_write)
{
    create_group(file_, "res");
    const Hid type{H5Tcopy(H5T_NATIVE_INT)};
    ASSERT_GE(H5Tcommit2(file_, "entid", type, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), 0);
    const GroupLinks links{file_, {"res", "entid"}};
    const std::array<std::int32_t, 3> values{1, 2, 3};
    const std::array<hsize_t, 1> dims{3};
    const std::array<std::int32_t, 2> params{};
    const QuietHdf5 quiet;
    const auto write = [&](const char* name, const GroupLinks* found, std::int32_t& result) {
        return errors_of([&] {
            result = kob::KOB_H5Dwrite(name, values.data(), kob::type_code::integer, 4, 4, dims.data(), 1, nullptr,
                                       nullptr, kob::access_mode::whole, file_, 0, params.data(), {.links = found});
        });
    };
    for (const char* name : {"res", "entid"}) {
        EXPECT_TRUE(links.has(name));
        EXPECT_FALSE(is_dataset(links.open(name)));
        std::int32_t by_link = 0;
        std::int32_t by_name = 0;
        EXPECT_EQ(left_open_by([&] { EXPECT_EQ(write(name, &links, by_link), write(name, nullptr, by_name)); }), "");
        EXPECT_EQ(by_link, by_name);
        EXPECT_LT(by_link, 0);
    }
}

TEST_F(Links, A_group_is_opened_while_its_links_are_looked_for)
{
    const Hid group = create_group(create_group(file_, "outer"), "inner");
    put(group, "res");
    EXPECT_EQ(left_open_by([&] {
                  GroupLinks links{file_, "outer/inner", {"entid", "res"}};
                  const kob::Id opened = links.release_group();
                  ASSERT_TRUE(opened);
                  EXPECT_TRUE(links.knows(opened.get()));
                  EXPECT_FALSE(links.knows(group));
                  EXPECT_FALSE(links.has("entid"));
                  EXPECT_TRUE(is_dataset(links.open("res")));
                  EXPECT_EQ(H5Iget_type(opened.get()), H5I_GROUP);
                  EXPECT_EQ(H5Iget_ref(opened.get()), 1);
                  EXPECT_GT(H5Lexists(opened.get(), "res", H5P_DEFAULT), 0);
              }),
              "");
}

TEST_F(Links, A_group_that_nobody_takes_is_closed)
{
    put(create_group(file_, "group"), "res");
    EXPECT_EQ(left_open_by([&] { EXPECT_TRUE((GroupLinks{file_, "group", {"res"}}.has("res"))); }), "");
}

TEST_F(Links, No_group_is_opened_where_there_is_none)
{
    create_group(file_, "empty");
    put(file_, "res");
    const QuietHdf5 quiet;
    for (const char* path : {"empty", "res", "missing", "missing/too", ""}) {
        EXPECT_EQ(left_open_by([&] {
                      GroupLinks links{file_, path, {"res"}};
                      EXPECT_FALSE(links.release_group()) << path;
                      EXPECT_FALSE(links.has("res")) << path;
                  }),
                  "");
    }
}

TEST_F(Links, A_group_of_many_links_is_opened_all_the_same)
{
    const Hid group = create_group(file_, "group");
    for (int i = 0; i < 40; ++i) put(group, "a" + std::to_string(i));
    const QuietHdf5 quiet;
    GroupLinks links{file_, "group", {"res"}};
    const kob::Id opened = links.release_group();
    EXPECT_TRUE(opened);
    EXPECT_TRUE(links.is_of(opened.get()));
    EXPECT_FALSE(links.knows(opened.get()));
}

TEST_F(Links, A_group_of_many_links_is_left_to_searches_by_name)
{
    for (int i = 0; i < 40; ++i) put(file_, "a" + std::to_string(i));
    put(file_, "res");
    const QuietHdf5 quiet;
    EXPECT_FALSE((GroupLinks{file_, {"res"}}.knows(file_)));
}

TEST_F(Links, Links_in_the_order_of_their_making_are_found)
{
    const Hid list{H5Pcreate(H5P_GROUP_CREATE)};
    ASSERT_GE(H5Pset_link_creation_order(list, H5P_CRT_ORDER_TRACKED | H5P_CRT_ORDER_INDEXED), 0);
    const Hid group{H5Gcreate2(file_, "ordered", H5P_DEFAULT, list, H5P_DEFAULT)};
    put(group, "res");
    put(group, "entid");
    const GroupLinks links{group, {"entid", "res"}};
    EXPECT_TRUE(links.knows(group));
    EXPECT_TRUE(is_dataset(links.open("res")));
    EXPECT_TRUE(is_dataset(links.open("entid")));
}

TEST_F(Links, No_group_is_not_known)
{
    const QuietHdf5 quiet;
    EXPECT_FALSE((GroupLinks{H5I_INVALID_HID, {"res"}}.knows(H5I_INVALID_HID)));
}

// HDF5 keeps the values in its buffer until the close, which is where it learns of the full disk. The dataset is closed
// all the same.
TEST_F(Links, A_dataset_that_a_full_disk_fails_to_close_is_not_left_open)
{
    put(file_, "res");
    const GroupLinks links{file_, {"res"}};
    const std::array<std::int32_t, 3> values{1, 2, 3};
    const std::array<hsize_t, 1> dims{3};
    const std::array<std::int32_t, 2> params{};
    std::int32_t result = 77;
    std::string line;
    const QuietHdf5 quiet;
    EXPECT_EQ(left_open_by([&] {
                  const FileSizeLimit limit{100};
                  line = errors_of([&] {
                      result = kob::KOB_H5Dwrite("res", values.data(), kob::type_code::integer, 4, 4, dims.data(), 1,
                                                 nullptr, nullptr, kob::access_mode::whole, file_, 0, params.data(),
                                                 {.links = &links});
                  });
              }),
              "");
    EXPECT_EQ(result, -3999);
    EXPECT_EQ(line.rfind("KOB INTERNAL ERROR (999) in KOB_H5Dwrite - ", 0), 0U) << line;
}
