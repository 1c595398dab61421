// SPDX-License-Identifier: Apache-2.0
// Hours of use in minutes: files that change are signed and tested, by the command line and in the real window;
// assertion dialogs come and are answered; documents and windows are opened and closed. Nothing may grow by it or be
// lost.
//
// scripts/soak.sh runs it for long. COUNTERSIGN_SOAK_SECONDS: how long (default 3); COUNTERSIGN_SOAK_WORK: one kind of
// work alone, by its name below, to find out where something grows.
#include "skJudgement.h"

#include "assertionHandling/ahAssertDialog.h"
#include "host/window/hoDocumentDropTarget.h"
#include "host/window/hoProgressDialog.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "tests/host/MainFrameFixture.h"
#include "tests/host/NewKey.h"

#include <gmock/gmock.h>
#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/textctrl.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <iostream>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
using Clock = std::chrono::steady_clock;

// Before main: threads keep the part of the heap that they have once got.
const bool isPrepared = (skPrepareSampling(), true);

constexpr int documents = 5;
constexpr int leastRounds = 4;
constexpr int warmUpRounds = 3;
constexpr int mostMoments = 400;

double secondsToRun()
{
    const char* const pText = std::getenv("COUNTERSIGN_SOAK_SECONDS");
    return pText == nullptr ? 3 : std::atof(pText);
}

// What is written to standard error meanwhile is nobody's concern: every failed assertion writes a line.
class SilentStandardError
{
public:
    SilentStandardError() : _kept(dup(STDERR_FILENO))
    {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
    ~SilentStandardError()
    {
        dup2(_kept, STDERR_FILENO);
        close(_kept);
    }
    SilentStandardError(const SilentStandardError&) = delete;
    SilentStandardError& operator=(const SilentStandardError&) = delete;

private:
    int _kept;
};

pid_t childThatHasEnded()
{
    const pid_t child = fork();
    if (child == 0)
    {
        _exit(0);
    }
    return child;
}

// No more of the toolkit than an assertion dialog is made of, to see what the toolkit itself takes.
class BareDialog : public wxDialog
{
public:
    BareDialog()
        : wxDialog(nullptr, wxID_ANY, "bare", wxDefaultPosition, wxDefaultSize,
                   wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER)
    {
        auto* pText = new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxSize(420, 200),
                                     wxTE_MULTILINE | wxTE_RICH | wxTE_READONLY | wxTE_AUTO_URL);
        for (int line = 0; line < 5; ++line)
        {
            pText->SetDefaultStyle(wxTextAttr(line % 2 == 0 ? *wxBLUE : *wxBLACK));
            pText->AppendText("a line of text\n\n");
        }
        auto* pTop = new wxBoxSizer(wxVERTICAL);
        pTop->Add(pText, wxSizerFlags(1).Expand());
        for (int id = AH_IGNORE_BUTTON_ID; id <= AH_EXIT_BUTTON_ID; ++id)
        {
            pTop->Add(new wxButton(this, id, wxString::Format("&%d", id)));
        }
        SetSizerAndFit(pTop);
        CentreOnScreen();
        Bind(wxEVT_BUTTON, [this](wxCommandEvent& event) { EndModal(event.GetId()); });
    }
};

class Soak : public MainFrameFixture
{
protected:
    using Moments = std::vector<skMoment>;
    struct Kind
    {
        std::string _name;
        int _every;  // so many rounds
        std::function<void()> _work;
    };

    void startWithKey()
    {
        ASSERT_TRUE(isPrepared);
        _folder.write("mine.pem", newKeyText(1024));
        std::filesystem::permissions(_folder.path("mine.pem"),
                                     std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
        startWindow();
    }
    void startWindow()
    {
        std::vector<std::string> arguments = {"countersign-desktop"};
        for (int number = 0; number < documents; ++number)
        {
            arguments.push_back(_folder.write(documentName(number), "the first text"));
        }
        start(arguments);
        static_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget())
            ->drop("file://" + _folder.path("mine.pem") + "\r\n");
        settle();
    }
    static std::string documentName(int number) { return "document" + std::to_string(number); }

    void changeDocuments()
    {
        for (int number = 0; number < documents; ++number)
        {
            const std::size_t size = static_cast<std::size_t>((_rounds * 7919 + number * 104729) % 300000);
            _folder.write(documentName(number), std::string(size, static_cast<char>('a' + _rounds % 26)));
        }
    }

    void useCommandLine()
    {
        const std::string file = _folder.write("byCommand", "text " + std::to_string(_rounds));
        const std::string key = _folder.path("mine.pem");
        std::string output;
        EXPECT_EQ(tsRunProgram({COUNTERSIGN_CLI, "sign", "-f", "-k", key, file}, &output), 0);
        EXPECT_EQ(tsRunProgram({COUNTERSIGN_CLI, "test", "-k", key, file}, &output), 0);
        _folder.write("byCommand", "test " + std::to_string(_rounds));
        EXPECT_EQ(tsRunProgram({COUNTERSIGN_CLI, "test", "-k", key, file}, &output), 1);
        _operations += 3;
    }

    void useWindow()
    {
        changeDocuments();
        for (int number = 0; number < documents; ++number)
        {
            std::filesystem::remove(_folder.path(documentName(number) + ".sig"));
        }
        pressAndWait("ctrl+shift+s");
        EXPECT_THAT(rows(1), testing::Each("Signed by me"));
        pressAndWait("ctrl+shift+t");
        EXPECT_THAT(rows(1), testing::Each("Signed by me"));
        changeDocuments();
        _folder.write(documentName(0), "another text " + std::to_string(_rounds));
        pressAndWait("ctrl+shift+t");
        EXPECT_EQ(rows(1).front(), "Bad");
        _operations += 3 * documents;
    }
    void press(const std::string& keys)
    {
        tsRunUntil("the window has the keyboard", [this] { return tsHasKeyboard(*_pFrame); });
        tsPressKeys(keys);
    }
    void pressAndWait(const std::string& keys)
    {
        press(keys);
        tsRunUntil("the work is done",
                   [this] { return !_pFrame->isAtWork() && !_pFrame->workMessage()._line.empty(); });
        settle();
    }

    // A file that takes long, given up when the progress shows.
    void cancelWork()
    {
        _folder.write("huge", "");
        std::filesystem::resize_file(_folder.path("huge"), 64ULL << 30);
        openAskedFor(_folder.path("huge"));
        tsScript script;
        script.waitUntil("the progress is shown", [] { return progress() != nullptr && tsHasKeyboard(*progress()); })
            .perform("cancel", [] { tsPressKeys("Escape"); })
            .start();
        pressAndWait("ctrl+s");
        EXPECT_TRUE(script.isFinished());
        openAskedFor(_folder.path("huge"));
        press("ctrl+w");
        tsRunUntil("it is closed", [this] { return _pFrame->documents().size() == documents; });
        std::filesystem::remove(_folder.path("huge"));
        ++_operations;
    }
    static hoProgressDialog* progress()
    {
        for (wxWindow* pWindow : wxTopLevelWindows)
        {
            if (auto* pDialog = dynamic_cast<hoProgressDialog*>(pWindow))
            {
                return pDialog;
            }
        }
        return nullptr;
    }

    void answerDialogs()
    {
        const SilentStandardError silent;
        _pFrame->setAssertionDialogs(true);
        const auto failIn = [](int line)
        { gtTriggerAssertonFailureHandler("aFunction", "/source/aFile.cpp", line, "Assertion failure (soaked)"); };
        const auto fail = [&failIn] { failIn(1); };
        const auto failIgnored = [&failIn] { failIn(2); };
        answer([] { tsPressKeys("alt+i"); }, fail);
        // Ignored for the rest of the run: no dialog comes.
        if (!_isLineIgnored)
        {
            answer([] { tsPressKeys("Return"); }, failIgnored);
            _isLineIgnored = true;
        }
        failIgnored();
        answer([] { tsRunProgram({"wmctrl", "-c", "Assert in: aFile.cpp"}); }, fail);
        answer([] { tsClick(*wxWindow::FindWindowById(AH_IGNORE_BUTTON_ID, dialog())); }, fail);
        std::thread(fail).join();
        answer([] { tsPressKeys("alt+i"); }, [] { tsRunUntil("the dialog came", [] { return dialog() != nullptr; }); });
        _pFrame->setAssertionDialogs(false);
        _operations += 5;
    }
    static ahAssertDialog* dialog() { return dynamic_cast<ahAssertDialog*>(tsTopModalDialog()); }
    static void answer(const std::function<void()>& decide, const std::function<void()>& work)
    {
        tsScript script;
        script.waitUntil("the dialog has the keyboard", [] { return dialog() != nullptr && tsHasKeyboard(*dialog()); })
            .perform("answer", decide)
            .start();
        work();
        tsRunUntil("the dialog is gone", [&] { return script.isFinished() && dialog() == nullptr; });
    }

    void answerBareDialogs()
    {
        for (int number = 0; number < 5; ++number)
        {
            BareDialog bare;
            tsScript script;
            script.waitUntil("the dialog has the keyboard", [&] { return tsHasKeyboard(bare); })
                .perform("answer", [&] { bare.EndModal(wxID_CANCEL); })
                .start();
            bare.ShowModal();
            settle();
        }
        _operations += 5;
    }

    void reopenDocuments()
    {
        press("ctrl+shift+w");
        tsRunUntil("all are closed", [this] { return _pFrame->documents().isEmpty(); });
        for (int number = 0; number < documents; ++number)
        {
            openAskedFor(_folder.path(documentName(number)));
        }
        _operations += documents;
    }

    void reopenWindow()
    {
        closeWindow();
        wxGetApp().OnExit();
        startWindow();
        // What is ignored for the rest of the run goes with the window.
        _isLineIgnored = false;
        ++_operations;
    }

    std::vector<Kind> allKinds()
    {
        return {{"commandLine", 1, [this] { useCommandLine(); }},   {"window", 1, [this] { useWindow(); }},
                {"dialogs", 1, [this] { answerDialogs(); }},        {"documents", 4, [this] { reopenDocuments(); }},
                {"progress", 40, [this] { cancelWork(); }},         {"mainWindow", 10, [this] { reopenWindow(); }},
                {"bareDialogs", 0, [this] { answerBareDialogs(); }}};
    }

    // The kinds that take part in every round, or the one that is asked for.
    std::vector<Kind> kinds()
    {
        const char* const pName = std::getenv("COUNTERSIGN_SOAK_WORK");
        std::vector<Kind> chosen;
        for (const Kind& kind : allKinds())
        {
            if (pName != nullptr ? kind._name == pName : kind._every > 0)
            {
                chosen.push_back(pName != nullptr ? Kind{kind._name, 1, kind._work} : kind);
            }
        }
        return chosen;
    }

    void performRound(const std::vector<Kind>& kinds)
    {
        for (const Kind& kind : kinds)
        {
            if (_rounds % kind._every == 0)
            {
                kind._work();
            }
        }
        settle();
        ++_rounds;
    }

    // Does this work again and again, for so long and at least for some rounds.
    std::vector<skFinding> soak(const std::vector<Kind>& work, double seconds)
    {
        const auto start = Clock::now();
        const auto elapsed = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };

        // Everything is done once, and caches are filled.
        const int firstRound = _rounds;
        while ((_rounds < firstRound + warmUpRounds || elapsed() < seconds / 8) && !HasFailure())
        {
            performRound(work);
        }
        Moments moments;
        moments.reserve(2 * mostMoments);
        const auto takeMoment = [&] { moments.push_back({_operations, skTakeSample()}); };
        takeMoment();
        const int firstMeasuredRound = _rounds;
        double nextMoment = elapsed();
        while ((_rounds < firstMeasuredRound + leastRounds || elapsed() < seconds) && !HasFailure())
        {
            performRound(work);
            if (elapsed() >= nextMoment)
            {
                takeMoment();
                nextMoment = elapsed() + seconds / mostMoments;
            }
        }
        takeMoment();
        return skJudge(moments);
    }

    int _rounds = 0;
    double _operations = 0;
    bool _isLineIgnored = false;
};
}  // namespace

TEST_F(Soak, NothingGrowsAndNothingIsLost)
{
    startWithKey();
    const std::vector<Kind> work = kinds();
    ASSERT_FALSE(work.empty()) << "there is no such work";
    const std::vector<skFinding> findings = soak(work, secondsToRun());
    std::cout << _rounds << " rounds, " << _operations << " operations\n" << skTableOf(findings) << std::flush;
    for (const skFinding& finding : findings)
    {
        EXPECT_FALSE(finding._isGrown) << skNameOf(finding._resource);
    }
}

// What it says nothing of is worth nothing if it could not find anything.
TEST_F(Soak, FindsWhatIsLost)
{
    struct Loss
    {
        skResource _resource;
        std::function<void()> _lose;
    };
    std::vector<std::unique_ptr<char[]>> blocks;
    std::vector<int> descriptors;
    std::vector<pid_t> children;
    std::vector<wxWindow*> windows;
    std::vector<std::thread> threads;
    std::promise<void> end;
    const std::shared_future<void> isOver = end.get_future().share();
    const std::vector<Loss> losses = {
        {skResource::Heap, [&] { blocks.push_back(std::make_unique<char[]>(1024 * 1024)); }},
        {skResource::Descriptors, [&] { descriptors.push_back(open("/dev/null", O_RDONLY | O_CLOEXEC)); }},
        {skResource::Threads, [&] { threads.emplace_back([isOver] { isOver.wait(); }); }},
        {skResource::Children, [&] { children.push_back(childThatHasEnded()); }},
        {skResource::Windows, [&] { windows.push_back(new wxFrame(nullptr, wxID_ANY, "lost")); }}};

    startWithKey();
    for (const Loss& loss : losses)
    {
        const std::vector<skFinding> findings =
            soak({{"commandLine", 1, [this] { useCommandLine(); }}, {"loss", 1, loss._lose}}, 0);
        EXPECT_TRUE(findings.at(static_cast<std::size_t>(loss._resource))._isGrown) << skNameOf(loss._resource) << "\n"
                                                                                    << skTableOf(findings);
    }

    end.set_value();
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    for (const int descriptor : descriptors)
    {
        close(descriptor);
    }
    for (const pid_t child : children)
    {
        waitpid(child, nullptr, 0);
    }
    for (wxWindow* pWindow : windows)
    {
        pWindow->Destroy();
    }
}
