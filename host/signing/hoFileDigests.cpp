// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoFileDigests.h"

#include "crypto/crRSADigitalSigner.h"
#include "host/signing/hoDocumentReader.h"

#include <openssl/evp.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <new>
#include <thread>

namespace
{

// As many whole runs as come next to this are read at once: large enough to be read past the file's own buffer, small
// enough to stay in the processor's cache for both digests.
constexpr unsigned long bytesAtOnce = 256UL * 1024;
constexpr unsigned long long bytesBetweenReports = 1024 * 1024;

// A file whose facts change as often as this before it can be read is being written to.
constexpr int mostLooks = 4;
constexpr std::int64_t longestSleep = 100 * 1000 * 1000;

hoSigningFacts readError(const hoDocumentReader& file)
{
    return hoSigningFacts(osFileResult(osFileProblem::CannotBeRead, file.errorNumber()));
}

struct ContextDeleter
{
    void operator()(EVP_MD_CTX* pContext) const { EVP_MD_CTX_free(pContext); }
};

// SHA-256, or nothing.
class Sha256
{
public:
    explicit Sha256(bool isWanted)
    {
        if (isWanted)
        {
            _pContext.reset(EVP_MD_CTX_new());
            _hasFailed = _pContext == nullptr || EVP_DigestInit_ex(_pContext.get(), EVP_sha256(), nullptr) != 1;
        }
    }
    void add(const char* pBytes, std::size_t amount)
    {
        if (_pContext != nullptr && !_hasFailed)
        {
            _hasFailed = EVP_DigestUpdate(_pContext.get(), pBytes, amount) != 1;
        }
    }
    // False when libcrypto failed, which it does for want of memory only.
    bool finish(hoSha256& digest)
    {
        if (_pContext != nullptr && !_hasFailed)
        {
            _hasFailed = EVP_DigestFinal_ex(_pContext.get(), digest.data(), nullptr) != 1;
        }
        return !_hasFailed;
    }

private:
    std::unique_ptr<EVP_MD_CTX, ContextDeleter> _pContext;
    bool _hasFailed = false;
};

bool mayGoOn(hoIProgress* pProgress, unsigned long long done, const osFileFacts& facts)
{
    return pProgress == nullptr || pProgress->onProgress(done, facts._size);
}

// Takes the facts of a file that any change from now on would alter.
hoSigningFacts settle(hoDocumentReader& file, hoIProgress* pProgress, osFileFacts& facts)
{
    for (int looks = 0; looks < mostLooks; ++looks)
    {
        if (!file.readFacts(facts))
        {
            return readError(file);
        }
        std::int64_t left = file.isRegular() ? osTimeUntilStampsMove(facts) : 0;
        if (left <= 0)
        {
            return hoSigningProblem::None;
        }
        const bool isLong = left > longestSleep;
        for (; left > 0; left = osTimeUntilStampsMove(facts))
        {
            if (isLong && !mayGoOn(pProgress, 0, facts))
            {
                return hoSigningProblem::Cancelled;
            }
            std::this_thread::sleep_for(std::chrono::nanoseconds(std::min(left, longestSleep)));
        }
    }
    return hoSigningProblem::FileChanged;
}

hoSigningFacts readToEnd(hoDocumentReader& file, const osFileFacts& facts, crRSADigitalSigner& signer, Sha256& sha256,
                         hoIProgress* pProgress)
{
    const auto runLength = static_cast<unsigned long>(signer.amountOfDigestBytes());
    const unsigned long bufferSize = (bytesAtOnce / runLength + 1) * runLength;
    const std::unique_ptr<char[]> pBuffer(new char[bufferSize]);
    unsigned long long done = 0;
    unsigned long long reported = 0;
    unsigned long amountRead = 0;
    while (file.readAvailableData(pBuffer.get(), bufferSize, amountRead))
    {
        signer.addToMessageDigest(pBuffer.get(), amountRead);
        sha256.add(pBuffer.get(), amountRead);
        done += amountRead;
        if (done - reported >= bytesBetweenReports || done >= facts._size)
        {
            reported = done;
            if (!mayGoOn(pProgress, done, facts))
            {
                return hoSigningProblem::Cancelled;
            }
        }
    }
    if (file.isGivenUp())
    {
        return hoSigningProblem::Cancelled;
    }
    if (file.hasReadError())
    {
        return readError(file);
    }
    // Less than there was at the start: it has shrunk, though nothing may tell by now.
    return done < facts._size ? hoSigningProblem::FileChanged : hoSigningProblem::None;
}

}  // namespace

hoIProgress::~hoIProgress() = default;

hoSigningFacts hoReadDigests(const hoDocumentSource& source, const crRSAEncryptionKey& key, bool isShaWanted,
                             hoIProgress* pProgress, hoFileDigests& digests)
{
    // Only this tells in detail why a file cannot be opened. What it says of a file that can is not believed.
    osFileFacts ofTheName;
    const osFileResult reading = source.hasPath() ? osReadFileFacts(source._path, ofTheName) : osFileResult();
    if (!reading.isOk())
    {
        return hoSigningFacts(reading);
    }
    hoDocumentReader file(source);
    if (!file.open())
    {
        return readError(file);
    }
    crRSADigitalSigner signer(key);
    Sha256 sha256(isShaWanted);
    if (!signer.createMessageDigestDigits())
    {
        throw std::bad_alloc();
    }
    osFileFacts before;
    hoSigningFacts facts = settle(file, pProgress, before);
    if (facts.isOk())
    {
        facts = readToEnd(file, before, signer, sha256, pProgress);
    }
    if (!facts.isOk())
    {
        return facts;
    }
    osFileFacts after;
    if (!file.readFacts(after))
    {
        return readError(file);
    }
    if (file.isRegular() && after != before)
    {
        return hoSigningProblem::FileChanged;
    }
    hoFileDigests result;
    if (!sha256.finish(result._sha256))
    {
        throw std::bad_alloc();
    }
    signer.messageDigestToString(result._digestText);
    digests = result;
    facts._file = before;
    return facts;
}
