// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoFileSigning.h"

#include <cerrno>
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

hoSigningFacts problemFacts(hoSigningProblem problem)
{
    hoSigningFacts facts;
    facts._problem = problem;
    return facts;
}

hoSigningFacts fileFacts(osFileProblem problem, int systemError)
{
    hoSigningFacts facts = problemFacts(hoSigningProblem::FileCannotBeRead);
    facts._fileProblem = problem;
    facts._systemError = systemError;
    return facts;
}

// Reads the open file to its end into the signer's digest.
hoSigningFacts foldOpenFile(osFile& file, crRSADigitalSigner& signer, hoIProgress* pProgress)
{
    const auto runLength = static_cast<unsigned long>(signer.amountOfDigestBytes());
    const unsigned long bufferSize = (bytesAtOnce / runLength + 1) * runLength;
    const std::unique_ptr<char[]> pBuffer(new (std::nothrow) char[bufferSize]);
    if (pBuffer == nullptr)
    {
        return problemFacts(hoSigningProblem::NoMemory);
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
            return problemFacts(hoSigningProblem::Cancelled);
        }
    }
    if (file.hasReadError())
    {
        return fileFacts(osFileProblem::CannotBeRead, file.errorNumber());
    }
    // Less than there was at the start: it has shrunk, though nothing may tell by now.
    return problemFacts((done < size) ? hoSigningProblem::FileChanged : hoSigningProblem::None);
}

// The file must be the same before and after: otherwise the digest may be one that no file ever had.
hoSigningFacts foldFile(const gtString& path, crRSADigitalSigner& signer, hoIProgress* pProgress)
{
    osFileFacts before;
    const osFileProblem problem = osReadFileFacts(path, before);
    if (problem != osFileProblem::None)
    {
        return fileFacts(problem, errno);
    }
    osFile file;
    if (!file.open(osFilePath(path), osChannel::OS_BINARY_CHANNEL, osFile::OS_OPEN_TO_READ))
    {
        return fileFacts(osFileProblem::CannotBeRead, file.errorNumber());
    }
    hoSigningFacts facts = foldOpenFile(file, signer, pProgress);
    osFileFacts after;
    if ((facts._problem == hoSigningProblem::None) &&
        ((osReadFileFacts(path, after) != osFileProblem::None) || (after != before)))
    {
        facts = problemFacts(hoSigningProblem::FileChanged);
    }
    facts._file = before;
    return facts;
}

// The digest's text, for either half of the key.
hoSigningFacts digestOfFile(const gtString& path, const hoKey& key, hoIProgress* pProgress, gtString& digestText)
{
    if (key.bits() < hoSmallestSigningKeyBits)
    {
        return problemFacts(hoSigningProblem::KeyTooSmall);
    }
    crRSADigitalSigner signer(key.publicKey());
    if (!signer.createMessageDigestDigits())
    {
        return problemFacts(hoSigningProblem::NoMemory);
    }
    const hoSigningFacts facts = foldFile(path, signer, pProgress);
    if (facts._problem == hoSigningProblem::None)
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

hoSigningFacts hoSignFile(const gtString& path, const hoKey& key, hoIProgress* pProgress, gtString& signature)
{
    if (!key.hasPrivateKey())
    {
        return problemFacts(hoSigningProblem::NoPrivateKey);
    }
    try
    {
        gtString digestText;
        const hoSigningFacts facts = digestOfFile(path, key, pProgress, digestText);
        if (facts._problem != hoSigningProblem::None)
        {
            return facts;
        }
        gtString newSignature;
        if (!crRSAStringEncryptor(key.privateKey()).encrypt(digestText, newSignature))
        {
            return problemFacts(hoSigningProblem::NoMemory);
        }
        if (!isSignatureOf(digestText, key, newSignature))
        {
            return problemFacts(hoSigningProblem::SelfTestFailed);
        }
        signature = newSignature;
        return facts;
    }
    catch (const std::bad_alloc&)
    {
        return problemFacts(hoSigningProblem::NoMemory);
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
        isGood = (facts._problem == hoSigningProblem::None) && isSignatureOf(digestText, key, signature);
        return facts;
    }
    catch (const std::bad_alloc&)
    {
        return problemFacts(hoSigningProblem::NoMemory);
    }
}

hoSigningFacts hoDigestOfFile(const gtString& path, const hoKey& key, hoIProgress* pProgress, gtString& digestText)
{
    try
    {
        gtString newText;
        const hoSigningFacts facts = digestOfFile(path, key, pProgress, newText);
        if (facts._problem == hoSigningProblem::None)
        {
            digestText = newText;
        }
        return facts;
    }
    catch (const std::bad_alloc&)
    {
        return problemFacts(hoSigningProblem::NoMemory);
    }
}
