// SPDX-License-Identifier: Apache-2.0
#include "tests/host/SlowKey.h"
#include "tests/support/TemporaryFolder.h"

#include "host/keys/hoKeyLoader.h"
#include "host/keys/hoNewKeyPair.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace
{

using State = hoKeyLoader::State;

constexpr std::chrono::milliseconds patience(300000);

class KeyLoader : public testing::Test
{
protected:
    void SetUp() override
    {
        hoNewKeyPair pair(512);
        while (!pair.isFinished())
        {
            std::this_thread::yield();
        }
        ASSERT_EQ(pair.writePrivateKey(_folder.path("plain"), "", false)._problem, osWritingProblem::None);
        ASSERT_EQ(pair.writePrivateKey(_folder.path("encrypted"), "sesame", false)._problem, osWritingProblem::None);
    }

    std::unique_ptr<hoKeyLoader> load(const char* pName)
    {
        auto pInThread = std::make_shared<int>();
        _pInThread = pInThread;
        return std::make_unique<hoKeyLoader>(_folder.path(pName), hoKeyNeed::Any,
                                             [this, pInThread = std::move(pInThread)] { ++_changes; });
    }

    const TemporaryFolder _folder;
    std::atomic<int> _changes{0};
    std::weak_ptr<int> _pInThread;  // as long as the thread or the loader is there
    hoKeyFileFacts _facts;
};

}  // namespace

TEST_F(KeyLoader, GivesTheKey)
{
    const auto pLoader = load("plain");
    ASSERT_EQ(pLoader->waitFor(patience), State::Finished);
    const auto pKey = pLoader->takeKey(_facts);
    ASSERT_NE(pKey, nullptr);
    EXPECT_TRUE(pKey->hasPrivateKey());
    EXPECT_EQ(_facts._bits, 512);
    EXPECT_EQ(_changes, 1);
}

TEST_F(KeyLoader, SaysWhyThereIsNone)
{
    const auto pLoader = load("missing");
    ASSERT_EQ(pLoader->waitFor(patience), State::Finished);
    EXPECT_EQ(pLoader->takeKey(_facts), nullptr);
    EXPECT_EQ(_facts._problem, hoKeyFileProblem::CannotBeRead);
    EXPECT_EQ(_facts._systemError, ENOENT);
}

TEST_F(KeyLoader, WaitsForThePassphrase)
{
    const auto pLoader = load("encrypted");
    ASSERT_EQ(pLoader->waitFor(patience), State::PassphraseWanted);
    EXPECT_EQ(_changes, 1);
    pLoader->answerPassphrase("sesame");
    ASSERT_EQ(pLoader->waitFor(patience), State::Finished);
    EXPECT_NE(pLoader->takeKey(_facts), nullptr);
    EXPECT_TRUE(_facts._isEncrypted);
    EXPECT_EQ(_changes, 2);
}

TEST_F(KeyLoader, TakesNoForAnAnswer)
{
    const auto pLoader = load("encrypted");
    ASSERT_EQ(pLoader->waitFor(patience), State::PassphraseWanted);
    pLoader->refusePassphrase();
    ASSERT_EQ(pLoader->waitFor(patience), State::Finished);
    EXPECT_EQ(pLoader->takeKey(_facts), nullptr);
    EXPECT_EQ(_facts._problem, hoKeyFileProblem::PassphraseNeeded);
}

TEST_F(KeyLoader, RefusesALongPassphrase)
{
    const auto pLoader = load("encrypted");
    ASSERT_EQ(pLoader->waitFor(patience), State::PassphraseWanted);
    pLoader->answerPassphrase(std::string(100000, 'a'));
    ASSERT_EQ(pLoader->waitFor(patience), State::Finished);
    EXPECT_EQ(pLoader->takeKey(_facts), nullptr);
    EXPECT_EQ(_facts._problem, hoKeyFileProblem::PassphraseTooLong);
}

TEST_F(KeyLoader, CanBeGivenUpWhileItWaits)
{
    auto pLoader = load("encrypted");
    ASSERT_EQ(pLoader->waitFor(patience), State::PassphraseWanted);
    pLoader.reset();
    EXPECT_EQ(_changes, 1);
    EXPECT_TRUE(_pInThread.expired()) << "the thread has not ended";
}

TEST_F(KeyLoader, LeavesNoThreadBehindWhenItIsDone)
{
    auto pLoader = load("plain");
    ASSERT_EQ(pLoader->waitFor(patience), State::Finished);
    pLoader.reset();
    EXPECT_TRUE(_pInThread.expired()) << "the thread has not ended";
}

// The thread is still in libcrypto when this program ends.
TEST_F(KeyLoader, CanBeGivenUpWhileLibcryptoWorks)
{
    const std::string key = slowKey();
    ASSERT_FALSE(key.empty());
    _folder.write("slow", key);
    auto pLoader = load("slow");
    ASSERT_EQ(pLoader->waitFor(patience), State::PassphraseWanted);
    pLoader->answerPassphrase("sesame");
    EXPECT_EQ(pLoader->waitFor(std::chrono::milliseconds(1)), State::Busy);
    pLoader.reset();
    EXPECT_EQ(_changes, 1);
}
