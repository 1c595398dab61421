// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoRecentDocuments.h"

#include <algorithm>
#include <utility>

void hoRecentDocuments::add(gtString path)
{
    if (path.isEmpty())
    {
        return;
    }
    remove(path);
    _paths.insert(_paths.begin(), std::move(path));
    if (_paths.size() > mostDocuments)
    {
        _paths.resize(mostDocuments);
    }
}

bool hoRecentDocuments::remove(const gtString& path)
{
    // A path is in the list once at the most; after it has been found it is not looked at again, so it may be the
    // list's.
    const auto found = std::find(_paths.begin(), _paths.end(), path);
    if (found == _paths.end())
    {
        return false;
    }
    _paths.erase(found);
    return true;
}
