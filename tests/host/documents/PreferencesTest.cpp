// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoPreferences.h"

#include <gtest/gtest.h>

namespace
{
void expectSame(const hoPreferences& preferences, const hoPreferences& wanted)
{
    EXPECT_EQ(preferences._isPlaceRemembered, wanted._isPlaceRemembered);
    EXPECT_EQ(preferences._areRecentRemembered, wanted._areRecentRemembered);
    EXPECT_EQ(preferences._isKeyOffered, wanted._isKeyOffered);
    EXPECT_EQ(preferences._signedDocuments, wanted._signedDocuments);
    EXPECT_EQ(preferences._jobs, wanted._jobs);
    EXPECT_EQ(preferences._textPoints, wanted._textPoints);
}
}  // namespace

TEST(Preferences, ComeBackFromTheSettings)
{
    hoPreferences written;
    written._isPlaceRemembered = false;
    written._areRecentRemembered = false;
    written._isKeyOffered = false;
    written._signedDocuments = hoSignedDocuments::KeepAll;
    written._jobs = 3;
    written._textPoints = 14;
    hoSettings settings;
    written.writeTo(settings);
    expectSame(hoPreferences::from(settings), written);
}

TEST(Preferences, AreTheUsualOnesWhereTheSettingsMakeNoSense)
{
    hoSettings settings;
    for (const char* pName : {"remember.place", "remember.recent", "offerKey", "signedDocuments", "jobs", "textPoints"})
    {
        settings.setText(pName, "1000");
    }
    hoPreferences usual;
    usual._isPlaceRemembered = true;
    usual._areRecentRemembered = true;
    usual._isKeyOffered = true;
    usual._signedDocuments = hoSignedDocuments::Ask;
    usual._jobs = 0;
    usual._textPoints = 0;
    expectSame(hoPreferences::from(settings), usual);
}

TEST(Preferences, TakeWhatLiesInTheirRanges)
{
    hoSettings settings;
    for (const auto& [points, taken] : {std::pair(5, 0), {6, 6}, {48, 48}, {49, 0}, {-6, 0}})
    {
        settings.setNumber("textPoints", points);
        EXPECT_EQ(hoPreferences::from(settings)._textPoints, taken) << points;
    }
    for (const auto& [jobs, taken] : {std::pair(0, 0), {1, 1}, {256, 256}, {257, 0}, {-1, 0}})
    {
        settings.setNumber("jobs", jobs);
        EXPECT_EQ(hoPreferences::from(settings)._jobs, taken) << jobs;
    }
    for (const int choice : {0, 1, 2})
    {
        settings.setNumber("signedDocuments", choice);
        EXPECT_EQ(static_cast<int>(hoPreferences::from(settings)._signedDocuments), choice);
    }
}

TEST(Settings, AreTakenAwayByTheBeginningsOfTheirNames)
{
    hoSettings settings;
    settings.setText("window.x", "1");
    settings.setText("window.y", "2");
    settings.setText("windows", "3");
    settings.remove("window.");
    EXPECT_EQ(settings.text("window.x", "none"), "none");
    EXPECT_EQ(settings.text("window.y", "none"), "none");
    EXPECT_EQ(settings.text("windows"), "3");
}
