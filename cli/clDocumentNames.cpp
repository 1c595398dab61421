// SPDX-License-Identifier: Apache-2.0
#include "cli/clDocumentNames.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "cli/clInterrupt.h"
#include "cli/clPrintableName.h"
#include "cli/clStandardStreams.h"
#include "host/messages/hoMessages.h"
#include "host/signing/hoSignatureFile.h"

namespace
{

struct FolderCloser
{
    void operator()(DIR* pFolder) const { ::closedir(pFolder); }
};
using Folder = std::unique_ptr<DIR, FolderCloser>;

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// By the names that a file has while it is being written.
bool isTemporary(std::string_view name)
{
    const std::string_view begin = ".countersign-";
    return name.substr(0, begin.size()) == begin && endsWith(name, ".tmp");
}

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

    // The folder itself may be named by a link.
    void addFolder(const gtString& path)
    {
        // Paths with what is to be done with them, the next one last.
        std::vector<Entry> open = {{path.asStdString(), true}};
        while (!open.empty() && !clIsInterrupted())
        {
            const Entry entry = std::move(open.back());
            open.pop_back();
            if (!entry._isFolder)
            {
                _files.emplace_back(std::string_view(entry._path));
                continue;
            }
            std::vector<Entry> entries = read(entry._path, entry._path == path.asStdString());
            std::sort(entries.begin(), entries.end(),
                      [](const Entry& one, const Entry& other) { return one._path > other._path; });
            open.insert(open.end(), std::make_move_iterator(entries.begin()), std::make_move_iterator(entries.end()));
        }
    }

    void addNames(std::string_view names)
    {
        while (!names.empty())
        {
            const std::size_t end = std::min(names.find('\0'), names.size());
            add(gtString(names.substr(0, end)));
            names.remove_prefix(std::min(end + 1, names.size()));
        }
    }

    void add(const gtString& name)
    {
        struct stat facts = {};
        const bool isFolder =
            _arguments._isRecursive && ::stat(name.asCharArray(), &facts) == 0 && S_ISDIR(facts.st_mode);
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
    struct Entry
    {
        std::string _path;
        bool _isFolder;
    };

    std::vector<Entry> read(const std::string& path, bool mayBeLink)
    {
        std::vector<Entry> entries;
        const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | (mayBeLink ? 0 : O_NOFOLLOW));
        const Folder folder(descriptor < 0 ? nullptr : ::fdopendir(descriptor));
        if (folder == nullptr)
        {
            reject(path, errno);
            if (descriptor >= 0)
            {
                ::close(descriptor);
            }
            return entries;
        }
        const std::string before = endsWith(path, "/") ? path : path + "/";
        errno = 0;
        while (const struct dirent* const pEntry = ::readdir(folder.get()))
        {
            const std::string_view name = pEntry->d_name;
            struct stat facts = {};
            if (name == "." || name == "..")
            {
                continue;
            }
            if (::fstatat(::dirfd(folder.get()), pEntry->d_name, &facts, AT_SYMLINK_NOFOLLOW) != 0)
            {
                // What has been removed in between is no document.
                if (errno != ENOENT)
                {
                    reject(before + pEntry->d_name, errno);
                }
                errno = 0;
                continue;
            }
            if (S_ISDIR(facts.st_mode) || (S_ISREG(facts.st_mode) && isDocument(name)))
            {
                entries.push_back({before + pEntry->d_name, S_ISDIR(facts.st_mode)});
            }
        }
        if (errno != 0)
        {
            reject(path, errno);
        }
        return entries;
    }

    bool isDocument(std::string_view name) const
    {
        const gtString ending = hoSignaturePath("");
        return !isTemporary(name) && (_arguments._areSignaturesWanted || !endsWith(name, ending.asStringView()));
    }

    void reject(const std::string& path, int error)
    {
        _isComplete = false;
        complainOfReading(clPrintableName(gtString(std::string_view(path))), error);
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
