// SPDX-License-Identifier: BSD-3-Clause
// The main program of every test executable.
#include <gtest/gtest.h>

#include "identifiers.hpp"

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    kob_test::check_identifiers_after_each_test();
    return RUN_ALL_TESTS();
}
