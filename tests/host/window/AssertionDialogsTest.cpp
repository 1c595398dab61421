// SPDX-License-Identifier: Apache-2.0
// The Developer menu: the interactive handler beside the silent one.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/NewKey.h"

#include "assertionHandling/ahAssertDialog.h"
#include "assertionReporting/arAssertionReport.h"
#include "assertionReporting/arInteractiveAssertionFailureHandler.h"
#include "host/window/hoProgressDialog.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "tests/support/tsCaughtErrors.h"

#include <gmock/gmock.h>
#include <wx/menu.h>
#include <wx/timer.h>

#include <stdexcept>
#include <thread>

namespace
{
using testing::HasSubstr;

std::size_t occurrences(const std::string& text, const std::string& part)
{
    std::size_t amount = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    {
        ++amount;
    }
    return amount;
}

bool hasDialogKeyboard()
{
    const auto* pDialog = dynamic_cast<ahAssertDialog*>(tsTopModalDialog());
    return pDialog != nullptr && tsHasKeyboard(*pDialog);
}

class AssertionDialogs : public MainFrameFixture
{
protected:
    void switchByMenu(bool areOn)
    {
        choose("alt+d", "a");
        tsRunUntil("the menu has done it", [&] { return _pFrame->hasAssertionDialogs() == areOn; });
    }
    static void fail(int line, const char* message = "Assertion failure (x != 0)")
    {
        gtTriggerAssertonFailureHandler("aFunction", "/source/aFile.cpp", line, message);
    }
    // How many dialogs there were while something happens; each is left by that key.
    template <class Work>
    int dialogsDuring(const std::string& key, Work work)
    {
        int amount = 0;
        tsScript script;
        script.waitUntil("the dialog has the keyboard", &hasDialogKeyboard)
            .perform("decide",
                     [&]
                     {
                         ++amount;
                         tsPressKeys(key);
                     })
            .start();
        work();
        EXPECT_TRUE(script.isFinished());
        return amount;
    }

    // How many dialogs come while something happens; each is ended at once.
    template <class Work>
    int dialogsThatComeDuring(Work work)
    {
        int amount = 0;
        wxTimer timer;
        timer.Bind(wxEVT_TIMER,
                   [&](wxTimerEvent&)
                   {
                       // Once it runs, and not while it is being shown.
                       auto* pDialog = dynamic_cast<ahAssertDialog*>(tsTopModalDialog());
                       if (pDialog != nullptr && tsHasKeyboard(*pDialog))
                       {
                           ++amount;
                           pDialog->EndModal(AH_IGNORE_BUTTON_ID);
                       }
                   });
        timer.Start(1);
        work();
        return amount;
    }
    static const hoProgressDialog* progress()
    {
        for (const wxWindow* pWindow : wxTopLevelWindows)
        {
            const auto* pProgress = dynamic_cast<const hoProgressDialog*>(pWindow);
            if (pProgress != nullptr && pProgress->IsShown())
            {
                return pProgress;
            }
        }
        return nullptr;
    }

    const tsCaughtErrors _errors;
};
}  // namespace

TEST_F(AssertionDialogs, AreOffAtFirst)
{
    start();
    EXPECT_FALSE(_pFrame->hasAssertionDialogs());
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    choose("alt+d", "f");
    // Until then it tells what the menu's item does.
    tsRunUntil("the status bar tells of the failure",
               [this] { return status(0) == "An assertion failed, and its handler stayed silent"; });
    EXPECT_EQ(tsTopModalDialog(), nullptr);
    EXPECT_EQ(occurrences(_errors.take(), "Assertion failure"), 0U);
}

TEST_F(AssertionDialogs, ComeAndGoByTheMenu)
{
    start();
    switchByMenu(true);
    // The silent one stays registered.
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 2);
    dialogsDuring("alt+i", [] { fail(1); });

    switchByMenu(false);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    fail(2);
    EXPECT_EQ(tsTopModalDialog(), nullptr);
    const std::string report = _errors.take();
    EXPECT_EQ(occurrences(report, "Assertion failure"), 2U);  // once in the frame of the line, once in the message
    EXPECT_THAT(report,
                HasSubstr(" - Assertion failure: Assertion failure (x != 0) aFunction /source/aFile.cpp line 1"));
}

TEST_F(AssertionDialogs, AreReachedByTheMenu)
{
    start();
    switchByMenu(true);
    bool isAnswered = false;
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &hasDialogKeyboard)
        .perform("check and leave it",
                 [&]
                 {
                     EXPECT_THAT(tsTopModalDialog()->GetLabel().utf8_string(),
                                 HasSubstr("Assert in: hoAssertionController.cpp"));
                     isAnswered = true;
                     tsPressKeys("alt+i");
                 })
        .start();
    choose("alt+d", "f");
    tsRunUntil("the dialog is gone", [&] { return isAnswered && tsTopModalDialog() == nullptr; });
    EXPECT_EQ(occurrences(_errors.take(), "asked for in the Developer menu"), 1U);
}

TEST_F(AssertionDialogs, StayAwayFromAnIgnoredLocation)
{
    start();
    _pFrame->setAssertionDialogs(true);
    dialogsDuring("Return", [] { fail(7); });  // "Ignore all" is the default
    fail(7);
    EXPECT_EQ(tsTopModalDialog(), nullptr);
    dialogsDuring("alt+i", [] { fail(8); });
    EXPECT_EQ(occurrences(_errors.take(), " line "), 3U);
}

TEST_F(AssertionDialogs, StayAwayFromAnIgnoredLocationHoweverOftenTheyAreSwitched)
{
    start();
    switchByMenu(true);
    dialogsDuring("Return", [] { fail(7); });
    switchByMenu(false);
    switchByMenu(true);
    EXPECT_EQ(dialogsThatComeDuring([] { fail(7); }), 0);
    EXPECT_EQ(dialogsThatComeDuring([] { fail(8); }), 1);
    EXPECT_EQ(occurrences(_errors.take(), " line "), 3U);
}

// It would take the keyboard, and Return would decide about an assertion that nobody has read.
TEST_F(AssertionDialogs, HoldTheProgressOfSigningBack)
{
    start();
    _pFrame->setAssertionDialogs(true);
    hoKeyRing keys;
    keys._private._pKey = newKey(1024);
    _pFrame->setKeys(keys);
    // Of holes alone: it takes longer than the test.
    std::filesystem::resize_file(_folder.write("huge", ""), 1ULL << 40);
    openAskedFor(_folder.path("huge"));

    // Longer than the progress waits by itself.
    bool isOver = false;
    wxTimer timer;
    timer.Bind(wxEVT_TIMER, [&](wxTimerEvent&) { isOver = true; });
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &hasDialogKeyboard)
        .perform("begin to sign",
                 [&]
                 {
                     wxCommandEvent event(wxEVT_MENU, _pFrame->GetMenuBar()->FindMenuItem("Signature", "Sign all"));
                     _pFrame->ProcessWindowEvent(event);
                     EXPECT_TRUE(_pFrame->isAtWork());
                     timer.StartOnce(1100);
                 })
        .waitUntil("the progress would be there", [&] { return isOver; })
        .perform("decide",
                 []
                 {
                     EXPECT_EQ(progress(), nullptr);
                     EXPECT_TRUE(hasDialogKeyboard());
                     tsPressKeys("alt+i");
                 })
        .start();
    fail(1);
    EXPECT_TRUE(script.isFinished());
    tsRunUntil("the progress is there and has the keyboard",
               [] { return progress() != nullptr && tsHasKeyboard(*progress()); });
    tsPressKeys("Escape");
    tsRunUntil("the work has ended", [this] { return !_pFrame->isAtWork(); });
}

TEST_F(AssertionDialogs, ComeForTheToolkitsAssertionsToo)
{
    start();
    _pFrame->setAssertionDialogs(true);
    dialogsDuring("alt+i", [] { wxASSERT(1 + 1 == 3); });
    EXPECT_EQ(occurrences(_errors.take(), "Assertion failure (1 + 1 == 3)"), 1U);
}

TEST_F(AssertionDialogs, ThatAreOffLeaveALineOfAnException)
{
    start();
    bool isThrown = false;
    _pFrame->CallAfter(
        [&]
        {
            isThrown = true;
            throw std::runtime_error("of a handler");
        });
    tsRunUntil("it is thrown", [&] { return isThrown; });
    EXPECT_EQ(occurrences(_errors.take(), "Unhandled exception of type std::runtime_error: of a handler\n"), 1U);
}

TEST_F(AssertionDialogs, OfAnotherThreadComeOnTheMainOne)
{
    start();
    _pFrame->setAssertionDialogs(true);
    // The thread must not wait for the dialog: nothing handles events while it is joined.
    std::thread worker([] { fail(7, std::string("of a thread").c_str()); });
    worker.join();
    EXPECT_EQ(tsTopModalDialog(), nullptr);
    bool isAnswered = false;
    dialogsDuring("alt+i",
                  [&]
                  {
                      tsRunUntil("the dialog came", [] { return hasDialogKeyboard(); });
                      isAnswered = true;
                  });
    EXPECT_TRUE(isAnswered);
    tsRunUntil("the dialog is gone", [] { return tsTopModalDialog() == nullptr; });
    EXPECT_EQ(occurrences(_errors.take(), "of a thread"), 1U);
}

TEST_F(AssertionDialogs, ComeOneAtATime)
{
    start();
    _pFrame->setAssertionDialogs(true);
    int dialogs = 0;
    tsScript script;
    script.waitUntil("the dialog has the keyboard", &hasDialogKeyboard)
        .perform("fail again, here and elsewhere",
                 [&]
                 {
                     for (const wxWindow* pWindow : wxTopLevelWindows)
                     {
                         dialogs += dynamic_cast<const ahAssertDialog*>(pWindow) != nullptr ? 1 : 0;
                     }
                     fail(2);
                     std::thread([] { fail(3); }).join();
                 })
        .perform("see that there is one dialog still",
                 [&]
                 {
                     for (const wxWindow* pWindow : wxTopLevelWindows)
                     {
                         dialogs += dynamic_cast<const ahAssertDialog*>(pWindow) != nullptr ? 1 : 0;
                     }
                     tsPressKeys("alt+i");
                 })
        .start();
    fail(1);
    EXPECT_TRUE(script.isFinished());
    EXPECT_EQ(dialogs, 2);
    settle();
    EXPECT_EQ(tsTopModalDialog(), nullptr);
    EXPECT_EQ(occurrences(_errors.take(), " line "), 3U);
}

TEST_F(AssertionDialogs, EndWithTheWindow)
{
    start();
    _pFrame->setAssertionDialogs(true);
    // Its dialog would come after the handler is gone.
    std::thread([] { fail(3); }).join();
    delete _pFrame;
    _pFrame = nullptr;
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
    fail(4);
    settle();
    EXPECT_EQ(tsTopModalDialog(), nullptr);
    EXPECT_EQ(occurrences(_errors.take(), " line "), 1U);
}

TEST_F(AssertionDialogs, LeaveNothingBehindWhenTheApplicationEndsFirst)
{
    start();
    _pFrame->setAssertionDialogs(true);
    wxGetApp().OnExit();
    closeWindow();
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
}

TEST_F(AssertionDialogs, SurviveTheWindowsEndWhileOneIsUp)
{
    start();
    _pFrame->setAssertionDialogs(true);
    dialogsDuring("alt+i",
                  [this]
                  {
                      _pFrame->CallAfter(
                          [this]
                          {
                              delete _pFrame;
                              _pFrame = nullptr;
                          });
                      fail(1);
                  });
    EXPECT_EQ(_pFrame, nullptr);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 1);
}

TEST_F(AssertionDialogs, KeepErrno)
{
    start();
    arInteractiveAssertionFailureHandler handler(0, std::make_shared<arAssertionReport>());
    errno = EXDEV;
    handler.onAssertionFailure(nullptr, nullptr, 3, nullptr);
    EXPECT_EQ(errno, EXDEV);
}
