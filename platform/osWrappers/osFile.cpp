// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// More than this in one call is refused by some systems and cut by others.
constexpr std::size_t largestSystemRead = std::size_t(1) << 30;

int openForReading(const char* pPath)
{
    int descriptor = -1;
    do
    {
        // Without waiting, as a pipe would wait for its writer; and a terminal does not become the program's.
        descriptor = ::open(pPath, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

ssize_t readFrom(int descriptor, char* pBuffer, std::size_t bufferSize)
{
    ssize_t amount = -1;
    do
    {
        amount = ::read(descriptor, pBuffer, bufferSize);
    } while (amount < 0 && errno == EINTR);
    return amount;
}

// 0 for a regular file, which then blocks as regular files do; otherwise an error number.
int prepareRegularFile(int descriptor)
{
    struct stat status;
    if (::fstat(descriptor, &status) != 0)
    {
        return errno;
    }
    if (!S_ISREG(status.st_mode))
    {
        return S_ISDIR(status.st_mode) ? EISDIR : ENOTSUP;
    }
    const int flags = ::fcntl(descriptor, F_GETFL);
    return (flags == -1 || ::fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) != 0) ? errno : 0;
}
}  // namespace

osFile::~osFile()
{
    close();
}

bool osFile::open(const osFilePath& path, osChannel::osChannelType channelType, osOpenMode openMode) noexcept
{
    if (isOpen())
    {
        _errorNumber = EBUSY;
        return false;
    }

    _hasReadError = false;
    _isAtEnd = false;
    const char* pPath = path.asCharArray();
    if (channelType != osChannel::OS_BINARY_CHANNEL || openMode != OS_OPEN_TO_READ ||
        std::strlen(pPath) != static_cast<std::size_t>(path.length()))
    {
        _errorNumber = EINVAL;
        return false;
    }

    const int descriptor = openForReading(pPath);
    if (descriptor < 0)
    {
        _errorNumber = errno;
        return false;
    }
    _errorNumber = prepareRegularFile(descriptor);
    if (_errorNumber != 0)
    {
        static_cast<void>(::close(descriptor));
        return false;
    }
    _descriptor = descriptor;
    return true;
}

bool osFile::readAvailableData(char* pBuffer, unsigned long bufferSize, unsigned long& amountRead) noexcept
{
    amountRead = 0;
    if (pBuffer == nullptr)
    {
        return false;
    }

    std::size_t filled = 0;
    while (filled < bufferSize)
    {
        const std::size_t wanted = bufferSize - filled;
        if (_bufferedBegin < _bufferedEnd)
        {
            const std::size_t amount = std::min(wanted, _bufferedEnd - _bufferedBegin);
            std::memcpy(pBuffer + filled, _pBuffer.get() + _bufferedBegin, amount);
            _bufferedBegin += amount;
            filled += amount;
        }
        else if (!isReadable())
        {
            break;
        }
        else if (wanted >= bufferCapacity || !hasBuffer())
        {
            filled += readOnce(pBuffer + filled, wanted);
        }
        else
        {
            _bufferedBegin = 0;
            _bufferedEnd = readOnce(_pBuffer.get(), bufferCapacity);
        }
    }
    amountRead = filled;
    return filled > 0;
}

void osFile::close() noexcept
{
    if (isOpen())
    {
        static_cast<void>(::close(_descriptor));
        _descriptor = -1;
        _pBuffer.reset();
        _bufferedBegin = _bufferedEnd;
    }
}

bool osFile::fileSize(unsigned long long& size) const noexcept
{
    struct stat status;
    if (!isOpen() || ::fstat(_descriptor, &status) != 0)
    {
        return false;
    }
    size = static_cast<unsigned long long>(status.st_size);
    return true;
}

bool osFile::readFacts(osFileFacts& facts) noexcept
{
    if (!isOpen())
    {
        return false;
    }
    if (!osReadFactsOfDescriptor(_descriptor, facts))
    {
        _errorNumber = errno;
        return false;
    }
    return true;
}

// Without memory for a buffer the file is read all the same, with a system call for every read.
bool osFile::hasBuffer() noexcept
{
    if (_pBuffer == nullptr)
    {
        _pBuffer.reset(new (std::nothrow) char[bufferCapacity]);
    }
    return _pBuffer != nullptr;
}

std::size_t osFile::readOnce(char* pBuffer, std::size_t bufferSize) noexcept
{
    const ssize_t amount = readFrom(_descriptor, pBuffer, std::min(bufferSize, largestSystemRead));
    if (amount < 0)
    {
        _hasReadError = true;
        _errorNumber = errno;
        return 0;
    }
    _isAtEnd = amount == 0;
    return static_cast<std::size_t>(amount);
}
