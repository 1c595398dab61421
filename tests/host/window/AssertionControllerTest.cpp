// SPDX-License-Identifier: Apache-2.0
// The Developer menu's work without a main window.
#include "tests/host/window/BareFrame.h"

#include "assertionHandling/ahAssertDialog.h"
#include "assertionReporting/arAssertionReportWindow.h"
#include "host/window/hoAssertionController.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/baseTools/gtIAssertionFailureHandler.h"
#include "tests/support/tsCaughtErrors.h"

#include <string>
#include <vector>

namespace
{
// Stands for the application's silent handler.
class Recorder : public gtIAssertionFailureHandler
{
public:
    Recorder() { gtRegisterAssertionFailureHandler(this); }
    ~Recorder() override { gtUnRegisterAssertionFailureHandler(this); }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    void onAssertionFailure(const char* functionName, const char*, int, const char*) override
    {
        _functions.emplace_back(functionName);
    }

    std::vector<std::string> _functions;
};

class AssertionController : public BareFrame
{
protected:
    void SetUp() override
    {
        BareFrame::SetUp();
        _pController = std::make_unique<hoAssertionController>(
            *_pFrame,
            hoAssertionController::Callbacks{[this](const wxString& text) { _notices.push_back(text); }, [] {}});
    }
    void TearDown() override
    {
        _pController.reset();
        BareFrame::TearDown();
    }

    std::vector<wxWindow*> reportWindows() const
    {
        std::vector<wxWindow*> found;
        for (wxWindow* pChild : _pFrame->GetChildren())
        {
            if (dynamic_cast<arAssertionReportWindow*>(pChild) != nullptr)
            {
                found.push_back(pChild);
            }
        }
        return found;
    }

    const tsCaughtErrors _errors;
    Recorder _recorder;
    std::vector<wxString> _notices;
    std::unique_ptr<hoAssertionController> _pController;
};
}  // namespace

TEST_F(AssertionController, RegistersItsHandlerBesideTheOthers)
{
    const int before = gtAmountOfRegisteredAssertionFailureHandlers();
    EXPECT_FALSE(_pController->hasDialogs());
    _pController->setDialogs(true);
    EXPECT_TRUE(_pController->hasDialogs());
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), before + 1);
    _pController->setDialogs(false);
    EXPECT_FALSE(_pController->hasDialogs());
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), before);
    _pController->setDialogs(true);
    _pController.reset();
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), before);
}

TEST_F(AssertionController, SaysThatASilentAssertionFailed)
{
    _pController->failAssertion();
    EXPECT_EQ(_notices.size(), 1U);
    EXPECT_EQ(_recorder._functions, std::vector<std::string>{"OnFailAssertion"});
}

TEST_F(AssertionController, AsksAboutAnAssertionWhileThereAreDialogs)
{
    _pController->setDialogs(true);
    bool isDeciding = false;
    tsScript script;
    script
        .waitUntil("the dialog has the keyboard",
                   []
                   {
                       const auto* pDialog = dynamic_cast<ahAssertDialog*>(tsTopModalDialog());
                       return pDialog != nullptr && tsHasKeyboard(*pDialog);
                   })
        .perform("ignore it",
                 [&]
                 {
                     isDeciding = _pController->isDeciding();
                     tsPressKeys("Return");
                 })
        .start();
    _pController->failAssertion();
    EXPECT_TRUE(script.isFinished());
    EXPECT_TRUE(isDeciding);
    EXPECT_FALSE(_pController->isDeciding());
    EXPECT_TRUE(_notices.empty());
    EXPECT_EQ(_recorder._functions.size(), 1U) << "the others are called as well";
}

TEST_F(AssertionController, ShowsOneReportWindow)
{
    EXPECT_TRUE(reportWindows().empty());
    _pController->showReport();
    ASSERT_EQ(reportWindows().size(), 1U);
    wxWindow* const pWindow = reportWindows()[0];
    EXPECT_TRUE(pWindow->IsShown());
    pWindow->Hide();
    _pController->showReport();
    EXPECT_EQ(reportWindows(), std::vector<wxWindow*>{pWindow});
    EXPECT_TRUE(pWindow->IsShown());
}
