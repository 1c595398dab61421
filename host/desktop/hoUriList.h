// SPDX-License-Identifier: Apache-2.0
// URIs of files, as other programs hand them over on the session bus and by drag and drop. Plain functions, safe from
// any thread. Without memory std::bad_alloc comes out, or GLib ends the process.
#ifndef COUNTERSIGN_HO_URI_LIST_H
#define COUNTERSIGN_HO_URI_LIST_H

#include "platform/baseTools/gtString.h"

#include <vector>

// The name of this machine on the network; empty if the system does not tell.
gtString hoThisHost();

// The bytes of the path that a URI names; empty if it names no file of this machine. A file is local when the scheme is
// "file" (in any case) and the host is empty, "localhost" or thisHost. A URI that GLib does not take (a bad escape, an
// escaped NUL or '/') names no file.
gtString hoPathOfUri(const gtString& uri, const gtString& thisHost);

struct hoUriList
{
    std::vector<gtString> _paths;    // the bytes of each local file's path, in the list's order
    std::vector<gtString> _refused;  // the entries that name no file of this machine, as they stand
};

// Takes apart the text of a list (text/uri-list): one URI a line, lines that begin with '#' are remarks. Lines end in
// CR LF or LF; blanks around an entry do not count. The list ends at the first NUL, which some programs put behind it.
hoUriList hoReadUriList(const gtString& text, const gtString& thisHost);

#endif
