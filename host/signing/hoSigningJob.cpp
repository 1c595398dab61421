// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoSigningJob.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

namespace
{
bool isSameModulus(const hoKey& left, const hoKey& right)
{
    const int digits = left.publicKey().amountOfProductDigits();
    return digits == right.publicKey().amountOfProductDigits() &&
           std::equal(left.publicKey().productDigits(), left.publicKey().productDigits() + digits,
                      right.publicKey().productDigits());
}

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
        return hoDocumentState::CannotBeRead;
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

hoSigningJob::hoSigningJob(Kind kind, const std::vector<hoDocument>& documents, const Keys& keys, bool mayOverwrite,
                           std::function<void()> onChange, hoSignatureLines lines)
    : _kind(kind),
      _documents(documents),
      _keys(keys),
      _mayOverwrite(mayOverwrite),
      _lines(lines),
      _onChange(std::move(onChange)),
      _bytesInAll(0),
      _isCancelled(false),
      _isFinished(false),
      _bytesOfDocument(0),
      _bytesBefore(0),
      _documentsDone(0),
      _outcomes(documents.size()),
      _isKnown(documents.size(), false),
      _taken(0)
{
    for (std::size_t i = 0; i < _documents.size(); ++i)
    {
        _bytesInAll += _documents[i]._facts._size;
        _outcomes[i]._path = _documents[i]._path;
    }
    _thread = std::thread(&hoSigningJob::run, this);
}

hoSigningJob::~hoSigningJob()
{
    cancel();
    _thread.join();
}

hoSigningJob::Progress hoSigningJob::progress() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    const std::uint64_t done = _bytesBefore + _bytesOfDocument;
    const gtString path = _documentsDone < _documents.size() ? _documents[_documentsDone]._path : gtString();
    return {done, std::max(done, _bytesInAll), _documentsDone, path};
}

std::vector<hoSigningOutcome> hoSigningJob::takeOutcomes()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    std::vector<hoSigningOutcome> outcomes;
    outcomes.reserve(_documentsDone - _taken);
    for (; _taken < _documentsDone; ++_taken)
    {
        if (_isKnown[_taken])
        {
            outcomes.push_back(std::move(_outcomes[_taken]));
        }
    }
    return outcomes;
}

bool hoSigningJob::onProgress(unsigned long long bytesDone, unsigned long long)
{
    _bytesOfDocument = bytesDone;
    notify();
    return !_isCancelled;
}

void hoSigningJob::run()
{
    for (std::size_t i = 0; i < _documents.size() && !_isCancelled; ++i)
    {
        const hoDocument& document = _documents[i];
        // Nobody looks at it before it is done.
        hoSigningOutcome& outcome = _outcomes[i];
        try
        {
            if (_kind == Kind::Sign)
            {
                sign(document, outcome);
            }
            else
            {
                test(document, outcome);
            }
        }
        catch (const std::bad_alloc&)
        {
            outcome._signing._problem = hoSigningProblem::NoMemory;
            outcome._verdict = hoDocumentVerdict{hoDocumentState::NotTested, {}, {}};
        }
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _isKnown[i] = outcome._signing._problem != hoSigningProblem::Cancelled;
            _bytesBefore += document._facts._size;
            _bytesOfDocument = 0;
            ++_documentsDone;
        }
        notify();
    }
    _isFinished = true;
    notify();
}

void hoSigningJob::notify() const
{
    if (_onChange)
    {
        _onChange();
    }
}

void hoSigningJob::sign(const hoDocument& document, hoSigningOutcome& outcome)
{
    outcome._verdict = document._verdict;
    const gtString signaturePath = hoSignaturePath(document._path);
    outcome._signatureFile = hoCheckSignaturePath(signaturePath, _mayOverwrite);
    if (!outcome._signatureFile.isOk())
    {
        return;
    }

    gtString signature;
    outcome._signing = hoTestFacts(hoSignFile(document._path, *_keys._pPrivateKey, _lines, this, signature));
    if (!outcome._signing.isOk())
    {
        if (outcome._signing._problem == hoSigningProblem::FileCannotBeRead)
        {
            outcome._verdict = hoDocumentVerdict{hoDocumentState::CannotBeRead, {}, {}};
        }
        return;
    }
    outcome._signatureFile = hoWriteSignatureFile(signaturePath, signature, _mayOverwrite);
    if (outcome._signatureFile._problem == hoSignatureFileProblem::None)
    {
        // What holds by its digest alone is weak, whoever has signed it.
        const hoDocumentState state =
            _lines == hoSignatureLines::Both ? hoDocumentState::SignedByMe : hoDocumentState::Weak;
        outcome._verdict = {state, outcome._signing._file, signatureFacts(document._path)};
    }
}

void hoSigningJob::test(const hoDocument& document, hoSigningOutcome& outcome)
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
    for (const hoKey* pKey : {_keys._pPublicKey.get(), _keys._pPrivateKey.get()})
    {
        if (pKey != nullptr)
        {
            keys.push_back(pKey);
        }
    }
    outcome._signing = hoTestFile(document._path, keys, signature.asStringView(), this);
    outcome._verdict._file = outcome._signing._file;
    outcome._verdict._signature = signatureBefore;
    const hoKey* const pMine = _keys._pPrivateKey.get();
    outcome._verdict._state =
        outcome._signing.isOk() && signatureFacts(document._path) != signatureBefore
            ? hoDocumentState::Changed
            : stateOf(outcome._signing, pMine != nullptr && isSameModulus(*keys[outcome._signing._key], *pMine));
}
