// SPDX-License-Identifier: Apache-2.0
// The list of documents that another program drops on the window, as the desktops write it (text/uri-list): one URI a
// line, lines that begin with '#' are remarks. Plain function, safe from any thread.
#ifndef COUNTERSIGN_HO_URI_LIST_H
#define COUNTERSIGN_HO_URI_LIST_H

#include "platform/baseTools/gtString.h"

#include <string>
#include <vector>

struct hoUriList
{
    std::vector<gtString> _paths;    // the bytes of each local file's path, in the list's order
    std::vector<gtString> _refused;  // the entries that name no file of this machine, as they stand
};

// Takes apart the text of a list. Lines may end in CR LF, LF or CR; blanks around an entry and NULs at the end do not
// count. An entry is local when its scheme is "file" (in any case) and its host is empty, "localhost" or thisHost.
// Percent escapes become bytes; an escape that is not followed by two hexadecimal digits stands for itself. An escaped
// NUL makes the entry a refused one, since no path can hold it.
hoUriList hoReadUriList(const std::string& text, const std::string& thisHost);

#endif
