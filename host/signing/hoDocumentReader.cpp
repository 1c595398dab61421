// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoDocumentReader.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

bool hoDocumentReader::open()
{
    if (_source.hasPath())
    {
        return _file.open(osFilePath(_source._path), osChannel::OS_BINARY_CHANNEL, osFile::OS_OPEN_TO_READ);
    }
    struct stat status = {};
    if (::fstat(_source._descriptor, &status) != 0)
    {
        _errorNumber = errno;
        return false;
    }
    _isRegular = S_ISREG(status.st_mode);
    const off_t begin = _isRegular ? ::lseek(_source._descriptor, 0, SEEK_CUR) : 0;
    _begin = begin > 0 ? static_cast<std::uint64_t>(begin) : 0;
    return true;
}

bool hoDocumentReader::readFacts(osFileFacts& facts)
{
    if (_source.hasPath())
    {
        return _file.readFacts(facts);
    }
    if (!osReadFactsOfDescriptor(_source._descriptor, facts))
    {
        _errorNumber = errno;
        return false;
    }
    facts._size = _isRegular ? facts._size - std::min(facts._size, _begin) : 0;
    return true;
}

bool hoDocumentReader::readAvailableData(char* pBuffer, unsigned long bufferSize, unsigned long& amountRead)
{
    if (_source.hasPath())
    {
        return _file.readAvailableData(pBuffer, bufferSize, amountRead);
    }
    amountRead = 0;
    while (amountRead < bufferSize && !_isAtEnd)
    {
        if (!_source._waitForInput(_source._descriptor))
        {
            _isGivenUp = true;
            _isAtEnd = true;
            break;
        }
        const ssize_t amount = ::read(_source._descriptor, pBuffer + amountRead, bufferSize - amountRead);
        if (amount < 0 && (errno == EINTR || errno == EAGAIN))
        {
            continue;
        }
        _hasReadError = amount < 0;
        _errorNumber = amount < 0 ? errno : 0;
        _isAtEnd = amount <= 0;
        amountRead += amount > 0 ? static_cast<unsigned long>(amount) : 0;
    }
    return amountRead > 0;
}
