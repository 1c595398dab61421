// SPDX-License-Identifier: Apache-2.0
// Signing and testing of many documents on threads of their own, as many as there are processors.
//
// A job runs as soon as it is made. Outcomes come in the order of the documents, as facts, one for each document that
// was not cancelled; a lack of memory is an outcome, too. The keys are shared with whoever else has them. All functions
// are for the thread that made the job. The threads inside have ended when the destructor returns. Each of them reads
// with buffers of its own, whose size does not depend on the documents'.
#ifndef COUNTERSIGN_HO_SIGNING_JOB_H
#define COUNTERSIGN_HO_SIGNING_JOB_H

#include "host/keys/hoKeyRing.h"
#include "host/signing/hoDocument.h"
#include "host/signing/hoFileSigning.h"
#include "host/signing/hoOrderedWork.h"
#include "host/signing/hoSignatureFile.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

struct hoSigningOutcome
{
    gtString _path;
    hoDocumentVerdict _verdict;  // the state, and what it was established on
    hoTestFacts _signing;        // what was found, or why it could not be
    hoSignatureFileResult _signatureFile;
};

class hoSigningJob
{
public:
    enum class Kind
    {
        Sign,
        Test
    };

    struct Progress
    {
        std::uint64_t _bytesDone;   // including the documents that are done
        std::uint64_t _bytesInAll;  // as the list had the sizes at the start; never less than _bytesDone
        std::size_t _documentsDone;
        gtString _path;  // the first that is not done; empty at the end
    };

    // keys: the private one signs, and tells which signatures are one's own; the testing ones test. There is one at
    // least, a private one for signing.
    // mayOverwrite: signatures that are there are replaced; otherwise such a document's outcome has the signature
    // file's problem Exists. Throws std::bad_alloc, and std::system_error where the system gives no thread.
    // onChange: called on the threads inside, on several at once, after each change of what the functions below give,
    // and a last time when isFinished has become true; it may neither throw nor call this object.
    // lines: what a signature gets. threads: at most so many, at least 1.
    hoSigningJob(Kind kind, const std::vector<hoDocument>& documents, const hoKeyRing& keys, bool mayOverwrite,
                 std::function<void()> onChange = nullptr, hoSignatureLines lines = hoSignatureLines::Both,
                 unsigned int threads = hoOrderedWork::amountOfProcessors());
    // Cancels, and waits for the threads.
    ~hoSigningJob();
    hoSigningJob(const hoSigningJob&) = delete;
    hoSigningJob& operator=(const hoSigningJob&) = delete;

    Kind kind() const { return _kind; }
    std::size_t amountOfDocuments() const { return _documents.size(); }

    // The documents that are being read are given up, without an outcome, and those behind them are not begun.
    void cancel();
    bool isCancelled() const { return _isCancelled; }

    // No outcome comes any more but those that takeOutcomes() has not given yet.
    bool isFinished() const { return _isFinished; }

    // Both throw std::bad_alloc, with nothing lost.
    Progress progress() const;
    // The outcomes since the last call.
    std::vector<hoSigningOutcome> takeOutcomes();

private:
    class Reading;

    static std::uint64_t sizeOf(const std::vector<hoDocument>& documents);
    static std::vector<hoSigningOutcome> outcomesFor(const std::vector<hoDocument>& documents);

    void perform(std::size_t number);
    void notify() const;
    // What is found goes into the outcome, which has its path already.
    void sign(const hoDocument& document, hoIProgress& progress, hoSigningOutcome& outcome) const;
    void test(const hoDocument& document, hoIProgress& progress, hoSigningOutcome& outcome) const;
    // The name of the key that the verdict came from, where there are several.
    gtString keyName(const hoKey& key) const;

    const Kind _kind;
    const std::vector<hoDocument> _documents;
    const std::shared_ptr<const hoKey> _pPrivateKey;  // null where there is none
    const std::vector<hoTestingKey> _testingKeys;
    const bool _mayOverwrite;
    const hoSignatureLines _lines;
    const std::function<void()> _onChange;
    const std::uint64_t _bytesInAll;

    std::atomic<bool> _isCancelled;
    std::atomic<bool> _isFinished;
    std::atomic<std::uint64_t> _bytesDone;
    mutable std::mutex _mutex;  // guards what follows
    std::size_t _documentsDone;
    // One a document from the start, so that no memory is needed to tell that there was none. Until its document is
    // done it belongs to the thread that is at work on it.
    std::vector<hoSigningOutcome> _outcomes;
    std::vector<bool> _isDone;
    std::vector<bool> _isKnown;  // whether there is an outcome of the document
    std::size_t _firstNotDone;   // all documents before it are done
    std::size_t _taken;          // documents whose outcomes were given

    hoOrderedWork _work;  // the last member: its threads use the others
};

#endif
