// SPDX-License-Identifier: Apache-2.0
// RSA keys from any counts and any texts: the right bool, the right digits, and a key that can be used or says that it
// cannot.
#include <cctype>
#include <cstdio>
#include <string>

#include "crypto/crRSADigitalSigner.h"
#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"
#include "fuzzInput.h"
#include "platform/baseTools/gtString.h"

namespace
{

// Small counts mostly, as they are or as multiples; wild ones now and then, but not so large that they are there.
int anyBits(FuzzInput& input)
{
    const std::uint8_t kind = input.byte();
    if (kind < 200)
    {
        return (kind % 40) * 32;
    }
    const auto wild = static_cast<int>(input.word());
    return wild > 1000000 ? wild % 1000000 : wild;
}

unsigned int expectedDigit(const std::string& text, std::size_t group)
{
    // Up to a NUL byte.
    const std::string whole = text.substr(group * 8, 8);
    const std::string characters = whole.substr(0, whole.find('\0'));
    unsigned int digit = 0;
    if (characters.empty() || std::isxdigit(static_cast<unsigned char>(characters[0])) == 0)
    {
        return 0;
    }
    // How sscanf converts is what the key is compared with. NOLINTNEXTLINE(cert-err34-c)
    FUZZ_CHECK(std::sscanf(characters.c_str(), "%8x", &digit) == 1);
    return digit;
}

void checkDigits(const unsigned int* pDigits, int all, int amount, const std::string& text)
{
    const bool isRead = static_cast<long long>(amount) * 8 == static_cast<long long>(text.size());
    for (int i = 0; i < all; ++i)
    {
        const bool isWithin = isRead && i < amount;
        FUZZ_CHECK(pDigits[i] == (isWithin ? expectedDigit(text, static_cast<std::size_t>(amount - 1 - i)) : 0));
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    FuzzInput input(pBytes, size);
    const int productBits = anyBits(input);
    const int numberBits = anyBits(input);
    const bool isFermat = (input.byte() & 1U) != 0;
    const unsigned int prime = input.word();
    std::string product = input.upTo('\n');
    std::string number = input.rest();
    // Half of the time with the right length, which would hardly ever be met.
    if ((prime & 1U) != 0)
    {
        product.resize(productBits > 0 ? static_cast<std::size_t>(productBits / 32) * 8 : 0, '7');
        number.resize(numberBits > 0 ? static_cast<std::size_t>(numberBits / 32) * 8 : 0, '3');
    }
    const gtString productText(product.data(), static_cast<int>(product.size()));
    const gtString numberText(number.data(), static_cast<int>(number.size()));

    crRSAEncryptionKey key;
    const bool isLoaded = isFermat ? key.setKeyFromStringAndFermatPrime(productBits, productText, prime)
                                   : key.setKeyFromStrings(productBits, productText, numberBits, numberText);
    FUZZ_CHECK(key.amountOfProductDigits() == productBits / 32);
    FUZZ_CHECK(key.amountOfNumberDigits() == (isFermat ? productBits : numberBits) / 32);
    const bool isPossible =
        productBits % 32 == 0 && productBits >= 0 && (isFermat || (numberBits % 32 == 0 && numberBits <= productBits));
    const bool hasLengths = static_cast<long long>(productBits) / 4 == productText.length() &&
                            (isFermat || static_cast<long long>(numberBits) / 4 == numberText.length());
    FUZZ_CHECK(isLoaded == (isPossible && hasLengths));
    FUZZ_CHECK((key.productDigits() != nullptr) == isPossible);
    if (isPossible)
    {
        checkDigits(key.productDigits(), productBits / 32, productBits / 32, product);
        if (!isFermat)
        {
            checkDigits(key.numberDigits(), productBits / 32, numberBits / 32, number);
        }
        else if (productBits > 0)
        {
            FUZZ_CHECK(key.numberDigits()[0] == prime);
        }
    }
    // Small keys are tried at once; the others cost too much time here.
    if (productBits <= 160)
    {
        gtString cipher("kept");
        const bool isEncrypted = crRSAStringEncryptor(key).encrypt("text", cipher);
        FUZZ_CHECK(isEncrypted == key.isUsable());
        gtString plain;
        FUZZ_CHECK(crRSAStringEncryptor(key).decrypt("00000004deadbeefdeadbeef", plain));
        crRSADigitalSigner signer(key);
        FUZZ_CHECK(signer.createMessageDigestDigits() == (productBits / 32 >= 2));
    }
    return 0;
}
