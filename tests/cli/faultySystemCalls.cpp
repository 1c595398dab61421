// SPDX-License-Identifier: Apache-2.0
// Stands between the program and the system, in a program for tests only. The environment says what goes wrong:
//
//   COUNTERSIGN_FAULT=<call>:<number>:<error>   the call of that name and number (from 1) fails with this error number;
//                                               error 0 makes read and write do one byte only, and new fails anyway
//   COUNTERSIGN_FAULT_MARK=<path>               is created when it has gone wrong
//   COUNTERSIGN_WITHOUT=<call>,...              these always fail, as on a file system that does not have them: link and
//                                               renameat2
//
// Calls: open, read, write, fsync, close, link, rename, renameat2, fstat, stat, realpath,
// tcsetattr; new for the allocations from the first
// opened file on, parse for those from the start of main on (to be exact from its first pipe: nobody catches what static
// objects throw).

// The headers may not bring bodies of what is defined here.
#undef _FORTIFY_SOURCE

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <termios.h>
#include <unistd.h>

#include "tests/support/failingAllocation.h"

namespace
{

// Whether this is the call that goes wrong.
bool isFaulty(const char* pCall, int& error)
{
    static thread_local bool isBusy = false;
    static int calls = 0;
    const char* pFault = isBusy ? nullptr : std::getenv("COUNTERSIGN_FAULT");
    const std::size_t length = std::strlen(pCall);
    if ((pFault == nullptr) || (std::strncmp(pFault, pCall, length) != 0) || (pFault[length] != ':'))
    {
        return false;
    }
    char* pEnd = nullptr;
    const long number = std::strtol(pFault + length + 1, &pEnd, 10);
    error = static_cast<int>(std::strtol(pEnd + 1, nullptr, 10));
    if (++calls != number)
    {
        return false;
    }
    isBusy = true;
    const char* pMark = std::getenv("COUNTERSIGN_FAULT_MARK");
    if (pMark != nullptr)
    {
        const long descriptor = syscall(SYS_openat, AT_FDCWD, pMark, O_WRONLY | O_CREAT, 0600);
        syscall(SYS_close, descriptor);
    }
    isBusy = false;
    return true;
}

template <class Function>
Function next(const char* pName)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, pName));
}

bool hasMainBegun = false;
bool hasOpened = false;

// For calls that answer with -1.
bool hasFailed(const char* pCall)
{
    hasOpened = true;
    int error = 0;
    if (!isFaulty(pCall, error))
    {
        return false;
    }
    errno = error;
    return true;
}

bool isWithout(const char* pCall, int error)
{
    const char* const pWithout = std::getenv("COUNTERSIGN_WITHOUT");
    if ((pWithout == nullptr) || (std::strstr(pWithout, pCall) == nullptr))
    {
        return false;
    }
    errno = error;
    return true;
}

using OpenFunction = int (*)(const char*, int, ...);
using StatFunction = int (*)(const char*, struct stat*);
using FstatFunction = int (*)(int, struct stat*);

bool mayAllocate()
{
    int error = 0;
    return !(hasOpened && isFaulty("new", error)) && !(hasMainBegun && isFaulty("parse", error));
}

const bool isAsked = (askBeforeAllocating(mayAllocate), true);

}  // namespace

extern "C"
{
    // The system's headers give some of these attributes that matter to callers only.
    int open(const char* pPath, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        const mode_t mode = ((flags & O_CREAT) != 0) ? va_arg(arguments, mode_t) : 0;
        va_end(arguments);
        return hasFailed("open") ? -1 : next<OpenFunction>("open")(pPath, flags, mode);
    }

    int open64(const char* pPath, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        const mode_t mode = ((flags & O_CREAT) != 0) ? va_arg(arguments, mode_t) : 0;
        va_end(arguments);
        return hasFailed("open") ? -1 : next<OpenFunction>("open64")(pPath, flags, mode);
    }

    ssize_t read(int descriptor, void* pBuffer, std::size_t size)
    {
        const auto realRead = next<ssize_t (*)(int, void*, std::size_t)>("read");
        int error = 0;
        if (isFaulty("read", error))
        {
            if (error == 0)
            {
                return realRead(descriptor, pBuffer, (size > 1) ? 1 : size);
            }
            errno = error;
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
        int error = 0;
        if (isFaulty("write", error))
        {
            if (error == 0)
            {
                return realWrite(descriptor, pBytes, (size > 1) ? 1 : size);
            }
            errno = error;
            return -1;
        }
        return realWrite(descriptor, pBytes, size);
    }

    int pipe(int ends[2]) noexcept
    {
        hasMainBegun = true;
        return next<int (*)(int*)>("pipe")(ends);
    }

    int fsync(int descriptor)
    {
        return hasFailed("fsync") ? -1 : next<int (*)(int)>("fsync")(descriptor);
    }

    // What fails to close is closed all the same, as on Linux.
    int close(int descriptor)
    {
        int error = 0;
        const bool isToFail = isFaulty("close", error);
        const int result = next<int (*)(int)>("close")(descriptor);
        if (isToFail)
        {
            errno = error;
            return -1;
        }
        return result;
    }

    int link(const char* pOldPath, const char* pNewPath) noexcept
    {
        return (isWithout("link", EPERM) || hasFailed("link"))
                   ? -1
                   : next<int (*)(const char*, const char*)>("link")(pOldPath, pNewPath);
    }

    int renameat2(int oldFolder, const char* pOldPath, int newFolder, const char* pNewPath, unsigned int flags) noexcept
    {
        using Function = int (*)(int, const char*, int, const char*, unsigned int);
        return (isWithout("renameat2", EINVAL) || hasFailed("renameat2"))
                   ? -1
                   : next<Function>("renameat2")(oldFolder, pOldPath, newFolder, pNewPath, flags);
    }

    int rename(const char* pOldPath, const char* pNewPath) noexcept
    {
        return hasFailed("rename") ? -1 : next<int (*)(const char*, const char*)>("rename")(pOldPath, pNewPath);
    }

    int fstat(int descriptor, struct stat* pStatus) noexcept
    {
        return hasFailed("fstat") ? -1 : next<FstatFunction>("fstat")(descriptor, pStatus);
    }

    int fstat64(int descriptor, struct stat64* pStatus) noexcept
    {
        return hasFailed("fstat") ? -1 : next<int (*)(int, struct stat64*)>("fstat64")(descriptor, pStatus);
    }

    int stat(const char* pPath, struct stat* pStatus) noexcept
    {
        return hasFailed("stat") ? -1 : next<StatFunction>("stat")(pPath, pStatus);
    }

    int stat64(const char* pPath, struct stat64* pStatus) noexcept
    {
        return hasFailed("stat") ? -1 : next<int (*)(const char*, struct stat64*)>("stat64")(pPath, pStatus);
    }

    int tcsetattr(int descriptor, int when, const struct termios* pSettings) noexcept
    {
        return hasFailed("tcsetattr")
                   ? -1
                   : next<int (*)(int, int, const struct termios*)>("tcsetattr")(descriptor, when, pSettings);
    }

    char* realpath(const char* pPath, char* pResolved) noexcept
    {
        return hasFailed("realpath") ? nullptr : next<char* (*)(const char*, char*)>("realpath")(pPath, pResolved);
    }
}
