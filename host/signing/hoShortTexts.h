// SPDX-License-Identifier: Apache-2.0
// What a person gets to see of a decrypted text: the text if it is one, and its bytes if not.
//
// Facts come back; the wording is up to the window. Nothing here prints or keeps anything; only std::bad_alloc comes
// out of the functions that return text. Safe from any thread.
#ifndef COUNTERSIGN_HO_SHORT_TEXTS_H
#define COUNTERSIGN_HO_SHORT_TEXTS_H

#include "host/signing/hoTextEncryption.h"
#include "platform/baseTools/gtString.h"

struct hoReadableText : hoTextResult
{
    bool _isText = false;  // without a problem, and _bytes can be shown as text
    gtString _bytes;       // without a problem, and with DoesNotComeOut, what there is; else empty
};

hoReadableText hoDecryptForReading(const crRSAEncryptionKey& key, const gtString& cipherText);

// Whether the bytes are UTF-8 (no overlong forms, no surrogates, at most U+10FFFF) without a NUL.
bool hoIsReadable(const gtString& bytes);

// Sixteen bytes a line, each line with an end: "00000010  61 62 ..  |ab.|", as hexdump -C writes them but for its last
// line. What is not printable ASCII is a dot on the right. Empty for no bytes.
gtString hoHexDump(const gtString& bytes);

#endif
