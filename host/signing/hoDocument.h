// SPDX-License-Identifier: Apache-2.0
// A document to be signed or tested, and what is known of its signature. Values without threads or resources of their
// own.
#ifndef COUNTERSIGN_HO_DOCUMENT_H
#define COUNTERSIGN_HO_DOCUMENT_H

#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osFileFacts.h"

enum class hoDocumentState
{
    NotSigned,      // there is no signature beside it
    NotTested,      // there is one, and nobody has looked at it
    SignedByMe,     // it is good under the loaded private key's partner
    Good,           // it is good under the loaded public key
    Weak,           // its exclusive-or digest holds under a loaded key, and it has no countersignature
    Bad,            // it is a loaded key's, of another document
    AnotherKey,     // it is not a loaded key's
    NotASignature,  // what is beside it is nothing that this program writes
    Changed,        // the document or its signature has changed since one of the six above was found
    CannotBeRead,   // the document is there, and cannot be read
    Missing         // there is no such file
};

// A state, and what it was found with.
struct hoDocumentVerdict
{
    hoDocumentState _state = hoDocumentState::NotSigned;
    osFileFacts _file;
    osFileFacts _signature;
    // Which key it came from (hoTestingKey), where several were loaded and one of them has made the signature.
    gtString _keyName;
};

struct hoDocument
{
    gtString _path;      // absolute
    osFileFacts _facts;  // the file's at the last look
    hoDocumentVerdict _verdict;
    bool _isSignatureKept = false;  // a job does not replace it, whatever may be overwritten

    // The last component of the path, which is not empty.
    gtString name() const;
    // The path without its last component and without the separator before it, except for "/" itself.
    gtString folder() const;
};

#endif
