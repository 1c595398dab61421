// SPDX-License-Identifier: Apache-2.0
// What the file system says about one document, without its contents.
//
// Paths are bytes as the file system has them, in no particular encoding. Nothing here keeps a file open, changes one,
// or waits: a named pipe, a device or a folder is refused by its kind before anything is opened. Plain functions over
// the caller's own values; safe from any thread.
#ifndef OS_FILE_FACTS_H
#define OS_FILE_FACTS_H

#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osResult.h"

#include <cstdint>

#pragma GCC visibility push(default)

enum class osFileProblem
{
    None,
    NoName,        // the path is empty
    NotThere,      // nothing has that name, or the path holds a NUL, which no file's name can
    NotLocal,      // there is no such path, and it reads as an address ("scheme://...")
    NotPermitted,  // the file, or a folder on the way to it, may not be read
    IsFolder,      // a folder
    NotRegular,    // a named pipe, a socket, a device
    NameTooLong,   // longer than the file system allows
    TooManyLinks,  // symbolic links that lead in a circle
    CannotBeRead   // anything else that the system refuses
};

using osFileResult = osResult<osFileProblem>;

// Two readings of the same file that compare equal mean that its bytes are still the ones of the first reading, as far
// as a file system can tell without reading them.
struct osFileFacts
{
    std::uint64_t _size = 0;                // in bytes
    std::int64_t _modifiedSeconds = 0;      // since 1970, UTC
    std::int64_t _modifiedNanoseconds = 0;  // within that second
    std::int64_t _changedSeconds = 0;       // of the last change to the file's bytes or to its entry
    std::int64_t _changedNanoseconds = 0;
    std::uint64_t _device = 0;
    std::uint64_t _fileNumber = 0;  // together with the device: which file it is, whatever its name

    bool operator==(const osFileFacts& other) const;
    bool operator!=(const osFileFacts& other) const { return !(*this == other); }
};

// Reads the facts of the regular file at path, following symbolic links, and makes sure that it may be read.
// facts is written only when there is no problem.
osFileResult osReadFileFacts(const gtString& path, osFileFacts& facts);

// The same of an open file, without looking at its kind. False, and errno tells why, when the system refuses.
bool osReadFactsOfDescriptor(int descriptor, osFileFacts& facts) noexcept;

// How many nanoseconds to wait until any change to the file's bytes would give it another time of change than the one
// in the facts; 0 or less: it would now. Time stamps move in steps: by the system's clock of some milliseconds, on some
// file systems (where the fraction is zero) by one or two seconds. A time of change that is in the future cannot be
// waited for, and counts as moving; where the stamps come from another machine's clock, nothing can be told.
std::int64_t osTimeUntilStampsMove(const osFileFacts& facts) noexcept;

// path made absolute: the folder with its symbolic links and dots resolved, then the last component as given. Two
// spellings of the same entry of the same folder thus become equal, while a symbolic link stays the document that was
// named (what is written beside it belongs beside the link). The path as given when the folder cannot be resolved, when
// there is no last component ("/", "a/", ".."), when it holds a NUL and when it is empty. Throws std::bad_alloc.
gtString osAbsolutePath(const gtString& path);

#pragma GCC visibility pop

#endif
