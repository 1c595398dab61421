// SPDX-License-Identifier: Apache-2.0
// The toolkit's flags would make one name of two functions here.
#undef _FILE_OFFSET_BITS
// Nor may the headers bring bodies of what is defined here.
#undef _FORTIFY_SOURCE
#include "tests/host/SystemFault.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{
std::atomic<bool> isArmed{false};
std::atomic<int> callsLeft{0};
std::atomic<bool> isDone{false};
std::string faultyFolder;
std::string faultyCall;
int faultyError = 0;
std::function<void()> doBefore;

// Which descriptors are of files in the folder.
std::array<std::atomic<bool>, 4096> isOfFolder{};

bool isInFolder(const char* pPath)
{
    return isArmed && std::strncmp(pPath, faultyFolder.c_str(), faultyFolder.size()) == 0;
}

bool isInFolder(int descriptor)
{
    return isArmed && descriptor >= 0 && static_cast<std::size_t>(descriptor) < isOfFolder.size() &&
           isOfFolder[static_cast<std::size_t>(descriptor)];
}

void remember(int descriptor, bool isOne)
{
    if (descriptor >= 0 && static_cast<std::size_t>(descriptor) < isOfFolder.size())
    {
        isOfFolder[static_cast<std::size_t>(descriptor)] = isOne;
    }
}

// Whether this call goes wrong; faultyError tells how.
bool isFaulty(const char* pCall)
{
    if (!isArmed || faultyCall != pCall || --callsLeft != 0)
    {
        return false;
    }
    isDone = true;
    if (doBefore)
    {
        const std::function<void()> before = std::exchange(doBefore, nullptr);
        before();
        return false;
    }
    return true;
}

bool hasFailed(const char* pCall)
{
    const bool isFailed = isFaulty(pCall);
    if (isFailed)
    {
        errno = faultyError;
    }
    return isFailed;
}

template <class Function>
Function next(const char* pName)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, pName));
}

int opened(const char* pPath, int descriptor)
{
    remember(descriptor, isInFolder(pPath));
    return descriptor;
}

using OpenFunction = int (*)(const char*, int, ...);
}  // namespace

SystemFault::SystemFault(const std::string& folder, const std::string& call, int number, int error)
{
    faultyFolder = folder + "/";
    faultyCall = call;
    faultyError = error;
    callsLeft = number;
    isDone = false;
    isArmed = true;
}

SystemFault::SystemFault(const std::string& folder, const std::string& call, int number, std::function<void()> before)
    : SystemFault(folder, call, number, 0)
{
    doBefore = std::move(before);
}

SystemFault::~SystemFault()
{
    isArmed = false;
    doBefore = nullptr;
}

bool SystemFault::hasHappened() const
{
    return isDone;
}

namespace
{
std::atomic<bool> hasWholeSeconds{false};

template <class Status>
int roundStamps(int result, Status* pStatus)
{
    if (result == 0 && hasWholeSeconds)
    {
        pStatus->st_mtim.tv_nsec = 0;
        pStatus->st_ctim.tv_nsec = 0;
    }
    return result;
}
}  // namespace

WholeSecondStamps::WholeSecondStamps()
{
    hasWholeSeconds = true;
}

WholeSecondStamps::~WholeSecondStamps()
{
    hasWholeSeconds = false;
}

extern "C"
{
    int open(const char* pPath, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
        va_end(arguments);
        return isInFolder(pPath) && hasFailed("open") ? -1
                                                      : opened(pPath, next<OpenFunction>("open")(pPath, flags, mode));
    }

    int open64(const char* pPath, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
        va_end(arguments);
        return isInFolder(pPath) && hasFailed("open") ? -1
                                                      : opened(pPath, next<OpenFunction>("open64")(pPath, flags, mode));
    }

    int mkstemp(char* pTemplate)
    {
        return isInFolder(pTemplate) && hasFailed("open")
                   ? -1
                   : opened(pTemplate, next<int (*)(char*)>("mkstemp")(pTemplate));
    }

    int mkstemp64(char* pTemplate)
    {
        return mkstemp(pTemplate);
    }

    FILE* fopen64(const char* pPath, const char* pMode)
    {
        if (isInFolder(pPath) && hasFailed("open"))
        {
            return nullptr;
        }
        FILE* const pFile = next<FILE* (*)(const char*, const char*)>("fopen64")(pPath, pMode);
        if (pFile != nullptr)
        {
            remember(fileno(pFile), isInFolder(pPath));
        }
        return pFile;
    }

    FILE* fopen(const char* pPath, const char* pMode)
    {
        return fopen64(pPath, pMode);
    }

    ssize_t read(int descriptor, void* pBuffer, std::size_t size)
    {
        const auto realRead = next<ssize_t (*)(int, void*, std::size_t)>("read");
        if (isInFolder(descriptor) && isFaulty("read"))
        {
            if (faultyError == 0)
            {
                return realRead(descriptor, pBuffer, size > 1 ? 1 : size);
            }
            errno = faultyError;
            return -1;
        }
        return realRead(descriptor, pBuffer, size);
    }

    ssize_t __read_chk(int descriptor, void* pBuffer, std::size_t size, std::size_t /*room*/)
    {
        return read(descriptor, pBuffer, size);
    }

    ssize_t write(int descriptor, const void* pBytes, std::size_t size)
    {
        const auto realWrite = next<ssize_t (*)(int, const void*, std::size_t)>("write");
        if (isInFolder(descriptor) && isFaulty("write"))
        {
            if (faultyError == 0)
            {
                return realWrite(descriptor, pBytes, size > 1 ? 1 : size);
            }
            errno = faultyError;
            return -1;
        }
        return realWrite(descriptor, pBytes, size);
    }

    int fsync(int descriptor)
    {
        return isInFolder(descriptor) && hasFailed("fsync") ? -1 : next<int (*)(int)>("fsync")(descriptor);
    }

    int close(int descriptor)
    {
        const bool isToFail = isInFolder(descriptor) && isFaulty("close");
        remember(descriptor, false);
        const int result = next<int (*)(int)>("close")(descriptor);
        if (isToFail)
        {
            errno = faultyError;
            return -1;
        }
        return result;
    }

    int link(const char* pOldPath, const char* pNewPath) noexcept
    {
        return isInFolder(pNewPath) && hasFailed("link")
                   ? -1
                   : next<int (*)(const char*, const char*)>("link")(pOldPath, pNewPath);
    }

    int rename(const char* pOldPath, const char* pNewPath) noexcept
    {
        return isInFolder(pNewPath) && hasFailed("rename")
                   ? -1
                   : next<int (*)(const char*, const char*)>("rename")(pOldPath, pNewPath);
    }

    int fstat(int descriptor, struct stat* pStatus) noexcept
    {
        return isInFolder(descriptor) && hasFailed("fstat")
                   ? -1
                   : roundStamps(next<int (*)(int, struct stat*)>("fstat")(descriptor, pStatus), pStatus);
    }

    int fstat64(int descriptor, struct stat64* pStatus) noexcept
    {
        return isInFolder(descriptor) && hasFailed("fstat")
                   ? -1
                   : roundStamps(next<int (*)(int, struct stat64*)>("fstat64")(descriptor, pStatus), pStatus);
    }

    int stat(const char* pPath, struct stat* pStatus) noexcept
    {
        return isInFolder(pPath) && hasFailed("stat")
                   ? -1
                   : roundStamps(next<int (*)(const char*, struct stat*)>("stat")(pPath, pStatus), pStatus);
    }

    int stat64(const char* pPath, struct stat64* pStatus) noexcept
    {
        return isInFolder(pPath) && hasFailed("stat")
                   ? -1
                   : roundStamps(next<int (*)(const char*, struct stat64*)>("stat64")(pPath, pStatus), pStatus);
    }

    char* realpath(const char* pPath, char* pResolved) noexcept
    {
        return isInFolder(pPath) && hasFailed("realpath")
                   ? nullptr
                   : next<char* (*)(const char*, char*)>("realpath")(pPath, pResolved);
    }

    int pthread_create(pthread_t* pThread, const pthread_attr_t* pAttributes, void* (*pRun)(void*),
                       void* pArgument) noexcept
    {
        using Function = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
        return isFaulty("thread") ? faultyError
                                  : next<Function>("pthread_create")(pThread, pAttributes, pRun, pArgument);
    }
}
