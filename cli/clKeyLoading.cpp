// SPDX-License-Identifier: Apache-2.0
#include "cli/clKeyLoading.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <string>
#include <sys/stat.h>

#include "cli/clAdvice.h"
#include "cli/clInterrupt.h"
#include "cli/clPassphrase.h"
#include "cli/clPrintableName.h"
#include "cli/clStandardStreams.h"
#include "cli/clStreams.h"
#include "host/messages/hoMessages.h"
#include "platform/baseTools/gtWipe.h"

namespace
{

bool goesOn()
{
    return !clIsInterrupted();
}

void warn(const gtString& name, const gtString& reason)
{
    clWarn(gtString(name).append(": ").append(reason));
}

void warnOfPrivateKey(const gtString& name, const hoKeyFileFacts& facts)
{
    if (facts._isOpenToOthers)
    {
        warn(name, hoOpenKeyWarning());
    }
    if (facts._isFolderOpenToOthers)
    {
        warn(name, hoOpenFolderWarning());
    }
    if (!facts._isLibcryptoMemoryWiped)
    {
        warn(name, hoLibcryptoMemoryWarning());
    }
}

// From a file, a pipe or standard input.
std::unique_ptr<const hoKey> load(const gtString& path, clPassphrase& passphrase, hoKeyFileFacts& facts, hoKeyNeed need)
{
    if (!clIsStream(path))
    {
        return hoLoadKeyFile(path, &passphrase, facts, need, goesOn);
    }
    facts = hoKeyFileFacts();
    gtWipedText bytes;
    // One byte more than a key may have, which tells that there are too many.
    facts._systemError = clReadStream(path, bytes._text, static_cast<int>(hoLargestKeyFile) + 1);
    if (facts._systemError != 0)
    {
        facts._problem = hoKeyFileProblem::CannotBeRead;
        return nullptr;
    }
    if (bytes._text.length() > hoLargestKeyFile)
    {
        facts._problem = hoKeyFileProblem::TooLarge;
        return nullptr;
    }
    return hoLoadKey(bytes._text.asCharArray(), bytes._text.length(), &passphrase, facts, need, goesOn);
}

// A private key need not be in memory longer than it takes to read its file.
void addPublicHalf(clKeys& keys, const gtString& path, const hoKey& key)
{
    keys.push_back({path, key.publicHalf()});
}

// The names of the files in the folder, links followed: 0, or the system's error number.
int readNames(const gtString& folder, std::vector<std::string>& names)
{
    const auto close = [](DIR* pFolder) { ::closedir(pFolder); };
    const std::unique_ptr<DIR, decltype(close)> pFolder(::opendir(folder.asCharArray()), close);
    errno = pFolder == nullptr ? errno : 0;
    while (const struct dirent* const pEntry = pFolder == nullptr ? nullptr : ::readdir(pFolder.get()))
    {
        struct stat facts = {};
        if (::fstatat(::dirfd(pFolder.get()), pEntry->d_name, &facts, 0) == 0 && S_ISREG(facts.st_mode))
        {
            names.emplace_back(pEntry->d_name);
        }
        errno = 0;
    }
    std::sort(names.begin(), names.end());
    return errno;
}

// False: the folder cannot be read, or has no key that can be used, which has been told then.
bool addFolder(const gtString& folder, clKeys& keys)
{
    std::vector<std::string> names;
    const int error = readNames(folder, names);
    if (error != 0)
    {
        clComplain(clPrintableName(folder).append(": cannot be read: ").append(hoSystemErrorText(error)));
        return false;
    }
    const std::size_t amountBefore = keys.size();
    std::vector<gtString> reasons;
    for (const std::string& name : names)
    {
        const bool endsWithSlash = folder[folder.length() - 1] == '/';
        const gtString path = gtString(folder).append(endsWithSlash ? "" : "/").append(name);
        hoKeyFileFacts facts;
        const std::unique_ptr<const hoKey> pKey = hoLoadKeyFile(path, nullptr, facts, hoKeyNeed::Public, goesOn);
        if (clIsInterrupted())
        {
            return false;
        }
        if (pKey != nullptr)
        {
            addPublicHalf(keys, path, *pKey);
        }
        else
        {
            reasons.push_back(clPrintableName(path).append(": ").append(hoKeyFileReason(facts)));
        }
    }
    if (keys.size() > amountBefore)
    {
        return true;
    }
    for (const gtString& reason : reasons)
    {
        clComplain(reason);
    }
    clComplain(clPrintableName(folder).append(": there is no key in it that can be used"));
    return false;
}

}  // namespace

std::unique_ptr<const hoKey> clLoadKey(const clArguments& arguments, const gtString& path, hoKeyNeed need,
                                       hoKeyFileFacts& facts)
{
    const gtString name = clStreamName(path);
    clPassphrase passphrase(arguments, gtString("Passphrase for ").append(name).append(": "));
    std::unique_ptr<const hoKey> pKey = load(path, passphrase, facts, need);
    if (pKey == nullptr && !clIsInterrupted())
    {
        gtString reason = gtString(name).append(": ").append(hoKeyFileReason(facts)).append(clKeyAdvice(facts));
        if (!passphrase.reason().isEmpty())
        {
            reason.append("; ").append(passphrase.reason());
        }
        clComplain(reason);
    }
    else if (pKey != nullptr && pKey->hasPrivateKey() && !arguments._areWarningsLeftOut)
    {
        warnOfPrivateKey(name, facts);
    }
    return pKey;
}

clKeys clLoadKeys(const clArguments& arguments)
{
    const bool isPublicEnough = arguments._command == clCommand::Test || arguments._command == clCommand::Digest ||
                                (arguments._command == clCommand::Encrypt && !arguments._isPrivateWanted);
    clKeys keys;
    for (const gtString& path : arguments._keyPaths)
    {
        hoKeyFileFacts facts;
        std::unique_ptr<const hoKey> pKey =
            clLoadKey(arguments, path, isPublicEnough ? hoKeyNeed::Public : hoKeyNeed::Any, facts);
        if (pKey == nullptr)
        {
            return {};
        }
        if (isPublicEnough)
        {
            addPublicHalf(keys, path, *pKey);
        }
        else
        {
            keys.push_back({path, std::move(pKey)});
        }
    }
    for (const gtString& folder : arguments._keyFolders)
    {
        if (!addFolder(folder, keys))
        {
            return {};
        }
    }
    return keys;
}

std::vector<const hoKey*> clPointersTo(const clKeys& keys)
{
    std::vector<const hoKey*> pointers;
    for (const clLoadedKey& key : keys)
    {
        pointers.push_back(key._pKey.get());
    }
    return pointers;
}
