// SPDX-License-Identifier: Apache-2.0
// An outside program on the installed package: encrypts a text, and passes a failed assertion through the kit's
// handler. Prints what came out; the test compares it.
#include <cstdio>

#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"
#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osProcess.h"

int main()
{
    // 3 to the power 1 modulo anything larger is 3: with exponent 1 the blocks come out as they went in.
    crRSAEncryptionKey key;
    if (!key.setKeyFromStringAndFermatPrime(64, gtString("ffffffffffffffff"), 1))
    {
        return 1;
    }
    gtString cipherText;
    if (!crRSAStringEncryptor(key).encrypt(gtString("abc"), cipherText))
    {
        return 1;
    }
    std::printf("%s\n", cipherText.asCharArray());

    ahDialogBasedAssertionFailureHandler handler(osGetCurrentThreadId());
    gtRegisterAssertionFailureHandler(&handler);
    gtTriggerAssertonFailureHandler("main", "main.cpp", 1, "silent");
    std::printf("%d handler\n", gtAmountOfRegisteredAssertionFailureHandlers());
    gtUnRegisterAssertionFailureHandler(&handler);
    return 0;
}
