// SPDX-License-Identifier: Apache-2.0
// Signs and tests files: the toolkit's signature over an exclusive-or digest, and a countersignature beside it that
// says what that digest cannot (hoCountersignature.h). hoSignatureText.h has the format, hoFileDigests.h how a file is
// read.
//
// Facts come back; the wording is up to the window and the command line. Nothing here throws or prints. A call may run
// on any thread, any number with the same key.
#ifndef COUNTERSIGN_HO_FILE_SIGNING_H
#define COUNTERSIGN_HO_FILE_SIGNING_H

#include "host/keys/hoKeyFile.h"
#include "host/signing/hoDocumentSource.h"
#include "host/signing/hoIProgress.h"
#include "host/signing/hoSignatureFile.h"
#include "host/signing/hoSignatureText.h"
#include "host/signing/hoSigningFacts.h"
#include "host/signing/hoVerdict.h"
#include "platform/baseTools/gtString.h"

#include <string_view>
#include <vector>

enum class hoSignatureLines
{
    Both,
    DigestOnly  // the toolkit's line alone: for keys that are too small to countersign, and for those who ask for it
};

struct hoTestFacts : hoSigningFacts
{
    hoVerdict _verdict = hoVerdict::NotTested;
    hoSignatureForm _form = hoSignatureForm::Empty;  // what the signature is by its form
    int _signatureBits = 0;         // size of the key that its first line was made for; 0: no signature
    gtString _fingerprint;          // the second line's, if there is one
    std::size_t _key = 0;           // which of the keys the verdict was found with,
    std::size_t _amountOfKeys = 0;  // of how many,
    int _keyBits = 0;               // its size,
    gtString _keyFingerprint;       // and its short fingerprint

    hoTestFacts() = default;
    // The document or its signature could not be read.
    explicit hoTestFacts(const hoSigningFacts& facts);
    explicit hoTestFacts(const hoSignatureFileResult& signatureFile);
};

// The bytes of the signature file under the private key. They are tested with the public key before they are given out.
// signature is written only when there is no problem; pProgress may be null.
hoSigningFacts hoSignDocument(const hoDocumentSource& source, const hoKey& key, hoSignatureLines lines,
                              hoIProgress* pProgress, gtString& signature);

// Tests the document against the bytes of a signature file. It is read only if the signature is one of a key, and
// once. keys: in the order in which they are tried, not empty; if the signature is none's, the verdict is that of the
// key that comes nearest.
hoTestFacts hoTestDocument(const hoDocumentSource& source, const std::vector<const hoKey*>& keys,
                           std::string_view signature, hoIProgress* pProgress);

// The digest's text of the document under a key of this size.
hoSigningFacts hoDigestOfDocument(const hoDocumentSource& source, const hoKey& key, hoIProgress* pProgress,
                                  gtString& digestText);

// The same of files by their paths.
inline hoSigningFacts hoSignFile(const gtString& path, const hoKey& key, hoSignatureLines lines, hoIProgress* pProgress,
                                 gtString& signature)
{
    return hoSignDocument(hoDocumentSource(path), key, lines, pProgress, signature);
}

inline hoTestFacts hoTestFile(const gtString& path, const std::vector<const hoKey*>& keys, std::string_view signature,
                              hoIProgress* pProgress)
{
    return hoTestDocument(hoDocumentSource(path), keys, signature, pProgress);
}

inline hoSigningFacts hoDigestOfFile(const gtString& path, const hoKey& key, hoIProgress* pProgress,
                                     gtString& digestText)
{
    return hoDigestOfDocument(hoDocumentSource(path), key, pProgress, digestText);
}

#endif
