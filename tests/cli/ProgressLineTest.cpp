// SPDX-License-Identifier: Apache-2.0
#include "cli/clProgressLine.h"

#include <gtest/gtest.h>

namespace
{

struct Stage
{
    std::chrono::milliseconds now{5000};
    std::string shown;
    bool isCancelled = false;

    clProgressLine line(const std::string& name, int columns)
    {
        return clProgressLine(
            name, columns, [this] { return now; }, [this](const gtString& text) { shown += text.asStringView(); },
            [this] { return isCancelled; });
    }
};

const std::string away = "\r\033[K";

}  // namespace

TEST(ProgressLine, KeepsQuietForASecond)
{
    Stage stage;
    {
        clProgressLine line = stage.line("file", 80);
        stage.now += std::chrono::milliseconds(999);
        EXPECT_TRUE(line.onProgress(1, 4));
    }
    EXPECT_EQ(stage.shown, "");
}

TEST(ProgressLine, TellsHowFarItIsAndGoesAway)
{
    Stage stage;
    {
        clProgressLine line = stage.line("file", 80);
        stage.now += std::chrono::milliseconds(1000);
        EXPECT_TRUE(line.onProgress(1000000, 4000000));
        EXPECT_EQ(stage.shown, away + "25 % of 4.00 MB  file");
        stage.now += std::chrono::milliseconds(99);
        EXPECT_TRUE(line.onProgress(2000000, 4000000));
        EXPECT_EQ(stage.shown, away + "25 % of 4.00 MB  file");
        stage.now += std::chrono::milliseconds(1);
        EXPECT_TRUE(line.onProgress(3999999, 4000000));
        EXPECT_EQ(stage.shown, away + "25 % of 4.00 MB  file" + away + "99 % of 4.00 MB  file");
        stage.shown.clear();
    }
    EXPECT_EQ(stage.shown, away);
}

TEST(ProgressLine, SaysNothingOfWhatIsDoneOrHasNoSize)
{
    Stage stage;
    clProgressLine line = stage.line("file", 80);
    stage.now += std::chrono::milliseconds(2000);
    EXPECT_TRUE(line.onProgress(4, 4));
    EXPECT_TRUE(line.onProgress(5, 4));
    EXPECT_TRUE(line.onProgress(5, 0));
    EXPECT_TRUE(line.onProgress(0, 0));
    EXPECT_EQ(stage.shown, "");
}

TEST(ProgressLine, CutsLongNames)
{
    Stage stage;
    clProgressLine line = stage.line("a\xC3\xA4\xC3\xA4\xC3\xA4", 20);
    stage.now += std::chrono::milliseconds(2000);
    // Nineteen columns, of which fifteen are taken; half a character is not shown.
    EXPECT_TRUE(line.onProgress(1, 10));
    EXPECT_EQ(stage.shown, away + "10 % of 10 bytes  a");
    Stage narrow;
    clProgressLine narrowLine = narrow.line("name", 5);
    narrow.now += std::chrono::milliseconds(2000);
    EXPECT_TRUE(narrowLine.onProgress(1, 10));
    EXPECT_EQ(narrow.shown, away + "10 % of 10 bytes  ");
}

TEST(ProgressLine, Cancels)
{
    Stage stage;
    clProgressLine line = stage.line("file", 80);
    EXPECT_TRUE(line.onProgress(1, 4));
    stage.isCancelled = true;
    EXPECT_FALSE(line.onProgress(1, 4));
}

TEST(ProgressLine, NeedsNoWriter)
{
    Stage stage;
    clProgressLine line(
        "file", 0, [&] { return stage.now; }, nullptr, [] { return false; });
    stage.now += std::chrono::milliseconds(2000);
    EXPECT_TRUE(line.onProgress(1, 4));
}
