// SPDX-License-Identifier: Apache-2.0
// The progress at the program's entry in the task bar, with a task bar of the test's own.
#include "RecordingBus.h"
#include "host/desktop/hoTaskbarProgress.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace
{
using testing::ElementsAre;

class TaskbarProgress : public testing::Test
{
protected:
    static std::string update(const std::string& part, const std::string& isVisible)
    {
        return "('application://org.countersign.Countersign.desktop', {'progress': <" + part +
               ">, 'progress-visible': <" + isVisible + ">})";
    }
    void waitForUpdates(std::size_t amount)
    {
        runMainContextUntil([&] { return _bus.updates().size() >= amount; });
    }

    TaskbarBus _bus;
};
}  // namespace

TEST_F(TaskbarProgress, IsShownOnceAHundredthAndTakenAway)
{
    hoTaskbarProgress progress;
    progress.show(0.25);
    waitForUpdates(1);
    progress.show(0.2501);
    progress.show(0.75);
    progress.end();
    progress.end();
    waitForUpdates(3);
    EXPECT_THAT(_bus.updates(), ElementsAre(update("0.25", "true"), update("0.75", "true"), update("0.75", "false")));
    // The next work.
    progress.show(0.5);
    waitForUpdates(4);
    EXPECT_EQ(_bus.updates().back(), update("0.5", "true"));
}

TEST_F(TaskbarProgress, IsTakenAwayWithItsObject)
{
    {
        hoTaskbarProgress progress;
        progress.show(2);
        waitForUpdates(1);
    }
    waitForUpdates(2);
    EXPECT_THAT(_bus.updates(), ElementsAre(update("1.0", "true"), update("1.0", "false")));
}

TEST_F(TaskbarProgress, IsNotShownWhereItCannotBe)
{
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/at/all", 1);
    {
        hoTaskbarProgress progress;
        progress.show(0.5);
    }
    setenv("DBUS_SESSION_BUS_ADDRESS", _bus.address(), 1);
    {
        // Over before the bus has answered.
        hoTaskbarProgress progress;
        progress.show(0.5);
    }
    hoTaskbarProgress progress;
    progress.show(0.125);
    waitForUpdates(1);
    EXPECT_THAT(_bus.updates(), ElementsAre(update("0.12", "true")));
}
