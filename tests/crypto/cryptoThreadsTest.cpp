// SPDX-License-Identifier: Apache-2.0
// One key, many threads: what the headers promise, for the thread sanitizer to look at.
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "crypto/crRSADigitalSigner.h"
#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"
#include "cryptoTestSupport.h"

TEST(CryptoThreads, ShareOneKey)
{
    const TestKeyPair& pair = keyFromOpenSSL(512);
    crRSAEncryptionKey publicKey;
    crRSAEncryptionKey privateKey;
    pair.loadPublic(publicKey);
    pair.loadPrivate(privateKey);
    const crRSAStringEncryptor sharedEncryptor(publicKey);
    const crRSAStringEncryptor sharedDecryptor(privateKey);
    const TemporaryFolder folder;
    const osFilePath file = folder.write("file", scrambledBytes(5000, 4));

    constexpr unsigned int amountOfThreads = 8;
    std::vector<int> successes(amountOfThreads);
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < amountOfThreads; ++i)
    {
        threads.emplace_back(
            [&, i]
            {
                for (int round = 0; round < 20; ++round)
                {
                    const gtString text = toText("thread " + std::to_string(i) + " round " + std::to_string(round));
                    gtString cipher;
                    gtString plain;
                    crRSADigitalSigner signer(privateKey);
                    crRSADigitalSigner tester(publicKey);
                    gtString signature;
                    if (sharedEncryptor.encrypt(text, cipher) && sharedDecryptor.decrypt(cipher, plain) &&
                        plain == text && signer.getSignature(file, signature) && tester.testSignature(file, signature))
                    {
                        ++successes[i];
                    }
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(successes, std::vector<int>(amountOfThreads, 20));
}
