// SPDX-License-Identifier: Apache-2.0
// hoSessionBus on a real bus of its own: requests from a stranger (gdbus), from a second start, and no bus at all.
#include "host/desktop/hoSessionBus.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <atomic>
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

TEST_F(SessionBusTest, ASecondStartHandsItsStartupIdOver)
{
    std::vector<std::string> seen;
    hoSessionBus bus;
    bus.setOnStartupId([&](const gtString& id) { seen.push_back("id " + id.asStdString()); });
    ASSERT_EQ(bus.start(
                  {}, [&](const std::vector<gtString>&) { seen.emplace_back("open"); },
                  [&] { seen.emplace_back("activate"); }),
              Outcome::First);
    Requests second;
    setenv("DESKTOP_STARTUP_ID", "by the desktop_TIME1", 1);
    EXPECT_EQ(startAnother({"/a"}, second), Outcome::HandedOver);
    EXPECT_TRUE(runUntil([&] { return !seen.empty() && seen.back() == "open"; }));
    // A token is for the desktops of today.
    setenv("XDG_ACTIVATION_TOKEN", "a token", 1);
    EXPECT_EQ(startAnother({}, second), Outcome::HandedOver);
    EXPECT_TRUE(runUntil([&] { return seen.back() == "activate"; }));
    unsetenv("DESKTOP_STARTUP_ID");
    unsetenv("XDG_ACTIVATION_TOKEN");
    EXPECT_EQ(startAnother({"/b"}, second), Outcome::HandedOver);
    EXPECT_TRUE(runUntil([&] { return seen.back() == "open"; }));
    EXPECT_EQ(seen, (std::vector<std::string>{"id by the desktop_TIME1", "open", "id a token", "activate", "open"}));
}

// The first one may take its time over them: open a dialog, for one.
TEST_F(SessionBusTest, ALaterStartHasItsAnswerBeforeItsDocumentsAreOpened)
{
    std::atomic<bool> isAnswered{false};
    int opened = 0;
    hoSessionBus bus;
    ASSERT_EQ(bus.start(
                  {},
                  [&](const std::vector<gtString>&)
                  {
                      EXPECT_TRUE(waitUntil([&] { return isAnswered.load(); }));
                      ++opened;
                  },
                  [] {}),
              Outcome::First);
    Requests second;
    Outcome outcome = Outcome::NoBus;
    meanwhile(
        [&]
        {
            hoSessionBus other;
            outcome = other.start({"/a"}, second.onOpen(), second.onActivate());
            isAnswered = true;
        });
    EXPECT_EQ(outcome, Outcome::HandedOver);
    EXPECT_EQ(opened, 1);
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

namespace
{
// A bus on which somebody has the name and is gone when the documents come.
class StagedBus
{
public:
    StagedBus()
    {
        char* const pGuid = g_dbus_generate_guid();
        _pServer =
            g_dbus_server_new_sync("unix:tmpdir=/tmp", G_DBUS_SERVER_FLAGS_NONE, pGuid, nullptr, nullptr, nullptr);
        g_free(pGuid);
        g_signal_connect(_pServer, "new-connection", G_CALLBACK(&onConnection), this);
        g_dbus_server_start(_pServer);
        setenv("DBUS_SESSION_BUS_ADDRESS", g_dbus_server_get_client_address(_pServer), 1);
    }
    ~StagedBus()
    {
        if (_pConnection != nullptr)
        {
            g_dbus_connection_close_sync(_pConnection, nullptr, nullptr);
            g_object_unref(_pConnection);
        }
        g_dbus_server_stop(_pServer);
        g_object_unref(_pServer);
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
    }
    StagedBus(const StagedBus&) = delete;
    StagedBus& operator=(const StagedBus&) = delete;

    int amountOfRequests() const { return _amountOfRequests; }
    bool wasToActivate() const { return _wasToActivate; }

private:
    static gboolean onConnection(GDBusServer*, GDBusConnection* pConnection, gpointer pSelf)
    {
        static_cast<StagedBus*>(pSelf)->_pConnection = G_DBUS_CONNECTION(g_object_ref(pConnection));
        g_dbus_connection_add_filter(pConnection, &onMessage, pSelf, nullptr);
        return TRUE;
    }

    // On GLib's own thread.
    static GDBusMessage* onMessage(GDBusConnection* pConnection, GDBusMessage* pMessage, gboolean isIncoming,
                                   gpointer pSelf)
    {
        if (isIncoming == FALSE || g_dbus_message_get_message_type(pMessage) != G_DBUS_MESSAGE_TYPE_METHOD_CALL)
        {
            return pMessage;
        }
        StagedBus& self = *static_cast<StagedBus*>(pSelf);
        const std::string member = g_dbus_message_get_member(pMessage);
        GDBusMessage* pAnswer = nullptr;
        if (member == "Hello")
        {
            pAnswer = g_dbus_message_new_method_reply(pMessage);
            g_dbus_message_set_body(pAnswer, g_variant_new("(s)", ":1.1"));
        }
        else if (member == "RequestName")
        {
            pAnswer = g_dbus_message_new_method_reply(pMessage);
            const guint32 exists = 3;
            g_dbus_message_set_body(pAnswer, g_variant_new("(u)", exists));
        }
        else
        {
            const unsigned int flags = g_dbus_message_get_flags(pMessage);
            self._wasToActivate = (flags & G_DBUS_MESSAGE_FLAGS_NO_AUTO_START) == 0;
            ++self._amountOfRequests;
            pAnswer = g_dbus_message_new_method_error_literal(pMessage, "org.freedesktop.DBus.Error.NameHasNoOwner",
                                                              "it is gone");
        }
        g_dbus_connection_send_message(pConnection, pAnswer, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
        g_object_unref(pAnswer);
        g_object_unref(pMessage);
        return nullptr;
    }

    GDBusServer* _pServer = nullptr;
    GDBusConnection* _pConnection = nullptr;
    std::atomic<int> _amountOfRequests{0};
    std::atomic<bool> _wasToActivate{false};
};
}  // namespace

// An owner that ends meanwhile is not started anew by the bus: this process opens its documents itself.
TEST(StagedBusTest, ALaterStartActivatesNoService)
{
    for (const std::vector<gtString>& paths : {std::vector<gtString>{"/a"}, std::vector<gtString>()})
    {
        const StagedBus staged;
        Requests requests;
        EXPECT_EQ(startAnother(paths, requests), Outcome::NoBus);
        EXPECT_EQ(staged.amountOfRequests(), 2) << "the name may be free the second time";
        EXPECT_FALSE(staged.wasToActivate());
    }
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
