// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoFileSigning.h"

#include <memory>
#include <new>

#include "crypto/crRSADigitalSigner.h"
#include "crypto/crRSAStringEncryptor.h"
#include "platform/osWrappers/osFile.h"

namespace
{

// As many whole runs as come next to this are read at once: large enough to be read past the file's own buffer, small
// enough for a lively progress.
constexpr unsigned long bytesAtOnce = 1024 * 1024;

hoSigningFacts readError(const osFile& file)
{
    return hoSigningFacts(osFileResult(osFileProblem::CannotBeRead, file.errorNumber()));
}

// Reads the open file to its end into the signer's digest.
hoSigningFacts foldOpenFile(osFile& file, crRSADigitalSigner& signer, hoIProgress* pProgress)
{
    const auto runLength = static_cast<unsigned long>(signer.amountOfDigestBytes());
    const unsigned long bufferSize = (bytesAtOnce / runLength + 1) * runLength;
    const std::unique_ptr<char[]> pBuffer(new (std::nothrow) char[bufferSize]);
    if (pBuffer == nullptr)
    {
        return hoSigningProblem::NoMemory;
    }
    unsigned long long size = 0;
    file.fileSize(size);
    unsigned long long done = 0;
    unsigned long amountRead = 0;
    while (file.readAvailableData(pBuffer.get(), bufferSize, amountRead))
    {
        signer.addToMessageDigest(pBuffer.get(), amountRead);
        done += amountRead;
        if ((pProgress != nullptr) && !pProgress->onProgress(done, size))
        {
            return hoSigningProblem::Cancelled;
        }
    }
    if (file.hasReadError())
    {
        return readError(file);
    }
    // Less than there was at the start: it has shrunk, though nothing may tell by now.
    return done < size ? hoSigningProblem::FileChanged : hoSigningProblem::None;
}

// The file must be the same before and after: otherwise the digest may be one that no file ever had.
hoSigningFacts foldFile(const gtString& path, crRSADigitalSigner& signer, hoIProgress* pProgress)
{
    osFileFacts before;
    const osFileResult reading = osReadFileFacts(path, before);
    if (!reading.isOk())
    {
        return hoSigningFacts(reading);
    }
    osFile file;
    if (!file.open(osFilePath(path), osChannel::OS_BINARY_CHANNEL, osFile::OS_OPEN_TO_READ))
    {
        return readError(file);
    }
    hoSigningFacts facts = foldOpenFile(file, signer, pProgress);
    osFileFacts after;
    if (facts.isOk() && (!osReadFileFacts(path, after).isOk() || after != before))
    {
        facts = hoSigningProblem::FileChanged;
    }
    facts._file = before;
    return facts;
}

// The digest's text, for either half of the key.
hoSigningFacts digestOfFile(const gtString& path, const hoKey& key, hoIProgress* pProgress, gtString& digestText)
{
    if (key.bits() < hoSmallestSigningKeyBits)
    {
        return hoSigningProblem::KeyTooSmall;
    }
    crRSADigitalSigner signer(key.publicKey());
    if (!signer.createMessageDigestDigits())
    {
        return hoSigningProblem::NoMemory;
    }
    const hoSigningFacts facts = foldFile(path, signer, pProgress);
    if (facts.isOk())
    {
        signer.messageDigestToString(digestText);
    }
    return facts;
}

// A signature that could not be decrypted for want of memory must not pass for a bad one.
bool isSignatureOf(const gtString& digestText, const hoKey& key, const gtString& signature)
{
    gtString decrypted;
    bool isShortOfMemory = false;
    const bool hasLength = crRSAStringEncryptor(key.publicKey()).decrypt(signature, decrypted, isShortOfMemory);
    if (isShortOfMemory)
    {
        throw std::bad_alloc();
    }
    return hasLength && (decrypted == digestText);
}

}  // namespace

hoIProgress::~hoIProgress() = default;

hoSigningFacts::hoSigningFacts(const osFileResult& reading)
    : osResult(hoSigningProblem::FileCannotBeRead, reading._systemError), _fileProblem(reading._problem)
{
}

hoSigningFacts hoSignFile(const gtString& path, const hoKey& key, hoIProgress* pProgress, gtString& signature)
{
    if (!key.hasPrivateKey())
    {
        return hoSigningProblem::NoPrivateKey;
    }
    try
    {
        gtString digestText;
        const hoSigningFacts facts = digestOfFile(path, key, pProgress, digestText);
        if (!facts.isOk())
        {
            return facts;
        }
        gtString newSignature;
        if (!crRSAStringEncryptor(key.privateKey()).encrypt(digestText, newSignature))
        {
            return hoSigningProblem::NoMemory;
        }
        if (!isSignatureOf(digestText, key, newSignature))
        {
            return hoSigningProblem::SelfTestFailed;
        }
        signature = newSignature;
        return facts;
    }
    catch (const std::bad_alloc&)
    {
        return hoSigningProblem::NoMemory;
    }
}

hoSigningFacts hoTestFile(const gtString& path, const hoKey& key, const gtString& signature, hoIProgress* pProgress,
                          bool& isGood)
{
    isGood = false;
    try
    {
        gtString digestText;
        const hoSigningFacts facts = digestOfFile(path, key, pProgress, digestText);
        isGood = facts.isOk() && isSignatureOf(digestText, key, signature);
        return facts;
    }
    catch (const std::bad_alloc&)
    {
        return hoSigningProblem::NoMemory;
    }
}

hoSigningFacts hoDigestOfFile(const gtString& path, const hoKey& key, hoIProgress* pProgress, gtString& digestText)
{
    try
    {
        gtString newText;
        const hoSigningFacts facts = digestOfFile(path, key, pProgress, newText);
        if (facts.isOk())
        {
            digestText = newText;
        }
        return facts;
    }
    catch (const std::bad_alloc&)
    {
        return hoSigningProblem::NoMemory;
    }
}
