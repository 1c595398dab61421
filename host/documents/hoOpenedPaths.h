// SPDX-License-Identifier: Apache-2.0
// Which documents are meant by paths that are opened or dropped: a signature file means the document beside it, and a
// folder what is in it. Plain functions; throw std::bad_alloc alone.
#ifndef COUNTERSIGN_HO_OPENED_PATHS_H
#define COUNTERSIGN_HO_OPENED_PATHS_H

#include "platform/baseTools/gtString.h"

#include <vector>

// The path without ".sig" when it ends in that and a file without it is there; else the path.
gtString hoDocumentMeant(const gtString& path);

// The paths, with the files in a folder and in its folders in its place, in the order of their paths. A folder without
// files stays. Links to folders are not followed, and what cannot be read is passed over. Every document comes once.
std::vector<gtString> hoDocumentsMeant(const std::vector<gtString>& paths);

#endif
