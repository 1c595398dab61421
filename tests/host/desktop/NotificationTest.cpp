// SPDX-License-Identifier: Apache-2.0
// Notifications, with a desktop of the test's own that writes down what it is to show.
#include "RecordingBus.h"
#include "host/desktop/hoNotification.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace
{
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Notification : public testing::Test
{
protected:
    NotificationsBus _bus;
};
}  // namespace

TEST_F(Notification, IsTheLineWithoutMarkup)
{
    hoNotify("3 documents: 2 <b>good</b> & 1 bad\u00e4");
    EXPECT_EQ(_bus.calls(), "") << "not from inside the call";
    runMainContextUntil([&] { return !_bus.calls().empty(); });
    EXPECT_EQ(_bus.calls(), "Notify('Countersign', 0, 'org.countersign.Countersign', "
                            "'3 documents: 2 <b>good</b> & 1 bad\u00e4', '', [], "
                            "{'desktop-entry': <'org.countersign.Countersign'>}, -1)");
}

TEST_F(Notification, IsNotShownWhereItCannotBe)
{
    hoNotify("no UTF-8: \xff");
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/at/all", 1);
    hoNotify("no bus is there");
    setenv("DBUS_SESSION_BUS_ADDRESS", _bus.address(), 1);
    hoNotify("last");
    runMainContextUntil([&] { return !_bus.calls().empty(); });
    EXPECT_THAT(_bus.calls(), StartsWith("Notify('Countersign', 0, 'org.countersign.Countersign', 'last', "));
    EXPECT_THAT(_bus.calls(), Not(HasSubstr(")Notify")));
}
