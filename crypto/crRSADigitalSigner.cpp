// SPDX-License-Identifier: Apache-2.0
#include "crypto/crRSADigitalSigner.h"

#include <memory>
#include <new>

#include "crypto/crDigits.h"
#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"
#include "platform/baseTools/gtString.h"
#include "platform/baseTools/gtWipe.h"
#include "platform/osWrappers/osChannel.h"
#include "platform/osWrappers/osFile.h"
#include "platform/osWrappers/osFilePath.h"

namespace
{

constexpr int bytesPerDigit = 4;

// Runs of the digest are folded side by side into this much before they meet in the digest: the runs of a digest are
// short and odd in length, which keeps the compiler from using wide registers.
constexpr unsigned long laneBytes = 2048;
constexpr unsigned long runsOfLanes = 4;

unsigned int digitFromBytes(const unsigned char* pBytes)
{
    return static_cast<unsigned int>(pBytes[0]) | (static_cast<unsigned int>(pBytes[1]) << 8) |
           (static_cast<unsigned int>(pBytes[2]) << 16) | (static_cast<unsigned int>(pBytes[3]) << 24);
}

// Each piece begins on the digest's first byte, and is large enough to go straight into the signer's memory, where it
// can be wiped. The digest must not be empty.
unsigned long amountToReadAtOnce(unsigned long bytesAtOnce)
{
    return osFile::bufferCapacity / bytesAtOnce * bytesAtOnce + bytesAtOnce;
}

}  // namespace

crRSADigitalSigner::crRSADigitalSigner(const crRSAEncryptionKey& key)
    : _key(key), _pDigestDigits(nullptr), _amountOfDigestDigits(0)
{
}

crRSADigitalSigner::~crRSADigitalSigner()
{
    deleteMessageDigestDigits();
}

bool crRSADigitalSigner::createMessageDigestDigits()
{
    _amountOfDigestDigits = _key.amountOfProductDigits() / 2 - 1;
    _pDigestDigits = crAllocateDigits(_amountOfDigestDigits);
    return _pDigestDigits != nullptr;
}

void crRSADigitalSigner::deleteMessageDigestDigits()
{
    crReleaseDigits(_pDigestDigits, _amountOfDigestDigits);
    _amountOfDigestDigits = 0;
    _pDigestDigits = nullptr;
}

bool crRSADigitalSigner::createFileMessageDigest(const osFilePath& file)
{
    osFile openFile;
    if (!openFile.open(file, osChannel::OS_BINARY_CHANNEL, osFile::OS_OPEN_TO_READ))
    {
        return false;
    }
    if (_pDigestDigits == nullptr && _amountOfDigestDigits != 0)
    {
        return false;
    }
    const auto bytesAtOnce = static_cast<unsigned long>(amountOfDigestBytes());
    if (bytesAtOnce == 0)
    {
        return true;
    }
    const unsigned long amountOfBytes = amountToReadAtOnce(bytesAtOnce);
    const std::unique_ptr<char[]> pBuffer(new (std::nothrow) char[amountOfBytes]);
    if (pBuffer == nullptr)
    {
        return false;
    }
    unsigned long amountRead = 0;
    while (openFile.readAvailableData(pBuffer.get(), amountOfBytes, amountRead))
    {
        addToMessageDigest(pBuffer.get(), amountRead);
    }
    gtWipe(pBuffer.get(), amountOfBytes);
    return true;
}

void crRSADigitalSigner::addToMessageDigest(const char* pBytes, unsigned long amountOfBytes)
{
    const auto bytesAtOnce = static_cast<unsigned long>(amountOfDigestBytes());
    if (bytesAtOnce == 0)
    {
        return;
    }
    const auto* pNext = reinterpret_cast<const unsigned char*>(pBytes);
    const unsigned long bytesSideBySide = laneBytes / bytesAtOnce * bytesAtOnce;
    const unsigned long bytesOfAllLanes = runsOfLanes * bytesSideBySide;
    if (bytesOfAllLanes != 0)
    {
        unsigned char lanes[laneBytes] = {};
        for (unsigned long left = amountOfBytes / bytesOfAllLanes; left != 0; --left)
        {
            const unsigned char* pSecond = pNext + bytesSideBySide;
            const unsigned char* pThird = pSecond + bytesSideBySide;
            const unsigned char* pFourth = pThird + bytesSideBySide;
            for (unsigned long i = 0; i < bytesSideBySide; ++i)
            {
                lanes[i] = static_cast<unsigned char>(lanes[i] ^ pNext[i] ^ pSecond[i] ^ pThird[i] ^ pFourth[i]);
            }
            pNext += bytesOfAllLanes;
        }
        amountOfBytes %= bytesOfAllLanes;
        for (unsigned long i = 0; i < bytesSideBySide; ++i)
        {
            const unsigned long byte = i % bytesAtOnce;
            _pDigestDigits[byte / bytesPerDigit] ^= static_cast<unsigned int>(lanes[i]) << (8 * (byte % bytesPerDigit));
        }
        gtWipe(lanes, sizeof(lanes));
    }
    for (unsigned long left = amountOfBytes / bytesAtOnce; left != 0; --left)
    {
        for (int i = 0; i < _amountOfDigestDigits; ++i)
        {
            _pDigestDigits[i] ^= digitFromBytes(pNext + static_cast<long>(i) * bytesPerDigit);
        }
        pNext += bytesAtOnce;
    }
    amountOfBytes %= bytesAtOnce;
    for (unsigned long i = 0; i < amountOfBytes; ++i)
    {
        _pDigestDigits[i / bytesPerDigit] ^= static_cast<unsigned int>(pNext[i]) << (8 * (i % bytesPerDigit));
    }
}

int crRSADigitalSigner::amountOfDigestBytes() const
{
    return _pDigestDigits == nullptr ? 0 : _amountOfDigestDigits * bytesPerDigit;
}

void crRSADigitalSigner::messageDigestToString(gtString& output)
{
    output.makeEmpty();
    if (_pDigestDigits != nullptr)
    {
        crAppendDigits(output, _pDigestDigits, _amountOfDigestDigits);
    }
}

bool crRSADigitalSigner::getSignature(const osFilePath& file, gtString& signature)
{
    bool succeeded = false;
    try
    {
        if (createMessageDigestDigits() && createFileMessageDigest(file))
        {
            gtWipedText digest;
            messageDigestToString(digest._text);
            succeeded = crRSAStringEncryptor(_key).encrypt(digest._text, signature);
        }
    }
    catch (const std::bad_alloc&)
    {
        succeeded = false;
    }
    deleteMessageDigestDigits();
    return succeeded;
}

bool crRSADigitalSigner::testSignature(const osFilePath& file, const gtString& signature)
{
    bool isGood = false;
    try
    {
        if (createMessageDigestDigits() && createFileMessageDigest(file))
        {
            gtWipedText digest;
            messageDigestToString(digest._text);
            gtWipedText decrypted;
            bool isShortOfMemory = false;
            // A signature of a megabyte can ask for a gigabyte of output.
            isGood = crRSAStringEncryptor(_key).decrypt(signature, decrypted._text, isShortOfMemory,
                                                        digest._text.length()) &&
                     !isShortOfMemory && decrypted._text == digest._text;
        }
    }
    catch (const std::bad_alloc&)
    {
        isGood = false;
    }
    deleteMessageDigestDigits();
    return isGood;
}
