// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoRecentDocuments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace
{
std::vector<std::string> plain(const hoRecentDocuments& recent)
{
    std::vector<std::string> found;
    for (const gtString& path : recent.paths())
    {
        found.emplace_back(path.asCharArray());
    }
    return found;
}
}  // namespace

TEST(RecentDocuments, HaveTheNewestFirstAndEachOnce)
{
    hoRecentDocuments recent;
    for (const char* path : {"/a", "/b", "/a", "", "/c", "/b"})
    {
        recent.add(path);
    }
    EXPECT_THAT(plain(recent), testing::ElementsAre("/b", "/c", "/a"));
    EXPECT_TRUE(recent.remove("/c"));
    EXPECT_FALSE(recent.remove("/c"));
    EXPECT_FALSE(recent.remove("/nothing"));
    EXPECT_THAT(plain(recent), testing::ElementsAre("/b", "/a"));
    recent.add(recent.paths()[1]);
    EXPECT_THAT(plain(recent), testing::ElementsAre("/a", "/b"));
    recent.remove(recent.paths()[0]);
    EXPECT_THAT(plain(recent), testing::ElementsAre("/b"));
    recent.clear();
    EXPECT_THAT(recent.paths(), testing::IsEmpty());
}

TEST(RecentDocuments, AreLimited)
{
    hoRecentDocuments recent;
    for (int i = 0; i < 25; ++i)
    {
        recent.add(std::to_string(i).c_str());
    }
    ASSERT_EQ(recent.paths().size(), hoRecentDocuments::mostDocuments);
    EXPECT_STREQ(recent.paths().front().asCharArray(), "24");
    EXPECT_STREQ(recent.paths().back().asCharArray(), "15");
}
