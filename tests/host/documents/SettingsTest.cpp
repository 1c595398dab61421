// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TemporaryFolder.h"

#include "host/documents/hoSettings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

#include <sys/stat.h>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

// Where the settings are with these variables; null: it is not set.
gtString settingsPath(const char* pConfigHome, const char* pHome)
{
    std::vector<std::pair<const char*, std::optional<std::string>>> before;
    const auto set = [](const char* pName, const char* pValue)
    {
        if (pValue == nullptr)
        {
            unsetenv(pName);
        }
        else
        {
            setenv(pName, pValue, 1);
        }
    };
    for (const auto& [pName, pValue] : {std::pair("XDG_CONFIG_HOME", pConfigHome), std::pair("HOME", pHome)})
    {
        const char* const pOld = std::getenv(pName);
        before.emplace_back(pName, pOld == nullptr ? std::nullopt : std::optional<std::string>(pOld));
        set(pName, pValue);
    }
    gtString path = hoUserSettingsPath();
    for (const auto& [pName, value] : before)
    {
        set(pName, value.has_value() ? value->c_str() : nullptr);
    }
    return path;
}
}  // namespace

TEST(SettingsPath, IsInTheFolderForThem)
{
    EXPECT_EQ(settingsPath("/config of mine", "/home/me"), "/config of mine/countersign/settings");
    EXPECT_EQ(settingsPath("/config", nullptr), "/config/countersign/settings");
    EXPECT_EQ(settingsPath(nullptr, "/home/me"), "/home/me/.config/countersign/settings");
}

TEST(SettingsPath, IsInTheHomeFolderWhereNoAbsoluteOneIsSaid)
{
    for (const char* pFolder : {"", "config", "./config", "~/config"})
    {
        EXPECT_EQ(settingsPath(pFolder, "/home/me"), "/home/me/.config/countersign/settings") << pFolder;
    }
}

TEST(SettingsPath, IsNoneWithoutAHomeFolder)
{
    EXPECT_TRUE(settingsPath(nullptr, nullptr).isEmpty());
    EXPECT_TRUE(settingsPath("config", "").isEmpty());
    EXPECT_TRUE(settingsPath("", "home").isEmpty());
}

TEST(Settings, ComeBackFromTheFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("new/folder/settings");
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
    {
        bytes += static_cast<char>(byte);
    }
    hoSettings written;
    written.setText("window.bytes", bytes);
    written.setText("empty", "");
    written.setNumber("width", -12);
    written.setTexts("recent", {"/a=b", "/c\nd"});
    ASSERT_TRUE(written.save(path));

    hoSettings read;
    read.setText("forgotten", "x");
    ASSERT_TRUE(read.load(path));
    EXPECT_EQ(read.text("window.bytes"), bytes);
    EXPECT_EQ(read.text("empty", "fallback"), "");
    EXPECT_EQ(read.text("forgotten", "fallback"), "fallback");
    EXPECT_EQ(read.number("width", 0, -100, 100), -12);
    EXPECT_THAT(read.texts("recent"), ElementsAre("/a=b", "/c\nd"));

    struct stat entry;
    ASSERT_EQ(stat(path.c_str(), &entry), 0);
    EXPECT_EQ(entry.st_mode & 0777, 0600U);
}

TEST(Settings, NumbersOutsideTheirRangeAreDefaults)
{
    hoSettings settings;
    for (const char* value : {"", "x", "12x", "101", "-1", "99999999999999999999999"})
    {
        settings.setText("n", value);
        EXPECT_EQ(settings.number("n", 7, 0, 100), 7) << value;
    }
    settings.setText("n", "100");
    EXPECT_EQ(settings.number("n", 7, 0, 100), 100);
}

TEST(Settings, AShorterListLeavesNothingBehind)
{
    hoSettings settings;
    settings.setTexts("recent", {"a", "b", "c"});
    settings.setTexts("recent", {"d"});
    EXPECT_THAT(settings.texts("recent"), ElementsAre("d"));
    settings.setTexts("recent", {});
    EXPECT_THAT(settings.texts("recent"), IsEmpty());
}

// More than nine, whose names are in another order than their numbers.
TEST(Settings, ListsKeepTheirOrder)
{
    const TemporaryFolder folder;
    std::vector<gtString> values;
    for (int i = 0; i < 12; ++i)
    {
        values.emplace_back("/document " + std::to_string(i));
    }
    hoSettings settings;
    settings.setTexts("recent", values);
    settings.setText("recent.14", "behind a gap");
    settings.setText("recent.of", "no number");
    ASSERT_TRUE(settings.save(folder.path("settings")));
    ASSERT_TRUE(settings.load(folder.path("settings")));
    EXPECT_EQ(settings.texts("recent"), values);
}

TEST(Settings, AnUnreadableFileIsNoError)
{
    const TemporaryFolder folder;
    hoSettings settings;
    settings.setText("old", "x");
    EXPECT_FALSE(settings.load(folder.path("missing")));
    EXPECT_EQ(settings.text("old"), "");
    EXPECT_FALSE(settings.load(folder.path()));
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(settings.load(folder.path("pipe")));
    EXPECT_FALSE(settings.load(folder.write("large", std::string(2 * 1024 * 1024, '\n'))));
    EXPECT_TRUE(settings.load(folder.write("odd", std::string("\0\xff\n=x\nnoequals\nn=1\r\nm=2", 23))));
    EXPECT_EQ(settings.text("m"), "2");
}

TEST(Settings, AFailedSaveLeavesTheOldFileAndNothingElse)
{
    const TemporaryFolder folder;
    hoSettings settings;
    settings.setText("a", "1");
    EXPECT_FALSE(settings.save(folder.write("file", "x") + "/settings"));
    std::filesystem::create_directories(folder.path("taken/inside"));
    EXPECT_FALSE(settings.save(folder.path("taken")));
    int entries = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
    {
        entries += entry.exists() ? 1 : 0;
    }
    EXPECT_EQ(entries, 2);
}
