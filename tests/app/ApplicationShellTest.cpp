// SPDX-License-Identifier: Apache-2.0
// What the application object does without the toolkit running.
#include "app/ApplicationShell.h"

#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>
#include <wx/build.h>

#include "MainFrame.h"

#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/toolkit/gtTextConversion.h"
#include "tests/support/failingAllocation.h"
#include "tests/support/tsAssertionRecorder.h"

namespace
{

class OpenShell : public ApplicationShell
{
public:
    using ApplicationShell::_pAssertionFailureHandler;
    using ApplicationShell::_pMainFrame;
};

template <class Operation>
std::ptrdiff_t slotOf(Operation operation)
{
    // A member pointer to a virtual operation holds 1 + its offset in the table (Itanium C++ ABI 2.3).
    std::ptrdiff_t slot = 0;
    std::memcpy(&slot, &operation, sizeof(slot));
    return slot;
}

const char* const argumentsReport =
    "MacOpenFile app/ApplicationShell.cpp 109 Assertion failure ((argc == 0)&&(argv == __null))";
const char* const handlerReport =
    "OnInit app/ApplicationShell.cpp 51 Assertion failure (_pAssertionFailureHandler != __null)";

std::vector<std::string>& optionsChecks()
{
    static std::vector<std::string> checks;
    return checks;
}

int amountOfToolkitsExits = 0;

// Notes how many handlers there are when it is destroyed.
class LastHandler : public ahDialogBasedAssertionFailureHandler
{
public:
    explicit LastHandler(std::vector<int>& amounts) : ahDialogBasedAssertionFailureHandler(1), _amounts(amounts) {}
    LastHandler(const LastHandler&) = delete;
    LastHandler& operator=(const LastHandler&) = delete;
    ~LastHandler() override { _amounts.push_back(gtAmountOfRegisteredAssertionFailureHandlers()); }

private:
    std::vector<int>& _amounts;
};

}  // namespace

// In the place of the toolkit's own functions, of which nothing would be seen.

bool wxAppConsoleBase::CheckBuildOptions(const char* optionsSignature, const char* componentName)
{
    optionsChecks().push_back(std::string(optionsSignature) + ", " + componentName);
    return true;
}

int wxAppBase::OnExit()
{
    ++amountOfToolkitsExits;
    return 0;
}

int wxAppConsoleBase::OnExit()
{
    ++amountOfToolkitsExits;
    return 0;
}

TEST(Shell, HasItsOperationsAndFieldsInTheirOrder)
{
    static_assert(std::is_base_of<wxApp, ApplicationShell>::value, "");
    static_assert(std::has_virtual_destructor<ApplicationShell>::value, "");
    static_assert(sizeof(OpenShell) == sizeof(wxApp) + 2 * sizeof(void*), "two fields and no other");
    EXPECT_EQ(slotOf(&ApplicationShell::OnInit), slotOf(&wxApp::OnInit));
    EXPECT_EQ(slotOf(&ApplicationShell::OnExit), slotOf(&wxApp::OnExit));
    EXPECT_LT(slotOf(&ApplicationShell::OnInit), slotOf(&ApplicationShell::OnExit));

    const OpenShell shell;
    EXPECT_LT(static_cast<const void*>(&shell._pMainFrame), static_cast<const void*>(&shell._pAssertionFailureHandler));
}

TEST(Shell, IsEmptyAfterConstruction)
{
    const OpenShell shell;
    EXPECT_EQ(shell._pMainFrame, nullptr);
    EXPECT_EQ(shell._pAssertionFailureHandler, nullptr);
    EXPECT_EQ(shell.argc, 0);
    EXPECT_TRUE(shell.argv.IsEmpty());
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
}

TEST(Shell, IsMadeByTheRegisteredFactory)
{
    EXPECT_EQ(wxApp::GetInitializerFunction(), &wxCreateApp);
    const std::unique_ptr<wxAppConsole> pApplication(wxCreateApp());
    auto* pShell = dynamic_cast<ApplicationShell*>(pApplication.get());
    ASSERT_NE(pShell, nullptr);
    EXPECT_EQ(wxApp::GetInstance(), pShell);
    EXPECT_EQ(&wxGetApp(), pShell);
}

TEST(Shell, IsMadeAfterALookAtTheBuildOptions)
{
    optionsChecks().clear();
    const std::unique_ptr<wxAppConsole> pApplication(wxCreateApp());
    EXPECT_EQ(optionsChecks(), (std::vector<std::string>{std::string(WX_BUILD_OPTIONS_SIGNATURE) + ", your program"}));
}

TEST(Shell, KeepsTheFirstDocumentInItsArguments)
{
    tsAssertionRecorder recorder;
    OpenShell shell;
    const wxString path = gtPathTextFromBytes(gtString("/tmp/caf\xC3\xA9 \xFF.txt"));
    shell.MacOpenFile(path);
    EXPECT_EQ(shell.argc, 1);
    ASSERT_EQ(shell.argv.GetArguments().size(), 1U);
    EXPECT_EQ(shell.argv[0], path);
    EXPECT_EQ(gtPathBytesFromText(shell.argv[0]), gtString("/tmp/caf\xC3\xA9 \xFF.txt"));
    EXPECT_TRUE(recorder.reports.empty());

    shell.MacOpenFile("/tmp/second.txt");
    EXPECT_EQ(shell.argc, 1);
    ASSERT_EQ(shell.argv.GetArguments().size(), 1U);
    EXPECT_EQ(shell.argv[0], path);
    EXPECT_EQ(recorder.lines(), std::vector<std::string>{argumentsReport});
    EXPECT_EQ(shell._pMainFrame, nullptr);
}

TEST(Shell, KeepsADocumentOfAnyName)
{
    for (const wxString& name : {wxString(), wxString("-"), wxString('x', 100000), wxString(L"\U0001F600")})
    {
        OpenShell shell;
        shell.MacOpenFile(name);
        EXPECT_EQ(shell.argc, 1);
        ASSERT_EQ(shell.argv.GetArguments().size(), 1U);
        EXPECT_EQ(shell.argv[0], name);
    }
}

TEST(Shell, DropsADocumentWhenThereAreArguments)
{
    {
        tsAssertionRecorder recorder;
        OpenShell shell;
        shell.argc = 3;
        shell.MacOpenFile("/tmp/a.txt");
        EXPECT_EQ(shell.argc, 3);
        EXPECT_TRUE(shell.argv.IsEmpty());
        EXPECT_EQ(recorder.lines(), std::vector<std::string>{argumentsReport});
    }
    {
        tsAssertionRecorder recorder;
        OpenShell shell;
        const wchar_t* arguments[] = {L"program"};
        shell.argv.Init(1, arguments);
        shell.MacOpenFile("/tmp/a.txt");
        EXPECT_EQ(shell.argc, 0);
        EXPECT_EQ(shell.argv.GetArguments().size(), 1U);
        EXPECT_EQ(shell.argv[0], "program");
        EXPECT_EQ(recorder.lines(), std::vector<std::string>{argumentsReport});
    }
}

TEST(Shell, ExitsWithZeroWithoutEverHavingStarted)
{
    OpenShell shell;
    EXPECT_EQ(shell.OnExit(), 0);
    EXPECT_EQ(shell.OnExit(), 0);
}

TEST(Shell, UnregistersTheHandlerAndThenDeletesIt)
{
    std::vector<int> amountsAtTheEnd;
    OpenShell shell;
    shell._pAssertionFailureHandler = new LastHandler(amountsAtTheEnd);
    gtRegisterAssertionFailureHandler(shell._pAssertionFailureHandler);
    EXPECT_EQ(shell.OnExit(), 0);
    EXPECT_EQ(amountsAtTheEnd, std::vector<int>{0});
    EXPECT_EQ(shell._pAssertionFailureHandler, nullptr);
}

TEST(Shell, ExitsWithoutTheToolkitsOwnExit)
{
    amountOfToolkitsExits = 0;
    OpenShell shell;
    shell._pAssertionFailureHandler = new ahDialogBasedAssertionFailureHandler(1);
    EXPECT_EQ(shell.OnExit(), 0);
    EXPECT_EQ(shell.OnExit(), 0);
    EXPECT_EQ(amountOfToolkitsExits, 0);

    // They are what a call of the base class would reach.
    EXPECT_EQ(shell.wxApp::OnExit(), 0);
    EXPECT_EQ(shell.wxAppConsole::OnExit(), 0);
    EXPECT_EQ(amountOfToolkitsExits, 2);
}

TEST(Shell, DoesNotStartWithoutMemoryForTheMainWindow)
{
    tsAssertionRecorder recorder;
    OpenShell shell;
    MainFrame::hasNoMemory = true;
    EXPECT_FALSE(shell.OnInit());
    MainFrame::hasNoMemory = false;
    EXPECT_EQ(shell._pMainFrame, nullptr);
    ASSERT_NE(shell._pAssertionFailureHandler, nullptr);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 2);
    EXPECT_TRUE(recorder.reports.empty());

    EXPECT_EQ(shell.OnExit(), 0);
    EXPECT_EQ(shell._pAssertionFailureHandler, nullptr);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
}

TEST(Shell, GoesOnWithoutMemoryForTheHandler)
{
    tsAssertionRecorder recorder;
    recorder.reports.reserve(10);
    OpenShell shell;
    MainFrame::hasNoMemory = true;
    const OneFailingAllocation failure(0);
    EXPECT_FALSE(shell.OnInit());
    EXPECT_TRUE(failure.hasFailed());
    MainFrame::hasNoMemory = false;
    EXPECT_EQ(shell._pAssertionFailureHandler, nullptr);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    EXPECT_EQ(recorder.lines(), std::vector<std::string>{handlerReport});
    EXPECT_EQ(shell.OnExit(), 0);
}

TEST(Shell, LeavesTheHandlerAloneWhenItIsDestroyed)
{
    ahDialogBasedAssertionFailureHandler handler(osGetCurrentThreadId());
    {
        OpenShell shell;
        shell._pAssertionFailureHandler = &handler;
    }
    EXPECT_FALSE(handler.isInIgnoredSourceLocations(osFilePath(), 0));
}

TEST(Shell, GivesTheHandlerTheMainThreadsId)
{
    class OpenHandler : public ahDialogBasedAssertionFailureHandler
    {
    public:
        using ahDialogBasedAssertionFailureHandler::_mainThreadId;
    };
    OpenShell shell;
    MainFrame::hasNoMemory = true;
    EXPECT_FALSE(shell.OnInit());
    MainFrame::hasNoMemory = false;
    const auto id = &OpenHandler::_mainThreadId;
    EXPECT_EQ(shell._pAssertionFailureHandler->*id, osGetCurrentThreadId());
    EXPECT_EQ(shell.OnExit(), 0);
}
