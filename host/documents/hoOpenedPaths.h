// SPDX-License-Identifier: Apache-2.0
// Which documents are meant by paths that are opened or dropped: a signature file means the document beside it, and a
// folder what is in it. Plain functions; throw std::bad_alloc alone.
#ifndef COUNTERSIGN_HO_OPENED_PATHS_H
#define COUNTERSIGN_HO_OPENED_PATHS_H

#include "platform/baseTools/gtString.h"

#include <vector>

// The path without ".sig" when it ends in that and a file without it is there; else the path.
gtString hoDocumentMeant(const gtString& path);

// The paths, with the files below a folder (see hoFilesBelow) in its place. A folder without files stays. What cannot
// be read is passed over. Every document comes once.
std::vector<gtString> hoDocumentsMeant(const std::vector<gtString>& paths);

#endif
