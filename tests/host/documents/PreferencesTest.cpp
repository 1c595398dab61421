// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoPreferences.h"

#include <gtest/gtest.h>

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
    const hoPreferences read = hoPreferences::from(settings);
    EXPECT_FALSE(read._isPlaceRemembered);
    EXPECT_FALSE(read._areRecentRemembered);
    EXPECT_FALSE(read._isKeyOffered);
    EXPECT_EQ(read._signedDocuments, hoSignedDocuments::KeepAll);
    EXPECT_EQ(read._jobs, 3);
    EXPECT_EQ(read._textPoints, 14);
}

TEST(Preferences, AreTheUsualOnesWhereTheSettingsMakeNoSense)
{
    hoSettings settings;
    for (const char* pName : {"remember.place", "remember.recent", "offerKey", "signedDocuments", "jobs", "textPoints"})
    {
        settings.setText(pName, "1000");
    }
    const hoPreferences read = hoPreferences::from(settings);
    EXPECT_TRUE(read._isPlaceRemembered);
    EXPECT_TRUE(read._areRecentRemembered);
    EXPECT_TRUE(read._isKeyOffered);
    EXPECT_EQ(read._signedDocuments, hoSignedDocuments::Ask);
    EXPECT_EQ(read._jobs, 0);
    EXPECT_EQ(read._textPoints, 0);
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
