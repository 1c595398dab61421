// SPDX-License-Identifier: Apache-2.0
// After a key is used and gone, nothing of it stands anywhere in the process's memory: not in freed blocks, not in
// libcrypto's, not on the stack.
#include <fcntl.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>
#include <openssl/crypto.h>

#include "cli/clStandardStreams.h"
#include "cliTestSupport.h"
#include "host/keys/hoKeyFile.h"
#include "host/signing/hoFileSigning.h"
#include "host/signing/hoTextEncryption.h"
#include "platform/baseTools/gtWipe.h"
#include "tests/support/tsSecrets.h"

namespace
{

class Secrets : public ::testing::Test
{
protected:
    void SetUp() override
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "a sanitizer's memory is too large to be looked through";
#endif
        makeKeys(_folder, 1024);
        tsWritePassphrase(_folder / "passphrase");
        runOpenSSL(_folder,
                   {"rsa", "-in", "private.pem", "-aes256", "-passout", "file:passphrase", "-out", "locked.pem"});
        _folder.write("report", std::string(100000, 'r'));
    }

    TemporaryFolder _folder;
};

}  // namespace

TEST_F(Secrets, OfAKeyAreGoneWithIt)
{
    for (const char* pName : {"private.pem", "locked.pem"})
    {
        const std::vector<tsSecret> secrets = tsSecretsOfKey(_folder / pName);
        ASSERT_EQ(secrets.size(), 4U);
        hoKeyFileFacts facts;
        tsPassphraseSource passphrase;
        std::unique_ptr<const hoKey> pKey = hoLoadKeyFile(gtString((_folder / pName).c_str()), &passphrase, facts);
        ASSERT_NE(pKey, nullptr);
        // The search finds what is there: the toolkit's number, and libcrypto's.
        EXPECT_EQ(tsTimesInMemory(secrets[0]), 2);
        gtString signature;
        EXPECT_EQ(hoSignFile(gtString((_folder / "report").c_str()), *pKey, hoSignatureLines::Both, nullptr, signature)
                      ._problem,
                  hoSigningProblem::None);
        gtString cipher;
        EXPECT_EQ(hoEncryptText(pKey->privateKey(), "text", cipher)._problem, hoTextProblem::None);
        EXPECT_EQ(tsTimesInMemory(secrets[0]), 2) << "there are two places for a private exponent";
        pKey.reset();
        for (const tsSecret& secret : secrets)
        {
            EXPECT_EQ(tsTimesInMemory(secret), 0) << pName << ": " << secret._name;
        }
        for (const tsSecret& secret : tsSecretsOfPassphrase())
        {
            EXPECT_EQ(tsTimesInMemory(secret), 0) << pName << ": " << secret._name;
        }
    }
}

TEST_F(Secrets, OfLibcryptoAreGoneWhereTheyWere)
{
    const std::vector<tsSecret> secrets = tsSecretsOfPassphrase();
    const int size = 1024;
    char* pMemory = static_cast<char*>(OPENSSL_malloc(static_cast<std::size_t>(size)));
    ASSERT_NE(pMemory, nullptr);
    EXPECT_GT(tsPassphraseSource().getPassphrase(pMemory, size), 0);
    EXPECT_EQ(tsTimesInMemory(secrets.front()), 1) << "the search finds what is there";
    // It moves: something else has what is behind it.
    void* const pBehind = OPENSSL_malloc(static_cast<std::size_t>(size));
    pMemory = static_cast<char*>(OPENSSL_realloc(pMemory, static_cast<std::size_t>(size) * 100));
    ASSERT_NE(pMemory, nullptr);
    EXPECT_EQ(tsTimesInMemory(secrets.front()), 1) << "it is not overwritten where it was";
    OPENSSL_free(pMemory);
    OPENSSL_free(pBehind);
    for (const tsSecret& secret : secrets)
    {
        EXPECT_EQ(tsTimesInMemory(secret), 0) << secret._name;
    }
}

TEST_F(Secrets, OfAnInputAreGoneWithItsText)
{
    const std::vector<tsSecret> secrets = tsSecretsOfPassphrase();
    const int input = open((_folder / "passphrase").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(input, 0);
    {
        gtWipedText text;
        ASSERT_EQ(clReadDescriptor(input, text._text, 4096), 0);
        EXPECT_EQ(tsTimesInMemory(secrets.front()), 1) << "the text, and no buffer";
    }
    close(input);
    for (const tsSecret& secret : secrets)
    {
        EXPECT_EQ(tsTimesInMemory(secret), 0) << secret._name;
    }
}
