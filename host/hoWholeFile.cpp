#include "host/hoWholeFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr int attemptsAtAName = 100;

std::string folderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return (slash == std::string::npos) ? "." : path.substr(0, slash + 1);
}

// Where the bytes really go: the end of a chain of links, if there is a file at it.
std::string followLinks(const std::string& path)
{
    struct Freed
    {
        void operator()(char* pText) const { std::free(pText); }
    };
    const std::unique_ptr<char, Freed> pRealPath(::realpath(path.c_str(), nullptr));
    return (pRealPath == nullptr) ? path : pRealPath.get();
}

// A new, empty file with a name of its own in the folder; -1 when there is none to be had.
int createBeside(const std::string& folder, std::string& path)
{
    for (int attempt = 0; attempt < attemptsAtAName; attempt++)
    {
        // Its own number keeps processes apart, counting keeps the threads and the leftovers apart.
        path = folder + ((folder == ".") ? "/" : "") + ".countersign-" + std::to_string(::getpid()) + "-" +
               std::to_string(attempt) + ".tmp";
        const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if ((descriptor >= 0) || ((errno != EEXIST) && (errno != EINTR)))
        {
            return descriptor;
        }
    }
    return -1;
}

// 0, or the system's error number.
int writeWhole(int descriptor, const std::string& bytes)
{
    std::size_t done = 0;
    while (done < bytes.size())
    {
        const ssize_t amount = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (amount >= 0)
        {
            done += static_cast<std::size_t>(amount);
        }
        else if (errno != EINTR)
        {
            return errno;
        }
    }
    return (::fsync(descriptor) == 0) ? 0 : errno;
}

// Takes the new file's name over, or EEXIST. A hard link does not replace what is there, whoever comes first.
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
    struct stat status = {};
    if (::lstat(path.c_str(), &status) == 0)
    {
        return EEXIST;
    }
    return (::rename(newPath.c_str(), path.c_str()) == 0) ? 0 : errno;
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

}  // namespace

int hoWriteWholeFile(const std::string& path, const std::string& bytes, bool mayOverwrite)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) == 0)
    {
        if (!S_ISREG(status.st_mode))
        {
            return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        }
        if (!mayOverwrite)
        {
            return EEXIST;
        }
    }
    const std::string wanted = mayOverwrite ? followLinks(path) : path;
    // Whatever takes memory comes before there is a file to clean up.
    const std::string folder = folderOf(wanted);
    std::string newPath;
    const int descriptor = createBeside(folder, newPath);
    if (descriptor < 0)
    {
        return errno;
    }
    int error = writeWhole(descriptor, bytes);
    if ((::close(descriptor) != 0) && (error == 0) && (errno != EINTR))
    {
        error = errno;
    }
    if (error == 0)
    {
        if (!mayOverwrite)
        {
            error = nameWithoutOverwriting(newPath, wanted);
        }
        else if (::rename(newPath.c_str(), wanted.c_str()) != 0)
        {
            error = errno;
        }
    }
    if (error != 0)
    {
        ::unlink(newPath.c_str());
        return error;
    }
    bringFolderToDisk(folder);
    return 0;
}
