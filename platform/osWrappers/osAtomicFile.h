// SPDX-License-Identifier: Apache-2.0
// Writes a file whole or not at all.
//
// Nothing here prints, throws anything but std::bad_alloc, or leaves anything behind when it fails. Calls may run on
// any threads, on one file, too: the last one to rename wins.
#ifndef OS_ATOMIC_FILE_H
#define OS_ATOMIC_FILE_H

#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osResult.h"

#include <string>
#include <string_view>

#pragma GCC visibility push(default)

enum class osWritingProblem
{
    None,
    Exists,          // something has that name, and overwriting was not allowed
    IsFolder,        // a folder has that name
    NotRegular,      // a pipe, a socket or a device has that name
    CannotBeWritten  // the system refused
};

// A problem has a system error in any case: EEXIST, EISDIR and EINVAL stand for those that are found without the
// system. CannotBeWritten has EINVAL for a path with a NUL, and EEXIST when no temporary name is free.
using osWritingResult = osResult<osWritingProblem>;

// Writes the bytes into a new file beside the wanted one, brings it to the disk and only then gives it its name: there
// is never half a file under that name, and what was there before stays until the new one is whole. Whatever fails, the
// new file is removed again. A symbolic link is followed when overwriting, also one to a file that does not exist yet.
// What is there and no regular file is not replaced in any case.
// Two that write at the same time without mayOverwrite do not overwrite each other, on any file system: the name is
// given by a hard link, or where there are none by a renaming that replaces nothing, or where there is neither, by
// taking the name with an empty file first. That last way is the only one on which others may see an empty file for a
// moment. rights: the file's, whatever the umask is; 0: those of the file that is replaced, with its owner and group
// where the system lets them be given, or as the umask gives them where there is none. A group that cannot be kept has
// no more rights than all others. Nobody else can open the file before it has its rights.
osWritingResult osWriteFileAtomically(const gtString& path, std::string_view bytes, bool mayOverwrite,
                                      unsigned int rights = 0);

// The same in two steps, for those who write many files on several threads and give them their names in order. The
// first one waits for the disk, and may run on any thread.
class osPreparedFile
{
public:
    osPreparedFile() = default;
    // A file that got no name is removed.
    ~osPreparedFile();
    osPreparedFile(const osPreparedFile&) = delete;
    osPreparedFile& operator=(const osPreparedFile&) = delete;

    // Once: all but the name. Nothing is left behind when it fails.
    osWritingResult prepare(const gtString& path, std::string_view bytes, bool mayOverwrite, unsigned int rights = 0);
    // Once, after a prepare that went well.
    osWritingResult giveName();

private:
    bool _mayOverwrite = false;
    std::string _wanted;
    std::string _folder;
    std::string _newPath;
};

// Whether osWriteFileAtomically can make a file in the folder that it would write to, as far as this can be told
// without making one: the folder is there, the user of this process may write to it, and no sticky bit keeps what is to
// be overwritten for its owner. The system's error number, or 0. What else has the name is not looked at.
int osCheckFolderOfFile(const gtString& path, bool mayOverwrite);

// Whether something has that name, links followed, that nobody may write to, or not the user of this process. Such a
// file can be replaced all the same by whoever may write to its folder.
bool osIsReadOnly(const gtString& path);

// Whether a file of this name, which is the last component of its path, is one that osWriteFileAtomically has not
// finished or has left behind when its process was killed.
bool osIsTemporaryName(std::string_view name);

#pragma GCC visibility pop

#endif
