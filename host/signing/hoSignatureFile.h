// SPDX-License-Identifier: Apache-2.0
// Signature files, beside the signed file and with its name and ".sig". hoSignatureText.h has what is in them.
//
// Nothing here prints, and nothing throws but hoSignaturePath and hoDocumentOfSignature (std::bad_alloc). Calls on
// different files may run on any threads.
#ifndef COUNTERSIGN_HO_SIGNATURE_FILE_H
#define COUNTERSIGN_HO_SIGNATURE_FILE_H

#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osAtomicFile.h"
#include "platform/osWrappers/osResult.h"

enum class hoSignatureFileProblem
{
    None,
    CannotBeRead,     // the system refused; also when reading failed on the way
    TooLarge,         // more than hoLargestSignatureFile bytes: no signature
    Exists,           // something has that name, a link to nowhere included, and overwriting was not allowed
    NotOurs,          // what is there is no signature of this program, and is not overwritten in any case
    NotRegular,       // what is there is a folder, a device or a pipe, which is not overwritten in any case
    CannotBeWritten,  // the system refused, or the disk is full
    NoMemory
};

constexpr long hoLargestSignatureFile = 1024 * 1024;

using hoSignatureFileResult = osResult<hoSignatureFileProblem>;

// The name of the file's signature file.
gtString hoSignaturePath(const gtString& path);

// The path of the document that a signature file of this name is beside, whether or not either is there; empty when
// this is no signature file's name. A file that is named ".sig" and no more is nobody's signature.
gtString hoDocumentOfSignature(const gtString& path);

// All bytes of the file. What they say is not looked at.
hoSignatureFileResult hoReadSignatureFile(const gtString& path, gtString& signature);

// Whether hoWriteSignatureFile would refuse the name because of what is there, or because the folder is not there or
// may not be written to; nothing is written. To be asked before a file is read whose signature could not be written.
hoSignatureFileResult hoCheckSignaturePath(const gtString& path, bool mayOverwrite);

// A signature that is on the disk and has no name yet.
class hoPreparedSignature
{
public:
    // Beside its place, as hoWriteSignatureFile would. On any thread. False: it cannot be done, which is told by
    // hoWriteSignatureFile.
    bool prepare(const gtString& path, const gtString& signature, bool mayOverwrite);
    // Once, after a prepare that went well.
    hoSignatureFileResult giveName();

private:
    osPreparedFile _file;
};

// Writes the bytes, whole or not at all, as osWriteFileAtomically does: a symbolic link to a file is followed, and two
// that write at the same time without mayOverwrite do not overwrite each other.
hoSignatureFileResult hoWriteSignatureFile(const gtString& path, const gtString& signature, bool mayOverwrite);

#endif
