// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osAtomicFile.h"

#include "platform/baseTools/gtStartsWith.h"
#include "platform/osWrappers/osWriteAll.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{

// Leftovers of programs that were ended may have many of the names.
constexpr int attemptsAtAName = 1000;
// As many as the system follows.
constexpr int mostLinks = 40;
constexpr unsigned int ownersAlone = 0600;
constexpr char startOfTemporaryName[] = ".countersign-";
constexpr char endOfTemporaryName[] = ".tmp";

std::string folderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

// Where the bytes really go: the end of a chain of links, whether or not there is a file at it.
std::string followLinks(const std::string& path)
{
    struct Freed
    {
        void operator()(char* pText) const { std::free(pText); }
    };
    const std::unique_ptr<char, Freed> pRealPath(::realpath(path.c_str(), nullptr));
    if (pRealPath != nullptr)
    {
        return pRealPath.get();
    }
    std::string end = path;
    for (int links = 0; links < mostLinks; ++links)
    {
        char target[PATH_MAX];
        const ssize_t length = ::readlink(end.c_str(), target, sizeof target);
        if (length <= 0)
        {
            break;
        }
        // A relative target begins at the link's folder.
        end.resize(target[0] == '/' ? 0 : end.rfind('/') + 1);
        end.append(target, static_cast<std::size_t>(length));
    }
    return end;
}

// Gives the new file what the one that it replaces has. Root alone gives owners; the set-id bits are for programs.
void copyOwnerAndRights(int descriptor, const struct stat& status)
{
    mode_t rights = status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
    if (::fchown(descriptor, static_cast<uid_t>(-1), status.st_gid) != 0)
    {
        rights &= ~static_cast<mode_t>(S_IRWXG) | ((rights & S_IRWXO) << 3);
    }
    // Still the user's own file, which can be written, if this fails.
    static_cast<void>(::fchmod(descriptor, rights));
    if (::fchown(descriptor, status.st_uid, static_cast<gid_t>(-1)) != 0)
    {
        // The user's own then.
    }
}

// A new, empty file with a name of its own in the folder; -1 when the system refuses.
int createBeside(const std::string& folder, unsigned int rights, std::string& path)
{
    const mode_t rightsAtFirst = rights == 0 ? 0666 : ownersAlone;
    for (int attempt = 0; attempt < attemptsAtAName; ++attempt)
    {
        // Its own number keeps processes apart, counting keeps the threads and the leftovers apart.
        path = folder + (folder == "." ? "/" : "");
        path.append(startOfTemporaryName).append(std::to_string(::getpid())).append("-");
        path.append(std::to_string(attempt)).append(endOfTemporaryName);
        const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, rightsAtFirst);
        if (descriptor >= 0 || (errno != EEXIST && errno != EINTR))
        {
            return descriptor;
        }
    }
    return -1;
}

// Renames, or EEXIST if there is something under the name already; another error where the system or the file system
// cannot do that.
int renameWithoutReplacing(const std::string& newPath, const std::string& path)
{
#if defined(__linux__)
    return ::renameat2(AT_FDCWD, newPath.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0 ? 0 : errno;
#elif defined(__APPLE__)
    return ::renamex_np(newPath.c_str(), path.c_str(), RENAME_EXCL) == 0 ? 0 : errno;
#else
    return ENOSYS;
#endif
}

// Takes the name with an empty file, which can be made only if there is none, and puts the new one in its place.
int renameOverOwnFile(const std::string& newPath, const std::string& path)
{
    int descriptor = -1;
    do
    {
        descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0)
    {
        return errno;
    }
    ::close(descriptor);
    if (::rename(newPath.c_str(), path.c_str()) != 0)
    {
        const int error = errno;
        ::unlink(path.c_str());
        return error;
    }
    return 0;
}

// Gives the new file its name, or EEXIST: nothing that is there is replaced, whoever comes first.
int nameWithoutOverwriting(const std::string& newPath, const std::string& path)
{
    if (::link(newPath.c_str(), path.c_str()) == 0)
    {
        ::unlink(newPath.c_str());
        return 0;
    }
    if (errno == EEXIST)
    {
        return EEXIST;
    }
    // Some file systems have no hard links.
    const int error = renameWithoutReplacing(newPath, path);
    return (error == EINVAL || error == ENOSYS || error == EOPNOTSUPP) ? renameOverOwnFile(newPath, path) : error;
}

// A name that is not on the disk yet is not lost with the power. Not every file system can do it; it is no failure.
void bringFolderToDisk(const std::string& folder)
{
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0)
    {
        static_cast<void>(::fsync(descriptor));
        ::close(descriptor);
    }
}

// Whether the file cannot be replaced although the folder can be written to. Root is taken to have all its rights.
bool isOthersInStickyFolder(const std::string& folder, const std::string& path)
{
    struct stat ofFolder = {};
    struct stat ofFile = {};
    const uid_t user = ::geteuid();
    return user != 0 && ::stat(folder.c_str(), &ofFolder) == 0 && (ofFolder.st_mode & S_ISVTX) != 0 &&
           ofFolder.st_uid != user && ::lstat(path.c_str(), &ofFile) == 0 && ofFile.st_uid != user;
}

osWritingResult exists()
{
    return osWritingResult(osWritingProblem::Exists, EEXIST);
}

osWritingResult refusal(int error)
{
    return osWritingResult(osWritingProblem::CannotBeWritten, error);
}

}  // namespace

osPreparedFile::~osPreparedFile()
{
    if (!_newPath.empty())
    {
        ::unlink(_newPath.c_str());
    }
}

osWritingResult osPreparedFile::prepare(const gtString& path, std::string_view bytes, bool mayOverwrite,
                                        unsigned int rights)
{
    if (path.asStringView().find('\0') != std::string_view::npos)
    {
        return refusal(EINVAL);
    }
    struct stat status = {};
    const bool isReplaced = ::stat(path.asCharArray(), &status) == 0;
    if (!isReplaced)
    {
        if (errno != ENOENT)
        {
            return refusal(errno);
        }
    }
    else
    {
        if (!S_ISREG(status.st_mode))
        {
            return S_ISDIR(status.st_mode) ? osWritingResult(osWritingProblem::IsFolder, EISDIR)
                                           : osWritingResult(osWritingProblem::NotRegular, EINVAL);
        }
        if (!mayOverwrite)
        {
            return exists();
        }
    }
    _mayOverwrite = mayOverwrite;
    _wanted = mayOverwrite ? followLinks(path.asStdString()) : path.asStdString();
    // Whatever takes memory comes before there is a file to clean up.
    _folder = folderOf(_wanted);
    std::string newPath;
    const int descriptor = createBeside(_folder, isReplaced ? ownersAlone : rights, newPath);
    if (descriptor < 0)
    {
        return refusal(errno);
    }
    _newPath = std::move(newPath);
    if (rights == 0 && isReplaced)
    {
        copyOwnerAndRights(descriptor, status);
    }
    int error = (rights != 0 && ::fchmod(descriptor, rights) != 0) ? errno : osWriteAll(descriptor, bytes);
    if (error == 0 && ::fsync(descriptor) != 0)
    {
        error = errno;
    }
    if (::close(descriptor) != 0 && error == 0 && errno != EINTR)
    {
        error = errno;
    }
    return error == 0 ? osWritingResult() : refusal(error);
}

osWritingResult osPreparedFile::giveName()
{
    int error = 0;
    bool isTaken = false;
    if (!_mayOverwrite)
    {
        error = nameWithoutOverwriting(_newPath, _wanted);
        isTaken = error == EEXIST;
    }
    else if (::rename(_newPath.c_str(), _wanted.c_str()) != 0)
    {
        error = errno;
    }
    if (error != 0)
    {
        return isTaken ? exists() : refusal(error);
    }
    _newPath.clear();
    bringFolderToDisk(_folder);
    return osWritingResult();
}

osWritingResult osWriteFileAtomically(const gtString& path, std::string_view bytes, bool mayOverwrite,
                                      unsigned int rights)
{
    osPreparedFile file;
    const osWritingResult result = file.prepare(path, bytes, mayOverwrite, rights);
    return result.isOk() ? file.giveName() : result;
}

int osCheckFolderOfFile(const gtString& path, bool mayOverwrite)
{
    if (path.asStringView().find('\0') != std::string_view::npos)
    {
        return EINVAL;
    }
    const std::string wanted = mayOverwrite ? followLinks(path.asStdString()) : path.asStdString();
    const std::string folder = folderOf(wanted);
    if (::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
    {
        return errno;
    }
    return mayOverwrite && isOthersInStickyFolder(folder, wanted) ? EPERM : 0;
}

bool osIsReadOnly(const gtString& path)
{
    struct stat status = {};
    if (path.asStringView().find('\0') != std::string_view::npos || ::stat(path.asCharArray(), &status) != 0)
    {
        return false;
    }
    // Root may write to every file, and is to be told nevertheless.
    return (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0 || ::access(path.asCharArray(), W_OK) != 0;
}

bool osIsTemporaryName(std::string_view name)
{
    return gtStartsWith(name, startOfTemporaryName) && gtEndsWith(name, endOfTemporaryName);
}
