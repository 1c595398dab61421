// SPDX-License-Identifier: Apache-2.0
// What is to be done with files that were dropped.
#ifndef COUNTERSIGN_HO_DROPPED_FILES_H
#define COUNTERSIGN_HO_DROPPED_FILES_H

#include "host/desktop/hoUriList.h"

#include <cstddef>
#include <vector>

class wxWindow;

// As many documents open without a question.
constexpr std::size_t hoMostDroppedUnasked = 200;

struct hoDroppedFiles
{
    std::vector<gtString> _documents;  // to be opened; with what names no file of this machine, to be refused
    std::vector<gtString> _keys;       // to be loaded
};

// Tells keys by their content, and puts the documents that are meant in the place of signatures and folders (see
// hoDocumentsMeant). Asks above the parent whether to open more than hoMostDroppedUnasked documents that come from
// folders; none of the documents is opened otherwise.
hoDroppedFiles hoTakeDroppedFiles(wxWindow& parent, const hoUriList& list);

#endif
