// SPDX-License-Identifier: Apache-2.0
// What is known of a document after its signature was tested.
#ifndef COUNTERSIGN_HO_VERDICT_H
#define COUNTERSIGN_HO_VERDICT_H

enum class hoVerdict
{
    Good,           // both lines of the signature hold
    Bad,            // the signature is this key's and well formed, and the document is another
    Weak,           // the exclusive-or digest holds, and there is no countersignature
    AnotherKey,     // the signature is not this key's
    NotASignature,  // nothing that this program writes; hoSignatureForm tells more
    NotSigned,      // there is no signature
    Missing,        // there is no document
    Unreadable,     // the document or the signature cannot be read
    Changed,        // the document was changed while it was being read
    NotTested       // cancelled, no memory, or a key that cannot test
};

#endif
