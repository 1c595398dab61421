// SPDX-License-Identifier: Apache-2.0
// hoSessionBus on a real bus of its own: requests from a stranger (gdbus), from a second start, and no bus at all.
#include "host/desktop/hoSessionBus.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{
using Outcome = hoSessionBus::Outcome;

// What came in on one connection, in order: one entry a request.
struct Requests
{
    std::vector<std::vector<gtString>> opened;
    int activations = 0;

    hoSessionBus::OpenFunction onOpen()
    {
        return [this](const std::vector<gtString>& paths) { opened.push_back(paths); };
    }
    hoSessionBus::ActivateFunction onActivate()
    {
        return [this] { ++activations; };
    }
};

// False when the condition does not hold within five minutes, which is far more than it takes.
bool waitUntil(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(5);
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > end)
        {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// The same, and GLib's main loop is turned meanwhile.
bool runUntil(const std::function<bool()>& condition)
{
    return waitUntil(
        [&]
        {
            while (!condition() && g_main_context_iteration(nullptr, FALSE) != FALSE)
            {
            }
            return condition();
        });
}

// Does something that blocks while the requests it makes are answered here.
void meanwhile(const std::function<void()>& work)
{
    bool done = false;
    std::thread worker(
        [&]
        {
            work();
            g_main_context_invoke(
                nullptr,
                [](gpointer pDone) -> gboolean
                {
                    *static_cast<bool*>(pDone) = true;
                    return G_SOURCE_REMOVE;
                },
                &done);
        });
    EXPECT_TRUE(runUntil([&] { return done; }));
    worker.join();
}

// What a later start with these paths comes to while the requests it makes are answered here.
Outcome startAnother(const std::vector<gtString>& paths, Requests& requests)
{
    Outcome outcome = Outcome::First;
    meanwhile(
        [&]
        {
            hoSessionBus other;
            outcome = other.start(paths, requests.onOpen(), requests.onActivate());
        });
    return outcome;
}

class SessionBusTest : public testing::Test
{
protected:
    void SetUp() override
    {
        _pBus = g_test_dbus_new(G_TEST_DBUS_NONE);
        g_test_dbus_up(_pBus);
    }
    void TearDown() override
    {
        g_test_dbus_stop(_pBus);
        g_object_unref(_pBus);
    }

    GTestDBus* _pBus = nullptr;
};

int gdbusCall(const std::string& methodAndArguments)
{
    const std::string command = std::string("gdbus call --session --dest ") + hoSessionBus::NAME + " --object-path " +
                                hoSessionBus::OBJECT_PATH + " --method org.freedesktop.Application." +
                                methodAndArguments + " >/dev/null 2>&1";
    return std::system(command.c_str());  // NOLINT(cert-env33-c): a fixed command of this test
}
}  // namespace

TEST_F(SessionBusTest, TheFirstOneOwnsTheName)
{
    Requests requests;
    hoSessionBus bus;
    EXPECT_EQ(bus.start({}, requests.onOpen(), requests.onActivate()), Outcome::First);
    EXPECT_TRUE(requests.opened.empty());
    EXPECT_EQ(requests.activations, 0);
}

TEST_F(SessionBusTest, AStrangersOpenBringsPathsWithTheirPercentSignsUndone)
{
    Requests requests;
    hoSessionBus bus;
    ASSERT_EQ(bus.start({}, requests.onOpen(), requests.onActivate()), Outcome::First);
    int status = -1;
    meanwhile(
        [&]
        {
            status = gdbusCall("Open \"['file:///a%20b', 'file:///100%25', 'file:///%C3%A9%FF', 'x-web://h/p', "
                               "'file://elsewhere.invalid/p']\" {}");
        });
    EXPECT_EQ(status, 0);
    ASSERT_TRUE(runUntil([&] { return !requests.opened.empty(); }));
    ASSERT_EQ(requests.opened.size(), 1U);
    const std::vector<gtString> expected = {"/a b", "/100%", "/\xC3\xA9\xFF", "x-web://h/p",
                                            "file://elsewhere.invalid/p"};
    EXPECT_EQ(requests.opened[0], expected);
}

TEST_F(SessionBusTest, ActivateAndUnknownActionsBringTheWindowForward)
{
    Requests requests;
    hoSessionBus bus;
    ASSERT_EQ(bus.start({}, requests.onOpen(), requests.onActivate()), Outcome::First);
    int status = -1;
    meanwhile([&] { status = gdbusCall("Activate {}"); });
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(runUntil([&] { return requests.activations == 1; }));
    meanwhile([&] { status = gdbusCall("ActivateAction nothing '[]' {}"); });
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(runUntil([&] { return requests.activations == 2; }));
    EXPECT_TRUE(requests.opened.empty());
}

TEST_F(SessionBusTest, ASecondStartHandsItsDocumentsOver)
{
    Requests first;
    hoSessionBus bus;
    ASSERT_EQ(bus.start({}, first.onOpen(), first.onActivate()), Outcome::First);

    const std::vector<gtString> paths = {"/with blank", "/100%",    "/\xC3\xA9", "/\xFF\xFE",
                                         "/new\nline",  "relative", "-v"};
    Requests second;
    EXPECT_EQ(startAnother(paths, second), Outcome::HandedOver);
    ASSERT_TRUE(runUntil([&] { return !first.opened.empty(); }));
    std::vector<gtString> expected = paths;
    char folder[4096];
    ASSERT_NE(getcwd(folder, sizeof folder), nullptr);
    expected[5] = std::string(folder) + "/relative";
    expected[6] = std::string(folder) + "/-v";
    EXPECT_EQ(first.opened[0], expected);
    EXPECT_TRUE(second.opened.empty());
}

TEST_F(SessionBusTest, ASecondStartWithoutDocumentsActivatesTheFirst)
{
    Requests first;
    hoSessionBus bus;
    ASSERT_EQ(bus.start({}, first.onOpen(), first.onActivate()), Outcome::First);
    Requests second;
    EXPECT_EQ(startAnother({}, second), Outcome::HandedOver);
    EXPECT_TRUE(runUntil([&] { return first.activations == 1; }));
}

TEST_F(SessionBusTest, TheNameIsFreeAgainAfterTheFirstOneHasEnded)
{
    Requests requests;
    {
        hoSessionBus bus;
        ASSERT_EQ(bus.start({}, requests.onOpen(), requests.onActivate()), Outcome::First);
    }
    hoSessionBus bus;
    Outcome outcome = Outcome::NoBus;
    meanwhile([&] { outcome = bus.start({}, requests.onOpen(), requests.onActivate()); });
    EXPECT_EQ(outcome, Outcome::First);
}

TEST_F(SessionBusTest, AHundredRequestsAtOnceAllArriveInTheirOrder)
{
    Requests first;
    hoSessionBus bus;
    ASSERT_EQ(bus.start({}, first.onOpen(), first.onActivate()), Outcome::First);
    std::vector<gtString> many;
    many.reserve(100);
    for (int i = 0; i < 100; ++i)
    {
        many.push_back("/document " + std::to_string(i));
    }
    meanwhile(
        [&]
        {
            hoSessionBus other;
            other.start(many, first.onOpen(), first.onActivate());
        });
    meanwhile(
        [&]
        {
            for (const gtString& path : many)
            {
                hoSessionBus other;
                other.start({path}, first.onOpen(), first.onActivate());
            }
        });
    ASSERT_TRUE(runUntil([&] { return first.opened.size() == 101; }));
    EXPECT_EQ(first.opened[0], many);
    for (std::size_t i = 0; i < many.size(); ++i)
    {
        EXPECT_EQ(first.opened[i + 1], std::vector<gtString>{many[i]});
    }
}

TEST_F(SessionBusTest, AnOwnerThatDoesNotAnswerIsNotWaitedForForever)
{
    // Owns the name and never looks at its messages.
    Requests first;
    hoSessionBus bus;
    ASSERT_EQ(bus.start({}, first.onOpen(), first.onActivate()), Outcome::First);
    Requests second;
    hoSessionBus other;
    EXPECT_EQ(other.start({"/a"}, second.onOpen(), second.onActivate()), Outcome::NoBus);

    // What the other one opens itself is not opened a second time when the owner comes to it.
    Outcome outcome = Outcome::NoBus;
    meanwhile(
        [&]
        {
            hoSessionBus later;
            outcome = later.start({"/b"}, second.onOpen(), second.onActivate());
        });
    EXPECT_EQ(outcome, Outcome::HandedOver);
    ASSERT_TRUE(runUntil([&] { return !first.opened.empty(); }));
    EXPECT_EQ(first.opened, std::vector<std::vector<gtString>>{{"/b"}});
}

TEST_F(SessionBusTest, WhoeverWaitsForAnOwnerThatLeavesIsTheNextOne)
{
    Requests first;
    hoSessionBus bus;
    ASSERT_EQ(bus.start({}, first.onOpen(), first.onActivate()), Outcome::First);
    while (g_main_context_iteration(nullptr, FALSE) != FALSE)
    {
    }
    Requests second;
    hoSessionBus other;
    Outcome outcome = Outcome::NoBus;
    std::thread waiting([&] { outcome = other.start({"/a"}, second.onOpen(), second.onActivate()); });
    // The request has come and is not dealt with.
    EXPECT_TRUE(waitUntil([] { return g_main_context_pending(nullptr) != FALSE; }));
    bus.leave();
    waiting.join();
    EXPECT_EQ(outcome, Outcome::First);
    while (g_main_context_iteration(nullptr, FALSE) != FALSE)
    {
    }
    EXPECT_TRUE(first.opened.empty());
    EXPECT_TRUE(second.opened.empty());
}

TEST_F(SessionBusTest, WhatNoMessageHoldsIsNotHandedOver)
{
    Requests first;
    hoSessionBus bus;
    ASSERT_EQ(bus.start({}, first.onOpen(), first.onActivate()), Outcome::First);
    // More than the bus allows in one list.
    const std::vector<gtString> paths(8000, "/" + std::string(3000, '%'));
    Requests second;
    EXPECT_EQ(startAnother(paths, second), Outcome::NoBus);
    EXPECT_TRUE(first.opened.empty());
    EXPECT_TRUE(second.opened.empty());
}

TEST(NoSessionBusTest, WithoutABusTheApplicationIsAlone)
{
    setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    Requests requests;
    hoSessionBus disabled;
    EXPECT_EQ(disabled.start({"/a"}, requests.onOpen(), requests.onActivate()), Outcome::NoBus);
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    hoSessionBus missing;
    EXPECT_EQ(missing.start({"/a"}, requests.onOpen(), requests.onActivate()), Outcome::NoBus);
    EXPECT_TRUE(requests.opened.empty());
}
