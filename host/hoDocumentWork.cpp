#include "host/hoDocumentWork.h"

#include <algorithm>
#include <cerrno>

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
hoFileFacts signatureFacts(const gtString& path)
{
    hoFileFacts facts;
    hoReadFileFacts(hoSignaturePath(path), facts);
    return facts;
}
}  // namespace

hoDocumentWork::hoDocumentWork(Kind kind, const std::vector<hoDocument>& documents, const Keys& keys, bool mayOverwrite)
    : _kind(kind),
      _documents(documents),
      _keys(keys),
      _mayOverwrite(mayOverwrite),
      _bytesInAll(0),
      _isCancelled(false),
      _isFinished(false),
      _bytesOfDocument(0),
      _bytesBefore(0),
      _documentsDone(0)
{
    for (const hoDocument& document : _documents)
    {
        _bytesInAll += document._facts._size;
    }
    _thread = std::thread(&hoDocumentWork::run, this);
}

hoDocumentWork::~hoDocumentWork()
{
    cancel();
    _thread.join();
}

hoDocumentWork::Progress hoDocumentWork::progress() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    const std::uint64_t done = _bytesBefore + _bytesOfDocument;
    const gtString path = _documentsDone < _documents.size() ? _documents[_documentsDone]._path : gtString();
    return {done, std::max(done, _bytesInAll), _documentsDone, path};
}

std::vector<hoWorkOutcome> hoDocumentWork::takeOutcomes()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    std::vector<hoWorkOutcome> outcomes;
    outcomes.swap(_outcomes);
    return outcomes;
}

bool hoDocumentWork::onProgress(unsigned long long bytesDone, unsigned long long)
{
    _bytesOfDocument = bytesDone;
    return !_isCancelled;
}

void hoDocumentWork::run()
{
    for (const hoDocument& document : _documents)
    {
        if (_isCancelled)
        {
            break;
        }
        const hoWorkOutcome outcome = _kind == Kind::Sign ? sign(document) : test(document);
        const std::lock_guard<std::mutex> lock(_mutex);
        if (outcome._signing._problem != hoSigningProblem::Cancelled)
        {
            _outcomes.push_back(outcome);
        }
        _bytesBefore += document._facts._size;
        _bytesOfDocument = 0;
        ++_documentsDone;
    }
    _isFinished = true;
}

hoWorkOutcome hoDocumentWork::sign(const hoDocument& document)
{
    hoWorkOutcome outcome;
    outcome._path = document._path;
    outcome._stamp = document._stamp;
    const gtString signaturePath = hoSignaturePath(document._path);
    outcome._signatureFile = hoCheckSignaturePath(signaturePath, _mayOverwrite);
    if (outcome._signatureFile._problem != hoSignatureFileProblem::None)
    {
        return outcome;
    }

    gtString signature;
    outcome._signing = hoSignFile(document._path, *_keys._pPrivateKey, this, signature);
    if (outcome._signing._problem != hoSigningProblem::None)
    {
        if (outcome._signing._problem == hoSigningProblem::FileCannotBeRead)
        {
            outcome._stamp = hoDocumentStamp{hoDocumentState::CannotBeRead, {}, {}};
        }
        return outcome;
    }
    outcome._signatureFile = hoWriteSignatureFile(signaturePath, signature, _mayOverwrite);
    if (outcome._signatureFile._problem == hoSignatureFileProblem::None)
    {
        outcome._stamp = {hoDocumentState::SignedByMe, outcome._signing._file, signatureFacts(document._path)};
    }
    return outcome;
}

hoWorkOutcome hoDocumentWork::test(const hoDocument& document)
{
    hoWorkOutcome outcome;
    outcome._path = document._path;
    const hoFileFacts signatureBefore = signatureFacts(document._path);
    gtString signature;
    outcome._signatureFile = hoReadSignatureFile(hoSignaturePath(document._path), signature);
    if (outcome._signatureFile._problem != hoSignatureFileProblem::None)
    {
        const bool isMissing = outcome._signatureFile._problem == hoSignatureFileProblem::CannotBeRead &&
                               outcome._signatureFile._systemError == ENOENT;
        outcome._stamp._state = isMissing ? hoDocumentState::NotSigned : hoDocumentState::NotTested;
        if (isMissing)
        {
            outcome._signatureFile = hoSignatureFileFacts();
        }
        return outcome;
    }

    const bool good = isGood(document._path, signature, outcome);
    outcome._stamp._file = outcome._signing._file;
    outcome._stamp._signature = signatureBefore;
    if (outcome._signing._problem == hoSigningProblem::FileCannotBeRead)
    {
        outcome._stamp._state = hoDocumentState::CannotBeRead;
    }
    else if (outcome._signing._problem != hoSigningProblem::None)
    {
        outcome._stamp._state = hoDocumentState::NotTested;
    }
    else if (signatureFacts(document._path) != signatureBefore)
    {
        outcome._stamp._state = hoDocumentState::Changed;
    }
    else if (!good)
    {
        outcome._stamp._state = hoDocumentState::Bad;
    }
    return outcome;
}

// Leaves the state of a good signature in the outcome.
bool hoDocumentWork::isGood(const gtString& path, const gtString& signature, hoWorkOutcome& outcome)
{
    const hoKey* const pMine = _keys._pPrivateKey.get();
    const hoKey* const pTheirs = _keys._pPublicKey.get();
    for (const hoKey* pKey : {pTheirs, pMine})
    {
        const bool isTriedAlready =
            pKey == pMine && pTheirs != nullptr && pMine != nullptr && isSameModulus(*pMine, *pTheirs);
        if (pKey == nullptr || isTriedAlready)
        {
            continue;
        }
        bool good = false;
        outcome._signing = hoTestFile(path, *pKey, signature, this, good);
        if (outcome._signing._problem != hoSigningProblem::None)
        {
            return false;
        }
        if (good)
        {
            const bool isMine = pMine != nullptr && isSameModulus(*pKey, *pMine);
            outcome._stamp._state = isMine ? hoDocumentState::SignedByMe : hoDocumentState::Good;
            return true;
        }
    }
    return false;
}
