// SPDX-License-Identifier: Apache-2.0
// Looks closely at one document, on a thread of its own: both digests, and what is in its signature file.
//
// An inspection runs as soon as it is made. All functions are for the thread that made it.
#ifndef COUNTERSIGN_HO_INSPECTION_H
#define COUNTERSIGN_HO_INSPECTION_H

#include "host/keys/hoKeyFile.h"
#include "host/signing/hoFileDigests.h"
#include "host/signing/hoOrderedWork.h"
#include "host/signing/hoSignatureFile.h"
#include "host/signing/hoSignatureText.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

struct hoInspectionFacts
{
    hoSigningFacts _reading;  // why there are no digests, and the file that they are of
    hoFileDigests _digests;   // no exclusive-or digest without a key
    hoSignatureFileResult _signatureReading;
    bool _isSigned = false;  // there is a signature file
    osFileFacts _signatureFile;
    hoSignatureText _signature;
};

class hoInspection
{
public:
    struct Progress
    {
        std::uint64_t _bytesDone;
        std::uint64_t _bytesInAll;  // 0 as long as it is not known
    };

    // path: the document's. pKey: whose size the exclusive-or digest depends on; null, or too small a key for files:
    // there is none. onChange: called on the thread inside, about once a megabyte and when isFinished has become true;
    // it may neither throw nor call this object. Throws std::bad_alloc, and std::system_error where the system gives no
    // thread.
    hoInspection(const gtString& path, std::shared_ptr<const hoKey> pKey, std::function<void()> onChange);
    // Cancels, and waits for the thread.
    ~hoInspection();
    hoInspection(const hoInspection&) = delete;
    hoInspection& operator=(const hoInspection&) = delete;

    // The document is read no further; _reading says Cancelled.
    void cancel() { _isCancelled = true; }
    bool isFinished() const { return _isFinished; }
    Progress progress() const { return {_bytesDone, _bytesInAll}; }

    // Only when it is finished.
    const hoInspectionFacts& facts() const { return _facts; }

private:
    class Reading;

    void perform();
    void readSignature();

    const gtString _path;
    const std::shared_ptr<const hoKey> _pKey;
    const std::function<void()> _onChange;
    std::atomic<bool> _isCancelled;
    std::atomic<bool> _isFinished;
    std::atomic<std::uint64_t> _bytesDone;
    std::atomic<std::uint64_t> _bytesInAll;
    hoInspectionFacts _facts;  // the thread's until it has finished

    hoOrderedWork _work;  // the last member: its thread uses the others
};

#endif
