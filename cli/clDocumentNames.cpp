// SPDX-License-Identifier: Apache-2.0
#include "cli/clDocumentNames.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <iterator>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "cli/clInterrupt.h"
#include "cli/clPrintableName.h"
#include "cli/clStandardStreams.h"
#include "cli/clStreams.h"
#include "host/documents/hoFolderFiles.h"
#include "host/messages/hoMessages.h"
#include "host/signing/hoSignatureFile.h"

namespace
{

void complainOfReading(const gtString& name, int error)
{
    clComplain(gtString(name).append(": cannot be read: ").append(hoSystemErrorText(error)));
}

class Gatherer
{
public:
    Gatherer(const clArguments& arguments, std::vector<gtString>& files, bool& isComplete)
        : _arguments(arguments), _files(files), _isComplete(isComplete)
    {
    }

    void addNames(std::string_view names)
    {
        while (!names.empty())
        {
            const std::size_t end = std::min(names.find('\0'), names.size());
            const gtString name = names.substr(0, end);
            // In a list all names are those of files.
            add(clIsStandardInput(name) ? gtString("./-") : name);
            names.remove_prefix(std::min(end + 1, names.size()));
        }
    }

    void add(const gtString& name)
    {
        struct stat facts = {};
        const bool isFolder = _arguments._isRecursive && !clIsStandardInput(name) &&
                              ::stat(name.asCharArray(), &facts) == 0 && S_ISDIR(facts.st_mode);
        if (isFolder)
        {
            addFolder(name);
        }
        else
        {
            _files.push_back(name);
        }
    }

private:
    void addFolder(const gtString& path)
    {
        const hoFolderFiles found = hoFilesBelow(path, clIsInterrupted);
        for (const hoUnreadablePath& unreadable : found._unreadable)
        {
            _isComplete = false;
            complainOfReading(clPrintableName(unreadable._path), unreadable._error);
        }
        std::copy_if(found._paths.begin(), found._paths.end(), std::back_inserter(_files),
                     [this](const gtString& file)
                     { return _arguments._areSignaturesWanted || hoDocumentOfSignature(file).isEmpty(); });
    }

    const clArguments& _arguments;
    std::vector<gtString>& _files;
    bool& _isComplete;
};

// All of the file of names: 0, or the system's error number.
int readNames(const gtString& path, std::string& names)
{
    const bool isInput = path == "-";
    const int file = isInput ? STDIN_FILENO : ::open(path.asCharArray(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (file < 0)
    {
        return errno;
    }
    int error = 0;
    char buffer[65536];
    for (;;)
    {
        const ssize_t amount = clWaitForInput(file) ? ::read(file, buffer, sizeof(buffer)) : 0;
        if (amount < 0 && errno == EINTR)
        {
            continue;
        }
        error = amount < 0 ? errno : 0;
        if (amount <= 0)
        {
            break;
        }
        names.append(buffer, static_cast<std::size_t>(amount));
    }
    if (!isInput)
    {
        ::close(file);
    }
    return error;
}

}  // namespace

clArguments clGatherDocuments(const clArguments& arguments, bool& isComplete)
{
    clArguments result = arguments;
    result._files.clear();
    isComplete = true;
    Gatherer gatherer(arguments, result._files, isComplete);
    for (const gtString& file : arguments._files)
    {
        gatherer.add(file);
    }
    if (!arguments._namesPath.isEmpty())
    {
        std::string names;
        const int error = readNames(arguments._namesPath, names);
        if (error != 0)
        {
            isComplete = false;
            complainOfReading(arguments._namesPath == "-" ? gtString("standard input")
                                                          : clPrintableName(arguments._namesPath),
                              error);
        }
        else
        {
            gatherer.addNames(names);
        }
    }
    if (result._files.empty() && isComplete && !clIsInterrupted())
    {
        isComplete = false;
        clComplain("there is no document in what is named");
    }
    return result;
}
