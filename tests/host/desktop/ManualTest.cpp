// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TemporaryFolder.h"

#include "host/desktop/hoManual.h"

#include <gtest/gtest.h>

TEST(Manual, IsFoundWhereItIsInstalled)
{
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path("usr/share/doc/countersign"));
    const std::string manual = folder.write("usr/share/doc/countersign/manual.html", "x");
    EXPECT_EQ(hoManualPath(folder.path("usr/bin/program")), manual);
    EXPECT_EQ(hoManualPath(folder.path("usr/lib/some-machine/countersign/program")), manual);
    EXPECT_EQ(hoManualPath(folder.path("other/bin/program")), "");
}

TEST(Manual, IsFoundInTheSources)
{
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path("docs"));
    const std::string manual = folder.write("docs/manual.html", "x");
    EXPECT_EQ(hoManualPath(folder.path("build/release/bin/program")), "");  // somebody else's
    std::filesystem::create_directories(folder.path("desktop"));
    folder.write("desktop/org.countersign.Countersign.desktop", "x");
    EXPECT_EQ(hoManualPath(folder.path("build/release/bin/program")), manual);
}

TEST(Manual, IsTheNearest)
{
    const TemporaryFolder folder;
    for (const char* pFolder : {"share/doc/countersign", "inner/share/doc/countersign"})
    {
        std::filesystem::create_directories(folder.path(pFolder));
    }
    folder.write("share/doc/countersign/manual.html", "far");
    const std::string near = folder.write("inner/share/doc/countersign/manual.html", "near");
    EXPECT_EQ(hoManualPath(folder.path("inner/bin/program")), near);
}

TEST(Manual, IsNowhere)
{
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path("share/doc/countersign/manual.html"));  // a folder
    EXPECT_EQ(hoManualPath(folder.path("bin/program")), "");
    EXPECT_EQ(hoManualPath("/program"), "");
    EXPECT_EQ(hoManualPath(""), "");
    EXPECT_EQ(hoManualPath("bin/program"), "");
}
