// SPDX-License-Identifier: Apache-2.0
#include "cli/clInputs.h"

#include <sys/stat.h>
#include <unistd.h>

#include "cli/clStreams.h"

clInputs::clInputs(const std::vector<gtString>& documents, const std::vector<gtString>& keyPaths)
{
    Identity identity;
    for (const gtString& keyPath : keyPaths)
    {
        if (identifyInput(keyPath, identity))
        {
            _names.emplace(identity, gtString("the key ").append(clStreamName(keyPath)));
        }
    }
    for (const gtString& document : documents)
    {
        if (identifyInput(document, identity))
        {
            _names.emplace(identity, gtString("the document ").append(clStreamName(document)));
        }
    }
}

gtString clInputs::inputAt(const gtString& path) const
{
    Identity identity;
    const auto found = identify(path, identity) ? _names.find(identity) : _names.end();
    return found == _names.end() ? gtString() : found->second;
}

bool clInputs::identify(const gtString& path, Identity& identity)
{
    struct stat status = {};
    if (path.asStringView().find('\0') != std::string_view::npos || ::stat(path.asCharArray(), &status) != 0)
    {
        return false;
    }
    identity = Identity(static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino));
    return true;
}

bool clInputs::identifyInput(const gtString& name, Identity& identity)
{
    if (!clIsStandardInput(name))
    {
        return identify(name, identity);
    }
    struct stat status = {};
    if (::fstat(STDIN_FILENO, &status) != 0)
    {
        return false;
    }
    identity = Identity(static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino));
    return true;
}
