// SPDX-License-Identifier: Apache-2.0
// Reads a regular file from its start to its end.
//
// - Small reads are cheap: they are served from a buffer of 256 KB, which larger ones go round.
// - The end of the file is where it is first met: a file that grows afterwards ends there for this object all the same.
//   After an error nothing more is read either. hasReadError() tells the two apart.
// - System calls that a signal interrupts are taken up again.
// - No function throws. An object is for one thread at a time; different objects, of one file too, are independent.
#ifndef OS_FILE_H
#define OS_FILE_H

#include <cstddef>
#include <memory>

#include "platform/osWrappers/osChannel.h"
#include "platform/osWrappers/osFileFacts.h"
#include "platform/osWrappers/osFilePath.h"

#pragma GCC visibility push(default)

class osFile
{
public:
    enum osOpenMode : int
    {
        OS_OPEN_TO_READ = 0
    };

    // A read of this many bytes or more goes straight into the caller's memory.
    static constexpr unsigned long bufferCapacity = 256UL * 1024;

    osFile() noexcept = default;
    osFile(const osFile&) = delete;
    osFile& operator=(const osFile&) = delete;

    // Closes the file.
    ~osFile();

    // Opens the file and returns true. Returns false, and errorNumber() tells why, if
    // - this object has a file open, which stays open and is read on undisturbed, and has its end and its read error
    //   where they were (EBUSY);
    // - the channel type or the mode is none of those above, or the path holds a NUL (EINVAL);
    // - the system refuses (ENOENT, EACCES, ...);
    // - the path is a directory (EISDIR) or another thing than a regular file (ENOTSUP). A pipe or a device is neither
    //   waited for nor read from. Links are followed.
    bool open(const osFilePath& path, osChannel::osChannelType channelType, osOpenMode openMode) noexcept;

    // Reads bufferSize bytes into the buffer, fewer only where the file ends or cannot be read on, and stores in
    // amountRead how many. Returns whether there were any: false at the end, after an error, when no file is open, and
    // for a null buffer or a size of 0, which both read nothing. Buffer bytes after amountRead may have changed.
    bool readAvailableData(char* pBuffer, unsigned long bufferSize, unsigned long& amountRead) noexcept;

    // Closes the file, if one is open; then another one can be opened. hasReadError() keeps its answer until then.
    void close() noexcept;

    bool isOpen() const noexcept { return _descriptor != -1; }

    // Whether reading stopped because of an error: true from the read on that met it, which may still have returned
    // bytes from before it.
    bool hasReadError() const noexcept { return _hasReadError; }

    // The system's error number of what failed last in opening or reading since the last call of open, that call
    // included: 0 if nothing did.
    int errorNumber() const noexcept { return _errorNumber; }

    // Stores the open file's present size in bytes and returns true; false, storing nothing, without an open file.
    // Some files (of /proc, for one) have more bytes than their size tells.
    bool fileSize(unsigned long long& size) const noexcept;

    // The open file's facts, whatever its name leads to by now. False, storing nothing, without an open file and where
    // the system refuses, which errorNumber() tells.
    bool readFacts(osFileFacts& facts) noexcept;

private:
    bool isReadable() const noexcept { return isOpen() && !_isAtEnd && !_hasReadError; }
    bool hasBuffer() noexcept;
    std::size_t readOnce(char* pBuffer, std::size_t bufferSize) noexcept;

    int _descriptor = -1;
    bool _isAtEnd = false;
    bool _hasReadError = false;
    int _errorNumber = 0;
    std::unique_ptr<char[]> _pBuffer;  // allocated by the first read that needs it
    std::size_t _bufferedBegin = 0;    // what the buffer holds and the caller has not had yet
    std::size_t _bufferedEnd = 0;
};

#pragma GCC visibility pop

#endif
