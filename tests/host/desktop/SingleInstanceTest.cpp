// SPDX-License-Identifier: Apache-2.0
// hoSingleInstance on a bus of its own, with the empty main window of tests/app.
#include "host/desktop/hoSingleInstance.h"

#include "MainFrame.h"
#include "app/ApplicationShell.h"
#include "tests/support/tsWindowTest.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <future>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// The last one: what it includes makes words of its own of "None" and others.
#include <gdk/gdkx.h>

namespace
{
using Outcome = hoSessionBus::Outcome;
using Paths = std::vector<gtString>;

class SingleInstance : public testing::Test
{
protected:
    void SetUp() override
    {
        _pBus = g_test_dbus_new(G_TEST_DBUS_NONE);
        g_test_dbus_up(_pBus);
        ASSERT_TRUE(wxGetApp().OnInit());
    }
    void TearDown() override
    {
        wxTheApp->GetTopWindow()->Destroy();
        tsRunEvents();
        wxGetApp().OnExit();
        MainFrame::openedPaths().clear();
        g_test_dbus_stop(_pBus);
        g_object_unref(_pBus);
    }

    // What a later start comes to.
    static Outcome startAnother(const Paths& paths)
    {
        Outcome outcome = Outcome::NoBus;
        std::atomic<bool> isDone{false};
        std::thread other(
            [&]
            {
                hoSessionBus bus;
                outcome = bus.start(
                    paths, [](const Paths&) {}, [] {});
                isDone = true;
            });
        tsRunUntil("the later start has its answer", [&] { return isDone.load(); });
        other.join();
        return outcome;
    }

private:
    GTestDBus* _pBus = nullptr;
};

// The application that was started first, in a loop of its own.
class FirstStart
{
public:
    FirstStart()
    {
        std::promise<Outcome> outcome;
        _thread = std::thread([&] { run(outcome); });
        EXPECT_EQ(outcome.get_future().get(), Outcome::First);
    }
    ~FirstStart() { end(); }
    FirstStart(const FirstStart&) = delete;
    FirstStart& operator=(const FirstStart&) = delete;

    // What it was asked for.
    Paths opened()
    {
        end();
        return _opened;
    }
    int activations()
    {
        end();
        return _activations;
    }

private:
    void run(std::promise<Outcome>& outcome)
    {
        GMainContext* const pContext = g_main_context_new();
        g_main_context_push_thread_default(pContext);
        {
            hoSessionBus bus;
            outcome.set_value(bus.start(
                {}, [this](const Paths& paths) { _opened = paths; }, [this] { ++_activations; }));
            while (!_isToEnd || g_main_context_pending(pContext) != FALSE)
            {
                g_main_context_iteration(pContext, FALSE);
            }
        }
        g_main_context_pop_thread_default(pContext);
        g_main_context_unref(pContext);
    }
    void end()
    {
        _isToEnd = true;
        if (_thread.joinable())
        {
            _thread.join();
        }
    }

    std::atomic<bool> _isToEnd{false};
    Paths _opened;
    int _activations = 0;
    std::thread _thread;
};
}  // namespace

TEST_F(SingleInstance, OpensTheDocumentsOfLaterStarts)
{
    int activations = 0;
    hoSingleInstance instance;
    EXPECT_FALSE(instance.handOver({"/mine"}, [&] { ++activations; }));
    EXPECT_TRUE(MainFrame::openedPaths().empty()) << "its own documents are the window's";
    EXPECT_EQ(startAnother({"/a", "/b\xff \xc3\xa9"}), Outcome::HandedOver);
    tsRunUntil("the documents are open", [] { return MainFrame::openedPaths().size() == 2; });
    EXPECT_EQ(MainFrame::openedPaths()[0].first, "/a");
    EXPECT_EQ(MainFrame::openedPaths()[1].first, "/b\xff \xc3\xa9");
    EXPECT_EQ(activations, 0);
}

TEST_F(SingleInstance, ComesToTheFrontForALaterStartWithoutDocuments)
{
    int activations = 0;
    hoSingleInstance instance;
    EXPECT_FALSE(instance.handOver({}, [&] { ++activations; }));
    EXPECT_EQ(startAnother({}), Outcome::HandedOver);
    tsRunUntil("it is called to the front", [&] { return activations == 1; });
    EXPECT_TRUE(MainFrame::openedPaths().empty());
}

// By which the window manager lets the window come to the front.
TEST_F(SingleInstance, TakesTheStartupIdOfALaterStart)
{
    // GTK 3.24.49 has forgotten it a moment later.
    std::vector<std::string> idsAtActivation;
    hoSingleInstance instance;
    EXPECT_FALSE(instance.handOver({},
                                   [&]
                                   {
                                       const char* pId =
                                           gdk_x11_display_get_startup_notification_id(gdk_display_get_default());
                                       idsAtActivation.emplace_back(pId == nullptr ? "none" : pId);
                                   }));
    setenv("DESKTOP_STARTUP_ID", "of the later start_TIME1", 1);
    EXPECT_EQ(startAnother({}), Outcome::HandedOver);
    unsetenv("DESKTOP_STARTUP_ID");
    tsRunUntil("it is called to the front", [&] { return !idsAtActivation.empty(); });
    EXPECT_EQ(idsAtActivation, std::vector<std::string>{"of the later start_TIME1"});
}

TEST_F(SingleInstance, HandsItsDocumentsToTheFirst)
{
    FirstStart first;
    hoSingleInstance instance;
    EXPECT_TRUE(instance.handOver({"/a", "/b"}, [] { FAIL() << "it is not the first"; }));
    EXPECT_EQ(first.opened(), (Paths{"/a", "/b"}));
    EXPECT_EQ(first.activations(), 0);
    EXPECT_TRUE(MainFrame::openedPaths().empty());
}

TEST_F(SingleInstance, IsTheFirstNoLongerOnceItLeaves)
{
    hoSingleInstance instance;
    EXPECT_FALSE(instance.handOver({}, [] { FAIL() << "it has left"; }));
    instance.leave();
    EXPECT_EQ(startAnother({"/a"}), Outcome::First);
    tsRunEvents();
    EXPECT_TRUE(MainFrame::openedPaths().empty());
}
