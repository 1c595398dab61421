// SPDX-License-Identifier: Apache-2.0
// The end in the middle of work: the window goes while its worker signs or tests, and the program is asked to end by a
// signal, again and again. No half signature and no temporary file is left behind, and nothing crashes or hangs.
//
// COUNTERSIGN_SHUTDOWNS: how often (default: 24 windows, 12 programs by signals, 8 by the loss of their display;
// scripts/soak.sh: 1000). The moments are random; COUNTERSIGN_SEED repeats them.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/NewKey.h"

#include "host/signing/hoFileSigning.h"
#include "tests/support/tsEnvironment.h"
#include "tests/support/tsSignalled.h"

#include <gmock/gmock.h>
#include <wx/menu.h>

#include <array>
#include <chrono>
#include <csignal>
#include <random>

namespace
{
const int documents = 4;

class Shutdown : public MainFrameFixture
{
protected:
    void SetUp() override
    {
        MainFrameFixture::SetUp();
        std::filesystem::create_directory(_folder.path("documents"));
        const std::string keyText = newKeyText(1024);
        _folder.write("mine.pem", keyText);
        std::filesystem::permissions(_folder.path("mine.pem"),
                                     std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
        hoKeyFileFacts facts;
        _pKey = hoLoadKey(keyText.data(), static_cast<int>(keyText.size()), nullptr, facts);
        for (int number = 0; number < documents; ++number)
        {
            // Different ones, and one that takes longer than the others.
            const std::string path = _folder.write(name(number), "document " + std::to_string(number));
            std::filesystem::resize_file(path, number == 1 ? 40000000 : 100000);
            gtString signature;
            ASSERT_EQ(hoSignFile(path.c_str(), *_pKey, hoSignatureLines::Both, nullptr, signature)._problem,
                      hoSigningProblem::None);
            _signatures.emplace_back(signature.asCharArray());
        }
    }

    static std::string name(int number) { return "documents/" + std::to_string(number); }

    void removeSignatures() const
    {
        for (int number = 0; number < documents; ++number)
        {
            std::filesystem::remove(_folder.path(name(number) + ".sig"));
        }
    }

    // Every signature is whole or not there, and there is nothing else. Gives how many there are.
    int checkFolder() const
    {
        int found = 0;
        for (int number = 0; number < documents; ++number)
        {
            if (std::filesystem::exists(_folder.path(name(number) + ".sig")))
            {
                // A countersignature is another one each time.
                const std::string signature = _folder.read(name(number) + ".sig");
                const std::string& wanted = _signatures.at(static_cast<std::size_t>(number));
                EXPECT_EQ(signature.size(), wanted.size());
                EXPECT_EQ(signature.substr(0, signature.find('\n')), wanted.substr(0, wanted.find('\n')));
                ++found;
            }
        }
        int files = 0;
        std::string names;
        for (const auto& entry : std::filesystem::directory_iterator(_folder.path("documents")))
        {
            names += entry.path().filename().string() + " ";
            ++files;
        }
        EXPECT_EQ(files, documents + found) << names;
        return found;
    }

    // What is remembered of the window is whole, too, and there is nothing beside it.
    void checkSettings() const
    {
        const std::filesystem::path folder = _folder.path("config/countersign");
        const std::string text = _folder.read("config/countersign/settings");
        EXPECT_TRUE(text.empty() || text.back() == '\n') << text;
        int files = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
        {
            files += entry.path().filename() == "settings" ? 0 : 1;
        }
        EXPECT_EQ(files, 0);
    }

    void choose(const std::string& item)
    {
        wxMenuBar& bar = *_pFrame->GetMenuBar();
        wxCommandEvent event(wxEVT_MENU, bar.FindMenuItem("Signature", item));
        _pFrame->ProcessWindowEvent(event);
    }

    unsigned long seed()
    {
        const unsigned long number = tsNumberFromEnvironment("COUNTERSIGN_SEED", std::random_device()());
        _random.seed(static_cast<std::mt19937::result_type>(number));
        return number;
    }
    std::chrono::microseconds randomMoment(long most)
    {
        return std::chrono::microseconds(std::uniform_int_distribution<long>(0, most)(_random));
    }

    // See programAtWork.cpp.
    tsCommand programAtWork(const std::string& mode) const
    {
        tsCommand command;
        command._arguments = {PROGRAM_AT_WORK, _folder.path("mine.pem"), mode};
        for (int number = 0; number < documents; ++number)
        {
            command._arguments.push_back(_folder.path(name(number)));
        }
        return command;
    }

    std::shared_ptr<const hoKey> _pKey;
    std::vector<std::string> _signatures;
    std::mt19937 _random;
};
}  // namespace

TEST_F(Shutdown, OfTheWindowWhileItWorks)
{
    SCOPED_TRACE("COUNTERSIGN_SEED=" + std::to_string(seed()));
    std::vector<std::string> arguments = {"countersign-desktop"};
    for (int number = 0; number < documents; ++number)
    {
        arguments.push_back(_folder.path(name(number)));
    }
    hoKeyRing keys;
    keys._private._pKey = _pKey;
    const unsigned long amount = tsNumberFromEnvironment("COUNTERSIGN_SHUTDOWNS", 24);
    unsigned long inTheMiddle = 0;
    for (unsigned long number = 0; number < amount && !HasFailure(); ++number)
    {
        SCOPED_TRACE(number);
        removeSignatures();
        startUnwatched(arguments);
        _pFrame->setKeys(keys);
        choose("Sign all");
        EXPECT_TRUE(_pFrame->isAtWork());
        // Some of the way, at times to the end of the signing and into the testing.
        const auto end = std::chrono::steady_clock::now() + randomMoment(30000);
        while (std::chrono::steady_clock::now() < end)
        {
            tsRunEvents();
            if (!_pFrame->isAtWork())
            {
                choose("Test all");
            }
        }
        inTheMiddle += _pFrame->isAtWork() ? 1U : 0U;
        if (number % 2 == 0)
        {
            closeWindow();
        }
        else
        {
            // As when the toolkit ends with the window still there.
            delete _pFrame;
            _pFrame = nullptr;
        }
        wxGetApp().OnExit();
        tsRunEvents();
        checkFolder();
    }
    EXPECT_GT(inTheMiddle, 0U);
    checkSettings();
}

TEST_F(Shutdown, OfTheProgramBySignalsWhileItWorks)
{
    SCOPED_TRACE("COUNTERSIGN_SEED=" + std::to_string(seed()));
    const unsigned long amount = tsNumberFromEnvironment("COUNTERSIGN_SHUTDOWNS", 12);
    int signatures = 0;
    for (unsigned long number = 0; number < amount && !HasFailure(); ++number)
    {
        const int signal = std::array<int, 3>{SIGTERM, SIGHUP, SIGINT}.at(number % 3);
        const std::chrono::microseconds moment = randomMoment(60000);
        removeSignatures();
        const tsOutcome outcome = tsRunSignalled(programAtWork("work"), signal, moment, true);
        SCOPED_TRACE(std::to_string(number) + ": after " + std::to_string(moment.count()) + " us: " + outcome._errors);
        EXPECT_EQ(outcome._signal, signal) << outcome._exitStatus;
        EXPECT_EQ(outcome._output, "at work\n");
        signatures += checkFolder();
    }
    EXPECT_GT(signatures, 0);
    checkSettings();
}

TEST_F(Shutdown, OfTheProgramByAnAssertionsDialogWhileItWorks)
{
    SCOPED_TRACE("COUNTERSIGN_SEED=" + std::to_string(seed()));
    const unsigned long amount = tsNumberFromEnvironment("COUNTERSIGN_SHUTDOWNS", 12);
    for (unsigned long number = 0; number < amount && !HasFailure(); ++number)
    {
        const std::chrono::microseconds moment = randomMoment(60000);
        removeSignatures();
        const tsOutcome outcome = tsRunSignalled(programAtWork("exit"), SIGUSR1, moment, true);
        SCOPED_TRACE(std::to_string(number) + ": after " + std::to_string(moment.count()) + " us: " + outcome._errors);
        EXPECT_EQ(outcome._exitStatus, 0) << outcome._signal;
        checkFolder();
    }
    checkSettings();
}

TEST_F(Shutdown, OfTheProgramWhileItAsks)
{
    for (const int signal : {SIGTERM, SIGHUP, SIGINT})
    {
        for (int number = 0; number < documents; ++number)
        {
            _folder.write(name(number) + ".sig", _signatures.at(static_cast<std::size_t>(number)));
        }
        EXPECT_EQ(tsRunSignalled(programAtWork("question"), signal, randomMoment(300000), true)._signal, signal);
        EXPECT_EQ(checkFolder(), documents);
    }
}

// With the progress shown, most of the time.
TEST_F(Shutdown, OfTheProgramWhileItShowsItsProgress)
{
    // None of them is finished, on however many processors.
    for (int number = 0; number < documents; ++number)
    {
        std::filesystem::resize_file(_folder.path(name(number)), 64ULL << 30);
    }
    for (const int signal : {SIGTERM, SIGHUP, SIGINT})
    {
        EXPECT_EQ(tsRunSignalled(programAtWork("progress"), signal, std::chrono::microseconds(700000), true)._signal,
                  signal);
        EXPECT_EQ(checkFolder(), 0);
    }
}

// The session is over, or the server has died.
TEST_F(Shutdown, OfTheDisplayWhileTheProgramWorks)
{
    SCOPED_TRACE("COUNTERSIGN_SEED=" + std::to_string(seed()));
    const unsigned long amount = tsNumberFromEnvironment("COUNTERSIGN_SHUTDOWNS", 8);
    for (unsigned long number = 0; number < amount && !HasFailure(); ++number)
    {
        const std::chrono::microseconds moment = randomMoment(60000);
        removeSignatures();
        const tsOutcome outcome = tsRunSignalled(programAtWork("lost"), SIGUSR1, moment, true);
        SCOPED_TRACE(std::to_string(number) + ": after " + std::to_string(moment.count()) + " us: " + outcome._errors);
        EXPECT_EQ(outcome._exitStatus, 1) << outcome._signal;
        checkFolder();
    }
}
