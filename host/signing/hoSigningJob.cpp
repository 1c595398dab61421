// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoSigningJob.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

namespace
{
// Of a signature file; none when there is none.
osFileFacts signatureFacts(const gtString& path)
{
    osFileFacts facts;
    osReadFileFacts(hoSignaturePath(path), facts);
    return facts;
}

hoDocumentState stateOf(const hoTestFacts& facts, bool isMine)
{
    switch (facts._verdict)
    {
    case hoVerdict::Good:
        return isMine ? hoDocumentState::SignedByMe : hoDocumentState::Good;
    case hoVerdict::Bad:
        return hoDocumentState::Bad;
    case hoVerdict::Weak:
        return hoDocumentState::Weak;
    case hoVerdict::AnotherKey:
        return hoDocumentState::AnotherKey;
    case hoVerdict::NotASignature:
        return hoDocumentState::NotASignature;
    case hoVerdict::NotSigned:
        return hoDocumentState::NotSigned;
    case hoVerdict::Missing:
        return hoDocumentState::Missing;
    case hoVerdict::Unreadable:
        // The document cannot be read, or its signature.
        return facts.isOk() ? hoDocumentState::NotTested : hoDocumentState::CannotBeRead;
    case hoVerdict::Changed:
    case hoVerdict::NotTested:
        break;
    }
    return hoDocumentState::NotTested;
}
}  // namespace

// How far one document is.
class hoSigningJob::Reading : public hoIProgress
{
public:
    explicit Reading(hoSigningJob& job) : _job(job), _bytesDone(0) {}

    bool onProgress(unsigned long long bytesDone, unsigned long long) override
    {
        setBytesDone(bytesDone);
        _job.notify();
        return !_job._isCancelled;
    }

    void setBytesDone(std::uint64_t bytesDone)
    {
        // Less than before, too: unsigned sums come out right.
        _job._bytesDone += bytesDone - _bytesDone;
        _bytesDone = bytesDone;
    }

private:
    hoSigningJob& _job;
    std::uint64_t _bytesDone;
};

hoSigningJob::hoSigningJob(Kind kind, const std::vector<hoDocument>& documents, const hoKeyRing& keys,
                           bool mayOverwrite, std::function<void()> onChange, hoSignatureLines lines,
                           unsigned int threads)
    : _kind(kind),
      _documents(documents),
      _pPrivateKey(keys._private._pKey),
      _testingKeys(keys.testingKeys()),
      _mayOverwrite(mayOverwrite),
      _lines(lines),
      _onChange(std::move(onChange)),
      _bytesInAll(sizeOf(documents)),
      _isCancelled(false),
      _isFinished(false),
      _bytesDone(0),
      _documentsDone(0),
      _outcomes(outcomesFor(documents)),
      _isDone(documents.size(), false),
      _isKnown(documents.size(), false),
      _firstNotDone(0),
      _taken(0),
      _work(
          documents.size(), std::max(threads, 1U), std::max<std::size_t>(documents.size(), 1),
          [this](std::size_t number) { perform(number); },
          [this]
          {
              _isFinished = true;
              notify();
          })
{
}

hoSigningJob::~hoSigningJob()
{
    cancel();
}

std::uint64_t hoSigningJob::sizeOf(const std::vector<hoDocument>& documents)
{
    std::uint64_t size = 0;
    for (const hoDocument& document : documents)
    {
        size += document._facts._size;
    }
    return size;
}

std::vector<hoSigningOutcome> hoSigningJob::outcomesFor(const std::vector<hoDocument>& documents)
{
    std::vector<hoSigningOutcome> outcomes(documents.size());
    for (std::size_t i = 0; i < documents.size(); ++i)
    {
        outcomes[i]._path = documents[i]._path;
    }
    return outcomes;
}

void hoSigningJob::cancel()
{
    _isCancelled = true;
    _work.cancel();
}

hoSigningJob::Progress hoSigningJob::progress() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    const std::uint64_t done = _bytesDone;
    const gtString path = _firstNotDone < _documents.size() ? _documents[_firstNotDone]._path : gtString();
    return {done, std::max(done, _bytesInAll), _documentsDone, path};
}

std::vector<hoSigningOutcome> hoSigningJob::takeOutcomes()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    std::vector<hoSigningOutcome> outcomes;
    outcomes.reserve(_firstNotDone - _taken);
    for (; _taken < _firstNotDone; ++_taken)
    {
        if (_isKnown[_taken])
        {
            outcomes.push_back(std::move(_outcomes[_taken]));
        }
    }
    return outcomes;
}

void hoSigningJob::perform(std::size_t number)
{
    const hoDocument& document = _documents[number];
    hoSigningOutcome& outcome = _outcomes[number];
    Reading reading(*this);
    try
    {
        if (_kind == Kind::Sign)
        {
            sign(document, reading, outcome);
        }
        else
        {
            test(document, reading, outcome);
        }
    }
    catch (const std::bad_alloc&)
    {
        outcome._signing._problem = hoSigningProblem::NoMemory;
        outcome._verdict = hoDocumentVerdict{hoDocumentState::NotTested, {}, {}, {}};
    }
    reading.setBytesDone(document._facts._size);
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isKnown[number] = outcome._signing._problem != hoSigningProblem::Cancelled;
        _isDone[number] = true;
        ++_documentsDone;
        while (_firstNotDone < _documents.size() && _isDone[_firstNotDone])
        {
            ++_firstNotDone;
        }
    }
    notify();
}

void hoSigningJob::notify() const
{
    if (_onChange)
    {
        _onChange();
    }
}

void hoSigningJob::sign(const hoDocument& document, hoIProgress& progress, hoSigningOutcome& outcome) const
{
    outcome._verdict = document._verdict;
    const gtString signaturePath = hoSignaturePath(document._path);
    const bool mayOverwrite = _mayOverwrite && !document._isSignatureKept;
    outcome._signatureFile = hoCheckSignaturePath(signaturePath, mayOverwrite);
    if (!outcome._signatureFile.isOk())
    {
        return;
    }

    gtString signature;
    outcome._signing = hoTestFacts(hoSignFile(document._path, *_pPrivateKey, _lines, &progress, signature));
    if (!outcome._signing.isOk())
    {
        if (outcome._signing._problem == hoSigningProblem::FileCannotBeRead)
        {
            outcome._verdict = hoDocumentVerdict{hoDocumentState::CannotBeRead, {}, {}, {}};
        }
        return;
    }
    outcome._signatureFile = hoWriteSignatureFile(signaturePath, signature, mayOverwrite);
    if (outcome._signatureFile._problem == hoSignatureFileProblem::None)
    {
        // What holds by its digest alone is weak, whoever has signed it.
        const hoDocumentState state =
            _lines == hoSignatureLines::Both ? hoDocumentState::SignedByMe : hoDocumentState::Weak;
        outcome._verdict = {state, outcome._signing._file, signatureFacts(document._path), keyName(*_pPrivateKey)};
    }
}

void hoSigningJob::test(const hoDocument& document, hoIProgress& progress, hoSigningOutcome& outcome) const
{
    const osFileFacts signatureBefore = signatureFacts(document._path);
    gtString signature;
    outcome._signatureFile = hoReadSignatureFile(hoSignaturePath(document._path), signature);
    if (!outcome._signatureFile.isOk())
    {
        outcome._signing = hoTestFacts(outcome._signatureFile);
        outcome._verdict._state = stateOf(outcome._signing, false);
        outcome._verdict._signature = signatureBefore;
        osReadFileFacts(document._path, outcome._verdict._file);
        if (outcome._signing._verdict == hoVerdict::NotSigned || outcome._signing._verdict == hoVerdict::NotASignature)
        {
            outcome._signatureFile = hoSignatureFileResult();
        }
        return;
    }

    std::vector<const hoKey*> keys;
    for (const hoTestingKey& key : _testingKeys)
    {
        keys.push_back(key._pKey.get());
    }
    outcome._signing = hoTestFile(document._path, keys, signature.asStringView(), &progress);
    outcome._verdict._file = outcome._signing._file;
    outcome._verdict._signature = signatureBefore;
    if (outcome._signing.isOk() && signatureFacts(document._path) != signatureBefore)
    {
        outcome._verdict._state = hoDocumentState::Changed;
        return;
    }
    const hoKey& key = *keys[outcome._signing._key];
    outcome._verdict._state = stateOf(outcome._signing, _pPrivateKey != nullptr && hoIsSamePair(key, *_pPrivateKey));
    switch (outcome._signing._verdict)
    {
    case hoVerdict::Good:
    case hoVerdict::Weak:
    case hoVerdict::Bad:
        outcome._verdict._keyName = keyName(key);
        break;
    default:
        break;
    }
}

gtString hoSigningJob::keyName(const hoKey& key) const
{
    for (const hoTestingKey& testing : _testingKeys)
    {
        if (_testingKeys.size() > 1 && hoIsSamePair(*testing._pKey, key))
        {
            return testing._name;
        }
    }
    return gtString();
}
