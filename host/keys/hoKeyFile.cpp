// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyFile.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <openssl/core_names.h>
#include <openssl/err.h>

#include "host/keys/hoKeyDecoding.h"
#include "host/keys/hoKeyMaker.h"
#include "host/keys/hoLibcryptoMemory.h"
#include "host/keys/hoPemBlocks.h"
#include "host/keys/hoSecretBytes.h"

namespace
{

class OpenDescriptor
{
public:
    explicit OpenDescriptor(const char* pPath)
    {
        do
        {
            // A pipe without a writer must not hold anybody up, nor a terminal become the program's own.
            _descriptor = ::open(pPath, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
        } while (_descriptor < 0 && errno == EINTR);
    }
    ~OpenDescriptor()
    {
        if (_descriptor >= 0)
        {
            ::close(_descriptor);
        }
    }
    OpenDescriptor(const OpenDescriptor&) = delete;
    OpenDescriptor& operator=(const OpenDescriptor&) = delete;
    int get() const { return _descriptor; }

private:
    int _descriptor = -1;
};

bool isFolderOpenToOthers(const gtString& path)
{
    const std::string_view bytes = path.asStringView();
    const std::size_t slash = bytes.rfind('/');
    const gtString folder = slash == std::string_view::npos ? gtString(".") : gtString(bytes.substr(0, slash + 1));
    struct stat status = {};
    if (::stat(folder.asCharArray(), &status) != 0)
    {
        return false;
    }
    if (status.st_uid != ::geteuid() && status.st_uid != 0)
    {
        return true;
    }
    const bool isGroupsOwn = status.st_gid == ::getegid();
    const mode_t others = S_IWOTH | (isGroupsOwn ? 0 : S_IWGRP);
    return (status.st_mode & others) != 0 && (status.st_mode & S_ISVTX) == 0;
}

hoKeyFileProblem readWholeFile(int descriptor, long size, char* pBytes, int& systemError)
{
    long done = 0;
    while (done < size)
    {
        const ssize_t amount = ::read(descriptor, pBytes + done, static_cast<std::size_t>(size - done));
        if (amount < 0 && errno == EINTR)
        {
            continue;
        }
        if (amount < 0)
        {
            systemError = errno;
            return hoKeyFileProblem::CannotBeRead;
        }
        if (amount == 0)
        {
            break;
        }
        done += amount;
    }
    // Nothing of an older file may stand behind what was read.
    std::memset(pBytes + done, 0, static_cast<std::size_t>(size - done));
    return hoKeyFileProblem::None;
}

// The bytes of the file; null, and the facts say why, when they cannot be had or are too many.
std::unique_ptr<hoSecretBytes> readKeyFile(const gtString& path, hoKeyFileFacts& facts)
{
    if (std::strlen(path.asCharArray()) != static_cast<std::size_t>(path.length()))
    {
        facts._problem = hoKeyFileProblem::CannotBeRead;
        facts._systemError = EINVAL;
        return nullptr;
    }
    const OpenDescriptor file(path.asCharArray());
    struct stat status = {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0)
    {
        facts._problem = hoKeyFileProblem::CannotBeRead;
        facts._systemError = errno;
        return nullptr;
    }
    if (!S_ISREG(status.st_mode))
    {
        facts._problem = S_ISDIR(status.st_mode) ? hoKeyFileProblem::IsFolder : hoKeyFileProblem::NotRegular;
        return nullptr;
    }
    if (status.st_size > hoLargestKeyFile)
    {
        facts._problem = hoKeyFileProblem::TooLarge;
        return nullptr;
    }
    auto pBytes = std::make_unique<hoSecretBytes>(static_cast<std::size_t>(status.st_size));
    if (pBytes->bytes() == nullptr)
    {
        throw std::bad_alloc();
    }
    facts._problem = readWholeFile(file.get(), status.st_size, pBytes->bytes(), facts._systemError);
    if (facts._problem != hoKeyFileProblem::None)
    {
        return nullptr;
    }
    facts._isOpenToOthers = (status.st_mode & (S_IRWXG | S_IRWXO)) != 0;
    facts._isFolderOpenToOthers = isFolderOpenToOthers(path);
    return pBytes;
}

// A piece of the file that may be the key: a PEM block, or all of it.
std::unique_ptr<const hoKey> loadCandidate(const hoPemBlock& block, hoPassphraseQuestion& question,
                                           hoKeyFileFacts& facts, const hoGoesOn& goesOn)
{
    const bool isPem = !block._label.empty();
    if (block._label == "OPENSSH PRIVATE KEY")
    {
        facts._isPrivate = true;
        facts._problem = hoKeyFileProblem::OpenSshFormat;
        return nullptr;
    }
    const char* const pForm = isPem ? "PEM" : "DER";
    hoLibcryptoKey key = block.isCertificate() ? hoDecodeCertificate(block._text, true)
                                               : hoDecodeKey(block._text, pForm, "RSA", question);
    if (key == nullptr && !block.isCertificate())
    {
        // Only after that: the numbers of a key without a name are those of other kinds, too.
        key = hoDecodeKey(block._text, pForm, nullptr, question);
    }
    facts._isEncrypted = question._isAsked;
    facts._isPrivate = block.isPrivateKey();
    if (key == nullptr)
    {
        facts._problem = hoDecodingProblem(question);
        if (!isPem && facts._problem == hoKeyFileProblem::Damaged)
        {
            key = hoDecodeCertificate(block._text, false);
        }
        if (key == nullptr)
        {
            return nullptr;
        }
    }
    facts._problem = hoKeyFileProblem::None;
    if (EVP_PKEY_is_a(key.get(), "RSA") != 1)
    {
        facts._problem = EVP_PKEY_is_a(key.get(), "RSA-PSS") == 1 ? hoKeyFileProblem::RsaPss : hoKeyFileProblem::NotRsa;
        return nullptr;
    }
    if (!isPem)
    {
        facts._isPrivate = hoNumberOfKey(key, OSSL_PKEY_PARAM_RSA_D) != nullptr;
    }
    return hoKeyMaker::makeKey(key, facts, goesOn);
}

// The pieces in the order in which they are tried.
std::vector<hoPemBlock> findCandidates(std::string_view bytes, const std::vector<hoPemBlock>& blocks, hoKeyNeed need)
{
    std::vector<hoPemBlock> candidates;
    const bool isPublicFirst = need == hoKeyNeed::Public;
    for (const bool isPrivateWanted : {!isPublicFirst, isPublicFirst})
    {
        for (const hoPemBlock& block : blocks)
        {
            const bool isPublic = block.isPublicKey() || block.isCertificate();
            if (isPrivateWanted ? block.isPrivateKey() : isPublic)
            {
                candidates.push_back(block);
            }
        }
    }
    const char beginOfDer = 0x30;
    if (blocks.empty() && bytes.substr(0, 1) == std::string_view(&beginOfDer, 1))
    {
        candidates.push_back({{}, bytes});
    }
    return candidates;
}

std::unique_ptr<const hoKey> loadFrom(std::string_view bytes, hoKeyNeed need, hoIPassphraseSource* pSource,
                                      hoKeyFileFacts& facts, const hoGoesOn& goesOn)
{
    const std::vector<hoPemBlock> blocks = hoFindPemBlocks(bytes);
    const std::vector<hoPemBlock> candidates = findCandidates(bytes, blocks, need);
    const hoKeyFileFacts begun = facts;
    hoPassphraseQuestion question;
    question._pSource = pSource;
    hoKeyFileFacts first;
    for (const hoPemBlock& candidate : candidates)
    {
        facts = begun;
        std::unique_ptr<const hoKey> pKey = loadCandidate(candidate, question, facts, goesOn);
        if (pKey != nullptr)
        {
            return pKey;
        }
        if (&candidate == &candidates.front())
        {
            first = facts;
        }
        // Beside a key of another kind there may be one that fits; a key that is spoilt is told about.
        if (facts._problem != hoKeyFileProblem::NotRsa && facts._problem != hoKeyFileProblem::RsaPss)
        {
            break;
        }
    }
    facts = candidates.empty() || facts._problem != hoKeyFileProblem::NotRsa ? facts : first;
    const bool isUnknownDer = !candidates.empty() && candidates.front()._label.empty() &&
                              facts._problem == hoKeyFileProblem::Damaged && facts._bits == 0;
    if (candidates.empty() || isUnknownDer)
    {
        facts._problem = hoProblemOfOther(bytes, blocks);
    }
    return nullptr;
}

}  // namespace

hoIPassphraseSource::~hoIPassphraseSource() = default;

std::unique_ptr<const hoKey> hoLoadKey(const char* pBytes, int amountOfBytes, hoIPassphraseSource* pSource,
                                       hoKeyFileFacts& facts, hoKeyNeed need, const hoGoesOn& goesOn)
{
    hoKeyFileFacts begun;
    begun._isOpenToOthers = facts._isOpenToOthers;
    begun._isFolderOpenToOthers = facts._isFolderOpenToOthers;
    begun._isLibcryptoMemoryWiped = hoIsLibcryptoMemoryWiped();
    facts = begun;
    ERR_clear_error();
    std::unique_ptr<const hoKey> pKey;
    try
    {
        pKey =
            loadFrom(std::string_view(pBytes, static_cast<std::size_t>(amountOfBytes)), need, pSource, facts, goesOn);
    }
    catch (const std::bad_alloc&)
    {
        facts._problem = hoKeyFileProblem::NoMemory;
    }
    ERR_clear_error();
    return pKey;
}

std::unique_ptr<const hoKey> hoLoadKeyFile(const gtString& path, hoIPassphraseSource* pSource, hoKeyFileFacts& facts,
                                           hoKeyNeed need, const hoGoesOn& goesOn)
{
    facts = hoKeyFileFacts();
    std::unique_ptr<hoSecretBytes> pBytes;
    try
    {
        pBytes = readKeyFile(path, facts);
        return pBytes == nullptr
                   ? nullptr
                   : hoLoadKey(pBytes->bytes(), static_cast<int>(pBytes->size()), pSource, facts, need, goesOn);
    }
    catch (const std::bad_alloc&)
    {
        facts._problem = hoKeyFileProblem::NoMemory;
        return nullptr;
    }
}

bool hoIsKeyFile(const gtString& path)
{
    hoKeyFileFacts facts;
    const std::unique_ptr<hoSecretBytes> pBytes = readKeyFile(path, facts);
    if (pBytes == nullptr)
    {
        return false;
    }
    const std::string_view text(pBytes->bytes(), pBytes->size());
    if (!hoBeginsWithPem(text))
    {
        return false;
    }
    const std::vector<hoPemBlock> blocks = hoFindPemBlocks(text);
    return std::any_of(blocks.begin(), blocks.end(),
                       [](const hoPemBlock& block) { return block.isPrivateKey() || block.isPublicKey(); });
}
