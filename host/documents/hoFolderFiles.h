// SPDX-License-Identifier: Apache-2.0
// The files below a folder, as the window and the command line take them. Throws std::bad_alloc alone.
#ifndef COUNTERSIGN_HO_FOLDER_FILES_H
#define COUNTERSIGN_HO_FOLDER_FILES_H

#include "platform/baseTools/gtString.h"

#include <functional>
#include <vector>

// Something below a folder that cannot be read.
struct hoUnreadablePath
{
    gtString _path;
    int _error;  // the system's error number
};

struct hoFolderFiles
{
    std::vector<gtString> _paths;
    std::vector<hoUnreadablePath> _unreadable;
};

// Every regular file below the folder, as a path that begins with the folder's: sorted by the bytes of the names, the
// files of an inner folder in its place. Left out are what osWriteFileAtomically has not finished, and links, so that
// nothing outside of the folder is reached; the folder itself may be named by a link. A file that is removed meanwhile
// may be among them or not. mustEnd is asked before each path; after true nothing more is read.
hoFolderFiles hoFilesBelow(const gtString& folder, const std::function<bool()>& mustEnd);

#endif
