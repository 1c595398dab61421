// SPDX-License-Identifier: Apache-2.0
// Every problem and verdict in words, once for the window and the command line, in the program's language
// (hoLanguage.h).
//
// A reason is a clause without a subject's name and without a full stop, to stand behind a name and a colon: "it is a
// folder; choose the files in it". Empty when there is no problem. UTF-8. Plain functions; safe from any thread; only
// std::bad_alloc comes out.
#ifndef COUNTERSIGN_HO_MESSAGES_H
#define COUNTERSIGN_HO_MESSAGES_H

#include "host/keys/hoKeyFile.h"
#include "host/signing/hoDocument.h"
#include "host/signing/hoFileSigning.h"
#include "host/signing/hoSignatureFile.h"
#include "host/signing/hoTextEncryption.h"
#include "platform/osWrappers/osAtomicFile.h"

// What the system says of one of its error numbers.
gtString hoSystemErrorText(int systemError);

gtString hoFileReason(const osFileResult& result);
gtString hoKeyFileReason(const hoKeyFileFacts& facts);
gtString hoSigningReason(const hoSigningFacts& facts);
gtString hoSignatureFileReason(const hoSignatureFileResult& facts);

// The same of a file that is written: why it was not.
gtString hoWritingReason(const osWritingResult& result);

// key: the one that encrypts, or decrypts. length: of the text, or of the cipher text.
gtString hoEncryptionReason(hoTextProblem problem, const crRSAEncryptionKey& key, int length);
gtString hoDecryptionReason(hoTextProblem problem, const crRSAEncryptionKey& key, int length);

// The verdict as a word or two, as it stands behind a document's name: "good", "BAD", "another key". In English,
// whatever the language is, as scripts read it.
gtString hoVerdictText(hoVerdict verdict);

// What stands behind the verdict: why the document could not be tested, what its signature is instead of one of the
// key's. Empty for a good one.
gtString hoVerdictReason(const hoTestFacts& facts);

// What a file is instead of a signature of this program.
gtString hoSignatureFormReason(hoSignatureForm form);

// Of a passphrase of more than hoLongestPassphrase bytes.
gtString hoLongPassphraseReason();

// What encrypting with a private key means. In English, whatever the language is.
gtString hoPrivateEncryptionWarning();

// The state as a word or two, with a capital. canTest: a key is loaded that could tell.
gtString hoStateText(hoDocumentState state, bool canTest);

// Warnings about a private key, to stand behind its name and a colon.
gtString hoOpenKeyWarning();
gtString hoOpenFolderWarning();
// Where libcrypto did not take the allocator that overwrites (hoLibcryptoMemory.h).
gtString hoLibcryptoMemoryWarning();

#endif
