// SPDX-License-Identifier: Apache-2.0
// The documents that were opened last, newest first, each once. Paths are bytes, compared as they stand. Owned and used
// by one thread.
#ifndef COUNTERSIGN_HO_RECENT_DOCUMENTS_H
#define COUNTERSIGN_HO_RECENT_DOCUMENTS_H

#include "platform/baseTools/gtString.h"

#include <cstddef>
#include <vector>

class hoRecentDocuments
{
public:
    static constexpr std::size_t mostDocuments = 10;

    // The path comes first; the oldest one beyond mostDocuments falls out. An empty path is passed over.
    // (By value: a path that is in the list may be given.)
    void add(gtString path);
    // Whether it was there.
    bool remove(const gtString& path);
    void clear() { _paths.clear(); }

    const std::vector<gtString>& paths() const { return _paths; }

private:
    std::vector<gtString> _paths;
};

#endif
