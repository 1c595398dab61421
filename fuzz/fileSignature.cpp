// SPDX-License-Identifier: Apache-2.0
// A file of any bytes, signed, tested, and tested with any text as its signature; the digest is folded a second time,
// byte by byte.
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include "crypto/crRSADigitalSigner.h"
#include "crypto/crRSAEncryptionKey.h"
#include "fuzzInput.h"
#include "platform/osWrappers/osFilePath.h"

namespace
{

// Keys of two random primes each, with the exponent that undoes 65537. They guard nothing.
struct SmallKey
{
    int bits;
    const char* pModulus;
    const char* pPrivateExponent;
};

const SmallKey smallKeys[] = {
    {64, "b07d350cff5efe4d", "67fd2e3f005e9541"},
    {96, "8d1196465a78cfaf11bee409", "4ec4cd3647796cce1e9a5ee9"},
    {128, "bd713ea03a514599297081567e52124d", "45ed4a3f9ca72937f68fbed9ba11a5c1"},
    {160, "81dd4817c2b305c4bc3de3ed77c64f0ddff56f8f", "2472d0fb2a4048cc30f0dc32d4b5cf56e06dda71"},
    {192, "b6b87253c66a9100a2685a1149ca1742f91475a341668c9d", "37c4f64831a0671f9d726242ae26a33dc1c5462b10e64f01"}};

osFilePath fileHolding(const std::string& contents)
{
    static const int descriptor = memfd_create("fuzz", 0);
    FUZZ_CHECK(descriptor >= 0);
    FUZZ_CHECK(ftruncate(descriptor, 0) == 0);
    FUZZ_CHECK(pwrite(descriptor, contents.data(), contents.size(), 0) == static_cast<ssize_t>(contents.size()));
    return osFilePath(gtString(("/proc/self/fd/" + std::to_string(descriptor)).c_str()));
}

std::string digestText(const std::string& contents, int digitsOfKey)
{
    std::vector<unsigned int> digest(static_cast<std::size_t>(digitsOfKey / 2 - 1));
    for (std::size_t i = 0; i < contents.size() && !digest.empty(); ++i)
    {
        const std::size_t place = i % (digest.size() * 4);
        digest[place / 4] ^= static_cast<unsigned int>(static_cast<unsigned char>(contents[i])) << (8 * (place % 4));
    }
    gtString text;
    for (const unsigned int digit : digest)
    {
        text.appendFormattedString("%08x", digit);
    }
    return text.asCharArray();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    FuzzInput input(pBytes, size);
    const SmallKey& smallKey = smallKeys[input.byte() % (sizeof(smallKeys) / sizeof(smallKeys[0]))];
    crRSAEncryptionKey publicKey;
    crRSAEncryptionKey privateKey;
    FUZZ_CHECK(publicKey.setKeyFromStringAndFermatPrime(smallKey.bits, smallKey.pModulus, 65537));
    FUZZ_CHECK(
        privateKey.setKeyFromStrings(smallKey.bits, smallKey.pModulus, smallKey.bits, smallKey.pPrivateExponent));

    const std::string otherSignature = input.upTo('\n');
    const std::string contents = input.rest();
    const osFilePath file = fileHolding(contents);

    crRSADigitalSigner signer(privateKey);
    gtString text;
    FUZZ_CHECK(signer.createMessageDigestDigits());
    FUZZ_CHECK(signer.createFileMessageDigest(file));
    signer.messageDigestToString(text);
    signer.deleteMessageDigestDigits();
    FUZZ_CHECK(digestText(contents, smallKey.bits / 32) == text.asCharArray());

    gtString signature;
    FUZZ_CHECK(signer.getSignature(file, signature));
    crRSADigitalSigner tester(publicKey);
    FUZZ_CHECK(tester.testSignature(file, signature));
    const gtString other(otherSignature.data(), static_cast<int>(otherSignature.size()));
    if (tester.testSignature(file, other) && text.length() > 0)
    {
        // Another text that stands for the same digits: it must at least have its length.
        FUZZ_CHECK(other.length() >= 8);
        FUZZ_CHECK(tester.testSignature(file, signature));
    }
    return 0;
}
