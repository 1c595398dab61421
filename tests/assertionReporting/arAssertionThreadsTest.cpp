// SPDX-License-Identifier: Apache-2.0
// Assertions that fail on many threads while dialogs come and go, for the thread sanitizer to look at too. No window of
// the host's is needed: the dialogs are the kit's.
#include "assertionReporting/arAssertionReport.h"
#include "assertionReporting/arInteractiveAssertionFailureHandler.h"

#include "assertionHandling/ahAssertDialog.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/osWrappers/osProcess.h"
#include "tests/support/tsCaughtErrors.h"
#include "tests/support/tsWindowTest.h"

#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/timer.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace
{
class Timer : public wxTimer
{
public:
    explicit Timer(std::function<void()> notify) : _notify(std::move(notify)) {}
    void Notify() override { _notify(); }

private:
    std::function<void()> _notify;
};

class AssertionThreads : public testing::Test
{
protected:
    void SetUp() override { switchOn(); }
    void TearDown() override
    {
        switchOff();
        tsRunEvents();
    }

    void switchOn()
    {
        _pHandler = std::make_shared<arInteractiveAssertionFailureHandler>(osGetCurrentThreadId(), _pReport);
        gtRegisterAssertionFailureHandler(_pHandler.get());
    }
    void switchOff()
    {
        if (_pHandler != nullptr)
        {
            gtUnRegisterAssertionFailureHandler(_pHandler.get());
            _pHandler.reset();
        }
    }

    static ahAssertDialog* dialog() { return dynamic_cast<ahAssertDialog*>(tsTopModalDialog()); }

    // Every dialog that comes is answered, each time with another button; once it runs, and not while it is being
    // shown.
    void answer()
    {
        ahAssertDialog* const pDialog = dialog();
        if (pDialog != nullptr && tsHasKeyboard(*pDialog))
        {
            pDialog->EndModal(++_answers % 2 == 0 ? AH_IGNORE_BUTTON_ID : AH_IGNORE_ALL_BUTTON_ID);
        }
    }

    // Threads that fail some assertions at every turn, until the object is destroyed.
    class Failing
    {
    public:
        explicit Failing(int amount)
        {
            for (int number = 0; number < amount; ++number)
            {
                _threads.emplace_back([this, number] { run(number); });
            }
        }
        ~Failing()
        {
            _mustEnd = true;
            turn();
            for (std::thread& thread : _threads)
            {
                thread.join();
            }
        }
        Failing(const Failing&) = delete;
        Failing& operator=(const Failing&) = delete;

        void turn()
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            ++_turns;
            _turned.notify_all();
        }
        std::uint64_t failures() const { return _failures; }

    private:
        void run(int number)
        {
            std::uint64_t turn = 0;
            for (int line = 0; !_mustEnd; ++line)
            {
                // Gone as soon as the call returns.
                const std::string file = "/source/file" + std::to_string(number) + ".cpp";
                const std::string message = "line " + std::to_string(line);
                errno = line;
                gtTriggerAssertonFailureHandler("run", file.c_str(), line % 500, message.c_str());
                EXPECT_EQ(errno, line);
                ++_failures;
                if (line % failuresATurn == 0)
                {
                    std::unique_lock<std::mutex> lock(_mutex);
                    _turned.wait(lock, [&] { return _mustEnd || _turns > turn; });
                    turn = _turns;
                }
            }
        }

        static constexpr int failuresATurn = 5;
        std::atomic<bool> _mustEnd = false;
        std::atomic<std::uint64_t> _failures = 0;
        std::mutex _mutex;
        std::condition_variable _turned;
        std::uint64_t _turns = 0;
        std::vector<std::thread> _threads;
    };

    const tsCaughtErrors _errors;
    const std::shared_ptr<arAssertionReport> _pReport = std::make_shared<arAssertionReport>();
    std::shared_ptr<arInteractiveAssertionFailureHandler> _pHandler;
    int _answers = 0;
};
}  // namespace

TEST_F(AssertionThreads, FailWhileDialogsComeAndGo)
{
    const int dialogs = 20;
    std::atomic<int> changes = 0;
    _pReport->setListener([&changes] { ++changes; });
    {
        Failing threads(3);
        Timer answering(
            [&]
            {
                answer();
                threads.turn();
            });
        answering.Start(1);
        tsRunUntil("enough dialogs were answered",
                   [&]
                   {
                       for (const arAssertionRow& row : _pReport->rows())
                       {
                           EXPECT_LE(row._count, threads.failures() + 3);
                       }
                       return _answers >= dialogs;
                   });
        // One that fails on the main thread, in the midst of the others' failures.
        gtTriggerAssertonFailureHandler("here", "/source/main.cpp", 1, "on the main thread");
        EXPECT_FALSE(_pHandler->isDeciding());
    }
    _pReport->setListener(nullptr);
    EXPECT_GT(changes, 0);
    EXPECT_GE(_pReport->amountOfFailures(), static_cast<std::uint64_t>(dialogs));
    bool isDecided = false;
    for (const arAssertionRow& row : _pReport->rows())
    {
        isDecided = isDecided || row._decision == arAssertionDecision::IgnoreAll;
    }
    EXPECT_TRUE(isDecided);
}

TEST_F(AssertionThreads, FailWhileTheHandlerComesAndGoes)
{
    std::uint64_t failures = 0;
    Timer answering([this] { answer(); });
    answering.Start(1);
    {
        Failing threads(3);
        for (int round = 0; round < 300; ++round)
        {
            // What waits for its dialog is dropped with the handler; now and then one comes.
            threads.turn();
            switchOff();
            if (round % 50 == 0)
            {
                tsRunEvents();
            }
            switchOn();
            if (round % 50 == 0)
            {
                const int answersBefore = _answers;
                tsRunUntil("a dialog was answered",
                           [&]
                           {
                               threads.turn();
                               return _answers > answersBefore;
                           });
            }
        }
        switchOff();
        failures = _pReport->amountOfFailures();
    }
    tsRunEvents();
    answering.Stop();
    // Nobody was called any more once the handler was off.
    EXPECT_EQ(_pReport->amountOfFailures(), failures);
    EXPECT_GT(failures, 0U);
    EXPECT_GT(_answers, 0);
    EXPECT_EQ(dialog(), nullptr);
}

// Only the first and the last of those that wait are shown: the others are ignored by then.
TEST_F(AssertionThreads, OfManyPlacesWaitUpToALimit)
{
    const int most = static_cast<int>(arInteractiveAssertionFailureHandler::mostWaiting);
    const osFilePath file(gtString("/source/file.cpp"));
    const auto failAt = [](int first, int last)
    {
        std::thread(
            [=]
            {
                for (int line = first; line <= last; ++line)
                {
                    gtTriggerAssertonFailureHandler("run", "/source/file.cpp", line, "message");
                }
            })
            .join();
    };
    // The titles of as many dialogs as come until that line's is ended.
    const auto titlesUntil = [](int line)
    {
        std::vector<std::string> titles;
        tsRunUntil("line " + std::to_string(line) + " is decided",
                   [&]
                   {
                       ahAssertDialog* const pDialog = dialog();
                       if (pDialog != nullptr && tsHasKeyboard(*pDialog))
                       {
                           titles.push_back(pDialog->GetTitle().utf8_string());
                           pDialog->EndModal(AH_IGNORE_BUTTON_ID);
                       }
                       return pDialog == nullptr && !titles.empty() &&
                              titles.back() == "Assert in: file.cpp - Line: " + std::to_string(line);
                   });
        return titles;
    };
    failAt(1, 3 * most);
    for (int line = 2; line < most; ++line)
    {
        _pHandler->handleUsersDecision(AH_IGNORE_ALL_BUTTON_ID, file, line);
    }
    const std::vector<std::string> firstAndLast = titlesUntil(most);
    EXPECT_EQ(firstAndLast.size(), 2U);
    EXPECT_EQ(firstAndLast.front(), "Assert in: file.cpp - Line: 1");
    // There is room again, for what fails from now on, and nothing of what failed before has waited.
    failAt(9999, 9999);
    EXPECT_EQ(titlesUntil(9999).size(), 1U);
}

TEST_F(AssertionThreads, KeepTheHandlerWhoseDialogIsUp)
{
    std::thread([] { gtTriggerAssertonFailureHandler("run", "/source/file.cpp", 1, "message"); }).join();
    const std::weak_ptr<arInteractiveAssertionFailureHandler> pHandler = _pHandler;
    tsRunUntil("the dialog has come and gone",
               [&]
               {
                   ahAssertDialog* const pDialog = dialog();
                   if (_pHandler != nullptr && pDialog != nullptr && tsHasKeyboard(*pDialog))
                   {
                       switchOff();
                       EXPECT_FALSE(pHandler.expired());
                       pDialog->EndModal(AH_IGNORE_BUTTON_ID);
                   }
                   return _pHandler == nullptr && pDialog == nullptr;
               });
    EXPECT_TRUE(pHandler.expired());
    ASSERT_EQ(_pReport->rows().size(), 1U);
    EXPECT_EQ(_pReport->rows()[0]._decision, arAssertionDecision::Ignore);
}
