// SPDX-License-Identifier: Apache-2.0
// The main window tells the end of long work by a notification when it is not in front.
#include "RecordingBus.h"
#include "tests/host/MainFrameFixture.h"

#include <gmock/gmock.h>

namespace
{
using NotificationWindow = MainFrameFixture;
}

TEST_F(NotificationWindow, TellsTheResultOfWorkThatEndsUnseen)
{
    NotificationsBus bus;
    beginLongWork();
    tsRunUntil("the progress is in front", [] { return isActive("Signing documents"); });
    for (wxWindow* const pWindow : wxTopLevelWindows)
    {
        dynamic_cast<wxTopLevelWindow&>(*pWindow).Iconize();
    }
    tsRunUntil("nothing of the program is in front", [] { return !wxTheApp->IsActive(); });
    endLongWork();
    tsRunUntil("it is told", [&] { return !bus.calls().empty(); });
    EXPECT_THAT(bus.calls(), testing::HasSubstr("'" + _pFrame->workMessage()._line.utf8_string() + "'"));
}
