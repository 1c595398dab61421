#include "host/signing/hoSignatureFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "host/hoBytes.h"
#include "platform/osWrappers/osFile.h"

namespace
{

constexpr int attemptsAtAName = 100;

hoSignatureFileFacts problemFacts(hoSignatureFileProblem problem, int systemError)
{
    hoSignatureFileFacts facts;
    facts._problem = problem;
    facts._systemError = systemError;
    return facts;
}

hoSignatureFileFacts cannotBeWritten(int systemError)
{
    return problemFacts(hoSignatureFileProblem::CannotBeWritten, systemError);
}

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

gtString hoSignaturePath(const gtString& path)
{
    gtString result(path);
    result.append(".sig");
    return result;
}

hoSignatureFileFacts hoReadSignatureFile(const gtString& path, gtString& signature)
{
    try
    {
        osFile file;
        if (!file.open(osFilePath(path), osChannel::OS_BINARY_CHANNEL, osFile::OS_OPEN_TO_READ))
        {
            return problemFacts(hoSignatureFileProblem::CannotBeRead, file.errorNumber());
        }
        std::string text(hoLargestSignatureFile + 1, '\0');
        unsigned long amountRead = 0;
        static_cast<void>(file.readAvailableData(text.data(), text.size(), amountRead));
        if (file.hasReadError())
        {
            return problemFacts(hoSignatureFileProblem::CannotBeRead, file.errorNumber());
        }
        if (amountRead > static_cast<unsigned long>(hoLargestSignatureFile))
        {
            return problemFacts(hoSignatureFileProblem::TooLarge, 0);
        }
        text.resize(amountRead);
        text.resize(text.find_last_not_of(" \t\r\n") + 1);
        signature = hoToText(text);
        return hoSignatureFileFacts();
    }
    catch (const std::bad_alloc&)
    {
        return problemFacts(hoSignatureFileProblem::NoMemory, 0);
    }
}

hoSignatureFileFacts hoCheckSignaturePath(const gtString& path, bool mayOverwrite)
{
    if (std::strlen(path.asCharArray()) != static_cast<std::size_t>(path.length()))
    {
        return cannotBeWritten(EINVAL);
    }
    struct stat status = {};
    if (::stat(path.asCharArray(), &status) != 0)
    {
        return hoSignatureFileFacts();
    }
    if (!S_ISREG(status.st_mode))
    {
        return problemFacts(hoSignatureFileProblem::NotRegular, 0);
    }
    return problemFacts(mayOverwrite ? hoSignatureFileProblem::None : hoSignatureFileProblem::Exists, 0);
}

hoSignatureFileFacts hoWriteSignatureFile(const gtString& path, const gtString& signature, bool mayOverwrite)
{
    try
    {
        const hoSignatureFileFacts check = hoCheckSignaturePath(path, mayOverwrite);
        if (check._problem != hoSignatureFileProblem::None)
        {
            return check;
        }
        const std::string wanted = mayOverwrite ? followLinks(hoToBytes(path)) : hoToBytes(path);
        // Whatever takes memory comes before there is a file to clean up.
        const std::string folder = folderOf(wanted);
        const std::string bytes = hoToBytes(signature) + "\n";
        std::string newPath;
        const int descriptor = createBeside(folder, newPath);
        if (descriptor < 0)
        {
            return cannotBeWritten(errno);
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
            return (!mayOverwrite && (error == EEXIST)) ? problemFacts(hoSignatureFileProblem::Exists, 0)
                                                        : cannotBeWritten(error);
        }
        bringFolderToDisk(folder);
        return hoSignatureFileFacts();
    }
    catch (const std::bad_alloc&)
    {
        return problemFacts(hoSignatureFileProblem::NoMemory, 0);
    }
}
