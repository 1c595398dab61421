// SPDX-License-Identifier: Apache-2.0
#include "cli/clStreams.h"

#include <cerrno>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "cli/clInterrupt.h"
#include "cli/clPrintableName.h"
#include "cli/clStandardStreams.h"

namespace
{

// Without waiting for its writer: what is there to read, and the end, are waited for afterwards.
int openPipe(const gtString& path)
{
    int descriptor = -1;
    do
    {
        descriptor = ::open(path.asCharArray(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

bool readStatus(const gtString& name, struct stat& status)
{
    return clIsStandardInput(name) ? ::fstat(STDIN_FILENO, &status) == 0 : ::stat(name.asCharArray(), &status) == 0;
}

}  // namespace

bool clIsStandardInput(const gtString& name)
{
    return name == "-";
}

bool clIsStream(const gtString& name)
{
    struct stat status = {};
    return clIsStandardInput(name) || (readStatus(name, status) && S_ISFIFO(status.st_mode));
}

gtString clStreamName(const gtString& name)
{
    return clIsStandardInput(name) ? gtString("standard input") : clPrintableName(name);
}

int clReadStream(const gtString& name, gtString& bytes, int limit)
{
    if (clIsStandardInput(name))
    {
        return clReadInput(bytes, limit);
    }
    const int descriptor = openPipe(name);
    if (descriptor < 0)
    {
        return errno;
    }
    const int error = clReadDescriptor(descriptor, bytes, limit);
    ::close(descriptor);
    return error;
}

gtString clFindStreamReadTwice(const clArguments& arguments)
{
    std::vector<gtString> names = arguments._keyPaths;
    if (arguments._hasSignature)
    {
        names.push_back(arguments._signaturePath);
    }
    names.insert(names.end(), arguments._files.begin(), arguments._files.end());
    std::map<std::pair<dev_t, ino_t>, gtString> found;
    for (const gtString& name : names)
    {
        struct stat status = {};
        if (!readStatus(name, status) || !S_ISFIFO(status.st_mode))
        {
            continue;
        }
        const auto [entry, isNew] = found.emplace(std::make_pair(status.st_dev, status.st_ino), name);
        if (!isNew)
        {
            return clStreamName(name)
                .append(": it is the same pipe as ")
                .append(clStreamName(entry->second))
                .append(", and a pipe can be read only once");
        }
    }
    return gtString();
}

clOpenDocument::clOpenDocument(const gtString& name)
{
    const bool isInput = clIsStandardInput(name);
    if (!isInput && clIsStream(name))
    {
        _opened = openPipe(name);
    }
    // What cannot be opened says why when it is opened by its name.
    _pSource = isInput || _opened >= 0
                   ? std::make_unique<const hoDocumentSource>(isInput ? STDIN_FILENO : _opened, clWaitForInput)
                   : std::make_unique<const hoDocumentSource>(name);
}

clOpenDocument::~clOpenDocument()
{
    if (_opened >= 0)
    {
        ::close(_opened);
    }
}
