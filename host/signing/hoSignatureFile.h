// SPDX-License-Identifier: Apache-2.0
// Signature files: one line with the signature's text, beside the signed file and with its name and ".sig".
//
// Nothing here throws or prints. Calls on different files may run on any threads.
#ifndef COUNTERSIGN_HO_SIGNATURE_FILE_H
#define COUNTERSIGN_HO_SIGNATURE_FILE_H

#include "platform/baseTools/gtString.h"

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

struct hoSignatureFileFacts
{
    hoSignatureFileProblem _problem = hoSignatureFileProblem::None;
    int _systemError = 0;  // of CannotBeRead and CannotBeWritten
};

// The name of the file's signature file.
gtString hoSignaturePath(const gtString& path);

// The signature's text, without blanks and line ends behind it. What it says is not looked at.
hoSignatureFileFacts hoReadSignatureFile(const gtString& path, gtString& signature);

// Whether hoWriteSignatureFile would refuse the name because of what is there; nothing is written. Saves reading a file
// whose signature could not be put down.
hoSignatureFileFacts hoCheckSignaturePath(const gtString& path, bool mayOverwrite);

// Writes a line with the signature into a new file beside the wanted one, brings it to the disk and only then gives it
// its name: there is never half a signature under that name, and what was there before stays until the new one is whole.
// Whatever fails, the new file is removed again. A symbolic link to a file is followed.
// Two that write at the same time without mayOverwrite do not overwrite each other where the file system has hard links.
hoSignatureFileFacts hoWriteSignatureFile(const gtString& path, const gtString& signature, bool mayOverwrite);

#endif
