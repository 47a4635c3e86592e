// SPDX-License-Identifier: BSD-3-Clause
// The helpers that other tests lean on: captured streams, the census of identifiers, the layout listing.
#include <array>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>

#include <gtest/gtest.h>
#include <hdf5.h>

#include "support/captured_stream.hpp"
#include "support/hdf5_file.hpp"
#include "support/identifiers.hpp"
#include "support/layout.hpp"
#include "support/temp_file.hpp"
#include "support/text256.hpp"

using namespace kob_test;

TEST(Support, A_text_field_is_blank_padded_and_an_array_of_them_lies_end_to_end)
{
    const Text256 field{"NODE"};
    EXPECT_EQ(field.field(), "NODE" + std::string(252, ' '));
    EXPECT_EQ(field.text(), "NODE");
    Texts256 fields{"x", "yz"};
    EXPECT_EQ(std::string(fields.data() + 256, 3), "yz ");
}

TEST(Support, The_two_streams_are_captured_by_themselves)
{
    CapturedStream captured;
    std::printf("to out\n");
    std::cout << "and more\n";
    std::fprintf(stderr, "to err\n");
    EXPECT_EQ(captured.err(), "to err\n");
    EXPECT_EQ(captured.out(), "to out\nand more\n");
}

TEST(Support, A_temporary_folder_is_gone_after_its_scope)
{
    std::filesystem::path path;
    {
        const TempDir dir;
        path = dir.path();
        create_file(dir / "a.h5");
        EXPECT_TRUE(std::filesystem::exists(path / "a.h5"));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(Support, The_census_sees_types_spaces_and_property_lists)
{
    std::array<hid_t, 4> ids{};
    EXPECT_EQ(left_open_by([&] {
                  ids = {H5Tcopy(H5T_C_S1), H5Screate(H5S_SCALAR), H5Screate(H5S_NULL), H5Pcreate(H5P_DATASET_CREATE)};
              }),
              "datatype: 1, dataspace: 2, property list: 1");
    for (const auto id : ids) H5Idec_ref(id);
}

TEST(Support, The_layout_names_type_shape_storage_and_filters)
{
    const TempFile temp;
    const auto file = create_file(temp.path());
    put_attribute(file, "title", text_type(12), {});
    put_attribute(file, "codes", H5T_STD_I64BE, {3});
    put_dataset(file, "small", H5T_IEEE_F32LE, {2, 3});
    const Hid packed{H5Pcreate(H5P_DATASET_CREATE)};
    const std::array<hsize_t, 2> chunk{10, 3};
    const std::int32_t fill = 10000;
    H5Pset_chunk(packed, 2, chunk.data());
    H5Pset_fill_value(packed, H5T_NATIVE_INT32, &fill);
    H5Pset_scaleoffset(packed, H5Z_SO_INT, 0);
    H5Pset_shuffle(packed);
    H5Pset_deflate(packed, 6);
    put_dataset(file, "packed", H5T_STD_I32LE, {10, 3}, H5I_INVALID_HID, nullptr, packed);
    create_group(file, "inner");
    H5Lcreate_soft("/inner", file, "post", H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_EQ(layout_of(file), table({
                                   "attribute title text 12 space scalar",
                                   "attribute codes integer 8 big [3]",
                                   "dataset small float 4 little [2, 3] max [2, 3] contiguous nocontent",
                                   "dataset packed integer 4 little [10, 3] max [10, 3] chunked [10, 3] "
                                   "scaleoffset(integer 0) shuffle deflate(6)(optional) fill 10000 nocontent",
                                   "group inner",
                                   "soft link post",
                               }));
}
