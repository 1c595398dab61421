// SPDX-License-Identifier: Apache-2.0
// Any text decrypted under any key of up to five digits, any text encrypted, and libcrypto's big numbers beside it.
#include <string>
#include <vector>

#include <openssl/bn.h>

#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"
#include "fuzzInput.h"
#include "platform/baseTools/gtString.h"

namespace
{

constexpr std::size_t longestText = 400;

// The cipher text as its format says, for lengths where the digits set aside are exact.
std::string expectedCipherText(const std::string& text, const crRSAEncryptionKey& key, int amountOfDigits)
{
    const auto blockBytes = static_cast<std::size_t>(key.amountOfProductDigits()) * 4;
    std::string plain;
    for (const char character : text)
    {
        if (plain.size() % blockBytes == 0)
        {
            plain += '\1';
        }
        plain += character;
    }
    plain.resize(static_cast<std::size_t>(amountOfDigits) * 4, 'd');
    BN_CTX* pContext = BN_CTX_new();
    const auto bytesOf = [](const unsigned int* pDigits) { return reinterpret_cast<const unsigned char*>(pDigits); };
    const auto block = static_cast<int>(blockBytes);
    BIGNUM* pModulus = BN_lebin2bn(bytesOf(key.productDigits()), block, nullptr);
    BIGNUM* pExponent = BN_lebin2bn(bytesOf(key.numberDigits()), block, nullptr);
    BIGNUM* pNumber = BN_new();
    BIGNUM* pPower = BN_new();
    gtString result;
    result.appendFormattedString("%08x", static_cast<unsigned int>(text.size()));
    for (std::size_t i = 0; i < plain.size(); i += blockBytes)
    {
        BN_lebin2bn(reinterpret_cast<const unsigned char*>(plain.data()) + i, block, pNumber);
        // An exponent of one hands the block on as it is.
        if (BN_is_one(pExponent) != 0)
        {
            BN_copy(pPower, pNumber);
        }
        else
        {
            BN_mod_exp(pPower, pNumber, pExponent, pModulus, pContext);
        }
        std::vector<unsigned char> bytes(blockBytes);
        FUZZ_CHECK(BN_bn2lebinpad(pPower, bytes.data(), block) == block);
        for (std::size_t digit = 0; digit < blockBytes; digit += 4)
        {
            result.appendFormattedString("%02x%02x%02x%02x", static_cast<unsigned int>(bytes[digit + 3]),
                                         static_cast<unsigned int>(bytes[digit + 2]),
                                         static_cast<unsigned int>(bytes[digit + 1]),
                                         static_cast<unsigned int>(bytes[digit]));
        }
    }
    BN_free(pPower);
    BN_free(pNumber);
    BN_free(pExponent);
    BN_free(pModulus);
    BN_CTX_free(pContext);
    return std::string(result.asCharArray(), static_cast<std::size_t>(result.length()));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    FuzzInput input(pBytes, size);
    const int digits = 1 + input.byte() % 5;
    const std::uint8_t kind = input.byte();
    const bool isShort = (kind & 1U) != 0;
    // A wild length is an honest piece of work, so it comes seldom.
    const bool isWild = kind >= 250;
    gtString modulus;
    gtString exponent;
    for (int i = 0; i < digits; ++i)
    {
        modulus.appendFormattedString("%08x", input.word());
        exponent.appendFormattedString("%08x", (isShort && i + 1 < digits) ? 0U : input.word());
    }
    crRSAEncryptionKey key;
    FUZZ_CHECK(key.setKeyFromStrings(digits * 32, modulus, digits * 32, exponent));
    const crRSAStringEncryptor encryptor(key);

    std::string text = input.rest();
    text.resize(text.size() < longestText ? text.size() : longestText);
    const gtString given(text.data(), static_cast<int>(text.size()));
    std::string toDecrypt = text;
    for (std::size_t i = 0; !isWild && i < 4 && i < toDecrypt.size(); ++i)
    {
        toDecrypt[i] = '0';
    }
    gtString plain("left over");
    const bool isDecrypted = encryptor.decrypt(gtString(toDecrypt.data(), static_cast<int>(toDecrypt.size())), plain);
    FUZZ_CHECK(isDecrypted == (text.size() >= 8));
    FUZZ_CHECK(plain.length() <= crRSAStringEncryptor::maximalAmountOfClaimedBytes);

    gtString cipher("kept");
    if (!encryptor.encrypt(given, cipher))
    {
        FUZZ_CHECK(!key.isUsable() && cipher == gtString("kept"));
        return 0;
    }
    const int amountOfDigits = encryptor.amountOfDigitsForHoldingText(given.length());
    FUZZ_CHECK(cipher.length() == 8 + 8 * amountOfDigits);
    FUZZ_CHECK(expectedCipherText(text, key, amountOfDigits) == cipher.asCharArray());
    FUZZ_CHECK(encryptor.decrypt(cipher, plain));
    return 0;
}
