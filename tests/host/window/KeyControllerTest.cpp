// SPDX-License-Identifier: Apache-2.0
// Loading of keys without a main window.
#include "tests/host/NewKey.h"
#include "tests/host/Question.h"
#include "tests/host/SlowKey.h"
#include "tests/host/window/BareFrame.h"

#include "host/keys/hoNewKeyPair.h"
#include "host/window/hoKeyController.h"

#include <wx/dialog.h>

#include <sys/stat.h>

namespace
{
using Half = hoKeyController::Half;

class KeyController : public BareFrame
{
protected:
    void SetUp() override
    {
        BareFrame::SetUp();
        hoNewKeyPair pair(512);
        while (!pair.isFinished())
        {
            std::this_thread::yield();
        }
        ASSERT_EQ(pair.writePrivateKey(_folder.path("private"), "", false)._problem, osWritingProblem::None);
        ASSERT_EQ(pair.writePublicKey(_folder.path("public"), false)._problem, osWritingProblem::None);
        ASSERT_EQ(chmod(_folder.path().c_str(), 0700), 0);
        _pController = std::make_unique<hoKeyController>(
            *_pFrame, _settings,
            hoKeyController::Callbacks{[this] { ++_changes; },
                                       [this](const hoSummary& warning) { _warnings.push_back(warning._line); },
                                       [](const wxString&) {}});
    }

    hoSettings _settings;
    std::unique_ptr<hoKeyController> _pController;
    int _changes = 0;
    std::vector<wxString> _warnings;
};
}  // namespace

TEST_F(KeyController, LoadsTheHalfThatIsWanted)
{
    _pController->loadKey(_folder.path("private"), Half::Any);
    EXPECT_TRUE(_pController->keys().canSign());
    EXPECT_TRUE(_pController->keys()._publics.empty());
    _pController->loadKey(_folder.path("public"), Half::Any);
    EXPECT_EQ(_pController->keys()._publics.size(), 1U);
    EXPECT_EQ(_changes, 2);
    EXPECT_TRUE(_warnings.empty());
    EXPECT_EQ(_settings.text("keyFolder"), _folder.path() + "/");

    _pController->setKeys(hoKeyRing());
    _pController->loadKey(_folder.path("private"), Half::Public);
    EXPECT_FALSE(_pController->keys().canSign());
    ASSERT_EQ(_pController->keys()._publics.size(), 1U);
    EXPECT_FALSE(_pController->keys()._publics[0]._pKey->hasPrivateKey()) << "the private half stays in memory";
}

TEST_F(KeyController, AddsAPublicKeyToTheOthers)
{
    _folder.write("other", newKeyText(512, true));
    _pController->loadKey(_folder.path("public"), Half::Public);
    _pController->loadKey(_folder.path("other"), Half::Any);
    ASSERT_EQ(_pController->keys()._publics.size(), 2U);
    _pController->loadKey(_folder.path("private"), Half::Public);
    ASSERT_EQ(_pController->keys()._publics.size(), 2U) << "the same key twice";
    EXPECT_EQ(_pController->keys()._publics[0]._path, gtString(_folder.path("other").c_str()));
    EXPECT_EQ(_pController->keys()._publics[1]._path, gtString(_folder.path("private").c_str()));
    EXPECT_EQ(_changes, 3);
}

TEST_F(KeyController, WarnsOfAPrivateKeyThatOthersMayRead)
{
    ASSERT_EQ(chmod(_folder.path("private").c_str(), 0644), 0);
    _pController->loadKey(_folder.path("private"), Half::Private);
    EXPECT_TRUE(_pController->keys().canSign());
    EXPECT_EQ(_warnings.size(), 1U);
    _pController->loadKey(_folder.path("private"), Half::Public);
    EXPECT_EQ(_warnings.size(), 1U);
}

TEST_F(KeyController, LoadsThePublicKeyOfAFileWithBothWithoutAPassphrase)
{
    hoNewKeyPair pair(512);
    while (!pair.isFinished())
    {
        std::this_thread::yield();
    }
    ASSERT_EQ(pair.writePrivateKey(_folder.path("encrypted"), "sesame", false)._problem, osWritingProblem::None);
    _folder.write("both", _folder.read("encrypted") + _folder.read("public"));
    _pController->loadKey(_folder.path("both"), Half::Public);
    EXPECT_EQ(_pController->keys()._publics.size(), 1U);
    EXPECT_EQ(_changes, 1);
}

TEST_F(KeyController, SaysNothingOfAPassphraseThatIsNotGiven)
{
    _folder.write("locked.pem", newKeyText(512, false, "sesame"));
    showWith(new wxWindow(_pFrame, wxID_ANY));
    bool hasReturned = false;
    std::string said;
    tsScript script;
    script
        .waitUntil("it is asked for the passphrase",
                   []
                   {
                       const auto* pDialog = dynamic_cast<const wxDialog*>(tsTopModalDialog());
                       return pDialog != nullptr && tsHasKeyboard(*pDialog);
                   })
        .perform("give none", [] { tsPressKeys("Escape"); })
        .waitUntil("it has ended or says something",
                   [&]
                   {
                       said = shownQuestion();
                       return hasReturned || !said.empty();
                   })
        .perform("leave the message",
                 [&]
                 {
                     if (!said.empty())
                     {
                         tsPressKeys("Escape");
                     }
                 })
        .start();
    _pController->loadKey(_folder.path("locked.pem"), Half::Private);
    hasReturned = true;
    tsRunUntil("the script has seen it", [&] { return script.isFinished(); });
    EXPECT_EQ(said, "");
    EXPECT_EQ(_changes, 0);
}

TEST_F(KeyController, CancelsAKeyThatTakesHours)
{
    const std::string key = slowKey();
    ASSERT_FALSE(key.empty());
    _folder.write("slow.pem", key);
    showWith(new wxWindow(_pFrame, wxID_ANY));
    tsScript script;
    const auto hasKeyboard = [](const wxString& title)
    {
        const auto* pDialog = dynamic_cast<const wxDialog*>(tsTopModalDialog());
        return pDialog != nullptr && pDialog->GetTitle() == title && tsHasKeyboard(*pDialog);
    };
    script.waitUntil("it is asked for the passphrase", [&] { return hasKeyboard("Passphrase"); })
        .perform("give one",
                 []
                 {
                     tsType("sesame");
                     tsPressKeys("Return");
                 })
        .waitUntil("it is being checked", [&] { return hasKeyboard("Loading the key"); })
        .perform("cancel", [] { tsPressKeys("Escape"); })
        .start();
    _pController->loadKey(_folder.path("slow.pem"), Half::Any);
    EXPECT_TRUE(script.isFinished());
    EXPECT_EQ(_changes, 0);
}
