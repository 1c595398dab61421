// SPDX-License-Identifier: Apache-2.0
// Assertions that fail faster than anybody can decide about them: the window stays usable, there is one dialog at a
// time, and what was decided holds.
#include "tests/host/MainFrameFixture.h"

#include "assertionHandling/ahAssertDialog.h"
#include "assertionReporting/arAssertionReportWindow.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "tests/support/tsCaughtErrors.h"

#include <gmock/gmock.h>
#include <wx/timer.h>

#include <atomic>
#include <thread>

namespace
{
void fail(int line)
{
    gtTriggerAssertonFailureHandler("aFunction", "/source/aFile.cpp", line, "Assertion failure (x != 0)");
}

ahAssertDialog* assertionDialog()
{
    return dynamic_cast<ahAssertDialog*>(tsTopModalDialog());
}

std::size_t amountOfAssertionDialogs()
{
    std::size_t amount = 0;
    for (const wxWindow* pWindow : wxTopLevelWindows)
    {
        amount += dynamic_cast<const ahAssertDialog*>(pWindow) != nullptr && pWindow->IsShown() ? 1U : 0U;
    }
    return amount;
}

// Threads that do nothing but fail, at lines from 1 on, until they are told to stop.
class Storm
{
public:
    explicit Storm(int threads)
    {
        for (int line = 1; line <= threads; ++line)
        {
            _threads.emplace_back(
                [this, line]
                {
                    while (!_isOver)
                    {
                        fail(line);
                        ++_amount;
                    }
                });
        }
    }
    ~Storm()
    {
        _isOver = true;
        for (std::thread& thread : _threads)
        {
            thread.join();
        }
    }
    Storm(const Storm&) = delete;
    Storm& operator=(const Storm&) = delete;

    long amount() const { return _amount; }

private:
    std::atomic<bool> _isOver{false};
    std::atomic<long> _amount{0};
    std::vector<std::thread> _threads;
};

class HostileAssertions : public MainFrameFixture
{
protected:
    void startWithDialogs()
    {
        start();
        _pFrame->setAssertionDialogs(true);
    }
    // Ends every dialog that comes while the condition does not hold yet; gives their titles.
    std::vector<std::string> endDialogsUntil(const std::string& what, int decision,
                                             const std::function<bool(std::size_t)>& condition)
    {
        std::vector<std::string> titles;
        tsRunUntil(what,
                   [&]
                   {
                       EXPECT_LE(amountOfAssertionDialogs(), 1U);
                       if (ahAssertDialog* pDialog = assertionDialog())
                       {
                           titles.push_back(pDialog->GetTitle().utf8_string());
                           pDialog->EndModal(decision);
                       }
                       return condition(titles.size());
                   });
        return titles;
    }

    const tsCaughtErrors _errors;
};
}  // namespace

TEST_F(HostileAssertions, OfThreadsLeaveTheWindowUsable)
{
    startWithDialogs();
    choose("alt+d", "r");
    tsRunUntil("the report is open", [this] { return isAnotherWindowActive(); });

    Storm storm(2);
    const std::vector<std::string> titles = endDialogsUntil("both places are ignored", AH_IGNORE_ALL_BUTTON_ID,
                                                            [](std::size_t amount) { return amount == 2; });
    EXPECT_THAT(titles,
                testing::UnorderedElementsAre("Assert in: aFile.cpp - Line: 1", "Assert in: aFile.cpp - Line: 2"));
    // What the window does takes its time, and is done.
    const long before = storm.amount();
    openAskedFor(_folder.write("a.txt", "x"));
    EXPECT_THAT(rows(), testing::ElementsAre("a.txt"));
    tsPressKeys("Escape");
    tsRunUntil("the report is closed", [this] { return tsHasKeyboard(*_pFrame); });
    tsPressKeys("ctrl+w");
    tsRunUntil("the document is closed", [this] { return rows().empty(); });
    tsRunUntil("much has failed meanwhile", [&] { return storm.amount() > before + 1000; });
    EXPECT_EQ(amountOfAssertionDialogs(), 0U);
}

TEST_F(HostileAssertions, OfOnePlaceWaitOnce)
{
    startWithDialogs();
    std::thread(
        []
        {
            for (int i = 0; i < 1000; ++i)
            {
                fail(1);
                fail(2);
            }
        })
        .join();
    endDialogsUntil("both were decided", AH_IGNORE_BUTTON_ID, [](std::size_t amount) { return amount == 2; });
    for (int i = 0; i < 5; ++i)
    {
        settle();
    }
    EXPECT_EQ(amountOfAssertionDialogs(), 0U);
}

TEST_F(HostileAssertions, OfTheMainThreadComeOneAtATime)
{
    startWithDialogs();
    class FailingTimer : public wxTimer
    {
    public:
        void Notify() override
        {
            for (int i = 0; i < 3; ++i)
            {
                fail(1);
                ++_amount;
            }
        }
        int _amount = 0;
    };
    FailingTimer timer;
    timer.Start(1);
    endDialogsUntil("it failed while dialogs were up", AH_IGNORE_BUTTON_ID,
                    [](std::size_t amount) { return amount > 3; });
    endDialogsUntil("the place is ignored", AH_IGNORE_ALL_BUTTON_ID, [](std::size_t amount) { return amount > 0; });
    const int before = timer._amount;
    tsRunUntil("it fails on", [&] { return timer._amount > before + 100; });
    EXPECT_EQ(amountOfAssertionDialogs(), 0U);
}

TEST_F(HostileAssertions, ComeAboveAnotherDialog)
{
    startWithDialogs();
    tsPressKeys("ctrl+e");
    tsScript script;
    const auto isTexts = []
    {
        const auto* pDialog = dynamic_cast<wxDialog*>(tsTopModalDialog());
        return pDialog != nullptr && pDialog->GetTitle() == "Texts" && tsHasKeyboard(*pDialog);
    };
    script.waitUntil("the texts are there", isTexts)
        .perform("fail", [] { std::thread([] { fail(1); }).join(); })
        .waitUntil("the assertion's dialog has the keyboard",
                   [] { return assertionDialog() != nullptr && tsHasKeyboard(*assertionDialog()); })
        .perform("decide", [] { tsPressKeys("alt+i"); })
        .waitUntil("the texts have the keyboard again", isTexts)
        .perform("leave", [] { tsPressKeys("Escape"); })
        .start();
    tsRunUntil("both are gone", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
}
