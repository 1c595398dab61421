// SPDX-License-Identifier: Apache-2.0
// Reads a document from its source, once from its beginning to its end. For one thread at a time; throws only what the
// source's function throws.
#ifndef COUNTERSIGN_HO_DOCUMENT_READER_H
#define COUNTERSIGN_HO_DOCUMENT_READER_H

#include <cstdint>

#include "host/signing/hoDocumentSource.h"
#include "platform/osWrappers/osFile.h"

class hoDocumentReader
{
public:
    // The source must outlive this object.
    explicit hoDocumentReader(const hoDocumentSource& source) : _source(source) {}

    // False, and errorNumber() tells why, when it cannot be opened or looked at.
    bool open();

    // Whether it is something whose facts change when its bytes do.
    bool isRegular() const { return _isRegular; }

    // The facts as they are. _size: of what is to be read; 0 of what is not regular.
    bool readFacts(osFileFacts& facts);

    // As osFile's.
    bool readAvailableData(char* pBuffer, unsigned long bufferSize, unsigned long& amountRead);
    bool hasReadError() const { return _source.hasPath() ? _file.hasReadError() : _hasReadError; }
    int errorNumber() const { return _source.hasPath() ? _file.errorNumber() : _errorNumber; }

    // Whether the source's function gave the reading up.
    bool isGivenUp() const { return _isGivenUp; }

private:
    const hoDocumentSource& _source;
    osFile _file;
    std::uint64_t _begin = 0;  // where the descriptor stood
    bool _isRegular = true;
    bool _isAtEnd = false;
    bool _hasReadError = false;
    bool _isGivenUp = false;
    int _errorNumber = 0;
};

#endif
