// SPDX-License-Identifier: Apache-2.0
#include "cli/clProgressLine.h"
#include "cli/clTerminal.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

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

// The columns when this is standard error.
int columnsWith(int descriptor)
{
    const int kept = dup(STDERR_FILENO);
    EXPECT_TRUE(kept >= 0 && dup2(descriptor, STDERR_FILENO) >= 0);
    const int columns = clColumnsOfStandardError();
    EXPECT_GE(dup2(kept, STDERR_FILENO), 0);
    close(kept);
    return columns;
}

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

TEST(ColumnsOfStandardError, AreThoseOfTheTerminal)
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_TRUE(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
    const int terminal = open(ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(terminal, 0);
    struct winsize size = {};
    size.ws_col = 43;
    ASSERT_EQ(ioctl(terminal, TIOCSWINSZ, &size), 0);
    EXPECT_EQ(columnsWith(terminal), 43);
    size.ws_col = 0;
    ASSERT_EQ(ioctl(terminal, TIOCSWINSZ, &size), 0);
    EXPECT_EQ(columnsWith(terminal), 80) << "the terminal does not say";
    close(terminal);
    close(master);

    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(columnsWith(nowhere), 0) << "no terminal";
    close(nowhere);
}
