// SPDX-License-Identifier: Apache-2.0
// What the tests of this folder share: keys from elsewhere, a folder for files, and the cipher text as libcrypto's big
// numbers make it.
#ifndef COUNTERSIGN_TESTS_CRYPTOTESTSUPPORT_H
#define COUNTERSIGN_TESTS_CRYPTOTESTSUPPORT_H

#include <functional>
#include <memory>
#include <string>

#include <openssl/bn.h>

#include "crypto/crRSAEncryptionKey.h"
#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osFilePath.h"

using BigNumber = std::unique_ptr<BIGNUM, decltype(&BN_free)>;

// A pair of keys, by libcrypto's means only.
struct TestKeyPair
{
    int bits = 0;
    BigNumber modulus{nullptr, BN_free};
    BigNumber publicExponent{nullptr, BN_free};
    BigNumber privateExponent{nullptr, BN_free};

    int digits() const { return bits / 32; }
    int blockBytes() const { return bits / 8; }

    // Load through setKeyFromStrings, both with the modulus's length.
    void loadPublic(crRSAEncryptionKey& key) const;
    void loadPrivate(crRSAEncryptionKey& key) const;
};

// The key that "openssl genrsa" makes; made once in the life of the program for each size.
const TestKeyPair& keyFromOpenSSL(int bits);

// A key of any size from 32 bits on, of two random primes; made once for each size. Its modulus has its top bit set.
const TestKeyPair& keyOfPrimes(int bits);

// Lower-case hexadecimal characters, at least so many.
std::string hexOf(unsigned int value, int characters);

// The number as so many digits of hexadecimal text, most significant first.
std::string fixedWidthHex(const BIGNUM* pNumber, int digits);

// The cipher text that the encryptor must make, made from the description of the format and BN_mod_exp.
std::string expectedCipherText(const std::string& text, const TestKeyPair& pair, const BIGNUM* pExponent);

// Digits that the format sets aside for so many bytes, in whole numbers.
int expectedDigits(int lengthOfText, int digitsPerBlock);

gtString toText(const std::string& bytes);
std::string toBytes(const gtString& text);

// Bytes that look random, the same for the same seed.
std::string scrambledBytes(std::size_t amount, unsigned int seed);

// Runs the operation on a stack of its own, on a thread of its own, and gives back what that stack holds afterwards.
std::string stackLeftBy(const std::function<void()>& operation);

// A folder that is removed with what is in it.
class TemporaryFolder
{
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return _path; }
    std::string operator/(const std::string& name) const { return _path + "/" + name; }
    osFilePath write(const std::string& name, const std::string& contents) const;

private:
    std::string _path;
};

#endif
