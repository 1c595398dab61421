// SPDX-License-Identifier: Apache-2.0
// The toolkit's flags would make one name of two functions here.
#undef _FILE_OFFSET_BITS
// Nor may the headers bring bodies of what is defined here.
#undef _FORTIFY_SOURCE
#include "tests/support/tsSystemFault.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdexcept>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace
{
// A fault as the calls read it. They come at any time and from any thread, also in a child before it runs a program,
// and from constructors of libraries. So all of it is there from the start, and nothing is locked, allocated or
// destroyed.
struct Slot
{
    std::atomic<bool> _isTaken;
    std::atomic<bool> _isArmed;
    std::array<char, 16> _call;
    std::array<char, 4096> _folder;  // with a "/" behind it; empty: all files
    std::array<long, 200> _answers;
    int _amountOfAnswers;
    int _number;
    bool _isForGood;
    bool _isOfThread;
    pthread_t _thread;
    int _descriptor;
    const std::function<void(const char*)>* _pBefore;
    std::atomic<int> _amountOfCalls;
};

std::array<Slot, 16> slots{};

// For which slots a descriptor is of a file in their folder, a bit each.
std::array<std::atomic<std::uint16_t>, 4096> foldersOfDescriptor{};
static_assert(slots.size() <= 16, "a bit for each");

bool isKept(int descriptor)
{
    return descriptor >= 0 && static_cast<std::size_t>(descriptor) < foldersOfDescriptor.size();
}

bool isInFolder(const Slot& slot, const char* pPath)
{
    return std::strncmp(pPath, slot._folder.data(), std::strlen(slot._folder.data())) == 0;
}

// What the call concerns.
struct Subject
{
    const char* _pPath;
    int _descriptor;
};

constexpr Subject nothing = {nullptr, -1};

Subject subject(const char* pPath)
{
    return {pPath, -1};
}

Subject subject(int descriptor)
{
    return {nullptr, descriptor};
}

bool concerns(std::size_t number, const Subject& what)
{
    const Slot& slot = slots[number];
    if (slot._descriptor >= 0 && slot._descriptor != what._descriptor)
    {
        return false;
    }
    if (slot._folder[0] == '\0')
    {
        return true;
    }
    if (what._pPath != nullptr)
    {
        return isInFolder(slot, what._pPath);
    }
    // The start of a thread has neither path nor descriptor.
    if (what._descriptor < 0 || !isKept(what._descriptor))
    {
        return what._descriptor < 0;
    }
    const unsigned int folders = foldersOfDescriptor[static_cast<std::size_t>(what._descriptor)];
    return (folders >> number & 1U) != 0;
}

long answerOf(const char* pCall, const Subject& what)
{
    for (std::size_t i = 0; i < slots.size(); ++i)
    {
        Slot& slot = slots[i];
        if (!slot._isArmed.load(std::memory_order_acquire) || std::strcmp(slot._call.data(), pCall) != 0 ||
            (slot._isOfThread && pthread_equal(slot._thread, pthread_self()) == 0) || !concerns(i, what))
        {
            continue;
        }
        int answer = ++slot._amountOfCalls - slot._number;
        if (answer >= slot._amountOfAnswers && slot._isForGood)
        {
            answer = slot._amountOfAnswers - 1;
        }
        if (answer < 0 || answer >= slot._amountOfAnswers)
        {
            continue;
        }
        if (slot._pBefore != nullptr)
        {
            (*slot._pBefore)(what._pPath);
        }
        const long result = slot._answers[static_cast<std::size_t>(answer)];
        if (result != tsWorks)
        {
            return result;
        }
    }
    return tsWorks;
}

bool isFailure(long answer)
{
    if (answer < 0)
    {
        errno = static_cast<int>(-answer);
    }
    return answer < 0;
}

bool hasFailed(const char* pCall, const Subject& what)
{
    return isFailure(answerOf(pCall, what));
}

std::size_t shortened(std::size_t size, long answer)
{
    return std::min(size, static_cast<std::size_t>(answer));
}

// The system's own function; looked up once, as a child may not wait for the loader's lock.
template <class Function>
class Real
{
public:
    explicit constexpr Real(const char* pName) : _pName(pName) {}

    Function operator*()
    {
        void* pFunction = _pFunction.load();
        if (pFunction == nullptr)
        {
            pFunction = dlsym(RTLD_NEXT, _pName);
            _pFunction = pFunction;
        }
        return reinterpret_cast<Function>(pFunction);
    }

private:
    const char* _pName;
    std::atomic<void*> _pFunction{nullptr};
};

using OpenFunction = int (*)(const char*, int, ...);
using MakeFunction = int (*)(char*);
using FopenFunction = FILE* (*)(const char*, const char*);
using ReadFunction = ssize_t (*)(int, void*, std::size_t);
using WriteFunction = ssize_t (*)(int, const void*, std::size_t);
using DescriptorFunction = int (*)(int);
using TwoPathsFunction = int (*)(const char*, const char*);
using Renameat2Function = int (*)(int, const char*, int, const char*, unsigned int);
using FcntlFunction = int (*)(int, int, ...);
using TcsetattrFunction = int (*)(int, int, const struct termios*);
using RealpathFunction = char* (*)(const char*, char*);
using ThreadFunction = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);

Real<OpenFunction> realOpen("open");
Real<OpenFunction> realOpen64("open64");
Real<MakeFunction> realMkstemp("mkstemp");
Real<FopenFunction> realFopen64("fopen64");
Real<ReadFunction> realRead("read");
Real<WriteFunction> realWrite("write");
Real<DescriptorFunction> realFsync("fsync");
Real<DescriptorFunction> realClose("close");
Real<TwoPathsFunction> realLink("link");
Real<TwoPathsFunction> realRename("rename");
Real<Renameat2Function> realRenameat2("renameat2");
Real<int (*)(int, struct stat*)> realFstat("fstat");
Real<int (*)(int, struct stat64*)> realFstat64("fstat64");
Real<int (*)(const char*, struct stat*)> realStat("stat");
Real<int (*)(const char*, struct stat64*)> realStat64("stat64");
Real<RealpathFunction> realRealpath("realpath");
Real<FcntlFunction> realFcntl("fcntl");
Real<FcntlFunction> realFcntl64("fcntl64");
Real<TcsetattrFunction> realTcsetattr("tcsetattr");
Real<ThreadFunction> realThread("pthread_create");

thread_local tsNotedCalls* pNotedCalls = nullptr;

int opened(const char* pPath, int descriptor)
{
    if (isKept(descriptor))
    {
        unsigned int folders = 0;
        for (std::size_t i = 0; i < slots.size(); ++i)
        {
            const bool isIn = slots[i]._isArmed.load(std::memory_order_acquire) && isInFolder(slots[i], pPath);
            folders |= isIn ? 1U << i : 0U;
        }
        foldersOfDescriptor[static_cast<std::size_t>(descriptor)] = static_cast<std::uint16_t>(folders);
    }
    if (pNotedCalls != nullptr && descriptor >= 0)
    {
        pNotedCalls->_opened.push_back(descriptor);
    }
    return descriptor;
}

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

// Copies the text with the zero behind it.
template <std::size_t size>
void copy(const std::string& text, std::array<char, size>& buffer)
{
    if (text.size() >= size)
    {
        throw std::length_error("tsSystemFault: " + text);
    }
    text.copy(buffer.data(), text.size());
    buffer[text.size()] = '\0';
}

std::size_t freeSlot()
{
    for (std::size_t i = 0; i < slots.size(); ++i)
    {
        if (!slots[i]._isTaken.exchange(true))
        {
            return i;
        }
    }
    throw std::length_error("tsSystemFault: too many at once");
}

tsFault inFolder(const std::string& folder, const std::string& call, int number)
{
    tsFault fault{call};
    fault._number = number;
    fault._folder = folder;
    return fault;
}

tsFault withAnswers(tsFault fault, const std::vector<long>& answers)
{
    fault._answers = answers;
    return fault;
}

tsFault withAction(tsFault fault, const std::function<void()>& before)
{
    fault._answers = {tsWorks};
    fault._before = [before](const char*) { before(); };
    return fault;
}

tsFault ofThread(const std::string& call, const std::vector<long>& answers)
{
    tsFault fault{call, answers};
    fault._isOfThread = true;
    return fault;
}
}  // namespace

tsSystemFault::tsSystemFault(const tsFault& fault) : _fault(fault), _slot(static_cast<int>(freeSlot()))
{
    Slot& slot = slots[static_cast<std::size_t>(_slot)];
    if (fault._answers.size() > slot._answers.size())
    {
        throw std::length_error("tsSystemFault: too many answers");
    }
    copy(fault._call, slot._call);
    copy(fault._folder.empty() ? "" : fault._folder + "/", slot._folder);
    std::copy(fault._answers.begin(), fault._answers.end(), slot._answers.begin());
    slot._amountOfAnswers = static_cast<int>(fault._answers.size());
    slot._number = fault._number;
    slot._isForGood = fault._isForGood;
    slot._isOfThread = fault._isOfThread;
    slot._thread = pthread_self();
    slot._descriptor = fault._descriptor;
    slot._pBefore = fault._before ? &_fault._before : nullptr;
    slot._amountOfCalls = 0;
    // An earlier fault had this slot.
    for (std::atomic<std::uint16_t>& folders : foldersOfDescriptor)
    {
        folders = static_cast<std::uint16_t>(folders & ~(1U << _slot));
    }
    slot._isArmed.store(true, std::memory_order_release);
}

tsSystemFault::tsSystemFault(const std::string& folder, const std::string& call, int number, int error)
    : tsSystemFault(withAnswers(inFolder(folder, call, number), {error == 0 ? 1L : -static_cast<long>(error)}))
{
}

tsSystemFault::tsSystemFault(const std::string& folder, const std::string& call, int number,
                             const std::function<void()>& before)
    : tsSystemFault(withAction(inFolder(folder, call, number), before))
{
}

tsSystemFault::tsSystemFault(const std::string& call, const std::vector<long>& answers)
    : tsSystemFault(ofThread(call, answers))
{
}

tsSystemFault::~tsSystemFault()
{
    Slot& slot = slots[static_cast<std::size_t>(_slot)];
    slot._isArmed = false;
    slot._isTaken = false;
}

bool tsSystemFault::hasHappened() const
{
    return amountOfCalls() >= _fault._number;
}

int tsSystemFault::amountOfCalls() const
{
    return slots[static_cast<std::size_t>(_slot)]._amountOfCalls;
}

long tsAnswerOf(const char* pCall) noexcept
{
    return answerOf(pCall, nothing);
}

bool tsFails(const char* pCall) noexcept
{
    return hasFailed(pCall, nothing);
}

tsNotedCalls::tsNotedCalls()
{
    pNotedCalls = this;
}

tsNotedCalls::~tsNotedCalls()
{
    pNotedCalls = nullptr;
}

tsWholeSecondStamps::tsWholeSecondStamps()
{
    hasWholeSeconds = true;
}

tsWholeSecondStamps::~tsWholeSecondStamps()
{
    hasWholeSeconds = false;
}

extern "C"
{
    int open(const char* pPath, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the analyzer misses va_start in some builds
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
        va_end(arguments);
        return hasFailed("open", subject(pPath)) ? -1 : opened(pPath, (*realOpen)(pPath, flags, mode));
    }

    int open64(const char* pPath, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the analyzer misses va_start in some builds
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
        va_end(arguments);
        return hasFailed("open", subject(pPath)) ? -1 : opened(pPath, (*realOpen64)(pPath, flags, mode));
    }

    int mkstemp(char* pTemplate)
    {
        return hasFailed("open", subject(pTemplate)) ? -1 : opened(pTemplate, (*realMkstemp)(pTemplate));
    }

    int mkstemp64(char* pTemplate)
    {
        return mkstemp(pTemplate);
    }

    FILE* fopen64(const char* pPath, const char* pMode)
    {
        if (hasFailed("open", subject(pPath)))
        {
            return nullptr;
        }
        FILE* const pFile = (*realFopen64)(pPath, pMode);
        if (pFile != nullptr)
        {
            opened(pPath, fileno(pFile));
        }
        return pFile;
    }

    FILE* fopen(const char* pPath, const char* pMode)
    {
        return fopen64(pPath, pMode);
    }

    ssize_t read(int descriptor, void* pBuffer, std::size_t size)
    {
        if (pNotedCalls != nullptr)
        {
            pNotedCalls->_readSizes.push_back(size);
        }
        const long answer = answerOf("read", subject(descriptor));
        return isFailure(answer) ? -1 : (*realRead)(descriptor, pBuffer, shortened(size, answer));
    }

    ssize_t __read_chk(int descriptor, void* pBuffer, std::size_t size, std::size_t /*room*/)
    {
        return read(descriptor, pBuffer, size);
    }

    ssize_t write(int descriptor, const void* pBytes, std::size_t size)
    {
        const long answer = answerOf("write", subject(descriptor));
        return isFailure(answer) ? -1 : (*realWrite)(descriptor, pBytes, shortened(size, answer));
    }

    int fsync(int descriptor)
    {
        return hasFailed("fsync", subject(descriptor)) ? -1 : (*realFsync)(descriptor);
    }

    int close(int descriptor)
    {
        const long answer = answerOf("close", subject(descriptor));
        if (isKept(descriptor))
        {
            foldersOfDescriptor[static_cast<std::size_t>(descriptor)] = 0;
        }
        if (pNotedCalls != nullptr)
        {
            pNotedCalls->_closed.push_back(descriptor);
        }
        const int result = (*realClose)(descriptor);
        return isFailure(answer) ? -1 : result;
    }

    int link(const char* pOldPath, const char* pNewPath) noexcept
    {
        return hasFailed("link", subject(pNewPath)) ? -1 : (*realLink)(pOldPath, pNewPath);
    }

    int rename(const char* pOldPath, const char* pNewPath) noexcept
    {
        return hasFailed("rename", subject(pNewPath)) ? -1 : (*realRename)(pOldPath, pNewPath);
    }

    int renameat2(int oldFolder, const char* pOldPath, int newFolder, const char* pNewPath, unsigned int flags) noexcept
    {
        return hasFailed("renameat2", subject(pNewPath))
                   ? -1
                   : (*realRenameat2)(oldFolder, pOldPath, newFolder, pNewPath, flags);
    }

    int fstat(int descriptor, struct stat* pStatus) noexcept
    {
        return hasFailed("fstat", subject(descriptor)) ? -1 : roundStamps((*realFstat)(descriptor, pStatus), pStatus);
    }

    int fstat64(int descriptor, struct stat64* pStatus) noexcept
    {
        return hasFailed("fstat", subject(descriptor)) ? -1 : roundStamps((*realFstat64)(descriptor, pStatus), pStatus);
    }

    int stat(const char* pPath, struct stat* pStatus) noexcept
    {
        return hasFailed("stat", subject(pPath)) ? -1 : roundStamps((*realStat)(pPath, pStatus), pStatus);
    }

    int stat64(const char* pPath, struct stat64* pStatus) noexcept
    {
        return hasFailed("stat", subject(pPath)) ? -1 : roundStamps((*realStat64)(pPath, pStatus), pStatus);
    }

    char* realpath(const char* pPath, char* pResolved) noexcept
    {
        return hasFailed("realpath", subject(pPath)) ? nullptr : (*realRealpath)(pPath, pResolved);
    }

    int fcntl(int descriptor, int command, ...)
    {
        va_list arguments;
        va_start(arguments, command);
        void* const pArgument = va_arg(arguments, void*);
        va_end(arguments);
        return hasFailed("fcntl", subject(descriptor)) ? -1 : (*realFcntl)(descriptor, command, pArgument);
    }

    int fcntl64(int descriptor, int command, ...)
    {
        va_list arguments;
        va_start(arguments, command);
        void* const pArgument = va_arg(arguments, void*);
        va_end(arguments);
        return hasFailed("fcntl", subject(descriptor)) ? -1 : (*realFcntl64)(descriptor, command, pArgument);
    }

    int tcsetattr(int descriptor, int when, const struct termios* pSettings) noexcept
    {
        return hasFailed("tcsetattr", subject(descriptor)) ? -1 : (*realTcsetattr)(descriptor, when, pSettings);
    }

    int pthread_create(pthread_t* pThread, const pthread_attr_t* pAttributes, void* (*pRun)(void*),
                       void* pArgument) noexcept
    {
        const long answer = answerOf("thread", nothing);
        return answer < 0 ? static_cast<int>(-answer) : (*realThread)(pThread, pAttributes, pRun, pArgument);
    }
}
