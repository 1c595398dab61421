// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoFolderFiles.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/baseTools/gtStartsWith.h"
#include "platform/osWrappers/osAtomicFile.h"

namespace
{

struct FolderCloser
{
    void operator()(DIR* pFolder) const { ::closedir(pFolder); }
};
using Folder = std::unique_ptr<DIR, FolderCloser>;

struct Entry
{
    std::string _path;
    bool _isFolder;
};

class Walk
{
public:
    explicit Walk(hoFolderFiles& files) : _files(files) {}

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
        const std::string before = gtEndsWith(path, "/") ? path : path + "/";
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
                // What has been removed meanwhile is no file.
                if (errno != ENOENT)
                {
                    reject(before + pEntry->d_name, errno);
                }
            }
            else if (S_ISDIR(facts.st_mode) || (S_ISREG(facts.st_mode) && !osIsTemporaryName(name)))
            {
                entries.push_back({before + pEntry->d_name, S_ISDIR(facts.st_mode)});
            }
            errno = 0;
        }
        if (errno != 0)
        {
            reject(path, errno);
        }
        return entries;
    }

private:
    void reject(const std::string& path, int error) { _files._unreadable.push_back({gtString(path), error}); }

    hoFolderFiles& _files;
};

}  // namespace

hoFolderFiles hoFilesBelow(const gtString& folder, const std::function<bool()>& mustEnd)
{
    hoFolderFiles files;
    Walk walk(files);
    // What is still to be visited, the next one last.
    std::vector<Entry> open = {{folder.asStdString(), true}};
    bool isFirst = true;
    while (!open.empty() && !mustEnd())
    {
        const Entry entry = std::move(open.back());
        open.pop_back();
        if (!entry._isFolder)
        {
            files._paths.emplace_back(entry._path);
            continue;
        }
        std::vector<Entry> entries = walk.read(entry._path, isFirst);
        isFirst = false;
        std::sort(entries.begin(), entries.end(),
                  [](const Entry& one, const Entry& other) { return one._path > other._path; });
        open.insert(open.end(), std::make_move_iterator(entries.begin()), std::make_move_iterator(entries.end()));
    }
    return files;
}
