// SPDX-License-Identifier: Apache-2.0
// The main window on a real session bus: requests of the desktop (gdbus) and second starts of the program end as
// documents of the one window.
#include "app/ApplicationShell.h"
#include "host/MainFrame.h"
#include "host/desktop/hoSessionBus.h"
#include "tests/host/DocumentRows.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/tsWindowTest.h"

#include <gio/gio.h>
#include <gmock/gmock.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace
{
class SessionBusWindowTest : public testing::Test
{
protected:
    void SetUp() override
    {
        char folder[] = "/tmp/countersign-bus-XXXXXX";
        ASSERT_NE(mkdtemp(folder), nullptr);
        _folder = folder;
        setenv("HOME", folder, 1);
        setenv("XDG_CONFIG_HOME", (_folder + "/config").c_str(), 1);
        _pBus = g_test_dbus_new(G_TEST_DBUS_NONE);
        // It takes the display away, which the second starts need.
        const char* const pDisplay = std::getenv("DISPLAY");
        static const std::string display = pDisplay != nullptr ? pDisplay : "";
        g_test_dbus_up(_pBus);
        setenv("DISPLAY", display.c_str(), 1);
    }

    void TearDown() override
    {
        if (_pFrame != nullptr)
        {
            _pFrame->Close();
            tsRunEvents();
        }
        wxGetApp().OnExit();
        g_test_dbus_stop(_pBus);
        g_object_unref(_pBus);
        EXPECT_EQ(tsRunProgram({"rm", "-rf", _folder}), 0);
    }

    // Starts the application as its entry does. The test program's own arguments are none of its documents.
    void start()
    {
        wxTheApp->argc = 0;
        char* none[] = {nullptr};
        wxTheApp->argv.Init(0, none);
        ASSERT_TRUE(wxGetApp().OnInit());
        _pFrame = dynamic_cast<MainFrame*>(wxTheApp->GetTopWindow());
        ASSERT_NE(_pFrame, nullptr);
    }

    std::string makeDocument(const std::string& name)
    {
        std::string path = _folder + "/" + name;
        std::ofstream(path) << "contents\n";
        return path;
    }

    std::vector<std::string> openDocuments() const
    {
        std::vector<std::string> paths;
        for (std::size_t i = 0; i < _pFrame->documents().size(); ++i)
        {
            const gtString& path = _pFrame->documents()[i]._path;
            paths.emplace_back(path.asCharArray(), static_cast<std::size_t>(path.length()));
        }
        return paths;
    }

    // Runs another program; its exit status.
    static int run(const std::vector<std::string>& arguments)
    {
        std::vector<char*> pointers;
        pointers.reserve(arguments.size() + 1);
        for (const std::string& argument : arguments)
        {
            pointers.push_back(const_cast<char*>(argument.c_str()));
        }
        pointers.push_back(nullptr);
        gint waitStatus = -1;
        const int flags = G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL;
        if (g_spawn_sync(nullptr, pointers.data(), nullptr, static_cast<GSpawnFlags>(flags), nullptr, nullptr, nullptr,
                         nullptr, &waitStatus, nullptr) == FALSE)
        {
            return -1;
        }
        return g_spawn_check_wait_status(waitStatus, nullptr) != FALSE ? 0 : 1;
    }

    // Does something that blocks while the window goes on working.
    static void meanwhile(const std::string& what, const std::function<void()>& work)
    {
        std::atomic<bool> isDone{false};
        std::thread other(
            [&]
            {
                work();
                isDone = true;
            });
        tsRunUntil(what + " has ended", [&] { return isDone.load(); });
        other.join();
    }

    static int runMeanwhile(const std::vector<std::string>& arguments)
    {
        int status = -1;
        meanwhile(arguments[0], [&] { status = run(arguments); });
        return status;
    }

    static int callOpen(const std::vector<std::string>& paths)
    {
        std::string uris = "[";
        for (const std::string& path : paths)
        {
            char* pUri = g_filename_to_uri(path.c_str(), nullptr, nullptr);
            uris += (uris.size() > 1 ? ", '" : "'") + std::string(pUri) + "'";
            g_free(pUri);
        }
        return runMeanwhile({"gdbus", "call", "--session", "--dest", hoSessionBus::NAME, "--object-path",
                             hoSessionBus::OBJECT_PATH, "--method", "org.freedesktop.Application.Open", uris + "]",
                             "{}"});
    }

    const ManyFilesFolder _many;
    std::string _folder;
    GTestDBus* _pBus = nullptr;
    MainFrame* _pFrame = nullptr;
};

const std::vector<std::string> difficultNames = {"with blank",        "100%",     "%20",
                                                 "\xC3\xA9t\xC3\xA9", "\xFF\xFE", "new\nline"};
}  // namespace

TEST_F(SessionBusWindowTest, RequestsOfTheDesktopOpenDocumentsOfAnyName)
{
    start();
    std::vector<std::string> paths;
    for (const std::string& name : difficultNames)
    {
        paths.push_back(makeDocument(name));
    }
    EXPECT_EQ(callOpen(paths), 0);
    tsRunUntil("the documents are open", [&] { return _pFrame->documents().size() == paths.size(); });
    EXPECT_EQ(openDocuments(), paths);
}

TEST_F(SessionBusWindowTest, ASecondStartHandsItsDocumentsToTheFirstAndEndsWell)
{
    start();
    std::vector<std::string> command = {COUNTERSIGN_DESKTOP};
    std::vector<std::string> paths;
    for (const std::string& name : difficultNames)
    {
        paths.push_back(makeDocument(name));
    }
    paths.push_back(makeDocument("-v"));
    command.insert(command.end(), paths.begin(), paths.end());
    EXPECT_EQ(runMeanwhile(command), 0);
    tsRunUntil("the documents are open", [&] { return _pFrame->documents().size() == paths.size(); });
    EXPECT_EQ(openDocuments(), paths);
    // All together, as those of a first start.
    tsRunUntil("the documents are selected",
               [&]
               {
                   const auto* pList = findDocumentRows(_pFrame);
                   return pList != nullptr && pList->amountSelected() == paths.size();
               });
}

TEST_F(SessionBusWindowTest, ASecondStartWithoutDocumentsBringsTheWindowBack)
{
    start();
    _pFrame->Iconize();
    tsRunUntil("the window is put away", [&] { return _pFrame->IsIconized(); });
    EXPECT_EQ(runMeanwhile({COUNTERSIGN_DESKTOP}), 0);
    tsRunUntil("the window is back", [&] { return !_pFrame->IsIconized() && _pFrame->IsShownOnScreen(); });
}

TEST_F(SessionBusWindowTest, AHundredDocumentsAtOnce)
{
    start();
    std::vector<std::string> paths;
    paths.reserve(100);
    for (int i = 0; i < 100; ++i)
    {
        paths.push_back(makeDocument("document " + std::to_string(i)));
    }
    EXPECT_EQ(callOpen(paths), 0);
    tsRunUntil("all of them are open", [&] { return _pFrame->documents().size() == paths.size(); });
    EXPECT_EQ(openDocuments(), paths);
}

TEST_F(SessionBusWindowTest, ASecondStartHandsOverWhatIsNoText)
{
    // The toolkit keeps none of its arguments but the program's name.
    start();
    const std::string path = makeDocument("\xFF\xFE");
    EXPECT_EQ(runMeanwhile({COUNTERSIGN_DESKTOP, path}), 0);
    tsRunUntil("the document is open", [&] { return _pFrame->documents().size() == 1; });
    EXPECT_EQ(openDocuments(), std::vector<std::string>{path});
}

// As many and as long as an argument list holds; none of a name's bytes is the same in the message.
TEST_F(SessionBusWindowTest, ASecondStartHandsTenThousandDocumentsOver)
{
    start();
    const int amount = 10000;
    const std::size_t length = 180;
    std::vector<std::string> command = {COUNTERSIGN_DESKTOP};
    std::vector<std::string> paths;
    for (int i = 0; i < amount; ++i)
    {
        std::string path = _many.path() + "/" + std::to_string(i);
        while (path.size() < length)
        {
            path += path.size() % 2 == 0 ? "%" : "\xFF";
        }
        std::ofstream(path) << "x";
        paths.push_back(path);
    }
    command.insert(command.end(), paths.begin(), paths.end());
    EXPECT_EQ(runMeanwhile(command), 0);
    tsRunUntil("all of them are open", [&] { return _pFrame->documents().size() == paths.size(); });
    EXPECT_TRUE(openDocuments() == paths);
}

TEST_F(SessionBusWindowTest, ManySecondStartsAtOnceHandEverythingOver)
{
    start();
    const int threads = 3;
    const int starts = 4;
    std::vector<std::vector<std::string>> commands;
    std::vector<std::string> paths;
    for (int number = 0; number < threads * starts; ++number)
    {
        commands.push_back({COUNTERSIGN_DESKTOP});
        for (int i = 0; i < 10; ++i)
        {
            paths.push_back(makeDocument(std::to_string(number) + " " + std::to_string(i)));
            commands.back().push_back(paths.back());
        }
    }
    meanwhile("the last of them",
              [&]
              {
                  std::vector<std::thread> several;
                  for (int thread = 0; thread < threads; ++thread)
                  {
                      several.emplace_back(
                          [&, thread]
                          {
                              for (int number = 0; number < starts; ++number)
                              {
                                  EXPECT_EQ(run(commands[static_cast<std::size_t>(thread * starts + number)]), 0);
                              }
                          });
                  }
                  for (std::thread& one : several)
                  {
                      one.join();
                  }
              });
    tsRunUntil("all of them are open", [&] { return _pFrame->documents().size() == paths.size(); });
    EXPECT_THAT(openDocuments(), testing::UnorderedElementsAreArray(paths));
}

TEST_F(SessionBusWindowTest, WhoeverStartsWhileTheWindowClosesIsTheNextOne)
{
    start();
    _pFrame->Close();
    _pFrame = nullptr;
    // It is not gone yet, and its event loop would take requests still.
    hoSessionBus later;
    EXPECT_EQ(later.start({makeDocument("late")}, nullptr, nullptr), hoSessionBus::Outcome::First);
    tsRunEvents();
}

TEST_F(SessionBusWindowTest, WhatCannotBeOpenedDoesNotKeepTheOthersOut)
{
    start();
    const std::string there = makeDocument("there");
    EXPECT_EQ(callOpen({_folder + "/not there", _folder, there}), 0);
    tsRunUntil("the document is open", [&] { return _pFrame->documents().size() == 1; });
    EXPECT_EQ(openDocuments(), std::vector<std::string>{there});
}

TEST_F(SessionBusWindowTest, ADocumentThatArrivesWhileTheWindowIsMadeIsOpened)
{
    // The stranger asks as soon as the name is there, which is while the window's constructor runs.
    const std::string path = makeDocument("early");
    const std::string command = "gdbus wait --session --timeout 30 " + std::string(hoSessionBus::NAME) +
                                " && gdbus call --session --dest " + hoSessionBus::NAME + " --object-path " +
                                hoSessionBus::OBJECT_PATH + " --method org.freedesktop.Application.Open \"['file://" +
                                path + "']\" {}";
    std::thread stranger(
        [&]
        {
            // NOLINTNEXTLINE(cert-env33-c): a fixed command of this test
            EXPECT_EQ(std::system(("exec >/dev/null; " + command).c_str()), 0);
        });
    start();
    tsRunUntil("the document is open", [&] { return _pFrame->documents().size() == 1; });
    stranger.join();
    EXPECT_EQ(openDocuments(), std::vector<std::string>{path});
}
