// SPDX-License-Identifier: BSD-3-Clause
// External links: what is linked, where it leads, and the lines with their two forms of quotes.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>
#include <kob_dp.h>

#include "captured_stream.hpp"
#include "hdf5_file.hpp"
#include "kob_file.hpp"
#include "sample_file.hpp"
#include "series_block.hpp"

namespace {

using namespace kob_test;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const std::string head = "\n"
                         "     +------------------------------------------------------+\n"
                         "     |  KOB Tools                                           |\n"
                         "     +------------------------------------------------------+\n"
                         "      Version: 2.2.16\n"
                         "\n\n";
const std::string tail = "\n KOB external links successfully created.\n\n";

struct Linked {
    std::int32_t status = 77;
    std::string out;
    std::string err;
};

struct How {
    std::string name = "";
    std::int32_t options = 0;
    std::int32_t verbose = 0;
};

Linked create_links(const std::vector<std::int64_t>& sources, std::int64_t target, const How& how = {})
{
    Text256 name = how.name;
    const auto n = static_cast<std::int32_t>(sources.size());
    Linked result;
    CapturedStream captured;
    KOB_CREATE_EXTLINKS(sources.data(), &target, &n, name.data(), &how.options, &how.verbose, &result.status);
    result.out = captured.out();
    result.err = captured.err();
    return result;
}

struct Destination {
    std::string file;
    std::string object;
    friend bool operator==(const Destination&, const Destination&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Destination& d)
    {
        return out << d.file << " : " << d.object;
    }
};

Destination destination_of(hid_t group, const std::string& name)
{
    H5L_info2_t info{};
    EXPECT_GE(H5Lget_info2(group, name.c_str(), &info, H5P_DEFAULT), 0) << name;
    EXPECT_EQ(info.type, H5L_TYPE_EXTERNAL) << name;
    if (info.type != H5L_TYPE_EXTERNAL) return {};
    std::string value(info.u.val_size, '\0');
    EXPECT_GE(H5Lget_val(group, name.c_str(), value.data(), value.size(), H5P_DEFAULT), 0);
    unsigned flags = 0;
    const char* file = nullptr;
    const char* object = nullptr;
    EXPECT_GE(H5Lunpack_elink_val(value.data(), value.size(), &flags, &file, &object), 0);
    return {file, object};
}

/// A file whose root group holds these groups.
class GroupFile : public KobFile {
public:
    explicit GroupFile(const std::vector<std::string>& names) : KobFile{create_empty}
    {
        for (const std::string& name : names) create_group(handle(), name);
    }
};

TEST(CreateExtlinks, EveryLinkOfTheSourceIsShown)
{
    SampleFile source;
    source.reopen(read_only);
    KobFile target;
    const Linked linked = create_links({source.handle()}, target.handle());
    EXPECT_EQ(linked.status, 0);
    EXPECT_EQ(linked.err, "");
    EXPECT_EQ(linked.out, head + tail) << "the banner does not depend on the verbosity";
    EXPECT_EQ(link_names(target.handle()), link_names(source.handle()));
    // The path is the one by which the source was opened.
    EXPECT_EQ(destination_of(target.handle(), "constant"), (Destination{source.path(), "/post/constant"}));
    const std::vector<std::string> paths = block_paths(source.handle());
    source.close();
    EXPECT_EQ(block_paths(target.handle()), paths);
}

TEST(CreateExtlinks, ARootGroupGivesNoDoubledSlash)
{
    GroupFile source{{"a", "b"}};
    KobFile target;
    const Linked linked = create_links({source.handle()}, target.handle(), {.verbose = 1});
    EXPECT_EQ(linked.status, 0);
    EXPECT_EQ(destination_of(target.handle(), "a"), (Destination{source.path(), "/a"}));
    EXPECT_EQ(linked.out, head + "create link \"a\" --> file/group:  \"" + source.path() +
                              "\"\"/a\"\ncreate link \"b\" --> file/group:  \"" + source.path() + "\"\"/b\"\n" + tail);
}

TEST(CreateExtlinks, TheLinesOfANamedGroupHaveOneQuoteLess)
{
    GroupFile source{{"a"}};
    KobFile target;
    const Linked linked = create_links({source.handle()}, target.handle(), {.name = "all", .options = 1, .verbose = 1});
    EXPECT_EQ(linked.out, head + "create link \"all/a\" --> file/group:  \"" + source.path() + "/a\"\n" + tail);
    EXPECT_EQ(linked.err, "");
}

TEST(CreateExtlinks, ANamedGroupIsCreatedAndTheStatusCountsTheGroups)
{
    GroupFile source{{"a"}};
    KobFile target;
    EXPECT_EQ(create_links({source.handle()}, target.handle(), {.name = "run/parts", .options = 1}).status, 2);
    EXPECT_EQ(destination_of(open_group(target.handle(), "run/parts"), "a"), (Destination{source.path(), "/a"}));
    GroupFile other{{"b"}};
    EXPECT_EQ(create_links({other.handle()}, target.handle(), {.name = "run/parts", .options = 1}).status, 0);
    EXPECT_THAT(link_names(open_group(target.handle(), "run/parts")), ElementsAre("a", "b"));
}

TEST(CreateExtlinks, TheNameEndsAtANul)
{
    GroupFile source{{"a"}};
    KobFile target;
    create_links({source.handle()}, target.handle(), {.name = std::string("run\0hidden", 10), .options = 1});
    EXPECT_THAT(link_names(target.handle()), ElementsAre("run"));
}

TEST(CreateExtlinks, TheNameIsIgnoredWithoutTheOption)
{
    GroupFile source{{"a"}};
    KobFile target;
    EXPECT_EQ(create_links({source.handle()}, target.handle(), {.name = "run", .options = 6}).status, 0);
    EXPECT_THAT(link_names(target.handle()), ElementsAre("a"));
}

TEST(CreateExtlinks, PostIsNeverLinked)
{
    GroupFile only_post{{"post"}};
    KobFile target;
    const Linked linked = create_links({only_post.handle()}, target.handle(), {.verbose = 1});
    EXPECT_EQ(linked.out, head + tail);
    EXPECT_THAT(link_names(target.handle()), IsEmpty());
    GroupFile others{{"post", "post2", "poster", "Post"}};
    create_links({others.handle()}, target.handle());
    EXPECT_THAT(link_names(target.handle()), ElementsAre("Post", "post2", "poster"));
}

TEST(CreateExtlinks, SoftAndDanglingLinksAreShownToo)
{
    GroupFile source{{"a"}};
    ASSERT_GE(H5Lcreate_soft("/a", source.handle(), "soft", H5P_DEFAULT, H5P_DEFAULT), 0);
    ASSERT_GE(H5Lcreate_soft("/nowhere", source.handle(), "dangling", H5P_DEFAULT, H5P_DEFAULT), 0);
    KobFile target;
    const Linked linked = create_links({source.handle()}, target.handle());
    EXPECT_EQ(linked.err, "");
    EXPECT_THAT(link_names(target.handle()), ElementsAre("a", "dangling", "soft"));
    EXPECT_EQ(destination_of(target.handle(), "dangling"), (Destination{source.path(), "/dangling"}));
}

TEST(CreateExtlinks, ATakenNameIsReportedAndTheOthersAreStillLinked)
{
    GroupFile source{{"a", "b", "c"}};
    KobFile target;
    const Hid mine = create_group(target.handle(), "b");
    const Linked linked = create_links({source.handle()}, target.handle());
    EXPECT_EQ(linked.status, 0);
    EXPECT_EQ(linked.err, "\nKOB ERROR - could not create external link \"b\"\n");
    EXPECT_EQ(linked.out, head + tail);
    EXPECT_EQ(destination_of(target.handle(), "c"), (Destination{source.path(), "/c"}));
}

TEST(CreateExtlinks, OfSourcesThatShareANameTheFirstWins)
{
    GroupFile first{{"a", "same"}};
    GroupFile second{{"b", "same"}};
    GroupFile third{{"same"}};
    KobFile target;
    const Linked linked = create_links({first.handle(), second.handle(), third.handle()}, target.handle());
    const std::string line = "\nKOB ERROR - could not create external link \"same\"\n";
    EXPECT_EQ(linked.status, 0);
    EXPECT_EQ(linked.err, line + line);
    EXPECT_EQ(destination_of(target.handle(), "same"), (Destination{first.path(), "/same"}));
    EXPECT_THAT(link_names(target.handle()), ElementsAre("a", "b", "same"));
}

TEST(CreateExtlinks, NoSourcesAreNoError)
{
    for (const std::int32_t n : {0, -1}) {
        KobFile target;
        const std::int32_t options = 1, verbose = 1;
        const std::int64_t none = -1;
        Text256 name = "run";
        std::int32_t status = 77;
        CapturedStream captured;
        KOB_CREATE_EXTLINKS(&none, target.address(), &n, name.data(), &options, &verbose, &status);
        EXPECT_EQ(captured.out(), head + tail);
        EXPECT_EQ(captured.err(), "");
        EXPECT_EQ(status, 1) << "the group is made";
        EXPECT_THAT(link_names(target.handle()), ElementsAre("run"));
    }
}

TEST(CreateExtlinks, AGroupThatCannotBeMadeGivesItsErrorAndALineForEachLink)
{
    GroupFile source{{"a", "b"}};
    KobFile target;
    target.reopen(read_only);
    const Linked linked = create_links({source.handle()}, target.handle(), {.name = "run", .options = 1});
    EXPECT_LT(linked.status, 0);
    EXPECT_THAT(linked.err, EndsWith("\nKOB ERROR - could not create external link \"a\"\n"
                                     "\nKOB ERROR - could not create external link \"b\"\n"));
    EXPECT_EQ(linked.out, head + tail);
}

TEST(CreateExtlinks, AReadOnlyTargetGivesALineForEachLink)
{
    GroupFile source{{"a", "b"}};
    KobFile target;
    target.reopen(read_only);
    const Linked linked = create_links({source.handle()}, target.handle());
    EXPECT_EQ(linked.status, 0);
    EXPECT_EQ(linked.err, "\nKOB ERROR - could not create external link \"a\"\n"
                          "\nKOB ERROR - could not create external link \"b\"\n");
}

TEST(CreateExtlinks, NothingStaysOpen)
{
    GroupFile source{{"a"}};
    KobFile target;
    EXPECT_EQ(left_open_by([&] { create_links({source.handle()}, target.handle(), {.name = "run", .options = 1}); }),
              "");
}

TEST(CreateExtlinks, ALongNameOfAGroupIsTakenWhole)
{
    GroupFile source{{"a"}};
    KobFile target;
    const std::string longest(256, 'g');
    EXPECT_EQ(create_links({source.handle()}, target.handle(), {.name = longest, .options = 1}).status, 1);
    EXPECT_THAT(link_names(target.handle()), ElementsAre(longest));
}

} // namespace
