#include "host/hoRecentDocuments.h"

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

bool hoRecentDocuments::remove(gtString path)
{
    const std::size_t before = _paths.size();
    _paths.erase(std::remove(_paths.begin(), _paths.end(), path), _paths.end());
    return _paths.size() < before;
}
