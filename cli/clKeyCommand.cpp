// SPDX-License-Identifier: Apache-2.0
#include "cli/clKeyCommand.h"

#include <memory>
#include <string>

#include "cli/clCommands.h"
#include "cli/clJsonOutput.h"
#include "cli/clKeyLoading.h"
#include "cli/clPrintableName.h"
#include "cli/clStandardStreams.h"
#include "host/keys/hoKeyRing.h"
#include "host/keys/hoPublicKey.h"
#include "platform/baseTools/gtWipe.h"

namespace
{

void writeLine(const char* pName, const gtString& value)
{
    clWriteOutput(gtString(pName).append(' ').append(value).append('\n'));
}

void writeFacts(const hoKey& key, const hoKeyFileFacts& facts)
{
    writeLine("size", gtString(std::to_string(key.bits())));
    writeLine("kind", key.hasPrivateKey() ? "private" : "public");
    writeLine("encrypted", facts._isEncrypted ? "yes" : "no");
    writeLine("fingerprint", hoFingerprint(key));
    writeLine("short-fingerprint", hoShortFingerprint(key));
}

void writeNumbers(const crRSAEncryptionKey& key)
{
    writeLine("modulus", hoFixedWidthText(key.productDigits(), key.amountOfProductDigits()));
    const gtWipedText exponent{hoFixedWidthText(key.numberDigits(), key.amountOfNumberDigits())};
    clWriteOutput("exponent ");
    clWriteOutput(exponent._text);
    clWriteOutput("\n");
}

// --private is refused with --json, so nothing here is secret.
void writeJson(const clArguments& arguments, const hoKey& key, const hoKeyFileFacts& facts)
{
    clJsonObject object = clBeginJson("key", arguments._command);
    object.addFileName("file", arguments._keyPath).addNumber("bits", static_cast<std::size_t>(key.bits()));
    object.add("kind", key.hasPrivateKey() ? "private" : "public").addFlag("encrypted", facts._isEncrypted);
    object.add("fingerprint", hoFingerprint(key)).add("shortFingerprint", hoShortFingerprint(key));
    if (arguments._areNumbersWanted)
    {
        const crRSAEncryptionKey& numbers = key.publicKey();
        object.add("modulus", hoFixedWidthText(numbers.productDigits(), numbers.amountOfProductDigits()));
        object.add("exponent", hoFixedWidthText(numbers.numberDigits(), numbers.amountOfNumberDigits()));
    }
    clWriteJson(object);
}

}  // namespace

bool clHasWantedHalf(const clArguments& arguments, const hoKey& key)
{
    if (!arguments._isPrivateWanted || key.hasPrivateKey())
    {
        return true;
    }
    clComplain(clPrintableName(arguments._keyPath)
                   .append(": is a public key and has no private exponent; leave --private out"));
    return false;
}

int clPerformKey(const clArguments& arguments)
{
    hoKeyFileFacts facts;
    std::unique_ptr<const hoKey> pKey =
        clLoadKey(arguments, arguments._keyPath, arguments._isPublicWanted ? hoKeyNeed::Public : hoKeyNeed::Any, facts);
    if (pKey == nullptr || !clHasWantedHalf(arguments, *pKey))
    {
        return clStatusNotChecked;
    }
    if (arguments._isPublicWanted)
    {
        clWriteOutput(hoPublicKeyPem(*pKey));
        return clStatusGood;
    }
    if (arguments._isJsonWanted)
    {
        writeJson(arguments, *pKey, facts);
        return clStatusGood;
    }
    writeFacts(*pKey, facts);
    if (arguments._isPrivateWanted || arguments._areNumbersWanted)
    {
        writeNumbers(arguments._isPrivateWanted ? pKey->privateKey() : pKey->publicKey());
    }
    return clStatusGood;
}
