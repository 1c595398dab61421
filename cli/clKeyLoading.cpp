// SPDX-License-Identifier: Apache-2.0
#include "cli/clKeyLoading.h"

#include "cli/clAdvice.h"
#include "cli/clInterrupt.h"
#include "cli/clPassphrase.h"
#include "cli/clPrintableName.h"
#include "cli/clStandardStreams.h"
#include "host/messages/hoMessages.h"

namespace
{

void warn(const gtString& name, const gtString& reason)
{
    clComplain(gtString("warning: ").append(name).append(": ").append(reason));
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

}  // namespace

std::unique_ptr<const hoKey> clLoadKey(const clArguments& arguments, const gtString& path, hoKeyNeed need,
                                       hoKeyFileFacts& facts)
{
    const gtString name = clPrintableName(path);
    clPassphrase passphrase(arguments, gtString("Passphrase for ").append(name).append(": "));
    std::unique_ptr<const hoKey> pKey = hoLoadKeyFile(path, &passphrase, facts, need);
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
