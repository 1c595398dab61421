// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TemporaryFolder.h"

#include "host/keys/hoKeyFile.h"
#include "host/keys/hoNewKeyPair.h"

#include <gtest/gtest.h>

#include <cstring>

#include <sys/stat.h>

namespace
{

class Source : public hoIPassphraseSource
{
public:
    int getPassphrase(char* pBuffer, int) override
    {
        std::memcpy(pBuffer, "sesame", 6);
        return 6;
    }
};

void waitFor(const hoNewKeyPair& pair)
{
    while (!pair.isFinished())
    {
        std::this_thread::yield();
    }
}

unsigned int rights(const std::string& path)
{
    struct stat entry;
    return stat(path.c_str(), &entry) == 0 ? entry.st_mode & 0777U : 0;
}
}  // namespace

TEST(NewKeyPair, CanBeLoaded)
{
    const TemporaryFolder folder;
    hoNewKeyPair pair(1024);
    waitFor(pair);
    ASSERT_TRUE(pair.isMade());
    ASSERT_EQ(pair.writePrivateKey(folder.path("key").c_str(), "", false)._problem, osWritingProblem::None);
    ASSERT_EQ(pair.writePublicKey(folder.path("pub").c_str(), false)._problem, osWritingProblem::None);
    EXPECT_EQ(rights(folder.path("key")), 0600U);
    EXPECT_EQ(rights(folder.path("pub")), 0644U);

    hoKeyFileFacts facts;
    const auto pPrivate = hoLoadKeyFile(folder.path("key").c_str(), nullptr, facts);
    ASSERT_NE(pPrivate, nullptr);
    EXPECT_EQ(facts._bits, 1024);
    EXPECT_TRUE(pPrivate->hasPrivateKey());
    EXPECT_FALSE(facts._isOpenToOthers);
    const auto pPublic = hoLoadKeyFile(folder.path("pub").c_str(), nullptr, facts);
    ASSERT_NE(pPublic, nullptr);
    EXPECT_FALSE(pPublic->hasPrivateKey());
    EXPECT_EQ(pPublic->publicKey().productDigits()[0], pPrivate->publicKey().productDigits()[0]);
}

TEST(NewKeyPair, CanBeEncrypted)
{
    const TemporaryFolder folder;
    hoNewKeyPair pair(512);
    waitFor(pair);
    ASSERT_EQ(pair.writePrivateKey(folder.path("key").c_str(), "sesame", false)._problem, osWritingProblem::None);
    hoKeyFileFacts facts;
    EXPECT_EQ(hoLoadKeyFile(folder.path("key").c_str(), nullptr, facts), nullptr);
    EXPECT_EQ(facts._problem, hoKeyFileProblem::PassphraseNeeded);
    Source source;
    EXPECT_NE(hoLoadKeyFile(folder.path("key").c_str(), &source, facts), nullptr);
}

TEST(NewKeyPair, ReplacesNothingUnasked)
{
    const TemporaryFolder folder;
    folder.write("key", "precious");
    hoNewKeyPair pair(512);
    waitFor(pair);
    EXPECT_EQ(pair.writePrivateKey(folder.path("key").c_str(), "", false)._problem, osWritingProblem::Exists);
    EXPECT_EQ(std::filesystem::file_size(folder.path("key")), 8U);
    const osWritingResult writing = pair.writePrivateKey(folder.path("nowhere/key").c_str(), "", false);
    EXPECT_EQ(writing._problem, osWritingProblem::CannotBeWritten);
    EXPECT_EQ(writing._systemError, ENOENT);
    EXPECT_EQ(pair.writePrivateKey(folder.path("key").c_str(), "", true)._problem, osWritingProblem::None);
    EXPECT_GT(std::filesystem::file_size(folder.path("key")), 100U);
    EXPECT_EQ(rights(folder.path("key")), 0600U);
    int entries = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
    {
        entries += entry.exists() ? 1 : 0;
    }
    EXPECT_EQ(entries, 1);
}

TEST(NewKeyPair, CanBeCancelled)
{
    hoNewKeyPair pair(4096);
    pair.cancel();
    waitFor(pair);
    EXPECT_FALSE(pair.isMade());
}
