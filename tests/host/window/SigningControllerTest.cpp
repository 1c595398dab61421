// SPDX-License-Identifier: Apache-2.0
// Jobs from beginning to end, without a main window.
#include "tests/host/NewKey.h"
#include "tests/host/window/BareFrame.h"

#include "host/documents/hoDocumentList.h"
#include "host/window/hoProgressDialog.h"
#include "host/window/hoSigningController.h"

#include <wx/app.h>

#include <algorithm>

namespace
{
using Kind = hoSigningJob::Kind;

class SigningController : public BareFrame
{
protected:
    void SetUp() override
    {
        BareFrame::SetUp();
        _pController = std::make_unique<hoSigningController>(
            *_pFrame, _keys,
            hoSigningController::Callbacks{[this] { ++_begun; },
                                           [this](const std::vector<hoSigningOutcome>& outcomes)
                                           { _outcomes += outcomes.size(); },
                                           [this](const hoSummary& summary) { _ends.push_back(summary); },
                                           [this]
                                           {
                                               ++_progressQuestions;
                                               return _mayShowProgress;
                                           },
                                           [this](const hoSummary& summary) { _unseenEnds.push_back(summary); },
                                           [this](double part) { _parts.push_back(part); }, [this] { ++_progressEnds; },
                                           [this] { return _preferences; }});
    }
    void TearDown() override
    {
        _pController.reset();
        BareFrame::TearDown();
    }

    std::vector<hoDocument> documents(int amount)
    {
        hoDocumentList list;
        std::vector<hoDocument> documents;
        for (int number = 0; number < amount; ++number)
        {
            list.open(_folder.write("document" + std::to_string(number), "text"));
            documents.push_back(list[static_cast<std::size_t>(number)]);
        }
        return documents;
    }

    static bool hasProgress()
    {
        return std::any_of(wxTopLevelWindows.begin(), wxTopLevelWindows.end(),
                           [](const wxWindow* pWindow)
                           { return dynamic_cast<const hoProgressDialog*>(pWindow) != nullptr && pWindow->IsShown(); });
    }

    // Signs a document until its progress is there. It ends when the document is cut.
    void signUntilProgress()
    {
        _keys._private._pKey = newKey(1024);
        const std::vector<hoDocument> one = documents(1);
        // Of holes alone: it takes longer than the test.
        std::filesystem::resize_file(_folder.path("document0"), 1ULL << 40);
        _pController->begin(Kind::Sign, one);
        tsRunUntil("the progress is there", hasProgress);
    }

    void waitForEnd(std::size_t amount)
    {
        tsRunUntil("the job ends", [&] { return _ends.size() == amount; });
    }

    hoKeyRing _keys;
    std::unique_ptr<hoSigningController> _pController;
    int _begun = 0;
    int _progressQuestions = 0;
    bool _mayShowProgress = true;
    std::size_t _outcomes = 0;
    std::vector<hoSummary> _ends;
    std::vector<hoSummary> _unseenEnds;
    std::vector<double> _parts;
    int _progressEnds = 0;
    hoPreferences _preferences;
};
}  // namespace

TEST_F(SigningController, BeginsNothingWithoutAKey)
{
    EXPECT_FALSE(_pController->canBegin(Kind::Sign));
    EXPECT_FALSE(_pController->canBegin(Kind::Test));
    _pController->begin(Kind::Sign, documents(1));
    EXPECT_FALSE(_pController->isAtWork());
    EXPECT_EQ(_begun, 0);
}

TEST_F(SigningController, ReportsEveryDocumentAndTheEnd)
{
    _keys._private._pKey = newKey(1024);
    _pController->begin(Kind::Sign, documents(50));
    EXPECT_EQ(_begun, 1);
    EXPECT_TRUE(_pController->isAtWork());
    EXPECT_FALSE(_pController->canBegin(Kind::Sign)) << "one job at a time";
    waitForEnd(1);
    EXPECT_FALSE(_pController->isAtWork());
    EXPECT_EQ(_outcomes, 50U);
    ASSERT_EQ(_ends.size(), 1U);
    EXPECT_EQ(_ends[0]._tone, hoSummaryTone::AllWell);
    EXPECT_TRUE(std::filesystem::exists(_folder.path("document49.sig")));

    _pController->begin(Kind::Test, documents(50));
    waitForEnd(2);
    EXPECT_EQ(_outcomes, 100U);
}

TEST_F(SigningController, ReportsNoOutcomeOfKeysThatAreGone)
{
    _keys._private._pKey = newKey(1024);
    _pController->begin(Kind::Sign, documents(3));
    _keys = hoKeyRing();
    waitForEnd(1);
    EXPECT_EQ(_outcomes, 0U);
}

TEST_F(SigningController, ReportsNoOutcomeAfterAnotherKeyHasCome)
{
    _keys._private._pKey = newKey(1024);
    _pController->begin(Kind::Sign, documents(3));
    hoLoadedKey other;
    other._pKey = newKey(512);
    _keys._publics.push_back(other);
    waitForEnd(1);
    EXPECT_EQ(_outcomes, 0U);
}

TEST_F(SigningController, HoldsTheProgressBackUntilItMayAppear)
{
    _keys._private._pKey = newKey(1024);
    const std::vector<hoDocument> one = documents(1);
    // Of holes alone: it takes longer than the test.
    std::filesystem::resize_file(_folder.path("document0"), 1ULL << 40);
    _mayShowProgress = false;
    _pController->begin(Kind::Sign, one);
    tsRunUntil("it was asked twice", [this] { return _progressQuestions == 2; });
    EXPECT_FALSE(hasProgress());
    _mayShowProgress = true;
    tsRunUntil("the progress is there", hasProgress);
    _pController->stop();
    EXPECT_FALSE(std::filesystem::exists(_folder.path("document0.sig")));
}

TEST_F(SigningController, TellsAnUnseenEndOfLongWork)
{
    signUntilProgress();
    for (wxWindow* const pWindow : wxTopLevelWindows)
    {
        dynamic_cast<wxTopLevelWindow&>(*pWindow).Iconize();
    }
    tsRunUntil("nothing of the program is in front", [] { return !wxTheApp->IsActive(); });
    EXPECT_TRUE(_unseenEnds.empty());
    std::filesystem::resize_file(_folder.path("document0"), 10);
    waitForEnd(1);
    ASSERT_EQ(_unseenEnds.size(), 1U);
    EXPECT_EQ(_unseenEnds[0]._line, _ends[0]._line);
}

TEST_F(SigningController, TellsHowFarLongWorkIs)
{
    signUntilProgress();
    tsRunUntil("it is told", [this] { return !_parts.empty(); });
    EXPECT_EQ(_progressEnds, 0);
    _pController->stop();
    EXPECT_EQ(_progressEnds, 1);
    for (const double part : _parts)
    {
        EXPECT_GE(part, 0);
        EXPECT_LE(part, 1);
    }
    const std::size_t told = _parts.size();
    _pController->begin(Kind::Sign, documents(1));
    waitForEnd(1);
    EXPECT_EQ(_parts.size(), told) << "short work";
    EXPECT_EQ(_progressEnds, 1);
}

TEST_F(SigningController, KeepsSignaturesAsThePreferencesSay)
{
    _keys._private._pKey = newKey(1024);
    std::vector<hoDocument> three = documents(3);
    _pController->begin(Kind::Sign, {three[0], three[1]});
    waitForEnd(1);
    const std::string before = _folder.read("document0.sig");

    // Nobody is asked.
    _preferences._signedDocuments = hoSignedDocuments::KeepAll;
    _pController->begin(Kind::Sign, three);
    waitForEnd(2);
    EXPECT_EQ(_ends[1]._line, "3 documents: 1 signed, 2 kept as they were.");
    EXPECT_EQ(_folder.read("document0.sig"), before);

    // The two that are known to be good are kept, and the user is asked about the third.
    _preferences._signedDocuments = hoSignedDocuments::KeepGood;
    three[0]._verdict._state = hoDocumentState::SignedByMe;
    three[1]._verdict._state = hoDocumentState::Good;
    three[2]._verdict._state = hoDocumentState::Bad;
    showWith(new wxWindow(_pFrame, wxID_ANY));
    const auto isQuestionUp = []
    {
        std::string title;
        tsRunProgram({"xdotool", "getactivewindow", "getwindowname"}, &title);
        return title == "Countersign\n";
    };
    tsScript script;
    script.waitUntil("the question is up", isQuestionUp).perform("replace", [] { tsPressKeys("alt+r"); }).start();
    const std::string bad = _folder.read("document2.sig");
    _pController->begin(Kind::Sign, three);
    waitForEnd(3);
    EXPECT_TRUE(script.isFinished());
    EXPECT_EQ(_ends[2]._line, "3 documents: 1 signed, 2 kept as they were.");
    EXPECT_EQ(_folder.read("document0.sig"), before);
    EXPECT_NE(_folder.read("document2.sig"), bad) << "a countersignature has salt";

    three.pop_back();
    _pController->begin(Kind::Sign, three);
    waitForEnd(4);
    EXPECT_EQ(_ends[3]._line, "2 documents: 2 kept as they were.");

    // A weak one is asked about.
    three[0]._verdict._state = hoDocumentState::Weak;
    bool isAsked = false;
    tsScript again;
    again
        .waitUntil("the question is up, or the job has ended",
                   [&]
                   {
                       isAsked = isQuestionUp();
                       return isAsked || _ends.size() > 4;
                   })
        .perform("leave it",
                 [&]
                 {
                     if (isAsked)
                     {
                         tsPressKeys("Escape");
                     }
                 })
        .start();
    _pController->begin(Kind::Sign, {three[0]});
    tsRunUntil("it is answered", [&] { return again.isFinished(); });
    EXPECT_TRUE(isAsked);
    EXPECT_FALSE(_pController->isAtWork());
}

TEST_F(SigningController, WorksOnAsManyDocumentsAsThePreferencesSay)
{
    const auto amountOfThreads = []
    {
        const std::filesystem::directory_iterator threads("/proc/self/task");
        return std::distance(begin(threads), end(threads));
    };
    _keys._private._pKey = newKey(1024);
    const int jobs = static_cast<int>(hoOrderedWork::amountOfProcessors()) + 3;
    const std::vector<hoDocument> many = documents(jobs);
    for (int number = 0; number < jobs; ++number)
    {
        // Of holes alone: they take longer than the test.
        std::filesystem::resize_file(_folder.path("document" + std::to_string(number)), 1ULL << 40);
    }
    for (const int wanted : {jobs, 1})
    {
        _preferences._jobs = wanted;
        const auto before = amountOfThreads();
        _pController->begin(Kind::Sign, many);
        EXPECT_EQ(amountOfThreads() - before, wanted);
        _pController->stop();
    }
}

TEST_F(SigningController, TellsTheEndOnceWhereItIsSeen)
{
    signUntilProgress();
    tsRunUntil("the program is in front", [] { return wxTheApp->IsActive(); });
    std::filesystem::resize_file(_folder.path("document0"), 10);
    waitForEnd(1);
    EXPECT_TRUE(_unseenEnds.empty());
}

TEST_F(SigningController, StopsWithoutACallback)
{
    _keys._private._pKey = newKey(1024);
    _pController->begin(Kind::Sign, documents(3));
    _pController->stop();
    EXPECT_FALSE(_pController->isAtWork());
    tsRunEvents();
    EXPECT_TRUE(_ends.empty());
    EXPECT_TRUE(_pController->canBegin(Kind::Sign));
}
