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
    start({"countersign-desktop", _folder.write("huge", "")});
    dropNewKey();
    // Of holes alone: it takes longer than the test.
    std::filesystem::resize_file(_folder.path("huge"), 1ULL << 40);
    settle();
    tsPressKeys("ctrl+shift+s");
    tsRunUntil("it is shown", [&] { return !bus.updates().empty(); });
    EXPECT_THAT(bus.updates().front(), testing::HasSubstr("'progress-visible': <true>"));
    std::filesystem::resize_file(_folder.path("huge"), 10);
    tsRunUntil("it is taken away",
               [&] { return bus.updates().back().find("'progress-visible': <false>") != std::string::npos; });
    EXPECT_FALSE(_pFrame->isAtWork());
}
