// SPDX-License-Identifier: Apache-2.0
// After keys and passphrases were used in the real window and are gone, nothing of them stands anywhere in the
// process's memory or in a file that it has written: so no message, report or list of the window's holds any of it
// either.
#include "tests/host/MainFrameFixture.h"

#include "host/window/hoDocumentDropTarget.h"
#include "host/window/hoPassphraseDialog.h"
#include "tests/support/tsSecrets.h"

#include <csignal>
#include <cstdio>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <wx/textctrl.h>

namespace
{
class WindowSecrets : public MainFrameFixture
{
protected:
    void SetUp() override
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "a sanitizer's memory is too large to be looked through";
#endif
        MainFrameFixture::SetUp();
        // What is said there is looked through as well.
        std::filesystem::create_directory(_folder.path("config"));
        ASSERT_NE(std::freopen(_folder.path("config/said").c_str(), "a", stderr), nullptr);
        struct rlimit limit = {};
        ASSERT_EQ(getrlimit(RLIMIT_CORE, &limit), 0);
        limit.rlim_cur = limit.rlim_max;
        ASSERT_EQ(setrlimit(RLIMIT_CORE, &limit), 0);
        tsWritePassphrase(_folder.path("passphrase"));
        makeKey("open.pem");
        makeKey("plain.pem");
        ASSERT_EQ(tsRunProgram({"openssl", "pkcs8", "-topk8", "-in", _folder.path("plain.pem"), "-passout",
                                "file:" + _folder.path("passphrase"), "-out", _folder.path("locked.pem")}),
                  0);
        start(
            {"countersign-desktop", _folder.write("a.txt", "first"), _folder.write("b.txt", std::string(300000, 'b'))});
    }

    void makeKey(const std::string& name)
    {
        ASSERT_EQ(tsRunProgram({"openssl", "genrsa", "-out", _folder.path(name), "1024"}), 0);
    }

    void drop(const std::string& name)
    {
        static_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget())->drop("file://" + _folder.path(name) + "\r\n");
        settle();
    }

    void typePassphrase()
    {
        tsRunProgram({"xdotool", "type", "--file", _folder.path("passphrase")});
    }

    // Counts the letters: reading them would leave a copy in memory.
    bool isPassphraseTyped() const
    {
        const auto* pField = dynamic_cast<wxTextCtrl*>(wxWindow::FindFocus());
        return pField != nullptr &&
               std::uintmax_t(pField->GetLastPosition()) == std::filesystem::file_size(_folder.path("passphrase"));
    }

    static bool isAsking(const wxString& title)
    {
        const auto* pDialog = dynamic_cast<wxTopLevelWindow*>(tsTopModalDialog());
        return pDialog != nullptr && pDialog->GetTitle() == title && tsHasKeyboard(*pDialog);
    }

    void loadLocked()
    {
        tsScript script;
        script.waitUntil("the passphrase is asked for", [] { return isAsking("Passphrase"); })
            .perform("give it", [this] { typePassphrase(); })
            .waitUntil("it is there", [this] { return isPassphraseTyped(); })
            .waitUntil("it is found", [] { return tsTimesInMemory(tsSecretsOfPassphrase()[0]) > 0; })
            .perform("press Return", [] { tsPressKeys("Return"); })
            .start();
        drop("locked.pem");
        tsRunUntil("the key is loaded", [&] { return script.isFinished() && _pFrame->keys().canSign(); });
    }

    // Signs all documents, replacing signatures that are there.
    void sign(bool areSigned)
    {
        tsScript script;
        if (areSigned)
        {
            script.waitUntil("the question is there", [this] { return isAnotherWindowActive(); })
                .perform("replace", [] { tsPressKeys("alt+r"); })
                .start();
        }
        tsPressKeys("ctrl+shift+s");
        tsRunUntil("they are signed", [this] { return rows(1)[0] == "Signed by me" && rows(1)[1] == "Signed by me"; });
        tsRunUntil("the work is over", [this] { return !_pFrame->isAtWork(); });
        settle();
    }

    void forget()
    {
        choose("alt+k", "f");
        tsRunUntil("the keys are gone", [this] { return !_pFrame->keys().canTest(); });
        settle();
    }

    void expectNowhere(const std::vector<tsSecret>& secrets) const
    {
        for (const tsSecret& secret : secrets)
        {
            EXPECT_EQ(tsTimesInMemory(secret), 0) << secret._name;
            for (const auto& entry : std::filesystem::recursive_directory_iterator(_folder.path("config")))
            {
                EXPECT_FALSE(entry.is_regular_file() && tsStandsInFile(secret, entry.path().string()))
                    << secret._name << " in " << entry.path();
            }
        }
    }
};
}  // namespace

TEST_F(WindowSecrets, OfAKeyAreGoneWhenItIsForgotten)
{
    const std::vector<tsSecret> secrets = tsSecretsOfKey(_folder.path("open.pem"));
    ASSERT_EQ(secrets.size(), 4U);
    drop("open.pem");
    ASSERT_TRUE(_pFrame->keys().canSign());
    EXPECT_EQ(tsTimesInMemory(secrets[0]), 2) << "the search finds what is there";
    sign(false);
    EXPECT_EQ(tsTimesInMemory(secrets[0]), 2) << "there are two places for a private exponent";
    forget();
    expectNowhere(secrets);
}

TEST_F(WindowSecrets, OfAKeyWithPassphraseAreGoneWhenItIsReplaced)
{
    const std::vector<tsSecret> secrets = tsSecretsOfKey(_folder.path("plain.pem"));
    const std::vector<tsSecret> others = tsSecretsOfKey(_folder.path("open.pem"));
    ASSERT_EQ(secrets.size(), 4U);
    loadLocked();
    expectNowhere(tsSecretsOfPassphrase());
    sign(false);
    drop("open.pem");
    EXPECT_EQ(tsTimesInMemory(others[0]), 2);
    expectNowhere(secrets);
    sign(true);
    expectNowhere(secrets);
}

TEST_F(WindowSecrets, AreGoneWithTheWindow)
{
    const std::vector<tsSecret> secrets = tsSecretsOfKey(_folder.path("plain.pem"));
    ASSERT_EQ(secrets.size(), 4U);
    loadLocked();
    sign(false);
    closeWindow();
    tsRunEvents();
    expectNowhere(secrets);
    expectNowhere(tsSecretsOfPassphrase());
}

TEST_F(WindowSecrets, OfANewKeyPairAreInItsFileAlone)
{
    const auto input = [](const char* name)
    { return dynamic_cast<wxTextCtrl*>(wxWindow::FindWindowByName(name, tsTopModalDialog())); };
    tsScript script;
    script.waitUntil("the dialog has the keyboard", [] { return isAsking("New key pair"); })
        .perform("name the file", [&] { input("file")->ChangeValue(wxString::FromUTF8(_folder.path("new.pem"))); })
        .perform("type a passphrase", [this] { typePassphrase(); })
        .waitUntil("it is there", [this] { return isPassphraseTyped(); })
        .perform("go on", [] { tsPressKeys("Tab"); })
        .waitUntil("the other field has the keyboard", [&] { return input("again")->HasFocus(); })
        .perform("type it again", [this] { typePassphrase(); })
        .waitUntil("it is there again", [this] { return isPassphraseTyped(); })
        .perform("create", [] { tsPressKeys("Return"); })
        .waitUntil("the passphrase is asked for", [] { return isAsking("Passphrase"); })
        .perform("give it", [this] { typePassphrase(); })
        .waitUntil("it is given", [this] { return isPassphraseTyped(); })
        .perform("press Return", [] { tsPressKeys("Return"); })
        .start();
    choose("alt+k", "n");
    tsRunUntil("the new key is loaded", [&] { return script.isFinished() && _pFrame->keys().canSign(); });
    settle();
    const std::vector<tsSecret> secrets = tsSecretsOfKey(_folder.path("new.pem"));
    ASSERT_EQ(secrets.size(), 4U);
    EXPECT_EQ(tsTimesInMemory(secrets[0]), 2);
    expectNowhere(tsSecretsOfPassphrase());
    forget();
    expectNowhere(secrets);
}

TEST_F(WindowSecrets, AreReadFromFieldsWithoutCopiesThatStay)
{
    hoPassphraseDialog dialog(_pFrame, "?");
    int copiesOfOurs = -1;
    const std::vector<tsSecret> secrets = tsSecretsOfPassphrase();
    const auto amountInMemory = [&]
    {
        int amount = 0;
        for (const tsSecret& secret : secrets)
        {
            amount += tsTimesInMemory(secret);
        }
        return amount;
    };
    tsScript script;
    script.waitUntil("the dialog has the keyboard", [] { return isAsking("Passphrase"); })
        .perform("type it", [this] { typePassphrase(); })
        .waitUntil("it is there", [this] { return isPassphraseTyped(); })
        .waitUntil("it is there once", [&] { return amountInMemory() == 1; })
        .perform("read it",
                 [&]
                 {
                     EXPECT_GT(dialog.passphrase().text().size(), 80U);
                     copiesOfOurs = amountInMemory() - 1;
                     tsPressKeys("Escape");
                 })
        .start();
    dialog.ShowModal();
    EXPECT_TRUE(script.isFinished());
    EXPECT_EQ(copiesOfOurs, 0);
}

TEST_F(WindowSecrets, GoIntoNoCoreFile)
{
    drop("open.pem");
    ASSERT_TRUE(_pFrame->keys().canSign());
    // A copy of this process with all that is in its memory.
    const pid_t process = fork();
    if (process == 0)
    {
        if (chdir(_folder.path().c_str()) == 0 && std::signal(SIGSEGV, SIG_DFL) != SIG_ERR)
        {
            static_cast<void>(std::raise(SIGSEGV));
        }
        _exit(1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV);
    EXPECT_FALSE(WCOREDUMP(status));
    for (const auto& entry : std::filesystem::directory_iterator(_folder.path()))
    {
        EXPECT_NE(entry.path().filename().string().substr(0, 4), "core");
    }
}
