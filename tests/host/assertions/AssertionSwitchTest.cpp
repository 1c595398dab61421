// SPDX-License-Identifier: Apache-2.0
// The switch registers its handler beside whatever is registered, and takes only its own away.
#include "host/assertions/hoAssertionReport.h"
#include "host/assertions/hoAssertionSwitch.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "tests/support/tsCaughtErrors.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{
class Silent : public gtIAssertionFailureHandler
{
public:
    Silent() { gtRegisterAssertionFailureHandler(this); }
    ~Silent() override { gtUnRegisterAssertionFailureHandler(this); }
    Silent(const Silent&) = delete;
    Silent& operator=(const Silent&) = delete;

    void onAssertionFailure(const char*, const char*, int, const char*) override { ++_failures; }

    int _failures = 0;
};
}  // namespace

TEST(AssertionSwitch, LeavesOtherHandlersRegistered)
{
    const tsCaughtErrors errors;
    Silent silent;
    {
        hoAssertionSwitch theSwitch;
        EXPECT_FALSE(theSwitch.isOn());
        EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
        theSwitch.setOn(true);
        theSwitch.setOn(true);
        EXPECT_TRUE(theSwitch.isOn());
        EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 2);

        // On another thread, so that no dialog comes up at once.
        std::thread([] { gtTriggerAssertonFailureHandler("f", "/file.cpp", 7, "reason"); }).join();
        EXPECT_EQ(silent._failures, 1);
        EXPECT_EQ(theSwitch.report()->amountOfFailures(), 1U);

        theSwitch.setOn(false);
        EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
        gtTriggerAssertonFailureHandler("f", "/file.cpp", 7, "reason");
        EXPECT_EQ(silent._failures, 2);
        EXPECT_EQ(theSwitch.report()->amountOfFailures(), 1U) << "it is off";
        theSwitch.setOn(true);
    }
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1) << "it turns itself off at the end";
}
