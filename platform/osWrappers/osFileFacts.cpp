// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osFileFacts.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
osFileProblem problemOf(int error)
{
    switch (error)
    {
    case ENOENT:
    case ENOTDIR:
        return osFileProblem::NotThere;
    case EACCES:
    case EPERM:
        return osFileProblem::NotPermitted;
    case ENAMETOOLONG:
        return osFileProblem::NameTooLong;
    case ELOOP:
        return osFileProblem::TooManyLinks;
    default:
        return osFileProblem::CannotBeRead;
    }
}

osFileResult refusal(int error)
{
    return osFileResult(problemOf(error), error);
}

osFileProblem problemOfKind(const struct stat& entry)
{
    if (S_ISDIR(entry.st_mode))
    {
        return osFileProblem::IsFolder;
    }
    return S_ISREG(entry.st_mode) ? osFileProblem::None : osFileProblem::NotRegular;
}

osFileFacts factsOf(const struct stat& entry)
{
    osFileFacts facts;
    facts._size = static_cast<std::uint64_t>(entry.st_size);
#ifdef __APPLE__
    const struct timespec modified = entry.st_mtimespec;
    const struct timespec changed = entry.st_ctimespec;
#else
    const struct timespec modified = entry.st_mtim;
    const struct timespec changed = entry.st_ctim;
#endif
    facts._modifiedSeconds = modified.tv_sec;
    facts._modifiedNanoseconds = modified.tv_nsec;
    facts._changedSeconds = changed.tv_sec;
    facts._changedNanoseconds = changed.tv_nsec;
    facts._device = static_cast<std::uint64_t>(entry.st_dev);
    facts._fileNumber = static_cast<std::uint64_t>(entry.st_ino);
    return facts;
}

bool holdsNul(const gtString& path)
{
    return std::strlen(path.asCharArray()) != static_cast<std::size_t>(path.length());
}

bool isAddress(const gtString& path)
{
    const std::string_view text = path.asStringView();
    const std::size_t end = text.find("://");
    return end != std::string_view::npos && end > 0 && text.find('/') > end;
}
}  // namespace

bool osFileFacts::operator==(const osFileFacts& other) const
{
    return _size == other._size && _modifiedSeconds == other._modifiedSeconds &&
           _modifiedNanoseconds == other._modifiedNanoseconds && _changedSeconds == other._changedSeconds &&
           _changedNanoseconds == other._changedNanoseconds && _device == other._device &&
           _fileNumber == other._fileNumber;
}

osFileResult osReadFileFacts(const gtString& path, osFileFacts& facts)
{
    if (path.isEmpty())
    {
        return osFileProblem::NoName;
    }
    if (holdsNul(path))
    {
        return osFileProblem::NotThere;
    }

    struct stat entry;
    if (stat(path.asCharArray(), &entry) != 0)
    {
        const osFileResult result = refusal(errno);
        return result._problem == osFileProblem::NotThere && isAddress(path) ? osFileProblem::NotLocal : result;
    }
    osFileResult result = problemOfKind(entry);
    if (!result.isOk())
    {
        return result;
    }

    // The name may have passed to a pipe in between: opening must not wait for its other end.
    int file = -1;
    do
    {
        file = open(path.asCharArray(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    } while (file < 0 && errno == EINTR);
    if (file < 0)
    {
        return refusal(errno);
    }
    result = fstat(file, &entry) == 0 ? osFileResult(problemOfKind(entry)) : refusal(errno);
    close(file);
    if (result.isOk())
    {
        facts = factsOf(entry);
    }
    return result;
}

bool osReadFactsOfDescriptor(int descriptor, osFileFacts& facts) noexcept
{
    struct stat entry;
    if (fstat(descriptor, &entry) != 0)
    {
        return false;
    }
    facts = factsOf(entry);
    return true;
}

std::int64_t osTimeUntilStampsMove(const osFileFacts& facts) noexcept
{
    constexpr std::int64_t second = 1000000000;
    // The largest steps in use: two seconds where there are no fractions, else that of a clock at 100 hertz.
    const std::int64_t step = facts._changedNanoseconds == 0 ? 2 * second : second / 100;
#ifdef CLOCK_REALTIME_COARSE
    const clockid_t clock = CLOCK_REALTIME_COARSE;
#else
    const clockid_t clock = CLOCK_REALTIME;
#endif
    struct timespec now = {};
    if (clock_gettime(clock, &now) != 0)
    {
        return 0;
    }
    const std::int64_t seconds = static_cast<std::int64_t>(now.tv_sec) - facts._changedSeconds;
    // Far away in either direction, and the sum below cannot overflow.
    if (seconds > 3 || seconds < -1)
    {
        return 0;
    }
    const std::int64_t age = seconds * second + now.tv_nsec - facts._changedNanoseconds;
    // The clock that stamps files may be a finer one, and ahead by a step.
    return age < -step ? 0 : step + 1 - age;
}

gtString osAbsolutePath(const gtString& path)
{
    const std::string given = path.asStdString();
    const std::size_t lastSeparator = given.rfind('/');
    const std::string name = lastSeparator == std::string::npos ? given : given.substr(lastSeparator + 1);
    if (name.empty() || name == "." || name == ".." || holdsNul(path))
    {
        return path;
    }

    const std::string folder = lastSeparator == std::string::npos ? "." : given.substr(0, lastSeparator + 1);
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(folder.c_str(), nullptr), std::free);
    if (resolved == nullptr)
    {
        return path;
    }
    gtString absolute(resolved.get());
    if (std::strcmp(resolved.get(), "/") != 0)
    {
        absolute.append('/');
    }
    return absolute.append(gtString(name));
}
