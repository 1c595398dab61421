// SPDX-License-Identifier: Apache-2.0
// Signatures that are spoilt while they are made, as by a machine that is broken: they are not given out.
#include "tests/host/NewKey.h"
#include "tests/support/TemporaryFolder.h"

#include "host/signing/hoFileSigning.h"

#include <gtest/gtest.h>

#include <openssl/evp.h>

#include <dlfcn.h>
#include <new>

namespace
{
enum class Countersigning
{
    Works,
    IsSpoilt,
    Fails
};
Countersigning countersigning = Countersigning::Works;
}  // namespace

// In front of libcrypto's.
extern "C" int EVP_PKEY_sign(EVP_PKEY_CTX* pContext, unsigned char* pSignature, std::size_t* pLength,
                             const unsigned char* pDigest, std::size_t lengthOfDigest)
{
    static const auto pReal = reinterpret_cast<decltype(&EVP_PKEY_sign)>(dlsym(RTLD_NEXT, "EVP_PKEY_sign"));
    if (countersigning == Countersigning::Fails)
    {
        return 0;
    }
    const int result = (*pReal)(pContext, pSignature, pLength, pDigest, lengthOfDigest);
    if (countersigning == Countersigning::IsSpoilt)
    {
        pSignature[5] = static_cast<unsigned char>(pSignature[5] ^ 1U);
    }
    return result;
}

namespace
{
class SelfTest : public testing::Test
{
protected:
    ~SelfTest() override { countersigning = Countersigning::Works; }

    hoSigningProblem sign(hoSignatureLines lines)
    {
        return hoSignFile(_document, *_pKey, lines, nullptr, _signature)._problem;
    }

    const TemporaryFolder _folder;
    const gtString _document = _folder.write("document", "contents");
    const std::shared_ptr<const hoKey> _pKey = newKey(1024);
    gtString _signature = "kept";
};
}  // namespace

TEST_F(SelfTest, RefusesAFirstLineThatDoesNotComeBack)
{
    ASSERT_EQ(sign(hoSignatureLines::DigestOnly), hoSigningProblem::None);
    const gtString good = _signature;
    // A bit of the private exponent falls over in memory.
    const crRSAEncryptionKey& key = _pKey->privateKey();
    std::string exponent = hoFixedWidthText(key.numberDigits(), key.amountOfNumberDigits()).asStdString();
    exponent.back() = exponent.back() == '1' ? '3' : '1';
    const gtString product = hoFixedWidthText(key.productDigits(), key.amountOfProductDigits());
    const int productBits = key.amountOfProductDigits() * 32;
    const int numberBits = key.amountOfNumberDigits() * 32;
    // A key takes its numbers once: what it has is given back first.
    auto* const pSpoilt = const_cast<crRSAEncryptionKey*>(&key);
    pSpoilt->~crRSAEncryptionKey();
    new (pSpoilt) crRSAEncryptionKey;
    ASSERT_TRUE(pSpoilt->setKeyFromStrings(productBits, product, numberBits, exponent));
    for (const hoSignatureLines lines : {hoSignatureLines::DigestOnly, hoSignatureLines::Both})
    {
        EXPECT_EQ(sign(lines), hoSigningProblem::SelfTestFailed);
        EXPECT_EQ(_signature, good) << "it is not given out";
    }
}

TEST_F(SelfTest, RefusesASecondLineThatDoesNotComeBack)
{
    countersigning = Countersigning::IsSpoilt;
    EXPECT_EQ(sign(hoSignatureLines::Both), hoSigningProblem::SelfTestFailed);
    EXPECT_EQ(_signature, "kept");
    countersigning = Countersigning::Fails;
    EXPECT_EQ(sign(hoSignatureLines::Both), hoSigningProblem::CountersigningFailed);
    EXPECT_EQ(_signature, "kept");
    countersigning = Countersigning::Works;
    EXPECT_EQ(sign(hoSignatureLines::Both), hoSigningProblem::None);
    EXPECT_NE(_signature, "kept");
}
