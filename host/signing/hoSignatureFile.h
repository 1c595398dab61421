// SPDX-License-Identifier: Apache-2.0
// Signature files: one line with the signature's text, beside the signed file and with its name and ".sig".
//
// Nothing here prints, and nothing throws but hoSignaturePath (std::bad_alloc). Calls on different files may run on any
// threads.
#ifndef COUNTERSIGN_HO_SIGNATURE_FILE_H
#define COUNTERSIGN_HO_SIGNATURE_FILE_H

#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osResult.h"

enum class hoSignatureFileProblem
{
    None,
    CannotBeRead,     // the system refused; also when reading failed on the way
    TooLarge,         // more than hoLargestSignatureFile bytes: no signature
    Exists,           // a file of that name is there, and overwriting was not allowed
    NotRegular,       // what is there is a folder, a device or a pipe, which is not overwritten in any case
    CannotBeWritten,  // the system refused, or the disk is full
    NoMemory
};

constexpr long hoLargestSignatureFile = 1024 * 1024;

using hoSignatureFileResult = osResult<hoSignatureFileProblem>;

// The name of the file's signature file.
gtString hoSignaturePath(const gtString& path);

// The signature's text, without blanks and line ends behind it. What it says is not looked at.
hoSignatureFileResult hoReadSignatureFile(const gtString& path, gtString& signature);

// Whether hoWriteSignatureFile would refuse the name because of what is there; nothing is written. To be asked before a
// file is read whose signature could not be written.
hoSignatureFileResult hoCheckSignaturePath(const gtString& path, bool mayOverwrite);

// Writes a line with the signature, whole or not at all, as osWriteFileAtomically does: a symbolic link to a file is
// followed, and two that write at the same time without mayOverwrite do not overwrite each other.
hoSignatureFileResult hoWriteSignatureFile(const gtString& path, const gtString& signature, bool mayOverwrite);

#endif
