// SPDX-License-Identifier: Apache-2.0
// In a program for tests only. The environment says what goes wrong in the system, from the start of the program on:
//
//   COUNTERSIGN_FAULT=<call>:<number>:<error>   the call of that name and number (from 1) fails with this error number;
//                                               error 0 makes read and write do one byte only
//   COUNTERSIGN_FAULT_MARK=<path>               is created when it has gone wrong
//   COUNTERSIGN_WITHOUT=<call>,...              these always fail, as on a file system without them: link and renameat2
//
// Calls: those of tsSystemFault; new for the allocations from the first call on that names a file or asks about one,
// parse for those from the start of main on (to be exact from its first pipe: nobody catches what static objects
// throw).
#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/failingAllocation.h"
#include "tests/support/tsSystemFault.h"

namespace
{

std::atomic<bool> hasMainBegun{false};
std::atomic<bool> hasOpened{false};

bool mayAllocate()
{
    return !(hasOpened && tsFails("new")) && !(hasMainBegun && tsFails("parse"));
}

// Their memory is not given back, as the calls go on while static objects are destroyed; what is kept here is no leak.
std::array<const tsSystemFault*, 16> faults = {};
std::size_t amountOfFaults = 0;

void add(const tsFault& fault)
{
    faults.at(amountOfFaults++) = new tsSystemFault(fault);
}

void addAlways(const char* pCall, int error)
{
    tsFault fault{pCall, {-static_cast<long>(error)}};
    fault._isForGood = true;
    add(fault);
}

void mark()
{
    const char* const pMark = std::getenv("COUNTERSIGN_FAULT_MARK");
    if (pMark != nullptr)
    {
        const long descriptor = syscall(SYS_openat, AT_FDCWD, pMark, O_WRONLY | O_CREAT, 0600);
        syscall(SYS_close, descriptor);
    }
}

bool readEnvironment()
{
    // In front of the others, which end what is looked at.
    for (const char* pCall : {"open", "stat", "fstat", "realpath"})
    {
        tsFault first{pCall, {tsWorks}};
        first._before = [](const char*) { hasOpened = true; };
        add(first);
    }
    const char* const pWithout = std::getenv("COUNTERSIGN_WITHOUT");
    if (pWithout != nullptr && std::strstr(pWithout, "link") != nullptr)
    {
        addAlways("link", EPERM);
    }
    if (pWithout != nullptr && std::strstr(pWithout, "renameat2") != nullptr)
    {
        addAlways("renameat2", EINVAL);
    }
    const char* const pFault = std::getenv("COUNTERSIGN_FAULT");
    const char* const pColon = pFault == nullptr ? nullptr : std::strchr(pFault, ':');
    if (pColon != nullptr)
    {
        char* pEnd = nullptr;
        tsFault fault{std::string(pFault, pColon)};
        fault._number = static_cast<int>(std::strtol(pColon + 1, &pEnd, 10));
        const long error = *pEnd == ':' ? std::strtol(pEnd + 1, nullptr, 10) : 0;
        fault._answers = {error == 0 ? 1 : -error};
        fault._before = [](const char*) { mark(); };
        add(fault);
    }
    askBeforeAllocating(mayAllocate);
    return true;
}

const bool isRead = readEnvironment();

}  // namespace

// main makes its first pipe before it looks at its arguments.
extern "C" int pipe(int ends[2]) noexcept
{
    hasMainBegun = true;
    return reinterpret_cast<int (*)(int*)>(dlsym(RTLD_NEXT, "pipe"))(ends);
}
