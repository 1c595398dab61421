// SPDX-License-Identifier: Apache-2.0
// Where the bytes of a document come from: a file that is opened by its name, or a descriptor that is open already. A
// plain value.
#ifndef COUNTERSIGN_HO_DOCUMENT_SOURCE_H
#define COUNTERSIGN_HO_DOCUMENT_SOURCE_H

#include "platform/baseTools/gtString.h"

#include <functional>
#include <utility>

struct hoDocumentSource
{
    // Regular files only, so that nobody waits for a pipe.
    explicit hoDocumentSource(gtString path) : _path(std::move(path)) {}

    // The descriptor is read from where it stands to its end, and neither closed nor taken back: it is good for one
    // reading. A regular file is watched for changes as one with a name is. What comes through a pipe cannot change
    // after it was read, and its end is where its writer ends: nothing tells whether that was all.
    // waitForInput: waits until the descriptor has bytes or its end; false gives the reading up.
    hoDocumentSource(int descriptor, std::function<bool(int)> waitForInput)
        : _descriptor(descriptor), _waitForInput(std::move(waitForInput))
    {
    }

    bool hasPath() const { return _descriptor < 0; }

    gtString _path;
    int _descriptor = -1;
    std::function<bool(int)> _waitForInput;
};

#endif
