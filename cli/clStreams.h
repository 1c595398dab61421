// SPDX-License-Identifier: Apache-2.0
// Inputs that can be read only once: standard input, which "-" stands for, and pipes, which the shell's <(...) makes.
#ifndef COUNTERSIGN_CL_STREAMS_H
#define COUNTERSIGN_CL_STREAMS_H

#include "cli/clArguments.h"
#include "host/signing/hoDocumentSource.h"

#include <memory>

// "-"
bool clIsStandardInput(const gtString& name);

// Whether the name is standard input's or leads to a pipe, links followed.
bool clIsStream(const gtString& name);

// "standard input", or the printable name.
gtString clStreamName(const gtString& name);

// Appends all that comes from it, until the bytes reach the limit. No copy of them stays anywhere else. 0, or the
// system's error number: EINTR after a signal that asks to end.
int clReadStream(const gtString& name, gtString& bytes, int limit);

// Tells of what is read twice though it can be read only once: a sentence; empty if there is nothing.
gtString clFindStreamReadTwice(const clArguments& arguments);

// A document to be read once. A pipe is opened, and closed with the object.
class clOpenDocument
{
public:
    // Throws std::bad_alloc.
    explicit clOpenDocument(const gtString& name);
    ~clOpenDocument();
    clOpenDocument(const clOpenDocument&) = delete;
    clOpenDocument& operator=(const clOpenDocument&) = delete;

    const hoDocumentSource& source() const { return *_pSource; }

private:
    int _opened = -1;
    std::unique_ptr<const hoDocumentSource> _pSource;
};

#endif
