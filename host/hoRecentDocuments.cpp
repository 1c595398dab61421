#include "host/hoRecentDocuments.h"

#include <algorithm>

void hoRecentDocuments::add(const gtString& path)
{
    if (path.isEmpty())
    {
        return;
    }
    const gtString kept(path);
    remove(kept);
    _paths.insert(_paths.begin(), kept);
    if (_paths.size() > mostDocuments)
    {
        _paths.resize(mostDocuments);
    }
}

bool hoRecentDocuments::remove(const gtString& path)
{
    const gtString removed(path);
    const std::size_t before = _paths.size();
    _paths.erase(std::remove(_paths.begin(), _paths.end(), removed), _paths.end());
    return _paths.size() < before;
}
