// SPDX-License-Identifier: Apache-2.0
// The main window shows long work in the task bar.
#include "RecordingBus.h"
#include "tests/host/MainFrameFixture.h"

#include <gmock/gmock.h>

namespace
{
using TaskbarWindow = MainFrameFixture;
}

TEST_F(TaskbarWindow, ShowsLongWorkUntilItEnds)
{
    TaskbarBus bus;
    beginLongWork();
    tsRunUntil("it is shown", [&] { return !bus.updates().empty(); });
    EXPECT_THAT(bus.updates().front(), testing::HasSubstr("'progress-visible': <true>"));
    endLongWork();
    tsRunUntil("it is taken away",
               [&] { return bus.updates().back().find("'progress-visible': <false>") != std::string::npos; });
    EXPECT_FALSE(_pFrame->isAtWork());
}
