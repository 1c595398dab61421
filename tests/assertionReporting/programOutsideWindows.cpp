// SPDX-License-Identifier: Apache-2.0
// Programs whose assertions fail where no dialog can be shown. They print the report's messages and "went on".
//
//     program_outside_windows testRunner    without an application object
//     program_outside_windows console       an application without windows
//     program_outside_windows noDisplay     an application with windows whose toolkit does not start
//     program_outside_windows life          an application with windows: before it starts, in OnExit, after it has
//                                           ended
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>

#include <wx/app.h>
#include <wx/frame.h>
#include <wx/init.h>

#include "assertionReporting/arAssertionKit.h"
#include "assertionReporting/arAssertionReport.h"
#include "platform/baseTools/gtAssert.h"

namespace
{

void fail(const char* pText)
{
    GT_ASSERT_EX(1 + 1 == 3, pText);
}

std::unique_ptr<arAssertionKit> newKit()
{
    auto pKit = std::make_unique<arAssertionKit>();
    pKit->setAsking(true);
    pKit->bridgeToolkit();
    return pKit;
}

void print(const arAssertionKit& kit)
{
    for (const arAssertionRow& row : kit.report()->rows())
    {
        std::printf("%u times, last %s\n", static_cast<unsigned int>(row._count), row._message.asCharArray());
    }
}

void failInEveryWay()
{
    fail("on the main thread");
    wxASSERT_MSG(1 + 1 == 3, "of the toolkit");
    std::thread([] { fail("on a thread"); }).join();
}

int runTestRunner()
{
    const auto pKit = newKit();
    failInEveryWay();
    print(*pKit);
    return 0;
}

class ConsoleApplication : public wxAppConsole
{
public:
    int OnRun() override { return 0; }
};

int runConsole()
{
    wxAppConsole::SetInstance(new ConsoleApplication);
    const wxInitializer initializer;
    const auto pKit = newKit();
    failInEveryWay();
    // What the thread has asked for comes here, if anything does.
    wxAppConsole::GetInstance()->ProcessPendingEvents();
    print(*pKit);
    return initializer.IsOk() ? 0 : 1;
}

class Application : public wxApp
{
public:
    Application() : _pKit(newKit()) { fail("before it starts"); }
    ~Application() override
    {
        fail("after it has ended");
        print(*_pKit);
    }
    bool OnInit() override
    {
        auto* const pFrame = new wxFrame(nullptr, wxID_ANY, "window");
        CallAfter([pFrame] { pFrame->Destroy(); });
        return true;
    }
    int OnExit() override
    {
        fail("in OnExit");
        return 0;
    }

private:
    const std::unique_ptr<arAssertionKit> _pKit;
};

int runApplication()
{
    wxAppConsole::SetInstance(new Application);
    int argc = 1;
    std::string name = "program";
    char* argv[] = {name.data(), nullptr};
    const int status = wxEntry(argc, argv);
    // The kit is gone with the application.
    fail("without a kit");
    return status;
}

int runWithoutDisplay()
{
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    runApplication();
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    const std::map<std::string, std::function<int()>> ways = {{"testRunner", &runTestRunner},
                                                              {"console", &runConsole},
                                                              {"noDisplay", &runWithoutDisplay},
                                                              {"life", &runApplication}};
    const int status = argc == 2 ? ways.at(argv[1])() : 2;
    std::puts("went on");
    return status;
}
